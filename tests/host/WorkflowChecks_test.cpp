#include "CheckFindings.h"
#include "Golden.h"
#include "Workflow.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace {

using namespace flowmere::test;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> findings(Workflow const& workflow) {
    return findingsOf(workflow.run({"check", "w"}), "w");
}

std::vector<std::string> findings(std::string const& text) {
    return findings(Workflow(text));
}

std::string group(std::string const& name, std::string const& inner, std::vector<std::string> const& to) {
    return state("super-state", name, to, inner);
}

TEST(WorkflowChecks, ASoundFolderHasNoFindings) {
    for (char const* const folder : {"order", "order-new"}) {
        ProgramRun const run = runProgram({"check", folder}, {.folder = dataFolder() / "host/workflow"});
        EXPECT_EQ(run.exitCode, 0) << run.out;
        EXPECT_EQ(run.err, "");
        EXPECT_THAT(run.out, HasSubstr("blocks, nothing found\n"));
    }
}

TEST(WorkflowChecks, AFaultyFolderIsToldWhole) {
    ProgramRun const text = runProgram({"check", "faulty"}, {.folder = dataFolder() / "host/workflow"});
    EXPECT_EQ(text.exitCode, 1);
    expectGolden("host/workflow/faulty.check.txt", text.out);
    ProgramRun const json = runProgram({"check", "--json", "faulty"}, {.folder = dataFolder() / "host/workflow"});
    EXPECT_EQ(json.exitCode, 1);
    expectGolden("host/workflow/faulty.check.json", json.out);
    EXPECT_EQ(Json::parse(json.out)["documents"][0]["findings"], Json::parse(json.out)["findings"].size());
}

TEST(WorkflowChecks, EveryRuleIsInTheHelp) {
    std::string const help = runProgram({"check", "--help"}).out;
    for (char const* const rule :
         {"start-state", "unknown-target", "state-transition", "duplicate-node", "slash-in-name", "fork-names",
          "fork-without-join", "join-branches", "no-task", "script-event", "event-type", "priority", "group-entry"})
        EXPECT_THAT(help, HasSubstr(rule));
}

TEST(WorkflowChecks, AScopeHasOneStartState) {
    EXPECT_THAT(findings(flow(taskNode("A", {"Z"}))), IsEmpty());
    EXPECT_THAT(findings(definition(taskNode("A", {"Z"}) + state("end-state", "Z"))),
                ElementsAre("(process): start-state: there is no start state, and the engine cannot begin"));
    EXPECT_THAT(findings(flow(state("start-state", "T", {"A"}) + taskNode("A", {"Z"}))),
                ElementsAre("T: unreachable-block: no connector leads to it; the flow begins at \"S\"",
                            "T: start-state: a second start state beside \"S\", and the engine refuses that"));
    EXPECT_THAT(findings(definition("")),
                ElementsAre("(process): start-state: there is no start state, and the engine cannot begin"));
}

TEST(WorkflowChecks, AGroupNeedsNoStartState) {
    EXPECT_THAT(findings(flow(group("A", taskNode("B", {"C"}) + taskNode("C"), {"Z"}))), IsEmpty());
}

TEST(WorkflowChecks, ASubProcessHasAStartStateOfItsOwn) {
    Workflow const sound(flow(taskNode("A", {"Z"}, "", "nodeType=\"basicSubProcess\"")));
    sound.add("w/A", flow(taskNode("A", {"Z"})));
    EXPECT_THAT(findings(sound), IsEmpty());
    sound.add("w/A", definition(taskNode("B", {"Z"}) + state("end-state", "Z")));
    EXPECT_THAT(findings(sound), ElementsAre("A: start-state: there is no start state, and the engine cannot begin"));
}

TEST(WorkflowChecks, ATransitionLeadsToANodeBesideIt) {
    EXPECT_THAT(findings(flow(taskNode("A", {"Review", "Z"}) + taskNode("Reviews", {"Z"}))),
                ElementsAre("A: unknown-target: a transition goes to \"Review\", and there is no such node beside it; "
                            "did you mean Reviews?",
                            "Reviews: unreachable-block: no connector leads to it; the flow begins at \"S\""));
    EXPECT_THAT(findings(flow(taskNode("A", {"z"}))),
                ElementsAre("A: unknown-target: a transition goes to \"z\", and there is no such node beside it; \"Z\" "
                            "differs in case"));
    EXPECT_THAT(
        findings(flow("<task-node name=\"A\"><task name=\"A\"/><transition/>" + transition("A", "Z") + "</task-node>")),
        ElementsAre("A: unknown-target: a transition names no node to go to"));
    // A node inside a group is none beside it.
    EXPECT_THAT(findings(flow(group("A", taskNode("B"), {"Z", "B"}))),
                ElementsAre("A: unknown-target: a transition goes to \"B\", and there is no such node beside it"));
}

TEST(WorkflowChecks, ATransitionWithSlashesMayLeadOutOfAGroup) {
    EXPECT_THAT(findings(flow(group("A", taskNode("B", {"../Z"}), {"Z"}))), IsEmpty());
    EXPECT_THAT(findings(flow(group("A", taskNode("B", {"/Z"}), {"Z"}))), IsEmpty());
    EXPECT_THAT(findings(flow(taskNode("A", {"G/B"}) + group("G", taskNode("B"), {"Z"}))), IsEmpty());
    EXPECT_THAT(findings(flow(group("A", taskNode("B", {"../Y"}), {"Z"}))),
                ElementsAre("A.B: unknown-target: a transition goes to \"../Y\", and there is no such node beside it"));
    EXPECT_THAT(findings(flow(taskNode("A", {"../Z", "Z"}))),
                ElementsAre("A: unknown-target: a transition goes to \"../Z\", and there is no such node beside it"));
}

TEST(WorkflowChecks, NothingLeadsIntoAStartStateOrOutOfAnEndState) {
    EXPECT_THAT(findings(flow(taskNode("A", {"S", "Z"}))),
                ElementsAre("A: state-transition: a transition goes to the start state \"S\", and the engine refuses "
                            "that"));
    EXPECT_THAT(findings(flow(taskNode("A", {"Y"}) + state("end-state", "Y", {"Z"}))),
                ElementsAre("Y: state-transition: a transition leaves the end state, and the engine refuses that"));
}

TEST(WorkflowChecks, ANameStandsOnceInAScope) {
    EXPECT_THAT(
        findings(flow(taskNode("A", {"Z"}) + taskNode("A", {"Z"}))),
        ElementsAre("A: unreachable-block: no connector leads to it; the flow begins at \"S\"",
                    "A: duplicate-node: the name \"A\" stands more than once here, and the engine refuses that"));
    // The same in a group is another scope.
    EXPECT_THAT(findings(flow(taskNode("A", {"G"}) + group("G", taskNode("A"), {"Z"}))), IsEmpty());
}

TEST(WorkflowChecks, NamesHoldNoSlash) {
    EXPECT_THAT(findings(flow(taskNode("A/B", {"Z"}), "A/B")),
                ElementsAre("A/B: slash-in-name: the name \"A/B\" holds a \"/\", which the engine takes for the end of "
                            "a scope"));
}

TEST(WorkflowChecks, BranchesOfAForkHaveNamesOfTheirOwn) {
    std::string const rest = taskNode("B", {"J"}) + taskNode("C", {"J"}) + state("join", "J", {"Z"});
    auto const fork = [](std::string const& one, std::string const& two) {
        return "<fork name=\"A\"><transition to=\"B\"" + one + "/><transition to=\"C\"" + two + "/></fork>";
    };
    EXPECT_THAT(findings(flow(fork(" name=\"b\"", " name=\"c\"") + rest)), IsEmpty());
    EXPECT_THAT(findings(flow(fork(" name=\"b\"", "") + rest)), IsEmpty());
    EXPECT_THAT(findings(flow(fork(" name=\"b\"", " name=\"b\"") + rest)),
                ElementsAre("A: fork-names: several transitions are named \"b\", and the engine keeps one branch of "
                            "them"));
    EXPECT_THAT(findings(flow(fork("", "") + rest)),
                ElementsAre("A: fork-names: several transitions have no name, and the engine keeps one branch of "
                            "them"));
    // Of a task they may be alike.
    EXPECT_THAT(findings(flow("<task-node name=\"A\"><task name=\"A\"/><transition to=\"B\" name=\"n\"/><transition "
                              "to=\"Z\" name=\"n\"/></task-node>" +
                              taskNode("B", {"Z"}))),
                IsEmpty());
}

TEST(WorkflowChecks, AForkHasAJoin) {
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C"}) + taskNode("B", {"J"}) + taskNode("C", {"J"}) +
                              state("join", "J", {"Z"}))),
                IsEmpty());
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C"}) + taskNode("B", {"Z"}) + taskNode("C", {"Z"}))),
                ElementsAre("A: fork-without-join: no join gathers its branches"));
    EXPECT_THAT(findings(flow(state("fork", "A"))),
                ElementsAre("A: fork-without-join: no transition leaves the fork",
                            "Z: unreachable-block: no connector leads to it; the flow begins at \"S\""));
}

TEST(WorkflowChecks, AJoinGathersAllBranches) {
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C", "D"}) + taskNode("B", {"J"}) + taskNode("C", {"Z"}) +
                              taskNode("D", {"Z"}) + state("join", "J", {"Z"}))),
                ElementsAre("J: join-branches: does not gather the branches to \"C\" and \"D\" of the fork \"A\""));
    // Straight from the fork, and by one of several ways.
    EXPECT_THAT(findings(flow(state("fork", "A", {"J", "C"}) + taskNode("C", {"D", "Z"}) + taskNode("D", {"J"}) +
                              state("join", "J", {"Z"}))),
                IsEmpty());
    // Two joins that have some each.
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C"}) + taskNode("B", {"J"}) + taskNode("C", {"K"}) +
                              state("join", "J", {"Z"}) + state("join", "K", {"Z"}))),
                ElementsAre("J: join-branches: does not gather the branch to \"C\" of the fork \"A\"",
                            "K: join-branches: does not gather the branch to \"B\" of the fork \"A\""));
    // One after the other has all.
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C"}) + taskNode("B", {"J", "K"}) + taskNode("C", {"J", "K"}) +
                              state("join", "J", {"Z"}) + state("join", "K", {"Z"}))),
                IsEmpty());
}

TEST(WorkflowChecks, NestedForksHaveNestedJoins) {
    std::string const inner = state("fork", "A", {"B", "C"}) + state("fork", "B", {"D", "E"}) + taskNode("C", {"K"}) +
                              taskNode("D", {"J"}) + taskNode("E", {"J"});
    EXPECT_THAT(findings(flow(inner + state("join", "J", {"K"}) + state("join", "K", {"Z"}))), IsEmpty());
    // One join for both gathers the inner branches alone.
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C"}) + state("fork", "B", {"D", "E"}) + taskNode("C", {"J"}) +
                              taskNode("D", {"J"}) + taskNode("E", {"J"}) + state("join", "J", {"Z"}))),
                ElementsAre("J: join-branches: does not gather the branch to \"B\" of the fork \"A\""));
    // An inner fork without a join is told of once.
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C"}) + state("fork", "B", {"D", "E"}) + taskNode("C", {"K"}) +
                              taskNode("D", {"Z"}) + taskNode("E", {"Z"}) + state("join", "K", {"Z"}))),
                ElementsAre("B: fork-without-join: no join gathers its branches"));
    // An inner join that leaves one branch out.
    EXPECT_THAT(findings(flow(inner + taskNode("F", {"Z"}) + state("join", "J", {"K"}) + state("join", "K", {"Z"}))),
                ElementsAre("F: unreachable-block: no connector leads to it; the flow begins at \"S\""));
}

TEST(WorkflowChecks, BranchesMayMeetTurnBackAndGoRound) {
    // Two branches that meet in front of the join.
    EXPECT_THAT(findings(flow(state("fork", "A", {"B", "C", "D"}) + taskNode("B", {"D"}) + taskNode("C", {"D"}) +
                              taskNode("D", {"J"}) + state("join", "J", {"Z"}))),
                IsEmpty());
    // A way back inside a branch, one in front of the fork, and one behind the join.
    EXPECT_THAT(findings(flow(taskNode("A", {"F"}) + state("fork", "F", {"B", "C"}) + taskNode("B", {"B2"}) +
                              taskNode("B2", {"B", "J"}) + taskNode("C", {"A", "J"}) + state("join", "J", {"D"}) +
                              taskNode("D", {"A", "Z"}))),
                IsEmpty());
    // A branch whose only way to the join leads over a node that others come to, too.
    EXPECT_THAT(findings(flow(taskNode("A", {"F", "C"}) + state("fork", "F", {"B", "C"}) + taskNode("B", {"J"}) +
                              taskNode("C", {"J"}) + state("join", "J", {"Z"}))),
                IsEmpty());
}

TEST(WorkflowChecks, ForksInGroupsJoinThere) {
    EXPECT_THAT(
        findings(flow(group(
            "A", state("fork", "F", {"B", "C"}) + taskNode("B", {"J"}) + taskNode("C", {"J"}) + state("join", "J"),
            {"Z"}))),
        IsEmpty());
    EXPECT_THAT(findings(flow(group("A", state("fork", "F", {"B", "C"}) + taskNode("B") + taskNode("C"), {"Z"}))),
                ElementsAre("A.F: fork-without-join: no join gathers its branches"));
    // Behind a sub-process, too, where the reader makes no connectors by itself.
    Workflow const workflow(flow(taskNode("A", {"G"}, "", "nodeType=\"basicSubProcess\"") +
                                 group("G", state("fork", "F", {"B", "C"}) + taskNode("B") + taskNode("C"), {"Z"})));
    workflow.add("w/A", flow(taskNode("A", {"Z"})));
    EXPECT_THAT(findings(workflow), ElementsAre("G.F: fork-without-join: no join gathers its branches"));
}

TEST(WorkflowChecks, ATaskNodeHasATask) {
    EXPECT_THAT(findings(flow("<task-node name=\"A\">" + transition("A", "Z") + "</task-node>")),
                ElementsAre("A: no-task: has no task: nobody gets anything to do"));
    // A task without a name takes that of its node; the reader tells that it does not know it.
    Workflow const nameless(flow("<task-node name=\"A\"><task/>" + transition("A", "Z") + "</task-node>"));
    ProgramRun const run = nameless.run({"check", "w"});
    EXPECT_EQ(run.out, "w: 3 blocks, nothing found\n");
    EXPECT_EQ(run.err, "flowmere: w/processdefinition.xml: A: the element <task> has no name\n");
    EXPECT_THAT(findings(flow("<decision name=\"A\">" + transition("A", "Z") + "</decision>")), IsEmpty());
}

TEST(WorkflowChecks, EventsHaveTypes) {
    EXPECT_THAT(
        findings(flow(taskNode("A", {"Z"}, "<event type=\"task-start\"><action name=\"n\" class=\"c\"/></event>"))),
        IsEmpty());
    EXPECT_THAT(findings(flow(taskNode("A", {"Z"}, "<event><action name=\"n\" class=\"c\"/></event>"))),
                ElementsAre("A: event-type: the event of the action \"n\" has no type, and the engine refuses that"));
    EXPECT_THAT(
        findings(flow(taskNode("A", {"Z"}, "<event type=\"task-start\"><script name=\"n\">x = 1</script></event>"))),
        ElementsAre("A: script-event: the event of the script \"n\" is written without a type, and the engine refuses "
                    "that"));
}

TEST(WorkflowChecks, APriorityIsAWordOrANumber) {
    auto const withPriority = [](std::string const& priority) {
        return flow("<task-node name=\"A\"><task name=\"A\" priority=\"" + priority + "\"/>" + transition("A", "Z") +
                    "</task-node>");
    };
    for (char const* const good :
         {"", "highest", "high", "normal", "low", "lowest", "High", "0", "3", "-2", "+1", "2147483647"})
        EXPECT_THAT(findings(withPriority(good)), IsEmpty()) << good;
    for (char const* const bad : {"urgent", "1.5", "2147483648", "-", "+-1", "3 "})
        EXPECT_THAT(findings(withPriority(bad)),
                    ElementsAre("A: priority: the priority \"" + std::string(bad) +
                                "\" is neither a number nor one of highest, high, normal, low and lowest"));
}

TEST(WorkflowChecks, AGroupIsEnteredAtItsFirstNode) {
    EXPECT_THAT(findings(flow(group("A", taskNode("B", {"C"}) + taskNode("C", {"B"}), {"Z"}))), IsEmpty());
    EXPECT_THAT(findings(flow(group("A", taskNode("C") + taskNode("B", {"C"}), {"Z"}))),
                ElementsAre("A: group-entry: the engine enters it at \"C\", the first in the file, and never comes to "
                            "\"B\"",
                            "A.B: unreachable-block: no connector leads to it; the flow begins at \"C\""));
    EXPECT_THAT(findings(flow(group("A", state("join", "J") + taskNode("B", {"J"}), {"Z"}))),
                ElementsAre("A: group-entry: the engine enters it at \"J\", the first in the file, which is a join",
                            "A.B: unreachable-block: no connector leads to it; the flow begins at \"J\""));
    EXPECT_THAT(findings(flow(group("A", "", {"Z"}))),
                ElementsAre("A: group-entry: is empty, and the engine enters a group at its first node"));
}

TEST(WorkflowChecks, OnlyModulesThatTheEngineCallsAreMissed) {
    auto const withModule = [](std::string const& module) {
        return flow(taskNode("A", {"Z"},
                             "<event type=\"task-start\"><action name=\"n\" class=\"c\"><modulePath>" + module +
                                 "</modulePath></action></event>"));
    };
    Workflow const workflow(withModule("A.scripts.A"));
    EXPECT_THAT(findings(workflow), ElementsAre("A: missing-script: there is no script A.scripts.A"));
    workflow.folder().write("w/A/scripts/A.py", "def go():\n    pass\n");
    EXPECT_THAT(findings(workflow), IsEmpty());
    workflow.folder().write("w/A/scripts/A.py", "def go(:\n");
    std::vector<std::string> const broken = findings(workflow);
    ASSERT_EQ(broken.size(), 1U);
    EXPECT_THAT(broken.front(), HasSubstr("A: script-syntax: w/A/scripts/A.py:1: "));
    EXPECT_THAT(findings(withModule("A.my-scripts.A")),
                ElementsAre("A: not-identifier: the part \"my-scripts\" is no Python name, in the script name "
                            "\"A.my-scripts.A\"",
                            "A: missing-script: there is no script A.my-scripts.A"));
    // As the writer names it outside of an execution root.
    Workflow const outside(withModule(".A.scripts.A"));
    outside.folder().write("w/A/scripts/A.py", "pass\n");
    EXPECT_THAT(findings(outside), IsEmpty());
}

TEST(WorkflowChecks, WhatTheReaderDoesNotKnowIsNoFault) {
    Workflow const workflow(definition(
        "<swimlane name=\"clerk\"/>" + state("start-state", "S", {"N"}) +
        "<node name=\"N\"><transition to=\"F\"/></node>" + state("fork", "F", {"B", "Q"}) + taskNode("B", {"J"}) +
        "<state name=\"Q\"><transition to=\"J\"/></state>" + state("join", "J", {"Z"}) + state("end-state", "Z")));
    ProgramRun const run = workflow.run({"check", "w"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "w: 5 blocks, nothing found\n");
    EXPECT_THAT(run.err, HasSubstr("flowmere: w/processdefinition.xml: the element <node> \"N\" is passed over, with "
                                   "all that it holds\n"));
    EXPECT_THAT(run.err, HasSubstr("flowmere: w: 1 thing besides that are passed over"));
    Json const json = Json::parse(workflow.run({"check", "--json", "w"}).out);
    EXPECT_EQ(json["documents"][0]["notes"].size(), 3U);
}

TEST(WorkflowChecks, ASubProcessNeedsItsFolder) {
    Workflow const workflow(flow(taskNode("A", {"Z"}, "", "nodeType=\"basicSubProcess\"")));
    EXPECT_THAT(findings(workflow),
                ElementsAre("A: missing-file: there is no file \"w/A/processdefinition.xml\", which "
                            "the sub-process needs"));
}

TEST(WorkflowChecks, TenThousandTasksAreToldWhole) {
    constexpr int kTasks = 10000;
    std::string inner;
    for (int index = 0; index < kTasks; ++index) {
        std::string const id = "T" + std::to_string(index);
        inner += taskNode(id, {index + 1 < kTasks ? "T" + std::to_string(index + 1) : "Z", "G/N" + id},
                          "<event><action name=\"n\" class=\"c\"/></event>");
    }
    ProgramRun const run = Workflow(flow(inner, "T0")).run({"check", "w"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("w: 10002 blocks, 20000 findings\n"));
}

TEST(WorkflowChecks, ThousandsOfNestedForksAreFollowed) {
    constexpr int kForks = 3000;
    std::string inner;
    for (int index = 0; index < kForks; ++index) {
        std::string const number = std::to_string(index);
        std::string const next = index + 1 < kForks ? "F" + std::to_string(index + 1) : "M";
        inner += state("fork", "F" + number, {next, "J" + number});
        inner += state("join", "J" + number, {index == 0 ? "Z" : "J" + std::to_string(index - 1)});
    }
    inner += taskNode("M", {"J" + std::to_string(kForks - 1)});
    EXPECT_THAT(findings(flow(inner, "F0")), IsEmpty());
}

} // namespace
