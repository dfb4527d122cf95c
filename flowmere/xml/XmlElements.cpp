#include "flowmere/xml/XmlElements.h"

#include "flowmere/foundation/Prefetch.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace flowmere {

namespace {

constexpr std::size_t kNumberLength = 40;

// An attribute stands in front of its text and that in front of its characters; this is how much of them is asked for,
// and how many attributes ahead.
constexpr std::size_t kAttributeSize = 320;
constexpr XMLSize_t kAttributesAhead = 3;

// The value of an attribute that is there. Asking the attribute itself costs a dynamic cast each time, so the text is
// taken straight from its only child, as nearly all have one.
XMLCh const* valueOf(xercesc::DOMAttr const* attribute) {
    static constexpr XmlName kEmpty = u"";
    xercesc::DOMNode const* const text = attribute->getFirstChild();
    if (!text) {
        return kEmpty.dom();
    }
    if (text->getNodeType() == xercesc::DOMNode::TEXT_NODE && !text->getNextSibling()) {
        return text->getNodeValue();
    }
    return attribute->getValue();
}

// Below 0, 0 or above 0 as `name`, which ends at a NUL, stands before, at or behind `entry`. Names differ early, so
// this beats measuring them first.
int compareNames(XMLCh const* name, std::u16string_view entry) noexcept {
    std::size_t i = 0;
    for (; i < entry.size(); ++i) {
        int const difference = static_cast<int>(name[i]) - static_cast<int>(entry[i]);
        if (difference != 0) {
            return difference;
        }
    }
    return static_cast<int>(name[i]);
}

xercesc::DOMElement* asElement(xercesc::DOMNode* node) noexcept {
    return node && node->getNodeType() == xercesc::DOMNode::ELEMENT_NODE ? static_cast<xercesc::DOMElement*>(node)
                                                                         : nullptr;
}

xercesc::DOMDocument* documentOf(xercesc::DOMNode* node) noexcept {
    return node->getNodeType() == xercesc::DOMNode::DOCUMENT_NODE ? static_cast<xercesc::DOMDocument*>(node)
                                                                  : node->getOwnerDocument();
}

bool setDomText(xercesc::DOMNode* node, XmlName name, XMLCh const* value) noexcept {
    xercesc::DOMElement* const element = asElement(node);
    if (!element) {
        return false;
    }
    try {
        element->setAttribute(name.dom(), value);
        return true;
    } catch (...) {
        return false;
    }
}

// Sets an attribute to a text of ASCII characters.
bool setAscii(xercesc::DOMNode* node, XmlName name, char const* first, char const* last) noexcept {
    XMLCh text[kNumberLength + 1];
    XMLCh* out = text;
    for (; first != last; ++first) {
        *out++ = static_cast<XMLCh>(*first);
    }
    *out = 0;
    return setDomText(node, name, text);
}

// The texts of the children of the given kinds, joined.
bool joinChildren(xercesc::DOMElement const* element, bool withText, TuString& out) {
    if (!element) {
        return false;
    }
    XMLCh const* only = nullptr;
    int count = 0;
    std::u16string joined;
    for (xercesc::DOMNode const* child = element->getFirstChild(); child; child = child->getNextSibling()) {
        auto const type = child->getNodeType();
        if (type != xercesc::DOMNode::CDATA_SECTION_NODE && !(withText && type == xercesc::DOMNode::TEXT_NODE)) {
            continue;
        }
        XMLCh const* const value = child->getNodeValue();
        if (++count == 1) {
            only = value;
            continue;
        }
        if (count == 2) {
            joined = xmlView(only);
        }
        joined += xmlView(value);
    }
    if (count == 0) {
        return false;
    }
    assignText(out, count == 1 ? xmlView(only) : std::u16string_view(joined));
    return true;
}

} // namespace

std::u16string_view tagOf(xercesc::DOMElement const* element) noexcept {
    return element ? xmlView(element->getTagName()) : std::u16string_view();
}

xercesc::DOMElement* firstElement(xercesc::DOMNode const* parent) noexcept {
    xercesc::DOMNode* child = parent ? parent->getFirstChild() : nullptr;
    while (child && child->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) {
        child = child->getNextSibling();
    }
    return static_cast<xercesc::DOMElement*>(child);
}

xercesc::DOMElement* nextElement(xercesc::DOMElement const* element) noexcept {
    xercesc::DOMNode* next = element ? element->getNextSibling() : nullptr;
    while (next && next->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) {
        next = next->getNextSibling();
    }
    return static_cast<xercesc::DOMElement*>(next);
}

XMLCh const* attributeOf(xercesc::DOMElement const* element, XmlName name) {
    xercesc::DOMAttr const* const attribute = element ? element->getAttributeNode(name.dom()) : nullptr;
    return attribute ? valueOf(attribute) : nullptr;
}

void sweepAttributes(xercesc::DOMElement const* element, std::span<std::u16string_view const> names,
                     std::span<std::size_t const> slots, std::span<XMLCh const*> values) {
    xercesc::DOMNamedNodeMap const* const attributes = element ? element->getAttributes() : nullptr;
    XMLSize_t const count = attributes ? attributes->getLength() : 0;
    // The DOM keeps the attributes in order of their names, so both sides advance together. Where it does not, the
    // name is looked up in the whole table.
    std::size_t at = 0;
    for (XMLSize_t i = 0; i < count; ++i) {
        if (count - i > kAttributesAhead) {
            prefetch(attributes->item(i + kAttributesAhead), kAttributeSize);
        }
        auto const* const attribute = static_cast<xercesc::DOMAttr const*>(attributes->item(i));
        XMLCh const* const name = attribute->getName();
        int order = -1;
        while (at < names.size() && (order = compareNames(name, names[at])) > 0) {
            ++at;
        }
        std::size_t found = at;
        if (order != 0 || at == names.size()) {
            if (at == 0 || compareNames(name, names[at - 1]) > 0) {
                continue;
            }
            found =
                static_cast<std::size_t>(std::lower_bound(names.begin(), names.end(), xmlView(name)) - names.begin());
            if (found == names.size() || names[found] != xmlView(name)) {
                continue;
            }
        }
        values[slots[found]] = valueOf(attribute);
    }
}

bool ownText(xercesc::DOMElement const* element, TuString& out) {
    return joinChildren(element, true, out);
}

bool ownCData(xercesc::DOMElement const* element, TuString& out) {
    return joinChildren(element, false, out);
}

xercesc::DOMElement* appendElement(xercesc::DOMNode* parent, XmlName name) noexcept {
    if (!parent) {
        return nullptr;
    }
    try {
        xercesc::DOMElement* const element = documentOf(parent)->createElement(name.dom());
        parent->appendChild(element);
        return element;
    } catch (...) {
        return nullptr;
    }
}

bool setText(xercesc::DOMNode* node, XmlName name, std::wstring_view value) noexcept {
    try {
        return setDomText(node, name, DomText(value).text());
    } catch (...) {
        return false;
    }
}

bool setConstant(xercesc::DOMNode* node, XmlName name, XmlName value) noexcept {
    return setDomText(node, name, value.dom());
}

bool setInteger(xercesc::DOMNode* node, XmlName name, long long value) noexcept {
    char text[kNumberLength];
    return setAscii(node, name, text, std::to_chars(text, text + kNumberLength, value).ptr);
}

bool setReal(xercesc::DOMNode* node, XmlName name, double value) noexcept {
    // The file holds decimal numbers only, so what is none becomes the nearest one.
    if (std::isnan(value)) {
        value = 0.0;
    }
    constexpr double kLargest = std::numeric_limits<double>::max();
    value = std::clamp(value, -kLargest, kLargest);
    char text[kNumberLength];
    return setAscii(node, name, text, std::to_chars(text, text + kNumberLength, value).ptr);
}

bool setMeasure(xercesc::DOMNode* node, XmlName name, long long hundredths) noexcept {
    unsigned long long const size =
        hundredths < 0 ? 0 - static_cast<unsigned long long>(hundredths) : static_cast<unsigned long long>(hundredths);
    char text[kNumberLength];
    char* out = text;
    if (hundredths < 0) {
        *out++ = '-';
    }
    out = std::to_chars(out, text + kNumberLength, size / 100).ptr;
    *out++ = '.';
    *out++ = static_cast<char>('0' + size % 100 / 10);
    *out++ = static_cast<char>('0' + size % 10);
    *out++ = '0';
    return setAscii(node, name, text, out);
}

bool setFlag(xercesc::DOMNode* node, XmlName name, bool value) noexcept {
    return value ? setConstant(node, name, u"true") : setConstant(node, name, u"false");
}

bool setFlagLetter(xercesc::DOMNode* node, XmlName name, bool value) noexcept {
    return value ? setConstant(node, name, u"Y") : setConstant(node, name, u"N");
}

bool appendText(xercesc::DOMNode* node, std::wstring_view value) noexcept {
    if (!node) {
        return false;
    }
    try {
        node->appendChild(documentOf(node)->createTextNode(DomText(value).text()));
        return true;
    } catch (...) {
        return false;
    }
}

bool appendCData(xercesc::DOMNode* node, std::wstring_view value) noexcept {
    if (!node) {
        return false;
    }
    try {
        // A section cannot hold its own end, and the serialiser would drop it: the text goes on in a further section,
        // and readers join them.
        constexpr std::wstring_view kEnd = L"]]>";
        for (std::size_t end = value.find(kEnd); end != std::wstring_view::npos; end = value.find(kEnd)) {
            std::wstring_view const head = value.substr(0, end + 2);
            node->appendChild(documentOf(node)->createCDATASection(DomText(head).text()));
            value.remove_prefix(head.size());
        }
        node->appendChild(documentOf(node)->createCDATASection(DomText(value).text()));
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace flowmere
