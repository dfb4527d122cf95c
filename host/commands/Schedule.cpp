#include "host/commands/Schedule.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/files/SafeFolder.h"
#include "host/workflow/FolderFiles.h"
#include "host/workflow/NativeDocument.h"
#include "host/workflow/Report.h"
#include "host/workflow/ScheduleImport.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string file;
    std::string out;
    bool connects = false;
    bool force = false;
    bool json = false;
};

bool isDocument(std::string const& out) {
    std::string ending = fs::path(out).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return ending == ".xml";
}

// What is written must not take the place of the schedule.
void checkTarget(Options const& options) {
    std::error_code error;
    if (fs::equivalent(options.file, options.out, error))
        throw Failure(options.out, "", "cannot be written: it is the schedule, which is read");
    if (isDocument(options.out)) {
        Document::checkCanSave(options.out);
        return;
    }
    fs::path const target = SafeFolder::destinationOf(options.out);
    fs::path const relative = fs::weakly_canonical(options.file, error).lexically_relative(target);
    if (fs::is_directory(target, error) && !relative.empty() && *relative.begin() != "..")
        throw Failure(options.out, "", fmt::format("cannot be written: it holds {}, which is read", options.file));
}

// Gives the notes.
std::vector<Note> write(Options const& options, Schedule& schedule) {
    if (isDocument(options.out)) {
        beginDocument(options.out);
        NativeTree tree = documentOf(schedule);
        saveDocument(tree, options.out);
        return tree.notes;
    }
    WorkflowTree tree = workflowOf(schedule);
    writeWorkflowFolder({options.out, options.force}, tree, nullptr, nullptr);
    return tree.notes;
}

int importSchedule(Options const& options) {
    checkTarget(options);
    Schedule schedule = readSchedule(options.file, options.connects);
    std::vector<Note> const notes = write(options, schedule);

    auto const count = [](int number, std::string_view what) {
        return counted(static_cast<std::size_t>(number), what);
    };
    if (options.json) {
        Json out = {{"file", options.file},
                    {"out", options.out},
                    {"tasks", schedule.tasks},
                    {"superStates", schedule.superStates},
                    {"taskBlocks", schedule.blocks},
                    {"connectors", options.connects ? Json(schedule.connectors) : Json(nullptr)},
                    {"leftOut", jsonOf(schedule.leftOut)}};
        addNotes(out, notes);
        printOut(jsonText(out));
    } else {
        std::string text = textOf(schedule.leftOut) + textOf(notes);
        if (hasLosses(schedule.leftOut))
            text += "A task comes in at the top when its Type is 1 or its WBS is 1 and one number, as 1.2; any other "
                    "below\nthe last one at the top, when its WBS is that one's and one number more, as 1.2.3.\n";
        if (!options.connects && schedule.predecessors > 0)
            text += fmt::format("{} a predecessor: --connect joins the blocks.\n",
                                schedule.predecessors == 1 ? "1 task names"
                                                           : fmt::format("{} tasks name", schedule.predecessors));
        text += fmt::format("{} -> {}: {}: {}, {}, {} left out; {}{}\n", oneLine(options.file), oneLine(options.out),
                            count(schedule.tasks, "task"), count(schedule.superStates, "super-state"),
                            count(schedule.blocks, "task block"), schedule.leftOut.size(),
                            options.connects ? count(schedule.connectors, "connector") + "; " : std::string(),
                            summaryOf(notes));
        printOut(text);
    }
    return hasLosses(schedule.leftOut) || hasLosses(notes) ? kExitFound : kExitWell;
}

} // namespace

void addSchedule(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("schedule", "Make a document or a workflow folder of a project schedule");
    command.option("FILE", options->file, "The schedule, in the XML form of project planners").required();
    command
        .option("-o,--out", options->out,
                "The document to write, when it ends in .xml; anything else is a workflow folder")
        .typeName("OUT")
        .required();
    command.flag("--connect", options->connects, "Join the blocks by the predecessors of their tasks");
    command.flag("--force", options->force, "Replace a workflow folder that is there already, with all it holds");
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    command.footer(
        "Tells which tasks are left out, and why, and has a line for each thing that is not the same: ~ for\n"
        "what is carried in another form, - for what is not carried.\n"
        "Exit code: 0 all is carried, 1 it is written and something is left out or lost, 2 nothing is\n"
        "written.\n"
        "\n"
        "Example:\n"
        "  flowmere schedule plan.xml -o process.xml --connect");
    command.work([options, &result] { result.exitCode = importSchedule(*options); });
}

} // namespace flowmere::host
