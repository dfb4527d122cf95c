#include "host/run/HostCommand.h"

#include "host/basics/Text.h"

#include <string_view>
#include <utility>

namespace flowmere::host {

namespace {

constexpr std::string_view kExecuteBlock = "Execute Block";
constexpr char kVariableData[] = "Variable Data";

// How the library numbers the types of resources.
constexpr int kTextType = 5;
constexpr int kTableType = 11;

// Sets a flag for as long as it lives.
class Scope {
public:
    explicit Scope(bool& flag) : m_flag(flag) { m_flag = true; }
    ~Scope() { m_flag = false; }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

private:
    bool& m_flag;
};

} // namespace

HostCommand& HostCommand::instance() {
    static HostCommand* const object = new HostCommand;
    return *object;
}

void HostCommand::setBlockStarts(std::function<void(std::string const&)> blockStarts) {
    m_blockStarts = std::move(blockStarts);
}

void HostCommand::setAction(std::string const& name, Action action) {
    if (action)
        m_actions.insert_or_assign(name, std::move(action));
    else
        m_actions.erase(name);
}

std::vector<CommandEntry> HostCommand::commandEntries() const {
    std::vector<CommandEntry> entries;
    for (int index = 0; index < commandCount; ++index) {
        _CFCCommandTable const& command = commands[index];
        CommandEntry entry{command.name, command.description, {}};
        for (char const* const argument : command.arguments)
            if (argument != nullptr)
                entry.resources.emplace_back(argument);
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::vector<ResourceEntry> HostCommand::resourceEntries() const {
    std::vector<ResourceEntry> entries;
    for (int index = 0; index < resourceCount; ++index)
        entries.push_back({resources[index].name, resources[index].description});
    return entries;
}

void* HostCommand::pointer(char const* resource, int type) {
    _CFCResourceTable const* const entry = getResourceFromName(resource);
    if (entry == nullptr || !entry->isSet || entry->type != type || entry->arrayCount != 0)
        return nullptr;
    void* value = nullptr;
    return GetValues(resource, static_cast<void*>(&value), nullptr) == 0 ? value : nullptr;
}

std::optional<std::string> HostCommand::text(char const* resource) {
    auto const* const value = static_cast<char const*>(pointer(resource, kTextType));
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

VariableValues* HostCommand::variableData() {
    return static_cast<VariableValues*>(pointer(kVariableData, kTableType));
}

void HostCommand::setText(char const* resource, std::string const& value) {
    SetValues(resource, "string", value.c_str(), 0);
}

void HostCommand::setVariableData(VariableValues* values) {
    SetValues(kVariableData, "hashtable", values, 0);
}

void HostCommand::unset(char const* resource) {
    if (_CFCResourceTable* const entry = getResourceFromName(resource))
        entry->isSet = false;
}

// Each tick names its block by this, before it says "Execute Block".
int HostCommand::SetValues(char const* name, char const* type, void const* value, int count) {
    if (name != nullptr && value != nullptr && name == kExecuteBlock) {
        m_path = static_cast<char const*>(value);
        m_isTick = true;
    }
    return CFCCommand::SetValues(name, type, value, count);
}

int HostCommand::ExecuteCommand(char const* name, void const* argument) {
    std::string const command = name != nullptr ? name : "";
    bool const isTick = command == kExecuteBlock && std::exchange(m_isTick, false);
    if (isTick && m_blockStarts)
        m_blockStarts(m_path);
    auto const entry = m_actions.find(command);
    if (isTick || entry == m_actions.end() || m_isActing)
        return CFCCommand::ExecuteCommand(name, argument);
    m_failure.reset();
    // The library moves its mechanism for the commands of the execution; where there is an action, that does it.
    FCExecutionMechanism* const moved = std::exchange(mechanism, nullptr);
    int const result = CFCCommand::ExecuteCommand(name, argument);
    mechanism = moved;
    if (result != 0)
        return result;
    Action const action = entry->second;
    Scope const acting(m_isActing);
    try {
        action();
    } catch (Failure const& failure) {
        m_failure = failure;
        errorText = wide(failure.what());
        return -1;
    }
    return 0;
}

} // namespace flowmere::host
