#pragma once

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/TuString.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <unistd.h>

namespace flowmere::fuzz {

// The input of the process, and what is written beside it with ".out" behind its name. They stay after a fault.
class InputFile {
public:
    explicit InputFile(std::string const& ending)
        : m_path(std::filesystem::temp_directory_path() / ("flowmere_fuzz_" + std::to_string(getpid()) + ending)) {}
    ~InputFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
        std::filesystem::remove(m_path += ".out", ignored);
    }
    InputFile(InputFile const&) = delete;
    InputFile& operator=(InputFile const&) = delete;

    std::filesystem::path const& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

// The readers take paths, so each input goes through one file of the process, whose name always has the same ending.
inline TuString inputFile(std::uint8_t const* data, std::size_t size, std::string const& ending) {
    static InputFile const input(ending);
    std::ofstream file(input.path(), std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    return TuString(input.path().string().c_str());
}

} // namespace flowmere::fuzz
