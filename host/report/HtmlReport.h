#pragma once

// A run as one page for a browser.

#include "host/run/RunReport.h"

#include <string>

namespace flowmere::host {

class Document;

// The whole page: the picture with the states of the document's blocks, what ran and for how long, the variables
// before and after, what each block printed, errors, history and notes. It needs nothing from outside and no script of
// its own, and is well-formed XML as well. Texts are shown as they are; control characters and bytes that are no UTF-8
// are made visible. Where no picture can be drawn the page says why.
std::string htmlReport(Document const& document, RunReport const& report);

} // namespace flowmere::host
