// What "library merge" does with two lists of many entries, from their files to the file that is saved.
#include "benchmarks/Measure.h"
#include "host/catalogs/ProcessLists.h"
#include "host/files/SafeFile.h"

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

// A folder that goes at the end.
class Folder {
public:
    Folder() : m_path(fs::temp_directory_path() / fmt::format("flowmere_library_bench_{}", ::getpid())) {
        fs::create_directories(m_path);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;

    fs::path const& path() const { return m_path; }
    std::string file(std::string const& name) const { return (m_path / name).string(); }

    // A list of processes with the numbers from `first` on, a hundred in each group.
    void writeList(std::string const& name, int first, int count) const {
        std::ofstream out(m_path / name);
        out << "<Processes>\n";
        for (int number = first; number < first + count; ++number) {
            if (number == first || number % 100 == 0)
                out << (number == first ? "" : "</SUB_GRP>\n") << fmt::format("<SUB_GRP Name=\"G{}\">\n", number / 100);
            out << fmt::format("<PROCESS Name=\"P{0}\" FILE=\"lib\\p{0}.bpt\" Type=\"BPT\"/>\n", number);
        }
        out << "</SUB_GRP>\n</Processes>\n";
    }

private:
    fs::path m_path;
};

void mergeListFiles(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    Folder const folder;
    // Half of the entries stand in both.
    folder.writeList("common.lst", 0, count);
    folder.writeList("own.lst", count / 2, count);
    Times times;
    for (auto _ : state) {
        Merged merged;
        times.add(state, [&] {
            SafeFile file(folder.file("merged.lst"));
            ListTree common = readList(folder.file("common.lst"), folder.path(), false);
            ListTree own = readList(folder.file("own.lst"), folder.path(), false);
            merged = mergeLists(*common, *own);
            writeList(file, "merged.lst", *common, false);
            file.commit();
            common.reset();
            own.reset();
        });
        if (merged.added != static_cast<std::size_t>(count / 2) || merged.met != static_cast<std::size_t>(count / 2))
            state.SkipWithError("entries were lost");
    }
    report(state, "files", count, times);
}

BENCHMARK(mergeListFiles)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(20000)
    ->Arg(100000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
