#pragma once

// The tasks of a schedule joined by their predecessors.

#include "host/workflow/Notes.h"

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <vector>

namespace flowmere::host {

struct ScheduleLinks {
    int connectors = 0;
    std::size_t branchings = 0; // tasks that several others follow
    std::vector<Note> notes;
};

// Adds a connector from each predecessor to the task that names it by its UID. A connector lives in one level: for a
// predecessor in another one, those two are joined in which they stand where their ways part. No two blocks are joined
// twice in one direction, none with itself, and none so that a circle would close. `findings` are those of the reader,
// for what is said of a predecessor that is not there.
ScheduleLinks connectTasks(IFCNode& process, std::vector<CFCScheduleFinding> const& findings);

} // namespace flowmere::host
