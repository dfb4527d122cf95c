#pragma once

// A run as text: the lines of its log, and the one JSON document.

#include "host/basics/Text.h"
#include "host/run/RunReport.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// The path takes up `width` columns.
std::string blockLine(BlockRun const& run, std::size_t width);
std::string summaryLine(RunReport const& report);
Json reportJson(RunReport const& report);

// The lines of a text, without their ends.
std::vector<std::string> linesOf(std::string_view text);

} // namespace flowmere::host
