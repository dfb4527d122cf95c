#pragma once

// The small signs of the kinds of blocks.

#include "host/drawing/Diagram.h"

#include <cairo.h>

namespace flowmere::host::drawing {

// Fills the square with the sign; `isOpen` makes that of a container with something inside say so.
void paintSign(cairo_t* cairo, Sign sign, Rect const& square, Color const& ink, bool isOpen = false);

} // namespace flowmere::host::drawing
