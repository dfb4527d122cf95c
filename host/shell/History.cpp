#include "host/shell/History.h"

#include "host/basics/Command.h"
#include "host/files/SafeFile.h"

#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace flowmere::host::shell {

namespace fs = std::filesystem;

fs::path historyFile() {
    // A folder that is not absolute counts as none.
    auto const folder = [](char const* name) {
        char const* const value = std::getenv(name);
        fs::path path = value != nullptr ? value : "";
        return path.is_absolute() ? path : fs::path();
    };
    if (fs::path const state = folder("XDG_STATE_HOME"); !state.empty())
        return state / "flowmere" / "history";
    if (fs::path const home = folder("HOME"); !home.empty())
        return home / ".local" / "state" / "flowmere" / "history";
    return {};
}

History::History(fs::path file) : m_file(std::move(file)) {
    std::error_code error;
    if (m_file.empty() || !fs::is_regular_file(m_file, error))
        return;
    std::ifstream in(m_file, std::ios::binary);
    for (std::string line; std::getline(in, line);)
        if (!line.empty() && line.find('\0') == std::string::npos)
            m_lines.push_back(std::move(line));
    bool const isLong = m_lines.size() >= 2 * kKept;
    if (m_lines.size() > kKept)
        m_lines.erase(m_lines.begin(), m_lines.end() - static_cast<std::ptrdiff_t>(kKept));
    if (!isLong)
        return;
    std::string text;
    for (std::string const& line : m_lines)
        text += line + "\n";
    try {
        saveBytes(m_file.string(), text);
    } catch (Failure const&) {
        // It stays as long as it is.
        return;
    }
}

void History::add(std::string const& line) {
    if (line.empty() || line.find('\0') != std::string::npos || (!m_lines.empty() && m_lines.back() == line))
        return;
    m_lines.push_back(line);
    if (m_file.empty())
        return;
    std::error_code error;
    fs::create_directories(m_file.parent_path(), error);
    // In one piece, so that the lines of two shells do not mix.
    int const file = ::open(m_file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file < 0)
        return;
    std::string const text = line + "\n";
    if (::write(file, text.data(), text.size()) < 0)
        m_file.clear();
    ::close(file);
}

} // namespace flowmere::host::shell
