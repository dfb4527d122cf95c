#include "flowmere/model/ChildIndex.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCProcessNode.h"
#include "model/PlainNodes.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using flowmere::ChildIndex;
using flowmere::ChildLookup;
using flowmere::findChild;
using flowmere::test::NamedNode;
using flowmere::test::PlainNode;

constexpr ChildLookup kLookups[] = {ChildLookup::Id, ChildLookup::ExactId, ChildLookup::OldId};

// The plain walk that every lookup must agree with.
IFCNode* walk(IFCNode& container, std::wstring const& id, ChildLookup lookup) {
    for (IFCNode* child = container.GetChild(); child != nullptr; child = child->GetNext()) {
        std::wstring const own = lookup == ChildLookup::OldId ? child->GetOldNodeId() : child->GetNodeId();
        bool const match = lookup == ChildLookup::ExactId ? own == id : !own.empty() && flowmere::equalNoCase(own, id);
        if (match) {
            return child;
        }
    }
    return nullptr;
}

// A container of blocks that this object takes down at the end.
class Container {
public:
    explicit Container(int children = 0) {
        for (int i = 0; i < children; ++i) {
            add(L"b" + std::to_wstring(i));
        }
    }
    ~Container() {
        while (node.GetChild() != nullptr) {
            IFCNode* const child = node.GetChild();
            node.SetChild(child->GetNext());
            delete child;
        }
    }
    Container(Container const&) = delete;
    Container& operator=(Container const&) = delete;

    CFCBlockNode* add(std::wstring const& id) {
        auto* const block = new CFCBlockNode;
        block->SetNodeId(id.c_str());
        node.AppendChild(block, false);
        return block;
    }
    IFCNode* find(std::wstring const& id, ChildLookup lookup = ChildLookup::Id) {
        return findChild(node, id.c_str(), lookup);
    }
    bool indexed(ChildLookup lookup = ChildLookup::Id) { return ChildIndex::exists(node, lookup); }

    CFCSubGroupNode node;
};

TEST(ChildIndex, SmallContainersAreWalked) {
    Container container(ChildIndex::kWalkedChildren);
    EXPECT_NE(container.find(L"b0"), nullptr);
    EXPECT_EQ(container.find(L"missing"), nullptr);
    EXPECT_FALSE(container.indexed());
}

TEST(ChildIndex, LargeContainersGetAnIndexAtTheFirstFarLookup) {
    Container container(ChildIndex::kWalkedChildren + 1);
    // Near the head nothing is needed.
    EXPECT_NE(container.find(L"b32"), nullptr);
    EXPECT_FALSE(container.indexed());
    EXPECT_NE(container.find(L"B0"), nullptr);
    EXPECT_TRUE(container.indexed());
    EXPECT_FALSE(container.indexed(ChildLookup::ExactId)) << "each lookup has its own";
    EXPECT_EQ(container.find(L"missing"), nullptr);
    EXPECT_TRUE(container.indexed());
}

TEST(ChildIndex, AnswersAsTheWalkDoes) {
    Container container(200);
    container.add(L"Twin");
    CFCBlockNode* const nearer = container.add(L"TWIN");
    container.add(L"");
    container.node.AppendChild(new CFCSubGroupNode, false);
    nearer->SetOldNodeId(L"Before");
    for (ChildLookup const lookup : kLookups) {
        container.find(L"b0", lookup);
        EXPECT_TRUE(container.indexed(lookup));
        for (std::wstring const id :
             {L"b0", L"B0", L"b199", L"twin", L"Twin", L"TWIN", L"", L"before", L"Before", L"x"}) {
            EXPECT_EQ(container.find(id, lookup), walk(container.node, id, lookup));
        }
    }
    EXPECT_EQ(container.find(L"twin"), nearer);
    EXPECT_EQ(container.find(L"before", ChildLookup::OldId), nearer);
}

TEST(ChildIndex, NullIsTheEmptyId) {
    Container container(100);
    CFCBlockNode* const nameless = container.add(L"");
    EXPECT_EQ(findChild(container.node, nullptr, ChildLookup::Id), nullptr);
    EXPECT_EQ(findChild(container.node, nullptr, ChildLookup::OldId), nullptr);
    EXPECT_EQ(findChild(container.node, nullptr, ChildLookup::ExactId), nameless);
    container.find(L"b0", ChildLookup::ExactId);
    EXPECT_EQ(container.find(L"", ChildLookup::ExactId), nameless);
}

TEST(ChildIndex, NewChildrenAreFoundWithoutStartingOver) {
    Container container(100);
    container.find(L"b0");
    CFCBlockNode* const later = container.add(L"later");
    EXPECT_TRUE(container.indexed()) << "a child in front is no change to what is known";
    EXPECT_EQ(container.find(L"LATER"), later);
    CFCBlockNode* const hiding = container.add(L"b0");
    EXPECT_EQ(container.find(L"b0"), hiding) << "the child nearest the head wins";
    CFCBlockNode* const one = container.add(L"Same");
    CFCBlockNode* const two = container.add(L"same");
    EXPECT_EQ(container.find(L"SAME"), two);
    EXPECT_EQ(container.find(L"Same", ChildLookup::ExactId), one);
}

TEST(ChildIndex, RenamedChildrenAreFoundByTheirNewIds) {
    Container container(100);
    auto* const block = dynamic_cast<CFCBlockNode*>(container.find(L"b50"));
    ASSERT_TRUE(container.indexed());
    block->SetBlockID(L"renamed");
    EXPECT_FALSE(container.indexed());
    EXPECT_EQ(container.find(L"b50"), nullptr);
    EXPECT_EQ(container.find(L"Renamed"), block);
    block->SetNodeId(L"again");
    EXPECT_EQ(container.find(L"renamed"), nullptr);
    EXPECT_EQ(container.find(L"again"), block);
    container.find(L"b0", ChildLookup::OldId);
    block->SetOldBlockID(L"once");
    EXPECT_EQ(container.find(L"ONCE", ChildLookup::OldId), block);
    // A child without identifier that gets one.
    CFCBlockNode* const nameless = container.add(L"");
    container.find(L"b0");
    nameless->SetNodeId(L"b0");
    EXPECT_EQ(container.find(L"b0"), nameless);
}

TEST(ChildIndex, AssignedBlocksAreFoundByTheirNewIds) {
    Container container(100);
    auto* const block = dynamic_cast<CFCBlockNode*>(container.find(L"b50"));
    ASSERT_TRUE(container.indexed());
    CFCBlockNode source;
    source.SetBlockID(L"copied");
    CFCBlockData::Copy(source.GetFCBlockData(), block->GetFCBlockData());
    EXPECT_EQ(container.find(L"b50"), walk(container.node, L"b50", ChildLookup::Id));
    EXPECT_EQ(container.find(L"copied"), walk(container.node, L"copied", ChildLookup::Id));
}

TEST(ChildIndex, ChildrenTakenOutAreNotFound) {
    Container container(100);
    container.find(L"b0");
    IFCNode* const middle = container.find(L"b50");
    middle->Delete();
    EXPECT_EQ(container.find(L"b50"), nullptr);
    EXPECT_NE(container.find(L"b49"), nullptr);
    ASSERT_TRUE(container.indexed());
    // The first one, by way of the container.
    IFCNode* const first = container.node.GetChild();
    std::wstring const id = first->GetNodeId();
    first->Delete();
    EXPECT_EQ(container.find(id), nullptr);
    // By hand, and without a word to the neighbours.
    IFCNode* const head = container.node.GetChild();
    std::wstring const headId = head->GetNodeId();
    container.find(L"b0");
    container.node.SetChild(head->GetNext());
    EXPECT_EQ(container.find(headId), nullptr);
    container.node.SetChild(head);
    EXPECT_EQ(container.find(headId), head);
}

TEST(ChildIndex, ChildrenPutInByHandAreFound) {
    Container container(100);
    container.find(L"b0");
    auto* const added = new CFCBlockNode;
    added->SetNodeId(L"added");
    added->SetParentNode(&container.node);
    IFCNode* const last = container.find(L"b0");
    last->SetNext(added);
    added->SetPrev(last);
    EXPECT_EQ(container.find(L"added"), added);
    // One more behind it, once it is known.
    auto* const behind = new CFCBlockNode;
    behind->SetNodeId(L"behind");
    behind->SetParentNode(&container.node);
    ASSERT_TRUE(container.indexed());
    added->SetNext(behind);
    EXPECT_EQ(container.find(L"behind"), behind);
}

TEST(ChildIndex, ChildMovedToTheFrontWins) {
    Container container(100);
    container.add(L"twin");
    CFCBlockNode* const nearer = container.add(L"Twin");
    container.add(L"front");
    container.find(L"b0");
    IFCNode* const twin = nearer->GetNext();
    EXPECT_EQ(container.find(L"twin"), nearer);
    nearer->SetNext(twin->GetNext());
    twin->GetNext()->SetPrev(nearer);
    twin->RemoveLinks();
    container.node.AppendChild(twin, false);
    EXPECT_EQ(container.find(L"twin"), twin);
    EXPECT_EQ(container.find(L"twin"), walk(container.node, L"twin", ChildLookup::Id));
}

TEST(ChildIndex, MovedToAnotherContainerAChildIsFoundThere) {
    Container from(100);
    Container to(100);
    from.find(L"b0");
    to.find(L"b0");
    IFCNode* const child = from.find(L"b50");
    child->GetPrev()->SetNext(child->GetNext());
    child->GetNext()->SetPrev(child->GetPrev());
    child->RemoveLinks();
    child->SetNodeId(L"guest");
    to.node.AppendChild(child, false);
    EXPECT_EQ(from.find(L"guest"), nullptr);
    EXPECT_EQ(from.find(L"b50"), nullptr);
    EXPECT_EQ(to.find(L"guest"), child);
}

TEST(ChildIndex, ChildWithAnotherParentStaysInTheChain) {
    Container container(100);
    CFCSubGroupNode other;
    container.find(L"b0");
    auto* const child = dynamic_cast<CFCBlockNode*>(container.find(L"b50"));
    ASSERT_TRUE(container.indexed());
    child->SetParentNode(&other);
    child->SetBlockID(L"renamed");
    EXPECT_EQ(container.find(L"b50"), nullptr);
    EXPECT_EQ(container.find(L"renamed"), child);
    EXPECT_FALSE(container.indexed()) << "changes of this child would be told to another parent";
    EXPECT_EQ(other.FindNodeSimple(L"renamed"), nullptr);
    child->SetParentNode(&container.node);
    EXPECT_EQ(container.find(L"renamed"), child);
    EXPECT_TRUE(container.indexed());
}

TEST(ChildIndex, ChildWithoutLinksEndsTheChain) {
    Container container(100);
    container.find(L"b0");
    IFCNode* const child = container.find(L"b50");
    IFCNode* const next = child->GetNext();
    ASSERT_TRUE(container.indexed());
    child->RemoveLinks();
    EXPECT_EQ(container.find(L"b0"), nullptr);
    EXPECT_EQ(container.find(L"b50"), child);
    EXPECT_NE(container.find(L"b99"), nullptr);
    child->SetNext(next);
    EXPECT_NE(container.find(L"b0"), nullptr);
}

TEST(ChildIndex, ExchangedChainHidesTheFormerChildren) {
    Container container(100);
    Container other(100);
    IFCNode* const former = container.node.GetChild();
    IFCNode* const fresh = other.node.GetChild();
    for (IFCNode* child = fresh; child != nullptr; child = child->GetNext()) {
        child->SetParentNode(&container.node);
        child->SetNodeId((TuString(L"new ") + child->GetNodeId()));
    }
    ASSERT_NE(container.find(L"b0"), nullptr);
    ASSERT_TRUE(container.indexed());
    container.node.SetChild(fresh);
    EXPECT_EQ(container.find(L"b0"), nullptr);
    EXPECT_NE(container.find(L"new b0"), nullptr);
    EXPECT_TRUE(container.indexed());
    container.node.SetChild(former);
    EXPECT_EQ(container.find(L"new b0"), nullptr);
    EXPECT_NE(container.find(L"b0"), nullptr);
}

TEST(ChildIndex, DestroyedChildrenLeaveNothingBehind) {
    CFCSubGroupNode container;
    std::vector<std::unique_ptr<CFCBlockNode>> blocks;
    for (int i = 0; i < 100; ++i) {
        blocks.push_back(std::make_unique<CFCBlockNode>());
        blocks.back()->SetNodeId((L"b" + std::to_wstring(i)).c_str());
        container.AppendChild(blocks.back().get(), false);
    }
    EXPECT_EQ(container.FindNodeSimple(L"b0"), blocks[0].get());
    EXPECT_TRUE(ChildIndex::exists(container, ChildLookup::Id));
    // The chain is forgotten first, the children go afterwards, in an order of their own.
    container.SetChild(nullptr);
    for (std::size_t i = 0; i < blocks.size(); i += 2) {
        blocks[i].reset();
    }
    EXPECT_FALSE(ChildIndex::exists(container, ChildLookup::Id));
    EXPECT_EQ(container.FindNodeSimple(L"b1"), nullptr);
    for (auto& block : blocks) {
        block.reset();
    }
    EXPECT_EQ(container.FindNodeSimple(L"b1"), nullptr);
}

TEST(ChildIndex, ChildrenOutliveTheirContainer) {
    std::vector<std::unique_ptr<CFCBlockNode>> blocks;
    {
        CFCSubGroupNode container;
        for (int i = 0; i < 100; ++i) {
            blocks.push_back(std::make_unique<CFCBlockNode>());
            blocks.back()->SetNodeId((L"b" + std::to_wstring(i)).c_str());
            container.AppendChild(blocks.back().get(), false);
        }
        EXPECT_EQ(container.FindNodeSimple(L"b0"), blocks[0].get());
        EXPECT_TRUE(ChildIndex::exists(container, ChildLookup::Id));
    }
    // None of this may look at the container.
    for (auto const& block : blocks) {
        block->SetBlockID(L"renamed");
        block->SetNext(nullptr);
        block->SetParentNode(nullptr);
    }
    CFCSubGroupNode next;
    for (auto const& block : blocks) {
        next.AppendChild(block.get(), false);
    }
    EXPECT_EQ(next.FindNodeSimple(L"RENAMED"), blocks.back().get());
}

TEST(ChildIndex, CopyOfAContainerHasNoIndex) {
    Container container(100);
    container.find(L"b0");
    CFCSubGroupNode copy(container.node);
    EXPECT_FALSE(ChildIndex::exists(copy, ChildLookup::Id));
    EXPECT_EQ(copy.FindNodeSimple(L"B0"), container.find(L"b0")) << "it shows the same children";
    EXPECT_FALSE(ChildIndex::exists(copy, ChildLookup::Id)) << "which have another parent";
    CFCSubGroupNode assigned;
    assigned = container.node;
    EXPECT_EQ(assigned.FindNodeSimple(L"B0"), container.find(L"b0"));
    // A copy of a child is not known to the index.
    auto* const child = dynamic_cast<CFCBlockNode*>(container.find(L"b50"));
    {
        CFCBlockNode twin(*child);
        twin.SetBlockID(L"twin");
    }
    EXPECT_TRUE(container.indexed());
    EXPECT_EQ(container.find(L"b50"), child);
}

TEST(ChildIndex, AssignedContainerShowsItsNewChildren) {
    Container one(100);
    Container two(100);
    CFCBlockNode* const own = two.add(L"own");
    one.find(L"b0");
    two.find(L"b0");
    CFCSubGroupNode target;
    auto* const former = new CFCBlockNode;
    former->SetNodeId(L"former");
    target.AppendChild(former, false);
    for (int i = 0; i < 50; ++i) {
        auto* const block = new CFCBlockNode;
        block->SetNodeId(L"x");
        target.AppendChild(block, false);
    }
    IFCNode* chain = target.GetChild();
    EXPECT_EQ(target.FindNodeSimple(L"former"), former);
    ASSERT_TRUE(ChildIndex::exists(target, ChildLookup::Id));
    target = two.node;
    EXPECT_EQ(target.FindNodeSimple(L"own"), own);
    EXPECT_EQ(target.FindNodeSimple(L"former"), nullptr);
    while (chain != nullptr) {
        IFCNode* const next = chain->GetNext();
        delete chain;
        chain = next;
    }
}

TEST(ChildIndex, ChainThatClosesOnItselfIsWalked) {
    // A child that was appended twice: all children, or all but the ones nearest the head, stand in a ring.
    for (int const again : {0, 1, 30, 150}) {
        for (int const later : {0, 1, 40, 100}) {
            CFCSubGroupNode parent;
            std::vector<std::unique_ptr<CFCBlockNode>> blocks;
            auto const add = [&](std::wstring const& id) {
                blocks.push_back(std::make_unique<CFCBlockNode>());
                blocks.back()->SetNodeId(id.c_str());
                parent.AppendChild(blocks.back().get(), false);
            };
            for (int i = 0; i < 200; ++i) {
                add(L"b" + std::to_wstring(i));
            }
            parent.AppendChild(blocks[static_cast<std::size_t>(again)].get(), false);
            for (int i = 0; i < later; ++i) {
                add(L"later" + std::to_wstring(i));
            }
            for (ChildLookup const lookup : {ChildLookup::Id, ChildLookup::ExactId}) {
                for (std::wstring const id : {L"b199", L"b160"}) {
                    EXPECT_EQ(findChild(parent, id.c_str(), lookup), walk(parent, id, lookup));
                }
                EXPECT_FALSE(ChildIndex::exists(parent, lookup));
            }
        }
    }
}

TEST(ChildIndex, ChildrenWithIdsOfTheirOwnAreWalked) {
    CFCSubGroupNode container;
    std::vector<std::unique_ptr<NamedNode>> nodes;
    for (int i = 0; i < 100; ++i) {
        nodes.push_back(std::make_unique<NamedNode>((L"n" + std::to_wstring(i)).c_str()));
        container.AppendChild(nodes.back().get(), false);
    }
    EXPECT_EQ(container.FindNodeSimple(L"N0"), nodes[0].get());
    EXPECT_FALSE(ChildIndex::exists(container, ChildLookup::Id));
    // The index could not know of this.
    nodes[0]->SetNodeId(L"renamed");
    EXPECT_EQ(container.FindNodeSimple(L"renamed"), nodes[0].get());
    EXPECT_EQ(container.FindNodeSimple(L"N0"), nullptr);
}

TEST(ChildIndex, BlocksOfAHostWithAnIdOfTheirOwnAreWalked) {
    class HostBlock : public CFCBlockNode {
    public:
        wchar_t const* GetNodeId() override { return id; }
        TuString id;
    };
    CFCSubGroupNode container;
    HostBlock block;
    block.id = L"host";
    block.SetBlockID(L"block");
    container.AppendChild(&block, false);
    std::vector<std::unique_ptr<CFCBlockNode>> blocks;
    for (int i = 0; i < 100; ++i) {
        blocks.push_back(std::make_unique<CFCBlockNode>());
        container.AppendChild(blocks.back().get(), false);
    }
    EXPECT_EQ(container.FindNodeSimple(L"host"), &block);
    EXPECT_EQ(container.FindNodeSimple(L"block"), nullptr);
    EXPECT_FALSE(ChildIndex::exists(container, ChildLookup::Id));
    block.id = L"other";
    EXPECT_EQ(container.FindNodeSimple(L"host"), nullptr);
    EXPECT_EQ(container.FindNodeSimple(L"other"), &block);
}

TEST(ChildIndex, BlocksOfAHostWithTheLibrarysIdsAreIndexed) {
    class HostBlock : public CFCBlockNode {};
    CFCSubGroupNode container;
    std::vector<std::unique_ptr<HostBlock>> blocks;
    for (int i = 0; i < 100; ++i) {
        blocks.push_back(std::make_unique<HostBlock>());
        blocks.back()->SetNodeId((L"h" + std::to_wstring(i)).c_str());
        container.AppendChild(blocks.back().get(), false);
    }
    EXPECT_EQ(container.FindNodeSimple(L"H0"), blocks[0].get());
    EXPECT_TRUE(ChildIndex::exists(container, ChildLookup::Id));
}

TEST(ChildIndex, FindChildBlockGoesByTheExactId) {
    CFCSubProcessNode container;
    std::vector<std::unique_ptr<CFCBlockNode>> blocks;
    for (int i = 0; i < 100; ++i) {
        blocks.push_back(std::make_unique<CFCBlockNode>());
        blocks.back()->SetNodeId((L"b" + std::to_wstring(i)).c_str());
        container.AppendChild(blocks.back().get(), false);
    }
    EXPECT_EQ(container.FindChildBlock(L"b0"), blocks[0].get());
    EXPECT_EQ(container.FindChildBlock(L"B0"), nullptr);
    EXPECT_TRUE(ChildIndex::exists(container, ChildLookup::ExactId));
    EXPECT_EQ(container.FindNodeSimple(L"B0"), blocks[0].get());
}

TEST(ChildIndex, AgreesWithTheWalkThroughManyRandomChanges) {
    std::mt19937 random(20240607);
    auto const below = [&](std::size_t limit) {
        return static_cast<std::size_t>(random()) % limit;
    };
    std::vector<std::wstring> const ids = [] {
        std::vector<std::wstring> result{L""};
        for (int i = 0; i < 60; ++i) {
            result.push_back((i % 2 == 0 ? L"Id" : L"ID") + std::to_wstring(i / 2));
        }
        return result;
    }();
    Container container;
    std::vector<CFCBlockNode*> children;
    int indexedLookups = 0;
    for (int step = 0; step < 20000; ++step) {
        std::wstring const id = ids[below(ids.size())];
        std::size_t const action = below(40);
        if (children.size() < 40 || (action < 4 && children.size() < 150)) {
            children.push_back(container.add(id));
        } else if (action == 4) {
            children[below(children.size())]->SetBlockID(id.c_str());
        } else if (action == 5) {
            children[below(children.size())]->SetOldNodeId(id.c_str());
        } else if (action == 6) {
            std::size_t const at = below(children.size());
            children[at]->Delete();
            children.erase(children.begin() + static_cast<std::ptrdiff_t>(at));
        } else if (action == 7) {
            // Out of the chain and back in front.
            CFCBlockNode* const child = children[below(children.size())];
            if (child->GetPrev() != nullptr) {
                child->GetPrev()->SetNext(child->GetNext());
                if (child->GetNext() != nullptr) {
                    child->GetNext()->SetPrev(child->GetPrev());
                }
                child->RemoveLinks();
                container.node.AppendChild(child, false);
            }
        } else {
            ChildLookup const lookup = kLookups[below(3)];
            ASSERT_EQ(container.find(id, lookup), walk(container.node, id, lookup)) << "step " << step;
            indexedLookups += container.indexed(lookup) ? 1 : 0;
        }
    }
    EXPECT_GT(indexedLookups, 1000) << "the index has to be at work for this to mean anything";
}

TEST(ChildIndex, LookupsOfAllChildrenGrowInProportion) {
    auto const secondsFor = [](int children) {
        Container container(children);
        auto const start = std::chrono::steady_clock::now();
        for (int i = 0; i < children; ++i) {
            EXPECT_NE(container.find(L"B" + std::to_wstring(i)), nullptr);
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    secondsFor(1000);
    double const small = secondsFor(2000);
    double const large = secondsFor(20000);
    // A walk for each would cost a hundred times as much; allow for a busy machine.
    EXPECT_LT(large, 40 * small);
}

} // namespace
