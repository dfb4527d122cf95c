#include "flowmere/model/FCActionData.h"

#include <iterator>
#include <memory>
#include <string>
#include <type_traits>

#include "TestSupport.h"
#include "model/VirtualSlots.h"

namespace {

using TextGetter = wchar_t const* (CFCActionData::*)();
using TextSetter = void (CFCActionData::*)(wchar_t const*);

struct ActionText {
    char const* name;
    TextGetter get;
    TextSetter set;
};

constexpr ActionText kActionTexts[] = {
    {"ActionName", &CFCActionData::GetActionName, &CFCActionData::SetActionName},
    {"ClassName", &CFCActionData::GetClassNameStr, &CFCActionData::SetClassName},
    {"ActionExpression", &CFCActionData::GetActionExpression, &CFCActionData::SetActionExpression},
    {"ActionValue", &CFCActionData::GetActionValue, &CFCActionData::SetActionValue},
    {"ActionType", &CFCActionData::GetActionType, &CFCActionData::SetActionType},
    {"ActionFunction", &CFCActionData::GetActionFunction, &CFCActionData::SetActionFunction},
};

struct TransitionText {
    char const* name;
    wchar_t const* (CFCTransitionData::*get)();
    void (CFCTransitionData::*set)(wchar_t const*);
};

constexpr TransitionText kTransitionTexts[] = {
    {"TransitionTo", &CFCTransitionData::GetTransitionTo, &CFCTransitionData::SetTransitionTo},
    {"TransitionName", &CFCTransitionData::GetTransitionName, &CFCTransitionData::SetTransitionName},
    {"TransitionCaption", &CFCTransitionData::GetTransitionCaption, &CFCTransitionData::SetTransitionCaption},
};

_TgPointLStr point(int x, int y) {
    return {x, y};
}

template <typename Record>
class ActionRecord : public testing::Test {};
using ActionRecords = testing::Types<CFCActionData, CFCEventActionData, CFCExceptionActionData, CFCTimerActionData,
                                     CFCReminderData, CFCTransitionData>;
TYPED_TEST_SUITE(ActionRecord, ActionRecords);

template <typename List>
class ActionList : public testing::Test {};
using ActionLists = testing::Types<CFCEventList, CFCExceptionList, CFCTimerList, CFCReminderList, CFCTransitionList>;
TYPED_TEST_SUITE(ActionList, ActionLists);

template <typename List>
concept HasTypedGetNext = requires(List list, __FCPOSITION*& position) {
    list.GetNext(position);
};

} // namespace

TYPED_TEST(ActionRecord, StartsWithEmptyTextsAndNoPlaceInTheTree) {
    TypeParam record;
    for (ActionText const& text : kActionTexts) {
        EXPECT_STREQ((record.*text.get)(), L"") << text.name;
    }
    EXPECT_EQ(record.GetNodeType(), 0);
    EXPECT_EQ(record.GetParentNode(), nullptr);
    EXPECT_EQ(record.CloneNode(), nullptr);
    EXPECT_GT(record.GetNodeHandle(), 0);
}

TYPED_TEST(ActionRecord, KeepsEachTextApartFromTheOthers) {
    TypeParam record;
    for (ActionText const& text : kActionTexts) {
        (record.*text.set)(flowmere::fromUtf8(text.name).c_str());
    }
    for (ActionText const& text : kActionTexts) {
        EXPECT_EQ(flowmere::test::narrow((record.*text.get)()), text.name);
    }
}

TYPED_TEST(ActionRecord, IsAnActionAndANode) {
    static_assert(std::is_base_of_v<CFCActionData, TypeParam>);
    static_assert(std::is_base_of_v<CFCNode, TypeParam>);
    static_assert(std::has_virtual_destructor_v<TypeParam>);
    std::unique_ptr<IFCNode> node = std::make_unique<TypeParam>();
    EXPECT_NE(dynamic_cast<CFCActionData*>(node.get()), nullptr);
}

#if FLOWMERE_TEST_SLOTS
TEST(FCActionData, OperationsStandInTheDeclaredOrderBehindThoseOfANode) {
    using flowmere::test::kFirstSlotBehindNode;
    using flowmere::test::slotOf;
    std::ptrdiff_t const slots[] = {
        slotOf(&CFCActionData::SetClassName),        slotOf(&CFCActionData::GetClassNameStr),
        slotOf(&CFCActionData::SetActionName),       slotOf(&CFCActionData::GetActionName),
        slotOf(&CFCActionData::SetActionExpression), slotOf(&CFCActionData::GetActionExpression),
        slotOf(&CFCActionData::SetActionValue),      slotOf(&CFCActionData::GetActionValue),
        slotOf(&CFCActionData::SetActionType),       slotOf(&CFCActionData::GetActionType),
        slotOf(&CFCActionData::SetActionFunction),   slotOf(&CFCActionData::GetActionFunction),
    };
    ASSERT_EQ(std::ssize(slots), 12);
    for (std::ptrdiff_t i = 0; i < std::ssize(slots); ++i) {
        EXPECT_EQ(slots[i], kFirstSlotBehindNode + i) << "operation number " << i;
    }
}

TYPED_TEST(ActionRecord, AddsNoVirtualOperationToThoseOfAnAction) {
    EXPECT_EQ(flowmere::test::slotsOf<TypeParam>(), flowmere::test::kFirstSlotBehindNode + 12);
}

TYPED_TEST(ActionList, AddsNoVirtualOperationToThoseOfAList) {
    EXPECT_EQ(flowmere::test::slotsOf<TypeParam>(), flowmere::test::kFirstSlotBehindNode + 1);
}
#endif

TYPED_TEST(ActionRecord, CreateDoesNothing) {
    TypeParam record;
    record.SetActionName(L"kept");
    record.Create();
    EXPECT_STREQ(record.GetActionName(), L"kept");
}

TEST(FCActionData, SettersCopyTheText) {
    CFCActionData action;
    std::wstring text = L"first";
    action.SetActionValue(text.c_str());
    text = L"other";
    EXPECT_STREQ(action.GetActionValue(), L"first");
}

TEST(FCActionData, SettersTakeNullAsEmptyAndTheirOwnText) {
    CFCActionData action;
    for (ActionText const& text : kActionTexts) {
        (action.*text.set)(L"some text");
        (action.*text.set)((action.*text.get)());
        EXPECT_STREQ((action.*text.get)(), L"some text") << text.name;
        (action.*text.set)((action.*text.get)() + 5);
        EXPECT_STREQ((action.*text.get)(), L"text") << text.name;
        (action.*text.set)(nullptr);
        EXPECT_STREQ((action.*text.get)(), L"") << text.name;
    }
}

TEST(FCActionData, TakesAnyEventTypeAndClassName) {
    CFCActionData action;
    action.SetActionType(L"no such event");
    action.SetClassName(L"no.such.Class");
    EXPECT_STREQ(action.GetActionType(), L"no such event");
    EXPECT_STREQ(action.GetClassNameStr(), L"no.such.Class");
}

TEST(FCActionData, AccessorsAreReachedThroughTheBase) {
    struct Shouting : CFCActionData {
        void SetClassName(wchar_t const* text) override { CFCActionData::SetClassName(TuString(text) + L"!"); }
        wchar_t const* GetActionFunction() override { return L"own"; }
    };
    Shouting shouting;
    CFCActionData& action = shouting;
    action.SetClassName(L"A");
    action.SetActionFunction(L"stored");
    EXPECT_STREQ(action.GetClassNameStr(), L"A!");
    EXPECT_STREQ(action.GetActionFunction(), L"own");
}

TEST(FCActionData, CopyTakesTheTexts) {
    CFCActionData action;
    action.SetActionName(L"run");
    CFCActionData copy(action);
    action.SetActionName(L"changed");
    EXPECT_STREQ(copy.GetActionName(), L"run");
    copy = action;
    EXPECT_STREQ(copy.GetActionName(), L"changed");
}

TEST(FCTransitionData, StartsWithItsSettledDefaults) {
    CFCTransitionData transition;
    for (TransitionText const& text : kTransitionTexts) {
        EXPECT_STREQ((transition.*text.get)(), L"") << text.name;
    }
    EXPECT_EQ(transition.GetInport(), 8);
    EXPECT_EQ(transition.GetOutport(), 4);
    EXPECT_EQ(transition.GetType(), EConnectorType_Workflow);
    for (int i = 0; i < 25; ++i) {
        EXPECT_EQ(transition.GetPoints()[i].x, 0) << i;
        EXPECT_EQ(transition.GetPoints()[i].y, 0) << i;
    }
}

TEST(FCTransitionData, KeepsEachTextApartFromTheOthers) {
    CFCTransitionData transition;
    for (TransitionText const& text : kTransitionTexts) {
        (transition.*text.set)(flowmere::fromUtf8(text.name).c_str());
    }
    for (TransitionText const& text : kTransitionTexts) {
        EXPECT_EQ(flowmere::test::narrow((transition.*text.get)()), text.name);
        (transition.*text.set)((transition.*text.get)() + 10);
        EXPECT_EQ(flowmere::test::narrow((transition.*text.get)()), std::string(text.name).substr(10));
        (transition.*text.set)(nullptr);
        EXPECT_STREQ((transition.*text.get)(), L"") << text.name;
    }
}

TEST(FCTransitionData, KeepsHandlesAndTypeAsGiven) {
    CFCTransitionData transition;
    transition.SetInport(2);
    transition.SetOutport(-7);
    transition.SetType(EConnectorType_Default);
    EXPECT_EQ(transition.GetInport(), 2);
    EXPECT_EQ(transition.GetOutport(), -7);
    EXPECT_EQ(transition.GetType(), EConnectorType_Default);
    transition.SetType(6); // a number without a name
    EXPECT_EQ(static_cast<int>(transition.GetType()), 6);
}

TEST(FCTransitionData, AddPointCutsTheRouteBehindIt) {
    CFCTransitionData transition;
    for (int i = 0; i < 5; ++i) {
        transition.AddPoint(i, point(10 + i, 20 + i));
    }
    transition.AddPoint(2, point(99, 98));
    _TgPointLStr const* points = transition.GetPoints();
    EXPECT_EQ(points[0].x, 10);
    EXPECT_EQ(points[1].x, 11);
    EXPECT_EQ(points[1].y, 21);
    EXPECT_EQ(points[2].x, 99);
    EXPECT_EQ(points[2].y, 98);
    for (int i = 3; i < 25; ++i) {
        EXPECT_EQ(points[i].x, 0) << i;
        EXPECT_EQ(points[i].y, 0) << i;
    }
}

TEST(FCTransitionData, PointWithXOfZeroEndsTheRouteWhereItStands) {
    CFCTransitionData transition;
    transition.AddPoint(0, point(1, 1));
    transition.AddPoint(1, point(0, 5));
    transition.AddPoint(2, point(3, 3));
    int length = 0;
    while (length < CFCTransitionData::kPointCount && transition.GetPoints()[length].x != 0) {
        ++length;
    }
    EXPECT_EQ(length, 1);
    EXPECT_EQ(transition.GetPoints()[1].y, 5);
    EXPECT_EQ(transition.GetPoints()[2].x, 3);
}

TEST(FCTransitionData, HoldsTwentyFivePointsAndIgnoresFurtherOnes) {
    CFCTransitionData transition;
    for (int i = 0; i < 30; ++i) {
        transition.AddPoint(i, point(i + 1, i + 1));
    }
    transition.AddPoint(-1, point(77, 77));
    for (int i = 0; i < 25; ++i) {
        EXPECT_EQ(transition.GetPoints()[i].x, i + 1) << i;
    }
    EXPECT_EQ(transition.GetInport(), 8);
    EXPECT_EQ(transition.GetOutport(), 4);
}

TEST(FCTransitionData, CopyHasARouteOfItsOwn) {
    CFCTransitionData transition;
    transition.SetTransitionTo(L"B");
    transition.AddPoint(0, point(1, 2));
    CFCTransitionData copy(transition);
    transition.AddPoint(0, point(5, 6));
    EXPECT_EQ(copy.GetPoints()[0].x, 1);
    EXPECT_STREQ(copy.GetTransitionTo(), L"B");
}

TYPED_TEST(ActionList, StartsEmpty) {
    TypeParam list;
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    EXPECT_EQ(list.GetCount(), 0);
    list.DeleteAll();
    EXPECT_EQ(list.GetCount(), 0);
}

TYPED_TEST(ActionList, IsWalkedWithGetNextNode) {
    TypeParam list;
    list.AddTail(new CFCActionData);
    list.AddTail(new CFCActionData);
    __FCPOSITION* position = list.GetHeadPosition();
    int count = 0;
    while (position != nullptr) {
        EXPECT_NE(list.GetNextNode(position), nullptr);
        ++count;
    }
    EXPECT_EQ(count, 2);
    EXPECT_EQ(list.GetCount(), 2);
    list.DeleteAll();
}

TYPED_TEST(ActionList, LeavesItsRecordsWhenItGoes) {
    CFCActionData record;
    {
        TypeParam list;
        list.AddTail(&record);
    }
    record.SetActionName(L"alive");
    EXPECT_STREQ(record.GetActionName(), L"alive");
}

TYPED_TEST(ActionList, CopySharesTheRecords) {
    TypeParam list;
    list.AddTail(new CFCActionData);
    TypeParam copy(list);
    EXPECT_EQ(copy.GetHeadPosition(), list.GetHeadPosition());
    EXPECT_EQ(copy.GetTailPosition(), list.GetTailPosition());
    TypeParam assigned;
    assigned = list;
    EXPECT_EQ(assigned.GetHeadPosition(), list.GetHeadPosition());
    list.DeleteAll();
}

TYPED_TEST(ActionList, OnlyTransitionsHaveATypedWalk) {
    constexpr bool isTransitionList = std::is_same_v<TypeParam, CFCTransitionList>;
    EXPECT_EQ(HasTypedGetNext<TypeParam>, isTransitionList);
}

TEST(FCTransitionList, GetNextGivesTheTransitionsInOrder) {
    CFCTransitionList list;
    auto* first = new CFCTransitionData;
    auto* second = new CFCTransitionData;
    list.AddTail(first);
    list.AddTail(second);
    __FCPOSITION* position = list.GetHeadPosition();
    CFCTransitionData* found = list.GetNext(position);
    EXPECT_EQ(found, first);
    found = list.GetNext(position);
    EXPECT_EQ(found, second);
    EXPECT_EQ(position, nullptr);
    EXPECT_EQ(list.GetNext(position), nullptr);
    EXPECT_EQ(list.GetNext(), nullptr); // the list as a node has no sibling
    list.DeleteAll();
}

TEST(FCTransitionList, GetNextPassesARecordOfAnotherClassAsNull) {
    CFCTransitionList list;
    list.AddTail(new CFCActionData);
    auto* transition = new CFCTransitionData;
    list.AddTail(transition);
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(position), nullptr);
    ASSERT_NE(position, nullptr);
    EXPECT_EQ(list.GetNext(position), transition);
    list.DeleteAll();
}

TEST(FCTransitionList, RecordMayBeDeletedDuringTheWalk) {
    CFCTransitionList list;
    for (int i = 0; i < 4; ++i) {
        auto* transition = new CFCTransitionData;
        transition->SetInport(i);
        list.AddTail(transition);
    }
    __FCPOSITION* position = list.GetHeadPosition();
    while (position != nullptr) {
        CFCTransitionData* transition = list.GetNext(position);
        if (transition->GetInport() % 2 == 0) {
            list.DeleteNode(transition);
        }
    }
    EXPECT_EQ(list.GetCount(), 2);
    list.DeleteAll();
}
