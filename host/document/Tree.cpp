#include "host/document/Tree.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace flowmere::host {

namespace {

struct KindName {
    int code;
    std::string_view name;
};

constexpr KindName kKindNames[] = {
    {eShapeType_Terminator, "terminator"},
    {eShapeType_Process, "process"},
    {eShapeType_Block, "block"},
    {eShapeType_Decision, "decision"},
    {eShapeType_RoundBlock, "round block"},
    {eShapeType_SubProcessAlternate, "sub-process"},
    {eShapeType_SubProcess, "sub-process"},
    {eShapeType_ProcessList, "process list"},
    {eShapeType_FileNode, "file"},
    {eShapeType_Folder, "folder"},
    {eShapeType_LibraryFolder, "library folder"},
    {eShapeType_DefaultBlocks, "default blocks"},
    {eShapeType_LibraryBlocks, "library blocks"},
    {eShapeType_ExistingProcessBlocks, "existing processes"},
    {eShapeType_MacroBlocks, "macro blocks"},
    {eShapeType_Code, "code"},
    {eShapeType_Task, "task"},
    {eShapeType_UserTask, "user task"},
    {eShapeType_AutomationTask, "automation task"},
    {eShapeType_DecisionTask, "decision task"},
    {eShapeType_StartState, "start state"},
    {eShapeType_EndState, "end state"},
    {eShapeType_Fork, "fork"},
    {eShapeType_Join, "join"},
    {eShapeType_Mail, "mail"},
    {eShapeType_ESB, "service"},
    {eShapeType_WorkflowProcess, "workflow process"},
    {eShapeType_SuperState, "super-state"},
    {eShapeType_SubProcessLoop, "sub-process loop"},
    {eShapeType_DecisionLoop, "decision loop"},
    {eShapeType_SpawningLoop, "spawning loop"},
    {eShapeType_BasicSubProcess, "basic sub-process"},
    {eShapeType_Application, "application"},
    {eShapeType_ApplicationGroup, "application"},
};

constexpr std::array<std::string_view, 9> kGripNames = {
    "", "top left", "top", "top right", "right", "bottom right", "bottom", "bottom left", "left"};

// The two nodes that every process makes for itself, and no document holds.
bool isExtraNode(IFCNode& node) {
    return (node.GetNodeType() == eShapeType_Favourites || node.GetNodeType() == eShapeType_History) &&
           node.GetChild() == nullptr;
}

// The child nodes in the order of the file: the chain begins with the newest.
std::vector<IFCNode*> childrenOf(IFCNode& node) {
    std::vector<IFCNode*> children;
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
        if (!isExtraNode(*child))
            children.push_back(child);
    std::reverse(children.begin(), children.end());
    return children;
}

} // namespace

Tree::Tree(IFCNode& root) {
    addNodes(root);
    for (std::size_t index = m_nodes.size(); index-- > 0;) {
        TreeNode& node = m_nodes[index];
        node.last = node.children.empty() ? index : m_nodes[node.children.back()].last;
    }
    for (std::size_t index = 0; index < m_nodes.size(); ++index)
        addVariables(index);
    for (std::size_t index = 0; index < m_nodes.size(); ++index)
        addConnectors(index);
    followLinks(root);
}

void Tree::addNodes(IFCNode& root) {
    struct Open {
        IFCNode* node;
        std::size_t parent;
    };
    std::vector<Open> open{{&root, kNone}};
    while (!open.empty()) {
        auto const [node, parent] = open.back();
        open.pop_back();
        std::size_t const index = m_nodes.size();
        TreeNode entry;
        entry.node = node;
        entry.block = dynamic_cast<CFCBlockNode*>(node);
        entry.parent = parent;
        entry.id = utf8(node->GetNodeId());
        entry.isOfWorkflow = root.GetNodeType() == eShapeType_WorkflowProcess;
        if (parent != kNone) {
            TreeNode& above = m_nodes[parent];
            above.children.push_back(index);
            entry.level = above.level + 1;
            // A node without an identifier has no part in a path.
            entry.path = above.path;
            if (!entry.path.empty() && !entry.id.empty())
                entry.path += '.';
            m_blockCount += entry.block != nullptr ? 1 : 0;
        }
        entry.path += entry.id;
        m_nodeIndex.emplace(node, index);
        m_nodes.push_back(std::move(entry));

        std::vector<IFCNode*> const children = childrenOf(*node);
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            open.push_back({*child, index});
    }
}

void Tree::addVariables(std::size_t index) {
    TreeNode& entry = m_nodes[index];
    entry.firstVariable = m_variables.size();
    CFCVariableList* const list = entry.node->GetVariableList();
    if (list == nullptr)
        return;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCVariableData* const data = list->GetNext(position);
        if (data == nullptr || *data->GetVariableName() == L'\0')
            continue;
        TreeVariable variable;
        variable.data = data;
        variable.owner = index;
        variable.name = utf8(data->GetVariableName());
        variable.path = entry.path + "." + variable.name;
        variable.linkPath = utf8(data->GetLinkPath());
        m_variableIndex.emplace(data, m_variables.size());
        m_variables.push_back(std::move(variable));
    }
    entry.variableCount = m_variables.size() - entry.firstVariable;
}

void Tree::addConnectors(std::size_t index) {
    CFCConnectorList* const list = m_nodes[index].node->GetConnectorList();
    if (list == nullptr)
        return;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCConnector* const connector = list->GetNext(position);
        if (connector == nullptr || connector->IsDeleted() || !connector->IsValid())
            continue;
        std::size_t const start = indexOf(static_cast<IFCNode*>(connector->GetStartObject()));
        if (start == kNone)
            continue;
        m_nodes[start].ways.push_back(connector);
        ++m_connectorCount;
    }
}

// Each variable is visited once, however long the chains of links are.
void Tree::followLinks(IFCNode& root) {
    for (TreeVariable& variable : m_variables) {
        variable.target = kNone;
        if (!variable.linkPath.empty())
            if (CFCVariableData* const target =
                    CFCNodeHelper::FindVariable(TuString(variable.data->GetLinkPath()), &root))
                variable.target = indexOf(target);
    }

    enum class Visit : unsigned char { New, Open, Done };
    std::vector<Visit> visits(m_variables.size(), Visit::New);
    std::vector<std::size_t> chain;
    for (std::size_t first = 0; first < m_variables.size(); ++first) {
        std::size_t at = first;
        chain.clear();
        while (at != kNone && visits[at] == Visit::New) {
            visits[at] = Visit::Open;
            chain.push_back(at);
            at = m_variables[at].target;
        }
        // What the end of the chain means for all that lead to it.
        std::size_t source = kNone;
        LinkState state = LinkState::Dead;
        if (at != kNone) {
            bool const isLoop = visits[at] == Visit::Open || m_variables[at].link == LinkState::Loop;
            bool const isDead = !isLoop && m_variables[at].link == LinkState::Dead;
            state = isLoop ? LinkState::Loop : isDead ? LinkState::Dead : LinkState::Well;
            source = state == LinkState::Well ? m_variables[at].source : kNone;
        }
        for (auto index = chain.rbegin(); index != chain.rend(); ++index) {
            TreeVariable& variable = m_variables[*index];
            visits[*index] = Visit::Done;
            if (variable.linkPath.empty()) {
                variable.link = LinkState::None;
                variable.source = *index;
                source = *index;
                state = LinkState::Well;
            } else {
                variable.link = state;
                variable.source = state == LinkState::Well ? source : *index;
            }
        }
    }
}

std::size_t Tree::indexOf(IFCNode* node) const {
    auto const entry = m_nodeIndex.find(node);
    return entry == m_nodeIndex.end() ? kNone : entry->second;
}

std::size_t Tree::indexOf(CFCVariableData* variable) const {
    auto const entry = m_variableIndex.find(variable);
    return entry == m_variableIndex.end() ? kNone : entry->second;
}

std::string Tree::valueOf(TreeVariable const& variable) const {
    return utf8(m_variables[variable.source].data->GetValue());
}

CFCBlockNode* Tree::clearStart(TreeNode const& container) const {
    std::vector<bool> hasWayIn(container.children.size());
    std::unordered_map<IFCNode*, std::size_t> places;
    for (std::size_t place = 0; place < container.children.size(); ++place)
        places.emplace(m_nodes[container.children[place]].node, place);
    for (std::size_t const child : container.children)
        for (CFCConnector* const way : m_nodes[child].ways)
            if (auto const end = places.find(static_cast<IFCNode*>(way->GetEndObject())); end != places.end())
                hasWayIn[end->second] = true;
    for (std::size_t place = container.children.size(); place-- > 0;) {
        TreeNode const& child = m_nodes[container.children[place]];
        if (child.block != nullptr && !child.ways.empty() && !hasWayIn[place])
            return child.block;
    }
    return nullptr;
}

bool Tree::hasClearStart(TreeNode const& container) const {
    return clearStart(container) != nullptr;
}

CFCBlockNode* Tree::engineStart(TreeNode const& container) const {
    bool const isGroup = container.node->GetNodeType() == eShapeType_SuperState;
    for (std::size_t const child : container.children) {
        TreeNode const& node = m_nodes[child];
        if (node.block != nullptr && (isGroup || node.node->GetNodeType() == eShapeType_StartState))
            return node.block;
    }
    return nullptr;
}

CFCBlockNode* Tree::firstBlock(TreeNode const& container) const {
    if (container.block == nullptr)
        return nullptr;
    if (container.isOfWorkflow)
        if (CFCBlockNode* const first = engineStart(container))
            return first;
    if (CFCBlockNode* const first = container.block->GetFirstConnectedBlock())
        return first;
    // Workflow containers leave the search to their engine, which goes by the same rule.
    if (CFCBlockNode* const first = clearStart(container))
        return first;
    for (auto child = container.children.rbegin(); child != container.children.rend(); ++child)
        if (m_nodes[*child].block != nullptr)
            return m_nodes[*child].block;
    return nullptr;
}

std::string kindName(int code) {
    for (KindName const& kind : kKindNames)
        if (kind.code == code)
            return std::string(kind.name);
    return fmt::format("kind {}", code);
}

bool isScriptedKind(int code) {
    switch (code) {
    case eShapeType_Block:
    case eShapeType_Decision:
    case eShapeType_RoundBlock:
    case eShapeType_Task:
    case eShapeType_UserTask:
    case eShapeType_AutomationTask:
    case eShapeType_DecisionTask:
        return true;
    default:
        return false;
    }
}

bool isWorkflowKind(int code) {
    return code >= eShapeType_Task && code <= eShapeType_ApplicationGroup;
}

bool isWorkflowSubProcess(int code) {
    return code >= eShapeType_SubProcessLoop && code <= eShapeType_BasicSubProcess;
}

bool isDecisionKind(int code) {
    return code == eShapeType_Decision || code == eShapeType_DecisionTask;
}

std::string gripName(int grip) {
    if (grip < EPortHandle_TopLeft || grip > EPortHandle_LeftMiddle)
        return fmt::format("grip {}", grip);
    return fmt::format("grip {} ({})", grip, kGripNames[static_cast<std::size_t>(grip)]);
}

std::string typeOf(CFCVariableData& variable) {
    constexpr std::string_view kArray = "Array";
    std::string type;
    CFCFileTypeNode* const file = variable.IsFileType() ? variable.GetFileTypeNode() : nullptr;
    if (file != nullptr)
        type = utf8(file->GetFileTypeName());
    if (type.empty())
        if (CFCDataTypeNode* const entry = variable.GetDataTypeNode())
            type = utf8(entry->GetType());
    if (type.empty())
        type = utf8(variable.GetDataTypeS());
    bool const saysArray = type.size() >= kArray.size() && type.ends_with(kArray);
    return variable.IsArray() && !saysArray ? type + " array" : type;
}

} // namespace flowmere::host
