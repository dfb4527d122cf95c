#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere draw FILE -o OUT: the diagram of a document as a picture.
void addDraw(Command const& program, Result& result);

} // namespace flowmere::host
