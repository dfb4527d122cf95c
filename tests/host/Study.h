#pragma once

// Small process documents with their scripts, written for a test.

#include "Program.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flowmere::test {

inline std::string escaped(std::string_view text) {
    std::string result;
    for (char const character : text) {
        if (character == '&')
            result += "&amp;";
        else if (character == '<')
            result += "&lt;";
        else if (character == '"')
            result += "&quot;";
        else
            result += character;
    }
    return result;
}

inline std::string variable(std::string const& name, std::string const& type, std::string const& value,
                            std::string const& use = "Input", std::string const& link = "", bool isArray = false) {
    return "<VARIABLE Name=\"" + name + "\" DataType=\"" + type + "\" Type=\"Data\" Array=\"" + (isArray ? "Y" : "N") +
           "\" IOType=\"" + use + "\" Scope=\"Local\" LinkPath=\"" + link + "\">" + escaped(value) + "</VARIABLE>\n";
}

inline std::string connector(std::string const& start, std::string const& end, int startGrip = 6, int endGrip = 2) {
    return "<CONNECTOR StartBlock=\"" + start + "\" EndBlock=\"" + end + "\" StartHandle=\"" +
           std::to_string(startGrip) + "\" EndHandle=\"" + std::to_string(endGrip) + "\" Version=\"1\"/>\n";
}

// `shape` is one of "Rectangle", "Oval" and "Decision".
inline std::string block(std::string const& id, std::string const& inner = "", std::string const& script = "",
                         std::string const& shape = "Rectangle", std::string const& flags = "") {
    return "<BLOCK Name=\"" + id + "\" BlockString=\"" + id +
           "\" Run=\"true\">\n<DIMENSION Point_X=\"1\" Point_Y=\"1\""
           " Width=\"1\" Hight=\"1\" Shape=\"" +
           shape + "\"/>\n<FLAGS Reference=\"0\" " + flags + "/>\n<SCRIPT Name=\"" +
           (script.empty() ? "s." + id : script) + "\" ScriptType=\"PYTHON\"/>\n" + inner + "</BLOCK>\n";
}

inline std::string subProcess(std::string const& id, std::string const& inner) {
    return "<SUB_PROCESS Name=\"" + id + "\" BlockString=\"" + id + "\" Run=\"true\">\n<SCRIPT Name=\"\"/>\n" + inner +
           "</SUB_PROCESS>\n";
}

inline std::string process(std::string const& inner, std::string const& variables = "") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Process Name=\"Test\" Type=\"BPT\">\n<PROCESS_VARIABLES>\n" +
           variables + "</PROCESS_VARIABLES>\n" + inner + "</Process>\n";
}

// A class of a hand-written script: the body of Execute and of Undo, one statement in each line.
inline std::string script(std::string const& name, std::string const& execute, std::string const& undo = "pass") {
    auto const indented = [](std::string const& body) {
        std::string result = "        ";
        for (char const character : body)
            result += character == '\n' ? std::string("\n        ") : std::string(1, character);
        return result + "\n";
    };
    return "import win32com.client\nvariables = win32com.client.Dispatch(\"ProcessExecutive.Variables\")\n"
           "api = win32com.client.Dispatch(\"ProcessExecutive.ProcessExecutiveApi\")\n\nclass " +
           name + ":\n    def __init__(self, block):\n        pass\n    def CanUndo(self):\n        return 1\n" +
           "    def CanSkip(self):\n        return 1\n    def Execute(self):\n" + indented(execute) +
           "    def Undo(self):\n" + indented(undo);
}

// A folder with the document "p.xml" and a package "s" of scripts.
class Study {
public:
    void document(std::string const& text) const { m_folder.write("p.xml", text); }
    void scriptText(std::string const& name, std::string const& text) const {
        m_folder.write("s/__init__.py", "");
        m_folder.write("s/" + name + ".py", text);
    }
    void scriptOf(std::string const& name, std::string const& execute, std::string const& undo = "pass") const {
        scriptText(name, script(name, execute, undo));
    }

    // flowmere run p.xml, in the folder.
    ProgramRun run(std::vector<std::string> arguments = {}, ProgramSetting setting = {}) const {
        arguments.insert(arguments.begin(), {"run", "p.xml"});
        setting.folder = m_folder.path();
        return runProgram(arguments, setting);
    }
    std::filesystem::path const& path() const { return m_folder.path(); }
    ScratchFolder const& folder() const { return m_folder; }

private:
    ScratchFolder m_folder;
};

} // namespace flowmere::test
