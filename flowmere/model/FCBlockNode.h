#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCNode.h"

class CFCConnector;
class CFCConnectorList;
class CFCVariableData;
class CFCVariableList;
struct _object;

// The concrete step of a flow: a node with the content of a block. It finds the next block along the connectors of its
// container, runs its script through the bridge to the interpreter, and knows its eight grips.
//
// Through the block and its data GetFolderPath is the block's folder; through the node interface it stays empty.
class FLOWMERE_API CFCBlockNode : public CFCNode, public CFCBlockData {
public:
    CFCBlockNode();
    // Keeps the number as the shape's block kind.
    explicit CFCBlockNode(int kind);
    // Copies are shallow: same handle, same links, same lists.
    CFCBlockNode(CFCBlockNode const& other);
    CFCBlockNode& operator=(CFCBlockNode const& other);
    ~CFCBlockNode() override;

    using CFCBlockData::GetFolderPath;
    using CFCBlockData::SetFolderPath;
    using CFCNode::Save;

    // The node's identifiers are those of the block data.
    wchar_t const* GetNodeId() override;
    void SetNodeId(wchar_t const* id) override;
    wchar_t const* GetOldNodeId() override;
    void SetOldNodeId(wchar_t const* id) override;
    CFCBlockData* GetFCBlockData() override;
    CFCVariableList* GetVariableList() override;
    CFCConnectorList* GetConnectorList() override;
    CFCVariableData* CreateNewVariable() override;
    void AddConnector(CFCConnector* connector) override;
    TuRect* GetTuRect() override;
    void SetTuRect(int left, int top, int right, int bottom) override;
    void SetTuRectInInchReverse(double x, double y, double width, double height) override;
    void SetTuRectInInch(double x, double y, double width, double height) override;
    void SetTuRectInInchFlowmere(double x, double y, double width, double height) override;
    bool IsMacroNode() override;
    // Does nothing.
    void Create() override;
    // Binds the links of the block's variables, then those of all below.
    void ResolveVariables() override;
    // Clears the marks of the block, of all below and of the variables.
    void UnMark() override;

    // The block the flow goes to: the end of the first connector that leaves this block's active handle. A block
    // without one is the last of its container, and the flow leaves that along the container's own active handle, one
    // level up and no further. Null at the end of the flow.
    virtual CFCBlockNode* GetNextConnectedBlock();
    // The block where the inner flow starts; null, as a plain block has none.
    virtual CFCBlockNode* GetFirstConnectedBlock();
    // As GetNextConnectedBlock, but with the next sibling, when that is a block, in place of the way up.
    virtual CFCBlockNode* GetNextConnectedBlockSimple();

    // For a host whose blocks run under a Python debugger; here there is none. `method` is the method about to run.
    virtual bool PrepareDebug(wchar_t const* method);
    virtual _object* GetDebuggerObject();
    virtual void FinishDebug();
    virtual _object* PrepareAndGetDebuggerObject(wchar_t const* method);

    // Asks the script whether it agrees to a method; 1 for yes, which is what it always comes to.
    // Defined in execution/BlockExecution.cpp, as is ExecuteBlockMethod.
    int CheckBlockExecuteMethod(char const* method);
    // Runs a method of the block's script class and keeps the executing and executed flags. 0, with the executing flag
    // still set, for a Python block without a script name; otherwise 1, whatever the script did.
    int ExecuteBlockMethod(char const* method);

    // The first child of exactly this identifier; null when there is none, or when that child is no block.
    CFCBlockNode* FindChildBlock(wchar_t const* id);
    // The block's own variable of exactly this name; null for an empty name.
    CFCVariableData* FindLocalVariable(wchar_t const* name);
    // The variable behind a dotted path relative to this block; null when there is none. A path with a leading "." or
    // "Template." names an own variable; otherwise the identifiers of children lead down to the name.
    CFCVariableData* FindVariable(wchar_t const* path);

    // Takes this block out of its container's flow: its connectors lose both ends and are marked as deleted. They stay
    // in the list.
    void RemoveConnectors();

    // The grip (1 to 8) near a point, the nearest ring of five around the grips first; -1 when there is none.
    int HitTestConnector(_TgPointLStr& point);
    // The point of a grip; false, with the point left alone, for a number outside 1 to 8.
    bool getHandlePoint(int handle, _TgPointLStr& point);

    // The block from which the flow came, not owned; the way back for undo.
    CFCBlockNode* getPreviouslyExecutedBlock() { return previouslyExecutedBlock; }
    void setPreviouslyExecutedBlock(CFCBlockNode* block) { previouslyExecutedBlock = block; }

private:
    friend class CFCSubProcessNode;

    CFCBlockNode* previouslyExecutedBlock = nullptr;
    // Scratch of the search for a start block: a connector that starts, and one that ends here. Only tested against
    // null; what an earlier search wrote stays, even when that connector is gone.
    CFCConnector* outConnector = nullptr;
    CFCConnector* inConnector = nullptr;
};
