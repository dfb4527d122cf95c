#pragma once

// Help beyond --help, made from the same texts: man pages, and scripts that complete command lines in a shell.

#include "host/basics/Text.h"

#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// What stands behind an option, or in the place of an argument.
enum class ValueKind {
    None,    // a flag
    File,    // a path
    Folder,  // a path of a folder
    Choice,  // one of some words
    Command, // the name of a command
    Other,   // something that a shell cannot know
};

// An option, or an argument without a name.
struct OptionText {
    std::vector<std::string> names; // "-h", "--help", short ones first; none for an argument
    std::string value;              // "DIR", "FILE"; empty for a flag
    std::string description;
    std::vector<std::string> choices; // for ValueKind::Choice
    ValueKind kind = ValueKind::None;
    bool isRequired = false;
    bool isRepeated = false;
};

// A command, with the commands below it.
struct CommandText {
    std::vector<std::string> words; // "flowmere", "library", "list"
    std::string description;
    std::string footer;
    std::vector<OptionText> options;
    std::vector<OptionText> arguments;
    std::vector<CommandText> commands;

    std::string const& name() const { return words.back(); }
    std::string line() const; // the words with blanks
};

// What --help shows.
std::string helpText(CommandText const& command);

// The man page of the program, or of one of its commands with all below that, as roff. Pages name each other; the
// version stands in the foot line.
std::string manPage(CommandText const& program, CommandText const& command, std::string_view version);
// "flowmere.1", "flowmere-run.1".
std::string manPageFile(CommandText const& command);

// The same facts as JSON.
Json helpJson(CommandText const& command);

// The shells that completionScript knows.
std::vector<std::string> const& completionShells();
// A script that makes the shell complete commands, options, their values and files.
std::string completionScript(CommandText const& program, std::string_view shell);

} // namespace flowmere::host
