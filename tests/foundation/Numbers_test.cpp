#include "flowmere/foundation/Numbers.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cwchar>
#include <limits>
#include <string>

using namespace flowmere;

TEST(Numbers, TellsANumberFromNone) {
    EXPECT_EQ(parseInteger(L"0"), 0);
    EXPECT_EQ(parseInteger(L" -0x"), 0);
    EXPECT_FALSE(parseInteger(L""));
    EXPECT_FALSE(parseInteger(L"  "));
    EXPECT_FALSE(parseInteger(L"x1"));
    EXPECT_FALSE(parseInteger(L"+-1"));
    EXPECT_FALSE(parseInteger(L"\u0661"));
    EXPECT_EQ(parseDouble(L"0"), 0.0);
    EXPECT_FALSE(parseDouble(L""));
    EXPECT_FALSE(parseDouble(L"."));
    EXPECT_FALSE(parseDouble(L"-e5"));
    EXPECT_FALSE(parseDouble(L"inf"));
    EXPECT_FALSE(parseDouble(L"nan"));
}

TEST(Numbers, IntegersEndAtTheLimits) {
    EXPECT_EQ(parseInteger(L"9223372036854775807"), INT64_MAX);
    EXPECT_EQ(parseInteger(L"9223372036854775808"), INT64_MAX);
    EXPECT_EQ(parseInteger(L"-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(parseInteger(L"-9223372036854775809"), INT64_MIN);
    EXPECT_EQ(parseInteger(L"ffffffffffffffffff", 16), INT64_MAX);
    EXPECT_EQ(parseInteger(std::wstring(1000, L'9')), INT64_MAX);
    EXPECT_EQ(saturateToInt(INT64_MAX), INT_MAX);
    EXPECT_EQ(saturateToInt(INT64_MIN), INT_MIN);
    EXPECT_EQ(saturateToInt(-7), -7);
    EXPECT_EQ(saturateToUInt(-1), 0U);
    EXPECT_EQ(saturateToUInt(INT64_MAX), UINT_MAX);
    EXPECT_EQ(saturateToUInt(4294967295LL), UINT_MAX);
}

TEST(Numbers, ReadsDecimalNumbers) {
    struct Case {
        wchar_t const* text;
        double value;
    };
    Case const cases[] = {
        {L"1", 1.0},
        {L"-1.5", -1.5},
        {L" \t+2.25", 2.25},
        {L".5", 0.5},
        {L"5.", 5.0},
        {L"1e3", 1000.0},
        {L"1E+3", 1000.0},
        {L"1e-3", 0.001},
        {L"1e", 1.0},
        {L"1e+", 1.0},
        {L"1.5 inch", 1.5},
        {L"1,5", 1.0},
        {L"0x10", 0.0},
        {L"1.2.3", 1.2},
        {L"0.1", 0.1},
        {L"123456.789", 123456.789},
        {L"1e400", HUGE_VAL},
        {L"-1e400", -HUGE_VAL},
        {L"1e-400", 0.0},
        {L"1e99999999999999999999", HUGE_VAL},
        {L"1e-99999999999999999999", 0.0},
        {L"0e99999", 0.0},
        {L"0.0001e400", HUGE_VAL},
    };
    for (Case const& one : cases) {
        EXPECT_EQ(parseDouble(one.text), one.value) << std::string(one.text, one.text + std::wcslen(one.text));
    }
}

TEST(Numbers, ReadsLongNumbersWhole) {
    EXPECT_EQ(parseDouble(std::wstring(400, L'1')), HUGE_VAL);
    EXPECT_EQ(parseDouble(L"0." + std::wstring(400, L'0') + L"1"), 0.0);
    EXPECT_EQ(parseDouble(L"1." + std::wstring(10000, L'0')), 1.0);
}

TEST(Numbers, FloatsAreRoundedOnce) {
    // Through a double this value would be rounded twice and end one step lower.
    EXPECT_EQ(parseFloat(L"1.00000017881393432617187499"), 1.00000011920928955078125F);
    EXPECT_EQ(parseFloat(L"0.1"), 0.1F);
    EXPECT_EQ(parseFloat(L"1e39"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(parseFloat(L"-1e39"), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(parseFloat(L"1e-60"), 0.0F);
}

TEST(Numbers, PrintsFixedDigitsWithAPoint) {
    EXPECT_EQ(formatFixed(1.5, 3), "1.500");
    EXPECT_EQ(formatFixed(-0.0004, 3), "-0.000");
    EXPECT_EQ(formatFixed(2.0, 0), "2");
    EXPECT_EQ(formatFixed(2.0, -1), "2");
    EXPECT_EQ(formatFixed(1234567.891, 2), "1234567.89");
    EXPECT_EQ(formatFixed(HUGE_VAL, 2), "inf");
    EXPECT_EQ(formatFixedWide(0.25, 2), L"0.25");
}
