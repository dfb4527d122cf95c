#include "PythonTestSupport.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/execution/FCCommand.h"
#include "flowmere/execution/FCExecutionMechanism.h"
#include "flowmere/execution/FCExecutive.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"

#include <map>
#include <memory>
#include <string>

using namespace flowmere::test;

namespace {

using Mode = CFCProcessNode::CFCProcessExecutionMode;
using Status = CFCProcessNode::CFCProcessExecutionStatus;
using Type = CFCProcessNode::CFCProcessExecutionType;

// A host's mechanism: the timer calls the block done when a tick has run one.
class Mechanism : public FCExecutionMechanism {
public:
    Mechanism() { FCExecutionMechanism::setExecutionMode(Type::ExecutionByTimer); }
    void TProcessTimerProc(void* handle, unsigned int message, unsigned int timer, void* time) override {
        ++ticks;
        FCExecutionMechanism::TProcessTimerProc(handle, message, timer, time);
        CFCProcessNode* const process = getExecutive()->getActiveProcess();
        if (movesStatus && process != nullptr && process->getExecutionStatus() == Status::ExecutionRunning)
            process->setExecutionStatus(Status::ExecutionReady);
    }
    void tick() { TProcessTimerProc(nullptr, 0, 0, nullptr); }
    Mode direction() const { return mode; }
    void setDirection(Mode value) { mode = value; }
    void setRunning(bool value) { running = value; }
    bool movesStatus = true;
    int ticks = 0;
};

class FCExecutionMechanismTest : public PythonTest {
protected:
    FCExecutionMechanismTest() {
        activateFlowmereCommand()->setExecutionMechanism(&mechanism);
        process = CFCPointerConverter::GetProcessNode(factory.Create(56));
        getExecutive()->setActiveProcess(process);
        getExecutive()->setExeutingBlock(nullptr);
        getExecutive()->setExecutionMode(Mode::ExecutionContinue);
    }
    ~FCExecutionMechanismTest() override {
        activateFlowmereCommand()->setExecutionMechanism(nullptr);
        getExecutive()->setActiveProcess(nullptr);
        getExecutive()->setExeutingBlock(nullptr);
        CFCNodeHelper::DestroyTree(process);
    }

    // A block whose script records what is called on it.
    CFCBlockNode* block(wchar_t const* id, IFCNode* parent = nullptr, int type = 57) {
        CFCBlockNode* const node = CFCPointerConverter::GetBlockNode(factory.Create(type));
        (parent != nullptr ? parent : process)->AppendChild(node, false);
        node->SetNodeId(id);
        std::string const name = "blk_" + narrow(id);
        std::string body = "import record\nclass " + name + ":\n    def __init__(self, argument):\n        pass\n";
        for (char const* method : {"Execute", "Undo", "CanUndo", "CanSkip"}) {
            body += "    def " + std::string(method) + "(self):\n        record.events.append('" + narrow(id) + "." +
                    method + "')\n        return 1\n";
        }
        module(name + ".py", body);
        node->SetScriptName(TuString(name.c_str()));
        return node;
    }
    void connect(CFCBlockNode* from, CFCBlockNode* to, IFCNode* container = nullptr) {
        CFCConnector* const connector = CFCPointerConverter::GetConnector(factory.Create(68));
        connector->SetStartNode(6, from, L"");
        connector->SetEndNode(2, to, L"");
        (container != nullptr ? container : process)->AddConnector(connector);
    }
    // A, B and C in a row.
    void row() {
        a = block(L"A");
        b = block(L"B");
        c = block(L"C");
        connect(a, b);
        connect(b, c);
    }
    void clearEvents() { runPython("record.events.clear()"); }

    CFCNodeFactory factory;
    Mechanism mechanism;
    CFCProcessNode* process = nullptr;
    CFCBlockNode* a = nullptr;
    CFCBlockNode* b = nullptr;
    CFCBlockNode* c = nullptr;
};

} // namespace

TEST_F(FCExecutionMechanismTest, NewMechanismRunsItsOwnLoopAndHasNothingToRun) {
    FCExecutionMechanism fresh;
    EXPECT_EQ(fresh.getExecutionMode(), Type::ExecutionByLoop);
    EXPECT_EQ(fresh.getExecutingBlock(), nullptr);
    EXPECT_FALSE(fresh.isRunning());
    fresh.setFCWindow(reinterpret_cast<CFCWindow*>(&fresh));
    EXPECT_EQ(fresh.getFCWindow(), reinterpret_cast<CFCWindow*>(&fresh));
}

TEST_F(FCExecutionMechanismTest, BeginTakesTheStartBlockAndReturnsAtOnce) {
    row();
    EXPECT_TRUE(mechanism.onBegin());
    EXPECT_EQ(mechanism.getExecutingBlock(), a);
    EXPECT_EQ(getExecutive()->getExeutingBlock(), a);
    EXPECT_EQ(mechanism.ticks, 0);
    EXPECT_FALSE(mechanism.isRunning());
}

TEST_F(FCExecutionMechanismTest, BeginWhileABlockRunsIsFalseAndChangesNothing) {
    row();
    process->setExecutionStatus(Status::ExecutionRunning);
    EXPECT_FALSE(mechanism.onBegin());
    EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
}

TEST_F(FCExecutionMechanismTest, CommandsWithoutAnActiveProcessAreFalse) {
    row();
    getExecutive()->setActiveProcess(nullptr);
    EXPECT_FALSE(mechanism.onBegin());
    EXPECT_FALSE(mechanism.onContinue());
    EXPECT_FALSE(mechanism.onStep());
    EXPECT_FALSE(mechanism.onUndo());
    EXPECT_FALSE(mechanism.onUndoStep());
    mechanism.setRunning(true);
    mechanism.tick();
    EXPECT_FALSE(mechanism.isRunning());
    getExecutive()->setActiveProcess(process);
}

TEST_F(FCExecutionMechanismTest, TickRunsOneBlockAndFindsTheNext) {
    row();
    mechanism.movesStatus = false;
    mechanism.onBegin();
    mechanism.tick();
    EXPECT_TRUE(events("['A.Execute']"));
    EXPECT_EQ(process->getExecutionStatus(), Status::ExecutionRunning);
    EXPECT_EQ(process->getProcessSaveStatus(), CFCProcessNode::ProcessUnsaved);
    EXPECT_TRUE(process->GetExecutedFlag());
    EXPECT_TRUE(a->GetExecutedFlag());
    EXPECT_FALSE(a->GetExecutingFlag());
    EXPECT_EQ(mechanism.getExecutingBlock(), b);
    EXPECT_EQ(getExecutive()->getExeutingBlock(), b);
    EXPECT_EQ(b->getPreviouslyExecutedBlock(), a);
    // Until the host moves the status nothing more happens, and the loop is left as it is.
    for (bool running : {true, false}) {
        mechanism.setRunning(running);
        mechanism.tick();
        EXPECT_EQ(mechanism.isRunning(), running);
    }
    EXPECT_TRUE(events("['A.Execute']"));
}

TEST_F(FCExecutionMechanismTest, FlowEndsWithNoBlock) {
    row();
    mechanism.onBegin();
    for (int count = 0; count < 5; ++count)
        mechanism.tick();
    EXPECT_TRUE(events("['A.Execute', 'B.Execute', 'C.Execute']"));
    EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
    EXPECT_EQ(getExecutive()->getExeutingBlock(), nullptr);
    EXPECT_FALSE(mechanism.onContinue());
}

TEST_F(FCExecutionMechanismTest, LoopRunsTheWholeFlowInsideTheCommand) {
    row();
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    EXPECT_TRUE(mechanism.onBegin());
    EXPECT_TRUE(events("['A.Execute', 'B.Execute', 'C.Execute']"));
    EXPECT_EQ(mechanism.ticks, 3);
    EXPECT_FALSE(mechanism.isRunning());
}

TEST_F(FCExecutionMechanismTest, LoopWaitsUntilAnotherThreadOfTheScriptCallsTheBlockDone) {
    a = block(L"A");
    b = block(L"B");
    connect(a, b);
    // The mechanism of the library alone, and a Python thread that moves the status.
    class Waiting : public FCExecutionMechanism {
    public:
        void TProcessTimerProc(void*, unsigned int, unsigned int, void*) override {
            if (getExecutive()->getActiveProcess()->getExecutionStatus() == Status::ExecutionRunning) {
                ++waits;
                if (pythonTrue("record.done"))
                    getExecutive()->getActiveProcess()->setExecutionStatus(Status::ExecutionReady);
            }
            FCExecutionMechanism::TProcessTimerProc(nullptr, 0, 0, nullptr);
        }
        int waits = 0;
    } waiting;
    runPython("import threading, time\nrecord.done = False\n"
              "def _finish():\n    time.sleep(0.02)\n    record.done = True\n"
              "record.thread = threading.Thread(target=_finish)\nrecord.thread.start()");
    activateFlowmereCommand()->setExecutionMechanism(&waiting);
    EXPECT_TRUE(waiting.onBegin());
    runPython("record.thread.join()");
    EXPECT_GT(waiting.waits, 1);
    EXPECT_TRUE(events("['A.Execute', 'B.Execute']"));
}

TEST_F(FCExecutionMechanismTest, LoopLeavesTheInterpreterToAThreadThatCallsTheBlockDone) {
    a = block(L"A");
    b = block(L"B");
    connect(a, b);
    // The thread comes to its turn only when the waiting loop gives the interpreter lock up.
    onScriptCall([this] {
        if (process->getExecutionStatus() == Status::ExecutionRunning)
            process->setExecutionStatus(Status::ExecutionReady);
    });
    runPython("import threading, time\nrecord.done = False\n"
              "def _finish():\n    while not record.done:\n        time.sleep(0.005)\n        record.call()\n"
              "record.thread = threading.Thread(target=_finish)\nrecord.thread.start()");
    FCExecutionMechanism plain;
    EXPECT_TRUE(plain.onBegin());
    EXPECT_FALSE(plain.isRunning());
    runPython("record.done = True\nrecord.thread.join()");
    EXPECT_TRUE(events("['A.Execute', 'B.Execute']"));
}

TEST_F(FCExecutionMechanismTest, StatusMovedByTheScriptItselfKeepsTheLoopGoing) {
    row();
    for (char const* name : {"A", "B", "C"})
        module("blk_" + std::string(name) + ".py", "import record\nclass blk_" + std::string(name) +
                                                       ":\n    def __init__(self, argument):\n        pass\n"
                                                       "    def Execute(self):\n        record.events.append('" +
                                                       name + "')\n        record.call()\n");
    onScriptCall([this] { process->setExecutionStatus(Status::ExecutionDone); });
    FCExecutionMechanism plain;
    EXPECT_TRUE(plain.onBegin());
    EXPECT_TRUE(events("['A', 'B', 'C']"));
    EXPECT_FALSE(plain.isRunning());
}

TEST_F(FCExecutionMechanismTest, ScriptRunsWithItsBlockExecutingAndNotExecuted) {
    row();
    a->SetExecutedFlag(true);
    a->SetExecutionStateType(static_cast<EExecutionStateType>(6));
    module("blk_A.py", "import record\nclass blk_A:\n    def __init__(self, argument):\n        pass\n"
                       "    def Execute(self):\n        record.call()\n");
    int calls = 0;
    onScriptCall([&] {
        ++calls;
        EXPECT_TRUE(a->GetExecutingFlag());
        EXPECT_FALSE(a->GetExecutedFlag());
        EXPECT_FALSE(process->GetExecutedFlag());
        EXPECT_EQ(process->getExecutionStatus(), Status::ExecutionRunning);
        EXPECT_EQ(mechanism.getExecutingBlock(), a);
        EXPECT_EQ(getExecutive()->getExeutingBlock(), a);
    });
    mechanism.onBegin();
    getExecutive()->setExeutingBlock(nullptr);
    mechanism.tick();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(a->GetExecutedFlag());
    EXPECT_EQ(a->GetExecutionStateType(), static_cast<EExecutionStateType>(6)) << "the state is the host's";
}

TEST_F(FCExecutionMechanismTest, UndoTickAsksTheBlockAndGoesOnWithThatOfTheExecutive) {
    row();
    mechanism.onBegin();
    mechanism.tick();
    // The two differ only where a host sets them apart.
    mechanism.setDirection(Mode::ExecutionUndo);
    mechanism.setExecutingBlock(b);
    getExecutive()->setExeutingBlock(a);
    clearEvents();
    mechanism.tick();
    EXPECT_TRUE(events("['B.CanUndo', 'A.Undo']"));
    // And where the executive has none, nothing is undone.
    mechanism.setExecutingBlock(b);
    getExecutive()->setExeutingBlock(nullptr);
    clearEvents();
    mechanism.setRunning(true);
    mechanism.tick();
    EXPECT_TRUE(events("['B.CanUndo']"));
    EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
    EXPECT_FALSE(mechanism.isRunning());
}

TEST_F(FCExecutionMechanismTest, StepRunsExactlyOneBlock) {
    row();
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    EXPECT_TRUE(mechanism.onStep());
    EXPECT_TRUE(events("['A.Execute']")) << "without a current block the first inner block is taken";
    EXPECT_FALSE(mechanism.isRunning());
    EXPECT_EQ(mechanism.direction(), Mode::ExecutionStep);
    EXPECT_EQ(getExecutive()->getExecutionMode(), Mode::ExecutionStep);
    EXPECT_TRUE(mechanism.onStep());
    EXPECT_TRUE(events("['A.Execute', 'B.Execute']"));
    EXPECT_EQ(mechanism.getExecutingBlock(), c);
}

TEST_F(FCExecutionMechanismTest, StepOfAnEmptyProcessIsFalse) {
    EXPECT_FALSE(mechanism.onStep());
}

TEST_F(FCExecutionMechanismTest, StopFlagEndsTheRunBeforeItsBlock) {
    row();
    c->SetStopFlag(true);
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    mechanism.onBegin();
    EXPECT_TRUE(events("['A.Execute', 'B.Execute']"));
    EXPECT_EQ(mechanism.getExecutingBlock(), c);
    EXPECT_TRUE(mechanism.onContinue());
    EXPECT_TRUE(events("['A.Execute', 'B.Execute', 'C.Execute']"));
}

TEST_F(FCExecutionMechanismTest, StopFlagOfTheStartBlockDoesNotHinderIt) {
    row();
    a->SetStopFlag(true);
    mechanism.onBegin();
    mechanism.tick();
    EXPECT_TRUE(events("['A.Execute']"));
}

TEST_F(FCExecutionMechanismTest, SkippedBlockIsAskedAndRunsAllTheSame) {
    row();
    b->SetSkipFlag(true);
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    mechanism.onBegin();
    EXPECT_TRUE(events("['A.Execute', 'B.CanSkip', 'B.Execute', 'C.Execute']"));
}

TEST_F(FCExecutionMechanismTest, UndoAtTheFirstBlockComesToNothing) {
    row();
    mechanism.onBegin();
    EXPECT_TRUE(mechanism.onUndo());
    EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
    mechanism.setRunning(true);
    mechanism.tick();
    EXPECT_FALSE(mechanism.isRunning());
    EXPECT_TRUE(events("[]"));
}

TEST_F(FCExecutionMechanismTest, UndoStepGoesBackToTheBlockThatTheFlowCameFrom) {
    row();
    mechanism.onBegin();
    mechanism.tick();
    mechanism.tick();
    clearEvents();
    EXPECT_TRUE(mechanism.onUndoStep());
    EXPECT_EQ(mechanism.getExecutingBlock(), b);
    mechanism.tick();
    EXPECT_TRUE(events("['B.CanUndo', 'B.Undo']"));
    EXPECT_FALSE(b->GetExecutedFlag());
    EXPECT_EQ(mechanism.getExecutingBlock(), a);
    EXPECT_EQ(a->getPreviouslyExecutedBlock(), b) << "the way back turns the chain around";
    // Another step from the first block leads to the second.
    mechanism.setRunning(true);
    mechanism.tick();
    EXPECT_EQ(mechanism.getExecutingBlock(), b);
    EXPECT_FALSE(mechanism.isRunning());
}

TEST_F(FCExecutionMechanismTest, UndoGoesBackAndForthAlongTheChainItTurns) {
    row();
    CFCBlockNode* const d = block(L"D");
    connect(c, d);
    mechanism.onBegin();
    for (int count = 0; count < 3; ++count)
        mechanism.tick();
    clearEvents();
    mechanism.onUndo();
    for (int count = 0; count < 4; ++count)
        mechanism.tick();
    EXPECT_TRUE(events("['C.CanUndo', 'C.Undo', 'B.CanUndo', 'B.Undo', 'C.CanUndo', 'C.Undo', "
                       "'B.CanUndo', 'B.Undo']"));
}

TEST_F(FCExecutionMechanismTest, UndoAfterAFailureBeginsWithTheFailedBlock) {
    row();
    mechanism.onBegin();
    mechanism.tick();
    process->setExecutionStatus(Status::ExecutionFailed);
    clearEvents();
    EXPECT_FALSE(mechanism.onContinue());
    EXPECT_FALSE(mechanism.onStep());
    EXPECT_TRUE(mechanism.onUndo());
    EXPECT_EQ(mechanism.getExecutingBlock(), b);
    mechanism.tick();
    EXPECT_TRUE(events("['B.CanUndo', 'B.Undo']"));
}

TEST_F(FCExecutionMechanismTest, UndoIsRefusedForOtherStatesAndWithoutABlock) {
    row();
    EXPECT_FALSE(mechanism.onUndo());
    mechanism.onBegin();
    process->setExecutionStatus(Status::ExecutionRunning);
    EXPECT_FALSE(mechanism.onUndo());
    EXPECT_FALSE(mechanism.onUndoStep());
    EXPECT_EQ(mechanism.direction(), Mode::ExecutionContinue);
    process->setExecutionStatus(static_cast<Status>(4));
    EXPECT_FALSE(mechanism.onUndo());
    EXPECT_FALSE(mechanism.onContinue());
    EXPECT_FALSE(mechanism.onStep());
}

TEST_F(FCExecutionMechanismTest, ContinueAfterAnUndoStaysOrMovesByTheStatus) {
    for (bool hasRun : {false, true}) {
        row();
        mechanism.setDirection(Mode::ExecutionContinue);
        mechanism.onBegin();
        mechanism.tick();
        mechanism.tick();
        mechanism.onUndoStep();
        mechanism.tick();
        ASSERT_EQ(mechanism.getExecutingBlock(), a);
        process->setExecutionStatus(hasRun ? Status::ExecutionDone : Status::ExecutionReady);
        EXPECT_TRUE(mechanism.onContinue());
        EXPECT_EQ(mechanism.getExecutingBlock(), hasRun ? b : a);
        EXPECT_EQ(mechanism.direction(), Mode::ExecutionContinue);
        EXPECT_EQ(getExecutive()->getExecutionMode(), Mode::ExecutionContinue);
        process->setExecutionStatus(Status::ExecutionReady);
        for (CFCBlockNode* node : {a, b, c}) {
            node->RemoveConnectors();
            node->Delete();
        }
    }
}

TEST_F(FCExecutionMechanismTest, StepAfterAnUndoMovesOn) {
    row();
    mechanism.onBegin();
    mechanism.tick();
    mechanism.tick();
    mechanism.onUndoStep();
    mechanism.tick();
    clearEvents();
    EXPECT_TRUE(mechanism.onStep());
    EXPECT_EQ(mechanism.getExecutingBlock(), b);
    mechanism.tick();
    EXPECT_TRUE(events("['B.Execute']"));
}

TEST_F(FCExecutionMechanismTest, BeginAfterAnUndoKeepsTheDirection) {
    row();
    mechanism.onBegin();
    mechanism.tick();
    mechanism.onUndo();
    clearEvents();
    mechanism.onBegin();
    mechanism.tick();
    EXPECT_TRUE(events("['A.CanUndo', 'A.Undo']"));
}

TEST_F(FCExecutionMechanismTest, FlowGoesThroughASubProcess) {
    a = block(L"A");
    CFCBlockNode* const sub = block(L"Sub", nullptr, 61);
    b = block(L"B");
    CFCBlockNode* const one = block(L"One", sub);
    CFCBlockNode* const two = block(L"Two", sub);
    connect(a, sub);
    connect(sub, b);
    connect(one, two, sub);
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    mechanism.onBegin();
    EXPECT_TRUE(events("['A.Execute', 'Sub.Execute', 'One.Execute', 'Two.Execute', 'B.Execute']"));
}

TEST_F(FCExecutionMechanismTest, ErrorsOfAScriptDoNotStopTheFlow) {
    row();
    module("blk_B.py", "class blk_B:\n    def __init__(self, argument):\n        pass\n"
                       "    def Execute(self):\n        raise ValueError('no')\n");
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    mechanism.onBegin();
    EXPECT_TRUE(events("['A.Execute', 'C.Execute']"));
    EXPECT_TRUE(errors("[('ValueError', 'no')]"));
}

TEST_F(FCExecutionMechanismTest, BlockWithoutScriptNameIsPassed) {
    row();
    CFCBlockNode* const bare = CFCPointerConverter::GetBlockNode(factory.Create(57));
    process->AppendChild(bare, false);
    connect(c, bare);
    mechanism.setExecutionMode(Type::ExecutionByLoop);
    mechanism.onBegin();
    EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
    EXPECT_FALSE(bare->GetExecutingFlag());
}

TEST_F(FCExecutionMechanismTest, NamedCommandsDriveTheMechanism) {
    row();
    CFCCommand* const command = activateFlowmereCommand();
    EXPECT_EQ(command->ExecuteCommand("Execution Begin", nullptr), 0);
    EXPECT_EQ(mechanism.getExecutingBlock(), a);
    mechanism.tick();
    EXPECT_EQ(command->ExecuteCommand("Execution Step", nullptr), 0);
    EXPECT_EQ(mechanism.direction(), Mode::ExecutionStep);
    mechanism.tick();
    EXPECT_EQ(command->ExecuteCommand("Execution Undo", nullptr), 0);
    EXPECT_EQ(mechanism.direction(), Mode::ExecutionUndo);
    EXPECT_EQ(command->ExecuteCommand("Execution Undo Step", nullptr), 0);
    EXPECT_EQ(mechanism.direction(), Mode::ExecutionUndoStep);
    EXPECT_EQ(command->ExecuteCommand("Continue Execution", nullptr), 0);
    EXPECT_EQ(mechanism.direction(), Mode::ExecutionContinue);
    process->setExecutionStatus(Status::ExecutionRunning);
    EXPECT_EQ(command->ExecuteCommand("Execution Begin", nullptr), 0) << "what the mechanism says is not passed on";
}

TEST_F(FCExecutionMechanismTest, ForwardTickLeavesTheMessageOfTheHook) {
    row();
    mechanism.onBegin();
    mechanism.tick();
    wchar_t const* text = nullptr;
    EXPECT_EQ(activateFlowmereCommand()->GetValues("Error", &text, nullptr), 0);
    EXPECT_EQ(TuString(text), L"Resource not found\n");
}

// What scripts may destroy.

TEST_F(FCExecutionMechanismTest, EndOfACopyOfABlockHindersNothing) {
    row();
    { CFCBlockNode const copy(*a); }
    b->SetNodeHandle(a->GetNodeHandle());
    mechanism.onBegin();
    mechanism.tick();
    mechanism.tick();
    EXPECT_TRUE(events("['A.Execute', 'B.Execute']"));
    EXPECT_EQ(mechanism.getExecutingBlock(), c);
}

TEST_F(FCExecutionMechanismTest, ScriptThatDestroysItsBlockEndsTheRun) {
    for (bool backward : {false, true}) {
        row();
        mechanism.setDirection(Mode::ExecutionContinue);
        mechanism.onBegin();
        mechanism.tick();
        if (backward) {
            mechanism.setDirection(Mode::ExecutionUndo);
        }
        module("blk_B.py", "import record\nclass blk_B:\n    def __init__(self, argument):\n        pass\n"
                           "    def CanUndo(self):\n        pass\n"
                           "    def Execute(self):\n        record.call()\n"
                           "    def Undo(self):\n        record.call()\n");
        onScriptCall([this] {
            b->RemoveConnectors();
            b->Delete();
        });
        mechanism.setRunning(true);
        process->SetExecutedFlag(false);
        mechanism.tick();
        EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
        EXPECT_EQ(getExecutive()->getExeutingBlock(), nullptr);
        EXPECT_FALSE(mechanism.isRunning());
        EXPECT_TRUE(process->GetExecutedFlag());
        EXPECT_EQ(errorCount(), 0);
        for (CFCBlockNode* node : {a, c}) {
            node->RemoveConnectors();
            node->Delete();
        }
    }
}

TEST_F(FCExecutionMechanismTest, QuestionThatDestroysItsBlockEndsTheRun) {
    for (char const* question : {"CanUndo", "CanSkip"}) {
        row();
        bool const backward = std::string(question) == "CanUndo";
        mechanism.setDirection(Mode::ExecutionContinue);
        b->SetSkipFlag(!backward);
        mechanism.onBegin();
        if (backward) {
            mechanism.tick();
            mechanism.setDirection(Mode::ExecutionUndo);
        }
        module("blk_B.py", "import record\nclass blk_B:\n    def __init__(self, argument):\n        pass\n    def " +
                               std::string(question) + "(self):\n        record.call()\n");
        onScriptCall([this] {
            b->RemoveConnectors();
            b->Delete();
        });
        mechanism.setRunning(true);
        mechanism.tick();
        EXPECT_EQ(mechanism.getExecutingBlock(), nullptr) << question;
        EXPECT_EQ(getExecutive()->getExeutingBlock(), nullptr) << question;
        EXPECT_FALSE(mechanism.isRunning()) << question;
        EXPECT_EQ(errorCount(), 0) << question;
        for (CFCBlockNode* node : {a, c}) {
            node->RemoveConnectors();
            node->Delete();
        }
    }
}

TEST_F(FCExecutionMechanismTest, ScriptThatDestroysTheProcessEndsTheRun) {
    for (char const* method : {"CanUndo", "Undo", "Execute", "CanSkip"}) {
        row();
        std::string const name = method;
        bool const backward = name == "CanUndo" || name == "Undo";
        mechanism.setDirection(Mode::ExecutionContinue);
        b->SetSkipFlag(name == "CanSkip");
        mechanism.onBegin();
        if (name != "CanSkip")
            mechanism.tick();
        if (backward)
            mechanism.setDirection(Mode::ExecutionUndo);
        module("blk_B.py", "import record\nclass blk_B:\n    def __init__(self, argument):\n        pass\n"
                           "    def CanUndo(self):\n        pass\n    def " +
                               name + "(self):\n        record.call()\n");
        onScriptCall([this] { CFCNodeHelper::DestroyTree(process); });
        mechanism.setRunning(true);
        mechanism.tick();
        EXPECT_EQ(getExecutive()->getActiveProcess(), nullptr) << method;
        EXPECT_EQ(getExecutive()->getExeutingBlock(), nullptr) << method;
        EXPECT_EQ(mechanism.getExecutingBlock(), nullptr) << method;
        EXPECT_FALSE(mechanism.isRunning()) << method;
        EXPECT_FALSE(mechanism.onStep()) << method;
        EXPECT_EQ(errorCount(), 0) << method;
        process = CFCPointerConverter::GetProcessNode(factory.Create(56));
        getExecutive()->setActiveProcess(process);
    }
}

TEST_F(FCExecutionMechanismTest, CopyOfAMechanismForgetsWhatIsGoneToo) {
    row();
    mechanism.onBegin();
    FCExecutionMechanism copy(mechanism);
    EXPECT_EQ(copy.getExecutingBlock(), a);
    EXPECT_EQ(copy.getExecutionMode(), Type::ExecutionByTimer);
    a->RemoveConnectors();
    a->Delete();
    EXPECT_EQ(copy.getExecutingBlock(), nullptr);
    EXPECT_EQ(mechanism.getExecutingBlock(), nullptr);
    EXPECT_FALSE(mechanism.onContinue());
}

TEST_F(FCExecutionMechanismTest, ScriptThatTakesTheProcessAwayEndsTheRun) {
    // The host's hook for a started block does what a script of the host may do, too.
    row();
    class Removing : public Mechanism {
    public:
        void TProcessTimerProc(void* handle, unsigned int message, unsigned int timer, void* time) override {
            Mechanism::TProcessTimerProc(handle, message, timer, time);
            if (ticks == 2)
                getExecutive()->setActiveProcess(nullptr);
        }
    } removing;
    removing.setExecutionMode(Type::ExecutionByLoop);
    removing.onBegin();
    EXPECT_FALSE(removing.isRunning());
    EXPECT_TRUE(events("['A.Execute', 'B.Execute']"));
    getExecutive()->setActiveProcess(process);
}

// The hook for started blocks needs a command object of its own, which is the one of its process.
TEST(FCExecutionMechanismDeathTest, HookSeesEachStartedBlockAndMayDestroyIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            class Hook : public CFCCommand {
            public:
                using CFCCommand::ExecuteCommand;
                using CFCCommand::SetValues;
                int SetValues(char const* name, char const* type, void const* value, int count) override {
                    if (std::string(name) == "Execute Block" && std::string(type) == "string" && count == 0)
                        path = static_cast<char const*>(value);
                    return CFCCommand::SetValues(name, type, value, count);
                }
                int ExecuteCommand(char const* name, void const* argument) override {
                    started += std::string(name) + (argument == nullptr ? "|" : "?") + path + ";";
                    int const result = CFCCommand::ExecuteCommand(name, argument);
                    if (started.find(".B;") != std::string::npos) {
                        CFCBlockNode* const block = executive.getExeutingBlock();
                        block->RemoveConnectors();
                        block->Delete();
                    }
                    return result;
                }
                std::string path;
                std::string started;
            };
            Hook* const hook = new Hook;
            CFCNodeFactory factory;
            CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(factory.Create(56));
            process->SetNodeId(L"P");
            CFCBlockNode* blocks[2] = {};
            for (int index = 0; index < 2; ++index) {
                blocks[index] = CFCPointerConverter::GetBlockNode(factory.Create(57));
                process->AppendChild(blocks[index], false);
                blocks[index]->SetNodeId(index == 0 ? L"A" : L"B");
                blocks[index]->SetScriptType(1);
            }
            CFCConnector* const connector = CFCPointerConverter::GetConnector(factory.Create(68));
            connector->SetStartNode(6, blocks[0], L"");
            connector->SetEndNode(2, blocks[1], L"");
            process->AddConnector(connector);
            getExecutive()->setActiveProcess(process);
            Mechanism mechanism;
            mechanism.onBegin();
            mechanism.tick();
            std::string const first = hook->started;
            mechanism.setRunning(true);
            mechanism.tick();
            std::fprintf(stderr, "%s %s\n", first.c_str(), hook->started.c_str());
            bool const good = first == "Execute Block|P.A;" &&
                              hook->started == "Execute Block|P.A;Execute Block|P.B;" &&
                              mechanism.getExecutingBlock() == nullptr && !mechanism.isRunning() &&
                              getExecutive()->getExeutingBlock() == nullptr;
            std::_Exit(good ? 0 : 3);
        },
        testing::ExitedWithCode(0), "");
}

// The executive.

TEST(FCExecutive, LastOneBuiltAnswers) {
    activateFlowmereCommand();
    CFCExecutive* const before = getExecutive();
    ASSERT_NE(before, nullptr);
    CFCExecutive const copy(*before);
    EXPECT_EQ(getExecutive(), before);
    EXPECT_EQ(copy.getActiveProcess(), before->getActiveProcess());
}

TEST(FCExecutiveDeathTest, DestructorDestroysTheActiveProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            CFCNodeFactory factory;
            CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(factory.Create(56));

            int const handle = process->GetNodeHandle();
            {
                CFCExecutive executive;
                executive.setActiveProcess(process);
                CFCExecutive const copy(executive);
                if (getExecutive() != &executive)
                    std::_Exit(3);
            }
            std::_Exit(CFCNodeManager::GetNode(handle) == nullptr ? 0 : 4);
        },
        testing::ExitedWithCode(0), "");
}
