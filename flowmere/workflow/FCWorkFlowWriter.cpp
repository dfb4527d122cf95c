#include "flowmere/workflow/FCWorkFlowWriter.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/workflow/LeavingConnectors.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

using flowmere::viewOf;
using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

// A task stands one level deeper in the file than in the tree, and its variables two levels below it.
constexpr int kMaxObjectDepth = flowmere::kMaxElementDepth - 3;
// An application stands two levels deeper than the depth of its group, and its variables two levels below it.
constexpr int kMaxGroupDepth = flowmere::kMaxElementDepth - 4;
constexpr int kStatusWithoutValue = 4;

void setText(DOMNode* element, flowmere::XmlName name, wchar_t const* text) {
    flowmere::setText(element, name, viewOf(text));
}

bool hasVariables(int kind) {
    return (kind >= eShapeType_Task && kind <= eShapeType_DecisionTask) || kind == eShapeType_SuperState ||
           flowmere::isSubProcessKind(kind);
}

TuString dataTypeOf(CFCVariableData* variable) {
    if (variable->IsFileType())
        return L"File";
    TuString type;
    if (CFCDataTypeNode* const node = variable->GetDataTypeNode())
        type = node->GetType();
    if (type.IsEmpty())
        type = variable->GetDataTypeS();
    return type;
}

} // namespace

CFCWorkFlowWriter::CFCWorkFlowWriter() : m_strRootName(L"workflow-definition") {}

CFCWorkFlowWriter::CFCWorkFlowWriter(CFCWorkFlowWriter const& other)
    : CTXMLBaseWriter(other), m_strFilePath(other.m_strFilePath), m_strRootName(other.m_strRootName),
      m_pTaskRoot(other.m_pTaskRoot), m_pApplicationRoot(other.m_pApplicationRoot) {}

CFCWorkFlowWriter& CFCWorkFlowWriter::operator=(CFCWorkFlowWriter const& other) {
    CTXMLBaseWriter::operator=(other);
    m_strFilePath = other.m_strFilePath;
    m_strRootName = other.m_strRootName;
    m_pTaskRoot = other.m_pTaskRoot;
    m_pApplicationRoot = other.m_pApplicationRoot;
    return *this;
}

CFCWorkFlowWriter::~CFCWorkFlowWriter() = default;

bool CFCWorkFlowWriter::WriteFile(wchar_t const* path, IFCNode* tasks, IFCNode* applications) {
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || tasks == nullptr)
        return false;
    m_pTaskRoot = tasks;
    m_pApplicationRoot = applications;
    m_pConnectors = std::make_unique<flowmere::LeavingConnectors>();
    m_nDepth = 0;
    m_nGroupDepth = 0;
    bool const result = flowmere::writeWorkflowFile(m_strFilePath, m_strRootName, [&](DOMElement& root) {
        WritePropertiesRoot(m_pTaskRoot, &root);
        WriteApplications(m_pApplicationRoot, flowmere::appendElement(&root, u"applications"));
        WriteObject(m_pTaskRoot, nullptr, flowmere::appendElement(&root, u"tasks"));
    });
    m_pConnectors.reset();
    return result;
}

void CFCWorkFlowWriter::WritePropertiesRoot(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    TuString name = flowmere::nodeNameOf(node);
    if (name.IsEmpty())
        name = L"allblocks";
    setText(element, u"name", name);
    flowmere::setReal(element, u"version", 1.0);
}

void CFCWorkFlowWriter::WriteApplications(IFCNode* node, DOMNode* element) {
    flowmere::WriteDepth const depth(m_nGroupDepth);
    if (node == nullptr || element == nullptr || m_nGroupDepth > kMaxGroupDepth)
        return;
    flowmere::CircleGuard<IFCNode> guard;
    for (IFCNode* child = node->GetChild(); child != nullptr && !guard.closes(child); child = child->GetNext()) {
        int const kind = child->GetNodeType();
        if (kind == eShapeType_ApplicationGroup && child->GetChild() != nullptr) {
            if (DOMElement* const group = flowmere::appendElement(element, u"applications")) {
                setText(group, u"name", flowmere::nodeNameOf(child));
                WriteApplications(child, group);
            }
        } else if (kind == eShapeType_Application) {
            WriteApplicationNode(child, element);
        }
    }
}

void CFCWorkFlowWriter::WriteApplication(CFCApplicationNode* application, DOMNode* element) {
    WriteApplicationNode(application, element);
}

void CFCWorkFlowWriter::WriteApplicationNode(IFCNode* node, DOMNode* parent) {
    DOMElement* const element = node != nullptr ? flowmere::appendElement(parent, u"application") : nullptr;
    if (element == nullptr)
        return;
    setText(element, u"name", flowmere::nodeNameOf(node));
    DOMElement* const variables = flowmere::appendElement(element, u"variables");
    DOMElement* const commandLine = flowmere::appendElement(element, u"commandline");
    // Documents give the kind of an application to plain tasks as well.
    if (dynamic_cast<CFCApplicationNode*>(node) == nullptr)
        return;
    WriteVariables(node, variables, false);
    WriteArguments(commandLine, node);
}

void CFCWorkFlowWriter::WriteArguments(DOMNode* element, IFCNode* node) {
    auto* const application = dynamic_cast<CFCApplicationNode*>(node);
    if (application == nullptr || element == nullptr)
        return;
    CFCArgumentList* const list = application->GetArgumentList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        WriteArgument(list->GetNext(position), element);
}

void CFCWorkFlowWriter::WriteArgument(CFCArgumentData* argument, DOMNode* parent) {
    DOMElement* const element = argument != nullptr ? flowmere::appendElement(parent, u"argument") : nullptr;
    if (element == nullptr)
        return;
    flowmere::setInteger(element, u"index", argument->GetArgumentIndex());
    setText(element, u"value", argument->GetArgumentValue());
}

void CFCWorkFlowWriter::WriteVariables(IFCNode* node, DOMNode* element, bool all) {
    CFCVariableList* const list = node != nullptr ? node->GetVariableList() : nullptr;
    if (list == nullptr || element == nullptr)
        return;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCVariableData* const variable = list->GetNext(position);
        if (variable != nullptr && (all || viewOf(variable->GetVariableName()) != L"ActiveSetup"))
            WriteVariable(variable, element);
    }
}

void CFCWorkFlowWriter::WriteVariable(CFCVariableData* variable, DOMNode* parent) {
    if (variable == nullptr || viewOf(variable->GetVariableName()).empty())
        return;
    DOMElement* const element = flowmere::appendElement(parent, u"variable");
    if (element == nullptr)
        return;
    setText(element, u"name", variable->GetVariableName());
    setText(element, u"dataType", dataTypeOf(variable));
    setText(element, u"link", variable->GetLinkPath());
    setText(element, u"ioType", variable->GetStatusTypeS());
    TuString value;
    if (variable->GetStatusType() != kStatusWithoutValue) {
        value = variable->GetValue();
        value.Replace(L'\\', L'/');
    }
    SetTextNodeValue(element, value);
}

void CFCWorkFlowWriter::GetNodeTypeString(IFCNode* node, TuString& out) {
    out = node != nullptr ? flowmere::workflowNodeTypeName(node->GetNodeType()) : L"";
}

bool CFCWorkFlowWriter::GetObjectType(IFCNode* node, TuString& out) {
    if (node == nullptr)
        return false;
    switch (int const kind = node->GetNodeType()) {
    case eShapeType_Folder:
    case eShapeType_Favourites:
    case eShapeType_History:
        return false;
    case eShapeType_StartState:
        out = L"start-state";
        break;
    case eShapeType_EndState:
        out = L"end-state";
        break;
    case eShapeType_Fork:
        out = L"fork";
        break;
    case eShapeType_Join:
        out = L"join";
        break;
    case eShapeType_SuperState:
        out = L"super-state";
        break;
    case 0:
        out = L"UnKnown";
        break;
    default:
        out = flowmere::isSubProcessKind(kind) ? L"sub-process" : L"task";
        break;
    }
    return true;
}

void CFCWorkFlowWriter::WriteObject(IFCNode* node, DOMNode* parent, DOMNode* own) {
    flowmere::WriteDepth const depth(m_nDepth);
    TuString name;
    if (m_nDepth > kMaxObjectDepth || !GetObjectType(node, name))
        return;
    DOMNode* element = own;
    if (element == nullptr && parent != nullptr)
        element = CreateElement(parent, name);
    if (element == nullptr)
        return;
    if (node->GetNodeType() != eShapeType_WorkflowProcess)
        WriteProperties(node, element);
    if (node->GetChild() != nullptr)
        WriteChildren(node, element);
}

void CFCWorkFlowWriter::WriteChildren(IFCNode* node, DOMNode* element) {
    flowmere::visitChildrenFromLast(node, [&](IFCNode* child) { WriteObject(child, element, nullptr); });
}

void CFCWorkFlowWriter::WriteProperties(IFCNode* node, DOMNode* element) {
    CFCBPMBlockData* const task = node != nullptr && element != nullptr ? node->GetBPMBlockData() : nullptr;
    if (task == nullptr || node->GetFCBlockData() == nullptr)
        return;
    TuString const name = flowmere::nodeNameOf(node);
    if (name.IsEmpty())
        return;
    setText(element, u"name", name);
    if (hasVariables(node->GetNodeType())) {
        TuString type;
        GetNodeTypeString(node, type);
        if (!type.IsEmpty())
            setText(element, u"nodeType", type);
        if (!viewOf(task->GetTaskName()).empty()) {
            if (!viewOf(task->GetApplication()).empty())
                setText(element, u"application", task->GetApplication());
            setText(element, u"name", name);
        }
        WriteVariables(node, flowmere::appendElement(element, u"variables"), false);
    }
    flowmere::LeavingConnectors ownConnectors;
    flowmere::LeavingConnectors& connectors = m_pConnectors != nullptr ? *m_pConnectors : ownConnectors;
    connectors.visit(node->GetParentNode(), name.View(), [element](CFCConnector* connector) {
        if (DOMElement* const transition = flowmere::appendElement(element, u"transition")) {
            TuString const end(connector->GetEndBlockName());
            setText(transition, u"to", end);
            setText(transition, u"name", TuString(connector->GetStartBlockName()) + L"." + end);
        }
    });
}
