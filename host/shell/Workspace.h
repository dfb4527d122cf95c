#pragma once

// What the shell works on: the open project, its run, and what each of the library's commands does with them.

#include "host/document/DebugBlock.h"
#include "host/document/Document.h"
#include "host/run/HostCommand.h"
#include "host/run/Runner.h"
#include "host/scripting/Interpreter.h"
#include "host/shell/Output.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace flowmere::host::shell {

// Gives the library's command object an action for each of its commands, for as long as it lives; one at a time. What
// the commands work on are the values of the resources. A command that cannot do its work throws Failure, exit code 1
// where a block failed or there is nothing to do, else 2.
class Workspace {
public:
    struct Setting {
        std::vector<std::string> scriptRoots;
        bool debugs = false; // a break point opens Python's debugger
        // Asked before the unsaved changes of the project of that name get lost; false keeps it open.
        std::function<bool(std::string const& name)> mayLose;
        // Asked before another file than the project's own is replaced; false keeps it.
        std::function<bool(std::string const& file)> mayReplace;
    };
    Workspace(Setting setting, Output& output);
    ~Workspace();
    Workspace(Workspace const&) = delete;
    Workspace& operator=(Workspace const&) = delete;

    // Null while no project is open.
    Document* document() const { return m_document.get(); }
    // The file of the project, as the user named it; empty while none is open.
    std::string const& name() const { return m_name; }
    bool hasUnsavedChanges() const;
    // False where the user wants to keep changes that would be lost.
    bool mayLeave();

    // The words of the shell. An empty name is the whole project, "." the process itself.
    void show(std::string const& block);
    void variables(std::string const& block);
    void status();

    // The variables of a block, by name.
    std::vector<std::string> variableNames(std::string const& block) const;

private:
    void setActions();
    Document& project() const;
    std::string required(char const* resource, char const* what) const;
    CFCBlockNode& selectedBlock() const;
    // The process itself where that is meant.
    IFCNode& executingNode() const;
    IFCNode& nodeOf(std::string const& block) const;
    void changed() const;

    // Projects
    std::unique_ptr<Document> read(std::string const& file) const;
    void take(std::string const& file, bool mayLose);
    void close();
    void leaveProject();
    void createProject();
    void openProject();
    void closeProject();
    void saveProject();
    void saveProjectAs();
    void saveTo(std::string const& file);
    void saveIteration();

    // The run
    Runner& runner();
    // Moves the run, and tells how it stands then. `nothing` is said where there was nothing to do.
    void move(std::function<RunEnd(Runner&)> const& how, std::string const& nothing, bool mayDebug = true);
    std::string ended() const;
    void blockDone(BlockRun const& run);
    void history(std::string const& text);
    void begin();
    void step();
    void resume();
    void autoExecute();
    void undoStep();
    void undoToStop();
    void executeBlock();
    void undoBlock();

    // Marks
    enum class Mark { Stop, Skip, Break };
    void mark(Mark mark, bool isSet);
    void clearAll(Mark mark);
    void expand();

    // Values
    void setVariables();
    void extractVariables();

    Setting m_setting;
    Output& m_output;
    HostCommand& m_commands;
    std::unique_ptr<Document> m_document;
    std::string m_name;           // the file of the project, as the user named it
    std::filesystem::path m_file; // the same: where Save Project writes
    FileState m_state;            // of that file, when it was read or written last
    std::size_t m_width = 0;      // of the paths of blocks in lines
    Interpreter* m_interpreter = nullptr;
    std::unique_ptr<Runner> m_runner;
    std::optional<Debugging> m_debugging; // from the first run of a shell that debugs to its end
    bool m_hasBegun = false;
    bool m_hasToldBreaks = false;         // that they have no effect here
    std::filesystem::path m_scriptFolder; // where scripts went
    std::set<std::string> m_expanded;     // paths of sub-processes
    VariableValues m_values;              // what Extract Variable Data found last
    std::optional<BlockRun> m_last;       // the block that was run or undone last
};

} // namespace flowmere::host::shell
