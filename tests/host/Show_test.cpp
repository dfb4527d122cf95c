#include "Golden.h"
#include "Study.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>

namespace {

using namespace flowmere::test;
using Json = nlohmann::ordered_json;

class Show : public testing::Test {
protected:
    Study study;

    ProgramRun show(std::string const& text, std::vector<std::string> const& more = {}) {
        study.document(text);
        std::vector<std::string> arguments{"show", "p.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runProgram(arguments, {.folder = study.path()});
    }
    Json json(std::string const& text) {
        ProgramRun const run = show(text, {"--json"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return Json::parse(run.out);
    }
};

std::string terminator(std::string const& id, std::string const& inner = "") {
    return "<TERMINATOR Name=\"" + id + "\">" + inner + "</TERMINATOR>\n";
}

TEST_F(Show, PrintsTheWholeTreeOfASoundDocument) {
    ProgramRun const run = runProgram({"show", "beam.xml"}, {.folder = dataFolder() / "host/sound"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    expectGolden("host/sound/beam.show.txt", run.out);
}

TEST_F(Show, PrintsTheWholeTreeOfAFaultyDocument) {
    ProgramRun const run = runProgram({"show", "plant.xml"}, {.folder = dataFolder() / "host/faulty"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "flowmere: plant.xml: Linked: the linked file nowhere.xml is missing\n");
    expectGolden("host/faulty/plant.show.txt", run.out);
}

TEST_F(Show, TellsTheSameAsJson) {
    ProgramRun const run = runProgram({"show", "beam.xml", "--json"}, {.folder = dataFolder() / "host/sound"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    expectGolden("host/sound/beam.show.json", withName(run.out, dataFolder().string(), "DATA"));
}

TEST_F(Show, NamesEveryKindOfBlockThatADocumentHolds) {
    struct Kind {
        char const* element;
        char const* shape;
        char const* name;
    };
    constexpr Kind kKinds[] = {
        {"BLOCK", "Rectangle", "block"},
        {"BLOCK", "Oval", "terminator"},
        {"BLOCK", "Decision", "decision"},
        {"BLOCK", "RoundRect", "round block"},
        {"TERMINATOR", "", "terminator"},
        {"DECISION", "", "decision"},
        {"SUB_PROCESS", "", "sub-process"},
        {"PROCESS", "", "process"},
        {"SUB_GRP", "", "folder"},
        {"CODE", "", "code"},
        {"task-node", "ApplicationTask", "task"},
        {"task-node", "UserTask", "user task"},
        {"BPM_EXECUTION_TASK", "", "automation task"},
        {"decision", "", "decision task"},
        {"start-state", "", "start state"},
        {"end-state", "", "end state"},
        {"fork", "", "fork"},
        {"join", "", "join"},
        {"BPM_MAIL", "", "mail"},
        {"BPM_ESB", "", "service"},
        {"process-definition", "", "workflow process"},
        {"super-state", "", "super-state"},
        {"task-node", "SubProcessLoop", "sub-process loop"},
        {"task-node", "DecisionLoop", "decision loop"},
        {"task-node", "SpawningLoop", "spawning loop"},
        {"task-node", "BasicSubProcess", "basic sub-process"},
        {"task-node", "ClientApplication", "application"},
    };
    std::string inner;
    for (Kind const& kind : kKinds)
        inner += std::string("<") + kind.element + " Name=\"N\"><DIMENSION Width=\"1\" Hight=\"1\" Shape=\"" +
                 kind.shape + "\"/></" + kind.element + ">\n";
    Json const shown = json(process(inner));
    ASSERT_EQ(shown["nodes"].size(), std::size(kKinds) + 1);
    for (std::size_t index = 0; index < std::size(kKinds); ++index)
        EXPECT_EQ(shown["nodes"][index + 1]["kind"], kKinds[index].name) << kKinds[index].element;
}

TEST_F(Show, ValuesComeThroughChainsOfLinks) {
    Json const shown = json(process(terminator("A", variable("x", "Double", "1.5")) +
                                    terminator("B", variable("x", "Double", "2", "Input", "A.x")) +
                                    terminator("C", variable("x", "Double", "3", "Input", "B.x"))));
    Json const& variable = shown["nodes"][3]["variables"][0];
    EXPECT_EQ(variable["value"], "1.5");
    EXPECT_EQ(variable["link"]["path"], "B.x");
    EXPECT_EQ(variable["link"]["state"], "well");
}

TEST_F(Show, ALinkWithoutAnEndShowsTheVariablesOwnValue) {
    ProgramRun const run = show(process(terminator(
        "A", variable("dead", "Int", "1", "Input", "No.where") + variable("behind", "Int", "2", "Input", "A.dead") +
                 variable("self", "Int", "3", "Input", "A.self") + variable("one", "Int", "4", "Input", "A.two") +
                 variable("two", "Int", "5", "Input", "A.one") + variable("into", "Int", "6", "Input", "A.two"))));
    EXPECT_EQ(run.out, "\"Test\": process, 1 block, 0 connectors, 6 variables\n"
                       "  A: terminator, first\n"
                       "      dead    Int  Input  = 1  <- No.where  (dead link)\n"
                       "      behind  Int  Input  = 2  <- A.dead  (dead link)\n"
                       "      self    Int  Input  = 3  <- A.self  (link loop)\n"
                       "      one     Int  Input  = 4  <- A.two  (link loop)\n"
                       "      two     Int  Input  = 5  <- A.one  (link loop)\n"
                       "      into    Int  Input  = 6  <- A.two  (link loop)\n");
}

TEST_F(Show, ScopedVariablesReadTheLevelAbove) {
    ProgramRun const run = show(process(
        "<SUB_PROCESS Name=\"S\">" + variable("v", "Int", "7") +
            "<TERMINATOR Name=\"T\"><VARIABLE Name=\"mine\" DataType=\"Int\" Scope=\"Parent\">v</VARIABLE>"
            "<VARIABLE Name=\"v\" DataType=\"Int\" Scope=\"Global\"/>"
            "<VARIABLE Name=\"no\" DataType=\"Int\" Scope=\"Parent\">nobody</VARIABLE></TERMINATOR></SUB_PROCESS>",
        ""));
    EXPECT_EQ(run.out, "\"Test\": process, 2 blocks, 0 connectors, 4 variables\n"
                       "  S: sub-process, first\n"
                       "      v  Int  Input  = 7\n"
                       "    T: terminator, first\n"
                       "        mine  Int  Input  = 7  <- S.v\n"
                       "        v     Int  Input  = 7  <- S.v\n"
                       "        no    Int  Input  = nobody  (scope Parent, found nothing)\n");
}

TEST_F(Show, TellsOfEachScriptWhetherItIsThere) {
    study.scriptOf("Found", "pass");
    Json const shown = json(process(block("Found") + block("Missing") + terminator("None") +
                                    "<BLOCK Name=\"Command\"><SCRIPT Name=\"c\" ScriptType=\"TCMD\"/></BLOCK>"));
    EXPECT_EQ(shown["nodes"][1]["script"]["name"], "s.Found");
    EXPECT_EQ(shown["nodes"][1]["script"]["missing"], false);
    EXPECT_EQ(shown["nodes"][1]["script"]["file"], (study.path() / "s/Found.py").string());
    EXPECT_EQ(shown["nodes"][2]["script"]["missing"], true);
    EXPECT_TRUE(shown["nodes"][2]["script"]["file"].is_null());
    EXPECT_TRUE(shown["nodes"][3]["script"].is_null());
    EXPECT_EQ(shown["nodes"][4]["script"]["type"], "TCMD");
}

TEST_F(Show, ScriptsAreFoundBelowFurtherFolders) {
    Study elsewhere;
    elsewhere.scriptOf("Far", "pass");
    EXPECT_THAT(show(process(block("Far"))).out, testing::HasSubstr("script s.Far (missing)"));
    EXPECT_THAT(show(process(block("Far")), {"--scripts", elsewhere.path().string()}).out,
                testing::Not(testing::HasSubstr("missing")));
}

TEST_F(Show, ControlCharactersDoNotReachTheTerminal) {
    ProgramRun const run = show(process(
        "<TERMINATOR Name=\"a&#10;b\"><VARIABLE Name=\"v&#9;w\" DataType=\"String\">x&#x9b;31m y&#x85;</VARIABLE>"
        "</TERMINATOR>"));
    EXPECT_EQ(run.out, "\"Test\": process, 1 block, 0 connectors, 1 variable\n"
                       "  a\\nb: terminator, first\n"
                       "      v\\tw  String  Input  = x\\x9b31m y\\x85\n");
}

TEST_F(Show, ALongValueIsCutForAReaderAndWholeInJson) {
    std::string const value = "\xC3\xA9" + std::string(200, 'x');
    std::string const text = process(terminator("T", variable("v", "String", value)));
    EXPECT_THAT(show(text).out, testing::HasSubstr("= \xC3\xA9" + std::string(99, 'x') + "... (201 characters)\n"));
    EXPECT_EQ(json(text)["nodes"][1]["variables"][0]["value"], value);
}

TEST_F(Show, ColumnsAreMeasuredInCharacters) {
    ProgramRun const run = show(process("", variable("\xC3\xA9\xC3\xA9", "Int", "1") + variable("ab", "Int", "2")));
    EXPECT_THAT(run.out, testing::HasSubstr("    \xC3\xA9\xC3\xA9  Int  Input  = 1\n    ab  Int  Input  = 2\n"));
}

TEST_F(Show, ArraysSaySo) {
    Json const shown =
        json(process("", variable("a", "IntArray", "[1]") + variable("b", "File", "f", "Input", "", true)));
    EXPECT_EQ(shown["nodes"][0]["variables"][0]["type"], "IntArray");
    EXPECT_EQ(shown["nodes"][0]["variables"][0]["array"], true);
    EXPECT_EQ(shown["nodes"][0]["variables"][1]["type"], "File array");
}

TEST_F(Show, FilesThatCannotBeReadAreOneLineAndExitCodeTwo) {
    study.folder().write("empty.xml", "");
    study.folder().write("cut.xml", "<Process Name=\"a\"><BLOCK Name=\"b\">");
    study.folder().write("kind.xml", "<?xml version=\"1.0\"?>\n<!-- <Process> -->\n<html><body/></html>");
    study.folder().write("text.xml", "Process");
    struct Case {
        char const* file;
        char const* cause;
    };
    for (auto const& [file, cause] :
         {Case{"nowhere.xml", "there is no such file"},
          Case{".", "is a folder without a workflow: there is no processdefinition.xml in it"},
          Case{"empty.xml", "is empty"},
          Case{"cut.xml",
               "line 1, column 35: no well-formed XML: input ended before all started tags were ended; last tag "
               "started is 'BLOCK'"},
          Case{"text.xml", "line 1, column 1: no well-formed XML: invalid document structure"},
          Case{"kind.xml", "is no process document: it holds a \"html\" and no blocks"},
          Case{"/dev/null", "is no regular file"}}) {
        for (char const* const command : {"show", "check"}) {
            ProgramRun const run = runProgram({command, file}, {.folder = study.path()});
            EXPECT_EQ(run.exitCode, 2) << file;
            EXPECT_EQ(run.out, "") << file;
            EXPECT_EQ(run.err, std::string("flowmere: ") + file + ": " + cause + "\n");
        }
    }
}

TEST_F(Show, ADocumentOfAnyRootIsShownWhenItHoldsBlocks) {
    EXPECT_EQ(show("<anything><TERMINATOR Name=\"T\"/></anything>").exitCode, 0);
    EXPECT_EQ(show("<Process/>").exitCode, 0);
    EXPECT_EQ(show("<Process/>").out, "\"Block Library\": process, 0 blocks, 0 connectors, 0 variables\n");
}

TEST_F(Show, WrongUseIsOneLineAndExitCodeTwo) {
    ProgramRun const run = runProgram({"show"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "flowmere: FILE is required (see flowmere show --help)\n");
}

TEST_F(Show, DeepDocumentsAreShownToTheLastLevel) {
    constexpr int kDepth = 900;
    std::string inner = "<TERMINATOR Name=\"Last\"/>";
    for (int level = 0; level < kDepth; ++level)
        inner = "<SUB_PROCESS Name=\"S\">" + inner + "</SUB_PROCESS>";
    Json const shown = json(process(inner));
    EXPECT_EQ(shown["blocks"], kDepth + 1);
    EXPECT_EQ(shown["nodes"].back()["id"], "Last");
    EXPECT_EQ(shown["nodes"].back()["level"], kDepth + 1);
}

} // namespace
