#pragma once

// The program's command line. The library that reads it costs each source that includes it seconds to compile, so it
// stands behind these few functions, and one source includes it.

#include "host/basics/Command.h"
#include "host/help/HelpPages.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace flowmere::host {

// An option, a flag or an argument of a command: a handle that may be copied and that lives as long as the program's
// command line. The functions that tell of it give it back, so that calls can be chained.
class Option {
public:
    explicit Option(CLI::Option& option) : m_option(&option) {}

    // Says what stands behind it, as "DIR" or "N"; help and completion go by that.
    Option typeName(std::string const& name) const;
    Option required(bool isRequired = true) const;
    // It may be given several times, with one value each time.
    Option repeated() const;
    // An argument that takes so many words.
    Option words(int fewest, int most) const;
    Option range(int lowest, int highest) const;
    Option oneOf(std::vector<std::string> const& words) const;
    // `complaint` gives the cause why a value is refused, and an empty text for one that may stand.
    Option check(std::function<std::string(std::string const& value)> const& complaint) const;
    // Help shows the value that the target has now.
    Option showDefault() const;
    // It may not be given together with the other one.
    Option excludes(Option other) const;

    // Once the command line is parsed: how often it was given, and its value.
    std::size_t count() const;
    std::string text() const;

    friend bool operator==(Option const&, Option const&) = default;

private:
    CLI::Option* m_option;
};

// The program or one of its commands: a handle like that of an option. Targets of options outlive the parsing of the
// command line; they stay as they are when an option is not given.
class Command {
public:
    explicit Command(CLI::App& app) : m_app(&app) {}

    Command add(std::string const& name, std::string const& description) const;
    // One of the commands below it has to follow.
    void needCommand() const;
    // What help shows below the options, with an example.
    void footer(std::string const& text) const;
    // What the command does. It may throw a Failure.
    void work(std::function<void()> work) const;

    // "-o,--out" is an option, "FILE" an argument.
    Option option(std::string const& names, std::string& target, std::string const& description) const;
    Option option(std::string const& names, std::optional<std::string>& target, std::string const& description) const;
    Option option(std::string const& names, std::vector<std::string>& target, std::string const& description) const;
    Option option(std::string const& names, int& target, std::string const& description) const;
    Option option(std::string const& names, std::vector<int>& target, std::string const& description) const;
    Option option(std::string const& names, std::optional<double>& target, std::string const& description) const;
    Option flag(std::string const& names, bool& target, std::string const& description) const;

    // Once the command line is parsed: the options in the order in which they were given, each as often as it was.
    std::vector<Option> given() const;
    // All that help tells of it and of the commands below it.
    CommandText text() const;

private:
    CLI::App* m_app;
};

// For the work of a command: ends it as the command line does when a required argument is missing.
[[noreturn]] void missArgument(std::string const& name);

// Each command has a file in host/commands/, with one function of this form that adds the command and its options to
// the program, and gives it work that sets `result.exitCode`. Options live in a std::shared_ptr that the work holds.
using AddCommand = void (*)(Command const& program, Result& result);

struct ProgramText {
    std::string name;
    std::string description;
    std::string footer;
    std::function<std::string()> version;
};

// Reads the command line and lets the command do its work. Gives the exit code; wrong use is told on standard error.
// What the work throws goes through.
int runProgram(ProgramText const& text, std::span<AddCommand const> commands, int argc, char** argv);

// All that the help of the program tells, once all its commands have been added.
CommandText commandText(CLI::App const& app);
// Makes --help of the program and of all its commands show helpText(); for the program, before commands are added.
void useHelpText(CLI::App& app);

} // namespace flowmere::host
