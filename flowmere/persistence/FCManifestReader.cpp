#include "flowmere/persistence/FCManifestReader.h"

#include "flowmere/persistence/InitFailure.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

namespace {

enum { kVersion, kBuild, kReleaseDate, kReleaseNumber, kPath };
constexpr flowmere::AttributeTable kAttributes{u"Version", u"Build", u"ReleaseDate", u"ReleaseNumber", u"Path"};

} // namespace

CFCManifestReader::CFCManifestReader() = default;
CFCManifestReader::CFCManifestReader(CFCManifestReader const& other) = default;
CFCManifestReader& CFCManifestReader::operator=(CFCManifestReader const& other) = default;
CFCManifestReader::~CFCManifestReader() = default;

bool CFCManifestReader::Parse(wchar_t const* path, CFCPackageNode** out) {
    TuString const file(path);
    if (file.IsEmpty() || !out) {
        return false;
    }
    if (!Initialize(file)) {
        flowmere::tellInitFailed();
        return false;
    }
    Load(m_pDocument->getDocumentElement(), out);
    return true;
}

bool CFCManifestReader::Load(xercesc::DOMElement* element, CFCPackageNode** out) {
    if (!element || !out) {
        return false;
    }
    for (auto* child = flowmere::firstElement(element); child; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) != u"MANIFEST_INFO") {
            continue;
        }
        IFCNode* const made = Create(eShapeType_Package);
        auto* package = dynamic_cast<CFCPackageNode*>(made);
        if (!package) {
            delete made;
            continue;
        }
        package->SetNodeCaption(L"Manifest");
        m_pPackage = package;
        *out = package;
        LoadPropertiesLite(child, package);
        // What is inside goes no further than this level.
        Load(child, &package);
    }
    return true;
}

void CFCManifestReader::LoadPropertiesLite(xercesc::DOMElement* element, CFCPackageNode* node) {
    if (!element || !node) {
        return;
    }
    flowmere::AttributeRow const attributes(element, kAttributes);
    node->version = flowmere::WideText(attributes.view(kVersion));
    node->build = flowmere::WideText(attributes.view(kBuild));
    node->releaseDate = flowmere::WideText(attributes.view(kReleaseDate));
    node->releaseNumber = flowmere::WideText(attributes.view(kReleaseNumber));
    node->path = flowmere::WideText(attributes.view(kPath));
}
