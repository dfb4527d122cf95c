// Importing a project schedule against parsing its file alone. Two forms of it: tasks with what other programs write of
// each, one element to a line, and tasks with little beyond what is read, the whole file in one line. In both a tenth
// of the tasks are summaries, and the others stand below them.
#include "BareXml.h"
#include "Measure.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/workflow/FCMSPReader.h"
#include "flowmere/xml/XmlPlatform.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

enum Form : std::int64_t { kUsual, kOneLine };

// The elements that only other programs read, in two lots with what is read between them.
constexpr char const* kFirstLot[] = {"<Active>1</Active>", "<Manual>0</Manual>", "<IsNull>0</IsNull>",
                                     "<CreateDate>2024-01-08T09:30:00</CreateDate>"};
constexpr char const* kSecondLot[] = {"<OutlineLevel>2</OutlineLevel>",
                                      "<Priority>500</Priority>",
                                      "<DurationFormat>7</DurationFormat>",
                                      "<Work>PT8H0M0S</Work>",
                                      "<ResumeValid>0</ResumeValid>",
                                      "<EffortDriven>0</EffortDriven>",
                                      "<Recurring>0</Recurring>",
                                      "<OverAllocated>0</OverAllocated>",
                                      "<Estimated>0</Estimated>",
                                      "<Summary>0</Summary>",
                                      "<Critical>0</Critical>",
                                      "<EarlyStart>2024-01-08T08:00:00</EarlyStart>",
                                      "<EarlyFinish>2024-01-08T17:00:00</EarlyFinish>",
                                      "<LateStart>2024-01-08T08:00:00</LateStart>",
                                      "<LateFinish>2024-01-08T17:00:00</LateFinish>",
                                      "<FreeSlack>0</FreeSlack>",
                                      "<TotalSlack>0</TotalSlack>",
                                      "<FixedCost>0</FixedCost>",
                                      "<PercentComplete>0</PercentComplete>",
                                      "<Cost>0</Cost>",
                                      "<ActualDuration>PT0H0M0S</ActualDuration>",
                                      "<RemainingDuration>PT8H0M0S</RemainingDuration>",
                                      "<ConstraintType>0</ConstraintType>",
                                      "<CalendarUID>-1</CalendarUID>",
                                      "<IgnoreResourceCalendar>0</IgnoreResourceCalendar>"};

class ScheduleText {
public:
    explicit ScheduleText(Form form) : m_form(form) {}

    void add(std::string const& element) {
        m_text += element;
        if (m_form == kUsual)
            m_text += "\n\t\t\t";
    }
    void addTask(int number) {
        int const group = number / 10 + 2;
        std::string const uid = std::to_string(number + 1);
        bool const isSummary = number % 10 == 0;
        add("<Task>");
        add("<UID>" + uid + "</UID>");
        add("<Name>Work out step " + uid + "</Name>");
        if (m_form == kUsual)
            addAll(kFirstLot);
        add(isSummary ? "<Type>1</Type>" : "<Type>0</Type>");
        add("<WBS>" + std::to_string(group) + (isSummary ? "" : "." + std::to_string(number % 10)) + "</WBS>");
        add("<Start>2024-01-08T08:00:00</Start>");
        add("<Finish>2024-01-08T17:00:00</Finish>");
        add("<Duration>PT8H0M0S</Duration>");
        add("<Milestone>0</Milestone>");
        if (m_form == kUsual)
            addAll(kSecondLot);
        if (!isSummary) {
            add("<PredecessorLink>");
            add("<PredecessorUID>" + std::to_string(number) + "</PredecessorUID>");
            add("</PredecessorLink>");
        }
        add("</Task>");
    }
    std::string const& text() const { return m_text; }

private:
    template <typename Elements>
    void addAll(Elements const& elements) {
        for (char const* const element : elements)
            add(element);
    }

    Form m_form;
    std::string m_text;
};

// The files of the benchmarks, in a folder that goes with them.
class Files {
public:
    Files()
        : m_folder(std::filesystem::temp_directory_path() / ("flowmere_schedule_bench_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder);
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Files(Files const&) = delete;
    Files& operator=(Files const&) = delete;

    // A schedule of that many tasks, written once.
    std::filesystem::path schedule(Form form, int count) const {
        std::filesystem::path const path =
            m_folder / ("plan_" + std::to_string(form) + "_" + std::to_string(count) + ".xml");
        if (std::filesystem::exists(path))
            return path;
        ScheduleText content(form);
        content.add("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
        content.add("<Project xmlns=\"urn:flowmere:benchmark\">");
        content.add("<Name>Benchmark</Name>");
        content.add("<Tasks>");
        for (int number = 0; number < count; ++number)
            content.addTask(number);
        content.add("</Tasks>");
        content.add("</Project>");
        std::ofstream(path, std::ios::binary) << content.text();
        return path;
    }

private:
    std::filesystem::path m_folder;
};

Files& files() {
    static Files instance;
    return instance;
}

int countOf(IFCNode* node) {
    int tasks = 0;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
        tasks += (child->GetBPMBlockData() != nullptr ? 1 : 0) + countOf(child);
    return tasks;
}

void importAgainstBareParse(benchmark::State& state) {
    auto const form = static_cast<Form>(state.range(0));
    int const count = static_cast<int>(state.range(1));
    std::filesystem::path const path = files().schedule(form, count);
    flowmere::XmlPlatform const platform;
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] { parseBare(path); });
        CFCNodeFactory factory;
        Tree tree;
        double const ours = secondsOf([&] {
            CFCMSPReader reader;
            reader.SetNodeFactory(&factory);
            IFCNode* node = nullptr;
            reader.Parse(TuString(path.string().c_str()), &node, 0);
            tree.reset(node);
        });
        if (tree == nullptr || countOf(tree.get()) != count) {
            state.SkipWithError("tasks were left out");
            return;
        }
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    report(state, form == kUsual ? "import usual form" : "import one line", count, sides,
           "ratio: at most 1.3, growth: at most 12");
}

BENCHMARK(importAgainstBareParse)
    ->Args({kUsual, kSmall})
    ->Args({kOneLine, kSmall})
    ->ArgNames({"form", "tasks"})
    ->UseManualTime()
    ->Iterations(15)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(importAgainstBareParse)
    ->Args({kUsual, kLarge})
    ->Args({kOneLine, kLarge})
    ->ArgNames({"form", "tasks"})
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
