#include "host/HostCommand.h"

#include <string_view>
#include <utility>

namespace flowmere::host {

namespace {

constexpr std::string_view kExecuteBlock = "Execute Block";

// Sets a text for as long as it lives.
class Scope {
public:
    Scope(std::string& text, std::string value) : m_text(text), m_before(std::exchange(text, std::move(value))) {}
    ~Scope() { m_text = std::move(m_before); }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

private:
    std::string& m_text;
    std::string m_before;
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
    if (isTick || entry == m_actions.end() || m_running == command)
        return CFCCommand::ExecuteCommand(name, argument);
    // The library moves its mechanism for the commands of the execution; where there is an action, that does it.
    FCExecutionMechanism* const moved = std::exchange(mechanism, nullptr);
    int const result = CFCCommand::ExecuteCommand(name, argument);
    mechanism = moved;
    if (result != 0)
        return result;
    Action const action = entry->second;
    Scope const running(m_running, command);
    return action();
}

} // namespace flowmere::host
