// Catalogs that seek nodes by their captions while they are read, and how their times grow with the number of entries.
#include "benchmarks/Measure.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFileTypeListReader.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

// A file that goes with its object.
class File {
public:
    explicit File(std::string const& text)
        : m_path(std::filesystem::temp_directory_path() /
                 ("flowmere_catalog_bench_" + std::to_string(getpid()) + "_" + std::to_string(++s_count) + ".xml")) {
        std::ofstream(m_path) << text;
    }
    ~File() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    TuString path() const { return TuString(m_path.c_str()); }

private:
    static inline int s_count = 0;
    std::filesystem::path m_path;
};

// Runs the rounds. `read` gives the tree it made, and `isRight` looks at it outside the time.
template <typename Read, typename Check>
void measure(benchmark::State& state, char const* what, Read const& read, Check const& isRight) {
    Times times;
    for (auto _ : state) {
        Tree tree;
        times.add(state, [&] { tree = read(); });
        if (!isRight(tree.get()))
            state.SkipWithError("not what the files hold");
    }
    report(state, what, static_cast<int>(state.range(0)), times);
}

std::string entries(int first, int count, std::string const& before, std::string const& behind) {
    std::string text;
    for (int number = first; number < first + count; ++number)
        text += before + std::to_string(number) + behind;
    return text;
}

int childCount(IFCNode* node) {
    int count = 0;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
        ++count;
    return count;
}

// Common file types and the user's own, half of which replace a common one.
void readFileTypes(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    File const common("<FILETYPES>" + entries(0, count, "<FILETYPE name='type ", "' extension='x'/>") + "</FILETYPES>");
    File const own("<FILETYPES>" + entries(count / 2, count, "<FILETYPE name='type ", "' extension='y'/>") +
                   "</FILETYPES>");
    measure(
        state, "file types",
        [&] {
            CFCNodeFactory factory;
            Tree list(factory.Create(81));
            for (File const* file : {&common, &own}) {
                CFCFileTypeListReader reader;
                reader.SetNodeFactory(&factory);
                reader.Parse(file->path(), dynamic_cast<CFCDataTypeNode*>(list.get()));
            }
            return list;
        },
        [count](IFCNode* list) { return childCount(list) == count + count / 2; });
}

Tree readFavourites(File const& file) {
    CFCNodeFactory factory;
    Tree process(factory.Create(56));
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = process.get();
    reader.Parse(file.path(), &node);
    return process;
}

// Folders in front of the favourites, so that each document is sought past all of them.
void readFavouritesBehindFolders(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    File const file("<Process>" + entries(0, count, "<CUSTOM_FOLDER Name='folder ", "'/>") +
                    "<FAVOURITES Name='mine'>" + entries(0, count, "<DOCUMENT Name='document ", "' Opened='true'/>") +
                    "</FAVOURITES></Process>");
    measure(
        state, "favourites", [&] { return readFavourites(file); },
        [count](IFCNode* process) {
            return childCount(dynamic_cast<CFCProcessNode*>(process)->GetFavouriteNode()) == count;
        });
}

// The favourites get a new name with every document.
void readRenamedFavourites(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    File const file("<Process>" + entries(0, count, "<CUSTOM_FOLDER Name='folder ", "'/>") +
                    entries(0, count, "<FAVOURITES Name='name ", "'><DOCUMENT Name='d' Opened='true'/></FAVOURITES>") +
                    "</Process>");
    measure(
        state, "renamed", [&] { return readFavourites(file); },
        [count](IFCNode* process) {
            return childCount(dynamic_cast<CFCProcessNode*>(process)->GetFavouriteNode()) == count;
        });
}

void counts(benchmark::internal::Benchmark* benchmark) {
    for (int const count : {1000, 10000, 20000, 100000})
        benchmark->Arg(count);
    benchmark->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
}

BENCHMARK(readFileTypes)->Apply(counts);
BENCHMARK(readFavouritesBehindFolders)->Apply(counts);
BENCHMARK(readRenamedFavourites)->Apply(counts);

} // namespace
