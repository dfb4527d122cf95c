#include "flowmere/xml/TXMLBaseReader.h"

#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"
#include "flowmere/xml/XmlText.h"

#include <xercesc/dom/DOM.hpp>

#include <utility>

namespace {

constexpr wchar_t kNoPath[] = L"its name is empty";
constexpr wchar_t kNoPlace[] = L"there is no place for its document";
constexpr wchar_t kNotUp[] = L"the parser does not come up";

// The attribute's value, null when it is absent: an attribute that is present with the empty text is not absent.
XMLCh const* valueOf(xercesc::DOMElement* element, wchar_t const* name) {
    if (!element || !name) {
        return nullptr;
    }
    flowmere::DomText const key(name);
    return flowmere::attributeOf(element, flowmere::XmlName(flowmere::xmlView(key.text())));
}

} // namespace

CTXMLBaseReader::CTXMLBaseReader() = default;
CTXMLBaseReader::CTXMLBaseReader(CTXMLBaseReader const& other) = default;
CTXMLBaseReader& CTXMLBaseReader::operator=(CTXMLBaseReader const& other) = default;
CTXMLBaseReader::~CTXMLBaseReader() = default;

void CTXMLBaseReader::keepError(flowmere::XmlError const& error) {
    m_strErrorText = error.cause;
    m_nErrorLine = error.line;
    m_nErrorColumn = error.column;
}

bool CTXMLBaseReader::Initialize(wchar_t const* path) {
    m_pDocument = nullptr;
    try {
        flowmere::XmlError error;
        auto holder = std::make_shared<flowmere::XmlDocumentHolder>();
        if (!path || !*path) {
            error.cause = kNoPath;
        } else if (holder->platform.isUp()) {
            holder->document = flowmere::parseXmlFile(path, flowmere::Indentation::Gather, &error);
            m_pDocument = holder->document.get();
        } else {
            error.cause = kNotUp;
        }
        m_pHolder = std::move(holder);
        keepError(error);
    } catch (...) {
        m_pDocument = nullptr;
        m_pHolder.reset();
    }
    return m_pDocument != nullptr;
}

bool CTXMLBaseReader::InitXML(wchar_t const* path, xercesc::DOMDocument** out) {
    try {
        flowmere::XmlError error;
        flowmere::XmlPlatform const platform;
        flowmere::XmlDocumentPointer document;
        if (!path || !*path) {
            error.cause = kNoPath;
        } else if (!out) {
            error.cause = kNoPlace;
        } else if (platform.isUp()) {
            document = flowmere::parseXmlFile(path, flowmere::Indentation::Gather, &error);
        } else {
            error.cause = kNotUp;
        }
        keepError(error);
        if (!document) {
            return false;
        }
        *out = document.release();
        return true;
    } catch (...) {
        return false;
    }
}

bool CTXMLBaseReader::GetElement(TuString const& name, xercesc::DOMElement* parent, xercesc::DOMElement** out,
                                 int index) {
    flowmere::DomText const wanted(name.View());
    std::u16string_view const tag = flowmere::xmlView(wanted.text());
    xercesc::DOMNode const* const from = parent ? static_cast<xercesc::DOMNode*>(parent) : m_pDocument;
    int before = index < 0 ? 0 : index;
    for (xercesc::DOMElement* child = flowmere::firstElement(from); child; child = flowmere::nextElement(child)) {
        if (flowmere::tagOf(child) == tag && before-- == 0) {
            if (out) {
                *out = child;
            }
            return true;
        }
    }
    return false;
}

bool CTXMLBaseReader::GetAttribute(xercesc::DOMElement* element, wchar_t const* name, TuString& out) {
    XMLCh const* const value = valueOf(element, name);
    if (value) {
        flowmere::assignText(out, flowmere::xmlView(value));
    }
    return value != nullptr;
}

bool CTXMLBaseReader::GetAttribute(xercesc::DOMElement* element, wchar_t const* name, int& out) {
    XMLCh const* const value = valueOf(element, name);
    if (value) {
        out = flowmere::integerOf(flowmere::xmlView(value));
    }
    return value != nullptr;
}

bool CTXMLBaseReader::GetAttribute(xercesc::DOMElement* element, wchar_t const* name, double& out) {
    XMLCh const* const value = valueOf(element, name);
    if (value) {
        out = flowmere::realOf(flowmere::xmlView(value));
    }
    return value != nullptr;
}

bool CTXMLBaseReader::GetUINTAttribute(xercesc::DOMElement* element, wchar_t const* name, unsigned int& out) {
    XMLCh const* const value = valueOf(element, name);
    if (value) {
        out = flowmere::unsignedOf(flowmere::xmlView(value));
    }
    return value != nullptr;
}

bool CTXMLBaseReader::GetBoolAttribute(xercesc::DOMElement* element, wchar_t const* name, bool& out) {
    XMLCh const* const value = valueOf(element, name);
    return value && flowmere::flagOf(flowmere::xmlView(value), out);
}

bool CTXMLBaseReader::GetAttributeColor(xercesc::DOMElement* element, wchar_t const* name, unsigned int& out) {
    XMLCh const* const value = valueOf(element, name);
    if (value) {
        out = flowmere::colorOf(flowmere::xmlView(value));
    }
    return value != nullptr;
}

bool CTXMLBaseReader::GetTextNodeValue(xercesc::DOMElement* element, TuString& out) {
    return flowmere::ownText(element, out);
}

bool CTXMLBaseReader::GetCDataNodeValue(xercesc::DOMElement* element, TuString& out) {
    return flowmere::ownCData(element, out);
}
