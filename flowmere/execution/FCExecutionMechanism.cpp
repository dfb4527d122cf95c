#include "flowmere/execution/FCExecutionMechanism.h"

#include "flowmere/execution/FCCommand.h"
#include "flowmere/execution/FCExecutive.h"
#include "flowmere/execution/Tpy.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/model/BlockWatch.h"

#include <string>

namespace {

constexpr int kContinue = 0;
constexpr int kStep = 1;
constexpr int kUndo = 2;
constexpr int kUndoStep = 3;

constexpr int kReady = 1;
constexpr int kBlockStarted = 2;
constexpr int kBlockDone = 3;
constexpr int kBlockFailed = 6;

constexpr int kOwnLoop = 1;

FCExecutionMechanism* currentMechanism = nullptr;

bool isBackward(int mode) {
    return mode == kUndo || mode == kUndoStep;
}

CFCProcessNode* activeProcessOf(CFCExecutive* executive) {
    return executive != nullptr ? executive->getActiveProcess() : nullptr;
}

} // namespace

FCExecutionMechanism::FCExecutionMechanism() {
    flowmere::watchBlocks(this, &FCExecutionMechanism::forget);
    currentMechanism = this;
}

FCExecutionMechanism::FCExecutionMechanism(FCExecutionMechanism const& other)
    : window(other.window), block(other.block), executionType(other.executionType), running(other.running),
      mode(other.mode) {
    flowmere::watchBlocks(this, &FCExecutionMechanism::forget);
}

FCExecutionMechanism::~FCExecutionMechanism() {
    flowmere::unwatchBlocks(this);
}

void FCExecutionMechanism::forget(void* self, CFCBlockNode* gone) {
    auto* const mechanism = static_cast<FCExecutionMechanism*>(self);
    if (mechanism->block == gone)
        mechanism->block = nullptr;
}

void FCExecutionMechanism::setExecutingBlock(CFCBlockNode* value) {
    block = value;
}

void FCExecutionMechanism::setExecutionMode(CFCProcessNode::CFCProcessExecutionType type) {
    executionType = type;
}

void FCExecutionMechanism::setFCWindow(CFCWindow* value) {
    window = value;
}

void FCExecutionMechanism::setDirection(CFCExecutive& executive, int value) {
    mode = static_cast<CFCProcessNode::CFCProcessExecutionMode>(value);
    executive.setExecutionMode(mode);
}

void FCExecutionMechanism::setCurrent(CFCExecutive& executive, CFCBlockNode* value) {
    block = value;
    executive.setExeutingBlock(value);
}

bool FCExecutionMechanism::runLoop() {
    if (executionType != kOwnLoop)
        return true;
    running = true;
    while (running) {
        CFCProcessNode* process = activeProcessOf(getExecutive());
        bool const waiting = process != nullptr && process->getExecutionStatus() == kBlockStarted;
        TProcessTimerProc(nullptr, 0, 0, nullptr);
        process = activeProcessOf(getExecutive());
        // Nobody has called the block done yet: leave the interpreter to the threads that may.
        if (running && waiting && process != nullptr && process->getExecutionStatus() == kBlockStarted)
            tpy::sleepWithoutLock();
    }
    return true;
}

bool FCExecutionMechanism::onBegin() {
    CFCExecutive* const executive = getExecutive();
    CFCProcessNode* const process = activeProcessOf(executive);
    if (process == nullptr || process->getExecutionStatus() == kBlockStarted)
        return false;
    setCurrent(*executive, process->GetFirstConnectedBlock());
    return runLoop();
}

bool FCExecutionMechanism::onContinue() {
    CFCExecutive* const executive = getExecutive();
    CFCProcessNode* const process = activeProcessOf(executive);
    if (process == nullptr)
        return false;
    int const status = process->getExecutionStatus();
    CFCBlockNode* current = executive->getExeutingBlock();
    if ((status != kReady && status != kBlockDone) || current == nullptr)
        return false;
    if (isBackward(mode)) {
        if (status != kReady)
            current = current->GetNextConnectedBlock();
        setCurrent(*executive, current);
    }
    setDirection(*executive, kContinue);
    return runLoop();
}

bool FCExecutionMechanism::onStep() {
    CFCExecutive* const executive = getExecutive();
    CFCProcessNode* const process = activeProcessOf(executive);
    if (process == nullptr)
        return false;
    int const status = process->getExecutionStatus();
    if (status != kReady && status != kBlockDone)
        return false;
    CFCBlockNode* current = executive->getExeutingBlock();
    if (current == nullptr)
        current = process->GetNextConnectedBlock();
    if (current == nullptr)
        return false;
    if (isBackward(mode))
        current = current->GetNextConnectedBlock();
    setCurrent(*executive, current);
    setDirection(*executive, kStep);
    return runLoop();
}

bool FCExecutionMechanism::undoIn(int undoMode) {
    CFCExecutive* const executive = getExecutive();
    CFCProcessNode* const process = activeProcessOf(executive);
    if (process == nullptr)
        return false;
    int const status = process->getExecutionStatus();
    CFCBlockNode* const current = executive->getExeutingBlock();
    if ((status != kReady && status != kBlockDone && status != kBlockFailed) || current == nullptr)
        return false;
    if (!isBackward(mode) && status != kBlockFailed)
        setCurrent(*executive, current->getPreviouslyExecutedBlock());
    setDirection(*executive, undoMode);
    return runLoop();
}

bool FCExecutionMechanism::onUndo() {
    return undoIn(kUndo);
}

bool FCExecutionMechanism::onUndoStep() {
    return undoIn(kUndoStep);
}

void FCExecutionMechanism::TProcessTimerProc(void*, unsigned int, unsigned int, void*) {
    CFCExecutive* executive = getExecutive();
    CFCProcessNode* process = activeProcessOf(executive);
    if (process == nullptr) {
        running = false;
        return;
    }
    if (process->getExecutionStatus() == kBlockStarted)
        return;
    if (block == nullptr) {
        running = false;
        return;
    }
    if (isBackward(mode)) {
        flowmere::BlockWatch const beforeWatch(executive->getExeutingBlock());
        executive->setExeutingBlock(block);
        int const answer = block->CheckBlockExecuteMethod("CanUndo");
        executive = getExecutive();
        if (activeProcessOf(executive) == nullptr) {
            running = false;
            return;
        }
        process = executive->getActiveProcess();
        setCurrent(*executive, beforeWatch.block());
        if (answer != 1 || block == nullptr) {
            running = false;
            return;
        }
    }

    bool const backward = isBackward(mode);
    CFCBlockNode* const current = block;
    flowmere::BlockWatch const currentWatch(current);
    process->setExecutionStatus(static_cast<CFCProcessNode::CFCProcessExecutionStatus>(kBlockStarted));
    process->setProcessSaveStatus(static_cast<CFCProcessNode::CFCProcessSaveStatus>(1));
    current->SetExecutingFlag(true);
    current->SetExecutedFlag(false);
    if (!backward) {
        // The place where a derived command object hooks each block that starts.
        CFCCommand* const command = activateFlowmereCommand();
        std::string const path = flowmere::toUtf8(TuString(current->GetNodePath()));
        command->SetValues("Execute Block", "string", path.c_str(), 0);
        command->ExecuteCommand("Execute Block", nullptr);
    }
    executive = getExecutive();
    if (!currentWatch.isAlive() || activeProcessOf(executive) == nullptr) {
        running = false;
        return;
    }
    setCurrent(*executive, current);
    current->ExecuteBlockMethod(backward ? "Undo" : "Execute");

    executive = getExecutive();
    process = activeProcessOf(executive);
    if (process == nullptr) {
        running = false;
        return;
    }
    if (currentWatch.isAlive())
        current->SetExecutingFlag(false);
    process->SetExecutedFlag(true);
    if (block == nullptr) {
        running = false;
        return;
    }

    CFCBlockNode* next = isBackward(mode) ? block->getPreviouslyExecutedBlock() : block->GetNextConnectedBlock();
    if (next != nullptr) {
        if (next->GetSkipFlag()) {
            flowmere::BlockWatch const doneWatch(block);
            flowmere::BlockWatch const nextWatch(next);
            setCurrent(*executive, next);
            next->CheckBlockExecuteMethod("CanSkip");
            executive = getExecutive();
            if (activeProcessOf(executive) == nullptr) {
                running = false;
                return;
            }
            setCurrent(*executive, doneWatch.block());
            next = nextWatch.block();
        }
        if (next != nullptr)
            next->setPreviouslyExecutedBlock(block);
    }
    setCurrent(*executive, next);
    if (next == nullptr || next->GetStopFlag() || (mode != kContinue && mode != kUndo))
        running = false;
}
