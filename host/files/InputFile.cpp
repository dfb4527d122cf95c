#include "host/files/InputFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

std::string fileFault(fs::path const& file) {
    std::error_code error;
    fs::file_status const status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found)
        return "there is no such file";
    if (error)
        return "cannot be read: " + error.message();
    if (status.type() == fs::file_type::directory)
        return "is a folder";
    if (status.type() != fs::file_type::regular)
        return "is no regular file";
    errno = 0;
    if (!std::ifstream(file, std::ios::binary))
        return std::string("cannot be read: ") + std::strerror(errno);
    if (fs::file_size(file, error) == 0 && !error)
        return "is empty";
    return {};
}

std::string inputFault(fs::path const& file) {
    if (std::string fault = fileFault(file); !fault.empty())
        return fault;
    // The library takes each backslash for the end of a folder.
    if (fs::absolute(file).string().find('\\') != std::string::npos)
        return "cannot be read: its path holds a backslash";
    return {};
}

} // namespace flowmere::host
