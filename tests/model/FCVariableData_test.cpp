#include "flowmere/model/FCVariableData.h"

#include "flowmere/foundation/TuMemory.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCJSONTemplates.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using flowmere::test::narrow;

// A variable that takes its catalog nodes and array storage with it.
class Variable : public CFCVariableData {
public:
    Variable() = default;
    Variable(char const* name, int dataType, int scopeType, int array)
        : CFCVariableData(name, dataType, scopeType, array) {}
    Variable(Variable const&) = default;
    Variable& operator=(Variable const&) = default;
    ~Variable() override { ReleaseOwnedParts(); }
};

struct Release {
    void operator()(CFCVariableData* variable) const {
        variable->ReleaseOwnedParts();
        delete variable;
    }
};
using VariablePtr = std::unique_ptr<CFCVariableData, Release>;

std::string literal(CFCVariableData& variable) {
    return narrow(variable.GetDefaultValue());
}
std::string literalByType(CFCVariableData& variable, bool flag = false) {
    return narrow(variable.GetDefaultValue(flag));
}

} // namespace

// --- What a new variable is -------------------------------------------------------------------------

TEST(FCVariableData, NewVariableIsALocalEditableInt) {
    Variable v;
    EXPECT_EQ(v.GetDataType(), EDataType_Int);
    EXPECT_EQ(v.getType(), EDataType_Int);
    EXPECT_EQ(v.GetStatusType(), EStatusType_Input);
    EXPECT_EQ(v.GetConnectionType(), EConnectionType_Local);
    EXPECT_EQ(v.GetScopeType(), EScopeType_Local);
    EXPECT_FALSE(v.IsArray());
    EXPECT_EQ(v.getArrayFlag(), 0);
    EXPECT_EQ(v.getArrayCount(), 0);
    EXPECT_FALSE(v.IsVisible());
    EXPECT_TRUE(v.IsEditable());
    EXPECT_TRUE(v.IsRefrence());
    EXPECT_TRUE(v.IsStoreDB());
    EXPECT_FALSE(v.IsHidden());
    EXPECT_FALSE(v.IsGroup());
    EXPECT_FALSE(v.IsGroupHeader());
    EXPECT_FALSE(v.IsDeployed());
    EXPECT_FALSE(v.IsBPMVariable());
    EXPECT_FALSE(v.GetUseAggregator());
    EXPECT_FALSE(v.IsFileType());
    EXPECT_FALSE(v.IsTemplateVariable());
    EXPECT_FALSE(v.IsLinked());
    EXPECT_EQ(v.GetLinkedVariableHandle(), -1);
    EXPECT_EQ(v.GetVariableID(), 0);
    EXPECT_EQ(v.GetJobAppVarID(), 0);
    EXPECT_EQ(v.GetDeploymentMapId(), 0);
    EXPECT_EQ(v.GetOptionCount(), 0);
    EXPECT_EQ(v.GetNodeType(), 0);
    for (wchar_t const* text :
         {v.GetValue(), v.GetVariableName(), v.GetGroupName(), v.GetNature(), v.GetLinkPath(), v.GetCaption(),
          v.GetResolveEvent(), v.GetEntityType(), v.GetNodeCaption(), v.GetNodeId()}) {
        EXPECT_STREQ(text, L"");
    }
    EXPECT_STREQ(v.GetType(), L"Data");
    EXPECT_EQ(v.getIntValue(), 0);
}

TEST(FCVariableData, NewVariableHasTwoCatalogNodesAndDrawsThreeHandles) {
    Variable v;
    ASSERT_NE(v.GetDataTypeNode(), nullptr);
    ASSERT_NE(v.GetFileTypeNode(), nullptr);
    EXPECT_EQ(v.GetDataTypeNode()->GetNodeType(), 80);
    EXPECT_EQ(v.GetFileTypeNode()->GetNodeType(), 83);
    EXPECT_EQ(v.GetDataTypeNode()->GetNodeHandle(), v.GetNodeHandle() + 1);
    EXPECT_EQ(v.GetFileTypeNode()->GetNodeHandle(), v.GetNodeHandle() + 2);
    Variable next;
    EXPECT_EQ(next.GetNodeHandle(), v.GetNodeHandle() + 3);
}

TEST(FCVariableData, FactoryMakesTypeSeventyTwo) {
    CFCNodeFactory factory;
    IFCNode* const node = factory.Create(72);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->GetNodeType(), 72);
    VariablePtr const owner(node->GetVariableData());
    ASSERT_NE(owner, nullptr);
    EXPECT_EQ(owner->GetNode(), node);
}

TEST(FCVariableData, SecondConstructorTakesNameTypeScopeAndFlagAndHasNoCatalogNodes) {
    Variable v("Länge", 13, 4, 1);
    EXPECT_STREQ(v.GetVariableName(), L"L\u00e4nge");
    EXPECT_EQ(v.GetDataType(), EDataType_StringArray);
    EXPECT_EQ(v.GetScopeType(), EScopeType_Global);
    EXPECT_EQ(v.getArrayFlag(), 1);
    EXPECT_EQ(v.getArrayCount(), 0);
    EXPECT_EQ(v.GetDataTypeNode(), nullptr);
    EXPECT_EQ(v.GetFileTypeNode(), nullptr);
    EXPECT_FALSE(v.IsTemplateVariable());
    EXPECT_FALSE(v.IsGroup());
    EXPECT_FALSE(v.IsGroupHeader());
    EXPECT_EQ(v.GetJobAppVarID(), 0);
    EXPECT_TRUE(v.IsEditable());
    EXPECT_EQ(v.GetLinkedVariableHandle(), -1);
}

TEST(FCVariableData, SecondConstructorKeepsTheLowEightBitsOfTheArrayFlag) {
    Variable two("a", 0, 0, 2);
    EXPECT_EQ(two.getArrayFlag(), 2);
    EXPECT_TRUE(two.IsArray());
    EXPECT_EQ(two.getArrayCount(), 0);
    Variable wide("a", 0, 0, 0x100);
    EXPECT_EQ(wide.getArrayFlag(), 0);
    Variable unnamed(nullptr, 0, 0, 0);
    EXPECT_STREQ(unnamed.GetVariableName(), L"");
}

TEST(FCVariableData, OperationsOnAVariableWithoutCatalogNodesFindAnEmptyTypeName) {
    Variable bare("x", 3, 0, 0);
    bare.SetValue(L"v");
    EXPECT_EQ(literal(bare), "\"\"");
    EXPECT_EQ(literalByType(bare), "r\"v\"");
    EXPECT_NE(narrow(bare.GetJSONString()).find(R"("dataType": "",)"), std::string::npos);
    Variable full;
    full.GetDataTypeNode()->SetType(L"Int");
    CFCVariableData::Copy(&bare, &full);
    EXPECT_STREQ(full.GetValue(), L"v");
    EXPECT_STREQ(full.GetDataTypeNode()->GetType(), L"Int");
    CFCVariableData::Copy(&full, &bare);
    EXPECT_EQ(bare.GetDataTypeNode(), nullptr);
    VariablePtr const clone(bare.CloneVariable());
    EXPECT_STREQ(clone->GetVariableName(), L"x");
}

// --- Plain accessors --------------------------------------------------------------------------------

TEST(FCVariableData, EachTextAccessorKeepsItsOwnField) {
    struct Row {
        char const* name;
        void (CFCVariableData::*set)(wchar_t const*);
        wchar_t const* (CFCVariableData::*get)();
    };
    using V = CFCVariableData;
    Row const rows[] = {
        {"Caption", &V::SetCaption, &V::GetCaption},
        {"EntityType", &V::SetEntityType, &V::GetEntityType},
        {"GroupName", &V::SetGroupName, &V::GetGroupName},
        {"LinkPath", &V::SetLinkPath, &V::GetLinkPath},
        {"Nature", &V::SetNature, &V::GetNature},
        {"ResolveEvent", &V::SetResolveEvent, &V::GetResolveEvent},
        {"Value", &V::SetValue, static_cast<wchar_t const* (V::*)()>(&V::GetValue)},
        {"VariableName", &V::SetVariableName, &V::GetVariableName},
    };
    Variable v;
    for (Row const& row : rows) {
        (v.*row.set)(TuString(row.name));
    }
    for (Row const& row : rows) {
        EXPECT_EQ(narrow((v.*row.get)()), row.name);
    }
    for (Row const& row : rows) {
        (v.*row.set)((v.*row.get)()); // its own buffer
        EXPECT_EQ(narrow((v.*row.get)()), row.name);
        (v.*row.set)((v.*row.get)() + 1);
        EXPECT_EQ(narrow((v.*row.get)()), std::string(row.name).substr(1));
        (v.*row.set)(nullptr);
        EXPECT_EQ(narrow((v.*row.get)()), "") << row.name;
    }
}

TEST(FCVariableData, EachNumberAccessorKeepsItsOwnField) {
    Variable v;
    v.SetDeploymentMapId(11);
    v.SetJobAppVarID(12);
    v.SetLinkedVariableHandle(13);
    v.SetVariableID(14);
    EXPECT_EQ(v.GetDeploymentMapId(), 11);
    EXPECT_EQ(v.GetJobAppVarID(), 12);
    EXPECT_EQ(v.GetLinkedVariableHandle(), 13);
    EXPECT_EQ(v.GetVariableID(), 14);
    v.SetTemplateVariable(7);
    EXPECT_TRUE(v.IsTemplateVariable());
    v.SetTemplateVariable(false);
    EXPECT_FALSE(v.IsTemplateVariable());
}

TEST(FCVariableData, EachFlagAccessorKeepsItsOwnField) {
    struct Row {
        char const* name;
        void (CFCVariableData::*set)(bool);
        bool (CFCVariableData::*get)();
    };
    using V = CFCVariableData;
    Row const rows[] = {
        {"UseAggregator", &V::SetUseAggregator, &V::GetUseAggregator},
        {"BPMVariable", &V::SetBPMVariable, &V::IsBPMVariable},
        {"Deployed", &V::SetDeployed, &V::IsDeployed},
        {"Editable", &V::SetEditable, &V::IsEditable},
        {"FileType", &V::SetFileType, &V::IsFileType},
        {"Group", &V::SetGroup, &V::IsGroup},
        {"GroupHeader", &V::SetGroupHeader, &V::IsGroupHeader},
        {"Hidden", &V::HideNode, &V::IsHidden},
        {"Reference", &V::SetReference, &V::IsRefrence},
        {"StoreDB", &V::SetStoreDB, &V::IsStoreDB},
        {"Visible", &V::SetVisible, &V::IsVisible},
    };
    Variable v;
    for (Row const& row : rows) {
        (v.*row.set)(false);
    }
    for (Row const& chosen : rows) {
        (v.*chosen.set)(true);
        for (Row const& row : rows) {
            EXPECT_EQ((v.*row.get)(), &row == &chosen) << chosen.name << " / " << row.name;
        }
        (v.*chosen.set)(false);
    }
}

TEST(FCVariableData, CaptionOfTheVariableIsNotTheCaptionOfTheNode) {
    Variable v;
    v.SetCaption(L"Shown");
    v.SetNodeCaption(L"Node");
    EXPECT_STREQ(v.GetCaption(), L"Shown");
    EXPECT_STREQ(v.GetNodeCaption(), L"Node");
}

TEST(FCVariableData, CatalogNodesCanBeReplaced) {
    Variable v;
    CFCDataTypeNode dataType;
    CFCFileTypeNode fileType;
    CFCDataTypeNode* const oldDataType = v.GetDataTypeNode();
    CFCFileTypeNode* const oldFileType = v.GetFileTypeNode();
    v.SetDataTypeNode(&dataType);
    v.SetFileTypeNode(&fileType);
    EXPECT_EQ(v.GetDataTypeNode(), &dataType);
    EXPECT_EQ(v.GetFileTypeNode(), &fileType);
    v.ReleaseOwnedParts(); // leaves what is not its own
    EXPECT_EQ(v.GetDataTypeNode(), &dataType);
    v.SetDataTypeNode(nullptr);
    v.SetFileTypeNode(nullptr);
    EXPECT_EQ(v.GetDataTypeNode(), nullptr);
    EXPECT_EQ(v.GetFileTypeNode(), nullptr);
    delete oldDataType;
    delete oldFileType;
}

TEST(FCVariableData, IsANodeOfItsOwn) {
    Variable v;
    EXPECT_EQ(v.GetVariableData(), &v);
    EXPECT_EQ(v.GetNode(), static_cast<IFCNode*>(&v));
    EXPECT_TRUE(v.IsVariable());
    EXPECT_TRUE(v.VerifyHandle());
    v.SetVariableName(L"x");
    EXPECT_STREQ(v.GetPath(), L"");
    v.Create();
    EXPECT_STREQ(v.GetVariableName(), L"x");
}

// --- Enumerations -----------------------------------------------------------------------------------

TEST(FCVariableData, EnumerationsAreSetByNameAndByNumber) {
    Variable v;
    v.SetDataType(L"Matrix");
    v.SetScopeType(L"Global");
    v.SetStatusType(L"In-and-Output");
    v.SetConnectionType(L"Connected");
    EXPECT_EQ(v.GetDataType(), EDataType_Matrix);
    EXPECT_EQ(v.GetScopeType(), EScopeType_Global);
    EXPECT_EQ(v.GetStatusType(), EStatusType_InAndOutput);
    EXPECT_EQ(v.GetConnectionType(), EConnectionType_Connected);
    EXPECT_STREQ(v.GetDataTypeS(), L"Matrix");
    EXPECT_STREQ(v.GetScopeTypeS(), L"Global");
    EXPECT_STREQ(v.GetStatusTypeS(), L"In-and-Output");
    EXPECT_STREQ(v.GetConnectionTypeS(), L"Connected");

    for (wchar_t const* unknown : {L"matrix", L"", L"Nothing", static_cast<wchar_t const*>(nullptr)}) {
        v.SetDataType(unknown);
        v.SetScopeType(unknown);
        v.SetStatusType(unknown);
        v.SetConnectionType(unknown);
    }
    EXPECT_EQ(v.GetDataType(), EDataType_Matrix);
    EXPECT_EQ(v.GetScopeType(), EScopeType_Global);
    EXPECT_EQ(v.GetStatusType(), EStatusType_InAndOutput);
    EXPECT_EQ(v.GetConnectionType(), EConnectionType_Connected);

    v.SetDataType(0); // a number, not a null text
    v.SetScopeType(0);
    v.SetStatusType(0);
    v.SetConnectionType(0);
    EXPECT_EQ(v.GetDataType(), EDataType_Int);
    EXPECT_EQ(v.GetScopeType(), EScopeType_Local);
    EXPECT_EQ(v.GetStatusType(), EStatusType_Input);
    EXPECT_EQ(v.GetConnectionType(), EConnectionType_Local);
    v.SetDataType(EDataType_File);
    v.SetScopeType(EScopeType_Resolve);
    v.SetStatusType(EStatusType_Output);
    v.SetConnectionType(EConnectionType_Template);
    EXPECT_STREQ(v.GetDataTypeS(), L"File");
    EXPECT_STREQ(v.GetScopeTypeS(), L"Resolve");
    EXPECT_STREQ(v.GetStatusTypeS(), L"Output");
    EXPECT_STREQ(v.GetConnectionTypeS(), L"Template");
}

TEST(FCVariableData, ValuesWithoutANameReadAsTheEmptyText) {
    Variable v;
    for (int type : {19, 20, 1000, -1}) {
        v.SetDataType(type);
        EXPECT_STREQ(v.GetDataTypeS(), L"") << type;
    }
}

TEST(FCVariableData, NamesOfDifferentEnumerationsHaveBuffersOfTheirOwn) {
    Variable v;
    v.SetDataType(EDataType_Double);
    wchar_t const* const type = v.GetDataTypeS();
    wchar_t const* const scope = v.GetScopeTypeS();
    wchar_t const* const status = v.GetStatusTypeS();
    wchar_t const* const connection = v.GetConnectionTypeS();
    EXPECT_STREQ(type, L"Double");
    EXPECT_STREQ(scope, L"Local");
    EXPECT_STREQ(status, L"Input");
    EXPECT_STREQ(connection, L"Local");
    v.SetDataType(v.GetDataTypeS());
    EXPECT_EQ(v.GetDataType(), EDataType_Double);
}

// --- Arrays, class text, image ----------------------------------------------------------------------

TEST(FCVariableData, TypeDecidesClassTextImageAndArray) {
    struct Row {
        int type;
        wchar_t const* classText;
        int image;
        bool array;
    };
    Row const rows[] = {
        {0, L"Data", 8, false},        {1, L"Data", 7, false},        {2, L"Data", 9, false},
        {3, L"Data", 10, false},       {4, L"Data", 7, false},        {5, L"Data", 7, false},
        {6, L"Data", 7, false},        {7, L"Data", 7, false},        {8, L"File", 7, false},
        {9, L"Directory", 7, false},   {10, L"Data Array", 11, true}, {11, L"Data Array", 11, true},
        {12, L"Data Array", 11, true}, {13, L"Data Array", 11, true}, {14, L"Data Array", 11, true},
        {15, L"Data Array", 11, true}, {16, L"Data Array", 11, true}, {17, L"File", 11, true},
        {18, L"Directory", 11, true},  {19, L"kept", 7, false},       {20, L"kept", 7, true},
        {-1, L"kept", 7, false},
    };
    for (Row const& row : rows) {
        Variable v;
        v.SetType(L"kept");
        v.SetDataType(row.type);
        EXPECT_STREQ(v.GetType(), row.classText) << row.type;
        EXPECT_EQ(v.GetImage(), row.image) << row.type;
        EXPECT_EQ(v.IsArray(), row.array) << row.type;
        EXPECT_STREQ(v.IsArrayS(), row.array ? L"Yes" : L"No") << row.type;
        v.SetArray(true);
        EXPECT_TRUE(v.IsArray()) << row.type;
        EXPECT_STREQ(v.IsArrayS(), L"Yes") << row.type;
    }
}

TEST(FCVariableData, ClassTextOfTheSetterIsLostAtTheNextRead) {
    Variable v;
    v.SetType(L"Picture");
    EXPECT_NE(narrow(v.GetJSONString()).find(R"("fileType": "Picture")"), std::string::npos);
    EXPECT_STREQ(v.GetType(), L"Data");
    EXPECT_NE(narrow(v.GetJSONString()).find(R"("fileType": "Data")"), std::string::npos);
}

TEST(FCVariableData, ArrayFlagIsSetByTextForYesInAnyCaseOnly) {
    struct Row {
        wchar_t const* text;
        int flag;
    };
    for (Row const& row : {Row{L"yes", 1}, Row{L"Yes", 1}, Row{L"YES", 1}, Row{L"true", 0}, Row{L"1", 0},
                           Row{L" yes", 0}, Row{L"", 0}, Row{nullptr, 0}, Row{L"No", 0}}) {
        Variable v;
        v.SetArray(row.flag == 0);
        v.SetArray(row.text);
        EXPECT_EQ(v.getArrayFlag(), row.flag) << narrow(row.text);
    }
    Variable v;
    v.SetArray(2);
    EXPECT_EQ(v.getArrayFlag(), 1);
    v.SetArray(0);
    EXPECT_EQ(v.getArrayFlag(), 0);
    v.SetArray(v.IsArrayS());
    EXPECT_EQ(v.getArrayFlag(), 0);
}

// --- Groups -----------------------------------------------------------------------------------------

TEST(FCVariableData, GroupHeaderHasTheGroupsNameAndOtherMembersHaveNone) {
    Variable v;
    v.SetVariableName(L"own");
    v.SetGroupName(L"group");
    EXPECT_STREQ(v.GetVariableName(), L"own");
    v.SetGroupHeader(true);
    EXPECT_STREQ(v.GetVariableName(), L"own");
    v.SetGroup(true);
    EXPECT_STREQ(v.GetVariableName(), L"group");
    v.SetGroupHeader(false);
    EXPECT_STREQ(v.GetVariableName(), L"");
}

// --- Options ----------------------------------------------------------------------------------------

TEST(FCVariableData, OptionsAreAppendedAndDeletedTogether) {
    Variable v;
    EXPECT_TRUE(v.AddOption(L"one"));
    EXPECT_TRUE(v.AddOption(nullptr));
    EXPECT_TRUE(v.AddOption(v.GetOption(0)));
    EXPECT_EQ(v.GetOptionCount(), 3);
    EXPECT_STREQ(v.GetOption(0), L"one");
    EXPECT_STREQ(v.GetOption(1), L"");
    EXPECT_STREQ(v.GetOption(2), L"one");
    EXPECT_TRUE(v.DeleteAllOption());
    EXPECT_EQ(v.GetOptionCount(), 0);
    EXPECT_TRUE(v.DeleteAllOption());
}

TEST(FCVariableData, SetOptionChangesNothing) {
    Variable v;
    v.AddOption(L"one");
    EXPECT_TRUE(v.SetOption(L"two", 0));
    EXPECT_TRUE(v.SetOption(L"two", 7));
    EXPECT_EQ(v.GetOptionCount(), 1);
    EXPECT_STREQ(v.GetOption(0), L"one");
}

TEST(FCVariableData, OptionOutOfRangeIsTheEmptyText) {
    Variable v;
    v.AddOption(L"one");
    EXPECT_STREQ(v.GetOption(-1), L"");
    EXPECT_STREQ(v.GetOption(1), L"");
    EXPECT_STREQ(v.GetOption(1000000), L"");
}

// --- Equality ---------------------------------------------------------------------------------------

TEST(FCVariableData, EqualityLooksAtSixFieldsOnly) {
    struct Row {
        char const* field;
        std::function<void(CFCVariableData&)> change;
        bool equal;
    };
    Row const rows[] = {
        {"array", [](CFCVariableData& v) { v.SetArray(true); }, false},
        {"connection", [](CFCVariableData& v) { v.SetConnectionType(1); }, false},
        {"type", [](CFCVariableData& v) { v.SetDataType(3); }, false},
        {"status", [](CFCVariableData& v) { v.SetStatusType(1); }, false},
        {"scope", [](CFCVariableData& v) { v.SetScopeType(1); }, false},
        {"value", [](CFCVariableData& v) { v.SetValue(L"A"); }, false},
        {"name", [](CFCVariableData& v) { v.SetVariableName(L"n"); }, true},
        {"caption", [](CFCVariableData& v) { v.SetCaption(L"n"); }, true},
        {"link", [](CFCVariableData& v) { v.SetLinkPath(L"a.b"); }, true},
        {"nature", [](CFCVariableData& v) { v.SetNature(L"Task"); }, true},
    };
    for (Row const& row : rows) {
        Variable a;
        Variable b;
        a.SetValue(L"a");
        b.SetValue(L"a");
        EXPECT_TRUE(a.IsEqual(&b));
        row.change(b);
        EXPECT_EQ(a.IsEqual(&b), row.equal) << row.field;
        EXPECT_EQ(b.IsEqual(&a), row.equal) << row.field;
    }
    Variable v;
    EXPECT_TRUE(v.IsEqual(&v));
    EXPECT_FALSE(v.IsEqual(nullptr));
}

// --- Python literals --------------------------------------------------------------------------------

TEST(FCVariableData, LiteralByCatalogTypeName) {
    struct Row {
        wchar_t const* type;
        wchar_t const* value;
        int array;
        char const* literal;
        wchar_t const* valueAfter;
    };
    Row const rows[] = {
        {L"Table", L"", 0, "[]", L""},
        {L"Table", L"1,2", 0, "[1,2]", L"1,2"},
        {L"Table", L"[1]", 0, "[1]", L"[1]"},
        {L"Table", L" [1]", 0, "[ [1]]", L" [1]"},
        {L"Int", L"7", 0, "0", L"7"},
        {L"Int", L"1,2", 1, "[1,2]", L"1,2"},
        {L"Int", L"[1,2]", 1, "[1,2]", L"[1,2]"},
        {L"Int", L"", 1, "[]", L""},
        {L"Double", L"7", 0, "0.00", L"7"},
        {L"Double", L"1.5", 1, "[1.5]", L"1.5"},
        {L"Float", L"7", 0, "0.00", L"7"},
        {L"Float", L"", 1, "[]", L""},
        {L"String", L"abc", 0, "r\"abc\"", L"abc"},
        {L"String", L"'abc'", 0, "'abc'", L"'abc'"},
        {L"String", L"\"abc", 0, "\"abc", L"\"abc"},
        {L"String", L"", 0, "r\"\"", L""},
        {L"String", L"'a','b'", 1, "['a','b']", L"'a','b'"},
        {L"File", L"C:\\x.txt", 0, "r\"C:\\x.txt\"", L"C:\\x.txt"},
        {L"File", L"", 1, "[]", L""},
        {L"Directory", L"C:\\d", 0, "r\"C:\\d\"", L"C:\\d"},
        {L"Directory", L"d", 1, "[d]", L"d"},
        {L"TarnObject", L"  'a' ", 0, "Kelso.TarnObject(' a')", L"a"},
        {L"TarnObject", L"\"a\" 'b'", 1, "Kelso.TarnObjectList(' a b')", L"a b"},
        {L"TarnObject", L"", 0, "Kelso.TarnObject(' ')", L""},
        {L"Matrix", L"'1 2'", 0, "Kelso.Matrix(' 1 2')", L"1 2"},
        {L"Matrix", L"'1 2'", 1, "Kelso.Matrix(' 1 2')", L"1 2"},
        {L"Point2", L"1,2 ", 0, "Kelso.Point2(' 1,2')", L"1,2"},
        {L"Point2", L"1,2 ", 1, "Kelso.Point2List(' 1,2')", L"1,2"},
        {L"Point3", L"\t1,2,3", 0, "Kelso.Point3(' 1,2,3')", L"1,2,3"},
        {L"Point3", L"1,2,3", 1, "Kelso.Point3List(' 1,2,3')", L"1,2,3"},
        {L"Unknown", L"abc", 0, "\"\"", L"abc"},
        {L"", L"abc", 1, "\"\"", L"abc"},
        {L"int", L"5", 0, "\"\"", L"5"},
        {L"IntArray", L"5", 0, "\"\"", L"5"},
    };
    for (Row const& row : rows) {
        Variable v;
        v.GetDataTypeNode()->SetType(row.type);
        v.SetValue(row.value);
        v.SetArray(row.array);
        EXPECT_EQ(literal(v), row.literal) << narrow(row.type) << " " << narrow(row.value);
        EXPECT_STREQ(v.GetValue(), row.valueAfter);
    }
}

TEST(FCVariableData, LiteralByCatalogTypeNameSetsTheNumericDataTypes) {
    struct Row {
        wchar_t const* type;
        EDataType dataType;
    };
    for (Row const& row : {Row{L"Int", EDataType_Int}, Row{L"Double", EDataType_Double}, Row{L"Float", EDataType_Float},
                           Row{L"String", EDataType_Directory}, Row{L"TarnObject", EDataType_Directory},
                           Row{L"Table", EDataType_Directory}, Row{L"x", EDataType_Directory}}) {
        Variable v;
        v.SetDataType(EDataType_Directory);
        v.GetDataTypeNode()->SetType(row.type);
        v.GetDefaultValue();
        EXPECT_EQ(v.GetDataType(), row.dataType) << narrow(row.type);
    }
}

TEST(FCVariableData, LiteralByCatalogTypeNameTestsTheFlagAndNotTheDataType) {
    Variable v;
    v.SetDataType(EDataType_StringArray);
    v.GetDataTypeNode()->SetType(L"String");
    v.SetValue(L"a");
    EXPECT_EQ(literal(v), "r\"a\"");
}

TEST(FCVariableData, LiteralByDataType) {
    struct Row {
        int type;
        wchar_t const* value;
        char const* literal;
        wchar_t const* valueAfter;
    };
    Row const rows[] = {
        {0, L"7", "0", L"7"},
        {1, L"7", "0.00", L"7"},
        {2, L"7", "0.00", L"7"},
        {3, L"abc", "r\"abc\"", L"abc"},
        {3, L"'abc'", "'abc'", L"'abc'"},
        {3, L"\"abc\"", "\"abc\"", L"\"abc\""},
        {3, L"", "r\"\"", L""},
        {4, L" 'a' ", "Kelso.TarnObject(' a')", L"a"},
        {5, L"\"1,2\"", "Kelso.Point2(' 1,2')", L"1,2"},
        {6, L"1,2,3 ", "Kelso.Point3(' 1,2,3')", L"1,2,3"},
        {7, L"'m'", "Kelso.Matrix(' m')", L"m"},
        {8, L"f", "r\"f\"", L"f"},
        {8, L"", "r\"\"", L""},
        {9, L"'d", "'d", L"'d"},
        {10, L"1,2", "[1,2]", L"1,2"},
        {10, L"", "[]", L""},
        {11, L"[1.5]", "[1.5]", L"[1.5]"},
        {12, L"2", "[2]", L"2"},
        {13, L"'a'", "['a']", L"'a'"},
        {14, L"'a'", "Kelso.TarnObjectList(' a')", L"a"},
        {15, L" 1,2", "Kelso.Point2List(' 1,2')", L"1,2"},
        {16, L"\"1\"", "Kelso.Point3List(' 1')", L"1"},
        {17, L"f", "[f]", L"f"},
        {18, L"", "[]", L""},
        {19, L"x", "0", L"x"},
        {20, L"x", "0", L"x"},
        {-1, L"x", "0", L"x"},
    };
    for (Row const& row : rows) {
        for (bool flag : {false, true}) {
            Variable v;
            v.GetDataTypeNode()->SetType(L"Table"); // plays no part
            v.SetDataType(row.type);
            v.SetArray(flag);
            v.SetValue(row.value);
            EXPECT_EQ(literalByType(v, flag), row.literal) << row.type << " " << narrow(row.value);
            EXPECT_STREQ(v.GetValue(), row.valueAfter);
            EXPECT_EQ(v.GetDataType(), row.type);
        }
    }
}

TEST(FCVariableData, NumericLiteralComesFromTheTypedStore) {
    Variable v;
    v.GetDataTypeNode()->SetType(L"Double");
    v.SetDataType(EDataType_Double);
    v.SetValue(L"1.5");
    EXPECT_EQ(literal(v), "0.00");
    v.UpdateValue();
    EXPECT_EQ(literal(v), "1.50");
    EXPECT_EQ(literalByType(v), "1.50");
    v.SetValue(L"2.5");
    EXPECT_EQ(literal(v), "1.50");

    Variable i;
    i.GetDataTypeNode()->SetType(L"Int");
    i.SetValue(L"-42");
    i.UpdateValue();
    EXPECT_EQ(literal(i), "-42");
    EXPECT_EQ(literalByType(i), "-42");
    i.setValue(2147483647);
    EXPECT_EQ(literal(i), "2147483647");

    Variable f;
    f.GetDataTypeNode()->SetType(L"Float");
    f.setValue(2.345F);
    EXPECT_EQ(literal(f), "2.35"); // the nearest float lies above 2.345
    EXPECT_EQ(literalByType(f), "2.35");
}

TEST(FCVariableData, NumericLiteralHasAPointUnderALocaleWithAComma) {
    std::string const before = std::setlocale(LC_ALL, nullptr);
    bool comma = false;
    for (char const* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "nl_NL.UTF-8", "de_DE", "German"}) {
        comma = comma || (std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',');
    }
    Variable v;
    v.SetDataType(EDataType_Double);
    v.SetValue(L"1.5");
    v.UpdateValue();
    std::string const code = literalByType(v);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(code, "1.50");
    if (!comma) {
        GTEST_SKIP() << "no locale with a decimal comma is installed here";
    }
}

TEST(FCVariableData, ListCodeIsKeptInTheBufferOfTheLiteral) {
    Variable v;
    EXPECT_STREQ(v.SetDefaultyArrayCode(), L"[]");
    v.SetValue(L"1");
    EXPECT_STREQ(v.SetDefaultyArrayCode(), L"[1]");
    v.SetValue(L"[");
    EXPECT_STREQ(v.SetDefaultyArrayCode(), L"[");
    v.SetValue(L"%s %n"); // no format
    EXPECT_STREQ(v.SetDefaultyArrayCode(), L"[%s %n]");
}

TEST(FCVariableData, VeryLongValueMakesAVeryLongLiteral) {
    std::wstring const text(3000000, L'x');
    Variable v;
    v.SetDataType(EDataType_String);
    v.SetValue(text.c_str());
    EXPECT_EQ(std::wstring(v.GetDefaultValue(true)), L"r\"" + text + L"\"");
}

// --- Text to store ----------------------------------------------------------------------------------

TEST(FCVariableData, UpdateValueParsesNumbersByDataType) {
    struct Row {
        wchar_t const* text;
        int asInt;
        float asFloat;
    };
    for (Row const& row : {Row{L"12", 12, 12.0F}, Row{L" -3.5x", -3, -3.5F}, Row{L"", 0, 0.0F}, Row{L"abc", 0, 0.0F},
                           Row{L"3000000000", 2147483647, 3e9F}, Row{L"1e3", 1, 1000.0F}}) {
        Variable v;
        v.SetValue(row.text);
        v.SetDataType(EDataType_Int);
        v.UpdateValue();
        EXPECT_EQ(v.getIntValue(), row.asInt) << narrow(row.text);
        v.SetDataType(EDataType_Float);
        v.UpdateValue();
        EXPECT_EQ(v.getFloatValue(), row.asFloat) << narrow(row.text);
        v.SetDataType(EDataType_Double);
        v.UpdateValue();
        EXPECT_EQ(v.getDoubleValue(), static_cast<double>(row.asFloat)) << narrow(row.text);
        EXPECT_STREQ(v.GetValue(), row.text);
    }
}

TEST(FCVariableData, DoubleIsParsedWithThePrecisionOfAFloat) {
    Variable v;
    v.SetDataType(EDataType_Double);
    v.SetValue(L"0.1");
    v.UpdateValue();
    EXPECT_EQ(v.getDoubleValue(), static_cast<double>(0.1F));
    EXPECT_NE(v.getDoubleValue(), 0.1);
}

TEST(FCVariableData, UpdateValueLeavesTheStoreOfOtherTypesAlone) {
    for (int type = 3; type <= 20; ++type) {
        Variable v;
        v.setValue(77);
        v.SetDataType(type);
        v.SetValue(L"5");
        v.UpdateValue();
        v.SetDataType(EDataType_Int);
        EXPECT_EQ(v.getIntValue(), 77) << type;
    }
}

// --- Typed store ------------------------------------------------------------------------------------

TEST(FCVariableData, ScalarSettersSetTheTypeAndLeaveTheFlag) {
    Variable v;
    v.SetArray(true);
    v.setValue(5);
    EXPECT_EQ(v.GetDataType(), EDataType_Int);
    EXPECT_EQ(v.getIntValue(), 5);
    v.setValue(2.5F);
    EXPECT_EQ(v.GetDataType(), EDataType_Float);
    EXPECT_EQ(v.getFloatValue(), 2.5F);
    v.setValue(3.25);
    EXPECT_EQ(v.GetDataType(), EDataType_Double);
    EXPECT_EQ(v.getDoubleValue(), 3.25);
    v.setValue("f\xc3\xbcnf");
    EXPECT_EQ(v.GetDataType(), EDataType_String);
    EXPECT_STREQ(v.GetValue(), L"f\u00fcnf");
    EXPECT_STREQ(v.getStringValue(), "f\xc3\xbcnf");
    EXPECT_EQ(v.getArrayFlag(), 1);
    v.setValue(v.getStringValue() + 3);
    EXPECT_STREQ(v.GetValue(), L"nf");
    v.setValue(static_cast<char const*>(nullptr));
    EXPECT_STREQ(v.GetValue(), L"");
    EXPECT_STREQ(v.getStringValue(), "");
}

TEST(FCVariableData, ReadersOfAnotherTypeGiveASentinel) {
    for (int type = -1; type <= 20; ++type) {
        Variable v;
        v.SetDataType(type);
        EXPECT_EQ(v.getIntValue(), type == 0 ? 0 : -1) << type;
        EXPECT_EQ(v.getFloatValue(), type == 1 ? 0.0F : -1.0F) << type;
        EXPECT_EQ(v.getDoubleValue(), type == 2 ? 0.0 : -1.0) << type;
        EXPECT_EQ(v.getStringValue() != nullptr, type == 3) << type;
    }
}

TEST(FCVariableData, NumericArraysAreCopied) {
    Variable v;
    int ints[] = {1, 2, 3};
    v.setValue(3, ints);
    ints[0] = 9;
    EXPECT_EQ(v.GetDataType(), EDataType_Int);
    EXPECT_EQ(v.getArrayFlag(), 1);
    EXPECT_EQ(v.getArrayCount(), 3);
    int* asInt = nullptr;
    ASSERT_EQ(v.getIntArrayValue(asInt), 3);
    EXPECT_EQ(std::vector<int>(asInt, asInt + 3), (std::vector<int>{1, 2, 3}));

    float const floats[] = {1.5F, 2.5F};
    v.setValue(2, floats);
    EXPECT_EQ(v.GetDataType(), EDataType_Float);
    float* asFloat = nullptr;
    ASSERT_EQ(v.getFloatArrayValue(&asFloat), 2);
    EXPECT_EQ(asFloat[0], 1.5F);
    EXPECT_EQ(asFloat[1], 2.5F);

    double const doubles[] = {0.5};
    v.setValue(1, doubles);
    EXPECT_EQ(v.GetDataType(), EDataType_Double);
    double* asDouble = nullptr;
    ASSERT_EQ(v.getDoubleArrayValue(&asDouble), 1);
    EXPECT_EQ(asDouble[0], 0.5);
    EXPECT_EQ(v.getArrayCount(), 1);
}

TEST(FCVariableData, TextArraysAreDuplicated) {
    Variable v;
    char first[] = "one";
    char const* const texts[] = {first, nullptr, "three"};
    v.setValue(3, texts);
    first[0] = 'X';
    EXPECT_EQ(v.GetDataType(), EDataType_String);
    EXPECT_EQ(v.getArrayCount(), 3);
    char** out = nullptr;
    ASSERT_EQ(v.getStringArrayValue(out), 3);
    EXPECT_STREQ(out[0], "one");
    EXPECT_EQ(out[1], nullptr);
    EXPECT_STREQ(out[2], "three");
    char** again = nullptr;
    EXPECT_EQ(v.getStringArrayValue(&again), 3);
    EXPECT_EQ(again, out);
}

TEST(FCVariableData, ArrayOfAnotherTypeGoesOutAsRawMemory) {
    Variable v;
    float const floats[] = {1.0F, -2.0F};
    v.setValue(2, floats);
    int* raw = nullptr;
    ASSERT_EQ(v.getIntArrayValue(raw), 2);
    EXPECT_EQ(std::memcmp(raw, floats, sizeof floats), 0);
}

TEST(FCVariableData, ArrayReadersGiveNothingForAScalarOfAnotherType) {
    Variable v;
    v.setValue(2.0);
    int one = 1;
    float oneFloat = 1.0F;
    char text[] = "";
    char* texts[] = {text};
    int* asInt = &one;
    float* asFloat = &oneFloat;
    char** asText = texts;
    EXPECT_EQ(v.getIntArrayValue(asInt), 0);
    EXPECT_EQ(v.getFloatArrayValue(asFloat), 0);
    EXPECT_EQ(v.getStringArrayValue(asText), 0);
    EXPECT_EQ(asInt, nullptr);
    EXPECT_EQ(asFloat, nullptr);
    EXPECT_EQ(asText, nullptr);
    EXPECT_EQ(v.getIntArrayValue(static_cast<int**>(nullptr)), 0);
}

TEST(FCVariableData, ArrayReaderOfTheOwnTypeAnswersWithTheFlagClear) {
    Variable v;
    int const ints[] = {4, 5};
    v.setValue(2, ints);
    v.SetArray(false);
    EXPECT_EQ(v.getArrayCount(), 0);
    int* out = nullptr;
    ASSERT_EQ(v.getIntArrayValue(out), 2);
    EXPECT_EQ(out[1], 5);
    float* none = nullptr;
    EXPECT_EQ(v.getFloatArrayValue(none), 0);
    EXPECT_EQ(none, nullptr);
}

TEST(FCVariableData, CountOfZeroStoresANullPointer) {
    Variable v;
    int const ints[] = {1, 2, 3};
    v.setValue(3, ints);
    v.setValue(0, ints);
    EXPECT_EQ(v.getArrayCount(), 0);
    int* out = nullptr;
    EXPECT_EQ(v.getIntArrayValue(out), 0);
    EXPECT_EQ(out, nullptr);
    v.setValue(3, ints);
    v.setValue(-5, ints);
    EXPECT_EQ(v.getArrayCount(), 0);
    v.setValue(3, ints);
    v.setValue(3, static_cast<int const*>(nullptr));
    EXPECT_EQ(v.getArrayCount(), 0);
}

TEST(FCVariableData, TextFormWithACountOfZeroKeepsTheOldCountBesideANullPointer) {
    Variable v;
    char const* const texts[] = {"a", "b", "c"};
    v.setValue(3, texts);
    v.setValue(0, texts);
    EXPECT_EQ(v.getArrayCount(), 3);
    char** out = nullptr;
    EXPECT_EQ(v.getStringArrayValue(out), 3);
    EXPECT_EQ(out, nullptr);
    v.setValue(2, texts); // and the stale count harms nothing
    EXPECT_EQ(v.getArrayCount(), 2);
    v.setValue(-1, texts);
    EXPECT_EQ(v.getArrayCount(), 2);
    v.setValue(1, static_cast<char const* const*>(nullptr));
    EXPECT_EQ(v.getArrayCount(), 2);
}

TEST(FCVariableData, ArraysMayBeSetFromTheirOwnStorage) {
    Variable v;
    int const ints[] = {1, 2, 3};
    v.setValue(3, ints);
    int* own = nullptr;
    v.getIntArrayValue(own);
    v.setValue(2, own + 1);
    v.getIntArrayValue(own);
    EXPECT_EQ(own[0], 2);
    EXPECT_EQ(own[1], 3);

    char const* const texts[] = {"a", "b"};
    v.setValue(2, texts);
    char** ownTexts = nullptr;
    v.getStringArrayValue(ownTexts);
    v.setValue(1, ownTexts + 1);
    v.getStringArrayValue(ownTexts);
    EXPECT_STREQ(ownTexts[0], "b");
}

TEST(FCVariableData, ParsedNumberInTheStoreIsNeverFreed) {
    int const ints[] = {1, 2};
    char const* const texts[] = {"a"};
    {
        Variable v;
        v.SetArray(true);
        v.SetValue(L"5");
        v.UpdateValue();
        v.setValue(2, ints);
        EXPECT_EQ(v.getArrayCount(), 2);
    }
    {
        Variable v; // the text form frees whatever the flag says
        v.SetValue(L"5");
        v.UpdateValue();
        v.setValue(1, texts);
        EXPECT_EQ(v.getArrayCount(), 1);
    }
    {
        Variable v;
        v.SetArray(true);
        v.setValue(2.5);
        v.setValue(1, texts);
        v.SetArray(true);
        v.SetDataType(EDataType_Int); // texts under a numeric type
        v.setValue(2, ints);
        EXPECT_EQ(v.getArrayCount(), 2);
    }
    {
        Variable v;
        v.setValue(2, ints);
        v.SetDataType(EDataType_String); // numbers under the text type
        v.setValue(1, texts);
        char** out = nullptr;
        ASSERT_EQ(v.getStringArrayValue(out), 1);
        EXPECT_STREQ(out[0], "a");
    }
}

TEST(FCVariableData, ScalarSettersDoNotFreeAnEarlierArray) {
    Variable v;
    int const ints[] = {1, 2};
    v.setValue(2, ints);
    int* kept = nullptr;
    v.getIntArrayValue(kept);
    v.setValue(7);
    v.setValue(2, ints);
    EXPECT_EQ(kept[1], 2); // still the caller's to read
    TuFree(kept);
}

TEST(FCVariableData, NumericFormWithTheFlagClearFreesNothing) {
    Variable v;
    int const ints[] = {1, 2};
    v.setValue(2, ints);
    int* kept = nullptr;
    v.getIntArrayValue(kept);
    v.SetArray(false);
    v.setValue(2, ints);
    EXPECT_EQ(kept[0], 1);
    TuFree(kept);
}

TEST(FCVariableData, OnlyAFlagOfExactlyOneCountsForTheArrayStore) {
    Variable two("a", 0, 0, 2);
    Variable v;
    int const ints[] = {1, 2};
    v.setValue(2, ints);
    int* kept = nullptr;
    v.getIntArrayValue(kept);
    CFCVariableData::Copy(&two, &v);
    ASSERT_EQ(v.getArrayFlag(), 2);
    EXPECT_TRUE(v.IsArray());
    EXPECT_EQ(v.getArrayCount(), 0);
    float* raw = nullptr;
    EXPECT_EQ(v.getFloatArrayValue(raw), 2) << "the readers only ask whether the flag is clear";
    v.setValue(2, ints);
    EXPECT_EQ(v.getArrayFlag(), 1);
    EXPECT_EQ(kept[1], 2) << "and nothing was freed";
    TuFree(kept);
}

TEST(FCVariableData, StorageUnderAnotherTypeIsNotFreed) {
    int const ints[] = {1, 2};
    char const* const texts[] = {"a"};
    for (int type : {4, 7, 10, 13, 19, -1}) {
        for (bool text : {false, true}) {
            Variable v;
            v.setValue(2, ints);
            int* kept = nullptr;
            v.getIntArrayValue(kept);
            v.SetDataType(type);
            if (text) {
                v.setValue(1, texts);
            } else {
                v.setValue(2, ints);
            }
            EXPECT_EQ(kept[1], 2) << type;
            TuFree(kept);
        }
    }
}

TEST(FCVariableData, SetParentWritesAPointerOverTheStore) {
    Variable v;
    int value = 3;
    v.SetArray(true);
    v.setParent(&value);
    EXPECT_EQ(v.GetDataType(), EDataType_Int);
    EXPECT_EQ(v.getArrayFlag(), 1);
    EXPECT_EQ(v.GetParentNode(), nullptr);
    int* out = nullptr;
    EXPECT_EQ(v.getIntArrayValue(out), 0);
    EXPECT_EQ(out, &value);
    int const ints[] = {1};
    v.setValue(1, ints); // the pointer is not this variable's to free
    EXPECT_EQ(value, 3);
}

// --- Copying ----------------------------------------------------------------------------------------

namespace {

void fillAll(CFCVariableData& v) {
    v.SetVariableName(L"name");
    v.SetCaption(L"caption");
    v.SetDataType(EDataType_Point2);
    v.SetStatusType(EStatusType_Output);
    v.SetScopeType(EScopeType_Public);
    v.SetConnectionType(EConnectionType_Template);
    v.SetValue(L"value");
    v.SetLinkPath(L"a.b");
    v.SetLinkedVariableHandle(42);
    v.SetNature(L"Task");
    v.SetVisible(true);
    v.SetDeployed(true);
    v.SetEditable(false);
    v.SetArray(true);
    v.SetFileType(true);
    v.SetReference(false);
    v.SetStoreDB(false);
    v.SetTemplateVariable(5);
    v.HideNode(true);
    v.SetBPMVariable(true);
    v.SetUseAggregator(true);
    v.SetJobAppVarID(1);
    v.SetDeploymentMapId(2);
    v.SetVariableID(3);
    v.SetResolveEvent(L"event");
    v.SetType(L"type");
    v.SetEntityType(L"entity");
    v.SetGroupName(L"group");
    v.AddOption(L"option");
    v.GetDataTypeNode()->SetType(L"Point2");
    v.GetDataTypeNode()->SetScope(L"scope");
    v.GetDataTypeNode()->SetNodeCaption(L"P2");
    v.GetFileTypeNode()->SetFileTypeName(L"txt");
}

} // namespace

TEST(FCVariableData, CopyConstructionAndAssignmentTakeEveryField) {
    for (bool assign : {false, true}) {
        Variable source;
        fillAll(source);
        source.SetGroup(true);
        source.SetGroupHeader(true);
        Variable target;
        CFCDataTypeNode* const ownDataType = target.GetDataTypeNode();
        CFCFileTypeNode* const ownFileType = target.GetFileTypeNode();
        std::unique_ptr<Variable> copied;
        if (assign) {
            target = source;
            delete ownDataType;
            delete ownFileType;
        } else {
            copied = std::make_unique<Variable>(source);
        }
        Variable& copy = assign ? target : *copied;
        EXPECT_STREQ(copy.GetVariableName(), L"group");
        EXPECT_STREQ(copy.GetCaption(), L"caption");
        EXPECT_TRUE(copy.IsEqual(&source));
        EXPECT_STREQ(copy.GetValue(), L"value");
        EXPECT_STREQ(copy.GetLinkPath(), L"a.b");
        EXPECT_EQ(copy.GetLinkedVariableHandle(), 42);
        EXPECT_STREQ(copy.GetNature(), L"Task");
        EXPECT_TRUE(copy.IsVisible());
        EXPECT_TRUE(copy.IsDeployed());
        EXPECT_FALSE(copy.IsEditable());
        EXPECT_TRUE(copy.IsFileType());
        EXPECT_FALSE(copy.IsRefrence());
        EXPECT_FALSE(copy.IsStoreDB());
        EXPECT_TRUE(copy.IsTemplateVariable());
        EXPECT_TRUE(copy.IsHidden());
        EXPECT_TRUE(copy.IsGroup());
        EXPECT_TRUE(copy.IsGroupHeader());
        EXPECT_TRUE(copy.IsBPMVariable());
        EXPECT_TRUE(copy.GetUseAggregator());
        EXPECT_EQ(copy.GetJobAppVarID(), 1);
        EXPECT_EQ(copy.GetDeploymentMapId(), 2);
        EXPECT_EQ(copy.GetVariableID(), 3);
        EXPECT_STREQ(copy.GetResolveEvent(), L"event");
        EXPECT_STREQ(copy.GetEntityType(), L"entity");
        EXPECT_STREQ(copy.GetGroupName(), L"group");
        EXPECT_EQ(copy.GetOptionCount(), 1);
        EXPECT_EQ(copy.GetDataTypeNode(), source.GetDataTypeNode());
        EXPECT_EQ(copy.GetFileTypeNode(), source.GetFileTypeNode());
        EXPECT_EQ(copy.GetNodeHandle(), source.GetNodeHandle());
        // Shared with a copy: neither frees them, so that the other may still read.
        CFCDataTypeNode* const shared = source.GetDataTypeNode();
        CFCFileTypeNode* const sharedFile = source.GetFileTypeNode();
        source.ReleaseOwnedParts();
        EXPECT_EQ(source.GetDataTypeNode(), shared);
        copy.ReleaseOwnedParts();
        EXPECT_STREQ(shared->GetType(), L"Point2");
        copy.SetDataTypeNode(nullptr);
        copy.SetFileTypeNode(nullptr);
        source.SetDataTypeNode(nullptr);
        source.SetFileTypeNode(nullptr);
        delete shared;
        delete sharedFile;
    }
}

TEST(FCVariableData, SelfAssignmentChangesNothing) {
    Variable v;
    fillAll(v);
    Variable& alias = v;
    v = alias;
    EXPECT_STREQ(v.GetVariableName(), L"name");
    EXPECT_STREQ(v.GetValue(), L"value");
    EXPECT_EQ(v.GetOptionCount(), 1);
}

TEST(FCVariableData, CopiesShareArrayStorageAndNeverFreeIt) {
    Variable source;
    int const ints[] = {1, 2, 3};
    source.setValue(3, ints);
    int* stored = nullptr;
    source.getIntArrayValue(stored);
    {
        Variable copy(source);
        int* seen = nullptr;
        EXPECT_EQ(copy.getIntArrayValue(seen), 3);
        EXPECT_EQ(seen, stored);
        EXPECT_EQ(copy.getArrayCount(), 3);
        copy.setValue(1, ints); // its own block from here on
        copy.getIntArrayValue(seen);
        EXPECT_NE(seen, stored);
        copy.SetDataTypeNode(nullptr);
        copy.SetFileTypeNode(nullptr);
    }
    EXPECT_EQ(stored[2], 3);
    source.setValue(0, ints);
    delete source.GetDataTypeNode();
    delete source.GetFileTypeNode();
}

TEST(FCVariableData, CopyTakesWhatTheModelCaresForAndNoMore) {
    Variable source;
    fillAll(source);
    int const ints[] = {1, 2, 3};
    source.setValue(3, ints);
    source.SetDataType(EDataType_Point2);
    Variable target;
    target.SetGroup(true);
    target.SetGroupHeader(true);
    target.SetGroupName(L"mine");
    int const handle = target.GetNodeHandle();
    CFCDataTypeNode* const dataType = target.GetDataTypeNode();
    CFCFileTypeNode* const fileType = target.GetFileTypeNode();
    CFCVariableData::Copy(&source, &target);

    EXPECT_TRUE(target.IsEqual(&source));
    EXPECT_EQ(target.GetDataType(), EDataType_Point2);
    EXPECT_EQ(target.GetStatusType(), EStatusType_Output);
    EXPECT_EQ(target.GetScopeType(), EScopeType_Public);
    EXPECT_EQ(target.GetConnectionType(), EConnectionType_Template);
    EXPECT_TRUE(target.IsVisible());
    EXPECT_TRUE(target.IsTemplateVariable());
    EXPECT_STREQ(target.GetLinkPath(), L"a.b");
    EXPECT_TRUE(target.IsDeployed());
    EXPECT_FALSE(target.IsEditable());
    EXPECT_STREQ(target.GetNature(), L"Task");
    EXPECT_EQ(target.getArrayFlag(), 1);
    EXPECT_TRUE(target.IsFileType());
    EXPECT_STREQ(target.GetCaption(), L"caption");
    EXPECT_FALSE(target.IsRefrence());
    EXPECT_FALSE(target.IsStoreDB());
    EXPECT_EQ(target.GetDataTypeNode(), dataType);
    EXPECT_STREQ(dataType->GetType(), L"Point2");
    EXPECT_STREQ(dataType->GetScope(), L"scope");
    EXPECT_STREQ(dataType->GetNodeCaption(), L"P2");
    EXPECT_EQ(target.GetFileTypeNode(), fileType);
    EXPECT_STREQ(fileType->GetFileTypeName(), L"txt");

    EXPECT_FALSE(target.IsHidden());
    EXPECT_TRUE(target.IsGroup());
    EXPECT_TRUE(target.IsGroupHeader());
    EXPECT_STREQ(target.GetGroupName(), L"mine");
    EXPECT_FALSE(target.IsBPMVariable());
    EXPECT_FALSE(target.GetUseAggregator());
    EXPECT_EQ(target.GetJobAppVarID(), 0);
    EXPECT_EQ(target.GetDeploymentMapId(), 0);
    EXPECT_EQ(target.GetVariableID(), 0);
    EXPECT_STREQ(target.GetResolveEvent(), L"");
    EXPECT_STREQ(target.GetEntityType(), L"");
    EXPECT_EQ(target.GetLinkedVariableHandle(), -1);
    EXPECT_EQ(target.GetOptionCount(), 0);
    EXPECT_EQ(target.getArrayCount(), 0);
    EXPECT_EQ(target.GetNodeHandle(), handle);
    target.SetGroup(false);
    EXPECT_STREQ(target.GetVariableName(), L"name");
    target.SetDataType(19); // so that the class text is read as it stands
    EXPECT_STREQ(target.GetType(), L"Data");
}

TEST(FCVariableData, CopyOfAGroupHeaderTakesTheGroupsNameAsPlainName) {
    Variable source;
    source.SetVariableName(L"own");
    source.SetGroupName(L"group");
    source.SetGroup(true);
    source.SetGroupHeader(true);
    Variable target;
    target.CopyFrom(&source);
    EXPECT_STREQ(target.GetVariableName(), L"group");
    EXPECT_FALSE(target.IsGroup());
    EXPECT_FALSE(target.IsGroupHeader());
    source.SetGroupHeader(false);
    target.CopyFrom(&source);
    EXPECT_STREQ(target.GetVariableName(), L"");
}

TEST(FCVariableData, CopyDoesNothingForANull) {
    Variable v;
    v.SetValue(L"x");
    CFCVariableData::Copy(nullptr, &v);
    CFCVariableData::Copy(&v, nullptr);
    CFCVariableData::Copy(nullptr, nullptr);
    v.CopyFrom(nullptr);
    EXPECT_STREQ(v.GetValue(), L"x");
    v.CopyFrom(&v);
    EXPECT_STREQ(v.GetValue(), L"x");
}

TEST(FCVariableData, CloneHasFreshCatalogNodesWithoutTypeAndNoParent) {
    CFCBlockNode block;
    Variable v;
    fillAll(v);
    v.SetParentNode(&block);
    int const before = v.GetNodeHandle();
    int const next = CFCVariableData("probe", 0, 0, 0).GetNodeHandle() + 1;
    VariablePtr const clone(v.CloneVariable());
    ASSERT_NE(clone, nullptr);
    EXPECT_TRUE(clone->IsEqual(&v));
    EXPECT_STREQ(clone->GetVariableName(), L"name");
    EXPECT_EQ(clone->GetParentNode(), nullptr);
    EXPECT_NE(clone->GetNodeHandle(), before);
    ASSERT_NE(clone->GetDataTypeNode(), nullptr);
    ASSERT_NE(clone->GetFileTypeNode(), nullptr);
    EXPECT_NE(clone->GetDataTypeNode(), v.GetDataTypeNode());
    EXPECT_EQ(clone->GetDataTypeNode()->GetNodeType(), 0);
    EXPECT_EQ(clone->GetFileTypeNode()->GetNodeType(), 0);
    EXPECT_STREQ(clone->GetDataTypeNode()->GetType(), L"Point2");
    // Five handles: the object, its first two nodes and the two that replace them.
    EXPECT_EQ(clone->GetNodeHandle(), next);
    EXPECT_EQ(clone->GetFileTypeNode()->GetNodeHandle(), next + 4);
    EXPECT_EQ(CFCVariableData("probe", 0, 0, 0).GetNodeHandle(), next + 5);
}

TEST(FCVariableData, DestructorLeavesCatalogNodesToTheirUsers) {
    auto v = std::make_unique<CFCVariableData>();
    CFCDataTypeNode* const dataType = v->GetDataTypeNode();
    CFCFileTypeNode* const fileType = v->GetFileTypeNode();
    v.reset();
    EXPECT_EQ(CFCNodeManager::GetNode(dataType->GetNodeHandle()), dataType);
    EXPECT_EQ(CFCNodeManager::GetNode(fileType->GetNodeHandle()), fileType);
    delete dataType;
    delete fileType;
}

TEST(FCVariableData, ReleaseFreesTheOwnPartsOnce) {
    CFCVariableData v;
    int const dataType = v.GetDataTypeNode()->GetNodeHandle();
    int const fileType = v.GetFileTypeNode()->GetNodeHandle();
    char const* const texts[] = {"a", "b"};
    v.setValue(2, texts);
    v.SetDataType(EDataType_Matrix);
    v.ReleaseOwnedParts();
    EXPECT_EQ(CFCNodeManager::GetNode(dataType), nullptr);
    EXPECT_EQ(CFCNodeManager::GetNode(fileType), nullptr);
    EXPECT_EQ(v.GetDataTypeNode(), nullptr);
    EXPECT_EQ(v.GetFileTypeNode(), nullptr);
    EXPECT_EQ(v.GetDataType(), EDataType_Matrix);
    v.ReleaseOwnedParts();
    EXPECT_EQ(v.GetDataTypeNode(), nullptr);
}

// --- JSON -------------------------------------------------------------------------------------------

TEST(FCVariableData, JsonOfAPlainText) {
    Variable v;
    v.SetDataType(EDataType_String);
    v.GetDataTypeNode()->SetType(L"String");
    v.SetVariableName(L"n");
    v.SetValue(L"a");
    EXPECT_EQ(narrow(v.GetJSONString()),
              R"({"value": "a","fileType": "Data","files": [],"dataType": "String","linkPath": "",)"
              R"("ioType": "Input","nature": "","id": "0","name": "n"})");
}

TEST(FCVariableData, JsonOfAFullVariable) {
    Variable v;
    v.GetDataTypeNode()->SetType(L"File");
    v.SetType(L"Picture");
    v.SetStatusType(EStatusType_InAndOutput);
    v.SetLinkPath(L"A.b");
    v.SetNature(L"Task");
    v.SetJobAppVarID(-7);
    v.SetVariableName(L"plain");
    v.SetGroupName(L"group");
    v.SetGroup(true);
    EXPECT_EQ(narrow(v.GetJSONString()),
              R"({"value": "","fileType": "Picture","files": [],"dataType": "File","linkPath": "A.b",)"
              R"("ioType": "In-and-Output","nature": "Task","id": "-7","name": "plain"})");
}

TEST(FCVariableData, JsonOfAnOrrinTypeHasItsValueUnquoted) {
    struct Row {
        wchar_t const* type;
        wchar_t const* value;
        char const* begin;
    };
    for (Row const& row : {Row{L"OrrinModel", L"{\"x\":1}", R"({"value": {"x":1},"fileType")"},
                           Row{L"orrinmodel", L"{\"x\":1}", R"({"value": {"x":1},"fileType")"},
                           Row{L"OrrinModel", L"", R"({"value": "","fileType")"},
                           Row{L"OrrinUser", L"me", R"({"value": "me","fileType")"},
                           Row{L"orrinPASSWORD", L"me", R"({"value": "me","fileType")"},
                           Row{L"OrrinServer", L"me", R"({"value": "me","fileType")"},
                           Row{L"String", L"{}", R"({"value": "{}","fileType")"}}) {
        Variable v;
        v.GetDataTypeNode()->SetType(row.type);
        v.SetValue(row.value);
        EXPECT_EQ(narrow(v.GetJSONString()).rfind(row.begin, 0), 0U) << narrow(v.GetJSONString());
    }
}

TEST(FCVariableData, JsonEscapesNothing) {
    Variable v;
    v.SetValue(L"a\"b\\c\nd'\"'e");
    EXPECT_EQ(narrow(v.GetJSONString()).rfind("{\"value\": \"a\"b\\c\nd\"e\",", 0), 0U);
}

TEST(FCVariableData, JsonValueWithPlaceholdersIsReplacedByLaterStepsOnly) {
    Variable v;
    v.SetVariableName(L"N");
    v.SetType(L"T$Status");
    v.SetLinkPath(L"L$Type");
    v.SetNature(L"$Value$LinkPath");
    v.GetDataTypeNode()->SetType(L"D");
    v.SetValue(L"$Value|$Name|$VarID|$VarFiles|$DataType");
    EXPECT_EQ(narrow(v.GetJSONString()),
              R"({"value": "$Value|N|0||D","fileType": "TInput","files": [],"dataType": "D","linkPath": "LTInput",)"
              R"("ioType": "Input","nature": "$Value$LinkPath","id": "0","name": "N"})");
}

TEST(FCVariableData, JsonFollowsTheTemplateOfTheHost) {
    wchar_t const* const before = FCVariableJSONTemplate;
    static_assert(std::is_same_v<decltype(FCVariableJSONTemplate), wchar_t const*>);
    Variable v;
    v.SetVariableName(L"n");
    FCVariableJSONTemplate = L"'\"'$Name$Name'\"'";
    EXPECT_STREQ(v.GetJSONString(), L"\"nn\"");
    FCVariableJSONTemplate = nullptr;
    EXPECT_STREQ(v.GetJSONString(), L"");
    FCVariableJSONTemplate = before;
}

TEST(FCVariableData, TemplatesStandAsTheHostKnowsThem) {
    EXPECT_EQ(
        narrow(FCVariableJSONTemplate),
        "{'\"'value'\"': '\"'$Value'\"','\"'fileType'\"': '\"'$Type'\"','\"'files'\"': [$VarFiles],"
        "'\"'dataType'\"': '\"'$DataType'\"','\"'linkPath'\"': '\"'$LinkPath'\"','\"'ioType'\"': "
        "'\"'$Status'\"','\"'nature'\"': '\"'$Nature'\"','\"'id'\"': '\"'$VarID'\"','\"'name'\"': '\"'$Name'\"'}");
    EXPECT_EQ(narrow(FCArgumentJSONTemplate), "{'\"'index'\"': '\"'$Index'\"','\"'value'\"': '\"'$Value'\"'}");
    EXPECT_EQ(narrow(FCPatternJSONTemplate),
              "{'\"'name'\"': '\"'$Name'\"',   '\"'regEx'\"': '\"'$RegEx'\"',   '\"'suggestion'\"': "
              "'\"'$Suggestion'\"',   '\"'fileExtn'\"': '\"'$File'\"'}");
}

// --- Paths ------------------------------------------------------------------------------------------

TEST(FCVariableData, PathIsOwnersPathPointAndName) {
    CFCBlockNode root;
    CFCBlockNode sub;
    CFCBlockNode task;
    sub.SetNodeId(L"Sub_01");
    task.SetNodeId(L"Task_02");
    root.AppendChild(&sub, false);
    sub.AppendChild(&task, false);
    Variable v;
    v.SetVariableName(L"Input");
    EXPECT_STREQ(v.GetBlockVariablePath(), L".Input");
    v.SetParentNode(&root);
    EXPECT_STREQ(v.GetBlockVariablePath(), L".Input");
    v.SetParentNode(&sub);
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Sub_01.Input");
    v.SetParentNode(&task);
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Sub_01.Task_02.Input");
    root.SetNodeId(L"Root");
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Root.Sub_01.Task_02.Input");
    task.SetNodeId(L"");
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Root.Sub_01..Input");
    v.SetGroup(true);
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Root.Sub_01..");
}

TEST(FCVariableData, PathOfATemplateVariableBeginsWithTheWordWhenTheOwnerHasNone) {
    Variable v;
    v.SetVariableName(L"Input");
    v.SetTemplateVariable(1);
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Template.Input");
    CFCBlockNode block;
    v.SetParentNode(&block);
    EXPECT_STREQ(v.GetBlockVariablePath(), L"Template.Input");
    block.SetNodeId(L"B");
    EXPECT_STREQ(v.GetBlockVariablePath(), L"B.Input");
}
