#include "host/commands/Completion.h"

#include "host/basics/Text.h"
#include "host/help/HelpPages.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace flowmere::host {

namespace {

struct Options {
    std::string shell;
    bool json = false;
};

int show(CLI::App const& app, Options const& options) {
    std::string const script = completionScript(commandText(app), options.shell);
    printOut(options.json ? jsonText({{"shell", options.shell}, {"script", script}}) : script);
    return kExitWell;
}

} // namespace

void addCompletion(CLI::App& app, Result& result) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("completion", "Print a script by which a shell completes command lines");
    command->add_option("SHELL", options->shell, "The shell")->required()->check(CLI::IsMember(completionShells()));
    command->add_flag("--json", options->json, "Print the script inside a JSON document");
    command->footer("It completes commands, options, their values, and files. Where the program is installed, shells\n"
                    "find it by themselves.\n"
                    "\n"
                    "Example:\n"
                    "  source <(flowmere completion bash)");
    command->callback([&app, options, &result] { result.exitCode = show(app, *options); });
}

} // namespace flowmere::host
