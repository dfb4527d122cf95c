#include "host/session/Progress.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

namespace flowmere::host {

void Progress::show(std::string const& path, std::size_t done, std::string const& left) {
    if (!m_isShown)
        return;
    printError(fmt::format("\r\x1b[Krunning {} ({} done{}{})", oneLine(path), counted(done, "block"),
                           left.empty() ? "" : ", ", left));
    m_isVisible = true;
}

void Progress::clear() {
    if (!m_isVisible)
        return;
    printError("\r\x1b[K");
    m_isVisible = false;
}

} // namespace flowmere::host
