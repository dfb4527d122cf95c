#include "host/commands/Catalog.h"

#include "host/catalogs/Catalogs.h"
#include "host/files/InputFile.h"
#include "host/files/XmlFault.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string file;
    std::string base;
    std::string user;
    bool json = false;
};

// The absolute path of a folder; empty for none.
fs::path folderOf(std::string const& name) {
    if (name.empty())
        return {};
    std::error_code error;
    if (!fs::is_directory(name, error))
        throw Failure(name, "", fs::exists(name, error) ? "is no folder" : "there is no such folder");
    fs::path path = fs::absolute(name).lexically_normal();
    if (!path.has_filename())
        path = path.parent_path();
    if (path.string().find('\\') != std::string::npos)
        throw Failure(name, "", "cannot be used: its path holds a backslash");
    return path;
}

// The catalog of a folder, by the name that the library gives it.
std::string fileIn(std::string const& folder, wchar_t const* libraryPath) {
    std::string const path = utf8(libraryPath);
    std::string const name = path.substr(path.find_last_of('\\') + 1);
    return folder == "." ? name : (fs::path(folder) / name).string();
}

// The files that make up the catalog, as the user would name them.
std::vector<std::string> filesOf(CatalogKind const& kind, Options const& options) {
    if (!options.file.empty())
        return {options.file};
    std::string const help = fmt::format(" (see flowmere catalog {} --help)", kind.name);
    if (kind.commonPath == nullptr)
        throw Failure("", "", "FILE is required" + help);
    std::vector<std::string> files;
    if (!options.base.empty())
        files.push_back(fileIn(options.base, kind.commonPath()));
    else if (kind.userPath == nullptr)
        throw Failure("", "", "FILE or --base is required" + help);
    std::error_code error;
    if (kind.userPath != nullptr && !options.user.empty() &&
        (options.base.empty() || !fs::equivalent(options.base, options.user, error))) {
        std::string const file = fileIn(options.user, kind.userPath());
        // Not every user has one.
        if (options.base.empty() || fs::exists(fs::symlink_status(file, error)))
            files.push_back(file);
    }
    return files;
}

std::string otherKind(CatalogKind const& kind, std::string const& root) {
    return fmt::format("holds a \"{}\" and no {}", root, kind.content);
}

// Refuses a process: its blocks would read as entries without any words.
void checkNoProcess(CatalogKind const& kind, std::string const& file) {
    constexpr char const* kProcess = "Process";
    if (kind.roots.empty() || std::find(kind.roots.begin(), kind.roots.end(), kProcess) != kind.roots.end())
        return;
    if (rootElement(file) == kProcess)
        throw Failure(file, "", otherKind(kind, kProcess));
}

// Refuses a file that holds nothing and is of another kind: the library takes any root element.
void checkRoot(CatalogKind const& kind, std::string const& file) {
    CTXMLBaseReader reader;
    reader.Initialize(libraryPath(file));
    if (std::any_of(kind.roots.begin(), kind.roots.end(), [&](std::string const& root) {
            return reader.GetElement(TuString(root.c_str()), nullptr, nullptr, 0);
        }))
        return;
    std::string const root = rootElement(file);
    throw Failure(file, "", root.empty() ? fmt::format("holds no {}", kind.content) : otherKind(kind, root));
}

int show(CatalogKind const& kind, Options options) {
    // Without any word on where to look it is here.
    if (options.file.empty() && options.base.empty() && options.user.empty())
        options.base = ".";
    fs::path const base = folderOf(options.base);
    fs::path const user = folderOf(options.user);
    // Looked at before the library is told: it would make a folder that is missing.
    CFCEnvironment::SetBasePath(base.empty() ? TuString() : libraryPath(base));
    CFCEnvironment::SetUserPath(user.empty() ? TuString() : libraryPath(user));

    std::vector<std::string> const files = filesOf(kind, options);
    std::unique_ptr<Catalog> const catalog = kind.make();
    for (std::string const& file : files) {
        if (std::string const fault = inputFault(file); !fault.empty())
            throw Failure(file, "", fault);
        checkIsXml(file, file);
        checkNoProcess(kind, file);
        if (!catalog->read(libraryPath(file)))
            throw Failure(file, "", "cannot be read");
    }
    if (catalog->isEmpty())
        for (std::string const& file : files)
            checkRoot(kind, file);

    std::string names;
    for (std::string const& file : files)
        names += (names.empty() ? "" : " and ") + oneLine(file);
    if (options.json) {
        Json document = {{"catalog", kind.name}, {"files", files}};
        document.update(catalog->json());
        printOut(jsonText(document));
    } else {
        printOut(names + ": " + catalog->summary() + "\n" + catalog->text());
    }
    for (std::string const& text : catalog->leftOut())
        printError(errorLine(files.back(), "", text) + "\n");
    return kExitWell;
}

} // namespace

void addCatalog(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("catalog", "Show what the catalogs beside the processes hold");
    command.needCommand();
    command.footer("Example:\n"
                   "  flowmere catalog types --base /opt/processes");
    for (CatalogKind const& kind : catalogKinds()) {
        Command const shower = command.add(kind.name, kind.help);
        bool const hasPlace = kind.commonPath != nullptr;
        Option const file = shower.option("FILE", options->file,
                                          hasPlace ? "The catalog; without it the one of the folders" : "The catalog");
        file.required(!hasPlace);
        Option const base =
            shower
                .option("--base", options->base,
                        hasPlace ? "The folder of the common catalogs; without FILE and folders the current one"
                                 : "The folder of the common catalogs, which has none of this kind")
                .typeName("DIR");
        Option const user =
            shower
                .option("--user", options->user,
                        kind.takesUser ? "The folder of the user's own catalogs"
                                       : "The folder of the user's own catalogs, which has none of this kind")
                .typeName("DIR");
        shower.flag("--json", options->json, "Print the same as JSON");
        shower.footer(fmt::format("Example:\n  flowmere catalog {} {}", kind.name, kind.example));
        shower.work([&kind, options, &result, file, base, user] {
            // A variable of a shell script that is not set must not stand for the current folder.
            for (auto const& [option, name] :
                 {std::pair(file, "catalog"), std::pair(base, "folder of --base"), std::pair(user, "folder of --user")})
                if (option.count() != 0 && option.text().empty())
                    throw Failure("", "", fmt::format("the name of the {} is empty", name));
            result.exitCode = show(kind, *options);
        });
    }
}

} // namespace flowmere::host
