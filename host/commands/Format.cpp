#include "host/commands/Format.h"

#include "host/basics/Text.h"
#include "host/basics/WorkFolder.h"
#include "host/files/InputFile.h"
#include "host/files/SafeFile.h"
#include "host/files/XmlFault.h"

#include "flowmere/Flowmere.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string file;
    bool json = false;
};

std::string contentOf(fs::path const& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// "beam.xml" becomes "beam.for", and any other name gets ".for" behind it.
fs::path targetOf(fs::path const& file) {
    constexpr std::string_view kXml = ".xml";
    std::string name = file.filename().string();
    bool isXml = false;
    for (auto at = name.find(kXml); at != std::string::npos; at = name.find(kXml, at)) {
        name.replace(at, kXml.size(), ".for");
        isXml = true;
    }
    return file.parent_path() / (isXml ? name : name + ".for");
}

int format(Options const& options) {
    if (options.file.empty())
        throw Failure("", "", "the name of the file is empty");
    if (std::string const fault = fileFault(options.file); !fault.empty())
        throw Failure(options.file, "", fault);
    fs::path const target = targetOf(options.file);
    auto const fail = [&](std::string const& cause) {
        throw Failure(target.string(), "", "cannot be written: " + cause);
    };
    SafeFile::check(target.string());

    // The library works beside its input and tells nothing: on a copy, what came of it can be seen before it counts.
    std::error_code error;
    WorkFolder const work(target);
    fs::path const copy = work.path() / "document.xml";
    fs::path const formatted = work.path() / "document.for";
    auto const write = [&](fs::path const& file, std::string const& text) {
        try {
            saveBytes(file.string(), text);
        } catch (Failure const&) {
            // The user knows nothing of this file.
            fail("there is no room in " + work.path().parent_path().string());
        }
    };
    write(copy, contentOf(options.file));
    CFCWriter::LoadAndFormatXML(libraryPath(copy));
    if (!fs::exists(formatted, error)) {
        checkIsXml(copy, options.file);
        fail("there is no room in " + work.path().parent_path().string());
    }
    // A second pass over a file that did not come to disk whole finds nothing to format.
    std::string const text = contentOf(formatted);
    fs::path const again = work.path() / "again.xml";
    write(again, text);
    CFCWriter::LoadAndFormatXML(libraryPath(again));
    if (!fs::exists(work.path() / "again.for", error))
        fail("there is no room in " + work.path().parent_path().string());
    saveBytes(target.string(), text);
    printOut(options.json ? jsonText({{"file", options.file}, {"result", target.string()}})
                          : oneLine(target.string()) + "\n");
    return kExitWell;
}

} // namespace

void addFormat(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("format", "Write an XML file anew, each element on a line of its own");
    command.option("FILE", options->file, "The file, which stays as it is").required();
    command.flag("--json", options->json, "Print the path as JSON");
    command.footer("The result stands beside the file: beam.xml gives beam.for, and any other name gets .for\n"
                   "behind it. A result that is already there is replaced. Prints the path of the result.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere format beam.xml");
    command.work([options, &result] { result.exitCode = format(*options); });
}

} // namespace flowmere::host
