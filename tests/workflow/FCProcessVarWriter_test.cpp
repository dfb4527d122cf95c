#include "flowmere/workflow/FCProcessVarWriter.h"

#include "VariableFileSupport.h"
#include "flowmere/workflow/FCProcessVarReader.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

using namespace flowmere::test;

namespace {

// A writer as its subclasses see it.
class OpenVarWriter : public CFCProcessVarWriter {
public:
    using CFCProcessVarWriter::m_bRecursive;
    using CFCProcessVarWriter::m_bStripLinks;
    using CFCProcessVarWriter::m_pRootNode;
    using CFCProcessVarWriter::m_strFilePath;
    using CFCProcessVarWriter::m_strRootName;
    using CFCProcessVarWriter::WriteArgument;
    using CFCProcessVarWriter::WriteArguments;
    using CFCProcessVarWriter::WriteDeployments;
    using CFCProcessVarWriter::WriteDeploymentVariables;
    using CFCProcessVarWriter::WriteProcessVariables;
    using CFCProcessVarWriter::WriteVariable;
    using CFCProcessVarWriter::WriteVariables;
};

class FCProcessVarWriterTest : public VariableFileTest {};

} // namespace

TEST_F(FCProcessVarWriterTest, NothingIsWrittenWithoutPathOrNode) {
    Tree const root = makeRoot();
    CFCProcessVarWriter writer;
    EXPECT_FALSE(writer.WriteFile(nullptr, root.get(), true));
    EXPECT_FALSE(writer.WriteFile(L"", root.get(), true));
    EXPECT_FALSE(writer.WriteFile(path("process.var"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "process.var"));
}

TEST_F(FCProcessVarWriterTest, AFileThatCannotBeMadeGoesUnnoticed) {
    Tree const root = makeRoot();
    CFCProcessVarWriter writer;
    EXPECT_TRUE(writer.WriteFile(path("missing/process.var"), root.get(), true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing"));
}

TEST_F(FCProcessVarWriterTest, TheDocumentElementIsAProcessWithTwoChildren) {
    Tree const root = makeRoot();
    Element const file = written(root.get());
    EXPECT_EQ(outlineOf(file), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES ");
    Element const line = theOnly(file, "PROCESS");
    EXPECT_EQ(line["xmlns"], "http://www.w3.org/2001/XMLSchema-instance");
    EXPECT_EQ(line["name"], "Main");
    EXPECT_EQ(line["Name"], "(absent)");
}

TEST_F(FCProcessVarWriterTest, TheRootIsNamedByIdThenCaptionThenAWordOfItsOwn) {
    struct Row {
        wchar_t const* id;
        wchar_t const* caption;
        char const* name;
    };
    Row const rows[] = {
        {L"Id", L"Caption", "Id"},
        {L"Id", L"", "Id"},
        {L"", L"Caption", "Caption"},
        {L"", L"", "root-container"},
    };
    for (Row const& row : rows) {
        for (int const kind : {56, 160, 161, 165}) {
            Tree const root = makeRoot(kind, row.id);
            root->SetNodeCaption(row.caption);
            EXPECT_EQ(theOnly(written(root.get()), "PROCESS")["name"], row.name) << kind;
        }
    }
}

TEST_F(FCProcessVarWriterTest, EachKindHasItsElementOrNone) {
    std::map<int, wchar_t const*> const elements = {
        {0, L"UnKnown"},      {56, L"BLOCK"},        {150, L"BLOCK"}, {153, L"BLOCK"},       {154, L"BLOCK"},
        {155, L"BLOCK"},      {156, L"BLOCK"},       {157, L"BLOCK"}, {160, L"SUB_PROCESS"}, {161, L"SUB_PROCESS"},
        {162, L"BLOCK"},      {163, L"BLOCK"},       {164, L"BLOCK"}, {165, L"BLOCK"},       {167, L"BLOCK"},
        {182, L"DEPLOYMENT"}, {168, L"SUB_PROCESS"},
    };
    CFCProcessVarWriter writer;
    CFCBPMTaskNode node(150);
    for (int kind = -1; kind <= 200; ++kind) {
        node.SetNodeType(kind);
        TuString out(L"untouched");
        auto const row = elements.find(kind);
        EXPECT_EQ(writer.GetObjectType(&node, out), row != elements.end()) << kind;
        EXPECT_EQ(out, TuString(row != elements.end() ? row->second : L"untouched")) << kind;
    }
    TuString out(L"untouched");
    EXPECT_FALSE(writer.GetObjectType(nullptr, out));
    EXPECT_EQ(out, TuString(L"untouched"));
}

TEST_F(FCProcessVarWriterTest, ARootOfAKindWithoutElementGivesABareDocument) {
    Tree const root = makeRoot(57);
    addVariable(root.get(), L"x");
    Element const file = written(root.get());
    EXPECT_EQ(outlineOf(file), "0PROCESS ");
    EXPECT_EQ(theOnly(file, "PROCESS")["name"], "(absent)");
}

TEST_F(FCProcessVarWriterTest, ARootHasABlockListOrItsBlocksOrNone) {
    struct Row {
        int kind;
        char const* outline;
    };
    constexpr char const* kLevel = "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK ";
    constexpr char const* kGroup = "0PROCESS 1PROCESS_VARIABLES 1BLOCK ";
    constexpr char const* kNone = "0PROCESS 1PROCESS_VARIABLES ";
    Row const rows[] = {
        {56, kLevel},  {160, kLevel}, {161, kGroup}, {162, kLevel}, {163, kLevel}, {164, kLevel}, {165, kLevel},
        {168, kGroup}, {150, kNone},  {153, kNone},  {154, kNone},  {155, kNone},  {156, kNone},  {157, kNone},
    };
    for (Row const& row : rows) {
        Tree const root = makeRoot(row.kind);
        addChild(root.get(), 150, L"Task_01");
        EXPECT_EQ(outlineOf(written(root.get())), row.outline) << row.kind;
    }
}

TEST_F(FCProcessVarWriterTest, ABlockHasItsBlocksOrNone) {
    struct Row {
        int kind;
        char const* outline;
    };
    Row const rows[] = {
        {56, "2BLOCK 3PROCESS_VARIABLES 3BLOCK "},
        {150, "2BLOCK "},
        {153, "2BLOCK "},
        {154, "2BLOCK "},
        {155, "2BLOCK "},
        {156, "2BLOCK "},
        {157, "2BLOCK "},
        {160, "2SUB_PROCESS 3PROCESS_VARIABLES 3BLOCK "},
        {161, "2SUB_PROCESS 3BLOCK "},
        {162, "2BLOCK "},
        {163, "2BLOCK "},
        {164, "2BLOCK "},
        {165, "2BLOCK "},
        {167, "2BLOCK 3DEPLOYMENTS 4DEPLOYMENT "},
        {168, "2SUB_PROCESS 3BLOCK "},
        {0, "2UnKnown "},
        {151, ""},
        {152, ""},
        {57, ""},
    };
    for (Row const& row : rows) {
        Tree const root = makeRoot();
        IFCNode* const block = addChild(root.get(), row.kind == 0 ? 150 : row.kind, L"Inner");
        block->SetNodeType(row.kind);
        addChild(block, 150, L"Task_01");
        EXPECT_EQ(outlineOf(written(root.get())),
                  std::string("0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES ") + row.outline)
            << row.kind;
    }
}

TEST_F(FCProcessVarWriterTest, ASubProcessHasAFileOfItsOwnForItsBlocks) {
    Tree const root = makeRoot();
    IFCNode* const inner = addChild(root.get(), 165, L"Sub");
    addVariable(inner, L"ofTheBlock");
    addVariable(addChild(inner, 150, L"Deep"), L"deep");
    Element const outer = written(root.get());
    EXPECT_EQ(outlineOf(outer), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK 3VARIABLE ");
    Element const own = written(inner);
    EXPECT_EQ(outlineOf(own), "0PROCESS 1PROCESS_VARIABLES 2VARIABLE 1BLOCK_VARIABLES 2BLOCK 3VARIABLE ");
    EXPECT_EQ(theOnly(own, "PROCESS")["name"], "Sub");
}

TEST_F(FCProcessVarWriterTest, ChildrenComeOldestFirstAtEveryLevel) {
    Tree const root = makeRoot();
    addChild(root.get(), 154, L"First");
    IFCNode* const group = addChild(root.get(), 161, L"Second");
    addChild(root.get(), 155, L"Third");
    addChild(group, 150, L"Inner1");
    addChild(group, 150, L"Inner2");
    Element const file = written(root.get());
    EXPECT_EQ(outlineOf(file),
              "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK 2SUB_PROCESS 3BLOCK 3BLOCK 2BLOCK ");
    std::string names;
    for (Element const& line : everyOne(file, "BLOCK")) {
        names += line["Name"] + " ";
    }
    EXPECT_EQ(names, "First Inner1 Inner2 Third ");
    EXPECT_EQ(theOnly(file, "SUB_PROCESS")["Name"], "Second");
}

TEST_F(FCProcessVarWriterTest, TheLevelIsWrittenWhateverTheFlag) {
    Tree const root = makeRoot();
    addVariable(addChild(root.get(), 150, L"Task_01"), L"x");
    CFCProcessVarWriter writer;
    EXPECT_EQ(writtenBy(writer, root.get(), false), writtenBy(writer, root.get(), true));
}

TEST_F(FCProcessVarWriterTest, ABlockWithoutIdKeepsAnElementWithoutContent) {
    for (int const kind : {150, 154, 165, 167}) {
        Tree const root = makeRoot();
        IFCNode* const block = addChild(root.get(), kind, L"", L"Caption");
        addVariable(block, L"x");
        Element const file = written(root.get());
        EXPECT_EQ(outlineOf(file), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK ") << kind;
        EXPECT_EQ(theOnly(file, "BLOCK"), (Element{"BLOCK", {}, {}, {}})) << kind;
    }
}

TEST_F(FCProcessVarWriterTest, AGroupWithoutIdKeepsItsBlocksAlone) {
    for (int const kind : {161, 168}) {
        Tree const root = makeRoot();
        IFCNode* const group = addChild(root.get(), kind, L"", L"Caption");
        addVariable(group, L"x");
        addVariable(addChild(group, 150, L"Inner"), L"y");
        Element const file = written(root.get());
        EXPECT_EQ(outlineOf(file), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2SUB_PROCESS 3BLOCK 4VARIABLE ")
            << kind;
        EXPECT_EQ(theOnly(file, "SUB_PROCESS")["Name"], "(absent)") << kind;
        EXPECT_EQ(theOnly(file, "VARIABLE")["Name"], "y") << kind;
    }
}

TEST_F(FCProcessVarWriterTest, EveryAttributeOfAVariableIsWritten) {
    Tree const root = makeRoot();
    IFCNode* const block = addChild(root.get(), 150, L"Task_01");
    CFCVariableData* const variable = addVariable(block, L"width", L"C:\\a\\b");
    variable->SetCaption(L"The width");
    variable->SetVariableID(-7);
    variable->GetDataTypeNode()->SetType(L"Length");
    variable->SetStatusType(EStatusType_Output);
    variable->SetNature(L"Setup");
    variable->SetResolveEvent(L"onEnter");
    variable->SetLinkPath(L"Other.In");
    variable->SetVisible(true);
    variable->SetArray(true);
    variable->SetEditable(false);
    variable->SetScopeType(EScopeType_Connected);
    variable->SetStoreDB(false);
    variable->SetReference(false);
    variable->SetModified(true);
    Element const line = theOnly(written(root.get()), "VARIABLE");
    std::pair<char const*, char const*> const expected[] = {
        {"Name", "width"},        {"DisplayName", "The width"}, {"id", "-7"},           {"DataType", "Length"},
        {"Type", "Data"},         {"IOType", "Output"},         {"Nature", "Setup"},    {"ResolveEvent", "onEnter"},
        {"LinkPath", "Other.In"}, {"Displayable", "true"},      {"Array", "true"},      {"Editable", "false"},
        {"Scope", "Connected"},   {"Value", "C:/a/b"},          {"storeInDB", "false"}, {"isReference", "false"},
        {"isModified", "true"},
    };
    for (auto const& [name, value] : expected) {
        EXPECT_EQ(line[name], value) << name;
    }
    EXPECT_EQ(line.attributes.size(), std::size(expected));
    EXPECT_STREQ(variable->GetValue(), L"C:\\a\\b") << "the model keeps its own";
}

TEST_F(FCProcessVarWriterTest, EveryAttributeOfANewVariableIsWritten) {
    Tree const root = makeRoot();
    addChild(root.get(), 150, L"Task_01")->CreateNewVariable()->SetVariableName(L"plain");
    Element const line = theOnly(written(root.get()), "VARIABLE");
    std::pair<char const*, char const*> const expected[] = {
        {"Name", "plain"},        {"DisplayName", ""},     {"id", "0"},
        {"DataType", "Int"},      {"Type", "Data"},        {"IOType", "Input"},
        {"Nature", ""},           {"ResolveEvent", ""},    {"LinkPath", ""},
        {"Displayable", "false"}, {"Array", "false"},      {"Editable", "true"},
        {"Scope", "Local"},       {"Value", ""},           {"storeInDB", "true"},
        {"isReference", "true"},  {"isModified", "false"},
    };
    for (auto const& [name, value] : expected) {
        EXPECT_EQ(line[name], value) << name;
    }
}

TEST_F(FCProcessVarWriterTest, TheDataTypeIsThatOfTheCatalogElseTheEnumeration) {
    struct Row {
        wchar_t const* catalogType;
        int dataType;
        char const* written;
        char const* type;
    };
    Row const rows[] = {
        {L"Length", 0, "Length", "Data"},
        {L"", 0, "Int", "Data"},
        {L"", 1, "Float", "Data"},
        {L"", 7, "Matrix", "Data"},
        {L"", 8, "File", "File"},
        {L"", 9, "Directory", "Directory"},
        {L"", 10, "IntArray", "Data Array"},
        {L"", 16, "Point3Array", "Data Array"},
        {L"", 17, "FileArray", "File"},
        {L"", 18, "DirectoryArray", "Directory"},
        {L"", 19, "", "kept"},
        {L"Length", 19, "Length", "kept"},
        {nullptr, 3, "String", "Data"},
    };
    for (Row const& row : rows) {
        Tree const root = makeRoot();
        IFCNode* const block = addChild(root.get(), 150, L"Task_01");
        CFCVariableData* const variable =
            row.catalogType != nullptr ? addVariable(block, L"x") : addBareVariable(block, "x", row.dataType);
        if (row.catalogType != nullptr) {
            variable->GetDataTypeNode()->SetType(row.catalogType);
        }
        variable->SetDataType(row.dataType);
        variable->SetType(L"kept");
        Element const file = written(root.get());
        EXPECT_EQ(attribute(file, "x", "DataType"), row.written) << row.dataType;
        EXPECT_EQ(attribute(file, "x", "Type"), row.type) << row.dataType;
        EXPECT_EQ(attribute(file, "x", "Array"), row.dataType >= 10 && row.dataType < 19 ? "true" : "false");
    }
}

TEST_F(FCProcessVarWriterTest, AFileVariableIsWrittenByItsFileType) {
    Tree const root = makeRoot();
    IFCNode* const block = addChild(root.get(), 150, L"Task_01");
    CFCVariableData* const picture = addVariable(block, L"picture");
    picture->SetFileType(true);
    picture->GetFileTypeNode()->SetFileTypeName(L"Picture");
    picture->GetDataTypeNode()->SetType(L"CAEFILE");
    CFCVariableData* const nameless = addVariable(block, L"nameless");
    nameless->SetFileType(true);
    CFCVariableData* const bare = addBareVariable(block, "bare", 3);
    bare->SetFileType(true);
    Element const file = written(root.get());
    EXPECT_EQ(attribute(file, "picture", "DataType"), "File");
    EXPECT_EQ(attribute(file, "picture", "Type"), "Picture");
    EXPECT_EQ(attribute(file, "nameless", "DataType"), "File");
    EXPECT_EQ(attribute(file, "nameless", "Type"), "");
    EXPECT_EQ(attribute(file, "bare", "DataType"), "File");
    EXPECT_EQ(attribute(file, "bare", "Type"), "(absent)");
}

TEST_F(FCProcessVarWriterTest, EveryStatusAndScopeIsWrittenByName) {
    char const* const statuses[] = {"Input", "Output", "In-and-Output", "", ""};
    for (int status = 0; status < 5; ++status) {
        Tree const root = makeRoot();
        CFCVariableData* const variable = addVariable(addChild(root.get(), 150, L"Task_01"), L"x", L"a\\b");
        variable->SetStatusType(status);
        Element const file = written(root.get());
        EXPECT_EQ(attribute(file, "x", "IOType"), statuses[status]);
        EXPECT_EQ(attribute(file, "x", "Value"), status == 4 ? "" : "a/b") << status;
    }
    char const* const scopes[] = {"Local", "Parent", "Connected", "Template", "Global", "Private", "Public", "Resolve"};
    for (int scope = 0; scope < 8; ++scope) {
        Tree const root = makeRoot();
        addVariable(addChild(root.get(), 150, L"Task_01"), L"x")->SetScopeType(scope);
        EXPECT_EQ(attribute(written(root.get()), "x", "Scope"), scopes[scope]);
    }
}

TEST_F(FCProcessVarWriterTest, TheRootsVariablesAreWrittenWithoutLinkAndLocal) {
    for (int const kind : {56, 160, 161, 162, 165, 168, 150}) {
        Tree const root = makeRoot(kind);
        for (int scope = 0; scope < 8; ++scope) {
            CFCVariableData* const variable = addVariable(root.get(), L"x", L"v");
            variable->SetLinkPath(L"Other.In");
            variable->SetScopeType(scope);
        }
        std::vector<Element> const lines = variablesIn(written(root.get()), "x");
        EXPECT_EQ(lines.size(), 8U) << kind;
        for (Element const& line : lines) {
            EXPECT_EQ(line["LinkPath"], "") << kind;
            EXPECT_EQ(line["Scope"], "Local") << kind;
            EXPECT_EQ(line["Value"], "v") << kind;
        }
        EXPECT_STREQ(variablesOf(root.get()).front()->GetLinkPath(), L"Other.In") << "the model keeps its own";
    }
}

TEST_F(FCProcessVarWriterTest, BlocksKeepLinksAndScopesAlsoInASecondFileOfTheWriter) {
    Tree const root = makeRoot();
    addVariable(root.get(), L"ofRoot")->SetLinkPath(L"Other.In");
    CFCVariableData* const variable = addVariable(addChild(root.get(), 150, L"Task_01"), L"ofBlock");
    variable->SetLinkPath(L"Task_02.In");
    variable->SetScopeType(EScopeType_Global);
    CFCProcessVarWriter writer;
    for (int round = 0; round < 2; ++round) {
        Element const file = writtenBy(writer, root.get());
        EXPECT_EQ(attribute(file, "ofRoot", "LinkPath"), "") << round;
        EXPECT_EQ(attribute(file, "ofBlock", "LinkPath"), "Task_02.In") << round;
        EXPECT_EQ(attribute(file, "ofBlock", "Scope"), "Global") << round;
    }
}

TEST_F(FCProcessVarWriterTest, AProcessFurtherDownIsStrippedAsWhatWasWrittenBeforeIt) {
    Tree const root = makeRoot();
    IFCNode* const early = addChild(root.get(), 160, L"Early");
    addVariable(early, L"early")->SetLinkPath(L"A.In");
    addChild(root.get(), 150, L"Task_01");
    IFCNode* const late = addChild(root.get(), 160, L"Late");
    addVariable(late, L"late")->SetLinkPath(L"B.In");
    addVariable(late, L"ActiveSetup");
    Element const file = written(root.get());
    EXPECT_EQ(attribute(file, "early", "LinkPath"), "");
    EXPECT_EQ(attribute(file, "late", "LinkPath"), "B.In");
    EXPECT_EQ(variablesIn(file, "ActiveSetup").size(), 1U) << "a process writes all its variables";
    std::vector<Element> const lines = everyOne(file, "SUB_PROCESS");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["name"], "Early");
    EXPECT_EQ(lines[1]["name"], "Late");
    EXPECT_EQ(lines[1]["Name"], "(absent)");
}

TEST_F(FCProcessVarWriterTest, TheActiveSetupIsLeftOutOnBlocksAlone) {
    struct Row {
        int kind;
        bool isRoot;
        wchar_t const* name;
        std::size_t written;
    };
    Row const rows[] = {
        {160, true, L"ActiveSetup", 1},  {56, true, L"ActiveSetup", 1},    {161, true, L"ActiveSetup", 1},
        {165, true, L"ActiveSetup", 1},  {150, true, L"ActiveSetup", 1},   {150, false, L"ActiveSetup", 0},
        {161, false, L"ActiveSetup", 0}, {165, false, L"ActiveSetup", 0},  {167, false, L"ActiveSetup", 0},
        {150, false, L"activesetup", 1}, {150, false, L"ActiveSetup2", 1}, {160, false, L"ActiveSetup", 1},
    };
    for (Row const& row : rows) {
        Tree const root = makeRoot(row.isRoot ? row.kind : 160);
        IFCNode* const owner = row.isRoot ? root.get() : addChild(root.get(), row.kind, L"Task_01");
        addVariable(owner, row.name);
        EXPECT_EQ(everyOne(written(root.get()), "VARIABLE").size(), row.written) << row.kind << row.isRoot;
    }
}

TEST_F(FCProcessVarWriterTest, AVariableWithoutNameIsNotWritten) {
    Tree const root = makeRoot();
    IFCNode* const block = addChild(root.get(), 150, L"Task_01");
    addVariable(root.get(), L"");
    addVariable(block, L"");
    CFCVariableData* const member = addVariable(block, L"member");
    member->SetGroup(true);
    member->SetGroupName(L"Group");
    CFCVariableData* const header = addVariable(block, L"header");
    header->SetGroup(true);
    header->SetGroupHeader(true);
    header->SetGroupName(L"Group");
    EXPECT_EQ(theOnly(written(root.get()), "VARIABLE")["Name"], "Group");
}

TEST_F(FCProcessVarWriterTest, AnApplicationWritesVariablesDeploymentsAndArguments) {
    Tree const root = makeRoot();
    CFCApplicationNode* const application = addApplication(root.get(), L"Solver");
    addVariable(application, L"depth", L"3");
    CFCDeploymentData* const deployment = application->CreateNewDeployment();
    deployment->SetNodeCaption(L"Linux");
    deployment->SetDeploymentId(12);
    deployment->SetModified(true);
    CFCVariableData* const inDeployment = addVariable(deployment, L"folder", L"a\\b");
    inDeployment->SetVariableID(5);
    inDeployment->SetLinkPath(L"Task.In");
    CFCDeploymentData* const gone = application->CreateNewDeployment();
    gone->SetDeleted(true);
    for (int number = 1; number < 3; ++number) {
        CFCArgumentData* const argument = application->CreateNewArgument();
        argument->SetArgumentIndex(number);
        argument->SetArgumentID(10 * number);
        argument->SetArgumentValue(number == 1 ? L"-in" : L"a\\b");
        argument->SetArgumentName(L"not written");
    }
    Element const file = written(root.get());
    EXPECT_EQ(outlineOf(file), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK 3VARIABLE 3DEPLOYMENTS 4DEPLOYMENT "
                               "5VARIABLE 4DEPLOYMENT 3ARGUMENT 3ARGUMENT ");
    std::vector<Element> const deployments = everyOne(file, "DEPLOYMENT");
    ASSERT_EQ(deployments.size(), 2U);
    using Attributes = std::map<std::string, std::string>;
    EXPECT_EQ(deployments[0].attributes,
              (Attributes{{"Name", "Linux"}, {"id", "12"}, {"isDeleted", "false"}, {"isModified", "true"}}));
    EXPECT_EQ(deployments[1].attributes,
              (Attributes{{"Name", ""}, {"id", "0"}, {"isDeleted", "true"}, {"isModified", "false"}}));
    EXPECT_EQ(attribute(file, "folder", "Value"), "a/b");
    EXPECT_EQ(attribute(file, "folder", "id"), "5");
    EXPECT_EQ(attribute(file, "folder", "LinkPath"), "Task.In");
    std::vector<Element> const arguments = everyOne(file, "ARGUMENT");
    ASSERT_EQ(arguments.size(), 2U);
    EXPECT_EQ(arguments[0].attributes, (Attributes{{"INDEX", "1"}, {"VALUE", "-in"}, {"id", "10"}}));
    EXPECT_EQ(arguments[1].attributes, (Attributes{{"INDEX", "2"}, {"VALUE", "a\\b"}, {"id", "20"}}));
}

TEST_F(FCProcessVarWriterTest, AnApplicationWithoutDeploymentsGetsItsDefaultOnes) {
    Tree const root = makeRoot();
    CFCApplicationNode* const application = addApplication(root.get(), L"Solver");
    addVariable(application, L"folder", L"here")->SetNature(L"deployment");
    addVariable(application, L"other", L"there")->SetNature(L"System");
    EXPECT_EQ(application->GetDeploymentList()->GetCount(), 0);
    Element const first = written(root.get());
    EXPECT_EQ(theOnly(first, "DEPLOYMENT")["Name"], "Windows");
    EXPECT_EQ(variablesIn(first, "folder").size(), 2U);
    EXPECT_EQ(variablesIn(first, "other").size(), 1U);
    ASSERT_EQ(application->GetDeploymentList()->GetCount(), 1);
    EXPECT_STREQ(application->GetDeploymentList()->GetHead()->GetNodeCaption(), L"Windows");
    EXPECT_EQ(narrow(application->GetDeploymentList()->GetHead()->GetVariableValue(L"folder")), "here");
    EXPECT_EQ(written(root.get()), first) << "there are some now";
    EXPECT_EQ(application->GetDeploymentList()->GetCount(), 1);
}

TEST_F(FCProcessVarWriterTest, AnApplicationAsRootHasItsDeploymentsBehindItsVariablesAndNoArguments) {
    Tree const root = makeRoot(167);
    auto* const application = dynamic_cast<CFCApplicationNode*>(root.get());
    ASSERT_NE(application, nullptr);
    application->CreateNewArgument();
    addVariable(application, L"x");
    EXPECT_EQ(outlineOf(written(root.get())), "0PROCESS 1PROCESS_VARIABLES 2VARIABLE 2DEPLOYMENTS 3DEPLOYMENT ");
}

TEST_F(FCProcessVarWriterTest, AnApplicationWithoutTheClassOfOneHasNoDeploymentsAndArguments) {
    Tree const root = makeRoot();
    IFCNode* const block = addChild(root.get(), 150, L"Solver");
    block->SetNodeType(167);
    addVariable(block, L"x");
    EXPECT_EQ(outlineOf(written(root.get())),
              "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK 3VARIABLE 3DEPLOYMENTS ");
}

TEST_F(FCProcessVarWriterTest, AnApplicationOfAnotherKindIsWrittenAsAnyBlock) {
    Tree const root = makeRoot();
    CFCApplicationNode* const application = addApplication(root.get(), L"Solver");
    application->CreateNewArgument();
    application->SetNodeType(150);
    EXPECT_EQ(outlineOf(written(root.get())), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES 2BLOCK ");
    EXPECT_EQ(application->GetDeploymentList()->GetCount(), 0);
}

TEST_F(FCProcessVarWriterTest, StepsTakeNullsWithoutHarm) {
    flowmere::XmlPlatform const platform;
    xercesc::DOMImplementation* const dom =
        xercesc::DOMImplementationRegistry::getDOMImplementation(reinterpret_cast<XMLCh const*>(u"LS"));
    ASSERT_NE(dom, nullptr);
    flowmere::XmlDocumentPointer const document(
        dom->createDocument(nullptr, reinterpret_cast<XMLCh const*>(u"PROCESS"), nullptr));
    xercesc::DOMElement* const element = document->getDocumentElement();
    Tree const root = makeRoot();
    OpenVarWriter writer;
    writer.WriteObject(nullptr, element, nullptr);
    writer.WriteObject(root.get(), nullptr, nullptr);
    writer.WriteChildren(nullptr, element);
    writer.WriteChildren(root.get(), nullptr);
    writer.WriteProperties(nullptr, element);
    writer.WriteProperties(root.get(), nullptr);
    writer.WritePropertiesRoot(nullptr, element);
    writer.WritePropertiesRoot(root.get(), nullptr);
    writer.WriteVariable(nullptr, element);
    writer.WriteVariables(nullptr, element, true);
    writer.WriteVariables(root.get(), nullptr, true);
    writer.WriteProcessVariables(nullptr, element);
    writer.WriteProcessVariables(root.get(), nullptr);
    writer.WriteArgument(nullptr, element);
    writer.WriteArguments(element, nullptr);
    writer.WriteArguments(element, root.get());
    writer.WriteDeployments(nullptr, nullptr);
    writer.WriteDeploymentVariables(nullptr, element);
    EXPECT_FALSE(element->hasChildNodes());
    EXPECT_FALSE(element->hasAttributes());
    writer.WriteDeployments(nullptr, element);
    EXPECT_EQ(element->getChildNodes()->getLength(), 1U);
}

TEST_F(FCProcessVarWriterTest, AnElementIsMadeBelowTheParentOrTakenAsItIs) {
    class ChildrenOfOneLevel : public CFCProcessVarWriter {
    public:
        void WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* own) override {
            if (node->IsBPMNode())
                calls.emplace_back(narrow(node->GetNodeId()), own != nullptr);
            CFCProcessVarWriter::WriteObject(node, parent, own);
        }
        std::vector<std::pair<std::string, bool>> calls;
    };
    Tree const root = makeRoot();
    IFCNode* const group = addChild(root.get(), 161, L"Group");
    addChild(group, 150, L"Task_01");
    ChildrenOfOneLevel writer;
    writtenBy(writer, root.get());
    std::vector<std::pair<std::string, bool>> const expected = {{"Main", true}, {"Group", false}, {"Task_01", false}};
    EXPECT_EQ(writer.calls, expected) << "an override is asked at every level";
}

TEST_F(FCProcessVarWriterTest, CopiesTakeEveryMember) {
    Tree const root = makeRoot();
    OpenVarWriter writer;
    EXPECT_EQ(writer.m_strRootName, TuString(L"PROCESS"));
    EXPECT_FALSE(writer.m_bStripLinks);
    EXPECT_FALSE(writer.m_bRecursive);
    EXPECT_EQ(writer.m_pRootNode, nullptr);
    writtenBy(writer, root.get());
    OpenVarWriter const copy(writer);
    OpenVarWriter assigned;
    assigned = writer;
    for (OpenVarWriter const* const other : {&copy, static_cast<OpenVarWriter const*>(&assigned)}) {
        EXPECT_EQ(other->m_strFilePath, path("process.var"));
        EXPECT_EQ(other->m_strRootName, TuString(L"PROCESS"));
        EXPECT_EQ(other->m_pRootNode, root.get());
        EXPECT_TRUE(other->m_bRecursive);
        EXPECT_TRUE(other->m_bStripLinks);
    }
}

TEST_F(FCProcessVarWriterTest, FormattingAFileWithoutTheExtensionRewritesIt) {
    scratch.write("process.var", "<PROCESS><BLOCK_VARIABLES><BLOCK Name=\"a\"/></BLOCK_VARIABLES></PROCESS>");
    CFCProcessVarWriter::LoadAndFormatXML(path("process.var"));
    EXPECT_EQ(outlineOf(read("process.var")), "0PROCESS 1BLOCK_VARIABLES 2BLOCK ");
    EXPECT_NE(scratch.read("process.var").find("\n    <BLOCK Name=\"a\"/>"), std::string::npos) << "a line of its own";
}

TEST_F(FCProcessVarWriterTest, FormattingReplacesTheExtensionAlsoInTheNameOfAFolder) {
    std::string const text = "<PROCESS><BLOCK Name=\"a\"/></PROCESS>";
    scratch.write("process.xml", text);
    CFCProcessVarWriter::LoadAndFormatXML(path("process.xml"));
    EXPECT_EQ(read("process.for").only("BLOCK")["Name"], "a");
    EXPECT_EQ(scratch.read("process.xml"), text) << "the source is left as it is";
    scratch.write("a.xml.d/process.var", text);
    makeFolder("a.for.d");
    CFCProcessVarWriter::LoadAndFormatXML(path("a.xml.d/process.var"));
    EXPECT_EQ(read("a.for.d/process.var").only("BLOCK")["Name"], "a");
    EXPECT_EQ(scratch.read("a.xml.d/process.var"), text);
}

TEST_F(FCProcessVarWriterTest, FormattingLeavesWhatCannotBeReadAlone) {
    scratch.write("process.var", "<PROCESS><BLOCK");
    CFCProcessVarWriter::LoadAndFormatXML(path("process.var"));
    EXPECT_EQ(scratch.read("process.var"), "<PROCESS><BLOCK");
    CFCProcessVarWriter::LoadAndFormatXML(path("missing.xml"));
    CFCProcessVarWriter::LoadAndFormatXML(nullptr);
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing.for"));
}

TEST_F(FCProcessVarWriterTest, GroupsInsideGroupsEndWhereTheFileCouldNotBeReadAgain) {
    Tree const root = makeRoot();
    IFCNode* parent = root.get();
    for (int depth = 0; depth < 3000; ++depth) {
        parent = addChild(parent, 161, L"G");
        addVariable(parent, L"x");
    }
    EXPECT_TRUE(CFCProcessVarWriter().WriteFile(path("process.var"), root.get(), true));
    std::string const file = scratch.read("process.var");
    std::size_t groups = 0;
    for (std::size_t at = file.find("<SUB_PROCESS"); at != std::string::npos; at = file.find("<SUB_PROCESS", at + 1)) {
        ++groups;
    }
    EXPECT_GT(groups, 1000U);
    EXPECT_LT(groups, 1024U);
    CFCProcessVarReader reader;
    EXPECT_TRUE(reader.Parse(path("process.var"), root.get(), 16));
}

TEST_F(FCProcessVarWriterTest, ChildrenThatFormARingAreNotWritten) {
    Tree const root = makeRoot();
    IFCNode* const first = addChild(root.get(), 150, L"Task_01");
    IFCNode* const second = addChild(root.get(), 150, L"Task_02");
    first->SetNext(second);
    EXPECT_EQ(outlineOf(written(root.get())), "0PROCESS 1PROCESS_VARIABLES 1BLOCK_VARIABLES ");
    first->SetNext(nullptr);
}

TEST_F(FCProcessVarWriterTest, TextsThatXmlCannotHoldDoNotEndTheFile) {
    Tree const root = makeRoot();
    IFCNode* const block = addChild(root.get(), 150, L"Task_01");
    addVariable(block, L"odd", L"a\x01<&>\"b");
    addVariable(block, L"behind");
    Element const file = written(root.get());
    EXPECT_EQ(attribute(file, "odd", "Value"), "a<&>\"b");
    EXPECT_EQ(variablesIn(file, "behind").size(), 1U);
}
