// CFCPythonInterface: runs a method of a block's Python class in the embedded interpreter.
#pragma once

#include "flowmere/Export.h"

#include <string>
#include <vector>

struct _object;
typedef struct _object PyObject;

class CFCBlockNode;

namespace tpy {
struct ErrorState;
}

// A scope object around one run: it brings the interpreter up when it is down, holds the
// interpreter lock while it lives, and prints what error is pending when it ends. Built and
// destroyed on one thread; may nest. All texts are UTF-8. `script` is a dotted module name whose
// last part is also the name of the class; `method` is a method of that class.
class FLOWMERE_API CFCPythonInterface {
public:
    CFCPythonInterface();
    CFCPythonInterface(CFCPythonInterface const&) = delete;
    CFCPythonInterface& operator=(CFCPythonInterface const&) = delete;
    ~CFCPythonInterface();

    // As executeBlockInterface, under the debugger that the block gives for the method, if any.
    int executeBlock(char const* script, char const* method, int* status, CFCBlockNode* block);
    // Reloads the companion module and the script, makes an object of the class and calls the
    // method. *status becomes 1 and the result is -1 on every path; a failed script is told by the
    // pending Python error alone.
    int executeBlockInterface(char const* script, char const* method, int* status);
    // Hands a program that calls the method to the `run` of the debugger object (borrowed). -1; 0
    // for a script name without a package.
    int executeBlockInterfaceDebug(char const* script, char const* method, int* status, PyObject* debugger);
    // The number that the method gives, without a reload; 1 when it cannot be called, -1 when its
    // result is no number.
    int executeCheckInterface(char const* script, char const* method);
    // Makes the object from the argument and calls the method where there is one. -1 always.
    int executeInitialize(char const* script, char const* method, char const* argument, int* status);
    // The same without status and without asking whether the method exists. -1 always.
    int executeSaveInterface(char const* script, char const* method, char const* argument);

private:
    void initialize(PyObject* dictionary);
    PyObject* makeInstance(PyObject* module, char const* script, PyObject* arguments, bool* notCallable);
    void reloadCompanion(char const* script);
    PyObject* reload(PyObject* module);
    void keepError();
    void finish();

    int gilState = 0;
    std::string binPath;
    std::string resourcePath;
    // Errors set aside while a run goes on: a call into the interpreter with an error pending fails
    // for that reason alone, and would hide the first one.
    std::vector<tpy::ErrorState> keptErrors;
};
