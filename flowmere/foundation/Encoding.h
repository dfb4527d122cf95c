#pragma once

#include <string>
#include <string_view>

namespace flowmere {

// Wide text of UTF-8 bytes. Each byte b that is no part of well-formed UTF-8 becomes the character U+DC00 + b, so that
// toUtf8 gives every input back byte for byte. A byte order mark stays as U+FEFF.
std::wstring fromUtf8(std::string_view bytes);

// UTF-8 bytes of a wide text. U+DC80 to U+DCFF go out as the single bytes they stand for; other surrogates and values
// above U+10FFFF go out as "?".
std::string toUtf8(std::wstring_view text);
// The same for a text that may be null, which gives no bytes.
std::string toUtf8(wchar_t const* text);

} // namespace flowmere
