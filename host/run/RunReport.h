#pragma once

// Everything that a run has shown: for the summary, for --json and for the page of --report.

#include "host/run/Runner.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace flowmere::host {

// A variable, and its actual value before and after the run.
struct VariableChange {
    std::string path;
    std::string type;
    std::string before;
    std::string after;
};

struct RunReport {
    std::string file;
    std::string startedAt; // date and time, as in 2026-03-01 14:05:09
    std::vector<BlockRun> blocks;
    std::vector<std::string> history;
    std::vector<std::string> notes;
    std::vector<VariableChange> variables; // all of the document, in the order of its file
    std::size_t executed = 0;
    std::size_t undone = 0;
    double milliseconds = 0;
    std::string end; // "ended", "stopped", "failed" or "interrupted"
    std::optional<std::string> next;
    std::optional<std::string> savedTo;
    std::optional<std::string> reportedTo; // the page of --report
};

} // namespace flowmere::host
