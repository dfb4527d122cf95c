#pragma once

// What the commands of the program share: how they end.

#include <stdexcept>
#include <string>

namespace flowmere::host {

enum ExitCode : int {
    kExitWell = 0,
    kExitFound = 1,         // the run failed, or a check found something
    kExitWrongUse = 2,      // wrong use, or a file that cannot be read or written
    kExitInterrupted = 130, // Ctrl-C
};

// A reason to stop, told as the one line "flowmere: FILE: PLACE: CAUSE" on standard error. File and place may be
// empty, and are then left out. main() catches it; commands throw it.
class Failure : public std::runtime_error {
public:
    Failure(std::string const& file, std::string const& place, std::string const& cause, int exitCode = kExitWrongUse);

    int exitCode() const { return m_exitCode; }

private:
    int m_exitCode;
};

// The same line for something that does not stop a command.
std::string errorLine(std::string const& file, std::string const& place, std::string const& cause);

// How the command that was called has ended. It outlives the parsing of the command line.
struct Result {
    int exitCode = kExitWell;
};

} // namespace flowmere::host
