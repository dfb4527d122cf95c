#include <Python.h>

#include "flowmere/Version.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(PythonVersion, IsThatOfTheInterpreterInUse) {
    EXPECT_STREQ(flowmere::pythonVersionText(), PY_VERSION);
}

TEST(PythonVersion, StopsAtTheFirstBlank) {
    EXPECT_THAT(flowmere::pythonVersionText(), testing::Not(testing::HasSubstr(" ")));
}

} // namespace
