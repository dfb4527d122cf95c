#pragma once

#include <cstdarg>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace flowmere {

// Numbers in texts, always with a point and never by the locale. The parsing functions take leading white space, a
// sign and the number, ignore what follows, and give nothing when there is no number at the start.

// Integer of the radix 2 to 36; 16 takes the prefix 0x, 0 goes by the prefix as in C. Ends at the limits of the type.
std::optional<std::int64_t> parseInteger(std::wstring_view text, int radix = 10) noexcept;
// Decimal number with point and exponent; out of range it is infinite or 0. Words such as "inf" are no numbers.
std::optional<double> parseDouble(std::wstring_view text);
// The same, rounded once to single precision.
std::optional<float> parseFloat(std::wstring_view text);

// `value` cut to the limits of the 32-bit types.
int saturateToInt(std::int64_t value) noexcept;
unsigned int saturateToUInt(std::int64_t value) noexcept;

// `value` with `digits` digits behind the point, as "%.<digits>f" gives it.
std::string formatFixed(double value, int digits);
// The same as wide text.
std::wstring formatFixedWide(double value, int digits);

// The printf-style text as TuString::Format makes it.
std::wstring formatWide(wchar_t const* format, va_list arguments);

} // namespace flowmere
