// CFCGPDWriter: writes the drawing of one workflow level.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseWriter.h"

class IFCNode;

// Writes gpd.xml, which lies next to the process definition and says where each of its nodes stands, how it is framed
// and labelled, and what boxes surround it. Coordinates are those of the blocks' rectangles, as they are.
//
// The walk goes through the virtual steps below at every level, so an override takes effect for the whole file.
class FLOWMERE_API CFCGPDWriter : public CTXMLBaseWriter {
public:
    CFCGPDWriter();
    CFCGPDWriter(CFCGPDWriter const& other);
    CFCGPDWriter& operator=(CFCGPDWriter const& other);
    ~CFCGPDWriter() override;

    // The children, oldest first. Nothing for a sub-process block that is not the root of this file: what is inside it
    // has a file of its own.
    virtual void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Attributes, frame, font and boxes of a node; of a process and of the root of this file the root's attributes
    // alone. A node without an identifier has only its empty name.
    virtual void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The node and, for processes, super states and sub-processes, what lies below it. A null `own` creates the element
    // below `parent`. Nothing for a null node and for kinds without an element.
    virtual void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent, XERCES_CPP_NAMESPACE::DOMNode* own);
    // Element name of the node's kind; false, with `name` untouched, where the kind has none, and for a null node.
    virtual bool GetObjectType(IFCNode* node, TuString& name);

    // Writes the drawing of the node and of what belongs into the same file; the path is truncated and written in
    // place. The flag is kept and changes nothing: children follow by the kinds of the nodes. The file is complete in
    // itself, no other file is written. Nodes may take an empty font name as an order for "Arial" and keep that.
    // False only for an empty path, a null node or a parser library that does not come up: true does not tell that the
    // bytes reached the disk.
    bool WriteFile(wchar_t const* path, IFCNode* node, bool recursive);
    // "name" (the caption, "root-container" without one) and "Icon" (empty without workflow data).
    void WritePropertiesRoot(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Pretty-prints a file into the path with each ".xml" turned into ".for"; a file that cannot be read is left alone.
    static void LoadAndFormatXML(wchar_t const* path);

protected:
    // Name of the node's kind as the engine's editor has it; empty for kinds without one.
    void GetNodeTypeString(IFCNode* node, TuString& name);

    TuString m_strFilePath;
    TuString m_strRootName;
    bool m_bRecursive = false;
    IFCNode* m_pRootNode = nullptr; // root of this file; not owned

private:
    int m_nDepth = 0;
};
