#include "flowmere/workflow/WorkflowValues.h"

#include "flowmere/foundation/TuDate.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string textOf(TuDate const& date) {
    return std::to_string(date.getYear()) + "-" + std::to_string(date.getMonth()) + "-" +
           std::to_string(date.getDay()) + " " + std::to_string(date.getHour()) + ":" +
           std::to_string(date.getMinute()) + ":" + std::to_string(date.getSecond());
}

struct DateRow {
    char16_t const* text;
    bool withTime;
    bool isDate;
    char const* date;
};

constexpr char const* kNone = "0-0-0 0:0:0";

constexpr DateRow kDates[] = {
    {u"5/3/2024", false, true, "2024-3-5 0:0:0"},
    {u"05/03/2024", false, true, "2024-3-5 0:0:0"},
    {u"31/12/1999", false, true, "1999-12-31 0:0:0"},
    {u"5/3/2024T10:20:30", false, true, "2024-3-5 0:0:0"}, // the time is not asked for
    {u"5/3/2024T10:20:30", true, true, "2024-3-5 10:20:30"},
    {u"5/3/2024", true, true, "2024-3-5 0:0:0"},
    {u"5/3/2024T10", true, true, "2024-3-5 10:0:0"},
    {u"5/3/2024T10:20", true, true, "2024-3-5 10:20:0"},
    {u"5/3/2024T", true, true, "2024-3-5 0:0:0"},
    {u"5/3/2024T10-20-30", true, true, "2024-3-5 10:0:0"},
    {u"5/3/2024 10:20:30", true, true, "2024-3-5 0:0:0"},
    {u" 5/ 3/ 2024", false, true, "2024-3-5 0:0:0"},
    {u"\t5/3/2024 or so", false, true, "2024-3-5 0:0:0"},
    {u"99/77/5", false, true, "5-77-99 0:0:0"}, // nothing is checked against a calendar
    {u"-5/+3/-2024", false, true, "-2024-3--5 0:0:0"},
    {u"99999999999999999999/3/99999", false, true, "32767-3-32767 0:0:0"},
    {u"-99999999999999999999/3/2024", false, true, "2024-3--32767 0:0:0"},
    {u"5/3/2024T99999:99999999999999999999:1", true, true, "2024-3-5 32767:32767:1"},
    {u"", false, true, kNone},
    {u"", true, true, kNone},
    {u" ", false, false, kNone},
    {u"5", false, false, kNone},
    {u"5/3", false, false, kNone},
    {u"5/3/", false, false, kNone},
    {u"5/3/x", false, false, kNone},
    {u"5 /3/2024", false, false, kNone},
    {u"2024-03-05", false, false, kNone},
    {u"20 seconds", true, false, kNone},
    {u"-/3/2024", false, false, kNone},
    {u"tomorrow", false, false, kNone},
    {u"T10:20:30", true, false, kNone},
};

} // namespace

TEST(WorkflowValues, DatesAreReadInTheirOneForm) {
    for (DateRow const& row : kDates) {
        SCOPED_TRACE(std::u16string(row.text).size());
        TuDate date;
        date.setDate(1, 1, 1, 1, 1, 1);
        EXPECT_EQ(flowmere::readWorkflowDate(row.text, row.withTime, date), row.isDate) << row.date;
        EXPECT_EQ(textOf(date), row.date);
    }
}

namespace {

struct SizeRow {
    char16_t const* text;
    bool isWhole;
    int width;
    int height;
};

constexpr SizeRow kSizes[] = {
    {u"{width:640,height:480}", true, 640, 480},
    {u"{width:-1,height:0}", true, -1, 0},
    {u"{width: 640, height: 480 }", true, 640, 480},
    {u"a:1,b:2,c:3x", true, 1, 3},
    {u"{width:99999999999,height:-99999999999}", true, 2147483647, -2147483647 - 1},
    {u"640,480", false, 0, 0},                  // no colon
    {u"{width:640 height:480}", false, 0, 480}, // no comma
    {u",{width:640:480}", false, 0, 480},       // the comma comes first
    {u"{width:640,480}", false, 640, 640},      // one colon stands in front of both
    {u":", false, 0, 0},
    {u",", false, 0, 0},
    {u"x", false, 0, 0},
    {u":,", false, 0, 0},
    {u"::", false, 0, 0},
    {u"{width:,height:}", false, 0, 0},
    {u"{width:wide,height:high}", false, 0, 0},
    {u"", false, 0, 0},
};

} // namespace

TEST(WorkflowValues, SizesOfFormsMayLackEitherPart) {
    int number = 0;
    for (SizeRow const& row : kSizes) {
        SCOPED_TRACE(number++);
        int width = 7;
        int height = 7;
        EXPECT_EQ(flowmere::readFormSize(row.text, width, height), row.isWhole);
        EXPECT_EQ(width, row.width);
        EXPECT_EQ(height, row.height);
    }
}

TEST(WorkflowValues, NumbersStartWithADigitBehindSignAndPoint) {
    for (char16_t const* const text : {u"1", u"-1", u"+1", u" 1", u"\n-.5", u".5", u"1x", u"007"})
        EXPECT_TRUE(flowmere::startsWithNumber(text));
    for (char16_t const* const text : {u"", u" ", u"-", u"+", u".", u"-.", u"x1", u"--1", u"inf"})
        EXPECT_FALSE(flowmere::startsWithNumber(text));
}

TEST(WorkflowValues, BlankTextsHoldNothingButWhiteSpace) {
    for (char16_t const* const text : {u"", u" ", u"\t\n\v\f\r "})
        EXPECT_TRUE(flowmere::isBlank(text));
    for (char16_t const* const text : {u"x", u" x ", u"\u00A0"})
        EXPECT_FALSE(flowmere::isBlank(text));
}
