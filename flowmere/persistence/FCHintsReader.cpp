#include "flowmere/persistence/FCHintsReader.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

namespace {

enum { kBlock, kAction };
constexpr flowmere::AttributeTable kAttributes{u"Block", u"Action"};

} // namespace

CFCHintsReader::CFCHintsReader() = default;
CFCHintsReader::CFCHintsReader(CFCHintsReader const& other) = default;
CFCHintsReader& CFCHintsReader::operator=(CFCHintsReader const& other) = default;
CFCHintsReader::~CFCHintsReader() = default;

// Made at first use, so that initialisers of a host may already fill them.
std::map<int, TuString>& CFCHintsReader::BlockHints() {
    static flowmere::Immortal<std::map<int, TuString>> hints;
    return *hints;
}

std::map<int, TuString>& CFCHintsReader::ActionHints() {
    static flowmere::Immortal<std::map<int, TuString>> hints;
    return *hints;
}

bool CFCHintsReader::Parse(wchar_t const* path) {
    TuString const file(path);
    if (file.IsEmpty() || !CFCEnvironment::IsFileExist(file) || !Initialize(file)) {
        return false;
    }
    Load(m_pDocument->getDocumentElement());
    return true;
}

bool CFCHintsReader::Load(xercesc::DOMElement* element) {
    if (!element) {
        return false;
    }
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        TuString tag;
        TXMLDOMStringToCStringNew(child->getTagName(), tag);
        LoadPropertiesLite(child, CFCNodeHelper::GetNodeTypeFromName(tag));
    }
    return true;
}

void CFCHintsReader::LoadPropertiesLite(xercesc::DOMElement* element, int type) {
    if (!element || type == 0) {
        return;
    }
    flowmere::AttributeRow const attributes(element, kAttributes);
    TuString block;
    TuString action;
    attributes.text(kBlock, block);
    attributes.text(kAction, action);
    BlockHints().emplace(type, block);
    ActionHints().emplace(type, action);
}
