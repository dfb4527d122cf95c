#include "host/run/Runner.h"

#include "host/basics/Text.h"
#include "host/run/HostCommand.h"
#include "host/run/Watchdog.h"
#include "host/scripting/HostModule.h"

#include <chrono>

namespace flowmere::host {

namespace {

using Clock = std::chrono::steady_clock;

bool isBelow(IFCNode* node, IFCNode* container) {
    while (node != nullptr && (node = node->GetParentNode()) != nullptr)
        if (node == container)
            return true;
    return false;
}

bool isFailure(BlockRun::State state) {
    return state == BlockRun::State::Failed || state == BlockRun::State::Interrupted;
}

} // namespace

char const* stateName(BlockRun::State state) {
    switch (state) {
    case BlockRun::State::Executed:
        return "Executed";
    case BlockRun::State::Failed:
        return "Failed";
    case BlockRun::State::Undone:
        return "Undone";
    case BlockRun::State::Interrupted:
        return "Interrupted";
    case BlockRun::State::Skipped:
        return "Skipped";
    }
    return "";
}

// Driven by the host, a tick at a time.
class Runner::Mechanism final : public FCExecutionMechanism {
public:
    Mechanism() { setExecutionMode(CFCProcessNode::ExecutionByTimer); }

    // Both halves of the library's idea of the current block.
    void moveTo(CFCBlockNode* value) {
        setExecutingBlock(value);
        getExecutive()->setExeutingBlock(value);
    }
    // Without this the block after an undo would not be the next one but the one behind it.
    void forgetDirection() {
        mode = CFCProcessNode::ExecutionContinue;
        getExecutive()->setExecutionMode(mode);
    }
};

Runner::Runner(Document& document, Interpreter& interpreter, RunObserver observer)
    : m_document(document), m_interpreter(interpreter), m_observer(std::move(observer)),
      m_mechanism(std::make_unique<Mechanism>()) {
    HostCommand& commands = HostCommand::instance();
    commands.setBlockStarts(m_observer.blockStarts);
    commands.setExecutionMechanism(m_mechanism.get());
    getExecutive()->setActiveProcess(&m_document.process());
    m_mechanism->moveTo(nullptr);
    m_mechanism->forgetDirection();
    m_document.process().setExecutionStatus(CFCProcessNode::ExecutionReady);
    m_interpreter.setExecutingBlock([] {
        CFCBlockNode* const block = getExecutive()->getExeutingBlock();
        return block != nullptr ? pathOf(*block) : std::string();
    });
    marksChanged();
    if (m_observer.stepDone)
        hostServices().valueWritten = [this](CFCVariableData& variable) {
            if (m_isWritten.insert(&variable).second)
                m_written.push_back(&variable);
        };
}

void Runner::passOverSkipped() {
    m_passesOver = true;
    marksChanged();
}

void Runner::marksChanged() {
    m_unaskable.clear();
    for (CFCBlockNode* const block : m_document.blocks())
        if (block->GetSkipFlag() && (m_passesOver || m_document.scriptState(*block) == ScriptState::None))
            m_unaskable.push_back(block);
}

Runner::~Runner() {
    if (m_observer.stepDone)
        hostServices().valueWritten = nullptr;
    m_interpreter.setExecutingBlock(nullptr);
    m_mechanism->moveTo(nullptr);
    getExecutive()->setActiveProcess(nullptr);
    HostCommand::instance().setExecutionMechanism(nullptr);
    HostCommand::instance().setBlockStarts(nullptr);
}

void Runner::beginAt(CFCBlockNode& block) {
    m_first = &block;
    m_passesStop = true;
}

// A block of a loop that is undone once has still run the time before.
void Runner::addDone(CFCBlockNode& block, int gripBefore, EExecutionStateType stateBefore) {
    bool const isFirst = m_isDone.insert(&block).second;
    m_done.push_back({&block, gripBefore, isFirst ? EExecutionStateType_ESNone : stateBefore, isFirst});
}

void Runner::removeDone() {
    if (m_done.back().isFirst)
        m_isDone.erase(m_done.back().block);
    m_done.pop_back();
}

void Runner::execute(char const* commandName) {
    HostCommand::instance().ExecuteCommand(commandName, nullptr);
}

void Runner::begin() {
    m_mechanism->forgetDirection();
    execute("Execution Begin");
    m_begun = true;
}

CFCBlockNode* Runner::nextBlock() {
    if (m_failed)
        return nullptr;
    if (!m_begun)
        return m_first != nullptr ? m_first : m_document.process().GetFirstConnectedBlock();
    auto const mode = getExecutive()->getExecutionMode();
    bool const backward = mode == CFCProcessNode::ExecutionUndo || mode == CFCProcessNode::ExecutionUndoStep;
    CFCBlockNode* const block = m_mechanism->getExecutingBlock();
    return backward ? m_undone : block;
}

bool Runner::hasRun(CFCBlockNode& block) const {
    for (Done const& done : m_done)
        if (done.block == &block || isBelow(done.block, &block))
            return true;
    return false;
}

bool Runner::standsBehind(CFCBlockNode& block) {
    CFCBlockNode* const last = blockBelow(m_done.size());
    return last != nullptr && (last == &block || isBelow(last, &block)) && !isBelow(nextBlock(), &block);
}

RunEnd Runner::run(CFCBlockNode* until) {
    CFCBlockNode* const first = nextBlock();
    if (first == nullptr)
        return RunEnd::Nothing;
    if (!m_begun)
        begin();
    else
        execute("Continue Execution");
    // Continuing after an undo gives back the block that was undone last.
    m_mechanism->moveTo(first);
    bool const passesStop = std::exchange(m_passesStop, false);
    if (first->GetStopFlag() && !passesStop && (m_done.empty() || std::exchange(m_isRestored, false))) {
        m_passesStop = true;
        return RunEnd::Stopped;
    }
    m_isRestored = false;
    while (CFCBlockNode* const block = m_mechanism->getExecutingBlock()) {
        if (RunEnd const end = tick(*block); end != RunEnd::Stopped)
            return end;
        CFCBlockNode* const next = m_mechanism->getExecutingBlock();
        if (next == nullptr)
            break;
        if (next->GetStopFlag() || (until != nullptr && standsBehind(*until)))
            return RunEnd::Stopped;
    }
    return RunEnd::Ended;
}

RunEnd Runner::step() {
    CFCBlockNode* const block = nextBlock();
    if (block == nullptr)
        return RunEnd::Nothing;
    if (!m_begun)
        begin();
    m_passesStop = false;
    m_isRestored = false;
    execute("Execution Step");
    m_mechanism->moveTo(block);
    if (RunEnd const end = tick(*block); end != RunEnd::Stopped)
        return end;
    return m_mechanism->getExecutingBlock() == nullptr ? RunEnd::Ended : RunEnd::Stopped;
}

RunEnd Runner::runOnly(CFCBlockNode& block) {
    if (m_failed)
        return RunEnd::Nothing;
    CFCBlockNode* const at = nextBlock();
    if (!m_begun)
        begin();
    execute("Execution Step");
    m_mechanism->moveTo(&block);
    // Who names a block wants it to run.
    bool const passesOver = std::exchange(m_passesOver, false);
    RunEnd const end = tick(block);
    m_passesOver = passesOver;
    m_done.back().at = at;
    if (end != RunEnd::Stopped)
        return end;
    m_mechanism->moveTo(at);
    return at == nullptr ? RunEnd::Ended : RunEnd::Stopped;
}

// None for a block that does not let itself be skipped.
std::optional<RunEnd> Runner::passOver(CFCBlockNode& block) {
    int consent = 1;
    BlockRun result;
    result.path = pathOf(block);
    runScript(block, result, [&](bool hasScript) {
        if (hasScript)
            consent = CFCPythonInterface().executeCheckInterface(utf8(block.GetScriptName()).c_str(), "CanSkip");
    });
    RunStep done;
    done.block = &block;
    if (isFailure(result.state)) {
        done.kind = RunStep::Kind::Consent;
        done.next = &block;
        noteFailure(block, result.state);
        tell(done, result);
        return result.state == BlockRun::State::Failed ? RunEnd::Failed : RunEnd::Interrupted;
    }
    if (consent != 1)
        return std::nullopt;
    result.state = BlockRun::State::Skipped;
    block.setPreviouslyExecutedBlock(m_done.empty() ? nullptr : m_done.back().block);
    addDone(block, block.GetActiveHandle(), block.GetExecutionStateType());
    m_done.back().isSkipped = true;
    block.SetExecutionStateType(EExecutionStateType_Skipped);
    m_document.process().setExecutionStatus(CFCProcessNode::ExecutionReady);
    m_document.process().setProcessSaveStatus(CFCProcessNode::ProcessUnsaved);
    // The way out of the block itself: a sub-process would lead into its inside.
    done.next = block.CFCBlockNode::GetNextConnectedBlock();
    if (done.next != nullptr)
        done.next->setPreviouslyExecutedBlock(&block);
    m_mechanism->moveTo(done.next);
    tell(done, result);
    return m_interpreter.interrupted() ? RunEnd::Interrupted : RunEnd::Stopped;
}

RunEnd Runner::tick(CFCBlockNode& block) {
    if (m_unasked == &block)
        if (RunEnd const end = askConsent(block); end != RunEnd::Stopped)
            return end;
    if (m_passesOver && block.GetSkipFlag())
        if (std::optional<RunEnd> const end = passOver(block))
            return *end;
    if (m_observer.beforeBlock)
        m_observer.beforeBlock(block, false);
    CFCProcessNode& process = m_document.process();
    int const gripBefore = block.GetActiveHandle();
    EExecutionStateType const stateBefore = block.GetExecutionStateType();
    block.setPreviouslyExecutedBlock(m_done.empty() ? nullptr : m_done.back().block);
    BlockRun result;
    result.path = pathOf(block);
    std::vector<ScriptError> errorsOfNext =
        runScript(block, result, [&](bool hasScript) { tickOnce(block, hasScript); });
    addDone(block, gripBefore, stateBefore);

    if (result.state == BlockRun::State::Executed) {
        block.SetExecutionStateType(EExecutionStateType_Executed);
        process.setExecutionStatus(CFCProcessNode::ExecutionReady);
        result.outputs = outputsOf(block);
    } else {
        noteFailure(block, result.state);
    }
    CFCBlockNode* const next = m_mechanism->getExecutingBlock();
    RunStep done;
    done.block = &block;
    done.next = next;
    tell(done, result);
    if (result.state == BlockRun::State::Interrupted || m_interpreter.interrupted())
        return RunEnd::Interrupted;
    if (result.state == BlockRun::State::Failed)
        return RunEnd::Failed;
    if (errorsOfNext.empty())
        return RunEnd::Stopped;
    // A block that is marked to be skipped is asked for its consent while the one before it still runs.
    BlockRun resultOfNext;
    failNext(next, errorsOfNext, resultOfNext);
    return RunEnd::Failed;
}

void Runner::failNext(CFCBlockNode* next, std::vector<ScriptError>& errors, BlockRun& result) {
    result.path = errors.front().block;
    result.state = BlockRun::State::Failed;
    result.error = std::move(errors.front());
    if (next != nullptr)
        noteFailure(*next, result.state);
    RunStep done;
    done.kind = RunStep::Kind::Consent;
    done.block = next;
    done.next = next;
    tell(done, result);
}

void Runner::noteFailure(CFCBlockNode& block, BlockRun::State state) {
    bool const interrupted = state == BlockRun::State::Interrupted;
    block.SetExecutionStateType(interrupted ? EExecutionStateType_Cancelled : EExecutionStateType_Failed);
    m_document.process().setExecutionStatus(CFCProcessNode::ExecutionFailed);
    m_failed = true;
}

// The run broke off after the block before this one had run, and before this one had consented.
RunEnd Runner::askConsent(CFCBlockNode& block) {
    m_unasked = nullptr;
    BlockRun result;
    result.path = pathOf(block);
    runScript(block, result, [&](bool hasScript) {
        if (hasScript)
            block.CheckBlockExecuteMethod("CanSkip");
    });
    RunStep done;
    done.kind = result.state == BlockRun::State::Executed ? RunStep::Kind::Values : RunStep::Kind::Consent;
    done.block = &block;
    done.next = &block;
    if (result.state != BlockRun::State::Executed)
        noteFailure(block, result.state);
    tell(done, result);
    if (result.state == BlockRun::State::Interrupted || m_interpreter.interrupted())
        return RunEnd::Interrupted;
    return result.state == BlockRun::State::Failed ? RunEnd::Failed : RunEnd::Stopped;
}

// One tick of the library in the direction that was commanded.
void Runner::tickOnce(CFCBlockNode& block, bool hasScript) {
    EScriptType const type = block.GetScriptType();
    // A block that has no script would be looked for under the name of the block.
    if (!hasScript)
        block.SetScriptType(EScriptType_PYTHON_CMD);
    for (CFCBlockNode* const marked : m_unaskable)
        marked->SetSkipFlag(false);
    m_mechanism->TProcessTimerProc(nullptr, 0, 0, nullptr);
    for (CFCBlockNode* const marked : m_unaskable)
        marked->SetSkipFlag(true);
    block.SetScriptType(type);
}

// Something that runs scripts of the block, measured, with what went wrong in it. Gives the errors that belong to
// another block.
std::vector<ScriptError> Runner::runScript(CFCBlockNode& block, BlockRun& result, Work const& work) {
    bool const hasScript = m_document.scriptState(block) != ScriptState::None;
    bool const isModule = hasScript && block.GetScriptType() == EScriptType_PYTHON;
    std::string const name = isModule ? utf8(block.GetScriptName()) : std::string();
    m_mechanism->moveTo(&block);
    m_interpreter.labelOutput(oneLine(result.path));

    if (m_watchdog != nullptr)
        m_watchdog->begin();
    Clock::time_point const start = Clock::now();
    work(hasScript);
    result.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    bool const isOverdue = m_watchdog != nullptr && m_watchdog->end();

    CFCBlockNode* const next = m_mechanism->getExecutingBlock();
    m_mechanism->moveTo(&block);
    m_interpreter.finishTick(name);
    m_mechanism->moveTo(next);
    result.printed = m_interpreter.takePrinted();

    std::vector<ScriptError> others;
    for (ScriptError& error : m_interpreter.takeErrors()) {
        if (error.interrupt)
            result.state = BlockRun::State::Interrupted;
        else if (error.block != result.path)
            others.push_back(std::move(error));
        else if (!result.error)
            result.error = std::move(error);
    }
    if (isOverdue && result.state != BlockRun::State::Interrupted) {
        // Whatever the script has made of it.
        ScriptError& error = !result.error && !others.empty() ? others.front()
                             : result.error                   ? *result.error
                                                              : result.error.emplace();
        if (error.block.empty())
            error.block = result.path;
        error.type = "TimeoutError";
        error.text = m_watchdog->text();
    }
    if (result.error && result.state != BlockRun::State::Interrupted)
        result.state = BlockRun::State::Failed;
    return others;
}

CFCBlockNode* Runner::blockBelow(std::size_t index) const {
    return index > 0 ? m_done[index - 1].block : nullptr;
}

RunEnd Runner::undo() {
    if (m_done.empty())
        return RunEnd::Nothing;
    CFCProcessNode& process = m_document.process();
    std::size_t const index = m_done.size() - 1;
    CFCBlockNode& block = *m_done[index].block;
    CFCBlockNode* const before = blockBelow(index);
    if (m_observer.beforeBlock)
        m_observer.beforeBlock(block, true);

    // With this status the command undoes the current block itself, which may be the last of the flow.
    m_mechanism->moveTo(&block);
    block.setPreviouslyExecutedBlock(before);
    process.setExecutionStatus(CFCProcessNode::ExecutionFailed);
    execute("Execution Undo Step");

    BlockRun result;
    result.path = pathOf(block);
    result.state = BlockRun::State::Undone;
    std::vector<ScriptError> errorsOfBefore;
    if (!m_done[index].isSkipped)
        errorsOfBefore = runScript(block, result, [&](bool hasScript) { tickOnce(block, hasScript); });
    if (!errorsOfBefore.empty() && result.state == BlockRun::State::Undone) {
        result.state = BlockRun::State::Failed;
        result.error = errorsOfBefore.front();
    }
    // The tick wrote the way that it came into the block before, as a way back.
    if (before != nullptr)
        before->setPreviouslyExecutedBlock(blockBelow(index - 1));

    bool const undone = result.state == BlockRun::State::Undone;
    if (undone) {
        block.SetActiveHandle(m_done[index].gripBefore);
        m_undone = m_done[index].at.value_or(&block);
        block.SetExecutionStateType(m_done[index].stateBefore);
        removeDone();
        process.setExecutionStatus(CFCProcessNode::ExecutionReady);
        m_failed = false;
        m_mechanism->moveTo(before);
        if (before == nullptr) {
            m_begun = false;
            m_passesStop = true;
        }
    } else {
        block.SetExecutionStateType(EExecutionStateType_Failed);
        process.setExecutionStatus(CFCProcessNode::ExecutionFailed);
        m_failed = true;
    }
    RunStep done;
    done.kind = RunStep::Kind::Back;
    done.block = &block;
    done.next = before;
    tell(done, result);
    if (result.state == BlockRun::State::Interrupted || m_interpreter.interrupted())
        return RunEnd::Interrupted;
    return undone ? RunEnd::Stopped : RunEnd::Failed;
}

void Runner::tell(RunStep& step, BlockRun& result) {
    if (m_observer.stepDone) {
        step.state = result.state;
        if (step.block != nullptr)
            step.grips.emplace_back(step.block, step.block->GetActiveHandle());
        // What was asked for its consent may have set its grip in that.
        if (step.next != nullptr && step.next != step.block && step.next->GetSkipFlag())
            step.grips.emplace_back(step.next, step.next->GetActiveHandle());
        for (CFCVariableData* const variable : m_written)
            step.values.emplace_back(variable, TuString(variable->GetValue()));
        m_written.clear();
        m_isWritten.clear();
        m_observer.stepDone(step, result);
    }
    if (step.kind != RunStep::Kind::Values)
        m_observer.blockDone(result);
}

void Runner::restore(std::vector<RunStep> const& steps, CFCBlockNode* unasked, bool stops) {
    for (RunStep const& step : steps)
        again(step);
    m_document.process().setExecutionStatus(CFCProcessNode::ExecutionReady);
    m_failed = false;
    m_unasked = unasked;
    m_passesStop = !stops;
    m_isRestored = true;
    m_mechanism->forgetDirection();
}

void Runner::again(RunStep const& step) {
    CFCProcessNode& process = m_document.process();
    bool const isFailed = isFailure(step.state);
    int const gripBefore = step.block != nullptr ? step.block->GetActiveHandle() : 0;
    for (auto const& [variable, value] : step.values) {
        variable->SetValue(value);
        variable->UpdateValue();
    }
    for (auto const& [block, grip] : step.grips)
        block->SetActiveHandle(grip);
    if (step.kind == RunStep::Kind::Values)
        return;

    CFCBlockNode& block = *step.block;
    if (step.kind == RunStep::Kind::Consent) {
        noteFailure(block, step.state);
        return;
    }
    process.setProcessSaveStatus(CFCProcessNode::ProcessUnsaved);
    process.SetExecutedFlag(true);
    block.SetExecutingFlag(false);
    block.SetExecutedFlag(step.kind == RunStep::Kind::Forward);
    if (step.kind == RunStep::Kind::Forward) {
        block.setPreviouslyExecutedBlock(m_done.empty() ? nullptr : m_done.back().block);
        addDone(block, gripBefore, block.GetExecutionStateType());
        m_begun = true;
        if (step.next != nullptr)
            step.next->setPreviouslyExecutedBlock(&block);
        m_mechanism->moveTo(step.next);
        if (isFailed)
            noteFailure(block, step.state);
        else
            block.SetExecutionStateType(EExecutionStateType_Executed);
    } else if (isFailed) {
        block.SetExecutionStateType(EExecutionStateType_Failed);
        m_failed = true;
    } else {
        block.SetExecutionStateType(m_done.back().stateBefore);
        removeDone();
        CFCBlockNode* const before = m_done.empty() ? nullptr : m_done.back().block;
        if (before != nullptr)
            before->setPreviouslyExecutedBlock(blockBelow(m_done.size() - 1));
        // The run goes forward again, with the block that was undone.
        m_mechanism->moveTo(before != nullptr ? &block : nullptr);
        m_begun = before != nullptr;
        m_failed = false;
    }
}

std::vector<std::pair<std::string, std::string>> Runner::outputsOf(CFCBlockNode& block) const {
    std::vector<std::pair<std::string, std::string>> outputs;
    CFCVariableList* const list = block.GetVariableList();
    __FCPOSITION* position = list != nullptr ? list->GetHeadPosition() : nullptr;
    while (position != nullptr) {
        CFCVariableData* const variable = list->GetNext(position);
        if (variable == nullptr || variable->GetStatusType() == EStatusType_Input)
            continue;
        std::string name = utf8(variable->GetVariableName());
        if (!name.empty())
            outputs.emplace_back(std::move(name), utf8(variable->GetActualVariableData()->GetValue()));
    }
    return outputs;
}

} // namespace flowmere::host
