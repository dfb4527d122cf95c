// flowmere shell, from outside: the named commands from scripts, from the command line and on a terminal.

#include "Study.h"
#include "Terminal.h"

#include "host/run/HostCommand.h"
#include "host/shell/Commands.h"
#include "host/shell/Completion.h"
#include "host/shell/History.h"
#include "host/shell/Words.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace {

using namespace flowmere::test;
namespace fs = std::filesystem;
namespace shell = flowmere::host::shell;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A, B, a sub-process with X and Y in it, and C in a row. Each script counts on from the block before, and adds its
// letter to the variable Log of the process.
class TheShell : public testing::Test {
protected:
    TheShell() {
        for (std::string const name : {"A", "B", "X", "Y", "C"})
            study.scriptOf(name,
                           "variables.setStringVarValue('Log', variables.getStringVarValue('Log') + '" + name +
                               "')\nvariables.setIntVarValue('Out', variables.getIntVarValue('In') + 1)",
                           "variables.setStringVarValue('Log', variables.getStringVarValue('Log')[:-1])\n"
                           "variables.setIntVarValue('Out', 0)");
        study.document(
            process(blockOf("A", "") + blockOf("B", "A.Out") +
                        subProcess("Sub", blockOf("X", "B.Out") + blockOf("Y", "Sub.X.Out") + connector("X", "Y")) +
                        blockOf("C", "Sub.Y.Out") + connector("A", "B") + connector("B", "Sub") + connector("Sub", "C"),
                    variable("Log", "String", "")));
    }

    static std::string blockOf(std::string const& name, std::string const& link) {
        return block(name, variable("In", "Int", "5", "Input", link) + variable("Out", "Int", "0", "Output"));
    }

    // The lines, as a script on standard input.
    ProgramRun piped(std::string const& lines, std::vector<std::string> arguments = {"p.xml"},
                     ProgramSetting setting = {}) const {
        setting.inputFrom = study.folder().write("lines.txt", lines).string();
        setting.folder = study.path();
        arguments.insert(arguments.begin(), "shell");
        return runProgram(arguments, setting);
    }
    // Each line as a command on the command line.
    ProgramRun said(std::vector<std::string> const& lines, std::vector<std::string> arguments = {"p.xml"}) const {
        arguments.insert(arguments.begin(), "shell");
        for (std::string const& line : lines)
            arguments.insert(arguments.end(), {"-c", line});
        ProgramSetting setting;
        setting.folder = study.path();
        return runProgram(arguments, setting);
    }
    // What the lines print behind the line that tells of the opening; that they go well.
    std::string output(std::string const& lines) const {
        ProgramRun const run = piped(lines);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        std::string const opened = "opened: p.xml: 6 blocks\n";
        EXPECT_THAT(run.out, StartsWith(opened));
        return withoutTimes(run.out.substr(std::min(opened.size(), run.out.size())));
    }
    // The one line that a script fails with, and its exit code.
    std::string failure(std::string const& lines, int exitCode) const {
        ProgramRun const run = piped(lines);
        EXPECT_EQ(run.exitCode, exitCode) << run.err;
        std::string text = run.err;
        // Changes that were made before are lost then.
        std::string const lost = "flowmere: standard input: p.xml: has unsaved changes, which are lost\n";
        if (text.ends_with(lost))
            text.erase(text.size() - lost.size());
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
        return text;
    }

    Study study;
};

std::string const kWholeRun = "A  # ms  Executed  Out=6\n"
                              "B  # ms  Executed  Out=7\n"
                              "Sub  # ms  Executed\n"
                              "Sub.X  # ms  Executed  Out=8\n"
                              "Sub.Y  # ms  Executed  Out=9\n"
                              "C  # ms  Executed  Out=10\n"
                              "ended\n";

// The commands of the library

TEST(ShellCommands, AreThoseOfTheLibrary) {
    std::set<std::string> const expected{
        "Create Project",     "Open Project",    "Close Project",       "Save Project",
        "Save Project As",    "Execute Block",   "Save Iteration Data", "Undo Block",
        "Execution Begin",    "Execution Step",  "Execution Undo",      "Execution Undo Step",
        "Continue Execution", "Stop At",         "Skip Block",          "Clear Stop At",
        "Clear Skip Block",   "Clear All Stop",  "Clear All Skip",      "Expand Block",
        "Auto Execute",       "Set Break",       "Set Variable Data",   "Extract Variable Data",
        "Clear Break",        "Clear All Break",
    };
    std::set<std::string> library;
    for (flowmere::host::CommandEntry const& entry : flowmere::host::HostCommand::instance().commandEntries())
        library.insert(entry.name);
    EXPECT_EQ(library, expected);
    std::set<std::string> ofShell;
    for (shell::Command const& command : shell::commands())
        if (!command.isOwn)
            ofShell.insert(command.name);
    EXPECT_EQ(ofShell, expected);
    EXPECT_EQ(ofShell.size(), 26U);
}

TEST(ShellCommands, FillResourcesOfTheLibrary) {
    std::vector<std::string> const resources = shell::resourceNames();
    EXPECT_THAT(resources, testing::UnorderedElementsAre("Project Name", "Project Template File", "Project Directory",
                                                         "Executing Block", "Selected Block", "Variable Data"));
    std::map<std::string, std::vector<std::string>> ofTable;
    for (flowmere::host::CommandEntry const& entry : flowmere::host::HostCommand::instance().commandEntries())
        ofTable[entry.name] = entry.resources;
    for (shell::Command const& command : shell::commands()) {
        std::vector<std::string> filled;
        for (shell::Parameter const& parameter : command.parameters) {
            if (parameter.resource.empty())
                continue;
            filled.push_back(parameter.resource);
            EXPECT_THAT(resources, testing::Contains(parameter.resource)) << command.name;
        }
        // All that the table names can be said on the line.
        for (std::string const& resource : ofTable[command.name])
            EXPECT_THAT(filled, testing::Contains(resource)) << command.name;
    }
}

TEST_F(TheShell, TakesEachCommandOfTheLibrary) {
    std::string const help = piped("help\n", {}).out;
    for (flowmere::host::CommandEntry const& entry : flowmere::host::HostCommand::instance().commandEntries()) {
        EXPECT_THAT(help, testing::ContainsRegex("(^|\n)" + entry.name + " "));
        // Without a project, a block or a value each of them fails with a cause of its own.
        ProgramRun const run = said({entry.name}, {});
        EXPECT_EQ(run.exitCode, 2) << entry.name;
        EXPECT_THAT(run.err, StartsWith("flowmere: -c: line 1: ")) << entry.name;
        EXPECT_THAT(run.err, Not(HasSubstr("no such command"))) << entry.name;
        EXPECT_EQ(run.out, "") << entry.name;
    }
}

// Projects

TEST_F(TheShell, OpensAProject) {
    EXPECT_EQ(piped("Open Project p.xml\n", {}).out, "opened: p.xml: 6 blocks\n");
    EXPECT_EQ(piped("\"Open Project\" 'p.xml'\n", {}).out, "opened: p.xml: 6 blocks\n");
    EXPECT_EQ(piped("set Project Name p.xml\nOpen Project\n", {}).out,
              "Project Name = p.xml\nopened: p.xml: 6 blocks\n");
    EXPECT_EQ(said({"Open Project p.xml"}, {}).out, "opened: p.xml: 6 blocks\n");
}

TEST_F(TheShell, SeeksAProjectInTheProjectDirectoryFirst) {
    study.folder().write("d/q.xml", process(block("Q")));
    EXPECT_EQ(piped("set \"Project Directory\" d\nOpen Project q.xml\nOpen Project p.xml\n", {}).out,
              "Project Directory = d\nopened: d/q.xml: 1 block\nopened: p.xml: 6 blocks\n");
}

TEST_F(TheShell, KeepsTheOpenProjectWhenAnotherOneCannotBeOpened) {
    study.folder().write("broken.xml", "<Process><BLOCK></Process>");
    for (std::string const name : {"nothing.xml", "broken.xml", "s"}) {
        ProgramRun const run =
            piped("Execution Step\nOpen Project " + name + "\nstatus\nContinue Execution\n", {"p.xml", "--keep-going"});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_THAT(run.err, StartsWith("flowmere: standard input: line 2: " + name + ": "));
        EXPECT_THAT(run.out, HasSubstr("project: p.xml, with unsaved changes\nrun: 1 block done, next is B\n"));
        EXPECT_THAT(run.out, testing::EndsWith("ended\n"));
    }
}

TEST_F(TheShell, ClosesAProject) {
    EXPECT_EQ(output("Close Project\nstatus\n"), "closed: p.xml\nno project is open\n");
    ProgramRun const run = piped("Close Project\nshow\n");
    EXPECT_EQ(run.err, "flowmere: standard input: line 2: no project is open: Open Project FILE opens one\n");
    EXPECT_EQ(run.exitCode, 2);
}

TEST_F(TheShell, TellsOfChangesThatAreLost) {
    std::string const before = study.folder().read("p.xml");
    ProgramRun run = piped("Stop At B\nClose Project\n");
    EXPECT_EQ(run.err, "flowmere: standard input: line 2: p.xml: has unsaved changes, which are lost\n");
    EXPECT_EQ(run.out, "opened: p.xml: 6 blocks\nB: stop\nclosed: p.xml\n");
    EXPECT_EQ(run.exitCode, 0);
    run = piped("Stop At B\nOpen Project p.xml\nquit\n");
    EXPECT_EQ(run.err, "flowmere: standard input: line 2: p.xml: has unsaved changes, which are lost\n");
    run = piped("Stop At B\nquit\nStop At C\n");
    EXPECT_EQ(run.err, "flowmere: standard input: line 2: p.xml: has unsaved changes, which are lost\n");
    EXPECT_THAT(run.out, Not(HasSubstr("C: stop")));
    run = piped("Stop At B\n");
    EXPECT_EQ(run.err, "flowmere: standard input: p.xml: has unsaved changes, which are lost\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(study.folder().read("p.xml"), before);
}

TEST_F(TheShell, SavesAProject) {
    EXPECT_EQ(output("Execution Begin\nStop At B\nSave Project\nstatus\n"),
              kWholeRun + "B: stop\nsaved: p.xml\nproject: p.xml\nrun: 6 blocks done, the flow has ended\n");
    std::string const saved = study.folder().read("p.xml");
    EXPECT_THAT(saved, HasSubstr(">ABXYC</VARIABLE>"));
    EXPECT_THAT(saved, HasSubstr("<FLAGS Break=\"true\""));
    // What was saved is a project.
    EXPECT_EQ(output("Execution Begin\n"), "A  # ms  Executed  Out=6\nstopped before B\n");
}

TEST_F(TheShell, SavesAProjectIntoTheProjectDirectory) {
    fs::create_directory(study.path() / "out");
    std::string const before = study.folder().read("p.xml");
    EXPECT_EQ(output("Stop At C\nSave Project out\nStop At B\nSave Project\n"),
              "C: stop\nsaved: out/p.xml\nB: stop\nsaved: out/p.xml\n");
    EXPECT_EQ(study.folder().read("p.xml"), before);
    EXPECT_EQ(output("set \"Project Directory\" out\nStop At C\nSave Project\n"),
              "Project Directory = out\nC: stop\nsaved: out/p.xml\n");
    EXPECT_EQ(study.folder().read("p.xml"), before);
}

TEST_F(TheShell, SavesAProjectAsAnother) {
    fs::create_directory(study.path() / "out");
    EXPECT_EQ(output("Stop At B\nSave Project As out\nSave Project As q.xml\nStop At C\nSave Project\nstatus\n"),
              "B: stop\nsaved: out/p.xml\nsaved: q.xml\nC: stop\nsaved: q.xml\nproject: q.xml\nrun: not begun\n");
    EXPECT_THAT(study.folder().read("p.xml"), Not(HasSubstr("Break=\"true\"")));
    std::string const first = study.folder().read("out/p.xml");
    std::string const second = study.folder().read("q.xml");
    EXPECT_EQ(first.find("Break=\"true\""), first.rfind("Break=\"true\""));
    EXPECT_NE(second.find("Break=\"true\""), second.rfind("Break=\"true\""));
    EXPECT_EQ(output("set Project Directory out\nset Project Name r.xml\nSave Project As\n"),
              "Project Directory = out\nProject Name = r.xml\nsaved: out/r.xml\n");
}

TEST_F(TheShell, DoesNotSaveOverWhatAnotherProgramHasWritten) {
    study.scriptOf("A", "open('p.xml', 'a').write('<!-- mine -->')");
    ProgramRun const run = piped("Execution Step\nSave Project\n");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("line 2: p.xml: cannot be written: another program has changed it"));
    EXPECT_THAT(study.folder().read("p.xml"), testing::EndsWith("<!-- mine -->"));
    // Neither where it was written to in between.
    study.scriptOf("A", "open('q.xml', 'a').write('<!-- mine -->')");
    ProgramRun const other = piped("Save Project As q.xml\nExecution Step\nSave Project\n");
    EXPECT_EQ(other.exitCode, 2);
    EXPECT_THAT(other.err, HasSubstr("line 3: q.xml: cannot be written: another program has changed it"));
    EXPECT_THAT(study.folder().read("q.xml"), testing::EndsWith("<!-- mine -->"));
}

TEST_F(TheShell, LeavesFilesUnharmedWhereItCannotSave) {
    std::string const before = study.folder().read("p.xml");
    for (auto const& [target, cause] : std::map<std::string, std::string>{{"nowhere/q.xml", "there is no folder"},
                                                                          {"/dev/null", "it is no regular file"},
                                                                          {"a\\b.xml", "backslash"}}) {
        ProgramRun const run = piped("Stop At B\nSave Project As '" + target + "'\n");
        EXPECT_EQ(run.exitCode, 2) << target;
        EXPECT_THAT(run.err, HasSubstr(cause)) << target;
    }
    EXPECT_EQ(study.folder().read("p.xml"), before);
}

TEST_F(TheShell, SavesIterationsUnderNumbers) {
    fs::create_directory(study.path() / "out");
    std::string const before = study.folder().read("p.xml");
    EXPECT_EQ(output("Execution Step\nSave Iteration Data out\nContinue Execution\nSave Iteration Data out\n"
                     "Save Iteration Data\nget Project Directory\nstatus\n"),
              "A  # ms  Executed  Out=6\nstopped before B\nsaved: out/p-001.xml\n"
              "B  # ms  Executed  Out=7\nSub  # ms  Executed\nSub.X  # ms  Executed  Out=8\n"
              "Sub.Y  # ms  Executed  Out=9\nC  # ms  Executed  Out=10\nended\n"
              "saved: out/p-002.xml\nsaved: p-001.xml\nProject Directory has no value\n"
              "project: p.xml, with unsaved changes\nrun: 6 blocks done, the flow has ended\n");
    EXPECT_THAT(study.folder().read("out/p-001.xml"), HasSubstr(">A</VARIABLE>"));
    EXPECT_THAT(study.folder().read("out/p-002.xml"), HasSubstr(">ABXYC</VARIABLE>"));
    EXPECT_EQ(study.folder().read("p.xml"), before);
    // A number in the middle stays free.
    fs::remove(study.path() / "out/p-001.xml");
    EXPECT_EQ(output("Save Iteration Data out\n"), "saved: out/p-003.xml\n");
    EXPECT_EQ(failure("Save Iteration Data nowhere\n", 2), "flowmere: standard input: line 1: nowhere: is no folder\n");
}

TEST_F(TheShell, CreatesAProjectFromATemplate) {
    study.folder().write("s/__pycache__/A.pyc", "old");
    study.folder().write("data/table.csv", "1");
    study.document(process(block("A", variable("Table", "File", "data/table.csv") +
                                          variable("Out", "Int", "0", "Output") + variable("In", "Int", "1")),
                           variable("Log", "String", "") + variable("Outside", "File", "/etc/hostname")));
    study.folder().write("t.bpt", study.folder().read("p.xml"));
    EXPECT_EQ(piped("Create Project t.bpt new Mine\nExecution Begin\nSave Project\n", {}).exitCode, 0);
    EXPECT_THAT(study.folder().read("new/Mine.xml"), HasSubstr(">A</VARIABLE>"));
    std::set<std::string> files;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(study.path() / "new"))
        if (entry.is_regular_file())
            files.insert(entry.path().lexically_relative(study.path() / "new").string());
    EXPECT_THAT(files, ElementsAre("Mine.xml", "data/table.csv", "s/A.py", "s/B.py", "s/C.py", "s/X.py", "s/Y.py",
                                   "s/__init__.py"));
    EXPECT_EQ(study.folder().read("t.bpt"), study.folder().read("p.xml"));
}

TEST_F(TheShell, NamesACreatedProjectAfterItsTemplate) {
    EXPECT_EQ(withoutTimes(piped("Create Project p.xml a/b\nExecution Step\n", {}).out),
              "created: a/b/p.xml, with 6 files beside it\nA  # ms  Executed  Out=6\nstopped before B\n");
    EXPECT_EQ(piped("set Project Template File p.xml\nset Project Directory c\nCreate Project\n", {}).out,
              "Project Template File = p.xml\nProject Directory = c\ncreated: c/p.xml, with 6 files beside it\n");
}

TEST_F(TheShell, CreatesNoProjectOverAnother) {
    std::string const before = study.folder().read("p.xml");
    ProgramRun const run = piped("Create Project p.xml .\n", {});
    EXPECT_EQ(run.err, "flowmere: standard input: line 1: p.xml: is there already\n");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(study.folder().read("p.xml"), before);
    EXPECT_EQ(piped("Create Project nothing.xml new\n", {}).err,
              "flowmere: standard input: line 1: nothing.xml: there is no such file\n");
    EXPECT_FALSE(fs::exists(study.path() / "new"));
    EXPECT_EQ(piped("Create Project p.xml p.xml\n", {}).exitCode, 2);
    EXPECT_EQ(piped("Create Project p.xml new a/b\n", {}).err,
              "flowmere: standard input: line 1: a/b: is no name of a project: it holds a folder\n");
    // Scripts of the user's stay.
    study.folder().write("new/s/A.py", "mine");
    EXPECT_EQ(piped("Create Project p.xml new\n", {}).out, "created: new/p.xml, with 5 files beside it\n");
    EXPECT_EQ(study.folder().read("new/s/A.py"), "mine");
}

// The run

TEST_F(TheShell, RunsFromTheStart) {
    EXPECT_EQ(output("Execution Begin\n"), kWholeRun);
    // And once more from the start.
    EXPECT_EQ(output("Execution Step\nExecution Begin\n"), "A  # ms  Executed  Out=6\nstopped before B\n" + kWholeRun);
}

TEST_F(TheShell, StepsOneBlock) {
    EXPECT_EQ(output("Execution Step\nExecution Step\nExecution Step\nExecution Step\n"),
              "A  # ms  Executed  Out=6\nstopped before B\nB  # ms  Executed  Out=7\nstopped before Sub\n"
              "Sub  # ms  Executed\nstopped before Sub.X\nSub.X  # ms  Executed  Out=8\nstopped before Sub.Y\n");
    EXPECT_EQ(failure("Execution Begin\nExecution Step\n", 1),
              "flowmere: standard input: line 2: p.xml: nothing to step to: the flow has ended\n");
}

TEST_F(TheShell, ContinuesARun) {
    EXPECT_EQ(output("Execution Step\nContinue Execution\n"),
              "A  # ms  Executed  Out=6\nstopped before B\n" + kWholeRun.substr(kWholeRun.find('\n') + 1));
    EXPECT_EQ(failure("Continue Execution\n", 1),
              "flowmere: standard input: line 1: p.xml: the run has not begun: Execution Begin starts it\n");
    EXPECT_EQ(failure("Auto Execute\nContinue Execution\n", 1),
              "flowmere: standard input: line 2: p.xml: nothing to continue: the flow has ended\n");
}

TEST_F(TheShell, StopsAtBlocks) {
    EXPECT_EQ(output("Stop At B\nStop At Sub.Y\nExecution Begin\nshow\nContinue Execution\nClear Stop At Sub.Y\n"
                     "Execution Begin\nClear All Stop\nExecution Begin\nClear All Stop\n"),
              "B: stop\nSub.Y: stop\n"
              "A  # ms  Executed  Out=6\nstopped before B\n"
              "\"Test\": process, 6 blocks\n  A: block, Executed\n  B: block, stop, next\n"
              "  Sub: sub-process, 2 blocks (folded)\n  C: block\n"
              "B  # ms  Executed  Out=7\nSub  # ms  Executed\nSub.X  # ms  Executed  Out=8\nstopped before Sub.Y\n"
              "Sub.Y: no stop\n"
              "A  # ms  Executed  Out=6\nstopped before B\n"
              "B: no stop\n" +
                  kWholeRun + "no block has a stop\n");
}

TEST_F(TheShell, PassesAStopAtTheStartOnce) {
    EXPECT_EQ(output("Stop At A\nStop At B\nExecution Begin\nContinue Execution\nExecution Undo\n"
                     "Continue Execution\nExecution Step\n"),
              "A: stop\nB: stop\nstopped before A\nA  # ms  Executed  Out=6\nstopped before B\n"
              "A  # ms  Undone\nstopped before A\nA  # ms  Executed  Out=6\nstopped before B\n"
              "B  # ms  Executed  Out=7\nstopped before Sub\n");
}

TEST_F(TheShell, UndoesToThePreviousStop) {
    EXPECT_EQ(output("Execution Begin\nStop At Sub\nExecution Undo\nExecution Undo\nExecution Step\n"),
              kWholeRun + "Sub: stop\n"
                          "C  # ms  Undone\nSub.Y  # ms  Undone\nSub.X  # ms  Undone\nSub  # ms  Undone\n"
                          "stopped before Sub\n"
                          "B  # ms  Undone\nA  # ms  Undone\nstopped before A\n"
                          "A  # ms  Executed  Out=6\nstopped before B\n");
    EXPECT_EQ(failure("Execution Undo\n", 1),
              "flowmere: standard input: line 1: p.xml: nothing to undo: the flow is at its start\n");
}

TEST_F(TheShell, UndoesOneStep) {
    EXPECT_EQ(output("Execution Begin\nExecution Undo Step\nExecution Undo Step\nExecution Step\nvars .\n"),
              kWholeRun + "C  # ms  Undone\nstopped before C\nSub.Y  # ms  Undone\nstopped before Sub.Y\n"
                          "Sub.Y  # ms  Executed  Out=9\nstopped before C\n"
                          ".Log  String  Input  = ABXY\n");
}

TEST_F(TheShell, UndoesUpToABlock) {
    EXPECT_EQ(output("Execution Begin\nUndo Block Sub\nUndo Block A\n"),
              kWholeRun + "C  # ms  Undone\nSub.Y  # ms  Undone\nSub.X  # ms  Undone\nSub  # ms  Undone\n"
                          "stopped before Sub\nB  # ms  Undone\nA  # ms  Undone\nstopped before A\n");
    EXPECT_EQ(failure("Execution Step\nUndo Block B\n", 1),
              "flowmere: standard input: line 2: p.xml: B: has not run, or is undone\n");
}

TEST_F(TheShell, ExecutesOneBlockWhereverTheFlowStands) {
    EXPECT_EQ(output("Execution Step\nExecute Block C\nstatus\nExecution Step\nExecution Undo Step\n"
                     "Execution Undo Step\nContinue Execution\n"),
              "A  # ms  Executed  Out=6\nstopped before B\n"
              "C  # ms  Executed  Out=1\nstopped before B\n"
              "project: p.xml, with unsaved changes\nrun: 2 blocks done, next is B\n"
              "B  # ms  Executed  Out=7\nstopped before Sub\n"
              "B  # ms  Undone\nstopped before B\n"
              "C  # ms  Undone\nstopped before B\n" +
                  kWholeRun.substr(kWholeRun.find('\n') + 1));
    EXPECT_EQ(output("set Executing Block Sub.X\nExecute Block\n"),
              "Executing Block = Sub.X\nSub.X  # ms  Executed  Out=1\nstopped before A\n");
}

TEST_F(TheShell, SkipsBlocks) {
    EXPECT_EQ(output("Skip Block B\nSkip Block Sub\nExecution Begin\nshow\nExecution Undo\nClear Skip Block B\n"
                     "Execution Begin\nClear All Skip\nExecution Begin\nClear All Skip\n"),
              "B: skip\nSub: skip\n"
              "A  # ms  Executed  Out=6\nB  # ms  Skipped\nSub  # ms  Skipped\nC  # ms  Executed  Out=1\nended\n"
              "\"Test\": process, 6 blocks\n  A: block, Executed\n  B: block, Skipped, skip\n"
              "  Sub: sub-process, 2 blocks (folded), Skipped, skip\n  C: block, Executed\n"
              "C  # ms  Undone\nSub  # ms  Undone\nB  # ms  Undone\nA  # ms  Undone\nstopped before A\n"
              "B: no skip\n"
              "A  # ms  Executed  Out=6\nB  # ms  Executed  Out=7\nSub  # ms  Skipped\nC  # ms  Executed  Out=1\n"
              "ended\n"
              "Sub: no skip\n" +
                  kWholeRun + "no block has a skip\n");
}

TEST_F(TheShell, GoesOnBehindASkippedBlockThatIsUndone) {
    EXPECT_EQ(
        output("Skip Block Sub\nExecution Begin\nExecution Undo Step\nExecution Step\nUndo Block Sub\n"
               "Clear All Skip\nExecution Step\nExecution Step\n"),
        "Sub: skip\n"
        "A  # ms  Executed  Out=6\nB  # ms  Executed  Out=7\nSub  # ms  Skipped\nC  # ms  Executed  Out=1\nended\n"
        "C  # ms  Undone\nstopped before C\nC  # ms  Executed  Out=1\nended\n"
        "C  # ms  Undone\nSub  # ms  Undone\nstopped before Sub\n"
        "Sub: no skip\nSub  # ms  Executed\nstopped before Sub.X\n"
        "Sub.X  # ms  Executed  Out=8\nstopped before Sub.Y\n");
}

TEST_F(TheShell, RunsABlockThatDoesNotLetItselfBeSkipped) {
    study.scriptText("B", "class B:\n    def __init__(self, block):\n        pass\n    def CanSkip(self):\n"
                          "        return 0\n    def Execute(self):\n        print('B runs')\n");
    ProgramRun const run = piped("Skip Block B\nStop At Sub\nExecution Begin\n");
    EXPECT_THAT(run.out, HasSubstr("B runs\n"));
    EXPECT_THAT(withoutTimes(run.out), HasSubstr("B  # ms  Executed"));
}

TEST_F(TheShell, SkippedBlocksThatGoRoundAreInterrupted) {
    study.scriptOf("A", "pass");
    study.document(process(block("A") + block("B") + block("C") + connector("A", "B") + connector("B", "C") +
                           connector("C", "B", 6, 2)));
    ProgramSetting setting;
    setting.interruptAt = "Skipped";
    ProgramRun const run = piped("Skip Block B\nSkip Block C\nExecution Begin\nshow A\n", {"p.xml"}, setting);
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_THAT(run.err, HasSubstr("line 3: p.xml: "));
    EXPECT_THAT(run.err, HasSubstr(": interrupted\n"));
}

TEST_F(TheShell, AutoExecutePassesStops) {
    EXPECT_EQ(output("Stop At A\nStop At B\nStop At C\nAuto Execute\n"), "A: stop\nB: stop\nC: stop\n" + kWholeRun);
    EXPECT_EQ(output("Stop At C\nExecution Step\nAuto Execute\n"),
              "C: stop\nA  # ms  Executed  Out=6\nstopped before B\n" + kWholeRun.substr(kWholeRun.find('\n') + 1));
}

TEST_F(TheShell, AFailedBlockEndsTheRunAndCanBeUndone) {
    study.scriptOf("B", "1 / 0");
    ProgramRun const run = piped("Execution Begin\nContinue Execution\nstatus\nExecution Undo Step\nSkip Block B\n"
                                 "Continue Execution\n",
                                 {"p.xml", "--keep-going"});
    EXPECT_EQ(withoutTimes(run.out), "opened: p.xml: 6 blocks\n"
                                     "A  # ms  Executed  Out=6\nB  # ms  Failed\n"
                                     "project: p.xml, with unsaved changes\n"
                                     "run: 2 blocks done, B has failed: Execution Undo Step takes it back\n"
                                     "B  # ms  Undone\nstopped before B\nB: skip\n"
                                     "B  # ms  Skipped\nSub  # ms  Executed\nSub.X  # ms  Executed  Out=1\n"
                                     "Sub.Y  # ms  Executed  Out=2\nC  # ms  Executed  Out=3\nended\n");
    EXPECT_THAT(run.err, HasSubstr("block B: Traceback"));
    EXPECT_THAT(run.err, HasSubstr("flowmere: standard input: line 1: p.xml: B: "));
    EXPECT_THAT(run.err, HasSubstr("`1 / 0`: ZeroDivisionError: division by zero\n"));
    EXPECT_THAT(run.err, HasSubstr("flowmere: standard input: line 2: p.xml: nothing to continue: B has failed"));
    EXPECT_EQ(run.exitCode, 1);
    ProgramRun const strict = piped("Execution Begin\nstatus\n");
    EXPECT_EQ(strict.exitCode, 1) << strict.err;
    EXPECT_THAT(strict.out, Not(HasSubstr("project:")));
}

TEST_F(TheShell, StaysInItsFolderWhereverScriptsGo) {
    fs::create_directory(study.path() / "elsewhere");
    study.scriptOf("A", "import os\nos.chdir('elsewhere')");
    study.scriptOf("B", "open('here.txt', 'w').close()");
    EXPECT_THAT(output("Execution Step\nExecution Step\nSave Project As q.xml\n"), testing::EndsWith("saved: q.xml\n"));
    EXPECT_TRUE(fs::exists(study.path() / "q.xml"));
    EXPECT_TRUE(fs::exists(study.path() / "elsewhere/here.txt"));
}

TEST_F(TheShell, ScriptsOfBlocksDoNotReadItsLines) {
    study.scriptOf("A", "import sys\nprint('read', len(sys.stdin.read()))");
    EXPECT_THAT(output("Execution Step\nstatus\n"), HasSubstr("read 0\n"));
    EXPECT_THAT(output("Execution Step\nstatus\n"), testing::EndsWith("next is B\n"));
}

TEST_F(TheShell, PrintsTheHistoryOfScripts) {
    study.scriptOf("A", "import THostManager\nTHostManager.WriteHistory('first\\nsecond')");
    EXPECT_EQ(output("Execution Step\n"),
              "history: first\nhistory: second\nA  # ms  Executed  Out=0\nstopped before B\n");
}

TEST_F(TheShell, WhatBlocksPrintIsOnLinesOfItsOwn) {
    study.scriptOf("A", "import os, subprocess\nprint('no end', end='')\nsubprocess.run(['printf', ' of a line'])");
    study.scriptOf("B", "import sys\nprint('two\\nlines')\nprint('error', file=sys.stderr, end='')");
    ProgramRun const run = piped("Execution Step\nExecution Step\n");
    EXPECT_EQ(withoutTimes(run.out), "opened: p.xml: 6 blocks\n  A | no end of a line\nA  # ms  Executed  Out=0\n"
                                     "stopped before B\n  B | two\n  B | lines\nB  # ms  Executed  Out=0\n"
                                     "stopped before Sub\n");
    EXPECT_THAT(run.err, StartsWith("  B ! error\n"));
}

TEST_F(TheShell, ScriptsThatCloseStandardOutputDoNotCloseThatOfTheShell) {
    study.scriptOf("A", "import os\nos.close(1)\nos.close(2)");
    ProgramRun const run = piped("Execution Step\nstatus\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("stopped before B\nproject: p.xml"));
}

TEST_F(TheShell, AScriptThatEndsItIsTold) {
    study.scriptOf("A", "import os\nos._exit(0)");
    ProgramRun const run = piped("Stop At B\nExecution Step\nstatus\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "flowmere: p.xml: A: s/A.py:14: `os._exit(0)`: os._exit(0): the script ends the program, and "
                       "unsaved changes are lost\n");
}

TEST_F(TheShell, ABlockOfALoopThatIsUndoneOnceHasStillRunBefore) {
    for (std::string const name : {"A", "B"})
        study.scriptOf(name, "pass");
    study.document(process(block("Start", "", "", "Oval") + block("A") + block("B") + connector("Start", "A") +
                           connector("A", "B") + connector("B", "A", 6, 8)));
    study.scriptOf("Start", "pass");
    ProgramRun const run = piped("Execution Step\nExecution Step\nExecution Step\nExecution Step\nExecution Undo Step\n"
                                 "show\nExecution Undo Step\nExecution Undo Step\nshow\n");
    EXPECT_THAT(run.out,
                HasSubstr("  Start: terminator, Executed\n  A: block, Executed, next\n  B: block, Executed\n"));
    EXPECT_THAT(run.out, testing::EndsWith("  Start: terminator, Executed\n  A: block, next\n  B: block\n"));
}

TEST_F(TheShell, AProcessWithoutBlocksHasNothingToRun) {
    study.document(process("", variable("V", "Int", "1")));
    EXPECT_EQ(failure("Execution Begin\n", 1), "flowmere: standard input: line 1: p.xml: holds no block to run\n");
    EXPECT_EQ(piped("show\nvars\nClear All Stop\n").out,
              "opened: p.xml: 0 blocks\n\"Test\": process\n.V  Int  Input  = 1\nno block has a stop\n");
}

// Marks and views

TEST_F(TheShell, SetsBreakPoints) {
    EXPECT_EQ(output("Set Break B\nset Selected Block Sub.X\nSet Break\nshow B\nExpand Block Sub\nClear Break B\n"
                     "Clear All Break\nClear All Break\nstatus\n"),
              "B: break point\nbreak points open the debugger in a shell with --debug, and do nothing in this one\n"
              "Selected Block = Sub.X\nSub.X: break point\nB: block, break point\n"
              "Sub: sub-process, 2 blocks\n  X: block, break point\n  Y: block\n"
              "B: no break point\nSub.X: no break point\nno block has a break point\n"
              // They are no part of the document.
              "project: p.xml\nrun: not begun\n");
    EXPECT_EQ(failure("Set Break Sub\n", 2),
              "flowmere: standard input: line 1: p.xml: Sub: has no script to break in\n");
}

TEST_F(TheShell, BreakPointsOpenTheDebugger) {
    study.scriptOf("B", "value = 6 * 7\nvariables.setIntVarValue('Out', value)");
    ProgramSetting setting;
    setting.folder = study.path();
    setting.inputFrom = study.folder().write("debug.txt", "n\np value + 1\nc\n").string();
    ProgramRun const run = runProgram(
        {"shell", "p.xml", "--debug", "-c", "Set Break B", "-c", "Execution Begin", "-c", "status"}, setting);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("-> value = 6 * 7\n"));
    EXPECT_THAT(run.out, HasSubstr("43\n"));
    EXPECT_THAT(withoutTimes(run.out), HasSubstr("B  # ms  Executed  Out=42\n"));
    EXPECT_THAT(run.out, testing::EndsWith("run: 6 blocks done, the flow has ended\n"));
    // Nobody is asked without it, and in auto mode; and what stands in a script are lines of the shell.
    for (auto const& [lines, arguments] : std::map<std::string, std::vector<std::string>>{
             {"Set Break B\nExecution Begin\nstatus\n", {"p.xml"}},
             {"Set Break B\nAuto Execute\nstatus\n", {"p.xml", "--debug"}},
             {"Set Break B\nSet Break C\nExecution Begin\nstatus\n", {"p.xml", "--debug"}}}) {
        ProgramRun const quiet = piped(lines, arguments);
        EXPECT_EQ(quiet.exitCode, 0);
        EXPECT_THAT(quiet.out, testing::EndsWith("run: 6 blocks done, the flow has ended\n"));
    }
}

TEST_F(TheShell, TellsThatBreakPointsDoNothingOnlyWhereTheyDoNothing) {
    std::string const note = "do nothing in this one\n";
    EXPECT_THAT(said({"Set Break B"}).out, HasSubstr(note));
    EXPECT_THAT(said({"Set Break B"}, {"p.xml", "--debug"}).out, Not(HasSubstr(note)));
    EXPECT_THAT(said({"Clear Break B"}).out, Not(HasSubstr(note)));
    EXPECT_THAT(said({"Set Break B"}, {"p.xml", "--json"}).out, HasSubstr("\"debugs\":false"));
}

TEST_F(TheShell, TheDebuggerKeepsWhatItWasToldForTheSession) {
    study.scriptOf("A", "first = 1\nsecond = 2\nthird = 3");
    study.scriptOf("B", "value = 6 * 7\nlast = value");
    ProgramSetting setting;
    setting.folder = study.path();
    // A breakpoint of its own and a word of its own, told at A, in force at B and when A runs again.
    setting.inputFrom = study.folder()
                            .write("debug.txt", "alias twice p %1 * 2\nb s/A.py:15\nc\nc\nn\ntwice value\nc\nc\nb\nc\n")
                            .string();
    ProgramRun const run =
        runProgram({"shell", "p.xml", "--debug", "-c", "Set Break A", "-c", "Set Break B", "-c", "Execution Step", "-c",
                    "Execution Step", "-c", "Execute Block A", "-c", "status"},
                   setting);
    EXPECT_EQ(run.exitCode, 0) << run.err << run.out;
    EXPECT_THAT(run.out, HasSubstr("84\n"));
    EXPECT_THAT(run.out, HasSubstr("breakpoint already hit 2 times")) << run.out;
}

TEST_F(TheShell, ExpandsSubProcesses) {
    EXPECT_EQ(output("show\nExpand Block Sub\nshow\n"),
              "\"Test\": process, 6 blocks\n  A: block\n  B: block\n  Sub: sub-process, 2 blocks (folded)\n  C: block\n"
              "Sub: sub-process, 2 blocks\n  X: block\n  Y: block\n"
              "\"Test\": process, 6 blocks\n  A: block\n  B: block\n  Sub: sub-process, 2 blocks\n    X: block\n"
              "    Y: block\n  C: block\n");
    EXPECT_EQ(failure("Expand Block A\n", 2), "flowmere: standard input: line 1: p.xml: A: is no sub-process\n");
}

TEST_F(TheShell, ShowsVariables) {
    EXPECT_EQ(output("vars Sub.Y\nvars .\nvars\nvars Sub\n"),
              "Sub.Y.In   Int  Input   = 0  <- Sub.X.Out\nSub.Y.Out  Int  Output  = 0\n"
              ".Log  String  Input  =\n"
              ".Log       String  Input   =\n"
              "A.In       Int     Input   = 5\nA.Out      Int     Output  = 0\n"
              "B.In       Int     Input   = 0  <- A.Out\nB.Out      Int     Output  = 0\n"
              "Sub.X.In   Int     Input   = 0  <- B.Out\nSub.X.Out  Int     Output  = 0\n"
              "Sub.Y.In   Int     Input   = 0  <- Sub.X.Out\nSub.Y.Out  Int     Output  = 0\n"
              "C.In       Int     Input   = 0  <- Sub.Y.Out\nC.Out      Int     Output  = 0\n"
              "no variables\n");
}

// Values

TEST_F(TheShell, SetsVariableData) {
    EXPECT_EQ(output("Set Variable Data A In=40\nSet Variable Data . \"Log=say \\\"x\\\": \"\nExecution Step\nvars .\n"
                     "Set Variable Data In=1\nget Variable Data\n"),
              "A.In = 40\n.Log = say \"x\": \nA  # ms  Executed  Out=41\nstopped before B\n"
              ".Log  String  Input  = say \"x\": A\nB.In = 1\nVariable Data has no value\n");
    EXPECT_EQ(output("set Variable Data In=7 Out=8\nSet Variable Data A\nget Variable Data\nvars A\n"),
              "Variable Data = In=7 Out=8\nA.In = 7\nA.Out = 8\nVariable Data = In=7 Out=8\n"
              "A.In   Int  Input   = 7\nA.Out  Int  Output  = 8\n");
}

TEST_F(TheShell, ALinkedVariableTakesTheValueWhereItsLinkLeads) {
    EXPECT_EQ(output("Set Variable Data B In=3\nvars A\n"),
              "B.In = 3\nA.In   Int  Input   = 5\nA.Out  Int  Output  = 3\n");
}

TEST_F(TheShell, SetsNoVariableDataThatDoNotFit) {
    EXPECT_EQ(failure("Set Variable Data A In=x\n", 2),
              "flowmere: standard input: line 1: p.xml: A.In: \"x\" is no value of type Int\n");
    EXPECT_EQ(failure("Set Variable Data A Out=1 Inn=x\n", 2),
              "flowmere: standard input: line 1: p.xml: A.Inn: there is no such variable; did you mean In?\n");
    EXPECT_EQ(failure("Set Variable Data .  Lgo=x\n", 2),
              "flowmere: standard input: line 1: p.xml: .Lgo: there is no such variable; did you mean Log?\n");
    EXPECT_EQ(failure("Set Variable Data A\n", 2),
              "flowmere: standard input: line 1: Variable Data: has no value: give NAME=VALUE\n");
    EXPECT_EQ(failure("Set Variable Data A In=1 In=2\n", 2), "flowmere: standard input: line 1: In: is given twice\n");
    EXPECT_EQ(failure("Set Variable Data A In=1 x\n", 2),
              "flowmere: standard input: line 1: x: is not of the form NAME=VALUE\n");
    EXPECT_EQ(failure("Set Variable Data In=1\n", 2),
              "flowmere: standard input: line 1: p.xml: no block is executing: name a block\n");
    // All or none.
    ProgramRun const run = piped("Set Variable Data A In=1 Nothing=2\nvars A\n", {"p.xml", "--keep-going"});
    EXPECT_THAT(run.out, HasSubstr("A.In   Int  Input   = 5\n"));
}

TEST_F(TheShell, ExtractsVariableData) {
    EXPECT_EQ(output("Execution Step\nExtract Variable Data A\nget Variable Data\nExtract Variable Data\n"
                     "Extract Variable Data Sub\nExtract Variable Data .\n"),
              "A  # ms  Executed  Out=6\nstopped before B\nIn = 5\nOut = 6\nVariable Data = In=5 Out=6\n"
              "In = 6\nOut = 0\nno variables\nLog = A\n");
    // From one block to another.
    EXPECT_EQ(output("Execution Step\nExtract Variable Data A\nSet Variable Data C\n"),
              "A  # ms  Executed  Out=6\nstopped before B\nIn = 5\nOut = 6\nC.In = 5\nC.Out = 6\n");
}

// Resources and the shell's own words

TEST_F(TheShell, ResourcesKeepTheirValuesAndLinesDoNotChangeThem) {
    EXPECT_EQ(output("set \"Selected Block\" B\nStop At C\nget Selected Block\nStop At\nget\n"),
              "Selected Block = B\nC: stop\nSelected Block = B\nB: stop\n"
              "Executing Block has no value\nProject Directory has no value\nProject Name has no value\n"
              "Project Template File has no value\nSelected Block = B\nVariable Data has no value\n");
    EXPECT_EQ(failure("Stop At\n", 2),
              "flowmere: standard input: line 1: Selected Block: has no value: name a block\n");
    EXPECT_EQ(failure("set Selected\n", 2),
              "flowmere: standard input: line 1: Selected: there is no such resource; there is Selected Block\n");
    EXPECT_EQ(failure("set Selected Block\n", 2),
              "flowmere: standard input: line 1: Selected Block: is given no value: set RESOURCE VALUE\n");
    EXPECT_EQ(failure("set\n", 2), "flowmere: standard input: line 1: set: names no resource: set RESOURCE VALUE\n");
    EXPECT_EQ(failure("get selected block\n", 2), "flowmere: standard input: line 1: selected block: there is no such "
                                                  "resource; did you mean Selected Block?\n");
}

TEST_F(TheShell, HelpsWithACommand) {
    EXPECT_EQ(output("help Save Project As\nhelp show\n"),
              "Save Project As [FILE|DIRECTORY]  Saves the project As\n"
              "  [FILE|DIRECTORY] fills \"Project Directory\"\n"
              "show [BLOCK]  Shows the blocks with their states and marks\n");
    EXPECT_EQ(failure("help Sav Project\n", 2),
              "flowmere: standard input: line 1: Sav Project: there is no such command; did you mean Save Project?\n");
}

TEST_F(TheShell, KeepsTheHistoryOfAScript) {
    EXPECT_EQ(output("status\n\n# nothing\nhistory\n"),
              "project: p.xml\nrun: not begun\n    1  status\n    2  history\n");
}

TEST_F(TheShell, QuitsAndDoesNothingFurther) {
    EXPECT_EQ(output("status\nquit\nstatus\n"), "project: p.xml\nrun: not begun\n");
}

// Scripts

TEST_F(TheShell, TakesBlanksCommentsAndOddLineEnds) {
    EXPECT_EQ(output("\xEF\xBB\xBF  Stop   At\tB   # a comment\r\n\r\n#\n\"Stop At\" \"C\"\nClear All Stop"),
              "B: stop\nC: stop\nB: no stop\nC: no stop\n");
    EXPECT_EQ(piped("", {}).out, "");
    EXPECT_EQ(piped("", {}).exitCode, 0);
}

TEST_F(TheShell, SeveralLinesCanBeGivenOnTheCommandLine) {
    ProgramRun const run = said({"Stop At B\nStop At C", "", "Clear All Stop"});
    EXPECT_EQ(run.out, "opened: p.xml: 6 blocks\nB: stop\nC: stop\nB: no stop\nC: no stop\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(said({"Stop At B\nStop At Z", "status"}).err,
              "flowmere: -c: line 2: p.xml: Z: there is no such block\n"
              "flowmere: -c: p.xml: has unsaved changes, which are lost\n");
}

TEST_F(TheShell, EndsAtTheFirstCommandThatFails) {
    ProgramRun run = piped("status\nStop At Z\nstatus\n");
    EXPECT_EQ(run.out, "opened: p.xml: 6 blocks\nproject: p.xml\nrun: not begun\n");
    EXPECT_EQ(run.err, "flowmere: standard input: line 2: p.xml: Z: there is no such block\n");
    EXPECT_EQ(run.exitCode, 2);
    run = piped("Stop At Z\nExecution Undo\nstatus\n", {"p.xml", "--keep-going"});
    EXPECT_EQ(run.out, "opened: p.xml: 6 blocks\nproject: p.xml\nrun: not begun\n");
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 2);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(piped("Execution Undo\nStop At Z\n", {"p.xml", "--keep-going"}).exitCode, 1);
}

TEST_F(TheShell, NearNamesAreSuggested) {
    for (auto const& [line, cause] : std::map<std::string, std::string>{
             {"open project p.xml", "open project: there is no such command; did you mean Open Project?"},
             {"Stpo At B", "Stpo At: there is no such command; did you mean Stop At?"},
             {"execution begin", "execution begin: there is no such command; did you mean Execution Begin?"},
             {"Frobnicate", "Frobnicate: there is no such command"},
             {"Clear",
              "Clear: there is no such command; there is Clear All Break, Clear All Skip, Clear All Stop, Clear "
              "Break, Clear Skip Block, Clear Stop At"},
             {"Help", "Help: there is no such command; did you mean help?"},
             {"exit", "exit: there is no such command; did you mean quit?"},
             {"ls -l", "ls: there is no such command; did you mean show?"},
             {"Stop At Sbu", "p.xml: Sbu: there is no such block; did you mean Sub?"},
             {"Stop At B C", "C: is one argument too many: Stop At BLOCK"},
             {"Execution Begin now", "now: is one argument too many: Execution Begin"},
             {"show A B", "B: is one argument too many: show [BLOCK]"},
             {"Stop At \"\"", "Stop At: an argument is empty: Stop At BLOCK"},
             {"Stop At 'B", "a quote ' is not closed"},
             {"Stop At \"B", "a quote \" is not closed"},
             {"Execute Block .", "p.xml: .: is the process, and no block"},
         })
        EXPECT_EQ(failure(line + "\n", 2), "flowmere: standard input: line 1: " + cause + "\n");
}

TEST_F(TheShell, RefusesZeroBytesAndEndlessLines) {
    using namespace std::string_literals;
    EXPECT_EQ(failure("Stop At B\0C\n"s, 2), "flowmere: standard input: line 1: the line holds a zero byte\n");
    ProgramRun const run = piped("status\n" + std::string(3'000'000, 'x') + "\nstatus\n", {"p.xml", "--keep-going"});
    EXPECT_EQ(run.err, "flowmere: standard input: line 2: is longer than 1048576 bytes\n");
    EXPECT_EQ(run.out, "opened: p.xml: 6 blocks\nproject: p.xml\nrun: not begun\nproject: p.xml\nrun: not begun\n");
    EXPECT_EQ(run.exitCode, 2);
    // A long line is no fault.
    EXPECT_EQ(output("status #" + std::string(1'000'000, 'x') + "\n"), "project: p.xml\nrun: not begun\n");
    std::string const bytes = "Stop At \xFF\xFE\x01\n";
    EXPECT_EQ(failure(bytes, 2), "flowmere: standard input: line 1: p.xml: \xEF\xBF\xBD\xEF\xBF\xBD\\x01: there is no "
                                 "such block\n");
}

TEST_F(TheShell, RefusesWhatIsNoDocument) {
    study.folder().write("broken.xml", "<Process><BLOCK></Process>");
    study.folder().write("empty.xml", "");
    study.folder().write("other.xml", "<table><row/></table>");
    for (std::string const name : {"nothing.xml", "broken.xml", "empty.xml", "other.xml", "s", "/dev/null"}) {
        ProgramRun const run = said({"status"}, {name});
        EXPECT_EQ(run.exitCode, 2) << name;
        EXPECT_THAT(run.err, StartsWith("flowmere: " + name + ": "));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "") << name;
    }
    EXPECT_EQ(said({"status"}, {"p.xml", "--scripts", "nowhere"}).err, "flowmere: nowhere: is no folder of scripts\n");
}

TEST_F(TheShell, TellsWhenStandardInputCannotBeRead) {
    ProgramSetting setting;
    setting.folder = study.path();
    setting.inputFrom = study.path().string();
    ProgramRun const run = runProgram({"shell"}, setting);
    EXPECT_EQ(run.err, "flowmere: standard input: cannot be read: Is a directory\n");
    EXPECT_EQ(run.exitCode, 2);
    setting.inputFrom = (study.path() / "nothing").string();
    EXPECT_EQ(runProgram({"shell", "p.xml"}, setting).exitCode, 0);
}

TEST_F(TheShell, PrintsNeitherPromptsNorColoursToAPipe) {
    ProgramRun const run = piped("show\nExecution Begin\nhelp\nbad\n");
    EXPECT_EQ((run.out + run.err).find('\x1b'), std::string::npos);
    EXPECT_EQ(run.out.find("p.xml> "), std::string::npos);
}

TEST_F(TheShell, AnInterruptEndsTheBlockAndTheScript) {
    study.scriptOf("B", "import time\nprint('B sleeps')\ntime.sleep(60)");
    ProgramSetting setting;
    setting.interruptAt = "B sleeps";
    ProgramRun const run = piped("Execution Begin\nstatus\n", {"p.xml", "--keep-going"}, setting);
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_LT(run.seconds, 30);
    EXPECT_THAT(run.err, HasSubstr("flowmere: standard input: line 1: p.xml: B: interrupted\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("project:")));
}

// JSON

TEST_F(TheShell, PrintsALineOfJsonForEachCommand) {
    study.scriptOf("B", "print('said by B')\nvariables.setIntVarValue('Out', 3)");
    ProgramRun const run = piped("Stop At Sub\nExecution Begin\nshow B\nvars B\nget Selected Block\n"
                                 "Set Variable Data B Out=4\nstatus\nSave Project As q.xml\nStop At Z\n",
                                 {"p.xml", "--json", "--keep-going"});
    std::vector<json> lines;
    std::istringstream in(run.out);
    for (std::string line; std::getline(in, line);)
        lines.push_back(json::parse(line));
    ASSERT_EQ(lines.size(), 10U) << run.out;
    EXPECT_EQ(lines[0], json::parse(R"({"line": 0, "command": "Open Project", "arguments": ["p.xml"], "ok": true,
                                        "opened": "p.xml", "blocks": 6})"));
    EXPECT_EQ(lines[1], json::parse(R"({"line": 1, "command": "Stop At", "arguments": ["Sub"], "ok": true,
                                        "block": "Sub", "mark": "stop", "set": true})"));
    EXPECT_EQ(lines[2]["end"], "stopped");
    EXPECT_EQ(lines[2]["next"], "Sub");
    ASSERT_EQ(lines[2]["ran"].size(), 2U);
    EXPECT_EQ(lines[2]["ran"][1]["path"], "B");
    EXPECT_EQ(lines[2]["ran"][1]["state"], "Executed");
    EXPECT_EQ(lines[2]["ran"][1]["outputs"], json::parse(R"({"Out": "3"})"));
    EXPECT_EQ(lines[2]["ran"][1]["printed"], json::parse(R"([{"stream": "output", "text": "said by B\n"}])"));
    EXPECT_EQ(lines[3]["nodes"], json::parse(R"([{"path": "B", "caption": "B", "kind": "block", "blocks": 0,
                                                  "folded": false, "state": "Executed", "marks": [], "next": false}])"));
    EXPECT_EQ(lines[4]["variables"],
              json::parse(R"([{"path": "B.In", "type": "Int", "io": "Input", "value": "6", "link": "A.Out"},
                              {"path": "B.Out", "type": "Int", "io": "Output", "value": "3", "link": null}])"));
    EXPECT_EQ(lines[5]["resources"], json::parse(R"([{"name": "Selected Block", "value": null}])"));
    EXPECT_EQ(lines[6]["values"], json::parse(R"({"Out": "4"})"));
    EXPECT_EQ(lines[7], json::parse(R"({"line": 7, "command": "status", "arguments": [], "ok": true,
                                        "project": "p.xml", "unsaved": true, "begun": true, "done": 2,
                                        "next": "Sub"})"));
    EXPECT_EQ(lines[8]["saved"], "q.xml");
    EXPECT_EQ(lines[9], json::parse(R"({"line": 9, "command": "Stop At", "arguments": ["Z"], "ok": false,
                                        "error": "p.xml: Z: there is no such block"})"));
    EXPECT_THAT(run.err, HasSubstr("said by B\n"));
    EXPECT_THAT(run.err, HasSubstr("flowmere: standard input: line 9: p.xml: Z: there is no such block\n"));
}

// The parts

TEST(ShellWords, StandApartByBlanks) {
    auto const texts = [](std::string const& line) {
        std::vector<std::string> result;
        for (shell::Word const& word : shell::wordsOf(line))
            result.push_back(word.text);
        return result;
    };
    EXPECT_THAT(texts("  Stop \t At  B "), ElementsAre("Stop", "At", "B"));
    EXPECT_THAT(texts("a\"b c\"d 'e \"f' \"\""), ElementsAre("ab cd", "e \"f", ""));
    EXPECT_THAT(texts(R"("a \"b\" \\ \c" 'd\' e\f)"), ElementsAre(R"(a "b" \ \c)", R"(d\)", R"(e\f)"));
    EXPECT_THAT(texts("a#b # c 'd"), ElementsAre("a#b"));
    EXPECT_THAT(texts("# all"), ElementsAre());
    EXPECT_THAT(texts(""), ElementsAre());
    for (std::string const text : {"plain", "two words", "\"", "'", "a\\b", "a \\ b", "#", "", "it's \"x\" \\\""})
        EXPECT_THAT(texts(shell::asWord(text)), ElementsAre(text));
}

TEST(ShellWords, TheCursorStandsInOne) {
    shell::OpenLine open = shell::openLineOf("Stop At \"a b");
    EXPECT_EQ(open.words.size(), 2U);
    EXPECT_EQ(open.current.text, "a b");
    EXPECT_TRUE(open.current.isQuoted);
    EXPECT_EQ(open.current.begin, 8U);
    open = shell::openLineOf("Stop At ");
    EXPECT_EQ(open.words.size(), 2U);
    EXPECT_EQ(open.current.text, "");
    EXPECT_EQ(open.current.begin, 8U);
    EXPECT_TRUE(shell::openLineOf("Stop # At").isComment);
}

TEST(ShellNames, TheLongestCounts) {
    auto const found = [](std::string const& line) {
        std::optional<shell::Found> const result = shell::nameAt(shell::wordsOf(line), 0, shell::commandNames());
        return result ? result->name + "|" + std::to_string(result->words) : std::string();
    };
    EXPECT_EQ(found("Save Project As x"), "Save Project As|3");
    EXPECT_EQ(found("Save Project x"), "Save Project|2");
    EXPECT_EQ(found("Save Project \"As\""), "Save Project|2");
    EXPECT_EQ(found("\"Save Project As\" x"), "Save Project As|1");
    EXPECT_EQ(found("\"Save Project\" As"), "Save Project|1");
    EXPECT_EQ(found("Execution Undo Step"), "Execution Undo Step|3");
    EXPECT_EQ(found("Save"), "");
    EXPECT_EQ(found("save Project"), "");
}

class ShellCompletion : public TheShell {
protected:
    // What may stand at the end of the line, and what Tab would type.
    std::vector<std::string> candidates(std::string const& line) {
        last = shell::complete(line, workspace);
        std::vector<std::string> texts;
        for (shell::Completion::Candidate const& candidate : last.candidates)
            texts.push_back(candidate.text);
        return texts;
    }
    std::string typed(std::string const& line) {
        candidates(line);
        return line.substr(0, last.begin) + shell::commonStart(last);
    }
    void open() {
        flowmere::host::HostCommand& commands = flowmere::host::HostCommand::instance();
        commands.setText("Project Name", (study.path() / "p.xml").string());
        ASSERT_EQ(commands.ExecuteCommand("Open Project", nullptr), 0);
        commands.unset("Project Name");
    }

    shell::Output said{true};
    shell::Workspace workspace{{}, said};
    shell::Completion last;
};

TEST_F(ShellCompletion, KnowsTheNamesOfCommands) {
    EXPECT_THAT(candidates("Sto"), ElementsAre("Stop At"));
    EXPECT_EQ(typed("Sto"), "Stop At");
    EXPECT_THAT(candidates("Execution U"), ElementsAre("Execution Undo", "Execution Undo Step"));
    EXPECT_EQ(typed("Execution U"), "Execution Undo");
    EXPECT_THAT(candidates("Execution Undo "), ElementsAre("Execution Undo Step"));
    EXPECT_EQ(typed("\"Clear All Sk"), "\"Clear All Skip\"");
    EXPECT_THAT(candidates("sto"), ElementsAre());
    EXPECT_EQ(candidates("").size(), 34U);
    EXPECT_THAT(candidates("help Auto"), ElementsAre("Auto Execute"));
    EXPECT_THAT(candidates("# Sto"), ElementsAre());
}

TEST_F(ShellCompletion, KnowsResourcesAndTheirValues) {
    open();
    EXPECT_THAT(candidates("get Sel"), ElementsAre("Selected Block"));
    EXPECT_THAT(candidates("set Project "), ElementsAre("Project Directory", "Project Name", "Project Template File"));
    EXPECT_THAT(candidates("set \"Selected Block\" Su"), ElementsAre("Sub", "Sub.X", "Sub.Y"));
    EXPECT_THAT(candidates("set Executing Block Sub."), ElementsAre("Sub.X", "Sub.Y"));
    EXPECT_THAT(candidates("set Variable Data I"), ElementsAre());
}

TEST_F(ShellCompletion, KnowsBlocksAndVariables) {
    EXPECT_THAT(candidates("Stop At "), ElementsAre());
    open();
    EXPECT_THAT(candidates("Stop At "), ElementsAre("A", "B", "C", "Sub", "Sub.X", "Sub.Y"));
    EXPECT_THAT(candidates("show Sub.Y"), ElementsAre("Sub.Y"));
    EXPECT_THAT(candidates("Stop At A "), ElementsAre());
    EXPECT_THAT(candidates("Set Variable Data A "), ElementsAre("In=", "Out="));
    EXPECT_THAT(candidates("Set Variable Data A In=1 O"), ElementsAre("Out="));
    EXPECT_THAT(candidates("Set Variable Data . L"), ElementsAre("Log="));
    EXPECT_THAT(candidates("Set Variable Data Nothing L"), ElementsAre());
    EXPECT_TRUE(last.candidates.empty());
}

TEST_F(ShellCompletion, KnowsFilesAndFolders) {
    study.folder().write("two words.xml", "");
    study.folder().write("two words.csv", "");
    study.folder().write(".hidden.xml", "");
    std::string const folder = study.path().string() + "/";
    EXPECT_THAT(candidates("Open Project " + folder),
                ElementsAre(folder + "p.xml", folder + "s/", folder + "two words.csv", folder + "two words.xml"));
    EXPECT_EQ(typed("Open Project " + folder + "two"), "Open Project \"" + folder + "two words.");
    EXPECT_EQ(typed("Open Project \"" + folder + "two words.x"), "Open Project \"" + folder + "two words.xml\"");
    EXPECT_THAT(candidates("Open Project " + folder + ".h"), ElementsAre(folder + ".hidden.xml"));
    EXPECT_THAT(candidates("Save Iteration Data " + folder), ElementsAre(folder + "s/"));
    EXPECT_TRUE(last.candidates.front().isOpen);
    EXPECT_THAT(candidates("Open Project " + folder + "nowhere/"), ElementsAre());
}

TEST(ShellHistory, StandsBelowTheStateFolder) {
    auto const set = [](char const* name, char const* value) {
        if (value != nullptr)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    };
    std::string const home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "/";
    set("HOME", "/home/me");
    set("XDG_STATE_HOME", nullptr);
    EXPECT_EQ(shell::historyFile(), "/home/me/.local/state/flowmere/history");
    set("XDG_STATE_HOME", "/state");
    EXPECT_EQ(shell::historyFile(), "/state/flowmere/history");
    set("XDG_STATE_HOME", "relative");
    EXPECT_EQ(shell::historyFile(), "/home/me/.local/state/flowmere/history");
    set("XDG_STATE_HOME", nullptr);
    set("HOME", nullptr);
    EXPECT_EQ(shell::historyFile(), "");
    set("HOME", home.c_str());
}

TEST(ShellHistory, KeepsLinesAcrossShells) {
    ScratchFolder const folder;
    fs::path const file = folder.path() / "state/flowmere/history";
    {
        shell::History first(file);
        shell::History second(file);
        first.add("one");
        second.add("two");
        first.add("three");
        first.add("three");
        first.add("");
    }
    EXPECT_EQ(readFile(file), "one\ntwo\nthree\n");
    EXPECT_THAT(shell::History(file).lines(), ElementsAre("one", "two", "three"));
    EXPECT_EQ(fs::status(file).permissions() & (fs::perms::group_all | fs::perms::others_all), fs::perms::none);
}

TEST(ShellHistory, IsCutWhenItHasGrownLong) {
    ScratchFolder const folder;
    std::string lines;
    for (std::size_t number = 0; number < 2 * shell::History::kKept; ++number)
        lines += "line " + std::to_string(number) + "\n";
    fs::path const file = folder.write("history", lines);
    shell::History const history(file);
    EXPECT_EQ(history.lines().size(), shell::History::kKept);
    EXPECT_EQ(history.lines().back(), "line 1999");
    std::string const kept = readFile(file);
    EXPECT_EQ(static_cast<std::size_t>(std::count(kept.begin(), kept.end(), '\n')), shell::History::kKept);
}

TEST(ShellHistory, DoesWithoutAFile) {
    ScratchFolder const folder;
    folder.write("plain", "");
    for (fs::path const& file : {fs::path(), folder.path(), folder.path() / "plain/history"}) {
        shell::History history(file);
        history.add("one");
        EXPECT_THAT(history.lines(), ElementsAre("one"));
    }
}

// On a terminal

class TheTerminal : public TheShell {
protected:
    TerminalSetting setting(std::vector<std::string> variables = {}) const {
        variables.insert(variables.begin(), {"HOME=" + study.path().string(), "TERM=xterm", "LANG=C.UTF-8"});
        return {study.path(), std::move(variables)};
    }
    fs::path historyFile() const { return study.path() / ".local/state/flowmere/history"; }
};

TEST_F(TheTerminal, TakesLinesBehindAPrompt) {
    Terminal terminal({"shell"}, setting());
    ASSERT_TRUE(terminal.shows("flowmere> "));
    EXPECT_TRUE(terminal.answers("Open Project p.xml", "opened: p.xml: 6 blocks\r\n"));
    EXPECT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("Stop At Z", "flowmere: p.xml: Z: there is no such block\r\n"));
    EXPECT_TRUE(terminal.answers("Execution Begin", "ended\r\n"));
    EXPECT_TRUE(terminal.answers("Save Project", "saved: p.xml\r\n"));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.end(), 0) << terminal.shown();
    EXPECT_EQ(readFile(historyFile()), "Open Project p.xml\nStop At Z\nExecution Begin\nSave Project\nquit\n");
}

TEST_F(TheTerminal, EditsALine) {
    Terminal terminal({"shell", "p.xml"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    // Back over the last letter, to the start of the line, forward over a letter that goes, and a letter at the end.
    EXPECT_TRUE(terminal.answers("xStop At ZQ\x7f\x7f\x01\x04\x05"
                                 "B",
                                 "B: stop\r\n"))
        << terminal.shown();
    // What is typed before the prompt shows is edited by the terminal.
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("Stop At \xC3\xA4\x7f"
                                 "C",
                                 "C: stop\r\n"))
        << terminal.shown();
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("no\x15status", "with unsaved changes\r\n")) << terminal.shown();
}

TEST_F(TheTerminal, GoesThroughTheHistory) {
    {
        Terminal terminal({"shell", "p.xml"}, setting());
        ASSERT_TRUE(terminal.shows("p.xml> "));
        EXPECT_TRUE(terminal.answers("show A", "A: block\r\n"));
        EXPECT_TRUE(terminal.answers("show B", "B: block\r\n"));
        EXPECT_TRUE(terminal.answers("\x1b[A\x1b[A", "A: block\r\n")) << terminal.shown();
        ASSERT_TRUE(terminal.shows("p.xml> "));
        terminal.type("\x04");
        EXPECT_EQ(terminal.end(), 0);
    }
    // And through that of earlier shells, with a search for what they held.
    Terminal terminal({"shell", "p.xml"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("\x1b[A", "A: block\r\n")) << terminal.shown();
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("\x12how B\x1b", "B: block\r\n")) << terminal.shown();
}

TEST_F(TheTerminal, CompletesNamesBlocksAndFiles) {
    Terminal terminal({"shell"}, setting());
    ASSERT_TRUE(terminal.shows("flowmere> "));
    EXPECT_TRUE(terminal.answers("Op\tp.x\t", "opened: p.xml: 6 blocks\r\n")) << terminal.shown();
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("Stop\tSub.Y\t", "Sub.Y: stop\r\n")) << terminal.shown();
    // What is not clear yet is shown below the line.
    terminal.type("Execution U\t\t");
    EXPECT_TRUE(terminal.shows("\r\nExecution Undo       Execution Undo Step\r\n")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("", "nothing to undo")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("set Sel\tSub.\tX", "Selected Block = Sub.X\r\n")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("Set V\tA I\t9", "A.In = 9\r\n")) << terminal.shown();
}

TEST_F(TheTerminal, AsksOnceBeforeChangesAreLost) {
    Terminal terminal({"shell", "p.xml"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("Stop At B", "B: stop\r\n"));
    EXPECT_TRUE(terminal.answers("quit",
                                 "flowmere: p.xml: has unsaved changes: Save Project keeps them, quit once more "
                                 "leaves them\r\n"));
    EXPECT_TRUE(terminal.answers("status", "with unsaved changes\r\n"));
    EXPECT_TRUE(terminal.answers("Close Project", "the same line once more leaves them\r\n"));
    EXPECT_TRUE(terminal.answers("Open Project p.xml", "the same line once more leaves them\r\n"));
    EXPECT_TRUE(terminal.answers("Open Project p.xml", "which are lost\r\n"));
    EXPECT_TRUE(terminal.answers("Stop At C", "C: stop\r\n"));
    ASSERT_TRUE(terminal.shows("p.xml> "));
    terminal.type("\x04");
    EXPECT_TRUE(terminal.shows("has unsaved changes: Save Project keeps them, quit leaves them\r\n"))
        << terminal.shown();
    ASSERT_TRUE(terminal.shows("p.xml> "));
    terminal.type("\x04");
    EXPECT_EQ(terminal.end(), 0);
    EXPECT_THAT(study.folder().read("p.xml"), Not(HasSubstr("Break=\"true\"")));
}

TEST_F(TheTerminal, AsksOnceBeforeAnotherFileIsReplaced) {
    study.folder().write("q.xml", "mine");
    Terminal terminal({"shell", "p.xml"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(
        terminal.answers("Save Project As q.xml", "q.xml: is there already: the same line once more replaces it"));
    EXPECT_EQ(study.folder().read("q.xml"), "mine");
    EXPECT_TRUE(terminal.answers("Save Project As q.xml", "saved: q.xml\r\n"));
    EXPECT_TRUE(terminal.shows("q.xml> "));
    EXPECT_TRUE(terminal.answers("Save Project As q.xml", "saved: q.xml\r\n"));
}

TEST_F(TheTerminal, AnInterruptEndsTheBlockAndNotTheShell) {
    study.scriptOf("B", "import time\nprint('B sleeps')\ntime.sleep(60)");
    Terminal terminal({"shell", "p.xml"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    for (int time = 0; time < 3; ++time) {
        ASSERT_TRUE(terminal.answers("Execution Begin", "B sleeps\r\n")) << terminal.shown();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        terminal.type("\x03");
        ASSERT_TRUE(terminal.shows("flowmere: p.xml: B: interrupted\r\n")) << terminal.shown();
        ASSERT_TRUE(terminal.shows("p.xml> "));
    }
    EXPECT_TRUE(terminal.answers("Execution Undo Step", "stopped before B\r\n")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("Skip Block B", "B: skip\r\n"));
    EXPECT_TRUE(terminal.answers("Execute Block A", "stopped before B\r\n")) << terminal.shown();
}

TEST_F(TheTerminal, AnInterruptTakesAwayTheLineThatIsTyped) {
    Terminal terminal({"shell", "p.xml"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    terminal.type("Stop At B");
    ASSERT_TRUE(terminal.shows("Stop At B"));
    terminal.type("\x03");
    ASSERT_TRUE(terminal.shows("p.xml> ")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("status", "project: p.xml\r\n")) << terminal.shown();
    EXPECT_EQ(terminal.shown().find("B: stop"), std::string::npos);
    ASSERT_TRUE(terminal.shows("p.xml> "));
    terminal.type("\x04");
    EXPECT_EQ(terminal.end(), 0);
}

TEST_F(TheTerminal, OneThatCannotMoveItsCursorTakesLinesToo) {
    for (std::string const kind : {"TERM=dumb", "TERM="}) {
        Terminal terminal({"shell", "p.xml"}, setting({kind}));
        ASSERT_TRUE(terminal.shows("p.xml> "));
        EXPECT_TRUE(terminal.answers("show A", "A: block\r\n")) << terminal.shown();
        ASSERT_TRUE(terminal.shows("p.xml> "));
        terminal.type("Stop At B");
        ASSERT_TRUE(terminal.shows("Stop At B"));
        terminal.type("\x03");
        ASSERT_TRUE(terminal.shows("p.xml> ")) << terminal.shown();
        EXPECT_TRUE(terminal.answers("status", "project: p.xml\r\n")) << terminal.shown();
        EXPECT_EQ(terminal.shown().find('\x1b'), std::string::npos);
        ASSERT_TRUE(terminal.shows("p.xml> "));
        terminal.type("\x04");
        EXPECT_EQ(terminal.end(), 0) << terminal.shown();
    }
    Terminal unknown({"shell", "p.xml"}, setting({"TERM=no-such-terminal"}));
    ASSERT_TRUE(unknown.shows("p.xml> "));
    EXPECT_TRUE(unknown.answers("show A", "A: block\r\n")) << unknown.shown();
    EXPECT_EQ(unknown.shown().find("dumb terminal"), std::string::npos) << unknown.shown();
}

TEST_F(TheTerminal, NeedsNoHome) {
    Terminal terminal({"shell", "p.xml"}, {study.path(), {"TERM=xterm"}});
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("show A", "A: block\r\n"));
    EXPECT_TRUE(terminal.answers("\x1b[A", "A: block\r\n"));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.end(), 0) << terminal.shown();
}

TEST_F(TheTerminal, WithLinesOnTheCommandLineNothingIsTyped) {
    Terminal terminal({"shell", "p.xml", "-c", "Stop At B"}, setting());
    EXPECT_EQ(terminal.end(), 0);
    EXPECT_EQ(terminal.shown(), "opened: p.xml: 6 blocks\r\nB: stop\r\n"
                                "flowmere: -c: p.xml: has unsaved changes, which are lost\r\n");
}

TEST_F(TheTerminal, TheDebuggerIsTypedAt) {
    study.scriptOf("A", "value = 6 * 7\nvariables.setIntVarValue('Out', value)");
    Terminal terminal({"shell", "p.xml", "--debug"}, setting());
    ASSERT_TRUE(terminal.shows("p.xml> "));
    EXPECT_TRUE(terminal.answers("Set Break A", "A: break point\r\n"));
    EXPECT_TRUE(terminal.answers("Execution Step", "value = 6 * 7")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("n", "setIntVarValue")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("p value + 1", "43\r\n")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("c", "stopped before B\r\n")) << terminal.shown();
    EXPECT_TRUE(terminal.answers("show A", "A: block, Executed, break point\r\n")) << terminal.shown();
}

} // namespace
