#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/xml/TXMLBaseWriter.h"

// Writes a tree of data types. Groups lose their code and nothing keeps its scope: the file never held them.
class FLOWMERE_API CFCDataTypeListWriter : public CTXMLBaseWriter {
public:
    CFCDataTypeListWriter();
    CFCDataTypeListWriter(CFCDataTypeListWriter const& other);
    CFCDataTypeListWriter& operator=(CFCDataTypeListWriter const& other);
    ~CFCDataTypeListWriter() override;

    // The node and all below it; a null `self` makes the element below `parent`. Nothing for a null node, a type that
    // has no element, or without either element.
    virtual void WriteObject(CFCDataTypeNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent,
                             XERCES_CPP_NAMESPACE::DOMNode* self);
    // The child entries, oldest first; children that are no data types are passed over.
    virtual void WriteChildren(CFCDataTypeNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    virtual void WriteProperties(CFCDataTypeNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);

    // Writes the node as the root "DataTypes". The file is truncated and written in place. False only for an empty
    // path, a null node or a parser library that does not come up. The deep flag is stored and not used.
    bool WriteFile(wchar_t const* path, CFCDataTypeNode* node, bool deep);
    // Element name of the node's type; false, with `out` untouched, where it has none, and for a null node.
    bool GetObjectType(CFCDataTypeNode* node, TuString& out);
    // For each script language "LANGUAGE", "SETCODE" and "GETCODE" side by side; nothing without a code record.
    void WriteLanguageTag(CFCDataTypeNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // "Name", the text "Name" for an empty caption, and "Type" when not empty.
    void WritePropertiesRoot(CFCDataTypeNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Without lasting effect; part of the interface of older hosts.
    void TrimCode(NodeCode* code);

protected:
    TuString m_strFilePath;
    TuString m_strRootName;
    bool m_bDeep = false;

private:
    int m_nDepth = 0;
};
