#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/LinkEnds.h"
#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <vector>

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

namespace {

flowmere::LinkEnds* innermostLinkEnds = nullptr;

} // namespace

flowmere::LinkEnds::LinkEnds(IFCNode* root) : m_root(root), m_outer(innermostLinkEnds) {
    innermostLinkEnds = this;
}

flowmere::LinkEnds::~LinkEnds() {
    innermostLinkEnds = m_outer;
}

flowmere::LinkEnds* flowmere::LinkEnds::of(IFCNode* root) noexcept {
    return innermostLinkEnds != nullptr && innermostLinkEnds->m_root == root ? innermostLinkEnds : nullptr;
}

CFCVariableData* flowmere::LinkEnds::find(wchar_t const* path) {
    if (m_epoch != linkEpoch) {
        m_ends.clear();
        m_epoch = linkEpoch;
    }
    std::vector<TuString> passed;
    TuString current(path);
    CFCVariableData* end = nullptr;
    CFCVariableData* variable = CFCNodeHelper::FindVariable(current, m_root);
    CircleGuard<CFCVariableData> guard;
    while (true) {
        if (auto const known = m_ends.find(current); known != m_ends.end()) {
            end = known->second;
            break;
        }
        passed.push_back(current);
        if (variable == nullptr || !variable->IsLinked()) {
            end = variable;
            break;
        }
        TuString next(variable->GetLinkPath());
        if (next == current || guard.closes(variable)) {
            break;
        }
        variable = CFCNodeHelper::FindVariable(next, m_root);
        if (variable != nullptr && current == variable->GetLinkPath()) {
            break;
        }
        current = next;
    }
    // Every variable on the way ends where this one does; a circle is left by none of them.
    for (TuString const& place : passed) {
        m_ends.emplace(place, end);
    }
    return end;
}

CFCVariableData* CFCNodeHelper::FindFinalVariable(wchar_t const* path, IFCNode* node) {
    if (flowmere::LinkEnds* const ends = flowmere::LinkEnds::of(node)) {
        return ends->find(path);
    }
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
