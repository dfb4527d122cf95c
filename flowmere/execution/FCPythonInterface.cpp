#include "flowmere/execution/FCPythonInterface.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/execution/Tpy.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/BlockWatch.h"
#include "flowmere/model/FCBlockNode.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace {

bool mainModuleSetUp = false;

constexpr char kLoadingFailed[] = "Error in loading class\n";

void setDone(int* status) {
    if (status != nullptr)
        *status = 1;
}

char const* classNameOf(char const* script) {
    char const* const dot = std::strrchr(script, '.');
    return dot != nullptr ? dot + 1 : script;
}

} // namespace

CFCPythonInterface::CFCPythonInterface() {
    if (tpy::Py_IsInitialized() == 0)
        tpy::Py_Initialize();
    gilState = tpy::PyGILState_Ensure();
    binPath = flowmere::toUtf8(TuString(CFCEnvironment::GetBinPath()));
    resourcePath = flowmere::toUtf8(TuString(CFCEnvironment::GetResourcePath()));
    if (!mainModuleSetUp) {
        mainModuleSetUp = true;
        PyObject* const module = tpy::PyImport_AddModule("__main__");
        if (module != nullptr && tpy::PyModule_Check(module) != 0) {
            if (PyObject* const dictionary = tpy::PyModule_GetDict(module))
                initialize(dictionary);
        }
    }
}

CFCPythonInterface::~CFCPythonInterface() {
    tpy::ErrorState const last = tpy::takeError();
    for (tpy::ErrorState const& error : keptErrors) {
        tpy::putErrorBack(error);
        tpy::PyErr_Print();
        tpy::PyErr_Clear();
    }
    tpy::putErrorBack(last);
    if (tpy::PyErr_Occurred() != nullptr)
        tpy::PyErr_Print();
    tpy::PyErr_Clear();
    tpy::PyGILState_Release(gilState);
}

// The interpreter is always up by now, so the host's script engine is loaded by the host alone.
void CFCPythonInterface::initialize(PyObject* dictionary) {
    if (tpy::Py_IsInitialized() != 0)
        return;
    tpy::Py_Initialize();
    for (char const* statement : {"import imp", "imp.load_dynamic(\"Kelso\",r\"tarnscripteng\")", "import Kelso",
                                  "Kelso.KelsoInitializeScriptEng()"}) {
        tpy::Py_XDECREF(tpy::PyRun_String(statement, tpy::file_input, dictionary, dictionary));
        tpy::PyErr_Clear();
    }
}

void CFCPythonInterface::keepError() {
    if (tpy::PyErr_Occurred() != nullptr)
        keptErrors.push_back(tpy::takeError());
}

void CFCPythonInterface::finish() {
    if (keptErrors.empty() || tpy::PyErr_Occurred() != nullptr)
        return;
    tpy::putErrorBack(keptErrors.back());
    keptErrors.pop_back();
}

PyObject* CFCPythonInterface::reload(PyObject* module) {
    tpy::removeCachedBytecode(module);
    PyObject* const reloaded = tpy::PyImport_ReloadModule(module);
    keepError();
    return reloaded;
}

void CFCPythonInterface::reloadCompanion(char const* script) {
    std::array<char, 1024> name{};
    int const length = std::snprintf(name.data(), name.size(), "%sBlock", script);
    if (length < 0 || static_cast<std::size_t>(length) >= name.size())
        return;
    if (PyObject* const module = tpy::PyImport_ImportModule(name.data())) {
        tpy::Py_XDECREF(reload(module));
        tpy::Py_DECREF(module);
        return;
    }
    tpy::ErrorState error = tpy::takeError();
    // A script written by hand has no companion.
    if (tpy::isMissingModule(error, name.data()))
        tpy::release(error);
    else if (error.type != nullptr)
        keptErrors.push_back(error);
}

PyObject* CFCPythonInterface::makeInstance(PyObject* module, char const* script, PyObject* arguments,
                                           bool* notCallable) {
    keepError(); // of the arguments
    PyObject* const type = tpy::PyObject_GetAttrString(module, classNameOf(script));
    keepError();
    *notCallable = type != nullptr && tpy::PyCallable_Check(type) == 0;
    PyObject* instance = nullptr;
    if (type != nullptr && !*notCallable) {
        instance = tpy::PyEval_CallObject(type, arguments);
        keepError();
    }
    tpy::Py_XDECREF(type);
    tpy::Py_XDECREF(arguments);
    return instance;
}

int CFCPythonInterface::executeBlock(char const* script, char const* method, int* status, CFCBlockNode* block) {
    if (block != nullptr) {
        TuString const wideMethod(method);
        if (PyObject* const debugger = block->PrepareAndGetDebuggerObject(wideMethod)) {
            flowmere::BlockWatch const watch(block);
            int const result = executeBlockInterfaceDebug(script, method, status, debugger);
            if (watch.isAlive())
                block->FinishDebug();
            return result;
        }
    }
    return executeBlockInterface(script, method, status);
}

int CFCPythonInterface::executeBlockInterface(char const* script, char const* method, int* status) {
    setDone(status);
    if (script == nullptr || method == nullptr)
        return -1;
    keepError();
    reloadCompanion(script);
    PyObject* const imported = tpy::PyImport_ImportModule(script);
    if (imported == nullptr) {
        finish();
        return -1;
    }
    PyObject* const reloaded = reload(imported);
    PyObject* const module = reloaded != nullptr ? reloaded : imported;
    if (PyObject* const dictionary = tpy::PyModule_GetDict(module)) {
        initialize(dictionary);
        bool notCallable = false;
        PyObject* const instance = makeInstance(module, script, tpy::Py_BuildValue("(i)", 100), &notCallable);
        if (instance != nullptr) {
            tpy::Py_XDECREF(tpy::PyObject_CallMethod(instance, method, nullptr));
            keepError();
            tpy::Py_DECREF(instance);
        } else if (!notCallable) {
            std::fputs(kLoadingFailed, stderr);
        }
    }
    tpy::Py_XDECREF(reloaded);
    tpy::Py_DECREF(imported);
    finish();
    return -1;
}

int CFCPythonInterface::executeBlockInterfaceDebug(char const* script, char const* method, int* status,
                                                   PyObject* debugger) {
    setDone(status);
    char const* const dot = script != nullptr ? std::strrchr(script, '.') : nullptr;
    if (dot == nullptr || dot == script)
        return 0;
    if (method == nullptr)
        return -1;
    keepError();
    std::string const package(script, dot);
    std::string const type(dot + 1);
    std::string const program =
        "from " + package + " import " + type + "\nObject=" + type + "." + type + "(1)\nObject." + method + "()\n";
    PyObject* const code = tpy::Py_CompileString(program.c_str(), "", 257);
    if (code != nullptr && debugger != nullptr)
        tpy::Py_XDECREF(tpy::PyObject_CallMethod(debugger, "run", "O", code));
    tpy::Py_XDECREF(code);
    finish();
    return -1;
}

int CFCPythonInterface::executeCheckInterface(char const* script, char const* method) {
    if (script == nullptr || method == nullptr)
        return 1;
    keepError();
    PyObject* const module = tpy::PyImport_ImportModule(script);
    if (module == nullptr) {
        finish();
        return 1;
    }
    int answer = 1;
    bool notCallable = false;
    PyObject* const instance = makeInstance(module, script, tpy::Py_BuildValue("(i)", 100), &notCallable);
    if (instance != nullptr) {
        if (PyObject* const result = tpy::PyObject_CallMethod(instance, method, nullptr)) {
            answer = static_cast<int>(tpy::PyLong_AsLong(result));
            tpy::Py_DECREF(result);
        }
        keepError();
        tpy::Py_DECREF(instance);
    } else if (!notCallable) {
        std::fputs(kLoadingFailed, stderr);
    }
    tpy::Py_DECREF(module);
    finish();
    return answer;
}

int CFCPythonInterface::executeInitialize(char const* script, char const* method, char const* argument, int* status) {
    setDone(status);
    if (script == nullptr || method == nullptr)
        return -1;
    keepError();
    PyObject* const module = tpy::PyImport_ImportModule(script);
    if (module == nullptr) {
        finish();
        return -1;
    }
    bool notCallable = false;
    PyObject* const instance = makeInstance(module, script, tpy::Py_BuildValue("(s)", argument), &notCallable);
    if (instance != nullptr) {
        if (tpy::PyObject_HasAttrString(instance, method) != 0)
            tpy::Py_XDECREF(tpy::PyObject_CallMethod(instance, method, nullptr));
        keepError();
        tpy::Py_DECREF(instance);
    }
    tpy::Py_DECREF(module);
    finish();
    return -1;
}

int CFCPythonInterface::executeSaveInterface(char const* script, char const* method, char const* argument) {
    if (script == nullptr || method == nullptr)
        return -1;
    keepError();
    PyObject* const module = tpy::PyImport_ImportModule(script);
    if (module == nullptr) {
        finish();
        return -1;
    }
    bool notCallable = false;
    PyObject* const instance = makeInstance(module, script, tpy::Py_BuildValue("(s)", argument), &notCallable);
    if (instance != nullptr) {
        tpy::Py_XDECREF(tpy::PyObject_CallMethod(instance, method, nullptr));
        keepError();
        tpy::Py_DECREF(instance);
    }
    tpy::Py_DECREF(module);
    finish();
    return -1;
}
