#include "XmlTestSupport.h"

#include <algorithm>

using flowmere::test::TextReader;
using flowmere::test::WrittenReader;

namespace {

enum { kZulu, kAlpha, kMike, kMissing, kCount };
constexpr flowmere::AttributeTable kTable{u"Zulu", u"Alpha", u"Mike", u"Missing"};

} // namespace

TEST(XmlElements, ASweepFillsEveryNumberedName) {
    TextReader reader("<r Mike='m' Zulu='26' Alpha='1.5'/>");
    flowmere::AttributeRow const row(reader.root(), kTable);
    int zulu = 0;
    double alpha = 0;
    TuString mike;
    EXPECT_TRUE(row.integer(kZulu, zulu));
    EXPECT_TRUE(row.real(kAlpha, alpha));
    EXPECT_TRUE(row.text(kMike, mike));
    EXPECT_EQ(26, zulu);
    EXPECT_EQ(1.5, alpha);
    EXPECT_STREQ(L"m", mike);
    EXPECT_FALSE(row.has(kMissing));
    EXPECT_EQ(nullptr, row[kMissing]);
    EXPECT_EQ(u"", row.view(kMissing));
    EXPECT_EQ(u"m", row.view(kMike));
}

TEST(XmlElements, AbsentAttributesOfASweepLeaveTheDefaults) {
    TextReader reader("<r Other='x' Alphabet='y' Zu='z'/>");
    flowmere::AttributeRow const row(reader.root(), kTable);
    TuString text(L"default");
    int number = 7;
    unsigned int count = 8;
    double real = 9;
    bool flag = true;
    EXPECT_FALSE(row.text(kZulu, text));
    EXPECT_FALSE(row.integer(kAlpha, number));
    EXPECT_FALSE(row.unsignedInteger(kAlpha, count));
    EXPECT_FALSE(row.color(kAlpha, count));
    EXPECT_FALSE(row.real(kMike, real));
    EXPECT_FALSE(row.flag(kMissing, flag));
    EXPECT_STREQ(L"default", text);
    EXPECT_EQ(7, number);
    EXPECT_EQ(8U, count);
    EXPECT_EQ(9, real);
    EXPECT_TRUE(flag);
}

TEST(XmlElements, EmptyAttributesOfASweepArePresent) {
    TextReader reader("<r Zulu='' Alpha='' Mike='maybe'/>");
    flowmere::AttributeRow const row(reader.root(), kTable);
    TuString text(L"default");
    unsigned int count = 8;
    bool flag = true;
    EXPECT_TRUE(row.text(kZulu, text));
    EXPECT_TRUE(row.unsignedInteger(kAlpha, count));
    EXPECT_FALSE(row.flag(kMike, flag));
    EXPECT_STREQ(L"", text);
    EXPECT_EQ(0U, count);
    EXPECT_TRUE(flag);
}

TEST(XmlElements, ASweepAgreesWithLookupsForEverySubset) {
    char const* const names[] = {"Zulu", "Alpha", "Mike", "Missing", "A", "Z", "Mikes", "\xC3\xA9"};
    for (unsigned subset = 0; subset < 256; ++subset) {
        std::string xml = "<r";
        for (unsigned i = 0; i < 8; ++i) {
            if (subset & (1U << i)) {
                xml += std::string(" ") + names[i] + "='" + std::to_string(i) + "'";
            }
        }
        TextReader reader(xml + "/>");
        flowmere::AttributeRow const row(reader.root(), kTable);
        EXPECT_EQ(flowmere::attributeOf(reader.root(), u"Zulu"), row[kZulu]) << xml;
        EXPECT_EQ(flowmere::attributeOf(reader.root(), u"Alpha"), row[kAlpha]) << xml;
        EXPECT_EQ(flowmere::attributeOf(reader.root(), u"Mike"), row[kMike]) << xml;
        EXPECT_EQ(flowmere::attributeOf(reader.root(), u"Missing"), row[kMissing]) << xml;
        EXPECT_EQ((subset & 1) != 0, row.has(kZulu)) << xml;
    }
}

TEST(XmlElements, ValuesOfSeveralTextsAreWhole) {
    WrittenReader reader([](auto* root) { EXPECT_TRUE(flowmere::setConstant(root, u"Zulu", u"one")); });
    xercesc::DOMDocument* const document = reader.document();
    reader.root()->getAttributeNode(u"Zulu")->appendChild(document->createTextNode(u" two"));
    reader.root()->setAttribute(u"Alpha", u"");
    flowmere::AttributeRow const row(reader.root(), kTable);
    EXPECT_EQ(u"one two", row.view(kZulu));
    EXPECT_TRUE(row.has(kAlpha));
    EXPECT_EQ(u"", row.view(kAlpha));
    EXPECT_TRUE(flowmere::equals(flowmere::attributeOf(reader.root(), u"Zulu"), u"one two"));
}

TEST(XmlElements, ASweepOfNullIsEmpty) {
    flowmere::AttributeRow const row(nullptr, kTable);
    for (std::size_t i = 0; i < kCount; ++i) {
        EXPECT_FALSE(row.has(i));
    }
    EXPECT_EQ(nullptr, flowmere::attributeOf(nullptr, u"Zulu"));
}

TEST(XmlElements, ElementsAreWalkedOverOtherNodes) {
    TextReader reader("<r>a<x/>b<!--c--><y/></r>");
    xercesc::DOMElement* const first = flowmere::firstElement(reader.root());
    EXPECT_EQ(u"x", flowmere::tagOf(first));
    EXPECT_EQ(u"y", flowmere::tagOf(flowmere::nextElement(first)));
    EXPECT_EQ(nullptr, flowmere::nextElement(flowmere::nextElement(first)));
    EXPECT_EQ(nullptr, flowmere::firstElement(first));
    EXPECT_EQ(nullptr, flowmere::firstElement(nullptr));
    EXPECT_EQ(nullptr, flowmere::nextElement(nullptr));
    EXPECT_EQ(u"", flowmere::tagOf(nullptr));
}

TEST(XmlElements, MeasuresHaveThreeDigits) {
    struct Row {
        long long hundredths;
        wchar_t const* text;
    };
    for (Row const& row : {Row{0, L"0.000"}, Row{1, L"0.010"}, Row{29, L"0.290"}, Row{100, L"1.000"},
                           Row{-5, L"-0.050"}, Row{-130, L"-1.300"}, Row{2147483647, L"21474836.470"},
                           Row{-2147483648LL, L"-21474836.480"}, Row{9223372036854775807LL, L"92233720368547758.070"},
                           Row{-9223372036854775807LL - 1, L"-92233720368547758.080"}}) {
        WrittenReader reader([&](auto* root) { EXPECT_TRUE(flowmere::setMeasure(root, u"m", row.hundredths)); });
        TuString text;
        reader.GetAttribute(reader.root(), L"m", text);
        EXPECT_STREQ(row.text, text);
    }
}

TEST(XmlElements, MeasuresReadBackAsWritten) {
    WrittenReader reader([](auto* root) {
        for (int i = -1300; i <= 1300; ++i) {
            flowmere::setMeasure(flowmere::appendElement(root, u"p"), u"m", i);
        }
    });
    int i = -1300;
    for (auto* element = flowmere::firstElement(reader.root()); element; element = flowmere::nextElement(element)) {
        double value = 77;
        EXPECT_TRUE(reader.GetAttribute(element, L"m", value));
        EXPECT_EQ(i / 100.0, value);
        ++i;
    }
    EXPECT_EQ(1301, i);
}

TEST(XmlElements, ConstantsAndFlags) {
    WrittenReader reader([](auto* root) {
        EXPECT_TRUE(flowmere::setConstant(root, u"constant", u"PYTHON"));
        EXPECT_TRUE(flowmere::setFlag(root, u"flag", true));
        EXPECT_TRUE(flowmere::setFlagLetter(root, u"letter", false));
        EXPECT_TRUE(flowmere::setInteger(root, u"number", -9223372036854775807LL));
        EXPECT_FALSE(flowmere::setConstant(nullptr, u"constant", u"PYTHON"));
        EXPECT_EQ(nullptr, flowmere::appendElement(nullptr, u"x"));
    });
    EXPECT_TRUE(flowmere::equals(flowmere::attributeOf(reader.root(), u"constant"), u"PYTHON"));
    EXPECT_TRUE(flowmere::equals(flowmere::attributeOf(reader.root(), u"flag"), u"true"));
    EXPECT_TRUE(flowmere::equals(flowmere::attributeOf(reader.root(), u"letter"), u"N"));
    EXPECT_TRUE(flowmere::equals(flowmere::attributeOf(reader.root(), u"number"), u"-9223372036854775807"));
}
