#pragma once

// The lines that were entered, in this shell and in earlier ones.

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace flowmere::host::shell {

// The file in which they stand, below XDG_STATE_HOME, or else below HOME; empty where neither names a folder.
std::filesystem::path historyFile();

// One line of the file for each line that was entered, the oldest first. A file that cannot be read or written is as
// good as none.
class History {
public:
    static constexpr std::size_t kKept = 1000;

    // Reads the newest lines of the file. A file that has grown to twice their number is cut down to them.
    explicit History(std::filesystem::path file);

    std::vector<std::string> const& lines() const { return m_lines; }
    // Keeps a line, and writes it behind those of other shells that run at the same time. A line that was entered
    // twice in a row is kept once.
    void add(std::string const& line);

private:
    std::filesystem::path m_file;
    std::vector<std::string> m_lines;
};

} // namespace flowmere::host::shell
