#include "host/workflow/ScheduleLeftOut.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <string_view>

namespace flowmere::host {

namespace {

using Reason = LeftOutTask::Reason;

// Shortens what must begin with the given text.
bool takeText(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start))
        return false;
    text.remove_prefix(start.size());
    return true;
}

// The lines on which the tasks of a file begin; none when they cannot be told apart by them.
std::vector<int> taskLines(std::filesystem::path const& file, int count) {
    std::ifstream in(file, std::ios::binary);
    std::string const bytes{std::istreambuf_iterator<char>(in), {}};
    std::string_view const text = bytes;
    std::vector<int> lines;
    int line = 1;
    std::size_t counted = 0;
    for (std::size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at)) {
        std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--") || rest.starts_with("<![CDATA[")) {
            at = text.find(rest.starts_with("<!--") ? "-->" : "]]>", at);
            continue;
        }
        if (takeText(rest, "<Task") && !rest.empty() && std::string_view("/> \t\r\n").find(rest[0]) != rest.npos) {
            line += static_cast<int>(std::count(text.begin() + static_cast<std::ptrdiff_t>(counted),
                                                text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
            counted = at;
            lines.push_back(line);
        }
        ++at;
    }
    bool const areKnown = lines.size() == static_cast<std::size_t>(count) &&
                          std::adjacent_find(lines.begin(), lines.end()) == lines.end();
    return areKnown ? lines : std::vector<int>();
}

struct CodeLess {
    bool operator()(TuString const& left, TuString const& right) const { return left.CompareNoCase(right) < 0; }
};

enum class Place { Top, Below, LeftOut };

// Where the task of each WBS has gone. One at the top counts before another of the same WBS.
std::map<TuString, Place, CodeLess> placesOf(CFCMSPReader const& reader, IFCNode& process) {
    std::map<TuString, Place, CodeLess> places;
    std::vector<IFCNode*> open;
    auto const add = [&](IFCNode& container, Place place) {
        for (IFCNode* child = container.GetChild(); child != nullptr; child = child->GetNext())
            if (CFCBPMBlockData* const task = child->GetBPMBlockData()) {
                places.try_emplace(TuString(task->GetWBS()), place);
                open.push_back(child);
            }
    };
    add(process, Place::Top);
    while (!open.empty()) {
        IFCNode* const node = open.back();
        open.pop_back();
        add(*node, Place::Below);
    }
    for (CFCScheduleFinding const& finding : reader.GetFindings())
        if (finding.IsTaskLeftOut() && finding.kind != CFCScheduleFinding::ProjectSummary && !finding.wbs.IsEmpty())
            places.try_emplace(finding.wbs, Place::LeftOut);
    return places;
}

bool isBlank(TuString const& text) {
    std::wstring_view const view = text.View();
    return std::all_of(view.begin(), view.end(), [](wchar_t letter) { return letter == L' ' || letter <= L'\r'; });
}

// What the reader looks for, and did not find.
std::string typeText(CFCScheduleFinding const& finding) {
    if (finding.lateType == L"1")
        return "its Type 1 stands behind its WBS, where it does not count";
    if (!finding.type.IsEmpty())
        return fmt::format("its Type is {}", oneLine(utf8(finding.type)));
    return finding.lateType.IsEmpty() ? "it has no Type" : "it has no Type in front of its WBS";
}

class Judge {
public:
    Judge(CFCMSPReader const& reader, IFCNode& process) : m_places(placesOf(reader, process)) {}

    void judge(CFCScheduleFinding const& finding, LeftOutTask& task) const {
        switch (finding.kind) {
        case CFCScheduleFinding::ProjectSummary:
            task.reason = Reason::WholeProject;
            break;
        case CFCScheduleFinding::TaskWithoutWBS:
            task.reason = isBlank(finding.name) ? Reason::Blank : Reason::NoWBS;
            break;
        case CFCScheduleFinding::ParentMissing:
        case CFCScheduleFinding::ParentNotNewest:
            judgePlace(finding, task);
            break;
        case CFCScheduleFinding::InsideLeftOutTask:
            task.reason = Reason::Inside;
            break;
        default:
            task.reason = Reason::NoBlock;
            break;
        }
    }

private:
    void judgePlace(CFCScheduleFinding const& finding, LeftOutTask& task) const {
        std::string const parent = oneLine(utf8(finding.parent));
        if (isBlank(finding.wbs)) {
            task.reason = isBlank(finding.name) ? Reason::Blank : Reason::NoWBS;
            return;
        }
        if (finding.parent.IsEmpty()) {
            task.reason = Reason::Top;
            task.detail = typeText(finding);
            return;
        }
        auto const place = m_places.find(finding.parent);
        if (place == m_places.end())
            task.reason = Reason::ParentAbsent;
        else if (place->second == Place::LeftOut)
            task.reason = Reason::ParentLeftOut;
        else if (place->second == Place::Below)
            task.reason = Reason::TooDeep;
        else
            task.reason = Reason::NotInTurn;
        task.detail = fmt::format("belongs below {}", parent);
        if (task.reason == Reason::NotInTurn)
            task.detail +=
                finding.kind == CFCScheduleFinding::ParentMissing
                    ? ", and none was there yet"
                    : fmt::format(", and {} was the last",
                                  finding.value.IsEmpty() ? "one without a WBS" : oneLine(utf8(finding.value)));
    }

    std::map<TuString, Place, CodeLess> m_places;
};

struct ReasonText {
    char const* word; // stands in outputs that programs read: never change one
    char const* one;
    char const* several;
};

// In the order of the reasons.
constexpr std::array<ReasonText, 10> kReasons = {{
    {"whole-project", "it is the row of the whole project, and the process stands for that",
     "they are rows of the whole project, and the process stands for that"},
    {"blank", "its row is blank", "their rows are blank"},
    {"no-wbs", "it has no WBS, and only that says where a task belongs",
     "they have no WBS, and only that says where a task belongs"},
    {"top", "its WBS puts it at the top, where only summary tasks (Type 1) come in",
     "their WBS puts them at the top, where only summary tasks (Type 1) come in"},
    {"parent-absent", "no task in the file has the WBS above its own",
     "no task in the file has the WBS above their own"},
    {"parent-left-out", "the task above it is left out, too", "the tasks above them are left out, too"},
    {"too-deep", "the task above it is not at the top, and only those there hold others",
     "the tasks above them are not at the top, and only those there hold others"},
    {"not-in-turn", "the task above it is not the one before it at the top",
     "the tasks above them are not the ones before them at the top"},
    {"inside", "it stands inside a task that is left out", "they stand inside tasks that are left out"},
    {"no-block", "no block can be made of it", "no blocks can be made of them"},
}};

ReasonText const& textFor(Reason reason) {
    return kReasons[static_cast<std::size_t>(reason)];
}

std::string lineOf(LeftOutTask const& task) {
    std::string text = "    ";
    if (task.line > 0)
        text += fmt::format("line {}: ", task.line);
    else
        text += fmt::format("task {}: ", task.number);
    text += task.name.empty() ? "without a name" : fmt::format("\"{}\"", oneLine(task.name));
    std::string codes;
    if (!task.uid.empty())
        codes += fmt::format("UID {}", oneLine(task.uid));
    if (task.wbs.find_first_not_of(" \t\r\n") != std::string::npos)
        codes += fmt::format("{}WBS {}", codes.empty() ? "" : ", ", oneLine(task.wbs));
    if (!codes.empty())
        text += fmt::format(" ({})", codes);
    return text + (task.detail.empty() ? "" : ": " + task.detail) + "\n";
}

} // namespace

std::vector<LeftOutTask> leftOutTasks(CFCMSPReader const& reader, IFCNode& process, std::filesystem::path const& file) {
    std::vector<LeftOutTask> tasks;
    std::vector<int> lines;
    Judge const judge(reader, process);
    for (CFCScheduleFinding const& finding : reader.GetFindings()) {
        if (!finding.IsTaskLeftOut())
            continue;
        if (tasks.empty())
            lines = taskLines(file, reader.GetTaskCount());
        LeftOutTask& task = tasks.emplace_back();
        task.number = finding.number;
        task.line = lines.empty() ? 0 : lines[static_cast<std::size_t>(finding.number) - 1];
        task.name = utf8(finding.name);
        task.uid = utf8(finding.uid);
        task.wbs = utf8(finding.wbs);
        judge.judge(finding, task);
    }
    return tasks;
}

bool hasLosses(std::vector<LeftOutTask> const& tasks) {
    return std::any_of(tasks.begin(), tasks.end(), [](LeftOutTask const& task) { return task.isLoss(); });
}

std::string textOf(std::vector<LeftOutTask> const& tasks) {
    std::array<std::vector<LeftOutTask const*>, kReasons.size()> groups;
    for (LeftOutTask const& task : tasks)
        groups[static_cast<std::size_t>(task.reason)].push_back(&task);
    std::string text;
    for (std::vector<LeftOutTask const*> const& group : groups) {
        if (group.empty())
            continue;
        ReasonText const& reason = textFor(group.front()->reason);
        text += fmt::format("{} {} left out: {}\n", group.front()->isLoss() ? '-' : '~', counted(group.size(), "task"),
                            group.size() == 1 ? reason.one : reason.several);
        for (LeftOutTask const* const task : group)
            text += lineOf(*task);
    }
    return text;
}

Json jsonOf(std::vector<LeftOutTask> const& tasks) {
    Json list = Json::array();
    for (LeftOutTask const& task : tasks)
        list.push_back({{"task", task.number},
                        {"line", task.line > 0 ? Json(task.line) : Json(nullptr)},
                        {"name", task.name},
                        {"uid", task.uid},
                        {"wbs", task.wbs},
                        {"reason", textFor(task.reason).word},
                        {"text", textFor(task.reason).one + (task.detail.empty() ? "" : "; " + task.detail)},
                        {"lost", task.isLoss()}});
    return list;
}

} // namespace flowmere::host
