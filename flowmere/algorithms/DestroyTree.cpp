#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <unordered_set>
#include <vector>

namespace {

// What a tree is made of. Everything is found before anything goes, and each object once, by whatever ways it can be
// reached.
class Inventory {
public:
    void add(IFCNode* node) {
        if (node != nullptr && m_known.insert(node).second) {
            m_open.push_back(node);
        }
    }

    // A node that was added and not yet looked into; null when there is none.
    IFCNode* takeOpen() {
        if (m_open.empty()) {
            return nullptr;
        }
        IFCNode* const node = m_open.back();
        m_open.pop_back();
        (CFCPointerConverter::GetConnector(node) != nullptr ? m_connectors : m_nodes).push_back(node);
        return node;
    }

    std::vector<IFCNode*> const& nodes() const { return m_nodes; }
    std::vector<IFCNode*> const& connectors() const { return m_connectors; }

private:
    std::unordered_set<IFCNode*> m_known;
    std::vector<IFCNode*> m_open;
    std::vector<IFCNode*> m_nodes; // owners before what they own
    std::vector<IFCNode*> m_connectors;
};

bool belongsTo(IFCNode* node, IFCNode* owner) {
    IFCNode* const parent = node->GetParentNode();
    return parent == owner || parent == nullptr;
}

// A child with another parent was moved without being unhooked here.
void addChildren(Inventory& inventory, IFCNode* node) {
    flowmere::CircleGuard<IFCNode> guard;
    for (IFCNode* child = node->GetChild(); child != nullptr && !guard.closes(child); child = child->GetNext()) {
        if (belongsTo(child, node)) {
            inventory.add(child);
        }
    }
}

// Elements up to the tail: what a stale link of the last one leads to belongs to another list.
template <typename Accept>
void addElements(Inventory& inventory, CFCNodeList& list, Accept accept) {
    flowmere::CircleGuard<IFCNode> guard;
    __FCPOSITION* const tail = list.GetTailPosition();
    __FCPOSITION* position = list.GetHeadPosition();
    while (position != nullptr) {
        bool const last = position == tail;
        IFCNode* const element = list.GetNextNode(position);
        if (element == nullptr || guard.closes(element)) {
            return;
        }
        if (accept(element)) {
            inventory.add(element);
        }
        if (last) {
            return;
        }
    }
}

// Takes the node out of its siblings, and a block out of the flow of its container.
void unhook(IFCNode* node) {
    IFCNode* const parent = node->GetParentNode();
    if (parent == nullptr) {
        return;
    }
    if (CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(node)) {
        block->RemoveConnectors();
    }
    IFCNode* const next = node->GetNext();
    IFCNode* const prev = node->GetPrev();
    if (parent->GetChild() == node) {
        parent->SetChild(next);
        if (next != nullptr && next->GetPrev() == node) {
            next->SetPrev(nullptr);
        }
    } else if (prev != nullptr && prev->GetNext() == node) {
        prev->SetNext(next);
        if (next != nullptr && next->GetPrev() == node) {
            next->SetPrev(prev);
        }
    }
}

void destroy(IFCNode* node) {
    // The block's variables go with the block, but leave behind what their copies might share.
    if (CFCBlockData* const data = node->GetFCBlockData()) {
        CFCVariableList* const variables = data->GetVariableList();
        __FCPOSITION* position = variables->GetHeadPosition();
        while (position != nullptr) {
            if (CFCVariableData* const variable = variables->GetNext(position)) {
                variable->ReleaseOwnedParts();
            }
        }
    }
    if (CFCVariableData* const variable = node->GetVariableData()) {
        variable->ReleaseOwnedParts();
    }
    delete node;
}

} // namespace

bool CFCNodeHelper::isShallowCopy(IFCNode* node) {
    auto* const own = dynamic_cast<CFCNode*>(node);
    return own != nullptr && own->m_nRegisteredHandle != own->m_nNodeHandle;
}

IFCNode* CFCNodeHelper::innerTaskOf(IFCNode* node) {
    CFCBPMProcessNode* const process = CFCPointerConverter::GetBPMProcessNode(node);
    return process != nullptr ? process->m_innerTask : nullptr;
}

void CFCNodeHelper::DestroyTree(IFCNode* node) {
    if (node == nullptr) {
        return;
    }
    Inventory inventory;
    inventory.add(node);
    while (IFCNode* const place = inventory.takeOpen()) {
        // What a shallow copy holds is its source's, and may be gone already.
        if (isShallowCopy(place)) {
            continue;
        }
        addChildren(inventory, place);
        auto const ofPlace = [place](IFCNode* element) {
            return belongsTo(element, place);
        };
        auto const any = [](IFCNode*) {
            return true;
        };
        auto const addList = [&inventory](CFCNodeList* list, auto accept) {
            if (list != nullptr && !isShallowCopy(list)) {
                addElements(inventory, *list, accept);
            }
        };
        addList(dynamic_cast<CFCNodeList*>(place), any);
        if (CFCBlockData* const data = place->GetFCBlockData()) {
            addList(data->GetConnectorList(), any);
            addList(data->GetScriptList(), ofPlace);
        }
        if (CFCBPMBlockData* const data = place->GetBPMBlockData()) {
            addList(data->GetActionExceptionList(), ofPlace);
            addList(data->GetScriptExceptionList(), ofPlace);
            addList(data->GetEventList(), ofPlace);
            addList(data->GetScriptEventList(), ofPlace);
            addList(data->GetTimerList(), ofPlace);
            addList(data->GetTransitionList(), ofPlace);
            addList(data->GetReminderList(), ofPlace);
        }
        if (auto* const application = dynamic_cast<CFCApplicationNode*>(place)) {
            addList(application->GetArgumentList(), ofPlace);
            addList(application->GetPatternList(), ofPlace);
            addList(application->GetCmdLineList(), ofPlace);
            addList(application->GetDeploymentList(), ofPlace);
        }
        if (auto* const deployment = dynamic_cast<CFCDeploymentData*>(place)) {
            addList(deployment->GetVariableList(), ofPlace);
        }
        inventory.add(innerTaskOf(place));
    }
    // The links of a copy are those of its source.
    if (!isShallowCopy(node)) {
        unhook(node);
    }

    // Connectors first, while their blocks and the lists that index them are there; then from the leaves up.
    for (IFCNode* const connector : inventory.connectors()) {
        delete connector;
    }
    for (auto place = inventory.nodes().rbegin(); place != inventory.nodes().rend(); ++place) {
        destroy(*place);
    }
}
