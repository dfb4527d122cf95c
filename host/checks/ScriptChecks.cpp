#include "host/checks/Checks.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// A file as a message names it: below the folder where the user is, or else whole.
std::string shownPath(fs::path const& file) {
    std::error_code error;
    fs::path const here = fs::current_path(error);
    fs::path const relative = error ? file : file.lexically_relative(here);
    bool const isBelow = !relative.empty() && *relative.begin() != "..";
    return (isBelow ? relative : file).string();
}

std::string place(fs::path const& file, int line) {
    return line > 0 ? fmt::format("{}:{}", shownPath(file), line) : shownPath(file);
}

void addSyntax(Check& check, std::size_t index, fs::path const& file, ScriptFacts const& facts) {
    check.addToNode(index, kScriptSyntax, fmt::format("{}: {}", place(file, facts.errorLine), facts.error),
                    file.string(), facts.errorLine);
}

// Whether a module that the script imports from its own package is there: a file, a folder or a library of any kind.
bool isThere(Check& check, std::string const& scriptName, fs::path const& file, RelativeImport const& import) {
    std::vector<std::string> const own = partsOf(scriptName);
    std::vector<std::string> const wanted = partsOf(import.module);
    std::string name;
    fs::path folder = file.parent_path();
    for (std::size_t place = 0; place + static_cast<std::size_t>(import.level) < own.size(); ++place)
        name += own[place] + ".";
    if (check.scriptFile(name + import.module))
        return true;
    for (int level = 1; level < import.level; ++level)
        folder = folder.parent_path();
    for (std::size_t place = 0; place + 1 < wanted.size(); ++place)
        folder /= wanted[place];
    return check.hasModule(folder, wanted.back());
}

// The modules beside the script that it takes names from.
void checkImports(Check& check, std::size_t index, std::string const& scriptName, fs::path const& file,
                  ScriptFacts const& facts) {
    auto const depth = static_cast<int>(partsOf(scriptName).size()) - 1;
    for (RelativeImport const& import : facts.relativeImports) {
        auto const add = [&](std::string const& cause) {
            check.addToNode(index, kScriptImport, fmt::format("{}: {}", place(file, import.line), cause), file.string(),
                            import.line);
        };
        if (import.level > depth) {
            add(depth == 0
                    ? fmt::format("imports relative to its package, and the script name \"{}\" has none", scriptName)
                    : fmt::format("imports from above the packages of the script name \"{}\"", scriptName));
            return;
        }
        if (!import.module.empty() && !isThere(check, scriptName, file, import))
            add(fmt::format("imports {}{}, and there is no such module",
                            std::string(static_cast<std::size_t>(import.level), '.'), import.module));
    }
}

void checkFile(Check& check, std::size_t index, Check::Script const& script) {
    std::string const& name = script.name;
    ScriptFacts const& facts = *script.facts;
    if (!facts.error.empty())
        addSyntax(check, index, script.file, facts);
    // The engine calls functions of the module, and finds what that imports where the program cannot look.
    if (check.document.isWorkflowFolder())
        return;
    // The companion, which a run loads first wherever there is one.
    std::string const companionClass = partsOf(name).back() + "Block";
    if (auto const companion = check.scriptFile(name + "Block"))
        if (ScriptFacts const& found = check.scripts.factsOf(*companion, companionClass); !found.error.empty())
            addSyntax(check, index, *companion, found);
    if (!facts.error.empty())
        return;
    if (!facts.hasClass)
        check.addToNode(index, kScriptClass,
                        fmt::format("{}: has no class {}", shownPath(script.file), partsOf(name).back()),
                        script.file.string());
    checkImports(check, index, name, script.file, facts);
}

} // namespace

void checkScripts(Check& check) {
    for (std::size_t index = 0; index < check.tree.nodes().size(); ++index) {
        TreeNode const& node = check.tree.nodes()[index];
        if (node.block == nullptr || node.parent == Tree::kNone)
            continue;
        if (check.scriptState(index) == ScriptState::Missing) {
            std::string const name = check.document.scriptName(*node.block);
            check.addToNode(index, kMissingScript,
                            name.empty() || name == node.id
                                ? fmt::format("there is no script {}, and a {} does nothing without one", node.id,
                                              kindName(node.node->GetNodeType()))
                                : fmt::format("there is no script {}", name));
            continue;
        }
        if (Check::Script const* const script = check.scriptOf(index))
            checkFile(check, index, *script);
    }
}

} // namespace flowmere::host
