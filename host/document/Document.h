#pragma once

// An opened process document: what every command begins with.

#include "host/document/WorkflowFolder.h"

#include "flowmere/Flowmere.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

// Where the script of a block stands.
enum class ScriptState {
    None,    // the block has none and needs none: it runs as nothing
    Found,   // there is a file
    Missing, // it names a script, or is of a kind that does nothing without one, and there is no file
};

// What tells a file from what stood there before, without reading it. All zero for a missing one.
struct FileState {
    static FileState of(std::filesystem::path const& path);
    bool operator==(FileState const&) const = default;

    std::uintmax_t device = 0;
    std::uintmax_t number = 0;
    std::uintmax_t size = 0;
    std::int64_t seconds = 0; // of its last change
    std::int64_t nanoseconds = 0;
};

// Owns the tree of one document, or of a workflow folder, and what the library has to know to find its scripts. The
// roots of the environment are one for the process: one document is open at a time.
class Document {
public:
    // Reads the file, links into other files included, and looks up the scripts. Scripts are found below the given
    // folders, in that order, and below the document's own folder; those of a workflow below its execution root, too.
    // The path of a workflow folder, or of the definition in it, opens that. Throws Failure, exit code 2, for a file
    // that cannot be read and for a script root that is no folder.
    explicit Document(std::string const& file, std::vector<std::string> const& scriptRoots = {});
    ~Document();
    Document(Document const&) = delete;
    Document& operator=(Document const&) = delete;

    // The file or the workflow folder as the user named it, and the absolute path of the file, of a folder the path of
    // its definition.
    std::string const& file() const { return m_file; }
    std::filesystem::path const& path() const { return m_path; }
    // The root of the tree, never null.
    CFCProcessNode& process() const { return *m_process; }
    // What the reader passed over: connectors whose block is missing, linked files that are missing. Their nodes point
    // into the tree.
    std::vector<CFCReadFinding> const& findings() const { return m_findings; }
    // What is in it belongs to an engine, which runs it: it is looked at, and neither run here nor saved.
    bool isWorkflowFolder() const { return m_isWorkflowFolder; }
    // Throws Failure, exit code 2, for a workflow folder: "is a workflow folder, and CAUSE".
    void expectDocument(std::string_view cause) const;
    // The same for a workflow folder, whose findings are of another kind.
    std::vector<CFCWorkflowFinding> const& workflowFindings() const { return m_workflowFindings; }
    // The folders in which scripts are found, absolute, in order of search.
    std::vector<std::filesystem::path> const& scriptRoots() const { return m_scriptRoots; }

    // All blocks below the root, at any depth, a container before what is in it, in the order of the file. Nodes that
    // are no blocks are left out.
    std::vector<CFCBlockNode*> blocks() const;
    // The paths of these blocks, and the paths of all variables, for suggestions.
    std::vector<std::string> blockPaths() const;
    std::vector<std::string> variablePaths() const;
    // The block of a path from the root, or else of an identifier that only one block has. Throws Failure, exit code
    // 2, with near names when there is none, with the paths when there are several.
    CFCBlockNode& block(std::string const& pathOrId) const;
    // The variable of a path from the root; "Name" and ".Name" are variables of the process. Throws Failure, exit code
    // 2, with near names.
    CFCVariableData& variable(std::string const& path) const;

    // The file that Python would import under the dotted name; none when there is no such file.
    std::optional<std::filesystem::path> scriptFile(std::string const& name) const;
    // Name and file of a block's script. In a workflow folder the name is the module that the engine calls, or else
    // that of the file which belongs to the block.
    std::string scriptName(CFCBlockNode& block) const;
    std::optional<std::filesystem::path> scriptFile(CFCBlockNode& block) const;
    // Found, too, for the script of a workflow block that the engine does not call.
    ScriptState scriptState(CFCBlockNode& block) const;

    // Throws what save would throw for a file that cannot come to stand there, as far as that shows beforehand.
    static void checkCanSave(std::string const& out);
    // Writes the whole tree into a new file beside the target, reads it back, compares, and lets it take the target's
    // place in one step: the old file stays until then, and no failure harms it. A name that is not absolute counts
    // from the folder in which the document was opened, wherever a script has gone since. Values that come back with
    // other white space are told on standard error. Throws Failure, exit code 2; also when another program has changed
    // the file that was read, and that is to be replaced.
    void save(std::string const& out);

private:
    void setRoots(std::vector<std::string> const& scriptRoots);
    void read();
    void readWorkflow();
    void loadFurtherScripts();

    std::string m_file;
    std::filesystem::path m_path;
    std::filesystem::path m_startFolder;
    FileState m_state;
    std::vector<std::filesystem::path> m_scriptRoots;
    CFCProcessNode* m_process = nullptr;
    std::vector<CFCReadFinding> m_findings;
    std::vector<CFCWorkflowFinding> m_workflowFindings;
    bool m_isWorkflowFolder = false;
};

// Path of the node from the root, UTF-8; the empty text for a root without an identifier.
std::string pathOf(IFCNode& node);

} // namespace flowmere::host
