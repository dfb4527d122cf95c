#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/persistence/FCReader.h"

// Reads "APIHelp.xml": a tree of modules with help texts. Nothing writes such a file.
class FLOWMERE_API CFCAPIHelpReader : public CFCReader {
public:
    CFCAPIHelpReader();
    CFCAPIHelpReader(CFCAPIHelpReader const& other);
    CFCAPIHelpReader& operator=(CFCAPIHelpReader const& other);
    ~CFCAPIHelpReader() override;

    // Reads the file into the list, by the factory of the reader. The list becomes a module (node type 170) with the
    // name of the root, or "Processes", as caption. False for a null or empty path, a null list, or a file that is
    // missing or no well-formed XML; the last two print "Init failed" and leave the list alone.
    bool Parse(wchar_t const* path, CFCProcessList* list);
    // Appends the entries below the element to the node, at any depth. False for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // "Name" (caption, empty when absent) and "FILE" (file path, left alone when absent or empty).
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node) override;
};
