#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere generate FILE --out DIR: the script files of each task block.
void addGenerate(CLI::App& app, Result& result);

} // namespace flowmere::host
