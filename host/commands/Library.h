#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere library list|show|add|merge: the lists of the process library.
void addLibrary(CLI::App& app, Result& result);

} // namespace flowmere::host
