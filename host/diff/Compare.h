#pragma once

// What changed from one snapshot to another.

#include "host/diff/Snapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

struct Difference {
    enum class Change { Added, Removed, Moved, Changed };
    enum class Subject { Node, Variable, Connector };

    Change change = Change::Changed;
    Subject subject = Subject::Node;
    std::string path; // in the first document; of what was added, in the second
    // What was added, removed, moved or changed: in the second document when it was added, in the first otherwise. One
    // of the last two only, by the subject; the first is then the node that holds it.
    NodeFacts const* node = nullptr;
    VariableFacts const* variable = nullptr;
    ConnectorFacts const* connector = nullptr;

    // Of a change: the attribute, how it is written, and its two values. Of a move: the two paths.
    std::string_view attribute;
    Form form = Form::Text;
    std::string before;
    std::string after;
};

// In the order of the first document; what was added to a node comes behind the rest of it, in the order of the second.
// Empty for documents that say the same. Works in time proportional to both. The result points into the snapshots.
//
// Nodes are found again by identifier among the children of the same node, variables by name, connectors by their two
// blocks; several of one name by their order. A node that is gone in one place and there in another with the same
// identifier and kind, and no other with them, was moved.
std::vector<Difference> compare(Snapshot const& first, Snapshot const& second);

} // namespace flowmere::host
