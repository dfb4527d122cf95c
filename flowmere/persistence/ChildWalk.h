#pragma once

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCNode.h"

#include <unordered_set>
#include <vector>

namespace flowmere {

// The children of a node from the last to the first. New children stand in front of the others, so this is the order
// of the file. A chain that comes back to itself ends where it does so.
inline std::vector<IFCNode*> childrenInFileOrder(IFCNode* node) {
    std::vector<IFCNode*> children;
    CircleGuard<IFCNode> guard;
    for (IFCNode* child = node ? node->GetChild() : nullptr; child; child = child->GetNext()) {
        if (guard.closes(child)) {
            std::unordered_set<IFCNode*> met;
            std::size_t count = 0;
            while (count < children.size() && met.insert(children[count]).second) {
                ++count;
            }
            children.resize(count);
            break;
        }
        children.push_back(child);
    }
    return {children.rbegin(), children.rend()};
}

// One step down in a recursive writer, taken back also when an exception passes.
class WriteDepth {
public:
    explicit WriteDepth(int& depth) : m_depth(++depth) {}
    ~WriteDepth() { --m_depth; }
    WriteDepth(WriteDepth const&) = delete;
    WriteDepth& operator=(WriteDepth const&) = delete;

private:
    int& m_depth;
};

} // namespace flowmere
