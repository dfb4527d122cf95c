#include "host/workflow/ToWorkflow.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Tree.h"
#include "host/workflow/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

namespace flowmere::host {

namespace {

constexpr wchar_t kActiveSetup[] = L"ActiveSetup";
constexpr std::size_t kRouteRoom = CFCTransitionData::kPointCount;

bool isEmpty(wchar_t const* text) {
    return text == nullptr || *text == L'\0';
}

// Kinds whose script goes out as an event.
bool hasEvents(int kind) {
    return kind == eShapeType_Task || kind == eShapeType_DecisionTask || isWorkflowSubProcess(kind);
}

// Kinds with a task element, which holds the workflow record.
bool hasTask(int kind) {
    return hasEvents(kind) || kind == eShapeType_SuperState || kind == eShapeType_Application;
}

// The words for priorities that the engine knows.
bool isPriority(std::wstring_view text) {
    constexpr std::wstring_view kWords[] = {L"highest", L"high", L"normal", L"low", L"lowest"};
    if (text.empty() || std::find(std::begin(kWords), std::end(kWords), text) != std::end(kWords))
        return true;
    std::size_t const sign = text.front() == L'-' ? 1 : 0;
    return text.size() > sign && text.size() < 10 &&
           std::all_of(text.begin() + static_cast<std::ptrdiff_t>(sign), text.end(),
                       [](wchar_t digit) { return digit >= L'0' && digit <= L'9'; });
}

template <typename List, typename Visit>
void forEachRecord(List* list, Visit const& visit) {
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        if (auto* const record = dynamic_cast<CFCActionData*>(list->GetNextNode(position)))
            visit(*record);
}

void copyAction(CFCActionData& from, CFCActionData& to) {
    to.SetActionName(from.GetActionName());
    to.SetClassName(from.GetClassNameStr());
    to.SetActionExpression(from.GetActionExpression());
    to.SetActionValue(from.GetActionValue());
    to.SetActionType(from.GetActionType());
    to.SetActionFunction(from.GetActionFunction());
}

template <typename List, typename Make>
void copyActions(List* from, List* to, Make const& make) {
    *to = List(); // the records that it holds are those of the source
    forEachRecord(from, [&](CFCActionData& action) {
        if (CFCActionData* const copy = make())
            copyAction(action, *copy);
    });
}

// Writers make this event of the module path by themselves, and a little shorter.
void dropScriptEvent(CFCBPMBlockData& record) {
    CFCEventList* const list = record.GetEventList();
    __FCPOSITION* position = list->GetHeadPosition();
    auto* const event = position != nullptr ? dynamic_cast<CFCActionData*>(list->GetNextNode(position)) : nullptr;
    if (event == nullptr || position != nullptr || isEmpty(record.GetModulePath()) || !isScriptEvent(*event))
        return;
    list->DeleteAll();
    record.SetEventType(L"");
}

// The whole workflow record; the copy has records of actions of its own.
void copyRecord(CFCBPMBlockData& from, CFCBPMBlockData& to) {
    CFCBPMBlockData::Copy(&from, &to, 0);
    copyActions(from.GetActionExceptionList(), to.GetActionExceptionList(),
                [&] { return to.CreateNewActionException(); });
    copyActions(from.GetScriptExceptionList(), to.GetScriptExceptionList(),
                [&] { return to.CreateNewScriptException(); });
    copyActions(from.GetEventList(), to.GetEventList(), [&] { return to.CreateNewEventAction(); });
    copyActions(from.GetTimerList(), to.GetTimerList(), [&] { return to.CreateNewTimerAction(); });
    copyActions(from.GetReminderList(), to.GetReminderList(), [&] { return to.CreateNewReminderData(); });
    dropScriptEvent(to);
    CFCEventList* const scripts = to.GetScriptEventList();
    *scripts = CFCEventList();
    forEachRecord(from.GetScriptEventList(), [&](CFCActionData& action) {
        auto copy = std::make_unique<CFCEventActionData>();
        copyAction(action, *copy);
        scripts->AddTail(copy.release());
    });
    to.SetExecutable(from.GetExecutable());
    to.SetCommandLineArg(from.GetCommandLineArg());
    to.SetMaxIterations(from.GetMaxIterations());
    to.SetUserCSSScriptFileName(from.GetUserCSSScriptFileName());
    to.SetUserCSSScriptCode(from.GetUserCSSScriptCode());
    to.SetAssociatedSubProcess(from.GetAssociatedSubProcess());
    to.SetUserRole(from.GetUserRole());
    to.SetUserCategory(from.GetUserCategory());
    to.SetEmailNotification(from.HasEmailNotification());
    to.SetUserDataOverriden(from.GetUserDataOverriden());
}

class Conversion {
public:
    Conversion(CFCProcessNode& process, std::function<ScriptState(CFCBlockNode&)> const& scriptState, bool isSchedule)
        : m_source(process), m_isSchedule(isSchedule), m_tree(process), m_scriptState(scriptState),
          m_made(m_tree.nodes().size()), m_isRenamed(m_tree.nodes().size()), m_hasWayIn(m_tree.nodes().size()) {}

    WorkflowTree convert() {
        m_isWorkflow = isWorkflow();
        for (TreeNode const& entry : m_tree.nodes())
            for (CFCConnector* const way : entry.ways)
                if (std::size_t const end = m_tree.indexOf(static_cast<IFCNode*>(way->GetEndObject())); end != kNone)
                    m_hasWayIn[end] = true;
        makeRoot();
        for (std::size_t index = 0; index < m_tree.nodes().size(); ++index)
            if (m_made[index] != nullptr)
                makeLevel(index);
        for (std::size_t index = 0; index < m_tree.nodes().size(); ++index)
            if (m_made[index] != nullptr)
                carryVariables(index);
        tellStates();
        return std::move(m_result);
    }

private:
    static constexpr std::size_t kNone = Tree::kNone;

    // How the children of a container come out.
    struct Child {
        std::size_t index = 0;
        int kind = 0;
        TuString name;
    };
    struct Level {
        std::vector<Child> children;
        LevelNames names;
        std::size_t first = kNone; // the block in which the flow starts
    };

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

    bool isWorkflow() const {
        if (m_isSchedule)
            return false;
        if (m_source.GetNodeType() == eShapeType_WorkflowProcess)
            return true;
        std::vector<TreeNode> const& nodes = m_tree.nodes();
        return nodes.size() > 1 && std::all_of(nodes.begin() + 1, nodes.end(), [](TreeNode const& entry) {
                   int const kind = entry.node->GetNodeType();
                   return isWorkflowKind(kind) && kind != eShapeType_WorkflowProcess;
               });
    }

    void makeRoot() {
        auto* const root = dynamic_cast<CFCBPMProcessNode*>(newNode(eShapeType_WorkflowProcess));
        m_result.process.reset(root);
        root->SetNodeCaption(m_source.GetNodeCaption());
        root->SetNodeId(m_source.GetNodeId());
        root->SetProjectType(EProjectType_TASK);
        if (CFCBPMBlockData* const record = m_source.GetBPMBlockData()) {
            copyRecord(*record, *root);
            root->SetNodeDescription(m_source.GetNodeDescription());
            if (m_source.GetProjectType() == EProjectType_MSP || m_source.GetProjectType() == EProjectType_APPLICATION)
                root->SetProjectType(m_source.GetProjectType());
        }
        root->SetTaskName(root->GetNodeCaption());
        // Its name says it already, and a label of a process is read by nobody.
        root->SetTaskCaption(L"");
        m_made[0] = root;
        tellProcess();
    }

    void tellProcess() {
        CFCProcessNode& process = m_source;
        EProjectType const type = process.GetProjectType();
        std::string const why = ": a workflow has no place for it";
        if (type != EProjectType_BPT && type != EProjectType_TASK && m_result.process->GetProjectType() != type)
            lost("", fmt::format("the project type {}: a workflow is of type TASK",
                                 utf8(CFCEnumTranslator::EnumToString(type))));
        auto const text = [&](std::string const& what, wchar_t const* value, wchar_t const* normal = L"") {
            if (!isEmpty(value) && std::wstring_view(value) != normal)
                lost("", fmt::format("{} \"{}\"{}", what, oneLine(utf8(value)), why));
        };
        auto const flag = [&](std::string const& what, bool value) {
            if (value)
                lost("", what + why);
        };
        text("the project folder", process.getProjectDirectory());
        text("the script that saves and restores,", process.getSaveRestoreScript(), L"SaveRestore");
        text("the flow type", process.getProcessFlowType());
        text("the COM interface", process.GetCOMInteface());
        text("the COM command", process.GetCOMCommand());
        text("the method to execute,", process.GetExecuteMethod());
        flag("the mark of a random execution", process.getRandomExecutionStatus());
        flag("the mark to run when loaded", process.getRunOnLoadStatus());
        flag("the dependency on the model", process.getModelDependency());
        flag("the mark that variables are saved with the model", process.IsVariablesSerializableToTNB());
        if (process.GetNodeProcessID() != 0)
            lost("", fmt::format("the process number {}{}", process.GetNodeProcessID(), why));
    }

    // Whether the children of a node stand in a file of their own, with a flow of their own.
    bool isOwnLevel(IFCNode& made) const {
        return made.GetNodeType() == eShapeType_WorkflowProcess || isWorkflowSubProcess(made.GetNodeType());
    }

    void makeLevel(std::size_t index) {
        TreeNode const& container = m_tree.nodes()[index];
        IFCNode& made = *m_made[index];
        bool const isOwn = isOwnLevel(made);
        if (isWorkflowSubProcess(made.GetNodeType()))
            ++m_result.levels;
        Level level = planLevel(container, isOwn);
        bool const hasStart = std::any_of(level.children.begin(), level.children.end(),
                                          [](Child const& child) { return child.kind == eShapeType_StartState; });
        bool const addsStart = isOwn && !m_isWorkflow && !hasStart;
        CFCBPMTaskNode* start = nullptr;
        if (addsStart) {
            start = addState(made, level, eShapeType_StartState);
            changed(pathOf(*start), "added: the engine starts each level in a start state");
        }
        for (Child const& child : level.children)
            makeBlock(child, made);
        carryWays(container, made, level);
        addEnds(container, made, level, start);
    }

    Level planLevel(TreeNode const& container, bool isOwn) {
        Level level;
        std::vector<std::size_t> blocks;
        for (std::size_t const child : container.children) {
            TreeNode const& entry = m_tree.nodes()[child];
            if (entry.block != nullptr)
                blocks.push_back(child);
            else if (entry.node->GetNodeType() != eShapeType_Favourites &&
                     entry.node->GetNodeType() != eShapeType_History)
                lost(placeOf(entry),
                     fmt::format("the {}, with {} in it: a workflow holds blocks alone",
                                 kindName(entry.node->GetNodeType()), counted(entry.last - child, "node")));
        }
        if (CFCBlockNode* const first = m_tree.firstBlock(container))
            level.first = m_tree.indexOf(static_cast<IFCNode*>(first));
        // Nobody has joined its tasks: the first one comes first.
        if (m_isSchedule && !blocks.empty() && !m_tree.hasClearStart(container))
            level.first = blocks.front();
        // The engine goes by the start state, wherever a document would begin.
        auto const start = std::find_if(blocks.begin(), blocks.end(), [&](std::size_t child) {
            return m_tree.nodes()[child].node->GetNodeType() == eShapeType_StartState && !m_hasWayIn[child];
        });
        if (start != blocks.end())
            level.first = *start;
        bool hasStart = false;
        for (std::size_t const child : blocks) {
            Child plan;
            plan.index = child;
            plan.kind = kindOf(child, level, isOwn, hasStart);
            hasStart = hasStart || plan.kind == eShapeType_StartState;
            level.children.push_back(plan);
        }
        // Those that can keep their names come first.
        for (Child& child : level.children) {
            TuString const wanted(m_tree.nodes()[child.index].node->GetNodeId());
            if (safeName(wanted) == wanted && !wanted.IsEmpty() && level.names.take(wanted))
                child.name = wanted;
        }
        for (Child& child : level.children)
            if (child.name.IsEmpty())
                rename(child, level);
        return level;
    }

    // Path of a node in the document, with its caption where it has no identifier.
    std::string placeOf(TreeNode const& entry) const {
        if (!entry.id.empty() || entry.parent == kNone)
            return entry.path;
        return entry.path + (entry.path.empty() ? "\"" : ".\"") + utf8(entry.node->GetNodeCaption()) + "\"";
    }

    void rename(Child& child, Level& level) {
        TreeNode const& entry = m_tree.nodes()[child.index];
        TuString wanted = safeName(TuString(entry.node->GetNodeId()));
        if (entry.id.empty())
            wanted = safeName(TuString(entry.node->GetNodeCaption()));
        if (wanted.IsEmpty())
            wanted = wide(kindName(entry.node->GetNodeType()));
        child.name = level.names.takeUnique(wanted);
        m_isRenamed[child.index] = true;
        std::string const why = entry.id.empty() ? "the engine knows nodes by their names"
                                : wanted != child.name || safeName(TuString(entry.node->GetNodeId())) == child.name
                                    ? "names are unique in their level, whatever their case"
                                    : "names become folders and parts of paths";
        changed(placeOf(entry), fmt::format("is called \"{}\" from now on: {}", utf8(child.name), why));
    }

    int kindOf(std::size_t index, Level const& level, bool isOwn, bool hasStart) {
        TreeNode const& entry = m_tree.nodes()[index];
        std::string const place = placeOf(entry);
        int const kind = entry.node->GetNodeType();
        switch (kind) {
        case eShapeType_Block:
        case eShapeType_RoundBlock:
            return eShapeType_Task;
        case eShapeType_Decision:
            return eShapeType_DecisionTask;
        case eShapeType_SubProcess:
        case eShapeType_SubProcessAlternate:
            return eShapeType_BasicSubProcess;
        case eShapeType_Process:
        case eShapeType_WorkflowProcess:
            changed(place, "becomes a basic sub-process: a workflow has one process");
            return eShapeType_BasicSubProcess;
        case eShapeType_Terminator:
            return kindOfTerminator(index, level, isOwn, hasStart);
        case eShapeType_StartState:
            if (m_isWorkflow || !isOwn || (!hasStart && !m_hasWayIn[index] && !hasScript(entry)))
                return kind;
            changed(place, m_hasWayIn[index] ? "becomes a task: nothing may lead into a start state"
                           : hasStart        ? "becomes a task: a level has one start state"
                                             : "becomes a task: a start state runs no script");
            return eShapeType_Task;
        case eShapeType_EndState:
            if (m_isWorkflow || (entry.ways.empty() && !hasScript(entry)))
                return kind;
            changed(place, !entry.ways.empty() ? "becomes a task: nothing may lead out of an end state"
                                               : "becomes a task: an end state runs no script");
            return eShapeType_Task;
        case eShapeType_Task:
        case eShapeType_DecisionTask:
        case eShapeType_Fork:
        case eShapeType_Join:
        case eShapeType_SuperState:
        case eShapeType_SubProcessLoop:
        case eShapeType_DecisionLoop:
        case eShapeType_SpawningLoop:
        case eShapeType_BasicSubProcess:
        case eShapeType_Application:
            return kind;
        case eShapeType_ApplicationGroup:
            lost(place, "its kind, application: a group of this kind has no layout, and becomes a super-state");
            return eShapeType_SuperState;
        default:
            lost(place, fmt::format("its kind, {}: it becomes a task", kindName(kind)));
            return eShapeType_Task;
        }
    }

    bool hasScript(TreeNode const& entry) const { return m_scriptState(*entry.block) != ScriptState::None; }

    int kindOfTerminator(std::size_t index, Level const& level, bool isOwn, bool hasStart) {
        TreeNode const& entry = m_tree.nodes()[index];
        std::string const place = placeOf(entry);
        auto const task = [&](std::string const& why) {
            lost(place, "its shape, that of a terminator: it becomes a task, for " + why);
            return static_cast<int>(eShapeType_Task);
        };
        if (hasScript(entry))
            return task("start and end states run no script");
        if (!entry.children.empty())
            return task("start and end states hold no blocks");
        if (m_hasWayIn[index] && entry.ways.empty())
            return eShapeType_EndState;
        if (m_hasWayIn[index])
            return task("the flow goes through it");
        if (isOwn && !hasStart && index == level.first)
            return eShapeType_StartState;
        return task(isOwn ? "the flow of its level starts elsewhere" : "a group has no start state");
    }

    void makeBlock(Child const& child, IFCNode& parent) {
        TreeNode const& entry = m_tree.nodes()[child.index];
        CFCBlockNode& source = *entry.block;
        auto* const node = dynamic_cast<CFCBPMTaskNode*>(newNode(child.kind));
        node->SetNodeType(child.kind);
        parent.AppendChild(node, false);
        node->SetNodeCaption(source.GetNodeCaption());
        if (CFCBPMBlockData* const record = source.GetBPMBlockData()) {
            copyRecord(*record, *node);
            node->SetHierarchyPath(dynamic_cast<CFCBPMTaskNode*>(&source) != nullptr
                                       ? dynamic_cast<CFCBPMTaskNode&>(source).GetHierarchyPath()
                                       : L"");
        }
        node->SetNodeId(child.name);
        node->SetTaskCaption(source.GetNodeCaption());
        std::wstring_view const description(source.CFCBlockData::GetDescription());
        node->SetNodeDescription(description.empty() ? source.GetNodeDescription()
                                                     : source.CFCBlockData::GetDescription());
        carryLook(source, *node);
        ++m_result.nodes;
        m_made[child.index] = node;
        m_result.blocks.emplace_back(&source, node);
        tellBlock(entry, *node);
    }

    static void carryLook(CFCBlockNode& from, CFCBPMTaskNode& to) {
        static_cast<CFCShape&>(to).operator=(static_cast<CFCShape const&>(from));
        to.SetImage(from.HasImage());
        to.SetRelativeImagePath(from.GetRelativeImagePath());
    }

    void tellBlock(TreeNode const& entry, CFCBPMTaskNode& node) {
        CFCBlockNode& block = *entry.block;
        std::string const place = placeOf(entry);
        std::string const why = ": a workflow has no place for it";
        auto const text = [&](std::string const& what, wchar_t const* value) {
            if (!isEmpty(value))
                lost(place, fmt::format("{} \"{}\"{}", what, oneLine(utf8(value)), why));
        };
        auto const flag = [&](std::string const& what, bool value) {
            if (value)
                lost(place, what + why);
        };
        int const kind = node.GetNodeType();
        if (block.GetNodeType() == eShapeType_RoundBlock)
            lost(place, "its round corners: it becomes a task");
        if (kind == eShapeType_Application)
            lost(place, "its kind, application: it is read back as a task");
        if (std::wstring_view(block.GetToolTip()) != block.GetNodeCaption())
            text("its tool tip", block.GetToolTip());
        text("its help file", block.GetHelpFile());
        flag("its mark to stop", block.GetStopFlag());
        flag("its mark to be skipped", block.GetSkipFlag());
        flag("its mark to be undone", block.GetUndoFlag());
        flag("its mark not to run", !block.GetShouldRun());
        if (block.GetReferenceBlock() != ERefBlock_None)
            lost(place, fmt::format("its reference {}{}", static_cast<int>(block.GetReferenceBlock()), why));
        CFCPortList fresh;
        for (int port = 0; port < fresh.GetSize(); ++port)
            if (TuString const name(block.GetPortList()->GetPort(port)->GetPortName());
                !name.IsEmpty() && name.Compare(fresh.GetPort(port)->GetPortName()) != 0)
                text("the port name", name);
        if (block.GetNodeProcessID() != 0)
            lost(place, fmt::format("its process number {}{}", block.GetNodeProcessID(), why));
        if (!isEmpty(block.GetItemFilePath()))
            lost(place, fmt::format("its link to the file {}: what is read from there is carried in its place",
                                    oneLine(utf8(block.GetItemFilePath()))));
        if (CFCNodeList* const documents = block.GetScriptList(); documents->GetHeadPosition() != nullptr)
            lost(place, "its documents" + why);
        tellRecord(block, node, place);
        tellScript(block, kind, place);
        EExecutionStateType const state = block.GetExecutionStateType();
        m_statesLost += state != EExecutionStateType_ESNone && !isWorkflowSubProcess(block.GetNodeType()) ? 1 : 0;
    }

    void tellRecord(CFCBlockNode& block, CFCBPMTaskNode& node, std::string const& place) {
        if (!isPriority(node.GetPriority())) {
            changed(place, fmt::format("has priority normal: the engine refuses \"{}\"", utf8(node.GetPriority())));
            node.SetPriority(L"normal");
        }
        CFCBPMBlockData* const record = block.GetBPMBlockData();
        if (record == nullptr)
            return;
        std::string const why = ": a workflow folder has no place for it";
        if (!isEmpty(record->GetDeployment()))
            lost(place, fmt::format("its deployment \"{}\"{}", utf8(record->GetDeployment()), why));
        if (!isEmpty(record->GetExecutable()))
            lost(place, fmt::format("its executable \"{}\"{}", utf8(record->GetExecutable()), why));
        if (auto* const task = dynamic_cast<CFCBPMTaskNode*>(&block);
            task != nullptr && !isEmpty(task->GetFailedReason()))
            lost(place, "the reason of its failure" + why);
        int const kind = node.GetNodeType();
        if (!isEmpty(record->GetApplication()) && !hasTask(kind))
            lost(place, fmt::format("its application \"{}\": a {} has no task", utf8(record->GetApplication()),
                                    kindName(kind)));
        std::string const refused = "which the engine refuses";
        forEachRecord(node.GetScriptEventList(), [&](CFCActionData& action) {
            lost(place, fmt::format("the type of the event that runs its script \"{}\": it goes out without, {}",
                                    utf8(action.GetActionName()), refused));
        });
        forEachRecord(node.GetEventList(), [&](CFCActionData& action) {
            if (isEmpty(action.GetActionType()))
                lost(place, fmt::format("the type of the event that runs its action \"{}\": it has none, {}",
                                        utf8(action.GetActionName()), refused));
        });
    }

    void tellScript(CFCBlockNode& block, int kind, std::string const& place) {
        std::string const script = utf8(block.GetScriptName());
        if (block.GetScriptType() != EScriptType_PYTHON) {
            lost(place, fmt::format("its script \"{}\" of type {}: the engine's side runs Python", script,
                                    utf8(block.GetScriptTypeS())));
            return;
        }
        switch (m_scriptState(block)) {
        case ScriptState::None:
            return;
        case ScriptState::Missing:
            if (block.GetBPMBlockData() == nullptr || (!script.empty() && script != utf8(block.GetNodeId())))
                lost(place, script.empty() ? "its script: it names none"
                                           : fmt::format("its script {}: there is no such file", script));
            return;
        case ScriptState::Found:
            if (!hasEvents(kind))
                lost(place, fmt::format("its script {}: a {} runs none", script, kindName(kind)));
            return;
        }
    }

    void tellStates() {
        if (m_statesLost > 0)
            lost("", fmt::format("the state of {} in the last run: a workflow folder has no place for it",
                                 counted(m_statesLost, "block")));
    }

    // --- Connectors --------------------------------------------------------------------------------------------------

    void carryWays(TreeNode const& container, IFCNode& made, Level const& level) {
        for (Child const& child : level.children)
            for (CFCConnector* const way : m_tree.nodes()[child.index].ways) {
                std::size_t const end = m_tree.indexOf(static_cast<IFCNode*>(way->GetEndObject()));
                bool const isHere = end != kNone && m_made[end] != nullptr && m_made[end]->GetParentNode() == &made;
                if (isHere)
                    carryWay(*way, child.index, end, made);
                else
                    lost(placeOf(container), fmt::format("the connector from {} to {}: it leaves its level",
                                                         utf8(way->GetStartBlockName()), utf8(way->GetEndBlockName())));
            }
    }

    CFCConnector* connect(IFCNode& start, int startGrip, IFCNode& end, int endGrip, IFCNode& container) {
        auto connector = std::make_unique<WorkflowConnector>();
        connector->SetNodeType(eShapeType_Connector);
        connector->SetConnectorType(EConnectorType_Workflow);
        connector->SetStartNode(startGrip, dynamic_cast<CFCBlockNode*>(&start), L"");
        connector->SetEndNode(endGrip, dynamic_cast<CFCBlockNode*>(&end), L"");
        CFCConnector* const added = connector.release();
        container.AddConnector(added);
        ++m_result.transitions;
        return added;
    }

    void carryWay(CFCConnector& way, std::size_t start, std::size_t end, IFCNode& container) {
        std::string const place =
            fmt::format("{} -> {}", placeOf(m_tree.nodes()[start]), utf8(m_made[end]->GetNodeId()));
        CFCConnector& made =
            *connect(*m_made[start], way.GetStartHandle(), *m_made[end], way.GetEndHandle(), container);
        made.SetCaption(way.GetCaption());
        std::vector<_TgPointLStr> route;
        auto const add = [&](_TgPointLStr point) {
            if (route.empty() || route.back().x != point.x || route.back().y != point.y)
                route.push_back(point);
        };
        if (_TgPointLStr* const first = way.GetStartPoint())
            add(*first);
        for (int index = 0; index < way.GetPointCount(); ++index)
            if (_TgPointLStr* const point = way.GetPointAt(index))
                add(*point);
        if (route.size() > kRouteRoom) {
            lost(place, fmt::format("{} of the {} of its route: a transition keeps {}", route.size() - kRouteRoom,
                                    counted(route.size(), "point"), kRouteRoom));
            route.erase(route.begin() + kRouteRoom - 1, route.end() - 1);
        }
        bool isMoved = false;
        for (_TgPointLStr& point : route) {
            isMoved = isMoved || point.x == 0;
            point.x = point.x == 0 ? 1 : point.x;
            made.AddPoint(point.x, point.y);
        }
        if (isMoved)
            changed(place, "points of its route at x 0 move by a hundredth of an inch: x 0 would end the route");
    }

    // --- States that are added ---------------------------------------------------------------------------------------

    CFCBPMTaskNode* addState(IFCNode& container, Level& level, int kind) {
        bool const isStart = kind == eShapeType_StartState;
        auto* const node = dynamic_cast<CFCBPMTaskNode*>(newNode(kind));
        container.AppendChild(node, false);
        node->SetNodeCaption(isStart ? L"Start" : L"End");
        node->SetNodeId(level.names.takeUnique(TuString(isStart ? L"Start" : L"End")));
        node->SetTaskCaption(node->GetNodeCaption());
        node->SetNodeDescription(isStart ? kAddedStart : kAddedEnd);
        node->SetDrawBorder(true);
        node->SetFontName(L"Arial");
        node->SetFontSize(10);
        ++m_result.nodes;
        return node;
    }

    // Above (or below) a block, as a smaller box in line with its middle.
    static void placeState(CFCBPMTaskNode& state, TuRect const* block, int distance) {
        constexpr int kHalfWidth = 50;
        constexpr int kHeight = 50;
        if (block == nullptr)
            return;
        int const middle = block->left + (block->right - block->left) / 2;
        int const top = distance < 0 ? block->top + distance - kHeight : block->bottom + distance;
        static_cast<IFCNode&>(state).SetTuRect(middle - kHalfWidth, top, middle + kHalfWidth, top + kHeight);
    }

    // The blocks to which connectors lead from this one, itself included.
    std::unordered_set<std::size_t> reachedFrom(std::size_t first) const {
        std::unordered_set<std::size_t> reached;
        std::vector<std::size_t> open{first};
        while (!open.empty()) {
            std::size_t const index = open.back();
            open.pop_back();
            if (index == kNone || !reached.insert(index).second)
                continue;
            for (CFCConnector* const way : m_tree.nodes()[index].ways)
                open.push_back(m_tree.indexOf(static_cast<IFCNode*>(way->GetEndObject())));
        }
        return reached;
    }

    void addEnds(TreeNode const& container, IFCNode& made, Level& level, CFCBPMTaskNode* start) {
        constexpr int kDistance = 50;
        if (!isOwnLevel(made) || m_isWorkflow)
            return;
        IFCNode* const first = level.first != kNone ? m_made[level.first] : nullptr;
        // The blocks that the flow reaches and does not leave.
        std::vector<IFCNode*> finals;
        std::unordered_set<std::size_t> const reached = reachedFrom(level.first);
        for (Child const& child : level.children) {
            TreeNode const& entry = m_tree.nodes()[child.index];
            if (entry.ways.empty() && reached.contains(child.index) && child.kind != eShapeType_EndState)
                finals.push_back(entry.node);
        }
        CFCBPMTaskNode* end = nullptr;
        if (!finals.empty() || (start != nullptr && first == nullptr)) {
            end = addState(made, level, eShapeType_EndState);
            changed(pathOf(*end), "added: the flow of a level ends in an end state");
        }
        if (start != nullptr) {
            placeState(*start, first != nullptr ? first->GetTuRect() : nullptr, -kDistance);
            connect(*start, EPortHandle_BottomMiddle, first != nullptr ? *first : *end, EPortHandle_TopMiddle, made);
        }
        if (end == nullptr)
            return;
        TuRect* lowest = nullptr;
        for (std::size_t const child : container.children)
            if (m_made[child] != nullptr)
                if (TuRect* const place = m_made[child]->GetTuRect();
                    lowest == nullptr || place->bottom > lowest->bottom)
                    lowest = place;
        placeState(*end, lowest, kDistance);
        for (IFCNode* const block : finals)
            connect(*m_made[m_tree.indexOf(block)], EPortHandle_BottomMiddle, *end, EPortHandle_TopMiddle, made);
    }

    // --- Variables ---------------------------------------------------------------------------------------------------

    void carryVariables(std::size_t index) {
        TreeNode const& entry = m_tree.nodes()[index];
        bool const isRoot = index == 0;
        CFCVariableList* const list = entry.node->GetVariableList();
        if (list == nullptr)
            return;
        int nameless = 0;
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
            CFCVariableData* const source = list->GetNext(position);
            if (source == nullptr)
                continue;
            std::size_t const number = m_tree.indexOf(source);
            if (number == kNone)
                ++nameless;
            else if (!isRoot && std::wstring_view(source->GetVariableName()) == kActiveSetup)
                lost(m_tree.variables()[number].path, "a variable of this name is not carried");
            else
                carryVariable(m_tree.variables()[number], *m_made[index], isRoot);
        }
        if (nameless > 0)
            lost(placeOf(entry), fmt::format("{} without a name: nothing can reach what has none",
                                             counted(static_cast<std::size_t>(nameless), "variable")));
    }

    void carryVariable(TreeVariable const& variable, IFCNode& owner, bool isRoot) {
        CFCVariableData& source = *variable.data;
        CFCVariableData* const made = owner.CreateNewVariable();
        if (made == nullptr)
            throw std::bad_alloc();
        CFCVariableData::Copy(&source, made);
        made->SetType(source.GetType());
        made->SetResolveEvent(source.GetResolveEvent());
        made->SetVariableID(source.GetVariableID());
        made->SetBPMVariable(true);
        ++m_result.variables;
        tellVariable(variable, isRoot);
        if (variable.linkPath.empty())
            return;
        if (isRoot) {
            made->SetLinkPath(L"");
            made->SetValue(wide(m_tree.valueOf(variable)));
            return;
        }
        if (variable.target == Tree::kNone)
            return;
        TreeVariable const& target = m_tree.variables()[variable.target];
        if (m_made[target.owner] == nullptr) {
            made->SetLinkPath(L"");
            made->SetValue(wide(m_tree.valueOf(variable)));
            lost(variable.path, fmt::format("its link to {}: that is not carried; the value is", target.path));
            return;
        }
        bool isRenamed = false;
        for (std::size_t at = target.owner; at != kNone; at = m_tree.nodes()[at].parent)
            isRenamed = isRenamed || m_isRenamed[at];
        if (isRenamed)
            made->SetLinkPath(TuString(m_made[target.owner]->GetNodePath()) + L"." + target.data->GetVariableName());
    }

    void tellVariable(TreeVariable const& variable, bool isRoot) {
        CFCVariableData& data = *variable.data;
        std::string const why = ": a workflow has no place for it";
        auto const flag = [&](std::string const& what, bool value) {
            if (value)
                lost(variable.path, what + why);
        };
        if (isRoot && !variable.linkPath.empty())
            lost(variable.path, fmt::format("its link to {}: variables of the process go out without; the value is "
                                            "carried",
                                            variable.linkPath));
        if (isRoot && data.GetScopeType() != EScopeType_Local && !data.IsTemplateVariable())
            lost(variable.path,
                 fmt::format("its scope {}: variables of the process go out as Local", utf8(data.GetScopeTypeS())));
        flag("the mark of a template variable", data.IsTemplateVariable());
        if (int const options = data.GetOptionCount(); options > 0)
            flag(fmt::format("its {}", counted(static_cast<std::size_t>(options), "choice")), true);
        flag("the mark of a hidden variable", data.IsHidden());
        flag("the mark of a deployed variable", data.IsDeployed());
        flag(fmt::format("its entity type \"{}\"", utf8(data.GetEntityType())), !isEmpty(data.GetEntityType()));
        flag("its group", data.IsGroup());
    }

    CFCProcessNode& m_source;
    bool m_isSchedule; // whose tasks are those of a workflow, and which knows neither start nor end
    Tree m_tree;
    std::function<ScriptState(CFCBlockNode&)> const& m_scriptState;
    std::vector<IFCNode*> m_made; // by the index of their source; null for what is not carried
    std::vector<bool> m_isRenamed;
    std::vector<bool> m_hasWayIn;
    bool m_isWorkflow = false;
    std::size_t m_statesLost = 0;
    HostFactory m_factory;
    WorkflowTree m_result;
};

} // namespace

// The writers ask whether there is an end, and write the points before it.
_TgPointLStr* WorkflowConnector::GetEndPoint() {
    return GetPointCount() > 0 ? GetPointAt(GetPointCount() - 1) : GetStartPoint();
}

WorkflowTree toWorkflow(CFCProcessNode& process, std::function<ScriptState(CFCBlockNode&)> const& scriptState) {
    return Conversion(process, scriptState, false).convert();
}

WorkflowTree scheduleToWorkflow(CFCProcessNode& process) {
    WorkflowTree tree = Conversion(
                            process, [](CFCBlockNode&) { return ScriptState::None; }, true)
                            .convert();
    // From now on an engine runs it.
    static_cast<CFCBPMProcessNode&>(*tree.process).SetProjectType(EProjectType_TASK);
    return tree;
}

} // namespace flowmere::host
