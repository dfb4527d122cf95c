#pragma once

// Differences as a person reads them, and as a program does.

#include "host/basics/Text.h"
#include "host/diff/Compare.h"

#include <string>

namespace flowmere::host {

// "+ block Loads.Extra", "- variable Loads.Span: Double = 6.5", "~ Loads.Span value: 6.5 -> 7", without a line end.
std::string lineOf(Difference const& difference);
Json jsonOf(Difference const& difference);

} // namespace flowmere::host
