#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCNode.h"

// A place in a list: in fact the element node itself, always converted from and to IFCNode*. Null is
// the end.
struct __FCPOSITION;

// A list that is itself a node, and chains its elements through their previous and next links. It
// stores no element records, so an element costs no allocation; a node stands in one list or sibling
// chain at a time. The destructor destroys no element: the list's owner decides, with DeleteAll.
// Copies share the elements.
class FLOWMERE_API CFCNodeList : public CFCNode {
public:
    CFCNodeList();
    CFCNodeList(CFCNodeList const& other);
    CFCNodeList& operator=(CFCNodeList const& other);
    ~CFCNodeList() override;

    int GetImage() override;       // 0
    IFCNode* CloneNode() override; // null
    void Create() override;        // does nothing

    // First element whose id is not empty and equals this one without regard to case, or null.
    virtual IFCNode* Find(wchar_t const* id);

    // Puts a node at the end. Sets neither its parent nor its next link, and touches no link of the
    // first element of an empty list: unhook a node from another chain first. Null, and the present
    // first or last element, are ignored.
    void AddTail(IFCNode* node);
    // The two ends, null on an empty list.
    __FCPOSITION* GetHeadPosition();
    __FCPOSITION* GetTailPosition();
    // The node at the position; the position moves to the next element first, so the caller may delete
    // the node. Null at the end.
    IFCNode* GetNextNode(__FCPOSITION*& position);
    // Element by number from 0, or null. Linear: use positions in loops.
    IFCNode* GetAt(int index);
    // Number of elements. Linear.
    int GetCount();
    // Inserts (does not replace) a node in front of element number index. Does nothing for an index of
    // 0 or below, which has no element before it, and at or beyond the count.
    void SetAt(IFCNode* node, int index);
    // Takes an element out and destroys it. The node must be an element; one whose links disagree with
    // the list is left alone, and null is ignored.
    void DeleteNode(IFCNode* node);
    // Destroys all elements, from the last to the first.
    void DeleteAll();

protected:
    // Changes whenever elements are inserted or taken out by anything but AddTail. Indexes over a list
    // compare it with the value they were built at.
    unsigned int revision() const { return m_uRevision; }

private:
    unsigned int m_uRevision = 0;
    IFCNode* m_pHead = nullptr;
    IFCNode* m_pTail = nullptr;
};

// A list through the second pair of links, so that a node can stand in it and in a list or sibling
// chain at once. It owns nothing.
class FLOWMERE_API CFCDLinkList : public CFCNode {
public:
    CFCDLinkList();
    CFCDLinkList(CFCDLinkList const& other);
    CFCDLinkList& operator=(CFCDLinkList const& other);
    ~CFCDLinkList() override;

    int GetImage() override;       // 0
    IFCNode* CloneNode() override; // null
    void Create() override;        // does nothing

    // Forgets the elements; their links among themselves stay.
    virtual void Clear();

    // Puts a node at the end, after clearing its two links of this chain. Null, and the present first
    // or last element, are ignored.
    void AddTail(IFCNode* node);
    // The two ends, null on an empty list.
    __FCPOSITION* GetHeadPosition();
    __FCPOSITION* GetTailPosition();
    // Moves the position to the element behind it (before it) and returns that element: unlike in
    // CFCNodeList the node at the old position is not returned. Null at the end.
    IFCNode* GetNextNode(__FCPOSITION*& position);
    IFCNode* GetPrevNode(__FCPOSITION*& position);
    // Always 0.
    int GetCount();

private:
    IFCNode* m_pHead = nullptr;
    IFCNode* m_pTail = nullptr;
};

// Receives the nodes that a reader makes, as told by the reader that it is given to.
class FLOWMERE_API CFCBaseContainer {
public:
    virtual ~CFCBaseContainer();
    // Called with a new node, which the container does not own. Does nothing here.
    virtual void Attach(IFCNode* node);
};
