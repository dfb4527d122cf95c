#include "flowmere/model/FCPointerConverter.h"

#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"

CFCBlockNode* CFCPointerConverter::GetBlockNode(IFCNode* node) {
    return dynamic_cast<CFCBlockNode*>(node);
}

CFCProcessNode* CFCPointerConverter::GetProcessNode(IFCNode* node) {
    return dynamic_cast<CFCProcessNode*>(node);
}

CFCBPMProcessNode* CFCPointerConverter::GetBPMProcessNode(IFCNode* node) {
    return dynamic_cast<CFCBPMProcessNode*>(node);
}

CFCConnector* CFCPointerConverter::GetConnector(IFCNode* node) {
    return dynamic_cast<CFCConnector*>(node);
}

IFCNode* CFCPointerConverter::GetNode(CFCVariableData* variable) {
    return variable;
}

IFCNode* CFCPointerConverter::GetNodeFromBlockData(CFCBlockData* data) {
    return dynamic_cast<CFCBlockNode*>(data);
}
