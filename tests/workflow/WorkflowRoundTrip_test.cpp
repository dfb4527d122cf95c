// What goes out by the writer of workflow folders, and comes back by the reader.
#include "DefinitionReaderSupport.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/FCProcessDefinitionWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A connector whose route begins and ends with its points, so that what was read can be written.
class DrawnConnector : public RoutedConnector {
public:
    _TgPointLStr* GetStartPoint() override { return points.empty() ? nullptr : &points.front(); }
    _TgPointLStr* GetEndPoint() override { return points.empty() ? nullptr : &points.back(); }
};

class DrawingFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override {
        if (kind != 68)
            return CFCNodeFactory::Create(kind);
        auto connector = std::make_unique<DrawnConnector>();
        connector->SetNodeType(68);
        return connector.release();
    }
};

class WorkflowRoundTrip : public DefinitionReaderTest {
protected:
    WorkflowRoundTrip() { factory = &drawing; }
    // Nodes go before the factory of their connectors.
    ~WorkflowRoundTrip() override { tree.reset(); }

    // Writes the tree to the folder, and makes the folders of the sub-processes that it names first.
    void write(IFCNode* root, std::filesystem::path const& folder, std::vector<std::string> const& nested = {}) {
        makeFolder(folder);
        for (std::string const& name : nested)
            makeFolder(folder / name);
        CFCProcessDefinitionWriter writer;
        EXPECT_TRUE(writer.WriteFile(definitionPath(folder), root, true));
    }
    // Written to the first folder, read from it into `tree`.
    IFCNode* pass(IFCNode* root, std::filesystem::path const& folder, std::vector<std::string> const& nested = {}) {
        write(root, folder, nested);
        CFCProcessDefinitionReader fresh;
        fresh.SetNodeFactory(factory);
        IFCNode* node = nullptr;
        EXPECT_TRUE(fresh.Parse(definitionPath(folder), &node, 16));
        found = linesOf(fresh.GetFindings());
        tree.reset(node);
        return node;
    }
    // The three files of a folder.
    std::vector<Element> files(std::filesystem::path const& folder) const {
        return {element(folder / "processdefinition.xml"), element(folder / "gpd.xml"),
                element(folder / "process.var")};
    }
    Element element(std::filesystem::path const& name) const { return WorkflowTest::read(name); }

    DrawingFactory drawing;
    std::vector<std::string> found;
};

DrawnConnector* route(IFCNode* container, CFCBlockNode* start, CFCBlockNode* end, wchar_t const* caption,
                      std::vector<_TgPointLStr> points) {
    auto* const connector = connect<DrawnConnector>(container, start, end, 6, 2);
    connector->SetConnectorType(static_cast<EConnectorType>(1));
    connector->SetCaption(caption);
    connector->points = std::move(points);
    return connector;
}

// Every member that a task has in files.
void fillTask(CFCBPMTaskNode* task) {
    task->SetTaskName(L"Work");
    task->SetTaskCaption(L"A label");
    task->SetNodeDescription(L"of the node");
    task->SetTaskDescription(L"of the task & more");
    task->SetIconFilePath(L"icons/a.png");
    task->SetPriority(L"high");
    task->SetSwimLane(L"lane");
    task->SetCatagory(L"category");
    task->SetLateIndicator(true);
    task->SetDataAvailability(true);
    task->SetMilestone(true);
    task->SetRunOnServer(true);
    task->SetEmailNotification(true);
    task->SetProjectName(L"project");
    task->SetEffort(1.5);
    task->SetEstimatedEffort(2.25);
    task->SetActEffort(0.1);
    task->SetDuration(4.0);
    task->SetCost(1234567.891);
    task->SetProjectLate(-3.0);
    task->SetProgress(0.5);
    task->SetStartDate(dateOf(2024, 3, 5));
    task->SetEndDate(dateOf(2024, 12, 31));
    task->SetActStartDate(dateOf(2024, 3, 6));
    task->SetActEndDate(dateOf(2025, 1, 1));
    task->SetEstimatedReadyDate(dateOf(2024, 2, 29));
    task->SetEstimatedEndDate(dateOf(2024, 11, 30));
    task->SetApplication(L"app");
    task->SetRequirementDoc(L"req.doc");
    task->SetWorkInstructions(L"do it");
    task->SetAppVersion(7);
    task->SetUser(L"ann");
    task->SetUserRole(L"clerk");
    task->SetUserCategory(L"staff");
    task->SetUserDataOverriden(true);
    task->SetGui(true);
    TuRect size{0, 0, 640, 480};
    task->SetGUIRect(&size);
    task->SetReminder(true);
    task->SetReminderDate(dateOf(2024, 4, 1));
    task->SetReminderRepeat(3);
    task->SetExceptionClass(L"some.Exception");
    task->SetEventType(L"task-start");
    task->SetModulePath(L"A.Flow.B.scripts.B");
}

// A process with one node of each kind, in a group and outside.
Tree makeProcess() {
    Tree root = newWorkflow(L"Flow");
    CFCBPMTaskNode* const start = addTask(root.get(), L"Start", 154);
    CFCBPMTaskNode* const task = addTask(root.get(), L"B");
    CFCBPMTaskNode* const decision = addTask(root.get(), L"D", 153);
    CFCBPMTaskNode* const fork = addTask(root.get(), L"F", 156);
    CFCBPMTaskNode* const group = addTask(root.get(), L"G", 161);
    CFCBPMTaskNode* const join = addTask(root.get(), L"J", 157);
    CFCBPMTaskNode* const end = addTask(root.get(), L"End", 155);
    CFCBPMTaskNode* const first = addTask(group, L"First");
    CFCBPMTaskNode* const second = addTask(group, L"Second");
    for (CFCBPMTaskNode* const node : {start, task, decision, fork, group, join, end, first, second}) {
        node->SetNodeCaption(node->GetNodeId());
        node->SetTaskCaption(node->GetNodeId());
    }
    fillTask(task);
    task->SetNodeCaption(L"A label");
    route(root.get(), start, task, L"begin", {{10, 20}, {30, 40}, {50, 60}});
    route(root.get(), task, decision, L"", {});
    route(root.get(), decision, fork, L"yes", {{1, 2}});
    route(root.get(), fork, group, L"one", {});
    route(root.get(), fork, join, L"two", {});
    route(root.get(), group, join, L"", {});
    route(root.get(), join, end, L"", {});
    route(group, first, second, L"inside", {{7, 8}});
    int left = 10;
    for (CFCBPMTaskNode* const node : {start, task, decision, fork, group, join, end, first, second}) {
        node->SetTuRect(left, 20, left + 100, 70);
        left += 120;
    }
    CFCVariableData* const variable = addVariable(task, L"v", L"1");
    variable->SetStatusType(L"Output");
    addVariable(first, L"w", L"text");
    return root;
}

} // namespace

TEST_F(WorkflowRoundTrip, NodesComeBackInTheirOrderKindsAndPlaces) {
    Tree const root = makeProcess();
    IFCNode* const back = pass(root.get(), "flow");
    EXPECT_EQ(narrow(back->GetNodeCaption()), "Flow");
    EXPECT_EQ(outlineOf(back), outlineOf(root.get()));
    EXPECT_EQ(outlineOf(child(back, L"G")), "150 First, 150 Second");
    for (IFCNode* const node : childrenOf(root.get())) {
        IFCNode* const same = child(back, node->GetNodeId());
        EXPECT_EQ(TuString(same->GetNodeCaption()), TuString(node->GetBPMBlockData()->GetTaskCaption()));
        EXPECT_EQ(same->GetTuRect()->left, node->GetTuRect()->left);
        EXPECT_EQ(same->GetTuRect()->bottom, node->GetTuRect()->bottom);
    }
    EXPECT_EQ(narrow(only(variablesOf(child(back, L"B")))->GetValue()), "1");
    EXPECT_EQ(narrow(only(variablesOf(child(child(back, L"G"), L"First")))->GetVariableName()), "w");
}

TEST_F(WorkflowRoundTrip, ConnectorsComeBackWithTheirRoutes) {
    Tree const root = makeProcess();
    IFCNode* const back = pass(root.get(), "flow");
    // The nodes are visited from the end of the file, each with its own transitions in order.
    EXPECT_EQ(connectionsOf(back), "J-End G-J F-G F-J D-F B-D Start-B");
    EXPECT_EQ(connectionsOf(child(back, L"G")), "First-Second");
    auto const routes = connectorsOf(back);
    auto* const begin = dynamic_cast<RoutedConnector*>(routes.back());
    ASSERT_NE(begin, nullptr);
    EXPECT_EQ(narrow(begin->GetCaption()), "begin");
    EXPECT_EQ(begin->GetStartHandle(), 6);
    EXPECT_EQ(begin->GetEndHandle(), 2);
    EXPECT_TRUE(begin->IsBPMConnector());
    ASSERT_EQ(begin->points.size(), 3u);
    EXPECT_EQ(begin->points[0].x, 10);
    EXPECT_EQ(begin->points[2].y, 60);
    auto* const start = dynamic_cast<CFCBlockNode*>(child(back, L"Start"));
    EXPECT_EQ(start->GetNextConnectedBlock(), child(back, L"B"));
}

TEST_F(WorkflowRoundTrip, TheMembersOfATaskComeBack) {
    Tree const root = makeProcess();
    CFCBPMBlockData* const task = child(pass(root.get(), "flow"), L"B")->GetBPMBlockData();
    CFCBPMBlockData* const source = child(root.get(), L"B")->GetBPMBlockData();
    using Text = wchar_t const* (CFCBPMBlockData::*)();
    for (Text const get :
         {Text(&CFCBPMBlockData::GetTaskName), Text(&CFCBPMBlockData::GetTaskCaption),
          Text(&CFCBPMBlockData::GetTaskDescription), Text(&CFCBPMBlockData::GetIconFilePath),
          Text(&CFCBPMBlockData::GetPriority), Text(&CFCBPMBlockData::GetSwimLane), Text(&CFCBPMBlockData::GetCatagory),
          Text(&CFCBPMBlockData::GetProjectName), Text(&CFCBPMBlockData::GetApplication),
          Text(&CFCBPMBlockData::GetRequirementDoc), Text(&CFCBPMBlockData::GetWorkInstructions),
          Text(&CFCBPMBlockData::GetUser), Text(&CFCBPMBlockData::GetUserRole), Text(&CFCBPMBlockData::GetUserCategory),
          Text(&CFCBPMBlockData::GetExceptionClass)}) {
        EXPECT_EQ(narrow((task->*get)()), narrow((source->*get)()));
        EXPECT_NE(narrow((task->*get)()), "");
    }
    using Flag = bool (CFCBPMBlockData::*)();
    for (Flag const get : {Flag(&CFCBPMBlockData::IsLateIndicator), Flag(&CFCBPMBlockData::IsSetDataAvailability),
                           Flag(&CFCBPMBlockData::IsMilestone), Flag(&CFCBPMBlockData::IsRunOnServer),
                           Flag(&CFCBPMBlockData::HasEmailNotification), Flag(&CFCBPMBlockData::GetUserDataOverriden),
                           Flag(&CFCBPMBlockData::HasReminder)})
        EXPECT_TRUE((task->*get)());
    using Number = double (CFCBPMBlockData::*)();
    for (Number const get : {Number(&CFCBPMBlockData::GetEffort), Number(&CFCBPMBlockData::GetEstimatedEffort),
                             Number(&CFCBPMBlockData::GetActEffort), Number(&CFCBPMBlockData::GetDuration),
                             Number(&CFCBPMBlockData::GetCost), Number(&CFCBPMBlockData::GetProjectLate),
                             Number(&CFCBPMBlockData::GetProgress)})
        EXPECT_EQ((task->*get)(), (source->*get)());
    using Date = TuDate (CFCBPMBlockData::*)();
    for (Date const get : {Date(&CFCBPMBlockData::GetStartDate), Date(&CFCBPMBlockData::GetEndDate),
                           Date(&CFCBPMBlockData::GetActStartDate), Date(&CFCBPMBlockData::GetActEndDate),
                           Date(&CFCBPMBlockData::GetEstimatedReadyDate), Date(&CFCBPMBlockData::GetEstimatedEndDate),
                           Date(&CFCBPMBlockData::GetReminderDate)}) {
        EXPECT_EQ((task->*get)(), (source->*get)());
        EXPECT_FALSE((task->*get)().IsEmpty());
    }
    EXPECT_EQ(task->GetAppVersion(), 7);
    EXPECT_EQ(task->GetReminderRepeat(), 3);
    EXPECT_EQ(narrow(child(tree.get(), L"B")->GetNodeDescription()), "of the node");
    ASSERT_NE(task->GetGUIRect(), nullptr);
    EXPECT_EQ(task->GetGUIRect()->right, 640);
    EXPECT_EQ(task->GetGUIRect()->bottom, 480);
}

TEST_F(WorkflowRoundTrip, TheCriticalPathFollowsTheLateFlag) {
    for (bool const isLate : {false, true}) {
        Tree const root = newWorkflow();
        CFCBPMTaskNode* const task = addTask(root.get(), L"T");
        task->SetLateIndicator(isLate);
        task->SetCriticalPathIndicator(!isLate);
        EXPECT_EQ(child(pass(root.get(), "flow"), L"T")->GetBPMBlockData()->IsCriticalPathIndicator(), isLate);
    }
}

TEST_F(WorkflowRoundTrip, NotifyIsNotCarriedButTheMailIs) {
    Tree const root = newWorkflow();
    addTask(root.get(), L"T")->SetNotify(true);
    CFCBPMBlockData* const task = child(pass(root.get(), "flow"), L"T")->GetBPMBlockData();
    EXPECT_FALSE(task->IsNotify());
    EXPECT_FALSE(task->HasEmailNotification());
}

TEST_F(WorkflowRoundTrip, AFormIsFoundInTheFolderOfItsBlock) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const task = addTask(root.get(), L"T");
    task->SetGui(true);
    task->SetScriptFile(L"T", path("BrindleExec/Flow"));
    CFCBPMBlockData* const back = child(pass(root.get(), "BrindleExec/Flow"), L"T")->GetBPMBlockData();
    EXPECT_TRUE(back->HasGui());
    EXPECT_EQ(narrow(back->GetHTMLScriptFileName()), narrow(task->GetHTMLScriptFileName()));
    EXPECT_EQ(narrow(back->GetHTMLScriptFileName()), "Flow/T/T.html");
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(WorkflowRoundTrip, ABlockWithoutTaskHasNone) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const task = addTask(root.get(), L"T");
    task->SetTaskName(L"");
    task->SetSwimLane(L"lost");
    CFCBPMBlockData* const back = child(pass(root.get(), "flow"), L"T")->GetBPMBlockData();
    EXPECT_EQ(narrow(back->GetTaskName()), "");
    EXPECT_EQ(narrow(back->GetSwimLane()), "");
    EXPECT_EQ(back->GetEffort(), 8.0); // as in a new block: no task was read
    EXPECT_EQ(narrow(back->GetPriority()), "normal");
}

TEST_F(WorkflowRoundTrip, EventsComeBack) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const task = addTask(root.get(), L"T");
    task->SetModulePath(L"m");
    for (auto const& [type, function] : std::vector<std::pair<wchar_t const*, wchar_t const*>>{
             {L"task-start", L"begin"}, {L"task-end", L"finish"}, {L"node-enter", L"lost"}}) {
        CFCEventActionData* const record = task->CreateNewEventAction();
        record->SetActionName(L"action");
        record->SetClassName(L"some.Class");
        record->SetActionType(type);
        record->SetActionFunction(function);
    }
    CFCBPMBlockData* const back = child(pass(root.get(), "flow"), L"T")->GetBPMBlockData();
    auto const records = recordsOf<CFCEventActionData>(back->GetEventList());
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(narrow(records[0]->GetActionType()), "task-start");
    EXPECT_EQ(narrow(records[0]->GetActionFunction()), "begin");
    EXPECT_EQ(narrow(records[0]->GetClassNameStr()), "some.Class");
    EXPECT_EQ(narrow(records[1]->GetActionType()), "task-end");
    EXPECT_EQ(narrow(records[1]->GetActionFunction()), "finish");
    EXPECT_EQ(narrow(records[2]->GetActionType()), "node-enter");
    EXPECT_EQ(narrow(records[2]->GetActionFunction()), ""); // of no such event
    EXPECT_EQ(narrow(back->GetModulePath()), "m");
    EXPECT_EQ(narrow(back->GetEventType()), "node-enter");
}

TEST_F(WorkflowRoundTrip, TheEventOfAModuleBecomesARecord) {
    Tree const root = newWorkflow();
    addTask(root.get(), L"T")->SetModulePath(L"A.T.scripts.T");
    CFCBPMBlockData* const back = child(pass(root.get(), "flow"), L"T")->GetBPMBlockData();
    CFCEventActionData* const record = only(recordsOf<CFCEventActionData>(back->GetEventList()));
    EXPECT_EQ(narrow(record->GetActionName()), "action");
    EXPECT_EQ(narrow(record->GetActionType()), "task-start");
    EXPECT_EQ(narrow(back->GetEventType()), "task-start");
    EXPECT_EQ(narrow(back->GetModulePath()), "A.T.scripts.T");
    // Written again it has a function, too, which is empty.
    write(tree.get(), "again");
    Element const action = element("again/processdefinition.xml").only("task-node").only("event").only("action");
    EXPECT_EQ(action.outline(), "modulePath function");
    EXPECT_EQ(action.only("function").text, "");
}

TEST_F(WorkflowRoundTrip, ScriptsComeBackWithoutTypeAndExpression) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const task = addTask(root.get(), L"T");
    auto* const event = new CFCEventActionData;
    event->SetActionName(L"s");
    event->SetClassName(L"c");
    event->SetActionType(L"t");
    event->SetActionExpression(L"x");
    event->SetActionValue(L"a < b");
    task->GetScriptEventList()->AddTail(event);
    CFCExceptionActionData* const exception = task->CreateNewScriptException();
    exception->SetActionName(L"e");
    exception->SetActionValue(L"code");
    CFCExceptionActionData* const action = task->CreateNewActionException();
    action->SetActionName(L"a");
    action->SetClassName(L"d");
    action->SetActionValue(L"lost");
    CFCBPMBlockData* const back = child(pass(root.get(), "flow"), L"T")->GetBPMBlockData();
    CFCEventActionData* const script = only(recordsOf<CFCEventActionData>(back->GetScriptEventList()));
    EXPECT_EQ(narrow(script->GetActionName()), "s");
    EXPECT_EQ(narrow(script->GetClassNameStr()), "c");
    EXPECT_EQ(narrow(script->GetActionValue()), "a < b");
    EXPECT_EQ(narrow(script->GetActionType()), "");
    EXPECT_EQ(narrow(script->GetActionExpression()), "");
    EXPECT_EQ(narrow(only(recordsOf<CFCExceptionActionData>(back->GetScriptExceptionList()))->GetActionValue()),
              "code");
    CFCExceptionActionData* const handler = only(recordsOf<CFCExceptionActionData>(back->GetActionExceptionList()));
    EXPECT_EQ(narrow(handler->GetClassNameStr()), "d");
    EXPECT_EQ(narrow(handler->GetActionValue()), "");
    EXPECT_THAT(found,
                ElementsAre("AttributePassedOver [T] <script> expression = x", "TextPassedOver [T] <action> = lost"));
}

TEST_F(WorkflowRoundTrip, TimersAndReminderRecordsDoNotComeBack) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const task = addTask(root.get(), L"T");
    task->SetTimerName(L"n");
    task->SetTimerTransition(L"t");
    task->SetTimerDueDate(dateOf(2024, 3, 5, 1, 2, 3));
    task->CreateNewTimerAction()->SetActionName(L"a");
    task->SetReminder(true);
    task->SetReminderDate(dateOf(2024, 3, 5));
    task->CreateNewReminderData()->SetActionName(L"r");
    CFCBPMBlockData* const back = child(pass(root.get(), "flow"), L"T")->GetBPMBlockData();
    EXPECT_EQ(narrow(back->GetTimerName()), "");
    EXPECT_EQ(narrow(back->GetTimerTransition()), "");
    EXPECT_TRUE(back->GetTimerDueDate().IsEmpty());
    EXPECT_THAT(recordsOf<CFCTimerActionData>(back->GetTimerList()), IsEmpty());
    EXPECT_THAT(recordsOf<CFCReminderData>(back->GetReminderList()), IsEmpty());
    EXPECT_TRUE(back->HasReminder());
    EXPECT_THAT(found, testing::UnorderedElementsAre(
                           "AttributePassedOver [T] <timer> name = n", "AttributePassedOver [T] <timer> transition = t",
                           "ElementPassedOver [T] <action> a", "ElementPassedOver [T] <action> r"));
}

TEST_F(WorkflowRoundTrip, NodesWithoutAnElementAreLeftOut) {
    Tree const root = newWorkflow();
    for (int const kind : {151, 152, 158, 159})
        addTask(root.get(), L"lost", kind);
    addChild(root.get(), 57, L"lost");
    addTask(root.get(), L"T");
    EXPECT_EQ(outlineOf(pass(root.get(), "flow")), "150 T");
}

TEST_F(WorkflowRoundTrip, ConnectorsOfOtherTypesBecomeThatOfTheProject) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const a = addTask(root.get(), L"A");
    connect(root.get(), a, addTask(root.get(), L"B"))->SetConnectorType(static_cast<EConnectorType>(3));
    EXPECT_EQ(only(connectorsOf(pass(root.get(), "flow")))->GetConnectorType(), 1);
    EXPECT_THAT(found, ElementsAre("AttributePassedOver [A] <transition> type = 3"));
}

TEST_F(WorkflowRoundTrip, VariablesOfTheRootDoNotComeBack) {
    Tree const root = newWorkflow();
    addVariable(root.get(), L"lost");
    EXPECT_THAT(variablesOf(pass(root.get(), "flow")), IsEmpty());
}

TEST_F(WorkflowRoundTrip, ApplicationsComeBack) {
    Tree const root = newWorkflow(L"Apps", EProjectType_APPLICATION);
    CFCApplicationNode* const group = addApplication(root.get(), L"G", 168);
    CFCApplicationNode* const app = addApplication(group, L"A");
    for (CFCApplicationNode* const node : {group, app}) {
        node->SetTaskCaption(node->GetNodeId());
        node->SetIconFilePath(L"icon");
        node->SetAppID(12);
        node->SetUpdated(1);
        node->SetUseBindingScript(true);
        node->SetDeleteAllVersions(true);
    }
    CFCArgumentData* const argument = app->CreateNewArgument();
    static_cast<void>(argument);
    IFCNode* const back = pass(root.get(), "BrindleExec/Apps");
    EXPECT_EQ(back->GetProjectType(), EProjectType_APPLICATION);
    EXPECT_EQ(outlineOf(back), "168 G");
    EXPECT_EQ(outlineOf(child(back, L"G")), "167 A");
    for (IFCNode* const node : {child(back, L"G"), child(child(back, L"G"), L"A")}) {
        auto* const read = dynamic_cast<CFCApplicationNode*>(node);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->GetAppID(), 12);
        EXPECT_NE(read->IsUpdated(), 0);
        EXPECT_EQ(read->IsNewVersion(), 0);
        EXPECT_TRUE(read->IsUseBindingScript());
        EXPECT_TRUE(read->IsDeleteAllVersions());
        EXPECT_EQ(narrow(read->GetIconFilePath()), "icon");
        EXPECT_NE(narrow(read->GetHierarchyPath()), "");
    }
    auto* const read = dynamic_cast<CFCApplicationNode*>(child(child(back, L"G"), L"A"));
    EXPECT_EQ(read->GetArgumentList()->GetCount(), 1);
    EXPECT_EQ(read->GetDeploymentList()->GetCount(), 1); // the default one, made by writing
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(WorkflowRoundTrip, FlagsOfAVersionTravelTogether) {
    struct Row {
        int isNew, isUpdated, backNew, backUpdated;
    };
    for (Row const& row : {Row{0, 0, 0, 0}, Row{1, 0, 0, 0}, Row{0, 1, 0, 1}, Row{1, 1, 1, 0}}) {
        Tree const root = newWorkflow(L"Apps", EProjectType_APPLICATION);
        CFCApplicationNode* const app = addApplication(root.get(), L"A");
        app->SetAppID(1);
        app->SetNewVersion(row.isNew);
        app->SetUpdated(row.isUpdated);
        auto* const back = dynamic_cast<CFCApplicationNode*>(child(pass(root.get(), "flow"), L"A"));
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->IsNewVersion() != 0, row.backNew != 0) << row.isNew << row.isUpdated;
        EXPECT_EQ(back->IsUpdated() != 0, row.backUpdated != 0) << row.isNew << row.isUpdated;
    }
}

// --- Sub-processes -------------------------------------------------------------------------------------------

TEST_F(WorkflowRoundTrip, OneSubProcessMakesSixFilesAndComesBack) {
    for (int kind = 162; kind <= 165; ++kind) {
        std::filesystem::path const folder = "flow" + std::to_string(kind);
        Tree const root = newWorkflow();
        CFCBPMTaskNode* const sub = addTask(root.get(), L"Sub", kind);
        sub->SetNodeCaption(L"The sub");
        sub->SetTaskCaption(L"The sub");
        sub->SetMaxIterations(kind < 164 ? 9 : 0);
        sub->SetSwimLane(L"lane");
        CFCBPMTaskNode* const a = addTask(sub, L"A");
        CFCBPMTaskNode* const b = addTask(sub, L"B");
        a->SetTuRect(1, 2, 30, 40);
        route(sub, a, b, L"inner", {});
        addVariable(a, L"v", L"x");
        CFCBPMTaskNode* const end = addTask(root.get(), L"End", 155);
        route(root.get(), sub, end, L"outer", {});
        IFCNode* const back = pass(root.get(), folder, {"Sub"});
        EXPECT_EQ(contentsOf(scratch / folder),
                  "Sub/gpd.xml Sub/process.var Sub/processdefinition.xml gpd.xml process.var processdefinition.xml");
        IFCNode* const block = child(back, L"Sub");
        EXPECT_EQ(block->GetNodeType(), kind);
        EXPECT_EQ(narrow(block->GetNodeCaption()), "The sub");
        EXPECT_EQ(block->GetBPMBlockData()->GetMaxIterations(), kind < 164 ? 9 : 0);
        EXPECT_EQ(narrow(block->GetBPMBlockData()->GetSwimLane()), "lane");
        EXPECT_EQ(narrow(block->GetBPMBlockData()->GetAssociatedSubProcess()), "Sub");
        EXPECT_EQ(outlineOf(block), "150 A, 150 B");
        EXPECT_EQ(connectionsOf(block), "A-B");
        EXPECT_EQ(connectionsOf(back), "Sub-End");
        EXPECT_EQ(child(block, L"A")->GetTuRect()->bottom, 40);
        EXPECT_EQ(narrow(only(variablesOf(child(block, L"A")))->GetVariableName()), "v");
        EXPECT_THAT(found, IsEmpty());
    }
}

TEST_F(WorkflowRoundTrip, ASubProcessInASubProcessComesBack) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const outer = addTask(root.get(), L"Outer", 165);
    CFCBPMTaskNode* const inner = addTask(outer, L"Inner", 164);
    addTask(inner, L"T");
    IFCNode* const back = pass(root.get(), "flow", {"Outer/Inner"});
    EXPECT_EQ(contentsOf(scratch / "flow"),
              "Outer/Inner/gpd.xml Outer/Inner/process.var Outer/Inner/processdefinition.xml "
              "Outer/gpd.xml Outer/process.var Outer/processdefinition.xml "
              "gpd.xml process.var processdefinition.xml");
    EXPECT_EQ(outlineOf(child(child(back, L"Outer"), L"Inner")), "150 T");
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(WorkflowRoundTrip, ASubProcessWhoseFolderWasNotMadeIsEmpty) {
    Tree const root = newWorkflow();
    addTask(addTask(root.get(), L"Sub", 165), L"T");
    IFCNode* const back = pass(root.get(), "flow");
    EXPECT_EQ(outlineOf(back), "165 Sub");
    EXPECT_EQ(outlineOf(child(back, L"Sub")), "");
    EXPECT_THAT(found, ElementsAre("NestedFolderMissing [Sub] <task-node>"));
}

// --- Generations ---------------------------------------------------------------------------------------------

TEST_F(WorkflowRoundTrip, WhatWasReadIsWrittenTheSame) {
    Tree const root = makeProcess();
    IFCNode* back = pass(root.get(), "first");
    write(back, "second");
    EXPECT_EQ(element("first/gpd.xml"), element("second/gpd.xml"));
    EXPECT_EQ(element("first/process.var"), element("second/process.var"));
    // The definition has the path of the form only now; from here on nothing changes any more.
    back = pass(back, "third");
    write(back, "fourth");
    EXPECT_EQ(files("third"), files("fourth"));
}

TEST_F(WorkflowRoundTrip, SubProcessesAreWrittenTheSame) {
    Tree const root = newWorkflow();
    CFCBPMTaskNode* const sub = addTask(root.get(), L"Sub", 163);
    sub->SetNodeCaption(L"Sub");
    sub->SetTaskCaption(L"Sub");
    sub->SetNodeDescription(L"about");
    sub->SetTaskDescription(L"about");
    sub->SetMaxIterations(4);
    CFCBPMTaskNode* const a = addTask(sub, L"A");
    a->SetNodeCaption(L"A");
    a->SetTaskCaption(L"A");
    route(sub, a, a, L"again", {{3, 4}});
    IFCNode* const back = pass(root.get(), "first", {"Sub"});
    write(back, "second", {"Sub"});
    EXPECT_EQ(files("first"), files("second"));
    EXPECT_EQ(files("first/Sub"), files("second/Sub"));
}

TEST_F(WorkflowRoundTrip, TextsBeyondAsciiAndMarkupComeBack) {
    Tree const root = newWorkflow(L"\u00C4 <&>\"'");
    CFCBPMTaskNode* const task = addTask(root.get(), L"T\u00E4sk <1>");
    task->SetTaskCaption(L"\U0001F600");
    task->SetTaskDescription(L"a\nb\t]]> c");
    task->SetUser(L"O'Neill \"x\" & y");
    IFCNode* const back = pass(root.get(), "flow");
    EXPECT_EQ(narrow(back->GetNodeCaption()), narrow(root->GetNodeCaption()));
    IFCNode* const node = only(childrenOf(back));
    EXPECT_EQ(narrow(node->GetNodeId()), narrow(task->GetNodeId()));
    EXPECT_EQ(narrow(node->GetNodeCaption()), narrow(L"\U0001F600"));
    EXPECT_EQ(narrow(node->GetBPMBlockData()->GetTaskDescription()), "a\nb\t]]> c");
    EXPECT_EQ(narrow(node->GetBPMBlockData()->GetUser()), "O'Neill \"x\" & y");
}
