#pragma once

#include "flowmere/Export.h"

// The library as a module of a process. Once loaded it stays until the process ends, however often it is closed: hosts
// hold nodes whose code is in here.
extern "C" {

// What the module says of itself: 0 its kind, 1 its version (major.minor.patch.build, the last a hash of the sources
// or 0), any other value the line by which tools identify files: maker, name, version, support, machine and day of the
// build. The texts live as long as the module.
FLOWMERE_API char const* Flowmere_get_module_info(int what);

// Does nothing. Its address stands for the module.
FLOWMERE_API void _localFnToKeepFlowmereDllLoaded(void);
}
