#pragma once

// How the kinds of blocks look: where there is room for a caption inside an outline, where its sign stands, and where
// a line meets it.

#include "host/drawing/Diagram.h"

#include <vector>

namespace flowmere::host::drawing {

// The title of a frame has this much room around it.
inline constexpr double kTitleMargin = 6;
inline constexpr double kSignSize = 16;

// Rectangles inside the outline, the one to try first in front.
std::vector<Rect> captionRooms(Block const& block, Rect const& rect);
// Where the sign stands; empty for none, and where the block is too small for it.
Rect signRect(Block const& block, Rect const& rect);
// The bar of a fork or join: all of a thin rectangle, and a bar across the middle of any other.
Rect barOf(Rect const& rect);
// The point of the outline where a line ends that comes to the grip; the grip itself where the outline reaches it.
Point dockOf(Block const& block, Rect const& rect, int grip);
// The size of a block that has none, before its caption asks for more.
Size usualSize(Block const& block);

} // namespace flowmere::host::drawing
