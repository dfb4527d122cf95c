#include "PythonTestSupport.h"

#include "flowmere/execution/FCPythonInterface.h"
#include "flowmere/model/FCBlockNode.h"

#include <string>

using namespace flowmere::test;

namespace {

using FCPythonInterfaceTest = PythonTest;

std::string recordingClass(std::string const& name, std::string const& tag) {
    return "import record\n"
           "class " +
           name +
           ":\n"
           "    def __init__(self, argument):\n"
           "        record.events.append(('" +
           tag +
           "', argument))\n"
           "    def Execute(self):\n"
           "        record.events.append('Execute')\n"
           "    def Check(self):\n"
           "        return 7\n"
           "    def Text(self):\n"
           "        return 'no number'\n"
           "    def Fail(self):\n"
           "        raise ValueError('told so')\n"
           "    def Leave(self):\n"
           "        raise SystemExit(7)\n";
}

int runBlock(char const* script, char const* method, int* status = nullptr) {
    int own = 0;
    CFCPythonInterface python;
    return python.executeBlockInterface(script, method, status != nullptr ? status : &own);
}

// Standard error of the process for the length of a scope.
std::string standardErrorOf(auto const& action) {
    testing::internal::CaptureStderr();
    action();
    std::fflush(stderr);
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST_F(FCPythonInterfaceTest, RunsTheMethodOfTheClassNamedAsTheModule) {
    module("Plain.py", recordingClass("Plain", "made"));
    int status = 0;
    EXPECT_EQ(runBlock("Plain", "Execute", &status), -1);
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(events("[('made', 100), 'Execute']"));
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(FCPythonInterfaceTest, ClassOfADottedScriptIsItsLastPart) {
    module("pkg/__init__.py", "");
    module("pkg/sub/__init__.py", "");
    module("pkg/sub/Deep.py", recordingClass("Deep", "deep"));
    EXPECT_EQ(runBlock("pkg.sub.Deep", "Execute"), -1);
    EXPECT_TRUE(events("[('deep', 100), 'Execute']"));
}

TEST_F(FCPythonInterfaceTest, CompanionIsImportedAndReloadedBeforeTheScript) {
    module("pair/__init__.py", "");
    module("pair/OneBlock.py", "import record\nrecord.events.append('companion')\nclass OneBlock:\n    pass\n");
    module("pair/One.py", "import record\nrecord.events.append('script')\nfrom . OneBlock import OneBlock\n"
                          "class One(OneBlock):\n    def __init__(self, argument):\n        pass\n"
                          "    def Execute(self):\n        record.events.append('Execute')\n");
    runBlock("pair.One", "Execute");
    EXPECT_TRUE(events("['companion', 'companion', 'script', 'script', 'Execute']"));
}

TEST_F(FCPythonInterfaceTest, EachRunSeesTheCurrentText) {
    // Same length, same second: the compiled form would still count as valid.
    for (int number = 10; number < 20; ++number) {
        module("Changing.py", "import record\nclass Changing:\n    def __init__(self, argument):\n        pass\n"
                              "    def Execute(self):\n        record.events.append(" +
                                  std::to_string(number) + ")\n");
        runBlock("Changing", "Execute");
    }
    EXPECT_TRUE(events("list(range(10, 20))"));
}

TEST_F(FCPythonInterfaceTest, NamesDeletedFromTheTextStayThroughAReload) {
    module("Stays.py", recordingClass("Stays", "old"));
    runBlock("Stays", "Execute");
    module("Stays.py", "value = 1\n");
    runBlock("Stays", "Execute");
    EXPECT_TRUE(events("[('old', 100), 'Execute', ('old', 100), 'Execute']"));
}

TEST_F(FCPythonInterfaceTest, FailedReloadRunsTheOldClassAndThenReports) {
    module("Broken.py", recordingClass("Broken", "old"));
    runBlock("Broken", "Execute");
    module("Broken.py", "class Broken(:\n");
    EXPECT_EQ(runBlock("Broken", "Execute"), -1);
    EXPECT_TRUE(events("[('old', 100), 'Execute', ('old', 100), 'Execute']"));
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['SyntaxError']"));
}

TEST_F(FCPythonInterfaceTest, MissingScriptGivesMinusOneAndAnImportError) {
    int status = 0;
    EXPECT_EQ(runBlock("NoSuchScript", "Execute", &status), -1);
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(errors("[('ModuleNotFoundError', \"No module named 'NoSuchScript'\")]"));
}

TEST_F(FCPythonInterfaceTest, MissingCompanionIsNoError) {
    module("alone/__init__.py", "");
    module("alone/One.py", recordingClass("One", "one"));
    runBlock("alone.One", "Execute");
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(FCPythonInterfaceTest, ImportErrorInsideTheCompanionIsReported) {
    module("bad/__init__.py", "");
    module("bad/OneBlock.py", "import no_such_module_at_all\n");
    module("bad/One.py", recordingClass("One", "one"));
    runBlock("bad.One", "Execute");
    EXPECT_TRUE(events("[('one', 100), 'Execute']"));
    EXPECT_TRUE(errors("[('ModuleNotFoundError', \"No module named 'no_such_module_at_all'\")]"));
}

TEST_F(FCPythonInterfaceTest, BrokenCompanionAndRaisingScriptAreBothReportedInOrder) {
    module("both/__init__.py", "");
    module("both/OneBlock.py", "class OneBlock(:\n");
    module("both/One.py", recordingClass("One", "one"));
    runBlock("both.One", "Fail");
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['SyntaxError', 'ValueError']"));
}

TEST_F(FCPythonInterfaceTest, RaisingScriptStillGivesMinusOneAndAppearsWhenTheObjectEnds) {
    module("Raising.py", recordingClass("Raising", "made"));
    {
        CFCPythonInterface python;
        int status = 0;
        EXPECT_EQ(python.executeBlockInterface("Raising", "Fail", &status), -1);
        EXPECT_EQ(status, 1);
        EXPECT_NE(tpy::PyErr_Occurred(), nullptr);
        tpy::ErrorState const pending = tpy::takeError();
        EXPECT_EQ(errorCount(), 0);
        tpy::putErrorBack(pending);
    }
    EXPECT_TRUE(errors("[('ValueError', 'told so')]"));
}

TEST_F(FCPythonInterfaceTest, LeavingScriptIsReportedAndTheProcessGoesOn) {
    module("Leaving.py", recordingClass("Leaving", "made"));
    runBlock("Leaving", "Leave");
    EXPECT_TRUE(errors("[('SystemExit', '7')]"));
}

TEST_F(FCPythonInterfaceTest, HookThatLeavesDoesNotEndTheProcess) {
    module("Hooked.py", recordingClass("Hooked", "made"));
    runPython("def _leaving(kind, value, trace):\n    raise SystemExit(3)\nsys.excepthook = _leaving");
    std::string const text = standardErrorOf([] { runBlock("Hooked", "Fail"); });
    EXPECT_NE(text.find("ValueError: told so"), std::string::npos);
}

TEST_F(FCPythonInterfaceTest, ErrorOfTheHookIsShownBesideTheOneItWasToReport) {
    module("Hooked.py", recordingClass("Hooked", "made"));
    runPython("def _failing(kind, value, trace):\n    raise KeyError('of the hook')\nsys.excepthook = _failing");
    std::string const text = standardErrorOf([] { runBlock("Hooked", "Fail"); });
    EXPECT_EQ(text.rfind("Error in sys.excepthook:\n", 0), 0u);
    std::size_t const second = text.find("\nOriginal exception was:\n");
    ASSERT_NE(second, std::string::npos);
    EXPECT_LT(text.find("KeyError: 'of the hook'"), second);
    EXPECT_GT(text.find("ValueError: told so"), second);
    EXPECT_NE(text.find("ValueError: told so"), std::string::npos);
}

TEST_F(FCPythonInterfaceTest, WithoutAHookTheErrorIsShownAllTheSame) {
    module("Hooked.py", recordingClass("Hooked", "made"));
    runPython("del sys.excepthook");
    std::string const text = standardErrorOf([] { runBlock("Hooked", "Fail"); });
    EXPECT_EQ(text.rfind("sys.excepthook is missing\n", 0), 0u);
    EXPECT_NE(text.find("ValueError: told so"), std::string::npos);
}

TEST_F(FCPythonInterfaceTest, LeavingAnywhereInAScriptIsAnErrorLikeAnyOther) {
    // On import, when the object is made, and in the companion, which does not hinder the script.
    module("leave/__init__.py", "");
    module("leave/OnImport.py", "import sys\nsys.exit('import')\n");
    module("leave/OnMake.py", "class OnMake:\n    def __init__(self, argument):\n        raise SystemExit('make')\n");
    module("leave/CompanionBlock.py", "raise SystemExit('companion')\n");
    module("leave/Companion.py", recordingClass("Companion", "made"));
    std::string const text = standardErrorOf([] {
        for (char const* script : {"leave.OnImport", "leave.OnMake", "leave.Companion"})
            EXPECT_EQ(runBlock(script, "Execute"), -1) << script;
    });
    EXPECT_EQ(text, "Error in loading class\n") << "of the object that could not be made";
    EXPECT_TRUE(errors("[('SystemExit', 'import'), ('SystemExit', 'make'), ('SystemExit', 'companion')]"));
    EXPECT_TRUE(events("[('made', 100), 'Execute']"));
}

TEST_F(FCPythonInterfaceTest, InterruptedScriptIsReportedLikeAnyOther) {
    module("Interrupted.py", "class Interrupted:\n    def __init__(self, argument):\n        pass\n"
                             "    def Execute(self):\n        raise KeyboardInterrupt()\n");
    EXPECT_EQ(runBlock("Interrupted", "Execute"), -1);
    EXPECT_TRUE(errors("[('KeyboardInterrupt', '')]"));
}

TEST_F(FCPythonInterfaceTest, ModuleWithoutSourceKeepsItsOnlyFile) {
    module("Only.py", recordingClass("Only", "made"));
    runPython("import py_compile, os\npy_compile.compile(r'" + (scratch / "Only.py").string() + "', cfile=r'" +
              (scratch / "Only.pyc").string() + "')\nos.remove(r'" + (scratch / "Only.py").string() +
              "')\nimportlib.invalidate_caches()");
    runBlock("Only", "Execute");
    runBlock("Only", "Execute");
    EXPECT_TRUE(std::filesystem::exists(scratch / "Only.pyc"));
    EXPECT_TRUE(events("[('made', 100), 'Execute', ('made', 100), 'Execute']"));
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(FCPythonInterfaceTest, MissingClassIsToldOnStandardError) {
    module("Classless.py", "value = 1\n");
    std::string const text = standardErrorOf([] { EXPECT_EQ(runBlock("Classless", "Execute"), -1); });
    EXPECT_EQ(text, "Error in loading class\n");
    EXPECT_TRUE(errors("[('AttributeError', \"module 'Classless' has no attribute 'Classless'\")]"));
}

TEST_F(FCPythonInterfaceTest, ClassThatCannotBeMadeIsToldOnStandardError) {
    module("Unmade.py", "class Unmade:\n    def __init__(self):\n        pass\n");
    std::string const text = standardErrorOf([] { EXPECT_EQ(runBlock("Unmade", "Execute"), -1); });
    EXPECT_EQ(text, "Error in loading class\n");
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['TypeError']"));
}

TEST_F(FCPythonInterfaceTest, AttributeThatIsNoClassEndsWithoutAMessage) {
    module("Number.py", "Number = 5\n");
    std::string const text = standardErrorOf([] { EXPECT_EQ(runBlock("Number", "Execute"), -1); });
    EXPECT_EQ(text, "");
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(FCPythonInterfaceTest, EmptyScriptNameReportsAndGivesMinusOne) {
    EXPECT_EQ(runBlock("", "Execute"), -1);
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['ValueError']"));
}

TEST_F(FCPythonInterfaceTest, NullArgumentsAreMisses) {
    int ofNull = 0;
    EXPECT_EQ(runBlock(nullptr, "Execute", &ofNull), -1);
    EXPECT_EQ(ofNull, 1);
    EXPECT_EQ(runBlock("Plain", nullptr), -1);
    CFCPythonInterface python;
    EXPECT_EQ(python.executeBlockInterface(nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(python.executeBlockInterfaceDebug(nullptr, nullptr, nullptr, nullptr), 0);
    int status = 0;
    EXPECT_EQ(python.executeBlockInterfaceDebug("a.B", nullptr, &status, nullptr), -1);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(python.executeCheckInterface(nullptr, "Check"), 1);
    EXPECT_EQ(python.executeInitialize(nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(python.executeSaveInterface(nullptr, nullptr, nullptr), -1);
}

TEST_F(FCPythonInterfaceTest, NameTooLongForACompanionStillRuns) {
    std::string const name(1100, 'n');
    EXPECT_EQ(runBlock(name.c_str(), "Execute"), -1);
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['ModuleNotFoundError']"));
}

TEST_F(FCPythonInterfaceTest, NameThatIsNoUtf8IsAnErrorAndNoCrash) {
    EXPECT_EQ(runBlock("\xff\xfe", "Execute"), -1);
    EXPECT_GE(errorCount(), 1);
}

TEST_F(FCPythonInterfaceTest, ObjectsNest) {
    module("Outer.py", recordingClass("Outer", "outer"));
    module("Inner.py", recordingClass("Inner", "inner"));
    CFCPythonInterface outer;
    {
        CFCPythonInterface inner;
        int status = 0;
        inner.executeBlockInterface("Inner", "Fail", &status);
    }
    EXPECT_TRUE(errors("[('ValueError', 'told so')]"));
    int status = 0;
    outer.executeBlockInterface("Outer", "Execute", &status);
    EXPECT_TRUE(events("[('inner', 100), ('outer', 100), 'Execute']"));
}

TEST_F(FCPythonInterfaceTest, PendingErrorOfOneRunDoesNotHinderTheNext) {
    module("First.py", recordingClass("First", "first"));
    {
        CFCPythonInterface python;
        int status = 0;
        python.executeBlockInterface("First", "Fail", &status);
        python.executeBlockInterface("First", "Execute", &status);
    }
    EXPECT_TRUE(events("[('first', 100), ('first', 100), 'Execute']"));
    EXPECT_TRUE(errors("[('ValueError', 'told so')]"));
}

// The debugger.

TEST_F(FCPythonInterfaceTest, DebugProgramImportsTheModuleFromItsPackageAndMakesItsClass) {
    module("dbh/__init__.py", "");
    module("dbh/One.py", recordingClass("One", "debugged"));
    runPython("class Debugger:\n    def run(self, code):\n        exec(code, {})\ndebugger = Debugger()");
    PyObject* const debugger = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "debugger");
    {
        CFCPythonInterface python;
        int status = 0;
        EXPECT_EQ(python.executeBlockInterfaceDebug("dbh.One", "Execute", &status, debugger), -1);
        EXPECT_EQ(status, 1);
    }
    tpy::Py_DECREF(debugger);
    EXPECT_TRUE(events("[('debugged', 1), 'Execute']"));
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(FCPythonInterfaceTest, DebugOfAScriptWithoutDotGivesZeroAndCallsNobody) {
    runPython("class Debugger:\n    def run(self, code):\n        record.events.append('run')\ndebugger = Debugger()");
    PyObject* const debugger = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "debugger");
    CFCPythonInterface python;
    for (char const* script : {"One", ".One", ""}) {
        int status = 0;
        EXPECT_EQ(python.executeBlockInterfaceDebug(script, "Execute", &status, debugger), 0) << script;
        EXPECT_EQ(status, 1);
    }
    tpy::Py_DECREF(debugger);
    EXPECT_TRUE(events("[]"));
}

TEST_F(FCPythonInterfaceTest, DebugWithoutADebuggerOnlyCompiles) {
    CFCPythonInterface python;
    int status = 0;
    EXPECT_EQ(python.executeBlockInterfaceDebug("a.B", "Execute", &status, nullptr), -1);
    EXPECT_EQ(status, 1);
}

namespace {

class DebuggedBlock : public CFCBlockNode {
public:
    _object* PrepareAndGetDebuggerObject(wchar_t const* method) override {
        asked = method;
        return debugger;
    }
    void FinishDebug() override { ++finished; }
    _object* debugger = nullptr;
    TuString asked;
    int finished = 0;
};

} // namespace

TEST_F(FCPythonInterfaceTest, ExecuteBlockGoesThroughTheBlocksDebuggerWhenItGivesOne) {
    module("dbi/__init__.py", "");
    module("dbi/One.py", recordingClass("One", "made"));
    runPython("class Debugger:\n    def run(self, code):\n        record.events.append('run')\ndebugger = Debugger()");
    PyObject* const debugger = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "debugger");
    DebuggedBlock block;
    block.debugger = debugger;
    {
        CFCPythonInterface python;
        int status = 0;
        EXPECT_EQ(python.executeBlock("dbi.One", "Execute", &status, &block), -1);
        EXPECT_EQ(python.executeBlock("NoDot", "Execute", &status, &block), 0);
    }
    tpy::Py_DECREF(debugger);
    EXPECT_EQ(block.asked, L"Execute");
    EXPECT_EQ(block.finished, 2);
    EXPECT_TRUE(events("['run']"));
}

TEST_F(FCPythonInterfaceTest, ExecuteBlockWithoutADebuggerRunsThePlainWay) {
    module("PlainTwo.py", recordingClass("PlainTwo", "made"));
    DebuggedBlock block;
    CFCPythonInterface python;
    int status = 0;
    EXPECT_EQ(python.executeBlock("PlainTwo", "Execute", &status, &block), -1);
    EXPECT_EQ(python.executeBlock("PlainTwo", "Execute", &status, nullptr), -1);
    EXPECT_EQ(block.finished, 0);
    EXPECT_TRUE(events("[('made', 100), 'Execute', ('made', 100), 'Execute']"));
}

TEST_F(FCPythonInterfaceTest, DebuggerMayDestroyTheBlockItWasAskedFor) {
    module("dbj/__init__.py", "");
    runPython("class Debugger:\n    def run(self, code):\n        record.call()\ndebugger = Debugger()");
    PyObject* const debugger = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "debugger");
    class CountedBlock : public DebuggedBlock {
    public:
        explicit CountedBlock(int& count) : total(count) {}
        void FinishDebug() override { ++total; }
        int& total;
    };
    int finished = 0;
    for (bool destroys : {false, true}) {
        CountedBlock* const block = new CountedBlock(finished);
        block->debugger = debugger;
        onScriptCall([&] {
            if (destroys)
                delete block;
        });
        CFCPythonInterface python;
        int status = 0;
        EXPECT_EQ(python.executeBlock("dbj.One", "Execute", &status, block), -1);
        EXPECT_EQ(finished, 1) << "a block that is gone is not told";
        if (!destroys)
            delete block;
    }
    tpy::Py_DECREF(debugger);
}

// Checks and the forms with an argument.

TEST_F(FCPythonInterfaceTest, CheckGivesTheNumberOfTheMethod) {
    module("Checked.py", recordingClass("Checked", "made"));
    CFCPythonInterface python;
    EXPECT_EQ(python.executeCheckInterface("Checked", "Check"), 7);
}

TEST_F(FCPythonInterfaceTest, CheckThatCannotBeCalledGivesOne) {
    module("CheckedTwo.py", recordingClass("CheckedTwo", "made"));
    module("NoClass.py", "NoClass = 5\n");
    module("Missing.py", "value = 5\n");
    std::string const text = standardErrorOf([] {
        for (char const* script : {"NoSuchScript", "NoClass", "Missing"}) {
            CFCPythonInterface python;
            EXPECT_EQ(python.executeCheckInterface(script, "Check"), 1) << script;
        }
        CFCPythonInterface python;
        EXPECT_EQ(python.executeCheckInterface("CheckedTwo", "Fail"), 1);
    });
    EXPECT_EQ(text, "Error in loading class\n");
}

TEST_F(FCPythonInterfaceTest, CheckOfAnotherTypeGivesMinusOneAndATypeError) {
    module("CheckedThree.py", recordingClass("CheckedThree", "made"));
    {
        CFCPythonInterface python;
        EXPECT_EQ(python.executeCheckInterface("CheckedThree", "Text"), -1);
    }
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['TypeError']"));
}

TEST_F(FCPythonInterfaceTest, CheckDoesNotReload) {
    module("Once.py", "import record\nrecord.events.append('body')\n" + recordingClass("Once", "made"));
    CFCPythonInterface python;
    python.executeCheckInterface("Once", "Check");
    python.executeCheckInterface("Once", "Check");
    EXPECT_TRUE(events("['body', ('made', 100), ('made', 100)]"));
}

TEST_F(FCPythonInterfaceTest, InitializeMakesTheObjectFromTheArgumentAndAsksForTheMethod) {
    module("Init.py", recordingClass("Init", "made"));
    {
        CFCPythonInterface python;
        int status = 0;
        EXPECT_EQ(python.executeInitialize("Init", "Execute", "given", &status), -1);
        EXPECT_EQ(status, 1);
        EXPECT_EQ(python.executeInitialize("Init", "NoSuchMethod", "again", &status), -1);
        EXPECT_EQ(python.executeInitialize("Init", "Execute", nullptr, &status), -1);
    }
    EXPECT_TRUE(events("[('made', 'given'), 'Execute', ('made', 'again'), ('made', None), 'Execute']"));
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(FCPythonInterfaceTest, ArgumentThatIsNoUtf8MakesNoObject) {
    module("Init.py", recordingClass("Init", "made"));
    {
        CFCPythonInterface python;
        int status = 0;
        EXPECT_EQ(python.executeInitialize("Init", "Execute", "\xff", &status), -1);
        EXPECT_EQ(python.executeSaveInterface("Init", "Execute", "\xff"), -1);
    }
    EXPECT_TRUE(events("[]"));
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['UnicodeDecodeError', 'UnicodeDecodeError']"));
}

TEST_F(FCPythonInterfaceTest, SaveDoesNotAskWhetherTheMethodExists) {
    module("Saved.py", recordingClass("Saved", "made"));
    {
        CFCPythonInterface python;
        EXPECT_EQ(python.executeSaveInterface("Saved", "Execute", "one"), -1);
        EXPECT_EQ(python.executeSaveInterface("Saved", "NoSuchMethod", "two"), -1);
    }
    EXPECT_TRUE(events("[('made', 'one'), 'Execute', ('made', 'two')]"));
    EXPECT_TRUE(pythonTrue("[kind for kind, text in record.errors] == ['AttributeError']"));
}

// Blocks.

TEST_F(FCPythonInterfaceTest, BlockRunsItsScriptAndKeepsItsFlags) {
    module("BlockScript.py", recordingClass("BlockScript", "made") + "    def Undo(self):\n        pass\n");
    CFCBlockNode block;
    block.SetScriptName(L"BlockScript");
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_FALSE(block.GetExecutingFlag());
    EXPECT_EQ(block.ExecuteBlockMethod("Undo"), 1);
    EXPECT_FALSE(block.GetExecutedFlag());
    EXPECT_EQ(block.CheckBlockExecuteMethod("Check"), 1);
    EXPECT_EQ(block.CheckBlockExecuteMethod("Fail"), 1);
    EXPECT_EQ(errorCount(), 1);
}

TEST_F(FCPythonInterfaceTest, BlockWithoutScriptNameAnswersZeroAndStaysExecuting) {
    CFCBlockNode block;
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 0);
    EXPECT_TRUE(block.GetExecutingFlag());
    EXPECT_FALSE(block.GetExecutedFlag());
}

TEST_F(FCPythonInterfaceTest, BlockOfAnotherScriptTypeCountsAsRun) {
    CFCBlockNode block;
    block.SetScriptType(1);
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_EQ(block.CheckBlockExecuteMethod("CanUndo"), 1);
    EXPECT_EQ(errorCount(), 0);
}

namespace {

class BreakpointBlock : public CFCBlockNode {
public:
    bool PrepareDebug(wchar_t const* method) override {
        prepared = method;
        return ready;
    }
    _object* GetDebuggerObject() override { return debugger; }
    void FinishDebug() override { ++finished; }
    bool ready = true;
    _object* debugger = nullptr;
    TuString prepared;
    int finished = 0;
};

} // namespace

TEST_F(FCPythonInterfaceTest, BreakpointRunsTheBlockUnderItsDebugger) {
    module("dbk/__init__.py", "");
    module("dbk/One.py", recordingClass("One", "made"));
    runPython("class Debugger:\n    def run(self, code):\n        record.events.append('run')\ndebugger = Debugger()");
    PyObject* const debugger = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "debugger");
    BreakpointBlock block;
    block.SetScriptName(L"dbk.One");
    block.debugger = debugger;
    block.ExecuteBlockMethod("Execute");
    EXPECT_TRUE(events("[('made', 100), 'Execute']")) << "without a breakpoint there is no debugger";
    block.SetBreakPointFlag(true);
    block.ExecuteBlockMethod("Execute");
    EXPECT_EQ(block.prepared, L"Execute");
    EXPECT_EQ(block.finished, 1);
    block.ready = false;
    block.ExecuteBlockMethod("Execute");
    EXPECT_EQ(block.finished, 1);
    tpy::Py_DECREF(debugger);
    EXPECT_TRUE(events("[('made', 100), 'Execute', 'run', ('made', 100), 'Execute']"));
}
