#include "flowmere/workflow/FCGPDWriter.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/persistence/ShapeElements.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

using flowmere::viewOf;
using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

constexpr wchar_t const* kRoot = L"root-container";
constexpr wchar_t const* kNode = L"node";
constexpr wchar_t const* kContainer = L"node-container";

// Kinds that have an element in the drawing.
struct KindRow {
    int kind;
    wchar_t const* element;
};
constexpr KindRow kKinds[] = {
    {0, L"UnKnown"},
    {eShapeType_Process, kRoot},
    {eShapeType_Task, kNode},
    {eShapeType_DecisionTask, kNode},
    {eShapeType_StartState, kNode},
    {eShapeType_EndState, kNode},
    {eShapeType_Fork, kNode},
    {eShapeType_Join, kNode},
    {eShapeType_WorkflowProcess, kRoot},
    {eShapeType_SuperState, kContainer},
    {eShapeType_SubProcessLoop, kNode},
    {eShapeType_DecisionLoop, kNode},
    {eShapeType_SpawningLoop, kNode},
    {eShapeType_BasicSubProcess, kNode},
    {eShapeType_Application, kNode},
};

// Nodes deeper than this are left out, so that the file can be read again: up to two levels stand below a node.
constexpr int kMaxNodeDepth = flowmere::kMaxElementDepth - 2;

constexpr int kVariableBoxWidth = 20;

bool isProcess(int kind) {
    return kind == eShapeType_Process || kind == eShapeType_WorkflowProcess;
}

bool hasChildrenInDrawing(int kind) {
    return kind == eShapeType_Process || (kind >= eShapeType_WorkflowProcess && kind <= eShapeType_BasicSubProcess);
}

struct Box {
    std::int64_t left;
    std::int64_t top;
    std::int64_t width;
    std::int64_t height;
};

Box boxOf(IFCNode* node) {
    TuRect const* const rect = node->GetTuRect();
    if (rect == nullptr)
        return {};
    std::int64_t const left = rect->left;
    std::int64_t const top = rect->top;
    return {left, top, rect->right - left, rect->bottom - top};
}

void writeBox(DOMNode* element, Box const& box) {
    flowmere::setInteger(element, u"x", box.left);
    flowmere::setInteger(element, u"y", box.top);
    flowmere::setInteger(element, u"width", box.width);
    flowmere::setInteger(element, u"height", box.height);
}

void writeEdge(DOMNode* parent) {
    DOMElement* const label = flowmere::appendElement(flowmere::appendElement(parent, u"edge"), u"label");
    flowmere::setConstant(label, u"x", u"0");
    flowmere::setConstant(label, u"y", u"0");
}

// The three boxes below a block that show how far its task is. The numbers are what the editor draws with.
void writeStatus(DOMNode* parent, Box const& block) {
    struct State {
        flowmere::XmlName type;
        double place; // along the widened block
        bool isAbsolute;
    };
    static constexpr State kStates[] = {
        {u"Wait", 0.325, true},
        {u"Ready", 0.45, false},
        {u"Done", 0.575, false},
    };
    DOMElement* const status = flowmere::appendElement(parent, u"Status");
    double const width = static_cast<double>(block.width + 40);
    double const start = static_cast<double>(block.left - 20);
    double const y = static_cast<double>(block.top) + static_cast<double>(block.height) * 0.8;
    auto const size = static_cast<std::int64_t>(std::fabs(width * 0.1));
    for (State const& state : kStates) {
        double const x = start + width * state.place;
        DOMElement* const element = flowmere::appendElement(status, u"State");
        writeBox(element, {static_cast<std::int64_t>(state.isAbsolute ? std::fabs(x) : x),
                           static_cast<std::int64_t>(state.isAbsolute ? std::fabs(y) : y), size, size});
        flowmere::setConstant(element, u"type", state.type);
    }
}

// One side of a block: the variables that go in stand at its left edge, those that come out at its right.
struct Side {
    flowmere::XmlName type;
    int other; // status of variables that belong to the other side alone
    std::int64_t left;
    std::int64_t count; // among which the height is shared out
};

void writeSide(DOMNode* parent, std::vector<CFCVariableData*> const& variables, Box const& block, Side const& side) {
    // A status beyond the known ones has a box on either side and is counted on none.
    std::int64_t const height = side.count != 0 ? block.height / side.count : 0;
    std::int64_t top = block.top;
    for (CFCVariableData* const variable : variables) {
        if (variable->GetStatusType() == side.other)
            continue;
        DOMElement* const element = flowmere::appendElement(parent, u"VARIABLE");
        writeBox(element, {side.left, top, kVariableBoxWidth, height});
        flowmere::setConstant(element, u"type", side.type);
        flowmere::setText(element, u"Lable", viewOf(variable->GetVariableName()));
        top += height;
    }
}

void writeVariables(DOMNode* parent, CFCVariableList* list, Box const& block) {
    std::vector<CFCVariableData*> drawn;
    std::int64_t inputs = 0;
    std::int64_t outputs = 0;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCVariableData* const variable = list->GetNext(position);
        if (variable == nullptr || !variable->IsVisible() || viewOf(variable->GetVariableName()).empty())
            continue;
        drawn.push_back(variable);
        EStatusType const status = variable->GetStatusType();
        inputs += status == EStatusType_Input || status == EStatusType_InAndOutput ? 1 : 0;
        outputs += status == EStatusType_Output || status == EStatusType_InAndOutput ? 1 : 0;
    }
    if (inputs == 0 && outputs == 0)
        return;
    DOMElement* const element = flowmere::appendElement(parent, u"VARIABLES");
    writeSide(element, drawn, block, {u"Input", EStatusType_Output, block.left, inputs});
    writeSide(element, drawn, block,
              {u"Output", EStatusType_Input, block.left + block.width - kVariableBoxWidth, outputs});
}

} // namespace

CFCGPDWriter::CFCGPDWriter() : m_strRootName(kRoot) {}
CFCGPDWriter::CFCGPDWriter(CFCGPDWriter const& other) = default;
CFCGPDWriter& CFCGPDWriter::operator=(CFCGPDWriter const& other) = default;
CFCGPDWriter::~CFCGPDWriter() = default;

bool CFCGPDWriter::WriteFile(wchar_t const* path, IFCNode* node, bool recursive) {
    m_bRecursive = recursive;
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || node == nullptr)
        return false;
    m_pRootNode = node;
    m_nDepth = 0;
    return flowmere::writeWorkflowFile(m_strFilePath, m_strRootName,
                                       [&](DOMElement& root) { WriteObject(node, nullptr, &root); });
}

void CFCGPDWriter::LoadAndFormatXML(wchar_t const* path) {
    flowmere::formatWorkflowFile(path);
}

bool CFCGPDWriter::GetObjectType(IFCNode* node, TuString& name) {
    if (node == nullptr)
        return false;
    int const kind = node->GetNodeType();
    for (KindRow const& row : kKinds) {
        if (row.kind == kind) {
            name = row.element;
            return true;
        }
    }
    return false;
}

void CFCGPDWriter::GetNodeTypeString(IFCNode* node, TuString& name) {
    name = node != nullptr ? flowmere::workflowNodeTypeName(node->GetNodeType()) : L"";
}

void CFCGPDWriter::WriteObject(IFCNode* node, DOMNode* parent, DOMNode* own) {
    flowmere::WriteDepth const depth(m_nDepth);
    TuString name;
    if (m_nDepth > kMaxNodeDepth || !GetObjectType(node, name))
        return;
    DOMNode* const element = own == nullptr && parent != nullptr ? CreateElement(parent, name) : own;
    if (element == nullptr)
        return;
    WriteProperties(node, element);
    if (hasChildrenInDrawing(node->GetNodeType()))
        WriteChildren(node, element);
}

void CFCGPDWriter::WriteChildren(IFCNode* node, DOMNode* element) {
    if (node == nullptr || (flowmere::isSubProcessKind(node->GetNodeType()) && node != m_pRootNode))
        return;
    flowmere::visitChildrenFromLast(node, [&](IFCNode* child) { WriteObject(child, element, nullptr); });
}

void CFCGPDWriter::WriteProperties(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    if (node == m_pRootNode || isProcess(node->GetNodeType())) {
        WritePropertiesRoot(node, element);
        return;
    }
    node->TransferToData();
    flowmere::setText(element, u"name", viewOf(node->GetNodeId()));
    if (viewOf(node->GetNodeId()).empty())
        return;
    CFCBlockData* const block = node->GetFCBlockData();
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    Box const box = boxOf(node);
    flowmere::setText(element, u"Icon", viewOf(task != nullptr ? task->GetIconFilePath() : nullptr));
    flowmere::setText(element, u"label", viewOf(task != nullptr ? task->GetTaskCaption() : nullptr));
    writeBox(element, box);
    if (block != nullptr) {
        TuString image(block->GetRelativeImagePath());
        image.Replace(L'\\', L'/');
        flowmere::setFlag(element, u"IsImage", block->HasImage());
        flowmere::setText(element, u"Image", image.View());
    }
    TuString type;
    GetNodeTypeString(node, type);
    if (!type.IsEmpty())
        flowmere::setText(element, u"nodeType", type.View());
    flowmere::writeBorder(element, block);
    flowmere::writeFont(element, block);
    writeEdge(element);
    CFCVariableList* const variables = node->GetVariableList();
    if (block == nullptr || variables == nullptr)
        return;
    writeStatus(element, box);
    writeVariables(element, variables, box);
}

void CFCGPDWriter::WritePropertiesRoot(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    std::wstring_view const caption = viewOf(node->GetNodeCaption());
    flowmere::setText(element, u"name", caption.empty() ? std::wstring_view(kRoot) : caption);
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    flowmere::setText(element, u"Icon", viewOf(task != nullptr ? task->GetIconFilePath() : nullptr));
}
