#include "host/commands/Man.h"

#include "host/basics/Text.h"
#include "host/files/SafeFile.h"
#include "host/help/HelpPages.h"

#include "flowmere/Flowmere.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string command;
    std::string folder;
    bool json = false;
};

CommandText const& pageOf(CommandText const& program, std::string const& name) {
    if (name.empty() || name == program.name())
        return program;
    std::vector<std::string> names;
    for (CommandText const& command : program.commands) {
        if (command.name() == name)
            return command;
        names.push_back(command.name());
    }
    throw Failure("", name, "there is no such command" + suggestion(name, names));
}

void writePages(CommandText const& program, std::string const& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!fs::is_directory(folder))
        throw Failure(folder, "", "cannot be made: " + error.message());
    auto const write = [&](CommandText const& command) {
        saveBytes((fs::path(folder) / manPageFile(command)).string(),
                  manPage(program, command, flowmere::versionText()));
    };
    write(program);
    for (CommandText const& command : program.commands)
        write(command);
}

int show(Command const& all, Options const& options) {
    CommandText const program = all.text();
    CommandText const& command = pageOf(program, options.command);
    if (!options.folder.empty())
        writePages(program, options.folder);
    else
        printOut(options.json ? jsonText(helpJson(command)) : manPage(program, command, flowmere::versionText()));
    return kExitWell;
}

} // namespace

void addMan(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("man", "Print a man page, made from the texts of --help");
    command.option("COMMAND", options->command, "The command; the program itself when there is none");
    Option const json = command.flag("--json", options->json, "Print commands, options and their texts as JSON");
    command.option("--all", options->folder, "Write the pages of the program and of all commands into a folder")
        .typeName("DIR")
        .excludes(json);
    command.footer("The page is text for man and groff. Pages of an installed program are found by man itself.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere man run | man -l -");
    command.work([program, options, &result] { result.exitCode = show(program, *options); });
}

} // namespace flowmere::host
