#pragma once

// Trees for tests, and what is found in them.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace flowmere::test {

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};

// A tree and all that hangs on it.
using Tree = std::unique_ptr<IFCNode, TreeEnd>;

// A new child of any kind: first in the chain of its parent, last in a file.
inline IFCNode* addChild(IFCNode* parent, int type, wchar_t const* id, wchar_t const* caption = L"") {
    IFCNode* const node = CFCNodeFactory().Create(type);
    if (node == nullptr)
        throw std::invalid_argument("no class for node type " + std::to_string(type));
    node->SetNodeId(id);
    node->SetNodeCaption(caption);
    parent->AppendChild(node, false);
    return node;
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

} // namespace flowmere::test
