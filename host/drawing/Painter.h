#pragma once

// Paints a layout through Cairo.

#include "host/drawing/Drawing.h"
#include "host/drawing/Fonts.h"
#include "host/drawing/Layout.h"

#include <string>
#include <vector>

namespace flowmere::host::drawing {

// The bytes of the file. What had to be done to fit the picture into its format goes to `notes`. Throws Failure, exit
// code 2, when Cairo cannot make it.
std::string paint(Diagram const& diagram, Layout const& layout, bool states, PictureFormat format, Fonts& fonts,
                  std::vector<std::string>& notes);

} // namespace flowmere::host::drawing
