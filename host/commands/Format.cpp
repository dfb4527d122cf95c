#include "host/commands/Format.h"

#include "host/Text.h"
#include "host/WorkFolder.h"

#include "flowmere/Flowmere.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string file;
};

std::string readingFault(fs::path const& file) {
    std::error_code error;
    fs::file_status const status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found)
        return "there is no such file";
    if (error)
        return "cannot be read: " + error.message();
    if (status.type() == fs::file_type::directory)
        return "is a folder";
    if (status.type() != fs::file_type::regular)
        return "is no regular file";
    errno = 0;
    if (!std::ifstream(file, std::ios::binary))
        return std::string("cannot be read: ") + std::strerror(errno);
    if (fs::file_size(file, error) == 0 && !error)
        return "is empty";
    return {};
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
    if (std::string const fault = readingFault(options.file); !fault.empty())
        throw Failure(options.file, "", fault);
    fs::path const target = targetOf(options.file);
    auto const fail = [&](std::string const& cause) {
        throw Failure(target.string(), "", "cannot be written: " + cause);
    };
    std::error_code error;
    if (fs::is_directory(target, error))
        fail("it is a folder");

    // The library works beside its input and tells nothing: on a copy, what came of it can be seen before it counts.
    WorkFolder const work(target, fs::absolute(target).parent_path());
    fs::path const copy = work.path() / "document.xml";
    fs::path const formatted = work.path() / "document.for";
    fs::copy_file(options.file, copy, error);
    if (error)
        fail(error.message());
    CFCWriter::LoadAndFormatXML(libraryPath(copy));
    if (!fs::exists(formatted, error))
        throw Failure(options.file, "", "is no well-formed XML");
    // A second pass over a file that did not come to disk whole finds nothing to format.
    fs::path const again = work.path() / "again.xml";
    fs::copy_file(formatted, again, error);
    if (!error)
        CFCWriter::LoadAndFormatXML(libraryPath(again));
    if (error || !fs::exists(work.path() / "again.for", error))
        fail("the disk may be full");

    fs::rename(formatted, target, error);
    if (error == std::errc::cross_device_link)
        fs::copy_file(formatted, target, fs::copy_options::overwrite_existing, error);
    if (error)
        fail(error.message());
    fmt::print("{}\n", oneLine(target.string()));
    return kExitWell;
}

} // namespace

void addFormat(CLI::App& app, Result& result) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand("format", "Write an XML file anew, each element on a line of its own");
    command->add_option("FILE", options->file, "The file, which stays as it is")->required();
    command->footer("The result stands beside the file: beam.xml gives beam.for, and any other name gets .for\n"
                    "behind it. A result that is already there is replaced. Prints the path of the result.");
    command->callback([options, &result] { result.exitCode = format(*options); });
}

} // namespace flowmere::host
