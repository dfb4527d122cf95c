#pragma once

// A document as the workflow engine takes it: a tree of workflow nodes, made anew, with word of all that it does not
// keep.

#include "host/document/Document.h"
#include "host/document/HostFactory.h"
#include "host/workflow/Notes.h"

#include "flowmere/Flowmere.h"

#include <functional>
#include <utility>
#include <vector>

namespace flowmere::host {

// A connector whose whole route goes out: the writers leave out the route of one that has no end.
class WorkflowConnector final : public RoutedConnector {
public:
    _TgPointLStr* GetEndPoint() override;
};

struct WorkflowTree {
    NodeTree process; // a CFCBPMProcessNode, never null
    std::vector<Note> notes;
    // The blocks that came out as workflow blocks, in the order of the document, each behind its container.
    std::vector<std::pair<CFCBlockNode*, CFCBPMTaskNode*>> blocks;
    int levels = 1; // definitions: that of the process, and one for each sub-process
    int nodes = 0;  // without the processes
    int transitions = 0;
    int variables = 0;
};

// Converts the tree, which stays as it is:
// - plain blocks become tasks, decisions decision tasks, sub-processes basic sub-processes; terminators become the
//   start state where the flow of a level starts, and end states where it ends; workflow nodes stay what they are
// - where a level has no start state it gets one, and an end state behind the blocks where its flow ends; a tree that
//   is a workflow as a whole gets none
// - identifiers become such that the engine and its folders take them; links still lead to their variables
// - what a workflow folder cannot hold is left out, and told
// Scripts are left to the caller.
WorkflowTree toWorkflow(CFCProcessNode& process, std::function<ScriptState(CFCBlockNode&)> const& scriptState);
// The same for a schedule: workflow nodes without scripts that still lack start and end, and that may not be joined.
WorkflowTree scheduleToWorkflow(CFCProcessNode& process);

} // namespace flowmere::host
