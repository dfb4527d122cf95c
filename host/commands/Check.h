#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere check FILE...: what is wrong with documents.
void addCheck(CLI::App& app, Result& result);

} // namespace flowmere::host
