#include "flowmere/Flowmere.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

// Reads a process document, runs its blocks one after the other and saves it with their states.
// The scripts of the blocks lie beside the document; what they print is not kept back.
int main(int count, char** words) {
    CFCNodeFactory factory;
    IFCNode* node = nullptr;
    if (count != 3 || !FCUtility::CFCReader_Parse(factory, TuString(words[1]), &node, 1)) {
        std::fputs("embedding DOCUMENT RESULT: the document cannot be read\n", stderr);
        return 1;
    }
    auto* const process = static_cast<CFCProcessNode*>(node);
    ::setenv("PYTHONPATH", std::filesystem::absolute(words[1]).parent_path().c_str(), 1);
    ::setenv("PYTHONUNBUFFERED", "1", 1);

    FCExecutionMechanism mechanism;
    mechanism.setExecutionMode(CFCProcessNode::ExecutionByTimer);
    activateFlowmereCommand()->setExecutionMechanism(&mechanism);
    getExecutive()->setActiveProcess(process);
    activateFlowmereCommand()->ExecuteCommand("Execution Begin", nullptr);
    while (CFCBlockNode* const block = mechanism.getExecutingBlock()) {
        mechanism.TProcessTimerProc(nullptr, 0, 0, nullptr);
        block->SetExecutionStateType(EExecutionStateType_Executed);
        process->setExecutionStatus(CFCProcessNode::ExecutionDone);
    }
    activateFlowmereCommand()->setExecutionMechanism(nullptr);
    getExecutive()->setActiveProcess(nullptr); // the tree is this program's again

    bool const saved = FCUtility::CFCWriter_WriteFile(TuString(words[2]), process, true);
    CFCNodeHelper::DestroyTree(process);
    return saved ? 0 : 1;
}
