#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/FCReader.h"

// Reads "DataTypes.xml": the types that a variable can have, in groups, with the code that moves their values.
class FLOWMERE_API CFCDataTypeListReader : public CFCReader {
public:
    CFCDataTypeListReader();
    CFCDataTypeListReader(CFCDataTypeListReader const& other);
    CFCDataTypeListReader& operator=(CFCDataTypeListReader const& other);
    ~CFCDataTypeListReader() override;

    // The root of the process-wide catalog: the last top-level element of CFCEnvironment::GetDataTypeFilePath, read at
    // first use and kept. Null while there is nothing to read; the next call then tries again. Not to be freed.
    static CFCDataTypeNode* GetDataTypeRootNode();
    // Frees the nodes of the catalog and reads it again. Nobody may hold a node of it.
    static void RefreshDataTypes();

    // Reads the file into the given node, by the factory of the reader. False for a null or empty path, a missing
    // file, a null list or anything but well-formed XML.
    bool Parse(wchar_t const* path, CFCDataTypeNode* list);
    // Appends the entries below the element to the node, at any depth. False for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, CFCDataTypeNode* node);
    // "Name" (caption and id), "Type" and "Scope". The type "CAEFILE" makes the node a group that holds the common
    // and the user's file types.
    using CFCReader::LoadPropertiesLite;
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, CFCDataTypeNode* node);
};
