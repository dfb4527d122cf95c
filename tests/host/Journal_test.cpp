// flowmere run --journal and --resume: what a journal holds, and what becomes of a run that broke off.

#include "Study.h"

#include "host/files/Digest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <iostream>
#include <random>
#include <regex>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace {

using namespace flowmere::test;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// With "#" for what is another each time.
std::string withoutChance(std::string text) {
    static std::regex const number(R"("milliseconds":[0-9.e+-]+)");
    static std::regex const time(R"("at":"[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}")");
    static std::regex const digest(R"("[0-9a-f]{64}")");
    text = std::regex_replace(text, number, "\"milliseconds\":#");
    text = std::regex_replace(text, time, "\"at\":#");
    return std::regex_replace(text, digest, "#");
}

// A and B and C in a row; each adds its letter to the variable Log.
class Journaled : public testing::Test {
protected:
    Journaled() {
        for (std::string const name : {"A", "B", "C"})
            study.scriptOf(name, kAdd + "'" + name + "')", kTakeAway);
        study.document(process(block("A") + block("B") + block("C") + connector("A", "B") + connector("B", "C"),
                               variable("Log", "String", "-")));
    }

    // A run that failed in B, and could be resumed.
    void failInB() {
        study.scriptOf("B", kAdd + "'?')\nraise ValueError('bad beam')", kTakeAway);
        EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 1);
        study.scriptOf("B", kAdd + "'B')", kTakeAway);
    }

    ProgramRun resume(std::vector<std::string> arguments = {}, ProgramSetting setting = {}) const {
        arguments.insert(arguments.begin(), {"run", "--resume", "j.jsonl"});
        setting.folder = study.path();
        return runProgram(arguments, setting);
    }
    std::string journal() const { return study.folder().read("j.jsonl"); }
    std::string saved() const { return study.folder().read("out.xml"); }
    void expectRefused(ProgramRun const& run, std::string const& message) const {
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(withName(run.err, study.path().string(), "HERE"), "flowmere: " + message + "\n");
        EXPECT_EQ(run.out, "");
    }

    std::string const kAdd = "variables.setStringVarValue('Log', variables.getStringVarValue('Log') + ";
    std::string const kTakeAway = "variables.setStringVarValue('Log', variables.getStringVarValue('Log')[:-1])";
    Study study;
};

TEST_F(Journaled, EachEventIsALine) {
    study.scriptOf("A", "import sys, THostManager\nprint('to out')\nprint('to err', file=sys.stderr)\n"
                        "THostManager.WriteHistory('told')\n" +
                            kAdd + "'A')");
    study.scriptOf("C", "raise ValueError('bad beam')");
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--set", "Log=:", "--undo", "2", "--save", "out.xml"}).exitCode, 1);
    EXPECT_EQ(
        withName(withoutChance(journal()), study.path().string(), "HERE"),
        R"journal({"event":"begin","journal":1,"file":"p.xml","path":"HERE/p.xml","sha256":#,"contents":#,"at":#,"options":{"scripts":[]}}
{"event":"values","values":{".Log":":"}}
{"event":"start","block":"A"}
{"event":"history","text":"told"}
{"event":"values","block":"A","values":{".Log":":A"}}
{"event":"printed","block":"A","stream":"output","text":"to out\n"}
{"event":"printed","block":"A","stream":"error","text":"to err\n"}
{"event":"done","block":"A","state":"Executed","milliseconds":#,"grip":6,"next":"B"}
{"event":"start","block":"B"}
{"event":"values","block":"B","values":{".Log":":AB"}}
{"event":"done","block":"B","state":"Executed","milliseconds":#,"grip":6,"next":"C"}
{"event":"start","block":"C"}
{"event":"done","block":"C","state":"Failed","milliseconds":#,"grip":6,"next":null,"error":{"type":"ValueError","text":"bad beam","traceback":"Traceback (most recent call last):\n  File \"HERE/s/C.py\", line 13, in Execute\n    raise ValueError('bad beam')\nValueError: bad beam\n","file":"s/C.py","line":13,"source":"raise ValueError('bad beam')"}}
{"event":"undo","block":"C"}
{"event":"undone","block":"C","state":"Undone","milliseconds":#,"grip":6,"next":"B"}
{"event":"undo","block":"B"}
{"event":"values","block":"B","values":{".Log":":A"}}
{"event":"undone","block":"B","state":"Undone","milliseconds":#,"grip":6,"next":"A"}
{"event":"save","file":"HERE/out.xml"}
{"event":"end","end":"stopped","next":"B","executed":2,"undone":2,"milliseconds":#,"saved":"out.xml"}
)journal");
}

TEST_F(Journaled, TellsTheDocumentByItsDigest) {
    study.run({"--journal", "j.jsonl", "--scripts", ".", "--until", "B", "--timeout", "50", "--break", "C"});
    json const begin = json::parse(linesOf(journal()).front());
    flowmere::host::Digest digest;
    digest.add(study.folder().read("p.xml"));
    EXPECT_EQ(begin["sha256"], digest.text());
    EXPECT_EQ(begin["options"],
              json({{"scripts", {study.path().string()}}, {"until", "B"}, {"breaks", {"C"}}, {"timeout", 50.0}}));
}

TEST_F(Journaled, GoesOnInFrontOfTheFailedBlockWithTheValuesFromBefore) {
    failInB();
    ProgramRun const run = resume({"--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(withoutTimes(run.out), "resumed: 1 block had run\nB  # ms  Executed\nC  # ms  Executed\n"
                                     "ended: 2 blocks executed,  # ms\nsaved: out.xml\n");
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
    EXPECT_THAT(saved(), HasSubstr("BlockString=\"A\" DisplayStatus=\"False\" ExecutionStatus=\"Executed\""));
    EXPECT_THAT(saved(), HasSubstr("BlockString=\"B\" DisplayStatus=\"False\" ExecutionStatus=\"Executed\""));
    std::vector<std::string> const lines = linesOf(journal());
    EXPECT_THAT(lines.back(), StartsWith("{\"event\":\"end\",\"end\":\"ended\""));
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](std::string const& line) { return line.starts_with("{\"event\":\"resume\""); }),
              1);
}

TEST_F(Journaled, GoesOnBehindAStop) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--break", "B", "--break", "C"}).exitCode, 0);
    EXPECT_EQ(withoutTimes(resume().out), "resumed: 1 block had run\nB  # ms  Executed\nC  # ms  Executed\n"
                                          "ended: 2 blocks executed,  # ms\n");
}

TEST_F(Journaled, StopsAtTheStopsOfItsOwnLine) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--until", "A"}).exitCode, 0);
    EXPECT_EQ(withoutTimes(resume({"--break", "C"}).out), "resumed: 1 block had run\nB  # ms  Executed\n"
                                                          "stopped before C: 1 block executed,  # ms\n");
    EXPECT_EQ(withoutTimes(resume({"--step", "1", "--undo", "1"}).out),
              "resumed: 2 blocks had run\nC  # ms  Executed\nC  # ms  Undone\n"
              "stopped before C: 1 block executed, 1 undone,  # ms\n");
}

TEST_F(Journaled, StopsInFrontOfTheStartBlockOnlyOnce) {
    EXPECT_THAT(study.run({"--journal", "j.jsonl", "--break", "A"}).out, StartsWith("stopped before A: 0 blocks"));
    EXPECT_EQ(withoutTimes(resume({"--break", "A", "--break", "B"}).out),
              "resumed: nothing had run\nA  # ms  Executed\nstopped before B: 1 block executed,  # ms\n");
}

TEST_F(Journaled, UndoGoesBackThroughAllThatRan) {
    failInB();
    ProgramRun const run = resume({"--undo", "9", "--save", "out.xml"});
    EXPECT_EQ(withoutTimes(run.out), "resumed: 1 block had run\nB  # ms  Executed\nC  # ms  Executed\nC  # ms  Undone\n"
                                     "B  # ms  Undone\nA  # ms  Undone\n"
                                     "nothing to undo: the flow is back at its start\n"
                                     "stopped before A: 2 blocks executed, 3 undone,  # ms\nsaved: out.xml\n");
    EXPECT_THAT(saved(), HasSubstr(">-</VARIABLE>"));
    // And from there on again.
    EXPECT_THAT(withoutTimes(resume({"--save", "out.xml"}).out),
                HasSubstr("had run\nA  # ms  Executed\nB  # ms  Executed\nC  # ms  Executed\nended: 3"));
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
}

TEST_F(Journaled, OfARunThatHasEndedCanBeUndoneAndSaved) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 0);
    ProgramRun const run = resume({"--undo", "1", "--save", "out.xml"});
    EXPECT_EQ(withoutTimes(run.out), "resumed: 3 blocks had run\nnothing to go on with: the flow has ended\n"
                                     "C  # ms  Undone\nstopped before C: 0 blocks executed, 1 undone,  # ms\n"
                                     "saved: out.xml\n");
    EXPECT_THAT(saved(), HasSubstr(">-AB</VARIABLE>"));
}

TEST_F(Journaled, AFailedUndoIsNotKeptEither) {
    study.scriptOf("C", kAdd + "'C')", kAdd + "'!')\nraise ValueError('no way back')");
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--undo", "1"}).exitCode, 1);
    study.scriptOf("C", kAdd + "'C')", kTakeAway);
    EXPECT_EQ(resume({"--undo", "1", "--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(saved(), HasSubstr(">-AB</VARIABLE>"));
}

TEST_F(Journaled, AFailureThatWasUndoneIsKept) {
    study.scriptOf("B", kAdd + "'?')\nraise ValueError('bad beam')", kTakeAway);
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--undo", "2"}).exitCode, 1);
    study.scriptOf("B", kAdd + "'B')", kTakeAway);
    ProgramRun const run = resume({"--save", "out.xml"});
    EXPECT_THAT(run.out, StartsWith("resumed: 0 blocks had run\nA "));
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
}

TEST_F(Journaled, GoesOnWithTheBlockThatWasUndone) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 0);
    EXPECT_EQ(resume({"--undo", "2"}).exitCode, 0);
    EXPECT_THAT(withoutTimes(resume({"--step", "1"}).out),
                EndsWith("resumed: 1 block had run\nB  # ms  Executed\nstopped before C: 1 block executed,  # ms\n"));
    EXPECT_EQ(resume({"--undo", "1"}).exitCode, 0);
    EXPECT_EQ(resume({"--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
}

TEST_F(Journaled, IsNoFileThatSomethingElseIsWrittenTo) {
    std::string const document = study.folder().read("p.xml");
    struct Row {
        std::vector<std::string> arguments;
        std::string message;
    };
    for (Row const& row : std::vector<Row>{
             {{"--journal", "x", "--save", "x"}, "x: is asked for by --journal and by --save"},
             {{"--journal", "x", "--report", "./x"}, "./x: is asked for by --journal and by --report"},
             {{"--save", "s/../x", "--report", "x"}, "x: is asked for by --save and by --report"},
             {{"--report", "p.xml"}, "p.xml: is the document itself, which --report would destroy"},
             {{"--journal", "link.xml"}, "link.xml: is the document itself, which --journal would destroy"}}) {
        std::filesystem::remove(study.path() / "link.xml");
        std::filesystem::create_symlink("p.xml", study.path() / "link.xml");
        expectRefused(study.run(row.arguments), row.message);
        EXPECT_FALSE(std::filesystem::exists(study.path() / "x"));
    }
    failInB();
    std::string const before = journal();
    expectRefused(resume({"--save", "j.jsonl"}), "j.jsonl: is asked for by --resume and by --save");
    EXPECT_EQ(journal(), before);
    EXPECT_EQ(study.folder().read("p.xml"), document);
    // A run may be saved into its own document.
    EXPECT_EQ(study.run({"--save", "p.xml"}).exitCode, 0);
}

TEST_F(Journaled, BreaksOffWithTheScriptThatLeavesTheProgram) {
    study.scriptOf("B", "import os\nprint('last words', end='')\n" + kAdd + "'?')\nos._exit(7)");
    ProgramRun const run = study.run({"--journal", "j.jsonl"});
    EXPECT_EQ(run.exitCode, 7);
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\n  B | last words\n");
    EXPECT_THAT(journal(), EndsWith("{\"event\":\"start\",\"block\":\"B\"}\n"));
    study.scriptOf("B", kAdd + "'B')");
    EXPECT_EQ(resume({"--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
}

TEST_F(Journaled, KeepsItsAimWhenItBreaksOff) {
    study.scriptOf("A", "import os\nif not os.path.exists('again'):\n    open('again', 'w').close()\n    os._exit(7)");
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--until", "B", "--timeout", "50"}).exitCode, 7);
    EXPECT_THAT(withoutTimes(resume().out), EndsWith("stopped before C: 2 blocks executed,  # ms\n"));
    EXPECT_THAT(journal(),
                HasSubstr("\"options\":{\"scripts\":[],\"until\":\"B\",\"timeout\":50.0}}\n{\"event\":\"start\""));
    // It has come to its aim.
    EXPECT_THAT(withoutTimes(resume().out), EndsWith("C  # ms  Executed\nended: 1 block executed,  # ms\n"));
}

TEST_F(Journaled, BeginsAgainWhereItBegan) {
    study.scriptOf("B", "import os\nif not os.path.exists('again'):\n    open('again', 'w').close()\n    os._exit(7)");
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--from", "B"}).exitCode, 7);
    EXPECT_EQ(withoutTimes(resume().out), "resumed: nothing had run\nB  # ms  Executed\nC  # ms  Executed\n"
                                          "ended: 2 blocks executed,  # ms\n");
}

TEST_F(Journaled, FindsItsDocumentAndItsScripts) {
    study.folder().write("library/u/U.py", script("U", "raise ValueError('once')"));
    study.document(process(block("A") + block("B", "", "u.U") + connector("A", "B"), variable("Log", "String", "-")));
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--scripts", "library"}).exitCode, 1);
    study.folder().write("library/u/U.py", script("U", "pass"));
    ProgramSetting setting;
    setting.folder = "/";
    std::string const path = (study.path() / "j.jsonl").string();
    ProgramRun const run = runProgram({"run", "--resume", path, "--json"}, setting);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    json const document = json::parse(run.out);
    EXPECT_EQ(document["file"], (study.path() / "p.xml").string());
    EXPECT_EQ(document["notes"], json({"resumed: 1 block had run"}));
}

TEST_F(Journaled, TakesTheSameDocumentFromAnotherPlace) {
    failInB();
    study.folder().write("elsewhere/p.xml", study.folder().read("p.xml"));
    ProgramRun const run = resume({"elsewhere/p.xml", "--scripts", "."});
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_F(Journaled, SettingsAreGivenBehindWhatIsRestored) {
    failInB();
    EXPECT_EQ(resume({"--set", "Log=set", "--until", "B"}).exitCode, 0);
    EXPECT_EQ(resume({"--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(saved(), HasSubstr(">setBC</VARIABLE>"));
}

TEST_F(Journaled, GripsAndLoopsAreRestored) {
    study.scriptOf("A", "variables.setIntVarValue('N', variables.getIntVarValue('N') + 1)",
                   "variables.setIntVarValue('N', variables.getIntVarValue('N') - 1)");
    study.scriptOf("D", "api.setActiveHandle(6 if variables.getIntVarValue('N') >= 3 else 4)");
    study.scriptOf("B", "import os\nif not os.path.exists('again'):\n    open('again', 'w').close()\n    os._exit(7)");
    study.document(process(block("Start", "", "Start", "Oval") + block("A") + block("D", "", "", "Decision") +
                               block("B") + connector("Start", "A") + connector("A", "D") + connector("D", "A", 4, 4) +
                               connector("D", "B"),
                           variable("N", "Int", "0")));
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 7);
    ProgramRun const run = resume({"--undo", "4", "--step", "4", "--undo", "20", "--save", "out.xml"});
    EXPECT_EQ(withoutTimes(run.out),
              "resumed: 7 blocks had run\nB  # ms  Executed\nB  # ms  Undone\nD  # ms  Undone\nA  # ms  Undone\n"
              "D  # ms  Undone\nD  # ms  Executed\nA  # ms  Executed\nD  # ms  Executed\nB  # ms  Executed\n"
              "B  # ms  Undone\nD  # ms  Undone\nA  # ms  Undone\nD  # ms  Undone\nA  # ms  Undone\nD  # ms  Undone\n"
              "A  # ms  Undone\nStart  # ms  Undone\nnothing to undo: the flow is back at its start\n"
              "stopped before Start: 5 blocks executed, 12 undone,  # ms\nsaved: out.xml\n");
    EXPECT_THAT(saved(), HasSubstr(">0</VARIABLE>"));
}

// Texts that no JSON text can hold, and paths that several nodes have.
TEST_F(Journaled, OddTextsAndTwinsComeBackAsTheyWere) {
    study.scriptOf("A", "variables.setStringVarValue('Log', 'a\\udc80\\ud800\\x07\\n\"\\u2028梁')\n"
                        "import sys\nsys.stdout.buffer.write(b'\\xff\\n')");
    study.scriptOf("B", "variables.setStringVarValue('Own', variables.getStringVarValue('Own') + 'b')");
    study.scriptOf("C", "import os\nif not os.path.exists('again'):\n    open('again', 'w').close()\n    os._exit(7)\n"
                        "assert variables.getStringVarValue('Log') == 'a\\udc80\\ud800\\x07\\n\"\\u2028梁'");
    std::string const own = variable("Own", "String", "-", "Output");
    study.document(process(block("A") + block("B", own, "s.B") + block("B", own, "s.B") + block("C") +
                               connector("A", "B") + connector("B", "C"),
                           variable("Log", "String", "-")));
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 7);
    EXPECT_THAT(journal(), HasSubstr("\"stream\":\"output\",\"text\":{\"bytes\":\"ff0a\"}}\n"));
    ProgramRun const run = resume({"--save", "out.xml"});
    EXPECT_THAT(run.out, HasSubstr("C  "));
    EXPECT_THAT(run.err, Not(HasSubstr("AssertionError")));
}

TEST_F(Journaled, ASkippedBlockThatDidNotConsentIsAskedAgain) {
    study.scriptText("B", "import os\nclass B:\n    def __init__(self, block):\n        pass\n    def CanSkip(self):\n"
                          "        print('asked')\n        if not os.path.exists('ready'):\n"
                          "            raise ValueError('no consent')\n    def Execute(self):\n        pass\n");
    study.document(process(block("A") + block("B", "", "", "Rectangle", "Skip=\"true\"") + connector("A", "B"),
                           variable("Log", "String", "-")));
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 1);
    EXPECT_THAT(journal(), HasSubstr("\"block\":\"B\",\"state\":\"Failed\""));
    EXPECT_EQ(resume().exitCode, 1);
    study.folder().write("ready", "");
    ProgramRun const run = resume();
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(withoutTimes(run.out), HasSubstr("asked\nB  # ms  Executed\nended: 1 block"));
}

// Files that cannot be resumed

TEST_F(Journaled, ALineThatIsCutOffIsNormal) {
    failInB();
    std::string const whole = journal();
    for (std::string const rest : {"{", "{\"event\":\"start\",\"blo", "{\"event\":\"start\",\"block\":\"C\"}"}) {
        study.folder().write("j.jsonl", whole + rest);
        ProgramRun const run = resume({"--until", "B"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(journal(), StartsWith(whole + "{\"event\":\"resume\""));
    }
    study.folder().write("j.jsonl", whole + std::string(100, '\0'));
    EXPECT_EQ(resume().exitCode, 0);
}

TEST_F(Journaled, EachBrokenLineIsToldWithItsNumber) {
    failInB();
    std::vector<std::string> const lines = linesOf(journal());
    ASSERT_EQ(lines.size(), 8U);
    struct Row {
        std::size_t line;
        std::string text;
        std::string message;
    };
    std::vector<Row> const rows = {
        {1, "x", "is not the beginning of a journal"},
        {1, lines[1], "is not the beginning of a journal"},
        {1, "{\"event\":\"begin\"}", "lacks \"journal\""},
        {1, "{\"event\":\"begin\",\"journal\":2}", "is of a journal of another version"},
        {1, "{\"event\":\"begin\",\"journal\":1,\"path\":7}", "\"path\" is no text"},
        {2, "", "is no event of a journal"},
        {2, "[1]", "is no event of a journal"},
        {2, "{\"event\":\"start\"", "is no event of a journal"},
        {2, "{\"event\":7}", "is no event of a journal"},
        {2, "{\"event\":\"begin\"}", "holds an event of no known kind: begin"},
        {2, "{\"event\":\"start\"}", "lacks \"block\""},
        {2, "{\"event\":\"start\",\"block\":[]}", "\"block\" is no text"},
        {2, "{\"event\":\"start\",\"block\":\"Z\"}", "there is no block Z in the document"},
        {2, "{\"event\":\"resume\"}", "lacks \"options\""},
        {2, "{\"event\":\"resume\",\"options\":1}", "\"options\" is no object"},
        {2, "{\"event\":\"resume\",\"options\":{\"scripts\":1}}", "\"scripts\" is no list"},
        {3, "{\"event\":\"values\",\"values\":1}", "\"values\" is no object"},
        {3, "{\"event\":\"values\",\"values\":{\"Z\":\"\"}}", "there is no variable Z in the document"},
        {3, "{\"event\":\"values\",\"values\":{\".Log\":1}}", "the value of .Log is no text"},
        {3, "{\"event\":\"values\",\"values\":{\".Log\":{\"codes\":[0]}}}", "the value of .Log is no text"},
        {3, "{\"event\":\"printed\",\"block\":\"A\",\"stream\":\"x\",\"text\":\"\"}", "names no stream"},
        {3, "{\"event\":\"printed\",\"block\":\"A\",\"stream\":\"output\",\"text\":{\"bytes\":\"0\"}}",
         "\"text\" is no text"},
        {3, "{\"event\":\"printed\",\"block\":\"A\",\"stream\":\"output\",\"text\":{\"bytes\":\"0x\"}}",
         "\"text\" is no text"},
        {4, "{\"event\":\"start\",\"block\":\"B\"}", "a block starts before the one before it is done"},
        {4, "{\"event\":\"done\",\"block\":\"B\"}", "a block is done that has not started"},
        {4, "{\"event\":\"undone\",\"block\":\"A\"}", "a block is done that has not started"},
        {4, "{\"event\":\"done\",\"block\":\"A\",\"state\":\"Well\"}", "names no state that a block may have then"},
        {4, "{\"event\":\"done\",\"block\":\"A\",\"state\":\"Undone\"}", "names no state that a block may have then"},
        {4, "{\"event\":\"done\",\"block\":\"A\",\"state\":\"Executed\",\"milliseconds\":\"1\"}",
         "\"milliseconds\" is no number"},
        {4, "{\"event\":\"done\",\"block\":\"A\",\"state\":\"Executed\",\"milliseconds\":1,\"grip\":6.5}",
         "has a grip that is no number"},
        {4, "{\"event\":\"done\",\"block\":\"A\",\"state\":\"Executed\",\"milliseconds\":1,\"grip\":6}",
         "lacks \"next\""},
        {5,
         "{\"event\":\"undo\",\"block\":\"B\"}\n{\"event\":\"undone\",\"block\":\"B\",\"state\":\"Undone\",\"milliseconds\":1,\"grip\":6,\"next\":null}",
         "undoes a block that was not the last to run"},
        {8, "{\"event\":\"end\"}", "lacks \"end\""},
    };
    for (Row const& row : rows) {
        std::string text;
        for (std::size_t index = 0; index < lines.size(); ++index)
            text += (index + 1 == row.line ? row.text : lines[index]) + "\n";
        study.folder().write("j.jsonl", text);
        std::size_t const line = row.line + (row.text.find('\n') != std::string::npos ? 1 : 0);
        expectRefused(resume(), "j.jsonl: line " + std::to_string(line) + ": " + row.message);
        EXPECT_EQ(journal(), text);
    }
}

TEST_F(Journaled, WhatIsNoJournalCannotBeResumed) {
    failInB();
    study.folder().write("empty", "");
    study.folder().write("cut", journal().substr(0, 40));
    study.folder().write("text", "Dear diary,\n");
    std::filesystem::create_directories(study.path() / "folder");
    struct Row {
        std::string file;
        std::string message;
    };
    std::vector<Row> const rows = {
        {"none", "none: there is no such journal"},
        {"folder", "folder: cannot be resumed: it is a folder"},
        {"/dev/null", "/dev/null: cannot be resumed: it is no regular file"},
        {"empty", "empty: cannot be resumed: it is empty"},
        {"cut", "cut: cannot be resumed: it ends before the run began"},
        {"text", "text: line 1: is not the beginning of a journal"},
        {"", "the name of the journal is empty"},
    };
    ProgramSetting setting;
    setting.folder = study.path();
    for (Row const& row : rows)
        expectRefused(runProgram({"run", "--resume", row.file}, setting), row.message);
}

TEST_F(Journaled, AnotherDocumentIsRefused) {
    failInB();
    std::string const text = study.folder().read("p.xml");
    study.folder().write("q.xml", text + " ");
    std::string const cause = "is not the document of this journal, or has been changed since: HERE/p.xml";
    expectRefused(resume({"q.xml"}), "j.jsonl: q.xml: " + cause);
    study.folder().write("p.xml", text + " ");
    expectRefused(resume(), "j.jsonl: HERE/p.xml: " + cause);
    std::filesystem::remove(study.path() / "p.xml");
    expectRefused(resume(), "HERE/p.xml: there is no such file");
}

TEST_F(Journaled, ADocumentThatTheRunWasSavedIntoIsToldApart) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--until", "A", "--save", "p.xml"}).exitCode, 0);
    expectRefused(resume(), "j.jsonl: HERE/p.xml: the run of this journal has been saved into its document, which can "
                            "be run with --from");
    EXPECT_EQ(study.run({"--from", "B", "--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
}

TEST_F(Journaled, ALinkedFileThatHasChangedIsRefused) {
    study.folder().write("inner.xml", process(block("B")));
    study.document(process(block("A") + subProcess("S", "<FILE_LINK FileName=\"inner.xml\"/>") + connector("A", "S"),
                           variable("Log", "String", "-")));
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--until", "A"}).exitCode, 0);
    study.folder().write("inner.xml", process(block("B") + block("C") + connector("B", "C")));
    expectRefused(resume(), "j.jsonl: HERE/p.xml: a file that the document links to has been changed since");
    study.folder().write("inner.xml", process(block("B")));
    EXPECT_EQ(resume().exitCode, 0);
}

TEST_F(Journaled, CombinationsThatMakeNoSenseAreRefused) {
    failInB();
    std::string const help = " (see flowmere run --help)";
    expectRefused(resume({"--only", "A"}), "--only excludes --resume" + help);
    expectRefused(resume({"--from", "A"}), "--from excludes --resume" + help);
    expectRefused(resume({"--journal", "k"}), "--journal excludes --resume" + help);
}

// Files that cannot be written

TEST_F(Journaled, OnlyAJournalOfARunThatHasEndedIsOverwritten) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 0);
    std::string const first = journal();
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--until", "A"}).exitCode, 0);
    EXPECT_LT(journal().size(), first.size());
    std::string const unfinished = journal();
    expectRefused(study.run({"--journal", "j.jsonl"}),
                  "j.jsonl: holds a run that has not come to its end: go on with --resume, or remove the file");
    EXPECT_EQ(journal(), unfinished);
    EXPECT_EQ(resume().exitCode, 0);
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 0);
    // Cut off before the run began.
    for (std::string const& text : {std::string(), first.substr(0, 5), first.substr(0, 100)}) {
        study.folder().write("j.jsonl", text);
        EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 0) << text;
        EXPECT_EQ(withoutChance(journal()), withoutChance(first));
    }
}

TEST_F(Journaled, FilesOfOtherKindsAreNotOverwritten) {
    study.folder().write("notes.txt", "Dear diary,\n");
    std::filesystem::create_directories(study.path() / "folder");
    study.folder().write("locked", "");
    int const locked = ::open((study.path() / "locked").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(locked, LOCK_EX | LOCK_NB), 0);
    struct Row {
        std::string file;
        std::string message;
    };
    std::vector<Row> const rows = {
        {"notes.txt", "notes.txt: is no journal, and is not overwritten"},
        {"p.xml", "p.xml: is the document itself, which --journal would destroy"},
        {"folder", "folder: cannot be written: it is a folder"},
        {"/dev/full", "/dev/full: cannot be written: it is no regular file"},
        {"none/j", "none/j: cannot be written: there is no folder HERE/none"},
        {"locked", "locked: is in use by another run"},
        {"", "the name of the journal is empty"},
    };
    for (Row const& row : rows)
        expectRefused(study.run({"--journal", row.file}), row.message);
    ::close(locked);
    EXPECT_EQ(study.folder().read("notes.txt"), "Dear diary,\n");
}

TEST_F(Journaled, AWrongOptionLeavesNoJournal) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--until", "Z"}).exitCode, 2);
    EXPECT_EQ(study.run({"--journal", "j.jsonl", "--save", "none/out.xml"}).exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(study.path() / "j.jsonl"));
}

// A limit to the size of files does what a full disk does: the write that goes beyond it fails in its midst.
TEST_F(Journaled, AFullDiskStopsTheRunInFrontOfABlock) {
    study.scriptOf("B", "print('x' * 20000)\n" + kAdd + "'B')", kTakeAway);
    ProgramSetting setting;
    setting.fileSizeLimit = 16384;
    ProgramRun const run = study.run({"--journal", "j.jsonl", "--save", "out.xml"}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: j.jsonl: cannot be written: File too large\n");
    EXPECT_THAT(withoutTimes(run.out), EndsWith("\nB  # ms  Executed\nstopped before C: 2 blocks executed,  # ms\n"
                                                "saved: out.xml\n"));
    EXPECT_THAT(saved(), HasSubstr(">-AB</VARIABLE>"));
    // What did not come to disk has not happened.
    EXPECT_THAT(journal(), EndsWith("\n{\"event\":\"values\",\"block\":\"B\",\"values\":{\".Log\":\"-AB\"}}\n"));
    EXPECT_EQ(resume({"--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(saved(), HasSubstr(">-ABC</VARIABLE>"));
}

TEST_F(Journaled, AFullDiskBeforeTheRunStartsNothing) {
    ProgramSetting setting;
    setting.fileSizeLimit = 100;
    ProgramRun const run = study.run({"--journal", "j.jsonl"}, setting);
    expectRefused(run, "j.jsonl: cannot be written: File too large");
    EXPECT_FALSE(std::filesystem::exists(study.path() / "j.jsonl"));
}

TEST_F(Journaled, AFullDiskAtTheEndIsToldToo) {
    study.scriptOf("C", "print('x' * 20000)");
    ProgramSetting setting;
    setting.fileSizeLimit = 16384;
    ProgramRun const run = study.run({"--journal", "j.jsonl"}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: j.jsonl: cannot be written: File too large\n");
    EXPECT_THAT(run.out, HasSubstr("ended: 3 blocks executed"));
}

// Runs that are killed

// Starts the program, and kills it after that time; never with 0. Gives the seconds that it ran, and whether it ended
// by itself.
struct Ending {
    double seconds;
    int exitCode; // -1 when killed
};

Ending runAndKill(std::filesystem::path const& folder, std::vector<std::string> arguments, double after) {
    arguments.insert(arguments.begin(), {FLOWMERE_PROGRAM, "run"});
    auto const pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    };
    std::vector<char*> const words = pointers(arguments);
    // Other tests look for leaks, which takes a sanitizer longer than such a run.
    char const* const sanitizer = std::getenv("ASAN_OPTIONS");
    std::vector<std::string> variables = {
        "PATH=/usr/bin:/bin", "ASAN_OPTIONS=" + std::string(sanitizer != nullptr ? sanitizer : "") + ":detect_leaks=0"};
    for (char const* const name : {"UBSAN_OPTIONS", "LLVM_PROFILE_FILE"})
        if (char const* const value = std::getenv(name))
            variables.push_back(std::string(name) + "=" + value);
    std::vector<char*> const environment = pointers(variables);
    auto const start = std::chrono::steady_clock::now();
    pid_t const child = ::fork();
    if (child == 0) {
        int const none = ::open("/dev/null", O_RDWR);
        for (int const file : {0, 1, 2})
            ::dup2(none, file);
        if (::chdir(folder.c_str()) != 0)
            ::_exit(126);
        ::execve(FLOWMERE_PROGRAM, words.data(), environment.data());
        ::_exit(127);
    }
    if (after > 0) {
        std::this_thread::sleep_for(std::chrono::duration<double>(after));
        ::kill(child, SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return {seconds, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

// A loop with a decision, a sub-process, arrays, links and printed output.
void writeStudyToKill(Study const& study) {
    study.scriptOf("Grow",
                   "import time\ntime.sleep(0.002)\nn = variables.getIntVarValue('N') + 1\n"
                   "variables.setIntVarValue('N', n)\nprint('round', n)\n"
                   "variables.setDoubleArrayVarValue('Sizes', variables.getDoubleArrayVarValue('Sizes') + [n / 4])");
    study.scriptOf("X", "import sys, time\ntime.sleep(0.002)\nprint('in X', file=sys.stderr)\n"
                        "variables.setDoubleVarValue('Sum', sum(variables.getDoubleArrayVarValue('Given')))");
    study.scriptOf("Y", "import THostManager\nTHostManager.WriteHistory('Y')\n"
                        "variables.setStringVarValue('Names', variables.getStringVarValue('Names') + 'y \\u6881;')");
    study.scriptOf("Choose", "api.setActiveHandle(6 if variables.getIntVarValue('N') >= 4 else 4)");
    study.scriptOf("Last", "import time\ntime.sleep(0.002)\n"
                           "variables.setStringVarValue('Result', '%s at %d' % (variables.getDoubleVarValue('Linked'),"
                           " variables.getIntVarValue('N')))");
    study.document(process(block("Start", "", "Start", "Oval") +
                               block("Grow", variable("Sizes", "DoubleArray", "[0.5]", "InOut")) +
                               subProcess("S", block("X", variable("Given", "DoubleArray", "", "Input", "Grow.Sizes") +
                                                              variable("Sum", "Double", "0", "Output")) +
                                                   block("Y") + connector("X", "Y")) +
                               block("Choose", "", "", "Decision") +
                               block("Last", variable("Linked", "Double", "0", "Input", "S.X.Sum") +
                                                 variable("Result", "String", "", "Output")) +
                               connector("Start", "Grow") + connector("Grow", "S") + connector("S", "Choose") +
                               connector("Choose", "Grow", 4, 4) + connector("Choose", "Last"),
                           variable("N", "Int", "0") + variable("Names", "String", "")));
}

// The blocks that were done, in order.
std::vector<std::string> doneIn(std::string const& journal) {
    std::vector<std::string> blocks;
    for (std::string const& line : linesOf(journal))
        if (line.starts_with("{\"event\":\"done\""))
            blocks.push_back(json::parse(line)["block"].get<std::string>());
    return blocks;
}

// Kills and goes on with runs of a study of its own; how many were killed between the first block and the end.
int killSome(int kills, unsigned seed) {
    Study study;
    writeStudyToKill(study);
    std::vector<std::string> const begin = {"p.xml", "--journal", "j.jsonl", "--save", "out.xml"};
    std::vector<std::string> const goOn = {"--resume", "j.jsonl", "--save", "out.xml"};
    runAndKill(study.path(), begin, 0);
    double seconds = 0;
    for (int round = 0; round < 3; ++round) {
        Ending const whole = runAndKill(study.path(), begin, 0);
        EXPECT_EQ(whole.exitCode, 0);
        seconds = std::max(seconds, whole.seconds);
    }
    std::string const expected = study.folder().read("out.xml");
    std::vector<std::string> const blocks = doneIn(study.folder().read("j.jsonl"));
    EXPECT_EQ(blocks.size(), 22U);
    EXPECT_THAT(expected, HasSubstr(">3.0 at 4</VARIABLE>"));

    std::mt19937 random(seed);
    std::uniform_real_distribution<double> share(0, 1);
    int inTheRun = 0;
    for (int kill = 0; kill < kills; ++kill) {
        std::filesystem::remove(study.path() / "out.xml");
        std::filesystem::remove(study.path() / "j.jsonl");
        double after = seconds * 1.05 * (kill + share(random)) / kills;
        Ending ending = runAndKill(study.path(), begin, after);
        std::string journal;
        for (int attempt = 0; attempt < 20; ++attempt) {
            bool const exists = std::filesystem::exists(study.path() / "j.jsonl");
            journal = exists ? study.folder().read("j.jsonl") : std::string();
            if (attempt == 0 && ending.exitCode != 0 && !doneIn(journal).empty())
                ++inTheRun;
            // Killed before the run began: there is nothing to go on with.
            bool const hasBegun = journal.find('\n') != std::string::npos;
            if (attempt > 0 && ending.exitCode == 0)
                break;
            // Some are killed once more, and some of these again.
            after = share(random) < 0.3 ? seconds * share(random) : 0;
            ending = runAndKill(study.path(), hasBegun ? goOn : begin, after);
        }
        std::string const which = "kill " + std::to_string(kill) + " of seed " + std::to_string(seed);
        EXPECT_EQ(ending.exitCode, 0) << which << "\n" << journal;
        EXPECT_EQ(study.folder().read("out.xml"), expected) << which;
        // Each block was done once, however often it was begun.
        EXPECT_EQ(doneIn(study.folder().read("j.jsonl")), blocks) << which;
        if (testing::Test::HasFailure())
            break;
    }
    return inTheRun;
}

// In two rows at the same time, since a run leaves most processors with nothing to do.
TEST(KilledRuns, ComeToTheSameEndAsOneThatWasNot) {
    constexpr int kKills = kIsSanitized ? 12 : 50;
    unsigned const seed = std::random_device{}();
    std::cout << "seeds " << seed << " and " << seed + 1 << "\n";
    std::future<int> other = std::async(std::launch::async, killSome, kKills / 2, seed + 1);
    int inTheRun = killSome(kKills - kKills / 2, seed);
    inTheRun += other.get();
    EXPECT_GE(inTheRun, kKills / 10) << "the moments do not lie in the run";
    std::cout << inTheRun << " of " << kKills << " were killed between the first block and the end\n";
}

TEST(JournalOfALongRun, StaysInProportion) {
    Study study;
    std::string inner;
    constexpr int kBlocks = 2000;
    for (int index = 0; index < kBlocks; ++index) {
        inner += block("B" + std::to_string(index), variable("V", "Int", "7", "Output"), "B" + std::to_string(index),
                       "Oval");
        if (index > 0)
            inner += connector("B" + std::to_string(index - 1), "B" + std::to_string(index));
    }
    study.document(process(inner));
    ASSERT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 0);
    std::string const journal = study.folder().read("j.jsonl");
    EXPECT_EQ(linesOf(journal).size(), 2U * kBlocks + 2);
    EXPECT_LT(journal.size(), 250U * kBlocks);
}

TEST(Digests, AreThoseOfTheStandard) {
    struct Row {
        std::string text;
        std::string digest;
    };
    std::vector<Row> const rows = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (Row const& row : rows) {
        flowmere::host::Digest digest;
        digest.add(row.text);
        EXPECT_EQ(digest.text(), row.digest);
        flowmere::host::Digest parts;
        for (std::size_t at = 0; at < row.text.size(); at += 7)
            parts.add(std::string_view(row.text).substr(at, 7));
        EXPECT_EQ(parts.text(), row.digest);
    }
}

} // namespace
