#include "flowmere/model/FCApplicationNode.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCVariableList.h"

#include <string>

using namespace flowmere::test;

namespace {

CFCApplicationNode* application(IFCNode* node) {
    return dynamic_cast<CFCApplicationNode*>(node);
}

std::string argumentsOf(CFCApplicationNode* node) {
    std::string text;
    CFCArgumentList* const list = node->GetArgumentList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        text += narrow(list->GetNext(position)->GetArgumentName()) + ";";
    return text;
}

std::string deploymentsOf(CFCApplicationNode* node) {
    std::string text;
    CFCDeploymentList* const list = node->GetDeploymentList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCDeploymentData* const deployment = list->GetNext(position);
        text += narrow(deployment->GetNodeCaption()) + ":";
        CFCVariableList* const variables = deployment->GetVariableList();
        for (__FCPOSITION* place = variables->GetHeadPosition(); place != nullptr;) {
            CFCVariableData* const variable = variables->GetNext(place);
            text += narrow(variable->GetVariableName()) + "=" + narrow(variable->GetValue()) + ",";
        }
        text += ";";
    }
    return text;
}

// An application with something of everything.
class ApplicationCopies : public testing::Test {
protected:
    ApplicationCopies() {
        node.SetNodeCaption(L"Solve");
        node.SetNodeId(L"Task_01");
        node.SetToolTip(L"tip");
        node.SetTaskDescription(L"description");
        CFCVariableData* const variable = addVariable(&node, L"x");
        variable->SetValue(L"1");
        variable->SetNature(L"Deployment");
        node.CreateNewArgument()->SetArgumentName(L"a");
        node.CreateNewArgument()->SetArgumentName(L"b");
        node.GetArgumentList()->GetAt(0)->SetNodeCaption(L"not copied");
        node.CreateNewPattern();
        node.CreateNewCmdLine();
        node.CreateDefaultDeployments();
        node.CreateNewDeployment()->SetNodeCaption(L"Linux");
        node.SetAppID(5);
        node.SetAppIndex(6);
        node.SetAppType(L"type");
        node.SetNewVersion(1);
        node.SetUpdated(1);
        node.SetUseBindingScript(true);
        node.Initialize();
    }

    Tree source{make(167)};
    CFCApplicationNode& node = *application(source);
};

constexpr char kDeployments[] = "Windows:x=1,;Linux:;";

} // namespace

TEST_F(ApplicationCopies, CloneHasCaptionBlockVariablesRecordArgumentsAndDeployments) {
    Tree const clone(CFCApplicationNode::Clone(source));
    CFCApplicationNode* const copy = application(clone);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetNodeType(), 167);
    EXPECT_STREQ(copy->GetNodeCaption(), L"Solve");
    EXPECT_STREQ(copy->GetNodeId(), L"Task_01");
    EXPECT_STREQ(copy->GetToolTip(), L"tip");
    EXPECT_STREQ(copy->GetTaskDescription(), L"description");
    EXPECT_STREQ(copy->GetTaskName(), L"Task_01");
    ASSERT_EQ(copy->GetVariableList()->GetCount(), 1);
    __FCPOSITION* position = copy->GetVariableList()->GetHeadPosition();
    CFCVariableData* const variable = copy->GetVariableList()->GetNext(position);
    EXPECT_STREQ(variable->GetVariableName(), L"x");
    EXPECT_STREQ(variable->GetValue(), L"1");
    EXPECT_EQ(variable->GetParentNode(), copy);
    EXPECT_EQ(argumentsOf(copy), "a;b;");
    EXPECT_EQ(deploymentsOf(copy), kDeployments);
    EXPECT_EQ(copy->GetParentNode(), nullptr);
    EXPECT_NE(copy->GetNodeHandle(), node.GetNodeHandle());
}

TEST_F(ApplicationCopies, CloneIsWithoutPatternsCommandLinesIdentifierAndTemplates) {
    addFirst(source, 167, L"child");
    Tree const clone(CFCApplicationNode::Clone(source));
    CFCApplicationNode* const copy = application(clone);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetPatternList()->GetCount(), 0);
    EXPECT_EQ(copy->GetCmdLineList()->GetCount(), 0);
    EXPECT_EQ(copy->GetAppID(), 0);
    EXPECT_EQ(copy->GetAppIndex(), 0);
    EXPECT_STREQ(copy->GetAppType(), L"Application");
    EXPECT_EQ(copy->IsNewVersion(), 0);
    EXPECT_EQ(copy->IsUpdated(), 0);
    EXPECT_FALSE(copy->IsUseBindingScript());
    EXPECT_EQ(copy->m_strJobTemplate, L"");
    EXPECT_EQ(copy->m_strVariableTemplate, L"");
    EXPECT_EQ(copy->GetChild(), nullptr);
}

TEST_F(ApplicationCopies, ClonedRecordsAreNewAndHaveNoParent) {
    Tree const clone(CFCApplicationNode::Clone(source));
    CFCApplicationNode* const copy = application(clone);
    ASSERT_NE(copy, nullptr);
    IFCNode* const argument = copy->GetArgumentList()->GetAt(0);
    EXPECT_NE(argument, node.GetArgumentList()->GetAt(0));
    EXPECT_EQ(argument->GetParentNode(), nullptr);
    EXPECT_STREQ(argument->GetNodeCaption(), L"");
    CFCDeploymentData* const deployment = copy->GetDeployment(L"Windows");
    ASSERT_NE(deployment, nullptr);
    EXPECT_NE(deployment, node.GetDeployment(L"Windows"));
    EXPECT_EQ(deployment->GetParentNode(), nullptr);
    EXPECT_NE(deployment->GetVariableList()->GetAt(0), node.GetDeployment(L"Windows")->GetVariableList()->GetAt(0));
    EXPECT_EQ(node.GetArgumentList()->GetCount(), 2) << "the source stays as it is";
    EXPECT_EQ(node.GetDeploymentList()->GetCount(), 2);
}

TEST_F(ApplicationCopies, CloneSharesTheRecordsOfTheWorkflow) {
    CFCTransitionData* const transition = node.CreateNewTransition();
    CFCEventActionData* const event = node.CreateNewEventAction();
    Tree const clone(CFCApplicationNode::Clone(source));
    ASSERT_NE(application(clone), nullptr);
    EXPECT_EQ(application(clone)->GetTransitionList()->GetAt(0), transition);
    EXPECT_EQ(application(clone)->GetEventList()->GetAt(0), event);
}

TEST(CFCApplicationNode, ACloneOutlivesItsSource) {
    IFCNode* const source = make(167, L"A");
    application(source)->CreateNewTransition();
    application(source)->CreateNewArgument()->SetArgumentName(L"a");
    application(source)->CreateNewDeployment()->CreateNewVariable();
    Tree const clone(CFCApplicationNode::Clone(source));
    CFCNodeHelper::DestroyTree(source);
    ASSERT_NE(application(clone), nullptr);
    EXPECT_EQ(argumentsOf(application(clone)), "a;");
    EXPECT_EQ(application(clone)->GetDeploymentList()->GetHead()->GetVariableList()->GetCount(), 1);
}

TEST_F(ApplicationCopies, OfATaskCloneIsAnApplicationWithoutLists) {
    Tree const task(150, L"Task_02", L"Task");
    task->GetBPMBlockData()->SetUser(L"ada");
    addVariable(task, L"y");
    Tree const clone(CFCApplicationNode::Clone(task));
    CFCApplicationNode* const copy = application(clone);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetNodeType(), 167);
    EXPECT_STREQ(copy->GetNodeId(), L"Task_02");
    EXPECT_STREQ(copy->GetUser(), L"ada");
    EXPECT_EQ(copy->GetVariableList()->GetCount(), 1);
    EXPECT_EQ(copy->GetArgumentList()->GetCount(), 0);
    EXPECT_EQ(copy->GetDeploymentList()->GetCount(), 0);
}

TEST(CFCApplicationNode, WithoutWorkflowRecordThereIsNoCloneAndNothingIsLeft) {
    EXPECT_EQ(CFCApplicationNode::Clone(nullptr), nullptr);
    EXPECT_EQ(CFCApplicationNode::CloneNodeComplex(nullptr), nullptr);
    for (int const type : {57, 61, 71}) {
        Tree const node(type, L"N");
        if (node->GetVariableList() != nullptr)
            addVariable(node, L"x");
        Tree const before(71);
        EXPECT_EQ(CFCApplicationNode::Clone(node), nullptr) << type;
        EXPECT_EQ(CFCApplicationNode::CloneNodeComplex(node), nullptr) << type;
        Tree const after(71);
        EXPECT_GT(after->GetNodeHandle(), before->GetNodeHandle() + 1) << "the node is made before the record is seen";
        for (int handle = before->GetNodeHandle() + 1; handle < after->GetNodeHandle(); ++handle)
            EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr) << type << ' ' << handle;
    }
}

// --- Lists alone ------------------------------------------------------------------------------------------------

TEST_F(ApplicationCopies, CopiedArgumentsStandBehindThoseThatAreThere) {
    Tree const target(167);
    application(target)->CreateNewArgument()->SetArgumentName(L"own");
    EXPECT_TRUE(CFCApplicationNode::CopyArguments(source, target));
    EXPECT_EQ(argumentsOf(application(target)), "own;a;b;");
    EXPECT_TRUE(CFCApplicationNode::CopyArguments(source, target));
    EXPECT_EQ(argumentsOf(application(target)), "own;a;b;a;b;");
    EXPECT_EQ(deploymentsOf(application(target)), "");
    EXPECT_EQ(argumentsOf(&node), "a;b;");
}

TEST_F(ApplicationCopies, CopiedDeploymentsStandBehindThoseThatAreThere) {
    Tree const target(167);
    application(target)->CreateNewDeployment()->SetNodeCaption(L"own");
    EXPECT_TRUE(CFCApplicationNode::CopyDeployments(source, target));
    EXPECT_EQ(deploymentsOf(application(target)), std::string("own:;") + kDeployments);
    EXPECT_EQ(argumentsOf(application(target)), "");
    EXPECT_EQ(deploymentsOf(&node), kDeployments);
}

TEST_F(ApplicationCopies, NothingIsCopiedWithinOneNodeOrFromAndToOthers) {
    Tree const task(150);
    task->SetNodeType(167);
    struct Row {
        IFCNode* from;
        IFCNode* to;
    };
    for (Row const& row : {Row{nullptr, source}, Row{source, nullptr}, Row{nullptr, nullptr}, Row{source, source},
                           Row{source, task}, Row{task, source}}) {
        EXPECT_FALSE(CFCApplicationNode::CopyArguments(row.from, row.to));
        EXPECT_FALSE(CFCApplicationNode::CopyDeployments(row.from, row.to));
    }
    EXPECT_EQ(argumentsOf(&node), "a;b;");
    EXPECT_EQ(deploymentsOf(&node), kDeployments);
}

TEST_F(ApplicationCopies, AListCopiedFromOneThatSharesItsRecordsComesToAnEnd) {
    auto* const shallow = new CFCApplicationNode(node);
    EXPECT_TRUE(CFCApplicationNode::CopyArguments(source, shallow));
    EXPECT_TRUE(CFCApplicationNode::CopyDeployments(source, shallow));
    EXPECT_EQ(argumentsOf(shallow), "a;b;a;b;");
    // The clones hang behind the shared records, and the source knows only its own tail.
    shallow->GetArgumentList()->DeleteNode(shallow->GetArgumentList()->GetAt(3));
    shallow->GetArgumentList()->DeleteNode(shallow->GetArgumentList()->GetAt(2));
    for (int index : {3, 2}) {
        auto* const clone = dynamic_cast<CFCDeploymentData*>(shallow->GetDeploymentList()->GetAt(index));
        while (IFCNode* const variable = clone->GetVariableList()->GetAt(0)) {
            variable->GetVariableData()->ReleaseOwnedParts();
            clone->GetVariableList()->DeleteNode(variable);
        }
        shallow->GetDeploymentList()->DeleteNode(clone);
    }
    EXPECT_EQ(argumentsOf(&node), "a;b;");
    EXPECT_EQ(deploymentsOf(&node), kDeployments);
    CFCNodeHelper::DestroyTree(shallow);
}

// --- Trees ------------------------------------------------------------------------------------------------------

TEST(CFCApplicationNode, TreesAreClonedWithEachRowOfChildrenTurnedRound) {
    Tree const source(168, L"root", L"root");
    IFCNode* const b = make(167, L"B", L"B");
    adopt(source, {make(167, L"A", L"A"), b, make(150, L"C", L"C")});
    adopt(b, {make(167, L"D", L"D"), make(167, L"E", L"E")});
    application(b)->CreateNewArgument();
    Tree const clone(CFCApplicationNode::CloneNodeComplex(source));
    ASSERT_NE(clone.root(), nullptr);
    EXPECT_EQ(clone->GetNodeType(), 167) << "each node becomes an application";
    EXPECT_EQ(captions(clone), (std::vector<std::string>{"C", "B", "A"}));
    IFCNode* const copyOfB = clone->GetChild()->GetNext();
    EXPECT_EQ(captions(copyOfB), (std::vector<std::string>{"E", "D"}));
    EXPECT_EQ(copyOfB->GetParentNode(), clone.root());
    EXPECT_EQ(application(copyOfB)->GetArgumentList()->GetCount(), 1);
    EXPECT_EQ(clone->GetChild()->GetNodeType(), 167);
    EXPECT_NE(application(clone->GetChild()), nullptr);
    EXPECT_EQ(captions(source), (std::vector<std::string>{"A", "B", "C"}));
    EXPECT_EQ(captions(b), (std::vector<std::string>{"D", "E"}));
    Tree const again(CFCApplicationNode::CloneNodeComplex(clone));
    EXPECT_EQ(captions(again), (std::vector<std::string>{"A", "B", "C"})) << "a second clone turns them back";
}

TEST(CFCApplicationNode, ChildrenThatCannotBeClonedAreLeftOut) {
    Tree const source(167, L"root", L"root");
    IFCNode* const folder = make(71, L"", L"folder");
    adopt(source, {make(167, L"A", L"A"), folder, make(167, L"B", L"B")});
    addFirst(folder, 167, L"inner", L"inner");
    Tree const clone(CFCApplicationNode::CloneNodeComplex(source));
    ASSERT_NE(clone.root(), nullptr);
    EXPECT_EQ(captions(clone), (std::vector<std::string>{"B", "A"}));
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(clone), 2);
}

TEST(CFCApplicationNode, TreesAreClonedAsDeepAsTheyAre) {
    constexpr int kDepth = 5000; // each level has the weight of a whole task
    Tree const source(167);
    deepen(source, kDepth, 167);
    Tree const clone(CFCApplicationNode::CloneNodeComplex(source));
    ASSERT_NE(clone.root(), nullptr);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(clone), kDepth);
}
