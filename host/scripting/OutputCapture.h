#pragma once

// Keeps what is printed, without being in its way.

#include "host/scripting/Interpreter.h"

#include <mutex>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace flowmere::host {

// While this lives the files 1 and 2 of the process are pipes. A process of its own reads them, writes on at once to
// where the two led before, and keeps a copy. It goes on until the pipes have no writer left, so that nothing is lost
// when a script leaves the program from within, when the program is killed, and when another program takes its place.
//
// What printOut() and printError() write goes past the pipes. In a process that a script forks off, the calls below do
// nothing. Threads may call them at will.
class OutputCapture {
public:
    // With `allToError` file 1 leads on to where file 2 led. Throws Failure.
    explicit OutputCapture(bool allToError);
    // Gives the files back. What was not taken is lost for take(), and for nobody else.
    ~OutputCapture();
    OutputCapture(OutputCapture const&) = delete;
    OutputCapture& operator=(OutputCapture const&) = delete;

    // Returns when all that was written before the call is where it goes to. A line with a label that is open gets an
    // end: something else is to come.
    void settle();
    // The same for more of what is kept: a line that is open goes on.
    void order();
    // From now on each line that is written on begins with "  LABEL | ", or with "  LABEL ! " on file 2, and a line
    // that is open when something else comes in between gets an end. With an empty label all goes on as it comes.
    void label(std::string const& label);
    // All that was written before the call and was not taken before, in order, neighbours of one stream in one piece.
    // Between two programs that write to the two streams at the same time, the order is that of arrival.
    std::vector<PrintedText> take();
    // Why something could not be written on, as "standard output cannot be written: CAUSE"; once for each cause, and
    // empty when all is well. What could not be written on is kept all the same.
    std::string takeFault();

    // From pause() to resume() the files 1 and 2 lead past the pipes.
    void pause();
    void resume();

private:
    void ask(std::string_view request, std::vector<PrintedText>* printed);
    bool sendRequest(std::string_view request) const;
    bool readReply(std::vector<PrintedText>* printed);
    int start(int out, int error, int control) const;
    void giveBack();

    std::mutex m_mutex;
    pid_t m_owner;
    int m_pipes[2] = {-1, -1};     // the ends to write to
    int m_originals[2] = {-1, -1}; // the files 1 and 2 of before
    int m_targets[2] = {-1, -1};   // where they lead on to
    int m_control = -1;
    std::string m_fault;
};

} // namespace flowmere::host
