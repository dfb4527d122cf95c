#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace flowmere {

// The one place that opens files. Opens `path` as fopen does; null for a null path or mode, for what cannot be
// opened, and for anything that exists and is no regular file (a folder, a pipe, a device).
std::FILE* openFile(wchar_t const* path, char const* mode) noexcept;

// True when `path` names a regular file that opens for reading.
bool isReadableFile(wchar_t const* path) noexcept;

// The bytes of a whole file; false, with `bytes` untouched, when it cannot be read.
bool readFile(wchar_t const* path, std::string& bytes) noexcept;

// Makes `bytes` the whole content of a file, without any change to them; false when that did not succeed.
bool writeFile(wchar_t const* path, std::string_view bytes) noexcept;

// Creates a folder with its missing parents; true when it exists at the end.
bool createFolder(wchar_t const* path) noexcept;

} // namespace flowmere
