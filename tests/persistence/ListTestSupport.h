#pragma once

#include "DocumentTestSupport.h"

#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCProcessListWriter.h"

#include <memory>
#include <string>
#include <vector>

namespace flowmere::test {

using ListTree = std::unique_ptr<CFCProcessList, TreeEnd>;

inline ListTree newList(wchar_t const* caption = L"Processes") {
    ListTree list(new CFCProcessList);
    list->SetNodeType(69);
    list->SetNodeCaption(caption);
    return list;
}

// A new child, behind the others in the order of the file.
inline IFCNode* addGroup(IFCNode* parent, wchar_t const* caption, bool isNew = true) {
    IFCNode* const group = addChild(parent, 71, L"", caption);
    group->SetNewPath(isNew);
    return group;
}
inline IFCNode* addFile(IFCNode* parent, wchar_t const* caption, wchar_t const* path = L"", bool isNew = true) {
    IFCNode* const file = addChild(parent, 70, L"", caption);
    file->SetItemFilePath(path);
    file->SetNewPath(isNew);
    return file;
}

// The entries below a node in the order of the file, as "A G(B H() C)"; every group has brackets.
inline std::string outlineOf(IFCNode* node) {
    std::string text;
    for (IFCNode* const child : childrenOf(node)) {
        text += (text.empty() ? "" : " ") + narrow(child->GetNodeCaption());
        if (child->GetNodeType() == 71 || child->GetChild() != nullptr)
            text += "(" + outlineOf(child) + ")";
    }
    return text;
}

// All nodes below a node, a container before what is in it.
inline std::vector<IFCNode*> allBelow(IFCNode* node) {
    std::vector<IFCNode*> all;
    for (IFCNode* const child : childrenOf(node)) {
        all.push_back(child);
        std::vector<IFCNode*> const below = allBelow(child);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

inline IFCNode* found(IFCNode* list, wchar_t const* caption) {
    IFCNode* const node = CFCNodeHelper::FindNodeByCaption(caption, list);
    if (node == nullptr)
        throw std::runtime_error("no entry " + narrow(caption));
    return node;
}

} // namespace flowmere::test
