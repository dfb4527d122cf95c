// What the shell does with the files of projects.

#include "host/shell/Workspace.h"

#include "host/basics/Text.h"
#include "host/document/Findings.h"
#include "host/scripting/HostModule.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace flowmere::host::shell {

namespace fs = std::filesystem;

namespace {

// Keeps the roots of the environment for the open document while another one is read, and puts them back unless that
// one takes its place.
class KeptRoots {
public:
    KeptRoots()
        : m_base(CFCEnvironment::GetBasePath()), m_project(CFCEnvironment::GetProjectPath()),
          m_user(CFCEnvironment::GetUserPath()), m_macro(CFCEnvironment::GetMacroBasePath()) {}
    ~KeptRoots() {
        if (m_isReleased)
            return;
        CFCEnvironment::SetBasePath(m_base);
        CFCEnvironment::SetProjectPath(m_project);
        if (!m_user.IsEmpty())
            CFCEnvironment::SetUserPath(m_user);
        CFCEnvironment::SetMacroBasePath(m_macro);
    }
    KeptRoots(KeptRoots const&) = delete;
    KeptRoots& operator=(KeptRoots const&) = delete;
    void release() { m_isReleased = true; }

private:
    TuString m_base;
    TuString m_project;
    TuString m_user;
    TuString m_macro;
    bool m_isReleased = false;
};

bool isInside(fs::path const& relative) {
    fs::path const path = relative.lexically_normal();
    return !path.empty() && path.is_relative() && *path.begin() != "..";
}

// The files that a project needs beside its document, relative to the folder: the scripts of its blocks, with all that
// lies in their packages, and the files that its variables name.
std::set<fs::path> filesBeside(Document const& document) {
    fs::path const folder = document.path().parent_path();
    std::set<fs::path> files;
    std::set<fs::path> packages;
    bool hasPlainScripts = false;
    std::error_code error;
    auto const addFile = [&](std::string const& name) {
        if (!name.empty() && isInside(name) && fs::is_regular_file(folder / name, error))
            files.insert(fs::path(name).lexically_normal());
    };
    auto const addVariables = [&](IFCNode& node) {
        CFCVariableList* const list = node.GetVariableList();
        __FCPOSITION* position = list != nullptr ? list->GetHeadPosition() : nullptr;
        while (position != nullptr)
            if (CFCVariableData* const variable = list->GetNext(position))
                if (variable->GetDataType() == EDataType_File)
                    addFile(utf8(variable->GetValue()));
    };
    addVariables(document.process());
    for (CFCBlockNode* const block : document.blocks()) {
        addVariables(*block);
        if (document.scriptState(*block) != ScriptState::Found)
            continue;
        std::string const name = utf8(block->GetScriptName());
        auto const dot = name.find('.');
        if (dot == std::string::npos && !fs::is_directory(folder / name, error))
            hasPlainScripts = true;
        else
            packages.insert(name.substr(0, dot));
    }
    auto const isScript = [](fs::path const& path) {
        return path.extension() == ".py";
    };
    if (hasPlainScripts)
        for (fs::directory_entry const& entry : fs::directory_iterator(folder, error))
            if (entry.is_regular_file(error) && isScript(entry.path()))
                files.insert(entry.path().filename());
    for (fs::path const& package : packages) {
        for (fs::recursive_directory_iterator entry(folder / package, error), end; !error && entry != end;
             entry.increment(error)) {
            if (entry->path().filename() == "__pycache__")
                entry.disable_recursion_pending();
            else if (entry->is_regular_file(error))
                files.insert(entry->path().lexically_relative(folder));
        }
    }
    return files;
}

// Copies the files that the other folder does not have; their number.
std::size_t copyFiles(std::set<fs::path> const& files, fs::path const& from, fs::path const& to) {
    std::size_t count = 0;
    for (fs::path const& file : files) {
        std::error_code error;
        fs::create_directories((to / file).parent_path(), error);
        if (!error && fs::copy_file(from / file, to / file, fs::copy_options::skip_existing, error))
            ++count;
        if (error)
            throw Failure((to / file).string(), "", "cannot be written: " + error.message());
    }
    return count;
}

// A file of a folder, as the user would name it.
std::string inFolder(std::string const& folder, std::string const& name) {
    return (fs::path(folder) / name).lexically_normal().string();
}

bool isFolder(std::string const& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

} // namespace

std::unique_ptr<Document> Workspace::read(std::string const& file) const {
    KeptRoots roots;
    auto document = std::make_unique<Document>(file, m_setting.scriptRoots);
    document->expectDocument("is not opened here: \"flowmere import\" makes a document of it");
    return document;
}

// The document is the project from now on; its roots are those of the environment. `mayLose`: it is settled that the
// changes of the former one may be lost.
void Workspace::take(std::string const& file, bool mayLose) {
    KeptRoots roots;
    FileState const state = FileState::of(file);
    auto document = std::make_unique<Document>(file, m_setting.scriptRoots);
    document->expectDocument("is not opened here: \"flowmere import\" makes a document of it");
    if (!mayLose)
        leaveProject();
    roots.release();
    close();
    m_document = std::move(document);
    m_document->process().setProcessSaveStatus(CFCProcessNode::ProcessSaved);
    m_name = file;
    m_file = m_document->path();
    m_state = state;
    m_width = 0;
    for (std::string const& path : m_document->blockPaths())
        m_width = std::max(m_width, std::min<std::size_t>(path.size(), 40));
    hostServices().documentPath = m_document->path().string();
    for (CFCReadFinding const& finding : m_document->findings())
        printError(errorLine(m_document->file(), pathOf(*finding.node), describe(finding)) + "\n");
}

void Workspace::close() {
    m_runner.reset();
    m_hasBegun = false;
    m_last.reset();
    m_expanded.clear();
    m_document.reset();
    m_name.clear();
    m_file.clear();
}

void Workspace::leaveProject() {
    if (!mayLeave())
        throw Failure(m_name, "", "has unsaved changes: Save Project keeps them, the same line once more leaves them",
                      kExitFound);
}

void Workspace::createProject() {
    std::string const source = required("Project Template File", "a template");
    std::string const folder = required("Project Directory", "a folder for the project");
    std::string name = m_commands.text("Project Name").value_or("");
    if (name.empty())
        name = fs::path(source).stem().string();
    if (fs::path(name).has_parent_path())
        throw Failure("", name, "is no name of a project: it holds a folder");
    if (fs::path(name).extension() != ".xml")
        name += ".xml";
    std::string const file = inFolder(folder, name);
    std::error_code error;
    if (fs::exists(fs::symlink_status(file, error)))
        throw Failure(file, "", "is there already");

    std::size_t copied = 0;
    {
        std::unique_ptr<Document> const document = read(source);
        leaveProject();
        fs::create_directories(folder, error);
        if (!isFolder(folder))
            throw Failure(folder, "", "no such folder can be made" + (error ? ": " + error.message() : std::string()));
        for (CFCBlockNode* const block : document->blocks())
            block->SetExecutionStateType(EExecutionStateType_ESNone);
        document->save(file);
        copied = copyFiles(filesBeside(*document), document->path().parent_path(), fs::absolute(folder));
    }
    take(file, true);
    m_output.line(fmt::format("created: {}, with {} beside it", oneLine(file), counted(copied, "file")));
    m_output.fact("created", file);
    m_output.fact("copied", copied);
}

void Workspace::openProject() {
    std::string const name = required("Project Name", "a document");
    std::string file = name;
    // A document of the project's folder goes before one of the folder in which the shell runs.
    if (std::optional<std::string> const folder = m_commands.text("Project Directory");
        folder && !folder->empty() && fs::path(name).is_relative()) {
        std::error_code error;
        if (std::string const inside = inFolder(*folder, name); fs::exists(inside, error))
            file = inside;
    }
    take(file, false);
    std::size_t const blocks = m_document->blocks().size();
    m_output.line(fmt::format("opened: {}: {}", oneLine(file), counted(blocks, "block")));
    m_output.fact("opened", file);
    m_output.fact("blocks", blocks);
}

void Workspace::closeProject() {
    project();
    std::string const file = m_name;
    leaveProject();
    close();
    m_output.line("closed: " + oneLine(file));
    m_output.fact("closed", file);
}

void Workspace::saveTo(std::string const& file) {
    fs::path const path = fs::absolute(file).lexically_normal();
    if (path == m_file && FileState::of(m_file) != FileState() && FileState::of(m_file) != m_state)
        throw Failure(file, "", "cannot be written: another program has changed it since it was read");
    m_document->save(file);
    m_name = file;
    m_file = path;
    m_state = FileState::of(m_file);
    m_document->process().setProcessSaveStatus(CFCProcessNode::ProcessSaved);
    m_output.line("saved: " + oneLine(file));
    m_output.fact("saved", file);
}

void Workspace::saveProject() {
    project();
    std::string file = m_name;
    std::string const folder = m_commands.text("Project Directory").value_or("");
    if (!folder.empty() && fs::absolute(folder).lexically_normal() / "" != m_file.parent_path() / "")
        file = inFolder(folder, m_file.filename().string());
    saveTo(file);
}

void Workspace::saveProjectAs() {
    project();
    std::string const folder = required("Project Directory", "a file, or a folder");
    std::string name = m_commands.text("Project Name").value_or("");
    if (name.empty())
        name = m_file.filename().string();
    std::string const file = inFolder(folder, fs::path(name).filename().string());
    std::error_code error;
    bool const isOwn = fs::absolute(file).lexically_normal() == m_file;
    if (!isOwn && fs::is_regular_file(file, error) && m_setting.mayReplace && !m_setting.mayReplace(file))
        throw Failure(file, "", "is there already: the same line once more replaces it", kExitFound);
    saveTo(file);
}

void Workspace::saveIteration() {
    project();
    std::string folder = m_commands.text("Project Directory").value_or("");
    if (folder.empty())
        folder = m_file.parent_path() == fs::current_path() ? "." : m_file.parent_path().string();
    if (!isFolder(folder))
        throw Failure(folder, "", "is no folder");
    std::string const stem = m_file.stem().string();
    std::string file;
    std::error_code error;
    // Behind the last one that is there, so that a number that became free stays free.
    int number = 1;
    std::string const start = stem + "-";
    for (fs::directory_entry const& entry : fs::directory_iterator(folder, error)) {
        std::string const name = entry.path().stem().string();
        if (entry.path().extension() != ".xml" || !name.starts_with(start))
            continue;
        std::string const digits = name.substr(start.size());
        if (!digits.empty() && digits.size() < 9 && digits.find_first_not_of("0123456789") == std::string::npos)
            number = std::max(number, std::stoi(digits) + 1);
    }
    file = inFolder(folder, fmt::format("{}{:03}.xml", start, number));
    m_document->save(file);
    m_output.line("saved: " + oneLine(file));
    m_output.fact("saved", file);
    m_output.fact("iteration", number);
}

} // namespace flowmere::host::shell
