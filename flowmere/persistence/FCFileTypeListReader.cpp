#include "flowmere/persistence/FCFileTypeListReader.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/persistence/CaptionIndex.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

namespace {

enum { kName, kId, kMimeType, kExtension, kDescription, kIsModified, kIsDeleted };
constexpr flowmere::AttributeTable kAttributes{u"name",        u"id",         u"mimeType", u"extension",
                                               u"description", u"isModified", u"isDeleted"};

} // namespace

CFCFileTypeListReader::CFCFileTypeListReader() = default;
CFCFileTypeListReader::CFCFileTypeListReader(CFCFileTypeListReader const& other) = default;
CFCFileTypeListReader& CFCFileTypeListReader::operator=(CFCFileTypeListReader const& other) = default;
CFCFileTypeListReader::~CFCFileTypeListReader() = default;

bool CFCFileTypeListReader::Parse(wchar_t const* path, CFCDataTypeNode* list) {
    CFCEnumTranslator::SetArrays();
    TuString const file(path ? path : CFCEnvironment::GetFileTypesPath());
    if (file.IsEmpty() || !list || !CFCEnvironment::IsFileExist(file) || !Initialize(file)) {
        return false;
    }
    m_pList = list;
    Load(m_pDocument->getDocumentElement(), list);
    return true;
}

bool CFCFileTypeListReader::Load(xercesc::DOMElement* element, CFCDataTypeNode* root) {
    if (!element || !root) {
        return false;
    }
    flowmere::CaptionIndex index(root);
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) != u"FILETYPE") {
            continue;
        }
        TuString name;
        GetAttribute(child, L"name", name);
        IFCNode* const known = index.find(name, root);
        IFCNode* const node = known ? known : Create(eShapeType_FileType);
        if (!node) {
            continue;
        }
        index.change(node, [node, root] {
            node->SetNodeCaption(L"File");
            TuString const rootId(root->GetNodeId());
            node->SetNodeId(rootId);
        });
        if (!known) {
            index.append(root, node);
        }
        index.change(node, [this, child, node, &name] {
            if (auto* const fileType = dynamic_cast<CFCFileTypeNode*>(node)) {
                LoadPropertiesLite(child, fileType);
            } else {
                // A type named like its group, or a node of the host's: it keeps its name and has no fields to fill.
                node->SetNodeCaption(name);
            }
        });
    }
    return true;
}

void CFCFileTypeListReader::LoadPropertiesLite(xercesc::DOMElement* element, CFCFileTypeNode* node) {
    if (!element || !node) {
        return;
    }
    flowmere::AttributeRow const attributes(element, kAttributes);
    TuString name;
    TuString mimeType;
    TuString extension;
    TuString description;
    int id = 0;
    bool isModified = false;
    bool isDeleted = false;
    attributes.text(kName, name);
    attributes.integer(kId, id);
    attributes.text(kMimeType, mimeType);
    attributes.text(kExtension, extension);
    attributes.text(kDescription, description);
    attributes.flag(kIsModified, isModified);
    attributes.flag(kIsDeleted, isDeleted);
    node->SetNodeCaption(name);
    node->SetFileTypeName(name);
    node->SetFileTypeID(id);
    node->SetMimeType(mimeType);
    node->SetFileTypeExtension(extension);
    node->SetFileTypeDescription(description);
    node->SetModified(isModified);
    node->SetDeleted(isDeleted);
}
