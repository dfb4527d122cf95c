#include "host/help/HelpPages.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <utility>

namespace flowmere::host {

namespace {

// Text of a page. What roff would take for its own is written out.
std::string roff(std::string_view text) {
    std::string out;
    bool isLineStart = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto const byte = static_cast<unsigned char>(text[at]);
        if (isLineStart && (byte == '.' || byte == '\''))
            out += "\\&";
        isLineStart = byte == '\n';
        switch (byte) {
        case '\\':
            out += "\\e";
            continue;
        case '-':
            out += "\\-";
            continue;
        case '\'':
            out += "\\(aq";
            continue;
        case '`':
            out += "\\(ga";
            continue;
        case '^':
            out += "\\(ha";
            continue;
        case '~':
            out += "\\(ti";
            continue;
        default:
            break;
        }
        if (byte < 0x80) {
            out += static_cast<char>(byte);
            continue;
        }
        // UTF-8: one name for the character.
        int const more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : 1;
        unsigned character = byte & (0x3FU >> more);
        for (int count = 0; count < more && at + 1 < text.size(); ++count)
            character = (character << 6U) | (static_cast<unsigned char>(text[++at]) & 0x3FU);
        out += fmt::format("\\[u{:04X}]", character);
    }
    return out;
}

std::string joined(std::vector<std::string> const& parts, std::string_view separator) {
    return fmt::format("{}", fmt::join(parts, separator));
}

// A footer in parts: paragraphs of text, each a line or more that flow together, and examples.
struct Footer {
    std::vector<std::string> paragraphs;
    std::vector<std::string> exits;    // what exit codes mean
    std::vector<std::string> examples; // lines as they stand
};

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        auto const end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

// "Rules: dead-link": a line that begins a list of its own.
bool isHeaded(std::string_view line) {
    auto const colon = line.find(": ");
    return colon != std::string_view::npos && colon <= 12 && line.front() >= 'A' && line.front() <= 'Z' &&
           std::all_of(line.begin() + 1, line.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](char letter) { return letter == ' ' || (letter >= 'a' && letter <= 'z'); });
}

Footer footerOf(std::string_view text) {
    Footer footer;
    std::vector<std::string>* open = nullptr; // what the next line goes on with
    bool isExample = false;
    for (std::string const& line : linesOf(text)) {
        if (line == "Example:" || line == "Examples:") {
            isExample = true;
        } else if (isExample && (line.empty() || line.starts_with("  "))) {
            footer.examples.push_back(line.empty() ? line : line.substr(2));
        } else if (line.empty()) {
            open = nullptr;
            isExample = false;
        } else {
            isExample = false;
            std::string_view rest = line;
            bool const isExit = rest.starts_with("Exit code: ");
            if (isExit)
                rest.remove_prefix(rest.find(": ") + 2);
            if (isExit || open == nullptr || isHeaded(line)) {
                open = isExit ? &footer.exits : &footer.paragraphs;
                open->emplace_back(rest);
            } else {
                open->back() += "\n" + std::string(rest);
            }
        }
    }
    while (!footer.examples.empty() && footer.examples.back().empty())
        footer.examples.pop_back();
    return footer;
}

std::string optionHead(OptionText const& option) {
    std::string head;
    for (std::string const& name : option.names)
        head += (head.empty() ? "" : ", ") + fmt::format("\\fB{}\\fR", roff(name));
    if (!option.value.empty())
        head += (head.empty() ? "" : " ") + fmt::format("\\fI{}\\fR", roff(option.value));
    return head;
}

class ManPage {
public:
    ManPage(CommandText const& program, CommandText const& command, std::string_view version)
        : m_program(program), m_command(command), m_version(version) {}

    std::string text() {
        std::string const name = joined(m_command.words, "-");
        std::string title = name;
        std::transform(title.begin(), title.end(), title.begin(), [](char letter) {
            return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
        });
        m_out = fmt::format(".TH \"{}\" \"1\" \"\" \"{} {}\" \"User commands\"\n", roff(title), roff(m_program.name()),
                            roff(m_version));
        // Paths and commands are no words to break.
        m_out += ".nh\n.ad l\n";
        section("NAME");
        m_out += fmt::format("{} \\- {}\n", roff(name), roff(m_command.description));
        section("SYNOPSIS");
        addSynopsis(m_command);
        Footer const footer = footerOf(m_command.footer);
        if (!footer.paragraphs.empty()) {
            section("DESCRIPTION");
            addParagraphs(footer.paragraphs);
        }
        if (!m_command.commands.empty()) {
            section("COMMANDS");
            for (CommandText const& inner : m_command.commands)
                isProgram() ? addSummary(inner) : addCommand(inner);
        }
        if (!m_command.arguments.empty()) {
            section("ARGUMENTS");
            addOptions(m_command.arguments);
        }
        if (!m_command.options.empty()) {
            section("OPTIONS");
            addOptions(m_command.options);
        }
        addExits(footer);
        addExamples(footer);
        addSeeAlso();
        return std::move(m_out);
    }

private:
    bool isProgram() const { return m_command.words.size() == 1; }

    void section(std::string_view name) { m_out += fmt::format(".SH {}\n", name); }

    void addParagraphs(std::vector<std::string> const& paragraphs) {
        for (std::size_t index = 0; index < paragraphs.size(); ++index)
            m_out += (index == 0 ? "" : ".PP\n") + roff(paragraphs[index]) + "\n";
    }

    void addSynopsis(CommandText const& command) {
        std::string line = fmt::format("\\fB{}\\fR", roff(command.line()));
        if (!command.options.empty())
            line += " [\\fIOPTIONS\\fR]";
        for (OptionText const& argument : command.arguments) {
            std::string const name = "\\fI" + roff(argument.value) + "\\fR";
            line += argument.isRequired ? " " + name : " [" + name + "]";
            line += argument.isRepeated ? "..." : "";
        }
        if (!command.commands.empty())
            line += " \\fICOMMAND\\fR";
        m_out += line + "\n";
    }

    void addOptions(std::vector<OptionText> const& options) {
        for (OptionText const& option : options) {
            m_out += fmt::format(".TP\n{}\n{}{}", optionHead(option), roff(option.description),
                                 option.isRequired && !option.names.empty() ? " (required)" : "");
            if (option.names.empty() && !option.choices.empty())
                m_out += ": " + roff(joined(option.choices, ", "));
            m_out += "\n";
        }
    }

    void addSummary(CommandText const& inner) {
        m_out += fmt::format(".TP\n\\fB{}\\fR\n{}\n", roff(inner.name()), roff(inner.description));
    }

    // A command below one that has a page: all of it stands in that page.
    void addCommand(CommandText const& inner) {
        m_out += fmt::format(".SS \"{}\"\n{}\n.PP\n", roff(inner.line()), roff(inner.description));
        addSynopsis(inner);
        Footer const footer = footerOf(inner.footer);
        for (std::string const& paragraph : footer.paragraphs)
            m_out += ".PP\n" + roff(paragraph) + "\n";
        for (std::string const& exit : footer.exits)
            m_out += ".PP\nExit code: " + roff(exit) + "\n";
        addOptions(inner.arguments);
        addOptions(inner.options);
        if (!footer.examples.empty()) {
            m_out += ".PP\nExample:\n";
            addLines(footer.examples);
        }
        for (CommandText const& deeper : inner.commands)
            addCommand(deeper);
    }

    void addLines(std::vector<std::string> const& lines) {
        m_out += ".PP\n.RS 4\n.nf\n";
        for (std::string const& line : lines)
            m_out += roff(line) + "\n";
        m_out += ".fi\n.RE\n";
    }

    void addExits(Footer const& footer) {
        section("EXIT STATUS");
        if (!footer.exits.empty()) {
            addParagraphs(footer.exits);
            return;
        }
        constexpr std::pair<int, std::string_view> kCodes[] = {
            {0, "All went well."},
            {1, "A run failed, or something was found."},
            {2, "Wrong use, or a file that cannot be read or written."},
            {130, "Interrupted."},
        };
        for (auto const& [code, meaning] : kCodes)
            m_out += fmt::format(".TP\n\\fB{}\\fR\n{}\n", code, roff(meaning));
    }

    void addExamples(Footer const& footer) {
        if (footer.examples.empty())
            return;
        section("EXAMPLES");
        addLines(footer.examples);
    }

    void addSeeAlso() {
        std::vector<std::string> pages;
        if (!isProgram())
            pages.push_back(m_program.name());
        for (CommandText const& other : m_program.commands)
            if (other.words != m_command.words)
                pages.push_back(joined(other.words, "-"));
        if (pages.empty())
            return;
        section("SEE ALSO");
        for (std::size_t index = 0; index < pages.size(); ++index)
            m_out += fmt::format("\\fB{}\\fR(1){}\n", roff(pages[index]), index + 1 < pages.size() ? "," : "");
    }

    CommandText const& m_program;
    CommandText const& m_command;
    std::string m_version;
    std::string m_out;
};

Json jsonOf(OptionText const& option) {
    Json out = Json::object();
    if (!option.names.empty())
        out["names"] = option.names;
    if (!option.value.empty())
        out["value"] = option.value;
    out["description"] = option.description;
    if (!option.choices.empty())
        out["choices"] = option.choices;
    out["required"] = option.isRequired;
    out["repeated"] = option.isRepeated;
    return out;
}

// Two columns, the second one with its lines broken between words.
std::string columns(std::vector<std::pair<std::string, std::string>> const& rows) {
    constexpr std::size_t kWidest = 26;
    constexpr std::size_t kLine = 100;
    std::size_t width = 0;
    for (auto const& [left, right] : rows)
        if (left.size() <= kWidest)
            width = std::max(width, left.size());
    std::string out;
    for (auto const& [left, right] : rows) {
        std::string line = "  " + left;
        std::size_t const indent = width + 4;
        if (left.size() > width) {
            out += line + "\n";
            line.clear();
        }
        line.resize(indent, ' ');
        bool isFirst = true;
        for (std::string_view rest = right; !rest.empty();) {
            std::string_view const word = rest.substr(0, rest.find(' '));
            rest.remove_prefix(std::min(rest.size(), word.size() + 1));
            if (!isFirst && line.size() + 1 + word.size() > kLine) {
                out += line + "\n";
                line.assign(indent, ' ');
                isFirst = true;
            }
            line += isFirst ? "" : " ";
            line += word;
            isFirst = false;
        }
        out += line + "\n";
    }
    return out;
}

std::string usageOf(CommandText const& command) {
    std::string line = "Usage: " + command.line();
    if (!command.options.empty())
        line += " [OPTIONS]";
    for (OptionText const& argument : command.arguments)
        line += (argument.isRequired ? " " + argument.value : " [" + argument.value + "]") +
                (argument.isRepeated ? "..." : "");
    return line + (command.commands.empty() ? "\n" : " COMMAND\n");
}

} // namespace

std::string helpText(CommandText const& command) {
    std::string out = command.description + "\n\n" + usageOf(command);
    std::vector<std::pair<std::string, std::string>> rows;
    auto const add = [&](std::string_view title) {
        if (!rows.empty())
            out += fmt::format("\n{}:\n{}", title, columns(rows));
        rows.clear();
    };
    for (CommandText const& inner : command.commands)
        rows.emplace_back(inner.name(), inner.description);
    add("Commands");
    for (OptionText const& argument : command.arguments)
        rows.emplace_back(argument.value, argument.description +
                                              (argument.choices.empty() ? "" : ": " + joined(argument.choices, ", ")));
    add("Arguments");
    for (OptionText const& option : command.options)
        rows.emplace_back(joined(option.names, ", ") + (option.value.empty() ? "" : " " + option.value),
                          option.description + (option.isRequired ? " (required)" : ""));
    add("Options");
    if (!command.footer.empty())
        out += "\n" + command.footer + "\n";
    return out;
}

std::string CommandText::line() const {
    return joined(words, " ");
}

std::string manPage(CommandText const& program, CommandText const& command, std::string_view version) {
    return ManPage(program, command, version).text();
}

std::string manPageFile(CommandText const& command) {
    return joined(command.words, "-") + ".1";
}

Json helpJson(CommandText const& command) {
    Json out = {{"command", command.line()}, {"description", command.description}, {"footer", command.footer}};
    for (auto const& [name, options] :
         {std::pair("arguments", &command.arguments), std::pair("options", &command.options)}) {
        out[name] = Json::array();
        for (OptionText const& option : *options)
            out[name].push_back(jsonOf(option));
    }
    out["commands"] = Json::array();
    for (CommandText const& inner : command.commands)
        out["commands"].push_back(helpJson(inner));
    return out;
}

} // namespace flowmere::host
