#include "flowmere/persistence/FCFavouriteWriter.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

namespace {

bool isWritten(int type) {
    switch (type) {
    case eShapeType_Favourites:
    case eShapeType_History:
    case eShapeType_Folder:
    case eShapeType_Document:
    case eShapeType_Process:
    case eShapeType_WorkflowProcess:
    case eShapeType_CustomFolder:
        return true;
    default:
        return false;
    }
}

// The folder of the documents opened last keeps those alone that are still open.
bool isClosedInLastOpened(IFCNode* node) {
    auto* const document = dynamic_cast<CFCDocumentNode*>(node);
    IFCNode* const parent = node->GetParentNode();
    return document && !document->IsOpened() && parent && TuString(parent->GetNodeCaption()) == L"Last Opened";
}

} // namespace

CFCFavouriteWriter::CFCFavouriteWriter() = default;
CFCFavouriteWriter::CFCFavouriteWriter(CFCFavouriteWriter const& other) = default;
CFCFavouriteWriter& CFCFavouriteWriter::operator=(CFCFavouriteWriter const& other) = default;
CFCFavouriteWriter::~CFCFavouriteWriter() = default;

void CFCFavouriteWriter::WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) {
    flowmere::WriteDepth const depth(m_nElementDepth);
    if (!node || m_nElementDepth > flowmere::kMaxElementDepth) {
        return;
    }
    int const type = node->GetNodeType();
    TuString name;
    if (!isWritten(type) || (type == eShapeType_Document && isClosedInLastOpened(node)) || !GetObjectType(node, name)) {
        return;
    }
    xercesc::DOMNode* const element = self ? self : CreateElement(parent, name);
    if (!element) {
        return;
    }
    WriteProperties(node, element);
    // Plain folders lose their children; hosts keep what must last in custom folders.
    if (type != eShapeType_Folder) {
        WriteChildren(node, element);
    }
}

void CFCFavouriteWriter::WriteProperties(IFCNode* node, xercesc::DOMNode* element) {
    if (!node || !element) {
        return;
    }
    TuString const name(node->GetNodeCaption());
    flowmere::setText(element, u"Name", name.View());
    auto* const document = dynamic_cast<CFCDocumentNode*>(node);
    if (document && node->GetNodeType() == eShapeType_Document) {
        flowmere::setFlag(element, u"Opened", document->IsOpened());
        flowmere::setInteger(element, u"Type", document->GetDocType());
    }
}
