#include "flowmere/model/FCConnector.h"

#include "TestSupport.h"
#include "model/FlowTree.h"

#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"

using namespace flowmere::test;

// One end

TEST(FCConnectionNode, StartsOpen) {
    CFCConnectionNode end;
    EXPECT_FALSE(end.IsValid());
    EXPECT_EQ(9, end.GetHandle());
    EXPECT_EQ(nullptr, end.GetNode());
    EXPECT_STREQ(L"", end.GetPortName());
    EXPECT_STREQ(L"", end.GetBlockName());
    EXPECT_STREQ(L"", end.GetBlockCaption());
    end.SetBlockName(L"nobody");
    EXPECT_STREQ(L"", end.GetBlockName());
}

TEST(FCConnectionNode, GivesTheBlocksNames) {
    CFCBlockNode block;
    block.SetNodeId(L"A");
    block.SetNodeCaption(L"Caption");
    CFCConnectionNode end;
    end.SetNode(4, &block);
    EXPECT_TRUE(end.IsValid());
    EXPECT_EQ(4, end.GetHandle());
    EXPECT_EQ(&block, end.GetNode());
    EXPECT_STREQ(L"A", end.GetBlockName());
    EXPECT_STREQ(L"Caption", end.GetBlockCaption());
    end.SetBlockName(L"B");
    EXPECT_STREQ(L"B", block.GetBlockID());
    end.SetHandle(-3);
    EXPECT_EQ(-3, end.GetHandle());
}

TEST(FCConnectionNode, TwoFormsOfSetNode) {
    CFCBlockNode block;
    CFCConnectionNode end;
    end.SetNode(4, &block, L"Out");
    EXPECT_STREQ(L"Out", end.GetPortName());
    end.SetNode(5, nullptr);
    EXPECT_EQ(5, end.GetHandle());
    EXPECT_FALSE(end.IsValid());
    EXPECT_STREQ(L"Out", end.GetPortName());
    end.SetNode(6, &block, nullptr);
    EXPECT_STREQ(L"", end.GetPortName());
    end.SetPortName(L"In");
    end.SetPortName(end.GetPortName());
    EXPECT_STREQ(L"In", end.GetPortName());
}

TEST(FCConnectionNode, HandsOverGripBlockAndPort) {
    CFCBlockNode block;
    CFCConnectionNode from;
    from.SetNode(3, &block, L"P");
    CFCConnectionNode out;
    from.GetConnectionNode(out);
    EXPECT_EQ(3, out.GetHandle());
    EXPECT_EQ(&block, out.GetNode());
    EXPECT_STREQ(L"P", out.GetPortName());
    CFCConnectionNode into;
    into.SetConnectionNode(out);
    EXPECT_EQ(3, into.GetHandle());
    EXPECT_EQ(&block, into.GetNode());
    EXPECT_STREQ(L"P", into.GetPortName());
    CFCConnectionNode const copy(into);
    from = copy;
    EXPECT_STREQ(L"P", from.GetPortName());
}

// Connector

TEST(FCConnector, StartsUnconnected) {
    CFCConnector connector;
    EXPECT_FALSE(connector.IsValid());
    EXPECT_EQ(9, connector.GetStartHandle());
    EXPECT_EQ(9, connector.GetEndHandle());
    EXPECT_STREQ(L"Top", connector.GetStartHandleName());
    EXPECT_STREQ(L"Top", connector.GetEndHandleName());
    EXPECT_EQ(nullptr, connector.GetStartObject());
    EXPECT_EQ(nullptr, connector.GetEndObject());
    EXPECT_STREQ(L"", connector.GetPortName());
    EXPECT_STREQ(L"", connector.GetCaption());
    EXPECT_STREQ(L"", connector.GetStartNodeId());
    EXPECT_STREQ(L"", connector.GetEndNodeId());
    EXPECT_STREQ(L"", connector.GetStartBlockName());
    EXPECT_STREQ(L"", connector.GetEndBlockName());
    EXPECT_STREQ(L"", connector.GetStartBlockCaption());
    EXPECT_STREQ(L"", connector.GetEndBlockCaption());
    EXPECT_STREQ(L"", connector.GetStartPortName());
    EXPECT_STREQ(L"", connector.GetEndPortName());
    EXPECT_FALSE(connector.IsDeleted());
    EXPECT_FALSE(connector.GetReversed());
    EXPECT_FALSE(connector.IsSelected());
    EXPECT_EQ(0, connector.GetConnectorType());
    EXPECT_FALSE(connector.IsBPMConnector());
    connector.Create();
}

TEST(FCConnector, DrawsOneHandleAndIsMadeByTheFactory) {
    CFCConnector const first;
    CFCConnector second;
    EXPECT_EQ(const_cast<CFCConnector&>(first).GetNodeHandle() + 1, second.GetNodeHandle());
    CFCNodeFactory factory;
    std::unique_ptr<IFCNode> const made(factory.Create(68));
    EXPECT_EQ(68, made->GetNodeType());
    EXPECT_NE(nullptr, dynamic_cast<CFCConnector*>(made.get()));
}

TEST(FCConnector, RouteIsForTheHost) {
    CFCConnector connector;
    _TgPointLStr point{1, 2};
    connector.AddPoint(1, 2);
    connector.AddPoint(&point);
    connector.AddPoint(nullptr);
    connector.ResetStartAndEndPoint();
    EXPECT_EQ(0, connector.GetPointCount());
    EXPECT_EQ(nullptr, connector.GetPoints());
    EXPECT_EQ(nullptr, connector.GetStartPoint());
    EXPECT_EQ(nullptr, connector.GetEndPoint());
    EXPECT_EQ(nullptr, connector.GetPointAt(0));
    connector.RemoveAll();
}

TEST(FCConnector, FieldsStandForThemselves) {
    CFCConnector connector;
    connector.SetPortName(L"port");
    connector.SetCaption(L"caption");
    connector.SetReversed(true);
    connector.SetSelected(true);
    connector.SetConnectorType(EConnectorType_Workflow);
    connector.SetStartNodeId(L"s");
    connector.SetEndNodeId(L"e");
    EXPECT_STREQ(L"port", connector.GetPortName());
    EXPECT_STREQ(L"caption", connector.GetCaption());
    // The caption of the node is another text.
    EXPECT_STREQ(L"", connector.GetNodeCaption());
    EXPECT_TRUE(connector.GetReversed());
    EXPECT_TRUE(connector.IsSelected());
    EXPECT_TRUE(connector.IsBPMConnector());
    EXPECT_STREQ(L"s", connector.GetStartNodeId());
    EXPECT_STREQ(L"e", connector.GetEndNodeId());
    EXPECT_STREQ(L"", connector.GetStartPortName());
    connector.SetConnectorType(static_cast<EConnectorType>(2));
    EXPECT_EQ(2, connector.GetConnectorType());
    EXPECT_FALSE(connector.IsBPMConnector());
    connector.SetCaption(connector.GetCaption() + 3);
    EXPECT_STREQ(L"tion", connector.GetCaption());
    connector.SetCaption(nullptr);
    EXPECT_STREQ(L"", connector.GetCaption());
}

TEST(FCConnector, DeletionIsItsOwnFlag) {
    CFCConnector connector;
    IFCNode* const node = &connector;
    node->SetDeleted(true);
    EXPECT_FALSE(node->IsDeleted());
    connector.DeleteConnecter(true);
    EXPECT_TRUE(node->IsDeleted());
    connector.DeleteConnecter(false);
    EXPECT_FALSE(connector.IsDeleted());
}

TEST(FCConnector, ForwardsToItsEnds) {
    CFCBlockNode a;
    a.SetNodeId(L"A");
    a.SetNodeCaption(L"First");
    CFCBlockNode b;
    b.SetNodeId(L"B");
    b.SetNodeCaption(L"Second");
    CFCConnector connector;
    connector.SetStartNode(6, &a, L"out");
    EXPECT_FALSE(connector.IsValid());
    connector.SetEndNode(8, &b, L"in");
    EXPECT_TRUE(connector.IsValid());
    EXPECT_EQ(&a, connector.GetStartObject());
    EXPECT_EQ(&b, connector.GetEndObject());
    EXPECT_STREQ(L"A", connector.GetStartBlockName());
    EXPECT_STREQ(L"B", connector.GetEndBlockName());
    EXPECT_STREQ(L"First", connector.GetStartBlockCaption());
    EXPECT_STREQ(L"Second", connector.GetEndBlockCaption());
    EXPECT_EQ(6, connector.GetStartHandle());
    EXPECT_EQ(8, connector.GetEndHandle());
    EXPECT_STREQ(L"out", connector.GetStartPortName());
    EXPECT_STREQ(L"in", connector.GetEndPortName());
    EXPECT_STREQ(L"A", connector.GetStartNodeId());
    EXPECT_STREQ(L"B", connector.GetEndNodeId());
    connector.SetStartHandle(4);
    connector.SetEndHandle(3);
    EXPECT_EQ(4, connector.GetStartHandle());
    EXPECT_EQ(3, connector.GetEndHandle());
    connector.SetStarPortName(L"x");
    connector.SetEndPortName(L"y");
    EXPECT_STREQ(L"x", connector.GetStartPortName());
    EXPECT_STREQ(L"y", connector.GetEndPortName());
}

TEST(FCConnector, HandleNamesAreThoseOfTheSides) {
    CFCConnector connector;
    struct Case {
        int handle;
        wchar_t const* name;
    };
    Case const cases[] = {{1, L"Top"},  {2, L"Top"},  {3, L"Right"}, {4, L"Right"}, {5, L"Bottom"}, {6, L"Bottom"},
                          {7, L"Left"}, {8, L"Left"}, {9, L"Top"},   {0, L"Top"},   {-1, L"Top"},   {100, L"Top"}};
    for (Case const& c : cases) {
        connector.SetStartHandle(c.handle);
        connector.SetEndHandle(c.handle);
        EXPECT_STREQ(c.name, connector.GetStartHandleName());
        EXPECT_STREQ(c.name, connector.GetEndHandleName());
    }
    // Each of the two has a text of its own.
    connector.SetStartHandle(6);
    connector.SetEndHandle(8);
    wchar_t const* const start = connector.GetStartHandleName();
    wchar_t const* const end = connector.GetEndHandleName();
    EXPECT_STREQ(L"Bottom", start);
    EXPECT_STREQ(L"Left", end);
}

TEST(FCConnector, ShortFormsKeepTheStoredIdentifiers) {
    CFCBlockNode a;
    a.SetNodeId(L"A");
    CFCBlockNode b;
    b.SetNodeId(L"B");
    CFCConnector connector;
    connector.SetStartNode(6, &a, L"p");
    connector.SetEndNode(2, &a, L"q");
    connector.SetStartNode(4, &b);
    connector.SetEndNode(8, nullptr);
    EXPECT_STREQ(L"A", connector.GetStartNodeId());
    EXPECT_STREQ(L"A", connector.GetEndNodeId());
    EXPECT_STREQ(L"p", connector.GetStartPortName());
    EXPECT_EQ(&b, connector.GetStartObject());
    EXPECT_EQ(4, connector.GetStartHandle());
    EXPECT_EQ(8, connector.GetEndHandle());
    EXPECT_FALSE(connector.IsValid());
}

TEST(FCConnector, LongFormsTakeNullBlocks) {
    CFCBlockNode a;
    a.SetNodeId(L"A");
    CFCConnector connector;
    connector.SetStartNode(6, &a, L"p");
    connector.SetEndNode(2, &a, L"q");
    connector.SetStartNode(3, nullptr, nullptr);
    connector.SetEndNode(4, nullptr, nullptr);
    EXPECT_STREQ(L"", connector.GetStartNodeId());
    EXPECT_STREQ(L"", connector.GetEndNodeId());
    EXPECT_STREQ(L"", connector.GetStartPortName());
    EXPECT_STREQ(L"", connector.GetEndPortName());
    EXPECT_EQ(3, connector.GetStartHandle());
    EXPECT_EQ(4, connector.GetEndHandle());
}

TEST(FCConnector, SettingABlockNameRenamesTheBlock) {
    CFCBlockNode a;
    CFCBlockNode b;
    auto const one = makeConnector(&a, &b);
    auto const two = makeConnector(&b, &a);
    one->SetStartBlockName(L"Renamed");
    EXPECT_STREQ(L"Renamed", a.GetNodeId());
    EXPECT_STREQ(L"Renamed", two->GetEndBlockName());
    two->SetStartBlockName(L"Other");
    EXPECT_STREQ(L"Other", one->GetEndBlockName());
    one->SetEndBlockName(L"Third");
    EXPECT_STREQ(L"Third", b.GetBlockID());
    EXPECT_STREQ(L"", one->GetStartNodeId());
}

TEST(FCConnector, ReverseSwapsGripBlockAndPortOnly) {
    CFCBlockNode a;
    a.SetNodeId(L"A");
    CFCBlockNode b;
    b.SetNodeId(L"B");
    CFCConnector connector;
    connector.SetStartNode(6, &a, L"out");
    connector.SetEndNode(2, &b, L"in");
    connector.ReverseConnector();
    EXPECT_EQ(&b, connector.GetStartObject());
    EXPECT_EQ(&a, connector.GetEndObject());
    EXPECT_EQ(2, connector.GetStartHandle());
    EXPECT_EQ(6, connector.GetEndHandle());
    EXPECT_STREQ(L"in", connector.GetStartPortName());
    EXPECT_STREQ(L"out", connector.GetEndPortName());
    EXPECT_STREQ(L"A", connector.GetStartNodeId());
    EXPECT_STREQ(L"B", connector.GetEndNodeId());
    EXPECT_FALSE(connector.GetReversed());
}

TEST(FCConnector, CopiesTakeAllFieldsAndLinks) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    CFCConnector* const first = connect(process.get(), a, b);
    CFCConnector* const second = connect(process.get(), b, a);
    second->SetStartNode(4, b, L"p");
    second->SetEndNode(8, a, L"q");
    second->SetPortName(L"port");
    second->SetCaption(L"caption");
    second->SetReversed(true);
    second->SetSelected(true);
    second->SetConnectorType(EConnectorType_Workflow);
    second->DeleteConnecter(true);
    CFCConnector const built(*second);
    CFCConnector assigned;
    assigned = *second;
    for (CFCConnector const* source : {&built, &const_cast<CFCConnector const&>(assigned)}) {
        auto& copy = const_cast<CFCConnector&>(*source);
        EXPECT_EQ(b, copy.GetStartObject());
        EXPECT_EQ(a, copy.GetEndObject());
        EXPECT_EQ(4, copy.GetStartHandle());
        EXPECT_EQ(8, copy.GetEndHandle());
        EXPECT_STREQ(L"p", copy.GetStartPortName());
        EXPECT_STREQ(L"q", copy.GetEndPortName());
        EXPECT_STREQ(L"B", copy.GetStartNodeId());
        EXPECT_STREQ(L"A", copy.GetEndNodeId());
        EXPECT_STREQ(L"port", copy.GetPortName());
        EXPECT_STREQ(L"caption", copy.GetCaption());
        EXPECT_TRUE(copy.GetReversed());
        EXPECT_TRUE(copy.IsSelected());
        EXPECT_TRUE(copy.IsBPMConnector());
        EXPECT_TRUE(copy.IsDeleted());
        EXPECT_EQ(first, copy.GetPrev());
        EXPECT_EQ(nullptr, copy.GetNext());
        EXPECT_EQ(second->GetNodeHandle(), copy.GetNodeHandle());
    }
    EXPECT_EQ(2, process->GetConnectorList()->GetCount());
}

// List

TEST(FCConnectorList, WalksTypedAndBeforeTheCaller) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    CFCConnector* const first = connect(process.get(), a, b);
    CFCConnector* const second = connect(process.get(), b, a);
    CFCConnectorList& list = *process->GetConnectorList();
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(first, list.GetNext(position));
    list.DeleteNode(first);
    EXPECT_EQ(second, list.GetNext(position));
    EXPECT_EQ(nullptr, position);
    EXPECT_EQ(nullptr, list.GetNext(position));
    // The list is a node too, with a next link of its own.
    EXPECT_EQ(nullptr, list.GetNext());
    // Connectors have no identifier to be found by.
    second->SetNodeId(L"id");
    EXPECT_EQ(nullptr, list.Find(L"id"));
    EXPECT_EQ(nullptr, list.Find(L""));
}

TEST(FCConnectorList, ForeignElementIsNoConnector) {
    CFCConnectorList list;
    CFCSubGroupNode folder;
    CFCConnector connector;
    list.AddTail(&folder);
    list.AddTail(&connector);
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(nullptr, list.GetNext(position));
    EXPECT_EQ(&connector, list.GetNext(position));
}

TEST(FCConnectorList, CopiesShareTheElements) {
    CFCConnectorList list;
    CFCConnector connector;
    list.AddTail(&connector);
    CFCConnectorList const built(list);
    CFCConnectorList assigned;
    assigned = built;
    EXPECT_EQ(&connector, assigned.GetAt(0));
    EXPECT_EQ(1, assigned.GetCount());
}
