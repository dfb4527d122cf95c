#pragma once

// What a check knows of Python: which names it takes, and what stands in a script. No script is ever run.

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace flowmere::host {

struct RelativeImport {
    int line = 0;
    int level = 0;      // number of points in front
    std::string module; // empty for "from . import"
};

struct ScriptFacts {
    // Why the file does not compile, and where; empty when it does. Then nothing else is known of it.
    std::string error;
    int errorLine = 0; // 0 when no line is to blame

    // The grips that calls of setActiveHandle name by a number, with the first line that does.
    std::map<int, int> grips;
    bool setsUnknownGrip = false; // some call gets its grip from elsewhere
    bool alwaysSetsGrip = false;  // some call stands in no branch

    // Whether the module has the class that a run looks for, as far as can be seen.
    bool hasClass = true;
    std::vector<RelativeImport> relativeImports; // of the module itself, not of its functions

    bool setsGrip() const { return setsUnknownGrip || !grips.empty(); }
};

// Asks the interpreter of the program, each file and name once.
class Scripts {
public:
    // Starts the interpreter with no folder of scripts to import from.
    Scripts();

    // Of the file, with the name that its class must have.
    ScriptFacts const& factsOf(std::filesystem::path const& file, std::string const& className);
    // Whether Python takes the text as a name: no keyword, and nothing but letters, digits and "_".
    bool isIdentifier(std::string const& name);
    bool isKeyword(std::string const& name);

private:
    std::vector<std::string> m_keywords; // sorted
    std::map<std::pair<std::string, std::string>, ScriptFacts> m_facts;
    std::map<std::string, bool> m_names; // those beyond ASCII
};

// The parts between the points of a script name.
std::vector<std::string> partsOf(std::string_view scriptName);

} // namespace flowmere::host
