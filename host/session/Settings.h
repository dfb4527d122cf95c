#pragma once

// Values that the command line gives to variables.

#include "host/document/Document.h"

#include <string>
#include <utility>
#include <vector>

namespace flowmere::host {

// The variable at the end of all links, and its new value.
using Setting = std::pair<CFCVariableData*, TuString>;

// Out of texts of the form PATH=VALUE, in their order. Throws Failure, exit code 2, for another form, for a path that
// no variable has, and for a value that is none of the variable's type.
std::vector<Setting> settingsOf(Document const& document, std::vector<std::string> const& texts);

} // namespace flowmere::host
