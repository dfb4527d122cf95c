#include "flowmere/foundation/Fold.h"

#include <gtest/gtest.h>

#include <string>
#include <unordered_map>

using flowmere::compareNoCase;
using flowmere::equalNoCase;
using flowmere::foldCase;

TEST(Fold, LowersAsciiLettersAndNothingElseThere) {
    for (wchar_t character = 0; character < 128; ++character) {
        bool const isUpper = character >= L'A' && character <= L'Z';
        EXPECT_EQ(foldCase(character), isUpper ? static_cast<wchar_t>(character + 32) : character);
    }
}

TEST(Fold, LowersLettersBeyondAsciiWithoutALocale) {
    EXPECT_EQ(foldCase(std::wstring_view(L"\u00C4\u00D6\u00DC \u0416 \u03A9")), L"\u00E4\u00F6\u00FC \u0436 \u03C9");
    EXPECT_EQ(foldCase(L'\u00DF'), L'\u00DF');
    EXPECT_EQ(foldCase(L'\u20AC'), L'\u20AC');
}

TEST(Fold, KeepsLosslessBytes) {
    for (unsigned int value = 0xDC80; value <= 0xDCFF; ++value) {
        EXPECT_EQ(foldCase(static_cast<wchar_t>(value)), static_cast<wchar_t>(value));
    }
}

TEST(Fold, ComparesTheFoldings) {
    EXPECT_EQ(compareNoCase(L"Block", L"bLOCK"), 0);
    EXPECT_EQ(compareNoCase(L"", L""), 0);
    EXPECT_LT(compareNoCase(L"a", L"B"), 0);
    EXPECT_GT(compareNoCase(L"B", L"a"), 0);
    EXPECT_LT(compareNoCase(L"AB", L"abc"), 0);
    EXPECT_GT(compareNoCase(L"abc", L"AB"), 0);
    // "_" stands between the upper and the lower letters: the lower ones count.
    EXPECT_GT(compareNoCase(L"Z", L"_"), 0);
    EXPECT_TRUE(equalNoCase(L"\u00C4", L"\u00E4"));
    EXPECT_FALSE(equalNoCase(L"a", L"aa"));
}

TEST(Fold, KeysFindTheirEntryWithoutCase) {
    std::unordered_map<std::wstring, int, flowmere::FoldedHash, flowmere::FoldedEqual> table;
    table.emplace(L"First Block", 1);
    EXPECT_FALSE(table.emplace(L"FIRST BLOCK", 2).second);
    auto const found = table.find(std::wstring_view(L"first block"));
    ASSERT_NE(found, table.end());
    EXPECT_EQ(found->second, 1);
    EXPECT_EQ(found->first, L"First Block");
}

TEST(Fold, ExactKeysDistinguishCase) {
    std::unordered_map<std::wstring, int, flowmere::ExactHash, flowmere::ExactEqual> table;
    table.emplace(L"a", 1);
    EXPECT_TRUE(table.emplace(L"A", 2).second);
    EXPECT_EQ(table.find(std::wstring_view(L"A"))->second, 2);
}
