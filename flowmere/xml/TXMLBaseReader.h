#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLFilerUseful.h"
#include "flowmere/xml/XmlForward.h"

#include <memory>

namespace flowmere {
class XmlDocumentHolder;
struct XmlError;
} // namespace flowmere

// Parses an XML file into a document and pulls typed values out of its elements.
//
// The rule of every reader: an attribute that is absent leaves `out` untouched and gives false, so callers set their
// defaults first and ignore the result. An attribute that is present overrides the default, also with the empty text;
// a text that is no number reads as 0. A null element or name counts as absent.
class FLOWMERE_API CTXMLBaseReader : public CTXMLFilerUseful {
public:
    CTXMLBaseReader();
    // A copy shares the parsed document, which lives as long as the last reader that holds it.
    CTXMLBaseReader(CTXMLBaseReader const& other);
    CTXMLBaseReader& operator=(CTXMLBaseReader const& other);
    virtual ~CTXMLBaseReader();

    // Parses the file and keeps its document until the reader is destroyed or initialised again; the parser library
    // stays up for as long. False for a null or empty path, for what is no readable file, and for anything but
    // well-formed XML within the limits of the hardened parser; the reader then holds no document. Nothing is printed.
    bool Initialize(wchar_t const* path);

    // Parses the file into a document that the caller owns and frees by its release(). On false `out` is untouched.
    bool InitXML(wchar_t const* path, XERCES_CPP_NAMESPACE::DOMDocument** out);

    // Why the last Initialize or InitXML gave false: the first error of the file in words, with its line and column,
    // which count from 1; a character beyond U+FFFF counts as two columns. Where no place is known, as for a file that
    // cannot be opened, line and column are 0. All three are empty before the first call and behind one that gave true.
    // The text stays until the next call.
    wchar_t const* GetErrorText() const { return m_strErrorText; }
    int GetErrorLine() const { return m_nErrorLine; }
    int GetErrorColumn() const { return m_nErrorColumn; }

    // Finds the direct child element of that name: the first with a negative index, else the one with that many equal
    // ones before it. A null parent looks at the root element of the reader's document. On false `out` is untouched;
    // a null `out` only asks.
    bool GetElement(TuString const& name, XERCES_CPP_NAMESPACE::DOMElement* parent,
                    XERCES_CPP_NAMESPACE::DOMElement** out, int index);

    // The attribute as it stands.
    bool GetAttribute(XERCES_CPP_NAMESPACE::DOMElement* element, wchar_t const* name, TuString& out);
    // Decimal integer, cut to the limits of the type.
    bool GetAttribute(XERCES_CPP_NAMESPACE::DOMElement* element, wchar_t const* name, int& out);
    // Unsigned decimal integer; negative numbers down to the lowest int give their 32 bits.
    bool GetUINTAttribute(XERCES_CPP_NAMESPACE::DOMElement* element, wchar_t const* name, unsigned int& out);
    // "true", "false", "Y", "N", "Yes", "No", "1" or "0" in any letter case; any other text, the empty one too, leaves
    // `out` untouched and gives false.
    bool GetBoolAttribute(XERCES_CPP_NAMESPACE::DOMElement* element, wchar_t const* name, bool& out);
    // Colour of 32 bits: decimal, or hexadecimal behind "0x" or "#".
    bool GetAttributeColor(XERCES_CPP_NAMESPACE::DOMElement* element, wchar_t const* name, unsigned int& out);

    // The element's own text: its text and CDATA children joined, texts of inner elements left out. Without such a
    // child `out` is untouched and the result false.
    bool GetTextNodeValue(XERCES_CPP_NAMESPACE::DOMElement* element, TuString& out);
    // The element's CDATA sections joined; without one `out` is untouched and the result false.
    bool GetCDataNodeValue(XERCES_CPP_NAMESPACE::DOMElement* element, TuString& out);

protected:
    // Decimal number with a point, whatever the locale.
    bool GetAttribute(XERCES_CPP_NAMESPACE::DOMElement* element, wchar_t const* name, double& out);

    // The document of the last successful Initialize, else null. Not to be released by subclasses.
    XERCES_CPP_NAMESPACE::DOMDocument* m_pDocument = nullptr;

private:
    void keepError(flowmere::XmlError const& error);

    TuString m_strErrorText;
    int m_nErrorLine = 0;
    int m_nErrorColumn = 0;
    std::shared_ptr<flowmere::XmlDocumentHolder> m_pHolder; // owns the document and one use of the parser library
};
