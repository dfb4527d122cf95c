#include "flowmere/workflow/WorkflowValues.h"

#include "flowmere/foundation/TuDate.h"
#include "flowmere/xml/XmlText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace flowmere {

namespace {

bool isSpace(char16_t character) noexcept {
    return character == u' ' || (character >= u'\t' && character <= u'\r');
}

bool isDigit(char16_t character) noexcept {
    return character >= u'0' && character <= u'9';
}

void skipSpace(std::u16string_view& text) noexcept {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
}

// Takes a whole number off the text, cut to 16 bits; false, and nothing taken but white space, without one.
bool takeNumber(std::u16string_view& text, short& out) noexcept {
    skipSpace(text);
    std::size_t at = 0;
    bool const isNegative = !text.empty() && text.front() == u'-';
    if (isNegative || (!text.empty() && text.front() == u'+'))
        ++at;
    if (at == text.size() || !isDigit(text[at]))
        return false;
    constexpr int kLimit = std::numeric_limits<short>::max();
    int value = 0;
    for (; at < text.size() && isDigit(text[at]); ++at)
        value = std::min(value * 10 + (text[at] - u'0'), kLimit);
    text.remove_prefix(at);
    out = static_cast<short>(isNegative ? -value : value);
    return true;
}

bool takeCharacter(std::u16string_view& text, char16_t character) noexcept {
    if (text.empty() || text.front() != character)
        return false;
    text.remove_prefix(1);
    return true;
}

} // namespace

bool isBlank(std::u16string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), isSpace);
}

bool readWorkflowDate(std::u16string_view text, bool withTime, TuDate& out) noexcept {
    out = TuDate();
    if (text.empty())
        return true;
    short day = 0;
    short month = 0;
    short year = 0;
    std::array<short, 3> time{};
    if (!takeNumber(text, day) || !takeCharacter(text, u'/') || !takeNumber(text, month) ||
        !takeCharacter(text, u'/') || !takeNumber(text, year))
        return false;
    if (withTime && takeCharacter(text, u'T')) {
        for (std::size_t part = 0; part < time.size(); ++part) {
            if ((part > 0 && !takeCharacter(text, u':')) || !takeNumber(text, time[part]))
                break;
        }
    }
    out.setDate(year, month, day, time[0], time[1], time[2]);
    return true;
}

bool startsWithNumber(std::u16string_view text) noexcept {
    skipSpace(text);
    if (!text.empty() && (text.front() == u'-' || text.front() == u'+'))
        text.remove_prefix(1);
    if (!text.empty() && text.front() == u'.')
        text.remove_prefix(1);
    return !text.empty() && isDigit(text.front());
}

bool readFormSize(std::u16string_view text, int& width, int& height) noexcept {
    constexpr auto kNone = std::u16string_view::npos;
    std::size_t const firstColon = text.find(u':');
    std::size_t const comma = text.find(u',');
    std::size_t const lastColon = text.rfind(u':');
    std::u16string_view widthText;
    std::u16string_view heightText;
    if (firstColon != kNone && comma != kNone && comma > firstColon)
        widthText = text.substr(firstColon + 1, comma - firstColon - 1);
    if (lastColon != kNone && lastColon + 1 < text.size())
        heightText = text.substr(lastColon + 1, text.size() - lastColon - 2);
    width = integerOf(widthText);
    height = integerOf(heightText);
    return firstColon != lastColon && startsWithNumber(widthText) && startsWithNumber(heightText);
}

} // namespace flowmere
