// Process lists: reading, writing and merging, and how their times grow with the number of entries.
#include "benchmarks/Measure.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCProcessListWriter.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>

namespace {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using List = std::unique_ptr<CFCProcessList, TreeEnd>;

// How the entries stand in a list.
enum Shape : int {
    Flat,      // all in one group
    Grouped,   // a hundred in each group
    SameNames, // each in a group of its own, all of one name
};

constexpr char const* kShapes[] = {"flat", "grouped", "same names"};

TuString numbered(wchar_t const* stem, int number) {
    TuString text;
    text.Format(L"%s_%06d", stem, number);
    return text;
}

// Entries with the numbers from `first` on, of a BPM list.
List makeList(Shape shape, int first, int count) {
    constexpr int kInGroup = 100;
    CFCNodeFactory factory;
    List list(new CFCProcessList);
    list->SetNodeType(69);
    list->SetNodeCaption(L"BPM Processes");
    IFCNode* group = nullptr;
    for (int number = first; number < first + count; ++number) {
        bool const isNext = shape == SameNames || (shape == Grouped && number % kInGroup == 0);
        if (group == nullptr || isNext) {
            group = factory.Create(71);
            group->SetNodeCaption(shape == Grouped ? numbered(L"Group", number / kInGroup) : TuString(L"Group"));
            group->SetNewPath(true);
            list->AppendChild(group, false);
        }
        IFCNode* const file = factory.Create(70);
        file->SetNodeCaption(numbered(L"Process", number));
        file->SetItemFilePath(L"BPM\\" + numbered(L"process", number) + L"\\processdefinition.xml");
        file->SetProjectType(EProjectType_TASK);
        file->SetNodeId(numbered(L"id", number));
        file->SetVersionNo(1.5F);
        file->SetNewPath(true);
        group->AppendChild(file, false);
    }
    return list;
}

class Files {
public:
    Files() : m_folder(std::filesystem::temp_directory_path() / ("flowmere_list_bench_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder);
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Files(Files const&) = delete;
    Files& operator=(Files const&) = delete;

    TuString path(std::string const& name) const { return TuString((m_folder / name).c_str()); }

private:
    std::filesystem::path m_folder;
};

Files& files() {
    static Files instance;
    return instance;
}

void write(TuString const& path, CFCProcessList* list) {
    CFCProcessListWriter().WriteFile(path, list, false, true);
}

List read(TuString const& path) {
    CFCNodeFactory factory;
    CFCProcessListReader reader;
    reader.SetNodeFactory(&factory);
    List list(new CFCProcessList);
    reader.Parse(path, list.get(), L"base");
    return list;
}

void readList(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    TuString const path = files().path("BPMProcess.lst");
    write(path, makeList(Grouped, 0, count).get());
    Times times;
    for (auto _ : state) {
        List list;
        times.add(state, [&] { list = read(path); });
        if (CFCNodeHelper::GetBlockCount(list.get()) < count)
            state.SkipWithError("the list was not read");
    }
    report(state, "read", count, times);
}

void writeList(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    List const list = makeList(Grouped, 0, count);
    TuString const path = files().path("BPMProcess.lst");
    Times times;
    for (auto _ : state)
        times.add(state, [&] { write(path, list.get()); });
    if (CFCNodeHelper::GetBlockCount(read(path).get()) < count)
        state.SkipWithError("the list was not written");
    report(state, "write", count, times);
}

// Two lists of that many entries, half of which both have.
void mergeLists(benchmark::State& state, void (*merge)(IFCNode*, IFCNode*), char const* name) {
    auto const shape = static_cast<Shape>(state.range(0));
    int const count = static_cast<int>(state.range(1));
    List const source = makeList(shape, count / 2, count);
    Times times;
    for (auto _ : state) {
        List const target = makeList(shape, 0, count);
        times.add(state, [&] { merge(target.get(), source->GetChild()); });
        if (CFCNodeHelper::GetBlockCount(target.get()) < count + count / 2)
            state.SkipWithError("entries were lost");
    }
    report(state, std::string(name) + kShapes[shape], count, times);
}

// Reads two lists, merges them and writes the result.
void mergeFiles(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    TuString const common = files().path("common_BPMProcess.lst");
    TuString const own = files().path("own_BPMProcess.lst");
    TuString const merged = files().path("merged_BPMProcess.lst");
    write(common, makeList(Grouped, 0, count).get());
    write(own, makeList(Grouped, count / 2, count).get());
    Times times;
    for (auto _ : state)
        times.add(state, [&] {
            List const target = read(common);
            List const source = read(own);
            CFCNodeHelper::Consolidate(target.get(), source->GetChild());
            write(merged, target.get());
        });
    report(state, "files", count, times);
}

void counts(benchmark::internal::Benchmark* benchmark) {
    for (int const count : {1000, 10000, 20000, 100000})
        benchmark->Arg(count);
    benchmark->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
}

void shapes(benchmark::internal::Benchmark* benchmark) {
    for (int const shape : {Flat, Grouped, SameNames})
        for (int const count : {1000, 10000, 20000, 100000})
            benchmark->Args({shape, count});
    benchmark->ArgNames({"shape", "entries"})->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
}

BENCHMARK(readList)->Apply(counts);
BENCHMARK(writeList)->Apply(counts);
BENCHMARK_CAPTURE(mergeLists, consolidate, &CFCNodeHelper::Consolidate, "consolidate ")->Apply(shapes);
BENCHMARK_CAPTURE(mergeLists, consolidate2, &CFCNodeHelper::Consolidate2, "consolidate2 ")->Apply(shapes);
BENCHMARK(mergeFiles)->Apply(counts);

} // namespace
