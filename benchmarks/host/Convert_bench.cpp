// The conversions between documents and workflow folders against the reading of the document they begin or end with.
// The blocks have three variables, which links join, and stand in a row; there are no scripts.
#include "benchmarks/Measure.h"
#include "benchmarks/host/BareRead.h"

#include "host/document/Document.h"
#include "host/document/WorkflowFolder.h"
#include "host/workflow/FolderFiles.h"
#include "host/workflow/FromWorkflow.h"
#include "host/workflow/NativeDocument.h"
#include "host/workflow/ToWorkflow.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

using namespace flowmere::host;
namespace fs = std::filesystem;

std::string blockText(int number) {
    std::string const link = number > 0 ? fmt::format("Step_{:05}.load", number - 1) : std::string();
    return fmt::format("<BLOCK Name=\"Step_{0:05}\" BlockString=\"Work out step {0}\" ExecutionStatus=\"ESNone\">"
                       "<DIMENSION Point_X=\"{1}\" Point_Y=\"2.000\" Width=\"1.000\" Hight=\"0.500\"/>"
                       "<HELP MicroHelp=\"Works out one step of the study\"/>"
                       "<VARIABLE Name=\"count\" DataType=\"Int\" Type=\"Data\" IOType=\"Input\">{0}</VARIABLE>"
                       "<VARIABLE Name=\"load\" DataType=\"Double\" Type=\"Data\" IOType=\"Output\">0.25</VARIABLE>"
                       "<VARIABLE Name=\"before\" DataType=\"Double\" Type=\"Data\" IOType=\"Input\" "
                       "LinkPath=\"{2}\">1</VARIABLE></BLOCK>\n",
                       number, 2 * number, link);
}

// The files of the benchmarks, in a folder that goes with them.
class Files {
public:
    Files() : m_folder(fs::temp_directory_path() / fmt::format("flowmere_convert_bench_{}", getpid())) {
        fs::create_directories(m_folder);
    }
    ~Files() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    Files(Files const&) = delete;
    Files& operator=(Files const&) = delete;

    // A document of that many blocks, written once.
    std::string document(int count) const {
        fs::path const path = place("document", count);
        if (!fs::exists(path)) {
            std::ofstream out(path, std::ios::binary);
            out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Process Name=\"Benchmark\" Type=\"BPT\">\n";
            for (int number = 0; number < count; ++number)
                out << blockText(number);
            for (int number = 1; number < count; ++number)
                out << fmt::format("<CONNECTOR StartBlock=\"Step_{:05}\" EndBlock=\"Step_{:05}\" StartHandle=\"6\" "
                                   "EndHandle=\"2\" Version=\"1\"/>\n",
                                   number - 1, number);
            out << "</Process>\n";
            if (!out.flush())
                throw std::runtime_error("cannot write " + path.string());
        }
        return path.string();
    }
    fs::path place(char const* what, int count) const { return m_folder / fmt::format("{}_{}.xml", what, count); }

private:
    fs::path m_folder;
};

Files& files() {
    static Files instance;
    return instance;
}

// From the document to the files. Gives the number of nodes.
int exportOnce(std::string const& document, fs::path const& folder) {
    Document const source(document);
    WorkflowTree tree = toWorkflow(source.process(), [&](CFCBlockNode& block) { return source.scriptState(block); });
    writeWorkflowFolder({folder.string(), true}, tree, &source, nullptr);
    return tree.nodes;
}

void exportAgainstReading(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::string const path = files().document(count);
    int nodes = 0;
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] { readBare(path); });
        double const ours = secondsOf([&] { nodes = exportOnce(path, files().place("folder", count)); });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    if (nodes != count + 2) // start and end come in addition
        state.SkipWithError("blocks were left out");
    report(state, "export", count, sides, "growth: at most 1.25 times bare_growth");
}

void importAgainstReading(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::string const path = files().document(count);
    fs::path const folder = files().place("folder", count);
    if (!fs::exists(folder))
        exportOnce(path, folder);
    std::string const out = files().place("back", count).string();
    int blocks = 0;
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] { readBare(path); });
        double const ours = secondsOf([&] {
            beginDocument(out);
            WorkflowFolder const source = readWorkflowFolder(folder.string());
            NativeTree tree = fromWorkflow(*source.process, source.definition.parent_path());
            saveDocument(tree, out);
            blocks = tree.blocks;
        });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    if (blocks != count)
        state.SkipWithError("blocks were left out");
    report(state, "import", count, sides, "growth: at most 1.25 times bare_growth");
}

BENCHMARK(exportAgainstReading)
    ->ArgName("blocks")
    ->Arg(kTiny)
    ->Arg(kSmall)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(importAgainstReading)
    ->ArgName("blocks")
    ->Arg(kTiny)
    ->Arg(kSmall)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
