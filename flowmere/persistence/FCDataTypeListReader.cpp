#include "flowmere/persistence/FCDataTypeListReader.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <utility>
#include <vector>

namespace {

enum { kName, kType, kScope };
constexpr flowmere::AttributeTable kAttributes{u"Name", u"Type", u"Scope"};

struct EntryForm {
    std::u16string_view tag;
    eShapeType nodeType;
    bool isGroup;
};
constexpr EntryForm kEntries[] = {
    {u"DATATYPE", eShapeType_DataType, false},
    {u"GROUP", eShapeType_DataTypeGroup, true},
    {u"SUB_GROUP", eShapeType_DataTypeSubGroup, true},
};

// The numbers of the languages in a catalog. They are not those of the script type names.
struct LanguageForm {
    std::u16string_view lower;
    int language;
};
constexpr LanguageForm kLanguages[] = {{u"js", 6}, {u"jython", 7}, {u"python", 0}};

// The catalog and the node above its root, which is never handed out.
CFCDataTypeNode* catalogRoot = nullptr;
CFCDataTypeNode* catalogList = nullptr;

EntryForm const* entryForm(std::u16string_view tag) {
    for (EntryForm const& form : kEntries) {
        if (form.tag == tag) {
            return &form;
        }
    }
    return nullptr;
}

} // namespace

CFCDataTypeListReader::CFCDataTypeListReader() = default;
CFCDataTypeListReader::CFCDataTypeListReader(CFCDataTypeListReader const& other) = default;
CFCDataTypeListReader& CFCDataTypeListReader::operator=(CFCDataTypeListReader const& other) = default;
CFCDataTypeListReader::~CFCDataTypeListReader() = default;

CFCDataTypeNode* CFCDataTypeListReader::GetDataTypeRootNode() {
    if (catalogRoot) {
        return catalogRoot;
    }
    // Nothing is made while there is nothing to read: each call would leave a node behind.
    TuString const path(CFCEnvironment::GetDataTypeFilePath());
    CFCNodeFactory factory;
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    if (path.IsEmpty() || !CFCEnvironment::IsFileExist(path) || !reader.Initialize(path)) {
        return nullptr;
    }
    auto* const list = dynamic_cast<CFCDataTypeNode*>(factory.Create(eShapeType_DataTypeGroup));
    if (!list) {
        return nullptr;
    }
    reader.Load(reader.m_pDocument->getDocumentElement(), list);
    // The first child is the last element of the file, since new children stand in front.
    catalogRoot = dynamic_cast<CFCDataTypeNode*>(list->GetChild());
    if (catalogRoot) {
        catalogList = list;
    } else {
        CFCNodeHelper::DestroyTree(list);
    }
    return catalogRoot;
}

void CFCDataTypeListReader::RefreshDataTypes() {
    if (catalogRoot) {
        // Delete takes the first child along at each level; nobody would find the others any more.
        std::vector<IFCNode*> left;
        for (IFCNode* node = catalogRoot; node; node = node->GetChild()) {
            std::vector<IFCNode*> const children = flowmere::childrenInFileOrder(node);
            left.insert(left.end(), children.begin(), children.empty() ? children.end() : children.end() - 1);
        }
        std::exchange(catalogRoot, nullptr)->Delete();
        for (IFCNode* const node : left) {
            CFCNodeHelper::DestroyTree(node);
        }
        CFCNodeHelper::DestroyTree(std::exchange(catalogList, nullptr));
    }
    GetDataTypeRootNode();
}

bool CFCDataTypeListReader::Parse(wchar_t const* path, CFCDataTypeNode* list) {
    CFCEnumTranslator::SetArrays();
    TuString const file(path);
    if (file.IsEmpty() || !list || !CFCEnvironment::IsFileExist(file) || !Initialize(file)) {
        return false;
    }
    Load(m_pDocument->getDocumentElement(), list);
    return true;
}

bool CFCDataTypeListReader::Load(xercesc::DOMElement* element, CFCDataTypeNode* node) {
    if (!element || !node) {
        return false;
    }
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        std::u16string_view const tag = flowmere::tagOf(child);
        if (EntryForm const* const form = entryForm(tag)) {
            IFCNode* const made = Create(form->nodeType);
            if (!made) {
                continue;
            }
            node->AppendChild(made, false);
            if (form->isGroup) {
                made->SetNodeType(form->nodeType);
            }
            if (auto* const entry = dynamic_cast<CFCDataTypeNode*>(made)) {
                LoadPropertiesLite(child, entry);
                Load(child, entry);
            }
        } else if (tag == u"LANGUAGE") {
            // The code stands inside the element or behind it, so the language stays with the node.
            std::u16string_view const type = flowmere::xmlView(flowmere::attributeOf(child, u"Type"));
            for (LanguageForm const& word : kLanguages) {
                if (flowmere::equalsNoCase(type, word.lower)) {
                    node->SetLanguage(word.language);
                }
            }
            Load(child, node);
        } else if (tag == u"SETCODE" || tag == u"GETCODE") {
            TuString code;
            GetCDataNodeValue(child, code);
            node->SetCodeNode(node->GetLanguage(), code, tag == u"GETCODE");
        }
    }
    return true;
}

void CFCDataTypeListReader::LoadPropertiesLite(xercesc::DOMElement* element, CFCDataTypeNode* node) {
    if (!element || !node) {
        return;
    }
    flowmere::AttributeRow const attributes(element, kAttributes);
    TuString name;
    TuString type;
    TuString scope;
    attributes.text(kName, name);
    attributes.text(kType, type);
    attributes.text(kScope, scope);
    node->SetNodeCaption(name);
    node->SetNodeId(name);
    node->SetType(type);
    node->SetScope(scope);
    if (type == L"CAEFILE") {
        node->SetNodeType(eShapeType_DataTypeGroup);
        CFCFileTypeListReader reader;
        reader.SetNodeFactory(m_pNodeFactory);
        reader.Parse(nullptr, node);
        reader.Parse(CFCEnvironment::GetUserFileTypesPath(), node);
    }
}
