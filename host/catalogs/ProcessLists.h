#pragma once

// The process lists on disk, and what comes of the common and the user's one together.

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace flowmere::host {

class SafeFile;

struct ListEnd {
    void operator()(CFCProcessList* list) const { CFCNodeHelper::DestroyTree(list); }
};
using ListTree = std::unique_ptr<CFCProcessList, ListEnd>;

// The folders of the lists, which the library knows for as long as this lives. One at a time: the library has one
// place for them.
class ListFolders {
public:
    // Each may be empty, for none. Throws Failure, exit code 2, for what is no folder.
    ListFolders(std::string const& base, std::string const& user, bool bpm);
    ~ListFolders();
    ListFolders(ListFolders const&) = delete;
    ListFolders& operator=(ListFolders const&) = delete;

    bool isBPM() const { return m_isBPM; }
    // Whether the user has a folder of its own.
    bool hasUser() const;
    // The folders, absolute; empty for none.
    std::filesystem::path const& base() const { return m_base; }
    std::filesystem::path const& user() const { return m_user; }
    // The list files below the folders as the user named these; empty without the folder.
    std::string commonFile() const;
    std::string userFile() const;

    // The common list, for which there must be a folder. Throws Failure, exit code 2, for a file that is missing,
    // unreadable or no process list.
    ListTree readCommon() const;
    // The user's own list, in which everything counts as newly placed: empty when there is no file yet, null when the
    // user has no folder apart from the common one. Throws as above.
    ListTree readUser() const;

private:
    std::string m_baseName;
    std::string m_userName;
    std::filesystem::path m_base;
    std::filesystem::path m_user;
    bool m_isBPM;
    TuString m_formerBase;
    TuString m_formerUser;
};

// Reads a list; its files lie below `folder`. With `bpm` all its files are of the BPM kind, whatever they are called.
// Throws Failure, exit code 2, for a file that is missing, unreadable or no process list.
ListTree readList(std::string const& file, std::filesystem::path const& folder, bool bpm);

// Writes the whole list into the new file, and reads it back. Throws Failure, exit code 2, when an entry is not found
// again; `name` is the target as the user named it. The new file is not committed.
void writeList(SafeFile const& file, std::string const& name, CFCProcessList& list, bool bpm);

enum class Origin { Common, User, Both };

// An entry of a list that finds no place in another one.
struct LeftOut {
    std::string path;
    std::string cause;
};

// What came of a merge.
struct Merged {
    std::unordered_map<IFCNode*, Origin> origins; // of all entries, as if the first list were the common one
    std::vector<LeftOut> leftOut;                 // in the order of the second list
    std::size_t added = 0;                        // processes of the second list alone
    std::size_t met = 0;                          // processes that both have
    std::size_t outdated = 0;                     // of these, those of which the second list has a higher version
};

// What stands in the file of a list beside its entries, comments and elements of other names, in one line; none for a
// file without. No writer keeps it. The file is known to be a list.
std::vector<LeftOut> foreignParts(std::string const& file);

// Takes the code out of a list, with all below it, and tells what it was: no writer keeps it.
std::vector<LeftOut> takeOutCode(CFCProcessList& list);

// Takes copies of the entries of one list into another, in time in proportion to both. An entry that would meet one of
// another kind is taken out of `from` first, so that it does no harm there.
Merged mergeLists(CFCProcessList& into, CFCProcessList& from);

// An entry with the captions of the groups above it.
struct ListEntry {
    IFCNode* node = nullptr;
    std::size_t level = 0; // 0 below the list itself
    std::string name;
    std::string path; // names joined by points
};

// All entries in the order of the file, each group before what is in it.
std::vector<ListEntry> entriesOf(CFCProcessList& list);

bool isProcess(IFCNode& node);
bool isGroup(IFCNode& node);
// "process", "group" or "code".
char const* kindOf(IFCNode& node);

} // namespace flowmere::host
