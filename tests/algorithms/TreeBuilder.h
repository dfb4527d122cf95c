#pragma once

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"
#include "support/TestSupport.h"

#include <initializer_list>
#include <stdexcept>
#include <vector>

namespace flowmere::test {

// A node of the type; id and caption as far as its class keeps them.
inline IFCNode* make(int type, wchar_t const* id = L"", wchar_t const* caption = L"") {
    IFCNode* const node = CFCNodeFactory().Create(type);
    if (node == nullptr) {
        throw std::invalid_argument("no class for node type " + std::to_string(type));
    }
    node->SetNodeId(id);
    node->SetNodeCaption(caption);
    return node;
}

// A new first child of the parent.
inline IFCNode* addFirst(IFCNode* parent, int type, wchar_t const* id = L"", wchar_t const* caption = L"") {
    IFCNode* const node = make(type, id, caption);
    parent->AppendChild(node, false);
    return node;
}

// Puts nodes in front of the children of a parent, in the order given.
inline void adopt(IFCNode* parent, std::vector<IFCNode*> const& children) {
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        parent->AppendChild(*child, false);
    }
}

inline CFCVariableData* addVariable(IFCNode* owner, wchar_t const* name, wchar_t const* linkPath = L"") {
    CFCVariableData* const variable = owner->CreateNewVariable();
    variable->SetVariableName(name);
    variable->SetLinkPath(linkPath);
    return variable;
}

// Captions of the children, in order.
inline std::vector<std::string> captions(IFCNode* parent) {
    std::vector<std::string> result;
    for (IFCNode* child = parent->GetChild(); child != nullptr; child = child->GetNext()) {
        result.push_back(narrow(child->GetNodeCaption()));
    }
    return result;
}

// The root of a tree that goes with the test.
class Tree {
public:
    explicit Tree(IFCNode* root) : m_root(root) {}
    Tree(int type, wchar_t const* id = L"", wchar_t const* caption = L"") : m_root(make(type, id, caption)) {}
    ~Tree() { CFCNodeHelper::DestroyTree(m_root); }
    Tree(Tree const&) = delete;
    Tree& operator=(Tree const&) = delete;

    IFCNode* root() const { return m_root; }
    operator IFCNode*() const { return m_root; }
    IFCNode* operator->() const { return m_root; }

private:
    IFCNode* m_root;
};

// A chain of folders below the root, so deep that a walk by recursion would not come back.
constexpr int kGreatDepth = 100000;

inline IFCNode* deepen(IFCNode* root, int depth, int type = 71) {
    IFCNode* last = root;
    for (int level = 0; level < depth; ++level) {
        last = addFirst(last, type);
    }
    return last;
}

} // namespace flowmere::test
