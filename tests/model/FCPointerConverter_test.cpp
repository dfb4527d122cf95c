#include "flowmere/model/FCPointerConverter.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "model/PlainNodes.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using flowmere::test::BareNode;

struct Destroy {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
using NodePtr = std::unique_ptr<IFCNode, Destroy>;

NodePtr make(int code) {
    return NodePtr(CFCNodeFactory().Create(code));
}

TEST(CFCPointerConverter, MapsNullToNull) {
    EXPECT_EQ(CFCPointerConverter::GetBlockNode(nullptr), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetProcessNode(nullptr), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetBPMProcessNode(nullptr), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetConnector(nullptr), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetNode(nullptr), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetNodeFromBlockData(nullptr), nullptr);
}

TEST(CFCPointerConverter, ChecksTheClassNotTheCode) {
    struct Row {
        int code;
        bool block;
        bool process;
        bool workflowProcess;
        bool connector;
    };
    Row const rows[] = {
        {57, true, false, false, false},  {61, true, false, false, false},  {56, true, true, false, false},
        {150, true, false, false, false}, {160, true, true, true, false},   {68, false, false, false, true},
        {72, false, false, false, false}, {71, false, false, false, false}, {177, false, false, false, false},
    };
    for (Row const& row : rows) {
        NodePtr const node = make(row.code);
        for (int const type : {row.code, 57, 160, 68}) {
            node->SetNodeType(type);
            EXPECT_EQ(static_cast<IFCNode*>(CFCPointerConverter::GetBlockNode(node.get())),
                      row.block ? node.get() : nullptr)
                << row.code;
            EXPECT_EQ(static_cast<IFCNode*>(CFCPointerConverter::GetProcessNode(node.get())),
                      row.process ? node.get() : nullptr)
                << row.code;
            EXPECT_EQ(static_cast<IFCNode*>(CFCPointerConverter::GetBPMProcessNode(node.get())),
                      row.workflowProcess ? node.get() : nullptr)
                << row.code;
            EXPECT_EQ(static_cast<IFCNode*>(CFCPointerConverter::GetConnector(node.get())),
                      row.connector ? node.get() : nullptr)
                << row.code;
        }
        node->SetNodeType(row.code);
    }
}

TEST(CFCPointerConverter, NodesOfTheHostAreNoBlocks) {
    BareNode node;
    EXPECT_EQ(CFCPointerConverter::GetBlockNode(&node), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetProcessNode(&node), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetBPMProcessNode(&node), nullptr);
    EXPECT_EQ(CFCPointerConverter::GetConnector(&node), nullptr);
}

TEST(CFCPointerConverter, VariableIsANode) {
    NodePtr const node = make(72);
    CFCVariableData* const variable = node->GetVariableData();
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(CFCPointerConverter::GetNode(variable), node.get());
    // It is the same object, not a look into the handle table.
    node->SetNodeHandle(0);
    EXPECT_EQ(CFCPointerConverter::GetNode(variable), node.get());
}

TEST(CFCPointerConverter, BlockDataLeadsBackToItsNode) {
    for (int const code : {57, 61, 56, 150, 160}) {
        NodePtr const node = make(code);
        CFCBlockData* const data = node->GetFCBlockData();
        ASSERT_NE(data, nullptr) << code;
        EXPECT_EQ(CFCPointerConverter::GetNodeFromBlockData(data), node.get()) << code;
    }
}

TEST(CFCPointerConverter, BlockDataThatStandsAloneHasNoNode) {
    CFCBlockData data;
    EXPECT_EQ(CFCPointerConverter::GetNodeFromBlockData(&data), nullptr);
}

} // namespace
