#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace flowmere {

// The one case folding of the system: simple lower-casing, independent of the locale. Two texts are equal without
// case exactly when their foldings are equal, so foldings serve as keys.
wchar_t foldCase(wchar_t character) noexcept;
std::wstring foldCase(std::wstring_view text);

// Order of the folded texts: 0 for equal, else below or above 0.
int compareNoCase(std::wstring_view left, std::wstring_view right) noexcept;
bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept;

// For hash tables with texts as keys that compare without case. The keys keep their case.
struct FoldedHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const noexcept;
};

struct FoldedEqual {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept { return equalNoCase(left, right); }
};

// For hash tables with texts as keys that compare exactly.
struct ExactHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const noexcept { return std::hash<std::wstring_view>{}(text); }
};

struct ExactEqual {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept { return left == right; }
};

} // namespace flowmere
