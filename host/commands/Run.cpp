#include "host/commands/Run.h"

#include "host/basics/Command.h"
#include "host/session/Options.h"
#include "host/session/RunSession.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <system_error>

namespace flowmere::host {

namespace {

// Far beyond any run, and within what clocks count.
constexpr double kLongest = 1e8;

std::string checkSeconds(std::string const& text) {
    double seconds = 0;
    char const* const end = text.data() + text.size();
    std::from_chars_result const read = std::from_chars(text.data(), end, seconds);
    if (read.ec == std::errc() && read.ptr == end && std::isfinite(seconds) && seconds > 0 && seconds <= kLongest)
        return {};
    return "Value " + text + " is no number of seconds above 0";
}

} // namespace

void addRun(Command const& program, Result& result) {
    auto const options = std::make_shared<RunOptions>();
    Command const command = program.add("run", "Run the process of a document, block by block");
    Option const file =
        command.option("FILE", options->file, "The process document; with --resume that of the journal");
    command
        .option("--scripts", options->scriptRoots,
                "A folder under which scripts are found; the document's own folder always is one")
        .repeated()
        .typeName("DIR");
    command.option("--set", options->values, "Give a variable a value before the run, as in Loads.Span=6.5")
        .repeated()
        .typeName("PATH=VALUE");
    Option const breaks =
        command
            .option(
                "--break", options->breaks,
                "Stop in front of a block, named by its path or by an identifier of its own; with --debug open the debugger "
                "there")
            .repeated();
    breaks.typeName("BLOCK");
    Option const from = command.option("--from", options->from, "Begin at this block, with the values of the document");
    from.typeName("BLOCK");
    Option const until = command.option("--until", options->until,
                                        "Stop once this block has run, and a sub-process once all in it has run");
    until.typeName("BLOCK");
    Option const only =
        command.option("--only", options->only, "Run this block alone; a sub-process with all that is in it");
    only.typeName("BLOCK");
    Option const step = command
                            .option("--step", options->steps,
                                    "Run so many blocks more after the run; without --break and --until, and before "
                                    "any --undo, run so many blocks and no more")
                            .repeated()
                            .typeName("N")
                            .range(1, 1000000);
    Option const undo =
        command.option("--undo", options->undos, "Undo so many blocks after the run, the last one first")
            .repeated()
            .typeName("N")
            .range(1, 1000000);
    Option const timeout =
        command.option("--timeout", options->timeout, "Let a block fail that takes longer than so many seconds")
            .typeName("SECONDS")
            .check(checkSeconds);
    Option const journal = command
                               .option("--journal", options->journal,
                                       "Keep a journal of the run, from which it can be resumed; a file of its own")
                               .typeName("FILE");
    Option const resume =
        command.option("--resume", options->resume, "Go on with the run of this journal where it broke off");
    resume.typeName("JOURNAL");
    command.option("--save", options->saveTo, "Write the document to a file after the run").typeName("OUT");
    command.option("--report", options->reportTo, "Write a page about the run, for a browser").typeName("OUT.html");
    Option const debug = command.flag("--debug", options->isDebugged,
                                      "Open Python's debugger at blocks with a breakpoint, and where a block fails");
    Option const json = command.flag("--json", options->json, "Print one JSON document in place of the lines");
    only.excludes(from).excludes(until).excludes(breaks).excludes(step).excludes(resume);
    from.excludes(resume);
    journal.excludes(resume);
    debug.excludes(timeout).excludes(json);
    command.footer("--step and --undo may be given several times, and act in the order given.\n"
                   "Exit code: 0 all went well, 1 a block failed, 2 wrong use or a file that cannot be read or\n"
                   "written, 130 interrupted.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere run beam.xml --set Loads.Span=6.5 --journal beam.jsonl --save out.xml\n"
                   "  flowmere run --resume beam.jsonl --save out.xml");
    command.work([command, options, file, resume, step, undo, &result] {
        if (file.count() == 0 && resume.count() == 0)
            missArgument("FILE");
        std::size_t steps = 0;
        std::size_t undos = 0;
        for (Option const option : command.given()) {
            if (option == step)
                options->moves.push_back({RunMove::Kind::Step, options->steps.at(steps++)});
            else if (option == undo)
                options->moves.push_back({RunMove::Kind::Undo, options->undos.at(undos++)});
        }
        result.exitCode = RunSession(*options).work();
    });
}

} // namespace flowmere::host
