#pragma once

// Whether a document holds what it was written from.

#include "flowmere/Flowmere.h"

#include <optional>
#include <string>

namespace flowmere::host {

// Something of a tree that is not found again.
struct Loss {
    std::string place; // path of the node or variable; empty for the root
    std::string what;  // "its value"; empty for the place as a whole
};

// The first of the nodes, their attributes, the variables and the connectors below a root that another tree lacks; none
// when it has them all. What stands below a process that is read from a file of its own is only looked for by name: it
// comes from there, whatever is written. Both trees stay as they are; time in proportion to their size.
std::optional<Loss> firstLoss(IFCNode& tree, IFCNode& readBack);

} // namespace flowmere::host
