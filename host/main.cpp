#include "flowmere/Flowmere.h"
#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/commands/Catalog.h"
#include "host/commands/Check.h"
#include "host/commands/Completion.h"
#include "host/commands/Diff.h"
#include "host/commands/Draw.h"
#include "host/commands/Export.h"
#include "host/commands/Format.h"
#include "host/commands/Generate.h"
#include "host/commands/Import.h"
#include "host/commands/Library.h"
#include "host/commands/Man.h"
#include "host/commands/Run.h"
#include "host/commands/Shell.h"
#include "host/commands/Show.h"
#include "host/help/HelpPages.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

namespace {

using namespace flowmere::host;

// All commands, in the order in which the help names them: a new one needs its header above and its line here.
constexpr void (*kCommands[])(CLI::App& app, Result& result) = {
    addShow,       //
    addDraw,       //
    addCheck,      //
    addDiff,       //
    addRun,        //
    addShell,      //
    addGenerate,   //
    addFormat,     //
    addExport,     //
    addImport,     //
    addCatalog,    //
    addLibrary,    //
    addCompletion, //
    addMan,        //
};

std::string versionLine() {
    return fmt::format("flowmere {} (Xerces-C {}, Python {})", flowmere::versionText(), flowmere::xercesVersionText(),
                       flowmere::pythonVersionText());
}

void tell(std::string const& line) {
    printError(line + "\n");
}

// The first word that looks like an option.
std::vector<std::string>::const_iterator optionIn(std::vector<std::string> const& words) {
    return std::find_if(words.begin(), words.end(),
                        [](std::string const& word) { return word.size() > 1 && word.front() == '-'; });
}

// What is wrong with a command line, with what may have been meant.
std::string complaint(CLI::App& app, CLI::ParseError const& error) {
    // The command with the first word that it cannot take, or else the innermost one.
    CLI::App* command = &app;
    std::string line = app.get_name();
    std::vector<std::string> strays = app.remaining();
    std::vector<std::string>::const_iterator option = optionIn(strays);
    while (option == strays.end() && !command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        line += " " + command->get_name();
        strays = command->remaining();
        option = optionIn(strays);
    }
    std::string const help = " (see " + line + " --help)";
    auto const unknown = [&](std::string const& word, std::string const& cause, std::vector<std::string> const& known) {
        std::string const meant = suggestion(word, known);
        return errorLine("", word, cause + (meant.empty() ? help : meant));
    };

    CommandText const text = commandText(*command);
    if (option != strays.end()) {
        std::vector<std::string> names;
        for (OptionText const& entry : text.options)
            names.insert(names.end(), entry.names.begin(), entry.names.end());
        return unknown(option->substr(0, option->find('=')), "there is no such option", names);
    }
    if (!strays.empty() && !text.commands.empty()) {
        std::vector<std::string> names;
        for (CommandText const& entry : text.commands)
            names.push_back(entry.name());
        return unknown(strays.front(), "there is no such command", names);
    }
    if (!strays.empty() && dynamic_cast<CLI::ExtrasError const*>(&error) != nullptr)
        return errorLine("", strays.front(), "there is no place for this argument" + help);
    return errorLine("", "", error.what() + help);
}

int run(int argc, char** argv) {
    Result result;
    CLI::App app{"Runs, shows, checks and converts engineering processes without the desktop application", "flowmere"};
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", versionLine, "Show the version, with those of Xerces-C and Python");
    app.require_subcommand(1);
    app.fallthrough(false);
    useHelpText(app);
    app.footer("flowmere COMMAND --help tells more about a command.\n"
               "\n"
               "Examples:\n"
               "  flowmere check beam.xml\n"
               "  flowmere run beam.xml --set Loads.Span=6.5 --save sized.xml");

    for (auto* const add : kCommands)
        add(app, result);

    try {
        app.parse(argc, argv);
    } catch (CLI::Success const& shown) {
        return app.exit(shown);
    } catch (CLI::ParseError const& error) {
        tell(complaint(app, error));
        return kExitWrongUse;
    }
    return result.exitCode;
}

} // namespace

int main(int argc, char** argv) {
    // A file at the limit of its size is a failed write like any other, with a cause that can be told.
    std::signal(SIGXFSZ, SIG_IGN);
    int exitCode = kExitWell;
    try {
        exitCode = run(argc, argv);
    } catch (Failure const& failure) {
        std::fflush(stdout);
        tell(failure.what());
        exitCode = failure.exitCode();
    } catch (std::exception const& error) {
        std::fflush(stdout);
        tell(errorLine("", "", error.what()));
        exitCode = kExitWrongUse;
    }
    bool const isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!isWritten && exitCode == kExitWell) {
        tell(errorLine("standard output", "", std::string("cannot be written: ") + std::strerror(errno)));
        exitCode = kExitWrongUse;
    }
    return exitCode;
}
