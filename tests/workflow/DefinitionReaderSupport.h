#pragma once

#include "WorkflowTestSupport.h"
#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace flowmere::test {

inline constexpr char kBareVariables[] = "<PROCESS/>";
inline constexpr char kBareLayout[] = "<root-container/>";

// The records of a list in order.
template <typename Record>
std::vector<Record*> recordsOf(CFCNodeList* list) {
    std::vector<Record*> found;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        auto* const record = dynamic_cast<Record*>(list->GetNextNode(position));
        if (record == nullptr)
            throw std::runtime_error("a record of another class");
        found.push_back(record);
    }
    return found;
}

inline std::vector<CFCTransitionData*> transitionsOf(IFCNode* node) {
    return recordsOf<CFCTransitionData>(node->GetBPMBlockData()->GetTransitionList());
}

// The only element of a list; throws when there is none or more than one.
template <typename Value>
Value only(std::vector<Value> const& values) {
    if (values.size() != 1)
        throw std::runtime_error("not one but " + std::to_string(values.size()));
    return values.front();
}

// Kinds and identifiers of the children in file order, "150 A, 154 B".
inline std::string outlineOf(IFCNode* node) {
    std::string all;
    for (IFCNode* const child : childrenOf(node))
        all += (all.empty() ? "" : ", ") + std::to_string(child->GetNodeType()) + " " + narrow(child->GetNodeId());
    return all;
}

// The connectors of a node in list order, "A-B".
inline std::string connectionsOf(IFCNode* node) {
    std::string all;
    for (CFCConnector* const connector : connectorsOf(node))
        all += (all.empty() ? "" : " ") + narrow(connector->GetStartBlockName()) + "-" +
               narrow(connector->GetEndBlockName());
    return all;
}

inline char const* nameOf(CFCWorkflowFinding::Kind kind) {
    static constexpr char const* kNames[] = {
        "ElementPassedOver",
        "AttributePassedOver",
        "TextPassedOver",
        "ValueNotRead",
        "NodeNotMade",
        "NodeWithoutName",
        "NodeWithoutKind",
        "TooManyPoints",
        "TransitionWithoutTarget",
        "TransitionRepeated",
        "TransitionsUnconnected",
        "NestedFolderMissing",
        "NestedFileBroken",
        "FolderCycle",
        "NestingTooDeep",
        "VariablesMissing",
        "VariablesBroken",
        "LayoutMissing",
        "LayoutBroken",
        "ElementLost",
        "ConnectorNotMade",
        "RouteCut",
        "LayoutNodeUnknown",
        "LayoutElementPassedOver",
    };
    return kNames[kind];
}

// A finding in one line: its kind, its place in brackets, the element, name and value as far as it has them.
inline std::string lineOf(CFCWorkflowFinding const& finding) {
    std::string line = std::string(nameOf(finding.kind)) + " [" + narrow(finding.place) + "]";
    if (!finding.element.IsEmpty())
        line += " <" + narrow(finding.element) + ">";
    if (!finding.name.IsEmpty())
        line += " " + narrow(finding.name);
    if (!finding.value.IsEmpty())
        line += " = " + narrow(finding.value);
    return line;
}

inline std::vector<std::string> linesOf(std::vector<CFCWorkflowFinding> const& findings) {
    std::vector<std::string> lines;
    for (CFCWorkflowFinding const& finding : findings)
        lines.push_back(lineOf(finding));
    return lines;
}

// Keeps what it is handed, and owns of it the connectors that no list has taken.
class Container : public CFCBaseContainer {
public:
    ~Container() override {
        for (CFCConnector* const connector : loose)
            delete connector;
    }
    void Attach(IFCNode* node) override { attached.push_back(node); }
    // Takes over the attached connectors that are in no list of this node.
    void keepLoose(IFCNode* parent) {
        std::vector<CFCConnector*> const listed = connectorsOf(parent);
        for (IFCNode* const node : attached) {
            auto* const connector = dynamic_cast<CFCConnector*>(node);
            if (connector != nullptr && std::find(listed.begin(), listed.end(), connector) == listed.end())
                loose.push_back(connector);
        }
    }

    std::vector<IFCNode*> attached;
    std::vector<CFCConnector*> loose;
};

// A factory that makes nothing of some kinds, and counts.
class RefusingFactory : public CFCNodeFactory {
public:
    explicit RefusingFactory(std::set<int> refusedKinds) : refused(std::move(refusedKinds)) {}
    IFCNode* Create(int kind) override {
        ++made[kind];
        return refused.contains(kind) ? nullptr : CFCNodeFactory::Create(kind);
    }

    std::set<int> refused;
    std::map<int, int> made;
};

// Reads folders below the scratch folder, each as its files' texts.
class DefinitionReaderTest : public WorkflowTest {
protected:
    static std::string definition(std::string const& inside, std::string const& attributes = "name=\"Flow\"") {
        return "<process-definition " + attributes + ">" + inside + "</process-definition>";
    }
    // The three files of a folder.
    void writeFolder(std::filesystem::path const& folder, std::string const& inside,
                     std::string const& layout = kBareLayout, std::string const& variables = kBareVariables) {
        scratch.write(folder / "processdefinition.xml", definition(inside));
        scratch.write(folder / "gpd.xml", layout);
        scratch.write(folder / "process.var", variables);
    }
    TuString definitionPath(std::filesystem::path const& folder = "flow") {
        return path(folder / "processdefinition.xml");
    }
    // A new tree of a folder that is complete.
    Tree read(std::filesystem::path const& folder = "flow") {
        reader.SetNodeFactory(factory);
        IFCNode* node = nullptr;
        EXPECT_TRUE(reader.Parse(definitionPath(folder), &node, 16));
        return Tree(node);
    }
    // The tree of a folder with this definition.
    Tree readInside(std::string const& inside) {
        writeFolder("flow", inside);
        return read();
    }
    IFCNode* child(IFCNode* parent, wchar_t const* id) {
        IFCNode* const node = parent->FindNodeSimple(id);
        if (node == nullptr)
            throw std::runtime_error("no child " + narrow(id));
        return node;
    }
    // The record of the only child, "Task".
    CFCBPMBlockData* readTask(std::string const& inside) {
        tree = readInside("<task-node name=\"Task\">" + inside + "</task-node>");
        return child(tree.get(), L"Task")->GetBPMBlockData();
    }
    std::vector<std::string> findings() const { return linesOf(reader.GetFindings()); }

    CFCNodeFactory plainFactory;
    CFCNodeFactory* factory = &plainFactory;
    CFCProcessDefinitionReader reader;
    Tree tree;
};

} // namespace flowmere::test
