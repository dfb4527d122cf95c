#pragma once

// Whole outputs, compared with files that stand beside the test data. tools/refresh-golden writes them anew.

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace flowmere::test {

// Compares with a file below the test data, or writes that file when FLOWMERE_REFRESH_GOLDEN is set: the test then
// fails, so that no refreshed run passes for a test.
inline void expectGolden(std::string const& name, std::string const& text) {
    std::filesystem::path const file = dataFolder() / name;
    if (std::getenv("FLOWMERE_REFRESH_GOLDEN") != nullptr) {
        writeFile(file, text);
        ADD_FAILURE() << name << " is written anew";
        return;
    }
    EXPECT_EQ(text, readFile(file)) << "where the new output is right, run tools/refresh-golden";
}

} // namespace flowmere::test
