#pragma once

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/foundation/TuDate.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlPlatform.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"
#include "support/TreeTestSupport.h"

#include <gtest/gtest.h>
#include <xercesc/dom/DOM.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace flowmere::test {

// --- Trees ---------------------------------------------------------------------------------------------------

// A workflow process without identifier, the root of most trees.
inline Tree newWorkflow(wchar_t const* caption = L"Flow", EProjectType type = EProjectType_TASK) {
    Tree tree(CFCNodeFactory().Create(160));
    tree->SetNodeCaption(caption);
    tree->SetProjectType(type);
    return tree;
}

// A workflow block; its identifier is its task's name, too.
inline CFCBPMTaskNode* addTask(IFCNode* parent, wchar_t const* id, int kind = 150) {
    return dynamic_cast<CFCBPMTaskNode*>(addChild(parent, kind, id));
}

inline CFCApplicationNode* addApplication(IFCNode* parent, wchar_t const* id, int kind = 167) {
    return dynamic_cast<CFCApplicationNode*>(addChild(parent, kind, id));
}

inline TuDate dateOf(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    TuDate date;
    date.setDate(static_cast<short>(year), static_cast<short>(month), static_cast<short>(day), static_cast<short>(hour),
                 static_cast<short>(minute), static_cast<short>(second));
    return date;
}

// --- Written files -------------------------------------------------------------------------------------------

// One element of a file, all texts in UTF-8. Attributes have no order in files.
struct Element {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::string text; // without the white space around it
    std::vector<Element> children;

    bool operator==(Element const&) const = default;

    bool has(std::string const& attribute) const { return attributes.contains(attribute); }
    // Value of an attribute, "(absent)" when it is not there.
    std::string operator[](std::string const& attribute) const {
        auto const found = attributes.find(attribute);
        return found != attributes.end() ? found->second : "(absent)";
    }
    // The direct children of a name.
    std::vector<Element> all(std::string const& child) const {
        std::vector<Element> found;
        for (Element const& element : children) {
            if (element.name == child)
                found.push_back(element);
        }
        return found;
    }
    // The first child of a name, null without one.
    Element const* first(std::string const& child) const {
        for (Element const& element : children) {
            if (element.name == child)
                return &element;
        }
        return nullptr;
    }
    // The only child of a name; throws when there is none or more than one, so that the test fails.
    Element const& only(std::string const& child) const {
        Element const* found = nullptr;
        for (Element const& element : children) {
            if (element.name != child)
                continue;
            if (found != nullptr)
                throw std::runtime_error(name + " holds more than one " + child);
            found = &element;
        }
        if (found == nullptr)
            throw std::runtime_error(name + " holds no " + child);
        return *found;
    }
    // The child whose attribute has a value; throws when there is none.
    Element const& with(std::string const& attribute, std::string const& value) const {
        for (Element const& element : children) {
            if (element[attribute] == value)
                return element;
        }
        throw std::runtime_error(name + " holds nothing with " + attribute + " " + value);
    }
    // Names of the children in file order, joined by blanks.
    std::string outline() const {
        std::string names;
        for (Element const& element : children)
            names += (names.empty() ? "" : " ") + element.name;
        return names;
    }
    // One attribute of each child in file order, joined by blanks.
    std::string values(std::string const& attribute) const {
        std::string found;
        for (Element const& element : children)
            found += (found.empty() ? "" : " ") + element[attribute];
        return found;
    }
};

// The whole element, for the messages of failed expectations.
inline void print(Element const& element, std::ostream& out, int indent = 0) {
    out << '\n' << std::string(static_cast<std::size_t>(indent), ' ') << element.name;
    for (auto const& [name, value] : element.attributes)
        out << ' ' << name << "=\"" << value << '"';
    if (!element.text.empty())
        out << ": " << element.text;
    for (Element const& child : element.children)
        print(child, out, indent + 2);
}
inline void PrintTo(Element const& element, std::ostream* out) {
    print(element, *out);
}

inline std::string trimmed(std::string const& text) {
    std::size_t const start = text.find_first_not_of(" \t\r\n");
    return start == std::string::npos ? std::string()
                                      : text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1);
}

inline Element elementOf(xercesc::DOMElement const* source) {
    Element element;
    element.name = narrow(WideText(source->getTagName()));
    xercesc::DOMNamedNodeMap const* const attributes = source->getAttributes();
    for (XMLSize_t index = 0; index < attributes->getLength(); ++index) {
        xercesc::DOMNode const* const attribute = attributes->item(index);
        element.attributes[narrow(WideText(attribute->getNodeName()))] = narrow(WideText(attribute->getNodeValue()));
    }
    TuString text;
    if (ownText(source, text))
        element.text = trimmed(narrow(text));
    for (xercesc::DOMElement const* child = firstElement(source); child != nullptr; child = nextElement(child))
        element.children.push_back(elementOf(child));
    return element;
}

// The root element of a file; throws when the file cannot be read.
inline Element readElement(std::filesystem::path const& path) {
    XmlDocumentHolder file;
    file.document = parseXmlFile(wide(path));
    if (!file.document)
        throw std::runtime_error("no well-formed file " + path.string());
    return elementOf(file.document->getDocumentElement());
}

// Names of all files below a folder, sorted, joined by blanks.
inline std::string contentsOf(std::filesystem::path const& folder) {
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            names.insert(std::filesystem::relative(entry.path(), folder).generic_string());
    }
    std::string all;
    for (std::string const& name : names)
        all += (all.empty() ? "" : " ") + name;
    return all;
}

// Workflow folders in a scratch folder. The roots of all paths are empty.
class WorkflowTest : public ScratchTest {
protected:
    // A path below the scratch folder as the library is handed it, with backslashes throughout.
    TuString path(std::filesystem::path const& name) const { return wideWithBackslashes(scratch / name); }
    void makeFolder(std::filesystem::path const& name) const { std::filesystem::create_directories(scratch / name); }
    Element read(std::filesystem::path const& name) const { return readElement(scratch / name); }

    EnvironmentGuard environment;
};

} // namespace flowmere::test
