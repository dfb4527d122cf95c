#pragma once

// What can be said in the shell: the library's commands with the arguments that a line may give them, and the shell's
// own words.

#include "host/basics/Command.h"
#include "host/shell/Words.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace flowmere::host::shell {

// What stands for an argument, and so what completes it.
enum class Argument {
    File,
    Folder,
    Target, // a file that is to be written, or a folder that it goes to
    Name,
    Block,
    Values,   // NAME=VALUE, to the end of the line
    Command,  // names of several words need no quotes
    Resource, // the same
    Value,
};

struct Parameter {
    std::string usage; // as in help: BLOCK, [BLOCK]
    Argument kind = Argument::Name;
    std::string resource; // of the library that it fills; empty for a word of the shell
};

struct Command {
    std::string name;
    std::string description;
    std::vector<Parameter> parameters;
    bool isOwn = false; // the shell's own word, that the library does not know

    // The name with all parameters.
    std::string usage() const;
};

// The library's commands in the order of its table, then the shell's own words.
std::vector<Command> const& commands();
std::vector<std::string> commandNames();
std::vector<std::string> resourceNames();

// A name found at some place of a line.
struct Found {
    std::string name;
    std::size_t words = 0; // that it takes up
};

// The longest of the names that the words from there on say: in one word with quotes, or in several without.
std::optional<Found> nameAt(std::vector<Word> const& words, std::size_t place, std::vector<std::string> const& names);

// For words that say none of the names: the failure, with what may have been meant. `what` is what was looked for.
Failure unknownName(std::vector<Word> const& words, std::size_t place, std::vector<std::string> const& names,
                    std::string const& what);

} // namespace flowmere::host::shell
