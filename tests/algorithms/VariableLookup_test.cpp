#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCApplicationData.h"

#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

// --- Through the block node ------------------------------------------------------------------------------------

TEST(FindVariable, LooksAPathUpThroughTheBlock) {
    Tree root(56);
    CFCVariableData* const top = addVariable(root, L"In");
    IFCNode* const block = addFirst(root, 57, L"A", L"A");
    CFCVariableData* const own = addVariable(block, L"In");
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"In", root), top);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L".In", root), top);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"Template.In", root), top);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"A.In", root), own);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"A.in", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"B.In", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"A.In", block), nullptr) << "the head is the node's own caption";
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariable(nullptr, root), nullptr);
}

TEST(FindVariable, NeedsABlockNode) {
    Tree list(69);
    Tree deployment(182);
    deployment->CreateNewVariable()->SetVariableName(L"x");
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"x", list), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"x", deployment), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariable(L"x", nullptr), nullptr);
}

// --- In the own list -------------------------------------------------------------------------------------------

TEST(FindVariableByName, FindsTheFirstOfTheOwnList) {
    Tree root(61);
    CFCVariableData* const first = addVariable(root, L"x");
    CFCVariableData* const second = addVariable(root, L"x");
    IFCNode* const block = addFirst(root, 57);
    addVariable(block, L"deep");
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"x", root), first);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"X", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"deep", root), nullptr);
    EXPECT_NE(first, second);
}

TEST(FindVariableByName, TakesNamesWithDotsAsTheyAre) {
    Tree root(61);
    CFCVariableData* const dotted = addVariable(root, L"a.b");
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"a.b", root), dotted);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L".a.b", root), nullptr);
}

TEST(FindVariableByName, GoesByTheNameAsSearchesSeeIt) {
    Tree root(61);
    CFCVariableData* const member = addVariable(root, L"x");
    member->SetGroup(true);
    member->SetGroupName(L"G");
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"x", root), nullptr) << "a member of a group has no name";
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"", root), nullptr) << "and an empty name finds nothing";
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(nullptr, root), nullptr);
    member->SetGroupHeader(true);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"G", root), member);
}

TEST(FindVariableByName, FindsInADeployment) {
    Tree deployment(182);
    CFCVariableData* const variable = deployment->CreateNewVariable();
    variable->SetVariableName(L"WorkingDirectory");
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"WorkingDirectory", deployment), variable);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"workingdirectory", deployment), nullptr);
}

TEST(FindVariableByName, NeedsANodeWithAList) {
    Tree list(69);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"x", list), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(L"x", nullptr), nullptr);
}

TEST(FindVariableByName, TheNameMayBeTheVariablesOwn) {
    Tree root(61);
    CFCVariableData* const variable = addVariable(root, L"x");
    EXPECT_EQ(CFCNodeHelper::FindVariableByName(variable->GetVariableName(), root), variable);
}

// --- By identifier ---------------------------------------------------------------------------------------------

struct IdSearchCase {
    char const* name;
    CFCVariableData* (*search)(IFCNode*, int);
    void (*label)(CFCVariableData*, int);
};

void PrintTo(IdSearchCase const& search, std::ostream* out) {
    *out << search.name;
}

class IdSearches : public testing::TestWithParam<IdSearchCase> {
protected:
    CFCVariableData* add(IFCNode* owner, int id) {
        CFCVariableData* const variable = owner->CreateNewVariable();
        GetParam().label(variable, id);
        return variable;
    }
};

INSTANTIATE_TEST_SUITE_P(CFCNodeHelper, IdSearches,
                         testing::Values(IdSearchCase{"FindVariableByID", &CFCNodeHelper::FindVariableByID,
                                                      [](CFCVariableData* variable, int id) {
                                                          variable->SetVariableID(id);
                                                      }},
                                         IdSearchCase{"FindVariableByMapID", &CFCNodeHelper::FindVariableByMapID,
                                                      [](CFCVariableData* variable, int id) {
                                                          variable->SetDeploymentMapId(id);
                                                      }}),
                         [](testing::TestParamInfo<IdSearchCase> const& instance) {
                             return std::string(instance.param.name);
                         });

TEST_P(IdSearches, FindInTheOwnListAndBelow) {
    Tree root(61);
    CFCVariableData* const own = add(root, 1);
    IFCNode* const sub = addFirst(root, 61);
    CFCVariableData* const inner = add(sub, 2);
    CFCVariableData* const deepest = add(addFirst(sub, 57), 3);
    EXPECT_EQ(GetParam().search(root, 1), own);
    EXPECT_EQ(GetParam().search(root, 2), inner);
    EXPECT_EQ(GetParam().search(root, 3), deepest);
    EXPECT_EQ(GetParam().search(sub, 1), nullptr);
    EXPECT_EQ(GetParam().search(root, 4), nullptr);
}

TEST_P(IdSearches, GiveTheFirstOfAList) {
    Tree root(57);
    CFCVariableData* const first = add(root, 7);
    add(root, 7);
    EXPECT_EQ(GetParam().search(root, 7), first);
}

TEST_P(IdSearches, PreferTheDeeperNode) {
    Tree root(61);
    add(root, 7);
    IFCNode* const second = addFirst(root, 57);
    IFCNode* const first = addFirst(root, 61);
    CFCVariableData* const onSecond = add(second, 7);
    EXPECT_EQ(GetParam().search(root, 7), onSecond);
    CFCVariableData* const onFirst = add(first, 7);
    EXPECT_EQ(GetParam().search(root, 7), onFirst) << "children in list order";
    CFCVariableData* const deepest = add(addFirst(first, 57), 7);
    EXPECT_EQ(GetParam().search(root, 7), deepest);
}

TEST_P(IdSearches, PassNodesWithoutVariables) {
    Tree root(69);
    IFCNode* const folder = addFirst(root, 71);
    CFCVariableData* const variable = add(addFirst(folder, 57), 5);
    EXPECT_EQ(GetParam().search(root, 5), variable);
    EXPECT_EQ(GetParam().search(nullptr, 5), nullptr);
}

TEST_P(IdSearches, LeaveTheSiblingsOfTheStartAlone) {
    Tree root(61);
    add(addFirst(root, 57), 5);
    IFCNode* const first = addFirst(root, 57);
    EXPECT_EQ(GetParam().search(first, 5), nullptr);
}

// --- To the end of a chain of links ----------------------------------------------------------------------------

// Blocks B0, B1, ... below one process, each with a variable "x".
class LinkChains : public testing::Test {
protected:
    CFCVariableData* add(int number, std::wstring const& linkPath = {}) {
        IFCNode* const block = addFirst(root, 57, (L"B" + std::to_wstring(number)).c_str());
        return addVariable(block, L"x", linkPath.c_str());
    }
    static std::wstring path(int number) { return L"B" + std::to_wstring(number) + L".x"; }
    CFCVariableData* final(std::wstring const& start) { return CFCNodeHelper::FindFinalVariable(start.c_str(), root); }
    CFCVariableData* checked(std::wstring const& start) {
        return CFCNodeHelper::FindVariableWithCheck(start.c_str(), root);
    }

    Tree root{56};
};

TEST_F(LinkChains, AnUnlinkedVariableIsItsOwnEnd) {
    CFCVariableData* const variable = add(0);
    EXPECT_EQ(final(L"B0.x"), variable);
    EXPECT_EQ(checked(L"B0.x"), variable);
}

TEST_F(LinkChains, AMissingVariableIsNull) {
    EXPECT_EQ(final(L"B0.x"), nullptr);
    EXPECT_EQ(checked(L"B0.x"), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(nullptr, root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(nullptr, root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L"B0.x", nullptr), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B0.x", nullptr), nullptr);
}

TEST_F(LinkChains, AreFollowedToTheirEnd) {
    for (int length : {1, 2, 3, 10, 500}) {
        Tree tree(56);
        CFCVariableData* end = nullptr;
        for (int i = 0; i <= length; ++i) {
            IFCNode* const block = addFirst(tree, 57, (L"B" + std::to_wstring(i)).c_str());
            end = addVariable(block, L"x", i < length ? path(i + 1).c_str() : L"");
        }
        EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L"B0.x", tree), end) << length;
        EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B0.x", tree), end) << length;
    }
}

TEST_F(LinkChains, ABrokenOneIsNull) {
    add(0, L"B1.x");
    add(1, L"B2.x");
    add(2, L"Nowhere.x");
    EXPECT_EQ(final(L"B0.x"), nullptr);
    EXPECT_EQ(final(L"B2.x"), nullptr);
    EXPECT_EQ(checked(L"B0.x"), nullptr);
    EXPECT_EQ(checked(L"B2.x"), nullptr);
}

TEST_F(LinkChains, ClosedOnThemselvesGiveNullOrTheOrigin) {
    for (int length : {1, 2, 3, 4, 5, 8, 17, 300}) {
        Tree tree(56);
        std::vector<CFCVariableData*> variables;
        for (int i = 0; i < length; ++i) {
            IFCNode* const block = addFirst(tree, 57, (L"B" + std::to_wstring(i)).c_str());
            variables.push_back(addVariable(block, L"x", path((i + 1) % length).c_str()));
        }
        for (int start : {0, length / 2, length - 1}) {
            EXPECT_EQ(CFCNodeHelper::FindFinalVariable(path(start).c_str(), tree), nullptr) << length;
            EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(path(start).c_str(), tree),
                      variables[static_cast<std::size_t>(start)])
                << length;
        }
    }
}

TEST_F(LinkChains, LeadingIntoALoopElsewhereGiveNull) {
    for (int loop : {1, 2, 3, 7, 40}) {
        for (int way : {1, 2, 5, 33}) {
            Tree tree(56);
            for (int i = 0; i < way + loop; ++i) {
                IFCNode* const block = addFirst(tree, 57, (L"B" + std::to_wstring(i)).c_str());
                addVariable(block, L"x", path(i + 1 < way + loop ? i + 1 : way).c_str());
            }
            EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L"B0.x", tree), nullptr) << way << " to " << loop;
            EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B0.x", tree), nullptr) << way << " to " << loop;
        }
    }
}

TEST_F(LinkChains, ALoopMayNameItsVariablesInSeveralWays) {
    CFCVariableData* const top = addVariable(root, L"x", L"Template.x");
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L".x", root), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L".x", root), top);
}

TEST_F(LinkChains, ATargetThatIsLinkedByPointerAloneGivesNull) {
    CFCVariableData* const source = add(0, L"B1.x");
    CFCVariableData* const target = add(1);
    CFCVariableData* const far = add(2);
    target->LinkVariable(far);
    ASSERT_TRUE(target->IsLinked());
    EXPECT_EQ(final(L"B0.x"), nullptr);
    EXPECT_EQ(final(L"B1.x"), nullptr);
    EXPECT_EQ(checked(L"B0.x"), nullptr);
    EXPECT_NE(source, far);
}

TEST_F(LinkChains, GoByPathsAndNeverByPointers) {
    CFCVariableData* const source = add(0, L"B1.x");
    CFCVariableData* const byPath = add(1);
    CFCVariableData* const byPointer = add(2);
    source->LinkVariable(byPointer);
    EXPECT_EQ(final(L"B0.x"), byPath);
    EXPECT_EQ(checked(L"B0.x"), byPath);
}

TEST_F(LinkChains, ThePathMayBeTheVariablesOwnLink) {
    CFCVariableData* const source = add(0, L"B1.x");
    CFCVariableData* const target = add(1);
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(source->GetLinkPath(), root), target);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(source->GetLinkPath(), root, source), target);
}

TEST_F(LinkChains, TheFormWithAnOriginStopsThere) {
    CFCVariableData* const a = add(0, L"B1.x");
    CFCVariableData* const b = add(1, L"B0.x");
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B0.x", root, a), a);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B0.x", root, b), b);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B0.x", root, nullptr), nullptr) << "a loop without the origin";
    CFCVariableData* const end = add(2);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B2.x", root, a), end);
    EXPECT_EQ(CFCNodeHelper::FindVariableWithCheck(L"B9.x", root, a), nullptr);
}

} // namespace
