#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere run FILE: runs the process of a document block by block.
void addRun(CLI::App& app, Result& result);

} // namespace flowmere::host
