#include "Golden.h"
#include "Study.h"

#include "flowmere/Flowmere.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;
using testing::HasSubstr;

class Generate : public testing::Test {
protected:
    Study study;
    ScratchFolder scratch;

    ProgramRun generate(std::vector<std::string> const& more = {}) {
        std::vector<std::string> arguments{"generate", "p.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(arguments, {.folder = study.path()});
    }

    // What the library itself writes for the block of that path.
    std::map<std::string, std::string> written(std::string const& path) {
        CFCNodeFactory factory;
        CFCReader reader;
        reader.SetNodeFactory(&factory);
        IFCNode* root = nullptr;
        EXPECT_TRUE(reader.Parse(TuString((study.path() / "p.xml").c_str()), &root, 1));
        std::map<std::string, std::string> files;
        if (IFCNode* const node = CFCNodeHelper::FindNode(TuString(path.c_str()), root)) {
            CFCScriptWriter writer;
            writer.SetNode(node);
            writer.SetFolderName(TuString(scratch.path().c_str()));
            writer.GenerateAllFiles(true);
            std::string const id = TuString(node->GetNodeId()).GetAnsiBuffer();
            for (std::string const& name : {id + ".py", id + "Block.py", std::string("__init__.py")})
                files[name] = scratch.read(name);
        }
        CFCNodeHelper::DestroyTree(root);
        return files;
    }

    std::string read(std::string const& name) const { return readFile(study.path() / name); }
    bool exists(std::string const& name) const { return fs::exists(study.path() / name); }
    std::vector<std::string> filesBelow(std::string const& folder) const {
        std::vector<std::string> names;
        for (auto const& entry : fs::recursive_directory_iterator(study.path() / folder))
            if (entry.is_regular_file())
                names.push_back(entry.path().lexically_relative(study.path() / folder).string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

std::string const kVariables = variable("n", "Int", "7") + variable("length", "Double", "1.5") +
                               variable("text", "String", "a b", "Output") + variable("list", "DoubleArray", "[1, 2]") +
                               variable("place", "Point2", "1,2") + variable("\xC3\xA9t\xC3\xA9", "String", "\xC3\xA9");

TEST_F(Generate, WritesWhatTheLibraryWrites) {
    study.document(process(block("Task", kVariables, "pkg.sub.Task") + block("Other", "", "pkg.sub.Other")));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "Task: script pkg.sub.Task\n"
                       "  out/pkg/sub/Task.py\n"
                       "  out/pkg/sub/TaskBlock.py\n"
                       "  out/pkg/sub/__init__.py\n"
                       "Other: script pkg.sub.Other\n"
                       "  out/pkg/sub/Other.py\n"
                       "  out/pkg/sub/OtherBlock.py\n"
                       "2 blocks, 5 files written\n");
    EXPECT_THAT(filesBelow("out"), testing::ElementsAre("pkg/sub/Other.py", "pkg/sub/OtherBlock.py", "pkg/sub/Task.py",
                                                        "pkg/sub/TaskBlock.py", "pkg/sub/__init__.py"));
    for (std::string const path : {"Task", "Other"})
        for (auto const& [name, text] : written(path)) {
            EXPECT_EQ(read("out/pkg/sub/" + name), text) << name;
            EXPECT_EQ(text.empty(), name == "__init__.py");
        }
}

TEST_F(Generate, TheTypesDriveTheTextsAsInTheGoldenFiles) {
    study.document(process(block("Task", kVariables, "pkg.Task")));
    EXPECT_EQ(generate({"--out", "out"}).exitCode, 0);
    expectGolden("host/generate/Task.py.txt", read("out/pkg/Task.py"));
    expectGolden("host/generate/TaskBlock.py.txt", read("out/pkg/TaskBlock.py"));
}

TEST_F(Generate, WritesForScriptedKindsAlone) {
    std::string inner;
    for (char const* const element :
         {"BLOCK", "TERMINATOR", "DECISION", "task-node", "BPM_USER_TASK", "BPM_EXECUTION_TASK", "decision",
          "start-state", "end-state", "fork", "join", "BPM_MAIL", "BPM_ESB", "super-state", "SUB_PROCESS"}) {
        std::string id = element;
        std::erase(id, '-');
        inner +=
            std::string("<") + element + " Name=\"N" + id + "\"><SCRIPT Name=\"p.N" + id + "\"/></" + element + ">\n";
    }
    inner +=
        "<BLOCK Name=\"NRound\"><DIMENSION Width=\"1\" Hight=\"1\" Shape=\"RoundRect\"/><SCRIPT Name=\"p.NRound\"/></BLOCK>";
    study.document(process(inner));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("\n7 blocks, 15 files written\n"));
    for (char const* const name :
         {"NBLOCK", "NDECISION", "Ntasknode", "NBPM_USER_TASK", "NBPM_EXECUTION_TASK", "NRound"})
        EXPECT_TRUE(exists("out/p/" + std::string(name) + ".py")) << name;
    EXPECT_TRUE(exists("out/p/Ndecision.py"));
}

TEST_F(Generate, BlocksAtAnyDepthHaveTheirScripts) {
    study.document(process(subProcess("S", subProcess("T", block("Deep")))));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("S.T.Deep: script s.Deep\n"));
}

TEST_F(Generate, AMainFileThatDiffersIsKeptBesideTheNewOne) {
    study.document(process(block("Task", kVariables, "pkg.Task")));
    study.folder().write("out/pkg/Task.py", "# mine\n");
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("  out/pkg/Task.py (what it held is in Task.py.bak)\n"));
    EXPECT_EQ(read("out/pkg/Task.py.bak"), "# mine\n");
    EXPECT_EQ(read("out/pkg/Task.py"), written("Task")["Task.py"]);

    // What is kept already is not written over by the next.
    study.folder().write("out/pkg/Task.py", "# mine too\n");
    EXPECT_THAT(generate({"--out", "out"}).out, HasSubstr("(what it held is in Task.py.bak2)\n"));
    EXPECT_EQ(read("out/pkg/Task.py.bak"), "# mine\n");
    EXPECT_EQ(read("out/pkg/Task.py.bak2"), "# mine too\n");

    // Nor kept twice.
    study.folder().write("out/pkg/Task.py", "# mine\n");
    EXPECT_THAT(generate({"--out", "out"}).out, HasSubstr("(what it held is in Task.py.bak)\n"));
    EXPECT_FALSE(exists("out/pkg/Task.py.bak3"));
}

TEST_F(Generate, AnUnchangedMainFileNeedsNoBackup) {
    study.document(process(block("Task", kVariables, "pkg.Task")));
    EXPECT_EQ(generate({"--out", "out"}).exitCode, 0);
    ProgramRun const again = generate({"--out", "out"});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_EQ(again.out.find("held"), std::string::npos);
    EXPECT_EQ(filesBelow("out").size(), 3U);
}

TEST_F(Generate, UserCodeIsKeptOnRequest) {
    study.document(process(block("Task", kVariables, "pkg.Task") + block("New", "", "pkg.New")));
    study.folder().write("out/pkg/Task.py", "# mine\n");
    study.folder().write("out/pkg/TaskBlock.py", "# old\n");
    ProgramRun const run = generate({"--out", "out", "--keep-user-code"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "Task: script pkg.Task\n"
                       "  out/pkg/Task.py kept\n"
                       "  out/pkg/TaskBlock.py\n"
                       "  out/pkg/__init__.py\n"
                       "New: script pkg.New\n"
                       "  out/pkg/New.py\n"
                       "  out/pkg/NewBlock.py\n"
                       "2 blocks, 4 files written, 1 file kept\n");
    EXPECT_EQ(read("out/pkg/Task.py"), "# mine\n");
    EXPECT_EQ(read("out/pkg/TaskBlock.py"), written("Task")["TaskBlock.py"]);
    EXPECT_EQ(filesBelow("out").size(), 5U);
}

TEST_F(Generate, AFilledPackageMarkerIsKeptBesideTheNewOne) {
    study.document(process(block("Task", "", "pkg.Task")));
    study.folder().write("out/pkg/__init__.py", "VERSION = 1\n");
    EXPECT_THAT(generate({"--out", "out"}).out, HasSubstr("(what it held is in __init__.py.bak)\n"));
    EXPECT_EQ(read("out/pkg/__init__.py"), "");
    EXPECT_EQ(read("out/pkg/__init__.py.bak"), "VERSION = 1\n");
}

TEST_F(Generate, AScriptNameWithoutPackageGetsAHint) {
    study.document(process("<BLOCK Name=\"Task\"/>"));
    EXPECT_EQ(generate({"--out", "out"}).out, "Task: script Task\n"
                                              "  out/Task.py\n"
                                              "  out/TaskBlock.py\n"
                                              "  out/__init__.py\n"
                                              "  to run it, let the document name the script out.Task, and run with "
                                              "--scripts " +
                                                  study.path().string() + "\n1 block, 3 files written\n");
    EXPECT_THAT(generate({"--out", "my-out"}).out,
                HasSubstr("  to run it, the script needs a package: let the document name it package.Task\n"));
}

TEST_F(Generate, TheHintLeadsToAScriptThatRuns) {
    study.document(process("<BLOCK Name=\"Task\"><SCRIPT Name=\"out.Task\" ScriptType=\"PYTHON\"/></BLOCK>"));
    ASSERT_EQ(runProgram({"generate", "p.xml", "--out", "."}, {.folder = study.path()}).exitCode, 0);
    EXPECT_EQ(study.run().exitCode, 0) << study.run().err;
}

TEST_F(Generate, AScriptOfAnotherNameIsTold) {
    study.document(process(block("Task", "", "pkg.Shared")));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Task: script pkg.Task\n"));
    EXPECT_THAT(run.out, HasSubstr("  the document names the script pkg.Shared: change that to run this one\n"));
}

TEST_F(Generate, TwoBlocksDoNotShareAFile) {
    study.document(process(subProcess("A", block("Task", variable("x", "Int", "1"), "pkg.Task")) +
                           subProcess("B", block("Task", variable("y", "Int", "1"), "pkg.Task")) +
                           block("TaskBlock", "", "pkg.TaskBlock")));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err,
              "flowmere: p.xml: B.Task: Task.py is a script of \"A.Task\" already; a package in the script name of "
              "one of them keeps them apart; nothing is generated for it\n"
              "flowmere: p.xml: TaskBlock: TaskBlock.py is a script of \"A.Task\" already; a package in the script "
              "name of one of them keeps them apart; nothing is generated for it\n");
    EXPECT_THAT(run.out, HasSubstr("1 block, 3 files written, 2 blocks left out\n"));
    EXPECT_THAT(read("out/pkg/TaskBlock.py"), HasSubstr("getx"));
}

TEST_F(Generate, NamesThatWouldLeaveTheFolderAreRefused) {
    for (auto const& [id, script] : std::vector<std::pair<std::string, std::string>>{{"../Evil", "pkg.X"},
                                                                                     {"a/b", "pkg.X"},
                                                                                     {"class", "pkg.X"},
                                                                                     {"2x", "pkg.X"},
                                                                                     {"T", "..x.T"},
                                                                                     {"T", "a/b.T"},
                                                                                     {"T", "/tmp/x.T"},
                                                                                     {"T", "C:\\x.T"},
                                                                                     {"T", "import.T"}}) {
        study.document(process(block(id, "", script)));
        ProgramRun const run = generate({"--out", "out"});
        EXPECT_EQ(run.exitCode, 1) << id << " " << script;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "0 blocks, 0 files written, 1 block left out\n");
        EXPECT_TRUE(filesBelow("out").empty());
    }
}

TEST_F(Generate, AVariableThatIsNoPythonNameIsTold) {
    study.document(process(block("Task", variable("a b", "Int", "1"), "pkg.Task")));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err,
              "flowmere: p.xml: Task: the variable name \"a b\" is no Python name; the script will not compile\n");
    EXPECT_TRUE(exists("out/pkg/Task.py"));
}

TEST_F(Generate, ScriptsOfOtherKindsAreLeftOut) {
    study.document(process("<BLOCK Name=\"Task\"><SCRIPT Name=\"x.Task\" ScriptType=\"TCMD\"/></BLOCK>"));
    ProgramRun const run = generate({"--out", "out"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "flowmere: p.xml: Task: its script is no Python script; nothing is generated for it\n");
}

TEST_F(Generate, AFolderThatCannotBeWrittenIsOneLineAndExitCodeTwo) {
    study.document(process(block("Task", "", "pkg.Task")));
    study.folder().write("file", "x");
    fs::create_directories(study.path() / "taken/pkg/Task.py");
    struct Case {
        char const* out;
        char const* place;
    };
    for (auto const& [out, place] :
         {Case{"file", "file"}, Case{"file/below", "file"}, Case{"/dev/null/x", "/dev/null/x"},
          Case{"taken", "Task.py: cannot be written: it is a folder"}, Case{"/proc/flowmere", "/proc/flowmere"}}) {
        ProgramRun const run = generate({"--out", out});
        EXPECT_EQ(run.exitCode, 2) << out;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_THAT(run.err, testing::StartsWith("flowmere: "));
        EXPECT_THAT(run.err, HasSubstr(place));
    }
    EXPECT_EQ(read("file"), "x");
}

TEST_F(Generate, WrongUseIsOneLineAndExitCodeTwo) {
    study.document(process(""));
    EXPECT_EQ(generate().err, "flowmere: --out is required (see flowmere generate --help)\n");
    EXPECT_EQ(generate().exitCode, 2);
    ProgramRun const run = runProgram({"generate", "nowhere.xml", "--out", "out"}, {.folder = study.path()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: nowhere.xml: there is no such file\n");
    EXPECT_FALSE(exists("out"));
}

} // namespace
