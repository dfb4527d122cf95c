// flowmere run --debug: the real program, with the commands of the debugger piped in.

#include "Study.h"
#include "Terminal.h"

#include <gmock/gmock.h>

namespace {

using namespace flowmere::test;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class DebuggedRun : public testing::Test {
protected:
    DebuggedRun() {
        study.scriptOf("A", "first = 1\nsecond = first + 1\nprint('A', second)", "print('A back')");
        study.scriptOf("B", "number = 5\nprint('B', number)");
        study.document(process(block("A") + block("B") + connector("A", "B")));
    }

    // The commands, one in each line; what the program prints has the study's folder as ".".
    ProgramRun debug(std::string const& commands, std::vector<std::string> arguments = {"--break", "B"}) {
        arguments.insert(arguments.begin(), "--debug");
        ProgramSetting setting;
        setting.inputFrom = study.folder().write("commands", commands).string();
        ProgramRun run = study.run(arguments, setting);
        run.out = withoutTimes(withName(run.out, study.path().string(), "."));
        run.err = withName(run.err, study.path().string(), ".");
        return run;
    }

    Study study;
};

TEST_F(DebuggedRun, StopsAtTheFirstLineOfTheMethod) {
    ProgramRun const run = debug("p 6 * 7\nwhere\nnext\np number\ncontinue\n");
    EXPECT_EQ(run.out, "  A | A 2\nA  # ms  Executed\n"
                       "block B stops in Execute\n> ./s/B.py(13)Execute()\n-> number = 5\n"
                       "(Pdb) 42\n"
                       "(Pdb) > ./s/B.py(13)Execute()\n-> number = 5\n"
                       "(Pdb) > ./s/B.py(14)Execute()\n-> print('B', number)\n"
                       "(Pdb) 5\n"
                       "(Pdb)   B | B 5\nB  # ms  Executed\nended: 2 blocks executed,  # ms\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(DebuggedRun, MayChangeWhatTheScriptDoes) {
    EXPECT_THAT(debug("next\nnumber = 99\ncontinue\n").out, HasSubstr("  B | B 99\n"));
}

TEST_F(DebuggedRun, GoesOnWhenTheCommandsAreUsedUp) {
    for (std::string const commands : {"", "p number\n", "next\np number"}) {
        ProgramRun const run = debug(commands, {"--break", "A", "--break", "B"});
        EXPECT_EQ(run.exitCode, 0) << commands;
        EXPECT_THAT(run.out, HasSubstr("block A stops in Execute\n")) << commands;
        EXPECT_THAT(run.out, Not(HasSubstr("block B stops"))) << commands;
        EXPECT_THAT(run.out, HasSubstr("  A | A 2\nA  # ms  Executed\n  B | B 5\nB  # ms  Executed\nended: 2 blocks"))
            << commands;
    }
}

TEST_F(DebuggedRun, IsInterruptedByWhoQuits) {
    for (std::string const command : {"quit", "q", "exit"}) {
        ProgramRun const run = debug(command + "\n");
        EXPECT_EQ(run.exitCode, 130);
        EXPECT_EQ(run.out,
                  "  A | A 2\nA  # ms  Executed\nblock B stops in Execute\n> ./s/B.py(13)Execute()\n-> number = 5\n"
                  "(Pdb) B  # ms  Interrupted\ninterrupted: 1 block executed,  # ms\n");
        EXPECT_EQ(run.err, "flowmere: p.xml: B: interrupted\n");
    }
}

TEST_F(DebuggedRun, IsInterruptedEvenWhenTheScriptCatchesEverything) {
    study.scriptOf("B", "try:\n    number = 5\n    number = 6\nexcept BaseException as error:\n    print('caught')");
    ProgramRun const run = debug("next\nquit\n");
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_THAT(run.out, HasSubstr("  B | caught\nB  # ms  Interrupted\n"));
}

TEST_F(DebuggedRun, StepsOutOfTheMethodWithoutShowingTheProgramItself) {
    ProgramRun const run = debug("step\nstep\nstep\nstep\nstep\nstep\nstep\n");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("--Return--\n> ./s/B.py(14)Execute()->None\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("_flowmere")));
    EXPECT_THAT(run.out, Not(HasSubstr("<module>")));
    EXPECT_THAT(run.out, testing::EndsWith("B  # ms  Executed\nended: 2 blocks executed,  # ms\n"));
}

TEST_F(DebuggedRun, KeepsTheUsersOwnBreakpointsFromBlockToBlock) {
    ProgramRun const run = debug("break s/B.py:14\ncontinue\np number\ncontinue\n", {"--break", "A", "--scripts", "."});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("(Pdb) Breakpoint 1 at ./s/B.py:14\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("block B stops"))) << "only blocks with a breakpoint run under the debugger";
    ProgramRun const both = debug("break s/B.py:14\ncontinue\ncontinue\np number\ncontinue\n",
                                  {"--break", "A", "--break", "B", "--scripts", "."});
    EXPECT_THAT(both.out,
                HasSubstr("block B stops in Execute\n> ./s/B.py(13)Execute()\n-> number = 5\n"
                          "(Pdb) > ./s/B.py(14)Execute()\n-> print('B', number)\n(Pdb) 5\n(Pdb)   B | B 5\n"));
}

TEST_F(DebuggedRun, StopsInTheUndoTooAndInEachRound) {
    ProgramRun const run =
        debug("continue\ncontinue\nwhere\ncontinue\n", {"--break", "A", "--undo", "2", "--step", "1"});
    EXPECT_THAT(run.out, HasSubstr("block A stops in Execute\n"));
    EXPECT_THAT(run.out, HasSubstr("block A stops in Undo\n> ./s/A.py(17)Undo()\n-> print('A back')\n"
                                   "(Pdb)   A | A back\nA  # ms  Undone\nblock A stops in Execute\n"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(DebuggedRun, OpensWhereABlockFails) {
    study.scriptOf("B", "number = 5\nnumber.missing()");
    ProgramRun const run = debug("p number\nwhere\nquit\n", {});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "  A | A 2\nA  # ms  Executed\n"
                       "block B has failed\n> ./s/B.py(14)Execute()\n-> number.missing()\n"
                       "(Pdb) 5\n(Pdb) > ./s/B.py(14)Execute()\n-> number.missing()\n"
                       "(Pdb) B  # ms  Failed\nfailed: 1 block executed,  # ms\n");
    EXPECT_THAT(run.err, StartsWith("block B: Traceback"));
    EXPECT_THAT(run.err, testing::EndsWith("flowmere: p.xml: B: s/B.py:14: `number.missing()`: AttributeError: 'int' "
                                           "object has no attribute 'missing'\n"));
}

TEST_F(DebuggedRun, OpensAtTheUsersOwnLineOfAFailure) {
    study.scriptOf("B", "text = '{'\nimport json\njson.loads(text)");
    EXPECT_THAT(debug("p text\n", {}).out, HasSubstr("> ./s/B.py(15)Execute()\n-> json.loads(text)\n(Pdb) '{'\n"));
}

TEST_F(DebuggedRun, OpensOnceForABlockThatFailsUnderTheDebugger) {
    study.scriptOf("B", "number = 5\nraise ValueError(number)");
    ProgramRun const run = debug("continue\np number\ncontinue\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out,
              "  A | A 2\nA  # ms  Executed\nblock B stops in Execute\n> ./s/B.py(13)Execute()\n-> number = 5\n"
              "(Pdb) block B has failed\n> ./s/B.py(14)Execute()\n-> raise ValueError(number)\n(Pdb) 5\n"
              "(Pdb) B  # ms  Failed\nfailed: 1 block executed,  # ms\n");
}

TEST_F(DebuggedRun, DoesNotOpenForAScriptThatDoesNotCompileOrIsMissing) {
    study.scriptText("B", "class B:\n    def Execute(self)\n        pass\n");
    ProgramRun const broken = debug("quit\n");
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_THAT(broken.out, Not(HasSubstr("(Pdb)")));
    EXPECT_THAT(broken.err,
                HasSubstr("flowmere: p.xml: B: s/B.py:2: `def Execute(self)`: SyntaxError: expected ':'\n"));
    std::filesystem::remove(study.path() / "s/B.py");
    ProgramRun const missing = debug("quit\n");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_THAT(missing.err, HasSubstr("flowmere: p.xml: B: ModuleNotFoundError: No module named 's.B'\n"));
}

TEST_F(DebuggedRun, StopsInScriptsWithoutAPackageToo) {
    study.folder().write("Lone.py", script("Lone", "number = 7\nprint('Lone', number)"));
    study.document(process(block("Lone", "", "Lone") + block("A") + connector("Lone", "A")));
    ProgramRun const run = debug("where\nnext\np number\ncontinue\n", {"--break", "Lone"});
    EXPECT_EQ(run.out, "block Lone stops in Execute\n> ./Lone.py(13)Execute()\n-> number = 7\n"
                       "(Pdb) > ./Lone.py(13)Execute()\n-> number = 7\n"
                       "(Pdb) > ./Lone.py(14)Execute()\n-> print('Lone', number)\n(Pdb) 7\n(Pdb)   Lone | Lone 7\n"
                       "Lone  # ms  Executed\n  A | A 2\nA  # ms  Executed\nended: 2 blocks executed,  # ms\n");
    EXPECT_EQ(debug("quit\n", {"--break", "Lone"}).exitCode, 130);
}

TEST_F(DebuggedRun, StopsInAMethodThatTheBaseClassGives) {
    study.scriptText("BBlock",
                     "class BBlock:\n    def __init__(self, block):\n        self.number = 3\n"
                     "    def Execute(self):\n        self.ExecuteBlock()\n    def Undo(self):\n        pass\n");
    study.scriptText("B", "from s.BBlock import BBlock\n\n\nclass B(BBlock):\n    def ExecuteBlock(self):\n"
                          "        print('own', self.number)\n");
    EXPECT_THAT(debug("step\nstep\np self.number\n").out,
                HasSubstr("block B stops in Execute\n> ./s/BBlock.py(5)Execute()\n-> self.ExecuteBlock()\n"
                          "(Pdb) --Call--\n> ./s/B.py(5)ExecuteBlock()\n-> def ExecuteBlock(self):\n"
                          "(Pdb) > ./s/B.py(6)ExecuteBlock()\n-> print('own', self.number)\n(Pdb) 3\n"));
}

TEST_F(DebuggedRun, RunsTheCurrentTextOfTheScript) {
    study.scriptOf("A",
                   "import os\nwith open(os.path.join(os.path.dirname(__file__), 'B.py'), 'a') as stream:\n"
                   "    stream.write('\\n        print(\"written later\")\\n')",
                   "pass");
    ProgramRun const run = debug("continue\n", {"--break", "B", "--step", "2", "--undo", "1", "--step", "1"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_F(DebuggedRun, KeepsThePromptOutOfWhatTheBlockHasPrinted) {
    ProgramRun const run =
        debug("print('typed')\nstep\nstep\np 'asked'\ncontinue\n", {"--break", "B", "--report", "page.html"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("(Pdb) typed\n"));
    EXPECT_THAT(run.out, HasSubstr("--Return--\n"));
    EXPECT_THAT(run.out, HasSubstr("(Pdb) 'asked'\n"));
    std::string const page = study.folder().read("page.html");
    EXPECT_THAT(page, HasSubstr("<summary>1 line, 4 bytes</summary><pre>\nB 5\n</pre>"));
    EXPECT_THAT(page, Not(HasSubstr("typed")));
    EXPECT_THAT(page, Not(HasSubstr("asked")));
}

TEST_F(DebuggedRun, CannotStartABlockAnew) {
    ProgramRun const run = debug("run\nrestart\ncontinue\n");
    EXPECT_THAT(run.out, HasSubstr("(Pdb) *** a block cannot be started anew from within\n"
                                   "(Pdb) *** a block cannot be started anew from within\n(Pdb)   B | B 5\n"));
    EXPECT_EQ(run.exitCode, 0);
}

TEST_F(DebuggedRun, ReadsNoSettingsOfTheUsers) {
    study.folder().write(".pdbrc", "p 'from the settings'\n");
    EXPECT_THAT(debug("continue\n").out, Not(HasSubstr("from the settings")));
}

TEST_F(DebuggedRun, RefusesABlockWithoutAScript) {
    study.document(process(block("Start", "", "Start", "Oval") + block("A") + connector("Start", "A")));
    ProgramRun const run = debug("", {"--break", "Start"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: p.xml: Start: has no script to debug\n");
}

TEST_F(DebuggedRun, QuitsAtTheEndOfTheInputOfATerminal) {
    TerminalSetting setting;
    setting.folder = study.path();
    Terminal terminal({"run", "p.xml", "--debug", "--break", "B"}, setting);
    ASSERT_TRUE(terminal.shows("(Pdb) ")) << terminal.shown();
    ASSERT_TRUE(terminal.answers("next", "(Pdb) ")) << terminal.shown();
    ASSERT_TRUE(terminal.answers("p number + 1", "6\r\n(Pdb) ")) << terminal.shown();
    terminal.type("\x04");
    EXPECT_EQ(terminal.end(), 130);
    EXPECT_THAT(terminal.shown(), HasSubstr("flowmere: p.xml: B: interrupted\r\n"));
}

TEST_F(DebuggedRun, IsInterruptedByCtrlCAtThePrompt) {
    TerminalSetting setting;
    setting.folder = study.path();
    Terminal terminal({"run", "p.xml", "--debug", "--break", "B"}, setting);
    ASSERT_TRUE(terminal.shows("(Pdb) ")) << terminal.shown();
    terminal.type("\x03");
    EXPECT_EQ(terminal.end(), 130);
    EXPECT_THAT(terminal.shown(), HasSubstr("flowmere: p.xml: B: interrupted\r\n"));
}

TEST_F(DebuggedRun, WithoutTheOptionStopsInFrontOfTheBlock) {
    EXPECT_EQ(withoutTimes(study.run({"--break", "B"}).out),
              "  A | A 2\nA  # ms  Executed\nstopped before B: 1 block executed,  # ms\n");
}

} // namespace
