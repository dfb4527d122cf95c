#include "CatalogTestSupport.h"
#include "flowmere/persistence/FCHintsReader.h"

#include <xercesc/dom/DOM.hpp>

#include <map>
#include <string>
#include <type_traits>

using flowmere::test::CatalogTest;
using flowmere::test::narrow;
using flowmere::test::printedBy;

namespace {

// The maps are those of the process: empty in front of each test and behind it.
struct Hints : CatalogTest {
    Hints() { clear(); }
    ~Hints() override { clear(); }
    static void clear() {
        CFCHintsReader::BlockHints().clear();
        CFCHintsReader::ActionHints().clear();
    }
    bool parse(std::string_view xml) {
        CFCHintsReader reader;
        return reader.Parse(file(xml));
    }
    static std::string textOf(std::map<int, TuString> const& hints) {
        std::string text;
        for (auto const& [type, hint] : hints)
            text += std::to_string(type) + "=" + narrow(hint) + ";";
        return text;
    }
    static std::string blocks() { return textOf(CFCHintsReader::BlockHints()); }
    static std::string actions() { return textOf(CFCHintsReader::ActionHints()); }
};

// A reader that gives its root element to the test.
struct OpenHintsReader : CFCHintsReader {
    xercesc::DOMElement* root() { return m_pDocument->getDocumentElement(); }
};

struct KindOfTag {
    char const* tag;
    int type;
};
constexpr KindOfTag kKinds[] = {
    {"START", 154},          {"END", 155},          {"APPLICATIONTASK", 150}, {"FORK", 156},
    {"JOIN", 157},           {"DECISIONTASK", 153}, {"SUPERSTATE", 161},      {"BASICSUPERSTATE", 165},
    {"SUPERSTATELOOP", 162}, {"DECISIONLOOP", 163}, {"SPAWNINGLOOP", 164},    {"DECISION", 58},
    {"SUBPROCESS", 61},      {"BLOCK", 57},         {"TERMINATOR", 55},
};

} // namespace

TEST_F(Hints, EachTagGoesToItsNodeType) {
    for (KindOfTag const& kind : kKinds) {
        clear();
        std::string const tag = kind.tag;
        EXPECT_TRUE(parse("<Hints><" + tag + " Block='the block' Action='the action'/></Hints>"));
        EXPECT_EQ(std::to_string(kind.type) + "=the block;", blocks()) << tag;
        EXPECT_EQ(std::to_string(kind.type) + "=the action;", actions()) << tag;
    }
}

TEST_F(Hints, AFileOfAllTagsFillsBothMaps) {
    std::string xml = "<?xml version='1.0'?>\n<any-root>\n";
    std::map<int, TuString> expectedBlocks;
    std::map<int, TuString> expectedActions;
    for (KindOfTag const& kind : kKinds) {
        std::string const tag = kind.tag;
        xml += "<!-- c --><" + tag + " Block='b " + tag + "' Action='a " + tag + "'/> text\n";
        expectedBlocks[kind.type] = ("b " + tag).c_str();
        expectedActions[kind.type] = ("a " + tag).c_str();
    }
    EXPECT_TRUE(parse(xml + "</any-root>"));
    EXPECT_EQ(15U, CFCHintsReader::BlockHints().size());
    EXPECT_EQ(expectedBlocks, CFCHintsReader::BlockHints());
    EXPECT_EQ(expectedActions, CFCHintsReader::ActionHints());
}

TEST_F(Hints, OtherTagsAreSkipped) {
    EXPECT_TRUE(parse("<H><Fork Block='x'/><fork Block='x'/><FORKS Block='x'/><TASK Block='x'/><ROUNDRECT Block='x'/>"
                      "<OTHER><FORK Block='inner'/></OTHER></H>"));
    EXPECT_EQ("", blocks());
    EXPECT_EQ("", actions());
}

TEST_F(Hints, WhatIsInsideAnEntryIsNotLookedAt) {
    EXPECT_TRUE(parse("<H><FORK Block='b'><JOIN Block='inner'/></FORK></H>"));
    EXPECT_EQ("156=b;", blocks());
}

TEST_F(Hints, AbsentTextsAreEmptyEntries) {
    EXPECT_TRUE(parse("<H><FORK Block='b'/><JOIN Action='a'/><BLOCK/></H>"));
    EXPECT_EQ("57=;156=b;157=;", blocks());
    EXPECT_EQ("57=;156=;157=a;", actions());
}

TEST_F(Hints, TheFirstTextsOfATagStay) {
    EXPECT_TRUE(parse("<H><FORK Block='one' Action='1'/><FORK Block='two' Action='2'/></H>"));
    EXPECT_EQ("156=one;", blocks());
    EXPECT_EQ("156=1;", actions());
}

TEST_F(Hints, AnEmptyTextIsATextThatStays) {
    EXPECT_TRUE(parse("<H><FORK/><FORK Block='two' Action='2'/></H>"));
    EXPECT_EQ("156=;", blocks());
    EXPECT_EQ("156=;", actions());
}

TEST_F(Hints, ASecondFileOnlyAddsKinds) {
    EXPECT_TRUE(parse("<H><FORK Block='old' Action='old'/></H>"));
    EXPECT_TRUE(parse("<H><FORK Block='new' Action='new'/><JOIN Block='new' Action='new'/></H>"));
    EXPECT_EQ("156=old;157=new;", blocks());
    EXPECT_EQ("156=old;157=new;", actions());
}

TEST_F(Hints, TheMapsAreOpenToTheHost) {
    CFCHintsReader::BlockHints()[156] = L"the host's";
    EXPECT_TRUE(parse("<H><FORK Block='b' Action='a'/></H>"));
    EXPECT_EQ("156=the host's;", blocks());
    EXPECT_EQ("156=a;", actions()) << "the maps are filled apart";
    EXPECT_EQ(&CFCHintsReader::BlockHints(), &CFCHintsReader::BlockHints());
    EXPECT_NE(&CFCHintsReader::BlockHints(), &CFCHintsReader::ActionHints());
}

TEST_F(Hints, ReadersAddNothingOfTheirOwnAndNeedNoFactory) {
    EXPECT_EQ(sizeof(CFCReader), sizeof(CFCHintsReader));
    EXPECT_TRUE((std::is_base_of_v<CFCReader, CFCHintsReader>));
    CFCHintsReader reader;
    EXPECT_TRUE(reader.Parse(file("<H><FORK Block='b'/></H>")));
    CFCHintsReader const copy(reader);
    CFCHintsReader assigned;
    assigned = copy;
    EXPECT_TRUE(assigned.Parse(file("<H><JOIN Block='b'/></H>")));
    EXPECT_EQ("156=b;157=b;", blocks());
}

TEST_F(Hints, WhatCannotBeReadIsFalseAndSilent) {
    CFCHintsReader reader;
    std::string const printed = printedBy([&] {
        EXPECT_FALSE(reader.Parse(nullptr));
        EXPECT_FALSE(reader.Parse(L""));
        EXPECT_FALSE(reader.Parse(scratch.text("missing.xml")));
        EXPECT_FALSE(reader.Parse(scratch.text()));
        EXPECT_FALSE(reader.Parse(file("<H><FORK Block='b'/>")));
        EXPECT_FALSE(reader.Parse(file("")));
    });
    EXPECT_EQ("", printed);
    EXPECT_EQ("", blocks());
}

TEST_F(Hints, AFileOfAnotherKindIsTrueAndEmpty) {
    EXPECT_TRUE(parse("<Manifest/>"));
    EXPECT_EQ("", blocks());
}

TEST_F(Hints, LoadTakesAnyElement) {
    OpenHintsReader reader;
    ASSERT_TRUE(reader.Initialize(file("<H><FORK Block='b' Action='a'/></H>")));
    EXPECT_FALSE(reader.Load(nullptr));
    EXPECT_TRUE(reader.Load(reader.root()));
    EXPECT_EQ("156=b;", blocks());
}

TEST_F(Hints, OneElementIsTheSameEntry) {
    OpenHintsReader reader;
    ASSERT_TRUE(reader.Initialize(file("<FORK Block='b' Action='a'/>")));
    reader.LoadPropertiesLite(nullptr, 156);
    reader.LoadPropertiesLite(reader.root(), 0);
    EXPECT_EQ("", blocks());
    reader.LoadPropertiesLite(reader.root(), 157);
    reader.LoadPropertiesLite(reader.root(), 1234);
    EXPECT_EQ("157=b;1234=b;", blocks());
    EXPECT_EQ("157=a;1234=a;", actions());
}

TEST_F(Hints, TextsOfTheFileKeepTheirCharacters) {
    EXPECT_TRUE(parse("<H><FORK Block=' a &amp; b&#10;c &#233; '/></H>"));
    EXPECT_EQ("156= a & b\nc \xC3\xA9 ;", blocks());
}

TEST_F(Hints, ThePathOfTheEnvironmentWillDo) {
    scratch.write("Hints.xml", "<H><FORK Block='b'/></H>");
    CFCEnvironment::SetBasePath(scratch.text());
    CFCHintsReader reader;
    EXPECT_TRUE(reader.Parse(CFCEnvironment::GetHintsFilePath()));
    EXPECT_EQ("156=b;", blocks());
}
