#include "host/commands/Completion.h"

#include "host/basics/Text.h"
#include "host/help/HelpPages.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace flowmere::host {

namespace {

struct Options {
    std::string shell;
    bool json = false;
};

int show(Command const& program, Options const& options) {
    std::string const script = completionScript(program.text(), options.shell);
    printOut(options.json ? jsonText({{"shell", options.shell}, {"script", script}}) : script);
    return kExitWell;
}

} // namespace

void addCompletion(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("completion", "Print a script by which a shell completes command lines");
    command.option("SHELL", options->shell, "The shell").required().oneOf(completionShells());
    command.flag("--json", options->json, "Print the script inside a JSON document");
    command.footer("It completes commands, options, their values, and files. Where the program is installed, shells\n"
                   "find it by themselves.\n"
                   "\n"
                   "Example:\n"
                   "  source <(flowmere completion bash)");
    command.work([program, options, &result] { result.exitCode = show(program, *options); });
}

} // namespace flowmere::host
