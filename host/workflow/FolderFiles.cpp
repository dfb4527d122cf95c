#include "host/workflow/FolderFiles.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Tree.h"
#include "host/files/SafeFolder.h"
#include "host/workflow/BlockScripts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExecutionFolder = "BrindleExec";

// What SaveScriptFile calls the five texts of a block.
constexpr int kFormPage = 3;
constexpr int kStyleSheet = 4;
constexpr int kUserStyleSheet = 5;
constexpr int kFormScript = 6;
constexpr int kBlockScript = 7;

// Path of the new folder below the execution root, with the name of that: everything that the library works out from
// paths is then what it is going to be in the target's place.
fs::path innerPath(fs::path const& destination) {
    std::string const text = destination.string();
    std::size_t const at = text.find(kExecutionFolder);
    return at != std::string::npos ? fs::path(text.substr(at)) : fs::path(kExecutionFolder) / destination.filename();
}

std::string contentOf(fs::path const& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Folders from the top of the workflow down to the node, its own included.
fs::path folderOf(IFCNode& node) {
    fs::path folder;
    for (IFCNode* at = &node; at->GetParentNode() != nullptr; at = at->GetParentNode()) {
        fs::path const name = utf8(at->GetNodeId());
        folder = folder.empty() ? name : name / folder;
    }
    return folder;
}

bool runsScript(int kind) {
    return kind == eShapeType_Task || kind == eShapeType_DecisionTask || isWorkflowSubProcess(kind);
}

bool isInside(fs::path const& path) {
    return !path.empty() && path.is_relative() && *path.begin() != "..";
}

class Writing {
public:
    Writing(FolderTarget const& target, WorkflowTree& tree, Document const* document)
        : m_target(target), m_tree(tree), m_document(document),
          m_folder(target.name, innerPath(SafeFolder::destinationOf(target.name)), target.replaces, kDefinitionFile) {}

    WrittenFolder write(IFCNode* applications) {
        makeFolders(*m_tree.process);
        for (auto const& [source, node] : m_tree.blocks)
            writeScripts(*source, *node);
        if (m_document != nullptr)
            writeDataFiles(*m_document);
        CFCProcessDefinitionWriter definition;
        CFCWorkFlowWriter summary;
        if (!definition.WriteFile(libraryFile(kDefinitionFile), m_tree.process.get(), true) ||
            !summary.WriteFile(libraryFile(kSummaryFile), m_tree.process.get(), applications))
            fail("", "it could not be built");
        // The library does not tell what came to disk: a file that was cut off is no whole XML any more.
        checkFile(kSummaryFile);
        checkLevel(*m_tree.process);
        listFiles();
        m_folder.commit();
        return std::move(m_written);
    }

private:
    [[noreturn]] void fail(std::string const& place, std::string const& cause) const {
        throw Failure(m_target.name, place, "cannot be written: " + cause);
    }

    TuString libraryFile(fs::path const& file) const { return libraryPath(m_folder.openPath() / file); }

    void note(Note::Kind kind, std::string const& place, std::string const& text) {
        m_tree.notes.push_back({kind, place, text});
    }

    void makeFolder(fs::path const& folder) const {
        std::error_code error;
        fs::create_directories(m_folder.path() / folder, error);
        if (error)
            fail(folder.string(), error.message());
    }

    void makeFolders(IFCNode& root) const {
        std::vector<IFCNode*> open{&root};
        while (!open.empty()) {
            IFCNode* const node = open.back();
            open.pop_back();
            for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext()) {
                if (child->GetBPMBlockData() == nullptr)
                    continue;
                makeFolder(folderOf(*child));
                open.push_back(child);
            }
        }
    }

    void writeScripts(CFCBlockNode& source, CFCBPMTaskNode& node) {
        fs::path const own = folderOf(node);
        TuString const parent = libraryFile(own.parent_path());
        if (m_document != nullptr)
            carryForms(*m_document, source, node);
        node.SetScriptFile(node.GetNodeId(), parent);
        if (m_document != nullptr && runsScript(node.GetNodeType()))
            readScript(*m_document, source, node, own);
        if (!isEmpty(node.GetJythonScriptCode()))
            node.UpdateModulePath(parent, node.GetNodeId());
        struct Row {
            int type;
            wchar_t const* code;
            std::string file;
        };
        std::string const name = utf8(node.GetNodeId());
        std::array<Row, 5> const rows{{{kFormPage, node.GetHTMLScriptCode(), name + ".html"},
                                       {kStyleSheet, node.GetCSSScriptCode(), name + ".css"},
                                       {kUserStyleSheet, node.GetUserCSSScriptCode(), name + "_User.css"},
                                       {kFormScript, node.GetJSScriptCode(), "scripts/" + name + ".js"},
                                       {kBlockScript, node.GetJythonScriptCode(), "scripts/" + name + ".py"}}};
        for (Row const& row : rows)
            if (!isEmpty(row.code))
                saveScript(node, row.type, own / row.file, utf8(row.code));
    }

    static bool isEmpty(wchar_t const* text) { return text == nullptr || *text == L'\0'; }

    void saveScript(CFCBPMTaskNode& node, int type, fs::path const& file, std::string const& text) {
        makeFolder(file.parent_path());
        CFCBPMBlockData& record = node;
        errno = 0;
        record.SaveScriptFile(libraryFile(file), static_cast<EScriptType>(type));
        checkBytes(file, text, errno);
        m_written.scripts += type == kBlockScript ? 1 : 0;
    }

    // The forms of a block of a workflow folder, which readers of folders leave in their files.
    static void carryForms(Document const& document, CFCBlockNode& source, CFCBPMTaskNode& node) {
        if (source.GetBPMBlockData() == nullptr || document.process().GetNodeType() != eShapeType_WorkflowProcess)
            return;
        fs::path const own = document.path().parent_path() / folderOf(source);
        std::string const name = utf8(source.GetNodeId());
        auto const text = [&](std::string const& file, wchar_t const* present) {
            return isEmpty(present) ? wide(contentOf(own / file)) : TuString(present);
        };
        node.SetHTMLScriptCode(text(name + ".html", node.GetHTMLScriptCode()));
        node.SetCSSScriptCode(text(name + ".css", node.GetCSSScriptCode()));
        node.SetUserCSSScriptCode(text(name + "_User.css", node.GetUserCSSScriptCode()));
        node.SetJSScriptCode(text("scripts/" + name + ".js", node.GetJSScriptCode()));
    }

    void readScript(Document const& document, CFCBlockNode& source, CFCBPMTaskNode& node, fs::path const& own) {
        if (document.scriptState(source) != ScriptState::Found)
            return;
        std::string const scriptName = document.scriptName(source);
        std::optional<fs::path> const file = document.scriptFile(source);
        if (!file)
            return;
        std::string const className = scriptName.substr(scriptName.rfind('.') + 1);
        std::string const name = utf8(node.GetNodeId());
        BlockScript const script = readBlockScript(
            *file, className, name, [&document](std::string const& module) { return document.scriptFile(module); });
        std::string const place = pathOf(source);
        node.SetJythonScriptCode(wide(script.code));
        if (className != name)
            note(Note::Kind::Changed, place,
                 fmt::format(
                     "the class {} of its script has a second name, {}: the engine takes block and class for one",
                     className, name));
        for (std::string const& missing : script.missing)
            note(Note::Kind::Lost, place,
                 fmt::format("the module {} that its script imports: there is no such file", missing));
        fs::path const scripts = own / "scripts";
        for (ScriptModule const& module : script.modules) {
            fs::path const target = ((module.isFromTop ? fs::path() : scripts) / module.target).lexically_normal();
            if (!isInside(target))
                note(Note::Kind::Lost, place,
                     fmt::format("the module {} that its script imports: it would stand outside the folder",
                                 module.target.string()));
            else if (target == scripts / (name + ".py"))
                note(Note::Kind::Lost, place,
                     fmt::format("the module {} that its script imports: its name is taken by the script",
                                 module.target.string()));
            else
                copyFile(module.source, target, place);
        }
    }

    // A file that is there already must be the same.
    void copyFile(fs::path const& from, fs::path const& to, std::string const& place) {
        std::string const bytes = contentOf(from);
        fs::path const target = m_folder.path() / to;
        std::error_code error;
        if (fs::exists(target, error)) {
            if (contentOf(target) != bytes)
                note(Note::Kind::Lost, place, fmt::format("the file {}: another one has its place", to.string()));
            return;
        }
        makeFolder(to.parent_path());
        errno = 0;
        std::ofstream out(target, std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        checkBytes(to, bytes, errno);
    }

    void checkBytes(fs::path const& file, std::string const& bytes, int error) const {
        if (contentOf(m_folder.path() / file) != bytes)
            fail(file.string(), std::strerror(error != 0 ? error : EIO));
    }

    // What scripts open by the value of a file variable lies beside the document.
    void writeDataFiles(Document const& document) {
        std::vector<IFCNode*> nodes{m_tree.process.get()};
        for (auto const& [source, node] : m_tree.blocks)
            nodes.push_back(node);
        for (IFCNode* const node : nodes) {
            CFCVariableList* const list = node->GetVariableList();
            for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
                CFCVariableData* const variable = list->GetNext(position);
                if (variable == nullptr || (variable->GetDataType() != EDataType_File && !variable->IsFileType()))
                    continue;
                std::string value = utf8(variable->GetValue());
                std::replace(value.begin(), value.end(), '\\', '/');
                fs::path const file = fs::path(value).lexically_normal();
                fs::path const source = document.path().parent_path() / file;
                std::error_code error;
                if (isInside(file) && fs::is_regular_file(source, error))
                    copyFile(source, file, pathOf(*node) + "." + utf8(variable->GetVariableName()));
            }
        }
    }

    void checkFile(fs::path const& file) const {
        CTXMLBaseReader reader;
        if (!reader.Initialize(libraryFile(file)))
            fail(file.string(), "it did not come to disk whole: there is no room, or a text holds what XML cannot");
    }

    void checkLevel(IFCNode& root) const {
        std::vector<IFCNode*> open{&root};
        while (!open.empty()) {
            IFCNode* const node = open.back();
            open.pop_back();
            int const kind = node->GetNodeType();
            if (node == &root || isWorkflowSubProcess(kind))
                for (char const* const name : {kDefinitionFile, "gpd.xml", "process.var"})
                    checkFile(folderOf(*node) / name);
            for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
                if (child->GetBPMBlockData() != nullptr)
                    open.push_back(child);
        }
    }

    void listFiles() {
        for (fs::directory_entry const& entry : fs::recursive_directory_iterator(m_folder.path()))
            if (entry.is_regular_file())
                m_written.files.push_back(entry.path().lexically_relative(m_folder.path()).string());
        std::sort(m_written.files.begin(), m_written.files.end());
    }

    FolderTarget const& m_target;
    WorkflowTree& m_tree;
    Document const* m_document; // null for a tree without scripts and files
    SafeFolder m_folder;
    WrittenFolder m_written;
};

} // namespace

WrittenFolder writeWorkflowFolder(FolderTarget const& target, WorkflowTree& tree, Document const* document,
                                  IFCNode* applications) {
    return Writing(target, tree, document).write(applications);
}

} // namespace flowmere::host
