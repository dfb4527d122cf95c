// CFCReader: reads a process document into a tree of nodes; base of every native reader.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/xml/TXMLBaseReader.h"

#include <vector>

class IFCNode;
class CFCBaseContainer;
class CFCBlockData;
class CFCConnector;
class CFCNodeFactory;
class CFCVariableData;
class CDoBaseObject;

// Something that a read passed over in silence, kept for a host that wants to tell its user.
struct CFCReadFinding {
    enum Kind : int {
        ConnectorWithoutBlock = 0, // first and second are the ids of start and end as the file has them
        FileNotRead = 1,           // first is the path of a link; second tells, with line and column where there are
                                   // any, why its file cannot be read, and is empty for a file that is missing
    };
    Kind kind = ConnectorWithoutBlock;
    IFCNode* node = nullptr; // the container of the connector, the node of the link; not owned
    TuString first;
    TuString second;
};

// Reads the process document family: one reader serves one Parse, on one thread. The catalog
// readers derive from it for the factory, the container and the two virtual steps.
class FLOWMERE_API CFCReader : public CTXMLBaseReader {
public:
    CFCReader();
    // Copies share factory, container and document.
    CFCReader(CFCReader const& other);
    CFCReader& operator=(CFCReader const& other);
    ~CFCReader() override;

    // Caption and file path of a folder-like element ("Name", else "BlockString"; "FILE"), each left alone when the
    // file has none. Nothing for a null node.
    virtual void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // The text of a "CODE" element goes to the node's code when it is not empty.
    virtual void LoadCode(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);

    // The factory that makes every node; not owned, needed before any Parse.
    void SetNodeFactory(CFCNodeFactory* factory);
    // Observer that is handed every node read, descendants first; not owned, may be null. It is handed connectors that
    // their list does not take, too: second ones between the same two blocks. Those are then in its hands alone;
    // without a container they go at once.
    void SetContainer(CFCBaseContainer* container);
    // Hands the node to the container; nothing without a container or a node.
    void Attach(IFCNode* node);

    // Reads the file into a new process node, which the caller owns, and stores it in *out. File
    // links are followed while their depth does not exceed maxDepth. False, with *out untouched,
    // for an empty path, a null out, no factory or a file that is no well-formed XML.
    bool Parse(wchar_t const* path, IFCNode** out, int maxDepth);
    // Reads the file's content into an existing node. Beyond the depth of Parse the node is only
    // marked as an unloaded link, which counts as success. The flag is ignored. False for a
    // missing or unreadable file.
    bool LoadFileNode(wchar_t const* path, IFCNode* node, bool flag);
    // Reads the children of the element into the node; the third argument is ignored. False only
    // where a "SCRIPT" meets block data outside a node: the rest of the element is then unread.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, IFCNode* ignored);
    // Attributes of an ordinary object element; nothing for a null node.
    void LoadProperties(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // Attributes of a process element; nothing for a node that is no process node.
    void LoadRootProperties(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // The variables below "PROCESS_VARIABLES" or "TEMPLATE_VARIABLES".
    void LoadVariables(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, bool isTemplate);
    // One variable element, into a new variable of the node's block data.
    void LoadVariable(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, bool isTemplate);
    // The "OPTION" children of a template variable; one of them.
    void LoadVariableOptions(XERCES_CPP_NAMESPACE::DOMElement* element, CFCVariableData* variable);
    void LoadVariableOption(XERCES_CPP_NAMESPACE::DOMElement* element, CFCVariableData* variable);
    // Routing points of a connector; node and version are not used. True.
    bool LoadPoints(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, CFCConnector* connector, int version);
    // The old form: the ends are hit-tested for their grips and no point is kept. False for a null connector.
    bool LoadPointsOld(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, CFCConnector* connector);
    // Hit-tests the point on the block at that end and stores the grip found, -1 for a miss; nothing
    // for a null point, a missing block or a result of 0.
    void SetConnectorNode(CFCConnector* connector, _TgPointLStr* point, bool isStart);
    // True when the element's "FILE" attribute is not empty.
    bool IsFile(XERCES_CPP_NAMESPACE::DOMElement* element);
    // What this reader passed over since its last Parse began.
    std::vector<CFCReadFinding> const& GetReadFindings() const { return m_findings; }
    // Object lookups of older hosts: null through the last argument, false.
    bool FindObject(IFCNode* node, TuString& name, TuString& type, int& index, CDoBaseObject** out);
    bool FindObject(IFCNode* node, TuString& name, CDoBaseObject** out);
    // Without effect; part of the interface of older hosts.
    void Format(IFCNode* node);
    void ClearFormating();
    void ParseFileData();

protected:
    // A new node of that type through the factory; null without a factory.
    IFCNode* Create(int type);
    // Old coordinates hold for files whose path ends in "fmr".
    void CheckDataFile(wchar_t const* path);

    CFCNodeFactory* m_pNodeFactory = nullptr;
    CFCBaseContainer* m_pContainer = nullptr;

private:
    // One function for each element form. Where an object was made whose own children are to be read next, it is
    // `inner`, or the result.
    bool loadChild(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, IFCNode*& inner);
    void loadLibraryLink(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    void loadLink(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    IFCNode* loadNestedProcess(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    IFCNode* loadFolder(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    IFCNode* loadCodeNode(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    IFCNode* loadObject(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, int type);
    void loadDimension(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    void loadConnector(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    CFCConnector* createConnector();
    IFCNode* appendNew(int type, IFCNode* parent);
    TuString resolveLink(wchar_t const* path, IFCNode* node);
    void followLink(wchar_t const* path, IFCNode* node);

    XERCES_CPP_NAMESPACE::DOMDocument* m_pLinkedDocument = nullptr; // of the innermost link being read
    int m_nCurrentDepth = 0;
    int m_nMaxDepth = 0;
    bool m_bOldCoordinates = false; // of the last file opened, and so not restored behind a link
    // Bounds on files that link to themselves.
    int m_nOpenLinks = 0;
    int m_nLinksFollowed = 0;
    int m_nElementDepth = 0;
    std::vector<CFCReadFinding> m_findings;
};
