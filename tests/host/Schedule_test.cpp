// Project schedules on their way into documents and workflow folders.

#include "Golden.h"
#include "Program.h"

#include "flowmere/Flowmere.h"
#include "host/basics/Text.h"
#include "host/workflow/Names.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace flowmere::test;
namespace fs = std::filesystem;
namespace host = flowmere::host;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string element(std::string const& tag, std::string const& text) {
    return "<" + tag + ">" + text + "</" + tag + ">\n";
}

std::string after(std::string const& uid) {
    return element("PredecessorLink", element("PredecessorUID", uid));
}

// A task as schedules have them; what is empty is left out.
std::string task(std::string const& uid, std::string const& name, std::string const& type, std::string const& wbs,
                 std::string const& more = "") {
    std::string text = element("UID", uid);
    if (!name.empty())
        text += element("Name", name);
    if (!type.empty())
        text += element("Type", type);
    if (!wbs.empty())
        text += element("WBS", wbs);
    return element("Task", text + more);
}

std::string project(std::string const& tasks, std::string const& name = "Plan") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Project>\n" + element("Name", name) + element("Tasks", tasks) +
           "</Project>\n";
}

// Two summaries with tasks, joined in each and from one to the other.
std::string house(std::string const& more = "") {
    return task("1", "Design", "1", "2") + task("2", "Loads", "0", "2.1") + task("3", "Frame", "0", "2.2", after("2")) +
           task("4", "Building", "1", "3", after("1")) + task("5", "Walls", "0", "3.1") +
           task("6", "Roof", "0", "3.2", after("5")) + more;
}

class Schedule : public ScratchTest {
protected:
    ProgramRun run(std::vector<std::string> const& arguments, ProgramSetting setting = {}) const {
        setting.folder = scratch.path();
        return runProgram(arguments, setting);
    }
    ProgramRun import(std::string const& text, std::vector<std::string> const& more = {},
                      std::string const& out = "out.xml") const {
        scratch.write("plan.xml", text);
        std::vector<std::string> arguments{"schedule", "plan.xml", "-o", out};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }
    // What "show" says of a document or a folder, without its first line.
    std::string shown(std::string const& file = "out.xml") const {
        std::string const text = run({"show", file}).out;
        return text.substr(text.find('\n') + 1);
    }
    nlohmann::json json(std::string const& text, std::vector<std::string> more = {}) const {
        more.emplace_back("--json");
        return nlohmann::json::parse(import(text, more).out);
    }
    // The last line of an output.
    static std::string last(std::string const& text) {
        std::size_t const end = text.rfind('\n');
        std::size_t const begin = text.rfind('\n', end - 1);
        return text.substr(begin + 1, end - begin - 1);
    }
};

// --- The example ---------------------------------------------------------------------------------------------------

fs::path const kBridge = fs::path(FLOWMERE_EXAMPLES) / "schedule/plan.xml";

TEST_F(Schedule, TheExampleBecomesAConnectedDocument) {
    fs::copy_file(kBridge, scratch / "plan.xml");
    ProgramRun const ran = run({"schedule", "plan.xml", "-o", "bridge.xml", "--connect"});
    EXPECT_EQ(ran.err, "");
    EXPECT_EQ(ran.exitCode, 1);
    expectGolden("host/schedule/bridge.txt", ran.out + run({"show", "bridge.xml"}).out);
    EXPECT_THAT(readFile(scratch / "bridge.xml"),
                HasSubstr("Description=\"WBS 2.2, UID 4, start 2026-03-12 08:00, finish 2026-03-20 17:00, "
                          "predecessor UID 3\""));
    // What is missing is scripts alone: nobody has written any.
    nlohmann::json const checked = nlohmann::json::parse(run({"check", "bridge.xml", "--json"}).out);
    EXPECT_FALSE(checked["findings"].empty());
    for (nlohmann::json const& finding : checked["findings"])
        EXPECT_EQ(finding["rule"], "missing-script") << finding;
    EXPECT_EQ(run({"draw", "bridge.xml", "-o", "bridge.png"}).exitCode, 0);
    EXPECT_GT(fs::file_size(scratch / "bridge.png"), 10000U);
}

TEST_F(Schedule, TheExampleBecomesAWorkflowFolderWithoutFindings) {
    fs::copy_file(kBridge, scratch / "plan.xml");
    ProgramRun const ran = run({"schedule", "plan.xml", "-o", "bridge", "--connect"});
    EXPECT_EQ(ran.err, "");
    EXPECT_EQ(ran.exitCode, 1);
    ProgramRun const shownFolder = run({"show", "bridge"});
    EXPECT_EQ(shownFolder.err, "");
    expectGolden("host/schedule/bridge-folder.txt", ran.out + shownFolder.out);
    ProgramRun const checked = run({"check", "bridge"});
    EXPECT_EQ(checked.exitCode, 0) << checked.out;
    EXPECT_EQ(run({"draw", "bridge", "-o", "bridge.svg"}).exitCode, 0);
    // It is a folder as export makes them: exported once more it is the same.
    ProgramRun const again = run({"export", "bridge", "again"});
    EXPECT_EQ(again.exitCode, 0) << again.out << again.err;
    ProgramRun const diff = run({"diff", "bridge", "again"});
    EXPECT_EQ(diff.exitCode, 0) << diff.out;
}

// --- Forms of the file ---------------------------------------------------------------------------------------------

struct Form {
    char const* name;
    std::string (*make)(std::string text);
};

std::string withNamespace(std::string text) {
    return text.replace(text.find("<Project>"), 9, "<Project xmlns=\"http://schemas.example.org/plan\">");
}
std::string withMark(std::string text) {
    return "\xEF\xBB\xBF" + text;
}
std::string onOneLine(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text;
}
std::string withCarriageReturns(std::string text) {
    std::string out;
    for (char const letter : text)
        out += letter == '\n' ? std::string("\r\n") : std::string(1, letter);
    return out;
}
std::string inUTF16(std::string text) {
    text.replace(text.find("UTF-8"), 5, "UTF-16");
    std::string out = "\xFF\xFE";
    for (char const letter : text)
        out += std::string(1, letter) + '\0';
    return out;
}

class ScheduleForm : public Schedule, public testing::WithParamInterface<Form> {};

TEST_P(ScheduleForm, GivesTheSameDocument) {
    ProgramRun const plain = import(project(house()), {"--connect"});
    EXPECT_EQ(plain.exitCode, 0) << plain.out << plain.err;
    std::string const document = readFile(scratch / "out.xml");
    ProgramRun const formed = import(GetParam().make(project(house())), {"--connect"});
    EXPECT_EQ(formed.exitCode, 0);
    EXPECT_EQ(formed.out, plain.out);
    EXPECT_EQ(formed.err, "");
    EXPECT_EQ(readFile(scratch / "out.xml"), document);
}

INSTANTIATE_TEST_SUITE_P(Forms, ScheduleForm,
                         testing::Values(Form{"Namespace", withNamespace}, Form{"ByteOrderMark", withMark},
                                         Form{"OneLine", onOneLine}, Form{"CarriageReturns", withCarriageReturns},
                                         Form{"Utf16", inUTF16}),
                         [](auto const& row) { return row.param.name; });

TEST_F(Schedule, NameMayStandBeforeTypeAndCode) {
    EXPECT_EQ(import(project(house()), {"--connect"}).exitCode, 0);
    EXPECT_THAT(shown(), AllOf(HasSubstr("  Design: sub-process, first\n"), HasSubstr("    Frame: block")));
}

TEST_F(Schedule, ATypeBehindTheCodeIsTold) {
    ProgramRun const ran = import(project(
        element("Task", element("UID", "1") + element("WBS", "1") + element("Name", "Late") + element("Type", "1"))));
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_THAT(ran.out, HasSubstr("    line 4: \"Late\" (UID 1, WBS 1): its Type 1 stands behind its WBS, where it "
                                   "does not count\n"));
}

TEST_F(Schedule, LinesAreOnlyNamedWhereTheyTellTasksApart) {
    std::string const text = project(task("1", "A", "0", "5") + task("2", "B", "0", "6"));
    EXPECT_THAT(import(text).out, AllOf(HasSubstr("    line 4: \"A\""), HasSubstr("    line 9: \"B\"")));
    EXPECT_THAT(import(onOneLine(text)).out, AllOf(HasSubstr("    task 1: \"A\""), HasSubstr("    task 2: \"B\"")));
    // What only looks like a task is none.
    std::string const odd = "<Project><!-- <Task> -->\n<Tasks>\n<Task><UID>1</UID><Notes><![CDATA[<Task>]]></Notes>"
                            "<Name>A</Name><WBS>7</WBS></Task></Tasks><TaskLinks/></Project>";
    EXPECT_THAT(import(odd).out, HasSubstr("    line 3: \"A\" (UID 1, WBS 7): it has no Type\n"));
    // Tasks where nobody reads any make the count wrong, and then there are no lines.
    EXPECT_THAT(import("<Project><Old>\n<Task/></Old>\n<Tasks><Task><UID>1</UID><Name>A</Name><WBS>7</WBS></Task>"
                       "</Tasks></Project>")
                    .out,
                HasSubstr("    task 1: \"A\""));
}

// --- What is left out ----------------------------------------------------------------------------------------------

TEST_F(Schedule, EachTaskThatIsLeftOutIsToldWithItsReason) {
    std::string const text =
        project(task("0", "Plan", "1", "0") + task("", "", "", "") + task("20", "Early", "0", "2.9") +
                house(task("7", "", "", "") + task("8", "No code", "0", "") + task("9", "Opening", "0", "4") +
                      task("10", "Speech", "0", "4.1") + task("11", "Lost", "0", "9.1") +
                      task("12", "Deep", "0", "3.1.1") + task("13", "Too late", "0", "2.3") +
                      element("Task", element("UID", "14") + element("Name", "Holder") +
                                          element("Tasks", task("15", "Inner", "1", "5"))) +
                      task("16", "Empty\ncode", "0", " ") + task("17", "Odd type", "two", "8")));
    ProgramRun const ran = import(text);
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_EQ(ran.err, "");
    expectGolden("host/schedule/left-out.txt", ran.out);
    nlohmann::json const told = json(text);
    EXPECT_EQ(told["tasks"], 20);
    EXPECT_EQ(told["superStates"], 2);
    EXPECT_EQ(told["taskBlocks"], 4);
    EXPECT_EQ(told["connectors"], nullptr);
    ASSERT_EQ(told["leftOut"].size(), 14U);
    EXPECT_EQ(told["leftOut"][0]["reason"], "whole-project");
    EXPECT_EQ(told["leftOut"][0]["lost"], false);
    nlohmann::json const late = told["leftOut"][9];
    EXPECT_EQ(late["name"], "Too late");
    EXPECT_EQ(late["task"], 16);
    EXPECT_EQ(late["uid"], "13");
    EXPECT_EQ(late["wbs"], "2.3");
    EXPECT_EQ(late["reason"], "not-in-turn");
    EXPECT_EQ(late["text"],
              "the task above it is not the one before it at the top; belongs below 2, and 3 was the last");
    EXPECT_GT(late["line"], 3);
    EXPECT_EQ(late["lost"], true);
}

TEST_F(Schedule, TheRowOfTheProjectAndBlankRowsAreNoLoss) {
    ProgramRun const ran = import(project(task("0", "Plan", "1", "0") + house(task("7", "", "", ""))));
    EXPECT_EQ(ran.exitCode, 0) << ran.out;
    EXPECT_THAT(ran.out, AllOf(StartsWith("~ 1 task left out: it is the row of the whole project"),
                               HasSubstr("~ 1 task left out: its row is blank\n"), Not(HasSubstr("A task comes in"))));
}

TEST_F(Schedule, CodesThatDifferFromTheOutlineDecide) {
    // The outline would put the second below the first; its code puts it at the top.
    std::string const text = project(task("1", "One", "1", "A", element("OutlineNumber", "1")) +
                                     task("2", "Two", "1", "B", element("OutlineNumber", "1.1")) +
                                     task("3", "Three", "0", "b.7", element("OutlineNumber", "9")));
    EXPECT_EQ(import(text).exitCode, 0);
    EXPECT_THAT(shown(), AllOf(HasSubstr("  One: "), HasSubstr("\n  Two: sub-process"), HasSubstr("\n    Three: ")));
}

TEST_F(Schedule, SummariesFirstLeaveTheLastTheirTasks) {
    ProgramRun const ran = import(project(task("1", "A", "1", "2") + task("2", "B", "1", "3") +
                                          task("3", "Of A", "0", "2.1") + task("4", "Of B", "0", "3.1")));
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_THAT(ran.out, HasSubstr("\"Of A\" (UID 3, WBS 2.1): belongs below 2, and 3 was the last\n"));
    EXPECT_THAT(last(ran.out), StartsWith("plan.xml -> out.xml: 4 tasks: 1 super-state, 2 task blocks, 1 left out; "));
}

TEST_F(Schedule, ATaskThatHoldsOthersIsASuperState) {
    // The very first summary is a task, as far as the reader goes; so is one of Type 0 below 1.
    ProgramRun const ran = import(project(task("1", "Empty", "1", "1") + task("2", "Full", "0", "1.1") +
                                          task("3", "Leaf", "0", "1.1.1") + task("4", "Bare", "", "1.2")));
    EXPECT_EQ(ran.exitCode, 0) << ran.out << ran.err;
    EXPECT_THAT(ran.out, AllOf(HasSubstr("~ Full: becomes a super-state: there are tasks in it\n"),
                               HasSubstr("~ no task is in 1 of the super-states, and the flow needs one to go through: "
                                         "Type 1, or a WBS as 1.2, makes super-states\n"),
                               HasSubstr(": 2 super-states, 2 task blocks, 0 left out;")));
    EXPECT_THAT(shown(), AllOf(HasSubstr("  Empty: block"), HasSubstr("\n    Leaf: block")));
}

TEST_F(Schedule, AScheduleWithoutTasksGivesAnEmptyProcess) {
    for (std::string const text : {"<Project/>", "<Project><Tasks/></Project>", "<p:Project xmlns:p=\"x\"/>"}) {
        ProgramRun const ran = import(text);
        EXPECT_EQ(ran.exitCode, 0) << ran.out << ran.err;
        EXPECT_EQ(ran.out, "plan.xml -> out.xml: 0 tasks: 0 super-states, 0 task blocks, 0 left out; nothing changed "
                           "or lost\n");
    }
    EXPECT_THAT(run({"show", "out.xml"}).out, StartsWith("\"plan\": process, 0 blocks"));
    EXPECT_EQ(import("<Project/>", {}, "folder").exitCode, 0);
    EXPECT_EQ(run({"check", "folder"}).exitCode, 0);
}

TEST_F(Schedule, ANumberOfTheProcessItselfLeavesItOne) {
    ProgramRun const ran =
        import("<Project><UID>5</UID><Type>0</Type><Tasks>" + house() + "</Tasks></Project>", {"--connect"}, "folder");
    EXPECT_EQ(ran.exitCode, 0) << ran.out << ran.err;
    EXPECT_THAT(run({"show", "folder"}).out, StartsWith("\"plan\": workflow process"));
    EXPECT_EQ(run({"check", "folder"}).exitCode, 0);
}

// --- Values --------------------------------------------------------------------------------------------------------

TEST_F(Schedule, BrokenDatesAreTold) {
    ProgramRun const ran = import(
        project(task("1", "A", "1", "2", element("Start", "tomorrow") + element("Finish", "2026-13-45T99:00:00")) +
                task("2", "B", "1", "3", element("Start", "2026-03-05") + element("Finish", "")) +
                task("3", "C", "1", "4", element("Start", "99999-03-05T08:00:00"))));
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_THAT(ran.out, AllOf(HasSubstr("- A: its start \"tomorrow\": that is no date as 2024-03-05T08:00:00\n"),
                               HasSubstr("- B: its start \"2026-03-05\": that is no date"),
                               HasSubstr("- C: its start \"99999-03-05T08:00:00\": that is no date"),
                               HasSubstr("; 3 changed, 3 lost\n")));
    // Months that do not exist are none in the description either.
    EXPECT_THAT(readFile(scratch / "out.xml"), HasSubstr("Description=\"WBS 2, UID 1\""));
}

TEST_F(Schedule, BrokenNumbersAreTextsOrNothing) {
    ProgramRun const ran =
        import(project(task("x1", "A", "1", "2") + task("-7e9", "B", "zwei", "2.1", element("Milestone", "maybe")) +
                       task("3", "C", "1", "3", after("X1") + element("Duration", "PT??"))),
               {"--connect"});
    EXPECT_EQ(ran.exitCode, 0) << ran.out;
    EXPECT_THAT(readFile(scratch / "out.xml"), AllOf(HasSubstr("Description=\"WBS 2.1, UID -7e9\""),
                                                     HasSubstr("Description=\"WBS 3, UID 3, predecessor UID X1\"")));
    EXPECT_THAT(shown(), HasSubstr("      -> C, from grip 6 (bottom)"));
}

TEST_F(Schedule, MilestonesAndDatesComeIntoBothForms) {
    std::string const text =
        project(task("1", "A", "1", "2", element("Milestone", "1") + element("Start", "2026-03-05T08:30:00")));
    EXPECT_EQ(import(text).exitCode, 0);
    EXPECT_THAT(readFile(scratch / "out.xml"),
                HasSubstr("Description=\"WBS 2, UID 1, start 2026-03-05 08:30, milestone\""));
    EXPECT_EQ(import(text, {}, "folder").exitCode, 0);
    EXPECT_THAT(shown("folder"), HasSubstr("planned start: 5/3/2026"));
    EXPECT_THAT(readFile(scratch / "folder/processdefinition.xml"),
                AllOf(HasSubstr("<description>WBS 2, UID 1, start 2026-03-05 08:30, milestone</description>"),
                      HasSubstr("<type>TASK</type>")));
}

TEST_F(Schedule, NamesThatPathsDoNotTakeAreChangedAsInAnExport) {
    std::string const text =
        project(task("1", "Weld", "1", "2") + task("2", "weld", "1", "3") + task("3", "Weld", "1", "4") +
                task("4", "A/B.C\\D", "1", "5") + task("5", "", "1", "6") + task("6", "Fit", "0", "6.1") +
                task("7", "Fit", "0", "6.2", after("6")) + task("8", "Weld_2", "1", "7"));
    for (char const* const out : {"out.xml", "folder"}) {
        ProgramRun const ran = import(text, {"--connect"}, out);
        EXPECT_EQ(ran.exitCode, 0) << ran.out << ran.err;
        EXPECT_THAT(
            ran.out,
            AllOf(HasSubstr("~ \"weld\": is called \"weld_3\" from now on: names are unique in their level, whatever "
                            "their case\n"),
                  HasSubstr("~ \"Weld\": is called \"Weld_4\" from now on"),
                  HasSubstr("~ \"A/B.C\\D\": is called \"A_B_C_D\" from now on: names become folders and parts of "
                            "paths\n"),
                  HasSubstr("~ \"\": is called \"Task 5\" from now on: it has no name\n"),
                  HasSubstr("~ Task 5.\"Fit\": is called \"Fit_2\" from now on")));
        // The captions keep what the file says.
        EXPECT_THAT(shown(out), AllOf(HasSubstr("  A_B_C_D \"A/B.C\\D\": "), HasSubstr("-> Fit_2, ")));
    }
    EXPECT_TRUE(fs::is_directory(scratch / "folder/A_B_C_D"));
}

TEST_F(Schedule, LongNamesAreCutToWhatFoldersTake) {
    std::string name;
    for (int count = 0; count < 255; ++count)
        name += "\xC3\xA4";
    std::string const text = project(task("1", name, "1", "2") + task("2", name, "1", "3", after("1")));
    ProgramRun const ran = import(text, {"--connect"}, "folder");
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    EXPECT_TRUE(fs::is_directory(scratch / "folder" / name.substr(0, 200)));
    EXPECT_TRUE(fs::is_directory(scratch / "folder" / (name.substr(0, 200) + "_2")));
    EXPECT_THAT(shown("folder"), HasSubstr("\"" + name + "\": task"));
}

TEST(SafeName, IsCutBetweenLetters) {
    EXPECT_EQ(host::utf8(host::safeName(host::wide("a/b\\c.d\te"))), "a_b_c_d e");
    EXPECT_EQ(host::utf8(host::safeName(host::wide(std::string(200, 'x')))), std::string(200, 'x'));
    EXPECT_EQ(host::utf8(host::safeName(host::wide(std::string(201, 'x')))), std::string(200, 'x'));
    EXPECT_EQ(host::utf8(host::safeName(host::wide(std::string(199, 'x') + "\xC3\xA4"))), std::string(199, 'x'));
}

TEST(LevelNames, FindAFreeNumberForEachName) {
    host::LevelNames names;
    EXPECT_EQ(host::utf8(names.takeUnique(L"Weld")), "Weld");
    EXPECT_TRUE(names.take(L"Weld_3"));
    EXPECT_FALSE(names.take(L"WELD_3"));
    EXPECT_EQ(host::utf8(names.takeUnique(L"weld")), "weld_2");
    EXPECT_EQ(host::utf8(names.takeUnique(L"Weld")), "Weld_4");
    EXPECT_EQ(host::utf8(names.takeUnique(L"Weld_4")), "Weld_4_2");
}

// --- Connectors ----------------------------------------------------------------------------------------------------

TEST_F(Schedule, PredecessorsAreOnlyNamedWithoutConnect) {
    ProgramRun const ran = import(project(house()));
    EXPECT_EQ(ran.exitCode, 0);
    EXPECT_THAT(ran.out, HasSubstr("3 tasks name a predecessor: --connect joins the blocks.\n"));
    EXPECT_THAT(shown(), Not(HasSubstr("->")));
    EXPECT_THAT(import(project(task("1", "A", "1", "2") + task("2", "B", "1", "3", after("1")))).out,
                HasSubstr("1 task names a predecessor: --connect joins the blocks.\n"));
}

TEST_F(Schedule, APredecessorBesideIsJoinedInEachLevel) {
    ProgramRun const ran = import(project(house()), {"--connect"});
    EXPECT_EQ(ran.exitCode, 0) << ran.out;
    EXPECT_THAT(last(ran.out), HasSubstr(" 3 connectors; "));
    EXPECT_THAT(shown(), AllOf(HasSubstr("  Design: sub-process, first\n      -> Building, from grip 6 (bottom) to "
                                         "grip 2 (top)\n"),
                               HasSubstr("    Loads: block, first, script Loads (missing)\n        -> Frame, from grip "
                                         "6 (bottom) to grip 2 (top)\n"),
                               HasSubstr("        -> Roof, ")));
}

TEST_F(Schedule, APredecessorElsewhereJoinsWhatStandsSideBySide) {
    // Frame to Walls leads from Design to Building, which are joined already.
    ProgramRun const ran = import(project(house(task("7", "Doors", "0", "3.3", after("3")))), {"--connect"});
    EXPECT_EQ(ran.exitCode, 0) << ran.out;
    EXPECT_THAT(ran.out, HasSubstr("~ Building.Doors: its predecessor Design.Frame stands elsewhere: in its place "
                                   "Design leads to Building, as a connector joins what stands side by side\n"));
    EXPECT_THAT(last(ran.out), HasSubstr(" 3 connectors; "));
    std::string const text = shown();
    std::size_t const first = text.find("-> Building");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(text.find("-> Building", first + 1), std::string::npos) << "the pair is joined twice";
}

TEST_F(Schedule, APredecessorThatIsNotThereIsTold) {
    ProgramRun const ran = import(project(task("0", "Plan", "1", "0") + task("1", "A", "1", "2", after("99")) +
                                          task("2", "B", "1", "3", after("0")) + task("3", "Out", "0", "8") +
                                          task("4", "C", "1", "4", after("3")) + task("5", "D", "1", "5", after("5")) +
                                          task("6", "E", "1", "6") + task("7", "In E", "0", "6.1", after("6")) +
                                          task("8", "F", "1", "7", after("9")) + task("9", "In F", "0", "7.1")),
                                  {"--connect"});
    EXPECT_EQ(ran.exitCode, 1);
    expectGolden("host/schedule/predecessors.txt", ran.out);
    EXPECT_THAT(shown(), Not(HasSubstr("->")));
}

TEST_F(Schedule, OnlyTheLastPredecessorOfATaskCounts) {
    std::string const text = project(task("1", "A", "1", "2") + task("2", "B", "1", "3") +
                                     task("3", "C", "1", "4", after("1") + after("2")));
    ProgramRun const ran = import(text, {"--connect"});
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_THAT(ran.out, HasSubstr("- C: its predecessor, UID 1: a task keeps one, the last\n"));
    EXPECT_THAT(shown(), HasSubstr("  B: sub-process, first\n      -> C"));
}

TEST_F(Schedule, CirclesStayOpen) {
    ProgramRun const ran = import(project(task("1", "A", "1", "2", after("3")) + task("2", "B", "1", "3", after("1")) +
                                          task("3", "C", "1", "4", after("2")) + task("4", "D", "1", "5", after("3"))),
                                  {"--connect"});
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_THAT(ran.out, HasSubstr("- A: the connector from C to A: the predecessors go in a circle, which it would "
                                   "close\n"));
    EXPECT_THAT(last(ran.out), HasSubstr(" 3 connectors; "));
    // Two summaries that need each other's tasks are a circle, too.
    ProgramRun const crossed = import(project(task("1", "A", "1", "2") + task("2", "A1", "0", "2.1", after("4")) +
                                              task("3", "B", "1", "3") + task("4", "B1", "0", "3.1", after("2"))),
                                      {"--connect"});
    EXPECT_EQ(crossed.exitCode, 1);
    EXPECT_THAT(last(crossed.out), HasSubstr(" 1 connector; "));
    EXPECT_THAT(crossed.out, HasSubstr(": the predecessors go in a circle, which it would close\n"));
}

TEST_F(Schedule, SeveralFollowersLeaveByGripsOfTheirOwn) {
    std::string tasks = task("1", "A", "1", "2");
    for (int number = 2; number < 6; ++number)
        tasks +=
            task(std::to_string(number), "B" + std::to_string(number), "1", std::to_string(number + 1), after("1"));
    ProgramRun const ran = import(project(tasks), {"--connect"});
    EXPECT_EQ(ran.exitCode, 0) << ran.out;
    EXPECT_THAT(ran.out, HasSubstr("~ several tasks follow one of the tasks: by itself the flow goes on to the first "
                                   "alone, where no fork stands between them\n"));
    EXPECT_THAT(shown(), HasSubstr("      -> B2, from grip 6 (bottom) to grip 2 (top)\n"
                                   "      -> B3, from grip 8 (left) to grip 2 (top)\n"
                                   "      -> B4, from grip 4 (right) to grip 2 (top)\n"
                                   "      -> B5, from grip 7 (bottom left) to grip 2 (top)\n"));
    // In the folder each transition has a name of its own.
    EXPECT_EQ(import(project(tasks), {"--connect"}, "folder").exitCode, 0);
    std::string const definition = readFile(scratch / "folder/processdefinition.xml");
    for (char const* const name : {"A.B2", "A.B3", "A.B4", "A.B5"}) {
        std::string const attribute = std::string("name=\"") + name + "\"";
        std::size_t const at = definition.find(attribute);
        ASSERT_NE(at, std::string::npos) << name;
        EXPECT_EQ(definition.find(attribute, at + 1), std::string::npos) << name;
    }
}

TEST_F(Schedule, TasksWithoutACodeAreNoPredecessorByChance) {
    // Code and number are looked for in one search, in which the empty code answers to any task without one.
    ProgramRun const ran =
        import(project(task("1", "A", "1", "2") + task("2", "B", "1", "3", after("77")) +
                       element("Task", element("UID", "3") + element("Name", "C") + element("Type", "1") + "<WBS/>")),
               {"--connect"});
    EXPECT_THAT(ran.out, HasSubstr("- B: its predecessor, UID 77: there is no such task in the file\n"));
    EXPECT_THAT(shown(), Not(HasSubstr("->")));
}

// --- Files ---------------------------------------------------------------------------------------------------------

struct Refusal {
    char const* name;
    std::vector<std::string> arguments;
    std::string line;
};

class ScheduleRefusal : public Schedule, public testing::WithParamInterface<Refusal> {};

TEST_P(ScheduleRefusal, IsOneLineAndLeavesEverythingAsItIs) {
    scratch.write("plan.xml", project(house()));
    scratch.write("broken.xml", "<Project>\n<Tasks></Project>");
    scratch.write("other.xml", "<?xml version=\"1.0\"?><!-- a --><Recipe><Name>Soup</Name></Recipe>");
    scratch.write("text.txt", "no XML");
    scratch.write("empty.xml", "");
    scratch.write("folder/plan.xml", project(house()));
    scratch.write("things/thing.txt", "kept");
    fs::create_directory(scratch / "out.xml");
    ProgramRun const ran = run(GetParam().arguments);
    EXPECT_EQ(ran.exitCode, 2);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(withName(ran.err, scratch.path().string(), "SCRATCH"), "flowmere: " + GetParam().line + "\n");
    EXPECT_EQ(readFile(scratch / "plan.xml"), project(house()));
    EXPECT_EQ(readFile(scratch / "things/thing.txt"), "kept");
    EXPECT_FALSE(fs::exists(scratch / "new.xml"));
    EXPECT_FALSE(fs::exists(scratch / "new"));
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, ScheduleRefusal,
    testing::Values(
        Refusal{"NoTarget", {"schedule", "plan.xml"}, "--out is required (see flowmere schedule --help)"},
        Refusal{"NoFile", {"schedule", "-o", "new.xml"}, "FILE is required (see flowmere schedule --help)"},
        Refusal{"MissingFile", {"schedule", "none.xml", "-o", "new.xml"}, "none.xml: there is no such file"},
        Refusal{"Folder", {"schedule", "folder", "-o", "new.xml"}, "folder: is a folder"},
        Refusal{"EmptyFile", {"schedule", "empty.xml", "-o", "new"}, "empty.xml: is empty"},
        Refusal{"NoXml",
                {"schedule", "text.txt", "-o", "new"},
                "text.txt: line 1, column 1: no well-formed XML: invalid document structure"},
        Refusal{"BrokenXml",
                {"schedule", "broken.xml", "-o", "new"},
                "broken.xml: line 2, column 10: no well-formed XML: expected end of tag 'Tasks'"},
        Refusal{"OtherXml",
                {"schedule", "other.xml", "-o", "new.xml"},
                "other.xml: is no schedule: it holds a \"Recipe\" and no tasks"},
        Refusal{"ItselfAsTarget",
                {"schedule", "plan.xml", "-o", "folder/../plan.xml"},
                "folder/../plan.xml: cannot be written: it is the schedule, which is read"},
        Refusal{"FolderAsDocument",
                {"schedule", "plan.xml", "-o", "out.xml"},
                "out.xml: cannot be written: it is a folder"},
        Refusal{
            "FileAsFolder", {"schedule", "plan.xml", "-o", "text.txt"}, "text.txt: cannot be written: it is no folder"},
        Refusal{"OwnFolderAsTarget",
                {"schedule", "folder/plan.xml", "-o", "folder", "--force"},
                "folder: cannot be written: it holds folder/plan.xml, which is read"},
        Refusal{"FolderOfOtherThings",
                {"schedule", "plan.xml", "-o", "things", "--force"},
                "things: cannot be written: it is a folder with other things in it, and without "
                "processdefinition.xml"},
        Refusal{"NoParent",
                {"schedule", "plan.xml", "-o", "nowhere/new.xml"},
                "nowhere/new.xml: cannot be written: there is no folder SCRATCH/nowhere"},
        Refusal{"NoParentOfFolder",
                {"schedule", "plan.xml", "-o", "nowhere/new"},
                "nowhere/new: cannot be written: there is no folder SCRATCH/nowhere"}),
    [](auto const& row) { return row.param.name; });

TEST_F(Schedule, AnOldDocumentIsReplacedAndAnOldFolderOnlyByForce) {
    EXPECT_EQ(import(project(house())).exitCode, 0);
    std::string const before = readFile(scratch / "out.xml");
    EXPECT_EQ(import(project(house(), "Other")).exitCode, 0);
    EXPECT_NE(readFile(scratch / "out.xml"), before);

    EXPECT_EQ(import(project(house()), {}, "folder").exitCode, 0);
    ProgramRun const again = import(project(house()), {}, "folder");
    EXPECT_EQ(again.exitCode, 2);
    EXPECT_EQ(again.err, "flowmere: folder: cannot be written: there is a processdefinition.xml in it already; --force "
                         "replaces the whole folder\n");
    EXPECT_EQ(import(project(task("1", "Single", "1", "2")), {"--force"}, "folder").exitCode, 0);
    EXPECT_THAT(shown("folder"), AllOf(HasSubstr("Single"), Not(HasSubstr("Walls"))));
}

TEST_F(Schedule, APlaceThatTakesNothingIsTold) {
    for (char const* const out : {"/proc/new.xml", "/proc/new"}) {
        ProgramRun const ran = import(project(house()), {}, out);
        EXPECT_EQ(ran.exitCode, 2);
        EXPECT_EQ(ran.out, "");
        EXPECT_THAT(ran.err, StartsWith(std::string("flowmere: ") + out + ": cannot be written: "));
    }
}

TEST_F(Schedule, AFullDiskLeavesTheOldDocument) {
    scratch.write("plan.xml", project(house()));
    scratch.write("out.xml", "old");
    ProgramRun const ran = run({"schedule", "plan.xml", "-o", "out.xml"}, {.fileSizeLimit = 1000});
    EXPECT_EQ(ran.exitCode, 2);
    EXPECT_THAT(ran.err, StartsWith("flowmere: out.xml: cannot be written: "));
    EXPECT_EQ(readFile(scratch / "out.xml"), "old");
}

TEST_F(Schedule, ThousandsOfRowsOnOneLineAreDoneSoon) {
    std::string tasks;
    for (int number = 0; number < 4000; ++number) {
        bool const isSummary = number % 20 == 0;
        std::string const summary = std::to_string(2 + number / 20);
        tasks += task(std::to_string(number + 1), "Same", isSummary ? "1" : "0",
                      isSummary ? summary : summary + "." + std::to_string(number % 20),
                      number % 20 > 1 ? after(std::to_string(number)) : "");
    }
    ProgramRun const ran = import(onOneLine(project(tasks)), {"--connect"});
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    EXPECT_THAT(last(ran.out), StartsWith("plan.xml -> out.xml: 4000 tasks: 200 super-states, 3800 task blocks, 0 left "
                                          "out; 3600 connectors; "));
    EXPECT_LT(ran.seconds, 30);
}

} // namespace
