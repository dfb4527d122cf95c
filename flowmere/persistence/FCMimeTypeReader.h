#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/FCReader.h"

// Reads "MimeTypes.xml": a plain list of content types.
class FLOWMERE_API CFCMimeTypeReader : public CFCReader {
public:
    CFCMimeTypeReader();
    CFCMimeTypeReader(CFCMimeTypeReader const& other);
    CFCMimeTypeReader& operator=(CFCMimeTypeReader const& other);
    ~CFCMimeTypeReader() override;

    // The process-wide list, made at first use of the common and the user's file, whose entries stand side by side.
    // It stays as it is from then on, also when nothing could be read. Not to be freed.
    static CFCMimeTypeNode* GetMimeTypeRoot();

    // Appends the entries of the file to the list, by the factory of the reader; a null path means the common file.
    // False for an empty path, a missing file, a null list or anything but well-formed XML.
    bool Parse(wchar_t const* path, CFCMimeTypeNode* list);
    // Appends the "MIMETYPE" children of the element. False for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, CFCMimeTypeNode* node);
    // "contentType" and "description".
    using CFCReader::LoadPropertiesLite;
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, CFCMimeTypeNode* node);
};
