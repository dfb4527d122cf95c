// The program's commands against what they cannot do without: a check against the reading of its document and against
// Python's compiler, the comparison of two documents, and the search for near names. The documents have three variables
// and one connector for each block.
#include "benchmarks/Measure.h"
#include "benchmarks/host/BareRead.h"

#include "host/basics/Text.h"
#include "host/checks/Checks.h"
#include "host/diff/Compare.h"
#include "host/diff/Snapshot.h"
#include "host/document/Document.h"

#include <Python.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace flowmere::host;
namespace fs = std::filesystem;

enum ScriptKind : int {
    kNoScripts,   // blocks that need none
    kLostScripts, // each block names one that is not there, which is a finding for each block
    kOneScript,   // all blocks share one
    kOwnScripts,  // each block has one of its own, with a base class in a file beside it
};

std::string step(int number) {
    return fmt::format("Step_{:05}", number);
}

std::string scriptOf(ScriptKind scripts, int number) {
    return scripts == kOneScript ? "study.Shared" : "study." + step(number);
}

std::string blockText(ScriptKind scripts, int number, bool isChanged) {
    char const* const element = scripts == kNoScripts ? "TERMINATOR" : "BLOCK";
    std::string const script =
        scripts == kNoScripts ? std::string()
                              : fmt::format("<SCRIPT Name=\"{}\" ScriptType=\"PYTHON\"/>", scriptOf(scripts, number));
    std::string const link = number > 0 ? step(number - 1) + ".load" : std::string();
    return fmt::format("<{0} Name=\"{1}\" BlockString=\"Work out step {2}\" ExecutionStatus=\"ESNone\" Run=\"true\">"
                       "<DIMENSION Point_X=\"1.000\" Point_Y=\"2.000\" Width=\"1.000\" Hight=\"0.500\"/>"
                       "<FLAGS Undo=\"false\" Skip=\"false\" Break=\"false\" Reference=\"0\"/>"
                       "<PORT InPort=\"Left\" NextPort=\"Bottom\" OutPort=\"Right\"/>"
                       "<HELP MicroHelp=\"Works out one step of the study\" Description=\"Takes the load of the step "
                       "before and gives the stress of its own section.\"/>{3}"
                       "<BORDER ColorFill=\"16768966\" ColorLine=\"0\" LineThickness=\"2\" Version=\"1\"/>"
                       "<FONT Bold=\"1\" FontName=\"Arial\" FontSize=\"10\" Version=\"1\"/>"
                       "<VARIABLE Name=\"count\" DataType=\"Int\" Type=\"Data\" IOType=\"Input\">{2}</VARIABLE>"
                       "<VARIABLE Name=\"load\" DataType=\"Double\" Type=\"Data\" IOType=\"Output\">{4}</VARIABLE>"
                       "<VARIABLE Name=\"before\" DataType=\"Double\" Type=\"Data\" IOType=\"Input\" "
                       "LinkPath=\"{5}\">1</VARIABLE></{0}>\n",
                       element, step(number), number, script, isChanged ? "0.5" : fmt::format("{}.25", number), link);
}

std::string userScript(std::string const& name) {
    return fmt::format("import win32com.client\nfrom .{0}Block import {0}Block\n\n\nclass {0}({0}Block):\n"
                       "    def __init__(self, block=None):\n        super({0}, self).__init__(block)\n\n"
                       "    def ExecuteBlock(self):\n        ''' Execute logics '''\n        self.GetVariables()\n"
                       "        self.load = self.before * 2.0\n        self.UpdateVariables()\n\n"
                       "    def UndoBlock(self):\n        ''' Undo logics '''\n        self.GetVariables()\n",
                       name);
}

std::string baseScript(std::string const& name) {
    return fmt::format("import win32com.client\n\n\nclass {0}Block(object):\n    def __init__(self, block=None):\n"
                       "        self.variables = win32com.client.Dispatch(\"ProcessExecutive.Variables\")\n"
                       "        self.count = 0\n        self.load = 0.0\n        self.before = 0.0\n\n"
                       "    def GetVariables(self):\n        self.count = self.variables.getValue(\"count\")\n"
                       "        self.before = self.variables.getValue(\"before\")\n\n"
                       "    def UpdateVariables(self):\n        self.variables.setValue(\"load\", self.load)\n\n"
                       "    def Execute(self):\n        return self.ExecuteBlock()\n\n"
                       "    def Undo(self):\n        return self.UndoBlock()\n\n"
                       "    def CanUndo(self):\n        return 1\n\n    def CanSkip(self):\n        return 1\n",
                       name);
}

void write(fs::path const& path, std::string const& text) {
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out.flush())
        throw std::runtime_error("cannot write " + path.string());
}

std::string readText(fs::path const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class Files {
public:
    Files() : m_folder(fs::temp_directory_path() / fmt::format("flowmere_program_bench_{}", getpid())) {}
    ~Files() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    Files(Files const&) = delete;
    Files& operator=(Files const&) = delete;

    // A document of that many blocks, written once.
    std::string document(ScriptKind scripts, int count) {
        fs::path const path = folder(scripts, count) / "p.xml";
        if (!fs::exists(path)) {
            write(path, text(scripts, count, count + 1));
            for (int number = 0; number < count && (scripts == kOwnScripts || (scripts == kOneScript && number == 0));
                 ++number) {
                std::string const name = scripts == kOneScript ? "Shared" : step(number);
                write(folder(scripts, count) / "study" / (name + ".py"), userScript(name));
                write(folder(scripts, count) / "study" / (name + "Block.py"), baseScript(name));
            }
        }
        return path.string();
    }
    // The same with another value in each block of a hundred, and a block more behind it.
    std::string changed(int count) {
        fs::path const path = folder(kNoScripts, count) / "changed.xml";
        if (!fs::exists(path))
            write(path, text(kNoScripts, count, 100));
        return path.string();
    }
    // The same with all blocks in the opposite order.
    std::string reversed(int count) {
        fs::path const path = folder(kNoScripts, count) / "reversed.xml";
        if (!fs::exists(path)) {
            std::string blocks;
            for (int number = count; number-- > 0;)
                blocks += blockText(kNoScripts, number, false);
            write(path, whole(blocks, count));
        }
        return path.string();
    }
    fs::path folder(ScriptKind scripts, int count) const {
        return m_folder / fmt::format("{}_{}", static_cast<int>(scripts), count);
    }

private:
    static std::string text(ScriptKind scripts, int count, int every) {
        std::string blocks;
        for (int number = 0; number < count; ++number) {
            bool const isChanged = number % every == every - 1;
            blocks += blockText(scripts, number, isChanged);
            if (isChanged)
                blocks += fmt::format("<TERMINATOR Name=\"Added_{}\"/>\n", number);
        }
        return whole(blocks, count);
    }

    static std::string whole(std::string const& blocks, int count) {
        std::string all =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Process Name=\"Benchmark\" Type=\"BPT\">\n" + blocks;
        for (int number = 0; number + 1 < count; ++number)
            all += fmt::format("<CONNECTOR StartBlock=\"{}\" EndBlock=\"{}\" StartHandle=\"6\" EndHandle=\"2\" "
                               "Version=\"1\"/>\n",
                               step(number), step(number + 1));
        return all + "</Process>\n";
    }

    fs::path m_folder;
};

Files& files() {
    static Files instance;
    return instance;
}

Scripts& python() {
    static Scripts instance;
    return instance;
}

// All of flowmere check, from the file to the findings, against the mere reading of the document.
void checkAgainstReading(benchmark::State& state) {
    auto const scripts = static_cast<ScriptKind>(state.range(0));
    int const count = static_cast<int>(state.range(1));
    std::string const path = files().document(scripts, count);
    Scripts& facts = python();
    std::size_t findings = 0;
    Sides sides;
    for (auto _ : state) {
        // The first one asks the system for the memory that the second one finds.
        double const bare = secondsOf([&] { readBare(path); });
        double const ours = secondsOf([&] {
            Document document(path);
            findings = findingsOf(document, facts).size();
        });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    if (findings != (scripts == kLostScripts ? static_cast<std::size_t>(count) : 0))
        state.SkipWithError("the findings are not those of the document");
    report(state, fmt::format("check {}", static_cast<int>(scripts)), count, sides,
           "ratio: below 3, growth: at most 12");
}

BENCHMARK(checkAgainstReading)
    ->ArgNames({"scripts", "blocks"})
    ->ArgsProduct({{kNoScripts, kLostScripts, kOneScript}, {kTiny, kSmall}})
    ->UseManualTime()
    ->Iterations(7)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(checkAgainstReading)
    ->ArgNames({"scripts", "blocks"})
    ->ArgsProduct({{kNoScripts, kLostScripts, kOneScript}, {kLarge}})
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void compileBare(std::vector<std::pair<std::string, std::string>> const& sources) {
    PyGILState_STATE const state = PyGILState_Ensure();
    for (auto const& [name, text] : sources) {
        PyObject* const code = Py_CompileString(text.c_str(), name.c_str(), Py_file_input);
        if (code == nullptr)
            PyErr_Clear();
        Py_XDECREF(code);
    }
    PyGILState_Release(state);
}

// Where each block has two scripts of its own, against reading the document and letting Python compile each file: a
// check of scripts that compiles none would be no check.
void checkOfScriptsAgainstCompiling(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::string const path = files().document(kOwnScripts, count);
    python();
    Sides sides;
    for (auto _ : state) {
        // With a memory of its own, since scripts are looked at once.
        Scripts facts;
        double const ours = secondsOf([&] {
            Document document(path);
            if (!findingsOf(document, facts).empty())
                state.SkipWithError("something is wrong with the scripts");
        });
        double const bare = secondsOf([&] {
            readBare(path);
            std::vector<std::pair<std::string, std::string>> sources;
            for (int number = 0; number < count; ++number)
                for (char const* const ending : {".py", "Block.py"}) {
                    fs::path const file = files().folder(kOwnScripts, count) / "study" / (step(number) + ending);
                    sources.emplace_back(file.string(), readText(file));
                }
            compileBare(sources);
        });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    report(state, "scripts", count, sides, "ratio: at most 2.5, growth: at most 12");
}

BENCHMARK(checkOfScriptsAgainstCompiling)
    ->ArgName("blocks")
    ->Arg(kTiny)
    ->Arg(kSmall)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

Snapshot snapshotOfFile(std::string const& path) {
    Document const document(path);
    return snapshotOf(document.process());
}

// What flowmere diff does beyond reading the two documents, against that.
void diffAgainstReading(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    bool const isReversed = state.range(1) != 0;
    std::string const before = files().document(kNoScripts, count);
    std::string const after = isReversed ? files().reversed(count) : files().changed(count);
    std::size_t differences = 0;
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] {
            readBare(before);
            readBare(after);
        });
        double const ours = secondsOf([&] {
            Snapshot const first = snapshotOfFile(before);
            Snapshot const second = snapshotOfFile(after);
            differences = compare(first, second).size();
        });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    // Of blocks in the opposite order all but one have another place; the connectors stay as they are.
    std::size_t const expected = static_cast<std::size_t>(isReversed ? count - 1 : count / 100 * 2);
    if (differences != expected)
        state.SkipWithError("the differences are not those of the documents");
    report(state, isReversed ? "diff reversed" : "diff", count, sides, "ratio: at most 2, growth: at most 12");
}

BENCHMARK(diffAgainstReading)
    ->ArgNames({"blocks", "reversed"})
    ->ArgsProduct({{kTiny, kSmall}, {0, 1}})
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(diffAgainstReading)
    ->ArgNames({"blocks", "reversed"})
    ->ArgsProduct({{kLarge}, {0, 1}})
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// The search for near names among so many paths, against one look at all of their letters.
void nearNamesAmongMany(benchmark::State& state) {
    int const count = static_cast<int>(state.range(0));
    std::vector<std::string> known;
    for (int number = 0; number < count; ++number)
        known.push_back(fmt::format("Study.Loads.{}.stress", step(number)));
    std::string const typed = fmt::format("Study.Laods.{}.stres", step(count / 2));
    Sides sides;
    for (auto _ : state) {
        double const bare = secondsOf([&] {
            std::size_t letters = 0;
            for (std::string const& name : known)
                letters += static_cast<std::size_t>(std::count(name.begin(), name.end(), 's'));
            benchmark::DoNotOptimize(letters);
        });
        double const ours = secondsOf([&] {
            std::vector<std::string> const near = nearNames(typed, known);
            if (near.empty() || near.front() != known[static_cast<std::size_t>(count / 2)])
                state.SkipWithError("the nearest name is not found");
        });
        sides.add(ours, bare);
        state.SetIterationTime(ours);
    }
    report(state, "names", count, sides, "ours_ms: at most 200 for 100,000 names, growth: at most 12");
}

BENCHMARK(nearNamesAmongMany)
    ->ArgName("names")
    ->Arg(kTiny)
    ->Arg(kSmall)
    ->Arg(kLarge)
    ->UseManualTime()
    ->Iterations(7)
    ->Unit(benchmark::kMillisecond);

} // namespace
