#include "flowmere/persistence/FCFileTypeListWriter.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlFile.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>

CFCFileTypeListWriter::CFCFileTypeListWriter() : m_strRootName(L"FILETYPES") {}
CFCFileTypeListWriter::CFCFileTypeListWriter(CFCFileTypeListWriter const& other) = default;
CFCFileTypeListWriter& CFCFileTypeListWriter::operator=(CFCFileTypeListWriter const& other) = default;
CFCFileTypeListWriter::~CFCFileTypeListWriter() = default;

bool CFCFileTypeListWriter::WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    m_bDeep = deep;
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || !node) {
        return false;
    }
    TuString const file(m_strFilePath);
    TuString const rootName(m_strRootName);
    return flowmere::writeXmlFile(file, rootName.View(),
                                  [&](xercesc::DOMElement* root) { WriteObject(node, nullptr, root); });
}

void CFCFileTypeListWriter::WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) {
    flowmere::WriteDepth const depth(m_nDepth);
    TuString type;
    if (m_nDepth > flowmere::kMaxElementDepth || !GetObjectType(node, type)) {
        return;
    }
    xercesc::DOMNode* const element = self ? self : CreateElement(parent, type);
    if (!element) {
        return;
    }
    if (node && node->GetNodeType() == eShapeType_DataTypeGroup) {
        WriteChildren(node, element);
    } else {
        WriteProperties(node, element);
    }
}

void CFCFileTypeListWriter::WriteChildren(IFCNode* node, xercesc::DOMNode* element) {
    for (IFCNode* const child : flowmere::childrenInFileOrder(node)) {
        WriteObject(child, element, nullptr);
    }
}

void CFCFileTypeListWriter::WriteProperties(IFCNode* node, xercesc::DOMNode* element) {
    if (!node || !element || node->GetNodeType() != eShapeType_FileType) {
        return;
    }
    auto* const fileType = dynamic_cast<CFCFileTypeNode*>(node);
    if (!fileType) {
        return;
    }
    flowmere::setText(element, u"name", fileType->GetFileTypeName());
    flowmere::setInteger(element, u"id", fileType->GetFileTypeID());
    flowmere::setText(element, u"mimeType", fileType->GetMimeType());
    flowmere::setText(element, u"extension", fileType->GetFileTypeExtension());
    flowmere::setText(element, u"description", fileType->GetFileTypeDescription());
    flowmere::setFlag(element, u"isModified", fileType->IsModified());
    flowmere::setFlag(element, u"isDeleted", fileType->IsDeleted());
}

void CFCFileTypeListWriter::WritePropertiesRoot(IFCNode* node, xercesc::DOMNode*) {
    TuString caption(node ? node->GetNodeCaption() : nullptr);
    if (caption.IsEmpty()) {
        caption = L"root-container";
    }
}

bool CFCFileTypeListWriter::GetObjectType(IFCNode* node, TuString& out) {
    if (!node) {
        return false;
    }
    switch (node->GetNodeType()) {
    case eShapeType_DataTypeGroup:
        out = L"FILETYPES";
        return true;
    case eShapeType_FileType:
        out = L"FILETYPE";
        return true;
    case eShapeType_None:
        out = L"UnKnown";
        return true;
    default:
        return false;
    }
}
