#pragma once

// One for each kind of catalog.

#include "host/catalogs/Catalogs.h"

namespace flowmere::host::catalogs {

std::unique_ptr<Catalog> makeDataTypes();
std::unique_ptr<Catalog> makeFileTypes();
std::unique_ptr<Catalog> makeMimeTypes();
std::unique_ptr<Catalog> makeHints();
std::unique_ptr<Catalog> makeAPIHelp();
std::unique_ptr<Catalog> makeManifest();
std::unique_ptr<Catalog> makeFavourites();

} // namespace flowmere::host::catalogs
