#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/LinkEnds.h"
#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <optional>
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

// Follows the links from a path to the variable where they end; null for a circle or a path that leads nowhere.
// `known` is asked at each path on the way, and may give the end (or that there is none) to stop there.
template <typename Known>
CFCVariableData* followLinks(wchar_t const* path, IFCNode* root, Known const& known) {
    TuString current(path);
    flowmere::CircleGuard<CFCVariableData> guard;
    CFCVariableData* variable = CFCNodeHelper::FindVariable(current, root);
    while (true) {
        if (std::optional<CFCVariableData*> const end = known(current)) {
            return *end;
        }
        if (variable == nullptr || !variable->IsLinked()) {
            return variable;
        }
        TuString next(variable->GetLinkPath());
        if (next == current || guard.closes(variable)) {
            return nullptr;
        }
        variable = CFCNodeHelper::FindVariable(next, root);
        // Two variables that link to each other; longer circles come back to the guard.
        if (variable != nullptr && current == variable->GetLinkPath()) {
            return nullptr;
        }
        current = next;
    }
}

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
    CFCVariableData* const end =
        followLinks(path, m_root, [&](TuString const& place) -> std::optional<CFCVariableData*> {
            if (auto const known = m_ends.find(place); known != m_ends.end()) {
                return known->second;
            }
            passed.push_back(place);
            return std::nullopt;
        });
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
    return followLinks(path, node, [](TuString const&) { return std::optional<CFCVariableData*>(); });
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
