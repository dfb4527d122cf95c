#include "flowmere/model/ConnectorIndex.h"

#include "TestSupport.h"
#include "model/FlowTree.h"

#include "flowmere/model/FCFolderNodes.h"

#include <algorithm>
#include <chrono>
#include <random>

using namespace flowmere::test;
using flowmere::ConnectorIndex;

namespace {

// What a walk along the list finds.
std::vector<CFCConnector*> walked(CFCConnectorList& list, ConnectorIndex::Side side, CFCBlockNode const* block) {
    std::vector<CFCConnector*> found;
    for (CFCConnector* connector : elements(list)) {
        if (connector != nullptr && block != nullptr && ConnectorIndex::blockAt(side, connector) == block) {
            found.push_back(connector);
        }
    }
    return found;
}

// A container with blocks and the connectors between them, which go with it.
class ConnectorIndexTest : public testing::Test {
protected:
    void addBlocks(int count) {
        for (int i = 0; i < count; ++i) {
            blocks.push_back(addChild(sub.get(), std::to_wstring(i).c_str()));
        }
    }

    // Joins each block to the next.
    void chain(int count) {
        addBlocks(count + 1);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            connect(sub.get(), blocks[i], blocks[i + 1]);
        }
    }

    void expectAsWalked() {
        for (CFCBlockNode* block : blocks) {
            for (auto const side : {ConnectorIndex::Start, ConnectorIndex::End}) {
                ASSERT_EQ(walked(list(), side, block), flowmere::connectorsAt(list(), side, block));
            }
        }
    }

    CFCConnectorList& list() { return *sub->GetConnectorList(); }
    CFCConnector* at(int number) { return dynamic_cast<CFCConnector*>(list().GetAt(number)); }

    Tree<CFCSubProcessNode> const sub = makeTree<CFCSubProcessNode>(61);
    std::vector<CFCBlockNode*> blocks;
};

} // namespace

TEST_F(ConnectorIndexTest, OnlyLongListsGetOne) {
    chain(32);
    EXPECT_EQ(nullptr, ConnectorIndex::of(list()));
    expectAsWalked();
    connect(sub.get(), blocks[32], blocks[0]);
    EXPECT_NE(nullptr, ConnectorIndex::of(list()));
    expectAsWalked();
}

TEST_F(ConnectorIndexTest, FindsNothingForNoBlock) {
    chain(40);
    connect(sub.get(), nullptr, nullptr);
    EXPECT_TRUE(flowmere::connectorsAt(list(), ConnectorIndex::Start, nullptr).empty());
    EXPECT_TRUE(flowmere::connectorsAt(list(), ConnectorIndex::End, nullptr).empty());
    CFCBlockNode stranger;
    EXPECT_TRUE(flowmere::connectorsAt(list(), ConnectorIndex::Start, &stranger).empty());
}

TEST_F(ConnectorIndexTest, TakesInWhatIsAdded) {
    chain(40);
    expectAsWalked();
    connect(sub.get(), blocks[3], blocks[9], 4);
    auto raw = makeConnector(blocks[3], blocks[10]);
    list().AddTail(raw.release());
    expectAsWalked();
    EXPECT_EQ(3U, flowmere::connectorsAt(list(), ConnectorIndex::Start, blocks[3]).size());
}

TEST_F(ConnectorIndexTest, FollowsEndsThatMove) {
    chain(60);
    expectAsWalked();
    at(50)->SetStartNode(6, blocks[5]);
    at(2)->SetStartNode(6, blocks[5], L"p");
    at(30)->SetEndNode(2, blocks[6]);
    at(7)->SetEndNode(2, nullptr);
    at(8)->ReverseConnector();
    at(9)->SetStartNode(0, nullptr);
    expectAsWalked();
    at(7)->SetEndNode(2, blocks[1], L"q");
    at(9)->SetStartNode(4, blocks[5]);
    at(5)->SetStartNode(4, blocks[5]);
    expectAsWalked();
    EXPECT_EQ(at(2), flowmere::connectorsAt(list(), ConnectorIndex::Start, blocks[5]).front());
}

TEST_F(ConnectorIndexTest, FollowsDeletions) {
    chain(80);
    expectAsWalked();
    for (int const number : {0, 0, 10, 20, 30, 75, 74, 0}) {
        sub->DeleteConnector(at(number));
        expectAsWalked();
    }
    sub->DeleteConnector(dynamic_cast<CFCConnector*>(reinterpret_cast<IFCNode*>(list().GetTailPosition())));
    expectAsWalked();
    connect(sub.get(), blocks[0], blocks[70]);
    expectAsWalked();
    sub->DeleteConnectors();
    expectAsWalked();
    connect(sub.get(), blocks[0], blocks[70]);
    expectAsWalked();
}

TEST_F(ConnectorIndexTest, FollowsOtherChangesOfTheChain) {
    chain(80);
    expectAsWalked();
    auto inserted = makeConnector(blocks[4], blocks[60]);
    list().SetAt(inserted.release(), 20);
    expectAsWalked();
    // A node of the list takes itself out.
    at(33)->Delete();
    expectAsWalked();
    // The chain is cut, and put together again.
    CFCConnector* const before = at(40);
    IFCNode* const rest = before->GetNext();
    before->SetNext(nullptr);
    expectAsWalked();
    before->SetNext(rest);
    expectAsWalked();
    before->SetNext(rest->GetNext());
    expectAsWalked();
    rest->GetNext()->SetPrev(before);
    delete rest;
    expectAsWalked();
    EXPECT_EQ(79, list().GetCount());
}

TEST_F(ConnectorIndexTest, FollowsUnlinkedAndAssignedConnectors) {
    chain(80);
    expectAsWalked();
    CFCConnector* const last = at(79);
    CFCConnector copy(*at(10));
    EXPECT_EQ(at(10)->GetStartObject(), copy.GetStartObject());
    copy.SetStartNode(1, blocks[70]);
    expectAsWalked();
    CFCConnector* const middle = at(50);
    IFCNode* const behind = middle->GetNext();
    CFCConnector other;
    other.SetStartNode(6, blocks[2]);
    other.SetEndNode(2, blocks[1]);
    other.SetNext(behind);
    other.SetPrev(middle->GetPrev());
    *middle = other;
    expectAsWalked();
    EXPECT_EQ(2U, flowmere::connectorsAt(list(), ConnectorIndex::Start, blocks[2]).size());
    // RemoveLinks forgets the rest of the chain.
    middle->RemoveLinks();
    expectAsWalked();
    middle->SetNext(behind);
    middle->SetPrev(at(49));
    expectAsWalked();
    EXPECT_EQ(last, at(79));
}

TEST_F(ConnectorIndexTest, ForeignElementsMakeTheListBeWalked) {
    chain(40);
    expectAsWalked();
    list().AddTail(new CFCSubGroupNode);
    EXPECT_EQ(nullptr, ConnectorIndex::of(list()));
    connect(sub.get(), blocks[40], blocks[0]);
    expectAsWalked();
    EXPECT_EQ(blocks[0], blocks[40]->GetNextConnectedBlock());
    list().DeleteNode(list().GetAt(40));
    EXPECT_NE(nullptr, ConnectorIndex::of(list()));
    expectAsWalked();
}

TEST_F(ConnectorIndexTest, ListsThatShareElementsTakeTurns) {
    chain(50);
    CFCConnectorList copy(list());
    for (int round = 0; round < 3; ++round) {
        expectAsWalked();
        EXPECT_EQ(walked(copy, ConnectorIndex::Start, blocks[7]),
                  flowmere::connectorsAt(copy, ConnectorIndex::Start, blocks[7]));
    }
    CFCConnectorList assigned;
    EXPECT_NE(nullptr, ConnectorIndex::of(copy));
    copy = assigned;
    EXPECT_TRUE(flowmere::connectorsAt(copy, ConnectorIndex::Start, blocks[7]).empty());
    expectAsWalked();
}

TEST_F(ConnectorIndexTest, EndsBeforeARing) {
    chain(40);
    CFCConnector* const last = at(39);
    ASSERT_NE(nullptr, ConnectorIndex::of(list()));
    last->SetNext(at(3));
    EXPECT_EQ(std::vector{at(5)}, flowmere::connectorsAt(list(), ConnectorIndex::Start, blocks[5]));
    last->SetNext(nullptr);
    expectAsWalked();
}

TEST_F(ConnectorIndexTest, OutlivesItsConnectors) {
    std::vector<std::unique_ptr<CFCConnector>> connectors;
    addBlocks(2);
    {
        CFCConnectorList local;
        for (int i = 0; i < 40; ++i) {
            connectors.push_back(makeConnector(blocks[0], blocks[1]));
            local.AddTail(connectors.back().get());
        }
        ASSERT_NE(nullptr, ConnectorIndex::of(local));
        // In any order, while the list still points at them.
        std::shuffle(connectors.begin(), connectors.end(), std::mt19937(7));
        for (std::size_t i = 0; i < 20; ++i) {
            connectors.erase(connectors.begin());
        }
    }
    // Those that are left know of no index any more.
    for (auto const& connector : connectors) {
        connector->SetStartNode(1, nullptr);
    }
    EXPECT_EQ(20U, connectors.size());
}

TEST_F(ConnectorIndexTest, TwinsAreFoundByTheirPair) {
    chain(40);
    CFCConnector* const deleted = at(4);
    deleted->DeleteConnecter(true);
    struct Case {
        CFCBlockNode* start;
        CFCBlockNode* end;
        bool held;
    };
    Case const cases[] = {
        {blocks[0], blocks[1], true},   {blocks[1], blocks[0], false}, {blocks[4], blocks[5], false},
        {blocks[39], blocks[40], true}, {blocks[0], blocks[2], false}, {blocks[40], blocks[0], false},
        {nullptr, nullptr, false},      {blocks[0], nullptr, false},   {nullptr, blocks[1], false},
    };
    for (Case const& c : cases) {
        auto const candidate = makeConnector(c.start, c.end);
        EXPECT_EQ(c.held, flowmere::holdsTwin(list(), *candidate));
    }
    EXPECT_TRUE(flowmere::holdsTwin(list(), *deleted));
    connect(sub.get(), nullptr, nullptr);
    connect(sub.get(), blocks[0], nullptr);
    connect(sub.get(), nullptr, blocks[1]);
    for (Case const& c :
         {Case{nullptr, nullptr, true}, Case{blocks[0], nullptr, true}, Case{nullptr, blocks[1], true}}) {
        auto const candidate = makeConnector(c.start, c.end);
        EXPECT_EQ(c.held, flowmere::holdsTwin(list(), *candidate));
    }
}

TEST_F(ConnectorIndexTest, RemovedBlocksLeaveTheIndexInStep) {
    chain(60);
    expectAsWalked();
    blocks[10]->RemoveConnectors();
    expectAsWalked();
    EXPECT_EQ(nullptr, blocks[9]->GetNextConnectedBlock());
    EXPECT_NE(nullptr, connect(sub.get(), blocks[9], blocks[10]));
    EXPECT_EQ(blocks[10], blocks[9]->GetNextConnectedBlock());
    expectAsWalked();
}

TEST_F(ConnectorIndexTest, AgreesWithTheWalkThroughRandomChanges) {
    std::mt19937 random(20240607);
    auto const below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    addBlocks(12);
    auto const anyBlock = [&]() {
        return below(8) == 0 ? nullptr : blocks[below(blocks.size())];
    };
    for (int round = 0; round < 3000; ++round) {
        auto const known = elements(list());
        CFCConnector* const any = known.empty() ? nullptr : known[below(known.size())];
        std::size_t const action = known.size() < 60 ? 0 : below(10);
        switch (action) {
        case 0:
        case 1: {
            auto connector = makeConnector(anyBlock(), anyBlock(), static_cast<int>(below(9)));
            bool twin = false;
            for (CFCConnector* other : known) {
                twin = twin || (other->GetStartObject() == connector->GetStartObject() &&
                                other->GetEndObject() == connector->GetEndObject() && !other->IsDeleted());
            }
            ASSERT_EQ(twin, flowmere::holdsTwin(list(), *connector));
            list().AddTail(connector.release());
            break;
        }
        case 2:
            any->SetStartNode(1, anyBlock());
            break;
        case 3:
            any->SetEndNode(1, anyBlock());
            break;
        case 4:
            any->ReverseConnector();
            break;
        case 5:
            any->DeleteConnecter(below(2) == 0);
            break;
        case 6:
            sub->DeleteConnector(any);
            break;
        case 7:
            list().SetAt(makeConnector(anyBlock(), anyBlock()).release(),
                         1 + static_cast<int>(below(known.size() - 1)));
            break;
        case 8:
            sub->DeleteConnector(known.front());
            break;
        default:
            sub->DeleteConnector(known.back());
            break;
        }
        expectAsWalked();
    }
}

TEST_F(ConnectorIndexTest, GrowsInProportion) {
    // With a walk for each, every one of these steps would take minutes.
    constexpr int kBlocks = 50000;
    auto const begin = std::chrono::steady_clock::now();
    std::vector<std::unique_ptr<CFCBlockNode>> own;
    for (int i = 0; i <= kBlocks; ++i) {
        own.push_back(std::make_unique<CFCBlockNode>());
        own.back()->SetParentNode(sub.get());
    }
    for (std::size_t i = 0; i < kBlocks; ++i) {
        auto connector = makeConnector(own[i].get(), own[i + 1].get());
        sub->AddConnector(connector.get());
        connector.release();
    }
    CFCBlockNode* block = own.front().get();
    int steps = 0;
    while (CFCBlockNode* const next = block->GetNextConnectedBlock()) {
        block = next;
        ++steps;
    }
    EXPECT_EQ(kBlocks, steps);
    for (auto const& each : own) {
        each->RemoveConnectors();
    }
    EXPECT_EQ(nullptr, own.front()->GetNextConnectedBlock());
    // A hub with many ways out and in.
    CFCBlockNode* const hub = own.front().get();
    for (auto const& each : own) {
        auto leaving = makeConnector(hub, each.get());
        sub->AddConnector(leaving.get());
        leaving.release();
    }
    for (std::size_t i = 1; i < own.size(); ++i) {
        own[i]->RemoveConnectors();
    }
    while (list().GetHeadPosition() != nullptr) {
        sub->DeleteConnector(reinterpret_cast<IFCNode*>(list().GetHeadPosition()));
        flowmere::connectorsAt(list(), ConnectorIndex::Start, hub);
    }
    auto const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_LT(seconds, 20.0);
}
