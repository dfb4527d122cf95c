// Documents on their way into a workflow folder.

#include "Bridge.h"
#include "Golden.h"
#include "Program.h"

#include "flowmere/Flowmere.h"
#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/files/SafeFolder.h"
#include "host/files/SystemCalls.h"
#include "host/workflow/BlockScripts.h"
#include "host/workflow/ToWorkflow.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace flowmere::test;
namespace fs = std::filesystem;
namespace host = flowmere::host;
using host::Import;
using host::Note;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using testing::UnorderedElementsAre;

fs::path const kBeam = fs::path(FLOWMERE_EXAMPLES) / "beam";

std::string lineOf(Note const& note) {
    return (note.kind == Note::Kind::Changed ? "~ " : "- ") + note.place + ": " + note.text;
}

// A document that becomes a workflow in memory.
class ToWorkflow : public ScratchTest {
protected:
    void convert(std::string const& document, host::ScriptState state = host::ScriptState::None) {
        scratch.write("doc.xml", document);
        m_document = std::make_unique<host::Document>((scratch / "doc.xml").string());
        m_workflow = host::toWorkflow(m_document->process(), [=](CFCBlockNode&) { return state; });
    }
    void TearDown() override {
        m_workflow = {};
        m_document.reset();
    }

    CFCBPMTaskNode* at(std::string const& path) {
        return dynamic_cast<CFCBPMTaskNode*>(CFCNodeHelper::FindNode(host::wide(path), m_workflow.process.get()));
    }
    int kindAt(std::string const& path) {
        CFCBPMTaskNode* const node = at(path);
        return node != nullptr ? node->GetNodeType() : 0;
    }
    std::vector<std::string> notes() const {
        std::vector<std::string> lines;
        for (Note const& note : m_workflow.notes)
            lines.push_back(lineOf(note));
        return lines;
    }
    // The nodes below a container in the order of the file, with the targets of their connectors.
    std::vector<std::string> flow(std::string const& path = "") {
        IFCNode* const container = path.empty() ? m_workflow.process.get() : static_cast<IFCNode*>(at(path));
        std::vector<std::string> lines;
        for (IFCNode* child = container->GetChild(); child != nullptr; child = child->GetNext()) {
            if (child->GetBPMBlockData() == nullptr)
                continue;
            std::string line = host::utf8(child->GetNodeId());
            CFCConnectorList* const list = container->GetConnectorList();
            for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
                if (CFCConnector* const way = list->GetNext(position); way->GetStartObject() == child)
                    line += " > " + host::utf8(way->GetEndBlockName());
            lines.insert(lines.begin(), line);
        }
        return lines;
    }
    CFCConnector* firstWay() {
        CFCConnectorList* const list = m_workflow.process->GetConnectorList();
        __FCPOSITION* position = list->GetHeadPosition();
        return list->GetNext(position);
    }
    CFCVariableData* variableAt(std::string const& path) {
        return CFCNodeHelper::FindVariable(host::wide(path), m_workflow.process.get());
    }

    std::unique_ptr<host::Document> m_document;
    host::WorkflowTree m_workflow;
};

// --- Kinds ---------------------------------------------------------------------------------------------------------

struct KindRow {
    char const* shape;
    int kind;
    char const* note; // empty for none
};

class KindOf : public ToWorkflow, public testing::WithParamInterface<KindRow> {};

// Between two terminators, so that its level starts and ends elsewhere.
TEST_P(KindOf, BecomesItsKindOfTheWorkflow) {
    KindRow const& row = GetParam();
    convert(process(node("S", "Oval") + node("X", row.shape) + node("E", "Oval") + connector("S", "X") +
                    connector("X", "E")));
    EXPECT_EQ(kindAt("X"), row.kind);
    EXPECT_EQ(kindAt("S"), eShapeType_StartState);
    EXPECT_EQ(kindAt("E"), eShapeType_EndState);
    if (*row.note == '\0')
        EXPECT_THAT(notes(), IsEmpty());
    else
        EXPECT_THAT(notes(), ElementsAre(HasSubstr(row.note)));
}

INSTANTIATE_TEST_SUITE_P(
    Export, KindOf,
    testing::Values(KindRow{"Rectangle", eShapeType_Task, ""}, KindRow{"Decision", eShapeType_DecisionTask, ""},
                    KindRow{"RoundRect", eShapeType_Task, "round corners"},
                    KindRow{"Oval", eShapeType_Task, "that of a terminator"},
                    KindRow{"ApplicationTask", eShapeType_Task, ""},
                    KindRow{"UserTask", eShapeType_Task, "its kind, user task"},
                    KindRow{"DecisionTask", eShapeType_DecisionTask, ""},
                    KindRow{"StartState", eShapeType_Task, "nothing may lead into a start state"},
                    KindRow{"EndState", eShapeType_Task, "nothing may lead out of an end state"},
                    KindRow{"Fork", eShapeType_Fork, ""}, KindRow{"Join", eShapeType_Join, ""},
                    KindRow{"Mail", eShapeType_Task, "its kind, mail"},
                    KindRow{"ESB", eShapeType_Task, "its kind, service"},
                    KindRow{"SuperState", eShapeType_SuperState, ""},
                    KindRow{"ClientApplication", eShapeType_Application, "it is read back as a task"}),
    [](testing::TestParamInfo<KindRow> const& entry) { return std::string(entry.param.shape); });

TEST_F(ToWorkflow, SubProcessesOfEachKindStaySubProcesses) {
    for (auto const& [shape, kind] :
         std::vector<std::pair<std::string, int>>{{"Rectangle", eShapeType_BasicSubProcess},
                                                  {"BasicSubProcess", eShapeType_BasicSubProcess},
                                                  {"SubProcessLoop", eShapeType_SubProcessLoop},
                                                  {"DecisionLoop", eShapeType_DecisionLoop},
                                                  {"SpawningLoop", eShapeType_SpawningLoop}}) {
        std::string text = group("G", node("A"));
        text.replace(text.find("Rectangle"), 9, shape);
        convert(process(text));
        EXPECT_EQ(kindAt("G"), kind) << shape;
        EXPECT_EQ(kindAt("G.A"), eShapeType_Task) << shape;
        EXPECT_EQ(m_workflow.levels, 2) << shape;
    }
}

TEST_F(ToWorkflow, AProcessInsideBecomesASubProcess) {
    convert(process("<PROCESS Name=\"Inner\">" + node("A") + "</PROCESS>"));
    EXPECT_EQ(kindAt("Inner"), eShapeType_BasicSubProcess);
    EXPECT_EQ(kindAt("Inner.A"), eShapeType_Task);
    EXPECT_THAT(notes(), Contains(StartsWith("~ Inner: becomes a basic sub-process")));
}

TEST_F(ToWorkflow, WhatIsNoBlockIsLostWithAllInIt) {
    convert(process("<SUB_GRP Name=\"Folder\">" + node("A") + node("B") + "</SUB_GRP>" + node("C")));
    EXPECT_THAT(flow(), ElementsAre("Start > C", "C > End", "End"));
    EXPECT_THAT(notes(), Contains(HasSubstr("the folder, with 2 nodes in it")));
}

TEST_F(ToWorkflow, TheRootIsAWorkflowProcess) {
    convert(process(node("A")));
    auto* const root = dynamic_cast<CFCBPMProcessNode*>(m_workflow.process.get());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetNodeType(), eShapeType_WorkflowProcess);
    EXPECT_STREQ(root->GetNodeCaption(), L"Test");
    EXPECT_STREQ(root->GetTaskName(), L"Test");
    EXPECT_EQ(root->GetProjectType(), EProjectType_TASK);
    EXPECT_STREQ(root->GetPriority(), L"");
}

// --- Start and end -------------------------------------------------------------------------------------------------

TEST_F(ToWorkflow, StatesAreAddedWhereTheFlowStartsAndEnds) {
    convert(process(node("B") + node("A") + connector("A", "B")));
    EXPECT_THAT(flow(), ElementsAre("Start > A", "B > End", "A > B", "End"));
    EXPECT_EQ(kindAt("Start"), eShapeType_StartState);
    EXPECT_EQ(kindAt("End"), eShapeType_EndState);
    EXPECT_STREQ(at("Start")->GetNodeDescription(), host::kAddedStart);
    EXPECT_STREQ(at("End")->GetNodeDescription(), host::kAddedEnd);
    EXPECT_STREQ(at("Start")->GetTaskCaption(), L"Start");
    EXPECT_THAT(notes(), ElementsAre(StartsWith("~ Start: added"), StartsWith("~ End: added")));
    EXPECT_EQ(m_workflow.nodes, 4);
    EXPECT_EQ(m_workflow.transitions, 3);
    // Above and below, where nothing stands.
    EXPECT_LT(at("Start")->CFCShape::GetTuRect()->bottom, at("A")->CFCShape::GetTuRect()->top);
    EXPECT_GT(at("End")->CFCShape::GetTuRect()->top, at("B")->CFCShape::GetTuRect()->bottom);
}

TEST_F(ToWorkflow, TerminatorsAtBothEndsAreTheStates) {
    convert(process(node("S", "Oval") + node("A") + node("E", "Oval") + connector("S", "A") + connector("A", "E")));
    EXPECT_THAT(flow(), ElementsAre("S > A", "A > E", "E"));
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(ToWorkflow, EveryBlockWhereTheFlowEndsLeadsToTheOneEnd) {
    convert(process(node("A", "Decision") + node("B") + node("C") + node("Lone") + connector("A", "B") +
                    connector("A", "C", 8, 4)));
    EXPECT_THAT(flow(), ElementsAre("Start > A", "A > B > C", "B > End", "C > End", "Lone", "End"));
}

TEST_F(ToWorkflow, AStartStateIsTheStartWhereverADocumentWouldBegin) {
    convert(process(node("S", "StartState") + node("E", "EndState") + node("A") + node("B") + connector("S", "E") +
                    connector("A", "B")));
    EXPECT_THAT(flow(), ElementsAre("S > E", "E", "A > B", "B"));
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(ToWorkflow, BlocksThatNoFlowReachesLeadNowhereNew) {
    convert(process(node("X", "Decision") + node("Y") + node("Z") + connector("X", "Y") + connector("Y", "X") +
                    connector("X", "Z", 8, 4) + node("A") + node("E", "Oval") + connector("A", "E")));
    EXPECT_THAT(flow(), ElementsAre("Start > A", "X > Y > Z", "Y > X", "Z", "A > E", "E"));
}

TEST_F(ToWorkflow, ATerminatorThatALoopLeadsIntoIsNoStart) {
    convert(process(node("S", "Oval") + node("A") + connector("S", "A") + connector("A", "S")));
    EXPECT_EQ(kindAt("S"), eShapeType_Task);
    EXPECT_THAT(flow(), ElementsAre("Start > A", "S > A", "A > S"));
}

TEST_F(ToWorkflow, OnlyTheTerminatorWhereTheFlowStartsIsTheStart) {
    convert(process(node("S", "Oval") + node("T", "Oval") + node("A") + connector("S", "A") + connector("T", "A")));
    // The newest block with a way out and none in is the first.
    EXPECT_EQ(kindAt("T"), eShapeType_StartState);
    EXPECT_EQ(kindAt("S"), eShapeType_Task);
    EXPECT_THAT(notes(), Contains(HasSubstr("the flow of its level starts elsewhere")));
}

TEST_F(ToWorkflow, ATerminatorWithAScriptStaysABlockBehindAState) {
    convert(process(node("S", "Oval") + node("A") + connector("S", "A")), host::ScriptState::Found);
    EXPECT_EQ(kindAt("S"), eShapeType_Task);
    EXPECT_THAT(flow(), ElementsAre("Start > S", "S > A", "A > End", "End"));
}

TEST_F(ToWorkflow, OfSeveralStartStatesOneStays) {
    convert(process(node("S", "StartState") + node("T", "StartState") + node("A") + connector("S", "A") +
                    connector("T", "A") + connector("A", "B") + node("B")));
    EXPECT_EQ(kindAt("S"), eShapeType_StartState);
    EXPECT_EQ(kindAt("T"), eShapeType_Task);
    EXPECT_THAT(notes(), Contains("~ T: becomes a task: a level has one start state"));
}

TEST_F(ToWorkflow, EachSubProcessStartsAndEndsByItself) {
    convert(process(group("G", node("A") + node("B") + connector("A", "B"))));
    EXPECT_THAT(flow(), ElementsAre("Start > G", "G > End", "End"));
    EXPECT_THAT(flow("G"), ElementsAre("Start > A", "A > B", "B > End", "End"));
}

TEST_F(ToWorkflow, AnEmptySubProcessIsGoneThrough) {
    convert(process(group("G", "")));
    EXPECT_THAT(flow("G"), ElementsAre("Start > End", "End"));
}

TEST_F(ToWorkflow, ASuperStateHasNoStartOfItsOwn) {
    std::string text = group("G", node("A"));
    text.replace(text.find("Rectangle"), 9, "SuperState");
    convert(process(text));
    EXPECT_THAT(flow("G"), ElementsAre("A"));
    EXPECT_EQ(m_workflow.levels, 1);
}

TEST_F(ToWorkflow, AWorkflowGoesOutAsItIs) {
    convert(process(node("A", "ApplicationTask") + node("F", "Fork") + connector("A", "F")));
    EXPECT_THAT(flow(), ElementsAre("A > F", "F"));
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(ToWorkflow, NamesOfAddedStatesAreNew) {
    convert(process(node("start") + node("END") + connector("start", "END")));
    EXPECT_THAT(flow(), ElementsAre("Start_2 > start", "start > END", "END > End_2", "End_2"));
}

// --- Names ---------------------------------------------------------------------------------------------------------

TEST_F(ToWorkflow, NamesBecomeSuchAsTheEngineAndItsFoldersTake) {
    convert(process(node("a/b") + node("a\\b") + node("a.b") + node("A_B")));
    EXPECT_THAT(flow(), Contains(StartsWith("A_B")));
    EXPECT_THAT(flow(), Contains("a_b_2"));
    EXPECT_THAT(flow(), Contains("a_b_3"));
    EXPECT_THAT(flow(), Contains("a_b_4"));
    EXPECT_THAT(notes(), Contains(StartsWith("~ a/b: is called \"a_b_2\" from now on")));
}

TEST_F(ToWorkflow, ASecondBlockOfANameGetsAnotherOneWhateverItsCase) {
    convert(process(node("A") + node("a")));
    EXPECT_THAT(flow(), Contains("a_2 > End"));
    EXPECT_THAT(notes(), Contains("~ a: is called \"a_2\" from now on: names are unique in their level, whatever their "
                                  "case"));
}

TEST_F(ToWorkflow, ABlockWithoutIdentifierIsCalledByItsCaption) {
    std::string text = node("Id");
    text.replace(text.find("Name=\"Id\""), 9, "Name=\"\"");
    convert(process(text + node("B")));
    EXPECT_EQ(kindAt("Id"), eShapeType_Task);
    EXPECT_THAT(notes(), Contains(HasSubstr("the engine knows nodes by their names")));
}

TEST_F(ToWorkflow, LinksLeadToTheVariablesOfRenamedBlocks) {
    convert(process(group("G/H", node("A", "Rectangle", variable("Out", "Int", "5"))) +
                        node("B", "Rectangle",
                             variable("In", "Int", "", "Input", "G/H.A.Out") +
                                 variable("Root", "Int", "", "Input", ".Top") +
                                 variable("Dead", "Int", "7", "Input", "No.Such")),
                    variable("Top", "Int", "3")));
    ASSERT_NE(variableAt("B.In"), nullptr);
    EXPECT_STREQ(variableAt("B.In")->GetLinkPath(), L"G_H.A.Out");
    EXPECT_STREQ(variableAt("B.In")->GetActualVariableData()->GetValue(), L"5");
    EXPECT_STREQ(variableAt("B.Root")->GetActualVariableData()->GetValue(), L"3");
    EXPECT_STREQ(variableAt("B.Dead")->GetLinkPath(), L"No.Such");
}

TEST_F(ToWorkflow, ALinkIntoWhatIsNotCarriedLeavesItsValue) {
    convert(process("<SUB_GRP Name=\"Folder\">" + node("A", "Rectangle", variable("Out", "Int", "5")) + "</SUB_GRP>" +
                    node("B", "Rectangle", variable("In", "Int", "", "Input", "A.Out"))));
    CFCVariableData* const made = variableAt("B.In");
    ASSERT_NE(made, nullptr);
    if (m_document->variable("B.In").GetActualVariableData() != &m_document->variable("B.In")) {
        EXPECT_STREQ(made->GetLinkPath(), L"");
        EXPECT_STREQ(made->GetValue(), L"5");
    } else {
        EXPECT_STREQ(made->GetLinkPath(), L"A.Out");
    }
}

// --- What is carried -----------------------------------------------------------------------------------------------

TEST_F(ToWorkflow, CaptionDescriptionLookAndPlaceAreCarried) {
    convert(process(
        "<BLOCK Name=\"A\" BlockString=\"Caption\" Run=\"true\" IsImage=\"true\" RelativeImage=\"x/y.png\">"
        "<DIMENSION Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\" Shape=\"Rectangle\"/><FLAGS Reference=\"0\"/>"
        "<HELP MicroHelp=\"Caption\" Description=\"What it does\"/><SCRIPT Name=\"A\" ScriptType=\"PYTHON\"/>"
        "<BORDER LineThickness=\"3\" LinePenType=\"1\" DrawBorder=\"1\" FillColor=\"0\" ColorLine=\"255\" "
        "ColorFill=\"16\" Version=\"1\"/><FONT Bold=\"0\" Italics=\"1\" FontColor=\"7\" FontName=\"Serif\" "
        "FontSize=\"12\" Format=\"3\" Version=\"1\"/></BLOCK>"));
    CFCBPMTaskNode* const task = at("A");
    ASSERT_NE(task, nullptr);
    EXPECT_STREQ(task->GetNodeCaption(), L"Caption");
    EXPECT_STREQ(task->GetTaskCaption(), L"Caption");
    EXPECT_STREQ(task->GetTaskName(), L"A");
    EXPECT_STREQ(task->GetNodeDescription(), L"What it does");
    EXPECT_STREQ(task->GetPriority(), L"normal");
    TuRect const* const rect = task->CFCShape::GetTuRect();
    EXPECT_EQ(rect->left, 100);
    EXPECT_EQ(rect->top, 700);
    EXPECT_EQ(rect->right, 400);
    EXPECT_EQ(rect->bottom, 1100);
    EXPECT_EQ(task->GetLineThickness(), 3);
    EXPECT_EQ(task->GetLinePenType(), 1);
    EXPECT_TRUE(task->GetDrawBorder());
    EXPECT_FALSE(task->GetFillColor());
    EXPECT_EQ(task->GetColorLine(), 255U);
    EXPECT_EQ(task->GetColorFill(), 16U);
    EXPECT_FALSE(task->GetBold());
    EXPECT_TRUE(task->GetItalics());
    EXPECT_EQ(task->GetFontColor(), 7U);
    EXPECT_STREQ(task->GetFontName(), L"Serif");
    EXPECT_EQ(task->GetFontSize(), 12);
    EXPECT_EQ(task->GetFormat(), 3U);
    EXPECT_TRUE(task->HasImage());
    EXPECT_STREQ(task->GetRelativeImagePath(), L"x/y.png");
}

TEST_F(ToWorkflow, ConnectorsKeepTheirGripsAndTheirRoute) {
    convert(process(node("A") + node("B") +
                    "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" StartHandle=\"4\" EndHandle=\"8\" Version=\"1\">"
                    "<POINT Location_X=\"1\" Location_Y=\"10\"/><POINT Location_X=\"2\" Location_Y=\"10\"/>"
                    "<POINT Location_X=\"2\" Location_Y=\"10\"/><POINT Location_X=\"2\" Location_Y=\"9\"/>"
                    "</CONNECTOR>\n"));
    CFCConnector* const way = firstWay();
    EXPECT_EQ(way->GetStartHandle(), 4);
    EXPECT_EQ(way->GetEndHandle(), 8);
    EXPECT_TRUE(way->IsBPMConnector());
    ASSERT_NE(way->GetStartPoint(), nullptr);
    ASSERT_NE(way->GetEndPoint(), nullptr);
    EXPECT_EQ(way->GetStartPoint()->x, 100);
    EXPECT_EQ(way->GetStartPoint()->y, 300);
    ASSERT_EQ(way->GetPointCount(), 2);
    EXPECT_EQ(way->GetPoints()[1].x, 200);
    EXPECT_EQ(way->GetPoints()[1].y, 400);
}

std::string points(int count, double firstX = 1) {
    std::string text;
    for (int number = 0; number < count; ++number)
        text += "<POINT Location_X=\"" + std::to_string(firstX + number) + "\" Location_Y=\"5\"/>";
    return text;
}

TEST_F(ToWorkflow, ARouteKeepsAsManyPointsAsATransitionHasRoomFor) {
    convert(process(node("A") + node("B") + route("A", "B", points(25))));
    EXPECT_EQ(firstWay()->GetPointCount(), 24);
    EXPECT_THAT(notes(), Not(Contains(HasSubstr("route"))));

    convert(process(node("A") + node("B") + route("A", "B", points(30))));
    EXPECT_EQ(firstWay()->GetPointCount(), 24);
    EXPECT_EQ(firstWay()->GetPoints()[23].x, 3000) << "the last point stays the last";
    EXPECT_THAT(notes(), Contains("- A -> B: 5 of the 30 points of its route: a transition keeps 25"));
}

TEST_F(ToWorkflow, APointAtXZeroDoesNotEndTheRoute) {
    convert(process(node("A") + node("B") + route("A", "B", points(3, 0))));
    EXPECT_EQ(firstWay()->GetStartPoint()->x, 1);
    EXPECT_EQ(firstWay()->GetPointCount(), 2);
    EXPECT_THAT(notes(), Contains(StartsWith("~ A -> B: points of its route at x 0")));
}

TEST_F(ToWorkflow, VariablesAreCarriedWithAllThatAWorkflowKeeps) {
    convert(process(node("A", "Rectangle",
                         "<VARIABLE Name=\"V\" DisplayName=\"Label\" DataType=\"DoubleArray\" Type=\"Data Array\" "
                         "Array=\"Y\" IOType=\"In-and-Output\" Scope=\"Connected\" Displayable=\"false\">[1.5, 2]"
                         "</VARIABLE>") +
                        node("B"),
                    variable("P", "String", "root")));
    CFCVariableData* const made = variableAt("A.V");
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->GetCaption(), L"Label");
    EXPECT_EQ(made->GetDataType(), EDataType_DoubleArray);
    EXPECT_TRUE(made->IsArray());
    EXPECT_EQ(made->GetStatusType(), EStatusType_InAndOutput);
    EXPECT_EQ(made->GetScopeType(), EScopeType_Connected);
    EXPECT_STREQ(made->GetValue(), L"[1.5, 2]");
    EXPECT_FALSE(made->IsVisible());
    EXPECT_TRUE(made->IsBPMVariable());
    EXPECT_STREQ(made->GetType(), L"Data Array");
    ASSERT_NE(variableAt(".P"), nullptr);
    EXPECT_STREQ(variableAt(".P")->GetValue(), L"root");
    EXPECT_EQ(m_workflow.variables, 2);
}

TEST_F(ToWorkflow, WorkflowRecordsAreCopiedWithActionsOfTheirOwn) {
    host::HostFactory factory;
    host::NodeTree const source(factory.Create(eShapeType_WorkflowProcess));
    auto* const task = dynamic_cast<CFCBPMTaskNode*>(factory.Create(eShapeType_Task));
    source->AppendChild(task, false);
    task->SetNodeId(L"A");
    task->SetUser(L"ada");
    task->SetUserRole(L"engineer");
    task->SetMaxIterations(4);
    task->SetEmailNotification(true);
    task->SetPriority(L"urgent");
    CFCEventActionData* const event = task->CreateNewEventAction();
    event->SetActionName(L"act");
    event->SetClassName(L"a.B");
    event->SetActionType(L"node-enter");
    event->SetActionFunction(L"f");
    task->CreateNewActionException()->SetActionName(L"ex");
    task->CreateNewTimerAction()->SetActionName(L"tick");
    m_workflow =
        host::toWorkflow(dynamic_cast<CFCProcessNode&>(*source), [](CFCBlockNode&) { return host::ScriptState::None; });

    CFCBPMTaskNode* const made = at("A");
    ASSERT_NE(made, nullptr);
    EXPECT_STREQ(made->GetUser(), L"ada");
    EXPECT_STREQ(made->GetUserRole(), L"engineer");
    EXPECT_EQ(made->GetMaxIterations(), 4);
    EXPECT_TRUE(made->HasEmailNotification());
    EXPECT_STREQ(made->GetPriority(), L"normal");
    __FCPOSITION* position = made->GetEventList()->GetHeadPosition();
    auto* const copy = dynamic_cast<CFCEventActionData*>(made->GetEventList()->GetNextNode(position));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, event);
    EXPECT_STREQ(copy->GetActionName(), L"act");
    EXPECT_STREQ(copy->GetClassNameStr(), L"a.B");
    EXPECT_STREQ(copy->GetActionType(), L"node-enter");
    EXPECT_STREQ(copy->GetActionFunction(), L"f");
    EXPECT_EQ(made->GetActionExceptionList()->GetCount(), 1);
    EXPECT_EQ(made->GetTimerList()->GetCount(), 1);
    EXPECT_THAT(notes(), ElementsAre("~ A: has priority normal: the engine refuses \"urgent\""));
}

// --- What is lost --------------------------------------------------------------------------------------------------

struct LossRow {
    char const* name;
    char const* from; // what of the plain document is replaced
    char const* to;
    char const* line;
};

class LossOf : public ToWorkflow, public testing::WithParamInterface<LossRow> {};

TEST_P(LossOf, IsTold) {
    LossRow const& row = GetParam();
    std::string text = process(node("S", "Oval") + node("A", "Rectangle", variable("V", "Int", "1")) +
                                   node("E", "Oval") + connector("S", "A") + connector("A", "E"),
                               variable("P", "Int", "2"));
    convert(text);
    ASSERT_THAT(notes(), IsEmpty());
    std::size_t const block = text.find("Name=\"A\"");
    std::size_t const place = text.find(row.from, std::string(row.name).starts_with("Process") ? 0 : block);
    ASSERT_NE(place, std::string::npos);
    text.replace(place, std::string(row.from).size(), row.to);
    convert(text);
    EXPECT_THAT(notes(), ElementsAre(row.line));
}

#define WHY ": a workflow has no place for it"
INSTANTIATE_TEST_SUITE_P(
    Export, LossOf,
    testing::Values(
        LossRow{"ProcessType", "Type=\"BPT\"", "Type=\"Report\"",
                "- : the project type Report: a workflow is of type TASK"},
        LossRow{"ProcessFolder", "Type=\"BPT\"", "Type=\"BPT\" ProjectDirectory=\"p/q\"",
                "- : the project folder \"p/q\"" WHY},
        LossRow{"ProcessSave", "Type=\"BPT\"", "Type=\"BPT\" SaveRestore=\"Own\"",
                "- : the script that saves and restores, \"Own\"" WHY},
        LossRow{"ProcessFlow", "Type=\"BPT\"", "Type=\"BPT\" ProcessFlowType=\"loose\"",
                "- : the flow type \"loose\"" WHY},
        LossRow{"ProcessRandom", "Type=\"BPT\"", "Type=\"BPT\" RandomExecute=\"true\"",
                "- : the mark of a random execution" WHY},
        LossRow{"ProcessLoad", "Type=\"BPT\"", "Type=\"BPT\" RunOnLoad=\"true\"",
                "- : the mark to run when loaded" WHY},
        LossRow{"ProcessModel", "Type=\"BPT\"", "Type=\"BPT\" ModelDependency=\"true\"",
                "- : the dependency on the model" WHY},
        LossRow{"ProcessVariables", "Type=\"BPT\"", "Type=\"BPT\" VariableSave=\"true\"",
                "- : the mark that variables are saved with the model" WHY},
        LossRow{"ProcessNumber", "Type=\"BPT\"", "Type=\"BPT\" ProcessID=\"7\"", "- : the process number 7" WHY},
        LossRow{"State", "Run=\"true\"", "Run=\"true\" ExecutionStatus=\"Executed\"",
                "- : the state of 1 block in the last run: a workflow folder has no place for it"},
        LossRow{"NotToRun", "Run=\"true\"", "Run=\"false\"", "- A: its mark not to run" WHY},
        LossRow{"Number", "Run=\"true\"", "Run=\"true\" ProcessID=\"8\"", "- A: its process number 8" WHY},
        LossRow{"Stop", "<FLAGS ", "<FLAGS Break=\"true\" ", "- A: its mark to stop" WHY},
        LossRow{"Skip", "<FLAGS ", "<FLAGS Skip=\"true\" ", "- A: its mark to be skipped" WHY},
        LossRow{"Undo", "<FLAGS ", "<FLAGS Undo=\"true\" ", "- A: its mark to be undone" WHY},
        LossRow{"Reference", "Reference=\"0\"", "Reference=\"1\"", "- A: its reference 1" WHY},
        LossRow{"Port", "NextPort=\"Bottom\"", "NextPort=\"Down\"", "- A: the port name \"Down\"" WHY},
        LossRow{"ToolTip", "MicroHelp=\"A\"", "MicroHelp=\"tip\"", "- A: its tool tip \"tip\"" WHY},
        LossRow{"HelpFile", "MicroHelp=\"A\"", "MicroHelp=\"A\" KnowledgeAdvisory=\"a.html\"",
                "- A: its help file \"a.html\"" WHY},
        LossRow{"ScriptType", "ScriptType=\"PYTHON\"", "ScriptType=\"TCMD\"",
                "- A: its script \"A\" of type TCMD: the engine's side runs Python"},
        LossRow{"Hidden", "DataType", "Hidden=\"true\" DataType", "- A.V: the mark of a hidden variable" WHY},
        LossRow{"Deployed", "DataType", "Deployed=\"true\" DataType", "- A.V: the mark of a deployed variable" WHY},
        LossRow{"Entity", "DataType", "EntityType=\"Beam\" DataType", "- A.V: its entity type \"Beam\"" WHY},
        LossRow{"Template", "DataType", "TemplateVariable=\"true\" DataType",
                "- A.V: the mark of a template variable" WHY},
        LossRow{"ActiveSetup", "Name=\"V\"", "Name=\"ActiveSetup\"",
                "- A.ActiveSetup: a variable of this name is not carried"},
        LossRow{"Nameless", "Name=\"V\"", "Name=\"\"",
                "- A: 1 variable without a name: nothing can reach what has none"},
        LossRow{"ProcessLink", "LinkPath=\"\"", "LinkPath=\"A.V\"",
                "- .P: its link to A.V: variables of the process go out without; the value is carried"},
        LossRow{"ProcessScope", "Scope=\"Local\"", "Scope=\"Public\"",
                "- .P: its scope Public: variables of the process go out as Local"}),
    [](testing::TestParamInfo<LossRow> const& entry) { return std::string(entry.param.name); });
#undef WHY

TEST_F(ToWorkflow, AMissingScriptIsTold) {
    convert(process(node("A")), host::ScriptState::Missing);
    EXPECT_THAT(notes(), Contains("- A: its script A: there is no such file"));
}

TEST_F(ToWorkflow, AForkRunsNoScript) {
    convert(process(node("S", "StartState") + node("F", "Fork") + connector("S", "F")), host::ScriptState::Found);
    EXPECT_THAT(notes(), Contains("- F: its script F: a fork runs none"));
}

// --- BlockScripts
// -------------------------------------------------------------------------------------------------------

TEST(ScriptImports, AreReadOutOfEachFormOfStatement) {
    EXPECT_THAT(host::importsOf("import a\nimport b.c as d, e ; x = 1\n"),
                ElementsAre(Import{0, "a", {}}, Import{0, "b.c", {}}, Import{0, "e", {}}));
    EXPECT_THAT(host::importsOf("from . import a, b as c"), ElementsAre(Import{1, "", {"a", "b"}}));
    EXPECT_THAT(host::importsOf("from  . GeometryBlock import GeometryBlock "),
                ElementsAre(Import{1, "GeometryBlock", {"GeometryBlock"}}));
    EXPECT_THAT(host::importsOf("from ..x.y import z"), ElementsAre(Import{2, "x.y", {"z"}}));
    EXPECT_THAT(host::importsOf("from a.b import *"), ElementsAre(Import{0, "a.b", {}}));
    EXPECT_THAT(host::importsOf("    from . import (a,  # one\n        b,\n    )\nx = 1\n"),
                ElementsAre(Import{1, "", {"a", "b"}}));
    EXPECT_THAT(host::importsOf("from . import a, \\\n    b\nimport c"),
                ElementsAre(Import{1, "", {"a", "b"}}, Import{0, "c", {}}));
    EXPECT_THAT(host::importsOf("# import a\nimportant = 1\nx = 'import'\nfrom x\n"), IsEmpty());
    EXPECT_THAT(host::importsOf(""), IsEmpty());
}

class BlockScripts : public ScratchTest {
protected:
    host::BlockScript read(std::string const& className = "A", std::string const& name = "A") {
        return host::readBlockScript(scratch / "s/A.py", className, name, [this](std::string const& module) {
            std::string path = module;
            std::replace(path.begin(), path.end(), '.', '/');
            for (char const* const ending : {".py", "/__init__.py"})
                if (fs::path file = scratch / (path + ending); fs::is_regular_file(file))
                    return std::optional<fs::path>(file);
            return std::optional<fs::path>();
        });
    }
    static std::vector<std::string> targets(host::BlockScript const& script) {
        std::vector<std::string> names;
        for (host::ScriptModule const& module : script.modules)
            names.push_back((module.isFromTop ? "/" : "") + module.target.string());
        return names;
    }
};

TEST_F(BlockScripts, BringWhatTheyImportFromBesideThem) {
    scratch.write("s/A.py",
                  "from .ABlock import ABlock\nfrom . import undo, pack\nfrom .pack.deep import x\nimport json");
    scratch.write("s/ABlock.py", "from . import more");
    scratch.write("s/undo.py", "");
    scratch.write("s/more.py", "from . import A, undo");
    scratch.write("s/pack/__init__.py", "x = 1");
    scratch.write("s/pack/deep.py", "");
    host::BlockScript const script = read();
    EXPECT_THAT(targets(script), testing::UnorderedElementsAre("A.py", "ABlock.py", "more.py", "undo.py",
                                                               "pack/__init__.py", "pack/deep.py"));
    EXPECT_THAT(script.missing, IsEmpty());
    EXPECT_EQ(script.code, scratch.read("s/A.py"));
}

TEST_F(BlockScripts, BringWhatTheyImportByItsFullNameToTheTop) {
    scratch.write("s/A.py", "import lib.units\nfrom lib import tables\nimport os.path\n");
    scratch.write("lib/__init__.py", "");
    scratch.write("lib/units.py", "from . import tables");
    scratch.write("lib/tables.py", "");
    EXPECT_THAT(targets(read()), testing::UnorderedElementsAre("/lib/units.py", "/lib/tables.py"));
}

TEST_F(BlockScripts, ReachUpwards) {
    scratch.write("s/A.py", "from .. import common\n");
    scratch.write("common.py", "");
    EXPECT_THAT(targets(read()), ElementsAre("../common.py"));
}

TEST_F(BlockScripts, TellWhatIsNotThere) {
    scratch.write("s/A.py", "from .gone import x\nfrom . import lost\nfrom .. import far\n");
    EXPECT_THAT(read().missing, ElementsAre(".gone", ".lost", "..far"));
}

TEST_F(BlockScripts, GiveTheirClassTheNameOfTheBlock) {
    scratch.write("s/A.py", "class A: pass");
    EXPECT_EQ(read().code, "class A: pass");
    EXPECT_THAT(read("A", "B1").code, testing::EndsWith("\nB1 = A\n"));
    EXPECT_THAT(read("A", "B 1").code, testing::EndsWith("\nglobals()[\"B 1\"] = A\n"));
    EXPECT_THAT(read("A", "say \"b\"").code, testing::EndsWith("\nglobals()[\"say \\\"b\\\"\"] = A\n"));
}

// --- The folder ----------------------------------------------------------------------------------------------------

class SafeFolderTest : public ScratchTest {
protected:
    std::string target(std::string const& name = "out") const { return (scratch / name).string(); }
    std::string failureOf(std::string const& name, bool replaces = false) {
        try {
            host::SafeFolder const folder(name, "in/out", replaces, "mark.xml");
        } catch (host::Failure const& failure) {
            EXPECT_EQ(failure.exitCode(), 2);
            return withName(failure.what(), scratch.path().string(), "SCRATCH");
        }
        return "";
    }
};

TEST_F(SafeFolderTest, AppearsWholeAndLeavesNothingBeside) {
    {
        host::SafeFolder folder(target(), "in/out", false, "mark.xml");
        writeFile(folder.path() / "file", "x");
        EXPECT_EQ(readFile(folder.openPath() / "file"), "x");
        EXPECT_FALSE(fs::exists(scratch / "out"));
        folder.commit();
    }
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("out"));
    EXPECT_EQ(scratch.read("out/file"), "x");
}

TEST_F(SafeFolderTest, WithoutACommitNothingIsLeft) {
    { host::SafeFolder const folder(target(), "in/out", false, "mark.xml"); }
    EXPECT_THAT(entriesOf(scratch.path()), IsEmpty());
}

TEST_F(SafeFolderTest, TakesThePlaceOfAnEmptyFolderAndKeepsItsPermissions) {
    fs::create_directory(scratch / "out");
    ASSERT_EQ(::chmod((scratch / "out").c_str(), 0710), 0);
    {
        host::SafeFolder folder(target(), "in/out", false, "mark.xml");
        folder.commit();
    }
    struct stat status {};
    ASSERT_EQ(::stat((scratch / "out").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0710U);
}

TEST_F(SafeFolderTest, ReplacesAFolderWithTheMarkWhenTold) {
    scratch.write("out/mark.xml", "old");
    scratch.write("out/rest", "old");
    EXPECT_THAT(failureOf(target()), HasSubstr("there is a mark.xml in it already; --force replaces the whole folder"));
    {
        host::SafeFolder folder(target(), "in/out", true, "mark.xml");
        writeFile(folder.path() / "mark.xml", "new");
        EXPECT_EQ(scratch.read("out/mark.xml"), "old");
        folder.commit();
    }
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("out"));
    EXPECT_THAT(entriesOf(scratch / "out"), ElementsAre("mark.xml"));
    EXPECT_EQ(scratch.read("out/mark.xml"), "new");
}

TEST_F(SafeFolderTest, RefusesWhatCannotBeReplaced) {
    scratch.write("full/other", "x");
    scratch.write("file", "x");
    EXPECT_THAT(failureOf(""), HasSubstr("the name of the folder is empty"));
    EXPECT_EQ(failureOf(target("full"), true), "flowmere: SCRATCH/full: cannot be written: it is a folder with other "
                                               "things in it, and without mark.xml");
    EXPECT_THAT(failureOf(target("file")), HasSubstr("it is no folder"));
    EXPECT_THAT(failureOf(target("no/out")), HasSubstr("there is no folder SCRATCH/no"));
    EXPECT_THAT(failureOf(target("a\\b")), HasSubstr("its path holds a backslash"));
    EXPECT_THAT(failureOf(target("mark.xml")), HasSubstr("its path holds \"mark.xml\""));
    EXPECT_THAT(failureOf("/"), HasSubstr("it is the topmost folder"));
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("file", "full"));
}

TEST_F(SafeFolderTest, ALinkStaysOne) {
    fs::create_directory(scratch / "real");
    fs::create_symlink("real", scratch / "link");
    {
        host::SafeFolder folder(target("link"), "in/out", false, "mark.xml");
        writeFile(folder.path() / "file", "x");
        folder.commit();
    }
    EXPECT_TRUE(fs::is_symlink(scratch / "link"));
    EXPECT_EQ(scratch.read("real/file"), "x");
}

// What a program leaves behind that is killed while it fills a folder: the name of that.
class KilledFolder : public SafeFolderTest {
protected:
    std::string leftBehind() {
        pid_t const child = ::fork();
        if (child == 0) {
            host::SafeFolder const folder(target(), "in/out", false, "mark.xml");
            writeFile(folder.path() / "half", "x");
            ::_exit(0);
        }
        ::waitpid(child, nullptr, 0);
        for (std::string const& name : entriesOf(scratch.path()))
            if (name.starts_with(".out."))
                return name;
        return "";
    }
    void make(std::string const& name = "out") const {
        host::SafeFolder folder(target(name), "in/out", true, "mark.xml");
        writeFile(folder.path() / "mark.xml", "new");
        folder.commit();
    }
};

TEST_F(KilledFolder, GoesWithTheNextOfTheSameTarget) {
    ASSERT_NE(leftBehind(), "");
    std::string const left = leftBehind();
    ASSERT_NE(left, "");
    EXPECT_THAT(entriesOf(scratch.path()), SizeIs(1)) << "each removes what the one before left";
    make("other");
    EXPECT_THAT(entriesOf(scratch.path()), UnorderedElementsAre(left, "other"));
    make();
    EXPECT_THAT(entriesOf(scratch.path()), UnorderedElementsAre("out", "other"));
    EXPECT_THAT(entriesOf(scratch / "out"), ElementsAre("mark.xml"));
}

TEST_F(KilledFolder, StaysWhileItIsFilledAndWhenItIsOfAnotherKind) {
    scratch.write(".out.abcdef/thing", "mine");
    scratch.write(".out.file12", "mine");
    scratch.write(".out.longer-than-that/.flowmere-new", "");
    scratch.write("elsewhere/.flowmere-new", "");
    fs::create_symlink("elsewhere", scratch / ".out.link12");
    {
        host::SafeFolder first(target(), "in/out", false, "mark.xml");
        writeFile(first.path() / "file", "x");
        make();
        EXPECT_EQ(readFile(first.path() / "file"), "x");
    }
    EXPECT_THAT(entriesOf(scratch.path()), UnorderedElementsAre(".out.abcdef", ".out.file12", ".out.link12",
                                                                ".out.longer-than-that", "elsewhere", "out"));
    EXPECT_TRUE(fs::exists(scratch / "elsewhere/.flowmere-new"));
}

TEST_F(KilledFolder, StaysWhereNothingCanBeLocked) {
    host::SystemCalls const calls = host::systemCalls();
    host::systemCalls().flock = [](int, int) {
        errno = ENOLCK;
        return -1;
    };
    std::string const left = leftBehind();
    host::systemCalls() = calls;
    make();
    EXPECT_THAT(entriesOf(scratch.path()), UnorderedElementsAre(left, "out"));
}

TEST_F(KilledFolder, IsNamedWhenItHoldsTheOnlyOldFolder) {
    std::string const left = leftBehind();
    scratch.write(left + "/old/mark.xml", "precious");
    testing::internal::CaptureStderr();
    make();
    EXPECT_EQ(withName(testing::internal::GetCapturedStderr(), scratch.path().string(), "SCRATCH"),
              "flowmere: SCRATCH/" + left +
                  "/old: is what stood at SCRATCH/out before a program was killed that replaced it\n");
    EXPECT_EQ(scratch.read(left + "/old/mark.xml"), "precious");
    // Once something stands at the target again, the old one is of no use.
    make();
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("out"));
}

TEST_F(SafeFolderTest, AFailedRenameLeavesTheTargetAlone) {
    host::SystemCalls const calls = host::systemCalls();
    host::systemCalls().rename = [](char const*, char const*) {
        errno = EBUSY;
        return -1;
    };
    fs::create_directory(scratch / "out");
    {
        host::SafeFolder folder(target(), "in/out", false, "mark.xml");
        writeFile(folder.path() / "file", "x");
        EXPECT_THROW(folder.commit(), host::Failure);
    }
    host::systemCalls() = calls;
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("out"));
    EXPECT_THAT(entriesOf(scratch / "out"), IsEmpty());
}

// --- The command ---------------------------------------------------------------------------------------------------

class Export : public ScratchTest {
protected:
    ProgramRun run(std::vector<std::string> arguments, ProgramSetting setting = {}) const {
        arguments.insert(arguments.begin(), "export");
        setting.folder = scratch.path();
        return runProgram(arguments, setting);
    }
};

TEST_F(Export, WritesTheBeamStudyAsItStandsInTheGoldenFolder) {
    ProgramRun const exported = run({(kBeam / "beam.xml").string(), "BrindleExec/studies/beam"});
    EXPECT_EQ(exported.exitCode, 2) << "the parent is missing";
    fs::create_directories(scratch / "BrindleExec/studies");
    ProgramRun const again = run({(kBeam / "beam.xml").string(), "BrindleExec/studies/beam"});
    EXPECT_EQ(again.exitCode, 0) << again.out << again.err;
    EXPECT_EQ(again.err, "");
    expectGolden("host/export/beam.txt", withName(again.out, kBeam.string() + "/", ""));
    auto const files = filesOf(scratch / "BrindleExec/studies/beam");
    std::string list;
    for (auto const& [name, bytes] : files) {
        list += name + "\n";
        if (!name.ends_with(".py"))
            expectGolden("host/export/beam/" + name, bytes);
    }
    expectGolden("host/export/beam-files.txt", list);
    EXPECT_EQ(files.at("Loads/scripts/Loads.py"), readFile(kBeam / "study/Loads.py"));
    EXPECT_EQ(files.at("Analysis/Stress/scripts/StressBlock.py"), readFile(kBeam / "study/StressBlock.py"));
    EXPECT_EQ(files.at("Check/scripts/undo.py"), readFile(kBeam / "study/undo.py"));
    EXPECT_THAT(entriesOf(scratch / "BrindleExec/studies"), ElementsAre("beam"));
}

TEST_F(Export, ASubProcessMakesSixFiles) {
    scratch.write("doc.xml", process(group("G", node("A"))));
    ProgramRun const exported = run({"doc.xml", "out"});
    EXPECT_THAT(namesOf(filesOf(scratch / "out")),
                ElementsAre("G/gpd.xml", "G/process.var", "G/processdefinition.xml", "gpd.xml", "process.var",
                            "processdefinition.xml", "workflowdefinition.xml"));
    EXPECT_TRUE(fs::is_directory(scratch / "out/G/A"));
}

TEST_F(Export, PathsAreThoseOfTheFolderOfTheEngine) {
    scratch.write("p/a.py", "class a: pass\n");
    scratch.write("doc.xml", process(group("G", block("B", "", "p.a"))));
    fs::create_directories(scratch / "x/BrindleExec/y");
    ASSERT_NE(run({"doc.xml", "x/BrindleExec/y/job"}).exitCode, 2);
    std::string const inner = scratch.read("x/BrindleExec/y/job/G/processdefinition.xml");
    EXPECT_THAT(inner, HasSubstr("<modulePath>y.job.G.B.scripts.B</modulePath>"));
    EXPECT_THAT(inner, HasSubstr("hierarchyPath=\"y/job/G/B\""));
    EXPECT_THAT(scratch.read("x/BrindleExec/y/job/G/B/scripts/B.py"), testing::EndsWith("B = a\n"));

    ASSERT_NE(run({"doc.xml", "job"}).exitCode, 2);
    EXPECT_THAT(scratch.read("job/G/processdefinition.xml"), HasSubstr("<modulePath>job.G.B.scripts.B</modulePath>"));
}

TEST_F(Export, TellsTheSameAsJson) {
    scratch.write("doc.xml", process(node("A.1")));
    ProgramRun const exported = run({"doc.xml", "out", "--json"});
    auto const json = nlohmann::json::parse(exported.out);
    EXPECT_EQ(json["file"], "doc.xml");
    EXPECT_EQ(json["folder"], "out");
    EXPECT_EQ(json["levels"], 1);
    EXPECT_EQ(json["nodes"], 3);
    EXPECT_EQ(json["transitions"], 2);
    EXPECT_EQ(json["files"].size(), 4U);
    EXPECT_EQ(json["changed"].size(), 3U);
    EXPECT_EQ(json["lost"][0]["place"], "A.1");
    EXPECT_EQ(exported.exitCode, 1) << "the script is missing";
}

TEST_F(Export, FilesThatVariablesNameGoAlong) {
    scratch.write("doc.xml", process(node("A", "Rectangle", variable("T", "File", "data/t.csv")) +
                                         node("B", "Rectangle", variable("T", "File", "../secret")),
                                     variable("U", "File", "u.csv") + variable("W", "String", "w.csv")));
    for (char const* const name : {"data/t.csv", "u.csv", "w.csv"})
        scratch.write(name, name);
    writeFile(scratch / "../secret", "no");
    ASSERT_NE(run({"doc.xml", "out"}).exitCode, 2);
    fs::remove(scratch / "../secret");
    EXPECT_EQ(scratch.read("out/data/t.csv"), "data/t.csv");
    EXPECT_EQ(scratch.read("out/u.csv"), "u.csv");
    EXPECT_FALSE(fs::exists(scratch / "out/w.csv"));
}

TEST_F(Export, ListsTheApplicationsOfTheGivenFolders) {
    std::string const definition =
        "<process-definition name=\"Apps\"><type>APPLICATION</type><super-state name=\"Cad\" label=\"Cad\">"
        "<task-node name=\"Draw\" label=\"Draw\" id=\"3\"><task name=\"Draw\"/></task-node></super-state>"
        "</process-definition>";
    std::string const variables =
        "<PROCESS name=\"Apps\"><BLOCK_VARIABLES><SUB_PROCESS Name=\"Cad\"><BLOCK Name=\"Draw\"><VARIABLE "
        "Name=\"Sheet\" DataType=\"String\" Type=\"Data\" IOType=\"Input\" Value=\"A3\"/><ARGUMENT INDEX=\"1\" "
        "VALUE=\"-b\" id=\"5\"/></BLOCK></SUB_PROCESS></BLOCK_VARIABLES></PROCESS>";
    scratch.write("apps/processdefinition.xml", definition);
    scratch.write("apps/process.var", variables);
    scratch.write("apps/gpd.xml", "<root-container name=\"Apps\"/>");
    scratch.write("more/processdefinition.xml", "<process-definition name=\"More\"><type>APPLICATION</type><task-node "
                                                "name=\"Solve\" label=\"Solve\"/></process-definition>");
    scratch.write("more/process.var", "<PROCESS/>");
    scratch.write("more/gpd.xml", "<root-container name=\"More\"/>");
    scratch.write("doc.xml", process(node("S", "StartState")));
    ProgramRun const exported = run({"doc.xml", "out", "--application", "apps", "--application", "more"});
    EXPECT_NE(exported.exitCode, 2) << exported.err;
    expectGolden("host/export/applications.xml", scratch.read("out/workflowdefinition.xml"));

    scratch.write("none/processdefinition.xml", "<process-definition name=\"N\"/>");
    ProgramRun const refused = run({"doc.xml", "out2", "--application", "none"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err, "flowmere: none: holds no applications: its type is not APPLICATION\n");
    EXPECT_EQ(run({"doc.xml", "out2", "--application", "gone"}).exitCode, 2);
    EXPECT_FALSE(fs::exists(scratch / "out2"));
}

TEST_F(Export, ReplacesAWorkflowFolderOnlyWhenTold) {
    scratch.write("doc.xml", process(node("S", "StartState")));
    ASSERT_EQ(run({"doc.xml", "out"}).exitCode, 0);
    scratch.write("out/old", "old");
    ProgramRun const refused = run({"doc.xml", "out"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, HasSubstr("--force replaces the whole folder"));
    EXPECT_EQ(scratch.read("out/old"), "old");
    EXPECT_EQ(run({"doc.xml", "out", "--force"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(scratch / "out/old"));
}

TEST_F(Export, DoesNotReplaceTheFolderThatItReads) {
    scratch.write("doc.xml", process(node("S", "StartState")));
    ASSERT_EQ(run({"doc.xml", "out"}).exitCode, 0);
    scratch.write("out/doc.xml", scratch.read("doc.xml"));
    for (std::string const file : {"out/doc.xml", "out"}) {
        ProgramRun const refused = run({file, "out", "--force"});
        EXPECT_EQ(refused.exitCode, 2);
        EXPECT_EQ(refused.err, "flowmere: out: cannot be written: it holds " + file + ", which is read\n");
    }
    EXPECT_TRUE(fs::exists(scratch / "out/processdefinition.xml"));
}

TEST_F(Export, AWorkflowFolderGoesOutAsItIs) {
    scratch.write("p/A.py", "class A: pass\n");
    scratch.write("doc.xml",
                  process(group("G", block("A", variable("V", "DoubleArray", "[1]", "Input", "", true), "p.A")),
                          variable("P", "Int", "4")));
    fs::create_directories(scratch / "one");
    fs::create_directories(scratch / "two");
    ASSERT_NE(run({"doc.xml", "one/job"}).exitCode, 2);
    scratch.write("one/job/G/A/A.html", "<form/>");
    ProgramRun const exported = run({"one/job", "two/job"});
    EXPECT_EQ(exported.exitCode, 0) << exported.out << exported.err;
    expectSameFiles(scratch / "one/job", scratch / "two/job");
}

struct BadRow {
    char const* name;
    std::vector<std::string> arguments;
    char const* error;
};

class BadExport : public Export, public testing::WithParamInterface<BadRow> {};

TEST_P(BadExport, IsOneLineAndLeavesAllAsItWas) {
    scratch.write("doc.xml", process(node("S", "StartState")));
    scratch.write("broken.xml", "<Process><BLOCK></Process>");
    scratch.write("file", "x");
    scratch.write("full/thing", "x");
    auto const before = filesOf(scratch.path());
    ProgramRun const refused = run(GetParam().arguments);
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(withName(refused.err, scratch.path().string(), "SCRATCH"), StartsWith(GetParam().error));
    EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1);
    EXPECT_EQ(filesOf(scratch.path()), before);
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("broken.xml", "doc.xml", "file", "full"));
}

INSTANTIATE_TEST_SUITE_P(
    Input, BadExport,
    testing::Values(
        BadRow{"NoDocument", {"gone.xml", "out"}, "flowmere: gone.xml: there is no such file"},
        BadRow{"BrokenDocument", {"broken.xml", "out"}, "flowmere: broken.xml: line 1, column "},
        BadRow{"FolderWithoutWorkflow", {"full", "out"}, "flowmere: full: is a folder"},
        BadRow{"EmptyName", {"doc.xml", ""}, "flowmere: the name of the folder is empty"},
        BadRow{"File", {"doc.xml", "file"}, "flowmere: file: cannot be written: it is no folder"},
        BadRow{"BelowFile", {"doc.xml", "file/out"}, "flowmere: file/out: cannot be written: "},
        BadRow{"NoParent", {"doc.xml", "no/out"}, "flowmere: no/out: cannot be written: there is no folder SCRATCH/no"},
        BadRow{
            "FullFolder", {"doc.xml", "full"}, "flowmere: full: cannot be written: it is a folder with other things"},
        BadRow{"FullFolderForced", {"doc.xml", "full", "--force"}, "flowmere: full: cannot be written: it is a folder"},
        BadRow{"Backslash", {"doc.xml", "a\\b"}, "flowmere: a\\b: cannot be written: its path holds a backslash"},
        BadRow{"NoScriptRoot", {"doc.xml", "out", "--scripts", "gone"}, "flowmere: gone: is no folder of scripts"}),
    [](testing::TestParamInfo<BadRow> const& entry) { return std::string(entry.param.name); });

TEST_F(Export, AFullDiskLeavesTheOldFolder) {
    scratch.write("doc.xml", process(node("S", "StartState")));
    ASSERT_EQ(run({"doc.xml", "out"}).exitCode, 0);
    auto const before = filesOf(scratch / "out");
    std::string blocks;
    for (int number = 0; number < 50; ++number)
        blocks += node("B" + std::to_string(number));
    scratch.write("big.xml", process(blocks));
    ProgramRun const refused = run({"big.xml", "out", "--force"}, {.fileSizeLimit = 4096});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, HasSubstr("it did not come to disk whole"));
    EXPECT_EQ(filesOf(scratch / "out"), before);
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("big.xml", "doc.xml", "out"));
}

TEST_F(Export, AScriptThatDoesNotComeToDiskIsAFailure) {
    scratch.write("p/A.py", std::string(10000, '#') + "\nclass A: pass\n");
    scratch.write("doc.xml", process(block("A", "", "p.A")));
    ProgramRun const refused = run({"doc.xml", "out"}, {.fileSizeLimit = 4096});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, StartsWith("flowmere: out: A/scripts/A.py: cannot be written: "));
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("doc.xml", "p"));
}

} // namespace
