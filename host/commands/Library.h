#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere library list|show|add|merge: the lists of the process library.
void addLibrary(Command const& program, Result& result);

} // namespace flowmere::host
