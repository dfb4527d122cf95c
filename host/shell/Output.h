#pragma once

// What a command of the shell says.

#include "host/basics/Text.h"

#include <nlohmann/json.hpp>

#include <string>
#include <utility>

namespace flowmere::host::shell {

// Lines for people, printed as they come; or facts for programs, gathered until the command has ended.
class Output {
public:
    explicit Output(bool isJson) : m_isJson(isJson) {}

    bool isJson() const { return m_isJson; }

    // One line, without its end. Nothing with JSON.
    void line(std::string const& text) const {
        if (!m_isJson)
            printOut(text + "\n");
    }
    // Nothing without JSON.
    template <typename Value>
    void fact(char const* name, Value&& value) {
        if (m_isJson)
            m_facts[name] = std::forward<Value>(value);
    }
    // Adds to a fact that is a list.
    void add(char const* name, Json value) {
        if (m_isJson)
            m_facts[name].push_back(std::move(value));
    }
    Json takeFacts() { return std::exchange(m_facts, Json::object()); }

private:
    bool m_isJson;
    Json m_facts = Json::object();
};

} // namespace flowmere::host::shell
