#include "flowmere/foundation/TuDate.h"

void TuDate::setDate(short year, short month, short day, short hour, short minute, short second) noexcept {
    m_year = year;
    m_month = month;
    m_day = day;
    m_hour = hour;
    m_minute = minute;
    m_second = second;
}

bool TuDate::IsEmpty() const noexcept {
    return m_year == 0 && m_month == 0 && m_day == 0 && m_hour == 0 && m_minute == 0 && m_second == 0;
}

long long TuDate::toSerial() const noexcept {
    long long serial = m_year;
    for (short const field : {m_month, m_day, m_hour, m_minute, m_second}) {
        serial = serial * 100 + field;
    }
    return serial;
}

TuString TuDate::toText() const {
    TuString text;
    if (!IsEmpty()) {
        text.Format(L"%d/%d/%d", m_day, m_month, m_year);
    }
    return text;
}

bool operator==(TuDate const& left, TuDate const& right) noexcept {
    return left.toSerial() == right.toSerial();
}

bool operator!=(TuDate const& left, TuDate const& right) noexcept {
    return left.toSerial() != right.toSerial();
}

bool operator<(TuDate const& left, TuDate const& right) noexcept {
    return left.toSerial() < right.toSerial();
}

bool operator>(TuDate const& left, TuDate const& right) noexcept {
    return left.toSerial() > right.toSerial();
}
