#pragma once

// A folder that takes its place whole, or not at all.

#include <filesystem>
#include <string>

namespace flowmere::host {

// A new folder beside its target. Once all is in it, commit() puts it into the target's place; until then the target
// stays as it is, whatever happens to the program. The folder in which it comes into being is marked and locked, so
// that what a killed program left behind is known for what it is, and goes with the next one for the same target.
class SafeFolder {
public:
    // Takes the target as the user named it; the new folder comes to stand below its parent, in a folder of its own,
    // at the end of the relative path `inner`. A target that exists must be an empty folder, or, to be replaced with
    // all that it holds, one that has a file of the name `mark`. A link stays one: the folder that it leads to is
    // meant. Throws Failure, exit code 2, when no folder can come to stand there.
    SafeFolder(std::string const& target, std::filesystem::path const& inner, bool replaces, std::string const& mark);
    // Removes the new folder, unless it was committed.
    ~SafeFolder();
    SafeFolder(SafeFolder const&) = delete;
    SafeFolder& operator=(SafeFolder const&) = delete;

    // The new folder, empty at first.
    std::filesystem::path const& path() const { return m_path; }
    // The same, as the path of a folder that is open: its beginning is short and holds no name of the user's.
    std::filesystem::path openPath() const;

    // Flushes all to disk, gives the new folder the permissions of the old one, lets it take the target's place, and
    // removes the old one. Throws Failure, exit code 2. Called once.
    void commit();

    // The folder that a name leads to: absolute, links followed. It need not exist.
    static std::filesystem::path destinationOf(std::string const& target);

private:
    [[noreturn]] void fail(std::string const& cause) const;
    [[noreturn]] void fail(int error) const;
    void check(bool replaces, std::string const& mark);
    void removeStale() const;
    // Marks the staging folder as one of these, once it is locked.
    void markOwn() const;
    void exchange();

    std::string m_target;
    std::filesystem::path m_destination;
    std::filesystem::path m_inner;
    std::filesystem::path m_staging; // holds the new folder, and later the old one
    std::filesystem::path m_path;
    int m_file = -1; // the staging folder, open
    bool m_isReplaced = false;
};

} // namespace flowmere::host
