#include "flowmere/foundation/Immortal.h"

#include "flowmere/foundation/TuString.h"

#include <gtest/gtest.h>

namespace {

struct Counted {
    explicit Counted(int& destroyed) : count(destroyed) {}
    ~Counted() { ++count; }
    int& count;
};

} // namespace

TEST(Immortal, NeverDestroysItsObject) {
    int destroyed = 0;
    {
        flowmere::Immortal<Counted> const held(destroyed);
        EXPECT_EQ(&held.value.count, &destroyed);
    }
    EXPECT_EQ(destroyed, 0);
}

TEST(Immortal, GivesAccessToItsObject) {
    static flowmere::Immortal<TuString> s_text(L"start");
    EXPECT_STREQ(*s_text, L"start");
    *s_text = L"changed";
    EXPECT_EQ(s_text->GetLength(), 7);
}
