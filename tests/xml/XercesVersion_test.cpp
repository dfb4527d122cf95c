#include "flowmere/Version.h"

#include <gtest/gtest.h>
#include <xercesc/util/XercesVersion.hpp>

#include <string>

namespace {

TEST(XercesVersion, IsThatOfTheParserInUse) {
    std::string const expected = std::to_string(XERCES_VERSION_MAJOR) + "." + std::to_string(XERCES_VERSION_MINOR) +
                                 "." + std::to_string(XERCES_VERSION_REVISION);
    EXPECT_EQ(flowmere::xercesVersionText(), expected);
}

} // namespace
