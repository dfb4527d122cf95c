#pragma once

#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/XmlForward.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

namespace flowmere {

// A name or constant of the files, as the DOM takes it, made of a char16_t literal at no cost.
class XmlName {
public:
    template <std::size_t N>
    constexpr XmlName(char16_t const (&text)[N]) : m_text(text, N - 1) {}
    // The view must end at a NUL.
    explicit constexpr XmlName(std::u16string_view text) : m_text(text) {}

    XMLCh const* dom() const noexcept { return reinterpret_cast<XMLCh const*>(m_text.data()); }
    constexpr std::u16string_view view() const noexcept { return m_text; }

private:
    std::u16string_view m_text;
};

// DOM text with its length; null gives the empty text.
inline std::u16string_view xmlView(XMLCh const* text) noexcept {
    return text ? std::u16string_view(reinterpret_cast<char16_t const*>(text)) : std::u16string_view();
}

inline bool equals(XMLCh const* text, std::u16string_view other) noexcept {
    return xmlView(text) == other;
}
// The same, ignoring the case of ASCII letters; `lower` is in small letters.
bool equalsNoCase(std::u16string_view text, std::u16string_view lower) noexcept;

// Wide text of a DOM text, in a buffer of its own that needs no heap memory for short texts. Ill-formed surrogates
// become U+FFFD.
class WideText {
public:
    explicit WideText(XMLCh const* text) : WideText(xmlView(text)) {}
    explicit WideText(std::u16string_view text);
    WideText(WideText const&) = delete;
    WideText& operator=(WideText const&) = delete;

    wchar_t const* text() const noexcept { return m_text; }
    std::wstring_view view() const noexcept { return {m_text, m_length}; }
    operator wchar_t const*() const noexcept { return m_text; }

private:
    std::array<wchar_t, 192> m_inline;
    std::unique_ptr<wchar_t[]> m_heap;
    wchar_t* m_text;
    std::size_t m_length = 0;
};

// DOM text of a wide text, likewise. The one place that decides what may go into a file: control characters other
// than tab, line feed and carriage return, U+FFFE and U+FFFF are dropped, lone surrogates and values above U+10FFFF
// become U+FFFD. Anything else would truncate the file, make it unreadable or hang the serialiser.
class DomText {
public:
    explicit DomText(wchar_t const* text) : DomText(text ? std::wstring_view(text) : std::wstring_view()) {}
    explicit DomText(std::wstring_view text);
    DomText(DomText const&) = delete;
    DomText& operator=(DomText const&) = delete;

    XMLCh const* text() const noexcept { return m_text; }
    std::size_t length() const noexcept { return m_length; }

private:
    std::array<XMLCh, 256> m_inline;
    std::unique_ptr<XMLCh[]> m_heap;
    XMLCh* m_text;
    std::size_t m_length = 0;
};

// Replaces the content of `out`.
void assignText(TuString& out, std::u16string_view text);

// Values of attribute texts. Leading white space and a sign are taken, what follows the number is ignored, a text that
// is no number gives 0, and integers end at the limits of their type.
int integerOf(std::u16string_view text) noexcept;
// Negative numbers down to the lowest int give their 32 bits, as an unsigned number printed as an int reads back.
unsigned int unsignedOf(std::u16string_view text) noexcept;
// Decimal, or hexadecimal behind "0x" or "#".
unsigned int colorOf(std::u16string_view text) noexcept;
double realOf(std::u16string_view text);
// The texts that GetBoolAttribute takes; false, with `out` untouched, for any other.
bool flagOf(std::u16string_view text, bool& out) noexcept;

} // namespace flowmere
