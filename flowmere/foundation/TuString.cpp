#include "flowmere/foundation/TuString.h"

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/foundation/Numbers.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>
#include <string>

namespace {

using Traits = std::char_traits<wchar_t>;

constexpr std::wstring_view kBlanks = L" \t\n\v\f\r";

// Longest text whose length and growth stay within a signed 32-bit int; anything longer is cut.
constexpr std::size_t kLongestText = INT_MAX / 2;

// The text up to its first NUL.
std::wstring_view upToNul(std::wstring_view text) noexcept {
    return text.substr(0, text.find(L'\0'));
}

std::wstring_view viewOf(wchar_t const* text) noexcept {
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

std::string_view viewOf(char const* text) noexcept {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

// At most `count` characters of a text that may end earlier; 0 and below take the whole of it.
template <typename Character>
std::basic_string_view<Character> viewOf(Character const* text, int count) noexcept {
    if (text == nullptr || count <= 0) {
        return viewOf(text);
    }
    std::size_t length = 0;
    while (length < static_cast<std::size_t>(count) && text[length] != Character()) {
        ++length;
    }
    return {text, length};
}

int lengthOf(std::wstring_view text) noexcept {
    return static_cast<int>(std::min(text.size(), kLongestText));
}

int compare(std::wstring_view left, std::wstring_view right) noexcept {
    return left.compare(right);
}

} // namespace

#if defined(_WIN32)
wchar_t const* const TuString::TuEndOfLine = L"\r\n";
#else
wchar_t const* const TuString::TuEndOfLine = L"\n";
#endif

constinit TuString::EmptyBuffer TuString::s_empty{{kImmortal, 0, 0, nullptr}, {L'\0', L'\0'}};

// Buffers

TuString::Buffer* TuString::allocate(int capacity) {
    auto const size = sizeof(Buffer) + (static_cast<std::size_t>(capacity) + 1) * sizeof(wchar_t);
    auto* const buffer = ::new (::operator new(size)) Buffer{1, 0, capacity, nullptr};
    buffer->text()[0] = L'\0';
    return buffer;
}

void TuString::destroy(Buffer* buffer) noexcept {
    delete[] buffer->narrow.load(std::memory_order_relaxed);
    buffer->~Buffer();
    ::operator delete(buffer);
}

bool TuString::isOwn() const noexcept {
    int const references = m_buffer->references.load(std::memory_order_acquire);
    return references == 1 || references == kLocked;
}

void TuString::setLength(int length) noexcept {
    m_buffer->length = length;
    m_buffer->text()[length] = L'\0';
}

// Makes the buffer this string's alone, open to change, without an 8-bit copy. Not for the empty string.
wchar_t* TuString::prepareWrite() {
    if (!isOwn()) {
        Buffer* const fresh = allocate(m_buffer->length);
        Traits::copy(fresh->text(), m_buffer->text(), static_cast<std::size_t>(m_buffer->length));
        int const length = m_buffer->length;
        release(m_buffer);
        m_buffer = fresh;
        setLength(length);
    } else {
        m_buffer->references.store(1, std::memory_order_relaxed);
        delete[] m_buffer->narrow.exchange(nullptr, std::memory_order_relaxed);
    }
    return m_buffer->text();
}

void TuString::assign(std::wstring_view text) {
    int const length = lengthOf(text);
    if (length == 0) {
        Empty();
        return;
    }
    bool const locked = m_buffer->references.load(std::memory_order_relaxed) == kLocked;
    if (text.data() == m_buffer->text() && length == m_buffer->length && !locked) {
        return; // trimmed or assigned to itself without a change: a shared buffer stays shared
    }
    auto const count = static_cast<std::size_t>(length);
    if (isOwn() && m_buffer->capacity >= length) {
        Traits::move(prepareWrite(), text.data(), count);
    } else {
        Buffer* const fresh = allocate(length);
        Traits::copy(fresh->text(), text.data(), count);
        release(m_buffer);
        m_buffer = fresh;
    }
    setLength(length);
}

void TuString::append(std::wstring_view text) {
    int const oldLength = m_buffer->length;
    int const added = std::min(lengthOf(text), static_cast<int>(kLongestText) - oldLength);
    if (added <= 0) {
        return;
    }
    auto const count = static_cast<std::size_t>(added);
    int const length = oldLength + added;
    if (isOwn() && m_buffer->capacity >= length) {
        Traits::move(prepareWrite() + oldLength, text.data(), count);
    } else {
        // Room to grow only where a text already stands: most strings are set once.
        int const capacity = oldLength == 0 ? length : std::max(length, oldLength + oldLength / 2 + 8);
        Buffer* const fresh = allocate(capacity);
        Traits::copy(fresh->text(), m_buffer->text(), static_cast<std::size_t>(oldLength));
        Traits::copy(fresh->text() + oldLength, text.data(), count);
        release(m_buffer);
        m_buffer = fresh;
    }
    setLength(length);
}

void TuString::appendNarrow(std::string_view text) {
    if (!text.empty()) {
        append(flowmere::fromUtf8(text));
    }
}

// Construction and assignment

TuString::TuString(wchar_t const* text, int length) : TuString() {
    append(viewOf(text, length));
}

TuString::TuString(char const* text, int length) : TuString() {
    appendNarrow(viewOf(text, length));
}

TuString::TuString(wchar_t character) : TuString() {
    append(upToNul({&character, 1}));
}

TuString::TuString(std::wstring_view text) : TuString() {
    append(upToNul(text));
}

TuString::TuString(TuString const& other) : TuString() {
    *this = other;
}

TuString& TuString::operator=(TuString const& other) {
    int const references = other.m_buffer->references.load(std::memory_order_relaxed);
    if (references == kLocked) {
        assign(other.View());
    } else if (m_buffer != other.m_buffer) {
        if (references != kImmortal) {
            other.m_buffer->references.fetch_add(1, std::memory_order_relaxed);
        }
        release(m_buffer);
        m_buffer = other.m_buffer;
    }
    return *this;
}

TuString& TuString::operator=(TuString&& other) noexcept {
    if (this != &other) {
        release(m_buffer);
        m_buffer = other.m_buffer;
        other.m_buffer = &s_empty.head;
    }
    return *this;
}

TuString& TuString::operator=(wchar_t const* text) {
    assign(viewOf(text));
    return *this;
}

TuString& TuString::operator=(char const* text) {
    // The 8-bit text may be this string's own copy, which goes with the change.
    assign(flowmere::fromUtf8(viewOf(text)));
    return *this;
}

TuString& TuString::operator=(std::nullptr_t) {
    Empty();
    return *this;
}

// Appending

TuString& TuString::operator+=(TuString const& other) {
    if (IsEmpty()) {
        return *this = other;
    }
    append(other.View());
    return *this;
}

TuString& TuString::operator+=(wchar_t const* text) {
    append(viewOf(text));
    return *this;
}

TuString& TuString::operator+=(char const* text) {
    appendNarrow(viewOf(text));
    return *this;
}

TuString& TuString::operator+=(wchar_t character) {
    append(upToNul({&character, 1}));
    return *this;
}

TuString& TuString::Append(wchar_t const* text, int count) {
    append(viewOf(text, count));
    return *this;
}

TuString& TuString::Append(char const* text, int count) {
    appendNarrow(viewOf(text, count));
    return *this;
}

// Comparison

int TuString::Compare(TuString const& other) const noexcept {
    return compare(View(), other.View());
}

int TuString::Compare(wchar_t const* text) const noexcept {
    return compare(View(), viewOf(text));
}

int TuString::CompareNoCase(TuString const& other) const noexcept {
    return flowmere::compareNoCase(View(), other.View());
}

int TuString::CompareNoCase(wchar_t const* text) const noexcept {
    return flowmere::compareNoCase(View(), viewOf(text));
}

unsigned char operator==(TuString const& left, TuString const& right) noexcept {
    return left.View() == right.View() ? 1 : 0;
}

unsigned char operator==(TuString const& left, wchar_t const* right) noexcept {
    return left.View() == viewOf(right) ? 1 : 0;
}

unsigned char operator==(wchar_t const* left, TuString const& right) noexcept {
    return viewOf(left) == right.View() ? 1 : 0;
}

unsigned char operator!=(TuString const& left, TuString const& right) noexcept {
    return left.View() != right.View() ? 1 : 0;
}

unsigned char operator!=(TuString const& left, wchar_t const* right) noexcept {
    return left.View() != viewOf(right) ? 1 : 0;
}

unsigned char operator!=(wchar_t const* left, TuString const& right) noexcept {
    return viewOf(left) != right.View() ? 1 : 0;
}

bool operator<(TuString const& left, TuString const& right) noexcept {
    return compare(left.View(), right.View()) < 0;
}

bool operator<(TuString const& left, wchar_t const* right) noexcept {
    return compare(left.View(), viewOf(right)) < 0;
}

bool operator<(wchar_t const* left, TuString const& right) noexcept {
    return compare(viewOf(left), right.View()) < 0;
}

// Parts of the text

wchar_t TuString::GetAt(int index) const noexcept {
    return index >= 0 && index < m_buffer->length ? m_buffer->text()[index] : L'\0';
}

void TuString::Empty() noexcept {
    release(m_buffer);
    m_buffer = &s_empty.head;
}

int TuString::Find(wchar_t const* text, int start) const noexcept {
    if (text == nullptr) {
        return -1;
    }
    auto const found = View().find(text, static_cast<std::size_t>(std::max(start, 0)));
    return found == std::wstring_view::npos ? -1 : static_cast<int>(found);
}

int TuString::Find(wchar_t character, int start) const noexcept {
    auto const found = View().find(character, static_cast<std::size_t>(std::max(start, 0)));
    return found == std::wstring_view::npos ? -1 : static_cast<int>(found);
}

int TuString::ReverseFind(wchar_t character, int start) const noexcept {
    auto const from = start < 0 ? std::wstring_view::npos : static_cast<std::size_t>(start);
    auto const found = View().rfind(character, from);
    return found == std::wstring_view::npos ? -1 : static_cast<int>(found);
}

TuString TuString::Left(int count) const {
    if (count >= GetLength()) {
        return *this;
    }
    return TuString(View().substr(0, static_cast<std::size_t>(std::max(count, 0))));
}

TuString TuString::Right(int count) const {
    if (count >= GetLength()) {
        return *this;
    }
    return TuString(View().substr(static_cast<std::size_t>(GetLength() - std::max(count, 0))));
}

TuString TuString::Mid(int start) const {
    if (start <= 0) {
        return *this;
    }
    if (start >= GetLength()) {
        return TuString();
    }
    return TuString(View().substr(static_cast<std::size_t>(start)));
}

// Changes in place

int TuString::Replace(wchar_t oldCharacter, wchar_t newCharacter) {
    if (newCharacter == L'\0') {
        return Remove(oldCharacter);
    }
    auto const found = std::count(View().begin(), View().end(), oldCharacter);
    if (found > 0 && oldCharacter != newCharacter) {
        wchar_t* const text = prepareWrite();
        std::replace(text, text + m_buffer->length, oldCharacter, newCharacter);
    }
    return static_cast<int>(found);
}

int TuString::Replace(wchar_t const* oldText, wchar_t const* newText) {
    std::wstring_view const from = viewOf(oldText);
    std::wstring_view const to = viewOf(newText);
    std::wstring_view const text = View();
    if (from.empty()) {
        return 0;
    }
    auto found = text.find(from);
    if (found == std::wstring_view::npos) {
        return 0;
    }
    int count = 0;
    std::size_t done = 0;
    std::wstring result;
    result.reserve(text.size());
    for (; found != std::wstring_view::npos; found = text.find(from, done)) {
        result.append(text, done, found - done);
        result.append(to);
        done = found + from.size();
        ++count;
    }
    result.append(text, done);
    assign(result);
    return count;
}

int TuString::Remove(wchar_t character) {
    auto const found = static_cast<int>(std::count(View().begin(), View().end(), character));
    if (found == GetLength()) {
        Empty();
    } else if (found > 0) {
        wchar_t* const text = prepareWrite();
        auto* const end = std::remove(text, text + m_buffer->length, character);
        setLength(static_cast<int>(end - text));
    }
    return found;
}

void TuString::TrimLeft() {
    auto const first = View().find_first_not_of(kBlanks);
    assign(first == std::wstring_view::npos ? std::wstring_view() : View().substr(first));
}

void TuString::TrimLeft(wchar_t character) {
    auto const first = View().find_first_not_of(character);
    assign(first == std::wstring_view::npos ? std::wstring_view() : View().substr(first));
}

void TuString::TrimLeft(wchar_t const* characters) {
    auto const first = View().find_first_not_of(viewOf(characters));
    assign(first == std::wstring_view::npos ? std::wstring_view() : View().substr(first));
}

void TuString::TrimRight() {
    assign(View().substr(0, View().find_last_not_of(kBlanks) + 1));
}

void TuString::TrimRight(wchar_t character) {
    assign(View().substr(0, View().find_last_not_of(character) + 1));
}

void TuString::TrimRight(wchar_t const* characters) {
    assign(View().substr(0, View().find_last_not_of(viewOf(characters)) + 1));
}

// Formatting and numbers

void TuString::Format(wchar_t const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    FormatV(format, arguments);
    va_end(arguments);
}

void TuString::FormatV(wchar_t const* format, va_list arguments) {
    assign(upToNul(flowmere::formatWide(format, arguments)));
}

int TuString::ToInt(int radix) const noexcept {
    return flowmere::saturateToInt(flowmere::parseInteger(View(), radix).value_or(0));
}

unsigned int TuString::ToUInt(int radix) const noexcept {
    return flowmere::saturateToUInt(flowmere::parseInteger(View(), radix).value_or(0));
}

int TuStrToIntW(wchar_t const* text) noexcept {
    return flowmere::saturateToInt(TuStrToInt64W(text));
}

std::int64_t TuStrToInt64W(wchar_t const* text) noexcept {
    return flowmere::parseInteger(viewOf(text)).value_or(0);
}

float TuStrToFloatW(wchar_t const* text) {
    return flowmere::parseFloat(viewOf(text)).value_or(0.0F);
}

// Raw access

wchar_t* TuString::GetBuffer(int length) {
    int const needed = std::max(length, m_buffer->length);
    if (!isOwn() || m_buffer->capacity < needed) {
        int const present = m_buffer->length;
        Buffer* const fresh = allocate(needed);
        Traits::copy(fresh->text(), m_buffer->text(), static_cast<std::size_t>(present));
        release(m_buffer);
        m_buffer = fresh;
        m_buffer->length = present;
    } else {
        prepareWrite();
    }
    // NULs throughout, so that the text ends wherever the caller stops writing.
    std::fill(m_buffer->text() + m_buffer->length, m_buffer->text() + m_buffer->capacity + 1, L'\0');
    m_buffer->references.store(kLocked, std::memory_order_relaxed);
    return m_buffer->text();
}

void TuString::ReleaseBuffer(int length) {
    int const limit = isOwn() ? m_buffer->capacity : m_buffer->length;
    int const count = length < 0 ? limit : std::min(length, limit);
    std::wstring_view const text = upToNul({m_buffer->text(), static_cast<std::size_t>(count)});
    if (text.empty()) {
        Empty();
    } else if (!isOwn()) {
        assign(text);
    } else if (m_buffer->capacity > 2 * lengthOf(text) + 32) {
        // A generous buffer is not kept for a short text.
        Buffer* const generous = m_buffer;
        m_buffer = &s_empty.head;
        try {
            append(text);
        } catch (...) {
            m_buffer = generous;
            throw;
        }
        release(generous);
    } else {
        prepareWrite();
        setLength(lengthOf(text));
    }
}

char const* TuString::GetAnsiBuffer() const {
    if (m_buffer->length == 0) {
        return "";
    }
    char* present = m_buffer->narrow.load(std::memory_order_acquire);
    if (present == nullptr) {
        std::string const bytes = flowmere::toUtf8(View());
        auto copy = std::make_unique<char[]>(bytes.size() + 1);
        std::memcpy(copy.get(), bytes.c_str(), bytes.size() + 1);
        // Strings that share the buffer may ask at the same time; the first copy stays.
        if (m_buffer->narrow.compare_exchange_strong(present, copy.get(), std::memory_order_acq_rel)) {
            present = copy.release();
        }
    }
    return present;
}

// Concatenation

TuString operator+(TuString const& left, TuString const& right) {
    TuString result(left);
    result += right;
    return result;
}

TuString operator+(TuString const& left, wchar_t const* right) {
    TuString result(left);
    result += right;
    return result;
}

TuString operator+(wchar_t const* left, TuString const& right) {
    TuString result(left);
    result += right;
    return result;
}

TuString operator+(TuString const& left, wchar_t right) {
    TuString result(left);
    result += right;
    return result;
}

TuString operator+(wchar_t left, TuString const& right) {
    TuString result(left);
    result += right;
    return result;
}
