#pragma once

#include "flowmere/foundation/TuString.h"

namespace flowmere {

// The local file of a script name: its path, as CFCEnvironment::GetLocalFilePath gives it, and whether a file is there.
// Asks the disk for each possible place once, which the two questions to the environment would not.
struct LocalFile {
    TuString path;
    bool isThere = false;
};
LocalFile findLocalFile(wchar_t const* name);

} // namespace flowmere
