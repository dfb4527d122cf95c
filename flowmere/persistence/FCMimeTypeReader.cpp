#include "flowmere/persistence/FCMimeTypeReader.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

namespace {

enum { kContentType, kDescription };
constexpr flowmere::AttributeTable kAttributes{u"contentType", u"description"};

CFCMimeTypeNode* mimeTypeRoot = nullptr;

} // namespace

CFCMimeTypeReader::CFCMimeTypeReader() = default;
CFCMimeTypeReader::CFCMimeTypeReader(CFCMimeTypeReader const& other) = default;
CFCMimeTypeReader& CFCMimeTypeReader::operator=(CFCMimeTypeReader const& other) = default;
CFCMimeTypeReader::~CFCMimeTypeReader() = default;

CFCMimeTypeNode* CFCMimeTypeReader::GetMimeTypeRoot() {
    if (mimeTypeRoot) {
        return mimeTypeRoot;
    }
    CFCNodeFactory factory;
    mimeTypeRoot = dynamic_cast<CFCMimeTypeNode*>(factory.Create(eShapeType_MimeTypeRoot));
    if (!mimeTypeRoot) {
        return nullptr;
    }
    mimeTypeRoot->SetNodeType(eShapeType_DataTypeGroup);
    CFCMimeTypeReader reader;
    reader.SetNodeFactory(&factory);
    reader.Parse(CFCEnvironment::GetMimeTypesPath(), mimeTypeRoot);
    // Without a user's path this is the common file once more, whose entries then stand twice.
    reader.Parse(CFCEnvironment::GetUserMimeTypesPath(), mimeTypeRoot);
    return mimeTypeRoot;
}

bool CFCMimeTypeReader::Parse(wchar_t const* path, CFCMimeTypeNode* list) {
    CFCEnumTranslator::SetArrays();
    TuString const file(path ? path : CFCEnvironment::GetMimeTypesPath());
    if (file.IsEmpty() || !list || !CFCEnvironment::IsFileExist(file) || !Initialize(file)) {
        return false;
    }
    Load(m_pDocument->getDocumentElement(), list);
    return true;
}

bool CFCMimeTypeReader::Load(xercesc::DOMElement* element, CFCMimeTypeNode* node) {
    if (!element || !node) {
        return false;
    }
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) != u"MIMETYPE") {
            continue;
        }
        IFCNode* const entry = Create(eShapeType_MimeType);
        if (!entry) {
            continue;
        }
        node->AppendChild(entry, false);
        if (auto* const mimeType = dynamic_cast<CFCMimeTypeNode*>(entry)) {
            LoadPropertiesLite(child, mimeType);
        }
    }
    return true;
}

void CFCMimeTypeReader::LoadPropertiesLite(xercesc::DOMElement* element, CFCMimeTypeNode* node) {
    if (!element || !node) {
        return;
    }
    flowmere::AttributeRow const attributes(element, kAttributes);
    TuString contentType;
    TuString description;
    attributes.text(kContentType, contentType);
    attributes.text(kDescription, description);
    node->SetContentType(contentType);
    node->SetNodeDescription(description);
}
