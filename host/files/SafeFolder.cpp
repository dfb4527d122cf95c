#include "host/files/SafeFolder.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/files/SystemCalls.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

std::string causeOf(int error) {
    return std::strerror(error);
}

// Swaps two folders in one step. False where the system or the file system cannot.
bool swapped(fs::path const& first, fs::path const& second) {
    return ::renameat2(AT_FDCWD, first.c_str(), AT_FDCWD, second.c_str(), RENAME_EXCHANGE) == 0;
}

// Lies in each staging folder that is locked by who fills it. Where nothing can be locked there is none.
constexpr char kStagingMark[] = ".flowmere-new";
constexpr std::size_t kRandomLetters = 6;
// Where the old folder goes in it, where two cannot be swapped in one step.
constexpr char kOld[] = "old";

// What the names of the staging folders of a target begin with.
std::string stagingName(fs::path const& destination) {
    constexpr std::size_t kLongest = 200;
    return "." + destination.filename().string().substr(0, kLongest) + ".";
}

// A folder that is open, and locked when nobody else holds it.
class LockedFolder {
public:
    explicit LockedFolder(fs::path const& path)
        : m_file(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)),
          m_isLocked(m_file >= 0 && systemCalls().flock(m_file, LOCK_EX | LOCK_NB) == 0) {}
    ~LockedFolder() {
        if (m_file >= 0)
            ::close(m_file);
    }
    LockedFolder(LockedFolder const&) = delete;
    LockedFolder& operator=(LockedFolder const&) = delete;

    bool isLocked() const { return m_isLocked; }

private:
    int m_file;
    bool m_isLocked;
};

} // namespace

fs::path SafeFolder::destinationOf(std::string const& target) {
    std::error_code error;
    fs::path const absolute = fs::absolute(target, error);
    fs::path path = fs::weakly_canonical(absolute, error);
    if (error)
        path = absolute.lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

void SafeFolder::fail(std::string const& cause) const {
    throw Failure(m_target, "", "cannot be written: " + cause);
}

void SafeFolder::fail(int error) const {
    fail(causeOf(error));
}

SafeFolder::SafeFolder(std::string const& target, fs::path const& inner, bool replaces, std::string const& mark)
    : m_target(target), m_inner(inner) {
    if (target.empty())
        throw Failure("", "", "the name of the folder is empty");
    m_destination = destinationOf(target);
    check(replaces, mark);
    removeStale();
    std::string name = m_destination.parent_path() / (stagingName(m_destination) + std::string(kRandomLetters, 'X'));
    if (::mkdtemp(name.data()) == nullptr)
        fail("the folder " + m_destination.parent_path().string() + " takes no new folder: " + causeOf(errno));
    m_staging = name;
    m_path = m_staging / m_inner;
    std::error_code error;
    fs::create_directories(m_path, error);
    m_file = ::open(m_staging.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (error || m_file < 0) {
        int const cause = error ? error.value() : errno;
        fs::remove_all(m_staging, error);
        fail(cause);
    }
    markOwn();
}

void SafeFolder::markOwn() const {
    if (systemCalls().flock(m_file, LOCK_EX | LOCK_NB) != 0)
        return;
    int const file = ::openat(m_file, kStagingMark, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (file >= 0)
        ::close(file);
}

void SafeFolder::removeStale() const {
    std::string const start = stagingName(m_destination);
    std::error_code error;
    for (fs::directory_iterator entry(m_destination.parent_path(), error), end; !error && entry != end;
         entry.increment(error)) {
        fs::path const path = entry->path();
        std::string const name = path.filename().string();
        if (!name.starts_with(start) || name.size() != start.size() + kRandomLetters)
            continue;
        LockedFolder const folder(path);
        std::error_code problem;
        if (!folder.isLocked() || !fs::exists(path / kStagingMark, problem))
            continue;
        // Killed between two renames: what stood at the target stands there alone.
        if (fs::exists(path / kOld, problem) && !fs::exists(m_destination, problem)) {
            printError(errorLine((path / kOld).string(), "",
                                 fmt::format("is what stood at {} before a program was killed that replaced it",
                                             m_destination.string())) +
                       "\n");
            continue;
        }
        fs::remove_all(path, problem);
        if (problem)
            printError(errorLine(path.string(), "",
                                 "is left of a program that was killed, and cannot be removed: " + problem.message()) +
                       "\n");
    }
}

SafeFolder::~SafeFolder() {
    if (m_file >= 0)
        ::close(m_file);
    std::error_code error;
    fs::remove_all(m_staging, error);
    if (error && m_isReplaced)
        printError(errorLine(m_staging.string(), "",
                             "holds what is left of the old folder, and cannot be removed: " + error.message()) +
                   "\n");
}

fs::path SafeFolder::openPath() const {
    return fmt::format("/proc/self/fd/{}", m_file) / m_inner;
}

void SafeFolder::check(bool replaces, std::string const& mark) {
    std::error_code error;
    fs::file_status const status = fs::status(m_destination, error);
    if (status.type() == fs::file_type::none)
        fail(error.message());
    if (m_destination.string().find('\\') != std::string::npos)
        fail("its path holds a backslash");
    if (m_destination.string().find(mark) != std::string::npos)
        fail(fmt::format("its path holds \"{}\"", mark));
    if (fs::exists(status) && !fs::is_directory(status))
        fail("it is no folder");
    fs::path const parent = m_destination.parent_path();
    if (m_destination == parent)
        fail("it is the topmost folder");
    if (!fs::is_directory(parent, error))
        fail("there is no folder " + parent.string());
    if (!fs::exists(status))
        return;
    bool const isEmpty = fs::is_empty(m_destination, error);
    if (error)
        fail(error.message());
    if (isEmpty)
        return;
    if (!fs::is_regular_file(m_destination / mark, error))
        fail(fmt::format("it is a folder with other things in it, and without {}", mark));
    if (!replaces)
        fail(fmt::format("there is a {} in it already; --force replaces the whole folder", mark));
    m_isReplaced = true;
}

void SafeFolder::commit() {
    if (struct stat old{};
        ::stat(m_destination.c_str(), &old) == 0 && ::chmod(m_path.c_str(), old.st_mode & 07777U) != 0)
        fail(errno);
    if (::syncfs(m_file) != 0)
        fail(errno);
    if (m_isReplaced)
        exchange();
    else if (systemCalls().rename(m_path.c_str(), m_destination.c_str()) != 0)
        fail(errno == ENOTEMPTY || errno == EEXIST ? "another program has put something there" : causeOf(errno));
    // Without this the old state may be back after a power failure. A folder that cannot be read cannot be flushed.
    int const opened = ::open(m_destination.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0)
        return;
    int const error = systemCalls().fsync(opened) == 0 ? 0 : errno;
    ::close(opened);
    if (error != 0 && error != EINVAL && error != ENOTSUP)
        throw Failure(m_target, "", "is written, but its parent folder cannot be flushed to disk: " + causeOf(error));
}

void SafeFolder::exchange() {
    if (swapped(m_path, m_destination))
        return;
    if (errno != ENOSYS && errno != EINVAL)
        fail(errno);
    fs::path const old = m_staging / kOld;
    if (systemCalls().rename(m_destination.c_str(), old.c_str()) != 0)
        fail(errno);
    if (systemCalls().rename(m_path.c_str(), m_destination.c_str()) == 0)
        return;
    int const error = errno;
    if (::rename(old.c_str(), m_destination.c_str()) != 0) {
        // Then the old folder must not go with the new one.
        m_staging.clear();
        fail(fmt::format("{}; the old folder is now {}", causeOf(error), old.string()));
    }
    fail(error);
}

} // namespace flowmere::host
