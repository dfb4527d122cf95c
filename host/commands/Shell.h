#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere shell: the named commands of the process execution, typed or read from a script.
void addShell(Command const& program, Result& result);

} // namespace flowmere::host
