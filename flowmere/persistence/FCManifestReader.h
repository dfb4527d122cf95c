#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/FCReader.h"

// Reads a manifest: what a package says of itself.
class FLOWMERE_API CFCManifestReader : public CFCReader {
public:
    CFCManifestReader();
    // Copies share the package at hand.
    CFCManifestReader(CFCManifestReader const& other);
    CFCManifestReader& operator=(CFCManifestReader const& other);
    ~CFCManifestReader() override;

    // Makes the package by the factory of the reader and stores it in *out; the caller owns it. A file without
    // "MANIFEST_INFO" leaves *out untouched and gives true. With several the last one is stored; the others, and those
    // inside another, are nobody's and can be reached by their handles alone. False for a null or empty path, a null
    // out, or a file that is missing or no well-formed XML, for which "Init failed" is printed.
    bool Parse(wchar_t const* path, CFCPackageNode** out);
    // The same for the children of one element. False for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, CFCPackageNode** out);
    // The five texts of a "MANIFEST_INFO", as they stand; absent ones become empty.
    using CFCReader::LoadPropertiesLite;
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, CFCPackageNode* node);

protected:
    CFCPackageNode* m_pPackage = nullptr; // the package made last, null before; not owned
};
