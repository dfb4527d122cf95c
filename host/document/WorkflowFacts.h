#pragma once

// What the engine of a workflow is told of a node, beside its place in the tree: its task, its events, timers and
// transitions, as plain texts for those who show and compare them.

#include "flowmere/Flowmere.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// How a fact is written. Flags are "yes", or empty for no; of a number, the empty text is 0.
enum class WorkflowForm : std::uint8_t { Text, Number, Flag, List };

struct WorkflowFact {
    std::string_view name; // stands in outputs that programs read: never change one
    WorkflowForm form;
    // One text, or for a list any number of them. Empty texts stand for what is not set.
    std::vector<std::string> (*values)(IFCNode& node, CFCBPMBlockData& task);

    // The same without empty texts, and without what every new node has where there is no task to have it. Of facts in
    // the table alone.
    std::vector<std::string> shown(IFCNode& node, CFCBPMBlockData& task) const;
};

// All there are, in the order in which they are shown.
std::span<WorkflowFact const> workflowFacts();

// A transition as a line: its target, and its label and name where they say more than that.
std::string transitionText(IFCNode& node, CFCTransitionData& transition);

} // namespace flowmere::host
