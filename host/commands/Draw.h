#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere draw FILE -o OUT: the diagram of a document as a picture.
void addDraw(CLI::App& app, Result& result);

} // namespace flowmere::host
