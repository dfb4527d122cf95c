#pragma once

// What the reader of documents passed over, told to the user.

#include "flowmere/Flowmere.h"

#include <string>

namespace flowmere::host {

// The rest of a sentence that begins with the linked file: "is missing", or "cannot be read" with the cause, and with
// line and column where that is known. Of a FileNotRead only.
std::string linkFault(CFCReadFinding const& finding);

// What was passed over, without the node that it belongs to.
std::string describe(CFCReadFinding const& finding);

} // namespace flowmere::host
