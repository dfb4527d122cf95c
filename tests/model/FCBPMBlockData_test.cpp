#include "flowmere/model/FCBPMBlockData.h"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "TestSupport.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"

using flowmere::test::narrow;

namespace {

// The members are named through the task node, so that a name which its bases share would not compile. `copied` tells
// on which of the two lists of Copy a member stands.
template <typename Value, typename Argument = Value>
struct Member {
    char const* name;
    Value (CFCBPMBlockData::*get)();
    void (CFCBPMBlockData::*set)(Argument);
    Value start;
    bool copied;
};

#define MEMBER(name, start, copied)                                                                                    \
    { #name, &CFCBPMTaskNode::Get##name, &CFCBPMTaskNode::Set##name, start, copied }
#define FLAG(getter, name, copied)                                                                                     \
    { #name, &CFCBPMTaskNode::getter, &CFCBPMTaskNode::Set##name, false, copied }

constexpr bool kCopied = true;
constexpr bool kLeftOut = false;

constexpr Member<wchar_t const*> kTexts[] = {
    MEMBER(User, L"", kCopied),
    MEMBER(UID, L"", kCopied),
    MEMBER(WBS, L"", kCopied),
    MEMBER(Catagory, L"", kCopied),
    MEMBER(TaskDescription, L"", kCopied),
    MEMBER(RequirementDoc, L"", kCopied),
    MEMBER(WorkInstructions, L"", kCopied),
    MEMBER(Application, L"", kCopied),
    MEMBER(Deployment, L"", kCopied),
    MEMBER(Executable, L"", kLeftOut),
    MEMBER(Priority, L"normal", kCopied),
    MEMBER(PredecessorID, L"", kCopied),
    MEMBER(TaskName, L"", kCopied),
    MEMBER(TaskCaption, L"", kCopied),
    MEMBER(SwimLane, L"", kCopied),
    MEMBER(ProjectName, L"", kCopied),
    MEMBER(ExceptionClass, L"", kCopied),
    MEMBER(EventType, L"", kCopied),
    MEMBER(TimerName, L"", kCopied),
    MEMBER(TimerTransition, L"", kCopied),
    MEMBER(HTMLScriptFileName, L"", kCopied),
    MEMBER(HTMLScriptCode, L"", kCopied),
    MEMBER(CSSScriptFileName, L"", kCopied),
    MEMBER(CSSScriptCode, L"", kCopied),
    MEMBER(UserCSSScriptFileName, L"", kLeftOut),
    MEMBER(UserCSSScriptCode, L"", kLeftOut),
    MEMBER(JSScriptFileName, L"", kCopied),
    MEMBER(JSScriptCode, L"", kCopied),
    MEMBER(JythonScriptFileName, L"", kCopied),
    MEMBER(JythonScriptCode, L"", kCopied),
    MEMBER(ModulePath, L"", kCopied),
    MEMBER(IconFilePath, L"", kCopied),
    MEMBER(AssociatedSubProcess, L"", kLeftOut),
    MEMBER(UserRole, L"", kLeftOut),
    MEMBER(UserCategory, L"", kLeftOut),
};

constexpr Member<double> kDoubles[] = {
    MEMBER(Effort, 8.0, kCopied),      MEMBER(EstimatedEffort, 8.0, kCopied),
    MEMBER(ProjectLate, 0.0, kCopied), MEMBER(Duration, 1.0, kCopied),
    MEMBER(Cost, 0.0, kCopied),        MEMBER(ActEffort, 0.0, kCopied),
    MEMBER(Progress, 0.0, kCopied),
};

constexpr Member<int> kInts[] = {
    MEMBER(AppVersion, 0, kCopied),
    MEMBER(MaxIterations, 0, kLeftOut),
    MEMBER(ReminderRepeat, 0, kCopied),
    MEMBER(TimerRepeat, 0, kCopied),
};

constexpr Member<bool> kFlags[] = {
    FLAG(IsMilestone, Milestone, kCopied),
    FLAG(IsLateIndicator, LateIndicator, kCopied),
    FLAG(IsCriticalPathIndicator, CriticalPathIndicator, kCopied),
    FLAG(IsSetDataAvailability, DataAvailability, kCopied),
    FLAG(IsNotify, Notify, kCopied),
    FLAG(IsRunOnServer, RunOnServer, kCopied),
    FLAG(HasReminder, Reminder, kCopied),
    FLAG(HasGui, Gui, kCopied),
    FLAG(HasEmailNotification, EmailNotification, kLeftOut),
    FLAG(GetUserDataOverriden, UserDataOverriden, kLeftOut),
};

constexpr Member<TuDate> kDates[] = {
    MEMBER(StartDate, TuDate(), kCopied),          MEMBER(EndDate, TuDate(), kCopied),
    MEMBER(ActStartDate, TuDate(), kCopied),       MEMBER(ActEndDate, TuDate(), kCopied),
    MEMBER(ReminderDate, TuDate(), kCopied),       MEMBER(DueDate, TuDate(), kCopied),
    MEMBER(EstimatedReadyDate, TuDate(), kCopied), MEMBER(EstimatedEndDate, TuDate(), kCopied),
    MEMBER(TimerDueDate, TuDate(), kCopied),
};

#undef MEMBER
#undef FLAG

struct ListMember {
    char const* name;
    CFCNodeList* (*get)(CFCBPMBlockData&);
    CFCActionData* (*add)(CFCBPMBlockData&);
};

constexpr ListMember kLists[] = {
    {"ActionExceptionList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetActionExceptionList(); },
     [](CFCBPMBlockData& data) -> CFCActionData* {
         return data.CreateNewActionException();
     }},
    {"ScriptExceptionList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetScriptExceptionList(); },
     [](CFCBPMBlockData& data) -> CFCActionData* {
         return data.CreateNewScriptException();
     }},
    {"EventList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetEventList(); },
     [](CFCBPMBlockData& data) -> CFCActionData* {
         return data.CreateNewEventAction();
     }},
    {"ScriptEventList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetScriptEventList(); },
     // Scripts have no creator: a reader makes the bare record itself.
     [](CFCBPMBlockData& data) -> CFCActionData* {
         auto* const record = new CFCEventActionData;
         data.GetScriptEventList()->AddTail(record);
         return record;
     }},
    {"TimerList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetTimerList(); },
     [](CFCBPMBlockData& data) -> CFCActionData* {
         return data.CreateNewTimerAction();
     }},
    {"TransitionList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetTransitionList(); },
     [](CFCBPMBlockData& data) -> CFCActionData* {
         return data.CreateNewTransition();
     }},
    {"ReminderList", [](CFCBPMBlockData& data) -> CFCNodeList* { return data.GetReminderList(); },
     [](CFCBPMBlockData& data) -> CFCActionData* {
         return data.CreateNewReminderData();
     }},
};

void deleteRecords(CFCBPMBlockData& data) {
    for (ListMember const& list : kLists) {
        list.get(data)->DeleteAll();
    }
}

// A task node that tears its records down at the end of a test.
struct Task : CFCBPMTaskNode {
    ~Task() override { deleteRecords(*this); }
};

TuDate day(int number) {
    TuDate date;
    date.setDate(2024, 5, static_cast<short>(number), 1, 2, 3);
    return date;
}

std::wstring textOf(char const* name, wchar_t const* suffix = L"") {
    return flowmere::fromUtf8(name) + suffix;
}

// Gives every plain member a value that no other member of its type has.
void fill(CFCBPMBlockData& data) {
    for (auto const& member : kTexts) {
        (data.*member.set)(textOf(member.name, L" of the source").c_str());
    }
    int number = 100;
    for (auto const& member : kDoubles) {
        (data.*member.set)(number++ + 0.5);
    }
    for (auto const& member : kInts) {
        (data.*member.set)(number++);
    }
    for (auto const& member : kFlags) {
        (data.*member.set)(true);
    }
    number = 1;
    for (auto const& member : kDates) {
        (data.*member.set)(day(number++));
    }
}

void expectFilled(CFCBPMBlockData& data, bool leftOutToo) {
    for (auto const& member : kTexts) {
        std::wstring const expected =
            member.copied || leftOutToo ? textOf(member.name, L" of the source") : std::wstring(member.start);
        EXPECT_EQ(narrow((data.*member.get)()), flowmere::toUtf8(expected)) << member.name;
    }
    int number = 100;
    for (auto const& member : kDoubles) {
        double const value = number++ + 0.5;
        EXPECT_EQ((data.*member.get)(), member.copied || leftOutToo ? value : member.start) << member.name;
    }
    for (auto const& member : kInts) {
        int const value = number++;
        EXPECT_EQ((data.*member.get)(), member.copied || leftOutToo ? value : member.start) << member.name;
    }
    for (auto const& member : kFlags) {
        EXPECT_EQ((data.*member.get)(), member.copied || leftOutToo) << member.name;
    }
    number = 1;
    for (auto const& member : kDates) {
        TuDate const value = day(number++);
        EXPECT_TRUE((data.*member.get)() == (member.copied || leftOutToo ? value : TuDate())) << member.name;
    }
}

TuTemplateArray<TuString> words(std::vector<wchar_t const*> const& texts) {
    TuTemplateArray<TuString> array;
    for (wchar_t const* text : texts) {
        array.Add(text);
    }
    return array;
}

// Handles drawn between two nodes of one handle each.
template <typename Make>
int handlesDrawn(Make make) {
    CFCActionData before;
    auto const kept = make();
    CFCActionData after;
    return after.GetNodeHandle() - before.GetNodeHandle() - 1;
}

} // namespace

TEST(FCBPMBlockData, NewTaskHasItsDefaults) {
    CFCBPMTaskNode task;
    for (auto const& member : kTexts) {
        EXPECT_STREQ((task.*member.get)(), member.start) << member.name;
    }
    for (auto const& member : kDoubles) {
        EXPECT_EQ((task.*member.get)(), member.start) << member.name;
    }
    for (auto const& member : kInts) {
        EXPECT_EQ((task.*member.get)(), member.start) << member.name;
    }
    for (auto const& member : kFlags) {
        EXPECT_FALSE((task.*member.get)()) << member.name;
    }
    for (auto const& member : kDates) {
        EXPECT_TRUE((task.*member.get)().IsEmpty()) << member.name;
    }
    for (ListMember const& list : kLists) {
        ASSERT_NE(list.get(task), nullptr) << list.name;
        EXPECT_EQ(list.get(task)->GetCount(), 0) << list.name;
    }
    EXPECT_EQ(task.GetCommandLineArg().GetCount(), 0);
    EXPECT_EQ(task.GetGUIRect(), nullptr);
}

TEST(FCBPMBlockData, PriorityIsNormalOnATaskOnly) {
    CFCBPMBlockData plain;
    EXPECT_STREQ(plain.GetPriority(), L"");
    CFCBPMTaskNode task;
    EXPECT_STREQ(task.GetPriority(), L"normal");
    auto* const process = new CFCBPMProcessNode;
    EXPECT_STREQ(process->GetPriority(), L"");
    EXPECT_EQ(process->GetEffort(), 8.0);
    EXPECT_EQ(process->GetEstimatedEffort(), 8.0);
    EXPECT_EQ(process->GetDuration(), 1.0);
    EXPECT_EQ(process->GetCost(), 0.0);
    CFCNodeHelper::DestroyTree(process);
}

TEST(FCBPMBlockData, MembersStandApart) {
    CFCBPMTaskNode task;
    fill(task);
    expectFilled(task, true);
}

TEST(FCBPMBlockData, TextSettersTakeNullAsEmptyAndTheirOwnText) {
    CFCBPMBlockData data;
    for (auto const& member : kTexts) {
        std::wstring const text = textOf(member.name);
        (data.*member.set)(text.c_str());
        (data.*member.set)((data.*member.get)() + 1);
        EXPECT_EQ(narrow((data.*member.get)()), flowmere::toUtf8(text.substr(1))) << member.name;
        (data.*member.set)(nullptr);
        EXPECT_STREQ((data.*member.get)(), L"") << member.name;
    }
}

TEST(FCBPMBlockData, CommandLineArgumentsGoInAndOutByValue) {
    CFCBPMBlockData data;
    TuTemplateArray<TuString> arguments = words({L"-a", L"b c"});
    data.SetCommandLineArg(arguments);
    arguments.Add(L"later");
    TuTemplateArray<TuString> out = data.GetCommandLineArg();
    ASSERT_EQ(out.GetCount(), 2);
    EXPECT_EQ(out.GetAt(1), L"b c");
    out.RemoveAll();
    EXPECT_EQ(data.GetCommandLineArg().GetCount(), 2);
}

TEST(FCBPMBlockData, DatesKeepTheTimeOfDay) {
    CFCBPMBlockData data;
    TuDate date;
    date.setDate(2024, 12, 31, 23, 59, 58);
    data.SetTimerDueDate(date);
    EXPECT_EQ(data.GetTimerDueDate().toSerial(), 20241231235958LL);
}

TEST(FCBPMBlockData, CreatorsAppendRecordsOfTypeHoldingTheTask) {
    Task task;
    for (ListMember const& list : kLists) {
        CFCActionData* const first = list.add(task);
        CFCActionData* const second = list.add(task);
        ASSERT_EQ(list.get(task)->GetCount(), 2) << list.name;
        EXPECT_EQ(list.get(task)->GetAt(0), first) << list.name;
        EXPECT_EQ(list.get(task)->GetAt(1), second) << list.name;
        if (std::string(list.name) != "ScriptEventList") {
            EXPECT_EQ(first->GetNodeType(), 175) << list.name;
            EXPECT_EQ(first->GetParentNode(), static_cast<IFCNode*>(&task)) << list.name;
        } else {
            EXPECT_EQ(first->GetNodeType(), 0);
            EXPECT_EQ(first->GetParentNode(), nullptr);
        }
    }
}

TEST(FCBPMBlockData, CreatorsGiveTheClassOfTheirList) {
    Task task;
    static_assert(std::is_same_v<decltype(task.CreateNewActionException()), CFCExceptionActionData*>);
    static_assert(std::is_same_v<decltype(task.CreateNewScriptException()), CFCExceptionActionData*>);
    static_assert(std::is_same_v<decltype(task.CreateNewEventAction()), CFCEventActionData*>);
    static_assert(std::is_same_v<decltype(task.CreateNewTimerAction()), CFCTimerActionData*>);
    static_assert(std::is_same_v<decltype(task.CreateNewReminderData()), CFCReminderData*>);
    static_assert(std::is_same_v<decltype(task.CreateNewTransition()), CFCTransitionData*>);
    CFCTransitionData* const transition = task.CreateNewTransition();
    __FCPOSITION* position = task.GetTransitionList()->GetHeadPosition();
    EXPECT_EQ(task.GetTransitionList()->GetNext(position), transition);
}

TEST(FCBPMBlockData, RecordsOfAProcessHaveNoParent) {
    auto* const process = new CFCBPMProcessNode;
    for (ListMember const& list : kLists) {
        CFCActionData* const record = list.add(*process);
        EXPECT_EQ(record->GetParentNode(), nullptr) << list.name;
        EXPECT_EQ(list.get(*process)->GetCount(), 1) << list.name;
    }
    EXPECT_EQ(process->CreateNewTransition()->GetNodeType(), 175);
    deleteRecords(*process);
    CFCNodeHelper::DestroyTree(process);
}

TEST(FCBPMBlockData, RecordsOfDataThatStandsAloneHaveNoParent) {
    CFCBPMBlockData data;
    CFCTransitionData* const transition = data.CreateNewTransition();
    EXPECT_EQ(transition->GetParentNode(), nullptr);
    EXPECT_EQ(transition->GetNodeType(), 175);
    data.RemoveTransitionList();
}

TEST(FCBPMBlockData, RemoveTransitionDeletesTheOneGiven) {
    Task task;
    CFCTransitionData* const first = task.CreateNewTransition();
    CFCTransitionData* const second = task.CreateNewTransition();
    int const handle = first->GetNodeHandle();
    task.RemoveTransition(nullptr);
    EXPECT_EQ(task.GetTransitionList()->GetCount(), 2);
    task.RemoveTransition(first);
    EXPECT_EQ(task.GetTransitionList()->GetCount(), 1);
    EXPECT_EQ(task.GetTransitionList()->GetAt(0), second);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}

TEST(FCBPMBlockData, RemoveTransitionListDeletesAll) {
    CFCBPMTaskNode task;
    task.RemoveTransitionList();
    EXPECT_EQ(task.GetTransitionList()->GetCount(), 0);
    int const handle = task.CreateNewTransition()->GetNodeHandle();
    task.CreateNewTransition();
    task.RemoveTransitionList();
    EXPECT_EQ(task.GetTransitionList()->GetCount(), 0);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}

TEST(FCBPMBlockData, RecordsOutliveTheBlock) {
    CFCEventActionData* record = nullptr;
    {
        CFCBPMTaskNode task;
        record = task.CreateNewEventAction();
        record->SetActionName(L"alive");
    }
    EXPECT_STREQ(record->GetActionName(), L"alive");
    delete record;
}

TEST(FCBPMBlockData, CopyTakesEachMemberOfTheOneListAndNoneOfTheOther) {
    CFCBPMTaskNode source;
    fill(source);
    source.SetCommandLineArg(words({L"-a"}));
    CFCBPMTaskNode target;
    CFCBPMBlockData::Copy(&source, &target, 1);
    expectFilled(target, false);
    EXPECT_EQ(target.GetCommandLineArg().GetCount(), 0);
}

TEST(FCBPMBlockData, CopyLeavesTheTargetsOwnMembers) {
    CFCBPMBlockData source;
    fill(source);
    CFCBPMBlockData target;
    target.SetUserRole(L"role");
    target.SetUserCSSScriptCode(L"css");
    target.SetMaxIterations(5);
    target.SetUserDataOverriden(true);
    target.SetCommandLineArg(words({L"kept"}));
    source.SetUserDataOverriden(false);
    CFCBPMBlockData::Copy(&source, &target, 0);
    EXPECT_STREQ(target.GetUserRole(), L"role");
    EXPECT_STREQ(target.GetUserCSSScriptCode(), L"css");
    EXPECT_EQ(target.GetMaxIterations(), 5);
    EXPECT_TRUE(target.GetUserDataOverriden());
    EXPECT_EQ(target.GetCommandLineArg().GetCount(), 1);
}

TEST(FCBPMBlockData, CopySharesTheRecordsOfTheLists) {
    Task source;
    CFCBPMTaskNode target;
    for (ListMember const& list : kLists) {
        list.add(source);
        list.add(source);
    }
    CFCBPMBlockData::Copy(&source, &target, 1);
    for (ListMember const& list : kLists) {
        EXPECT_EQ(list.get(target)->GetHeadPosition(), list.get(source)->GetHeadPosition()) << list.name;
        EXPECT_EQ(list.get(target)->GetTailPosition(), list.get(source)->GetTailPosition()) << list.name;
        EXPECT_EQ(list.get(target)->GetCount(), 2) << list.name;
        EXPECT_EQ(list.get(target)->GetNodeHandle(), list.get(source)->GetNodeHandle()) << list.name;
        EXPECT_EQ(list.get(target)->GetAt(0)->GetParentNode(),
                  std::string(list.name) == "ScriptEventList" ? nullptr : static_cast<IFCNode*>(&source))
            << list.name;
    }
}

TEST(FCBPMBlockData, CopiedListCarriesTheHandleOfItsSource) {
    CFCBPMTaskNode source;
    auto target = std::make_unique<CFCBPMTaskNode>();
    int const handle = source.GetEventList()->GetNodeHandle();
    int const former = target->GetEventList()->GetNodeHandle();
    CFCBPMBlockData::Copy(&source, target.get(), 1);
    EXPECT_EQ(target->GetEventList()->GetNodeHandle(), handle);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), static_cast<IFCNode*>(source.GetEventList()));
    target.reset();
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr); // the end of the copy empties the common entry
    EXPECT_EQ(CFCNodeManager::GetNode(former), nullptr);
}

TEST(FCBPMBlockData, CopyWithoutTransitionsLeavesThoseOfTheTarget) {
    Task source;
    Task target;
    source.CreateNewTransition();
    CFCTransitionData* const own = target.CreateNewTransition();
    CFCBPMBlockData::Copy(&source, &target, 0);
    EXPECT_EQ(target.GetTransitionList()->GetCount(), 1);
    EXPECT_EQ(target.GetTransitionList()->GetAt(0), own);
    EXPECT_NE(target.GetTransitionList()->GetNodeHandle(), source.GetTransitionList()->GetNodeHandle());
}

TEST(FCBPMBlockData, CopyTakesTransitionsForAnyNonZeroFlag) {
    Task source;
    CFCBPMTaskNode target;
    CFCTransitionData* const transition = source.CreateNewTransition();
    CFCBPMBlockData::Copy(&source, &target, 255);
    EXPECT_EQ(target.GetTransitionList()->GetAt(0), transition);
}

TEST(FCBPMBlockData, CopyDoesNothingForANull) {
    CFCBPMBlockData data;
    data.SetUser(L"kept");
    CFCBPMBlockData::Copy(nullptr, &data, 1);
    CFCBPMBlockData::Copy(&data, nullptr, 1);
    CFCBPMBlockData::Copy(nullptr, nullptr, 1);
    CFCBPMBlockData::Copy(&data, &data, 1);
    EXPECT_STREQ(data.GetUser(), L"kept");
}

TEST(FCBPMBlockData, CopyMakesARectangleOfItsOwnForTheTarget) {
    CFCBPMBlockData source;
    CFCBPMBlockData target;
    TuRect rect{1, 2, 3, 4};
    source.SetGUIRect(&rect);
    CFCBPMBlockData::Copy(&source, &target, 0);
    ASSERT_NE(target.GetGUIRect(), nullptr);
    EXPECT_NE(target.GetGUIRect(), source.GetGUIRect());
    EXPECT_EQ(target.GetGUIRect()->left, 1);
    EXPECT_EQ(target.GetGUIRect()->top, 2);
    EXPECT_EQ(target.GetGUIRect()->right, 3);
    EXPECT_EQ(target.GetGUIRect()->bottom, 4);
}

TEST(FCBPMBlockData, CopyOfASourceWithoutRectangleLeavesThatOfTheTarget) {
    CFCBPMBlockData source;
    CFCBPMBlockData target;
    TuRect rect{1, 2, 3, 4};
    target.SetGUIRect(&rect);
    TuRect* const own = target.GetGUIRect();
    CFCBPMBlockData::Copy(&source, &target, 0);
    EXPECT_EQ(target.GetGUIRect(), own);
}

TEST(FCBPMBlockData, SetGUIRectCopiesTheValues) {
    CFCBPMBlockData data;
    TuRect rect{1, 2, 3, 4};
    data.SetGUIRect(&rect);
    rect.left = 99;
    ASSERT_NE(data.GetGUIRect(), nullptr);
    EXPECT_NE(data.GetGUIRect(), &rect);
    EXPECT_EQ(data.GetGUIRect()->left, 1);
    data.SetGUIRect(nullptr);
    ASSERT_NE(data.GetGUIRect(), nullptr);
    EXPECT_EQ(data.GetGUIRect()->bottom, 4);
}

TEST(FCBPMBlockData, RectanglesOutliveTheirReplacementAndTheBlock) {
    TuRect* first = nullptr;
    TuRect* second = nullptr;
    {
        CFCBPMBlockData data;
        TuRect rect{1, 2, 3, 4};
        data.SetGUIRect(&rect);
        first = data.GetGUIRect();
        data.SetGUIRect(first); // its own
        second = data.GetGUIRect();
    }
    EXPECT_NE(first, second);
    EXPECT_EQ(first->right, 3);
    EXPECT_EQ(second->right, 3);
}

TEST(FCBPMBlockData, CopyConstructionAndAssignmentAreMemberwise) {
    auto source = std::make_unique<CFCBPMBlockData>();
    fill(*source);
    source->SetCommandLineArg(words({L"-a"}));
    TuRect rect{1, 2, 3, 4};
    source->SetGUIRect(&rect);
    CFCTransitionData* const transition = source->CreateNewTransition();
    CFCBPMBlockData copy(*source);
    CFCBPMBlockData assigned;
    assigned = *source;
    EXPECT_EQ(copy.GetGUIRect(), source->GetGUIRect());
    source.reset();
    for (CFCBPMBlockData* data : {&copy, &assigned}) {
        expectFilled(*data, true);
        EXPECT_EQ(data->GetCommandLineArg().GetCount(), 1);
        EXPECT_EQ(data->GetTransitionList()->GetAt(0), transition);
        ASSERT_NE(data->GetGUIRect(), nullptr);
        EXPECT_EQ(data->GetGUIRect()->top, 2);
    }
    delete transition;
}

TEST(FCBPMBlockData, SetScriptFileGivesPathsBelowTheExecutionRoot) {
    CFCBPMBlockData data;
    data.SetScriptFile(L"B", L"C:\\work\\BrindleExec\\F");
    EXPECT_STREQ(data.GetHTMLScriptFileName(), L"F/B/B.html");
    EXPECT_STREQ(data.GetCSSScriptFileName(), L"F/B/B.css");
    EXPECT_STREQ(data.GetUserCSSScriptFileName(), L"F/B/B_User.css");
    EXPECT_STREQ(data.GetJSScriptFileName(), L"F/B/scripts/B.js");
    EXPECT_STREQ(data.GetJythonScriptFileName(), L"F/B/scripts/B.py");
}

TEST(FCBPMBlockData, SetScriptFileOutsideTheExecutionRootKeepsTheFullPath) {
    CFCBPMBlockData data;
    data.SetScriptFile(L"B", L"D:\\F");
    EXPECT_STREQ(data.GetHTMLScriptFileName(), L"D:\\F\\B\\B.html");
    EXPECT_STREQ(data.GetCSSScriptFileName(), L"D:\\F\\B\\B.css");
    EXPECT_STREQ(data.GetUserCSSScriptFileName(), L"D:\\F\\B\\B_User.css");
    EXPECT_STREQ(data.GetJSScriptFileName(), L"D:\\F\\B\\scripts\\B.js");
    EXPECT_STREQ(data.GetJythonScriptFileName(), L"D:\\F\\B\\scripts\\B.py");
}

TEST(FCBPMBlockData, SetScriptFileWithANullChangesNothing) {
    CFCBPMBlockData data;
    data.SetScriptFile(L"B", L"D:\\F");
    data.SetScriptFile(nullptr, L"D:\\G");
    data.SetScriptFile(L"C", nullptr);
    data.SetScriptFile(nullptr, nullptr);
    EXPECT_STREQ(data.GetHTMLScriptFileName(), L"D:\\F\\B\\B.html");
    EXPECT_STREQ(data.GetJythonScriptFileName(), L"D:\\F\\B\\scripts\\B.py");
}

TEST(FCBPMBlockData, SetScriptFileTakesTheEmptyTextAsGiven) {
    CFCBPMBlockData data;
    data.SetScriptFile(L"", L"");
    EXPECT_STREQ(data.GetHTMLScriptFileName(), L"\\\\.html");
    EXPECT_STREQ(data.GetJythonScriptFileName(), L"\\\\scripts\\.py");
}

TEST(FCBPMBlockData, SetScriptFileTakesItsOwnTexts) {
    CFCBPMBlockData data;
    data.SetHTMLScriptFileName(L"B");
    data.SetCSSScriptFileName(L"D:\\F");
    data.SetScriptFile(data.GetHTMLScriptFileName(), data.GetCSSScriptFileName());
    EXPECT_STREQ(data.GetHTMLScriptFileName(), L"D:\\F\\B\\B.html");
    EXPECT_STREQ(data.GetJythonScriptFileName(), L"D:\\F\\B\\scripts\\B.py");
}

TEST(FCBPMBlockData, SetScriptFileLeavesPercentSignsAlone) {
    CFCBPMBlockData data;
    data.SetScriptFile(L"100%s", L"D:\\%d");
    EXPECT_STREQ(data.GetCSSScriptFileName(), L"D:\\%d\\100%s\\100%s.css");
}

TEST(FCBPMBlockData, UpdateModulePathTakesWhatFollowsTheExecutionRoot) {
    struct {
        wchar_t const* folder;
        wchar_t const* name;
        wchar_t const* expected;
    } const cases[] = {
        {L"D:\\w\\BrindleExec\\A\\C", L"B", L"A.C.B.scripts.B"},
        {L"D:\\w\\BrindleExec\\\\A\\C\\\\", L"B", L"A.C.B.scripts.B"},
        {L"D:\\w\\BrindleExec\\A/C", L"B", L"A.C.B.scripts.B"},
        {L"D:\\w\\BrindleExec", L"B", L".B.scripts.B"},
        {L"D:\\w\\BrindleExec\\", L"B", L".B.scripts.B"},
        {L"/x/BrindleExec/A", L"B", L".A.B.scripts.B"},
        {L"/x/BrindleExec/A/", L"B", L".A..B.scripts.B"},
        {L"D:\\BrindleExecutive\\A", L"B", L"utive.A.B.scripts.B"},
        {L"D:\\BrindleExec\\A\\BrindleExec\\C", L"B", L"A.BrindleExec.C.B.scripts.B"},
        {L"D:\\w\\brindleexec\\A", L"B", L".B.scripts.B"},
        {L"D:\\elsewhere\\A", L"B", L".B.scripts.B"},
        {L"", L"B", L".B.scripts.B"},
        {nullptr, L"B", L".B.scripts.B"},
        {L"BrindleExec\\A", nullptr, L"A..scripts."},
    };
    CFCBPMBlockData data;
    for (auto const& path : cases) {
        data.UpdateModulePath(path.folder, path.name);
        EXPECT_STREQ(data.GetModulePath(), path.expected) << narrow(path.folder);
    }
}

TEST(FCBPMBlockData, UpdateModulePathTakesItsOwnText) {
    CFCBPMBlockData data;
    data.SetModulePath(L"BrindleExec\\A");
    data.UpdateModulePath(data.GetModulePath(), data.GetModulePath() + 12);
    EXPECT_STREQ(data.GetModulePath(), L"A.A.scripts.A");
}

TEST(FCBPMBlockData, SaveScriptFileWritesTheTextOfTheType) {
    flowmere::test::ScratchFolder scratch;
    CFCBPMBlockData data;
    data.SetHTMLScriptCode(L"html");
    data.SetCSSScriptCode(L"css");
    data.SetUserCSSScriptCode(L"user css");
    data.SetJSScriptCode(L"js");
    data.SetJythonScriptCode(L"jython");
    struct {
        int type;
        char const* expected;
    } const cases[] = {{3, "html"}, {4, "css"}, {5, "user css"}, {6, "js"}, {7, "jython"}, {0, ""},
                       {1, ""},     {2, ""},    {8, ""},         {9, ""},   {-1, ""}};
    for (auto const& file : cases) {
        scratch.write("script.txt", "what stood there before");
        data.SaveScriptFile(scratch.text("script.txt"), static_cast<EScriptType>(file.type));
        EXPECT_EQ(scratch.read("script.txt"), file.expected) << file.type;
    }
}

TEST(FCBPMBlockData, SaveScriptFileWritesUtf8AndTakesBackslashes) {
    flowmere::test::ScratchFolder scratch;
    scratch.write("sub/there.txt", "");
    CFCBPMBlockData data;
    data.SetJythonScriptCode(L"# \u00e9\u4e16\nx = 1\n");
    TuString path = scratch.text();
    path += L"\\sub\\B.py";
    data.SaveScriptFile(path, static_cast<EScriptType>(7));
    EXPECT_EQ(scratch.read("sub/B.py"), "# \xc3\xa9\xe4\xb8\x96\nx = 1\n");
}

TEST(FCBPMBlockData, SaveScriptFileIsSilentWhenTheFileCannotBeOpened) {
    flowmere::test::ScratchFolder scratch;
    CFCBPMBlockData data;
    data.SetJSScriptCode(L"js");
    data.SaveScriptFile(scratch.text("no/such/folder.js"), static_cast<EScriptType>(6));
    data.SaveScriptFile(scratch.text(), static_cast<EScriptType>(6)); // a folder
    data.SaveScriptFile(nullptr, static_cast<EScriptType>(6));
    data.SaveScriptFile(L"", static_cast<EScriptType>(6));
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST(FCBPMTaskNode, StartsWithItsOwnFields) {
    CFCBPMTaskNode task;
    EXPECT_EQ(task.GetParentID(), -1);
    EXPECT_STREQ(task.GetHierarchyPath(), L"");
    EXPECT_STREQ(task.GetFailedReason(), L"");
    EXPECT_EQ(task.blockKind, 0);
    EXPECT_EQ(task.GetNodeType(), 0);
    task.SetParentID(12);
    task.SetHierarchyPath(L"A/B");
    task.SetFailedReason(L"no memory");
    EXPECT_EQ(task.GetParentID(), 12);
    EXPECT_STREQ(task.GetHierarchyPath(), L"A/B");
    EXPECT_STREQ(task.GetFailedReason(), L"no memory");
    task.SetHierarchyPath(nullptr);
    task.SetFailedReason(nullptr);
    EXPECT_STREQ(task.GetHierarchyPath(), L"");
    EXPECT_STREQ(task.GetFailedReason(), L"");
}

TEST(FCBPMTaskNode, IntConstructorSetsTheBlockKindOnly) {
    CFCBPMTaskNode task(154);
    EXPECT_EQ(task.blockKind, 154);
    EXPECT_EQ(task.GetNodeType(), 0);
    EXPECT_STREQ(task.GetPriority(), L"normal");
    EXPECT_EQ(task.GetParentID(), -1);
    EXPECT_NE(task.GetResourceData(), nullptr);
}

TEST(FCBPMTaskNode, HasAResourceRecordFromTheStart) {
    CFCBPMTaskNode task;
    CFCResourceData* const resource = task.GetResourceData();
    ASSERT_NE(resource, nullptr);
    EXPECT_EQ(resource->GetNodeType(), 183);
    EXPECT_EQ(resource->GetParentNode(), static_cast<IFCNode*>(&task));
}

TEST(FCBPMTaskNode, ResourceRecordGoesWithTheNode) {
    auto task = std::make_unique<CFCBPMTaskNode>();
    int const handle = task->GetResourceData()->GetNodeHandle();
    EXPECT_NE(CFCNodeManager::GetNode(handle), nullptr);
    task.reset();
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}

TEST(FCBPMTaskNode, CopiesShareTheResourceRecordAndFreeItOnce) {
    auto task = std::make_unique<CFCBPMTaskNode>();
    task->GetResourceData()->setNumberOfCores(4);
    task->SetParentID(3);
    task->SetHierarchyPath(L"A");
    task->SetFailedReason(L"why");
    auto copy = std::make_unique<CFCBPMTaskNode>(*task);
    CFCBPMTaskNode assigned;
    assigned = *task;
    EXPECT_EQ(copy->GetResourceData(), task->GetResourceData());
    EXPECT_EQ(assigned.GetResourceData(), task->GetResourceData());
    EXPECT_EQ(copy->GetParentID(), 3);
    EXPECT_STREQ(copy->GetHierarchyPath(), L"A");
    EXPECT_STREQ(copy->GetFailedReason(), L"why");
    task.reset();
    EXPECT_EQ(copy->GetResourceData()->getNumberOfCores(), 4);
    copy.reset();
    EXPECT_EQ(assigned.GetResourceData()->getNumberOfCores(), 4);
}

TEST(FCBPMTaskNode, SetNodeIdNamesBlockAndTask) {
    CFCBPMTaskNode task;
    IFCNode& node = task;
    node.SetNodeId(L"A");
    EXPECT_STREQ(node.GetNodeId(), L"A");
    EXPECT_STREQ(task.GetBlockID(), L"A");
    EXPECT_STREQ(task.GetTaskName(), L"A");
    EXPECT_STREQ(task.GetTaskCaption(), L"");
}

TEST(FCBPMTaskNode, SetNodeIdTakesItsOwnTexts) {
    CFCBPMTaskNode task;
    task.SetNodeId(L"Block_1");
    task.SetNodeId(task.GetNodeId() + 6);
    EXPECT_STREQ(task.GetNodeId(), L"1");
    EXPECT_STREQ(task.GetTaskName(), L"1");
    task.SetTaskName(L"Name_2");
    task.SetNodeId(task.GetTaskName() + 5);
    EXPECT_STREQ(task.GetBlockID(), L"2");
    EXPECT_STREQ(task.GetTaskName(), L"2");
    task.SetNodeId(nullptr);
    EXPECT_STREQ(task.GetNodeId(), L"");
    EXPECT_STREQ(task.GetTaskName(), L"");
}

TEST(FCBPMTaskNode, GivesItsRecordsThroughTheInterface) {
    CFCBPMTaskNode task;
    IFCNode& node = task;
    EXPECT_EQ(node.GetBPMBlockData(), static_cast<CFCBPMBlockData*>(&task));
    EXPECT_EQ(node.GetFCBlockData(), static_cast<CFCBlockData*>(&task));
    CFCBlockNode plain;
    EXPECT_EQ(plain.GetBPMBlockData(), nullptr);
}

TEST(FCBPMTaskNode, CopyAndSaveScriptFileOfBothRecordsAreReached) {
    flowmere::test::ScratchFolder scratch;
    CFCBPMTaskNode source;
    CFCBPMTaskNode target;
    source.SetBlockName(L"name");
    source.SetUser(L"user");
    source.SetJSScriptCode(L"js");
    CFCBPMTaskNode::Copy(static_cast<CFCBlockData*>(&source), static_cast<CFCBlockData*>(&target));
    CFCBPMTaskNode::Copy(&source, &target, 0);
    EXPECT_STREQ(target.GetBlockName(), L"name");
    EXPECT_STREQ(target.GetUser(), L"user");
    target.SaveScriptFile(scratch.text("B.js"), static_cast<EScriptType>(6));
    target.SaveScriptFile(false); // the block has no script file, so nothing is written
    EXPECT_EQ(scratch.read("B.js"), "js");
}

TEST(FCBPMTaskNode, ImageGoesByKind) {
    struct {
        int kind;
        int image;
    } const cases[] = {{150, 2}, {151, 0}, {152, 0}, {153, 6}, {154, 0}, {155, 5}, {156, 3}, {157, 4},
                       {158, 0}, {159, 0}, {161, 1}, {162, 7}, {163, 8}, {164, 9}, {165, 10}};
    CFCNodeFactory factory;
    for (auto const& kind : cases) {
        std::unique_ptr<IFCNode> const node(factory.Create(kind.kind));
        ASSERT_NE(dynamic_cast<CFCBPMTaskNode*>(node.get()), nullptr) << kind.kind;
        EXPECT_EQ(node->GetImage(), kind.image) << kind.kind;
        EXPECT_EQ(node->GetNodeType(), kind.kind);
        EXPECT_TRUE(node->IsBPMNode());
    }
    CFCBPMTaskNode task;
    EXPECT_EQ(task.GetImage(), 0);
    task.SetNodeType(56); // images of native kinds do not shine through
    EXPECT_EQ(task.GetImage(), 0);
    task.SetNodeType(57);
    EXPECT_EQ(task.GetImage(), 0);
}

TEST(FCBPMTaskNode, DrawsThirteenHandles) {
    EXPECT_EQ(handlesDrawn([] { return std::make_unique<CFCBPMTaskNode>(); }), 13);
}

TEST(FCBPMTaskNode, ListsAreNodesInTheOrderOfTheRecord) {
    CFCBPMTaskNode task;
    int last = task.GetNodeHandle();
    for (ListMember const& list : kLists) {
        EXPECT_GT(list.get(task)->GetNodeHandle(), last) << list.name;
        last = list.get(task)->GetNodeHandle();
    }
    EXPECT_GT(task.GetResourceData()->GetNodeHandle(), last);
}

TEST(FCBPMTaskNode, StaysCompact) {
    // About a hundred texts of one pointer, and twelve nodes; a text of four words would double it.
    EXPECT_LT(sizeof(CFCBPMTaskNode), 4096U);
}

TEST(FCBPMProcessNode, IsAProcessOfTheWorkflow) {
    CFCNodeFactory factory;
    IFCNode* const node = factory.Create(160);
    ASSERT_NE(node, nullptr);
    auto* const process = dynamic_cast<CFCBPMProcessNode*>(node);
    ASSERT_NE(process, nullptr);
    EXPECT_EQ(node->GetImage(), 1);
    EXPECT_EQ(node->GetBPMBlockData(), static_cast<CFCBPMBlockData*>(process));
    EXPECT_TRUE(node->IsBPMNode());
    node->SetNodeType(56);
    EXPECT_EQ(node->GetImage(), 1);
    CFCNodeHelper::DestroyTree(node);
}

TEST(FCBPMProcessNode, SetNodeIdLeavesTheTaskName) {
    auto* const process = new CFCBPMProcessNode;
    process->SetTaskName(L"kept");
    process->SetNodeId(L"A");
    EXPECT_STREQ(process->GetNodeId(), L"A");
    EXPECT_STREQ(process->GetTaskName(), L"kept");
    CFCNodeHelper::DestroyTree(process);
}

TEST(FCBPMProcessNode, DrawsTwentySevenHandles) {
    struct Destroy {
        void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
    };
    EXPECT_EQ(handlesDrawn([] { return std::unique_ptr<IFCNode, Destroy>(new CFCBPMProcessNode); }), 27);
}

TEST(FCBPMProcessNode, DestructorLeavesTheInnerTask) {
    CFCActionData before;
    auto* const process = new CFCBPMProcessNode;
    CFCActionData after;
    delete process;
    // What is left of the process: its two extra children and the task.
    std::vector<IFCNode*> children;
    std::vector<CFCBPMTaskNode*> tasks;
    for (int handle = before.GetNodeHandle() + 1; handle < after.GetNodeHandle(); ++handle) {
        IFCNode* const node = CFCNodeManager::GetNode(handle);
        if (auto* const task = dynamic_cast<CFCBPMTaskNode*>(node)) {
            tasks.push_back(task);
        } else if (node != nullptr && (node->GetNodeType() == 176 || node->GetNodeType() == 178)) {
            children.push_back(node);
        }
    }
    EXPECT_EQ(children.size(), 2U);
    ASSERT_EQ(tasks.size(), 1U);
    EXPECT_STREQ(tasks[0]->GetPriority(), L"normal");
    delete tasks[0];
    for (IFCNode* const child : children) {
        delete child;
    }
}

TEST(FCBPMProcessNode, CopyConstructionSharesTheInnerTask) {
    auto* const process = new CFCBPMProcessNode;
    process->SetUser(L"user");
    // No handle is drawn: a copy makes no task of its own.
    EXPECT_EQ(handlesDrawn([process] { return std::make_unique<CFCBPMProcessNode>(*process); }), 0);
    CFCBPMProcessNode copy(*process);
    EXPECT_STREQ(copy.GetUser(), L"user");
    CFCNodeHelper::DestroyTree(process);
}

TEST(FCBPMProcessNode, BothRecordsStayReachableByName) {
    auto* const process = new CFCBPMProcessNode;
    auto* const other = new CFCBPMProcessNode;
    process->SetBlockName(L"name");
    process->SetUser(L"user");
    CFCBPMProcessNode::Copy(static_cast<CFCBlockData*>(process), static_cast<CFCBlockData*>(other));
    CFCBPMProcessNode::Copy(process, other, 0);
    EXPECT_STREQ(other->GetBlockName(), L"name");
    EXPECT_STREQ(other->GetUser(), L"user");
    process->SaveScriptFile(false);
    process->SaveScriptFile(nullptr, static_cast<EScriptType>(3));
    CFCNodeHelper::DestroyTree(process);
    CFCNodeHelper::DestroyTree(other);
}
