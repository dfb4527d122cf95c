#pragma once

#include "flowmere/Export.h"

class IFCNode;
class CFCBlockData;
class CFCBlockNode;
class CFCBPMProcessNode;
class CFCConnector;
class CFCProcessNode;
class CFCVariableData;

// The checked conversions between the pointer types of the model. Each maps null to null, and an
// object of another class to null. Ownership never changes.
class FLOWMERE_API CFCPointerConverter {
public:
    static CFCBlockNode* GetBlockNode(IFCNode* node);
    static CFCProcessNode* GetProcessNode(IFCNode* node);
    static CFCBPMProcessNode* GetBPMProcessNode(IFCNode* node);
    static CFCConnector* GetConnector(IFCNode* node);
    // The variable as a node.
    static IFCNode* GetNode(CFCVariableData* variable);
    // The block node that holds this data part; null where the data stands alone.
    static IFCNode* GetNodeFromBlockData(CFCBlockData* data);
};
