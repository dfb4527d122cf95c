#include "flowmere/execution/FCExecutive.h"

namespace {

CFCExecutive* currentExecutive = nullptr;

} // namespace

CFCExecutive::CFCExecutive() {
    currentExecutive = this;
}

CFCExecutive::CFCExecutive(CFCExecutive const& other)
    : activeProcess(other.activeProcess), executingBlock(other.executingBlock), executionMode(other.executionMode),
      ownsProcess(false) {}

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
    if (ownsProcess)
        delete activeProcess;
    activeProcess = nullptr;
}

void CFCExecutive::setActiveProcess(CFCProcessNode* process) {
    activeProcess = process;
    ownsProcess = true;
}

CFCExecutive* getExecutive() {
    return currentExecutive;
}
