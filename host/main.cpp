#include "flowmere/Flowmere.h"
#include "host/Command.h"
#include "host/Text.h"
#include "host/commands/Check.h"
#include "host/commands/Format.h"
#include "host/commands/Generate.h"
#include "host/commands/Run.h"
#include "host/commands/Show.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

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
    addShow,     //
    addCheck,    //
    addRun,      //
    addGenerate, //
    addFormat,   //
};

std::string versionLine() {
    return fmt::format("flowmere {} (Xerces-C {}, Python {})", flowmere::versionText(), flowmere::xercesVersionText(),
                       flowmere::pythonVersionText());
}

void tell(std::string const& line) {
    printError(line + "\n");
}

int run(int argc, char** argv) {
    Result result;
    CLI::App app{"Runs, shows, checks and converts engineering processes without the desktop application", "flowmere"};
    app.set_version_flag("--version", versionLine, "Show the version, with those of Xerces-C and Python");
    app.set_help_flag("-h,--help", "Show this help");
    app.require_subcommand(1);
    app.fallthrough(false);

    for (auto* const add : kCommands)
        add(app, result);

    try {
        app.parse(argc, argv);
    } catch (CLI::Success const& shown) {
        return app.exit(shown);
    } catch (CLI::ParseError const& error) {
        auto const called = app.get_subcommands();
        std::vector<std::string> const strays = app.remaining();
        if (called.empty() && !strays.empty()) {
            std::vector<std::string> names;
            for (CLI::App const* const command : app.get_subcommands([](CLI::App*) { return true; }))
                names.push_back(command->get_name());
            tell(errorLine("", strays.front(), "there is no such command" + suggestion(strays.front(), names)));
            return kExitWrongUse;
        }
        std::string const help =
            called.empty() ? "flowmere --help" : "flowmere " + called.front()->get_name() + " --help";
        tell(errorLine("", "", std::string(error.what()) + " (see " + help + ")"));
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
