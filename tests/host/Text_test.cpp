#include "host/Text.h"

#include "host/Command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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
