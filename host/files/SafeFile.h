#pragma once

// Saving without harm: a file takes its target's place whole, or not at all.

#include "host/files/SystemCalls.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace flowmere::host {

// A new file beside its target. Once it is written, commit() puts it into the target's place in one step; until then
// the target stays as it is, whatever happens to the program. The new file is named after the target and locked, so
// that of several programs that save the same file at once only one does; what a killed program left behind is taken
// for what it is, and goes.
class SafeFile {
public:
    // Takes the target as the user named it, for the messages; a name that is not absolute counts from `folder`, the
    // folder of the process when empty. A target that is a link stays one: the file that it leads to is replaced.
    // Throws Failure, exit code 2, when no file can come to stand there (a folder, a device, a folder that is missing
    // or read-only, a file that is read-only, a name with a backslash, which the library takes for the end of a
    // folder), and when another program is saving it.
    explicit SafeFile(std::string const& target, std::filesystem::path const& folder = {});
    // Removes the new file, unless it was committed.
    ~SafeFile();
    SafeFile(SafeFile const&) = delete;
    SafeFile& operator=(SafeFile const&) = delete;

    // The new file, empty at first. It is to be written in place: a file that replaces it would not be locked.
    std::filesystem::path const& path() const { return m_path; }
    // The file that is replaced: absolute, links followed.
    std::filesystem::path const& destination() const { return m_destination; }

    // Makes these bytes the content of the new file, reads them back and compares. Throws Failure, exit code 2.
    void write(std::string_view bytes);
    // Flushes the new file to disk, gives it owner and permissions of the old one, lets it take the target's place, and
    // flushes the folder. Throws Failure, exit code 2. Called once.
    void commit();

    // Throws what the constructor throws, as far as that shows without making a file.
    static void check(std::string const& target, std::filesystem::path const& folder = {});

private:
    void open();
    bool openNew();
    bool removeStale();
    void openWithoutLock();
    bool isInPlace() const;
    [[noreturn]] void fail(int error) const;
    [[noreturn]] void fail(std::string const& cause) const;

    std::string m_target;
    std::filesystem::path m_destination;
    std::filesystem::path m_path;
    int m_file = -1;
    bool m_isDone = false;
};

// Why no new file can come to stand at the path in its folder, as the end of a message; empty when one can.
std::string folderFault(std::filesystem::path const& path);

// Writes a whole file in this way.
void saveBytes(std::string const& target, std::string_view bytes);

} // namespace flowmere::host
