#pragma once

// What the tests of the side catalogs share.

#include "DocumentTestSupport.h"
#include "flowmere/model/FCNodeManager.h"

#include <string>
#include <vector>

namespace flowmere::test {

// Remembers what it made. Nodes that belong to nobody are found again by their handles.
class RememberingFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int type) override {
        asked.push_back(type);
        IFCNode* const node = CFCNodeFactory::Create(type);
        if (node != nullptr)
            handles.push_back(node->GetNodeHandle());
        return node;
    }
    // What was made so far and is still there, oldest first.
    std::vector<IFCNode*> alive() const {
        std::vector<IFCNode*> nodes;
        for (int const handle : handles)
            if (IFCNode* const node = CFCNodeManager::GetNode(handle))
                nodes.push_back(node);
        return nodes;
    }

    std::vector<int> asked;
    std::vector<int> handles;
};

// A factory that makes nothing.
class EmptyFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int) override { return nullptr; }
};

// Files as texts in, as texts out. The roots of all paths are empty.
class CatalogTest : public ScratchTest {
protected:
    // Nodes that nobody owns end with the test.
    ~CatalogTest() override {
        for (int const handle : factory.handles)
            if (IFCNode* const node = CFCNodeManager::GetNode(handle); node != nullptr && !node->GetParentNode())
                CFCNodeHelper::DestroyTree(node);
    }

    // The file of that text.
    TuString file(std::string_view text) {
        scratch.write("catalog.xml", text);
        return scratch.text("catalog.xml");
    }

    EnvironmentGuard environment;
    RememberingFactory factory;
};

// What a call prints to standard output.
template <typename Call>
std::string printedBy(Call const& call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

// A tree in one text, children in the order of the file: "type:caption(children)".
inline std::string treeOf(IFCNode* node) {
    std::string text = std::to_string(node->GetNodeType()) + ":" + narrow(node->GetNodeCaption());
    std::string inner;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
        inner = treeOf(child) + (inner.empty() ? "" : " ") + inner;
    return inner.empty() ? text : text + "(" + inner + ")";
}

} // namespace flowmere::test
