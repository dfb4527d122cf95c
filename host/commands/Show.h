#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere show FILE: the tree of a document, with its variables and their values.
void addShow(Command const& program, Result& result);

} // namespace flowmere::host
