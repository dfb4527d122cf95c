#include "flowmere/model/ChildIndex.h"

#include "flowmere/foundation/Fold.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCBlockData.h"

#include <memory>
#include <string_view>

namespace flowmere {

namespace {

constexpr std::size_t kFirstSlots = 128;
constexpr std::size_t kFirstLandmark = 64;

std::uint8_t markOf(ChildLookup lookup) {
    return static_cast<std::uint8_t>(1U << static_cast<unsigned>(lookup));
}

std::wstring_view idOf(IFCNode& child, ChildLookup lookup) {
    wchar_t const* const id = lookup == ChildLookup::OldId ? child.GetOldNodeId() : child.GetNodeId();
    return id == nullptr ? std::wstring_view() : std::wstring_view(id);
}

// Children without an identifier are no match, but for the exact lookup.
bool takesPart(std::wstring_view id, ChildLookup lookup) {
    return lookup == ChildLookup::ExactId || !id.empty();
}

bool equal(std::wstring_view left, std::wstring_view right, ChildLookup lookup) {
    return lookup == ChildLookup::ExactId ? left == right : equalNoCase(left, right);
}

std::uint32_t hashOf(std::wstring_view id, ChildLookup lookup) {
    std::uint64_t const hash = lookup == ChildLookup::ExactId ? ExactHash()(id) : FoldedHash()(id);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32U));
}

IFCNode* findByWalk(IFCNode* first, std::wstring_view id, ChildLookup lookup) {
    for (IFCNode* child = first; child != nullptr; child = child->GetNext()) {
        if (equal(idOf(*child, lookup), id, lookup)) {
            return child;
        }
    }
    return nullptr;
}

// Whether every change of this child's identifier is told to the index: it is the one in its block data, or the class
// has none at all.
bool tellsItsChanges(CFCNode& child, ChildLookup lookup) {
    bool const old = lookup == ChildLookup::OldId;
    wchar_t const* const id = old ? child.GetOldNodeId() : child.GetNodeId();
    if (CFCBlockData* const data = child.GetFCBlockData()) {
        return id == (old ? data->GetOldBlockID() : data->GetBlockID());
    }
    return id == (old ? child.CFCNode::GetOldNodeId() : child.CFCNode::GetNodeId());
}

} // namespace

IFCNode* findChild(CFCNode& container, wchar_t const* id, ChildLookup lookup) {
    return ChildIndex::find(container, id, lookup);
}

void childIdentityChanges(CFCNode& child) noexcept {
    ChildIndex::childChanges(child);
}

void childIdentityChanges(CFCBlockData& data) noexcept {
    if (CFCNode* const child = dynamic_cast<CFCNode*>(&data)) {
        ChildIndex::childChanges(*child);
    }
}

bool ChildIndex::exists(CFCNode const& container, ChildLookup lookup) noexcept {
    ChildIndex const* const index = container.m_pChildIndex.get();
    return index != nullptr && index->m_tables[static_cast<std::size_t>(lookup)].head != nullptr;
}

void ChildIndex::drop(CFCNode& container) noexcept {
    if (container.m_pChildIndex == nullptr) {
        return;
    }
    for (std::size_t lookup = 0; lookup < container.m_pChildIndex->m_tables.size(); ++lookup) {
        std::uint8_t const mark = markOf(static_cast<ChildLookup>(lookup));
        CFCNode* child = container.m_pChildIndex->m_tables[lookup].head;
        while (child != nullptr && (child->m_uIndexed & mark) != 0) {
            child->m_uIndexed = static_cast<std::uint8_t>(child->m_uIndexed & ~mark);
            child = static_cast<CFCNode*>(child->m_pNext);
        }
    }
    container.m_pChildIndex.reset();
}

void ChildIndex::dropOfParent(CFCNode& child) noexcept {
    drop(*static_cast<CFCNode*>(child.m_pParent));
}

IFCNode* ChildIndex::find(CFCNode& container, wchar_t const* id, ChildLookup lookup) {
    // The text may belong to a node that the walk asks for another one.
    TuString const key(id);
    std::wstring_view const wanted = key.View();
    if (!takesPart(wanted, lookup)) {
        return nullptr;
    }
    IFCNode* child = container.GetChild();
    if (!exists(container, lookup)) {
        for (int walked = 0; walked < kWalkedChildren; ++walked) {
            if (child == nullptr || equal(idOf(*child, lookup), wanted, lookup)) {
                return child;
            }
            child = child->GetNext();
        }
        if (child == nullptr) {
            return nullptr;
        }
    }
    if (!update(container, lookup)) {
        return findByWalk(child, wanted, lookup);
    }
    Table const& table = container.m_pChildIndex->m_tables[static_cast<std::size_t>(lookup)];
    if (table.slots.empty()) {
        return nullptr;
    }
    std::uint32_t const hash = hashOf(wanted, lookup);
    std::size_t const mask = table.slots.size() - 1;
    for (std::size_t at = hash & mask; table.slots[at].child != nullptr; at = (at + 1) & mask) {
        Slot const& slot = table.slots[at];
        if (slot.holds(hash, wanted, lookup)) {
            return slot.child;
        }
    }
    return nullptr;
}

// Brings the table up to the present chain. False, with no index left, when the container has to be walked.
bool ChildIndex::update(CFCNode& container, ChildLookup lookup) {
    // The second attempt starts over, when the chain no longer leads to what the table knows.
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            if (container.m_pChildIndex == nullptr) {
                container.m_pChildIndex = std::make_unique<ChildIndex>();
            }
            Table& table = container.m_pChildIndex->m_tables[static_cast<std::size_t>(lookup)];
            bool const fresh = table.head == nullptr;
            if (addPrefix(container, table, lookup)) {
                return true;
            }
            drop(container);
            if (fresh) {
                return false;
            }
        } catch (...) {
            drop(container);
            return false;
        }
    }
    return false;
}

bool ChildIndex::addPrefix(CFCNode& container, Table& table, ChildLookup lookup) {
    IFCNode* const head = container.GetChild();
    if (head == table.head) {
        return head != nullptr;
    }
    std::uint8_t const mark = markOf(lookup);
    std::vector<CFCNode*> prefix;
    IFCNode* next = head;
    // A child that was appended twice closes the chain to a ring; a landmark further and further on meets it again.
    IFCNode* landmark = nullptr;
    std::size_t nextLandmark = kFirstLandmark;
    for (; next != nullptr && next != table.head; next = next->GetNext()) {
        if (next == landmark) {
            return false;
        }
        if (prefix.size() == nextLandmark) {
            landmark = next;
            nextLandmark *= 2;
        }
        CFCNode* const child = dynamic_cast<CFCNode*>(next);
        if (child == nullptr || (child->m_uIndexed & mark) != 0 || child->m_pParent != &container ||
            child->GetParentNode() != &container || child->GetNext() != child->m_pNext ||
            !tellsItsChanges(*child, lookup)) {
            return false;
        }
        prefix.push_back(child);
    }
    if (next != table.head) {
        return false;
    }
    for (auto child = prefix.rbegin(); child != prefix.rend(); ++child) {
        insert(table, **child, lookup);
        // Mark and head go together, so that what is marked can be found again if a later insertion fails.
        (*child)->m_uIndexed = static_cast<std::uint8_t>((*child)->m_uIndexed | mark);
        table.head = *child;
    }
    return true;
}

void ChildIndex::insert(Table& table, CFCNode& child, ChildLookup lookup) {
    std::wstring_view const id = idOf(child, lookup);
    if (!takesPart(id, lookup)) {
        return;
    }
    if (table.slots.empty()) {
        table.slots.resize(kFirstSlots, Slot());
    } else if (4 * (table.used + 1) > 3 * table.slots.size()) {
        std::vector<Slot> const old = std::move(table.slots);
        table.slots.assign(2 * old.size(), Slot());
        for (Slot const& slot : old) {
            if (slot.child != nullptr) {
                place(table, slot);
            }
        }
    }
    std::uint32_t const hash = hashOf(id, lookup);
    std::size_t const mask = table.slots.size() - 1;
    std::size_t at = hash & mask;
    for (; table.slots[at].child != nullptr; at = (at + 1) & mask) {
        Slot& slot = table.slots[at];
        if (slot.holds(hash, id, lookup)) {
            slot.id = id.data();
            slot.child = &child;
            return;
        }
    }
    table.slots[at] = {hash, static_cast<std::uint32_t>(id.size()), id.data(), &child};
    ++table.used;
}

bool ChildIndex::Slot::holds(std::uint32_t wantedHash, std::wstring_view wanted, ChildLookup lookup) const noexcept {
    return hash == wantedHash && length == wanted.size() && equal({id, length}, wanted, lookup);
}

void ChildIndex::place(Table& table, Slot slot) {
    std::size_t const mask = table.slots.size() - 1;
    std::size_t at = slot.hash & mask;
    while (table.slots[at].child != nullptr) {
        at = (at + 1) & mask;
    }
    table.slots[at] = slot;
}

} // namespace flowmere
