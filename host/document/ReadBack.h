#pragma once

// Whether a document holds what it was written from.

#include "flowmere/Flowmere.h"

#include <optional>
#include <string>
#include <vector>

namespace flowmere::host {

// Something of a tree that is not found again.
struct Loss {
    bool operator==(Loss const&) const = default;

    std::string place; // path of the node or variable; empty for the root
    std::string what;  // "its value"; empty for the place as a whole
};

// What became of a tree on its way into a document and back.
struct ReadBack {
    // The first of its nodes, their attributes, the variables and the connectors that is not found again; none when all
    // are.
    std::optional<Loss> loss;
    // Paths of the variables whose value comes back with other white space: documents trim values, and put blanks for
    // line ends.
    std::vector<std::string> respaced;
};

// Compares the tree below a root with another one, which may hold more. What stands below a process that is read from a
// file of its own is only looked for by name: it comes from there, whatever is written. Both trees stay as they are;
// time in proportion to their size.
ReadBack compareReadBack(IFCNode& tree, IFCNode& readBack);

} // namespace flowmere::host
