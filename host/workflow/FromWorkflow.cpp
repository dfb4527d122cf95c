#include "host/workflow/FromWorkflow.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/Places.h"
#include "host/document/Tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <string_view>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// In which order the ways out of a block take its grips: the first is the one that the flow takes by itself.
constexpr std::array<int, 8> kWaysOut = {EPortHandle_BottomMiddle, EPortHandle_LeftMiddle,  EPortHandle_RightMiddle,
                                         EPortHandle_BottomLeft,   EPortHandle_BottomRight, EPortHandle_TopLeft,
                                         EPortHandle_TopRight,     EPortHandle_TopMiddle};
// What a transition has that does not say where it leaves and arrives.
constexpr int kDefaultOut = 8;
constexpr int kDefaultIn = 4;

bool isEmpty(wchar_t const* text) {
    return text == nullptr || *text == L'\0';
}

template <typename List, typename Visit>
void forEachRecord(List* list, Visit const& visit) {
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        if (auto* const record = dynamic_cast<CFCActionData*>(list->GetNextNode(position)))
            visit(*record);
}

class Conversion {
public:
    Conversion(IFCNode& process, fs::path const& folder)
        : m_source(process), m_folder(folder), m_tree(process), m_made(m_tree.nodes().size()),
          m_hasWayIn(m_tree.nodes().size()), m_hasNoScript(m_tree.nodes().size()) {}

    NativeTree convert() {
        for (TreeNode const& entry : m_tree.nodes())
            for (CFCConnector* const way : entry.ways)
                if (std::size_t const end = m_tree.indexOf(static_cast<IFCNode*>(way->GetEndObject()));
                    end != Tree::kNone)
                    m_hasWayIn[end] = true;
        makeRoot();
        for (std::size_t index = 1; index < m_tree.nodes().size(); ++index)
            if (IFCNode* const parent = m_made[m_tree.nodes()[index].parent])
                makeBlock(index, *parent);
        for (std::size_t index = 0; index < m_tree.nodes().size(); ++index)
            if (m_made[index] != nullptr) {
                carryWays(index);
                carryVariables(index);
            }
        if (m_moved > 0)
            changed("",
                    fmt::format("{} of blocks and routes moved by hundredths of an inch: documents cut measures off",
                                counted(m_moved, "place")));
        return std::move(m_result);
    }

private:
    IFCNode* newNode(int kind) {
        IFCNode* const node = m_factory.Create(kind);
        if (node == nullptr)
            throw std::bad_alloc();
        return node;
    }

    void lost(std::string const& place, std::string const& text) {
        m_result.notes.push_back({Note::Kind::Lost, place, text});
    }
    void changed(std::string const& place, std::string const& text) {
        m_result.notes.push_back({Note::Kind::Changed, place, text});
    }

    void makeRoot() {
        auto* const root = dynamic_cast<CFCProcessNode*>(newNode(eShapeType_Process));
        m_result.process.reset(root);
        root->SetNodeCaption(m_source.GetNodeCaption());
        root->setSaveRestoreScript(L"SaveRestore");
        root->SetProjectType(EProjectType_BPT);
        if (EProjectType const type = m_source.GetProjectType();
            type != EProjectType_BPT && type != EProjectType_TASK && type != EProjectType_None) {
            root->SetProjectType(type);
        }
        root->showDiagram(hasPlaces());
        m_made[0] = root;
        if (CFCBPMBlockData* const record = m_source.GetBPMBlockData()) {
            if (!isEmpty(m_source.GetNodeDescription()))
                lost("", fmt::format("its description \"{}\": a process of a document has none",
                                     oneLine(utf8(m_source.GetNodeDescription()))));
            if (!isEmpty(record->GetIconFilePath()))
                lost("", fmt::format("its icon {}: a process of a document has none", utf8(record->GetIconFilePath())));
        }
    }

    bool hasPlaces() const {
        return std::any_of(m_tree.nodes().begin() + 1, m_tree.nodes().end(), [](TreeNode const& entry) {
            TuRect const* const place = entry.node->GetTuRect();
            return place != nullptr && place->right > place->left && place->bottom > place->top;
        });
    }

    bool isAdded(std::size_t index) const {
        TreeNode const& entry = m_tree.nodes()[index];
        std::wstring_view const description = entry.node->GetNodeDescription();
        if (entry.variableCount > 0 || !entry.children.empty())
            return false;
        switch (entry.node->GetNodeType()) {
        case eShapeType_StartState:
            return description == kAddedStart && entry.ways.size() == 1 && !m_hasWayIn[index];
        case eShapeType_EndState:
            return description == kAddedEnd && entry.ways.empty();
        default:
            return false;
        }
    }

    static bool namesApplication(IFCNode& node) {
        CFCBPMBlockData* const record = node.GetBPMBlockData();
        return record != nullptr && !isEmpty(record->GetApplication());
    }

    int kindOf(TreeNode const& entry) {
        int const kind = entry.node->GetNodeType();
        switch (kind) {
        case eShapeType_Task:
            return namesApplication(*entry.node) ? kind : eShapeType_Block;
        case eShapeType_DecisionTask:
            return namesApplication(*entry.node) ? kind : eShapeType_Decision;
        case eShapeType_StartState:
        case eShapeType_EndState:
            return eShapeType_Terminator;
        case eShapeType_BasicSubProcess:
            return eShapeType_SubProcess;
        case eShapeType_SubProcessLoop:
        case eShapeType_DecisionLoop:
        case eShapeType_SpawningLoop:
            lost(entry.path,
                 fmt::format("its kind, {}: it becomes a plain sub-process, which runs once", kindName(kind)));
            return eShapeType_SubProcess;
        case eShapeType_SuperState:
        case eShapeType_ApplicationGroup:
            changed(entry.path, fmt::format("the {} becomes a sub-process", kindName(kind)));
            return eShapeType_SubProcess;
        default:
            return kind;
        }
    }

    void makeBlock(std::size_t index, IFCNode& parent) {
        TreeNode const& entry = m_tree.nodes()[index];
        if (entry.block == nullptr || isAdded(index))
            return;
        CFCBlockNode& source = *entry.block;
        int const kind = kindOf(entry);
        auto* const node = dynamic_cast<CFCBlockNode*>(newNode(kind));
        node->SetNodeType(kind);
        parent.AppendChild(node, false);
        node->SetNodeId(source.GetNodeId());
        node->SetNodeCaption(source.GetNodeCaption());
        node->SetToolTip(source.GetNodeCaption());
        CFCBPMBlockData* const record = source.GetBPMBlockData();
        std::wstring_view const description = source.GetNodeDescription();
        node->CFCBlockData::SetDescription(description.empty() && record != nullptr ? record->GetTaskDescription()
                                                                                    : source.GetNodeDescription());
        static_cast<CFCShape&>(*node).operator=(static_cast<CFCShape const&>(source));
        // What is written without a font is read with this one.
        if (isEmpty(node->GetFontName()))
            node->SetFontName(L"Arial");
        node->SetImage(source.HasImage());
        node->SetRelativeImagePath(source.GetRelativeImagePath());
        settlePlace(*node);
        m_made[index] = node;
        ++m_result.blocks;
        findScript(entry, *node);
        if (record != nullptr) {
            carryApplication(*record, *node);
            tellRecord(*record, entry, kind);
        }
    }

    void settlePlace(CFCBlockNode& node) {
        TuRect const before = *node.CFCShape::GetTuRect();
        TuRect const place = settled(before);
        bool const isSame = place.left == before.left && place.top == before.top && place.right == before.right &&
                            place.bottom == before.bottom;
        m_moved += isSame ? 0 : 1;
        node.CFCShape::SetTuRect(place.left, place.top, place.right, place.bottom);
    }

    void findScript(TreeNode const& entry, CFCBlockNode& node) {
        std::vector<std::string> names{entry.id};
        for (std::size_t at = entry.parent; at != Tree::kNone && at != 0; at = m_tree.nodes()[at].parent)
            names.insert(names.begin(), m_tree.nodes()[at].id);
        fs::path file = m_folder;
        std::string name;
        for (std::string const& part : names) {
            file /= part;
            name += part + ".";
        }
        file = file / "scripts" / (entry.id + ".py");
        name += "scripts." + entry.id;
        std::error_code error;
        node.SetScriptType(EScriptType_PYTHON);
        if (!m_folder.empty() && !entry.id.empty() && fs::is_regular_file(file, error)) {
            node.SetScriptName(wide(name));
            ++m_result.scripts;
        } else {
            m_hasNoScript[m_tree.indexOf(entry.node)] = true;
            // As documents have it for a block that runs nothing.
            node.SetScriptName(node.GetNodeId());
            CFCBPMBlockData* const record = entry.node->GetBPMBlockData();
            if (record != nullptr && !isEmpty(record->GetModulePath()))
                lost(entry.path, fmt::format("its script {}: there is no file {}", utf8(record->GetModulePath()),
                                             file.lexically_relative(m_folder).string()));
        }
    }

    static void carryApplication(CFCBPMBlockData& from, CFCBlockNode& node) {
        if (CFCBPMBlockData* const to = node.GetBPMBlockData()) {
            to->SetApplication(from.GetApplication());
            to->SetDeployment(from.GetDeployment());
            to->SetExecutable(from.GetExecutable());
            to->SetTaskDescription(from.GetTaskDescription());
        }
    }

    // What of a workflow record documents do not hold, and a fresh export would not write anew.
    void tellRecord(CFCBPMBlockData& record, TreeNode const& entry, int kind) {
        std::vector<std::string> parts;
        auto const text = [&](char const* name, wchar_t const* value, wchar_t const* normal = L"") {
            if (!isEmpty(value) && std::wstring_view(value) != normal)
                parts.push_back(fmt::format("{} \"{}\"", name, oneLine(utf8(value))));
        };
        auto const flag = [&](char const* name, bool value) {
            if (value)
                parts.emplace_back(name);
        };
        auto const number = [&](char const* name, double value, double normal) {
            if (value != normal && value != 0.0)
                parts.push_back(fmt::format("{} {}", name, value));
        };
        auto const date = [&](char const* name, TuDate value) {
            if (!value.IsEmpty())
                parts.push_back(fmt::format("{} {}/{}/{}", name, value.getDay(), value.getMonth(), value.getYear()));
        };
        bool const isTask = !isEmpty(record.GetTaskName());
        text("user", record.GetUser());
        text("user role", record.GetUserRole());
        text("category", record.GetUserCategory());
        text("swimlane", record.GetSwimLane());
        text("task category", record.GetCatagory());
        text("project name", record.GetProjectName());
        text("requirement document", record.GetRequirementDoc());
        text("work instruction", record.GetWorkInstructions());
        text("priority", record.GetPriority(), L"normal");
        text("icon", record.GetIconFilePath());
        if (isTask && std::wstring_view(record.GetTaskName()) != entry.node->GetNodeId())
            text("task name", record.GetTaskName());
        if (record.GetAssociatedSubProcess() != nullptr &&
            std::wstring_view(record.GetAssociatedSubProcess()) != entry.node->GetNodeId())
            text("sub-process", record.GetAssociatedSubProcess());
        if (std::wstring_view const description = entry.node->GetNodeDescription();
            !description.empty() && record.GetTaskDescription() != description && kind != entry.node->GetNodeType())
            text("task description", record.GetTaskDescription());
        if (kind != entry.node->GetNodeType())
            text("application", record.GetApplication());
        flag("late indicator", record.IsLateIndicator());
        flag("critical path indicator", record.IsCriticalPathIndicator());
        flag("data availability", record.IsSetDataAvailability());
        flag("milestone", record.IsMilestone());
        flag("run on server", record.IsRunOnServer());
        flag("mail notification", record.HasEmailNotification());
        flag("overridden data", record.GetUserDataOverriden());
        number("application version", record.GetAppVersion(), 0);
        number("maximum of iterations", record.GetMaxIterations(), 0);
        number("effort", record.GetEffort(), 8.0);
        number("estimated effort", record.GetEstimatedEffort(), 8.0);
        // A missing one repeats the effort before it.
        if (record.GetActEffort() != record.GetEstimatedEffort())
            number("actual effort", record.GetActEffort(), 0);
        number("duration", record.GetDuration(), 1.0);
        number("cost", record.GetCost(), 0);
        number("progress", record.GetProgress(), 0);
        number("lateness", record.GetProjectLate(), 0);
        date("start", record.GetStartDate());
        date("end", record.GetEndDate());
        date("actual start", record.GetActStartDate());
        date("actual end", record.GetActEndDate());
        date("due date", record.GetDueDate());
        date("estimated ready date", record.GetEstimatedReadyDate());
        date("estimated end date", record.GetEstimatedEndDate());
        if (!parts.empty()) {
            std::string list;
            for (std::string const& part : parts)
                list += (list.empty() ? "" : ", ") + part;
            lost(entry.path, "of its task " + list + ": a block of a document has no place for it");
        }
        tellTransitions(record, entry);
        tellActions(record, entry);
    }

    // An export names transitions after both ends; other names are those by which scripts of the engine choose.
    void tellTransitions(CFCBPMBlockData& record, TreeNode const& entry) {
        CFCTransitionList* const list = record.GetTransitionList();
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
            CFCTransitionData* const transition = list->GetNext(position);
            if (transition == nullptr || isEmpty(transition->GetTransitionName()))
                continue;
            std::string const name = utf8(transition->GetTransitionName());
            std::string const target = utf8(transition->GetTransitionTo());
            if (name != entry.id + "." + target)
                lost(entry.path,
                     fmt::format("the name \"{}\" of its transition to {}: a connector of a document has none",
                                 oneLine(name), target));
        }
    }

    void tellActions(CFCBPMBlockData& record, TreeNode const& entry) {
        std::string const why = ": a block of a document has none";
        auto const action = [&](std::string const& what, CFCActionData& data) {
            std::string text = what;
            if (!isEmpty(data.GetActionName()))
                text += fmt::format(" \"{}\"", utf8(data.GetActionName()));
            if (!isEmpty(data.GetClassNameStr()))
                text += fmt::format(" of class {}", utf8(data.GetClassNameStr()));
            lost(entry.path, text + why);
        };
        bool const isOwnEvent = !isEmpty(record.GetModulePath());
        forEachRecord(record.GetEventList(), [&](CFCActionData& data) {
            if (!isOwnEvent || !isScriptEvent(data))
                action(fmt::format("its action for the event \"{}\",", utf8(data.GetActionType())), data);
        });
        forEachRecord(record.GetScriptEventList(),
                      [&](CFCActionData& data) { action("its script for an event,", data); });
        forEachRecord(record.GetActionExceptionList(),
                      [&](CFCActionData& data) { action("its action for an exception,", data); });
        forEachRecord(record.GetScriptExceptionList(),
                      [&](CFCActionData& data) { action("its script for an exception,", data); });
        forEachRecord(record.GetTimerList(), [&](CFCActionData& data) { action("its action of a timer,", data); });
        forEachRecord(record.GetReminderList(),
                      [&](CFCActionData& data) { action("its action of a reminder,", data); });
        if (!isEmpty(record.GetExceptionClass()))
            lost(entry.path, fmt::format("its exception handler for {}{}", utf8(record.GetExceptionClass()), why));
        if (!isEmpty(record.GetTimerName()) || !record.GetTimerDueDate().IsEmpty())
            lost(entry.path, fmt::format("its timer \"{}\"{}", utf8(record.GetTimerName()), why));
        if (record.HasReminder())
            lost(entry.path, "its reminder" + why);
        if (record.HasGui())
            lost(entry.path, "its form: a block of a document has none; the files stay in the folder");
    }

    // --- Connectors --------------------------------------------------------------------------------------------------

    void carryWays(std::size_t index) {
        TreeNode const& container = m_tree.nodes()[index];
        for (std::size_t const child : container.children)
            if (m_made[child] != nullptr)
                carryWaysOf(child, *m_made[index]);
    }

    void carryWaysOf(std::size_t index, IFCNode& container) {
        TreeNode const& entry = m_tree.nodes()[index];
        std::vector<std::pair<CFCConnector*, IFCNode*>> ways;
        // Made without a word on where they leave and arrive.
        bool isDefault = m_hasNoScript[index];
        bool isAnyLeft = false;
        for (CFCConnector* const way : entry.ways) {
            std::size_t const end = m_tree.indexOf(static_cast<IFCNode*>(way->GetEndObject()));
            if (end == Tree::kNone || m_made[end] == nullptr) {
                isAnyLeft = isAnyLeft || end == Tree::kNone;
                continue;
            }
            ways.emplace_back(way, m_made[end]);
            isDefault = isDefault && way->GetStartHandle() == kDefaultOut && way->GetEndHandle() == kDefaultIn;
        }
        if (isAnyLeft)
            lost(entry.path, "a connector from it: its target is not in the tree");
        if (isDefault && !ways.empty())
            changed(entry.path,
                    ways.size() == 1
                        ? "its connector leaves by grip 6 (bottom) from now on: the flow takes no other by itself"
                        : "its connectors leave by grips of their own from now on, the first by grip 6 (bottom): the "
                          "flow takes no other by itself");
        for (std::size_t number = 0; number < ways.size(); ++number) {
            auto const [way, end] = ways[number];
            int const out = isDefault ? wayOut(number) : way->GetStartHandle();
            int const in = isDefault ? static_cast<int>(EPortHandle_TopMiddle) : way->GetEndHandle();
            carryWay(*way, *m_made[index], out, *end, in, container);
        }
    }

    void carryWay(CFCConnector& way, IFCNode& start, int out, IFCNode& end, int in, IFCNode& container) {
        auto connector = std::make_unique<RoutedConnector>();
        connector->SetNodeType(eShapeType_Connector);
        connector->SetStartNode(out, dynamic_cast<CFCBlockNode*>(&start), L"");
        connector->SetEndNode(in, dynamic_cast<CFCBlockNode*>(&end), L"");
        connector->SetStarPortName(connector->GetStartHandleName());
        connector->SetEndPortName(connector->GetEndHandleName());
        bool isMoved = false;
        auto const add = [&](_TgPointLStr const& before) {
            _TgPointLStr point = settled(before);
            isMoved = isMoved || point.x != before.x || point.y != before.y;
            connector->AddPoint(&point);
        };
        if (_TgPointLStr* const first = way.GetStartPoint())
            add(*first);
        for (int index = 0; index < way.GetPointCount(); ++index)
            if (_TgPointLStr* const point = way.GetPointAt(index))
                add(*point);
        m_moved += isMoved ? 1 : 0;
        if (!isEmpty(way.GetCaption()))
            lost(fmt::format("{} -> {}", pathOf(start), utf8(end.GetNodeId())),
                 fmt::format("the label \"{}\" of the transition: a connector of a document has none",
                             oneLine(utf8(way.GetCaption()))));
        container.AddConnector(connector.release());
        ++m_result.connectors;
    }

    // --- Variables ---------------------------------------------------------------------------------------------------

    void carryVariables(std::size_t index) {
        CFCVariableList* const list = m_tree.nodes()[index].node->GetVariableList();
        if (list == nullptr)
            return;
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
            CFCVariableData* const source = list->GetNext(position);
            if (source == nullptr || isEmpty(source->GetVariableName()))
                continue;
            CFCVariableData* const made = m_made[index]->CreateNewVariable();
            if (made == nullptr)
                throw std::bad_alloc();
            CFCVariableData::Copy(source, made);
            made->SetType(source->GetType());
            ++m_result.variables;
            tellVariable(m_tree.variables()[m_tree.indexOf(source)]);
        }
    }

    void tellVariable(TreeVariable const& variable) {
        CFCVariableData& data = *variable.data;
        std::string const why = ": a variable of a document has no place for it";
        if (!isEmpty(data.GetNature()))
            lost(variable.path, fmt::format("its nature {}{}", utf8(data.GetNature()), why));
        if (!isEmpty(data.GetResolveEvent()))
            lost(variable.path, fmt::format("its event to resolve it at, {}{}", utf8(data.GetResolveEvent()), why));
        if (data.GetVariableID() != 0)
            lost(variable.path, fmt::format("its number {}{}", data.GetVariableID(), why));
        if (!data.IsEditable())
            lost(variable.path, "the mark that it cannot be edited" + why);
        if (!data.IsStoreDB())
            lost(variable.path, "the mark that it is not stored" + why);
        if (!data.IsRefrence())
            lost(variable.path, "the mark that it is no reference" + why);
    }

    IFCNode& m_source;
    fs::path const& m_folder;
    Tree m_tree;
    std::vector<IFCNode*> m_made; // by the index of their source; null for what is not carried
    std::vector<bool> m_hasWayIn;
    std::vector<bool> m_hasNoScript; // which could choose a grip
    std::size_t m_moved = 0;
    HostFactory m_factory;
    NativeTree m_result;
};

} // namespace

int wayOut(std::size_t number) {
    return kWaysOut[number % kWaysOut.size()];
}

NativeTree fromWorkflow(IFCNode& process, fs::path const& folder) {
    return Conversion(process, folder).convert();
}

} // namespace flowmere::host
