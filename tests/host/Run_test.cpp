// flowmere run, from outside: the real program on documents and scripts made for the purpose.

#include "Study.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

using namespace flowmere::test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

// A, B and C in a row; each script says so, and adds its letter to the variable Log of the process.
class ThreeBlocks : public testing::Test {
protected:
    ThreeBlocks() {
        for (std::string const name : {"A", "B", "C"})
            study.scriptOf(name,
                           "variables.setStringVarValue('Log', variables.getStringVarValue('Log') + '" + name +
                               "')\nvariables.setIntVarValue('Out', variables.getIntVarValue('In') + 1)",
                           "variables.setStringVarValue('Log', variables.getStringVarValue('Log')[:-1])\n"
                           "variables.setIntVarValue('Out', 0)");
        study.document(process(blockOf("A", "") + blockOf("B", "A.Out") + blockOf("C", "B.Out") + connector("A", "B") +
                                   connector("B", "C"),
                               variable("Log", "String", "")));
    }

    static std::string blockOf(std::string const& name, std::string const& link) {
        return block(name, variable("In", "Int", "5", "Input", link) + variable("Out", "Int", "0", "Output"));
    }

    Study study;
};

json jsonOf(ProgramRun const& run) {
    return json::parse(run.out, nullptr, false);
}

std::vector<std::string> pathsOf(json const& document) {
    std::vector<std::string> paths;
    for (json const& entry : document["blocks"])
        paths.push_back(entry["path"].get<std::string>() + " " + entry["state"].get<std::string>());
    return paths;
}

// The forward run

TEST_F(ThreeBlocks, RunInOrderAndPrintALineEach) {
    ProgramRun const run = study.run();
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed  Out=6\n"
                                     "B  # ms  Executed  Out=7\n"
                                     "C  # ms  Executed  Out=8\n"
                                     "ended: 3 blocks executed,  # ms\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(ThreeBlocks, ValuesTravelAlongLinksFromAValueSetOnTheCommandLine) {
    ProgramRun const run = study.run({"--set", "A.In=40"});
    EXPECT_THAT(run.out, HasSubstr("Executed  Out=43\n"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(ThreeBlocks, AValueSetOnALinkedVariableReachesWhereTheLinkLeads) {
    json const document = jsonOf(study.run({"--set", "B.In=100", "--step", "1", "--json"}));
    EXPECT_EQ(document["blocks"][0]["outputs"]["Out"], "6");
}

TEST_F(ThreeBlocks, ProcessVariablesAreSetByNameWithAndWithoutPoint) {
    for (std::string const path : {"Log", ".Log"}) {
        EXPECT_EQ(study.run({"--set", path + "=x=y", "--save", "out.xml"}).exitCode, 0);
        EXPECT_THAT(study.folder().read("out.xml"), HasSubstr(">x=yABC</VARIABLE>")) << path;
    }
}

TEST_F(ThreeBlocks, JsonGivesTheSameFacts) {
    ProgramRun const run = study.run({"--json", "--undo", "1", "--save", "out.xml"});
    json const document = jsonOf(run);
    ASSERT_TRUE(document.is_object()) << run.out;
    std::vector<std::string> keys;
    for (auto const& entry : document.items())
        keys.push_back(entry.key());
    EXPECT_THAT(keys, testing::UnorderedElementsAre("file", "blocks", "history", "end", "next", "executed", "undone",
                                                    "milliseconds", "notes", "saved", "report"));
    EXPECT_EQ(document["file"], "p.xml");
    EXPECT_EQ(document["end"], "stopped");
    EXPECT_EQ(document["next"], "C");
    EXPECT_EQ(document["executed"], 3);
    EXPECT_EQ(document["undone"], 1);
    EXPECT_EQ(document["saved"], "out.xml");
    EXPECT_GT(document["milliseconds"].get<double>(), 0.0);
    EXPECT_THAT(pathsOf(document), ElementsAre("A Executed", "B Executed", "C Executed", "C Undone"));
    EXPECT_EQ(document["blocks"][0]["outputs"], json({{"Out", "6"}}));
    EXPECT_EQ(document["blocks"][3]["outputs"], json::object());
    EXPECT_GT(document["blocks"][0]["milliseconds"].get<double>(), 0.0);
    EXPECT_EQ(run.err, "");
}

TEST_F(ThreeBlocks, SavedDocumentHoldsValuesAndStates) {
    ProgramRun const run = study.run({"--save", "out.xml"});
    EXPECT_THAT(run.out, testing::EndsWith("saved: out.xml\n"));
    std::string const saved = study.folder().read("out.xml");
    EXPECT_THAT(saved, HasSubstr(">ABC</VARIABLE>"));
    EXPECT_THAT(saved, HasSubstr("BlockString=\"C\" DisplayStatus=\"False\" ExecutionStatus=\"Executed\""));
    EXPECT_THAT(saved, HasSubstr("Name=\"Out\" Scope=\"Local\" TemplateVariable=\"false\" Type=\"Data\">8</VARIABLE>"));
    // What was saved can be run again.
    EXPECT_EQ(study.folder().write("p.xml", saved).filename(), "p.xml");
    EXPECT_EQ(study.run().exitCode, 0);
}

TEST_F(ThreeBlocks, SavingOverTheDocumentItselfIsAllowed) {
    EXPECT_EQ(study.run({"--save", "p.xml"}).exitCode, 0);
    EXPECT_THAT(study.folder().read("p.xml"), HasSubstr(">ABC</VARIABLE>"));
    int files = 0;
    for (auto const& entry : std::filesystem::directory_iterator(study.path()))
        files += entry.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 1);
}

// Stops, steps and undo

TEST_F(ThreeBlocks, BreakStopsInFrontOfTheBlock) {
    ProgramRun const run = study.run({"--break", "C"});
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed  Out=6\n"
                                     "B  # ms  Executed  Out=7\n"
                                     "stopped before C: 2 blocks executed,  # ms\n");
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(ThreeBlocks, BreakAtTheStartRunsNothing) {
    EXPECT_EQ(withoutTimes(study.run({"--break", "A"}).out), "stopped before A: 0 blocks executed,  # ms\n");
}

TEST_F(ThreeBlocks, BreakIsNotSaved) {
    EXPECT_EQ(study.run({"--break", "C", "--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(study.folder().read("out.xml"), Not(HasSubstr("Break=\"true\"")));
}

TEST_F(ThreeBlocks, StepsAloneReplaceTheRun) {
    EXPECT_EQ(withoutTimes(study.run({"--step", "2"}).out), "A  # ms  Executed  Out=6\n"
                                                            "B  # ms  Executed  Out=7\n"
                                                            "stopped before C: 2 blocks executed,  # ms\n");
}

TEST_F(ThreeBlocks, StepsGoOnAfterABreak) {
    json const document = jsonOf(study.run({"--break", "B", "--step", "1", "--json"}));
    EXPECT_THAT(pathsOf(document), ElementsAre("A Executed", "B Executed"));
    EXPECT_EQ(document["next"], "C");
}

TEST_F(ThreeBlocks, StepsAndUndoActInTheOrderGiven) {
    struct Row {
        std::vector<std::string> arguments;
        std::vector<std::string> expected;
        std::string log;
    };
    std::vector<Row> const rows = {
        {{"--undo", "2"}, {"A Executed", "B Executed", "C Executed", "C Undone", "B Undone"}, "A"},
        {{"--undo", "2", "--step", "1"},
         {"A Executed", "B Executed", "C Executed", "C Undone", "B Undone", "B Executed"},
         "AB"},
        {{"--step", "1", "--undo", "1", "--step", "2"}, {"A Executed", "A Undone", "A Executed", "B Executed"}, "AB"},
        {{"--step", "2", "--undo", "1", "--step", "1", "--undo", "2"},
         {"A Executed", "B Executed", "B Undone", "B Executed", "B Undone", "A Undone"},
         ""},
        {{"--break", "C", "--undo", "1", "--step", "2"},
         {"A Executed", "B Executed", "B Undone", "B Executed", "C Executed"},
         "ABC"},
    };
    for (Row const& row : rows) {
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.end(), {"--json", "--save", "out.xml"});
        ProgramRun const run = study.run(arguments);
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(pathsOf(jsonOf(run)), row.expected);
        std::string const value = row.log.empty() ? "/>" : ">" + row.log + "</VARIABLE>";
        EXPECT_THAT(study.folder().read("out.xml"),
                    HasSubstr("Name=\"Log\" Scope=\"Local\" TemplateVariable=\"false\" Type=\"Data\"" + value));
    }
}

TEST_F(ThreeBlocks, UndoGoesBackToTheStartAndNoFurther) {
    ProgramRun const run = study.run({"--undo", "7"});
    EXPECT_THAT(withoutTimes(run.out), HasSubstr("C  # ms  Undone\nB  # ms  Undone\nA  # ms  Undone\n"
                                                 "nothing to undo: the flow is back at its start\n"
                                                 "stopped before A: 3 blocks executed, 3 undone,"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(ThreeBlocks, NothingIsBehindTheEndOfTheFlow) {
    ProgramRun const run = study.run({"--undo", "1", "--step", "5"});
    EXPECT_THAT(
        withoutTimes(run.out),
        HasSubstr("C  # ms  Undone\nC  # ms  Executed  Out=8\nnothing to step to: the flow has ended\nended: 4"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST(RunOfALoop, IsUndoneAllTheWayBack) {
    Study study;
    // A counts; D goes round until three.
    study.scriptOf("A", "variables.setIntVarValue('N', variables.getIntVarValue('N') + 1)",
                   "variables.setIntVarValue('N', variables.getIntVarValue('N') - 1)");
    study.scriptOf("D", "api.setActiveHandle(6 if variables.getIntVarValue('N') >= 3 else 4)");
    study.document(process(block("Start", "", "Start", "Oval") + block("A") + block("D", "", "", "Decision") +
                               block("End", "", "End", "Oval") + connector("Start", "A") + connector("A", "D") +
                               connector("D", "A", 4, 4) + connector("D", "End"),
                           variable("N", "Int", "0")));
    ProgramRun const run = study.run({"--undo", "8", "--step", "8", "--undo", "20", "--json", "--save", "out.xml"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::vector<std::string> const forward = {"Start", "A", "D", "A", "D", "A", "D", "End"};
    std::vector<std::string> expected;
    for (int round = 0; round < 2; ++round) {
        for (std::string const& path : forward)
            expected.push_back(path + " Executed");
        for (auto path = forward.rbegin(); path != forward.rend(); ++path)
            expected.push_back(*path + " Undone");
    }
    EXPECT_EQ(pathsOf(jsonOf(run)), expected);
    EXPECT_THAT(study.folder().read("out.xml"), HasSubstr(">0</VARIABLE>"));
}

TEST(RunOfASubProcess, GoesInAndComesOutBothWays) {
    Study study;
    for (std::string const name : {"A", "X", "Y", "B"})
        study.scriptOf(name, "pass");
    study.document(process(block("A") + subProcess("S", block("X") + block("Y") + connector("X", "Y")) + block("B") +
                           connector("A", "S") + connector("S", "B")));
    ProgramRun const run = study.run({"--break", "Y", "--step", "2", "--undo", "5", "--json"});
    EXPECT_THAT(pathsOf(jsonOf(run)),
                ElementsAre("A Executed", "S Executed", "S.X Executed", "S.Y Executed", "B Executed", "B Undone",
                            "S.Y Undone", "S.X Undone", "S Undone", "A Undone"));
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST(RunWithStopsOfTheDocument, StopsThereToo) {
    Study study;
    study.scriptOf("A", "pass");
    study.scriptOf("B", "pass");
    study.document(process(block("A") + block("B", "", "", "Rectangle", "Break=\"true\"") + connector("A", "B")));
    EXPECT_THAT(study.run({"--save", "out.xml"}).out, HasSubstr("stopped before B: 1 block executed"));
    EXPECT_THAT(study.folder().read("out.xml"), HasSubstr("Break=\"true\""));
}

// What scripts do

TEST(RunningScripts, KeepTheirOutputWhenPiped) {
    Study study;
    study.scriptOf("A", "print('to out')\nimport sys\nprint('to err', file=sys.stderr)\nsys.stdout.write('no end')");
    study.document(process(block("A")));
    ProgramRun const run = study.run();
    EXPECT_EQ(withoutTimes(run.out), "  A | to out\n  A | no end\nA  # ms  Executed\nended: 1 block executed,  # ms\n");
    EXPECT_EQ(run.err, "  A ! to err\n");
}

TEST(RunningScripts, DoNotDisturbTheJsonDocument) {
    Study study;
    study.scriptOf("A", "print('to out')\nimport os, THostManager\nos.system('echo from a child')\n"
                        "os.write(1, b'raw\\n')\nTHostManager.WriteHistory('one\\ntwo\\n')");
    study.document(process(block("A")));
    ProgramRun const run = study.run({"--json"});
    json const document = jsonOf(run);
    ASSERT_TRUE(document.is_object()) << run.out;
    EXPECT_EQ(document["history"], json({"one", "two"}));
    EXPECT_EQ(document["blocks"][0]["printed"],
              json::parse(R"([{"stream": "output", "text": "to out\nfrom a child\nraw\n"}])"));
    EXPECT_EQ(run.err, "  A | to out\n  A | from a child\n  A | raw\n");
}

TEST(Progress, IsShownOnATerminalAndOutOfTheWayOfWhatScriptsPrint) {
    Study study;
    study.scriptOf("A", "pass");
    study.scriptOf("B", "import sys\nprint('printed', file=sys.stderr)");
    study.document(process(block("A") + block("B") + connector("A", "B")));
    ProgramSetting setting;
    setting.errorTerminal = true;
    ProgramRun const run = study.run({}, setting);
    EXPECT_EQ(run.err, "\r\x1b[Krunning A (0 blocks done)\r\x1b[K"
                       "\r\x1b[Krunning B (1 block done, under 1 s left)\r\x1b[K  B ! printed\r\n");
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nB  # ms  Executed\nended: 2 blocks executed,  # ms\n");
    setting.errorTerminal = false;
    EXPECT_EQ(study.run({}, setting).err, "  B ! printed\n");
    setting.errorTerminal = true;
    EXPECT_EQ(study.run({"--json"}, setting).err, "  B ! printed\r\n");
}

TEST(RunningScripts, WriteHistoryAsLines) {
    Study study;
    study.scriptOf("A", "import THostManager\nTHostManager.WriteHistory('first\\nsecond\\n')\n"
                        "THostManager.WriteHistory(3)");
    study.document(process(block("A")));
    EXPECT_EQ(withoutTimes(study.run().out), "history: first\nhistory: second\nhistory: 3\nA  # ms  Executed\n"
                                             "ended: 1 block executed,  # ms\n");
}

TEST(RunningScripts, SpeakUnicodeInABareEnvironment) {
    Study study;
    study.scriptOf("A", "print('Länge ≤ 5 µm 梁')\nvariables.setStringVarValue('Out', 'Träger 梁')");
    study.document(process(block("A", variable("Out", "String", "", "Output"))));
    ProgramRun const run = study.run();
    EXPECT_EQ(withoutTimes(run.out), "  A | Länge ≤ 5 µm 梁\nA  # ms  Executed  Out=Träger 梁\n"
                                     "ended: 1 block executed,  # ms\n");
    EXPECT_EQ(run.err, "");
}

TEST(RunningScripts, SeeNothingOfTheUsersPython) {
    Study study;
    study.folder().write("evil/sitecustomize.py", "print('sitecustomize')\n");
    study.folder().write("evil/Kelso.py", "print('wrong Kelso')\n");
    study.scriptOf("A", "import sys, Kelso\nassert sys.flags.isolated == 1, sys.flags\n"
                        "assert sys.flags.utf8_mode == 1\nassert sys.dont_write_bytecode\n"
                        "assert not any('evil' in place for place in sys.path), sys.path\n"
                        "assert '' not in sys.path");
    study.document(process(block("A")));
    ProgramSetting setting;
    setting.extra = {"PYTHONPATH=" + (study.path() / "evil").string(), "PYTHONHOME=/nonexistent", "PYTHONSTARTUP=x.py",
                     "PYTHONUNBUFFERED="};
    ProgramRun const run = study.run({}, setting);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nended: 1 block executed,  # ms\n");
}

TEST(RunningScripts, WriteAndReadNoBytecode) {
    Study study;
    study.scriptOf("A", "print('old text')");
    study.document(process(block("A")));
    EXPECT_THAT(study.run().out, HasSubstr("old text"));
    EXPECT_FALSE(std::filesystem::exists(study.path() / "s/__pycache__"));

    // Bytecode of the user's own, then a script of the same size and time stamp.
    std::filesystem::path const source = study.path() / "s/A.py";
    std::string const compile = "cd '" + study.path().string() + "' && /usr/bin/python3 -m compileall -q s";
    ASSERT_EQ(std::system(compile.c_str()), 0);
    auto const stamp = std::filesystem::last_write_time(source);
    study.scriptOf("A", "print('new text')");
    std::filesystem::last_write_time(source, stamp);
    auto const filesOfUser = [&] {
        return std::distance(std::filesystem::directory_iterator(study.path() / "s/__pycache__"),
                             std::filesystem::directory_iterator());
    };
    EXPECT_EQ(filesOfUser(), 2);
    EXPECT_THAT(study.run().out, HasSubstr("new text"));
    EXPECT_EQ(filesOfUser(), 2);
}

TEST(RunningScripts, MayBeWrittenByTheBlocksBeforeThem) {
    Study study;
    study.scriptOf("A", "import os\nfolder = os.path.dirname(__file__)\n"
                        "os.rename(os.path.join(folder, 'later.txt'), os.path.join(folder, 'B.py'))");
    study.folder().write("s/later.txt", script("B", "print('written')"));
    study.document(process(block("A") + block("B") + connector("A", "B")));
    ProgramRun const run = study.run();
    EXPECT_THAT(run.out, HasSubstr("written\n"));
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST(RunningScripts, AreFoundBelowEveryScriptRoot) {
    Study study;
    for (std::string const name : {"one", "two", "three"})
        study.folder().write("root_" + name + "/" + name + "/" + name + ".py", script(name, "print('" + name + "')"));
    study.document(process(block("A", "", "one.one") + block("B", "", "two.two") + block("C", "", "three.three") +
                           connector("A", "B") + connector("B", "C")));
    ProgramRun const run = study.run({"--scripts", "root_one", "--scripts", "root_two/", "--scripts", "./root_three"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("three\n"));
    ProgramRun const two = study.run({"--scripts", "root_one", "--scripts", "root_two"});
    EXPECT_EQ(two.exitCode, 1);
    EXPECT_THAT(two.err, HasSubstr("flowmere: p.xml: C: ModuleNotFoundError: No module named 'three'\n"));
}

TEST(RunningScripts, OfTheFirstRootComeBeforeThoseOfTheDocument) {
    Study study;
    study.scriptOf("A", "print('beside the document')");
    study.folder().write("own/s/__init__.py", "");
    study.folder().write("own/s/A.py", script("A", "print('of the root')"));
    study.document(process(block("A")));
    EXPECT_THAT(study.run().out, StartsWith("  A | beside the document\n"));
    EXPECT_THAT(study.run({"--scripts", "own"}).out, StartsWith("  A | of the root\n"));
}

TEST(RunningScripts, AreToldTheirDirection) {
    Study study;
    study.scriptOf("A", "print('type', api.getExecutionType())", "print('type', api.getExecutionType())");
    study.document(process(block("A")));
    EXPECT_EQ(
        withoutTimes(study.run({"--undo", "1"}).out),
        "  A | type 0\nA  # ms  Executed\n  A | type 1\nA  # ms  Undone\nstopped before A: 1 block executed, 1 undone,"
        "  # ms\n");
}

TEST(RunningScripts, AskForConsentOfABlockMarkedToBeSkipped) {
    Study study;
    study.scriptOf("A", "pass");
    study.scriptText("B", "class B:\n    def __init__(self, block):\n        pass\n    def CanSkip(self):\n"
                          "        raise ValueError('no consent')\n    def Execute(self):\n        pass\n");
    study.document(process(block("A") + block("B", "", "", "Rectangle", "Skip=\"true\"") + connector("A", "B")));
    ProgramRun const run = study.run({"--json"});
    EXPECT_THAT(pathsOf(jsonOf(run)), ElementsAre("A Executed", "B Failed"));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("block B: Traceback"));
}

TEST(RunningScripts, AskNoBlockWithoutOneForItsConsent) {
    Study const study;
    study.scriptOf("A", "pass");
    std::string sub = subProcess("Sub", block("A"));
    sub.insert(sub.find("<SCRIPT"), "<FLAGS Skip=\"true\"/>\n");
    study.document(process(block("A") + sub + connector("A", "Sub")));
    ProgramRun const run = study.run({"--undo", "3"});
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nSub  # ms  Executed\nSub.A  # ms  Executed\n"
                                     "Sub.A  # ms  Undone\nSub  # ms  Undone\nA  # ms  Undone\n"
                                     "stopped before A: 3 blocks executed, 3 undone,  # ms\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.exitCode, 0);
}

// Scripts that go wrong

class FailingScript : public testing::Test {
protected:
    FailingScript() {
        study.scriptOf("A", "pass");
        study.scriptOf("C", "print('C has run')");
        study.document(
            process(block("A") + subProcess("S", block("B")) + block("C") + connector("A", "S") + connector("S", "C")));
    }

    ProgramRun expectFailure(std::string const& cause, std::vector<std::string> const& arguments = {}) {
        ProgramRun const run = study.run(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_THAT(run.err, testing::EndsWith("flowmere: p.xml: S.B: " + cause + "\n"));
        EXPECT_THAT(run.out, Not(HasSubstr("C has run")));
        return run;
    }

    Study study;
};

TEST_F(FailingScript, ThatRaisesEndsTheRunAndShowsItsTraceback) {
    study.scriptOf("B", "print('before')\nraise ValueError('bad beam')");
    ProgramRun const run = expectFailure("s/B.py:14: `raise ValueError('bad beam')`: ValueError: bad beam");
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nS  # ms  Executed\n  S.B | before\nS.B  # ms  Failed\n"
                                     "failed: 2 blocks executed,  # ms\n");
    std::string const file = (study.path() / "s/B.py").string();
    EXPECT_EQ(withName(run.err, file, "B.py"), "block S.B: Traceback (most recent call last):\n"
                                               "  File \"B.py\", line 14, in Execute\n"
                                               "    raise ValueError('bad beam')\n"
                                               "ValueError: bad beam\n"
                                               "flowmere: p.xml: S.B: s/B.py:14: `raise ValueError('bad beam')`: "
                                               "ValueError: bad beam\n");
}

TEST_F(FailingScript, IsToldInJsonWithItsTraceback) {
    study.scriptOf("B", "raise ValueError('bad\\nbeam')");
    json const document =
        jsonOf(expectFailure("s/B.py:13: `raise ValueError('bad\\nbeam')`: ValueError: bad\\nbeam", {"--json"}));
    EXPECT_EQ(document["end"], "failed");
    EXPECT_EQ(document["next"], nullptr);
    json const failed = document["blocks"].back();
    EXPECT_EQ(failed["state"], "Failed");
    EXPECT_EQ(failed["error"]["type"], "ValueError");
    EXPECT_EQ(failed["error"]["text"], "bad\nbeam");
    EXPECT_THAT(failed["error"]["traceback"].get<std::string>(), StartsWith("Traceback (most recent call last):\n"));
}

TEST_F(FailingScript, LeavesTheStateFailedInTheSavedDocument) {
    study.scriptOf("B", "raise ValueError('bad beam')");
    ProgramRun const run = study.run({"--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(study.folder().read("out.xml"),
                HasSubstr("BlockString=\"B\" DisplayStatus=\"False\" ExecutionStatus=\"Failed\""));
}

TEST_F(FailingScript, CanBeUndoneAndTriedAgain) {
    study.scriptOf("B", "import os\nif not os.path.exists('ready'):\n    raise ValueError('not ready')",
                   "open('ready', 'w').close()");
    ProgramRun const run = study.run({"--step", "3", "--undo", "1", "--step", "2", "--json"});
    EXPECT_THAT(pathsOf(jsonOf(run)),
                ElementsAre("A Executed", "S Executed", "S.B Failed", "S.B Undone", "S.B Executed", "C Executed"));
    EXPECT_EQ(jsonOf(run)["end"], "ended");
    EXPECT_EQ(run.exitCode, 1) << "a block has failed on the way";
}

TEST_F(FailingScript, IsNotSteppedOver) {
    study.scriptOf("B", "raise ValueError('bad beam')");
    ProgramRun const run =
        expectFailure("s/B.py:13: `raise ValueError('bad beam')`: ValueError: bad beam", {"--step", "4"});
    EXPECT_THAT(run.out, HasSubstr("nothing to step to: a block has failed and is not undone\nfailed: 2 blocks"));
}

TEST_F(FailingScript, ThatExitsIsAFailureAndNotTheEnd) {
    for (std::string const statement : {"import sys\nsys.exit(0)", "raise SystemExit(7)", "exit('gone')"}) {
        study.scriptOf("B", statement);
        ProgramRun const run = study.run();
        EXPECT_EQ(run.exitCode, 1) << statement;
        EXPECT_THAT(run.err, HasSubstr("`: SystemExit")) << statement;
        EXPECT_THAT(run.out, HasSubstr("failed: 2 blocks executed")) << statement;
    }
}

TEST_F(FailingScript, ThatIsMissing) {
    ProgramRun const run = expectFailure("ModuleNotFoundError: No module named 's.B'");
    EXPECT_THAT(run.err, StartsWith("block S.B: ModuleNotFoundError: No module named 's.B'\n"));
}

TEST_F(FailingScript, ThatIsAFolder) {
    std::filesystem::create_directories(study.path() / "s/B.py");
    expectFailure("ModuleNotFoundError: No module named 's.B'");
}

TEST_F(FailingScript, ThatDoesNotCompile) {
    study.scriptText("B", "class B:\n    def Execute(self)\n        pass\n");
    ProgramRun const run = study.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("flowmere: p.xml: S.B: s/B.py:2: `def Execute(self)`: SyntaxError: expected ':'\n"));
}

TEST_F(FailingScript, WithBytesThatAreNoUtf8) {
    study.scriptText("B", "class B:\n    text = '\xE4'\n");
    ProgramRun const run = study.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("flowmere: p.xml: S.B: s/B.py:2: SyntaxError: "));
}

TEST_F(FailingScript, ThatIsEmptyOrWithoutItsClass) {
    for (std::string const text : {"", "class Other:\n    pass\n"}) {
        study.scriptText("B", text);
        ProgramRun const run = study.run();
        EXPECT_EQ(run.exitCode, 1) << text;
        EXPECT_THAT(run.err, HasSubstr("flowmere: p.xml: S.B: AttributeError: module 's.B' has no attribute 'B'\n"));
    }
}

TEST_F(FailingScript, WhoseClassIsNone) {
    study.scriptText("B", "B = 5\n");
    expectFailure("TypeError: B is no class");
}

TEST_F(FailingScript, WithoutTheMethod) {
    study.scriptText("B", "class B:\n    def __init__(self, block):\n        pass\n");
    expectFailure("AttributeError: 'B' object has no attribute 'Execute'");
}

TEST_F(FailingScript, ThatTakesTheHookAway) {
    study.scriptOf("B", "import sys\nsys.excepthook = lambda *rest: None\nraise ValueError('hidden')");
    expectFailure("s/B.py:15: `raise ValueError('hidden')`: ValueError: hidden");
}

TEST_F(FailingScript, ThatClosesItsOutput) {
    study.scriptOf("B", "import sys\nsys.stdout.close()\nsys.stderr = None\nraise ValueError('mute')");
    expectFailure("s/B.py:16: `raise ValueError('mute')`: ValueError: mute");
}

TEST_F(FailingScript, WhoseExceptionHasNoText) {
    study.scriptOf("B", "class Odd(Exception):\n    def __str__(self):\n        raise KeyError('x')\nraise Odd()");
    ProgramRun const run = study.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err,
                HasSubstr("flowmere: p.xml: S.B: s/B.py:16: `raise Odd()`: Odd: (an exception that has no text)\n"));
}

TEST_F(FailingScript, ThatRecursesForEver) {
    study.scriptOf("B", "def again():\n    again()\nagain()");
    expectFailure("s/B.py:14: `again()`: RecursionError: maximum recursion depth exceeded");
}

TEST_F(FailingScript, WithAnUnknownVariableIsGivenNearNames) {
    study.scriptOf("B", "variables.getIntVarValue('Heigth')");
    study.document(process(subProcess("S", block("B", variable("Height", "Int", "1"))), variable("Width", "Int", "1")));
    ProgramRun const run = study.run();
    EXPECT_THAT(run.err, HasSubstr("NameError: no variable 'Heigth' on the block 'S.B' or on the process; did you mean "
                                   "Height?\n"));
    EXPECT_EQ(run.exitCode, 1);
}

TEST_F(FailingScript, WithAnUnknownComClass) {
    study.scriptOf("B", "win32com.client.Dispatch('Excel.Application')");
    expectFailure(
        "s/B.py:13: `win32com.client.Dispatch('Excel.Application')`: com_error: there is no COM class 'Excel.Application'; there are "
        "ProcessExecutive.ProcessExecutiveApi and ProcessExecutive.Variables");
}

TEST_F(FailingScript, WithAGripThatIsNone) {
    for (std::string const grip : {"0", "9", "-1"}) {
        study.scriptOf("B", "api.setActiveHandle(" + grip + ")");
        expectFailure("s/B.py:13: `api.setActiveHandle(" + grip +
                      ")`: ValueError: a grip is a number from 1 to 8, not " + grip);
    }
}

TEST_F(FailingScript, WhenUndoneEndsTheUndo) {
    study.scriptOf("B", "pass", "raise ValueError('cannot go back')");
    ProgramRun const run = study.run({"--undo", "3", "--json"});
    EXPECT_THAT(pathsOf(jsonOf(run)),
                ElementsAre("A Executed", "S Executed", "S.B Executed", "C Executed", "C Undone", "S.B Failed"));
    EXPECT_EQ(run.exitCode, 1);
}

TEST_F(FailingScript, ReportsEachErrorOfACompanionToo) {
    study.scriptOf("B", "pass");
    study.scriptText("BBlock", "raise ValueError('in the companion')\n");
    ProgramRun const run = study.run();
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("flowmere: p.xml: S.B: s/BBlock.py:1: `raise ValueError('in the companion')`: "
                                   "ValueError: in the companion\n"));
}

// Ctrl-C

TEST(Interrupt, StopsAnEndlessScript) {
    for (std::string const body :
         {"print('here')\nwhile True:\n    pass", "import time\nprint('here')\ntime.sleep(1000)"}) {
        Study study;
        study.scriptOf("A", body);
        study.document(process(block("A")));
        ProgramSetting setting;
        setting.interruptAt = "here";
        ProgramRun const run = study.run({}, setting);
        EXPECT_EQ(run.exitCode, 130);
        EXPECT_LT(run.seconds, 20.0);
        EXPECT_EQ(withoutTimes(run.out), "  A | here\nA  # ms  Interrupted\ninterrupted: 0 blocks executed,  # ms\n");
        EXPECT_EQ(run.err, "flowmere: p.xml: A: interrupted\n");
    }
}

TEST(Interrupt, StopsAnEndlessFlow) {
    Study study;
    study.scriptOf("A", "print('round')");
    study.scriptOf("B", "pass");
    study.document(process(block("A") + block("B") + connector("A", "B") + connector("B", "A")));
    ProgramSetting setting;
    setting.interruptAt = "round";
    ProgramRun const run = study.run({}, setting);
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_THAT(run.out, HasSubstr("interrupted: "));
}

TEST(Interrupt, StopsAFlowWithoutScripts) {
    Study study;
    study.scriptOf("A", "print('here')");
    study.document(process(block("A") + block("B", "", "B", "Oval") + block("C", "", "C", "Oval") +
                           connector("A", "B") + connector("B", "C") + connector("C", "B")));
    ProgramSetting setting;
    setting.interruptAt = "here";
    EXPECT_EQ(study.run({}, setting).exitCode, 130);
}

TEST(Interrupt, TwiceLeavesAScriptThatDoesNotLetGo) {
    Study study;
    study.scriptOf("A", "print('here')\nwhile True:\n    try:\n        while True:\n            pass\n"
                        "    except BaseException:\n        pass");
    study.document(process(block("A")));
    ProgramSetting setting;
    setting.interruptAt = "here";
    setting.interrupts = 2;
    ProgramRun const run = study.run({}, setting);
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_LT(run.seconds, 20.0);
}

TEST(Interrupt, IsToldInJsonAndSavesNothing) {
    Study study;
    study.scriptOf("A", "import sys\nprint('here', file=sys.stderr)\nopen('started', 'w').close()\n"
                        "import os, signal\nos.kill(os.getpid(), signal.SIGINT)\nwhile True:\n    pass");
    study.document(process(block("A")));
    ProgramRun const run = study.run({"--json", "--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_EQ(jsonOf(run)["end"], "interrupted");
    EXPECT_EQ(jsonOf(run)["saved"], nullptr);
    EXPECT_FALSE(std::filesystem::exists(study.path() / "out.xml"));
}

TEST(Interrupt, RaisedByAScriptItselfIsAnInterruptToo) {
    Study study;
    study.scriptOf("A", "raise KeyboardInterrupt");
    study.document(process(block("A")));
    EXPECT_EQ(study.run().exitCode, 130);
}

// Blocks without scripts

TEST(BlocksWithoutScript, RunAsNothingUnlessTheyAreTasks) {
    Study study;
    study.document(process(block("Start", "", "Start", "Oval") + block("Choice", "", "Choice", "Decision") +
                           subProcess("S", block("Inner", "", "Inner", "Oval")) + block("Task", "", "Task") +
                           connector("Start", "Choice") + connector("Choice", "S") + connector("S", "Task")));
    ProgramRun const run = study.run({"--json"});
    EXPECT_THAT(pathsOf(jsonOf(run)),
                ElementsAre("Start Executed", "Choice Executed", "S Executed", "S.Inner Executed", "Task Failed"));
    EXPECT_THAT(run.err, HasSubstr("flowmere: p.xml: Task: ModuleNotFoundError: No module named 'Task'\n"));
    EXPECT_EQ(run.exitCode, 1);
}

TEST(BlocksWithoutScript, KeepTheirScriptType) {
    Study study;
    study.document(process(block("Start", "", "Start", "Oval")));
    EXPECT_EQ(study.run({"--undo", "1", "--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(study.folder().read("out.xml"), HasSubstr("<SCRIPT Name=\"Start\" ScriptType=\"PYTHON\"/>"));
}

// Wrong use

struct WrongUse {
    std::string name;
    std::vector<std::string> arguments;
    std::string message;
};

void PrintTo(WrongUse const& row, std::ostream* out) {
    *out << row.name;
}

class WrongUseOfRun : public testing::TestWithParam<WrongUse> {};

TEST_P(WrongUseOfRun, IsToldInOneLineWithExitCodeTwo) {
    Study study;
    study.scriptOf("Height", "print('has run')");
    std::string const inner = variable("Width", "Int", "1") + variable("Loads", "DoubleArray", "[1.0]") +
                              variable("Names", "String", "", "Input", "", true);
    study.document(process(block("Height", inner) + subProcess("S", block("Twin", "", "Twin", "Oval")) +
                           subProcess("T", block("Twin", "", "Twin", "Oval"))));
    study.folder().write("empty.xml", "");
    study.folder().write("text.txt", "no markup\n");
    study.folder().write("cut.xml", process(block("A")).substr(0, 150));
    study.folder().write("nothing.xml", "<Process/>");
    study.folder().write("other.xml", "<html><body/></html>");
    study.folder().write("file", "");
    std::filesystem::create_directories(study.path() / "folder");
    ProgramSetting setting;
    setting.folder = study.path();
    ProgramRun const run = runProgram(GetParam().arguments, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(withName(run.err, study.path().string(), "HERE"), "flowmere: " + GetParam().message + "\n");
    EXPECT_THAT(run.out, Not(HasSubstr("has run")));
}

INSTANTIATE_TEST_SUITE_P(
    Table, WrongUseOfRun,
    testing::Values(
        WrongUse{"NoCommand", {}, "A subcommand is required (see flowmere --help)"},
        WrongUse{"UnknownCommand", {"rnu"}, "rnu: there is no such command; did you mean run?"},
        WrongUse{"UnknownOption",
                 {"run", "p.xml", "--sep", "1"},
                 "--sep: there is no such option; did you mean --set or --step?"},
        WrongUse{"NoFile", {"run"}, "FILE is required (see flowmere run --help)"},
        WrongUse{"TwoFiles",
                 {"run", "p.xml", "q.xml"},
                 "q.xml: there is no place for this argument (see flowmere run --help)"},
        WrongUse{"EmptyName", {"run", ""}, "the name of the document is empty"},
        WrongUse{"StepZero",
                 {"run", "p.xml", "--step", "0"},
                 "--step: Value 0 not in range 1 to 1000000 (see flowmere run --help)"},
        WrongUse{"UndoNoNumber",
                 {"run", "p.xml", "--undo", "x"},
                 "--undo: Value x not in range 1 to 1000000 (see flowmere run --help)"},
        WrongUse{"MissingFile", {"run", "none.xml"}, "none.xml: there is no such file"},
        WrongUse{"Folder",
                 {"run", "folder"},
                 "folder: is a folder without a workflow: there is no processdefinition.xml in it"},
        WrongUse{"Device", {"run", "/dev/null"}, "/dev/null: is no regular file"},
        WrongUse{"EmptyFile", {"run", "empty.xml"}, "empty.xml: is empty"},
        WrongUse{"NoMarkup",
                 {"run", "text.txt"},
                 "text.txt: line 1, column 1: no well-formed XML: invalid document structure"},
        WrongUse{
            "Truncated", {"run", "cut.xml"}, "cut.xml: line 5, column 38: no well-formed XML: unexpected end of input"},
        WrongUse{"NoBlocks", {"run", "nothing.xml"}, "nothing.xml: holds no block to run"},
        WrongUse{"AnotherKind",
                 {"run", "other.xml"},
                 "other.xml: is no process document: it holds a \"html\" and no blocks"},
        WrongUse{"ScriptRootMissing", {"run", "p.xml", "--scripts", "nowhere"}, "nowhere: is no folder of scripts"},
        WrongUse{"ScriptRootIsFile", {"run", "p.xml", "--scripts", "file"}, "file: is no folder of scripts"},
        WrongUse{"SetWithoutValue",
                 {"run", "p.xml", "--set", "Height.Width"},
                 "--set Height.Width: is not of the form PATH=VALUE"},
        WrongUse{"SetUnknown",
                 {"run", "p.xml", "--set", "Height.Widht=3"},
                 "p.xml: Height.Widht: there is no such variable; did you mean Height.Width?"},
        WrongUse{"SetUnknownAndFar", {"run", "p.xml", "--set", "Q=3"}, "p.xml: Q: there is no such variable"},
        WrongUse{"SetNoNumber",
                 {"run", "p.xml", "--set", "Height.Width=wide"},
                 "p.xml: Height.Width: \"wide\" is no value of type Int"},
        WrongUse{"SetNoInteger",
                 {"run", "p.xml", "--set", "Height.Width=2.5"},
                 "p.xml: Height.Width: \"2.5\" is no value of type Int"},
        WrongUse{"SetNoList",
                 {"run", "p.xml", "--set", "Height.Loads=[1, x]"},
                 "p.xml: Height.Loads: \"[1, x]\" is no value of type DoubleArray"},
        WrongUse{"BreakUnknown",
                 {"run", "p.xml", "--break", "Hight"},
                 "p.xml: Hight: there is no such block; did you mean Height?"},
        WrongUse{"BreakAmbiguous",
                 {"run", "p.xml", "--break", "Twin"},
                 "p.xml: Twin: several blocks have this identifier: S.Twin, T.Twin"}),
    [](testing::TestParamInfo<WrongUse> const& row) { return row.param.name; });

TEST(ValuesFromTheCommandLine, FitTheirType) {
    Study study;
    study.scriptOf("A", "print(variables.getDoubleVarValues('L'), variables.getStringVarValue('S'),"
                        " variables.getFloatVarValue('F'))");
    study.document(process(
        block("A", variable("L", "DoubleArray", "[1]") + variable("S", "String", "") + variable("F", "Float", "1"))));
    for (std::string const list : {"L=[1, 2.5]", "L=1,2.5", "L= 1 , 2.5 "}) {
        ProgramRun const run = study.run({"--set", "A." + list, "--set", "A.S=a=b \"c\"", "--set", "A.F=+1e3"});
        EXPECT_THAT(run.out, StartsWith("  A | [1.0, 2.5] a=b \"c\" 1000.0\n")) << run.err;
    }
    EXPECT_THAT(study.run({"--set", "A.L=[]"}).out, StartsWith("  A | []"));
}

// Hostile documents

TEST(HostileDocuments, AreRefusedInOneLine) {
    ScratchFolder const scratch;
    std::string deep;
    for (int level = 0; level < 200000; ++level)
        deep += "<SUB_PROCESS>";
    scratch.write("deep.xml", "<Process>" + deep);
    std::string bomb = "<!DOCTYPE Process [<!ENTITY a \"aaaaaaaaaa\">";
    for (char name = 'b'; name < 'k'; ++name) {
        std::string const inner = "&" + std::string(1, static_cast<char>(name - 1)) + ";";
        bomb += "<!ENTITY " + std::string(1, name) + " \"";
        for (int count = 0; count < 10; ++count)
            bomb += inner;
        bomb += "\">";
    }
    scratch.write("bomb.xml", bomb + "]><Process Name=\"&j;\"/>");
    for (std::string const name : {"deep.xml", "bomb.xml"}) {
        ProgramRun const run = runProgram({"run", (scratch / name).string()});
        EXPECT_EQ(run.exitCode, 2) << name;
        EXPECT_THAT(run.err, MatchesRegex("flowmere: [^\n]*" + name + ": [^\n]*\n"));
        EXPECT_LT(run.seconds, 20.0) << name;
    }
}

TEST(HostileDocuments, LinkLoopsOfAnyLengthReadAsThemselves) {
    Study study;
    study.scriptOf("A", "print([variables.getIntVarValue(name) for name in ('P', 'Q', 'R', 'S')])");
    study.document(
        process(block("A", variable("P", "Int", "1", "Input", "A.P") + variable("Q", "Int", "2", "Input", "A.R") +
                               variable("R", "Int", "3", "Input", "A.S") + variable("S", "Int", "4", "Input", "A.Q"))));
    ProgramRun const run = study.run({"--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("  A | [1, 2, 3, 4]\n"));
}

// Links to other files

TEST(LinkedFiles, RunAndAreSavedWithTheDocument) {
    Study study;
    for (std::string const name : {"A", "X", "Y"})
        study.scriptOf(name, "pass");
    study.folder().write("inner.xml", process(block("X") + block("Y") + connector("X", "Y")));
    study.document(process(block("A") + subProcess("S", "<FILE_LINK FileName=\"inner.xml\"/>") + connector("A", "S")));
    ProgramRun const run = study.run({"--json", "--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(pathsOf(jsonOf(run)), ElementsAre("A Executed", "S Executed", "S.X Executed", "S.Y Executed"));
    std::filesystem::remove(study.path() / "inner.xml");
    study.folder().write("p.xml", study.folder().read("out.xml"));
    EXPECT_EQ(jsonOf(study.run({"--json"}))["executed"], 4);
}

TEST(LinkedFiles, OfANestedProcessAreSavedToo) {
    Study study;
    study.scriptOf("X", "pass");
    study.folder().write("inner.xml", process(block("X")));
    study.document(process("<PROCESS Name=\"N\" FILE=\"inner.xml\"/>"));
    ProgramRun const run = study.run({"--json", "--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(jsonOf(run)["executed"], 2);
    EXPECT_EQ(jsonOf(run)["saved"], "out.xml");
}

TEST(LinkedFiles, ThatAreMissingAreTold) {
    Study study;
    study.scriptOf("A", "pass");
    study.document(process(block("A") + subProcess("S", "<FILE_LINK FileName=\"none.xml\"/>") + connector("A", "S") +
                           connector("S", "Gone")));
    ProgramRun const run = study.run({"--json"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "flowmere: p.xml: S: the linked file none.xml is missing\n"
                       "flowmere: p.xml: a connector from S to Gone lacks a block\n");
    EXPECT_EQ(jsonOf(run)["notes"],
              json({"S: the linked file none.xml is missing", "a connector from S to Gone lacks a block"}));
}

TEST(LinkedFiles, ThatAreBrokenAreToldWithThePlace) {
    Study study;
    study.scriptOf("A", "pass");
    study.folder().write("broken.xml", "<Process>\n<BLOCK Name=\"X\"");
    study.document(process(block("A") + subProcess("S", "<FILE_LINK FileName=\"broken.xml\"/>") + connector("A", "S")));
    std::string const place = "S: the linked file broken.xml cannot be read: line 2, column 16: ";
    EXPECT_THAT(study.run().err, StartsWith("flowmere: p.xml: " + place));
    for (std::vector<std::string> const& arguments :
         {std::vector<std::string>{"show", "p.xml"}, {"diff", "p.xml", "p.xml"}, {"shell", "p.xml", "-c", "status"}}) {
        ProgramSetting setting;
        setting.folder = study.path();
        EXPECT_THAT(runProgram(arguments, setting).err, StartsWith("flowmere: p.xml: " + place)) << arguments[0];
    }
}

TEST(LinkedFiles, ThatLinkToThemselvesEnd) {
    Study study;
    study.document(process(block("Start", "", "Start", "Oval") + subProcess("S", "<FILE_LINK FileName=\"p.xml\"/>") +
                           connector("Start", "S")));
    ProgramRun const run = study.run();
    EXPECT_LT(run.seconds, 20.0);
    EXPECT_EQ(run.exitCode, 0) << run.err.substr(0, 500);
}

// Saving

TEST_F(ThreeBlocks, UnwritablePlacesAreToldBeforeAnythingRuns) {
    study.folder().write("file", "");
    struct Row {
        std::string out;
        std::string message;
    };
    std::vector<Row> const rows = {
        {"nowhere/out.xml", "nowhere/out.xml: cannot be written: there is no folder HERE/nowhere"},
        {"s", "s: cannot be written: it is a folder"},
        {"/dev/full", "/dev/full: cannot be written: it is no regular file"},
        {"file/out.xml", "file/out.xml: cannot be written: there is no folder HERE/file"},
        {"", "the name of the file to save is empty"},
        {"a\\b.xml", "a\\b.xml: cannot be written: its path holds a backslash"},
    };
    for (Row const& row : rows) {
        ProgramRun const run = study.run({"--save", row.out});
        EXPECT_EQ(run.exitCode, 2) << row.out;
        EXPECT_EQ(withName(run.err, study.path().string(), "HERE"), "flowmere: " + row.message + "\n");
        EXPECT_EQ(run.out, "") << row.out;
    }
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(ThreeBlocks, AFullDeviceBehindStandardOutputIsTold) {
    ProgramSetting setting;
    setting.outputTo = "/dev/full";
    ProgramRun const run = study.run({}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: standard output: cannot be written: No space left on device\n");
}

TEST_F(ThreeBlocks, ALinkIsSavedThrough) {
    std::filesystem::create_symlink("real.xml", study.path() / "link.xml");
    study.folder().write("real.xml", "old");
    EXPECT_EQ(study.run({"--save", "link.xml"}).exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(study.path() / "link.xml"));
    EXPECT_THAT(study.folder().read("real.xml"), HasSubstr(">ABC</VARIABLE>"));
}

// Help and version

TEST(Help, NamesTheCommandAndItsOptions) {
    ProgramRun const all = runProgram({"--help"});
    EXPECT_EQ(all.exitCode, 0);
    EXPECT_THAT(all.out, HasSubstr("run"));
    ProgramRun const run = runProgram({"run", "--help"});
    EXPECT_EQ(run.exitCode, 0);
    for (std::string const option : {"--scripts", "--set", "--break", "--step", "--undo", "--save", "--json"})
        EXPECT_THAT(run.out, HasSubstr(option));
    EXPECT_EQ(run.err, "");
}

TEST(Version, NamesTheLibrariesToo) {
    ProgramRun const run = runProgram({"--version"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, MatchesRegex("flowmere [0-9.]+ \\(Xerces-C [0-9.]+, Python 3[0-9.]+\\)\n"));
}

} // namespace
