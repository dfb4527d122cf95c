#include <pybind11/embed.h>
#include <pybind11/stl.h>

#include "host/checks/Scripts.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/scripting/Interpreter.h"

#include <algorithm>
#include <tuple>

namespace py = pybind11;

namespace flowmere::host {

namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || character == '_';
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

py::module_ reader() {
    return py::module_::import("_flowmere_check");
}

ScriptFacts read(std::filesystem::path const& file, std::string const& className) {
    py::gil_scoped_acquire const lock;
    ScriptFacts facts;
    try {
        py::object const script = reader().attr("read_script")(py::bytes(file.string()), className);
        if (script.is_none())
            return facts;
        facts.error = oneLine(script.attr("error").cast<std::string>());
        facts.errorLine = script.attr("error_line").cast<int>();
        facts.grips = script.attr("grips").cast<std::map<int, int>>();
        facts.setsUnknownGrip = script.attr("sets_unknown_grip").cast<bool>();
        facts.alwaysSetsGrip = script.attr("always_sets_grip").cast<bool>();
        facts.hasClass = script.attr("has_class").cast<bool>();
        for (auto const& [line, level, module] :
             script.attr("relative_imports").cast<std::vector<std::tuple<int, int, std::string>>>())
            facts.relativeImports.push_back({line, level, module});
    } catch (py::error_already_set const& problem) {
        facts.error = oneLine(problem.what());
    } catch (py::cast_error const& problem) {
        facts.error = oneLine(problem.what());
    }
    return facts;
}

} // namespace

Scripts::Scripts() {
    Interpreter::start({});
    py::gil_scoped_acquire const lock;
    try {
        m_keywords = reader().attr("keywords")().cast<std::vector<std::string>>();
    } catch (py::error_already_set const& problem) {
        throw Failure("Python", "", problem.what());
    }
    std::sort(m_keywords.begin(), m_keywords.end());
}

ScriptFacts const& Scripts::factsOf(std::filesystem::path const& file, std::string const& className) {
    auto const key = std::pair(file.string(), className);
    auto entry = m_facts.find(key);
    if (entry == m_facts.end())
        entry = m_facts.emplace(key, read(file, className)).first;
    return entry->second;
}

bool Scripts::isKeyword(std::string const& name) {
    return std::binary_search(m_keywords.begin(), m_keywords.end(), name);
}

bool Scripts::isIdentifier(std::string const& name) {
    auto const isAscii = [](char character) {
        return static_cast<unsigned char>(character) < 0x80;
    };
    if (std::all_of(name.begin(), name.end(), isAscii)) {
        auto const fits = [](char character) {
            return isLetter(character) || isDigit(character);
        };
        return !name.empty() && !isDigit(name.front()) && std::all_of(name.begin(), name.end(), fits) &&
               !isKeyword(name);
    }
    auto entry = m_names.find(name);
    if (entry == m_names.end()) {
        py::gil_scoped_acquire const lock;
        bool fits = false;
        try {
            fits = reader().attr("is_identifier")(name).cast<bool>();
        } catch (py::error_already_set const&) {
            // No text at all for Python: bytes that are no UTF-8.
        }
        entry = m_names.emplace(name, fits).first;
    }
    return entry->second;
}

std::vector<std::string> partsOf(std::string_view scriptName) {
    std::vector<std::string> parts;
    for (;;) {
        auto const point = scriptName.find('.');
        parts.emplace_back(scriptName.substr(0, point));
        if (point == std::string_view::npos)
            return parts;
        scriptName.remove_prefix(point + 1);
    }
}

} // namespace flowmere::host
