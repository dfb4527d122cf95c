#pragma once

// What the tests of the variables of a workflow share.

#include "WorkflowTestSupport.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/workflow/FCProcessVarWriter.h"

#include <memory>
#include <string>
#include <vector>

namespace flowmere::test {

// The tags of a tree in file order, each with its depth in front.
inline std::string outlineOf(Element const& element, int depth = 0) {
    std::string outline = std::to_string(depth) + element.name + ' ';
    for (Element const& child : element.children)
        outline += outlineOf(child, depth + 1);
    return outline;
}

// All elements of a name at any depth, in file order.
inline std::vector<Element> everyOne(Element const& element, std::string const& name) {
    std::vector<Element> found;
    if (element.name == name)
        found.push_back(element);
    for (Element const& child : element.children)
        for (Element& inner : everyOne(child, name))
            found.push_back(std::move(inner));
    return found;
}

inline Element theOnly(Element const& element, std::string const& name) {
    std::vector<Element> const found = everyOne(element, name);
    if (found.size() != 1)
        throw std::runtime_error(std::to_string(found.size()) + " times " + name);
    return found.front();
}

// The variables of a name at any depth.
inline std::vector<Element> variablesIn(Element const& file, std::string const& name) {
    std::vector<Element> found;
    for (Element& variable : everyOne(file, "VARIABLE")) {
        if (variable["Name"] == name)
            found.push_back(std::move(variable));
    }
    return found;
}

inline Tree makeRoot(int kind = 160, wchar_t const* id = L"Main") {
    Tree root(CFCNodeFactory().Create(kind));
    root->SetNodeType(kind);
    root->SetNodeId(id);
    return root;
}

// A variable that has no catalog nodes.
inline CFCVariableData* addBareVariable(IFCNode* owner, char const* name, int dataType) {
    auto variable = std::make_unique<CFCVariableData>(name, dataType, 0, 0);
    variable->SetNodeType(72);
    variable->SetParentNode(owner);
    owner->GetVariableList()->AddTail(variable.get());
    return variable.release();
}

// Files of variables in a scratch folder.
class VariableFileTest : public WorkflowTest {
protected:
    Element written(IFCNode* node) {
        CFCProcessVarWriter writer;
        return writtenBy(writer, node);
    }
    Element writtenBy(CFCProcessVarWriter& writer, IFCNode* node, bool recursive = true) {
        EXPECT_TRUE(writer.WriteFile(path("process.var"), node, recursive));
        return read("process.var");
    }
    // An attribute of the only variable of that name.
    static std::string attribute(Element const& file, std::string const& variable, std::string const& name) {
        std::vector<Element> const found = variablesIn(file, variable);
        return found.size() == 1 ? found.front()[name] : std::to_string(found.size()) + " variables";
    }
};

} // namespace flowmere::test
