#pragma once

// The one command object of the process: the library's named commands, with those that the library leaves to its host.

#include "flowmere/Flowmere.h"
#include "host/basics/Command.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace flowmere::host {

// Values of variables by name: what the resource "Variable Data" points at.
using VariableValues = std::map<std::string, std::string>;

// One of the library's commands, as its table tells it.
struct CommandEntry {
    std::string name;
    std::string description;
    std::vector<std::string> resources; // those that it takes
};

// One of the library's resources.
struct ResourceEntry {
    std::string name;
    std::string description;
};

// Never destroyed. Made by the first call of instance(), which must come before anybody asks the library for its
// command object: so this one is that object.
class HostCommand final : public CFCCommand {
public:
    static HostCommand& instance();

    // Called with the path of each block that is about to run; an empty function takes it away.
    void setBlockStarts(std::function<void(std::string const&)> blockStarts);

    // Does what a command is to do beyond the library's own part. Throws Failure.
    using Action = std::function<void()>;
    // Gives the command of that name an action; an empty one takes it away. The library has then looked the command up
    // and gathered its resources. Commands that an action sends go to the library alone.
    void setAction(std::string const& name, Action action);
    // Why the last command did not go through; none when it did, and when the library knows no such command.
    std::optional<Failure> const& failure() const { return m_failure; }

    // Both in the order of their names.
    std::vector<CommandEntry> commandEntries() const;
    std::vector<ResourceEntry> resourceEntries() const;

    // The text of a resource; none for one without a value, and for what is no text.
    std::optional<std::string> text(char const* resource);
    // What "Variable Data" points at; null when it has no value.
    VariableValues* variableData();
    void setText(char const* resource, std::string const& value);
    // The values stay the caller's.
    void setVariableData(VariableValues* values);
    // Takes the value away again, which no command of the library does.
    void unset(char const* resource);

    int SetValues(char const* name, char const* type, void const* value, int count) override;
    // -1 for an action that has failed too: its line is then what "Error" gives.
    int ExecuteCommand(char const* name, void const* argument) override;
    using CFCCommand::ExecuteCommand;
    using CFCCommand::SetValues;

private:
    HostCommand() = default;
    // The value of a resource of that type, where it is one; null for none.
    void* pointer(char const* resource, int type);

    std::string m_path;
    bool m_isTick = false; // "Execute Block" was said by the library, which has just named the block
    std::function<void(std::string const&)> m_blockStarts;
    std::map<std::string, Action, std::less<>> m_actions;
    bool m_isActing = false;
    std::optional<Failure> m_failure;
};

} // namespace flowmere::host
