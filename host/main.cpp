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
#include "host/commands/Schedule.h"
#include "host/commands/Shell.h"
#include "host/commands/Show.h"
#include "host/help/CommandLine.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace {

using namespace flowmere::host;

// All commands, in the order in which the help names them: a new one needs its header above and its line here.
constexpr AddCommand kCommands[] = {
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
    addSchedule,   //
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

int run(int argc, char** argv) {
    return runProgram(
        {.name = "flowmere",
         .description = "Runs, shows, checks and converts engineering processes without the desktop application",
         .footer = "flowmere COMMAND --help tells more about a command.\n"
                   "\n"
                   "Examples:\n"
                   "  flowmere check beam.xml\n"
                   "  flowmere run beam.xml --set Loads.Span=6.5 --save sized.xml",
         .version = versionLine},
        kCommands, argc, argv);
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
