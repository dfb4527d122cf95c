#include "flowmere/foundation/TuDate.h"

#include <gtest/gtest.h>

namespace {

TuDate dateOf(short year, short month, short day, short hour = 0, short minute = 0, short second = 0) {
    TuDate date;
    date.setDate(year, month, day, hour, minute, second);
    return date;
}

} // namespace

TEST(TuDate, NewOneIsEmpty) {
    TuDate const date;
    EXPECT_TRUE(date.IsEmpty());
    EXPECT_EQ(date.toSerial(), 0);
    EXPECT_STREQ(date.toText(), L"");
}

TEST(TuDate, StoresItsFields) {
    TuDate const date = dateOf(2024, 3, 5, 13, 59, 7);
    EXPECT_EQ(date.getYear(), 2024);
    EXPECT_EQ(date.getMonth(), 3);
    EXPECT_EQ(date.getDay(), 5);
    EXPECT_EQ(date.getHour(), 13);
    EXPECT_EQ(date.getMinute(), 59);
    EXPECT_EQ(date.getSecond(), 7);
    EXPECT_FALSE(date.IsEmpty());
    EXPECT_EQ(date.toSerial(), 20240305135907LL);
}

TEST(TuDate, ChecksNothing) {
    TuDate const date = dateOf(-1, 99, 0, 25, 61, 32767);
    EXPECT_EQ(date.getYear(), -1);
    EXPECT_EQ(date.getMonth(), 99);
    EXPECT_EQ(date.getSecond(), 32767);
}

TEST(TuDate, AllZeroIsTheEmptyDate) {
    TuDate date = dateOf(2024, 3, 5);
    date.setDate(0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(date.IsEmpty());
    EXPECT_TRUE(date == TuDate());
    EXPECT_FALSE(dateOf(0, 0, 0, 0, 0, 1).IsEmpty());
}

TEST(TuDate, PrintsDayMonthYearWithoutPadding) {
    EXPECT_STREQ(dateOf(2024, 3, 5, 12, 30, 0).toText(), L"5/3/2024");
    EXPECT_STREQ(dateOf(1999, 12, 31).toText(), L"31/12/1999");
}

TEST(TuDate, ComparesByTime) {
    TuDate const early = dateOf(2024, 3, 5, 1, 2, 3);
    TuDate const late = dateOf(2024, 3, 5, 1, 2, 4);
    EXPECT_TRUE(early < late);
    EXPECT_TRUE(late > early);
    EXPECT_TRUE(early != late);
    EXPECT_TRUE(early == dateOf(2024, 3, 5, 1, 2, 3));
    EXPECT_FALSE(early < early);
    EXPECT_TRUE(early > TuDate());
    EXPECT_TRUE(dateOf(2023, 12, 31, 23, 59, 59) < dateOf(2024, 1, 1));
}
