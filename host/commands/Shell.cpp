#include "host/commands/Shell.h"

#include "host/basics/Text.h"
#include "host/shell/LineEditor.h"
#include "host/shell/LineSource.h"
#include "host/shell/Shell.h"

#include <fmt/format.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace flowmere::host {

namespace {

using shell::Origin;
using shell::Shell;

struct Options {
    std::string file;
    std::vector<std::string> lines;
    std::vector<std::string> scriptRoots;
    bool debugs = false;
    bool goesOn = false;
    bool isJson = false;
};

// Lines that nobody types: the first that fails ends them, unless they are to go on.
class Script {
public:
    Script(Shell& shell, bool goesOn) : m_shell(shell), m_goesOn(goesOn) {}

    // False when no further line is to be done.
    bool run(std::string const& line, Origin const& origin) {
        int const exitCode = m_shell.run(line, origin);
        if (m_exitCode == kExitWell || exitCode == kExitInterrupted)
            m_exitCode = exitCode;
        return exitCode != kExitInterrupted && (exitCode == kExitWell || m_goesOn) && !m_shell.hasQuit();
    }
    // For a line that cannot be taken; the same.
    bool refuse(Failure const& failure) {
        printError(std::string(failure.what()) + "\n");
        if (m_exitCode == kExitWell)
            m_exitCode = failure.exitCode();
        return m_goesOn;
    }
    int end(Origin const& origin) const {
        if (!m_shell.hasQuit())
            m_shell.mayEnd(origin);
        return m_exitCode;
    }

private:
    Shell& m_shell;
    bool m_goesOn;
    int m_exitCode = kExitWell;
};

// The lines of -c; one argument may hold several.
int runLines(Shell& shell, Options const& options) {
    Script script(shell, options.goesOn);
    std::size_t number = 0;
    bool goesOn = true;
    for (std::string_view text : options.lines) {
        while (goesOn) {
            auto const end = text.find('\n');
            ++number;
            goesOn = script.run(std::string(text.substr(0, end)), {"-c", fmt::format("line {}", number), number});
            if (end == std::string_view::npos)
                break;
            text.remove_prefix(end + 1);
        }
    }
    return script.end({"-c", "", number});
}

int runInput(Shell& shell, Options const& options) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    constexpr char kSource[] = "standard input";
    Script script(shell, options.goesOn);
    shell::InputLines lines;
    std::size_t number = 0;
    bool goesOn = true;
    while (goesOn) {
        std::optional<shell::SourceLine> line = lines.next();
        if (!line)
            break;
        Origin const origin{kSource, fmt::format("line {}", ++number), number};
        if (number == 1 && line->text.starts_with(kByteOrderMark))
            line->text.erase(0, kByteOrderMark.size());
        goesOn = line->isTooLong ? script.refuse({kSource, origin.place,
                                                  fmt::format("is longer than {} bytes", shell::InputLines::kLongest)})
                                 : script.run(line->text, origin);
    }
    return script.end({kSource, "", number});
}

int runTerminal(Shell& shell) {
    shell::History history(shell::historyFile());
    shell::LineEditor editor(history, [&](std::string_view line) { return complete(line, shell.workspace()); });
    for (std::size_t number = 1; !shell.hasQuit(); ++number) {
        std::optional<std::string> const line = editor.read(shell.prompt());
        if (line)
            shell.run(*line, {"", "", number});
        else if (shell.mayEnd({}))
            break;
    }
    return kExitWell;
}

int work(Options const& options) {
    bool const isTyped =
        options.lines.empty() && !options.isJson && ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
    Shell shell({options.scriptRoots, options.isJson, options.debugs, isTyped});
    if (!options.file.empty())
        shell.open(options.file);
    if (!options.lines.empty())
        return runLines(shell, options);
    return isTyped ? runTerminal(shell) : runInput(shell, options);
}

} // namespace

void addShell(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add(
        "shell",
        "Take the named commands of a process, typed on a terminal or from a script: open, run, stop, undo, save");
    command.option("FILE", options->file, "A process document to open first");
    command
        .option("-c,--command", options->lines,
                "Do this command in place of standard input's; may be given several times")
        .repeated()
        .typeName("COMMAND");
    command
        .option("--scripts", options->scriptRoots,
                "A folder under which scripts are found; the document's own folder always is one")
        .repeated()
        .typeName("DIR");
    command.flag("--debug", options->debugs,
                 "Let blocks with a break point open Python's debugger, which is typed at on a terminal; with -c it "
                 "reads standard input");
    command.flag("--keep-going", options->goesOn, "Go on after a command of a script that fails");
    command.flag("--json", options->isJson, "Print one line of JSON for each command in place of its text");
    command.footer(
        "A line is the name of a command and its arguments; quotes keep blanks together, # begins a comment.\n"
        "Say help for all commands. A script ends at the first command that fails.\n"
        "\n"
        "Example:\n"
        "  flowmere shell beam.xml -c 'Stop At Check' -c 'Execution Begin' -c 'Save Project As out.xml'");
    command.work([options, &result] { result.exitCode = work(*options); });
}

} // namespace flowmere::host
