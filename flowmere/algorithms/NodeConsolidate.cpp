#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/model/FCNode.h"
#include "flowmere/model/ParentChain.h"

#include <unordered_map>
#include <vector>

namespace {

// First child of each caption. Made at the first question, since many levels have one entry only to merge.
class ChildrenByCaption {
public:
    explicit ChildrenByCaption(IFCNode* parent) : m_parent(parent) {}

    IFCNode* find(wchar_t const* caption) {
        if (!m_built) {
            m_built = true;
            for (IFCNode* child = m_parent != nullptr ? m_parent->GetChild() : nullptr; child != nullptr;
                 child = child->GetNext()) {
                m_first.try_emplace(TuString(child->GetNodeCaption()), child);
            }
        }
        auto const found = m_first.find(TuString(caption));
        return found != m_first.end() ? found->second : nullptr;
    }

    // A child that was put in front of the others.
    void prepended(IFCNode* child) {
        if (m_built) {
            m_first.insert_or_assign(TuString(child->GetNodeCaption()), child);
        }
    }

private:
    IFCNode* m_parent;
    bool m_built = false;
    std::unordered_map<TuString, IFCNode*> m_first;
};

// One level of a merge: the chain that is left to take in, and what it goes into.
struct Level {
    Level(IFCNode* into, IFCNode* from) : target(into), source(from), children(into) {}

    IFCNode* target;
    IFCNode* source;
    ChildrenByCaption children;
    // Clones that found no place; they go when the level above, which made them, goes on.
    std::vector<IFCNode*> discarded;
};

// Whether the source chain holds the target or a node above it. Such a merge would feed on its own clones for ever.
bool enclosesTarget(IFCNode* source, IFCNode* target) {
    for (flowmere::ParentChain way(target); way.node() != nullptr; way.climb()) {
        IFCNode* const place = way.node();
        if (place->GetParentNode() != source->GetParentNode()) {
            continue;
        }
        for (IFCNode* entry = source; entry != nullptr; entry = entry->GetNext()) {
            if (entry == place) {
                return true;
            }
        }
    }
    return false;
}

void updateFileNode(IFCNode* target, IFCNode* source) {
    if (source->GetVersionNo() > target->GetVersionNo()) {
        target->SetUptoDate(false);
    }
    target->SetCheckedOut(source->IsCheckedOut());
    TuString const id(source->GetNodeId());
    target->SetNodeId(id);
    target->SetNewPath(true);
}

// Takes the next entry off the level on top; levels that are done go, with the clones that found no place.
IFCNode* nextEntry(std::vector<Level>& levels) {
    while (!levels.empty()) {
        Level& level = levels.back();
        for (IFCNode* clone : level.discarded) {
            CFCNodeHelper::DestroyTree(clone);
        }
        level.discarded.clear();
        if (IFCNode* const entry = level.source) {
            level.source = entry->GetNext();
            return entry;
        }
        levels.pop_back();
    }
    return nullptr;
}

} // namespace

void CFCNodeHelper::Consolidate(IFCNode* target, IFCNode* source) {
    if (target == nullptr || source == nullptr || enclosesTarget(source, target)) {
        return;
    }
    std::vector<Level> levels;
    levels.emplace_back(target, source);
    while (IFCNode* const entry = nextEntry(levels)) {
        Level& level = levels.back();
        IFCNode* into = level.children.find(entry->GetNodeCaption());
        if (into != nullptr && into->GetNodeType() == eShapeType_FileNode) {
            updateFileNode(into, entry);
            continue;
        }
        if (into == nullptr) {
            into = Clone(entry);
            if (into == nullptr) {
                continue;
            }
            level.target->AppendChild(into, false);
            level.children.prepended(into);
        }
        if (IFCNode* const below = entry->GetChild()) {
            levels.emplace_back(into, below);
        }
    }
}

void CFCNodeHelper::Consolidate2(IFCNode* target, IFCNode* source) {
    if (source == nullptr || (target != nullptr && enclosesTarget(source, target))) {
        return;
    }
    std::vector<Level> levels;
    levels.emplace_back(target, source);
    while (IFCNode* const entry = nextEntry(levels)) {
        Level& level = levels.back();
        IFCNode* const below = entry->GetChild();
        IFCNode* const match = level.children.find(entry->GetNodeCaption());
        if (match != nullptr && match->GetNodeType() == entry->GetNodeType()) {
            if (match->GetNodeType() == eShapeType_FileNode) {
                updateFileNode(match, entry);
            } else if (below != nullptr) {
                // The level below goes into the first child of the match, not into the match.
                levels.emplace_back(match->GetChild(), below);
            }
            continue;
        }
        if (entry->GetParentNode() == nullptr) {
            continue;
        }
        IFCNode* const clone = Clone(entry);
        if (clone == nullptr) {
            continue;
        }
        IFCNode* place = level.target;
        if (place != nullptr && place->GetNodeType() == eShapeType_FileNode) {
            place = place->GetParentNode();
        }
        if (place == nullptr) {
            level.discarded.push_back(clone);
        } else {
            place->AppendChild(clone, false);
            if (place == level.target) {
                level.children.prepended(clone);
            }
        }
        if (below == nullptr) {
            continue;
        }
        IFCNode* const first = Clone(below);
        if (first == nullptr) {
            continue;
        }
        if (clone->GetNodeType() != eShapeType_FileNode) {
            clone->AppendChild(first, false);
        } else {
            level.discarded.push_back(first);
        }
        levels.emplace_back(first, below);
    }
}
