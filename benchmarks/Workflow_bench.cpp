// Workflow folders against the parser library alone: writing and reading the three files of a flat workflow whose tasks
// have three variables and one transition each.
#include "BareXml.h"
#include "Measure.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/FCProcessDefinitionWriter.h"
#include "flowmere/xml/XmlPlatform.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::array kFileNames{"processdefinition.xml", "gpd.xml", "process.var"};

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

void addVariable(IFCNode* task, wchar_t const* name, wchar_t const* caption, wchar_t const* type, EStatusType status,
                 TuString const& value) {
    CFCVariableData* const variable = task->CreateNewVariable();
    variable->SetVariableName(name);
    variable->SetCaption(caption);
    variable->SetValue(value);
    CFCNodeHelper::SetDataTypeNode(variable, type);
    variable->SetDataType(type);
    variable->SetStatusType(status);
    variable->SetVisible(true);
    variable->UpdateValue();
}

// A workflow of tasks in a row, with a transition from each to the next, and from the last to the first.
Tree makeWorkflow(int count) {
    CFCNodeFactory factory;
    Tree workflow(factory.Create(160));
    workflow->SetNodeCaption(L"Benchmark");
    std::vector<CFCBlockNode*> blocks;
    for (int number = 0; number < count; ++number) {
        IFCNode* const task = factory.Create(150);
        workflow->AppendChild(task, false);
        task->SetNodeId(numbered(L"Task", number));
        task->SetNodeCaption(numbered(L"Work out step", number));
        task->SetNodeDescription(L"Takes the load of the step before and gives the stress of its own section.");
        int const column = number % 8 * 150 + 50;
        int const row = number / 8 * 100 + 50;
        task->SetTuRect(column, row, column + 100, row + 50);
        CFCBPMBlockData* const data = task->GetBPMBlockData();
        data->SetTaskCaption(numbered(L"Work out step", number));
        data->SetUser(L"study");
        TuString value;
        value.Format(L"%d", number);
        addVariable(task, L"count", L"Number of the step", L"Int", EStatusType_Input, value);
        value.Format(L"%d.25", number);
        addVariable(task, L"load", L"Load in newton", L"Double", EStatusType_InAndOutput, value);
        addVariable(task, L"material", L"Material", L"String", EStatusType_Output, L"Steel S235JR");
        blocks.push_back(CFCPointerConverter::GetBlockNode(task));
    }
    for (int number = 0; number < count; ++number) {
        CFCConnector* const connector = CFCPointerConverter::GetConnector(factory.Create(68));
        connector->SetStartNode(6, blocks[static_cast<std::size_t>(number)], L"");
        connector->SetEndNode(2, blocks[static_cast<std::size_t>((number + 1) % count)], L"");
        connector->SetCaption(numbered(L"to", (number + 1) % count));
        workflow->AddConnector(connector);
    }
    return workflow;
}

IFCNode* read(std::filesystem::path const& folder) {
    CFCNodeFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    reader.Parse(wide(folder / kFileNames[0]), &node, 16);
    return node;
}

bool write(std::filesystem::path const& folder, IFCNode* node) {
    return CFCProcessDefinitionWriter().WriteFile(wide(folder / kFileNames[0]), node, true);
}

// The folders of the benchmarks, below one that is base path and user path too.
class Folders {
public:
    Folders()
        : m_folder(std::filesystem::temp_directory_path() / ("flowmere_workflow_bench_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_folder);
        CFCEnvironment::SetBasePath(wide(m_folder));
        CFCEnvironment::SetUserPath(wide(m_folder));
    }
    ~Folders() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Folders(Folders const&) = delete;
    Folders& operator=(Folders const&) = delete;

    std::filesystem::path folder(std::string const& name) const {
        std::filesystem::create_directories(m_folder / name);
        return m_folder / name;
    }
    // The files of a workflow of that many tasks, written once.
    std::filesystem::path workflow(int count) const {
        std::filesystem::path const path = folder("tasks_" + std::to_string(count));
        if (!std::filesystem::exists(path / kFileNames[0]))
            write(path, makeWorkflow(count).get());
        return path;
    }

private:
    std::filesystem::path m_folder;
};

Folders& folders() {
    static Folders instance;
    return instance;
}

int countOf(IFCNode* workflow) {
    int tasks = 0;
    for (IFCNode* child = workflow->GetChild(); child != nullptr; child = child->GetNext())
        tasks += child->GetNodeType() == 150 ? 1 : 0;
    return tasks;
}

int transitionsOf(IFCNode* workflow) {
    int transitions = 0;
    CFCConnectorList* const list = workflow->GetConnectorList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCConnector* const connector = list->GetNext(position);
        transitions += connector->GetStartObject() != nullptr && connector->GetEndObject() != nullptr ? 1 : 0;
    }
    return transitions;
}

void readFolderAgainstBareParse(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::filesystem::path const folder = folders().workflow(count);
    flowmere::XmlPlatform const platform;
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] {
            for (char const* name : kFileNames)
                parseBare(folder / name);
        });
        Tree tree;
        double const ours = secondsOf([&] { tree.reset(read(folder)); });
        if (tree == nullptr || countOf(tree.get()) != count || transitionsOf(tree.get()) != count) {
            state.SkipWithError("the folder was not read as it was written");
            return;
        }
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    report(state, "read folder", count, sides, "ratio: at most 1.3, growth: at most 1.1 times bare_growth");
}

BENCHMARK(readFolderAgainstBareParse)->Arg(kSmall)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);
BENCHMARK(readFolderAgainstBareParse)->Arg(kLarge)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void writeFolderAgainstBareCalls(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::filesystem::path const folder = folders().workflow(count);
    flowmere::XmlPlatform const platform;
    std::vector<Recipe> recipes;
    for (char const* name : kFileNames)
        recipes.emplace_back(folder / name);
    Tree const tree = makeWorkflow(count);
    std::filesystem::path const ours = folders().folder("ours");
    std::filesystem::path const bare = folders().folder("bare");
    Sides sides;
    for (auto _ : state) {
        double const bareTime = secondsOf([&] {
            for (std::size_t index = 0; index < recipes.size(); ++index)
                recipes[index].writeTo(bare / kFileNames[index]);
        });
        double const ourTime = secondsOf([&] { write(ours, tree.get()); });
        sides.add(ourTime, bareTime);
        state.SetIterationTime(ourTime);
    }
    for (char const* name : kFileNames) {
        if (!areEqual(ours / name, bare / name)) {
            state.SkipWithError((std::string(name) + " differs").c_str());
            return;
        }
    }
    report(state, "write folder", count, sides, "ratio: at most 1.3, growth: at most 1.1 times bare_growth");
}

BENCHMARK(writeFolderAgainstBareCalls)->Arg(kSmall)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);
BENCHMARK(writeFolderAgainstBareCalls)->Arg(kLarge)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
