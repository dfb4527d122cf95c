#include "XmlTestSupport.h"

#include <limits>
#include <locale.h>
#include <type_traits>

using flowmere::test::OpenReader;
using flowmere::test::ScratchFolder;
using flowmere::test::TextReader;

namespace {

struct ReaderFile : testing::Test {
    ScratchFolder folder;
};

// Can an attribute be read into this type?
template <typename Reader, typename Value>
concept GivesAttribute = requires(Reader reader, xercesc::DOMElement* element, Value value) {
    reader.GetAttribute(element, L"a", value);
};

} // namespace

// --- Initialize ---

TEST_F(ReaderFile, InitializeKeepsTheDocument) {
    folder.write("a.xml", "<?xml version='1.0'?><Root Name='n'/>");
    OpenReader reader;
    EXPECT_EQ(nullptr, reader.document());
    ASSERT_TRUE(reader.Initialize(folder.text("a.xml")));
    ASSERT_NE(nullptr, reader.document());
    EXPECT_EQ(u"Root", flowmere::tagOf(reader.root()));
}

TEST_F(ReaderFile, InitializeTakesBackslashes) {
    folder.write("inner/a.xml", "<r/>");
    TuString path = folder.text();
    path += L"\\inner\\a.xml";
    OpenReader reader;
    EXPECT_TRUE(reader.Initialize(path));
}

TEST_F(ReaderFile, InitializeTakesAnyFileName) {
    for (char const* name : {"a b.xml", "a%20b.xml", "a#b.xml", "a?b.xml", "http:b.xml", "\xC3\xA9.xml",
                             "\xF0\x9F\x98\x80.xml", "no extension"}) {
        folder.write(name, "<r/>");
        OpenReader reader;
        EXPECT_TRUE(reader.Initialize(folder.text(name))) << name;
    }
}

TEST_F(ReaderFile, InitializeIsFalseForWhatIsNoReadableFile) {
    OpenReader reader;
    EXPECT_FALSE(reader.Initialize(nullptr));
    EXPECT_FALSE(reader.Initialize(L""));
    EXPECT_FALSE(reader.Initialize(folder.text("missing.xml")));
    EXPECT_FALSE(reader.Initialize(folder.text("missing/a.xml")));
    EXPECT_FALSE(reader.Initialize(folder.text()));
    EXPECT_EQ(nullptr, reader.document());
}

TEST_F(ReaderFile, InitializeASecondTimeReplacesTheDocument) {
    folder.write("a.xml", "<a/>");
    folder.write("b.xml", "<b/>");
    OpenReader reader;
    ASSERT_TRUE(reader.Initialize(folder.text("a.xml")));
    ASSERT_TRUE(reader.Initialize(folder.text("b.xml")));
    EXPECT_EQ(u"b", flowmere::tagOf(reader.root()));
    EXPECT_FALSE(reader.Initialize(folder.text("c.xml")));
    EXPECT_EQ(nullptr, reader.document());
    EXPECT_FALSE(reader.Initialize(L""));
    EXPECT_EQ(nullptr, reader.document());
}

TEST_F(ReaderFile, CopiesShareTheDocument) {
    folder.write("a.xml", "<a/>");
    folder.write("b.xml", "<b/>");
    OpenReader last;
    {
        OpenReader first;
        ASSERT_TRUE(first.Initialize(folder.text("a.xml")));
        OpenReader copy(first);
        EXPECT_EQ(first.document(), copy.document());
        last = copy;
        ASSERT_TRUE(copy.Initialize(folder.text("b.xml")));
        EXPECT_EQ(u"a", flowmere::tagOf(first.root()));
        OpenReader const& self = last;
        last = self;
    }
    EXPECT_EQ(u"a", flowmere::tagOf(last.root()));
}

TEST(CTXMLBaseReader, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CTXMLBaseReader>);
}

// --- InitXML ---

TEST_F(ReaderFile, InitXMLGivesADocumentOfTheCallers) {
    folder.write("a.xml", "<a><x/></a>");
    folder.write("b.xml", "<b/>");
    xercesc::DOMDocument* second = nullptr;
    {
        OpenReader reader;
        ASSERT_TRUE(reader.Initialize(folder.text("a.xml")));
        ASSERT_TRUE(reader.InitXML(folder.text("b.xml"), &second));
        EXPECT_EQ(u"a", flowmere::tagOf(reader.root()));
        EXPECT_NE(reader.document(), second);
    }
    EXPECT_EQ(u"b", flowmere::tagOf(second->getDocumentElement()));
    second->release();
}

TEST_F(ReaderFile, InitXMLNeedsNoInitialize) {
    folder.write("b.xml", "<b/>");
    OpenReader reader;
    xercesc::DOMDocument* document = nullptr;
    ASSERT_TRUE(reader.InitXML(folder.text("b.xml"), &document));
    document->release();
}

TEST_F(ReaderFile, InitXMLLeavesOutUntouchedOnFailure) {
    folder.write("bad.xml", "<b>");
    OpenReader reader;
    auto* const marker = reinterpret_cast<xercesc::DOMDocument*>(&reader);
    xercesc::DOMDocument* document = marker;
    EXPECT_FALSE(reader.InitXML(folder.text("bad.xml"), &document));
    EXPECT_FALSE(reader.InitXML(folder.text("missing.xml"), &document));
    EXPECT_FALSE(reader.InitXML(folder.text(), &document));
    EXPECT_FALSE(reader.InitXML(L"", &document));
    EXPECT_FALSE(reader.InitXML(nullptr, &document));
    EXPECT_FALSE(reader.InitXML(folder.text("bad.xml"), nullptr));
    EXPECT_EQ(marker, document);
}

// --- Errors ---

TEST_F(ReaderFile, AFailureTellsItsCauseAndPlace) {
    struct Row {
        char const* text;
        char const* cause;
        int line;
        int column;
    };
    OpenReader reader;
    auto const expectError = [&](char const* cause, int line, int column) {
        EXPECT_THAT(flowmere::test::narrow(reader.GetErrorText()), testing::StartsWith(cause));
        EXPECT_EQ(line, reader.GetErrorLine()) << cause;
        EXPECT_EQ(column, reader.GetErrorColumn()) << cause;
    };
    expectError("", 0, 0);
    EXPECT_STREQ(L"", reader.GetErrorText());
    for (Row const& row : {Row{"<r>\n</s>", "no well-formed XML: expected end of tag 'r'", 2, 3},
                           Row{"<r>\n\n  &x;</r>", "no well-formed XML: entity 'x' not found", 3, 6}}) {
        folder.write("bad.xml", row.text);
        folder.write("good.xml", "<r/>");
        EXPECT_FALSE(reader.Initialize(folder.text("bad.xml")));
        expectError(row.cause, row.line, row.column);
        EXPECT_TRUE(reader.Initialize(folder.text("good.xml")));
        EXPECT_STREQ(L"", reader.GetErrorText());
        expectError("", 0, 0);
        xercesc::DOMDocument* document = nullptr;
        EXPECT_FALSE(reader.InitXML(folder.text("bad.xml"), &document));
        expectError(row.cause, row.line, row.column);
        EXPECT_NE(nullptr, reader.document()) << "the document that is open stays";
        ASSERT_TRUE(reader.InitXML(folder.text("good.xml"), &document));
        document->release();
        expectError("", 0, 0);
    }
    EXPECT_FALSE(reader.Initialize(folder.text("missing.xml")));
    expectError("it cannot be read", 0, 0);
    EXPECT_FALSE(reader.Initialize(L""));
    expectError("its name is empty", 0, 0);
    EXPECT_FALSE(reader.Initialize(folder.text()));
    expectError("it cannot be read", 0, 0);
    EXPECT_FALSE(reader.InitXML(nullptr, nullptr));
    expectError("its name is empty", 0, 0);
    EXPECT_FALSE(reader.InitXML(folder.text("good.xml"), nullptr));
    expectError("there is no place for its document", 0, 0);
}

TEST_F(ReaderFile, BytesThatAreNoTextHaveTheirOwnPlace) {
    struct Row {
        std::string text;
        char const* cause;
        int line;
        int column;
    };
    std::string const far = "<r>" + std::string(100000, '\n');
    OpenReader reader;
    for (Row const& row : {
             Row{"<r>\n  <a b='\xE9'/></r>", "no well-formed XML: the byte 0xE9 is no UTF-8", 2, 9},
             Row{"\xEF\xBB\xBF<r>\xFF</r> \n\n\n\n", "no well-formed XML: the byte 0xFF is no UTF-8", 1, 4},
             Row{"<r>\r\n\r\xC3\xA9\xF0\x9F\x98\x80.\xED\xA0\x80</r>", "no well-formed XML: the byte 0xED is no UTF-8",
                 3, 5},
             Row{"<r>\n\xC0\x80</r>", "no well-formed XML: the byte 0xC0 is no UTF-8", 2, 1},
             Row{"<r>\n\xF5\x80\x80\x80</r>", "no well-formed XML: the byte 0xF5 is no UTF-8", 2, 1},
             Row{far + " \xA0</r>", "no well-formed XML: the byte 0xA0 is no UTF-8", 100001, 2},
             Row{"<?xml version='1.0' encoding='US-ASCII'?>\n<r>\xE9</r>", "no well-formed XML: ", 0, 0},
         }) {
        folder.write("bad.xml", row.text);
        EXPECT_FALSE(reader.Initialize(folder.text("bad.xml")));
        EXPECT_THAT(flowmere::test::narrow(reader.GetErrorText()), testing::StartsWith(row.cause));
        EXPECT_EQ(row.line, reader.GetErrorLine()) << row.cause;
        EXPECT_EQ(row.column, reader.GetErrorColumn()) << row.cause;
    }
}

TEST_F(ReaderFile, PlacesCountTheCharactersOfALine) {
    struct Row {
        char const* text;
        int line;
        int column;
    };
    OpenReader reader;
    for (Row const& row : {Row{"<r>\r\n\t<a></b></r>", 2, 7}, Row{"<r>\r<a></b></r>", 2, 6},
                           Row{"<r>\n\xC3\xA9<a></b></r>", 2, 7}, Row{"<r>\n\xF0\x9F\x98\x80<a></b></r>", 2, 8}}) {
        folder.write("bad.xml", row.text);
        EXPECT_FALSE(reader.Initialize(folder.text("bad.xml")));
        EXPECT_EQ(row.line, reader.GetErrorLine());
        EXPECT_EQ(row.column, reader.GetErrorColumn());
    }
}

TEST_F(ReaderFile, CopiesTakeTheError) {
    folder.write("bad.xml", "<r>\n</s>");
    OpenReader reader;
    EXPECT_FALSE(reader.Initialize(folder.text("bad.xml")));
    OpenReader const copy(reader);
    EXPECT_EQ(2, copy.GetErrorLine());
    EXPECT_FALSE(reader.Initialize(reader.GetErrorText())) << "a text of the reader's own as path";
    EXPECT_STREQ(L"it cannot be read", reader.GetErrorText());
    EXPECT_EQ(2, copy.GetErrorLine());
}

// --- GetElement ---

TEST(CTXMLBaseReader, GetElementFindsTheFirstDirectChild) {
    TextReader reader("<r>t<x><deep/></x><y n='1'/><y n='2'/></r>");
    xercesc::DOMElement* found = nullptr;
    ASSERT_TRUE(reader.GetElement(TuString(L"y"), reader.root(), &found, -1));
    int n = 0;
    reader.GetAttribute(found, L"n", n);
    EXPECT_EQ(1, n);
    xercesc::DOMElement* const before = found;
    EXPECT_FALSE(reader.GetElement(TuString(L"deep"), reader.root(), &found, -1));
    EXPECT_FALSE(reader.GetElement(TuString(L"Y"), reader.root(), &found, -1));
    EXPECT_FALSE(reader.GetElement(TuString(), reader.root(), &found, -1));
    EXPECT_EQ(before, found);
}

TEST(CTXMLBaseReader, GetElementCountsEqualNamesByIndex) {
    TextReader reader("<r><y n='1'/><x/><y n='2'/></r>");
    xercesc::DOMElement* found = nullptr;
    int n = 0;
    ASSERT_TRUE(reader.GetElement(TuString(L"y"), reader.root(), &found, 0));
    reader.GetAttribute(found, L"n", n);
    EXPECT_EQ(1, n);
    ASSERT_TRUE(reader.GetElement(TuString(L"y"), reader.root(), &found, 1));
    reader.GetAttribute(found, L"n", n);
    EXPECT_EQ(2, n);
    EXPECT_FALSE(reader.GetElement(TuString(L"y"), reader.root(), &found, 2));
}

TEST(CTXMLBaseReader, GetElementBelowNullLooksAtTheRoot) {
    TextReader reader("<PROCESS><x/></PROCESS>");
    xercesc::DOMElement* found = nullptr;
    EXPECT_TRUE(reader.GetElement(TuString(L"PROCESS"), nullptr, &found, -1));
    EXPECT_EQ(reader.root(), found);
    EXPECT_FALSE(reader.GetElement(TuString(L"x"), nullptr, &found, -1));
    EXPECT_TRUE(reader.GetElement(TuString(L"PROCESS"), nullptr, nullptr, -1));
    OpenReader none;
    EXPECT_FALSE(none.GetElement(TuString(L"PROCESS"), nullptr, &found, -1));
}

// --- Attributes ---

TEST(CTXMLBaseReader, RealsAreForSubclassesAndOtherTypesForNobody) {
    EXPECT_TRUE((GivesAttribute<CTXMLBaseReader, TuString>));
    EXPECT_TRUE((GivesAttribute<CTXMLBaseReader, int>));
    EXPECT_FALSE((GivesAttribute<CTXMLBaseReader, double>));
    EXPECT_TRUE((GivesAttribute<OpenReader, double>));
    EXPECT_FALSE((GivesAttribute<OpenReader, long>));
    EXPECT_FALSE((GivesAttribute<OpenReader, float>));
    EXPECT_FALSE((GivesAttribute<OpenReader, bool>));
}

TEST(CTXMLBaseReader, AbsentAttributesLeaveOutUntouched) {
    TextReader reader("<r Name='n'/>");
    TuString text(L"default");
    int number = 7;
    double real = 2.5;
    unsigned int count = 9;
    bool flag = true;
    unsigned int color = 0xFFDFC6;
    EXPECT_FALSE(reader.GetAttribute(reader.root(), L"name", text));
    EXPECT_FALSE(reader.GetAttribute(reader.root(), L"x", number));
    EXPECT_FALSE(reader.GetAttribute(reader.root(), L"x", real));
    EXPECT_FALSE(reader.GetUINTAttribute(reader.root(), L"x", count));
    EXPECT_FALSE(reader.GetBoolAttribute(reader.root(), L"x", flag));
    EXPECT_FALSE(reader.GetAttributeColor(reader.root(), L"x", color));
    EXPECT_STREQ(L"default", text);
    EXPECT_EQ(7, number);
    EXPECT_EQ(2.5, real);
    EXPECT_EQ(9U, count);
    EXPECT_TRUE(flag);
    EXPECT_EQ(0xFFDFC6U, color);
}

TEST(CTXMLBaseReader, NullArgumentsCountAsAbsent) {
    TextReader reader("<r Name='n'/>");
    TuString text(L"default");
    int number = 7;
    double real = 2.5;
    unsigned int count = 9;
    bool flag = true;
    EXPECT_FALSE(reader.GetAttribute(nullptr, L"Name", text));
    EXPECT_FALSE(reader.GetAttribute(reader.root(), nullptr, text));
    EXPECT_FALSE(reader.GetAttribute(reader.root(), L"", text));
    EXPECT_FALSE(reader.GetAttribute(nullptr, L"Name", number));
    EXPECT_FALSE(reader.GetAttribute(nullptr, L"Name", real));
    EXPECT_FALSE(reader.GetUINTAttribute(nullptr, L"Name", count));
    EXPECT_FALSE(reader.GetBoolAttribute(nullptr, L"Name", flag));
    EXPECT_FALSE(reader.GetAttributeColor(nullptr, L"Name", count));
    EXPECT_FALSE(reader.GetTextNodeValue(nullptr, text));
    EXPECT_FALSE(reader.GetCDataNodeValue(nullptr, text));
    EXPECT_STREQ(L"default", text);
}

TEST(CTXMLBaseReader, AnEmptyAttributeOverridesTheDefault) {
    TextReader reader("<r e=''/>");
    TuString text(L"default");
    int number = 7;
    double real = 2.5;
    unsigned int count = 9;
    unsigned int color = 9;
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"e", text));
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"e", number));
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"e", real));
    EXPECT_TRUE(reader.GetUINTAttribute(reader.root(), L"e", count));
    EXPECT_TRUE(reader.GetAttributeColor(reader.root(), L"e", color));
    EXPECT_STREQ(L"", text);
    EXPECT_EQ(0, number);
    EXPECT_EQ(0.0, real);
    EXPECT_EQ(0U, count);
    EXPECT_EQ(0U, color);
}

TEST(CTXMLBaseReader, TextAttributesKeepTheirText) {
    TextReader reader(
        "<r a='  two  words ' b='&lt;&amp;&quot;&#9;&#10;&#13;' c='\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x98\x80'/>");
    TuString text;
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"a", text));
    EXPECT_STREQ(L"  two  words ", text);
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"b", text));
    EXPECT_STREQ(L"<&\"\t\n\r", text);
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"c", text));
    EXPECT_STREQ(L"\u00e9\u6f22\U0001F600", text);
}

TEST(CTXMLBaseReader, LongAttributesAndNamesAreWhole) {
    std::string const name(700, 'n');
    std::string const value = flowmere::test::repeat("0123456789\xC3\xA9", 3000);
    TextReader reader("<r " + name + "='" + value + "'/>");
    TuString text;
    EXPECT_TRUE(reader.GetAttribute(reader.root(), TuString(name.c_str()), text));
    EXPECT_EQ(TuString(value.c_str()), text);
}

TEST(CTXMLBaseReader, Integers) {
    struct Row {
        char const* text;
        int value;
    };
    for (Row const& row :
         {Row{"0", 0}, Row{"7", 7}, Row{"-7", -7}, Row{"+7", 7}, Row{"  12", 12}, Row{"12 ", 12}, Row{"12px", 12},
          Row{"1.9", 1}, Row{"007", 7}, Row{"x", 0}, Row{"-", 0}, Row{"--1", 0},
          Row{"2147483647", std::numeric_limits<int>::max()}, Row{"-2147483648", std::numeric_limits<int>::min()},
          Row{"3000000000", std::numeric_limits<int>::max()}, Row{"-3000000000", std::numeric_limits<int>::min()},
          Row{"99999999999999999999999999999", std::numeric_limits<int>::max()}}) {
        TextReader reader("<r n='" + std::string(row.text) + "'/>");
        int number = 77;
        EXPECT_TRUE(reader.GetAttribute(reader.root(), L"n", number)) << row.text;
        EXPECT_EQ(row.value, number) << row.text;
    }
}

TEST(CTXMLBaseReader, UnsignedIntegers) {
    struct Row {
        char const* text;
        unsigned int value;
    };
    for (Row const& row : {Row{"0", 0}, Row{"4294967295", 0xFFFFFFFF}, Row{"5000000000", 0xFFFFFFFF},
                           Row{"99999999999999999999999999999", 0xFFFFFFFF}, Row{" 42x", 42}, Row{"x", 0},
                           Row{"-1", 0xFFFFFFFF}, Row{"-2147483648", 0x80000000}, Row{"-2147483649", 0}}) {
        TextReader reader("<r n='" + std::string(row.text) + "'/>");
        unsigned int number = 77;
        EXPECT_TRUE(reader.GetUINTAttribute(reader.root(), L"n", number)) << row.text;
        EXPECT_EQ(row.value, number) << row.text;
    }
}

TEST(CTXMLBaseReader, Reals) {
    double const infinity = std::numeric_limits<double>::infinity();
    struct Row {
        std::string text;
        double value;
    };
    for (Row const& row : {Row{"0.290", 0.290},
                           Row{"-1.5", -1.5},
                           Row{"+1.5", 1.5},
                           Row{" 3", 3.0},
                           Row{"12.999", 12.999},
                           Row{"1e3", 1000.0},
                           Row{"1E-2", 0.01},
                           Row{".5", 0.5},
                           Row{"5.", 5.0},
                           Row{"1.5in", 1.5},
                           Row{"1,5", 1.0},
                           Row{"x", 0.0},
                           Row{"", 0.0},
                           Row{"-", 0.0},
                           Row{"+-1", 0.0},
                           Row{"nan", 0.0},
                           Row{"inf", 0.0},
                           Row{"1e300", 1e300},
                           Row{"1e999", infinity},
                           Row{"-1e999", -infinity},
                           Row{"1e-999", 0.0},
                           Row{std::string(100, '0') + "1.25", 1.25},
                           Row{"0.1" + std::string(100, '0') + "9", 0.1},
                           Row{std::string(100, '-'), 0.0}}) {
        TextReader reader("<r n='" + row.text + "'/>");
        double number = 77;
        EXPECT_TRUE(reader.GetAttribute(reader.root(), L"n", number)) << row.text;
        EXPECT_EQ(row.value, number) << row.text;
    }
}

TEST(CTXMLBaseReader, RealsAreReadInDoublePrecisionWhateverTheLocale) {
    bool const comma = setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
    for (int hundredths = 0; hundredths <= 1300; ++hundredths) {
        std::string const digits = std::to_string(hundredths % 100);
        std::string const text =
            std::to_string(hundredths / 100) + "." + (digits.size() == 1 ? "0" : "") + digits + "0";
        ASSERT_EQ(hundredths / 100.0, flowmere::realOf(std::u16string(text.begin(), text.end()))) << text;
    }
    if (comma) {
        setlocale(LC_NUMERIC, "C");
    }
}

TEST(CTXMLBaseReader, FlagsTakeEveryFormThatIsWritten) {
    struct Row {
        char const* text;
        bool value;
    };
    for (Row const& row : {Row{"true", true}, Row{"false", false}, Row{"TRUE", true}, Row{"False", false},
                           Row{"Y", true}, Row{"N", false}, Row{"y", true}, Row{"n", false}, Row{"1", true},
                           Row{"0", false}, Row{"Yes", true}, Row{"No", false}, Row{"YES", true}, Row{"no", false}}) {
        TextReader reader("<r f='" + std::string(row.text) + "'/>");
        bool flag = !row.value;
        EXPECT_TRUE(reader.GetBoolAttribute(reader.root(), L"f", flag)) << row.text;
        EXPECT_EQ(row.value, flag) << row.text;
    }
}

TEST(CTXMLBaseReader, OtherFlagTextsLeaveTheDefault) {
    for (char const* text : {"", " ", "2", "-1", "truer", "t", "on", " true", "ja"}) {
        TextReader reader("<r f='" + std::string(text) + "'/>");
        bool flag = true;
        EXPECT_FALSE(reader.GetBoolAttribute(reader.root(), L"f", flag)) << text;
        EXPECT_TRUE(flag) << text;
        flag = false;
        EXPECT_FALSE(reader.GetBoolAttribute(reader.root(), L"f", flag)) << text;
        EXPECT_FALSE(flag) << text;
    }
}

TEST(CTXMLBaseReader, ColorsInTheirForms) {
    struct Row {
        char const* text;
        unsigned int value;
    };
    for (Row const& row :
         {Row{"16768966", 0xFFDFC6}, Row{"0", 0}, Row{"4294967295", 0xFFFFFFFF}, Row{"0xFFDFC6", 0xFFDFC6},
          Row{"0XffdfC6", 0xFFDFC6}, Row{"#FFDFC6", 0xFFDFC6}, Row{" #12", 0x12}, Row{"0xFFFFFFFF", 0xFFFFFFFF},
          Row{"0x1FFFFFFFF", 0xFFFFFFFF}, Row{"#", 0}, Row{"red", 0}, Row{"-1", 0xFFFFFFFF}}) {
        TextReader reader("<r c='" + std::string(row.text) + "'/>");
        unsigned int color = 77;
        EXPECT_TRUE(reader.GetAttributeColor(reader.root(), L"c", color)) << row.text;
        EXPECT_EQ(row.value, color) << row.text;
    }
}

// --- Texts ---

TEST(CTXMLBaseReader, TheTextOfAnElementIsItsOwn) {
    struct Row {
        char const* xml;
        wchar_t const* text;
    };
    for (Row const& row :
         {Row{"<r>plain</r>", L"plain"}, Row{"<r>x<!--c-->y</r>", L"xy"}, Row{"<r>a<o>inner</o>b</r>", L"ab"},
          Row{"<r><![CDATA[<raw>]]></r>", L"<raw>"}, Row{"<r>a<![CDATA[b]]>c</r>", L"abc"},
          Row{"<r>&lt;&#65;&amp;</r>", L"<A&"}, Row{"<r> </r>", L" "}, Row{"<r>a<?p i?>b</r>", L"ab"}}) {
        TextReader reader(row.xml);
        TuString text(L"default");
        EXPECT_TRUE(reader.GetTextNodeValue(reader.root(), text)) << row.xml;
        EXPECT_STREQ(row.text, text) << row.xml;
    }
}

TEST(CTXMLBaseReader, WithoutTextTheDefaultStays) {
    for (char const* xml : {"<r/>", "<r></r>", "<r><o>inner</o></r>", "<r><!--c--></r>"}) {
        TextReader reader(xml);
        TuString text(L"default");
        EXPECT_FALSE(reader.GetTextNodeValue(reader.root(), text)) << xml;
        EXPECT_STREQ(L"default", text) << xml;
    }
}

TEST(CTXMLBaseReader, CDataSectionsAreJoined) {
    TextReader reader("<r>a<![CDATA[one]]]]>b<![CDATA[>two]]><o><![CDATA[no]]></o></r>");
    TuString text(L"default");
    EXPECT_TRUE(reader.GetCDataNodeValue(reader.root(), text));
    EXPECT_STREQ(L"one]]>two", text);
}

TEST(CTXMLBaseReader, WithoutCDataTheDefaultStays) {
    for (char const* xml : {"<r/>", "<r>text</r>", "<r><o><![CDATA[no]]></o></r>"}) {
        TextReader reader(xml);
        TuString text(L"default");
        EXPECT_FALSE(reader.GetCDataNodeValue(reader.root(), text)) << xml;
        EXPECT_STREQ(L"default", text) << xml;
    }
}

TEST(CTXMLBaseReader, TextOfAnInternalEntityIsPartOfTheText) {
    TextReader reader("<!DOCTYPE r [<!ENTITY e 'inner'>]><r a='x&e;y'>x&e;y</r>");
    ASSERT_TRUE(reader.opened);
    TuString text;
    EXPECT_TRUE(reader.GetTextNodeValue(reader.root(), text));
    EXPECT_STREQ(L"xinnery", text);
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"a", text));
    EXPECT_STREQ(L"xinnery", text);
}
