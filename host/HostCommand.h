#pragma once

// The one command object of the process: the library's named commands, with those that the library leaves to its host.

#include "flowmere/Flowmere.h"

#include <functional>
#include <map>
#include <string>

namespace flowmere::host {

// Never destroyed. Made by the first call of instance(), which must come before anybody asks the library for its
// command object: so this one is that object.
class HostCommand final : public CFCCommand {
public:
    static HostCommand& instance();

    // Called with the path of each block that is about to run; an empty function takes it away.
    void setBlockStarts(std::function<void(std::string const&)> blockStarts);

    // Does what a command is to do beyond the library's own part, and gives its result: 0, or -1 for a failure.
    using Action = std::function<int()>;
    // Gives the command of that name an action; an empty one takes it away. The library has then looked the command up
    // and gathered its resources. A command has no action while its action runs, so that one may send its own name on
    // to the library.
    void setAction(std::string const& name, Action action);

    int SetValues(char const* name, char const* type, void const* value, int count) override;
    int ExecuteCommand(char const* name, void const* argument) override;
    using CFCCommand::ExecuteCommand;
    using CFCCommand::SetValues;

private:
    HostCommand() = default;

    std::string m_path;
    bool m_isTick = false; // "Execute Block" was said by the library, which has just named the block
    std::function<void(std::string const&)> m_blockStarts;
    std::map<std::string, Action, std::less<>> m_actions;
    std::string m_running;
};

} // namespace flowmere::host
