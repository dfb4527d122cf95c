#include "flowmere/workflow/FCProcessDefinitionWriter.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/persistence/ChildWalk.h"
#include "flowmere/workflow/FCGPDWriter.h"
#include "flowmere/workflow/FCProcessVarWriter.h"
#include "flowmere/workflow/LeavingConnectors.h"
#include "flowmere/workflow/WorkflowFile.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <cstdint>
#include <cstdio>
#include <string_view>

using flowmere::viewOf;
using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

constexpr std::wstring_view kExecutionFolder = L"BrindleExec";
constexpr wchar_t kDefinitionName[] = L"processdefinition.xml";
constexpr wchar_t kDrawingName[] = L"gpd.xml";
constexpr wchar_t kVariablesName[] = L"process.var";

// Below a node element there are up to three further levels, of an event with its action and the module of that.
constexpr int kMaxObjectDepth = flowmere::kMaxElementDepth - 3;
// Writing a folder keeps the files above it open and their walks on the stack.
constexpr int kMaxFolderDepth = 256;
constexpr int kMaxTotalDepth = 2000;

void setText(DOMNode* element, flowmere::XmlName name, wchar_t const* text) {
    flowmere::setText(element, name, viewOf(text));
}

void setDate(DOMNode* element, flowmere::XmlName name, TuDate date) {
    flowmere::setText(element, name, date.toText().View());
}

void setYesNo(DOMNode* element, flowmere::XmlName name, bool value) {
    if (value)
        flowmere::setConstant(element, name, u"Yes");
    else
        flowmere::setConstant(element, name, u"No");
}

void setWord(DOMNode* element, flowmere::XmlName name, bool value) {
    if (value)
        flowmere::setConstant(element, name, u"true");
    else
        flowmere::setConstant(element, name, u"false");
}

DOMElement* appendTextElement(DOMNode* parent, flowmere::XmlName name, wchar_t const* text) {
    DOMElement* const element = flowmere::appendElement(parent, name);
    if (element != nullptr && !viewOf(text).empty())
        flowmere::appendText(element, viewOf(text));
    return element;
}

bool isProcess(int kind) {
    return kind == eShapeType_WorkflowProcess || kind == eShapeType_Process;
}

bool isApplication(int kind) {
    return kind == eShapeType_Application || kind == eShapeType_ApplicationGroup;
}

// Tasks of any sort and sub-processes: the blocks that the engine runs scripts for.
bool hasEvents(int kind) {
    return (kind >= eShapeType_Task && kind <= eShapeType_DecisionTask) || flowmere::isSubProcessKind(kind);
}

bool hasTask(int kind) {
    return hasEvents(kind) || kind == eShapeType_SuperState || isApplication(kind);
}

bool isEmpty(CFCNodeList* list) {
    return list->GetHeadPosition() == nullptr;
}

// Calls `visit` for each element of a list of records, with null for one of another class.
template <typename Visit>
void forEachRecord(CFCNodeList* list, Visit const& visit) {
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        visit(dynamic_cast<CFCActionData*>(list->GetNextNode(position)));
}

bool isNamed(CFCActionData* record) {
    return record != nullptr && !viewOf(record->GetActionName()).empty();
}

// An "action" or a "script" with what every record has.
DOMElement* appendRecord(DOMNode* parent, flowmere::XmlName tag, CFCActionData* record) {
    DOMElement* const element = flowmere::appendElement(parent, tag);
    if (element != nullptr) {
        setText(element, u"name", record->GetActionName());
        setText(element, u"class", record->GetClassNameStr());
    }
    return element;
}

// The same with expression and text.
void appendScript(DOMNode* parent, flowmere::XmlName tag, CFCActionData* record) {
    if (DOMElement* const element = appendRecord(parent, tag, record)) {
        setText(element, u"expression", record->GetActionExpression());
        if (!viewOf(record->GetActionValue()).empty())
            flowmere::appendText(element, viewOf(record->GetActionValue()));
    }
}

// Events on which the engine calls a function of the block's script.
bool callsFunction(wchar_t const* type) {
    std::wstring_view const text = viewOf(type);
    return text == L"task-start" || text == L"task-end" || text == L"custom" || text == L"decide";
}

// A block with a script and no events of its own runs it when its task starts.
void writeScriptEvent(DOMNode* parent, CFCBPMBlockData* task) {
    DOMElement* const event = flowmere::appendElement(parent, u"event");
    flowmere::setConstant(event, u"type", u"task-start");
    if (DOMElement* const action = flowmere::appendElement(event, u"action")) {
        flowmere::setConstant(action, u"name", u"action");
        flowmere::setConstant(action, u"class", u"com.Mossgate.jBPM.Extensions.JythonHandler");
        appendTextElement(action, u"modulePath", task->GetModulePath());
    }
}

void writeEvents(DOMNode* parent, CFCBPMBlockData* task) {
    if (isEmpty(task->GetEventList()) && viewOf(task->GetEventType()).empty() && !viewOf(task->GetModulePath()).empty())
        writeScriptEvent(parent, task);
    forEachRecord(task->GetEventList(), [&](CFCActionData* record) {
        DOMElement* const event = flowmere::appendElement(parent, u"event");
        if (event == nullptr || record == nullptr)
            return;
        setText(event, u"type", record->GetActionType());
        if (!isNamed(record))
            return;
        DOMElement* const action = appendRecord(event, u"action", record);
        if (action != nullptr && callsFunction(record->GetActionType())) {
            appendTextElement(action, u"modulePath", task->GetModulePath());
            appendTextElement(action, u"function", record->GetActionFunction());
        }
    });
    forEachRecord(task->GetScriptEventList(), [&](CFCActionData* record) {
        if (record == nullptr)
            return;
        DOMElement* const event = flowmere::appendElement(parent, u"event");
        if (event != nullptr && isNamed(record))
            appendScript(event, u"script", record);
    });
}

// Each record has its element, which stays empty without a name, so that none is lost on the way back.
void writeHandlers(DOMNode* parent, flowmere::XmlName tag, CFCExceptionList* list) {
    forEachRecord(list, [parent, tag](CFCActionData* record) {
        if (isNamed(record))
            appendScript(parent, tag, record);
        else if (record != nullptr)
            flowmere::appendElement(parent, tag);
    });
}

void writeExceptionHandler(DOMNode* parent, CFCBPMBlockData* task) {
    CFCExceptionList* const actions = task->GetActionExceptionList();
    CFCExceptionList* const scripts = task->GetScriptExceptionList();
    if (isEmpty(actions) && isEmpty(scripts) && viewOf(task->GetExceptionClass()).empty())
        return;
    DOMElement* const handler = flowmere::appendElement(parent, u"exception-handler");
    if (handler == nullptr)
        return;
    setText(handler, u"exception-class", task->GetExceptionClass());
    writeHandlers(handler, u"action", actions);
    writeHandlers(handler, u"script", scripts);
}

void writeTimer(DOMNode* parent, CFCBPMBlockData* task) {
    if (isEmpty(task->GetTimerList()) && viewOf(task->GetTimerName()).empty())
        return;
    DOMElement* const timer = flowmere::appendElement(parent, u"timer");
    if (timer == nullptr)
        return;
    // Always without a value: the dates of timers are kept in memory only.
    flowmere::setConstant(timer, u"due-date", u"");
    setText(timer, u"name", task->GetTimerName());
    setText(timer, u"transition", task->GetTimerTransition());
    forEachRecord(task->GetTimerList(), [timer](CFCActionData* record) {
        if (!isNamed(record))
            return;
        if (DOMElement* const action = appendRecord(timer, u"action", record))
            setText(action, u"expression", record->GetActionExpression());
    });
}

// The reminder of a task; its actions stand beside the task, below the node.
void writeReminder(DOMNode* taskElement, DOMNode* nodeElement, CFCBPMBlockData* task) {
    if (!task->HasReminder() || task->GetReminderDate().toSerial() <= 0)
        return;
    if (DOMElement* const reminder = flowmere::appendElement(taskElement, u"reminder")) {
        setDate(reminder, u"duedate", task->GetReminderDate());
        flowmere::setInteger(reminder, u"repeat", task->GetReminderRepeat());
    }
    forEachRecord(task->GetReminderList(), [nodeElement](CFCActionData* record) {
        if (isNamed(record))
            appendRecord(nodeElement, u"action", record);
    });
}

// Form, name and place of a task.
void writeTaskIdentity(DOMElement* element, CFCBPMBlockData* task, wchar_t const* hierarchy, bool hasHierarchy) {
    TuString form;
    if (task->HasGui()) {
        form = task->GetHTMLScriptFileName();
        form.Replace(L'\\', L'/');
    }
    setText(element, u"form", form);
    setText(element, u"name", task->GetTaskName());
    setText(element, u"priority", task->GetPriority());
    if (hasHierarchy)
        setText(element, u"hierarchyPath", hierarchy);
    setText(element, u"swimlane", task->GetSwimLane());
}

void writeTaskFlags(DOMElement* element, CFCBPMBlockData* task) {
    setYesNo(element, u"lateIndicator", task->IsLateIndicator());
    // Lateness, too: what the engine shows as critical is what is late.
    setYesNo(element, u"criticalPathIndicator", task->IsLateIndicator());
    setYesNo(element, u"dataAvailability", task->IsSetDataAvailability());
    setYesNo(element, u"milestone", task->IsMilestone());
    setYesNo(element, u"runOnServer", task->IsRunOnServer());
    setYesNo(element, u"notify", task->HasEmailNotification());
}

void writeTaskSchedule(DOMElement* element, CFCBPMBlockData* task) {
    setText(element, u"taskCategory", task->GetCatagory());
    setText(element, u"projectName", task->GetProjectName());
    flowmere::setReal(element, u"effort", task->GetEffort());
    flowmere::setReal(element, u"duration", task->GetDuration());
    flowmere::setReal(element, u"cost", task->GetCost());
    setDate(element, u"startDate", task->GetStartDate());
    setDate(element, u"endDate", task->GetEndDate());
    setDate(element, u"actualStartDate", task->GetActStartDate());
    setDate(element, u"actualEndDate", task->GetActEndDate());
    setDate(element, u"estimatedReady", task->GetEstimatedReadyDate());
    setDate(element, u"estimatedEndDate", task->GetEstimatedEndDate());
    flowmere::setReal(element, u"projectLate", task->GetProjectLate());
    flowmere::setReal(element, u"estimatedEffort", task->GetEstimatedEffort());
    flowmere::setReal(element, u"actualEffort", task->GetActEffort());
}

void writeTaskWork(DOMElement* element, CFCBPMBlockData* task) {
    setText(element, u"application", task->GetApplication());
    setText(element, u"requirementDocument", task->GetRequirementDoc());
    setText(element, u"workInstruction", task->GetWorkInstructions());
    flowmere::setInteger(element, u"applicationVersion", task->GetAppVersion());
    flowmere::setReal(element, u"progress", task->GetProgress());
    setText(element, u"user", task->GetUser());
    setText(element, u"userRole", task->GetUserRole());
    setText(element, u"category", task->GetUserCategory());
    flowmere::setFlag(element, u"isDataOverrriden", task->GetUserDataOverriden());
}

void writeFormSize(DOMElement* element, CFCBPMBlockData* task) {
    TuRect const* const rect = task->HasGui() ? task->GetGUIRect() : nullptr;
    if (rect == nullptr)
        return;
    TuString size;
    size.Format(L"{width:%lld,height:%lld}", static_cast<long long>(std::int64_t{rect->right} - rect->left),
                static_cast<long long>(std::int64_t{rect->bottom} - rect->top));
    setText(element, u"form_size", size);
}

// Whether a file that was just written took the bytes: writing itself tells nobody.
bool takesBytes(wchar_t const* path) {
    std::FILE* const file = flowmere::openFile(path, "ab");
    return file != nullptr && std::fclose(file) == 0;
}

TuString& sharedHierarchy() {
    static constinit flowmere::Immortal<TuString> text;
    return *text;
}

} // namespace

CFCProcessDefinitionWriter::CFCProcessDefinitionWriter() : m_strRootName(L"process-definition") {}

CFCProcessDefinitionWriter::CFCProcessDefinitionWriter(CFCProcessDefinitionWriter const& other)
    : CTXMLBaseWriter(other), m_strFilePath(other.m_strFilePath), m_strBaseFolder(other.m_strBaseFolder),
      m_strHierarchyBase(other.m_strHierarchyBase), m_strRootName(other.m_strRootName),
      m_bRecursive(other.m_bRecursive), m_strSpare(other.m_strSpare), m_nSpare(other.m_nSpare),
      m_pRootNode(other.m_pRootNode) {}

CFCProcessDefinitionWriter& CFCProcessDefinitionWriter::operator=(CFCProcessDefinitionWriter const& other) {
    CTXMLBaseWriter::operator=(other);
    m_strFilePath = other.m_strFilePath;
    m_strBaseFolder = other.m_strBaseFolder;
    m_strHierarchyBase = other.m_strHierarchyBase;
    m_strRootName = other.m_strRootName;
    m_bRecursive = other.m_bRecursive;
    m_strSpare = other.m_strSpare;
    m_nSpare = other.m_nSpare;
    m_pRootNode = other.m_pRootNode;
    return *this;
}

CFCProcessDefinitionWriter::~CFCProcessDefinitionWriter() = default;

bool CFCProcessDefinitionWriter::WriteFile(wchar_t const* path, IFCNode* node, bool recursive) {
    m_bRecursive = recursive;
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || node == nullptr)
        return false;
    m_pRootNode = node;
    TuString const folder = flowmere::folderOfFile(m_strFilePath);
    if (m_strBaseFolder.IsEmpty())
        m_strBaseFolder = folder;
    SetHierarchyPath();
    // One use of the library for all three files.
    flowmere::XmlPlatform const platform;
    if (!platform.isUp())
        return false;
    m_pConnectors = std::make_unique<flowmere::LeavingConnectors>();
    m_nDepth = 0;
    bool isFilled = false;
    bool const result = flowmere::writeWorkflowFile(m_strFilePath, m_strRootName, [&](DOMElement& root) {
        WriteObject(node, nullptr, &root);
        isFilled = true;
    });
    m_pConnectors.reset();
    // The three belong together: where no definition could be written, the others stay as they are.
    if (!result || !isFilled || !takesBytes(m_strFilePath))
        return result;
    try {
        CFCGPDWriter().WriteFile(flowmere::joinFolder(folder, kDrawingName), node, true);
        CFCProcessVarWriter().WriteFile(flowmere::joinFolder(folder, kVariablesName), node, true);
    } catch (...) {
        // As in every write, nobody is told.
    }
    return true;
}

void CFCProcessDefinitionWriter::LoadAndFormatXML(wchar_t const* path) {
    flowmere::formatWorkflowFile(path);
}

void CFCProcessDefinitionWriter::SetHierarchyPath() {
    TuString base;
    int const place = m_strBaseFolder.Find(kExecutionFolder.data());
    if (place >= 0)
        base = m_strBaseFolder.Mid(place + static_cast<int>(kExecutionFolder.size()));
    base.TrimLeft(L'\\');
    base.TrimRight(L'\\');
    base.Replace(L'\\', L'/');
    m_strHierarchyBase = base;
}

wchar_t const* CFCProcessDefinitionWriter::GetCompleteHierarchy(wchar_t const* path) {
    TuString tail(path); // may be the shared text itself
    tail.Replace(L'.', L'/');
    if (m_strHierarchyBase.IsEmpty())
        return nullptr;
    TuString& result = sharedHierarchy();
    result = tail.IsEmpty() ? m_strHierarchyBase : m_strHierarchyBase + L"/" + tail;
    return result;
}

void CFCProcessDefinitionWriter::GetNodeTypeString(IFCNode* node, TuString& out) {
    out = node != nullptr ? flowmere::workflowNodeTypeName(node->GetNodeType()) : L"";
}

bool CFCProcessDefinitionWriter::GetObjectType(IFCNode* node, TuString& out) {
    struct Row {
        int kind;
        wchar_t const* element;
    };
    static constexpr Row kElements[] = {
        {eShapeType_Task, L"task-node"},
        {eShapeType_DecisionTask, L"task-node"},
        {eShapeType_SubProcessLoop, L"task-node"},
        {eShapeType_DecisionLoop, L"task-node"},
        {eShapeType_SpawningLoop, L"task-node"},
        {eShapeType_BasicSubProcess, L"task-node"},
        {eShapeType_Application, L"task-node"},
        {eShapeType_StartState, L"start-state"},
        {eShapeType_EndState, L"end-state"},
        {eShapeType_Fork, L"fork"},
        {eShapeType_Join, L"join"},
        {eShapeType_SuperState, L"super-state"},
        {eShapeType_ApplicationGroup, L"super-state"},
        {eShapeType_Process, L"process-definition"},
        {eShapeType_WorkflowProcess, L"process-definition"},
        {0, L"UnKnown"},
    };
    if (node == nullptr)
        return false;
    int const kind = node->GetNodeType();
    for (Row const& row : kElements) {
        if (row.kind == kind) {
            out = row.element;
            return true;
        }
    }
    return false;
}

void CFCProcessDefinitionWriter::WriteObject(IFCNode* node, DOMNode* parent, DOMNode* own) {
    flowmere::WriteDepth const depth(m_nDepth);
    if (m_nDepth > kMaxObjectDepth || m_nDepthAbove + m_nDepth > kMaxTotalDepth)
        return;
    TuString name;
    if (!GetObjectType(node, name))
        return;
    DOMNode* element = own;
    if (element == nullptr && parent != nullptr)
        element = CreateElement(parent, name);
    if (element == nullptr)
        return;
    WriteProperties(node, element);
    if (m_bRecursive)
        WriteChildren(node, element);
}

void CFCProcessDefinitionWriter::WriteChildren(IFCNode* node, DOMNode* element) {
    if (node == nullptr || (flowmere::isSubProcessKind(node->GetNodeType()) && node != m_pRootNode))
        return;
    flowmere::visitChildrenFromLast(node, [&](IFCNode* child) { WriteObject(child, element, nullptr); });
}

void CFCProcessDefinitionWriter::WriteProperties(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    int const kind = node->GetNodeType();
    if (isProcess(kind) || node == m_pRootNode)
        WritePropertiesRoot(node, element);
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    if (node->GetFCBlockData() == nullptr || task == nullptr)
        return;
    node->TransferToData();
    TuString const name = flowmere::nodeNameOf(node);
    if (name.IsEmpty())
        return;
    setText(element, u"name", name);
    setText(element, u"label", task->GetTaskCaption());
    if (kind == eShapeType_SubProcessLoop || kind == eShapeType_DecisionLoop)
        flowmere::setInteger(element, u"max-iterations", task->GetMaxIterations());
    if (!viewOf(task->GetIconFilePath()).empty())
        setText(element, u"icon", task->GetIconFilePath());
    if (!viewOf(node->GetNodeDescription()).empty())
        appendTextElement(element, u"description", node->GetNodeDescription());
    if (hasTask(kind)) {
        if (flowmere::isSubProcessKind(kind)) {
            // What a sub-process is to its surroundings stands in the file above.
            if (node == m_pRootNode)
                return;
            WriteSubProcess(node);
        }
        flowmere::setConstant(element, u"create-tasks", u"false");
        flowmere::setConstant(element, u"signal", u"last-wait");
        TuString type;
        GetNodeTypeString(node, type);
        if (!type.IsEmpty())
            setText(element, u"nodeType", type);
        WriteApplication(node, element, name);
        if (!viewOf(task->GetTaskName()).empty())
            WriteTask(node, element, name);
    }
    WriteTransitions(node, element, name);
    if (hasEvents(kind)) {
        writeEvents(element, task);
        writeExceptionHandler(element, task);
        writeTimer(element, task);
    }
}

void CFCProcessDefinitionWriter::WritePropertiesRoot(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    TuString name = flowmere::nodeNameOf(node);
    if (name.IsEmpty())
        name = L"allblocks";
    IFCNode* const top = node->GetRootNode();
    EProjectType const project = top != nullptr ? top->GetProjectType() : EProjectType_None;
    setText(element, u"name", name);
    flowmere::setReal(element, u"version", 1.0);
    if (project == EProjectType_APPLICATION)
        setText(element, u"hierarchyPath", name);
    else
        setText(element, u"hierarchyPath", GetCompleteHierarchy(node->GetNodePath()));
    bool const isSubProcess = m_pRootNode != nullptr && flowmere::isSubProcessKind(m_pRootNode->GetNodeType());
    appendTextElement(element, u"type", CFCEnumTranslator::EnumToString(isSubProcess ? EProjectType_TASK : project));
}

// The files of a sub-process, in the folder of its path below that of the first file.
void CFCProcessDefinitionWriter::WriteSubProcess(IFCNode* node) {
    if (m_nFolder >= kMaxFolderDepth)
        return;
    // Without a folder of its own the first file lies in the current one, and a path must say so to stay there.
    TuString const base = m_strBaseFolder.IsEmpty() ? TuString(L".") : m_strBaseFolder;
    TuString place(node->GetNodePath());
    place.Replace(L'.', L'\\');
    TuString path = flowmere::joinFolder(flowmere::joinFolder(base, place), kDefinitionName);
    path.Replace(L'/', L'\\');
    CFCProcessDefinitionWriter writer;
    writer.m_strBaseFolder = base;
    writer.m_nFolder = m_nFolder + 1;
    writer.m_nDepthAbove = m_nDepthAbove + m_nDepth;
    writer.WriteFile(path, node, true);
}

void CFCProcessDefinitionWriter::WriteApplication(IFCNode* node, DOMNode* element, TuString const& name) {
    // Documents give these kinds to plain tasks, which have nothing to tell here.
    auto* const application = isApplication(node->GetNodeType()) ? dynamic_cast<CFCApplicationNode*>(node) : nullptr;
    if (application == nullptr)
        return;
    setText(element, u"name", name);
    setText(element, u"label", application->GetTaskCaption());
    TuString hierarchy(GetCompleteHierarchy(node->GetNodePath()));
    if (hierarchy.Left(3) == L"BPM")
        hierarchy = hierarchy.Mid(4);
    setText(element, u"hierarchyPath", hierarchy);
    setWord(element, u"useBindingScript", application->IsUseBindingScript());
    bool const isNew = application->IsNewVersion() != 0;
    bool const isUpdated = application->IsUpdated() != 0;
    setWord(element, u"isNewVersion", isNew && isUpdated);
    setWord(element, u"isUpdated", isUpdated && !isNew);
    setWord(element, u"isDeleted", node->IsDeleted());
    setWord(element, u"isDeletedAll", node->IsDeleteAllVersions());
    setText(element, u"icon", application->GetIconFilePath());
    flowmere::setInteger(element, u"id", application->GetAppID());
}

void CFCProcessDefinitionWriter::WriteTask(IFCNode* node, DOMNode* element, TuString const& name) {
    CFCBPMBlockData* const task = node->GetBPMBlockData();
    TuString const path(node->GetNodePath());
    TuString const hierarchy(GetCompleteHierarchy(path));
    if (flowmere::isSubProcessKind(node->GetNodeType())) {
        if (DOMElement* const reference = flowmere::appendElement(element, u"sub-process")) {
            setText(reference, u"name", name);
            if (!path.IsEmpty())
                setText(reference, u"hierarchyPath", hierarchy);
        }
    }
    DOMElement* const own = flowmere::appendElement(element, u"task");
    if (own == nullptr)
        return;
    writeTaskIdentity(own, task, hierarchy, !path.IsEmpty());
    writeTaskFlags(own, task);
    writeTaskSchedule(own, task);
    writeTaskWork(own, task);
    writeFormSize(own, task);
    if (!viewOf(task->GetTaskDescription()).empty())
        appendTextElement(own, u"description", task->GetTaskDescription());
    writeReminder(own, element, task);
}

void CFCProcessDefinitionWriter::WriteTransitions(IFCNode* node, DOMNode* element, TuString const& name) {
    flowmere::LeavingConnectors ownConnectors;
    flowmere::LeavingConnectors& connectors = m_pConnectors != nullptr ? *m_pConnectors : ownConnectors;
    connectors.visit(node->GetParentNode(), name.View(), [&](CFCConnector* connector) {
        DOMElement* const transition = flowmere::appendElement(element, u"transition");
        if (transition == nullptr)
            return;
        TuString const end(connector->GetEndBlockName());
        setText(transition, u"to", end);
        setText(transition, u"name", TuString(connector->GetStartBlockName()) + L"." + end);
        setText(transition, u"label", connector->GetCaption());
        flowmere::setInteger(transition, u"inport", connector->GetStartHandle());
        flowmere::setInteger(transition, u"outport", connector->GetEndHandle());
        flowmere::setInteger(transition, u"type", connector->GetConnectorType());
        _TgPointLStr* const start = connector->GetStartPoint();
        if (start == nullptr || connector->GetEndPoint() == nullptr)
            return;
        WritePoint(start, transition);
        _TgPointLStr last = *start;
        _TgPointLStr* const points = connector->GetPoints();
        int const count = points != nullptr ? connector->GetPointCount() : 0;
        for (int index = 0; index < count; ++index) {
            if (points[index].x != last.x || points[index].y != last.y)
                WritePoint(&points[index], transition);
            last = points[index];
        }
    });
}

bool CFCProcessDefinitionWriter::WritePoint(_TgPointLStr* point, DOMNode* parent) {
    if (point == nullptr)
        return false;
    if (DOMElement* const element = flowmere::appendElement(parent, u"POINT")) {
        flowmere::setInteger(element, u"Location_X", point->x);
        flowmere::setInteger(element, u"Location_Y", point->y);
    }
    return true;
}
