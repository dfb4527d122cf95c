#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/FCReader.h"

// Reads "FileTypes.xml": the kinds of file that a file variable can hold. A second file lays its entries over those of
// the first, by name.
class FLOWMERE_API CFCFileTypeListReader : public CFCReader {
public:
    CFCFileTypeListReader();
    CFCFileTypeListReader(CFCFileTypeListReader const& other);
    CFCFileTypeListReader& operator=(CFCFileTypeListReader const& other);
    ~CFCFileTypeListReader() override;

    // Reads the file into the list, by the factory of the reader; a null path means the common file types. False for
    // an empty path, a missing file, a null list or anything but well-formed XML.
    bool Parse(wchar_t const* path, CFCDataTypeNode* list);
    // Merges the "FILETYPE" children of the element into the node. False for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, CFCDataTypeNode* root);
    // The attributes of a "FILETYPE"; those that are absent reset their field.
    using CFCReader::LoadPropertiesLite;
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, CFCFileTypeNode* node);

protected:
    CFCDataTypeNode* m_pList = nullptr; // the list being filled, null until Parse; not owned
};
