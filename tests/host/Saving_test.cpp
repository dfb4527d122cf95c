#include "Study.h"

#include "host/basics/Command.h"
#include "host/document/Document.h"
#include "host/document/ReadBack.h"
#include "host/files/SafeFile.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <functional>
#include <random>
#include <set>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;
using flowmere::host::Document;
using flowmere::host::Failure;
using flowmere::host::Loss;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string const kPlain =
    process(block("A", variable("n", "Int", "7")) + block("B") + connector("A", "B"), variable("Total", "Double", "1"));

std::string failureOf(std::function<void()> const& attempt) {
    try {
        attempt();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.exitCode(), 2);
        return failure.what();
    }
    return {};
}

std::vector<std::string> namesIn(fs::path const& folder) {
    std::vector<std::string> names;
    for (auto const& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<Loss> firstLoss(IFCNode& tree, IFCNode& readBack) {
    return flowmere::host::compareReadBack(tree, readBack).loss;
}

class Saving : public ScratchTest {
protected:
    void SetUp() override { scratch.write("p.xml", kPlain); }
    std::string path(std::string const& name) const { return (scratch / name).string(); }
    std::string message(std::string const& name, std::string const& cause) const {
        return "flowmere: " + path(name) + ": cannot be written: " + cause;
    }
};

TEST_F(Saving, PutsTheDocumentInThePlaceOfTheOldFile) {
    Document document(path("p.xml"));
    document.variable("A.n").SetValue(L"8");
    scratch.write("q.xml", "old");
    ::chmod(path("q.xml").c_str(), 0640);
    document.save(path("q.xml"));
    EXPECT_THAT(scratch.read("q.xml"), HasSubstr(">8</VARIABLE>"));
    struct stat status {};
    ASSERT_EQ(::stat(path("q.xml").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    EXPECT_EQ(scratch.read("p.xml"), kPlain);
    // What was saved is saved again as it is.
    Document(path("q.xml")).save(path("r.xml"));
    EXPECT_EQ(scratch.read("r.xml"), scratch.read("q.xml"));
    EXPECT_THAT(namesIn(scratch.path()), ElementsAre("p.xml", "q.xml", "r.xml"));
}

TEST_F(Saving, OverItselfWorksAgainAndAgain) {
    Document document(path("p.xml"));
    fs::create_symlink("p.xml", scratch / "link.xml");
    for (wchar_t const* const value : {L"1", L"22", L"3"}) {
        document.variable("A.n").SetValue(value);
        document.save(path("p.xml"));
        document.save(path("link.xml"));
    }
    EXPECT_THAT(scratch.read("p.xml"), HasSubstr(">3</VARIABLE>"));
    EXPECT_TRUE(fs::is_symlink(scratch / "link.xml"));
}

TEST_F(Saving, AFileThatAnotherProgramHasChangedIsNotReplaced) {
    std::string const cause = "another program has changed it since it was read";
    struct Row {
        char const* name;
        std::function<void()> change;
    };
    auto const later = [this] {
        // Of the same size: the time alone tells.
        std::string changed = kPlain;
        changed[changed.find(">7<") + 1] = '9';
        scratch.write("p.xml", changed);
        fs::last_write_time(scratch / "p.xml", fs::file_time_type::clock::now() + std::chrono::seconds(5));
    };
    auto const replaced = [this] {
        fs::file_time_type const time = fs::last_write_time(scratch / "p.xml");
        scratch.write("other", kPlain);
        fs::last_write_time(scratch / "other", time);
        fs::rename(scratch / "other", scratch / "p.xml");
    };
    for (auto const& [name, change] : {Row{"longer",
                                           [this] {
                                               std::ofstream(path("p.xml"), std::ios::app) << "<!-- mine -->\n";
                                           }},
                                       Row{"written anew", later}, Row{"replaced", replaced}}) {
        scratch.write("p.xml", kPlain);
        fs::remove(scratch / "link.xml");
        fs::create_symlink("p.xml", scratch / "link.xml");
        Document document(path("p.xml"));
        change();
        std::string const changed = scratch.read("p.xml");
        EXPECT_EQ(failureOf([&] { document.save(path("p.xml")); }), message("p.xml", cause)) << name;
        EXPECT_EQ(failureOf([&] { document.save(path("link.xml")); }), message("link.xml", cause)) << name;
        EXPECT_EQ(scratch.read("p.xml"), changed) << name;
        // There is a way to keep the work.
        document.save(path("mine.xml"));
        EXPECT_THAT(scratch.read("mine.xml"), HasSubstr(">7</VARIABLE>")) << name;
        EXPECT_THAT(namesIn(scratch.path()), ElementsAre("link.xml", "mine.xml", "p.xml")) << name;
    }
}

TEST_F(Saving, AFileThatIsGoneIsWrittenAnew) {
    Document document(path("p.xml"));
    fs::remove(scratch / "p.xml");
    document.save(path("p.xml"));
    EXPECT_THAT(scratch.read("p.xml"), HasSubstr(">7</VARIABLE>"));
}

TEST_F(Saving, IsOneAtATime) {
    Document document(path("p.xml"));
    flowmere::host::SafeFile const other(path("p.xml"));
    EXPECT_EQ(failureOf([&] { document.save(path("p.xml")); }), message("p.xml", "another program is saving it"));
    EXPECT_EQ(scratch.read("p.xml"), kPlain);
}

TEST_F(Saving, NamesCountFromTheFolderInWhichTheDocumentWasOpened) {
    fs::path const before = fs::current_path();
    fs::create_directories(scratch / "elsewhere");
    fs::current_path(scratch.path());
    Document document("p.xml");
    fs::current_path(scratch / "elsewhere");
    document.save("q.xml");
    fs::current_path(before);
    EXPECT_TRUE(fs::exists(scratch / "q.xml"));
    EXPECT_TRUE(fs::is_empty(scratch / "elsewhere"));
}

TEST_F(Saving, ValuesOfAnyTextComeBack) {
    std::string const odd = "<a & \"b\">\tend ]]> \xC3\xA9 \xF0\x9F\x98\x80 'x'";
    Document document(path("p.xml"));
    document.variable("A.n").SetValue(TuString(odd.c_str()));
    document.save(path("q.xml"));
    Document const again(path("q.xml"));
    EXPECT_EQ(std::string(TuString(again.variable("A.n").GetValue()).GetAnsiBuffer()), odd);
    // Of a path each backslash becomes a slash.
    document.variable("A.n").SetValue(L"C:\\a\\b");
    document.save(path("q.xml"));
    EXPECT_STREQ(Document(path("q.xml")).variable("A.n").GetValue(), L"C:/a/b");
}

TEST_F(Saving, WhiteSpaceThatADocumentDoesNotKeepIsTold) {
    Document document(path("p.xml"));
    testing::internal::CaptureStderr();
    for (wchar_t const* const value : {L" a", L"a ", L"a\nb", L"\r\n", L" "}) {
        document.variable("A.n").SetValue(value);
        document.save(path("q.xml"));
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "flowmere: " + path("q.xml") +
                      ": A.n: a process document does not keep all white space of its value\n");
        testing::internal::CaptureStderr();
    }
    document.variable("A.n").SetValue(L"a b");
    document.save(path("q.xml"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Saving, APlaceThatReadingCutsOffByAHundredthIsNoLoss) {
    std::string text = kPlain;
    for (std::size_t at = text.find("Point_X=\"1\""); at != std::string::npos; at = text.find("Point_X=\"1\"", at))
        text.replace(at, 11, "Point_X=\"0.58\"");
    scratch.write("p.xml", text);
    Document document((scratch / "p.xml").string());
    EXPECT_EQ(failureOf([&] { document.save((scratch / "out.xml").string()); }), "");
    EXPECT_THAT(scratch.read("out.xml"), HasSubstr("Point_X=\"0.570\""));
}

TEST_F(Saving, WhatADocumentCannotHoldIsNotLostInSilence) {
    scratch.write("old.xml", "old");
    {
        Document document(path("p.xml"));
        document.variable("A.n").SetValue(L"a\x01z");
        EXPECT_EQ(failureOf([&] { document.save(path("old.xml")); }),
                  "flowmere: " + path("old.xml") +
                      ": A.n: cannot be written: a process document does not keep its value");
    }
    {
        Document document(path("p.xml"));
        document.block("B").SetNodeId(L"");
        EXPECT_EQ(failureOf([&] { document.save(path("old.xml")); }),
                  "flowmere: " + path("old.xml") +
                      ": A: cannot be written: a process document does not keep a connector from it");
    }
    {
        Document document(path("p.xml"));
        document.block("B").GetTuRect()->left = 2000000000;
        document.block("B").GetTuRect()->right = -2000000000;
        EXPECT_EQ(failureOf([&] { document.save(path("old.xml")); }),
                  "flowmere: " + path("old.xml") +
                      ": B: cannot be written: a process document does not keep its place in the diagram");
    }
    EXPECT_EQ(scratch.read("old.xml"), "old");
    EXPECT_THAT(namesIn(scratch.path()), ElementsAre("old.xml", "p.xml"));
}

TEST_F(Saving, EachDocumentOfTheTestsComesBackAsItWas) {
    int documents = 0;
    for (char const* const folder : {"host/sound", "host/faulty", "persistence"})
        for (auto const& entry : fs::directory_iterator(dataFolder() / folder)) {
            std::string const name = entry.path().filename().string();
            // A template of one block is no process.
            if ((!name.ends_with(".xml") && !name.ends_with(".bpt")) || name == "single_block.bpt" ||
                name == "favourites.xml")
                continue;
            Document document(entry.path().string());
            document.save(path("copy.xml"));
            EXPECT_EQ(firstLoss(document.process(), Document(path("copy.xml")).process()), std::nullopt) << name;
            ++documents;
        }
    EXPECT_GE(documents, 5);
}

// What is compared

struct Change {
    char const* name;
    std::string from; // in the document
    std::string to;
    std::string place;
    std::string what;
};

std::string const kRich =
    process(block("A", variable("n", "Int", "7", "Input", ".Total") + variable("m", "Double", "1")) +
                subProcess("S", block("X", "", "", "Oval") + block("Y") + connector("X", "Y", 4, 8)) +
                connector("A", "S") + "<SUB_GRP BlockString=\"Notes\" Name=\"\"/>\n",
            variable("Total", "Double", "1"));

class LossOfRich : public testing::TestWithParam<Change> {};

TEST_P(LossOfRich, IsFound) {
    ScratchFolder const scratch;
    std::string changed = kRich;
    std::size_t const at = changed.find(GetParam().from);
    ASSERT_NE(at, std::string::npos);
    changed.replace(at, GetParam().from.size(), GetParam().to);
    Document const rich(scratch.write("rich.xml", kRich).string());
    Document const other(scratch.write("other.xml", changed).string());
    auto const loss = firstLoss(rich.process(), other.process());
    ASSERT_TRUE(loss.has_value());
    EXPECT_EQ(loss->place, GetParam().place);
    EXPECT_EQ(loss->what, GetParam().what);
    EXPECT_EQ(firstLoss(rich.process(), Document(scratch.write("again.xml", kRich).string()).process()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, LossOfRich,
    testing::Values(
        Change{"RootCaption", "Name=\"Test\"", "Name=\"Toast\"", "", "its caption"},
        Change{"Id", "<BLOCK Name=\"Y\"", "<BLOCK Name=\"Z\"", "S.X", "a connector from it"},
        Change{"LastBlock", block("Y"), "", "S.X", "a connector from it"},
        Change{"Caption", "BlockString=\"Y\"", "BlockString=\"Why\"", "S.Y", "its caption"},
        Change{"Kind", "Shape=\"Oval\"", "Shape=\"Decision\"", "S.X", "its kind"},
        Change{"Place", "Point_X=\"1\" Point_Y=\"1\"", "Point_X=\"1\" Point_Y=\"2\"", "A", "its place in the diagram"},
        Change{"Script", "<SCRIPT Name=\"s.Y\"", "<SCRIPT Name=\"s.Z\"", "S.Y", "its script"},
        Change{"ScriptType", "<SCRIPT Name=\"s.Y\" ScriptType=\"PYTHON\"", "<SCRIPT Name=\"s.Y\" ScriptType=\"TCMD\"",
               "S.Y", "its script"},
        Change{"Marks", "<FLAGS Reference=\"0\" />", "<FLAGS Reference=\"0\" Break=\"true\"/>", "A", "its marks"},
        Change{"State", "BlockString=\"Y\"", "BlockString=\"Y\" ExecutionStatus=\"Skipped\"", "S.Y", "its state"},
        Change{"Border", "<SCRIPT Name=\"s.Y\"", "<BORDER LineThickness=\"9\" Version=\"1\"/>\n<SCRIPT Name=\"s.Y\"",
               "S.Y", "its border"},
        Change{"Font", "<SCRIPT Name=\"s.Y\"",
               "<FONT FontName=\"Times\" FontSize=\"9\" Version=\"1\"/>\n<SCRIPT Name=\"s.Y\"", "S.Y", "its font"},
        Change{"Help", "<SCRIPT Name=\"s.Y\"", "<HELP Description=\"more\"/>\n<SCRIPT Name=\"s.Y\"", "S.Y",
               "its description"},
        Change{"Variable", variable("m", "Double", "1"), "", "A.m", ""},
        Change{"VariableName", "Name=\"m\"", "Name=\"k\"", "A.m", ""},
        Change{"Value", ">7<", ">8<", "A.n", "its value"},
        Change{"ProcessValue", ">1</VARIABLE>\n</PROCESS", ">2</VARIABLE>\n</PROCESS", ".Total", "its value"},
        Change{"Link", "LinkPath=\".Total\"", "LinkPath=\"A.m\"", "A.n", "its link"},
        Change{"Direction", "IOType=\"Input\" Scope=\"Local\" LinkPath=\".Total\"",
               "IOType=\"Output\" Scope=\"Local\" LinkPath=\".Total\"", "A.n", "its direction"},
        Change{"Scope", "Scope=\"Local\" LinkPath=\".Total\"", "Scope=\"Global\" LinkPath=\".Total\"", "A.n",
               "its scope"},
        Change{"Connector", connector("A", "S"), "", "A", "a connector from it"},
        Change{"Grip", connector("X", "Y", 4, 8), connector("X", "Y", 4, 2), "S.X", "a connector from it"},
        Change{"OtherNode", "<SUB_GRP BlockString=\"Notes\" Name=\"\"/>\n", "", "\"Notes\"", ""}),
    [](auto const& row) { return std::string(row.param.name); });

TEST(Losses, AreNoneWhereThereIsMore) {
    ScratchFolder const scratch;
    Document const plain(scratch.write("plain.xml", kPlain).string());
    std::string more = kPlain;
    more.insert(more.rfind("</Process>"), block("C", variable("x", "Int", "1")) + connector("B", "C"));
    Document const other(scratch.write("other.xml", more).string());
    EXPECT_EQ(firstLoss(plain.process(), other.process()), std::nullopt);
    auto const loss = firstLoss(other.process(), plain.process());
    ASSERT_TRUE(loss.has_value());
    EXPECT_EQ(loss->place, "B");
}

TEST(Losses, OfOneOfTwoThatAreAlikeAreFound) {
    ScratchFolder const scratch;
    std::string const two = process(block("A", variable("n", "Int", "1") + variable("n", "Int", "1")) + block("A"));
    std::string const one = process(block("A", variable("n", "Int", "1")) + block("A"));
    Document const first(scratch.write("two.xml", two).string());
    Document const second(scratch.write("one.xml", one).string());
    auto const loss = firstLoss(first.process(), second.process());
    ASSERT_TRUE(loss.has_value());
    EXPECT_EQ(loss->place, "A.n");
}

TEST(Losses, BelowALinkedProcessAreOnlyThoseOfNames) {
    ScratchFolder const scratch;
    scratch.write("inner.xml", process(block("X", variable("n", "Int", "1"))));
    scratch.write("changed.xml", process(block("X", variable("n", "Int", "2"))));
    scratch.write("fewer.xml", process(block("X")));
    Document const inner(scratch.write("p.xml", process("<PROCESS Name=\"N\" FILE=\"inner.xml\"/>")).string());
    Document const changed(scratch.write("q.xml", process("<PROCESS Name=\"N\" FILE=\"changed.xml\"/>")).string());
    Document const fewer(scratch.write("r.xml", process("<PROCESS Name=\"N\" FILE=\"fewer.xml\"/>")).string());
    EXPECT_EQ(firstLoss(inner.process(), changed.process()), std::nullopt);
    auto const loss = firstLoss(inner.process(), fewer.process());
    ASSERT_TRUE(loss.has_value());
    EXPECT_THAT(loss->place, HasSubstr("X.n"));
}

// The program

// Runs the program with a limit for the size of files, which stands for a disk that is full.
std::pair<int, std::string> runLimited(fs::path const& folder, std::string const& arguments, int blocks) {
    std::string const command = "cd '" + folder.string() + "' && (ulimit -f " + std::to_string(blocks) + "; exec '" +
                                FLOWMERE_PROGRAM + "' " + arguments + ") 2>&1 >/dev/null";
    std::FILE* const pipe = ::popen(("exec bash -c \"" + command + "\"").c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("no pipe");
    std::string text;
    char buffer[4096];
    for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, count);
    int const status = ::pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

TEST(FullDisk, LeavesTheOldFileAndIsOneLine) {
    Study study;
    for (std::string const name : {"A", "B"})
        study.scriptOf(name, "pass");
    study.document(process(block("A", variable("n", "String", std::string(200000, 'x'))) + block("B")));
    study.folder().write("out.xml", "old");
    study.folder().write("p.for", "old");
    auto const before = namesIn(study.path());
    {
        auto const [code, said] = runLimited(study.path(), "run p.xml --save out.xml", 64);
        EXPECT_EQ(code, 2);
        EXPECT_EQ(said, "flowmere: out.xml: cannot be written: File too large\n");
    }
    {
        auto const [code, said] = runLimited(study.path(), "format p.xml", 64);
        EXPECT_EQ(code, 2);
        EXPECT_THAT(said, testing::MatchesRegex("flowmere: p.for: cannot be written: there is no room in /[^\n]*\n"));
        EXPECT_THAT(said, Not(HasSubstr(".flowmere-")));
    }
    EXPECT_EQ(study.folder().read("out.xml"), "old");
    EXPECT_EQ(study.folder().read("p.for"), "old");
    EXPECT_EQ(namesIn(study.path()), before);
}

TEST(FullDisk, LeavesTheScriptsThatWereThere) {
    Study study;
    study.document(process(block("A", variable("n", "Int", "1"), "pkg.A")));
    fs::create_directories(study.path() / "out/pkg");
    study.folder().write("out/pkg/A.py", "mine");
    auto const [code, said] = runLimited(study.path(), "generate p.xml --out out", 1);
    EXPECT_EQ(code, 2);
    EXPECT_THAT(said, testing::MatchesRegex("flowmere: out: cannot be written: there is no room in /[^\n]*\n"));
    EXPECT_THAT(said, Not(HasSubstr(".flowmere-")));
    EXPECT_EQ(study.folder().read("out/pkg/A.py"), "mine");
}

TEST(TwoPrograms, ThatSaveTheSameFileAtOnceAreTold) {
    Study study;
    study.scriptOf("A", "pass");
    study.document(process(block("A")));
    study.folder().write("out.xml", "old");
    flowmere::host::SafeFile const other((study.path() / "out.xml").string());
    ProgramRun const run = study.run({"--save", "out.xml"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: out.xml: cannot be written: another program is saving it\n");
    EXPECT_EQ(study.folder().read("out.xml"), "old");
}

TEST(TwoPrograms, TheSecondDoesNotUndoWhatTheFirstSaved) {
    Study study;
    // While the process runs, another program writes the document.
    study.scriptOf("A", "open('p.xml', 'a').write('<!-- mine -->\\n')");
    study.document(process(block("A")));
    ProgramRun const run = study.run({"--save", "p.xml"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: p.xml: cannot be written: another program has changed it since it was read\n");
    EXPECT_EQ(study.folder().read("p.xml"), process(block("A")) + "<!-- mine -->\n");
}

TEST(Scripts, ThatChangeTheFolderDoNotMoveWhatIsSaved) {
    Study study;
    fs::create_directories(study.path() / "elsewhere");
    study.scriptOf("A", "import os\nos.chdir('elsewhere')");
    study.document(process(block("A")));
    EXPECT_EQ(study.run({"--save", "out.xml"}).exitCode, 0);
    EXPECT_TRUE(fs::exists(study.path() / "out.xml"));
    EXPECT_TRUE(fs::is_empty(study.path() / "elsewhere"));
}

TEST(KilledPrograms, LeaveTheOldDocumentOrTheNewOne) {
    ScratchFolder const scratch;
    std::string blocks;
    for (int number = 0; number < 60; ++number)
        blocks += block("B" + std::to_string(number), variable("n", "String", std::string(2000, 'v')));
    scratch.write("p.xml", process(blocks, variable("Total", "String", "first")));
    std::string const file = (scratch / "p.xml").string();
    // Both forms that may be found, as they are saved.
    std::set<std::string> forms;
    Document document(file);
    auto const begin = std::chrono::steady_clock::now();
    for (char const* const value : {"a", "b"}) {
        document.variable("Total").SetValue(TuString(value));
        document.save(file);
        forms.insert(scratch.read("p.xml"));
    }
    ASSERT_EQ(forms.size(), 2U);
    auto const taken =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin).count();
    std::mt19937 random(3);
    int leftovers = 0;
    for (int round = 0; round < 50; ++round) {
        pid_t const child = ::fork();
        if (child == 0) {
            try {
                for (int turn = 0;; ++turn) {
                    document.variable("Total").SetValue(turn % 2 == 0 ? L"a" : L"b");
                    document.save((scratch / "copy.xml").string());
                }
            } catch (...) {
            }
            ::_exit(1);
        }
        // In the first save or in the second, each of which takes half the time.
        std::this_thread::sleep_for(std::chrono::microseconds(static_cast<long>(random() % 1000) * taken / 1000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "a save failed";
        leftovers += fs::exists(scratch / ".copy.xml.saving") ? 1 : 0;
        if (fs::exists(scratch / "copy.xml")) {
            ASSERT_EQ(forms.count(scratch.read("copy.xml")), 1U) << "round " << round;
        }
    }
    EXPECT_GT(leftovers, 0) << "no kill came in the middle of a save";
    EXPECT_TRUE(fs::exists(scratch / "copy.xml"));
    document.save((scratch / "copy.xml").string());
    EXPECT_THAT(namesIn(scratch.path()), ElementsAre("copy.xml", "p.xml"));
}

} // namespace
