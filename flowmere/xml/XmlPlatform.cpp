#include "flowmere/xml/XmlPlatform.h"

#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Immortal.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/validators/DTD/DTDAttDef.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include <array>
#include <string>

namespace flowmere {

namespace {

// Memory of a document. Few large blocks and a high limit for what is taken from them: with the library's own sizes
// every text beyond 4 KiB becomes a block of its own, and a text that grows piece by piece leaves all former ones
// behind. A piece must fit the first block.
constexpr XMLSize_t kFirstBlock = 0x20000;
constexpr XMLSize_t kLargestBlock = 0x100000;
constexpr XMLSize_t kLargestPiece = 0x10000;

// Limits of what a file may make of its bytes. The library itself counts expansions of entities in the content only.
constexpr XMLSize_t kMaxEntityExpansions = 1000;
constexpr XMLSize_t kMaxEntityLength = 0x10000;
constexpr XMLSize_t kMaxParameterEntityLength = 1024;
constexpr XMLSize_t kMaxAttributes = 10000;
constexpr XMLSize_t kFreeVolume = 0x1000000;
constexpr XMLSize_t kVolumePerByte = 8;
constexpr XMLSize_t kVolumePerAttribute = 16;

// The file is beyond a limit. Nobody but parse sees it: the library passes it on untouched.
struct LimitExceeded {};

// Answers every question for an external entity with nothing, so that nothing outside the file is opened.
class NothingOutside final : public xercesc::XMLEntityResolver {
public:
    xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier*) override {
        static XMLByte const nothing[1] = {0};
        // The parser deletes what it is given.
        return std::make_unique<xercesc::MemBufInputSource>(nothing, 0, "nothing").release();
    }
};

class LimitedExpansion final : public xercesc::SecurityManager {
public:
    LimitedExpansion() { setEntityExpansionLimit(kMaxEntityExpansions); }
};

class HardenedParser final : public xercesc::XercesDOMParser {
public:
    HardenedParser(XMLSize_t fileSize, Indentation indentation)
        : m_volume(kFreeVolume + kVolumePerByte * fileSize), m_dropsIndentation(indentation == Indentation::Drop) {}

    void startElement(xercesc::XMLElementDecl const& element, unsigned int const uri, XMLCh const* const prefix,
                      xercesc::RefVectorOf<xercesc::XMLAttr> const& attributes, XMLSize_t const attributeCount,
                      bool const isEmpty, bool const isRoot) override {
        if (++m_depth > kMaxElementDepth || attributeCount > kMaxAttributes) {
            throw LimitExceeded();
        }
        m_indentation.clear();
        m_hasText[static_cast<std::size_t>(m_depth)] = false;
        m_isLeaf = true;
        if (m_hasDoctype) {
            // Default values are looked for one by one, so the work for an element grows with the square.
            spend(attributeCount * (kVolumePerAttribute + attributeCount / 2));
            for (XMLSize_t i = 0; i < attributeCount; ++i) {
                spend(xercesc::XMLString::stringLen(attributes.elementAt(i)->getValue()));
            }
        }
        XercesDOMParser::startElement(element, uri, prefix, attributes, attributeCount, isEmpty, isRoot);
    }

    // Also called for an empty element, by the base's startElement.
    void endElement(xercesc::XMLElementDecl const& element, unsigned int const uri, bool const isRoot,
                    XMLCh const* const prefix) override {
        if (m_isLeaf) {
            flushWhiteSpace();
        }
        m_indentation.clear();
        m_isLeaf = false;
        --m_depth;
        XercesDOMParser::endElement(element, uri, isRoot, prefix);
    }

    void docCharacters(XMLCh const* const characters, XMLSize_t const length, bool const isCData) override {
        if (m_hasDoctype) {
            spend(length);
        }
        if (!m_dropsIndentation) {
            XercesDOMParser::docCharacters(characters, length, isCData);
            return;
        }
        bool& hasText = m_hasText[static_cast<std::size_t>(m_depth)];
        if (!hasText) {
            if (!isCData && xercesc::XMLChar1_0::isAllSpaces(characters, length)) {
                m_indentation.append(characters, length);
                return;
            }
            hasText = true;
            flushWhiteSpace();
        }
        XercesDOMParser::docCharacters(characters, length, isCData);
    }

    void docComment(XMLCh const* const text) override {
        flushWhiteSpace();
        XercesDOMParser::docComment(text);
    }

    void docPI(XMLCh const* const target, XMLCh const* const data) override {
        flushWhiteSpace();
        XercesDOMParser::docPI(target, data);
    }

    // Without a document type a file holds no more than its own bytes, and the volume needs no counting.
    void doctypeDecl(xercesc::DTDElementDecl const& element, XMLCh const* const publicId, XMLCh const* const systemId,
                     bool const hasInternalSubset, bool const hasExternalSubset) override {
        m_hasDoctype = true;
        XercesDOMParser::doctypeDecl(element, publicId, systemId, hasInternalSubset, hasExternalSubset);
    }

    void entityDecl(xercesc::DTDEntityDecl const& entity, bool const isParameter, bool const isIgnored) override {
        if (XMLCh const* const value = entity.getValue()) {
            XMLSize_t const length = xercesc::XMLString::stringLen(value);
            // One that expands others doubles the work with each step, and nobody counts the steps.
            if (isParameter && (length > kMaxParameterEntityLength || contains(value, u'%'))) {
                throw LimitExceeded();
            }
            if (length > kMaxEntityLength) {
                throw LimitExceeded();
            }
            m_hasNestedEntities = m_hasNestedEntities || (!isParameter && contains(value, u'&'));
        }
        XercesDOMParser::entityDecl(entity, isParameter, isIgnored);
    }

    // Default values of attributes expand entities without a limit, so they may use none that expand others.
    void startAttList(xercesc::DTDElementDecl const& element) override {
        if (m_hasNestedEntities) {
            throw LimitExceeded();
        }
        XercesDOMParser::startAttList(element);
    }

    void attDef(xercesc::DTDElementDecl const& element, xercesc::DTDAttDef const& attribute,
                bool const isIgnored) override {
        spend(kVolumePerAttribute + xercesc::XMLString::stringLen(attribute.getValue()));
        XercesDOMParser::attDef(element, attribute, isIgnored);
    }

private:
    static bool contains(XMLCh const* text, char16_t c) {
        return xercesc::XMLString::indexOf(text, static_cast<XMLCh>(c)) != -1;
    }

    void spend(XMLSize_t amount) {
        if (amount > m_volume) {
            throw LimitExceeded();
        }
        m_volume -= amount;
    }

    // White space that is waiting turned out to be content.
    void flushWhiteSpace() {
        if (!m_indentation.empty()) {
            XercesDOMParser::docCharacters(m_indentation.data(), m_indentation.size(), false);
            m_indentation.clear();
        }
    }

    int m_depth = 0;
    XMLSize_t m_volume; // characters that may still come
    bool m_hasDoctype = false;
    bool m_hasNestedEntities = false;

    bool const m_dropsIndentation;
    std::basic_string<XMLCh> m_indentation;             // white space since the last tag
    std::array<bool, kMaxElementDepth + 1> m_hasText{}; // the open element at each depth has text of its own
    bool m_isLeaf = false;                              // the last tag was a start
};

// The use that is never given back.
void bringUpForGood() {
    static bool const done = [] {
        xercesc::XMLPlatformUtils::Initialize(kFirstBlock, kLargestBlock, kLargestPiece);
        return true;
    }();
    static_cast<void>(done);
}

} // namespace

XmlPlatform::XmlPlatform() {
    try {
        bringUpForGood();
        xercesc::XMLPlatformUtils::Initialize();
        m_up = true;
    } catch (xercesc::XMLException const&) {
        m_up = false;
    }
}

XmlPlatform::~XmlPlatform() {
    if (m_up) {
        xercesc::XMLPlatformUtils::Terminate();
    }
}

void XmlDocumentRelease::operator()(xercesc::DOMDocument* document) const noexcept {
    document->release();
}

void applyParserSettings(xercesc::XercesDOMParser& parser) {
    static Immortal<NothingOutside> nothingOutside;
    static Immortal<LimitedExpansion> limitedExpansion;
    parser.setValidationScheme(xercesc::XercesDOMParser::Val_Never);
    parser.setDoNamespaces(false);
    parser.setDoSchema(false);
    parser.setLoadSchema(false);
    parser.setLoadExternalDTD(false);
    parser.setDisableDefaultEntityResolution(true);
    parser.setXMLEntityResolver(&*nothingOutside);
    parser.setSecurityManager(&*limitedExpansion);
    parser.setCreateEntityReferenceNodes(false);
    parser.setExitOnFirstFatalError(true);
}

XmlDocumentPointer parseXmlBytes(std::string_view bytes, Indentation indentation) noexcept {
    try {
        HardenedParser parser(bytes.size(), indentation);
        applyParserSettings(parser);
        xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(bytes.empty() ? "" : bytes.data()),
                                          bytes.size(), "file");
        source.setCopyBufToStream(false);
        parser.parse(source);
        // A malformed file throws nothing here and leaves a part of a tree, so the errors decide.
        XmlDocumentPointer document(parser.adoptDocument());
        if (parser.getErrorCount() != 0 || !document || !document->getDocumentElement()) {
            return nullptr;
        }
        return document;
    } catch (...) {
        return nullptr;
    }
}

XmlDocumentPointer parseXmlFile(wchar_t const* path, Indentation indentation) noexcept {
    try {
        std::string bytes;
        return readFile(path, bytes) ? parseXmlBytes(bytes, indentation) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

} // namespace flowmere
