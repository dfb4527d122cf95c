#pragma once

#include "flowmere/Export.h"

// The version of these headers. The build reads it from here.
#define FLOWMERE_VERSION_MAJOR 0
#define FLOWMERE_VERSION_MINOR 1
#define FLOWMERE_VERSION_PATCH 0

namespace flowmere {

// The version of the library that runs, "major.minor.patch". The text lives as long as the library.
FLOWMERE_API char const* versionText();

// The version of the Xerces-C library in use, "major.minor.patch". Defined in xml/XercesVersion.cpp.
FLOWMERE_API char const* xercesVersionText();

// The version of the Python library in use, "major.minor.patch" and what follows it up to the first blank.
// Works before the interpreter has started. Defined in execution/PythonVersion.cpp.
FLOWMERE_API char const* pythonVersionText();

} // namespace flowmere
