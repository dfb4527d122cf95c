// What scripts print: kept, in order, and never lost.

#include "Study.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/scripting/OutputCapture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <functional>

namespace {

using namespace flowmere::test;
using namespace flowmere::host;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// What a process with two pipes for its streams has written until the last writer was gone.
struct Outcome {
    std::string out;
    std::string err;
    int exitCode = -1; // 128 and the signal
};

Outcome inProcess(std::function<void()> const& body) {
    int out[2];
    int err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    std::fflush(stdout);
    pid_t const child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        ::dup2(out[1], 1);
        ::dup2(err[1], 2);
        ::close(out[0]);
        ::close(err[0]);
        try {
            body();
        } catch (std::exception const& problem) {
            printError(problem.what());
            ::_exit(99);
        }
        ::_exit(0);
    }
    ::close(out[1]);
    ::close(err[1]);
    Outcome outcome;
    PipeReader reader(out[0], err[0]);
    while (reader.read(outcome.out, outcome.err)) {
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

void put(int file, std::string_view text) {
    while (!text.empty()) {
        ssize_t const count = ::write(file, text.data(), text.size());
        if (count < 0)
            ::_exit(98);
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

// What was taken, past the pipes, as in "[o:text][e:text]".
void tell(std::vector<PrintedText> const& printed) {
    std::string text;
    for (PrintedText const& piece : printed)
        text += std::string(piece.isError ? "[e:" : "[o:") + piece.text + "]";
    printOut(text.empty() ? "[]" : text);
}

TEST(OutputCapture, KeepsBothStreamsInOrderAndWritesThemOnAtOnce) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(false);
        put(1, "one ");
        put(1, "two ");
        capture.settle();
        put(2, "three ");
        capture.settle();
        put(1, "four ");
        std::vector<PrintedText> const printed = capture.take();
        tell(printed);
        put(1, "five ");
        tell(capture.take());
        tell(capture.take());
    });
    EXPECT_EQ(outcome.out, "one two four [o:one two ][e:three ][o:four ]five [o:five ][]");
    EXPECT_EQ(outcome.err, "three ");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST(OutputCapture, GivesTheFilesBack) {
    Outcome const outcome = inProcess([] {
        {
            OutputCapture const capture(false);
            put(1, "kept ");
        }
        put(1, "after");
        put(2, "after too");
        printOut("!");
        printError("!");
    });
    EXPECT_EQ(outcome.out, "kept after!");
    EXPECT_EQ(outcome.err, "after too!");
}

TEST(OutputCapture, SendsAllToStandardErrorButWhatTheProgramItselfSays) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(true);
        put(1, "to out ");
        capture.settle();
        put(2, "to err ");
        tell(capture.take());
        printError("aside");
    });
    EXPECT_EQ(outcome.out, "[o:to out ][e:to err ]");
    EXPECT_EQ(outcome.err, "to out to err aside");
}

TEST(OutputCapture, TakesAnyBytesAndAnyAmount) {
    std::string bytes;
    for (int index = 0; index < 3'000'000; ++index)
        bytes += static_cast<char>(index % 256);
    Outcome const outcome = inProcess([&] {
        OutputCapture capture(false);
        put(1, bytes);
        std::vector<PrintedText> const printed = capture.take();
        printError(printed.size() == 1 && printed[0].text == bytes ? "same" : "other");
    });
    EXPECT_EQ(outcome.out, bytes);
    EXPECT_EQ(outcome.err, "same");
}

TEST(OutputCapture, LosesNothingWhateverEndsTheProgram) {
    std::string const text(700'000, 'x');
    struct Row {
        std::function<void()> end;
        int exitCode;
        std::string after;
    };
    std::vector<Row> const rows = {
        {[] { ::_exit(3); }, 3, ""},
        {[] { ::raise(SIGKILL); }, 128 + SIGKILL, ""},
        {[] { ::raise(SIGTERM); }, 128 + SIGTERM, ""},
        {[] { ::execl("/bin/sh", "sh", "-c", "echo of another program; exit 7", nullptr); }, 7, "of another program\n"},
    };
    for (Row const& row : rows) {
        Outcome const outcome = inProcess([&] {
            auto const* const capture = new OutputCapture(false);
            put(2, "begin");
            put(1, text);
            put(2, "end");
            row.end();
            delete capture;
        });
        EXPECT_EQ(outcome.out, text + row.after);
        EXPECT_EQ(outcome.err, "beginend");
        EXPECT_EQ(outcome.exitCode, row.exitCode);
    }
}

TEST(OutputCapture, FollowsProgramsThatOutliveTheBlock) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(false);
        if (std::system("(sleep 0.3; echo late) &") != 0)
            ::_exit(97);
        put(1, "early\n");
        tell(capture.take());
    });
    EXPECT_EQ(outcome.out, "early\n[o:early\n]late\n");
}

TEST(OutputCapture, DoesNotWaitForWhoWritesWithoutEnd) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(false);
        pid_t const writer = ::fork();
        if (writer == 0)
            for (;;)
                put(2, "again and again ");
        put(1, "mine");
        std::string mine;
        for (PrintedText const& piece : capture.take())
            mine += piece.isError ? "" : piece.text;
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        printOut("[" + mine + "]");
    });
    EXPECT_EQ(outcome.out, "mine[mine]");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST(OutputCapture, IsNoChildThatAScriptWouldWaitFor) {
    Outcome const outcome = inProcess([] {
        OutputCapture const capture(false);
        bool const hasChild = ::waitpid(-1, nullptr, 0) >= 0 || errno != ECHILD;
        printOut(hasChild ? "a child" : "no child");
    });
    EXPECT_EQ(outcome.out, "no child");
}

TEST(OutputCapture, KeepsWhatAForkedProcessPrintsAndIsNotAskedByIt) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(false);
        pid_t const child = ::fork();
        if (child == 0) {
            put(1, "of the child ");
            capture.settle();
            ::_exit(capture.take().empty() ? 0 : 1);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        tell(capture.take());
        printOut(std::to_string(status));
    });
    EXPECT_EQ(outcome.out, "of the child [o:of the child ]0");
}

TEST(OutputCapture, LetsTextPassWhileItIsPaused) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(false);
        put(1, "one ");
        capture.pause();
        put(1, "(prompt) ");
        capture.resume();
        put(1, "two ");
        tell(capture.take());
    });
    EXPECT_EQ(outcome.out, "one (prompt) two [o:one two ]");
}

TEST(OutputCapture, HoldsWhatCCodePrintsInOrder) {
    Outcome const outcome = inProcess([] {
        OutputCapture capture(false);
        std::printf("%s", "printed ");
        put(1, "written ");
        std::printf("%s", "printed again ");
        tell(capture.take());
        std::printf("%s", "left");
        ::_exit(0);
    });
    EXPECT_EQ(outcome.out, "printed written printed again [o:printed written printed again ]left");
}

TEST(OutputCapture, TellsWhenItCannotBeWrittenOnAndKeepsItAllTheSame) {
    for (bool const isFull : {true, false}) {
        Outcome const outcome = inProcess([&] {
            int files[2];
            if (::pipe2(files, O_CLOEXEC) != 0)
                ::_exit(97);
            ::close(files[0]);
            ::signal(SIGPIPE, SIG_IGN);
            ::dup2(isFull ? ::open("/dev/full", O_WRONLY | O_CLOEXEC) : files[1], 1);
            ::close(files[1]);
            OutputCapture capture(false);
            put(1, "text");
            std::vector<PrintedText> const printed = capture.take();
            printError((printed.size() == 1 ? printed[0].text : "nothing") + "|" + capture.takeFault() + "|");
            put(1, "more");
            capture.settle();
            printError(capture.takeFault());
        });
        EXPECT_EQ(outcome.err, std::string("text|standard output cannot be written: ") +
                                   (isFull ? "No space left on device" : "Broken pipe") + "|");
    }
}

TEST(OutputCapture, LeavesAFileClosedThatWasClosed) {
    Outcome const outcome = inProcess([] {
        ::close(1);
        {
            OutputCapture capture(false);
            put(1, "text");
            std::vector<PrintedText> const printed = capture.take();
            printError(printed.size() == 1 ? printed[0].text : "nothing");
        }
        printError(::fcntl(1, F_GETFD) < 0 ? " closed" : " open");
    });
    EXPECT_EQ(outcome.err, "text closed");
}

// The other processes of this process's group.
std::vector<pid_t> companions() {
    std::vector<pid_t> found;
    for (auto const& entry : std::filesystem::directory_iterator("/proc")) {
        std::string const number = entry.path().filename().string();
        if (number.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::ifstream stat(entry.path() / "stat");
        std::string text;
        std::getline(stat, text);
        int parent = 0;
        int group = 0;
        char state = 0;
        std::size_t const name = text.rfind(')');
        if (name == std::string::npos ||
            std::sscanf(text.c_str() + name + 1, " %c %d %d", &state, &parent, &group) != 3 || state == 'Z')
            continue;
        pid_t const id = std::stoi(number);
        if (group == ::getpgrp() && id != ::getpid())
            found.push_back(id);
    }
    return found;
}

TEST(OutputCapture, GivesTheFilesBackWhenItsProcessIsKilled) {
    Outcome const outcome = inProcess([] {
        ::signal(SIGPIPE, SIG_IGN);
        OutputCapture capture(false);
        std::vector<pid_t> const keepers = companions();
        if (keepers.size() != 1)
            ::_exit(97);
        ::kill(keepers[0], SIGKILL);
        while (!companions().empty())
            ::usleep(1000);
        capture.settle();
        put(1, "after");
        printError(capture.takeFault());
    });
    EXPECT_EQ(outcome.out, "after");
    EXPECT_EQ(outcome.err, "the process that keeps the output has gone");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST(OutputCapture, KeepsNoFileOfTheProgramOpen) {
    ScratchFolder const folder;
    Outcome const outcome = inProcess([&] {
        int const file = ::open((folder.path() / "locked").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        OutputCapture capture(false);
        capture.settle();
        std::vector<pid_t> const keepers = companions();
        std::string names;
        for (auto const& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(keepers.at(0)) + "/fd"))
            names += std::filesystem::read_symlink(entry.path()).filename().string() + " ";
        printOut(names.find("locked") == std::string::npos ? "closed" : "open");
        ::close(file);
    });
    EXPECT_EQ(outcome.out, "closed");
}

// The whole program

json printedBy(Study const& study, std::vector<std::string> arguments = {}) {
    arguments.push_back("--json");
    ProgramRun const run = study.run(arguments);
    json const document = json::parse(run.out, nullptr, false);
    json all = json::array();
    if (!document.is_object())
        return run.out + run.err;
    for (json const& block : document["blocks"]) {
        json pieces = json::array();
        for (json const& piece : block["printed"])
            pieces.push_back((piece["stream"] == "error" ? "e:" : "o:") + piece["text"].get<std::string>());
        all.push_back(pieces);
    }
    return all;
}

TEST(PrintedOutput, BelongsToTheBlockThatPrintedItByStreamAndInOrder) {
    Study study;
    study.scriptOf("A", "import sys, subprocess, os\n"
                        "print('out 1')\nprint('err 1', file=sys.stderr)\nprint('out 2')\n"
                        "subprocess.run(['sh', '-c', 'echo from a program; echo its errors >&2'])\n"
                        "print('err 2', file=sys.stderr)\nos.system('echo system')\n"
                        "sys.__stdout__.write('direct ')\nsys.stdout.buffer.write(b'bytes ')\nos.write(1, b'raw ')\n"
                        "import ctypes\nctypes.CDLL(None).printf(b'c code')");
    study.scriptOf("B", "pass");
    study.scriptOf("C", "print('of C')");
    study.document(process(block("A") + block("B") + block("C") + connector("A", "B") + connector("B", "C")));
    EXPECT_EQ(printedBy(study), json({{"o:out 1\n", "e:err 1\n", "o:out 2\nfrom a program\n", "e:its errors\nerr 2\n",
                                       "o:system\ndirect bytes raw c code"},
                                      json::array(),
                                      {"o:of C\n"}}));
}

TEST(PrintedOutput, IsInOrderHoweverOftenTheStreamChanges) {
    Study study;
    study.scriptOf("A",
                   "import sys\nfor index in range(300):\n    print(index, file=(sys.stdout, sys.stderr)[index % 2])");
    study.document(process(block("A")));
    json expected = json::array();
    for (int index = 0; index < 300; ++index)
        expected.push_back((index % 2 == 0 ? "o:" : "e:") + std::to_string(index) + "\n");
    EXPECT_EQ(printedBy(study)[0], expected);
}

TEST(PrintedOutput, HoldsNoTracebackAndNoHistory) {
    Study study;
    study.scriptOf("A", "import THostManager\nprint('mine')\nTHostManager.WriteHistory('line')\nraise ValueError('x')");
    study.document(process(block("A")));
    EXPECT_EQ(printedBy(study), json({{"o:mine\n"}}));
}

TEST(PrintedOutput, StandsBeforeTheHistoryLineThatFollowsIt) {
    Study study;
    study.scriptOf("A", "import THostManager\nprint('one')\nTHostManager.WriteHistory('two')\nprint('three')");
    study.document(process(block("A")));
    EXPECT_EQ(withoutTimes(study.run().out),
              "  A | one\nhistory: two\n  A | three\nA  # ms  Executed\nended: 1 block executed,  # ms\n");
}

TEST(PrintedOutput, GoesOnInTheOpenLineBehindAProgram) {
    Study study;
    study.scriptOf("A", "import subprocess\nprint('one ', end='')\nsubprocess.run(['printf', 'two '])\nprint('three')\n"
                        "print('four')");
    study.document(process(block("A")));
    EXPECT_EQ(withoutTimes(study.run().out),
              "  A | one two three\n  A | four\nA  # ms  Executed\nended: 1 block executed,  # ms\n");
}

TEST(ScriptThatEndsTheProgram, IsToldAndIsNoSuccess) {
    struct Row {
        std::string statement;
        std::vector<std::string> arguments;
        int exitCode;
        std::string call;
        std::string rest;
    };
    for (Row const& row :
         std::vector<Row>{{"os._exit(0)", {}, 1, "os._exit(0)", ""},
                          {"os._exit(7)", {}, 7, "os._exit(7)", ""},
                          {"os._exit(0)", {"--save", "o.xml"}, 1, "os._exit(0)", ", and nothing is saved"},
                          {"os._exit(0)", {"--json"}, 1, "os._exit(0)", ""}}) {
        Study study;
        study.scriptOf("A", "import os\n" + row.statement);
        study.document(process(block("A")));
        ProgramRun const run = study.run(row.arguments);
        EXPECT_EQ(run.exitCode, row.exitCode) << row.statement;
        EXPECT_EQ(run.err, "flowmere: p.xml: A: s/A.py:14: `" + row.statement + "`: " + row.call +
                               ": the script ends the program" + row.rest + "\n");
        EXPECT_FALSE(std::filesystem::exists(study.path() / "o.xml"));
    }
}

TEST(ScriptThatReplacesTheProgram, IsRefused) {
    for (std::string const statement : {"os.execv('/bin/true', ['true'])", "os.execlp('true', 'true')",
                                        "os.execve('/bin/true', ['true'], {})", "posix.execv('/bin/true', ['true'])"}) {
        Study study;
        study.scriptOf("A", "import os, posix\n" + statement);
        study.scriptOf("B", "print('never')");
        study.document(process(block("A") + block("B") + connector("A", "B")));
        ProgramRun const run = study.run({"--journal", "j"});
        EXPECT_EQ(run.exitCode, 1) << statement;
        EXPECT_THAT(run.out, StartsWith("A ")) << statement;
        EXPECT_THAT(run.out, Not(HasSubstr("never")));
        EXPECT_THAT(run.err, HasSubstr("RuntimeError: a script cannot put another program in the place of this one; "
                                       "subprocess starts one beside it"));
        EXPECT_THAT(study.folder().read("j"), HasSubstr("\"RuntimeError\""));
    }
}

TEST(ScriptThatForks, MayHaveItsProcessesReplaced) {
    Study study;
    study.scriptOf("A",
                   "import os, subprocess\nchild = os.fork()\nif child == 0:\n    os.execv('/bin/true', ['true'])\n"
                   "print(os.waitpid(child, 0)[1], os.spawnlp(os.P_WAIT, 'true', 'true'),\n"
                   "      subprocess.run(['true']).returncode, os.system('true'))");
    study.document(process(block("A")));
    ProgramRun const run = study.run();
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  A | 0 0 0 0\n"));
}

TEST(ScriptThatForks, HasItsProcessesEndInSilence) {
    Study study;
    study.scriptOf("A", "import os\nchild = os.fork()\nif child == 0:\n    os._exit(0)\nos.waitpid(child, 0)");
    study.document(process(block("A")));
    ProgramRun const run = study.run();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
}

TEST(ScriptThatForks, RunsTheRestOfTheProcessOnce) {
    Study study;
    study.scriptOf("A", "import os\nchild = os.fork()\nif child != 0:\n    os.waitpid(child, 0)");
    study.scriptOf("B", "open('ran', 'a').write('B')");
    study.document(process(block("A") + block("B") + connector("A", "B")));
    ProgramRun const run = study.run({"--journal", "j"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "flowmere: A: a process that the script has forked off comes back, and ends here\n");
    EXPECT_EQ(study.folder().read("ran"), "B");
    EXPECT_EQ(withoutTimes(run.out), "A  # ms  Executed\nB  # ms  Executed\nended: 2 blocks executed,  # ms\n");
}

TEST(PrintedOutput, IsNotLostWhenTheScriptEndsTheProgram) {
    struct Row {
        std::string end;
        int exitCode;
    };
    std::vector<Row> const rows = {
        {"os._exit(5)", 5},
        {"os.kill(os.getpid(), 9)", 128 + 9},
        {"os.abort()", 128 + SIGABRT},
    };
    for (Row const& row : rows) {
        Study study;
        study.scriptOf("A", "import os, sys, ctypes\nprint('line')\nsys.stdout.write('no end ')\n"
                            "sys.stdout.buffer.write(b'bytes ')\nctypes.CDLL(None).printf(b'c code ')\n"
                            "print('error', file=sys.stderr)\nos.write(1, b'x' * 100000)\n" +
                                row.end);
        study.document(process(block("A")));
        ProgramRun const run = study.run();
        EXPECT_EQ(run.exitCode, row.exitCode) << row.end;
        // The error comes between what stands on one line before and after it. What the system says of an abort may
        // divide the long line once more.
        std::string out = run.out;
        std::string const start = "  A | line\n  A | no end bytes c code \n  A | ";
        EXPECT_THAT(out.substr(0, start.size()), start) << row.end;
        std::string const divide = "\n  A | ";
        for (std::size_t at = 0; (at = out.find(divide, start.size())) != std::string::npos;)
            out.erase(at, divide.size());
        // What tells of os._exit() stands on a line of its own.
        std::string const end = row.exitCode == 5 ? "\n" : "";
        EXPECT_EQ(out == start + std::string(100000, 'x') + end, true)
            << row.end << run.out.substr(0, 200) << run.out.size();
        EXPECT_THAT(run.err, StartsWith("  A ! error\n")) << row.end;
    }
}

TEST(PrintedOutput, ThatCannotBeWrittenFailsTheRun) {
    Study study;
    study.scriptOf("A", "print('text')");
    study.document(process(block("A")));
    ProgramSetting setting;
    setting.outputTo = "/dev/full";
    ProgramRun const run = study.run({}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("flowmere: standard output: cannot be written: No space left on device\n"));
}

// The place of an error

class PlaceOfAnError : public testing::Test {
protected:
    // The line on standard error that the program ends with, without what comes before the place.
    std::string placeOf(std::vector<std::string> const& arguments = {}) {
        study.document(process(block("A")));
        ProgramRun const run = study.run(arguments);
        EXPECT_EQ(run.exitCode, 1);
        std::string const head = "flowmere: p.xml: A: ";
        std::size_t const at = run.err.rfind(head);
        EXPECT_NE(at, std::string::npos) << run.err;
        return at == std::string::npos ? run.err : run.err.substr(at + head.size());
    }

    Study study;
};

TEST_F(PlaceOfAnError, IsTheInnermostOfTheUsersOwn) {
    study.folder().write("s/helper.py", "import json\n\n\ndef read(text):\n    return json.loads(text)\n");
    study.scriptOf("A", "from s import helper\nhelper.read('{')");
    EXPECT_EQ(placeOf(),
              "s/helper.py:5: `return json.loads(text)`: JSONDecodeError: Expecting property name enclosed in "
              "double quotes: line 1 column 2 (char 1)\n");
}

TEST_F(PlaceOfAnError, IsTheUsersOwnAndNotTheGeneratedBase) {
    study.scriptText("ABlock", "class ABlock:\n    def __init__(self, block):\n        pass\n    def Execute(self):\n"
                               "        self.PlayMacro()\n    def getSpan(self):\n        raise ValueError('x')\n");
    study.scriptText("A", "from s.ABlock import ABlock\n\n\nclass A(ABlock):\n    def PlayMacro(self):\n"
                          "        self.getSpan()\n");
    EXPECT_EQ(placeOf(), "s/A.py:6: `self.getSpan()`: ValueError: x\n");
    study.scriptText("ABlock", "class ABlock:\n    def __init__(self, block):\n        pass\n    def Execute(self):\n"
                               "        self.missing()\n");
    EXPECT_EQ(placeOf(), "s/ABlock.py:5: `self.missing()`: AttributeError: 'A' object has no attribute 'missing'\n");
}

TEST_F(PlaceOfAnError, OfAFileThatDoesNotCompileIsInThatFile) {
    study.folder().write("s/helper.py", "x = 1\nif x\n    pass\n");
    study.scriptOf("A", "from s import helper");
    EXPECT_EQ(placeOf(), "s/helper.py:2: `if x`: SyntaxError: expected ':'\n");
}

TEST_F(PlaceOfAnError, OfATextThatDoesNotCompileIsWhereItIsUsed) {
    study.scriptOf("A", "eval('1 +')");
    EXPECT_EQ(placeOf(), "s/A.py:13: `eval('1 +')`: SyntaxError: invalid syntax (<string>, line 1)\n");
}

TEST_F(PlaceOfAnError, OfAMissingModuleIsTheImport) {
    study.scriptText("A", "import math\n\nimport nosuchmodule  # gone\n");
    EXPECT_EQ(placeOf(),
              "s/A.py:3: `import nosuchmodule  # gone`: ModuleNotFoundError: No module named 'nosuchmodule'\n");
}

TEST_F(PlaceOfAnError, IsUnknownForAScriptThatIsNotThere) {
    EXPECT_EQ(placeOf(), "ModuleNotFoundError: No module named 's'\n");
}

TEST_F(PlaceOfAnError, NamesTheWholeFileWhenAnotherRootHasItToo) {
    study.folder().write("s/__init__.py", "");
    study.folder().write("s/A.py", "raise ValueError('second')\n");
    study.folder().write("own/s/__init__.py", "");
    study.folder().write("own/s/A.py", "raise ValueError('first')\n");
    EXPECT_EQ(withName(placeOf({"--scripts", "own"}), study.path().string(), "."),
              "./own/s/A.py:1: `raise ValueError('first')`: ValueError: first\n");
}

TEST_F(PlaceOfAnError, ShowsTheTextOfNow) {
    study.scriptText("A", "import os\nclass A:\n    def __init__(self, block):\n        pass\n    def Execute(self):\n"
                          "        one()\n");
    EXPECT_EQ(placeOf(), "s/A.py:6: `one()`: NameError: name 'one' is not defined\n");
    study.scriptText("A", "import os\nclass A:\n    def __init__(self, block):\n        pass\n    def Execute(self):\n"
                          "        # moved\n        one()\n");
    EXPECT_EQ(placeOf(), "s/A.py:7: `one()`: NameError: name 'one' is not defined\n");
}

TEST_F(PlaceOfAnError, CutsALongLineShort) {
    study.scriptOf("A", "raise ValueError(" + std::string(200, ' ') + "'x')");
    EXPECT_EQ(placeOf(), "s/A.py:13: `raise ValueError(" + std::string(103, ' ') + "...`: ValueError: x\n");
}

TEST_F(PlaceOfAnError, StandsInTheJsonDocumentToo) {
    study.scriptOf("A", "raise ValueError('x')");
    study.document(process(block("A")));
    json const document = json::parse(study.run({"--json"}).out, nullptr, false);
    ASSERT_TRUE(document.is_object());
    json const& error = document["blocks"][0]["error"];
    EXPECT_EQ(error["file"], "s/A.py");
    EXPECT_EQ(error["line"], 13);
    EXPECT_EQ(error["source"], "raise ValueError('x')");
}

TEST(ErrorText, LeavesOutWhatIsNotKnown) {
    ScriptError error;
    error.type = "ValueError";
    EXPECT_EQ(errorText(error), "ValueError");
    error.text = "x";
    EXPECT_EQ(errorText(error), "ValueError: x");
    error.file = "s/A.py";
    EXPECT_EQ(errorText(error), "s/A.py: ValueError: x");
    error.line = 7;
    EXPECT_EQ(errorText(error), "s/A.py:7: ValueError: x");
    error.source = "go()";
    EXPECT_EQ(errorText(error), "s/A.py:7: `go()`: ValueError: x");
}

} // namespace
