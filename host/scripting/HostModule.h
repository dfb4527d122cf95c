#pragma once

// The built-in module `_flowmere`: what the Python side of the program asks of the running process.

#include "flowmere/Flowmere.h"

#include <functional>
#include <string>

namespace flowmere::host {

class Interpreter;
struct ScriptError;

// Makes the module known to Python; before the interpreter starts.
void registerHostModule();

// What the module works on; both stay the caller's, and null takes them away.
struct HostServices {
    Interpreter* interpreter = nullptr;
    std::function<void(std::string const&)> writeHistory;
    // A script has given the variable, which is the one at the end of all links, a value.
    std::function<void(CFCVariableData&)> valueWritten;
    std::function<void()> outputBegins; // a script is about to print; see Interpreter::watchOutput
    // A script ends the program from within: what it called, and where.
    std::function<void(ScriptError const&)> scriptLeaves;
    std::string documentPath;
};
HostServices& hostServices();

} // namespace flowmere::host
