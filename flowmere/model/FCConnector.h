#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeList.h"

#include <memory>

class CFCBlockNode;

namespace flowmere {
class ConnectorIndex;
}

// One end of a connector: a block, the grip on its rectangle and a port name. Does not own the block.
// Texts that getters give are valid until the text changes; null texts are stored as empty ones.
class FLOWMERE_API CFCConnectionNode {
public:
    CFCConnectionNode() = default;
    CFCConnectionNode(CFCConnectionNode const& other) = default;
    CFCConnectionNode& operator=(CFCConnectionNode const& other) = default;
    virtual ~CFCConnectionNode();

    // The block's identifier; the empty text without a block.
    wchar_t const* GetBlockName();
    // Renames the block itself, for everybody who refers to it. Without a block nothing happens.
    void SetBlockName(wchar_t const* name);
    // The block's caption; the empty text without a block.
    wchar_t const* GetBlockCaption();

    // The grip, an EPortHandle; 9 until one is set.
    int GetHandle() { return handle; }
    void SetHandle(int grip) { handle = grip; }
    wchar_t const* GetPortName() { return portName; }
    void SetPortName(wchar_t const* name) { portName = name; }

    // The block at this end, or null.
    CFCBlockNode* GetNode() { return block; }
    // Stores grip and block; the second form stores the port name too.
    void SetNode(int grip, CFCBlockNode* node);
    void SetNode(int grip, CFCBlockNode* node, wchar_t const* port);

    // True when there is a block at this end.
    bool IsValid() { return block != nullptr; }

    // Copy grip, block and port name out of this end, or into it.
    void GetConnectionNode(CFCConnectionNode& out);
    void SetConnectionNode(CFCConnectionNode const& in);

private:
    TuString portName;
    TuString spareName; // copied with the object, no other use
    int handle = 9;
    CFCBlockNode* block = nullptr;
};

// The line that carries the flow from one block to another. It lies in the connector list of the container of its two
// blocks and belongs to whoever holds that list; it does not own the blocks. A copy points at the same blocks and
// stands in no list, though it carries the chain links of its source.
class FLOWMERE_API CFCConnector : public CFCNode {
public:
    CFCConnector();
    CFCConnector(CFCConnector const& other);
    CFCConnector& operator=(CFCConnector const& other);
    ~CFCConnector() override;

    // The connector's own soft deletion; the flag that SetDeleted stores plays no part.
    bool IsDeleted() override;
    // Does nothing.
    void Create() override;
    void SetNext(IFCNode* node) override;
    void RemoveLinks() override;

    // The route on the drawing, for the host's drawing class: all empty here. Points are in hundredths of an inch; what
    // is given stays the connector's.
    virtual int GetPointCount();
    virtual _TgPointLStr* GetPoints();
    virtual _TgPointLStr* GetStartPoint();
    virtual _TgPointLStr* GetEndPoint();
    virtual _TgPointLStr* GetPointAt(int index);
    virtual void AddPoint(int x, int y);
    virtual void AddPoint(_TgPointLStr* point);
    virtual void RemoveAll();
    virtual void ResetStartAndEndPoint();

    wchar_t const* GetPortName() { return portName; }
    void SetPortName(wchar_t const* name) { portName = name; }
    // Marks the connector as deleted, or takes the mark away; it stays where it is.
    void DeleteConnecter(bool deleted) { connectorDeleted = deleted; }
    bool GetReversed() { return reversed; }
    void SetReversed(bool value) { reversed = value; }
    // The text at the line, another one than the node's caption.
    wchar_t const* GetCaption() { return connectorCaption; }
    void SetCaption(wchar_t const* text) { connectorCaption = text; }
    bool IsSelected() { return selected; }
    void SetSelected(bool value) { selected = value; }
    EConnectorType GetConnectorType() { return connectorType; }
    void SetConnectorType(EConnectorType type) { connectorType = type; }
    // True for connector type 1.
    bool IsBPMConnector() { return static_cast<int>(connectorType) == 1; }

    // Identifiers of the end blocks as they were when the ends were set with a port name. Nothing keeps them in step.
    wchar_t const* GetStartNodeId() { return startNodeId; }
    void SetStartNodeId(wchar_t const* id) { startNodeId = id; }
    wchar_t const* GetEndNodeId() { return endNodeId; }
    void SetEndNodeId(wchar_t const* id) { endNodeId = id; }

    // The end blocks, or null.
    CFCBlockNode* GetStartObject() { return start.GetNode(); }
    CFCBlockNode* GetEndObject() { return end.GetNode(); }
    // Identifiers of the end blocks; setting one renames the block itself.
    wchar_t const* GetStartBlockName() { return start.GetBlockName(); }
    void SetStartBlockName(wchar_t const* name) { start.SetBlockName(name); }
    wchar_t const* GetEndBlockName() { return end.GetBlockName(); }
    void SetEndBlockName(wchar_t const* name) { end.SetBlockName(name); }
    wchar_t const* GetStartBlockCaption() { return start.GetBlockCaption(); }
    wchar_t const* GetEndBlockCaption() { return end.GetBlockCaption(); }
    // The grips, EPortHandle values; 9 until set.
    int GetStartHandle() { return start.GetHandle(); }
    void SetStartHandle(int handle) { start.SetHandle(handle); }
    int GetEndHandle() { return end.GetHandle(); }
    void SetEndHandle(int handle) { end.SetHandle(handle); }
    wchar_t const* GetStartPortName() { return start.GetPortName(); }
    void SetStarPortName(wchar_t const* name) { start.SetPortName(name); }
    wchar_t const* GetEndPortName() { return end.GetPortName(); }
    void SetEndPortName(wchar_t const* name) { end.SetPortName(name); }
    // Names of the grips, in a static text of each function; "Top" for a grip that is not set.
    wchar_t const* GetStartHandleName();
    wchar_t const* GetEndHandleName();

    // Store grip and block of an end; the stored identifier stays.
    void SetStartNode(int handle, CFCBlockNode* block);
    void SetEndNode(int handle, CFCBlockNode* block);
    // Store grip, block and port name of an end, and the block's identifier (the empty text for no block).
    void SetStartNode(int handle, CFCBlockNode* block, wchar_t const* port);
    void SetEndNode(int handle, CFCBlockNode* block, wchar_t const* port);

    // True when both ends have a block.
    bool IsValid() { return start.IsValid() && end.IsValid(); }
    // Swaps grip, block and port name of the two ends. The stored identifiers and the reversed flag stay.
    void ReverseConnector();

private:
    friend class flowmere::ConnectorIndex;

    void blocksChanged(CFCBlockNode* oldStart, CFCBlockNode* oldEnd);

    TuString portName;
    bool connectorDeleted = false;
    bool reversed = false;
    TuString connectorCaption;
    bool selected = false;
    EConnectorType connectorType = static_cast<EConnectorType>(0);
    TuString startNodeId;
    TuString endNodeId;
    CFCConnectionNode start;
    CFCConnectionNode end;

    // The look-up index of the list this connector is entered in, and its place there.
    flowmere::ConnectorIndex* index = nullptr;
    int indexSlot = 0;
};

// The connectors of one container, chained through their own links.
class FLOWMERE_API CFCConnectorList : public CFCNodeList {
public:
    CFCConnectorList();
    // A copy shares the elements with its source.
    CFCConnectorList(CFCConnectorList const& other);
    CFCConnectorList& operator=(CFCConnectorList const& other);
    ~CFCConnectorList() override;

    using CFCNodeList::GetNext;
    // The connector at the position, which moves on to the next element; null for an element that is no connector.
    CFCConnector* GetNext(__FCPOSITION*& position);

private:
    friend class flowmere::ConnectorIndex;

    std::unique_ptr<flowmere::ConnectorIndex> index; // made when look-ups meet a long list
};
