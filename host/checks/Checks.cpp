#include "host/checks/Checks.h"

#include "host/basics/Text.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>
#include <tuple>
#include <utility>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kBehindVariables = std::numeric_limits<std::size_t>::max();

// Suggestions compare so many names in any document, and so many more for each of its nodes and variables.
constexpr std::size_t kComparedAlways = 10000;
constexpr std::size_t kComparedOfEach = 5;

} // namespace

Check::Check(Document& checked, Scripts& python)
    : document(checked), scripts(python), tree(checked.process()), m_known(tree.nodes().size()) {}

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

Check::Known const& Check::known(std::size_t node) {
    std::optional<Known>& known = m_known[node];
    if (known)
        return *known;
    known.emplace();
    CFCBlockNode& block = *tree.nodes()[node].block;
    if (block.GetScriptType() != EScriptType_PYTHON)
        return *known;
    std::string const name = document.scriptName(block);
    if (auto const& file = document.isWorkflowFolder() ? document.scriptFile(block) : scriptFile(name)) {
        known->state = ScriptState::Found;
        known->script = {name, *file, &scripts.factsOf(*file, partsOf(name).back())};
    } else {
        known->state = document.scriptState(block);
    }
    return *known;
}

Check::Script const* Check::scriptOf(std::size_t node) {
    if (tree.nodes()[node].block == nullptr)
        return nullptr;
    auto const& script = known(node).script;
    return script ? &*script : nullptr;
}

ScriptState Check::scriptState(std::size_t node) {
    return known(node).state;
}

std::optional<fs::path> const& Check::scriptFile(std::string const& name) {
    auto entry = m_files.find(name);
    if (entry == m_files.end())
        entry = m_files.emplace(name, document.scriptFile(name)).first;
    return entry->second;
}

bool Check::hasModule(fs::path const& folder, std::string const& name) {
    auto const [entry, isNew] = m_modules.try_emplace(folder.string());
    if (isNew) {
        std::error_code error;
        for (fs::directory_iterator place(folder, error), end; !error && place != end; place.increment(error)) {
            std::string const found = place->path().filename().string();
            entry->second.insert(found.substr(0, found.find('.')));
        }
    }
    return entry->second.count(name) > 0;
}

std::string Check::suggest(std::string const& typed, std::size_t count,
                           std::function<std::vector<std::string>()> const& known) {
    std::size_t const most = kComparedAlways + kComparedOfEach * (tree.nodes().size() + tree.variables().size());
    if (m_compared + count > most)
        return {};
    m_compared += count;
    return suggestion(typed, known());
}

std::string Check::suggestTarget(TreeVariable const& variable) {
    std::string const& path = variable.linkPath;
    auto const pathsOf = [&](std::size_t first, std::size_t count) {
        return [this, &variable, first, count] {
            std::vector<std::string> known;
            for (std::size_t index = first; index < first + count; ++index)
                if (tree.variables()[index].data != variable.data)
                    known.push_back(tree.variables()[index].path);
            return known;
        };
    };
    if (m_nodeOfPath.empty())
        for (std::size_t node = 0; node < tree.nodes().size(); ++node)
            m_nodeOfPath.emplace(tree.nodes()[node].path, node);
    auto const dot = path.rfind('.');
    std::string_view const owner =
        dot == std::string::npos ? std::string_view() : std::string_view(path).substr(0, dot);
    if (auto const found = m_nodeOfPath.find(owner); found != m_nodeOfPath.end()) {
        TreeNode const& node = tree.nodes()[found->second];
        std::string const near = suggest(path, node.variableCount, pathsOf(node.firstVariable, node.variableCount));
        if (!near.empty())
            return near;
    }
    return suggest(path, tree.variables().size(), pathsOf(0, tree.variables().size()));
}

bool Check::isPartlyKnown(std::size_t container) {
    if (!m_partlyKnown) {
        m_partlyKnown.emplace();
        for (CFCWorkflowFinding const& finding : document.workflowFindings()) {
            std::size_t const node = finding.node != nullptr ? tree.indexOf(finding.node) : 0;
            if (node == Tree::kNone)
                continue;
            if (isUnreadNode(finding))
                m_partlyKnown->insert(node);
            else if (finding.kind == CFCWorkflowFinding::ElementLost && tree.nodes()[node].parent != Tree::kNone)
                m_partlyKnown->insert(tree.nodes()[node].parent);
        }
    }
    return m_partlyKnown->count(container) > 0;
}

bool Check::hasFarTransitions() {
    auto const isFar = [](TreeNode const& node) {
        CFCBPMBlockData* const task = node.isOfWorkflow ? node.node->GetBPMBlockData() : nullptr;
        IFCNode* const parent = node.node->GetParentNode();
        if (task == nullptr || parent == nullptr)
            return false;
        CFCTransitionList& list = *task->GetTransitionList();
        for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
            if (CFCTransitionData* const transition = list.GetNext(place))
                if (utf8(transition->GetTransitionTo()).find('/') != std::string::npos &&
                    parent->FindNodeSimple(transition->GetTransitionTo()) == nullptr)
                    return true;
        return false;
    };
    if (!m_hasFarTransitions)
        m_hasFarTransitions = std::any_of(tree.nodes().begin(), tree.nodes().end(), isFar);
    return *m_hasFarTransitions;
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
    checkWorkflow(check);
    return check.take();
}

} // namespace flowmere::host
