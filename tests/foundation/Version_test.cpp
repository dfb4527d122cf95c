#include "flowmere/Version.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Version, LibraryGivesTheVersionOfItsHeaders) {
    std::string const expected = std::to_string(FLOWMERE_VERSION_MAJOR) + "." + std::to_string(FLOWMERE_VERSION_MINOR) +
                                 "." + std::to_string(FLOWMERE_VERSION_PATCH);
    EXPECT_EQ(flowmere::versionText(), expected);
}

} // namespace
