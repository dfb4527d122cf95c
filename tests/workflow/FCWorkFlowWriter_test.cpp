#include "flowmere/workflow/FCWorkFlowWriter.h"

#include "WorkflowTestSupport.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/workflow/WorkflowFile.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

using namespace flowmere::test;

namespace {

// A writer as its subclasses see it.
class OpenWriter : public CFCWorkFlowWriter {
public:
    using CFCWorkFlowWriter::GetNodeTypeString;
    using CFCWorkFlowWriter::m_pApplicationRoot;
    using CFCWorkFlowWriter::m_pTaskRoot;
    using CFCWorkFlowWriter::m_strFilePath;
    using CFCWorkFlowWriter::m_strRootName;
    using CFCWorkFlowWriter::WriteArgument;
    using CFCWorkFlowWriter::WriteArguments;
    using CFCWorkFlowWriter::WriteVariable;
    using CFCWorkFlowWriter::WriteVariables;
};

class FCWorkFlowWriter : public WorkflowTest {
protected:
    Element written(IFCNode* tasks, IFCNode* applications = nullptr) {
        EXPECT_TRUE(CFCWorkFlowWriter().WriteFile(path("workflow.xml"), tasks, applications));
        return read("workflow.xml");
    }
    Element tasks(IFCNode* node) { return written(node).only("tasks"); }
    Element applications(IFCNode* node) {
        Tree const flow = newWorkflow();
        return written(flow.get(), node).only("applications");
    }
    // The element of one block of a kind.
    Element block(int kind, std::function<void(CFCBPMTaskNode&)> const& shape = {}) {
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const node = addTask(tree.get(), L"B", kind);
        if (shape)
            shape(*node);
        return tasks(tree.get()).with("name", "B");
    }
    // The element of one variable of a task.
    Element variable(std::function<void(CFCVariableData&)> const& shape = {}) {
        return block(150,
                     [&shape](CFCBPMTaskNode& node) {
                         CFCVariableData* const variable = addVariable(&node, L"v", L"value");
                         if (shape)
                             shape(*variable);
                     })
            .only("variables")
            .only("variable");
    }
    // What `fill` does to an element.
    Element filled(std::function<void(xercesc::DOMElement&)> const& fill) {
        EXPECT_TRUE(flowmere::writeWorkflowFile(path("filled.xml"), L"root", fill));
        return read("filled.xml");
    }
};

// A tree of applications, as a library of them is.
Tree newApplications() {
    Tree tree = newWorkflow(L"Applications", EProjectType_APPLICATION);
    return tree;
}

// --- The file ------------------------------------------------------------------------------------------------

TEST_F(FCWorkFlowWriter, RefusesAnEmptyPathAndNullTasks) {
    Tree const tree = newWorkflow();
    Tree const applicationTree = newApplications();
    CFCWorkFlowWriter writer;
    EXPECT_FALSE(writer.WriteFile(L"", tree.get(), applicationTree.get()));
    EXPECT_FALSE(writer.WriteFile(nullptr, tree.get(), applicationTree.get()));
    EXPECT_FALSE(writer.WriteFile(path("workflow.xml"), nullptr, applicationTree.get()));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

TEST_F(FCWorkFlowWriter, TheFileHasApplicationsAndTasks) {
    Tree const tree = newWorkflow(L"Caption");
    Element const root = written(tree.get());
    EXPECT_EQ(root.name, "workflow-definition");
    EXPECT_EQ(root["xmlns"], "http://www.w3.org/2001/XMLSchema-instance");
    EXPECT_EQ(root["name"], "Caption");
    EXPECT_EQ(std::stod(root["version"]), 1.0);
    EXPECT_EQ(root.attributes.size(), 3U);
    EXPECT_EQ(root.outline(), "applications tasks");
    EXPECT_TRUE(root.only("tasks").attributes.empty());
    EXPECT_EQ(contentsOf(scratch.path()), "workflow.xml") << "one file, no companions";
}

TEST_F(FCWorkFlowWriter, TheRootIsNamedByIdentifierCaptionOrAllBlocks) {
    Tree const tree = newWorkflow(L"Caption");
    tree->SetNodeId(L"Id");
    EXPECT_EQ(written(tree.get())["name"], "Id");
    tree->SetNodeId(L"");
    EXPECT_EQ(written(tree.get())["name"], "Caption");
    tree->SetNodeCaption(L"");
    EXPECT_EQ(written(tree.get())["name"], "allblocks");
}

TEST_F(FCWorkFlowWriter, AMissingFolderIsNoFailure) {
    Tree const tree = newWorkflow();
    EXPECT_TRUE(CFCWorkFlowWriter().WriteFile(path("missing/workflow.xml"), tree.get(), nullptr));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

// A writer whose host fails.
class FailingWriter : public CFCWorkFlowWriter {
public:
    void WriteProperties(IFCNode*, xercesc::DOMNode*) override { throw std::runtime_error("a host's failure"); }
};

TEST_F(FCWorkFlowWriter, AnExceptionOnTheWayIsSwallowed) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"T");
    FailingWriter writer;
    EXPECT_TRUE(writer.WriteFile(path("workflow.xml"), tree.get(), nullptr));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

TEST_F(FCWorkFlowWriter, CopiesTakeWhatTheWriterHolds) {
    Tree const tree = newWorkflow();
    Tree const applicationTree = newApplications();
    OpenWriter writer;
    EXPECT_EQ(narrow(writer.m_strRootName), "workflow-definition");
    EXPECT_EQ(writer.m_pTaskRoot, nullptr);
    EXPECT_EQ(writer.m_pApplicationRoot, nullptr);
    EXPECT_TRUE(writer.WriteFile(path("workflow.xml"), tree.get(), applicationTree.get()));
    OpenWriter const copy(writer);
    OpenWriter assigned;
    assigned = writer;
    for (OpenWriter const* each : {&copy, static_cast<OpenWriter const*>(&assigned)}) {
        EXPECT_EQ(each->m_strFilePath, path("workflow.xml"));
        EXPECT_EQ(narrow(each->m_strRootName), "workflow-definition");
        EXPECT_EQ(each->m_pTaskRoot, tree.get());
        EXPECT_EQ(each->m_pApplicationRoot, applicationTree.get());
    }
}

// --- Applications --------------------------------------------------------------------------------------------

TEST_F(FCWorkFlowWriter, WithoutApplicationsThatPartIsEmpty) {
    EXPECT_TRUE(applications(nullptr).children.empty());
    Tree const tree = newApplications();
    Element const none = applications(tree.get());
    EXPECT_TRUE(none.children.empty());
    EXPECT_TRUE(none.attributes.empty());
}

TEST_F(FCWorkFlowWriter, AnApplicationHasItsVariablesAndArguments) {
    Tree const tree = newApplications();
    CFCApplicationNode* const application = addApplication(tree.get(), L"App");
    addVariable(application, L"in", L"C:\\data");
    addVariable(application, L"ActiveSetup", L"1");
    for (int index = 1; index <= 2; ++index) {
        CFCArgumentData* const argument = application->CreateNewArgument();
        argument->SetArgumentIndex(index * 10);
        argument->SetArgumentValue(index == 1 ? L"-in" : L"a\\b");
    }
    Element const element = applications(tree.get()).only("application");
    EXPECT_EQ(element["name"], "App");
    EXPECT_EQ(element.attributes.size(), 1U);
    EXPECT_EQ(element.outline(), "variables commandline");
    EXPECT_TRUE(element.only("variables").attributes.empty());
    EXPECT_EQ(element.only("variables").values("name"), "in");
    EXPECT_EQ(element.only("variables").only("variable").text, "C:/data");
    Element const commandLine = element.only("commandline");
    EXPECT_TRUE(commandLine.attributes.empty());
    EXPECT_EQ(commandLine.outline(), "argument argument");
    EXPECT_EQ(commandLine.values("index"), "10 20");
    EXPECT_EQ(commandLine.values("value"), "-in a\\b");
    EXPECT_EQ(commandLine.children[0].attributes.size(), 2U);
}

TEST_F(FCWorkFlowWriter, ApplicationsComeInListOrder) {
    Tree const tree = newApplications();
    for (wchar_t const* id : {L"A", L"B", L"C"})
        addApplication(tree.get(), id);
    EXPECT_EQ(applications(tree.get()).values("name"), "C B A") << "the newest stands first in the list";
}

TEST_F(FCWorkFlowWriter, GroupsNestAndEmptyOnesAreLeftOut) {
    Tree const tree = newApplications();
    CFCApplicationNode* const outer = addApplication(tree.get(), L"Outer", 168);
    CFCApplicationNode* const inner = addApplication(outer, L"Inner", 168);
    addApplication(inner, L"App");
    addApplication(outer, L"Other");
    addApplication(tree.get(), L"Empty", 168);
    addTask(tree.get(), L"Task");
    Element const root = applications(tree.get());
    EXPECT_EQ(root.outline(), "applications");
    Element const group = root.only("applications");
    EXPECT_EQ(group["name"], "Outer");
    EXPECT_EQ(group.outline(), "application applications");
    EXPECT_EQ(group.values("name"), "Other Inner");
    EXPECT_EQ(group.only("applications").only("application")["name"], "App");
}

TEST_F(FCWorkFlowWriter, AGroupWithOtherChildrenThanApplicationsIsThereAndEmpty) {
    Tree const tree = newApplications();
    addTask(addApplication(tree.get(), L"Group", 168), L"Task");
    Element const group = applications(tree.get()).only("applications");
    EXPECT_EQ(group["name"], "Group");
    EXPECT_TRUE(group.children.empty());
}

TEST_F(FCWorkFlowWriter, ANewApplicationIsNamedByItsCaption) {
    Tree const tree = newApplications();
    IFCNode* const application = CFCNodeFactory().Create(167);
    tree->AppendChild(application, false);
    EXPECT_EQ(applications(tree.get()).only("application")["name"], "Application");
}

TEST_F(FCWorkFlowWriter, ATaskUnderTheKindOfAnApplicationHasItsNameAndEmptyLists) {
    Tree const tree = newApplications();
    CFCBPMTaskNode* const odd = addTask(tree.get(), L"Odd");
    odd->SetNodeType(167);
    addVariable(odd, L"v");
    Element const element = applications(tree.get()).only("application");
    EXPECT_EQ(element["name"], "Odd");
    EXPECT_EQ(element.outline(), "variables commandline");
    EXPECT_TRUE(element.only("variables").children.empty());
    EXPECT_TRUE(element.only("commandline").children.empty());
}

TEST_F(FCWorkFlowWriter, OneApplicationIsWrittenAsInTheList) {
    Tree const tree = newApplications();
    CFCApplicationNode* const application = addApplication(tree.get(), L"App");
    addVariable(application, L"v", L"1");
    application->CreateNewArgument()->SetArgumentValue(L"x");
    Element const root = filled([&](xercesc::DOMElement& element) {
        OpenWriter writer;
        writer.WriteApplication(application, &element);
        writer.WriteApplication(nullptr, &element);
        writer.WriteApplication(application, nullptr);
    });
    EXPECT_EQ(root.only("application"), applications(tree.get()).only("application"));
}

TEST_F(FCWorkFlowWriter, ARingOfApplicationsEnds) {
    Tree const tree = newApplications();
    addApplication(tree.get(), L"A");
    IFCNode* const b = addApplication(tree.get(), L"B");
    IFCNode* const a = b->GetNext();
    IFCNode* const behind = a->GetNext();
    a->SetNext(b);
    Element const root =
        filled([&](xercesc::DOMElement& element) { OpenWriter().WriteApplications(tree.get(), &element); });
    a->SetNext(behind);
    EXPECT_GE(root.children.size(), 2U);
    EXPECT_LE(root.children.size(), 6U) << "after few rounds";
    EXPECT_EQ(root.children[0]["name"], "B");
    EXPECT_EQ(root.children[1]["name"], "A");
}

TEST_F(FCWorkFlowWriter, GroupsNestAsDeepAsAFileMay) {
    Tree const tree = newApplications();
    IFCNode* node = tree.get();
    for (int depth = 0; depth < 2000; ++depth)
        node = addApplication(node, L"G", 168);
    Element const root = applications(tree.get());
    int depth = 0;
    for (Element const* group = root.first("applications"); group != nullptr; group = group->first("applications"))
        ++depth;
    EXPECT_EQ(depth, 1020);
}

// --- Arguments and variables ---------------------------------------------------------------------------------

TEST_F(FCWorkFlowWriter, ArgumentsNeedAnApplicationAndAPlace) {
    Tree const tree = newApplications();
    CFCApplicationNode* const application = addApplication(tree.get(), L"App");
    CFCArgumentData* const argument = application->CreateNewArgument();
    Tree const task(CFCNodeFactory().Create(150));
    Element const root = filled([&](xercesc::DOMElement& element) {
        OpenWriter writer;
        writer.WriteArguments(&element, nullptr);
        writer.WriteArguments(&element, task.get());
        writer.WriteArguments(nullptr, application);
        writer.WriteArgument(nullptr, &element);
        writer.WriteArgument(argument, nullptr);
        EXPECT_FALSE(element.hasChildNodes());
        writer.WriteArguments(&element, application);
    });
    EXPECT_EQ(root.outline(), "argument");
}

TEST_F(FCWorkFlowWriter, AVariableHasItsTypeLinkAndDirection) {
    Element const element = variable([](CFCVariableData& data) {
        data.SetLinkPath(L"T.out");
        data.SetStatusType(EStatusType_Output);
    });
    EXPECT_EQ(element["name"], "v");
    EXPECT_EQ(element["link"], "T.out");
    EXPECT_EQ(element["ioType"], "Output");
    EXPECT_EQ(element.attributes.size(), 4U);
    EXPECT_EQ(element["dataType"], narrow(CFCVariableData().GetDataTypeS())) << "without a type of the catalog";
    EXPECT_TRUE(element.children.empty());
}

TEST_F(FCWorkFlowWriter, TheTypeIsThatOfTheCatalogOrElseTheVariablesOwn) {
    EXPECT_EQ(variable([](CFCVariableData& data) {
                  data.SetDataType(EDataType_Double);
                  data.GetDataTypeNode()->SetType(L"Length");
              })["dataType"],
              "Length");
    EXPECT_EQ(variable([](CFCVariableData& data) {
                  data.SetDataType(EDataType_Double);
                  data.GetDataTypeNode()->SetType(L"");
              })["dataType"],
              "Double");
    EXPECT_EQ(variable([](CFCVariableData& data) {
                  data.SetFileType(true);
                  data.GetDataTypeNode()->SetType(L"Length");
              })["dataType"],
              "File");
}

TEST_F(FCWorkFlowWriter, TheTextIsTheValueWithSlashes) {
    EXPECT_EQ(variable([](CFCVariableData& data) { data.SetValue(L"C:\\a\\b <&>"); }).text, "C:/a/b <&>");
    EXPECT_EQ(variable([](CFCVariableData& data) { data.SetValue(L""); }).text, "");
}

TEST_F(FCWorkFlowWriter, OnlyStatusFourHasNoValue) {
    for (int status = 0; status < 7; ++status)
        EXPECT_EQ(variable([status](CFCVariableData& data) { data.SetStatusType(status); }).text,
                  status == 4 ? "" : "value")
            << status;
}

TEST_F(FCWorkFlowWriter, VariablesAreAllThatHaveANameOrAllBesideActiveSetup) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"T");
    for (wchar_t const* name : {L"a", L"ActiveSetup", L"", L"activesetup", L"b"})
        addVariable(node, name);
    Element const root = filled([&](xercesc::DOMElement& element) {
        OpenWriter writer;
        writer.WriteVariables(node, flowmere::appendElement(&element, u"some"), false);
        writer.WriteVariables(node, flowmere::appendElement(&element, u"all"), true);
        writer.WriteVariables(nullptr, &element, true);
        writer.WriteVariables(node, nullptr, true);
        writer.WriteVariable(nullptr, &element);
        writer.WriteVariable(variablesOf(node).front(), nullptr);
    });
    EXPECT_EQ(root.outline(), "some all");
    EXPECT_EQ(root.only("some").values("name"), "a activesetup b");
    EXPECT_EQ(root.only("all").values("name"), "a ActiveSetup activesetup b");
}

// --- Tasks ---------------------------------------------------------------------------------------------------

std::map<int, std::string> const kElements = {
    {0, "UnKnown"},       {154, "start-state"}, {155, "end-state"},   {156, "fork"},        {157, "join"},
    {161, "super-state"}, {162, "sub-process"}, {163, "sub-process"}, {164, "sub-process"}, {165, "sub-process"},
};

TEST_F(FCWorkFlowWriter, EachKindHasItsElement) {
    CFCWorkFlowWriter writer;
    Tree const node(CFCNodeFactory().Create(150));
    for (int kind = -1; kind < 300; ++kind) {
        node->SetNodeType(kind);
        TuString name(L"former");
        bool const isWritten = kind != 71 && kind != 176 && kind != 178;
        auto const row = kElements.find(kind);
        EXPECT_EQ(writer.GetObjectType(node.get(), name), isWritten) << kind;
        EXPECT_EQ(narrow(name), !isWritten ? "former" : row != kElements.end() ? row->second : "task") << kind;
    }
    TuString name(L"former");
    EXPECT_FALSE(writer.GetObjectType(nullptr, name));
    EXPECT_EQ(narrow(name), "former");
}

TEST_F(FCWorkFlowWriter, EachKindOfTaskHasItsName) {
    OpenWriter writer;
    Tree const node(CFCNodeFactory().Create(150));
    for (int kind = 0; kind < 300; ++kind) {
        node->SetNodeType(kind);
        TuString name(L"former");
        writer.GetNodeTypeString(node.get(), name);
        EXPECT_EQ(narrow(name), narrow(flowmere::workflowNodeTypeName(kind))) << kind;
    }
    TuString name(L"former");
    writer.GetNodeTypeString(nullptr, name);
    EXPECT_EQ(narrow(name), "");
}

TEST_F(FCWorkFlowWriter, VariablesKindAndApplicationFollowTheKindOfNode) {
    for (int const kind : {0, 57, 150, 151, 152, 153, 154, 155, 156, 157, 158, 161, 162, 163, 164, 165, 167, 168}) {
        SCOPED_TRACE(kind);
        Element const element = block(150, [kind](CFCBPMTaskNode& node) {
            node.SetNodeType(kind);
            node.SetApplication(L"App");
            addVariable(&node, L"v");
            addVariable(&node, L"ActiveSetup");
        });
        bool const isTask = (kind >= 150 && kind <= 153) || (kind >= 161 && kind <= 165);
        std::string const type = narrow(flowmere::workflowNodeTypeName(kind));
        EXPECT_EQ(element.name, kElements.contains(kind) ? kElements.at(kind) : "task");
        EXPECT_EQ(element["name"], "B");
        EXPECT_EQ(element["nodeType"], type.empty() ? "(absent)" : type);
        EXPECT_EQ(element["application"], isTask ? "App" : "(absent)");
        ASSERT_EQ(element.outline(), isTask ? "variables" : "");
        if (isTask) {
            EXPECT_EQ(element.only("variables").values("name"), "v");
            EXPECT_TRUE(element.only("variables").attributes.empty());
        }
    }
}

TEST_F(FCWorkFlowWriter, WithoutATaskNameThereIsNoApplicationButVariables) {
    Element const element = block(150, [](CFCBPMTaskNode& node) {
        node.SetApplication(L"App");
        node.SetTaskName(L"");
        addVariable(&node, L"v");
    });
    EXPECT_FALSE(element.has("application"));
    EXPECT_EQ(element["nodeType"], "task");
    EXPECT_EQ(element.only("variables").values("name"), "v");
}

TEST_F(FCWorkFlowWriter, WithoutAnApplicationThereIsNoAttribute) {
    EXPECT_FALSE(block(150).has("application"));
    EXPECT_TRUE(block(150).only("variables").children.empty());
}

TEST_F(FCWorkFlowWriter, ANodeWithoutAnyNameStaysEmptyButForWhatIsBelow) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const group = addTask(tree.get(), L"", 161);
    addVariable(group, L"v");
    addTask(group, L"T");
    addChild(tree.get(), 150, L"", L"Caption");
    Element const element = tasks(tree.get());
    EXPECT_TRUE(element.only("super-state").attributes.empty());
    EXPECT_EQ(element.only("super-state").outline(), "task");
    EXPECT_EQ(element.only("task")["name"], "Caption");
}

TEST_F(FCWorkFlowWriter, ANativeBlockIsAnEmptyTask) {
    Tree const tree = newWorkflow();
    IFCNode* const native = addChild(tree.get(), 57, L"Native");
    addVariable(native, L"v");
    Element const element = tasks(tree.get()).only("task");
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_TRUE(element.children.empty());
}

// A task without the data of a block.
class HalfTask : public CFCBPMTaskNode {
public:
    CFCBlockData* GetFCBlockData() override { return nullptr; }
};

TEST_F(FCWorkFlowWriter, ATaskWithoutBlockDataIsAnEmptyTask) {
    Tree const tree = newWorkflow();
    auto half = std::make_unique<HalfTask>();
    half->SetNodeType(150);
    half->SetNodeId(L"H");
    tree->AppendChild(half.release(), false);
    Element const element = tasks(tree.get()).only("task");
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_TRUE(element.children.empty());
}

TEST_F(FCWorkFlowWriter, TheProcessItselfHasNoProperties) {
    Tree const tree = newWorkflow();
    tree->SetNodeId(L"P");
    addVariable(tree.get(), L"v");
    addTask(tree.get(), L"T");
    Element const element = tasks(tree.get());
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_EQ(element.outline(), "task");
}

TEST_F(FCWorkFlowWriter, AnotherRootPutsItsPropertiesOnTheTasks) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const group = addTask(tree.get(), L"G", 161);
    addTask(group, L"T");
    Element const element = tasks(group);
    EXPECT_EQ(element["name"], "G");
    EXPECT_EQ(element.outline(), "variables task");
}

TEST_F(FCWorkFlowWriter, ARootOfAKindWithoutElementLeavesTheTasksEmpty) {
    Tree const folder(CFCNodeFactory().Create(71));
    addTask(folder.get(), L"T");
    EXPECT_TRUE(tasks(folder.get()).children.empty());
}

TEST_F(FCWorkFlowWriter, SubProcessesNestInTheOneFile) {
    Tree const tree = newWorkflow();
    IFCNode* const outer = addTask(tree.get(), L"S", 165);
    IFCNode* const inner = addTask(outer, L"T", 162);
    addTask(inner, L"Deep");
    addTask(outer, L"Side");
    Element const sub = tasks(tree.get()).only("sub-process");
    EXPECT_EQ(sub["nodeType"], "basicSubProcess");
    EXPECT_EQ(sub.outline(), "variables sub-process task");
    EXPECT_EQ(sub.only("sub-process").only("task")["name"], "Deep");
}

TEST_F(FCWorkFlowWriter, TasksComeOutFromTheLastSibling) {
    Tree const tree = newWorkflow();
    for (wchar_t const* id : {L"A", L"B", L"C"})
        addTask(tree.get(), id);
    EXPECT_EQ(tasks(tree.get()).values("name"), "A B C");
}

TEST_F(FCWorkFlowWriter, WriteObjectNeedsANodeAndAPlace) {
    Tree const tree = newWorkflow();
    IFCNode* const node = addTask(tree.get(), L"T");
    Element const root = filled([&](xercesc::DOMElement& element) {
        CFCWorkFlowWriter writer;
        writer.WriteObject(node, nullptr, nullptr);
        writer.WriteObject(nullptr, &element, nullptr);
        writer.WriteChildren(nullptr, &element);
        writer.WriteProperties(nullptr, &element);
        writer.WriteProperties(node, nullptr);
        writer.WritePropertiesRoot(nullptr, &element);
        writer.WritePropertiesRoot(node, nullptr);
        writer.WriteApplications(nullptr, &element);
        writer.WriteApplications(node, nullptr);
        writer.WriteObject(node, &element, nullptr);
    });
    EXPECT_EQ(root.outline(), "task");
    EXPECT_EQ(root.attributes.size(), 1U);
}

TEST_F(FCWorkFlowWriter, GroupsOfTasksNestAsDeepAsAFileMay) {
    Tree const tree = newWorkflow();
    IFCNode* node = tree.get();
    for (int depth = 0; depth < 3000; ++depth)
        node = addTask(node, L"G", 161);
    Element const root = tasks(tree.get());
    int depth = 0;
    for (Element const* group = root.first("super-state"); group != nullptr; group = group->first("super-state"))
        ++depth;
    EXPECT_EQ(depth, 1020);
}

// --- Transitions ---------------------------------------------------------------------------------------------

TEST_F(FCWorkFlowWriter, ATransitionHasItsTargetAndItsName) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const start = addTask(tree.get(), L"A", 154);
    CFCBPMTaskNode* const task = addTask(tree.get(), L"B");
    CFCBPMTaskNode* const end = addTask(tree.get(), L"C", 155);
    connect(tree.get(), start, task)->SetCaption(L"not written");
    connect(tree.get(), task, end);
    Element const element = tasks(tree.get());
    std::map<std::string, std::string> const expected = {{"to", "B"}, {"name", "A.B"}};
    EXPECT_EQ(element.only("start-state").only("transition").attributes, expected);
    EXPECT_TRUE(element.only("start-state").only("transition").children.empty());
    EXPECT_EQ(element.only("task").outline(), "variables transition");
    EXPECT_EQ(element.only("end-state").outline(), "");
}

TEST_F(FCWorkFlowWriter, EveryKindOfNodeHasTransitions) {
    for (int const kind : {0, 57, 150, 151, 152, 153, 154, 155, 156, 157, 158, 161, 162, 163, 164, 165, 167, 168}) {
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const node = addTask(tree.get(), L"B");
        node->SetNodeType(kind);
        connect(tree.get(), node, addTask(tree.get(), L"N"));
        EXPECT_EQ(tasks(tree.get()).with("name", "B").all("transition").size(), 1U) << kind;
    }
}

TEST_F(FCWorkFlowWriter, DeletedConnectorsAndThoseWithoutAnEndGiveNoTransition) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
    CFCBPMTaskNode* const b = addTask(tree.get(), L"B");
    CFCConnector* const deleted = connect(tree.get(), a, b);
    connect(tree.get(), a, addTask(tree.get(), L""));
    connect(tree.get(), a, nullptr);
    connect(tree.get(), a, addTask(tree.get(), L"C"));
    EXPECT_EQ(tasks(tree.get()).with("name", "A").values("to"), "(absent) B C");
    deleted->DeleteConnecter(true);
    EXPECT_EQ(tasks(tree.get()).with("name", "A").values("to"), "(absent) C");
}

TEST_F(FCWorkFlowWriter, TransitionsBelongToANameInOneContainer) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const first = addTask(tree.get(), L"A");
    addTask(tree.get(), L"A");
    CFCBPMTaskNode* const group = addTask(tree.get(), L"G", 161);
    addTask(group, L"A");
    connect(tree.get(), first, group);
    Element const element = tasks(tree.get());
    for (Element const& task : element.all("task"))
        EXPECT_EQ(task.all("transition").size(), 1U);
    EXPECT_TRUE(element.only("super-state").only("task").all("transition").empty());
}

TEST_F(FCWorkFlowWriter, ANodeWithoutParentOrConnectorsAroundItHasNoTransition) {
    Tree const alone(CFCNodeFactory().Create(150));
    alone->SetNodeId(L"A");
    EXPECT_EQ(tasks(alone.get()).outline(), "variables");
    Tree const folder(CFCNodeFactory().Create(71));
    EXPECT_EQ(tasks(addTask(folder.get(), L"B")).outline(), "variables");
}

TEST_F(FCWorkFlowWriter, PropertiesWrittenAloneHaveTransitionsToo) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
    connect(tree.get(), a, addTask(tree.get(), L"B"));
    Element const element = filled([&](xercesc::DOMElement& own) { OpenWriter().WriteProperties(a, &own); });
    EXPECT_EQ(element.only("transition")["to"], "B");
}

// A process that counts how often its connectors are asked for.
class CountingProcess : public CFCBPMProcessNode {
public:
    CFCConnectorList* GetConnectorList() override {
        ++asked;
        return CFCBPMProcessNode::GetConnectorList();
    }
    int asked = 0;
};

TEST_F(FCWorkFlowWriter, ConnectorsOfAContainerAreWalkedOnceForAFile) {
    auto process = std::make_unique<CountingProcess>();
    CountingProcess& counter = *process;
    process->SetNodeType(160);
    Tree const tree(process.release());
    CFCBPMTaskNode* former = addTask(tree.get(), L"T0");
    for (int number = 1; number < 200; ++number) {
        TuString id;
        id.Format(L"T%d", number);
        CFCBPMTaskNode* const node = addTask(tree.get(), id);
        connect(tree.get(), former, node);
        former = node;
    }
    counter.asked = 0;
    Element const element = tasks(tree.get());
    EXPECT_EQ(counter.asked, 1);
    EXPECT_EQ(element.with("name", "T7").only("transition")["to"], "T8");
}

// A writer of a host, which marks what it writes.
class MarkingWriter : public CFCWorkFlowWriter {
public:
    void WriteProperties(IFCNode* node, xercesc::DOMNode* element) override {
        CFCWorkFlowWriter::WriteProperties(node, element);
        flowmere::setConstant(element, u"mark", u"1");
    }
};

TEST_F(FCWorkFlowWriter, OverridesTakeEffectAtEveryLevel) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"S", 165), L"T");
    MarkingWriter writer;
    EXPECT_TRUE(writer.WriteFile(path("workflow.xml"), tree.get(), nullptr));
    Element const sub = read("workflow.xml").only("tasks").only("sub-process");
    EXPECT_EQ(sub["mark"], "1");
    EXPECT_EQ(sub.only("task")["mark"], "1");
}

} // namespace
