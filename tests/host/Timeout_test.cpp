// flowmere run --timeout: blocks that take too long.

#include "Study.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using namespace flowmere::test;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

json jsonOf(ProgramRun const& run) {
    return json::parse(run.out, nullptr, false);
}

// A is quick, B is as the test says, C would say so.
class Timeout : public testing::Test {
protected:
    Timeout() {
        study.scriptOf("A", "pass");
        study.scriptOf("C", "print('C has run')");
        study.document(process(block("A") + block("B") + block("C") + connector("A", "B") + connector("B", "C")));
    }

    ProgramRun expectTimedOut(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), {"--timeout", "0.3"});
        ProgramRun const run = study.run(arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_LT(run.seconds, 20.0);
        EXPECT_THAT(run.out, Not(HasSubstr("C has run")));
        return run;
    }

    Study study;
};

TEST_F(Timeout, EndsScriptsWhereverTheyAre) {
    for (std::string const body : {
             "while True:\n    pass",
             "import time\ntime.sleep(1000)",
             "import subprocess\nsubprocess.run(['sleep', '1000'])",
             "import threading\nthreading.Event().wait()",
             "import socket\na, b = socket.socketpair()\na.recv(1)",
             "import ctypes\nctypes.CDLL(None).sleep(1000)",
             "[None for number in iter(int, 1)]",
         }) {
        study.scriptOf("B", body);
        ProgramRun const run = expectTimedOut();
        EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nB  # ms  Failed\nfailed: 1 block executed,  # ms\n")
            << body;
        EXPECT_THAT(run.err, HasSubstr("block B: Traceback (most recent call last):\n")) << body;
        EXPECT_THAT(run.err, EndsWith("`: TimeoutError: timed out after 0.3 s\n")) << body;
        EXPECT_THAT(run.err, HasSubstr("\nflowmere: p.xml: B: s/B.py:")) << body;
    }
}

TEST_F(Timeout, LetsBlocksRunThatAreInTime) {
    study.scriptOf("B", "import time\ntime.sleep(0.2)");
    ProgramRun const run = study.run({"--timeout", "1.5"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("ended: 3 blocks executed"));
}

TEST_F(Timeout, IsThatOfEachBlockAndNotOfTheRun) {
    for (std::string const name : {"A", "B", "C"})
        study.scriptOf(name, "import time\ntime.sleep(0.6)");
    ProgramRun const run = study.run({"--timeout", "1.4"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_F(Timeout, IsAFailureWhateverTheScriptMakesOfIt) {
    for (std::string const body : {
             "import time\ntry:\n    time.sleep(1000)\nexcept TimeoutError:\n    pass",
             "import time\ntry:\n    time.sleep(1000)\nexcept TimeoutError as error:\n    raise ValueError('other')",
             "import time\ntry:\n    time.sleep(1000)\nfinally:\n    time.sleep(0.2)",
         }) {
        study.scriptOf("B", body);
        json const document = jsonOf(expectTimedOut({"--json"}));
        ASSERT_EQ(document["blocks"].size(), 2U) << body;
        EXPECT_EQ(document["blocks"][1]["state"], "Failed");
        EXPECT_EQ(document["blocks"][1]["error"]["type"], "TimeoutError");
        EXPECT_EQ(document["blocks"][1]["error"]["text"], "timed out after 0.3 s");
        EXPECT_EQ(document["end"], "failed");
    }
}

TEST_F(Timeout, LetsScriptsCleanUpAfterThemselves) {
    study.scriptOf("B", "import time\ntry:\n    time.sleep(1000)\nfinally:\n    print('cleaned up')");
    EXPECT_THAT(expectTimedOut().out, HasSubstr("  B | cleaned up\nB "));
}

TEST_F(Timeout, IsSavedAndCanBeUndone) {
    study.scriptOf("B", "while True:\n    pass");
    expectTimedOut({"--save", "out.xml"});
    EXPECT_THAT(study.folder().read("out.xml"),
                HasSubstr("BlockString=\"B\" DisplayStatus=\"False\" ExecutionStatus=\"Failed\""));
    ProgramRun const run = expectTimedOut({"--undo", "2"});
    EXPECT_THAT(withoutTimes(run.out), HasSubstr("B  # ms  Failed\nB  # ms  Undone\nA  # ms  Undone\n"));
}

TEST_F(Timeout, HoldsForUndoToo) {
    study.scriptOf("B", "pass", "while True:\n    pass");
    study.document(process(block("A") + block("B") + connector("A", "B")));
    ProgramRun const run = expectTimedOut({"--undo", "1"});
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nB  # ms  Executed\nB  # ms  Failed\n"
                                     "failed: 2 blocks executed,  # ms\n");
    EXPECT_THAT(run.err, EndsWith("TimeoutError: timed out after 0.3 s\n"));
}

// Nothing of a script is left that could be asked: the program ends at once.
TEST_F(Timeout, LeavesAScriptThatDoesNotLetGo) {
    for (std::string const body : {
             "print('here')\nwhile True:\n    try:\n        while True:\n            pass\n"
             "    except BaseException:\n        pass",
             "print('here')\nimport ctypes\nwhile True:\n    try:\n        ctypes.PyDLL(None).sleep(1000)\n"
             "    except BaseException:\n        pass",
         }) {
        study.scriptOf("B", body);
        ProgramRun const run = expectTimedOut({"--save", "out.xml", "--journal", "j.jsonl"});
        EXPECT_EQ(withoutTimes(run.out),
                  "A  # ms  Executed\n  B | here\nB  # ms  Failed\nfailed: 1 block executed,  # ms\n");
        EXPECT_EQ(run.err, "flowmere: p.xml: B: timed out after 0.3 s and does not let go; the run ends here, and "
                           "nothing is saved\n");
        EXPECT_FALSE(std::filesystem::exists(study.path() / "out.xml"));
        std::string const journal = study.folder().read("j.jsonl");
        EXPECT_THAT(journal,
                    HasSubstr("\n{\"event\":\"printed\",\"block\":\"B\",\"stream\":\"output\",\"text\":\"here\\n\"}\n"
                              "{\"event\":\"done\",\"block\":\"B\",\"state\":\"Failed\","));
        EXPECT_THAT(journal, HasSubstr("\n{\"event\":\"end\",\"end\":\"failed\","));
        std::filesystem::remove(study.path() / "j.jsonl");
    }
}

TEST_F(Timeout, LeavesNoScriptOfAProgramWithoutItsDocument) {
    study.scriptOf("B", "while True:\n    try:\n        while True:\n            pass\n    except BaseException:\n"
                        "        pass");
    json const document = jsonOf(expectTimedOut({"--json"}));
    ASSERT_TRUE(document.is_object());
    EXPECT_EQ(document["end"], "failed");
    EXPECT_EQ(document["blocks"][1]["error"]["text"], "timed out after 0.3 s");
}

TEST_F(Timeout, DoesNotKeepCtrlCFromStoppingTheRun) {
    study.scriptOf("B", "import time\nprint('here')\ntime.sleep(1000)");
    ProgramSetting setting;
    setting.interruptAt = "here";
    ProgramRun const run = study.run({"--timeout", "50"}, setting);
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_EQ(run.err, "flowmere: p.xml: B: interrupted\n");
}

// One that a first Ctrl-C does not stop ends with its time all the same.
TEST_F(Timeout, EndsAScriptThatHeedsNoCtrlC) {
    study.scriptOf("B", "print('here')\nimport time\nend = time.monotonic() + 30\nwhile time.monotonic() < end:\n"
                        "    try:\n        time.sleep(1)\n    except BaseException:\n        pass");
    ProgramSetting setting;
    setting.interruptAt = "here";
    ProgramRun const run = study.run({"--timeout", "1"}, setting);
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_LT(run.seconds, 20.0);
    EXPECT_THAT(run.err, HasSubstr("timed out after 1 s and does not let go; the run ends here\n"));
}

TEST_F(Timeout, TakesSecondsAboveZero) {
    for (std::string const text : {"0", "-1", "x", "nan", "inf", "1e99", ""}) {
        ProgramRun const run = study.run({"--timeout", text});
        EXPECT_EQ(run.exitCode, 2) << text;
        EXPECT_THAT(run.err, HasSubstr("--timeout: ")) << text;
        EXPECT_THAT(run.err, EndsWith(" (see flowmere run --help)\n")) << text;
        EXPECT_EQ(run.out, "");
    }
}

} // namespace
