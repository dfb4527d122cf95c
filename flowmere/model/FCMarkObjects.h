#pragma once

#include "flowmere/Export.h"

class CFCVariableData;
class IFCNode;

// Finds the users of one variable and marks each of them and all nodes above it.
class FLOWMERE_API CFCMarkObjects {
public:
    CFCMarkObjects();
    virtual ~CFCMarkObjects();
    CFCMarkObjects(CFCMarkObjects const&) = default;
    CFCMarkObjects& operator=(CFCMarkObjects const&) = default;

    // Unmarks the tree below `root`, then marks the users of `variable` in it. Neither is owned;
    // both are kept. Always false.
    bool Mark(IFCNode* root, CFCVariableData* variable);
    // Marks every user of the variable of the last Mark in the tree below `node`, resolving the
    // links of all variables on the way. A user is linked to the variable, in either direction, or
    // shares its target, by the direct or by the final link. Nothing for null.
    void LookAndMark(IFCNode* node);
    // Marks the node and all its ancestors. Nothing for null.
    void MarkUpToRoot(IFCNode* node);

private:
    bool Compare(CFCVariableData* variable);

    IFCNode* m_pRoot = nullptr;
    CFCVariableData* m_pVariable = nullptr;
};
