#include "host/files/SafeFile.h"

#include "host/basics/Command.h"

#include "TestSupport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <random>
#include <sched.h>
#include <string>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;
using flowmere::host::Failure;
using flowmere::host::SafeFile;
using flowmere::host::saveBytes;
using flowmere::host::SystemCalls;
using flowmere::host::systemCalls;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// What an attempt has to tell; empty when it went well.
std::string failureOf(std::function<void()> const& attempt) {
    try {
        attempt();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.exitCode(), 2);
        return failure.what();
    }
    return {};
}

mode_t modeOf(fs::path const& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

// Runs in a process of its own, and gives what it returns. Nothing of the test's process is torn down in it.
int inChild(std::function<int()> const& work) {
    pid_t const child = ::fork();
    if (child == 0) {
        int result = 99;
        try {
            result = work();
        } catch (...) {
        }
        ::_exit(result);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// The mask of the process for new files, given back at the end.
class Mask {
public:
    explicit Mask(mode_t mask) : m_before(::umask(mask)) {}
    ~Mask() { ::umask(m_before); }
    Mask(Mask const&) = delete;
    Mask& operator=(Mask const&) = delete;

private:
    mode_t m_before;
};

class SafeFileTest : public ScratchTest {
protected:
    std::string path(std::string const& name) const { return (scratch / name).string(); }
    std::string message(std::string const& name, std::string const& cause) const {
        return flowmere::host::errorLine(path(name), "", "cannot be written: " + cause);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (auto const& entry : fs::directory_iterator(scratch.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(SafeFileTest, WritesWhatItIsGiven) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    for (std::string const& bytes : {std::string(), std::string("x"), all, std::string(3000000, 'y')}) {
        saveBytes(path("a"), bytes);
        EXPECT_TRUE(scratch.read("a") == bytes);
    }
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(SafeFileTest, TheOldFileStaysUntilTheNewOneIsCommitted) {
    scratch.write("a.xml", "old");
    {
        SafeFile file(path("a.xml"));
        EXPECT_EQ(file.path(), scratch / ".a.xml.saving");
        EXPECT_EQ(file.destination(), scratch / "a.xml");
        file.write("new");
        EXPECT_EQ(scratch.read("a.xml"), "old");
        EXPECT_EQ(scratch.read(".a.xml.saving"), "new");
        file.write("newer");
        file.commit();
        EXPECT_EQ(scratch.read("a.xml"), "newer");
        EXPECT_THAT(names(), ElementsAre("a.xml"));
    }
    EXPECT_EQ(scratch.read("a.xml"), "newer");
}

TEST_F(SafeFileTest, WithoutCommitNothingIsLeft) {
    scratch.write("a", "old");
    for (char const* const name : {"a", "b"}) {
        SafeFile file(path(name));
        file.write("new");
    }
    EXPECT_EQ(scratch.read("a"), "old");
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(SafeFileTest, OthersMayWriteTheNewFileInPlace) {
    scratch.write("a", "old");
    SafeFile file(path("a"));
    std::ofstream(file.path()) << "by a stream";
    file.commit();
    EXPECT_EQ(scratch.read("a"), "by a stream");
}

TEST_F(SafeFileTest, AFileThatReplacesTheNewOneIsNotTakenForIt) {
    scratch.write("a", "old");
    scratch.write("stranger", "stranger");
    {
        SafeFile file(path("a"));
        fs::rename(path("stranger"), file.path());
        EXPECT_EQ(failureOf([&] { file.commit(); }), message("a", "the new file was replaced while it was written"));
    }
    EXPECT_EQ(scratch.read("a"), "old");
    EXPECT_EQ(scratch.read(".a.saving"), "stranger");
}

TEST_F(SafeFileTest, PermissionsAreThoseOfTheOldFileOrOfAnyNewFile) {
    Mask const mask(027);
    saveBytes(path("new"), "x");
    EXPECT_EQ(modeOf(path("new")), 0640U);
    for (mode_t const mode : {0600U, 0644U, 0666U, 0755U, 0640U}) {
        scratch.write("old", "old");
        ::chmod(path("old").c_str(), mode);
        SafeFile file(path("old"));
        EXPECT_EQ(modeOf(file.path()), 0600U) << "open to others before it is in place";
        file.write("new");
        file.commit();
        EXPECT_EQ(modeOf(path("old")), mode);
    }
}

TEST_F(SafeFileTest, OwnerAndGroupAreThoseOfTheOldFile) {
    scratch.write("a", "old");
    bool const mayGive = ::chown(path("a").c_str(), 65534, 65533) == 0;
    struct stat before {};
    ASSERT_EQ(::stat(path("a").c_str(), &before), 0);
    saveBytes(path("a"), "new");
    struct stat after {};
    ASSERT_EQ(::stat(path("a").c_str(), &after), 0);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_NE(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_uid == 65534, mayGive);
}

TEST_F(SafeFileTest, ALinkStaysAndTheFileAtItsEndIsReplaced) {
    fs::create_directories(scratch / "folder");
    scratch.write("folder/real", "old");
    fs::create_symlink("folder/real", scratch / "first");
    fs::create_symlink(scratch / "first", scratch / "second");
    saveBytes(path("second"), "new");
    EXPECT_TRUE(fs::is_symlink(scratch / "first"));
    EXPECT_TRUE(fs::is_symlink(scratch / "second"));
    EXPECT_EQ(scratch.read("folder/real"), "new");

    fs::create_symlink("folder/later", scratch / "dangling");
    saveBytes(path("dangling"), "made");
    EXPECT_TRUE(fs::is_symlink(scratch / "dangling"));
    EXPECT_EQ(scratch.read("folder/later"), "made");

    fs::create_symlink("folder", scratch / "way");
    saveBytes(path("way/real"), "by another way");
    EXPECT_EQ(scratch.read("folder/real"), "by another way");
    EXPECT_THAT(names(), ElementsAre("dangling", "first", "folder", "second", "way"));
}

TEST_F(SafeFileTest, ARelativeNameCountsFromTheGivenFolder) {
    fs::create_directories(scratch / "folder");
    SafeFile file("a", scratch / "folder");
    EXPECT_EQ(file.destination(), scratch / "folder/a");
    file.write("x");
    file.commit();
    EXPECT_EQ(scratch.read("folder/a"), "x");
    EXPECT_EQ(SafeFile(path("b"), scratch / "folder").destination(), scratch / "b");
    EXPECT_EQ(SafeFile("flowmere-safe-file").destination(), fs::current_path() / "flowmere-safe-file");
}

TEST_F(SafeFileTest, TargetsThatNoFileCanTakeAreOneLine) {
    fs::create_directories(scratch / "folder");
    scratch.write("file", "old");
    fs::create_symlink("loop", scratch / "loop");
    fs::create_symlink("nowhere/file", scratch / "lost");
    fs::create_symlink("folder", scratch / "to folder");
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    struct Row {
        std::string name;
        std::string cause;
    };
    std::string const here = scratch.path().string();
    std::vector<Row> const rows = {
        {"folder", "it is a folder"},
        {"folder/", "it is a folder"},
        {"folder/.", "it is a folder"},
        {"to folder", "it is a folder"},
        {"pipe", "it is no regular file"},
        {"nowhere/file", "there is no folder " + here + "/nowhere"},
        {"nowhere/", "it is no file name"},
        {"file/file", "there is no folder " + here + "/file"},
        {"lost", "there is no folder " + here + "/nowhere"},
        {"loop", "Too many levels of symbolic links"},
        {"a\\b", "its path holds a backslash"},
        {"line\nbreak/x", "there is no folder " + here + "/line\nbreak"},
        {std::string(300, 'x'), "File name too long"},
        {std::string("zero\0byte", 9), "its name holds a zero byte"},
    };
    auto const before = names();
    for (Row const& row : rows) {
        EXPECT_EQ(failureOf([&] { SafeFile const file(path(row.name)); }), message(row.name, row.cause)) << row.name;
        EXPECT_NE(failureOf([&] { SafeFile::check(path(row.name)); }), "") << row.name;
    }
    EXPECT_EQ(failureOf([&] { SafeFile const file("/dev/full"); }),
              "flowmere: /dev/full: cannot be written: it is no regular file");
    EXPECT_EQ(failureOf([&] { SafeFile const file(""); }), "flowmere: the name of the file to save is empty");
    EXPECT_EQ(failureOf([&] { SafeFile::check(path("file")); }), "");
    EXPECT_EQ(failureOf([&] { SafeFile::check(path("new")); }), "");
    EXPECT_EQ(names(), before);
    EXPECT_EQ(scratch.read("file"), "old");
}

TEST(SafeFileOfAnotherUser, WhatMayNotBeWrittenIsRefused) {
    // Where everybody comes to, unlike the folder of the tests.
    std::string folder = "/tmp/flowmere-XXXXXX";
    ASSERT_NE(::mkdtemp(folder.data()), nullptr);
    auto const path = [&](std::string const& name) {
        return folder + "/" + name;
    };
    ::chmod(folder.c_str(), 0755);
    writeFile(path("open/file"), "old");
    writeFile(path("closed/file"), "old");
    ::chmod(path("open").c_str(), 0777);
    ::chmod(path("open/file").c_str(), 0444);
    ::chmod(path("closed/file").c_str(), 0666);
    ::chmod(path("closed").c_str(), 0555);
    // A privileged user may write everywhere.
    int const result = inChild([&] {
        if (::geteuid() == 0 && (::setresgid(65534, 65534, 65534) != 0 || ::setresuid(65534, 65534, 65534) != 0))
            return 1;
        auto const is = [&](std::string const& name, std::string const& cause) {
            std::string const told = failureOf([&] { saveBytes(path(name), "new"); });
            bool const isSo = told == "flowmere: " + path(name) + ": cannot be written: " + cause;
            if (!isSo)
                std::fprintf(stderr, "%s\n", told.c_str());
            return isSo;
        };
        std::string const closed = "the folder " + path("closed") + " takes no new file: Permission denied";
        if (!is("open/file", "Permission denied"))
            return 2;
        if (!is("closed/file", closed) || !is("closed/new", closed))
            return 3;
        return failureOf([&] { saveBytes(path("open/new"), "new"); }).empty() ? 0 : 4;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(readFile(path("open/file")), "old");
    EXPECT_EQ(readFile(path("closed/file")), "old");
    EXPECT_EQ(readFile(path("open/new")), "new");
    ::chmod(path("closed").c_str(), 0755);
    fs::remove_all(folder);
}

TEST_F(SafeFileTest, NamesAsLongAsTheSystemTakesThemWork) {
    for (std::size_t const length : {246U, 247U, 248U, 255U}) {
        std::string const first = std::string(length - 1, 'x') + "1";
        std::string const second = std::string(length - 1, 'x') + "2";
        SafeFile one(path(first));
        SafeFile two(path(second));
        one.write("one");
        two.write("two");
        one.commit();
        two.commit();
        EXPECT_EQ(scratch.read(first), "one");
        EXPECT_EQ(scratch.read(second), "two");
    }
    EXPECT_EQ(names().size(), 8U);
}

// Several at once

TEST_F(SafeFileTest, OfTwoThatSaveAtOnceTheSecondIsTold) {
    scratch.write("a", "old");
    fs::create_symlink("a", scratch / "link");
    {
        SafeFile first(path("a"));
        first.write("first");
        std::string const cause = "another program is saving it";
        EXPECT_EQ(failureOf([&] { saveBytes(path("a"), "second"); }), message("a", cause));
        EXPECT_EQ(failureOf([&] { saveBytes(path("link"), "second"); }), message("link", cause));
        EXPECT_EQ(
            inChild([&] { return failureOf([&] { saveBytes(path("a"), "second"); }) == message("a", cause) ? 0 : 1; }),
            0);
        EXPECT_EQ(scratch.read("a"), "old");
        EXPECT_EQ(scratch.read(".a.saving"), "first");
        saveBytes(path("b"), "another file");
        first.commit();
        EXPECT_EQ(scratch.read("a"), "first");
        // Nothing of the first is in the way once it has committed.
        saveBytes(path("a"), "second");
    }
    EXPECT_EQ(scratch.read("a"), "second");
    EXPECT_THAT(names(), ElementsAre("a", "b", "link"));
}

TEST_F(SafeFileTest, ManyProgramsAtOnceLeaveOneWholeFile) {
    constexpr int kPrograms = 6;
    constexpr int kSaves = 25; // of each
    constexpr std::size_t kSize = 20000;
    scratch.write("a", std::string(kSize, 'z'));
    std::vector<pid_t> children;
    for (int program = 0; program < kPrograms; ++program) {
        pid_t const child = ::fork();
        if (child == 0) {
            for (int saved = 0; saved < kSaves;) {
                std::string told = "?";
                try {
                    saveBytes(path("a"), std::string(kSize, static_cast<char>('a' + program)));
                    ++saved;
                    continue;
                } catch (std::exception const& failure) {
                    told = failure.what();
                }
                if (told != message("a", "another program is saving it")) {
                    std::fprintf(stderr, "%s\n", told.c_str());
                    ::_exit(1);
                }
                ::usleep(200);
            }
            ::_exit(0);
        }
        children.push_back(child);
    }
    std::size_t looks = 0;
    for (std::size_t ended = 0; ended < children.size();) {
        std::string const content = scratch.read("a");
        ASSERT_EQ(content.size(), kSize);
        ASSERT_EQ(content, std::string(kSize, content.front()));
        ++looks;
        int status = 0;
        if (::waitpid(children[ended], &status, WNOHANG) == children[ended]) {
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
            ++ended;
        }
    }
    EXPECT_GT(looks, 6U);
    EXPECT_THAT(names(), ElementsAre("a"));
}

// What was left

TEST_F(SafeFileTest, WhatAKilledProgramLeftIsInNobodysWay) {
    scratch.write("a", "old");
    scratch.write(".a.saving", "the beginning of some");
    ::chmod(path(".a.saving").c_str(), 0400);
    mode_t const mode = modeOf(path("a"));
    saveBytes(path("a"), "new");
    EXPECT_EQ(scratch.read("a"), "new");
    EXPECT_EQ(modeOf(path("a")), mode);
    EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(SafeFileTest, WhatIsNoFileInThatPlaceIsLeftAlone) {
    scratch.write("victim", "victim");
    fs::create_directories(scratch / ".folder.saving");
    fs::create_symlink("victim", scratch / ".link.saving");
    ASSERT_EQ(::mkfifo(path(".pipe.saving").c_str(), 0600), 0);
    struct Row {
        std::string name;
        std::string cause;
    };
    for (Row const& row : {Row{"folder", "it is no regular file"}, Row{"link", "Too many levels of symbolic links"},
                           Row{"pipe", "it is no regular file"}})
        EXPECT_EQ(failureOf([&] { saveBytes(path(row.name), "new"); }),
                  message(row.name, path("." + row.name + ".saving") + " is in the way: " + row.cause));
    EXPECT_EQ(scratch.read("victim"), "victim");
    EXPECT_THAT(names(), ElementsAre(".folder.saving", ".link.saving", ".pipe.saving", "victim"));
}

TEST_F(SafeFileTest, AProgramThatIsKilledLeavesTheOldFileOrTheNewOne) {
    constexpr std::size_t kSize = 400000;
    std::mt19937 random(7);
    scratch.write("a", std::string(kSize, 'a'));
    int leftovers = 0;
    for (int round = 0; round < 60; ++round) {
        pid_t const child = ::fork();
        if (child == 0)
            for (int turn = 0;; ++turn)
                saveBytes(path("a"), std::string(kSize, turn % 2 == 0 ? 'b' : 'a'));
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 15000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "a save failed";
        std::string const content = scratch.read("a");
        ASSERT_EQ(content.size(), kSize);
        ASSERT_EQ(content, std::string(kSize, content.front()));
        leftovers += fs::exists(scratch / ".a.saving") ? 1 : 0;
    }
    EXPECT_GT(leftovers, 0) << "no kill came in the middle of a save";
    saveBytes(path("a"), "new");
    EXPECT_EQ(scratch.read("a"), "new");
    EXPECT_THAT(names(), ElementsAre("a"));
}

// Calls that fail

int failingCall = 0;  // which one of its kind
int failingError = 0; // and how

bool failsNow() {
    if (failingCall == 0 || --failingCall != 0)
        return false;
    errno = failingError;
    return true;
}

SystemCalls const kReal = systemCalls();

int failingOpen(char const* path, int flags, mode_t mode) {
    return failsNow() ? -1 : kReal.open(path, flags, mode);
}
int failingFlock(int file, int operation) {
    return failsNow() ? -1 : kReal.flock(file, operation);
}
ssize_t failingWrite(int file, void const* bytes, std::size_t count) {
    // In several pieces, so that there is a later one to fail.
    return failsNow() ? -1 : kReal.write(file, bytes, std::min<std::size_t>(count, 1000));
}
ssize_t failingPread(int file, void* bytes, std::size_t count, off_t at) {
    return failsNow() ? -1 : kReal.pread(file, bytes, std::min<std::size_t>(count, 1000), at);
}
int failingTruncate(int file, off_t size) {
    return failsNow() ? -1 : kReal.ftruncate(file, size);
}
int failingChmod(int file, mode_t mode) {
    return failsNow() ? -1 : kReal.fchmod(file, mode);
}
int failingSync(int file) {
    return failsNow() ? -1 : kReal.fsync(file);
}
int failingRename(char const* from, char const* to) {
    return failsNow() ? -1 : kReal.rename(from, to);
}

class FailingCalls : public SafeFileTest {
protected:
    void SetUp() override {
        failingCall = 0;
        systemCalls() = {failingOpen,     failingFlock, kReal.write, kReal.pread,
                         failingTruncate, failingChmod, failingSync, failingRename};
        scratch.write("a", "old");
    }
    void TearDown() override {
        systemCalls() = kReal;
        failingCall = 0;
    }
    // Only calls of this kind fail.
    template <typename Call>
    void fail(Call SystemCalls::*member, Call call, int which, int error) {
        systemCalls() = kReal;
        systemCalls().*member = call;
        failingCall = which;
        failingError = error;
    }
    std::string save() {
        std::string const told = failureOf([&] { saveBytes(path("a"), std::string(5000, 'n')); });
        EXPECT_EQ(failingCall, 0) << "the call was not made";
        systemCalls() = kReal;
        EXPECT_THAT(names(), ElementsAre("a"));
        return told;
    }
    void expectHarmless(std::string const& cause) {
        EXPECT_EQ(save(), message("a", cause));
        EXPECT_EQ(scratch.read("a"), "old");
    }
    void expectSaved() {
        EXPECT_EQ(save(), "");
        EXPECT_EQ(scratch.read("a"), std::string(5000, 'n'));
    }
};

TEST_F(FailingCalls, OpenDoesNoHarm) {
    fail(&SystemCalls::open, failingOpen, 1, EROFS);
    expectHarmless("Read-only file system");
    fail(&SystemCalls::open, failingOpen, 1, ENOSPC);
    expectHarmless("No space left on device");
}

TEST_F(FailingCalls, EachWriteDoesNoHarm) {
    for (int which = 1; which <= 5; ++which) {
        fail(&SystemCalls::write, failingWrite, which, ENOSPC);
        expectHarmless("No space left on device");
        fail(&SystemCalls::write, failingWrite, which, EDQUOT);
        expectHarmless("Disk quota exceeded");
    }
    fail(&SystemCalls::ftruncate, failingTruncate, 1, EIO);
    expectHarmless("Input/output error");
}

TEST_F(FailingCalls, EachReadDoesNoHarm) {
    for (int which = 1; which <= 6; ++which) {
        fail(&SystemCalls::pread, failingPread, which, EIO);
        expectHarmless("what was written cannot be read back: Input/output error");
    }
}

TEST_F(FailingCalls, PermissionsThatCannotBeKeptDoNoHarm) {
    fail(&SystemCalls::fchmod, failingChmod, 1, EPERM);
    expectHarmless("Operation not permitted");
}

TEST_F(FailingCalls, FlushAndRenameDoNoHarm) {
    fail(&SystemCalls::fsync, failingSync, 1, ENOSPC);
    expectHarmless("No space left on device");
    fail(&SystemCalls::fsync, failingSync, 1, EIO);
    expectHarmless("Input/output error");
    fail(&SystemCalls::rename, failingRename, 1, EACCES);
    expectHarmless("Permission denied");
}

TEST_F(FailingCalls, AFolderThatCannotBeFlushedIsToldAndTheNewFileIsWhole) {
    fail(&SystemCalls::fsync, failingSync, 2, EIO);
    EXPECT_EQ(save(),
              "flowmere: " + path("a") + ": is written, but its folder cannot be flushed to disk: Input/output error");
    EXPECT_EQ(scratch.read("a"), std::string(5000, 'n'));
}

TEST_F(FailingCalls, FoldersThatNeedNoFlushOrCannotBeOpenedAreNoFailure) {
    fail(&SystemCalls::fsync, failingSync, 2, EINVAL);
    expectSaved();
    fail(&SystemCalls::fsync, failingSync, 2, ENOTSUP);
    expectSaved();
    fail(&SystemCalls::open, failingOpen, 2, EACCES);
    expectSaved();
}

TEST_F(FailingCalls, InterruptedOnesGoOn) {
    for (int which = 1; which <= 5; ++which) {
        fail(&SystemCalls::write, failingWrite, which, EINTR);
        expectSaved();
        fail(&SystemCalls::pread, failingPread, which, EINTR);
        expectSaved();
    }
    for (int which = 1; which <= 2; ++which) {
        fail(&SystemCalls::fsync, failingSync, which, EINTR);
        expectSaved();
    }
    fail(&SystemCalls::flock, failingFlock, 1, EINTR);
    expectSaved();
}

TEST_F(FailingCalls, FileSystemsWithoutLocksAreSavedToAllTheSame) {
    for (int const error : {ENOLCK, ENOTSUP, EINVAL}) {
        systemCalls().flock = [](int, int) {
            errno = failingError;
            return -1;
        };
        failingError = error;
        SafeFile first(path("a"));
        SafeFile second(path("a"));
        EXPECT_NE(first.path(), second.path());
        first.write("first");
        second.write("second");
        first.commit();
        EXPECT_EQ(scratch.read("a"), "first");
        second.commit();
        EXPECT_EQ(scratch.read("a"), "second");
        // What another left there is no hindrance.
        scratch.write(".a.saving", "left");
        saveBytes(path("a"), "third");
        EXPECT_EQ(scratch.read("a"), "third");
        EXPECT_THAT(names(), ElementsAre(".a.saving", "a"));
        fs::remove(scratch / ".a.saving");
    }
}

TEST_F(FailingCalls, OtherBytesThanThoseWrittenAreSeen) {
    systemCalls().pread = [](int file, void* bytes, std::size_t count, off_t at) {
        ssize_t const got = kReal.pread(file, bytes, count, at);
        if (got > 3)
            static_cast<char*>(bytes)[3] = 'X';
        return got;
    };
    expectHarmless("what is read back is not what was written");
    systemCalls().pread = [](int file, void* bytes, std::size_t count, off_t at) {
        return kReal.pread(file, bytes, at == 0 ? std::min<std::size_t>(count, 2000) : 0, at);
    };
    expectHarmless("what is read back is not what was written");
    systemCalls().pread = [](int, void* bytes, std::size_t count, off_t at) {
        std::memset(bytes, 'n', count);
        return at < 20000 ? static_cast<ssize_t>(count) : 0;
    };
    expectHarmless("what is read back is not what was written");
    systemCalls().write = [](int, void const*, std::size_t) -> ssize_t {
        return 0;
    };
    expectHarmless("No space left on device");
}

// Full disks

TEST_F(SafeFileTest, AtTheLimitOfItsSizeAFileIsNotWritten) {
    scratch.write("a", "old");
    EXPECT_EQ(inChild([&] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  rlimit const limit{100000, 100000};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  if (failureOf([&] { saveBytes(path("b"), std::string(100000, 'x')); }) != "")
                      return 1;
                  return failureOf([&] { saveBytes(path("a"), std::string(100001, 'x')); }) ==
                                 message("a", "File too large")
                             ? 0
                             : 2;
              }),
              0);
    EXPECT_EQ(scratch.read("a"), "old");
    EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(SafeFileTest, OnAFullDiskTheOldFileStays) {
    fs::create_directories(scratch / "disk");
    int const result = inChild([&] {
        // Where there is none to mount, the limit of a file stands for the disk that is full.
        bool const isMounted = ::unshare(CLONE_NEWNS) == 0 &&
                               ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                               ::mount("flowmere", path("disk").c_str(), "tmpfs", 0, "size=256k") == 0;
        if (!isMounted) {
            std::signal(SIGXFSZ, SIG_IGN);
            rlimit const limit{262144, 262144};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
        saveBytes(path("disk/a"), std::string(100000, 'o'));
        std::string const told = failureOf([&] { saveBytes(path("disk/a"), std::string(300000, 'n')); });
        if (told != message("disk/a", isMounted ? "No space left on device" : "File too large"))
            return 1;
        if (scratch.read("disk/a") != std::string(100000, 'o'))
            return 2;
        // What was begun has given its room back.
        saveBytes(path("disk/a"), std::string(100000, 'n'));
        return scratch.read("disk/a") == std::string(100000, 'n') ? 0 : 3;
    });
    EXPECT_EQ(result, 0);
}

} // namespace
