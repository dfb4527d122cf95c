#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere diff A B: what changed between two process documents.
void addDiff(Command const& program, Result& result);

} // namespace flowmere::host
