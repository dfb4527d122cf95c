#pragma once

#include "flowmere/foundation/TuString.h"

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

class IFCNode;

namespace flowmere {

// The definitions that are being read, from the top one to the innermost, and what they have in common.
class WorkflowFileChain {
public:
    struct Stray {
        IFCNode* root = nullptr;
        TuString place;           // of the block whose element it took
        std::size_t findings = 0; // number of those before it
        bool wasHandedOut = false;
    };

    std::vector<std::string> open;        // canonical paths
    std::unordered_set<std::string> read; // the same of all files ever opened
    std::vector<Stray> strays;            // trees of their own, which end with the element that made them
    std::size_t repeats = 0;              // files opened that had been read before, by another path
    std::size_t levels = 0;               // elements that are being read
    bool isHandedOut = false;             // the container may know nodes that the reader made
};

} // namespace flowmere
