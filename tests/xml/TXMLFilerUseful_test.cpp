#include "XmlTestSupport.h"

TEST(CTXMLFilerUseful, ReplacesTheContentByTheDomText) {
    TuString text(L"before");
    CTXMLFilerUseful::TXMLDOMStringToCStringNew(u"VARIABLE", text);
    EXPECT_STREQ(L"VARIABLE", text);
}

TEST(CTXMLFilerUseful, NullAndEmptyTextsGiveTheEmptyText) {
    TuString text(L"before");
    CTXMLFilerUseful::TXMLDOMStringToCStringNew(nullptr, text);
    EXPECT_STREQ(L"", text);
    text = L"before";
    CTXMLFilerUseful::TXMLDOMStringToCStringNew(u"", text);
    EXPECT_STREQ(L"", text);
}

TEST(CTXMLFilerUseful, KeepsLettersBeyondTheFirstPlane) {
    TuString text;
    CTXMLFilerUseful::TXMLDOMStringToCStringNew(u"a\u00e9\u6f22\U0001F600z", text);
    EXPECT_STREQ(L"a\u00e9\u6f22\U0001F600z", text);
}

TEST(CTXMLFilerUseful, IsTheBaseOfTheReader) {
    CTXMLBaseReader reader;
    TuString text;
    reader.TXMLDOMStringToCStringNew(u"x", text);
    EXPECT_STREQ(L"x", text);
}
