#include "flowmere/persistence/FCManifestWriter.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

namespace {

// An object holds one level more, its "MANIFEST_INFO", and the file must be read again.
constexpr int kMaxObjectDepth = flowmere::kMaxElementDepth - 1;

} // namespace

CFCManifestWriter::CFCManifestWriter() {
    m_strRootName = L"Manifest";
}

CFCManifestWriter::CFCManifestWriter(CFCManifestWriter const& other) = default;
CFCManifestWriter& CFCManifestWriter::operator=(CFCManifestWriter const& other) = default;
CFCManifestWriter::~CFCManifestWriter() = default;

void CFCManifestWriter::WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) {
    flowmere::WriteDepth const depth(m_nElementDepth);
    TuString type;
    if (!node || m_nElementDepth > kMaxObjectDepth || !GetObjectType(node, type)) {
        return;
    }
    xercesc::DOMNode* const element = self ? self : CreateElement(parent, type);
    if (!element) {
        return;
    }
    TuString name(node->GetNodeCaption());
    if (name.IsEmpty()) {
        name = L"Manifest";
    }
    flowmere::setText(element, u"Name", name.View());
    WriteProperties(node, element);
    WriteChildren(node, element);
}

void CFCManifestWriter::WriteProperties(IFCNode* node, xercesc::DOMNode* element) {
    xercesc::DOMNode* const info = node ? flowmere::appendElement(element, u"MANIFEST_INFO") : nullptr;
    auto* const package = dynamic_cast<CFCPackageNode*>(node);
    if (!info || !package) {
        return;
    }
    flowmere::setText(info, u"Version", package->version.View());
    flowmere::setText(info, u"Build", package->build.View());
    flowmere::setText(info, u"ReleaseDate", package->releaseDate.View());
    flowmere::setText(info, u"ReleaseNumber", package->releaseNumber.View());
    flowmere::setText(info, u"Path", package->path.View());
}
