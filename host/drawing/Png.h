#pragma once

// Pixels as the bytes of a PNG file.

#include <cstddef>
#include <string>

namespace flowmere::host::drawing {

// The pixels are 32 bits each, with red, green and blue in their lower 24 bits, in rows of `stride` bytes. They are
// packed fast rather than small: a large picture takes a fraction of the time, and a little more room. Throws Failure
// when they cannot be packed.
std::string png(unsigned char const* pixels, int width, int height, std::size_t stride);

} // namespace flowmere::host::drawing
