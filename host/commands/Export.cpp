#include "host/commands/Export.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/WorkflowFolder.h"
#include "host/files/SafeFolder.h"
#include "host/workflow/FolderFiles.h"
#include "host/workflow/Report.h"
#include "host/workflow/ToWorkflow.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string file;
    std::string folder;
    std::vector<std::string> applications;
    std::vector<std::string> scripts;
    bool force = false;
    bool json = false;
};

bool holdsApplications(IFCNode& node) {
    for (IFCNode* child = node.GetChild(); child != nullptr; child = child->GetNext())
        if (child->GetNodeType() == eShapeType_Application || holdsApplications(*child))
            return true;
    return false;
}

// Moves the children of a process behind those of another one.
void moveChildren(IFCNode& from, IFCNode& to) {
    IFCNode* const first = from.GetChild();
    from.SetChild(nullptr);
    for (IFCNode* child = first; child != nullptr; child = child->GetNext())
        child->SetParentNode(&to);
    IFCNode* last = to.GetChild();
    while (last != nullptr && last->GetNext() != nullptr)
        last = last->GetNext();
    if (last == nullptr) {
        to.SetChild(first);
    } else if (first != nullptr) {
        last->SetNext(first);
        first->SetPrev(last);
    }
}

// One tree with the applications of all folders; null without any.
NodeTree readApplications(std::vector<std::string> const& folders) {
    NodeTree all;
    for (std::string const& name : folders) {
        WorkflowFolder folder = readWorkflowFolder(name);
        if (!holdsApplications(*folder.process))
            throw Failure(name, "", "holds no applications: its type is not APPLICATION");
        if (all == nullptr)
            all = std::move(folder.process);
        else
            moveChildren(*folder.process, *all);
    }
    return all;
}

// What the reader of the document passed over is not exported either.
void addFindings(Document const& document, std::vector<Note>& notes) {
    for (CFCReadFinding const& finding : document.findings())
        notes.push_back({Note::Kind::Lost, pathOf(*finding.node),
                         finding.kind == CFCReadFinding::FileNotRead
                             ? fmt::format("the linked file {}: it is missing or cannot be read", utf8(finding.first))
                             : fmt::format("the connector from {} to {}: it lacks a block", utf8(finding.first),
                                           utf8(finding.second))});
    for (CFCWorkflowFinding const& finding : document.workflowFindings())
        notes.push_back({Note::Kind::Lost, utf8(finding.place), describe(finding)});
}

// Replacing a folder must not take away the document that is exported, or its scripts.
void checkSource(Options const& options, Document const& document) {
    fs::path const target = SafeFolder::destinationOf(options.folder);
    auto const isInside = [&](fs::path const& path) {
        std::error_code error;
        fs::path const relative = fs::weakly_canonical(path, error).lexically_relative(target);
        return !relative.empty() && *relative.begin() != "..";
    };
    if (isInside(document.path()) && fs::is_directory(target))
        throw Failure(options.folder, "", fmt::format("cannot be written: it holds {}, which is read", options.file));
    for (fs::path const& root : document.scriptRoots())
        if (isInside(root))
            throw Failure(options.folder, "",
                          fmt::format("cannot be written: it holds the scripts in {}", root.string()));
}

int exportFolder(Options const& options) {
    Document const document(options.file, options.scripts);
    checkSource(options, document);
    NodeTree const applications = readApplications(options.applications);
    WorkflowTree tree =
        toWorkflow(document.process(), [&](CFCBlockNode& block) { return document.scriptState(block); });
    addFindings(document, tree.notes);
    WrittenFolder const written =
        writeWorkflowFolder({options.folder, options.force}, tree, &document, applications.get());

    if (options.json) {
        Json out = {{"file", options.file},      {"folder", options.folder},        {"levels", tree.levels},
                    {"nodes", tree.nodes},       {"transitions", tree.transitions}, {"variables", tree.variables},
                    {"scripts", written.scripts}};
        addNotes(out, tree.notes);
        out["files"] = written.files;
        printOut(jsonText(out));
    } else {
        auto const count = [](int number, std::string_view what) {
            return counted(static_cast<std::size_t>(number), what);
        };
        printOut(textOf(tree.notes) + fmt::format("{} -> {}: {}, {}, {}, {}, {}; {}\n", oneLine(options.file),
                                                  oneLine(options.folder), count(tree.levels, "level"),
                                                  count(tree.nodes, "node"), count(tree.transitions, "transition"),
                                                  count(tree.variables, "variable"), count(written.scripts, "script"),
                                                  summaryOf(tree.notes)));
    }
    return hasLosses(tree.notes) ? kExitFound : kExitWell;
}

} // namespace

void addExport(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("export", "Make a workflow folder of a document, for the workflow engine");
    command.option("FILE", options->file, "The process document, or a workflow folder").required();
    command.option("DIR", options->folder, "The workflow folder to make").required();
    command
        .option("--application", options->applications,
                "A workflow folder of applications, which the workflow definition lists; may be given several "
                "times")
        .typeName("DIR")
        .repeated();
    command
        .option("--scripts", options->scripts,
                "A folder in which scripts are found, besides that of the document; may be given several times")
        .typeName("DIR")
        .repeated();
    command.flag("--force", options->force, "Replace a workflow folder that is there already, with all it holds");
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    command.footer(
        "A line for each thing that is not the same in the folder: ~ for what is carried in another form,\n"
        "- for what is not carried, and why. The folder appears whole or not at all.\n"
        "Exit code: 0 nothing is lost, 1 the folder is written and something is lost, 2 nothing is written.\n"
        "\n"
        "Example:\n"
        "  flowmere export beam.xml BrindleExec/beam");
    command.work([options, &result] { result.exitCode = exportFolder(*options); });
}

} // namespace flowmere::host
