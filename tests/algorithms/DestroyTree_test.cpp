#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableList.h"

#include <memory>
#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

// Counts the nodes made since its own making that are still there, lists and catalog nodes included.
class LiveNodes {
public:
    LiveNodes() : m_first(CFCSubGroupNode().GetNodeHandle() + 1) {}

    int count() const {
        int const end = CFCSubGroupNode().GetNodeHandle();
        int alive = 0;
        for (int handle = m_first; handle < end; ++handle) {
            alive += CFCNodeManager::GetNode(handle) != nullptr ? 1 : 0;
        }
        return alive;
    }

private:
    int m_first;
};

CFCConnector* connect(IFCNode* container, IFCNode* from, IFCNode* to) {
    auto* const connector = dynamic_cast<CFCConnector*>(make(68));
    connector->SetStartNode(6, dynamic_cast<CFCBlockNode*>(from));
    connector->SetEndNode(2, dynamic_cast<CFCBlockNode*>(to));
    container->AddConnector(connector);
    return connector;
}

TEST(DestroyTree, NullIsNothing) {
    LiveNodes const live;
    CFCNodeHelper::DestroyTree(nullptr);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, LeavesNothingOfANewNodeOfAnyType) {
    int made = 0;
    for (int type = 0; type < 200; ++type) {
        LiveNodes const live;
        IFCNode* const node = CFCNodeFactory().Create(type);
        if (node == nullptr) {
            continue;
        }
        ++made;
        EXPECT_GT(live.count(), 0) << type;
        CFCNodeHelper::DestroyTree(node);
        // A sub-process of type 60 draws the handles of a second object, which nobody holds.
        EXPECT_EQ(live.count(), type == 60 ? 5 : 0) << type;
    }
    EXPECT_GT(made, 30);
}

TEST(DestroyTree, TakesChildrenAtAnyDepth) {
    LiveNodes const live;
    IFCNode* const root = make(56);
    for (int i = 0; i < 5; ++i) {
        IFCNode* const sub = addFirst(root, 61);
        for (int j = 0; j < 5; ++j) {
            addFirst(addFirst(sub, 61), 150);
        }
    }
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, TakesVeryDeepAndVeryBroadTrees) {
    LiveNodes const live;
    IFCNode* const deep = make(69);
    deepen(deep, kGreatDepth);
    CFCNodeHelper::DestroyTree(deep);
    IFCNode* const broad = make(69);
    for (int i = 0; i < kGreatDepth; ++i) {
        addFirst(broad, 71);
    }
    CFCNodeHelper::DestroyTree(broad);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, TakesTheConnectorsOfEveryContainer) {
    LiveNodes const live;
    IFCNode* const root = make(56);
    IFCNode* const sub = addFirst(root, 61);
    for (IFCNode* container : {root, sub}) {
        IFCNode* before = addFirst(container, 57);
        // Enough for the lookups over connectors and children to keep an index.
        for (int i = 0; i < 100; ++i) {
            IFCNode* const block = addFirst(container, 57, (L"B" + std::to_wstring(i)).c_str());
            connect(container, before, block);
            before = block;
        }
        dynamic_cast<CFCBlockNode*>(container)->FindChildBlock(L"B50");
        dynamic_cast<CFCBlockNode*>(before)->GetNextConnectedBlock();
    }
    EXPECT_EQ(sub->GetConnectorList()->GetCount(), 100);
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, TakesVariablesWithWhatTheyMade) {
    LiveNodes const live;
    IFCNode* const root = make(61);
    IFCNode* const block = addFirst(root, 57);
    for (IFCNode* owner : {root, block}) {
        for (int i = 0; i < 40; ++i) {
            addVariable(owner, (L"v" + std::to_wstring(i)).c_str());
        }
        CFCNodeHelper::FindVariableByName(L"v20", owner);
        CFCVariableData* const numbers = addVariable(owner, L"numbers");
        double const values[] = {1.0, 2.0, 3.0};
        numbers->setValue(3, values);
        CFCVariableData* const texts = addVariable(owner, L"texts");
        char const* const words[] = {"one", "two"};
        texts->setValue(2, words);
        CFCVariableData* const clone = numbers->CloneVariable();
        clone->SetParentNode(owner);
        owner->GetVariableList()->AddTail(clone);
        addVariable(owner, L"option")->AddOption(L"a");
    }
    addVariable(block, L"link", L"numbers")->Resolve();
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, LeavesCatalogNodesThatAVariableDidNotMake) {
    Tree catalog(81);
    auto* const shared = dynamic_cast<CFCDataTypeNode*>(addFirst(catalog, 80));
    shared->SetType(L"Int");
    IFCNode* const block = make(57);
    addVariable(block, L"x")->SetDataTypeNode(shared);
    CFCNodeHelper::DestroyTree(block);
    EXPECT_STREQ(shared->GetType(), L"Int");
    EXPECT_EQ(catalog->GetChild(), shared);
}

TEST(DestroyTree, TakesScripts) {
    LiveNodes const live;
    IFCNode* const root = make(61);
    addFirst(root, 57)->GetFCBlockData()->CreateNewScript();
    root->GetFCBlockData()->CreateNewScript();
    root->GetFCBlockData()->CreateNewScript();
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

void fillRecords(IFCNode* node) {
    CFCBPMBlockData* const data = node->GetBPMBlockData();
    for (int i = 0; i < 3; ++i) {
        data->CreateNewActionException();
        data->CreateNewScriptException();
        data->CreateNewEventAction();
        data->CreateNewTimerAction();
        data->CreateNewReminderData();
        data->CreateNewTransition();
        // Readers make records for scripts without an owner.
        data->GetScriptEventList()->AddTail(new CFCEventActionData);
        data->GetScriptExceptionList()->AddTail(new CFCExceptionActionData);
    }
}

TEST(DestroyTree, TakesTheRecordsOfWorkflowBlocks) {
    LiveNodes const live;
    IFCNode* const root = make(160);
    fillRecords(root);
    fillRecords(addFirst(root, 150));
    IFCNode* const group = addFirst(root, 161);
    fillRecords(addFirst(group, 165));
    TuRect form{1, 2, 3, 4};
    group->GetBPMBlockData()->SetGUIRect(&form);
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, TakesTheExtraNodesOfAProcess) {
    for (int type : {56, 160}) {
        LiveNodes const live;
        auto* const process = dynamic_cast<CFCProcessNode*>(make(type));
        // What the host puts into them is part of the tree.
        addFirst(process->GetFavouriteNode(), 70);
        process->SetDefaults();
        EXPECT_EQ(CFCNodeHelper::GetBlockCount(process), 5);
        CFCNodeHelper::DestroyTree(process);
        EXPECT_EQ(live.count(), 0) << type;
    }
}

TEST(DestroyTree, TakesTheVariablesOfADeployment) {
    LiveNodes const live;
    IFCNode* const deployment = make(182);
    deployment->CreateNewVariable();
    deployment->CreateNewVariable();
    CFCNodeHelper::DestroyTree(deployment);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, TakesTheRecordsOfAnApplication) {
    LiveNodes const live;
    IFCNode* const root = make(160);
    for (int type : {167, 168}) {
        auto* const application = dynamic_cast<CFCApplicationNode*>(addFirst(root, type, L"A"));
        fillRecords(application);
        addVariable(application, L"x")->SetNature(L"Deployment");
        application->CreateDefaultDeployments();
        for (int i = 0; i < 3; ++i) {
            application->CreateNewArgument();
            application->CreateNewPattern();
            application->CreateNewCmdLine();
            application->CreateNewDeployment()->CreateNewVariable();
        }
        // Records without an owner, as clones are.
        application->GetArgumentList()->AddTail(new CFCArgumentData);
        application->GetDeploymentList()->AddTail(
            CFCDeploymentData::CloneDeployment(application->GetDeployment(L"Windows")));
    }
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, LeavesTheRecordsThatACopyOfAnApplicationShares) {
    LiveNodes const live;
    auto* const application = dynamic_cast<CFCApplicationNode*>(make(167));
    application->GetArgumentList()->AddTail(new CFCArgumentData);
    application->CreateNewDeployment()->CreateNewVariable();
    CFCNodeHelper::DestroyTree(new CFCApplicationNode(*application));
    EXPECT_EQ(application->GetArgumentList()->GetCount(), 1);
    EXPECT_EQ(application->GetDeploymentList()->GetHead()->GetVariableList()->GetCount(), 1);
    CFCNodeHelper::DestroyTree(application);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, TakesAListWithItsElementsAsTrees) {
    LiveNodes const live;
    auto* const list = new CFCNodeList;
    for (int i = 0; i < 3; ++i) {
        IFCNode* const element = make(61);
        addVariable(addFirst(element, 57), L"x");
        connect(element, element->GetChild(), element->GetChild());
        list->AddTail(element);
    }
    auto* const variables = new CFCVariableList;
    variables->AddTail(new CFCVariableData);
    variables->AddTail(new CFCVariableData("narrow", 0, 0, 0));
    list->AddTail(variables);
    CFCNodeHelper::DestroyTree(list);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, StopsAtTheTailOfAList) {
    Tree other(69);
    IFCNode* const foreign = addFirst(other, 71);
    auto* const list = new CFCNodeList;
    IFCNode* const element = make(71);
    element->SetNext(foreign);
    list->AddTail(element);
    CFCNodeHelper::DestroyTree(list);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(other), 1);
    EXPECT_EQ(other->GetChild(), foreign);
}

TEST(DestroyTree, TakesNodesThatStandInASecondChainToo) {
    Tree chain(new CFCNodeList);
    CFCDLinkList second;
    LiveNodes const live;
    IFCNode* const root = make(69);
    second.AddTail(addFirst(root, 71));
    second.AddTail(addFirst(root, 71));
    second.Clear();
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, DoesNotTakeTheElementsOfAChainThatOwnsNothing) {
    Tree root(69);
    IFCNode* const node = addFirst(root, 71);
    auto* const second = new CFCDLinkList;
    second->AddTail(node);
    CFCNodeHelper::DestroyTree(second);
    EXPECT_TRUE(CFCNodeHelper::IsValidNode(root, node));
    EXPECT_EQ(CFCNodeManager::GetNode(node->GetNodeHandle()), node);
}

// --- A part of a tree ------------------------------------------------------------------------------------------

TEST(DestroyTree, TakesTheNodeOutOfItsSiblings) {
    for (int position = 0; position < 4; ++position) {
        Tree root(61);
        std::vector<IFCNode*> children{make(61, L"A"), make(61, L"B"), make(61, L"C"), make(61, L"D")};
        adopt(root, children);
        IFCNode* const gone = children[static_cast<std::size_t>(position)];
        addFirst(gone, 57);
        LiveNodes const live;
        CFCNodeHelper::DestroyTree(gone);
        children.erase(children.begin() + position);

        std::vector<IFCNode*> forward;
        IFCNode* last = nullptr;
        for (IFCNode* child = root->GetChild(); child != nullptr; child = child->GetNext()) {
            forward.push_back(child);
            EXPECT_EQ(child->GetPrev(), last) << position;
            last = child;
        }
        EXPECT_EQ(forward, children) << position;
    }
}

TEST(DestroyTree, LeavesAnOnlyChildsParentWithout) {
    Tree root(61);
    CFCNodeHelper::DestroyTree(addFirst(root, 57));
    EXPECT_EQ(root->GetChild(), nullptr);
    addFirst(root, 57, L"B");
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(root), 1);
}

TEST(DestroyTree, TakesABlockOutOfTheFlow) {
    Tree root(61);
    IFCNode* const a = addFirst(root, 57, L"A");
    IFCNode* const b = addFirst(root, 57, L"B");
    IFCNode* const c = addFirst(root, 57, L"C");
    CFCConnector* const into = connect(root, a, b);
    CFCConnector* const outOf = connect(root, b, c);
    CFCConnector* const past = connect(root, a, c);
    CFCNodeHelper::DestroyTree(b);
    EXPECT_FALSE(into->IsValid());
    EXPECT_TRUE(into->IsDeleted());
    EXPECT_FALSE(outOf->IsValid());
    EXPECT_TRUE(past->IsValid());
    EXPECT_EQ(root->GetConnectorList()->GetCount(), 3);
    EXPECT_EQ(dynamic_cast<CFCBlockNode*>(a)->GetNextConnectedBlock(), dynamic_cast<CFCBlockNode*>(c));
}

TEST(DestroyTree, LinksIntoTheLostPartReadAsThemselves) {
    Tree root(56);
    IFCNode* const producer = addFirst(root, 57, L"A");
    addVariable(producer, L"x");
    CFCVariableData* const consumer = addVariable(addFirst(root, 57, L"B"), L"y", L"A.x");
    consumer->Resolve();
    ASSERT_NE(consumer->GetActualVariableData(), consumer);
    CFCNodeHelper::DestroyTree(producer);
    EXPECT_EQ(consumer->GetActualVariableData(), consumer);
}

TEST(DestroyTree, LeavesAChildThatMovedToAnotherParent) {
    Tree now(69);
    IFCNode* const before = make(69);
    IFCNode* const moved = addFirst(before, 71);
    now->AppendChild(moved, false);
    ASSERT_EQ(before->GetChild(), moved) << "nobody unhooked it";
    CFCNodeHelper::DestroyTree(before);
    EXPECT_EQ(now->GetChild(), moved);
    EXPECT_EQ(CFCNodeManager::GetNode(moved->GetNodeHandle()), moved);
}

TEST(DestroyTree, AStaleLinkOfAFirstChildLeadsNowhere) {
    // The first child of a node keeps the sibling links it came with.
    Tree former(69);
    IFCNode* const moved = make(71);
    IFCNode* const sibling = make(71);
    adopt(former, {moved, sibling});
    former->SetChild(sibling);
    sibling->SetPrev(nullptr);
    IFCNode* const now = make(69);
    now->AppendChild(moved, false);
    ASSERT_EQ(moved->GetNext(), sibling);
    CFCNodeHelper::DestroyTree(now);
    EXPECT_EQ(former->GetChild(), sibling);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(former), 1);
}

// --- Shallow copies --------------------------------------------------------------------------------------------

IFCNode* fullBlock() {
    IFCNode* const block = make(150, L"Task_01");
    addVariable(block, L"x");
    addVariable(block, L"y");
    block->GetFCBlockData()->CreateNewScript();
    IFCNode* const a = addFirst(block, 57, L"A");
    IFCNode* const b = addFirst(block, 57, L"B");
    connect(block, a, b);
    fillRecords(block);
    return block;
}

TEST(DestroyTree, ACopyGoesAlone) {
    LiveNodes const live;
    IFCNode* const source = fullBlock();
    auto* const copy = new CFCBPMTaskNode(*dynamic_cast<CFCBPMTaskNode*>(source));
    CFCNodeHelper::DestroyTree(copy);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(source), 2);
    EXPECT_EQ(source->GetConnectorList()->GetCount(), 1);
    EXPECT_EQ(source->GetFCBlockData()->GetScriptList()->GetCount(), 1);
    EXPECT_EQ(source->GetBPMBlockData()->GetEventList()->GetCount(), 3);
    CFCNodeHelper::DestroyTree(source);
    EXPECT_EQ(live.count(), 0) << "the source still owns what is its own";
}

TEST(DestroyTree, ACopyMayOutliveItsSource) {
    LiveNodes const live;
    IFCNode* const source = fullBlock();
    auto* const copy = new CFCBPMTaskNode(*dynamic_cast<CFCBPMTaskNode*>(source));
    CFCNodeHelper::DestroyTree(source);
    EXPECT_EQ(live.count(), 1) << "the resource record goes with the last of those that share it";
    CFCNodeHelper::DestroyTree(copy);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, ACopyMayStandInTheTreeOfItsSource) {
    LiveNodes const live;
    IFCNode* const root = make(61);
    IFCNode* const source = fullBlock();
    root->AppendChild(source, false);
    root->AppendChild(new CFCBPMTaskNode(*dynamic_cast<CFCBPMTaskNode*>(source)), false);
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, ACopyOfAProcessLeavesTheProcessWhole) {
    for (int type : {56, 160}) {
        LiveNodes const live;
        IFCNode* const source = make(type);
        IFCNode* copy = nullptr;
        if (type == 160) {
            copy = new CFCBPMProcessNode(*dynamic_cast<CFCBPMProcessNode*>(source));
        } else {
            copy = new CFCProcessNode(*dynamic_cast<CFCProcessNode*>(source));
        }
        CFCNodeHelper::DestroyTree(copy);
        EXPECT_EQ(captions(source), (std::vector<std::string>{"Last Opened", "Favourites"}));
        CFCNodeHelper::DestroyTree(source);
        EXPECT_EQ(live.count(), 0) << type;
    }
}

TEST(DestroyTree, RecordsSharedByTwoBlocksGoOnce) {
    for (bool sourceFirst : {true, false}) {
        LiveNodes const live;
        IFCNode* const source = make(150);
        IFCNode* const target = make(150);
        fillRecords(source);
        CFCBPMBlockData::Copy(source->GetBPMBlockData(), target->GetBPMBlockData(), 1);
        ASSERT_EQ(target->GetBPMBlockData()->GetTransitionList()->GetHeadPosition(),
                  source->GetBPMBlockData()->GetTransitionList()->GetHeadPosition());
        CFCNodeHelper::DestroyTree(sourceFirst ? source : target);
        if (!sourceFirst) {
            EXPECT_EQ(source->GetBPMBlockData()->GetTransitionList()->GetCount(), 3) << "still there";
        }
        CFCNodeHelper::DestroyTree(sourceFirst ? target : source);
        EXPECT_EQ(live.count(), 0) << sourceFirst;
    }
}

TEST(DestroyTree, RecordsSharedWithinATreeGoOnce) {
    LiveNodes const live;
    IFCNode* const root = make(160);
    IFCNode* const source = addFirst(root, 150);
    IFCNode* const target = addFirst(root, 150);
    fillRecords(source);
    CFCBPMBlockData::Copy(source->GetBPMBlockData(), target->GetBPMBlockData(), 1);
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, ConnectorsMovedBetweenContainersOfATreeGoOnce) {
    LiveNodes const live;
    IFCNode* const root = make(61);
    IFCNode* const from = addFirst(root, 61);
    IFCNode* const to = addFirst(root, 61);
    IFCNode* const a = addFirst(from, 57);
    IFCNode* const b = addFirst(from, 57);
    connect(from, a, b);
    connect(from, b, a);
    to->GetFCBlockData()->SetConnectorList(from->GetConnectorList());
    ASSERT_EQ(to->GetConnectorList()->GetCount(), 2);
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(live.count(), 0);
}

TEST(DestroyTree, ACopyOfAVariableKeepsItsCatalogNodes) {
    IFCNode* const block = make(57);
    CFCVariableData* const variable = addVariable(block, L"x");
    variable->GetDataTypeNode()->SetType(L"Int");
    CFCVariableData copy(*variable);
    CFCNodeHelper::DestroyTree(block);
    EXPECT_STREQ(copy.GetDataTypeNode()->GetType(), L"Int");
    delete copy.GetDataTypeNode();
    delete copy.GetFileTypeNode();
}

// --- Classes of the host ---------------------------------------------------------------------------------------

TEST(DestroyTree, CallsTheDestructorsOfAHostsOwnNodes) {
    class HostBlock : public CFCBlockNode {
    public:
        explicit HostBlock(int& gone) : m_gone(gone) {}
        ~HostBlock() override { ++m_gone; }

    private:
        int& m_gone;
    };
    class HostConnector : public CFCConnector {
    public:
        explicit HostConnector(int& gone) : m_gone(gone) {}
        ~HostConnector() override { ++m_gone; }

    private:
        int& m_gone;
    };
    int gone = 0;
    IFCNode* const root = new HostBlock(gone);
    root->AppendChild(new HostBlock(gone), false);
    root->AddConnector(new HostConnector(gone));
    CFCNodeHelper::DestroyTree(root);
    EXPECT_EQ(gone, 3);
}

} // namespace
