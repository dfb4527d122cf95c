#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere generate FILE --out DIR: the script files of each task block.
void addGenerate(Command const& program, Result& result);

} // namespace flowmere::host
