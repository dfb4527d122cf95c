#include "XmlTestSupport.h"
#include "flowmere/xml/XmlText.h"

#include <string>

using flowmere::DomText;
using flowmere::WideText;

namespace {

std::u16string dom(std::wstring_view text) {
    DomText const converted(text);
    EXPECT_EQ(u'\0', converted.text()[converted.length()]);
    return std::u16string(flowmere::xmlView(converted.text()));
}

std::wstring wide(std::u16string_view text) {
    WideText const converted(text);
    EXPECT_EQ(L'\0', converted.text()[converted.view().size()]);
    return std::wstring(converted.view());
}

} // namespace

TEST(XmlText, PlainTextsGoBothWays) {
    for (int length : {0, 1, 5, 190, 191, 192, 193, 255, 256, 257, 5000}) {
        std::wstring text;
        for (int i = 0; i < length; ++i) {
            text += static_cast<wchar_t>(L' ' + i % 95);
        }
        EXPECT_EQ(text, wide(dom(text))) << length;
        EXPECT_EQ(static_cast<std::size_t>(length), dom(text).size());
    }
}

TEST(XmlText, LettersBeyondTheFirstPlaneTakeTwoUnits) {
    std::wstring text;
    for (int i = 0; i < 300; ++i) {
        text += L'\U0001F600';
        EXPECT_EQ(text, wide(dom(text)));
    }
    EXPECT_EQ(600U, dom(text).size());
    EXPECT_EQ(u"\U0010FFFF", dom(L"\U0010FFFF"));
    EXPECT_EQ(L"\U0010FFFF", wide(u"\U0010FFFF"));
    EXPECT_EQ(u"\uD7FF\uE000\uFFFD", dom(L"\uD7FF\uE000\uFFFD"));
}

TEST(XmlText, ControlCharactersAreDroppedButForThree) {
    for (wchar_t c = 1; c < 0x20; ++c) {
        std::u16string const expected = c == L'\t' || c == L'\n' || c == L'\r'
                                            ? std::u16string(u"a") + static_cast<char16_t>(c) + u"b"
                                            : std::u16string(u"ab");
        EXPECT_EQ(expected, dom(std::wstring(L"a") + c + L"b")) << static_cast<int>(c);
    }
    EXPECT_EQ(u"ab", dom(std::wstring_view(L"a\0b", 3)));
    EXPECT_EQ(u"ab", dom(std::wstring(L"a") + wchar_t(0xFFFE) + wchar_t(0xFFFF) + L"b"));
    EXPECT_EQ(u"\x7F\x85\xA0", dom(L"\x7F\x85\xA0"));
}

TEST(XmlText, SurrogatesAreReplaced) {
    for (unsigned int const c : {0xD800U, 0xDBFFU, 0xDC00U, 0xDC80U, 0xDCFFU, 0xDFFFU, 0x110000U, 0x80000000U}) {
        EXPECT_EQ(u"a\uFFFDb", dom(std::wstring(L"a") + static_cast<wchar_t>(c) + L"b")) << c;
    }
    for (char16_t const c : {char16_t(0xD800), char16_t(0xDBFF), char16_t(0xDC00), char16_t(0xDFFF)}) {
        EXPECT_EQ(L"a\uFFFDb", wide(std::u16string(u"a") + c + u"b")) << static_cast<int>(c);
        EXPECT_EQ(L"a\uFFFD", wide(std::u16string(u"a") + c)) << static_cast<int>(c);
    }
}

TEST(XmlText, NullIsTheEmptyText) {
    EXPECT_EQ(u"", flowmere::xmlView(nullptr));
    EXPECT_STREQ(L"", WideText(static_cast<XMLCh const*>(nullptr)).text());
    EXPECT_EQ(0U, DomText(static_cast<wchar_t const*>(nullptr)).length());
}

TEST(XmlText, ComparesWithoutCaseInAsciiOnly) {
    EXPECT_TRUE(flowmere::equalsNoCase(u"TrUe", u"true"));
    EXPECT_TRUE(flowmere::equalsNoCase(u"", u""));
    EXPECT_FALSE(flowmere::equalsNoCase(u"true ", u"true"));
    EXPECT_FALSE(flowmere::equalsNoCase(u"\u00C9", u"\u00E9"));
    EXPECT_FALSE(flowmere::equalsNoCase(u"@[", u"`{"));
    EXPECT_TRUE(flowmere::equals(u"Name", u"Name"));
    EXPECT_FALSE(flowmere::equals(u"Name", u"name"));
    EXPECT_TRUE(flowmere::equals(nullptr, u""));
}
