// The example study: what it prints, what it leaves behind, and that its scripts are what the generator writes.

#include "Study.h"

#include "flowmere/Flowmere.h"
#include "host/basics/Text.h"
#include "host/document/Document.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace {

using namespace flowmere::test;
namespace fs = std::filesystem;
namespace host = flowmere::host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

fs::path const kBeam = fs::path(FLOWMERE_EXAMPLES) / "beam";

// Last lines of a text.
std::vector<std::string> lastLines(std::string const& text, std::size_t count) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    if (lines.size() > count)
        lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(count));
    return lines;
}

std::map<std::string, std::string> valuesOf(host::Document const& document) {
    std::map<std::string, std::string> values;
    for (std::string const& path : document.variablePaths())
        values[path] = host::utf8(document.variable(path).GetActualVariableData()->GetValue());
    return values;
}

TEST(BeamStudy, PrintsWhatStandsBesideIt) {
    ProgramRun const run = runProgram({"run", (kBeam / "beam.xml").string()});
    EXPECT_EQ(withoutTimes(run.out), readFile(kBeam / "expected.txt"));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.exitCode, 0);
}

TEST(BeamStudy, LeavesItsFolderAlone) {
    auto const files = [] {
        std::vector<std::string> names;
        for (auto const& entry : fs::recursive_directory_iterator(kBeam))
            names.push_back(entry.path().string());
        std::sort(names.begin(), names.end());
        return names;
    };
    auto const before = files();
    EXPECT_EQ(runProgram({"run", (kBeam / "beam.xml").string()}).exitCode, 0);
    EXPECT_EQ(files(), before);
}

TEST(BeamStudy, TwoBlocksUndoneAndSteppedAgainComeToTheSameDocument) {
    ScratchFolder const scratch;
    std::string const beam = (kBeam / "beam.xml").string();
    std::string const straight = (scratch / "straight.xml").string();
    std::string const again = (scratch / "again.xml").string();
    EXPECT_EQ(runProgram({"run", beam, "--save", straight}).exitCode, 0);
    ProgramRun const run = runProgram({"run", beam, "--undo", "2", "--step", "2", "--save", again});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(lastLines(withoutTimes(run.out), 7),
                ElementsAre("End  # ms  Undone", "Report  # ms  Undone", "history: IPE 220 after 4 trials",
                            StartsWith("Report  # ms  Executed  Result=IPE 220 is the lightest that passes"),
                            "End  # ms  Executed", "ended: 31 blocks executed, 2 undone,  # ms", "saved: " + again));
    EXPECT_EQ(readFile(again), readFile(straight));
}

TEST(BeamStudy, UndoneToItsStartHoldsTheValuesOfBefore) {
    ScratchFolder const scratch;
    std::string const saved = (scratch / "undone.xml").string();
    ProgramRun const run = runProgram({"run", (kBeam / "beam.xml").string(), "--undo", "29", "--save", saved});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("stopped before Start: 29 blocks executed, 29 undone"));
    std::map<std::string, std::string> before;
    {
        host::Document const document((kBeam / "beam.xml").string());
        before = valuesOf(document);
    }
    host::Document const document(saved);
    std::map<std::string, std::string> after = valuesOf(document);
    ASSERT_EQ(after.size(), before.size());
    for (auto const& [path, value] : before) {
        std::string const& now = after[path];
        // Numbers come back as numbers, lists as lists.
        bool const isZero = (value == "0" && now == "0.0") || (value.empty() && now == "[]");
        EXPECT_TRUE(now == value || isZero) << path << ": " << value << " became " << now;
    }
    for (CFCBlockNode* const block : document.blocks())
        EXPECT_EQ(block->GetExecutionStateType(), EExecutionStateType_ESNone) << host::pathOf(*block);
}

TEST(BeamStudy, SavedDocumentHoldsTheResult) {
    ScratchFolder const scratch;
    std::string const saved = (scratch / "sized.xml").string();
    EXPECT_EQ(runProgram({"run", (kBeam / "beam.xml").string(), "--save", saved}).exitCode, 0);
    host::Document const document(saved);
    EXPECT_EQ(host::utf8(document.variable("Choose.Profile").GetValue()), "IPE 220");
    EXPECT_EQ(host::utf8(document.variable("Report.Profile").GetActualVariableData()->GetValue()), "IPE 220");
    EXPECT_EQ(host::utf8(document.variable("Analysis.Moments.Moment").GetValue()), "39.756");
    EXPECT_EQ(document.block("Analysis.Stress").GetExecutionStateType(), EExecutionStateType_Executed);
}

TEST(BeamStudy, EndsInAnErrorWhenNoProfileIsStrongEnough) {
    ProgramRun const run = runProgram({"run", (kBeam / "beam.xml").string(), "--set", "Geometry.SupportB=20,0"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(
        run.err,
        HasSubstr("beam.xml: Choose: study/Choose.py:72: `raise ValueError(\"no profile of the table is strong and "
                  "stiff enough\")`: ValueError: no profile of the table is strong and stiff enough\n"));
    EXPECT_THAT(run.out, HasSubstr("failed: "));
}

TEST(BeamStudy, IsWrittenAsTheLibraryWritesIt) {
    ScratchFolder const scratch;
    host::Document document((kBeam / "beam.xml").string());
    document.save((scratch / "copy.xml").string());
    // Whole documents make unreadable messages.
    EXPECT_TRUE(scratch.read("copy.xml") == readFile(kBeam / "beam.xml"));
}

TEST(BeamStudy, HasTheScriptsThatTheGeneratorWrites) {
    ScratchFolder const scratch;
    fs::create_directories(scratch / "study");
    host::Document const document((kBeam / "beam.xml").string());
    int scripts = 0;
    for (CFCBlockNode* const block : document.blocks()) {
        std::string const id = host::utf8(block->GetNodeId());
        if (!fs::exists(kBeam / "study" / (id + ".py")))
            continue;
        ++scripts;
        CFCScriptWriter writer;
        writer.SetNode(block);
        writer.SetFolderName(host::libraryPath(scratch / "study"));
        writer.GenerateAllFiles(true);
        EXPECT_EQ(scratch.read("study/" + id + "Block.py"), readFile(kBeam / "study" / (id + "Block.py")));
        // The user's code stands between the fixed methods and the last one, which is ten lines long.
        std::string const fixed = scratch.read("study/" + id + ".py");
        std::string const written = readFile(kBeam / "study" / (id + ".py"));
        std::size_t const last = fixed.find("    def IsValidState(self):");
        ASSERT_NE(last, std::string::npos);
        EXPECT_THAT(written, StartsWith(fixed.substr(0, last)));
        EXPECT_THAT(written, testing::EndsWith(fixed.substr(last)));
    }
    EXPECT_EQ(scripts, 8);
    EXPECT_EQ(fs::file_size(kBeam / "study/__init__.py"), 0U);
}

TEST(BeamStudy, DrawsWithoutOverlaps) {
    host::Document const document((kBeam / "beam.xml").string());
    std::vector<CFCBlockNode*> const blocks = document.blocks();
    EXPECT_GE(blocks.size(), 8U);
    for (std::size_t one = 0; one < blocks.size(); ++one) {
        TuRect const* const a = blocks[one]->GetTuRect();
        EXPECT_GT(a->right - a->left, 100);
        EXPECT_GT(a->bottom - a->top, 50);
        for (std::size_t other = one + 1; other < blocks.size(); ++other) {
            TuRect const* const b = blocks[other]->GetTuRect();
            bool const apart = a->right < b->left || b->right < a->left || a->bottom < b->top || b->bottom < a->top;
            EXPECT_TRUE(apart) << host::pathOf(*blocks[one]) << " and " << host::pathOf(*blocks[other]);
        }
    }
}

TEST(BeamStudy, LinksLeadSomewhere) {
    host::Document const document((kBeam / "beam.xml").string());
    EXPECT_THAT(document.findings(), IsEmpty());
    int links = 0;
    for (std::string const& path : document.variablePaths()) {
        CFCVariableData& variable = document.variable(path);
        EXPECT_STREQ(variable.GetErrorString(), L"") << path;
        links += variable.IsLinked() ? 1 : 0;
    }
    EXPECT_GE(links, 15);
}

} // namespace
