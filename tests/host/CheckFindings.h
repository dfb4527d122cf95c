#pragma once

#include "Program.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace flowmere::test {

// What "flowmere check" has found in the one document of that name, each as "PATH: RULE: MESSAGE". Standard error must
// be empty, and the exit code agree with the findings.
inline std::vector<std::string> findingsOf(ProgramRun const& check, std::string const& document) {
    EXPECT_EQ(check.err, "");
    std::vector<std::string> lines;
    std::istringstream stream(check.out);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.substr(document.size() + 2));
    EXPECT_FALSE(lines.empty());
    if (!lines.empty())
        lines.pop_back(); // the summary
    EXPECT_EQ(check.exitCode, lines.empty() ? 0 : 1);
    return lines;
}

} // namespace flowmere::test
