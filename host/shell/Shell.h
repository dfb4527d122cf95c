#pragma once

// Takes the lines of the shell, one after the other.

#include "host/shell/Commands.h"
#include "host/shell/Workspace.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace flowmere::host::shell {

// Where a line comes from: what stands before the cause of an error. Empty for lines that are typed.
struct Origin {
    std::string source; // "standard input", "-c"
    std::string place;  // "line 3"
    std::size_t number = 0;
};

class Shell {
public:
    struct Setting {
        std::vector<std::string> scriptRoots;
        bool isJson = false;
        bool debugs = false;
        bool isInteractive = false; // lines are typed: the first try to lose changes fails
    };
    explicit Shell(Setting const& setting);

    // Does what the line says, and gives its exit code. What fails is told on standard error.
    int run(std::string const& line, Origin const& origin);
    // Opens a document as "Open Project" does. Throws Failure.
    void open(std::string const& file);
    // A line said quit, and nothing spoke against it.
    bool hasQuit() const { return m_hasQuit; }
    // At the end of the lines: false when there are unsaved changes, which has been said now.
    bool mayEnd(Origin const& origin);

    Workspace const& workspace() const { return m_workspace; }
    // "flowmere> ", or with the open project in place of the program.
    std::string prompt() const;

private:
    struct Kept;

    void execute(std::vector<Word> const& words);
    void executeOwn(Command const& command, std::vector<Word> const& words, std::size_t place);
    void executeLibrary(Command const& command, std::vector<Word> const& words, std::size_t place);
    void help(std::vector<Word> const& words, std::size_t place);
    void set(std::vector<Word> const& words, std::size_t place);
    void get(std::vector<Word> const& words, std::size_t place);
    void getOne(std::string const& resource);
    std::string resourceAt(std::vector<Word> const& words, std::size_t& place) const;
    bool isInsistent();
    bool mayLose(std::string const& name);
    void printJson(std::size_t line, std::string const& command, Json arguments, bool isWell);

    Setting m_setting;
    Output m_output;
    Workspace m_workspace;
    HostCommand& m_commands;
    std::vector<std::string> m_history;
    VariableValues m_values; // what `set "Variable Data"` gave
    Origin m_origin;
    std::string m_line;    // the one that is being done
    std::string m_refused; // the line that would have lost something; the same again does
    bool m_hasQuit = false;
};

} // namespace flowmere::host::shell
