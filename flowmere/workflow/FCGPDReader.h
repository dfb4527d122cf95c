// CFCGPDReader: reads the drawing of one workflow level into its nodes.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseReader.h"

#include <vector>

class IFCNode;
class CFCBaseContainer;

// Something in a drawing that did not come into the tree, kept for a host that wants to tell its user.
struct CFCLayoutFinding {
    enum Kind : int {
        NodeUnknown = 0,       // a node that the tree does not have, with all below it; name is its own
        ElementPassedOver = 1, // an element without a place in the tree, with all below it; name is its tag
    };
    Kind kind = NodeUnknown;
    IFCNode* node = nullptr; // the one that the element stands below; not owned
    TuString name;
    TuString element; // tag of the element
};

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

    // What this reader passed over since its last Parse began. The boxes around a node and edges without a course of
    // their own are drawn anew, and no loss; a label away from its edge's origin and the bends of an edge are one.
    std::vector<CFCLayoutFinding> const& GetLayoutFindings() const { return m_findings; }

protected:
    CFCBaseContainer* m_pContainer = nullptr;

private:
    // The child of the node that the element names, with its attributes set; null when there is none.
    IFCNode* loadNode(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    void loadFont(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    void passOver(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);

    std::vector<CFCLayoutFinding> m_findings;
};
