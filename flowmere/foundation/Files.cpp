#include "flowmere/foundation/Files.h"

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Paths.h"

#include <array>
#include <memory>
#include <system_error>
#include <utility>

namespace flowmere {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, FileCloser>;

std::FILE* openAsFile(std::filesystem::path const& path, char const* mode) {
    // The kind is asked first, because opening a pipe would wait for its other end.
    std::error_code ignored;
    auto const status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        return nullptr;
    }
#if defined(_WIN32)
    return _wfopen(path.c_str(), fromUtf8(mode).c_str());
#else
    return std::fopen(path.c_str(), mode);
#endif
}

} // namespace

std::FILE* openFile(wchar_t const* path, char const* mode) noexcept {
    if (path == nullptr || mode == nullptr) {
        return nullptr;
    }
    try {
        return openAsFile(filesystemPath(path), mode);
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
