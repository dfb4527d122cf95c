#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere man [COMMAND]: the man page of the program, or of a command.
void addMan(Command const& program, Result& result);

} // namespace flowmere::host
