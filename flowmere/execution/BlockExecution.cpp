// What a block does with its script: members of CFCBlockNode that need the bridge to the interpreter.
#include "flowmere/execution/FCPythonInterface.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/BlockWatch.h"
#include "flowmere/model/FCBlockNode.h"

#include <string_view>

int CFCBlockNode::CheckBlockExecuteMethod(char const* method) {
    int result = 1;
    if (GetScriptType() == EScriptType_PYTHON) {
        CFCPythonInterface python;
        TuString const name(GetScriptName());
        python.executeBlockInterface(name.GetAnsiBuffer(), method, &result);
    }
    return result;
}

int CFCBlockNode::ExecuteBlockMethod(char const* method) {
    // The script may destroy this very block.
    flowmere::BlockWatch const self(this);
    SetExecutingFlag(true);
    if (GetScriptType() == EScriptType_PYTHON) {
        CFCPythonInterface python;
        TuString const name(GetScriptName());
        if (name.IsEmpty()) {
            return 0;
        }
        int status = 0;
        _object* debugger = nullptr;
        if (GetBreakPointFlag() && PrepareDebug(TuString(method))) {
            debugger = GetDebuggerObject();
        }
        if (debugger != nullptr) {
            python.executeBlockInterfaceDebug(name.GetAnsiBuffer(), method, &status, debugger);
            if (self.isAlive()) {
                FinishDebug();
            }
        } else {
            python.executeBlockInterface(name.GetAnsiBuffer(), method, &status);
        }
    }
    if (!self.isAlive()) {
        return 1;
    }
    SetExecutedFlag(method == nullptr || std::string_view(method) != "Undo");
    SetExecutingFlag(false);
    return 1;
}
