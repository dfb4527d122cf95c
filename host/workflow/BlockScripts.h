#pragma once

// The Python files of a block on their way into a workflow folder.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// A module that a script imports.
struct ScriptModule {
    std::filesystem::path source;
    // Where it goes, from the folder of the block's scripts, or for one that is imported by its full name from the
    // top folder of the workflow.
    std::filesystem::path target;
    bool isFromTop = false;
};

struct BlockScript {
    std::string code;
    std::vector<ScriptModule> modules; // each once
    // Relative imports that lead nowhere, and those that leave the folder: ".units".
    std::vector<std::string> missing;
};

// The script of a block and all modules that it imports from beside it, or from below the roots of the scripts (which
// `find` knows by their dotted names), and those that they import.
//
// `className` is the class of the script as it stands, `name` the block's: the engine takes both for one, so that a
// script with another class gets a line behind it that gives the class its second name.
BlockScript readBlockScript(std::filesystem::path const& file, std::string const& className, std::string const& name,
                            std::function<std::optional<std::filesystem::path>(std::string const&)> const& find);

// One name that a script imports: level 0 is an import by full name, level 1 from the script's own package, and so on
// upwards; `names` are those behind "from X import", which may be modules too.
struct Import {
    bool operator==(Import const&) const = default;

    int level = 0;
    std::string module;
    std::vector<std::string> names;
};

// The import statements of a script, each line by itself: also those inside of functions.
std::vector<Import> importsOf(std::string_view code);

} // namespace flowmere::host
