#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/CatalogSearch.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/foundation/TuFileUtl.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/FCDataTypeListReader.h"

#include <string>
#include <unordered_map>

// The catalog file is known here and nowhere below, so the operations that read it are defined beside its reader.

CFCDataTypeNode* CFCNodeHelper::m_pRootNode = nullptr;

namespace {

// Entries that were found once, by type name. Each variable of a document asks, and most ask for the same few types.
using FoundEntries = std::unordered_map<std::wstring, IFCNode*, flowmere::FoldedHash, flowmere::FoldedEqual>;

flowmere::Immortal<FoundEntries> foundEntries;

// First entry of the catalog file; null while there is nothing to read. The list node stays as its parent.
CFCDataTypeNode* readCatalog() {
    TuString const path(CFCEnvironment::GetDataTypeFilePath());
    if (!TuFileUtl::IsFileName(path)) {
        return nullptr;
    }
    CFCNodeFactory factory;
    IFCNode* const list = factory.Create(eShapeType_DataTypeGroup);
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    reader.Parse(path, dynamic_cast<CFCDataTypeNode*>(list));
    auto* const first = list != nullptr ? dynamic_cast<CFCDataTypeNode*>(list->GetChild()) : nullptr;
    if (first == nullptr) {
        CFCNodeHelper::DestroyTree(list);
    }
    return first;
}

} // namespace

IFCNode* CFCNodeHelper::GetDataTypeNode(wchar_t const* name) {
    TuString const key(name);
    if (m_pRootNode == nullptr) {
        m_pRootNode = readCatalog();
        if (m_pRootNode == nullptr) {
            return nullptr;
        }
    }
    auto const known = foundEntries->find(key.View());
    if (known != foundEntries->end() && flowmere::isCatalogEntry(known->second, key, true)) {
        return known->second;
    }
    IFCNode* const found = FindDataTypeNode(key, m_pRootNode, true);
    if (found != nullptr) {
        foundEntries->insert_or_assign(std::wstring(key.View()), found);
    }
    return found;
}

void CFCNodeHelper::SetDataTypeNode(CFCVariableData* variable, wchar_t const* typeName) {
    CFCDataTypeNode* const description = variable != nullptr ? variable->GetDataTypeNode() : nullptr;
    if (description == nullptr) {
        return;
    }
    TuString const type(typeName);
    TuString caption(type);
    IFCNode* const found = GetDataTypeNode(type);
    if (found != nullptr && found->GetNodeType() == eShapeType_FileType) {
        variable->SetFileType(true);
        CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(found->GetParentNode()), description);
        CFCFileTypeNode::Copy(dynamic_cast<CFCFileTypeNode*>(found), variable->GetFileTypeNode());
        description->SetNodeType(eShapeType_FileType);
    } else if (found != nullptr) {
        CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(found), description);
        caption = found->GetNodeCaption();
    }

    constexpr wchar_t const* kArray = L"Array";
    constexpr int kArrayLength = 5;
    if (caption.Right(kArrayLength).CompareNoCase(kArray) == 0) {
        caption = caption.Left(caption.GetLength() - kArrayLength);
        caption.TrimLeft();
        caption.TrimRight();
    }
    description->SetType(type);
    description->SetNodeCaption(caption);
}
