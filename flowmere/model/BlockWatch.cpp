#include "flowmere/model/BlockWatch.h"

#include "flowmere/foundation/Immortal.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <vector>

namespace flowmere {

namespace {

struct Watcher {
    void* owner;
    void (*gone)(void* owner, CFCBlockNode* block);
};

// Documents of several threads may go at the same time; and blocks of the host may go at the very end of the process.
constinit std::mutex s_mutex;

std::vector<Watcher>& watchers() {
    static Immortal<std::vector<Watcher>> s_watchers;
    return *s_watchers;
}

} // namespace

void watchBlocks(void* owner, void (*gone)(void* owner, CFCBlockNode* block)) {
    std::lock_guard const lock(s_mutex);
    watchers().push_back({owner, gone});
}

void unwatchBlocks(void* owner) noexcept {
    std::lock_guard const lock(s_mutex);
    std::vector<Watcher>& all = watchers();
    // Scopes end in the reverse order, so the one that is sought is mostly the last.
    auto const found =
        std::find_if(all.rbegin(), all.rend(), [owner](Watcher const& watcher) { return watcher.owner == owner; });
    if (found != all.rend()) {
        all.erase(std::next(found).base());
    }
}

void blockGoes(CFCBlockNode* block) noexcept {
    std::lock_guard const lock(s_mutex);
    for (Watcher const& watcher : watchers()) {
        watcher.gone(watcher.owner, block);
    }
}

} // namespace flowmere
