#include "flowmere/xml/XmlFile.h"

#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/XmlPlatform.h"
#include "flowmere/xml/XmlText.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <cstdio>
#include <cstring>
#include <memory>

namespace flowmere {

namespace {

constexpr XmlName kSerializerFeature = u"LS";
constexpr XmlName kXmlns = u"xmlns";
constexpr XmlName kSchemaInstance = u"http://www.w3.org/2001/XMLSchema-instance";

struct Release {
    template <typename Object>
    void operator()(Object* object) const noexcept {
        object->release();
    }
};

// The bytes of the serialiser on their way to a file. Nobody asks what became of them, so failures are dropped here.
class FileTarget final : public xercesc::XMLFormatTarget {
public:
    explicit FileTarget(wchar_t const* path)
        : m_buffer(std::make_unique_for_overwrite<char[]>(kSize)), m_file(openFile(path, "wb")) {}
    ~FileTarget() override {
        write();
        if (m_file) {
            std::fclose(m_file);
        }
    }
    FileTarget(FileTarget const&) = delete;
    FileTarget& operator=(FileTarget const&) = delete;

    bool isOpen() const noexcept { return m_file != nullptr; }

    void writeChars(XMLByte const* const bytes, XMLSize_t const count, xercesc::XMLFormatter* const) override {
        if (count > kSize - m_used) {
            write();
        }
        if (count > kSize) {
            std::fwrite(bytes, 1, count, m_file);
            return;
        }
        std::memcpy(m_buffer.get() + m_used, bytes, count);
        m_used += count;
    }

private:
    static constexpr XMLSize_t kSize = 0x10000;

    void write() noexcept {
        if (m_used != 0) {
            std::fwrite(m_buffer.get(), 1, m_used, m_file);
            m_used = 0;
        }
    }

    std::unique_ptr<char[]> m_buffer; // may fail, so it comes before the file
    std::FILE* m_file;
    XMLSize_t m_used = 0;
};

xercesc::DOMImplementation* implementation() {
    return xercesc::DOMImplementationRegistry::getDOMImplementation(kSerializerFeature.dom());
}

} // namespace

bool serializeXmlFile(xercesc::DOMDocument* document, wchar_t const* path) noexcept {
    try {
        xercesc::DOMImplementation* const dom = implementation();
        if (!dom || !document) {
            return false;
        }
        std::unique_ptr<xercesc::DOMLSSerializer, Release> const serializer(dom->createLSSerializer());
        if (!serializer) {
            return false;
        }
        std::unique_ptr<xercesc::DOMLSOutput, Release> const output(dom->createLSOutput());
        output->setEncoding(nullptr);
        xercesc::DOMConfiguration* const configuration = serializer->getDomConfig();
        if (configuration->canSetParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true)) {
            configuration->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
        }
        FileTarget target(path);
        if (target.isOpen()) {
            output->setByteStream(&target);
            serializer->write(document, output.get());
        }
    } catch (...) {
        // What was written so far stays in the file.
    }
    return true;
}

bool writeXmlFile(wchar_t const* path, std::wstring_view rootName,
                  std::function<void(xercesc::DOMElement*)> const& fill) {
    XmlPlatform const platform;
    if (!platform.isUp()) {
        return false;
    }
    xercesc::DOMImplementation* const dom = implementation();
    if (!dom) {
        return false;
    }
    try {
        XmlDocumentPointer const document(dom->createDocument(nullptr, DomText(rootName).text(), nullptr));
        xercesc::DOMElement* const root = document->getDocumentElement();
        root->setAttribute(kXmlns.dom(), kSchemaInstance.dom());
        fill(root);
        return serializeXmlFile(document.get(), path);
    } catch (...) {
        return true;
    }
}

void formatXmlFile(wchar_t const* path) {
    if (!path || !*path) {
        return;
    }
    try {
        XmlDocumentHolder source;
        if (source.platform.isUp()) {
            source.document = parseXmlFile(path, Indentation::Keep);
        }
        if (!source.document) {
            return;
        }
        TuString target(path);
        target.Replace(L".xml", L".for");
        serializeXmlFile(source.document.get(), target);
    } catch (...) {
        // As in every write, nobody is told.
    }
}

} // namespace flowmere
