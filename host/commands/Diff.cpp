#include "host/commands/Diff.h"

#include "host/basics/Text.h"
#include "host/diff/Compare.h"
#include "host/diff/DiffText.h"
#include "host/diff/Snapshot.h"
#include "host/document/Document.h"
#include "host/document/Findings.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

namespace {

struct Options {
    std::string first;
    std::string second;
    bool json = false;
};

// What the reader passed over is in neither snapshot, and may be the very thing that somebody looks for.
void tellFindings(Document const& document) {
    for (CFCReadFinding const& finding : document.findings())
        printError(errorLine(document.file(), pathOf(*finding.node), describe(finding)) + "\n");
    for (WorkflowNote const& note : notesOf(document.workflowFindings(), document.file()))
        printError(errorLine(note.file, note.place, note.text) + "\n");
}

// The document is closed again at once: a second one must not be open beside it.
Snapshot readSnapshot(std::string const& file) {
    Document const document(file);
    tellFindings(document);
    return snapshotOf(document.process());
}

struct Count {
    Difference::Change change;
    char const* name;
    std::size_t count = 0;
};

std::array<Count, 4> countsOf(std::vector<Difference> const& differences) {
    using Change = Difference::Change;
    std::array<Count, 4> counts{{{Change::Added, "added"},
                                 {Change::Removed, "removed"},
                                 {Change::Moved, "moved"},
                                 {Change::Changed, "changed"}}};
    for (Count& count : counts)
        count.count = static_cast<std::size_t>(
            std::count_if(differences.begin(), differences.end(),
                          [&](Difference const& difference) { return difference.change == count.change; }));
    return counts;
}

std::string summaryOf(std::vector<Difference> const& differences) {
    if (differences.empty())
        return "no differences";
    std::string parts;
    for (Count const& count : countsOf(differences))
        if (count.count > 0)
            parts += fmt::format("{}{} {}", parts.empty() ? "" : ", ", count.count, count.name);
    return counted(differences.size(), "difference") + ": " + parts;
}

std::string textOf(Options const& options, std::vector<Difference> const& differences) {
    std::string out;
    for (Difference const& difference : differences)
        out += lineOf(difference) + "\n";
    return out + fmt::format("{} -> {}: {}\n", oneLine(options.first), oneLine(options.second), summaryOf(differences));
}

Json jsonOf(Options const& options, std::vector<Difference> const& differences) {
    Json out = {{"from", options.first}, {"to", options.second}};
    for (Count const& count : countsOf(differences))
        out[count.name] = count.count;
    out["differences"] = Json::array();
    for (Difference const& difference : differences)
        out["differences"].push_back(jsonOf(difference));
    return out;
}

int diff(Options const& options) {
    Snapshot const first = readSnapshot(options.first);
    Snapshot const second = readSnapshot(options.second);
    std::vector<Difference> const differences = compare(first, second);
    printOut(options.json ? jsonText(jsonOf(options, differences)) : textOf(options, differences));
    return differences.empty() ? kExitWell : kExitFound;
}

} // namespace

void addDiff(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("diff", "Tell what changed from one document to another");
    command.option("A", options->first, "The process document or workflow folder as it was").required();
    command.option("B", options->second, "The process document or workflow folder as it is").required();
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    command.footer("A line for each difference: + for what is in B alone, - for what is in A alone, > for what was\n"
                   "moved, ~ for what has another value. Two documents that only differ in how they are written are\n"
                   "the same.\n"
                   "Exit code: 0 no difference, 1 some, 2 a file cannot be read.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere diff beam.xml beam-new.xml");
    command.work([options, &result] { result.exitCode = diff(*options); });
}

} // namespace flowmere::host
