#include "flowmere/model/FCBPMBlockData.h"

#include <deque>
#include <string_view>

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/model/FCNodeFactory.h"

namespace {

// Node type of every record that a workflow block makes for itself.
constexpr int kActionRecord = 175;

// Folder word of the execution root; what follows it is the part of a path that modules share.
constexpr std::wstring_view kExecutionRoot = L"BrindleExec";

// Which text of the block SaveScriptFile writes. These readings of EScriptType hold only here.
constexpr int kHTMLScript = 3;
constexpr int kCSSScript = 4;
constexpr int kUserCSSScript = 5;
constexpr int kJSScript = 6;
constexpr int kJythonScript = 7;

// Form rectangles are handed out as plain pointers, shared by copies of a block and never
// released, so they stay here for the life of the process.
TuRect* keepRectangle(TuRect const& rect) {
    static flowmere::Immortal<std::deque<TuRect>> rectangles;
    return &rectangles->emplace_back(rect);
}

template <typename Record>
Record* appendRecord(CFCNodeList& list, IFCNode* owner) {
    auto record = std::make_unique<Record>();
    record->SetNodeType(kActionRecord);
    record->SetParentNode(owner);
    list.AddTail(record.get());
    return record.release();
}

} // namespace

CFCBPMBlockData::CFCBPMBlockData() = default;
CFCBPMBlockData::~CFCBPMBlockData() = default;

void CFCBPMBlockData::SetGUIRect(TuRect* rect) {
    if (rect != nullptr) {
        m_guiRect = keepRectangle(*rect);
    }
}

void CFCBPMBlockData::Copy(CFCBPMBlockData* from, CFCBPMBlockData* to, unsigned char withTransitions) {
    if (from == nullptr || to == nullptr || from == to) {
        return;
    }
    to->m_user = from->m_user;
    to->m_uid = from->m_uid;
    to->m_wbs = from->m_wbs;
    to->m_catagory = from->m_catagory;
    to->m_taskDescription = from->m_taskDescription;
    to->m_requirementDoc = from->m_requirementDoc;
    to->m_workInstructions = from->m_workInstructions;
    to->m_application = from->m_application;
    to->m_deployment = from->m_deployment;
    to->m_priority = from->m_priority;
    to->m_predecessorID = from->m_predecessorID;
    to->m_swimLane = from->m_swimLane;
    to->m_projectName = from->m_projectName;
    to->m_exceptionClass = from->m_exceptionClass;
    to->m_eventType = from->m_eventType;
    to->m_timerName = from->m_timerName;
    to->m_timerTransition = from->m_timerTransition;
    to->m_taskName = from->m_taskName;
    to->m_taskCaption = from->m_taskCaption;
    to->m_htmlScriptFileName = from->m_htmlScriptFileName;
    to->m_htmlScriptCode = from->m_htmlScriptCode;
    to->m_cssScriptFileName = from->m_cssScriptFileName;
    to->m_cssScriptCode = from->m_cssScriptCode;
    to->m_jsScriptFileName = from->m_jsScriptFileName;
    to->m_jsScriptCode = from->m_jsScriptCode;
    to->m_jythonScriptFileName = from->m_jythonScriptFileName;
    to->m_jythonScriptCode = from->m_jythonScriptCode;
    to->m_modulePath = from->m_modulePath;
    to->m_iconFilePath = from->m_iconFilePath;

    to->m_duration = from->m_duration;
    to->m_effort = from->m_effort;
    to->m_estimatedEffort = from->m_estimatedEffort;
    to->m_projectLate = from->m_projectLate;
    to->m_cost = from->m_cost;
    to->m_actEffort = from->m_actEffort;
    to->m_appVersion = from->m_appVersion;
    to->m_progress = from->m_progress;
    to->m_milestone = from->m_milestone;
    to->m_reminder = from->m_reminder;
    to->m_runOnServer = from->m_runOnServer;
    to->m_notify = from->m_notify;
    to->m_reminderRepeat = from->m_reminderRepeat;
    to->m_lateIndicator = from->m_lateIndicator;
    to->m_criticalPathIndicator = from->m_criticalPathIndicator;
    to->m_dataAvailability = from->m_dataAvailability;
    to->m_timerRepeat = from->m_timerRepeat;
    to->m_gui = from->m_gui;

    to->m_startDate = from->m_startDate;
    to->m_endDate = from->m_endDate;
    to->m_actStartDate = from->m_actStartDate;
    to->m_actEndDate = from->m_actEndDate;
    to->m_reminderDate = from->m_reminderDate;
    to->m_dueDate = from->m_dueDate;
    to->m_estimatedReadyDate = from->m_estimatedReadyDate;
    to->m_estimatedEndDate = from->m_estimatedEndDate;
    to->m_timerDueDate = from->m_timerDueDate;

    to->m_actionExceptionList = from->m_actionExceptionList;
    to->m_scriptExceptionList = from->m_scriptExceptionList;
    to->m_eventList = from->m_eventList;
    to->m_scriptEventList = from->m_scriptEventList;
    to->m_timerList = from->m_timerList;
    to->m_reminderList = from->m_reminderList;
    if (withTransitions != 0) {
        to->m_transitionList = from->m_transitionList;
    }

    to->SetGUIRect(from->m_guiRect);
}

CFCExceptionActionData* CFCBPMBlockData::CreateNewActionException() {
    return appendRecord<CFCExceptionActionData>(m_actionExceptionList, dynamic_cast<CFCBPMTaskNode*>(this));
}

CFCExceptionActionData* CFCBPMBlockData::CreateNewScriptException() {
    return appendRecord<CFCExceptionActionData>(m_scriptExceptionList, dynamic_cast<CFCBPMTaskNode*>(this));
}

CFCEventActionData* CFCBPMBlockData::CreateNewEventAction() {
    return appendRecord<CFCEventActionData>(m_eventList, dynamic_cast<CFCBPMTaskNode*>(this));
}

CFCTimerActionData* CFCBPMBlockData::CreateNewTimerAction() {
    return appendRecord<CFCTimerActionData>(m_timerList, dynamic_cast<CFCBPMTaskNode*>(this));
}

CFCReminderData* CFCBPMBlockData::CreateNewReminderData() {
    return appendRecord<CFCReminderData>(m_reminderList, dynamic_cast<CFCBPMTaskNode*>(this));
}

CFCTransitionData* CFCBPMBlockData::CreateNewTransition() {
    return appendRecord<CFCTransitionData>(m_transitionList, dynamic_cast<CFCBPMTaskNode*>(this));
}

void CFCBPMBlockData::RemoveTransition(CFCTransitionData* transition) {
    if (transition != nullptr) {
        m_transitionList.DeleteNode(transition);
    }
}

void CFCBPMBlockData::RemoveTransitionList() {
    if (m_transitionList.GetHeadPosition() != nullptr) {
        m_transitionList.DeleteAll();
    }
}

void CFCBPMBlockData::SetScriptFile(wchar_t const* name, wchar_t const* folder) {
    if (name == nullptr || folder == nullptr) {
        return;
    }
    // Either text may be one of the members that change below.
    TuString const block(name);
    TuString const base(folder);
    struct ScriptPath {
        TuString CFCBPMBlockData::*member;
        wchar_t const* pattern;
    };
    static constexpr ScriptPath kScriptPaths[] = {
        {&CFCBPMBlockData::m_htmlScriptFileName, L"%s\\%s\\%s.html"},
        {&CFCBPMBlockData::m_cssScriptFileName, L"%s\\%s\\%s.css"},
        {&CFCBPMBlockData::m_userCSSScriptFileName, L"%s\\%s\\%s_User.css"},
        {&CFCBPMBlockData::m_jsScriptFileName, L"%s\\%s\\scripts\\%s.js"},
        {&CFCBPMBlockData::m_jythonScriptFileName, L"%s\\%s\\scripts\\%s.py"},
    };
    wchar_t const* const folderText = base;
    wchar_t const* const blockText = block;
    TuString path;
    for (ScriptPath const& script : kScriptPaths) {
        path.Format(script.pattern, folderText, blockText, blockText);
        this->*script.member = CFCEnvironment::GetRelativePath(path);
    }
}

void CFCBPMBlockData::UpdateModulePath(wchar_t const* folder, wchar_t const* name) {
    TuString const block(name);
    TuString module;
    TuString const full(folder);
    int const root = full.Find(kExecutionRoot.data());
    if (root >= 0) {
        module = full.Mid(root + static_cast<int>(kExecutionRoot.size()));
    }
    // Only backslashes are trimmed; a leading slash becomes a point.
    module.TrimLeft(L'\\');
    module.TrimRight(L'\\');
    module.Replace(L'\\', L'.');
    module.Replace(L'/', L'.');
    m_modulePath = module + L"." + block + L".scripts." + block;
}

void CFCBPMBlockData::SaveScriptFile(wchar_t const* path, EScriptType type) {
    TuString code;
    switch (static_cast<int>(type)) {
    case kHTMLScript:
        code = m_htmlScriptCode;
        break;
    case kCSSScript:
        code = m_cssScriptCode;
        break;
    case kUserCSSScript:
        code = m_userCSSScriptCode;
        break;
    case kJSScript:
        code = m_jsScriptCode;
        break;
    case kJythonScript:
        code = m_jythonScriptCode;
        break;
    default:
        break;
    }
    flowmere::writeFile(path, flowmere::toUtf8(code.View()));
}

CFCBPMTaskNode::CFCBPMTaskNode() {
    Initialize();
}

CFCBPMTaskNode::CFCBPMTaskNode(int kind) {
    Initialize();
    blockKind = kind;
}

CFCBPMTaskNode::~CFCBPMTaskNode() = default;

void CFCBPMTaskNode::Initialize() {
    blockKind = 0;
    SetExecutionStateType(EExecutionStateType_ESNone);
    m_parentId = -1;
    SetPriority(L"normal");
    CreateResourceData();
}

void CFCBPMTaskNode::CreateResourceData() {
    if (m_resourceData != nullptr) {
        return;
    }
    CFCNodeFactory factory;
    std::unique_ptr<IFCNode> node(factory.Create(eShapeType_Resource));
    auto* const resource = dynamic_cast<CFCResourceData*>(node.get());
    if (resource == nullptr) {
        return;
    }
    resource->SetParentNode(this);
    resource->SetNodeType(eShapeType_Resource);
    node.release();
    m_resourceData.reset(resource);
}

int CFCBPMTaskNode::GetImage() {
    switch (GetNodeType()) {
    case eShapeType_WorkflowProcess:
    case eShapeType_SuperState:
        return 1;
    case eShapeType_Task:
        return 2;
    case eShapeType_Fork:
        return 3;
    case eShapeType_Join:
        return 4;
    case eShapeType_EndState:
        return 5;
    case eShapeType_DecisionTask:
        return 6;
    case eShapeType_SubProcessLoop:
        return 7;
    case eShapeType_DecisionLoop:
        return 8;
    case eShapeType_SpawningLoop:
        return 9;
    case eShapeType_BasicSubProcess:
        return 10;
    default:
        return 0;
    }
}

CFCBPMBlockData* CFCBPMTaskNode::GetBPMBlockData() {
    return this;
}

void CFCBPMTaskNode::SetNodeId(wchar_t const* id) {
    TuString const text(id); // may be one of the three texts themselves
    CFCBlockNode::SetNodeId(text);
    SetTaskName(text);
}

CFCBPMProcessNode::CFCBPMProcessNode() : m_innerTask(new CFCBPMTaskNode) {}

CFCBPMProcessNode::~CFCBPMProcessNode() = default;

int CFCBPMProcessNode::GetImage() {
    return 1;
}

CFCBPMBlockData* CFCBPMProcessNode::GetBPMBlockData() {
    return this;
}
