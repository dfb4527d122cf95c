#pragma once

#include "TestSupport.h"

#include "flowmere/execution/Tpy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

namespace flowmere::test {

// Brings the interpreter up once for the binary, away from the variables and caches of the shell.
inline void startPython() {
    if (tpy::Py_IsInitialized() != 0)
        return;
    for (char const* name : {"PYTHONDONTWRITEBYTECODE", "PYTHONUNBUFFERED", "PYTHONHOME", "PYTHONPATH"})
        unsetenv(name);
    // File names are UTF-8 under the C locale too.
    setenv("LC_ALL", "C.UTF-8", 1);
    tpy::Py_Initialize();
}

inline PyObject* mainDictionary() {
    return tpy::PyModule_GetDict(tpy::PyImport_AddModule("__main__"));
}

// Runs statements in __main__; a failure prints and fails the test.
inline void runPython(std::string const& statements) {
    PyObject* const result = tpy::PyRun_String(statements.c_str(), tpy::file_input, mainDictionary(), mainDictionary());
    if (result == nullptr) {
        tpy::PyErr_Print();
        ADD_FAILURE() << "failed: " << statements;
    }
    tpy::Py_XDECREF(result);
}

// The number that an expression gives.
inline long pythonNumber(std::string const& expression) {
    runPython("_number = int(" + expression + ")");
    PyObject* const value = tpy::PyObject_GetAttrString(tpy::PyImport_AddModule("__main__"), "_number");
    long const number = value != nullptr ? tpy::PyLong_AsLong(value) : -999;
    tpy::Py_XDECREF(value);
    return number;
}

// Holds for expressions that are true in Python.
inline bool pythonTrue(std::string const& expression) {
    return pythonNumber("1 if (" + expression + ") else 0") == 1;
}

// What `record.call()` of the scripts does.
inline std::function<void()>& scriptCall() {
    static std::function<void()> s_call;
    return s_call;
}

extern "C" inline void flowmereTestCall() {
    if (scriptCall())
        scriptCall()();
}

// A test with a scratch folder on the interpreter's path. What block scripts record is in the list
// `record.events` of the module `record`. No Python error may be left at the end.
class PythonTest : public ScratchTest {
protected:
    PythonTest() {
        startPython();
        runPython("import sys, types, importlib\n"
                  "record = types.ModuleType('record')\n"
                  "record.events = []\n"
                  "record.errors = []\n"
                  "sys.modules['record'] = record\n"
                  "def _hook(kind, value, trace):\n"
                  "    record.errors.append((kind.__name__, str(value)))\n"
                  "sys.excepthook = _hook\n"
                  "_modules = set(sys.modules)\n"
                  "sys.path.insert(0, r'" +
                  scratch.path().string() +
                  "')\n"
                  "importlib.invalidate_caches()\n");
    }
    ~PythonTest() override {
        scriptCall() = nullptr;
        EXPECT_EQ(tpy::PyErr_Occurred(), nullptr) << "a Python error is left";
        tpy::PyErr_Clear();
        runPython("sys.excepthook = sys.__excepthook__\n"
                  "sys.path.pop(0)\n"
                  "for _name in set(sys.modules) - _modules:\n"
                  "    del sys.modules[_name]\n");
    }

    // Writes a module; its text may use `record`.
    void module(std::string const& name, std::string const& text) {
        scratch.write(name, text);
        runPython("importlib.invalidate_caches()");
    }
    // Lets the scripts run something of the test by `record.call()`, under the interpreter lock.
    void onScriptCall(std::function<void()> action) {
        scriptCall() = std::move(action);
        runPython("import ctypes\nrecord.call = ctypes.PYFUNCTYPE(None)(" +
                  std::to_string(reinterpret_cast<std::uintptr_t>(&flowmereTestCall)) + ")");
    }
    // What the scripts recorded, as Python shows the list.
    bool events(std::string const& list) { return pythonTrue("record.events == " + list); }
    bool errors(std::string const& list) { return pythonTrue("record.errors == " + list); }
    long errorCount() { return pythonNumber("len(record.errors)"); }
};

} // namespace flowmere::test
