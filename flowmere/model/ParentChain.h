#pragma once

#include <cstdint>

#include "flowmere/model/FCNode.h"

namespace flowmere {

// The way from a node up to its root. A chain of parents that closes on itself ends once it has
// been gone round.
class ParentChain {
public:
    explicit ParentChain(IFCNode* start) : m_node(start), m_mark(start) {}

    // The present node; null above the root.
    IFCNode* node() const { return m_node; }
    void climb() {
        m_node = m_node->GetParentNode();
        if (m_node == m_mark) {
            m_node = nullptr;
        } else if (++m_steps == m_limit) {
            // A mark further and further up meets every loop in the end.
            m_mark = m_node;
            m_limit *= 2;
        }
    }

private:
    IFCNode* m_node;
    IFCNode* m_mark;
    std::uint64_t m_steps = 0;
    std::uint64_t m_limit = 64;
};

// The root above a node, which is the node itself when it has no parent; null for null.
inline IFCNode* topOf(IFCNode* node) {
    IFCNode* top = node;
    for (ParentChain chain(node); chain.node() != nullptr; chain.climb()) {
        top = chain.node();
    }
    return top;
}

} // namespace flowmere
