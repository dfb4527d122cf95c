#include "host/help/CommandLine.h"

#include "host/basics/Text.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace flowmere::host {

namespace {

// "{svg,png}", as validators tell it, or "svg|png".
std::vector<std::string> choicesIn(std::string const& type) {
    std::string words;
    char separator = ',';
    auto const begin = type.find('{');
    auto const end = type.find('}');
    if (begin != std::string::npos && end != std::string::npos && begin < end) {
        words = type.substr(begin + 1, end - begin - 1);
    } else if (type.find('|') != std::string::npos && type.find_first_of(" .=[") == std::string::npos) {
        words = type;
        separator = '|';
    } else {
        return {};
    }
    std::vector<std::string> choices;
    for (std::size_t at = 0; at <= words.size();) {
        std::size_t const next = std::min(words.find(separator, at), words.size());
        // A table of names and values tells both.
        std::string const word = words.substr(at, next - at);
        if (std::string const name = word.substr(0, word.find("->")); !name.empty())
            choices.push_back(name);
        at = next + 1;
    }
    return choices;
}

// The name of a value says what a shell may put there.
ValueKind kindOf(std::string const& value, bool isArgument) {
    constexpr std::array<std::string_view, 9> kOthers = {"N",     "SECONDS", "BLOCK", "PATH=VALUE", "NAME",
                                                         "TITLE", "LINE",    "ID",    "TEXT"};
    constexpr std::array<std::string_view, 5> kNumbers = {"INT", "UINT", "FLOAT", "NUMBER", "DOUBLE"};
    std::string_view name = value;
    if (name == "DIR" || name == "FOLDER")
        return ValueKind::Folder;
    if (name == "COMMAND")
        return isArgument ? ValueKind::Command : ValueKind::Other;
    auto const isOneOf = [&](auto const& names) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    return isOneOf(kOthers) || isOneOf(kNumbers) ? ValueKind::Other : ValueKind::File;
}

OptionText optionText(CLI::Option const& option) {
    OptionText text;
    for (std::string const& name : option.get_snames())
        text.names.push_back("-" + name);
    for (std::string const& name : option.get_lnames())
        text.names.push_back("--" + name);
    bool const isArgument = text.names.empty();
    text.description = option.get_description();
    text.isRequired = option.get_required();
    bool const isFlag = option.get_items_expected_max() == 0;
    std::string const type = option.get_type_name();
    text.isRepeated = option.get_items_expected_max() > 1 ||
                      (!isFlag && option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll);
    if (isFlag)
        return text;
    text.choices = choicesIn(type);
    // A word of choices tells more by its list than by its type.
    if (isArgument)
        text.value = option.get_name(true);
    else if (!text.choices.empty() && type.find('{') != std::string::npos)
        text.value = fmt::format("{}", fmt::join(text.choices, "|"));
    else
        text.value = type.substr(0, type.find(':'));
    text.kind = text.choices.empty() ? kindOf(text.value, isArgument) : ValueKind::Choice;
    return text;
}

// `words` are those of the commands above it.
CommandText textOf(CLI::App const& app, std::vector<std::string> words) {
    CommandText text;
    words.push_back(app.get_name());
    text.words = std::move(words);
    text.description = app.get_description();
    text.footer = app.get_footer();
    for (CLI::Option const* const option : app.get_options()) {
        if (option->get_group().empty())
            continue;
        OptionText entry = optionText(*option);
        (entry.names.empty() ? text.arguments : text.options).push_back(std::move(entry));
    }
    for (CLI::App const* const command : app.get_subcommands([](CLI::App const*) { return true; }))
        if (!command->get_name().empty() && !command->get_group().empty())
            text.commands.push_back(textOf(*command, text.words));
    return text;
}

class HelpFormatter : public CLI::FormatterBase {
public:
    std::string make_help(CLI::App const* app, std::string, CLI::AppFormatMode) const override {
        std::vector<std::string> words;
        for (CLI::App const* above = app->get_parent(); above != nullptr; above = above->get_parent())
            words.insert(words.begin(), above->get_name());
        return helpText(textOf(*app, words));
    }
};

// The first word that looks like an option.
std::vector<std::string>::const_iterator optionIn(std::vector<std::string> const& words) {
    return std::find_if(words.begin(), words.end(),
                        [](std::string const& word) { return word.size() > 1 && word.front() == '-'; });
}

// What is wrong with a command line, with what may have been meant.
std::string complaint(CLI::App& app, CLI::ParseError const& error) {
    // The command with the first word that it cannot take, or else the innermost one.
    CLI::App* command = &app;
    std::string line = app.get_name();
    std::vector<std::string> strays = app.remaining();
    std::vector<std::string>::const_iterator option = optionIn(strays);
    while (option == strays.end() && !command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        line += " " + command->get_name();
        strays = command->remaining();
        option = optionIn(strays);
    }
    std::string const help = " (see " + line + " --help)";
    auto const unknown = [&](std::string const& word, std::string const& cause, std::vector<std::string> const& known) {
        std::string const meant = suggestion(word, known);
        return errorLine("", word, cause + (meant.empty() ? help : meant));
    };

    CommandText const text = commandText(*command);
    if (option != strays.end()) {
        std::vector<std::string> names;
        for (OptionText const& entry : text.options)
            names.insert(names.end(), entry.names.begin(), entry.names.end());
        return unknown(option->substr(0, option->find('=')), "there is no such option", names);
    }
    if (!strays.empty() && !text.commands.empty()) {
        std::vector<std::string> names;
        for (CommandText const& entry : text.commands)
            names.push_back(entry.name());
        return unknown(strays.front(), "there is no such command", names);
    }
    if (!strays.empty() && dynamic_cast<CLI::ExtrasError const*>(&error) != nullptr)
        return errorLine("", strays.front(), "there is no place for this argument" + help);
    return errorLine("", "", error.what() + help);
}

} // namespace

Option Option::typeName(std::string const& name) const {
    m_option->type_name(name);
    return *this;
}

Option Option::required(bool isRequired) const {
    m_option->required(isRequired);
    return *this;
}

Option Option::repeated() const {
    m_option->expected(1)->allow_extra_args(false)->take_all();
    return *this;
}

Option Option::words(int fewest, int most) const {
    m_option->expected(fewest, most);
    return *this;
}

Option Option::range(int lowest, int highest) const {
    m_option->check(CLI::Range(lowest, highest));
    return *this;
}

Option Option::oneOf(std::vector<std::string> const& words) const {
    m_option->check(CLI::IsMember(words));
    return *this;
}

Option Option::check(std::function<std::string(std::string const& value)> const& complaint) const {
    m_option->check(CLI::Validator([complaint](std::string& value) { return complaint(value); }, ""));
    return *this;
}

Option Option::showDefault() const {
    m_option->capture_default_str();
    return *this;
}

Option Option::excludes(Option other) const {
    m_option->excludes(other.m_option);
    return *this;
}

std::size_t Option::count() const {
    return m_option->count();
}

std::string Option::text() const {
    return m_option->as<std::string>();
}

Command Command::add(std::string const& name, std::string const& description) const {
    return Command(*m_app->add_subcommand(name, description));
}

void Command::needCommand() const {
    m_app->require_subcommand(1);
}

void Command::footer(std::string const& text) const {
    m_app->footer(text);
}

void Command::work(std::function<void()> work) const {
    m_app->callback(std::move(work));
}

Option Command::option(std::string const& names, std::string& target, std::string const& description) const {
    return Option(*m_app->add_option(names, target, description));
}

Option Command::option(std::string const& names, std::optional<std::string>& target,
                       std::string const& description) const {
    return Option(*m_app->add_option(names, target, description));
}

Option Command::option(std::string const& names, std::vector<std::string>& target,
                       std::string const& description) const {
    return Option(*m_app->add_option(names, target, description));
}

Option Command::option(std::string const& names, int& target, std::string const& description) const {
    return Option(*m_app->add_option(names, target, description));
}

Option Command::option(std::string const& names, std::vector<int>& target, std::string const& description) const {
    return Option(*m_app->add_option(names, target, description));
}

Option Command::option(std::string const& names, std::optional<double>& target, std::string const& description) const {
    return Option(*m_app->add_option(names, target, description));
}

Option Command::flag(std::string const& names, bool& target, std::string const& description) const {
    return Option(*m_app->add_flag(names, target, description));
}

std::vector<Option> Command::given() const {
    std::vector<Option> options;
    for (CLI::Option* const option : m_app->parse_order())
        options.emplace_back(*option);
    return options;
}

CommandText Command::text() const {
    return commandText(*m_app);
}

void missArgument(std::string const& name) {
    throw CLI::RequiredError(name);
}

int runProgram(ProgramText const& text, std::span<AddCommand const> commands, int argc, char** argv) {
    Result result;
    CLI::App app{text.description, text.name};
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", text.version, "Show the version, with those of Xerces-C and Python");
    app.require_subcommand(1);
    app.fallthrough(false);
    useHelpText(app);
    app.footer(text.footer);
    Command const program(app);
    for (AddCommand const add : commands)
        add(program, result);

    try {
        app.parse(argc, argv);
    } catch (CLI::Success const& shown) {
        return app.exit(shown);
    } catch (CLI::ParseError const& error) {
        printError(complaint(app, error) + "\n");
        return kExitWrongUse;
    }
    return result.exitCode;
}

CommandText commandText(CLI::App const& app) {
    return textOf(app, {});
}

void useHelpText(CLI::App& app) {
    app.formatter(std::make_shared<HelpFormatter>());
}

} // namespace flowmere::host
