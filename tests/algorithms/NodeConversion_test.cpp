#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCBlockData.h"

#include <vector>

using namespace flowmere::test;

namespace {

// A process with the variable "Load", and a sub-process and a block below it, each with scoped variables.
class ScopedVariables : public testing::Test {
protected:
    ScopedVariables() {
        target = addVariable(process, L"Load");
        sub = addFirst(process, 61, L"S");
        block = addFirst(sub, 57, L"B");
        onSub = scoped(sub, L"a", L"Load", EScopeType_Parent);
        middle = addVariable(sub, L"Middle");
        onBlock = scoped(block, L"b", L"Middle", EScopeType_Global);
    }

    static CFCVariableData* scoped(IFCNode* owner, wchar_t const* name, wchar_t const* value, EScopeType scope) {
        CFCVariableData* const variable = addVariable(owner, name);
        variable->SetValue(value);
        variable->SetScopeType(scope);
        return variable;
    }

    Tree process{56};
    IFCNode* sub = nullptr;
    IFCNode* block = nullptr;
    CFCVariableData* target = nullptr;
    CFCVariableData* middle = nullptr;
    CFCVariableData* onSub = nullptr;
    CFCVariableData* onBlock = nullptr;
};

TEST_F(ScopedVariables, ConvertNodeStaysOnItsNode) {
    CFCNodeHelper::ConvertNode(sub);
    EXPECT_EQ(onSub->GetScopeType(), EScopeType_Connected);
    EXPECT_STREQ(onSub->GetLinkPath(), L".Load");
    EXPECT_EQ(onBlock->GetScopeType(), EScopeType_Global);
    EXPECT_STREQ(onBlock->GetLinkPath(), L"");
}

TEST_F(ScopedVariables, ConvertToLinkedVariableGoesThroughTheWholeTree) {
    CFCVariableData* const own = scoped(process, L"p", L"Load", EScopeType_Global);
    CFCNodeHelper::ConvertToLinkedVariable(process);
    EXPECT_STREQ(own->GetLinkPath(), L".Load");
    EXPECT_STREQ(onSub->GetLinkPath(), L".Load");
    EXPECT_STREQ(onBlock->GetLinkPath(), L"S.Middle");
    for (CFCVariableData* variable : {own, onSub, onBlock}) {
        EXPECT_EQ(variable->GetScopeType(), EScopeType_Connected);
    }
    EXPECT_EQ(target->GetScopeType(), EScopeType_Local);
}

TEST_F(ScopedVariables, ConvertToLinkedVariableStartsWhereItIsTold) {
    CFCNodeHelper::ConvertToLinkedVariable(block);
    EXPECT_EQ(onBlock->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(onSub->GetScopeType(), EScopeType_Parent);
}

TEST_F(ScopedVariables, SiblingsOfTheStartAreLeftAlone) {
    IFCNode* const first = addFirst(process, 57, L"F");
    CFCVariableData* const onFirst = scoped(first, L"c", L"Load", EScopeType_Parent);
    CFCNodeHelper::ConvertToLinkedVariable(first);
    EXPECT_EQ(onFirst->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(onSub->GetScopeType(), EScopeType_Parent);
}

TEST(Conversion, PassesNodesWithoutBlockData) {
    Tree list(69);
    IFCNode* const folder = addFirst(list, 71);
    IFCNode* const sub = addFirst(folder, 61, L"S");
    CFCVariableData* const goal = addVariable(sub, L"Goal");
    IFCNode* const block = addFirst(sub, 57, L"B");
    CFCVariableData* const variable = addVariable(block, L"Goal");
    variable->SetScopeType(EScopeType_Parent);
    CFCNodeHelper::ConvertNode(list);
    CFCNodeHelper::ConvertToLinkedVariable(list);
    EXPECT_EQ(variable->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(variable->GetLinkedVariableHandle(), goal->GetNodeHandle());
    CFCNodeHelper::ConvertNode(nullptr);
    CFCNodeHelper::ConvertToLinkedVariable(nullptr);
}

TEST(Conversion, VeryDeepTreesNeedNoStack) {
    Tree root(69);
    IFCNode* const bottom = deepen(root, kGreatDepth);
    IFCNode* const sub = addFirst(bottom, 61, L"S");
    addVariable(sub, L"Goal");
    CFCVariableData* const variable = addVariable(addFirst(sub, 57, L"B"), L"Goal");
    variable->SetScopeType(EScopeType_Parent);
    CFCNodeHelper::ConvertToLinkedVariable(root);
    EXPECT_EQ(variable->GetScopeType(), EScopeType_Connected);
}

// --- New paths -------------------------------------------------------------------------------------------------

TEST(UpdateAllToNewPath, MarksTheChainAndAllBelowIt) {
    Tree root(69);
    IFCNode* const before = make(71);
    IFCNode* const start = make(71);
    IFCNode* const after = make(70);
    adopt(root, {before, start, after});
    IFCNode* const inner = addFirst(start, 71);
    IFCNode* const second = addFirst(start, 70);
    IFCNode* const deep = addFirst(inner, 70);
    CFCNodeHelper::UpdateAllToNewPath(start);
    for (IFCNode* node : {start, after, inner, second, deep}) {
        EXPECT_TRUE(node->IsNewPath());
    }
    EXPECT_FALSE(before->IsNewPath());
    EXPECT_FALSE(root->IsNewPath());
    CFCNodeHelper::UpdateAllToNewPath(nullptr);
}

// What lies below a node is marked before the node.
TEST(UpdateAllToNewPath, GoesFromBelowToAboveAlongTheChain) {
    class Witness : public CFCBlockNode {
    public:
        explicit Witness(std::vector<IFCNode*>& seen) : m_seen(seen) {}
        void SetNewPath(bool newPath) override {
            m_seen.push_back(this);
            CFCBlockNode::SetNewPath(newPath);
        }

    private:
        std::vector<IFCNode*>& m_seen;
    };
    std::vector<IFCNode*> seen;
    Tree root(new Witness(seen));
    IFCNode* const second = new Witness(seen);
    IFCNode* const first = new Witness(seen);
    IFCNode* const inner = new Witness(seen);
    IFCNode* const innerNext = new Witness(seen);
    adopt(root, {first, second});
    adopt(first, {inner, innerNext});
    CFCNodeHelper::UpdateAllToNewPath(root);
    EXPECT_EQ(seen, (std::vector<IFCNode*>{inner, innerNext, first, second, root}));
}

TEST(UpdateAllToNewPath, VeryDeepTreesNeedNoStack) {
    Tree root(69);
    IFCNode* const bottom = deepen(root, kGreatDepth);
    CFCNodeHelper::UpdateAllToNewPath(root);
    EXPECT_TRUE(bottom->IsNewPath());
    EXPECT_TRUE(root->IsNewPath());
}

} // namespace
