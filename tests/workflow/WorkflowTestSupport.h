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

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};

// A tree and all that hangs on it.
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

// A workflow process without identifier, the root of most trees.
inline Tree newWorkflow(wchar_t const* caption = L"Flow", EProjectType type = EProjectType_TASK) {
    Tree tree(CFCNodeFactory().Create(160));
    tree->SetNodeCaption(caption);
    tree->SetProjectType(type);
    return tree;
}

// A node of any kind, as the newest child of the parent: first in the chain, last in a file.
inline IFCNode* addNode(IFCNode* parent, int kind, wchar_t const* id, wchar_t const* caption = L"") {
    IFCNode* const node = CFCNodeFactory().Create(kind);
    if (node == nullptr)
        throw std::invalid_argument("no class for node type " + std::to_string(kind));
    node->SetNodeId(id);
    node->SetNodeCaption(caption);
    parent->AppendChild(node, false);
    return node;
}

// A workflow block; its identifier is its task's name, too.
inline CFCBPMTaskNode* addTask(IFCNode* parent, wchar_t const* id, int kind = 150) {
    return dynamic_cast<CFCBPMTaskNode*>(addNode(parent, kind, id));
}

inline CFCApplicationNode* addApplication(IFCNode* parent, wchar_t const* id, int kind = 167) {
    return dynamic_cast<CFCApplicationNode*>(addNode(parent, kind, id));
}

inline CFCVariableData* addVariable(IFCNode* owner, wchar_t const* name, wchar_t const* value = L"") {
    CFCVariableData* const variable = owner->CreateNewVariable();
    variable->SetVariableName(name);
    variable->SetCaption(name);
    variable->SetValue(value);
    return variable;
}

// A connector with a route, as a host's drawing has it.
class RoutedConnector : public CFCConnector {
public:
    int GetPointCount() override { return count.value_or(static_cast<int>(points.size())); }
    _TgPointLStr* GetPoints() override { return hidePoints ? nullptr : points.data(); }
    _TgPointLStr* GetStartPoint() override { return hasStart ? &start : nullptr; }
    _TgPointLStr* GetEndPoint() override { return hasEnd ? &end : nullptr; }
    _TgPointLStr* GetPointAt(int number) override { return &points[static_cast<std::size_t>(number)]; }
    void AddPoint(int x, int y) override { points.push_back({x, y}); }
    void AddPoint(_TgPointLStr* point) override { points.push_back(*point); }

    std::vector<_TgPointLStr> points;
    _TgPointLStr start{};
    _TgPointLStr end{};
    bool hasStart = false;
    bool hasEnd = false;
    bool hidePoints = false;
    std::optional<int> count; // what GetPointCount claims instead of the number of points
};

// A factory whose connectors keep their routes.
class RoutingFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int type) override {
        if (type != 68)
            return CFCNodeFactory::Create(type);
        auto connector = std::make_unique<RoutedConnector>();
        connector->SetNodeType(68);
        return connector.release();
    }
};

// Joins two blocks of a container; the container's list holds the connector.
template <typename Connector = CFCConnector>
Connector* connect(IFCNode* container, CFCBlockNode* start, CFCBlockNode* end, int startHandle = 6, int endHandle = 2) {
    auto connector = std::make_unique<Connector>();
    connector->SetNodeType(68);
    connector->SetStartNode(startHandle, start, L"");
    connector->SetEndNode(endHandle, end, L"");
    container->AddConnector(connector.get());
    return connector.release();
}

inline std::vector<CFCConnector*> connectorsOf(IFCNode* node) {
    std::vector<CFCConnector*> found;
    if (CFCConnectorList* const list = node->GetConnectorList()) {
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
            found.push_back(list->GetNext(position));
    }
    return found;
}

inline std::vector<CFCVariableData*> variablesOf(IFCNode* node) {
    std::vector<CFCVariableData*> found;
    if (CFCVariableList* const list = node->GetVariableList()) {
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
            found.push_back(list->GetNext(position));
    }
    return found;
}

// The children of a node from the oldest to the newest, without the two that every process brings along.
inline std::vector<IFCNode*> childrenOf(IFCNode* node) {
    std::vector<IFCNode*> found;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext()) {
        if (child->GetNodeType() != 176 && child->GetNodeType() != 178)
            found.insert(found.begin(), child);
    }
    return found;
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
