#include "flowmere/xml/XmlPlatform.h"

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/xml/XmlText.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLErrorCodes.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/DTD/DTDAttDef.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace flowmere {

namespace {

// Memory of a document. Few large blocks and a high limit for what is taken from them: with the library's own sizes
// every text beyond 4 KiB becomes a block of its own, and a text that grows piece by piece leaves all former ones
// behind. A piece must fit the first block.
constexpr XMLSize_t kFirstBlock = 0x20000;
constexpr XMLSize_t kLargestBlock = 0x100000;
constexpr XMLSize_t kLargestPiece = 0x10000;

// Limits of what a file may make of its bytes. The library itself counts expansions of entities in the content only;
// elsewhere it takes some 160 KB for each of them, so the memory that is taken counts them all. An ordinary document
// takes up to 60 bytes for each of its own.
constexpr XMLSize_t kMaxEntityExpansions = 1000;
constexpr XMLSize_t kBytesPerEntityExpansion = 512; // of a large file, which may have more of them
constexpr XMLSize_t kMaxEntityLength = 0x10000;
// White space that nobody keeps takes no memory, so what may consist of it is kept short.
constexpr XMLSize_t kMaxEntityLengthBesideAttributeLists = 4096;
constexpr XMLSize_t kMaxParameterEntityLength = 8192;
// The library looks names up in tables of a fixed size.
constexpr XMLSize_t kMaxNames = 20000;
constexpr XMLSize_t kMaxAttributes = 10000;
constexpr XMLSize_t kFreeVolume = 0x1000000;
constexpr XMLSize_t kVolumePerByte = 8;
constexpr XMLSize_t kVolumePerAttribute = 16;
constexpr XMLSize_t kFreeMemory = 0x10000000;
constexpr XMLSize_t kMemoryPerByte = 512;

// The file is beyond a limit. Nobody but parse sees it: the library passes it on untouched.
struct LimitExceeded {};

constexpr wchar_t kTooDeep[] = L"its elements are nested deeper than 1024 levels";
static_assert(kMaxElementDepth == 1024);
constexpr wchar_t kTooManyAttributes[] = L"an element has too many attributes";
constexpr wchar_t kTooManyNames[] = L"it has too many different names";
constexpr wchar_t kTooManyExpansions[] = L"it refers to entities too often";
constexpr wchar_t kTooLargeEntity[] = L"an entity is too large";
constexpr wchar_t kTooMuchText[] = L"its document type makes too much of it";
constexpr wchar_t kTooMuchMemory[] = L"it takes too much memory for its size";
constexpr wchar_t kNotReadable[] = L"it cannot be read";
constexpr wchar_t kNotWellFormed[] = L"no well-formed XML";

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

// What the parse that runs on this thread may still take. When nothing is left, the exception comes where it does no
// harm: at the first object that is made for an entity, or at a large block, such as a value that grows. In between the
// library would leave behind what it has just made.
class MemoryAllowance {
public:
    explicit MemoryAllowance(XMLSize_t bytes) : m_bytes(bytes) { s_current = this; }
    ~MemoryAllowance() { s_current = nullptr; }
    MemoryAllowance(MemoryAllowance const&) = delete;
    MemoryAllowance& operator=(MemoryAllowance const&) = delete;

    static void take(XMLSize_t bytes) {
        MemoryAllowance* const allowance = s_current;
        if (!allowance || allowance->m_isExceeded) {
            return; // what clears up behind the exception gets its memory
        }
        allowance->m_taken += bytes;
        if (allowance->m_taken <= allowance->m_bytes) {
            return;
        }
        if (bytes == entityStreamSize() || bytes > kLargeBlock ||
            allowance->m_taken > allowance->m_bytes + kOverdraft) {
            allowance->m_isExceeded = true;
            throw LimitExceeded();
        }
    }
    bool isExceeded() const noexcept { return m_isExceeded; }

private:
    // With the pointer to their memory that objects of the library have in front.
    static XMLSize_t entityStreamSize() {
        return sizeof(xercesc::BinMemInputStream) +
               xercesc::XMLPlatformUtils::alignPointerForNewBlockAllocation(sizeof(xercesc::MemoryManager*));
    }

    static constexpr XMLSize_t kOverdraft = 0x4000000;
    static constexpr XMLSize_t kLargeBlock = 0x100000;
    static thread_local MemoryAllowance* s_current;

    XMLSize_t const m_bytes;
    XMLSize_t m_taken = 0;
    bool m_isExceeded = false;
};

thread_local MemoryAllowance* MemoryAllowance::s_current = nullptr;

// The library's own memory, counted while a file is parsed. Documents keep a pointer to it.
class CountedMemory final : public xercesc::MemoryManager {
public:
    void* allocate(XMLSize_t size) override {
        MemoryAllowance::take(size);
        return xercesc::XMLPlatformUtils::fgMemoryManager->allocate(size);
    }
    void deallocate(void* block) override { xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(block); }
    xercesc::MemoryManager* getExceptionMemoryManager() override {
        return xercesc::XMLPlatformUtils::fgMemoryManager->getExceptionMemoryManager();
    }
};

xercesc::MemoryManager* countedMemory() {
    static Immortal<CountedMemory> memory;
    return &*memory;
}

// How many different names there are, roughly: a few that meet in one place count once.
class NameCount {
public:
    // False when there are too many.
    bool add(XMLCh const* name) {
        std::uint32_t hash = 2166136261U;
        for (; *name != 0; ++name) {
            hash = (hash ^ *name) * 16777619U;
        }
        std::size_t const place = (hash ^ (hash >> 16)) % m_met.size();
        if (!m_met[place]) {
            m_met[place] = true;
            ++m_count;
        }
        return m_count <= kMaxNames;
    }

private:
    std::bitset<0x10000> m_met;
    XMLSize_t m_count = 0;
};

// Bytes that do not stand for a character.
bool isBrokenText(unsigned int code, XMLCh const* domain) {
    return xercesc::XMLString::equals(domain, xercesc::XMLUni::fgExceptDomain) &&
           ((code >= xercesc::XMLExcepts::Trans_Unrepresentable &&
             code <= xercesc::XMLExcepts::Trans_BadTrailingSurrogate) ||
            (code >= xercesc::XMLExcepts::UTF8_FormatError && code <= xercesc::XMLExcepts::UTF8_Exceeds_BytesLimit));
}

// Whether that is what the bytes are meant to be, as far as the document came.
bool isUtf8(std::string_view bytes, xercesc::DOMDocument const* document) {
    static constexpr XMLCh kUtf8[] = u"UTF-8";
    XMLCh const* const encoding = document ? document->getXmlEncoding() : nullptr;
    return bytes.find('\0') == std::string_view::npos &&
           (!encoding || *encoding == 0 || xercesc::XMLString::compareIStringASCII(encoding, kUtf8) == 0);
}

// The first byte that is no UTF-8, and its place. Columns count as those of the parser.
void findBrokenUtf8(std::string_view bytes, XmlError& error) {
    std::wstring const text = fromUtf8(bytes);
    int line = 1;
    int column = 1;
    for (std::size_t at = 0; at < text.size(); ++at) {
        wchar_t const character = text[at];
        if (character >= 0xDC80 && character <= 0xDCFF) {
            error.cause.Format(L"%ls: the byte 0x%02X is no UTF-8", kNotWellFormed,
                               static_cast<unsigned int>(character - 0xDC00));
            error.line = line;
            error.column = column;
            return;
        }
        if (character == L'\r' || character == L'\n') {
            line += character == L'\n' && at > 0 && text[at - 1] == L'\r' ? 0 : 1;
            column = 1;
        } else if (character != 0xFEFF || at > 0) {
            column += character > 0xFFFF ? 2 : 1;
        }
    }
}

class HardenedParser final : public xercesc::XercesDOMParser {
public:
    // The first error goes to `error`, which outlives the parser.
    HardenedParser(XMLSize_t fileSize, Indentation indentation, XmlError& error)
        : XercesDOMParser(nullptr, countedMemory()), m_error(error), m_volume(kFreeVolume + kVolumePerByte * fileSize),
          m_gathersIndentation(indentation == Indentation::Gather) {
        getScanner()->setErrorReporter(this); // which the base does only for a handler of its own kind
    }

    void startElement(xercesc::XMLElementDecl const& element, unsigned int const uri, XMLCh const* const prefix,
                      xercesc::RefVectorOf<xercesc::XMLAttr> const& attributes, XMLSize_t const attributeCount,
                      bool const isEmpty, bool const isRoot) override {
        if (++m_depth > kMaxElementDepth) {
            refuse(kTooDeep);
        }
        if (attributeCount > kMaxAttributes) {
            refuse(kTooManyAttributes);
        }
        if (!m_names.add(element.getFullName())) {
            refuse(kTooManyNames);
        }
        for (XMLSize_t i = 0; i < attributeCount; ++i) {
            if (!m_names.add(attributes.elementAt(i)->getName())) {
                refuse(kTooManyNames);
            }
        }
        if (static_cast<std::size_t>(m_depth) == m_levels.size()) {
            m_levels.emplace_back();
        }
        Level& level = m_levels[static_cast<std::size_t>(m_depth)];
        level.indentation.clear();
        level.hasText = false;
        if (m_hasDoctype) {
            for (XMLSize_t i = 0; i < attributeCount; ++i) {
                xercesc::XMLAttr const& attribute = *attributes.elementAt(i);
                spend(xercesc::XMLString::stringLen(attribute.getValue()));
                if (!attribute.getSpecified()) {
                    // Default values are looked for one by one, so the work for an element grows with the square.
                    spend(kVolumePerAttribute + attributeCount / 2);
                }
            }
        }
        XercesDOMParser::startElement(element, uri, prefix, attributes, attributeCount, isEmpty, isRoot);
    }

    // Also called for an empty element, by the base's startElement.
    void endElement(xercesc::XMLElementDecl const& element, unsigned int const uri, bool const isRoot,
                    XMLCh const* const prefix) override {
        flushIndentation(m_levels[static_cast<std::size_t>(m_depth)]);
        --m_depth;
        XercesDOMParser::endElement(element, uri, isRoot, prefix);
    }

    void docCharacters(XMLCh const* const characters, XMLSize_t const length, bool const isCData) override {
        if (m_hasDoctype) {
            spend(length);
        }
        Level& level = m_levels[static_cast<std::size_t>(m_depth)];
        if (m_gathersIndentation && !level.hasText) {
            if (!isCData && xercesc::XMLChar1_0::isAllSpaces(characters, length)) {
                level.indentation.append(characters, length);
                return;
            }
            level.hasText = true;
            flushIndentation(level);
        }
        XercesDOMParser::docCharacters(characters, length, isCData);
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
            if (length > (isParameter ? kMaxParameterEntityLength : kMaxEntityLength)) {
                refuse(kTooLargeEntity);
            }
            m_longestEntity = std::max(m_longestEntity, length);
            checkAttributeLists();
        }
        XercesDOMParser::entityDecl(entity, isParameter, isIgnored);
    }

    void startAttList(xercesc::DTDElementDecl const& element) override {
        m_hasAttributeLists = true;
        checkAttributeLists();
        XercesDOMParser::startAttList(element);
    }

    void attDef(xercesc::DTDElementDecl const& element, xercesc::DTDAttDef const& attribute,
                bool const isIgnored) override {
        spend(kVolumePerAttribute + xercesc::XMLString::stringLen(attribute.getValue()));
        XercesDOMParser::attDef(element, attribute, isIgnored);
    }

    // The base's own would throw without a handler; the library goes on as if nobody were told.
    void error(unsigned int const code, XMLCh const* const domain, xercesc::XMLErrorReporter::ErrTypes const type,
               XMLCh const* const text, XMLCh const* const, XMLCh const* const, XMLFileLoc const line,
               XMLFileLoc const column) override {
        if (type == xercesc::XMLErrorReporter::ErrType_Warning || !m_error.cause.IsEmpty()) {
            return;
        }
        if (code == xercesc::XMLErrs::EntityExpansionLimitExceeded) {
            m_error.cause = kTooManyExpansions;
        } else {
            assignText(m_error.cause, xmlView(text));
            m_error.cause = TuString(kNotWellFormed) + L": " + m_error.cause;
        }
        // The parser decodes far ahead of what it reads, and names the place where it stands.
        if (isBrokenText(code, domain)) {
            m_hasBrokenText = true;
        } else {
            setPlace(line, column);
        }
    }

    bool hasBrokenText() const noexcept { return m_hasBrokenText; }

private:
    // An open element.
    struct Level {
        std::basic_string<XMLCh> indentation; // white space met so far, while there is no other text
        bool hasText = false;
    };

    void setPlace(XMLFileLoc line, XMLFileLoc column) const {
        constexpr XMLFileLoc kMost = std::numeric_limits<int>::max();
        m_error.line = static_cast<int>(std::min(line, kMost));
        m_error.column = static_cast<int>(std::min(column, kMost));
    }

    [[noreturn]] void refuse(wchar_t const* cause) const {
        if (m_error.cause.IsEmpty()) {
            m_error.cause = cause;
            if (xercesc::Locator const* const place = getScanner()->getLocator()) {
                setPlace(place->getLineNumber(), place->getColumnNumber());
            }
        }
        throw LimitExceeded();
    }

    void spend(XMLSize_t amount) {
        if (amount > m_volume) {
            refuse(kTooMuchText);
        }
        m_volume -= amount;
    }

    void checkAttributeLists() const {
        if (m_hasAttributeLists && m_longestEntity > kMaxEntityLengthBesideAttributeLists) {
            refuse(kTooLargeEntity);
        }
    }

    void flushIndentation(Level& level) {
        if (!level.indentation.empty()) {
            XercesDOMParser::docCharacters(level.indentation.data(), level.indentation.size(), false);
            level.indentation.clear();
        }
    }

    XmlError& m_error;
    int m_depth = 0;
    XMLSize_t m_volume; // characters that may still come
    NameCount m_names;
    XMLSize_t m_longestEntity = 0;
    bool m_hasBrokenText = false; // it is the first error
    bool m_hasDoctype = false;
    bool m_hasAttributeLists = false;
    bool const m_gathersIndentation;
    std::vector<Level> m_levels{1}; // by depth; those of closed elements stay for the next
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

XmlDocumentPointer parseXmlBytes(std::string_view bytes, Indentation indentation, XmlError* error) noexcept {
    XmlError found;
    try {
        MemoryAllowance const allowance(kFreeMemory + kMemoryPerByte * bytes.size());
        xercesc::SecurityManager expansion;
        expansion.setEntityExpansionLimit(std::max(kMaxEntityExpansions, bytes.size() / kBytesPerEntityExpansion));
        try {
            HardenedParser parser(bytes.size(), indentation, found);
            applyParserSettings(parser);
            parser.setSecurityManager(&expansion);
            xercesc::MemBufInputSource source(reinterpret_cast<XMLByte const*>(bytes.empty() ? "" : bytes.data()),
                                              bytes.size(), "file");
            source.setCopyBufToStream(false);
            parser.parse(source);
            if (parser.hasBrokenText() && isUtf8(bytes, parser.getDocument())) {
                findBrokenUtf8(bytes, found);
            }
            // A malformed file throws nothing here and leaves a part of a tree, so the errors decide.
            XmlDocumentPointer document(parser.adoptDocument());
            if (parser.getErrorCount() == 0 && !allowance.isExceeded() && document && document->getDocumentElement()) {
                return document;
            }
        } catch (...) {
            // What was found so far tells why.
        }
        if (error) {
            if (allowance.isExceeded()) {
                found = {kTooMuchMemory, 0, 0};
            } else if (found.cause.IsEmpty()) {
                found.cause = kNotWellFormed;
            }
            *error = found;
        }
    } catch (...) {
        // No memory left to tell it.
    }
    return nullptr;
}

XmlDocumentPointer parseXmlFile(wchar_t const* path, Indentation indentation, XmlError* error) noexcept {
    try {
        std::string bytes;
        if (readFile(path, bytes)) {
            return parseXmlBytes(bytes, indentation, error);
        }
        if (error) {
            *error = {kNotReadable, 0, 0};
        }
    } catch (...) {
        // No memory left to tell it.
    }
    return nullptr;
}

} // namespace flowmere
