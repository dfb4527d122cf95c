// The outside program of this folder leaves out no class, and is an outside program.
#include "InstalledHeaders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace flowmere::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

std::string sourceOfTheProgram() {
    return textOf(std::filesystem::path(FLOWMERE_TEST_DATA) / ".." / "package" / "UseEveryClass_test.cpp");
}

// The tests of one suite in this binary.
std::set<std::string> testsOf(std::string const& suite) {
    std::set<std::string> names;
    auto const& unit = *testing::UnitTest::GetInstance();
    for (int at = 0; at < unit.total_test_suite_count(); ++at) {
        auto const& entry = *unit.GetTestSuite(at);
        for (int test = 0; entry.name() == suite && test < entry.total_test_count(); ++test)
            names.insert(entry.GetTestInfo(test)->name());
    }
    return names;
}

TEST(InstalledHeaders, ReachFromTheOneThatProgramsInclude) {
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(FLOWMERE_INSTALLED_HEADERS) / "flowmere/Flowmere.h"));
    ExportedNames const names = exportedNames(FLOWMERE_INSTALLED_HEADERS);
    EXPECT_GT(names.classes.size(), 100U);
    EXPECT_THAT(names.classes, Contains("FCUtility"));
    EXPECT_THAT(names.functions, Contains("Flowmere_get_module_info"));
    EXPECT_THAT(names.variables, Contains("FCVariableJSONTemplate"));
}

TEST(InstalledHeaders, EveryExportedClassHasItsTest) {
    EXPECT_EQ(exportedNames(FLOWMERE_INSTALLED_HEADERS).classes, testsOf("ExportedClass"))
        << "each class has a test under its name in tests/package/UseEveryClass_test.cpp";
}

TEST(InstalledHeaders, EveryTestUsesTheClassThatItIsNamedAfter) {
    std::string const source = sourceOfTheProgram();
    for (std::string const& name : testsOf("ExportedClass")) {
        std::string const head = "TEST(ExportedClass, " + name + ") {";
        auto const begin = source.find(head);
        ASSERT_NE(std::string::npos, begin) << name;
        std::string const body = source.substr(begin + head.size(), source.find("\n}", begin) - begin - head.size());
        EXPECT_TRUE(std::regex_search(body, std::regex("\\b" + name + "\\b"))) << name;
        EXPECT_TRUE(std::regex_search(body, std::regex("\\b(EXPECT|ASSERT)_|\\buse(List|Action)<"))) << name;
    }
}

TEST(InstalledHeaders, EveryExportedFunctionIsCalled) {
    std::string const source = sourceOfTheProgram();
    ExportedNames const names = exportedNames(FLOWMERE_INSTALLED_HEADERS);
    for (std::string const& name : names.functions)
        EXPECT_TRUE(std::regex_search(source, std::regex("\\b" + name + "\\("))) << name;
    for (std::string const& name : names.variables)
        EXPECT_TRUE(std::regex_search(source, std::regex("\\b" + name + "\\b"))) << name;
}

TEST(InstalledHeaders, TheProgramIncludesNothingElseOfTheHouse) {
    std::string const source = sourceOfTheProgram();
    static std::regex const include(R"(#include\s*(["<][^">]+)[">])");
    std::vector<std::string> ours;
    for (std::sregex_iterator match(source.begin(), source.end(), include), end; match != end; ++match) {
        std::string const name = (*match)[1];
        EXPECT_THAT(name, StartsWith("<"));
        if (name.find('/') != std::string::npos && name != "<gtest/gtest.h")
            ours.push_back(name);
    }
    EXPECT_THAT(ours, ElementsAre("<flowmere/Flowmere.h"));
}

TEST(InstalledHeadersCheck, KnowsTheMarks) {
    ExportedNames names;
    collectExportedNames("// class FLOWMERE_API Commented\n"
                         "class FLOWMERE_API One : public Base {\npublic:\n    int Call(int);\n};\n"
                         "struct FLOWMERE_API Two {};\nclass Hidden {};\nclass Ahead;\n"
                         "FLOWMERE_API wchar_t const* text(int a, int b = 0);\n"
                         "friend FLOWMERE_API One* make();\nint hidden();\n"
                         "FLOWMERE_API bool operator==(One const& left, One const& right) noexcept;\n"
                         "extern FLOWMERE_API int const number;\n",
                         names);
    EXPECT_THAT(names.classes, ElementsAre("One", "Two"));
    EXPECT_THAT(names.functions, ElementsAre("make", "text"));
    EXPECT_THAT(names.variables, ElementsAre("number"));
}

} // namespace
