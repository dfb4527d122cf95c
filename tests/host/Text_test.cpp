#include "host/basics/Text.h"

#include "host/basics/Command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace flowmere::host;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(OneLine, ShowsWhatWouldBreakTheLine) {
    EXPECT_EQ(oneLine("plain"), "plain");
    EXPECT_EQ(oneLine("a\nb\r\tc"), "a\\nb\\r\\tc");
    EXPECT_EQ(oneLine(std::string("\x1b[31m\x7f\0", 7)), "\\x1b[31m\\x7f\\x00");
    EXPECT_EQ(oneLine("Ü 梁 😀"), "Ü 梁 😀");
}

TEST(OneLine, ReplacesBytesThatAreNoUtf8) {
    EXPECT_EQ(oneLine("a\xFF"
                      "b"),
              "a\xEF\xBF\xBD"
              "b");
    // Cut short, too long a form, a surrogate, beyond the last character.
    for (std::string const text : {"\xE2\x82", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        std::string expected;
        for (std::size_t count = 0; count < text.size(); ++count)
            expected += "\xEF\xBF\xBD";
        EXPECT_EQ(oneLine(text), expected);
    }
}

TEST(NearNames, ComeInOrderAndAreThreeAtMost) {
    std::vector<std::string> const known = {"Width", "Height", "Heights", "Depth", "Heiht", "Hight", "Weight"};
    EXPECT_THAT(nearNames("Heigth", known), ElementsAre("Height", "Heights", "Heiht"));
    EXPECT_THAT(nearNames("WIDTH", known), ElementsAre("Width"));
    EXPECT_THAT(nearNames("q", {"a", "b", "Q"}), ElementsAre("Q"));
    EXPECT_THAT(nearNames("Nothing like it", known), IsEmpty());
    EXPECT_THAT(nearNames("", known), IsEmpty());
}

TEST(NearNames, TakeTheLastPartOfAPath) {
    std::vector<std::string> const known = {"Analysis.Stress.Limit", "Analysis.Moments.Span"};
    EXPECT_THAT(nearNames("Limit", known), ElementsAre("Analysis.Stress.Limit"));
    EXPECT_THAT(nearNames("Moments.Spam", known), ElementsAre("Analysis.Moments.Span"));
    // Of many that end alike the one that is near as a whole.
    EXPECT_THAT(nearNames("Beam2.Stres", {"Beam1.Stress", "Plate.Stress", "Beam2.Stress", "Wall.Stress"}),
                ElementsAre("Beam2.Stress", "Beam1.Stress", "Plate.Stress"));
}

// The plain way to the same: all distances, whole.
std::size_t plainDistance(std::string const& left, std::string const& right) {
    std::vector<std::vector<std::size_t>> steps(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i)
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            steps[i][j] = std::min({steps[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1), steps[i - 1][j] + 1,
                                    steps[i][j - 1] + 1});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
        }
    return steps[left.size()][right.size()];
}

TEST(NearNames, AreThoseOfWhichAtMostAThirdIsWrong) {
    // All words of up to nine letters out of few, so that many are near each other, and fewer than three letters count.
    std::mt19937 random(7);
    auto const word = [&] {
        std::string text(1 + random() % 9, 'a');
        for (char& letter : text)
            letter = static_cast<char>('a' + random() % 3);
        return text;
    };
    for (int round = 0; round < 3000; ++round) {
        std::string const typed = word();
        std::vector<std::string> known;
        for (int count = 0; count < 12; ++count)
            known.push_back(word());
        std::size_t const limit = typed.size() < 3 ? 0 : std::max<std::size_t>(1, typed.size() / 3);
        std::vector<std::pair<std::size_t, std::string>> near;
        for (std::string const& name : known)
            if (std::size_t const distance = plainDistance(typed, name);
                distance <= limit && std::find(near.begin(), near.end(), std::pair(distance, name)) == near.end())
                near.emplace_back(distance, name);
        std::stable_sort(near.begin(), near.end(),
                         [](auto const& left, auto const& right) { return left.first < right.first; });
        near.resize(std::min<std::size_t>(near.size(), 3));
        std::vector<std::string> expected;
        for (auto const& entry : near)
            expected.push_back(entry.second);
        ASSERT_EQ(nearNames(typed, known), expected) << typed;
    }
}

TEST(Suggestion, EndsAMessage) {
    EXPECT_EQ(suggestion("Q", {"Height"}), "");
    EXPECT_EQ(suggestion("Hight", {"Height"}), "; did you mean Height?");
    EXPECT_EQ(suggestion("Hight", {"Height", "Hightt", "Hights"}), "; did you mean Height, Hightt or Hights?");
}

TEST(Counted, KnowsOne) {
    EXPECT_EQ(counted(0, "block"), "0 blocks");
    EXPECT_EQ(counted(1, "block"), "1 block");
    EXPECT_EQ(counted(2, "block"), "2 blocks");
}

TEST(JsonText, IsUtf8WhateverTheText) {
    EXPECT_EQ(jsonText({{"b", "x\xFF"}, {"a", 1}}), "{\n  \"b\": \"x\xEF\xBF\xBD\",\n  \"a\": 1\n}\n");
}

TEST(ErrorLine, LeavesOutWhatIsEmpty) {
    EXPECT_EQ(errorLine("f.xml", "A.B", "is odd"), "flowmere: f.xml: A.B: is odd");
    EXPECT_EQ(errorLine("f.xml", "", "is odd"), "flowmere: f.xml: is odd");
    EXPECT_EQ(errorLine("", "", "is\nodd"), "flowmere: is\\nodd");
}

TEST(LibraryPath, IsAbsoluteWithBackslashes) {
    EXPECT_EQ(utf8(libraryPath("/a/./b/../c/é.xml")), "\\a\\c\\é.xml");
    std::string const relative = utf8(libraryPath("x.xml"));
    EXPECT_EQ(relative.front(), '\\');
    EXPECT_TRUE(relative.ends_with("\\x.xml"));
}

} // namespace
