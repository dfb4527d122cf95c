#include "host/commands/Draw.h"

#include "host/basics/Text.h"
#include "host/document/Document.h"
#include "host/document/Findings.h"
#include "host/drawing/Drawing.h"
#include "host/files/SafeFile.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

namespace {

struct Options {
    std::string file;
    std::string out;
    int depth = 1;
    bool states = false;
    bool json = false;
};

constexpr int kDeepest = 1000;

PictureFormat formatOf(std::string const& out) {
    std::string ending = std::filesystem::path(out).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    if (ending == ".svg")
        return PictureFormat::Svg;
    if (ending == ".png")
        return PictureFormat::Png;
    if (ending == ".pdf")
        return PictureFormat::Pdf;
    throw Failure(out, "", "is no picture: its name must end in .svg, .png or .pdf");
}

int draw(Options const& options) {
    PictureFormat const format = formatOf(options.out);
    SafeFile::check(options.out);
    Document const document(options.file);
    Picture picture = makePicture(document, {options.depth, options.states}, format);
    for (CFCReadFinding const& finding : document.findings())
        if (finding.kind == CFCReadFinding::FileNotRead)
            picture.notes.push_back(oneLine(describe(finding)) + "; it is not drawn");
    std::vector<std::string> lines;
    for (std::string const& note : picture.notes)
        lines.push_back(errorLine(options.file, "", note));
    for (WorkflowNote const& note : notesOf(document.workflowFindings(), options.file)) {
        std::string const line = errorLine(note.file, note.place, note.text);
        // Without the name of the program.
        picture.notes.push_back(line.substr(errorLine("", "", "").size()));
        lines.push_back(line);
    }
    saveBytes(options.out, picture.bytes);
    if (options.json) {
        printOut(jsonText({{"file", options.file},
                           {"picture", options.out},
                           {"blocks", picture.blocks},
                           {"connectors", picture.connectors},
                           {"inches", {picture.width, picture.height}},
                           {"bytes", picture.bytes.size()},
                           {"notes", picture.notes}}));
    } else {
        printOut(fmt::format("{}: {}, {}, {:.1f} x {:.1f} inches\n", options.out, counted(picture.blocks, "block"),
                             counted(picture.connectors, "connector"), picture.width, picture.height));
        for (std::string const& line : lines)
            printError(line + "\n");
    }
    return kExitWell;
}

} // namespace

void addDraw(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("draw", "Draw the diagram of a document into a picture");
    command.option("FILE", options->file, "The process document, or a workflow folder").required();
    command.option("-o,--out", options->out, "The picture; .svg, .png or .pdf at its end says what it becomes")
        .typeName("OUT")
        .required();
    command.option("--depth", options->depth, "Draw sub-processes open so many levels down; 0 draws them closed")
        .typeName("N")
        .showDefault()
        .range(0, kDeepest);
    command.flag("--state", options->states, "Colour the blocks by their state in the last run, with a legend");
    command.flag("--json", options->json, "Print what was drawn as JSON");
    command.footer("Example:\n  flowmere draw beam.xml -o beam.svg --depth 2");
    command.work([options, &result] { result.exitCode = draw(*options); });
}

} // namespace flowmere::host
