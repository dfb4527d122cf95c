#pragma once

// The one Python interpreter of the program, cut off from the user's own Python: no environment variables, no user
// packages, no bytecode, UTF-8 everywhere.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace flowmere::host {

// An error that a script left uncaught.
struct ScriptError {
    std::string block;     // path of the block that was executing
    std::string type;      // name of the exception class
    std::string text;      // what the exception says
    std::string traceback; // the whole report, with a line end
    bool interrupt = false;
};

// A piece of what a script printed.
struct PrintedText {
    bool isError = false; // to standard error
    std::string text;
};

// Starts with the first call of start() and stays up to the end of the process.
class Interpreter {
public:
    // Brings the interpreter up, before the library touches Python: scripts are imported from the given folders, in
    // that order, then from the program's own modules, then from Python's. A second call only sets the folders. Throws
    // Failure when the program's modules or Python itself are not found.
    static Interpreter& start(std::vector<std::filesystem::path> const& scriptRoots);

    // The folder of the modules that generated scripts import.
    static std::filesystem::path moduleFolder();

    // Each uncaught error of a script goes to the list of takeErrors and, as "block PATH: " and the traceback, to
    // standard error. `executingBlock` gives the path.
    void setExecutingBlock(std::function<std::string()> executingBlock);
    // The errors since the last call, in order.
    std::vector<ScriptError> takeErrors();
    void addError(ScriptError error);
    std::string executingBlock() const;

    // After each run of a block: writes out what scripts have printed, and makes errors of what went wrong in silence.
    // `scriptName` is that of the block's script, empty for none.
    void finishTick(std::string const& scriptName);

    // From now on hostServices().outputBegins is called before scripts print.
    void watchOutput();

    // From now on Ctrl-C stops the script that runs, and interrupted() is true; a second one ends the program at once
    // with exit code 130. Writing to a pipe that nobody reads becomes an error and ends nothing.
    void takeSignals();
    bool interrupted() const;

    Interpreter(Interpreter const&) = delete;
    Interpreter& operator=(Interpreter const&) = delete;

private:
    Interpreter();

    std::function<std::string()> m_executingBlock;
    std::vector<ScriptError> m_errors;
};

} // namespace flowmere::host
