#include "Golden.h"
#include "Study.h"

#include "host/basics/Command.h"
#include "host/diff/Compare.h"
#include "host/diff/DiffText.h"
#include "host/diff/Snapshot.h"
#include "host/document/Document.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace flowmere::test;
using flowmere::host::compare;
using flowmere::host::Difference;
using flowmere::host::Document;
using flowmere::host::Snapshot;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

class Diff : public testing::Test {
protected:
    Study study;

    Snapshot snapshot(std::string const& text, std::string const& name = "in-process.xml") {
        Document const document(study.folder().write(name, text).string());
        return flowmere::host::snapshotOf(document.process());
    }

    // What changed from one document to the other, a line for each difference.
    Lines differences(std::string const& first, std::string const& second) {
        Snapshot const before = snapshot(first);
        Snapshot const after = snapshot(second);
        Lines lines;
        for (Difference const& difference : compare(before, after))
            lines.push_back(lineOf(difference));
        return lines;
    }
    // The same of documents that differ in what stands in the process.
    Lines inProcess(std::string const& first, std::string const& second) {
        return differences(process(first), process(second));
    }

    // The document as the program saves it.
    std::string saved(std::string const& text) {
        Document document(study.folder().write("unsaved.xml", text).string());
        document.save((study.path() / "saved.xml").string());
        return study.folder().read("saved.xml");
    }

    ProgramRun diff(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "diff");
        return runProgram(arguments, {.folder = study.path()});
    }
};

std::string readData(std::string const& name) {
    return readFile(dataFolder() / "host/diff" / name);
}

// A block that is plain: nothing but an identifier, and what is given.
std::string plain(std::string const& id, std::string const& inner = "") {
    return "<BLOCK Name=\"" + id + "\">" + inner + "</BLOCK>\n";
}

std::string group(std::string const& id, std::string const& inner) {
    return "<SUB_PROCESS Name=\"" + id + "\">" + inner + "</SUB_PROCESS>\n";
}

// --- Each attribute of a document

// One attribute value of a document's text.
struct Place {
    std::string element;
    std::string attribute;
    std::size_t begin;
    std::size_t length;
};

// All of them, as a saved document has them.
std::vector<Place> placesOf(std::string const& text) {
    std::vector<Place> places;
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
        if (text[at + 1] == '?' || text[at + 1] == '/')
            continue;
        std::size_t const end = text.find('>', at);
        std::string const element = text.substr(at + 1, text.find_first_of(" />\n", at) - at - 1);
        for (std::size_t equals = text.find('=', at); equals < end; equals = text.find('=', equals + 1)) {
            std::size_t const name = text.rfind(' ', equals) + 1;
            std::size_t const close = text.find('"', equals + 2);
            places.push_back({element, text.substr(name, equals - name), equals + 2, close - equals - 2});
            equals = close;
        }
    }
    return places;
}

struct AttributeCase {
    char const* element;
    char const* attribute;
    char const* value; // in place of the one of the document
    Lines lines;
};

std::vector<AttributeCase> const kAttributeCases = {
    {"Process", "Diagram", "false", {"~ (process) diagram: yes -> no"}},
    {"Process", "ModelDependency", "false", {"~ (process) model dependency: yes -> no"}},
    {"Process", "Name", "Richer", {"~ (process) caption: Rich -> Richer"}},
    {"Process", "ProcessFlowType", "", {"~ (process) flow type: flow -> \"\""}},
    {"Process", "ProcessID", "0", {"~ (process) process id: 4 -> 0"}},
    {"Process", "ProjectDirectory", "my projects", {"~ (process) project directory: projects -> \"my projects\""}},
    {"Process", "RandomExecute", "false", {"~ (process) random execution: yes -> no"}},
    {"Process", "RunOnLoad", "false", {"~ (process) run on load: yes -> no"}},
    {"Process", "SaveRestore", "drop", {"~ (process) save script: keep -> drop"}},
    {"Process", "ScriptCMD", "x", {"~ (process) command: pc -> x"}},
    {"Process", "ScriptCmdInterface", "x", {"~ (process) command interface: pi -> x"}},
    {"Process", "ScriptExecute", "x", {"~ (process) execute method: pe -> x"}},
    {"Process", "ScriptType", "JAVA", {"~ (process) save script type: TCMD -> JAVA"}},
    {"Process", "Type", "MSP", {"~ (process) project type: BPT -> MSP"}},
    {"Process", "VariableSave", "false", {"~ (process) variables saved: yes -> no"}},
    {"Process", "xmlns", "http://localhost/", {}},

    {"TEMPLATE_VARIABLE", "Array", "Y", {"~ .Choice array: no -> yes"}},
    {"TEMPLATE_VARIABLE", "Caption", "x", {}},
    {"TEMPLATE_VARIABLE", "DataType", "Int", {"~ .Choice type: String -> Int"}},
    {"TEMPLATE_VARIABLE", "Displayable", "false", {"~ .Choice displayed: yes -> no"}},
    {"TEMPLATE_VARIABLE", "IOType", "Output", {"~ .Choice status: Input -> Output"}},
    {"TEMPLATE_VARIABLE", "Name", "Other", {"- variable .Choice: String = one", "+ variable .Other: String = one"}},
    {"TEMPLATE_VARIABLE", "NumOptions", "7", {}},
    {"TEMPLATE_VARIABLE", "TemplateVariable", "false", {}},
    {"TEMPLATE_VARIABLE", "Type", "x", {}},
    {"TEMPLATE_VARIABLE", "UserName", "x", {}},
    {"TEMPLATE_VARIABLE", "Value", "two", {"~ .Choice value: one -> two"}},
    {"OPTION", "Value", "first, in order", {"~ .Choice options: one, two -> \"first, in order\", two"}},

    {"VARIABLE", "Array", "Y", {"~ .Top array: no -> yes"}},
    {"VARIABLE", "DataType", "Point2", {"~ .Top type: Double -> Point2"}},
    {"VARIABLE", "Deployed", "true", {"~ .Top deployed: no -> yes"}},
    {"VARIABLE", "DisplayName", "Top", {"~ .Top caption: \"The top\" -> Top"}},
    {"VARIABLE", "Displayable", "false", {"~ .Top displayed: yes -> no"}},
    {"VARIABLE", "EntityType", "", {"~ .Top entity type: Primitive -> \"\""}},
    {"VARIABLE", "Hidden", "true", {"~ .Top hidden: no -> yes"}},
    {"VARIABLE", "IOType", "In-and-Output", {"~ .Top status: Input -> In-and-Output"}},
    {"VARIABLE", "LinkPath", "A.Span", {"~ .Top link: \"\" -> A.Span"}},
    {"VARIABLE", "Name", "Up", {"- variable .Top: Double = 6.5", "+ variable .Up: Double = 6.5"}},
    {"VARIABLE", "Scope", "Public", {"~ .Top scope: Local -> Public"}},
    {"VARIABLE", "TemplateVariable", "true", {"~ .Top template: no -> yes"}},
    {"VARIABLE", "Type", "x", {}},

    {"BLOCK", "BlockString", "1st", {"~ A caption: First -> 1st"}},
    {"BLOCK", "DisplayStatus", "True", {}},
    {"BLOCK", "ExecutionStatus", "Failed", {"~ A state: Executed -> Failed"}},
    {"BLOCK", "Image", "x.png", {}},
    {"BLOCK", "IsImage", "false", {"~ A has image: yes -> no"}},
    {"BLOCK",
     "Name",
     "E",
     {"- connector A -> B, from grip 6 (bottom) to grip 2 (top)", "- block A \"First\"",
      "- variable A.Span: Double = 6.5 <- .Top", "+ block E \"First\"", "+ variable E.Span: Double = 6.5 <- .Top"}},
    {"BLOCK", "ProcessID", "8", {"~ A process id: 7 -> 8"}},
    {"BLOCK", "RelativeImage", "pictures\\b.png", {"~ A image: a.png -> pictures/b.png"}},
    {"BLOCK", "Run", "false", {"~ A runs: yes -> no"}},
    {"DIMENSION", "Hight", "0.750", {"~ A size: 3.00x0.50 -> 3.00x0.75"}},
    {"DIMENSION", "Order", "1", {"~ A position: 1.00,2.00 -> 0.72,11.20", "~ A size: 3.00x0.50 -> 2.16x0.36"}},
    {"DIMENSION", "Point_X", "-1.500", {"~ A position: 1.00,2.00 -> -1.50,2.00"}},
    {"DIMENSION", "Point_Y", "2.250", {"~ A position: 1.00,2.00 -> 1.00,2.25"}},
    {"DIMENSION", "ReferencePoint_X", "1", {}},
    {"DIMENSION", "ReferencePoint_Y", "1", {}},
    {"DIMENSION", "Shape", "Oval", {"~ A kind: block -> terminator"}},
    {"DIMENSION", "Version", "2", {}},
    {"DIMENSION", "Width", "2.000", {"~ A size: 3.00x0.50 -> 2.00x0.50"}},
    {"FLAGS", "Break", "false", {"~ A break: yes -> no"}},
    {"FLAGS", "Reference", "0", {"~ A reference: 1 -> 0"}},
    {"FLAGS", "Skip", "false", {"~ A skip: yes -> no"}},
    {"FLAGS", "Undo", "false", {"~ A undo: yes -> no"}},
    {"PORT", "InPort", "x", {"~ A in port: in -> x"}},
    {"PORT", "NextPort", "x", {"~ A next port: next -> x"}},
    {"PORT", "OutPort", "x", {"~ A out port: out -> x"}},
    {"OUT_PORT", "Dx", "1", {}},
    {"OUT_PORT", "Dy", "1", {}},
    {"OUT_PORT", "OutPort", "x", {}},
    {"IN_PORT", "Dx", "1", {}},
    {"IN_PORT", "Dy", "1", {}},
    {"IN_PORT", "InPort", "x", {}},
    {"HELP", "Description", "x", {"~ A description: \"what it does\" -> x"}},
    {"HELP", "KnowledgeAdvisory", "x", {"~ A help file: a.html -> x"}},
    {"HELP", "MicroHelp", "x", {"~ A tip: \"a tip\" -> x"}},
    {"SCRIPT", "Name", "study.B", {"~ A script: study.A -> study.B"}},
    {"SCRIPT", "ScriptCMD", "x", {"~ A command: cc -> x"}},
    {"SCRIPT", "ScriptCmdInterface", "x", {"~ A command interface: ci -> x"}},
    {"SCRIPT", "ScriptExecute", "x", {"~ A execute method: ce -> x"}},
    {"SCRIPT", "ScriptType", "TCMD_V2", {"~ A script type: TCMD -> TCMD_V2"}},
    {"BORDER", "ColorFill", "255", {"~ A fill colour: 0x00FF00 -> 0x0000FF"}},
    {"BORDER", "ColorLine", "0", {"~ A line colour: 0x0000FF -> 0x000000"}},
    {"BORDER", "DrawBorder", "0", {"~ A border: yes -> no"}},
    {"BORDER", "FillColor", "0", {"~ A filled: yes -> no"}},
    {"BORDER", "LinePenType", "2", {"~ A line type: 1 -> 2"}},
    {"BORDER", "LineThickness", "0", {"~ A line thickness: 3 -> 0"}},
    {"BORDER", "Version", "0", {"~ A border: yes -> no", "~ A fill colour: 0x00FF00 -> 0xFFDFC6"}},
    {"FONT", "Bold", "0", {"~ A bold: yes -> no"}},
    {"FONT", "FontColor", "1", {"~ A font colour: 0x000080 -> 0x000001"}},
    {"FONT", "FontName", "Sans", {"~ A font: Serif -> Sans"}},
    {"FONT", "FontSize", "14", {"~ A font size: 12 -> 14"}},
    {"FONT", "Format", "38", {"~ A text format: 37 -> 38"}},
    {"FONT", "Italics", "0", {"~ A italics: yes -> no"}},
    {"FONT", "Version", "0", {"~ A font colour: 0x000080 -> 0x000000"}},

    {"task-node", "BlockString", "x", {"~ T caption: Task -> x"}},
    {"task-node", "DisplayStatus", "True", {}},
    {"task-node", "ExecutionStatus", "Pending", {"~ T state: \"\" -> Pending"}},
    {"task-node", "FailedReason", "no money", {"~ T failed reason: \"no time\" -> \"no money\""}},
    {"task-node", "Image", "x", {}},
    {"task-node", "IsImage", "true", {"~ T has image: no -> yes"}},
    {"task-node", "Name", "U", {"- task T \"Task\"", "+ task U \"Task\""}},
    {"task-node", "ProcessID", "1", {"~ T process id: 0 -> 1"}},
    {"task-node", "RelativeImage", "x", {"~ T image: \"\" -> x"}},
    {"task-node", "Run", "false", {"~ T runs: yes -> no"}},
    {"BPM", "Description", "x", {"~ T task description: \"the task\" -> x"}},
    {"APPLICATION", "Deployment", "x", {"~ T deployment: here -> x"}},
    {"APPLICATION", "Executable", "x", {"~ T executable: app.exe -> x"}},
    {"APPLICATION", "Name", "x", {"~ T application: app -> x"}},

    {"SUB_PROCESS", "BlockString", "x", {"~ Sub caption: Inner -> x"}},
    {"SUB_PROCESS", "DisplayStatus", "x", {}},
    {"SUB_PROCESS", "ExecutionStatus", "Stop", {"~ Sub state: \"\" -> Stop"}},
    {"SUB_PROCESS", "Image", "x", {}},
    {"SUB_PROCESS", "IsImage", "true", {"~ Sub has image: no -> yes"}},
    {"SUB_PROCESS",
     "Name",
     "Bus",
     {"- sub-process Sub \"Inner\"", "- connector Sub.C -> Sub.D, from grip 6 (bottom) to grip 2 (top)",
      "> block Sub.C moved to Bus.C", "> block Sub.D moved to Bus.D", "+ sub-process Bus \"Inner\"",
      "+ connector Bus.C -> Bus.D, from grip 6 (bottom) to grip 2 (top)"}},
    {"SUB_PROCESS", "ProcessID", "1", {"~ Sub process id: 0 -> 1"}},
    {"SUB_PROCESS", "RelativeImage", "x", {"~ Sub image: \"\" -> x"}},
    {"SUB_PROCESS", "Run", "true", {"~ Sub runs: no -> yes"}},

    {"SUB_GRP", "BlockString", "Box", {"~ \"Folder\" caption: Folder -> Box"}},
    {"SUB_GRP", "DisplayStatus", "x", {}},
    {"SUB_GRP", "Name", "Box", {"~ \"Folder\" caption: Folder -> Box"}},
    {"SUB_GRP", "ProcessID", "1", {}},

    {"CONNECTOR", "AutoConnector", "0", {}},
    {"CONNECTOR", "DisplayState", "true", {}},
    {"CONNECTOR",
     "EndBlock",
     "C",
     {"- connector Sub.C -> Sub.D, from grip 6 (bottom) to grip 2 (top)",
      "+ connector Sub.C -> Sub.C, from grip 6 (bottom) to grip 2 (top)"}},
    {"CONNECTOR", "EndHandle", "4", {"~ connector Sub.C -> Sub.D end: grip 2 (top) -> grip 4 (right)"}},
    {"CONNECTOR", "EndPortName", "x", {}},
    {"CONNECTOR", "NumPoints", "7", {}},
    {"CONNECTOR", "Order", "0", {}},
    {"CONNECTOR",
     "StartBlock",
     "D",
     {"- connector Sub.C -> Sub.D, from grip 6 (bottom) to grip 2 (top)",
      "+ connector Sub.D -> Sub.D, from grip 6 (bottom) to grip 2 (top)"}},
    {"CONNECTOR", "StartHandle", "12", {"~ connector Sub.C -> Sub.D start: grip 6 (bottom) -> grip 12"}},
    {"CONNECTOR", "StartPortName", "x", {}},
    {"CONNECTOR", "Version", "2", {}},
    {"POINT",
     "Location_X",
     "1.250",
     {"~ connector A -> B route: \"1.00,2.00 1.50,2.50 4.00,5.00\" -> \"1.25,2.00 1.50,2.50 4.00,5.00\""}},
    {"POINT",
     "Location_Y",
     "2.250",
     {"~ connector A -> B route: \"1.00,2.00 1.50,2.50 4.00,5.00\" -> \"1.00,2.25 1.50,2.50 4.00,5.00\""}},
};

TEST_F(Diff, TellsEachAttributeThatIsWrittenAndNothingElse) {
    std::string const text = saved(readData("rich.xml"));
    std::map<std::pair<std::string, std::string>, AttributeCase const*> cases;
    for (AttributeCase const& one : kAttributeCases)
        cases[{one.element, one.attribute}] = &one;
    std::set<std::pair<std::string, std::string>> met;
    for (Place const& place : placesOf(text)) {
        // One of each will do; all blocks have the same.
        if (!met.insert({place.element, place.attribute}).second)
            continue;
        auto const entry = cases.find({place.element, place.attribute});
        if (entry == cases.end()) {
            ADD_FAILURE() << "nobody tells what a change of " << place.element << " " << place.attribute << " gives";
            continue;
        }
        AttributeCase const& one = *entry->second;
        std::string changed = text;
        changed.replace(place.begin, place.length, one.value);
        ASSERT_NE(changed, text) << place.element << " " << place.attribute;
        EXPECT_THAT(differences(text, changed), ElementsAreArray(one.lines)) << place.element << " " << place.attribute;
    }
    EXPECT_EQ(met.size(), kAttributeCases.size()) << "an attribute of the table is not in the document";
}

TEST_F(Diff, ADocumentThatIsSavedAgainIsTheSame) {
    std::string const text = readData("rich.xml");
    std::string const once = saved(text);
    EXPECT_THAT(differences(text, once), IsEmpty());
    EXPECT_THAT(differences(once, saved(once)), IsEmpty());
}

// --- Nodes

TEST_F(Diff, EqualDocumentsHaveNoDifferences) {
    std::string const text = process(plain("A", variable("x", "Int", "1")) + connector("A", "A"));
    EXPECT_THAT(differences(text, text), IsEmpty());
    EXPECT_THAT(inProcess("", ""), IsEmpty());
}

TEST_F(Diff, ABlockThatCameOrWentIsToldWithAllThatIsInIt) {
    std::string const small = group("Sub", plain("A"));
    std::string const large =
        group("Sub", plain("A") + "<TERMINATOR Name=\"B\" BlockString=\"The end\">" + variable("x", "Int", "1") +
                         variable("y", "String", "two words", "Output", "A.x") + "</TERMINATOR>" +
                         connector("A", "B")) +
        group("More", plain("C") + plain("D") + connector("C", "D"));
    EXPECT_THAT(inProcess(small, large),
                ElementsAre("+ connector Sub.A -> Sub.B, from grip 6 (bottom) to grip 2 (top)",
                            "+ terminator Sub.B \"The end\"", "+ variable Sub.B.x: Int = 1",
                            "+ variable Sub.B.y: String = \"two words\" <- A.x", "+ sub-process More",
                            "+ connector More.C -> More.D, from grip 6 (bottom) to grip 2 (top)", "+ block More.C",
                            "+ block More.D"));
    EXPECT_THAT(inProcess(large, small),
                ElementsAre("- connector Sub.A -> Sub.B, from grip 6 (bottom) to grip 2 (top)",
                            "- terminator Sub.B \"The end\"", "- variable Sub.B.x: Int = 1",
                            "- variable Sub.B.y: String = \"two words\" <- A.x", "- sub-process More",
                            "- connector More.C -> More.D, from grip 6 (bottom) to grip 2 (top)", "- block More.C",
                            "- block More.D"));
}

TEST_F(Diff, AnotherKindIsAChangeOfTheNode) {
    EXPECT_THAT(inProcess(plain("A", variable("x", "Int", "1")),
                          "<DECISION Name=\"A\">" + variable("x", "Int", "2") + "</DECISION>"),
                ElementsAre("~ A kind: block -> decision", "~ A.x value: 1 -> 2"));
}

TEST_F(Diff, OfAProcessInPlaceOfABlockOnlyCommonAttributesAreCompared) {
    EXPECT_THAT(inProcess("<SUB_PROCESS Name=\"A\" BlockString=\"Old\" Run=\"true\"/>",
                          "<PROCESS Name=\"A\" BlockString=\"New\" Type=\"MSP\"/>"),
                ElementsAre("~ A kind: sub-process -> process", "~ A caption: Old -> New"));
}

TEST_F(Diff, ABlockThatWasMovedIsToldOnceAndComparedInItsNewPlace) {
    std::string const block = plain("X", variable("v", "Int", "1"));
    EXPECT_THAT(inProcess(group("One", block + plain("A")) + group("Two", plain("B")),
                          group("One", plain("A")) + group("Two", plain("B") + plain("X", variable("v", "Int", "2")))),
                ElementsAre("> block One.X moved to Two.X", "~ One.X.v value: 1 -> 2"));
}

TEST_F(Diff, WhatIsInAMovedContainerComesAlong) {
    EXPECT_THAT(inProcess(group("Sub", plain("A") + plain("B")) + group("Other", ""),
                          group("Other", group("Sub", plain("A") + plain("C")))),
                ElementsAre("> sub-process Sub moved to Other.Sub", "- block Sub.B", "+ block Other.Sub.C"));
}

TEST_F(Diff, TwoContainersThatChangeInsideOutAreMoved) {
    EXPECT_THAT(inProcess(group("X", group("Y", "")), group("Y", group("X", ""))),
                ElementsAre("> sub-process X moved to Y.X", "> sub-process X.Y moved to Y"));
}

TEST_F(Diff, WhatCouldHaveComeFromTwoPlacesIsNotMoved) {
    EXPECT_THAT(inProcess(group("One", plain("X")) + group("Two", plain("X")) + group("Three", ""),
                          group("One", "") + group("Two", "") + group("Three", plain("X"))),
                ElementsAre("- block One.X", "- block Two.X", "+ block Three.X"));
    EXPECT_THAT(inProcess(group("One", plain("X")) + group("Two", ""),
                          group("One", "") + group("Two", "<DECISION Name=\"X\"/>")),
                ElementsAre("- block One.X", "+ decision Two.X"));
}

TEST_F(Diff, AnotherOrderIsToldOfAsFewBlocksAsCanBe) {
    std::string const text = plain("A") + plain("B") + plain("C") + plain("D");
    EXPECT_THAT(inProcess(text, plain("B") + plain("C") + plain("D") + plain("A")),
                ElementsAre("~ A place: first -> behind D"));
    EXPECT_THAT(inProcess(text, plain("D") + plain("A") + plain("B") + plain("C")),
                ElementsAre("~ D place: behind C -> first"));
    // What comes in between changes no order.
    EXPECT_THAT(inProcess(text, plain("New") + plain("A") + plain("C") + plain("D")),
                ElementsAre("- block B", "+ block New"));
}

TEST_F(Diff, SeveralBlocksOfOneIdentifierArePairedInOrder) {
    std::string const first = plain("A", variable("x", "Int", "1")) + plain("A", variable("x", "Int", "2"));
    EXPECT_THAT(inProcess(first, first), IsEmpty());
    EXPECT_THAT(inProcess(first, plain("A", variable("x", "Int", "1")) + plain("A", variable("x", "Int", "3"))),
                ElementsAre("~ A#2.x value: 2 -> 3"));
    EXPECT_THAT(inProcess(first, plain("A", variable("x", "Int", "1"))),
                ElementsAre("- block A#2", "- variable A#2.x: Int = 2"));
    EXPECT_THAT(inProcess(first, first + plain("A")), ElementsAre("+ block A#3"));
    // Identifiers that look like the mark are told from it.
    EXPECT_THAT(inProcess(first + plain("A#2"), first + plain("A#2")), IsEmpty());
}

TEST_F(Diff, IdentifiersThatDifferInCaseAreTwo) {
    EXPECT_THAT(inProcess(plain("Load"), plain("load")), ElementsAre("- block Load", "+ block load"));
}

TEST_F(Diff, NodesWithoutAnIdentifierGoByTheirCaptions) {
    auto const folder = [](std::string const& name, std::string const& inner = "") {
        return "<SUB_GRP Name=\"" + name + "\">" + inner + "</SUB_GRP>\n";
    };
    EXPECT_THAT(inProcess(folder("One") + folder("Two", plain("A")), folder("One") + folder("Two", plain("B"))),
                ElementsAre("- block \"Two\".A", "+ block \"Two\".B"));
    EXPECT_THAT(inProcess(folder("One", plain("A")), folder("Uno", plain("A"))),
                ElementsAre("~ \"One\" caption: One -> Uno"));
    EXPECT_THAT(inProcess(folder("One"), folder("One") + folder("Two")), ElementsAre("+ folder \"Two\""));
    EXPECT_THAT(inProcess("<CODE Name=\"c\">a</CODE>", "<CODE Name=\"c\">b</CODE>"),
                ElementsAre("~ \"c\" code: a -> b"));
    EXPECT_THAT(inProcess("<BLOCK/>", "<BLOCK/><BLOCK/>"), ElementsAre("+ block (nameless)#2"));
}

TEST_F(Diff, BlocksThatADocumentDoesNotKeepAreComparedAllTheSame) {
    EXPECT_THAT(inProcess("<BPM_USER_TASK Name=\"U\"/>", ""), ElementsAre("- user task U"));
    EXPECT_THAT(inProcess("<BPM_USER_TASK Name=\"U\"><APPLICATION Name=\"a\"/></BPM_USER_TASK>",
                          "<BPM_USER_TASK Name=\"U\"><APPLICATION Name=\"b\"/></BPM_USER_TASK>"),
                ElementsAre("~ U application: a -> b"));
}

TEST_F(Diff, SwitchesThatAreReadAndNeverWrittenCount) {
    EXPECT_THAT(inProcess(plain("A", "<BORDER Version=\"1\"/><FONT Version=\"1\"/>"),
                          plain("A", "<BORDER Version=\"1\" Visible=\"1\"/>"
                                     "<FONT Version=\"1\" StrikeOut=\"1\" Underline=\"1\"/>")),
                ElementsAre("~ A border visible: no -> yes", "~ A underlined: no -> yes", "~ A struck out: no -> yes"));
}

TEST_F(Diff, TheOldFormsOfADocumentAreTheSameAsTheNew) {
    EXPECT_THAT(inProcess("<DECISION Name=\"A\"/>", "<BLOCK Name=\"A\"><DIMENSION Shape=\"Diamond\"/></BLOCK>"),
                IsEmpty());
    EXPECT_THAT(inProcess(plain("A", "<DIMENSION Point_X=\"1\" Point_Y=\"1\" Width=\"1\" Height=\"2\"/>"),
                          plain("A", "<DIMENSION Point_X=\"1\" Point_Y=\"1\" Width=\"1\" Hight=\"2\"/>")),
                IsEmpty());
    EXPECT_THAT(inProcess(plain("A") + plain("B") + "<CONNECTION StartBlock=\"A\" EndBlock=\"B\"/>",
                          plain("A") + plain("B") + connector("A", "B")),
                IsEmpty());
    // A nameless script is that of the block's name.
    EXPECT_THAT(inProcess(plain("A", "<SCRIPT Name=\"\"/>"), plain("A", "<SCRIPT Name=\"A\"/>")), IsEmpty());
}

TEST_F(Diff, TheStateOfAContainerThatIsThatOfItsBlocksIsToldOfTheBlocksAlone) {
    auto const loop = [](std::string const& state) {
        return "<task-node Name=\"T\"><DIMENSION Shape=\"BasicSubProcess\"/><BLOCK Name=\"A\" ExecutionStatus=\"" +
               state + "\"/></task-node>";
    };
    EXPECT_THAT(inProcess(loop("Pending"), loop("Executed")), ElementsAre("~ T.A state: Pending -> Executed"));
}

TEST_F(Diff, WhatAnotherFileBringsInIsCompared) {
    study.folder().write("part.xml", process(plain("Inner", variable("x", "Int", "1"))));
    study.folder().write("other.xml", process(plain("Inner", variable("x", "Int", "2"))));
    EXPECT_THAT(inProcess("<PROCESS Name=\"Part\" FILE=\"part.xml\"/>", "<PROCESS Name=\"Part\" FILE=\"other.xml\"/>"),
                ElementsAre("~ \"Part\" file: part.xml -> other.xml", "~ \"Part\".Inner.x value: 1 -> 2"));
}

// --- Variables

TEST_F(Diff, VariablesThatCameWentOrChangedAreToldByPath) {
    EXPECT_THAT(differences(process(plain("A", variable("x", "Int", "1") + variable("y", "Int", "2")),
                                    variable("Top", "Double", "6.5")),
                            process(plain("A", variable("y", "Double", "2") + variable("z", "String", "")),
                                    variable("Top", "Double", "7"))),
                ElementsAre("~ .Top value: 6.5 -> 7", "- variable A.x: Int = 1", "~ A.y type: Int -> Double",
                            "+ variable A.z: String"));
}

TEST_F(Diff, VariablesOfOneNameArePairedInOrder) {
    EXPECT_THAT(inProcess(plain("A", variable("x", "Int", "1") + variable("x", "Int", "2")),
                          plain("A", variable("x", "Int", "1") + variable("x", "Int", "3"))),
                ElementsAre("~ A.x#2 value: 2 -> 3"));
}

TEST_F(Diff, AnotherOrderOfVariablesIsTold) {
    EXPECT_THAT(inProcess(plain("A", variable("x", "Int", "") + variable("y", "Int", "") + variable("z", "Int", "")),
                          plain("A", variable("y", "Int", "") + variable("z", "Int", "") + variable("x", "Int", ""))),
                ElementsAre("~ A.x place: first -> behind z"));
}

TEST_F(Diff, ALinkIsToldAndAlsoTheValueThatTheVariableKeeps) {
    EXPECT_THAT(inProcess(plain("A", variable("x", "Int", "1")) + plain("B", variable("y", "Int", "1", "Input", "A.x")),
                          plain("A", variable("x", "Int", "2")) + plain("B", variable("y", "Int", "1"))),
                ElementsAre("~ A.x value: 1 -> 2", "~ B.y link: A.x -> \"\""));
}

TEST_F(Diff, WhatIsWrittenInAnotherWayIsNoDifference) {
    // A document turns backslashes of values around, and has values on one line.
    EXPECT_THAT(inProcess(plain("A", variable("x", "String", "C:\\data\\a.txt")),
                          plain("A", variable("x", "String", " C:/data/a.txt\n"))),
                IsEmpty());
    EXPECT_THAT(inProcess(plain("A", "<VARIABLE Name=\"x\"/>"), plain("A", variable("x", "String", ""))), IsEmpty());
}

TEST_F(Diff, NamelessVariablesDoNotCount) {
    EXPECT_THAT(inProcess(plain("A", variable("", "Int", "1")), plain("A")), IsEmpty());
}

TEST_F(Diff, OptionsOfATemplateVariableAreAList) {
    auto const choice = [](std::string const& options) {
        return "<Process><TEMPLATE_VARIABLES><TEMPLATE_VARIABLE Name=\"Choice\">" + options +
               "</TEMPLATE_VARIABLE></TEMPLATE_VARIABLES></Process>";
    };
    EXPECT_THAT(differences(choice(""), choice("<OPTION Value=\"a\"/><OPTION Value=\"b c\"/>")),
                ElementsAre("~ .Choice options: none -> a, \"b c\""));
    EXPECT_THAT(differences(choice("<OPTION Value=\"a\"/><OPTION Value=\"b\"/>"),
                            choice("<OPTION Value=\"b\"/><OPTION Value=\"a\"/>")),
                ElementsAre("~ .Choice options: a, b -> b, a"));
}

TEST_F(Diff, OfALongValueThePlaceThatDiffersIsShown) {
    std::string const numbers(300, '7');
    std::string const begin(200, '7');
    Lines const lines = inProcess(plain("A", variable("x", "String", numbers)),
                                  plain("A", variable("x", "String", begin + "8" + numbers)));
    EXPECT_THAT(lines, ElementsAre("~ A.x value: ..." + std::string(100, '7') + "... -> ..." + std::string(20, '7') +
                                   "8" + std::string(79, '7') + "..."));
}

TEST_F(Diff, ALongValueIsCutBetweenCharacters) {
    std::string word;
    for (int count = 0; count < 80; ++count)
        word += "\u00e4";
    Lines const lines =
        inProcess(plain("A", variable("x", "String", word + "a")), plain("A", variable("x", "String", word + "b")));
    std::string shown;
    for (int count = 0; count < 10; ++count)
        shown += "\u00e4";
    EXPECT_THAT(lines, ElementsAre("~ A.x value: ..." + shown + "a -> ..." + shown + "b"));
}

TEST_F(Diff, ControlCharactersOfTextsDoNotReachTheTerminal) {
    EXPECT_THAT(inProcess(plain("A"), plain("A", "<HELP Description=\"a&#9;b&#10;&#x9b;\"/>")),
                ElementsAre("~ A description: \"\" -> a\\tb\\n\\x9b"));
}

// --- Connectors

TEST_F(Diff, ConnectorsThatCameWentOrChangedAreTold) {
    std::string const blocks = plain("A") + plain("B") + plain("C");
    EXPECT_THAT(inProcess(blocks + connector("A", "B") + connector("B", "C"),
                          blocks + connector("A", "B", 4, 8) + connector("A", "C", 99, 0)),
                ElementsAre("~ connector A -> B start: grip 6 (bottom) -> grip 4 (right)",
                            "~ connector A -> B end: grip 2 (top) -> grip 8 (left)",
                            "- connector B -> C, from grip 6 (bottom) to grip 2 (top)",
                            "+ connector A -> C, from grip 99 to grip 0"));
}

TEST_F(Diff, AnotherOrderOfConnectorsIsTold) {
    std::string const blocks = plain("A") + plain("B") + plain("C");
    EXPECT_THAT(inProcess(blocks + connector("A", "B") + connector("A", "C"),
                          blocks + connector("A", "C") + connector("A", "B")),
                ElementsAre("~ connector A -> B place: first -> behind A -> C"));
}

TEST_F(Diff, ARouteIsComparedPointByPoint) {
    auto const routed = [](std::string const& points) {
        return plain("A") + plain("B") + "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\">" + points +
               "</CONNECTOR>";
    };
    std::string const one = "<POINT Location_X=\"0.000\" Location_Y=\"13.000\"/>";
    std::string const two = "<POINT Location_X=\"1.000\" Location_Y=\"-0.500\"/>";
    EXPECT_THAT(inProcess(routed(one + two), routed(one + two)), IsEmpty());
    EXPECT_THAT(inProcess(routed(""), routed(one + two)),
                ElementsAre("~ connector A -> B route: \"\" -> \"0.00,13.00 1.00,-0.50\""));
    // A point that stands twice in a row is written once.
    EXPECT_THAT(inProcess(routed(one + one + two), routed(one + two + two)), IsEmpty());
    std::string const text = process(routed(one + two));
    EXPECT_THAT(differences(text, saved(text)), IsEmpty());
}

// --- The comparison by itself

TEST(Compare, DoesNothingWithEmptySnapshots) {
    EXPECT_THAT(compare({}, {}), IsEmpty());
}

TEST(Compare, PointsIntoTheSnapshots) {
    Snapshot first;
    first.nodes.emplace_back();
    Snapshot second = first;
    flowmere::host::VariableFacts added;
    added.key = added.name = "x";
    second.nodes.front().variables.push_back(added);
    std::vector<Difference> const found = compare(first, second);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().change, Difference::Change::Added);
    EXPECT_EQ(found.front().subject, Difference::Subject::Variable);
    EXPECT_EQ(found.front().path, ".x");
    EXPECT_EQ(found.front().node, &second.nodes.front());
    EXPECT_EQ(found.front().variable, &second.nodes.front().variables.front());
}

TEST(Compare, NamesOfAttributesAreNeverGivenTwice) {
    for (auto const infos : {flowmere::host::nodeAttributes(), flowmere::host::variableAttributes()}) {
        std::set<std::string_view> names;
        for (flowmere::host::AttributeInfo const& info : infos)
            EXPECT_TRUE(names.insert(info.name).second) << info.name;
    }
}

TEST_F(Diff, DeepDocumentsAreComparedWithoutEnd) {
    std::string inner = plain("A");
    std::string other = plain("B");
    for (int level = 0; level < 900; ++level) {
        inner = group("S", inner);
        other = group("S", other);
    }
    Lines const lines = inProcess(inner, other);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("- block S.S."));
    EXPECT_TRUE(lines[1].ends_with(".S.B"));
}

// --- The command

TEST_F(Diff, PrintsEverythingThatChanged) {
    ProgramRun const run = runProgram({"diff", "old.xml", "new.xml"}, {.folder = dataFolder() / "host/diff"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "");
    expectGolden("host/diff/old-new.txt", run.out);
}

TEST_F(Diff, TellsTheSameAsJson) {
    ProgramRun const run = runProgram({"diff", "--json", "old.xml", "new.xml"}, {.folder = dataFolder() / "host/diff"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "");
    expectGolden("host/diff/old-new.json", run.out);
}

TEST_F(Diff, HasTheSameNumberOfLinesAndOfJsonEntries) {
    ProgramRun const lines = runProgram({"diff", "old.xml", "new.xml"}, {.folder = dataFolder() / "host/diff"});
    ProgramRun const run = runProgram({"diff", "--json", "old.xml", "new.xml"}, {.folder = dataFolder() / "host/diff"});
    auto const json = nlohmann::ordered_json::parse(run.out);
    EXPECT_EQ(static_cast<std::size_t>(std::count(lines.out.begin(), lines.out.end(), '\n')),
              json.at("differences").size() + 1);
    std::size_t sum = 0;
    for (char const* const change : {"added", "removed", "moved", "changed"})
        sum += json.at(change).get<std::size_t>();
    EXPECT_EQ(sum, json.at("differences").size());
}

TEST_F(Diff, TheSameFileTwiceHasNoDifferences) {
    study.document(process(plain("A")));
    ProgramRun const run = diff({"p.xml", "p.xml"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "p.xml -> p.xml: no differences\n");
    EXPECT_EQ(run.err, "");
    ProgramRun const json = diff({"--json", "p.xml", "p.xml"});
    EXPECT_EQ(json.exitCode, 0);
    EXPECT_EQ(nlohmann::json::parse(json.out), nlohmann::json({{"from", "p.xml"},
                                                               {"to", "p.xml"},
                                                               {"added", 0},
                                                               {"removed", 0},
                                                               {"moved", 0},
                                                               {"changed", 0},
                                                               {"differences", nlohmann::json::array()}}));
}

TEST_F(Diff, DocumentsOfTwoFoldersFindTheirOwnFiles) {
    std::string const text = process("<PROCESS Name=\"Part\" FILE=\"part.xml\"/>");
    study.folder().write("one/p.xml", text);
    study.folder().write("one/part.xml", process(plain("A")));
    study.folder().write("two/p.xml", text);
    study.folder().write("two/part.xml", process(plain("B")));
    ProgramRun const run = diff({"one/p.xml", "two/p.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "- block \"Part\".A\n+ block \"Part\".B\n"
                       "one/p.xml -> two/p.xml: 2 differences: 1 added, 1 removed\n");
}

TEST_F(Diff, ScriptsBesideOneOfTheDocumentsMakeNoDifference) {
    std::string const text = process(block("A"));
    study.folder().write("one/p.xml", text);
    study.folder().write("one/s/A.py", script("A", "pass"));
    study.folder().write("two/p.xml", text);
    ProgramRun const run = diff({"one/p.xml", "two/p.xml"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
}

TEST_F(Diff, WhatTheReaderPassesOverIsTold) {
    study.folder().write("a.xml", process(plain("A") + connector("A", "Nowhere")));
    study.folder().write("b.xml", process(plain("A") + "<PROCESS Name=\"P\" FILE=\"nowhere.xml\"/>"));
    ProgramRun const run = diff({"a.xml", "b.xml"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "+ process \"P\"\na.xml -> b.xml: 1 difference: 1 added\n");
    EXPECT_EQ(run.err, "flowmere: a.xml: a connector from A to Nowhere lacks a block\n"
                       "flowmere: b.xml: the linked file nowhere.xml is missing\n");
}

TEST_F(Diff, AFileThatCannotBeReadIsOneLineAndExitCodeTwo) {
    study.document(process(plain("A")));
    study.folder().write("cut.xml", "<Process><BLOCK");
    study.folder().write("empty.xml", "");
    study.folder().write("types.xml", "<types><type/></types>");
    struct Case {
        char const* file;
        char const* line;
    };
    for (Case const& one :
         {Case{"nowhere.xml", "flowmere: nowhere.xml: there is no such file\n"},
          Case{".", "flowmere: .: is a folder without a workflow: there is no processdefinition.xml in it\n"},
          Case{"empty.xml", "flowmere: empty.xml: is empty\n"},
          Case{"/dev/null", "flowmere: /dev/null: is no regular file\n"},
          Case{"types.xml", "flowmere: types.xml: is no process document: it holds a \"types\" and no "
                            "blocks\n"}}) {
        for (bool const isFirst : {true, false}) {
            ProgramRun const run = isFirst ? diff({one.file, "p.xml"}) : diff({"p.xml", one.file});
            EXPECT_EQ(run.exitCode, 2) << one.file;
            EXPECT_EQ(run.out, "") << one.file;
            EXPECT_EQ(run.err, one.line);
        }
    }
    for (bool const isFirst : {true, false}) {
        ProgramRun const run = isFirst ? diff({"cut.xml", "p.xml"}) : diff({"p.xml", "--json", "cut.xml"});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(run.err.starts_with("flowmere: cut.xml: ")) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    }
}

TEST_F(Diff, WrongUseIsOneLineAndExitCodeTwo) {
    study.document(process(plain("A")));
    for (std::vector<std::string> const& arguments : std::vector<std::vector<std::string>>{
             {}, {"p.xml"}, {"p.xml", "p.xml", "p.xml"}, {"--fast", "p.xml", "p.xml"}}) {
        ProgramRun const run = diff(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_NE(run.err.find("flowmere diff --help"), std::string::npos) << run.err;
    }
    ProgramRun const unnamed = diff({"", "p.xml"});
    EXPECT_EQ(unnamed.exitCode, 2);
    EXPECT_EQ(unnamed.err, "flowmere: the name of the document is empty\n");
}

TEST_F(Diff, AFullDiskUnderTheOutputIsAnError) {
    study.document(process(plain("A")));
    ProgramRun const run = runProgram({"diff", "p.xml", "p.xml"}, {.folder = study.path(), .outputTo = "/dev/full"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: standard output: cannot be written: No space left on device\n");
}

} // namespace
