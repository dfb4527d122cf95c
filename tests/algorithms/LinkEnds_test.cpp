#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/algorithms/LinkEnds.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCVariableData.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

std::wstring nameOf(int number) {
    return L"v" + std::to_wstring(number);
}

// A root block with the variables v0, v1, ...
class LinkEndsTest : public testing::Test {
protected:
    LinkEndsTest() : root(new CFCBlockNode) {}
    ~LinkEndsTest() override { CFCNodeHelper::DestroyTree(root); }

    void fill(int count) {
        for (int number = 0; number < count; ++number) {
            variables.push_back(root->CreateNewVariable());
            variables.back()->SetVariableName(nameOf(number).c_str());
        }
    }
    // What the plain walk says about every path, on a root that no memory stands for.
    std::vector<CFCVariableData*> plain() {
        CFCBlockNode elsewhere;
        flowmere::LinkEnds const other(&elsewhere);
        return all();
    }
    std::vector<CFCVariableData*> all() {
        std::vector<CFCVariableData*> ends;
        for (std::size_t number = 0; number <= variables.size(); ++number)
            ends.push_back(CFCNodeHelper::FindFinalVariable(nameOf(static_cast<int>(number)).c_str(), root));
        return ends;
    }

    CFCBlockNode* root;
    std::vector<CFCVariableData*> variables;
};

} // namespace

TEST_F(LinkEndsTest, StandsForItsOwnTreeAlone) {
    CFCBlockNode other;
    EXPECT_EQ(flowmere::LinkEnds::of(root), nullptr);
    flowmere::LinkEnds ends(root);
    EXPECT_EQ(flowmere::LinkEnds::of(root), &ends);
    {
        flowmere::LinkEnds inner(&other);
        EXPECT_EQ(flowmere::LinkEnds::of(root), nullptr);
        EXPECT_EQ(flowmere::LinkEnds::of(&other), &inner);
    }
    EXPECT_EQ(flowmere::LinkEnds::of(root), &ends);
}

TEST_F(LinkEndsTest, RemembersWhatThePlainWalkFindsAndForgetsWhenLinksChange) {
    std::mt19937 random(7);
    constexpr int kCount = 40;
    fill(kCount);
    // Chains, dead ends, variables that link to themselves, and circles of every length come up.
    auto const relink = [&](CFCVariableData* variable) {
        int const choice = static_cast<int>(random() % (kCount + 12));
        variable->SetLinkPath(choice <= kCount ? nameOf(choice).c_str() : L"");
    };
    for (int round = 0; round < 200; ++round) {
        flowmere::LinkEnds const ends(root);
        for (CFCVariableData* variable : variables)
            relink(variable);
        for (int change = 0; change < 5; ++change) {
            std::vector<CFCVariableData*> const expected = plain();
            ASSERT_EQ(all(), expected) << round;
            ASSERT_EQ(all(), expected) << "asked again, " << round;
            CFCVariableData* const variable = variables[random() % kCount];
            switch (random() % 4) {
            case 0:
                relink(variable);
                break;
            case 1:
                variable->RemoveInvalidLink();
                break;
            case 2:
                variable->LinkVariable(random() % 2 == 0 ? nullptr : variables[random() % kCount]);
                break;
            default:
                variable->AddVariablePrefix(L".");
                break;
            }
        }
        for (CFCVariableData* variable : variables)
            variable->LinkVariable(nullptr);
    }
}

TEST_F(LinkEndsTest, RenamedVariableIsFoundUnderItsNewName) {
    fill(3);
    variables[0]->SetLinkPath(L"v1");
    flowmere::LinkEnds const ends(root);
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L"v0", root), variables[1]);
    variables[1]->SetVariableName(L"gone");
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L"v0", root), nullptr);
    variables[2]->SetVariableName(L"v1");
    EXPECT_EQ(CFCNodeHelper::FindFinalVariable(L"v0", root), variables[2]);
}

TEST_F(LinkEndsTest, LongChainsAndLargeCirclesAreFollowedOnce) {
    constexpr int kCount = 30000;
    fill(kCount);
    for (int number = 0; number + 1 < kCount; ++number)
        variables[static_cast<std::size_t>(number)]->SetLinkPath(nameOf(number + 1).c_str());
    {
        flowmere::LinkEnds const ends(root);
        for (int number = 0; number < kCount; ++number)
            ASSERT_EQ(CFCNodeHelper::FindFinalVariable(nameOf(number).c_str(), root), variables.back());
    }
    variables.back()->SetLinkPath(L"v0");
    flowmere::LinkEnds const ends(root);
    for (int number = 0; number < kCount; ++number)
        ASSERT_EQ(CFCNodeHelper::FindFinalVariable(nameOf(number).c_str(), root), nullptr);
}
