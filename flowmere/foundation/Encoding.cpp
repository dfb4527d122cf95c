#include "flowmere/foundation/Encoding.h"

#include <cstddef>
#include <cstdint>

namespace flowmere {

namespace {

constexpr std::uint32_t kLosslessBase = 0xDC00;

// Length of the well-formed sequence at the start of `bytes` and its character; 0 when there is none.
std::size_t decodeOne(std::string_view bytes, std::uint32_t& character) noexcept {
    auto const byteAt = [bytes](std::size_t index) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[index]));
    };
    std::uint32_t const lead = byteAt(0);
    std::size_t length = 0;
    std::uint32_t smallest = 0;
    if (lead < 0x80) {
        character = lead;
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        smallest = 0x80;
        character = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        smallest = 0x800;
        character = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        smallest = 0x10000;
        character = lead & 0x07;
    } else {
        return 0;
    }
    if (bytes.size() < length) {
        return 0;
    }
    for (std::size_t index = 1; index < length; ++index) {
        std::uint32_t const next = byteAt(index);
        if ((next & 0xC0) != 0x80) {
            return 0;
        }
        character = (character << 6) | (next & 0x3F);
    }
    bool const surrogate = character >= 0xD800 && character <= 0xDFFF;
    return character < smallest || surrogate || character > 0x10FFFF ? 0 : length;
}

void appendCharacter(std::wstring& text, std::uint32_t character) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (character >= 0x10000) {
            text.push_back(static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10)));
            text.push_back(static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
            return;
        }
    }
    text.push_back(static_cast<wchar_t>(character));
}

void appendBytes(std::string& bytes, std::uint32_t character) {
    auto const put = [&bytes](std::uint32_t byte) {
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
    };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | (character >> 6));
        put(0x80 | (character & 0x3F));
    } else if (character >= kLosslessBase + 0x80 && character <= kLosslessBase + 0xFF) {
        put(character - kLosslessBase);
    } else if ((character >= 0xD800 && character <= 0xDFFF) || character > 0x10FFFF) {
        put('?');
    } else if (character < 0x10000) {
        put(0xE0 | (character >> 12));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3F));
        put(0x80 | ((character >> 6) & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

} // namespace

std::wstring fromUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        std::uint32_t character = 0;
        std::size_t const length = decodeOne(bytes, character);
        if (length == 0) {
            character = kLosslessBase + static_cast<unsigned char>(bytes.front());
        }
        appendCharacter(text, character);
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

std::string toUtf8(std::wstring_view text) {
    // Most texts are ASCII throughout.
    std::string bytes(text.size(), '\0');
    std::size_t index = 0;
    for (; index < text.size() && static_cast<std::uint32_t>(text[index]) < 0x80; ++index) {
        bytes[index] = static_cast<char>(text[index]);
    }
    bytes.resize(index);
    for (; index < text.size(); ++index) {
        auto character = static_cast<std::uint32_t>(text[index]);
        if constexpr (sizeof(wchar_t) == 2) {
            if (character >= 0xD800 && character <= 0xDBFF && index + 1 < text.size()) {
                auto const low = static_cast<std::uint32_t>(text[index + 1]);
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
                    ++index;
                }
            }
        }
        appendBytes(bytes, character);
    }
    return bytes;
}

std::string toUtf8(wchar_t const* text) {
    return text == nullptr ? std::string() : toUtf8(std::wstring_view(text));
}

} // namespace flowmere
