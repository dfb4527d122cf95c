// The searches of CFCNodeHelper among the records of applications.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCApplicationNode.h"

namespace {

// First record of the list that the test accepts.
template <typename Record, typename List, typename Test>
Record* findInList(List& list, Test const& test) {
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        Record* const record = list.GetNext(position);
        if (record != nullptr && test(*record)) {
            return record;
        }
    }
    return nullptr;
}

} // namespace

CFCArgumentData* CFCNodeHelper::FindArgumentByID(IFCNode* node, int id, int) {
    return flowmere::walkUp(node, [id](IFCNode* place) -> CFCArgumentData* {
        auto* const application = dynamic_cast<CFCApplicationNode*>(place);
        if (application == nullptr) {
            return nullptr;
        }
        return findInList<CFCArgumentData>(*application->GetArgumentList(),
                                           [id](CFCArgumentData& argument) { return argument.GetArgumentID() == id; });
    });
}

CFCPatternData* CFCNodeHelper::FindPatternByID(IFCNode* node, int id) {
    return flowmere::walkUp(node, [id](IFCNode* place) -> CFCPatternData* {
        auto* const application = dynamic_cast<CFCApplicationNode*>(place);
        if (application == nullptr) {
            return nullptr;
        }
        return findInList<CFCPatternData>(*application->GetPatternList(),
                                          [id](CFCPatternData& pattern) { return pattern.GetPatternID() == id; });
    });
}
