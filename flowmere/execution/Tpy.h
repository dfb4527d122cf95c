// tpy: the CPython C API under its own names, without Python's header and its macros.
#pragma once

struct _object;
typedef struct _object PyObject;

// Each function does what the function of that name in the C API does; results marked new in
// Python's documentation are owned by the caller.
namespace tpy {

enum PyInputKind : int { file_input = 257 };

int Py_IsInitialized();
void Py_Initialize();
int PyGILState_Ensure();
void PyGILState_Release(int state);
PyObject* PyErr_Occurred();
// As in the C API, except that SystemExit is reported like any other error and never ends the process.
void PyErr_Print();
void PyErr_Clear();
PyObject* PyImport_AddModule(char const* name);
PyObject* PyImport_ImportModule(char const* name);
PyObject* PyImport_ReloadModule(PyObject* module);
int PyModule_Check(PyObject* object);
PyObject* PyModule_GetDict(PyObject* module);
PyObject* PyObject_GetAttrString(PyObject* object, char const* name);
int PyObject_HasAttrString(PyObject* object, char const* name);
PyObject* PyObject_CallMethod(PyObject* object, char const* name, char const* format, ...);
int PyCallable_Check(PyObject* object);
// Calls with a tuple of arguments; null, with the pending error kept, when there is no tuple.
PyObject* PyEval_CallObject(PyObject* callable, PyObject* arguments);
PyObject* Py_BuildValue(char const* format, ...);
PyObject* PyRun_String(char const* text, PyInputKind kind, PyObject* globals, PyObject* locals);
PyObject* Py_CompileString(char const* text, char const* fileName, int kind);
long PyLong_AsLong(PyObject* object);
void Py_DECREF(PyObject* object);
void Py_XDECREF(PyObject* object);

// A pending error taken out of the interpreter; null members mean none.
struct ErrorState {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
};
// Takes the pending error out of the interpreter; the caller owns the three references.
ErrorState takeError();
// Makes it the pending error again, and gives the references up.
void putErrorBack(ErrorState const& error);
// True when the error says that the module of that name, or a package above it, does not exist.
bool isMissingModule(ErrorState const& error, char const* moduleName);
void release(ErrorState const& error);
// Removes the compiled form of a module: it is valid by whole seconds and length of the source, so
// a quick edit of the same length would otherwise run the old text. A module without source is left alone.
void removeCachedBytecode(PyObject* module);
// Lets other Python threads run for a millisecond when this thread holds the interpreter lock.
void sleepWithoutLock();

} // namespace tpy
