#include "flowmere/model/FCApplicationData.h"

#include <memory>
#include <string>
#include <type_traits>

#include "TestSupport.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCVariableData.h"

using flowmere::test::narrow;

namespace {

// The JSON text as it was written last, without writing it anew. An explicit instantiation may name a private member.
TuString const& writtenJson(CFCArgumentData& record);
TuString const& writtenJson(CFCPatternData& record);

template <typename Class, TuString Class::*Member>
struct JsonPeek {
    friend TuString const& writtenJson(Class& record) { return record.*Member; }
};
template struct JsonPeek<CFCArgumentData, &CFCArgumentData::m_json>;
template struct JsonPeek<CFCPatternData, &CFCPatternData::m_json>;

template <typename Class>
struct IntField {
    char const* name;
    int (Class::*get)();
    void (Class::*set)(int);
};

template <typename Class>
struct TextField {
    char const* name;
    wchar_t const* (Class::*get)();
    void (Class::*set)(wchar_t const*);
};

// Each field starts at its default, keeps what it is given, and touches no other field.
template <typename Class, std::size_t Ints, std::size_t Texts>
void checkFields(IntField<Class> const (&ints)[Ints], TextField<Class> const (&texts)[Texts]) {
    Class record;
    for (auto const& field : ints) {
        EXPECT_EQ((record.*field.get)(), 0) << field.name;
    }
    for (auto const& field : texts) {
        EXPECT_STREQ((record.*field.get)(), L"") << field.name;
    }
    int value = -1;
    for (auto const& field : ints) {
        (record.*field.set)(value--);
    }
    for (auto const& field : texts) {
        (record.*field.set)(flowmere::fromUtf8(field.name).c_str());
    }
    value = -1;
    for (auto const& field : ints) {
        EXPECT_EQ((record.*field.get)(), value--) << field.name;
    }
    for (auto const& field : texts) {
        EXPECT_EQ(narrow((record.*field.get)()), field.name);
        (record.*field.set)((record.*field.get)() + 1);
        EXPECT_EQ(narrow((record.*field.get)()), std::string(field.name).substr(1));
        (record.*field.set)(nullptr);
        EXPECT_STREQ((record.*field.get)(), L"") << field.name;
    }
}

constexpr IntField<CFCArgumentData> kArgumentInts[] = {
    {"index", &CFCArgumentData::GetArgumentIndex, &CFCArgumentData::SetArgumentIndex},
    {"identifier", &CFCArgumentData::GetArgumentID, &CFCArgumentData::SetArgumentID},
    {"command line", &CFCArgumentData::GetCmdLineID, &CFCArgumentData::SetCmdLineID},
};
constexpr TextField<CFCArgumentData> kArgumentTexts[] = {
    {"value", &CFCArgumentData::GetArgumentValue, &CFCArgumentData::SetArgumentValue},
    {"type", &CFCArgumentData::GetArgumentType, &CFCArgumentData::SetArgumentType},
    {"name", &CFCArgumentData::GetArgumentName, &CFCArgumentData::SetArgumentName},
};

constexpr IntField<CFCCmdLineData> kCmdLineInts[] = {
    {"command line", &CFCCmdLineData::GetCmdLineId, &CFCCmdLineData::SetCmdLine},
    {"application", &CFCCmdLineData::GetAppId, &CFCCmdLineData::SetAppId},
};
constexpr TextField<CFCCmdLineData> kCmdLineTexts[] = {
    {"name", &CFCCmdLineData::GetCmdName, &CFCCmdLineData::SetCmdName},
    {"type", &CFCCmdLineData::GetCmdType, &CFCCmdLineData::SetCmdType},
};

constexpr IntField<CFCPatternData> kPatternInts[] = {
    {"identifier", &CFCPatternData::GetPatternID, &CFCPatternData::SetPatternID},
};
constexpr TextField<CFCPatternData> kPatternTexts[] = {
    {"name", &CFCPatternData::GetPatternName, &CFCPatternData::SetPatternName},
    {"expression", &CFCPatternData::GetPatternRegExp, &CFCPatternData::SetPatternRegExp},
    {"suggestion", &CFCPatternData::GetPatternSuggestion, &CFCPatternData::SetPatternSuggestion},
    {"extension", &CFCPatternData::GetPatternFileExt, &CFCPatternData::SetPatternFileExt},
};

constexpr wchar_t const* kEmptyPatternText =
    LR"json({'"'name'"': '"''"',   '"'regEx'"': '"''"',   '"'suggestion'"': '"''"',   '"'fileExtn'"': '"''"'})json";

template <typename Record>
class ApplicationRecord : public testing::Test {};
using ApplicationRecords =
    testing::Types<CFCArgumentData, CFCCmdLineData, CFCPatternData, CFCDeploymentData, CFCResourceData>;
TYPED_TEST_SUITE(ApplicationRecord, ApplicationRecords);

template <typename L, typename E>
struct ListOf {
    using List = L;
    using Element = E;
};
template <typename Pair>
class ApplicationList : public testing::Test {};
using ApplicationLists =
    testing::Types<ListOf<CFCArgumentList, CFCArgumentData>, ListOf<CFCCmdLineList, CFCCmdLineData>,
                   ListOf<CFCPatternList, CFCPatternData>, ListOf<CFCDeploymentList, CFCDeploymentData>>;
TYPED_TEST_SUITE(ApplicationList, ApplicationLists);

// A deployment that tears its variables down at the end of a test.
struct Deployment : CFCDeploymentData {
    ~Deployment() override { GetVariableList()->DeleteAll(); }

    CFCVariableData* add(wchar_t const* name, wchar_t const* value) {
        CFCVariableData* variable = CreateNewVariable();
        variable->SetVariableName(name);
        variable->SetValue(value);
        return variable;
    }
};

std::string listing(CFCDeploymentData& deployment) {
    std::string text;
    __FCPOSITION* position = deployment.GetVariableList()->GetHeadPosition();
    while (position != nullptr) {
        CFCVariableData* variable = deployment.GetVariableList()->GetNext(position);
        text += narrow(variable->GetVariableName()) + "=" + narrow(variable->GetValue()) + ";";
    }
    return text;
}

} // namespace

TYPED_TEST(ApplicationRecord, IsANodeWithoutTypeAndParent) {
    static_assert(std::is_base_of_v<CFCNode, TypeParam>);
    TypeParam record;
    EXPECT_EQ(record.GetNodeType(), 0);
    EXPECT_EQ(record.GetParentNode(), nullptr);
    EXPECT_EQ(record.GetImage(), 0);
    EXPECT_EQ(record.CloneNode(), nullptr);
    record.SetNodeCaption(L"kept");
    record.Create();
    EXPECT_STREQ(record.GetNodeCaption(), L"kept");
}

TEST(FCArgumentData, FieldsStandApart) {
    checkFields(kArgumentInts, kArgumentTexts);
}

TEST(FCArgumentData, PersistGivesZero) {
    CFCArgumentData argument;
    EXPECT_EQ(argument.Persist(), 0);
}

TEST(FCArgumentData, JsonTextKeepsTheQuoteTokens) {
    CFCArgumentData argument;
    argument.SetArgumentIndex(-3);
    argument.SetArgumentValue(L"-o \"x\"");
    EXPECT_STREQ(argument.GetJSONString(), LR"json({'"'index'"': '"'-3'"','"'value'"': '"'-o "x"'"'})json");
}

TEST(FCArgumentData, JsonTextOfANewArgument) {
    CFCArgumentData argument;
    EXPECT_STREQ(argument.GetJSONString(), LR"json({'"'index'"': '"'0'"','"'value'"': '"''"'})json");
}

TEST(FCArgumentData, JsonTextTakesPlaceholdersInTheValueAsTheyAre) {
    CFCArgumentData argument;
    argument.SetArgumentValue(L"$Value and $Index");
    EXPECT_STREQ(argument.GetJSONString(), LR"json({'"'index'"': '"'0'"','"'value'"': '"'$Value and $Index'"'})json");
    // A second call starts from the template again.
    EXPECT_STREQ(argument.GetJSONString(), LR"json({'"'index'"': '"'0'"','"'value'"': '"'$Value and $Index'"'})json");
}

TEST(FCArgumentData, JsonTextFollowsTheTemplateOfTheHost) {
    wchar_t const* const standard = FCArgumentJSONTemplate;
    CFCArgumentData argument;
    argument.SetArgumentIndex(7);
    argument.SetArgumentValue(L"v");
    FCArgumentJSONTemplate = L"$Value/$Index/$Value";
    std::string const text = narrow(argument.GetJSONString());
    FCArgumentJSONTemplate = nullptr;
    std::string const empty = narrow(argument.GetJSONString());
    FCArgumentJSONTemplate = standard;
    EXPECT_EQ(text, "v/7/v");
    EXPECT_EQ(empty, "");
}

TEST(FCArgumentData, CopyLeavesTheJsonTextOut) {
    CFCArgumentData source;
    source.SetArgumentIndex(1);
    source.SetArgumentID(2);
    source.SetCmdLineID(3);
    source.SetArgumentValue(L"v");
    source.SetArgumentType(L"t");
    source.SetArgumentName(L"n");
    CFCArgumentData target;
    TuString const before(target.GetJSONString());
    EXPECT_NE(before, source.GetJSONString());
    CFCArgumentData::Copy(&source, &target);
    EXPECT_EQ(writtenJson(target), before);
    EXPECT_EQ(target.GetArgumentIndex(), 1);
    EXPECT_EQ(target.GetArgumentID(), 2);
    EXPECT_EQ(target.GetCmdLineID(), 3);
    EXPECT_STREQ(target.GetArgumentValue(), L"v");
    EXPECT_STREQ(target.GetArgumentType(), L"t");
    EXPECT_STREQ(target.GetArgumentName(), L"n");
}

TEST(FCArgumentData, CopyDoesNothingForANull) {
    CFCArgumentData argument;
    argument.SetArgumentID(5);
    CFCArgumentData::Copy(nullptr, &argument);
    CFCArgumentData::Copy(&argument, nullptr);
    CFCArgumentData::Copy(&argument, &argument);
    EXPECT_EQ(argument.GetArgumentID(), 5);
}

TEST(FCArgumentData, CloneHasTheFieldsButNoPlaceInTheTree) {
    CFCArgumentData parent;
    CFCArgumentData argument;
    argument.SetNodeType(180);
    argument.SetParentNode(&parent);
    argument.SetNodeCaption(L"caption");
    argument.SetArgumentIndex(4);
    argument.SetArgumentName(L"n");
    argument.GetJSONString();
    std::unique_ptr<CFCArgumentData> const clone(argument.CloneArgument());
    ASSERT_NE(clone, nullptr);
    EXPECT_STREQ(writtenJson(argument), LR"json({'"'index'"': '"'4'"','"'value'"': '"''"'})json");
    EXPECT_STREQ(writtenJson(*clone), L"");
    EXPECT_EQ(clone->GetArgumentIndex(), 4);
    EXPECT_STREQ(clone->GetArgumentName(), L"n");
    EXPECT_EQ(clone->GetNodeType(), 0);
    EXPECT_EQ(clone->GetParentNode(), nullptr);
    EXPECT_STREQ(clone->GetNodeCaption(), L"");
    EXPECT_NE(clone->GetNodeHandle(), argument.GetNodeHandle());
    EXPECT_STREQ(clone->GetJSONString(), LR"json({'"'index'"': '"'4'"','"'value'"': '"''"'})json");
}

TEST(FCCmdLineData, FieldsStandApart) {
    checkFields(kCmdLineInts, kCmdLineTexts);
}

TEST(FCPatternData, FieldsStandApart) {
    checkFields(kPatternInts, kPatternTexts);
}

TEST(FCPatternData, JsonTextKeepsTheQuoteTokensAndTheBlanks) {
    CFCPatternData pattern;
    EXPECT_STREQ(pattern.GetJSONString(), kEmptyPatternText);
    pattern.SetPatternName(L"N");
    pattern.SetPatternRegExp(L"^E.*$");
    pattern.SetPatternSuggestion(L"look");
    pattern.SetPatternFileExt(L"log");
    EXPECT_STREQ(
        pattern.GetJSONString(),
        LR"json({'"'name'"': '"'N'"',   '"'regEx'"': '"'^E.*$'"',   '"'suggestion'"': '"'look'"',   '"'fileExtn'"': '"'log'"'})json");
}

TEST(FCPatternData, JsonTextFillsLaterPlaceholdersInsideEarlierValues) {
    CFCPatternData pattern;
    pattern.SetPatternName(L"$File");
    pattern.SetPatternFileExt(L"$Name");
    EXPECT_STREQ(
        pattern.GetJSONString(),
        LR"json({'"'name'"': '"'$Name'"',   '"'regEx'"': '"''"',   '"'suggestion'"': '"''"',   '"'fileExtn'"': '"'$Name'"'})json");
}

TEST(FCPatternData, JsonTextFollowsTheTemplateOfTheHost) {
    wchar_t const* const standard = FCPatternJSONTemplate;
    CFCPatternData pattern;
    pattern.SetPatternName(L"n");
    FCPatternJSONTemplate = L"<$Name>";
    std::string const text = narrow(pattern.GetJSONString());
    FCPatternJSONTemplate = standard;
    EXPECT_EQ(text, "<n>");
}

TEST(FCPatternData, CopyTakesAllFields) {
    CFCPatternData source;
    source.SetPatternID(9);
    for (auto const& field : kPatternTexts) {
        (source.*field.set)(flowmere::fromUtf8(field.name).c_str());
    }
    CFCPatternData target;
    CFCPatternData::Copy(&source, &target);
    EXPECT_EQ(target.GetPatternID(), 9);
    for (auto const& field : kPatternTexts) {
        EXPECT_EQ(narrow((target.*field.get)()), field.name);
    }
    CFCPatternData::Copy(nullptr, &target);
    CFCPatternData::Copy(&target, nullptr);
    EXPECT_EQ(target.GetPatternID(), 9);
}

TEST(FCPatternData, CopyTakesTheJsonTextToo) {
    CFCPatternData source;
    CFCPatternData target;
    EXPECT_STREQ(writtenJson(source), L"");
    source.SetPatternName(L"first");
    TuString const written(source.GetJSONString());
    source.SetPatternName(L"second");
    CFCPatternData::Copy(&source, &target);
    EXPECT_EQ(writtenJson(target), written);
    EXPECT_STREQ(target.GetPatternName(), L"second");
}

TEST(FCDeploymentData, StartsEmpty) {
    CFCDeploymentData deployment;
    EXPECT_EQ(deployment.GetDeploymentId(), 0);
    EXPECT_STREQ(deployment.GetNodeId(), L"");
    ASSERT_NE(deployment.GetVariableList(), nullptr);
    EXPECT_EQ(deployment.GetVariableList()->GetCount(), 0);
}

TEST(FCDeploymentData, KeepsItsIdentifiers) {
    CFCDeploymentData deployment;
    deployment.SetDeploymentId(-12);
    deployment.SetNodeId(L"Windows");
    EXPECT_EQ(deployment.GetDeploymentId(), -12);
    EXPECT_STREQ(deployment.GetNodeId(), L"Windows");
    deployment.SetNodeId(deployment.GetNodeId() + 3);
    EXPECT_STREQ(deployment.GetNodeId(), L"dows");
    deployment.SetNodeId(nullptr);
    EXPECT_STREQ(deployment.GetNodeId(), L"");
}

TEST(FCDeploymentData, IsMadeByTheFactory) {
    CFCNodeFactory factory;
    std::unique_ptr<IFCNode> const node(factory.Create(182));
    EXPECT_NE(dynamic_cast<CFCDeploymentData*>(node.get()), nullptr);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->GetNodeType(), 182);
}

TEST(FCDeploymentData, CreateNewVariableAppendsAnOwnedVariable) {
    Deployment deployment;
    IFCNode* const node = &deployment;
    CFCVariableData* const first = node->CreateNewVariable();
    CFCVariableData* const second = node->CreateNewVariable();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetNodeType(), 72);
    EXPECT_EQ(first->GetParentNode(), node);
    EXPECT_FALSE(first->IsGroup());
    EXPECT_FALSE(first->IsGroupHeader());
    EXPECT_EQ(deployment.GetVariableList()->GetAt(0), first);
    EXPECT_EQ(deployment.GetVariableList()->GetAt(1), second);
    EXPECT_EQ(deployment.GetVariableList()->GetCount(), 2);
    EXPECT_EQ(node->GetVariableList(), deployment.GetVariableList());
}

TEST(FCDeploymentData, GetVariableValueIgnoresCase) {
    Deployment deployment;
    deployment.add(L"Other", L"o");
    deployment.add(L"WorkingDirectory", L"C:\\work");
    deployment.add(L"WORKINGDIRECTORY", L"second");
    EXPECT_EQ(deployment.GetVariableValue(L"workingdirectory"), L"C:\\work");
    EXPECT_EQ(deployment.GetVariableValue(L"other"), L"o");
}

TEST(FCDeploymentData, GetVariableValueOfAMissIsEmpty) {
    Deployment deployment;
    EXPECT_EQ(deployment.GetVariableValue(L"x"), L"");
    EXPECT_EQ(deployment.GetVariableValue(nullptr), L"");
    deployment.add(L"x", L"1");
    EXPECT_EQ(deployment.GetVariableValue(L"y"), L"");
    deployment.add(L"", L"nameless");
    EXPECT_EQ(deployment.GetVariableValue(nullptr), L"");
    EXPECT_EQ(deployment.GetVariableValue(L""), L"nameless");
}

TEST(FCDeploymentData, GetVariableValueIsATextOfItsOwn) {
    Deployment deployment;
    CFCVariableData* const variable = deployment.add(L"x", L"1");
    TuString const value = deployment.GetVariableValue(L"x");
    variable->SetValue(L"2");
    EXPECT_EQ(value, L"1");
}

TEST(FCDeploymentData, CopyVariablesClonesInOrderAndAppends) {
    Deployment source;
    CFCVariableData* const original = source.add(L"a", L"1");
    source.add(L"b", L"2");
    Deployment target;
    target.add(L"c", L"3");
    EXPECT_TRUE(CFCDeploymentData::CopyVariables(&source, &target));
    EXPECT_EQ(listing(target), "c=3;a=1;b=2;");
    EXPECT_EQ(listing(source), "a=1;b=2;");
    IFCNode* const clone = target.GetVariableList()->GetAt(1);
    EXPECT_NE(clone, original);
    EXPECT_EQ(clone->GetParentNode(), &target);
}

TEST(FCDeploymentData, CopyVariablesResolvesTheClonesInTheTreeOfTheTarget) {
    CFCBlockNode application;
    CFCVariableData* const producer = application.CFCBlockNode::CreateNewVariable();
    producer->SetVariableName(L"x");
    Deployment source;
    source.add(L"a", L"1")->SetLinkPath(L".x");
    Deployment target;
    target.SetParentNode(&application);
    EXPECT_TRUE(CFCDeploymentData::CopyVariables(&source, &target));
    __FCPOSITION* position = target.GetVariableList()->GetHeadPosition();
    CFCVariableData* const clone = target.GetVariableList()->GetNext(position);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->GetLinkedVariableHandle(), -1);
    clone->SetLinkedVariableHandle(); // taken from the variable that the link was bound to
    EXPECT_EQ(clone->GetLinkedVariableHandle(), producer->GetNodeHandle());
}

TEST(FCDeploymentData, CopyVariablesOfAnEmptySourceIsTrue) {
    Deployment source;
    Deployment target;
    target.add(L"c", L"3");
    EXPECT_TRUE(CFCDeploymentData::CopyVariables(&source, &target));
    EXPECT_EQ(listing(target), "c=3;");
}

TEST(FCDeploymentData, CopyVariablesRefusesNullTheSameNodeAndNodesWithoutVariables) {
    Deployment deployment;
    deployment.add(L"a", L"1");
    CFCArgumentData plain;
    EXPECT_FALSE(CFCDeploymentData::CopyVariables(nullptr, &deployment));
    EXPECT_FALSE(CFCDeploymentData::CopyVariables(&deployment, nullptr));
    EXPECT_FALSE(CFCDeploymentData::CopyVariables(nullptr, nullptr));
    EXPECT_FALSE(CFCDeploymentData::CopyVariables(&deployment, &deployment));
    EXPECT_FALSE(CFCDeploymentData::CopyVariables(&plain, &deployment));
    EXPECT_FALSE(CFCDeploymentData::CopyVariables(&deployment, &plain));
    EXPECT_EQ(listing(deployment), "a=1;");
}

TEST(FCDeploymentData, CopyVariablesEndsWhenTheTwoListsShareTheirChain) {
    Deployment deployment;
    deployment.add(L"a", L"1");
    deployment.add(L"b", L"2");
    CFCDeploymentData copy(deployment);
    EXPECT_TRUE(CFCDeploymentData::CopyVariables(&deployment, &copy));
    EXPECT_EQ(listing(copy), "a=1;b=2;a=1;b=2;");
    copy.GetVariableList()->DeleteNode(copy.GetVariableList()->GetAt(3));
    copy.GetVariableList()->DeleteNode(copy.GetVariableList()->GetAt(2));
    EXPECT_EQ(listing(deployment), "a=1;b=2;");
}

TEST(FCDeploymentData, CopySetsTheCaptionAndAppends) {
    Deployment source;
    source.SetNodeCaption(L"Windows");
    source.SetDeploymentId(4);
    source.SetNodeId(L"id");
    source.add(L"a", L"1");
    Deployment target;
    target.add(L"b", L"2");
    CFCDeploymentData::Copy(&source, &target);
    EXPECT_STREQ(target.GetNodeCaption(), L"Windows");
    EXPECT_EQ(listing(target), "b=2;a=1;");
    EXPECT_EQ(target.GetDeploymentId(), 0);
    EXPECT_STREQ(target.GetNodeId(), L"");
}

TEST(FCDeploymentData, CopyDoesNothingForANull) {
    Deployment deployment;
    deployment.SetNodeCaption(L"kept");
    CFCDeploymentData::Copy(nullptr, &deployment);
    CFCDeploymentData::Copy(&deployment, nullptr);
    EXPECT_STREQ(deployment.GetNodeCaption(), L"kept");
    EXPECT_EQ(deployment.GetVariableList()->GetCount(), 0);
}

TEST(FCDeploymentData, CloneHasCaptionAndVariables) {
    Deployment source;
    source.SetNodeCaption(L"Linux");
    source.SetNodeType(182);
    source.add(L"a", L"1");
    std::unique_ptr<CFCDeploymentData> const clone(CFCDeploymentData::CloneDeployment(&source));
    ASSERT_NE(clone, nullptr);
    EXPECT_STREQ(clone->GetNodeCaption(), L"Linux");
    EXPECT_EQ(listing(*clone), "a=1;");
    EXPECT_EQ(clone->GetParentNode(), nullptr);
    EXPECT_EQ(clone->GetVariableList()->GetAt(0)->GetParentNode(), clone.get());
    clone->GetVariableList()->DeleteAll();
}

TEST(FCDeploymentData, CloneOfNullIsBlank) {
    std::unique_ptr<CFCDeploymentData> const clone(CFCDeploymentData::CloneDeployment(nullptr));
    ASSERT_NE(clone, nullptr);
    EXPECT_STREQ(clone->GetNodeCaption(), L"");
    EXPECT_EQ(clone->GetVariableList()->GetCount(), 0);
}

TEST(FCDeploymentData, DestructorLeavesTheVariables) {
    CFCVariableData* variable = nullptr;
    {
        CFCDeploymentData deployment;
        variable = deployment.CreateNewVariable();
    }
    variable->SetValue(L"alive");
    EXPECT_STREQ(variable->GetValue(), L"alive");
    delete variable;
}

TEST(FCResourceData, StartsWithNothingAndUnitOne) {
    CFCResourceData resource;
    unsigned int size = 99;
    _TMemoryUnitId unit = static_cast<_TMemoryUnitId>(99);
    resource.getRAM(size, unit);
    EXPECT_EQ(resource.getNumberOfCores(), 0);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(static_cast<int>(unit), 1);
}

TEST(FCResourceData, KeepsCoresAndMemory) {
    CFCResourceData resource;
    resource.setNumberOfCores(-2);
    resource.setRAM(8, static_cast<_TMemoryUnitId>(3));
    unsigned int size = 0;
    _TMemoryUnitId unit = static_cast<_TMemoryUnitId>(0);
    resource.getRAM(size, unit);
    EXPECT_EQ(resource.getNumberOfCores(), -2);
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(static_cast<int>(unit), 3);
    resource.setRAM(4294967295U, unit);
    resource.getRAM(size, unit);
    EXPECT_EQ(size, 4294967295U);
}

TYPED_TEST(ApplicationList, GetNextGivesTheElementsInOrder) {
    typename TypeParam::List list;
    auto* const first = new typename TypeParam::Element;
    auto* const second = new typename TypeParam::Element;
    list.AddTail(first);
    list.AddTail(second);
    __FCPOSITION* position = list.GetHeadPosition();
    typename TypeParam::Element* found = list.GetNext(position);
    EXPECT_EQ(found, first);
    found = list.GetNext(position);
    EXPECT_EQ(found, second);
    EXPECT_EQ(position, nullptr);
    EXPECT_EQ(list.GetNext(position), nullptr);
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(list.GetCount(), 2);
    EXPECT_EQ(list.GetImage(), 0);
    list.DeleteAll();
}

TYPED_TEST(ApplicationList, GetNextPassesANodeOfAnotherClassAsNull) {
    typename TypeParam::List list;
    list.AddTail(new CFCResourceData);
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(position), nullptr);
    EXPECT_EQ(position, nullptr);
    list.DeleteAll();
}

TYPED_TEST(ApplicationList, CopySharesTheElements) {
    typename TypeParam::List list;
    list.AddTail(new typename TypeParam::Element);
    typename TypeParam::List const copy(list);
    typename TypeParam::List assigned;
    assigned = list;
    EXPECT_EQ(assigned.GetHeadPosition(), list.GetHeadPosition());
    list.DeleteAll();
}

TEST(FCDeploymentList, GetHeadIsTheFirstDeployment) {
    CFCDeploymentList list;
    EXPECT_EQ(list.GetHead(), nullptr);
    auto* const first = new CFCDeploymentData;
    list.AddTail(first);
    list.AddTail(new CFCDeploymentData);
    CFCDeploymentData* const head = list.GetHead();
    EXPECT_EQ(head, first);
    IFCNode* const node = &list;
    EXPECT_EQ(node->GetHead(), first);
    list.DeleteAll();
}

TEST(FCDeploymentList, OnlyDeploymentsAnswerGetHead) {
    CFCArgumentList list;
    list.AddTail(new CFCArgumentData);
    EXPECT_EQ(list.GetHead(), nullptr);
    list.DeleteAll();
}

TEST(FCDeploymentList, FindGoesByNodeId) {
    CFCDeploymentList list;
    auto* const nameless = new CFCDeploymentData;
    auto* const windows = new CFCDeploymentData;
    windows->SetNodeId(L"Windows");
    list.AddTail(nameless);
    list.AddTail(windows);
    EXPECT_EQ(list.Find(L"WINDOWS"), windows);
    EXPECT_EQ(list.Find(L""), nullptr);
    list.DeleteAll();
}
