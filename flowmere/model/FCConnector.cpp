#include "flowmere/model/FCConnector.h"

#include "flowmere/foundation/Immortal.h"
#include "flowmere/model/ConnectorIndex.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCPointerConverter.h"

using flowmere::ConnectorIndex;

// End of a connector

CFCConnectionNode::~CFCConnectionNode() = default;

wchar_t const* CFCConnectionNode::GetBlockName() {
    return block == nullptr ? L"" : block->GetBlockID();
}

void CFCConnectionNode::SetBlockName(wchar_t const* name) {
    if (block != nullptr) {
        block->SetBlockID(name);
    }
}

wchar_t const* CFCConnectionNode::GetBlockCaption() {
    return block == nullptr ? L"" : block->GetNodeCaption();
}

void CFCConnectionNode::SetNode(int grip, CFCBlockNode* node) {
    handle = grip;
    block = node;
}

void CFCConnectionNode::SetNode(int grip, CFCBlockNode* node, wchar_t const* port) {
    handle = grip;
    block = node;
    portName = port;
}

void CFCConnectionNode::GetConnectionNode(CFCConnectionNode& out) {
    out.handle = handle;
    out.block = block;
    out.portName = portName;
}

void CFCConnectionNode::SetConnectionNode(CFCConnectionNode const& in) {
    handle = in.handle;
    block = in.block;
    portName = in.portName;
}

// Connector

CFCConnector::CFCConnector() = default;

CFCConnector::CFCConnector(CFCConnector const& other)
    : CFCNode(other), portName(other.portName), connectorDeleted(other.connectorDeleted), reversed(other.reversed),
      connectorCaption(other.connectorCaption), selected(other.selected), connectorType(other.connectorType),
      startNodeId(other.startNodeId), endNodeId(other.endNodeId), start(other.start), end(other.end) {}

CFCConnector& CFCConnector::operator=(CFCConnector const& other) {
    if (this != &other) {
        if (index != nullptr) {
            index->clear();
        }
        CFCNode::operator=(other);
        portName = other.portName;
        connectorDeleted = other.connectorDeleted;
        reversed = other.reversed;
        connectorCaption = other.connectorCaption;
        selected = other.selected;
        connectorType = other.connectorType;
        startNodeId = other.startNodeId;
        endNodeId = other.endNodeId;
        start = other.start;
        end = other.end;
    }
    return *this;
}

CFCConnector::~CFCConnector() {
    if (index != nullptr) {
        index->connectorGoes(this);
    }
}

bool CFCConnector::IsDeleted() {
    return connectorDeleted;
}

void CFCConnector::Create() {}

void CFCConnector::SetNext(IFCNode* node) {
    if (index != nullptr) {
        index->nextChanges(this, node);
    }
    CFCNode::SetNext(node);
}

void CFCConnector::RemoveLinks() {
    if (index != nullptr) {
        index->nextChanges(this, nullptr);
    }
    CFCNode::RemoveLinks();
}

int CFCConnector::GetPointCount() {
    return 0;
}

_TgPointLStr* CFCConnector::GetPoints() {
    return nullptr;
}

_TgPointLStr* CFCConnector::GetStartPoint() {
    return nullptr;
}

_TgPointLStr* CFCConnector::GetEndPoint() {
    return nullptr;
}

_TgPointLStr* CFCConnector::GetPointAt(int) {
    return nullptr;
}

void CFCConnector::AddPoint(int, int) {}

void CFCConnector::AddPoint(_TgPointLStr*) {}

void CFCConnector::RemoveAll() {}

void CFCConnector::ResetStartAndEndPoint() {}

wchar_t const* CFCConnector::GetStartHandleName() {
    static flowmere::Immortal<TuString> name;
    *name = CFCEnumTranslator::EnumToString2(GetStartHandle());
    return *name;
}

wchar_t const* CFCConnector::GetEndHandleName() {
    static flowmere::Immortal<TuString> name;
    *name = CFCEnumTranslator::EnumToString2(GetEndHandle());
    return *name;
}

void CFCConnector::SetStartNode(int handle, CFCBlockNode* block) {
    CFCBlockNode* const old = start.GetNode();
    start.SetNode(handle, block);
    blocksChanged(old, end.GetNode());
}

void CFCConnector::SetEndNode(int handle, CFCBlockNode* block) {
    CFCBlockNode* const old = end.GetNode();
    end.SetNode(handle, block);
    blocksChanged(start.GetNode(), old);
}

void CFCConnector::SetStartNode(int handle, CFCBlockNode* block, wchar_t const* port) {
    CFCBlockNode* const old = start.GetNode();
    start.SetNode(handle, block, port);
    startNodeId = block == nullptr ? L"" : block->GetNodeId();
    blocksChanged(old, end.GetNode());
}

void CFCConnector::SetEndNode(int handle, CFCBlockNode* block, wchar_t const* port) {
    CFCBlockNode* const old = end.GetNode();
    end.SetNode(handle, block, port);
    endNodeId = block == nullptr ? L"" : block->GetNodeId();
    blocksChanged(start.GetNode(), old);
}

void CFCConnector::ReverseConnector() {
    CFCConnectionNode former;
    start.GetConnectionNode(former);
    start.SetConnectionNode(end);
    end.SetConnectionNode(former);
    blocksChanged(end.GetNode(), start.GetNode());
}

void CFCConnector::blocksChanged(CFCBlockNode* oldStart, CFCBlockNode* oldEnd) {
    if (index != nullptr) {
        index->blockChanged(ConnectorIndex::Start, this, oldStart);
    }
    if (index != nullptr) {
        index->blockChanged(ConnectorIndex::End, this, oldEnd);
    }
}

// List of connectors

CFCConnectorList::CFCConnectorList() = default;

CFCConnectorList::CFCConnectorList(CFCConnectorList const& other) : CFCNodeList(other) {}

CFCConnectorList& CFCConnectorList::operator=(CFCConnectorList const& other) {
    if (this != &other) {
        index.reset();
        CFCNodeList::operator=(other);
    }
    return *this;
}

CFCConnectorList::~CFCConnectorList() = default;

CFCConnector* CFCConnectorList::GetNext(__FCPOSITION*& position) {
    return CFCPointerConverter::GetConnector(GetNextNode(position));
}
