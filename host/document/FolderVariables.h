#pragma once

// What the library's reader leaves behind in the files of variables of a workflow folder.

#include "flowmere/Flowmere.h"

#include <filesystem>

namespace flowmere::host {

// Gives a tree that was read from the folder the variables of its process, which that reader passes over, and gives
// arrays the types that their files tell: it takes them for values of a type "Data Array". A process that has variables
// keeps them. Files that are missing or broken are passed over.
void completeVariables(std::filesystem::path const& folder, IFCNode& process);

} // namespace flowmere::host
