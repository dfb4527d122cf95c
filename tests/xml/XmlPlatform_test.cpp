#include "XmlTestSupport.h"

#include <algorithm>
#include <chrono>
#include <string>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

using flowmere::parseXmlBytes;
using flowmere::XmlDocumentPointer;
using flowmere::XmlPlatform;
using flowmere::test::repeat;
using flowmere::test::ScratchFolder;

namespace {

struct HardenedParser : testing::Test {
    XmlPlatform const platform;

    // The document's own text, empty when it does not parse.
    static std::string textOf(std::string_view xml) {
        XmlDocumentPointer const document = parseXmlBytes(xml);
        TuString text;
        if (document) {
            flowmere::ownText(document->getDocumentElement(), text);
        }
        return flowmere::test::narrow(text);
    }
    // Whether the file is refused, which must not take long.
    static bool refusedAtOnce(std::string_view xml) {
        auto const start = std::chrono::steady_clock::now();
        bool const refused = !parseXmlBytes(xml);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        return refused;
    }
};

} // namespace

TEST_F(HardenedParser, IsUp) {
    EXPECT_TRUE(platform.isUp());
    XmlPlatform const second;
    EXPECT_TRUE(second.isUp());
}

TEST_F(HardenedParser, DocumentsOutliveEveryUseOfThePlatform) {
    XmlDocumentPointer document;
    {
        XmlPlatform const inner;
        document = parseXmlBytes("<r a='1'/>");
    }
    EXPECT_TRUE(flowmere::equals(flowmere::attributeOf(document->getDocumentElement(), u"a"), u"1"));
}

TEST_F(HardenedParser, TakesWellFormedFiles) {
    for (char const* xml :
         {"<r/>", "<?xml version='1.0' encoding='UTF-8'?><r/>", "\xEF\xBB\xBF<r/>",
          "<?xml version='1.0' encoding='ISO-8859-1'?><r>\xE9</r>", "<!DOCTYPE r><r/>",
          "<!DOCTYPE r [<!ELEMENT r (#PCDATA)>]><r><undeclared/></r>",
          "<!DOCTYPE r [<!ATTLIST r a CDATA 'given'>]><r/>", "<r xsi:noNamespaceSchemaLocation='none.xsd'/>",
          "<a:r b:c='d'/>", "<r><!-- c --><?p i?></r>", "<!-- before --><r/><!-- behind -->\n"}) {
        EXPECT_TRUE(parseXmlBytes(xml)) << xml;
    }
}

TEST_F(HardenedParser, RefusesWhatIsNotWellFormed) {
    for (char const* xml : {"",
                            " ",
                            "text",
                            "<r>",
                            "<r",
                            "<",
                            "<r></s>",
                            "<r/><s/>",
                            "<r/>text",
                            "<r a='1' a='2'/>",
                            "<r a=1/>",
                            "<r a/>",
                            "<r>&undeclared;</r>",
                            "<r>\x01</r>",
                            "<r>&#1;</r>",
                            "<r>\xFF</r>",
                            "<r>\xC3</r>",
                            "<r>]]></r>",
                            "<r><!-- -- --></r>",
                            "<?xml version='1.0' encoding='no-such'?><r/>",
                            "<?xml version='9.9'?><r/>",
                            " <?xml version='1.0'?><r/>",
                            "<r><![CDATA[open</r>",
                            "<!DOCTYPE r [<!ENTITY e '&e;'>]><r>&e;</r>",
                            "<!DOCTYPE r",
                            "<r a='<'/>"}) {
        EXPECT_FALSE(parseXmlBytes(xml)) << xml;
    }
    EXPECT_FALSE(parseXmlBytes(std::string_view()));
}

TEST_F(HardenedParser, RefusesEveryTruncatedForm) {
    std::string const whole =
        "<?xml version=\"1.0\"?><Process a=\"v\"><BLOCK Name=\"n\">t&amp;<![CDATA[c]]></BLOCK></Process>";
    ASSERT_TRUE(parseXmlBytes(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(parseXmlBytes(std::string_view(whole).substr(0, length))) << length;
    }
}

TEST_F(HardenedParser, PrintsNothing) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(parseXmlBytes("<r><s></r>"));
    EXPECT_FALSE(parseXmlBytes("<!DOCTYPE r SYSTEM 'missing.dtd'><r>&x</r>"));
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST_F(HardenedParser, FilesThatAreNoneAreRefused) {
    ScratchFolder const folder;
    folder.write("empty.xml", "");
    EXPECT_FALSE(flowmere::parseXmlFile(folder.text("empty.xml")));
    EXPECT_FALSE(flowmere::parseXmlFile(folder.text()));
    EXPECT_FALSE(flowmere::parseXmlFile(folder.text("missing.xml")));
    EXPECT_FALSE(flowmere::parseXmlFile(nullptr));
}

// --- Depth ---

TEST_F(HardenedParser, TakesUpTo1024NestedElements) {
    auto const nested = [](int depth) {
        return repeat("<e>", depth) + repeat("</e>", depth);
    };
    EXPECT_TRUE(parseXmlBytes(nested(1024)));
    EXPECT_FALSE(parseXmlBytes(nested(1025)));
    EXPECT_TRUE(parseXmlBytes(repeat("<e>", 1023) + "<f/>" + repeat("</e>", 1023)));
    EXPECT_FALSE(parseXmlBytes(repeat("<e>", 1024) + "<f/>" + repeat("</e>", 1024)));
    EXPECT_TRUE(refusedAtOnce(nested(200000)));
}

TEST_F(HardenedParser, SiblingsAreNoDepth) {
    EXPECT_TRUE(parseXmlBytes("<r>" + repeat("<a><b/></a>", 5000) + "</r>"));
    EXPECT_TRUE(parseXmlBytes("<r>" + repeat("<a/>", 5000) + "</r>"));
}

// --- Why and where ---

TEST_F(HardenedParser, TellsThePlaceOfTheFirstError) {
    struct Row {
        char const* xml;
        int line;
        int column;
        char const* cause;
    };
    for (Row const& row :
         {Row{"<r>\n <a>\n </b>\n</r>", 3, 4, "no well-formed XML: expected end of tag 'a'"},
          Row{"<r>\n<a", 2, 3, "no well-formed XML: "},
          Row{"<r>\r\n  <a x='1' x='2'/>\r\n</r>", 2, 14, "no well-formed XML: attribute 'x' is already specified"},
          Row{"<r>&none;</r>", 1, 10, "no well-formed XML: entity 'none' not found"},
          Row{"", 1, 1, "no well-formed XML: "}, Row{"text", 1, 1, "no well-formed XML: "},
          Row{"<r/>\n<s/>", 2, 1, "no well-formed XML: "}, Row{"<r>\n\n\xFF</r>", 3, 1, "no well-formed XML: "}}) {
        flowmere::XmlError error;
        EXPECT_FALSE(parseXmlBytes(row.xml, flowmere::Indentation::Gather, &error)) << row.xml;
        EXPECT_EQ(row.line, error.line) << row.xml;
        EXPECT_EQ(row.column, error.column) << row.xml;
        EXPECT_THAT(flowmere::test::narrow(error.cause), testing::StartsWith(row.cause)) << row.xml;
    }
}

TEST_F(HardenedParser, TellsWhichLimitWasMet) {
    struct Row {
        std::string xml;
        char const* cause;
        bool hasPlace;
    };
    std::string attributes = "<r>\n<a";
    for (int i = 0; i < 10001; ++i) {
        attributes += " a" + std::to_string(i) + "='1'";
    }
    std::string names = "<r>\n";
    for (int i = 0; i < 40000; ++i) {
        names += "<a" + std::to_string(i) + "/>\n";
    }
    std::string const entity = "<!DOCTYPE r [\n<!ENTITY e '" + std::string(4000, 'x') + "'>";
    for (Row const& row :
         {Row{repeat("<e>\n", 1025), "its elements are nested deeper than 1024 levels", true},
          Row{attributes + "/></r>", "an element has too many attributes", true},
          Row{names, "it has too many different names", true},
          Row{"<!DOCTYPE r [\n<!ENTITY e 'x'>]>\n<r>" + repeat("&e;", 1001) + "</r>", "it refers to entities too often",
              true},
          Row{"<!DOCTYPE r [\n<!ENTITY e '" + std::string(100000, 'x') + "'>]>\n<r/>", "an entity is too large", true},
          Row{"<!DOCTYPE r [\n<!ATTLIST e a CDATA '" + std::string(100000, 'x') + "'>]><r>" + repeat("<e/>\n", 3000) +
                  "</r>",
              "its document type makes too much of it", true},
          Row{entity + "<!ATTLIST r a CDATA '" + repeat("&e;", 300000) + "'>]>\n<r/>",
              "it takes too much memory for its size", false}}) {
        flowmere::XmlError error;
        EXPECT_FALSE(parseXmlBytes(row.xml, flowmere::Indentation::Gather, &error)) << row.cause;
        EXPECT_EQ(row.cause, flowmere::test::narrow(error.cause));
        EXPECT_EQ(row.hasPlace, error.line > 1) << row.cause << " in line " << error.line;
        EXPECT_EQ(row.hasPlace, error.column > 0) << row.cause << " in column " << error.column;
    }
}

TEST_F(HardenedParser, LeavesTheErrorAloneWhereThereIsNone) {
    flowmere::XmlError error{L"before", 7, 8};
    EXPECT_TRUE(
        parseXmlBytes("<!DOCTYPE r [<!ELEMENT r EMPTY>]><r><undeclared/></r>", flowmere::Indentation::Gather, &error));
    EXPECT_STREQ(L"before", error.cause);
    EXPECT_EQ(7, error.line);
    EXPECT_EQ(8, error.column);
    EXPECT_FALSE(flowmere::parseXmlFile(L"no such file", flowmere::Indentation::Gather, &error));
    EXPECT_STREQ(L"it cannot be read", error.cause);
    EXPECT_EQ(0, error.line);
    EXPECT_EQ(0, error.column);
}

TEST_F(HardenedParser, EveryTruncatedFormHasACauseAndAPlace) {
    std::string const whole = "<?xml version=\"1.0\"?>\n<r a=\"v\">\n<b>t&amp;<![CDATA[c]]></b>\n<!-- c --><?p i?></r>";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::string const part = whole.substr(0, length);
        flowmere::XmlError error;
        EXPECT_FALSE(parseXmlBytes(part, flowmere::Indentation::Gather, &error)) << length;
        EXPECT_FALSE(error.cause.IsEmpty()) << length;
        EXPECT_GE(error.line, 1) << length;
        EXPECT_LE(error.line, 1 + std::count(part.begin(), part.end(), '\n')) << length;
        EXPECT_GE(error.column, 1) << length;
    }
}

// --- Outside the file ---

TEST_F(HardenedParser, OpensNothingOutsideTheFile) {
    ScratchFolder const folder;
    std::string const secret = (folder / "secret.txt").string();
    folder.write("secret.txt", "SECRET");
    folder.write("outer.dtd", "<!ENTITY e 'FROM DTD'>");
    std::string const dtd = (folder / "outer.dtd").string();
    EXPECT_EQ("[]", textOf("<!DOCTYPE r [<!ENTITY e SYSTEM '" + secret + "'>]><r>[&e;]</r>"));
    EXPECT_EQ("[]", textOf("<!DOCTYPE r [<!ENTITY e SYSTEM 'file://" + secret + "'>]><r>[&e;]</r>"));
    EXPECT_EQ("[]", textOf("<!DOCTYPE r [<!ENTITY e PUBLIC 'p' '" + secret + "'>]><r>[&e;]</r>"));
    EXPECT_EQ("[]", textOf("<!DOCTYPE r [<!ENTITY e SYSTEM 'http://localhost:1/x'>]><r>[&e;]</r>"));
    EXPECT_EQ("text", textOf("<!DOCTYPE r SYSTEM '" + dtd + "'><r>text</r>"));
    EXPECT_EQ("text", textOf("<!DOCTYPE r SYSTEM 'http://localhost:1/x.dtd'><r>text</r>"));
    EXPECT_EQ("text", textOf("<!DOCTYPE r PUBLIC 'p' 'missing.dtd'><r>text</r>"));
    EXPECT_EQ("text", textOf("<!DOCTYPE r [<!ENTITY % p SYSTEM '" + dtd + "'>%p;]><r>text</r>"));
    EXPECT_EQ("", textOf("<!DOCTYPE r SYSTEM '" + dtd + "'><r>&e;</r>"));
    EXPECT_EQ("text",
              textOf("<r xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='" + secret + "'/>text</r>"));
}

// --- Volume ---

TEST_F(HardenedParser, TakesModestEntities) {
    EXPECT_EQ("abc abc", textOf("<!DOCTYPE r [<!ENTITY e 'abc'>]><r>&e; &e;</r>"));
    EXPECT_EQ("<abc>", textOf("<!DOCTYPE r [<!ENTITY i 'abc'><!ENTITY e '&#38;#60;&i;>'>]><r>&e;</r>"));
    EXPECT_EQ(500U, textOf("<!DOCTYPE r [<!ENTITY e 'x'>]><r>" + repeat("&e;", 500) + "</r>").size());
    EXPECT_EQ("v", textOf("<!DOCTYPE r [<!ENTITY % p '<!ENTITY e \"v\">'>%p;]><r>&e;</r>"));
    EXPECT_EQ(3000U, textOf("<r>" + repeat("&amp;&#65;&lt;", 1000) + "</r>").size());
}

TEST_F(HardenedParser, TakesOrdinaryDocumentTypes) {
    struct Row {
        std::string xml;
        char const* text;
    };
    for (
        Row const& row :
        {Row{"<!DOCTYPE r [<!ENTITY lt '&#38;#60;'><!ENTITY amp '&#38;#38;'><!ATTLIST r a CDATA 'v'>]><r>&lt;&amp;</r>",
             "<&"},
         Row{"<!DOCTYPE r [<!ENTITY t 'a &amp; b'><!ATTLIST r a CDATA '&t;'>]><r>&t;</r>", "a & b"},
         Row{"<!DOCTYPE r [<!ENTITY a 'x'><!ENTITY b '&a;&a;'><!ATTLIST r a CDATA '&b;'>]><r>&b;</r>", "xx"},
         Row{"<!DOCTYPE r [<!ENTITY % p '<!ELEMENT a (b)>" + std::string(2000, ' ') + "'>%p;]><r>x</r>", "x"},
         Row{"<!DOCTYPE r [<!ENTITY % a '<!ENTITY c \"v\">'><!ENTITY % b '&#37;a;'>%b;]><r>&c;</r>", "v"},
         Row{"<!DOCTYPE r [<!ENTITY co 'Company'><!ENTITY pr 'Project'><!ELEMENT r ANY>"
             "<!ATTLIST r id ID #IMPLIED n NMTOKENS 'a b'>]><r id='x'>&co; &pr;</r>",
             "Company Project"}}) {
        EXPECT_EQ(row.text, textOf(row.xml)) << row.xml;
    }
}

TEST_F(HardenedParser, TakesReferencesAllOverALargeFile) {
    std::string const block = "<b a='&co; " + std::string(600, 'x') + "'/>";
    EXPECT_TRUE(parseXmlBytes("<!DOCTYPE r [<!ENTITY co 'Company'>]><r>" + repeat(block, 5000) + "</r>"));
}

TEST_F(HardenedParser, TakesElementsOfManyAttributesBesideADoctype) {
    std::string element = "<e";
    for (int i = 0; i < 300; ++i) {
        element += " a" + std::to_string(i) + "=''";
    }
    EXPECT_TRUE(parseXmlBytes("<!DOCTYPE r [<!ENTITY co 'Company'>]><r>" + repeat(element + "/>", 1500) + "</r>"));
}

TEST_F(HardenedParser, TakesTextsOfTenMegabytes) {
    constexpr std::size_t kLength = 10 * 1024 * 1024;
    std::string const text(kLength, 't');
    auto const lengthOf = [](XmlDocumentPointer const& document) {
        TuString own;
        return document && flowmere::ownText(document->getDocumentElement(), own) ? own.View().size() : 0;
    };
    for (std::string const doctype : {"", "<!DOCTYPE r [<!ENTITY co 'Company'>]>"}) {
        EXPECT_EQ(kLength, lengthOf(parseXmlBytes(doctype + "<r>" + text + "</r>"))) << doctype;
        EXPECT_EQ(kLength, lengthOf(parseXmlBytes(doctype + "<r><![CDATA[" + text + "]]></r>"))) << doctype;
        XmlDocumentPointer const document = parseXmlBytes(doctype + "<r a='" + text + "'/>");
        ASSERT_TRUE(document) << doctype;
        EXPECT_EQ(kLength, flowmere::xmlView(flowmere::attributeOf(document->getDocumentElement(), u"a")).size())
            << doctype;
    }
    std::string const lines = repeat("a line\n", 1500000);
    EXPECT_EQ(lines.size(), lengthOf(parseXmlBytes("<r>" + lines + "</r>")));
}

TEST_F(HardenedParser, RefusesEntityBombs) {
    std::string nested = "<!DOCTYPE r [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 30; ++i) {
        std::string const inner = "&e" + std::to_string(i - 1) + ";";
        nested += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + "'>";
    }
    EXPECT_TRUE(refusedAtOnce(nested + "]><r>&e29;</r>")) << "in text";
    EXPECT_TRUE(refusedAtOnce(nested + "]><r a='&e29;'/>")) << "in an attribute";
    EXPECT_TRUE(refusedAtOnce(nested + "<!ATTLIST r a CDATA '&e29;'>]><r/>")) << "in a default value";
    EXPECT_TRUE(refusedAtOnce("<!DOCTYPE r [<!ENTITY e 'x'>]><r>" + repeat("&e;", 1001) + "</r>")) << "one by one";
}

TEST_F(HardenedParser, RefusesBombsOfParameterEntities) {
    std::string xml = "<!DOCTYPE r [<!ENTITY % e0 ' '>";
    for (int i = 1; i < 40; ++i) {
        std::string const inner = "&#37;e" + std::to_string(i - 1) + ";";
        xml += "<!ENTITY % e" + std::to_string(i) + " '" + inner + inner + "'>";
    }
    EXPECT_TRUE(refusedAtOnce(xml + "%e39;]><r/>"));
    EXPECT_TRUE(refusedAtOnce("<!DOCTYPE r [<!ENTITY % e '" + std::string(100000, ' ') + "'>" + repeat("%e;", 10000) +
                              "]><r/>"));
}

TEST_F(HardenedParser, RefusesLargeEntities) {
    std::string const large(100000, 'x');
    EXPECT_TRUE(refusedAtOnce("<!DOCTYPE r [<!ENTITY e '" + large + "'>]><r>" + repeat("&e;", 900) + "</r>"));
    std::string const medium(60000, 'x');
    EXPECT_TRUE(refusedAtOnce("<!DOCTYPE r [<!ENTITY e '" + medium + "'>]><r>" + repeat("&e;", 900) + "</r>"));
    EXPECT_TRUE(refusedAtOnce("<!DOCTYPE r [<!ENTITY e '" + medium + "'>]><r>" + repeat("<s a='&e;'/>", 900) + "</r>"));
}

TEST_F(HardenedParser, RefusesMultipliedDefaultValues) {
    std::string const value(100000, 'x');
    EXPECT_TRUE(
        refusedAtOnce("<!DOCTYPE r [<!ATTLIST e a CDATA '" + value + "'>]><r>" + repeat("<e/>", 3000) + "</r>"));
    std::string many = "<!DOCTYPE r [<!ATTLIST e";
    for (int i = 0; i < 1000; ++i) {
        many += " a" + std::to_string(i) + " CDATA 'x'";
    }
    EXPECT_TRUE(refusedAtOnce(many + ">]><r>" + repeat("<e/>", 30000) + "</r>"));
    std::string defaults = "<!DOCTYPE r [<!ENTITY e '" + std::string(60000, 'x') + "'><!ATTLIST r";
    for (int i = 0; i < 5000; ++i) {
        defaults += " a" + std::to_string(i) + " CDATA '&e;'";
    }
    EXPECT_TRUE(refusedAtOnce(defaults + ">]><r/>"));
}

TEST_F(HardenedParser, RefusesBombsInDefaultValues) {
    auto const withDefault = [](std::string const& entities, std::string const& type, std::string const& value) {
        return "<!DOCTYPE r [" + entities + "<!ATTLIST r a " + type + " '" + value + "'>]><r/>";
    };
    std::string const entity = "<!ENTITY e '" + std::string(4000, 'x') + "'>";
    EXPECT_TRUE(refusedAtOnce(withDefault(entity, "CDATA", repeat("&e;", 300000))));
    std::string const blank = "<!ENTITY e '" + std::string(4000, ' ') + "'>";
    EXPECT_TRUE(refusedAtOnce(withDefault(blank, "NMTOKENS", repeat("&e;", 300000))));
    std::string const large = "<!ENTITY e '" + std::string(60000, ' ') + "'>";
    EXPECT_TRUE(refusedAtOnce(withDefault(large, "NMTOKENS", "&e;")));
    EXPECT_TRUE(refusedAtOnce("<!DOCTYPE r [<!ATTLIST r a NMTOKENS 'x'>" + large + "]><r a='&e;'/>"));
    std::string nothing = "<!ENTITY e0 ''>";
    for (int i = 1; i < 40; ++i) {
        std::string const inner = "&e" + std::to_string(i - 1) + ";";
        nothing += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + "'>";
    }
    EXPECT_TRUE(refusedAtOnce(withDefault(nothing, "CDATA", "&e39;")));
    EXPECT_TRUE(parseXmlBytes("<r/>")) << "the next file is none the worse for it";
}

TEST_F(HardenedParser, RefusesTooManyDifferentNames) {
    auto const elements = [](int count) {
        std::string xml = "<r>";
        for (int i = 0; i < count; ++i) {
            xml += "<a" + std::to_string(i) + "/>";
        }
        return xml + "</r>";
    };
    auto const attributes = [](int count) {
        std::string xml = "<r>";
        for (int i = 0; i < count; ++i) {
            xml += "<a b" + std::to_string(i) + "=''/>";
        }
        return xml + "</r>";
    };
    EXPECT_TRUE(parseXmlBytes(elements(10000)));
    EXPECT_TRUE(parseXmlBytes(attributes(10000)));
    EXPECT_TRUE(refusedAtOnce(elements(300000)));
    EXPECT_TRUE(refusedAtOnce(attributes(300000)));
}

TEST_F(HardenedParser, RefusesElementsWithTooManyAttributes) {
    auto const withAttributes = [](int count) {
        std::string xml = "<r";
        for (int i = 0; i < count; ++i) {
            xml += " a" + std::to_string(i) + "='1'";
        }
        return xml + "/>";
    };
    EXPECT_TRUE(parseXmlBytes(withAttributes(10000)));
    EXPECT_TRUE(refusedAtOnce(withAttributes(10001)));
    EXPECT_TRUE(refusedAtOnce(withAttributes(300000)));
}

TEST_F(HardenedParser, TakesLargeFilesOfManyReferences) {
    std::string const text = repeat("&lt;b&gt; &amp; &#10;", 200000);
    XmlDocumentPointer const document = parseXmlBytes("<r a='" + text + "'>" + text + "</r>");
    ASSERT_TRUE(document);
    EXPECT_EQ(200000U * 7, flowmere::xmlView(flowmere::attributeOf(document->getDocumentElement(), u"a")).size());
}

// --- White space ---

TEST_F(HardenedParser, GathersTheIndentationOfElements) {
    XmlDocumentPointer const document = parseXmlBytes("<r>\n  <a>\n    <b/>\n  </a>\n  <c></c>\n</r>\n");
    ASSERT_TRUE(document);
    xercesc::DOMElement* const root = document->getDocumentElement();
    xercesc::DOMElement* const a = flowmere::firstElement(root);
    xercesc::DOMElement* const c = flowmere::nextElement(a);
    EXPECT_EQ(a, root->getFirstChild());
    EXPECT_EQ(c, a->getNextSibling());
    EXPECT_EQ(root->getLastChild(), c->getNextSibling()) << "one node for all of it";
    EXPECT_TRUE(flowmere::equals(root->getLastChild()->getNodeValue(), u"\n  \n  \n"));
    EXPECT_EQ(a->getLastChild(), flowmere::firstElement(a)->getNextSibling());
    EXPECT_TRUE(flowmere::equals(a->getLastChild()->getNodeValue(), u"\n    \n  "));
    EXPECT_EQ(nullptr, c->getFirstChild());
}

TEST_F(HardenedParser, OwnTextsAreThoseOfAPlainDocument) {
    for (char const* xml :
         {"<r>\n <a/>\n <b>x</b>\n</r>", "<r> <o/> x</r>", "<r> <o/> <o/> x <o/> y </r>", "<r>\n<o/>&amp;\n</r>",
          "<r> <o/> <![CDATA[c]]> </r>", "<r> <!-- c --> <o/> <?p i?> </r>", "<r> <o> <p/> z </o> <o> </o> </r>",
          "<r><o/></r>", "<r> <o/><o/></r>", "<!DOCTYPE r [<!ENTITY s ' '>]><r>&s;<o/>&s;x</r>",
          "<!DOCTYPE r [<!ENTITY m ' <o> </o> t'>]><r> &m; </r>", "<!DOCTYPE r [<!ELEMENT r (o)*>]><r> <o/> </r>"}) {
        XmlDocumentPointer const plain = parseXmlBytes(xml, flowmere::Indentation::Keep);
        XmlDocumentPointer const gathered = parseXmlBytes(xml);
        ASSERT_TRUE(plain && gathered) << xml;
        // All elements in document order.
        auto* const left = plain->getElementsByTagName(flowmere::XmlName(u"*").dom());
        auto* const right = gathered->getElementsByTagName(flowmere::XmlName(u"*").dom());
        ASSERT_EQ(left->getLength(), right->getLength()) << xml;
        for (XMLSize_t i = 0; i < left->getLength(); ++i) {
            TuString expected(L"none");
            TuString text(L"none");
            flowmere::ownText(static_cast<xercesc::DOMElement*>(left->item(i)), expected);
            flowmere::ownText(static_cast<xercesc::DOMElement*>(right->item(i)), text);
            EXPECT_EQ(expected, text) << xml;
        }
    }
}

TEST_F(HardenedParser, KeepsWhiteSpaceThatIsContent) {
    struct Row {
        char const* xml;
        char const* text;
    };
    for (Row const& row :
         {Row{"<r> \n\t</r>", " \n\t"}, Row{"<r>  x  </r>", "  x  "}, Row{"<r>  x  <o/></r>", "  x  "},
          Row{"<r>x <o/> <o/> y</r>", "x   y"}, Row{"<r>&amp; <o/></r>", "& "}, Row{"<r> <![CDATA[ ]]> </r>", "   "},
          Row{"<r><![CDATA[]]> <o/></r>", " "}, Row{"<r> <!--c--> </r>", "  "}, Row{"<r> <?p i?></r>", " "},
          Row{"<r>&#32;</r>", " "}, Row{"<r> &#10; </r>", " \n "}, Row{"<r>x<o> </o> </r>", "x "},
          Row{"<!DOCTYPE r [<!ENTITY s '  '>]><r>&s;</r>", "  "}}) {
        EXPECT_EQ(row.text, textOf(row.xml)) << row.xml;
    }
}

TEST_F(HardenedParser, KeepsAllWhiteSpaceWhenAsked) {
    XmlDocumentPointer const document = parseXmlBytes("<r>\n  <a/>\n</r>", flowmere::Indentation::Keep);
    ASSERT_TRUE(document);
    TuString text;
    EXPECT_TRUE(flowmere::ownText(document->getDocumentElement(), text));
    EXPECT_STREQ(L"\n  \n", text);
}

// --- The same settings on a plain parser ---

TEST_F(HardenedParser, ItsSettingsFitAPlainParser) {
    std::string const xml = "<!DOCTYPE r SYSTEM 'missing.dtd' [<!ENTITY e 'x'>]><r>&e;</r>";
    xercesc::XercesDOMParser parser;
    flowmere::applyParserSettings(parser);
    xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(xml.data()), xml.size(), "memory");
    parser.parse(source);
    ASSERT_EQ(0U, parser.getErrorCount());
    TuString text;
    EXPECT_TRUE(flowmere::ownText(parser.getDocument()->getDocumentElement(), text));
    EXPECT_STREQ(L"x", text);
}
