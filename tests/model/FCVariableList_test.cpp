#include "flowmere/model/FCVariableList.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using flowmere::test::narrow;

// Variables without catalog nodes are all that a list needs.
CFCVariableData* newVariable(std::string const& name) {
    return new CFCVariableData(name.c_str(), 0, 0, 0);
}

// A list that destroys its elements.
class List : public CFCVariableList {
public:
    ~List() override { DeleteAll(); }

    CFCVariableData* add(std::string const& name) {
        CFCVariableData* const variable = newVariable(name);
        AddTail(variable);
        return variable;
    }
    // Enough others in front to take the search past the first few elements.
    void fill(int count = 100) {
        for (int number = 0; number < count; ++number) {
            add("filler" + std::to_string(number));
        }
    }
};

// What a plain walk finds: the measure of both searches.
CFCVariableData* walk(CFCVariableList& list, wchar_t const* name, bool noCase) {
    __FCPOSITION* position = list.GetHeadPosition();
    while (position != nullptr) {
        CFCVariableData* const variable = list.GetNext(position);
        if (variable == nullptr) {
            continue;
        }
        TuString const own(variable->GetVariableName());
        if (noCase ? !own.IsEmpty() && own.CompareNoCase(name) == 0 : (own == name) != 0) {
            return variable;
        }
    }
    return nullptr;
}

} // namespace

TEST(FCVariableList, WalkGivesVariablesInOrder) {
    List list;
    CFCVariableData* const a = list.add("a");
    CFCVariableData* const b = list.add("b");
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(position), a);
    EXPECT_EQ(list.GetNext(position), b);
    EXPECT_EQ(position, nullptr);
    EXPECT_EQ(list.GetNext(position), nullptr);
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetImage(), 0);
    EXPECT_EQ(list.CloneNode(), nullptr);
}

TEST(FCVariableList, NodeSuccessorOfTheListItselfStaysReachable) {
    List list;
    CFCVariableList other;
    list.SetNext(&other);
    EXPECT_EQ(list.GetNext(), &other);
}

TEST(FCVariableList, ElementThatIsNoVariableReadsAsNull) {
    CFCVariableList list;
    CFCSubGroupNode folder;
    CFCVariableData variable("v", 0, 0, 0);
    list.AddTail(&folder);
    list.AddTail(&variable);
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(position), nullptr);
    EXPECT_NE(position, nullptr);
    EXPECT_EQ(list.GetNext(position), &variable);
    EXPECT_EQ(list.Find(L"v"), &variable);
    EXPECT_EQ(list.FindByExactName(L"v"), &variable);
}

TEST(FCVariableList, FindIgnoresCase) {
    List list;
    CFCVariableData* const x = list.add("X");
    CFCVariableData* const umlaut = list.add("\xc3\x84pfel");
    EXPECT_EQ(list.Find(L"x"), x);
    EXPECT_EQ(list.Find(L"X"), x);
    EXPECT_EQ(list.Find(L"\u00e4PFEL"), umlaut);
    EXPECT_EQ(list.Find(L"y"), nullptr);
    EXPECT_EQ(list.FindByExactName(L"x"), nullptr);
    EXPECT_EQ(list.FindByExactName(L"X"), x);
    CFCNodeList& base = list;
    EXPECT_EQ(base.Find(L"x"), x);
}

TEST(FCVariableList, FindGivesTheFirstOfEqualNames) {
    List list;
    CFCVariableData* const first = list.add("Name");
    CFCVariableData* const second = list.add("name");
    list.add("name");
    EXPECT_EQ(list.Find(L"NAME"), first);
    EXPECT_EQ(list.FindByExactName(L"name"), second);
}

TEST(FCVariableList, EmptyListFindsNothing) {
    CFCVariableList list;
    EXPECT_EQ(list.Find(L"x"), nullptr);
    EXPECT_EQ(list.Find(nullptr), nullptr);
    EXPECT_EQ(list.FindByExactName(L""), nullptr);
}

TEST(FCVariableList, NamelessGroupMemberIsNeverFoundByFind) {
    for (int fillers : {0, 100}) {
        List list;
        list.fill(fillers);
        CFCVariableData* const member = list.add("own");
        member->SetGroup(true);
        member->SetGroupName(L"group");
        EXPECT_EQ(list.Find(L"own"), nullptr);
        EXPECT_EQ(list.Find(L"group"), nullptr);
        EXPECT_EQ(list.Find(L""), nullptr);
        EXPECT_EQ(list.Find(nullptr), nullptr);
        EXPECT_EQ(list.FindByExactName(L""), member);
        EXPECT_EQ(list.FindByExactName(nullptr), member);
        member->SetGroupHeader(true);
        EXPECT_EQ(list.Find(L"GROUP"), member);
        EXPECT_EQ(list.FindByExactName(L""), nullptr);
    }
}

TEST(FCVariableList, SearchTakesItsTextFromAnyBuffer) {
    List list;
    CFCVariableData* const a = list.add("a");
    EXPECT_EQ(list.Find(a->GetVariableName()), a);
    EXPECT_EQ(list.FindByExactName(a->GetVariableName()), a);
}

TEST(FCVariableList, CopyOfAListSharesItsElements) {
    List list;
    list.fill();
    CFCVariableData* const last = list.add("last");
    EXPECT_EQ(list.FindByExactName(L"last"), last);
    CFCVariableList copy(list);
    CFCVariableList assigned;
    assigned = list;
    // All three search the same variables, and each sees every rename.
    for (int round = 0; round < 3; ++round) {
        std::string const name = "name" + std::to_string(round);
        TuString const wide(name.c_str());
        last->SetVariableName(wide);
        EXPECT_EQ(list.FindByExactName(wide), last);
        EXPECT_EQ(copy.FindByExactName(wide), last);
        EXPECT_EQ(assigned.Find(wide), last);
        EXPECT_EQ(list.FindByExactName(L"last"), nullptr);
        EXPECT_EQ(copy.FindByExactName(L"last"), nullptr);
    }
}

TEST(FCVariableList, LongListSeesEachKindOfChange) {
    List list;
    list.fill(60);
    CFCVariableData* const a = list.add("a");
    CFCVariableData* const b = list.add("b");
    EXPECT_EQ(list.FindByExactName(L"a"), a);
    EXPECT_EQ(list.FindByExactName(L"c"), nullptr);

    CFCVariableData* const c = list.add("c");
    EXPECT_EQ(list.FindByExactName(L"c"), c);

    b->SetVariableName(L"a"); // behind the first of that name
    EXPECT_EQ(list.FindByExactName(L"a"), a);
    EXPECT_EQ(list.FindByExactName(L"b"), nullptr);
    a->SetVariableName(L"z");
    EXPECT_EQ(list.FindByExactName(L"a"), b);
    EXPECT_EQ(list.Find(L"Z"), a);

    CFCVariableData* const inserted = newVariable("a");
    list.SetAt(inserted, 40);
    EXPECT_EQ(list.FindByExactName(L"a"), inserted);
    list.DeleteNode(inserted);
    EXPECT_EQ(list.FindByExactName(L"a"), b);
    list.DeleteNode(c);
    EXPECT_EQ(list.FindByExactName(L"c"), nullptr);
    CFCVariableData* const again = list.add("c");
    EXPECT_EQ(list.FindByExactName(L"c"), again);

    CFCVariableData other("d", 0, 0, 0);
    CFCNode& node = *a;
    other.SetNext(node.GetNext());
    a->SetNext(&other); // by hand, past the list
    EXPECT_EQ(list.FindByExactName(L"d"), &other);
    a->SetNext(other.GetNext());
    EXPECT_EQ(list.FindByExactName(L"d"), nullptr);

    b->SetGroup(true);
    EXPECT_EQ(list.FindByExactName(L"a"), nullptr);
    b->SetGroupName(L"g");
    b->SetGroupHeader(true);
    EXPECT_EQ(list.FindByExactName(L"g"), b);

    CFCVariableData replacement("r", 0, 0, 0);
    replacement.SetNext(a->GetNext());
    replacement.SetPrev(a->GetPrev());
    *a = replacement;
    EXPECT_EQ(list.FindByExactName(L"r"), a);
    EXPECT_EQ(list.FindByExactName(L"z"), nullptr);

    list.DeleteAll();
    EXPECT_EQ(list.FindByExactName(L"r"), nullptr);
    EXPECT_EQ(list.Find(L"filler1"), nullptr);
}

TEST(FCVariableList, ChainThatIsCutByHandEndsThere) {
    List list;
    list.fill(60);
    CFCVariableData* const last = list.add("last");
    EXPECT_EQ(list.FindByExactName(L"last"), last);
    IFCNode* const cut = list.GetAt(40);
    IFCNode* const next = cut->GetNext();
    IFCNode* const prev = cut->GetPrev();
    cut->RemoveLinks();
    EXPECT_EQ(list.FindByExactName(L"last"), nullptr);
    EXPECT_EQ(list.Find(L"FILLER40"), cut->GetVariableData());
    cut->SetNext(next);
    cut->SetPrev(prev);
    EXPECT_EQ(list.FindByExactName(L"last"), last);
}

TEST(FCVariableList, SearchInAChainThatClosesOnItselfEnds) {
    for (int fillers : {1, 60}) {
        List list;
        list.fill(fillers);
        CFCVariableData* const last = list.add("last");
        last->SetNext(list.GetAt(0));
        EXPECT_EQ(list.Find(L"LAST"), last);
        EXPECT_EQ(list.Find(L"nothing"), nullptr);
        EXPECT_EQ(list.FindByExactName(L"nothing"), nullptr);
        last->SetNext(nullptr);
    }
}

TEST(FCVariableList, VariablesMayOutliveTheListThatKnewThem) {
    std::vector<std::unique_ptr<CFCVariableData>> variables;
    {
        CFCVariableList list;
        for (int number = 0; number < 100; ++number) {
            variables.emplace_back(newVariable("v" + std::to_string(number)));
            list.AddTail(variables.back().get());
        }
        EXPECT_EQ(list.FindByExactName(L"v99"), variables[99].get());
    }
    variables[50]->SetVariableName(L"renamed");
    variables[98]->SetNext(nullptr);
    EXPECT_STREQ(variables[50]->GetVariableName(), L"renamed");
}

TEST(FCVariableList, LongListWithForeignNodesIsWalked) {
    CFCVariableList list;
    std::vector<std::unique_ptr<CFCVariableData>> variables;
    CFCSubGroupNode folder;
    for (int number = 0; number < 50; ++number) {
        variables.emplace_back(newVariable("v" + std::to_string(number)));
        list.AddTail(variables.back().get());
    }
    EXPECT_EQ(list.FindByExactName(L"v49"), variables[49].get());
    list.AddTail(&folder);
    variables.emplace_back(newVariable("behind"));
    list.AddTail(variables.back().get());
    EXPECT_EQ(list.FindByExactName(L"behind"), variables[50].get());
    EXPECT_EQ(list.Find(L"BEHIND"), variables[50].get());
    EXPECT_EQ(list.FindByExactName(L"v49"), variables[49].get());
    EXPECT_EQ(list.Find(L"nothing"), nullptr);
}

TEST(FCVariableList, SearchAgreesWithAWalkThroughRandomChanges) {
    std::mt19937 random(4711);
    List list;
    std::vector<CFCVariableData*> all;
    auto const below = [&random](std::size_t limit) {
        return static_cast<std::size_t>(random() % limit);
    };
    auto const randomName = [&] {
        return std::string(below(2) == 0 ? "N" : "n") + std::to_string(below(150));
    };
    for (int step = 0; step < 4000; ++step) {
        switch (below(8)) {
        case 0:
        case 1:
        case 2:
            all.push_back(list.add(randomName()));
            break;
        case 3:
            if (!all.empty()) {
                all[below(all.size())]->SetVariableName(TuString(randomName().c_str()));
            }
            break;
        case 4:
            if (!all.empty()) {
                all[below(all.size())]->SetGroup(below(3) == 0);
            }
            break;
        case 5:
            if (all.size() > 60) {
                std::size_t const chosen = below(all.size());
                list.DeleteNode(all[chosen]);
                all.erase(all.begin() + static_cast<std::ptrdiff_t>(chosen));
            }
            break;
        case 6:
            if (all.size() > 2) {
                CFCVariableData* const inserted = newVariable(randomName());
                list.SetAt(inserted, static_cast<int>(1 + below(all.size() - 1)));
                all.push_back(inserted);
            }
            break;
        default: {
            TuString const name(randomName().c_str());
            ASSERT_EQ(list.FindByExactName(name), walk(list, name, false)) << step;
            ASSERT_EQ(list.Find(name), walk(list, name, true)) << step;
            ASSERT_EQ(list.FindByExactName(L""), walk(list, L"", false)) << step;
            break;
        }
        }
    }
    EXPECT_EQ(list.GetCount(), static_cast<int>(all.size()));
}

TEST(FCVariableList, HundredThousandNamesAreFoundWithoutWalking) {
    List list;
    int const count = 100000;
    for (int number = 0; number < count; ++number) {
        CFCVariableData* const added = list.add("v" + std::to_string(number));
        // Adding and searching in turn, as a reader does.
        ASSERT_EQ(list.FindByExactName(added->GetVariableName()), added);
    }
    auto const begin = std::chrono::steady_clock::now();
    for (int number = 0; number < count; ++number) {
        TuString const name(("V" + std::to_string(number)).c_str());
        ASSERT_NE(list.Find(name), nullptr);
    }
    // A walk for each would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}
