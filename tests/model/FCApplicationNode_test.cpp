#include "flowmere/model/FCApplicationNode.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "model/VirtualSlots.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <type_traits>
#include <vector>

using flowmere::test::EnvironmentGuard;
using flowmere::test::narrow;

namespace {

// The members that nothing hands out. An explicit instantiation may name a private member.
std::map<int, TuString>& reservedMap(CFCApplicationNode& node);

template <std::map<int, TuString> CFCApplicationNode::*Member>
struct MapPeek {
    friend std::map<int, TuString>& reservedMap(CFCApplicationNode& node) { return node.*Member; }
};
template struct MapPeek<&CFCApplicationNode::m_ReservedMap>;

std::vector<TuString const*> spareTemplates(CFCApplicationNode& node);

template <TuString CFCApplicationNode::*... Members>
struct TextPeek {
    friend std::vector<TuString const*> spareTemplates(CFCApplicationNode& node) { return {&(node.*Members)...}; }
};
template struct TextPeek<&CFCApplicationNode::m_strSpareTemplate1, &CFCApplicationNode::m_strSpareTemplate2,
                         &CFCApplicationNode::m_strSpareTemplate3>;

// An application that goes with the test.
class ApplicationNode : public testing::Test {
protected:
    void TearDown() override { CFCNodeHelper::DestroyTree(&node); }

    CFCVariableData* add(wchar_t const* name, wchar_t const* value = L"") {
        CFCVariableData* const variable = node.CreateNewVariable();
        variable->SetVariableName(name);
        variable->SetValue(value);
        return variable;
    }

    CFCApplicationNode& node = *new CFCApplicationNode;
};

} // namespace

TEST_F(ApplicationNode, IsATaskOfItsOwnTypeWithACaption) {
    EXPECT_EQ(node.GetNodeType(), 167);
    EXPECT_STREQ(node.GetNodeCaption(), L"Application");
    EXPECT_STREQ(node.GetNodeId(), L"");
    EXPECT_STREQ(node.GetPriority(), L"normal");
    EXPECT_EQ(node.GetBPMBlockData(), static_cast<CFCBPMBlockData*>(&node));
    EXPECT_EQ(node.GetFCBlockData(), static_cast<CFCBlockData*>(&node));
    EXPECT_TRUE(node.IsBPMNode());
    EXPECT_TRUE((std::is_base_of_v<CFCBPMTaskNode, CFCApplicationNode>));
}

TEST_F(ApplicationNode, CreateAndPersistDoNothing) {
    CFCNode& base = node;
    base.Create();
    EXPECT_EQ(node.Persist(), 0);
    EXPECT_EQ(node.GetNodeType(), 167);
    EXPECT_EQ(node.GetVariableList()->GetCount(), 0);
}

#if FLOWMERE_TEST_SLOTS
TEST(CFCApplicationNode, AddsOneOperationBehindThoseOfATask) {
    using namespace flowmere::test;
    EXPECT_EQ(slotOf(&CFCApplicationNode::Persist), slotsOf<CFCBPMTaskNode>());
    EXPECT_EQ(slotsOf<CFCApplicationNode>(), slotsOf<CFCBPMTaskNode>() + 1);
}
#endif

// --- Fields -----------------------------------------------------------------------------------------------------

TEST_F(ApplicationNode, NumbersStartAtZeroAndKeepWhatTheyAreGiven) {
    struct Row {
        char const* name;
        int (CFCApplicationNode::*get)();
        void (CFCApplicationNode::*set)(int);
    };
    Row const rows[] = {
        {"identifier", &CFCApplicationNode::GetAppID, &CFCApplicationNode::SetAppID},
        {"index", &CFCApplicationNode::GetAppIndex, &CFCApplicationNode::SetAppIndex},
        {"new version", &CFCApplicationNode::IsNewVersion, &CFCApplicationNode::SetNewVersion},
        {"updated", &CFCApplicationNode::IsUpdated, &CFCApplicationNode::SetUpdated},
    };
    for (Row const& row : rows)
        EXPECT_EQ((node.*row.get)(), 0) << row.name;
    int value = -7;
    for (Row const& row : rows)
        (node.*row.set)(value--);
    value = -7;
    for (Row const& row : rows)
        EXPECT_EQ((node.*row.get)(), value--) << row.name;
}

TEST_F(ApplicationNode, IsUpdatedOnlyWithAnIdentifier) {
    node.SetUpdated(1);
    EXPECT_EQ(node.IsUpdated(), 0);
    node.SetAppID(-1);
    node.SetUpdated(1);
    EXPECT_EQ(node.IsUpdated(), 1);
    node.SetAppID(0);
    node.SetUpdated(0);
    EXPECT_EQ(node.IsUpdated(), 1) << "without an identifier it cannot be taken back either";
}

TEST_F(ApplicationNode, TypeTextAndTheUseOfABindingScript) {
    EXPECT_STREQ(node.GetAppType(), L"Application");
    node.SetAppType(L"Solver");
    EXPECT_STREQ(node.GetAppType(), L"Solver");
    node.SetAppType(node.GetAppType() + 3);
    EXPECT_STREQ(node.GetAppType(), L"ver");
    node.SetAppType(nullptr);
    EXPECT_STREQ(node.GetAppType(), L"");
    EXPECT_FALSE(node.IsUseBindingScript());
    node.SetUseBindingScript(true);
    EXPECT_TRUE(node.IsUseBindingScript());
    node.SetUseBindingScript(false);
    EXPECT_FALSE(node.IsUseBindingScript());
}

TEST_F(ApplicationNode, ListsAreThereAndEmpty) {
    CFCNodeList* const lists[] = {node.GetArgumentList(), node.GetPatternList(), node.GetCmdLineList(),
                                  node.GetDeploymentList()};
    for (CFCNodeList* const list : lists) {
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->GetCount(), 0);
    }
    EXPECT_TRUE(reservedMap(node).empty());
}

TEST(CFCApplicationNode, ACopyIsShallowAndHasTheReservedMap) {
    auto* const node = new CFCApplicationNode;
    node->SetAppID(4);
    node->m_strJobTemplate = L"job";
    node->CreateNewArgument();
    reservedMap(*node)[3] = L"three";
    auto* const copy = new CFCApplicationNode(*node);
    EXPECT_EQ(copy->GetAppID(), 4);
    EXPECT_EQ(copy->m_strJobTemplate, L"job");
    EXPECT_EQ(copy->GetArgumentList()->GetHeadPosition(), node->GetArgumentList()->GetHeadPosition());
    EXPECT_EQ(reservedMap(*copy), reservedMap(*node));
    reservedMap(*copy).clear();
    EXPECT_EQ(reservedMap(*node).size(), 1U);
    CFCNodeHelper::DestroyTree(copy);
    EXPECT_EQ(node->GetArgumentList()->GetCount(), 1) << "what a copy shares stays with the source";
    CFCApplicationNode assigned;
    assigned = *node;
    EXPECT_EQ(assigned.GetAppID(), 4);
    EXPECT_EQ(assigned.GetArgumentList()->GetHeadPosition(), node->GetArgumentList()->GetHeadPosition());
    CFCNodeHelper::DestroyTree(node);
}

// --- Records ----------------------------------------------------------------------------------------------------

TEST_F(ApplicationNode, CreatorsAppendRecordsOfTheirTypes) {
    struct Row {
        IFCNode* first;
        IFCNode* second;
        CFCNodeList* list;
        int type;
    };
    Row const rows[] = {
        {node.CreateNewArgument(), node.CreateNewArgument(), node.GetArgumentList(), 180},
        {node.CreateNewPattern(), node.CreateNewPattern(), node.GetPatternList(), 180},
        {node.CreateNewCmdLine(), node.CreateNewCmdLine(), node.GetCmdLineList(), 181},
        {node.CreateNewDeployment(), node.CreateNewDeployment(), node.GetDeploymentList(), 182},
    };
    int number = 0;
    for (Row const& row : rows) {
        ASSERT_EQ(row.list->GetCount(), 2) << number;
        // The two are made in either order.
        EXPECT_TRUE((row.list->GetAt(0) == row.first && row.list->GetAt(1) == row.second) ||
                    (row.list->GetAt(1) == row.first && row.list->GetAt(0) == row.second))
            << number;
        for (IFCNode* const record : {row.first, row.second}) {
            EXPECT_EQ(record->GetNodeType(), row.type) << number;
            EXPECT_EQ(record->GetParentNode(), &node) << number;
        }
        ++number;
    }
    EXPECT_EQ(node.GetChild(), nullptr) << "records are no children";
}

TEST_F(ApplicationNode, CreatorsAppendAtTheTail) {
    CFCArgumentData* const argument = node.CreateNewArgument();
    EXPECT_EQ(node.GetArgumentList()->GetAt(0), argument);
    CFCArgumentData* const next = node.CreateNewArgument();
    EXPECT_EQ(node.GetArgumentList()->GetAt(0), argument);
    EXPECT_EQ(node.GetArgumentList()->GetAt(1), next);
}

TEST_F(ApplicationNode, DeploymentIsFoundByCaptionInAnyCase) {
    node.CreateNewDeployment()->SetNodeCaption(L"Linux");
    CFCDeploymentData* const first = node.CreateNewDeployment();
    first->SetNodeCaption(L"Windows");
    node.CreateNewDeployment()->SetNodeCaption(L"WINDOWS");
    EXPECT_EQ(node.GetDeployment(L"windows"), first);
    EXPECT_EQ(node.GetDeployment(L"Windows"), first);
    EXPECT_EQ(node.GetDeployment(L"Windows 7"), nullptr);
    EXPECT_EQ(node.GetDeployment(L""), nullptr);
    EXPECT_EQ(node.GetDeployment(nullptr), nullptr);
    CFCDeploymentData* const nameless = node.CreateNewDeployment();
    EXPECT_EQ(node.GetDeployment(nullptr), nameless) << "no text is the empty text";
}

TEST_F(ApplicationNode, DeploymentListMayHoldStrangers) {
    auto* const stranger = new CFCArgumentData;
    stranger->SetNodeCaption(L"Windows");
    node.GetDeploymentList()->AddTail(stranger);
    CFCDeploymentData* const deployment = node.CreateNewDeployment();
    deployment->SetNodeCaption(L"Windows");
    EXPECT_EQ(node.GetDeployment(L"Windows"), deployment);
}

// --- Executable and path ----------------------------------------------------------------------------------------

TEST_F(ApplicationNode, ExecutableIsTheValueOfTheFirstVariableOfThatName) {
    EXPECT_STREQ(node.GetExecutable(), L"");
    add(L"EXECUTABLE2", L"no");
    EXPECT_STREQ(node.GetExecutable(), L"");
    CFCVariableData* const first = add(L"Executable", L"solver.exe");
    add(L"EXECUTABLE", L"other.exe");
    EXPECT_STREQ(node.GetExecutable(), L"solver.exe");
    for (wchar_t const* const name : {L"executable", L"EXECUTABLE", L"eXeCutAble"}) {
        first->SetVariableName(name);
        EXPECT_STREQ(node.GetExecutable(), L"solver.exe");
    }
    first->SetVariableName(L"gone");
    EXPECT_STREQ(node.GetExecutable(), L"other.exe");
}

TEST_F(ApplicationNode, ExecutableIsForgottenWithItsVariable) {
    CFCVariableData* const variable = add(L"EXECUTABLE", L"solver.exe");
    wchar_t const* const kept = node.GetExecutable();
    ASSERT_STREQ(kept, L"solver.exe");
    node.DeleteVariable(variable);
    EXPECT_STREQ(kept, L"solver.exe") << "the text is the node's own";
    EXPECT_STREQ(node.GetExecutable(), L"");
}

TEST(CFCApplicationNode, ExecutableWithoutVariableListIsEmpty) {
    struct Listless : CFCApplicationNode {
        CFCVariableList* GetVariableList() override { return nullptr; }
    } node;
    EXPECT_STREQ(node.GetExecutable(), L"");
    node.CreateDefaultDeployments();
    node.RefreshDeployments();
    ASSERT_EQ(node.GetDeploymentList()->GetCount(), 1);
    EXPECT_EQ(node.GetDeploymentList()->GetHead()->GetVariableList()->GetCount(), 0);
    node.GetDeploymentList()->DeleteAll();
}

TEST_F(ApplicationNode, TextsOfTheWorkflowRecordAreOthers) {
    CFCBPMBlockData* const record = node.GetBPMBlockData();
    record->SetExecutable(L"stored.exe");
    record->SetDeployment(L"stored");
    EXPECT_STREQ(node.GetExecutable(), L"");
    EXPECT_EQ(node.GetDeployment(L"stored"), nullptr);
    EXPECT_STREQ(record->GetExecutable(), L"stored.exe");
    EXPECT_STREQ(node.GetDeployment(), L"stored");
}

TEST_F(ApplicationNode, PathLiesBelowTheUsersApplications) {
    EnvironmentGuard const environment;
    CFCEnvironment::m_strUserPath = L"C:\\user";
    node.SetNodeId(L"Task_01");
    EXPECT_STREQ(node.GetPath(), L"C:\\user\\BPM\\ApplicationConfiguration\\Task_01");
    node.SetNodeId(L"");
    EXPECT_STREQ(node.GetPath(), L"C:\\user\\BPM\\ApplicationConfiguration\\");
    CFCEnvironment::m_strUserPath.Empty();
    CFCEnvironment::m_strBasePath = L"B";
    EXPECT_STREQ(node.GetPath(), L"B\\BPM\\ApplicationConfiguration\\");
}

TEST(CFCApplicationNode, PathHasAFolderForEachLevelAndEachPoint) {
    EnvironmentGuard const environment;
    CFCEnvironment::m_strUserPath = L"U";
    CFCNodeFactory factory;
    IFCNode* const root = factory.Create(160);
    IFCNode* const group = factory.Create(165);
    group->SetNodeId(L"Sub");
    root->AppendChild(group, false);
    auto* const node = dynamic_cast<CFCApplicationNode*>(factory.Create(167));
    node->SetNodeId(L"Solve.v2");
    group->AppendChild(node, false);
    EXPECT_STREQ(node->GetPath(), L"U\\BPM\\ApplicationConfiguration\\Sub\\Solve\\v2");
    CFCNodeHelper::DestroyTree(root);
}

// --- Templates --------------------------------------------------------------------------------------------------

namespace {

struct Template {
    char const* name;
    TuString CFCApplicationNode::*member;
    wchar_t const* (CFCApplicationNode::*get)();
    wchar_t const* text; // with plain quotes in place of the tokens
};

constexpr Template kTemplates[] = {
    {"job", &CFCApplicationNode::m_strJobTemplate, &CFCApplicationNode::GetJobTemplate,
     LR"({"job": {"name": "$JobName","id": "$JobID","dbPath": "$DBPath","jobType": "$jobType",)"
     LR"("polling": "$Polling"}$Aggregator,"applications": ["$Apps"]})"},
    {"aggregator", &CFCApplicationNode::m_strAggregatorTemplate, &CFCApplicationNode::GetAggregatorTemplate,
     LR"(,"aggregator" : {"name":"$AggName","id":"$AggID","bindingScripts":[$BS],"variables": [$AppVar],)"
     LR"("executables": [{$EXEs}]})"},
    {"variable", &CFCApplicationNode::m_strVariableTemplate, &CFCApplicationNode::GetVariableTemplate,
     LR"({"name":"$Name","value":"$Value","path":"$Path"   })"},
    {"pattern", &CFCApplicationNode::m_strPatternTemplate, &CFCApplicationNode::GetPatternTemplate,
     LR"({"pattern":"$pattern","suggestion":"$suggestion","file":"$filePattern"})"},
    {"path", &CFCApplicationNode::m_strPathTemplate, &CFCApplicationNode::GetPathTemplate, LR"("Path":"$Path")"},
    {"argument", &CFCApplicationNode::m_strArgumentTemplate, &CFCApplicationNode::GetArgumentTemplate,
     LR"(   "$AppArg")"},
    {"executable", &CFCApplicationNode::m_strExecutableTemplate, &CFCApplicationNode::GetExecutableTemplate,
     LR"("$TYPE.$NAME":"$EXE$")"},
    {"application", &CFCApplicationNode::m_strApplicationTemplate, &CFCApplicationNode::GetApplicationTemplate,
     LR"({"name": "$AppName","id": "$AppID","index": "$AppIndex","useBindingScript": "$useBindingScript",)"
     LR"("executables": [{$EXEs}],"bindingScripts":[$BS],"variables": [$AppVar],"commandLines":["$AppCmdline"],)"
     LR"("errHandler":{"patternDetails": [$Pattern],"handler":"$Handler"}})"},
    {"binding script", &CFCApplicationNode::m_strBindingScriptTemplate, &CFCApplicationNode::GetBindingScriptTemplate,
     LR"({"name":"$Name","file":"$File","fileType":"$Type","useAggregator":"$UseAggregator"})"},
};

} // namespace

TEST_F(ApplicationNode, TemplatesAreEmptyBeforeTheyAreAskedFor) {
    for (Template const& row : kTemplates) {
        EXPECT_EQ(node.*row.member, L"") << row.name;
        EXPECT_STREQ((node.*row.get)(), L"") << row.name;
    }
}

TEST_F(ApplicationNode, TemplatesHaveTokensForTheirQuotes) {
    node.Initialize();
    for (Template const& row : kTemplates) {
        TuString expected(row.text);
        expected.Replace(L"\"", L"'\"'");
        EXPECT_EQ(node.*row.member, expected) << row.name;
        EXPECT_STREQ((node.*row.get)(), expected) << row.name;
    }
    EXPECT_EQ(node.m_strExecutableTemplate, LR"('"'$TYPE.$NAME'"':'"'$EXE$'"')");
    for (TuString const* const spare : spareTemplates(node))
        EXPECT_EQ(*spare, L"");
    EXPECT_EQ(node.GetVariableList()->GetCount(), 0) << "nothing else is set up";
}
