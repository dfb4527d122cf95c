#include "host/shell/Workspace.h"

#include "host/basics/Text.h"
#include "host/document/Values.h"
#include "host/scripting/HostModule.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace flowmere::host::shell {

namespace fs = std::filesystem;

namespace {

char const* markName(int mark) {
    constexpr char const* kNames[] = {"stop", "skip", "break point"};
    return kNames[mark];
}

} // namespace

Workspace::Workspace(Setting setting, Output& output)
    : m_setting(std::move(setting)), m_output(output), m_commands(HostCommand::instance()) {
    setActions();
}

Workspace::~Workspace() {
    close();
    m_debugging.reset();
    hostServices().scriptLeaves = nullptr;
    if (m_interpreter != nullptr)
        m_interpreter->releaseOutput();
    for (CommandEntry const& entry : m_commands.commandEntries())
        m_commands.setAction(entry.name, nullptr);
    m_commands.unset("Variable Data");
}

void Workspace::setActions() {
    auto const set = [this](char const* name, void (Workspace::*action)()) {
        m_commands.setAction(name, [this, action] { (this->*action)(); });
    };
    set("Create Project", &Workspace::createProject);
    set("Open Project", &Workspace::openProject);
    set("Close Project", &Workspace::closeProject);
    set("Save Project", &Workspace::saveProject);
    set("Save Project As", &Workspace::saveProjectAs);
    set("Save Iteration Data", &Workspace::saveIteration);
    set("Execute Block", &Workspace::executeBlock);
    set("Undo Block", &Workspace::undoBlock);
    set("Execution Begin", &Workspace::begin);
    set("Execution Step", &Workspace::step);
    set("Execution Undo", &Workspace::undoToStop);
    set("Execution Undo Step", &Workspace::undoStep);
    set("Continue Execution", &Workspace::resume);
    set("Auto Execute", &Workspace::autoExecute);
    set("Expand Block", &Workspace::expand);
    set("Set Variable Data", &Workspace::setVariables);
    set("Extract Variable Data", &Workspace::extractVariables);

    auto const setMark = [this](char const* name, Mark mark, bool isSet) {
        m_commands.setAction(name, [this, mark, isSet] { this->mark(mark, isSet); });
    };
    setMark("Stop At", Mark::Stop, true);
    setMark("Clear Stop At", Mark::Stop, false);
    setMark("Skip Block", Mark::Skip, true);
    setMark("Clear Skip Block", Mark::Skip, false);
    setMark("Set Break", Mark::Break, true);
    setMark("Clear Break", Mark::Break, false);

    auto const setClear = [this](char const* name, Mark mark) {
        m_commands.setAction(name, [this, mark] { clearAll(mark); });
    };
    setClear("Clear All Stop", Mark::Stop);
    setClear("Clear All Skip", Mark::Skip);
    setClear("Clear All Break", Mark::Break);
}

Document& Workspace::project() const {
    if (m_document == nullptr)
        throw Failure("", "", "no project is open: Open Project FILE opens one");
    return *m_document;
}

std::string Workspace::required(char const* resource, char const* what) const {
    std::optional<std::string> const value = m_commands.text(resource);
    if (!value || value->empty())
        throw Failure("", resource, fmt::format("has no value: name {}", what));
    return *value;
}

IFCNode& Workspace::nodeOf(std::string const& block) const {
    Document& document = project();
    if (block == ".")
        return document.process();
    return document.block(block);
}

CFCBlockNode& Workspace::selectedBlock() const {
    Document& document = project();
    return document.block(required("Selected Block", "a block"));
}

IFCNode& Workspace::executingNode() const {
    Document& document = project();
    if (std::optional<std::string> const name = m_commands.text("Executing Block"); name && !name->empty())
        return nodeOf(*name);
    CFCBlockNode* const next = m_runner != nullptr && m_hasBegun ? m_runner->nextBlock() : nullptr;
    if (next == nullptr)
        throw Failure(document.file(), "", "no block is executing: name a block");
    return *next;
}

void Workspace::changed() const {
    m_document->process().setProcessSaveStatus(CFCProcessNode::ProcessUnsaved);
}

bool Workspace::hasUnsavedChanges() const {
    return m_document != nullptr && m_document->process().getProcessSaveStatus() == CFCProcessNode::ProcessUnsaved;
}

bool Workspace::mayLeave() {
    return !hasUnsavedChanges() || !m_setting.mayLose || m_setting.mayLose(m_name);
}

// Marks

void Workspace::mark(Mark mark, bool isSet) {
    CFCBlockNode& block = selectedBlock();
    std::string const path = pathOf(block);
    switch (mark) {
    case Mark::Stop:
        block.SetStopFlag(isSet);
        changed();
        break;
    case Mark::Skip:
        block.SetSkipFlag(isSet);
        changed();
        if (m_runner != nullptr)
            m_runner->marksChanged();
        break;
    case Mark::Break:
        if (isSet && m_document->scriptState(block) == ScriptState::None)
            throw Failure(m_document->file(), path, "has no script to break in");
        block.SetBreakPointFlag(isSet);
        break;
    }
    char const* const name = markName(static_cast<int>(mark));
    m_output.line(fmt::format("{}: {}{}", oneLine(path), isSet ? "" : "no ", name));
    if (mark == Mark::Break && isSet)
        m_output.fact("debugs", m_setting.debugs);
    if (mark == Mark::Break && isSet && !m_setting.debugs && !std::exchange(m_hasToldBreaks, true))
        m_output.line("break points open the debugger in a shell with --debug, and do nothing in this one");
    m_output.fact("block", path);
    m_output.fact("mark", name);
    m_output.fact("set", isSet);
}

void Workspace::clearAll(Mark mark) {
    std::vector<std::string> cleared;
    for (CFCBlockNode* const block : project().blocks()) {
        bool const isSet = mark == Mark::Stop   ? block->GetStopFlag()
                           : mark == Mark::Skip ? block->GetSkipFlag()
                                                : block->GetBreakPointFlag();
        if (!isSet)
            continue;
        if (mark == Mark::Stop)
            block->SetStopFlag(false);
        else if (mark == Mark::Skip)
            block->SetSkipFlag(false);
        else
            block->SetBreakPointFlag(false);
        cleared.push_back(pathOf(*block));
    }
    if (!cleared.empty() && mark != Mark::Break)
        changed();
    if (mark == Mark::Skip && m_runner != nullptr)
        m_runner->marksChanged();
    for (std::string const& path : cleared)
        m_output.line(fmt::format("{}: no {}", oneLine(path), markName(static_cast<int>(mark))));
    if (cleared.empty())
        m_output.line(fmt::format("no block has a {}", markName(static_cast<int>(mark))));
    m_output.fact("cleared", cleared);
}

// Values

namespace {

std::vector<CFCVariableData*> namedVariables(IFCNode& node) {
    std::vector<CFCVariableData*> variables;
    CFCVariableList* const list = node.GetVariableList();
    __FCPOSITION* position = list != nullptr ? list->GetHeadPosition() : nullptr;
    while (position != nullptr)
        if (CFCVariableData* const variable = list->GetNext(position))
            if (!TuString(variable->GetVariableName()).IsEmpty())
                variables.push_back(variable);
    return variables;
}

// A variable of the process begins with a point.
std::string pathIn(IFCNode& node, std::string const& name) {
    return pathOf(node) + "." + name;
}

} // namespace

std::vector<std::string> Workspace::variableNames(std::string const& block) const {
    std::vector<std::string> names;
    for (CFCVariableData* const variable : namedVariables(nodeOf(block)))
        names.push_back(utf8(variable->GetVariableName()));
    return names;
}

void Workspace::setVariables() {
    IFCNode& node = executingNode();
    VariableValues const* const values = m_commands.variableData();
    if (values == nullptr || values->empty())
        throw Failure("", "Variable Data", "has no value: give NAME=VALUE");
    std::vector<CFCVariableData*> const known = namedVariables(node);
    std::vector<std::string> names;
    for (CFCVariableData* const variable : known)
        names.push_back(utf8(variable->GetVariableName()));

    std::vector<CFCVariableData*> variables;
    for (auto const& [name, value] : *values) {
        auto const entry = std::find(names.begin(), names.end(), name);
        if (entry == names.end())
            throw Failure(m_document->file(), pathIn(node, name),
                          "there is no such variable" + suggestion(name, names));
        variables.push_back(known[static_cast<std::size_t>(entry - names.begin())]);
        checkValue(*m_document, pathIn(node, name), *variables.back(), value);
    }
    auto variable = variables.begin();
    Json set = Json::object();
    for (auto const& [name, value] : *values) {
        setValue(**variable++, value);
        m_output.line(oneLine(pathIn(node, name)) + " = " + oneLine(value));
        set[name] = value;
    }
    changed();
    m_output.fact("block", pathOf(node));
    m_output.fact("values", std::move(set));
}

void Workspace::extractVariables() {
    IFCNode& node = executingNode();
    m_values.clear();
    Json values = Json::object();
    for (CFCVariableData* const variable : namedVariables(node)) {
        std::string const name = utf8(variable->GetVariableName());
        std::string const value = utf8(variable->GetActualVariableData()->GetValue());
        m_values.emplace(name, value);
        m_output.line(oneLine(name) + " = " + oneLine(value));
        values[name] = value;
    }
    if (m_values.empty())
        m_output.line("no variables");
    m_commands.setVariableData(&m_values);
    m_output.fact("block", pathOf(node));
    m_output.fact("values", std::move(values));
}

} // namespace flowmere::host::shell
