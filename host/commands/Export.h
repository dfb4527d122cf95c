#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// "flowmere export": makes a workflow folder of a document.
void addExport(Command const& program, Result& result);

} // namespace flowmere::host
