#pragma once

namespace flowmere {

// Moves on whenever a node that is linked to others changes its caption, its next sibling, its first child or its
// parent, or ends, so that what was worked out about a tree can be told from what still holds. Each thread has its
// own: a tree is read and changed on one thread. A node on its own, such as one just made, moves nothing.
inline constinit thread_local unsigned long long treeEpoch = 0;

} // namespace flowmere
