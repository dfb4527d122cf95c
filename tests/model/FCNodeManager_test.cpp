#include "flowmere/model/FCNodeManager.h"

#include "flowmere/model/NodeTable.h"
#include "model/PlainNodes.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

using flowmere::test::PlainNode;

// Number of entries of the table: every node has one, and the last node built has the last.
int entryCount() {
    PlainNode const last;
    return const_cast<PlainNode&>(last).GetNodeHandle() + 1;
}

TEST(CFCNodeManager, GivesTheNodeOfAHandle) {
    PlainNode node;
    EXPECT_EQ(CFCNodeManager::GetNode(node.GetNodeHandle()), &node);
}

TEST(CFCNodeManager, GivesNullForANodeThatIsGone) {
    auto node = std::make_unique<PlainNode>();
    int const handle = node->GetNodeHandle();
    node.reset();
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}

TEST(CFCNodeManager, GivesNullForAHandleAboveTheTable) {
    EXPECT_EQ(CFCNodeManager::GetNode(std::numeric_limits<int>::max()), nullptr);
}

TEST(NodeTable, TellsTheLivingNodeAndIsSilentOnEveryOtherNumber) {
    using flowmere::livingNode;
    static_assert(noexcept(livingNode(0)));
    auto node = std::make_unique<PlainNode>();
    int const handle = node->GetNodeHandle();
    EXPECT_EQ(livingNode(handle), node.get());
    node.reset();
    EXPECT_EQ(livingNode(handle), nullptr);
    // Among the last of these is the handle just behind the table.
    for (int number = handle; number < handle + 100; ++number) {
        EXPECT_EQ(livingNode(number), nullptr);
    }
    for (int number :
         {0, -1, -handle, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), entryCount()}) {
        EXPECT_EQ(livingNode(number), nullptr) << number;
    }
}

TEST(CFCNodeManager, EntryZeroBelongsToNoNode) {
    PlainNode const node;
    EXPECT_EQ(CFCNodeManager::GetNode(0), nullptr);
}

TEST(CFCNodeManager, ThrowsForANegativeHandle) {
    PlainNode const node;
    EXPECT_THROW(CFCNodeManager::GetNode(-1), std::out_of_range);
    EXPECT_THROW(CFCNodeManager::GetNode(std::numeric_limits<int>::min()), std::out_of_range);
}

TEST(CFCNodeManager, ThrowsForTheHandleBehindTheLastEntryOnly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // In a process of its own, where nothing but the nodes has made entries.
    EXPECT_EXIT(
        {
            int const count = entryCount();
            bool thrown = false;
            try {
                CFCNodeManager::GetNode(count);
            } catch (std::out_of_range const&) {
                thrown = true;
            }
            bool const others =
                CFCNodeManager::GetNode(count - 1) == nullptr && CFCNodeManager::GetNode(count + 1) == nullptr;
            std::exit(thrown && others ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CFCNodeManager, EmptyTableThrowsForItsCountOfZero) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            bool thrown = false;
            try {
                CFCNodeManager::GetNode(0);
            } catch (std::out_of_range const&) {
                thrown = true;
            }
            std::exit(thrown && CFCNodeManager::GetNode(1) == nullptr ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CFCNodeManager, FirstCallMakesAnEmptyEntryInFront) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            PlainNode node;
            CFCNodeManager::SetNode(5, &node);
            bool good = CFCNodeManager::GetNode(5) == &node && CFCNodeManager::GetNode(0) == nullptr;
            for (int handle = 2; handle < 5; ++handle) {
                good = good && CFCNodeManager::GetNode(handle) == nullptr;
            }
            std::exit(good ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CFCNodeManager, SetNodeStoresAndClears) {
    PlainNode node;
    PlainNode other;
    int const handle = node.GetNodeHandle();
    CFCNodeManager::SetNode(handle, &other);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), &other);
    CFCNodeManager::SetNode(handle, nullptr);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
    CFCNodeManager::SetNode(handle, &node);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), &node);
}

TEST(CFCNodeManager, TableGrowsToTheHandleOfANode) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            PlainNode node;
            CFCNodeManager::SetNode(5000, &node);
            bool good = CFCNodeManager::GetNode(5000) == &node;
            for (int handle = node.GetNodeHandle() + 1; handle < 5000; ++handle) {
                good = good && CFCNodeManager::GetNode(handle) == nullptr;
            }
            // The counter of the nodes goes its own way.
            PlainNode next;
            good = good && next.GetNodeHandle() == node.GetNodeHandle() + 1;
            std::exit(good ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CFCNodeManager, NullNodeNeverMakesTheTableGrow) {
    int const count = entryCount();
    CFCNodeManager::SetNode(std::numeric_limits<int>::max(), nullptr);
    CFCNodeManager::SetNode(count + 10, nullptr);
    EXPECT_THROW(CFCNodeManager::GetNode(count), std::out_of_range) << "the table still ends there";
    EXPECT_EQ(CFCNodeManager::GetNode(count + 1), nullptr);
}

TEST(CFCNodeManager, IgnoresNegativeHandles) {
    PlainNode node;
    CFCNodeManager::SetNode(-1, &node);
    CFCNodeManager::SetNode(std::numeric_limits<int>::min(), &node);
    CFCNodeManager::SetNode(-1, nullptr);
    EXPECT_THROW(CFCNodeManager::GetNode(-1), std::out_of_range);
    EXPECT_EQ(CFCNodeManager::GetNode(node.GetNodeHandle()), &node);
}

TEST(CFCNodeManager, KnowsThousandsOfNodes) {
    std::vector<std::unique_ptr<PlainNode>> nodes;
    for (int i = 0; i < 5000; ++i) {
        nodes.push_back(std::make_unique<PlainNode>());
    }
    for (auto const& node : nodes) {
        ASSERT_EQ(CFCNodeManager::GetNode(node->GetNodeHandle()), node.get());
    }
    std::vector<int> handles;
    for (auto& node : nodes) {
        handles.push_back(node->GetNodeHandle());
        node.reset();
    }
    for (int const handle : handles) {
        ASSERT_EQ(CFCNodeManager::GetNode(handle), nullptr);
    }
}

} // namespace
