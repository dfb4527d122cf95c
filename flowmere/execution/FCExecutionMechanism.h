// FCExecutionMechanism: moves a run forward and back, one block for each tick.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCProcessNode.h"

class CFCExecutive;
class CFCWindow;

// Built by the host, handed to the command object, and destroyed by the host under its own type.
// The five commands set up a direction; each call of the timer procedure runs one block. A tick
// sets the process status to 2 and never takes it away: the host does, when it considers the block
// done, and the next tick then runs the next block.
class FLOWMERE_API FCExecutionMechanism {
public:
    FCExecutionMechanism();
    FCExecutionMechanism(FCExecutionMechanism const& other);
    FCExecutionMechanism& operator=(FCExecutionMechanism const&) = default;
    // Not virtual: a derived mechanism is destroyed by its own type.
    ~FCExecutionMechanism();

    // One tick; has the shape of a timer callback, and looks at none of its arguments.
    virtual void TProcessTimerProc(void* window, unsigned int message, unsigned int timer, void* time);
    // The block that the next tick runs; not owned.
    virtual void setExecutingBlock(CFCBlockNode* value);
    // From the start block; the direction stays as it was. False without an active process or while
    // a block runs.
    virtual bool onBegin();
    // On from the current block. False without an active process or a current block, and when the
    // status is neither 1 nor 3.
    virtual bool onContinue();
    // One block on; begins at the first inner block when there is no current one.
    virtual bool onStep();
    // Back along the previously executed blocks, without end or by one. False without an active
    // process or a current block, and when the status is none of 1, 3 and 6.
    virtual bool onUndo();
    virtual bool onUndoStep();
    // 1: a command runs its own loop. 0: it returns at once and the host's timer drives the run.
    virtual void setExecutionMode(CFCProcessNode::CFCProcessExecutionType type);
    virtual void setFCWindow(CFCWindow* value);

    CFCProcessNode::CFCProcessExecutionType getExecutionMode() const { return executionType; }
    CFCWindow* getFCWindow() const { return window; }
    // The block that the next tick runs; null at the end of the flow and when that block was destroyed.
    CFCBlockNode* getExecutingBlock() const { return block; }
    // True while the loop of a command is to go on.
    bool isRunning() const { return running; }

protected:
    CFCWindow* window = nullptr;
    CFCBlockNode* block = nullptr;
    CFCProcessNode::CFCProcessExecutionType executionType = static_cast<CFCProcessNode::CFCProcessExecutionType>(1);
    bool running = false;
    CFCProcessNode::CFCProcessExecutionMode mode = static_cast<CFCProcessNode::CFCProcessExecutionMode>(0);

private:
    static void forget(void* self, CFCBlockNode* gone);
    bool runLoop();
    bool undoIn(int undoMode);
    void setDirection(CFCExecutive& executive, int value);
    void setCurrent(CFCExecutive& executive, CFCBlockNode* value);
};
