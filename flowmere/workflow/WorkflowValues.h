#pragma once

#include <string_view>

class TuDate;

// Values of a workflow definition whose forms are its own. Numbers end at the limits of their type.
namespace flowmere {

bool isBlank(std::u16string_view text) noexcept;

// Day, month and year, joined by slashes, and with `withTime` behind a "T" hour, minute and second as far as they are
// there. False for a text that is no such date, which counts as the empty date, as the empty text does.
bool readWorkflowDate(std::u16string_view text, bool withTime, TuDate& out) noexcept;

// Whether a number stands at the start; the getters of numbers read anything else as 0.
bool startsWithNumber(std::u16string_view text) noexcept;

// Size of a form: the width stands between the first colon and the first comma, the height between the last colon and
// the closing character. A part that is missing counts as 0, and makes the result false.
bool readFormSize(std::u16string_view text, int& width, int& height) noexcept;

} // namespace flowmere
