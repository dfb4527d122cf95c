// What the engine of workflows refuses, or runs in another way than its author means.

#include "host/checks/Checks.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace flowmere::host {

namespace {

constexpr std::size_t kNone = Tree::kNone;

// A transition, which the engine looks up by its name and by that of its target.
struct Step {
    std::string name;
    std::string to;
    std::size_t target = kNone; // index of the node
};

// Letters of ASCII as small ones: where the engine finds no name, one that differs in case is meant.
std::string folded(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

bool isPriority(std::string const& text) {
    constexpr std::string_view kWords[] = {"highest", "high", "normal", "low", "lowest"};
    if (std::find(std::begin(kWords), std::end(kWords), folded(text)) != std::end(kWords))
        return true;
    std::string_view digits = text;
    if (digits.starts_with('+') && !digits.substr(1).starts_with('-'))
        digits.remove_prefix(1);
    int number = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size();
}

// The records of a typed list.
std::vector<CFCActionData*> recordsOf(CFCNodeList& list) {
    std::vector<CFCActionData*> records;
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
        if (auto* const record = dynamic_cast<CFCActionData*>(list.GetNextNode(place)))
            records.push_back(record);
    return records;
}

std::vector<Step> stepsOf(TreeNode const& node) {
    std::vector<Step> steps;
    CFCBPMBlockData* const task = node.node->GetBPMBlockData();
    if (task == nullptr)
        return steps;
    CFCTransitionList& list = *task->GetTransitionList();
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
        if (CFCTransitionData* const data = list.GetNext(place))
            steps.push_back({utf8(data->GetTransitionName()), utf8(data->GetTransitionTo())});
    return steps;
}

// Follows the tokens of one scope. A fork gives each of its branches a token, and a join gathers those of one fork: a
// node behind a fork belongs to a branch of it, and one behind its join to what the fork belongs to.
class ForkWalk {
public:
    ForkWalk(Check& check, std::vector<std::vector<Step>> const& steps, std::size_t container)
        : m_check(check), m_nodes(check.tree.nodes()), m_steps(steps), m_children(m_nodes[container].children) {
        m_branches.push_back({}); // of what stands behind no fork
        for (std::size_t const child : m_children)
            m_branchOf.emplace(child, kNone);
    }

    void run(std::size_t first) {
        if (std::none_of(m_children.begin(), m_children.end(),
                         [this](std::size_t child) { return kindOf(child) == eShapeType_Fork; }))
            return;
        if (first != kNone)
            walkFrom(first);
        // What the flow does not reach: from its beginnings, and then from anywhere.
        std::unordered_set<std::size_t> led;
        for (std::size_t const child : m_children)
            for (Step const& step : m_steps[child])
                led.insert(step.target);
        for (std::size_t const child : m_children)
            if (m_branchOf[child] == kNone && led.count(child) == 0)
                walkFrom(child);
        for (std::size_t const child : m_children)
            if (m_branchOf[child] == kNone)
                walkFrom(child);
        judge();
    }

private:
    static constexpr std::size_t kOutside = 0;

    struct Branch {
        std::size_t fork = kNone;
        std::size_t above = kOutside;    // the branch that the fork stands in
        std::size_t same = kNone;        // the branch that this one has run into; kNone for none
        std::vector<std::size_t> leaves; // nodes of other branches that it goes on to without a join
        bool isOpen = false;             // not all of it is known, or a fork in it has no join of its own
    };
    struct Fork {
        std::size_t node = kNone;
        std::vector<std::size_t> branches;                         // one for each transition
        std::vector<std::pair<std::size_t, std::size_t>> arrivals; // join, branch
    };

    int kindOf(std::size_t node) const { return m_nodes[node].node->GetNodeType(); }

    std::size_t find(std::size_t branch) {
        std::size_t root = branch;
        while (m_branches[root].same != kNone)
            root = m_branches[root].same;
        while (m_branches[branch].same != kNone)
            branch = std::exchange(m_branches[branch].same, root);
        return root;
    }

    void walkFrom(std::size_t first) {
        m_open.emplace_back(first, kOutside);
        while (!m_open.empty()) {
            auto const [node, branch] = m_open.back();
            m_open.pop_back();
            reach(node, find(branch));
        }
    }

    // The token of a branch comes to a node.
    void reach(std::size_t node, std::size_t branch) {
        auto const place = m_branchOf.find(node);
        if (place == m_branchOf.end())
            return;
        bool const isNew = place->second == kNone;
        if (isNew)
            place->second = branch;
        if (kindOf(node) == eShapeType_Join && branch != kOutside)
            arrive(node, branch);
        else if (isNew && kindOf(node) == eShapeType_Fork)
            divide(node, branch);
        else if (isNew)
            goOn(node, branch);
        else
            meet(node, find(place->second), branch);
    }

    void goOn(std::size_t node, std::size_t branch) {
        for (Step const& step : m_steps[node])
            if (step.target != kNone)
                m_open.emplace_back(step.target, branch);
    }

    // A node belongs to another branch already.
    void meet(std::size_t node, std::size_t other, std::size_t branch) {
        if (other == branch || branch == kOutside)
            return;
        Branch& one = m_branches[branch];
        Branch& two = m_branches[other];
        if (one.fork != two.fork) {
            one.leaves.push_back(node);
            return;
        }
        // Two branches of one fork that meet without a join go the rest of the way together.
        if (two.leaves.size() < one.leaves.size())
            two.leaves.swap(one.leaves);
        two.leaves.insert(two.leaves.end(), one.leaves.begin(), one.leaves.end());
        two.isOpen = two.isOpen || one.isOpen;
        one.leaves.clear();
        one.same = other;
    }

    void arrive(std::size_t join, std::size_t branch) {
        Branch const& arrived = m_branches[branch];
        m_forks[m_forkAt[arrived.fork]].arrivals.emplace_back(join, branch);
        if (m_gathered.insert({join, arrived.fork}).second)
            goOn(join, arrived.above);
    }

    void divide(std::size_t node, std::size_t branch) {
        m_forkAt.emplace(node, m_forks.size());
        Fork& fork = m_forks.emplace_back(Fork{node, {}, {}});
        for (Step const& step : m_steps[node]) {
            fork.branches.push_back(m_branches.size());
            m_branches.push_back({node, branch, kNone, {}, step.target == kNone});
            if (step.target != kNone)
                m_open.emplace_back(step.target, fork.branches.back());
        }
    }

    // Whether a way leads from the node to a join of the fork, or to any join where the fork has none. In a very
    // tangled scope the last questions are not asked, and get the answer that nobody is told of.
    bool leadsToJoin(std::size_t node, std::unordered_set<std::size_t> const& joins) {
        std::unordered_set<std::size_t> seen{node};
        std::vector<std::size_t> open{node};
        while (!open.empty()) {
            std::size_t const at = open.back();
            open.pop_back();
            if (joins.empty() ? kindOf(at) == eShapeType_Join : joins.count(at) > 0)
                return true;
            for (Step const& step : m_steps[at]) {
                if (m_asked++ > kAskedOfEach * m_children.size())
                    return true;
                if (step.target != kNone && seen.insert(step.target).second)
                    open.push_back(step.target);
            }
        }
        return false;
    }

    void judge() {
        // Forks within a branch first: what they tell need not be told of the branch again.
        std::vector<std::pair<std::size_t, std::string>> joinMessages;
        for (std::size_t place = m_forks.size(); place-- > 0;)
            judge(m_forks[place], joinMessages);
        std::reverse(joinMessages.begin(), joinMessages.end());
        for (auto& [join, message] : joinMessages)
            m_check.addToNode(join, kJoinBranches, std::move(message));
    }

    void judge(Fork const& fork, std::vector<std::pair<std::size_t, std::string>>& joinMessages) {
        std::string const& name = m_nodes[fork.node].id;
        // The joins in the order of the file, each with the branches that come to it.
        std::vector<std::pair<std::size_t, std::size_t>> arrivals = fork.arrivals;
        for (auto& [join, branch] : arrivals)
            branch = find(branch);
        std::sort(arrivals.begin(), arrivals.end());
        std::unordered_set<std::size_t> joins;
        for (auto const& [join, branch] : arrivals)
            joins.insert(join);
        std::unordered_map<std::size_t, bool> excused; // by branch
        auto const isExcused = [&](std::size_t branch) {
            auto const [entry, isNew] = excused.emplace(branch, m_branches[branch].isOpen);
            if (isNew && !entry->second)
                entry->second = std::any_of(m_branches[branch].leaves.begin(), m_branches[branch].leaves.end(),
                                            [&](std::size_t node) { return leadsToJoin(node, joins); });
            return entry->second;
        };
        if (joins.empty()) {
            bool const isMeant = std::any_of(fork.branches.begin(), fork.branches.end(),
                                             [&](std::size_t branch) { return !isExcused(find(branch)); });
            if (isMeant || fork.branches.empty()) {
                m_check.addToNode(fork.node, kForkWithoutJoin,
                                  fork.branches.empty() ? "no transition leaves the fork"
                                                        : "no join gathers its branches");
                leaveOpen(fork.node);
            }
            return;
        }
        bool isWhole = true;
        for (auto at = arrivals.begin(); at != arrivals.end();) {
            std::size_t const join = at->first;
            std::unordered_set<std::size_t> come;
            for (; at != arrivals.end() && at->first == join; ++at)
                come.insert(at->second);
            std::vector<std::string> missing;
            for (std::size_t step = 0; step < fork.branches.size(); ++step)
                if (std::size_t const branch = find(fork.branches[step]); come.count(branch) == 0 && !isExcused(branch))
                    missing.push_back(m_steps[fork.node][step].to);
            if (missing.empty())
                continue;
            isWhole = false;
            joinMessages.emplace_back(
                join, fmt::format("does not gather {} of the fork \"{}\"", branchesText(missing), name));
        }
        if (!isWhole)
            leaveOpen(fork.node);
    }

    // What a branch lacks for a fork in it, it does not lack once more.
    void leaveOpen(std::size_t fork) {
        Fork const& entry = m_forks[m_forkAt[fork]];
        if (!entry.branches.empty())
            m_branches[find(m_branches[entry.branches.front()].above)].isOpen = true;
    }

    static std::string branchesText(std::vector<std::string> const& targets) {
        constexpr std::size_t kShown = 5;
        std::string text = targets.size() == 1 ? "the branch to " : "the branches to ";
        for (std::size_t place = 0; place < targets.size() && place < kShown; ++place)
            text += fmt::format("{}\"{}\"",
                                place == 0                    ? ""
                                : place + 1 == targets.size() ? " and "
                                                              : ", ",
                                targets[place]);
        return targets.size() > kShown ? text + fmt::format(" and {} more", targets.size() - kShown) : text;
    }

    static constexpr std::size_t kAskedOfEach = 20;

    struct PairHash {
        std::size_t operator()(std::pair<std::size_t, std::size_t> const& pair) const {
            return std::hash<std::size_t>()(pair.first * 1000003U + pair.second);
        }
    };

    Check& m_check;
    std::vector<TreeNode> const& m_nodes;
    std::vector<std::vector<Step>> const& m_steps;
    std::vector<std::size_t> const& m_children;
    std::vector<Branch> m_branches;
    std::vector<Fork> m_forks;
    std::unordered_map<std::size_t, std::size_t> m_forkAt;   // place among the forks, by node
    std::unordered_map<std::size_t, std::size_t> m_branchOf; // by node of the scope; kNone before any token came
    std::unordered_set<std::pair<std::size_t, std::size_t>, PairHash> m_gathered; // joins, each with a fork's node
    std::vector<std::pair<std::size_t, std::size_t>> m_open;                      // node, branch
    std::size_t m_asked = 0;
};

class WorkflowCheck {
public:
    explicit WorkflowCheck(Check& check)
        : m_check(check), m_nodes(check.tree.nodes()), m_unread(check.document.workflowFindings()) {
        m_isCatalog = check.document.process().GetProjectType() == EProjectType_APPLICATION;
        m_steps.reserve(m_nodes.size());
        for (TreeNode const& node : m_nodes)
            m_steps.push_back(stepsOf(node));
        for (CFCWorkflowFinding const& finding : check.document.workflowFindings()) {
            if (finding.kind == CFCWorkflowFinding::NodeWithoutName && finding.element == L"task")
                m_hasNamelessTask.insert(finding.node);
            if (finding.kind == CFCWorkflowFinding::NestedFolderMissing)
                m_hasNoFolder.insert(finding.node);
        }
    }

    void run() {
        for (std::size_t index = 0; index < m_nodes.size(); ++index) {
            checkNode(index);
            if (isScope(index))
                checkScope(index);
        }
    }

private:
    int kindOf(std::size_t node) const { return m_nodes[node].node->GetNodeType(); }

    // What has nodes of its own: the process, sub-processes and groups, also empty ones.
    bool isScope(std::size_t index) const {
        int const kind = kindOf(index);
        return kind == eShapeType_WorkflowProcess || kind == eShapeType_SuperState || isWorkflowSubProcess(kind) ||
               kind == eShapeType_ApplicationGroup || !m_nodes[index].children.empty();
    }

    // Entered through its start state, in a definition of its own.
    bool isProcess(std::size_t index) const {
        return kindOf(index) == eShapeType_WorkflowProcess || isWorkflowSubProcess(kindOf(index));
    }

    void checkNode(std::size_t index) {
        TreeNode const& node = m_nodes[index];
        CFCBPMBlockData* const task = node.node->GetBPMBlockData();
        if (node.parent != kNone && node.id.find('/') != std::string::npos)
            m_check.addToNode(index, kSlashInName,
                              fmt::format("the name \"{}\" holds a \"/\", which the engine takes for the end of a "
                                          "scope",
                                          node.id));
        if (task == nullptr)
            return;
        checkTask(index, *task);
        checkEvents(index, *task);
        if (kindOf(index) == eShapeType_Fork)
            checkForkNames(index);
    }

    void checkTask(std::size_t index, CFCBPMBlockData& task) {
        int const kind = kindOf(index);
        bool const needsTask = kind == eShapeType_Task || isWorkflowSubProcess(kind) || kind == eShapeType_Application;
        if (needsTask && *task.GetTaskName() == L'\0' && m_hasNamelessTask.count(m_nodes[index].node) == 0)
            m_check.addToNode(index, kNoTask, "has no task: nobody gets anything to do");
        std::string const priority = utf8(task.GetPriority());
        if (!priority.empty() && !isPriority(priority))
            m_check.addToNode(index, kPriority,
                              fmt::format("the priority \"{}\" is neither a number nor one of highest, high, normal, "
                                          "low and lowest",
                                          priority));
    }

    void checkEvents(std::size_t index, CFCBPMBlockData& task) {
        for (CFCActionData* const record : recordsOf(*task.GetScriptEventList()))
            m_check.addToNode(index, kScriptEvent,
                              fmt::format("the event of the script \"{}\" is written without a type, and the engine "
                                          "refuses that",
                                          utf8(record->GetActionName())));
        for (CFCActionData* const record : recordsOf(*task.GetEventList()))
            if (*record->GetActionType() == L'\0')
                m_check.addToNode(index, kEventType,
                                  fmt::format("the event of the action \"{}\" has no type, and the engine refuses that",
                                              utf8(record->GetActionName())));
    }

    void checkForkNames(std::size_t index) {
        std::unordered_set<std::string> seen;
        std::unordered_set<std::string> told;
        for (Step const& step : m_steps[index])
            if (!seen.insert(step.name).second && told.insert(step.name).second)
                m_check.addToNode(
                    index, kForkNames,
                    step.name.empty()
                        ? std::string("several transitions have no name, and the engine keeps one branch of them")
                        : fmt::format("several transitions are named \"{}\", and the engine keeps one branch of them",
                                      step.name));
    }

    void checkScope(std::size_t container) {
        bool const isWhole = findTargets(container);
        std::size_t const start = checkStart(container);
        if (kindOf(container) == eShapeType_SuperState)
            checkEntry(container);
        if (isWhole && !m_check.isPartlyKnown(container)) {
            std::size_t const first = isProcess(container) || m_nodes[container].children.empty()
                                          ? start
                                          : m_nodes[container].children.front();
            ForkWalk(m_check, m_steps, container).run(first);
        }
    }

    using Names = std::unordered_map<std::string_view, std::size_t>;

    // The first node of each name in a scope.
    Names const& namesOf(std::size_t container) {
        auto const [entry, isNew] = m_names.try_emplace(container);
        if (isNew)
            for (std::size_t const child : m_nodes[container].children)
                if (!m_nodes[child].id.empty())
                    entry->second.emplace(m_nodes[child].id, child);
        return entry->second;
    }

    // Which nodes the transitions of the scope lead to. False when some lead out of it.
    bool findTargets(std::size_t container) {
        Names const& named = namesOf(container);
        std::unordered_map<std::string, std::size_t> alike;
        for (std::size_t const child : m_nodes[container].children) {
            std::string const& id = m_nodes[child].id;
            if (id.empty())
                continue;
            alike.emplace(folded(id), child);
            if (named.at(id) != child)
                m_check.addToNode(
                    child, kDuplicateNode,
                    fmt::format("the name \"{}\" stands more than once here, and the engine refuses that", id));
        }
        bool isWhole = true;
        for (std::size_t const child : m_nodes[container].children) {
            if (kindOf(child) == eShapeType_EndState) {
                if (m_steps[child].empty())
                    continue;
                m_check.addToNode(child, kStateTransition,
                                  "a transition leaves the end state, and the engine refuses that");
                // Nothing goes on there, wherever it is written to lead.
                m_steps[child].clear();
                continue;
            }
            for (Step& step : m_steps[child]) {
                if (auto const found = named.find(step.to); found != named.end()) {
                    step.target = found->second;
                    if (kindOf(step.target) == eShapeType_StartState)
                        m_check.addToNode(child, kStateTransition,
                                          fmt::format("a transition goes to the start state \"{}\", and the engine "
                                                      "refuses that",
                                                      step.to));
                    continue;
                }
                if (step.to.find('/') != std::string::npos && !step.to.empty() && isPath(child, step.to)) {
                    isWhole = false;
                    continue;
                }
                if (m_unread.has(m_nodes[container].node, step.to))
                    continue;
                auto const near = alike.find(folded(step.to));
                if (near != alike.end())
                    step.target = near->second;
                m_check.addToNode(child, kUnknownTarget, unknownText(container, step, near != alike.end()));
            }
        }
        return isWhole;
    }

    // Whether a target with slashes names a node: ".." is the scope around, and "/" in front the process.
    bool isPath(std::size_t from, std::string const& to) {
        std::size_t at = m_nodes[from].parent;
        std::string_view rest = to;
        if (rest.starts_with('/')) {
            while (!isProcess(at) && m_nodes[at].parent != kNone)
                at = m_nodes[at].parent;
            rest.remove_prefix(1);
        }
        for (;;) {
            std::size_t const slash = rest.find('/');
            std::string_view const part = rest.substr(0, slash);
            if (part == "..") {
                if (isProcess(at) || m_nodes[at].parent == kNone)
                    return false;
                at = m_nodes[at].parent;
            } else {
                auto const& names = namesOf(at);
                auto const found = names.find(part);
                if (found == names.end())
                    return false;
                at = found->second;
            }
            if (slash == std::string_view::npos)
                return true;
            rest.remove_prefix(slash + 1);
        }
    }

    std::string unknownText(std::size_t container, Step const& step, bool isAlike) {
        if (step.to.empty())
            return "a transition names no node to go to";
        std::string text = fmt::format("a transition goes to \"{}\", and there is no such node beside it", step.to);
        if (isAlike)
            return text + fmt::format("; \"{}\" differs in case", m_nodes[step.target].id);
        return text + m_check.suggest(step.to, m_nodes[container].children.size(), [&] {
            std::vector<std::string> known;
            for (std::size_t const child : m_nodes[container].children)
                if (!m_nodes[child].id.empty())
                    known.push_back(m_nodes[child].id);
            return known;
        });
    }

    // The start state, or kNone.
    std::size_t checkStart(std::size_t container) {
        std::size_t start = kNone;
        for (std::size_t const child : m_nodes[container].children) {
            if (kindOf(child) != eShapeType_StartState)
                continue;
            if (start == kNone)
                start = child;
            else
                m_check.addToNode(
                    child, kStartState,
                    fmt::format("a second start state beside \"{}\", and the engine refuses that", m_nodes[start].id));
        }
        if (start == kNone && isProcess(container) && !m_isCatalog && m_hasNoFolder.count(m_nodes[container].node) == 0)
            m_check.addToNode(container, kStartState, "there is no start state, and the engine cannot begin");
        return start;
    }

    // The engine enters a group at its first child, whatever leads where.
    void checkEntry(std::size_t container) {
        if (m_check.isPartlyKnown(container))
            return;
        auto const& children = m_nodes[container].children;
        if (children.empty()) {
            m_check.addToNode(container, kGroupEntry, "is empty, and the engine enters a group at its first node");
            return;
        }
        std::unordered_set<std::size_t> led;
        for (std::size_t const child : children)
            for (Step const& step : m_steps[child])
                if (step.target != child)
                    led.insert(step.target);
        std::size_t const first = children.front();
        int const kind = kindOf(first);
        if (kind == eShapeType_EndState || kind == eShapeType_Join) {
            m_check.addToNode(container, kGroupEntry,
                              fmt::format("the engine enters it at \"{}\", the first in the file, which is {} {}",
                                          m_nodes[first].id, kind == eShapeType_Join ? "a" : "an", kindName(kind)));
            return;
        }
        if (led.count(first) == 0)
            return;
        auto const better = std::find_if(children.begin(), children.end(), [&](std::size_t child) {
            return led.count(child) == 0 && !m_steps[child].empty();
        });
        if (better != children.end())
            m_check.addToNode(container, kGroupEntry,
                              fmt::format("the engine enters it at \"{}\", the first in the file, and never comes to "
                                          "\"{}\"",
                                          m_nodes[first].id, m_nodes[*better].id));
    }

    Check& m_check;
    std::vector<TreeNode> const& m_nodes;
    std::vector<std::vector<Step>> m_steps;         // by node
    std::unordered_map<std::size_t, Names> m_names; // by scope
    bool m_isCatalog = false;                       // of applications, and no flow
    std::unordered_set<IFCNode*> m_hasNamelessTask;
    std::unordered_set<IFCNode*> m_hasNoFolder;
    UnreadNodes m_unread;
};

} // namespace

void checkWorkflow(Check& check) {
    if (check.tree.nodes().front().isOfWorkflow)
        WorkflowCheck(check).run();
}

} // namespace flowmere::host
