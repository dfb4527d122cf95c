#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere format FILE: an XML file with each element on a line of its own, beside the file.
void addFormat(CLI::App& app, Result& result);

} // namespace flowmere::host
