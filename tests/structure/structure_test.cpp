// The rules of the house that a compiler does not see: who may include whom, and what the umbrella holds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Path from the top of the checkout, with forward slashes, to the text of the file.
using Sources = std::map<std::string, std::string>;

std::map<std::string, std::set<std::string>> const kMayInclude = {
    {"foundation", {"foundation"}},
    {"environment", {"environment", "foundation"}},
    {"model", {"model", "environment", "foundation"}},
    {"xml", {"xml", "environment", "foundation"}},
    {"algorithms", {"algorithms", "model", "environment", "foundation"}},
    {"persistence", {"persistence", "xml", "algorithms", "model", "environment", "foundation"}},
    {"workflow", {"workflow", "persistence", "xml", "algorithms", "model", "environment", "foundation"}},
    {"execution", {"execution", "algorithms", "model", "environment", "foundation"}},
};

// The rooms of the program in rows: each may include those of the rows above it, and no other one of its own row.
std::vector<std::set<std::string>> const kRooms = {
    {"basics"}, {"files"},  {"scripting"}, {"document"}, {"workflow"}, {"checks", "diff", "drawing", "catalogs"},
    {"run"},    {"report"}, {"session"},   {"shell"},    {"help"},     {"commands"},
};

// Headers beside the folders that every folder may use.
std::set<std::string> const kCommonHeaders = {"flowmere/Export.h", "flowmere/Version.h"};

Sources readSources(std::string const& folder) {
    Sources sources;
    fs::path const top = FLOWMERE_SOURCE_DIR;
    for (auto const& entry : fs::recursive_directory_iterator(top / folder)) {
        std::string const extension = entry.path().extension().string();
        if (!entry.is_regular_file() || (extension != ".h" && extension != ".cpp"))
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        sources[fs::relative(entry.path(), top).generic_string()] = text.str();
    }
    return sources;
}

struct Include {
    std::string name;
    bool quoted = false;
};

std::vector<Include> includesOf(std::string const& text) {
    static std::regex const form(R"re(^[ \t]*#[ \t]*include[ \t]*(["<])([^">]+)[">])re");
    std::vector<Include> includes;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (std::smatch match; std::regex_search(line, match, form))
            includes.push_back({match[2].str(), match[1].str() == "\""});
    return includes;
}

bool isHeader(std::string const& path) {
    return path.ends_with(".h");
}

// "model" of "flowmere/model/FCNode.h"; empty for a file that lies in no folder of the library.
std::string folderOf(std::string const& path) {
    static std::string const root = "flowmere/";
    if (!path.starts_with(root))
        return {};
    auto const slash = path.find('/', root.size());
    return slash == std::string::npos ? std::string() : path.substr(root.size(), slash - root.size());
}

// What is wrong with the includes of one file of the library, a line for each.
std::vector<std::string> libraryFaults(std::string const& path, std::string const& text) {
    std::vector<std::string> faults;
    std::string const folder = folderOf(path);
    auto const rule = kMayInclude.find(folder);
    if (rule == kMayInclude.end())
        return {path + " lies in no known folder"};
    for (Include const& include : includesOf(text)) {
        bool const own = include.name.starts_with("flowmere/");
        if (include.quoted && !own)
            faults.push_back(path + " names " + include.name + " without its folder");
        if (!own) {
            bool const parser = include.name.starts_with("xercesc/");
            if (parser && isHeader(path) && folder != "xml")
                faults.push_back(path + " shows the XML parser outside xml/");
            if (include.name == "Python.h" && (isHeader(path) || folder != "execution"))
                faults.push_back(path + " shows the interpreter outside the sources of execution/");
            continue;
        }
        if (kCommonHeaders.contains(include.name))
            continue;
        std::string const target = folderOf(include.name);
        // The front door names every reader and writer.
        bool const frontDoor = target == "workflow" && path.starts_with("flowmere/persistence/FCUtility.");
        if (!frontDoor && !rule->second.contains(target))
            faults.push_back(path + " may not include " + include.name);
        if (include.name.starts_with("flowmere/persistence/FCUtility.") &&
            !path.starts_with("flowmere/persistence/FCUtility."))
            faults.push_back(path + " includes the front door");
    }
    return faults;
}

// The program sees the library as an outside program does.
std::vector<std::string> programFaults(std::string const& path, std::string const& text) {
    std::vector<std::string> faults;
    for (Include const& include : includesOf(text)) {
        bool const library = include.name.starts_with("flowmere/");
        if (library && include.name != "flowmere/Flowmere.h")
            faults.push_back(path + " may not include " + include.name);
        if (include.quoted && !library && !include.name.starts_with("host/"))
            faults.push_back(path + " names " + include.name + " without its folder");
    }
    return faults;
}

// "run" of "host/run/Journal.h"; empty for a file that lies beside the rooms.
std::string roomOf(std::string const& path) {
    static std::string const root = "host/";
    auto const slash = path.find('/', root.size());
    return slash == std::string::npos ? std::string() : path.substr(root.size(), slash - root.size());
}

// The row of a room; that behind the last for what is none.
std::size_t rowOf(std::string const& room) {
    auto const row = std::find_if(kRooms.begin(), kRooms.end(),
                                  [&](std::set<std::string> const& rooms) { return rooms.contains(room); });
    return static_cast<std::size_t>(row - kRooms.begin());
}

// Which of its includes no file of a room may have. What lies beside the rooms is the program itself, and may have all.
std::vector<std::string> roomFaults(std::string const& path, std::string const& text) {
    std::vector<std::string> faults;
    std::string const room = roomOf(path);
    if (!room.empty() && rowOf(room) == kRooms.size())
        return {path + " lies in no known room"};
    for (Include const& include : includesOf(text)) {
        if (!include.name.starts_with("host/"))
            continue;
        std::string const target = roomOf(include.name);
        bool const isKnown = rowOf(target) < kRooms.size();
        if (!isKnown || (!room.empty() && target != room && rowOf(target) >= rowOf(room)))
            faults.push_back(path + " may not include " + include.name);
    }
    return faults;
}

// The first circle of headers found, from a header back to itself; empty when there is none.
class CircleSearch {
public:
    explicit CircleSearch(Sources const& sources) {
        for (auto const& [path, text] : sources)
            if (isHeader(path))
                for (Include const& include : includesOf(text))
                    if (sources.contains(include.name))
                        m_next[path].push_back(include.name);
    }

    std::vector<std::string> find() {
        for (auto const& entry : m_next)
            if (visit(entry.first))
                return m_trail;
        return {};
    }

private:
    bool visit(std::string const& path) {
        if (m_done.contains(path))
            return false;
        if (auto const seen = std::find(m_trail.begin(), m_trail.end(), path); seen != m_trail.end()) {
            m_trail.erase(m_trail.begin(), seen);
            m_trail.push_back(path);
            return true;
        }
        m_trail.push_back(path);
        if (auto const next = m_next.find(path); next != m_next.end())
            for (std::string const& target : next->second)
                if (visit(target))
                    return true;
        m_trail.pop_back();
        m_done.insert(path);
        return false;
    }

    std::map<std::string, std::vector<std::string>> m_next;
    std::vector<std::string> m_trail;
    std::set<std::string> m_done;
};

bool offersSomething(std::string const& path, std::string const& text) {
    static std::regex const mark(R"(\bFLOWMERE_API\b)");
    return isHeader(path) && path != "flowmere/Flowmere.h" && std::regex_search(text, mark);
}

TEST(IncludeOrder, EachFolderOfTheLibraryIncludesDownwardsOnly) {
    std::vector<std::string> faults;
    int files = 0;
    for (auto const& [path, text] : readSources("flowmere")) {
        if (folderOf(path).empty())
            continue;
        ++files;
        auto const found = libraryFaults(path, text);
        faults.insert(faults.end(), found.begin(), found.end());
    }
    EXPECT_GT(files, 0);
    EXPECT_THAT(faults, IsEmpty());
}

TEST(IncludeOrder, HeadersBesideTheFoldersStandAlone) {
    for (std::string const& name : kCommonHeaders) {
        Sources const sources = readSources("flowmere");
        ASSERT_TRUE(sources.contains(name)) << name;
        for (Include const& include : includesOf(sources.at(name)))
            EXPECT_TRUE(kCommonHeaders.contains(include.name)) << name << " includes " << include.name;
    }
}

TEST(IncludeOrder, ProgramUsesTheUmbrellaAlone) {
    Sources const sources = readSources("host");
    EXPECT_THAT(sources, Not(IsEmpty()));
    std::vector<std::string> faults;
    for (auto const& [path, text] : sources) {
        auto const found = programFaults(path, text);
        faults.insert(faults.end(), found.begin(), found.end());
    }
    EXPECT_THAT(faults, IsEmpty());
}

TEST(IncludeOrder, EachRoomOfTheProgramIncludesThoseBeforeIt) {
    std::vector<std::string> faults;
    std::set<std::string> rooms;
    for (auto const& [path, text] : readSources("host")) {
        rooms.insert(roomOf(path));
        auto const found = roomFaults(path, text);
        faults.insert(faults.end(), found.begin(), found.end());
    }
    EXPECT_THAT(faults, IsEmpty());
    for (std::set<std::string> const& row : kRooms)
        for (std::string const& room : row)
            EXPECT_THAT(rooms, Contains(room)) << "there is no such room any more";
}

// The rooms that the table of the documentation names in its rows.
TEST(IncludeOrder, TheDocumentationTellsOfTheSameRooms) {
    std::ifstream file(fs::path(FLOWMERE_SOURCE_DIR) / "docs/architecture.md");
    std::vector<std::set<std::string>> rows;
    bool isTable = false;
    static std::regex const room(R"(`([a-z]+)/`)");
    for (std::string line; std::getline(file, line);) {
        bool const isHead = line.starts_with("| room in `host/`");
        isTable = isHead || (isTable && line.starts_with("|"));
        if (!isTable || isHead)
            continue;
        std::set<std::string> names;
        std::string const cell = line.substr(0, line.find('|', 1));
        for (std::sregex_iterator match(cell.begin(), cell.end(), room), end; match != end; ++match)
            // It holds no C++.
            if ((*match)[1] != "python")
                names.insert((*match)[1]);
        if (!names.empty())
            rows.push_back(std::move(names));
    }
    EXPECT_EQ(rows, kRooms);
}

TEST(IncludeOrder, NoTwoHeadersIncludeEachOther) {
    Sources sources = readSources("flowmere");
    sources.merge(readSources("host"));
    EXPECT_THAT(CircleSearch(sources).find(), IsEmpty());
}

TEST(IncludeOrder, EveryHeaderIsReadOnce) {
    Sources sources = readSources("flowmere");
    sources.merge(readSources("host"));
    sources.merge(readSources("tests"));
    for (auto const& [path, text] : sources) {
        if (isHeader(path)) {
            EXPECT_THAT(text, HasSubstr("#pragma once\n")) << path;
        }
    }
}

TEST(IncludeOrderCheck, SeesAnIncludeUpwards) {
    EXPECT_THAT(libraryFaults("flowmere/model/FCNode.h", "#include \"flowmere/algorithms/FCNodeHelper.h\"\n"),
                ElementsAre("flowmere/model/FCNode.h may not include flowmere/algorithms/FCNodeHelper.h"));
    EXPECT_THAT(libraryFaults("flowmere/xml/TXML.cpp", "  #  include <flowmere/model/FCNode.h>\n"),
                ElementsAre("flowmere/xml/TXML.cpp may not include flowmere/model/FCNode.h"));
    EXPECT_THAT(libraryFaults("flowmere/foundation/TuString.cpp", "#include \"flowmere/Flowmere.h\"\n"),
                ElementsAre("flowmere/foundation/TuString.cpp may not include flowmere/Flowmere.h"));
    EXPECT_THAT(libraryFaults("flowmere/execution/FCCommand.cpp", "#include \"flowmere/model/FCNode.h\"\n"), IsEmpty());
}

TEST(IncludeOrderCheck, OpensTheFrontDoorToWorkflowOnly) {
    std::string const text = "#include \"flowmere/workflow/FCWorkFlowReader.h\"\n";
    EXPECT_THAT(libraryFaults("flowmere/persistence/FCUtility.cpp", text), IsEmpty());
    EXPECT_THAT(libraryFaults("flowmere/persistence/FCReader.cpp", text),
                ElementsAre("flowmere/persistence/FCReader.cpp may not include flowmere/workflow/FCWorkFlowReader.h"));
    EXPECT_THAT(libraryFaults("flowmere/persistence/FCUtility.cpp", "#include \"flowmere/execution/FCCommand.h\"\n"),
                ElementsAre("flowmere/persistence/FCUtility.cpp may not include flowmere/execution/FCCommand.h"));
    EXPECT_THAT(libraryFaults("flowmere/workflow/A.cpp", "#include \"flowmere/persistence/FCUtility.h\"\n"),
                ElementsAre("flowmere/workflow/A.cpp includes the front door"));
}

TEST(IncludeOrderCheck, SeesRelativeNamesAndForeignLibraries) {
    EXPECT_THAT(libraryFaults("flowmere/model/A.h", "#include \"FCNode.h\"\n"),
                ElementsAre("flowmere/model/A.h names FCNode.h without its folder"));
    EXPECT_THAT(libraryFaults("flowmere/persistence/A.h", "#include <xercesc/dom/DOM.hpp>\n"),
                ElementsAre("flowmere/persistence/A.h shows the XML parser outside xml/"));
    EXPECT_THAT(libraryFaults("flowmere/xml/A.h", "#include <xercesc/dom/DOM.hpp>\n"), IsEmpty());
    EXPECT_THAT(libraryFaults("flowmere/execution/A.h", "#include <Python.h>\n"),
                ElementsAre("flowmere/execution/A.h shows the interpreter outside the sources of execution/"));
    EXPECT_THAT(libraryFaults("flowmere/execution/A.cpp", "#include <Python.h>\n"), IsEmpty());
    EXPECT_THAT(libraryFaults("flowmere/attic/A.h", ""), ElementsAre("flowmere/attic/A.h lies in no known folder"));
}

TEST(IncludeOrderCheck, SeesAProgramThatLooksInside) {
    EXPECT_THAT(programFaults("host/main.cpp", "#include \"flowmere/model/FCNode.h\"\n"),
                ElementsAre("host/main.cpp may not include flowmere/model/FCNode.h"));
    EXPECT_THAT(programFaults("host/main.cpp", "#include \"flowmere/Flowmere.h\"\n#include <Python.h>\n"), IsEmpty());
    EXPECT_THAT(programFaults("host/commands/Run.cpp", "#include \"Run.h\"\n"),
                ElementsAre("host/commands/Run.cpp names Run.h without its folder"));
}

TEST(IncludeOrderCheck, SeesARoomThatLooksAhead) {
    EXPECT_THAT(roomFaults("host/run/Runner.cpp", "#include \"host/session/Progress.h\"\n"),
                ElementsAre("host/run/Runner.cpp may not include host/session/Progress.h"));
    EXPECT_THAT(roomFaults("host/checks/Checks.h", "#include \"host/diff/Compare.h\"\n"),
                ElementsAre("host/checks/Checks.h may not include host/diff/Compare.h"));
    EXPECT_THAT(roomFaults("host/commands/Run.cpp", "#include \"host/main.h\"\n"),
                ElementsAre("host/commands/Run.cpp may not include host/main.h"));
    EXPECT_THAT(roomFaults("host/attic/A.h", ""), ElementsAre("host/attic/A.h lies in no known room"));
    EXPECT_THAT(roomFaults("host/run/Runner.cpp",
                           "#include \"host/run/Runner.h\"\n#include \"host/basics/Text.h\"\n#include <vector>\n"
                           "#include \"flowmere/Flowmere.h\"\n"),
                IsEmpty());
    EXPECT_THAT(roomFaults("host/main.cpp", "#include \"host/commands/Run.h\"\n"), IsEmpty());
}

TEST(IncludeOrderCheck, SeesACircle) {
    Sources const circle = {
        {"a.h", "#include \"b.h\"\n"},
        {"b.h", "#include \"c.h\"\n"},
        {"c.h", "#include \"b.h\"\n"},
    };
    EXPECT_THAT(CircleSearch(circle).find(), ElementsAre("b.h", "c.h", "b.h"));
    Sources const diamond = {
        {"a.h", "#include \"b.h\"\n#include \"c.h\"\n"},
        {"b.h", "#include \"d.h\"\n"},
        {"c.h", "#include \"d.h\"\n"},
        {"d.h", ""},
    };
    EXPECT_THAT(CircleSearch(diamond).find(), IsEmpty());
}

TEST(Umbrella, HoldsEveryHeaderThatOffersSomething) {
    Sources const sources = readSources("flowmere");
    std::set<std::string> included;
    for (Include const& include : includesOf(sources.at("flowmere/Flowmere.h")))
        EXPECT_TRUE(included.insert(include.name).second) << include.name << " stands twice";
    EXPECT_THAT(included, Contains("flowmere/Version.h"));

    std::vector<std::string> missing;
    for (auto const& [path, text] : sources)
        if (offersSomething(path, text) && included.erase(path) == 0)
            missing.push_back(path);
    EXPECT_THAT(missing, IsEmpty()) << "tools/refresh-umbrella adds them";
    EXPECT_THAT(included, IsEmpty()) << "tools/refresh-umbrella takes them out";
}

TEST(Umbrella, ReachesNoHeaderThatIsMissing) {
    Sources const sources = readSources("flowmere");
    std::vector<std::string> pending = {"flowmere/Flowmere.h"};
    std::set<std::string> seen;
    while (!pending.empty()) {
        std::string const path = pending.back();
        pending.pop_back();
        if (!seen.insert(path).second)
            continue;
        ASSERT_TRUE(sources.contains(path)) << path;
        for (Include const& include : includesOf(sources.at(path)))
            if (include.name.starts_with("flowmere/"))
                pending.push_back(include.name);
    }
    EXPECT_GT(seen.size(), 2U);
}

TEST(TestLayout, EachFolderOfTestsMirrorsOneOfTheHouse) {
    fs::path const top = FLOWMERE_SOURCE_DIR;
    for (auto const& entry : fs::directory_iterator(top / "tests")) {
        // What is of no folder of the library.
        static std::set<std::string> const others = {"data", "docs", "host", "package", "structure", "support"};
        std::string const name = entry.path().filename().string();
        if (!entry.is_directory() || others.contains(name))
            continue;
        EXPECT_TRUE(kMayInclude.contains(name)) << name;
    }
}

} // namespace
