#pragma once

// Which rows of a schedule make no block, and why, in words for those who wrote the schedule.

#include "host/basics/Text.h"

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace flowmere::host {

struct LeftOutTask {
    // In the order in which they are told.
    enum class Reason : std::uint8_t {
        WholeProject,  // the row with UID 0
        Blank,         // neither a name nor a WBS
        NoWBS,         // nothing says where it belongs
        Top,           // a WBS without a level above it, and no summary
        ParentAbsent,  // no task has the WBS above it
        ParentLeftOut, // the task above it is left out, too
        TooDeep,       // the task above it came in below another one
        NotInTurn,     // the task above it is not the last one at the top
        Inside,        // in the element of a task that is left out
        NoBlock,       // no node could be made
    };
    Reason reason = Reason::NoBlock;
    int number = 0; // in the file, the first task is 1
    int line = 0;   // of the file; 0 when it is not known
    std::string name;
    std::string uid;
    std::string wbs;
    std::string detail; // what the reason means for this one; may be empty

    // Whether something is lost: blank rows hold nothing, and the process stands for the row of the whole project.
    bool isLoss() const { return reason != Reason::WholeProject && reason != Reason::Blank; }
};

// The tasks that the reader left out, in the order of the file. `process` is what it read.
std::vector<LeftOutTask> leftOutTasks(CFCMSPReader const& reader, IFCNode& process, std::filesystem::path const& file);

bool hasLosses(std::vector<LeftOutTask> const& tasks);
// For each reason how many there are, "-" in front of a loss and "~" in front of others, and below it each of them.
std::string textOf(std::vector<LeftOutTask> const& tasks);
// A list with an object for each.
Json jsonOf(std::vector<LeftOutTask> const& tasks);

} // namespace flowmere::host
