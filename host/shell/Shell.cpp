#include "host/shell/Shell.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

namespace flowmere::host::shell {

namespace fs = std::filesystem;

namespace {

constexpr char kVariableData[] = "Variable Data";

// NAME=VALUE, up to the end of the line.
VariableValues valuesOf(std::vector<Word> const& words, std::size_t place) {
    VariableValues values;
    for (; place < words.size(); ++place) {
        std::string const& text = words[place].text;
        auto const equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw Failure("", text, "is not of the form NAME=VALUE");
        if (!values.emplace(text.substr(0, equals), text.substr(equals + 1)).second)
            throw Failure("", text.substr(0, equals), "is given twice");
    }
    return values;
}

bool isValue(Word const& word) {
    return word.text.find('=') != std::string::npos;
}

// The words of a line, without what stands before.
Json textsOf(std::vector<Word> const& words, std::size_t place) {
    Json texts = Json::array();
    for (; place < words.size(); ++place)
        texts.push_back(words[place].text);
    return texts;
}

} // namespace

// The values that resources had before a line gave them others. What is said on a line holds for that line.
struct Shell::Kept {
    explicit Kept(HostCommand& object) : commands(object) {}
    ~Kept() {
        for (auto const& [resource, text] : texts) {
            if (text)
                commands.setText(resource.c_str(), *text);
            else
                commands.unset(resource.c_str());
        }
        if (hasValues && values != nullptr)
            commands.setVariableData(values);
        else if (hasValues)
            commands.unset(kVariableData);
    }
    Kept(Kept const&) = delete;
    Kept& operator=(Kept const&) = delete;

    void setText(std::string const& resource, std::string const& value) {
        texts.emplace(resource, commands.text(resource.c_str()));
        commands.setText(resource.c_str(), value);
    }
    void setValues(VariableValues given) {
        own = std::move(given);
        values = commands.variableData();
        hasValues = true;
        commands.setVariableData(&own);
    }

    HostCommand& commands;
    std::map<std::string, std::optional<std::string>> texts;
    VariableValues own;
    VariableValues* values = nullptr;
    bool hasValues = false;
};

Shell::Shell(Setting const& setting)
    : m_setting(setting), m_output(setting.isJson),
      m_workspace({setting.scriptRoots, setting.debugs, [this](std::string const& name) { return mayLose(name); },
                   [this](std::string const&) {
                       return isInsistent();
                   }},
                  m_output),
      m_commands(HostCommand::instance()) {}

std::string Shell::prompt() const {
    std::string const& name = m_workspace.name();
    return (name.empty() ? "flowmere" : oneLine(fs::path(name).filename().string())) + "> ";
}

// Whether to do what loses something: a script means what it says, a user who says it twice does too.
bool Shell::isInsistent() {
    if (m_setting.isInteractive && m_refused != m_line) {
        m_refused = m_line;
        return false;
    }
    m_refused.clear();
    return true;
}

bool Shell::mayLose(std::string const& name) {
    if (!isInsistent())
        return false;
    printError(errorLine(m_origin.source, m_origin.place, name + ": has unsaved changes, which are lost") + "\n");
    return true;
}

bool Shell::mayEnd(Origin const& origin) {
    m_origin = origin;
    m_line = "quit";
    if (m_workspace.mayLeave())
        return true;
    printError(errorLine("", m_workspace.name(), "has unsaved changes: Save Project keeps them, quit leaves them") +
               "\n");
    return false;
}

void Shell::open(std::string const& file) {
    Kept kept(m_commands);
    kept.setText("Project Name", file);
    m_commands.ExecuteCommand("Open Project", nullptr);
    if (m_commands.failure())
        throw *m_commands.failure();
    if (m_setting.isJson)
        printJson(0, "Open Project", Json::array({file}), true);
}

int Shell::run(std::string const& line, Origin const& origin) {
    m_origin = origin;
    m_line = line;
    std::string name;
    Json arguments = Json::array();
    std::optional<Failure> failure;
    try {
        std::vector<Word> const words = wordsOf(line);
        if (words.empty())
            return kExitWell;
        m_history.push_back(line);
        std::optional<Found> const found = nameAt(words, 0, commandNames());
        name = found ? found->name : words.front().text;
        arguments = textsOf(words, found ? found->words : 1);
        execute(words);
    } catch (Failure const& problem) {
        failure = problem;
    } catch (std::exception const& problem) {
        failure = Failure("", "", problem.what());
    }
    if (m_refused != line)
        m_refused.clear();

    if (failure) {
        std::string cause = failure->what();
        cause.erase(0, errorLine("", "", "").size());
        printError(errorLine(origin.source, origin.place, cause) + "\n");
        m_output.fact("error", cause);
    }
    if (m_setting.isJson)
        printJson(origin.number, name, std::move(arguments), !failure);
    return failure ? failure->exitCode() : kExitWell;
}

void Shell::printJson(std::size_t line, std::string const& command, Json arguments, bool isWell) {
    Json document = {{"line", line}, {"command", command}, {"arguments", std::move(arguments)}, {"ok", isWell}};
    Json const facts = m_output.takeFacts();
    for (auto const& [key, value] : facts.items())
        document[key] = value;
    printOut(document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

void Shell::execute(std::vector<Word> const& words) {
    std::vector<std::string> const names = commandNames();
    std::optional<Found> const found = nameAt(words, 0, names);
    if (!found)
        throw unknownName(words, 0, names, "command");
    auto const command = std::find_if(commands().begin(), commands().end(),
                                      [&](Command const& candidate) { return candidate.name == found->name; });
    if (command->isOwn)
        executeOwn(*command, words, found->words);
    else
        executeLibrary(*command, words, found->words);
}

void Shell::executeLibrary(Command const& command, std::vector<Word> const& words, std::size_t place) {
    Kept kept(m_commands);
    for (Parameter const& parameter : command.parameters) {
        if (place == words.size())
            break;
        std::string const& text = words[place].text;
        if (parameter.kind == Argument::Values) {
            kept.setValues(valuesOf(words, place));
            place = words.size();
            continue;
        }
        // A block may be left out before values.
        if (parameter.kind == Argument::Block && command.parameters.back().kind == Argument::Values &&
            isValue(words[place]))
            continue;
        if (text.empty())
            throw Failure("", command.name, "an argument is empty: " + command.usage());
        std::error_code error;
        if (parameter.kind == Argument::Target && !text.ends_with('/') && !fs::is_directory(text, error)) {
            fs::path const path = text;
            kept.setText("Project Name", path.filename().string());
            kept.setText(parameter.resource, path.has_parent_path() ? path.parent_path().string() : ".");
        } else {
            kept.setText(parameter.resource, text);
        }
        ++place;
    }
    if (place < words.size())
        throw Failure("", words[place].text, "is one argument too many: " + command.usage());
    int const result = m_commands.ExecuteCommand(command.name.c_str(), nullptr);
    if (m_commands.failure())
        throw *m_commands.failure();
    if (result != 0)
        throw Failure("", command.name, "was not accepted");
}

void Shell::executeOwn(Command const& command, std::vector<Word> const& words, std::size_t place) {
    bool const takesMore = command.name == "set" || command.name == "get" || command.name == "help";
    if (!takesMore && words.size() > place + command.parameters.size())
        throw Failure("", words[place + command.parameters.size()].text,
                      "is one argument too many: " + command.usage());
    std::string const argument = place < words.size() ? words[place].text : std::string();
    if (command.name == "help") {
        help(words, place);
    } else if (command.name == "set") {
        set(words, place);
    } else if (command.name == "get") {
        get(words, place);
    } else if (command.name == "show") {
        m_workspace.show(argument);
    } else if (command.name == "vars") {
        m_workspace.variables(argument);
    } else if (command.name == "status") {
        m_workspace.status();
    } else if (command.name == "history") {
        for (std::size_t index = 0; index < m_history.size(); ++index)
            m_output.line(fmt::format("{:>5}  {}", index + 1, oneLine(m_history[index])));
        m_output.fact("lines", m_history);
    } else if (command.name == "quit") {
        if (!m_workspace.mayLeave())
            throw Failure(m_workspace.name(), "",
                          "has unsaved changes: Save Project keeps them, quit once more leaves them", kExitFound);
        m_hasQuit = true;
    }
}

void Shell::help(std::vector<Word> const& words, std::size_t place) {
    std::vector<Command> shown = commands();
    if (place < words.size()) {
        std::vector<std::string> const names = commandNames();
        std::optional<Found> const found = nameAt(words, place, names);
        if (!found)
            throw unknownName(words, place, names, "command");
        if (place + found->words < words.size())
            throw Failure("", words[place + found->words].text, "is one argument too many: help [COMMAND]");
        std::erase_if(shown, [&](Command const& command) { return command.name != found->name; });
    }
    std::size_t width = 0;
    for (Command const& command : shown)
        width = std::max(width, command.usage().size());
    for (Command const& command : shown) {
        m_output.line(fmt::format("{:<{}}  {}", command.usage(), width, command.description));
        std::vector<std::string> resources;
        for (Parameter const& parameter : command.parameters)
            if (!parameter.resource.empty())
                resources.push_back(parameter.resource);
        if (shown.size() == 1)
            for (Parameter const& parameter : command.parameters)
                if (!parameter.resource.empty())
                    m_output.line(fmt::format("  {} fills \"{}\"", parameter.usage, parameter.resource));
        m_output.add("commands", {{"name", command.name},
                                  {"usage", command.usage()},
                                  {"description", command.description},
                                  {"resources", resources},
                                  {"own", command.isOwn}});
    }
}

// The resource that stands there; the place behind it.
std::string Shell::resourceAt(std::vector<Word> const& words, std::size_t& place) const {
    std::vector<std::string> const names = resourceNames();
    std::optional<Found> const found = nameAt(words, place, names);
    if (!found)
        throw unknownName(words, place, names, "resource");
    place += found->words;
    return found->name;
}

void Shell::set(std::vector<Word> const& words, std::size_t place) {
    if (place == words.size())
        throw Failure("", "set", "names no resource: set RESOURCE VALUE");
    std::string const resource = resourceAt(words, place);
    if (place == words.size())
        throw Failure("", resource, "is given no value: set RESOURCE VALUE");
    if (resource == kVariableData) {
        m_values = valuesOf(words, place);
        m_commands.setVariableData(&m_values);
    } else {
        if (place + 1 < words.size())
            throw Failure("", words[place + 1].text, "is one argument too many: set RESOURCE VALUE");
        m_commands.setText(resource.c_str(), words[place].text);
    }
    getOne(resource);
}

void Shell::get(std::vector<Word> const& words, std::size_t place) {
    if (place == words.size()) {
        for (std::string const& resource : resourceNames())
            getOne(resource);
        return;
    }
    std::string const resource = resourceAt(words, place);
    if (place < words.size())
        throw Failure("", words[place].text, "is one argument too many: get [RESOURCE]");
    getOne(resource);
}

void Shell::getOne(std::string const& resource) {
    Json value;
    std::string line = resource + " has no value";
    if (resource == kVariableData) {
        if (VariableValues const* const values = m_commands.variableData()) {
            value = Json::object();
            line = resource + " =";
            for (auto const& [name, text] : *values) {
                value[name] = text;
                line += " " + oneLine(asWord(name + "=" + text));
            }
        }
    } else if (std::optional<std::string> const text = m_commands.text(resource.c_str())) {
        value = *text;
        line = resource + " = " + oneLine(*text);
    }
    m_output.line(line);
    m_output.add("resources", {{"name", resource}, {"value", value}});
}

} // namespace flowmere::host::shell
