#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// "flowmere import": makes a document of a workflow folder.
void addImport(CLI::App& app, Result& result);

} // namespace flowmere::host
