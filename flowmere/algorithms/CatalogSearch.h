#pragma once

#include "flowmere/foundation/TuString.h"

class IFCNode;

namespace flowmere {

// Whether a node at its place in the catalog answers to the name, without regard to case. With byType the key is the
// type of a data type entry; a group answers to its type only behind the first entry of its chain. Else, and for all
// other nodes, the key is the caption.
bool isCatalogEntry(IFCNode* node, TuString const& name, bool byType);

} // namespace flowmere
