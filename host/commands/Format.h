#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere format FILE: an XML file with each element on a line of its own, beside the file.
void addFormat(Command const& program, Result& result);

} // namespace flowmere::host
