#pragma once

class CFCBlockNode;

namespace flowmere {

// A script may destroy the block or the process it runs on, so whoever keeps a block across a run asks here whether it
// is still there. Handles do not tell: a copy of a node shares the handle, and clears the entry when it goes.

// Calls `gone` with the owner for each block whose destruction begins, until the owner is taken out again. The block is
// good for comparisons only. Neither call may be made from within `gone`.
void watchBlocks(void* owner, void (*gone)(void* owner, CFCBlockNode* block));
void unwatchBlocks(void* owner) noexcept;

// To be called at the beginning of a block's destructor.
void blockGoes(CFCBlockNode* block) noexcept;

// Keeps an eye on one block for the length of a scope.
class BlockWatch {
public:
    explicit BlockWatch(CFCBlockNode* block) : m_block(block) { watchBlocks(this, &BlockWatch::forget); }
    BlockWatch(BlockWatch const&) = delete;
    BlockWatch& operator=(BlockWatch const&) = delete;
    ~BlockWatch() { unwatchBlocks(this); }

    // The block, or null when it is gone (or there was none).
    CFCBlockNode* block() const noexcept { return m_block; }
    bool isAlive() const noexcept { return m_block != nullptr; }

private:
    static void forget(void* self, CFCBlockNode* block) {
        auto* const watch = static_cast<BlockWatch*>(self);
        if (watch->m_block == block) {
            watch->m_block = nullptr;
        }
    }

    CFCBlockNode* m_block;
};

} // namespace flowmere
