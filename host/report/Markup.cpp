#include "host/report/Markup.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace flowmere::host {

namespace {

struct Character {
    std::uint32_t code = 0;
    std::size_t size = 1;
    bool isUtf8 = false;
};

// The character that a text begins with; the text is not empty.
Character firstOf(std::string_view text) {
    auto const at = [&](std::size_t index) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[index]));
    };
    std::uint32_t const lead = at(0);
    if (lead < 0x80)
        return {lead, 1, true};
    std::size_t const size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < size)
        return {lead, 1, false};
    std::uint32_t code = lead & (0xFFU >> (size + 1));
    for (std::size_t index = 1; index < size; ++index) {
        if ((at(index) & 0xC0U) != 0x80)
            return {lead, 1, false};
        code = code << 6U | (at(index) & 0x3FU);
    }
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    bool const isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kLeast[size] || code > 0x10FFFF || isSurrogate)
        return {lead, 1, false};
    return {code, size, true};
}

// Characters that a reader would not see, or that XML does not take.
bool isOdd(std::uint32_t code) {
    if (code < 0x20)
        return code != '\n' && code != '\t';
    bool const turnsDirection =
        (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x200E || code == 0x200F;
    return (code >= 0x7F && code < 0xA0) || turnsDirection || code == 0xFEFF || (code & 0xFFFEU) == 0xFFFE;
}

std::string nameOf(Character const& character) {
    if (!character.isUtf8)
        return fmt::format("\\x{:02X}", character.code);
    // The pictures of control characters, in UTF-8.
    if (character.code < 0x20)
        return fmt::format("\xE2\x90{}", static_cast<char>(0x80 + character.code));
    if (character.code == 0x7F)
        return "\xE2\x90\xA1";
    return fmt::format("U+{:04X}", character.code);
}

} // namespace

std::string markup(std::string_view text, bool isMarked) {
    std::string result;
    result.reserve(text.size() + text.size() / 8);
    while (!text.empty()) {
        Character const character = firstOf(text);
        if (!character.isUtf8 || isOdd(character.code))
            result += isMarked ? "<span class=\"odd\">" + nameOf(character) + "</span>" : nameOf(character);
        else if (character.code == '&')
            result += "&amp;";
        else if (character.code == '<')
            result += "&lt;";
        else if (character.code == '>')
            result += "&gt;";
        else if (character.code == '"')
            result += "&quot;";
        else
            result += text.substr(0, character.size);
        text.remove_prefix(character.size);
    }
    return result;
}

std::size_t lineCount(std::string_view text) {
    auto const ends = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    return ends + (text.empty() || text.back() == '\n' ? 0 : 1);
}

std::string beginningOf(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes)
        return std::string(text);
    std::size_t size = 0;
    while (size < bytes) {
        std::size_t const next = size + firstOf(text.substr(size)).size;
        if (next > bytes)
            break;
        size = next;
    }
    return std::string(text.substr(0, size)) + "...";
}

} // namespace flowmere::host
