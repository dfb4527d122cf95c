// CFCMSPReader: turns a project schedule into a tree of workflow nodes.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseReader.h"

#include <vector>

class CFCBaseContainer;
class CFCNodeFactory;
class IFCNode;

// Something in a schedule that did not come into the tree, kept for a host that wants to tell its user. The first six
// kinds each leave out one task, with all that its element holds.
struct CFCScheduleFinding {
    enum Kind : int {
        ProjectSummary = 0,      // the line with UID 0, which stands for the whole project
        TaskWithoutWBS = 1,      // there is no place for a task without a code
        ParentMissing = 2,       // a task below `parent`, where no task at all has been taken yet
        ParentNotNewest = 3,     // a task below `parent`, while the newest task there has the WBS `value`
        InsideLeftOutTask = 4,   // a task in the element of one that was left out
        NodeNotMade = 5,         // the factory makes no node
        DateNotRead = 6,         // a date, `value`, of which only the fields up to its first fault count
        PredecessorReplaced = 7, // a task has room for one predecessor: an earlier one, `value`, went
    };
    Kind kind = ProjectSummary;
    int number = 0; // of the task in the file, the first is 1; 0 outside any task
    // Texts of the task's element, each the last of its tag.
    TuString uid;
    TuString name;
    TuString wbs;
    TuString type;     // in front of the "WBS", where it says whether the task is a summary (1)
    TuString lateType; // behind the "WBS", where it has no say in that
    TuString parent;   // the WBS up to its last point, which says where the task belongs
    TuString element;  // tag that has the value
    TuString value;
    // The node with the date or predecessor; not owned. For the third and fourth kind the node that was made in vain:
    // nobody's but the caller's, if he wants to end it. Else null.
    IFCNode* node = nullptr;

    bool IsTaskLeftOut() const { return kind <= NodeNotMade; }
};

// Reads the tasks of a schedule: summary tasks become super states, others task blocks in columns, and a task goes by
// its "WBS" below the task that was taken last, or nowhere. Links between tasks make no connectors: the host makes them
// by CFCNodeHelper::FindNodeWBS and GetPredecessorID. Elements are told by their tags, whatever namespace the file is
// in; those without a use here are passed over.
//
// The columns of the layout belong to the process, not to the reader: each import goes on where the last one ended.
// One thread at a time may import.
class FLOWMERE_API CFCMSPReader : public CTXMLBaseReader {
public:
    CFCMSPReader();
    // Copies share factory, container and document.
    CFCMSPReader(CFCMSPReader const& other);
    CFCMSPReader& operator=(CFCMSPReader const& other);
    ~CFCMSPReader() override;

    // The factory that makes every node; not owned. Without it nothing is read.
    void SetNodeFactory(CFCNodeFactory* factory);
    // Observer that is handed a node once for each element read into it, so most of them several times; not owned, may
    // be null.
    void SetContainer(CFCBaseContainer* container);
    // A new node of that kind through the factory; null without a factory. The caller owns it.
    IFCNode* Create(int kind);
    // Hands the node to the container; nothing without a container or a node.
    void Attach(IFCNode* node);

    // Reads the file into a new process node of project type 2, which the caller owns, and stores it in *node. Its
    // caption is "Block Library", unless the file has a name. The flags are kept and not looked at. False, with *node
    // untouched, for an empty path, a null `node`, no factory and a file that is no well-formed XML.
    bool Parse(wchar_t const* path, IFCNode** node, int flags);
    // Reads the children of the element into the node and below it; the third argument is ignored. False for a null
    // element or node.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, int flags);
    // Notes that a file name, of at least four characters, ends in "fmr". Nothing looks at it.
    void CheckDataFile(wchar_t const* path);

    // What the last Parse left out, in the order of the file.
    std::vector<CFCScheduleFinding> const& GetFindings() const { return m_findings; }
    // How many tasks that Parse met, those left out included.
    int GetTaskCount() const { return m_nTasks; }

protected:
    CFCNodeFactory* m_pNodeFactory = nullptr;
    CFCBaseContainer* m_pContainer = nullptr;
    int m_nMode = 0; // 1 from the first Parse on
    int m_nFlags = 0;
    bool m_bDataFile = false; // a file name ended in "fmr"

private:
    struct Level;
    struct Inner;

    void loadChild(Level const& level, XERCES_CPP_NAMESPACE::DOMElement* child, Inner& inner);
    // The node that the task's element goes to; null for a task that is left out.
    IFCNode* placeTask(IFCNode* parent, XERCES_CPP_NAMESPACE::DOMElement* element);
    IFCNode* attachTask(IFCNode* parent, XERCES_CPP_NAMESPACE::DOMElement* element,
                        XERCES_CPP_NAMESPACE::DOMElement* wbs, bool isSummary);
    void loadUID(Level const& level, XERCES_CPP_NAMESPACE::DOMElement* child);
    void loadDate(Level const& level, XERCES_CPP_NAMESPACE::DOMElement* child, bool isStart);
    void loadPredecessor(Level const& level, XERCES_CPP_NAMESPACE::DOMElement* child);

    CFCScheduleFinding& leaveOut(CFCScheduleFinding::Kind kind, XERCES_CPP_NAMESPACE::DOMElement* element);
    // The tasks inside the element of one that is left out.
    void leaveOutInside(XERCES_CPP_NAMESPACE::DOMElement* element);
    void findValue(CFCScheduleFinding::Kind kind, Level const& level, XERCES_CPP_NAMESPACE::DOMElement* element,
                   TuString const& value);

    std::vector<CFCScheduleFinding> m_findings;
    int m_nTasks = 0;
};
