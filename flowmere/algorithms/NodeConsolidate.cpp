#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/ParentChain.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

// First child of each caption. Made at the first question, since many levels have one entry only to merge. The texts
// stay with the children: a merge changes no caption.
class ChildrenByCaption {
public:
    explicit ChildrenByCaption(IFCNode* parent) : m_parent(parent) {}

    IFCNode* find(wchar_t const* caption) {
        if (!m_built) {
            m_built = true;
            for (IFCNode* child = m_parent != nullptr ? m_parent->GetChild() : nullptr; child != nullptr;
                 child = child->GetNext()) {
                Slot& slot = slotOf(child->GetNodeCaption());
                if (slot.child == nullptr) {
                    fill(slot, child);
                }
            }
        }
        return m_slots.empty() ? nullptr : slotOf(caption).child;
    }

    // A child that was put in front of the others.
    void prepended(IFCNode* child) {
        if (m_built) {
            fill(slotOf(child->GetNodeCaption()), child);
        }
    }

private:
    struct Slot {
        std::size_t hash = 0; // of the caption that was asked for last, in a free slot
        IFCNode* child = nullptr;
    };

    // The slot of this caption, or the free one where it belongs. There is always a free one left.
    Slot& slotOf(wchar_t const* text) {
        std::wstring_view const caption = flowmere::viewOf(text);
        if (4 * (m_used + 1) > 3 * m_slots.size()) {
            grow();
        }
        std::size_t const hash = std::hash<std::wstring_view>()(caption);
        Slot* slot = &slotAt(hash);
        while (slot->child != nullptr &&
               (slot->hash != hash || flowmere::viewOf(slot->child->GetNodeCaption()) != caption)) {
            slot = &behind(*slot);
        }
        if (slot->child == nullptr) {
            slot->hash = hash;
        }
        return *slot;
    }
    void fill(Slot& slot, IFCNode* child) {
        m_used += slot.child == nullptr ? 1 : 0;
        slot.child = child;
    }
    void grow() {
        std::vector<Slot> const old =
            std::exchange(m_slots, std::vector<Slot>(std::max<std::size_t>(2 * m_slots.size(), 8)));
        for (Slot const& entry : old) {
            if (entry.child != nullptr) {
                Slot* slot = &slotAt(entry.hash);
                while (slot->child != nullptr) {
                    slot = &behind(*slot);
                }
                *slot = entry;
            }
        }
    }
    Slot& slotAt(std::size_t hash) { return m_slots[hash & (m_slots.size() - 1)]; }
    Slot& behind(Slot& slot) {
        auto const next = static_cast<std::size_t>(&slot - m_slots.data()) + 1;
        return m_slots[next & (m_slots.size() - 1)];
    }

    IFCNode* m_parent;
    bool m_built = false;
    std::size_t m_used = 0;
    std::vector<Slot> m_slots; // a power of two, or none
};

// One level of a merge: the chain that is left to take in, and what it goes into.
struct Level {
    IFCNode* target;
    IFCNode* source;
    ChildrenByCaption* children;
};

// The levels of a merge that are open, one inside the other.
class Levels {
public:
    // Clones that found no place go at the end: until then no new node can be taken for one of them.
    ~Levels() {
        for (IFCNode* const clone : m_discarded) {
            CFCNodeHelper::DestroyTree(clone);
        }
    }
    Levels() = default;
    Levels(Levels const&) = delete;
    Levels& operator=(Levels const&) = delete;

    void enter(IFCNode* target, IFCNode* source) {
        // Many groups of one caption go into the same target, whose children are numbered once for all of them.
        m_open.push_back({target, source, &m_children.try_emplace(target, target).first->second});
    }
    // Takes the next entry off the level on top; levels that are done go.
    IFCNode* nextEntry() {
        while (!m_open.empty()) {
            Level& level = m_open.back();
            if (IFCNode* const entry = level.source) {
                level.source = entry->GetNext();
                return entry;
            }
            m_open.pop_back();
        }
        return nullptr;
    }
    Level& top() { return m_open.back(); }

    void append(IFCNode* parent, IFCNode* child) {
        parent->AppendChild(child, false);
        auto const known = m_children.find(parent);
        if (known != m_children.end()) {
            known->second.prepended(child);
        }
    }
    void discard(IFCNode* clone) { m_discarded.push_back(clone); }

private:
    std::vector<Level> m_open;
    std::unordered_map<IFCNode*, ChildrenByCaption> m_children; // of each target so far
    std::vector<IFCNode*> m_discarded;
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

} // namespace

void CFCNodeHelper::Consolidate(IFCNode* target, IFCNode* source) {
    if (target == nullptr || source == nullptr || enclosesTarget(source, target)) {
        return;
    }
    Levels levels;
    levels.enter(target, source);
    while (IFCNode* const entry = levels.nextEntry()) {
        Level const& level = levels.top();
        IFCNode* into = level.children->find(entry->GetNodeCaption());
        if (into != nullptr && into->GetNodeType() == eShapeType_FileNode) {
            updateFileNode(into, entry);
            continue;
        }
        if (into == nullptr) {
            into = Clone(entry);
            if (into == nullptr) {
                continue;
            }
            levels.append(level.target, into);
        }
        if (IFCNode* const below = entry->GetChild()) {
            levels.enter(into, below);
        }
    }
}

void CFCNodeHelper::Consolidate2(IFCNode* target, IFCNode* source) {
    if (source == nullptr || (target != nullptr && enclosesTarget(source, target))) {
        return;
    }
    Levels levels;
    levels.enter(target, source);
    while (IFCNode* const entry = levels.nextEntry()) {
        Level const& level = levels.top();
        IFCNode* const below = entry->GetChild();
        IFCNode* const match = level.children->find(entry->GetNodeCaption());
        if (match != nullptr && match->GetNodeType() == entry->GetNodeType()) {
            if (match->GetNodeType() == eShapeType_FileNode) {
                updateFileNode(match, entry);
            } else if (below != nullptr) {
                // The level below goes into the first child of the match, not into the match.
                levels.enter(match->GetChild(), below);
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
            levels.discard(clone);
        } else {
            levels.append(place, clone);
        }
        if (below == nullptr) {
            continue;
        }
        IFCNode* const first = Clone(below);
        if (first == nullptr) {
            continue;
        }
        if (clone->GetNodeType() != eShapeType_FileNode) {
            levels.append(clone, first);
        } else {
            levels.discard(first);
        }
        levels.enter(first, below);
    }
}
