#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/XmlForward.h"

class TuDate;

// Creates elements and puts typed values on them. Every operation takes a null target, a bad name or a null text
// (read as the empty text) without harm; the results only tell whether something was stored.
//
// Texts lose what XML cannot hold: control characters other than tab, line feed and carriage return are dropped, lone
// surrogates become U+FFFD. Numbers never depend on the locale.
class FLOWMERE_API CTXMLBaseWriter {
public:
    CTXMLBaseWriter();
    CTXMLBaseWriter(CTXMLBaseWriter const& other);
    CTXMLBaseWriter& operator=(CTXMLBaseWriter const& other);
    virtual ~CTXMLBaseWriter();

    // Creates an element in the parent's document and appends it as the parent's last child. Null on failure.
    static XERCES_CPP_NAMESPACE::DOMElement* CreateElement(XERCES_CPP_NAMESPACE::DOMNode* parent, wchar_t const* name);

    static bool SetAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, TuString& value);
    static bool SetAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, int value);
    static bool SetAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, long value);
    // The shortest decimal text that reads back as the same number.
    static bool SetAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, double value);
    // Day, month and year without padding, joined by slashes; the empty text for the empty date.
    static bool SetAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, TuDate value);
    // Text from a plain pointer, for constants.
    static bool SetSimpleAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, wchar_t const* value);
    // "true" or "false".
    static bool SetBoolAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, bool value);
    // A text would silently become the flag true.
    static bool SetBoolAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name,
                                 wchar_t const* value) = delete;
    // "Y" or "N".
    static bool SetBoolAttributeYN(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, bool value);
    static bool SetBoolAttributeYN(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name,
                                   wchar_t const* value) = delete;
    static bool SetUINTAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, unsigned int value);
    // A colour of 32 bits, as an unsigned decimal number.
    static bool SetColorAttribute(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* name, unsigned int& value);

    // Append a text child.
    static bool SetTextNodeValue(XERCES_CPP_NAMESPACE::DOMNode* node, TuString& value);
    static bool SetSimpleTextNodeValue(XERCES_CPP_NAMESPACE::DOMNode* node, wchar_t const* value);
    // Appends a CDATA section.
    static bool SetCDatatNodeValue(XERCES_CPP_NAMESPACE::DOMNode* node, TuString& value);
};
