#pragma once

// The line of a terminal that tells what runs just now.

#include <cstddef>
#include <string>

namespace flowmere::host {

class Progress {
public:
    // Without `isShown` nothing ever shows.
    explicit Progress(bool isShown) : m_isShown(isShown) {}
    ~Progress() { clear(); }
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    bool isShown() const { return m_isShown; }
    // `left` may be empty.
    void show(std::string const& path, std::size_t done, std::string const& left);
    // Makes room for a line of another kind.
    void clear();

private:
    bool m_isShown;
    bool m_isVisible = false;
};

} // namespace flowmere::host
