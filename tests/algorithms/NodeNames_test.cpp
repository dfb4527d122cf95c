#include "flowmere/algorithms/NodeNames.h"

#include "TreeBuilder.h"
#include "flowmere/algorithms/FCNodeHelper.h"

#include <climits>
#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

// --- Unique names ----------------------------------------------------------------------------------------------

struct UniqueNameCase {
    int type;
    std::vector<std::pair<int, wchar_t const*>> children;
    wchar_t const* expected;
};

void PrintTo(UniqueNameCase const& names, std::ostream* out) {
    *out << "type " << names.type << " among " << names.children.size();
}

class UniqueNames : public testing::TestWithParam<UniqueNameCase> {};

INSTANTIATE_TEST_SUITE_P(CFCNodeHelper, UniqueNames,
                         testing::Values(
                             // The first names of each kind.
                             UniqueNameCase{150, {}, L"Task_01"}, UniqueNameCase{165, {}, L"SubProcess_01"},
                             UniqueNameCase{154, {}, L"_01"}, UniqueNameCase{161, {}, L"_01"},
                             UniqueNameCase{57, {}, L"_01"},
                             // The number of blocks of the kind plus one.
                             UniqueNameCase{150, {{150, L"Task_01"}}, L"Task_02"},
                             UniqueNameCase{150, {{150, L"a"}, {150, L"b"}}, L"Task_03"},
                             UniqueNameCase{165, {{165, L"SubProcess_01"}, {165, L"x"}}, L"SubProcess_03"},
                             UniqueNameCase{156, {{156, L"_01"}}, L"_02"},
                             // Collisions count up.
                             UniqueNameCase{150, {{150, L"Task_01"}, {150, L"Task_03"}}, L"Task_04"},
                             UniqueNameCase{150, {{150, L"Task_02"}}, L"Task_03"},
                             UniqueNameCase{150, {{150, L"Task_04"}, {150, L"Task_05"}, {150, L"Task_06"}}, L"Task_07"},
                             UniqueNameCase{156, {{156, L"_02"}}, L"_03"},
                             // Case counts.
                             UniqueNameCase{150, {{150, L"task_02"}}, L"Task_02"},
                             // Other kinds neither count nor collide.
                             UniqueNameCase{150, {{151, L"Task_01"}, {165, L"Task_01"}, {57, L"Task_01"}}, L"Task_01"},
                             // Children of the type outside the workflow family neither.
                             UniqueNameCase{57, {{57, L"_01"}, {57, L"_02"}}, L"_01"},
                             UniqueNameCase{71, {{71, L"_01"}}, L"_01"},
                             // Blocks without id count.
                             UniqueNameCase{150, {{150, L""}}, L"Task_02"}));

TEST_P(UniqueNames, AreTheNextFreeOnes) {
    Tree parent(160);
    for (auto const& [type, id] : GetParam().children) {
        addFirst(parent, type, id);
    }
    EXPECT_EQ(CFCNodeHelper::GetUniqueNameForGivenType(parent, static_cast<eShapeType>(GetParam().type)),
              GetParam().expected);
}

TEST(UniqueName, GrowsPastTwoDigits) {
    Tree parent(160);
    for (int i = 0; i < 99; ++i) {
        addFirst(parent, 150, L"x");
    }
    EXPECT_EQ(CFCNodeHelper::GetUniqueNameForGivenType(parent, eShapeType_Task), L"Task_100");
    addFirst(parent, 150, L"Task_101");
    EXPECT_EQ(CFCNodeHelper::GetUniqueNameForGivenType(parent, eShapeType_Task), L"Task_102");
}

TEST(UniqueName, StaysUniqueOverManyBlocks) {
    Tree parent(160);
    for (int i = 1; i <= 2000; ++i) {
        TuString const name = CFCNodeHelper::GetUniqueNameForGivenType(parent, eShapeType_BasicSubProcess);
        if (i == 9 || i == 2000) {
            EXPECT_EQ(name, i == 9 ? L"SubProcess_09" : L"SubProcess_2000");
        }
        if (i <= 40 || i == 2000) {
            addFirst(parent, 165, name);
        } else {
            addFirst(parent, 165, L"SubProcess_0");
        }
    }
}

TEST(UniqueName, GrandchildrenDoNotCount) {
    Tree parent(160);
    IFCNode* const group = addFirst(parent, 161, L"G");
    addFirst(group, 150, L"Task_01");
    EXPECT_EQ(CFCNodeHelper::GetUniqueNameForGivenType(parent, eShapeType_Task), L"Task_01");
    EXPECT_EQ(CFCNodeHelper::GetUniqueNameForGivenType(group, eShapeType_Task), L"Task_02");
}

TEST(UniqueName, WithoutAParentTheFirstNameIsFree) {
    EXPECT_EQ(CFCNodeHelper::GetUniqueNameForGivenType(nullptr, eShapeType_Task), L"Task_01");
}

// --- The step from a name that is taken ------------------------------------------------------------------------

struct NextNameCase {
    wchar_t const* taken;
    wchar_t const* next;
};

void PrintTo(NextNameCase const& names, std::ostream* out) {
    *out << '"' << narrow(names.taken) << '"';
}

class NextNames : public testing::TestWithParam<NextNameCase> {};

INSTANTIATE_TEST_SUITE_P(UniqueNames, NextNames,
                         testing::Values(NextNameCase{L"Task_01", L"Task_02"}, NextNameCase{L"Task_08", L"Task_09"},
                                         NextNameCase{L"Task_09", L"Task_10"}, NextNameCase{L"Task_99", L"Task_100"},
                                         NextNameCase{L"Task_7", L"Task_08"}, NextNameCase{L"Task_x", L"Task_x_01"},
                                         NextNameCase{L"Task_x_01", L"Task_x_02"},
                                         NextNameCase{L"Task_0", L"Task_0_01"}, NextNameCase{L"Task_00", L"Task_00_01"},
                                         NextNameCase{L"Task_", L"Task__01"}, NextNameCase{L"Task", L"Task_01"},
                                         NextNameCase{L"", L"_01"}, NextNameCase{L"_01", L"_02"},
                                         NextNameCase{L"a_b_3", L"a_b_04"}, NextNameCase{L"Task_3x", L"Task_04"},
                                         NextNameCase{L"Task_2147483646", L"Task_2147483647"},
                                         NextNameCase{L"Task_2147483647", L"Task_2147483647_01"},
                                         NextNameCase{L"Task_99999999999", L"Task_99999999999_01"}));

TEST_P(NextNames, CountUpOrBeginANumber) {
    EXPECT_EQ(flowmere::nextName(GetParam().taken), GetParam().next);
}

// --- Kinds by name ---------------------------------------------------------------------------------------------

struct KindNameCase {
    wchar_t const* name;
    int type;
};

void PrintTo(KindNameCase const& kind, std::ostream* out) {
    *out << narrow(kind.name);
}

class KindNames : public testing::TestWithParam<KindNameCase> {};

INSTANTIATE_TEST_SUITE_P(CFCNodeHelper, KindNames,
                         testing::Values(KindNameCase{L"START", 154}, KindNameCase{L"END", 155},
                                         KindNameCase{L"APPLICATIONTASK", 150}, KindNameCase{L"FORK", 156},
                                         KindNameCase{L"JOIN", 157}, KindNameCase{L"DECISIONTASK", 153},
                                         KindNameCase{L"SUPERSTATE", 161}, KindNameCase{L"BASICSUPERSTATE", 165},
                                         KindNameCase{L"SUPERSTATELOOP", 162}, KindNameCase{L"DECISIONLOOP", 163},
                                         KindNameCase{L"SPAWNINGLOOP", 164}, KindNameCase{L"DECISION", 58},
                                         KindNameCase{L"SUBPROCESS", 61}, KindNameCase{L"BLOCK", 57},
                                         KindNameCase{L"TERMINATOR", 55}));

TEST_P(KindNames, StandForTheirTypes) {
    KindNameCase const& kind = GetParam();
    EXPECT_EQ(CFCNodeHelper::GetNodeTypeFromName(kind.name), kind.type);
    EXPECT_EQ(CFCNodeHelper::GetNodeTypeFromName((std::wstring(L" \t\r\n") + kind.name + L"\v\f ").c_str()), kind.type);
    std::wstring lower(kind.name);
    lower[0] = static_cast<wchar_t>(lower[0] - L'A' + L'a');
    EXPECT_EQ(CFCNodeHelper::GetNodeTypeFromName(lower.c_str()), 0) << "case counts";
    EXPECT_EQ(CFCNodeHelper::GetNodeTypeFromName((std::wstring(kind.name) + L"X").c_str()), 0);
}

TEST(KindName, AnyOtherTextIsZero) {
    for (wchar_t const* name :
         {L"", L" ", L"fork", L"FORK JOIN", L"PROCESS", L"ROUNDRECT", L"UnKnown", L"Rectangle", L"task-node"}) {
        EXPECT_EQ(CFCNodeHelper::GetNodeTypeFromName(name), 0) << narrow(name);
    }
    EXPECT_EQ(CFCNodeHelper::GetNodeTypeFromName(nullptr), 0);
}

} // namespace
