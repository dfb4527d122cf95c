#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/model/FCCatalogNodes.h"

#include <string_view>
#include <typeinfo>
#include <vector>

namespace {

// Nearly all entries are of the very class, and a comparison of types is much cheaper than the cast.
CFCDataTypeNode* dataTypeOf(IFCNode* node) {
    return typeid(*node) == typeid(CFCDataTypeNode) ? static_cast<CFCDataTypeNode*>(node)
                                                    : dynamic_cast<CFCDataTypeNode*>(node);
}

// `start` is set for the node that a search, or a step down, begins with. Every variable of a document comes by here
// for a good part of the catalog.
bool answersTo(IFCNode* node, TuString const& name, bool byType, bool start) {
    CFCDataTypeNode* entry = nullptr;
    if (byType) {
        int const type = node->GetNodeType();
        bool const fits = type == eShapeType_DataType || (type == eShapeType_DataTypeGroup && !start);
        entry = fits ? dataTypeOf(node) : nullptr;
    }
    std::wstring_view const key = flowmere::viewOf(entry != nullptr ? entry->GetType() : node->GetNodeCaption());
    // Folding keeps the length.
    return key.size() == name.View().size() && flowmere::equalNoCase(key, name.View());
}

} // namespace

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
