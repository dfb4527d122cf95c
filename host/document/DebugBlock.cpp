#include <pybind11/embed.h>

#include "host/document/DebugBlock.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/scripting/Interpreter.h"

#include <new>
#include <string>

namespace py = pybind11;

namespace flowmere::host {

namespace {

// The debugger of the run that goes on, which belongs to its Debugging; null for none. Touched with the interpreter's
// lock held.
PyObject* debugger = nullptr;

// A call of the debugger that must not disturb an error that is on its way. What goes wrong in it is written out and
// forgotten: the block then runs as it would without a debugger.
template <typename Result, typename Call>
Result ask(Result otherwise, Call const& call) {
    py::gil_scoped_acquire const lock;
    if (debugger == nullptr)
        return otherwise;
    py::error_scope const error;
    try {
        return call(py::reinterpret_borrow<py::object>(debugger));
    } catch (py::error_already_set const& problem) {
        printError(errorLine("", "the debugger", problem.what()) + "\n");
        return otherwise;
    }
}

bool prepare(CFCBlockNode& block, wchar_t const* method) {
    if (debugger == nullptr || !block.GetBreakPointFlag())
        return false;
    std::string const script = utf8(block.GetScriptName());
    return ask(false,
               [&](py::object const& object) { return object.attr("prepare")(script, utf8(method)).cast<bool>(); });
}

// A block of the library with the seam for a debugger filled.
template <typename Class>
class DebugBlock final : public Class {
public:
    using Class::Class;

    bool PrepareDebug(wchar_t const* method) override { return prepare(*this, method); }
    _object* GetDebuggerObject() override { return debugger; }
    void FinishDebug() override {
        ask(false, [](py::object const& object) {
            object.attr("finish")();
            return true;
        });
    }
    _object* PrepareAndGetDebuggerObject(wchar_t const* method) override {
        return PrepareDebug(method) ? GetDebuggerObject() : nullptr;
    }
};

CFCBlockNode* newBlock(int typeCode) {
    switch (typeCode) {
    case eShapeType_Terminator:
    case eShapeType_Block:
    case eShapeType_Decision:
    case eShapeType_RoundBlock:
        return new (std::nothrow) DebugBlock<CFCBlockNode>;
    case eShapeType_SubProcess:
        return new (std::nothrow) DebugBlock<CFCSubProcessNode>;
    case eShapeType_Process:
        return new (std::nothrow) DebugBlock<CFCProcessNode>;
    case eShapeType_WorkflowProcess:
        return new (std::nothrow) DebugBlock<CFCBPMProcessNode>;
    case eShapeType_Task:
    case eShapeType_UserTask:
    case eShapeType_AutomationTask:
    case eShapeType_DecisionTask:
    case eShapeType_StartState:
    case eShapeType_EndState:
    case eShapeType_Fork:
    case eShapeType_Join:
    case eShapeType_Mail:
    case eShapeType_ESB:
    case eShapeType_SuperState:
    case eShapeType_SubProcessLoop:
    case eShapeType_DecisionLoop:
    case eShapeType_SpawningLoop:
    case eShapeType_BasicSubProcess:
        return new (std::nothrow) DebugBlock<CFCBPMTaskNode>(typeCode);
    default:
        return nullptr;
    }
}

py::module_ setup() {
    return py::module_::import("_flowmere_setup");
}

} // namespace

IFCNode* makeDebugBlock(int typeCode) {
    CFCBlockNode* const block = newBlock(typeCode);
    if (block != nullptr)
        block->SetNodeType(typeCode);
    return block;
}

Debugging::Debugging(Document& document, std::vector<CFCBlockNode*> const& at) {
    for (CFCBlockNode* const block : at)
        if (document.scriptState(*block) == ScriptState::None)
            throw Failure(document.file(), pathOf(*block), "has no script to debug");
    py::gil_scoped_acquire const lock;
    try {
        py::object object = py::module_::import("_flowmere_debug").attr("BlockDebugger")();
        setup().attr("debugger") = object;
        m_debugger = object.release().ptr();
        debugger = m_debugger;
    } catch (py::error_already_set const& problem) {
        throw Failure("Python", "", problem.what());
    }
    for (CFCBlockNode* const block : at) {
        if (!block->GetBreakPointFlag()) {
            block->SetBreakPointFlag(true);
            m_blocks.push_back(block);
        }
    }
}

Debugging::~Debugging() {
    for (CFCBlockNode* const block : m_blocks)
        block->SetBreakPointFlag(false);
    show(false);
    py::gil_scoped_acquire const lock;
    py::error_scope const error;
    Py_CLEAR(m_debugger);
}

void Debugging::pause() {
    show(false);
}

void Debugging::resume() {
    show(true);
}

void Debugging::show(bool isShown) {
    py::gil_scoped_acquire const lock;
    py::error_scope const error;
    debugger = isShown ? m_debugger : nullptr;
    try {
        setup().attr("debugger") = isShown ? py::reinterpret_borrow<py::object>(m_debugger) : py::none();
    } catch (py::error_already_set&) {
        // A script took the module away: nothing opens the debugger then.
        debugger = nullptr;
    }
}

} // namespace flowmere::host
