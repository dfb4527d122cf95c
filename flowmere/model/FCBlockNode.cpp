#include "flowmere/model/FCBlockNode.h"

#include "flowmere/model/BlockWatch.h"
#include "flowmere/model/ChildIndex.h"
#include "flowmere/model/ConnectorIndex.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"

#include <cstdint>
#include <string_view>

namespace {

constexpr std::wstring_view kTemplatePrefix = L"Template.";

// Where the first connector leads that leaves a block's grip inside its container; null when there is none.
CFCBlockNode* nextInside(CFCConnectorList& list, CFCBlockNode* block, int handle) {
    CFCConnector* const way =
        flowmere::findConnector(list, flowmere::ConnectorIndex::Start, block, [handle](CFCConnector* connector) {
            return connector->IsValid() && connector->GetStartHandle() == handle;
        });
    return way == nullptr ? nullptr : way->GetEndObject();
}

} // namespace

CFCBlockNode::CFCBlockNode() = default;

CFCBlockNode::CFCBlockNode(int kind) {
    blockKind = kind;
}

CFCBlockNode::CFCBlockNode(CFCBlockNode const& other) = default;

CFCBlockNode& CFCBlockNode::operator=(CFCBlockNode const& other) {
    if (this != &other) {
        flowmere::childIdentityChanges(static_cast<CFCNode&>(*this));
        CFCNode::operator=(other);
        CFCBlockData::operator=(other);
        previouslyExecutedBlock = other.previouslyExecutedBlock;
        outConnector = other.outConnector;
        inConnector = other.inConnector;
    }
    return *this;
}

CFCBlockNode::~CFCBlockNode() {
    flowmere::blockGoes(this);
}

// Node operations

wchar_t const* CFCBlockNode::GetNodeId() {
    return GetBlockID();
}

void CFCBlockNode::SetNodeId(wchar_t const* id) {
    SetBlockID(id);
}

wchar_t const* CFCBlockNode::GetOldNodeId() {
    return GetOldBlockID();
}

void CFCBlockNode::SetOldNodeId(wchar_t const* id) {
    SetOldBlockID(id);
}

CFCBlockData* CFCBlockNode::GetFCBlockData() {
    return this;
}

CFCVariableList* CFCBlockNode::GetVariableList() {
    return CFCBlockData::GetVariableList();
}

CFCConnectorList* CFCBlockNode::GetConnectorList() {
    return CFCBlockData::GetConnectorList();
}

CFCVariableData* CFCBlockNode::CreateNewVariable() {
    return CFCBlockData::CreateNewVariable();
}

void CFCBlockNode::AddConnector(CFCConnector* connector) {
    CFCBlockData::AddConnector(connector);
}

TuRect* CFCBlockNode::GetTuRect() {
    return CFCBlockData::GetTuRect();
}

void CFCBlockNode::SetTuRect(int left, int top, int right, int bottom) {
    CFCBlockData::SetTuRect(left, top, right, bottom);
}

void CFCBlockNode::SetTuRectInInchReverse(double x, double y, double width, double height) {
    CFCBlockData::SetTuRectInInchReverse(x, y, width, height);
}

void CFCBlockNode::SetTuRectInInch(double x, double y, double width, double height) {
    CFCBlockData::SetTuRectInInch(x, y, width, height);
}

void CFCBlockNode::SetTuRectInInchFlowmere(double x, double y, double width, double height) {
    CFCBlockData::SetTuRectInInchFlowmere(x, y, width, height);
}

bool CFCBlockNode::IsMacroNode() {
    return IsMacroBlock();
}

void CFCBlockNode::Create() {}

// These two go down by virtual calls. The walk of the base is written out, so that a level of a deep tree takes one
// frame and not two.
void CFCBlockNode::ResolveVariables() {
    CFCBlockData::ResolveVariables();
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        child->ResolveVariables();
    }
}

void CFCBlockNode::UnMark() {
    SetMark(false);
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        child->UnMark();
    }
    UnMarkVariables();
}

// Flow

CFCBlockNode* CFCBlockNode::GetNextConnectedBlock() {
    IFCNode* const container = GetParentNode();
    CFCConnectorList* const list = container == nullptr ? nullptr : container->GetConnectorList();
    if (list == nullptr) {
        return nullptr;
    }
    if (CFCBlockNode* const next = nextInside(*list, this, GetActiveHandle())) {
        return next;
    }
    // The last block of its container: the flow goes on from the container itself.
    IFCNode* const outer = container->GetParentNode();
    CFCConnectorList* const outerList = outer == nullptr ? nullptr : outer->GetConnectorList();
    CFCBlockNode* const left = CFCPointerConverter::GetBlockNode(container);
    if (outerList == nullptr || left == nullptr) {
        return nullptr;
    }
    return nextInside(*outerList, left, left->GetActiveHandle());
}

CFCBlockNode* CFCBlockNode::GetFirstConnectedBlock() {
    return nullptr;
}

CFCBlockNode* CFCBlockNode::GetNextConnectedBlockSimple() {
    IFCNode* const container = GetParentNode();
    CFCConnectorList* const list = container == nullptr ? nullptr : container->GetConnectorList();
    if (list == nullptr) {
        return nullptr;
    }
    if (CFCBlockNode* const next = nextInside(*list, this, GetActiveHandle())) {
        return next;
    }
    return CFCPointerConverter::GetBlockNode(GetNext());
}

// Debugging

bool CFCBlockNode::PrepareDebug(wchar_t const*) {
    return false;
}

_object* CFCBlockNode::GetDebuggerObject() {
    return nullptr;
}

void CFCBlockNode::FinishDebug() {}

_object* CFCBlockNode::PrepareAndGetDebuggerObject(wchar_t const*) {
    return nullptr;
}

// Look-up

CFCBlockNode* CFCBlockNode::FindChildBlock(wchar_t const* id) {
    return CFCPointerConverter::GetBlockNode(flowmere::findChild(*this, id, flowmere::ChildLookup::ExactId));
}

CFCVariableData* CFCBlockNode::FindLocalVariable(wchar_t const* name) {
    if (name == nullptr || *name == L'\0') {
        return nullptr;
    }
    CFCVariableList* const list = GetVariableList();
    return list == nullptr ? nullptr : list->FindByExactName(name);
}

CFCVariableData* CFCBlockNode::FindVariable(wchar_t const* path) {
    TuString const whole(path);
    wchar_t const* rest = whole;
    CFCBlockNode* block = this;
    while (block != nullptr) {
        std::wstring_view const text(rest);
        std::size_t const dot = text.find(L'.');
        if (dot == std::wstring_view::npos) {
            return block->FindLocalVariable(rest);
        }
        wchar_t const* const behind = rest + dot + 1;
        if (dot == 0 || text.starts_with(kTemplatePrefix)) {
            return block->FindLocalVariable(behind);
        }
        TuString const head(text.substr(0, dot));
        bool const lastDot = text.find(L'.', dot + 1) == std::wstring_view::npos;
        if (lastDot && head == block->GetNodeCaption()) {
            return block->FindLocalVariable(rest);
        }
        block = block->FindChildBlock(head);
        rest = behind;
    }
    return nullptr;
}

void CFCBlockNode::RemoveConnectors() {
    IFCNode* const container = GetParentNode();
    CFCConnectorList* const list = container == nullptr ? nullptr : container->GetConnectorList();
    if (list == nullptr) {
        return;
    }
    for (auto const side : {flowmere::ConnectorIndex::Start, flowmere::ConnectorIndex::End}) {
        for (CFCConnector* const connector : flowmere::connectorsAt(*list, side, this)) {
            if (connector->IsValid()) {
                connector->SetStartNode(0, nullptr);
                connector->SetEndNode(0, nullptr);
                connector->DeleteConnecter(true);
            }
        }
    }
}

// Grips

int CFCBlockNode::HitTestConnector(_TgPointLStr& point) {
    for (std::int64_t radius = 5; radius <= 25; radius += 5) {
        for (int handle = EPortHandle_TopLeft; handle <= EPortHandle_LeftMiddle; ++handle) {
            _TgPointLStr grip;
            getHandlePoint(handle, grip);
            if (point.x >= grip.x - radius && point.x < grip.x + radius && point.y >= grip.y - radius &&
                point.y < grip.y + radius) {
                return handle;
            }
        }
    }
    return -1;
}

bool CFCBlockNode::getHandlePoint(int handle, _TgPointLStr& point) {
    int const midX = static_cast<int>((static_cast<std::int64_t>(rect.left) + rect.right) / 2);
    int const midY = static_cast<int>((static_cast<std::int64_t>(rect.top) + rect.bottom) / 2);
    switch (handle) {
    case EPortHandle_TopLeft:
        point = {rect.left, rect.top};
        return true;
    case EPortHandle_TopMiddle:
        point = {midX, rect.top};
        return true;
    case EPortHandle_TopRight:
        point = {rect.right, rect.top};
        return true;
    case EPortHandle_RightMiddle:
        point = {rect.right, midY};
        return true;
    case EPortHandle_BottomRight:
        point = {rect.right, rect.bottom};
        return true;
    case EPortHandle_BottomMiddle:
        point = {midX, rect.bottom};
        return true;
    case EPortHandle_BottomLeft:
        point = {rect.left, rect.bottom};
        return true;
    case EPortHandle_LeftMiddle:
        point = {rect.left, midY};
        return true;
    default:
        return false;
    }
}
