#pragma once

#include <memory>

#include "flowmere/Export.h"
#include "flowmere/foundation/TuDate.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTemplateArray.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCProcessNode.h"

// The workflow view of a block: schedule, people, forms, scripts, actions and stored
// transitions. It is no node by itself but a second base of the node classes below; a node
// hands it out through IFCNode::GetBPMBlockData.
//
// Texts start empty, setters copy them, and a null text is the empty text. A text result points
// into this object and holds until that member changes. Dates start empty, which means "not
// set". The lists are embedded: never null, owned by this object, while their elements stay
// allocated until RemoveTransition, RemoveTransitionList or the list's own DeleteNode and
// DeleteAll delete them.
class FLOWMERE_API CFCBPMBlockData {
public:
    CFCBPMBlockData();
    // Copying is memberwise: the copy shares the records of the lists and the form rectangle.
    CFCBPMBlockData(CFCBPMBlockData const&) = default;
    CFCBPMBlockData& operator=(CFCBPMBlockData const&) = default;
    virtual ~CFCBPMBlockData();

    // Assigned user.
    wchar_t const* GetUser() { return m_user; }
    void SetUser(wchar_t const* text) { m_user = text; }
    // Unique id of the task in the project schedule.
    wchar_t const* GetUID() { return m_uid; }
    void SetUID(wchar_t const* text) { m_uid = text; }
    // Work breakdown code of the task in the project schedule.
    wchar_t const* GetWBS() { return m_wbs; }
    void SetWBS(wchar_t const* text) { m_wbs = text; }
    // Category of the task.
    wchar_t const* GetCatagory() { return m_catagory; }
    void SetCatagory(wchar_t const* text) { m_catagory = text; }
    // Planned start.
    TuDate GetStartDate() { return m_startDate; }
    void SetStartDate(TuDate date) { m_startDate = date; }
    // Planned end.
    TuDate GetEndDate() { return m_endDate; }
    void SetEndDate(TuDate date) { m_endDate = date; }
    // Effort in the unit of the project; a new record has 8.
    double GetEffort() { return m_effort; }
    void SetEffort(double number) { m_effort = number; }
    // Estimated effort; a new record has 8.
    double GetEstimatedEffort() { return m_estimatedEffort; }
    void SetEstimatedEffort(double number) { m_estimatedEffort = number; }
    // How late the project is.
    double GetProjectLate() { return m_projectLate; }
    void SetProjectLate(double number) { m_projectLate = number; }
    // Duration; a new record has 1.
    double GetDuration() { return m_duration; }
    void SetDuration(double number) { m_duration = number; }
    // Cost.
    double GetCost() { return m_cost; }
    void SetCost(double number) { m_cost = number; }
    // The task is a milestone.
    bool IsMilestone() { return m_milestone; }
    void SetMilestone(bool flag) { m_milestone = flag; }
    // Description of the task.
    wchar_t const* GetTaskDescription() { return m_taskDescription; }
    void SetTaskDescription(wchar_t const* text) { m_taskDescription = text; }
    // Document with the requirements of the task.
    wchar_t const* GetRequirementDoc() { return m_requirementDoc; }
    void SetRequirementDoc(wchar_t const* text) { m_requirementDoc = text; }
    // Work instructions of the task.
    wchar_t const* GetWorkInstructions() { return m_workInstructions; }
    void SetWorkInstructions(wchar_t const* text) { m_workInstructions = text; }
    // Name of the application to start.
    wchar_t const* GetApplication() { return m_application; }
    void SetApplication(wchar_t const* text) { m_application = text; }
    // Name of the deployment of that application; kept in memory only.
    wchar_t const* GetDeployment() { return m_deployment; }
    void SetDeployment(wchar_t const* text) { m_deployment = text; }
    // Executable of that application; kept in memory only.
    wchar_t const* GetExecutable() { return m_executable; }
    void SetExecutable(wchar_t const* text) { m_executable = text; }
    // Priority of the task; a new task node has "normal", any other record the empty text.
    wchar_t const* GetPriority() { return m_priority; }
    void SetPriority(wchar_t const* text) { m_priority = text; }
    // UID of the scheduled predecessor.
    wchar_t const* GetPredecessorID() { return m_predecessorID; }
    void SetPredecessorID(wchar_t const* text) { m_predecessorID = text; }
    // Name of the task; a block whose task has no name is written without a task.
    wchar_t const* GetTaskName() { return m_taskName; }
    void SetTaskName(wchar_t const* text) { m_taskName = text; }
    // Label of the block.
    wchar_t const* GetTaskCaption() { return m_taskCaption; }
    void SetTaskCaption(wchar_t const* text) { m_taskCaption = text; }
    // Arguments for the application, copied in and out; kept in memory only.
    TuTemplateArray<TuString> GetCommandLineArg() { return m_commandLineArg; }
    void SetCommandLineArg(TuTemplateArray<TuString> texts) { m_commandLineArg = texts; }
    // Role that performs the task.
    wchar_t const* GetSwimLane() { return m_swimLane; }
    void SetSwimLane(wchar_t const* text) { m_swimLane = text; }
    // The task is late.
    bool IsLateIndicator() { return m_lateIndicator; }
    void SetLateIndicator(bool flag) { m_lateIndicator = flag; }
    // The task lies on the critical path.
    bool IsCriticalPathIndicator() { return m_criticalPathIndicator; }
    void SetCriticalPathIndicator(bool flag) { m_criticalPathIndicator = flag; }
    // The data of the task are available.
    bool IsSetDataAvailability() { return m_dataAvailability; }
    void SetDataAvailability(bool flag) { m_dataAvailability = flag; }
    // Name of the project.
    wchar_t const* GetProjectName() { return m_projectName; }
    void SetProjectName(wchar_t const* text) { m_projectName = text; }
    // Actual effort.
    double GetActEffort() { return m_actEffort; }
    void SetActEffort(double number) { m_actEffort = number; }
    // Version of the application.
    int GetAppVersion() { return m_appVersion; }
    void SetAppVersion(int number) { m_appVersion = number; }
    // Upper bound of the rounds of a loop sub-process.
    int GetMaxIterations() { return m_maxIterations; }
    void SetMaxIterations(int number) { m_maxIterations = number; }
    // Actual start.
    TuDate GetActStartDate() { return m_actStartDate; }
    void SetActStartDate(TuDate date) { m_actStartDate = date; }
    // Actual end.
    TuDate GetActEndDate() { return m_actEndDate; }
    void SetActEndDate(TuDate date) { m_actEndDate = date; }
    // Due date of the reminder.
    TuDate GetReminderDate() { return m_reminderDate; }
    void SetReminderDate(TuDate date) { m_reminderDate = date; }
    // Due date of the task.
    TuDate GetDueDate() { return m_dueDate; }
    void SetDueDate(TuDate date) { m_dueDate = date; }
    // Estimated date on which the task can start.
    TuDate GetEstimatedReadyDate() { return m_estimatedReadyDate; }
    void SetEstimatedReadyDate(TuDate date) { m_estimatedReadyDate = date; }
    // Estimated end.
    TuDate GetEstimatedEndDate() { return m_estimatedEndDate; }
    void SetEstimatedEndDate(TuDate date) { m_estimatedEndDate = date; }
    // Progress of the task.
    double GetProgress() { return m_progress; }
    void SetProgress(double number) { m_progress = number; }
    // Notification flag kept in memory only; files carry EmailNotification.
    bool IsNotify() { return m_notify; }
    void SetNotify(bool flag) { m_notify = flag; }
    // The task runs on the server.
    bool IsRunOnServer() { return m_runOnServer; }
    void SetRunOnServer(bool flag) { m_runOnServer = flag; }
    // A reminder is set.
    bool HasReminder() { return m_reminder; }
    void SetReminder(bool flag) { m_reminder = flag; }
    // How often the reminder repeats.
    int GetReminderRepeat() { return m_reminderRepeat; }
    void SetReminderRepeat(int number) { m_reminderRepeat = number; }
    // Exception handlers that are actions.
    CFCExceptionList* GetActionExceptionList() { return &m_actionExceptionList; }
    // Exception handlers that are scripts.
    CFCExceptionList* GetScriptExceptionList() { return &m_scriptExceptionList; }
    // Class of the exception that is handled.
    wchar_t const* GetExceptionClass() { return m_exceptionClass; }
    void SetExceptionClass(wchar_t const* text) { m_exceptionClass = text; }
    // Event actions.
    CFCEventList* GetEventList() { return &m_eventList; }
    // Event scripts.
    CFCEventList* GetScriptEventList() { return &m_scriptEventList; }
    // Type of the block's event.
    wchar_t const* GetEventType() { return m_eventType; }
    void SetEventType(wchar_t const* text) { m_eventType = text; }
    // Timer actions.
    CFCTimerList* GetTimerList() { return &m_timerList; }
    // Name of the timer.
    wchar_t const* GetTimerName() { return m_timerName; }
    void SetTimerName(wchar_t const* text) { m_timerName = text; }
    // Transition that the timer takes.
    wchar_t const* GetTimerTransition() { return m_timerTransition; }
    void SetTimerTransition(wchar_t const* text) { m_timerTransition = text; }
    // Due date of the timer, to the second.
    TuDate GetTimerDueDate() { return m_timerDueDate; }
    void SetTimerDueDate(TuDate date) { m_timerDueDate = date; }
    // How often the timer repeats.
    int GetTimerRepeat() { return m_timerRepeat; }
    void SetTimerRepeat(int number) { m_timerRepeat = number; }
    // Transitions held between load and connector rebuild; they stay here afterwards.
    CFCTransitionList* GetTransitionList() { return &m_transitionList; }
    // Reminder actions.
    CFCReminderList* GetReminderList() { return &m_reminderList; }
    // Form page: path.
    wchar_t const* GetHTMLScriptFileName() { return m_htmlScriptFileName; }
    void SetHTMLScriptFileName(wchar_t const* text) { m_htmlScriptFileName = text; }
    // Form page: text.
    wchar_t const* GetHTMLScriptCode() { return m_htmlScriptCode; }
    void SetHTMLScriptCode(wchar_t const* text) { m_htmlScriptCode = text; }
    // Style sheet: path.
    wchar_t const* GetCSSScriptFileName() { return m_cssScriptFileName; }
    void SetCSSScriptFileName(wchar_t const* text) { m_cssScriptFileName = text; }
    // Style sheet: text.
    wchar_t const* GetCSSScriptCode() { return m_cssScriptCode; }
    void SetCSSScriptCode(wchar_t const* text) { m_cssScriptCode = text; }
    // User's style sheet: path.
    wchar_t const* GetUserCSSScriptFileName() { return m_userCSSScriptFileName; }
    void SetUserCSSScriptFileName(wchar_t const* text) { m_userCSSScriptFileName = text; }
    // User's style sheet: text.
    wchar_t const* GetUserCSSScriptCode() { return m_userCSSScriptCode; }
    void SetUserCSSScriptCode(wchar_t const* text) { m_userCSSScriptCode = text; }
    // Form script: path.
    wchar_t const* GetJSScriptFileName() { return m_jsScriptFileName; }
    void SetJSScriptFileName(wchar_t const* text) { m_jsScriptFileName = text; }
    // Form script: text.
    wchar_t const* GetJSScriptCode() { return m_jsScriptCode; }
    void SetJSScriptCode(wchar_t const* text) { m_jsScriptCode = text; }
    // Block script as run by the engine: path.
    wchar_t const* GetJythonScriptFileName() { return m_jythonScriptFileName; }
    void SetJythonScriptFileName(wchar_t const* text) { m_jythonScriptFileName = text; }
    // Block script as run by the engine: text.
    wchar_t const* GetJythonScriptCode() { return m_jythonScriptCode; }
    void SetJythonScriptCode(wchar_t const* text) { m_jythonScriptCode = text; }
    // Dotted module of the block script.
    wchar_t const* GetModulePath() { return m_modulePath; }
    void SetModulePath(wchar_t const* text) { m_modulePath = text; }
    // Icon of the block.
    wchar_t const* GetIconFilePath() { return m_iconFilePath; }
    void SetIconFilePath(wchar_t const* text) { m_iconFilePath = text; }
    // Name of the sub-process that the block stands for.
    wchar_t const* GetAssociatedSubProcess() { return m_associatedSubProcess; }
    void SetAssociatedSubProcess(wchar_t const* text) { m_associatedSubProcess = text; }
    // Role of the user.
    wchar_t const* GetUserRole() { return m_userRole; }
    void SetUserRole(wchar_t const* text) { m_userRole = text; }
    // Category of the user.
    wchar_t const* GetUserCategory() { return m_userCategory; }
    void SetUserCategory(wchar_t const* text) { m_userCategory = text; }
    // The task has a form.
    bool HasGui() { return m_gui; }
    void SetGui(bool flag) { m_gui = flag; }
    // The user is notified by mail.
    bool HasEmailNotification() { return m_emailNotification; }
    void SetEmailNotification(bool flag) { m_emailNotification = flag; }
    // The data of the user are overridden.
    bool GetUserDataOverriden() { return m_userDataOverriden; }
    void SetUserDataOverriden(bool flag) { m_userDataOverriden = flag; }

    // Size of the task's form; null when there is none. The rectangle is never released, so the
    // pointer stays good for the life of the process.
    TuRect* GetGUIRect() { return m_guiRect; }
    // Stores a new rectangle with the four values of `rect`; null changes nothing.
    void SetGUIRect(TuRect* rect);

    // Copies the schedule, texts, flags and lists of `from` to `to`; nothing when either is null.
    // The lists are copied as list objects, so both then hold the same records; the transitions
    // only when `withTransitions` is not zero. `to` keeps its own Executable, CommandLineArg,
    // MaxIterations, UserCSSScriptFileName, UserCSSScriptCode, AssociatedSubProcess, UserRole,
    // UserCategory, EmailNotification and UserDataOverriden, and its form rectangle when `from`
    // has none.
    static void Copy(CFCBPMBlockData* from, CFCBPMBlockData* to, unsigned char withTransitions);

    // Each makes a record of node type 175 at the tail of its list, with the task node that holds
    // this data as its parent (null when a process node holds it).
    CFCExceptionActionData* CreateNewActionException();
    CFCExceptionActionData* CreateNewScriptException();
    CFCEventActionData* CreateNewEventAction();
    CFCTimerActionData* CreateNewTimerAction();
    CFCReminderData* CreateNewReminderData();
    CFCTransitionData* CreateNewTransition();

    // Deletes one transition of the list; null is ignored.
    void RemoveTransition(CFCTransitionData* transition);
    // Deletes all transitions of the list.
    void RemoveTransitionList();

    // Sets the five script paths of the block `name` in `folder`, as paths relative to the
    // execution root; nothing when either is null.
    void SetScriptFile(wchar_t const* name, wchar_t const* folder);
    // Sets ModulePath from the part of `folder` behind the execution root and the block's name.
    // Outside that root the folder adds nothing, and the path begins with a point.
    void UpdateModulePath(wchar_t const* folder, wchar_t const* name);
    // Writes one of the script texts to `path` as UTF-8: 3 form page, 4 style sheet, 5 user's
    // style sheet, 6 form script, 7 block script; any other type writes an empty file. A file
    // that cannot be opened is passed over in silence.
    void SaveScriptFile(wchar_t const* path, EScriptType type);

private:
    TuString m_user;
    TuString m_uid;
    TuString m_wbs;
    TuString m_catagory;
    TuDate m_startDate;
    TuDate m_endDate;
    double m_effort = 8.0;
    double m_estimatedEffort = 8.0;
    double m_projectLate = 0.0;
    double m_duration = 1.0;
    double m_cost = 0.0;
    bool m_milestone = false;
    TuString m_taskDescription;
    TuString m_requirementDoc;
    TuString m_workInstructions;
    TuString m_application;
    TuString m_deployment;
    TuString m_executable;
    TuString m_priority;
    TuString m_predecessorID;
    TuString m_taskName;
    TuString m_taskCaption;
    TuTemplateArray<TuString> m_commandLineArg;
    TuString m_swimLane;
    bool m_lateIndicator = false;
    bool m_criticalPathIndicator = false;
    bool m_dataAvailability = false;
    TuString m_projectName;
    double m_actEffort = 0.0;
    int m_appVersion = 0;
    int m_maxIterations = 0;
    TuDate m_actStartDate;
    TuDate m_actEndDate;
    TuDate m_reminderDate;
    TuDate m_dueDate;
    TuDate m_estimatedReadyDate;
    TuDate m_estimatedEndDate;
    double m_progress = 0.0;
    bool m_notify = false;
    bool m_runOnServer = false;
    bool m_reminder = false;
    int m_reminderRepeat = 0;
    CFCExceptionList m_actionExceptionList;
    CFCExceptionList m_scriptExceptionList;
    TuString m_exceptionClass;
    CFCEventList m_eventList;
    CFCEventList m_scriptEventList;
    TuString m_eventType;
    CFCTimerList m_timerList;
    TuString m_timerName;
    TuString m_timerTransition;
    TuDate m_timerDueDate;
    int m_timerRepeat = 0;
    CFCTransitionList m_transitionList;
    CFCReminderList m_reminderList;
    TuString m_htmlScriptFileName;
    TuString m_htmlScriptCode;
    TuString m_cssScriptFileName;
    TuString m_cssScriptCode;
    TuString m_userCSSScriptFileName;
    TuString m_userCSSScriptCode;
    TuString m_jsScriptFileName;
    TuString m_jsScriptCode;
    TuString m_jythonScriptFileName;
    TuString m_jythonScriptCode;
    TuString m_modulePath;
    TuString m_iconFilePath;
    TuString m_associatedSubProcess;
    TuString m_userRole;
    TuString m_userCategory;
    bool m_gui = false;
    TuRect* m_guiRect = nullptr; // lives as long as the process
    bool m_emailNotification = false;
    bool m_userDataOverriden = false;
};

// A block of a workflow process: task, state, fork, join, group or sub-process, by node type.
class FLOWMERE_API CFCBPMTaskNode : public CFCBlockNode, public CFCBPMBlockData {
public:
    CFCBPMTaskNode();
    // The argument goes to the block's kind field; the node type is the caller's to set.
    explicit CFCBPMTaskNode(int kind);
    // Copies are shallow and share the resource record, which goes with the last of them.
    CFCBPMTaskNode(CFCBPMTaskNode const&) = default;
    CFCBPMTaskNode& operator=(CFCBPMTaskNode const&) = default;
    ~CFCBPMTaskNode() override;

    using CFCBlockData::Copy;
    using CFCBlockData::SaveScriptFile;
    using CFCBPMBlockData::Copy;
    using CFCBPMBlockData::SaveScriptFile;

    // Image of the workflow kind; 0 for kinds without one.
    int GetImage() override;
    // The embedded record, never null.
    CFCBPMBlockData* GetBPMBlockData() override;
    // Stores the id on the node, as the block's id and as TaskName.
    void SetNodeId(wchar_t const* id) override;

    // Identifier of the parent in the host's store; -1 when there is none.
    int GetParentID() { return m_parentId; }
    void SetParentID(int number) { m_parentId = number; }
    // Path of the node in the hierarchy of the execution root.
    wchar_t const* GetHierarchyPath() { return m_hierarchyPath; }
    void SetHierarchyPath(wchar_t const* text) { m_hierarchyPath = text; }
    // Why the task failed.
    wchar_t const* GetFailedReason() { return m_failedReason; }
    void SetFailedReason(wchar_t const* text) { m_failedReason = text; }
    // What the task needs to run; owned by this node and its copies, there from construction on.
    CFCResourceData* GetResourceData() { return m_resourceData.get(); }

private:
    void Initialize();
    void CreateResourceData();

    int m_parentId = -1;
    TuString m_hierarchyPath;
    std::shared_ptr<CFCResourceData> m_resourceData;
    TuString m_failedReason;
};

// The root of a workflow process.
class FLOWMERE_API CFCBPMProcessNode : public CFCProcessNode, public CFCBPMBlockData {
public:
    CFCBPMProcessNode();
    // Copies are shallow and share the inner task node.
    CFCBPMProcessNode(CFCBPMProcessNode const&) = default;
    CFCBPMProcessNode& operator=(CFCBPMProcessNode const&) = default;
    ~CFCBPMProcessNode() override;

    using CFCBlockData::Copy;
    using CFCBlockData::SaveScriptFile;
    using CFCBPMBlockData::Copy;
    using CFCBPMBlockData::SaveScriptFile;

    // Always 1.
    int GetImage() override;
    // The embedded record, never null.
    CFCBPMBlockData* GetBPMBlockData() override;

private:
    friend class CFCNodeHelper; // tears the inner task down with the tree

    CFCBPMTaskNode* m_innerTask; // left alone by the destructor; CFCNodeHelper::DestroyTree takes it
};
