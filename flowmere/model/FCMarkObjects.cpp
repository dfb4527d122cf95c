#include "flowmere/model/FCMarkObjects.h"

#include <unordered_set>
#include <vector>

#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/model/ParentChain.h"

namespace {

// A node to look at, with the root of its tree: the way up is not walked for each variable.
struct Visit {
    IFCNode* node;
    IFCNode* parent;
    IFCNode* root;
};

} // namespace

CFCMarkObjects::CFCMarkObjects() = default;
CFCMarkObjects::~CFCMarkObjects() = default;

bool CFCMarkObjects::Mark(IFCNode* root, CFCVariableData* variable) {
    m_pRoot = root;
    m_pVariable = variable;
    if (root != nullptr) {
        root->UnMark();
        LookAndMark(root);
    }
    return false;
}

bool CFCMarkObjects::Compare(CFCVariableData* variable) {
    if (variable == nullptr || m_pVariable == nullptr || variable == m_pVariable) {
        return false;
    }
    // The searched variable is not resolved here: its pointers may be old, and are only compared.
    CFCVariableData const* const linked = m_pVariable->m_pLinkedVariable;
    CFCVariableData const* const last = m_pVariable->m_pFinalVariable;
    return linked == variable || variable->m_pLinkedVariable == m_pVariable ||
           (linked != nullptr && linked == variable->m_pLinkedVariable) || last == variable ||
           variable->m_pFinalVariable == m_pVariable || (last != nullptr && last == variable->m_pFinalVariable);
}

void CFCMarkObjects::LookAndMark(IFCNode* node) {
    if (node == nullptr) {
        return;
    }
    // Nodes whose way to the root is marked already: the users of one variable share most of it.
    std::unordered_set<IFCNode*> marked;
    std::vector<Visit> ahead{{node, node->GetParentNode(), flowmere::topOf(node)}};
    while (!ahead.empty()) {
        Visit const visit = ahead.back();
        ahead.pop_back();
        // Only the start stands for itself; from any other node the row goes on.
        if (visit.node != node) {
            if (IFCNode* const next = visit.node->GetNext()) {
                ahead.push_back({next, visit.parent, visit.root});
            }
        }
        bool const isPlaced = visit.node == node || visit.node->GetParentNode() == visit.parent;
        IFCNode* const root = isPlaced ? visit.root : flowmere::topOf(visit.node);

        if (CFCVariableList* const variables = visit.node->GetVariableList()) {
            __FCPOSITION* position = variables->GetHeadPosition();
            while (position != nullptr) {
                CFCVariableData* const variable = variables->GetNext(position);
                if (variable == nullptr || variable == m_pVariable) {
                    continue;
                }
                if (variable->GetParentNode() == visit.node) {
                    variable->ResolveFromRoot(root);
                } else {
                    variable->Resolve();
                }
                if (!Compare(variable)) {
                    continue;
                }
                IFCNode* above = variable;
                while (above != nullptr && marked.insert(above).second) {
                    above->SetMark(true);
                    above = above->GetParentNode();
                }
            }
        }
        if (IFCNode* const child = visit.node->GetChild()) {
            ahead.push_back({child, visit.node, root});
        }
    }
}

void CFCMarkObjects::MarkUpToRoot(IFCNode* node) {
    for (flowmere::ParentChain chain(node); chain.node() != nullptr; chain.climb()) {
        chain.node()->SetMark(true);
    }
}
