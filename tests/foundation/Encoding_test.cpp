#include "flowmere/foundation/Encoding.h"

#include <gtest/gtest.h>

#include <string>

using flowmere::fromUtf8;
using flowmere::toUtf8;

TEST(Encoding, WellFormedTextsTranslateBothWays) {
    struct Case {
        std::string bytes;
        std::wstring text;
    };
    Case const cases[] = {
        {"", L""},
        {"plain ASCII\r\n\x7F", L"plain ASCII\r\n\x7F"},
        {"\xC2\x80 \xDF\xBF", L"\x80 \x7FF"},
        {"\xE0\xA0\x80 \xEF\xBF\xBF", L"\x800 \xFFFF"},
        {"\xED\x9F\xBF \xEE\x80\x80", L"\xD7FF \xE000"},
        {"\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF", L"\U00010000 \U0010FFFF"},
        {"\xEF\xBB\xBFmark", L"\xFEFFmark"},
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
    };
    for (Case const& one : cases) {
        EXPECT_EQ(fromUtf8(one.bytes), one.text);
        EXPECT_EQ(toUtf8(one.text), one.bytes);
    }
}

TEST(Encoding, BytesThatAreNoUtf8BecomeLosslessCharacters) {
    struct Case {
        std::string bytes;
        std::wstring text;
    };
    Case const cases[] = {
        {"\x80", L"\xDC80"},
        {"\xFF", L"\xDCFF"},
        {"a\xE4z", L"a\xDCE4z"},
        {"\xC0\x80", L"\xDCC0\xDC80"},
        {"\xE0\x80\x80", L"\xDCE0\xDC80\xDC80"},
        {"\xF0\x80\x80\x80", L"\xDCF0\xDC80\xDC80\xDC80"},
        {"\xED\xA0\x80", L"\xDCED\xDCA0\xDC80"},
        {"\xED\xB2\x80", L"\xDCED\xDCB2\xDC80"},
        {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80"},
        {"\xF5", L"\xDCF5"},
        {"\xC3", L"\xDCC3"},
        {"\xE2\x82", L"\xDCE2\xDC82"},
        {"\xF0\x9F\x98", L"\xDCF0\xDC9F\xDC98"},
        {"\xC3\xC3\xA4", L"\xDCC3\xE4"},
    };
    for (Case const& one : cases) {
        EXPECT_EQ(fromUtf8(one.bytes), one.text);
        EXPECT_EQ(toUtf8(one.text), one.bytes);
    }
}

TEST(Encoding, AnyBytesComeBackAsTheyWere) {
    unsigned int state = 12345;
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        for (int index = 0; index < 12; ++index) {
            state = state * 1103515245U + 12345U;
            bytes.push_back(static_cast<char>(static_cast<unsigned char>(state >> 16)));
        }
        EXPECT_EQ(toUtf8(fromUtf8(bytes)), bytes);
    }
}

TEST(Encoding, OtherSurrogatesAndValuesOutOfRangeGoOutAsQuestionMarks) {
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "?");
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xDC7F))), "?");
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xDD00))), "?");
    EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xDFFF))), "?");
    if constexpr (sizeof(wchar_t) == 4) {
        EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), "?");
        EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(-1))), "?");
    }
}

TEST(Encoding, NullTextGivesNoBytes) {
    EXPECT_EQ(toUtf8(static_cast<wchar_t const*>(nullptr)), "");
    EXPECT_EQ(toUtf8(L"text"), "text");
}
