#pragma once

#include "flowmere/Export.h"
#include "flowmere/persistence/FCReader.h"

namespace flowmere {
class CaptionIndex;
}

// Reads the favourites of a user: folders of documents, and the documents opened last.
class FLOWMERE_API CFCFavouriteReader : public CFCReader {
public:
    CFCFavouriteReader();
    CFCFavouriteReader(CFCFavouriteReader const& other);
    CFCFavouriteReader& operator=(CFCFavouriteReader const& other);
    ~CFCFavouriteReader() override;

    // Reads the file into *node, by the factory of the reader. The favourites and the history of the process at the
    // root of *node are filled and never made; without such a process they are passed over. False for a null or empty
    // path, a null node or *node, or a file that is missing or no well-formed XML, for which "Init failed" is printed.
    bool Parse(wchar_t const* path, IFCNode** node);
    // Reads the children of one element. A document that is not opened is ignored. Another goes into the folder below
    // the node's parent, the parent included, that has the caption of the element; where there is none it is nobody's
    // and can be reached by its handle alone. False for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // "Name" as caption and id, empty when absent.
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node) override;

private:
    void loadChildren(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, flowmere::CaptionIndex& index);
    void loadFolder(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* folder, flowmere::CaptionIndex& index);
    void loadDocument(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, flowmere::CaptionIndex& index);
    IFCNode* appendNew(IFCNode* parent, flowmere::CaptionIndex& index);
};
