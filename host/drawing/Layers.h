#pragma once

// Arranges blocks that have no places of their own in layers, along the flow from top to bottom.

#include "host/drawing/Geometry.h"

#include <cstddef>
#include <vector>

namespace flowmere::host::drawing {

// A way from one block to another, by their places in the list of sizes.
struct Way {
    std::size_t start = 0;
    std::size_t end = 0;
    bool hasCaption = false;
};

// One rectangle for each size, none over another, the whole beginning near the origin. Parts of the flow that do not
// hang together stand beside each other, and a long flow goes on in a further column.
std::vector<Rect> arrangeInLayers(std::vector<Size> const& sizes, std::vector<Way> const& ways);

} // namespace flowmere::host::drawing
