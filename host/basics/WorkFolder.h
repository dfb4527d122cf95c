#pragma once

// A place for files that are being made.

#include <filesystem>

namespace flowmere::host {

// A new folder, gone with all it holds at the end.
class WorkFolder {
public:
    // Below the first of these folders that takes it: the given one (none when empty), that for temporary files, /tmp.
    // Its path has neither a backslash nor ".xml" in it, which the library would take for something else. Throws
    // Failure, exit code 2, with `wanted` as the file that cannot be written.
    explicit WorkFolder(std::filesystem::path const& wanted, std::filesystem::path const& beside = {});
    ~WorkFolder();
    WorkFolder(WorkFolder const&) = delete;
    WorkFolder& operator=(WorkFolder const&) = delete;

    std::filesystem::path const& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace flowmere::host
