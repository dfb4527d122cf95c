#include "flowmere/foundation/Numbers.h"

#include "flowmere/foundation/Encoding.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>
#include <type_traits>

namespace flowmere {

namespace {

// Widths and precisions beyond this are cut, so that no format can ask for gigabytes.
constexpr int kLargestWidth = 1'000'000;

bool isBlank(wchar_t character) noexcept {
    return character == L' ' || (character >= L'\t' && character <= L'\r');
}

bool isDigit(wchar_t character) noexcept {
    return character >= L'0' && character <= L'9';
}

int digitValue(wchar_t character) noexcept {
    if (isDigit(character)) {
        return static_cast<int>(character - L'0');
    }
    if (character >= L'a' && character <= L'z') {
        return static_cast<int>(character - L'a') + 10;
    }
    if (character >= L'A' && character <= L'Z') {
        return static_cast<int>(character - L'A') + 10;
    }
    return INT_MAX;
}

// Takes leading white space and a sign off; true for a minus.
bool takeSign(std::wstring_view& text) noexcept {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    if (text.empty() || (text.front() != L'-' && text.front() != L'+')) {
        return false;
    }
    bool const minus = text.front() == L'-';
    text.remove_prefix(1);
    return minus;
}

// The characters of a decimal number without sign, and on which side of 1 it lies when it is far from it.
struct DecimalNumber {
    std::string characters;
    bool large = false;
};

// Moves the digits at the front over and gives their number.
std::size_t takeDigits(std::wstring_view& text, std::string& characters) {
    std::size_t count = 0;
    while (!text.empty() && isDigit(text.front())) {
        characters.push_back(static_cast<char>(text.front()));
        text.remove_prefix(1);
        ++count;
    }
    return count;
}

std::optional<DecimalNumber> scanDecimal(std::wstring_view text) {
    DecimalNumber number;
    std::size_t const whole = takeDigits(text, number.characters);
    std::size_t fraction = 0;
    if (!text.empty() && text.front() == L'.') {
        number.characters.push_back('.');
        text.remove_prefix(1);
        fraction = takeDigits(text, number.characters);
    }
    if (whole + fraction == 0) {
        return std::nullopt;
    }
    std::int64_t exponent = 0;
    if (!text.empty() && (text.front() == L'e' || text.front() == L'E')) {
        std::size_t const signLength = text.size() > 1 && (text[1] == L'+' || text[1] == L'-') ? 1 : 0;
        if (text.size() > 1 + signLength && isDigit(text[1 + signLength])) {
            exponent = parseInteger(text.substr(1)).value_or(0);
            // Beyond any range, and short of overflow in what follows.
            exponent = std::clamp<std::int64_t>(exponent, -1'000'000'000'000, 1'000'000'000'000);
            number.characters += 'e';
            number.characters += std::to_string(exponent);
        }
    }
    std::size_t const first = number.characters.find_first_of("123456789");
    if (first != std::string::npos && first < whole + fraction + 1) {
        auto const places = static_cast<std::int64_t>(whole) - static_cast<std::int64_t>(first);
        number.large = places + exponent > 0;
    }
    return number;
}

template <typename Float>
std::optional<Float> parseFloating(std::wstring_view text) {
    bool const minus = takeSign(text);
    auto const number = scanDecimal(text);
    if (!number) {
        return std::nullopt;
    }
    Float value = 0;
    char const* const begin = number->characters.data();
    auto const result = std::from_chars(begin, begin + number->characters.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        value = number->large ? std::numeric_limits<Float>::infinity() : Float(0);
    }
    return minus ? -value : value;
}

// Formatting

enum class Length { kNone, kChar, kShort, kLong, kLongLong, kMax, kSize, kDifference, kLongDouble };

struct Conversion {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zero = false;
    int width = 0;
    int precision = -1;
    Length length = Length::kNone;
    wchar_t type = L'\0';
};

// A number in its three parts, so that zeros can be put between prefix and digits.
struct NumberText {
    std::string prefix;
    std::string digits;
};

void upperCase(std::string& text) {
    for (char& character : text) {
        if (character >= 'a' && character <= 'z') {
            character = static_cast<char>(character - 'a' + 'A');
        }
    }
}

void pad(std::wstring& out, Conversion const& conversion, std::wstring_view text) {
    auto const width = static_cast<std::size_t>(conversion.width);
    std::size_t const missing = width > text.size() ? width - text.size() : 0;
    if (!conversion.left) {
        out.append(missing, L' ');
    }
    out.append(text);
    if (conversion.left) {
        out.append(missing, L' ');
    }
}

void padNumber(std::wstring& out, Conversion const& conversion, NumberText const& number, bool zeros) {
    std::string text = number.prefix;
    auto const width = static_cast<std::size_t>(conversion.width);
    std::size_t const length = number.prefix.size() + number.digits.size();
    if (zeros && !conversion.left && width > length) {
        text.append(width - length, '0');
    }
    text += number.digits;
    pad(out, conversion, fromUtf8(text));
}

std::string signOf(Conversion const& conversion, bool minus) {
    if (minus) {
        return "-";
    }
    if (conversion.plus) {
        return "+";
    }
    return conversion.blank ? " " : "";
}

std::string digitsOf(std::uintmax_t value, int radix, int precision) {
    char buffer[sizeof(value) * CHAR_BIT];
    auto const result = std::to_chars(std::begin(buffer), std::end(buffer), value, radix);
    std::string digits(buffer, result.ptr);
    if (value == 0 && precision == 0) {
        digits.clear();
    }
    auto const wanted = static_cast<std::size_t>(std::max(precision, 0));
    if (digits.size() < wanted) {
        digits.insert(0, wanted - digits.size(), '0');
    }
    return digits;
}

void formatSigned(std::wstring& out, Conversion const& conversion, std::intmax_t value) {
    // Negated as unsigned, because the smallest value has no positive counterpart.
    auto const magnitude =
        value < 0 ? std::uintmax_t(0) - static_cast<std::uintmax_t>(value) : static_cast<std::uintmax_t>(value);
    NumberText const number{signOf(conversion, value < 0), digitsOf(magnitude, 10, conversion.precision)};
    padNumber(out, conversion, number, conversion.zero && conversion.precision < 0);
}

void formatUnsigned(std::wstring& out, Conversion const& conversion, std::uintmax_t value) {
    NumberText number;
    switch (conversion.type) {
    case L'o':
        number.digits = digitsOf(value, 8, conversion.precision);
        if (conversion.alternate && (number.digits.empty() || number.digits.front() != '0')) {
            number.digits.insert(0, 1, '0');
        }
        break;
    case L'x':
    case L'X':
        number.digits = digitsOf(value, 16, conversion.precision);
        if (conversion.alternate && value != 0) {
            number.prefix = "0x";
        }
        break;
    default:
        number.digits = digitsOf(value, 10, conversion.precision);
        break;
    }
    if (conversion.type == L'X') {
        upperCase(number.prefix);
        upperCase(number.digits);
    }
    padNumber(out, conversion, number, conversion.zero && conversion.precision < 0);
}

template <typename Float>
std::string floatDigits(Float value, std::chars_format form, int precision) {
    auto const room = static_cast<std::size_t>(std::numeric_limits<Float>::max_exponent10) +
                      static_cast<std::size_t>(std::max(precision, 0)) + 64;
    std::string digits(room, '\0');
    auto const result = precision < 0 ? std::to_chars(digits.data(), digits.data() + room, value, form)
                                      : std::to_chars(digits.data(), digits.data() + room, value, form, precision);
    digits.resize(static_cast<std::size_t>(result.ptr - digits.data()));
    return digits;
}

// The alternate form keeps a point even where no digit follows it.
void keepPoint(std::string& digits) {
    if (digits.find('.') == std::string::npos) {
        digits.insert(std::min(digits.find_first_of("ep"), digits.size()), 1, '.');
    }
}

// The general form with its trailing zeros, which to_chars always cuts.
template <typename Float>
std::string generalWithZeros(Float value, int precision) {
    std::string const scientific = floatDigits(value, std::chars_format::scientific, precision - 1);
    int const exponent = std::stoi(scientific.substr(scientific.find('e') + 1));
    return precision > exponent && exponent >= -4
               ? floatDigits(value, std::chars_format::fixed, precision - 1 - exponent)
               : scientific;
}

template <typename Float>
void formatFloating(std::wstring& out, Conversion const& conversion, Float value) {
    bool const upper = conversion.type >= L'A' && conversion.type <= L'Z';
    bool const finite = std::isfinite(value);
    NumberText number{signOf(conversion, std::signbit(value)), {}};
    Float const magnitude = std::fabs(value);
    int const precision = conversion.precision < 0 ? 6 : conversion.precision;
    if (!finite) {
        number.digits = std::isnan(value) ? "nan" : "inf";
    } else {
        switch (conversion.type) {
        case L'e':
        case L'E':
            number.digits = floatDigits(magnitude, std::chars_format::scientific, precision);
            break;
        case L'g':
        case L'G':
            number.digits = conversion.alternate
                                ? generalWithZeros(magnitude, std::max(precision, 1))
                                : floatDigits(magnitude, std::chars_format::general, std::max(precision, 1));
            break;
        case L'a':
        case L'A':
            number.prefix += "0x";
            number.digits = floatDigits(magnitude, std::chars_format::hex, conversion.precision);
            break;
        default:
            number.digits = floatDigits(magnitude, std::chars_format::fixed, precision);
            break;
        }
        if (conversion.alternate) {
            keepPoint(number.digits);
        }
    }
    if (upper) {
        upperCase(number.prefix);
        upperCase(number.digits);
    }
    padNumber(out, conversion, number, conversion.zero && finite);
}

template <typename Character>
std::basic_string_view<Character> textUpTo(Character const* text, int precision) {
    if (text == nullptr) {
        return {};
    }
    std::size_t length = 0;
    while ((precision < 0 || length < static_cast<std::size_t>(precision)) && text[length] != Character()) {
        ++length;
    }
    return {text, length};
}

// The argument list, behind a type that can be handed on and stays the caller's own everywhere.
class Arguments {
public:
    explicit Arguments(va_list list) { va_copy(m_list, list); }
    ~Arguments() { va_end(m_list); }
    Arguments(Arguments const&) = delete;
    Arguments& operator=(Arguments const&) = delete;

    int takeInt() { return va_arg(m_list, int); }
    void* takePointer() { return va_arg(m_list, void*); }
    wchar_t const* takeWideText() { return va_arg(m_list, wchar_t const*); }
    char const* takeNarrowText() { return va_arg(m_list, char const*); }
    double takeDouble() { return va_arg(m_list, double); }
    long double takeLongDouble() { return va_arg(m_list, long double); }

    std::intmax_t takeSigned(Length length) {
        switch (length) {
        case Length::kChar:
            return static_cast<signed char>(va_arg(m_list, int));
        case Length::kShort:
            return static_cast<short>(va_arg(m_list, int));
        case Length::kLong:
            return va_arg(m_list, long);
        case Length::kLongLong:
        case Length::kLongDouble:
            return va_arg(m_list, long long);
        case Length::kMax:
            return va_arg(m_list, std::intmax_t);
        case Length::kSize:
            return va_arg(m_list, std::make_signed_t<std::size_t>);
        case Length::kDifference:
            return va_arg(m_list, std::ptrdiff_t);
        default:
            return va_arg(m_list, int);
        }
    }

    std::uintmax_t takeUnsigned(Length length) {
        switch (length) {
        case Length::kChar:
            return static_cast<unsigned char>(va_arg(m_list, unsigned int));
        case Length::kShort:
            return static_cast<unsigned short>(va_arg(m_list, unsigned int));
        case Length::kLong:
            return va_arg(m_list, unsigned long);
        case Length::kLongLong:
        case Length::kLongDouble:
            return va_arg(m_list, unsigned long long);
        case Length::kMax:
            return va_arg(m_list, std::uintmax_t);
        case Length::kSize:
            return va_arg(m_list, std::size_t);
        case Length::kDifference:
            return va_arg(m_list, std::make_unsigned_t<std::ptrdiff_t>);
        default:
            return va_arg(m_list, unsigned int);
        }
    }

private:
    va_list m_list;
};

// Width or precision: digits, or a star for an argument.
int takeNumber(wchar_t const*& format, Arguments& arguments) {
    if (*format == L'*') {
        ++format;
        return std::clamp(arguments.takeInt(), -kLargestWidth, kLargestWidth);
    }
    int number = 0;
    for (; isDigit(*format); ++format) {
        number = std::min(number * 10 + digitValue(*format), kLargestWidth);
    }
    return number;
}

Length takeLength(wchar_t const*& format) {
    wchar_t const first = *format;
    bool const twice = (first == L'h' || first == L'l') && format[1] == first;
    Length length = Length::kNone;
    switch (first) {
    case L'h':
        length = twice ? Length::kChar : Length::kShort;
        break;
    case L'l':
        length = twice ? Length::kLongLong : Length::kLong;
        break;
    case L'j':
        length = Length::kMax;
        break;
    case L'z':
        length = Length::kSize;
        break;
    case L't':
        length = Length::kDifference;
        break;
    case L'L':
        length = Length::kLongDouble;
        break;
    default:
        return length;
    }
    format += twice ? 2 : 1;
    return length;
}

// Reads a conversion from behind its percent sign up to its letter.
Conversion takeConversion(wchar_t const*& format, Arguments& arguments) {
    Conversion conversion;
    for (bool flags = true; flags;) {
        switch (*format) {
        case L'-':
            conversion.left = true;
            break;
        case L'+':
            conversion.plus = true;
            break;
        case L' ':
            conversion.blank = true;
            break;
        case L'#':
            conversion.alternate = true;
            break;
        case L'0':
            conversion.zero = true;
            break;
        default:
            flags = false;
            break;
        }
        format += flags ? 1 : 0;
    }
    conversion.width = takeNumber(format, arguments);
    if (conversion.width < 0) {
        conversion.left = true;
        conversion.width = -conversion.width;
    }
    if (*format == L'.') {
        ++format;
        conversion.precision = std::max(takeNumber(format, arguments), -1);
    }
    conversion.length = takeLength(format);
    conversion.type = *format;
    if (*format != L'\0') {
        ++format;
    }
    return conversion;
}

void formatCharacter(std::wstring& out, Conversion const& conversion, int character, bool isNarrow) {
    if (isNarrow) {
        char const byte = static_cast<char>(character);
        pad(out, conversion, fromUtf8({&byte, 1}));
    } else {
        auto const wide = static_cast<wchar_t>(character);
        pad(out, conversion, {&wide, 1});
    }
}

void formatText(std::wstring& out, Conversion const& conversion, Arguments& arguments, bool isNarrow) {
    if (isNarrow) {
        pad(out, conversion, fromUtf8(textUpTo(arguments.takeNarrowText(), conversion.precision)));
    } else {
        pad(out, conversion, textUpTo(arguments.takeWideText(), conversion.precision));
    }
}

// False for a letter that is no conversion.
bool formatOne(std::wstring& out, Conversion const& conversion, Arguments& arguments) {
    switch (conversion.type) {
    case L'd':
    case L'i':
        formatSigned(out, conversion, arguments.takeSigned(conversion.length));
        return true;
    case L'u':
    case L'o':
    case L'x':
    case L'X':
        formatUnsigned(out, conversion, arguments.takeUnsigned(conversion.length));
        return true;
    case L'e':
    case L'E':
    case L'f':
    case L'F':
    case L'g':
    case L'G':
    case L'a':
    case L'A':
        if (conversion.length == Length::kLongDouble) {
            formatFloating(out, conversion, arguments.takeLongDouble());
        } else {
            formatFloating(out, conversion, arguments.takeDouble());
        }
        return true;
    case L'c':
        formatCharacter(out, conversion, arguments.takeInt(), conversion.length == Length::kShort);
        return true;
    case L'C':
        formatCharacter(out, conversion, arguments.takeInt(), conversion.length != Length::kLong);
        return true;
    case L's':
        formatText(out, conversion, arguments, conversion.length == Length::kShort);
        return true;
    case L'S':
        formatText(out, conversion, arguments, conversion.length != Length::kLong);
        return true;
    case L'p': {
        auto const address = reinterpret_cast<std::uintptr_t>(arguments.takePointer());
        padNumber(out, conversion, {"0x", digitsOf(address, 16, -1)}, false);
        return true;
    }
    case L'n':
        // The counter is passed over: a format must never write to memory.
        arguments.takePointer();
        return true;
    default:
        return false;
    }
}

} // namespace

std::optional<std::int64_t> parseInteger(std::wstring_view text, int radix) noexcept {
    constexpr auto kLargest = static_cast<std::uint64_t>(INT64_MAX);
    bool const minus = takeSign(text);
    if ((radix == 0 || radix == 16) && text.size() > 2 && text[0] == L'0' && (text[1] == L'x' || text[1] == L'X') &&
        digitValue(text[2]) < 16) {
        text.remove_prefix(2);
        radix = 16;
    } else if (radix == 0) {
        radix = !text.empty() && text.front() == L'0' ? 8 : 10;
    }
    if (radix < 2 || radix > 36 || text.empty() || digitValue(text.front()) >= radix) {
        return std::nullopt;
    }
    // The magnitude, stopping one above the largest value: that is the magnitude of the smallest.
    std::uint64_t magnitude = 0;
    for (wchar_t const character : text) {
        int const digit = digitValue(character);
        if (digit >= radix) {
            break;
        }
        auto const next = static_cast<std::uint64_t>(digit);
        auto const base = static_cast<std::uint64_t>(radix);
        magnitude = magnitude > (kLargest + 1 - next) / base ? kLargest + 1 : magnitude * base + next;
    }
    if (minus) {
        return magnitude > kLargest ? INT64_MIN : -static_cast<std::int64_t>(magnitude);
    }
    return static_cast<std::int64_t>(std::min(magnitude, kLargest));
}

std::optional<double> parseDouble(std::wstring_view text) {
    return parseFloating<double>(text);
}

std::optional<float> parseFloat(std::wstring_view text) {
    return parseFloating<float>(text);
}

int saturateToInt(std::int64_t value) noexcept {
    return static_cast<int>(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX));
}

unsigned int saturateToUInt(std::int64_t value) noexcept {
    return static_cast<unsigned int>(std::clamp<std::int64_t>(value, 0, UINT_MAX));
}

std::string formatFixed(double value, int digits) {
    return floatDigits(value, std::chars_format::fixed, std::clamp(digits, 0, kLargestWidth));
}

std::wstring formatFixedWide(double value, int digits) {
    return fromUtf8(formatFixed(value, digits));
}

std::wstring formatWide(wchar_t const* format, va_list list) {
    std::wstring out;
    if (format == nullptr) {
        return out;
    }
    Arguments arguments(list);
    while (*format != L'\0') {
        if (*format != L'%') {
            out.push_back(*format++);
            continue;
        }
        wchar_t const* const start = format++;
        if (*format == L'%') {
            out.push_back(*format++);
            continue;
        }
        Conversion const conversion = takeConversion(format, arguments);
        if (!formatOne(out, conversion, arguments)) {
            // No conversion: the characters stand for themselves.
            out.append(start, format);
        }
    }
    return out;
}

} // namespace flowmere
