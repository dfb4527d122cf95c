#include "flowmere/model/FCNodeManager.h"

#include "flowmere/foundation/Immortal.h"
#include "flowmere/model/NodeTable.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

constexpr std::size_t kFirstCapacity = 1000;

// Indexed by handle. Nodes of the host may die at the very end of the process, so the table never does.
std::vector<IFCNode*>& entries() {
    static flowmere::Immortal<std::vector<IFCNode*>> s_entries;
    return *s_entries;
}

// The largest handle ever set.
int s_highestHandle = 0;

} // namespace

IFCNode* flowmere::livingNode(int handle) noexcept {
    std::vector<IFCNode*> const& table = entries();
    return handle > 0 && static_cast<std::size_t>(handle) < table.size() ? table[static_cast<std::size_t>(handle)]
                                                                         : nullptr;
}

IFCNode* CFCNodeManager::GetNode(int handle) {
    std::vector<IFCNode*> const& table = entries();
    if (handle > 0 && static_cast<std::size_t>(handle) > table.size()) {
        return nullptr;
    }
    // A negative handle turns into an index that no table reaches.
    return table.at(static_cast<std::size_t>(handle));
}

void CFCNodeManager::SetNode(int handle, IFCNode* node) {
    std::vector<IFCNode*>& table = entries();
    if (handle < 0 || (node == nullptr && static_cast<std::size_t>(handle) >= table.size())) {
        return;
    }
    if (s_highestHandle == 0) {
        table.reserve(kFirstCapacity);
        table.emplace_back();
    }
    std::size_t const index = static_cast<std::size_t>(handle);
    if (table.capacity() < index) {
        table.reserve(2 * index);
    }
    if (table.size() <= index) {
        table.resize(index + 1);
    }
    s_highestHandle = std::max(s_highestHandle, handle);
    table[index] = node;
}
