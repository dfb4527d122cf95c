#include "flowmere/model/FCNodeList.h"

#include "flowmere/foundation/Fold.h"

namespace {

// A position is the element itself, as a node.
__FCPOSITION* positionOf(IFCNode* node) {
    return reinterpret_cast<__FCPOSITION*>(node);
}

IFCNode* nodeAt(__FCPOSITION* position) {
    return reinterpret_cast<IFCNode*>(position);
}

} // namespace

CFCNodeList::CFCNodeList() = default;

CFCNodeList::CFCNodeList(CFCNodeList const& other) : CFCNode(other), m_pHead(other.m_pHead), m_pTail(other.m_pTail) {}

CFCNodeList& CFCNodeList::operator=(CFCNodeList const& other) {
    CFCNode::operator=(other);
    m_pHead = other.m_pHead;
    m_pTail = other.m_pTail;
    ++m_uRevision;
    return *this;
}

CFCNodeList::~CFCNodeList() = default;

int CFCNodeList::GetImage() {
    return 0;
}

IFCNode* CFCNodeList::CloneNode() {
    return nullptr;
}

void CFCNodeList::Create() {}

IFCNode* CFCNodeList::Find(wchar_t const* id) {
    TuString const wanted(id);
    for (IFCNode* node = m_pHead; node != nullptr; node = node->GetNext()) {
        wchar_t const* const nodeId = node->GetNodeId();
        if (nodeId != nullptr && *nodeId != L'\0' && flowmere::equalNoCase(nodeId, wanted.View())) {
            return node;
        }
    }
    return nullptr;
}

void CFCNodeList::AddTail(IFCNode* node) {
    if (node == nullptr || node == m_pHead || node == m_pTail) {
        return;
    }
    if (m_pTail == nullptr) {
        m_pHead = node;
        m_pTail = node;
        return;
    }
    node->SetPrev(m_pTail);
    m_pTail->SetNext(node);
    m_pTail = node;
}

__FCPOSITION* CFCNodeList::GetHeadPosition() {
    return positionOf(m_pHead);
}

__FCPOSITION* CFCNodeList::GetTailPosition() {
    return positionOf(m_pTail);
}

IFCNode* CFCNodeList::GetNextNode(__FCPOSITION*& position) {
    IFCNode* const node = nodeAt(position);
    if (node != nullptr) {
        position = positionOf(node->GetNext());
    }
    return node;
}

IFCNode* CFCNodeList::GetAt(int index) {
    if (index < 0) {
        return nullptr;
    }
    IFCNode* node = m_pHead;
    for (; node != nullptr && index > 0; --index) {
        node = node->GetNext();
    }
    return node;
}

int CFCNodeList::GetCount() {
    int count = 0;
    for (IFCNode* node = m_pHead; node != nullptr; node = node->GetNext()) {
        ++count;
    }
    return count;
}

void CFCNodeList::SetAt(IFCNode* node, int index) {
    IFCNode* const element = index > 0 ? GetAt(index) : nullptr;
    if (node == nullptr || element == nullptr || node == element) {
        return;
    }
    IFCNode* const before = element->GetPrev();
    if (before == nullptr || before == node) {
        return;
    }
    ++m_uRevision;
    element->SetPrev(node);
    node->SetNext(element);
    before->SetNext(node);
    node->SetPrev(before);
}

void CFCNodeList::DeleteNode(IFCNode* node) {
    if (node == nullptr) {
        return;
    }
    IFCNode* const next = node->GetNext();
    IFCNode* const prev = node->GetPrev();
    bool const follows = prev != nullptr && prev->GetNext() == node;
    bool const leads = next != nullptr && next->GetPrev() == node;
    if (node == m_pHead && node == m_pTail) {
        m_pHead = nullptr;
        m_pTail = nullptr;
    } else if (node == m_pHead) {
        if (!leads) {
            return;
        }
        m_pHead = next;
        next->SetPrev(nullptr);
    } else if (node == m_pTail) {
        if (!follows) {
            return;
        }
        m_pTail = prev;
        prev->SetNext(nullptr);
    } else {
        if (!follows || !leads) {
            return;
        }
        prev->SetNext(next);
        next->SetPrev(prev);
    }
    ++m_uRevision;
    delete node;
}

void CFCNodeList::DeleteAll() {
    ++m_uRevision;
    while (m_pTail != nullptr) {
        // What stands before the head, by a stale link, belongs to another chain.
        IFCNode* const prev = m_pTail == m_pHead ? nullptr : m_pTail->GetPrev();
        delete m_pTail;
        m_pTail = prev;
    }
    m_pHead = nullptr;
}

CFCDLinkList::CFCDLinkList() = default;
CFCDLinkList::CFCDLinkList(CFCDLinkList const& other) = default;
CFCDLinkList& CFCDLinkList::operator=(CFCDLinkList const& other) = default;
CFCDLinkList::~CFCDLinkList() = default;

int CFCDLinkList::GetImage() {
    return 0;
}

IFCNode* CFCDLinkList::CloneNode() {
    return nullptr;
}

void CFCDLinkList::Create() {}

void CFCDLinkList::Clear() {
    m_pHead = nullptr;
    m_pTail = nullptr;
}

void CFCDLinkList::AddTail(IFCNode* node) {
    if (node == nullptr || node == m_pHead || node == m_pTail) {
        return;
    }
    node->SetPrevL(nullptr);
    node->SetNextL(nullptr);
    if (m_pTail != nullptr) {
        m_pTail->SetNextL(node);
        node->SetPrevL(m_pTail);
    } else {
        m_pHead = node;
    }
    m_pTail = node;
}

__FCPOSITION* CFCDLinkList::GetHeadPosition() {
    return positionOf(m_pHead);
}

__FCPOSITION* CFCDLinkList::GetTailPosition() {
    return positionOf(m_pTail);
}

IFCNode* CFCDLinkList::GetNextNode(__FCPOSITION*& position) {
    IFCNode* const node = nodeAt(position);
    IFCNode* const next = node != nullptr ? node->GetNextL() : nullptr;
    position = positionOf(next);
    return next;
}

IFCNode* CFCDLinkList::GetPrevNode(__FCPOSITION*& position) {
    IFCNode* const node = nodeAt(position);
    IFCNode* const prev = node != nullptr ? node->GetPrevL() : nullptr;
    position = positionOf(prev);
    return prev;
}

int CFCDLinkList::GetCount() {
    return 0;
}

CFCBaseContainer::~CFCBaseContainer() = default;

void CFCBaseContainer::Attach(IFCNode*) {}
