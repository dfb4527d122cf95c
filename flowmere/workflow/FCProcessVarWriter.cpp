#include "flowmere/workflow/FCProcessVarWriter.h"

#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>

using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

constexpr int kProcess = 56;
constexpr int kWorkflowProcess = 160;
constexpr int kSuperState = 161;
constexpr int kApplication = 167;
constexpr int kApplicationGroup = 168;

// A status beyond the names: what such a variable holds is not for files.
constexpr int kStatusWithoutValue = 4;

constexpr wchar_t kSetupVariable[] = L"ActiveSetup";
constexpr wchar_t kNamelessRoot[] = L"root-container";

// The children of the root stand one level deeper than they lie, and below an object there are up to three levels, of
// the variables of a deployment.
constexpr int kMaxObjectDepth = flowmere::kMaxElementDepth - 4;

wchar_t const* elementOfKind(int kind) {
    switch (kind) {
    case 0:
        return L"UnKnown";
    case kProcess:
    case 150:
    case 153:
    case 154:
    case 155:
    case 156:
    case 157:
    case 162:
    case 163:
    case 164:
    case 165:
    case kApplication:
        return L"BLOCK";
    case kWorkflowProcess:
    case kSuperState:
    case kApplicationGroup:
        return L"SUB_PROCESS";
    case 182:
        return L"DEPLOYMENT";
    default:
        return nullptr;
    }
}

bool isProcess(int kind) {
    return kind == kProcess || kind == kWorkflowProcess;
}

bool hasBlocks(int kind) {
    return isProcess(kind) || kind == kSuperState || kind == kApplicationGroup || flowmere::isSubProcessKind(kind);
}

std::wstring_view view(wchar_t const* text) {
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

void setText(DOMNode* element, flowmere::XmlName name, wchar_t const* text) {
    flowmere::setText(element, name, view(text));
}

// Calls `visit` for each element of the list, in list order; the list may be null.
template <typename List, typename Visit>
void forEachIn(List* list, Visit const& visit) {
    if (list == nullptr) {
        return;
    }
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        if (auto* const element = list->GetNext(position)) {
            visit(element);
        }
    }
}

void writeDataType(DOMNode* element, CFCVariableData* variable) {
    if (variable->IsFileType()) {
        flowmere::setConstant(element, u"DataType", u"File");
        if (CFCFileTypeNode* const fileType = variable->GetFileTypeNode()) {
            setText(element, u"Type", fileType->GetFileTypeName());
        }
        return;
    }
    CFCDataTypeNode* const description = variable->GetDataTypeNode();
    std::wstring_view const type = view(description != nullptr ? description->GetType() : nullptr);
    flowmere::setText(element, u"DataType", type.empty() ? view(variable->GetDataTypeS()) : type);
    setText(element, u"Type", variable->GetType());
}

void writeValue(DOMNode* element, CFCVariableData* variable) {
    TuString value;
    if (static_cast<int>(variable->GetStatusType()) != kStatusWithoutValue) {
        value = variable->GetValue();
        value.Replace(L'\\', L'/');
    }
    flowmere::setText(element, u"Value", value.View());
}

} // namespace

CFCProcessVarWriter::CFCProcessVarWriter() : m_strRootName(L"PROCESS") {}
CFCProcessVarWriter::CFCProcessVarWriter(CFCProcessVarWriter const& other) = default;
CFCProcessVarWriter& CFCProcessVarWriter::operator=(CFCProcessVarWriter const& other) = default;
CFCProcessVarWriter::~CFCProcessVarWriter() = default;

bool CFCProcessVarWriter::WriteFile(wchar_t const* path, IFCNode* node, bool recursive) {
    m_bRecursive = recursive;
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || node == nullptr) {
        return false;
    }
    m_pRootNode = node;
    m_nDepth = 0;
    return flowmere::writeWorkflowFile(m_strFilePath, m_strRootName,
                                       [&](DOMElement& root) { WriteObject(node, nullptr, &root); });
}

void CFCProcessVarWriter::LoadAndFormatXML(wchar_t const* path) {
    flowmere::formatWorkflowFile(path);
}

bool CFCProcessVarWriter::GetObjectType(IFCNode* node, TuString& out) {
    wchar_t const* const name = node != nullptr ? elementOfKind(node->GetNodeType()) : nullptr;
    if (name == nullptr) {
        return false;
    }
    out = name;
    return true;
}

void CFCProcessVarWriter::WriteObject(IFCNode* node, DOMNode* parent, DOMNode* own) {
    TuString name;
    if (node == nullptr || m_nDepth >= kMaxObjectDepth || !GetObjectType(node, name)) {
        return;
    }
    DOMNode* const element = own != nullptr ? own : CreateElement(parent, name);
    if (element == nullptr) {
        return;
    }
    flowmere::WriteDepth const depth(m_nDepth);
    WriteProperties(node, element);
    int const kind = node->GetNodeType();
    if (!hasBlocks(kind)) {
        return;
    }
    bool const isLevel = node == m_pRootNode && (isProcess(kind) || flowmere::isSubProcessKind(kind));
    WriteChildren(node, isLevel ? flowmere::appendElement(element, u"BLOCK_VARIABLES") : element);
}

void CFCProcessVarWriter::WriteChildren(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr) {
        return;
    }
    if (node != m_pRootNode && flowmere::isSubProcessKind(node->GetNodeType())) {
        return;
    }
    flowmere::visitChildrenFromLast(node, [&](IFCNode* child) { WriteObject(child, element, nullptr); });
}

void CFCProcessVarWriter::WriteProperties(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr) {
        return;
    }
    int const kind = node->GetNodeType();
    bool const isRoot = node == m_pRootNode;
    if (isRoot || isProcess(kind)) {
        WritePropertiesRoot(node, element);
        // What the variables of the root are linked to stands outside this file. A process further down keeps to the
        // way of what was written before it.
        if (isRoot) {
            m_bStripLinks = true;
        }
        WriteProcessVariables(node, element);
        return;
    }
    m_bStripLinks = false;
    std::wstring_view const id = view(node->GetNodeId());
    if (id.empty()) {
        return;
    }
    flowmere::setText(element, u"Name", id);
    WriteVariables(node, element, false);
    if (kind == kApplication) {
        WriteArguments(element, node);
    }
}

void CFCProcessVarWriter::WritePropertiesRoot(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr) {
        return;
    }
    TuString name(node->GetNodeId());
    if (name.IsEmpty()) {
        name = node->GetNodeCaption();
    }
    if (name.IsEmpty()) {
        name = kNamelessRoot;
    }
    flowmere::setText(element, u"name", name.View());
}

void CFCProcessVarWriter::WriteProcessVariables(IFCNode* node, DOMNode* element) {
    if (node == nullptr) {
        return;
    }
    if (DOMElement* const list = flowmere::appendElement(element, u"PROCESS_VARIABLES")) {
        WriteVariables(node, list, true);
    }
}

void CFCProcessVarWriter::WriteVariables(IFCNode* node, DOMNode* element, bool all) {
    if (node == nullptr || element == nullptr) {
        return;
    }
    forEachIn(node->GetVariableList(), [&](CFCVariableData* variable) {
        if (all || view(variable->GetVariableName()) != kSetupVariable) {
            WriteVariable(variable, element);
        }
    });
    if (node->GetNodeType() == kApplication) {
        WriteDeployments(dynamic_cast<CFCApplicationNode*>(node), element);
    }
}

void CFCProcessVarWriter::WriteVariable(CFCVariableData* variable, DOMNode* parent) {
    if (variable == nullptr || view(variable->GetVariableName()).empty()) {
        return;
    }
    DOMElement* const element = flowmere::appendElement(parent, u"VARIABLE");
    if (element == nullptr) {
        return;
    }
    setText(element, u"Name", variable->GetVariableName());
    setText(element, u"DisplayName", variable->GetCaption());
    flowmere::setInteger(element, u"id", variable->GetVariableID());
    writeDataType(element, variable);
    setText(element, u"IOType", variable->GetStatusTypeS());
    setText(element, u"Nature", variable->GetNature());
    setText(element, u"ResolveEvent", variable->GetResolveEvent());
    setText(element, u"LinkPath", m_bStripLinks ? L"" : variable->GetLinkPath());
    flowmere::setFlag(element, u"Displayable", variable->IsVisible());
    flowmere::setFlag(element, u"Array", variable->IsArray());
    flowmere::setFlag(element, u"Editable", variable->IsEditable());
    setText(element, u"Scope",
            m_bStripLinks ? CFCEnumTranslator::EnumToString(static_cast<EConnectionType>(0))
                          : variable->GetScopeTypeS());
    writeValue(element, variable);
    flowmere::setFlag(element, u"storeInDB", variable->IsStoreDB());
    flowmere::setFlag(element, u"isReference", variable->IsRefrence());
    flowmere::setFlag(element, u"isModified", variable->IsModified());
}

void CFCProcessVarWriter::WriteArguments(DOMNode* element, IFCNode* node) {
    auto* const application = dynamic_cast<CFCApplicationNode*>(node);
    if (application != nullptr) {
        forEachIn(application->GetArgumentList(), [&](CFCArgumentData* argument) { WriteArgument(argument, element); });
    }
}

void CFCProcessVarWriter::WriteArgument(CFCArgumentData* argument, DOMNode* parent) {
    DOMElement* const element = argument != nullptr ? flowmere::appendElement(parent, u"ARGUMENT") : nullptr;
    if (element == nullptr) {
        return;
    }
    flowmere::setInteger(element, u"INDEX", argument->GetArgumentIndex());
    setText(element, u"VALUE", argument->GetArgumentValue());
    flowmere::setInteger(element, u"id", argument->GetArgumentID());
}

void CFCProcessVarWriter::WriteDeployments(CFCApplicationNode* application, DOMNode* parent) {
    DOMElement* const element = flowmere::appendElement(parent, u"DEPLOYMENTS");
    if (element == nullptr || application == nullptr) {
        return;
    }
    // Nothing when there are any.
    application->CreateDefaultDeployments();
    forEachIn(application->GetDeploymentList(), [&](CFCDeploymentData* deployment) {
        DOMElement* const child = flowmere::appendElement(element, u"DEPLOYMENT");
        if (child == nullptr) {
            return;
        }
        setText(child, u"Name", deployment->GetNodeCaption());
        flowmere::setInteger(child, u"id", deployment->GetDeploymentId());
        flowmere::setFlag(child, u"isModified", deployment->IsModified());
        flowmere::setFlag(child, u"isDeleted", deployment->IsDeleted());
        WriteDeploymentVariables(deployment, child);
    });
}

void CFCProcessVarWriter::WriteDeploymentVariables(CFCDeploymentData* deployment, DOMNode* element) {
    if (deployment != nullptr) {
        forEachIn(deployment->GetVariableList(), [&](CFCVariableData* variable) { WriteVariable(variable, element); });
    }
}
