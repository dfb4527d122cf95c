#include "flowmere/foundation/Files.h"

#include "support/TestSupport.h"

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

using Files = flowmere::test::ScratchTest;

} // namespace

TEST_F(Files, WritesAndReadsBytesAsTheyAre) {
    std::string const bytes("line\r\n\0\xFF end", 12);
    ASSERT_TRUE(flowmere::writeFile(scratch.text("file"), bytes));
    EXPECT_EQ(scratch.read("file"), bytes);
    std::string read = "old";
    ASSERT_TRUE(flowmere::readFile(scratch.text("file"), read));
    EXPECT_EQ(read, bytes);
}

TEST_F(Files, ReadsFilesOfAnySize) {
    std::string const bytes(100000, 'x');
    scratch.write("large", bytes);
    scratch.write("empty", "");
    std::string read;
    ASSERT_TRUE(flowmere::readFile(scratch.text("large"), read));
    EXPECT_EQ(read, bytes);
    ASSERT_TRUE(flowmere::readFile(scratch.text("empty"), read));
    EXPECT_EQ(read, "");
}

TEST_F(Files, WritingReplacesTheContent) {
    scratch.write("file", "a long text");
    ASSERT_TRUE(flowmere::writeFile(scratch.text("file"), "short"));
    EXPECT_EQ(scratch.read("file"), "short");
    ASSERT_TRUE(flowmere::writeFile(scratch.text("file"), ""));
    EXPECT_EQ(scratch.read("file"), "");
}

TEST_F(Files, AFailedReadLeavesTheTextAlone) {
    std::string read = "old";
    EXPECT_FALSE(flowmere::readFile(scratch.text("missing"), read));
    EXPECT_FALSE(flowmere::readFile(scratch.text(), read));
    EXPECT_FALSE(flowmere::readFile(nullptr, read));
    EXPECT_FALSE(flowmere::readFile(L"", read));
    EXPECT_EQ(read, "old");
}

TEST_F(Files, AFailedWriteIsTold) {
    EXPECT_FALSE(flowmere::writeFile(scratch.text("no/folder"), "x"));
    EXPECT_FALSE(flowmere::writeFile(scratch.text(), "x"));
    EXPECT_FALSE(flowmere::writeFile(nullptr, "x"));
    EXPECT_FALSE(flowmere::writeFile(L"", "x"));
    EXPECT_FALSE(flowmere::writeFile(L"/dev/full", "x"));
}

TEST_F(Files, CreatesFolders) {
    EXPECT_TRUE(flowmere::createFolder(scratch.text("a/b")));
    EXPECT_TRUE(fs::is_directory(scratch / "a/b"));
    EXPECT_FALSE(flowmere::createFolder(nullptr));
    EXPECT_FALSE(flowmere::createFolder(L""));
}

TEST_F(Files, TellsReadableFiles) {
    scratch.write("file", "x");
    EXPECT_TRUE(flowmere::isReadableFile(scratch.text("file")));
    EXPECT_FALSE(flowmere::isReadableFile(scratch.text("missing")));
    EXPECT_FALSE(flowmere::isReadableFile(scratch.text()));
    EXPECT_FALSE(flowmere::isReadableFile(nullptr));
}

TEST_F(Files, ALinkLeadsToItsFile) {
    scratch.write("file", "x");
    fs::create_symlink(scratch / "file", scratch / "link");
    fs::create_symlink(scratch / "gone", scratch / "dangling");
    EXPECT_TRUE(flowmere::isReadableFile(scratch.text("link")));
    EXPECT_FALSE(flowmere::isReadableFile(scratch.text("dangling")));
}
