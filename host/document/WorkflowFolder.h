#pragma once

// A workflow folder: what the workflow engine takes in place of a document. It holds "processdefinition.xml", beside
// that the files of the layout and of the variables, and a folder for each sub-process.

#include "host/document/HostFactory.h"

#include "flowmere/Flowmere.h"

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace flowmere::host {

// The definition of a workflow folder, absolute: of a folder that holds one, or of the path of the definition itself.
// None for everything else, a folder without a definition included.
std::optional<std::filesystem::path> workflowDefinition(std::filesystem::path const& path);

// Why a folder for which there is none cannot be read, as the end of a message.
std::string noWorkflowFault();

// What was read of a workflow folder.
struct WorkflowFolder {
    NodeTree process; // a CFCBPMProcessNode, never null
    std::filesystem::path definition;
    // The folder below which the engine finds scripts: the execution root that the folder stands in, or else the folder
    // itself.
    std::filesystem::path scriptRoot;
    // What did not come into the tree. Their nodes point into it.
    std::vector<CFCWorkflowFinding> findings;
    double version = 1;
};

// Reads a workflow folder, sub-processes included, with the nodes of the program: connectors keep their routes. The
// folders of the environment must be set. What the library's reader leaves out is made up for: groups behind a
// sub-process and levels without variables have their connectors, such levels their layout, the process its variables,
// and arrays their types. Each block that may have a script knows its file, whether it is there or not.
//
// Throws Failure, exit code 2, for a folder without a definition, for a broken file at any depth (with the file, the
// line, the column and the cause), for sub-processes that contain themselves, and for too deep nesting. A sub-process
// without a folder, and a folder without variables or without a layout, are findings.
WorkflowFolder readWorkflowFolder(std::string const& name);

// The execution root of a folder: the part of its path up to "BrindleExec", or else the folder itself.
std::filesystem::path executionRoot(std::filesystem::path const& folder);

// The file that a finding is about, as the user would name it who opened the folder as `name`.
std::string fileOf(CFCWorkflowFinding const& finding, std::string const& name);
// What a finding says, as the end of a message: "the element <swimlane> is passed over".
std::string describe(CFCWorkflowFinding const& finding);
// Whether a finding is a file that is not there.
bool isMissingFile(CFCWorkflowFinding const& finding);
// Whether it is a node of a kind that the engine knows and the library does not read: transitions lead to it.
bool isUnreadNode(CFCWorkflowFinding const& finding);

// The names of these nodes, by the process or group that they stand in.
class UnreadNodes {
public:
    explicit UnreadNodes(std::vector<CFCWorkflowFinding> const& findings);
    bool has(IFCNode* container, std::string const& name) const;

private:
    std::unordered_map<IFCNode*, std::unordered_set<std::string>> m_names;
};

// What a user is to know who looks at the folder, each fit for an error line.
struct WorkflowNote {
    std::string file; // as fileOf names it
    std::string place;
    std::string text;
    bool isFinding = false; // a check tells of it, too
};
// The findings, but for elements, attributes and texts that are passed over: these are told by their number.
std::vector<WorkflowNote> notesOf(std::vector<CFCWorkflowFinding> const& findings, std::string const& name);

} // namespace flowmere::host
