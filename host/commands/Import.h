#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// "flowmere import": makes a document of a workflow folder.
void addImport(Command const& program, Result& result);

} // namespace flowmere::host
