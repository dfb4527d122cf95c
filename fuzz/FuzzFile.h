#pragma once

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/TuString.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace flowmere::fuzz {

// The readers take paths, so each input goes through one file of the process.
inline TuString inputFile(std::uint8_t const* data, std::size_t size, std::string const& ending) {
    std::filesystem::path const path =
        std::filesystem::temp_directory_path() / ("flowmere_fuzz_" + std::to_string(getpid()) + ending);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    return TuString(path.string().c_str());
}

} // namespace flowmere::fuzz
