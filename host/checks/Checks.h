#pragma once

// The rules of the check. Each looks at the whole document once, and adds what it finds.

#include "host/checks/Scripts.h"
#include "host/document/Document.h"
#include "host/document/Tree.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace flowmere::host {

// Names of the rules. They stand in outputs that programs read: never change them.
inline constexpr std::string_view kDeadLink = "dead-link";
inline constexpr std::string_view kLinkLoop = "link-loop";
inline constexpr std::string_view kMissingConnectorBlock = "missing-connector-block";
inline constexpr std::string_view kMissingFile = "missing-file";
inline constexpr std::string_view kDuplicateId = "duplicate-id";
inline constexpr std::string_view kDuplicateVariable = "duplicate-variable";
inline constexpr std::string_view kUnreachableBlock = "unreachable-block";
inline constexpr std::string_view kDecisionGrip = "decision-grip";
inline constexpr std::string_view kMissingScript = "missing-script";
inline constexpr std::string_view kScriptSyntax = "script-syntax";
inline constexpr std::string_view kScriptClass = "script-class";
inline constexpr std::string_view kScriptImport = "script-import";
inline constexpr std::string_view kNotIdentifier = "not-identifier";
// Of workflows, by what their engine refuses or does.
inline constexpr std::string_view kStartState = "start-state";
inline constexpr std::string_view kUnknownTarget = "unknown-target";
inline constexpr std::string_view kStateTransition = "state-transition";
inline constexpr std::string_view kDuplicateNode = "duplicate-node";
inline constexpr std::string_view kSlashInName = "slash-in-name";
inline constexpr std::string_view kForkNames = "fork-names";
inline constexpr std::string_view kForkWithoutJoin = "fork-without-join";
inline constexpr std::string_view kJoinBranches = "join-branches";
inline constexpr std::string_view kNoTask = "no-task";
inline constexpr std::string_view kScriptEvent = "script-event";
inline constexpr std::string_view kEventType = "event-type";
inline constexpr std::string_view kPriority = "priority";
inline constexpr std::string_view kGroupEntry = "group-entry";

// One thing that is wrong.
struct Finding {
    std::string path; // of the node or variable; empty for the process itself
    std::string_view rule;
    std::string message;
    // The script that a finding is about, and the line; 0 for none.
    std::string script;
    int line = 0;
};

// What a check works on, and what it has found so far.
class Check {
public:
    Check(Document& document, Scripts& scripts);

    Document& document;
    Scripts& scripts;
    Tree const tree;

    void addToNode(std::size_t node, std::string_view rule, std::string message, std::string script = {}, int line = 0);
    void addToVariable(std::size_t variable, std::string_view rule, std::string message);
    // Something that the node holds besides its variables and children.
    void addToContent(std::size_t node, std::string_view rule, std::string message);

    // The script of a block: its name, its file, and what stands in it.
    struct Script {
        std::string name;
        std::filesystem::path file;
        ScriptFacts const* facts;
    };
    // Null for a node without a script or without a file. Valid as long as this object.
    Script const* scriptOf(std::size_t node);
    // Of a node that is a block.
    ScriptState scriptState(std::size_t node);
    // The file that Python would import under the dotted name; looked for once.
    std::optional<std::filesystem::path> const& scriptFile(std::string const& name);
    // Whether the folder holds a module of that name, be it a file, a folder or a library. Each folder is read once.
    bool hasModule(std::filesystem::path const& folder, std::string const& name);

    // The end of a message about a name that is not there: "; did you mean A, B or C?", or the empty text. In a
    // document with very many wrong names the last ones go without, so that a check takes no longer for them: `known`
    // gives the `count` names only when there is still time for them.
    std::string suggest(std::string const& typed, std::size_t count,
                        std::function<std::vector<std::string>()> const& known);
    // For the link of a variable that names none: out of the variables of the node that it names, or else of all
    // others.
    std::string suggestTarget(TreeVariable const& variable);

    // Whether not all nodes and transitions of the container are known: its workflow has some that were not read, and
    // what leads where cannot be told.
    bool isPartlyKnown(std::size_t container);
    // Whether some transition of the workflow leads out of its container or into another one.
    bool hasFarTransitions();

    // In the order of the document: what is told of a node, of its variables, of its children, and of what else it
    // holds.
    std::vector<Finding> take();

private:
    struct Entry {
        std::size_t node;
        std::size_t place;
        int inside; // of things behind the same node: those of inner containers come first
        Finding finding;
    };
    // What is known of the script of a node.
    struct Known {
        ScriptState state = ScriptState::None;
        std::optional<Script> script;
    };
    Known const& known(std::size_t node);

    std::vector<Entry> m_entries;
    std::size_t m_compared = 0; // names that suggestions were looked for in
    std::unordered_map<std::string_view, std::size_t> m_nodeOfPath;
    std::vector<std::optional<Known>> m_known; // by node
    std::unordered_map<std::string, std::optional<std::filesystem::path>> m_files;
    std::unordered_map<std::string, std::unordered_set<std::string>> m_modules; // by folder
    std::optional<std::unordered_set<std::size_t>> m_partlyKnown;
    std::optional<bool> m_hasFarTransitions;
};

void checkIds(Check& check);     // duplicate-id, duplicate-variable
void checkNames(Check& check);   // not-identifier
void checkScripts(Check& check); // missing-script, script-syntax, script-class, script-import
void checkGrips(Check& check);   // decision-grip
void checkFlow(Check& check);    // unreachable-block
void checkLinks(Check& check);   // dead-link, link-loop
void checkReading(Check& check); // missing-connector-block, missing-file
// start-state, unknown-target, state-transition, duplicate-node, slash-in-name, fork-names, fork-without-join,
// join-branches, no-task, script-event, event-type, priority, group-entry
void checkWorkflow(Check& check);

// All of them.
std::vector<Finding> findingsOf(Document& document, Scripts& scripts);

} // namespace flowmere::host
