#include "host/commands/Run.h"

#include "host/Document.h"
#include "host/HostModule.h"
#include "host/Interpreter.h"
#include "host/RunReport.h"
#include "host/Runner.h"
#include "host/Text.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace flowmere::host {

namespace {

struct Move {
    enum class Kind { Step, Undo };
    Kind kind = Kind::Step;
    int count = 1;
};

struct Options {
    std::string file;
    std::vector<std::string> scriptRoots;
    std::vector<std::string> values;
    std::vector<std::string> breaks;
    std::vector<int> steps;
    std::vector<int> undos;
    std::vector<Move> moves; // steps and undos in the order of the command line
    std::optional<std::string> saveTo;
    bool json = false;
};

// With --json standard output belongs to the one document: what scripts print goes to standard error meanwhile.
class OutputForPrograms {
public:
    OutputForPrograms() : m_stdout(::dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        ::dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    ~OutputForPrograms() { giveBack(); }
    OutputForPrograms(OutputForPrograms const&) = delete;
    OutputForPrograms& operator=(OutputForPrograms const&) = delete;

    void giveBack() {
        if (m_stdout < 0)
            return;
        std::fflush(stdout);
        ::dup2(m_stdout, STDOUT_FILENO);
        ::close(m_stdout);
        m_stdout = -1;
    }

private:
    int m_stdout;
};

// One line on a terminal's standard error that tells what runs just now.
class Progress {
public:
    explicit Progress(bool isShown) : m_isShown(isShown) {}
    ~Progress() { clear(); }
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    bool isShown() const { return m_isShown; }
    void show(std::string const& path, std::size_t done) {
        if (!m_isShown)
            return;
        printError(fmt::format("\r\x1b[Krunning {} ({} done)", oneLine(path), counted(done, "block")));
        m_isVisible = true;
    }
    void clear() {
        if (!m_isVisible)
            return;
        printError("\r\x1b[K");
        m_isVisible = false;
    }

private:
    bool m_isShown;
    bool m_isVisible = false;
};

bool isNumber(std::string_view text, bool isInteger) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    char const* const end = text.data() + text.size();
    if (isInteger) {
        int value = 0;
        auto const result = std::from_chars(text.data(), end, value);
        return result.ec == std::errc() && result.ptr == end;
    }
    double value = 0;
    auto const result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end && std::isfinite(value);
}

// Whether the text is a value of the variable's type, as far as that shows in the text.
bool fits(CFCVariableData& variable, std::string const& value) {
    bool isInteger = false;
    switch (variable.GetDataType()) {
    case EDataType_Int:
    case EDataType_IntArray:
        isInteger = true;
        break;
    case EDataType_Float:
    case EDataType_Double:
    case EDataType_FloatArray:
    case EDataType_DoubleArray:
        break;
    default:
        return true;
    }
    if (!variable.IsArray())
        return isNumber(value, isInteger);
    std::string_view list = value;
    if (list.starts_with('[') && list.ends_with(']'))
        list = list.substr(1, list.size() - 2);
    if (list.find_first_not_of(" \t") == std::string_view::npos)
        return true;
    for (;;) {
        auto const comma = list.find(',');
        if (!isNumber(list.substr(0, comma), isInteger))
            return false;
        if (comma == std::string_view::npos)
            return true;
        list.remove_prefix(comma + 1);
    }
}

void setValues(Document& document, std::vector<std::string> const& settings) {
    for (std::string const& setting : settings) {
        auto const equals = setting.find('=');
        if (equals == std::string::npos || equals == 0)
            throw Failure("", "--set " + setting, "is not of the form PATH=VALUE");
        std::string const path = setting.substr(0, equals);
        std::string const value = setting.substr(equals + 1);
        CFCVariableData& variable = *document.variable(path).GetActualVariableData();
        if (!fits(variable, value))
            throw Failure(
                document.file(), path,
                fmt::format("\"{}\" is no value of type {}{}", value, utf8(variable.GetDataTypeS()),
                            variable.IsArray() && variable.GetDataType() < EDataType_IntArray ? " (array)" : ""));
        variable.SetValue(wide(value));
        variable.UpdateValue();
    }
}

// The stops of this run alone: what the document says comes back at the end.
class Breaks {
public:
    Breaks(Document& document, std::vector<std::string> const& names) {
        std::vector<CFCBlockNode*> blocks;
        for (std::string const& name : names)
            blocks.push_back(&document.block(name));
        for (CFCBlockNode* const block : blocks) {
            if (!block->GetStopFlag()) {
                block->SetStopFlag(true);
                m_blocks.push_back(block);
            }
        }
    }
    ~Breaks() {
        for (CFCBlockNode* const block : m_blocks)
            block->SetStopFlag(false);
    }
    Breaks(Breaks const&) = delete;
    Breaks& operator=(Breaks const&) = delete;

private:
    std::vector<CFCBlockNode*> m_blocks;
};

std::string blockLine(BlockRun const& run, std::size_t width) {
    std::string line =
        fmt::format("{:<{}}  {:>9.1f} ms  {}", oneLine(run.path), width, run.milliseconds, stateName(run.state));
    if (!run.outputs.empty())
        line += std::string(std::string_view("Executed").size() - std::string_view(stateName(run.state)).size(), ' ');
    for (auto const& [name, value] : run.outputs)
        line += fmt::format("  {}={}", oneLine(name), oneLine(value));
    return line + "\n";
}

Json toJson(BlockRun const& run) {
    Json block = {{"path", run.path}, {"milliseconds", run.milliseconds}, {"state", stateName(run.state)}};
    block["outputs"] = Json::object();
    for (auto const& [name, value] : run.outputs)
        block["outputs"][name] = value;
    if (run.error)
        block["error"] = {{"type", run.error->type}, {"text", run.error->text}, {"traceback", run.error->traceback}};
    return block;
}

Json toJson(RunReport const& report, std::string const& file) {
    auto const optional = [](std::optional<std::string> const& text) {
        return text ? Json(*text) : Json();
    };
    Json document = {{"file", file}};
    document["blocks"] = Json::array();
    for (BlockRun const& block : report.blocks)
        document["blocks"].push_back(toJson(block));
    document["history"] = report.history;
    document["end"] = report.end;
    document["next"] = optional(report.next);
    document["executed"] = report.executed;
    document["undone"] = report.undone;
    document["milliseconds"] = report.milliseconds;
    document["notes"] = report.notes;
    document["saved"] = optional(report.savedTo);
    return document;
}

std::string summaryLine(RunReport const& report) {
    std::string line = report.end;
    if (report.end == "stopped" && report.next)
        line += " before " + oneLine(*report.next);
    line += ": " + counted(report.executed, "block") + " executed";
    if (report.undone > 0)
        line += fmt::format(", {} undone", report.undone);
    return line + fmt::format(", {:.1f} ms\n", report.milliseconds);
}

std::vector<std::string> historyLines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        auto const end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + 1);
    }
    return lines;
}

class Session {
public:
    explicit Session(Options const& options)
        : m_options(options), m_document(options.file, options.scriptRoots),
          m_progress(!options.json && ::isatty(STDERR_FILENO) != 0) {}

    int work() {
        setValues(m_document, m_options.values);
        if (m_options.saveTo)
            Document::checkCanSave(*m_options.saveTo);
        if (m_document.process().GetFirstConnectedBlock() == nullptr)
            throw Failure(m_options.file, "", "holds no block to run");
        for (std::string const& path : m_document.blockPaths())
            m_width = std::max(m_width, std::min<std::size_t>(path.size(), 40));

        tellFindings();
        std::optional<OutputForPrograms> output;
        if (m_options.json)
            output.emplace();
        run();
        std::optional<Failure> saveFailure;
        if (m_options.saveTo && m_report.end != "interrupted")
            saveFailure = save();
        if (output)
            output->giveBack();
        print();
        if (saveFailure)
            throw *saveFailure;
        return m_exitCode;
    }

private:
    // What the reader passed over may be why a run comes out other than expected.
    void tellFindings() {
        for (CFCReadFinding const& finding : m_document.findings()) {
            std::string const path = pathOf(*finding.node);
            std::string const text =
                finding.kind == CFCReadFinding::FileNotRead
                    ? "the linked file " + utf8(finding.first) + " is missing or cannot be read"
                    : "a connector from " + utf8(finding.first) + " to " + utf8(finding.second) + " lacks a block";
            printError(errorLine(m_options.file, path, text) + "\n");
            m_report.notes.push_back(path.empty() ? text : path + ": " + text);
        }
    }

    void run() {
        Interpreter& interpreter = Interpreter::start(m_document.scriptRoots());
        interpreter.takeSignals();
        HostServices& services = hostServices();
        services.documentPath = m_document.path().string();
        if (m_progress.isShown()) {
            services.outputBegins = [this] {
                m_progress.clear();
            };
            interpreter.watchOutput();
        }
        services.writeHistory = [this](std::string const& text) {
            history(text);
        };

        Breaks const breaks(m_document, m_options.breaks);
        Runner runner(m_document, interpreter,
                      {[this](std::string const& path) { m_progress.show(path, m_report.executed); },
                       [this](BlockRun const& block) {
                           blockDone(block);
                       }});
        bool const beginsWithSteps =
            m_options.breaks.empty() && !m_options.moves.empty() && m_options.moves.front().kind == Move::Kind::Step;
        bool goesOn = beginsWithSteps || isGood(runner.run());
        for (Move const& move : m_options.moves)
            goesOn = goesOn && moveBy(runner, move);
        services.writeHistory = nullptr;
        services.outputBegins = nullptr;

        if (CFCBlockNode* const next = runner.nextBlock())
            m_report.next = pathOf(*next);
        if (m_exitCode == kExitInterrupted)
            m_report.end = "interrupted";
        else if (m_isFailed)
            m_report.end = "failed";
        else
            m_report.end = m_report.next ? "stopped" : "ended";
    }

    // False when nothing further is to be done.
    bool isGood(RunEnd end) {
        m_isFailed = end == RunEnd::Failed;
        if (end == RunEnd::Failed)
            m_exitCode = kExitFound;
        if (end == RunEnd::Interrupted)
            m_exitCode = kExitInterrupted;
        return end != RunEnd::Interrupted;
    }

    bool moveBy(Runner& runner, Move const& move) {
        bool const isStep = move.kind == Move::Kind::Step;
        for (int count = 0; count < move.count; ++count) {
            RunEnd const end = isStep ? runner.step() : runner.undo();
            if (end == RunEnd::Nothing) {
                note(isStep ? (m_isFailed ? "nothing to step to: a block has failed and is not undone"
                                          : "nothing to step to: the flow has ended")
                            : "nothing to undo: the flow is back at its start");
                return true;
            }
            if (!isGood(end))
                return false;
            if (end == RunEnd::Failed && !isStep)
                return true;
        }
        return true;
    }

    void blockDone(BlockRun const& block) {
        m_progress.clear();
        m_report.blocks.push_back(block);
        m_report.milliseconds += block.milliseconds;
        m_report.executed += block.state == BlockRun::State::Executed ? 1 : 0;
        m_report.undone += block.state == BlockRun::State::Undone ? 1 : 0;
        if (!m_options.json)
            printOut(blockLine(block, m_width));
    }

    void history(std::string const& text) {
        m_progress.clear();
        for (std::string& line : historyLines(text)) {
            if (!m_options.json)
                printOut("history: " + oneLine(line) + "\n");
            m_report.history.push_back(std::move(line));
        }
    }

    void note(std::string const& text) {
        if (!m_options.json)
            printOut(text + "\n");
        m_report.notes.push_back(text);
    }

    std::optional<Failure> save() {
        try {
            m_document.save(*m_options.saveTo);
            m_report.savedTo = m_options.saveTo;
        } catch (Failure const& failure) {
            return failure;
        }
        return std::nullopt;
    }

    void print() {
        m_progress.clear();
        if (m_options.json)
            printOut(jsonText(toJson(m_report, m_options.file)));
        else
            printOut(summaryLine(m_report) +
                     (m_report.savedTo ? "saved: " + oneLine(*m_report.savedTo) + "\n" : std::string()));
        for (BlockRun const& block : m_report.blocks)
            if (block.state == BlockRun::State::Failed && block.error)
                printError(errorLine(m_options.file, block.path, errorText(*block.error)) + "\n");
        if (m_exitCode == kExitInterrupted)
            printError(errorLine(m_options.file, m_report.blocks.back().path, "interrupted") + "\n");
    }

    Options const& m_options;
    Document m_document;
    Progress m_progress;
    RunReport m_report;
    std::size_t m_width = 0;
    bool m_isFailed = false;
    int m_exitCode = kExitWell;
};

} // namespace

void addRun(CLI::App& app, Result& result) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand("run", "Run the process of a document, block by block");
    command->add_option("FILE", options->file, "The process document")->required();
    // One value each time, and any number of times.
    auto const repeated = [](CLI::Option* option) {
        return option->expected(1)->allow_extra_args(false)->take_all();
    };
    repeated(command->add_option("--scripts", options->scriptRoots,
                                 "A folder under which scripts are found; the document's own folder always is one"))
        ->type_name("DIR");
    repeated(
        command->add_option("--set", options->values, "Give a variable a value before the run, as in Loads.Span=6.5"))
        ->type_name("PATH=VALUE");
    repeated(command->add_option("--break", options->breaks,
                                 "Stop in front of a block, named by its path or by an identifier of its own"))
        ->type_name("BLOCK");
    CLI::Option const* const step =
        repeated(command->add_option("--step", options->steps,
                                     "Run so many blocks more after the run; without --break, and before any --undo, "
                                     "run so many blocks and no more"))
            ->type_name("N")
            ->check(CLI::Range(1, 1000000));
    CLI::Option const* const undo =
        repeated(command->add_option("--undo", options->undos, "Undo so many blocks after the run, the last one first"))
            ->type_name("N")
            ->check(CLI::Range(1, 1000000));
    command->add_option("--save", options->saveTo, "Write the document to a file after the run")->type_name("OUT");
    command->add_flag("--json", options->json, "Print one JSON document in place of the lines");
    command->footer("--step and --undo may be given several times, and act in the order given.");
    command->callback([command, options, step, undo, &result] {
        std::size_t steps = 0;
        std::size_t undos = 0;
        for (CLI::Option const* const option : command->parse_order()) {
            if (option == step)
                options->moves.push_back({Move::Kind::Step, options->steps.at(steps++)});
            else if (option == undo)
                options->moves.push_back({Move::Kind::Undo, options->undos.at(undos++)});
        }
        result.exitCode = Session(*options).work();
    });
}

} // namespace flowmere::host
