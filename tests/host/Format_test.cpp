#include "Golden.h"
#include "Program.h"

#include "flowmere/Flowmere.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace flowmere::test;

class Format : public ScratchTest {
protected:
    ProgramRun format(std::string const& file) { return runProgram({"format", file}, {.folder = scratch.path()}); }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (auto const& entry : fs::directory_iterator(scratch.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

std::string const kDocument =
    "<?xml version=\"1.0\"?><Process Name=\"P\"><BLOCK Name=\"A\"><VARIABLE Name=\"v\">1 &lt; "
    "2</VARIABLE></BLOCK><!-- kept --><TERMINATOR Name=\"\xC3\xA9\"/></Process>";

TEST_F(Format, WritesBesideTheFileWhatTheLibraryWrites) {
    scratch.write("doc.xml", kDocument);
    ProgramRun const run = format("doc.xml");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "doc.for\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(scratch.read("doc.xml"), kDocument);
    EXPECT_THAT(files(), testing::ElementsAre("doc.for", "doc.xml"));
    expectGolden("host/format/doc.for", scratch.read("doc.for"));

    scratch.write("own/doc.xml", kDocument);
    CFCWriter::LoadAndFormatXML(TuString((scratch / "own/doc.xml").c_str()));
    EXPECT_EQ(scratch.read("doc.for"), scratch.read("own/doc.for"));
}

TEST_F(Format, AResultCanBeFormattedInItsTurn) {
    scratch.write("doc.xml", kDocument);
    ASSERT_EQ(format("doc.xml").exitCode, 0);
    std::string const once = scratch.read("doc.for");
    EXPECT_EQ(format("doc.for").out, "doc.for.for\n");
    EXPECT_EQ(scratch.read("doc.for"), once);
    EXPECT_NE(scratch.read("doc.for.for").find("  <BLOCK Name=\"A\">\n"), std::string::npos);
}

TEST_F(Format, TheNameOfTheResultFollowsThatOfTheFile) {
    fs::create_directories(scratch / "folder.xml.d");
    struct Case {
        char const* file;
        char const* result;
    };
    for (auto const& [file, result] :
         {Case{"a.xml", "a.for"}, Case{"b.bpt", "b.bpt.for"}, Case{"c", "c.for"}, Case{"d.xml.xml", "d.for.for"},
          Case{"e.XML", "e.XML.for"}, Case{"folder.xml.d/f.xml", "folder.xml.d/f.for"}, Case{"./g.xml", "./g.for"}}) {
        scratch.write(file, kDocument);
        ProgramRun const run = format(file);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.out, std::string(result) + "\n");
        EXPECT_EQ(scratch.read(file), kDocument) << file;
        EXPECT_NE(scratch.read(result).find("\n  <BLOCK Name=\"A\">"), std::string::npos) << file;
    }
}

TEST_F(Format, AnOldResultIsReplaced) {
    scratch.write("doc.xml", kDocument);
    scratch.write("doc.for", std::string(100000, 'x'));
    EXPECT_EQ(format("doc.xml").exitCode, 0);
    EXPECT_EQ(scratch.read("doc.for").find('x'), scratch.read("doc.for").find("xml"));
}

TEST_F(Format, FilesThatCannotBeReadAreOneLineAndExitCodeTwo) {
    scratch.write("empty.xml", "");
    scratch.write("cut.xml", "<a><b>");
    scratch.write("text.xml", "text");
    scratch.write("cut.for", "an old result");
    std::string nested;
    for (int level = 0; level < 200000; ++level)
        nested += "<a>";
    scratch.write("nested.xml", nested);
    std::string bomb = "<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY e0 \"0123456789\">";
    for (int level = 1; level < 12; ++level) {
        bomb += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int time = 0; time < 10; ++time)
            bomb += "&e" + std::to_string(level - 1) + ";";
        bomb += "\">";
    }
    scratch.write("bomb.xml", bomb + "]><a>&e11;</a>");
    struct Case {
        char const* file;
        char const* cause;
    };
    std::string const inB =
        "line 1, column 7: no well-formed XML: input ended before all started tags were ended; last "
        "tag started is 'b'";
    for (auto const& [file, cause] :
         {Case{"nowhere.xml", "there is no such file"}, Case{".", "is a folder"}, Case{"empty.xml", "is empty"},
          Case{"cut.xml", inB.c_str()},
          Case{"text.xml", "line 1, column 1: no well-formed XML: invalid document structure"},
          Case{"nested.xml", "line 1, column 3076: its elements are nested deeper than 1024 levels"},
          Case{"bomb.xml", "line 1, column 687: it refers to entities too often"},
          Case{"/dev/null", "is no regular file"}}) {
        ProgramRun const run = format(file);
        EXPECT_EQ(run.exitCode, 2) << file;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, std::string("flowmere: ") + file + ": " + cause + "\n");
    }
    EXPECT_EQ(scratch.read("cut.for"), "an old result");
    EXPECT_EQ(files().size(), 6U);
}

TEST_F(Format, AResultThatCannotStandThereIsOneLineAndExitCodeTwo) {
    scratch.write("doc.xml", kDocument);
    fs::create_directories(scratch / "doc.for");
    ProgramRun const run = format("doc.xml");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: doc.for: cannot be written: it is a folder\n");
}

TEST_F(Format, ExternalEntitiesAreNotRead) {
    scratch.write("secret.txt", "secret");
    scratch.write("doc.xml", "<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY s SYSTEM \"secret.txt\">]><a>&s;</a>");
    format("doc.xml");
    if (fs::exists(scratch / "doc.for")) {
        EXPECT_EQ(scratch.read("doc.for").find(">secret<"), std::string::npos);
    }
}

TEST_F(Format, WrongUseIsOneLineAndExitCodeTwo) {
    ProgramRun const run = runProgram({"format"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err, "flowmere: FILE is required (see flowmere format --help)\n");
    EXPECT_EQ(runProgram({"format", ""}).err, "flowmere: the name of the file is empty\n");
}

} // namespace
