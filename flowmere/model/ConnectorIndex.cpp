#include "flowmere/model/ConnectorIndex.h"

#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace flowmere {

namespace {

// Shorter lists are walked.
constexpr int kWalked = 32;

bool isLong(IFCNode* node) {
    for (int steps = 0; node != nullptr; node = node->GetNext()) {
        if (++steps > kWalked) {
            return true;
        }
    }
    return false;
}

} // namespace

// Chains

std::size_t ConnectorIndex::Chains::place(CFCBlockNode const* block, std::size_t size) {
    auto const number = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(block));
    return static_cast<std::size_t>((number * 0x9E3779B97F4A7C15ULL) >> 32) & (size - 1);
}

ConnectorIndex::Chain const* ConnectorIndex::Chains::find(CFCBlockNode const* block) const {
    if (block == nullptr || m_chains.empty()) {
        return nullptr;
    }
    for (std::size_t i = place(block, m_chains.size());; i = (i + 1) & (m_chains.size() - 1)) {
        if (m_chains[i].block == block) {
            return &m_chains[i];
        }
        if (m_chains[i].block == nullptr) {
            return nullptr;
        }
    }
}

ConnectorIndex::Chain& ConnectorIndex::Chains::obtain(CFCBlockNode const* block) {
    if ((m_used + 1) * 2 > m_chains.size()) {
        grow();
    }
    std::size_t i = place(block, m_chains.size());
    while (m_chains[i].block != nullptr && m_chains[i].block != block) {
        i = (i + 1) & (m_chains.size() - 1);
    }
    if (m_chains[i].block == nullptr) {
        m_chains[i].block = block;
        ++m_used;
    }
    return m_chains[i];
}

void ConnectorIndex::Chains::grow() {
    std::vector<Chain> wider(m_chains.empty() ? 128 : m_chains.size() * 2);
    for (Chain const& chain : m_chains) {
        if (chain.block != nullptr) {
            std::size_t i = place(chain.block, wider.size());
            while (wider[i].block != nullptr) {
                i = (i + 1) & (wider.size() - 1);
            }
            wider[i] = chain;
        }
    }
    m_chains.swap(wider);
}

void ConnectorIndex::Chains::clear() {
    m_chains.clear();
    m_used = 0;
}

// Index

ConnectorIndex::~ConnectorIndex() {
    clear();
}

ConnectorIndex* ConnectorIndex::of(CFCConnectorList& list) noexcept {
    IFCNode* const head = reinterpret_cast<IFCNode*>(list.GetHeadPosition());
    try {
        if (list.index == nullptr) {
            if (!isLong(head)) {
                return nullptr;
            }
            list.index = std::make_unique<ConnectorIndex>();
        }
        return list.index->update(head) ? list.index.get() : nullptr;
    } catch (std::bad_alloc const&) {
        list.index.reset();
        return nullptr;
    }
}

CFCConnector* ConnectorIndex::first(Side side, CFCBlockNode const* block) const {
    Chain const* const chain = m_chains[side].find(block);
    return chain == nullptr || chain->first < 0 ? nullptr : m_entries[static_cast<std::size_t>(chain->first)].connector;
}

CFCConnector* ConnectorIndex::next(Side side, CFCConnector const* connector) const {
    int const slot = m_entries[static_cast<std::size_t>(connector->indexSlot)].next[side];
    return slot < 0 ? nullptr : m_entries[static_cast<std::size_t>(slot)].connector;
}

void ConnectorIndex::nextChanges(CFCConnector* connector, IFCNode* next) {
    IFCNode* node = connector->GetNext();
    if (node == next || connector->indexSlot == m_last) {
        return;
    }
    auto const* const target = dynamic_cast<CFCConnector const*>(next);
    if (next != nullptr && (target == nullptr || target->index != this || target->indexSlot <= connector->indexSlot)) {
        clear();
        return;
    }
    // What lay between the two has left the list.
    while (node != next) {
        auto* const gone = dynamic_cast<CFCConnector*>(node);
        if (gone == nullptr || gone->index != this) {
            clear();
            return;
        }
        node = gone->indexSlot == m_last ? nullptr : gone->GetNext();
        drop(gone->indexSlot);
    }
    if (next == nullptr) {
        m_last = connector->indexSlot;
    }
}

void ConnectorIndex::blockChanged(Side side, CFCConnector* connector, CFCBlockNode const* oldBlock) noexcept {
    CFCBlockNode const* const block = blockAt(side, connector);
    if (block == oldBlock) {
        return;
    }
    int const slot = connector->indexSlot;
    unlink(side, slot, oldBlock);
    try {
        link(side, slot, block);
    } catch (std::bad_alloc const&) {
        clear();
    }
}

void ConnectorIndex::connectorGoes(CFCConnector* connector) {
    if (connector->indexSlot != m_first || m_count == 1) {
        // Only the head goes without a word from the one in front of it; any other leaves a torn list.
        clear();
        return;
    }
    drop(m_first);
    while (m_entries[static_cast<std::size_t>(m_first)].connector == nullptr) {
        ++m_first;
    }
}

void ConnectorIndex::clear() {
    for (Entry const& entry : m_entries) {
        if (entry.connector != nullptr) {
            entry.connector->index = nullptr;
        }
    }
    m_entries.clear();
    m_chains[Start].clear();
    m_chains[End].clear();
    m_first = 0;
    m_last = -1;
    m_count = 0;
}

bool ConnectorIndex::update(IFCNode* head) {
    if (head == nullptr) {
        clear();
        return true;
    }
    if (m_count > 0 && m_entries.size() > 2 * static_cast<std::size_t>(m_count) + kWalked) {
        clear();
    }
    if (m_count > 0) {
        IFCNode* const known = m_entries[static_cast<std::size_t>(m_first)].connector;
        if (known != head) {
            clear();
        }
    }
    if (m_count == 0) {
        clear();
        return append(head);
    }
    return append(m_entries[static_cast<std::size_t>(m_last)].connector->GetNext());
}

bool ConnectorIndex::append(IFCNode* node) {
    for (; node != nullptr; node = node->GetNext()) {
        auto* const connector = dynamic_cast<CFCConnector*>(node);
        if (connector == nullptr) {
            clear();
            return false;
        }
        if (connector->index == this) {
            break; // the list runs back into itself
        }
        if (connector->index != nullptr) {
            connector->index->clear(); // of a list that shares its elements with this one
        }
        m_entries.emplace_back();
        int const slot = static_cast<int>(m_entries.size()) - 1;
        m_entries.back().connector = connector;
        connector->index = this;
        connector->indexSlot = slot;
        m_last = slot;
        ++m_count;
        link(Start, slot, connector->GetStartObject());
        link(End, slot, connector->GetEndObject());
    }
    return true;
}

void ConnectorIndex::link(Side side, int slot, CFCBlockNode const* block) {
    if (block == nullptr) {
        return;
    }
    Chain& chain = m_chains[side].obtain(block);
    int before = chain.last;
    while (before > slot) {
        before = m_entries[static_cast<std::size_t>(before)].previous[side];
    }
    Entry& entry = m_entries[static_cast<std::size_t>(slot)];
    int& after = before < 0 ? chain.first : m_entries[static_cast<std::size_t>(before)].next[side];
    entry.previous[side] = before;
    entry.next[side] = after;
    if (after < 0) {
        chain.last = slot;
    } else {
        m_entries[static_cast<std::size_t>(after)].previous[side] = slot;
    }
    after = slot;
}

void ConnectorIndex::unlink(Side side, int slot, CFCBlockNode const* block) {
    if (block == nullptr) {
        return;
    }
    Chain& chain = m_chains[side].obtain(block);
    Entry& entry = m_entries[static_cast<std::size_t>(slot)];
    int const before = std::exchange(entry.previous[side], -1);
    int const after = std::exchange(entry.next[side], -1);
    (before < 0 ? chain.first : m_entries[static_cast<std::size_t>(before)].next[side]) = after;
    (after < 0 ? chain.last : m_entries[static_cast<std::size_t>(after)].previous[side]) = before;
}

void ConnectorIndex::drop(int slot) {
    Entry& entry = m_entries[static_cast<std::size_t>(slot)];
    unlink(Start, slot, entry.connector->GetStartObject());
    unlink(End, slot, entry.connector->GetEndObject());
    entry.connector->index = nullptr;
    entry.connector = nullptr;
    --m_count;
}

// Look-ups

std::vector<CFCConnector*> connectorsAt(CFCConnectorList& list, ConnectorIndex::Side side, CFCBlockNode const* block) {
    std::vector<CFCConnector*> found;
    findConnector(list, side, block, [&found](CFCConnector* connector) {
        found.push_back(connector);
        return false;
    });
    return found;
}

bool holdsTwin(CFCConnectorList& list, CFCConnector& connector) {
    CFCBlockNode const* const start = connector.GetStartObject();
    CFCBlockNode const* const end = connector.GetEndObject();
    auto const isTwin = [&connector, start, end](CFCConnector* other) {
        return other == &connector ||
               (other->GetStartObject() == start && other->GetEndObject() == end && !other->IsDeleted());
    };
    if (start == nullptr && end == nullptr) {
        for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
            CFCConnector* const other = list.GetNext(position);
            if (other != nullptr && isTwin(other)) {
                return true;
            }
        }
        return false;
    }
    if (start == nullptr) {
        return findConnector(list, ConnectorIndex::End, end, isTwin) != nullptr;
    }
    ConnectorIndex const* const index = end == nullptr ? nullptr : ConnectorIndex::of(list);
    if (index == nullptr) {
        return findConnector(list, ConnectorIndex::Start, start, isTwin) != nullptr;
    }
    // A twin stands in the chains of both blocks, so the end of the shorter chain is the end of the search.
    CFCConnector* leaving = index->first(ConnectorIndex::Start, start);
    CFCConnector* arriving = index->first(ConnectorIndex::End, end);
    while (leaving != nullptr && arriving != nullptr) {
        if (isTwin(leaving) || isTwin(arriving)) {
            return true;
        }
        leaving = index->next(ConnectorIndex::Start, leaving);
        arriving = index->next(ConnectorIndex::End, arriving);
    }
    return false;
}

} // namespace flowmere
