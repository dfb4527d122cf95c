#include "flowmere/model/BlockWatch.h"

#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCProcessNode.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

using flowmere::BlockWatch;

TEST(BlockWatch, TellsWhenItsBlockIsGone) {
    auto block = std::make_unique<CFCBlockNode>();
    CFCBlockNode other;
    BlockWatch const watch(block.get());
    BlockWatch const ofOther(&other);
    EXPECT_TRUE(watch.isAlive());
    EXPECT_EQ(watch.block(), block.get());
    block.reset();
    EXPECT_FALSE(watch.isAlive());
    EXPECT_EQ(watch.block(), nullptr);
    EXPECT_EQ(ofOther.block(), &other);
}

TEST(BlockWatch, WatchesBlocksOfEveryClass) {
    auto sub = std::make_unique<CFCSubProcessNode>();
    BlockWatch const watch(sub.get());
    sub.reset();
    EXPECT_FALSE(watch.isAlive());
}

TEST(BlockWatch, NoBlockIsNoneAlive) {
    BlockWatch const watch(nullptr);
    EXPECT_FALSE(watch.isAlive());
}

TEST(BlockWatch, CopiesAndHandlesPlayNoPart) {
    CFCBlockNode block;
    BlockWatch const watch(&block);
    { CFCBlockNode const copy(block); }
    block.SetNodeHandle(0);
    EXPECT_EQ(watch.block(), &block);
}

TEST(BlockWatch, EndsInAnyOrder) {
    auto block = std::make_unique<CFCBlockNode>();
    auto first = std::make_unique<BlockWatch>(block.get());
    BlockWatch const second(block.get());
    first.reset();
    block.reset();
    EXPECT_FALSE(second.isAlive());
}

TEST(BlockWatch, OwnersAreToldUntilTheyAreTakenOut) {
    std::vector<CFCBlockNode*> gone;
    auto const note = [](void* owner, CFCBlockNode* block) {
        static_cast<std::vector<CFCBlockNode*>*>(owner)->push_back(block);
    };
    flowmere::watchBlocks(&gone, note);
    CFCBlockNode* const told = new CFCBlockNode;
    delete told;
    flowmere::unwatchBlocks(&gone);
    flowmere::unwatchBlocks(&gone);
    delete new CFCBlockNode;
    EXPECT_EQ(gone, (std::vector<CFCBlockNode*>{told}));
}

TEST(BlockWatch, ThreadsDoNotHinderEachOther) {
    auto const work = [] {
        for (int count = 0; count < 200; ++count) {
            auto const block = std::make_unique<int>();
            auto* const address = reinterpret_cast<CFCBlockNode*>(block.get());
            BlockWatch const watch(address);
            flowmere::blockGoes(address);
            EXPECT_FALSE(watch.isAlive());
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}
