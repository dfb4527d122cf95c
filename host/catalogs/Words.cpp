#include "host/catalogs/Words.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace flowmere::host::catalogs {

namespace {

constexpr std::size_t kShownOfText = 100;

bool isInside(char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

std::size_t charactersOf(std::string_view text) {
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInside));
}

} // namespace

std::string shortLine(std::string const& whole) {
    std::string const text = oneLine(whole);
    std::size_t const count = charactersOf(text);
    if (count <= kShownOfText)
        return text;
    std::size_t end = 0;
    for (std::size_t shown = 0; shown < kShownOfText; ++shown)
        for (++end; end < text.size() && isInside(text[end]);)
            ++end;
    return text.substr(0, end) + fmt::format("... ({} characters)", count);
}

std::string nameOf(IFCNode& node) {
    std::string const caption = utf8(node.GetNodeCaption());
    return caption.empty() ? "(nameless)" : oneLine(caption);
}

std::string marginOf(std::size_t level) {
    return std::string(2 * level, ' ');
}

std::vector<IFCNode*> childrenOf(IFCNode& node) {
    std::vector<IFCNode*> children;
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
        children.push_back(child);
    std::reverse(children.begin(), children.end());
    return children;
}

std::string countsOf(std::initializer_list<std::pair<std::size_t, std::string_view>> counts, std::string_view none) {
    std::string text;
    for (auto const& [count, name] : counts)
        if (count != 0)
            text += (text.empty() ? "" : ", ") + counted(count, name);
    return text.empty() ? "no " + std::string(none) : text;
}

std::string tableOf(std::vector<std::vector<std::string>> const& rows) {
    std::vector<std::size_t> widths;
    for (auto const& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths.resize(std::max(widths.size(), column + 1));
            widths[column] = std::max(widths[column], charactersOf(row[column]));
        }
    std::string text;
    for (auto const& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line += row[column] + std::string(widths[column] - charactersOf(row[column]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

} // namespace flowmere::host::catalogs
