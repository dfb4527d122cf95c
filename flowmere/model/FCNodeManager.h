#pragma once

#include "flowmere/Export.h"

class IFCNode;

// The process-wide table from handle to node. Every CFCNode enters itself when it is built and
// clears its entry when it dies; handles are never used again, so a kept handle tells whether its
// node is still there.
class FLOWMERE_API CFCNodeManager {
public:
    // Node with this handle, null when it is gone or the handle lies above the table.
    // Throws std::out_of_range for a negative handle and for the one just behind the last entry.
    static IFCNode* GetNode(int handle);
    // Enters a node under a handle, or clears the entry with a null node. The table grows to hold the
    // handle of a node; a null node never makes it grow. A negative handle is ignored.
    static void SetNode(int handle, IFCNode* node);
};
