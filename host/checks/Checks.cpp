#include "host/checks/Checks.h"

#include "host/Text.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

namespace flowmere::host {

namespace {

constexpr std::size_t kBehindVariables = std::numeric_limits<std::size_t>::max();

} // namespace

Check::Check(Document& checked, Scripts& python) : document(checked), scripts(python), tree(checked.process()) {}

void Check::addToNode(std::size_t node, std::string_view rule, std::string message, std::string script, int line) {
    m_entries.push_back({node, 0, 0, {tree.nodes()[node].path, rule, std::move(message), std::move(script), line}});
}

void Check::addToVariable(std::size_t variable, std::string_view rule, std::string message) {
    TreeVariable const& about = tree.variables()[variable];
    m_entries.push_back({about.owner, variable + 1, 0, {about.path, rule, std::move(message), {}, 0}});
}

void Check::addToContent(std::size_t node, std::string_view rule, std::string message) {
    TreeNode const& about = tree.nodes()[node];
    m_entries.push_back({about.last, kBehindVariables, -about.level, {about.path, rule, std::move(message), {}, 0}});
}

std::optional<Check::Script> Check::scriptOf(TreeNode const& node) {
    if (node.block == nullptr || node.block->GetScriptType() != EScriptType_PYTHON)
        return std::nullopt;
    std::string const name = utf8(node.block->GetScriptName());
    auto const file = document.scriptFile(name);
    if (!file)
        return std::nullopt;
    return Script{*file, &scripts.factsOf(*file, partsOf(name).back())};
}

std::vector<Finding> Check::take() {
    auto const order = [](Entry const& entry) {
        return std::tie(entry.node, entry.place);
    };
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [&](Entry const& left, Entry const& right) { return order(left) < order(right); });
    std::vector<Finding> findings;
    findings.reserve(m_entries.size());
    for (Entry& entry : m_entries)
        findings.push_back(std::move(entry.finding));
    m_entries.clear();
    return findings;
}

std::vector<Finding> findingsOf(Document& document, Scripts& scripts) {
    Check check(document, scripts);
    checkIds(check);
    checkNames(check);
    checkScripts(check);
    checkGrips(check);
    checkFlow(check);
    checkLinks(check);
    checkReading(check);
    return check.take();
}

} // namespace flowmere::host
