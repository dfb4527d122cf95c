#pragma once

// The built-in module `_flowmere`: what the Python side of the program asks of the running process.

#include <functional>
#include <string>

namespace flowmere::host {

class Interpreter;

// Makes the module known to Python; before the interpreter starts.
void registerHostModule();

// What the module works on; both stay the caller's, and null takes them away.
struct HostServices {
    Interpreter* interpreter = nullptr;
    std::function<void(std::string const&)> writeHistory;
    std::function<void()> outputBegins; // a script is about to print; see Interpreter::watchOutput
    std::string documentPath;
};
HostServices& hostServices();

} // namespace flowmere::host
