#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere catalog types|files|mime|hints|help|manifest|favourites: what the side catalogs hold.
void addCatalog(CLI::App& app, Result& result);

} // namespace flowmere::host
