#define PY_SSIZE_T_CLEAN
#include "flowmere/execution/Tpy.h"

#include "flowmere/foundation/Paths.h"

#include <Python.h>

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

// The header turns these names into macros, which would rewrite the definitions below.
#undef PyModule_Check
#undef PyEval_CallObject
#undef Py_BuildValue
#undef PyObject_CallMethod
#undef PyRun_String
#undef Py_CompileString
#undef Py_DECREF
#undef Py_XDECREF

namespace tpy {

int Py_IsInitialized() {
    return ::Py_IsInitialized();
}

void Py_Initialize() {
    ::Py_Initialize();
}

int PyGILState_Ensure() {
    return static_cast<int>(::PyGILState_Ensure());
}

void PyGILState_Release(int state) {
    ::PyGILState_Release(static_cast<PyGILState_STATE>(state));
}

PyObject* PyErr_Occurred() {
    return ::PyErr_Occurred();
}

// The C API's own form ends the process on SystemExit, even on one that the hook raises, so the
// error is handed to the hook here.
void PyErr_Print() {
    if (::PyErr_Occurred() == nullptr)
        return;
    ErrorState error;
    ::PyErr_Fetch(&error.type, &error.value, &error.traceback);
    ::PyErr_NormalizeException(&error.type, &error.value, &error.traceback);
    PyObject* const none = Py_None;
    PyObject* const value = error.value != nullptr ? error.value : none;
    PyObject* const traceback = error.traceback != nullptr ? error.traceback : none;
    if (error.traceback != nullptr && error.value != nullptr)
        ::PyException_SetTraceback(error.value, error.traceback);
    ::PySys_SetObject("last_type", error.type);
    ::PySys_SetObject("last_value", value);
    ::PySys_SetObject("last_traceback", traceback);
    PyObject* const hook = ::PySys_GetObject("excepthook");
    ::Py_IncRef(hook); // a hook may put another one in its place
    PyObject* const result =
        hook != nullptr ? ::PyObject_CallFunctionObjArgs(hook, error.type, value, traceback, nullptr) : nullptr;
    if (hook == nullptr) {
        ::PySys_WriteStderr("sys.excepthook is missing\n");
        ::PyErr_Display(error.type, value, traceback);
    } else if (result == nullptr) {
        // Both errors are shown: that of the hook, and the one it was to report.
        ErrorState ofHook = takeError();
        ::PyErr_NormalizeException(&ofHook.type, &ofHook.value, &ofHook.traceback);
        ::PySys_WriteStderr("Error in sys.excepthook:\n");
        ::PyErr_Display(ofHook.type, ofHook.value, ofHook.traceback);
        ::PySys_WriteStderr("\nOriginal exception was:\n");
        ::PyErr_Display(error.type, value, traceback);
        release(ofHook);
    }
    ::Py_DecRef(result);
    ::Py_DecRef(hook);
    release(error);
    ::PyErr_Clear();
}

void PyErr_Clear() {
    ::PyErr_Clear();
}

PyObject* PyImport_AddModule(char const* name) {
    return ::PyImport_AddModule(name);
}

PyObject* PyImport_ImportModule(char const* name) {
    return ::PyImport_ImportModule(name);
}

PyObject* PyImport_ReloadModule(PyObject* module) {
    return ::PyImport_ReloadModule(module);
}

int PyModule_Check(PyObject* object) {
    return object != nullptr && PyObject_TypeCheck(object, &PyModule_Type) ? 1 : 0;
}

PyObject* PyModule_GetDict(PyObject* module) {
    return PyModule_Check(module) != 0 ? ::PyModule_GetDict(module) : nullptr;
}

PyObject* PyObject_GetAttrString(PyObject* object, char const* name) {
    return ::PyObject_GetAttrString(object, name);
}

int PyObject_HasAttrString(PyObject* object, char const* name) {
    return ::PyObject_HasAttrString(object, name);
}

namespace {

PyObject* buildTuple(char const* format, va_list arguments) {
    if (format == nullptr || *format == '\0')
        return ::PyTuple_New(0);
    PyObject* const value = ::Py_VaBuildValue(format, arguments);
    if (value == nullptr || PyTuple_Check(value))
        return value;
    PyObject* const tuple = ::PyTuple_Pack(1, value);
    ::Py_DecRef(value);
    return tuple;
}

} // namespace

PyObject* PyObject_CallMethod(PyObject* object, char const* name, char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    PyObject* const tuple = buildTuple(format, arguments);
    va_end(arguments);
    if (tuple == nullptr)
        return nullptr;
    PyObject* const method = ::PyObject_GetAttrString(object, name);
    PyObject* const result = method != nullptr ? ::PyObject_CallObject(method, tuple) : nullptr;
    ::Py_DecRef(method);
    ::Py_DecRef(tuple);
    return result;
}

int PyCallable_Check(PyObject* object) {
    return ::PyCallable_Check(object);
}

PyObject* PyEval_CallObject(PyObject* callable, PyObject* arguments) {
    return arguments != nullptr ? ::PyObject_CallObject(callable, arguments) : nullptr;
}

PyObject* Py_BuildValue(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    PyObject* const value = ::Py_VaBuildValue(format, arguments);
    va_end(arguments);
    return value;
}

PyObject* PyRun_String(char const* text, PyInputKind kind, PyObject* globals, PyObject* locals) {
    return ::PyRun_StringFlags(text, static_cast<int>(kind), globals, locals, nullptr);
}

PyObject* Py_CompileString(char const* text, char const* fileName, int kind) {
    return ::Py_CompileStringExFlags(text, fileName, kind, nullptr, -1);
}

long PyLong_AsLong(PyObject* object) {
    return ::PyLong_AsLong(object);
}

void Py_DECREF(PyObject* object) {
    ::Py_DecRef(object);
}

void Py_XDECREF(PyObject* object) {
    ::Py_DecRef(object);
}

ErrorState takeError() {
    ErrorState error;
    ::PyErr_Fetch(&error.type, &error.value, &error.traceback);
    return error;
}

void putErrorBack(ErrorState const& error) {
    ::PyErr_Restore(error.type, error.value, error.traceback);
}

bool isMissingModule(ErrorState const& error, char const* moduleName) {
    if (error.type == nullptr || error.value == nullptr ||
        ::PyErr_GivenExceptionMatches(error.type, PyExc_ModuleNotFoundError) == 0)
        return false;
    PyObject* const name = ::PyObject_GetAttrString(error.value, "name");
    char const* const text = name != nullptr && PyUnicode_Check(name) ? ::PyUnicode_AsUTF8(name) : nullptr;
    bool missing = false;
    if (text != nullptr) {
        std::size_t const length = std::strlen(text);
        missing =
            std::strncmp(moduleName, text, length) == 0 && (moduleName[length] == '\0' || moduleName[length] == '.');
    }
    ::Py_DecRef(name);
    ::PyErr_Clear();
    return missing;
}

void release(ErrorState const& error) {
    ::Py_DecRef(error.type);
    ::Py_DecRef(error.value);
    ::Py_DecRef(error.traceback);
}

namespace {

// Text of an attribute; empty when it is missing or no text.
std::string textAttribute(PyObject* object, char const* name) {
    PyObject* const value = ::PyObject_GetAttrString(object, name);
    char const* const text = value != nullptr && PyUnicode_Check(value) ? ::PyUnicode_AsUTF8(value) : nullptr;
    std::string result = text != nullptr ? text : "";
    ::Py_DecRef(value);
    ::PyErr_Clear();
    return result;
}

} // namespace

void removeCachedBytecode(PyObject* module) {
    std::string const cached = textAttribute(module, "__cached__");
    // Without source the compiled form is the module itself.
    if (cached.empty() || cached == textAttribute(module, "__file__"))
        return;
    // Most often there is none, and a tick pays for each try.
    std::remove(cached.c_str());
}

void sleepWithoutLock() {
    using namespace std::chrono_literals;
    if (::Py_IsInitialized() == 0 || ::PyGILState_Check() == 0) {
        std::this_thread::sleep_for(1ms);
        return;
    }
    PyThreadState* const state = ::PyEval_SaveThread();
    std::this_thread::sleep_for(1ms);
    ::PyEval_RestoreThread(state);
}

} // namespace tpy
