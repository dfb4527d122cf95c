#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCBlockData.h"

using flowmere::Step;

void CFCNodeHelper::ConvertNode(IFCNode* node) {
    CFCBlockData* const data = node != nullptr ? node->GetFCBlockData() : nullptr;
    if (data != nullptr) {
        data->ConvertToLinkedVariable();
    }
}

void CFCNodeHelper::ConvertToLinkedVariable(IFCNode* node) {
    flowmere::walkDown(node, [](IFCNode* place) {
        ConvertNode(place);
        return Step::Descend;
    });
}

void CFCNodeHelper::UpdateAllToNewPath(IFCNode* node) {
    for (; node != nullptr; node = node->GetNext()) {
        flowmere::walkUp(node, [](IFCNode* place) -> IFCNode* {
            place->SetNewPath(true);
            return nullptr;
        });
    }
}
