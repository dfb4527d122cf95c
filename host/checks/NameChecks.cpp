#include "host/checks/Checks.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

namespace flowmere::host {

namespace {

std::string fault(Check& check, std::string_view what, std::string const& name) {
    if (check.scripts.isKeyword(name))
        return fmt::format("{} \"{}\" is a keyword of Python", what, name);
    return fmt::format("{} \"{}\" is no Python name", what, name);
}

void checkBlock(Check& check, std::size_t index) {
    CFCBlockNode& block = *check.tree.nodes()[index].block;
    if (check.scriptState(index) == ScriptState::None)
        return;
    std::string const& id = check.tree.nodes()[index].id;
    std::string const name = check.document.scriptName(block);
    if (check.document.isWorkflowFolder()) {
        // A file beside a block does no harm by its name: only what the engine calls must have one.
        if (*block.GetBPMBlockData()->GetModulePath() == L'\0')
            return;
    } else if (!check.scripts.isIdentifier(id)) {
        check.addToNode(index, kNotIdentifier, fault(check, "the id", id));
    }
    // A nameless script takes the id as its name.
    if (name.empty() || name == id)
        return;
    // The module path of a block outside of an execution root begins with a point.
    bool const hasPoint = check.document.isWorkflowFolder() && name.starts_with('.');
    for (std::string const& part : partsOf(hasPoint ? std::string_view(name).substr(1) : name)) {
        if (check.scripts.isIdentifier(part))
            continue;
        std::string const message =
            part == name ? fault(check, "the script name", name)
                         : fault(check, "the part", part) + fmt::format(", in the script name \"{}\"", name);
        check.addToNode(index, kNotIdentifier, message);
        return;
    }
}

} // namespace

void checkNames(Check& check) {
    for (std::size_t index = 0; index < check.tree.nodes().size(); ++index)
        if (check.tree.nodes()[index].block != nullptr && check.tree.nodes()[index].parent != Tree::kNone)
            checkBlock(check, index);
    for (std::size_t index = 0; index < check.tree.variables().size(); ++index)
        if (std::string const& name = check.tree.variables()[index].name; !check.scripts.isIdentifier(name))
            check.addToVariable(index, kNotIdentifier, fault(check, "the name", name));
}

} // namespace flowmere::host
