#include "host/workflow/BlockScripts.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

std::string contentOf(fs::path const& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

bool isWordLetter(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_' ||
           static_cast<unsigned char>(letter) >= 0x80;
}

// The words and signs of a statement: "from", ".", ".", "x", "import", "a", ",".
std::vector<std::string> tokensOf(std::string_view line) {
    std::vector<std::string> tokens;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] == '#')
            break;
        if (std::isspace(static_cast<unsigned char>(line[at])) != 0) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < line.size() && isWordLetter(line[end]))
            ++end;
        end = std::max(end, at + 1);
        tokens.emplace_back(line.substr(at, end - at));
        at = end;
    }
    return tokens;
}

// The lines of a script that begin with "import" or "from"; one that goes on over several lines is joined.
std::vector<std::vector<std::string>> importLines(std::string_view code) {
    std::vector<std::vector<std::string>> lines;
    bool isOpen = false;
    std::size_t at = 0;
    while (at < code.size()) {
        std::size_t end = code.find('\n', at);
        end = end == std::string_view::npos ? code.size() : end;
        std::vector<std::string> tokens = tokensOf(code.substr(at, end - at));
        at = end + 1;
        bool const isImport = !tokens.empty() && (tokens.front() == "import" || tokens.front() == "from");
        if (!isOpen && !isImport)
            continue;
        bool const goesOn = !tokens.empty() && tokens.back() == "\\";
        if (goesOn)
            tokens.pop_back();
        if (isOpen)
            lines.back().insert(lines.back().end(), tokens.begin(), tokens.end());
        else
            lines.push_back(std::move(tokens));
        std::vector<std::string> const& line = lines.back();
        isOpen = goesOn || std::count(line.begin(), line.end(), "(") > std::count(line.begin(), line.end(), ")");
    }
    return lines;
}

// A dotted name from a place on, which moves behind it.
std::string dottedName(std::vector<std::string> const& tokens, std::size_t& at) {
    std::string name;
    while (at < tokens.size() && (tokens[at] == "." || isWordLetter(tokens[at].front()))) {
        bool const isName = tokens[at] != ".";
        if (isName && (tokens[at] == "as" || tokens[at] == "import" || (!name.empty() && name.back() != '.')))
            break;
        name += tokens[at++];
    }
    return name;
}

// Commas divide what is imported; "as" gives it a name that does not count.
std::vector<std::string> namesFrom(std::vector<std::string> const& tokens, std::size_t at) {
    std::vector<std::string> names;
    while (at < tokens.size() && tokens[at] != ";") {
        std::size_t const before = at;
        std::string const name = dottedName(tokens, at);
        if (!name.empty())
            names.push_back(name);
        if (at < tokens.size() && tokens[at] == "as")
            at += 2;
        else if (at == before || (at < tokens.size() && tokens[at] == ","))
            ++at;
    }
    return names;
}

fs::path withParents(fs::path path, int levels) {
    for (; levels > 0; --levels)
        path = path / "..";
    return path.lexically_normal();
}

bool isFile(fs::path const& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

// Walks from module to module.
class Collector {
public:
    Collector(BlockScript& script, std::function<std::optional<fs::path>(std::string const&)> const& find)
        : m_script(script), m_find(find) {}

    // What a module imports; source and target are its own folders.
    void follow(std::string const& code, fs::path const& source, fs::path const& target, bool isFromTop) {
        for (Import const& import : importsOf(code))
            if (import.level > 0)
                followRelative(import, source, target, isFromTop);
            else
                followFull(import);
    }

private:
    void followRelative(Import const& import, fs::path const& source, fs::path const& target, bool isFromTop) {
        fs::path from = withParents(source, import.level - 1);
        fs::path to = withParents(target, import.level - 1);
        std::string const written = std::string(static_cast<std::size_t>(import.level), '.') + import.module;
        std::string path = import.module;
        std::replace(path.begin(), path.end(), '.', '/');
        if (!path.empty() && !add(from / (path + ".py"), to / (path + ".py"), isFromTop)) {
            from /= path;
            to /= path;
            path.clear();
            std::error_code error;
            if (!fs::is_directory(from, error)) {
                m_script.missing.push_back(written);
                return;
            }
        }
        if (!path.empty())
            return;
        bool const hasInit = add(from / "__init__.py", to / "__init__.py", isFromTop);
        for (std::string const& name : import.names)
            if (!add(from / (name + ".py"), to / (name + ".py"), isFromTop) &&
                !add(from / name / "__init__.py", to / name / "__init__.py", isFromTop) && !hasInit)
                m_script.missing.push_back(written + (import.module.empty() ? "" : ".") + name);
    }

    void followFull(Import const& import) {
        // Each package on the way, the module, and what it gives that may be a module.
        std::string name;
        for (std::size_t at = 0; at < import.module.size();) {
            std::size_t const end = std::min(import.module.find('.', at), import.module.size());
            name = import.module.substr(0, end);
            addFull(name);
            at = end + 1;
        }
        for (std::string const& last : import.names)
            addFull(name + "." + last);
    }

    void addFull(std::string const& name) {
        std::optional<fs::path> const file = m_find(name);
        if (!file)
            return;
        std::string path = name;
        std::replace(path.begin(), path.end(), '.', '/');
        bool const isPackage = file->filename() == "__init__.py";
        add(*file, isPackage ? fs::path(path) / "__init__.py" : fs::path(path + ".py"), true);
    }

    // False when there is no such file.
    bool add(fs::path const& source, fs::path const& target, bool isFromTop) {
        if (!isFile(source))
            return false;
        if (!m_seen.insert({isFromTop, target.string()}).second)
            return true;
        std::string const code = contentOf(source);
        // An empty one says nothing: a folder is a package without it.
        if (source.filename() != "__init__.py" || !code.empty())
            m_script.modules.push_back({source, target, isFromTop});
        follow(code, source.parent_path(), target.parent_path(), isFromTop);
        return true;
    }

    BlockScript& m_script;
    std::function<std::optional<fs::path>(std::string const&)> const& m_find;
    std::set<std::pair<bool, std::string>> m_seen;
};

bool isIdentifier(std::string_view name) {
    return !name.empty() && std::isdigit(static_cast<unsigned char>(name.front())) == 0 &&
           std::all_of(name.begin(), name.end(), isWordLetter);
}

std::string pythonText(std::string_view text) {
    std::string result = "\"";
    for (char const letter : text) {
        if (letter == '"' || letter == '\\')
            result += '\\';
        result += letter;
    }
    return result + '"';
}

} // namespace

std::vector<Import> importsOf(std::string_view code) {
    std::vector<Import> imports;
    for (std::vector<std::string> const& tokens : importLines(code)) {
        if (tokens.front() == "import") {
            for (std::string const& name : namesFrom(tokens, 1))
                imports.push_back({0, name, {}});
            continue;
        }
        Import import;
        std::size_t at = 1;
        std::string const name = dottedName(tokens, at);
        std::size_t const dots = std::min(name.find_first_not_of('.'), name.size());
        import.level = static_cast<int>(dots);
        import.module = name.substr(dots);
        if (at < tokens.size() && tokens[at] == "import") {
            import.names = namesFrom(tokens, at + 1);
            imports.push_back(std::move(import));
        }
    }
    return imports;
}

BlockScript readBlockScript(fs::path const& file, std::string const& className, std::string const& name,
                            std::function<std::optional<fs::path>(std::string const&)> const& find) {
    BlockScript script;
    script.code = contentOf(file);
    Collector(script, find).follow(script.code, file.parent_path(), {}, false);
    if (className != name) {
        if (!script.code.empty() && script.code.back() != '\n')
            script.code += '\n';
        script.code += "# The block is called so, and its class is looked for under the name of the block.\n";
        script.code += isIdentifier(name) ? name : "globals()[" + pythonText(name) + "]";
        script.code += " = " + className + "\n";
    }
    return script;
}

} // namespace flowmere::host
