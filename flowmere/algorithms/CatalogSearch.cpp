#include "flowmere/algorithms/CatalogSearch.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/model/FCCatalogNodes.h"

#include <vector>

namespace {

// `start` is set for the node that a search, or a step down, begins with.
bool answersTo(IFCNode* node, TuString const& name, bool byType, bool start) {
    int const type = node->GetNodeType();
    bool const fits = type == eShapeType_DataType || (type == eShapeType_DataTypeGroup && !start);
    auto* const entry = byType && fits ? dynamic_cast<CFCDataTypeNode*>(node) : nullptr;
    wchar_t const* const key = entry != nullptr ? entry->GetType() : node->GetNodeCaption();
    return flowmere::equalNoCase(flowmere::viewOf(key), name.View());
}

} // namespace

namespace flowmere {

bool isCatalogEntry(IFCNode* node, TuString const& name, bool byType) {
    IFCNode* const parent = node->GetParentNode();
    return answersTo(node, name, byType, parent != nullptr && parent->GetChild() == node);
}

} // namespace flowmere

IFCNode* CFCNodeHelper::FindDataTypeNode(wchar_t const* name, IFCNode* node, bool byType) {
    if (node == nullptr) {
        return nullptr;
    }
    TuString const key(name);
    if (answersTo(node, key, byType, true)) {
        return node;
    }
    // What lies below an entry comes before the entry itself, but below the first entry of a chain nobody looks.
    std::vector<IFCNode*> above;
    while (true) {
        IFCNode* const next = node->GetNext();
        if (next != nullptr) {
            node = next;
            if (IFCNode* const child = node->GetChild()) {
                above.push_back(node);
                node = child;
                if (answersTo(node, key, byType, true)) {
                    return node;
                }
                continue;
            }
        } else if (!above.empty()) {
            node = above.back();
            above.pop_back();
        } else {
            return nullptr;
        }
        if (answersTo(node, key, byType, false)) {
            return node;
        }
    }
}
