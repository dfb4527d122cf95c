#include "host/session/RunOutput.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <optional>

namespace flowmere::host {

namespace {

Json toJson(BlockRun const& run) {
    Json block = {{"path", run.path}, {"milliseconds", run.milliseconds}, {"state", stateName(run.state)}};
    block["outputs"] = Json::object();
    for (auto const& [name, value] : run.outputs)
        block["outputs"][name] = value;
    block["printed"] = Json::array();
    for (PrintedText const& piece : run.printed)
        block["printed"].push_back({{"stream", piece.isError ? "error" : "output"}, {"text", piece.text}});
    if (run.error)
        block["error"] = {{"type", run.error->type},
                          {"text", run.error->text},
                          {"file", run.error->file.empty() ? Json() : Json(run.error->file)},
                          {"line", run.error->line > 0 ? Json(run.error->line) : Json()},
                          {"source", run.error->source.empty() ? Json() : Json(run.error->source)},
                          {"traceback", run.error->traceback}};
    return block;
}

} // namespace

std::string blockLine(BlockRun const& run, std::size_t width) {
    std::string line =
        fmt::format("{:<{}}  {:>9.1f} ms  {}", oneLine(run.path), width, run.milliseconds, stateName(run.state));
    if (!run.outputs.empty())
        line += std::string(std::string_view("Executed").size() - std::string_view(stateName(run.state)).size(), ' ');
    for (auto const& [name, value] : run.outputs)
        line += fmt::format("  {}={}", oneLine(name), oneLine(value));
    return line + "\n";
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

Json reportJson(RunReport const& report) {
    auto const optional = [](std::optional<std::string> const& text) {
        return text ? Json(*text) : Json();
    };
    Json document = {{"file", report.file}};
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
    document["report"] = optional(report.reportedTo);
    return document;
}

std::vector<std::string> linesOf(std::string_view text) {
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

} // namespace flowmere::host
