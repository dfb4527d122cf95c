#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseReader.h"

#include <unordered_map>

class IFCNode;
class CFCDataTypeNode;
class CFCVariableData;

// Reads "process.var" into a tree of workflow nodes that stands already: variables, arguments and deployments are added
// to the nodes that the file names, and names without a node are passed over with all that they hold.
//
// Null elements and nodes are passed over.
class FLOWMERE_API CFCProcessVarReader : public CTXMLBaseReader {
public:
    CFCProcessVarReader();
    // Copies share the document.
    CFCProcessVarReader(CFCProcessVarReader const& other);
    CFCProcessVarReader& operator=(CFCProcessVarReader const& other);
    ~CFCProcessVarReader() override;

    // Reads the file into the node and those below it, and then turns the scoped variables of that tree into links. The
    // flags are ignored. False for an empty path, a null node and a file that is no well-formed XML.
    bool Parse(wchar_t const* path, IFCNode* node, int flags);
    // Reads the children of the element into the node and those below it. The variables of a root are passed over.
    // False only for a null argument.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // One "VARIABLE" into a new variable of the node's block data; nothing without block data. What the element leaves
    // out is as in a new variable.
    void LoadVariable(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, bool isTemplate);
    // The "VARIABLE" children of the element: of a deployment, or of a block.
    void LoadVariables(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, bool isTemplate, bool forDeployment);
    // One "ARGUMENT" into a new argument of an application; nothing for any other node.
    void LoadArgument(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // The "DEPLOYMENT" children of the element into new deployments of an application; nothing for any other node.
    void LoadDeployments(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // Name, value and identifier of one variable of a deployment, which is made when there is none of that name.
    void LoadDeploymentVariable(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);

    // Data type of that name in the catalog: by type, else by caption, without regard to case. Null for a miss, without
    // a catalog, and for a file type, which is no data type. The catalog owns it. Answers are kept until the next
    // Parse; the catalog must not be refreshed in between.
    CFCDataTypeNode* GetDataTypeNode(wchar_t const* name);

private:
    // Sets up the data type node of the variable; an old name of a type is replaced.
    void bindDataType(CFCVariableData* variable, TuString& typeName);
    IFCNode* findCatalogEntry(TuString const& name);
    void forgetCatalog();

    CFCDataTypeNode* m_pCatalogRoot = nullptr; // not owned
    bool m_bCatalogAsked = false;
    std::unordered_map<TuString, IFCNode*> m_catalogEntries; // null for names that are not in the catalog
};
