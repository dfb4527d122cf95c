#include "flowmere/Flowmere.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>

namespace {

std::string versionLine() {
    return fmt::format("flowmere {} (Xerces-C {}, Python {})", flowmere::versionText(), flowmere::xercesVersionText(),
                       flowmere::pythonVersionText());
}

} // namespace

int main(int argc, char** argv) {
    constexpr int kWrongUse = 2;

    CLI::App app{"Runs, shows, checks and converts engineering processes without the desktop application"};
    app.set_version_flag("--version", versionLine);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : kWrongUse;
    }
    fmt::print("{}", app.help());
    return 0;
}
