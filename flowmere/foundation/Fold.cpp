#include "flowmere/foundation/Fold.h"

#include <algorithm>
#include <cstdint>
#include <locale.h>
#include <wctype.h>

namespace flowmere {

namespace {

wchar_t foldAscii(wchar_t character) noexcept {
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + (L'a' - L'A')) : character;
}

// Beyond ASCII, by a locale of our own: the host may set the process to any other. Where that locale is missing the
// character stays as it is.
#if defined(_WIN32)
wchar_t foldOther(wchar_t character) noexcept {
    static _locale_t const locale = _create_locale(LC_CTYPE, ".UTF-8");
    return locale == nullptr ? character : static_cast<wchar_t>(_towlower_l(character, locale));
}
#else
wchar_t foldOther(wchar_t character) noexcept {
    static locale_t const locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
    return locale == locale_t() ? character : static_cast<wchar_t>(towlower_l(static_cast<wint_t>(character), locale));
}
#endif

} // namespace

wchar_t foldCase(wchar_t character) noexcept {
    return static_cast<std::uint32_t>(character) < 0x80 ? foldAscii(character) : foldOther(character);
}

std::wstring foldCase(std::wstring_view text) {
    std::wstring folded(text);
    for (wchar_t& character : folded) {
        character = foldCase(character);
    }
    return folded;
}

int compareNoCase(std::wstring_view left, std::wstring_view right) noexcept {
    std::size_t const common = std::min(left.size(), right.size());
    for (std::size_t index = 0; index < common; ++index) {
        if (left[index] == right[index]) {
            continue;
        }
        wchar_t const leftCharacter = foldCase(left[index]);
        wchar_t const rightCharacter = foldCase(right[index]);
        if (leftCharacter != rightCharacter) {
            return leftCharacter < rightCharacter ? -1 : 1;
        }
    }
    if (left.size() == right.size()) {
        return 0;
    }
    return left.size() < right.size() ? -1 : 1;
}

bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept {
    return left.size() == right.size() && compareNoCase(left, right) == 0;
}

std::size_t FoldedHash::operator()(std::wstring_view text) const noexcept {
    // FNV-1a over the folded characters: no copy of the text is made.
    std::uint64_t hash = 14695981039346656037ULL;
    for (wchar_t const character : text) {
        hash = (hash ^ static_cast<std::uint32_t>(foldCase(character))) * 1099511628211ULL;
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32));
}

} // namespace flowmere
