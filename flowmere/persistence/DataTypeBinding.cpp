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
    if (found->GetNodeType() == 83) {
        CFCFileTypeNode::Copy(dynamic_cast<CFCFileTypeNode*>(found), m_pFileTypeNode);
        m_bFileType = true;
    } else {
        CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(found), m_pDataTypeNode);
    }
}
