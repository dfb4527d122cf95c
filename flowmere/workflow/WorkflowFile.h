#pragma once

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/xml/XmlForward.h"

#include <cstddef>
#include <functional>

// What the writers and readers of a workflow folder have in common.
namespace flowmere {

// Sub-process blocks, 162 to 165: their children live in a folder of their own.
bool isSubProcessKind(int kind) noexcept;

// The name under which files tell the kinds of task apart; the empty text for a kind without one.
wchar_t const* workflowNodeTypeName(int kind) noexcept;
// The kind of such a name, exact in case; 57, a plain block, for any other text.
int workflowNodeTypeFromName(wchar_t const* name);

// Writes a file with the given root element, the schema instance namespace as its "xmlns", filled by the caller. False
// when the parser library or its serialiser does not come up; true otherwise, whatever became of the bytes and of an
// exception in `fill`.
bool writeWorkflowFile(wchar_t const* path, wchar_t const* rootName,
                       std::function<void(XERCES_CPP_NAMESPACE::DOMElement&)> const& fill);

// Pretty-prints a file into the path with each ".xml" replaced by ".for"; nothing happens when it cannot be read.
void formatWorkflowFile(wchar_t const* path);

// The folder of a file: its path up to the last slash or, without any slash, up to the last backslash. The empty text
// for a plain file name; the separator itself for a file in the topmost folder.
TuString folderOfFile(TuString const& path);

// The path of a file in a folder, behind a backslash. A plain name stays one when there is no folder: it must not land
// in the topmost folder.
TuString joinFolder(TuString const& folder, wchar_t const* name);

// The name by which files know a node: its identifier or, without one, its caption.
TuString nodeNameOf(IFCNode* node);

// Calls `visit` for the children from the last to the first, the order in which they came to be. A chain whose links
// form a ring counts as empty.
template <typename Visit>
void visitChildrenFromLast(IFCNode* node, Visit const& visit) {
    IFCNode* const first = node != nullptr ? node->GetChild() : nullptr;
    IFCNode* last = nullptr;
    std::size_t count = 0;
    CircleGuard<IFCNode> guard;
    for (IFCNode* child = first; child != nullptr; child = child->GetNext()) {
        if (guard.closes(child)) {
            return;
        }
        last = child;
        ++count;
    }
    for (IFCNode* child = last; child != nullptr && count > 0; --count) {
        // What stands before the first child is stale.
        IFCNode* const previous = child != first ? child->GetPrev() : nullptr;
        visit(child);
        child = previous;
    }
}

} // namespace flowmere
