#pragma once

// Runs the process of a document: ticks forward through the library's commands, and the way back along every block
// that has run.

#include "flowmere/Flowmere.h"
#include "host/Document.h"
#include "host/Interpreter.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace flowmere::host {

// One block that was run or undone.
struct BlockRun {
    enum class State { Executed, Failed, Undone, Interrupted };

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

// Where a run stands after it was moved.
enum class RunEnd {
    Ended,       // the flow has come to its end
    Stopped,     // in front of a block with a stop, or after a step
    Failed,      // a block failed
    Interrupted, // Ctrl-C
    Nothing,     // there was no block to step to or to undo
};

// What a run tells while it goes on.
struct RunObserver {
    std::function<void(std::string const& path)> blockStarts;
    std::function<void(BlockRun const&)> blockDone;
};

// One run of one document. While it lives the document's process is the active one of the library.
class Runner {
public:
    // Document and interpreter must outlive the runner.
    Runner(Document& document, Interpreter& interpreter, RunObserver observer);
    ~Runner();
    Runner(Runner const&) = delete;
    Runner& operator=(Runner const&) = delete;

    // Runs on from where the run stands, at first from the start block, until the flow ends, stops or fails.
    RunEnd run();
    // Runs the next block. After a failed block nothing, until that block is undone.
    RunEnd step();
    // Undoes the last block that ran, the failed one included; so on back to the start.
    RunEnd undo();

    // The block that the next step runs; null at the end of the flow, after a failure and for a process without blocks.
    CFCBlockNode* nextBlock();

private:
    class Mechanism;

    // A block that has run, and what it must find again when it is undone.
    struct Done {
        CFCBlockNode* block;
        int gripBefore;
    };

    void begin();
    RunEnd tick(CFCBlockNode& block);
    void execute(char const* commandName);
    std::vector<ScriptError> runScript(CFCBlockNode& block, BlockRun& result);
    void failNext(std::vector<ScriptError>& errors, RunEnd& end);
    std::vector<std::pair<std::string, std::string>> outputsOf(CFCBlockNode& block) const;
    CFCBlockNode* blockBelow(std::size_t index) const;

    Document& m_document;
    Interpreter& m_interpreter;
    RunObserver m_observer;
    std::unique_ptr<Mechanism> m_mechanism;
    // The library keeps one way back for each block, which a loop overwrites; this is the whole way.
    std::vector<Done> m_done;
    bool m_begun = false;
    bool m_failed = false;
};

} // namespace flowmere::host
