#pragma once

class IFCNode;

namespace flowmere {

// Where the blocks of imported schedules stand: summaries in columns of their own, the tasks between two summaries in
// columns that begin anew with each summary.
class ScheduleColumns {
public:
    // Gives the node its place by its kind. The very first summary becomes a task, but stands where a summary would.
    void place(IFCNode& node);

private:
    struct Column {
        int count = 0;
        double x = 0.2;
        double y = 5.5;

        void put(IFCNode& node);
    };
    Column m_tasks;
    Column m_summaries;
};

// Those of the process: an import goes on where the one before it ended.
ScheduleColumns& scheduleColumns() noexcept;

} // namespace flowmere
