#include "host/help/HelpPages.h"

#include "host/basics/Command.h"

#include <fmt/format.h>

#include <functional>

namespace flowmere::host {

namespace {

std::string joined(std::vector<std::string> const& parts, std::string_view separator) {
    return fmt::format("{}", fmt::join(parts, separator));
}

// Calls `take` for the command and all below it, a command before those below.
void forEachCommand(CommandText const& command, std::function<void(CommandText const&)> const& take) {
    take(command);
    for (CommandText const& inner : command.commands)
        forEachCommand(inner, take);
}

std::vector<std::string> namesOf(std::vector<CommandText> const& commands) {
    std::vector<std::string> names;
    for (CommandText const& command : commands)
        names.push_back(command.name());
    return names;
}

// The words after the name of the program: "library list"; empty for the program.
std::string pathOf(CommandText const& command) {
    return joined({command.words.begin() + 1, command.words.end()}, " ");
}

// In single quotes, for any of the shells.
std::string inQuotes(std::string_view text, bool isFish = false) {
    std::string out = "'";
    for (char const letter : text) {
        if (letter == '\'')
            out += isFish ? "\\'" : "'\\''";
        else if (isFish && letter == '\\')
            out += "\\\\";
        else
            out += letter;
    }
    return out + "'";
}

// bash

// What bash puts in the place of a value: "files", "folders", "words ...", or nothing.
std::string bashValue(OptionText const& option, CommandText const& program) {
    switch (option.kind) {
    case ValueKind::File:
        return "files";
    case ValueKind::Folder:
        return "folders";
    case ValueKind::Choice:
        return "words " + joined(option.choices, " ");
    case ValueKind::Command:
        return "words " + joined(namesOf(program.commands), " ");
    case ValueKind::None:
    case ValueKind::Other:
        break;
    }
    return "nothing";
}

std::string bashScript(CommandText const& program) {
    std::string const& name = program.name();
    std::string out = fmt::format(R"(# Completes command lines of {0} in bash.

# The commands below a command, and its options.
_{0}_words() {{
    case "$1" in
)",
                                  name);
    forEachCommand(program, [&](CommandText const& command) {
        std::vector<std::string> options;
        for (OptionText const& option : command.options)
            options.insert(options.end(), option.names.begin(), option.names.end());
        out += fmt::format("    {}) commands={} options={} ;;\n", inQuotes(pathOf(command)),
                           inQuotes(joined(namesOf(command.commands), " ")), inQuotes(joined(options, " ")));
    });
    out += fmt::format(R"(    esac
}}

# What stands behind an option of a command; nothing for a flag.
_{0}_value() {{
    case "$1:$2" in
)",
                       name);
    forEachCommand(program, [&](CommandText const& command) {
        for (OptionText const& option : command.options) {
            if (option.kind == ValueKind::None)
                continue;
            std::vector<std::string> patterns;
            for (std::string const& spelling : option.names)
                patterns.push_back(inQuotes(pathOf(command) + ":" + spelling));
            out += fmt::format("    {}) value={} ;;\n", joined(patterns, " | "), inQuotes(bashValue(option, program)));
        }
    });
    out += fmt::format(R"(    *) value= ;;
    esac
}}

# What stands in each place of a command's arguments.
_{0}_argument() {{
    case "$1:$2" in
)",
                       name);
    forEachCommand(program, [&](CommandText const& command) {
        for (std::size_t place = 0; place < command.arguments.size(); ++place) {
            OptionText const& argument = command.arguments[place];
            std::string const rest = argument.isRepeated ? "*" : fmt::format("{}", place);
            out += fmt::format("    {}{}) value={} ;;\n", inQuotes(pathOf(command) + ":"), rest,
                               inQuotes(bashValue(argument, program)));
        }
    });
    out += fmt::format(R"(    *) value=nothing ;;
    esac
}}

_{0}() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} command= place=0 commands= options= value= word= awaited= at
    COMPREPLY=()
    # bash takes "=" for a word of its own.
    [ "$current" != = ] || current=
    _{0}_words ''
    for ((at = 1; at < COMP_CWORD; ++at)); do
        word=${{COMP_WORDS[at]}}
        if [ "$word" = = ]; then
            continue
        elif [ -n "$awaited" ]; then
            awaited=
        elif [[ $word == -* ]]; then
            _{0}_value "$command" "$word"
            awaited=$value
        elif [[ " $commands " == *" $word "* ]]; then
            command=${{command:+$command }}$word
            _{0}_words "$command"
        else
            place=$((place + 1))
        fi
    done
    if [ -n "$awaited" ]; then
        value=$awaited
    elif [[ $current == -* ]]; then
        value="words $options"
    elif [ -n "$commands" ]; then
        value="words $commands"
    else
        _{0}_argument "$command" "$place"
    fi
    case $value in
    files | folders)
        [ "$value" = files ] && at=-f || at=-d
        mapfile -t COMPREPLY < <(compgen "$at" -- "$current")
        compopt -o filenames 2>/dev/null
        ;;
    words*)
        mapfile -t COMPREPLY < <(compgen -W "${{value#words}}" -- "$current")
        ;;
    esac
}}

complete -F _{0} {0}
)",
                       name);
    return out;
}

// zsh

// A text between brackets or colons, which mean something there.
std::string zshText(std::string_view text) {
    std::string out;
    for (char const letter : text) {
        if (letter == '[' || letter == ']' || letter == ':' || letter == '\\')
            out += '\\';
        out += letter;
    }
    return out;
}

std::string zshAction(OptionText const& option, CommandText const& program) {
    switch (option.kind) {
    case ValueKind::File:
        return "_files";
    case ValueKind::Folder:
        return "_files -/";
    case ValueKind::Choice:
        return "(" + joined(option.choices, " ") + ")";
    case ValueKind::Command:
        return "(" + joined(namesOf(program.commands), " ") + ")";
    case ValueKind::None:
    case ValueKind::Other:
        break;
    }
    return "";
}

void addZshCommand(CommandText const& program, CommandText const& command, std::string& out) {
    std::string const function = "_" + joined(command.words, "_");
    out += fmt::format("\n{}() {{\n", function);
    if (!command.commands.empty())
        out += "    local context state state_descr line\n    typeset -A opt_args\n";
    out += "    _arguments -s -S";
    out += command.commands.empty() ? "" : " -C";
    for (OptionText const& option : command.options) {
        std::string const value = option.kind == ValueKind::None
                                      ? ""
                                      : fmt::format(":{}:{}", zshText(option.value), zshAction(option, program));
        for (std::string const& name : option.names) {
            // An option that is given is not offered again, in no spelling, unless it may be.
            std::string const others = option.isRepeated ? "*" : "(" + joined(option.names, " ") + ")";
            out += fmt::format(" \\\n        {}",
                               inQuotes(others + name + "[" + zshText(option.description) + "]" + value));
        }
    }
    if (!command.commands.empty()) {
        out += " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n    case $state in\n    "
               "command)\n        local -a commands\n        commands=(\n";
        for (CommandText const& inner : command.commands)
            out += fmt::format("            {}\n", inQuotes(zshText(inner.name()) + ":" + inner.description));
        out += "        )\n        _describe -t commands command commands\n        ;;\n    argument)\n        case "
               "$words[1] in\n";
        for (CommandText const& inner : command.commands)
            out += fmt::format("        {}) _{} ;;\n", inner.name(), joined(inner.words, "_"));
        out += "        esac\n        ;;\n    esac\n}\n";
    } else {
        for (std::size_t place = 0; place < command.arguments.size(); ++place) {
            OptionText const& argument = command.arguments[place];
            std::string const where = argument.isRepeated ? "*" : fmt::format("{}", place + 1);
            out += fmt::format(" \\\n        {}", inQuotes(fmt::format("{}:{}:{}", where, zshText(argument.value),
                                                                       zshAction(argument, program))));
        }
        out += "\n}\n";
    }
    for (CommandText const& inner : command.commands)
        addZshCommand(program, inner, out);
}

std::string zshScript(CommandText const& program) {
    std::string const& name = program.name();
    std::string out = fmt::format("#compdef {0}\n# Completes command lines of {0} in zsh.\n", name);
    addZshCommand(program, program, out);
    out +=
        fmt::format("\nif [ \"$funcstack[1]\" = _{0} ]; then\n    _{0} \"$@\"\nelse\n    compdef _{0} {0}\nfi\n", name);
    return out;
}

// fish

std::string fishAction(OptionText const& option, CommandText const& program) {
    switch (option.kind) {
    case ValueKind::File:
        return option.names.empty() ? " -F" : " -r -F";
    case ValueKind::Folder:
        return " -x -a '(__fish_complete_directories)'";
    case ValueKind::Choice:
        return " -x -a " + inQuotes(joined(option.choices, " "), true);
    case ValueKind::Command:
        return " -x -a " + inQuotes(joined(namesOf(program.commands), " "), true);
    case ValueKind::Other:
        return " -x";
    case ValueKind::None:
        break;
    }
    return "";
}

std::string fishScript(CommandText const& program) {
    std::string const& name = program.name();
    std::string out = fmt::format(R"(# Completes command lines of {0} in fish.

# Whether the words so far are those of a command, and of none of the commands below it.
function __{0}_at -a path inner
    set -l words (commandline -opc)
    set -e words[1]
    set -l expected (string split -n ' ' -- $path)
    for word in $words
        string match -q -- '-*' $word; and continue
        if test (count $expected) -gt 0
            test $word = $expected[1]; or return 1
            set -e expected[1]
        else if contains -- $word (string split -n ' ' -- $inner)
            return 1
        end
    end
    test (count $expected) -eq 0
end

complete -c {0} -f
)",
                                  name);
    forEachCommand(program, [&](CommandText const& command) {
        std::string const begin = fmt::format("complete -c {0} -n \"__{0}_at '{1}' '{2}'\"", name, pathOf(command),
                                              joined(namesOf(command.commands), " "));
        for (CommandText const& inner : command.commands)
            out += fmt::format("{} -a {} -d {}\n", begin, inner.name(), inQuotes(inner.description, true));
        for (OptionText const& argument : command.arguments)
            if (argument.kind != ValueKind::Other)
                out += begin + fishAction(argument, program) + "\n";
        for (OptionText const& option : command.options) {
            out += begin;
            for (std::string const& spelling : option.names)
                out += spelling.starts_with("--") ? " -l " + spelling.substr(2) : " -s " + spelling.substr(1);
            out += fishAction(option, program) + " -d " + inQuotes(option.description, true) + "\n";
        }
    });
    return out;
}

} // namespace

std::vector<std::string> const& completionShells() {
    static std::vector<std::string> const shells{"bash", "zsh", "fish"};
    return shells;
}

std::string completionScript(CommandText const& program, std::string_view shell) {
    if (shell == "bash")
        return bashScript(program);
    if (shell == "zsh")
        return zshScript(program);
    if (shell == "fish")
        return fishScript(program);
    throw Failure("", std::string(shell), "is no shell that can be told what to complete");
}

} // namespace flowmere::host
