#pragma once

#include "flowmere/model/FCNode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class CFCBlockData;

namespace flowmere {

// The ways to look a direct child up.
enum class ChildLookup : std::uint8_t {
    Id,      // GetNodeId, without case; children without id and the empty id never match
    ExactId, // GetNodeId, exact; an empty id matches a child without id
    OldId,   // GetOldNodeId, as Id
};

// First direct child with this id, from the head of the chain on, or null; a null id is empty. Large containers answer
// from an index, always with the very child that the walk over the chain finds first.
IFCNode* findChild(CFCNode& container, wchar_t const* id, ChildLookup lookup);

// To be called before the id or the former id of a node changes, however it does.
void childIdentityChanges(CFCNode& child) noexcept;
// The same for the node that holds this block data, if any.
void childIdentityChanges(CFCBlockData& data) noexcept;

// Index over the children of one large container, made at the first lookup that walks far.
//
// New children stand in front of the others, so the index grows by the children in front of the head it last saw, from
// the far end on: a later entry hides an earlier one of the same id, as a child does that is nearer the head. Every
// other change drops it: a child in the index carries a mark, and a change of its next link, parent or id, or its end,
// takes the index away first. So while an index stands, all children in it are alive, have the container as parent, and
// are chained as they were seen. A container with a child whose id does not come from its block data (or that has one
// but may change it unseen) has no index and is walked.
class ChildIndex {
public:
    // Children that are walked before an index is made.
    static constexpr int kWalkedChildren = 32;

    // Whether the container has an index for this lookup now; for tests.
    static bool exists(CFCNode const& container, ChildLookup lookup) noexcept;

    // Takes a container's index away and the marks off its children.
    static void drop(CFCNode& container) noexcept;
    // Takes the index away that knows this child.
    static void childChanges(CFCNode& child) noexcept {
        if (child.m_uIndexed != 0) {
            dropOfParent(child);
        }
    }

    static IFCNode* find(CFCNode& container, wchar_t const* id, ChildLookup lookup);

private:
    // The text of the identifier stands until the index hears of a change: lookups need not touch the children.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t length = 0;
        wchar_t const* id = nullptr;
        CFCNode* child = nullptr; // null when the slot is free

        bool holds(std::uint32_t wantedHash, std::wstring_view wanted, ChildLookup lookup) const noexcept;
    };
    struct Table {
        std::vector<Slot> slots; // a power of two, or none
        std::size_t used = 0;
        CFCNode* head = nullptr; // first child at the last lookup; null when there is no table
    };

    static void dropOfParent(CFCNode& child) noexcept;
    static bool update(CFCNode& container, ChildLookup lookup);
    static bool addPrefix(CFCNode& container, Table& table, ChildLookup lookup);
    static void insert(Table& table, CFCNode& child, ChildLookup lookup);
    static void place(Table& table, Slot slot);

    std::array<Table, 3> m_tables;
};

} // namespace flowmere
