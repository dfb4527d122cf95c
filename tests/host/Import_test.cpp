// Workflow folders on their way into a document, and documents that went into one and came back.

#include "Bridge.h"
#include "Golden.h"
#include "Program.h"

#include "flowmere/Flowmere.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/workflow/FromWorkflow.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <sstream>

namespace {

using namespace flowmere::test;
namespace fs = std::filesystem;
namespace host = flowmere::host;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

fs::path const kBeam = fs::path(FLOWMERE_EXAMPLES) / "beam";
fs::path const kForeign = dataFolder() / "host/import/foreign";

class Import : public ScratchTest {
protected:
    ProgramRun run(std::vector<std::string> arguments, ProgramSetting setting = {}) const {
        setting.folder = scratch.path();
        return runProgram(arguments, setting);
    }
    ProgramRun import(std::string const& folder, std::string const& out = "out.xml",
                      ProgramSetting setting = {}) const {
        return run({"import", folder, out}, std::move(setting));
    }
    // A folder with these parts of a definition, and with files of variables and of the layout that hold nothing.
    void folder(std::string const& name, std::string const& nodes, std::string const& variables = "",
                std::string const& layout = "") const {
        scratch.write(name + "/processdefinition.xml",
                      "<process-definition name=\"Job\">" + nodes + "</process-definition>");
        scratch.write(name + "/process.var", "<PROCESS name=\"Job\"><PROCESS_VARIABLES/><BLOCK_VARIABLES>" + variables +
                                                 "</BLOCK_VARIABLES></PROCESS>");
        scratch.write(name + "/gpd.xml", "<root-container name=\"Job\">" + layout + "</root-container>");
    }
    // What a run of "show" says of a document, without its first lines.
    std::string shown(std::string const& file) const { return run({"show", file}).out; }
    static std::vector<std::string> linesOf(std::string const& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
};

// --- There and back ------------------------------------------------------------------------------------------------

TEST_F(Import, TheBeamStudyRunsAsBeforeWhenItComesBack) {
    ProgramRun const exported = run({"export", (kBeam / "beam.xml").string(), "wf"});
    ASSERT_EQ(exported.exitCode, 0) << exported.out << exported.err;
    ProgramRun const imported = import("wf", "back.xml");
    EXPECT_EQ(imported.exitCode, 0) << imported.out << imported.err;
    EXPECT_EQ(imported.err, "");
    expectGolden("host/import/beam.txt", imported.out);
    fs::copy_file(kBeam / "profiles.csv", scratch / "profiles.csv");
    ProgramRun const ran = run({"run", "back.xml", "--scripts", "wf"});
    EXPECT_EQ(withoutTimes(ran.out), readFile(kBeam / "expected.txt"));
    EXPECT_EQ(ran.err, "");
    EXPECT_EQ(ran.exitCode, 0);

    // All that differs is the names of the scripts.
    ProgramRun const diff = run({"diff", (kBeam / "beam.xml").string(), "back.xml"});
    for (std::string const& line : linesOf(diff.out))
        if (line.find(" -> back.xml: ") == std::string::npos) {
            EXPECT_THAT(line, HasSubstr("script"));
        }
}

TEST_F(Import, ADocumentInTheFolderFindsScriptsAndFilesBesideIt) {
    ASSERT_EQ(run({"export", (kBeam / "beam.xml").string(), "wf"}).exitCode, 0);
    ProgramRun const imported = import("wf", "wf/beam.xml");
    EXPECT_EQ(imported.exitCode, 0) << imported.out << imported.err;
    EXPECT_THAT(imported.out, Not(HasSubstr("--scripts")));
    ProgramRun const ran = run({"run", "wf/beam.xml"});
    EXPECT_EQ(withoutTimes(ran.out), readFile(kBeam / "expected.txt"));
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
}

TEST_F(Import, WhatIsExportedAgainIsTheSameFolder) {
    for (char const* const name : {"one", "two"})
        fs::create_directory(scratch / name);
    ASSERT_EQ(run({"export", (kBeam / "beam.xml").string(), "one/wf"}).exitCode, 0);
    fs::copy_file(kBeam / "profiles.csv", scratch / "profiles.csv");
    ASSERT_EQ(import("one/wf", "back.xml").exitCode, 0);
    ProgramRun const again = run({"export", "back.xml", "two/wf", "--scripts", "one/wf"});
    EXPECT_EQ(again.exitCode, 0) << again.out << again.err;
    expectSameFiles(scratch / "one/wf", scratch / "two/wf");
}

TEST_F(Import, ADocumentOfAllSortsComesBackAndGoesOutTheSame) {
    std::string variables;
    for (char const* const type : {"Int",         "Float",       "Double",      "String",         "TarnObject",
                                   "Point2",      "Point3",      "Matrix",      "File",           "Directory",
                                   "IntArray",    "FloatArray",  "DoubleArray", "StringArray",    "TarnObjectArray",
                                   "Point2Array", "Point3Array", "FileArray",   "DirectoryArray", "OwnType"}) {
        bool const isArray = std::string(type).ends_with("Array");
        variables += variable(std::string("V") + type, type, isArray ? "['a', 'b']" : "1", "Output", "", isArray);
    }
    variables += variable("Link", "Double", "", "In-and-Output", "Inner.Deep.Leaf.V") +
                 variable("Text", "String", "a &<\"'>  b");
    scratch.write(
        "doc.xml",
        wholeProcess(node("S", "Oval") + node("A", "Rectangle", variables) + node("F", "Fork") + node("J", "Join") +
                         group("Inner", group("Deep", node("Leaf", "Rectangle", variable("V", "Double", "2.5")))) +
                         node("D", "Decision") + node("E", "Oval") + connector("S", "A") +
                         route("A", "F",
                               "<POINT Location_X=\"1.5\" Location_Y=\"9\"/><POINT Location_X=\"3\" "
                               "Location_Y=\"8\"/>") +
                         connector("F", "Inner") + connector("F", "D", 4, 2) + connector("J", "E") +
                         connector("Inner", "J") + connector("D", "J", 5, 3),
                     variable("Top", "DoubleArray", "[1.0]", "Input", "", true) +
                         variable("Name", "String", "n", "Output")));
    for (char const* const name : {"one", "two"})
        fs::create_directory(scratch / name);
    ASSERT_NE(run({"export", "doc.xml", "one/wf"}).exitCode, 2);
    ProgramRun const imported = import("one/wf", "back.xml");
    ASSERT_NE(imported.exitCode, 2) << imported.err;
    EXPECT_EQ(imported.exitCode, 0) << imported.out;
    ProgramRun const diff = run({"diff", "doc.xml", "back.xml"});
    EXPECT_EQ(diff.exitCode, 0) << diff.out;
    ASSERT_NE(run({"export", "back.xml", "two/wf"}).exitCode, 2);
    expectSameFiles(scratch / "one/wf", scratch / "two/wf");
}

TEST_F(Import, AddedStatesGoAgainAndOthersStay) {
    scratch.write("doc.xml", wholeProcess(node("A") + node("B") + connector("A", "B")));
    ASSERT_NE(run({"export", "doc.xml", "wf"}).exitCode, 2);
    EXPECT_EQ(import("wf").exitCode, 0);
    EXPECT_EQ(run({"diff", "doc.xml", "out.xml"}).exitCode, 0);

    // One that somebody has given a second way is no longer ours.
    std::string definition = scratch.read("wf/processdefinition.xml");
    std::size_t const place = definition.find("</start-state>");
    definition.insert(place, "<transition to=\"B\" name=\"Start.B\"/>");
    scratch.write("wf/processdefinition.xml", definition);
    ASSERT_NE(import("wf").exitCode, 2);
    EXPECT_THAT(shown("out.xml"), HasSubstr("Start"));
}

// --- Folders from elsewhere ----------------------------------------------------------------------------------------

TEST_F(Import, AFolderFromElsewhereIsReadAsFarAsItTells) {
    ProgramRun const imported = import(kForeign.string());
    EXPECT_EQ(imported.exitCode, 1);
    EXPECT_EQ(imported.err, "");
    expectGolden("host/import/foreign.txt", withName(imported.out, kForeign.string(), "FOREIGN"));
    expectGolden("host/import/foreign-shown.txt", shown("out.xml"));
    ProgramRun const drawn = run({"draw", "out.xml", "-o", "out.svg"});
    EXPECT_EQ(drawn.exitCode, 0) << drawn.err;
}

TEST_F(Import, TellsTheSameAsJson) {
    folder("wf", "<start-state name=\"S\"><transition to=\"A\"/></start-state><task-node name=\"A\"><task name=\"A\" "
                 "swimlane=\"boss\"/></task-node>");
    ProgramRun const imported = run({"import", "wf", "out.xml", "--json"});
    EXPECT_EQ(imported.exitCode, 1);
    auto const json = nlohmann::json::parse(imported.out);
    EXPECT_EQ(json["folder"], "wf");
    EXPECT_EQ(json["file"], "out.xml");
    EXPECT_EQ(json["blocks"], 2);
    EXPECT_EQ(json["connectors"], 1);
    EXPECT_EQ(json["scripts"], 0);
    EXPECT_TRUE(json["scriptRoot"].is_null());
    EXPECT_THAT(json["lost"].dump(), HasSubstr("swimlane \\\"boss\\\""));
    EXPECT_EQ(json["changed"].size(), 1U);
}

TEST_F(Import, TheFlowGoesOnByItself) {
    folder("wf", "<start-state name=\"S\"><transition to=\"A\"/></start-state>"
                 "<task-node name=\"A\"><transition to=\"B\"/><transition to=\"C\"/></task-node>"
                 "<task-node name=\"B\"><transition to=\"C\" inport=\"6\" outport=\"2\"/></task-node>"
                 "<end-state name=\"C\"/>");
    ProgramRun const imported = import("wf");
    EXPECT_THAT(imported.out, HasSubstr("~ S: its connector leaves by grip 6 (bottom) from now on"));
    EXPECT_THAT(imported.out, HasSubstr("~ A: its connectors leave by grips of their own from now on"));
    EXPECT_THAT(imported.out, Not(HasSubstr("~ B:")));
    std::string const out = scratch.read("out.xml");
    EXPECT_THAT(out, HasSubstr("EndBlock=\"B\" EndHandle=\"2\" EndPortName=\"Top\" NumPoints=\"0\" Order=\"1\" "
                               "StartBlock=\"A\" StartHandle=\"6\""));
    EXPECT_THAT(out, HasSubstr("EndBlock=\"C\" EndHandle=\"2\" EndPortName=\"Top\" NumPoints=\"0\" Order=\"1\" "
                               "StartBlock=\"A\" StartHandle=\"8\""));
    ProgramRun const ran = run({"run", "out.xml"});
    EXPECT_THAT(linesOf(withoutTimes(ran.out)), Contains(StartsWith("S  #")));
}

TEST_F(Import, KindsWithoutAnotherFormStay) {
    folder(
        "wf",
        "<fork name=\"F\"/><join name=\"J\"/><task-node name=\"T\"><task name=\"T\" application=\"Cad\"/></task-node>"
        "<decision name=\"D\"/><super-state name=\"G\"><task-node name=\"I\"/></super-state>");
    ProgramRun const imported = import("wf");
    ASSERT_EQ(imported.err, "");
    host::Document const document((scratch / "out.xml").string());
    EXPECT_EQ(document.block("F").GetNodeType(), eShapeType_Fork);
    EXPECT_EQ(document.block("J").GetNodeType(), eShapeType_Join);
    EXPECT_EQ(document.block("T").GetNodeType(), eShapeType_Task);
    EXPECT_STREQ(document.block("T").GetBPMBlockData()->GetApplication(), L"Cad");
    EXPECT_EQ(document.block("D").GetNodeType(), eShapeType_Decision);
    EXPECT_EQ(document.block("G").GetNodeType(), eShapeType_SubProcess);
    EXPECT_EQ(document.block("G.I").GetNodeType(), eShapeType_Block);
    EXPECT_THAT(imported.out, HasSubstr("~ G: the super-state becomes a sub-process"));
}

TEST_F(Import, LoopsLoseTheirKind) {
    folder("wf", "<task-node name=\"L\" nodeType=\"iteratingLoopSubProcess\" max-iterations=\"3\"/>");
    folder("wf/L", "<task-node name=\"I\"/>");
    ProgramRun const imported = import("wf");
    EXPECT_EQ(imported.exitCode, 1);
    EXPECT_THAT(imported.out, HasSubstr("- L: its kind, sub-process loop"));
    EXPECT_THAT(imported.out, HasSubstr("maximum of iterations 3"));
    EXPECT_EQ(host::Document((scratch / "out.xml").string()).block("L.I").GetNodeType(), eShapeType_Block);
}

struct TaskRow {
    char const* name;
    char const* task; // attributes of the task, or elements of the node
    char const* text;
};

class LossOnImport : public Import, public testing::WithParamInterface<TaskRow> {};

TEST_P(LossOnImport, IsTold) {
    TaskRow const& row = GetParam();
    bool const isElement = *row.task == '<';
    folder("wf", std::string("<task-node name=\"A\"><task name=\"A\" priority=\"normal\"") +
                     (isElement ? "/>" : std::string(" ") + row.task + "/>") + (isElement ? row.task : "") +
                     "</task-node>");
    ProgramRun const imported = import("wf");
    EXPECT_EQ(imported.exitCode, 1) << imported.err;
    EXPECT_THAT(linesOf(imported.out), Contains(testing::AllOf(StartsWith("- A: "), HasSubstr(row.text))));
}

INSTANTIATE_TEST_SUITE_P(
    Task, LossOnImport,
    testing::Values(TaskRow{"User", "user=\"ada\"", "user \"ada\""},
                    TaskRow{"Role", "userRole=\"r\"", "user role \"r\""},
                    TaskRow{"Category", "category=\"c\"", "category \"c\""},
                    TaskRow{"Swimlane", "swimlane=\"s\"", "swimlane \"s\""},
                    TaskRow{"TaskCategory", "taskCategory=\"t\"", "task category \"t\""},
                    TaskRow{"Project", "projectName=\"p\"", "project name \"p\""},
                    TaskRow{"Document", "requirementDocument=\"d\"", "requirement document \"d\""},
                    TaskRow{"Instruction", "workInstruction=\"w\"", "work instruction \"w\""},
                    TaskRow{"Late", "lateIndicator=\"Yes\"", "late indicator"},
                    TaskRow{"Critical", "criticalPathIndicator=\"Yes\"", "critical path indicator"},
                    TaskRow{"Data", "dataAvailability=\"Yes\"", "data availability"},
                    TaskRow{"Milestone", "milestone=\"Yes\"", "milestone"},
                    TaskRow{"Server", "runOnServer=\"Yes\"", "run on server"},
                    TaskRow{"Mail", "notify=\"Yes\"", "mail notification"},
                    TaskRow{"Overridden", "isDataOverrriden=\"true\"", "overridden data"},
                    TaskRow{"Version", "applicationVersion=\"2\"", "application version 2"},
                    TaskRow{"Effort", "effort=\"3\"", "effort 3"}, TaskRow{"Duration", "duration=\"5\"", "duration 5"},
                    TaskRow{"Cost", "cost=\"9\"", "cost 9"}, TaskRow{"Progress", "progress=\"50\"", "progress 50"},
                    TaskRow{"Lateness", "projectLate=\"2\"", "lateness 2"},
                    TaskRow{"Start", "startDate=\"1/2/2024\"", "start 1/2/2024"},
                    TaskRow{"End", "endDate=\"1/2/2024\"", "end 1/2/2024"},
                    TaskRow{"ActualStart", "actualStartDate=\"1/2/2024\"", "actual start 1/2/2024"},
                    TaskRow{"ActualEnd", "actualEndDate=\"1/2/2024\"", "actual end 1/2/2024"},
                    TaskRow{"Due", "dueDate=\"1/2/2024\"", "due date 1/2/2024"},
                    TaskRow{"Ready", "estimatedReady=\"1/2/2024\"", "estimated ready date 1/2/2024"},
                    TaskRow{"EstimatedEnd", "estimatedEndDate=\"1/2/2024\"", "estimated end date 1/2/2024"},
                    TaskRow{"Form", "form=\"a.html\"", "its form"},
                    TaskRow{"Event", "<event type=\"node-enter\"><action name=\"a\" class=\"x.Y\"/></event>",
                            "its action for the event \"node-enter\", \"a\" of class x.Y"},
                    TaskRow{"ScriptEvent", "<event type=\"node-enter\"><script name=\"a\">x</script></event>",
                            "its script for an event, \"a\""},
                    TaskRow{"Exception",
                            "<exception-handler exception-class=\"E\"><action name=\"a\"/></exception-handler>",
                            "its exception handler for E"},
                    TaskRow{"Timer", "<timer duedate=\"1/2/2024T3:4:5\" name=\"t\"/>", "its timer \"t\""},
                    TaskRow{"Reminder", "<reminder duedate=\"1/2/2024\"/>", "its reminder"},
                    TaskRow{"Module",
                            "<event type=\"task-start\"><action name=\"action\" "
                            "class=\"com.Mossgate.jBPM.Extensions.JythonHandler\"><modulePath>a.b</modulePath>"
                            "</action></event>",
                            "its script a.b: there is no file A/scripts/A.py"}),
    [](testing::TestParamInfo<TaskRow> const& entry) { return std::string(entry.param.name); });

TEST_F(Import, NamesOfTransitionsAreTold) {
    folder("wf",
           "<task-node name=\"A\"><transition to=\"B\" name=\"yes\"/></task-node><task-node name=\"B\"><transition "
           "to=\"A\" name=\"B.A\"/></task-node>");
    std::string const out = import("wf").out;
    EXPECT_THAT(out, HasSubstr("- A: the name \"yes\" of its transition to B"));
    EXPECT_THAT(out, Not(HasSubstr("B.A")));
}

TEST_F(Import, LabelsOfTransitionsAreTold) {
    folder("wf", "<task-node name=\"A\"><transition to=\"B\" label=\"yes\"/></task-node><task-node name=\"B\"/>");
    EXPECT_THAT(import("wf").out, HasSubstr("- A -> B: the label \"yes\" of the transition"));
}

TEST_F(Import, VariablesOfTheProcessAndTypesOfArraysComeBack) {
    folder("wf", "<task-node name=\"A\"/>",
           "<BLOCK Name=\"A\"><VARIABLE Name=\"V\" DataType=\"StringArray\" Type=\"Data Array\" Array=\"true\" "
           "IOType=\"Output\" Scope=\"Local\" Value=\"['x']\" Displayable=\"true\"/></BLOCK>");
    std::string text = scratch.read("wf/process.var");
    std::string const empty = "<PROCESS_VARIABLES/>";
    text.replace(text.find(empty), empty.size(),
                 "<PROCESS_VARIABLES><VARIABLE Name=\"P\" DataType=\"Double\" Type=\"Data\" IOType=\"Input\" "
                 "Value=\"2.5\"/></PROCESS_VARIABLES>");
    scratch.write("wf/process.var", text);
    ASSERT_NE(import("wf").exitCode, 2);
    host::Document const document((scratch / "out.xml").string());
    EXPECT_EQ(document.variable("A.V").GetDataType(), EDataType_StringArray);
    EXPECT_STREQ(document.variable("A.V").GetValue(), L"['x']");
    EXPECT_STREQ(document.variable(".P").GetValue(), L"2.5");
    EXPECT_EQ(document.variable(".P").GetDataType(), EDataType_Double);
}

TEST_F(Import, PlacesThatDocumentsCannotKeepMove) {
    folder("wf", "<task-node name=\"A\"/><task-node name=\"B\"/>", "",
           "<node name=\"A\" x=\"29\" y=\"57\" width=\"58\" height=\"113\"/>"
           "<node name=\"B\" x=\"100\" y=\"100\" width=\"100\" height=\"100\"/>");
    ProgramRun const imported = import("wf");
    EXPECT_EQ(imported.exitCode, 0) << imported.err;
    EXPECT_THAT(imported.out, HasSubstr("~ 1 place of blocks and routes moved by hundredths of an inch"));
    EXPECT_EQ(run({"diff", "out.xml", "out.xml"}).exitCode, 0);
    host::Document const document((scratch / "out.xml").string());
    EXPECT_EQ(document.block("A").CFCShape::GetTuRect()->left, 28);
    EXPECT_EQ(document.block("B").CFCShape::GetTuRect()->left, 100);
}

TEST_F(Import, WithoutVariablesAndLayoutTheFlowIsThere) {
    folder("wf", "<start-state name=\"S\"><transition to=\"A\"/></start-state><task-node name=\"A\"/>");
    fs::remove(scratch / "wf/process.var");
    fs::remove(scratch / "wf/gpd.xml");
    ProgramRun const imported = import("wf");
    EXPECT_EQ(imported.exitCode, 1);
    EXPECT_THAT(imported.out, HasSubstr("- wf/process.var: there is no such file"));
    EXPECT_THAT(imported.out, HasSubstr("- wf/gpd.xml: there is no such file"));
    EXPECT_THAT(imported.out, HasSubstr("2 blocks, 1 connector"));
}

TEST_F(Import, TheDefinitionItselfNamesTheFolder) {
    folder("wf", "<task-node name=\"A\"/>");
    EXPECT_NE(import("wf/processdefinition.xml").exitCode, 2);
    EXPECT_TRUE(fs::exists(scratch / "out.xml"));
}

// --- Bad input -----------------------------------------------------------------------------------------------------

struct BadRow {
    char const* name;
    std::vector<std::string> arguments;
    char const* error;
};

class BadImport : public Import, public testing::WithParamInterface<BadRow> {};

TEST_P(BadImport, IsOneLineAndLeavesAllAsItWas) {
    folder("wf", "<task-node name=\"A\"/>");
    folder("broken", "<task-node>");
    folder("nested", "<task-node name=\"G\" nodeType=\"basicSubProcess\"/>");
    folder("nested/G", "</task-node>");
    folder("variables", "");
    scratch.write("variables/process.var", "<PROCESS>");
    folder("layout", "");
    scratch.write("layout/gpd.xml", "");
    scratch.write("other/processdefinition.xml", "<html/>");
    scratch.write("empty/processdefinition.xml", "");
    scratch.write("full/thing", "x");
    scratch.write("old.xml", "old");
    auto const before = filesOf(scratch.path());
    std::vector<std::string> arguments = GetParam().arguments;
    arguments.insert(arguments.begin(), "import");
    ProgramRun const refused = run(arguments);
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(withName(refused.err, scratch.path().string(), "SCRATCH"), StartsWith(GetParam().error));
    EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1) << refused.err;
    EXPECT_EQ(filesOf(scratch.path()), before);
}

INSTANTIATE_TEST_SUITE_P(
    Input, BadImport,
    testing::Values(
        BadRow{"NoFolder", {"gone", "out.xml"}, "flowmere: gone: "},
        BadRow{"NoDefinition", {"full", "out.xml"}, "flowmere: full: is a folder without a workflow"},
        BadRow{"Document", {"old.xml", "out.xml"}, "flowmere: old.xml: is no workflow folder"},
        BadRow{"Broken", {"broken", "old.xml"}, "flowmere: broken/processdefinition.xml: line 1, column "},
        BadRow{"Empty", {"empty", "old.xml"}, "flowmere: empty/processdefinition.xml: "},
        BadRow{"OtherRoot", {"other", "old.xml"}, "flowmere: other/processdefinition.xml: is no process definition"},
        BadRow{"BrokenInside", {"nested", "old.xml"}, "flowmere: nested/G/processdefinition.xml: line 1, column "},
        BadRow{"BrokenVariables", {"variables", "old.xml"}, "flowmere: variables/process.var: line 1, column "},
        BadRow{"BrokenLayout", {"layout", "old.xml"}, "flowmere: layout/gpd.xml: "},
        BadRow{"OutIsFolder", {"wf", "full"}, "flowmere: full: cannot be written: it is a folder"},
        BadRow{"OutWithoutParent", {"wf", "no/out.xml"}, "flowmere: no/out.xml: cannot be written: there is no folder"},
        BadRow{"OutOfTheFolder",
               {"wf", "wf/gpd.xml"},
               "flowmere: wf/gpd.xml: cannot be written: it is a file of the workflow folder"},
        BadRow{"OutWithoutName", {"wf", ""}, "flowmere: the name of the file to save is empty"}),
    [](testing::TestParamInfo<BadRow> const& entry) { return std::string(entry.param.name); });

TEST_F(Import, AFullDiskLeavesTheOldDocument) {
    std::string nodes;
    for (int number = 0; number < 50; ++number)
        nodes += "<task-node name=\"B" + std::to_string(number) + "\"/>";
    folder("wf", nodes);
    scratch.write("out.xml", "old");
    ProgramRun const refused = import("wf", "out.xml", {.fileSizeLimit = 4096});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, StartsWith("flowmere: out.xml: cannot be written: "));
    EXPECT_EQ(scratch.read("out.xml"), "old");
    EXPECT_THAT(entriesOf(scratch.path()), ElementsAre("out.xml", "wf"));
}

} // namespace
