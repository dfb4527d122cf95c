#include "host/commands/Run.h"

#include "host/basics/Command.h"
#include "host/session/Options.h"
#include "host/session/RunSession.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstddef>
#include <memory>
#include <string>

namespace flowmere::host {

namespace {

// Far beyond any run, and within what clocks count.
constexpr double kLongest = 1e8;

std::string checkSeconds(std::string const& text) {
    double seconds = 0;
    if (CLI::detail::lexical_cast(text, seconds) && std::isfinite(seconds) && seconds > 0 && seconds <= kLongest)
        return {};
    return "Value " + text + " is no number of seconds above 0";
}

} // namespace

void addRun(CLI::App& app, Result& result) {
    auto const options = std::make_shared<RunOptions>();
    CLI::App* const command = app.add_subcommand("run", "Run the process of a document, block by block");
    CLI::Option* const file =
        command->add_option("FILE", options->file, "The process document; with --resume that of the journal");
    // One value each time, and any number of times.
    auto const repeated = [](CLI::Option* option) {
        return option->expected(1)->allow_extra_args(false)->take_all();
    };
    repeated(command->add_option("--scripts", options->scriptRoots,
                                 "A folder under which scripts are found; the document's own folder always is one"))
        ->type_name("DIR");
    repeated(
        command->add_option("--set", options->values, "Give a variable a value before the run, as in Loads.Span=6.5"))
        ->type_name("PATH=VALUE");
    CLI::Option* const breaks = repeated(command->add_option(
        "--break", options->breaks,
        "Stop in front of a block, named by its path or by an identifier of its own; with --debug open the debugger "
        "there"));
    breaks->type_name("BLOCK");
    CLI::Option* const from =
        command->add_option("--from", options->from, "Begin at this block, with the values of the document");
    from->type_name("BLOCK");
    CLI::Option* const until = command->add_option(
        "--until", options->until, "Stop once this block has run, and a sub-process once all in it has run");
    until->type_name("BLOCK");
    CLI::Option* const only =
        command->add_option("--only", options->only, "Run this block alone; a sub-process with all that is in it");
    only->type_name("BLOCK");
    CLI::Option* const step =
        repeated(command->add_option("--step", options->steps,
                                     "Run so many blocks more after the run; without --break and --until, and before "
                                     "any --undo, run so many blocks and no more"))
            ->type_name("N")
            ->check(CLI::Range(1, 1000000));
    CLI::Option const* const undo =
        repeated(command->add_option("--undo", options->undos, "Undo so many blocks after the run, the last one first"))
            ->type_name("N")
            ->check(CLI::Range(1, 1000000));
    CLI::Option* const timeout =
        command->add_option("--timeout", options->timeout, "Let a block fail that takes longer than so many seconds")
            ->type_name("SECONDS")
            ->check(CLI::Validator(checkSeconds, ""));
    CLI::Option* const journal =
        command
            ->add_option("--journal", options->journal,
                         "Keep a journal of the run, from which it can be resumed; a file of its own")
            ->type_name("FILE");
    CLI::Option* const resume =
        command->add_option("--resume", options->resume, "Go on with the run of this journal where it broke off");
    resume->type_name("JOURNAL");
    command->add_option("--save", options->saveTo, "Write the document to a file after the run")->type_name("OUT");
    command->add_option("--report", options->reportTo, "Write a page about the run, for a browser")
        ->type_name("OUT.html");
    CLI::Option* const debug = command->add_flag(
        "--debug", options->isDebugged, "Open Python's debugger at blocks with a breakpoint, and where a block fails");
    CLI::Option* const json =
        command->add_flag("--json", options->json, "Print one JSON document in place of the lines");
    only->excludes(from)->excludes(until)->excludes(breaks)->excludes(step)->excludes(resume);
    from->excludes(resume);
    journal->excludes(resume);
    debug->excludes(timeout)->excludes(json);
    command->footer("--step and --undo may be given several times, and act in the order given.\n"
                    "Exit code: 0 all went well, 1 a block failed, 2 wrong use or a file that cannot be read or\n"
                    "written, 130 interrupted.\n"
                    "\n"
                    "Example:\n"
                    "  flowmere run beam.xml --set Loads.Span=6.5 --journal beam.jsonl --save out.xml\n"
                    "  flowmere run --resume beam.jsonl --save out.xml");
    command->callback([command, options, file, resume, step, undo, &result] {
        if (file->count() == 0 && resume->count() == 0)
            throw CLI::RequiredError("FILE");
        std::size_t steps = 0;
        std::size_t undos = 0;
        for (CLI::Option const* const option : command->parse_order()) {
            if (option == step)
                options->moves.push_back({RunMove::Kind::Step, options->steps.at(steps++)});
            else if (option == undo)
                options->moves.push_back({RunMove::Kind::Undo, options->undos.at(undos++)});
        }
        result.exitCode = RunSession(*options).work();
    });
}

} // namespace flowmere::host
