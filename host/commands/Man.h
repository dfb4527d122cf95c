#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere man [COMMAND]: the man page of the program, or of a command.
void addMan(CLI::App& app, Result& result);

} // namespace flowmere::host
