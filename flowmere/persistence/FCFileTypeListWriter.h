#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseWriter.h"

class IFCNode;

// Writes file types, deleted ones included: a user's file hides a common type that way.
class FLOWMERE_API CFCFileTypeListWriter : public CTXMLBaseWriter {
public:
    CFCFileTypeListWriter();
    CFCFileTypeListWriter(CFCFileTypeListWriter const& other);
    CFCFileTypeListWriter& operator=(CFCFileTypeListWriter const& other);
    ~CFCFileTypeListWriter() override;

    // The children, oldest first.
    virtual void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The attributes of a file type (node type 83); nothing for other nodes.
    virtual void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // A group's children or a file type's attributes; a null `self` makes the element below `parent`. Nothing for a
    // null node, a type that has no element, or without either element.
    virtual void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent, XERCES_CPP_NAMESPACE::DOMNode* self);
    // Element name of the node's type; false, with `out` untouched, where it has none, and for a null node.
    virtual bool GetObjectType(IFCNode* node, TuString& out);

    // Writes the node as the root "FILETYPES". The file is truncated and written in place. False only for an empty
    // path, a null node or a parser library that does not come up. The deep flag is stored and not used.
    bool WriteFile(wchar_t const* path, IFCNode* node, bool deep);
    // Writes nothing; part of the interface of older hosts.
    void WritePropertiesRoot(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);

protected:
    TuString m_strFilePath;
    TuString m_strRootName;
    bool m_bDeep = false;

private:
    int m_nDepth = 0;
};
