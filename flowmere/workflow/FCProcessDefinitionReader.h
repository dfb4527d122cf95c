// CFCProcessDefinitionReader: rebuilds a tree of workflow nodes from a workflow folder.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseReader.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

class CFCBaseContainer;
class CFCConnector;
class CFCNodeFactory;
class CFCTransitionData;
class IFCNode;
struct CFCLayoutFinding;

namespace flowmere {
class WorkflowFileChain;
}

// Something in a workflow folder that did not come into the tree, or not as the file has it: kept for a host that wants
// to tell its user.
struct CFCWorkflowFinding {
    enum Kind : int {
        ElementPassedOver = 0, // an element without a reading where it stands, with all that it holds; name is its own
        AttributePassedOver = 1, // an attribute without a reading: name, value
        TextPassedOver = 2,      // the text of an element that has no use for one: value
        ValueNotRead = 3,        // a text that is not of its form, and so counts as none: name (of an attribute), value
        NodeNotMade = 4,         // the factory makes no node for the element: what comes behind it there is unread
        NodeWithoutName = 5,     // a node element or a task without a name
        NodeWithoutKind = 6,     // a kind that nobody knows: value
        TooManyPoints = 7,       // points of a route beyond the last that it has room for: their number is value
        TransitionWithoutTarget = 8, // no sibling has the name: value; name is the transition's own
        TransitionRepeated = 9, // one to the same block, value, is there already: the list takes no other connector
        TransitionsUnconnected = 10, // a group behind a sub-process: the transitions below it have no connectors
        NestedFolderMissing = 11,    // a sub-process without a definition of its own
        NestedFileBroken = 12,       // one whose definition cannot be read: error, line, column
        FolderCycle = 13,            // one whose definition is being read already
        NestingTooDeep = 14,         // one, or an element, beyond the bounds on depth and number
        VariablesMissing = 15,       // no file of variables
        VariablesBroken = 16,        // one that cannot be read: error, line, column
        LayoutMissing = 17,          // no file of the layout
        LayoutBroken = 18,           // one that cannot be read: error, line, column
        ElementLost = 19,            // a sub-process without variables: what its element holds does not reach its block
        RouteCut = 21,               // a point at x 0 ends a route: the number of points from there on is value
        ConnectorNotMade = 20,       // the factory makes no connector for a transition: value is its target
        LayoutNodeUnknown = 22,      // a node of the layout that the tree does not have: its name
        LayoutElementPassedOver = 23, // an element of the layout without a place in the tree, with all that it holds
    };
    Kind kind = ElementPassedOver;
    TuString file;           // path of the file that has it, or that is missing or broken, as it was to be opened
    TuString place;          // path of the node that it concerns, identifiers joined by points; empty for a process
    IFCNode* node = nullptr; // that node; not owned, null when there is none (any more)
    TuString element;        // tag of the element that it concerns; empty when a file as a whole is meant
    TuString name;
    TuString value;
    TuString error; // what the parser said, and where; 0 where no place is known
    int line = 0;
    int column = 0;
};

// Reads a workflow folder: the definition for the graph, its neighbours for variables and layout, and the folders of
// sub-processes below it. Stored transitions become connectors at the end. One reader reads one file, on one thread.
//
// Elements and attributes that are not known are passed over, whatever namespace the file is in.
class FLOWMERE_API CFCProcessDefinitionReader : public CTXMLBaseReader {
public:
    CFCProcessDefinitionReader();
    // Copies share factory, container and document.
    CFCProcessDefinitionReader(CFCProcessDefinitionReader const& other);
    CFCProcessDefinitionReader& operator=(CFCProcessDefinitionReader const& other);
    ~CFCProcessDefinitionReader() override;

    // The factory that makes every node; not owned. Without it nothing is read.
    void SetNodeFactory(CFCNodeFactory* factory);
    // Observer that is handed each connector and each block with a layout; not owned, may be null. Connectors that
    // their list does not take (second ones between the same blocks) are then in its hands alone; without a container
    // they go at once.
    void SetContainer(CFCBaseContainer* container);
    // A new node of that kind through the factory; null without a factory. The caller owns it.
    IFCNode* Create(int kind);
    // Hands the node to the container; nothing without a container or a node.
    void Attach(IFCNode* node);

    // Reads the folder of a path that holds "processdefinition.xml". *node must be set beforehand: null for a new
    // process node, which the caller then owns, or the node of a tree with a process at its root, into which the
    // folder is read. The flags play no part.
    //
    // False, with *node untouched, for an empty path, one without that name, a null `node`, no factory and a file that
    // is no well-formed XML. False too without a file "process.var": *node is then a new process node, whatever stood
    // there before, which the caller owns, and the layout is not read. The tree built so far stays.
    bool Parse(wchar_t const* path, IFCNode** node, int flags);
    // Reads a folder into a node that links to it. The path is taken as it is when the factory knows a file there, else
    // it is the macro file of the factory (location type 1) or the full path of the environment. False for a file that
    // is missing or no well-formed XML, for a null node and without a factory.
    bool LoadFileNode(wchar_t const* path, IFCNode* node);

    // Reads the children of the element into the node. False for a null argument, for a node without a process at its
    // root, and where the factory makes no node: the rest of the element is then unread.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // Icon of a workflow node, and what applications have besides; nothing for a node without workflow data.
    void LoadCommonAttributes(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node);
    // The route of a transition; points beyond its room are passed over. True.
    bool LoadPoints(XERCES_CPP_NAMESPACE::DOMElement* element, CFCTransitionData* transition);
    // The node kind of a "nodeType"; 57 for any other text.
    int GetNodeTypeFromName(wchar_t const* name);

    // Sets the script paths of a block below the folder that is being read.
    void Update(IFCNode* node);
    // Makes the connectors of the node's children. A transition without target has a connector without ends.
    void UpdateConnector(IFCNode* node);
    // The same for the node and the groups below it, up to the first sub-process among the children of each.
    void UpdateConnectors(IFCNode* node);

    // What the last Parse or LoadFileNode passed over, nested folders included. A top file that cannot be read is no
    // finding: GetErrorText and its neighbours tell of it.
    std::vector<CFCWorkflowFinding> const& GetFindings() const { return m_findings; }
    // The version of the last definition that named one above 0; 1 before that.
    double GetVersion() const { return m_dVersion; }

private:
    struct Level;
    struct Inner;

    // One function for each element form. False where the factory makes no node. Where the element's own children are
    // to be read next, `inner` says into which node.
    bool loadChild(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    bool loadState(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, int kind, Inner& inner);
    bool loadGroup(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    bool loadTaskNode(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, bool isDecision, Inner& inner);
    void loadType(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child);
    void loadDescription(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child);
    void loadSubProcess(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child);
    void loadTask(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadEvent(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadHandler(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadReminder(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child);
    void loadExceptionHandler(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadTimer(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadTransition(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child);
    void loadAction(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadModulePath(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadFunction(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void loadScript(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child);

    bool open(std::vector<Level>& levels, XERCES_CPP_NAMESPACE::DOMElement* element, Inner const& inner);
    void close(std::vector<Level>& levels);
    IFCNode* makeNode(Level& level, XERCES_CPP_NAMESPACE::DOMElement* child, int kind);
    void readSubProcess(XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    void readVariables(TuString const& path, IFCNode* node);
    void readLayout(TuString const& path, IFCNode* node);
    void connect(IFCNode* parent, IFCNode* child, CFCTransitionData* transition, CFCConnector*& open);

    CFCWorkflowFinding& find(CFCWorkflowFinding::Kind kind, IFCNode* node,
                             XERCES_CPP_NAMESPACE::DOMElement* element = nullptr);
    void findElement(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element,
                     CFCWorkflowFinding::Kind kind = CFCWorkflowFinding::ElementPassedOver);
    void findNode(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element, std::u16string_view name);
    void findChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element, std::u16string_view except = {});
    void findText(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element);
    void findValue(CFCWorkflowFinding::Kind kind, IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element,
                   std::u16string_view name, std::u16string_view value);
    // An attribute of no use that holds something else than the usual text.
    void findOther(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element, std::u16string_view name,
                   XMLCh const* value, std::u16string_view usual);
    void findNumber(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element, std::u16string_view name,
                    std::u16string_view value);
    // The attributes under none of the names; `known` of them have one of the first names.
    void findAttributes(IFCNode* node, XERCES_CPP_NAMESPACE::DOMElement* element,
                        std::span<std::u16string_view const> names, std::size_t known,
                        std::span<std::u16string_view const> more = {});
    void findRoot(XERCES_CPP_NAMESPACE::DOMElement* root, IFCNode* node);
    void findTransition(CFCWorkflowFinding::Kind kind, IFCNode* child, CFCTransitionData* transition);
    void findBroken(CFCWorkflowFinding::Kind kind, IFCNode* node, TuString const& path, CTXMLBaseReader const& reader);
    void findLayout(TuString const& path, CFCLayoutFinding const& lost);
    void findUnconnected(IFCNode* sibling);
    void forgetIcons();

    TuString m_strFilePath;
    TuString m_strBaseFolder;
    CFCNodeFactory* m_pNodeFactory = nullptr;
    CFCBaseContainer* m_pContainer = nullptr;
    XERCES_CPP_NAMESPACE::DOMDocument* m_pFileDocument = nullptr; // while LoadFileNode reads it
    double m_dVersion = 1.0;
    flowmere::WorkflowFileChain* m_pChain = nullptr; // of the files that are being read; lives as long as the top call
    std::vector<CFCWorkflowFinding> m_findings;
};
