#include "host/files/SafeFile.h"

#include "host/basics/Command.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// How often a file that vanishes under our hands is made again before that counts as a fault.
constexpr int kAttempts = 100;
// As many links as the system follows.
constexpr int kLinks = 40;

int openFile(char const* path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}

std::string causeOf(int error) {
    return std::strerror(error);
}

// The file at the end of the links, which need not exist. The given path when they have no end: opening it tells why.
fs::path withoutLinks(fs::path const& path) {
    fs::path end = path;
    std::error_code error;
    for (int count = 0; fs::is_symlink(fs::symlink_status(end, error)); ++count) {
        fs::path const next = fs::read_symlink(end, error);
        if (error || count == kLinks)
            return path;
        end = end.parent_path() / next;
    }
    return end;
}

fs::path destinationOf(std::string const& target, fs::path const& folder) {
    std::error_code error;
    fs::path path = folder / target;
    if (fs::path const absolute = fs::absolute(path, error); !error)
        path = absolute;
    return withoutLinks(path);
}

// Why a file cannot come to stand at a path; empty when it can.
std::string faultOf(std::string const& target, fs::path const& destination) {
    if (target.find('\0') != std::string::npos)
        return "its name holds a zero byte";
    std::error_code error;
    fs::file_status const status = fs::status(destination, error);
    if (status.type() == fs::file_type::directory)
        return "it is a folder";
    if (status.type() == fs::file_type::none)
        return error.message();
    if (fs::exists(status) && status.type() != fs::file_type::regular)
        return "it is no regular file";
    fs::path const name = destination.filename();
    if (name.empty() || name == "." || name == "..")
        return "it is no file name";
    if (destination.string().find('\\') != std::string::npos)
        return "its path holds a backslash";
    if (!fs::is_directory(destination.parent_path(), error))
        return folderFault(destination);
    if (fs::exists(status) && ::access(destination.c_str(), W_OK) != 0)
        return causeOf(errno);
    return folderFault(destination);
}

// ".NAME.saving"; of a name too long for that, the beginning and a number that tells it from others.
fs::path temporaryFor(fs::path const& destination) {
    constexpr std::size_t kLongest = 255 - std::string_view("..saving").size();
    constexpr std::size_t kKept = 200;
    std::string name = destination.filename().string();
    if (name.size() > kLongest) {
        std::uint64_t hash = 14695981039346656037U;
        for (char const byte : name)
            hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211U;
        name = fmt::format("{}.{:016x}", name.substr(0, kKept), hash);
    }
    return destination.parent_path() / ("." + name + ".saving");
}

bool isSame(struct stat const& first, struct stat const& second) {
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

int flushed(int file) {
    int result = 0;
    do {
        result = systemCalls().fsync(file);
    } while (result != 0 && errno == EINTR);
    return result;
}

} // namespace

std::string folderFault(fs::path const& path) {
    std::error_code error;
    fs::path const folder = fs::absolute(path, error).parent_path();
    if (!fs::is_directory(folder, error))
        return "there is no folder " + folder.string();
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        return "the folder " + folder.string() + " takes no new file: " + causeOf(errno);
    return {};
}

SystemCalls& systemCalls() {
    static SystemCalls calls{openFile, ::flock, ::write, ::pread, ::ftruncate, ::fchmod, ::fsync, std::rename};
    return calls;
}

void SafeFile::fail(std::string const& cause) const {
    throw Failure(m_target, "", "cannot be written: " + cause);
}

void SafeFile::fail(int error) const {
    fail(causeOf(error));
}

void SafeFile::check(std::string const& target, fs::path const& folder) {
    if (target.empty())
        throw Failure("", "", "the name of the file to save is empty");
    if (std::string const fault = faultOf(target, destinationOf(target, folder)); !fault.empty())
        throw Failure(target, "", "cannot be written: " + fault);
}

SafeFile::SafeFile(std::string const& target, fs::path const& folder)
    : m_target(target), m_destination(destinationOf(target, folder)) {
    check(target, folder);
    m_path = temporaryFor(m_destination);
    open();
}

SafeFile::~SafeFile() {
    if (m_file < 0)
        return;
    if (!m_isDone && isInPlace())
        ::unlink(m_path.c_str());
    ::close(m_file);
}

void SafeFile::open() {
    for (int attempt = 0; attempt < kAttempts; ++attempt)
        if (openNew() || (m_file < 0 && removeStale()))
            return;
    fail("another program is saving it");
}

// Makes the new file, and locks it. False when there is one already.
bool SafeFile::openNew() {
    // What is to be hidden once it is in place is hidden from the beginning.
    mode_t const mode = ::access(m_destination.c_str(), F_OK) == 0 ? 0600 : 0666;
    m_file = systemCalls().open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (m_file < 0) {
        if (errno != EEXIST)
            fail(errno);
        return false;
    }
    if (systemCalls().flock(m_file, LOCK_EX | LOCK_NB) == 0) {
        if (isInPlace())
            return true;
        // Another program took it for a left one in the moment before it was locked.
        ::close(std::exchange(m_file, -1));
        return false;
    }
    int const error = errno;
    bool const hasLocks = error == EWOULDBLOCK || error == EINTR;
    if (!hasLocks && isInPlace())
        ::unlink(m_path.c_str());
    ::close(std::exchange(m_file, -1));
    if (hasLocks)
        return false;
    openWithoutLock();
    return true;
}

// Removes what a killed program left. True when the new file is open all the same, where there are no locks.
bool SafeFile::removeStale() {
    int const file = systemCalls().open(m_path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0);
    if (file < 0) {
        int const error = errno;
        if (error == ENOENT)
            return false;
        fail(m_path.string() + " is in the way: " + causeOf(error));
    }
    struct stat opened {};
    struct stat found {};
    bool const isKnown = ::fstat(file, &opened) == 0;
    if (!isKnown || !S_ISREG(opened.st_mode)) {
        ::close(file);
        fail(m_path.string() + " is in the way: it is no regular file");
    }
    if (systemCalls().flock(file, LOCK_EX | LOCK_NB) != 0) {
        int const error = errno;
        ::close(file);
        if (error == EWOULDBLOCK)
            fail("another program is saving it");
        if (error == EINTR)
            return false;
        openWithoutLock();
        return true;
    }
    // As long as it is locked and in its place, no other program writes it.
    int error = 0;
    if (::lstat(m_path.c_str(), &found) == 0 && isSame(opened, found) && ::unlink(m_path.c_str()) != 0)
        error = errno;
    ::close(file);
    if (error != 0)
        fail(m_path.string() + " is in the way: " + causeOf(error));
    return false;
}

// On a file system without locks: a name that nobody else has.
void SafeFile::openWithoutLock() {
    mode_t const mode = ::access(m_destination.c_str(), F_OK) == 0 ? 0600 : 0666;
    fs::path const shared = m_path;
    for (int number = 0; number < kAttempts; ++number) {
        m_path = shared;
        m_path += fmt::format(".{}.{}", ::getpid(), number);
        m_file = systemCalls().open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (m_file >= 0)
            return;
        if (errno != EEXIST)
            fail(errno);
    }
    fail(m_path.string() + " is in the way");
}

// Whether the path still leads to the file that is open.
bool SafeFile::isInPlace() const {
    struct stat opened {};
    struct stat found {};
    return ::fstat(m_file, &opened) == 0 && ::lstat(m_path.c_str(), &found) == 0 && isSame(opened, found);
}

void SafeFile::write(std::string_view bytes) {
    if (systemCalls().ftruncate(m_file, 0) != 0 || ::lseek(m_file, 0, SEEK_SET) != 0)
        fail(errno);
    for (std::string_view rest = bytes; !rest.empty();) {
        ssize_t const count = systemCalls().write(m_file, rest.data(), rest.size());
        if (count > 0)
            rest.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0)
            fail(ENOSPC);
        else if (errno != EINTR)
            fail(errno);
    }
    std::vector<char> buffer(std::min<std::size_t>(bytes.size() + 1, 1U << 20));
    std::size_t at = 0;
    for (;;) {
        ssize_t const count = systemCalls().pread(m_file, buffer.data(), buffer.size(), static_cast<off_t>(at));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail("what was written cannot be read back: " + causeOf(errno));
        if (count == 0)
            break;
        std::string_view const part(buffer.data(), static_cast<std::size_t>(count));
        if (bytes.substr(std::min(at, bytes.size()), part.size()) != part)
            fail("what is read back is not what was written");
        at += part.size();
    }
    if (at != bytes.size())
        fail("what is read back is not what was written");
}

void SafeFile::commit() {
    if (!isInPlace())
        fail("the new file was replaced while it was written");
    if (struct stat old{}; ::stat(m_destination.c_str(), &old) == 0) {
        // Only a privileged program may give a file away; the group may be kept where the owner may not. What of them
        // is not kept gets no rights through bits that would count for another owner.
        bool const isGiven =
            ::fchown(m_file, old.st_uid, old.st_gid) == 0 || ::fchown(m_file, static_cast<uid_t>(-1), old.st_gid) == 0;
        mode_t const mode = old.st_mode & (isGiven ? 0777U : 0707U);
        if (systemCalls().fchmod(m_file, mode) != 0)
            fail(errno);
    }
    if (flushed(m_file) != 0)
        fail(errno);
    if (systemCalls().rename(m_path.c_str(), m_destination.c_str()) != 0)
        fail(errno);
    m_isDone = true;

    // Without this the old file may be back after a power failure. A folder that cannot be read cannot be flushed.
    fs::path const folder = m_destination.parent_path();
    int const opened = systemCalls().open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    if (opened < 0)
        return;
    int const error = flushed(opened) == 0 ? 0 : errno;
    ::close(opened);
    if (error != 0 && error != EINVAL && error != ENOTSUP)
        throw Failure(m_target, "", "is written, but its folder cannot be flushed to disk: " + causeOf(error));
}

void saveBytes(std::string const& target, std::string_view bytes) {
    SafeFile file(target);
    file.write(bytes);
    file.commit();
}

} // namespace flowmere::host
