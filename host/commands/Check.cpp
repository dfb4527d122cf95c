#include "host/commands/Check.h"

#include "host/basics/Text.h"
#include "host/checks/Checks.h"
#include "host/document/Document.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

namespace {

struct Options {
    std::vector<std::string> files;
    std::vector<std::string> scripts;
    bool json = false;
};

// What came of one of the files.
struct Checked {
    std::string file;
    std::string error; // why it could not be read; empty when it was
    std::size_t blocks = 0;
    std::vector<Finding> findings;
    std::vector<std::string> notes; // of what was not looked at
};

Checked check(std::string const& file, Options const& options, Scripts& scripts) {
    Checked checked;
    checked.file = file;
    try {
        Document document(file, options.scripts);
        checked.findings = findingsOf(document, scripts);
        checked.blocks = document.blocks().size();
        for (WorkflowNote const& note : notesOf(document.workflowFindings(), file)) {
            if (note.isFinding)
                continue;
            checked.notes.push_back(errorLine(note.file, note.place, note.text));
            fmt::print(stderr, "{}\n", checked.notes.back());
        }
    } catch (Failure const& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        checked.error = failure.what();
        // The line without its beginning, which the other members tell.
        if (std::string const beginning = errorLine(file, "", ""); checked.error.starts_with(beginning))
            checked.error.erase(0, beginning.size());
    }
    return checked;
}

std::string countOf(std::vector<Finding> const& findings) {
    return findings.empty() ? "nothing found" : counted(findings.size(), "finding");
}

void printText(Checked const& checked) {
    if (!checked.error.empty())
        return;
    std::string out;
    for (Finding const& finding : checked.findings)
        out += fmt::format("{}: {}: {}: {}\n", oneLine(checked.file),
                           finding.path.empty() ? "(process)" : oneLine(finding.path), finding.rule,
                           oneLine(finding.message));
    out +=
        fmt::format("{}: {}, {}\n", oneLine(checked.file), counted(checked.blocks, "block"), countOf(checked.findings));
    fmt::print("{}", out);
    // What is known of this file, before the next one takes its time.
    std::fflush(stdout);
}

void printJson(std::vector<Checked> const& all) {
    Json documents = Json::array();
    Json findings = Json::array();
    for (Checked const& checked : all) {
        Json document = {{"file", checked.file}};
        if (!checked.error.empty())
            document["error"] = checked.error;
        else
            document.update({{"blocks", checked.blocks}, {"findings", checked.findings.size()}});
        if (!checked.notes.empty())
            document["notes"] = checked.notes;
        documents.push_back(std::move(document));
        for (Finding const& finding : checked.findings) {
            Json entry = {
                {"file", checked.file}, {"path", finding.path}, {"rule", finding.rule}, {"message", finding.message}};
            if (!finding.script.empty())
                entry["script"] = finding.script;
            if (finding.line > 0)
                entry["line"] = finding.line;
            findings.push_back(std::move(entry));
        }
    }
    fmt::print("{}", jsonText({{"documents", std::move(documents)}, {"findings", std::move(findings)}}));
}

int checkAll(Options const& options) {
    Scripts scripts;
    std::vector<Checked> all;
    std::size_t findings = 0;
    std::size_t unread = 0;
    for (std::string const& file : options.files) {
        Checked const& checked = all.emplace_back(check(file, options, scripts));
        findings += checked.findings.size();
        unread += checked.error.empty() ? 0 : 1;
        if (!options.json)
            printText(checked);
    }
    if (options.json)
        printJson(all);
    else if (all.size() > 1)
        fmt::print("{}: {}{}\n", counted(all.size(), "document"),
                   findings == 0 ? "nothing found" : counted(findings, "finding"),
                   unread == 0 ? "" : fmt::format(", {} unread", unread));
    return unread > 0 ? kExitWrongUse : findings > 0 ? kExitFound : kExitWell;
}

} // namespace

void addCheck(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("check", "Tell what is wrong with documents");
    command.option("FILE", options->files, "The process documents and workflow folders").required();
    command
        .option("--scripts", options->scripts,
                "A folder under which scripts are found; each document's own folder always is one")
        .typeName("DIR")
        .repeated();
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    command.footer("A finding is a line FILE: PATH: RULE: MESSAGE. Scripts are compiled and never run.\n"
                   "Rules: dead-link, link-loop, missing-connector-block, missing-file, duplicate-id,\n"
                   "duplicate-variable, unreachable-block, decision-grip, missing-script, script-syntax,\n"
                   "script-class, script-import, not-identifier.\n"
                   "Workflows: start-state, unknown-target, state-transition, duplicate-node,\n"
                   "slash-in-name, fork-names, fork-without-join, join-branches, no-task, script-event,\n"
                   "event-type, priority, group-entry.\n"
                   "Exit code: 0 nothing found, 1 something found, 2 a file cannot be read.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere check beam.xml plant.xml");
    command.work([options, &result] { result.exitCode = checkAll(*options); });
}

} // namespace flowmere::host
