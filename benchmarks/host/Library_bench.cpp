// What "library merge" does with two lists of many entries, from their files to the file that is saved.
#include "host/catalogs/ProcessLists.h"
#include "host/files/SafeFile.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace flowmere::host;
namespace fs = std::filesystem;

// Time that the processor has spent on this program, which a busy machine does not stretch.
double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

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
    static std::map<int, double> known;
    int const count = static_cast<int>(state.range(0));
    Folder const folder;
    // Half of the entries stand in both.
    folder.writeList("common.lst", 0, count);
    folder.writeList("own.lst", count / 2, count);
    std::vector<double> times;
    for (auto _ : state) {
        double const begin = processorSeconds();
        SafeFile file(folder.file("merged.lst"));
        ListTree common = readList(folder.file("common.lst"), folder.path(), false);
        ListTree own = readList(folder.file("own.lst"), folder.path(), false);
        Merged const merged = mergeLists(*common, *own);
        writeList(file, "merged.lst", *common, false);
        file.commit();
        common.reset();
        own.reset();
        times.push_back(processorSeconds() - begin);
        state.SetIterationTime(times.back());
        if (merged.added != static_cast<std::size_t>(count / 2) || merged.met != static_cast<std::size_t>(count / 2))
            state.SkipWithError("entries were lost");
    }
    auto const middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    known[count] = *middle;
    state.counters["us_per_entry"] = *middle * 1e6 / count;
    if (known.contains(count / 10))
        state.counters["growth"] = *middle / known[count / 10];
    state.SetLabel("growth from a tenth: at most 15");
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
