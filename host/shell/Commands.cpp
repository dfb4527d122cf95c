#include "host/shell/Commands.h"

#include "host/basics/Text.h"
#include "host/run/HostCommand.h"

#include <algorithm>
#include <map>
#include <utility>

namespace flowmere::host::shell {

namespace {

// No name has more words.
constexpr std::size_t kMostWords = 3;

Parameter const kExecutingBlock{"BLOCK", Argument::Block, "Executing Block"};
Parameter const kCurrentBlock{"[BLOCK]", Argument::Block, "Executing Block"};
Parameter const kSelectedBlock{"BLOCK", Argument::Block, "Selected Block"};
Parameter const kDirectory{"[DIRECTORY]", Argument::Folder, "Project Directory"};

// The arguments of the library's commands, each with the resource that it fills.
std::map<std::string, std::vector<Parameter>> const& libraryParameters() {
    static std::map<std::string, std::vector<Parameter>> const table{
        {"Create Project",
         {{"TEMPLATE", Argument::File, "Project Template File"},
          {"DIRECTORY", Argument::Folder, "Project Directory"},
          {"[NAME]", Argument::Name, "Project Name"}}},
        {"Open Project", {{"[FILE]", Argument::File, "Project Name"}}},
        {"Save Project", {kDirectory}},
        {"Save Project As", {{"[FILE|DIRECTORY]", Argument::Target, "Project Directory"}}},
        {"Save Iteration Data", {kDirectory}},
        {"Execute Block", {kExecutingBlock}},
        {"Undo Block", {kExecutingBlock}},
        {"Stop At", {kSelectedBlock}},
        {"Skip Block", {kSelectedBlock}},
        {"Clear Stop At", {kSelectedBlock}},
        {"Clear Skip Block", {kSelectedBlock}},
        {"Expand Block", {kSelectedBlock}},
        {"Set Break", {kSelectedBlock}},
        {"Clear Break", {kSelectedBlock}},
        {"Set Variable Data", {kCurrentBlock, {"[NAME=VALUE]...", Argument::Values, "Variable Data"}}},
        {"Extract Variable Data", {kCurrentBlock}},
    };
    return table;
}

std::vector<Command> ownWords() {
    return {
        {"get", "Shows the value of a resource, or of all", {{"[RESOURCE]", Argument::Resource, ""}}, true},
        {"help", "Shows what can be said, or how one command is said", {{"[COMMAND]", Argument::Command, ""}}, true},
        {"history", "Shows the lines that were entered", {}, true},
        {"quit", "Ends the shell", {}, true},
        {"set",
         "Gives a resource a value that stays",
         {{"RESOURCE", Argument::Resource, ""}, {"VALUE", Argument::Value, ""}},
         true},
        {"show", "Shows the blocks with their states and marks", {{"[BLOCK]", Argument::Block, ""}}, true},
        {"status", "Shows what is open, and where its run stands", {}, true},
        {"vars", "Shows the variables of a block, or of all", {{"[BLOCK]", Argument::Block, ""}}, true},
    };
}

std::string lowered(std::string text) {
    for (char& character : text)
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    return text;
}

std::size_t wordCount(std::string const& name) {
    return static_cast<std::size_t>(std::count(name.begin(), name.end(), ' ')) + 1;
}

std::vector<Command> allCommands() {
    std::vector<Command> result;
    for (CommandEntry const& entry : HostCommand::instance().commandEntries()) {
        Command command{entry.name, entry.description, {}, false};
        if (auto const parameters = libraryParameters().find(entry.name); parameters != libraryParameters().end())
            command.parameters = parameters->second;
        result.push_back(std::move(command));
    }
    for (Command& command : ownWords())
        result.push_back(std::move(command));
    return result;
}

} // namespace

std::string Command::usage() const {
    std::string text = name;
    for (Parameter const& parameter : parameters)
        text += " " + parameter.usage;
    return text;
}

std::vector<Command> const& commands() {
    static std::vector<Command> const result = allCommands();
    return result;
}

std::vector<std::string> commandNames() {
    std::vector<std::string> names;
    for (Command const& command : commands())
        names.push_back(command.name);
    return names;
}

std::vector<std::string> resourceNames() {
    std::vector<std::string> names;
    for (ResourceEntry const& entry : HostCommand::instance().resourceEntries())
        names.push_back(entry.name);
    return names;
}

std::optional<Found> nameAt(std::vector<Word> const& words, std::size_t place, std::vector<std::string> const& names) {
    std::optional<Found> found;
    std::string name;
    for (std::size_t count = 1; count <= kMostWords && place + count <= words.size(); ++count) {
        Word const& word = words[place + count - 1];
        if (word.isQuoted && count > 1)
            break;
        name += (count > 1 ? " " : "") + word.text;
        if (std::find(names.begin(), names.end(), name) != names.end())
            found = Found{name, count};
        if (word.isQuoted)
            break;
    }
    return found;
}

Failure unknownName(std::vector<Word> const& words, std::size_t place, std::vector<std::string> const& names,
                    std::string const& what) {
    std::string const cause = "there is no such " + what;
    std::string name;
    std::string nearest;
    bool isOfLength = false;
    for (std::size_t count = 1; count <= kMostWords && place + count <= words.size(); ++count) {
        Word const& word = words[place + count - 1];
        if (word.isQuoted && count > 1)
            break;
        name += (count > 1 ? " " : "") + word.text;
        std::vector<std::string> const near = nearNames(name, names);
        for (std::string const& candidate : near)
            if (lowered(candidate) == lowered(name))
                return {"", name, cause + "; did you mean " + candidate + "?"};
        // What follows the name belongs to its arguments.
        bool const hasLength = !near.empty() && wordCount(near.front()) == wordCount(name);
        if (!near.empty() && (hasLength || !isOfLength)) {
            nearest = name;
            isOfLength = hasLength;
        }
        if (word.isQuoted)
            break;
    }
    if (!nearest.empty())
        return {"", nearest, cause + suggestion(nearest, names)};
    std::string const& first = words.at(place).text;
    // What other shells say.
    for (auto const& [word, meant] : {std::pair("exit", "quit"), std::pair("bye", "quit"), std::pair("logout", "quit"),
                                      std::pair("?", "help"), std::pair("ls", "show")})
        if (first == word && std::find(names.begin(), names.end(), meant) != names.end())
            return {"", first, cause + "; did you mean " + meant + "?"};
    std::string begun;
    for (std::string const& candidate : names)
        if (lowered(candidate).starts_with(lowered(first) + " "))
            begun += (begun.empty() ? "" : ", ") + candidate;
    return {"", first, cause + (begun.empty() ? "" : "; there is " + begun)};
}

} // namespace flowmere::host::shell
