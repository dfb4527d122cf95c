#include "host/session/RunSession.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/DebugBlock.h"
#include "host/document/Findings.h"
#include "host/files/SafeFile.h"
#include "host/report/HtmlReport.h"
#include "host/run/Watchdog.h"
#include "host/scripting/HostModule.h"
#include "host/scripting/Interpreter.h"
#include "host/session/RunOutput.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <unistd.h>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// For a script that has run out of time to clean up after itself.
constexpr Watchdog::Duration kGrace(2);

std::unique_ptr<Journal> resumedJournal(RunOptions const& options) {
    return options.resume ? std::make_unique<Journal>(*options.resume, Journal::Use::Resume) : nullptr;
}

std::string fileOf(RunOptions const& options, Journal const* journal) {
    return options.file.empty() && journal != nullptr ? journal->start().path : options.file;
}

std::vector<std::string> rootsOf(RunOptions const& options, Journal const* journal) {
    return options.scriptRoots.empty() && journal != nullptr ? journal->start().aim.scriptRoots : options.scriptRoots;
}

std::string timeText() {
    std::time_t const now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

// The stops of this run alone: what the document says comes back at the end.
class Breaks {
public:
    explicit Breaks(std::vector<CFCBlockNode*> const& blocks) {
        for (CFCBlockNode* const block : blocks) {
            if (!block->GetStopFlag()) {
                block->SetStopFlag(true);
                m_blocks.push_back(block);
            }
        }
    }
    ~Breaks() {
        for (CFCBlockNode* const block : m_blocks)
            block->SetStopFlag(false);
    }
    Breaks(Breaks const&) = delete;
    Breaks& operator=(Breaks const&) = delete;

private:
    std::vector<CFCBlockNode*> m_blocks;
};

} // namespace

RunSession::RunSession(RunOptions const& options)
    : m_options(options), m_startFolder(fs::current_path()), m_journal(resumedJournal(options)),
      m_document(fileOf(options, m_journal.get()), rootsOf(options, m_journal.get())),
      m_progress(!options.json && ::isatty(STDERR_FILENO) != 0) {
    m_report.file = m_document.file();
    m_report.startedAt = timeText();
}

int RunSession::work() {
    m_document.expectDocument("its engine runs it: \"flowmere import\" makes a document of it");
    if (m_options.journal || m_options.resume)
        m_names.emplace(m_document);
    readOptions();
    checkTargets();
    if (m_document.process().GetFirstConnectedBlock() == nullptr)
        throw Failure(m_report.file, "", "holds no block to run");
    openJournal();
    for (std::string const& path : m_document.blockPaths())
        m_width = std::max(m_width, std::min<std::size_t>(path.size(), 40));
    tellFindings();
    m_interpreter = &Interpreter::start(m_document.scriptRoots());
    run();
    m_interpreter->releaseOutput();
    print();
    if (m_failure)
        throw *m_failure;
    return m_exitCode;
}

void RunSession::readOptions() {
    m_settings = settingsOf(m_document, m_options.values);
    auto const blockOf = [this](std::optional<std::string> const& name) {
        return name ? &m_document.block(*name) : nullptr;
    };
    for (std::string const& name : m_options.breaks)
        m_breaks.push_back(&m_document.block(name));
    m_from = blockOf(m_options.only ? m_options.only : m_options.from);
    m_until = blockOf(m_options.only ? m_options.only : m_options.until);
    m_timeout = m_options.timeout.value_or(0);
}

void RunSession::checkTargets() const {
    checkApart();
    if (m_options.saveTo)
        Document::checkCanSave(*m_options.saveTo);
    if (m_options.reportTo)
        SafeFile::check(*m_options.reportTo);
}

// What one of them wrote, another would write over. Only a run may be saved into its own document.
void RunSession::checkApart() const {
    struct Target {
        char const* option;
        std::optional<std::string> const& name;
    };
    auto const placeOf = [this](std::string const& name) {
        std::error_code error;
        fs::path const path = m_startFolder / name;
        fs::path const place = fs::weakly_canonical(path, error);
        return error ? path.lexically_normal() : place;
    };
    fs::path const document = placeOf(m_document.path().string());
    std::vector<std::pair<fs::path, char const*>> places;
    for (Target const& target : {Target{"--journal", m_options.journal}, Target{"--resume", m_options.resume},
                                 Target{"--save", m_options.saveTo}, Target{"--report", m_options.reportTo}}) {
        if (!target.name || target.name->empty())
            continue;
        fs::path const place = placeOf(*target.name);
        if (place == document && &target.name != &m_options.saveTo)
            throw Failure(*target.name, "",
                          fmt::format("is the document itself, which {} would destroy", target.option));
        for (auto const& [other, option] : places)
            if (place == other)
                throw Failure(*target.name, "", fmt::format("is asked for by {} and by {}", option, target.option));
        places.emplace_back(place, target.option);
    }
}

void RunSession::openJournal() {
    if (m_options.journal)
        m_journal = std::make_unique<Journal>(*m_options.journal, Journal::Use::New);
    if (m_journal == nullptr)
        return;
    if (m_progress.isShown())
        m_timeLeft = TimeLeft(m_journal->times());
    if (!m_options.resume)
        return;
    m_journal->checkDocument(m_document, *m_names);
    m_record = m_journal->record(*m_names);
    JournalAim const& aim = m_record->aim;
    auto const blockOf = [this](std::string const& name) {
        CFCBlockNode* const block = m_names->block(name);
        if (block == nullptr)
            throw Failure(*m_options.resume, "", "there is no block " + name + " in the document");
        return block;
    };
    if (!aim.from.empty())
        m_from = blockOf(aim.from);
    // A run that has come to where it was to go has no aim any more.
    bool const hasAim = m_record->end != "stopped" && m_record->end != "ended";
    bool const isAimed = m_until != nullptr || !m_breaks.empty() || !m_options.moves.empty();
    if (!hasAim)
        return;
    if (!isAimed && !aim.until.empty())
        m_until = blockOf(aim.until);
    if (!isAimed && !m_options.isDebugged)
        for (std::string const& name : aim.breaks)
            m_breaks.push_back(blockOf(name));
    if (m_timeout <= 0 && !m_options.isDebugged)
        m_timeout = aim.timeout;
}

JournalAim RunSession::aim() const {
    JournalAim aim;
    for (fs::path const& root : m_document.scriptRoots())
        aim.scriptRoots.push_back(root.string());
    // The last is the document's own folder, which always is one.
    aim.scriptRoots.pop_back();
    if (m_from != nullptr)
        aim.from = m_names->nameOf(m_from);
    if (m_until != nullptr)
        aim.until = m_names->nameOf(m_until);
    for (CFCBlockNode* const block : m_breaks)
        aim.breaks.push_back(m_names->nameOf(block));
    aim.timeout = m_timeout;
    return aim;
}

void RunSession::startJournal() {
    if (m_journal == nullptr)
        return;
    if (m_record) {
        m_journal->resume(aim(), m_report.startedAt);
    } else {
        JournalStart start;
        start.path = m_document.path().string();
        start.sha256 = digestOf(m_document.path());
        start.contents = m_names->contents();
        start.startedAt = m_report.startedAt;
        start.aim = aim();
        m_journal->begin(start, m_document.file());
    }
    if (m_settings.empty())
        return;
    RunStep step;
    step.kind = RunStep::Kind::Values;
    step.values = m_settings;
    m_journal->step(step, BlockRun(), *m_names);
}

// What the reader passed over may be why a run comes out other than expected.
void RunSession::tellFindings() {
    for (CFCReadFinding const& finding : m_document.findings()) {
        std::string const path = pathOf(*finding.node);
        std::string const text = describe(finding);
        printError(errorLine(m_report.file, path, text) + "\n");
        m_report.notes.push_back(path.empty() ? text : path + ": " + text);
    }
}

void RunSession::run() {
    HostServices& services = hostServices();
    services.documentPath = m_document.path().string();
    if (m_options.reportTo)
        m_tree.emplace(m_document.process());
    keepValues(&VariableChange::before);

    RunObserver observer;
    observer.blockStarts = [this](std::string const& path) {
        blockStarts(path);
    };
    observer.blockDone = [this](BlockRun const& block) {
        blockDone(block);
    };
    observer.beforeBlock = [this](CFCBlockNode& block, bool isUndo) {
        beforeBlock(block, isUndo);
    };
    if (m_journal != nullptr)
        observer.stepDone = [this](RunStep const& step, BlockRun const& block) {
            std::lock_guard const lock(m_mutex);
            m_journal->step(step, block, *m_names);
        };
    Runner runner(m_document, *m_interpreter, std::move(observer));
    if (m_from != nullptr)
        runner.beginAt(*m_from);
    if (m_record)
        runner.restore(m_record->steps, m_record->unasked, m_record->end.empty() && !m_record->isOpen);
    for (auto const& [variable, value] : m_settings) {
        variable->SetValue(value);
        variable->UpdateValue();
    }
    startJournal();

    std::optional<Watchdog> watchdog;
    if (m_timeout > 0)
        runner.setWatchdog(&watchdog.emplace(Watchdog::Duration(m_timeout), kGrace, [this] { leaveStuck(); }));
    m_interpreter->takeSignals();
    m_interpreter->captureOutput(m_options.json);
    services.outputBegins = [this] {
        m_progress.clear();
    };
    services.scriptLeaves = [this](ScriptError const& error) {
        std::lock_guard const lock(m_mutex);
        m_progress.clear();
        std::string const cause = errorText(error) + (m_options.saveTo ? ", and nothing is saved" : "");
        printError(errorLine(m_report.file, error.block, cause) + "\n");
    };
    services.writeHistory = [this](std::string const& text) {
        history(text);
    };
    if (m_until != nullptr)
        m_timeLeft.endAt(*m_until);
    attempt([&] {
        std::optional<Debugging> debugging;
        if (m_options.isDebugged)
            debugging.emplace(m_document, m_breaks);
        Breaks const breaks(m_options.isDebugged ? std::vector<CFCBlockNode*>() : m_breaks);
        move(runner);
    });
    runner.setWatchdog(nullptr);
    services.writeHistory = nullptr;
    services.outputBegins = nullptr;
    services.scriptLeaves = nullptr;
    finish(runner);
}

void RunSession::attempt(std::function<void()> const& work) {
    try {
        work();
    } catch (Failure const& failure) {
        if (!m_failure)
            m_failure = failure;
    }
}

// First the run, then the steps and undos of the command line.
void RunSession::move(Runner& runner) {
    bool const stops = !m_breaks.empty() && !m_options.isDebugged;
    bool const beginsWithSteps =
        !stops && m_until == nullptr && !m_options.moves.empty() && m_options.moves.front().kind == RunMove::Kind::Step;
    if (m_record)
        note(m_record->steps.empty() ? "resumed: nothing had run"
                                     : "resumed: " + counted(runner.doneCount(), "block") + " had run");
    bool goesOn = true;
    if (!beginsWithSteps && !(m_record && m_until != nullptr && runner.standsBehind(*m_until))) {
        RunEnd const end = runner.run(m_until);
        goesOn = isGood(end);
        if (end == RunEnd::Nothing)
            note("nothing to go on with: the flow has ended");
        else if (end == RunEnd::Ended && m_until != nullptr && !runner.hasRun(*m_until))
            note("the flow has ended and did not come to " + pathOf(*m_until));
    }
    for (RunMove const& move : m_options.moves)
        goesOn = goesOn && moveBy(runner, move);
}

// False when nothing further is to be done.
bool RunSession::isGood(RunEnd end) {
    m_isFailed = end == RunEnd::Failed;
    if (end == RunEnd::Failed)
        m_exitCode = kExitFound;
    if (end == RunEnd::Interrupted)
        m_exitCode = kExitInterrupted;
    return end != RunEnd::Interrupted;
}

bool RunSession::moveBy(Runner& runner, RunMove const& move) {
    bool const isStep = move.kind == RunMove::Kind::Step;
    for (int count = 0; count < move.count; ++count) {
        RunEnd const end = isStep ? runner.step() : runner.undo();
        if (end == RunEnd::Nothing) {
            note(isStep ? (m_isFailed ? "nothing to step to: a block has failed and is not undone"
                                      : "nothing to step to: the flow has ended")
                        : "nothing to undo: the flow is back at its start");
            return true;
        }
        if (!isGood(end))
            return false;
        if (end == RunEnd::Failed && !isStep)
            return true;
    }
    return true;
}

void RunSession::beforeBlock(CFCBlockNode& block, bool isUndo) {
    std::lock_guard const lock(m_mutex);
    m_running = &block;
    m_isUndoing = isUndo;
    if (m_journal != nullptr)
        m_journal->blockStarts(m_names->nameOf(&block), isUndo);
}

void RunSession::blockStarts(std::string const& path) {
    if (!m_progress.isShown())
        return;
    std::optional<double> const left = m_timeLeft.before(*m_running, path);
    m_progress.show(path, m_report.executed, left ? TimeLeft::text(*left) : std::string());
}

void RunSession::blockDone(BlockRun const& block) {
    std::lock_guard const lock(m_mutex);
    m_progress.clear();
    m_report.blocks.push_back(block);
    m_report.milliseconds += block.milliseconds;
    m_report.executed += block.state == BlockRun::State::Executed ? 1 : 0;
    m_report.undone += block.state == BlockRun::State::Undone ? 1 : 0;
    if (block.state == BlockRun::State::Executed && m_progress.isShown())
        m_timeLeft.blockDone(block.path, block.milliseconds);
    if (!m_options.json)
        printOut(blockLine(block, m_width));
}

void RunSession::history(std::string const& text) {
    std::lock_guard const lock(m_mutex);
    m_progress.clear();
    if (m_journal != nullptr)
        m_journal->history(text);
    for (std::string& line : linesOf(text)) {
        if (!m_options.json)
            printOut("history: " + oneLine(line) + "\n");
        m_report.history.push_back(std::move(line));
    }
}

void RunSession::note(std::string const& text) {
    if (!m_options.json)
        printOut(oneLine(text) + "\n");
    m_report.notes.push_back(text);
}

void RunSession::keepValues(std::string VariableChange::*place) {
    if (!m_tree)
        return;
    m_report.variables.resize(m_tree->variables().size());
    for (std::size_t index = 0; index < m_report.variables.size(); ++index) {
        TreeVariable const& variable = m_tree->variables()[index];
        VariableChange& change = m_report.variables[index];
        change.path = variable.path;
        change.type = typeOf(*variable.data);
        change.*place = m_tree->valueOf(variable);
    }
}

void RunSession::finish(Runner& runner) {
    if (CFCBlockNode* const next = runner.nextBlock())
        m_report.next = pathOf(*next);
    if (m_exitCode == kExitInterrupted)
        m_report.end = "interrupted";
    else if (m_isFailed)
        m_report.end = "failed";
    else
        m_report.end = m_report.next ? "stopped" : "ended";

    if (m_options.saveTo && m_report.end != "interrupted")
        attempt([this] {
            if (m_journal != nullptr) {
                fs::path const target = m_startFolder / *m_options.saveTo;
                std::error_code error;
                fs::path const resolved = fs::weakly_canonical(target, error);
                m_journal->saves(error ? target : resolved);
            }
            m_document.save(*m_options.saveTo);
            m_report.savedTo = m_options.saveTo;
        });
    keepValues(&VariableChange::after);
    if (m_options.reportTo)
        attempt([this] { writeReport(); });
    if (m_journal != nullptr)
        attempt([this] {
            m_journal->ends(m_report);
            m_journal->sync();
        });
}

// Of a run that was resumed the page tells all, from its first beginning.
void RunSession::writeReport() {
    SafeFile file(*m_options.reportTo, m_startFolder);
    RunReport whole = m_report;
    if (m_record) {
        whole.startedAt = m_journal->start().startedAt;
        whole.blocks.insert(whole.blocks.begin(), m_record->blocks.begin(), m_record->blocks.end());
        whole.history.insert(whole.history.begin(), m_record->history.begin(), m_record->history.end());
        whole.executed = 0;
        whole.undone = 0;
        whole.milliseconds = 0;
        for (BlockRun const& block : whole.blocks) {
            whole.executed += block.state == BlockRun::State::Executed ? 1 : 0;
            whole.undone += block.state == BlockRun::State::Undone ? 1 : 0;
            whole.milliseconds += block.milliseconds;
        }
    }
    file.write(htmlReport(m_document, whole));
    file.commit();
    m_report.reportedTo = m_options.reportTo;
}

// On the watchdog's thread, while the script of a block still runs and will not end.
void RunSession::leaveStuck() {
    std::unique_lock lock(m_mutex, std::chrono::seconds(1));
    int const exitCode = m_interpreter->interrupted() ? kExitInterrupted : kExitFound;
    std::string const path = pathOf(*m_running);
    std::string cause = fmt::format("timed out after {} s and does not let go; the run ends here", m_timeout);
    if (m_options.saveTo)
        cause += ", and nothing is saved";
    // Without the lock the thread of the script is in the midst of telling something.
    if (lock.owns_lock()) {
        attempt([&] {
            BlockRun run;
            run.path = path;
            run.state = exitCode == kExitInterrupted ? BlockRun::State::Interrupted : BlockRun::State::Failed;
            run.milliseconds = (m_timeout + kGrace.count()) * 1000;
            ScriptError& error = run.error.emplace();
            error.block = path;
            error.type = "TimeoutError";
            error.text = fmt::format("timed out after {} s", m_timeout);
            m_interpreter->settleOutput();
            run.printed = m_interpreter->takePrinted();
            m_report.end = exitCode == kExitInterrupted ? "interrupted" : "failed";
            if (m_journal != nullptr) {
                RunStep step;
                step.kind = m_isUndoing ? RunStep::Kind::Back : RunStep::Kind::Forward;
                step.state = run.state;
                step.block = m_running;
                m_journal->step(step, run, *m_names);
                m_journal->ends(m_report);
            }
            blockDone(run);
            m_report.notes.push_back(cause);
            printResult();
        });
    }
    printError(errorLine(m_report.file, path, cause) + "\n");
    ::_exit(exitCode);
}

void RunSession::printResult() {
    m_progress.clear();
    if (m_options.json) {
        printOut(jsonText(reportJson(m_report)));
        return;
    }
    std::string text = summaryLine(m_report);
    for (auto const& [what, target] :
         {std::pair("saved: ", &m_report.savedTo), std::pair("report: ", &m_report.reportedTo)})
        if (*target)
            text += what + oneLine(**target) + "\n";
    printOut(text);
}

void RunSession::print() {
    printResult();
    for (BlockRun const& block : m_report.blocks)
        if (block.state == BlockRun::State::Failed && block.error)
            printError(errorLine(m_report.file, block.path, errorText(*block.error)) + "\n");
    if (m_exitCode == kExitInterrupted) {
        // Not the one that was asked for its consent alone.
        std::string const path = m_report.blocks.empty() ? std::string() : m_report.blocks.back().path;
        printError(errorLine(m_report.file, path, "interrupted") + "\n");
    }
}

} // namespace flowmere::host
