#pragma once

// The one Python interpreter of the program, cut off from the user's own Python: no environment variables, no user
// packages, no bytecode, UTF-8 everywhere.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

class OutputCapture;

// An error that a script left uncaught.
struct ScriptError {
    std::string block;     // path of the block that was executing
    std::string type;      // name of the exception class
    std::string text;      // what the exception says
    std::string traceback; // the whole report, with a line end
    bool interrupt = false;
    // The innermost place that lies in a script of the user's, or that of the fault itself where a script does not
    // compile. Below a script root the file is told from there, unless another root has a file of that name too.
    std::string file;   // empty when no script of the user's was running
    int line = 0;       // 0 for none
    std::string source; // that line, without the blanks around it; empty where it cannot be read
};

// The error on one line: "FILE:LINE: `SOURCE`: TYPE: TEXT". What is not known is left out.
std::string errorText(ScriptError const& error);

// A piece of what a script printed.
struct PrintedText {
    bool isError = false; // to standard error
    std::string text;     // as it was written: any bytes
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

    // From now on everything that is printed is kept for takePrinted(), and goes on to where it went before all the
    // same: what scripts print, what the programs that they start print, and what C code writes to the files 1 and 2.
    // printOut() and printError() stay outside. With `allToError` standard output goes on to standard error. Throws
    // Failure when the machine has no process or file left for it. Nothing when it is on already.
    void captureOutput(bool allToError = false);
    // While output is kept: from now on each line of it begins with "  LABEL | " or, on standard error, "  LABEL ! "
    // where it goes on to. Not in what takePrinted() gives.
    void labelOutput(std::string const& label);
    // What was printed since the last call, in order, one piece for each stretch to one of the two streams. After
    // finishTick() it is all that the block has printed, but for what it left running. Empty while nothing is kept.
    std::vector<PrintedText> takePrinted();
    // The end of captureOutput(): the files are those of before. What was not taken is still there to be taken.
    void releaseOutput();
    // Waits until all that was printed is where it goes to, so that printOut() comes behind it.
    void settleOutput();
    // The same between two pieces of what scripts print: a line that is open goes on.
    void orderOutput();
    // Between the two, what is printed is no output of a block: it goes where it would go without captureOutput().
    void pauseCapture();
    void resumeCapture();

    // From now on Ctrl-C stops the script that runs, and interrupted() is true; a second one ends the program at once
    // with exit code 130. Writing to a pipe that nobody reads becomes an error and ends nothing.
    void takeSignals();
    bool interrupted() const;
    // For a program that goes on: the next Ctrl-C is the first again.
    void forgetInterrupt();

    Interpreter(Interpreter const&) = delete;
    Interpreter& operator=(Interpreter const&) = delete;

private:
    Interpreter();
    ~Interpreter();
    ScriptError errorOf(std::string const& type, std::string const& text) const;

    std::function<std::string()> m_executingBlock;
    std::vector<ScriptError> m_errors;
    std::unique_ptr<OutputCapture> m_capture;
    pid_t m_owner;
    std::vector<PrintedText> m_printed;
};

} // namespace flowmere::host
