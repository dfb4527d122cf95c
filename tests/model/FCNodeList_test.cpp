#include "flowmere/model/FCNodeList.h"

#include "flowmere/model/FCNodeManager.h"
#include "model/PlainNodes.h"
#include "model/VirtualSlots.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

using flowmere::test::NamedNode;
using flowmere::test::narrow;
using flowmere::test::PlainNode;

IFCNode* at(__FCPOSITION* position) {
    return reinterpret_cast<IFCNode*>(position);
}

__FCPOSITION* position(IFCNode* node) {
    return reinterpret_cast<__FCPOSITION*>(node);
}

// Identifiers by positions, and the same way back along the previous links.
std::string forward(CFCNodeList& list) {
    std::string names;
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        names += narrow(list.GetNextNode(position)->GetNodeId());
    }
    return names;
}

std::string backward(CFCNodeList& list) {
    std::string names;
    for (IFCNode* node = at(list.GetTailPosition()); node != nullptr; node = node->GetPrev()) {
        names += narrow(node->GetNodeId());
    }
    return names;
}

// Tells its end in a text that outlives it.
class Mortal : public NamedNode {
public:
    Mortal(wchar_t const* id, std::string& log) : NamedNode(id), m_log(log) {}
    ~Mortal() override { m_log += narrow(GetNodeId()); }
    Mortal(Mortal const&) = delete;
    Mortal& operator=(Mortal const&) = delete;

private:
    std::string& m_log;
};

#if FLOWMERE_TEST_SLOTS
using flowmere::test::kDestructorSlots;
using flowmere::test::kFirstSlotBehindNode;
using flowmere::test::slotOf;
using flowmere::test::slotsOf;

TEST(CFCNodeList, AddsOneVirtualOperationAndSoDoesTheSecondKindOfList) {
    EXPECT_EQ(slotOf(&CFCNodeList::Find), kFirstSlotBehindNode);
    EXPECT_EQ(slotsOf<CFCNodeList>(), kFirstSlotBehindNode + 1);
    EXPECT_EQ(slotOf(&CFCDLinkList::Clear), kFirstSlotBehindNode);
    EXPECT_EQ(slotsOf<CFCDLinkList>(), kFirstSlotBehindNode + 1);
    EXPECT_EQ(slotOf(&CFCBaseContainer::Attach), kDestructorSlots);
    EXPECT_EQ(slotsOf<CFCBaseContainer>(), kDestructorSlots + 1);
}
#endif

// ---- CFCNodeList --------------------------------------------------------------------------------

TEST(CFCNodeList, IsANodeLikeAnyOther) {
    CFCNodeList list;
    EXPECT_EQ(CFCNodeManager::GetNode(list.GetNodeHandle()), &list);
    list.SetNodeCaption(L"caption");
    EXPECT_EQ(narrow(list.GetNodeCaption()), "caption");
    list.SetNodeType(57);
    EXPECT_EQ(list.GetImage(), 0);
    EXPECT_EQ(list.CloneNode(), nullptr);
    list.Create();
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.GetChild(), nullptr);
}

TEST(CFCNodeList, EmptyListHasNothing) {
    CFCNodeList list;
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.GetAt(0), nullptr);
    EXPECT_EQ(list.Find(L"A"), nullptr);
    EXPECT_EQ(list.Find(nullptr), nullptr);
    list.DeleteAll();
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    __FCPOSITION* end = nullptr;
    EXPECT_EQ(list.GetNextNode(end), nullptr);
    EXPECT_EQ(end, nullptr);
}

TEST(CFCNodeList, AddTailChainsTheElements) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode c(L"C");
    list.AddTail(&a);
    EXPECT_EQ(at(list.GetHeadPosition()), &a);
    EXPECT_EQ(at(list.GetTailPosition()), &a);
    list.AddTail(&b);
    list.AddTail(&c);
    EXPECT_EQ(forward(list), "ABC");
    EXPECT_EQ(backward(list), "CBA");
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(a.GetNext(), &b);
    EXPECT_EQ(b.GetPrev(), &a);
    EXPECT_EQ(c.GetPrev(), &b);
    EXPECT_EQ(c.GetNext(), nullptr);
}

TEST(CFCNodeList, AddTailTouchesNeitherParentNorStaleLinks) {
    CFCNodeList list;
    NamedNode owner(L"owner");
    NamedNode stranger(L"stranger");
    NamedNode a(L"A");
    NamedNode b(L"B");
    a.SetParentNode(&owner);
    a.SetPrev(&stranger);
    b.SetNext(&stranger);
    list.AddTail(&a);
    EXPECT_EQ(a.GetParentNode(), &owner);
    EXPECT_EQ(a.GetPrev(), &stranger) << "no link of the first element is touched";
    EXPECT_EQ(a.GetNext(), nullptr);
    list.AddTail(&b);
    EXPECT_EQ(b.GetParentNode(), nullptr);
    EXPECT_EQ(b.GetNext(), &stranger) << "the next link is not cleared";
    EXPECT_EQ(b.GetPrev(), &a);
}

TEST(CFCNodeList, AddTailLeavesWhatWouldTieARing) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    list.AddTail(nullptr);
    EXPECT_EQ(list.GetCount(), 0);
    list.AddTail(&a);
    list.AddTail(&a);
    EXPECT_EQ(forward(list), "A");
    list.AddTail(&b);
    list.AddTail(&b);
    list.AddTail(&a);
    EXPECT_EQ(forward(list), "AB");
    EXPECT_EQ(backward(list), "BA");
}

TEST(CFCNodeList, GetNextNodeMovesOnBeforeTheCallerSeesTheNode) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    list.AddTail(&a);
    list.AddTail(&b);
    __FCPOSITION* walk = list.GetHeadPosition();
    EXPECT_EQ(list.GetNextNode(walk), &a);
    EXPECT_EQ(at(walk), &b);
    EXPECT_EQ(list.GetNextNode(walk), &b);
    EXPECT_EQ(walk, nullptr);
    EXPECT_EQ(list.GetNextNode(walk), nullptr);
}

TEST(CFCNodeList, NodesMayBeDeletedInTheWalk) {
    CFCNodeList list;
    std::string log;
    for (wchar_t const* const name : {L"A", L"B", L"C"}) {
        list.AddTail(new Mortal(name, log));
    }
    for (__FCPOSITION* walk = list.GetHeadPosition(); walk != nullptr;) {
        list.DeleteNode(list.GetNextNode(walk));
    }
    EXPECT_EQ(log, "ABC");
    EXPECT_EQ(list.GetCount(), 0);
}

TEST(CFCNodeList, GetAtCountsFromZero) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    list.AddTail(&a);
    list.AddTail(&b);
    EXPECT_EQ(list.GetAt(0), &a);
    EXPECT_EQ(list.GetAt(1), &b);
    EXPECT_EQ(list.GetAt(2), nullptr);
    EXPECT_EQ(list.GetAt(1000), nullptr);
    EXPECT_EQ(list.GetAt(-1), nullptr);
}

TEST(CFCNodeList, SetAtInsertsInFront) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode c(L"C");
    NamedNode n(L"n");
    list.AddTail(&a);
    list.AddTail(&b);
    list.AddTail(&c);
    list.SetAt(&n, 1);
    EXPECT_EQ(forward(list), "AnBC");
    EXPECT_EQ(backward(list), "CBnA");
    NamedNode m(L"m");
    list.SetAt(&m, 3);
    EXPECT_EQ(forward(list), "AnBmC");
    EXPECT_EQ(backward(list), "CmBnA");
    EXPECT_EQ(list.GetCount(), 5);
    EXPECT_EQ(at(list.GetHeadPosition()), &a);
    EXPECT_EQ(at(list.GetTailPosition()), &c);
}

TEST(CFCNodeList, SetAtDoesNothingWithoutAnElementOrOneInFrontOfIt) {
    CFCNodeList list;
    NamedNode n(L"n");
    list.SetAt(&n, 0);
    EXPECT_EQ(list.GetCount(), 0);
    NamedNode a(L"A");
    NamedNode b(L"B");
    list.AddTail(&a);
    list.AddTail(&b);
    for (int const index : {0, -1, -100, 2, 3, 1000}) {
        list.SetAt(&n, index);
        EXPECT_EQ(forward(list), "AB") << index;
        EXPECT_EQ(at(list.GetHeadPosition()), &a) << index;
    }
    list.SetAt(nullptr, 1);
    list.SetAt(&b, 1);
    list.SetAt(&a, 1);
    EXPECT_EQ(forward(list), "AB");
    EXPECT_EQ(backward(list), "BA");
}

TEST(CFCNodeList, FindRegardsNoCaseAndTakesTheFirst) {
    CFCNodeList list;
    NamedNode nameless(L"");
    NamedNode a(L"Alpha");
    NamedNode again(L"ALPHA");
    NamedNode b(L"Beta");
    list.AddTail(&nameless);
    list.AddTail(&a);
    list.AddTail(&again);
    list.AddTail(&b);
    EXPECT_EQ(list.Find(L"alpha"), &a);
    EXPECT_EQ(list.Find(L"ALPHA"), &a);
    EXPECT_EQ(list.Find(L"bETA"), &b);
    EXPECT_EQ(list.Find(L"Gamma"), nullptr);
    EXPECT_EQ(list.Find(L""), nullptr) << "an element without identifier never matches";
    EXPECT_EQ(list.Find(nullptr), nullptr);
    EXPECT_EQ(list.Find(again.GetNodeId()), &a);
}

TEST(CFCNodeList, ElementsWithoutIdentifierAreNeverFound) {
    CFCNodeList list;
    PlainNode element;
    element.SetNodeId(L"A");
    element.SetNodeCaption(L"A");
    list.AddTail(&element);
    EXPECT_EQ(list.Find(L"A"), nullptr);
}

TEST(CFCNodeList, DeleteNodeTakesAnElementOutWhereverItStands) {
    struct Row {
        int index;
        char const* left;
        char const* reversed;
    };
    for (Row const& row : {Row{0, "BCD", "DCB"}, Row{1, "ACD", "DCA"}, Row{2, "ABD", "DBA"}, Row{3, "ABC", "CBA"}}) {
        CFCNodeList list;
        std::string log;
        for (wchar_t const* const name : {L"A", L"B", L"C", L"D"}) {
            list.AddTail(new Mortal(name, log));
        }
        std::string const victim = narrow(list.GetAt(row.index)->GetNodeId());
        list.DeleteNode(list.GetAt(row.index));
        EXPECT_EQ(log, victim);
        EXPECT_EQ(forward(list), row.left);
        EXPECT_EQ(backward(list), row.reversed);
        list.DeleteAll();
    }
}

TEST(CFCNodeList, DeleteNodeOfTheOnlyElementEmptiesTheList) {
    CFCNodeList list;
    std::string log;
    list.AddTail(new Mortal(L"A", log));
    list.DeleteNode(list.GetAt(0));
    EXPECT_EQ(log, "A");
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    EXPECT_EQ(list.GetCount(), 0);
}

TEST(CFCNodeList, DeleteNodeLeavesWhatIsNoElement) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode c(L"C");
    list.AddTail(&a);
    list.AddTail(&b);
    list.AddTail(&c);
    list.DeleteNode(nullptr);
    NamedNode stranger(L"S");
    list.DeleteNode(&stranger);
    NamedNode half(L"H");
    half.SetPrev(&a);
    half.SetNext(&c);
    list.DeleteNode(&half);
    EXPECT_EQ(forward(list), "ABC");
    EXPECT_EQ(backward(list), "CBA");
    CFCNodeList empty;
    empty.DeleteNode(&stranger);
    EXPECT_EQ(empty.GetCount(), 0);
}

TEST(CFCNodeList, DeleteAllDestroysFromTheTailToTheHead) {
    CFCNodeList list;
    std::string log;
    for (wchar_t const* const name : {L"A", L"B", L"C"}) {
        list.AddTail(new Mortal(name, log));
    }
    list.DeleteAll();
    EXPECT_EQ(log, "CBA");
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    list.AddTail(new Mortal(L"D", log));
    EXPECT_EQ(forward(list), "D");
    list.DeleteAll();
    EXPECT_EQ(log, "CBAD");
}

TEST(CFCNodeList, DeleteAllStopsAtTheHead) {
    CFCNodeList list;
    std::string log;
    NamedNode foreign(L"F");
    auto* const a = new Mortal(L"A", log);
    a->SetPrev(&foreign);
    list.AddTail(a);
    list.AddTail(new Mortal(L"B", log));
    list.DeleteAll();
    EXPECT_EQ(log, "BA");
    EXPECT_EQ(CFCNodeManager::GetNode(foreign.GetNodeHandle()), &foreign);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
}

TEST(CFCNodeList, DestructorLeavesTheElements) {
    NamedNode a(L"A");
    NamedNode b(L"B");
    {
        CFCNodeList list;
        list.AddTail(&a);
        list.AddTail(&b);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(a.GetNodeHandle()), &a);
    EXPECT_EQ(a.GetNext(), &b);
    EXPECT_EQ(b.GetPrev(), &a);
}

TEST(CFCNodeList, CopiesShareTheElements) {
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    list.AddTail(&a);
    list.AddTail(&b);
    list.SetNodeCaption(L"caption");
    CFCNodeList copy(list);
    EXPECT_EQ(forward(copy), "AB");
    EXPECT_EQ(copy.GetAt(0), &a);
    EXPECT_EQ(copy.GetNodeHandle(), list.GetNodeHandle());
    EXPECT_EQ(narrow(copy.GetNodeCaption()), "caption");
    CFCNodeList assigned;
    NamedNode old(L"O");
    assigned.AddTail(&old);
    assigned = list;
    EXPECT_EQ(forward(assigned), "AB");
    // The elements know one chain only.
    NamedNode c(L"C");
    list.AddTail(&c);
    EXPECT_EQ(forward(copy), "ABC");
    EXPECT_EQ(at(copy.GetTailPosition()), &b);
}

TEST(CFCNodeList, RevisionTellsInsertionsAndRemovals) {
    class Watched : public CFCNodeList {
    public:
        using CFCNodeList::revision;
    };
    Watched list;
    std::string log;
    unsigned int last = list.revision();
    auto const changed = [&] {
        unsigned int const before = last;
        last = list.revision();
        return last != before;
    };
    auto* const a = new Mortal(L"A", log);
    auto* const b = new Mortal(L"B", log);
    auto* const c = new Mortal(L"C", log);
    list.AddTail(a);
    list.AddTail(b);
    EXPECT_FALSE(changed());
    list.SetAt(c, 1);
    EXPECT_TRUE(changed());
    list.DeleteNode(c);
    EXPECT_TRUE(changed());
    list.DeleteNode(nullptr);
    EXPECT_FALSE(changed());
    list.DeleteAll();
    EXPECT_TRUE(changed());
    list = Watched();
    EXPECT_TRUE(changed());
}

TEST(CFCNodeList, HeadAndTailOfTheInterfaceStayNull) {
    CFCNodeList list;
    NamedNode a(L"A");
    list.AddTail(&a);
    EXPECT_EQ(list.GetHead(), nullptr);
    EXPECT_EQ(list.GetTail(), nullptr);
}

// ---- CFCDLinkList -------------------------------------------------------------------------------

static_assert(!std::is_base_of_v<CFCNodeList, CFCDLinkList>);
static_assert(std::is_base_of_v<CFCNode, CFCDLinkList>);

TEST(CFCDLinkList, IsANodeLikeAnyOther) {
    CFCDLinkList list;
    EXPECT_EQ(CFCNodeManager::GetNode(list.GetNodeHandle()), &list);
    list.SetNodeType(57);
    EXPECT_EQ(list.GetImage(), 0);
    EXPECT_EQ(list.CloneNode(), nullptr);
    list.Create();
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
}

TEST(CFCDLinkList, ChainsThroughTheSecondLinks) {
    CFCDLinkList chain;
    CFCNodeList list;
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode c(L"C");
    list.AddTail(&a);
    list.AddTail(&b);
    list.AddTail(&c);
    chain.AddTail(&c);
    chain.AddTail(&a);
    EXPECT_EQ(at(chain.GetHeadPosition()), &c);
    EXPECT_EQ(at(chain.GetTailPosition()), &a);
    EXPECT_EQ(c.GetNextL(), &a);
    EXPECT_EQ(a.GetPrevL(), &c);
    EXPECT_EQ(a.GetNextL(), nullptr);
    EXPECT_EQ(forward(list), "ABC") << "a node stands in a list and in a chain at once";
}

TEST(CFCDLinkList, AddTailClearsTheNodesLinksFirst) {
    CFCDLinkList chain;
    NamedNode stranger(L"S");
    NamedNode a(L"A");
    NamedNode b(L"B");
    for (NamedNode* const node : {&a, &b}) {
        node->SetNextL(&stranger);
        node->SetPrevL(&stranger);
        node->SetChildL(&stranger);
    }
    chain.AddTail(&a);
    EXPECT_EQ(a.GetNextL(), nullptr);
    EXPECT_EQ(a.GetPrevL(), nullptr);
    EXPECT_EQ(a.GetChildL(), &stranger);
    chain.AddTail(&b);
    EXPECT_EQ(b.GetNextL(), nullptr);
    EXPECT_EQ(b.GetPrevL(), &a);
    EXPECT_EQ(a.GetNextL(), &b);
}

TEST(CFCDLinkList, AddTailLeavesWhatWouldTieARing) {
    CFCDLinkList chain;
    NamedNode a(L"A");
    NamedNode b(L"B");
    chain.AddTail(nullptr);
    EXPECT_EQ(chain.GetHeadPosition(), nullptr);
    chain.AddTail(&a);
    chain.AddTail(&a);
    chain.AddTail(&b);
    chain.AddTail(&a);
    chain.AddTail(&b);
    EXPECT_EQ(a.GetNextL(), &b);
    EXPECT_EQ(b.GetNextL(), nullptr);
    EXPECT_EQ(a.GetPrevL(), nullptr);
}

TEST(CFCDLinkList, GetNextNodeGivesTheNodeBehind) {
    CFCDLinkList chain;
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode c(L"C");
    chain.AddTail(&a);
    chain.AddTail(&b);
    chain.AddTail(&c);
    __FCPOSITION* walk = chain.GetHeadPosition();
    EXPECT_EQ(at(walk), &a);
    EXPECT_EQ(chain.GetNextNode(walk), &b);
    EXPECT_EQ(at(walk), &b);
    EXPECT_EQ(chain.GetNextNode(walk), &c);
    EXPECT_EQ(chain.GetNextNode(walk), nullptr);
    EXPECT_EQ(walk, nullptr);
    EXPECT_EQ(chain.GetNextNode(walk), nullptr);

    walk = chain.GetTailPosition();
    EXPECT_EQ(chain.GetPrevNode(walk), &b);
    EXPECT_EQ(at(walk), &b);
    EXPECT_EQ(chain.GetPrevNode(walk), &a);
    EXPECT_EQ(chain.GetPrevNode(walk), nullptr);
    EXPECT_EQ(walk, nullptr);
    EXPECT_EQ(chain.GetPrevNode(walk), nullptr);
}

TEST(CFCDLinkList, CountIsAlwaysZero) {
    CFCDLinkList chain;
    NamedNode a(L"A");
    EXPECT_EQ(chain.GetCount(), 0);
    chain.AddTail(&a);
    EXPECT_EQ(chain.GetCount(), 0);
}

TEST(CFCDLinkList, ClearOnlyForgets) {
    CFCDLinkList chain;
    NamedNode a(L"A");
    NamedNode b(L"B");
    chain.AddTail(&a);
    chain.AddTail(&b);
    chain.Clear();
    EXPECT_EQ(chain.GetHeadPosition(), nullptr);
    EXPECT_EQ(chain.GetTailPosition(), nullptr);
    EXPECT_EQ(a.GetNextL(), &b);
    EXPECT_EQ(b.GetPrevL(), &a);
}

TEST(CFCDLinkList, CopiesShareTheEnds) {
    CFCDLinkList chain;
    NamedNode a(L"A");
    chain.AddTail(&a);
    CFCDLinkList copy(chain);
    EXPECT_EQ(copy.GetHeadPosition(), position(&a));
    CFCDLinkList assigned;
    assigned = chain;
    EXPECT_EQ(assigned.GetTailPosition(), position(&a));
}

// ---- CFCBaseContainer ---------------------------------------------------------------------------

TEST(CFCBaseContainer, HandsNodesToTheDerivedClassAndDoesNothingItself) {
    CFCBaseContainer plain;
    NamedNode node(L"A");
    plain.Attach(&node);
    plain.Attach(nullptr);
    EXPECT_EQ(node.GetParentNode(), nullptr);

    class Receiver : public CFCBaseContainer {
    public:
        void Attach(IFCNode* received) override { nodes.push_back(received); }
        std::vector<IFCNode*> nodes;
    };
    Receiver receiver;
    CFCBaseContainer& base = receiver;
    base.Attach(&node);
    ASSERT_EQ(receiver.nodes.size(), 1U);
    EXPECT_EQ(receiver.nodes[0], &node);
    static_assert(sizeof(CFCBaseContainer) == sizeof(void*), "it has no data");
}

} // namespace
