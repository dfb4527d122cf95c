#pragma once

// What the command line asks of a run.

#include <optional>
#include <string>
#include <vector>

namespace flowmere::host {

struct RunMove {
    enum class Kind { Step, Undo };
    Kind kind = Kind::Step;
    int count = 1;
};

struct RunOptions {
    std::string file; // may be empty with `resume`
    std::vector<std::string> scriptRoots;
    std::vector<std::string> values;
    std::vector<std::string> breaks;
    std::optional<std::string> from;
    std::optional<std::string> until;
    std::optional<std::string> only;
    std::vector<int> steps;
    std::vector<int> undos;
    std::vector<RunMove> moves; // steps and undos in the order of the command line
    std::optional<double> timeout;
    std::optional<std::string> journal;
    std::optional<std::string> resume;
    std::optional<std::string> saveTo;
    std::optional<std::string> reportTo;
    bool isDebugged = false;
    bool json = false;
};

} // namespace flowmere::host
