#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"

// A calendar date with time. A new one is empty: all six fields 0, which is the date that stands for "not set".
class FLOWMERE_API TuDate {
public:
    // Stores the six fields as they are; nothing is checked.
    void setDate(short year, short month, short day, short hour, short minute, short second) noexcept;

    short getYear() const noexcept { return m_year; }
    short getMonth() const noexcept { return m_month; }
    short getDay() const noexcept { return m_day; }
    short getHour() const noexcept { return m_hour; }
    short getMinute() const noexcept { return m_minute; }
    short getSecond() const noexcept { return m_second; }

    // True when all six fields are 0.
    bool IsEmpty() const noexcept;
    // The date as one number of the decimal form yyyymmddhhmmss; 0 for the empty date.
    long long toSerial() const noexcept;
    // Day, month and year without padding, joined by slashes; the empty text for the empty date.
    TuString toText() const;

private:
    short m_year = 0;
    short m_month = 0;
    short m_day = 0;
    short m_hour = 0;
    short m_minute = 0;
    short m_second = 0;
};

// Dates compare by their serial numbers.
FLOWMERE_API bool operator==(TuDate const& left, TuDate const& right) noexcept;
FLOWMERE_API bool operator!=(TuDate const& left, TuDate const& right) noexcept;
FLOWMERE_API bool operator<(TuDate const& left, TuDate const& right) noexcept;
FLOWMERE_API bool operator>(TuDate const& left, TuDate const& right) noexcept;
