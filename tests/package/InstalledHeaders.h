#pragma once

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace flowmere::test {

// What the installed headers mark as exported.
struct ExportedNames {
    std::set<std::string> classes;
    std::set<std::string> functions; // operators aside
    std::set<std::string> variables;
};

// The marks of one header. Comments count for nothing.
inline void collectExportedNames(std::string const& header, ExportedNames& names) {
    static std::regex const comment(R"(//[^\n]*)");
    static std::regex const type(R"(\b(?:class|struct)\s+FLOWMERE_API\s+(\w+))");
    static std::regex const function(R"(\bFLOWMERE_API\s+[\w:][^;(={]*?[\s*&](\w+)\()");
    static std::regex const variable(R"(\bextern\s+FLOWMERE_API\s+[^;(]*[\s*&](\w+);)");
    std::string const text = std::regex_replace(header, comment, "");
    for (auto const& [form, found] : {std::pair(&type, &names.classes), std::pair(&function, &names.functions),
                                      std::pair(&variable, &names.variables)})
        for (std::sregex_iterator match(text.begin(), text.end(), *form), end; match != end; ++match)
            found->insert((*match)[1]);
}

inline std::string textOf(std::filesystem::path const& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline ExportedNames exportedNames(std::filesystem::path const& headers) {
    ExportedNames names;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(headers))
        if (entry.path().extension() == ".h")
            collectExportedNames(textOf(entry.path()), names);
    return names;
}

} // namespace flowmere::test
