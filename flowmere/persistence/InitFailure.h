#pragma once

#include <cstdio>

namespace flowmere {

// What some readers say, on standard output, of a file that is missing or no well-formed XML.
inline void tellInitFailed() {
    std::fputs("Init failed\n", stdout);
    std::fflush(stdout);
}

} // namespace flowmere
