#pragma once

// The journal of a run: a file with one JSON line for each event, which outlives the program that wrote it.
//
// Events, each an object with "event" first:
//     begin    the document (its name, path, digests), the time, the options
//     resume   a later program goes on with the run
//     values   variables that were set, by a script or from outside, each with its last value
//     start    a block is about to run; undo: it is about to be undone
//     printed  what a block has printed, by stream
//     history  a text for the log of the run
//     done     a block has run: state, time, active grip, the block that follows, outputs, error
//     undone   the same for a block that was undone, or not
//     save     the document is about to be saved
//     end      how the run ended
// Blocks and variables go by their paths; where several have one path, the later ones with "#2", "#3" behind it.

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/run/RunReport.h"
#include "host/run/Runner.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace flowmere::host {

// What the blocks and variables of a document are called in a journal: the same each time the document is read.
class JournalNames {
public:
    // The tree of the document must not change in shape from now on.
    explicit JournalNames(Document& document);

    // Empty for what is not in the document.
    std::string const& nameOf(CFCBlockNode* block) const;
    std::string const& nameOf(CFCVariableData* variable) const;
    // Null for no such name.
    CFCBlockNode* block(std::string const& name) const;
    CFCVariableData* variable(std::string const& name) const;

    // Digest of all that the document holds, the files that it links to included, as it was when this was made.
    std::string const& contents() const { return m_contents; }

private:
    std::unordered_map<CFCBlockNode*, std::string> m_blockNames;
    std::unordered_map<CFCVariableData*, std::string> m_variableNames;
    std::unordered_map<std::string, CFCBlockNode*> m_blocks;
    std::unordered_map<std::string, CFCVariableData*> m_variables;
    std::string m_contents;
};

// What a run was to do, as far as one that goes on with it is to do the same.
struct JournalAim {
    std::vector<std::string> scriptRoots; // absolute
    std::string from;                     // a name of the journal, as the following; empty for the start block
    std::string until;
    std::vector<std::string> breaks;
    double timeout = 0; // in seconds; 0 for none
};

// Of which document a journal tells.
struct JournalStart {
    std::string path;     // absolute
    std::string sha256;   // of the file
    std::string contents; // see JournalNames
    std::string startedAt;
    JournalAim aim;
};

// What a journal tells of its run up to where that ended or broke off.
struct JournalRecord {
    // Failures that were followed by nothing are left out: the run goes on in front of them.
    std::vector<RunStep> steps;
    CFCBlockNode* unasked = nullptr; // see Runner::restore
    JournalAim aim;                  // of the last program that worked on the run
    // How that ended: as RunReport::end, empty for one that broke off.
    std::string end;
    bool isOpen = false; // it broke off inside a block
    std::vector<BlockRun> blocks;
    std::vector<std::string> history;
};

// The SHA-256 of a file. Throws Failure.
std::string digestOf(std::filesystem::path const& file);

// The file itself. While this lives no other program works on it.
class Journal {
public:
    enum class Use {
        New,    // for a new run; the file may be missing, or hold a run that has come to its end
        Resume, // to go on with the run that it holds
    };

    // Changes nothing yet. Throws Failure, exit code 2, for a file that is not fit for the use.
    Journal(std::string const& file, Use use);
    ~Journal();
    Journal(Journal const&) = delete;
    Journal& operator=(Journal const&) = delete;

    // Of a journal that is resumed.
    JournalStart const& start() const { return m_start; }
    // Throws Failure, exit code 2, when the document is not the one that the journal tells of.
    void checkDocument(Document const& document, JournalNames const& names) const;
    // Throws Failure, exit code 2, with the line that makes no sense.
    JournalRecord record(JournalNames const& names) const;
    // The blocks that ran according to the file as it was found, in order, with their times in milliseconds.
    std::vector<std::pair<std::string, double>> times() const;

    // The first line of a new run, or of one that goes on. Throws Failure, exit code 2, when it does not come to disk.
    void begin(JournalStart const& start, std::string const& file);
    void resume(JournalAim const& aim, std::string const& at);

    // Throws Failure, exit code 2, when that, or something before it, has not come to disk. All that is told later
    // without success is kept for the next of these.
    void blockStarts(std::string const& name, bool isUndo);
    void sync();

    void printed(std::string const& name, PrintedText const& text);
    void history(std::string const& text);
    void step(RunStep const& step, BlockRun const& run, JournalNames const& names);
    void saves(std::filesystem::path const& file);
    void ends(RunReport const& report);

private:
    class Reader;

    [[noreturn]] void fail(int line, std::string const& cause) const;
    void checkWritable(int error) const;
    void read();
    void readStart(std::string_view line);
    void checkReplaceable() const;
    std::size_t wholeLines() const;
    void put(Json const& event);
    void flush();

    std::string m_file;
    int m_descriptor = -1;
    bool m_isNewFile = false;
    std::string m_content; // as it was found
    std::size_t m_size = 0;
    JournalStart m_start;
    std::string m_fault;
};

} // namespace flowmere::host
