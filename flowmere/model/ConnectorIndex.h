#pragma once

#include "flowmere/model/FCConnector.h"

#include <cstddef>
#include <vector>

class CFCBlockNode;
class IFCNode;

namespace flowmere {

// Finds the connectors of a long list by their end blocks, in list order, without walking the list.
//
// The connectors it knows keep it in step: they tell it when an end moves to another block, when their next link
// changes and when they are destroyed; what AddTail put behind the last known one is taken in at the next question.
// Answers are therefore those of a walk along the list. Connectors without a block at an end are not found by it.
class ConnectorIndex {
public:
    enum Side : int { Start = 0, End = 1 };

    ConnectorIndex() = default;
    ~ConnectorIndex();
    ConnectorIndex(ConnectorIndex const&) = delete;
    ConnectorIndex& operator=(ConnectorIndex const&) = delete;

    // The index of a list, brought up to date. Null for a short list, for one that holds something else than
    // connectors and when memory runs out: then the list is to be walked.
    static ConnectorIndex* of(CFCConnectorList& list) noexcept;

    // The connectors with this block at one side, in list order. Null block, or none left: null.
    CFCConnector* first(Side side, CFCBlockNode const* block) const;
    CFCConnector* next(Side side, CFCConnector const* connector) const;

    // What a connector of the index tells before its next link changes, after a block at an end has, and when it goes.
    void nextChanges(CFCConnector* connector, IFCNode* next);
    void blockChanged(Side side, CFCConnector* connector, CFCBlockNode const* oldBlock) noexcept;
    void connectorGoes(CFCConnector* connector);
    // Forgets everything; the next question starts anew.
    void clear();

    static CFCBlockNode* blockAt(Side side, CFCConnector* connector) {
        return side == Start ? connector->GetStartObject() : connector->GetEndObject();
    }

private:
    struct Entry {
        CFCConnector* connector = nullptr; // null once it has left the list
        int previous[2] = {-1, -1};        // neighbours with the same block, by side
        int next[2] = {-1, -1};
    };
    struct Chain {
        CFCBlockNode const* block = nullptr;
        int first = -1;
        int last = -1;
    };
    // Chains by block: open addressing, never shrinking until cleared.
    class Chains {
    public:
        Chain const* find(CFCBlockNode const* block) const;
        Chain& obtain(CFCBlockNode const* block);
        void clear();

    private:
        static std::size_t place(CFCBlockNode const* block, std::size_t size);
        void grow();

        std::vector<Chain> m_chains;
        std::size_t m_used = 0;
    };

    bool update(IFCNode* head);
    bool append(IFCNode* node);
    void link(Side side, int slot, CFCBlockNode const* block);
    void unlink(Side side, int slot, CFCBlockNode const* block);
    void drop(int slot);

    std::vector<Entry> m_entries; // in list order
    Chains m_chains[2];
    int m_first = 0;
    int m_last = -1;
    int m_count = 0;
};

// The first connector of a list with this block at one side that is accepted, or null. A null block is at no side.
template <typename Accept>
CFCConnector* findConnector(CFCConnectorList& list, ConnectorIndex::Side side, CFCBlockNode const* block,
                            Accept accept) {
    if (block == nullptr) {
        return nullptr;
    }
    if (ConnectorIndex const* const index = ConnectorIndex::of(list)) {
        for (CFCConnector* connector = index->first(side, block); connector != nullptr;
             connector = index->next(side, connector)) {
            if (accept(connector)) {
                return connector;
            }
        }
        return nullptr;
    }
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        CFCConnector* const connector = list.GetNext(position);
        if (connector != nullptr && ConnectorIndex::blockAt(side, connector) == block && accept(connector)) {
            return connector;
        }
    }
    return nullptr;
}

// All connectors of a list with this block at one side, in list order, deleted and half open ones too.
std::vector<CFCConnector*> connectorsAt(CFCConnectorList& list, ConnectorIndex::Side side, CFCBlockNode const* block);

// Whether a list holds this connector, or another one between the same two blocks that is not deleted. Connectors
// without blocks are between the same two as well.
bool holdsTwin(CFCConnectorList& list, CFCConnector& connector);

} // namespace flowmere
