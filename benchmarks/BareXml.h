#pragma once

#include "flowmere/xml/XmlPlatform.h"

#include <benchmark/benchmark.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/LocalFileFormatTarget.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

// The work of the parser library alone on a file of ours: the bare side of a measurement.

// Parses the file and drops the document.
inline void parseBare(std::filesystem::path const& path) {
    xercesc::XercesDOMParser parser;
    flowmere::applyParserSettings(parser);
    parser.parse(path.c_str());
    benchmark::DoNotOptimize(parser.getDocument());
}

// A document as the calls that build it. All texts are at hand as the library takes them.
class Recipe {
public:
    explicit Recipe(std::filesystem::path const& path) {
        xercesc::XercesDOMParser parser;
        flowmere::applyParserSettings(parser);
        parser.parse(path.c_str());
        add(parser.getDocument()->getDocumentElement(), 0);
    }

    void writeTo(std::filesystem::path const& path) const {
        static constexpr XMLCh const* kFeature = u"LS";
        xercesc::DOMImplementation* const dom = xercesc::DOMImplementationRegistry::getDOMImplementation(kFeature);
        xercesc::DOMDocument* const document = dom->createDocument(nullptr, m_steps.front().name.c_str(), nullptr);
        std::vector<xercesc::DOMElement*> open{document->getDocumentElement()};
        setAttributes(open.front(), m_steps.front());
        for (std::size_t index = 1; index < m_steps.size(); ++index) {
            Step const& step = m_steps[index];
            xercesc::DOMElement* const element = document->createElement(step.name.c_str());
            open.resize(step.depth);
            open.back()->appendChild(element);
            setAttributes(element, step);
            if (!step.text.empty())
                element->appendChild(document->createTextNode(step.text.c_str()));
            open.push_back(element);
        }
        xercesc::DOMLSSerializer* const serializer = dom->createLSSerializer();
        xercesc::DOMLSOutput* const output = dom->createLSOutput();
        serializer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
        {
            xercesc::LocalFileFormatTarget target(path.c_str());
            output->setByteStream(&target);
            serializer->write(document, output);
        }
        serializer->release();
        output->release();
        document->release();
    }

private:
    using Text = std::basic_string<XMLCh>;
    struct Step {
        std::size_t depth;
        Text name;
        std::vector<std::pair<Text, Text>> attributes;
        Text text;
    };

    static void setAttributes(xercesc::DOMElement* element, Step const& step) {
        for (auto const& [name, value] : step.attributes)
            element->setAttribute(name.c_str(), value.c_str());
    }

    void add(xercesc::DOMElement* element, std::size_t depth) {
        Step step{depth, element->getTagName(), {}, {}};
        xercesc::DOMNamedNodeMap const* const attributes = element->getAttributes();
        for (XMLSize_t index = 0; index < attributes->getLength(); ++index) {
            xercesc::DOMNode const* const attribute = attributes->item(index);
            step.attributes.emplace_back(attribute->getNodeName(), attribute->getNodeValue());
        }
        if (element->getFirstElementChild() == nullptr && element->getFirstChild() != nullptr)
            step.text = element->getFirstChild()->getNodeValue();
        m_steps.push_back(std::move(step));
        for (xercesc::DOMElement* child = element->getFirstElementChild(); child != nullptr;
             child = child->getNextElementSibling())
            add(child, depth + 1);
    }

    std::vector<Step> m_steps;
};

inline bool areEqual(std::filesystem::path const& left, std::filesystem::path const& right) {
    std::ifstream first(left, std::ios::binary);
    std::ifstream second(right, std::ios::binary);
    return std::equal(std::istreambuf_iterator<char>(first), std::istreambuf_iterator<char>(),
                      std::istreambuf_iterator<char>(second), std::istreambuf_iterator<char>());
}
