// The script side: what generated scripts import, and what it makes of the variables of a document.

#include "Study.h"

#include "flowmere/Flowmere.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"

#include <gmock/gmock.h>

#include <regex>

namespace {

using namespace flowmere::test;
namespace fs = std::filesystem;
namespace host = flowmere::host;
using testing::HasSubstr;
using testing::StartsWith;

// What blocks printed, without the path of the block in front of each line.
std::string withoutLabels(std::string const& text) {
    static std::regex const label("(^|\n)  [A-Z] \\| ");
    return std::regex_replace(text, label, "$1");
}

// Runs the statements as the script of one block that has the variables; their output, or the errors.
std::string outputOf(std::string const& variables, std::string const& statements) {
    Study study;
    study.scriptOf("A", statements);
    study.document(process(block("A", variables)));
    ProgramRun const run = study.run();
    std::size_t const line = run.out.find("A  ");
    return run.exitCode == 0 ? withoutLabels(run.out.substr(0, line)) : run.err;
}

// Scalars and lists

struct TypeRow {
    std::string type;
    std::string text;    // the variable's text at first
    std::string read;    // its value in Python
    std::string written; // an expression that is stored
    std::string back;    // the variable's text after that
};

void PrintTo(TypeRow const& row, std::ostream* out) {
    *out << row.type << " " << row.text;
}

class VariableOfType : public testing::TestWithParam<TypeRow> {};

TEST_P(VariableOfType, IsReadAndWrittenUnderItsTypeName) {
    TypeRow const& row = GetParam();
    bool const isList = row.type.ends_with("Array");
    std::string const plural = isList ? "s" : "";
    Study study;
    study.scriptOf("A", "print(repr(variables.get" + row.type + "VarValue" + plural + "('V')))\nvariables.set" +
                            row.type + "VarValue" + plural + "('V', " + row.written + ")");
    study.document(process(block("A", variable("V", row.type, row.text, "Output", "", isList))));
    ProgramRun const run = study.run();
    EXPECT_EQ(withoutTimes(run.out),
              "  A | " + row.read + "\nA  # ms  Executed  V=" + row.back + "\nended: 1 block executed,  # ms\n")
        << run.err;
}

INSTANTIATE_TEST_SUITE_P(
    Table, VariableOfType,
    testing::Values(
        TypeRow{"Int", "12", "12", "13", "13"}, TypeRow{"Int", "", "0", "True", "1"},
        TypeRow{"Int", "2.0", "2", "-7.9", "-7"}, TypeRow{"Int", " 3 ", "3", "'41'", "41"},
        TypeRow{"Float", "1.5", "1.5", "2", "2.0"}, TypeRow{"Double", "0.1", "0.1", "1/3", "0.3333333333333333"},
        TypeRow{"Double", "", "0.0", "1e300", "1e+300"}, TypeRow{"String", "a b", "'a b'", "5", "5"},
        TypeRow{"String", "", "''", "'x\\ty'", "x\\ty"}, TypeRow{"File", "in.csv", "'in.csv'", "'o.csv'", "o.csv"},
        TypeRow{"Directory", "d", "'d'", "'e'", "e"}, TypeRow{"TarnObject", "o1", "'o1'", "'o2'", "o2"},
        TypeRow{"Point2", "1,2", "'1,2'", "'3,4'", "3,4"}, TypeRow{"Point3", "1,2,3", "'1,2,3'", "'4,5,6'", "4,5,6"},
        TypeRow{"Matrix", "1,0;0,1", "'1,0;0,1'", "'2,0;0,2'", "2,0;0,2"},
        TypeRow{"IntArray", "[1, 2]", "[1, 2]", "[3, 4.0]", "[3, 4]"}, TypeRow{"IntArray", "1,2", "[1, 2]", "()", "[]"},
        TypeRow{"FloatArray", "1, 2.5", "[1.0, 2.5]", "[1]", "[1.0]"},
        TypeRow{"DoubleArray", "", "[]", "[0.1, 2]", "[0.1, 2.0]"},
        TypeRow{"StringArray", "['a', 'b c']", "['a', 'b c']", "['x', 1]", "['x', '1']"},
        TypeRow{"StringArray", "a, b c", "['a', 'b c']", "[]", "[]"},
        TypeRow{"FileArray", "['a.txt']", "['a.txt']", "['b.txt']", "['b.txt']"},
        TypeRow{"DirectoryArray", "[]", "[]", "['d']", "['d']"},
        TypeRow{"TarnObjectArray", "o1,o2", "'o1,o2'", "'o3'", "o3"},
        TypeRow{"Point2Array", "(1,2),(3,4)", "'(1,2),(3,4)'", "'(5,6)'", "(5,6)"},
        TypeRow{"Point3Array", "(1,2,3)", "'(1,2,3)'", "'(4,5,6)'", "(4,5,6)"}));

TEST(Variables, OfAScalarTypeWithTheArrayFlagAreLists) {
    EXPECT_EQ(outputOf(variable("V", "File", "['a', 'b']", "Input", "", true),
                       "print(variables.getFileVarValues('V'))\nvariables.setFileVarValues('V', ['c'])\n"
                       "print(variables.getFileVarValues('V'))"),
              "['a', 'b']\n['c']\n");
}

TEST(Variables, AreKnownToTheBlockOrElseToTheProcess) {
    Study study;
    study.scriptOf("A",
                   "print([variables.checkProcessVariable(name) for name in ('Own', 'Both', 'Common', 'None', '')])\n"
                   "print(variables.getIntVarValue('Own'), variables.getIntVarValue('Both'),"
                   " variables.getIntVarValue('Common'))\nvariables.setIntVarValue('Common', 30)");
    study.document(process(block("A", variable("Own", "Int", "1") + variable("Both", "Int", "2")),
                           variable("Both", "Int", "20") + variable("Common", "Int", "3")));
    ProgramRun const run = study.run({"--save", "out.xml"});
    EXPECT_THAT(run.out, StartsWith("  A | [0, 0, 0, 1, 1]\n  A | 1 2 3\n")) << run.err;
    EXPECT_THAT(study.folder().read("out.xml"), HasSubstr(">30</VARIABLE>"));
}

TEST(Variables, AreReadAndWrittenThroughTheirLinks) {
    Study study;
    study.scriptOf("A", "variables.setIntVarValue('V', 5)");
    study.scriptOf("B", "print(variables.getIntVarValue('W'))\nvariables.setIntVarValue('W', 6)");
    study.scriptOf("C", "print(variables.getIntVarValue('X'))");
    study.document(process(
        block("A", variable("V", "Int", "1", "Output")) + block("B", variable("W", "Int", "2", "Output", "A.V")) +
        block("C", variable("X", "Int", "3", "Output", "B.W")) + connector("A", "B") + connector("B", "C")));
    EXPECT_EQ(withoutTimes(study.run().out), "A  # ms  Executed  V=5\n  B | 5\nB  # ms  Executed  W=6\n  C | 6\n"
                                             "C  # ms  Executed  X=6\nended: 3 blocks executed,  # ms\n");
}

TEST(Variables, KeepEveryDigitOfADouble) {
    EXPECT_EQ(outputOf(variable("V", "Double", "0"), "variables.setDoubleVarValue('V', 0.1 + 0.2)\n"
                                                     "print(variables.getDoubleVarValue('V') == 0.1 + 0.2)"),
              "True\n");
}

TEST(Variables, KeepTextsOfAnyKind) {
    EXPECT_EQ(outputOf(variable("V", "String", ""),
                       "for text in ('Ü梁😀', '\\udcff', 'a\\nb', ' x '):\n    variables.setStringVarValue('V', text)\n"
                       "    print(variables.getStringVarValue('V') == text)"),
              "True\nTrue\nTrue\nTrue\n");
}

TEST(Variables, RefuseWhatIsNoValueOfTheType) {
    struct Row {
        std::string statement;
        std::string message;
    };
    std::vector<Row> const rows = {
        {"variables.getIntVarValue('T')", "ValueError: variable 'T' holds 'abc', which is no Int\n"},
        {"variables.getDoubleVarValue('T')", "ValueError: variable 'T' holds 'abc', which is no number\n"},
        {"variables.getIntVarValues('T')", "ValueError: variable 'T' holds 'abc', which is no Int\n"},
        {"variables.setIntVarValue('T', float('nan'))", "ValueError: nan is no Int\n"},
        {"variables.setIntVarValue('T', None)", "TypeError: "},
        {"variables.setDoubleVarValue('T', 'x')", "ValueError: could not convert string to float: 'x'\n"},
        {"variables.setIntVarValue('U', 1)", "NameError: no variable 'U' on the block 'A' or on the process\n"},
        {"variables.getColourVarValue('T')",
         "AttributeError: 'ProcessExecutive.Variables' has no 'getColourVarValue'\n"},
    };
    for (Row const& row : rows)
        EXPECT_THAT(outputOf(variable("T", "String", "abc"), row.statement), HasSubstr(row.message)) << row.statement;
}

// The value classes

TEST(Kelso, PointsComeFromTextsAndNumbersAndGoBack) {
    EXPECT_EQ(
        outputOf("", "import Kelso\np = Kelso.Point2(' 1.5,-2e1')\nprint(p.x, p.y, str(p), p == Kelso.Point2(1.5, -20),"
                     " p != None, p == (1.5, -20), list(p), len(p), p[1])\n"
                     "print(Kelso.Point3('(1 2 3)'), Kelso.Point3([4, 5, 6]), Kelso.Point2(''))\n"
                     "print(Kelso.Point2(str(p)) == p, hash(p) == hash(Kelso.Point2(p)), p + p, p - p, 2 * p)"),
        "1.5 -20.0 1.5,-20.0 True True False [1.5, -20.0] 2 -20.0\n1.0,2.0,3.0 4.0,5.0,6.0 0.0,0.0\n"
        "True True 3.0,-40.0 0.0,0.0 3.0,-40.0\n");
}

TEST(Kelso, RefusesWhatIsNoPoint) {
    EXPECT_THAT(outputOf("", "import Kelso\nKelso.Point2('1,2,3')"),
                HasSubstr("ValueError: a Point2 has 2 coordinates, not 3\n"));
    EXPECT_THAT(outputOf("", "import Kelso\nKelso.Point3('1,2,x')"),
                HasSubstr("ValueError: '1,2,x' holds something that is no number\n"));
    EXPECT_THAT(outputOf("", "import Kelso\nKelso.Point2List('1,2,3')"),
                HasSubstr("ValueError: '1,2,3' ends within a Point2\n"));
}

TEST(Kelso, ListsAreCountedAndTheirIdentifiersReadBack) {
    EXPECT_EQ(
        outputOf("", "import Kelso\n"
                     "for kind, text in (('Point2', '(1,2),(3,4)'), ('Point3', '1,2,3;4,5,6'), ('TarnObject', 'a, b'),"
                     " ('Matrix', '1,0;0,1 | 2')):\n"
                     "    count, values = getattr(Kelso, kind + 'List')(text)\n"
                     "    back = getattr(Kelso, 'Get' + kind + 'ListIdentifier')(count, values)\n"
                     "    print(count, back, getattr(Kelso, kind + 'List')(back)[1] == values)\n"
                     "    print(getattr(Kelso, 'Get' + kind + 'Identifier')(values[0]))\n"
                     "for kind in ('Point2', 'Point3', 'TarnObject'):\n"
                     "    count, values = getattr(Kelso, kind + 'ArrayList')('')\n"
                     "    print(count, values, repr(getattr(Kelso, 'Get' + kind + 'ArrayListIdentifier')(0, [])))"),
        "2 (1.0,2.0),(3.0,4.0) True\n1.0,2.0\n2 (1.0,2.0,3.0),(4.0,5.0,6.0) True\n1.0,2.0,3.0\n2 a,b True\na\n"
        "2 1.0,0.0;0.0,1.0 | 2.0 True\n1.0,0.0;0.0,1.0\n0 [] ''\n0 [] ''\n0 [] ''\n");
}

TEST(Kelso, MatricesAndObjects) {
    EXPECT_EQ(
        outputOf("",
                 "import Kelso\nm = Kelso.Matrix('[[1,2],[3,4]]')\nprint(m, m[1][0], len(m), m == '1,2;3,4')\n"
                 "o = Kelso.TarnObject(\" 'beam 7'\")\nprint(o, o == 'beam 7', bool(Kelso.TarnObject('')), o != None)\n"
                 "print(Kelso.KelsoInitializeScriptEng())"),
        "1.0,2.0;3.0,4.0 3.0 2 True\nbeam 7 True False True\nNone\n");
    EXPECT_THAT(outputOf("", "import Kelso\nKelso.Matrix('1,2;3')"),
                HasSubstr("ValueError: the rows of a matrix have one length\n"));
}

// The other modules

TEST(HeadlessModules, TakeEveryCall) {
    EXPECT_EQ(
        outputOf("", "import CustomGui, MacroPrintRedirect, win32api, Tarnbase, os\n"
                     "print(CustomGui.Dialog('x').Show() if CustomGui.Dialog('x') else 'nothing shown')\n"
                     "print(MacroPrintRedirect.Start(1, a=2))\nprint(win32api.Sleep(1), win32api.GetTickCount() > 0)\n"
                     "model = Tarnbase.ApplGetCurrentPreModel()\nprint(model != None, model.name,"
                     " os.path.basename(model.path))\nprint(Tarnbase.GetCurrentResultModel())"),
        "nothing shown\nNone\n0 True\nTrue p p.xml\n<result model of p>\n");
}

// Generated scripts run unchanged

class GeneratedScript : public testing::Test {
protected:
    // Writes the document, generates the script of its block A, and runs it.
    ProgramRun generateAndRun(std::string const& variables, std::string const& userCode, int modalType = 1) {
        study.document(process(block("A", variables, "pkg.A")));
        fs::create_directories(study.path() / "pkg");
        {
            host::Document const document((study.path() / "p.xml").string());
            CFCScriptWriter writer;
            writer.SetNode(&document.block("A"));
            writer.SetFolderName(host::libraryPath(study.path() / "pkg"));
            writer.SetUserCode(host::wide(userCode));
            writer.SetModalType(modalType);
            writer.GenerateAllFiles(true);
        }
        return study.run({"--undo", "1"});
    }

    Study study;
};

TEST_F(GeneratedScript, RunsAndIsUndoneAsItIs) {
    for (int modalType = 1; modalType <= 3; ++modalType) {
        ProgramRun const run = generateAndRun(variable("Count", "Int", "3"), "", modalType);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(withoutTimes(run.out), HasSubstr("A  # ms  Executed\nA  # ms  Undone\n"));
    }
}

TEST_F(GeneratedScript, PullsAndPushesVariablesOfEveryType) {
    std::string variables;
    for (std::string const type : {"Int", "Float", "Double", "String", "File", "Directory"})
        variables += variable("V" + type, type, "7");
    for (std::string const type :
         {"IntArray", "FloatArray", "DoubleArray", "StringArray", "FileArray", "DirectoryArray"})
        variables += variable("V" + type, type, "[7, 8]", "Input", "", true);
    variables += variable("VTarnObject", "TarnObject", "seven") + variable("VPoint2", "Point2", "7,8") +
                 variable("VPoint3", "Point3", "7,8,9") + variable("VMatrix", "Matrix", "7");
    ProgramRun const run =
        generateAndRun(variables, "    def PlayMacro(self):\n"
                                  "        self.GetVariables()\n"
                                  "        print(self.VInt, self.VDouble, self.VString, self.VIntArray,"
                                  " self.VStringArray, self.VPoint3, self.VTarnObject)\n"
                                  "        self.VInt = 8\n        self.VDoubleArray = [1, 2]\n"
                                  "        self.UpdateVariables()\n"
                                  "        print(self.getVInt(), self.getVDoubleArray(),"
                                  " self.getVPoint2().y, self.getVMatrix())\n");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("  A | 7 7.0 7 [7, 8] ['7', '8'] 7.0,8.0,9.0 seven\n  A | 8 [1.0, 2.0] 8.0 7.0\n"));
}

TEST_F(GeneratedScript, ReadsListsOfObjects) {
    std::string const variables = variable("Nodes", "Point2Array", "(1,2),(3,4)") +
                                  variable("Parts", "TarnObjectArray", "a,b") +
                                  variable("Flagged", "Point3", "1,2,3", "Input", "", true);
    ProgramRun const run =
        generateAndRun(variables, "    def PlayMacro(self):\n"
                                  "        print(self.getNodes()[0], self.getNodes()[1][1], self.getParts()[0],"
                                  " self.getFlagged()[0])\n        return\n    def UndoBlock(self):\n        return\n");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("  A | 2 3.0,4.0 2 1\n"));
}

TEST_F(GeneratedScript, TellsOfAnObjectListWithoutValue) {
    ProgramRun const run =
        generateAndRun(variable("Nodes", "Point2Array", ""), "    def PlayMacro(self):\n        self.getNodes()\n");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(
        run.err,
        HasSubstr(
            "A: pkg/A.py:60: `self.getNodes()`: Exception: Nodes variable could not be resolved: Aborting Execution\n"));
}

} // namespace
