#include "host/commands/Import.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/WorkflowFolder.h"
#include "host/workflow/FromWorkflow.h"
#include "host/workflow/NativeDocument.h"
#include "host/workflow/Report.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string folder;
    std::string out;
    bool json = false;
};

std::vector<Note> notesOf(WorkflowFolder const& folder, std::string const& name) {
    std::vector<Note> notes;
    for (CFCWorkflowFinding const& finding : folder.findings)
        notes.push_back(
            {Note::Kind::Lost, utf8(finding.place),
             (finding.element.IsEmpty() ? fileOf(finding, name) + ": " : std::string()) + describe(finding)});
    return notes;
}

// The document must not take the place of a file that it is read from.
void checkTarget(Options const& options) {
    std::optional<fs::path> const definition = workflowDefinition(options.folder);
    std::error_code error;
    for (char const* const name : {"processdefinition.xml", "gpd.xml", "process.var"})
        if (definition && fs::equivalent(definition->parent_path() / name, options.out, error))
            throw Failure(options.out, "", "cannot be written: it is a file of the workflow folder, which is read");
}

int importFolder(Options const& options) {
    Document::checkCanSave(options.out);
    checkTarget(options);
    beginDocument(options.out);
    WorkflowFolder const folder = readWorkflowFolder(options.folder);
    fs::path const path = folder.definition.parent_path();
    NativeTree tree = fromWorkflow(*folder.process, path);
    std::vector<Note> notes = notesOf(folder, options.folder);
    notes.insert(notes.end(), tree.notes.begin(), tree.notes.end());
    tree.notes = std::move(notes);
    saveDocument(tree, options.out);

    bool const isBeside = fs::absolute(options.out).lexically_normal().parent_path() == path;
    if (options.json) {
        Json out = {{"folder", options.folder},
                    {"file", options.out},
                    {"blocks", tree.blocks},
                    {"connectors", tree.connectors},
                    {"variables", tree.variables},
                    {"scripts", tree.scripts},
                    {"scriptRoot", tree.scripts > 0 ? Json(path.string()) : Json(nullptr)}};
        addNotes(out, tree.notes);
        printOut(jsonText(out));
    } else {
        auto const count = [](int number, std::string_view what) {
            return counted(static_cast<std::size_t>(number), what);
        };
        std::string text = textOf(tree.notes);
        text += fmt::format("{} -> {}: {}, {}, {}, {}; {}\n", oneLine(options.folder), oneLine(options.out),
                            count(tree.blocks, "block"), count(tree.connectors, "connector"),
                            count(tree.variables, "variable"), count(tree.scripts, "script"), summaryOf(tree.notes));
        if (tree.scripts > 0 && !isBeside)
            text +=
                fmt::format("Scripts and files stay in the folder: write the document into it to have both, or run it "
                            "with --scripts {}\n",
                            oneLine(options.folder));
        printOut(text);
    }
    return hasLosses(tree.notes) ? kExitFound : kExitWell;
}

} // namespace

void addImport(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("import", "Make a document of a workflow folder");
    command.option("DIR", options->folder, "The workflow folder, which stays as it is").required();
    command.option("OUT", options->out, "The process document to write").required();
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    command.footer("A line for each thing that is not the same in the document: ~ for what is carried in another\n"
                   "form, - for what is not carried or was passed over, and why. Scripts stay in the folder.\n"
                   "Exit code: 0 nothing is lost, 1 the document is written and something is lost, 2 nothing is\n"
                   "written.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere import BrindleExec/beam beam-back.xml");
    command.work([options, &result] { result.exitCode = importFolder(*options); });
}

} // namespace flowmere::host
