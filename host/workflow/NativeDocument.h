#pragma once

// A converted tree on its way into the file of a document.

#include "host/workflow/FromWorkflow.h"

#include <string>

namespace flowmere::host {

// Sets the folders of the environment for a document that is to be written; before its tree is made.
void beginDocument(std::string const& out);
// Writes the tree as a document. What a document does not keep is added to the notes of the tree. Throws Failure, exit
// code 2; then what stood there is what it was.
void saveDocument(NativeTree& tree, std::string const& out);

} // namespace flowmere::host
