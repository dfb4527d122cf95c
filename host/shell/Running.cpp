// The run of the shell's project.

#include "host/shell/Workspace.h"

#include "host/basics/Text.h"
#include "host/document/DebugBlock.h"
#include "host/scripting/HostModule.h"

#include <fmt/format.h>

#include <csignal>
#include <string_view>
#include <system_error>
#include <utility>

namespace flowmere::host::shell {

namespace fs = std::filesystem;

namespace {

// Ctrl-C goes to the script that runs. Afterwards it is what it was before, and forgotten.
class Interrupts {
public:
    explicit Interrupts(Interpreter& interpreter) : m_interpreter(interpreter) {
        ::sigaction(SIGINT, nullptr, &m_before);
        m_interpreter.takeSignals();
    }
    ~Interrupts() {
        ::sigaction(SIGINT, &m_before, nullptr);
        m_interpreter.forgetInterrupt();
    }
    Interrupts(Interrupts const&) = delete;
    Interrupts& operator=(Interrupts const&) = delete;

private:
    Interpreter& m_interpreter;
    struct sigaction m_before {};
};

// What blocks print is theirs. Between them standard output is the shell's, and a terminal where that is one.
class Capture {
public:
    Capture(Interpreter& interpreter, bool isPaused) : m_interpreter(interpreter), m_isPaused(isPaused) {
        if (m_isPaused)
            m_interpreter.resumeCapture();
    }
    ~Capture() {
        if (m_isPaused)
            m_interpreter.pauseCapture();
    }
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;

private:
    Interpreter& m_interpreter;
    bool m_isPaused;
};

// The debugger of the session, while blocks run.
class Watch {
public:
    explicit Watch(Debugging* debugging) : m_debugging(debugging) {
        if (m_debugging != nullptr)
            m_debugging->resume();
    }
    ~Watch() {
        if (m_debugging != nullptr)
            m_debugging->pause();
    }
    Watch(Watch const&) = delete;
    Watch& operator=(Watch const&) = delete;

private:
    Debugging* m_debugging;
};

// Scripts that go to another folder find themselves there again, and the shell stays where it is.
class ScriptFolder {
public:
    explicit ScriptFolder(fs::path& folder) : m_folder(folder) {
        std::error_code error;
        m_own = fs::current_path(error);
        if (!m_folder.empty())
            fs::current_path(m_folder, error);
    }
    ~ScriptFolder() {
        std::error_code error;
        m_folder = fs::current_path(error);
        fs::current_path(m_own, error);
    }
    ScriptFolder(ScriptFolder const&) = delete;
    ScriptFolder& operator=(ScriptFolder const&) = delete;

private:
    fs::path& m_folder;
    fs::path m_own;
};

Json toJson(BlockRun const& run) {
    Json block = {{"path", run.path}, {"milliseconds", run.milliseconds}, {"state", stateName(run.state)}};
    block["outputs"] = Json::object();
    for (auto const& [name, value] : run.outputs)
        block["outputs"][name] = value;
    Json printed = Json::array();
    for (PrintedText const& piece : run.printed)
        printed.push_back({{"stream", piece.isError ? "error" : "output"}, {"text", piece.text}});
    block["printed"] = std::move(printed);
    if (run.error)
        block["error"] = {{"type", run.error->type},
                          {"text", run.error->text},
                          {"file", run.error->file},
                          {"line", run.error->line},
                          {"traceback", run.error->traceback}};
    return block;
}

} // namespace

Runner& Workspace::runner() {
    Document& document = project();
    if (m_runner != nullptr)
        return *m_runner;
    if (document.process().GetFirstConnectedBlock() == nullptr)
        throw Failure(document.file(), "", "holds no block to run", kExitFound);
    m_interpreter = &Interpreter::start(document.scriptRoots());
    m_interpreter->captureOutput(m_output.isJson());
    if (!m_output.isJson())
        m_interpreter->pauseCapture();
    hostServices().writeHistory = [this](std::string const& text) {
        history(text);
    };
    hostServices().scriptLeaves = [this](ScriptError const& error) {
        bool const isLost = hasUnsavedChanges();
        printError(errorLine(m_document->file(), error.block,
                             errorText(error) + (isLost ? ", and unsaved changes are lost" : "")) +
                   "\n");
    };
    RunObserver observer;
    observer.blockDone = [this](BlockRun const& run) {
        blockDone(run);
    };
    m_runner = std::make_unique<Runner>(document, *m_interpreter, std::move(observer));
    m_runner->passOverSkipped();
    return *m_runner;
}

void Workspace::blockDone(BlockRun const& run) {
    m_last = run;
    std::string const state = stateName(run.state);
    std::string line = fmt::format("{:<{}}  {:>9.1f} ms  {}", oneLine(run.path), m_width, run.milliseconds, state);
    if (!run.outputs.empty())
        line += std::string(std::string_view("Executed").size() - state.size(), ' ');
    for (auto const& [name, value] : run.outputs)
        line += fmt::format("  {}={}", oneLine(name), oneLine(value));
    m_output.line(line);
    m_output.add("ran", toJson(run));
}

void Workspace::history(std::string const& text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view const line = rest.substr(0, rest.find('\n'));
        m_output.line("history: " + oneLine(line));
        m_output.add("history", std::string(line));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
}

void Workspace::move(std::function<RunEnd(Runner&)> const& how, std::string const& nothing, bool mayDebug) {
    Runner& moved = runner();
    m_last.reset();
    RunEnd end = RunEnd::Nothing;
    {
        Interrupts const interrupts(*m_interpreter);
        ScriptFolder const folder(m_scriptFolder);
        Capture const capture(*m_interpreter, !m_output.isJson());
        if (m_setting.debugs && !m_debugging)
            m_debugging.emplace(*m_document, std::vector<CFCBlockNode*>());
        if (m_debugging)
            m_debugging->pause();
        Watch const watch(m_debugging && mayDebug ? &*m_debugging : nullptr);
        end = how(moved);
    }
    CFCBlockNode* const next = moved.nextBlock();
    m_output.fact("next", next != nullptr ? Json(pathOf(*next)) : Json());
    std::string const file = m_document->file();
    std::string const last = m_last ? m_last->path : std::string();
    switch (end) {
    case RunEnd::Ended:
        m_output.line("ended");
        m_output.fact("end", "ended");
        break;
    case RunEnd::Stopped:
        m_output.line(next != nullptr ? "stopped before " + oneLine(pathOf(*next)) : "stopped at the end");
        m_output.fact("end", "stopped");
        break;
    case RunEnd::Nothing:
        m_output.fact("end", "nothing");
        throw Failure(file, "", nothing, kExitFound);
    case RunEnd::Failed:
        m_output.fact("end", "failed");
        throw Failure(file, last, m_last && m_last->error ? errorText(*m_last->error) : "failed", kExitFound);
    case RunEnd::Interrupted:
        m_output.fact("end", "interrupted");
        throw Failure(file, last, "interrupted", kExitInterrupted);
    }
}

// Why there is nothing to run.
std::string Workspace::ended() const {
    for (CFCBlockNode* const block : m_document->blocks())
        if (block->GetExecutionStateType() == EExecutionStateType_Failed ||
            block->GetExecutionStateType() == EExecutionStateType_Cancelled)
            return pathOf(*block) + " has failed: Execution Undo Step takes it back";
    return "the flow has ended";
}

void Workspace::begin() {
    project();
    if (m_hasBegun) {
        m_runner.reset();
        for (CFCBlockNode* const block : m_document->blocks())
            block->SetExecutionStateType(EExecutionStateType_ESNone);
    }
    runner();
    m_hasBegun = true;
    move([](Runner& runner) { return runner.run(); }, "nothing to run");
}

void Workspace::resume() {
    if (project(); !m_hasBegun)
        throw Failure(m_document->file(), "", "the run has not begun: Execution Begin starts it", kExitFound);
    move([](Runner& runner) { return runner.run(); }, "nothing to continue: " + ended());
}

void Workspace::autoExecute() {
    runner();
    m_hasBegun = true;
    move(
        [](Runner& runner) {
            RunEnd end = runner.run();
            while (end == RunEnd::Stopped)
                end = runner.run();
            return end;
        },
        "nothing to run: " + ended(), false);
}

void Workspace::step() {
    runner();
    m_hasBegun = true;
    move([](Runner& runner) { return runner.step(); }, "nothing to step to: " + ended());
}

void Workspace::undoStep() {
    project();
    move([](Runner& runner) { return runner.undo(); }, "nothing to undo: the flow is at its start");
}

void Workspace::undoToStop() {
    project();
    move(
        [](Runner& runner) {
            RunEnd end = runner.undo();
            while (end == RunEnd::Stopped && runner.doneCount() > 0) {
                CFCBlockNode* const next = runner.nextBlock();
                if (next != nullptr && next->GetStopFlag())
                    break;
                end = runner.undo();
            }
            return end;
        },
        "nothing to undo: the flow is at its start");
}

void Workspace::executeBlock() {
    project();
    auto* const block = dynamic_cast<CFCBlockNode*>(&executingNode());
    if (block == nullptr || block == &m_document->process())
        throw Failure(m_document->file(), ".", "is the process, and no block");
    runner();
    m_hasBegun = true;
    move([block](Runner& runner) { return runner.runOnly(*block); }, "nothing to run: " + ended());
}

void Workspace::undoBlock() {
    project();
    auto* const block = dynamic_cast<CFCBlockNode*>(&executingNode());
    if (block == nullptr || m_runner == nullptr || !m_runner->hasRun(*block))
        throw Failure(m_document->file(), block != nullptr ? pathOf(*block) : std::string(),
                      "has not run, or is undone", kExitFound);
    std::string const path = pathOf(*block);
    move(
        [&](Runner& runner) {
            RunEnd end = RunEnd::Nothing;
            do {
                end = runner.undo();
            } while (end == RunEnd::Stopped && m_last && m_last->path != path && runner.hasRun(*block));
            return end;
        },
        "nothing to undo: the flow is at its start");
}

} // namespace flowmere::host::shell
