#pragma once

#include "TestSupport.h"
#include "flowmere/xml/TXMLBaseReader.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlFile.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <functional>
#include <string>
#include <string_view>

namespace flowmere::test {

// A reader as subclasses see it.
class OpenReader : public CTXMLBaseReader {
public:
    using CTXMLBaseReader::GetAttribute;
    xercesc::DOMDocument* document() { return m_pDocument; }
    xercesc::DOMElement* root() { return m_pDocument ? m_pDocument->getDocumentElement() : nullptr; }
};

// A reader on a document given as text.
class TextReader : public OpenReader {
public:
    explicit TextReader(std::string_view text) {
        ScratchFolder const folder;
        folder.write("document.xml", text);
        opened = Initialize(folder.text("document.xml"));
    }
    bool opened = false;
};

// What a file holds that was written with a root "Root" filled by `fill`.
inline std::string written(std::function<void(xercesc::DOMElement*)> const& fill) {
    ScratchFolder const folder;
    EXPECT_TRUE(writeXmlFile(folder.text("out.xml"), L"Root", fill));
    return folder.read("out.xml");
}

// The same, read again.
class WrittenReader : public TextReader {
public:
    explicit WrittenReader(std::function<void(xercesc::DOMElement*)> const& fill) : TextReader(written(fill)) {}
};

// Text of `count` repetitions.
inline std::string repeat(std::string_view text, int count) {
    std::string all;
    all.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

} // namespace flowmere::test
