#include "host/session/Progress.h"

#include "host/basics/Text.h"

#include <fmt/format.h>
#include <glib.h>

#include <string_view>

namespace flowmere::host {

namespace {

// The text is UTF-8.
std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    char const* const end = text.data() + text.size();
    for (char const* at = text.data(); at < end; at = g_utf8_next_char(at)) {
        gunichar const character = ::g_utf8_get_char(at);
        columns += ::g_unichar_iszerowidth(character) != 0 ? 0 : ::g_unichar_iswide(character) != 0 ? 2 : 1;
    }
    return columns;
}

// The end of a path, which tells most, in so many columns.
std::string endOf(std::string const& path, std::size_t columns) {
    constexpr std::string_view kCut = "...";
    if (columnsOf(path) <= columns)
        return path;
    if (columns <= kCut.size())
        return {};
    std::string_view end = path;
    while (!end.empty() && columnsOf(end) + kCut.size() > columns)
        end.remove_prefix(static_cast<std::size_t>(g_utf8_next_char(end.data()) - end.data()));
    return std::string(kCut) + std::string(end);
}

} // namespace

void Progress::show(std::string const& path, std::size_t done, std::string const& left) {
    if (!m_isShown)
        return;
    constexpr std::string_view kLead = "running ";
    std::string const rest = fmt::format(" ({} done{}{})", counted(done, "block"), left.empty() ? "" : ", ", left);
    // What goes on in the next line would not be cleared. The last column stays free, where the cursor stands.
    std::size_t const columns = errorColumns();
    std::size_t const taken = kLead.size() + rest.size() + 1;
    std::string shown = oneLine(path);
    if (columns > 0)
        shown = endOf(shown, columns > taken ? columns - taken : 0);
    printError(fmt::format("\r\x1b[K{}{}{}", kLead, shown, rest));
    m_isVisible = true;
}

void Progress::clear() {
    if (!m_isVisible)
        return;
    printError("\r\x1b[K");
    m_isVisible = false;
}

} // namespace flowmere::host
