#include "flowmere/persistence/FCAPIHelpReader.h"

#include "flowmere/model/FCEnumerations.h"
#include "flowmere/persistence/InitFailure.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>

namespace {

enum { kName, kFile };
constexpr flowmere::AttributeTable kAttributes{u"Name", u"FILE"};

struct EntryForm {
    std::u16string_view tag;
    eShapeType nodeType;
};
constexpr EntryForm kEntries[] = {
    {u"PROCESS", eShapeType_FileNode},
    {u"MODULE", eShapeType_HelpModule},
    {u"SUB_MODULE", eShapeType_APIHelp},
};

EntryForm const* entryForm(std::u16string_view tag) {
    for (EntryForm const& form : kEntries) {
        if (form.tag == tag) {
            return &form;
        }
    }
    return nullptr;
}

} // namespace

CFCAPIHelpReader::CFCAPIHelpReader() = default;
CFCAPIHelpReader::CFCAPIHelpReader(CFCAPIHelpReader const& other) = default;
CFCAPIHelpReader& CFCAPIHelpReader::operator=(CFCAPIHelpReader const& other) = default;
CFCAPIHelpReader::~CFCAPIHelpReader() = default;

bool CFCAPIHelpReader::Parse(wchar_t const* path, CFCProcessList* list) {
    TuString const file(path);
    if (file.IsEmpty() || !list) {
        return false;
    }
    if (!Initialize(file)) {
        flowmere::tellInitFailed();
        return false;
    }
    xercesc::DOMElement* const root = m_pDocument->getDocumentElement();
    TuString name;
    GetAttribute(root, L"Name", name);
    list->SetNodeType(eShapeType_HelpModule);
    list->SetNodeCaption(name.IsEmpty() ? L"Processes" : static_cast<wchar_t const*>(name));
    Load(root, list);
    return true;
}

bool CFCAPIHelpReader::Load(xercesc::DOMElement* element, IFCNode* node) {
    if (!element || !node) {
        return false;
    }
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        EntryForm const* const form = entryForm(flowmere::tagOf(child));
        IFCNode* const entry = form ? Create(form->nodeType) : nullptr;
        if (!entry) {
            continue;
        }
        node->AppendChild(entry, false);
        LoadPropertiesLite(child, entry);
        if (form->nodeType == eShapeType_APIHelp) {
            LoadCode(child, entry);
        }
        Load(child, entry);
    }
    return true;
}

void CFCAPIHelpReader::LoadPropertiesLite(xercesc::DOMElement* element, IFCNode* node) {
    if (!element || !node) {
        return;
    }
    flowmere::AttributeRow const attributes(element, kAttributes);
    TuString name;
    TuString file;
    attributes.text(kName, name);
    attributes.text(kFile, file);
    node->SetNodeCaption(name);
    if (!file.IsEmpty()) {
        node->SetItemFilePath(file);
    }
}
