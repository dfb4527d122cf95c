// CFCGPDReader: reads the drawing of one workflow level into its nodes.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/xml/TXMLBaseReader.h"

class IFCNode;
class CFCBaseContainer;

// Reads gpd.xml into a tree that is there already, made of the process definition next to it. Nodes are matched by
// their identifiers, level by level and without regard to case; what the tree does not know is skipped with all that
// lies below it. Elements that only the engine's graphical editor uses are passed over, and attributes that are absent
// leave alone what the node has.
class FLOWMERE_API CFCGPDReader : public CTXMLBaseReader {
public:
    CFCGPDReader();
    // Copies share container and document.
    CFCGPDReader(CFCGPDReader const& other);
    CFCGPDReader& operator=(CFCGPDReader const& other);
    ~CFCGPDReader() override;

    // Reads the file into the node, the root of the level: "name" replaces its caption and "Icon" its icon, then Load
    // does the rest. The flags are ignored. False for an empty path, a null node and a file that is no well-formed XML.
    bool Parse(wchar_t const* path, IFCNode* node, int flags);
    // Reads what stands below the element into the node and into those below it. False for a null element or node.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);

    // Observer that is handed each node for which the file has a font; not owned, may be null.
    void SetContainer(CFCBaseContainer* container);
    // Hands the node to the container; nothing without a container or a node.
    void Attach(IFCNode* node);

protected:
    CFCBaseContainer* m_pContainer = nullptr;

private:
    // The child of the node that the element names, with its attributes set; null when there is none.
    IFCNode* loadNode(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    void loadFont(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
};
