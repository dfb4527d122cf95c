#pragma once

#include "flowmere/foundation/TuString.h"

namespace flowmere {

// The name to try after `name` was found taken: the number behind the last "_" plus one, in two digits or more.
// A name without such a number, or with 0, gets "_01" behind it.
TuString nextName(TuString const& name);

} // namespace flowmere
