#include "host/diff/Snapshot.h"

#include "host/basics/Text.h"
#include "host/document/HostFactory.h"
#include "host/document/Tree.h"
#include "host/document/WorkflowFacts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace flowmere::host {

namespace {

constexpr std::int64_t kPageHeight = 1300;
constexpr int kFirstOfWorkflow = eShapeType_Task;

// Texts are mostly empty, and then nothing need be converted.
std::string text(wchar_t const* value) {
    return value == nullptr || *value == L'\0' ? std::string() : utf8(value);
}

std::string number(std::int64_t value) {
    return value == 0 ? std::string() : std::to_string(value);
}

std::string flag(bool value) {
    return value ? "yes" : std::string();
}

std::string colour(unsigned int value) {
    return fmt::format("0x{:06X}", value);
}

// Files hold forward slashes.
std::string withSlashes(wchar_t const* value) {
    std::string result = text(value);
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

std::string inches(std::int64_t hundredths) {
    std::int64_t const size = std::abs(hundredths);
    return fmt::format("{}{}.{:02}", hundredths < 0 ? "-" : "", size / 100, size % 100);
}

// A node with its other sides, which are null where it has none.
struct NodeView {
    NodeView(IFCNode& seen, bool isWorkflow)
        : node(seen), block(seen.GetFCBlockData()), process(dynamic_cast<CFCProcessNode*>(&seen)),
          isOfWorkflow(isWorkflow) {
        // Others hold the record, and no document does.
        if (seen.GetNodeType() >= kFirstOfWorkflow) {
            task = seen.GetBPMBlockData();
            taskNode = dynamic_cast<CFCBPMTaskNode*>(&seen);
        }
    }

    IFCNode& node;
    CFCBlockData* block;
    CFCProcessNode* process;
    CFCBPMBlockData* task = nullptr;
    CFCBPMTaskNode* taskNode = nullptr;
    bool isOfWorkflow;
};

// The state of these is that of what is in them.
bool isComposite(int code) {
    return code == eShapeType_BasicSubProcess || code == eShapeType_WorkflowProcess;
}

std::string stateOf(NodeView const& view) {
    if (view.block == nullptr || isComposite(view.node.GetNodeType()))
        return {};
    EExecutionStateType const state = view.block->GetExecutionStateType();
    return state == EExecutionStateType_ESNone ? std::string() : text(CFCEnumTranslator::EnumToString(state));
}

// A nameless script takes the identifier of its block for its name, when it is first looked for. In a workflow folder a
// block's script has its place beside it, and no name of its own.
std::string scriptOf(NodeView const& view) {
    if (view.isOfWorkflow)
        return {};
    std::string name = withSlashes(view.block->GetScriptName());
    std::replace(name.begin(), name.end(), '/', '.');
    return name == text(view.node.GetNodeId()) ? std::string() : name;
}

enum class Of : std::uint8_t { All, Process, Ordinary, Block, Task };

struct NodeRow {
    AttributeInfo info;
    Of of; // of which nodes; of blocks and tasks only as far as they are no processes
    std::string (*value)(NodeView const&);
};

// Values as a getter or a member gives them.
template <auto Getter>
std::string nodeText(NodeView const& view) {
    return text((view.node.*Getter)());
}
template <auto Getter>
std::string taskText(NodeView const& view) {
    return text((view.task->*Getter)());
}
template <auto Getter>
std::string processText(NodeView const& view) {
    return text((view.process->*Getter)());
}
template <auto Getter>
std::string processFlag(NodeView const& view) {
    return flag((view.process->*Getter)());
}
template <auto Getter>
std::string blockText(NodeView const& view) {
    return view.block == nullptr ? std::string() : text((view.block->*Getter)());
}
template <auto Getter>
std::string blockFlag(NodeView const& view) {
    return flag((view.block->*Getter)());
}
template <auto Port>
std::string portName(NodeView const& view) {
    return text((view.block->GetPortList()->*Port)()->GetPortName());
}
template <auto Member>
std::string shapeFlag(NodeView const& view) {
    return flag(view.block->*Member);
}
template <auto Member>
std::string shapeNumber(NodeView const& view) {
    return number(std::int64_t{view.block->*Member});
}
template <auto Member>
std::string shapeColour(NodeView const& view) {
    return colour(view.block->*Member);
}

std::string processId(NodeView const& view) {
    return number(std::int64_t{view.node.GetNodeProcessID()});
}

std::string projectType(NodeView const& view) {
    return text(CFCEnumTranslator::EnumToString(view.process->GetProjectType()));
}

std::string saveScriptType(NodeView const& view) {
    return text(CFCEnumTranslator::EnumToString(view.process->getSaveRestoreScriptType()));
}

std::string failedReason(NodeView const& view) {
    return view.taskNode == nullptr ? std::string() : text(view.taskNode->GetFailedReason());
}

std::string reference(NodeView const& view) {
    return number(view.block->GetReferenceBlock());
}

std::string position(NodeView const& view) {
    TuRect const* const rect = view.node.GetTuRect();
    return rect == nullptr ? std::string() : inches(rect->left) + "," + inches(kPageHeight - rect->bottom);
}

std::string size(NodeView const& view) {
    TuRect const* const rect = view.node.GetTuRect();
    return rect == nullptr
               ? std::string()
               : inches(std::int64_t{rect->right} - rect->left) + "x" + inches(std::int64_t{rect->bottom} - rect->top);
}

std::string image(NodeView const& view) {
    return withSlashes(view.block->GetRelativeImagePath());
}

// Saving gives a nameless font this name.
std::string font(NodeView const& view) {
    return view.block->FontName.IsEmpty() ? "Arial" : text(view.block->FontName);
}

constexpr NodeRow kNodeRows[] = {
    {{"caption", Form::Text}, Of::All, nodeText<&IFCNode::GetNodeCaption>},
    {{"file", Form::Text}, Of::All, nodeText<&IFCNode::GetItemFilePath>},
    {{"linked file", Form::Text}, Of::All, nodeText<&IFCNode::GetFileLinkPath>},
    {{"process id", Form::Number}, Of::All, processId},
    {{"code", Form::Text}, Of::Ordinary, nodeText<&IFCNode::GetNodeCode>},

    {{"project type", Form::Text}, Of::Process, projectType},
    {{"project directory", Form::Text}, Of::Process, processText<&CFCProcessNode::getProjectDirectory>},
    {{"flow type", Form::Text}, Of::Process, processText<&CFCProcessNode::getProcessFlowType>},
    {{"save script", Form::Text}, Of::Process, processText<&CFCProcessNode::getSaveRestoreScript>},
    {{"save script type", Form::Text}, Of::Process, saveScriptType},
    {{"random execution", Form::Flag}, Of::Process, processFlag<&CFCProcessNode::getRandomExecutionStatus>},
    {{"run on load", Form::Flag}, Of::Process, processFlag<&CFCProcessNode::getRunOnLoadStatus>},
    {{"model dependency", Form::Flag}, Of::Process, processFlag<&CFCProcessNode::getModelDependency>},
    {{"variables saved", Form::Flag}, Of::Process, processFlag<&CFCProcessNode::IsVariablesSerializableToTNB>},
    {{"diagram", Form::Flag}, Of::Process, processFlag<&CFCProcessNode::hasDiagram>},

    {{"state", Form::Text}, Of::Block, stateOf},
    {{"failed reason", Form::Text}, Of::Task, failedReason},
    {{"runs", Form::Flag}, Of::Block, blockFlag<&CFCBlockData::GetShouldRun>},
    {{"undo", Form::Flag}, Of::Block, blockFlag<&CFCBlockData::GetUndoFlag>},
    {{"skip", Form::Flag}, Of::Block, blockFlag<&CFCBlockData::GetSkipFlag>},
    {{"break", Form::Flag}, Of::Block, blockFlag<&CFCBlockData::GetStopFlag>},
    {{"reference", Form::Number}, Of::Block, reference},
    {{"script", Form::Text}, Of::Block, scriptOf},
    {{"script type", Form::Text}, Of::Block, blockText<&CFCBlockData::GetScriptTypeS>},
    {{"command interface", Form::Text}, Of::All, blockText<&CFCBlockData::GetCOMInteface>},
    {{"command", Form::Text}, Of::All, blockText<&CFCBlockData::GetCOMCommand>},
    {{"execute method", Form::Text}, Of::All, blockText<&CFCBlockData::GetExecuteMethod>},
    {{"tip", Form::Text}, Of::Block, blockText<&CFCBlockData::GetToolTip>},
    {{"description", Form::Text}, Of::Block, blockText<&CFCBlockData::GetDescription>},
    {{"help file", Form::Text}, Of::Block, blockText<&CFCBlockData::GetHelpFile>},
    {{"task description", Form::Text}, Of::Task, taskText<&CFCBPMBlockData::GetTaskDescription>},
    {{"application", Form::Text}, Of::Task, taskText<&CFCBPMBlockData::GetApplication>},
    {{"deployment", Form::Text}, Of::Task, taskText<&CFCBPMBlockData::GetDeployment>},
    {{"executable", Form::Text}, Of::Task, taskText<&CFCBPMBlockData::GetExecutable>},
    {{"in port", Form::Text}, Of::Block, portName<&CFCPortList::GetInPort>},
    {{"out port", Form::Text}, Of::Block, portName<&CFCPortList::GetOutPort>},
    {{"next port", Form::Text}, Of::Block, portName<&CFCPortList::GetNextPort>},

    {{"position", Form::Text}, Of::Ordinary, position},
    {{"size", Form::Text}, Of::Ordinary, size},
    {{"has image", Form::Flag}, Of::Block, blockFlag<&CFCBlockData::HasImage>},
    {{"image", Form::Text}, Of::Block, image},
    {{"border", Form::Flag}, Of::Block, shapeFlag<&CFCShape::DrawBorder>},
    {{"border visible", Form::Flag}, Of::Block, shapeFlag<&CFCShape::Visible>},
    {{"line thickness", Form::Number}, Of::Block, shapeNumber<&CFCShape::LineThickness>},
    {{"line type", Form::Number}, Of::Block, shapeNumber<&CFCShape::LinePenType>},
    {{"line colour", Form::Text}, Of::Block, shapeColour<&CFCShape::ColorLine>},
    {{"filled", Form::Flag}, Of::Block, shapeFlag<&CFCShape::FillColor>},
    {{"fill colour", Form::Text}, Of::Block, shapeColour<&CFCShape::ColorFill>},
    {{"font", Form::Text}, Of::Block, font},
    {{"font size", Form::Number}, Of::Block, shapeNumber<&CFCShape::FontSize>},
    {{"font colour", Form::Text}, Of::Block, shapeColour<&CFCShape::FontColor>},
    {{"bold", Form::Flag}, Of::Block, shapeFlag<&CFCShape::Bold>},
    {{"italics", Form::Flag}, Of::Block, shapeFlag<&CFCShape::Italics>},
    {{"underlined", Form::Flag}, Of::Block, shapeFlag<&CFCShape::Underline>},
    {{"struck out", Form::Flag}, Of::Block, shapeFlag<&CFCShape::StrikeOut>},
    {{"text format", Form::Number}, Of::Block, shapeNumber<&CFCShape::Format>},
};

std::string typeName(CFCVariableData& variable) {
    std::string type;
    if (variable.IsFileType())
        if (CFCFileTypeNode* const file = variable.GetFileTypeNode())
            type = text(file->GetFileTypeName());
    if (type.empty())
        if (CFCDataTypeNode* const entry = variable.GetDataTypeNode())
            type = text(entry->GetType());
    return type.empty() ? text(variable.GetDataTypeS()) : type;
}

std::string optionsOf(CFCVariableData& variable) {
    std::string options;
    for (int index = 0; index < variable.GetOptionCount(); ++index)
        options += (index > 0 ? std::string(1, kListMark) : std::string()) + utf8(variable.GetOption(index));
    return options;
}

struct VariableRow {
    AttributeInfo info;
    std::string (*value)(CFCVariableData&);
};

template <auto Getter>
std::string variableText(CFCVariableData& variable) {
    return text((variable.*Getter)());
}
template <auto Getter>
std::string variableFlag(CFCVariableData& variable) {
    return flag((variable.*Getter)());
}

std::string valueOf(CFCVariableData& variable) {
    return withSlashes(variable.GetValue());
}

constexpr VariableRow kVariableRows[] = {
    {{"caption", Form::Text}, variableText<&CFCVariableData::GetCaption>},
    {{"type", Form::Text}, typeName},
    {{"array", Form::Flag}, variableFlag<&CFCVariableData::IsArray>},
    {{"status", Form::Text}, variableText<&CFCVariableData::GetStatusTypeS>},
    {{"scope", Form::Text}, variableText<&CFCVariableData::GetScopeTypeS>},
    {{"link", Form::Text}, variableText<&CFCVariableData::GetLinkPath>},
    {{"value", Form::Text}, valueOf},
    {{"template", Form::Flag}, variableFlag<&CFCVariableData::IsTemplateVariable>},
    {{"options", Form::List}, optionsOf},
    {{"entity type", Form::Text}, variableText<&CFCVariableData::GetEntityType>},
    {{"hidden", Form::Flag}, variableFlag<&CFCVariableData::IsHidden>},
    {{"deployed", Form::Flag}, variableFlag<&CFCVariableData::IsDeployed>},
    {{"displayed", Form::Flag}, variableFlag<&CFCVariableData::IsVisible>},
};

template <typename Rows>
auto infosOf(Rows const& rows) {
    std::array<AttributeInfo, std::extent_v<Rows>> infos{};
    std::transform(std::begin(rows), std::end(rows), infos.begin(), [](auto const& row) { return row.info; });
    return infos;
}

bool has(NodeRow const& row, NodeView const& view, bool isProcess) {
    switch (row.of) {
    case Of::All:
        return true;
    case Of::Process:
        return isProcess && view.process != nullptr;
    case Of::Ordinary:
        return !isProcess;
    case Of::Block:
        return !isProcess && view.block != nullptr;
    case Of::Task:
        return !isProcess && view.task != nullptr;
    }
    return false;
}

// Ends the name of the second and of each following thing of one name.
std::string mark(std::size_t occurrence) {
    return occurrence < 2 ? std::string() : "#" + std::to_string(occurrence);
}

// The facts of a workflow come behind the rows of any node.
Attribute factOf(std::size_t place, IFCNode& node, CFCBPMBlockData& task) {
    Attribute attribute{static_cast<std::uint8_t>(std::size(kNodeRows) + place), {}};
    for (std::string const& value : workflowFacts()[place].shown(node, task))
        attribute.value += (attribute.value.empty() ? std::string() : std::string(1, kListMark)) + value;
    return attribute;
}

Form formOf(WorkflowForm form) {
    switch (form) {
    case WorkflowForm::Number:
        return Form::Number;
    case WorkflowForm::Flag:
        return Form::Flag;
    case WorkflowForm::List:
        return Form::List;
    case WorkflowForm::Text:
        break;
    }
    return Form::Text;
}

class Snapshooter {
public:
    explicit Snapshooter(IFCNode& root) : m_isWorkflow(root.GetNodeType() == eShapeType_WorkflowProcess) {
        struct Open {
            IFCNode* node;
            std::size_t parent;
        };
        std::vector<Open> open{{&root, 0}};
        while (!open.empty()) {
            auto const [node, parent] = open.back();
            open.pop_back();
            std::size_t const index = m_snapshot.nodes.size();
            add(*node, parent);
            // The chain begins with the newest, which is the last of the file.
            std::size_t const behind = open.size();
            for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
                if (isKept(*child))
                    open.push_back({child, index});
            Names names(open.size() - behind);
            for (std::size_t place = open.size(); place-- > behind;)
                m_keys.emplace(open[place].node, keyOf(*open[place].node, names));
        }
    }

    Snapshot take() { return std::move(m_snapshot); }

private:
    struct Key {
        std::string key;
        std::string name;
    };

    // What every process has for itself, and what is to go.
    static bool isKept(IFCNode& node) {
        return node.GetNodeType() != eShapeType_Favourites && node.GetNodeType() != eShapeType_History &&
               !node.IsDeleted();
    }

    // How often each name of a list was met.
    class Names {
    public:
        explicit Names(std::size_t length) : m_isSingle(length < 2) {}
        std::size_t occurrence(std::string const& name) { return m_isSingle ? 1 : ++m_counts[name]; }

    private:
        bool m_isSingle;
        std::unordered_map<std::string, std::size_t> m_counts;
    };

    static Key keyOf(IFCNode& node, Names& names) {
        std::string const id = text(node.GetNodeId());
        std::string base = id;
        std::string shown = id;
        if (id.empty()) {
            std::string const caption = text(node.GetNodeCaption());
            shown = caption.empty() ? "(nameless)" : "\"" + caption + "\"";
            base = '\x1e' + caption;
        }
        std::size_t const occurrence = names.occurrence(base);
        return {base + (occurrence < 2 ? std::string() : '\x1f' + std::to_string(occurrence)),
                shown + mark(occurrence)};
    }

    void add(IFCNode& node, std::size_t parent) {
        std::size_t const index = m_snapshot.nodes.size();
        NodeFacts facts;
        facts.parent = parent;
        facts.code = node.GetNodeType();
        facts.isProcess = facts.code == eShapeType_Process || facts.code == eShapeType_FileNode ||
                          facts.code == eShapeType_WorkflowProcess;
        facts.id = text(node.GetNodeId());
        if (index > 0) {
            auto const key = m_keys.find(&node);
            facts.key = std::move(key->second.key);
            facts.name = std::move(key->second.name);
            m_keys.erase(key);
            NodeFacts& above = m_snapshot.nodes[parent];
            above.children.push_back(index);
            facts.path = above.path.empty() ? facts.name : above.path + "." + facts.name;
        }
        NodeView const view(node, m_isWorkflow);
        for (std::size_t row = 0; row < std::size(kNodeRows); ++row)
            if (has(kNodeRows[row], view, facts.isProcess))
                addValue(facts.attributes, row, kNodeRows[row].value(view));
        if (CFCBPMBlockData* const task = m_isWorkflow ? node.GetBPMBlockData() : nullptr)
            for (std::size_t fact = 0; fact < workflowFacts().size(); ++fact)
                if (Attribute attribute = factOf(fact, node, *task); !attribute.value.empty())
                    facts.attributes.push_back(std::move(attribute));
        addVariables(facts, node);
        addConnectors(facts, node);
        m_snapshot.nodes.push_back(std::move(facts));
    }

    static void addValue(std::vector<Attribute>& attributes, std::size_t row, std::string value) {
        if (!value.empty())
            attributes.push_back({static_cast<std::uint8_t>(row), std::move(value)});
    }

    static void addVariables(NodeFacts& facts, IFCNode& node) {
        CFCVariableList* const list = node.GetVariableList();
        if (list == nullptr)
            return;
        Names names(static_cast<std::size_t>(std::max(list->GetCount(), 0)));
        for (__FCPOSITION* place = list->GetHeadPosition(); place != nullptr;) {
            CFCVariableData* const data = list->GetNext(place);
            // A nameless one is not written.
            if (data == nullptr || *data->GetVariableName() == L'\0')
                continue;
            VariableFacts variable;
            variable.name = text(data->GetVariableName());
            std::size_t const occurrence = names.occurrence(variable.name);
            variable.key = variable.name + (occurrence < 2 ? std::string() : '\x1f' + std::to_string(occurrence));
            variable.name += mark(occurrence);
            variable.type = typeOf(*data);
            for (std::size_t row = 0; row < std::size(kVariableRows); ++row)
                addValue(variable.attributes, row, kVariableRows[row].value(*data));
            facts.variables.push_back(std::move(variable));
        }
    }

    static void addConnectors(NodeFacts& facts, IFCNode& node) {
        CFCConnectorList* const list = node.GetConnectorList();
        if (list == nullptr)
            return;
        for (__FCPOSITION* place = list->GetHeadPosition(); place != nullptr;) {
            CFCConnector* const connector = list->GetNext(place);
            if (connector == nullptr || !connector->IsValid() || connector->IsDeleted())
                continue;
            facts.connectors.push_back({text(connector->GetStartBlockName()), text(connector->GetEndBlockName()),
                                        connector->GetStartHandle(), connector->GetEndHandle(), routeOf(*connector)});
        }
    }

    // A point that stands twice in a row is written once.
    static std::string routeOf(CFCConnector& connector) {
        auto* const routed = dynamic_cast<RoutedConnector*>(&connector);
        std::string route;
        if (routed == nullptr)
            return route;
        _TgPointLStr const* last = nullptr;
        for (_TgPointLStr const& point : routed->route()) {
            if (last == nullptr || last->x != point.x || last->y != point.y)
                route += (last == nullptr ? "" : " ") + inches(point.x) + "," + inches(kPageHeight - point.y);
            last = &point;
        }
        return route;
    }

    bool m_isWorkflow;
    Snapshot m_snapshot;
    std::unordered_map<IFCNode*, Key> m_keys; // of nodes that are still to be added
};

} // namespace

std::span<AttributeInfo const> nodeAttributes() {
    static auto const infos = [] {
        std::vector<AttributeInfo> all;
        for (NodeRow const& row : kNodeRows) {
            all.push_back(row.info);
            all.back().isCommon = row.of == Of::All;
        }
        for (WorkflowFact const& fact : workflowFacts())
            all.push_back({fact.name, formOf(fact.form)});
        return all;
    }();
    return infos;
}

std::span<AttributeInfo const> variableAttributes() {
    static auto const infos = infosOf(kVariableRows);
    return infos;
}

Snapshot snapshotOf(IFCNode& root) {
    return Snapshooter(root).take();
}

} // namespace flowmere::host
