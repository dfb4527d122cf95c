#pragma once

#include "flowmere/Export.h"
#include "flowmere/xml/XmlForward.h"

// Walks the direct children of an element, which must outlive the walk:
//     for (iterator.Head(); iterator.More(); iterator.Next()) { ... iterator.GetNodeElement() ... }
class FLOWMERE_API CTXMLChildIterator {
public:
    // A null element has no children.
    explicit CTXMLChildIterator(XERCES_CPP_NAMESPACE::DOMElement* element);
    virtual ~CTXMLChildIterator();

    // Goes to the first child; every walk starts with it.
    void Head();
    // False behind the last child, and before the first Head.
    bool More();
    // Goes on to the next child; nothing behind the last.
    void Next();
    // The current child as an element; null when it is none (a text, a comment) or when there is no child left.
    XERCES_CPP_NAMESPACE::DOMElement* GetNodeElement();

private:
    XERCES_CPP_NAMESPACE::DOMElement* m_pElement;
    XERCES_CPP_NAMESPACE::DOMNode* m_pCurrent = nullptr;
};
