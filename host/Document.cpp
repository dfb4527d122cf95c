#include "host/Document.h"

#include "host/Command.h"
#include "host/HostFactory.h"
#include "host/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <system_error>
#include <unistd.h>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// Links from file to file are followed to this depth, which no document made by hand comes near.
constexpr int kLinkDepth = 32;

// Why a path cannot be opened as a document; empty when it can.
std::string readingFault(fs::path const& path) {
    std::error_code error;
    fs::file_status const status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found)
        return "there is no such file";
    if (error)
        return "cannot be read: " + error.message();
    if (status.type() == fs::file_type::directory)
        return "is a folder";
    if (status.type() != fs::file_type::regular)
        return "is no regular file";
    errno = 0;
    std::ifstream const stream(path, std::ios::binary);
    if (!stream)
        return std::string("cannot be read: ") + std::strerror(errno);
    if (fs::file_size(path, error) == 0 && !error)
        return "is empty";
    // The library takes each backslash for the end of a folder.
    if (fs::absolute(path).string().find('\\') != std::string::npos)
        return "cannot be read: its path holds a backslash";
    return {};
}

// Name of the first element of a file; empty where it is not found, as in UTF-16. The file is known to be well formed.
std::string rootElement(fs::path const& path) {
    constexpr std::size_t kLookedAt = 65536;
    std::ifstream in(path, std::ios::binary);
    std::string text(kLookedAt, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(in.gcount()));
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at)) {
        std::string_view const rest = std::string_view(text).substr(at);
        if (rest.starts_with("<!DOCTYPE"))
            return {};
        if (!rest.starts_with("<?") && !rest.starts_with("<!--"))
            return std::string(rest.substr(1, rest.find_first_of("/> \t\r\n") - 1));
        std::size_t const end = text.find(rest.starts_with("<?") ? "?>" : "-->", at);
        if (end == std::string::npos)
            return {};
        at = end;
    }
    return {};
}

struct TreeDeleter {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeDeleter>;

Tree parse(fs::path const& path, int linkDepth, std::vector<CFCReadFinding>* findings) {
    HostFactory factory;
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* root = nullptr;
    if (!reader.Parse(libraryPath(path), &root, linkDepth))
        return nullptr;
    if (findings != nullptr)
        *findings = reader.GetReadFindings();
    return Tree(root);
}

// The block children in the order of the file: the chain begins with the newest.
std::vector<CFCBlockNode*> childBlocks(IFCNode& container) {
    std::vector<CFCBlockNode*> children;
    for (IFCNode* child = container.GetChild(); child != nullptr; child = child->GetNext())
        if (auto* const block = dynamic_cast<CFCBlockNode*>(child))
            children.push_back(block);
    std::reverse(children.begin(), children.end());
    return children;
}

std::vector<CFCBlockNode*> blocksBelow(IFCNode& root) {
    std::vector<CFCBlockNode*> blocks;
    std::vector<CFCBlockNode*> open = childBlocks(root);
    std::reverse(open.begin(), open.end());
    while (!open.empty()) {
        CFCBlockNode* const block = open.back();
        open.pop_back();
        blocks.push_back(block);
        std::vector<CFCBlockNode*> const inner = childBlocks(*block);
        open.insert(open.end(), inner.rbegin(), inner.rend());
    }
    return blocks;
}

std::vector<CFCVariableData*> variablesOf(IFCNode& node) {
    std::vector<CFCVariableData*> variables;
    if (CFCVariableList* const list = node.GetVariableList()) {
        __FCPOSITION* position = list->GetHeadPosition();
        while (position != nullptr)
            if (CFCVariableData* const variable = list->GetNext(position))
                variables.push_back(variable);
    }
    return variables;
}

// Whether a process has neither variables nor blocks nor anything else that documents hold.
bool isBare(CFCProcessNode& process) {
    for (IFCNode* child = process.GetChild(); child != nullptr; child = child->GetNext())
        if (child->GetNodeType() != eShapeType_Favourites && child->GetNodeType() != eShapeType_History)
            return false;
    return variablesOf(process).empty();
}

// What of a tree must be found again after it was written, each with its number.
std::map<std::string, int> contentsOf(IFCNode& root) {
    std::map<std::string, int> contents;
    auto const add = [&](IFCNode& node) {
        std::string const path = pathOf(node);
        for (CFCVariableData* const variable : variablesOf(node))
            ++contents[path + "." + utf8(variable->GetVariableName())];
    };
    add(root);
    for (CFCBlockNode* const block : blocksBelow(root)) {
        ++contents[pathOf(*block)];
        add(*block);
    }
    return contents;
}

// A name for the new file beside the one that it is to replace.
fs::path temporaryBeside(fs::path const& target) {
    fs::path path = target;
    path.replace_filename(fmt::format(".{}.{}.tmp", target.filename().string(), ::getpid()));
    return path;
}

// Removes what was written and not taken over.
class TemporaryFile {
public:
    explicit TemporaryFile(fs::path path) : m_path(std::move(path)) {}
    ~TemporaryFile() {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    fs::path const& path() const { return m_path; }

private:
    fs::path m_path;
};

// Why a file cannot come to stand at a path; empty when it can.
std::string writingFault(fs::path const& target) {
    std::error_code error;
    fs::file_status const status = fs::status(target, error);
    if (status.type() == fs::file_type::directory)
        return "is a folder";
    if (fs::exists(status) && status.type() != fs::file_type::regular)
        return "is no regular file";
    if (target.filename().empty())
        return "is no file name";
    if (fs::absolute(target).string().find('\\') != std::string::npos)
        return "its path holds a backslash";
    fs::path const folder = fs::absolute(target).parent_path();
    if (!fs::is_directory(folder, error))
        return "there is no folder " + folder.string();
    if (fs::exists(status) && ::access(target.c_str(), W_OK) != 0)
        return std::strerror(errno);
    return {};
}

// Kinds that do nothing without a script.
bool isTask(int kind) {
    switch (kind) {
    case eShapeType_Block:
    case eShapeType_RoundBlock:
    case eShapeType_Task:
    case eShapeType_UserTask:
    case eShapeType_AutomationTask:
    case eShapeType_DecisionTask:
    case eShapeType_Mail:
    case eShapeType_ESB:
    case eShapeType_Application:
        return true;
    default:
        return false;
    }
}

} // namespace

std::string pathOf(IFCNode& node) {
    return utf8(node.GetNodePath());
}

Document::Document(std::string const& file, std::vector<std::string> const& scriptRoots) : m_file(file) {
    if (file.empty())
        throw Failure("", "", "the name of the document is empty");
    if (std::string const fault = readingFault(file); !fault.empty())
        throw Failure(file, "", fault);
    m_path = fs::absolute(file).lexically_normal();
    setRoots(scriptRoots);
    read();
    loadFurtherScripts();
}

Document::~Document() {
    CFCNodeHelper::DestroyTree(m_process);
}

void Document::setRoots(std::vector<std::string> const& scriptRoots) {
    for (std::string const& root : scriptRoots) {
        std::error_code error;
        if (!fs::is_directory(root, error))
            throw Failure(root, "", "is no folder of scripts");
        fs::path path = fs::absolute(root).lexically_normal();
        if (!path.has_filename())
            path = path.parent_path();
        if (path.string().find('\\') != std::string::npos)
            throw Failure(root, "", "cannot be used: its path holds a backslash");
        m_scriptRoots.push_back(path);
    }
    fs::path const own = m_path.parent_path();
    m_scriptRoots.push_back(own);

    TuString const folder = libraryPath(own);
    CFCEnvironment::SetBasePath(folder);
    CFCEnvironment::SetProjectPath(folder);
    CFCEnvironment::SetUserPath(libraryPath(m_scriptRoots.front()));
    CFCEnvironment::SetMacroBasePath(scriptRoots.size() > 1 ? libraryPath(m_scriptRoots[1]) : folder);
}

void Document::read() {
    Tree tree = parse(m_path, kLinkDepth, &m_findings);
    if (tree == nullptr)
        throw Failure(m_file, "", "is no process document: it is no well-formed XML");
    auto* const process = dynamic_cast<CFCProcessNode*>(tree.get());
    if (process == nullptr)
        throw Failure(m_file, "", "is no process document");
    // The reader takes any root element. One that is no process and holds nothing of a process is of another kind.
    std::string const root = rootElement(m_path);
    if (!root.empty() && root != "Process" && root != "PROCESS" && isBare(*process))
        throw Failure(m_file, "", "is no process document: it holds a \"" + root + "\" and no blocks");
    static_cast<void>(tree.release());
    m_process = process;
}

// The library looks below the first two script roots and the document's folder alone.
void Document::loadFurtherScripts() {
    for (CFCBlockNode* const block : blocks()) {
        if (block->HasScript() || block->GetScriptType() != EScriptType_PYTHON)
            continue;
        if (auto const file = scriptFile(utf8(block->GetScriptName()))) {
            TuString const before(block->GetFullScriptFileName());
            block->SetFullScriptFileName(libraryPath(*file));
            block->LoadGuiScript();
            // Kept as it was: the path of a file below another root would give the script another name.
            block->SetFullScriptFileName(before);
        }
    }
}

std::vector<CFCBlockNode*> Document::blocks() const {
    return blocksBelow(*m_process);
}

std::vector<std::string> Document::blockPaths() const {
    std::vector<std::string> paths;
    for (CFCBlockNode* const block : blocks())
        paths.push_back(pathOf(*block));
    return paths;
}

std::vector<std::string> Document::variablePaths() const {
    std::vector<std::string> paths;
    auto const add = [&](IFCNode& node) {
        std::string const path = pathOf(node);
        for (CFCVariableData* const variable : variablesOf(node))
            paths.push_back((path.empty() ? path : path + ".") + utf8(variable->GetVariableName()));
    };
    add(*m_process);
    for (CFCBlockNode* const block : blocks())
        add(*block);
    return paths;
}

CFCBlockNode& Document::block(std::string const& pathOrId) const {
    std::vector<CFCBlockNode*> ofId;
    for (CFCBlockNode* const block : blocks()) {
        if (!pathOrId.empty() && pathOf(*block) == pathOrId)
            return *block;
        if (!pathOrId.empty() && utf8(block->GetNodeId()) == pathOrId)
            ofId.push_back(block);
    }
    if (ofId.size() == 1)
        return *ofId.front();
    if (ofId.empty())
        throw Failure(m_file, pathOrId, "there is no such block" + suggestion(pathOrId, blockPaths()));
    std::string paths;
    for (CFCBlockNode* const block : ofId)
        paths += (paths.empty() ? "" : ", ") + pathOf(*block);
    throw Failure(m_file, pathOrId, "several blocks have this identifier: " + paths);
}

CFCVariableData& Document::variable(std::string const& path) const {
    if (CFCVariableData* const variable = CFCNodeHelper::FindVariable(wide(path), m_process))
        return *variable;
    throw Failure(m_file, path, "there is no such variable" + suggestion(path, variablePaths()));
}

std::optional<fs::path> Document::scriptFile(std::string const& name) const {
    if (name.empty())
        return std::nullopt;
    std::string relative = name;
    std::replace(relative.begin(), relative.end(), '.', '/');
    for (fs::path const& root : m_scriptRoots) {
        for (char const* const ending : {".py", "/__init__.py"}) {
            fs::path path = root / fs::path(relative + ending).relative_path();
            std::error_code error;
            if (fs::is_regular_file(path, error))
                return path;
        }
    }
    return std::nullopt;
}

ScriptState Document::scriptState(CFCBlockNode& block) const {
    if (block.GetScriptType() != EScriptType_PYTHON)
        return ScriptState::None;
    std::string const name = utf8(block.GetScriptName());
    if (scriptFile(name))
        return ScriptState::Found;
    // A nameless script takes the name of its block when it is read.
    bool const isNamed = !name.empty() && name != utf8(block.GetNodeId());
    return isNamed || isTask(block.GetNodeType()) ? ScriptState::Missing : ScriptState::None;
}

void Document::checkCanSave(std::string const& out) {
    if (out.empty())
        throw Failure("", "", "the name of the file to save is empty");
    if (std::string const fault = writingFault(out); !fault.empty())
        throw Failure(out, "", "cannot be written: " + fault);
}

void Document::save(std::string const& out) const {
    checkCanSave(out);
    auto const fail = [&](std::string const& cause) {
        throw Failure(out, "", "cannot be written: " + cause);
    };
    std::error_code error;
    fs::path target = fs::absolute(out);
    // A link stays, and the file that it leads to is replaced.
    if (fs::path const resolved = fs::weakly_canonical(target, error); !error)
        target = resolved;

    TemporaryFile const temporary(temporaryBeside(target));
    errno = 0;
    if (!std::ofstream(temporary.path(), std::ios::binary))
        fail(std::strerror(errno));
    CFCWriter writer;
    if (!writer.WriteFile(libraryPath(temporary.path()), m_process, true))
        fail("the document could not be built");
    // A process that links to a file is read from that file, whatever was written below it.
    Tree const written = parse(temporary.path(), kLinkDepth, nullptr);
    if (written == nullptr)
        fail("what was written cannot be read back, the disk may be full");
    std::map<std::string, int> const found = contentsOf(*written);
    for (auto const& [name, count] : contentsOf(*m_process)) {
        auto const entry = found.find(name);
        if (entry == found.end() || entry->second < count)
            throw Failure(out, name, "cannot be written: a process document does not keep it");
    }
    if (fs::exists(target, error))
        fs::permissions(temporary.path(), fs::status(target, error).permissions(), error);
    fs::rename(temporary.path(), target, error);
    if (error)
        fail(error.message());
}

} // namespace flowmere::host
