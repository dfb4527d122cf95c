#include "PythonTestSupport.h"

#include "flowmere/model/FCBlockNode.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

// A class that records its methods, and whether the block counts as running meanwhile.
std::string recordingBlock(std::string const& name) {
    return "import record\n"
           "class " +
           name +
           ":\n"
           "    def __init__(self, argument):\n"
           "        pass\n"
           "    def Execute(self):\n"
           "        record.events.append('Execute')\n"
           "    def Undo(self):\n"
           "        record.events.append('Undo')\n"
           "        return 0\n"
           "    def undo(self):\n"
           "        record.events.append('undo')\n"
           "    def CanUndo(self):\n"
           "        record.events.append('CanUndo')\n"
           "        return 0\n"
           "    def Fail(self):\n"
           "        raise ValueError('told so')\n";
}

// A block of a host with a debugger of its own, that notes what it is asked.
class DebuggedBlock : public CFCBlockNode {
public:
    bool PrepareDebug(wchar_t const* method) override {
        calls.push_back("prepare " + narrow(method));
        return prepares;
    }
    PyObject* GetDebuggerObject() override {
        calls.emplace_back("object");
        return debugger;
    }
    void FinishDebug() override { calls.emplace_back("finish"); }

    bool prepares = true;
    PyObject* debugger = nullptr;
    std::vector<std::string> calls;
};

// A block whose memory is marked when it goes, and given back only when the test has looked at it.
class MarkedBlock : public DebuggedBlock {
public:
    ~MarkedBlock() override = default;
    static void* operator new(std::size_t size) {
        s_size = size;
        s_memory = static_cast<unsigned char*>(std::malloc(size));
        return s_memory;
    }
    static void operator delete(void* memory) {
        std::memset(memory, kMark, s_size);
        s_gone = true;
    }
    // True when the block went, and nothing was written to it since. Gives the memory back.
    static bool wentUntouched() {
        bool untouched = s_gone;
        for (std::size_t index = 0; untouched && index < s_size; ++index)
            untouched = s_memory[index] == kMark;
        std::free(s_memory);
        s_memory = nullptr;
        s_gone = false;
        return untouched;
    }

private:
    static constexpr int kMark = 0xDD;
    static inline std::size_t s_size = 0;
    static inline unsigned char* s_memory = nullptr;
    static inline bool s_gone = false;
};

class BlockExecution : public PythonTest {
protected:
    BlockExecution() { module("Task.py", recordingBlock("Task")); }

    void givePythonScript(CFCBlockNode& block, wchar_t const* name = L"Task") {
        block.SetScriptCode(L"# in memory");
        block.SetScriptName(name);
    }

    // An object whose `run` executes what it is given.
    PyObject* makeDebugger() {
        runPython("class _Debugger:\n"
                  "    def run(self, code):\n"
                  "        record.events.append('run')\n"
                  "        exec(code, {})\n"
                  "_debugger = _Debugger()\n");
        PyObject* const made = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "_debugger");
        tpy::Py_XDECREF(made); // __main__ holds it
        return made;
    }
};

} // namespace

TEST_F(BlockExecution, ExecuteSetsTheExecutedFlag) {
    CFCBlockNode block;
    givePythonScript(block);
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_FALSE(block.GetExecutingFlag());
    EXPECT_TRUE(events("['Execute']"));
}

TEST_F(BlockExecution, UndoClearsTheExecutedFlag) {
    CFCBlockNode block;
    givePythonScript(block);
    block.SetExecutedFlag(true);
    EXPECT_EQ(block.ExecuteBlockMethod("Undo"), 1);
    EXPECT_FALSE(block.GetExecutedFlag());
    EXPECT_FALSE(block.GetExecutingFlag());
    EXPECT_TRUE(events("['Undo']"));
}

TEST_F(BlockExecution, OnlyTheExactNameIsAnUndo) {
    CFCBlockNode block;
    givePythonScript(block);
    EXPECT_EQ(block.ExecuteBlockMethod("undo"), 1);
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_TRUE(events("['undo']"));
}

TEST_F(BlockExecution, BlockWithoutScriptNameStaysExecuting) {
    CFCBlockNode block;
    block.SetExecutedFlag(true);
    EXPECT_EQ(block.ExecuteBlockMethod("Undo"), 0);
    EXPECT_TRUE(block.GetExecutingFlag());
    EXPECT_TRUE(block.GetExecutedFlag());
}

TEST_F(BlockExecution, OtherScriptTypesCountAsRun) {
    for (int const type : {1, 2, 3, 4, 9}) {
        DebuggedBlock block;
        givePythonScript(block);
        block.SetBreakPointFlag(true);
        block.SetScriptType(type);
        EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
        EXPECT_TRUE(block.GetExecutedFlag());
        EXPECT_FALSE(block.GetExecutingFlag());
        EXPECT_EQ(block.ExecuteBlockMethod("Undo"), 1);
        EXPECT_FALSE(block.GetExecutedFlag());
        EXPECT_EQ(block.CheckBlockExecuteMethod("CanUndo"), 1);
        EXPECT_TRUE(block.calls.empty());
    }
    EXPECT_TRUE(events("[]"));
    // Nor does such a block need a name.
    CFCBlockNode nameless;
    nameless.SetScriptType(EScriptType_TCMD);
    EXPECT_EQ(nameless.ExecuteBlockMethod("Execute"), 1);
}

TEST_F(BlockExecution, ResultOfTheScriptIsNotLookedAt) {
    CFCBlockNode block;
    givePythonScript(block);
    EXPECT_EQ(block.ExecuteBlockMethod("Fail"), 1);
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_TRUE(errors("[('ValueError', 'told so')]"));
    EXPECT_EQ(block.ExecuteBlockMethod("Missing"), 1);
    EXPECT_EQ(errorCount(), 2);
    givePythonScript(block, L"NoSuchModule");
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_EQ(errorCount(), 3);
    EXPECT_FALSE(block.GetExecutingFlag());
}

TEST_F(BlockExecution, CheckRunsTheMethodAndAlwaysAgrees) {
    CFCBlockNode block;
    givePythonScript(block);
    EXPECT_EQ(block.CheckBlockExecuteMethod("CanUndo"), 1);
    EXPECT_TRUE(events("['CanUndo']"));
    EXPECT_FALSE(block.GetExecutedFlag());
    EXPECT_FALSE(block.GetExecutingFlag());
    EXPECT_EQ(block.CheckBlockExecuteMethod("Fail"), 1);
    EXPECT_EQ(errorCount(), 1);
}

TEST_F(BlockExecution, CheckOfABlockWithoutScriptAgreesToo) {
    CFCBlockNode block;
    EXPECT_EQ(block.CheckBlockExecuteMethod("CanUndo"), 1);
    EXPECT_TRUE(events("[]"));
    EXPECT_EQ(block.CheckBlockExecuteMethod(nullptr), 1);
}

TEST_F(BlockExecution, NullMethodCallsNothing) {
    CFCBlockNode block;
    givePythonScript(block);
    EXPECT_EQ(block.ExecuteBlockMethod(nullptr), 1);
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_TRUE(events("[]"));
}

TEST_F(BlockExecution, ScriptNamesOutsideAsciiAreFound) {
    module("\xC3\x84nderung.py", recordingBlock("\xC3\x84nderung"));
    CFCBlockNode block;
    givePythonScript(block, L"\u00C4nderung");
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(events("['Execute']"));
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(BlockExecution, EachRunSeesTheCurrentText) {
    CFCBlockNode block;
    givePythonScript(block, L"Changing");
    module("Changing.py", recordingBlock("Changing"));
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    std::string changed = recordingBlock("Changing");
    changed.replace(changed.find("'Execute'"), 9, "'Changed'");
    module("Changing.py", changed);
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(events("['Execute', 'Changed']"));
}

// A script that destroys the block it runs on

TEST_F(BlockExecution, ScriptMayDestroyItsBlock) {
    module("Ending.py", "import record\nclass Ending:\n    def __init__(self, argument):\n        pass\n"
                        "    def Execute(self):\n        record.call()\n"
                        "    def CanUndo(self):\n        record.call()\n");
    for (char const* method : {"Execute", "CanUndo"}) {
        MarkedBlock* const block = new MarkedBlock;
        givePythonScript(*block, L"Ending");
        onScriptCall([block] { delete block; });
        int const result = std::string(method) == "Execute" ? block->ExecuteBlockMethod(method)
                                                            : block->CheckBlockExecuteMethod(method);
        EXPECT_EQ(result, 1) << method;
        EXPECT_TRUE(MarkedBlock::wentUntouched()) << method;
    }
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(BlockExecution, ScriptUnderADebuggerMayDestroyItsBlock) {
    module("pkg/__init__.py", "");
    module("pkg/Ending.py", "import record\nclass Ending:\n    def __init__(self, argument):\n        pass\n"
                            "    def Execute(self):\n        record.call()\n");
    MarkedBlock* const block = new MarkedBlock;
    givePythonScript(*block, L"pkg.Ending");
    block->SetBreakPointFlag(true);
    block->debugger = makeDebugger();
    onScriptCall([block] { delete block; });
    EXPECT_EQ(block->ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(MarkedBlock::wentUntouched());
    EXPECT_TRUE(events("['run']"));
    EXPECT_EQ(errorCount(), 0);
}

// Under a debugger

TEST_F(BlockExecution, BreakPointRunsUnderTheBlocksDebugger) {
    module("pkg/__init__.py", "");
    module("pkg/Task.py", recordingBlock("Task"));
    DebuggedBlock block;
    givePythonScript(block, L"pkg.Task");
    block.SetBreakPointFlag(true);
    block.debugger = makeDebugger();
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_EQ(block.calls, (std::vector<std::string>{"prepare Execute", "object", "finish"}));
    EXPECT_TRUE(events("['run', 'Execute']"));
    EXPECT_TRUE(block.GetExecutedFlag());
    EXPECT_FALSE(block.GetExecutingFlag());
    EXPECT_EQ(block.ExecuteBlockMethod("Undo"), 1);
    EXPECT_FALSE(block.GetExecutedFlag());
    EXPECT_TRUE(events("['run', 'Execute', 'run', 'Undo']"));
    EXPECT_EQ(errorCount(), 0);
}

TEST_F(BlockExecution, WithoutBreakPointThereIsNoDebugger) {
    DebuggedBlock block;
    givePythonScript(block);
    block.debugger = makeDebugger();
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_TRUE(block.calls.empty());
    EXPECT_TRUE(events("['Execute']"));
}

TEST_F(BlockExecution, BlockThatDoesNotPrepareRunsThePlainWay) {
    DebuggedBlock block;
    givePythonScript(block);
    block.SetBreakPointFlag(true);
    block.debugger = makeDebugger();
    block.prepares = false;
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_EQ(block.calls, (std::vector<std::string>{"prepare Execute"}));
    EXPECT_TRUE(events("['Execute']"));
}

TEST_F(BlockExecution, WithoutADebuggerObjectTheRunIsPlain) {
    DebuggedBlock block;
    givePythonScript(block);
    block.SetBreakPointFlag(true);
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 1);
    EXPECT_EQ(block.calls, (std::vector<std::string>{"prepare Execute", "object"}));
    EXPECT_TRUE(events("['Execute']"));
}

TEST_F(BlockExecution, NamelessBlockIsNotPrepared) {
    DebuggedBlock block;
    block.SetBreakPointFlag(true);
    EXPECT_EQ(block.ExecuteBlockMethod("Execute"), 0);
    EXPECT_TRUE(block.calls.empty());
}

TEST_F(BlockExecution, CheckNeverAsksTheDebugger) {
    DebuggedBlock block;
    givePythonScript(block);
    block.SetBreakPointFlag(true);
    block.debugger = makeDebugger();
    EXPECT_EQ(block.CheckBlockExecuteMethod("CanUndo"), 1);
    EXPECT_TRUE(block.calls.empty());
    EXPECT_TRUE(events("['CanUndo']"));
}
