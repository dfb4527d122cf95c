#include "Golden.h"
#include "Program.h"

#include "host/basics/Command.h"
#include "host/help/CommandLine.h"
#include "host/help/HelpPages.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;
using flowmere::host::CommandText;
using flowmere::host::commandText;
using flowmere::host::Json;
using flowmere::host::OptionText;
using flowmere::host::ValueKind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A program with one of everything that help has to tell.
class Weaver {
public:
    Weaver() : app("Weaves what there is to weave", "weaver") {
        app.set_help_flag("-h,--help", "Show this help");
        app.set_version_flag("--version", "1.2.3", "Show the version");
        app.require_subcommand(1);
        flowmere::host::useHelpText(app);
        app.footer("weaver COMMAND --help tells more about a command.\n\nExample:\n  weaver weave wool.txt");
        CLI::App* const weave = app.add_subcommand("weave", "Weave files");
        weave
            ->add_option("FILE", files,
                         "The files; a text of which each line is so long that it has to be broken, "
                         "for nobody reads such lines")
            ->required();
        weave->add_option("PLACE", place, "A place")->check(CLI::IsMember({"left", "right"}));
        weave->add_option("-o,--out", out, "The cloth")->type_name("OUT")->required();
        weave->add_option("--pattern", pattern, "The pattern")->check(CLI::IsMember({"plain", "twill", "satin"}));
        weave->add_option("--format", format, "The format")->type_name("svg|png");
        weave->add_option("--loom", looms, "A folder with looms; `old' ones, or \"new\", at C:\\loom or ~/loom")
            ->type_name("DIR")
            ->expected(1)
            ->allow_extra_args(false)
            ->take_all();
        weave->add_option("--a-rather-long-name-for-one", count, "How often")->type_name("N")->check(CLI::Range(1, 9));
        weave->add_flag("--json", json, "Print JSON");
        weave->footer("A line that begins\n.with a dot, 'quoted' ^up \xC3\xA4\xF0\x9F\x98\x80 - and ends.\n"
                      "Kinds: one, two,\nthree.\n"
                      "Exit code: 0 woven,\n2 torn.\n"
                      "\n"
                      "Another paragraph.\n"
                      "\n"
                      "Examples:\n"
                      "  weaver weave a.txt -o b\\c.svg\n"
                      "\n"
                      "  'weaver' weave\n"
                      "    .more");
        CLI::App* const yarn = app.add_subcommand("yarn", "Look after yarn");
        yarn->require_subcommand(1);
        CLI::App* const spin = yarn->add_subcommand("spin", "Spin yarn");
        spin->add_option("COMMAND", pattern, "The command whose yarn it is");
        spin->add_option("--wheel", place, "The wheel")->type_name("FILE");
        spin->footer("It turns.\nExit code: 0 spun.\n\nExample:\n  weaver yarn spin weave");
        yarn->add_subcommand("burn", "Burn yarn");
        CLI::App* const secret = app.add_subcommand("secret", "Not told");
        secret->group("");
    }

    CLI::App app;
    std::vector<std::string> files;
    std::vector<std::string> looms;
    std::string place;
    std::string out;
    std::string pattern;
    std::string format;
    int count = 0;
    bool json = false;
};

TEST(HelpTexts, AreReadFromTheProgramItself) {
    Weaver const weaver;
    CommandText const text = commandText(weaver.app);
    EXPECT_EQ(text.name(), "weaver");
    ASSERT_EQ(text.commands.size(), 2U) << "a command without a group is not told";
    CommandText const& weave = text.commands[0];
    EXPECT_EQ(weave.line(), "weaver weave");
    ASSERT_EQ(weave.arguments.size(), 2U);
    EXPECT_EQ(weave.arguments[0].value, "FILE");
    EXPECT_EQ(weave.arguments[0].kind, ValueKind::File);
    EXPECT_TRUE(weave.arguments[0].isRequired);
    EXPECT_TRUE(weave.arguments[0].isRepeated);
    EXPECT_THAT(weave.arguments[1].choices, ElementsAre("left", "right"));
    EXPECT_FALSE(weave.arguments[1].isRequired);
    struct Row {
        std::vector<std::string> names;
        std::string value;
        ValueKind kind;
        std::vector<std::string> choices;
        bool isRepeated;
    };
    std::vector<Row> const rows = {
        {{"-h", "--help"}, "", ValueKind::None, {}, false},
        {{"-o", "--out"}, "OUT", ValueKind::File, {}, false},
        {{"--pattern"}, "plain|twill|satin", ValueKind::Choice, {"plain", "twill", "satin"}, false},
        {{"--format"}, "svg|png", ValueKind::Choice, {"svg", "png"}, false},
        {{"--loom"}, "DIR", ValueKind::Folder, {}, true},
        {{"--a-rather-long-name-for-one"}, "N", ValueKind::Other, {}, false},
        {{"--json"}, "", ValueKind::None, {}, false},
    };
    ASSERT_EQ(weave.options.size(), rows.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        OptionText const& option = weave.options[index];
        EXPECT_EQ(option.names, rows[index].names);
        EXPECT_EQ(option.value, rows[index].value) << option.names.back();
        EXPECT_EQ(option.kind, rows[index].kind) << option.names.back();
        EXPECT_EQ(option.choices, rows[index].choices) << option.names.back();
        EXPECT_EQ(option.isRepeated, rows[index].isRepeated) << option.names.back();
    }
    EXPECT_EQ(text.commands[1].commands[0].line(), "weaver yarn spin");
    EXPECT_EQ(text.commands[1].commands[0].arguments[0].kind, ValueKind::Command);
}

TEST(HelpTexts, AreShownByTheOptionHelp) {
    Weaver weaver;
    expectGolden("host/help/weaver.txt", weaver.app.help());
    CLI::App* const weave = weaver.app.get_subcommand("weave");
    expectGolden("host/help/weave.txt", weave->help());
    CLI::App* const spin = weaver.app.get_subcommand("yarn")->get_subcommand("spin");
    EXPECT_EQ(spin->help(), "Spin yarn\n"
                            "\n"
                            "Usage: weaver yarn spin [OPTIONS] [COMMAND]\n"
                            "\n"
                            "Arguments:\n"
                            "  COMMAND  The command whose yarn it is\n"
                            "\n"
                            "Options:\n"
                            "  -h, --help    Show this help\n"
                            "  --wheel FILE  The wheel\n"
                            "\n"
                            "It turns.\n"
                            "Exit code: 0 spun.\n"
                            "\n"
                            "Example:\n"
                            "  weaver yarn spin weave\n");
}

TEST(HelpTexts, AreTheManPagesToo) {
    Weaver const weaver;
    CommandText const text = commandText(weaver.app);
    expectGolden("host/help/weaver.1", flowmere::host::manPage(text, text, "1.2.3"));
    for (CommandText const& command : text.commands)
        expectGolden("host/help/" + flowmere::host::manPageFile(command),
                     flowmere::host::manPage(text, command, "1.2.3"));
    EXPECT_EQ(flowmere::host::manPageFile(text), "weaver.1");
}

TEST(HelpTexts, AreJsonForPrograms) {
    Weaver const weaver;
    expectGolden("host/help/weaver.json", flowmere::host::jsonText(flowmere::host::helpJson(commandText(weaver.app))));
}

TEST(HelpTexts, CompleteCommandLines) {
    Weaver const weaver;
    CommandText const text = commandText(weaver.app);
    EXPECT_THAT(flowmere::host::completionShells(), ElementsAre("bash", "zsh", "fish"));
    for (std::string const& shell : flowmere::host::completionShells())
        expectGolden("host/help/weaver." + shell, flowmere::host::completionScript(text, shell));
    EXPECT_THROW(flowmere::host::completionScript(text, "tcsh"), flowmere::host::Failure);
}

// The program itself

Json helpOfProgram() {
    ProgramRun const run = runProgram({"man", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return Json::parse(run.out);
}

void forEachCommand(Json const& command, std::vector<std::string> const& words,
                    std::function<void(Json const&, std::vector<std::string> const&)> const& visit) {
    visit(command, words);
    for (Json const& inner : command["commands"]) {
        std::vector<std::string> more = words;
        std::string const line = inner["command"];
        more.push_back(line.substr(line.rfind(' ') + 1));
        forEachCommand(inner, more, visit);
    }
}

TEST(Help, EveryCommandHasSummaryHelpOptionsExampleAndJson) {
    int commands = 0;
    forEachCommand(helpOfProgram(), {}, [&](Json const& command, std::vector<std::string> const& words) {
        std::string const name = command["command"];
        ++commands;
        EXPECT_NE(command["description"], "") << name;
        for (char const* const list : {"arguments", "options"})
            for (Json const& option : command[list])
                EXPECT_NE(option["description"], "") << name << " " << option;
        std::vector<std::string> arguments = words;
        arguments.emplace_back("--help");
        ProgramRun const run = runProgram(arguments);
        EXPECT_EQ(run.exitCode, 0) << name;
        EXPECT_EQ(run.err, "") << name;
        std::string const description = command["description"];
        EXPECT_EQ(run.out.find(description + "\n\nUsage: " + name), 0U) << run.out;
        // One line of it at least is the command itself.
        std::size_t const example = std::min(run.out.find("\nExample:\n  "), run.out.find("\nExamples:\n  "));
        ASSERT_NE(example, std::string::npos) << name;
        EXPECT_NE(run.out.find(name, example), std::string::npos) << name;
        // Those with commands below them leave the work to these, and a shell is for persons.
        bool const hasJson = std::any_of(command["options"].begin(), command["options"].end(),
                                         [](Json const& option) { return option["names"].back() == "--json"; });
        EXPECT_TRUE(hasJson || !command["commands"].empty() || name == "flowmere shell") << name;
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 110U) << line;
    });
    EXPECT_GE(commands, 20);
}

TEST(Help, NamesTheCommandsAndHowToLearnMore) {
    ProgramRun const run = runProgram({"--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    std::size_t last = 0;
    for (std::string const name : {"show", "draw", "check", "diff", "run", "generate", "format", "completion", "man"}) {
        std::size_t const at = run.out.find("\n  " + name + " ");
        ASSERT_NE(at, std::string::npos) << name;
        EXPECT_GT(at, last) << name;
        last = at;
    }
    EXPECT_THAT(run.out, HasSubstr("\nflowmere COMMAND --help tells more about a command.\n"));
    EXPECT_EQ(runProgram({"-h"}).out, run.out);
}

struct WrongWords {
    std::vector<std::string> arguments;
    std::string message;
};

TEST(Help, WhatIsMistypedIsOneLineWithNearNames) {
    std::vector<WrongWords> const rows = {
        {{}, "A subcommand is required (see flowmere --help)"},
        {{"shwo"}, "shwo: there is no such command; did you mean show?"},
        {{"SHOW"}, "SHOW: there is no such command; did you mean show?"},
        {{"xyzzy"}, "xyzzy: there is no such command (see flowmere --help)"},
        {{"--vresion"}, "--vresion: there is no such option; did you mean --version?"},
        {{"--xyzzy", "show"}, "--xyzzy: there is no such option (see flowmere --help)"},
        {{"show", "p.xml", "--scirpts", "x"}, "--scirpts: there is no such option; did you mean --scripts?"},
        {{"show", "p.xml", "--scirpts=x"}, "--scirpts: there is no such option; did you mean --scripts?"},
        {{"show", "--jsn"}, "--jsn: there is no such option; did you mean --json?"},
        {{"show", "p.xml", "q.xml"}, "q.xml: there is no place for this argument (see flowmere show --help)"},
        {{"show", "p.xml", "line\nend"}, "line\\nend: there is no place for this argument (see flowmere show --help)"},
        {{"library", "lsit"}, "lsit: there is no such command; did you mean list?"},
        {{"library", "list", "--bmp"}, "--bmp: there is no such option; did you mean --bpm?"},
        {{"library"}, "A subcommand is required (see flowmere library --help)"},
        {{"man", "rnu"}, "rnu: there is no such command; did you mean run?"},
        {{"man", "--all", "x", "--json"}, "--json excludes --all (see flowmere man --help)"},
        {{"completion"}, "SHELL is required (see flowmere completion --help)"},
        {{"completion", "tcsh"}, "SHELL: tcsh not in {bash,zsh,fish} (see flowmere completion --help)"},
        {{"generate", "p.xml"}, "--out is required (see flowmere generate --help)"},
    };
    for (WrongWords const& row : rows) {
        ProgramRun const run = runProgram(row.arguments);
        EXPECT_EQ(run.exitCode, 2) << row.message;
        EXPECT_EQ(run.out, "") << row.message;
        EXPECT_EQ(run.err, "flowmere: " + row.message + "\n");
    }
}

// What a command of the system says to these words, both streams in one.
std::pair<int, std::string> shellRun(std::string const& command) {
    std::FILE* const pipe = ::popen(("(" + command + ") 2>&1").c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("no pipe");
    std::string text;
    char buffer[65536];
    for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, count);
    int const status = ::pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

TEST(ManPages, AreThereForEachCommandAndGoThroughTheFormatter) {
    ScratchFolder const scratch;
    std::string const folder = (scratch / "man/man1").string();
    ProgramRun const run = runProgram({"man", "--all", folder});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "");
    std::vector<std::string> expected{"flowmere.1"};
    Json const help = helpOfProgram();
    for (Json const& command : help["commands"]) {
        std::string const line = command["command"];
        expected.push_back("flowmere-" + line.substr(line.find(' ') + 1) + ".1");
    }
    std::vector<std::string> found;
    for (auto const& entry : fs::directory_iterator(folder)) {
        std::string const name = entry.path().filename().string();
        found.push_back(name);
        std::string const page = readFile(entry.path());
        std::string const command = fs::path(name).stem().string();
        ProgramRun const one = runProgram(command == "flowmere" ? std::vector<std::string>{"man"}
                                                                : std::vector<std::string>{"man", command.substr(9)});
        EXPECT_EQ(one.out, page) << name;
        for (char const* const section :
             {".SH NAME\n", ".SH SYNOPSIS\n", ".SH EXIT STATUS\n", ".SH EXAMPLES\n", ".SH SEE ALSO\n"})
            EXPECT_THAT(page, HasSubstr(section)) << name;
        for (char const letter : page)
            EXPECT_TRUE(letter == '\n' || (letter >= ' ' && letter <= '~')) << name;
        auto const [code, warnings] = shellRun("groff -man -ww -Tutf8 '" + entry.path().string() + "' >/dev/null");
        EXPECT_EQ(code, 0) << name;
        EXPECT_EQ(warnings, "") << name;
        auto const [again, text] =
            shellRun("groff -man -Tascii -P -c -P -b -P -o -P -u '" + entry.path().string() + "'");
        EXPECT_EQ(again, 0) << name;
        EXPECT_THAT(text, HasSubstr("NAME\n       " + command + " - "));
    }
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(found, expected);
}

TEST(ManPages, TellEveryOption) {
    Json const program = helpOfProgram();
    for (Json const& command : program["commands"]) {
        std::string const line = command["command"];
        ProgramRun const run = runProgram({"man", line.substr(line.find(' ') + 1)});
        EXPECT_EQ(run.exitCode, 0);
        forEachCommand(command, {}, [&](Json const& inner, std::vector<std::string> const&) {
            for (Json const& option : inner["options"])
                for (std::string name : option["names"]) {
                    for (std::size_t at = 0; (at = name.find('-', at)) != std::string::npos; at += 2)
                        name.insert(at, "\\");
                    EXPECT_THAT(run.out, HasSubstr("\\fB" + name + "\\fR")) << line;
                }
        });
    }
}

TEST(ManPages, ThatCannotBeWrittenAreOneLine) {
    ScratchFolder const scratch;
    std::string const file = scratch.write("file", "old").string();
    ProgramRun const run = runProgram({"man", "--all", file});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: " + file + ": cannot be made: Not a directory\n");
    fs::create_directories(scratch / "taken/flowmere.1");
    EXPECT_EQ(runProgram({"man", "--all", (scratch / "taken").string()}).err,
              "flowmere: " + (scratch / "taken/flowmere.1").string() + ": cannot be written: it is a folder\n");
    EXPECT_EQ(scratch.read("file"), "old");
}

TEST(Help, WhatTheBuildMakesIsWhatTheProgramTells) {
    fs::path const share = fs::path(FLOWMERE_PROGRAM).parent_path().parent_path() / "share";
    EXPECT_EQ(readFile(share / "man/man1/flowmere-run.1"), runProgram({"man", "run"}).out);
    EXPECT_EQ(readFile(share / "bash-completion/completions/flowmere"), runProgram({"completion", "bash"}).out);
    EXPECT_EQ(readFile(share / "zsh/site-functions/_flowmere"), runProgram({"completion", "zsh"}).out);
    EXPECT_EQ(readFile(share / "fish/vendor_completions.d/flowmere.fish"), runProgram({"completion", "fish"}).out);
}

} // namespace
