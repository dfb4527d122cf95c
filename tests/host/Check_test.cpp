#include "CheckFindings.h"
#include "Golden.h"
#include "Study.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace flowmere::test;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Check : public testing::Test {
protected:
    Study study;

    ProgramRun check(std::string const& text, std::vector<std::string> const& more = {}) {
        study.document(text);
        std::vector<std::string> arguments{"check", "p.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(arguments, {.folder = study.path()});
    }

    std::vector<std::string> findings(std::string const& text) { return findingsOf(check(text), "p.xml"); }
    // Those of one rule.
    std::vector<std::string> findings(std::string const& text, std::string const& rule) {
        std::vector<std::string> of;
        for (std::string const& line : findings(text))
            if (line.find(": " + rule + ": ") != std::string::npos)
                of.push_back(line);
        return of;
    }
};

// A block that needs no script.
std::string place(std::string const& id, std::string const& inner = "") {
    return "<TERMINATOR Name=\"" + id + "\">" + inner + "</TERMINATOR>\n";
}

std::string decision(std::string const& id, std::string const& script = "") {
    return "<DECISION Name=\"" + id + "\">" + (script.empty() ? "" : "<SCRIPT Name=\"" + script + "\"/>") +
           "</DECISION>\n";
}

std::string linked(std::string const& name, std::string const& to) {
    return variable(name, "Int", "0", "Input", to);
}

TEST_F(Check, ASoundDocumentHasNoFindings) {
    ProgramRun const run = runProgram({"check", "beam.xml"}, {.folder = dataFolder() / "host/sound"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "beam.xml: 7 blocks, nothing found\n");
    EXPECT_EQ(run.err, "");
}

TEST_F(Check, TheExampleHasNoFindings) {
    ProgramRun const run = runProgram({"check", FLOWMERE_EXAMPLES "/beam/beam.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
}

TEST_F(Check, PrintsEverythingThatIsWrongWithAFaultyDocument) {
    ProgramRun const run = runProgram({"check", "plant.xml"}, {.folder = dataFolder() / "host/faulty"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "");
    expectGolden("host/faulty/plant.check.txt", run.out);
}

TEST_F(Check, TellsTheSameAsJson) {
    ProgramRun const run = runProgram({"check", "--json", "plant.xml", "nowhere.xml", "../sound/beam.xml"},
                                      {.folder = dataFolder() / "host/faulty"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: nowhere.xml: there is no such file\n");
    expectGolden("host/faulty/plant.check.json", withName(run.out, dataFolder().string(), "DATA"));
}

TEST_F(Check, SeveralDocumentsAreAllChecked) {
    study.folder().write("a.xml", process(place("A", linked("x", "No.y"))));
    study.folder().write("b.xml", process(place("B")));
    ProgramRun const run = runProgram({"check", "a.xml", "b.xml", "a.xml"}, {.folder = study.path()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "a.xml: A.x: dead-link: links to \"No.y\", and there is no such variable\n"
                       "a.xml: 1 block, 1 finding\n"
                       "b.xml: 1 block, nothing found\n"
                       "a.xml: A.x: dead-link: links to \"No.y\", and there is no such variable\n"
                       "a.xml: 1 block, 1 finding\n"
                       "3 documents: 2 findings\n");
}

TEST_F(Check, AFileThatCannotBeReadDoesNotHideTheOthers) {
    study.folder().write("a.xml", process(place("A", linked("x", "No.y"))));
    study.folder().write("cut.xml", "<Process><BLOCK");
    study.folder().write("empty.xml", "");
    ProgramRun const run =
        runProgram({"check", "nowhere.xml", "cut.xml", ".", "empty.xml", "a.xml"}, {.folder = study.path()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "a.xml: A.x: dead-link: links to \"No.y\", and there is no such variable\n"
                       "a.xml: 1 block, 1 finding\n"
                       "5 documents: 1 finding, 4 unread\n");
    EXPECT_EQ(run.err, "flowmere: nowhere.xml: there is no such file\n"
                       "flowmere: cut.xml: line 1, column 16: no well-formed XML: unexpected end of input\n"
                       "flowmere: .: is a folder without a workflow: there is no processdefinition.xml in it\n"
                       "flowmere: empty.xml: is empty\n");
}

TEST_F(Check, WrongUseIsOneLineAndExitCodeTwo) {
    ProgramRun const run = runProgram({"check"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: FILE is required (see flowmere check --help)\n");
    ProgramRun const unknown = runProgram({"check", "--fast", "p.xml"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(std::count(unknown.err.begin(), unknown.err.end(), '\n'), 1);
}

TEST_F(Check, AScriptFolderThatIsNoneIsToldForTheFile) {
    ProgramRun const run = check(process(place("A")), {"--scripts", "nowhere"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: nowhere: is no folder of scripts\n");
}

// --- Links

TEST_F(Check, LinksThatLeadSomewhereAreFine) {
    EXPECT_THAT(findings(process(place("A", variable("x", "Int", "1") + linked("y", "A.x")) +
                                     place("B", linked("z", "A.y") + linked("p", ".Top") + linked("t", "Template.Top")),
                                 variable("Top", "Int", "1")),
                         "dead-link"),
                IsEmpty());
}

TEST_F(Check, ADeadLinkIsToldWhereItIsAndNotWhereItIsFelt) {
    EXPECT_THAT(findings(process(place("A", linked("x", "Gone.y") + linked("behind", "A.x"))), "dead-link"),
                ElementsAre("A.x: dead-link: links to \"Gone.y\", and there is no such variable"));
}

TEST_F(Check, LinksAreDeadWhereThePathIsWrongInAnyPart) {
    struct Case {
        char const* path;
        char const* meant;
    };
    for (auto const& [path, meant] :
         {Case{"A", ""}, Case{"A.", ""}, Case{"A.X", "; did you mean A.x?"}, Case{"a.x", "; did you mean A.x?"},
          Case{"A.x.y", ""}, Case{"..x", "; did you mean A.x?"}, Case{"S.T.x", "; did you mean A.x?"},
          Case{"Nothing", ""}})
        EXPECT_THAT(findings(process(place("A", variable("x", "Int", "1") + linked("v", path))), "dead-link"),
                    ElementsAre(std::string("A.v: dead-link: links to \"") + path +
                                "\", and there is no such variable" + meant))
            << path;
}

TEST_F(Check, OfAWrongLinkTheVariablesOfTheBlockThatItNamesAreMeant) {
    std::string const many = place("Loads", variable("Span", "Int", "1") + variable("Height", "Int", "1")) +
                             place("Walls", variable("Spam", "Int", "1"));
    EXPECT_THAT(findings(process(many + place("B", linked("v", "Loads.Spam"))), "dead-link"),
                ElementsAre("B.v: dead-link: links to \"Loads.Spam\", and there is no such variable; did you mean "
                            "Loads.Span?"));
    EXPECT_THAT(findings(process(many + place("B", linked("v", "Laods.Height"))), "dead-link"),
                ElementsAre("B.v: dead-link: links to \"Laods.Height\", and there is no such variable; did you mean "
                            "Loads.Height?"));
    EXPECT_THAT(findings(process(place("B", "<VARIABLE Name=\"q\" DataType=\"Int\" Scope=\"Parent\">Topp</VARIABLE>"),
                                 variable("Top", "Int", "1")),
                         "dead-link"),
                ElementsAre("B.q: dead-link: has the scope Parent, and the level above has neither a variable \"Topp\" "
                            "nor \"q\"; did you mean Top?"));
}

TEST_F(Check, OfALostConnectorTheBlocksBesideAreMeant) {
    std::string const blocks = place("Start") + place("Middle");
    EXPECT_THAT(findings(process(blocks + connector("Start", "Midle")), "missing-connector-block"),
                ElementsAre("(process): missing-connector-block: the connector from \"Start\" to \"Midle\" is lost: "
                            "there is no block \"Midle\"; did you mean Middle?"));
}

TEST_F(Check, VeryManyWrongNamesTakeNoTimeOutOfProportion) {
    std::string blocks;
    std::string connectors;
    for (int number = 0; number < 6000; ++number) {
        std::string const id = "Step_" + std::to_string(number);
        blocks += place(id, linked("in", "Stop_" + std::to_string(number) + ".in"));
        connectors += connector(id, "Stop_" + std::to_string(number));
    }
    ProgramRun const run = check(process(blocks + connectors));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.find("did you mean Step_0.in") != std::string::npos);
    EXPECT_TRUE(run.out.ends_with("findings\n"));
}

TEST_F(Check, LoopsOfEveryLengthAreToldOnce) {
    auto const loopOf = [](int length) {
        std::string inner;
        for (int index = 0; index < length; ++index)
            inner += place("B" + std::to_string(index), linked("v", "B" + std::to_string((index + 1) % length) + ".v"));
        return process(inner);
    };
    EXPECT_THAT(findings(loopOf(1), "link-loop"), ElementsAre("B0.v: link-loop: links to itself"));
    EXPECT_THAT(findings(loopOf(2), "link-loop"),
                ElementsAre("B0.v: link-loop: the links come back: B0.v -> B1.v -> B0.v"));
    EXPECT_THAT(findings(loopOf(3), "link-loop"),
                ElementsAre("B0.v: link-loop: the links come back: B0.v -> B1.v -> B2.v -> B0.v"));
    EXPECT_THAT(findings(loopOf(10), "link-loop"),
                ElementsAre("B0.v: link-loop: the links come back: B0.v -> B1.v -> B2.v -> B3.v -> B4.v -> B5.v -> "
                            "B6.v -> B7.v -> B8.v -> B9.v -> B0.v"));
    EXPECT_THAT(findings(loopOf(1000), "link-loop"),
                ElementsAre("B0.v: link-loop: the links come back: B0.v -> B1.v -> B2.v -> B3.v -> B4.v -> B5.v -> "
                            "B6.v -> B7.v -> B8.v -> B9.v -> 990 more -> B0.v"));
}

TEST_F(Check, WhatLeadsIntoALoopIsNoLoopOfItsOwn) {
    EXPECT_THAT(findings(process(place("A", linked("into", "B.x")) + place("B", linked("x", "C.x")) +
                                 place("C", linked("x", "B.x"))),
                         "link-loop"),
                ElementsAre("B.x: link-loop: the links come back: B.x -> C.x -> B.x"));
}

TEST_F(Check, TwoLoopsAreTwoFindings) {
    EXPECT_THAT(
        findings(process(place("A", linked("x", "A.y") + linked("y", "A.x") + linked("z", "A.z"))), "link-loop"),
        ElementsAre("A.x: link-loop: the links come back: A.x -> A.y -> A.x", "A.z: link-loop: links to itself"));
}

TEST_F(Check, AScopeThatFindsNothingIsADeadLink) {
    auto const scoped = [](std::string const& scope, std::string const& value) {
        return process(
            "<SUB_PROCESS Name=\"S\">" + variable("known", "Int", "1") +
            place("T", "<VARIABLE Name=\"v\" DataType=\"Int\" Scope=\"" + scope + "\">" + value + "</VARIABLE>") +
            "</SUB_PROCESS>");
    };
    for (char const* const scope : {"Parent", "Global"}) {
        EXPECT_THAT(findings(scoped(scope, "known")), IsEmpty());
        EXPECT_THAT(findings(scoped(scope, "other")),
                    ElementsAre(std::string("S.T.v: dead-link: has the scope ") + scope +
                                ", and the level above has neither a variable \"other\" nor \"v\""));
        EXPECT_THAT(findings(scoped(scope, "")), ElementsAre(std::string("S.T.v: dead-link: has the scope ") + scope +
                                                             ", and the level above has no variable \"v\""));
    }
    EXPECT_THAT(findings(scoped("Local", "other")), IsEmpty());
    EXPECT_THAT(findings(scoped("Connected", "other")), IsEmpty());
}

// --- Connectors and files that the reader passed over

TEST_F(Check, ConnectorsWithoutBlocksAreTold) {
    EXPECT_THAT(findings(process(place("A") + connector("A", "Gone") + connector("Lost", "A") + connector("X", "Y") +
                                 connector("Z", "Z"))),
                ElementsAre("(process): missing-connector-block: the connector from \"A\" to \"Gone\" is lost: "
                            "there is no block \"Gone\"",
                            "(process): missing-connector-block: the connector from \"Lost\" to \"A\" is lost: "
                            "there is no block \"Lost\"",
                            "(process): missing-connector-block: the connector from \"X\" to \"Y\" is lost: "
                            "there are no blocks \"X\" and \"Y\"",
                            "(process): missing-connector-block: the connector from \"Z\" to \"Z\" is lost: "
                            "there is no block \"Z\""));
}

TEST_F(Check, AConnectorInFrontOfItsBlocksIsLost) {
    EXPECT_THAT(findings(process(place("A") + connector("A", "B") + place("B")), "missing-connector-block"),
                ElementsAre("(process): missing-connector-block: the connector from \"A\" to \"B\" is lost: it stands "
                            "in front of its blocks"));
}

TEST_F(Check, ConnectorsFindTheirBlocksInAnyCase) {
    EXPECT_THAT(findings(process(place("A") + place("B") + connector("a", "b"))), IsEmpty());
}

TEST_F(Check, FindingsOfAContainerStandBehindThoseInIt) {
    EXPECT_THAT(findings(process("<SUB_PROCESS Name=\"S\">" + place("T", linked("v", "No.w")) + connector("T", "U") +
                                 "</SUB_PROCESS>" + connector("S", "V"))),
                ElementsAre(testing::StartsWith("S.T.v: dead-link"), testing::StartsWith("S: missing-connector-block"),
                            testing::StartsWith("(process): missing-connector-block")));
}

TEST_F(Check, LinkedFilesThatCannotBeReadAreTold) {
    study.folder().write("broken.xml", "<Process><");
    study.folder().write("good.xml", process(place("Inner")));
    auto const linkTo = [](std::string const& file) {
        return process("<SUB_PROCESS Name=\"S\"><FILE_LINK Name=\"S\" FileName=\"" + file + "\"/></SUB_PROCESS>");
    };
    std::string const missing = (study.path() / "nowhere.xml").string();
    EXPECT_THAT(findings(linkTo(missing), "missing-file"),
                ElementsAre("S: missing-file: the linked file \"" + missing + "\" is missing"));
    std::string const broken = (study.path() / "broken.xml").string();
    EXPECT_THAT(findings(linkTo(broken), "missing-file"),
                ElementsAre(StartsWith("S: missing-file: the linked file \"" + broken +
                                       "\" cannot be read: line 1, column 11: ")));
    EXPECT_THAT(findings(linkTo((study.path() / "good.xml").string()), "missing-file"), IsEmpty());
}

TEST_F(Check, AFileThatLinksToItselfIsReadToItsEnd) {
    study.document("");
    ProgramRun const run = check(process("<SUB_PROCESS Name=\"S\"><FILE_LINK Name=\"S\" FileName=\"" +
                                         (study.path() / "p.xml").string() + "\"/></SUB_PROCESS>"));
    EXPECT_NE(run.exitCode, 2);
    EXPECT_LT(run.exitCode, 3);
}

// --- Ids

TEST_F(Check, IdsThatStandTwiceAreToldInWhateverCase) {
    EXPECT_THAT(
        findings(process(place("A") + place("B") + place("A") + place("a")), "duplicate-id"),
        ElementsAre("A: duplicate-id: the id \"A\" stands more than once here: links and connectors find only one",
                    "a: duplicate-id: the id \"a\" differs from \"A\" only in case: connectors find only one"));
}

TEST_F(Check, IdsMayStandTwiceInDifferentContainers) {
    EXPECT_THAT(
        findings(process(place("A") + "<SUB_PROCESS Name=\"S\">" + place("A") + "</SUB_PROCESS>"), "duplicate-id"),
        IsEmpty());
}

TEST_F(Check, LettersBeyondAsciiFoldToo) {
    EXPECT_THAT(findings(process(place("\xC3\x84pfel") + place("\xC3\xA4pfel")), "duplicate-id").size(), 1U);
}

TEST_F(Check, VariablesThatStandTwiceAreTold) {
    EXPECT_THAT(findings(process(
                    place("A", variable("x", "Int", "1") + variable("X", "Int", "2") + variable("x", "Int", "3")))),
                ElementsAre("A.x: duplicate-variable: the name \"x\" stands more than once here: the first is found, "
                            "never this one"));
}

// --- The flow

TEST_F(Check, AChainOfBlocksIsReachedWhole) {
    EXPECT_THAT(findings(process(place("A") + place("B") + place("C") + connector("A", "B") + connector("B", "C"))),
                IsEmpty());
}

TEST_F(Check, BlocksBesideTheFlowAreUnreachable) {
    EXPECT_THAT(
        findings(process(place("Alone") + place("X") + place("Y") + place("A") + place("B") + connector("X", "Y") +
                         connector("A", "B"))),
        ElementsAre("Alone: unreachable-block: no connector leads to it; the flow begins at \"A\"",
                    "X: unreachable-block: no connector leads to it; the flow begins at \"A\"",
                    "Y: unreachable-block: only blocks that no flow reaches lead to it; the flow begins at \"A\""));
}

TEST_F(Check, OfBlocksWithoutConnectorsTheLastIsTheStart) {
    EXPECT_THAT(findings(process(place("A") + place("B"))),
                ElementsAre("A: unreachable-block: no connector leads to it; the flow begins at \"B\", the last in the "
                            "file, as none has a way out and no way in"));
}

TEST_F(Check, ALoopBackToTheFirstBlockHidesTheStart) {
    EXPECT_THAT(findings(process(place("A") + decision("D") + place("B") + connector("A", "D") + connector("D", "B") +
                                 connector("D", "A", 8, 8)),
                         "unreachable-block")
                    .size(),
                2U);
    EXPECT_THAT(findings(process(place("S") + place("A") + decision("D") + place("B") + connector("S", "A") +
                                 connector("A", "D") + connector("D", "B") + connector("D", "A", 8, 8)),
                         "unreachable-block"),
                IsEmpty());
}

TEST_F(Check, ABlockGoesOnByItsActiveGripAlone) {
    EXPECT_THAT(
        findings(process(place("A") + place("B") + place("C") + connector("A", "B") + connector("A", "C", 4, 2))),
        ElementsAre("C: unreachable-block: the connector from \"A\" leaves by grip 4 (right), and the flow goes "
                    "on by grip 6 (bottom)"));
}

TEST_F(Check, OfTwoConnectorsAtOneGripTheFirstIsTaken) {
    EXPECT_THAT(findings(process(place("A") + place("B") + place("C") + connector("A", "B") + connector("A", "C"))),
                ElementsAre("C: unreachable-block: the flow leaves \"A\" by another connector at grip 6 (bottom)"));
}

TEST_F(Check, ADecisionReachesAllThatItsGripsLeadTo) {
    EXPECT_THAT(
        findings(process(decision("D") + place("B") + place("C") + connector("D", "B") + connector("D", "C", 4, 2))),
        IsEmpty());
}

TEST_F(Check, AScriptThatChoosesItsGripReachesWhatItNames) {
    study.scriptOf("Known", "api.setActiveHandle(6 if api.getActiveHandle() else 4)");
    study.scriptOf("Open", "api.setActiveHandle(int(input()))");
    for (std::string const name : {"Known", "Open"})
        EXPECT_THAT(findings(process(block(name) + place("B") + place("C") + connector(name, "B") +
                                     connector(name, "C", 4, 2))),
                    IsEmpty())
            << name;
}

TEST_F(Check, TheFlowGoesThroughASubProcess) {
    EXPECT_THAT(findings(process("<SUB_PROCESS Name=\"S\">" + place("T") + place("U") + connector("T", "U") +
                                 "</SUB_PROCESS>" + place("B") + connector("S", "B"))),
                IsEmpty());
}

TEST_F(Check, AnEmptySubProcessEndsTheFlow) {
    EXPECT_THAT(findings(process("<SUB_PROCESS Name=\"S\"/>" + place("B") + connector("S", "B"))),
                ElementsAre("B: unreachable-block: it comes behind \"S\", and an empty sub-process ends the flow"));
}

TEST_F(Check, AFlowThatCirclesInASubProcessDoesNotComeOut) {
    EXPECT_THAT(findings(process("<SUB_PROCESS Name=\"S\">" + place("I") + place("T") + place("U") +
                                 connector("I", "T") + connector("T", "U") + connector("U", "T") + "</SUB_PROCESS>" +
                                 place("B") + connector("S", "B"))),
                ElementsAre("B: unreachable-block: it comes behind \"S\", and the flow does not come out of that"));
}

TEST_F(Check, TheFlowComesOutOfOneLevelOnly) {
    std::string const inner = "<SUB_PROCESS Name=\"Inner\">" + place("T") + "</SUB_PROCESS>";
    EXPECT_THAT(
        findings(process("<SUB_PROCESS Name=\"S\">" + inner + "</SUB_PROCESS>" + place("B") + connector("S", "B"))),
        ElementsAre("B: unreachable-block: it comes behind \"S\", and the flow does not come out of that"));
    EXPECT_THAT(findings(process("<SUB_PROCESS Name=\"S\">" + inner + place("End") + connector("Inner", "End") +
                                 "</SUB_PROCESS>" + place("B") + connector("S", "B"))),
                IsEmpty());
}

TEST_F(Check, InsideAnUnreachedSubProcessTheInnerFlowCounts) {
    EXPECT_THAT(findings(process("<SUB_PROCESS Name=\"S\">" + place("T") + place("U") + connector("T", "U") +
                                 "</SUB_PROCESS>" + place("A") + place("B") + connector("A", "B"))),
                ElementsAre("S: unreachable-block: no connector leads to it; the flow begins at \"A\""));
}

TEST_F(Check, AWorkflowFollowsAllItsConnectors) {
    EXPECT_THAT(
        findings(process("<start-state Name=\"S\"/><fork Name=\"F\"/><end-state Name=\"A\"/><end-state Name=\"B\"/>" +
                         connector("S", "F", 4, 2) + connector("F", "A", 8, 2) + connector("F", "B", 8, 2))),
        IsEmpty());
}

TEST_F(Check, ALibraryOfBlocksInFoldersHasNoFlow) {
    EXPECT_THAT(findings(process("<SUB_GRP Name=\"Blocks\">" + place("A") + place("B") + "</SUB_GRP>")), IsEmpty());
}

// --- Decisions

TEST_F(Check, ADecisionWithoutAScriptNeedsItsActiveGrip) {
    EXPECT_THAT(findings(process(decision("D") + place("B") + connector("D", "B", 4, 2)), "decision-grip"),
                ElementsAre("D: decision-grip: no connector leaves grip 6 (bottom), by which the decision goes on"));
    EXPECT_THAT(findings(process(decision("D") + place("B") + connector("D", "B")), "decision-grip"), IsEmpty());
}

TEST_F(Check, EveryGripThatAScriptNamesNeedsAConnector) {
    study.scriptOf("D", "if api:\n    api.setActiveHandle(4)\nelse:\n    api.setActiveHandle(8)");
    auto const flow = [](std::vector<int> const& grips) {
        std::string inner = decision("D", "s.D");
        std::string ways;
        for (int const grip : grips) {
            inner += place("B" + std::to_string(grip));
            ways += connector("D", "B" + std::to_string(grip), grip, 2);
        }
        return process(inner + ways);
    };
    EXPECT_THAT(findings(flow({4, 8}), "decision-grip"), IsEmpty());
    EXPECT_THAT(findings(flow({4, 6}), "decision-grip"),
                ElementsAre("D: decision-grip: no connector leaves grip 8 (left), which D.py:16 goes on by"));
    EXPECT_THAT(findings(flow({6}), "decision-grip").size(), 2U);
}

TEST_F(Check, AGripThatIsSetAtTimesLeavesTheActiveOneInUse) {
    std::string const flow = decision("D", "s.D") + place("B") + connector("D", "B", 4, 2);
    study.scriptOf("D", "if api:\n    api.setActiveHandle(4)");
    EXPECT_THAT(findings(process(flow), "decision-grip"),
                ElementsAre("D: decision-grip: no connector leaves grip 6 (bottom), by which the decision goes on when "
                            "its script names no other"));
    study.scriptOf("D", "api.setActiveHandle(4)");
    EXPECT_THAT(findings(process(flow), "decision-grip"), IsEmpty());
}

TEST_F(Check, GripsMayBeNamedByConstantsAndChosenInPlace) {
    study.scriptText(
        "D", "LEFT = 8\nclass D:\n    def Execute(self):\n        self.api.setActiveHandle(LEFT if self.bad else 6)\n");
    EXPECT_THAT(findings(process(decision("D", "s.D") + place("B") + connector("D", "B")), "decision-grip"),
                ElementsAre("D: decision-grip: no connector leaves grip 8 (left), which D.py:4 goes on by"));
}

TEST_F(Check, AGripThatAScriptWorksOutIsLeftToTheRun) {
    study.scriptOf("D", "api.setActiveHandle(api.grip())");
    EXPECT_THAT(findings(process(decision("D", "s.D") + place("B") + connector("D", "B", 4, 2)), "decision-grip"),
                IsEmpty());
}

TEST_F(Check, ThereAreEightGrips) {
    study.scriptOf("D", "api.setActiveHandle(9)");
    EXPECT_THAT(findings(process(decision("D", "s.D")), "decision-grip"),
                ElementsAre("D: decision-grip: D.py:13 leaves by grip 9, and there are the grips 1 to 8"));
    study.scriptOf("D", "api.setActiveHandle(-4)");
    EXPECT_THAT(findings(process(decision("D", "s.D")), "decision-grip"),
                ElementsAre("D: decision-grip: D.py:13 leaves by grip -4, and there are the grips 1 to 8"));
}

TEST_F(Check, ABlockThatSetsItsGripIsHeldToIt) {
    study.scriptOf("B", "api.setActiveHandle(4)");
    EXPECT_THAT(findings(process(block("B")), "decision-grip"),
                ElementsAre("B: decision-grip: no connector leaves grip 4 (right), which B.py:13 goes on by"));
}

// --- Scripts

TEST_F(Check, AScriptThatIsMissingIsToldForBlocksThatNeedOne) {
    EXPECT_THAT(findings(process(block("A")), "missing-script"),
                ElementsAre("A: missing-script: there is no script s.A"));
    EXPECT_THAT(findings(process("<BLOCK Name=\"A\"/>"), "missing-script"),
                ElementsAre("A: missing-script: there is no script A, and a block does nothing without one"));
    EXPECT_THAT(findings(process("<task-node Name=\"A\"/>"), "missing-script"),
                ElementsAre("A: missing-script: there is no script A, and a task does nothing without one"));
    EXPECT_THAT(findings(process(decision("D", "s.D")), "missing-script"),
                ElementsAre("D: missing-script: there is no script s.D"));
    EXPECT_THAT(findings(process(place("A") + "<SUB_PROCESS Name=\"S\"/>"), "missing-script"), IsEmpty());
    EXPECT_THAT(
        findings(process("<BLOCK Name=\"A\"><SCRIPT Name=\"x\" ScriptType=\"TCMD\"/></BLOCK>"), "missing-script"),
        IsEmpty());
}

TEST_F(Check, AFolderIsNoScript) {
    std::filesystem::create_directories(study.path() / "s/A.py");
    EXPECT_THAT(findings(process(block("A")), "missing-script").size(), 1U);
}

TEST_F(Check, FurtherScriptFoldersCount) {
    Study elsewhere;
    elsewhere.scriptOf("A", "pass");
    EXPECT_EQ(check(process(block("A"))).exitCode, 1);
    EXPECT_EQ(check(process(block("A")), {"--scripts", elsewhere.path().string()}).exitCode, 0);
}

TEST_F(Check, ScriptsThatDoNotCompileAreToldWithFileAndLine) {
    struct Case {
        char const* text;
        char const* message;
    };
    std::string const latin = "class A:\n    x = '\xE9'\n";
    std::string const nul("class A:\n    x = '\0'\n", 21);
    for (auto const& [text, message] : {
             std::pair<std::string, char const*>("class A\n    pass\n", "s/A.py:1: expected ':'"),
             {"class A:\n    x = (1\n", "s/A.py:2: '(' was never closed"},
             {"class A:\n    x = 1\n\ty = 2\n", "s/A.py:3: inconsistent use of tabs and spaces in indentation"},
             {"class A:\npass\n", "s/A.py:2: expected an indented block after class definition on line 1"},
             {"return 1\nclass A: pass\n", "s/A.py:1: 'return' outside function"},
             {nul, "null bytes"},
             {latin, "s/A.py"},
             {"x = " + std::string(5000, '(') + std::string(5000, ')'), "too many nested parentheses"},
             {"x = a" +
                  [] {
                      std::string deep;
                      for (int index = 0; index < 50000; ++index)
                          deep += ".b";
                      return deep;
                  }(),
              "nested too deeply"},
         }) {
        study.scriptText("A", text);
        auto const found = findings(process(block("A")), "script-syntax");
        ASSERT_EQ(found.size(), 1U) << message;
        EXPECT_THAT(found.front(), testing::StartsWith("A: script-syntax: s/A.py"));
        EXPECT_THAT(found.front(), HasSubstr(message));
    }
}

TEST_F(Check, ScriptsThatCompileAreFine) {
    for (std::string const text :
         {"class A:\n    pass\n",
          "\xEF\xBB\xBF"
          "class A:\n    pass\n",
          "# -*- coding: latin-1 -*-\n# \xE9\nclass A:\n    pass\n", "class A:\r\n    pass\r\n",
          "class A:\n    x = '\\d' is 'a'\n", "A = type('A', (), {})\n", "from os.path import *\n",
          "from os import A\n", "if 1:\n    class A: pass\n"}) {
        study.scriptText("A", text);
        EXPECT_THAT(findings(process(block("A"))), IsEmpty()) << text;
    }
}

TEST_F(Check, ACompanionThatDoesNotCompileIsTold) {
    study.scriptText("A", "from . ABlock import ABlock\nclass A(ABlock):\n    pass\n");
    study.scriptText("ABlock", "class ABlock(:\n");
    EXPECT_THAT(findings(process(block("A"))), ElementsAre("A: script-syntax: s/ABlock.py:1: invalid syntax"));
}

TEST_F(Check, AScriptNeedsTheClassOfItsName) {
    study.scriptText("A", "class B:\n    pass\n\ndef make():\n    A = 1\n");
    EXPECT_THAT(findings(process(block("A"))), ElementsAre("A: script-class: s/A.py: has no class A"));
    study.scriptText("A", "");
    EXPECT_THAT(findings(process(block("A"))), ElementsAre("A: script-class: s/A.py: has no class A"));
}

TEST_F(Check, RelativeImportsNeedAPackageAndAModule) {
    study.folder().write("A.py", "\nfrom . ABlock import ABlock\nclass A(ABlock):\n    pass\n");
    EXPECT_THAT(
        findings(process(block("A", "", "A"))),
        ElementsAre("A: script-import: A.py:2: imports relative to its package, and the script name \"A\" has none"));
    study.scriptText("A", "from . ABlock import ABlock\nclass A(ABlock):\n    pass\n");
    EXPECT_THAT(findings(process(block("A"))),
                ElementsAre("A: script-import: s/A.py:1: imports .ABlock, and there is no such module"));
    study.scriptText("ABlock", "class ABlock:\n    pass\n");
    EXPECT_THAT(findings(process(block("A"))), IsEmpty());
    study.scriptText("A", "from ..other import x\nclass A:\n    pass\n");
    EXPECT_THAT(findings(process(block("A"))),
                ElementsAre("A: script-import: s/A.py:1: imports from above the packages of the script name \"s.A\""));
}

TEST_F(Check, NoScriptEverRuns) {
    study.scriptText("A", "import pathlib\npathlib.Path('ran').touch()\nclass A:\n    pathlib.Path('ran').touch()\n");
    study.scriptText("ast", "import pathlib\npathlib.Path('ran').touch()\n");
    study.folder().write("ast.py", "import pathlib\npathlib.Path('ran').touch()\n");
    study.folder().write("sitecustomize.py", "import pathlib\npathlib.Path('ran').touch()\n");
    EXPECT_THAT(findings(process(block("A"))), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(study.path() / "ran"));
    EXPECT_FALSE(std::filesystem::exists(study.path() / "s/__pycache__"));
}

TEST_F(Check, ABrokenScriptIsToldForEachBlockThatRunsIt) {
    study.scriptText("Shared", "class Shared:\n    x = (\n");
    EXPECT_THAT(findings(process(block("A", "", "s.Shared") + block("B", "", "s.Shared") + connector("A", "B"))).size(),
                2U);
}

// --- Names

TEST_F(Check, NamesThatPythonTakesAreFine) {
    for (std::string const name : {"x", "_", "_1", "Task_01", "\xC3\xA9t\xC3\xA9", "match", "print", "Class"})
        EXPECT_THAT(findings(process("", variable(name, "Int", "1"))), IsEmpty()) << name;
}

TEST_F(Check, NamesThatPythonDoesNotTakeAreTold) {
    for (std::string const name : {"1x", "a b", "a-b", "a.b", "x!", "\xE2\x82\xAC"})
        EXPECT_THAT(findings(process("", variable(name, "Int", "1")), "not-identifier"),
                    ElementsAre("." + name + ": not-identifier: the name \"" + name + "\" is no Python name"));
}

TEST_F(Check, KeywordsAreNoNames) {
    for (std::string const name : {"class", "None", "True", "async", "await", "lambda", "not", "yield"})
        EXPECT_THAT(findings(process("", variable(name, "Int", "1"))),
                    ElementsAre("." + name + ": not-identifier: the name \"" + name + "\" is a keyword of Python"));
}

TEST_F(Check, IdsOfScriptedBlocksAreNamesToo) {
    study.scriptOf("A", "pass");
    EXPECT_THAT(findings(process(block("Load case", "", "s.A")), "not-identifier"),
                ElementsAre("Load case: not-identifier: the id \"Load case\" is no Python name"));
    EXPECT_THAT(findings(process(place("Load case")), "not-identifier"), IsEmpty());
}

TEST_F(Check, EveryPartOfAScriptNameIsAName) {
    EXPECT_THAT(
        findings(process(block("A", "", "my pack.A")), "not-identifier"),
        ElementsAre("A: not-identifier: the part \"my pack\" is no Python name, in the script name \"my pack.A\""));
    EXPECT_THAT(
        findings(process(block("A", "", "import.A")), "not-identifier"),
        ElementsAre("A: not-identifier: the part \"import\" is a keyword of Python, in the script name \"import.A\""));
    EXPECT_THAT(findings(process(block("A", "", "s..A")), "not-identifier"),
                ElementsAre("A: not-identifier: the part \"\" is no Python name, in the script name \"s..A\""));
    EXPECT_THAT(findings(process(block("A", "", "A-1")), "not-identifier"),
                ElementsAre("A: not-identifier: the script name \"A-1\" is no Python name"));
}

// --- As a whole

TEST_F(Check, ControlCharactersDoNotReachTheTerminal) {
    EXPECT_THAT(findings(process("<TERMINATOR Name=\"a&#10;b\"><VARIABLE Name=\"v&#x9b;\" DataType=\"Int\" "
                                 "LinkPath=\"x&#9;y\">1</VARIABLE></TERMINATOR>")),
                ElementsAre("a\\nb.v\\x9b: not-identifier: the name \"v\\x9b\" is no Python name",
                            "a\\nb.v\\x9b: dead-link: links to \"x\\ty\", and there is no such variable"));
}

TEST_F(Check, FindingsStandInTheOrderOfTheDocument) {
    ProgramRun const run =
        check(process(place("A", linked("x", "No.1")) + place("B", linked("x", "No.2") + linked("y", "No.3")) +
                          "<SUB_PROCESS Name=\"S\">" + place("C", linked("x", "No.4")) + "</SUB_PROCESS>" +
                          connector("A", "B") + connector("B", "S"),
                      linked("p", "No.0")),
              {"--json"});
    Json const document = Json::parse(run.out);
    std::vector<std::string> paths;
    for (Json const& finding : document["findings"])
        paths.push_back(finding["path"]);
    EXPECT_THAT(paths, ElementsAre(".p", "A.x", "B.x", "B.y", "S.C.x"));
}

TEST_F(Check, DeepDocumentsAreCheckedToTheLastLevel) {
    std::string inner = place("Last", linked("v", "No.w"));
    std::string path = "Last.v";
    for (int level = 0; level < 900; ++level) {
        inner = "<SUB_PROCESS Name=\"S\">" + inner + "</SUB_PROCESS>";
        path = "S." + path;
    }
    EXPECT_THAT(findings(process(inner)),
                ElementsAre(path + ": dead-link: links to \"No.w\", and there is no such variable"));
}

TEST_F(Check, TenThousandBlocksAreToldWhole) {
    constexpr int kBlocks = 10000;
    std::string inner;
    std::string ways;
    for (int index = 0; index < kBlocks; ++index) {
        std::string const id = "B" + std::to_string(index);
        std::string const before = "B" + std::to_string(index == 0 ? kBlocks - 1 : index - 1);
        inner += place(id, linked("loop", before + ".loop") + linked("chain", index == 0 ? "" : before + ".chain") +
                               linked("dead", "No.where"));
        if (index > 0)
            ways += connector(before, id);
    }
    ProgramRun const run = check(process(inner + ways));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("p.xml: 10000 blocks, 10001 findings\n"));
}

} // namespace
