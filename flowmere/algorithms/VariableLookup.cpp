#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

namespace {

// First variable of the node's own list that the test accepts.
template <typename Test>
CFCVariableData* findInList(IFCNode* node, Test test) {
    CFCVariableList* const list = node->GetVariableList();
    if (list == nullptr) {
        return nullptr;
    }
    __FCPOSITION* position = list->GetHeadPosition();
    while (position != nullptr) {
        IFCNode* const element = list->GetNextNode(position);
        CFCVariableData* const variable = element != nullptr ? element->GetVariableData() : nullptr;
        if (variable != nullptr && test(*variable)) {
            return variable;
        }
    }
    return nullptr;
}

} // namespace

CFCVariableData* CFCNodeHelper::FindVariable(wchar_t const* path, IFCNode* node) {
    CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(node);
    return block != nullptr ? block->FindVariable(path) : nullptr;
}

CFCVariableData* CFCNodeHelper::FindVariableByName(TuString name, IFCNode* node) {
    if (node == nullptr || name.IsEmpty()) {
        return nullptr;
    }
    CFCVariableList* const list = node->GetVariableList();
    return list != nullptr ? list->FindByExactName(name) : nullptr;
}

CFCVariableData* CFCNodeHelper::FindVariableByID(IFCNode* node, int id) {
    return flowmere::walkUp(node, [id](IFCNode* place) {
        return findInList(place, [id](CFCVariableData& variable) { return variable.GetVariableID() == id; });
    });
}

CFCVariableData* CFCNodeHelper::FindVariableByMapID(IFCNode* node, int id) {
    return flowmere::walkUp(node, [id](IFCNode* place) {
        return findInList(place, [id](CFCVariableData& variable) { return variable.GetDeploymentMapId() == id; });
    });
}

CFCVariableData* CFCNodeHelper::FindFinalVariable(wchar_t const* path, IFCNode* node) {
    TuString current(path);
    CFCVariableData* variable = FindVariable(current, node);
    flowmere::CircleGuard<CFCVariableData> guard;
    while (variable != nullptr && variable->IsLinked()) {
        TuString next(variable->GetLinkPath());
        if (next == current || guard.closes(variable)) {
            return nullptr;
        }
        variable = FindVariable(next, node);
        // Two variables that link to each other; longer circles come back to the guard.
        if (variable != nullptr && current == variable->GetLinkPath()) {
            return nullptr;
        }
        current = next;
    }
    return variable;
}

CFCVariableData* CFCNodeHelper::FindVariableWithCheck(wchar_t const* path, IFCNode* node) {
    TuString const start(path);
    CFCVariableData* const origin = FindVariable(start, node);
    if (origin == nullptr || !origin->IsLinked()) {
        return origin;
    }
    return FindVariableWithCheck(origin->GetLinkPath(), node, origin);
}

CFCVariableData* CFCNodeHelper::FindVariableWithCheck(wchar_t const* path, IFCNode* node, CFCVariableData* origin) {
    TuString current(path);
    flowmere::CircleGuard<CFCVariableData> guard;
    while (true) {
        CFCVariableData* const variable = FindVariable(current, node);
        if (variable == nullptr || !variable->IsLinked() || variable == origin) {
            return variable;
        }
        if (guard.closes(variable)) {
            return nullptr;
        }
        current = variable->GetLinkPath();
    }
}
