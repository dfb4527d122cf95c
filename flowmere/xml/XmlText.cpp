#include "flowmere/xml/XmlText.h"

#include "flowmere/foundation/Numbers.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace flowmere {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(char32_t c) noexcept {
    return c >= 0xD800 && c <= 0xDBFF;
}

bool isLowSurrogate(char32_t c) noexcept {
    return c >= 0xDC00 && c <= 0xDFFF;
}

char32_t codeOf(wchar_t c) noexcept {
    return static_cast<std::make_unsigned_t<wchar_t>>(c);
}

bool isBlank(char16_t c) noexcept {
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

bool isDigit(char16_t c) noexcept {
    return c >= u'0' && c <= u'9';
}

std::u16string_view withoutBlanks(std::u16string_view text) noexcept {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

// The integer at the start of the text, far beyond the 32-bit types at most.
std::int64_t wideIntegerOf(std::u16string_view text) noexcept {
    text = withoutBlanks(text);
    bool negative = false;
    if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) {
        negative = text.front() == u'-';
        text.remove_prefix(1);
    }
    constexpr std::int64_t kEnough = std::numeric_limits<std::int64_t>::max() / 16;
    std::int64_t value = 0;
    for (char16_t const c : text) {
        if (!isDigit(c)) {
            break;
        }
        if (value < kEnough) {
            value = value * 10 + (c - u'0');
        }
    }
    return negative ? -value : value;
}

int hexDigit(char16_t c) noexcept {
    if (isDigit(c)) {
        return c - u'0';
    }
    if (c >= u'a' && c <= u'f') {
        return c - u'a' + 10;
    }
    if (c >= u'A' && c <= u'F') {
        return c - u'A' + 10;
    }
    return -1;
}

unsigned int hexadecimalOf(std::u16string_view text) noexcept {
    std::int64_t value = 0;
    for (char16_t const c : text) {
        int const digit = hexDigit(c);
        if (digit < 0) {
            break;
        }
        value = std::min<std::int64_t>(value * 16 + digit, std::numeric_limits<unsigned int>::max());
    }
    return static_cast<unsigned int>(value);
}

} // namespace

bool equalsNoCase(std::u16string_view text, std::u16string_view lower) noexcept {
    if (text.size() != lower.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        char16_t const c = text[i];
        if ((c >= u'A' && c <= u'Z' ? c - u'A' + u'a' : c) != lower[i]) {
            return false;
        }
    }
    return true;
}

WideText::WideText(std::u16string_view text) {
    m_text = m_inline.data();
    if (text.size() >= m_inline.size()) {
        m_heap = std::make_unique_for_overwrite<wchar_t[]>(text.size() + 1);
        m_text = m_heap.get();
    }
    wchar_t* out = m_text;
    std::size_t plain = 0;
    for (; plain < text.size() && (text[plain] < 0xD800 || text[plain] > 0xDFFF); ++plain) {
        out[plain] = static_cast<wchar_t>(text[plain]);
    }
    out += plain;
    for (std::size_t i = plain; i < text.size(); ++i) {
        char32_t const c = text[i];
        if (c < 0xD800 || c > 0xDFFF) {
            *out++ = static_cast<wchar_t>(c);
        } else if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            char32_t const low = text[++i];
            if constexpr (sizeof(wchar_t) > 2) {
                *out++ = static_cast<wchar_t>(0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00));
            } else {
                *out++ = static_cast<wchar_t>(c);
                *out++ = static_cast<wchar_t>(low);
            }
        } else {
            *out++ = static_cast<wchar_t>(kReplacement);
        }
    }
    *out = L'\0';
    m_length = static_cast<std::size_t>(out - m_text);
}

DomText::DomText(std::wstring_view text) {
    std::size_t capacity = text.size() + 1;
    if constexpr (sizeof(wchar_t) > 2) {
        for (wchar_t const c : text) {
            capacity += codeOf(c) > 0xFFFF ? 1U : 0U;
        }
    }
    m_text = m_inline.data();
    if (capacity > m_inline.size()) {
        m_heap = std::make_unique_for_overwrite<XMLCh[]>(capacity);
        m_text = m_heap.get();
    }
    XMLCh* out = m_text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = codeOf(text[i]);
        if (c >= 0x20 && c < 0xD800) {
            *out++ = static_cast<XMLCh>(c);
            continue;
        }
        if (c < 0x20) {
            if (c == U'\t' || c == U'\n' || c == U'\r') {
                *out++ = static_cast<XMLCh>(c);
            }
            continue;
        }
        if (c == 0xFFFE || c == 0xFFFF) {
            continue;
        }
        if constexpr (sizeof(wchar_t) == 2) {
            if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(codeOf(text[i + 1]))) {
                *out++ = static_cast<XMLCh>(c);
                *out++ = static_cast<XMLCh>(codeOf(text[++i]));
                continue;
            }
        }
        if (isHighSurrogate(c) || isLowSurrogate(c) || c > 0x10FFFF) {
            c = kReplacement;
        }
        if (c > 0xFFFF) {
            *out++ = static_cast<XMLCh>(0xD800 + ((c - 0x10000) >> 10));
            *out++ = static_cast<XMLCh>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            *out++ = static_cast<XMLCh>(c);
        }
    }
    *out = 0;
    m_length = static_cast<std::size_t>(out - m_text);
}

void assignText(TuString& out, std::u16string_view text) {
    out = TuString(WideText(text).view());
}

int integerOf(std::u16string_view text) noexcept {
    return saturateToInt(wideIntegerOf(text));
}

unsigned int unsignedOf(std::u16string_view text) noexcept {
    std::int64_t const value = wideIntegerOf(text);
    if (value < 0) {
        return value < std::numeric_limits<int>::min() ? 0U : static_cast<unsigned int>(value);
    }
    return saturateToUInt(value);
}

unsigned int colorOf(std::u16string_view text) noexcept {
    text = withoutBlanks(text);
    if (text.starts_with(u'#')) {
        return hexadecimalOf(text.substr(1));
    }
    if (text.starts_with(u"0x") || text.starts_with(u"0X")) {
        return hexadecimalOf(text.substr(2));
    }
    return unsignedOf(text);
}

double realOf(std::u16string_view text) {
    text = withoutBlanks(text);
    std::array<char, 64> digits;
    std::size_t length = 0;
    for (; length < text.size() && length < digits.size(); ++length) {
        char16_t const c = text[length];
        if (!isDigit(c) && c != u'.' && c != u'-' && c != u'+' && c != u'e' && c != u'E') {
            break;
        }
        digits[length] = static_cast<char>(c);
    }
    char const* first = digits.data();
    char const* const last = first + length;
    if (length > 1 && *first == '+' && first[1] != '-') {
        ++first;
    }
    double value = 0.0;
    auto const result = std::from_chars(first, last, value);
    if (result.ec == std::errc() && result.ptr != digits.data() + digits.size()) {
        return value;
    }
    if (result.ec == std::errc::invalid_argument && length < digits.size()) {
        return 0.0;
    }
    // Longer than the buffer, or beyond the range of the type: the slow way tells infinity from 0.
    return parseDouble(WideText(text).view()).value_or(0.0);
}

bool flagOf(std::u16string_view text, bool& out) noexcept {
    struct Form {
        std::u16string_view text;
        bool value;
    };
    static constexpr Form kForms[] = {{u"true", true}, {u"false", false}, {u"y", true},   {u"n", false},
                                      {u"1", true},    {u"0", false},     {u"yes", true}, {u"no", false}};
    for (Form const& form : kForms) {
        if (text.size() == form.text.size() && equalsNoCase(text, form.text)) {
            out = form.value;
            return true;
        }
    }
    return false;
}

} // namespace flowmere
