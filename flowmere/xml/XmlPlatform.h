#pragma once

#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/XmlForward.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace flowmere {

// Files nested deeper than this count as malformed, and writers go no deeper, for the serialiser recurses.
inline constexpr int kMaxElementDepth = 1024;

// One counted use of the parser library. The first use ever adds one that is never given back: documents and parsers
// must not outlive the library, and bringing it up again costs more than a small file.
class XmlPlatform {
public:
    XmlPlatform();
    ~XmlPlatform();
    XmlPlatform(XmlPlatform const&) = delete;
    XmlPlatform& operator=(XmlPlatform const&) = delete;

    // False when the library refused to come up. Exceptions that are not its own leave the constructor.
    bool isUp() const noexcept { return m_up; }

private:
    bool m_up = false;
};

struct XmlDocumentRelease {
    void operator()(XERCES_CPP_NAMESPACE::DOMDocument* document) const noexcept;
};
using XmlDocumentPointer = std::unique_ptr<XERCES_CPP_NAMESPACE::DOMDocument, XmlDocumentRelease>;

// A document with the use of the library that it needs.
class XmlDocumentHolder {
public:
    XmlPlatform platform; // goes last
    XmlDocumentPointer document;
};

// What becomes of the white space between elements. Half of a document's nodes would be indentation, so one that is
// only read has that of each element gathered in a single text node behind its children. The element's own text, its
// text nodes joined, is the same either way.
enum class Indentation { Gather, Keep };

// Why a parse came to nothing, and where: the first error of the file.
struct XmlError {
    TuString cause;
    int line = 0; // from 1, as the column; both 0 where no place is known
    int column = 0;
};

// Parse with the hardened parser: no external entities, no document type loading, limits on entity expansion, depth,
// text volume, memory and the number of different names; errors are collected and never printed. Null for anything but
// a well-formed document within the limits; `error` is then filled, and otherwise left alone. Nothing is thrown. The
// library must be up.
XmlDocumentPointer parseXmlFile(wchar_t const* path, Indentation indentation = Indentation::Gather,
                                XmlError* error = nullptr) noexcept;
XmlDocumentPointer parseXmlBytes(std::string_view bytes, Indentation indentation = Indentation::Gather,
                                 XmlError* error = nullptr) noexcept;

// The settings of that parser on a plain one, which then lacks the limits on depth, volume and memory, takes no more
// entities for a large file and keeps all white space. The parser keeps pointers to objects that live as long as the
// library.
void applyParserSettings(XERCES_CPP_NAMESPACE::XercesDOMParser& parser);

} // namespace flowmere
