#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace flowmere {

// The system's form of a path, for the moment of opening: UTF-8, each backslash a slash, everything else as it is.
// The empty path for null. Stored paths keep their backslashes.
std::string systemPath(wchar_t const* path);
std::string systemPath(std::wstring_view path);

// The same as a path object for the standard library.
std::filesystem::path filesystemPath(std::wstring_view path);

// Wide text of a path that the system gave; separators stay as they are.
std::wstring pathText(std::filesystem::path const& path);

} // namespace flowmere
