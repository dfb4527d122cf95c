#pragma once

// What may stand where the cursor is.

#include "host/shell/Words.h"
#include "host/shell/Workspace.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host::shell {

struct Completion {
    struct Candidate {
        std::string text;     // as it is shown
        std::string inserted; // as it is typed, in place of what stands between `begin` and the cursor
        bool isOpen = false;  // more is to come behind it, as behind a folder
    };
    std::size_t begin = 0;
    std::vector<Candidate> candidates; // in the order of their texts, each once
};

// `line` ends at the cursor. Blocks and variables are those of the open project, none without one.
Completion complete(std::string_view line, Workspace const& workspace);

// What all candidates begin with, as it is typed.
std::string commonStart(Completion const& completion);

} // namespace flowmere::host::shell
