#include "host/catalogs/ProcessLists.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/files/InputFile.h"
#include "host/files/SafeFile.h"
#include "host/files/XmlFault.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

constexpr wchar_t kLevelMark = L'\x1f'; // stands in no caption, since no file can hold it

fs::path folderOf(std::string const& name, char const* what) {
    if (name.empty())
        return {};
    std::error_code error;
    if (!fs::is_directory(name, error))
        throw Failure(name, "", std::string("there is no such ") + what);
    fs::path const folder = fs::absolute(name).lexically_normal();
    if (folder.string().find('\\') != std::string::npos)
        throw Failure(name, "", "cannot be used: its path holds a backslash");
    return folder;
}

// File name of the list of a kind.
std::string fileName(bool bpm) {
    return bpm ? "BPMProcess.lst" : "process.lst";
}

std::vector<IFCNode*> childrenOf(IFCNode& node) {
    std::vector<IFCNode*> children;
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
        children.push_back(child);
    return children;
}

template <typename Visit>
void forEachBelow(IFCNode& node, Visit const& visit) {
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext()) {
        visit(*child);
        forEachBelow(*child, visit);
    }
}

std::wstring keyOf(std::wstring const& above, IFCNode& node) {
    return above + kLevelMark + node.GetNodeCaption();
}

std::string pathBelow(std::string const& above, IFCNode& node) {
    std::string const name = utf8(node.GetNodeCaption());
    return above.empty() ? name : above + "." + name;
}

// The first entry of each place, in the order in which the library looks.
using Places = std::unordered_map<std::wstring, IFCNode*>;

void addPlaces(Places& places, IFCNode& node, std::wstring const& above) {
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext()) {
        std::wstring const key = keyOf(above, *child);
        // What lies below a second group of the same name is never found.
        if (places.try_emplace(key, child).second)
            addPlaces(places, *child, key);
    }
}

// What a merge will do with each entry of the second list.
class MergePlan {
public:
    explicit MergePlan(CFCProcessList& into) { addPlaces(m_places, into, {}); }

    // Entries that meet another one, of the first list or of the second itself.
    void add(IFCNode& from) {
        add(from, {}, {});
        // The library walks from the newest entry to the oldest.
        std::reverse(m_leftOut.begin(), m_leftOut.end());
    }
    std::unordered_set<IFCNode*> const& met() const { return m_met; }
    std::vector<LeftOut>& leftOut() { return m_leftOut; }
    // Entries that would change one of another kind.
    std::vector<IFCNode*> const& clashes() const { return m_clashes; }

private:
    void add(IFCNode& from, std::wstring const& above, std::string const& path) {
        for (IFCNode* child = from.GetChild(); child != nullptr; child = child->GetNext())
            addEntry(*child, keyOf(above, *child), pathBelow(path, *child));
    }
    void addEntry(IFCNode& entry, std::wstring const& key, std::string const& path) {
        auto const [place, isNew] = m_places.try_emplace(key, &entry);
        IFCNode& there = *place->second;
        if (!isNew && entry.GetNodeType() != there.GetNodeType()) {
            m_clashes.push_back(&entry);
            m_leftOut.push_back(
                {path, fmt::format("the {} is left out, a {} has this name", kindOf(entry), kindOf(there))});
            return;
        }
        m_met.insert(&there);
        if (isNew || !isProcess(entry)) {
            add(entry, key, path);
            return;
        }
        for (IFCNode* child = entry.GetChild(); child != nullptr; child = child->GetNext())
            m_leftOut.push_back({pathBelow(path, *child), "is left out, since it stands inside a process"});
        TuString const file(entry.GetItemFilePath());
        if (!file.IsEmpty() && file != there.GetItemFilePath())
            m_leftOut.push_back(
                {path, fmt::format("its file {} is left out, {} stays", utf8(file), utf8(there.GetItemFilePath()))});
    }

    Places m_places;
    std::unordered_set<IFCNode*> m_met;
    std::vector<LeftOut> m_leftOut;
    std::vector<IFCNode*> m_clashes;
};

// What an entry becomes in a file: it has a name there, and no kind is the first one.
TuString writtenCaption(IFCNode& node) {
    TuString const caption(node.GetNodeCaption());
    return caption.IsEmpty() ? TuString(L"Processes") : caption;
}

int writtenType(IFCNode& node) {
    EProjectType const type = node.GetProjectType();
    return type == EProjectType_None ? EProjectType_BPT : type;
}

bool isSameEntry(IFCNode& node, IFCNode& written) {
    if (node.GetNodeType() != written.GetNodeType() || writtenCaption(node) != written.GetNodeCaption() ||
        TuString(node.GetItemFilePath()) != written.GetItemFilePath())
        return false;
    if (!isProcess(node))
        return true;
    if (writtenType(node) != written.GetProjectType())
        return false;
    if (node.GetProjectType() != EProjectType_TASK)
        return true;
    return TuString(node.GetNodeId()) == written.GetNodeId() && node.GetVersionNo() == written.GetVersionNo() &&
           TuString(node.GetCheckedOutUser()) == written.GetCheckedOutUser() && node.IsDirty() == written.IsDirty() &&
           node.IsCheckedOut() == written.IsCheckedOut() && node.IsUptoDate() == written.IsUptoDate();
}

// Path of the first entry that is not found again.
std::optional<std::string> firstLoss(IFCNode& node, IFCNode& written, std::string const& path) {
    std::vector<IFCNode*> children = childrenOf(node);
    // A list holds no code.
    std::erase_if(children, [](IFCNode* child) { return child->GetNodeType() == eShapeType_Code; });
    std::vector<IFCNode*> const back = childrenOf(written);
    for (std::size_t index = 0; index < children.size(); ++index) {
        std::string const place = pathBelow(path, *children[index]);
        if (index >= back.size() || !isSameEntry(*children[index], *back[index]))
            return place;
        if (auto loss = firstLoss(*children[index], *back[index], place))
            return loss;
    }
    return back.size() == children.size() ? std::nullopt : std::optional(path);
}

void addEntries(std::vector<ListEntry>& entries, IFCNode& node, std::string const& path, std::size_t level) {
    std::vector<IFCNode*> const children = childrenOf(node);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        entries.push_back({*child, level, utf8((*child)->GetNodeCaption()), pathBelow(path, **child)});
        addEntries(entries, **child, std::string(entries.back().path), level + 1);
    }
}

void findCode(std::vector<IFCNode*>& code, std::vector<LeftOut>& leftOut, IFCNode& node, std::string const& path) {
    std::vector<IFCNode*> const children = childrenOf(node);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        std::string const place = pathBelow(path, **child);
        if ((*child)->GetNodeType() != eShapeType_Code) {
            findCode(code, leftOut, **child, place);
            continue;
        }
        code.push_back(*child);
        leftOut.push_back({place, "the code is left out, since a list that is saved holds none"});
    }
}

void checkIsList(std::string const& file) {
    if (std::string const fault = inputFault(file); !fault.empty())
        throw Failure(file, "", fault);
    CTXMLBaseReader reader;
    if (!reader.Initialize(libraryPath(file)))
        throw xmlFailure(file, reader);
    auto const hasRoot = [&](wchar_t const* name) {
        return reader.GetElement(name, nullptr, nullptr, -1);
    };
    if (!hasRoot(L"Processes") && !hasRoot(L"PROCESS_LST"))
        throw Failure(file, "", "is no process list: its root element is neither Processes nor PROCESS_LST");
}

// Goes over the markup of a text that is known to be well formed.
class Markup {
public:
    explicit Markup(std::string_view text) : m_text(text) {}

    std::size_t comments() const { return m_comments; }
    // Each name once, in the order of the text.
    std::vector<std::string> const& elements() const { return m_elements; }

    void read() {
        for (std::size_t at = m_text.find('<'); at != std::string_view::npos; at = m_text.find('<', m_at)) {
            m_at = at;
            if (begins("<!--")) {
                ++m_comments;
                pass("-->");
            } else if (begins("<![CDATA[")) {
                pass("]]>");
            } else if (begins("<?")) {
                pass("?>");
            } else {
                if (!begins("</") && !begins("<!"))
                    addElement();
                passTag();
            }
        }
    }

private:
    bool begins(std::string_view text) const { return m_text.substr(m_at).starts_with(text); }
    void pass(std::string_view end) {
        // The end of a comment is not part of its beginning.
        std::size_t const found = m_text.find(end, m_at + end.size());
        m_at = found == std::string_view::npos ? m_text.size() : found + end.size();
    }
    void passTag() {
        char quote = '\0';
        for (; m_at < m_text.size(); ++m_at) {
            char const character = m_text[m_at];
            if (quote != '\0')
                quote = character == quote ? '\0' : quote;
            else if (character == '"' || character == '\'')
                quote = character;
            else if (character == '>')
                return;
        }
    }
    void addElement() {
        std::string_view const rest = m_text.substr(m_at + 1);
        std::string name(rest.substr(0, rest.find_first_of("/> \t\r\n")));
        if (std::find(m_elements.begin(), m_elements.end(), name) == m_elements.end())
            m_elements.push_back(std::move(name));
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_comments = 0;
    std::vector<std::string> m_elements;
};

} // namespace

std::vector<LeftOut> foreignParts(std::string const& file) {
    constexpr std::string_view kKnown[] = {"Processes", "PROCESS_LST", "PROCESS", "SUB_GRP", "CODE"};
    constexpr std::size_t kShown = 5;
    std::ifstream in(file, std::ios::binary);
    std::string const text(std::istreambuf_iterator<char>(in), {});
    // Two bytes for each character: nothing is known of its markup then.
    if (text.find('\0') != std::string::npos)
        return {};
    Markup markup(text);
    markup.read();
    std::vector<std::string> names = markup.elements();
    std::erase_if(names, [&](std::string const& name) {
        return std::find(std::begin(kKnown), std::end(kKnown), name) != std::end(kKnown);
    });
    std::string what = markup.comments() > 0 ? counted(markup.comments(), "comment") : std::string();
    if (!names.empty()) {
        what += what.empty() ? "elements of other names (" : " and elements of other names (";
        for (std::size_t index = 0; index < std::min(names.size(), kShown); ++index)
            what += (index > 0 ? ", " : "") + names[index];
        what += names.size() > kShown ? ", ...)" : ")";
    }
    if (what.empty())
        return {};
    bool const isOne = markup.comments() == 1 && names.empty();
    return {{"", fmt::format("{} {} left out, since a list that is saved holds none", what, isOne ? "is" : "are")}};
}

bool isProcess(IFCNode& node) {
    return node.GetNodeType() == eShapeType_FileNode;
}

bool isGroup(IFCNode& node) {
    return node.GetNodeType() == eShapeType_Folder;
}

char const* kindOf(IFCNode& node) {
    return isProcess(node) ? "process" : isGroup(node) ? "group" : "code";
}

ListFolders::ListFolders(std::string const& base, std::string const& user, bool bpm)
    : m_baseName(base), m_userName(user), m_base(folderOf(base, "folder of common lists")),
      m_user(folderOf(user, "folder of the user's lists")), m_isBPM(bpm), m_formerBase(CFCEnvironment::m_strBasePath),
      m_formerUser(CFCEnvironment::m_strUserPath) {
    CFCEnvironment::SetBasePath(base.empty() ? TuString() : libraryPath(m_base));
    CFCEnvironment::SetUserPath(user.empty() ? TuString() : libraryPath(m_user));
}

ListFolders::~ListFolders() {
    CFCEnvironment::m_strBasePath = m_formerBase;
    CFCEnvironment::m_strUserPath = m_formerUser;
}

bool ListFolders::hasUser() const {
    std::error_code error;
    return !m_userName.empty() && (m_baseName.empty() || !fs::equivalent(m_base, m_user, error));
}

std::string ListFolders::commonFile() const {
    return m_baseName.empty() ? std::string() : (fs::path(m_baseName) / fileName(m_isBPM)).string();
}

std::string ListFolders::userFile() const {
    return m_userName.empty() ? std::string() : (fs::path(m_userName) / fileName(m_isBPM)).string();
}

ListTree ListFolders::readCommon() const {
    return readList(commonFile(), m_base, m_isBPM);
}

ListTree ListFolders::readUser() const {
    if (!hasUser())
        return nullptr;
    std::error_code error;
    if (!fs::exists(fs::symlink_status(userFile(), error))) {
        ListTree list(new CFCProcessList);
        list->SetNodeType(eShapeType_ProcessList);
        list->SetNodeCaption(m_isBPM ? L"BPM Processes" : L"Processes");
        list->SetNewPath(true);
        return list;
    }
    checkIsList(userFile());
    if (ListTree list{CFCNodeHelper::LoadUserProcessList(m_isBPM)})
        return list;
    // The library knows a user's list by the folder of an installation. A folder that lies elsewhere is as good.
    ListTree list = readList(userFile(), m_user, m_isBPM);
    CFCNodeHelper::UpdateAllToNewPath(list->GetChild());
    list->SetNewPath(true);
    return list;
}

ListTree readList(std::string const& file, fs::path const& folder, bool bpm) {
    checkIsList(file);
    ListTree list(CFCNodeHelper::LoadProcessList(libraryPath(file), nullptr, libraryPath(folder)));
    if (bpm)
        forEachBelow(*list, [](IFCNode& node) {
            if (isProcess(node))
                node.SetProjectType(EProjectType_TASK);
        });
    return list;
}

void writeList(SafeFile const& file, std::string const& name, CFCProcessList& list, bool bpm) {
    CFCProcessListWriter writer;
    writer.m_bBPMList = bpm;
    writer.m_pListRoot = &list;
    writer.WriteFile(libraryPath(file.path()), &list, true, true);
    ListTree written;
    try {
        written = readList(file.path().string(), file.path().parent_path(), bpm);
    } catch (Failure const&) {
        throw Failure(name, "", "cannot be written: what was written cannot be read back, the disk may be full");
    }
    if (writtenCaption(list) != written->GetNodeCaption())
        throw Failure(name, "", "cannot be written: a process list does not keep its name");
    if (auto const loss = firstLoss(list, *written, {}))
        throw Failure(name, *loss, "cannot be written: a process list does not keep it");
}

std::vector<LeftOut> takeOutCode(CFCProcessList& list) {
    std::vector<IFCNode*> code;
    std::vector<LeftOut> leftOut;
    findCode(code, leftOut, list, {});
    for (IFCNode* const node : code)
        CFCNodeHelper::DestroyTree(node);
    return leftOut;
}

Merged mergeLists(CFCProcessList& into, CFCProcessList& from) {
    MergePlan plan(into);
    plan.add(from);
    // A group that met a process would take id and check-out away from it.
    for (IFCNode* const clash : plan.clashes())
        CFCNodeHelper::DestroyTree(clash);
    std::unordered_set<IFCNode*> before;
    std::unordered_set<IFCNode*> current;
    forEachBelow(into, [&](IFCNode& node) {
        before.insert(&node);
        if (node.IsUptoDate())
            current.insert(&node);
    });
    CFCNodeHelper::Consolidate(&into, from.GetChild());
    Merged merged;
    merged.leftOut = std::move(plan.leftOut());
    forEachBelow(into, [&](IFCNode& node) {
        Origin const origin = !before.contains(&node)      ? Origin::User
                              : plan.met().contains(&node) ? Origin::Both
                                                           : Origin::Common;
        merged.origins[&node] = origin;
        if (!isProcess(node))
            return;
        merged.added += origin == Origin::User ? 1 : 0;
        merged.met += origin == Origin::Both ? 1 : 0;
        merged.outdated += origin == Origin::Both && current.contains(&node) && !node.IsUptoDate() ? 1 : 0;
    });
    return merged;
}

std::vector<ListEntry> entriesOf(CFCProcessList& list) {
    std::vector<ListEntry> entries;
    addEntries(entries, list, {}, 0);
    return entries;
}

} // namespace flowmere::host
