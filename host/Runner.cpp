#include "host/Runner.h"

#include "host/HostCommand.h"
#include "host/Text.h"

#include <chrono>

namespace flowmere::host {

namespace {

using Clock = std::chrono::steady_clock;

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
}

Runner::~Runner() {
    m_interpreter.setExecutingBlock(nullptr);
    m_mechanism->moveTo(nullptr);
    getExecutive()->setActiveProcess(nullptr);
    HostCommand::instance().setExecutionMechanism(nullptr);
    HostCommand::instance().setBlockStarts(nullptr);
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
        return m_document.process().GetFirstConnectedBlock();
    auto const mode = getExecutive()->getExecutionMode();
    bool const backward = mode == CFCProcessNode::ExecutionUndo || mode == CFCProcessNode::ExecutionUndoStep;
    CFCBlockNode* const block = m_mechanism->getExecutingBlock();
    return backward && block != nullptr ? block->GetNextConnectedBlock() : block;
}

RunEnd Runner::run() {
    CFCBlockNode* const first = nextBlock();
    if (first == nullptr)
        return RunEnd::Nothing;
    if (!m_begun)
        begin();
    else
        execute("Continue Execution");
    // Continuing after an undo gives back the block that was undone last.
    m_mechanism->moveTo(first);
    if (first->GetStopFlag() && m_done.empty())
        return RunEnd::Stopped;
    while (CFCBlockNode* const block = m_mechanism->getExecutingBlock()) {
        if (RunEnd const end = tick(*block); end != RunEnd::Stopped)
            return end;
        CFCBlockNode* const next = m_mechanism->getExecutingBlock();
        if (next != nullptr && next->GetStopFlag())
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
    execute("Execution Step");
    m_mechanism->moveTo(block);
    if (RunEnd const end = tick(*block); end != RunEnd::Stopped)
        return end;
    return m_mechanism->getExecutingBlock() == nullptr ? RunEnd::Ended : RunEnd::Stopped;
}

RunEnd Runner::tick(CFCBlockNode& block) {
    CFCProcessNode& process = m_document.process();
    int const gripBefore = block.GetActiveHandle();
    if (!m_done.empty())
        block.setPreviouslyExecutedBlock(m_done.back().block);
    else
        block.setPreviouslyExecutedBlock(nullptr);
    BlockRun result;
    result.path = pathOf(block);
    std::vector<ScriptError> errorsOfNext = runScript(block, result);
    m_done.push_back({&block, gripBefore});

    if (result.state == BlockRun::State::Executed) {
        block.SetExecutionStateType(EExecutionStateType_Executed);
        process.setExecutionStatus(CFCProcessNode::ExecutionReady);
        result.outputs = outputsOf(block);
    } else {
        bool const interrupted = result.state == BlockRun::State::Interrupted;
        block.SetExecutionStateType(interrupted ? EExecutionStateType_Cancelled : EExecutionStateType_Failed);
        process.setExecutionStatus(CFCProcessNode::ExecutionFailed);
        m_failed = true;
    }
    m_observer.blockDone(result);
    RunEnd end = RunEnd::Stopped;
    if (result.state == BlockRun::State::Interrupted || m_interpreter.interrupted())
        end = RunEnd::Interrupted;
    else if (result.state == BlockRun::State::Failed)
        end = RunEnd::Failed;
    else if (!errorsOfNext.empty())
        failNext(errorsOfNext, end);
    return end;
}

// A block that is marked to be skipped is asked for its consent while the one before it still runs.
void Runner::failNext(std::vector<ScriptError>& errors, RunEnd& end) {
    CFCBlockNode* const next = m_mechanism->getExecutingBlock();
    BlockRun result;
    result.path = errors.front().block;
    result.state = BlockRun::State::Failed;
    result.error = std::move(errors.front());
    if (next != nullptr)
        next->SetExecutionStateType(EExecutionStateType_Failed);
    m_document.process().setExecutionStatus(CFCProcessNode::ExecutionFailed);
    m_failed = true;
    m_observer.blockDone(result);
    end = RunEnd::Failed;
}

// One tick of the library in the direction that was commanded, measured, with what went wrong in it. Gives the errors
// that belong to another block.
std::vector<ScriptError> Runner::runScript(CFCBlockNode& block, BlockRun& result) {
    bool const hasScript = m_document.scriptState(block) != ScriptState::None;
    EScriptType const type = block.GetScriptType();
    // A block that has no script would be looked for under the name of the block.
    if (!hasScript)
        block.SetScriptType(EScriptType_PYTHON_CMD);
    std::string const name = hasScript && type == EScriptType_PYTHON ? utf8(block.GetScriptName()) : std::string();

    Clock::time_point const start = Clock::now();
    m_mechanism->TProcessTimerProc(nullptr, 0, 0, nullptr);
    result.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();

    block.SetScriptType(type);
    CFCBlockNode* const next = m_mechanism->getExecutingBlock();
    m_mechanism->moveTo(&block);
    m_interpreter.finishTick(name);
    m_mechanism->moveTo(next);

    std::vector<ScriptError> others;
    for (ScriptError& error : m_interpreter.takeErrors()) {
        if (error.interrupt)
            result.state = BlockRun::State::Interrupted;
        else if (error.block != result.path)
            others.push_back(std::move(error));
        else if (!result.error)
            result.error = std::move(error);
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

    // With this status the command undoes the current block itself, which may be the last of the flow.
    m_mechanism->moveTo(&block);
    block.setPreviouslyExecutedBlock(before);
    process.setExecutionStatus(CFCProcessNode::ExecutionFailed);
    execute("Execution Undo Step");

    BlockRun result;
    result.path = pathOf(block);
    result.state = BlockRun::State::Undone;
    std::vector<ScriptError> const errorsOfBefore = runScript(block, result);
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
        m_done.pop_back();
        block.SetExecutionStateType(EExecutionStateType_ESNone);
        process.setExecutionStatus(CFCProcessNode::ExecutionReady);
        m_failed = false;
        m_mechanism->moveTo(before);
        if (before == nullptr)
            m_begun = false;
    } else {
        block.SetExecutionStateType(EExecutionStateType_Failed);
        process.setExecutionStatus(CFCProcessNode::ExecutionFailed);
        m_failed = true;
    }
    m_observer.blockDone(result);
    if (result.state == BlockRun::State::Interrupted || m_interpreter.interrupted())
        return RunEnd::Interrupted;
    return undone ? RunEnd::Stopped : RunEnd::Failed;
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
