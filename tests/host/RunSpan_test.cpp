// flowmere run with --from, --until and --only: where a run begins and where it ends.

#include "Study.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using namespace flowmere::test;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

// A, then S with X and Y in it, then B. Each block adds its letter to the variable Log of the process.
class Span : public testing::Test {
protected:
    Span() {
        for (std::string const name : {"A", "X", "Y", "B"})
            study.scriptOf(name,
                           "variables.setStringVarValue('Log', variables.getStringVarValue('Log') + '" + name + "')",
                           "variables.setStringVarValue('Log', variables.getStringVarValue('Log')[:-1])");
        study.document(process(block("A") + subProcess("S", block("X") + block("Y") + connector("X", "Y")) +
                                   block("B") + connector("A", "S") + connector("S", "B"),
                               variable("Log", "String", "-")));
    }

    // The lines of the run, and the variable as it was saved.
    void expectRun(std::vector<std::string> arguments, std::string const& lines, std::string const& log) {
        arguments.insert(arguments.end(), {"--save", "out.xml"});
        ProgramRun const run = study.run(arguments);
        EXPECT_EQ(withoutTimes(run.out), lines + "saved: out.xml\n");
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_THAT(study.folder().read("out.xml"), HasSubstr(">" + log + "</VARIABLE>"));
    }

    Study study;
};

TEST_F(Span, UntilRunsUpToTheBlockAndTheBlockItself) {
    expectRun({"--until", "S.X"},
              "A  # ms  Executed\nS  # ms  Executed\nS.X  # ms  Executed\n"
              "stopped before S.Y: 3 blocks executed,  # ms\n",
              "-AX");
}

TEST_F(Span, UntilASubProcessRunsAllThatIsInIt) {
    expectRun({"--until", "S"},
              "A  # ms  Executed\nS  # ms  Executed\nS.X  # ms  Executed\nS.Y  # ms  Executed\n"
              "stopped before B: 4 blocks executed,  # ms\n",
              "-AXY");
}

TEST_F(Span, UntilTheLastBlockEndsWithTheFlow) {
    expectRun({"--until", "B"},
              "A  # ms  Executed\nS  # ms  Executed\nS.X  # ms  Executed\nS.Y  # ms  Executed\n"
              "B  # ms  Executed\nended: 5 blocks executed,  # ms\n",
              "-AXYB");
}

TEST_F(Span, UntilTakesAnIdentifierThatOneBlockHas) {
    EXPECT_THAT(study.run({"--until", "X"}).out, HasSubstr("stopped before S.Y: 3 blocks"));
}

TEST_F(Span, FromBeginsAtTheBlockWithTheValuesOfTheDocument) {
    expectRun({"--from", "S.Y"}, "S.Y  # ms  Executed\nB  # ms  Executed\nended: 2 blocks executed,  # ms\n", "-YB");
    std::string const saved = study.folder().read("out.xml");
    EXPECT_THAT(saved, HasSubstr("BlockString=\"A\" DisplayStatus=\"False\" ExecutionStatus=\"ESNone\""));
    EXPECT_THAT(saved, HasSubstr("BlockString=\"Y\" DisplayStatus=\"False\" ExecutionStatus=\"Executed\""));
}

TEST_F(Span, FromAndUntilBoundTheRunOnBothSides) {
    expectRun({"--from", "S", "--until", "S.X"},
              "S  # ms  Executed\nS.X  # ms  Executed\nstopped before S.Y: 2 blocks executed,  # ms\n", "-X");
}

TEST_F(Span, FromWithStepsRunsSoManyBlocks) {
    expectRun({"--from", "S.X", "--step", "1", "--step", "1"},
              "S.X  # ms  Executed\nS.Y  # ms  Executed\nstopped before B: 2 blocks executed,  # ms\n", "-XY");
}

TEST_F(Span, FromDoesNotStopInFrontOfItsBlock) {
    expectRun({"--from", "B", "--break", "B"}, "B  # ms  Executed\nended: 1 block executed,  # ms\n", "-B");
}

TEST_F(Span, UndoGoesBackToTheBlockThatTheRunBeganAt) {
    expectRun({"--from", "S.X", "--undo", "9", "--step", "1"},
              "S.X  # ms  Executed\nS.Y  # ms  Executed\nB  # ms  Executed\nB  # ms  Undone\nS.Y  # ms  Undone\n"
              "S.X  # ms  Undone\nnothing to undo: the flow is back at its start\nS.X  # ms  Executed\n"
              "stopped before S.Y: 4 blocks executed, 3 undone,  # ms\n",
              "-X");
}

TEST_F(Span, OnlyRunsTheBlockAlone) {
    expectRun({"--only", "S.X"}, "S.X  # ms  Executed\nstopped before S.Y: 1 block executed,  # ms\n", "-X");
}

TEST_F(Span, OnlyRunsASubProcessWithAllThatIsInIt) {
    expectRun({"--only", "S"},
              "S  # ms  Executed\nS.X  # ms  Executed\nS.Y  # ms  Executed\n"
              "stopped before B: 3 blocks executed,  # ms\n",
              "-XY");
}

TEST_F(Span, OnlyCanBeUndone) {
    expectRun({"--only", "B", "--undo", "1"},
              "B  # ms  Executed\nB  # ms  Undone\nstopped before B: 1 block executed, 1 undone,  # ms\n", "-");
}

TEST_F(Span, ABreakComesBeforeTheEnd) {
    expectRun({"--until", "B", "--break", "S.Y"},
              "A  # ms  Executed\nS  # ms  Executed\nS.X  # ms  Executed\n"
              "stopped before S.Y: 3 blocks executed,  # ms\n",
              "-AX");
}

TEST_F(Span, StepsGoOnBehindTheEnd) {
    expectRun({"--until", "A", "--step", "2"},
              "A  # ms  Executed\nS  # ms  Executed\nS.X  # ms  Executed\n"
              "stopped before S.Y: 3 blocks executed,  # ms\n",
              "-AX");
}

TEST_F(Span, ABlockThatTheFlowDoesNotComeToIsTold) {
    expectRun({"--from", "B", "--until", "S.X"},
              "B  # ms  Executed\nthe flow has ended and did not come to S.X\nended: 1 block executed,  # ms\n", "-B");
    json const document = json::parse(study.run({"--from", "B", "--until", "S.X", "--json"}).out, nullptr, false);
    EXPECT_EQ(document["notes"], json({"the flow has ended and did not come to S.X"}));
    EXPECT_EQ(document["end"], "ended");
}

TEST_F(Span, AFailedBlockIsNoEndOfTheSpan) {
    study.scriptOf("X", "raise ValueError('x')");
    ProgramRun const run = study.run({"--until", "S.X"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("failed: 2 blocks executed"));
}

TEST_F(Span, BlocksAreSuggestedAndCombinationsThatMakeNoSenseAreRefused) {
    struct Row {
        std::vector<std::string> arguments;
        std::string message;
    };
    std::string const help = " (see flowmere run --help)";
    std::vector<Row> const rows = {
        {{"--until", "S.Z"}, "p.xml: S.Z: there is no such block; did you mean S.X or S.Y?"},
        {{"--from", "nowhere"}, "p.xml: nowhere: there is no such block"},
        {{"--only", ""}, "p.xml: there is no such block"},
        {{"--only", "A", "--from", "A"}, "--from excludes --only" + help},
        {{"--only", "A", "--until", "A"}, "--until excludes --only" + help},
        {{"--only", "A", "--break", "A"}, "--break excludes --only" + help},
        {{"--only", "A", "--step", "1"}, "--only excludes --step" + help},
    };
    for (Row const& row : rows) {
        ProgramRun const run = study.run(row.arguments);
        EXPECT_EQ(run.exitCode, 2) << row.message;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "flowmere: " + row.message + "\n");
    }
}

TEST(SpanOfALoop, EndsTheFirstTimeThatTheBlockHasRun) {
    Study study;
    study.scriptOf("A", "pass");
    study.scriptOf("D", "api.setActiveHandle(4)");
    study.document(process(block("Start", "", "Start", "Oval") + block("A") + block("D", "", "", "Decision") +
                           connector("Start", "A") + connector("A", "D") + connector("D", "A", 4, 4)));
    EXPECT_EQ(
        withoutTimes(study.run({"--until", "D"}).out),
        "Start  # ms  Executed\nA  # ms  Executed\nD  # ms  Executed\nstopped before A: 3 blocks executed,  # ms\n");
}

TEST(SpanOfALoop, OfOneBlockThatLeadsToItselfEndsToo) {
    Study study;
    study.scriptOf("A", "pass");
    study.document(process(block("A") + block("B", "", "B", "Oval") + connector("B", "A") + connector("A", "A", 6, 2)));
    EXPECT_EQ(withoutTimes(study.run({"--only", "A"}).out),
              "A  # ms  Executed\nstopped before A: 1 block executed,  # ms\n");
}

TEST(SpanOfADocument, WithStopsStopsAtThemToo) {
    Study study;
    study.scriptOf("A", "pass");
    study.scriptOf("B", "pass");
    study.document(process(block("A", "", "", "Rectangle", "Break=\"true\"") +
                           block("B", "", "", "Rectangle", "Break=\"true\"") + connector("A", "B")));
    EXPECT_EQ(withoutTimes(study.run({"--from", "A"}).out),
              "A  # ms  Executed\nstopped before B: 1 block executed,  # ms\n");
    EXPECT_EQ(withoutTimes(study.run({"--only", "B"}).out), "B  # ms  Executed\nended: 1 block executed,  # ms\n");
}

} // namespace
