#pragma once

// Blocks whose scripts can run under Python's debugger, and the run that opens it.

#include "flowmere/Flowmere.h"

#include <vector>

namespace flowmere::host {

class Document;

// A new block of the class that belongs to the type code, with the code as its type; the caller owns it. As long as no
// Debugging lives it is as good as one of the library. Null for codes of other nodes, and when memory runs out.
IFCNode* makeDebugBlock(int typeCode);

// While this lives, blocks with a breakpoint run under the debugger, which stops at the first line of the method that
// the block runs. It reads and writes where the program does; what is printed at its prompt is no output of the block.
// A block that fails opens it too, at the place of the error. Who quits the debugger interrupts the run. Where the
// commands come from a pipe and are used up, the run goes on without a further stop; on a terminal the end of the
// input quits.
//
// One at a time, after the interpreter has started.
class Debugging {
public:
    // Sets breakpoints at these blocks of the document, and takes them away again at the end. Throws Failure, exit code
    // 2, for a block that has no script.
    Debugging(Document& document, std::vector<CFCBlockNode*> const& at);
    ~Debugging();
    Debugging(Debugging const&) = delete;
    Debugging& operator=(Debugging const&) = delete;

    // From pause() to resume() nothing opens the debugger. It keeps what the user has told it, its own breakpoints for
    // instance.
    void pause();
    void resume();

private:
    void show(bool isShown);

    std::vector<CFCBlockNode*> m_blocks;
    _object* m_debugger = nullptr;
};

} // namespace flowmere::host
