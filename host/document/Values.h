#pragma once

// Values that users give variables.

#include "flowmere/Flowmere.h"
#include "host/document/Document.h"

#include <string>

namespace flowmere::host {

// Throws Failure, exit code 2, for a text that is no value of the variable's type, as far as that shows in the text.
// `path` is the variable's, for the message.
void checkValue(Document const& document, std::string const& path, CFCVariableData& variable, std::string const& value);

// Gives the variable at the end of its links the value.
void setValue(CFCVariableData& variable, std::string const& value);

} // namespace flowmere::host
