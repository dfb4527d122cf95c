#include "flowmere/persistence/FCFavouriteReader.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/persistence/InitFailure.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>

namespace {

enum { kName, kOpened, kType };
constexpr flowmere::AttributeTable kAttributes{u"Name", u"Opened", u"Type"};

// The process that holds the favourites; null when the tree belongs to none.
CFCProcessNode* processOf(IFCNode* node) {
    return CFCPointerConverter::GetProcessNode(node->GetRootNode());
}

} // namespace

CFCFavouriteReader::CFCFavouriteReader() = default;
CFCFavouriteReader::CFCFavouriteReader(CFCFavouriteReader const& other) = default;
CFCFavouriteReader& CFCFavouriteReader::operator=(CFCFavouriteReader const& other) = default;
CFCFavouriteReader::~CFCFavouriteReader() = default;

bool CFCFavouriteReader::Parse(wchar_t const* path, IFCNode** node) {
    TuString const file(path);
    if (file.IsEmpty() || !node || !*node) {
        return false;
    }
    if (!Initialize(file)) {
        flowmere::tellInitFailed();
        return false;
    }
    Load(m_pDocument->getDocumentElement(), *node);
    return true;
}

bool CFCFavouriteReader::Load(xercesc::DOMElement* element, IFCNode* node) {
    if (!element || !node) {
        return false;
    }
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        std::u16string_view const tag = flowmere::tagOf(child);
        IFCNode* folder = nullptr;
        if (tag == u"FAVOURITES") {
            CFCProcessNode* const process = processOf(node);
            folder = process ? process->GetFavouriteNode() : nullptr;
        } else if (tag == u"HISTORY") {
            CFCProcessNode* const process = processOf(node);
            folder = process ? process->GetHistoryNode() : nullptr;
        } else if (tag == u"SUB_GRP") {
            folder = appendNew(eShapeType_Folder, node);
        } else if (tag == u"CUSTOM_FOLDER") {
            folder = appendNew(eShapeType_Folder, node);
            if (folder) {
                folder->SetNodeType(eShapeType_CustomFolder);
            }
        } else if (tag == u"DOCUMENT") {
            loadDocument(child, node);
        }
        if (folder) {
            LoadPropertiesLite(child, folder);
            Load(child, folder);
        }
    }
    return true;
}

IFCNode* CFCFavouriteReader::appendNew(int type, IFCNode* parent) {
    IFCNode* const node = Create(type);
    if (node) {
        parent->AppendChild(node, false);
    }
    return node;
}

void CFCFavouriteReader::loadDocument(xercesc::DOMElement* element, IFCNode* node) {
    flowmere::AttributeRow const attributes(element, kAttributes);
    bool isOpened = false;
    attributes.flag(kOpened, isOpened);
    IFCNode* const made = isOpened ? Create(eShapeType_Document) : nullptr;
    if (!made) {
        return;
    }
    TuString name;
    int type = 0;
    attributes.text(kName, name);
    attributes.integer(kType, type);
    made->SetNodeCaption(name);
    if (auto* const document = dynamic_cast<CFCDocumentNode*>(made)) {
        document->SetOpened(isOpened);
        document->SetDocType(type);
    }
    TuString folderName;
    GetAttribute(dynamic_cast<xercesc::DOMElement*>(element->getParentNode()), L"Name", folderName);
    // The search begins one level up, so a folder of the same name beside this one may win.
    if (IFCNode* const folder = CFCNodeHelper::FindNodeByCaption(folderName, node->GetParentNode())) {
        folder->AppendChild(made, false);
    }
}

void CFCFavouriteReader::LoadPropertiesLite(xercesc::DOMElement* element, IFCNode* node) {
    if (!element || !node) {
        return;
    }
    // Whether a folder is opened is nobody's question here.
    TuString name;
    GetAttribute(element, L"Name", name);
    node->SetNodeCaption(name);
    node->SetNodeId(name);
}
