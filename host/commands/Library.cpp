#include "host/commands/Library.h"

#include "host/basics/Text.h"
#include "host/catalogs/ProcessLists.h"
#include "host/files/InputFile.h"
#include "host/files/SafeFile.h"
#include "host/files/XmlFault.h"

#include "flowmere/Flowmere.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    bool bpm = false;
    std::string base;
    std::string user;
    bool json = false;
    std::string wanted;             // show: a name or path
    std::string file;               // add: the process document
    std::string group;              // add: names joined by points
    std::string name;               // add
    std::vector<std::string> lists; // merge: none or two
    std::string out;                // merge
};

char const* nameOf(Origin origin) {
    return origin == Origin::Common ? "common" : origin == Origin::User ? "user" : "both";
}

// The shortest decimal number that is this version.
std::string versionOf(IFCNode& node) {
    return fmt::format("{}", node.GetVersionNo());
}

void tell(std::string const& file, std::vector<LeftOut> const& leftOut) {
    for (LeftOut const& entry : leftOut)
        printError(errorLine(file, entry.path, entry.cause) + "\n");
}

struct Counts {
    std::size_t groups = 0;
    std::size_t processes = 0;
};

Counts countsOf(std::vector<ListEntry> const& entries) {
    Counts counts;
    for (ListEntry const& entry : entries) {
        counts.groups += isGroup(*entry.node) ? 1 : 0;
        counts.processes += isProcess(*entry.node) ? 1 : 0;
    }
    return counts;
}

std::string textOf(Counts const& counts) {
    // The plural of "process" is no mere "s".
    return fmt::format("{}, {} {}", counted(counts.groups, "group"), counts.processes,
                       counts.processes == 1 ? "process" : "processes");
}

// The folders that the options name: without any, the common lists lie here.
ListFolders foldersOf(Options const& options) {
    bool const isHere = options.base.empty() && options.user.empty();
    return {isHere ? "." : options.base, options.user, options.bpm};
}

// The common and the user's list as one, or one of them alone.
class Library {
public:
    explicit Library(Options const& options)
        : m_folders(foldersOf(options)), m_isUserAlone(m_folders.commonFile().empty()),
          m_list(m_isUserAlone ? m_folders.readUser() : m_folders.readCommon()),
          m_userList(m_isUserAlone ? nullptr : m_folders.readUser()) {
        CFCProcessList none;
        m_merged = mergeLists(*m_list, m_userList != nullptr ? *m_userList : none);
        m_entries = entriesOf(*m_list);
        tell(m_folders.userFile(), m_merged.leftOut);
    }

    ListFolders const& folders() const { return m_folders; }
    CFCProcessList& list() const { return *m_list; }
    std::vector<ListEntry> const& entries() const { return m_entries; }
    Origin originOf(ListEntry const& entry) const {
        return m_isUserAlone ? Origin::User : m_merged.origins.at(entry.node);
    }

    // The entries of a path, or else the one entry of a name. Throws Failure, exit code 2, with near names.
    std::vector<std::size_t> find(std::string const& wanted) const {
        std::vector<std::size_t> found = indicesOf(&ListEntry::path, wanted);
        if (!found.empty())
            return found;
        found = indicesOf(&ListEntry::name, wanted);
        if (found.size() > 1) {
            std::string paths;
            for (std::size_t const index : found)
                paths += (paths.empty() ? "" : ", ") + m_entries[index].path;
            throw Failure("", wanted, "is the name of several entries: " + paths);
        }
        if (found.empty()) {
            std::vector<std::string> known;
            for (ListEntry const& entry : m_entries)
                known.push_back(entry.path);
            throw Failure("", wanted, "there is no such entry" + suggestion(wanted, known));
        }
        return found;
    }
    // What stands below an entry.
    Counts countsBelow(std::size_t index) const {
        auto const first = m_entries.begin() + static_cast<std::ptrdiff_t>(index) + 1;
        auto const last = std::find_if(first, m_entries.end(),
                                       [&](ListEntry const& entry) { return entry.level <= m_entries[index].level; });
        return countsOf({first, last});
    }

    // Where the file of an entry may lie, in order; none for an entry without one.
    std::vector<fs::path> placesOf(ListEntry const& entry) const {
        std::string name = utf8(entry.node->GetItemFilePath());
        std::replace(name.begin(), name.end(), '\\', '/');
        if (name.empty())
            return {};
        std::string folder = utf8(entry.node->GetItemFileBaseDirectory());
        std::replace(folder.begin(), folder.end(), '\\', '/');
        std::vector<fs::path> places;
        for (fs::path const& root :
             {originOf(entry) != Origin::Common ? m_folders.user() : fs::path(), fs::path(folder), m_folders.base()}) {
            fs::path const place = (root / name).lexically_normal();
            if ((!root.empty() || place.is_absolute()) &&
                std::find(places.begin(), places.end(), place) == places.end())
                places.push_back(place);
        }
        return places;
    }

private:
    std::vector<std::size_t> indicesOf(std::string ListEntry::*text, std::string const& wanted) const {
        std::vector<std::size_t> found;
        for (std::size_t index = 0; index < m_entries.size(); ++index)
            if (m_entries[index].*text == wanted)
                found.push_back(index);
        return found;
    }

    ListFolders m_folders;
    bool m_isUserAlone;
    ListTree m_list;
    ListTree m_userList;
    Merged m_merged;
    std::vector<ListEntry> m_entries;
};

// --- list ----------------------------------------------------------------------------------------------------------

std::string stateOf(IFCNode& node) {
    std::string text = "version " + versionOf(node);
    if (node.IsCheckedOut()) {
        std::string const user = utf8(node.GetCheckedOutUser());
        text += user.empty() ? ", checked out" : ", checked out by " + oneLine(user);
    }
    if (!node.IsUptoDate())
        text += ", out of date";
    if (node.IsDirty())
        text += ", with unsaved changes";
    return text;
}

std::string originText(Origin origin) {
    return origin == Origin::Both ? "common and user" : nameOf(origin);
}

std::string lineOf(Library const& library, ListEntry const& entry) {
    IFCNode& node = *entry.node;
    std::string text = std::string(2 * entry.level + 2, ' ') + oneLine(entry.name) + ": ";
    if (!isProcess(node))
        return text + kindOf(node) + ", " + originText(library.originOf(entry)) + "\n";
    std::string const file = utf8(node.GetItemFilePath());
    text += file.empty() ? "no file" : oneLine(file);
    EProjectType const type = node.GetProjectType();
    if (type == EProjectType_TASK)
        text += ", " + stateOf(node);
    else if (type != EProjectType_BPT)
        text += ", type " + utf8(CFCEnumTranslator::EnumToString(type));
    return text + ", " + originText(library.originOf(entry)) + "\n";
}

Json jsonOf(Library const& library, ListEntry const& entry) {
    IFCNode& node = *entry.node;
    Json out = {{"path", entry.path},
                {"name", entry.name},
                {"level", entry.level},
                {"kind", kindOf(node)},
                {"origin", nameOf(library.originOf(entry))}};
    if (!isProcess(node))
        return out;
    out["file"] = utf8(node.GetItemFilePath());
    out["type"] = utf8(CFCEnumTranslator::EnumToString(node.GetProjectType()));
    if (node.GetProjectType() == EProjectType_TASK) {
        out["id"] = utf8(node.GetNodeId());
        // The number as the list has it, without the digits that it gets in double precision.
        out["version"] = Json::parse(versionOf(node));
        out["checkedOut"] = node.IsCheckedOut();
        out["checkedOutUser"] = utf8(node.GetCheckedOutUser());
        out["upToDate"] = node.IsUptoDate();
        out["unsavedChanges"] = node.IsDirty();
    }
    return out;
}

Json fileOrNull(std::string const& file) {
    std::error_code error;
    return !file.empty() && fs::exists(file, error) ? Json(file) : Json();
}

int list(Options const& options) {
    Library const library(options);
    Counts const counts = countsOf(library.entries());
    std::string const common = library.folders().commonFile();
    std::string const user = library.folders().hasUser() ? library.folders().userFile() : std::string();
    if (options.json) {
        Json entries = Json::array();
        for (ListEntry const& entry : library.entries())
            entries.push_back(jsonOf(library, entry));
        printOut(jsonText({{"name", utf8(library.list().GetNodeCaption())},
                           {"bpm", options.bpm},
                           {"common", fileOrNull(common)},
                           {"user", fileOrNull(user)},
                           {"groups", counts.groups},
                           {"processes", counts.processes},
                           {"entries", std::move(entries)}}));
        return kExitWell;
    }
    std::string text = fmt::format("\"{}\": {}\n", oneLine(utf8(library.list().GetNodeCaption())), textOf(counts));
    for (ListEntry const& entry : library.entries())
        text += lineOf(library, entry);
    printOut(text);
    return kExitWell;
}

// --- show ----------------------------------------------------------------------------------------------------------

struct FoundFile {
    std::vector<fs::path> places;
    std::optional<fs::path> found;
};

FoundFile fileOf(Library const& library, ListEntry const& entry) {
    FoundFile file{library.placesOf(entry), std::nullopt};
    std::error_code error;
    for (fs::path const& place : file.places)
        if (!file.found && fs::is_regular_file(place, error))
            file.found = place;
    return file;
}

std::string detailsOf(Library const& library, std::size_t index) {
    ListEntry const& entry = library.entries()[index];
    IFCNode& node = *entry.node;
    std::string text =
        fmt::format("{}: {}, {}\n", oneLine(entry.path), kindOf(node), originText(library.originOf(entry)));
    if (!isProcess(node))
        return text + "  holds " + textOf(library.countsBelow(index)) + "\n";
    FoundFile const file = fileOf(library, entry);
    std::string const name = utf8(node.GetItemFilePath());
    text += "  file: " + (name.empty() ? "none" : oneLine(name)) + "\n";
    if (file.found)
        text += "  found: " + oneLine(file.found->string()) + "\n";
    for (fs::path const& place : file.places)
        if (!file.found)
            text += "  missing: " + oneLine(place.string()) + "\n";
    text += "  type: " + utf8(CFCEnumTranslator::EnumToString(node.GetProjectType())) + "\n";
    if (node.GetProjectType() == EProjectType_TASK) {
        std::string const id = utf8(node.GetNodeId());
        text += "  id: " + (id.empty() ? "none" : oneLine(id)) + "\n";
        text += "  state: " + stateOf(node) + "\n";
    }
    return text;
}

Json detailsAsJson(Library const& library, std::size_t index) {
    ListEntry const& entry = library.entries()[index];
    Json out = jsonOf(library, entry);
    if (isProcess(*entry.node)) {
        FoundFile const file = fileOf(library, entry);
        out["exists"] = file.found.has_value();
        out["found"] = file.found ? Json(file.found->string()) : Json();
        Json places = Json::array();
        for (fs::path const& place : file.places)
            places.push_back(place.string());
        out["places"] = std::move(places);
    } else {
        Counts const counts = library.countsBelow(index);
        out["groups"] = counts.groups;
        out["processes"] = counts.processes;
    }
    return out;
}

int show(Options const& options) {
    Library const library(options);
    std::string text;
    Json entries = Json::array();
    for (std::size_t const index : library.find(options.wanted)) {
        if (options.json)
            entries.push_back(detailsAsJson(library, index));
        else
            text += detailsOf(library, index);
    }
    printOut(options.json ? jsonText({{"entries", std::move(entries)}}) : text);
    return kExitWell;
}

// --- add -----------------------------------------------------------------------------------------------------------

// The process in a document, which is not looked into further.
struct NewProcess {
    std::string name;
    EProjectType type = EProjectType_BPT;
};

// Whether a process has neither variables nor blocks.
bool isBare(IFCNode& process) {
    for (IFCNode* child = process.GetChild(); child != nullptr; child = child->GetNext())
        if (child->GetNodeType() != eShapeType_Favourites && child->GetNodeType() != eShapeType_History)
            return false;
    CFCVariableList* const variables = process.GetVariableList();
    return variables == nullptr || variables->GetHeadPosition() == nullptr;
}

NewProcess readProcess(std::string const& file, bool bpm) {
    if (std::string const fault = inputFault(file); !fault.empty())
        throw Failure(file, "", fault);
    CFCNodeFactory factory;
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* root = nullptr;
    if (!reader.Parse(libraryPath(file), &root, 0))
        throw xmlFailure(file, reader);
    NewProcess process;
    process.name = utf8(root->GetNodeCaption());
    process.type = root->GetProjectType();
    bool const isEmpty = isBare(*root);
    CFCNodeHelper::DestroyTree(root);
    std::string const element = rootElement(file);
    if (element == "Processes" || element == "PROCESS_LST")
        throw Failure(file, "", "is a process list, no process document");
    // Documents of BPM processes have elements of their own, which are not looked into.
    if (!bpm && isEmpty && !element.empty() && element != "Process" && element != "PROCESS")
        throw Failure(file, "", "is no process document: it holds a \"" + element + "\" and no blocks");
    // A document without a name, for which writer and reader have one of their own, is called after its file, or after
    // its folder where all files are called the same.
    if (process.name.empty() || process.name == "Process" || process.name == "ProcessRoot" ||
        process.name == "Block Library") {
        fs::path const path = fs::absolute(file).lexically_normal();
        process.name = path.stem() == "processdefinition" && path.parent_path().has_filename()
                           ? path.parent_path().filename().string()
                           : path.stem().string();
    }
    return process;
}

std::vector<std::string> groupsOf(std::string const& path) {
    std::vector<std::string> groups;
    for (std::size_t start = 0; !path.empty() && start <= path.size();) {
        std::size_t const end = std::min(path.find('.', start), path.size());
        groups.push_back(path.substr(start, end - start));
        if (groups.back().empty())
            throw Failure("", path, "is no path of groups: a name in it is empty");
        start = end + 1;
    }
    return groups;
}

// The path that goes into a list: counted from the user's folder where the file lies below it.
TuString listedPath(std::string const& file, fs::path const& folder) {
    std::error_code error;
    fs::path const path = fs::absolute(file).lexically_normal();
    fs::path const realFile = fs::weakly_canonical(path, error);
    fs::path const realFolder = fs::weakly_canonical(folder, error);
    auto const [end, rest] = std::mismatch(realFolder.begin(), realFolder.end(), realFile.begin(), realFile.end());
    if (error || end != realFolder.end())
        return libraryPath(path);
    TuString listed = wide(realFile.lexically_relative(realFolder).string());
    listed.Replace(L'/', L'\\');
    return listed;
}

// A list with the process in its groups and nothing else, as the library enters it.
ListTree listOf(NewProcess const& process, std::vector<std::string> const& groups, TuString const& file, bool bpm) {
    auto const newList = [] {
        ListTree list(new CFCProcessList);
        list->SetNodeType(eShapeType_ProcessList);
        return list;
    };
    CFCNodeFactory factory;
    ListTree const tree = newList();
    IFCNode* last = tree.get();
    auto const add = [&](eShapeType type, std::string const& name) {
        IFCNode* const node = factory.Create(type);
        node->SetNodeCaption(wide(name));
        last->AppendChild(node, false);
        last = node;
    };
    for (std::string const& group : groups)
        add(eShapeType_Folder, group);
    add(eShapeType_FileNode, process.name);
    last->SetItemFilePath(file);
    last->SetProjectType(bpm ? EProjectType_TASK : process.type);
    last->SetUptoDate(true);
    ListTree entered = newList();
    CFCProcessListWriter writer;
    writer.m_pListRoot = entered.get();
    writer.m_bBPMList = bpm;
    writer.UpdateNewProcess(last);
    CFCNodeHelper::UpdateAllToNewPath(entered->GetChild());
    return entered;
}

// Throws for a list that has no room for the process.
void checkRoom(std::string const& file, CFCProcessList& list, std::vector<std::string> const& groups,
               std::string const& name) {
    IFCNode* place = &list;
    std::string path;
    for (std::string const& group : groups) {
        path += (path.empty() ? "" : ".") + group;
        place = CFCNodeHelper::FindNodeFromCurrentParent(place, wide(group));
        if (place == nullptr)
            return;
        if (!isGroup(*place))
            throw Failure(file, path, "is no group");
    }
    path += (path.empty() ? "" : ".") + name;
    if (IFCNode* const there = CFCNodeHelper::FindNodeFromCurrentParent(place, wide(name)))
        throw Failure(file, path,
                      isProcess(*there) ? "there is a process of this name, of the file " +
                                              utf8(there->GetItemFilePath()) + "; give the new one another --name"
                                        : std::string("there is a ") + kindOf(*there) +
                                              " of this name; give the process another --name");
}

int add(Options const& options) {
    if (options.user.empty())
        throw Failure("", "", "new entries go to the user's list: --user DIR says where that is");
    ListFolders const folders(options.base, options.user, options.bpm);
    NewProcess process = readProcess(options.file, options.bpm);
    if (!options.name.empty())
        process.name = options.name;
    std::vector<std::string> const groups = groupsOf(options.group);
    std::string const target = folders.userFile();
    // Nobody else may save the list between here and the end.
    SafeFile file(target);
    if (!options.base.empty() && folders.hasUser())
        checkRoom(folders.commonFile(), *folders.readCommon(), groups, process.name);
    // A user's folder that is the common one has one list for both.
    ListTree const list = folders.hasUser() ? folders.readUser() : folders.readCommon();
    checkRoom(target, *list, groups, process.name);
    std::vector<LeftOut> leftOut = takeOutCode(*list);
    std::vector<LeftOut> const foreign = foreignParts(target);
    leftOut.insert(leftOut.begin(), foreign.begin(), foreign.end());
    TuString const listed = listedPath(options.file, folders.user());
    ListTree const entered = listOf(process, groups, listed, options.bpm);
    CFCNodeHelper::Consolidate(list.get(), entered->GetChild());
    writeList(file, target, *list, options.bpm);
    tell(target, leftOut);
    file.commit();
    std::string const path = (options.group.empty() ? "" : options.group + ".") + process.name;
    if (options.json)
        printOut(jsonText({{"list", target}, {"path", path}, {"name", process.name}, {"file", utf8(listed)}}));
    else
        printOut(fmt::format("{}: added to {}, file {}\n", oneLine(path), oneLine(target), oneLine(utf8(listed))));
    return kExitWell;
}

// --- merge ---------------------------------------------------------------------------------------------------------

int merge(Options const& options) {
    bool const isByFolder = options.lists.empty();
    if (!isByFolder && (options.lists.size() != 2 || !options.base.empty() || !options.user.empty()))
        throw Failure("", "", "two lists are merged: give their files, or --base and --user");
    if (isByFolder && (options.base.empty() || options.user.empty()))
        throw Failure("", "", "two lists are merged: give their files, or --base and --user");
    ListFolders const folders(options.base, options.user, options.bpm);
    if (isByFolder && !folders.hasUser())
        throw Failure("", "", "--base and --user are the same folder: there is nothing to merge");
    // The new file is there first, so that nobody else saves one of the lists in between.
    SafeFile file(options.out);
    auto const folderOf = [](std::string const& name) {
        return fs::absolute(name).lexically_normal().parent_path();
    };
    std::string const firstName = isByFolder ? folders.commonFile() : options.lists[0];
    std::string const secondName = isByFolder ? folders.userFile() : options.lists[1];
    ListTree const first = isByFolder ? folders.readCommon() : readList(firstName, folderOf(firstName), options.bpm);
    ListTree const second = isByFolder ? folders.readUser() : readList(secondName, folderOf(secondName), options.bpm);
    // Code goes first: what met it would go with it.
    auto const lossOf = [](CFCProcessList& list, std::string const& name) {
        std::vector<LeftOut> leftOut = foreignParts(name);
        for (LeftOut& code : takeOutCode(list))
            leftOut.push_back(std::move(code));
        return leftOut;
    };
    std::vector<LeftOut> const firstLeftOut = lossOf(*first, firstName);
    std::vector<LeftOut> secondLeftOut = lossOf(*second, secondName);
    Merged const merged = mergeLists(*first, *second);
    secondLeftOut.insert(secondLeftOut.end(), merged.leftOut.begin(), merged.leftOut.end());
    writeList(file, options.out, *first, options.bpm);
    tell(firstName, firstLeftOut);
    tell(secondName, secondLeftOut);
    file.commit();
    Counts const counts = countsOf(entriesOf(*first));
    if (options.json) {
        Json leftOut = Json::array();
        for (std::vector<LeftOut> const& entries : {firstLeftOut, secondLeftOut})
            for (LeftOut const& entry : entries)
                leftOut.push_back({{"path", entry.path}, {"cause", entry.cause}});
        printOut(jsonText({{"list", options.out},
                           {"groups", counts.groups},
                           {"processes", counts.processes},
                           {"added", merged.added},
                           {"inBoth", merged.met},
                           {"outOfDate", merged.outdated},
                           {"leftOut", std::move(leftOut)}}));
        return kExitWell;
    }
    printOut(fmt::format("{}: {}; {} from {} alone, {} in both{}\n", oneLine(options.out), textOf(counts), merged.added,
                         oneLine(secondName), merged.met,
                         merged.outdated == 0 ? "" : fmt::format(", {} now out of date", merged.outdated)));
    return kExitWell;
}

// --- The command line ----------------------------------------------------------------------------------------------

// The options that all share, and the work once they are known.
void addWork(Command const& command, Result& result, std::shared_ptr<Options> const& options,
             int (*work)(Options const& options)) {
    command.flag("--bpm", options->bpm, "The list of BPM processes, BPMProcess.lst, in place of process.lst");
    Option const base = command.option("--base", options->base, "The folder of the common lists").typeName("DIR");
    Option const user = command.option("--user", options->user, "The folder of the user's own lists").typeName("DIR");
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    // A variable of a shell script that is not set must not stand for the current folder.
    command.work([&result, options, work, base, user] {
        for (auto const& [option, name] : {std::pair(base, "--base"), std::pair(user, "--user")})
            if (option.count() != 0 && option.text().empty())
                throw Failure("", "", fmt::format("the name of the folder of {} is empty", name));
        result.exitCode = work(*options);
    });
}

} // namespace

void addLibrary(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("library", "List the process library, enter processes and merge lists");
    command.needCommand();
    command.footer(
        "The lists are process.lst and, with --bpm, BPMProcess.lst: a common one in the folder --base, and the\n"
        "user's own in the folder --user.\n"
        "\n"
        "Example:\n"
        "  flowmere library list --base /opt/processes --user ~/processes");

    Command const lister = command.add("list", "List the groups and processes of both lists as one");
    addWork(lister, result, options, list);
    lister.footer("A line for each entry, with its file and with the list that it comes from. Without --base and\n"
                  "--user the list lies in the current folder.\n"
                  "\n"
                  "Example:\n"
                  "  flowmere library list --bpm --base /opt/processes --user ~/processes");

    Command const shower = command.add("show", "Show one entry, and whether its file exists");
    shower.option("NAME", options->wanted, "Its path (Group.Name), or its name where only one entry has it").required();
    addWork(shower, result, options, show);
    shower.footer("Example:\n"
                  "  flowmere library show Design.Beam --base /opt/processes");

    Command const adder = command.add("add", "Enter a process into the user's list");
    adder.option("FILE", options->file, "The process document").required();
    adder
        .option("--group", options->group,
                "The groups that it stands in, as Design.Welds; those that are missing are made")
        .typeName("NAME");
    adder.option("--name", options->name, "Its name in the list, in place of that of the process or of the file")
        .typeName("NAME");
    addWork(adder, result, options, add);
    adder.footer("Only the list in the --user folder is written. With --base the common list is looked into, so that\n"
                 "no name is given twice. A file below the --user folder is entered by its path from there.\n"
                 "\n"
                 "Example:\n"
                 "  flowmere library add beam.bpt --group Design --user ~/processes");

    Command const merger = command.add("merge", "Merge two lists into a file");
    merger
        .option("LIST", options->lists,
                "The list that is merged into, and the one that it takes in; without them "
                "the lists of --base and --user")
        .words(0, 2);
    merger.option("-o,--out", options->out, "The file to write; it may be one of the two").typeName("OUT").required();
    addWork(merger, result, options, merge);
    merger.footer(
        "Entries meet by their names. A process in both lists keeps file and version of the first, takes id and\n"
        "check-out of the second, and is out of date when the second has a higher version.\n"
        "\n"
        "Example:\n"
        "  flowmere library merge common.lst mine.lst -o all.lst\n"
        "  flowmere library merge --base /opt/processes --user ~/processes -o all.lst");
}

} // namespace flowmere::host
