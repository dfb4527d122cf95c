#pragma once

// The calls by which files come to disk safely, in a table, so that a test can let each of them fail.

#include <cstddef>
#include <sys/types.h>

namespace flowmere::host {

// Each member does what the call of its name does.
struct SystemCalls {
    int (*open)(char const* path, int flags, mode_t mode);
    int (*flock)(int file, int operation);
    ssize_t (*write)(int file, void const* bytes, std::size_t count);
    ssize_t (*pread)(int file, void* bytes, std::size_t count, off_t at);
    int (*ftruncate)(int file, off_t size);
    int (*fchmod)(int file, mode_t mode);
    int (*fsync)(int file);
    int (*rename)(char const* from, char const* to);
};

// The table in use.
SystemCalls& systemCalls();

} // namespace flowmere::host
