#include "flowmere/persistence/FCFavouriteReader.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/ParentChain.h"
#include "flowmere/persistence/CaptionIndex.h"
#include "flowmere/persistence/InitFailure.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>
#include <typeinfo>

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
    // A search begins above the node, and may lead into the favourites of the process from anywhere in its tree.
    flowmere::CaptionIndex index(flowmere::topOf(node));
    loadChildren(element, node, index);
    return true;
}

void CFCFavouriteReader::loadChildren(xercesc::DOMElement* element, IFCNode* node, flowmere::CaptionIndex& index) {
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
            folder = appendNew(node, index);
        } else if (tag == u"CUSTOM_FOLDER") {
            folder = appendNew(node, index);
            if (folder) {
                folder->SetNodeType(eShapeType_CustomFolder);
            }
        } else if (tag == u"DOCUMENT") {
            loadDocument(child, node, index);
        }
        if (folder) {
            loadFolder(child, folder, index);
            loadChildren(child, folder, index);
        }
    }
}

void CFCFavouriteReader::loadFolder(xercesc::DOMElement* element, IFCNode* folder, flowmere::CaptionIndex& index) {
    if (typeid(*this) == typeid(CFCFavouriteReader)) {
        index.change(folder, [&] { LoadPropertiesLite(element, folder); });
    } else {
        // A host's own step may change anything.
        LoadPropertiesLite(element, folder);
    }
}

IFCNode* CFCFavouriteReader::appendNew(IFCNode* parent, flowmere::CaptionIndex& index) {
    IFCNode* const node = Create(eShapeType_Folder);
    if (node) {
        index.append(parent, node);
    }
    return node;
}

void CFCFavouriteReader::loadDocument(xercesc::DOMElement* element, IFCNode* node, flowmere::CaptionIndex& index) {
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
    if (IFCNode* const folder = index.find(folderName, node->GetParentNode())) {
        index.append(folder, made);
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
