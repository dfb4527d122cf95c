#include "host/files/SafeFolder.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/files/SystemCalls.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
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
    std::string name =
        (m_destination.parent_path() / ("." + m_destination.filename().string().substr(0, 200) + ".XXXXXX"));
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
    fs::path const old = m_staging / "old";
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
