#pragma once

// Texts between the library, the command line and the user.

#include "flowmere/Flowmere.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// Keeps the order in which its members were set.
using Json = nlohmann::ordered_json;

// UTF-8 of a text of the library; null is the empty text. Bytes of a file that were no UTF-8 come out as they were.
std::string utf8(wchar_t const* text);
// The way back.
TuString wide(std::string const& text);
// A path as the library takes it: absolute, with backslashes for slashes.
TuString libraryPath(std::filesystem::path const& path);

// A text made fit for one line of output: line ends, tabs and other control characters as \n, \t and \x1b, and bytes
// that are no UTF-8 as the replacement character.
std::string oneLine(std::string_view text);

// The names out of `known` that come nearest to what was typed, the nearest first; three at most, none when nothing
// comes near. Case does not count, and of a dotted path the last part alone may fit.
std::vector<std::string> nearNames(std::string_view typed, std::vector<std::string> const& known);
// The same as the end of a message: "; did you mean A, B or C?", or the empty text.
std::string suggestion(std::string_view typed, std::vector<std::string> const& known);

// "1 block", "2 blocks".
std::string counted(std::size_t count, std::string_view singular);

// The document as text, indented, with a line end; bytes that are no UTF-8 become the replacement character.
std::string jsonText(Json const& document);

// Writes to standard output at once. Throws Failure when that does not take it.
void printOut(std::string_view text);
// Writes to standard error at once; what that does not take is lost.
void printError(std::string_view text);
// Columns of the terminal that printError() writes to; 0 when that is none.
std::size_t errorColumns();
// From now on the two write to these files, which at first are 1 and 2.
void setOutputFiles(int output, int error);

} // namespace flowmere::host
