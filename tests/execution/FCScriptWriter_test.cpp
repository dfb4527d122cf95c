#include "PythonTestSupport.h"

#include "flowmere/execution/FCPythonInterface.h"
#include "flowmere/execution/FCScriptWriter.h"
#include "flowmere/execution/ScriptTemplates.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

// A task block with the given id.
std::unique_ptr<CFCBlockNode> task(wchar_t const* id) {
    auto block = std::make_unique<CFCBlockNode>();
    block->SetNodeType(57);
    block->SetNodeId(id);
    return block;
}

CFCVariableData* add(CFCBlockNode& block, wchar_t const* name, int dataType, wchar_t const* value, bool array = false) {
    CFCVariableData* const variable = block.CreateNewVariable();
    variable->SetVariableName(name);
    variable->SetDataType(dataType);
    variable->SetValue(value);
    variable->SetArray(array);
    variable->UpdateValue();
    return variable;
}

std::string sha256(std::string const& path) {
    runPython("import hashlib\n_digest = hashlib.sha256(open(r'" + path + "', 'rb').read()).hexdigest()");
    for (char const* digest : {"adb424941b7c4659a1bd2803c6e6e852f8087bee67985a21bb4c05aea558e0fe",
                               "ea0971cf4e37180bf2b10aeebf9312bc0338f62d154ce8385df29771ed7a809d",
                               "00beb758f7dc3d3da9b1db73e46db97ea11a8b4aa5fa8b7755adc7cb75def861",
                               "6207ff963b3342981c08979b1c99366dad464d14bbc1cc49ecc18c4b1f889340"}) {
        if (pythonTrue("_digest == '" + std::string(digest) + "'"))
            return digest;
    }
    return "another text";
}

long lines(std::string const& text) {
    return std::count(text.begin(), text.end(), '\n');
}

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

// Text between two marks, both left out.
std::string between(std::string const& text, std::string const& from, std::string const& to) {
    std::size_t const start = text.find(from);
    if (start == std::string::npos)
        return "(no start)";
    std::size_t const end = text.find(to, start + from.size());
    return end == std::string::npos ? "(no end)" : text.substr(start + from.size(), end - start - from.size());
}

class FCScriptWriterTest : public PythonTest {
protected:
    void generate(CFCBlockNode& block, int modalType = 1, wchar_t const* userCode = nullptr) {
        CFCScriptWriter writer;
        writer.SetNode(&block);
        writer.SetFolderName(wideWithBackslashes(scratch.path()));
        writer.SetModalType(modalType);
        if (userCode != nullptr)
            writer.SetUserCode(userCode);
        writer.GenerateAllFiles(true);
    }
    std::string subFile(CFCBlockNode& block) {
        generate(block);
        return scratch.read(narrow(block.GetNodeId()) + "Block.py");
    }
};

} // namespace

TEST_F(FCScriptWriterTest, WholeFilesHaveTheirReferenceSums) {
    auto const block = task(L"Task_01");
    add(*block, L"Count", 0, L"3");
    add(*block, L"Title", 3, L"abc");
    struct Row {
        int modalType;
        std::size_t bytes;
        long lines;
        char const* sum;
    };
    for (Row const& row : {Row{1, 1836, 68, "adb424941b7c4659a1bd2803c6e6e852f8087bee67985a21bb4c05aea558e0fe"},
                           Row{2, 1836, 68, "00beb758f7dc3d3da9b1db73e46db97ea11a8b4aa5fa8b7755adc7cb75def861"},
                           Row{3, 1518, 58, "6207ff963b3342981c08979b1c99366dad464d14bbc1cc49ecc18c4b1f889340"}}) {
        generate(*block, row.modalType);
        std::string const text = scratch.read("Task_01.py");
        EXPECT_EQ(text.size(), row.bytes) << row.modalType;
        EXPECT_EQ(lines(text), row.lines) << row.modalType;
        EXPECT_EQ(sha256((scratch / "Task_01.py").string()), row.sum) << row.modalType;
    }
    std::string const companion = scratch.read("Task_01Block.py");
    EXPECT_EQ(companion.size(), 3136u);
    EXPECT_EQ(lines(companion), 120);
    EXPECT_EQ(sha256((scratch / "Task_01Block.py").string()),
              "ea0971cf4e37180bf2b10aeebf9312bc0338f62d154ce8385df29771ed7a809d");
    EXPECT_EQ(scratch.read("__init__.py"), "");
}

TEST_F(FCScriptWriterTest, TemplatesHaveTheirLines) {
    struct Row {
        wchar_t const* text;
        long lines;
    };
    for (Row const& row :
         {Row{flowmere::kMainTemplate, 58}, Row{flowmere::kPreModelState, 10}, Row{flowmere::kResultModelState, 10},
          Row{flowmere::kSubTemplate, 73}, Row{flowmere::kNumberAccessors, 17}, Row{flowmere::kStringAccessors, 17},
          Row{flowmere::kArrayAccessors, 17}, Row{flowmere::kObjectAccessors, 24},
          Row{flowmere::kObjectListAccessors, 26}})
        EXPECT_EQ(lines(narrow(row.text)), row.lines) << narrow(row.text).substr(0, 40);
}

// Each line as it stands in the file, trailing blanks included.
TEST_F(FCScriptWriterTest, AccessorsOfListsAndObjectsAreWrittenLineForLine) {
    auto const block = task(L"Lines");
    add(*block, L"Loads", 10, L"");
    add(*block, L"Part", 4, L"");
    add(*block, L"Points", 15, L"");
    CFCScriptWriter writer;
    writer.SetNode(block.get());
    std::ostringstream stream;
    EXPECT_TRUE(writer.InsertVariableList(stream, 2, false));
    std::vector<std::string> const expected = {
        "    def getLoads(self):         ",
        "        returnValue = []",
        "        if(self.exvardb.checkProcessVariable(r'Loads') == 0):",
        "            returnValue = list(self.exvardb.getIntArrayVarValues(r'Loads'))",
        "        else:",
        "            returnValue=self.Loads  ",
        "        return returnValue    ",
        "     ",
        "",
        "    def setLoads(self, newVal):        ",
        "        if(self.exvardb.checkProcessVariable(r'Loads') == 0):",
        "            self.exvardb.setIntArrayVarValues(r'Loads', newVal )",
        "            self.Loads=newVal ",
        "        else: ",
        "            self.Loads=newVal ",
        "     ",
        "",
        "    def getPart(self):         ",
        "        returnValue = None",
        "        import Kelso",
        "        if(self.exvardb.checkProcessVariable(r'Part') == 0):",
        "            tempValue = self.exvardb.getTarnObjectVarValue(r'Part')",
        "            returnValue = Kelso.TarnObject(str(tempValue))",
        "        else:",
        "            returnValue=self.Part",
        "        if(returnValue==None):",
        "           exceptionError = str(\"Part\") + \" variable could not be resolved: Aborting Execution\"",
        "           raise Exception(exceptionError)",
        "        return returnValue    ",
        "        ",
        "        ",
        "    def setPart(self, newVal):        ",
        "        import Kelso",
        "        if(self.exvardb.checkProcessVariable(r'Part') == 0):",
        "             tempValue=Kelso.GetTarnObjectIdentifier(newVal)",
        "             self.exvardb.setTarnObjectVarValue(r'Part', tempValue)",
        "             self.Part= tempValue ",
        "        else: ",
        "             self.Part= newVal ",
        "        ",
        "",
        "    def getPoints(self):         ",
        "        returnValue = None",
        "        cnt = 0",
        "        import Kelso",
        "        if(self.exvardb.checkProcessVariable(r'Points') == 0):",
        "            tempVal = self.exvardb.getPoint2ArrayVarValues(r'Points')",
        "            cnt,returnValue = Kelso.Point2ArrayList(str(tempVal))",
        "        else:",
        "            cnt=len(self.Points) ",
        "            returnValue=self.Points",
        "        if(cnt==0):",
        "            exceptionError= str(\"Points\") + \" variable could not be resolved: Aborting Execution\"",
        "            raise Exception(exceptionError)",
        "        return cnt,returnValue    ",
        "        ",
        "        ",
        "    def setPoints(self, newVal):        ",
        "        import Kelso",
        "        if(self.exvardb.checkProcessVariable(r'Points') == 0):",
        "            tempVal=Kelso.GetPoint2ArrayListIdentifier(len(newVal),newVal)",
        "            self.exvardb.setPoint2ArrayVarValues(r'Points', tempVal)",
        "            self.Points= tempValue ",
        "        else: ",
        "            self.Points= newVal ",
        "        ",
        "",
    };
    std::istringstream written(stream.str());
    std::vector<std::string> found;
    for (std::string line; std::getline(written, line);)
        found.push_back(line);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index)
        EXPECT_EQ(found[index], expected[index]) << "line " << index + 1;
    EXPECT_EQ(stream.str().back(), '\n');
}

TEST_F(FCScriptWriterTest, PreModelStateIsTheDefaultAndAnotherNodeKeepsThePaths) {
    auto const block = task(L"First");
    auto const second = task(L"Second");
    CFCScriptWriter writer;
    writer.SetNode(block.get());
    writer.SetFolderName(wideWithBackslashes(scratch.path()));
    writer.SetNode(second.get());
    writer.GenerateMainFile();
    EXPECT_TRUE(contains(scratch.read("First.py"), "class Second(SecondBlock): \n"));
    EXPECT_TRUE(contains(scratch.read("First.py"), "Tarnbase.ApplGetCurrentPreModel()"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "Second.py"));
    // Each generator writes its own file, over what stood there.
    EXPECT_FALSE(std::filesystem::exists(scratch / "__init__.py"));
    scratch.write("__init__.py", "old text");
    writer.GenerateInitFile();
    EXPECT_EQ(scratch.read("__init__.py"), "");
    // No node takes nothing back.
    writer.SetNode(nullptr);
    EXPECT_TRUE(writer.IsValid());
}

TEST_F(FCScriptWriterTest, BlockWithoutVariablesHasOnlyImportAndReturns) {
    auto const block = task(L"Bare");
    std::string const text = subFile(*block);
    EXPECT_EQ(text.substr(text.find("    def InitVariables")),
              "    def InitVariables(self):\n        import Kelso         \n        return\n"
              "    def GetVariables(self):\n        return\n    def UpdateVariables(self):\n        return\n");
}

TEST_F(FCScriptWriterTest, ScalarFileWithTheArrayFlagTakesTheArrayTemplateUnderItsOwnName) {
    auto const block = task(L"Files");
    add(*block, L"Inputs", 8, L"a.txt", true);
    std::string const text = subFile(*block);
    EXPECT_TRUE(contains(text, "list(self.exvardb.getFileVarValues(r'Inputs'))"));
    EXPECT_TRUE(contains(text, "        self.Inputs =  r\"a.txt\"  \n"));
}

TEST_F(FCScriptWriterTest, IntArrayIsAListAndEmptyAtFirst) {
    auto const block = task(L"Ints");
    add(*block, L"Loads", 10, L"");
    std::string const text = subFile(*block);
    EXPECT_TRUE(contains(text, "        self.Loads =  []  \n"));
    EXPECT_TRUE(contains(text, "list(self.exvardb.getIntArrayVarValues(r'Loads'))"));
}

TEST_F(FCScriptWriterTest, ObjectArraysUseTheCountForms) {
    for (int type : {14, 15, 16}) {
        auto const block = task(L"Objects");
        add(*block, L"Parts", type, L"");
        std::string const text = subFile(*block);
        EXPECT_TRUE(contains(text, "        cnt,self.Parts =  Kelso.")) << type;
        EXPECT_TRUE(contains(text, "        cnt,self.Parts = self.getParts()\n")) << type;
        EXPECT_TRUE(contains(text, "            self.Parts= tempValue \n")) << type;
    }
}

TEST_F(FCScriptWriterTest, PointWithTheArrayFlagTakesTheListTemplateAndThePlainForms) {
    auto const block = task(L"Points");
    add(*block, L"Where", 5, L"(1, 2)", true);
    std::string const text = subFile(*block);
    EXPECT_TRUE(contains(text, "        self.Where =  Kelso.Point2(' (1, 2)')  \n"));
    EXPECT_TRUE(contains(text, "        self.Where = self.getWhere()\n"));
    EXPECT_TRUE(contains(text, "            cnt,returnValue = Kelso.Point2List(str(tempVal))"));
    EXPECT_FALSE(contains(text, "cnt,self.Where"));
}

TEST_F(FCScriptWriterTest, EachDataTypeHasItsTexts) {
    char const* const names[] = {"Int",         "Float",       "Double",      "String",        "TarnObject",
                                 "Point2",      "Point3",      "Matrix",      "File",          "Directory",
                                 "IntArray",    "FloatArray",  "DoubleArray", "StringArray",   "TarnObjectArray",
                                 "Point2Array", "Point3Array", "FileArray",   "DirectoryArray"};
    for (int type = 0; type <= 18; ++type) {
        auto const block = task(L"Typed");
        add(*block, L"Value", type, L"");
        std::string const text = subFile(*block);
        std::string const name = names[type];
        bool const isObject = (type >= 4 && type <= 7) || (type >= 14 && type <= 16);
        bool const isList = type >= 10;
        std::string const getter = "self.exvardb.get" + name + (isList ? "VarValues(r'Value')" : "VarValue(r'Value')");
        EXPECT_TRUE(contains(text, getter)) << name;
        EXPECT_EQ(contains(text, "import Kelso\n"), isObject) << name;
        EXPECT_EQ(contains(text, "        cnt,self.Value = "), type >= 14 && type <= 16) << name;
        EXPECT_TRUE(contains(text, "        self.setValue(self.Value)\n")) << name;
        bool const isText = type == 3 || type == 8 || type == 9;
        EXPECT_EQ(contains(text, "return str (returnValue)    \n"), isText) << name;
    }
}

TEST_F(FCScriptWriterTest, UnknownDataTypeHasOnlyThePullAndThePush) {
    for (int type : {-1, 19, 25}) {
        auto const block = task(L"Unknown");
        add(*block, L"Odd", type, L"");
        std::string const text = subFile(*block);
        EXPECT_EQ(between(text, "import Kelso         \n", "    def GetVariables"), "        return\n") << type;
        EXPECT_TRUE(contains(text, "        self.Odd = self.getOdd()\n")) << type;
        EXPECT_TRUE(contains(text, "        self.setOdd(self.Odd)\n")) << type;
    }
}

TEST_F(FCScriptWriterTest, NamelessVariablesAreLeftOutEverywhere) {
    auto const block = task(L"Grouped");
    add(*block, L"", 0, L"");
    CFCVariableData* const member = add(*block, L"Member", 0, L"");
    member->SetGroup(true);
    CFCVariableData* const header = add(*block, L"Header", 0, L"");
    header->SetGroup(true);
    header->SetGroupHeader(true);
    header->SetGroupName(L"Loads");
    std::string const text = subFile(*block);
    EXPECT_FALSE(contains(text, "Member"));
    EXPECT_FALSE(contains(text, "Header"));
    EXPECT_TRUE(contains(text, "        self.Loads =  0  \n"));
    EXPECT_FALSE(contains(text, "self. "));
}

TEST_F(FCScriptWriterTest, NumbersComeFromTheTypedStoreWithTwoDecimals) {
    auto const block = task(L"Numbers");
    add(*block, L"Width", 2, L"1.5");
    CFCVariableData* const unread = block->CreateNewVariable();
    unread->SetVariableName(L"Unread");
    unread->SetDataType(0);
    unread->SetValue(L"3");
    std::string const text = subFile(*block);
    EXPECT_TRUE(contains(text, "        self.Width =  1.50  \n"));
    EXPECT_TRUE(contains(text, "        self.Unread =  0  \n"));
}

TEST_F(FCScriptWriterTest, UserCodeStandsBehindTheFixedMethodsAndBeforeTheState) {
    auto const block = task(L"User");
    generate(*block, 1, L"    def PlayMacro(self):\n        print('$$class$$ ü')\n");
    std::string const text = scratch.read("User.py");
    EXPECT_TRUE(contains(text, "    def OnWindowDraw(self):\n        '''    Add your code here '''  \n        pass\n"
                               "    def PlayMacro(self):\n        print('$$class$$ \xC3\xBC')\n"
                               "    def IsValidState(self):\n"));
    // Nothing is put behind it, not even a line end.
    generate(*block, 1, L"    x = 1");
    EXPECT_TRUE(contains(scratch.read("User.py"), "    x = 1    def IsValidState(self):\n"));
}

TEST_F(FCScriptWriterTest, ModalTypeThreeWritesNoState) {
    auto const block = task(L"Free");
    generate(*block, 3);
    EXPECT_FALSE(contains(scratch.read("Free.py"), "IsValidState(self):"));
    generate(*block, 2);
    EXPECT_TRUE(contains(scratch.read("Free.py"), "Tarnbase.GetCurrentResultModel()"));
}

TEST_F(FCScriptWriterTest, FolderBeforeNodeGivesNamesWithoutTheClass) {
    auto const block = task(L"Late");
    CFCScriptWriter writer;
    writer.SetFolderName(wideWithBackslashes(scratch.path()));
    writer.SetNode(block.get());
    writer.GenerateAllFiles(false);
    EXPECT_TRUE(contains(scratch.read(".py"), "class Late(LateBlock): \n"));
    EXPECT_TRUE(contains(scratch.read("Block.py"), "class LateBlock(object): \n"));
}

TEST_F(FCScriptWriterTest, FileNamesCanBeReplaced) {
    auto const block = task(L"Named");
    CFCScriptWriter writer;
    writer.SetNode(block.get());
    writer.SetFolderName(wideWithBackslashes(scratch.path()));
    writer.SetMainFileName(scratch.text("main.txt"));
    writer.SetSubFileName(scratch.text("sub.txt"));
    writer.GenerateAllFiles(false);
    EXPECT_TRUE(contains(scratch.read("main.txt"), "class Named(NamedBlock): \n"));
    EXPECT_TRUE(contains(scratch.read("sub.txt"), "class NamedBlock(object): \n"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "Named.py"));
}

TEST_F(FCScriptWriterTest, WriterWithoutABlockWritesNothing) {
    CFCScriptWriter writer;
    EXPECT_FALSE(writer.IsValid());
    writer.SetNode(nullptr);
    std::unique_ptr<IFCNode> const folder(CFCNodeFactory().Create(71));
    writer.SetNode(folder.get());
    writer.SetFolderName(wideWithBackslashes(scratch.path()));
    EXPECT_FALSE(writer.IsValid());
    writer.GenerateAllFiles(true);
    writer.GenerateMainFile();
    writer.GenerateSubFile(true);
    writer.GenerateInitFile();
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
    std::ostringstream stream;
    EXPECT_FALSE(writer.InsertVariableList(stream, 1, true));
}

TEST_F(FCScriptWriterTest, MissingFolderIsPassedOverInSilence) {
    auto const block = task(L"Nowhere");
    CFCScriptWriter writer;
    writer.SetNode(block.get());
    writer.SetFolderName(scratch.text("no/such/folder"));
    writer.GenerateAllFiles(true);
    EXPECT_FALSE(std::filesystem::exists(scratch / "no"));
}

TEST_F(FCScriptWriterTest, InsertLineReplacesInAFixedOrder) {
    auto const block = task(L"Order");
    add(*block, L"Text", 3, L"$$datatype$$");
    std::string const text = subFile(*block);
    EXPECT_TRUE(contains(text, "        self.Text =  r\"String\"  \n")) << "a default is searched for the data type";
}

TEST_F(FCScriptWriterTest, InsertLinesKeepsTheLineStructure) {
    CFCScriptWriter writer;
    std::ostringstream stream;
    writer.InsertLines(stream, L"a\n\n b \nlast");
    EXPECT_EQ(stream.str(), "a\n\n b \nlast");
    std::ostringstream one;
    writer.InsertLine(one, L"x", false);
    writer.InsertLine(one, nullptr, true);
    EXPECT_EQ(one.str(), "x\n");
}

TEST_F(FCScriptWriterTest, GeneratedScriptsRun) {
    for (char const* name : {"win32api", "CustomGui", "MacroPrintRedirect", "THostManager", "Kelso"})
        module(std::string(name) + ".py", "");
    module("Tarnbase.py", "def ApplGetCurrentPreModel():\n    return 'model'\n");
    module("win32com/__init__.py", "");
    module("win32com/client.py", "class Variables:\n"
                                 "    def checkProcessVariable(self, name):\n        return 1\n"
                                 "    def getExecutionType(self):\n        return 0\n"
                                 "def Dispatch(name):\n    return Variables()\n");
    auto const block = task(L"Task_01");
    add(*block, L"Count", 0, L"3");
    add(*block, L"Title", 3, L"abc");
    CFCScriptWriter writer;
    writer.SetNode(block.get());
    std::filesystem::create_directory(scratch / "F");
    writer.SetFolderName(wideWithBackslashes(scratch / "F"));
    writer.SetUserCode(L"    def PlayMacro(self):\n        import record\n"
                       L"        record.events.append((self.Count, self.Title))\n");
    writer.GenerateAllFiles(true);
    runPython("importlib.invalidate_caches()");
    for (char const* method : {"Execute", "Undo", "CanUndo", "CanSkip"}) {
        CFCPythonInterface python;
        int status = 0;
        python.executeBlockInterface("F.Task_01", method, &status);
    }
    EXPECT_TRUE(events("[(3, 'abc')]"));
    EXPECT_TRUE(errors("[]"));
}

TEST_F(FCScriptWriterTest, EveryGeneratedFileCompiles) {
    auto const block = task(L"AllTypes");
    for (int type = 0; type <= 18; ++type)
        add(*block, (L"V" + std::to_wstring(type)).c_str(), type, L"1");
    generate(*block);
    for (char const* name : {"AllTypes.py", "AllTypesBlock.py"}) {
        PyObject* const code = tpy::Py_CompileString(scratch.read(name).c_str(), name, tpy::file_input);
        EXPECT_NE(code, nullptr) << name;
        tpy::Py_XDECREF(code);
        tpy::PyErr_Clear();
    }
}
