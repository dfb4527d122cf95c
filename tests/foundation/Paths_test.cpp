#include "flowmere/foundation/Paths.h"

#include <gtest/gtest.h>

TEST(Paths, BackslashesBecomeSlashes) {
    EXPECT_EQ(flowmere::systemPath(L"\\home\\u/lib\\process.lst"), "/home/u/lib/process.lst");
    EXPECT_EQ(flowmere::systemPath(L"C:\\data"), "C:/data");
    EXPECT_EQ(flowmere::systemPath(L"\\Hints.xml"), "/Hints.xml");
    EXPECT_EQ(flowmere::systemPath(L"plain name"), "plain name");
}

TEST(Paths, NullAndEmptyGiveTheEmptyPath) {
    EXPECT_EQ(flowmere::systemPath(static_cast<wchar_t const*>(nullptr)), "");
    EXPECT_EQ(flowmere::systemPath(L""), "");
    EXPECT_TRUE(flowmere::filesystemPath(L"").empty());
}

TEST(Paths, AreUtf8WithLosslessBytes) {
    EXPECT_EQ(flowmere::systemPath(L"\u00E4\\\xDCFF"), "\xC3\xA4/\xFF");
    EXPECT_EQ(flowmere::pathText(flowmere::filesystemPath(L"\u00E4\\\xDCFF")), L"\u00E4/\xDCFF");
}
