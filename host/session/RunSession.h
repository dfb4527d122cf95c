#pragma once

// One run as the command line asks for it, from the opened document to the exit code.

#include "host/basics/Command.h"
#include "host/document/Document.h"
#include "host/document/Tree.h"
#include "host/run/Journal.h"
#include "host/run/RunReport.h"
#include "host/run/Runner.h"
#include "host/session/Options.h"
#include "host/session/Progress.h"
#include "host/session/Settings.h"
#include "host/session/TimeLeft.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace flowmere::host {

class RunSession {
public:
    // Opens the journal that is resumed, and the document. Throws Failure, as work() does.
    explicit RunSession(RunOptions const& options);

    // Gives the exit code. Once.
    int work();

private:
    void readOptions();
    void checkTargets() const;
    void checkApart() const;
    void openJournal();
    JournalAim aim() const;
    void startJournal();
    void tellFindings();

    void run();
    void attempt(std::function<void()> const& work);
    void move(Runner& runner);
    bool isGood(RunEnd end);
    bool moveBy(Runner& runner, RunMove const& move);

    void beforeBlock(CFCBlockNode& block, bool isUndo);
    void blockStarts(std::string const& path);
    void blockDone(BlockRun const& block);
    void history(std::string const& text);
    void note(std::string const& text);
    void keepValues(std::string VariableChange::*place);

    void finish(Runner& runner);
    void writeReport();
    [[noreturn]] void leaveStuck();
    void printResult();
    void print();

    RunOptions const& m_options;
    std::filesystem::path m_startFolder;
    std::unique_ptr<Journal> m_journal;
    Document m_document;
    Interpreter* m_interpreter = nullptr;
    Progress m_progress;
    TimeLeft m_timeLeft;
    RunReport m_report;
    std::optional<JournalNames> m_names;
    std::optional<JournalRecord> m_record; // of a run that is resumed
    std::optional<Tree> m_tree;
    std::vector<Setting> m_settings;
    CFCBlockNode* m_from = nullptr;
    CFCBlockNode* m_until = nullptr;
    std::vector<CFCBlockNode*> m_breaks;
    double m_timeout = 0; // in seconds; 0 for none
    std::size_t m_width = 0;
    bool m_isFailed = false;
    int m_exitCode = 0;
    std::optional<Failure> m_failure; // the first that did not keep the rest from being done
    CFCBlockNode* m_running = nullptr;
    bool m_isUndoing = false;
    // The watchdog's thread tells the end of a run while a script still runs, and tells things itself.
    std::recursive_timed_mutex m_mutex;
};

} // namespace flowmere::host
