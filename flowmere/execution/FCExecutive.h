// CFCExecutive: what is running.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCProcessNode.h"

// Holds the running process, the block that runs or runs next, and the direction. One is embedded
// in the command object; the last one built answers getExecutive().
class FLOWMERE_API CFCExecutive {
public:
    CFCExecutive();
    // A copy looks at the same process and does not own it; it never answers getExecutive().
    CFCExecutive(CFCExecutive const& other);
    CFCExecutive& operator=(CFCExecutive const& other);
    // Destroys the active process, the node alone: who holds the tree takes it back first with
    // setActiveProcess(nullptr).
    ~CFCExecutive();

    // The running process, owned by the executive; null when there is none, or when somebody else destroyed it.
    CFCProcessNode* getActiveProcess() const { return activeProcess; }
    // Takes the process over. The former one is not destroyed and goes back to the caller.
    void setActiveProcess(CFCProcessNode* process);
    // The block that runs or runs next; not owned, null at the end of the flow and when that block was destroyed.
    CFCBlockNode* getExeutingBlock() const { return executingBlock; }
    void setExeutingBlock(CFCBlockNode* block) { executingBlock = block; }
    CFCProcessNode::CFCProcessExecutionMode getExecutionMode() const { return executionMode; }
    void setExecutionMode(CFCProcessNode::CFCProcessExecutionMode mode) { executionMode = mode; }

private:
    static void forget(void* self, CFCBlockNode* gone);

    CFCProcessNode* activeProcess = nullptr;
    CFCBlockNode* executingBlock = nullptr;
    CFCProcessNode::CFCProcessExecutionMode executionMode = static_cast<CFCProcessNode::CFCProcessExecutionMode>(0);
    bool ownsProcess = true;
};

// The last executive built, or null before the first. The end of an executive does not take the answer back.
FLOWMERE_API CFCExecutive* getExecutive();
