#pragma once

// Whether a file can be read at all, told before the library is asked, which only says yes or no.

#include <filesystem>
#include <string>

namespace flowmere::host {

// Why a file cannot be given to the library to read, as the end of a message; empty when it can.
std::string inputFault(std::filesystem::path const& file);

} // namespace flowmere::host
