#include "flowmere/xml/TXMLChildIterator.h"

#include <xercesc/dom/DOM.hpp>

CTXMLChildIterator::CTXMLChildIterator(xercesc::DOMElement* element) : m_pElement(element) {}

CTXMLChildIterator::~CTXMLChildIterator() = default;

void CTXMLChildIterator::Head() {
    m_pCurrent = m_pElement ? m_pElement->getFirstChild() : nullptr;
}

bool CTXMLChildIterator::More() {
    return m_pCurrent != nullptr;
}

void CTXMLChildIterator::Next() {
    if (m_pCurrent) {
        m_pCurrent = m_pCurrent->getNextSibling();
    }
}

xercesc::DOMElement* CTXMLChildIterator::GetNodeElement() {
    if (!m_pCurrent || m_pCurrent->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) {
        return nullptr;
    }
    return static_cast<xercesc::DOMElement*>(m_pCurrent);
}
