#include "flowmere/xml/TXMLBaseWriter.h"

#include "flowmere/foundation/TuDate.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlText.h"

#include <xercesc/dom/DOM.hpp>

#include <string_view>

namespace {

std::wstring_view viewOf(wchar_t const* text) {
    return text ? std::wstring_view(text) : std::wstring_view();
}

// A name of the caller, in the form in which the operations of this system's own names take it.
class CallerName {
public:
    explicit CallerName(wchar_t const* name) : m_text(name) {}
    flowmere::XmlName name() const { return flowmere::XmlName(flowmere::xmlView(m_text.text())); }

private:
    flowmere::DomText m_text;
};

// The operations allow no exception out, and turning a name into DOM text may run out of memory.
template <typename Store>
auto withName(wchar_t const* name, Store store) noexcept -> decltype(store(flowmere::XmlName(u""))) {
    try {
        CallerName const converted(name);
        return store(converted.name());
    } catch (...) {
        return {};
    }
}

} // namespace

CTXMLBaseWriter::CTXMLBaseWriter() = default;
CTXMLBaseWriter::CTXMLBaseWriter(CTXMLBaseWriter const&) = default;
CTXMLBaseWriter& CTXMLBaseWriter::operator=(CTXMLBaseWriter const&) = default;
CTXMLBaseWriter::~CTXMLBaseWriter() = default;

xercesc::DOMElement* CTXMLBaseWriter::CreateElement(xercesc::DOMNode* parent, wchar_t const* name) {
    return withName(name, [&](flowmere::XmlName tag) { return flowmere::appendElement(parent, tag); });
}

bool CTXMLBaseWriter::SetAttribute(xercesc::DOMNode* node, wchar_t const* name, TuString& value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setText(node, key, value.View()); });
}

bool CTXMLBaseWriter::SetAttribute(xercesc::DOMNode* node, wchar_t const* name, int value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setInteger(node, key, value); });
}

bool CTXMLBaseWriter::SetAttribute(xercesc::DOMNode* node, wchar_t const* name, long value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setInteger(node, key, value); });
}

bool CTXMLBaseWriter::SetAttribute(xercesc::DOMNode* node, wchar_t const* name, double value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setReal(node, key, value); });
}

bool CTXMLBaseWriter::SetAttribute(xercesc::DOMNode* node, wchar_t const* name, TuDate value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setText(node, key, value.toText().View()); });
}

bool CTXMLBaseWriter::SetSimpleAttribute(xercesc::DOMNode* node, wchar_t const* name, wchar_t const* value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setText(node, key, viewOf(value)); });
}

bool CTXMLBaseWriter::SetBoolAttribute(xercesc::DOMNode* node, wchar_t const* name, bool value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setFlag(node, key, value); });
}

bool CTXMLBaseWriter::SetBoolAttributeYN(xercesc::DOMNode* node, wchar_t const* name, bool value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setFlagLetter(node, key, value); });
}

bool CTXMLBaseWriter::SetUINTAttribute(xercesc::DOMNode* node, wchar_t const* name, unsigned int value) {
    return withName(name, [&](flowmere::XmlName key) { return flowmere::setInteger(node, key, value); });
}

bool CTXMLBaseWriter::SetColorAttribute(xercesc::DOMNode* node, wchar_t const* name, unsigned int& value) {
    return SetUINTAttribute(node, name, value);
}

bool CTXMLBaseWriter::SetTextNodeValue(xercesc::DOMNode* node, TuString& value) {
    return flowmere::appendText(node, value.View());
}

bool CTXMLBaseWriter::SetSimpleTextNodeValue(xercesc::DOMNode* node, wchar_t const* value) {
    return flowmere::appendText(node, viewOf(value));
}

bool CTXMLBaseWriter::SetCDatatNodeValue(xercesc::DOMNode* node, TuString& value) {
    return flowmere::appendCData(node, value.View());
}
