#include "XmlTestSupport.h"
#include "flowmere/foundation/TuDate.h"
#include "flowmere/xml/TXMLBaseWriter.h"

#include <cmath>
#include <limits>
#include <locale.h>
#include <type_traits>

using flowmere::test::TextReader;
using flowmere::test::written;
using flowmere::test::WrittenReader;

namespace {

// The text that an attribute has after it was set.
template <typename Set>
TuString stored(Set const& set) {
    TuString text(L"(absent)");
    written([&](xercesc::DOMElement* root) {
        set(root);
        flowmere::test::OpenReader().GetAttribute(root, L"a", text);
    });
    return text;
}

// Can SetBoolAttribute be called with this type?
template <typename Value>
concept TakesAsFlag = requires(xercesc::DOMNode* node, Value value) {
    CTXMLBaseWriter::SetBoolAttribute(node, L"a", value);
};
template <typename Value>
concept TakesAsLetter = requires(xercesc::DOMNode* node, Value value) {
    CTXMLBaseWriter::SetBoolAttributeYN(node, L"a", value);
};
template <typename Value>
concept TakesAsAttribute = requires(xercesc::DOMNode* node, Value value) {
    CTXMLBaseWriter::SetAttribute(node, L"a", value);
};

} // namespace

// --- Elements ---

TEST(CTXMLBaseWriter, CreateElementAppendsTheLastChild) {
    WrittenReader reader([](xercesc::DOMElement* root) {
        xercesc::DOMElement* const first = CTXMLBaseWriter::CreateElement(root, L"first");
        xercesc::DOMElement* const second = CTXMLBaseWriter::CreateElement(root, L"second");
        EXPECT_EQ(root, first->getParentNode());
        EXPECT_EQ(second, root->getLastChild());
        EXPECT_EQ(root->getOwnerDocument(), second->getOwnerDocument());
        EXPECT_NE(nullptr, CTXMLBaseWriter::CreateElement(first, L"inner"));
    });
    xercesc::DOMElement* const first = flowmere::firstElement(reader.root());
    EXPECT_EQ(u"first", flowmere::tagOf(first));
    EXPECT_EQ(u"inner", flowmere::tagOf(flowmere::firstElement(first)));
    EXPECT_EQ(u"second", flowmere::tagOf(flowmere::nextElement(first)));
}

TEST(CTXMLBaseWriter, CreateElementIsNullOnFailure) {
    written([](xercesc::DOMElement* root) {
        EXPECT_EQ(nullptr, CTXMLBaseWriter::CreateElement(nullptr, L"a"));
        EXPECT_EQ(nullptr, CTXMLBaseWriter::CreateElement(root, L""));
        EXPECT_EQ(nullptr, CTXMLBaseWriter::CreateElement(root, nullptr));
        EXPECT_EQ(nullptr, CTXMLBaseWriter::CreateElement(root, L"two words"));
        EXPECT_EQ(nullptr, CTXMLBaseWriter::CreateElement(root, L"1st"));
        EXPECT_EQ(nullptr, root->getFirstChild());
    });
}

TEST(CTXMLBaseWriter, CreateElementInADocumentThatHasItsRootIsNull) {
    written([](xercesc::DOMElement* root) {
        EXPECT_EQ(nullptr, CTXMLBaseWriter::CreateElement(root->getOwnerDocument(), L"second"));
    });
}

// --- Attributes ---

TEST(CTXMLBaseWriter, EachTypeHasItsForm) {
    TuString text(L"a text");
    TuString empty;
    unsigned int color = 0xFFDFC6;
    TuDate none;
    TuDate day;
    day.setDate(2009, 3, 7, 10, 11, 12);
    using W = CTXMLBaseWriter;
    using E = xercesc::DOMElement*;
    EXPECT_STREQ(L"a text", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", text)); }));
    EXPECT_STREQ(L"", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", empty)); }));
    EXPECT_STREQ(L"-12", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", -12)); }));
    EXPECT_STREQ(L"2147483647", stored([&](E e) { W::SetAttribute(e, L"a", std::numeric_limits<int>::max()); }));
    EXPECT_STREQ(L"-2147483648", stored([&](E e) { W::SetAttribute(e, L"a", std::numeric_limits<int>::min()); }));
    EXPECT_STREQ(L"123456789", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", 123456789L)); }));
    EXPECT_STREQ(L"0.29", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", 0.29)); }));
    EXPECT_STREQ(L"8", stored([&](E e) { W::SetAttribute(e, L"a", 8.0); }));
    EXPECT_STREQ(L"7/3/2009", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", day)); }));
    EXPECT_STREQ(L"", stored([&](E e) { EXPECT_TRUE(W::SetAttribute(e, L"a", none)); }));
    EXPECT_STREQ(L"plain", stored([&](E e) { EXPECT_TRUE(W::SetSimpleAttribute(e, L"a", L"plain")); }));
    EXPECT_STREQ(L"", stored([&](E e) { EXPECT_TRUE(W::SetSimpleAttribute(e, L"a", nullptr)); }));
    EXPECT_STREQ(L"true", stored([&](E e) { EXPECT_TRUE(W::SetBoolAttribute(e, L"a", true)); }));
    EXPECT_STREQ(L"false", stored([&](E e) { EXPECT_TRUE(W::SetBoolAttribute(e, L"a", false)); }));
    EXPECT_STREQ(L"Y", stored([&](E e) { EXPECT_TRUE(W::SetBoolAttributeYN(e, L"a", true)); }));
    EXPECT_STREQ(L"N", stored([&](E e) { EXPECT_TRUE(W::SetBoolAttributeYN(e, L"a", false)); }));
    EXPECT_STREQ(L"4294967295", stored([&](E e) { EXPECT_TRUE(W::SetUINTAttribute(e, L"a", 0xFFFFFFFF)); }));
    EXPECT_STREQ(L"16768966", stored([&](E e) { EXPECT_TRUE(W::SetColorAttribute(e, L"a", color)); }));
}

TEST(CTXMLBaseWriter, TheLastValueOfAnAttributeCounts) {
    EXPECT_STREQ(L"2", stored([&](xercesc::DOMElement* e) {
                     CTXMLBaseWriter::SetAttribute(e, L"a", 1);
                     CTXMLBaseWriter::SetAttribute(e, L"a", 2);
                 }));
}

TEST(CTXMLBaseWriter, BadTargetsAndNamesStoreNothing) {
    written([](xercesc::DOMElement* root) {
        TuString text(L"t");
        unsigned int color = 1;
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(nullptr, L"a", text));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(nullptr, L"a", 1));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(nullptr, L"a", 1L));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(nullptr, L"a", 1.0));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(nullptr, L"a", TuDate()));
        EXPECT_FALSE(CTXMLBaseWriter::SetSimpleAttribute(nullptr, L"a", L"t"));
        EXPECT_FALSE(CTXMLBaseWriter::SetBoolAttribute(nullptr, L"a", true));
        EXPECT_FALSE(CTXMLBaseWriter::SetBoolAttributeYN(nullptr, L"a", true));
        EXPECT_FALSE(CTXMLBaseWriter::SetUINTAttribute(nullptr, L"a", 1));
        EXPECT_FALSE(CTXMLBaseWriter::SetColorAttribute(nullptr, L"a", color));
        EXPECT_FALSE(CTXMLBaseWriter::SetTextNodeValue(nullptr, text));
        EXPECT_FALSE(CTXMLBaseWriter::SetSimpleTextNodeValue(nullptr, L"t"));
        EXPECT_FALSE(CTXMLBaseWriter::SetCDatatNodeValue(nullptr, text));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(root, nullptr, text));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(root, L"", text));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(root, L"two words", text));
        EXPECT_FALSE(CTXMLBaseWriter::SetAttribute(root->getOwnerDocument(), L"a", text));
        EXPECT_EQ(1U, root->getAttributes()->getLength()) << "only the namespace of the root";
    });
}

TEST(CTXMLBaseWriter, RealsReadBackTheSame) {
    bool const comma = setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
    for (double const value : {0.0, 0.1, -0.3, 1.0 / 3.0, 12.345678901234567, 1e-300, 1e300, 5e-324,
                               std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest()}) {
        double read = 77;
        written([&](xercesc::DOMElement* root) {
            CTXMLBaseWriter::SetAttribute(root, L"a", value);
            EXPECT_TRUE(flowmere::test::OpenReader().GetAttribute(root, L"a", read));
        });
        EXPECT_EQ(value, read);
    }
    if (comma) {
        setlocale(LC_NUMERIC, "C");
    }
}

TEST(CTXMLBaseWriter, WhatIsNoDecimalNumberBecomesTheNearestOne) {
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_STREQ(L"0", stored([&](auto* e) { CTXMLBaseWriter::SetAttribute(e, L"a", std::nan("")); }));
    EXPECT_STREQ(L"1.7976931348623157e+308",
                 stored([&](auto* e) { CTXMLBaseWriter::SetAttribute(e, L"a", infinity); }));
    EXPECT_STREQ(L"-1.7976931348623157e+308",
                 stored([&](auto* e) { CTXMLBaseWriter::SetAttribute(e, L"a", -infinity); }));
}

TEST(CTXMLBaseWriter, ColorsComeBackExactly) {
    for (unsigned int color : {0U, 1U, 0xFFDFC6U, 0x80000000U, 0xFFFFFFFFU}) {
        unsigned int read = 77;
        WrittenReader reader([&](auto* e) { CTXMLBaseWriter::SetColorAttribute(e, L"c", color); });
        EXPECT_TRUE(reader.GetAttributeColor(reader.root(), L"c", read));
        EXPECT_EQ(color, read);
    }
}

TEST(CTXMLBaseWriter, EveryFlagFormIsReadBack) {
    for (bool const value : {true, false}) {
        bool flag = !value;
        bool letter = !value;
        bool digit = !value;
        bool word = !value;
        WrittenReader reader([&](auto* e) {
            TuString text(value ? L"true" : L"false");
            CTXMLBaseWriter::SetBoolAttribute(e, L"flag", value);
            CTXMLBaseWriter::SetBoolAttributeYN(e, L"letter", value);
            CTXMLBaseWriter::SetAttribute(e, L"digit", value ? 1 : 0);
            CTXMLBaseWriter::SetAttribute(e, L"word", text);
        });
        EXPECT_TRUE(reader.GetBoolAttribute(reader.root(), L"flag", flag));
        EXPECT_TRUE(reader.GetBoolAttribute(reader.root(), L"letter", letter));
        EXPECT_TRUE(reader.GetBoolAttribute(reader.root(), L"digit", digit));
        EXPECT_TRUE(reader.GetBoolAttribute(reader.root(), L"word", word));
        EXPECT_TRUE(flag == value && letter == value && digit == value && word == value);
    }
}

TEST(CTXMLBaseWriter, TextsAreNoFlags) {
    EXPECT_TRUE(TakesAsFlag<bool>);
    EXPECT_TRUE(TakesAsFlag<int>);
    EXPECT_FALSE(TakesAsFlag<wchar_t const*>);
    EXPECT_FALSE(TakesAsFlag<TuString>);
    EXPECT_TRUE(TakesAsLetter<bool>);
    EXPECT_FALSE(TakesAsLetter<wchar_t const*>);
    EXPECT_FALSE(TakesAsLetter<TuString>);
}

TEST(CTXMLBaseWriter, SetAttributeTakesTheStatedTypesOnly) {
    EXPECT_TRUE(TakesAsAttribute<TuString&>);
    EXPECT_TRUE(TakesAsAttribute<int>);
    EXPECT_TRUE(TakesAsAttribute<long>);
    EXPECT_TRUE(TakesAsAttribute<double>);
    EXPECT_TRUE(TakesAsAttribute<float>);
    EXPECT_TRUE(TakesAsAttribute<TuDate>);
    EXPECT_FALSE(TakesAsAttribute<unsigned int>);
    EXPECT_FALSE(TakesAsAttribute<std::size_t>);
    EXPECT_FALSE(TakesAsAttribute<wchar_t const*>);
    EXPECT_FALSE(TakesAsAttribute<TuString const&>);
}

// --- Texts ---

TEST(CTXMLBaseWriter, TextChildrenAreAppended) {
    WrittenReader reader([](auto* root) {
        TuString text(L"<one> & \"two\"");
        EXPECT_TRUE(CTXMLBaseWriter::SetTextNodeValue(root, text));
        EXPECT_TRUE(CTXMLBaseWriter::SetSimpleTextNodeValue(root, L" three"));
        EXPECT_TRUE(CTXMLBaseWriter::SetSimpleTextNodeValue(root, nullptr));
    });
    TuString text;
    EXPECT_TRUE(reader.GetTextNodeValue(reader.root(), text));
    EXPECT_STREQ(L"<one> & \"two\" three", text);
}

TEST(CTXMLBaseWriter, CDataKeepsItsTextAndItsEnd) {
    for (wchar_t const* value :
         {L"", L"x = 1\nif x < 2 && y:\n\tprint(\"a\")\n", L"a]]>b", L"]]>", L"]]>]]>", L"\u00e9\U0001F600"}) {
        WrittenReader reader([&](auto* root) {
            TuString text(value);
            EXPECT_TRUE(CTXMLBaseWriter::SetCDatatNodeValue(root, text));
        });
        ASSERT_TRUE(reader.opened) << flowmere::toUtf8(value);
        TuString text;
        reader.GetCDataNodeValue(reader.root(), text);
        EXPECT_STREQ(value, text);
    }
}

TEST(CTXMLBaseWriter, LineEndsAndTabsSurviveInAttributesAndTexts) {
    WrittenReader reader([](auto* root) {
        TuString text(L"a\tb\nc\rd");
        CTXMLBaseWriter::SetAttribute(root, L"a", text);
        CTXMLBaseWriter::SetTextNodeValue(root, text);
    });
    TuString text;
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"a", text));
    EXPECT_STREQ(L"a\tb\nc\rd", text);
    EXPECT_TRUE(reader.GetTextNodeValue(reader.root(), text));
    EXPECT_STREQ(L"a\tb\nc\rd", text);
}

TEST(CTXMLBaseWriter, WhatXmlCannotHoldNeverSpoilsAFile) {
    std::wstring all;
    for (wchar_t c = 1; c < 0x20; ++c) {
        all += c;
    }
    for (unsigned int const c :
         {0xFFFEU, 0xFFFFU, 0xD800U, 0xDC80U, 0xDCFFU, 0xDFFFU, 0x110000U, 0xFFFFFFFFU, 0xD83DU}) {
        all += static_cast<wchar_t>(c);
    }
    TuString bad(std::wstring_view(L"[" + all + L"]" + all));
    WrittenReader reader([&](auto* root) {
        CTXMLBaseWriter::SetAttribute(root, L"a", bad);
        CTXMLBaseWriter::SetSimpleAttribute(root, L"b", bad);
        CTXMLBaseWriter::SetTextNodeValue(CTXMLBaseWriter::CreateElement(root, L"text"), bad);
        CTXMLBaseWriter::SetCDatatNodeValue(CTXMLBaseWriter::CreateElement(root, L"raw"), bad);
    });
    ASSERT_TRUE(reader.opened);
    std::wstring const clean = L"\t\n\r" + std::wstring(7, L'\uFFFD');
    std::wstring const expected = L"[" + clean + L"]" + clean;
    TuString text;
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"a", text));
    EXPECT_STREQ(expected.c_str(), text);
    EXPECT_TRUE(reader.GetAttribute(reader.root(), L"b", text));
    EXPECT_STREQ(expected.c_str(), text);
    xercesc::DOMElement* const inner = flowmere::firstElement(reader.root());
    EXPECT_TRUE(reader.GetTextNodeValue(inner, text));
    EXPECT_STREQ(expected.c_str(), text);
    EXPECT_TRUE(reader.GetCDataNodeValue(flowmere::nextElement(inner), text));
    EXPECT_EQ(0, text.Find(L"[")) << "the carriage return of a raw section is a line feed in the file";
}

TEST(CTXMLBaseWriter, IsCopyableWithAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CTXMLBaseWriter>);
    EXPECT_TRUE(std::is_copy_constructible_v<CTXMLBaseWriter>);
    EXPECT_TRUE(std::is_copy_assignable_v<CTXMLBaseWriter>);
}
