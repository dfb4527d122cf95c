// Documents against the parser library alone: reading, writing, memory and walks of a process whose blocks have three
// variables and one connector each.
#include "BareXml.h"
#include "Measure.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"
#include "flowmere/xml/XmlPlatform.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

TuString wide(std::filesystem::path const& path) {
    return TuString(path.string().c_str());
}

TuString numbered(wchar_t const* stem, int number) {
    TuString text;
    text.Format(L"%s_%05d", stem, number);
    return text;
}

void addVariable(CFCBlockNode* block, wchar_t const* name, wchar_t const* caption, wchar_t const* type,
                 TuString const& value) {
    CFCVariableData* const variable = block->CreateNewVariable();
    variable->SetVariableName(name);
    variable->SetCaption(caption);
    variable->SetValue(value);
    CFCNodeHelper::SetDataTypeNode(variable, type);
    variable->SetDataType(type);
    variable->SetVisible(true);
    variable->UpdateValue();
}

// A flow of blocks in a row, each with three variables, and a connector from each to the next.
Tree makeProcess(int count) {
    CFCNodeFactory factory;
    Tree process(factory.Create(56));
    process->SetNodeCaption(L"Benchmark");
    std::vector<CFCBlockNode*> blocks;
    for (int number = 0; number < count; ++number) {
        CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(factory.Create(57));
        process->AppendChild(block, false);
        block->SetNodeId(numbered(L"Step", number));
        block->SetNodeCaption(numbered(L"Work out step", number));
        int const column = number % 8 * 150 + 50;
        int const row = number / 8 % 12 * 100 + 50;
        block->SetTuRect(column, row, column + 100, row + 50);
        block->SetToolTip(L"Works out one step of the study");
        block->SetDescription(L"Takes the load of the step before and gives the stress of its own section.");
        block->SetScriptName(L"Study." + numbered(L"Step", number));
        block->SetScriptType(EScriptType_PYTHON);
        TuString value;
        value.Format(L"%d", number);
        addVariable(block, L"count", L"Number of the step", L"Int", value);
        value.Format(L"%d.25", number);
        addVariable(block, L"load", L"Load in newton", L"Double", value);
        addVariable(block, L"material", L"Material", L"String", L"Steel S235JR");
        blocks.push_back(block);
    }
    for (int number = 0; number < count; ++number) {
        CFCConnector* const connector = CFCPointerConverter::GetConnector(factory.Create(68));
        connector->SetStartNode(6, blocks[static_cast<std::size_t>(number)], L"");
        connector->SetEndNode(2, blocks[static_cast<std::size_t>((number + 1) % count)], L"");
        process->AddConnector(connector);
    }
    return process;
}

// The files of the benchmarks, below an empty folder that is base path and user path too.
class Files {
public:
    Files()
        : m_folder(std::filesystem::temp_directory_path() / ("flowmere_document_bench_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder);
        CFCEnvironment::SetBasePath(wide(m_folder));
        CFCEnvironment::SetUserPath(wide(m_folder));
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Files(Files const&) = delete;
    Files& operator=(Files const&) = delete;

    // A document of that many blocks, written once.
    std::filesystem::path document(int count) {
        std::filesystem::path path = m_folder / ("blocks_" + std::to_string(count) + ".bpt");
        if (!std::filesystem::exists(path)) {
            Tree const process = makeProcess(count);
            CFCWriter().WriteFile(wide(path), process.get(), true);
        }
        return path;
    }
    std::filesystem::path target(char const* name) const { return m_folder / name; }

private:
    std::filesystem::path m_folder;
};

Files& files() {
    static Files instance;
    return instance;
}

IFCNode* read(std::filesystem::path const& path) {
    CFCNodeFactory factory;
    CFCReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    reader.Parse(wide(path), &node, 1);
    return node;
}

void readAgainstBareParse(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::filesystem::path const path = files().document(count);
    flowmere::XmlPlatform const platform;
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] { parseBare(path); });
        Tree tree;
        double const ours = secondsOf([&] { tree.reset(read(path)); });
        if (tree == nullptr) {
            state.SkipWithError("the document was not read");
            return;
        }
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    report(state, "read", count, sides, "ratio: at most 1.15, growth: at most 12");
}

BENCHMARK(readAgainstBareParse)->Arg(kSmall)->UseManualTime()->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK(readAgainstBareParse)->Arg(kLarge)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void writeAgainstBareCalls(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::filesystem::path const path = files().document(count);
    flowmere::XmlPlatform const platform;
    Recipe const recipe(path);
    Tree const tree(read(path));
    std::filesystem::path const oursPath = files().target("ours.bpt");
    std::filesystem::path const barePath = files().target("bare.bpt");
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] { recipe.writeTo(barePath); });
        double const ours = secondsOf([&] { CFCWriter().WriteFile(wide(oursPath), tree.get(), true); });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    if (!areEqual(oursPath, barePath)) {
        state.SkipWithError("the two files differ");
        return;
    }
    report(state, "write", count, sides, "ratio: at most 1.3, growth: at most 12");
}

BENCHMARK(writeAgainstBareCalls)->Arg(kSmall)->UseManualTime()->Iterations(15)->Unit(benchmark::kMillisecond);
BENCHMARK(writeAgainstBareCalls)->Arg(kLarge)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

double residentBytes() {
    std::ifstream in("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    in >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void memoryOfABlock(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    double bytes = 0.0;
    for (auto _ : state) {
        // What former benchmarks left free must not hide what this one takes.
        malloc_trim(0);
        double const before = residentBytes();
        Tree const process = makeProcess(count);
        bytes = std::max(bytes, residentBytes() - before);
    }
    state.counters["bytes_per_block"] = bytes / count;
    state.SetLabel("bytes_per_block: at most 10240, with three variables and one connector");
}

BENCHMARK(memoryOfABlock)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);

// A linked list of objects as large as a block.
struct Plain {
    Plain* next = nullptr;
    char rest[sizeof(CFCBlockNode) - sizeof(Plain*)] = {};
};

int countAll(IFCNode* node) {
    int count = 0;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
        count += 1 + countAll(child);
    return count;
}

void walkAgainstPlainList(benchmark::State& state) {
    constexpr int kGroups = 100;
    constexpr int kBlocksOfGroup = 500;
    CFCNodeFactory factory;
    Tree const tree(factory.Create(56));
    for (int group = 0; group < kGroups; ++group) {
        IFCNode* const container = factory.Create(61);
        tree->AppendChild(container, false);
        for (int number = 0; number < kBlocksOfGroup; ++number)
            container->AppendChild(factory.Create(57), false);
    }
    int const expected = countAll(tree.get());
    std::vector<std::unique_ptr<Plain>> list;
    for (int number = 0; number < expected; ++number) {
        list.push_back(std::make_unique<Plain>());
        // As with children, the newest stands in front.
        list.back()->next = number > 0 ? list[static_cast<std::size_t>(number - 1)].get() : nullptr;
    }
    Sides sides;
    for (auto _ : state) {
        int plain = 0;
        double const bare = secondsOf([&] {
            for (Plain const* item = list.back().get(); item != nullptr; item = item->next)
                ++plain;
            benchmark::DoNotOptimize(plain);
        });
        int nodes = 0;
        double const ours = secondsOf([&] {
            nodes = countAll(tree.get());
            benchmark::DoNotOptimize(nodes);
        });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
        if (plain != expected || nodes != expected)
            state.SkipWithError("a walk lost its way");
    }
    report(state, "walk", kSmall, sides, "ratio: at most 2");
}

BENCHMARK(walkAgainstPlainList)->UseManualTime()->Iterations(50)->Unit(benchmark::kMillisecond);

} // namespace
