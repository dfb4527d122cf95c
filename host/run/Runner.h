#pragma once

// Runs the process of a document: ticks forward through the library's commands, and the way back along every block
// that has run.

#include "flowmere/Flowmere.h"
#include "host/document/Document.h"
#include "host/scripting/Interpreter.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace flowmere::host {

class Watchdog;

// One block that was run or undone.
struct BlockRun {
    enum class State { Executed, Failed, Undone, Interrupted, Skipped };

    std::string path;
    State state = State::Executed;
    double milliseconds = 0;
    // The variables that the block gives out, by name, with their actual values. Of an executed block only.
    std::vector<std::pair<std::string, std::string>> outputs;
    // What its script printed while it ran, to standard output and to standard error, in order.
    std::vector<PrintedText> printed;
    // Of a failed block: the first error.
    std::optional<ScriptError> error;
};

char const* stateName(BlockRun::State state);

// All that a run has changed in the document with one block: enough to do it again without the script.
struct RunStep {
    enum class Kind {
        Forward, // the block was run
        Back,    // it was undone
        Consent, // it was asked whether it may be skipped, and failed in that
        Values,  // no block: variables were given values from outside
    };

    Kind kind = Kind::Forward;
    BlockRun::State state = BlockRun::State::Executed;
    CFCBlockNode* block = nullptr;
    // Where the flow stands after it; null at its end.
    CFCBlockNode* next = nullptr;
    // The active grips that are not what they were, and that of the block itself.
    std::vector<std::pair<CFCBlockNode*, int>> grips;
    // The variables that a script has set, each once, with the last value.
    std::vector<std::pair<CFCVariableData*, TuString>> values;
};

// Where a run stands after it was moved.
enum class RunEnd {
    Ended,       // the flow has come to its end
    Stopped,     // in front of a block with a stop, behind the block it was to run up to, or after a step
    Failed,      // a block failed
    Interrupted, // Ctrl-C
    Nothing,     // there was no block to step to or to undo
};

// What a run tells while it goes on.
struct RunObserver {
    std::function<void(std::string const& path)> blockStarts;
    std::function<void(BlockRun const&)> blockDone;
    // Before anything of a block runs, forward or back. What it throws leaves the run in front of the block.
    std::function<void(CFCBlockNode& block, bool isUndo)> beforeBlock = {};
    // Before blockDone.
    std::function<void(RunStep const&, BlockRun const&)> stepDone = {};
};

// One run of one document. While it lives the document's process is the active one of the library.
class Runner {
public:
    // Document and interpreter must outlive the runner.
    Runner(Document& document, Interpreter& interpreter, RunObserver observer);
    ~Runner();
    Runner(Runner const&) = delete;
    Runner& operator=(Runner const&) = delete;

    // Before the first block: the run begins at this block in place of the start block, and does not stop in front of
    // it.
    void beginAt(CFCBlockNode& block);
    // Blocks that take longer than the watchdog allows fail. It must outlive the runner; null takes it away.
    void setWatchdog(Watchdog* watchdog) { m_watchdog = watchdog; }
    // Before the first block: does again what an earlier run of the document did, in its order, without any script. The
    // run then goes on where that one broke off, whether there is a stop or not. `unasked` is the block that had not
    // yet given its consent to be skipped; null for none. With `stops` a stop in front of the next block holds. Each
    // step must follow from those before it.
    void restore(std::vector<RunStep> const& steps, CFCBlockNode* unasked = nullptr, bool stops = false);
    // From now on a block that is marked to be skipped, and whose script lets it, is passed over with all that is in
    // it.
    void passOverSkipped();
    // After blocks were marked to be skipped, or are so no more.
    void marksChanged();

    // Runs on from where the run stands, at first from the start block, until the flow ends, stops or fails. With
    // `until` also once that block has run, and all that is in it.
    RunEnd run(CFCBlockNode* until = nullptr);
    // Runs the next block. After a failed block nothing, until that block is undone.
    RunEnd step();
    // Runs this block, wherever the flow stands, and leaves the flow there. After a failed block nothing.
    RunEnd runOnly(CFCBlockNode& block);
    // Undoes the last block that ran, the failed one included; so on back to the start.
    RunEnd undo();

    // The block that the next step runs; null at the end of the flow, after a failure and for a process without blocks.
    CFCBlockNode* nextBlock();
    // Whether the block, or something in it, has run and is not undone.
    bool hasRun(CFCBlockNode& block) const;
    // Whether the block that ran last is this one, or in it, and the next is not.
    bool standsBehind(CFCBlockNode& block);
    // The number of blocks that can be undone.
    std::size_t doneCount() const { return m_done.size(); }

private:
    class Mechanism;

    // A block that has run, and what it must find again when it is undone.
    struct Done {
        CFCBlockNode* block;
        int gripBefore;
        EExecutionStateType stateBefore; // of an earlier time in this run; none for the first
        bool isFirst;
        // Where the flow stood, for a block that ran out of its turn.
        std::optional<CFCBlockNode*> at = std::nullopt;
        bool isSkipped = false;
    };

    // Runs the block's script in some way, if it has one.
    using Work = std::function<void(bool hasScript)>;

    void begin();
    void addDone(CFCBlockNode& block, int gripBefore, EExecutionStateType stateBefore);
    void removeDone();
    RunEnd tick(CFCBlockNode& block);
    std::optional<RunEnd> passOver(CFCBlockNode& block);
    void execute(char const* commandName);
    std::vector<ScriptError> runScript(CFCBlockNode& block, BlockRun& result, Work const& work);
    void tickOnce(CFCBlockNode& block, bool hasScript);
    RunEnd askConsent(CFCBlockNode& block);
    void failNext(CFCBlockNode* next, std::vector<ScriptError>& errors, BlockRun& result);
    void noteFailure(CFCBlockNode& block, BlockRun::State state);
    std::vector<std::pair<std::string, std::string>> outputsOf(CFCBlockNode& block) const;
    CFCBlockNode* blockBelow(std::size_t index) const;
    void tell(RunStep& step, BlockRun& result);
    void again(RunStep const& step);

    Document& m_document;
    Interpreter& m_interpreter;
    RunObserver m_observer;
    std::unique_ptr<Mechanism> m_mechanism;
    Watchdog* m_watchdog = nullptr;
    CFCBlockNode* m_first = nullptr;
    // The block whose consent is to be asked for once more before it runs.
    CFCBlockNode* m_unasked = nullptr;
    // The library keeps one way back for each block, which a loop overwrites; this is the whole way.
    std::vector<Done> m_done;
    std::unordered_set<CFCBlockNode*> m_isDone; // the blocks of this way
    CFCBlockNode* m_undone = nullptr;           // where the flow stands after an undo
    std::vector<CFCVariableData*> m_written;
    std::unordered_set<CFCVariableData*> m_isWritten;
    bool m_begun = false;
    bool m_failed = false;
    bool m_passesStop = false;
    bool m_isRestored = false;
    bool m_passesOver = false;
    // The marked blocks that the library shall not ask for their consent.
    std::vector<CFCBlockNode*> m_unaskable;
};

} // namespace flowmere::host
