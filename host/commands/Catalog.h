#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere catalog types|files|mime|hints|help|manifest|favourites: what the side catalogs hold.
void addCatalog(Command const& program, Result& result);

} // namespace flowmere::host
