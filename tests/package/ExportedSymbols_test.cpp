// The names that the shared library exports are those of a list that is kept with the tests: a name that is lost breaks
// programs that are out, and a name that is added by accident has to stay for ever.
#include "InstalledHeaders.h"

#include <cxxabi.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

using namespace flowmere::test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

std::filesystem::path const kList = std::filesystem::path(FLOWMERE_TEST_DATA) / "package" / "exported-symbols.txt";

constexpr char kHead[] = "# What libflowmere.so exports, a name on each line. Written by tools/refresh-symbols.\n"
                         "#\n"
                         "# The names are in the form that the source has, for the many mangled ones of a constructor\n"
                         "# or destructor differ between compilers. Left out is what depends on the compiler and on\n"
                         "# how it optimises: weak functions, which are instances of templates and inline functions\n"
                         "# that somebody may share, whatever belongs to the standard library or begins with two\n"
                         "# underscores, the type information of anything but classes, and the version in the\n"
                         "# namespace of the XML parser.\n";

std::string demangled(std::string const& symbol) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const text(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status),
                                                      &std::free);
    // The parser puts its version into the name of its namespace; programs are built against the version at hand.
    static std::regex const version(R"(\bxercesc_\d+_\d+::)");
    return status == 0 ? std::regex_replace(text.get(), version, "xercesc::") : symbol;
}

// Whether a name is one that the house gives: `kind` is the letter of nm.
bool isListed(char kind, std::string const& name) {
    if (kind == 'W' || kind == 'w' || kind == 'u')
        return false;
    static std::regex const generated("^(?:typeinfo name for|typeinfo for|vtable for|VTT for|guard variable for|"
                                      "non-virtual thunk to|virtual thunk to|covariant return thunk to) ");
    std::string const subject = std::regex_replace(name, generated, "");
    if (subject.starts_with("std::") || subject.starts_with("__"))
        return false;
    static std::regex const plain(R"([\w:]+)");
    return !name.starts_with("typeinfo ") || std::regex_match(subject, plain);
}

// The names in what `nm -D --defined-only` prints.
std::set<std::string> namesIn(std::string const& table) {
    std::set<std::string> names;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string address;
        std::string kind;
        std::string symbol;
        if (!(words >> address >> kind >> symbol) || kind.size() != 1)
            continue;
        std::string const name = demangled(symbol.substr(0, symbol.find('@')));
        if (isListed(kind.front(), name))
            names.insert(name);
    }
    return names;
}

std::set<std::string> exportedByTheLibrary() {
    std::string const command = std::string("'") + FLOWMERE_NM + "' -D --defined-only '" + FLOWMERE_LIBRARY + "'";
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const pipe(::popen(command.c_str(), "r"), &::pclose);
    std::string table;
    char buffer[4096];
    while (pipe != nullptr) {
        std::size_t const count = std::fread(buffer, 1, sizeof buffer, pipe.get());
        if (count == 0)
            break;
        table.append(buffer, count);
    }
    return namesIn(table);
}

std::set<std::string> listed(std::string const& text) {
    std::set<std::string> names;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line.front() != '#')
            names.insert(line);
    return names;
}

// A line for each difference.
std::vector<std::string> differences(std::set<std::string> const& list, std::set<std::string> const& library) {
    std::vector<std::string> lines;
    for (std::string const& name : list)
        if (!library.contains(name))
            lines.push_back("lost: " + name);
    for (std::string const& name : library)
        if (!list.contains(name))
            lines.push_back("leaked: " + name);
    return lines;
}

TEST(ExportedSymbols, AreThoseOfTheList) {
    std::set<std::string> const library = exportedByTheLibrary();
    ASSERT_THAT(library, Not(IsEmpty())) << "nm tells nothing";
    if (std::getenv("FLOWMERE_REFRESH_SYMBOLS") != nullptr) {
        std::ofstream out(kList, std::ios::binary);
        out << kHead;
        for (std::string const& name : library)
            out << name << '\n';
    }
    std::string report;
    for (std::string const& line : differences(listed(textOf(kList)), library))
        report += line + "\n";
    EXPECT_TRUE(report.empty()) << report << "tools/refresh-symbols takes over what is meant to be so";
}

TEST(ExportedSymbols, HaveSomeOfEveryClass) {
    std::set<std::string> const names = listed(textOf(kList));
    for (std::string const& type : exportedNames(FLOWMERE_INSTALLED_HEADERS).classes) {
        bool const isThere = std::any_of(names.begin(), names.end(), [&](std::string const& name) {
            return name.starts_with(type + "::") || name == "typeinfo for " + type;
        });
        // A record of texts has nothing but what compilers write into every program that uses it.
        EXPECT_EQ(type != "NodeCode", isThere) << type;
    }
}

TEST(ExportedSymbols, HaveEveryFunction) {
    std::set<std::string> const names = listed(textOf(kList));
    ExportedNames const marked = exportedNames(FLOWMERE_INSTALLED_HEADERS);
    for (std::string const& function : marked.functions) {
        bool const isThere = std::any_of(names.begin(), names.end(), [&](std::string const& name) {
            return name == function || name.starts_with(function + "(") ||
                   name.starts_with("flowmere::" + function + "(");
        });
        EXPECT_TRUE(isThere) << function;
    }
    for (std::string const& variable : marked.variables)
        EXPECT_THAT(names, Contains(variable));
}

TEST(ExportedSymbols, HaveThePlainNamesOfTheModuleAndTheFrontDoor) {
    std::set<std::string> const names = exportedByTheLibrary();
    for (char const* const name :
         {"Flowmere_get_module_info", "_localFnToKeepFlowmereDllLoaded", "activateFlowmereCommand()",
          "CFCMSPReader::Parse(wchar_t const*, IFCNode**, int)", "vtable for CFCMSPReader",
          "FCUtility::CFCReader_Parse(CFCNodeFactory&, wchar_t const*, IFCNode**, int)",
          "FCUtility::CFCMSPReader_ParseContainer(CFCNodeFactory&, CFCBaseContainer*, wchar_t const*, IFCNode**, int)"})
        EXPECT_THAT(names, Contains(name));
}

TEST(ExportedSymbols, HaveEveryCallOfTheFrontDoor) {
    std::set<std::string> const names = exportedByTheLibrary();
    auto const isCall = [](std::string const& name) {
        return name.starts_with("FCUtility::CFC");
    };
    EXPECT_EQ(26, std::count_if(names.begin(), names.end(), isCall));
}

TEST(ExportedSymbols, HaveNothingOfTheInside) {
    static std::set<std::string> const open = {"flowmere::versionText()", "flowmere::xercesVersionText()",
                                               "flowmere::pythonVersionText()"};
    for (std::string const& name : exportedByTheLibrary()) {
        bool const isInside = name.starts_with("flowmere::") || name.find(" flowmere::") != std::string::npos ||
                              name.starts_with("tpy::");
        EXPECT_TRUE(!isInside || open.contains(name) || name.find('(') < name.find("flowmere::")) << name;
    }
}

TEST(ExportedSymbolsCheck, TellsOfLostAndLeakedNames) {
    EXPECT_THAT(differences({"a()", "b()"}, {"b()", "c()"}), ElementsAre("lost: a()", "leaked: c()"));
    EXPECT_THAT(differences({"a()"}, {"a()"}), IsEmpty());
    EXPECT_THAT(listed("# head\n\na()\nb()\n"), UnorderedElementsAre("a()", "b()"));
}

TEST(ExportedSymbolsCheck, ListsWhatTheHouseNames) {
    EXPECT_THAT(namesIn("00000000000fdf10 T Flowmere_get_module_info\n"
                        "00000000000fdf10 T _ZN7CFCNodeC2Ev\n"
                        "00000000000fdf10 T _ZN7CFCNodeC1Ev\n"
                        "00000000000fdf10 T _ZN7CFCNodeD0Ev@@V1\n"
                        "00000000000fdf10 T _ZN8flowmere6insideEv\n"
                        "00000000000fdf10 D _ZN14CFCEnvironment13m_strBasePathE\n"
                        "00000000000fdf10 T _ZN7CFCNode4TakeEPN11xercesc_3_27DOMNodeE\n"
                        "00000000000fdf10 V _ZTV7CFCNode\n"
                        "00000000000fdf10 R _ZTI7CFCNode\n"),
                UnorderedElementsAre("Flowmere_get_module_info", "CFCNode::CFCNode()", "CFCNode::~CFCNode()",
                                     "flowmere::inside()", "CFCEnvironment::m_strBasePath", "vtable for CFCNode",
                                     "typeinfo for CFCNode", "CFCNode::Take(xercesc::DOMNode*)"));
}

TEST(ExportedSymbolsCheck, PassesOverWhatCompilersAdd) {
    EXPECT_THAT(namesIn("00000000000fdf10 W _ZN15CFCVariableData5storeIiEEvT_\n"
                        "00000000000fdf10 u _ZSt19piecewise_construct\n"
                        "00000000000fdf10 V _ZTISt9exception\n"
                        "00000000000fdf10 V _ZTIFP7CFCNodevE\n"
                        "00000000000fdf10 R __odr_asan_gen_name\n"
                        "                 U malloc\n"
                        "no symbols\n"),
                IsEmpty());
}

} // namespace
