#pragma once

#include "flowmere/Export.h"
#include "flowmere/persistence/FCWriter.h"

// Writes favourites: the two folders of a process that hold them, further folders, documents and processes. Other
// nodes are left out with all below them.
class FLOWMERE_API CFCFavouriteWriter : public CFCWriter {
public:
    CFCFavouriteWriter();
    CFCFavouriteWriter(CFCFavouriteWriter const& other);
    CFCFavouriteWriter& operator=(CFCFavouriteWriter const& other);
    ~CFCFavouriteWriter() override;

    // The node and all below it, also in a write that is not deep; but a plain folder (node type 71) goes without its
    // children, and so does "Last Opened" without the documents that are not opened. A null self makes the element
    // below parent. Nothing for a null node or without either element.
    void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent,
                     XERCES_CPP_NAMESPACE::DOMNode* self) override;
    // "Name", which is the caption; "Opened" and "Type" of a document.
    void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override;

private:
    int m_nElementDepth = 0;
};
