#include "flowmere/model/FCMarkObjects.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

// root -> A(out), B(in), S -> T(in)
class FCMarkObjects : public testing::Test {
protected:
    FCMarkObjects() {
        root = new CFCBlockNode;
        a = addBlock(root, L"A");
        b = addBlock(root, L"B");
        s = addBlock(root, L"S");
        t = addBlock(s, L"T");
        out = addVariable(a, L"out");
        inB = addVariable(b, L"in");
        inT = addVariable(t, L"in");
    }
    ~FCMarkObjects() override { CFCNodeHelper::DestroyTree(root); }

    static CFCBlockNode* addBlock(CFCBlockNode* parent, wchar_t const* id) {
        auto* const block = new CFCBlockNode;
        block->SetNodeId(id);
        parent->AppendChild(block, false);
        return block;
    }
    static CFCVariableData* addVariable(CFCBlockNode* block, wchar_t const* name) {
        CFCVariableData* const variable = block->CreateNewVariable();
        variable->SetVariableName(name);
        return variable;
    }
    // Everything that is marked, nodes and variables.
    std::set<IFCNode*> marked() {
        std::set<IFCNode*> found;
        for (IFCNode* node : std::vector<IFCNode*>{root, a, b, s, t, out, inB, inT}) {
            if (node->IsMarked()) {
                found.insert(node);
            }
        }
        return found;
    }
    using Nodes = std::set<IFCNode*>;

    CFCBlockNode* root;
    CFCBlockNode* a;
    CFCBlockNode* b;
    CFCBlockNode* s;
    CFCBlockNode* t;
    CFCVariableData* out;
    CFCVariableData* inB;
    CFCVariableData* inT;
    ::CFCMarkObjects marker;
};

} // namespace

TEST_F(FCMarkObjects, MarksTheUsersOfAVariableUpToTheRoot) {
    inT->SetLinkPath(L"A.out");
    EXPECT_FALSE(marker.Mark(root, out));
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root}));
}

TEST_F(FCMarkObjects, LeavesATreeWithoutUsersUnmarked) {
    out->SetMark(true);
    t->SetMark(true);
    EXPECT_FALSE(marker.Mark(root, out));
    EXPECT_EQ(marked(), Nodes{});
}

TEST_F(FCMarkObjects, ClearsOlderMarksOnTheRootToo) {
    inB->SetLinkPath(L"A.out");
    marker.Mark(root, out);
    EXPECT_EQ(marked(), (Nodes{inB, b, root}));
    inB->SetLinkPath(L"");
    EXPECT_FALSE(marker.Mark(t, out));
    EXPECT_EQ(marked(), (Nodes{inB, b, root})); // only what lies below is cleared
    EXPECT_FALSE(marker.Mark(root, inT));
    EXPECT_EQ(marked(), Nodes{});
}

TEST_F(FCMarkObjects, OldTargetsOfTheVariableStillCount) {
    inB->SetLinkPath(L"A.out");
    inB->Resolve();
    inB->SetLinkPath(L"");
    inB->LinkVariable(nullptr); // the end of the chain stays noted
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), (Nodes{out, a, root}));
}

TEST_F(FCMarkObjects, TargetOfTheVariableIsMarkedAsWell) {
    inB->SetLinkPath(L"A.out");
    inB->Resolve();
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), (Nodes{out, a, root}));
}

TEST_F(FCMarkObjects, SearchedVariableIsNotResolvedFirst) {
    inB->SetLinkPath(L"A.out");
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), Nodes{});
}

TEST_F(FCMarkObjects, SharedTargetMakesTwoVariablesUsersOfEachOther) {
    inB->SetLinkPath(L"A.out");
    inT->SetLinkPath(L"A.out");
    inB->Resolve();
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root, out, a}));
    inT->Resolve();
    EXPECT_FALSE(marker.Mark(root, inT));
    EXPECT_EQ(marked(), (Nodes{inB, b, root, out, a}));
}

TEST_F(FCMarkObjects, FinalLinkCountsAsTheDirectOneDoes) {
    inB->SetLinkPath(L"A.out");
    inT->SetLinkPath(L"B.in");
    // From the end of the chain: the far user is linked to it by its final link only.
    EXPECT_FALSE(marker.Mark(root, out));
    EXPECT_EQ(marked(), (Nodes{inB, b, inT, t, s, root}));
    // From the far end: the middle by the direct, the source by the final link.
    EXPECT_FALSE(marker.Mark(root, inT));
    EXPECT_EQ(marked(), (Nodes{inB, b, out, a, root}));
}

TEST_F(FCMarkObjects, SharedFinalTargetCounts) {
    CFCVariableData* const middle = addVariable(a, L"middle");
    middle->SetLinkPath(L"A.out");
    inB->SetLinkPath(L"A.middle");
    inT->SetLinkPath(L"A.out");
    inB->Resolve();
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_TRUE(inT->IsMarked());
    EXPECT_TRUE(middle->IsMarked());
    EXPECT_TRUE(out->IsMarked());
    EXPECT_FALSE(inB->IsMarked());
}

TEST_F(FCMarkObjects, DirectLinksCountWhereTheChainHasNoEnd) {
    // A chain that closes on itself has direct links only.
    CFCVariableData* const other = addVariable(a, L"other");
    out->SetLinkPath(L"A.other");
    other->SetLinkPath(L"A.out");
    inB->SetLinkPath(L"A.out");
    inB->Resolve();
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_TRUE(out->IsMarked()) << "its target";
    EXPECT_TRUE(other->IsMarked()) << "shares its target";
    EXPECT_FALSE(inB->IsMarked());
    EXPECT_FALSE(inT->IsMarked());
}

TEST_F(FCMarkObjects, UserOfAVariableWithADeadLinkIsFoundByItsDirectLink) {
    inB->SetLinkPath(L"No.where");
    inT->SetLinkPath(L"B.in");
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root}));
}

TEST_F(FCMarkObjects, TwoVariablesWithDeadLinksShareNoTarget) {
    inB->SetLinkPath(L"No.where");
    inT->SetLinkPath(L"No.where");
    inB->Resolve();
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), Nodes{});
}

TEST_F(FCMarkObjects, TwoUnlinkedVariablesShareNoTarget) {
    EXPECT_FALSE(marker.Mark(root, inB));
    EXPECT_EQ(marked(), Nodes{});
}

TEST_F(FCMarkObjects, LooksOnlyBelowTheGivenNode) {
    inB->SetLinkPath(L"A.out");
    inT->SetLinkPath(L"A.out");
    EXPECT_FALSE(marker.Mark(s, out));
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root}));
}

TEST_F(FCMarkObjects, VariableOfAnotherOwnerIsResolvedFromItsOwnRoot) {
    CFCBlockNode other;
    CFCBlockNode otherA;
    otherA.SetNodeId(L"A");
    other.AppendChild(&otherA, false);
    inB->SetLinkPath(L"A.out");
    inB->SetParentNode(&otherA); // hangs in B's list all the same
    EXPECT_FALSE(marker.Mark(root, out));
    EXPECT_EQ(marked(), Nodes{});
    inB->SetParentNode(b);
}

TEST_F(FCMarkObjects, NodeThatBelongsElsewhereIsResolvedFromItsOwnRoot) {
    CFCBlockNode other;
    inB->SetLinkPath(L"A.out");
    b->SetParentNode(&other); // stands in the row of the root's children all the same
    inT->SetLinkPath(L"A.out");
    EXPECT_FALSE(marker.Mark(root, out));
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root}));
    b->SetParentNode(root);
}

TEST_F(FCMarkObjects, NullsAreHarmless) {
    inB->SetLinkPath(L"A.out");
    EXPECT_FALSE(marker.Mark(nullptr, out));
    EXPECT_FALSE(marker.Mark(root, nullptr));
    EXPECT_EQ(marked(), Nodes{});
    EXPECT_FALSE(marker.Mark(nullptr, nullptr));
    marker.LookAndMark(nullptr);
    marker.MarkUpToRoot(nullptr);
    EXPECT_EQ(marked(), Nodes{});
}

TEST_F(FCMarkObjects, MarkUpToRootTakesTheVariableAndAllAbove) {
    marker.MarkUpToRoot(inT);
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root}));
    marker.MarkUpToRoot(a);
    EXPECT_EQ(marked(), (Nodes{inT, t, s, root, a}));
}

TEST_F(FCMarkObjects, ParentLoopEndsTheClimb) {
    CFCSubGroupNode one;
    CFCSubGroupNode two;
    CFCSubGroupNode leaf;
    one.SetParentNode(&two);
    two.SetParentNode(&one);
    leaf.SetParentNode(&one);
    marker.MarkUpToRoot(&leaf);
    EXPECT_TRUE(one.IsMarked());
    EXPECT_TRUE(two.IsMarked());
    EXPECT_TRUE(leaf.IsMarked());
}

TEST_F(FCMarkObjects, CopiesRememberRootAndVariable) {
    inB->SetLinkPath(L"A.out");
    marker.Mark(root, out);
    root->UnMark();
    ::CFCMarkObjects copy(marker);
    copy.LookAndMark(root);
    EXPECT_EQ(marked(), (Nodes{inB, b, root}));
    root->UnMark();
    ::CFCMarkObjects assigned;
    assigned = copy;
    assigned.LookAndMark(root);
    EXPECT_EQ(marked(), (Nodes{inB, b, root}));
}

TEST_F(FCMarkObjects, DeepTreeIsWalkedWithoutDeepRecursion) {
    std::vector<CFCBlockNode*> blocks;
    CFCBlockNode* above = t;
    for (int level = 0; level < 20000; ++level) {
        auto* const block = new CFCBlockNode;
        above->AppendChild(block, false);
        above = block;
    }
    CFCVariableData* const deep = addVariable(above, L"deep");
    deep->SetLinkPath(L"A.out");
    EXPECT_FALSE(marker.Mark(root, out));
    EXPECT_TRUE(deep->IsMarked());
    EXPECT_TRUE(above->IsMarked());
    EXPECT_TRUE(s->IsMarked());
    EXPECT_FALSE(b->IsMarked());
}
