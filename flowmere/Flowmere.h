#pragma once

// Everything public in one include. Written by tools/refresh-umbrella.

#include "flowmere/Export.h"
#include "flowmere/Version.h"
