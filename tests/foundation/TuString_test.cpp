#include "flowmere/foundation/TuString.h"

#include "support/TestSupport.h"

#include <atomic>
#include <climits>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace {

TuString formatted(wchar_t const* format, ...) {
    TuString text;
    va_list arguments;
    va_start(arguments, format);
    text.FormatV(format, arguments);
    va_end(arguments);
    return text;
}

} // namespace

// What a new string is

TEST(TuString, IsOnePointerWide) {
    EXPECT_EQ(sizeof(TuString), sizeof(void*));
}

TEST(TuString, NewOneIsTheValidEmptyText) {
    TuString const text;
    ASSERT_NE(static_cast<wchar_t const*>(text), nullptr);
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_NE(text.IsEmpty(), 0);
}

TEST(TuString, NullTextGivesTheEmptyString) {
    wchar_t const* const wide = nullptr;
    char const* const narrow = nullptr;
    EXPECT_STREQ(TuString(wide), L"");
    EXPECT_STREQ(TuString(narrow), L"");
    EXPECT_STREQ(TuString(wide, 5), L"");
    EXPECT_STREQ(TuString(narrow, 5), L"");
    EXPECT_STREQ(TuString(nullptr), L"");
}

TEST(TuString, TakesTheWholeTextWithLengthZero) {
    EXPECT_STREQ(TuString(L"block", 0), L"block");
    EXPECT_STREQ(TuString("block", 0), L"block");
    EXPECT_STREQ(TuString(L"block", -3), L"block");
}

TEST(TuString, TakesAtMostTheLengthAndStopsAtTheEnd) {
    EXPECT_STREQ(TuString(L"block", 3), L"blo");
    EXPECT_STREQ(TuString("block", 3), L"blo");
    EXPECT_STREQ(TuString(L"block", 50), L"block");
    EXPECT_STREQ(TuString("block", 50), L"block");
    EXPECT_STREQ(TuString(L"ab\0cd", 5), L"ab");
}

TEST(TuString, WidensEightBitTextAsUtf8) {
    EXPECT_STREQ(TuString("Gr\xC3\xB6\xC3\x9F"
                          "e"),
                 L"Gr\u00F6\u00DFe");
    EXPECT_STREQ(TuString("a\xFF"
                          "b"),
                 L"a\xDCFF"
                 L"b");
}

TEST(TuString, TakesOneCharacter) {
    EXPECT_STREQ(TuString(L'x'), L"x");
    EXPECT_STREQ(TuString(L'\0'), L"");
}

TEST(TuString, IsCutAtItsFirstNul) {
    TuString const text(std::wstring_view(L"ab\0cd", 5));
    EXPECT_STREQ(text, L"ab");
    EXPECT_EQ(text.GetLength(), 2);
}

// Copies

TEST(TuString, CopiesShareTheBufferUntilOneChanges) {
    TuString const first(L"shared");
    TuString second(first);
    EXPECT_EQ(static_cast<wchar_t const*>(first), static_cast<wchar_t const*>(second));
    second += L"!";
    EXPECT_STREQ(first, L"shared");
    EXPECT_STREQ(second, L"shared!");
}

TEST(TuString, EveryChangeOfACopyLeavesTheSourceAlone) {
    TuString const source(L" a.b.a ");
    std::vector<void (*)(TuString&)> const changes = {[](TuString& text) { text = L"x"; },
                                                      [](TuString& text) { text = "x"; },
                                                      [](TuString& text) { text += L"x"; },
                                                      [](TuString& text) { text += L'x'; },
                                                      [](TuString& text) { text.Empty(); },
                                                      [](TuString& text) { text.Replace(L'a', L'c'); },
                                                      [](TuString& text) { text.Replace(L"a", L"cc"); },
                                                      [](TuString& text) { text.Remove(L'a'); },
                                                      [](TuString& text) { text.TrimLeft(); },
                                                      [](TuString& text) { text.TrimRight(); },
                                                      [](TuString& text) { text.Format(L"%d", 1); },
                                                      [](TuString& text) {
                                                          text.GetBuffer(10)[0] = L'z';
                                                          text.ReleaseBuffer();
                                                      }};
    for (auto const change : changes) {
        TuString copy(source);
        change(copy);
        EXPECT_NE(copy, source);
        EXPECT_STREQ(source, L" a.b.a ");
    }
}

TEST(TuString, AMovedFromStringIsEmpty) {
    TuString source(L"text");
    TuString target(std::move(source));
    EXPECT_STREQ(target, L"text");
    EXPECT_STREQ(source, L"");
    source = std::move(target);
    EXPECT_STREQ(source, L"text");
    EXPECT_STREQ(target, L"");
}

TEST(TuString, CopiesInManyThreadsKeepTheText) {
    TuString const shared(L"counted by many");
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&shared, &wrong] {
            for (int round = 0; round < 2000; ++round) {
                TuString copy(shared);
                if (std::string(copy.GetAnsiBuffer()) != "counted by many") {
                    ++wrong;
                }
                copy += L"!";
                if (copy != L"counted by many!") {
                    ++wrong;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_STREQ(shared, L"counted by many");
}

// Assignment

TEST(TuString, AssignsEveryKindOfText) {
    TuString text(L"old");
    EXPECT_STREQ(text = TuString(L"string"), L"string");
    EXPECT_STREQ(text = L"wide", L"wide");
    EXPECT_STREQ(text = "narrow", L"narrow");
}

TEST(TuString, AssigningANullTextEmptiesIt) {
    TuString text(L"old");
    text = static_cast<wchar_t const*>(nullptr);
    EXPECT_STREQ(text, L"");
    text = L"old";
    text = static_cast<char const*>(nullptr);
    EXPECT_STREQ(text, L"");
    text = L"old";
    text = nullptr;
    EXPECT_STREQ(text, L"");
    ASSERT_NE(static_cast<wchar_t const*>(text), nullptr);
}

TEST(TuString, AssignsAPartOfItself) {
    TuString text(L"one.two.three");
    text = static_cast<wchar_t const*>(text) + 4;
    EXPECT_STREQ(text, L"two.three");
    TuString const other(text);
    text = static_cast<wchar_t const*>(text) + 4;
    EXPECT_STREQ(text, L"three");
    EXPECT_STREQ(other, L"two.three");
    TuString& same = text;
    text = same;
    EXPECT_STREQ(text, L"three");
    text = text.GetAnsiBuffer() + 2;
    EXPECT_STREQ(text, L"ree");
}

// Appending

TEST(TuString, AppendsEveryKindOfText) {
    TuString text;
    text += TuString(L"a");
    text += L"b";
    text += "c";
    text += L'd';
    text += static_cast<wchar_t const*>(nullptr);
    text += static_cast<char const*>(nullptr);
    EXPECT_STREQ(text, L"abcd");
}

TEST(TuString, AppendsUpToACount) {
    TuString text(L"-");
    text.Append(L"wide", 2);
    text.Append("narrow", 3);
    text.Append(L"all", 0);
    text.Append("all");
    text.Append(static_cast<wchar_t const*>(nullptr), 4);
    EXPECT_STREQ(text, L"-winarallall");
}

TEST(TuString, AppendsItselfAndPartsOfItself) {
    TuString text(L"ab");
    text += text;
    EXPECT_STREQ(text, L"abab");
    for (int round = 0; round < 8; ++round) {
        text += static_cast<wchar_t const*>(text) + 1;
    }
    EXPECT_EQ(text.GetLength(), 769);
    text = L"xyz";
    text.Append(static_cast<wchar_t const*>(text) + 1, 1);
    EXPECT_STREQ(text, L"xyzy");
    text += text.GetAnsiBuffer();
    EXPECT_STREQ(text, L"xyzyxyzy");
}

TEST(TuString, GrowsOverManyAppends) {
    TuString text;
    for (int index = 0; index < 100000; ++index) {
        text += static_cast<wchar_t>(L'a' + index % 26);
    }
    ASSERT_EQ(text.GetLength(), 100000);
    EXPECT_EQ(text.GetAt(99999), static_cast<wchar_t>(L'a' + 99999 % 26));
}

TEST(TuString, PlusGivesANewString) {
    TuString const left(L"left");
    TuString const right(L"right");
    EXPECT_STREQ(left + right, L"leftright");
    EXPECT_STREQ(left + L"text", L"lefttext");
    EXPECT_STREQ(L"text" + right, L"textright");
    EXPECT_STREQ(left + L'\\' + right, L"left\\right");
    EXPECT_STREQ(L'.' + right, L".right");
    EXPECT_STREQ(left + static_cast<wchar_t const*>(nullptr), L"left");
    EXPECT_STREQ(left, L"left");
}

// Comparison

TEST(TuString, EqualityDistinguishesCase) {
    TuString const text(L"Block");
    EXPECT_TRUE(text == TuString(L"Block"));
    EXPECT_TRUE(text == L"Block");
    EXPECT_TRUE(L"Block" == text);
    EXPECT_FALSE(text == TuString(L"block"));
    EXPECT_FALSE(text == L"block");
    EXPECT_FALSE(L"block" == text);
    EXPECT_FALSE(text != TuString(L"Block"));
    EXPECT_FALSE(text != L"Block");
    EXPECT_FALSE(L"Block" != text);
    EXPECT_TRUE(text != TuString(L"block"));
    EXPECT_TRUE(text != L"block");
    EXPECT_TRUE(L"block" != text);
}

TEST(TuString, EqualityGivesAByte) {
    static_assert(std::is_same_v<decltype(TuString() == TuString()), unsigned char>);
    static_assert(std::is_same_v<decltype(TuString() != L""), unsigned char>);
    static_assert(std::is_same_v<decltype(L"" == TuString()), unsigned char>);
    EXPECT_EQ(TuString(L"a") == L"a", 1);
    EXPECT_EQ(TuString(L"a") == L"b", 0);
}

TEST(TuString, ComparesWithNullAsWithTheEmptyText) {
    wchar_t const* const null = nullptr;
    EXPECT_TRUE(TuString() == null);
    EXPECT_TRUE(TuString(L"a") != null);
    EXPECT_EQ(TuString().Compare(null), 0);
    EXPECT_GT(TuString(L"a").Compare(null), 0);
    EXPECT_EQ(TuString().CompareNoCase(null), 0);
}

TEST(TuString, ComparesInTheOrderOfTheCLibrary) {
    EXPECT_EQ(TuString(L"abc").Compare(L"abc"), 0);
    EXPECT_LT(TuString(L"abc").Compare(L"abd"), 0);
    EXPECT_GT(TuString(L"b").Compare(TuString(L"abc")), 0);
    EXPECT_LT(TuString(L"ab").Compare(TuString(L"abc")), 0);
    EXPECT_NE(TuString(L"ABC").Compare(L"abc"), 0);
}

TEST(TuString, CompareNoCaseIgnoresCase) {
    EXPECT_EQ(TuString(L"BLOCK one").CompareNoCase(L"block ONE"), 0);
    EXPECT_EQ(TuString(L"\u00C4RGER").CompareNoCase(TuString(L"\u00E4rger")), 0);
    EXPECT_LT(TuString(L"A").CompareNoCase(L"b"), 0);
    EXPECT_GT(TuString(L"abc").CompareNoCase(L"AB"), 0);
}

TEST(TuString, SortsAndHashesByContent) {
    std::map<TuString, int> sorted;
    sorted[L"b"] = 2;
    sorted[TuString(L"a")] = 1;
    sorted[L"b"] = 3;
    ASSERT_EQ(sorted.size(), 2U);
    EXPECT_STREQ(sorted.begin()->first, L"a");
    EXPECT_EQ(sorted[L"b"], 3);
    EXPECT_TRUE(TuString(L"a") < L"b");
    EXPECT_TRUE(L"a" < TuString(L"b"));
    EXPECT_FALSE(TuString(L"a") < TuString(L"a"));

    std::unordered_set<TuString> hashed{L"x", L"y", TuString(L"xz").Left(1)};
    EXPECT_EQ(hashed.size(), 2U);
}

// Parts

TEST(TuString, GivesCharactersAndNulOutside) {
    TuString const text(L"abc");
    EXPECT_EQ(text.GetAt(0), L'a');
    EXPECT_EQ(text.GetAt(2), L'c');
    EXPECT_EQ(text.GetAt(3), L'\0');
    EXPECT_EQ(text.GetAt(-1), L'\0');
    EXPECT_EQ(text.GetAt(INT_MAX), L'\0');
}

TEST(TuString, FindsTextsAndCharacters) {
    TuString const text(L"a.b.c");
    EXPECT_EQ(text.Find(L"b"), 2);
    EXPECT_EQ(text.Find(L"."), 1);
    EXPECT_EQ(text.Find(L".", 2), 3);
    EXPECT_EQ(text.Find(L'.'), 1);
    EXPECT_EQ(text.Find(L'.', 2), 3);
    EXPECT_EQ(text.Find(L'.', -7), 1);
    EXPECT_EQ(text.Find(L"a", -7), 0);
}

TEST(TuString, FindOfWhatDoesNotOccurIsBelowZero) {
    TuString const text(L"a.b.c");
    EXPECT_LT(text.Find(L"x"), 0);
    EXPECT_LT(text.Find(L'x'), 0);
    EXPECT_LT(text.Find(L"B"), 0);
    EXPECT_LT(text.Find(L".", 4), 0);
    EXPECT_LT(text.Find(L".", 99), 0);
    EXPECT_LT(text.Find(L'.', 99), 0);
    EXPECT_LT(text.Find(L'\0'), 0);
    EXPECT_LT(text.Find(static_cast<wchar_t const*>(nullptr)), 0);
}

TEST(TuString, FindOfTheEmptyTextGivesTheStartWithinTheLength) {
    TuString const text(L"abc");
    EXPECT_EQ(text.Find(L""), 0);
    EXPECT_EQ(text.Find(L"", 2), 2);
    EXPECT_EQ(text.Find(L"", 3), 3);
    EXPECT_LT(text.Find(L"", 4), 0);
    EXPECT_EQ(TuString().Find(L""), 0);
}

TEST(TuString, ReverseFindSearchesBackwards) {
    TuString const text(L"a.b.c");
    EXPECT_EQ(text.ReverseFind(L'.', -1), 3);
    EXPECT_EQ(text.ReverseFind(L'.'), 3);
    EXPECT_EQ(text.ReverseFind(L'c', -1), 4);
    EXPECT_EQ(text.ReverseFind(L'.', 3), 3);
    EXPECT_EQ(text.ReverseFind(L'.', 2), 1);
    EXPECT_EQ(text.ReverseFind(L'.', 99), 3);
    EXPECT_LT(text.ReverseFind(L'.', 0), 0);
    EXPECT_LT(text.ReverseFind(L'x'), 0);
    EXPECT_LT(TuString().ReverseFind(L'x'), 0);
}

TEST(TuString, GivesItsFirstAndLastCharacters) {
    TuString const text(L"abcde");
    EXPECT_STREQ(text.Left(2), L"ab");
    EXPECT_STREQ(text.Right(2), L"de");
    EXPECT_STREQ(text.Left(99), L"abcde");
    EXPECT_STREQ(text.Right(99), L"abcde");
    EXPECT_STREQ(text.Left(0), L"");
    EXPECT_STREQ(text.Right(0), L"");
    EXPECT_STREQ(text.Left(-1), L"");
    EXPECT_STREQ(text.Right(-1), L"");
}

TEST(TuString, MidGivesAllFromTheStart) {
    TuString const text(L"abcde");
    EXPECT_STREQ(text.Mid(2), L"cde");
    EXPECT_STREQ(text.Mid(0), L"abcde");
    EXPECT_STREQ(text.Mid(-2), L"abcde");
    EXPECT_STREQ(text.Mid(5), L"");
    EXPECT_STREQ(text.Mid(6), L"");
    EXPECT_STREQ(TuString().Mid(1), L"");
}

TEST(TuString, EmptyMakesItEmpty) {
    TuString text(L"abc");
    text.Empty();
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(text.GetLength(), 0);
    text.Empty();
    EXPECT_NE(text.IsEmpty(), 0);
}

// Changes in place

TEST(TuString, ReplacesCharacters) {
    TuString text(L"a.b.c");
    EXPECT_EQ(text.Replace(L'.', L'\\'), 2);
    EXPECT_STREQ(text, L"a\\b\\c");
    EXPECT_EQ(text.Replace(L'x', L'y'), 0);
    EXPECT_EQ(text.Replace(L'a', L'a'), 1);
    EXPECT_STREQ(text, L"a\\b\\c");
    EXPECT_EQ(text.Replace(L'\\', L'\0'), 2);
    EXPECT_STREQ(text, L"abc");
}

TEST(TuString, ReplacesTexts) {
    struct Case {
        wchar_t const* text;
        wchar_t const* from;
        wchar_t const* to;
        wchar_t const* result;
        int count;
    };
    Case const cases[] = {
        {L"one two one", L"one", L"three", L"three two three", 2},
        {L"aXbXc", L"X", L"", L"abc", 2},
        {L"aXbXc", L"X", nullptr, L"abc", 2},
        {L"aaa", L"aa", L"b", L"ba", 1},
        {L"abc", L"", L"x", L"abc", 0},
        {L"abc", nullptr, L"x", L"abc", 0},
        {L"abc", L"ABC", L"x", L"abc", 0},
        {L"abc", L"abc", L"", L"", 1},
        {L"", L"a", L"b", L"", 0},
        {L"$Value", L"$Value", L"$Value$Value", L"$Value$Value", 1},
    };
    for (Case const& one : cases) {
        TuString text(one.text);
        EXPECT_EQ(text.Replace(one.from, one.to), one.count) << flowmere::toUtf8(one.text);
        EXPECT_STREQ(text, one.result);
    }
}

TEST(TuString, ReplaceTakesTextsOfItsOwnBuffer) {
    TuString text(L"a-b");
    EXPECT_EQ(text.Replace(static_cast<wchar_t const*>(text) + 2, text), 1);
    EXPECT_STREQ(text, L"a-a-b");
}

TEST(TuString, RemovesCharacters) {
    TuString text(L"-a-b-");
    EXPECT_EQ(text.Remove(L'-'), 3);
    EXPECT_STREQ(text, L"ab");
    EXPECT_EQ(text.Remove(L'x'), 0);
    EXPECT_STREQ(text, L"ab");
    text = L"---";
    EXPECT_EQ(text.Remove(L'-'), 3);
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(text.Remove(L'-'), 0);
}

TEST(TuString, TrimsWhiteSpace) {
    TuString text(L" \t\r\n\v\fa b \t\r\n\v\f");
    text.TrimLeft();
    EXPECT_STREQ(text, L"a b \t\r\n\v\f");
    text.TrimRight();
    EXPECT_STREQ(text, L"a b");
    text = L" \u00A0 ";
    text.TrimLeft();
    text.TrimRight();
    EXPECT_STREQ(text, L"\u00A0");
    text = L"  ";
    text.TrimLeft();
    EXPECT_STREQ(text, L"");
    text = L"  ";
    text.TrimRight();
    EXPECT_STREQ(text, L"");
}

TEST(TuString, TrimsGivenCharacters) {
    TuString text(L"\\\\a\\b\\\\");
    text.TrimLeft(L'\\');
    EXPECT_STREQ(text, L"a\\b\\\\");
    text.TrimRight(L'\\');
    EXPECT_STREQ(text, L"a\\b");
    text = L"/\\a/\\";
    text.TrimLeft(L"\\/");
    EXPECT_STREQ(text, L"a/\\");
    text.TrimRight(L"\\/");
    EXPECT_STREQ(text, L"a");
    text.TrimLeft(L"");
    text.TrimRight(static_cast<wchar_t const*>(nullptr));
    EXPECT_STREQ(text, L"a");
    text.TrimRight(L'a');
    EXPECT_STREQ(text, L"");
}

TEST(TuString, TrimmingWithoutEffectKeepsTheBufferShared) {
    TuString const source(L"a");
    TuString copy(source);
    copy.TrimLeft();
    copy.TrimRight();
    EXPECT_EQ(static_cast<wchar_t const*>(copy), static_cast<wchar_t const*>(source));
}

// Formatting

TEST(TuString, FormatsWideTexts) {
    TuString text(L"old");
    text.Format(L"'%s' and %s", L"one", static_cast<wchar_t const*>(TuString(L"two")));
    EXPECT_STREQ(text, L"'one' and two");
    EXPECT_STREQ(formatted(L"%ls|%10s|%-6s|%.2s|", L"a", L"right", L"left", L"cut"), L"a|     right|left  |cu|");
    EXPECT_STREQ(formatted(L"%*s|%-*s|%.*s", 3, L"a", 3, L"b", 1, L"cd"), L"  a|b  |c");
    EXPECT_STREQ(formatted(L"%*s|", -3, L"a"), L"a  |");
    EXPECT_STREQ(formatted(L"%s", L"\u00E4\u20AC"), L"\u00E4\u20AC");
    EXPECT_STREQ(formatted(L"[%s]", static_cast<wchar_t const*>(nullptr)), L"[]");
}

TEST(TuString, FormatsEightBitTextsWhenAsked) {
    EXPECT_STREQ(formatted(L"%hs %S",
                           "Gr\xC3\xB6\xC3\x9F"
                           "e",
                           "a\xFF"),
                 L"Gr\u00F6\u00DFe a\xDCFF");
    EXPECT_STREQ(formatted(L"%hc%C", 'a', 'b'), L"ab");
}

TEST(TuString, FormatsNumbersAsC) {
    struct Case {
        TuString text;
        wchar_t const* expected;
    };
    Case const cases[] = {
        {formatted(L"%d %i %u", -5, 6, 7U), L"-5 6 7"},
        {formatted(L"%ld %lu %lld", -5L, 6UL, -7LL), L"-5 6 -7"},
        {formatted(L"%lld", LLONG_MIN), L"-9223372036854775808"},
        {formatted(L"%hd %hhd", 70000, 300), L"4464 44"},
        {formatted(L"%hu %hhu", 70000, 300), L"4464 44"},
        {formatted(L"%zu %td %jd", std::size_t(3), std::ptrdiff_t(-4), std::intmax_t(5)), L"3 -4 5"},
        {formatted(L"%5d|%-5d|%05d|%+d|% d", 42, 42, -42, 42, 42), L"   42|42   |-0042|+42| 42"},
        {formatted(L"%.3d|%6.3d|%06.3d|%.0d|", 5, 5, 5, 0), L"005|   005|   005||"},
        {formatted(L"%x %X %#x %#X %#o %o", 255U, 255U, 255U, 255U, 8U, 8U), L"ff FF 0xff 0XFF 010 10"},
        {formatted(L"%#x %#o %#06x", 0U, 0U, 255U), L"0 0 0x00ff"},
        {formatted(L"%c%lc%c", L'a', L'\u20AC', L'b'), L"a\u20AC"
                                                       L"b"},
        {formatted(L"%3c|%-3c|", L'a', L'b'), L"  a|b  |"},
        {formatted(L"%f %lf %.2f %0.3lf", 1.5, -2.25, 3.14159, 0.0005), L"1.500000 -2.250000 3.14 0.001"},
        {formatted(L"%8.2f|%-8.2f|%08.2f|%+.1f|%.0f|%#.0f", 1.5, 1.5, -1.5, 1.5, 2.5, 2.0),
         L"    1.50|1.50    |-0001.50|+1.5|2|2."},
        {formatted(L"%e %E %.0e %#.0e", 12345.678, 0.00012, 5.0, 5.0), L"1.234568e+04 1.200000E-04 5e+00 5.e+00"},
        {formatted(L"%g %g %g %G %.3g", 0.0001, 1000000.0, 100000.0, 1e-10, 1234.5),
         L"0.0001 1e+06 100000 1E-10 1.23e+03"},
        {formatted(L"%#g %#.3g %#g %#.2g", 1.5, 1000.0, 0.0, 99.9), L"1.50000 1.00e+03 0.00000 1.0e+02"},
        {formatted(L"%a %A", 1.0, 0.5), L"0x1p+0 0X1P-1"},
        {formatted(L"%f %F %5.1f|%-5f|%05f", INFINITY, -INFINITY, NAN, INFINITY, INFINITY),
         L"inf -INF   nan|inf  |  inf"},
        {formatted(L"%.1f", -0.0), L"-0.0"},
        {formatted(L"%Lf", static_cast<long double>(0.5)), L"0.500000"},
        {formatted(L"100%% %5d%%", 7), L"100%     7%"},
        {formatted(L"plain"), L"plain"},
        {formatted(L""), L""},
    };
    for (Case const& one : cases) {
        EXPECT_STREQ(one.text, one.expected);
    }
}

TEST(TuString, FormatOfALargeNumberIsWhole) {
    TuString const text = formatted(L"%.2f", 1e300);
    EXPECT_EQ(text.GetLength(), 304);
    EXPECT_STREQ(text.Right(3), L".00");
}

TEST(TuString, FormatAgreesWithTheCLibraryOnFloats) {
    double const values[] = {0.0, 1.0, -1.0, 0.1, 123456.789, 1e-5, 9.9999995, 1e21, 5e-324, 1.7976931348623157e308};
    for (double const value : values) {
        char expected[2048];
        std::snprintf(expected, sizeof expected, "%f|%.3f|%12.4e|%g|%#g|%.10G", value, value, value, value, value,
                      value);
        EXPECT_EQ(flowmere::toUtf8(formatted(L"%f|%.3f|%12.4e|%g|%#g|%.10G", value, value, value, value, value, value)),
                  expected);
    }
}

TEST(TuString, FormatLeavesUnknownConversionsAsTheyAre) {
    EXPECT_STREQ(formatted(L"%y 5%"), L"%y 5%");
    EXPECT_STREQ(formatted(L"%-5"), L"%-5");
    EXPECT_STREQ(formatted(nullptr), L"");
}

TEST(TuString, FormatStoresNothingForTheCounter) {
    int counter = 77;
    EXPECT_STREQ(formatted(L"ab%nc%d", &counter, 5), L"abc5");
    EXPECT_EQ(counter, 77);
}

TEST(TuString, FormatTakesItselfAsFormatAndArgument) {
    TuString text(L"<%s>");
    text.Format(text, static_cast<wchar_t const*>(text));
    EXPECT_STREQ(text, L"<<%s>>");
}

TEST(TuString, FormatCutsHugeWidths) {
    EXPECT_EQ(formatted(L"%2147483647d", 1).GetLength(), 1000000);
    EXPECT_EQ(formatted(L"%99999999999999999999d", 1).GetLength(), 1000000);
    EXPECT_EQ(formatted(L"%*d", INT_MIN, 1).GetLength(), 1000000);
}

// Numbers

TEST(TuString, ReadsIntegers) {
    struct Case {
        wchar_t const* text;
        int radix;
        int value;
        unsigned int unsignedValue;
    };
    Case const cases[] = {
        {L"42", 10, 42, 42},
        {L"  \t-42abc", 10, -42, 0},
        {L"+7", 10, 7, 7},
        {L"ff", 16, 255, 255},
        {L"0xFF", 16, 255, 255},
        {L"0x", 16, 0, 0},
        {L"0xG", 16, 0, 0},
        {L"0x10", 0, 16, 16},
        {L"010", 0, 8, 8},
        {L"010", 10, 10, 10},
        {L"10", 0, 10, 10},
        {L"101", 2, 5, 5},
        {L"z", 36, 35, 35},
        {L"", 10, 0, 0},
        {L"abc", 10, 0, 0},
        {L"-", 10, 0, 0},
        {L"- 5", 10, 0, 0},
        {L"5", 1, 0, 0},
        {L"5", 37, 0, 0},
        {L"5", -10, 0, 0},
        {L"3000000000", 10, INT_MAX, 3000000000U},
        {L"-3000000000", 10, INT_MIN, 0},
        {L"99999999999999999999", 10, INT_MAX, UINT_MAX},
        {L"-99999999999999999999", 10, INT_MIN, 0},
        {L"4294967296", 10, INT_MAX, UINT_MAX},
    };
    for (Case const& one : cases) {
        EXPECT_EQ(TuString(one.text).ToInt(one.radix), one.value) << flowmere::toUtf8(one.text);
        EXPECT_EQ(TuString(one.text).ToUInt(one.radix), one.unsignedValue) << flowmere::toUtf8(one.text);
    }
    EXPECT_EQ(TuString(L"12").ToInt(), 12);
    EXPECT_EQ(TuString(L"12").ToUInt(), 12U);
}

TEST(TuString, FreeFunctionsReadNumbers) {
    EXPECT_EQ(TuStrToIntW(L" 12 "), 12);
    EXPECT_EQ(TuStrToIntW(L"-1.9"), -1);
    EXPECT_EQ(TuStrToIntW(L"3000000000"), INT_MAX);
    EXPECT_EQ(TuStrToIntW(L"no number"), 0);
    EXPECT_EQ(TuStrToIntW(nullptr), 0);
    EXPECT_EQ(TuStrToInt64W(L"3000000000"), 3000000000LL);
    EXPECT_EQ(TuStrToInt64W(L"-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(TuStrToInt64W(L"9223372036854775807"), INT64_MAX);
    EXPECT_EQ(TuStrToInt64W(L"9223372036854775808"), INT64_MAX);
    EXPECT_EQ(TuStrToInt64W(L"x"), 0);
    EXPECT_EQ(TuStrToInt64W(nullptr), 0);
    EXPECT_EQ(TuStrToFloatW(L"2.5"), 2.5F);
    EXPECT_EQ(TuStrToFloatW(L" -1e2x"), -100.0F);
    EXPECT_EQ(TuStrToFloatW(L"no number"), 0.0F);
    EXPECT_EQ(TuStrToFloatW(nullptr), 0.0F);
}

TEST(TuString, TheFloatFunctionLosesTheDigitsOfADouble) {
    static_assert(std::is_same_v<decltype(TuStrToFloatW(L"")), float>);
    EXPECT_EQ(static_cast<double>(TuStrToFloatW(L"0.1")), static_cast<double>(0.1F));
    EXPECT_NE(static_cast<double>(TuStrToFloatW(L"0.1")), 0.1);
}

// Raw access

TEST(TuString, BufferTakesWhatTheCallerWrites) {
    TuString text(L"ab");
    wchar_t* const buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, L"ab");
    std::wstring_view(L"written").copy(buffer, 7);
    text.ReleaseBuffer();
    EXPECT_STREQ(text, L"written");
    EXPECT_EQ(text.GetLength(), 7);
}

TEST(TuString, ReleaseBufferCutsToTheLength) {
    TuString text(L"abcdef");
    text.GetBuffer(0);
    text.ReleaseBuffer(3);
    EXPECT_STREQ(text, L"abc");
    text.GetBuffer(5);
    text.ReleaseBuffer(5);
    EXPECT_STREQ(text, L"abc");
    EXPECT_EQ(text.GetLength(), 3);
    text.GetBuffer(3);
    text.ReleaseBuffer(0);
    EXPECT_STREQ(text, L"");
    text.ReleaseBuffer();
    EXPECT_STREQ(text, L"");
}

TEST(TuString, ALargeBufferIsGivenBackForAShortText) {
    TuString text;
    std::wstring_view(L"short").copy(text.GetBuffer(100000), 5);
    text.ReleaseBuffer();
    EXPECT_STREQ(text, L"short");
    text += L" and more";
    EXPECT_STREQ(text, L"short and more");
}

TEST(TuString, ACopyMadeWhileTheBufferIsOutStaysAsItWas) {
    TuString text(L"abc");
    wchar_t* const buffer = text.GetBuffer(3);
    TuString const copy(text);
    buffer[0] = L'X';
    text.ReleaseBuffer();
    EXPECT_STREQ(text, L"Xbc");
    EXPECT_STREQ(copy, L"abc");
}

TEST(TuString, ReleaseBufferOfASharedTextLeavesTheOtherAlone) {
    TuString text(L"abc");
    TuString const copy(text);
    text.ReleaseBuffer(1);
    EXPECT_STREQ(text, L"a");
    EXPECT_STREQ(copy, L"abc");
}

TEST(TuString, AnsiBufferIsTheTextInUtf8) {
    TuString text(L"Gr\u00F6\u00DFe");
    char const* const first = text.GetAnsiBuffer();
    EXPECT_STREQ(first, "Gr\xC3\xB6\xC3\x9F"
                        "e");
    EXPECT_EQ(text.GetAnsiBuffer(), first);
    text += L"!";
    EXPECT_STREQ(text.GetAnsiBuffer(), "Gr\xC3\xB6\xC3\x9F"
                                       "e!");
    EXPECT_STREQ(TuString().GetAnsiBuffer(), "");
}

TEST(TuString, AnsiBufferFollowsEveryChange) {
    TuString text(L"a b");
    EXPECT_STREQ(text.GetAnsiBuffer(), "a b");
    text.Replace(L' ', L'_');
    EXPECT_STREQ(text.GetAnsiBuffer(), "a_b");
    text.Remove(L'_');
    EXPECT_STREQ(text.GetAnsiBuffer(), "ab");
    text.GetBuffer(2)[0] = L'c';
    text.ReleaseBuffer();
    EXPECT_STREQ(text.GetAnsiBuffer(), "cb");
    text = L"d";
    EXPECT_STREQ(text.GetAnsiBuffer(), "d");
}

TEST(TuString, KnowsTheEndOfLine) {
#if defined(_WIN32)
    EXPECT_STREQ(TuString::TuEndOfLine, L"\r\n");
#else
    EXPECT_STREQ(TuString::TuEndOfLine, L"\n");
#endif
}
