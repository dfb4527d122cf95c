#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"

#include <functional>
#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

using TextSearch = IFCNode* (*)(wchar_t const*, IFCNode*);

// --- The four searches by text over a whole tree ---------------------------------------------------------------

struct TextSearchCase {
    char const* name;
    TextSearch search;
    // Gives the node a text that the search compares, "<own>" in the path searches being the own segment only.
    void (*label)(IFCNode*, wchar_t const*);
    wchar_t const* (IFCNode::*read)();
};

void PrintTo(TextSearchCase const& search, std::ostream* out) {
    *out << search.name;
}

class TextSearches : public testing::TestWithParam<TextSearchCase> {};

INSTANTIATE_TEST_SUITE_P(
    CFCNodeHelper, TextSearches,
    testing::Values(TextSearchCase{"FindNode", &CFCNodeHelper::FindNode,
                                   [](IFCNode* node, wchar_t const* text) { node->SetNodeId(text); },
                                   &IFCNode::GetNodePath},
                    TextSearchCase{"FindNodeByCaption", &CFCNodeHelper::FindNodeByCaption,
                                   [](IFCNode* node, wchar_t const* text) { node->SetNodeCaption(text); },
                                   &IFCNode::GetNodeCaption},
                    TextSearchCase{"FindNodeByFilePath", &CFCNodeHelper::FindNodeByFilePath,
                                   [](IFCNode* node, wchar_t const* text) { node->SetItemFilePath(text); },
                                   &IFCNode::GetItemFilePath},
                    TextSearchCase{"FindNodeByNodePathCaption", &CFCNodeHelper::FindNodeByNodePathCaption,
                                   [](IFCNode* node, wchar_t const* text) { node->SetNodeCaption(text); },
                                   &IFCNode::GetNodePathByCaption}),
    [](testing::TestParamInfo<TextSearchCase> const& instance) { return std::string(instance.param.name); });

TEST_P(TextSearches, FindTheStartItself) {
    Tree root(57);
    GetParam().label(root, L"Top");
    EXPECT_EQ(GetParam().search(L"Top", root), root.root());
}

TEST_P(TextSearches, FindEveryDescendantByItsOwnText) {
    Tree root(61);
    IFCNode* const a = addFirst(root, 61);
    IFCNode* const b = addFirst(root, 61);
    IFCNode* const below = addFirst(a, 61);
    IFCNode* const deepest = addFirst(below, 57);
    std::vector<std::pair<IFCNode*, wchar_t const*>> const labels{
        {root, L"Root"}, {a, L"A"}, {b, L"B"}, {below, L"Below"}, {deepest, L"Deepest"}};
    for (auto const& [node, text] : labels) {
        GetParam().label(node, text);
    }
    for (auto const& [node, text] : labels) {
        TuString const key((node->*GetParam().read)());
        ASSERT_FALSE(key.IsEmpty());
        EXPECT_EQ(GetParam().search(key, root), node) << narrow(key);
    }
}

TEST_P(TextSearches, TakeATextThatStandsInTheTreeItself) {
    Tree root(61);
    IFCNode* const a = addFirst(root, 61);
    IFCNode* const deep = addFirst(a, 57);
    GetParam().label(root, L"R");
    GetParam().label(a, L"A");
    GetParam().label(deep, L"D");
    EXPECT_EQ(GetParam().search((deep->*GetParam().read)(), root), deep);
}

TEST_P(TextSearches, GiveTheFirstMatchDepthFirstInListOrder) {
    // Root with the children one (holding inner) and two. Inner comes before two; both have the same text.
    Tree root(61);
    IFCNode* const two = addFirst(root, 57);
    IFCNode* const one = addFirst(root, 61);
    IFCNode* const inner = addFirst(one, 57);
    GetParam().label(two, L"Same");
    GetParam().label(inner, L"Same");
    EXPECT_EQ(GetParam().search(L"Same", root), inner);
    GetParam().label(one, L"Same");
    EXPECT_EQ(GetParam().search(L"Same", root), one);
}

TEST_P(TextSearches, LeaveTheSiblingsOfTheStartAlone) {
    Tree root(61);
    IFCNode* const second = addFirst(root, 57);
    IFCNode* const first = addFirst(root, 57);
    GetParam().label(second, L"Second");
    GetParam().label(first, L"First");
    EXPECT_EQ(GetParam().search(L"Second", first), nullptr);
    EXPECT_EQ(GetParam().search(L"Second", root), second);
}

TEST_P(TextSearches, CompareWithCase) {
    Tree root(57);
    GetParam().label(root, L"Name");
    EXPECT_EQ(GetParam().search(L"name", root), nullptr);
    EXPECT_EQ(GetParam().search(L"NAME", root), nullptr);
    EXPECT_EQ(GetParam().search(L"Name ", root), nullptr);
}

TEST_P(TextSearches, NeverMatchTheEmptyText) {
    Tree root(61);
    addFirst(root, 57);
    ASSERT_STREQ((root.root()->*GetParam().read)(), L"");
    EXPECT_EQ(GetParam().search(L"", root), nullptr);
    EXPECT_EQ(GetParam().search(nullptr, root), nullptr);
}

TEST_P(TextSearches, GiveNullForANullStart) {
    EXPECT_EQ(GetParam().search(L"x", nullptr), nullptr);
    EXPECT_EQ(GetParam().search(nullptr, nullptr), nullptr);
}

TEST(NodeLookup, PathsIncludeTheRoot) {
    Tree root(56, L"P");
    IFCNode* const sub = addFirst(root, 61, L"S");
    IFCNode* const block = addFirst(sub, 57, L"B");
    EXPECT_EQ(CFCNodeHelper::FindNode(L"P.S.B", root), block);
    EXPECT_EQ(CFCNodeHelper::FindNode(L"S.B", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNode(L"P.S.B", sub), block) << "the path does not depend on the start";
}

TEST(NodeLookup, PathsByCaptionLeaveTheTwoTopmostLevelsOut) {
    Tree root(56, L"", L"Root");
    IFCNode* const child = addFirst(root, 61, L"", L"Child");
    IFCNode* const grandchild = addFirst(child, 61, L"", L"Grand");
    IFCNode* const block = addFirst(grandchild, 57, L"", L"Block");
    EXPECT_EQ(CFCNodeHelper::FindNodeByNodePathCaption(L"Child", root), child);
    EXPECT_EQ(CFCNodeHelper::FindNodeByNodePathCaption(L"Grand", root), grandchild);
    EXPECT_EQ(CFCNodeHelper::FindNodeByNodePathCaption(L"Grand.Block", root), block);
    EXPECT_EQ(CFCNodeHelper::FindNodeByNodePathCaption(L"Child.Grand.Block", root), nullptr);
}

TEST(NodeLookup, AnEmptyCaptionIsNotFoundAlthoughNodesHaveIt) {
    Tree root(69, L"", L"List");
    addFirst(root, 71, L"", L"");
    EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"", root), nullptr);
}

TEST(NodeLookup, AVeryDeepTreeIsSearchedToItsEnd) {
    Tree root(69, L"", L"List");
    IFCNode* const last = deepen(root, kGreatDepth);
    last->SetNodeCaption(L"Bottom");
    last->SetItemFilePath(L"bottom.xml");
    EXPECT_EQ(CFCNodeHelper::FindNodeByCaption(L"Bottom", root), last);
    EXPECT_EQ(CFCNodeHelper::FindNodeByFilePath(L"bottom.xml", root), last);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"Bottom", root), last);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(root), kGreatDepth);
    EXPECT_TRUE(CFCNodeHelper::IsValidNode(root, last));
    EXPECT_EQ(CFCNodeHelper::FindVariableByID(root, 1), nullptr);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(last), nullptr);
}

// --- FindNodeComplete ------------------------------------------------------------------------------------------

TEST(FindNodeComplete, FindsTheStartAndAnyNamedDescendant) {
    Tree root(56, L"P");
    IFCNode* const sub = addFirst(root, 61, L"S");
    IFCNode* const block = addFirst(sub, 57, L"B");
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"P", root), root.root());
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"S", root), sub);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"B", root), block);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"b", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"Q", root), nullptr);
}

TEST(FindNodeComplete, GivesTheFirstMatchDepthFirst) {
    Tree root(61, L"P");
    IFCNode* const second = addFirst(root, 57, L"X");
    IFCNode* const first = addFirst(root, 61, L"S");
    IFCNode* const inner = addFirst(first, 57, L"X");
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"X", root), inner);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"X", second), second);
}

TEST(FindNodeComplete, GoesOnThroughARootWithoutId) {
    Tree root(56);
    IFCNode* const block = addFirst(root, 57, L"B");
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"B", root), block);
}

TEST(FindNodeComplete, DoesNotLookBelowAnInnerNodeWithoutId) {
    Tree root(56, L"P");
    IFCNode* const unnamed = addFirst(root, 61);
    addFirst(unnamed, 57, L"B");
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"B", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"B", unnamed), nullptr) << "nor when the search starts there";
    // The siblings behind it are searched all the same.
    Tree other(61, L"P");
    IFCNode* const named = addFirst(other, 57, L"B");
    addFirst(other, 61);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"B", other), named);
}

TEST(FindNodeComplete, FindsNothingForAnEmptyIdOrANullStart) {
    Tree root(61);
    addFirst(root, 57);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(nullptr, root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(L"x", nullptr), nullptr);
}

TEST(FindNodeComplete, TakesAnIdThatStandsInTheTree) {
    Tree root(61, L"P");
    IFCNode* const block = addFirst(root, 57, L"B");
    EXPECT_EQ(CFCNodeHelper::FindNodeComplete(block->GetNodeId(), root), block);
}

// --- The two walks by caption ----------------------------------------------------------------------------------

TEST(FindNodeFromCurrentParent, FindsTheFirstDirectChild) {
    Tree root(69, L"", L"X");
    IFCNode* const later = addFirst(root, 71, L"", L"X");
    IFCNode* const first = addFirst(root, 71, L"", L"X");
    IFCNode* const folder = addFirst(root, 71, L"", L"F");
    addFirst(folder, 71, L"", L"Inner");
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, L"X"), first);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, L"Inner"), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, L"x"), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(folder, L"F"), nullptr) << "the node itself is not tested";
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, first->GetNodeCaption()), first);
    EXPECT_NE(later, first);
}

TEST(FindNodeFromCurrentParent, AnEmptyCaptionMatchesAChildWithoutOne) {
    Tree root(69);
    addFirst(root, 71, L"", L"Named");
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, L""), nullptr);
    IFCNode* const unnamed = addFirst(root, 71);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, L""), unnamed);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(root, nullptr), unnamed);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromCurrentParent(nullptr, L"Named"), nullptr);
}

TEST(FindNodeFromRoot, FindsLeavesOfTheStartAndOfItsFollowingSiblings) {
    // Children in order: A with the leaf a1, the leaf B, and C with the folder c that holds the leaf c1.
    Tree root(69);
    IFCNode* const a = make(71, L"", L"A");
    IFCNode* const b = make(71, L"", L"B");
    IFCNode* const c = make(71, L"", L"C");
    adopt(root, {a, b, c});
    IFCNode* const a1 = addFirst(a, 71, L"", L"a1");
    IFCNode* const inner = addFirst(c, 71, L"", L"c");
    IFCNode* const c1 = addFirst(inner, 71, L"", L"c1");
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"a1", a), a1);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"B", a), b);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"c1", a), c1);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"c1", c), c1);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"a1", b), nullptr) << "siblings in front are not searched";
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"c1", root), c1);
}

TEST(FindNodeFromRoot, NeverFindsANodeWithChildren) {
    Tree root(69, L"", L"List");
    IFCNode* const folder = addFirst(root, 71, L"", L"Folder");
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"Folder", root), folder) << "still a leaf";
    addFirst(folder, 71, L"", L"Inner");
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"Folder", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"List", root), nullptr);
}

TEST(FindNodeFromRoot, PrefersWhatLiesBelowAnEarlierSibling) {
    Tree root(69);
    IFCNode* const first = make(71, L"", L"F");
    IFCNode* const second = make(71, L"", L"X");
    adopt(root, {first, second});
    IFCNode* const inner = addFirst(first, 71, L"", L"X");
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"X", first), inner);
}

TEST(FindNodeFromRoot, AnEmptyCaptionMatchesALeafWithoutOne) {
    Tree root(69);
    IFCNode* const folder = addFirst(root, 71);
    IFCNode* const leaf = addFirst(folder, 71);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"", root), leaf);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(nullptr, root), leaf);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"", nullptr), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeFromRoot(L"Other", root), nullptr);
}

TEST(FindNodeFromRoot, ManyRowsOfSiblingsNeedNoStack) {
    Tree root(69);
    for (int i = 0; i < kGreatDepth; ++i) {
        addFirst(root, 71, L"", i == 0 ? L"Last" : L"Row");
    }
    IFCNode* const found = CFCNodeHelper::FindNodeFromRoot(L"Last", root->GetChild());
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->GetNodeCaption(), L"Last");
}

// --- By kind ---------------------------------------------------------------------------------------------------

TEST(FindNodeByType, FindsTheNodeItselfFirst) {
    Tree root(61);
    addFirst(root, 61);
    EXPECT_EQ(CFCNodeHelper::FindNodeByType(root, eShapeType_SubProcess), root.root());
    EXPECT_TRUE(CFCNodeHelper::FindNodeType(root, eShapeType_SubProcess));
}

TEST(FindNodeByType, FindsTheFirstChildOfTheType) {
    Tree root(61);
    IFCNode* const later = addFirst(root, 58);
    IFCNode* const first = addFirst(root, 58);
    addFirst(root, 57);
    EXPECT_EQ(CFCNodeHelper::FindNodeByType(root, eShapeType_Decision), first);
    EXPECT_TRUE(CFCNodeHelper::FindNodeType(root, eShapeType_Decision));
    EXPECT_NE(first, later);
}

TEST(FindNodeByType, DoesNotSeeGrandchildren) {
    Tree root(61);
    IFCNode* const sub = addFirst(root, 61);
    addFirst(sub, 58);
    EXPECT_EQ(CFCNodeHelper::FindNodeByType(root, eShapeType_Decision), nullptr);
    EXPECT_FALSE(CFCNodeHelper::FindNodeType(root, eShapeType_Decision));
    EXPECT_TRUE(CFCNodeHelper::FindNodeType(sub, eShapeType_Decision));
}

TEST(FindNodeByType, FindsNothingFromNull) {
    EXPECT_EQ(CFCNodeHelper::FindNodeByType(nullptr, eShapeType_Block), nullptr);
    EXPECT_FALSE(CFCNodeHelper::FindNodeType(nullptr, eShapeType_Block));
}

TEST(FindNodeByType, GoesByTheStoredCode) {
    Tree root(69);
    IFCNode* const history = addFirst(root, 71);
    history->SetNodeType(178);
    EXPECT_EQ(CFCNodeHelper::FindNodeByType(root, eShapeType_History), history);
    EXPECT_EQ(CFCNodeHelper::FindNodeByType(root, eShapeType_Folder), nullptr);
}

TEST(GetProcessNode, ClimbsToTheNearestProcess) {
    Tree outer(160);
    IFCNode* const inner = addFirst(outer, 56);
    IFCNode* const sub = addFirst(inner, 61);
    IFCNode* const block = addFirst(sub, 57);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(block), inner);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(sub), inner);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(inner), outer.root()) << "a process with a parent is not its own answer";
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(outer), outer.root()) << "one without is";
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(nullptr), nullptr);
}

TEST(GetProcessNode, GivesNullAtATopThatIsNoProcess) {
    Tree root(61);
    IFCNode* const block = addFirst(root, 57);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(block), nullptr);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(root), nullptr);
    IFCNode* const lone = addFirst(root, 56);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(lone), nullptr);
}

TEST(GetProcessNode, GoesByTheCodeAndNotByTheClass) {
    Tree root(61);
    IFCNode* const block = addFirst(root, 57);
    root->SetNodeType(56);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(block), root.root());

    Tree process(56);
    IFCNode* const inner = addFirst(process, 57);
    process->SetNodeType(61);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(inner), nullptr);
}

TEST(GetProcessNode, FindsTheProcessOfAVariable) {
    Tree process(56);
    IFCNode* const block = addFirst(process, 57);
    EXPECT_EQ(CFCNodeHelper::GetProcessNode(addVariable(block, L"x")), process.root());
}

TEST(GetProcessNode, ComesBackFromParentsThatCloseOnThemselves) {
    for (int length : {1, 2, 3, 70}) {
        std::vector<IFCNode*> ring;
        for (int i = 0; i < length; ++i) {
            ring.push_back(make(57));
        }
        for (int i = 0; i < length; ++i) {
            ring[static_cast<std::size_t>(i)]->SetParentNode(ring[static_cast<std::size_t>((i + 1) % length)]);
        }
        EXPECT_EQ(CFCNodeHelper::GetProcessNode(ring.front()), nullptr) << length;
        for (IFCNode* node : ring) {
            delete node;
        }
    }
}

TEST(GetBlockCount, CountsAllDescendants) {
    Tree root(61);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(root), 0);
    IFCNode* const sub = addFirst(root, 61);
    addFirst(root, 57);
    addFirst(sub, 57);
    addFirst(sub, 57);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(root), 4);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(sub), 2) << "siblings of the start do not count";
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(nullptr), 0);
}

TEST(GetBlockCount, CountsTheExtraNodesOfAProcess) {
    Tree process(56);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(process), 2);
    addFirst(process, 57);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(process), 3);
}

TEST(GetBlockCount, DoesNotCountVariablesAndConnectors) {
    Tree root(61);
    IFCNode* const block = addFirst(root, 57);
    addVariable(block, L"x");
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(root), 1);
}

TEST(IsValidNode, KnowsEveryNodeOfTheTreeByIdentity) {
    Tree root(61, L"R");
    IFCNode* const sub = addFirst(root, 61, L"S");
    IFCNode* const last = addFirst(sub, 57, L"B");
    IFCNode* const first = addFirst(sub, 57, L"B");
    Tree twin(57, L"B");
    for (IFCNode* node : {root.root(), sub, first, last}) {
        EXPECT_TRUE(CFCNodeHelper::IsValidNode(root, node));
    }
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(root, twin));
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(sub, root)) << "only what lies below";
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(first, last)) << "not the siblings of the start";
}

TEST(IsValidNode, IsFalseForNulls) {
    Tree root(57);
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(nullptr, nullptr));
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(root, nullptr));
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(nullptr, root));
}

TEST(IsValidNode, AcceptsAPointerToANodeThatIsGone) {
    Tree root(61);
    IFCNode* const gone = addFirst(root, 57);
    CFCNodeHelper::DestroyTree(gone);
    EXPECT_FALSE(CFCNodeHelper::IsValidNode(root, gone));
}

// --- Scheduled blocks ------------------------------------------------------------------------------------------

class FindNodeWBS : public testing::Test {
protected:
    IFCNode* scheduled(wchar_t const* wbs, wchar_t const* uid) {
        IFCNode* const node = make(150);
        node->GetBPMBlockData()->SetWBS(wbs);
        node->GetBPMBlockData()->SetUID(uid);
        return node;
    }

    Tree root{61};
};

TEST_F(FindNodeWBS, FindsByCodeOrElseByUniqueIdWithoutCase) {
    IFCNode* const a = scheduled(L"1.a", L"u1");
    IFCNode* const b = scheduled(L"1.B", L"U2");
    adopt(root, {a, b});
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"1.A", L"none", a), a);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"1.b", L"none", a), b);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"none", L"u2", a), b) << "the code differs, the id fits";
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"none", L"none", a), nullptr);
}

TEST_F(FindNodeWBS, GivesTheFirstNodeThatFitsEitherWay) {
    IFCNode* const byId = scheduled(L"x", L"u");
    IFCNode* const byCode = scheduled(L"w", L"y");
    adopt(root, {byId, byCode});
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"w", L"u", byId), byId);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"w", L"u", byCode), byCode);
}

TEST_F(FindNodeWBS, WalksTheChainOnlyAndPassesOtherNodes) {
    IFCNode* const group = make(61);
    IFCNode* const task = scheduled(L"w", L"u");
    adopt(root, {group, task});
    group->AppendChild(scheduled(L"inner", L"i"), false);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"w", L"", group), task);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"inner", L"i", group), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"w", L"u", root), nullptr) << "children are not searched";
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"w", L"u", nullptr), nullptr);
}

TEST_F(FindNodeWBS, NullTextsAreEmptyOnes) {
    IFCNode* const named = scheduled(L"w", L"u");
    IFCNode* const bare = scheduled(L"", L"id");
    adopt(root, {named, bare});
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(nullptr, nullptr, named), bare);
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(nullptr, L"u", named), named);
}

TEST_F(FindNodeWBS, LeadsFromABlockToItsPredecessor) {
    IFCNode* const first = scheduled(L"1", L"17");
    IFCNode* const second = scheduled(L"2", L"18");
    adopt(root, {first, second});
    second->GetBPMBlockData()->SetPredecessorID(L"17");
    EXPECT_EQ(CFCNodeHelper::FindNodeWBS(L"-", second->GetBPMBlockData()->GetPredecessorID(), first), first);
}

// --- Favourite folders -----------------------------------------------------------------------------------------

TEST(FavouriteFolders, AreFoundByCaptionTheNodeItselfIncluded) {
    Tree favourites(176, L"", L"Mine");
    IFCNode* const folder = addFirst(favourites, 71, L"", L"Folder");
    IFCNode* const inner = addFirst(folder, 71, L"", L"Inner");
    auto* const node = dynamic_cast<CFCFavouriteNode*>(favourites.root());
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->GetFolderNode(L"Folder"), folder);
    EXPECT_EQ(node->GetFolderNode(L"Inner"), inner);
    EXPECT_EQ(node->GetFolderNode(L"Mine"), favourites.root());
    EXPECT_EQ(node->GetFolderNode(L""), nullptr);
}

} // namespace
