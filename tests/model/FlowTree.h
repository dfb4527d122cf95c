#pragma once

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCProcessNode.h"

#include <memory>
#include <vector>

namespace flowmere::test {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};

// A node and all that hangs on it.
template <typename Node>
using Tree = std::unique_ptr<Node, TreeEnd>;

template <typename Node = CFCProcessNode>
Tree<Node> makeTree(int type = 56) {
    Tree<Node> tree(new Node);
    tree->SetNodeType(type);
    return tree;
}

// A new child, in front of the others.
template <typename Node = CFCBlockNode>
Node* addChild(IFCNode* container, wchar_t const* id, int type = 57) {
    auto* const node = new Node;
    node->SetNodeType(type);
    node->SetNodeId(id);
    container->AppendChild(node, false);
    return node;
}

inline std::unique_ptr<CFCConnector> makeConnector(CFCBlockNode* from, CFCBlockNode* to, int handle = 6) {
    auto connector = std::make_unique<CFCConnector>();
    connector->SetNodeType(68);
    connector->SetStartNode(handle, from);
    connector->SetEndNode(2, to);
    return connector;
}

// Joins two blocks of a container; null when the container did not take the connector.
inline CFCConnector* connect(CFCBlockNode* container, CFCBlockNode* from, CFCBlockNode* to, int handle = 6) {
    auto connector = makeConnector(from, to, handle);
    IFCNode* const formerTail = reinterpret_cast<IFCNode*>(container->GetConnectorList()->GetTailPosition());
    container->AddConnector(connector.get());
    IFCNode* const tail = reinterpret_cast<IFCNode*>(container->GetConnectorList()->GetTailPosition());
    return tail == formerTail ? nullptr : connector.release();
}

inline std::vector<CFCConnector*> elements(CFCConnectorList& list) {
    std::vector<CFCConnector*> found;
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        found.push_back(list.GetNext(position));
    }
    return found;
}

} // namespace flowmere::test
