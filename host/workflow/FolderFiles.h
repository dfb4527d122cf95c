#pragma once

// The files of a workflow folder.

#include "host/document/Document.h"
#include "host/workflow/ToWorkflow.h"

#include <filesystem>
#include <string>
#include <vector>

namespace flowmere::host {

// The name of the summary that is written for other programs.
inline constexpr char kSummaryFile[] = "workflowdefinition.xml";
inline constexpr char kDefinitionFile[] = "processdefinition.xml";

struct FolderTarget {
    std::string name; // as the user named it
    bool replaces = false;
};

struct WrittenFolder {
    std::vector<std::string> files; // all of them, from the folder, in the order of their names
    int scripts = 0;                // blocks whose script was written
};

// Writes the tree into a new folder that takes its target's place in one step: the three files of each level, a folder
// for each block, the scripts with what they import, the files that variables name and that lie beside the document,
// and the summary, with the applications below the given node (null for none). Without a document, which has scripts
// and files, there are neither.
//
// The folder of the engine, "BrindleExec", is looked for in the path of the target; without it, the parent of the
// target stands for it.
//
// What cannot be carried is added to the notes of the tree. Throws Failure, exit code 2; then the target is what it
// was.
WrittenFolder writeWorkflowFolder(FolderTarget const& target, WorkflowTree& tree, Document const* document,
                                  IFCNode* applications);

} // namespace flowmere::host
