#include "host/checks/Checks.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <map>
#include <unordered_set>

namespace flowmere::host {

namespace {

struct NoCase {
    bool operator()(TuString const& left, TuString const& right) const { return left.CompareNoCase(right) < 0; }
};

void checkChildren(Check& check, TreeNode const& container) {
    std::map<TuString, std::size_t, NoCase> seen;
    for (std::size_t const child : container.children) {
        TreeNode const& node = check.tree.nodes()[child];
        if (node.id.empty())
            continue;
        auto const [first, isNew] = seen.emplace(TuString(node.node->GetNodeId()), child);
        if (isNew)
            continue;
        std::string const& other = check.tree.nodes()[first->second].id;
        // The engine refuses these: told by a rule of its own.
        if (container.isOfWorkflow && other == node.id)
            continue;
        check.addToNode(
            child, kDuplicateId,
            other == node.id
                ? fmt::format("the id \"{}\" stands more than once here: links and connectors find only one", node.id)
                : fmt::format("the id \"{}\" differs from \"{}\" only in case: connectors find only one", node.id,
                              other));
    }
}

void checkVariables(Check& check, TreeNode const& owner) {
    std::unordered_set<std::string_view> seen;
    for (std::size_t index = owner.firstVariable; index < owner.firstVariable + owner.variableCount; ++index) {
        TreeVariable const& variable = check.tree.variables()[index];
        if (!seen.insert(variable.name).second)
            check.addToVariable(
                index, kDuplicateVariable,
                fmt::format("the name \"{}\" stands more than once here: the first is found, never this one",
                            variable.name));
    }
}

} // namespace

void checkIds(Check& check) {
    for (TreeNode const& node : check.tree.nodes()) {
        checkChildren(check, node);
        checkVariables(check, node);
    }
}

} // namespace flowmere::host
