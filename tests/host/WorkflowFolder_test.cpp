#include "Golden.h"
#include "Workflow.h"

#include "host/basics/Command.h"
#include "host/document/Document.h"
#include "host/document/HostFactory.h"
#include "host/document/Tree.h"
#include "host/document/WorkflowFacts.h"
#include "host/document/WorkflowFolder.h"
#include "host/drawing/Diagram.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

using namespace flowmere::test;
using namespace flowmere::host;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

fs::path workflows() {
    return dataFolder() / "host/workflow";
}

ProgramRun inWorkflows(std::vector<std::string> const& arguments) {
    return runProgram(arguments, {.folder = workflows()});
}

std::string failureOf(fs::path const& name) {
    try {
        Document const document(name.string());
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.exitCode(), kExitWrongUse);
        return failure.what();
    }
    return "no failure";
}

TEST(WorkflowFolder, IsAFolderWithADefinitionOrTheDefinition) {
    ScratchFolder const scratch;
    scratch.write("w/processdefinition.xml", "<process-definition/>");
    scratch.write("other/process.var", "<PROCESS/>");
    scratch.write("processdefinition.xml/x", "");
    fs::path const definition = scratch.path() / "w/processdefinition.xml";
    EXPECT_EQ(workflowDefinition(scratch.path() / "w"), definition);
    EXPECT_EQ(workflowDefinition(scratch.path() / "w/"), definition);
    EXPECT_EQ(workflowDefinition(scratch.path() / "w/../w/processdefinition.xml"), definition);
    EXPECT_FALSE(workflowDefinition(scratch.path() / "other"));
    EXPECT_FALSE(workflowDefinition(scratch.path() / "other/process.var"));
    EXPECT_FALSE(workflowDefinition(scratch.path() / "nowhere"));
    EXPECT_FALSE(workflowDefinition(scratch.path() / "other/processdefinition.xml"));
    EXPECT_FALSE(workflowDefinition(scratch.path())) << "a folder of that name is no definition";
}

TEST(WorkflowFolder, TheExecutionRootIsAWholeFolder) {
    EXPECT_EQ(executionRoot("/a/BrindleExec/b/c"), "/a/BrindleExec");
    EXPECT_EQ(executionRoot("/a/BrindleExec"), "/a/BrindleExec");
    EXPECT_EQ(executionRoot("/a/MyBrindleExec/b"), "/a/MyBrindleExec");
    EXPECT_EQ(executionRoot("/a/BrindleExec2/b"), "/a/BrindleExec2/b");
    EXPECT_EQ(executionRoot("/a/b"), "/a/b");
}

TEST(WorkflowFolder, IsShownWithAllThatTheEngineIsTold) {
    ProgramRun const text = inWorkflows({"show", "order"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.err, "");
    expectGolden("host/workflow/order.show.txt", text.out);
    ProgramRun const json = inWorkflows({"show", "--json", "order"});
    EXPECT_EQ(json.exitCode, 0);
    expectGolden("host/workflow/order.show.json", withName(json.out, dataFolder().string(), "DATA"));
    // The definition itself is as good as its folder.
    EXPECT_EQ(inWorkflows({"show", "order/processdefinition.xml"}).out, text.out);
}

TEST(WorkflowFolder, OfOthersIsReadAsFarAsItGoes) {
    ProgramRun const show = inWorkflows({"show", "foreign"});
    EXPECT_EQ(show.exitCode, 0);
    expectGolden("host/workflow/foreign.show.txt", show.out + show.err);
    ProgramRun const check = inWorkflows({"check", "foreign"});
    EXPECT_EQ(check.exitCode, 0);
    expectGolden("host/workflow/foreign.check.txt", check.out + check.err);
}

TEST(WorkflowFolder, ComparesWithAnother) {
    ProgramRun const text = inWorkflows({"diff", "order", "order-new"});
    EXPECT_EQ(text.exitCode, 1);
    EXPECT_EQ(text.err, "");
    expectGolden("host/workflow/order.diff.txt", text.out);
    ProgramRun const json = inWorkflows({"diff", "--json", "order", "order-new"});
    expectGolden("host/workflow/order.diff.json", json.out);
    EXPECT_EQ(inWorkflows({"diff", "order", "order"}).out, "order -> order: no differences\n");
    EXPECT_EQ(inWorkflows({"diff", "order", "order"}).exitCode, 0);
}

// What is drawn, as text: the words of the picture hang on the fonts of the machine, and these do not.
std::string diagramText(std::string const& name, int depth) {
    Document const document((workflows() / name).string());
    drawing::Diagram const diagram = drawing::diagramOf(document, depth);
    std::map<drawing::Shape, std::string> const shapes{{drawing::Shape::RoundRectangle, "round"},
                                                       {drawing::Shape::Stadium, "stadium"},
                                                       {drawing::Shape::DoubleDiamond, "diamond"},
                                                       {drawing::Shape::Bar, "bar"},
                                                       {drawing::Shape::Sides, "sides"}};
    std::string text;
    for (std::size_t index = 1; index < diagram.blocks.size(); ++index) {
        drawing::Block const& block = diagram.blocks[index];
        auto const shape = shapes.find(block.shape);
        text += block.path + " \"" + block.caption + "\": " + block.kind + ", " +
                (shape == shapes.end() ? "other" : shape->second) + ", at " + std::to_string(int(block.place.left)) +
                "," + std::to_string(int(block.place.top)) + " to " + std::to_string(int(block.place.right)) + "," +
                std::to_string(int(block.place.bottom)) + (block.isOpen ? ", open" : "") + "\n";
    }
    for (drawing::Connector const& line : diagram.connectors)
        text += diagram.blocks[line.start].path + " " + std::to_string(line.startGrip) + " -> " +
                diagram.blocks[line.end].path + " " + std::to_string(line.endGrip) +
                (line.caption.empty() ? "" : " \"" + line.caption + "\"") +
                (line.route.empty() ? "" : ", by " + std::to_string(line.route.size()) + " points") + "\n";
    return text;
}

TEST(WorkflowFolder, IsDrawnInItsPlacesAndShapes) {
    expectGolden("host/workflow/order.draw.txt", diagramText("order", 2));
    expectGolden("host/workflow/foreign.draw.txt", diagramText("foreign", 1));
    ScratchFolder const scratch;
    std::string const out = (scratch.path() / "order.svg").string();
    ProgramRun const run = inWorkflows({"draw", "order", "-o", out, "--depth", "2"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, StartsWith(out + ": 16 blocks, 16 connectors, "));
    std::string const picture = readFile(out);
    for (char const* const path : {"Begin", "Billing.Invoice", "Delivery.Pack", "Meet"})
        EXPECT_THAT(picture, HasSubstr("data-path=\"" + std::string(path) + "\""));
    ProgramRun const foreign = inWorkflows({"draw", "foreign", "-o", out});
    EXPECT_EQ(foreign.exitCode, 0);
    EXPECT_THAT(foreign.err, HasSubstr("flowmere: foreign/process.var: there is no such file"));
    EXPECT_THAT(foreign.err, HasSubstr("the element <node> \"write\" is passed over"));
}

TEST(WorkflowFolder, GroupsBehindASubProcessAreConnectedToo) {
    Workflow const workflow(
        flow(taskNode("A", {"G"}, "", "nodeType=\"basicSubProcess\"") +
             state("super-state", "G", {"Z"},
                   taskNode("B", {"C"}) + state("super-state", "C", {}, taskNode("D", {"E"}) + taskNode("E")))));
    workflow.add("w/A", flow(taskNode("A", {"Z"})));
    ProgramRun const run = workflow.run({"show", "w"});
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("11 blocks, 7 connectors"));
}

TEST(WorkflowFolder, LevelsWithoutVariablesHaveTheirLayoutAndConnectors) {
    Workflow const workflow(flow(taskNode("A", {"Z"})));
    workflow.folder().write("w/gpd.xml", "<root-container name=\"flow\"><node name=\"A\" x=\"10\" y=\"20\" "
                                         "width=\"30\" height=\"40\"/></root-container>");
    fs::remove(workflow.path() / "w/process.var");
    Document const document((workflow.path() / "w").string());
    Tree const tree(document.process());
    EXPECT_EQ(tree.connectorCount(), 2U);
    TuRect const& rect = *document.block("A").GetTuRect();
    EXPECT_EQ(rect.left, 10);
    EXPECT_EQ(rect.bottom, 60);
    fs::remove(workflow.path() / "w/gpd.xml");
    EXPECT_THAT(workflow.run({"show", "w"}).err,
                HasSubstr("flowmere: w/process.var: there is no such file: the variables are unknown\n"
                          "flowmere: w/gpd.xml: there is no such file: nothing tells where the nodes stand\n"));
}

TEST(WorkflowFolder, TheFirstBlockIsTheEnginesOwn) {
    Document const document((workflows() / "order").string());
    Tree const tree(document.process());
    std::vector<std::string> firsts;
    for (TreeNode const& node : tree.nodes())
        if (CFCBlockNode* const first = tree.firstBlock(node))
            firsts.push_back(pathOf(*first));
    EXPECT_THAT(firsts, ElementsAre("Begin", "Billing.Collect", "Delivery.Leave"));
}

TEST(WorkflowFolder, ScriptsAreFoundBesideTheirBlocks) {
    Document const document((workflows() / "order").string());
    EXPECT_TRUE(document.isWorkflowFolder());
    EXPECT_EQ(document.scriptFile(document.block("Review")), workflows() / "order/Review/scripts/Review.py");
    EXPECT_EQ(document.scriptName(document.block("Review")), "Review.scripts.Review");
    EXPECT_EQ(document.scriptState(document.block("Review")), ScriptState::Found);
    EXPECT_TRUE(document.block("Review").HasScript());
    EXPECT_EQ(document.scriptFile(document.block("Delivery.Pack")),
              workflows() / "order/Delivery/Pack/scripts/Pack.py");
    EXPECT_EQ(document.scriptState(document.block("Meet")), ScriptState::None);
}

TEST(WorkflowFolder, ModulesBeginAtTheExecutionRoot) {
    Workflow const source(flow(taskNode(
        "A", {"Z"},
        "<event type=\"task-start\"><action name=\"n\" class=\"c\"><modulePath>orders.w.A.scripts.A</modulePath></action>"
        "</event>")));
    source.folder().write("w/A/scripts/A.py", "pass\n");
    fs::path const root = source.path() / "BrindleExec";
    fs::create_directories(root / "orders");
    fs::rename(source.path() / "w", root / "orders/w");
    Document const document((root / "orders/w").string());
    EXPECT_EQ(document.scriptFile(document.block("A")), root / "orders/w/A/scripts/A.py");
    EXPECT_THAT(document.scriptRoots(), ElementsAre(root, root / "orders/w"));
    EXPECT_TRUE(document.block("A").HasScript());
    // Moved elsewhere, the module is not where its name says, and the file still is.
    fs::rename(root / "orders/w", source.path() / "moved");
    Document const moved((source.path() / "moved").string());
    EXPECT_EQ(moved.scriptFile(moved.block("A")), source.path() / "moved/A/scripts/A.py");
}

TEST(WorkflowFolder, IsRefusedByWhatChangesOrRunsDocuments) {
    ScratchFolder const scratch;
    std::string const rest = ": \"flowmere import\" makes a document of it\n";
    ProgramRun const run = inWorkflows({"run", "order"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: order: is a workflow folder, and its engine runs it" + rest);
    ProgramRun const generate = inWorkflows({"generate", "order", "--out", (scratch.path() / "out").string()});
    EXPECT_EQ(generate.exitCode, 2);
    EXPECT_EQ(generate.err, "flowmere: order: is a workflow folder, and has its scripts" + rest);
    EXPECT_FALSE(fs::exists(scratch.path() / "out"));
    ProgramRun const shell = inWorkflows({"shell", "order"});
    EXPECT_EQ(shell.exitCode, 2);
    EXPECT_EQ(shell.err, "flowmere: order: is a workflow folder, and is not opened here" + rest);
    EXPECT_EQ(inWorkflows({"format", "order"}).err, "flowmere: order: is a folder\n");
    Document document((workflows() / "order").string());
    EXPECT_THROW(document.save((scratch.path() / "out.xml").string()), Failure);
    EXPECT_FALSE(fs::exists(scratch.path() / "out.xml"));
}

TEST(WorkflowFolder, AFolderWithoutADefinitionIsNone) {
    ScratchFolder const scratch;
    EXPECT_EQ(failureOf(scratch.path()), "flowmere: " + scratch.path().string() +
                                             ": is a folder without a workflow: there is no processdefinition.xml "
                                             "in it");
    EXPECT_THROW(static_cast<void>(readWorkflowFolder(scratch.path().string())), Failure);
    EXPECT_EQ(failureOf(scratch.path() / "processdefinition.xml"),
              "flowmere: " + (scratch.path() / "processdefinition.xml").string() + ": there is no such file");
}

TEST(WorkflowFolder, BrokenFilesAreToldWithTheirPlace) {
    Workflow const workflow(flow(taskNode("A", {"Z"}, "", "nodeType=\"basicSubProcess\"")));
    workflow.add("w/A", flow(taskNode("A", {"Z"})));
    auto const errorOf = [&](std::string const& file, std::string const& text) {
        std::string const before = readFile(workflow.path() / file);
        workflow.folder().write(file, text);
        ProgramRun const run = workflow.run({"show", "w"});
        workflow.folder().write(file, before);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        return run.err;
    };
    EXPECT_EQ(workflow.run({"show", "w"}).exitCode, 0);
    for (std::string const file : {"w/processdefinition.xml", "w/process.var", "w/gpd.xml", "w/A/processdefinition.xml",
                                   "w/A/process.var", "w/A/gpd.xml"})
        EXPECT_THAT(errorOf(file, "<a>\n  <b>\n</a>\n"), StartsWith("flowmere: " + file + ": line 3, column ")) << file;
    EXPECT_EQ(errorOf("w/processdefinition.xml", ""), "flowmere: w/processdefinition.xml: is empty\n");
    EXPECT_EQ(errorOf("w/processdefinition.xml", "<Process/>"),
              "flowmere: w/processdefinition.xml: is no process definition: it holds a \"Process\"\n");
    EXPECT_THAT(errorOf("w/A/gpd.xml", ""), StartsWith("flowmere: w/A/gpd.xml: "));
    // The check of several folders goes on with the next.
    workflow.add("v", flow(taskNode("A", {"Z"})));
    workflow.folder().write("w/gpd.xml", "<a>");
    ProgramRun const check = workflow.run({"check", "w", "v"});
    EXPECT_EQ(check.exitCode, 2);
    EXPECT_EQ(check.out, "v: 3 blocks, nothing found\n2 documents: nothing found, 1 unread\n");
}

TEST(WorkflowFolder, SubProcessesThatContainThemselvesAreRefused) {
    // Without a name, the folder of a sub-process is that of its definition.
    Workflow const nameless(flow("<task-node nodeType=\"basicSubProcess\"/>"));
    ProgramRun const run = nameless.run({"show", "w"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("the sub-process contains itself"));
    Workflow const linked(flow(taskNode("A", {"Z"}, "", "nodeType=\"basicSubProcess\"")));
    fs::create_directory_symlink(".", linked.path() / "w/A");
    EXPECT_THAT(linked.run({"check", "w"}).err, HasSubstr("the sub-process contains itself"));
}

TEST(WorkflowFolder, ASubProcessWithoutItsFolderIsTold) {
    Workflow const workflow(flow(taskNode("A", {"Z"}, "", "nodeType=\"basicSubProcess\"")));
    ProgramRun const run = workflow.run({"show", "w"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "flowmere: w/A/processdefinition.xml: A: the workflow folder of the sub-process is missing\n");
}

TEST(WorkflowFolder, EveryFindingSaysSomething) {
    for (int kind = 0; kind <= CFCWorkflowFinding::LayoutElementPassedOver; ++kind) {
        CFCWorkflowFinding finding;
        finding.kind = static_cast<CFCWorkflowFinding::Kind>(kind);
        EXPECT_FALSE(describe(finding).empty()) << kind;
    }
}

TEST(WorkflowFolder, AnUnknownNodeOfTheLayoutIsNoneOfTheDefinition) {
    CFCWorkflowFinding finding;
    finding.element = L"node";
    finding.name = L"wait";
    EXPECT_TRUE(isUnreadNode(finding));
    finding.kind = CFCWorkflowFinding::LayoutNodeUnknown;
    EXPECT_FALSE(isUnreadNode(finding));
    EXPECT_FALSE(UnreadNodes({finding}).has(nullptr, "wait"));
}

TEST(WorkflowFolder, WhatALayoutHasBesidesIsCounted) {
    Workflow const workflow(flow(taskNode("A", {"Z"})));
    workflow.folder().write("w/gpd.xml", "<root-container name=\"flow\"><node name=\"wait\"/><grid/></root-container>");
    std::string const told = "flowmere: w: 2 things besides that are passed over: \"flowmere import\" tells of each\n";
    EXPECT_EQ(workflow.run({"show", "w"}).err, told);
    fs::remove(workflow.path() / "w/process.var"); // the program reads the layout by itself then
    EXPECT_EQ(workflow.run({"show", "w"}).err,
              "flowmere: w/process.var: there is no such file: the variables are unknown\n" + told);
}

TEST(WorkflowFolder, WhatEveryNewNodeHasIsOnlyShownOfTasks) {
    CFCBPMTaskNode node;
    auto const shown = [&] {
        std::string text;
        for (WorkflowFact const& fact : workflowFacts())
            for (std::string const& value : fact.shown(node, node))
                text += std::string(fact.name) + "=" + value + " ";
        return text;
    };
    EXPECT_EQ(shown(), "");
    node.SetEffort(3);
    node.SetSwimLane(L"clerk");
    EXPECT_EQ(shown(), "swimlane=clerk effort=3 ");
    node.SetTaskName(L"T");
    EXPECT_EQ(shown(), "task=T priority=normal swimlane=clerk effort=3 estimated effort=8 duration=1 ");
}

TEST(WorkflowFolder, AnApplicationTellsItsArgumentsAndDeployments) {
    NodeTree const tree(new CFCApplicationNode);
    auto& node = dynamic_cast<CFCApplicationNode&>(*tree);
    auto const shown = [&](std::string_view name) {
        for (WorkflowFact const& fact : workflowFacts())
            if (fact.name == name)
                return fact.shown(node, node);
        return std::vector<std::string>{"there is no such fact"};
    };
    EXPECT_THAT(shown("arguments"), IsEmpty());
    EXPECT_THAT(shown("deployments"), IsEmpty());
    for (int const index : {1, 2}) {
        CFCArgumentData& argument = *node.CreateNewArgument();
        argument.SetArgumentIndex(index);
        argument.SetArgumentValue(index == 1 ? L"-batch" : L"$Input");
    }
    CFCDeploymentData& cluster = *node.CreateNewDeployment();
    cluster.SetNodeCaption(L"cluster");
    for (auto const& [name, value] : {std::pair(L"Path", L"/opt/solver"), std::pair(L"Executable", L"solve")}) {
        CFCVariableData& variable = *cluster.CreateNewVariable();
        variable.SetVariableName(name);
        variable.SetValue(value);
    }
    node.CreateNewDeployment()->SetNodeCaption(L"desk");
    EXPECT_THAT(shown("arguments"), ElementsAre("1: -batch", "2: $Input"));
    EXPECT_THAT(shown("deployments"), ElementsAre("cluster: Path=/opt/solver, Executable=solve", "desk"));
}

TEST(WorkflowFolder, NamesOfFactsAreTheirOwn) {
    std::vector<std::string_view> names;
    for (WorkflowFact const& fact : workflowFacts()) {
        EXPECT_EQ(std::count(names.begin(), names.end(), fact.name), 0) << fact.name;
        names.push_back(fact.name);
    }
}

} // namespace
