#include "flowmere/workflow/ScheduleColumns.h"

#include "flowmere/model/FCNode.h"

namespace {

constexpr int kTask = 150;

// In inches, y growing upwards.
constexpr double kTop = 11.0;
constexpr double kLowest = 0.5; // what stands below it ends a column
constexpr double kRowHeight = 2.0;
constexpr double kColumnWidth = 2.5;
constexpr double kBlockWidth = 1.5;
constexpr double kBlockHeight = 1.7;

} // namespace

namespace flowmere {

void ScheduleColumns::Column::put(IFCNode& node) {
    if (count == 1 || (count > 1 && y < kLowest)) {
        x += kColumnWidth;
        y = kTop;
    } else if (count > 1) {
        y -= kRowHeight;
    }
    node.SetTuRectInInchReverse(x, y, kBlockWidth, kBlockHeight);
    ++count;
}

void ScheduleColumns::place(IFCNode& node) {
    if (node.GetNodeType() == kTask) {
        m_tasks.put(node);
        return;
    }
    if (m_summaries.count == 0)
        node.SetNodeType(kTask);
    m_summaries.put(node);
    m_tasks = Column();
}

ScheduleColumns& scheduleColumns() noexcept {
    static constinit ScheduleColumns columns;
    return columns;
}

} // namespace flowmere
