// Project schedules: whatever a file holds, it is read or refused, each task comes into the tree or is told as left
// out, predecessors can be looked up, and the tree can be written as a document that can be read.
#include "FuzzFile.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"
#include "flowmere/workflow/FCMSPReader.h"
#include "flowmere/workflow/ScheduleColumns.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

// What a host with a drawing does first with a node.
class LookingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override {
        if (node == nullptr || node->GetTuRect() == nullptr)
            std::abort();
        ++count;
    }
    int count = 0;
};

std::vector<IFCNode*> tasksBelow(IFCNode* top) {
    std::vector<IFCNode*> tasks;
    std::vector<IFCNode*> open{top->GetChild()};
    while (!open.empty()) {
        IFCNode* const node = open.back();
        open.pop_back();
        if (node == nullptr)
            continue;
        open.push_back(node->GetNext());
        open.push_back(node->GetChild());
        if (node->GetBPMBlockData() != nullptr)
            tasks.push_back(node);
    }
    return tasks;
}

void checkFindings(CFCMSPReader const& reader, IFCNode const* top, std::size_t tasks) {
    std::vector<Tree> strays;
    std::size_t leftOut = 0;
    for (CFCScheduleFinding const& finding : reader.GetFindings()) {
        if (finding.number > reader.GetTaskCount())
            std::abort();
        if (!finding.IsTaskLeftOut()) {
            if (finding.node == nullptr || finding.node->GetRootNode() != top)
                std::abort();
            continue;
        }
        ++leftOut;
        if (finding.node == nullptr)
            continue;
        if (finding.node->GetParentNode() != nullptr || finding.node->GetChild() != nullptr)
            std::abort();
        strays.emplace_back(finding.node);
    }
    if (tasks + leftOut != static_cast<std::size_t>(reader.GetTaskCount()))
        std::abort();
}

// As many look-ups as a small schedule has, for each goes along a chain.
void findPredecessors(std::vector<IFCNode*> const& tasks) {
    constexpr std::size_t kMost = 100;
    for (std::size_t i = 0; i < tasks.size() && i < kMost; ++i) {
        CFCBPMBlockData* const data = tasks[i]->GetBPMBlockData();
        if (CFCNodeHelper::FindNodeWBS(data->GetWBS(), L"", tasks[i]) != tasks[i])
            std::abort();
        CFCNodeHelper::FindNodeWBS(data->GetWBS(), data->GetPredecessorID(), tasks.front());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    TuString const input = flowmere::fuzz::inputFile(data, size, ".xml");
    flowmere::scheduleColumns() = flowmere::ScheduleColumns(); // an input alone decides what it does
    CFCNodeFactory factory;
    LookingContainer container;
    Tree tree;
    {
        CFCMSPReader reader;
        reader.SetNodeFactory(&factory);
        reader.SetContainer(&container);
        IFCNode* node = nullptr;
        if (reader.Parse(input, &node, 16) != (node != nullptr))
            std::abort();
        tree.reset(node);
        if (tree == nullptr)
            return 0;
        std::vector<IFCNode*> const tasks = tasksBelow(node);
        checkFindings(reader, node, tasks.size());
        if (container.count <= static_cast<int>(tasks.size()))
            std::abort(); // each task and the process
        findPredecessors(tasks);
    }
    TuString const output = input + L".out";
    if (!CFCWriter().WriteFile(output, tree.get(), true))
        std::abort();
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* again = nullptr;
    if (!reader.Parse(output, &again, 2) || again == nullptr)
        std::abort();
    tree.reset(again);
    return 0;
}
