#include "flowmere/foundation/Paths.h"

#include "flowmere/foundation/Encoding.h"

#include <algorithm>

namespace flowmere {

std::string systemPath(wchar_t const* path) {
    return path == nullptr ? std::string() : systemPath(std::wstring_view(path));
}

std::string systemPath(std::wstring_view path) {
    std::string bytes = toUtf8(path);
    std::replace(bytes.begin(), bytes.end(), '\\', '/');
    return bytes;
}

std::filesystem::path filesystemPath(std::wstring_view path) {
#if defined(_WIN32)
    return std::filesystem::path(path);
#else
    return std::filesystem::path(systemPath(path));
#endif
}

std::wstring pathText(std::filesystem::path const& path) {
#if defined(_WIN32)
    return path.native();
#else
    return fromUtf8(path.native());
#endif
}

} // namespace flowmere
