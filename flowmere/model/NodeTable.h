#pragma once

class IFCNode;

namespace flowmere {

// The living node with this handle; null for the handle of a node that is gone and for any number that is no handle.
// For handles that come from outside, where CFCNodeManager::GetNode throws for some.
IFCNode* livingNode(int handle) noexcept;

} // namespace flowmere
