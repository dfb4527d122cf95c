// The operations of CFCVariableData that read the catalog of data types.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/FCDataTypeListReader.h"

void CFCVariableData::UpdateToDataTypes(wchar_t const* typeName) {
    TuString const caption(typeName);
    IFCNode* const found =
        CFCNodeHelper::FindDataTypeNode(caption, CFCDataTypeListReader::GetDataTypeRootNode(), false);
    if (found == nullptr) {
        return;
    }
    // A host may have hung nodes of other classes into the catalog: they bind nothing.
    if (found->GetNodeType() != 83) {
        CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(found), m_pDataTypeNode);
    } else if (auto* const fileType = dynamic_cast<CFCFileTypeNode*>(found)) {
        CFCFileTypeNode::Copy(fileType, m_pFileTypeNode);
        m_bFileType = true;
    }
}
