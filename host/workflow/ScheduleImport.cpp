#include "host/workflow/ScheduleImport.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/files/InputFile.h"
#include "host/files/XmlFault.h"
#include "host/workflow/Names.h"
#include "host/workflow/ScheduleLinks.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// What the library calls a process whose file says nothing.
constexpr wchar_t kNamelessProcess[] = L"Block Library";

// The children that are tasks, in the order of the file.
std::vector<IFCNode*> tasksIn(IFCNode& container) {
    std::vector<IFCNode*> tasks;
    for (IFCNode* child = container.GetChild(); child != nullptr; child = child->GetNext())
        if (child->GetBPMBlockData() != nullptr && dynamic_cast<CFCBlockNode*>(child) != nullptr)
            tasks.push_back(child);
    std::reverse(tasks.begin(), tasks.end());
    return tasks;
}

// A container before what is in it.
std::vector<IFCNode*> allTasks(IFCNode& process) {
    std::vector<IFCNode*> tasks;
    std::vector<IFCNode*> open{&process};
    while (!open.empty()) {
        IFCNode* const container = open.back();
        open.pop_back();
        if (container != &process)
            tasks.push_back(container);
        std::vector<IFCNode*> const inner = tasksIn(*container);
        open.insert(open.end(), inner.rbegin(), inner.rend());
    }
    return tasks;
}

// "2024-03-05 08:00"; empty for a date that is none.
std::string dateText(TuDate const& date) {
    bool const isDay = date.getYear() > 0 && date.getMonth() >= 1 && date.getMonth() <= 12 && date.getDay() >= 1 &&
                       date.getDay() <= 31;
    if (!isDay)
        return {};
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", date.getYear(), date.getMonth(), date.getDay(), date.getHour(),
                       date.getMinute());
}

std::string descriptionOf(CFCBPMBlockData& task) {
    std::string text;
    auto const add = [&text](std::string_view word, std::string const& value) {
        if (!value.empty())
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", word, oneLine(value));
    };
    add("WBS", utf8(task.GetWBS()));
    add("UID", utf8(task.GetUID()));
    add("start", dateText(task.GetStartDate()));
    add("finish", dateText(task.GetEndDate()));
    add("predecessor UID", utf8(task.GetPredecessorID()));
    if (task.IsMilestone())
        text += text.empty() ? "milestone" : ", milestone";
    return text;
}

// The library's reader, and the end of the nodes that it has made in vain.
class Reader : public CFCMSPReader {
public:
    Reader() = default;
    ~Reader() override {
        for (CFCScheduleFinding const& finding : GetFindings())
            if (finding.IsTaskLeftOut())
                CFCNodeHelper::DestroyTree(finding.node);
    }
    Reader(Reader const&) = delete;
    Reader& operator=(Reader const&) = delete;
};

class Import {
public:
    Import(std::string const& name, bool connects) : m_name(name) {
        read();
        m_result.leftOut = leftOutTasks(m_reader, process(), m_name);
        settleProcess();
        for (IFCNode* const task : allTasks(process()))
            settleKind(*task);
        nameLevels();
        for (IFCNode* const task : allTasks(process()))
            settleRecord(*task);
        tellValues();
        if (connects)
            connect();
    }
    Schedule take() { return std::move(m_result); }

private:
    IFCNode& process() { return *m_result.process; }

    void changed(std::string const& place, std::string const& text) {
        m_result.notes.push_back({Note::Kind::Changed, place, text});
    }
    void lost(std::string const& place, std::string const& text) {
        m_result.notes.push_back({Note::Kind::Lost, place, text});
    }

    void read() {
        if (std::string const fault = inputFault(m_name); !fault.empty())
            throw Failure(m_name, "", fault);
        m_reader.SetNodeFactory(&m_factory);
        IFCNode* root = nullptr;
        if (!m_reader.Parse(libraryPath(m_name), &root, 0) || root == nullptr)
            throw xmlFailure(m_name, m_reader);
        m_result.process.reset(root);
        m_result.tasks = m_reader.GetTaskCount();
        if (m_result.tasks > 0)
            return;
        // Any XML without tasks could be an empty schedule.
        std::string const element = rootElement(m_name);
        if (localName(element) != "Project")
            throw Failure(m_name, "",
                          element.empty() ? "is no schedule: there are no tasks in it"
                                          : fmt::format("is no schedule: it holds a \"{}\" and no tasks", element));
    }

    // Its own UID makes a task of a process, as far as the library goes.
    void settleProcess() {
        process().SetNodeType(eShapeType_WorkflowProcess);
        std::wstring_view const caption = process().GetNodeCaption();
        if (caption.empty() || caption == kNamelessProcess)
            process().SetNodeCaption(wide(fs::path(m_name).stem().string()));
        process().SetNodeId(L"");
    }

    void settleKind(IFCNode& task) {
        if (task.GetNodeType() != eShapeType_SuperState && !tasksIn(task).empty()) {
            task.SetNodeType(eShapeType_SuperState);
            m_grown.push_back(&task);
        }
        bool const isSuperState = task.GetNodeType() == eShapeType_SuperState;
        ++(isSuperState ? m_result.superStates : m_result.blocks);
        m_empty += isSuperState && task.GetChild() == nullptr ? 1 : 0;
    }

    void nameLevels() {
        std::vector<IFCNode*> containers = allTasks(process());
        containers.insert(containers.begin(), &process());
        for (IFCNode* const container : containers)
            nameLevel(*container);
        for (IFCNode* const task : m_grown)
            changed(pathOf(*task), "becomes a super-state: there are tasks in it");
        if (m_empty > 0)
            changed("",
                    fmt::format("no task is in {} of the super-states, and the flow needs one to go through: Type 1, "
                                "or a WBS as 1.2, makes super-states",
                                m_empty));
    }

    void nameLevel(IFCNode& container) {
        LevelNames names;
        std::vector<IFCNode*> rest;
        // Those that can keep their names come first.
        for (IFCNode* const task : tasksIn(container)) {
            TuString const wanted(task->GetNodeId());
            if (wanted.IsEmpty() || safeName(wanted) != wanted || !names.take(wanted))
                rest.push_back(task);
        }
        for (IFCNode* const task : rest)
            rename(*task, names);
    }

    void rename(IFCNode& task, LevelNames& names) {
        std::string const above = pathOf(*task.GetParentNode());
        TuString const before(task.GetNodeId());
        TuString wanted = safeName(before);
        if (wanted.IsEmpty()) {
            TuString const uid = safeName(TuString(task.GetBPMBlockData()->GetUID()));
            wanted = uid.IsEmpty() ? TuString(L"Task") : TuString(L"Task ") + uid;
        }
        TuString const name = names.takeUnique(wanted);
        task.SetNodeId(name);
        // Documents call a block without a caption by its identifier.
        if (before.IsEmpty())
            task.SetNodeCaption(name);
        std::string const place = (above.empty() ? above : above + ".") + "\"" + oneLine(utf8(before)) + "\"";
        changed(place, fmt::format("is called \"{}\" from now on: {}", utf8(name),
                                   before.IsEmpty() ? "it has no name"
                                   : name != wanted || safeName(before) == before
                                       ? "names are unique in their level, whatever their case"
                                       : "names become folders and parts of paths"));
    }

    void settleRecord(IFCNode& task) {
        CFCBPMBlockData& record = *task.GetBPMBlockData();
        record.SetTaskName(task.GetNodeId());
        task.SetNodeDescription(wide(descriptionOf(record)));
        m_result.predecessors += *record.GetPredecessorID() != L'\0' ? 1 : 0;
    }

    void tellValues() {
        for (CFCScheduleFinding const& finding : m_reader.GetFindings()) {
            std::string const place = finding.node != nullptr ? pathOf(*finding.node) : std::string();
            std::string const value = oneLine(utf8(finding.value));
            if (finding.kind == CFCScheduleFinding::DateNotRead)
                lost(place, fmt::format("its {} \"{}\": that is no date as 2024-03-05T08:00:00",
                                        finding.element == L"Start" ? "start" : "finish", value));
            else if (finding.kind == CFCScheduleFinding::PredecessorReplaced)
                lost(place, fmt::format("its predecessor, UID {}: a task keeps one, the last", value));
        }
    }

    void connect() {
        ScheduleLinks links = connectTasks(process(), m_reader.GetFindings());
        m_result.connectors = links.connectors;
        m_result.notes.insert(m_result.notes.end(), links.notes.begin(), links.notes.end());
        if (links.branchings > 0)
            changed("", fmt::format("several tasks follow {}: by itself the flow goes on to the first alone, where no "
                                    "fork stands between them",
                                    links.branchings == 1 ? "one of the tasks"
                                                          : fmt::format("each of {} tasks", links.branchings)));
    }

    std::string const& m_name;
    HostFactory m_factory;
    Reader m_reader;
    std::vector<IFCNode*> m_grown; // to super-states, by what is in them
    std::size_t m_empty = 0;       // super-states without tasks
    Schedule m_result;
};

std::string tasksWith(std::size_t count, std::string_view what) {
    return fmt::format("{} of {}", what, counted(count, "task"));
}

// Puts the notes of the schedule in front of the others.
void addNotes(Schedule& schedule, std::vector<Note>& notes) {
    notes.insert(notes.begin(), schedule.notes.begin(), schedule.notes.end());
}

} // namespace

Schedule readSchedule(std::string const& name, bool connects) {
    return Import(name, connects).take();
}

NativeTree documentOf(Schedule& schedule) {
    std::vector<IFCNode*> const tasks = allTasks(*schedule.process);
    for (IFCNode* const task : tasks) {
        // Told below, once for all.
        if (task->GetNodeType() == eShapeType_SuperState)
            task->SetNodeType(eShapeType_BasicSubProcess);
        CFCBPMBlockData& record = *task->GetBPMBlockData();
        record.SetMilestone(false);
        record.SetStartDate(TuDate());
        record.SetEndDate(TuDate());
    }
    if (schedule.superStates > 0)
        schedule.notes.push_back({Note::Kind::Changed, "",
                                  schedule.superStates == 1
                                      ? "the super-state becomes a sub-process"
                                      : fmt::format("the {} super-states become sub-processes", schedule.superStates)});
    if (!tasks.empty())
        schedule.notes.push_back({Note::Kind::Changed, "",
                                  tasksWith(tasks.size(), "WBS, UID, dates, predecessor and milestone") +
                                      " stand in the descriptions: blocks of a document have no other place for them"});
    NativeTree tree = fromWorkflow(*schedule.process, {});
    addNotes(schedule, tree.notes);
    return tree;
}

WorkflowTree workflowOf(Schedule& schedule) {
    if (std::size_t const count = allTasks(*schedule.process).size(); count > 0)
        schedule.notes.push_back({Note::Kind::Changed, "",
                                  tasksWith(count, "WBS, UID, time of day and predecessor") +
                                      " stand in the descriptions: a workflow has no other place for them"});
    WorkflowTree tree = scheduleToWorkflow(dynamic_cast<CFCProcessNode&>(*schedule.process));
    addNotes(schedule, tree.notes);
    return tree;
}

} // namespace flowmere::host
