#include "flowmere/workflow/FCProcessVarReader.h"

#include "VariableFileSupport.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/ChildIndex.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/persistence/FCDataTypeListReader.h"

#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace flowmere::test;

namespace {

// The search starts at the last entry of the file and never looks below it, nor below the last one of each group.
constexpr char kDataTypes[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<DataTypes Name="Types">
  <GROUP Name="Basic" Type="BasicGroup">
    <DATATYPE Name="Whole Number" Type="Int" Scope="All">
      <LANGUAGE Type="Python"/><SETCODE><![CDATA[set]]></SETCODE><GETCODE><![CDATA[get]]></GETCODE>
    </DATATYPE>
    <DATATYPE Name="Application Name" Type="ApplicationName" Scope="Jobs"/>
    <DATATYPE Name="Shown" Type="Stored" Scope=""/>
    <DATATYPE Name="Stored" Type="Shown2" Scope=""/>
    <DATATYPE Name="Files" Type="CAEFILE" Scope="Shared"/>
    <DATATYPE Name="Hides what is below" Type="First" Scope=""/>
  </GROUP>
  <DATATYPE Name="Lead" Type="LeadType" Scope=""/>
</DataTypes>
)";

constexpr char kFileTypes[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<FILETYPES>
  <FILETYPE name="Picture" id="7" mimeType="image/png" extension="png" description="A picture"/>
  <FILETYPE name="Sound" id="8" mimeType="audio/wav" extension="wav" description="A sound"/>
</FILETYPES>
)";

class FCProcessVarReaderTest : public VariableFileTest {
protected:
    FCProcessVarReaderTest() { CFCDataTypeListReader::RefreshDataTypes(); }
    ~FCProcessVarReaderTest() override {
        CFCEnvironment::m_strBasePath.Empty();
        CFCDataTypeListReader::RefreshDataTypes();
    }

    void useCatalog() {
        CFCEnvironment::SetBasePath(scratch.text("catalog"));
        scratch.write("catalog/DataTypes.xml", kDataTypes);
        scratch.write("catalog/FileTypes.xml", kFileTypes);
        CFCDataTypeListReader::RefreshDataTypes();
        ASSERT_NE(CFCDataTypeListReader::GetDataTypeRootNode(), nullptr);
    }
    // Reads a file with this inside into the node.
    bool parse(std::string const& inside, IFCNode* node) {
        scratch.write("process.var", "<PROCESS name=\"Main\">" + inside + "</PROCESS>");
        return reader.Parse(path("process.var"), node, 16);
    }
    // The only variable of a task that has read a variable with these attributes.
    CFCVariableData* readVariable(std::string const& attributes) {
        root = makeRoot();
        IFCNode* const task = addTask(root.get(), L"Task_01");
        EXPECT_TRUE(parse("<BLOCK Name=\"Task_01\"><VARIABLE " + attributes + "/></BLOCK>", root.get()));
        std::vector<CFCVariableData*> const variables = variablesOf(task);
        if (variables.size() != 1)
            throw std::runtime_error(std::to_string(variables.size()) + " variables");
        return variables.front();
    }

    CFCProcessVarReader reader;
    Tree root;
};

// Names of the variables of a node, joined by blanks.
std::string namesOf(IFCNode* node) {
    std::string names;
    for (CFCVariableData* const variable : variablesOf(node))
        names += (names.empty() ? "" : " ") + narrow(variable->GetVariableName());
    return names;
}

std::vector<CFCDeploymentData*> deploymentsOf(CFCApplicationNode* application) {
    std::vector<CFCDeploymentData*> found;
    CFCDeploymentList* const list = application->GetDeploymentList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        found.push_back(list->GetNext(position));
    return found;
}

std::vector<CFCArgumentData*> argumentsOf(CFCApplicationNode* application) {
    std::vector<CFCArgumentData*> found;
    CFCArgumentList* const list = application->GetArgumentList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;)
        found.push_back(list->GetNext(position));
    return found;
}

// The root element of a text, for the steps that are called one by one.
class Parsed {
public:
    explicit Parsed(std::string_view text) { m_file.document = flowmere::parseXmlBytes(text); }
    xercesc::DOMElement* root() const { return m_file.document->getDocumentElement(); }

private:
    flowmere::XmlDocumentHolder m_file;
};

} // namespace

TEST_F(FCProcessVarReaderTest, NothingIsReadWithoutPathNodeOrFile) {
    root = makeRoot();
    scratch.write("good.var", "<PROCESS><VARIABLE Name=\"x\" Type=\"Data\" DataType=\"Int\"/></PROCESS>");
    scratch.write("broken.var", "<PROCESS><VARIABLE Name=\"x\"");
    EXPECT_FALSE(reader.Parse(nullptr, root.get(), 16));
    EXPECT_FALSE(reader.Parse(L"", root.get(), 16));
    EXPECT_FALSE(reader.Parse(path("good.var"), nullptr, 16));
    EXPECT_FALSE(reader.Parse(path("missing.var"), root.get(), 16));
    EXPECT_FALSE(reader.Parse(path("broken.var"), root.get(), 16));
    EXPECT_EQ(namesOf(root.get()), "");
    EXPECT_TRUE(reader.Parse(path("good.var"), root.get(), 16));
    EXPECT_EQ(namesOf(root.get()), "x");
}

TEST_F(FCProcessVarReaderTest, TheFlagsMeanNothing) {
    for (int const flags : {-1, 0, 1, 16, 1 << 30}) {
        root = makeRoot();
        scratch.write("process.var", "<PROCESS><VARIABLE Name=\"x\"/></PROCESS>");
        EXPECT_TRUE(reader.Parse(path("process.var"), root.get(), flags));
        EXPECT_EQ(namesOf(root.get()), "x");
    }
}

TEST_F(FCProcessVarReaderTest, EachElementGoesItsWay) {
    root = makeRoot();
    IFCNode* const task = addTask(root.get(), L"Task_01");
    IFCNode* const group = addTask(root.get(), L"Group", 161);
    IFCNode* const inner = addTask(group, L"Inner");
    CFCApplicationNode* const application = addApplication(group, L"Solver");
    EXPECT_TRUE(
        parse("<PROCESS_VARIABLES><VARIABLE Name=\"ofRoot\"/></PROCESS_VARIABLES>"
              "text<!-- comment -->"
              "<VARIABLE Name=\"besideTheLists\"/>"
              "<UNKNOWN><VARIABLE Name=\"unknown\"/><BLOCK Name=\"Task_01\"><VARIABLE Name=\"no\"/></BLOCK></UNKNOWN>"
              "<BLOCK_VARIABLES>"
              "<BLOCK Name=\"Task_01\"><VARIABLE Name=\"a\"/><VARIABLE Name=\"b\"/></BLOCK>"
              "<SUB_PROCESS Name=\"Group\"><VARIABLE Name=\"c\"/>"
              "<BLOCK Name=\"Inner\"><VARIABLE Name=\"d\"/></BLOCK>"
              "<BLOCK Name=\"Solver\"><DEPLOYMENTS><DEPLOYMENT Name=\"Linux\"/></DEPLOYMENTS>"
              "<ARGUMENT VALUE=\"-x\"/></BLOCK>"
              "</SUB_PROCESS>"
              "</BLOCK_VARIABLES>",
              root.get()));
    EXPECT_EQ(namesOf(root.get()), "besideTheLists");
    EXPECT_EQ(namesOf(task), "a b");
    EXPECT_EQ(namesOf(group), "c");
    EXPECT_EQ(namesOf(inner), "d");
    EXPECT_EQ(deploymentsOf(application).size(), 1U);
    EXPECT_EQ(argumentsOf(application).size(), 1U);
}

TEST_F(FCProcessVarReaderTest, ElementNamesCountExactly) {
    root = makeRoot();
    IFCNode* const task = addTask(root.get(), L"Task_01");
    parse("<variable Name=\"x\"/><Block Name=\"Task_01\"><VARIABLE Name=\"y\"/></Block>"
          "<block_variables><BLOCK Name=\"Task_01\"><VARIABLE Name=\"z\"/></BLOCK></block_variables>",
          root.get());
    EXPECT_EQ(namesOf(root.get()), "");
    EXPECT_EQ(namesOf(task), "");
}

TEST_F(FCProcessVarReaderTest, BlocksAreFoundByTheirIdInAnyCaseAmongTheChildrenAlone) {
    root = makeRoot();
    IFCNode* const task = addTask(root.get(), L"Task_01");
    IFCNode* const group = addTask(root.get(), L"Group", 161);
    IFCNode* const inner = addTask(group, L"Inner");
    IFCNode* const nameless = addTask(root.get(), L"");
    EXPECT_TRUE(parse("<BLOCK_VARIABLES>"
                      "<BLOCK Name=\"tASK_01\"><VARIABLE Name=\"a\"/></BLOCK>"
                      "<SUB_PROCESS Name=\"Task_01\"><VARIABLE Name=\"b\"/></SUB_PROCESS>"
                      "<BLOCK Name=\"Inner\"><VARIABLE Name=\"c\"/></BLOCK>"
                      "<BLOCK Name=\"Group.Inner\"><VARIABLE Name=\"d\"/></BLOCK>"
                      "<BLOCK Name=\"\"><VARIABLE Name=\"e\"/></BLOCK>"
                      "<BLOCK><VARIABLE Name=\"f\"/></BLOCK>"
                      "<BLOCK name=\"Task_01\"><VARIABLE Name=\"g\"/></BLOCK>"
                      "</BLOCK_VARIABLES>",
                      root.get()));
    EXPECT_EQ(namesOf(task), "a b");
    EXPECT_EQ(namesOf(group), "");
    EXPECT_EQ(namesOf(inner), "");
    EXPECT_EQ(namesOf(nameless), "");
    EXPECT_EQ(namesOf(root.get()), "");
}

TEST_F(FCProcessVarReaderTest, ANameThatDoesNotExistIsPassedOverWithAllThatItHolds) {
    root = makeRoot();
    IFCNode* const task = addTask(root.get(), L"Task_01");
    CFCApplicationNode* const application = addApplication(root.get(), L"Solver");
    EXPECT_TRUE(parse("<BLOCK_VARIABLES><SUB_PROCESS Name=\"Gone\"><VARIABLE Name=\"a\"/>"
                      "<BLOCK Name=\"Task_01\"><VARIABLE Name=\"b\"/></BLOCK>"
                      "<BLOCK Name=\"Solver\"><DEPLOYMENTS><DEPLOYMENT Name=\"d\"/></DEPLOYMENTS><ARGUMENT/></BLOCK>"
                      "</SUB_PROCESS><BLOCK Name=\"Task_01\"><VARIABLE Name=\"c\"/></BLOCK></BLOCK_VARIABLES>",
                      root.get()));
    EXPECT_EQ(namesOf(root.get()), "");
    EXPECT_EQ(namesOf(task), "c");
    EXPECT_TRUE(deploymentsOf(application).empty());
    EXPECT_TRUE(argumentsOf(application).empty());
}

TEST_F(FCProcessVarReaderTest, TheRootsVariablesAreLeftAlone) {
    root = makeRoot();
    addVariable(root.get(), L"kept", L"value")->SetLinkPath(L"Task_01.In");
    addVariable(addTask(root.get(), L"Task_01"), L"In");
    written(root.get());
    EXPECT_TRUE(reader.Parse(path("process.var"), root.get(), 16));
    std::vector<CFCVariableData*> const variables = variablesOf(root.get());
    ASSERT_EQ(variables.size(), 1U);
    EXPECT_STREQ(variables.front()->GetLinkPath(), L"Task_01.In");
    EXPECT_FALSE(variables.front()->IsBPMVariable());
}

TEST_F(FCProcessVarReaderTest, EveryAttributeOfAVariableIsRead) {
    CFCVariableData* const variable = readVariable(
        R"(Name="width" DisplayName="The width" id="-7" DataType="Double" Type="Data" IOType="Output" Nature="Setup"
           ResolveEvent="onEnter" LinkPath="Other.In" Displayable="true" Array="true" Editable="false"
           Scope="Connected" Value="2.5" storeInDB="false" isReference="false" isModified="true")");
    EXPECT_STREQ(variable->GetVariableName(), L"width");
    EXPECT_STREQ(variable->GetCaption(), L"The width");
    EXPECT_EQ(variable->GetVariableID(), -7);
    EXPECT_EQ(variable->GetDataType(), EDataType_Double);
    EXPECT_STREQ(variable->GetDataTypeNode()->GetType(), L"Double");
    EXPECT_STREQ(variable->GetDataTypeNode()->GetNodeCaption(), L"Double") << "no catalog knows it";
    EXPECT_EQ(variable->GetStatusType(), EStatusType_Output);
    EXPECT_STREQ(variable->GetNature(), L"Setup");
    EXPECT_STREQ(variable->GetResolveEvent(), L"onEnter");
    EXPECT_STREQ(variable->GetLinkPath(), L"Other.In");
    EXPECT_TRUE(variable->IsVisible());
    EXPECT_EQ(variable->getArrayFlag(), 1);
    EXPECT_FALSE(variable->IsEditable());
    EXPECT_EQ(variable->GetScopeType(), EScopeType_Connected);
    EXPECT_STREQ(variable->GetValue(), L"2.5");
    EXPECT_DOUBLE_EQ(variable->getDoubleValue(), 2.5) << "the typed value follows";
    EXPECT_FALSE(variable->IsStoreDB());
    EXPECT_FALSE(variable->IsRefrence());
    EXPECT_FALSE(variable->IsModified()) << "is not read";
    EXPECT_TRUE(variable->IsBPMVariable());
    EXPECT_FALSE(variable->IsTemplateVariable());
    EXPECT_FALSE(variable->IsFileType());
    EXPECT_EQ(variable->GetNodeType(), 72);
    EXPECT_EQ(variable->GetParentNode(), root->FindNodeSimple(L"Task_01"));
}

TEST_F(FCProcessVarReaderTest, EachFlagIsReadBothWaysForItself) {
    struct Row {
        char const* name;
        bool (CFCVariableData::*get)();
    };
    Row const rows[] = {
        {"Displayable", &CFCVariableData::IsVisible},  {"Array", &CFCVariableData::IsArray},
        {"Editable", &CFCVariableData::IsEditable},    {"storeInDB", &CFCVariableData::IsStoreDB},
        {"isReference", &CFCVariableData::IsRefrence},
    };
    for (Row const& odd : rows) {
        for (bool const on : {false, true}) {
            std::string attributes;
            for (Row const& row : rows)
                attributes += std::string(row.name) + ((&row == &odd) == on ? "=\"true\" " : "=\"false\" ");
            CFCVariableData* const variable = readVariable(attributes);
            for (Row const& row : rows)
                EXPECT_EQ((variable->*row.get)(), (&row == &odd) == on) << row.name << " in " << attributes;
        }
    }
}

TEST_F(FCProcessVarReaderTest, WhatAnElementLeavesOutIsAsInANewVariable) {
    CFCVariableData plain;
    CFCVariableData* const variable = readVariable("");
    EXPECT_STREQ(variable->GetVariableName(), L"");
    EXPECT_STREQ(variable->GetCaption(), L"");
    EXPECT_STREQ(variable->GetValue(), L"");
    EXPECT_STREQ(variable->GetNature(), L"");
    EXPECT_STREQ(variable->GetLinkPath(), L"");
    EXPECT_EQ(variable->GetVariableID(), plain.GetVariableID());
    EXPECT_EQ(variable->GetDataType(), plain.GetDataType());
    EXPECT_EQ(variable->GetStatusType(), plain.GetStatusType());
    EXPECT_EQ(variable->GetScopeType(), plain.GetScopeType());
    EXPECT_EQ(variable->IsVisible(), plain.IsVisible());
    EXPECT_EQ(variable->IsArray(), plain.IsArray());
    EXPECT_EQ(variable->IsEditable(), plain.IsEditable());
    EXPECT_EQ(variable->IsStoreDB(), plain.IsStoreDB());
    EXPECT_EQ(variable->IsRefrence(), plain.IsRefrence());
    EXPECT_TRUE(variable->IsBPMVariable());
    plain.ReleaseOwnedParts();
}

TEST_F(FCProcessVarReaderTest, StatusesAndScopesAreReadByExactName) {
    std::pair<char const*, int> const statuses[] = {{"Input", 0},  {"Output", 1}, {"In-and-Output", 2},
                                                    {"output", 0}, {"Odd", 0},    {"", 0}};
    for (auto const& [name, status] : statuses)
        EXPECT_EQ(readVariable("IOType=\"" + std::string(name) + "\"")->GetStatusType(), status) << name;
    std::pair<char const*, int> const scopes[] = {{"Local", 0},     {"Parent", 1},  {"Connected", 2}, {"Template", 3},
                                                  {"Global", 4},    {"Private", 5}, {"Public", 6},    {"Resolve", 7},
                                                  {"connected", 0}, {"Odd", 0},     {"", 0}};
    for (auto const& [name, scope] : scopes)
        EXPECT_EQ(readVariable("Scope=\"" + std::string(name) + "\"")->GetScopeType(), scope) << name;
}

// In a process of its own: once anything has asked for them, the names are known to all.
TEST(FCProcessVarReader, NamesOfStatusesAndScopesAreKnownToTheFirstReader) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            bool good = false;
            {
                Tree const root = makeRoot();
                CFCProcessVarReader().LoadVariable(Parsed(R"(<V IOType="Output" Scope="Global"/>)").root(), root.get(),
                                                   false);
                CFCVariableData* const variable = variablesOf(root.get()).front();
                good = variable->GetStatusType() == EStatusType_Output && variable->GetScopeType() == EScopeType_Global;
            }
            std::exit(good ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(FCProcessVarReaderTest, ATypeOtherThanDataTakesThePlaceOfTheDataType) {
    struct Row {
        char const* attributes;
        wchar_t const* name;
        int dataType;
    };
    Row const rows[] = {
        {R"(DataType="Double" Type="Data")", L"Double", EDataType_Double},
        {R"(DataType="Double" Type="dATA")", L"Double", EDataType_Double},
        {R"(DataType="Length" Type="Data")", L"Length", EDataType_Int},
        {R"(DataType="double" Type="Data")", L"double", EDataType_Int},
        {R"(DataType="File" Type="Picture")", L"Picture", EDataType_Int},
        {R"(DataType="File" Type="File")", L"File", EDataType_File},
        {R"(DataType="Directory" Type="Directory")", L"Directory", EDataType_Directory},
        {R"(DataType="IntArray" Type="Data Array")", L"Data Array", EDataType_Int},
        {R"(DataType="FileArray" Type="File")", L"File", EDataType_File},
        {R"(DataType="DirectoryArray" Type="Directory")", L"Directory", EDataType_Directory},
        {R"(DataType="Data" Type="String")", L"String", EDataType_String},
        {R"(DataType="IntArray" Type="Data")", L"IntArray", EDataType_IntArray},
        {R"(DataType="Double" Type="")", L"", EDataType_Int},
        {R"(DataType="Double")", L"", EDataType_Int},
        {R"(DataType="File")", L"", EDataType_Int},
        {R"(Type="Data")", L"", EDataType_Int},
    };
    for (Row const& row : rows) {
        CFCVariableData* const variable = readVariable(row.attributes);
        EXPECT_EQ(TuString(variable->GetDataTypeNode()->GetType()), TuString(row.name)) << row.attributes;
        EXPECT_EQ(TuString(variable->GetDataTypeNode()->GetNodeCaption()), TuString(row.name)) << row.attributes;
        EXPECT_EQ(variable->GetDataType(), row.dataType) << row.attributes;
        EXPECT_FALSE(variable->IsFileType()) << row.attributes;
    }
}

TEST_F(FCProcessVarReaderTest, TheTypedValueFollowsTheText) {
    EXPECT_EQ(readVariable(R"(DataType="Int" Type="Data" Value="42")")->getIntValue(), 42);
    EXPECT_EQ(readVariable(R"(DataType="Float" Type="Data" Value="1.5")")->getFloatValue(), 1.5F);
    EXPECT_EQ(readVariable(R"(DataType="Double" Type="Data" Value="0.1")")->getDoubleValue(), double{0.1F});
    CFCVariableData* const text = readVariable("DataType=\"String\" Type=\"Data\" Value=\" a/b&#10;c \"");
    EXPECT_STREQ(text->GetValue(), L" a/b\nc ") << "texts are taken as they are";
}

TEST_F(FCProcessVarReaderTest, TheOldNameOfExecutablesIsReplaced) {
    for (char const* const name : {"EXE", "exe", "Exe"}) {
        CFCVariableData* const plain = readVariable("Type=\"Data\" DataType=\"" + std::string(name) + "\"");
        EXPECT_STREQ(plain->GetDataTypeNode()->GetType(), L"ApplicationName") << name;
        EXPECT_STREQ(plain->GetDataTypeNode()->GetNodeCaption(), L"ApplicationName") << name;
        CFCVariableData* const swapped = readVariable("DataType=\"File\" Type=\"" + std::string(name) + "\"");
        EXPECT_STREQ(swapped->GetDataTypeNode()->GetType(), L"ApplicationName") << name;
    }
    EXPECT_STREQ(readVariable(R"(Type="Data" DataType="EXE2")")->GetDataTypeNode()->GetType(), L"EXE2");
    useCatalog();
    CFCVariableData* const bound = readVariable(R"(Type="Data" DataType="exe")");
    EXPECT_STREQ(bound->GetDataTypeNode()->GetNodeCaption(), L"Application Name");
    EXPECT_STREQ(bound->GetDataTypeNode()->GetScope(), L"Jobs");
}

TEST_F(FCProcessVarReaderTest, DataTypesAreBoundByTypeAndThenByCaption) {
    struct Row {
        char const* name;
        wchar_t const* type;
        wchar_t const* caption;
        wchar_t const* scope;
        int dataType;
    };
    Row const rows[] = {
        {"Int", L"Int", L"Whole Number", L"All", EDataType_Int},
        {"iNT", L"Int", L"Whole Number", L"All", EDataType_Int},
        {"Whole Number", L"Int", L"Whole Number", L"All", EDataType_Int},
        {"LeadType", L"LeadType", L"Lead", L"", EDataType_Int},
        {"lead", L"LeadType", L"Lead", L"", EDataType_Int},
        {"BasicGroup", L"BasicGroup", L"Basic", L"", EDataType_Int},
        {"Stored", L"Stored", L"Shown", L"", EDataType_Int},
        {"Shown", L"Stored", L"Shown", L"", EDataType_Int},
        {"Double", L"Double", L"Double", L"", EDataType_Double},
        {"DoubleArray", L"DoubleArray", L"DoubleArray", L"", EDataType_DoubleArray},
    };
    useCatalog();
    for (Row const& row : rows) {
        CFCVariableData* const variable = readVariable("Type=\"Data\" DataType=\"" + std::string(row.name) + "\"");
        CFCDataTypeNode* const description = variable->GetDataTypeNode();
        EXPECT_EQ(TuString(description->GetType()), TuString(row.type)) << row.name;
        EXPECT_EQ(TuString(description->GetNodeCaption()), TuString(row.caption)) << row.name;
        EXPECT_EQ(TuString(description->GetScope()), TuString(row.scope)) << row.name;
        EXPECT_EQ(variable->GetDataType(), row.dataType) << row.name;
        EXPECT_FALSE(variable->IsFileType()) << row.name;
        EXPECT_EQ(description->GetNodeType(), 80) << row.name;
    }
    CFCDataTypeNode* const number = readVariable(R"(Type="Data" DataType="Int")")->GetDataTypeNode();
    EXPECT_STREQ(number->GetCodeNode()->setCodePython, L"set") << "the code goes along";
    EXPECT_STREQ(number->GetCodeNode()->getCodePython, L"get");
}

TEST_F(FCProcessVarReaderTest, FileTypesAreBoundWithTheirGroup) {
    useCatalog();
    for (char const* const name : {"Picture", "pICTURE"}) {
        CFCVariableData* const variable = readVariable("DataType=\"File\" Type=\"" + std::string(name) + "\"");
        EXPECT_TRUE(variable->IsFileType());
        EXPECT_STREQ(variable->GetFileTypeNode()->GetFileTypeName(), L"Picture");
        EXPECT_STREQ(variable->GetFileTypeNode()->GetFileTypeExtension(), L"png");
        EXPECT_STREQ(variable->GetDataTypeNode()->GetType(), L"CAEFILE");
        EXPECT_STREQ(variable->GetDataTypeNode()->GetNodeCaption(), L"Files");
        EXPECT_STREQ(variable->GetDataTypeNode()->GetScope(), L"Shared");
        EXPECT_EQ(variable->GetDataType(), EDataType_Int);
    }
    CFCVariableData* const unknown = readVariable(R"(DataType="File" Type="Movie")");
    EXPECT_FALSE(unknown->IsFileType());
    EXPECT_STREQ(unknown->GetDataTypeNode()->GetNodeCaption(), L"Movie");
}

TEST_F(FCProcessVarReaderTest, FileVariablesComeBackAsTheyWere) {
    useCatalog();
    CFCVariableData* const picture = readVariable(R"(Name="picture" DataType="File" Type="Picture" Value="a/b.png")");
    ASSERT_TRUE(picture->IsFileType());
    Element const first = written(root.get());
    EXPECT_EQ(attribute(first, "picture", "DataType"), "File");
    EXPECT_EQ(attribute(first, "picture", "Type"), "Picture");
    Tree const second = makeRoot();
    addTask(second.get(), L"Task_01");
    ASSERT_TRUE(reader.Parse(path("process.var"), second.get(), 16));
    EXPECT_EQ(written(second.get()), first);
}

TEST_F(FCProcessVarReaderTest, AnswersOfTheCatalogAreKeptUntilTheNextFile) {
    EXPECT_EQ(reader.GetDataTypeNode(L"Int"), nullptr) << "there is no catalog";
    useCatalog();
    EXPECT_EQ(reader.GetDataTypeNode(L"Int"), nullptr);
    root = makeRoot();
    parse("", root.get());
    CFCDataTypeNode* const number = reader.GetDataTypeNode(L"Int");
    ASSERT_NE(number, nullptr);
    EXPECT_STREQ(number->GetNodeCaption(), L"Whole Number");
    EXPECT_EQ(reader.GetDataTypeNode(L"whole number"), number);
    EXPECT_EQ(reader.GetDataTypeNode(L"Lead"), CFCDataTypeListReader::GetDataTypeRootNode());
    EXPECT_EQ(reader.GetDataTypeNode(L"Picture"), nullptr) << "no data type";
    EXPECT_EQ(reader.GetDataTypeNode(L"Unknown"), nullptr);
    EXPECT_EQ(reader.GetDataTypeNode(nullptr), nullptr);
    number->SetType(L"Renamed");
    EXPECT_EQ(reader.GetDataTypeNode(L"Int"), number);
    CFCProcessVarReader copy(reader);
    EXPECT_EQ(copy.GetDataTypeNode(L"Int"), number);
    CFCProcessVarReader assigned;
    assigned = reader;
    EXPECT_EQ(assigned.GetDataTypeNode(L"Int"), number);
    parse("", root.get());
    EXPECT_EQ(reader.GetDataTypeNode(L"Int"), nullptr);
    EXPECT_EQ(reader.GetDataTypeNode(L"Renamed"), number);
}

TEST_F(FCProcessVarReaderTest, EachTypeIsLookedForOnceHoweverManyVariablesHaveIt) {
    // An entry of a host's own that counts how often somebody looks at it.
    class CountingEntry : public CFCFileNode {
    public:
        wchar_t const* GetNodeCaption() override {
            ++looks;
            return L"Counting";
        }
        int looks = 0;
    };
    useCatalog();
    IFCNode* last = CFCDataTypeListReader::GetDataTypeRootNode();
    while (last->GetNext() != nullptr)
        last = last->GetNext();
    CountingEntry counting;
    last->SetNext(&counting);
    std::string variables;
    for (int number = 0; number < 500; ++number)
        variables +=
            R"(<VARIABLE Name="a" Type="Data" DataType="Unknown"/><VARIABLE Name="b" Type="Data" DataType="Int"/>)";
    root = makeRoot();
    addTask(root.get(), L"Task_01");
    parse("<BLOCK Name=\"Task_01\">" + variables + "</BLOCK>", root.get());
    last->SetNext(nullptr);
    EXPECT_EQ(counting.looks, 2) << "by type and by caption";
}

TEST_F(FCProcessVarReaderTest, EntriesOfAHostsOwnClassAreAsThoughTheyWereNotThere) {
    useCatalog();
    IFCNode* last = CFCDataTypeListReader::GetDataTypeRootNode();
    while (last->GetNext() != nullptr)
        last = last->GetNext();
    CFCFileNode plain;
    CFCDataTypeNode dataType;
    CFCFileTypeNode fileType;
    std::pair<IFCNode*, int> const rows[] = {{&plain, 83}, {&plain, 70}, {&dataType, 83}, {&fileType, 70}};
    for (auto const& [odd, kind] : rows) {
        odd->SetNodeCaption(L"Odd");
        odd->SetNodeType(kind);
        last->SetNext(odd);
        CFCVariableData* const variable = readVariable(R"(Type="Data" DataType="oDD")");
        EXPECT_FALSE(variable->IsFileType()) << kind;
        EXPECT_STREQ(variable->GetDataTypeNode()->GetType(), L"oDD") << kind;
        EXPECT_STREQ(variable->GetDataTypeNode()->GetNodeCaption(), L"oDD") << kind;
        last->SetNext(nullptr);
    }
}

namespace {

// A task whose variables have no catalog nodes, or that makes none.
class TaskOfAHost : public CFCBPMTaskNode {
public:
    explicit TaskOfAHost(bool makesVariables) : CFCBPMTaskNode(150), m_makesVariables(makesVariables) {}
    CFCVariableData* CreateNewVariable() override { return m_makesVariables ? addBareVariable(this, "", 0) : nullptr; }

private:
    bool m_makesVariables;
};

} // namespace

TEST_F(FCProcessVarReaderTest, AVariableWithoutDataTypeNodeTakesTheNameAsItIs) {
    auto* const task = new TaskOfAHost(true);
    Tree const tree(task);
    reader.LoadVariable(Parsed(R"(<VARIABLE Name="x" DataType="Double" Type="Data" Value="1.5"/>)").root(), task,
                        false);
    reader.LoadVariable(Parsed(R"(<VARIABLE Name="y" DataType="EXE" Type="Data"/>)").root(), task, false);
    std::vector<CFCVariableData*> const variables = variablesOf(task);
    ASSERT_EQ(variables.size(), 2U);
    EXPECT_EQ(variables[0]->GetDataType(), EDataType_Double);
    EXPECT_DOUBLE_EQ(variables[0]->getDoubleValue(), 1.5);
    EXPECT_EQ(variables[1]->GetDataTypeNode(), nullptr);
    EXPECT_STREQ(variables[1]->GetVariableName(), L"y");
}

TEST_F(FCProcessVarReaderTest, ABlockThatMakesNoVariableIsPassedOver) {
    auto* const task = new TaskOfAHost(false);
    Tree const tree(task);
    reader.LoadVariable(Parsed(R"(<VARIABLE Name="x"/>)").root(), task, false);
    reader.LoadDeploymentVariable(Parsed(R"(<VARIABLE Name="x"/>)").root(), task);
    EXPECT_EQ(namesOf(task), "");
}

TEST_F(FCProcessVarReaderTest, ANodeWithoutBlockDataTakesNoVariable) {
    root = makeRoot();
    IFCNode* const folder = addChild(root.get(), 71, L"Folder");
    EXPECT_TRUE(parse("<BLOCK Name=\"Folder\"><VARIABLE Name=\"x\"/><ARGUMENT/><DEPLOYMENTS/></BLOCK>", root.get()));
    EXPECT_EQ(folder->GetFCBlockData(), nullptr);
    CFCDeploymentData deployment;
    reader.LoadVariable(Parsed(R"(<VARIABLE Name="x"/>)").root(), &deployment, false);
    EXPECT_EQ(namesOf(&deployment), "");
}

TEST_F(FCProcessVarReaderTest, VariablesCanBeReadAsTemplates) {
    root = makeRoot();
    Parsed const list(R"(<L><VARIABLE Name="a"/><OTHER Name="b"/><VARIABLE Name="c"/></L>)");
    reader.LoadVariables(list.root(), root.get(), true, false);
    reader.LoadVariables(list.root(), root.get(), false, false);
    ASSERT_EQ(namesOf(root.get()), "a c a c");
    EXPECT_TRUE(variablesOf(root.get())[1]->IsTemplateVariable());
    EXPECT_FALSE(variablesOf(root.get())[2]->IsTemplateVariable());
}

TEST_F(FCProcessVarReaderTest, StepsTakeNullsWithoutHarm) {
    root = makeRoot();
    Parsed const some(R"(<L><VARIABLE Name="a"/></L>)");
    EXPECT_FALSE(reader.Load(nullptr, root.get()));
    EXPECT_FALSE(reader.Load(some.root(), nullptr));
    EXPECT_TRUE(reader.Load(some.root(), root.get()));
    reader.LoadVariable(nullptr, root.get(), false);
    reader.LoadVariable(some.root(), nullptr, false);
    reader.LoadVariables(nullptr, root.get(), false, false);
    reader.LoadVariables(some.root(), nullptr, false, false);
    reader.LoadVariables(some.root(), nullptr, false, true);
    reader.LoadArgument(nullptr, root.get());
    reader.LoadArgument(some.root(), nullptr);
    reader.LoadDeployments(nullptr, root.get());
    reader.LoadDeployments(some.root(), nullptr);
    reader.LoadDeploymentVariable(nullptr, root.get());
    reader.LoadDeploymentVariable(some.root(), nullptr);
    EXPECT_EQ(namesOf(root.get()), "a");
}

TEST_F(FCProcessVarReaderTest, ArgumentsAreReadInOrder) {
    root = makeRoot();
    CFCApplicationNode* const application = addApplication(root.get(), L"Solver");
    parse(R"(<BLOCK Name="Solver"><ARGUMENT INDEX="2" VALUE="a\b" id="20"/><ARGUMENT/></BLOCK>)", root.get());
    std::vector<CFCArgumentData*> const arguments = argumentsOf(application);
    ASSERT_EQ(arguments.size(), 2U);
    EXPECT_EQ(arguments[0]->GetArgumentIndex(), 2);
    EXPECT_STREQ(arguments[0]->GetArgumentValue(), L"a\\b");
    EXPECT_EQ(arguments[0]->GetArgumentID(), 20);
    EXPECT_EQ(arguments[0]->GetNodeType(), 180);
    EXPECT_EQ(arguments[0]->GetParentNode(), application);
    EXPECT_EQ(arguments[1]->GetArgumentIndex(), 0);
    EXPECT_STREQ(arguments[1]->GetArgumentValue(), L"");
    EXPECT_EQ(arguments[1]->GetArgumentID(), 0);
}

TEST_F(FCProcessVarReaderTest, DeploymentsAreReadUnlessTheyAreOfNoApplication) {
    root = makeRoot();
    CFCApplicationNode* const application = addApplication(root.get(), L"Solver");
    parse(R"(<BLOCK Name="Solver"><DEPLOYMENTS>
               <DEPLOYMENT Name="Linux" id="12" isModified="true" isDeleted="true"><VARIABLE Name="x"/></DEPLOYMENT>
               <DEPLOYMENT Name="a" isAppDeployment="false"><VARIABLE Name="x"/></DEPLOYMENT>
               <DEPLOYMENT Name="b" isAppDeployment="False"/>
               <DEPLOYMENT Name="c" isAppDeployment="true"/>
               <DEPLOYMENT Name="d" isAppDeployment=""/>
               <OTHER Name="e"/>
               <DEPLOYMENT/>
             </DEPLOYMENTS></BLOCK>)",
          root.get());
    std::string captions;
    for (CFCDeploymentData* const deployment : deploymentsOf(application))
        captions += narrow(deployment->GetNodeCaption()) + ";";
    EXPECT_EQ(captions, "Linux;b;c;d;;");
    CFCDeploymentData* const linux_ = deploymentsOf(application).front();
    EXPECT_STREQ(linux_->GetNodeId(), L"Linux");
    EXPECT_EQ(linux_->GetDeploymentId(), 12);
    EXPECT_FALSE(linux_->IsModified()) << "is not read";
    EXPECT_FALSE(linux_->IsDeleted()) << "is not read";
    EXPECT_EQ(linux_->GetNodeType(), 182);
    EXPECT_EQ(linux_->GetParentNode(), application);
    EXPECT_EQ(namesOf(linux_), "x");
    EXPECT_EQ(deploymentsOf(application).back()->GetDeploymentId(), 0);
}

TEST_F(FCProcessVarReaderTest, DeploymentVariablesHaveNameValueAndIdAlone) {
    CFCDeploymentData deployment;
    CFCVariableData* const there = addVariable(&deployment, L"there", L"old");
    there->SetCaption(L"Kept");
    Parsed const list(R"(<DEPLOYMENT>
        <VARIABLE Name="there" Value="new" id="4" DisplayName="Not read" Nature="Setup" LinkPath="a.b" DataType="Double"
                  Type="Data" Displayable="true"/>
        <VARIABLE Name="fresh" Value="a/b" id="5" DisplayName="Not read"/>
        <VARIABLE Name="There" Value="case counts"/>
        <VARIABLE Name="fresh" Value="again"/>
        <VARIABLE/>
        <OTHER Name="other"/>
      </DEPLOYMENT>)");
    reader.LoadVariables(list.root(), &deployment, true, true);
    ASSERT_EQ(namesOf(&deployment), "there fresh There ");
    EXPECT_STREQ(there->GetValue(), L"new");
    EXPECT_EQ(there->GetVariableID(), 4);
    EXPECT_STREQ(there->GetCaption(), L"Kept");
    EXPECT_STREQ(there->GetNature(), L"");
    EXPECT_STREQ(there->GetLinkPath(), L"");
    EXPECT_EQ(there->GetDataType(), EDataType_Int);
    EXPECT_FALSE(there->IsVisible());
    EXPECT_FALSE(there->IsTemplateVariable());
    EXPECT_FALSE(there->IsBPMVariable());
    CFCVariableData* const fresh = variablesOf(&deployment)[1];
    EXPECT_STREQ(fresh->GetValue(), L"again") << "the same variable";
    EXPECT_EQ(fresh->GetVariableID(), 5) << "an absent id changes nothing";
    EXPECT_STREQ(fresh->GetCaption(), L"");
    EXPECT_EQ(fresh->GetNodeType(), 72);
    EXPECT_EQ(fresh->GetParentNode(), &deployment);
    for (CFCVariableData* const variable : variablesOf(&deployment))
        variable->ReleaseOwnedParts();
    deployment.GetVariableList()->DeleteAll();
}

TEST_F(FCProcessVarReaderTest, AnApplicationWithoutTheClassOfOneTakesNoDeploymentsAndArguments) {
    root = makeRoot();
    IFCNode* const block = addTask(root.get(), L"Solver");
    block->SetNodeType(167);
    EXPECT_TRUE(parse("<BLOCK Name=\"Solver\"><VARIABLE Name=\"a\"/><DEPLOYMENTS><DEPLOYMENT Name=\"d\"/></DEPLOYMENTS>"
                      "<ARGUMENT VALUE=\"x\"/><VARIABLE Name=\"b\"/></BLOCK>",
                      root.get()));
    EXPECT_EQ(namesOf(block), "a b");
}

TEST_F(FCProcessVarReaderTest, ScopedVariablesBecomeLinksOnceAllAreRead) {
    root = makeRoot(160, L"");
    addVariable(root.get(), L"total", L"1");
    IFCNode* const task = addTask(root.get(), L"Task_01");
    IFCNode* const group = addTask(root.get(), L"Group", 161);
    IFCNode* const inner = addTask(group, L"Inner");
    EXPECT_TRUE(
        parse("<BLOCK_VARIABLES><BLOCK Name=\"Task_01\"><VARIABLE Name=\"a\" Scope=\"Parent\" Value=\"total\"/></BLOCK>"
              "<SUB_PROCESS Name=\"Group\">"
              "<BLOCK Name=\"Inner\"><VARIABLE Name=\"late\" Scope=\"Parent\"/></BLOCK>"
              "<VARIABLE Name=\"late\"/></SUB_PROCESS></BLOCK_VARIABLES>",
              root.get()));
    EXPECT_STREQ(variablesOf(task).front()->GetLinkPath(), L".total");
    EXPECT_STREQ(variablesOf(inner).front()->GetLinkPath(), L"Group.late")
        << "also to what stands behind it in the file";
}

TEST_F(FCProcessVarReaderTest, WhatIsWrittenComesBackAndIsWrittenTheSameAgain) {
    auto const build = [](IFCNode* top) {
        addTask(top, L"Start", 154);
        addTask(top, L"Task_01");
        IFCNode* const group = addTask(top, L"Group", 161);
        addTask(group, L"Inner", 153);
        addTask(addTask(top, L"Sub", 165), L"NotHere");
        addApplication(top, L"Solver");
        addTask(top, L"End", 155);
    };
    root = makeRoot();
    build(root.get());
    addVariable(root.get(), L"ofRoot");
    for (wchar_t const* const id : {L"Start", L"Task_01", L"Group", L"Sub", L"Solver", L"End"}) {
        IFCNode* const block = root->FindNodeSimple(id);
        int number = 0;
        for (wchar_t const* const type : {L"Int", L"Double", L"String", L"File", L"Directory", L"Length"}) {
            CFCVariableData* const variable = addVariable(block, type, L"7 <&\"> \x20AC");
            variable->SetCaption(L"Caption");
            variable->GetDataTypeNode()->SetType(type);
            variable->SetDataType(type);
            variable->SetVariableID(++number);
            variable->SetNature(L"Deployment");
            variable->SetResolveEvent(L"event");
            variable->SetVisible(number % 2 == 0);
            variable->SetEditable(number % 3 == 0);
            variable->SetStoreDB(number % 2 != 0);
            variable->SetReference(number % 3 != 0);
            variable->SetArray(number % 2 == 0);
            variable->SetStatusType(number % 3);
            variable->SetScopeType(EScopeType_Connected);
            variable->SetLinkPath(L"Start.Int");
        }
    }
    auto* const application = dynamic_cast<CFCApplicationNode*>(root->FindNodeSimple(L"Solver"));
    application->CreateNewArgument()->SetArgumentValue(L"-run");
    addVariable(root->FindNodeSimple(L"Group")->FindNodeSimple(L"Inner"), L"deep", L"x");
    Element first = written(root.get());

    Tree const second = makeRoot();
    build(second.get());
    ASSERT_TRUE(reader.Parse(path("process.var"), second.get(), 16));
    Element again = written(second.get());
    // The variables of the root and all but three things of those of deployments do not come back.
    for (Element* const file : {&first, &again}) {
        for (Element& part : file->children)
            if (part.name == "PROCESS_VARIABLES")
                part.children.clear();
            else
                for (Element& block : part.children)
                    for (Element& list : block.children)
                        if (list.name == "DEPLOYMENTS")
                            for (Element& variable : list.children.front().children)
                                variable.attributes = {
                                    {"Name", variable["Name"]}, {"Value", variable["Value"]}, {"id", variable["id"]}};
    }
    EXPECT_EQ(again, first);
    EXPECT_EQ(everyOne(again, "VARIABLE").size(), 7U * 6U + 1U);
}

TEST_F(FCProcessVarReaderTest, TenThousandBlocksAreFoundByAnIndex) {
    constexpr int kBlocks = 10000;
    root = makeRoot();
    for (int number = 0; number < kBlocks; ++number) {
        IFCNode* const task = addTask(root.get(), (L"Task_" + std::to_wstring(number)).c_str());
        for (wchar_t const* const name : {L"a", L"b", L"c"})
            addVariable(task, name, L"1");
    }
    ASSERT_TRUE(CFCProcessVarWriter().WriteFile(path("process.var"), root.get(), true));
    Tree const second = makeRoot();
    for (int number = 0; number < kBlocks; ++number)
        addTask(second.get(), (L"Task_" + std::to_wstring(number)).c_str());
    ASSERT_TRUE(reader.Parse(path("process.var"), second.get(), 16));
    EXPECT_TRUE(flowmere::ChildIndex::exists(dynamic_cast<CFCNode&>(*second), flowmere::ChildLookup::Id));
    int complete = 0;
    for (IFCNode* child = second->GetChild(); child != nullptr; child = child->GetNext())
        complete += child->GetNodeType() == 150 && namesOf(child) == "a b c" ? 1 : 0;
    EXPECT_EQ(complete, kBlocks);
}
