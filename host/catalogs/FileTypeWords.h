#pragma once

// A file type, which stands in a catalog of its own and among the data types.

#include "host/basics/Text.h"

#include <nlohmann/json.hpp>

#include <string>

namespace flowmere::host::catalogs {

// All of its fields.
Json jsonOf(CFCFileTypeNode& type);
// "modified, deleted", as far as it is.
std::string marksOf(CFCFileTypeNode& type);

} // namespace flowmere::host::catalogs
