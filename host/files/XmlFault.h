#pragma once

// Why the library refuses a file, told to the user.

#include "host/basics/Command.h"

#include "flowmere/Flowmere.h"

#include <filesystem>
#include <string>

namespace flowmere::host {

// The failure, exit code 2, for a file that the reader could not open as XML: "FILE: line 12, column 5: CAUSE".
Failure xmlFailure(std::string const& file, CTXMLBaseReader const& reader);

// For a library call that gives no reasons: throws the same failure when what is at the path is no XML.
void checkIsXml(std::filesystem::path const& path, std::string const& file);

// Name of the first element of a file; empty where it is not found, as in UTF-16. The file is known to be well formed.
std::string rootElement(std::filesystem::path const& file);
// The name of an element without its prefix.
std::string localName(std::string const& name);

} // namespace flowmere::host
