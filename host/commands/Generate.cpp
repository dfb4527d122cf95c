#include "host/commands/Generate.h"

#include "host/basics/Text.h"
#include "host/basics/WorkFolder.h"
#include "host/checks/Scripts.h"
#include "host/document/Document.h"
#include "host/document/Tree.h"
#include "host/files/SafeFile.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

struct Options {
    std::string file;
    std::string out;
    bool keepUserCode = false;
    bool json = false;
};

// The endings of what the library writes: a file without them did not come to disk whole.
constexpr std::string_view kMainEnd = "        \n";
constexpr std::string_view kCompanionEnd = "        return\n";

std::optional<std::string> contentOf(fs::path const& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error))
        return std::nullopt;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The texts of the three files of a block.
struct Generated {
    std::string main;
    std::string companion;
    std::string package;
};

class Generator {
public:
    explicit Generator(Options const& options)
        : m_options(options), m_document(options.file), m_tree(m_document.process()), m_work(options.out) {}

    int work() {
        m_document.expectDocument("has its scripts: \"flowmere import\" makes a document of it");
        m_out = fs::absolute(m_options.out).lexically_normal();
        if (!m_out.has_filename())
            m_out = m_out.parent_path();
        makeFolder(m_out);
        for (TreeNode const& node : m_tree.nodes())
            if (node.parent != Tree::kNone && node.block != nullptr && isScriptedKind(node.node->GetNodeType()))
                generate(node);
        say(fmt::format("{}, {} written{}{}\n", counted(m_blocks, "block"), counted(m_written, "file"),
                        m_kept == 0 ? "" : fmt::format(", {} kept", counted(m_kept, "file")),
                        m_leftOut == 0 ? "" : fmt::format(", {} left out", counted(m_leftOut, "block"))));
        if (m_options.json)
            printOut(jsonText({{"file", m_options.file},
                               {"folder", m_options.out},
                               {"blocks", m_entries},
                               {"written", m_written},
                               {"kept", m_kept},
                               {"complaints", m_complaints}}));
        return m_leftOut > 0 || m_isDoubtful ? kExitFound : kExitWell;
    }

private:
    void say(std::string const& text) const {
        if (!m_options.json)
            printOut(text);
    }

    void complain(TreeNode const& node, std::string const& cause) {
        printError(errorLine(m_options.file, node.path, cause) + "\n");
        m_complaints.push_back({{"path", node.path}, {"message", cause}});
    }

    void hint(std::string const& text) {
        say("  " + text + "\n");
        m_entries.back()["hint"] = text;
    }

    void leaveOut(TreeNode const& node, std::string const& cause) {
        ++m_leftOut;
        complain(node, cause + "; nothing is generated for it");
    }

    void generate(TreeNode const& node) {
        CFCBlockNode& block = *node.block;
        if (block.GetScriptType() != EScriptType_PYTHON)
            return leaveOut(node, "its script is no Python script");
        if (!m_scripts.isIdentifier(node.id))
            return leaveOut(node, fmt::format("the id \"{}\" is no Python name", node.id));
        std::string const scriptName = utf8(block.GetScriptName());
        std::vector<std::string> parts = partsOf(scriptName.empty() ? node.id : scriptName);
        parts.pop_back();
        fs::path folder = m_out;
        std::string package;
        for (std::string const& part : parts) {
            if (!m_scripts.isIdentifier(part))
                return leaveOut(node,
                                fmt::format("the script name \"{}\" has a part that is no Python name", scriptName));
            folder /= part;
            package += part + ".";
        }
        std::string const generatedName = package + node.id;
        for (std::string const& name : {node.id, node.id + "Block"})
            if (auto const [owner, isNew] = m_owners.emplace(folder / name, node.path); !isNew)
                return leaveOut(node,
                                fmt::format("{}.py is a script of \"{}\" already; a package in the script name of "
                                            "one of them keeps them apart",
                                            name, owner->second));
        for (std::size_t index = node.firstVariable; index < node.firstVariable + node.variableCount; ++index)
            if (std::string const& name = m_tree.variables()[index].name; !m_scripts.isIdentifier(name)) {
                m_isDoubtful = true;
                complain(node,
                         fmt::format("the variable name \"{}\" is no Python name; the script will not compile", name));
            }

        Generated const texts = textsOf(block);
        makeFolder(folder);
        ++m_blocks;
        say(fmt::format("{}: script {}\n", oneLine(node.path), generatedName));
        m_entries.push_back({{"path", node.path}, {"script", generatedName}, {"files", Json::array()}});
        writeMain(folder / (node.id + ".py"), texts.main);
        write(folder / (node.id + "Block.py"), texts.companion);
        writePackage(folder / "__init__.py", texts.package);
        if (!scriptName.empty() && scriptName != generatedName)
            hint(fmt::format("the document names the script {}: change that to run this one", oneLine(scriptName)));
        else if (parts.empty())
            hintAtPackage(node);
    }

    // A main file imports its companion from a package, and so needs one to run.
    void hintAtPackage(TreeNode const& node) {
        std::string const name = m_out.filename().string();
        if (m_scripts.isIdentifier(name))
            hint(fmt::format("to run it, let the document name the script {}.{}, and run with --scripts {}", name,
                             node.id, m_out.parent_path().string()));
        else
            hint(fmt::format("to run it, the script needs a package: let the document name it package.{}", node.id));
    }

    Generated textsOf(CFCBlockNode& block) {
        CFCScriptWriter writer;
        writer.SetNode(&block);
        writer.SetFolderName(libraryPath(m_work.path()));
        writer.SetMainFileName(libraryPath(m_work.path() / "main.py"));
        writer.SetSubFileName(libraryPath(m_work.path() / "companion.py"));
        writer.GenerateAllFiles(true);
        auto const main = contentOf(m_work.path() / "main.py");
        auto const companion = contentOf(m_work.path() / "companion.py");
        auto const package = contentOf(m_work.path() / "__init__.py");
        if (!main || !companion || !package || !main->ends_with(kMainEnd) || !companion->ends_with(kCompanionEnd))
            throw Failure(m_options.out, "",
                          "cannot be written: there is no room in " + m_work.path().parent_path().string());
        return {*main, *companion, *package};
    }

    static void makeFolder(fs::path const& folder) {
        std::error_code error;
        fs::create_directories(folder, error);
        if (!fs::is_directory(folder))
            throw Failure(folder.string(), "",
                          error ? "cannot be made: " + error.message() : "cannot be made: it is a file");
    }

    void write(fs::path const& file, std::string const& text) {
        saveBytes(file.string(), text);
        ++m_written;
        say(fmt::format("  {}\n", oneLine(shown(file))));
        note({{"file", shown(file)}, {"state", "written"}});
    }

    void keep(fs::path const& file) {
        ++m_kept;
        say(fmt::format("  {} kept\n", oneLine(shown(file))));
        note({{"file", shown(file)}, {"state", "kept"}});
    }

    void note(Json entry) { m_entries.back()["files"].push_back(std::move(entry)); }

    // Writes over a file that a person may have changed, once what it held is safe.
    void writeWithBackup(fs::path const& file, std::string const& text, std::string const& held) {
        fs::path backup = file;
        backup += ".bak";
        auto found = contentOf(backup);
        for (int number = 2; fs::exists(backup) && found != held; ++number) {
            backup = file;
            backup += fmt::format(".bak{}", number);
            found = contentOf(backup);
        }
        if (found != held)
            saveBytes(backup.string(), held);
        saveBytes(file.string(), text);
        ++m_written;
        say(fmt::format("  {} (what it held is in {})\n", oneLine(shown(file)), oneLine(backup.filename().string())));
        note({{"file", shown(file)}, {"state", "written"}, {"backup", shown(backup)}});
    }

    void writeMain(fs::path const& file, std::string const& text) {
        auto const held = contentOf(file);
        if (held && m_options.keepUserCode)
            keep(file);
        else if (held && *held != text)
            writeWithBackup(file, text, *held);
        else
            write(file, text);
    }

    // Several blocks share a package, whose marker a person may have filled.
    void writePackage(fs::path const& file, std::string const& text) {
        if (!m_packages.insert(file).second)
            return;
        auto const held = contentOf(file);
        if (held && !held->empty() && *held != text)
            writeWithBackup(file, text, *held);
        else
            write(file, text);
    }

    // Below the folder as the user named it.
    std::string shown(fs::path const& file) const {
        return (fs::path(m_options.out) / file.lexically_relative(m_out)).lexically_normal().string();
    }

    Options const& m_options;
    Document m_document;
    Tree m_tree;
    Scripts m_scripts;
    WorkFolder m_work;
    fs::path m_out;
    std::map<fs::path, std::string> m_owners; // of each module without its ending: the block
    std::set<fs::path> m_packages;
    Json m_entries = Json::array();    // of the blocks
    Json m_complaints = Json::array(); // what standard error tells
    std::size_t m_blocks = 0;
    std::size_t m_written = 0;
    std::size_t m_kept = 0;
    std::size_t m_leftOut = 0;
    bool m_isDoubtful = false;
};

} // namespace

void addGenerate(Command const& program, Result& result) {
    auto const options = std::make_shared<Options>();
    Command const command = program.add("generate", "Write the script files of each task block");
    command.option("FILE", options->file, "The process document").required();
    command
        .option("--out", options->out,
                "The folder for the scripts, made when it is missing; packages become folders in it")
        .required()
        .typeName("DIR");
    command.flag("--keep-user-code", options->keepUserCode,
                 "Leave the file with the user's code as it is where there is one");
    command.flag("--json", options->json, "Print one JSON document in place of the lines");
    command.footer("For a block Name: Name.py with the user's code, NameBlock.py with its variables, which is\n"
                   "written anew each time, and __init__.py. Without --keep-user-code a Name.py that differs is\n"
                   "kept as Name.py.bak.\n"
                   "Exit code: 0 all went well, 1 a block was left out or has a name that is no Python name,\n"
                   "2 a file cannot be read or written.\n"
                   "\n"
                   "Example:\n"
                   "  flowmere generate beam.xml --out scripts --keep-user-code");
    command.work([options, &result] { result.exitCode = Generator(*options).work(); });
}

} // namespace flowmere::host
