#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere run FILE: runs the process of a document block by block.
void addRun(Command const& program, Result& result);

} // namespace flowmere::host
