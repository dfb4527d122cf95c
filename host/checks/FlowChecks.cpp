#include "host/checks/Checks.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <filesystem>
#include <set>
#include <vector>

namespace flowmere::host {

namespace {

// By which grips a block may go on.
struct Exits {
    bool any = false;    // by each of them
    bool engine = false; // along all connectors, whatever their grips
    std::set<int> grips;
};

Exits exitsOf(Check& check, std::size_t index) {
    TreeNode const& node = check.tree.nodes()[index];
    Exits exits;
    int const kind = node.node->GetNodeType();
    exits.engine = node.isOfWorkflow || isWorkflowKind(kind);
    exits.any = isDecisionKind(kind);
    exits.grips = {node.block->GetActiveHandle()};
    if (Check::Script const* const script = check.scriptOf(index)) {
        exits.any = exits.any || script->facts->setsUnknownGrip;
        for (auto const& [grip, line] : script->facts->grips)
            exits.grips.insert(grip);
    }
    return exits;
}

class FlowCheck {
public:
    explicit FlowCheck(Check& check) : m_check(check), m_nodes(check.tree.nodes()) {
        m_first.resize(m_nodes.size(), Tree::kNone);
        m_isReached.resize(m_nodes.size());
        m_isLeft.resize(m_nodes.size());
        m_hasClearStart.resize(m_nodes.size());
    }

    void run() {
        // What is inside first: whether the flow comes out of a sub-process decides what it reaches behind that.
        for (std::size_t index = m_nodes.size(); index-- > 0;)
            if (isContainer(m_nodes[index]))
                walk(index);
        for (std::size_t index = 0; index < m_nodes.size(); ++index) {
            TreeNode const& node = m_nodes[index];
            if (node.block != nullptr && node.parent != Tree::kNone && isContainer(m_nodes[node.parent]) &&
                !m_isReached[index] && isJudged(node.parent))
                m_unreached.push_back(index);
        }
        if (!m_unreached.empty())
            report();
    }

private:
    static bool isContainer(TreeNode const& node) { return node.block != nullptr && !node.children.empty(); }

    // In a workflow the engine says where the flow begins, and nodes that were not read may lie on its way.
    bool isJudged(std::size_t container) {
        TreeNode const& node = m_nodes[container];
        if (!node.isOfWorkflow)
            return true;
        std::size_t const first = m_first[container];
        bool const hasStart = first != Tree::kNone && (m_nodes[first].node->GetNodeType() == eShapeType_StartState ||
                                                       node.node->GetNodeType() == eShapeType_SuperState);
        return hasStart && !m_check.isPartlyKnown(container) && !m_check.hasFarTransitions();
    }

    static bool isSubProcess(TreeNode const& node) { return dynamic_cast<CFCSubProcessNode*>(node.block) != nullptr; }

    std::size_t endOf(CFCConnector& way) const {
        return m_check.tree.indexOf(static_cast<IFCNode*>(way.GetEndObject()));
    }

    void walk(std::size_t container) {
        CFCBlockNode* const first = m_check.tree.firstBlock(m_nodes[container]);
        if (first == nullptr)
            return;
        std::vector<std::size_t> open;
        auto const reach = [&](std::size_t index) {
            if (index == Tree::kNone || m_nodes[index].parent != container || m_isReached[index])
                return;
            m_isReached[index] = true;
            open.push_back(index);
        };
        m_hasClearStart[container] = m_nodes[container].isOfWorkflow || m_check.tree.hasClearStart(m_nodes[container]);
        m_first[container] = m_check.tree.indexOf(static_cast<IFCNode*>(first));
        reach(m_first[container]);
        while (!open.empty()) {
            std::size_t const index = open.back();
            open.pop_back();
            follow(index, container, reach);
        }
    }

    template <typename Reach>
    void follow(std::size_t index, std::size_t container, Reach reach) {
        TreeNode const& node = m_nodes[index];
        bool const isWorkflow = isWorkflowKind(node.node->GetNodeType());
        // The flow goes into a sub-process, and leaves it behind its last block; an empty one ends it.
        if (isSubProcess(node) && !isWorkflow && !m_isLeft[index])
            return;
        Exits const exits = isSubProcess(node) && !isWorkflow ? Exits{false, false, {node.block->GetActiveHandle()}}
                                                              : exitsOf(m_check, index);
        std::set<int> taken;
        for (CFCConnector* const way : node.ways) {
            int const grip = way->GetStartHandle();
            // Of the connectors at one grip the first is taken.
            bool const isTaken =
                exits.engine || ((exits.any || exits.grips.count(grip) > 0) && taken.insert(grip).second);
            if (isTaken)
                reach(endOf(*way));
        }
        // Without a connector the flow goes one level up. A decision may do so by any grip without one.
        bool goesUp = exits.engine || exits.any;
        for (int const grip : exits.grips)
            goesUp = goesUp || taken.count(grip) == 0;
        if (goesUp && (!isSubProcess(node) || isWorkflow))
            m_isLeft[container] = true;
    }

    void report() {
        // The connectors that lead to each block that is not reached.
        std::vector<std::vector<CFCConnector*>> waysIn(m_nodes.size());
        for (TreeNode const& node : m_nodes)
            for (CFCConnector* const way : node.ways)
                if (std::size_t const end = endOf(*way); end != Tree::kNone && !m_isReached[end])
                    waysIn[end].push_back(way);
        for (std::size_t const index : m_unreached)
            m_check.addToNode(index, kUnreachableBlock, reasonOf(index, waysIn[index]));
    }

    std::string reasonOf(std::size_t index, std::vector<CFCConnector*> const& waysIn) {
        std::size_t const container = m_nodes[index].parent;
        std::size_t const first = m_first[container];
        std::string begin;
        if (first != Tree::kNone)
            begin = fmt::format(
                "; the flow begins at \"{}\"{}", m_nodes[first].id,
                m_hasClearStart[container] ? "" : ", the last in the file, as none has a way out and no way in");
        bool isLedTo = false;
        for (CFCConnector* const way : waysIn) {
            std::size_t const start = m_check.tree.indexOf(static_cast<IFCNode*>(way->GetStartObject()));
            TreeNode const& from = m_nodes[start];
            if (!m_isReached[start]) {
                isLedTo = isLedTo || start != index;
                continue;
            }
            int const grip = way->GetStartHandle();
            if (isSubProcess(from) && from.children.empty())
                return fmt::format("it comes behind \"{}\", and an empty sub-process ends the flow", from.id);
            if (isSubProcess(from) && !m_isLeft[start])
                return fmt::format("it comes behind \"{}\", and the flow does not come out of that", from.id);
            if (isSubProcess(from) || exitsOf(m_check, start).grips.count(grip) == 0) {
                if (grip != from.block->GetActiveHandle())
                    return fmt::format("the connector from \"{}\" leaves by {}, and the flow goes on by {}", from.id,
                                       gripName(grip), gripName(from.block->GetActiveHandle()));
            }
            return fmt::format("the flow leaves \"{}\" by another connector at {}", from.id, gripName(grip));
        }
        return (isLedTo ? "only blocks that no flow reaches lead to it" : "no connector leads to it") + begin;
    }

    Check& m_check;
    std::vector<TreeNode> const& m_nodes;
    std::vector<std::size_t> m_first;  // of a container: its first block
    std::vector<bool> m_isReached;     // inside its container
    std::vector<bool> m_isLeft;        // of a container: the flow comes out of it
    std::vector<bool> m_hasClearStart; // of a container
    std::vector<std::size_t> m_unreached;
};

// A decision that never names a grip goes on by its active one.
void checkDecision(Check& check, std::size_t index) {
    TreeNode const& node = check.tree.nodes()[index];
    std::set<int> taken;
    for (CFCConnector* const way : node.ways)
        taken.insert(way->GetStartHandle());
    Check::Script const* const script = check.scriptOf(index);
    bool const setsGrip = script != nullptr && script->facts->setsGrip();
    if (script != nullptr)
        for (auto const& [grip, line] : script->facts->grips) {
            std::string const where = fmt::format("{}:{}", script->file.filename().string(), line);
            if (grip < EPortHandle_TopLeft || grip > EPortHandle_LeftMiddle)
                check.addToNode(index, kDecisionGrip,
                                fmt::format("{} leaves by grip {}, and there are the grips 1 to 8", where, grip),
                                script->file.string(), line);
            else if (taken.count(grip) == 0)
                check.addToNode(index, kDecisionGrip,
                                fmt::format("no connector leaves {}, which {} goes on by", gripName(grip), where),
                                script->file.string(), line);
        }
    bool const mayStay = !setsGrip || (!script->facts->setsUnknownGrip && script->facts->grips.size() == 1 &&
                                       !script->facts->alwaysSetsGrip);
    int const active = node.block->GetActiveHandle();
    bool const isNamed = script != nullptr && script->facts->grips.count(active) > 0;
    bool const isDecision = isDecisionKind(node.node->GetNodeType());
    if (isDecision && mayStay && !isNamed && taken.count(active) == 0)
        check.addToNode(index, kDecisionGrip,
                        fmt::format("no connector leaves {}, by which the decision goes on{}", gripName(active),
                                    setsGrip ? " when its script names no other" : ""));
}

} // namespace

void checkFlow(Check& check) {
    FlowCheck(check).run();
}

void checkGrips(Check& check) {
    for (std::size_t index = 0; index < check.tree.nodes().size(); ++index)
        if (TreeNode const& node = check.tree.nodes()[index];
            node.block != nullptr && node.parent != Tree::kNone && !node.isOfWorkflow)
            checkDecision(check, index);
}

} // namespace flowmere::host
