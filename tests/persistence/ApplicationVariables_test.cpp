#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using flowmere::test::narrow;

// The last entry of each row is never found: the search starts there.
constexpr char kDataTypes[] = R"(<DataTypes Name="Types">
  <GROUP Name="Names" Type="Group">
    <DATATYPE Name="Start" Type="Start"/>
    <DATATYPE Name="Directory" Type="DIR"/>
    <DATATYPE Name="Task InstanceId" Type="INSTANCE"/>
    <DATATYPE Name="orrin user" Type="USER"/>
    <DATATYPE Name="Orrin Password" Type="PASSWORD"/>
    <DATATYPE Name="Orrin Server" Type="SERVER"/>
  </GROUP>
  <GROUP Name="Last" Type="Last"/>
</DataTypes>
)";

class ApplicationVariables : public flowmere::test::ScratchTest {
protected:
    ApplicationVariables() {
        CFCEnvironment::SetBasePath(scratch.text());
        CFCDataTypeListReader::RefreshDataTypes();
    }
    ~ApplicationVariables() override {
        // What other tests read must not come from here.
        CFCEnvironment::SetBasePath(L"");
        CFCDataTypeListReader::RefreshDataTypes();
    }
    void TearDown() override { CFCNodeHelper::DestroyTree(&node); }

    flowmere::test::EnvironmentGuard environment;
    CFCApplicationNode& node = *new CFCApplicationNode;
};

struct Default {
    wchar_t const* name;
    wchar_t const* caption;
    wchar_t const* type;
    wchar_t const* nature;
};

constexpr Default kDefaults[] = {
    {L"WorkingDirectory", L"Directory", L"DIR", L"Deployment"},
    {L"TaskInstanceId", L"Task InstanceId", L"INSTANCE", L"System"},
    {L"OrrinUser", L"orrin user", L"USER", L"System"},
    {L"OrrinPassword", L"Orrin Password", L"PASSWORD", L"System"},
    {L"OrrinServer", L"Orrin Server", L"SERVER", L"System"},
};

} // namespace

TEST_F(ApplicationVariables, FiveStandInTheirOrderBehindTheOthers) {
    node.CreateNewVariable()->SetVariableName(L"before");
    node.CreateDefaultVariables();
    CFCVariableList* const list = node.GetVariableList();
    ASSERT_EQ(list->GetCount(), 6);
    __FCPOSITION* position = list->GetHeadPosition();
    EXPECT_STREQ(list->GetNext(position)->GetVariableName(), L"before");
    for (Default const& row : kDefaults) {
        CFCVariableData* const variable = list->GetNext(position);
        EXPECT_STREQ(variable->GetVariableName(), row.name);
        // The stored text shows where no known data type stands in front of it.
        variable->SetDataType(-1);
        EXPECT_STREQ(variable->GetType(), L"Input") << narrow(row.name);
        EXPECT_EQ(variable->GetStatusType(), EStatusType_Input);
        EXPECT_EQ(variable->GetScopeType(), EScopeType_Local);
        EXPECT_STREQ(variable->GetScopeTypeS(), L"Local");
        EXPECT_STREQ(variable->GetNature(), row.nature);
        EXPECT_STREQ(variable->GetValue(), L"");
        EXPECT_EQ(variable->GetNodeType(), 72);
        EXPECT_EQ(variable->GetParentNode(), &node);
        // Nothing can be attached: there is no catalog.
        EXPECT_STREQ(variable->GetDataTypeNode()->GetNodeCaption(), L"") << narrow(row.name);
    }
}

TEST_F(ApplicationVariables, TypesOfTheCatalogAreAttachedByTheirCaptions) {
    scratch.write("DataTypes.xml", kDataTypes);
    node.CreateDefaultVariables();
    CFCVariableList* const list = node.GetVariableList();
    __FCPOSITION* position = list->GetHeadPosition();
    for (Default const& row : kDefaults) {
        CFCVariableData* const variable = list->GetNext(position);
        EXPECT_STREQ(variable->GetDataTypeNode()->GetNodeCaption(), row.caption);
        EXPECT_STREQ(variable->GetDataTypeNode()->GetType(), row.type);
        EXPECT_STREQ(variable->GetVariableName(), row.name);
    }
}

TEST_F(ApplicationVariables, AreAddedAsOftenAsOneAsks) {
    node.CreateDefaultVariables();
    node.CreateDefaultVariables();
    EXPECT_EQ(node.GetVariableList()->GetCount(), 10);
}

TEST_F(ApplicationVariables, ComeThroughTheNodesOwnCreator) {
    struct Counting : CFCApplicationNode {
        CFCVariableData* CreateNewVariable() override {
            return ++asked % 2 == 0 ? nullptr : CFCApplicationNode::CreateNewVariable();
        }
        int asked = 0;
    };
    auto* const counting = new Counting;
    counting->CreateDefaultVariables();
    EXPECT_EQ(counting->asked, 5);
    EXPECT_EQ(counting->GetVariableList()->GetCount(), 3);
    CFCNodeHelper::DestroyTree(counting);
}
