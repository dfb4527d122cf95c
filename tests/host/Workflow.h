#pragma once

// Small workflow folders, written for a test.

#include "Program.h"

#include <string>
#include <vector>

namespace flowmere::test {

inline std::string transition(std::string const& from, std::string const& to, std::string const& attributes = "") {
    return "<transition to=\"" + to + "\" name=\"" + from + "." + to + "\" " + attributes + "/>\n";
}

// "start-state", "fork" and others; one transition for each target.
inline std::string state(std::string const& element, std::string const& name, std::vector<std::string> const& to = {},
                         std::string const& inner = "") {
    std::string text = "<" + element + " name=\"" + name + "\">\n" + inner;
    for (std::string const& target : to)
        text += transition(name, target);
    return text + "</" + element + ">\n";
}

inline std::string taskNode(std::string const& name, std::vector<std::string> const& to = {},
                            std::string const& inner = "", std::string const& attributes = "nodeType=\"task\"") {
    std::string text = "<task-node name=\"" + name + "\" " + attributes + ">\n<task name=\"" + name +
                       "\" priority=\"normal\"/>\n" + inner;
    for (std::string const& target : to)
        text += transition(name, target);
    return text + "</task-node>\n";
}

inline std::string definition(std::string const& inner, std::string const& name = "flow") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<process-definition name=\"" + name +
           "\">\n<type>TASK</type>\n" + inner + "</process-definition>\n";
}

// Start, "A" and what is given between it and the end "Z".
inline std::string flow(std::string const& inner, std::string const& first = "A") {
    return definition(state("start-state", "S", {first}) + inner + state("end-state", "Z"));
}

// A folder "w" with its files.
class Workflow {
public:
    explicit Workflow(std::string const& text) { add("w", text); }

    // One more, for a sub-process: "w/Sub".
    void add(std::string const& folder, std::string const& text) const {
        m_folder.write(folder + "/processdefinition.xml", text);
        m_folder.write(folder + "/process.var", "<PROCESS name=\"flow\"><BLOCK_VARIABLES/></PROCESS>");
        m_folder.write(folder + "/gpd.xml", "<root-container name=\"flow\"/>");
    }
    ScratchFolder const& folder() const { return m_folder; }
    std::filesystem::path const& path() const { return m_folder.path(); }

    ProgramRun run(std::vector<std::string> const& arguments) const {
        return runProgram(arguments, {.folder = m_folder.path()});
    }

private:
    ScratchFolder m_folder;
};

} // namespace flowmere::test
