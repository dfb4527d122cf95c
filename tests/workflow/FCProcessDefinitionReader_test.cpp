#include "flowmere/workflow/FCProcessDefinitionReader.h"

#include "DefinitionReaderSupport.h"
#include "flowmere/environment/FCEnvironment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using FCProcessDefinitionReaderTest = DefinitionReaderTest;

std::string number(int value) {
    return std::to_string(value);
}

} // namespace

// --- Files ---------------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, ANewReaderHasVersionOneAndNoFindings) {
    EXPECT_EQ(reader.GetVersion(), 1.0);
    EXPECT_THAT(reader.GetFindings(), IsEmpty());
    EXPECT_EQ(reader.Create(150), nullptr);
    reader.Attach(nullptr);
}

TEST_F(FCProcessDefinitionReaderTest, NodesComeFromTheFactoryAndGoToTheContainer) {
    Container container;
    reader.SetNodeFactory(&plainFactory);
    reader.SetContainer(&container);
    Tree const node(reader.Create(153));
    EXPECT_EQ(node->GetNodeType(), 153);
    reader.Attach(node.get());
    reader.Attach(nullptr);
    EXPECT_THAT(container.attached, ElementsAre(node.get()));
}

TEST_F(FCProcessDefinitionReaderTest, APathWithoutTheNameIsRefusedBeforeAnythingIsRead) {
    writeFolder("flow", "");
    scratch.write("flow/other.xml", definition(""));
    RefusingFactory counting({});
    reader.SetNodeFactory(&counting);
    IFCNode* node = nullptr;
    for (TuString const& name :
         {TuString(), path("flow/other.xml"), path("flow"), path("flow/ProcessDefinition.xml")}) {
        EXPECT_FALSE(reader.Parse(name, &node, 16)) << name.View().size();
        EXPECT_EQ(node, nullptr);
    }
    EXPECT_FALSE(reader.Parse(nullptr, &node, 16));
    EXPECT_FALSE(reader.Parse(definitionPath(), nullptr, 16));
    EXPECT_THAT(counting.made, IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, WithoutFactoryNothingIsRead) {
    writeFolder("flow", "<start-state name=\"A\"/>");
    IFCNode* node = nullptr;
    EXPECT_FALSE(reader.Parse(definitionPath(), &node, 16));
    EXPECT_EQ(node, nullptr);
    Tree const target = newWorkflow();
    EXPECT_FALSE(reader.LoadFileNode(definitionPath(), target.get()));
    reader.UpdateConnectors(target.get());
    EXPECT_THAT(childrenOf(target.get()), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, WithoutAProcessOfTheFactoryNothingIsRead) {
    writeFolder("flow", "<start-state name=\"A\"/>");
    RefusingFactory refusing({160});
    reader.SetNodeFactory(&refusing);
    IFCNode* node = nullptr;
    EXPECT_FALSE(reader.Parse(definitionPath(), &node, 16));
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(refusing.made.size(), 1u);
}

TEST_F(FCProcessDefinitionReaderTest, ABrokenFileIsRefusedWithItsPlace) {
    scratch.write("flow/processdefinition.xml", "<process-definition>\n  <fork>\n</process-definition>");
    reader.SetNodeFactory(factory);
    IFCNode* node = nullptr;
    EXPECT_FALSE(reader.Parse(definitionPath(), &node, 16));
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(reader.GetErrorLine(), 3);
    EXPECT_GT(reader.GetErrorColumn(), 0);
    EXPECT_NE(narrow(reader.GetErrorText()), "");
    EXPECT_THAT(reader.GetFindings(), IsEmpty());
    EXPECT_FALSE(reader.Parse(definitionPath("nowhere"), &node, 16));
}

TEST_F(FCProcessDefinitionReaderTest, TheNameOfTheRootIsCaptionAndTaskNameOfTheProcess) {
    tree = readInside("");
    EXPECT_EQ(tree->GetNodeType(), 160);
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "Flow");
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetTaskName()), "Flow");
    EXPECT_EQ(narrow(tree->GetNodeId()), "");
    EXPECT_EQ(tree->GetProjectType(), EProjectType_TASK);
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, TheRootMayHaveAnyNameAndNoAttributes) {
    writeFolder("flow", "");
    scratch.write("flow/processdefinition.xml", "<anything><fork name=\"F\"/></anything>");
    tree = read();
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "");
    EXPECT_EQ(outlineOf(tree.get()), "156 F");
}

TEST_F(FCProcessDefinitionReaderTest, AVersionAboveZeroReplacesTheOneOfTheReader) {
    for (auto const& [text, version] : std::vector<std::pair<std::string, double>>{
             {"3", 3.0}, {"2.7", 2.0}, {"1.0", 1.0}, {"0", 1.0}, {"-4", 1.0}, {"new", 1.0}, {"", 1.0}}) {
        writeFolder("flow", "");
        scratch.write("flow/processdefinition.xml", definition("", "version=\"" + text + "\""));
        CFCProcessDefinitionReader fresh;
        fresh.SetNodeFactory(factory);
        IFCNode* node = nullptr;
        EXPECT_TRUE(fresh.Parse(definitionPath(), &node, 16));
        Tree const owner(node);
        EXPECT_EQ(fresh.GetVersion(), version) << text;
    }
}

TEST_F(FCProcessDefinitionReaderTest, AGivenNodeIsFilledAndKeepsItsName) {
    writeFolder("flow", "<fork name=\"F\"/>");
    tree = newWorkflow(L"Mine");
    IFCNode* node = tree.get();
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.Parse(definitionPath(), &node, 0));
    EXPECT_EQ(node, tree.get());
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "Mine");
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetTaskName()), "");
    EXPECT_EQ(outlineOf(tree.get()), "156 F");
}

TEST_F(FCProcessDefinitionReaderTest, TheNameInTheLayoutWinsOverTheOneInTheDefinition) {
    writeFolder("flow", "", "<root-container name=\"Drawn\" Icon=\"i.png\"/>");
    tree = read();
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "Drawn");
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetIconFilePath()), "i.png");
}

TEST_F(FCProcessDefinitionReaderTest, WithoutVariablesTheNewProcessIsHandedOverAndTheLayoutIsNotRead) {
    writeFolder("flow", "<fork name=\"F\"><transition to=\"F\"/></fork>", "<root-container name=\"Drawn\"/>");
    std::filesystem::remove(scratch / "flow/process.var");
    reader.SetNodeFactory(factory);
    IFCNode* node = nullptr;
    EXPECT_FALSE(reader.Parse(definitionPath(), &node, 16));
    ASSERT_NE(node, nullptr);
    Tree const owner(node);
    EXPECT_EQ(narrow(node->GetNodeCaption()), "Flow");
    EXPECT_EQ(outlineOf(node), "156 F");
    EXPECT_THAT(connectorsOf(node), IsEmpty());
    EXPECT_THAT(findings(), ElementsAre("VariablesMissing []"));
    EXPECT_EQ(reader.GetFindings().front().file, path("flow/process.var"));
    EXPECT_EQ(reader.GetFindings().front().node, node);
}

TEST_F(FCProcessDefinitionReaderTest, WithoutVariablesTheNewProcessReplacesAGivenNode) {
    writeFolder("flow", "<fork name=\"F\"/>");
    std::filesystem::remove(scratch / "flow/process.var");
    tree = newWorkflow(L"Mine");
    IFCNode* node = tree.get();
    reader.SetNodeFactory(factory);
    EXPECT_FALSE(reader.Parse(definitionPath(), &node, 16));
    Tree const carrier(node);
    ASSERT_NE(carrier, nullptr);
    EXPECT_NE(node, tree.get());
    EXPECT_EQ(narrow(node->GetNodeCaption()), "Flow");
    EXPECT_EQ(outlineOf(node), "");
    EXPECT_EQ(outlineOf(tree.get()), "156 F"); // what was built stays
}

TEST_F(FCProcessDefinitionReaderTest, VariablesAndLayoutGoToTheNodesOfTheDefinition) {
    writeFolder("flow", "<task-node name=\"A\"/>",
                "<root-container><node name=\"A\" x=\"10\" y=\"20\" width=\"30\" height=\"40\"/></root-container>",
                "<PROCESS><BLOCK_VARIABLES><BLOCK Name=\"A\"><VARIABLE Name=\"v\" Type=\"Data\" DataType=\"String\" "
                "Value=\"7\"/></BLOCK></BLOCK_VARIABLES></PROCESS>");
    tree = read();
    IFCNode* const a = child(tree.get(), L"a");
    EXPECT_EQ(a->GetTuRect()->right, 40);
    EXPECT_EQ(a->GetTuRect()->bottom, 60);
    EXPECT_EQ(narrow(only(variablesOf(a))->GetVariableName()), "v");
}

TEST_F(FCProcessDefinitionReaderTest, BrokenNeighboursAreTold) {
    writeFolder("flow", "<fork name=\"F\"><transition to=\"F\"/></fork>", "<root-container>\n<node>", "<PROCESS");
    tree = read();
    EXPECT_EQ(connectionsOf(tree.get()), "F-F");
    EXPECT_THAT(findings(), ElementsAre("VariablesBroken []", "LayoutBroken []"));
    CFCWorkflowFinding const& layout = reader.GetFindings()[1];
    EXPECT_EQ(layout.file, path("flow/gpd.xml"));
    EXPECT_EQ(layout.line, 2);
    EXPECT_GT(layout.column, 0);
    EXPECT_FALSE(layout.error.IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, AMissingLayoutIsTold) {
    writeFolder("flow", "");
    std::filesystem::remove(scratch / "flow/gpd.xml");
    tree = read();
    EXPECT_THAT(findings(), ElementsAre("LayoutMissing []"));
    EXPECT_EQ(reader.GetFindings().front().file, path("flow/gpd.xml"));
}

TEST_F(FCProcessDefinitionReaderTest, WhatLayoutsHaveBesidesIsToldForAllFolders) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>",
                "<root-container><node name=\"top\"/></root-container>");
    writeFolder("flow/S",
                "<task-node name=\"T\" nodeType=\"basicSubProcess\"><odd/><task-node name=\"U\" "
                "nodeType=\"basicSubProcess\"/></task-node>",
                "<root-container><node-container name=\"inner\"/><grid name=\"g\"/></root-container>");
    writeFolder("flow/S/T", "", "<root-container><node name=\"unread\"/></root-container>");
    std::filesystem::remove(scratch / "flow/S/T/process.var");
    writeFolder("flow/U", "", "<root-container><node name=\"outside\"/></root-container>");
    tree = read();
    EXPECT_THAT(findings(),
                ElementsAre("VariablesMissing [S.T]", "ElementLost [S.T] <task-node>", "ElementPassedOver [S.T] <odd>",
                            "LayoutNodeUnknown [S.T.U] <node> outside", "LayoutNodeUnknown [S] <node-container> inner",
                            "LayoutElementPassedOver [S] <grid>", "LayoutNodeUnknown [] <node> top"));
    EXPECT_EQ(reader.GetFindings()[3].node, nullptr); // it stood on a node that is gone
    EXPECT_EQ(reader.GetFindings()[3].file, path("flow/U/gpd.xml"));
    EXPECT_EQ(reader.GetFindings()[4].node, child(tree.get(), L"S"));
    EXPECT_EQ(reader.GetFindings()[4].file, path("flow/S/gpd.xml"));
    EXPECT_EQ(reader.GetFindings()[6].node, tree.get());
    EXPECT_EQ(reader.GetFindings()[6].file, path("flow/gpd.xml"));
    writeFolder("flow", "");
    tree = read();
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, FindingsAreThoseOfTheLastCall) {
    writeFolder("flow", "<swimlane/>");
    tree = read();
    EXPECT_EQ(findings().size(), 1u);
    writeFolder("flow", "");
    tree = read();
    EXPECT_THAT(findings(), IsEmpty());
    IFCNode* node = nullptr;
    writeFolder("flow", "<swimlane/>");
    tree = read();
    EXPECT_FALSE(reader.Parse(L"", &node, 16));
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, SlashesAndAPlainNameWork) {
    writeFolder("flow", "<fork name=\"F\"/>");
    reader.SetNodeFactory(factory);
    IFCNode* node = nullptr;
    EXPECT_TRUE(reader.Parse(scratch.text("flow/processdefinition.xml"), &node, 16));
    Tree(std::exchange(node, nullptr)).reset();
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(scratch / "flow");
    CFCProcessDefinitionReader plain;
    plain.SetNodeFactory(factory);
    bool const result = plain.Parse(L"processdefinition.xml", &node, 16);
    std::filesystem::current_path(before);
    EXPECT_TRUE(result);
    Tree const owner(node);
    EXPECT_EQ(outlineOf(node), "156 F");
    EXPECT_THAT(plain.GetFindings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, ThePlainNameOfTheTopFileServesAtAnyDepth) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/S", "<task-node name=\"T\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/S/T", "<fork name=\"F\"/>");
    reader.SetNodeFactory(factory);
    IFCNode* node = nullptr;
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(scratch / "flow");
    bool const result = reader.Parse(L"processdefinition.xml", &node, 16);
    std::filesystem::current_path(before);
    EXPECT_TRUE(result);
    tree = Tree(node);
    IFCNode* const inner = child(child(tree.get(), L"S"), L"T");
    EXPECT_EQ(outlineOf(inner), "156 F");
    EXPECT_EQ(narrow(inner->GetBPMBlockData()->GetJythonScriptFileName()), ""); // no folder, no path of a script
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, NestedFilesLeaveTheVersionAlone) {
    for (auto const& [top, version] : std::vector<std::pair<std::string, double>>{{"3", 3.0}, {"0", 1.0}}) {
        scratch.write("flow/processdefinition.xml",
                      definition("<task-node name=\"S\" nodeType=\"basicSubProcess\"/>", "version=\"" + top + "\""));
        scratch.write("flow/process.var", kBareVariables);
        scratch.write("flow/gpd.xml", kBareLayout);
        writeFolder("flow/S", "");
        scratch.write("flow/S/processdefinition.xml", definition("", "version=\"7\""));
        CFCProcessDefinitionReader fresh;
        fresh.SetNodeFactory(factory);
        IFCNode* node = nullptr;
        EXPECT_TRUE(fresh.Parse(definitionPath(), &node, 16));
        Tree const owner(node);
        EXPECT_EQ(fresh.GetVersion(), version);
    }
}

TEST_F(FCProcessDefinitionReaderTest, TheContainerIsHandedWhatLayoutsDraw) {
    writeFolder("flow", "<fork name=\"F\"/><task-node name=\"S\" nodeType=\"basicSubProcess\"/>",
                "<root-container><node name=\"F\"><FONT/></node><node name=\"S\"/></root-container>");
    writeFolder("flow/S", "<join name=\"J\"><transition to=\"J\"/></join>",
                "<root-container><node name=\"J\"><FONT/></node></root-container>");
    Container container;
    reader.SetContainer(&container);
    tree = read();
    IFCNode* const inner = child(tree.get(), L"S");
    EXPECT_THAT(container.attached,
                ElementsAre(child(inner, L"J"), only(connectorsOf(inner)), child(tree.get(), L"F")));
}

TEST_F(FCProcessDefinitionReaderTest, CopiesShareFactoryAndDocument) {
    writeFolder("flow", "<swimlane/>");
    tree = read();
    CFCProcessDefinitionReader copy(reader);
    EXPECT_THAT(linesOf(copy.GetFindings()), ElementsAre("ElementPassedOver [] <swimlane>"));
    CFCProcessDefinitionReader assigned;
    assigned = copy;
    IFCNode* node = nullptr;
    EXPECT_TRUE(assigned.Parse(definitionPath(), &node, 16));
    Tree const owner(node);
}

// --- Node elements -------------------------------------------------------------------------------------------

namespace {

struct NodeRow {
    char const* type; // of the process, by an element in front
    char const* element;
    int kind;
};

constexpr NodeRow kNodes[] = {
    {"TASK", "start-state", 154},
    {"TASK", "end-state", 155},
    {"TASK", "fork", 156},
    {"TASK", "ClientApplication", 167},
    {"TASK", "join", 157},
    {"TASK", "super-state", 161},
    {"TASK", "task-node", 150},
    {"TASK", "decision", 153},
    {"APPLICATION", "start-state", 154},
    {"APPLICATION", "join", 157},
    {"APPLICATION", "super-state", 168},
    {"APPLICATION", "task-node", 167},
    {"APPLICATION", "decision", 153},
    {"BPT", "task-node", 150},
    {"MSP", "super-state", 161},
};

} // namespace

TEST_F(FCProcessDefinitionReaderTest, EachNodeElementMakesItsKind) {
    for (NodeRow const& row : kNodes) {
        SCOPED_TRACE(std::string(row.type) + " " + row.element);
        std::string const element = row.element;
        tree = readInside("<type>" + std::string(row.type) + "</type><" + element + " name=\"N\" label=\"L\"/>");
        IFCNode* const node = only(childrenOf(tree.get()));
        EXPECT_EQ(node->GetNodeType(), row.kind);
        EXPECT_EQ(narrow(node->GetNodeId()), "N");
        EXPECT_EQ(narrow(node->GetNodeCaption()), "L");
        EXPECT_EQ(narrow(node->GetBPMBlockData()->GetTaskName()), "");
        EXPECT_EQ(narrow(node->GetBPMBlockData()->GetTaskCaption()), "L");
        EXPECT_EQ(narrow(node->GetBPMBlockData()->GetPriority()), "normal");
        EXPECT_EQ(node->GetParentNode(), tree.get());
        EXPECT_THAT(findings(), IsEmpty());
    }
}

TEST_F(FCProcessDefinitionReaderTest, AnEmptyLabelTakesTheName) {
    for (NodeRow const& row : kNodes) {
        for (char const* const label : {"", " label=\"\""}) {
            SCOPED_TRACE(std::string(row.type) + " " + row.element + label);
            std::string const element = row.element;
            tree = readInside("<type>" + std::string(row.type) + "</type><" + element + " name=\"N\"" + label + "/>");
            IFCNode* const node = only(childrenOf(tree.get()));
            EXPECT_EQ(narrow(node->GetNodeCaption()), "N");
            EXPECT_EQ(narrow(node->GetBPMBlockData()->GetTaskCaption()), "N");
        }
    }
}

TEST_F(FCProcessDefinitionReaderTest, NewNodesStandInFrontSoThatTheChainIsTheReverseOfTheFile) {
    tree = readInside("<start-state name=\"A\"/><task-node name=\"B\"/><end-state name=\"C\"/>");
    EXPECT_EQ(outlineOf(tree.get()), "154 A, 150 B, 155 C");
    EXPECT_EQ(narrow(tree->GetChild()->GetNodeId()), "C");
    EXPECT_EQ(narrow(tree->GetChild()->GetNext()->GetNodeId()), "B");
}

TEST_F(FCProcessDefinitionReaderTest, IconsAreReadOnTasksDecisionsAndGroups) {
    for (auto const& [element, isRead] : std::vector<std::pair<std::string, bool>>{{"task-node", true},
                                                                                   {"decision", true},
                                                                                   {"super-state", true},
                                                                                   {"start-state", false},
                                                                                   {"end-state", false},
                                                                                   {"fork", false},
                                                                                   {"join", false},
                                                                                   {"ClientApplication", false}}) {
        SCOPED_TRACE(element);
        tree = readInside("<" + element + " name=\"N\" icon=\"i.png\"/>");
        EXPECT_EQ(narrow(only(childrenOf(tree.get()))->GetBPMBlockData()->GetIconFilePath()), isRead ? "i.png" : "");
        if (isRead)
            EXPECT_THAT(findings(), IsEmpty());
        else
            EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [N] <" + element + "> icon = i.png"));
    }
}

TEST_F(FCProcessDefinitionReaderTest, AnIconThatComesWithTheLayoutIsNotTold) {
    writeFolder("flow", "<fork name=\"F\" icon=\"i.png\"/><join name=\"J\" icon=\"j.png\"/>",
                "<root-container><node name=\"F\" Icon=\"i.png\"/><node name=\"J\" Icon=\"k.png\"/></root-container>");
    tree = read();
    EXPECT_EQ(narrow(child(tree.get(), L"F")->GetBPMBlockData()->GetIconFilePath()), "i.png");
    EXPECT_EQ(narrow(child(tree.get(), L"J")->GetBPMBlockData()->GetIconFilePath()), "k.png");
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [J] <join> icon = j.png"));
}

TEST_F(FCProcessDefinitionReaderTest, RoundsAreReadOnTasksAndDecisions) {
    tree = readInside("<task-node name=\"A\" max-iterations=\"7\"/><decision name=\"B\" max-iterations=\"8\"/>"
                      "<task-node name=\"C\" max-iterations=\"many\"/><fork name=\"D\" max-iterations=\"9\"/>");
    EXPECT_EQ(child(tree.get(), L"A")->GetBPMBlockData()->GetMaxIterations(), 7);
    EXPECT_EQ(child(tree.get(), L"B")->GetBPMBlockData()->GetMaxIterations(), 8);
    EXPECT_EQ(child(tree.get(), L"C")->GetBPMBlockData()->GetMaxIterations(), 0);
    EXPECT_EQ(child(tree.get(), L"D")->GetBPMBlockData()->GetMaxIterations(), 0);
    EXPECT_THAT(findings(), ElementsAre("ValueNotRead [C] <task-node> max-iterations = many",
                                        "AttributePassedOver [D] <fork> max-iterations = 9"));
}

namespace {

struct KindRow {
    char const* name;
    int kind;
};

constexpr KindRow kKinds[] = {
    {"task", 150},
    {"iteratingLoopSubProcess", 162},
    {"decisionLoopSubProcess", 163},
    {"spawningSubProcess", 164},
    {"basicSubProcess", 165},
    {"decisionTask", 153},
    {"fork", 57},
    {"Task", 57},
    {"task ", 57},
    {"subProcess", 57},
};

} // namespace

TEST_F(FCProcessDefinitionReaderTest, NodeTypesHaveTheirKinds) {
    for (KindRow const& row : kKinds)
        EXPECT_EQ(reader.GetNodeTypeFromName(TuString(row.name)), row.kind) << row.name;
    EXPECT_EQ(reader.GetNodeTypeFromName(L""), 57);
    EXPECT_EQ(reader.GetNodeTypeFromName(nullptr), 57);
}

TEST_F(FCProcessDefinitionReaderTest, ANodeTypeChangesTheKindOfATask) {
    for (KindRow const& row : kKinds) {
        for (char const* const type : {"TASK", "APPLICATION"}) {
            SCOPED_TRACE(std::string(row.name) + " " + type);
            writeFolder("flow",
                        "<type>" + std::string(type) + "</type><task-node name=\"N\" nodeType=\"" + row.name + "\"/>");
            writeFolder("flow/N", "");
            tree = read();
            EXPECT_EQ(only(childrenOf(tree.get()))->GetNodeType(), row.kind);
            if (row.kind == 57)
                EXPECT_THAT(findings(),
                            ElementsAre("NodeWithoutKind [N] <task-node> nodeType = " + std::string(row.name)));
            else
                EXPECT_THAT(findings(), IsEmpty());
        }
    }
    tree = readInside("<task-node name=\"N\" nodeType=\"\"/>");
    EXPECT_EQ(only(childrenOf(tree.get()))->GetNodeType(), 150);
}

TEST_F(FCProcessDefinitionReaderTest, ADecisionIsOneWhateverItsNodeType) {
    for (char const* const type : {"task", "decisionTask", "nonsense", ""}) {
        tree = readInside("<decision name=\"D\" nodeType=\"" + std::string(type) + "\"/>");
        EXPECT_EQ(only(childrenOf(tree.get()))->GetNodeType(), 153) << type;
    }
    writeFolder("flow", "<decision name=\"D\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/D", "<fork name=\"F\"/>");
    tree = read();
    EXPECT_EQ(outlineOf(tree.get()), "153 D");
    EXPECT_EQ(outlineOf(child(tree.get(), L"D")), "156 F"); // its folder is read all the same
}

TEST_F(FCProcessDefinitionReaderTest, GroupsHoldNodesOfTheirOwn) {
    tree = readInside("<super-state name=\"G\"><task-node name=\"A\"/><super-state name=\"H\"><fork name=\"B\"/>"
                      "</super-state></super-state><end-state name=\"E\"/>");
    EXPECT_EQ(outlineOf(tree.get()), "161 G, 155 E");
    EXPECT_EQ(outlineOf(child(tree.get(), L"G")), "150 A, 161 H");
    EXPECT_EQ(outlineOf(child(child(tree.get(), L"G"), L"H")), "156 B");
}

TEST_F(FCProcessDefinitionReaderTest, WhatWritersPutForTheEngineIsOfNoUse) {
    tree = readInside("<task-node name=\"A\" create-tasks=\"false\" signal=\"last-wait\"/>"
                      "<super-state name=\"G\" create-tasks=\"false\" signal=\"last-wait\"/>");
    EXPECT_THAT(findings(), IsEmpty());
    tree =
        readInside("<task-node name=\"A\" create-tasks=\"true\" signal=\"first\"/>"
                   "<super-state name=\"G\" create-tasks=\"\" signal=\"never\"/><fork name=\"F\" signal=\"never\"/>");
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [A] <task-node> create-tasks = true",
                                        "AttributePassedOver [A] <task-node> signal = first",
                                        "AttributePassedOver [G] <super-state> create-tasks",
                                        "AttributePassedOver [G] <super-state> signal = never",
                                        "AttributePassedOver [F] <fork> signal = never"));
}

TEST_F(FCProcessDefinitionReaderTest, ANodeMayHaveNoName) {
    tree = readInside("<task-node label=\"L\"><task name=\"T\"/></task-node><fork/>");
    EXPECT_EQ(outlineOf(tree.get()), "150 , 156 ");
    EXPECT_EQ(narrow(childrenOf(tree.get())[0]->GetNodeCaption()), "L");
    EXPECT_EQ(narrow(childrenOf(tree.get())[0]->GetBPMBlockData()->GetTaskName()), "T");
    EXPECT_THAT(findings(), ElementsAre("NodeWithoutName [] <task-node>", "NodeWithoutName [] <fork>"));
}

TEST_F(FCProcessDefinitionReaderTest, NamesOfElementsKeepTheirCase) {
    tree = readInside("<Task-Node name=\"A\"/><FORK name=\"B\"/><clientapplication name=\"C\"/>");
    EXPECT_EQ(outlineOf(tree.get()), "");
    EXPECT_THAT(findings(), ElementsAre("ElementPassedOver [] <Task-Node> A", "ElementPassedOver [] <FORK> B",
                                        "ElementPassedOver [] <clientapplication> C"));
}

TEST_F(FCProcessDefinitionReaderTest, WritersOfUnknownKindsLeaveNothingToRead) {
    tree = readInside("<UnKnown name=\"A\"><transition to=\"A\"/></UnKnown>");
    EXPECT_EQ(outlineOf(tree.get()), "");
    EXPECT_THAT(findings(), ElementsAre("ElementPassedOver [] <UnKnown> A"));
}

TEST_F(FCProcessDefinitionReaderTest, AFactoryThatMakesNothingEndsTheElementAroundIt) {
    for (auto const& [kind, element] : std::vector<std::pair<int, std::string>>{{154, "start-state"},
                                                                                {155, "end-state"},
                                                                                {156, "fork"},
                                                                                {157, "join"},
                                                                                {161, "super-state"},
                                                                                {150, "task-node"},
                                                                                {150, "decision"},
                                                                                {167, "ClientApplication"}}) {
        SCOPED_TRACE(element);
        RefusingFactory refusing({kind});
        factory = &refusing;
        std::string const outer = kind == 161 ? "task-node" : "super-state";
        tree = readInside("<" + outer + " name=\"G\"><" + element + " name=\"N\"/><end-state name=\"unread\"/></" +
                          outer + "><join name=\"read\"/>");
        EXPECT_EQ(outlineOf(tree.get()),
                  kind == 157 ? number(161) + " G" : number(kind == 161 ? 150 : 161) + " G, 157 read");
        EXPECT_EQ(outlineOf(child(tree.get(), L"G")), "");
        EXPECT_THAT(findings().front(), "NodeNotMade [G] <" + element + "> N");
    }
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, LoadTellsOfTheOutermostElementOnly) {
    flowmere::XmlDocumentHolder file;
    scratch.write("a.xml", "<a><super-state name=\"G\"><join/></super-state><fork name=\"F\"/></a>");
    scratch.write("b.xml", "<a><join/><fork name=\"F\"/></a>");
    RefusingFactory refusing({157});
    reader.SetNodeFactory(&refusing);
    tree = newWorkflow();
    file.document = flowmere::parseXmlFile(scratch.text("a.xml"));
    EXPECT_TRUE(reader.Load(file.document->getDocumentElement(), tree.get()));
    EXPECT_EQ(outlineOf(tree.get()), "161 G, 156 F");
    EXPECT_FALSE(reader.Load(nullptr, tree.get()));
    EXPECT_FALSE(reader.Load(file.document->getDocumentElement(), nullptr));
    Tree const block(plainFactory.Create(150));
    EXPECT_FALSE(reader.Load(file.document->getDocumentElement(), block.get())); // no process at its root
    EXPECT_EQ(outlineOf(block.get()), "");
    file.document = flowmere::parseXmlFile(scratch.text("b.xml"));
    EXPECT_FALSE(reader.Load(file.document->getDocumentElement(), tree.get()));
    EXPECT_EQ(outlineOf(tree.get()), "161 G, 156 F");
}

// --- The type of the project ---------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, TheTypeOfTheProjectIsReadByItsName) {
    for (auto const& [text, type] : std::vector<std::pair<std::string, EProjectType>>{
             {"BPT", EProjectType_BPT},
             {"TASK", EProjectType_TASK},
             {"MSP", EProjectType_MSP},
             {"APPLICATION", EProjectType_APPLICATION},
             {"", EProjectType_TASK},
             {"task", EProjectType_TASK}, // not a name, and nothing changes
         }) {
        tree = readInside("<type>" + text + "</type>");
        EXPECT_EQ(tree->GetProjectType(), type) << text;
        if (text == "task")
            EXPECT_THAT(findings(), ElementsAre("ValueNotRead [] <type> = task"));
        else
            EXPECT_THAT(findings(), IsEmpty());
    }
}

TEST_F(FCProcessDefinitionReaderTest, ATypeActsOnWhatComesBehindIt) {
    tree = readInside("<task-node name=\"A\"/><type>APPLICATION</type><task-node name=\"B\"/>");
    EXPECT_EQ(outlineOf(tree.get()), "150 A, 167 B");
}

TEST_F(FCProcessDefinitionReaderTest, ATypeBelowANodeSetsTheProcessButNotTheElementsAround) {
    tree = readInside("<super-state name=\"G\"><type>APPLICATION</type><task-node name=\"A\"/></super-state>"
                      "<task-node name=\"B\"/><super-state name=\"H\"><task-node name=\"C\"/></super-state>");
    EXPECT_EQ(tree->GetProjectType(), EProjectType_APPLICATION);
    EXPECT_EQ(outlineOf(child(tree.get(), L"G")), "167 A");
    EXPECT_EQ(outlineOf(tree.get()), "161 G, 150 B, 161 H"); // the root's elements go by what they began with
    EXPECT_EQ(outlineOf(child(tree.get(), L"H")), "167 C");  // those of a later element by what it is now
}

TEST_F(FCProcessDefinitionReaderTest, ANestedFileMakesTheWholeProcessATask) {
    writeFolder("flow", "<type>APPLICATION</type><task-node name=\"S\" nodeType=\"basicSubProcess\"/>"
                        "<task-node name=\"A\"/><super-state name=\"G\"><task-node name=\"B\"/></super-state>");
    writeFolder("flow/S", "<type>TASK</type>");
    tree = read();
    EXPECT_EQ(tree->GetProjectType(), EProjectType_TASK);
    EXPECT_EQ(outlineOf(tree.get()), "165 S, 167 A, 168 G");
    EXPECT_EQ(outlineOf(child(tree.get(), L"G")), "150 B");
}

// --- Applications --------------------------------------------------------------------------------------------

namespace {

constexpr char kApplicationAttributes[] =
    "id=\"12\" isNewVersion=\"true\" useBindingScript=\"true\" isUpdated=\"true\" isDeleted=\"true\" "
    "isDeletedAll=\"true\" icon=\"i.png\" hierarchyPath=\"A/B\"";

} // namespace

TEST_F(FCProcessDefinitionReaderTest, ApplicationsHaveAttributesOfTheirOwn) {
    for (auto const& [element, kind] :
         std::vector<std::pair<std::string, int>>{{"task-node", 167}, {"super-state", 168}}) {
        tree = readInside("<type>APPLICATION</type><" + element + " name=\"N\" " + kApplicationAttributes + "/>");
        auto* const node = dynamic_cast<CFCApplicationNode*>(only(childrenOf(tree.get())));
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->GetNodeType(), kind);
        EXPECT_EQ(node->GetAppID(), 12);
        EXPECT_NE(node->IsNewVersion(), 0);
        EXPECT_NE(node->IsUpdated(), 0);
        EXPECT_TRUE(node->IsUseBindingScript());
        EXPECT_TRUE(static_cast<IFCNode*>(node)->IsDeleted());
        EXPECT_TRUE(node->IsDeleteAllVersions());
        EXPECT_EQ(narrow(node->GetIconFilePath()), "i.png");
        EXPECT_EQ(narrow(node->GetHierarchyPath()), "A/B");
        EXPECT_THAT(findings(), IsEmpty());
    }
}

TEST_F(FCProcessDefinitionReaderTest, OnlyTheExactWordTrueCounts) {
    for (char const* const word : {"True", "TRUE", "1", "Yes", "false", ""}) {
        std::string const w = "=\"" + std::string(word) + "\" ";
        tree = readInside("<type>APPLICATION</type><task-node name=\"N\" id=\"1\" isNewVersion" + w +
                          "useBindingScript" + w + "isUpdated" + w + "isDeleted" + w + "isDeletedAll" + w + "/>");
        auto* const node = dynamic_cast<CFCApplicationNode*>(only(childrenOf(tree.get())));
        ASSERT_NE(node, nullptr);
        EXPECT_FALSE(node->IsNewVersion() != 0 || node->IsUpdated() != 0 || node->IsUseBindingScript() ||
                     static_cast<IFCNode*>(node)->IsDeleted() || node->IsDeleteAllVersions())
            << word;
    }
}

TEST_F(FCProcessDefinitionReaderTest, AnApplicationWithoutIdentifierIsNeverUpdated) {
    tree = readInside("<type>APPLICATION</type><task-node name=\"N\" isUpdated=\"true\"/>");
    EXPECT_EQ(dynamic_cast<CFCApplicationNode*>(only(childrenOf(tree.get())))->IsUpdated(), 0);
}

TEST_F(FCProcessDefinitionReaderTest, OtherNodesTakeTheIconOnly) {
    for (char const* const element : {"task-node", "super-state", "decision"}) {
        tree = readInside("<" + std::string(element) + " name=\"N\" " + kApplicationAttributes + "/>");
        IFCNode* const node = only(childrenOf(tree.get()));
        EXPECT_EQ(narrow(node->GetBPMBlockData()->GetIconFilePath()), "i.png");
        EXPECT_EQ(narrow(dynamic_cast<CFCBPMTaskNode*>(node)->GetHierarchyPath()), "");
        EXPECT_FALSE(node->IsDeleted());
        EXPECT_FALSE(node->IsDeleteAllVersions());
        EXPECT_EQ(findings().size(), 7u);
        for (std::string const& line : findings())
            EXPECT_THAT(line, HasSubstr("AttributePassedOver [N]"));
    }
}

namespace {

// Gives workflow blocks of the common class where applications are asked for.
class PlainFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override {
        if (kind != 167 && kind != 168)
            return CFCNodeFactory::Create(kind);
        IFCNode* const node = CFCNodeFactory::Create(150);
        node->SetNodeType(kind);
        return node;
    }
};

// Gives nodes without any record for every kind but the process.
class BareFactory : public CFCNodeFactory {
public:
    explicit BareFactory(int processKind = 160) : process(processKind) {}
    IFCNode* Create(int kind) override {
        IFCNode* const node = CFCNodeFactory::Create(kind == 160 ? process : 71);
        node->SetNodeType(kind);
        return node;
    }
    int process;
};

} // namespace

TEST_F(FCProcessDefinitionReaderTest, AnApplicationKindOnAnotherClassKeepsWhatItCan) {
    PlainFactory plain;
    factory = &plain;
    tree = readInside("<type>APPLICATION</type><task-node name=\"N\" " + std::string(kApplicationAttributes) +
                      "><task name=\"T\"/></task-node>");
    auto* const node = dynamic_cast<CFCBPMTaskNode*>(only(childrenOf(tree.get())));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(dynamic_cast<CFCApplicationNode*>(node), nullptr);
    EXPECT_EQ(narrow(node->GetHierarchyPath()), "A/B");
    EXPECT_EQ(narrow(node->GetIconFilePath()), "i.png");
    EXPECT_TRUE(node->IsDeleteAllVersions());
    EXPECT_EQ(narrow(node->GetTaskName()), "T");
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, CommonAttributesNeedWorkflowData) {
    flowmere::XmlDocumentHolder file;
    scratch.write("a.xml", "<a icon=\"i\"/>");
    file.document = flowmere::parseXmlFile(scratch.text("a.xml"));
    Tree const folder(plainFactory.Create(71));
    reader.LoadCommonAttributes(file.document->getDocumentElement(), folder.get());
    reader.LoadCommonAttributes(file.document->getDocumentElement(), nullptr);
    Tree const task(plainFactory.Create(150));
    reader.LoadCommonAttributes(nullptr, task.get());
    EXPECT_EQ(narrow(task->GetBPMBlockData()->GetIconFilePath()), "");
    reader.LoadCommonAttributes(file.document->getDocumentElement(), task.get());
    EXPECT_EQ(narrow(task->GetBPMBlockData()->GetIconFilePath()), "i");
}

TEST_F(FCProcessDefinitionReaderTest, NodesWithoutRecordsTakeWhatAnyNodeHas) {
    BareFactory bare;
    factory = &bare;
    tree = readInside(
        "<super-state name=\"A\" label=\"L\"><description>d</description><task name=\"T\"><reminder duedate=\"x\"/></task>"
        "<event type=\"e\"><action name=\"a\"/><script name=\"s\"/></event><handler class=\"c\"/><timer duedate=\"x\"/>"
        "<exception-handler><action/><script/></exception-handler><modulePath>m</modulePath><function>f</function>"
        "<sub-process name=\"s\"/><transition to=\"A\"><POINT/></transition><fork name=\"B\"/></super-state>");
    IFCNode* const a = only(childrenOf(tree.get()));
    EXPECT_EQ(narrow(a->GetNodeCaption()), "L");
    EXPECT_EQ(a->GetNodeType(), 161);
    EXPECT_EQ(only(childrenOf(a))->GetNodeType(), 156);
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, AProcessOfAnotherClassHoldsNothing) {
    BareFactory bare(150);
    factory = &bare;
    tree = readInside("<fork name=\"F\"/>");
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "Flow");
    EXPECT_EQ(outlineOf(tree.get()), "");
    factory = &plainFactory;
}

// --- Task ----------------------------------------------------------------------------------------------------

namespace {

struct TextRow {
    char const* name;
    wchar_t const* (CFCBPMBlockData::*get)();
    void (CFCBPMBlockData::*set)(wchar_t const*);
};

constexpr TextRow kTexts[] = {
    {"name", &CFCBPMBlockData::GetTaskName, &CFCBPMBlockData::SetTaskName},
    {"swimlane", &CFCBPMBlockData::GetSwimLane, &CFCBPMBlockData::SetSwimLane},
    {"taskCategory", &CFCBPMBlockData::GetCatagory, &CFCBPMBlockData::SetCatagory},
    {"taskDescription", &CFCBPMBlockData::GetTaskDescription, &CFCBPMBlockData::SetTaskDescription},
    {"projectName", &CFCBPMBlockData::GetProjectName, &CFCBPMBlockData::SetProjectName},
    {"requirementDocument", &CFCBPMBlockData::GetRequirementDoc, &CFCBPMBlockData::SetRequirementDoc},
    {"workInstruction", &CFCBPMBlockData::GetWorkInstructions, &CFCBPMBlockData::SetWorkInstructions},
    {"application", &CFCBPMBlockData::GetApplication, &CFCBPMBlockData::SetApplication},
    {"priority", &CFCBPMBlockData::GetPriority, &CFCBPMBlockData::SetPriority},
    {"user", &CFCBPMBlockData::GetUser, &CFCBPMBlockData::SetUser},
    {"userRole", &CFCBPMBlockData::GetUserRole, &CFCBPMBlockData::SetUserRole},
    {"category", &CFCBPMBlockData::GetUserCategory, &CFCBPMBlockData::SetUserCategory},
};

struct FlagRow {
    char const* name;
    bool (CFCBPMBlockData::*get)();
};

constexpr FlagRow kFlags[] = {
    {"lateIndicator", &CFCBPMBlockData::IsLateIndicator},
    {"criticalPathIndicator", &CFCBPMBlockData::IsCriticalPathIndicator},
    {"dataAvailability", &CFCBPMBlockData::IsSetDataAvailability},
    {"notify", &CFCBPMBlockData::HasEmailNotification},
    {"milestone", &CFCBPMBlockData::IsMilestone},
    {"runOnServer", &CFCBPMBlockData::IsRunOnServer},
    {"isDataOverrriden", &CFCBPMBlockData::GetUserDataOverriden},
};

struct DateRow {
    char const* name;
    TuDate (CFCBPMBlockData::*get)();
};

constexpr DateRow kDates[] = {
    {"startDate", &CFCBPMBlockData::GetStartDate},
    {"endDate", &CFCBPMBlockData::GetEndDate},
    {"actualStartDate", &CFCBPMBlockData::GetActStartDate},
    {"actualEndDate", &CFCBPMBlockData::GetActEndDate},
    {"dueDate", &CFCBPMBlockData::GetDueDate},
    {"estimatedReady", &CFCBPMBlockData::GetEstimatedReadyDate},
    {"estimatedEndDate", &CFCBPMBlockData::GetEstimatedEndDate},
};

struct NumberRow {
    char const* name;
    double (CFCBPMBlockData::*get)();
};

constexpr NumberRow kNumbers[] = {
    {"projectLate", &CFCBPMBlockData::GetProjectLate},
    {"effort", &CFCBPMBlockData::GetEffort},
    {"estimatedEffort", &CFCBPMBlockData::GetEstimatedEffort},
    {"actualEffort", &CFCBPMBlockData::GetActEffort},
    {"duration", &CFCBPMBlockData::GetDuration},
    {"cost", &CFCBPMBlockData::GetCost},
    {"progress", &CFCBPMBlockData::GetProgress},
};

} // namespace

TEST_F(FCProcessDefinitionReaderTest, TaskTextsAreReadEachIntoItsMember) {
    for (TextRow const& row : kTexts) {
        CFCBPMBlockData* const task = readTask("<task " + std::string(row.name) + "=\"\u00E4 b\"/>");
        for (TextRow const& other : kTexts)
            EXPECT_EQ(narrow((task->*other.get)()), row.get == other.get ? "\u00E4 b" : "") << row.name << other.name;
        if (std::string(row.name) == "name")
            EXPECT_THAT(findings(), IsEmpty());
        else
            EXPECT_THAT(findings(), ElementsAre("NodeWithoutName [Task] <task>"));
    }
}

TEST_F(FCProcessDefinitionReaderTest, ATaskWithoutAttributesEmptiesTheTexts) {
    CFCBPMBlockData* const task = readTask("<description>d</description><task/>");
    for (TextRow const& row : kTexts)
        EXPECT_EQ(narrow((task->*row.get)()), "") << row.name; // "normal" was the priority of the new block
    EXPECT_EQ(narrow(child(tree.get(), L"Task")->GetNodeDescription()), "d");
}

TEST_F(FCProcessDefinitionReaderTest, TaskFlagsAreReadEachIntoItsMember) {
    for (FlagRow const& row : kFlags) {
        for (char const* const word : {"Yes", "yes", "true", "Y", "1"}) {
            CFCBPMBlockData* const task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"" + word + "\"/>");
            for (FlagRow const& other : kFlags)
                EXPECT_EQ((task->*other.get)(), row.get == other.get) << row.name << word << other.name;
            EXPECT_THAT(findings(), IsEmpty());
        }
        for (char const* const word : {"No", "false", "N", "0", "", "perhaps"}) {
            CFCBPMBlockData* const task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"" + word + "\"/>");
            EXPECT_FALSE((task->*row.get)()) << row.name << word;
            EXPECT_EQ(findings().size(), std::string(word) == "perhaps" ? 1u : 0u);
        }
    }
    CFCBPMBlockData* const task = readTask("<task name=\"T\" notify=\"Yes\"/>");
    EXPECT_FALSE(task->IsNotify()); // which stays in memory
}

TEST_F(FCProcessDefinitionReaderTest, TaskDatesAreReadEachIntoItsMember) {
    for (DateRow const& row : kDates) {
        CFCBPMBlockData* task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"5/3/2024T1:2:3\"/>");
        for (DateRow const& other : kDates)
            EXPECT_EQ((task->*other.get)(), row.get == other.get ? dateOf(2024, 3, 5) : TuDate())
                << row.name << other.name;
        EXPECT_THAT(findings(), IsEmpty());
        task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"\"/>");
        EXPECT_TRUE((task->*row.get)().IsEmpty());
        EXPECT_THAT(findings(), IsEmpty());
        task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"2024-03-05\"/>");
        EXPECT_TRUE((task->*row.get)().IsEmpty());
        EXPECT_THAT(findings(), ElementsAre("ValueNotRead [Task] <task> " + std::string(row.name) + " = 2024-03-05"));
        task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"99999999999/-99999999999/2024\"/>");
        EXPECT_EQ((task->*row.get)().getDay(), 32767);
        EXPECT_EQ((task->*row.get)().getMonth(), -32767);
    }
}

TEST_F(FCProcessDefinitionReaderTest, TaskNumbersAreReadEachIntoItsMemberAndStartAtZero) {
    for (NumberRow const& row : kNumbers) {
        CFCBPMBlockData* task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"-1.25\"/>");
        for (NumberRow const& other : kNumbers) {
            std::string const name = other.name;
            bool const repeats =
                (std::string(row.name) == "effort" && (name == "estimatedEffort" || name == "actualEffort")) ||
                (std::string(row.name) == "estimatedEffort" && name == "actualEffort");
            EXPECT_EQ((task->*other.get)(), row.get == other.get || repeats ? -1.25 : 0.0) << row.name << other.name;
        }
        task = readTask("<task name=\"T\" " + std::string(row.name) + "=\"much\"/>");
        EXPECT_EQ((task->*row.get)(), 0.0);
        EXPECT_THAT(findings(), ElementsAre("ValueNotRead [Task] <task> " + std::string(row.name) + " = much"));
    }
}

TEST_F(FCProcessDefinitionReaderTest, EffortsRepeatTheOneBefore) {
    CFCBPMBlockData* task = readTask("<task name=\"T\" effort=\"3\" actualEffort=\"5\"/>");
    EXPECT_EQ(task->GetEffort(), 3.0);
    EXPECT_EQ(task->GetEstimatedEffort(), 3.0);
    EXPECT_EQ(task->GetActEffort(), 5.0);
    task = readTask("<task name=\"T\" estimatedEffort=\"4\"/>");
    EXPECT_EQ(task->GetEffort(), 0.0);
    EXPECT_EQ(task->GetEstimatedEffort(), 4.0);
    EXPECT_EQ(task->GetActEffort(), 4.0);
}

TEST_F(FCProcessDefinitionReaderTest, TheVersionOfTheApplicationIsAWholeNumber) {
    EXPECT_EQ(readTask("<task name=\"T\" applicationVersion=\"17\"/>")->GetAppVersion(), 17);
    EXPECT_EQ(readTask("<task name=\"T\"/>")->GetAppVersion(), 0);
    EXPECT_EQ(readTask("<task name=\"T\" applicationVersion=\"99999999999\"/>")->GetAppVersion(), 2147483647);
    EXPECT_EQ(readTask("<task name=\"T\" applicationVersion=\"new\"/>")->GetAppVersion(), 0);
    EXPECT_THAT(findings(), ElementsAre("ValueNotRead [Task] <task> applicationVersion = new"));
}

TEST_F(FCProcessDefinitionReaderTest, AFormOnlySaysThatThereIsOne) {
    CFCBPMBlockData* task = readTask("<task name=\"T\" form=\"elsewhere/x.xhtml\"/>");
    EXPECT_TRUE(task->HasGui());
    EXPECT_THAT(narrow(task->GetHTMLScriptFileName()), HasSubstr("\\Task\\Task.html"));
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [Task] <task> form = elsewhere/x.xhtml"));
    task = readTask("<task name=\"T\" form=\"any/where/Task/Task.html\"/>");
    EXPECT_TRUE(task->HasGui());
    EXPECT_THAT(findings(), IsEmpty()); // that is where a form lies
    EXPECT_FALSE(readTask("<task name=\"T\" form=\"\"/>")->HasGui());
    EXPECT_FALSE(readTask("<task name=\"T\"/>")->HasGui());
}

TEST_F(FCProcessDefinitionReaderTest, TheSizeOfAFormMakesARectangle) {
    CFCBPMBlockData* task = readTask("<task name=\"T\" form_size=\"{width:640,height:480}\"/>");
    ASSERT_NE(task->GetGUIRect(), nullptr);
    EXPECT_EQ(task->GetGUIRect()->left, 0);
    EXPECT_EQ(task->GetGUIRect()->top, 0);
    EXPECT_EQ(task->GetGUIRect()->right, 640);
    EXPECT_EQ(task->GetGUIRect()->bottom, 480);
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_EQ(readTask("<task name=\"T\"/>")->GetGUIRect(), nullptr);
    EXPECT_EQ(readTask("<task name=\"T\" form_size=\"\"/>")->GetGUIRect(), nullptr);
    for (char const* const text : {"x", ":", ",", "640x480", "{width:640}", ",:"}) {
        task = readTask("<task name=\"T\" form_size=\"" + std::string(text) + "\"/>");
        ASSERT_NE(task->GetGUIRect(), nullptr) << text;
        EXPECT_EQ(task->GetGUIRect()->right, 0) << text;
        EXPECT_THAT(findings(), ElementsAre("ValueNotRead [Task] <task> form_size = " + std::string(text)));
    }
}

TEST_F(FCProcessDefinitionReaderTest, TheHierarchyPathOfATaskIsOfNoUse) {
    CFCBPMBlockData* const task = readTask("<task name=\"T\" hierarchyPath=\"A/B\"/>");
    EXPECT_EQ(narrow(dynamic_cast<CFCBPMTaskNode*>(child(tree.get(), L"Task"))->GetHierarchyPath()), "");
    EXPECT_EQ(narrow(task->GetTaskName()), "T");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, OnlyATaskGivesATaskItsName) {
    EXPECT_EQ(narrow(readTask("")->GetTaskName()), "");
    EXPECT_EQ(narrow(readTask("<task name=\"Work\"/>")->GetTaskName()), "Work");
    EXPECT_EQ(narrow(child(tree.get(), L"Task")->GetNodeId()), "Task");
}

TEST_F(FCProcessDefinitionReaderTest, ATaskStandsOnAnyNode) {
    tree = readInside("<start-state name=\"A\"><task name=\"T\" swimlane=\"s\"/></start-state><task name=\"Root\"/>");
    EXPECT_EQ(narrow(child(tree.get(), L"A")->GetBPMBlockData()->GetSwimLane()), "s");
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetTaskName()), "Root");
}

// --- Descriptions --------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, ADescriptionOfANodeReachesItsTaskToo) {
    CFCBPMBlockData* const task = readTask("<description>about</description>");
    EXPECT_EQ(narrow(task->GetTaskDescription()), "about");
    EXPECT_EQ(narrow(child(tree.get(), L"Task")->GetNodeDescription()), "about");
}

TEST_F(FCProcessDefinitionReaderTest, ADescriptionOfATaskDoesNotReachTheNode) {
    CFCBPMBlockData* const task =
        readTask("<description>node</description><task taskDescription=\"attribute\"><description>task</description>"
                 "</task>");
    EXPECT_EQ(narrow(task->GetTaskDescription()), "task");
    EXPECT_EQ(narrow(child(tree.get(), L"Task")->GetNodeDescription()), "node");
    EXPECT_EQ(narrow(readTask("<task taskDescription=\"attribute\"/>")->GetTaskDescription()), "attribute");
    EXPECT_EQ(narrow(readTask("<task taskDescription=\"attribute\"><description/></task>")->GetTaskDescription()), "");
}

TEST_F(FCProcessDefinitionReaderTest, ADescriptionBelowAnotherElementGoesToTheNodeAndItsTask) {
    for (char const* const around : {"event", "exception-handler", "timer", "handler"}) {
        CFCBPMBlockData* const task =
            readTask("<" + std::string(around) + "><description>d</description></" + around + ">");
        EXPECT_EQ(narrow(task->GetTaskDescription()), "d") << around;
        EXPECT_EQ(narrow(child(tree.get(), L"Task")->GetNodeDescription()), "d") << around;
    }
}

TEST_F(FCProcessDefinitionReaderTest, TheRootHasADescription) {
    tree = readInside("<description>all</description>");
    EXPECT_EQ(narrow(tree->GetNodeDescription()), "all");
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetTaskDescription()), "all");
}

TEST_F(FCProcessDefinitionReaderTest, AnEmptyDescriptionEmptiesThatOfTheNodeOnly) {
    CFCBPMBlockData* const task = readTask("<description>d</description><description></description>");
    EXPECT_EQ(narrow(task->GetTaskDescription()), "d");
    EXPECT_EQ(narrow(child(tree.get(), L"Task")->GetNodeDescription()), "");
}

TEST_F(FCProcessDefinitionReaderTest, DescriptionsKeepTheirWhiteSpaceAndCData) {
    CFCBPMBlockData* const task = readTask("<description> a <![CDATA[<b>]]> </description>");
    EXPECT_EQ(narrow(task->GetTaskDescription()), " a <b> ");
}

// --- Events, exceptions, timers, reminders -------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, AnActionOfAnEventIsARecordOfItsType) {
    CFCBPMBlockData* const task =
        readTask("<event type=\"task-start\"><action name=\"a\" class=\"c\"/><action name=\"b\" class=\"d\"/></event>"
                 "<event type=\"task-end\"><action/></event>");
    auto const records = recordsOf<CFCEventActionData>(task->GetEventList());
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(narrow(records[0]->GetActionName()), "a");
    EXPECT_EQ(narrow(records[0]->GetClassNameStr()), "c");
    EXPECT_EQ(narrow(records[0]->GetActionType()), "task-start");
    EXPECT_EQ(records[0]->GetNodeType(), 175);
    EXPECT_EQ(records[0]->GetParentNode(), child(tree.get(), L"Task"));
    EXPECT_EQ(narrow(records[1]->GetActionName()), "b");
    EXPECT_EQ(narrow(records[1]->GetActionType()), "task-start");
    EXPECT_EQ(narrow(records[2]->GetActionName()), "");
    EXPECT_EQ(narrow(records[2]->GetActionType()), "task-end");
    EXPECT_EQ(narrow(task->GetEventType()), "task-end"); // that of the last one
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, AnEventWithoutTypeEmptiesTheTypeOfTheBlock) {
    CFCBPMBlockData* const task = readTask("<event type=\"t\"/><event><action name=\"a\"/></event>");
    EXPECT_EQ(narrow(task->GetEventType()), "");
    EXPECT_EQ(narrow(only(recordsOf<CFCEventActionData>(task->GetEventList()))->GetActionType()), "");
}

TEST_F(FCProcessDefinitionReaderTest, AScriptOfAnEventHasATypeOfItsOwn) {
    CFCBPMBlockData* const task = readTask("<event type=\"e\"><script name=\"s\" class=\"c\" type=\"t\">code</script>"
                                           "<script name=\"u\"/></event>");
    auto const records = recordsOf<CFCEventActionData>(task->GetScriptEventList());
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(narrow(records[0]->GetActionName()), "s");
    EXPECT_EQ(narrow(records[0]->GetClassNameStr()), "c");
    EXPECT_EQ(narrow(records[0]->GetActionType()), "t");
    EXPECT_EQ(narrow(records[0]->GetActionValue()), "code");
    EXPECT_EQ(narrow(records[0]->GetActionExpression()), "");
    EXPECT_EQ(records[0]->GetNodeType(), 0); // a bare record
    EXPECT_EQ(records[0]->GetParentNode(), nullptr);
    EXPECT_EQ(narrow(records[1]->GetActionType()), "");
    EXPECT_EQ(narrow(records[1]->GetActionValue()), "");
    EXPECT_THAT(recordsOf<CFCEventActionData>(task->GetEventList()), IsEmpty());
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, ExpressionsAreNotRead) {
    readTask("<event><action expression=\"a\"/><script expression=\"b\"/><script expression=\"\"/></event>"
             "<exception-handler><action expression=\"c\">text</action><script expression=\"d\"/></exception-handler>");
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [Task] <action> expression = a",
                                        "AttributePassedOver [Task] <script> expression = b",
                                        "AttributePassedOver [Task] <action> expression = c",
                                        "TextPassedOver [Task] <action> = text",
                                        "AttributePassedOver [Task] <script> expression = d"));
}

TEST_F(FCProcessDefinitionReaderTest, AModulePathIsReadInAndOutOfAnAction) {
    CFCBPMBlockData* task = readTask("<event type=\"task-start\"><action name=\"action\" class=\"c\"><modulePath>A.B"
                                     "</modulePath><function>run</function></action></event>");
    EXPECT_EQ(narrow(task->GetModulePath()), "A.B");
    EXPECT_EQ(narrow(only(recordsOf<CFCEventActionData>(task->GetEventList()))->GetActionFunction()), "run");
    EXPECT_THAT(findings(), IsEmpty());
    task = readTask("<modulePath>A<action>B</action></modulePath>");
    EXPECT_EQ(narrow(task->GetModulePath()), "B"); // an action inside takes over
    EXPECT_EQ(narrow(readTask("<modulePath>A</modulePath><modulePath/>")->GetModulePath()), "");
}

TEST_F(FCProcessDefinitionReaderTest, AFunctionGoesToTheLastEventAction) {
    CFCBPMBlockData* task = readTask("<event><action name=\"a\"/><action name=\"b\"/></event><function>f</function>");
    auto records = recordsOf<CFCEventActionData>(task->GetEventList());
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(narrow(records[0]->GetActionFunction()), "");
    EXPECT_EQ(narrow(records[1]->GetActionFunction()), "f");
    readTask("<function>f</function>");
    EXPECT_THAT(findings(), ElementsAre("TextPassedOver [Task] <function> = f"));
    task = readTask("<event><action/></event><function>f<function>g</function></function>");
    EXPECT_EQ(narrow(only(recordsOf<CFCEventActionData>(task->GetEventList()))->GetActionFunction()), "g");
}

TEST_F(FCProcessDefinitionReaderTest, AHandlerIsAnEventActionOfThatName) {
    CFCBPMBlockData* const task = readTask("<handler class=\"c\" name=\"n\"><modulePath>m</modulePath></handler>");
    CFCEventActionData* const record = only(recordsOf<CFCEventActionData>(task->GetEventList()));
    EXPECT_EQ(narrow(record->GetActionName()), "handler");
    EXPECT_EQ(narrow(record->GetClassNameStr()), "c");
    EXPECT_EQ(narrow(record->GetActionType()), "");
    EXPECT_EQ(narrow(task->GetModulePath()), "m");
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [Task] <handler> name = n"));
}

TEST_F(FCProcessDefinitionReaderTest, ExceptionHandlersHoldActionsAndScripts) {
    CFCBPMBlockData* const task =
        readTask("<exception-handler exception-class=\"E\"><action name=\"a\" class=\"c\"/>"
                 "<script name=\"s\" class=\"d\">code</script><modulePath>m</modulePath></exception-handler>");
    EXPECT_EQ(narrow(task->GetExceptionClass()), "E");
    auto* const action = only(recordsOf<CFCExceptionActionData>(task->GetActionExceptionList()));
    EXPECT_EQ(narrow(action->GetActionName()), "a");
    EXPECT_EQ(narrow(action->GetClassNameStr()), "c");
    EXPECT_EQ(narrow(action->GetActionValue()), "");
    EXPECT_EQ(action->GetNodeType(), 175);
    auto* const script = only(recordsOf<CFCExceptionActionData>(task->GetScriptExceptionList()));
    EXPECT_EQ(narrow(script->GetActionName()), "s");
    EXPECT_EQ(narrow(script->GetClassNameStr()), "d");
    EXPECT_EQ(narrow(script->GetActionValue()), "code");
    EXPECT_EQ(script->GetNodeType(), 0);
    EXPECT_EQ(narrow(task->GetModulePath()), "m");
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_EQ(narrow(readTask("<exception-handler exception-class=\"E\"/><exception-handler/>")->GetExceptionClass()),
              "");
}

TEST_F(FCProcessDefinitionReaderTest, TheElementAroundIsTakenInAnyCase) {
    CFCBPMTaskNode* task = nullptr;
    // Only elements of the exact names are entered, so these stand at the root of what is loaded.
    auto const load = [&](std::string const& text) {
        flowmere::XmlDocumentHolder file;
        scratch.write("part.xml", text);
        file.document = flowmere::parseXmlFile(scratch.text("part.xml"));
        tree = newWorkflow();
        task = addTask(tree.get(), L"T");
        reader.SetNodeFactory(factory);
        EXPECT_TRUE(reader.Load(file.document->getDocumentElement(), task));
    };
    load("<EVENT type=\"e\"><action name=\"a\"/><script name=\"s\"/></EVENT>");
    EXPECT_EQ(narrow(only(recordsOf<CFCEventActionData>(task->GetEventList()))->GetActionType()), "e");
    EXPECT_EQ(recordsOf<CFCEventActionData>(task->GetScriptEventList()).size(), 1u);
    load("<Exception-Handler><action/><script/></Exception-Handler>");
    EXPECT_EQ(recordsOf<CFCExceptionActionData>(task->GetActionExceptionList()).size(), 1u);
    EXPECT_EQ(recordsOf<CFCExceptionActionData>(task->GetScriptExceptionList()).size(), 1u);
    load("<MODULEPATH><action>m</action></MODULEPATH>");
    EXPECT_EQ(narrow(task->GetModulePath()), "m");
    load("<TASK><description>d</description></TASK>");
    EXPECT_EQ(narrow(task->GetTaskDescription()), "d");
    EXPECT_EQ(narrow(task->GetNodeDescription()), "");
}

TEST_F(FCProcessDefinitionReaderTest, ActionsAndScriptsElsewhereAreDropped) {
    CFCBPMBlockData* const task =
        readTask("<action name=\"a\" class=\"c\"><modulePath>m</modulePath></action><script name=\"s\">x</script>"
                 "<timer><action name=\"t\"/><script name=\"u\"/></timer>"
                 "<task name=\"T\"><action name=\"v\"/><script name=\"w\"/></task>"
                 "<handler><action name=\"x\"/></handler>");
    EXPECT_EQ(recordsOf<CFCEventActionData>(task->GetEventList()).size(), 1u); // the handler itself
    EXPECT_THAT(recordsOf<CFCEventActionData>(task->GetScriptEventList()), IsEmpty());
    EXPECT_THAT(recordsOf<CFCExceptionActionData>(task->GetActionExceptionList()), IsEmpty());
    EXPECT_THAT(recordsOf<CFCTimerActionData>(task->GetTimerList()), IsEmpty());
    EXPECT_THAT(recordsOf<CFCReminderData>(task->GetReminderList()), IsEmpty());
    EXPECT_EQ(narrow(task->GetModulePath()), "");
    EXPECT_THAT(findings(), ElementsAre("ElementPassedOver [Task] <action> a", "ElementPassedOver [Task] <script> s",
                                        "ElementPassedOver [Task] <action> t", "ElementPassedOver [Task] <script> u",
                                        "ElementPassedOver [Task] <action> v", "ElementPassedOver [Task] <script> w",
                                        "ElementPassedOver [Task] <action> x"));
}

TEST_F(FCProcessDefinitionReaderTest, AReminderHasADateAndRounds) {
    CFCBPMBlockData* task = readTask("<task name=\"T\"><reminder duedate=\"5/3/2024\" repeat=\"3\"/></task>");
    EXPECT_TRUE(task->HasReminder());
    EXPECT_EQ(task->GetReminderDate(), dateOf(2024, 3, 5));
    EXPECT_EQ(task->GetReminderRepeat(), 3);
    EXPECT_THAT(findings(), IsEmpty());
    for (char const* const repeat : {"0", "-2", ""}) {
        task = readTask("<task name=\"T\"><reminder repeat=\"" + std::string(repeat) + "\"/></task>");
        EXPECT_TRUE(task->HasReminder());
        EXPECT_TRUE(task->GetReminderDate().IsEmpty());
        EXPECT_EQ(task->GetReminderRepeat(), 0) << repeat;
    }
    EXPECT_FALSE(readTask("<task name=\"T\"/>")->HasReminder());
}

TEST_F(FCProcessDefinitionReaderTest, NothingBelowAReminderIsRead) {
    CFCBPMBlockData* const task = readTask(
        "<task name=\"T\"><reminder duedate=\"soon\" repeat=\"often\"><action name=\"a\"/><modulePath>m</modulePath>"
        "</reminder></task>");
    EXPECT_EQ(narrow(task->GetModulePath()), "");
    EXPECT_THAT(findings(),
                ElementsAre("ValueNotRead [Task] <reminder> duedate = soon",
                            "ValueNotRead [Task] <reminder> repeat = often", "ElementPassedOver [Task] <action> a",
                            "ElementPassedOver [Task] <modulePath>"));
}

TEST_F(FCProcessDefinitionReaderTest, ATimerWithADateIsReadWhole) {
    CFCBPMBlockData* const task = readTask(
        "<timer duedate=\"5/3/2024T10:20:30\" name=\"n\" transition=\"t\" repeat=\"4\"><modulePath>m</modulePath>"
        "</timer>");
    EXPECT_EQ(task->GetTimerDueDate(), dateOf(2024, 3, 5, 10, 20, 30));
    EXPECT_EQ(narrow(task->GetTimerName()), "n");
    EXPECT_EQ(narrow(task->GetTimerTransition()), "t");
    EXPECT_EQ(task->GetTimerRepeat(), 0);
    EXPECT_EQ(narrow(task->GetModulePath()), "m");
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [Task] <timer> repeat = 4"));
}

TEST_F(FCProcessDefinitionReaderTest, ATimerWithoutDateIsBare) {
    for (char const* const due : {"", "duedate=\"\"", "due-date=\"\""}) {
        CFCBPMBlockData* const task =
            readTask("<timer " + std::string(due) + " name=\"n\" transition=\"t\"><modulePath>m</modulePath></timer>");
        EXPECT_TRUE(task->GetTimerDueDate().IsEmpty());
        EXPECT_EQ(narrow(task->GetTimerName()), "");
        EXPECT_EQ(narrow(task->GetTimerTransition()), "");
        EXPECT_EQ(narrow(task->GetModulePath()), "m"); // what it holds is read
        EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [Task] <timer> name = n",
                                            "AttributePassedOver [Task] <timer> transition = t"));
    }
}

TEST_F(FCProcessDefinitionReaderTest, ATimerWithoutDateEmptiesTheDateBefore) {
    CFCBPMBlockData* const task = readTask("<timer duedate=\"5/3/2024\" name=\"n\"/><timer name=\"o\"/>");
    EXPECT_TRUE(task->GetTimerDueDate().IsEmpty());
    EXPECT_EQ(narrow(task->GetTimerName()), "n");
}

TEST_F(FCProcessDefinitionReaderTest, ATimeSpanIsNoDateButTheTimerHasItsName) {
    CFCBPMBlockData* const task = readTask("<timer duedate=\"20 seconds\" name=\"n\"/>");
    EXPECT_TRUE(task->GetTimerDueDate().IsEmpty());
    EXPECT_EQ(narrow(task->GetTimerName()), "n");
    EXPECT_THAT(findings(), ElementsAre("ValueNotRead [Task] <timer> duedate = 20 seconds"));
}

TEST_F(FCProcessDefinitionReaderTest, ASubProcessNamesTheProcessOfTheBlockAround) {
    CFCBPMBlockData* const task = readTask(
        "<sub-process name=\"P\" hierarchyPath=\"A/B\" version=\"2\"><x/></sub-process><sub-process name=\"\"/>");
    EXPECT_EQ(narrow(task->GetAssociatedSubProcess()), "P");
    EXPECT_THAT(findings(),
                ElementsAre("AttributePassedOver [Task] <sub-process> version = 2", "ElementPassedOver [Task] <x>"));
}

TEST_F(FCProcessDefinitionReaderTest, RecordsOfTheRootHaveNoParent) {
    tree = readInside("<event type=\"e\"><action name=\"a\"/></event><transition to=\"x\"/>");
    CFCBPMBlockData* const task = tree->GetBPMBlockData();
    EXPECT_EQ(only(recordsOf<CFCEventActionData>(task->GetEventList()))->GetParentNode(), nullptr);
    EXPECT_EQ(only(transitionsOf(tree.get()))->GetParentNode(), nullptr);
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
}

// --- Transitions ---------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, TransitionsAreReadWithTheirHandles) {
    tree = readInside("<fork name=\"F\"><transition to=\"J\" name=\"F.J\" label=\"go\" inport=\"6\" outport=\"2\" "
                      "type=\"1\"/><transition to=\"J\"/></fork><join name=\"J\"/>");
    auto const transitions = transitionsOf(child(tree.get(), L"F"));
    ASSERT_EQ(transitions.size(), 2u);
    EXPECT_EQ(narrow(transitions[0]->GetTransitionTo()), "J");
    EXPECT_EQ(narrow(transitions[0]->GetTransitionName()), "F.J");
    EXPECT_EQ(narrow(transitions[0]->GetTransitionCaption()), "go");
    EXPECT_EQ(transitions[0]->GetInport(), 6);
    EXPECT_EQ(transitions[0]->GetOutport(), 2);
    EXPECT_EQ(transitions[0]->GetType(), 1);
    EXPECT_EQ(transitions[0]->GetNodeType(), 175);
    EXPECT_EQ(narrow(transitions[1]->GetTransitionName()), "");
    EXPECT_EQ(transitions[1]->GetInport(), 8);
    EXPECT_EQ(transitions[1]->GetOutport(), 4);
}

TEST_F(FCProcessDefinitionReaderTest, TheTypeOfATransitionIsThatOfTheProject) {
    for (auto const& [type, value] :
         std::vector<std::pair<std::string, int>>{{"BPT", 0}, {"TASK", 1}, {"MSP", 2}, {"APPLICATION", 6}}) {
        tree = readInside("<type>" + type + "</type><fork name=\"F\"><transition to=\"F\" type=\"3\"/></fork>");
        EXPECT_EQ(only(transitionsOf(child(tree.get(), L"F")))->GetType(), value);
        EXPECT_EQ(only(connectorsOf(tree.get()))->GetConnectorType(), value);
        EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [F] <transition> type = 3"));
    }
    tree = readInside("<fork name=\"F\"><transition to=\"F\" type=\"1\"/></fork>");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, TheTypeOfATransitionIsTheOneHeldAtThatMoment) {
    tree = readInside("<transition to=\"a\"/><type>MSP</type><transition to=\"b\"/>");
    auto const transitions = transitionsOf(tree.get());
    ASSERT_EQ(transitions.size(), 2u);
    EXPECT_EQ(transitions[0]->GetType(), 1);
    EXPECT_EQ(transitions[1]->GetType(), 2);
}

TEST_F(FCProcessDefinitionReaderTest, HandlesThatAreNoNumbersCountAsZero) {
    tree = readInside("<fork name=\"F\"><transition to=\"F\" inport=\"\" outport=\"top\"/></fork>");
    EXPECT_EQ(only(transitionsOf(child(tree.get(), L"F")))->GetInport(), 0);
    EXPECT_EQ(only(transitionsOf(child(tree.get(), L"F")))->GetOutport(), 0);
    EXPECT_THAT(findings(), ElementsAre("ValueNotRead [F] <transition> outport = top"));
}

TEST_F(FCProcessDefinitionReaderTest, NothingBelowATransitionIsReadButPoints) {
    tree = readInside("<fork name=\"F\"><transition to=\"F\" condition=\"x\">text<action name=\"a\"/><condition/>"
                      "<POINT Location_X=\"1\" Location_Y=\"2\"/></transition></fork>");
    EXPECT_THAT(recordsOf<CFCEventActionData>(child(tree.get(), L"F")->GetBPMBlockData()->GetEventList()), IsEmpty());
    EXPECT_THAT(findings(), ElementsAre("AttributePassedOver [F] <transition> condition = x",
                                        "TextPassedOver [F] <transition> = text", "ElementPassedOver [F] <action> a",
                                        "ElementPassedOver [F] <condition>"));
}

namespace {

std::string points(int count, int zeroAt = -1) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += "<POINT Location_X=\"" + number(i == zeroAt ? 0 : i + 1) + "\" Location_Y=\"" + number(-i) + "\"/>";
    return all;
}

// The points of the route up to the first with x 0.
std::string routeOf(CFCTransitionData* transition) {
    std::string all;
    for (int i = 0; i < CFCTransitionData::kPointCount && transition->GetPoints()[i].x != 0; ++i)
        all += number(transition->GetPoints()[i].x) + "," + number(transition->GetPoints()[i].y) + " ";
    return all;
}

} // namespace

TEST_F(FCProcessDefinitionReaderTest, PointsAreReadInOrder) {
    RoutingFactory routing;
    factory = &routing;
    tree = readInside("<fork name=\"F\"><transition to=\"F\">" + points(3) + "</transition></fork>");
    EXPECT_EQ(routeOf(only(transitionsOf(child(tree.get(), L"F")))), "1,0 2,-1 3,-2 ");
    auto* const connector = dynamic_cast<RoutedConnector*>(only(connectorsOf(tree.get())));
    ASSERT_NE(connector, nullptr);
    ASSERT_EQ(connector->points.size(), 3u);
    EXPECT_EQ(connector->points[2].x, 3);
    EXPECT_EQ(connector->points[2].y, -2);
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, APointWithoutXEndsTheRoute) {
    RoutingFactory routing;
    factory = &routing;
    tree = readInside("<fork name=\"F\"><transition to=\"F\">" + points(4, 2) + "</transition></fork>");
    EXPECT_EQ(routeOf(only(transitionsOf(child(tree.get(), L"F")))), "1,0 2,-1 ");
    EXPECT_EQ(dynamic_cast<RoutedConnector*>(only(connectorsOf(tree.get())))->points.size(), 2u);
    EXPECT_THAT(findings(), ElementsAre("RouteCut [F] <transition> = 2"));
    tree = readInside("<fork name=\"F\"><transition to=\"F\"><POINT/></transition></fork>");
    EXPECT_EQ(routeOf(only(transitionsOf(child(tree.get(), L"F")))), "");
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, AFullRouteHasTwentyFivePoints) {
    RoutingFactory routing;
    factory = &routing;
    for (int const count : {24, 25, 26, 100}) {
        tree = readInside("<fork name=\"F\"><transition to=\"F\">" + points(count) + "</transition></fork>");
        auto* const connector = dynamic_cast<RoutedConnector*>(only(connectorsOf(tree.get())));
        ASSERT_NE(connector, nullptr);
        EXPECT_EQ(connector->points.size(), static_cast<std::size_t>(std::min(count, 25)));
        EXPECT_EQ(connector->points.back().x, std::min(count, 25));
        if (count > 25)
            EXPECT_THAT(findings(), ElementsAre("TooManyPoints [F] <transition> = " + number(count - 25)));
        else
            EXPECT_THAT(findings(), IsEmpty());
    }
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, PointsNeedATransition) {
    flowmere::XmlDocumentHolder file;
    scratch.write("a.xml", "<transition><POINT Location_X=\"5\"/></transition>");
    file.document = flowmere::parseXmlFile(scratch.text("a.xml"));
    EXPECT_TRUE(reader.LoadPoints(file.document->getDocumentElement(), nullptr));
    CFCTransitionData transition;
    EXPECT_TRUE(reader.LoadPoints(nullptr, &transition));
    EXPECT_EQ(routeOf(&transition), "");
    EXPECT_TRUE(reader.LoadPoints(file.document->getDocumentElement(), &transition));
    EXPECT_EQ(routeOf(&transition), "5,0 ");
}

// --- Connectors ----------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, TransitionsBecomeConnectorsOfTheParent) {
    Container container;
    reader.SetContainer(&container);
    tree = readInside(
        "<start-state name=\"A\"><transition to=\"b\" label=\"go\" inport=\"6\" outport=\"2\"/></start-state>"
        "<task-node name=\"B\"/>");
    CFCConnector* const connector = only(connectorsOf(tree.get()));
    EXPECT_EQ(connector->GetNodeType(), 68);
    EXPECT_EQ(connector->GetStartObject(), child(tree.get(), L"A"));
    EXPECT_EQ(connector->GetEndObject(), child(tree.get(), L"B")); // found without regard to case
    EXPECT_EQ(connector->GetStartHandle(), 6);
    EXPECT_EQ(connector->GetEndHandle(), 2);
    EXPECT_EQ(narrow(connector->GetStartNodeId()), "A");
    EXPECT_EQ(narrow(connector->GetEndNodeId()), "B");
    EXPECT_EQ(narrow(connector->GetStartPortName()), "");
    EXPECT_EQ(narrow(connector->GetCaption()), "go");
    EXPECT_TRUE(connector->IsBPMConnector());
    EXPECT_THAT(container.attached, ElementsAre(connector));
    EXPECT_EQ(transitionsOf(child(tree.get(), L"A")).size(), 1u); // they stay
}

TEST_F(FCProcessDefinitionReaderTest, AProcessDoesNotFlowThroughDefaultHandles) {
    tree = readInside("<start-state name=\"A\"><transition to=\"B\"/></start-state><task-node name=\"B\"><transition "
                      "to=\"C\" inport=\"6\"/></task-node><end-state name=\"C\"/>");
    auto* const a = dynamic_cast<CFCBlockNode*>(child(tree.get(), L"A"));
    auto* const b = dynamic_cast<CFCBlockNode*>(child(tree.get(), L"B"));
    EXPECT_EQ(a->GetNextConnectedBlock(), nullptr);
    EXPECT_EQ(b->GetNextConnectedBlock(), child(tree.get(), L"C"));
}

TEST_F(FCProcessDefinitionReaderTest, AGroupIsTheScopeOfItsTransitions) {
    tree =
        readInside("<task-node name=\"A\"><transition to=\"B\"/></task-node><super-state name=\"G\"><fork name=\"B\">"
                   "<transition to=\"A\"/><transition to=\"C\"/></fork><join name=\"C\"/></super-state>");
    EXPECT_EQ(connectionsOf(tree.get()), "-");
    EXPECT_EQ(connectionsOf(child(tree.get(), L"G")), "- B-C");
    EXPECT_THAT(findings(), ElementsAre("TransitionWithoutTarget [A] <transition> = B",
                                        "TransitionWithoutTarget [G.B] <transition> = A"));
    EXPECT_EQ(reader.GetFindings()[1].node, child(child(tree.get(), L"G"), L"B"));
}

TEST_F(FCProcessDefinitionReaderTest, ATransitionWithoutTargetHasAConnectorWithoutEnds) {
    Container container;
    reader.SetContainer(&container);
    tree = readInside("<fork name=\"F\"><transition to=\"no\" name=\"F.no\" label=\"x\" inport=\"1\" outport=\"2\"/>"
                      "<transition to=\"\" label=\"y\"/></fork>");
    CFCConnector* const connector = only(connectorsOf(tree.get())); // the second is like the first
    EXPECT_EQ(connector->GetStartObject(), nullptr);
    EXPECT_EQ(connector->GetEndObject(), nullptr);
    EXPECT_EQ(connector->GetStartHandle(), 1);
    EXPECT_EQ(connector->GetEndHandle(), 2);
    EXPECT_EQ(narrow(connector->GetCaption()), "x");
    ASSERT_EQ(container.attached.size(), 2u);
    EXPECT_EQ(container.attached[0], connector);
    EXPECT_EQ(narrow(dynamic_cast<CFCConnector*>(container.attached[1])->GetCaption()), "y");
    EXPECT_THAT(findings(), ElementsAre("TransitionWithoutTarget [F] <transition> F.no = no",
                                        "TransitionWithoutTarget [F] <transition>"));
    container.keepLoose(tree.get());
    EXPECT_EQ(container.loose.size(), 1u);
}

TEST_F(FCProcessDefinitionReaderTest, TwoTransitionsToOneBlockShareAConnector) {
    Container container;
    reader.SetContainer(&container);
    tree = readInside("<fork name=\"F\"><transition to=\"J\" name=\"a\"/><transition to=\"J\" name=\"b\"/></fork>"
                      "<join name=\"J\"/>");
    EXPECT_EQ(connectionsOf(tree.get()), "F-J");
    EXPECT_EQ(container.attached.size(), 2u); // both are attached
    EXPECT_THAT(findings(), ElementsAre("TransitionRepeated [F] <transition> b = J"));
    container.keepLoose(tree.get());
    EXPECT_EQ(container.loose.size(), 1u);
}

TEST_F(FCProcessDefinitionReaderTest, WithoutContainerConnectorsThatNoListTakesGo) {
    RefusingFactory counting({});
    factory = &counting;
    tree = readInside("<fork name=\"F\"><transition to=\"J\"/><transition to=\"J\"/><transition to=\"a\"/><transition "
                      "to=\"b\"/></fork><join name=\"J\"/>");
    EXPECT_EQ(connectionsOf(tree.get()), "F-J -");
    EXPECT_EQ(counting.made[68], 4);
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, AFactoryWithoutConnectorsMakesNone) {
    RefusingFactory refusing({68});
    factory = &refusing;
    tree = readInside("<fork name=\"F\"><transition to=\"J\" name=\"n\"/></fork><join name=\"J\"/>");
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
    EXPECT_THAT(findings(), ElementsAre("ConnectorNotMade [F] <transition> n = J"));
    factory = &plainFactory;
}

namespace {

// Gives another node where a connector is asked for.
class NoConnectorFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int kind) override { return CFCNodeFactory::Create(kind == 68 ? 71 : kind); }
};

} // namespace

TEST_F(FCProcessDefinitionReaderTest, AConnectorOfAnotherClassIsNone) {
    NoConnectorFactory other;
    factory = &other;
    tree = readInside("<fork name=\"F\"><transition to=\"F\"/></fork>");
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, ChildrenWithoutWorkflowDataAreNoStart) {
    tree = newWorkflow();
    addChild(tree.get(), 57, L"Plain");
    addTask(tree.get(), L"A")->CreateNewTransition()->SetTransitionTo(L"Plain");
    reader.SetNodeFactory(factory);
    reader.UpdateConnector(tree.get());
    EXPECT_EQ(connectionsOf(tree.get()), "A-Plain");
    reader.UpdateConnector(nullptr);
    reader.UpdateConnectors(nullptr);
}

TEST_F(FCProcessDefinitionReaderTest, AFolderHoldsNoConnectors) {
    tree = newWorkflow();
    IFCNode* const folder = addChild(tree.get(), 71, L"");
    addTask(folder, L"A")->CreateNewTransition()->SetTransitionTo(L"A");
    reader.SetNodeFactory(factory);
    reader.UpdateConnectors(tree.get());
    EXPECT_EQ(folder->GetConnectorList(), nullptr);
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, TheFirstSubProcessEndsTheConnectorsOfGroups) {
    // The chain is the reverse of the file, so that groups above the sub-process lose theirs.
    writeFolder("flow", "<super-state name=\"Above\"><fork name=\"A\"><transition to=\"A\"/></fork></super-state>"
                        "<super-state name=\"Empty\"><fork name=\"A\"/></super-state>"
                        "<task-node name=\"S\" nodeType=\"spawningSubProcess\"><transition to=\"Below\"/></task-node>"
                        "<super-state name=\"Below\"><fork name=\"B\"><transition to=\"B\"/></fork></super-state>");
    writeFolder("flow/S", "<fork name=\"C\"><transition to=\"C\"/></fork>");
    tree = read();
    EXPECT_EQ(connectionsOf(tree.get()), "S-Below");
    EXPECT_EQ(connectionsOf(child(tree.get(), L"Above")), "");
    EXPECT_EQ(connectionsOf(child(tree.get(), L"S")), "C-C"); // by its own file
    EXPECT_EQ(connectionsOf(child(tree.get(), L"Below")), "B-B");
    EXPECT_THAT(findings(), ElementsAre("TransitionsUnconnected [Above]"));
    EXPECT_EQ(reader.GetFindings().front().node, child(tree.get(), L"Above"));
}

TEST_F(FCProcessDefinitionReaderTest, ASubProcessInAGroupEndsTheWalkInThatGroupOnly) {
    std::string const inner = "<fork name=\"A\"><transition to=\"A\"/></fork>";
    writeFolder("flow", "<super-state name=\"I\"><fork name=\"B\"><transition to=\"B\"/></fork></super-state>"
                        "<super-state name=\"G\"><super-state name=\"H\">" +
                            inner + "<super-state name=\"K\">" + inner +
                            "</super-state></super-state><task-node name=\"S\" nodeType=\"basicSubProcess\"/>"
                            "</super-state>");
    writeFolder("flow/G/S", "");
    tree = read();
    IFCNode* const h = child(child(tree.get(), L"G"), L"H");
    EXPECT_EQ(connectionsOf(h), "");
    EXPECT_EQ(connectionsOf(child(h, L"K")), "");
    EXPECT_EQ(connectionsOf(child(tree.get(), L"I")), "B-B");
    EXPECT_THAT(findings(), ElementsAre("TransitionsUnconnected [G.H]", "TransitionsUnconnected [G.H.K]"));
}

TEST_F(FCProcessDefinitionReaderTest, OfSubProcessesBehindAnotherTheInsideIsConnectedByItsFile) {
    writeFolder("flow", "<task-node name=\"R\" nodeType=\"basicSubProcess\"/><task-node name=\"S\" "
                        "nodeType=\"basicSubProcess\"/>");
    for (char const* const folder : {"flow/R", "flow/S"})
        writeFolder(folder, "<fork name=\"A\"><transition to=\"A\"/></fork>");
    tree = read();
    EXPECT_EQ(connectionsOf(child(tree.get(), L"R")), "A-A");
    EXPECT_EQ(connectionsOf(child(tree.get(), L"S")), "A-A");
    EXPECT_THAT(findings(), IsEmpty());
}

// --- Sub-processes -------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, ASubProcessIsReadFromItsOwnFolder) {
    for (char const* const type :
         {"iteratingLoopSubProcess", "decisionLoopSubProcess", "spawningSubProcess", "basicSubProcess"}) {
        writeFolder("flow", "<task-node name=\"S\" label=\"Sub\" nodeType=\"" + std::string(type) +
                                "\"><task name=\"T\"/><transition to=\"S\"/></task-node>");
        writeFolder("flow/S",
                    "<description>inner</description><fork name=\"A\"><transition to=\"B\"/></fork>"
                    "<join name=\"B\"/>",
                    "<root-container name=\"Drawn\"><node name=\"A\" width=\"5\" height=\"6\"/></root-container>");
        tree = read();
        IFCNode* const block = child(tree.get(), L"S");
        EXPECT_EQ(outlineOf(block), "156 A, 157 B");
        EXPECT_EQ(connectionsOf(block), "A-B");
        EXPECT_EQ(connectionsOf(tree.get()), "S-S");
        EXPECT_EQ(narrow(block->GetNodeCaption()), "Drawn"); // the layout of its own file
        EXPECT_EQ(narrow(block->GetNodeDescription()), "inner");
        EXPECT_EQ(narrow(block->GetBPMBlockData()->GetTaskName()), "T");
        EXPECT_EQ(child(block, L"A")->GetTuRect()->right, 5);
        EXPECT_THAT(findings(), IsEmpty());
    }
}

TEST_F(FCProcessDefinitionReaderTest, FoldersOfSubProcessesLieBelowTheBaseFolderAtAnyDepth) {
    writeFolder("flow", "<super-state name=\"G\"><task-node name=\"S\" nodeType=\"basicSubProcess\"/></super-state>");
    writeFolder("flow/G/S", "<task-node name=\"T\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/G/S/T",
                "<super-state name=\"H\"><task-node name=\"U\" nodeType=\"basicSubProcess\"/></super-state>");
    writeFolder("flow/G/S/T/H/U", "<end-state name=\"E\"/>");
    tree = read();
    IFCNode* const t = child(child(child(tree.get(), L"G"), L"S"), L"T");
    EXPECT_EQ(outlineOf(child(child(t, L"H"), L"U")), "155 E");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, PointsInANameAreFolders) {
    writeFolder("flow", "<task-node name=\"a.b\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/a/b", "<end-state name=\"E\"/>");
    tree = read();
    EXPECT_EQ(outlineOf(child(tree.get(), L"a.b")), "155 E");
}

TEST_F(FCProcessDefinitionReaderTest, ANodeOfATreeGivesItsPathToTheFolders) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/P/S", "<end-state name=\"E\"/>");
    tree = newWorkflow();
    tree->SetNodeId(L"P");
    IFCNode* node = tree.get();
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.Parse(definitionPath(), &node, 16));
    EXPECT_EQ(outlineOf(child(tree.get(), L"S")), "155 E");
}

TEST_F(FCProcessDefinitionReaderTest, AMissingNestedFolderLeavesTheBlockAsItIs) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"><task name=\"T\"/><transition to=\"S\"/>"
                        "</task-node><end-state name=\"E\"/>");
    tree = read();
    IFCNode* const block = child(tree.get(), L"S");
    EXPECT_EQ(block->GetNodeType(), 165);
    EXPECT_EQ(outlineOf(block), "");
    EXPECT_EQ(narrow(block->GetBPMBlockData()->GetTaskName()), "T");
    EXPECT_EQ(connectionsOf(tree.get()), "S-S");
    EXPECT_THAT(findings(), ElementsAre("NestedFolderMissing [S] <task-node>"));
    EXPECT_EQ(reader.GetFindings().front().file, path("flow/S/processdefinition.xml"));
    EXPECT_EQ(reader.GetFindings().front().node, block);
}

TEST_F(FCProcessDefinitionReaderTest, ABrokenNestedFileIsToldWithItsPlace) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"><task name=\"T\"/></task-node>");
    scratch.write("flow/S/processdefinition.xml", "<process-definition>\n  <fork\n");
    tree = read();
    EXPECT_EQ(narrow(child(tree.get(), L"S")->GetBPMBlockData()->GetTaskName()), "T");
    EXPECT_THAT(findings(), ElementsAre("NestedFileBroken [S]"));
    CFCWorkflowFinding const& finding = reader.GetFindings().front();
    EXPECT_EQ(finding.file, path("flow/S/processdefinition.xml"));
    EXPECT_EQ(finding.line, 3);
    EXPECT_GT(finding.column, 0);
    EXPECT_FALSE(finding.error.IsEmpty());
    EXPECT_EQ(narrow(reader.GetErrorText()), ""); // of the top file, which is well
}

TEST_F(FCProcessDefinitionReaderTest, WithoutNestedVariablesTheRestOfTheElementFallsOutOfTheTree) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"><description>lost</description><task "
                        "name=\"T\"/><transition to=\"E\"/><fork name=\"lost\"/><strange/></task-node>"
                        "<end-state name=\"E\"/>");
    writeFolder("flow/S", "<fork name=\"A\"><transition to=\"A\"/></fork>");
    std::filesystem::remove(scratch / "flow/S/process.var");
    tree = read();
    IFCNode* const block = child(tree.get(), L"S");
    EXPECT_EQ(outlineOf(tree.get()), "165 S, 155 E");
    EXPECT_EQ(outlineOf(block), "156 A"); // the nested definition reached the block
    EXPECT_EQ(connectionsOf(block), "");  // but no more than that
    EXPECT_EQ(narrow(block->GetNodeDescription()), "");
    EXPECT_EQ(narrow(block->GetBPMBlockData()->GetTaskName()), "");
    EXPECT_THAT(transitionsOf(block), IsEmpty());
    EXPECT_EQ(connectionsOf(tree.get()), "");
    EXPECT_THAT(findings(),
                ElementsAre("VariablesMissing [S]", "ElementLost [S] <task-node>", "ElementPassedOver [S] <strange>"));
    EXPECT_EQ(reader.GetFindings()[1].node, block);
    EXPECT_EQ(reader.GetFindings()[2].node, nullptr); // it stood on a node that is gone
}

TEST_F(FCProcessDefinitionReaderTest, ANodeOutsideTheTreeChangesNoTypeOfTheProcess) {
    writeFolder("flow", "<decision name=\"S\" nodeType=\"basicSubProcess\"><type>APPLICATION</type><task-node "
                        "name=\"X\"/></decision><task-node name=\"A\"/>");
    writeFolder("flow/S", "");
    std::filesystem::remove(scratch / "flow/S/process.var");
    RefusingFactory counting({});
    factory = &counting;
    tree = read();
    EXPECT_EQ(tree->GetProjectType(), EProjectType_TASK);
    EXPECT_EQ(outlineOf(tree.get()), "165 S, 150 A"); // the decision was made of the other node
    EXPECT_EQ(counting.made[167], 1);                 // which is a process, and an application's then
    factory = &plainFactory;
}

TEST_F(FCProcessDefinitionReaderTest, SubProcessesInANodeOutsideTheTreeAreReadAndGo) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"><task-node name=\"X\" "
                        "nodeType=\"basicSubProcess\"><odd/></task-node></task-node>");
    writeFolder("flow/S", "");
    std::filesystem::remove(scratch / "flow/S/process.var");
    writeFolder("flow/X", "<fork name=\"F\"><transition to=\"none\"/></fork>"); // the node's path has no S
    std::filesystem::remove(scratch / "flow/X/gpd.xml");
    tree = read();
    EXPECT_EQ(outlineOf(child(tree.get(), L"S")), "");
    EXPECT_THAT(findings(),
                ElementsAre("VariablesMissing [S]", "ElementLost [S] <task-node>", "LayoutMissing [S.X]",
                            "TransitionWithoutTarget [S.X.F] <transition> = none", "ElementPassedOver [S.X] <odd>"));
    for (std::size_t i = 2; i < 5; ++i)
        EXPECT_EQ(reader.GetFindings()[i].node, nullptr);
}

TEST_F(FCProcessDefinitionReaderTest, WhatAContainerKnowsOutsideTheTreeIsLeftToIt) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"><task-node name=\"X\" "
                        "nodeType=\"basicSubProcess\"/></task-node>"
                        "<task-node name=\"T\" nodeType=\"basicSubProcess\"><fork name=\"gone\"/></task-node>");
    writeFolder("flow/S", "");
    std::filesystem::remove(scratch / "flow/S/process.var");
    writeFolder("flow/T", "");
    std::filesystem::remove(scratch / "flow/T/process.var");
    writeFolder("flow/X", "<fork name=\"F\"><transition to=\"F\"/></fork>");
    Container container;
    reader.SetContainer(&container);
    tree = read();
    auto* const connector = dynamic_cast<CFCConnector*>(only(container.attached));
    ASSERT_NE(connector, nullptr);
    IFCNode* const outside = connector->GetStartObject()->GetRootNode();
    EXPECT_NE(outside, tree.get());
    Tree const owner(outside);
    EXPECT_EQ(outlineOf(outside), "165 X");
}

TEST_F(FCProcessDefinitionReaderTest, RootAttributesThatTheBlockHasTooAreNoLoss) {
    writeFolder("flow",
                "<task-node name=\"S\" label=\"L\" max-iterations=\"4\" icon=\"i\" "
                "nodeType=\"iteratingLoopSubProcess\"/>",
                "<root-container Icon=\"i\"><node name=\"S\" Icon=\"i\"/></root-container>");
    writeFolder("flow/S", "", "<root-container name=\"L\" Icon=\"i\"/>");
    std::string const attributes = "xmlns=\"http://www.w3.org/2001/XMLSchema-instance\" name=\"S\" version=\"1\" "
                                   "hierarchyPath=\"x\" label=\"L\" max-iterations=\"4\" icon=\"i\"";
    scratch.write("flow/S/processdefinition.xml", definition("", attributes));
    tree = read();
    EXPECT_THAT(findings(), IsEmpty());
    scratch.write("flow/processdefinition.xml", definition("", attributes + " initial=\"x\""));
    tree = read();
    EXPECT_THAT(findings(),
                testing::UnorderedElementsAre("LayoutNodeUnknown [] <node> S", // which the definition lost
                                              "AttributePassedOver [] <process-definition> label = L",
                                              "AttributePassedOver [] <process-definition> max-iterations = 4",
                                              "AttributePassedOver [] <process-definition> initial = x"));
}

// --- Folders that lead to themselves -------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, ANamelessSubProcessIsItsOwnFile) {
    for (char const* const name : {"", "name=\"\"", "name=\".\"", "name=\"..\"", "name=\"/\""}) {
        SCOPED_TRACE(name);
        writeFolder("flow", "<task-node " + std::string(name) +
                                " nodeType=\"basicSubProcess\"><task name=\"T\"/></task-node><end-state name=\"E\"/>");
        tree = read();
        ASSERT_EQ(childrenOf(tree.get()).size(), 2u);
        EXPECT_EQ(childrenOf(tree.get())[0]->GetNodeType(), 165);
        EXPECT_EQ(outlineOf(childrenOf(tree.get())[0]), "");
        EXPECT_EQ(narrow(childrenOf(tree.get())[0]->GetBPMBlockData()->GetTaskName()), "T");
        EXPECT_THAT(findings(), testing::Contains(HasSubstr("FolderCycle")));
    }
}

TEST_F(FCProcessDefinitionReaderTest, ANamelessSubProcessInANestedFolderIsThatFile) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/S", "<task-node nodeType=\"basicSubProcess\"/>");
    tree = read();
    EXPECT_EQ(outlineOf(child(tree.get(), L"S")), "165 ");
    EXPECT_THAT(findings(), ElementsAre("NodeWithoutName [S.] <task-node>", "FolderCycle [S.] <task-node>"));
    EXPECT_EQ(reader.GetFindings()[1].file, path("flow/S/processdefinition.xml"));
}

TEST_F(FCProcessDefinitionReaderTest, ALinkToAFolderAroundIsACycle) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    std::filesystem::create_directory_symlink(scratch / "flow", scratch / "flow/S");
    tree = read();
    EXPECT_EQ(outlineOf(child(tree.get(), L"S")), "");
    EXPECT_THAT(findings(), ElementsAre("FolderCycle [S] <task-node>"));
    writeFolder("other", "<task-node name=\"A\" nodeType=\"basicSubProcess\"/>");
    writeFolder("other/A", "<task-node name=\"B\" nodeType=\"basicSubProcess\"/>");
    std::filesystem::create_directory_symlink("..", scratch / "other/A/B");
    CFCProcessDefinitionReader second;
    second.SetNodeFactory(factory);
    IFCNode* node = nullptr;
    EXPECT_TRUE(second.Parse(definitionPath("other"), &node, 16));
    Tree const owner(node);
    EXPECT_THAT(linesOf(second.GetFindings()), ElementsAre("FolderCycle [A.B] <task-node>"));
}

TEST_F(FCProcessDefinitionReaderTest, ALinkedDefinitionIsACycleToo) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/S", "");
    std::filesystem::remove(scratch / "flow/S/processdefinition.xml");
    std::filesystem::create_symlink("../processdefinition.xml", scratch / "flow/S/processdefinition.xml");
    tree = read();
    EXPECT_THAT(findings(), ElementsAre("FolderCycle [S] <task-node>"));
}

TEST_F(FCProcessDefinitionReaderTest, OneFolderMayServeTwoBlocks) {
    writeFolder("flow", "<task-node name=\"A\" nodeType=\"basicSubProcess\"/><task-node name=\"B\" "
                        "nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/A", "<end-state name=\"E\"/>");
    std::filesystem::create_directory_symlink("A", scratch / "flow/B");
    tree = read();
    EXPECT_EQ(outlineOf(child(tree.get(), L"B")), "155 E");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, LinksThatDoubleWithEachLevelAreBounded) {
    // 24 folders, each linked twice from the one above: without a bound that is 2^24 files.
    constexpr int kLevels = 24;
    for (int level = 0; level < kLevels; ++level) {
        std::string const folder = "level" + number(level);
        writeFolder(folder, "<task-node name=\"A\" nodeType=\"basicSubProcess\"/><task-node name=\"B\" "
                            "nodeType=\"basicSubProcess\"/>");
        if (level + 1 < kLevels) {
            for (char const* const name : {"A", "B"})
                std::filesystem::create_directory_symlink("../level" + number(level + 1), scratch / folder / name);
        }
    }
    tree = read("level0");
    auto const& all = reader.GetFindings();
    EXPECT_GT(std::count_if(all.begin(), all.end(),
                            [](CFCWorkflowFinding const& f) { return f.kind == CFCWorkflowFinding::NestingTooDeep; }),
              0);
    EXPECT_LT(all.size(), 20000u);
}

TEST_F(FCProcessDefinitionReaderTest, FoldersNestNoDeeperThanTheBound) {
    constexpr int kFolders = 300;
    std::filesystem::path folder = "d";
    for (int level = 0; level < kFolders; ++level, folder /= "s")
        writeFolder(folder, "<task-node name=\"s\" nodeType=\"basicSubProcess\"/>");
    tree = read("d");
    int depth = 0;
    for (IFCNode* node = tree.get(); node != nullptr; node = node->FindNodeSimple(L"s"))
        ++depth;
    EXPECT_EQ(depth, 257); // 256 files, and the block that the last of them names
    EXPECT_EQ(reader.GetFindings().size(), 1u);
    EXPECT_EQ(reader.GetFindings().front().kind, CFCWorkflowFinding::NestingTooDeep);
}

// --- Deep and wide files -------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, GroupsNestAsDeepAsTheParserLetsThem) {
    constexpr int kDepth = 1000;
    std::string text;
    for (int i = 0; i < kDepth; ++i)
        text += "<super-state name=\"g\"><fork name=\"f\"><transition to=\"f\"/></fork>";
    for (int i = 0; i < kDepth; ++i)
        text += "</super-state>";
    tree = readInside(text);
    int depth = 0;
    IFCNode* last = tree.get();
    for (IFCNode* node = tree->FindNodeSimple(L"g"); node != nullptr; node = node->FindNodeSimple(L"g")) {
        ++depth;
        last = node;
    }
    EXPECT_EQ(depth, kDepth);
    EXPECT_EQ(connectionsOf(last), "f-f");
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, ElementsOfAnyDocumentAreEnteredUpToABound) {
    flowmere::XmlDocumentHolder file;
    scratch.write("a.xml", "<a/>");
    file.document = flowmere::parseXmlFile(scratch.text("a.xml"));
    xercesc::DOMElement* element = file.document->getDocumentElement();
    for (int i = 0; i < 3000; ++i)
        element = flowmere::appendElement(element, u"super-state");
    tree = newWorkflow();
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.Load(file.document->getDocumentElement(), tree.get()));
    int depth = 0;
    for (IFCNode* node = tree.get(); !childrenOf(node).empty(); node = childrenOf(node).front())
        ++depth;
    EXPECT_EQ(depth, 2000);
    EXPECT_EQ(reader.GetFindings().back().kind, CFCWorkflowFinding::NestingTooDeep);
}

TEST_F(FCProcessDefinitionReaderTest, TheBoundOnElementsHoldsAcrossFiles) {
    std::string groups;
    std::string ends;
    std::filesystem::path folder = "d";
    for (int i = 0; i < 150; ++i) {
        groups += "<super-state>"; // without a name it is no part of the path
        ends += "</super-state>";
    }
    for (int level = 0; level < 15; ++level, folder /= "s")
        writeFolder(folder, groups + "<task-node name=\"s\" nodeType=\"basicSubProcess\"/>" + ends);
    tree = read("d");
    auto const& all = reader.GetFindings();
    EXPECT_EQ(std::count_if(all.begin(), all.end(),
                            [](CFCWorkflowFinding const& f) { return f.kind == CFCWorkflowFinding::NestingTooDeep; }),
              1);
}

// --- Script paths --------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, BlocksFindTheirScriptsInTheFolder) {
    std::filesystem::path const folder = "BrindleExec/A/Flow";
    writeFolder(folder, "<task-node name=\"B\"/><super-state name=\"G\"><decision name=\"D\"/></super-state>");
    tree = read(folder);
    CFCBPMBlockData* task = child(tree.get(), L"B")->GetBPMBlockData();
    EXPECT_EQ(narrow(task->GetHTMLScriptFileName()), "A/Flow/B/B.html");
    EXPECT_EQ(narrow(task->GetCSSScriptFileName()), "A/Flow/B/B.css");
    EXPECT_EQ(narrow(task->GetUserCSSScriptFileName()), "A/Flow/B/B_User.css");
    EXPECT_EQ(narrow(task->GetJSScriptFileName()), "A/Flow/B/scripts/B.js");
    EXPECT_EQ(narrow(task->GetJythonScriptFileName()), "A/Flow/B/scripts/B.py");
    task = child(tree.get(), L"G")->GetBPMBlockData();
    EXPECT_EQ(narrow(task->GetJythonScriptFileName()), "A/Flow/G/scripts/G.py");
    task = child(child(tree.get(), L"G"), L"D")->GetBPMBlockData();
    EXPECT_EQ(narrow(task->GetJythonScriptFileName()), "A/Flow/G/D/scripts/D.py");
}

TEST_F(FCProcessDefinitionReaderTest, TheScriptOfABlockIsTheOneOfItsFolder) {
    std::filesystem::path const folder = "BrindleExec/Flow";
    writeFolder(folder, "<task-node name=\"B\"/>");
    CFCEnvironment::SetBasePath(path("base"));
    tree = read(folder);
    CFCBlockData* const block = child(tree.get(), L"B")->GetFCBlockData();
    EXPECT_EQ(TuString(block->GetFullScriptFileName()), TuString(CFCEnvironment::GetFullPath(L"Flow/B/scripts/B.py")));
    EXPECT_THAT(narrow(block->GetFullScriptFileName()), HasSubstr("base"));
}

TEST_F(FCProcessDefinitionReaderTest, OnlyTheLastPartOfThePathIsTheBlocksOwn) {
    std::filesystem::path const folder = "BrindleExec/Flow";
    writeFolder(folder, "<super-state name=\"Task_10\"><task-node name=\"Task_1\"/></super-state>"
                        "<super-state name=\"a\"><task-node name=\"a\"/><task-node name=\"b.a\"/></super-state>");
    tree = read(folder);
    EXPECT_EQ(narrow(child(child(tree.get(), L"Task_10"), L"Task_1")->GetBPMBlockData()->GetJythonScriptFileName()),
              "Flow/Task_10/Task_1/scripts/Task_1.py");
    EXPECT_EQ(narrow(child(child(tree.get(), L"a"), L"a")->GetBPMBlockData()->GetJythonScriptFileName()),
              "Flow/a/a/scripts/a.py");
    EXPECT_EQ(narrow(child(child(tree.get(), L"a"), L"b.a")->GetBPMBlockData()->GetJythonScriptFileName()),
              "Flow/a/b.a/scripts/b.a.py");
}

TEST_F(FCProcessDefinitionReaderTest, NestedBlocksFindTheirScriptsBelowTheBaseFolder) {
    writeFolder("BrindleExec/Flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    writeFolder("BrindleExec/Flow/S", "<task-node name=\"B\"/>");
    tree = read("BrindleExec/Flow");
    EXPECT_EQ(narrow(child(tree.get(), L"S")->GetBPMBlockData()->GetJythonScriptFileName()), "Flow/S/scripts/S.py");
    EXPECT_EQ(narrow(child(child(tree.get(), L"S"), L"B")->GetBPMBlockData()->GetJythonScriptFileName()),
              "Flow/S/B/scripts/B.py");
}

TEST_F(FCProcessDefinitionReaderTest, NodesWithoutScriptsOfTheirOwnKeepNone) {
    writeFolder("BrindleExec/Flow", "<ClientApplication name=\"C\"/><type>APPLICATION</type><task-node name=\"A\"/>"
                                    "<super-state name=\"G\"/><fork/>");
    tree = read("BrindleExec/Flow");
    for (IFCNode* const node : childrenOf(tree.get()))
        EXPECT_EQ(narrow(node->GetBPMBlockData()->GetJythonScriptFileName()), "") << node->GetNodeType();
}

TEST_F(FCProcessDefinitionReaderTest, WithoutBaseFolderUpdateDoesNothing) {
    tree = newWorkflow();
    CFCBPMTaskNode* const task = addTask(tree.get(), L"T");
    reader.Update(task);
    EXPECT_EQ(narrow(task->GetJythonScriptFileName()), "");
    reader.Update(nullptr);
    Tree const folder(plainFactory.Create(71));
    reader.Update(folder.get());
}

// --- File nodes ----------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, AFileNodeIsFilledFromItsFolder) {
    writeFolder("flow",
                "<fork name=\"F\"><transition to=\"F\"/></fork><task-node name=\"S\" "
                "nodeType=\"basicSubProcess\"/>",
                "<root-container name=\"Drawn\"/>");
    writeFolder("flow/S", "<join name=\"J\"/>");
    tree = newWorkflow(L"Link");
    reader.SetNodeFactory(factory);
    for (TuString const& file : {path("flow/processdefinition.xml"), scratch.text("flow/processdefinition.xml")}) {
        CFCNodeHelper::DestroyTree(tree.release());
        tree = newWorkflow(L"Link");
        EXPECT_TRUE(reader.LoadFileNode(file, tree.get()));
        EXPECT_EQ(outlineOf(tree.get()), "156 F, 165 S");
        EXPECT_EQ(connectionsOf(tree.get()), "F-F");
        EXPECT_EQ(outlineOf(child(tree.get(), L"S")), "157 J");
        EXPECT_EQ(narrow(tree->GetNodeCaption()), "Drawn"); // by the layout; the definition's name is not read
        EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetTaskName()), "");
        EXPECT_THAT(findings(), IsEmpty());
    }
}

TEST_F(FCProcessDefinitionReaderTest, AFileNodeMayHaveAnyNameAndNoNeighbours) {
    scratch.write("lone/any.xml", definition("<fork name=\"F\"><transition to=\"F\"/></fork>"));
    tree = newWorkflow();
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.LoadFileNode(path("lone/any.xml"), tree.get()));
    EXPECT_EQ(connectionsOf(tree.get()), "F-F");
    EXPECT_THAT(findings(), ElementsAre("VariablesMissing []", "LayoutMissing []"));
    EXPECT_EQ(reader.GetFindings()[0].file, path("lone/process.var"));
    EXPECT_EQ(reader.GetFindings()[1].file, path("lone/gpd.xml"));
}

TEST_F(FCProcessDefinitionReaderTest, AFileNodeIsSoughtInTheEnvironment) {
    writeFolder("base/sub", "<fork name=\"F\"/>");
    CFCEnvironment::SetBasePath(path("base"));
    tree = newWorkflow();
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.LoadFileNode(L"sub\\processdefinition.xml", tree.get()));
    EXPECT_EQ(outlineOf(tree.get()), "156 F");
    EXPECT_FALSE(reader.LoadFileNode(L"sub\\nothing.xml", tree.get()));
}

namespace {

// Knows where the files of macros lie.
class MacroFactory : public CFCNodeFactory {
public:
    wchar_t const* GetMacroPath(wchar_t const* name) override {
        asked = name;
        return macro;
    }
    TuString macro;
    TuString asked = L"never";
};

} // namespace

TEST_F(FCProcessDefinitionReaderTest, AMacroNodeIsSoughtByTheFactory) {
    writeFolder("macros", "<fork name=\"F\"/>");
    MacroFactory macros;
    macros.macro = path("macros/processdefinition.xml");
    reader.SetNodeFactory(&macros);
    tree = newWorkflow();
    IFCNode* const link = addChild(tree.get(), 170, L"Link");
    for (int const location : {0, 2}) {
        link->SetNodeLocationType(location);
        EXPECT_FALSE(reader.LoadFileNode(L"nowhere.xml", link));
        EXPECT_EQ(macros.asked, L"never");
    }
    link->SetNodeLocationType(1);
    EXPECT_TRUE(reader.LoadFileNode(L"nowhere.xml", link));
    EXPECT_EQ(macros.asked, L"");
    EXPECT_EQ(outlineOf(link), "156 F");
    // What is there is taken as it is.
    writeFolder("flow", "<join name=\"J\"/>");
    macros.asked = L"never";
    EXPECT_TRUE(reader.LoadFileNode(definitionPath(), link));
    EXPECT_EQ(macros.asked, L"never");
    EXPECT_EQ(outlineOf(link), "156 F, 157 J");
    macros.macro = path("macros/nothing.xml");
    EXPECT_FALSE(reader.LoadFileNode(L"nowhere.xml", link));
}

TEST_F(FCProcessDefinitionReaderTest, AMissingOrBrokenFileOfAFileNodeIsRefused) {
    scratch.write("broken.xml", "<a>\n</b>");
    tree = newWorkflow();
    reader.SetNodeFactory(factory);
    EXPECT_FALSE(reader.LoadFileNode(path("none.xml"), tree.get()));
    EXPECT_FALSE(reader.LoadFileNode(nullptr, tree.get()));
    EXPECT_FALSE(reader.LoadFileNode(path("broken.xml"), tree.get()));
    EXPECT_EQ(reader.GetErrorLine(), 2);
    EXPECT_FALSE(reader.LoadFileNode(path("broken.xml"), nullptr));
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCProcessDefinitionReaderTest, AFileNodeOutsideAProcessStaysEmpty) {
    writeFolder("flow", "<fork name=\"F\"/>");
    Tree const block(plainFactory.Create(150));
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.LoadFileNode(definitionPath(), block.get()));
    EXPECT_EQ(outlineOf(block.get()), "");
}

TEST_F(FCProcessDefinitionReaderTest, TheFolderOfAFileNodeEndsAtTheLastSlash) {
    writeFolder("flow", "<task-node name=\"S\" nodeType=\"basicSubProcess\"/>");
    writeFolder("flow/S", "<fork name=\"F\"/>");
    tree = newWorkflow();
    reader.SetNodeFactory(factory);
    // Slashes in front of backslashes: the folder is the one above.
    TuString const mixed = scratch.text("flow") + L"\\processdefinition.xml";
    EXPECT_TRUE(reader.LoadFileNode(mixed, tree.get()));
    EXPECT_EQ(outlineOf(child(tree.get(), L"S")), "");
    EXPECT_THAT(findings(),
                ElementsAre("NestedFolderMissing [S] <task-node>", "VariablesMissing []", "LayoutMissing []"));
}

TEST_F(FCProcessDefinitionReaderTest, AFileNodeThatLeadsToItselfIsACycle) {
    writeFolder("flow", "<task-node nodeType=\"basicSubProcess\"/>");
    tree = newWorkflow();
    reader.SetNodeFactory(factory);
    EXPECT_TRUE(reader.LoadFileNode(definitionPath(), tree.get()));
    EXPECT_THAT(findings(), ElementsAre("NodeWithoutName [] <task-node>", "FolderCycle [] <task-node>"));
}

// --- Files from elsewhere ------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, AFileOfAnotherNamespaceIsReadAsFarAsItIsKnown) {
    scratch.write("flow/processdefinition.xml", R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- made elsewhere -->
<process-definition xmlns="urn:jbpm.org:jpdl-3.2" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
    xsi:schemaLocation="urn:jbpm.org:jpdl-3.2 jpdl.xsd" name="order" initial="x">
  <swimlane name="clerk"><assignment actor-id="ann"/></swimlane>
  <start-state name="begin">
    <task swimlane="clerk" blocking="true"><controller class="C"/></task>
    <transition to="check"/>
  </start-state>
  <decision name="check" expression="#{ok}">
    <handler class="D" config-type="bean"><delay>5</delay></handler>
    <transition name="yes" to="work"><condition expression="#{a}"/></transition>
    <transition name="no" to="wait"/>
  </decision>
  <task-node name="work" async="true" end-tasks="yes">
    <task name="work" priority="high" duedate="2 days" actor-id="x">
      <assignment pooled-actors="a"/>
      <timer duedate="20 seconds" repeat="10 seconds"><action class="R"/></timer>
    </task>
    <transition to="end"/>
  </task-node>
  <node name="wait"><action class="W"/><transition to="end"/></node>
  <state name="idle"><event type="node-enter"><action class="I"/></event></state>
  <mail-node name="mail" to="x"/>
  <end-state name="end"/>
  <event type="process-end"><cancel-timer name="t"/></event>
</process-definition>
)");
    scratch.write("flow/gpd.xml", kBareLayout);
    scratch.write("flow/process.var", kBareVariables);
    tree = read();
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "order");
    EXPECT_EQ(outlineOf(tree.get()), "154 begin, 153 check, 150 work, 155 end");
    EXPECT_EQ(narrow(child(tree.get(), L"work")->GetBPMBlockData()->GetPriority()), "high");
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetEventType()), "process-end");
    EXPECT_EQ(connectionsOf(tree.get()), "work-end check-work - begin-check");
    EXPECT_THAT(findings(), ElementsAre("ElementPassedOver [] <swimlane> clerk",                     //
                                        "NodeWithoutName [begin] <task>",                            //
                                        "AttributePassedOver [begin] <task> blocking = true",        //
                                        "ElementPassedOver [begin] <controller>",                    //
                                        "AttributePassedOver [check] <decision> expression = #{ok}", //
                                        "AttributePassedOver [check] <handler> config-type = bean",  //
                                        "ElementPassedOver [check] <delay>",                         //
                                        "ElementPassedOver [check] <condition>",                     //
                                        "AttributePassedOver [work] <task-node> async = true",       //
                                        "AttributePassedOver [work] <task-node> end-tasks = yes",    //
                                        "AttributePassedOver [work] <task> actor-id = x",            //
                                        "AttributePassedOver [work] <task> duedate = 2 days",        //
                                        "ElementPassedOver [work] <assignment>",                     //
                                        "ValueNotRead [work] <timer> duedate = 20 seconds",          //
                                        "AttributePassedOver [work] <timer> repeat = 10 seconds",    //
                                        "ElementPassedOver [work] <action>",                         //
                                        "ElementPassedOver [] <node> wait",                          //
                                        "ElementPassedOver [] <state> idle",                         //
                                        "ElementPassedOver [] <mail-node> mail",                     //
                                        "ElementPassedOver [] <cancel-timer> t",                     //
                                        "TransitionWithoutTarget [check] <transition> no = wait",    //
                                        "AttributePassedOver [] <process-definition> initial = x"));
}

TEST_F(FCProcessDefinitionReaderTest, CommentsAndTextsBetweenElementsAreHarmless) {
    tree = readInside("\n<!-- c --><?p i?><fork name=\"F\"><!-- d -->stray<transition to=\"F\"/></fork>lost");
    EXPECT_EQ(connectionsOf(tree.get()), "F-F");
    EXPECT_THAT(findings(),
                ElementsAre("TextPassedOver [F] <fork> = stray", "TextPassedOver [] <process-definition> = lost"));
}

TEST_F(FCProcessDefinitionReaderTest, AttributesOfElementsThatHaveNoneAreTold) {
    scratch.write("flow/process.var", kBareVariables);
    scratch.write("flow/gpd.xml", kBareLayout);
    scratch.write("flow/processdefinition.xml",
                  definition("<type id=\"a\">TASK</type><description lang=\"b\">d</description><event><action "
                             "name=\"n\"><modulePath id=\"c\">m<action name=\"d\">k</action></modulePath><function "
                             "id=\"e\">f</function></action></event><sub-process name=\"s\">text</sub-process>",
                             "version=\"new\""));
    tree = read();
    EXPECT_EQ(narrow(tree->GetBPMBlockData()->GetModulePath()), "k");
    EXPECT_THAT(findings(),
                ElementsAre("AttributePassedOver [] <type> id = a", "AttributePassedOver [] <description> lang = b",
                            "AttributePassedOver [] <modulePath> id = c", "AttributePassedOver [] <action> name = d",
                            "AttributePassedOver [] <function> id = e", "TextPassedOver [] <sub-process> = text",
                            "ValueNotRead [] <process-definition> version = new"));
}

TEST_F(FCProcessDefinitionReaderTest, PointsHoldTwoNumbersAndNoMore) {
    tree = readInside("<fork name=\"F\"><transition to=\"F\"><POINT Location_X=\"5\" Location_Y=\"low\" z=\"1\">t<a/>"
                      "</POINT><POINT Location_X=\"left\" Location_Y=\"6\"/></transition></fork>");
    EXPECT_EQ(routeOf(only(transitionsOf(child(tree.get(), L"F")))), "5,0 ");
    EXPECT_THAT(findings(),
                ElementsAre("ValueNotRead [F] <POINT> Location_Y = low", "AttributePassedOver [F] <POINT> z = 1",
                            "TextPassedOver [F] <POINT> = t", "ElementPassedOver [F] <a>",
                            "ValueNotRead [F] <POINT> Location_X = left", "RouteCut [F] <transition> = 1"));
}

TEST_F(FCProcessDefinitionReaderTest, TextsPassedOverAreToldWithoutTheWhiteSpaceAround) {
    readTask("<task name=\"T\">\n  some <![CDATA[text]]>\n</task>");
    EXPECT_THAT(findings(), ElementsAre("TextPassedOver [Task] <task> = some text"));
}

TEST_F(FCProcessDefinitionReaderTest, NamesBeyondAsciiAreKept) {
    tree = readInside("<task-node name=\"\u00C4\" label=\"\U0001F600\"><transition to=\"\u00E4\"/></task-node>");
    EXPECT_EQ(narrow(only(childrenOf(tree.get()))->GetNodeCaption()), "\U0001F600");
    EXPECT_EQ(connectionsOf(tree.get()), "\u00C4-\u00C4"); // without regard to case
}

TEST_F(FCProcessDefinitionReaderTest, OfTwoBlocksOfOneNameTheLastInTheFileIsTheTarget) {
    tree = readInside("<task-node name=\"A\" label=\"first\"/><task-node name=\"A\" label=\"second\"/><fork name=\"F\">"
                      "<transition to=\"A\"/></fork>");
    EXPECT_EQ(narrow(only(connectorsOf(tree.get()))->GetEndBlockCaption()), "second");
}

// --- Cost ----------------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionReaderTest, ManyTransitionsWithoutTargetCostNoSearchEach) {
    // Good ones in front, so that the first connector without ends lies far behind the head of the list.
    constexpr int kCount = 20000;
    std::string text = "<task-node name=\"last\">";
    for (int i = 0; i < kCount; ++i)
        text += "<transition to=\"nowhere\"/>";
    text += "</task-node>";
    for (int i = 0; i < kCount; ++i)
        text += "<fork name=\"f" + number(i) + "\"><transition to=\"f" + number(i) + "\"/></fork>";
    tree = readInside(text);
    EXPECT_EQ(connectorsOf(tree.get()).size(), static_cast<std::size_t>(kCount) + 1);
    EXPECT_EQ(reader.GetFindings().size(), static_cast<std::size_t>(kCount));
}
