#include "host/diff/DiffText.h"

#include "host/document/Tree.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace flowmere::host {

namespace {

using Change = Difference::Change;
using Subject = Difference::Subject;

// A longer text is cut to so many bytes; JSON has the whole.
constexpr std::size_t kShown = 100;
// So many bytes stand before the first that differs.
constexpr std::size_t kShownBefore = 20;

bool isInside(char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

std::size_t characterStart(std::string_view text, std::size_t at) {
    while (at > 0 && at < text.size() && isInside(text[at]))
        --at;
    return std::min(at, text.size());
}

std::string cut(std::string_view text, std::size_t differs) {
    if (text.size() <= kShown)
        return std::string(text);
    std::size_t const begin =
        differs <= kShownBefore ? 0 : characterStart(text, std::min(differs - kShownBefore, text.size()));
    std::size_t const end = characterStart(text, std::min(begin + kShown, text.size()));
    return (begin > 0 ? "..." : "") + std::string(text.substr(begin, end - begin)) + (end < text.size() ? "..." : "");
}

// A text with blanks in it, or none at all, would not show where it ends.
std::string quoted(std::string const& text) {
    if (!text.empty() && text.find_first_of(" \"") == std::string::npos)
        return text;
    std::string result = "\"";
    for (char const character : text) {
        if (character == '"')
            result += '\\';
        result += character;
    }
    return result + "\"";
}

std::string listText(std::string_view list) {
    std::string result;
    while (true) {
        std::size_t const end = list.find(kListMark);
        result += quoted(std::string(list.substr(0, end)));
        if (end == std::string_view::npos)
            return result;
        result += ", ";
        list.remove_prefix(end + 1);
    }
}

std::string shown(Form form, std::string const& value, std::size_t differs) {
    switch (form) {
    case Form::Flag:
        return value.empty() ? "no" : value;
    case Form::Number:
        return value.empty() ? "0" : value;
    case Form::Grip:
        return gripName(std::stoi(value));
    case Form::Phrase:
        return oneLine(value);
    case Form::List:
        return value.empty() ? "none" : cut(oneLine(listText(value)), differs);
    case Form::Text:
        break;
    }
    return quoted(cut(oneLine(value), differs));
}

std::string shownPath(std::string const& path) {
    return path.empty() ? "(process)" : oneLine(path);
}

std::string attributeOf(VariableFacts const& variable, std::string_view name) {
    for (Attribute const& attribute : variable.attributes)
        if (variableAttributes()[attribute.number].name == name)
            return attribute.value;
    return {};
}

std::string captionOf(NodeFacts const& node) {
    for (Attribute const& attribute : node.attributes)
        if (nodeAttributes()[attribute.number].name == "caption")
            return attribute.value;
    return {};
}

std::string wordOf(Difference const& difference) {
    switch (difference.subject) {
    case Subject::Variable:
        return "variable";
    case Subject::Connector:
        return "connector";
    case Subject::Node:
        break;
    }
    return kindName(difference.node->code);
}

// What stands behind the path of a thing that came or went.
std::string detailOf(Difference const& difference) {
    if (difference.subject == Subject::Connector)
        return fmt::format(", from {} to {}", gripName(difference.connector->startGrip),
                           gripName(difference.connector->endGrip));
    if (difference.subject == Subject::Node) {
        std::string const caption = captionOf(*difference.node);
        bool const isTold = caption.empty() || caption == difference.node->id || difference.node->id.empty();
        return isTold ? std::string() : " \"" + oneLine(caption) + "\"";
    }
    std::string const link = attributeOf(*difference.variable, "link");
    std::string const value = attributeOf(*difference.variable, "value");
    std::string detail = ": " + oneLine(difference.variable->type);
    if (!value.empty())
        detail += " = " + shown(Form::Text, value, 0);
    if (!link.empty())
        detail += " <- " + oneLine(link);
    return detail;
}

char const* nameOf(Change change) {
    switch (change) {
    case Change::Added:
        return "added";
    case Change::Removed:
        return "removed";
    case Change::Moved:
        return "moved";
    case Change::Changed:
        break;
    }
    return "changed";
}

Json valueOf(Form form, std::string const& value) {
    if (form == Form::Flag)
        return !value.empty();
    if (form == Form::Number || form == Form::Grip)
        return value.empty() ? 0 : std::stoll(value);
    if (form != Form::List)
        return value;
    Json list = Json::array();
    std::string_view rest = value;
    while (!value.empty()) {
        std::size_t const end = rest.find(kListMark);
        list.push_back(std::string(rest.substr(0, end)));
        if (end == std::string_view::npos)
            break;
        rest.remove_prefix(end + 1);
    }
    return list;
}

} // namespace

std::string lineOf(Difference const& difference) {
    std::string const path = shownPath(difference.path);
    switch (difference.change) {
    case Change::Added:
    case Change::Removed:
        return fmt::format("{} {} {}{}", difference.change == Change::Added ? "+" : "-", wordOf(difference), path,
                           detailOf(difference));
    case Change::Moved:
        return fmt::format("> {} {} moved to {}", wordOf(difference), path, shownPath(difference.after));
    case Change::Changed:
        break;
    }
    std::size_t differs = 0;
    if (difference.form == Form::Text || difference.form == Form::List) {
        std::string const before = oneLine(difference.before);
        std::string const after = oneLine(difference.after);
        differs = static_cast<std::size_t>(
            std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first - before.begin());
    }
    return fmt::format("~ {}{} {}: {} -> {}", difference.subject == Subject::Connector ? "connector " : "", path,
                       difference.attribute, shown(difference.form, difference.before, differs),
                       shown(difference.form, difference.after, differs));
}

Json jsonOf(Difference const& difference) {
    Json out = {{"change", nameOf(difference.change)}, {"what", wordOf(difference)}, {"path", difference.path}};
    if (difference.change == Change::Changed) {
        out["attribute"] = difference.attribute;
        out["from"] = valueOf(difference.form, difference.before);
        out["to"] = valueOf(difference.form, difference.after);
        return out;
    }
    if (difference.change == Change::Moved) {
        out["to"] = difference.after;
        return out;
    }
    if (difference.subject == Subject::Variable) {
        out["type"] = difference.variable->type;
        out["value"] = attributeOf(*difference.variable, "value");
        std::string const link = attributeOf(*difference.variable, "link");
        out["link"] = link.empty() ? Json() : Json(link);
    } else if (difference.subject == Subject::Connector) {
        out["start"] = difference.connector->start;
        out["end"] = difference.connector->end;
        out["startGrip"] = difference.connector->startGrip;
        out["endGrip"] = difference.connector->endGrip;
    } else {
        out["caption"] = captionOf(*difference.node);
    }
    return out;
}

} // namespace flowmere::host
