#include "host/document/Document.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/HostFactory.h"
#include "host/document/ReadBack.h"
#include "host/files/InputFile.h"
#include "host/files/SafeFile.h"
#include "host/files/XmlFault.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// Links from file to file are followed to this depth, which no document made by hand comes near.
constexpr int kLinkDepth = 32;

// A reader with the nodes of the program. Null from parse is told by the reader's error.
struct DocumentReader {
    HostFactory factory;
    CFCReader reader;

    NodeTree parse(fs::path const& path) {
        reader.SetNodeFactory(&factory);
        IFCNode* root = nullptr;
        return NodeTree(reader.Parse(libraryPath(path), &root, kLinkDepth) ? root : nullptr);
    }
};

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

// A file without a name, in memory.
class MemoryFile {
public:
    MemoryFile() : m_file(::memfd_create("flowmere", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (m_file >= 0)
            ::close(m_file);
    }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    // By which others open it.
    fs::path path() const { return fmt::format("/proc/self/fd/{}", m_file); }
    // What it holds. Throws std::system_error when it could take no more, or cannot be read.
    std::string content() const {
        struct stat status {};
        if (m_file < 0 || ::fstat(m_file, &status) != 0)
            fail();
        // What was written to it by others may be cut off, and they would not tell.
        if (::pwrite(m_file, "\n", 1, status.st_size) != 1)
            fail();
        std::string text(static_cast<std::size_t>(status.st_size), '\0');
        for (std::size_t at = 0; at < text.size();) {
            ssize_t const count = ::pread(m_file, text.data() + at, text.size() - at, static_cast<off_t>(at));
            if (count <= 0)
                fail();
            at += static_cast<std::size_t>(count);
        }
        return text;
    }

private:
    [[noreturn]] static void fail() { throw std::system_error(errno, std::generic_category()); }

    int m_file;
};

// What the library writes for a tree, empty when it cannot. In memory, no full disk cuts it off.
std::string textOf(CFCProcessNode& process) {
    MemoryFile const file;
    CFCWriter writer;
    return writer.WriteFile(libraryPath(file.path()), &process, true) ? file.content() : std::string();
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
    std::optional<fs::path> const definition = workflowDefinition(file);
    m_isWorkflowFolder = definition.has_value();
    std::error_code error;
    if (!definition && fs::is_directory(file, error))
        throw Failure(file, "", noWorkflowFault());
    // Faults of a workflow's files are told when they are read.
    if (std::string const fault = inputFault(file); !definition && !fault.empty())
        throw Failure(file, "", fault);
    m_startFolder = fs::current_path();
    m_path = definition ? *definition : fs::absolute(file).lexically_normal();
    m_state = FileState::of(m_path);
    setRoots(scriptRoots);
    if (m_isWorkflowFolder)
        readWorkflow();
    else
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
    fs::path own = m_path.parent_path();
    // Below the execution root the names of scripts begin there.
    if (fs::path const root = executionRoot(own); m_isWorkflowFolder && root != own) {
        m_scriptRoots.push_back(root);
        m_scriptRoots.push_back(own);
        own = root;
    } else {
        m_scriptRoots.push_back(own);
    }

    TuString const folder = libraryPath(own);
    CFCEnvironment::SetBasePath(folder);
    CFCEnvironment::SetProjectPath(folder);
    CFCEnvironment::SetUserPath(libraryPath(m_scriptRoots.front()));
    CFCEnvironment::SetMacroBasePath(scriptRoots.size() > 1 ? libraryPath(m_scriptRoots[1]) : folder);
}

void Document::read() {
    DocumentReader source;
    NodeTree tree = source.parse(m_path);
    if (tree == nullptr)
        throw xmlFailure(m_file, source.reader);
    m_findings = source.reader.GetReadFindings();
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

void Document::readWorkflow() {
    WorkflowFolder folder = readWorkflowFolder(m_file);
    auto* const process = dynamic_cast<CFCProcessNode*>(folder.process.get());
    if (process == nullptr)
        throw Failure(m_file, "", "is no workflow");
    m_workflowFindings = std::move(folder.findings);
    static_cast<void>(folder.process.release());
    m_process = process;
}

void Document::expectDocument(std::string_view cause) const {
    if (m_isWorkflowFolder)
        throw Failure(m_file, "", fmt::format("is a workflow folder, and {}", cause));
}

// The library looks below the first two script roots and the document's folder alone.
void Document::loadFurtherScripts() {
    for (CFCBlockNode* const block : blocks()) {
        if (block->HasScript() || block->GetScriptType() != EScriptType_PYTHON)
            continue;
        if (auto const file = scriptFile(*block)) {
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

std::string Document::scriptName(CFCBlockNode& block) const {
    if (CFCBPMBlockData* const task = m_isWorkflowFolder ? block.GetBPMBlockData() : nullptr)
        if (*task->GetModulePath() != L'\0')
            return utf8(task->GetModulePath());
    return utf8(block.GetScriptName());
}

std::optional<fs::path> Document::scriptFile(CFCBlockNode& block) const {
    auto file = scriptFile(scriptName(block));
    if (file || !m_isWorkflowFolder)
        return file;
    // In a folder that was moved, modules are not where their names say, and the files still stand with their blocks.
    std::string path = utf8(block.GetFullScriptFileName());
    std::replace(path.begin(), path.end(), '\\', '/');
    std::error_code error;
    if (!path.empty() && fs::is_regular_file(path, error))
        return path;
    return std::nullopt;
}

ScriptState Document::scriptState(CFCBlockNode& block) const {
    if (block.GetScriptType() != EScriptType_PYTHON)
        return ScriptState::None;
    if (scriptFile(block))
        return ScriptState::Found;
    if (m_isWorkflowFolder) {
        CFCBPMBlockData* const task = block.GetBPMBlockData();
        return task != nullptr && *task->GetModulePath() != L'\0' ? ScriptState::Missing : ScriptState::None;
    }
    std::string const name = utf8(block.GetScriptName());
    // A nameless script takes the name of its block when it is read.
    bool const isNamed = !name.empty() && name != utf8(block.GetNodeId());
    return isNamed || isTask(block.GetNodeType()) ? ScriptState::Missing : ScriptState::None;
}

FileState FileState::of(fs::path const& path) {
    FileState state;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return state;
    state.device = status.st_dev;
    state.number = status.st_ino;
    state.size = static_cast<std::uintmax_t>(status.st_size);
    state.seconds = status.st_mtim.tv_sec;
    state.nanoseconds = status.st_mtim.tv_nsec;
    return state;
}

void Document::checkCanSave(std::string const& out) {
    SafeFile::check(out);
}

void Document::save(std::string const& out) {
    expectDocument("is not saved: \"flowmere import\" makes a document of it");
    SafeFile file(out, m_startFolder);
    auto const fail = [&](std::string const& cause) {
        throw Failure(out, "", "cannot be written: " + cause);
    };
    std::error_code error;
    fs::path const own = fs::canonical(m_path, error);
    bool const isOwn = !error && own == fs::weakly_canonical(file.destination(), error);
    if (isOwn && m_state != FileState::of(own))
        fail("another program has changed it since it was read");
    std::string text;
    try {
        text = textOf(*m_process);
    } catch (std::system_error const& problem) {
        fail(problem.code().message());
    }
    if (text.empty())
        fail("the document could not be built");
    file.write(text);
    NodeTree const written = DocumentReader().parse(file.path());
    if (written == nullptr)
        fail("what was written cannot be read back");
    ReadBack const readBack = compareReadBack(*m_process, *written);
    if (readBack.loss)
        throw Failure(out, readBack.loss->place,
                      fmt::format("cannot be written: a process document does not keep {}",
                                  readBack.loss->what.empty() ? "it" : readBack.loss->what));
    // Reading back has taken its time.
    if (isOwn && m_state != FileState::of(own))
        fail("another program has changed it since it was read");
    file.commit();
    if (isOwn)
        m_state = FileState::of(own);
    for (std::string const& variable : readBack.respaced)
        printError(errorLine(out, variable, "a process document does not keep all white space of its value") + "\n");
}

} // namespace flowmere::host
