// One tick of a run against the calls into the interpreter that it makes: import and reload of companion and script,
// the object, the method.
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/execution/FCCommand.h"
#include "flowmere/execution/FCExecutionMechanism.h"
#include "flowmere/execution/FCExecutive.h"
#include "flowmere/execution/Tpy.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

double microseconds(Clock::duration time) {
    return std::chrono::duration<double, std::micro>(time).count();
}

// A folder with a package of one block script and its companion, on the interpreter's path.
class ScriptFolder {
public:
    ScriptFolder() : m_path(std::filesystem::temp_directory_path() / "flowmere_tick_bench") {
        std::filesystem::create_directories(m_path / "tickpkg");
        write("__init__.py", "");
        write("StepBlock.py", "class StepBlock(object):\n    def __init__(self, block=None):\n        pass\n"
                              "    def Execute(self):\n        return\n");
        write("Step.py", "from . StepBlock import StepBlock\nclass Step(StepBlock):\n"
                         "    def __init__(self, block=None):\n        super(Step, self).__init__(block)\n");
        if (tpy::Py_IsInitialized() == 0)
            tpy::Py_Initialize();
        PyObject* const names = tpy::PyModule_GetDict(tpy::PyImport_AddModule("__main__"));
        std::string const text =
            "import sys\nsys.dont_write_bytecode = True\nsys.path.insert(0, r'" + m_path.string() + "')\n";
        tpy::Py_XDECREF(tpy::PyRun_String(text.c_str(), tpy::file_input, names, names));
    }
    ~ScriptFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScriptFolder(ScriptFolder const&) = delete;
    ScriptFolder& operator=(ScriptFolder const&) = delete;

private:
    void write(char const* name, char const* text) { std::ofstream(m_path / "tickpkg" / name) << text; }
    std::filesystem::path m_path;
};

void runBareCalls() {
    int const lock = tpy::PyGILState_Ensure();
    PyObject* const companion = tpy::PyImport_ImportModule("tickpkg.StepBlock");
    tpy::Py_XDECREF(tpy::PyImport_ReloadModule(companion));
    PyObject* const module = tpy::PyImport_ImportModule("tickpkg.Step");
    PyObject* const reloaded = tpy::PyImport_ReloadModule(module);
    PyObject* const type = tpy::PyObject_GetAttrString(reloaded, "Step");
    PyObject* const arguments = tpy::Py_BuildValue("(i)", 100);
    PyObject* const instance = tpy::PyEval_CallObject(type, arguments);
    tpy::Py_XDECREF(tpy::PyObject_CallMethod(instance, "Execute", nullptr));
    for (PyObject* object : {instance, arguments, type, reloaded, module, companion})
        tpy::Py_XDECREF(object);
    tpy::PyGILState_Release(lock);
}

// Two blocks that lead to each other, so that the flow never ends.
class EndlessFlow {
public:
    EndlessFlow() {
        CFCNodeFactory factory;
        process = CFCPointerConverter::GetProcessNode(factory.Create(56));
        CFCBlockNode* blocks[2] = {};
        for (CFCBlockNode*& block : blocks) {
            block = CFCPointerConverter::GetBlockNode(factory.Create(57));
            process->AppendChild(block, false);
            block->SetNodeId(&block == blocks ? L"One" : L"Two");
            block->SetScriptName(L"tickpkg.Step");
        }
        for (int index = 0; index < 2; ++index) {
            CFCConnector* const connector = CFCPointerConverter::GetConnector(factory.Create(68));
            connector->SetStartNode(6, blocks[index], L"");
            connector->SetEndNode(2, blocks[1 - index], L"");
            process->AddConnector(connector);
        }
        activateFlowmereCommand()->setExecutionMechanism(&mechanism);
        getExecutive()->setActiveProcess(process);
        mechanism.setExecutionMode(CFCProcessNode::ExecutionByTimer);
        mechanism.onBegin();
    }
    ~EndlessFlow() {
        activateFlowmereCommand()->setExecutionMechanism(nullptr);
        getExecutive()->setActiveProcess(nullptr);
        CFCNodeHelper::DestroyTree(process);
    }
    EndlessFlow(EndlessFlow const&) = delete;
    EndlessFlow& operator=(EndlessFlow const&) = delete;

    void tick() {
        mechanism.TProcessTimerProc(nullptr, 0, 0, nullptr);
        process->setExecutionStatus(CFCProcessNode::ExecutionReady);
    }

private:
    FCExecutionMechanism mechanism;
    CFCProcessNode* process = nullptr;
};

void tickAgainstBareCalls(benchmark::State& state) {
    ScriptFolder const scripts;
    EndlessFlow flow;
    flow.tick();
    runBareCalls();
    Clock::duration ticks{};
    Clock::duration bare{};
    for (auto _ : state) {
        Clock::time_point const begin = Clock::now();
        runBareCalls();
        Clock::time_point const middle = Clock::now();
        flow.tick();
        Clock::time_point const end = Clock::now();
        bare += middle - begin;
        ticks += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(end - middle).count());
    }
    auto const count = static_cast<double>(state.iterations());
    state.counters["tick_us"] = microseconds(ticks) / count;
    state.counters["bare_us"] = microseconds(bare) / count;
    state.counters["extra_us"] = (microseconds(ticks) - microseconds(bare)) / count;
    state.SetLabel("extra_us: at most 10");
}

BENCHMARK(tickAgainstBareCalls)->UseManualTime()->Iterations(2000)->Unit(benchmark::kMicrosecond);

} // namespace
