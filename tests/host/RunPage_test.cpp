// flowmere run --report, and the line of a terminal that tells how much is left.

#include "Study.h"
#include "Terminal.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using namespace flowmere::test;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Page : public testing::Test {
protected:
    Page() {
        study.scriptOf("A", "print('printed by A')\nvariables.setStringVarValue('Log', 'from A')");
        study.scriptOf("B", "import os\nprint('printed by B')\nif not os.path.exists('ready'):\n"
                            "    raise ValueError('bad beam')");
        study.document(process(block("A") + block("B") + connector("A", "B"), variable("Log", "String", "as it was")));
    }

    std::string page() const { return study.folder().read("page.html"); }

    Study study;
};

TEST_F(Page, TellsOfTheRun) {
    ProgramRun const run = study.run({"--report", "page.html"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(withoutTimes(run.out), "  A | printed by A\nA  # ms  Executed\n  B | printed by B\nB  # ms  Failed\n"
                                     "failed: 1 block executed,  # ms\nreport: page.html\n");
    for (std::string const text : {"printed by A", "printed by B", "as it was", "from A", "bad beam", "<svg"})
        EXPECT_THAT(page(), HasSubstr(text));
}

TEST_F(Page, IsNamedInTheJsonDocument) {
    study.folder().write("ready", "");
    json const document = json::parse(study.run({"--report", "page.html", "--json"}).out, nullptr, false);
    EXPECT_EQ(document["report"], "page.html");
    EXPECT_EQ(json::parse(study.run({"--json"}).out, nullptr, false)["report"], nullptr);
}

TEST_F(Page, OfAResumedRunTellsAllOfIt) {
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}).exitCode, 1);
    study.folder().write("ready", "");
    ProgramSetting setting;
    setting.folder = study.path();
    ProgramRun const run = runProgram({"run", "--resume", "j.jsonl", "--report", "page.html"}, setting);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("printed by A")));
    for (std::string const text : {"printed by A", "printed by B", "as it was", "from A", "bad beam"})
        EXPECT_THAT(page(), HasSubstr(text));
}

TEST_F(Page, ThatCannotBeWrittenIsToldBeforeAnythingRuns) {
    std::filesystem::create_directories(study.path() / "folder");
    struct Row {
        std::string target;
        std::string message;
    };
    std::vector<Row> const rows = {
        {"folder", "folder: cannot be written: it is a folder"},
        {"none/page.html", "none/page.html: cannot be written: there is no folder HERE/none"},
        {"/dev/full", "/dev/full: cannot be written: it is no regular file"},
    };
    for (Row const& row : rows) {
        ProgramRun const run = study.run({"--report", row.target});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(withName(run.err, study.path().string(), "HERE"), "flowmere: " + row.message + "\n");
        EXPECT_EQ(run.out, "");
    }
}

TEST_F(Page, ThatDoesNotFitOnTheDiskLeavesTheOldOne) {
    study.folder().write("ready", "");
    study.folder().write("page.html", "the old page");
    ProgramSetting setting;
    setting.fileSizeLimit = 2000;
    ProgramRun const run = study.run({"--report", "page.html"}, setting);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: page.html: cannot be written: File too large\n");
    EXPECT_EQ(page(), "the old page");
}

// A script that goes to another folder does not take the page along.
TEST_F(Page, StandsWhereItWasAskedFor) {
    study.scriptOf("A", "import os\nos.chdir('/')");
    study.folder().write("ready", "");
    study.scriptOf("B", "pass");
    EXPECT_EQ(study.run({"--report", "page.html", "--save", "out.xml"}).exitCode, 0);
    EXPECT_THAT(page(), HasSubstr("<html"));
    EXPECT_TRUE(std::filesystem::exists(study.path() / "out.xml"));
}

// What goes on in a second line would stay there.
TEST(LineOfATerminal, FitsIntoOneLine) {
    std::string const longName = "A_name_that_is_longer_than_a_line_of_the_terminal";
    // Of two columns each.
    std::string const beam = "\xE6\xA2\x81";
    std::string const column = "\xE6\x9F\xB1";
    std::string const wideName = beam + column + beam + column + beam + column;
    Study study;
    study.document(process(block(longName, "", "s.A") + block(wideName, "", "s.A") + connector(longName, wideName)));
    study.scriptOf("A", "pass");
    Terminal terminal({"run", "p.xml"}, {study.path(), {"TERM=xterm"}, 50});
    EXPECT_EQ(terminal.end(), 0) << terminal.shown();
    EXPECT_THAT(terminal.shown(), HasSubstr("\r\x1b[Krunning ...a_line_of_the_terminal (0 blocks done)\r\x1b[K"));
    EXPECT_THAT(terminal.shown(),
                HasSubstr("\r\x1b[Krunning ..." + column + beam + column + " (1 block done, under 1 s left)\r\x1b[K"));
}

TEST(LineOfATerminal, TellsHowMuchIsLeftByTheRunThatTheJournalHeld) {
    Study study;
    study.scriptOf("A", "pass");
    study.scriptOf("B", "import time\ntime.sleep(1.2)");
    study.document(process(block("A") + block("B") + connector("A", "B")));
    ProgramSetting setting;
    setting.errorTerminal = true;
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}, setting).err,
              "\r\x1b[Krunning A (0 blocks done)\r\x1b[K"
              "\r\x1b[Krunning B (1 block done, under 1 s left)\r\x1b[K");
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}, setting).err,
              "\r\x1b[Krunning A (0 blocks done, about 1 s left)\r\x1b[K"
              "\r\x1b[Krunning B (1 block done, about 1 s left)\r\x1b[K");
    setting.errorTerminal = false;
    EXPECT_EQ(study.run({"--journal", "j.jsonl"}, setting).err, "");
}

} // namespace
