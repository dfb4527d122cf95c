#pragma once

// Whether a file can be read at all, told before the library is asked, which only says yes or no.

#include <filesystem>
#include <string>

namespace flowmere::host {

// Why a file cannot be read, as the end of a message; empty when it can.
std::string fileFault(std::filesystem::path const& file);
// Why a file cannot be given to the library to read, as the end of a message: the above, and a
// path that the library takes for another one.
std::string inputFault(std::filesystem::path const& file);

} // namespace flowmere::host
