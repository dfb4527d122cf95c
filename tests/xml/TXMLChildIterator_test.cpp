#include "XmlTestSupport.h"
#include "flowmere/xml/TXMLChildIterator.h"

#include <type_traits>

using flowmere::test::TextReader;

namespace {

// The tags met by a walk, "-" for a child that is no element.
std::string walk(CTXMLChildIterator& iterator) {
    std::string tags;
    for (iterator.Head(); iterator.More(); iterator.Next()) {
        xercesc::DOMElement* const element = iterator.GetNodeElement();
        TuString tag(L"-");
        if (element) {
            CTXMLFilerUseful::TXMLDOMStringToCStringNew(element->getTagName(), tag);
        }
        tags += flowmere::test::narrow(tag) + " ";
    }
    return tags;
}

} // namespace

TEST(CTXMLChildIterator, WalksTheDirectChildrenInFileOrder) {
    TextReader reader("<r><a><inner/></a><b/><c/></r>");
    CTXMLChildIterator iterator(reader.root());
    EXPECT_EQ("a b c ", walk(iterator));
}

TEST(CTXMLChildIterator, GivesNullForTextsCommentsAndInstructions) {
    TextReader reader("<r>text<a/><!-- note --><b/><?go now?><![CDATA[raw]]></r>");
    CTXMLChildIterator iterator(reader.root());
    EXPECT_EQ("- a - b - - ", walk(iterator));
}

TEST(CTXMLChildIterator, HeadStartsAnew) {
    TextReader reader("<r><a/><b/></r>");
    CTXMLChildIterator iterator(reader.root());
    EXPECT_EQ("a b ", walk(iterator));
    EXPECT_EQ("a b ", walk(iterator));
}

TEST(CTXMLChildIterator, HasNothingBeforeHeadAndBehindTheLast) {
    TextReader reader("<r><a/></r>");
    CTXMLChildIterator iterator(reader.root());
    EXPECT_FALSE(iterator.More());
    EXPECT_EQ(nullptr, iterator.GetNodeElement());
    iterator.Next();
    EXPECT_FALSE(iterator.More());
    iterator.Head();
    EXPECT_TRUE(iterator.More());
    iterator.Next();
    EXPECT_FALSE(iterator.More());
    iterator.Next();
    EXPECT_FALSE(iterator.More());
    EXPECT_EQ(nullptr, iterator.GetNodeElement());
}

TEST(CTXMLChildIterator, AnElementWithoutChildrenAndNullGiveNothing) {
    TextReader reader("<r/>");
    CTXMLChildIterator empty(reader.root());
    EXPECT_EQ("", walk(empty));
    CTXMLChildIterator none(nullptr);
    EXPECT_EQ("", walk(none));
}

TEST(CTXMLChildIterator, WalksManyChildrenInLinearTime) {
    TextReader reader("<r>" + flowmere::test::repeat("<a/>", 200000) + "</r>");
    CTXMLChildIterator iterator(reader.root());
    int count = 0;
    for (iterator.Head(); iterator.More(); iterator.Next()) {
        count += iterator.GetNodeElement() ? 1 : 0;
    }
    EXPECT_EQ(200000, count);
}

TEST(CTXMLChildIterator, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CTXMLChildIterator>);
}
