#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere check FILE...: what is wrong with documents.
void addCheck(Command const& program, Result& result);

} // namespace flowmere::host
