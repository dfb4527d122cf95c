#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere diff A B: what changed between two process documents.
void addDiff(CLI::App& app, Result& result);

} // namespace flowmere::host
