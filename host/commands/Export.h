#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// "flowmere export": makes a workflow folder of a document.
void addExport(CLI::App& app, Result& result);

} // namespace flowmere::host
