#pragma once

// A project schedule on its way into a document or a workflow folder.

#include "host/document/HostFactory.h"
#include "host/workflow/FromWorkflow.h"
#include "host/workflow/Notes.h"
#include "host/workflow/ScheduleLeftOut.h"
#include "host/workflow/ToWorkflow.h"

#include <string>
#include <vector>

namespace flowmere::host {

struct Schedule {
    NodeTree process; // a CFCBPMProcessNode of project type MSP, never null
    int tasks = 0;    // in the file
    int superStates = 0;
    int blocks = 0; // tasks that are no super-states
    std::vector<LeftOutTask> leftOut;
    int predecessors = 0; // tasks that name one
    int connectors = 0;
    std::vector<Note> notes;
};

// Reads the file by the library's rules, which decide which tasks come in and where they stand, and makes of it what
// documents and folders take:
// - a task that holds others is a super-state, whatever the file calls it: nothing else holds blocks there
// - identifiers are unique in their level and fit for paths; captions keep the names
// - what neither has a place for, as the WBS, stands in the descriptions of the blocks
// With `connects`, tasks are joined by their predecessors.
//
// Throws Failure, exit code 2, for what cannot be read and what is no schedule.
Schedule readSchedule(std::string const& name, bool connects);

// The schedule as a document, and as a workflow. What changes on the way is in the notes of the result, behind those of
// the schedule, which is used up.
NativeTree documentOf(Schedule& schedule);
WorkflowTree workflowOf(Schedule& schedule);

} // namespace flowmere::host
