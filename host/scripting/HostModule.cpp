#include <pybind11/embed.h>
#include <pybind11/stl.h>

#include "host/scripting/HostModule.h"

#include "host/basics/Text.h"
#include "host/scripting/Interpreter.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace flowmere::host {

namespace {

constexpr int kFirstGrip = EPortHandle_TopLeft;
constexpr int kLastGrip = EPortHandle_LeftMiddle;

CFCBlockNode* executingBlock() {
    CFCExecutive* const executive = getExecutive();
    return executive != nullptr ? executive->getExeutingBlock() : nullptr;
}

CFCProcessNode* activeProcess() {
    CFCExecutive* const executive = getExecutive();
    return executive != nullptr ? executive->getActiveProcess() : nullptr;
}

// The executing block's variable of that name, or else the process's; null when neither knows it.
CFCVariableData* findVariable(std::string const& name) {
    TuString const text = wide(name);
    if (CFCBlockNode* const block = executingBlock())
        if (CFCVariableData* const variable = CFCNodeHelper::FindVariable(text, block))
            return variable;
    return CFCNodeHelper::FindVariable(text, activeProcess());
}

std::vector<std::string> knownNames() {
    std::vector<std::string> names;
    for (IFCNode* const owner : {static_cast<IFCNode*>(executingBlock()), static_cast<IFCNode*>(activeProcess())}) {
        CFCVariableList* const list = owner != nullptr ? owner->GetVariableList() : nullptr;
        __FCPOSITION* position = list != nullptr ? list->GetHeadPosition() : nullptr;
        while (position != nullptr)
            if (CFCVariableData* const variable = list->GetNext(position))
                names.push_back(utf8(variable->GetVariableName()));
    }
    return names;
}

// The variable at the end of the links. Raises NameError.
CFCVariableData& actualVariable(std::string const& name) {
    if (CFCVariableData* const variable = findVariable(name))
        return *variable->GetActualVariableData();
    std::string const message = "no variable '" + name + "' on the block '" +
                                hostServices().interpreter->executingBlock() + "' or on the process" +
                                suggestion(name, knownNames());
    ::PyErr_SetString(PyExc_NameError, message.c_str());
    throw py::error_already_set();
}

// Bytes that are no UTF-8 go to Python and back as the surrogates that the library has for them.
py::str toPython(wchar_t const* text) {
    TuString const copy(text);
    return py::reinterpret_steal<py::str>(::PyUnicode_FromWideChar(copy, copy.GetLength()));
}

TuString fromPython(py::str const& text) {
    Py_ssize_t length = 0;
    wchar_t* const characters = ::PyUnicode_AsWideCharString(text.ptr(), &length);
    if (characters == nullptr)
        throw py::error_already_set();
    TuString result{std::wstring_view(characters, static_cast<std::size_t>(length))};
    ::PyMem_Free(characters);
    return result;
}

bool knows(std::string const& name) {
    return findVariable(name) != nullptr;
}

// Name of the data type, whether it is an array, and the value as text.
py::tuple readVariable(std::string const& name) {
    CFCVariableData& variable = actualVariable(name);
    return py::make_tuple(toPython(variable.GetDataTypeS()), variable.IsArray(), toPython(variable.GetValue()));
}

void writeVariable(std::string const& name, py::str const& value) {
    CFCVariableData& variable = actualVariable(name);
    variable.SetValue(fromPython(value));
    variable.UpdateValue();
    if (hostServices().valueWritten)
        hostServices().valueWritten(variable);
}

// 0 forward, 1 backward.
int executionType() {
    CFCExecutive* const executive = getExecutive();
    int const mode = executive != nullptr ? static_cast<int>(executive->getExecutionMode()) : 0;
    return mode == CFCProcessNode::ExecutionUndo || mode == CFCProcessNode::ExecutionUndoStep ? 1 : 0;
}

CFCBlockNode& requiredBlock() {
    if (CFCBlockNode* const block = executingBlock())
        return *block;
    throw py::value_error("no block is executing");
}

void setActiveHandle(int handle) {
    if (handle < kFirstGrip || handle > kLastGrip)
        throw py::value_error("a grip is a number from 1 to 8, not " + std::to_string(handle));
    requiredBlock().SetActiveHandle(handle);
}

int activeHandle() {
    return requiredBlock().GetActiveHandle();
}

void writeHistory(std::string const& text) {
    if (Interpreter* const interpreter = hostServices().interpreter)
        interpreter->settleOutput();
    if (hostServices().writeHistory)
        hostServices().writeHistory(text);
}

// What was printed to the two streams comes out in the order in which it was printed, as long as each of them waits for
// the other, and both for the programs that scripts start.
class OutputOrder {
public:
    void beforePrint(bool isError) {
        begin();
        Interpreter* const interpreter = hostServices().interpreter;
        if (interpreter != nullptr && m_isError != isError)
            interpreter->settleOutput();
        else if (interpreter != nullptr && m_othersPrint)
            interpreter->orderOutput();
        m_isError = isError;
    }
    void beforeOthers() {
        begin();
        if (Interpreter* const interpreter = hostServices().interpreter)
            interpreter->orderOutput();
        m_othersPrint = true;
    }
    void tickEnds() { m_othersPrint = false; }

private:
    static void begin() {
        if (hostServices().outputBegins)
            hostServices().outputBegins();
    }

    bool m_isError = false;
    bool m_othersPrint = false;
};

OutputOrder& outputOrder() {
    static OutputOrder order;
    return order;
}

void beforePrint(bool isError) {
    outputOrder().beforePrint(isError);
}

// Python tells of each program that a script is about to start, among many other events.
int onAudit(char const* event, PyObject*, void*) {
    constexpr std::string_view kPrograms[] = {"subprocess.Popen", "os.system", "os.fork",  "os.forkpty",
                                              "os.posix_spawn",   "os.exec",   "os.spawn", "pty.spawn"};
    std::string_view const name = event;
    if (std::find(std::begin(kPrograms), std::end(kPrograms), name) != std::end(kPrograms))
        outputOrder().beforeOthers();
    return 0;
}

void watchPrograms() {
    static bool const isWatched = ::PySys_AddAuditHook(onAudit, nullptr) == 0;
    static_cast<void>(isWatched);
}

void tickEnds() {
    outputOrder().tickEnds();
}

// From one to the other whatever is printed is no output of a block.
void pauseOutput() {
    outputOrder().beforePrint(false);
    if (Interpreter* const interpreter = hostServices().interpreter)
        interpreter->pauseCapture();
}

void resumeOutput() {
    if (Interpreter* const interpreter = hostServices().interpreter)
        interpreter->resumeCapture();
}

// Outside of what blocks print.
void printErrorAside(std::string const& text) {
    outputOrder().beforePrint(true);
    if (Interpreter* const interpreter = hostServices().interpreter)
        interpreter->settleOutput();
    printError(text);
}

std::string executingPath() {
    return hostServices().interpreter != nullptr ? hostServices().interpreter->executingBlock() : std::string();
}

// The program is about to end, and with it the block.
void scriptLeaves(int status, std::string const& file, int line, std::string const& source) {
    std::string const call = "os._exit(" + std::to_string(status) + ")";
    if (Interpreter* const interpreter = hostServices().interpreter)
        interpreter->settleOutput();
    if (hostServices().scriptLeaves)
        hostServices().scriptLeaves(
            {executingPath(), call, "the script ends the program", "", false, file, line, source});
}

void reportError(std::string const& type, std::string const& text, std::string const& traceback, bool interrupt,
                 std::string const& file, int line, std::string const& source) {
    if (Interpreter* const interpreter = hostServices().interpreter)
        interpreter->addError({executingPath(), type, text, traceback, interrupt, file, line, source});
}

} // namespace

HostServices& hostServices() {
    static HostServices services;
    return services;
}

} // namespace flowmere::host

PYBIND11_EMBEDDED_MODULE(_flowmere, module) {
    using namespace flowmere::host;
    module.doc() = "The running process, for the modules that generated scripts import";
    module.def("knows", &knows);
    module.def("read_variable", &readVariable);
    module.def("write_variable", &writeVariable);
    module.def("execution_type", &executionType);
    module.def("set_active_handle", &setActiveHandle);
    module.def("active_handle", &activeHandle);
    module.def("write_history", &writeHistory);
    module.def("before_print", &beforePrint);
    module.def("watch_programs", &watchPrograms);
    module.def("tick_ends", &tickEnds);
    module.def("print_error", &printErrorAside);
    module.def("pause_output", &pauseOutput);
    module.def("resume_output", &resumeOutput);
    module.def("executing_path", &executingPath);
    module.def("document_path", [] { return hostServices().documentPath; });
    module.def("report_error", &reportError);
    module.def("script_leaves", &scriptLeaves);
}

namespace flowmere::host {

// The macro above enters the module before main() begins, as long as this file is linked: which this call sees to.
void registerHostModule() {
    hostServices();
}

} // namespace flowmere::host
