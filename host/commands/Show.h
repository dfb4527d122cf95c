#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere show FILE: the tree of a document, with its variables and their values.
void addShow(CLI::App& app, Result& result);

} // namespace flowmere::host
