#pragma once

#include "flowmere/Export.h"
#include "flowmere/persistence/FCWriter.h"

// Writes a package as a manifest, root "Manifest", with the packages below it.
class FLOWMERE_API CFCManifestWriter : public CFCWriter {
public:
    CFCManifestWriter();
    CFCManifestWriter(CFCManifestWriter const& other);
    CFCManifestWriter& operator=(CFCManifestWriter const& other);
    ~CFCManifestWriter() override;

    // The node and all below it, also in a write that is not deep: "Name", which is the caption or "Manifest", the
    // properties, the children. A null self makes the element below parent. Nothing for a null node, a type that has
    // no element, or without either element.
    void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent,
                     XERCES_CPP_NAMESPACE::DOMNode* self) override;
    // A "MANIFEST_INFO" with the texts of a package; an empty one for other nodes.
    void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override;

private:
    int m_nElementDepth = 0;
};
