#pragma once

namespace flowmere {

// Moves on whenever a variable begins or ceases to be linked, or links elsewhere, so that what was worked out about
// link chains can be told from what still holds.
inline unsigned long long linkEpoch = 0;

} // namespace flowmere
