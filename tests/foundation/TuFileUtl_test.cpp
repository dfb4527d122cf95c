#include "flowmere/foundation/TuFileUtl.h"

#include "support/TestSupport.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace fs = std::filesystem;
using flowmere::test::wide;
using flowmere::test::wideWithBackslashes;

namespace {

using TuFileUtlFiles = flowmere::test::ScratchTest;

} // namespace

TEST(TuFileUtl, FileNameIsWhatFollowsTheLastSeparator) {
    struct Case {
        wchar_t const* path;
        wchar_t const* name;
    };
    Case const cases[] = {
        {L"C:\\data\\run.py", L"run.py"},
        {L"/data/run.py", L"run.py"},
        {L"a/b\\c.xml", L"c.xml"},
        {L"a\\b/c.xml", L"c.xml"},
        {L"plain", L"plain"},
        {L"folder\\", L""},
        {L"", L""},
        {nullptr, L""},
    };
    for (Case const& one : cases) {
        EXPECT_STREQ(TuFileUtl(one.path, 0).GetFileName(), one.name);
        EXPECT_STREQ(TuFileUtl(one.path, 1).GetFileName(), one.name);
    }
    EXPECT_STREQ(TuFileUtl().GetFileName(), L"");
}

TEST(TuFileUtl, SetPathReplacesThePath) {
    TuFileUtl file(L"a\\b", 0);
    file.SetPath(L"c\\d.txt", 0);
    EXPECT_STREQ(file.GetFileName(), L"d.txt");
    file.SetPath(file.GetFileName(), 0);
    EXPECT_STREQ(file.GetFileName(), L"d.txt");
}

TEST_F(TuFileUtlFiles, CreatesAFolderWithItsParents) {
    EXPECT_NE(TuFileUtl(scratch.text("one/two/three"), 1).CreateDir(), 0);
    EXPECT_TRUE(fs::is_directory(scratch / "one/two/three"));
    EXPECT_NE(TuFileUtl::CreateADirectory(scratch.text("four/five")), 0);
    EXPECT_TRUE(fs::is_directory(scratch / "four/five"));
}

TEST_F(TuFileUtlFiles, CreatesAFolderOfABackslashPath) {
    EXPECT_NE(TuFileUtl::CreateADirectory(wideWithBackslashes(scratch / "one/two")), 0);
    EXPECT_TRUE(fs::is_directory(scratch / "one/two"));
    EXPECT_NE(TuFileUtl::CreateADirectory(scratch.text("three") + L"\\"), 0);
    EXPECT_TRUE(fs::is_directory(scratch / "three"));
}

TEST_F(TuFileUtlFiles, AnExistingFolderIsASuccess) {
    EXPECT_NE(TuFileUtl::CreateADirectory(scratch.text()), 0);
    EXPECT_NE(TuFileUtl::CreateADirectory(scratch.text()), 0);
}

TEST_F(TuFileUtlFiles, NoFolderWhereAFileStands) {
    scratch.write("taken", "x");
    EXPECT_EQ(TuFileUtl::CreateADirectory(scratch.text("taken")), 0);
    EXPECT_EQ(TuFileUtl::CreateADirectory(scratch.text("taken/below")), 0);
}

TEST_F(TuFileUtlFiles, NoFolderForAnEmptyPath) {
    EXPECT_EQ(TuFileUtl::CreateADirectory(L""), 0);
    EXPECT_EQ(TuFileUtl::CreateADirectory(nullptr), 0);
    EXPECT_EQ(TuFileUtl().CreateDir(), 0);
    EXPECT_EQ(TuFileUtl(L"", 1).CreateDir(), 0);
}

TEST_F(TuFileUtlFiles, CreatesTheFolderOfAFilePath) {
    EXPECT_NE(TuFileUtl(scratch.text("sub/file.txt"), 0).CreateDir(), 0);
    EXPECT_TRUE(fs::is_directory(scratch / "sub"));
    EXPECT_FALSE(fs::exists(scratch / "sub/file.txt"));
    EXPECT_NE(TuFileUtl(L"file.txt", 0).CreateDir(), 0);
    EXPECT_FALSE(fs::exists("file.txt"));
}

TEST_F(TuFileUtlFiles, CopiesItsFileToTheTarget) {
    scratch.write("source.py", "content\n\xFF");
    scratch.write("target.py", "a longer text that stood here before");
    EXPECT_NE(TuFileUtl(scratch.text("source.py"), 0).CopyIn(wideWithBackslashes(scratch / "target.py")), 0);
    EXPECT_EQ(scratch.read("target.py"), "content\n\xFF");
    EXPECT_EQ(scratch.read("source.py"), "content\n\xFF");
    EXPECT_NE(TuFileUtl(wideWithBackslashes(scratch / "source.py"), 0).CopyIn(scratch.text("new.py")), 0);
    EXPECT_EQ(scratch.read("new.py"), "content\n\xFF");
}

TEST_F(TuFileUtlFiles, ACopyOntoItselfChangesNothing) {
    scratch.write("file.py", "content");
    fs::create_symlink(scratch / "file.py", scratch / "link.py");
    EXPECT_NE(TuFileUtl(scratch.text("file.py"), 0).CopyIn(scratch.text("file.py")), 0);
    EXPECT_NE(TuFileUtl(scratch.text("file.py"), 0).CopyIn(scratch.text("link.py")), 0);
    EXPECT_EQ(scratch.read("file.py"), "content");
}

TEST_F(TuFileUtlFiles, ACopyThatCannotBeFails) {
    scratch.write("file.py", "content");
    EXPECT_EQ(TuFileUtl(scratch.text("missing.py"), 0).CopyIn(scratch.text("new.py")), 0);
    EXPECT_FALSE(fs::exists(scratch / "new.py"));
    EXPECT_EQ(TuFileUtl(scratch.text("file.py"), 0).CopyIn(scratch.text("no/such/folder.py")), 0);
    EXPECT_EQ(TuFileUtl(scratch.text("file.py"), 0).CopyIn(scratch.text()), 0);
    EXPECT_EQ(TuFileUtl(scratch.text(), 1).CopyIn(scratch.text("new.py")), 0);
    EXPECT_EQ(TuFileUtl(scratch.text("file.py"), 0).CopyIn(nullptr), 0);
    EXPECT_EQ(TuFileUtl(scratch.text("file.py"), 0).CopyIn(L""), 0);
    EXPECT_EQ(TuFileUtl().CopyIn(scratch.text("new.py")), 0);
}

TEST_F(TuFileUtlFiles, IsFileNameTellsExistingFiles) {
    scratch.write("file.xml", "");
    EXPECT_NE(TuFileUtl::IsFileName(scratch.text("file.xml")), 0);
    EXPECT_NE(TuFileUtl::IsFileName(wideWithBackslashes(scratch / "file.xml")), 0);
    EXPECT_EQ(TuFileUtl::IsFileName(scratch.text("missing.xml")), 0);
    EXPECT_EQ(TuFileUtl::IsFileName(L""), 0);
    EXPECT_EQ(TuFileUtl::IsFileName(nullptr), 0);
}

TEST_F(TuFileUtlFiles, AFolderIsNoFile) {
    EXPECT_EQ(TuFileUtl::IsFileName(scratch.text()), 0);
    EXPECT_EQ(TuFOpen(scratch.path().c_str(), "rb"), nullptr);
    EXPECT_EQ(TuFOpen(scratch.path().c_str(), "wb"), nullptr);
}

TEST_F(TuFileUtlFiles, APipeIsNoFileAndDoesNotBlock) {
    std::string const pipe = (scratch / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(TuFOpen(pipe.c_str(), "rb"), nullptr);
    EXPECT_EQ(TuFileUtl::IsFileName(wide(pipe)), 0);
}

TEST_F(TuFileUtlFiles, NamesOfAnyCharactersWork) {
    std::string const name = "Gr\xC3\xB6\xC3\x9F"
                             "e \xFF.txt";
    scratch.write(name, "x");
    EXPECT_NE(TuFileUtl::IsFileName(scratch.text(name)), 0);
    std::FILE* const file = TuFOpen((scratch / name).c_str(), "rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(TuFClose(file), 0);
}

TEST_F(TuFileUtlFiles, OpensReadsAndWrites) {
    std::string path = (scratch / "out.txt").string();
    std::FILE* file = TuFOpen(path.c_str(), "wb", __FILE__, __LINE__);
    ASSERT_NE(file, nullptr);
    std::fputs("text", file);
    EXPECT_EQ(TuFClose(file, __FILE__, __LINE__), 0);
    EXPECT_EQ(scratch.read("out.txt"), "text");

    std::replace(path.begin(), path.end(), '/', '\\');
    file = TuFOpen(path.c_str(), "rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fgetc(file), 't');
    EXPECT_EQ(TuFClose(file), 0);
}

TEST_F(TuFileUtlFiles, WhatCannotBeOpenedGivesNull) {
    EXPECT_EQ(TuFOpen((scratch / "missing").c_str(), "rb"), nullptr);
    EXPECT_EQ(TuFOpen((scratch / "no/folder").c_str(), "wb"), nullptr);
    EXPECT_EQ(TuFOpen("", "rb"), nullptr);
    EXPECT_EQ(TuFOpen(nullptr, "rb"), nullptr);
    EXPECT_EQ(TuFOpen((scratch / "missing").c_str(), nullptr), nullptr);
    EXPECT_EQ(TuFClose(nullptr), EOF);
}
