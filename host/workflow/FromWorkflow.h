#pragma once

// A workflow as a document: the way back.

#include "host/document/HostFactory.h"
#include "host/workflow/Notes.h"

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace flowmere::host {

struct NativeTree {
    NodeTree process; // a CFCProcessNode of a document, never null
    std::vector<Note> notes;
    int blocks = 0;
    int connectors = 0;
    int variables = 0;
    int scripts = 0; // blocks whose script stands in the folder
};

// Converts a tree that was read from the folder, and stays as it is: tasks become plain blocks, unless they name an
// application, decision tasks decisions, states terminators, and sub-processes sub-processes; what documents know no
// other form of stays a workflow node. States that an export has added go. Scripts are those of the folder, under the
// names that they have from there. Where a block has no script, and its transitions do not say by which grips they
// leave, they get such that the flow goes on. What a document cannot hold is left out, and told. An empty path stands
// for a folder without scripts.
NativeTree fromWorkflow(IFCNode& process, std::filesystem::path const& folder);

// The grip by which the connector of this number leaves its block, where nothing says otherwise: the first is the one
// that the flow takes by itself.
int wayOut(std::size_t number);

} // namespace flowmere::host
