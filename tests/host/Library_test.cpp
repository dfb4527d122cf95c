#include "Golden.h"
#include "Study.h"

#include "host/basics/Command.h"
#include "host/catalogs/ProcessLists.h"
#include "host/files/SafeFile.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;
using flowmere::host::Failure;
using flowmere::host::ListFolders;
using flowmere::host::ListTree;
using flowmere::host::Merged;
using flowmere::host::mergeLists;
using flowmere::host::Origin;
using flowmere::host::readList;
using flowmere::host::SafeFile;
using flowmere::host::writeList;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

std::string listOf(std::string const& inside) {
    return "<Processes>" + inside + "</Processes>";
}

std::string withBackslashes(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

// The lists of the test data, in a folder that may be written.
class Library : public ScratchTest {
protected:
    Library() {
        for (char const* folder : {"common", "own", "BrindleExec"})
            fs::copy(dataFolder() / "host/library" / folder, scratch / folder, fs::copy_options::recursive);
    }

    ProgramRun run(Words words) const {
        words.insert(words.begin(), "library");
        ProgramRun run = runProgram(words, {.folder = scratch.path()});
        for (std::string* const text : {&run.out, &run.err})
            *text = withName(*text, scratch.path().string(), "HERE");
        return run;
    }
    // What a run that went well printed.
    std::string told(Words const& words) const {
        ProgramRun const result = run(words);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");
        return result.out;
    }
    // The one line of a run that failed.
    std::string refusal(Words const& words) const {
        ProgramRun const result = run(words);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        return result.err;
    }
    // The names of all files below a folder, so that nothing is left behind unseen.
    Words filesIn(std::string const& folder) const {
        Words names;
        for (auto const& entry : fs::directory_iterator(scratch / folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    static Words with(Words words, Words const& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    Words both(Words words) const { return with(std::move(words), {"--base", "common", "--user", "own"}); }
};

// --- list ----------------------------------------------------------------------------------------------------------

TEST_F(Library, ListsBothListsAsOne) {
    expectGolden("host/library/expected/list.txt", told(both({"list"})));
}

TEST_F(Library, ListsBPMProcessesWithVersionAndCheckOut) {
    ProgramRun const result = run(both({"list", "--bpm"}));
    EXPECT_EQ(result.exitCode, 0);
    expectGolden("host/library/expected/list-bpm.txt", result.out);
    EXPECT_EQ(result.err,
              "flowmere: own/BPMProcess.lst: Approval.Leave: its file mine\\leave.xml is left out, leave.xml stays\n"
              "flowmere: own/BPMProcess.lst: Release: the process is left out, a group has this name\n"
              "flowmere: own/BPMProcess.lst: Audit: the group is left out, a process has this name\n");
}

TEST_F(Library, TellsTheSameAsJson) {
    expectGolden("host/library/expected/list.json", told(both({"list", "--json"})));
    expectGolden("host/library/expected/list-bpm.json", run(both({"list", "--bpm", "--json"})).out);
}

TEST_F(Library, AUsersFolderMayLieAnywhere) {
    std::string const elsewhere = told({"list", "--base", "common", "--user", "own"});
    EXPECT_EQ(told({"list", "--base", "common", "--user", "BrindleExec/own"}), elsewhere);
    EXPECT_EQ(told({"list", "--base", (scratch / "common").string(), "--user", (scratch / "own").string()}), elsewhere);
}

TEST_F(Library, EachListCanBeListedAlone) {
    EXPECT_EQ(told({"list", "--base", "common"}), "\"Site library\": 3 groups, 4 processes\n"
                                                  "  Design: group, common\n"
                                                  "    Beam: lib\\beam.bpt, common\n"
                                                  "    Schedule: lib\\plan.bpt, type MSP, common\n"
                                                  "    Plates: group, common\n"
                                                  "      Shell: lib\\shell.bpt, common\n"
                                                  "    Sketch: code, common\n"
                                                  "  Draft: no file, common\n"
                                                  "  Empty: group, common\n");
    EXPECT_EQ(told({"list", "--user", "own"}), "\"Mine\": 2 groups, 4 processes\n"
                                               "  Design: group, user\n"
                                               "    Weld: welds\\weld.bpt, user\n"
                                               "    Beam: lib\\beam.bpt, user\n"
                                               "    Bolts: group, user\n"
                                               "      Shell: gone\\shell.bpt, user\n"
                                               "  Line\\nbreak: odd.bpt, type Report, user\n");
    fs::create_directory(scratch / "new");
    EXPECT_EQ(told({"list", "--user", "new"}), "\"Processes\": 0 groups, 0 processes\n");
    EXPECT_EQ(told({"list", "--user", "new", "--bpm"}), "\"BPM Processes\": 0 groups, 0 processes\n");
}

TEST_F(Library, WithoutFoldersTheListLiesHere) {
    ProgramRun const result = runProgram({"library", "list"}, {.folder = scratch / "common"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, told({"list", "--base", "common"}));
    EXPECT_EQ(refusal({"list"}), "flowmere: ./process.lst: there is no such file\n");
}

TEST_F(Library, AUserWithoutAListYetHasAnEmptyOne) {
    fs::create_directory(scratch / "new");
    EXPECT_EQ(told({"list", "--base", "common", "--user", "new"}), told({"list", "--base", "common"}));
    EXPECT_THAT(filesIn("new"), IsEmpty());
    EXPECT_TRUE(Json::parse(told({"list", "--base", "common", "--user", "new", "--json"}))["user"].is_null());
}

TEST_F(Library, AUserWithTheCommonFolderHasNoListOfItsOwn) {
    EXPECT_EQ(told({"list", "--base", "common", "--user", "common"}), told({"list", "--base", "common"}));
    EXPECT_EQ(told({"list", "--base", "common", "--user", "./common/../common"}), told({"list", "--base", "common"}));
}

TEST_F(Library, AProcessOfTheUserIsThereOnceWhateverItsPlaceInTheList) {
    scratch.write("a/process.lst", listOf("<SUB_GRP Name='G'><PROCESS Name='x'/></SUB_GRP>"
                                          "<SUB_GRP Name='G'><PROCESS Name='y'/></SUB_GRP>"));
    scratch.write("b/process.lst", listOf("<SUB_GRP Name='G'><PROCESS Name='x'/><PROCESS Name='y'/></SUB_GRP>"
                                          "<SUB_GRP Name='G'><PROCESS Name='z'/></SUB_GRP>"));
    // The library looks into the newer one of two groups of the same name.
    EXPECT_EQ(told({"list", "--base", "a", "--user", "b"}), "\"Processes\": 2 groups, 4 processes\n"
                                                            "  G: group, common\n"
                                                            "    x: no file, common\n"
                                                            "  G: group, common and user\n"
                                                            "    y: no file, common and user\n"
                                                            "    z: no file, user\n"
                                                            "    x: no file, user\n");
}

TEST_F(Library, ListsThatCannotBeReadAreOneLine) {
    scratch.write("broken/process.lst", "<Processes>\n  <PROCESS Name='a'>\n</Processes>\n");
    scratch.write("empty/process.lst", "");
    scratch.write("other/process.lst", "<Process Name='a document'/>");
    fs::create_directories(scratch / "folder/process.lst");
    fs::create_directory(scratch / "none");
    scratch.write("file", "");
    struct Row {
        char const* folder;
        char const* common;
        char const* user; // empty where a user may do without
    };
    for (Row const& row :
         {Row{"broken", "broken/process.lst: line 3, column 3: ", "broken/process.lst: line 3, column 3: "},
          Row{"empty", "empty/process.lst: is empty\n", "empty/process.lst: is empty\n"},
          Row{"other", "other/process.lst: is no process list: its root element is neither Processes nor PROCESS_LST\n",
              "other/process.lst: is no process list: its root element is neither Processes nor PROCESS_LST\n"},
          Row{"folder", "folder/process.lst: is a folder\n", "folder/process.lst: is a folder\n"},
          Row{"none", "none/process.lst: there is no such file\n", ""},
          Row{"nowhere", "nowhere: there is no such folder of common lists\n",
              "nowhere: there is no such folder of the user's lists\n"},
          Row{"file", "file: there is no such folder of common lists\n",
              "file: there is no such folder of the user's lists\n"}}) {
        EXPECT_THAT(refusal({"list", "--base", row.folder}),
                    testing::StartsWith(std::string("flowmere: ") + row.common));
        if (*row.user != '\0') {
            EXPECT_THAT(refusal({"list", "--base", "common", "--user", row.folder}),
                        testing::StartsWith(std::string("flowmere: ") + row.user));
        }
    }
    EXPECT_FALSE(fs::exists(scratch / "nowhere")) << "no folder is made for a look";
}

TEST_F(Library, AFolderWithABackslashIsRefused) {
    fs::copy(scratch / "common", scratch / "a\\b");
    EXPECT_EQ(refusal({"list", "--base", "a\\b"}), "flowmere: a\\b: cannot be used: its path holds a backslash\n");
}

TEST_F(Library, WordsThatAreNoCommandAreRefused) {
    EXPECT_THAT(refusal({}), HasSubstr("flowmere library --help"));
    EXPECT_EQ(refusal({"lst"}), "flowmere: lst: there is no such command; did you mean list?\n");
    EXPECT_THAT(refusal({"list", "junk"}), HasSubstr("junk"));
}

TEST_F(Library, EveryCommandHasHelpWithAnExample) {
    for (Words const& words : {Words{"--help"}, Words{"list", "--help"}, Words{"show", "--help"},
                               Words{"add", "--help"}, Words{"merge", "--help"}})
        EXPECT_THAT(told(words), HasSubstr("Example:\n  flowmere library ")) << words.front();
}

// --- show ----------------------------------------------------------------------------------------------------------

TEST_F(Library, ShowsAProcessByPathOrName) {
    std::string const beam = "Design.Beam: process, common and user\n"
                             "  file: lib\\beam.bpt\n"
                             "  found: HERE/common/lib/beam.bpt\n"
                             "  type: BPT\n";
    EXPECT_EQ(told(both({"show", "Design.Beam"})), beam);
    EXPECT_EQ(told(both({"show", "Beam"})), beam);
    EXPECT_EQ(told(both({"show", "Weld"})), "Design.Weld: process, user\n"
                                            "  file: welds\\weld.bpt\n"
                                            "  found: HERE/own/welds/weld.bpt\n"
                                            "  type: BPT\n");
}

TEST_F(Library, TellsWhereAMissingFileWasLookedFor) {
    EXPECT_EQ(told(both({"show", "Design.Bolts.Shell"})), "Design.Bolts.Shell: process, user\n"
                                                          "  file: gone\\shell.bpt\n"
                                                          "  missing: HERE/own/gone/shell.bpt\n"
                                                          "  missing: HERE/common/gone/shell.bpt\n"
                                                          "  type: BPT\n");
    EXPECT_EQ(told(both({"show", "Schedule"})), "Design.Schedule: process, common\n"
                                                "  file: lib\\plan.bpt\n"
                                                "  missing: HERE/common/lib/plan.bpt\n"
                                                "  type: MSP\n");
    EXPECT_EQ(told(both({"show", "Draft"})), "Draft: process, common\n"
                                             "  file: none\n"
                                             "  type: BPT\n");
}

TEST_F(Library, AFileMayLieBesideTheInstallation) {
    scratch.write("BrindleExec/own/process.lst", listOf("<PROCESS Name='a' FILE='BrindleExec\\shared\\a.bpt'/>"));
    scratch.write("BrindleExec/shared/a.bpt", "<Process/>");
    EXPECT_THAT(told({"show", "a", "--user", "BrindleExec/own"}),
                HasSubstr("  found: HERE/BrindleExec/shared/a.bpt\n"));
}

TEST_F(Library, AnAbsolutePathIsTakenAsItIs) {
    scratch.write("there/a.bpt", "<Process/>");
    for (std::string const separator : {"/", "\\"}) {
        std::string const path = (scratch / "there/a.bpt").string();
        std::string const listed = separator == "/" ? path : withBackslashes(path);
        scratch.write("a/process.lst", listOf("<PROCESS Name='a' FILE='" + listed + "'/>"));
        EXPECT_THAT(told({"show", "a", "--base", "a"}), HasSubstr("  found: HERE/there/a.bpt\n"));
    }
    fs::remove(scratch / "there/a.bpt");
    fs::create_directory(scratch / "there/a.bpt");
    EXPECT_THAT(told({"show", "a", "--base", "a"}), HasSubstr("  missing: HERE/there/a.bpt\n"))
        << "a folder is no file";
}

TEST_F(Library, ShowsTheStateOfABPMProcess) {
    EXPECT_EQ(run(both({"show", "Order", "--bpm"})).out, "Approval.Order: process, common and user\n"
                                                         "  file: order.xml\n"
                                                         "  missing: HERE/own/order.xml\n"
                                                         "  missing: HERE/common/order.xml\n"
                                                         "  type: TASK\n"
                                                         "  id: o-2\n"
                                                         "  state: version 1.1, checked out, out of date\n");
}

TEST_F(Library, ShowsWhatAGroupHolds) {
    EXPECT_EQ(told(both({"show", "Design"})), "Design: group, common and user\n  holds 2 groups, 5 processes\n");
    EXPECT_EQ(told(both({"show", "Bolts"})), "Design.Bolts: group, user\n  holds 0 groups, 1 process\n");
    EXPECT_EQ(told(both({"show", "Empty"})), "Empty: group, common\n  holds 0 groups, 0 processes\n");
}

TEST_F(Library, ShowsAnEntryAsJson) {
    expectGolden("host/library/expected/show.json", told(both({"show", "Design.Bolts.Shell", "--json"})));
    Json const group = Json::parse(told(both({"show", "Design", "--json"})))["entries"][0];
    EXPECT_EQ(group["groups"], 2);
    EXPECT_EQ(group["processes"], 5);
    Json const task = Json::parse(run(both({"show", "Order", "--bpm", "--json"})).out)["entries"][0];
    EXPECT_EQ(task["version"].dump(), "1.1");
    EXPECT_EQ(task["exists"], false);
}

TEST_F(Library, NamesNearOnesForAnUnknownEntry) {
    EXPECT_EQ(refusal(both({"show", "Design.Beem"})),
              "flowmere: Design.Beem: there is no such entry; did you mean Design.Beam or Design.Weld?\n");
    EXPECT_EQ(refusal(both({"show", "weld"})), "flowmere: weld: there is no such entry; did you mean Design.Weld?\n");
    EXPECT_EQ(refusal(both({"show", "quite another"})), "flowmere: quite another: there is no such entry\n");
}

TEST_F(Library, ANameOfSeveralEntriesNeedsAPath) {
    EXPECT_EQ(refusal(both({"show", "Shell"})),
              "flowmere: Shell: is the name of several entries: Design.Plates.Shell, Design.Bolts.Shell\n");
    scratch.write("a/process.lst", listOf("<PROCESS Name='x' FILE='1'/><PROCESS Name='x' FILE='2'/>"));
    EXPECT_EQ(told({"show", "x", "--base", "a"}), "x: process, common\n  file: 1\n  missing: HERE/a/1\n  type: BPT\n"
                                                  "x: process, common\n  file: 2\n  missing: HERE/a/2\n  type: BPT\n")
        << "the path is that of both";
}

// --- add -----------------------------------------------------------------------------------------------------------

TEST_F(Library, EntersAProcessIntoANewList) {
    fs::create_directory(scratch / "new");
    scratch.write("new/study.bpt", "<Process Name='Beam study' Type='MSP'/>");
    EXPECT_EQ(told({"add", "new/study.bpt", "--user", "new"}),
              "Beam study: added to new/process.lst, file study.bpt\n");
    expectGolden("host/library/expected/new.lst", scratch.read("new/process.lst"));
    EXPECT_THAT(filesIn("new"), ElementsAre("process.lst", "study.bpt"));
}

TEST_F(Library, EntersAProcessIntoItsGroups) {
    scratch.write("own/study.bpt", "<Process Name='Study'/>");
    std::string const common = scratch.read("common/process.lst");
    EXPECT_EQ(told(both({"add", "own/study.bpt", "--group", "Design.Bolts"})),
              "Design.Bolts.Study: added to own/process.lst, file study.bpt\n");
    EXPECT_EQ(told(both({"add", "own/study.bpt", "--group", "Design.Bolts.M8", "--name", "Second"})),
              "Design.Bolts.M8.Second: added to own/process.lst, file study.bpt\n");
    EXPECT_EQ(told(both({"add", "own/study.bpt", "--group", "New.Group", "--name", "Third"})),
              "New.Group.Third: added to own/process.lst, file study.bpt\n");
    expectGolden("host/library/expected/grown.lst", scratch.read("own/process.lst"));
    EXPECT_EQ(scratch.read("common/process.lst"), common);
    EXPECT_THAT(filesIn("own"), ElementsAre("BPMProcess.lst", "process.lst", "study.bpt", "welds"));
    EXPECT_THAT(told(both({"show", "Second"})), HasSubstr("  found: HERE/own/study.bpt\n"));
}

TEST_F(Library, AGroupOfTheSameNameElsewhereIsNotUsed) {
    scratch.write("own/study.bpt", "<Process Name='Study'/>");
    told({"add", "own/study.bpt", "--group", "Bolts", "--user", "own"});
    std::string const text = told({"list", "--user", "own"});
    EXPECT_THAT(text, HasSubstr("\n  Bolts: group, user\n    Study: study.bpt, user\n"));
}

TEST_F(Library, EntersABPMProcess) {
    scratch.write("own/flow/processdefinition.xml", "<process-definition Name='Process'/>");
    EXPECT_EQ(told({"add", "own/flow/processdefinition.xml", "--user", "own", "--bpm", "--group", "Approval"}),
              "Approval.flow: added to own/BPMProcess.lst, file flow\\processdefinition.xml\n");
    expectGolden("host/library/expected/grown-bpm.lst", scratch.read("own/BPMProcess.lst"));
}

TEST_F(Library, AProcessIsCalledAsItCallsItself) {
    struct Row {
        char const* file;
        char const* document;
        char const* name;
    };
    for (Row const& row :
         {Row{"own/a.bpt", "<Process Name='Named'/>", "Named"}, Row{"own/b.bpt", "<Process Name='Process'/>", "b"},
          Row{"own/c.d.bpt", "<Process Name=''/>", "c.d"},
          Row{"own/h.bpt", "<Process><BLOCK Name='b'/></Process>", "h"},
          Row{"own/e/processdefinition.xml", "<p Name='f'/>", "f"}, Row{"own/g/processdefinition.xml", "<p/>", "g"},
          Row{"own/i/processdefinition.xml", "<p><q/></p>", "i"}}) {
        fs::remove(scratch / "own/BPMProcess.lst");
        scratch.write(row.file, row.document);
        EXPECT_EQ(Json::parse(told({"add", row.file, "--bpm", "--user", "own", "--json"}))["name"], row.name)
            << row.file;
    }
}

TEST_F(Library, WhatIsNoProcessIsNotEntered) {
    std::string const before = scratch.read("own/process.lst");
    scratch.write("page.html", "<html><body/></html>");
    EXPECT_EQ(refusal({"add", "page.html", "--user", "own"}),
              "flowmere: page.html: is no process document: it holds a \"html\" and no blocks\n");
    for (char const* root : {"Processes", "PROCESS_LST"}) {
        std::string const name(root);
        scratch.write("list.xml", "<" + name + "><PROCESS Name='a'/></" + name + ">");
        for (Words const& kind : {Words{}, Words{"--bpm"}})
            EXPECT_EQ(refusal(with({"add", "list.xml", "--user", "own"}, kind)),
                      "flowmere: list.xml: is a process list, no process document\n");
    }
    EXPECT_EQ(scratch.read("own/process.lst"), before);
    scratch.write("other.xml", "<Other Name='A'><BLOCK Name='b'/></Other>");
    told({"add", "other.xml", "--user", "own"});
}

TEST_F(Library, WhatAListDoesNotKnowIsToldBeforeItGoes) {
    std::string const list = "<?xml version='1.0'?>\n<!-- mine -->\n<Processes Name='Mine' Note='a > b'>"
                             "<PROCESS Name='p'/><![CDATA[<X>]]><!-- <Y> --><NOTE a='>'/><SUB_GRP Name='g'><NOTE/><Z>"
                             "<PROCESS Name='in'/></Z></SUB_GRP></Processes>\n";
    scratch.write("a.bpt", "<Process Name='A'/>");
    scratch.write("own/process.lst", list);
    ProgramRun const added = run({"add", "a.bpt", "--user", "own"});
    EXPECT_EQ(added.exitCode, 0);
    std::string const rest = ": 2 comments and elements of other names (NOTE, Z) are left out, since a list that is "
                             "saved holds none\n";
    EXPECT_EQ(added.err, "flowmere: own/process.lst" + rest);
    // It is told once: they have gone.
    scratch.write("b.bpt", "<Process Name='B'/>");
    EXPECT_EQ(run({"add", "b.bpt", "--user", "own"}).err, "");
    scratch.write("other.lst", list);
    scratch.write("one.lst", "<Processes><!-- --><PROCESS Name='q'/></Processes>");
    EXPECT_EQ(run({"merge", "one.lst", "other.lst", "-o", "out.lst"}).err,
              "flowmere: one.lst: 1 comment is left out, since a list that is saved holds none\n"
              "flowmere: other.lst" +
                  rest);
    // Nothing is lost by looking.
    EXPECT_EQ(run({"list", "--user", "own"}).err, "");
}

TEST_F(Library, AFolderWithoutANameIsNotTheCurrentOne) {
    for (Words const& words :
         {Words{"list", "--base", ""}, Words{"show", "p", "--base", ""}, Words{"list", "--base", ".", "--user", ""},
          Words{"add", "a.bpt", "--user", ""}, Words{"merge", "--base", "", "--user", "own", "-o", "out.lst"}}) {
        std::string const option = words.back().empty() && words[words.size() - 2] == "--user" ? "--user" : "--base";
        EXPECT_EQ(refusal(words), "flowmere: the name of the folder of " + option + " is empty\n") << words[0];
    }
}

TEST_F(Library, CodeInAListIsToldBeforeItGoes) {
    scratch.write("own/process.lst", listOf("<SUB_GRP Name='g'><CODE Name='c'>x<PROCESS Name='in'/></CODE></SUB_GRP>"
                                            "<CODE Name='d'/><PROCESS Name='p'/>"));
    scratch.write("a.bpt", "<Process Name='A'/>");
    ProgramRun const added = run({"add", "a.bpt", "--user", "own"});
    EXPECT_EQ(added.exitCode, 0);
    EXPECT_EQ(added.err, "flowmere: own/process.lst: g.c: the code is left out, since a list that is saved holds none\n"
                         "flowmere: own/process.lst: d: the code is left out, since a list that is saved holds none\n");
    EXPECT_THAT(told({"list", "--user", "own"}), testing::StartsWith("\"Processes\": 1 group, 2 processes\n"));
}

TEST_F(Library, NothingGoesWithCodeOfItsName) {
    scratch.write("code.lst", listOf("<CODE Name='g'>x</CODE><CODE Name='p'/>"));
    scratch.write("group.lst", listOf("<SUB_GRP Name='g'><PROCESS Name='a'/></SUB_GRP><PROCESS Name='p'/>"));
    for (Words const& lists : {Words{"code.lst", "group.lst"}, Words{"group.lst", "code.lst"}}) {
        ProgramRun const merged = run(with({"merge", "-o", "o.lst", "--json"}, lists));
        EXPECT_EQ(merged.err, "flowmere: code.lst: g: the code is left out, since a list that is saved holds none\n"
                              "flowmere: code.lst: p: the code is left out, since a list that is saved holds none\n");
        Json const told = Json::parse(merged.out);
        EXPECT_EQ(told["processes"], 2);
        EXPECT_EQ(told["leftOut"].size(), 2U);
        EXPECT_EQ(told["leftOut"][0]["path"], "g");
        ListTree const list = readList((scratch / "o.lst").string(), scratch.path(), false);
        EXPECT_NE(CFCNodeHelper::FindNodeByCaption(L"a", list.get()), nullptr);
        EXPECT_NE(CFCNodeHelper::FindNodeByCaption(L"p", list.get()), nullptr);
    }
}

TEST_F(Library, EntriesOfDifferentKindsAreNotShownAsOne) {
    scratch.write("common/process.lst", listOf("<CODE Name='x'/><CODE Name='y'/><SUB_GRP Name='z'/>"));
    scratch.write("own/process.lst", listOf("<SUB_GRP Name='x'><PROCESS Name='in'/></SUB_GRP><PROCESS Name='y'/>"
                                            "<CODE Name='z'/>"));
    ProgramRun const shown = run(both({"list"}));
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(shown.err, "flowmere: own/process.lst: x: the group is left out, a code has this name\n"
                         "flowmere: own/process.lst: y: the process is left out, a code has this name\n"
                         "flowmere: own/process.lst: z: the code is left out, a group has this name\n");
    EXPECT_EQ(shown.out, "\"Processes\": 1 group, 0 processes\n"
                         "  x: code, common\n"
                         "  y: code, common\n"
                         "  z: group, common\n");
}

TEST_F(Library, AFileOutsideTheUsersFolderIsEnteredAsAWhole) {
    scratch.write("elsewhere/a.bpt", "<Process Name='A'/>");
    Json const added = Json::parse(told({"add", "elsewhere/a.bpt", "--user", "own", "--json"}));
    EXPECT_EQ(added["list"], "own/process.lst");
    EXPECT_EQ(added["path"], "A");
    EXPECT_EQ(added["file"], withBackslashes((scratch / "elsewhere/a.bpt").string()));
    EXPECT_THAT(told({"show", "A", "--user", "own"}), HasSubstr("  found: HERE/elsewhere/a.bpt\n"));
    fs::create_directory_symlink(scratch / "own", scratch / "link");
    scratch.write("own/b.bpt", "<Process Name='B'/>");
    EXPECT_EQ(Json::parse(told({"add", "link/b.bpt", "--user", "own", "--json"}))["file"], "b.bpt");
}

TEST_F(Library, AUserBelowTheInstallationIsEnteredInTheSameWay) {
    scratch.write("a.bpt", "<Process Name='A'/>");
    told({"add", "a.bpt", "--group", "Design", "--user", "own"});
    told({"add", "a.bpt", "--group", "Design", "--user", "BrindleExec/own"});
    EXPECT_EQ(scratch.read("BrindleExec/own/process.lst"), scratch.read("own/process.lst"));
}

TEST_F(Library, ADocumentThatIsListedCanBeRead) {
    scratch.write("own/sub/a.bpt", "<Process Name='A'><BLOCK Name='b'/></Process>");
    told({"add", "own/sub/a.bpt", "--user", "own"});
    std::string const list = scratch.read("own/process.lst");
    EXPECT_THAT(list, HasSubstr("FILE=\"sub\\a.bpt\""));
}

TEST_F(Library, WhatHasNoRoomIsRefusedAndTheListStays) {
    scratch.write("own/a.bpt", "<Process Name='A'/>");
    scratch.write("own/broken.bpt", "<Process>\n<a></Process>");
    scratch.write("own/empty.bpt", "");
    std::string const before = scratch.read("own/process.lst");
    struct Row {
        Words words;
        char const* line;
    };
    for (
        Row const& row :
        {Row{{"own/a.bpt", "--group", "Design", "--name", "Weld"},
             "own/process.lst: Design.Weld: there is a process of this name, of the file welds\\weld.bpt; give the new "
             "one another --name"},
         Row{{"own/a.bpt", "--group", "Design", "--name", "Schedule"},
             "common/process.lst: Design.Schedule: there is a process of this name, of the file lib\\plan.bpt; give the "
             "new one another --name"},
         Row{{"own/a.bpt", "--group", "Design", "--name", "Bolts"},
             "own/process.lst: Design.Bolts: there is a group of this name; give the process another --name"},
         Row{{"own/a.bpt", "--group", "Design", "--name", "Sketch"},
             "common/process.lst: Design.Sketch: there is a code of this name; give the process another --name"},
         Row{{"own/a.bpt", "--group", "Design.Weld"}, "own/process.lst: Design.Weld: is no group"},
         Row{{"own/a.bpt", "--group", "Draft.New"}, "common/process.lst: Draft: is no group"},
         Row{{"own/a.bpt", "--group", "Design..Bolts"}, "Design..Bolts: is no path of groups: a name in it is empty"},
         Row{{"own/a.bpt", "--group", "Design."}, "Design.: is no path of groups: a name in it is empty"},
         Row{{"own/a.bpt", "--group", "."}, ".: is no path of groups: a name in it is empty"},
         Row{{"own/none.bpt"}, "own/none.bpt: there is no such file"}, Row{{"own"}, "own: is a folder"},
         Row{{"own/empty.bpt"}, "own/empty.bpt: is empty"}, Row{{"own/broken.bpt"}, "own/broken.bpt: line 2, column "},
         Row{{"own/a.bpt", "--name", "bell\a"},
             "own/process.lst: bell\\x07: cannot be written: a process list does not keep it"}}) {
        EXPECT_THAT(refusal(both(with({"add"}, row.words))), testing::StartsWith(std::string("flowmere: ") + row.line));
        EXPECT_EQ(scratch.read("own/process.lst"), before) << row.line;
        EXPECT_THAT(filesIn("own"),
                    ElementsAre("BPMProcess.lst", "a.bpt", "broken.bpt", "empty.bpt", "process.lst", "welds"));
    }
}

TEST_F(Library, EnteringNeedsAUsersFolder) {
    scratch.write("a.bpt", "<Process Name='A'/>");
    EXPECT_EQ(refusal({"add", "a.bpt"}),
              "flowmere: new entries go to the user's list: --user DIR says where that is\n");
    EXPECT_EQ(refusal({"add", "a.bpt", "--base", "common"}),
              "flowmere: new entries go to the user's list: --user DIR says where that is\n");
    EXPECT_EQ(refusal({"add", "a.bpt", "--user", "nowhere"}),
              "flowmere: nowhere: there is no such folder of the user's lists\n");
    EXPECT_FALSE(fs::exists(scratch / "nowhere"));
}

TEST_F(Library, TheCommonListIsWrittenOnlyForAUserThatHasNoOther) {
    scratch.write("a.bpt", "<Process Name='A'/>");
    EXPECT_THAT(run({"add", "a.bpt", "--base", "common", "--user", "common"}).out,
                HasSubstr("added to common/process.lst"));
    EXPECT_THAT(told({"list", "--base", "common"}), HasSubstr("\n  A: "));
    EXPECT_THAT(refusal({"add", "a.bpt", "--base", "common", "--user", "common"}), HasSubstr("another --name"));
}

TEST_F(Library, TargetsThatCannotBeWrittenAreOneLine) {
    scratch.write("a.bpt", "<Process Name='A'/>");
    fs::create_directories(scratch / "folder/process.lst");
    EXPECT_EQ(refusal({"add", "a.bpt", "--user", "folder"}),
              "flowmere: folder/process.lst: cannot be written: it is a folder\n");
    scratch.write("broken/process.lst", "<Processes>");
    EXPECT_THAT(refusal({"add", "a.bpt", "--user", "broken"}), HasSubstr("broken/process.lst: line "));
    EXPECT_EQ(scratch.read("broken/process.lst"), "<Processes>");
    EXPECT_THAT(filesIn("broken"), ElementsAre("process.lst"));
}

TEST_F(Library, WhileSomebodyElseSavesTheListNothingIsEntered) {
    scratch.write("a.bpt", "<Process Name='A'/>");
    std::string const before = scratch.read("own/process.lst");
    SafeFile const other((scratch / "own/process.lst").string());
    EXPECT_THAT(refusal({"add", "a.bpt", "--user", "own"}), HasSubstr("own/process.lst: "));
    EXPECT_EQ(scratch.read("own/process.lst"), before);
}

TEST_F(Library, OfManyThatEnterAtOnceNoneIsLost) {
    constexpr int kPrograms = 8;
    scratch.write("a.bpt", "<Process Name='A'/>");
    std::vector<std::thread> programs;
    std::vector<int> exitCodes(kPrograms);
    for (int number = 0; number < kPrograms; ++number)
        programs.emplace_back([&, number] {
            exitCodes[static_cast<std::size_t>(number)] =
                runProgram({"library", "add", "a.bpt", "--user", "own", "--name", "N" + std::to_string(number)},
                           {.folder = scratch.path()})
                    .exitCode;
        });
    for (std::thread& program : programs)
        program.join();
    std::string const text = told({"list", "--user", "own"});
    int entered = 0;
    for (int number = 0; number < kPrograms; ++number) {
        int const exitCode = exitCodes[static_cast<std::size_t>(number)];
        bool const isThere = text.find("  N" + std::to_string(number) + ": ") != std::string::npos;
        EXPECT_EQ(isThere, exitCode == 0) << number;
        EXPECT_TRUE(exitCode == 0 || exitCode == 2) << exitCode;
        entered += isThere ? 1 : 0;
    }
    EXPECT_GE(entered, 1);
    EXPECT_THAT(filesIn("own"), ElementsAre("BPMProcess.lst", "process.lst", "welds"));
}

// What the program says of an entry that it cannot make, in a process that was prepared so.
class Hindered : public Library {
protected:
    std::string refusalAfter(std::function<bool()> const& prepare) const {
        std::string const before = scratch.read("own/process.lst");
        Words const files = filesIn("own");
        int const out = ::open((scratch / "out.txt").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        pid_t const child = ::fork();
        if (child == 0) {
            ::dup2(out, 1);
            ::dup2(out, 2);
            if (::chdir(scratch.path().c_str()) != 0 || !prepare())
                ::_exit(126);
            ::execl(FLOWMERE_PROGRAM, FLOWMERE_PROGRAM, "library", "add", "a.bpt", "--user", "own",
                    static_cast<char*>(nullptr));
            ::_exit(127);
        }
        ::close(out);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 2);
        EXPECT_EQ(scratch.read("own/process.lst"), before);
        EXPECT_EQ(filesIn("own"), files);
        return scratch.read("out.txt");
    }
};

// Like a full disk: no file grows beyond a few thousand bytes.
TEST_F(Hindered, AListThatDoesNotFitOnTheDiskLeavesTheOldOne) {
    std::string inside;
    for (int number = 0; number < 500; ++number)
        inside += "<PROCESS Name='P" + std::to_string(number) + "' FILE='f'/>";
    scratch.write("own/process.lst", listOf(inside));
    scratch.write("a.bpt", "<Process Name='A'/>");
    EXPECT_EQ(
        refusalAfter([] {
            rlimit const small{8192, 8192};
            return ::setrlimit(RLIMIT_FSIZE, &small) == 0;
        }),
        "flowmere: own/process.lst: cannot be written: what was written cannot be read back, the disk may be full\n");
}

TEST_F(Hindered, AListThatMayNotBeWrittenStaysAsItIs) {
    scratch.write("a.bpt", "<Process Name='A'/>");
    struct Row {
        unsigned file;
        unsigned folder;
        char const* cause;
    };
    for (Row const& row : {Row{0444, 0777, "Permission denied"},
                           Row{0666, 0555, "the folder HERE/own takes no new file: Permission denied"}}) {
        fs::permissions(scratch / "own/process.lst", fs::perms(row.file));
        fs::permissions(scratch / "own", fs::perms(row.folder));
        fs::permissions(scratch.path(), fs::perms(0755));
        // The superuser may write everywhere.
        std::string const refusal = refusalAfter([] { return ::geteuid() != 0 || ::setuid(65534) == 0; });
        EXPECT_EQ(withName(refusal, scratch.path().string(), "HERE"),
                  std::string("flowmere: own/process.lst: cannot be written: ") + row.cause + "\n");
        fs::remove(scratch / "out.txt");
    }
    fs::permissions(scratch / "own", fs::perms(0755));
}

// --- merge ---------------------------------------------------------------------------------------------------------

TEST_F(Library, MergesTwoLists) {
    ProgramRun const merged = run({"merge", "common/process.lst", "own/process.lst", "-o", "all.lst"});
    EXPECT_EQ(merged.exitCode, 0);
    EXPECT_EQ(merged.out, "all.lst: 4 groups, 7 processes; 3 from own/process.lst alone, 1 in both\n");
    EXPECT_EQ(merged.err, "flowmere: common/process.lst: 1 comment is left out, since a list that is saved holds none\n"
                          "flowmere: common/process.lst: Design.Sketch: the code is left out, since a list that is "
                          "saved holds none\n");
    expectGolden("host/library/expected/merged.lst", scratch.read("all.lst"));
    ProgramRun const byFolder = run(both({"merge", "-o", "other.lst"}));
    EXPECT_EQ(byFolder.out, "other.lst: 4 groups, 7 processes; 3 from own/process.lst alone, 1 in both\n");
    EXPECT_EQ(scratch.read("other.lst"), scratch.read("all.lst"));
}

TEST_F(Library, MergesBPMListsWithTheirStates) {
    ProgramRun const merged = run({"merge", "common/BPMProcess.lst", "own/BPMProcess.lst", "-o", "all.lst"});
    EXPECT_EQ(merged.exitCode, 0);
    EXPECT_EQ(merged.out,
              "all.lst: 2 groups, 5 processes; 1 from own/BPMProcess.lst alone, 2 in both, 1 now out of date\n");
    EXPECT_EQ(merged.err,
              "flowmere: own/BPMProcess.lst: Approval.Leave: its file mine\\leave.xml is left out, leave.xml stays\n"
              "flowmere: own/BPMProcess.lst: Release: the process is left out, a group has this name\n"
              "flowmere: own/BPMProcess.lst: Audit: the group is left out, a process has this name\n");
    expectGolden("host/library/expected/merged-bpm.lst", scratch.read("all.lst"));
    run(both({"merge", "--bpm", "-o", "other.lst"}));
    EXPECT_EQ(scratch.read("other.lst"), scratch.read("all.lst"));
    Json const json =
        Json::parse(run({"merge", "common/BPMProcess.lst", "own/BPMProcess.lst", "-o", "all.lst", "--json"}).out);
    EXPECT_EQ(json.dump(),
              "{\"list\":\"all.lst\",\"groups\":2,\"processes\":5,\"added\":1,\"inBoth\":2,\"outOfDate\":1,"
              "\"leftOut\":[{\"path\":\"Approval.Leave\",\"cause\":\"its file mine\\\\leave.xml is left out, "
              "leave.xml stays\"},{\"path\":\"Release\",\"cause\":\"the process is left out, a group has "
              "this name\"},{\"path\":\"Audit\",\"cause\":\"the group is left out, a process has this "
              "name\"}]}");
}

TEST_F(Library, AMergedListMayTakeThePlaceOfOneOfThem) {
    run({"merge", "common/process.lst", "own/process.lst", "-o", "all.lst"});
    run({"merge", "common/process.lst", "own/process.lst", "-o", "own/process.lst"});
    EXPECT_EQ(scratch.read("own/process.lst"), scratch.read("all.lst"));
    EXPECT_EQ(told({"merge", "all.lst", "all.lst", "-o", "all.lst"}),
              "all.lst: 4 groups, 7 processes; 0 from all.lst alone, 7 in both\n");
    EXPECT_EQ(scratch.read("own/process.lst"), scratch.read("all.lst")) << "a list merged with itself stays as it is";
}

TEST_F(Library, ListsOfAnyNameAreOfTheKindThatIsAskedFor) {
    scratch.write("a.lst", listOf("<PROCESS Name='x' Version='1' IsUptoDate='1'/>"));
    scratch.write("b.lst", listOf("<PROCESS Name='x' Version='2'/>"));
    told({"merge", "a.lst", "b.lst", "-o", "plain.lst"});
    EXPECT_THAT(scratch.read("plain.lst"), HasSubstr("<PROCESS Name=\"x\" Type=\"BPT\"/>"));
    EXPECT_EQ(told({"merge", "a.lst", "b.lst", "-o", "bpm.lst", "--bpm"}),
              "bpm.lst: 0 groups, 1 process; 0 from b.lst alone, 1 in both, 1 now out of date\n");
    EXPECT_THAT(scratch.read("bpm.lst"), HasSubstr("IsUptoDate=\"0\" Name=\"x\" Type=\"TASK\" Version=\"1\""));
}

TEST_F(Library, MergingNeedsTwoListsAndATarget) {
    std::string const two = "flowmere: two lists are merged: give their files, or --base and --user\n";
    EXPECT_EQ(refusal({"merge", "common/process.lst", "-o", "o"}), two);
    EXPECT_EQ(refusal({"merge", "-o", "o"}), two);
    EXPECT_EQ(refusal({"merge", "--base", "common", "-o", "o"}), two);
    EXPECT_EQ(refusal({"merge", "--user", "own", "-o", "o"}), two);
    EXPECT_EQ(refusal(both({"merge", "common/process.lst", "own/process.lst", "-o", "o"})), two);
    EXPECT_EQ(refusal({"merge", "--base", "own", "--user", "own", "-o", "o"}),
              "flowmere: --base and --user are the same folder: there is nothing to merge\n");
    EXPECT_THAT(refusal({"merge", "common/process.lst", "own/process.lst"}), HasSubstr("--out"));
    EXPECT_FALSE(fs::exists(scratch / "o"));
}

TEST_F(Library, AFailedMergeLeavesTheTargetAsItWas) {
    scratch.write("all.lst", "before");
    scratch.write("broken.lst", "<Processes>");
    for (auto const& [words, cause] :
         {std::pair<Words, std::string>{{"common/process.lst", "broken.lst"}, "broken.lst: line "},
          {{"broken.lst", "own/process.lst"}, "broken.lst: line "},
          {{"none.lst", "own/process.lst"}, "none.lst: there is no such file"},
          {{"own", "own/process.lst"}, "own: is a folder"}}) {
        EXPECT_THAT(refusal(with({"merge", "-o", "all.lst"}, words)), HasSubstr(cause));
        EXPECT_EQ(scratch.read("all.lst"), "before");
    }
    EXPECT_EQ(refusal({"merge", "common/process.lst", "own/process.lst", "-o", "own"}),
              "flowmere: own: cannot be written: it is a folder\n");
    EXPECT_THAT(refusal({"merge", "common/process.lst", "own/process.lst", "-o", "nowhere/all.lst"}),
                HasSubstr("flowmere: nowhere/all.lst: cannot be written: "));
    EXPECT_THAT(filesIn("."), ElementsAre("BrindleExec", "all.lst", "broken.lst", "common", "own"));
}

TEST_F(Library, WhatStandsInsideAProcessIsLeftOutWhereThatIsThere) {
    scratch.write("a.lst", listOf("<PROCESS Name='x'/>"));
    scratch.write("b.lst",
                  listOf("<PROCESS Name='x'><PROCESS Name='in'/></PROCESS><PROCESS Name='y'><PROCESS Name='in'/>"
                         "</PROCESS>"));
    ProgramRun const merged = run({"merge", "a.lst", "b.lst", "-o", "o.lst"});
    EXPECT_EQ(merged.exitCode, 0);
    EXPECT_EQ(merged.err, "flowmere: b.lst: x.in: is left out, since it stands inside a process\n");
    EXPECT_EQ(merged.out, "o.lst: 0 groups, 3 processes; 2 from b.lst alone, 1 in both\n");
}

// --- What the command stands on ------------------------------------------------------------------------------------

TEST_F(Library, TheRootsOfTheEnvironmentAreGivenBack) {
    CFCEnvironment::SetBasePath(L"before");
    CFCEnvironment::m_strUserPath = L"user before";
    {
        ListFolders const folders((scratch / "common").string(), (scratch / "own").string(), true);
        EXPECT_STRNE(CFCEnvironment::GetBasePath(), L"before");
        EXPECT_EQ(folders.commonFile(), (scratch / "common/BPMProcess.lst").string());
        EXPECT_EQ(folders.userFile(), (scratch / "own/BPMProcess.lst").string());
    }
    EXPECT_STREQ(CFCEnvironment::GetBasePath(), L"before");
    EXPECT_STREQ(CFCEnvironment::GetUserPath(), L"user before");
    CFCEnvironment::m_strBasePath.Empty();
    CFCEnvironment::m_strUserPath.Empty();
}

std::string failureOf(std::function<void()> const& attempt) {
    try {
        attempt();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.exitCode(), 2);
        return failure.what();
    }
    return "nothing failed";
}

TEST_F(Library, AListThatIsNotFoundAgainIsNotSaved) {
    struct Row {
        std::function<void(IFCNode&)> change;
        char const* place;
    };
    for (Row const& row :
         {Row{[](IFCNode& node) { node.SetNodeCaption(L"a\x01z"); }, ": Approval.a\\x01z: "},
          Row{[](IFCNode& node) { node.SetItemFilePath(L"a\x02z"); }, ": Approval.Order: "},
          Row{[](IFCNode& node) { node.SetNodeId(L"a\x03z"); }, ": Approval.Order: "},
          Row{[](IFCNode& node) { node.SetCheckedOutUser(L"a\x04z"); }, ": Approval.Order: "},
          Row{[](IFCNode& node) { node.SetVersionNo(std::numeric_limits<float>::infinity()); }, ": Approval.Order: "},
          Row{[](IFCNode& node) { node.SetNodeType(62); }, ": Approval.Order: "}}) {
        ListTree const list = readList((scratch / "common/BPMProcess.lst").string(), scratch.path(), true);
        SafeFile const file((scratch / "saved.lst").string());
        writeList(file, "saved.lst", *list, true);
        row.change(*CFCNodeHelper::FindNodeByCaption(L"Order", list.get()));
        EXPECT_THAT(failureOf([&] { writeList(file, "saved.lst", *list, true); }),
                    HasSubstr(std::string("flowmere: saved.lst") + row.place + "cannot be written: a process list"));
    }
    ListTree const list = readList((scratch / "common/BPMProcess.lst").string(), scratch.path(), true);
    list->SetNodeCaption(L"a\x05z");
    SafeFile const file((scratch / "saved.lst").string());
    EXPECT_EQ(failureOf([&] { writeList(file, "saved.lst", *list, true); }),
              "flowmere: saved.lst: cannot be written: a process list does not keep its name");
    EXPECT_FALSE(fs::exists(scratch / "saved.lst"));
}

TEST_F(Library, CodeInAListIsNoLoss) {
    ListTree const list = readList((scratch / "common/process.lst").string(), scratch.path(), false);
    ASSERT_NE(CFCNodeHelper::FindNodeByCaption(L"Sketch", list.get()), nullptr);
    SafeFile const file((scratch / "saved.lst").string());
    EXPECT_EQ(failureOf([&] { writeList(file, "saved.lst", *list, false); }), "nothing failed");
}

TEST_F(Library, TheOriginOfEveryEntryIsKnown) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::function<std::string(int)> const grow = [&](int depth) {
            std::string text;
            for (auto left = random() % 4; left > 0; --left) {
                std::string const tag = random() % 2 == 0 ? "PROCESS" : "SUB_GRP";
                std::string const name(1, static_cast<char>('A' + random() % 3));
                text += "<" + tag + " Name='" + name + "'>" + (depth > 0 ? grow(depth - 1) : "") + "</" + tag + ">";
            }
            return text;
        };
        scratch.write("a.lst", listOf(grow(2)));
        scratch.write("b.lst", listOf(grow(2)));
        ListTree const into = readList((scratch / "a.lst").string(), scratch.path(), false);
        ListTree const from = readList((scratch / "b.lst").string(), scratch.path(), false);
        std::size_t const before = flowmere::host::entriesOf(*into).size();
        Merged const merged = mergeLists(*into, *from);
        std::size_t common = 0;
        for (flowmere::host::ListEntry const& entry : flowmere::host::entriesOf(*into)) {
            ASSERT_TRUE(merged.origins.contains(entry.node)) << entry.path;
            Origin const origin = merged.origins.at(entry.node);
            common += origin != Origin::User ? 1 : 0;
            bool const tookState = flowmere::host::isProcess(*entry.node) && origin == Origin::Both;
            EXPECT_TRUE(!tookState || entry.node->IsNewPath()) << entry.path;
        }
        EXPECT_EQ(common, before) << "nothing of the first list is gone";
    }
}

} // namespace
