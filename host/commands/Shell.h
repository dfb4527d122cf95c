#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere shell: the named commands of the process execution, typed or read from a script.
void addShell(CLI::App& app, Result& result);

} // namespace flowmere::host
