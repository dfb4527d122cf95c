#include "flowmere/execution/FCExecutive.h"

#include "flowmere/model/BlockWatch.h"

namespace {

CFCExecutive* currentExecutive = nullptr;

} // namespace

CFCExecutive::CFCExecutive() {
    flowmere::watchBlocks(this, &CFCExecutive::forget);
    currentExecutive = this;
}

CFCExecutive::CFCExecutive(CFCExecutive const& other)
    : activeProcess(other.activeProcess), executingBlock(other.executingBlock), executionMode(other.executionMode),
      ownsProcess(false) {
    flowmere::watchBlocks(this, &CFCExecutive::forget);
}

CFCExecutive& CFCExecutive::operator=(CFCExecutive const& other) {
    if (this == &other)
        return *this;
    activeProcess = other.activeProcess;
    executingBlock = other.executingBlock;
    executionMode = other.executionMode;
    ownsProcess = false;
    return *this;
}

CFCExecutive::~CFCExecutive() {
    flowmere::unwatchBlocks(this);
    if (ownsProcess)
        delete activeProcess;
    activeProcess = nullptr;
}

// Scripts and hosts may destroy what runs.
void CFCExecutive::forget(void* self, CFCBlockNode* gone) {
    auto* const executive = static_cast<CFCExecutive*>(self);
    if (executive->activeProcess == gone)
        executive->activeProcess = nullptr;
    if (executive->executingBlock == gone)
        executive->executingBlock = nullptr;
}

void CFCExecutive::setActiveProcess(CFCProcessNode* process) {
    activeProcess = process;
    ownsProcess = true;
}

CFCExecutive* getExecutive() {
    return currentExecutive;
}
