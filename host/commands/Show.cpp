#include "host/commands/Show.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/Findings.h"
#include "host/document/Tree.h"
#include "host/document/WorkflowFacts.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

namespace {

struct Options {
    std::string file;
    std::vector<std::string> scripts;
    bool json = false;
};

// A value on one line is cut behind so many characters; JSON has the whole.
constexpr std::size_t kShownOfValue = 100;
// Transitions are shown with the nodes that they lead to.
constexpr std::string_view kTransitions = "transitions";

// Everything that is shown of a node, but for its variables and ways.
struct Facts {
    std::string id;
    std::string caption; // empty when it says no more than the id
    std::string kind;
    bool isFirst = false;
    std::string script; // empty for none
    std::string scriptType;
    std::string scriptFile;
    bool isScriptMissing = false;
    std::string state; // empty for none
    bool isBreak = false;
    std::string unreadLink;
};

class Show {
public:
    explicit Show(Document& document)
        : m_document(document), m_tree(document.process()), m_unread(document.workflowFindings()) {
        m_isFirst.resize(m_tree.nodes().size());
        for (TreeNode const& node : m_tree.nodes())
            if (CFCBlockNode* const first = m_tree.firstBlock(node))
                if (std::size_t const index = m_tree.indexOf(static_cast<IFCNode*>(first)); index != Tree::kNone)
                    m_isFirst[index] = true;
    }

    std::string text() const {
        std::string out;
        for (std::size_t index = 0; index < m_tree.nodes().size(); ++index)
            addNode(out, index);
        return out;
    }

    Json json() const {
        Json nodes = Json::array();
        for (std::size_t index = 0; index < m_tree.nodes().size(); ++index)
            nodes.push_back(jsonOf(index));
        return {{"file", m_document.file()},
                {"blocks", m_tree.blockCount()},
                {"connectors", m_tree.connectorCount()},
                {"variables", m_tree.variables().size()},
                {"nodes", std::move(nodes)}};
    }

private:
    Facts factsOf(std::size_t index) const {
        TreeNode const& node = m_tree.nodes()[index];
        Facts facts;
        facts.id = node.id;
        facts.caption = utf8(node.node->GetNodeCaption());
        facts.kind = kindName(node.node->GetNodeType());
        facts.isFirst = m_isFirst[index];
        if (node.node->IsFileLink() && !node.node->IsLoaded())
            facts.unreadLink = utf8(node.node->GetFileLinkPath());
        if (node.block == nullptr || node.parent == Tree::kNone)
            return facts;
        CFCBlockNode& block = *node.block;
        facts.isBreak = block.GetStopFlag();
        // What the engine has done with a workflow, its folder does not say.
        if (!node.isOfWorkflow && block.GetExecutionStateType() != EExecutionStateType_ESNone)
            facts.state = utf8(CFCEnumTranslator::EnumToString(block.GetExecutionStateType()));
        std::string const name = utf8(block.GetScriptName());
        if (block.GetScriptType() != EScriptType_PYTHON) {
            facts.scriptType = utf8(block.GetScriptTypeS());
            facts.script = name;
            return facts;
        }
        ScriptState const state = m_document.scriptState(block);
        if (state == ScriptState::None)
            return facts;
        std::string const script = m_document.scriptName(block);
        facts.scriptType = utf8(block.GetScriptTypeS());
        facts.script = script.empty() ? node.id : script;
        facts.isScriptMissing = state == ScriptState::Missing;
        if (auto const file = m_document.scriptFile(block))
            facts.scriptFile = file->string();
        return facts;
    }

    void addNode(std::string& out, std::size_t index) const {
        TreeNode const& node = m_tree.nodes()[index];
        Facts const facts = factsOf(index);
        std::string const margin(2 * static_cast<std::size_t>(node.level), ' ');
        bool const isRoot = node.parent == Tree::kNone;

        std::string name = facts.id;
        if (!facts.caption.empty() && facts.caption != facts.id)
            name += (name.empty() ? "\"" : " \"") + facts.caption + "\"";
        out += margin + (name.empty() ? "(nameless)" : oneLine(name)) + ": " + facts.kind;
        if (isRoot)
            out += fmt::format(", {}, {}, {}", counted(m_tree.blockCount(), "block"),
                               counted(m_tree.connectorCount(), "connector"),
                               counted(m_tree.variables().size(), "variable"));
        if (facts.isFirst)
            out += ", first";
        if (!facts.scriptType.empty() && facts.scriptType != "PYTHON")
            out += ", " + facts.scriptType + " script";
        else if (!facts.script.empty())
            out += ", script " + oneLine(facts.script) + (facts.isScriptMissing ? " (missing)" : "");
        if (facts.isBreak)
            out += ", break";
        if (!facts.state.empty())
            out += ", " + facts.state;
        if (!facts.unreadLink.empty())
            out += ", in the file " + oneLine(facts.unreadLink) + " (not read)";
        out += "\n";
        CFCBPMBlockData* const task = node.isOfWorkflow ? node.node->GetBPMBlockData() : nullptr;
        if (task != nullptr)
            addWorkflow(out, *node.node, *task, margin + "    ");
        addVariables(out, node, margin + "    ");
        if (task != nullptr && node.parent != Tree::kNone) {
            addTransitions(out, *node.node, *task, margin + "    ");
            return;
        }
        for (CFCConnector* const way : node.ways)
            out += fmt::format("{}    -> {}, from {} to {}\n", margin, oneLine(utf8(way->GetEndBlockName())),
                               gripName(way->GetStartHandle()), gripName(way->GetEndHandle()));
    }

    // What the engine is told of the node: single facts on one line, each of several on a line of its own.
    static void addWorkflow(std::string& out, IFCNode& node, CFCBPMBlockData& task, std::string const& margin) {
        std::string line;
        std::string lists;
        for (WorkflowFact const& fact : workflowFacts()) {
            if (fact.name == kTransitions)
                continue;
            for (std::string const& value : fact.shown(node, task)) {
                std::string const text = oneLine(cut(value));
                if (fact.form == WorkflowForm::List)
                    lists += fmt::format("{}{}: {}\n", margin, fact.name, text);
                else
                    line += fmt::format("{}{}{}", line.empty() ? "" : "; ", fact.name,
                                        fact.form == WorkflowForm::Flag ? std::string() : ": " + text);
            }
        }
        if (!line.empty())
            out += margin + line + "\n";
        out += lists;
    }

    void addTransitions(std::string& out, IFCNode& node, CFCBPMBlockData& task, std::string const& margin) const {
        CFCTransitionList& list = *task.GetTransitionList();
        for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
            if (CFCTransitionData* const way = list.GetNext(place))
                out += fmt::format("{}-> {}, from {} to {}{}\n", margin, oneLine(transitionText(node, *way)),
                                   gripName(way->GetInport()), gripName(way->GetOutport()), targetText(node, *way));
    }

    char const* targetText(IFCNode& node, CFCTransitionData& way) const {
        if (hasTarget(node, way))
            return "";
        return m_unread.has(node.GetParentNode(), utf8(way.GetTransitionTo())) ? "  (not read)" : "  (no such node)";
    }

    static bool hasTarget(IFCNode& node, CFCTransitionData& way) {
        IFCNode* const parent = node.GetParentNode();
        return parent != nullptr && parent->FindNodeSimple(way.GetTransitionTo()) != nullptr;
    }

    // A table: names, types and directions below each other.
    void addVariables(std::string& out, TreeNode const& node, std::string const& margin) const {
        constexpr std::size_t kColumns = 3;
        std::vector<std::array<std::string, kColumns>> rows;
        std::array<std::size_t, kColumns> widths{};
        for (std::size_t index = node.firstVariable; index < node.firstVariable + node.variableCount; ++index) {
            TreeVariable const& variable = m_tree.variables()[index];
            rows.push_back(
                {oneLine(variable.name), oneLine(typeOf(*variable.data)), utf8(variable.data->GetStatusTypeS())});
            for (std::size_t column = 0; column < kColumns; ++column)
                widths[column] = std::max(widths[column], charactersOf(rows.back()[column]));
        }
        for (std::size_t row = 0; row < rows.size(); ++row) {
            TreeVariable const& variable = m_tree.variables()[node.firstVariable + row];
            out += margin;
            for (std::size_t column = 0; column < kColumns; ++column)
                out += rows[row][column] + std::string(widths[column] - charactersOf(rows[row][column]) + 2, ' ');
            std::string const value = cut(oneLine(m_tree.valueOf(variable)));
            out += value.empty() ? "=" : "= " + value;
            if (variable.link != LinkState::None)
                out += "  <- " + oneLine(variable.linkPath);
            if (variable.link == LinkState::Dead)
                out += "  (dead link)";
            else if (variable.link == LinkState::Loop)
                out += "  (link loop)";
            else if (isAsking(variable))
                out += "  (scope " + utf8(variable.data->GetScopeTypeS()) + ", found nothing)";
            out += "\n";
        }
    }

    // Wants the value of a variable one level up, and found none when the document was read.
    bool isAsking(TreeVariable const& variable) const {
        EScopeType const scope = variable.data->GetScopeType();
        return variable.link == LinkState::None && m_tree.nodes()[variable.owner].parent != Tree::kNone &&
               (scope == EScopeType_Parent || scope == EScopeType_Global);
    }

    static bool isInside(char character) { return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U; }

    static std::size_t charactersOf(std::string const& text) {
        return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInside));
    }

    static std::string cut(std::string const& text) {
        if (charactersOf(text) <= kShownOfValue)
            return text;
        std::size_t end = 0;
        for (std::size_t shown = 0; shown < kShownOfValue; ++shown)
            for (++end; end < text.size() && isInside(text[end]);)
                ++end;
        return text.substr(0, end) + fmt::format("... ({} characters)", charactersOf(text));
    }

    Json jsonOf(std::size_t index) const {
        TreeNode const& node = m_tree.nodes()[index];
        Facts const facts = factsOf(index);
        Json out = {{"path", node.path},        {"level", node.level}, {"id", facts.id},
                    {"caption", facts.caption}, {"kind", facts.kind},  {"code", node.node->GetNodeType()},
                    {"first", facts.isFirst}};
        if (node.block != nullptr && node.parent != Tree::kNone) {
            out["script"] = nullptr;
            if (!facts.scriptType.empty())
                out["script"] = {{"name", facts.script},
                                 {"type", facts.scriptType},
                                 {"missing", facts.isScriptMissing},
                                 {"file", facts.scriptFile.empty() ? Json() : Json(facts.scriptFile)}};
            out["state"] = facts.state.empty() ? Json() : Json(facts.state);
            out["break"] = facts.isBreak;
        }
        if (!facts.unreadLink.empty())
            out["unreadFile"] = facts.unreadLink;
        Json variables = Json::array();
        for (std::size_t at = node.firstVariable; at < node.firstVariable + node.variableCount; ++at)
            variables.push_back(jsonOf(m_tree.variables()[at]));
        out["variables"] = std::move(variables);
        Json ways = Json::array();
        for (CFCConnector* const way : node.ways) {
            std::size_t const end = m_tree.indexOf(static_cast<IFCNode*>(way->GetEndObject()));
            ways.push_back({{"grip", way->GetStartHandle()},
                            {"to", end == Tree::kNone ? std::string() : m_tree.nodes()[end].path},
                            {"toGrip", way->GetEndHandle()}});
        }
        out["connectors"] = std::move(ways);
        if (CFCBPMBlockData* const task = node.isOfWorkflow ? node.node->GetBPMBlockData() : nullptr)
            out["workflow"] = jsonOf(*node.node, *task);
        return out;
    }

    // What is set, each fact under its name; transitions whole.
    static Json jsonOf(IFCNode& node, CFCBPMBlockData& task) {
        Json out = Json::object();
        for (WorkflowFact const& fact : workflowFacts()) {
            Json values = Json::array();
            if (fact.name != kTransitions)
                for (std::string& value : fact.shown(node, task))
                    values.push_back(std::move(value));
            std::string const name(fact.name);
            if (values.empty())
                continue;
            if (fact.form == WorkflowForm::List)
                out[name] = std::move(values);
            else if (fact.form == WorkflowForm::Flag)
                out[name] = true;
            else
                out[name] = values.front();
        }
        Json transitions = Json::array();
        CFCTransitionList& list = *task.GetTransitionList();
        for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
            if (CFCTransitionData* const way = list.GetNext(place))
                transitions.push_back({{"to", utf8(way->GetTransitionTo())},
                                       {"name", utf8(way->GetTransitionName())},
                                       {"label", utf8(way->GetTransitionCaption())},
                                       {"grip", way->GetInport()},
                                       {"toGrip", way->GetOutport()},
                                       {"found", hasTarget(node, *way)}});
        if (!transitions.empty())
            out[std::string(kTransitions)] = std::move(transitions);
        return out;
    }

    Json jsonOf(TreeVariable const& variable) const {
        Json out = {{"name", variable.name},
                    {"path", variable.path},
                    {"type", typeOf(*variable.data)},
                    {"array", variable.data->IsArray()},
                    {"io", utf8(variable.data->GetStatusTypeS())},
                    {"scope", utf8(variable.data->GetScopeTypeS())},
                    {"value", m_tree.valueOf(variable)},
                    {"link", nullptr}};
        if (variable.link != LinkState::None) {
            char const* const state = variable.link == LinkState::Dead   ? "dead"
                                      : variable.link == LinkState::Loop ? "loop"
                                                                         : "well";
            out["link"] = {{"path", variable.linkPath}, {"state", state}};
        }
        return out;
    }

    Document& m_document;
    Tree m_tree;
    UnreadNodes m_unread;
    std::vector<bool> m_isFirst;
};

int show(Options const& options) {
    Document document(options.file, options.scripts);
    Show const show(document);
    std::string const text = options.json ? jsonText(show.json()) : show.text();
    fmt::print("{}", text);
    for (CFCReadFinding const& finding : document.findings())
        if (finding.kind == CFCReadFinding::FileNotRead)
            fmt::print(stderr, "{}\n", errorLine(options.file, pathOf(*finding.node), describe(finding)));
    for (WorkflowNote const& note : notesOf(document.workflowFindings(), options.file))
        fmt::print(stderr, "{}\n", errorLine(note.file, note.place, note.text));
    return kExitWell;
}

} // namespace

void addShow(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("show", "Show the tree of a document, with its variables and their values");
    command.option("FILE", options->file, "The process document, or a workflow folder").required();
    command
        .option("--scripts", options->scripts,
                "A folder in which scripts are found, besides that of the document; may be given several times")
        .typeName("DIR")
        .repeated();
    command.flag("--json", options->json, "Print the same as JSON");
    command.footer("Behind <- stands the path that a variable links to; its value is the one at the end of the links.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere show beam.xml --scripts library");
    command.work([options, &result] { result.exitCode = show(*options); });
}

} // namespace flowmere::host
