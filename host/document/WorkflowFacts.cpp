#include "host/document/WorkflowFacts.h"

#include "host/basics/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace flowmere::host {

namespace {

using Values = std::vector<std::string>;

template <auto Getter>
Values textOf(IFCNode&, CFCBPMBlockData& task) {
    return {utf8((task.*Getter)())};
}

// A process is no task: it only has the name of one, which is its caption.
Values taskName(IFCNode& node, CFCBPMBlockData& task) {
    return {node.GetNodeType() == eShapeType_WorkflowProcess ? std::string() : utf8(task.GetTaskName())};
}

template <auto Getter>
Values fileOf(IFCNode&, CFCBPMBlockData& task) {
    std::string path = utf8((task.*Getter)());
    std::replace(path.begin(), path.end(), '\\', '/');
    return {path};
}

template <auto Getter>
Values flagOf(IFCNode&, CFCBPMBlockData& task) {
    return {(task.*Getter)() ? "yes" : ""};
}

template <auto Getter>
Values numberOf(IFCNode&, CFCBPMBlockData& task) {
    auto const number = (task.*Getter)();
    return {number > 0 || number < 0 ? fmt::format("{}", number) : std::string()};
}

// Day, month and year, and the time of day where there is one.
std::string dateText(TuDate const& date) {
    std::string text = utf8(date.toText());
    if (date.getHour() != 0 || date.getMinute() != 0 || date.getSecond() != 0)
        text += fmt::format(" {:02}:{:02}:{:02}", date.getHour(), date.getMinute(), date.getSecond());
    return text;
}

template <auto Getter>
Values dateOf(IFCNode&, CFCBPMBlockData& task) {
    return {dateText((task.*Getter)())};
}

void addPart(std::string& text, std::string_view word, wchar_t const* value) {
    if (*value != L'\0')
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", word, utf8(value));
}

std::string recordText(CFCActionData& record, std::string_view what) {
    std::string text;
    addPart(text, "on", record.GetActionType());
    addPart(text, what, record.GetActionName());
    addPart(text, "class", record.GetClassNameStr());
    addPart(text, "function", record.GetActionFunction());
    addPart(text, "expression", record.GetActionExpression());
    addPart(text, "text", record.GetActionValue());
    return text.empty() ? std::string(what) : text;
}

Values recordsOf(CFCNodeList& list, std::string_view what) {
    Values texts;
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
        if (auto* const record = dynamic_cast<CFCActionData*>(list.GetNextNode(place)))
            texts.push_back(recordText(*record, what));
    return texts;
}

template <auto Getter>
Values actionsOf(IFCNode&, CFCBPMBlockData& task) {
    return recordsOf(*(task.*Getter)(), "action");
}

template <auto Getter>
Values scriptsOf(IFCNode&, CFCBPMBlockData& task) {
    return recordsOf(*(task.*Getter)(), "script");
}

Values formSize(IFCNode&, CFCBPMBlockData& task) {
    TuRect const* const rect = task.GetGUIRect();
    if (rect == nullptr)
        return {};
    return {fmt::format("{}x{}", std::int64_t{rect->right} - rect->left, std::int64_t{rect->bottom} - rect->top)};
}

Values hierarchyPath(IFCNode& node, CFCBPMBlockData&) {
    auto* const task = dynamic_cast<CFCBPMTaskNode*>(&node);
    return {task == nullptr ? std::string() : utf8(task->GetHierarchyPath())};
}

Values applicationNumber(IFCNode& node, CFCBPMBlockData&) {
    auto* const application = dynamic_cast<CFCApplicationNode*>(&node);
    return {application == nullptr || application->GetAppID() == 0 ? std::string()
                                                                   : fmt::format("{}", application->GetAppID())};
}

// What an application is started with, in its order.
Values argumentsOf(IFCNode& node, CFCBPMBlockData&) {
    Values texts;
    auto* const application = dynamic_cast<CFCApplicationNode*>(&node);
    if (application == nullptr)
        return texts;
    CFCArgumentList& list = *application->GetArgumentList();
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
        if (CFCArgumentData* const argument = list.GetNext(place))
            texts.push_back(fmt::format("{}: {}", argument->GetArgumentIndex(), utf8(argument->GetArgumentValue())));
    return texts;
}

// Each with the values that it brings of its own.
Values deploymentsOf(IFCNode& node, CFCBPMBlockData&) {
    Values texts;
    auto* const application = dynamic_cast<CFCApplicationNode*>(&node);
    if (application == nullptr)
        return texts;
    CFCDeploymentList& list = *application->GetDeploymentList();
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;) {
        auto* const deployment = dynamic_cast<CFCDeploymentData*>(list.GetNextNode(place));
        if (deployment == nullptr)
            continue;
        std::string text = utf8(deployment->GetNodeCaption());
        CFCVariableList& variables = *deployment->GetVariableList();
        char const* between = ": ";
        for (__FCPOSITION* at = variables.GetHeadPosition(); at != nullptr;) {
            auto* const variable = dynamic_cast<CFCVariableData*>(variables.GetNextNode(at));
            if (variable == nullptr)
                continue;
            text += fmt::format("{}{}={}", between, utf8(variable->GetVariableName()), utf8(variable->GetValue()));
            between = ", ";
        }
        texts.push_back(std::move(text));
    }
    return texts;
}

// Those that say more than which node leads to which.
Values transitionsOf(IFCNode& node, CFCBPMBlockData& task) {
    Values texts;
    CFCTransitionList& list = *task.GetTransitionList();
    for (__FCPOSITION* place = list.GetHeadPosition(); place != nullptr;)
        if (CFCTransitionData* const transition = list.GetNext(place))
            if (std::string text = transitionText(node, *transition); text != utf8(transition->GetTransitionTo()))
                texts.push_back(std::move(text));
    return texts;
}

using Task = CFCBPMBlockData;
using Form = WorkflowForm;

constexpr WorkflowFact kFacts[] = {
    {"task", Form::Text, taskName},
    {"priority", Form::Text, textOf<&Task::GetPriority>},
    {"swimlane", Form::Text, textOf<&Task::GetSwimLane>},
    {"user", Form::Text, textOf<&Task::GetUser>},
    {"user role", Form::Text, textOf<&Task::GetUserRole>},
    {"category", Form::Text, textOf<&Task::GetUserCategory>},
    {"task category", Form::Text, textOf<&Task::GetCatagory>},
    {"project", Form::Text, textOf<&Task::GetProjectName>},
    {"planned start", Form::Text, dateOf<&Task::GetStartDate>},
    {"planned end", Form::Text, dateOf<&Task::GetEndDate>},
    {"actual start", Form::Text, dateOf<&Task::GetActStartDate>},
    {"actual end", Form::Text, dateOf<&Task::GetActEndDate>},
    {"estimated ready", Form::Text, dateOf<&Task::GetEstimatedReadyDate>},
    {"estimated end", Form::Text, dateOf<&Task::GetEstimatedEndDate>},
    {"due", Form::Text, dateOf<&Task::GetDueDate>},
    {"effort", Form::Number, numberOf<&Task::GetEffort>},
    {"estimated effort", Form::Number, numberOf<&Task::GetEstimatedEffort>},
    {"actual effort", Form::Number, numberOf<&Task::GetActEffort>},
    {"duration", Form::Number, numberOf<&Task::GetDuration>},
    {"cost", Form::Number, numberOf<&Task::GetCost>},
    {"progress", Form::Number, numberOf<&Task::GetProgress>},
    {"project late", Form::Number, numberOf<&Task::GetProjectLate>},
    {"milestone", Form::Flag, flagOf<&Task::IsMilestone>},
    {"late", Form::Flag, flagOf<&Task::IsLateIndicator>},
    {"critical path", Form::Flag, flagOf<&Task::IsCriticalPathIndicator>},
    {"data available", Form::Flag, flagOf<&Task::IsSetDataAvailability>},
    {"runs on server", Form::Flag, flagOf<&Task::IsRunOnServer>},
    {"notifies by mail", Form::Flag, flagOf<&Task::HasEmailNotification>},
    {"user data overridden", Form::Flag, flagOf<&Task::GetUserDataOverriden>},
    {"application version", Form::Number, numberOf<&Task::GetAppVersion>},
    {"application number", Form::Number, applicationNumber},
    {"arguments", Form::List, argumentsOf},
    {"deployments", Form::List, deploymentsOf},
    {"hierarchy path", Form::Text, hierarchyPath},
    {"most rounds", Form::Number, numberOf<&Task::GetMaxIterations>},
    {"requirements", Form::Text, fileOf<&Task::GetRequirementDoc>},
    {"work instructions", Form::Text, textOf<&Task::GetWorkInstructions>},
    {"form", Form::Flag, flagOf<&Task::HasGui>},
    {"form size", Form::Text, formSize},
    {"icon", Form::Text, fileOf<&Task::GetIconFilePath>},
    {"sub-process", Form::Text, textOf<&Task::GetAssociatedSubProcess>},
    {"module", Form::Text, textOf<&Task::GetModulePath>},
    {"event type", Form::Text, textOf<&Task::GetEventType>},
    {"events", Form::List, actionsOf<&Task::GetEventList>},
    {"event scripts", Form::List, scriptsOf<&Task::GetScriptEventList>},
    {"exception", Form::Text, textOf<&Task::GetExceptionClass>},
    {"exception actions", Form::List, actionsOf<&Task::GetActionExceptionList>},
    {"exception scripts", Form::List, scriptsOf<&Task::GetScriptExceptionList>},
    {"timer", Form::Text, textOf<&Task::GetTimerName>},
    {"timer due", Form::Text, dateOf<&Task::GetTimerDueDate>},
    {"timer transition", Form::Text, textOf<&Task::GetTimerTransition>},
    {"timer repeats", Form::Number, numberOf<&Task::GetTimerRepeat>},
    {"timer actions", Form::List, actionsOf<&Task::GetTimerList>},
    {"reminder", Form::Flag, flagOf<&Task::HasReminder>},
    {"reminder date", Form::Text, dateOf<&Task::GetReminderDate>},
    {"reminder repeats", Form::Number, numberOf<&Task::GetReminderRepeat>},
    {"reminder actions", Form::List, actionsOf<&Task::GetReminderList>},
    {"transitions", Form::List, transitionsOf},
};

} // namespace

std::span<WorkflowFact const> workflowFacts() {
    return kFacts;
}

Values WorkflowFact::shown(IFCNode& node, CFCBPMBlockData& task) const {
    // What a new node has, by place in the table.
    static std::vector<Values> const blanks = [] {
        CFCBPMTaskNode blank;
        std::vector<Values> all;
        for (WorkflowFact const& fact : kFacts)
            all.push_back(fact.values(blank, blank));
        return all;
    }();
    Values texts = values(node, task);
    std::erase(texts, std::string());
    bool const hasTask = !taskName(node, task).front().empty();
    if (!texts.empty() && !hasTask && texts == blanks[static_cast<std::size_t>(this - kFacts)])
        texts.clear();
    return texts;
}

std::string transitionText(IFCNode& node, CFCTransitionData& transition) {
    std::string text = utf8(transition.GetTransitionTo());
    if (std::string const label = utf8(transition.GetTransitionCaption()); !label.empty())
        text += fmt::format(" \"{}\"", label);
    std::string const name = utf8(transition.GetTransitionName());
    if (!name.empty() && name != utf8(node.GetNodeId()) + "." + utf8(transition.GetTransitionTo()))
        text += fmt::format(", named {}", name);
    return text;
}

} // namespace flowmere::host
