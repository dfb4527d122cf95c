#include "flowmere/foundation/Files.h"

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Paths.h"

#include <array>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

namespace flowmere {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

// The kind is asked first, because opening a pipe would wait for its other end.
#if defined(_WIN32)
std::FILE* openAsFile(wchar_t const* path, char const* mode) {
    std::filesystem::path const native = filesystemPath(path);
    std::error_code ignored;
    auto const status = std::filesystem::status(native, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        return nullptr;
    }
    return _wfopen(native.c_str(), fromUtf8(mode).c_str());
}
#else
// Most questions are for files that are not there, and each block of a document asks several.
std::FILE* openAsFile(wchar_t const* path, char const* mode) {
    std::string const native = systemPath(path);
    struct stat status {};
    bool const exists = ::stat(native.c_str(), &status) == 0;
    if (exists ? !S_ISREG(status.st_mode) : mode[0] == 'r') {
        return nullptr;
    }
    return std::fopen(native.c_str(), mode);
}
#endif

} // namespace

std::FILE* openFile(wchar_t const* path, char const* mode) noexcept {
    if (path == nullptr || mode == nullptr) {
        return nullptr;
    }
    try {
        return openAsFile(path, mode);
    } catch (...) {
        return nullptr;
    }
}

bool isReadableFile(wchar_t const* path) noexcept {
    return File(openFile(path, "rb")) != nullptr;
}

bool readFile(wchar_t const* path, std::string& bytes) noexcept {
    File const file(openFile(path, "rb"));
    if (file == nullptr) {
        return false;
    }
    try {
        std::string content;
        // Room for all of it at once, as far as the size is known.
        if (std::fseek(file.get(), 0, SEEK_END) == 0) {
            long const size = std::ftell(file.get());
            content.reserve(size > 0 ? static_cast<std::size_t>(size) : 0);
        }
        std::rewind(file.get());
        std::array<char, 16384> block;
        std::size_t count = 0;
        while ((count = std::fread(block.data(), 1, block.size(), file.get())) > 0) {
            content.append(block.data(), count);
        }
        if (std::ferror(file.get()) != 0) {
            return false;
        }
        bytes = std::move(content);
        return true;
    } catch (...) {
        return false;
    }
}

bool writeFile(wchar_t const* path, std::string_view bytes) noexcept {
    File file(openFile(path, "wb"));
    if (file == nullptr) {
        return false;
    }
    bool const written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    bool const closed = std::fclose(file.release()) == 0;
    return written && closed;
}

bool createFolder(wchar_t const* path) noexcept {
    if (path == nullptr || *path == L'\0') {
        return false;
    }
    try {
        std::error_code ignored;
        auto const folder = filesystemPath(path);
        std::filesystem::create_directories(folder, ignored);
        return std::filesystem::is_directory(folder, ignored);
    } catch (...) {
        return false;
    }
}

} // namespace flowmere
