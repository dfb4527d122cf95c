#include "flowmere/workflow/FCProcessVarReader.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>
#include <utility>

using flowmere::AttributeRow;
using flowmere::AttributeTable;
using flowmere::WideText;
using XERCES_CPP_NAMESPACE::DOMElement;

namespace {

constexpr int kFileType = 83;

// An absent attribute reads as the empty text.
WideText textOf(std::u16string_view value) {
    return WideText(value);
}

} // namespace

CFCProcessVarReader::CFCProcessVarReader() = default;
CFCProcessVarReader::CFCProcessVarReader(CFCProcessVarReader const& other) = default;
CFCProcessVarReader& CFCProcessVarReader::operator=(CFCProcessVarReader const& other) = default;
CFCProcessVarReader::~CFCProcessVarReader() = default;

bool CFCProcessVarReader::Parse(wchar_t const* path, IFCNode* node, int) {
    TuString const file(path);
    if (file.IsEmpty() || node == nullptr) {
        return false;
    }
    forgetCatalog();
    CFCEnumTranslator::SetArrays();
    if (!Initialize(file)) {
        return false;
    }
    Load(m_pDocument->getDocumentElement(), node);
    CFCNodeHelper::ConvertToLinkedVariable(node);
    return true;
}

bool CFCProcessVarReader::Load(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Name");
    if (element == nullptr || node == nullptr) {
        return false;
    }
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        std::u16string_view const tag = flowmere::tagOf(child);
        if (tag == u"VARIABLE") {
            LoadVariable(child, node, false);
        } else if (tag == u"BLOCK" || tag == u"SUB_PROCESS") {
            if (IFCNode* const found = node->FindNodeSimple(textOf(AttributeRow(child, kNames).view(0)))) {
                Load(child, found);
            }
        } else if (tag == u"BLOCK_VARIABLES") {
            Load(child, node);
        } else if (tag == u"ARGUMENT") {
            LoadArgument(child, node);
        } else if (tag == u"DEPLOYMENTS") {
            LoadDeployments(child, node);
        }
        // The variables of a root, "PROCESS_VARIABLES", are passed over like any other element: the tree has them.
    }
    return true;
}

void CFCProcessVarReader::LoadVariables(DOMElement* element, IFCNode* node, bool isTemplate, bool forDeployment) {
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) != u"VARIABLE") {
            continue;
        }
        if (forDeployment) {
            LoadDeploymentVariable(child, node);
        } else {
            LoadVariable(child, node, isTemplate);
        }
    }
}

void CFCProcessVarReader::LoadVariable(DOMElement* element, IFCNode* node, bool isTemplate) {
    static constexpr AttributeTable kNames(u"Name", u"DisplayName", u"id", u"DataType", u"Type", u"IOType", u"Nature",
                                           u"ResolveEvent", u"LinkPath", u"Displayable", u"Array", u"Editable",
                                           u"Scope", u"Value", u"storeInDB", u"isReference");
    CFCBlockData* const block = element != nullptr && node != nullptr ? node->GetFCBlockData() : nullptr;
    CFCVariableData* const variable = block != nullptr ? block->CreateNewVariable() : nullptr;
    if (variable == nullptr) {
        return;
    }
    AttributeRow const row(element, kNames);
    int id = variable->GetVariableID();
    bool isVisible = variable->IsVisible();
    bool isArray = variable->getArrayFlag() != 0;
    bool isEditable = variable->IsEditable();
    bool isStored = variable->IsStoreDB();
    bool isReference = variable->IsRefrence();
    row.integer(2, id);
    row.flag(9, isVisible);
    row.flag(10, isArray);
    row.flag(11, isEditable);
    row.flag(14, isStored);
    row.flag(15, isReference);
    // Where the type is no plain one, it names the kind of the data.
    std::u16string_view const type = row.view(4);
    TuString typeName;
    flowmere::assignText(typeName, flowmere::equalsNoCase(type, u"data") ? row.view(3) : type);

    variable->SetVariableName(textOf(row.view(0)));
    variable->SetCaption(textOf(row.view(1)));
    variable->SetNature(textOf(row.view(6)));
    variable->SetValue(textOf(row.view(13)));
    variable->SetStatusType(textOf(row.view(5)).text());
    variable->SetScopeType(textOf(row.view(12)).text());
    variable->SetBPMVariable(true);
    bindDataType(variable, typeName);
    variable->SetDataType(static_cast<wchar_t const*>(typeName));
    variable->SetEditable(isEditable);
    variable->SetVisible(isVisible);
    variable->SetArray(isArray);
    variable->SetLinkPath(textOf(row.view(8)));
    variable->SetResolveEvent(textOf(row.view(7)));
    variable->SetTemplateVariable(isTemplate);
    variable->SetReference(isReference);
    variable->SetStoreDB(isStored);
    variable->UpdateValue();
    variable->SetVariableID(id);
}

void CFCProcessVarReader::bindDataType(CFCVariableData* variable, TuString& typeName) {
    CFCDataTypeNode* const description = variable->GetDataTypeNode();
    if (description == nullptr) {
        return;
    }
    // The name that executables had in older files.
    if (typeName.CompareNoCase(L"EXE") == 0) {
        typeName = L"ApplicationName";
    }
    description->SetType(typeName);
    IFCNode* const found = findCatalogEntry(typeName);
    bool const isFileType = found != nullptr && found->GetNodeType() == kFileType;
    auto* const fileType = isFileType ? dynamic_cast<CFCFileTypeNode*>(found) : nullptr;
    auto* const dataType = isFileType ? nullptr : dynamic_cast<CFCDataTypeNode*>(found);
    if (fileType != nullptr) {
        variable->SetFileType(true);
        CFCDataTypeNode::Copy(dynamic_cast<CFCDataTypeNode*>(fileType->GetParentNode()), description);
        CFCFileTypeNode::Copy(fileType, variable->GetFileTypeNode());
    } else if (dataType != nullptr) {
        CFCDataTypeNode::Copy(dataType, description);
    } else {
        // Also where a host hung a node of another class into the catalog.
        description->SetNodeCaption(typeName);
    }
}

void CFCProcessVarReader::LoadArgument(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"VALUE", u"INDEX", u"id");
    auto* const application = dynamic_cast<CFCApplicationNode*>(node);
    CFCArgumentData* const argument =
        element != nullptr && application != nullptr ? application->CreateNewArgument() : nullptr;
    if (argument == nullptr) {
        return;
    }
    AttributeRow const row(element, kNames);
    int index = argument->GetArgumentIndex();
    int id = argument->GetArgumentID();
    row.integer(1, index);
    row.integer(2, id);
    argument->SetArgumentValue(textOf(row.view(0)));
    argument->SetArgumentIndex(index);
    argument->SetArgumentID(id);
}

void CFCProcessVarReader::LoadDeployments(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Name", u"id", u"isAppDeployment");
    auto* const application = dynamic_cast<CFCApplicationNode*>(node);
    if (element == nullptr || application == nullptr) {
        return;
    }
    for (DOMElement* child = flowmere::firstElement(element); child != nullptr; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) != u"DEPLOYMENT") {
            continue;
        }
        AttributeRow const row(child, kNames);
        CFCDeploymentData* const deployment = row.view(2) != u"false" ? application->CreateNewDeployment() : nullptr;
        if (deployment == nullptr) {
            continue;
        }
        WideText const name(row.view(0));
        int id = deployment->GetDeploymentId();
        row.integer(1, id);
        deployment->SetNodeCaption(name);
        deployment->SetNodeId(name);
        deployment->SetDeploymentId(id);
        LoadVariables(child, deployment, false, true);
    }
}

void CFCProcessVarReader::LoadDeploymentVariable(DOMElement* element, IFCNode* node) {
    static constexpr AttributeTable kNames(u"Name", u"Value", u"id");
    if (element == nullptr || node == nullptr) {
        return;
    }
    AttributeRow const row(element, kNames);
    TuString name;
    row.text(0, name);
    CFCVariableData* variable = CFCNodeHelper::FindVariableByName(name, node);
    if (variable == nullptr) {
        variable = node->CreateNewVariable();
    }
    if (variable == nullptr) {
        return;
    }
    int id = variable->GetVariableID();
    row.integer(2, id);
    variable->SetVariableName(name);
    variable->SetValue(textOf(row.view(1)));
    variable->SetVariableID(id);
}

CFCDataTypeNode* CFCProcessVarReader::GetDataTypeNode(wchar_t const* name) {
    return dynamic_cast<CFCDataTypeNode*>(findCatalogEntry(TuString(name)));
}

// Every variable asks for its type, and the names are few.
IFCNode* CFCProcessVarReader::findCatalogEntry(TuString const& name) {
    if (!m_bCatalogAsked) {
        m_pCatalogRoot = CFCDataTypeListReader::GetDataTypeRootNode();
        m_bCatalogAsked = true;
    }
    auto const [entry, isNew] = m_catalogEntries.try_emplace(name, nullptr);
    if (isNew) {
        IFCNode* const found = CFCNodeHelper::FindDataTypeNode(name, m_pCatalogRoot, true);
        entry->second = found != nullptr ? found : CFCNodeHelper::FindDataTypeNode(name, m_pCatalogRoot, false);
    }
    return entry->second;
}

void CFCProcessVarReader::forgetCatalog() {
    m_pCatalogRoot = nullptr;
    m_bCatalogAsked = false;
    m_catalogEntries.clear();
}
