#include "Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;
using Json = nlohmann::ordered_json;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

// A real bash with the script of the program, in a folder with files to complete.
class Completion : public testing::Test {
protected:
    void SetUp() override {
        ProgramRun const run = runProgram({"completion", "bash"});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        scratch.write("script.bash", run.out);
        scratch.write("place/beam.xml", "");
        scratch.write("place/beam plan.xml", "");
        scratch.write("place/inner/x", "");
    }

    // What bash offers for these words, of which the last one is being typed.
    std::vector<std::string> offers(std::vector<std::string> const& words, std::string const& before = {}) const {
        std::string script = before + "\nset -u\ncd place\n. ../script.bash\nCOMP_WORDS=(";
        for (std::string const& word : words)
            script += " '" + word + "'";
        script += ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) +
                  "\n_flowmere\nfor offer in \"${COMPREPLY[@]}\"; do printf '%s\\n' \"$offer\"; done\n";
        scratch.write("ask.bash", script);
        std::FILE* const pipe =
            ::popen(("cd '" + scratch.path().string() + "' && bash --norc ask.bash 2>&1").c_str(), "r");
        if (pipe == nullptr)
            throw std::runtime_error("no pipe");
        std::string text;
        char buffer[65536];
        for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            text.append(buffer, count);
        EXPECT_EQ(::pclose(pipe), 0) << text;
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < text.size();) {
            std::size_t const end = text.find('\n', at);
            lines.push_back(text.substr(at, end - at));
            at = end + 1;
        }
        return lines;
    }

    ScratchFolder scratch;
};

TEST_F(Completion, OffersCommandsOptionsValuesAndFiles) {
    EXPECT_THAT(offers({"flowmere", ""}), IsSupersetOf({"show", "check", "run", "generate", "format", "man"}));
    EXPECT_THAT(offers({"flowmere", "sho"}), ElementsAre("show"));
    EXPECT_THAT(offers({"flowmere", "xyzzy"}), IsEmpty());
    EXPECT_THAT(offers({"flowmere", "-"}), UnorderedElementsAre("-h", "--help", "--version"));
    EXPECT_THAT(offers({"flowmere", "show", "--s"}), ElementsAre("--scripts"));
    EXPECT_THAT(offers({"flowmere", "show", ""}), UnorderedElementsAre("beam.xml", "beam plan.xml", "inner"));
    EXPECT_THAT(offers({"flowmere", "show", "beam "}), ElementsAre("beam plan.xml"));
    EXPECT_THAT(offers({"flowmere", "show", "inner/"}), ElementsAre("inner/x"));
    EXPECT_THAT(offers({"flowmere", "check", "beam.xml", "beam."}), ElementsAre("beam.xml"));
    EXPECT_THAT(offers({"flowmere", "show", "--scripts", ""}), ElementsAre("inner"));
    EXPECT_THAT(offers({"flowmere", "show", "--scripts", "inner", "--j"}), ElementsAre("--json"));
    EXPECT_THAT(offers({"flowmere", "show", "--scripts", "inner", "beam.x"}), ElementsAre("beam.xml"));
    EXPECT_THAT(offers({"flowmere", "generate", "--out", "i"}), ElementsAre("inner"));
    EXPECT_THAT(offers({"flowmere", "run", "beam.xml", "--save", "beam."}), ElementsAre("beam.xml"));
    EXPECT_THAT(offers({"flowmere", "run", "beam.xml", "--step", ""}), IsEmpty());
    EXPECT_THAT(offers({"flowmere", "completion", ""}), UnorderedElementsAre("bash", "zsh", "fish"));
    EXPECT_THAT(offers({"flowmere", "completion", "bash", ""}), IsEmpty());
    EXPECT_THAT(offers({"flowmere", "man", "sh"}), Contains("show"));
    EXPECT_THAT(offers({"flowmere", "library", ""}), UnorderedElementsAre("list", "show", "add", "merge"));
    EXPECT_THAT(offers({"flowmere", "library", "list", "--b"}), UnorderedElementsAre("--base", "--bpm"));
}

TEST_F(Completion, TakesAnOptionAndItsValueForOneWordToo) {
    // The words as bash parts them.
    EXPECT_THAT(offers({"flowmere", "generate", "--out", "=", "i"}), ElementsAre("inner"));
    EXPECT_THAT(offers({"flowmere", "generate", "--out", "="}), ElementsAre("inner"));
    EXPECT_THAT(offers({"flowmere", "generate", "--out", "=", "inner", "beam."}), ElementsAre("beam.xml"));
}

TEST_F(Completion, HoldsInShellsWithOtherSettings) {
    for (std::string const settings : {"IFS=x", "set -f", "shopt -s nullglob failglob", "set -o posix; set +o posix"})
        EXPECT_THAT(offers({"flowmere", "show", "beam"}, settings), UnorderedElementsAre("beam.xml", "beam plan.xml"))
            << settings;
}

TEST_F(Completion, KnowsEveryCommandAndOption) {
    ProgramRun const run = runProgram({"man", "--json"});
    std::function<void(Json const&, std::vector<std::string> const&)> const visit =
        [&](Json const& command, std::vector<std::string> const& words) {
            std::vector<std::string> options;
            for (Json const& option : command["options"])
                for (std::string const name : option["names"])
                    options.push_back(name);
            std::vector<std::string> typed = words;
            typed.emplace_back("-");
            EXPECT_THAT(offers(typed), UnorderedElementsAreArray(options));
            std::vector<std::string> names;
            for (Json const& inner : command["commands"]) {
                std::string const line = inner["command"];
                names.push_back(line.substr(line.rfind(' ') + 1));
                std::vector<std::string> more = words;
                more.push_back(names.back());
                visit(inner, more);
            }
            typed.back() = "";
            if (!names.empty()) {
                EXPECT_THAT(offers(typed), UnorderedElementsAreArray(names));
            }
        };
    visit(Json::parse(run.out), {"flowmere"});
}

TEST_F(Completion, IsJsonForPrograms) {
    Json const document = Json::parse(runProgram({"completion", "bash", "--json"}).out);
    EXPECT_EQ(document["shell"], "bash");
    EXPECT_EQ(document["script"], scratch.read("script.bash"));
}

// The other shells need not be there; where one is, it has to take its script.
TEST_F(Completion, IsTakenByTheOtherShellsWhereTheyAre) {
    for (std::string const shell : {"zsh", "fish"}) {
        ProgramRun const run = runProgram({"completion", shell});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(run.out, testing::HasSubstr("library"));
        scratch.write("script", run.out);
        std::string const file = (scratch / "script").string();
        EXPECT_EQ(::system(("! command -v " + shell + " >/dev/null || " + shell + " -n '" + file + "'").c_str()), 0)
            << shell;
    }
}

} // namespace
