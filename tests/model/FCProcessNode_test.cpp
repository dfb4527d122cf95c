#include "flowmere/model/FCProcessNode.h"

#include "TestSupport.h"
#include "model/FlowTree.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"

using namespace flowmere::test;

// Sub-process

TEST(FCSubProcessNode, StartsAtTheBlockWithAWayOutAndNoneIn) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const a = addChild(sub.get(), L"A");
    auto* const b = addChild(sub.get(), L"B");
    auto* const c = addChild(sub.get(), L"C");
    connect(sub.get(), a, b);
    connect(sub.get(), b, c);
    EXPECT_EQ(a, sub->GetFirstConnectedBlock());
    EXPECT_EQ(a, sub->GetNextConnectedBlock());
}

TEST(FCSubProcessNode, FirstOfSeveralStartBlocksInChildOrder) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const a = addChild(sub.get(), L"A");
    auto* const b = addChild(sub.get(), L"B");
    auto* const join = addChild(sub.get(), L"Join");
    connect(sub.get(), a, join);
    connect(sub.get(), b, join);
    EXPECT_EQ(b, sub->GetFirstConnectedBlock());
}

TEST(FCSubProcessNode, WithoutAStartBlockTheFirstChildIsIt) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const a = addChild(sub.get(), L"A");
    auto* const b = addChild(sub.get(), L"B");
    EXPECT_EQ(b, sub->GetFirstConnectedBlock());
    // A ring has none either.
    connect(sub.get(), a, b);
    connect(sub.get(), b, a);
    EXPECT_EQ(b, sub->GetFirstConnectedBlock());
}

TEST(FCSubProcessNode, HalfOpenConnectorsDoNotCount) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const a = addChild(sub.get(), L"A");
    auto* const b = addChild(sub.get(), L"B");
    connect(sub.get(), a, nullptr);
    EXPECT_EQ(b, sub->GetFirstConnectedBlock());
}

TEST(FCSubProcessNode, WaysSeenOnceStayKnown) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const a = addChild(sub.get(), L"A");
    auto* const b = addChild(sub.get(), L"B");
    CFCConnector* const connector = connect(sub.get(), a, b);
    EXPECT_EQ(a, sub->GetFirstConnectedBlock());
    sub->DeleteConnector(connector);
    EXPECT_EQ(a, sub->GetFirstConnectedBlock());
    connect(sub.get(), b, a);
    // Now both have a way in and a way out.
    EXPECT_EQ(b, sub->GetFirstConnectedBlock());
}

TEST(FCSubProcessNode, EmptyOneEndsTheFlow) {
    auto const process = makeTree();
    auto* const sub = addChild<CFCSubProcessNode>(process.get(), L"S", 61);
    auto* const after = addChild(process.get(), L"After");
    connect(process.get(), sub, after);
    EXPECT_EQ(nullptr, sub->GetFirstConnectedBlock());
    EXPECT_EQ(nullptr, sub->GetNextConnectedBlock());
    EXPECT_EQ(after, sub->GetNextConnectedBlockSimple());
}

TEST(FCSubProcessNode, FlowGoesInAndOutAgain) {
    auto const process = makeTree();
    auto* const sub = addChild<CFCSubProcessNode>(process.get(), L"S", 61);
    auto* const after = addChild(process.get(), L"After");
    auto* const inner = addChild(sub, L"I");
    connect(process.get(), sub, after);
    EXPECT_EQ(inner, sub->GetNextConnectedBlock());
    EXPECT_EQ(after, inner->GetNextConnectedBlock());
}

TEST(FCSubProcessNode, ChildrenThatAreNoBlocksArePassedOver) {
    auto const sub = makeTree<CFCSubProcessNode>(61);
    auto* const a = addChild(sub.get(), L"A");
    sub->AppendChild(new CFCSubGroupNode, false);
    EXPECT_EQ(a, sub->GetFirstConnectedBlock());
}

namespace {

// A host's class that names no first block.
class Headless : public CFCSubProcessNode {
public:
    CFCBlockNode* GetFirstConnectedBlock() override { return nullptr; }
};

} // namespace

TEST(FCSubProcessNode, WithoutAFirstBlockTheOneThatFollowsNoneIsNext) {
    auto const sub = makeTree<Headless>(61);
    EXPECT_EQ(nullptr, sub->GetNextConnectedBlock());
    auto* const a = addChild(sub.get(), L"A");
    auto* const b = addChild(sub.get(), L"B");
    sub->AppendChild(new CFCSubGroupNode, false);
    auto* const c = addChild(sub.get(), L"C");
    connect(sub.get(), a, b);
    connect(sub.get(), b, c);
    // A mark from an earlier walk does not count.
    a->setState(2);
    EXPECT_EQ(a, sub->GetNextConnectedBlock());
    EXPECT_EQ(0U, a->checkState(1));
    EXPECT_NE(0U, b->checkState(1));
    EXPECT_NE(0U, c->checkState(1));
    connect(sub.get(), c, a);
    EXPECT_EQ(nullptr, sub->GetNextConnectedBlock());
}

TEST(FCSubProcessNode, KeepsTheNumberOfItsConstructor) {
    CFCSubProcessNode sub(61);
    EXPECT_EQ(61, sub.blockKind);
    CFCSubProcessNode copy(sub);
    CFCSubProcessNode assigned;
    assigned = copy;
    EXPECT_EQ(61, assigned.blockKind);
}

// Process

TEST(FCProcessNode, HasItsDefaults) {
    auto const process = makeTree();
    EXPECT_EQ(0, process->GetProjectType());
    EXPECT_EQ(1, process->getExecutionStatus());
    EXPECT_STREQ(L"SaveRestore", process->getSaveRestoreScript());
    EXPECT_EQ(0, process->getSaveRestoreScriptType());
    EXPECT_STREQ(L"", process->GetSaveRestoreScript());
    EXPECT_STREQ(L"", process->getProjectDirectory());
    EXPECT_STREQ(L"", process->getProcessFlowType());
    EXPECT_EQ(0, process->getExecutionMode());
    EXPECT_EQ(0, process->getProcessSaveStatus());
    EXPECT_FALSE(process->getRandomExecutionStatus());
    EXPECT_FALSE(process->getRunOnLoadStatus());
    EXPECT_FALSE(process->getModelDependency());
    EXPECT_FALSE(process->IsVariablesSerializableToTNB());
    EXPECT_FALSE(process->hasDiagram());
}

TEST(FCProcessNode, HasTwoExtraChildrenFromTheStart) {
    auto const process = makeTree();
    IFCNode* const history = process->GetChild();
    ASSERT_NE(nullptr, history);
    IFCNode* const favourites = history->GetNext();
    ASSERT_NE(nullptr, favourites);
    EXPECT_EQ(nullptr, favourites->GetNext());
    EXPECT_EQ(178, history->GetNodeType());
    EXPECT_STREQ(L"Last Opened", history->GetNodeCaption());
    EXPECT_EQ(process->GetHistoryNode(), history);
    EXPECT_EQ(process.get(), history->GetParentNode());
    EXPECT_EQ(176, favourites->GetNodeType());
    EXPECT_STREQ(L"Favourites", favourites->GetNodeCaption());
    EXPECT_EQ(process->GetFavouriteNode(), favourites);
    // Neither class keeps an identifier.
    EXPECT_STREQ(L"", history->GetNodeId());
    EXPECT_STREQ(L"", favourites->GetNodeId());
    EXPECT_EQ(2, CFCNodeHelper::GetBlockCount(process.get()));
}

TEST(FCProcessNode, DrawsSevenHandles) {
    CFCNodeFactory factory;
    Tree<IFCNode> const process(factory.Create(56));
    CFCConnector next;
    EXPECT_EQ(process->GetNodeHandle() + 7, next.GetNodeHandle());
}

TEST(FCProcessNode, SetDefaultsAddsThemAgain) {
    auto const process = makeTree();
    CFCFavouriteNode* const first = process->GetFavouriteNode();
    process->SetDefaults();
    EXPECT_NE(first, process->GetFavouriteNode());
    EXPECT_EQ(4, CFCNodeHelper::GetBlockCount(process.get()));
    EXPECT_EQ(process->GetHistoryNode(), process->GetChild());
}

TEST(FCProcessNode, AccessorsReachTheFields) {
    auto const process = makeTree();
    process->setProjectDirectory(L"C:\\P");
    process->setExecutionStatus(CFCProcessNode::ExecutionFailed);
    process->setSaveRestoreScript(L"Mine");
    EXPECT_EQ(0, process->getSaveRestoreScriptType());
    process->setSaveRestoreScript(L"Other", EScriptType_TCMD);
    process->setExecutionMode(CFCProcessNode::ExecutionUndo);
    process->setProcessSaveStatus(CFCProcessNode::ProcessUnsaved);
    process->setProcessFlowType(L"flow");
    EXPECT_STREQ(L"C:\\P", process->getProjectDirectory());
    EXPECT_EQ(6, process->getExecutionStatus());
    EXPECT_STREQ(L"Other", process->getSaveRestoreScript());
    EXPECT_EQ(2, process->getSaveRestoreScriptType());
    EXPECT_EQ(2, process->getExecutionMode());
    EXPECT_EQ(1, process->getProcessSaveStatus());
    EXPECT_STREQ(L"flow", process->getProcessFlowType());
    process->setSaveRestoreScriptType(EScriptType_JAVA);
    EXPECT_EQ(4, process->getSaveRestoreScriptType());
    process->setSaveRestoreScript(process->getSaveRestoreScript() + 1);
    EXPECT_STREQ(L"ther", process->getSaveRestoreScript());
    process->setSaveRestoreScript(nullptr);
    EXPECT_STREQ(L"", process->getSaveRestoreScript());
    EXPECT_STREQ(L"", process->GetSaveRestoreScript());
    process->setExecutionStatus(static_cast<CFCProcessNode::CFCProcessExecutionStatus>(44));
    EXPECT_EQ(44, process->getExecutionStatus());
}

TEST(FCProcessNode, EachFlagStandsForItself) {
    struct Flag {
        bool (CFCProcessNode::*get)();
        void (CFCProcessNode::*set)(bool);
    };
    Flag const flags[] = {
        {&CFCProcessNode::getRandomExecutionStatus, &CFCProcessNode::setRandomExecutionStatus},
        {&CFCProcessNode::getRunOnLoadStatus, &CFCProcessNode::setRunOnLoadStatus},
        {&CFCProcessNode::getModelDependency, &CFCProcessNode::setModelDependency},
        {&CFCProcessNode::IsVariablesSerializableToTNB, &CFCProcessNode::SerializeVariablesToTNB},
        {&CFCProcessNode::hasDiagram, &CFCProcessNode::showDiagram},
    };
    auto const process = makeTree();
    for (Flag const& flag : flags) {
        (process.get()->*flag.set)(true);
        for (Flag const& other : flags) {
            EXPECT_EQ(&other == &flag, (process.get()->*other.get)());
        }
        (process.get()->*flag.set)(false);
    }
}

TEST(FCProcessNode, ProjectTypeIsReadBack) {
    auto const process = makeTree();
    IFCNode* const node = process.get();
    node->SetProjectType(EProjectType_TASK);
    EXPECT_EQ(1, node->GetProjectType());
    // A sub-process answers like any other node.
    CFCSubProcessNode sub;
    sub.SetProjectType(EProjectType_TASK);
    EXPECT_EQ(8, sub.GetProjectType());
}

TEST(FCProcessNode, CommandTextsAreThoseOfItsBlockData) {
    auto const process = makeTree();
    process->SetCOMInteface(L"i");
    process->SetCOMCommand(L"c");
    process->SetExecuteMethod(L"m");
    CFCBlockData* const data = process->GetFCBlockData();
    EXPECT_STREQ(L"i", data->GetCOMInteface());
    EXPECT_STREQ(L"c", data->GetCOMCommand());
    EXPECT_STREQ(L"m", data->GetExecuteMethod());
    data->SetCOMInteface(L"x");
    EXPECT_STREQ(L"x", process->GetCOMInteface());
    EXPECT_STREQ(L"c", process->GetCOMCommand());
    EXPECT_STREQ(L"m", process->GetExecuteMethod());
}

TEST(FCProcessNode, HostMembersAreEmpty) {
    auto const process = makeTree();
    auto* const a = addChild(process.get(), L"A");
    process->execute(L"x");
    process->saveDataModels();
    EXPECT_EQ(nullptr, process->getStartBlock());
    EXPECT_EQ(0, process->importVariables(L"x"));
    EXPECT_EQ(0, process->loadTeamplate(L"x"));
    EXPECT_EQ(0, process->writeVariables(L"x"));
    EXPECT_EQ(a, process->GetFirstConnectedBlock());
}

TEST(FCProcessNode, StartIsFoundAmongItsBlocks) {
    auto const process = makeTree();
    // Only the two extra children: no block, no start.
    EXPECT_EQ(nullptr, process->GetFirstConnectedBlock());
    EXPECT_EQ(nullptr, process->GetNextConnectedBlock());
    auto* const a = addChild(process.get(), L"A");
    auto* const b = addChild(process.get(), L"B");
    auto* const c = addChild(process.get(), L"C");
    EXPECT_EQ(c, process->GetFirstConnectedBlock());
    connect(process.get(), a, b);
    connect(process.get(), b, c);
    EXPECT_EQ(a, process->GetFirstConnectedBlock());
    EXPECT_EQ(a, process->GetNextConnectedBlock());
    EXPECT_EQ(b, a->GetNextConnectedBlock());
    EXPECT_EQ(c, b->GetNextConnectedBlock());
    EXPECT_EQ(nullptr, c->GetNextConnectedBlock());
}

TEST(FCProcessNode, CopiesTakeEveryFieldAndShareTheTwoExtraNodes) {
    auto const process = makeTree();
    process->setProjectDirectory(L"dir");
    process->setExecutionStatus(CFCProcessNode::ExecutionDone);
    process->setSaveRestoreScript(L"script", EScriptType_JAVA);
    process->setExecutionMode(CFCProcessNode::ExecutionUndo);
    process->setProcessSaveStatus(CFCProcessNode::ProcessUnsaved);
    process->setRandomExecutionStatus(true);
    process->setRunOnLoadStatus(true);
    process->setModelDependency(true);
    process->SerializeVariablesToTNB(true);
    process->showDiagram(true);
    process->setProcessFlowType(L"flow");
    process->SetProjectType(EProjectType_MSP);
    process->SetNodeId(L"P");
    // What belongs to the process that is assigned to stays in its tree.
    auto const former = makeTree();
    IFCNode* const formerHistory = former->GetChild();
    {
        CFCProcessNode built(*process);
        CFCProcessNode assigned(*former);
        assigned = *process;
        for (CFCProcessNode* copy : {&built, &assigned}) {
            EXPECT_EQ(process->GetFavouriteNode(), copy->GetFavouriteNode());
            EXPECT_EQ(process->GetHistoryNode(), copy->GetHistoryNode());
            EXPECT_EQ(process->GetChild(), copy->GetChild());
            EXPECT_STREQ(L"dir", copy->getProjectDirectory());
            EXPECT_EQ(3, copy->getExecutionStatus());
            EXPECT_STREQ(L"script", copy->getSaveRestoreScript());
            EXPECT_EQ(4, copy->getSaveRestoreScriptType());
            EXPECT_EQ(2, copy->getExecutionMode());
            EXPECT_EQ(1, copy->getProcessSaveStatus());
            EXPECT_TRUE(copy->getRandomExecutionStatus());
            EXPECT_TRUE(copy->getRunOnLoadStatus());
            EXPECT_TRUE(copy->getModelDependency());
            EXPECT_TRUE(copy->IsVariablesSerializableToTNB());
            EXPECT_TRUE(copy->hasDiagram());
            EXPECT_STREQ(L"flow", copy->getProcessFlowType());
            EXPECT_EQ(2, copy->GetProjectType());
            EXPECT_STREQ(L"P", copy->GetNodeId());
        }
    }
    // The copies took neither of them along.
    EXPECT_EQ(process->GetHistoryNode(), CFCNodeManager::GetNode(process->GetHistoryNode()->GetNodeHandle()));
    EXPECT_EQ(process->GetFavouriteNode(), CFCNodeManager::GetNode(process->GetFavouriteNode()->GetNodeHandle()));
    EXPECT_EQ(formerHistory, CFCNodeManager::GetNode(formerHistory->GetNodeHandle()));
}
