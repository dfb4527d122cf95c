#pragma once

// Documents that become workflow folders, and what is in those.

#include "Study.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace flowmere::test {

// All files below a folder by their names from there, with their bytes.
inline std::map<std::string, std::string> filesOf(std::filesystem::path const& folder) {
    std::map<std::string, std::string> files;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files[entry.path().lexically_relative(folder).string()] = readFile(entry.path());
    return files;
}

inline std::vector<std::string> namesOf(std::map<std::string, std::string> const& files) {
    std::vector<std::string> names;
    for (auto const& [name, bytes] : files)
        names.push_back(name);
    return names;
}

inline void expectSameFiles(std::filesystem::path const& first, std::filesystem::path const& second) {
    auto const expected = filesOf(first);
    auto const found = filesOf(second);
    EXPECT_EQ(namesOf(found), namesOf(expected));
    for (auto const& [name, bytes] : expected)
        if (auto const entry = found.find(name); entry != found.end()) {
            EXPECT_EQ(entry->second, bytes) << name;
        }
}

// The entries of a folder, hidden ones too.
inline std::vector<std::string> entriesOf(std::filesystem::path const& folder) {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// A block of any shape, without a script.
inline std::string node(std::string const& id, std::string const& shape = "Rectangle", std::string const& inner = "") {
    return "<BLOCK Name=\"" + id + "\" BlockString=\"" + id +
           "\" Run=\"true\">\n<DIMENSION Point_X=\"1\" Point_Y=\"1\" Width=\"2\" Hight=\"1\" Shape=\"" + shape +
           "\"/>\n<FLAGS Reference=\"0\"/>\n<PORT InPort=\"Left\" OutPort=\"Right\" NextPort=\"Bottom\"/>\n"
           "<HELP MicroHelp=\"" +
           id + "\"/>\n<SCRIPT Name=\"" + id + "\" ScriptType=\"PYTHON\"/>\n" + inner + "</BLOCK>\n";
}

inline std::string group(std::string const& id, std::string const& inner) {
    return "<SUB_PROCESS Name=\"" + id + "\" BlockString=\"" + id +
           "\" Run=\"true\">\n<DIMENSION Point_X=\"1\" Point_Y=\"1\" Width=\"2\" Hight=\"1\" Shape=\"Rectangle\"/>\n"
           "<FLAGS Reference=\"0\"/>\n<PORT InPort=\"Left\" OutPort=\"Right\" NextPort=\"Bottom\"/>\n"
           "<HELP MicroHelp=\"" +
           id + "\"/>\n<SCRIPT Name=\"" + id + "\" ScriptType=\"PYTHON\"/>\n" + inner + "</SUB_PROCESS>\n";
}

// A document with all that one that comes back has.
inline std::string wholeProcess(std::string const& inner, std::string const& variables = "") {
    std::string text = process(inner, variables);
    std::string const type = "Type=\"BPT\"";
    text.insert(text.find(type), "Diagram=\"true\" SaveRestore=\"SaveRestore\" ");
    return text;
}

inline std::string route(std::string const& start, std::string const& end, std::string const& points) {
    return "<CONNECTOR StartBlock=\"" + start + "\" EndBlock=\"" + end +
           "\" StartHandle=\"6\" EndHandle=\"2\" Version=\"1\">" + points + "</CONNECTOR>\n";
}

} // namespace flowmere::test
