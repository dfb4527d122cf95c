#include "host/checks/Checks.h"

#include "host/basics/Text.h"
#include "host/document/Findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace flowmere::host {

namespace {

// A longer loop is told by its first variables.
constexpr std::size_t kShownOfLoop = 10;

std::string loopText(Check& check, std::vector<std::size_t> const& loop) {
    auto const& variables = check.tree.variables();
    std::string text = variables[loop.front()].path;
    for (std::size_t place = 1; place < loop.size() && place < kShownOfLoop; ++place)
        text += " -> " + variables[loop[place]].path;
    if (loop.size() > kShownOfLoop)
        text += fmt::format(" -> {} more", loop.size() - kShownOfLoop);
    return text + " -> " + variables[loop.front()].path;
}

// One finding for a loop, at the first of its variables.
void checkLoops(Check& check) {
    auto const& variables = check.tree.variables();
    std::vector<std::size_t> seenFrom(variables.size(), Tree::kNone);
    for (std::size_t first = 0; first < variables.size(); ++first) {
        std::size_t at = first;
        while (at != Tree::kNone && seenFrom[at] == Tree::kNone) {
            seenFrom[at] = first;
            at = variables[at].target;
        }
        if (at == Tree::kNone || seenFrom[at] != first)
            continue;
        std::size_t lowest = at;
        for (std::size_t next = variables[at].target; next != at; next = variables[next].target)
            lowest = std::min(lowest, next);
        std::vector<std::size_t> loop{lowest};
        for (std::size_t next = variables[lowest].target; next != lowest; next = variables[next].target)
            loop.push_back(next);
        check.addToVariable(lowest, kLinkLoop,
                            loop.size() == 1 ? "links to itself" : "the links come back: " + loopText(check, loop));
    }
}

// A variable that asks for one of the level above, and found none when the document was read.
void checkScope(Check& check, std::size_t index) {
    TreeVariable const& variable = check.tree.variables()[index];
    EScopeType const scope = variable.data->GetScopeType();
    if (scope != EScopeType_Parent && scope != EScopeType_Global)
        return;
    // What a variable of the process itself names is its own affair: there is nothing above it.
    if (check.tree.nodes()[variable.owner].parent == Tree::kNone)
        return;
    std::string const value = utf8(variable.data->GetValue());
    std::string names = "\"" + variable.name + "\"";
    if (!value.empty() && value != variable.name)
        names = "\"" + value + "\" nor " + names;
    TreeNode const& above = check.tree.nodes()[check.tree.nodes()[variable.owner].parent];
    std::string const near = check.suggest(value.empty() ? variable.name : value, above.variableCount, [&] {
        std::vector<std::string> known;
        for (std::size_t place = 0; place < above.variableCount; ++place)
            known.push_back(check.tree.variables()[above.firstVariable + place].name);
        return known;
    });
    check.addToVariable(
        index, kDeadLink,
        fmt::format("has the scope {}, and the level above has {}{}{}", utf8(variable.data->GetScopeTypeS()),
                    names.find("\" nor ") == std::string::npos ? "no variable " : "neither a variable ", names, near));
}

} // namespace

void checkLinks(Check& check) {
    auto const& variables = check.tree.variables();
    for (std::size_t index = 0; index < variables.size(); ++index) {
        if (variables[index].linkPath.empty())
            checkScope(check, index);
        else if (variables[index].target == Tree::kNone)
            check.addToVariable(index, kDeadLink,
                                fmt::format("links to \"{}\", and there is no such variable{}",
                                            variables[index].linkPath, check.suggestTarget(variables[index])));
    }
    checkLoops(check);
}

namespace {

// Why a connector was lost.
std::string lossOf(Check& check, TreeNode const& container, CFCReadFinding const& finding) {
    std::string const first = utf8(finding.first);
    std::string const second = utf8(finding.second);
    bool const hasFirst = container.node->FindNodeSimple(finding.first) != nullptr;
    bool const hasSecond = container.node->FindNodeSimple(finding.second) != nullptr;
    if (hasFirst && hasSecond)
        return "it stands in front of its blocks";
    auto const near = [&](std::string const& missing) {
        return check.suggest(missing, container.children.size(), [&] {
            std::vector<std::string> known;
            for (std::size_t const child : container.children)
                if (TreeNode const& node = check.tree.nodes()[child]; !node.id.empty())
                    known.push_back(node.id);
            return known;
        });
    };
    if (hasFirst || hasSecond || first == second) {
        std::string const& missing = hasFirst ? second : first;
        return fmt::format("there is no block \"{}\"{}", missing, near(missing));
    }
    return fmt::format("there are no blocks \"{}\" and \"{}\"{}{}", first, second, near(first), near(second));
}

} // namespace

void checkReading(Check& check) {
    // What else is missing in a workflow folder, the engine does without.
    for (CFCWorkflowFinding const& finding : check.document.workflowFindings())
        if (finding.kind == CFCWorkflowFinding::NestedFolderMissing)
            if (std::size_t const index = check.tree.indexOf(finding.node); index != Tree::kNone)
                check.addToContent(index, kMissingFile,
                                   fmt::format("there is no file \"{}\", which the sub-process needs",
                                               fileOf(finding, check.document.file())));
    for (CFCReadFinding const& finding : check.document.findings()) {
        std::size_t index = check.tree.indexOf(finding.node);
        if (index == Tree::kNone)
            index = 0;
        std::string const first = utf8(finding.first);
        if (finding.kind == CFCReadFinding::FileNotRead) {
            check.addToContent(index, kMissingFile,
                               fmt::format("the linked file \"{}\" {}", first, linkFault(finding)));
            continue;
        }
        check.addToContent(index, kMissingConnectorBlock,
                           fmt::format("the connector from \"{}\" to \"{}\" is lost: {}", first, utf8(finding.second),
                                       lossOf(check, check.tree.nodes()[index], finding)));
    }
}

} // namespace flowmere::host
