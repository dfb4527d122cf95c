#include "flowmere/model/FCBlockNode.h"

#include "EnvironmentGuard.h"
#include "TestSupport.h"
#include "model/FlowTree.h"

#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"

#include <limits>
#include <string>

using namespace flowmere::test;

namespace {

CFCVariableData* addVariable(CFCBlockNode* block, wchar_t const* name) {
    CFCVariableData* const variable = block->CreateNewVariable();
    variable->SetVariableName(name);
    return variable;
}

} // namespace

// A block as a node

TEST(FCBlockNode, HasItsDefaults) {
    CFCBlockNode block;
    EXPECT_EQ(nullptr, block.getPreviouslyExecutedBlock());
    EXPECT_EQ(0, block.blockKind);
    EXPECT_EQ(nullptr, block.GetFirstConnectedBlock());
    EXPECT_EQ(nullptr, block.GetNextConnectedBlock());
    EXPECT_EQ(nullptr, block.GetNextConnectedBlockSimple());
    EXPECT_FALSE(block.IsMacroNode());
    EXPECT_FALSE(block.Save());
    block.Create();
}

TEST(FCBlockNode, KeepsTheNumberOfItsConstructor) {
    CFCBlockNode block(58);
    EXPECT_EQ(58, block.blockKind);
    EXPECT_EQ(0, block.GetNodeType());
}

TEST(FCBlockNode, DrawsFiveHandlesItsOwnFirst) {
    CFCBlockNode block;
    CFCBlockNode next;
    EXPECT_EQ(block.GetNodeHandle() + 5, next.GetNodeHandle());
    EXPECT_EQ(&block, CFCNodeManager::GetNode(block.GetNodeHandle()));
}

TEST(FCBlockNode, RoutesNodeOperationsToItsData) {
    CFCBlockNode block;
    IFCNode* const node = &block;
    CFCBlockData* const data = node->GetFCBlockData();
    EXPECT_EQ(static_cast<CFCBlockData*>(&block), data);
    EXPECT_EQ(node, CFCPointerConverter::GetNodeFromBlockData(data));
    node->SetNodeId(L"id");
    EXPECT_STREQ(L"id", data->GetBlockID());
    data->SetBlockID(L"other");
    EXPECT_STREQ(L"other", node->GetNodeId());
    node->SetOldNodeId(L"old");
    EXPECT_STREQ(L"old", data->GetOldBlockID());
    EXPECT_STREQ(L"old", node->GetOldNodeId());
    EXPECT_EQ(data->GetVariableList(), node->GetVariableList());
    EXPECT_EQ(data->GetConnectorList(), node->GetConnectorList());
    EXPECT_EQ(data->GetTuRect(), node->GetTuRect());
    node->SetTuRect(1, 2, 3, 4);
    EXPECT_EQ(4, block.rect.bottom);
    node->SetTuRectInInch(1, 2, 3, 4);
    EXPECT_EQ(432, block.rect.bottom);
    node->SetTuRectInInchReverse(1, 2, 3, 4);
    EXPECT_EQ(1100, block.rect.bottom);
    node->SetTuRectInInchFlowmere(1.9, 2.9, 3.9, 4.9);
    EXPECT_EQ(6, block.rect.bottom);
    CFCVariableData* const variable = node->CreateNewVariable();
    EXPECT_EQ(variable, block.GetVariableList()->GetAt(0));
    EXPECT_EQ(node, variable->GetParentNode());
    auto connector = std::make_unique<CFCConnector>();
    node->AddConnector(connector.get());
    EXPECT_EQ(connector.get(), data->GetConnectorList()->GetAt(0));
}

TEST(FCBlockNode, UnMarkReachesVariablesAndChildren) {
    auto const process = makeTree();
    auto* const block = addChild(process.get(), L"A");
    CFCVariableData* const variable = addVariable(block, L"x");
    process->SetMark(true);
    block->SetMark(true);
    variable->SetMark(true);
    process->UnMark();
    EXPECT_FALSE(process->IsMarked());
    EXPECT_FALSE(block->IsMarked());
    EXPECT_FALSE(variable->IsMarked());
}

TEST(FCBlockNode, WalksDownDeepTrees) {
    constexpr int kLevels = 100000;
    auto const root = makeTree<CFCSubProcessNode>(61);
    CFCVariableData* const target = addVariable(root.get(), L"x");
    CFCBlockNode* block = root.get();
    for (int level = 0; level < kLevels; ++level) {
        block = addChild(block, L"");
    }
    CFCVariableData* const link = addVariable(block, L"y");
    link->SetLinkPath(L".x");
    link->SetMark(true);
    block->SetMark(true);
    root->UnMark();
    EXPECT_FALSE(block->IsMarked());
    EXPECT_FALSE(link->IsMarked());
    root->ResolveVariables();
    EXPECT_EQ(target, link->GetActualVariableData());
}

TEST(FCBlockNode, ResolveVariablesReachesAllBelow) {
    auto const process = makeTree();
    CFCVariableData* const target = addVariable(addChild(process.get(), L"A"), L"x");
    auto* const sub = addChild<CFCSubProcessNode>(process.get(), L"S", 61);
    CFCVariableData* const outer = addVariable(sub, L"o");
    CFCVariableData* const inner = addVariable(addChild(sub, L"B"), L"i");
    outer->SetLinkPath(L"A.x");
    inner->SetLinkPath(L"S.o");
    process->ResolveVariables();
    EXPECT_EQ(target->GetNodeHandle(), outer->GetActualVariableData()->GetNodeHandle());
    EXPECT_EQ(target, inner->GetActualVariableData());
}

TEST(FCBlockNode, CopiesAreShallow) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    addVariable(b, L"x");
    b->setPreviouslyExecutedBlock(a);
    CFCBlockNode assigned;
    {
        CFCBlockNode const copy(*b);
        assigned = copy;
    }
    EXPECT_EQ(a, assigned.getPreviouslyExecutedBlock());
    EXPECT_STREQ(L"B", assigned.GetNodeId());
    EXPECT_EQ(process.get(), assigned.GetParentNode());
    EXPECT_EQ(b->GetNodeHandle(), assigned.GetNodeHandle());
    // The first copy took the variables along.
    EXPECT_EQ(nullptr, assigned.GetVariableList()->GetHeadPosition());
    EXPECT_EQ(nullptr, b->GetVariableList()->GetHeadPosition());
}

// The next block

TEST(FCBlockNode, FlowFollowsTheActiveHandle) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A", 58);
    auto* const yes = addChild(process.get(), L"Yes");
    auto* const no = addChild(process.get(), L"No");
    connect(process.get(), a, yes, 6);
    connect(process.get(), a, no, 4);
    EXPECT_EQ(yes, a->GetNextConnectedBlock());
    a->SetActiveHandle(4);
    EXPECT_EQ(no, a->GetNextConnectedBlock());
    EXPECT_EQ(no, a->GetNextConnectedBlockSimple());
    a->SetActiveHandle(8);
    EXPECT_EQ(nullptr, a->GetNextConnectedBlock());
    EXPECT_EQ(nullptr, yes->GetNextConnectedBlock());
}

TEST(FCBlockNode, FirstMatchInListOrderWins) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    auto* const c = addChild(process.get(), L"C");
    connect(process.get(), a, c, 6);
    connect(process.get(), a, b, 6);
    EXPECT_EQ(c, a->GetNextConnectedBlock());
}

TEST(FCBlockNode, HalfOpenConnectorsAreSkipped) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    CFCConnector* const half = connect(process.get(), a, nullptr);
    EXPECT_EQ(nullptr, a->GetNextConnectedBlock());
    connect(process.get(), a, b);
    EXPECT_EQ(b, a->GetNextConnectedBlock());
    // A connector that is marked as deleted but has both ends still leads on.
    half->SetEndNode(2, a);
    half->DeleteConnecter(true);
    EXPECT_EQ(a, a->GetNextConnectedBlock());
}

TEST(FCBlockNode, FlowLeavesTheContainerByOneLevel) {
    auto const process = makeTree();
    auto* const outer = addChild<CFCSubProcessNode>(process.get(), L"Outer", 61);
    auto* const inner = addChild<CFCSubProcessNode>(outer, L"Inner", 61);
    auto* const last = addChild(inner, L"Last");
    auto* const after = addChild(process.get(), L"After");
    auto* const behind = addChild(outer, L"Behind");
    connect(process.get(), outer, after);
    connect(outer, inner, behind, 4);
    // The grip of the container decides, not the block's.
    last->SetActiveHandle(8);
    EXPECT_EQ(nullptr, last->GetNextConnectedBlock());
    inner->SetActiveHandle(4);
    EXPECT_EQ(behind, last->GetNextConnectedBlock());
    EXPECT_EQ(nullptr, last->GetNextConnectedBlockSimple());
    // Two containers that end together end the flow.
    inner->SetActiveHandle(6);
    EXPECT_EQ(nullptr, last->GetNextConnectedBlock());
    EXPECT_EQ(after, behind->GetNextConnectedBlock());
}

TEST(FCBlockNode, LastBlockOfTheRootEndsTheFlow) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    EXPECT_EQ(nullptr, a->GetNextConnectedBlock());
}

TEST(FCBlockNode, ContainerWithoutConnectorsListEndsTheFlow) {
    Tree<CFCSubGroupNode> const folder(new CFCSubGroupNode);
    auto* const a = addChild(folder.get(), L"A");
    auto* const b = addChild(folder.get(), L"B");
    EXPECT_EQ(a, b->GetNext());
    EXPECT_EQ(nullptr, b->GetNextConnectedBlock());
    EXPECT_EQ(nullptr, b->GetNextConnectedBlockSimple());
}

TEST(FCBlockNode, FlowDoesNotLeaveIntoAFolder) {
    Tree<CFCSubGroupNode> const folder(new CFCSubGroupNode);
    auto* const sub = addChild<CFCSubProcessNode>(folder.get(), L"S", 61);
    auto* const a = addChild(sub, L"A");
    EXPECT_EQ(nullptr, a->GetNextConnectedBlock());
}

TEST(FCBlockNode, SimpleFormGoesOnWithTheNextSibling) {
    auto const process = makeTree();
    auto* const second = addChild(process.get(), L"Second");
    auto* const first = addChild(process.get(), L"First");
    EXPECT_EQ(second, first->GetNextConnectedBlockSimple());
    EXPECT_EQ(nullptr, first->GetNextConnectedBlock());
    // Behind the last block stands a group, which is no block.
    EXPECT_NE(nullptr, second->GetNext());
    EXPECT_EQ(nullptr, second->GetNextConnectedBlockSimple());
}

TEST(FCBlockNode, DebugOperationsDoNothing) {
    CFCBlockNode block;
    EXPECT_FALSE(block.PrepareDebug(L"Execute"));
    EXPECT_EQ(nullptr, block.GetDebuggerObject());
    EXPECT_EQ(nullptr, block.PrepareAndGetDebuggerObject(L"Execute"));
    block.FinishDebug();
}

// Look-up

TEST(FCBlockNode, FindChildBlockIsExact) {
    auto const process = makeTree();
    auto* const older = addChild(process.get(), L"Twice");
    auto* const newer = addChild(process.get(), L"Twice");
    auto* const other = addChild(process.get(), L"Other");
    EXPECT_EQ(newer, process->FindChildBlock(L"Twice"));
    EXPECT_NE(older, process->FindChildBlock(L"Twice"));
    EXPECT_EQ(other, process->FindChildBlock(L"Other"));
    EXPECT_EQ(nullptr, process->FindChildBlock(L"other"));
    EXPECT_EQ(nullptr, process->FindChildBlock(L"Missing"));
    addChild(other, L"Deeper");
    EXPECT_EQ(nullptr, process->FindChildBlock(L"Deeper"));
}

TEST(FCBlockNode, FindChildBlockStopsAtTheFirstMatch) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const nameless = addChild(sub.get(), L"");
    EXPECT_EQ(nameless, sub->FindChildBlock(L""));
    EXPECT_EQ(nameless, sub->FindChildBlock(nullptr));
    // A folder without identifier stands in front of it now.
    sub->AppendChild(new CFCSubGroupNode, false);
    EXPECT_EQ(nullptr, sub->FindChildBlock(L""));
}

TEST(FCBlockNode, FindChildBlockFollowsRenames) {
    auto const process = makeTree();
    std::vector<CFCBlockNode*> blocks;
    for (int i = 0; i < 100; ++i) {
        blocks.push_back(addChild(process.get(), std::to_wstring(i).c_str()));
    }
    EXPECT_EQ(blocks[50], process->FindChildBlock(L"50"));
    blocks[50]->SetBlockID(L"fifty");
    EXPECT_EQ(nullptr, process->FindChildBlock(L"50"));
    EXPECT_EQ(blocks[50], process->FindChildBlock(L"fifty"));
    CFCBlockData source;
    source.SetBlockID(L"copied");
    blocks[51]->CopyFrom(&source);
    EXPECT_EQ(nullptr, process->FindChildBlock(L"51"));
    EXPECT_EQ(blocks[51], process->FindChildBlock(L"copied"));
    EXPECT_EQ(blocks[52], process->FindChildBlock(blocks[52]->GetNodeId()));
    // The data alone may be assigned, too.
    source.SetBlockID(L"assigned");
    source.SetOldBlockID(L"formerly");
    EXPECT_EQ(nullptr, process->FindNodeSimple(L"Assigned"));
    EXPECT_EQ(nullptr, process->FindNodeWithOldId(L"formerly"));
    *blocks[53]->GetFCBlockData() = source;
    EXPECT_EQ(nullptr, process->FindChildBlock(L"53"));
    EXPECT_EQ(blocks[53], process->FindChildBlock(L"assigned"));
    EXPECT_EQ(blocks[53], process->FindNodeSimple(L"Assigned"));
    EXPECT_EQ(blocks[53], process->FindNodeWithOldId(L"formerly"));
}

TEST(FCBlockNode, FindLocalVariableIsExact) {
    CFCBlockNode block;
    CFCVariableData* const first = addVariable(&block, L"x");
    addVariable(&block, L"x");
    CFCVariableData* const nameless = addVariable(&block, L"");
    EXPECT_EQ(first, block.FindLocalVariable(L"x"));
    EXPECT_EQ(nullptr, block.FindLocalVariable(L"X"));
    EXPECT_EQ(nullptr, block.FindLocalVariable(L""));
    EXPECT_EQ(nullptr, block.FindLocalVariable(nullptr));
    EXPECT_NE(nullptr, nameless);
    EXPECT_EQ(first, block.FindLocalVariable(first->GetVariableName()));
}

TEST(FCBlockNode, FindVariableResolvesPaths) {
    auto const process = makeTree();
    process->SetNodeId(L"P");
    process->SetNodeCaption(L"Cap");
    CFCVariableData* const own = addVariable(process.get(), L"x");
    CFCVariableData* const dotted = addVariable(process.get(), L"a.b");
    CFCVariableData* const captioned = addVariable(process.get(), L"Cap.x");
    auto* const sub = addChild<CFCSubProcessNode>(process.get(), L"S", 61);
    sub->SetNodeCaption(L"Sub");
    CFCVariableData* const inSub = addVariable(sub, L"x");
    auto* const block = addChild(sub, L"B");
    CFCVariableData* const deep = addVariable(block, L"x");
    auto* const capChild = addChild(process.get(), L"Cap");
    addVariable(capChild, L"y");
    CFCVariableData* const below = addVariable(addChild(capChild, L"B"), L"x");

    struct Case {
        wchar_t const* path;
        CFCVariableData* expected;
    };
    Case const cases[] = {
        {nullptr, nullptr},
        {L"", nullptr},
        {L"x", own},
        {L"X", nullptr},
        {L".x", own},
        {L".a.b", dotted},
        {L".", nullptr},
        {L"Template.x", own},
        {L"Template.a.b", dotted},
        {L"template.x", nullptr},
        {L"Template.", nullptr},
        {L"a.b", nullptr},
        {L"S.x", inSub},
        {L"s.x", nullptr},
        {L"S.B.x", deep},
        {L"S.B.missing", nullptr},
        {L"S.Missing.x", nullptr},
        {L"S..x", inSub},
        {L"S.Template.x", inSub},
        {L"S.", nullptr},
        {L"P.S.x", nullptr},
        // The own caption with one dot: the whole text is a name, children are not asked.
        {L"Cap.x", captioned},
        {L"Cap.y", nullptr},
        // With more dots they are.
        {L"Cap.B.x", below},
        // The caption of a block on the way counts as well.
        {L"S.Sub.x", nullptr},
    };
    for (Case const& c : cases) {
        EXPECT_EQ(c.expected, process->FindVariable(c.path)) << narrow(c.path);
    }
    // The text may be one that the tree holds.
    EXPECT_EQ(own, process->FindVariable(own->GetVariableName()));
    EXPECT_EQ(dotted, process->CFCBlockData::FindVariable(L"a.b"));
}

TEST(FCBlockNode, LongPathsAreFollowed) {
    auto const root = makeTree<CFCSubProcessNode>(61);
    CFCBlockNode* block = root.get();
    std::wstring path;
    for (int level = 0; level < 2000; ++level) {
        block = addChild<CFCSubProcessNode>(block, L"s", 61);
        path += L"s.";
    }
    CFCVariableData* const variable = addVariable(block, L"x");
    EXPECT_EQ(variable, root->FindVariable((path + L"x").c_str()));
}

// Leaving the flow

TEST(FCBlockNode, RemoveConnectorsClearsBothEnds) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    auto* const c = addChild(process.get(), L"C");
    CFCConnector* const in = connect(process.get(), a, b);
    CFCConnector* const out = connect(process.get(), b, c);
    CFCConnector* const loop = connect(process.get(), b, b);
    CFCConnector* const other = connect(process.get(), a, c);
    CFCConnector* const half = connect(process.get(), b, nullptr);
    in->SetStartNode(6, a, L"port");
    b->RemoveConnectors();
    for (CFCConnector* connector : {in, out, loop}) {
        EXPECT_EQ(nullptr, connector->GetStartObject());
        EXPECT_EQ(nullptr, connector->GetEndObject());
        EXPECT_EQ(0, connector->GetStartHandle());
        EXPECT_EQ(0, connector->GetEndHandle());
        EXPECT_TRUE(connector->IsDeleted());
    }
    EXPECT_STREQ(L"A", in->GetStartNodeId());
    EXPECT_STREQ(L"port", in->GetStartPortName());
    EXPECT_FALSE(other->IsDeleted());
    EXPECT_EQ(a, other->GetStartObject());
    // A connector that is open already is left as it is.
    EXPECT_FALSE(half->IsDeleted());
    EXPECT_EQ(b, half->GetStartObject());
    EXPECT_EQ((std::vector{in, out, loop, other, half}), elements(*process->GetConnectorList()));
}

TEST(FCBlockNode, RemoveConnectorsWithoutContainerDoesNothing) {
    CFCBlockNode a;
    auto own = makeConnector(&a, &a);
    a.AddConnector(own.get());
    a.RemoveConnectors();
    // The block's own list is for its children.
    EXPECT_EQ(&a, own->GetStartObject());
    Tree<CFCSubGroupNode> const folder(new CFCSubGroupNode);
    addChild(folder.get(), L"B")->RemoveConnectors();
}

// Grips

TEST(FCBlockNode, GripsStandClockwiseAroundTheRectangle) {
    CFCBlockNode block;
    block.SetTuRect(10, 20, 41, 61);
    struct Case {
        int handle;
        int x;
        int y;
    };
    Case const cases[] = {{1, 10, 20}, {2, 25, 20}, {3, 41, 20}, {4, 41, 40},
                          {5, 41, 61}, {6, 25, 61}, {7, 10, 61}, {8, 10, 40}};
    for (Case const& c : cases) {
        _TgPointLStr point;
        EXPECT_TRUE(block.getHandlePoint(c.handle, point));
        EXPECT_EQ(c.x, point.x) << c.handle;
        EXPECT_EQ(c.y, point.y) << c.handle;
    }
    for (int const handle : {0, 9, -1, 100}) {
        _TgPointLStr point{7, 8};
        EXPECT_FALSE(block.getHandlePoint(handle, point));
        EXPECT_EQ(7, point.x);
        EXPECT_EQ(8, point.y);
    }
}

TEST(FCBlockNode, MiddlesTruncateTowardZero) {
    CFCBlockNode block;
    block.SetTuRect(-4, -2, 1, 1);
    _TgPointLStr point;
    block.getHandlePoint(2, point);
    EXPECT_EQ(-1, point.x);
    block.getHandlePoint(4, point);
    EXPECT_EQ(0, point.y);
    int const highest = std::numeric_limits<int>::max();
    block.SetTuRect(highest, highest, highest, highest);
    block.getHandlePoint(6, point);
    EXPECT_EQ(highest, point.x);
}

TEST(FCBlockNode, HitTestTakesTheNearestRing) {
    CFCBlockNode block;
    block.SetTuRect(0, 0, 200, 100);
    struct Case {
        int x;
        int y;
        int handle;
    };
    Case const cases[] = {
        {0, 0, 1},     {100, 0, 2},   {200, 0, 3},    {200, 50, 4}, {200, 100, 5}, {100, 100, 6},
        {0, 100, 7},   {0, 50, 8},    {4, 4, 1},      {-5, -5, 1},  {5, 0, 1},     {24, 24, 1},
        {-25, -25, 1}, {25, 0, -1},   {-26, 0, -1},   {0, 25, 8},   {0, 26, 8},    {100, 50, -1},
        {1000, 0, -1}, {224, 124, 5}, {225, 100, -1}, {175, 75, 5}, {75, 25, -1},  {75, 24, 2},
    };
    for (Case const& c : cases) {
        _TgPointLStr point{c.x, c.y};
        EXPECT_EQ(c.handle, block.HitTestConnector(point)) << c.x << ", " << c.y;
    }
}

TEST(FCBlockNode, NearRingWinsOverGripOrder) {
    CFCBlockNode block;
    // Grips 1 and 2 are 12 apart.
    block.SetTuRect(0, 0, 24, 100);
    _TgPointLStr point{5, 0};
    // x + 5 of grip 1 misses at radius 5; at 10 both are near enough and 1 comes first.
    EXPECT_EQ(1, block.HitTestConnector(point));
    point.x = 7;
    EXPECT_EQ(2, block.HitTestConnector(point));
    point.x = 6;
    EXPECT_EQ(1, block.HitTestConnector(point));
}

TEST(FCBlockNode, HitTestOfAnExtremeRectangleDoesNotOverflow) {
    CFCBlockNode block;
    int const highest = std::numeric_limits<int>::max();
    int const lowest = std::numeric_limits<int>::min();
    block.SetTuRect(lowest, lowest, highest, highest);
    _TgPointLStr point{highest, highest};
    EXPECT_EQ(5, block.HitTestConnector(point));
    point = {lowest, lowest};
    EXPECT_EQ(1, block.HitTestConnector(point));
    point = {0, lowest};
    EXPECT_EQ(2, block.HitTestConnector(point));
}

// Undo chain

TEST(FCBlockNode, RemembersWhereTheFlowCameFrom) {
    CFCBlockNode a;
    CFCBlockNode b;
    b.setPreviouslyExecutedBlock(&a);
    EXPECT_EQ(&a, b.getPreviouslyExecutedBlock());
    b.setPreviouslyExecutedBlock(nullptr);
    EXPECT_EQ(nullptr, b.getPreviouslyExecutedBlock());
}
