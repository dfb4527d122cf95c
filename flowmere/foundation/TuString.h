#pragma once

#include "flowmere/Export.h"

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

// A wide text of value semantics, one pointer wide. Copies share a counted buffer until one of them changes; all
// empty strings share one static buffer. The text is always valid, NUL-terminated and never null, and holds no NUL
// inside: whatever goes in is cut at its first NUL, so GetLength() is the length of the C text.
//
// Text arguments may be null (read as the empty text) and may point into the string's own buffer. 8-bit texts are
// UTF-8; a byte that is no UTF-8 becomes U+DC80 to U+DCFF and goes back as that byte. A length or count of 0 beside
// a text means the whole text; negative counts act as 0. Pointers into the text are valid until the string changes.
class FLOWMERE_API TuString {
public:
    constexpr TuString() noexcept : m_buffer(&s_empty.head) {}
    TuString(std::nullptr_t) noexcept : TuString() {}
    TuString(wchar_t const* text, int length = 0);
    TuString(char const* text, int length = 0);
    explicit TuString(wchar_t character);
    explicit TuString(std::wstring_view text);
    TuString(TuString const& other);
    TuString(TuString&& other) noexcept : m_buffer(other.m_buffer) { other.m_buffer = &s_empty.head; }
    ~TuString() { release(m_buffer); }

    // Each replaces the content and gives the string, which reads as its new text.
    TuString& operator=(TuString const& other);
    TuString& operator=(TuString&& other) noexcept;
    TuString& operator=(wchar_t const* text);
    TuString& operator=(char const* text);
    TuString& operator=(std::nullptr_t);

    TuString& operator+=(TuString const& other);
    TuString& operator+=(wchar_t const* text);
    TuString& operator+=(char const* text);
    TuString& operator+=(wchar_t character);
    // Appends at most `count` characters (bytes, of an 8-bit text); 0 appends the whole text.
    TuString& Append(wchar_t const* text, int count = 0);
    TuString& Append(char const* text, int count = 0);

    // The text itself; never null.
    operator wchar_t const*() const noexcept { return m_buffer->text(); }
    // The text with its length, valid as long as the plain pointer is.
    std::wstring_view View() const noexcept { return {m_buffer->text(), static_cast<std::size_t>(m_buffer->length)}; }

    // Order as the C library gives it: 0 for equal, else below or above 0. CompareNoCase folds both sides first.
    int Compare(TuString const& other) const noexcept;
    int Compare(wchar_t const* text) const noexcept;
    int CompareNoCase(TuString const& other) const noexcept;
    int CompareNoCase(wchar_t const* text) const noexcept;

    // Non-zero when the length is 0.
    unsigned char IsEmpty() const noexcept { return m_buffer->length == 0 ? 1 : 0; }
    // Length in characters.
    int GetLength() const noexcept { return m_buffer->length; }
    // Character at `index`; NUL outside the text.
    wchar_t GetAt(int index) const noexcept;
    // Makes the string empty.
    void Empty() noexcept;

    // Index of the first match at or after `start`, -1 when there is none. The empty text matches at `start` as long
    // as that lies within the length; null and the NUL character match nowhere.
    int Find(wchar_t const* text, int start = 0) const noexcept;
    int Find(wchar_t character, int start = 0) const noexcept;
    // Index of the last match at or before `start`; a negative `start` means from the end. -1 when there is none.
    int ReverseFind(wchar_t character, int start = -1) const noexcept;

    // The first or last `count` characters; the whole string when it is shorter.
    TuString Left(int count) const;
    TuString Right(int count) const;
    // All from `start` on; empty at or beyond the end.
    TuString Mid(int start) const;

    // Replace every occurrence in one pass, never looking again at what was put in; they give the number of
    // replacements. An empty new text removes the occurrences, an empty old text changes nothing.
    int Replace(wchar_t oldCharacter, wchar_t newCharacter);
    int Replace(wchar_t const* oldText, wchar_t const* newText);
    // Removes every occurrence and gives their number.
    int Remove(wchar_t character);

    // Cut white space (blank, tab, line feed, vertical tab, form feed, carriage return), one character, or any of
    // the characters of a text off one end.
    void TrimLeft();
    void TrimLeft(wchar_t character);
    void TrimLeft(wchar_t const* characters);
    void TrimRight();
    void TrimRight(wchar_t character);
    void TrimRight(wchar_t const* characters);

    // Replace the content with the printf-style text. As in C, except that %s and %c take wide arguments on every
    // system (%hs, %S, %hc and %C take 8-bit ones), that a null text prints as nothing, that numbers always have a
    // point, and that %n stores nothing. Widths and precisions end at one million. The format and the arguments may
    // point into this string.
    void Format(wchar_t const* format, ...);
    void FormatV(wchar_t const* format, va_list arguments);

    // Value of the number at the start of the text: leading white space, a sign, digits; what follows is ignored.
    // Radix 16 takes the prefix 0x, radix 0 goes by the prefix as in C. 0 when there is no number or no such radix;
    // values out of range end at the limit of the type.
    int ToInt(int radix = 10) const noexcept;
    unsigned int ToUInt(int radix = 10) const noexcept;

    // Writable buffer for at least `length` characters and a NUL, holding the present text. Valid until
    // ReleaseBuffer or any other change. ReleaseBuffer takes over what was written: `length` characters, or up to
    // the first NUL.
    wchar_t* GetBuffer(int length);
    void ReleaseBuffer(int length = -1);

    // 8-bit copy of the text in storage of the string, valid until the next change of the string.
    char const* GetAnsiBuffer() const;

    // The end-of-line sequence of the system.
    static wchar_t const* const TuEndOfLine;

private:
    // Head of a counted buffer; the characters stand right behind it.
    struct Buffer {
        std::atomic<int> references; // number of strings, or one of the two marks below
        int length;
        int capacity;
        mutable std::atomic<char*> narrow; // the 8-bit copy, made at first request

        wchar_t* text() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    };
    struct EmptyBuffer {
        Buffer head;
        wchar_t text[2];
    };
    // The shared empty buffer is neither counted nor freed.
    static constexpr int kImmortal = -1;
    // Between GetBuffer and the next change a buffer has one owner, and copies of the string are deep.
    static constexpr int kLocked = -2;

    static EmptyBuffer s_empty;

    static Buffer* allocate(int capacity);
    static void destroy(Buffer* buffer) noexcept;
    static void release(Buffer* buffer) noexcept {
        int const references = buffer->references.load(std::memory_order_relaxed);
        if (references == kImmortal) {
            return;
        }
        if (references == kLocked || buffer->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            destroy(buffer);
        }
    }
    bool isOwn() const noexcept;
    void assign(std::wstring_view text);
    void append(std::wstring_view text);
    void appendNarrow(std::string_view text);
    wchar_t* prepareWrite();
    void setLength(int length) noexcept;

    Buffer* m_buffer;
};

// Exact comparison, case included; non-zero for true. A null text equals the empty string.
FLOWMERE_API unsigned char operator==(TuString const& left, TuString const& right) noexcept;
FLOWMERE_API unsigned char operator==(TuString const& left, wchar_t const* right) noexcept;
FLOWMERE_API unsigned char operator==(wchar_t const* left, TuString const& right) noexcept;
FLOWMERE_API unsigned char operator!=(TuString const& left, TuString const& right) noexcept;
FLOWMERE_API unsigned char operator!=(TuString const& left, wchar_t const* right) noexcept;
FLOWMERE_API unsigned char operator!=(wchar_t const* left, TuString const& right) noexcept;
// Order of Compare, for sorted containers.
FLOWMERE_API bool operator<(TuString const& left, TuString const& right) noexcept;
FLOWMERE_API bool operator<(TuString const& left, wchar_t const* right) noexcept;
FLOWMERE_API bool operator<(wchar_t const* left, TuString const& right) noexcept;

FLOWMERE_API TuString operator+(TuString const& left, TuString const& right);
FLOWMERE_API TuString operator+(TuString const& left, wchar_t const* right);
FLOWMERE_API TuString operator+(wchar_t const* left, TuString const& right);
FLOWMERE_API TuString operator+(TuString const& left, wchar_t right);
FLOWMERE_API TuString operator+(wchar_t left, TuString const& right);
// A number is no text: format it.
TuString operator+(TuString const& left, int right) = delete;
TuString operator+(int left, TuString const& right) = delete;

// Decimal number at the start of a text: leading white space, a sign, digits (and for the float a point and an
// exponent). 0 for a text that is no number and for null; integers out of range end at the limit of the type, a float
// out of range becomes infinite or 0. The locale plays no part.
FLOWMERE_API int TuStrToIntW(wchar_t const* text) noexcept;
FLOWMERE_API std::int64_t TuStrToInt64W(wchar_t const* text) noexcept;
FLOWMERE_API float TuStrToFloatW(wchar_t const* text);

template <>
struct std::hash<TuString> {
    std::size_t operator()(TuString const& text) const noexcept { return std::hash<std::wstring_view>{}(text.View()); }
};
