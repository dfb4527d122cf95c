// How long a run may still take.

#include "Study.h"

#include "host/document/Document.h"
#include "host/session/TimeLeft.h"

#include <gmock/gmock.h>

namespace {

using namespace flowmere::test;
using flowmere::host::Document;
using flowmere::host::TimeLeft;

// A, then S with X in it, then D, which leads back to A by its grip.
class TimesOfARun : public testing::Test {
protected:
    TimesOfARun() {
        study.document(process(block("Start", "", "Start", "Oval") + block("A", "", "A", "Oval") +
                               subProcess("S", block("X", "", "X", "Oval")) + block("D", "", "D", "Decision") +
                               block("End", "", "End", "Oval") + connector("Start", "A") + connector("A", "S") +
                               connector("S", "D") + connector("D", "A", 4, 4) + connector("D", "End")));
        document = std::make_unique<Document>((study.path() / "p.xml").string());
    }

    std::optional<double> before(TimeLeft& times, std::string const& path) const {
        return times.before(document->block(path), path);
    }

    Study study;
    std::unique_ptr<Document> document;
};

TEST_F(TimesOfARun, AreNotKnownBeforeTheFirstBlock) {
    TimeLeft times;
    EXPECT_EQ(before(times, "Start"), std::nullopt);
}

TEST_F(TimesOfARun, OfTheBlocksSoFarStandForThoseToCome) {
    TimeLeft times;
    times.blockDone("Start", 1000);
    // A, S, S.X, D and End.
    EXPECT_EQ(before(times, "A"), 5000);
}

TEST_F(TimesOfARun, OfABlockThatHasRunAreItsOwn) {
    TimeLeft times;
    times.blockDone("Start", 100);
    times.blockDone("D", 300);
    times.blockDone("D", 500);
    // D takes 400, End as much as all in the mean.
    EXPECT_EQ(before(times, "D"), 700);
}

TEST_F(TimesOfARun, FollowTheGripsAndCountEachBlockOnce) {
    TimeLeft times;
    times.blockDone("Start", 1000);
    document->block("D").SetActiveHandle(4);
    EXPECT_EQ(before(times, "A"), 4000);
}

TEST_F(TimesOfARun, EndWhereTheRunEnds) {
    TimeLeft times;
    times.blockDone("Start", 1000);
    times.endAt(document->block("S"));
    EXPECT_EQ(before(times, "A"), 3000);
}

TEST_F(TimesOfARun, OfAnEarlierRunTellAsLongAsItGoesThatWay) {
    TimeLeft times({{"Start", 1}, {"A", 10}, {"S", 100}, {"S.X", 1000}, {"D", 10000}, {"A", 20}, {"End", 5}});
    EXPECT_EQ(before(times, "Start"), 11136);
    times.blockDone("Start", 7);
    EXPECT_EQ(before(times, "A"), 11135);
    times.blockDone("A", 7);
    EXPECT_EQ(before(times, "S"), 11125);
    // Another way: D and End, by the times of before.
    times.blockDone("S", 7);
    EXPECT_EQ(before(times, "D"), 10005);
    times.blockDone("D", 7);
    EXPECT_LE(before(times, "End"), 10005);
}

TEST(TextOfTheTimeLeft, GrowsWithTheTime) {
    struct Row {
        double milliseconds;
        std::string text;
    };
    std::vector<Row> const rows = {
        {0, "under 1 s left"},
        {999, "under 1 s left"},
        {1000, "about 1 s left"},
        {12400, "about 12 s left"},
        {89999, "about 90 s left"},
        {90000, "about 2 min left"},
        {5.0 * 60000, "about 5 min left"},
        {90.0 * 60000, "about 2 h left"},
        {50.0 * 3600000, "about 50 h left"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(TimeLeft::text(row.milliseconds), row.text) << row.milliseconds;
}

} // namespace
