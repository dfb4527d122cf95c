#include "EnvironmentGuard.h"
#include "TestSupport.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCDataTypeListWriter.h"
#include "flowmere/xml/XmlElements.h"

#include <xercesc/dom/DOM.hpp>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using flowmere::test::narrow;

namespace {

struct TreeDeleter {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
template <typename Node>
using Tree = std::unique_ptr<Node, TreeDeleter>;

struct DataTypes : flowmere::test::ScratchTest {
    flowmere::test::EnvironmentGuard environment;
    CFCNodeFactory factory;

    ~DataTypes() override {
        // Nothing of the scratch folder stays in the process-wide catalog.
        environmentless();
        CFCDataTypeListReader::RefreshDataTypes();
    }
    static void environmentless() {
        CFCEnvironment::SetBasePath(L"");
        CFCEnvironment::SetResourcePath(L"");
    }

    Tree<CFCDataTypeNode> newList() {
        return Tree<CFCDataTypeNode>(dynamic_cast<CFCDataTypeNode*>(factory.Create(81)));
    }
    Tree<CFCDataTypeNode> parse(std::string_view xml) {
        scratch.write("types.xml", xml);
        Tree<CFCDataTypeNode> list = newList();
        CFCDataTypeListReader reader;
        reader.SetNodeFactory(&factory);
        EXPECT_TRUE(reader.Parse(scratch.text("types.xml"), list.get()));
        return list;
    }
    // The entries in file order, as "type:caption".
    static std::string children(IFCNode* node) {
        std::string all;
        for (IFCNode* child = node->GetChild(); child; child = child->GetNext()) {
            all = std::to_string(child->GetNodeType()) + ":" + narrow(child->GetNodeCaption()) + " " + all;
        }
        return all;
    }
    static CFCDataTypeNode* first(IFCNode* node) { return dynamic_cast<CFCDataTypeNode*>(node->GetChild()); }
    static std::string codes(CFCDataTypeNode* node) {
        NodeCode const& code = *node->GetCodeNode();
        return narrow(code.getCodeJS) + "|" + narrow(code.getCodeJython) + "|" + narrow(code.getCodePython) + "|" +
               narrow(code.setCodeJS) + "|" + narrow(code.setCodeJython) + "|" + narrow(code.setCodePython);
    }
    std::string write(CFCDataTypeNode* node, bool deep = true) {
        CFCDataTypeListWriter writer;
        EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), node, deep));
        return scratch.read("out.xml");
    }
};

constexpr char kHead[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n";
constexpr char kXmlns[] = " xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"";

} // namespace

// --- Reading ---

TEST_F(DataTypes, ObjectElementsAtAnyDepth) {
    auto const list = parse("<DataTypes Name='All'><GROUP Name='G'><SUB_GROUP Name='S'><DATATYPE Name='D'>"
                            "<GROUP Name='deep'/></DATATYPE></SUB_GROUP><DATATYPE Name='E'/></GROUP>"
                            "<DATATYPE Name='F'/><!-- none --><OTHER Name='x'><DATATYPE/></OTHER>text</DataTypes>");
    EXPECT_EQ("81:G 80:F ", children(list.get()));
    IFCNode* const group = list->GetChild()->GetNext();
    EXPECT_EQ("82:S 80:E ", children(group));
    IFCNode* const sub = group->GetChild()->GetNext();
    EXPECT_EQ("80:D ", children(sub));
    EXPECT_EQ("81:deep ", children(sub->GetChild()));
    EXPECT_EQ(group, sub->GetParentNode());
}

TEST_F(DataTypes, AttributesOfAnEntry) {
    auto const list = parse("<DataTypes><DATATYPE Name='Int' Type='Integer' Scope='Local'/></DataTypes>");
    CFCDataTypeNode* const entry = first(list.get());
    EXPECT_STREQ(L"Int", entry->GetNodeCaption());
    EXPECT_STREQ(L"", entry->GetNodeId()) << "data types keep no id";
    EXPECT_STREQ(L"Integer", entry->GetType());
    EXPECT_STREQ(L"Local", entry->GetScope());
    EXPECT_EQ(0, entry->GetLanguage());
}

TEST_F(DataTypes, MissingAttributesAreEmpty) {
    auto const list = parse("<DataTypes><GROUP/></DataTypes>");
    CFCDataTypeNode* const entry = first(list.get());
    EXPECT_EQ(81, entry->GetNodeType());
    EXPECT_STREQ(L"", entry->GetNodeCaption());
    EXPECT_STREQ(L"", entry->GetType());
    EXPECT_STREQ(L"", entry->GetScope());
}

TEST_F(DataTypes, TheRootsAttributesAreNotRead) {
    auto const list = parse("<DataTypes Name='All' Type='T'/>");
    EXPECT_STREQ(L"", list->GetNodeCaption());
    EXPECT_STREQ(L"", list->GetType());
}

TEST_F(DataTypes, CodeInsideItsLanguage) {
    auto const list =
        parse("<D><DATATYPE Name='d'>"
              "<LANGUAGE Type='JS'><SETCODE><![CDATA[sj]]></SETCODE><GETCODE><![CDATA[gj]]></GETCODE></LANGUAGE>"
              "<LANGUAGE Type='Jython'><SETCODE><![CDATA[sy]]></SETCODE><GETCODE><![CDATA[gy]]></GETCODE></LANGUAGE>"
              "<LANGUAGE Type='Python'><GETCODE><![CDATA[gp]]></GETCODE><SETCODE><![CDATA[sp]]></SETCODE></LANGUAGE>"
              "</DATATYPE></D>");
    EXPECT_EQ("gj|gy|gp|sj|sy|sp", codes(first(list.get())));
    EXPECT_EQ(0, first(list.get())->GetLanguage());
}

TEST_F(DataTypes, CodeBehindItsLanguage) {
    auto const list =
        parse("<D><DATATYPE Name='d'><LANGUAGE Type='JS'/><SETCODE><![CDATA[sj]]></SETCODE>"
              "<GETCODE><![CDATA[gj]]></GETCODE><LANGUAGE Type='Jython'/><SETCODE><![CDATA[sy]]></SETCODE>"
              "<GETCODE><![CDATA[gy]]></GETCODE></DATATYPE></D>");
    EXPECT_EQ("gj|gy||sj|sy|", codes(first(list.get())));
    EXPECT_EQ(7, first(list.get())->GetLanguage());
}

TEST_F(DataTypes, LanguageWords) {
    struct Row {
        char const* word;
        int language;
    };
    for (Row const& row : {Row{"JS", 6}, Row{"js", 6}, Row{"Jython", 7}, Row{"JYTHON", 7}, Row{"Python", 0},
                           Row{"python", 0}, Row{"Java", 6}, Row{"", 6}, Row{"JS ", 6}}) {
        auto const list =
            parse("<D><DATATYPE><LANGUAGE Type='JS'/><LANGUAGE Type='" + std::string(row.word) + "'/></DATATYPE></D>");
        EXPECT_EQ(row.language, first(list.get())->GetLanguage()) << row.word;
    }
    auto const list = parse("<D><DATATYPE><LANGUAGE Type='Jython'/><LANGUAGE/></DATATYPE></D>");
    EXPECT_EQ(7, first(list.get())->GetLanguage()) << "without a word";
}

TEST_F(DataTypes, AnUnknownLanguageGivesItsCodeToThePreviousOne) {
    auto const list = parse("<D><DATATYPE><LANGUAGE Type='JS'><SETCODE><![CDATA[one]]></SETCODE></LANGUAGE>"
                            "<LANGUAGE Type='Lua'><SETCODE><![CDATA[two]]></SETCODE></LANGUAGE></DATATYPE></D>");
    EXPECT_EQ("|||two||", codes(first(list.get())));
}

TEST_F(DataTypes, CodeBeforeAnyLanguageIsPython) {
    auto const list =
        parse("<D><DATATYPE><SETCODE><![CDATA[s]]></SETCODE><GETCODE><![CDATA[g]]></GETCODE></DATATYPE></D>");
    EXPECT_EQ("||g|||s", codes(first(list.get())));
}

TEST_F(DataTypes, OnlyCDataIsCode) {
    auto const list =
        parse("<D><DATATYPE><SETCODE>plain</SETCODE><GETCODE>x<![CDATA[a]]>y<![CDATA[b]]></GETCODE></DATATYPE></D>");
    EXPECT_EQ("||ab|||", codes(first(list.get())));
}

TEST_F(DataTypes, GroupsTakeCodeToo) {
    auto const list = parse("<D><GROUP><LANGUAGE Type='JS'><SETCODE><![CDATA[s]]></SETCODE></LANGUAGE></GROUP></D>");
    EXPECT_EQ("|||s||", codes(first(list.get())));
}

TEST_F(DataTypes, ObjectElementsInsideALanguageBelongToTheNode) {
    auto const list = parse("<D><GROUP Name='g'><LANGUAGE Type='JS'><DATATYPE Name='d'/></LANGUAGE></GROUP></D>");
    EXPECT_EQ("80:d ", children(list->GetChild()));
}

TEST_F(DataTypes, ParseNeedsAPathAFileAListAndWellFormedXml) {
    scratch.write("good.xml", "<D/>");
    scratch.write("bad.xml", "<D>");
    auto const list = newList();
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_FALSE(reader.Parse(nullptr, list.get()));
    EXPECT_FALSE(reader.Parse(L"", list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text("missing.xml"), list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text(), list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), nullptr));
    EXPECT_FALSE(reader.Parse(scratch.text("bad.xml"), list.get()));
    EXPECT_TRUE(reader.Parse(scratch.text("good.xml"), list.get()));
    EXPECT_FALSE(reader.Load(nullptr, list.get()));
    EXPECT_EQ(nullptr, list->GetChild());
}

TEST_F(DataTypes, FailuresPrintNothing) {
    scratch.write("bad.xml", "<D>");
    auto const list = newList();
    CFCDataTypeListReader reader;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(reader.Parse(scratch.text("bad.xml"), list.get()));
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

TEST_F(DataTypes, AFileOfAnotherKindGivesNothingAndTrue) {
    auto const list = parse("<Process Name='p'><BLOCK Name='b'/></Process>");
    EXPECT_EQ(nullptr, list->GetChild());
}

TEST_F(DataTypes, ParseFillsAListNode) {
    scratch.write("types.xml", "<D><DATATYPE Name='d'/></D>");
    CFCDataTypeList list;
    list.SetNodeType(81);
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_TRUE(reader.Parse(scratch.text("types.xml"), &list));
    EXPECT_EQ("80:d ", children(&list));
    CFCNodeHelper::DestroyTree(list.GetChild());
}

TEST_F(DataTypes, WithoutAFactoryNothingIsMade) {
    scratch.write("types.xml", "<D><DATATYPE Name='d'/></D>");
    auto const list = newList();
    CFCDataTypeListReader reader;
    EXPECT_TRUE(reader.Parse(scratch.text("types.xml"), list.get()));
    EXPECT_EQ(nullptr, list->GetChild());
}

TEST_F(DataTypes, NullArgumentsOfTheStepsDoNothing) {
    CFCDataTypeListReader reader;
    auto const list = newList();
    EXPECT_FALSE(reader.Load(nullptr, list.get()));
    reader.LoadPropertiesLite(nullptr, list.get());
    reader.LoadPropertiesLite(nullptr, static_cast<CFCDataTypeNode*>(nullptr));
    EXPECT_STREQ(L"", list->GetNodeCaption());
}

// --- File types inside the catalog ---

TEST_F(DataTypes, TheTypeCAEFILEHoldsTheFileTypes) {
    std::filesystem::create_directory(scratch / "user");
    scratch.write("base/FileTypes.xml", "<F><FILETYPE name='Mesh' id='1'/><FILETYPE name='Result' id='2'/></F>");
    scratch.write("user/FileTypes.xml", "<F><FILETYPE name='Result' id='20'/><FILETYPE name='Mine' id='3'/></F>");
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("user"));
    auto const list = parse("<D><DATATYPE Name='File' Type='CAEFILE'/></D>");
    CFCDataTypeNode* const files = first(list.get());
    EXPECT_EQ(81, files->GetNodeType());
    EXPECT_STREQ(L"CAEFILE", files->GetType());
    EXPECT_EQ("83:Mesh 83:Result 83:Mine ", children(files));
    auto* const result = dynamic_cast<CFCFileTypeNode*>(CFCNodeHelper::FindNodeByCaption(L"Result", files));
    ASSERT_NE(nullptr, result);
    EXPECT_EQ(20, result->GetFileTypeID());
}

TEST_F(DataTypes, TheLettersOfCAEFILEMatter) {
    scratch.write("base/FileTypes.xml", "<F><FILETYPE name='Mesh'/></F>");
    CFCEnvironment::SetBasePath(scratch.text("base"));
    for (char const* word : {"caefile", "CAEFile", "CAEFILE ", "CAEFILES"}) {
        auto const list = parse("<D><DATATYPE Name='File' Type='" + std::string(word) + "'/></D>");
        EXPECT_EQ(80, list->GetChild()->GetNodeType()) << word;
        EXPECT_EQ(nullptr, list->GetChild()->GetChild()) << word;
    }
}

TEST_F(DataTypes, CAEFILEWithoutFileTypesIsAnEmptyGroup) {
    auto const list = parse("<D><DATATYPE Name='File' Type='CAEFILE'><DATATYPE Name='own'/></DATATYPE></D>");
    EXPECT_EQ(81, list->GetChild()->GetNodeType());
    EXPECT_EQ("80:own ", children(list->GetChild()));
}

// --- The catalog of the process ---

TEST_F(DataTypes, TheCatalogIsLoadedOnceAndKept) {
    scratch.write("DataTypes.xml",
                  "<DataTypes><GROUP Name='All'><DATATYPE Name='Int' Type='Int'/></GROUP></DataTypes>");
    CFCEnvironment::SetBasePath(scratch.text());
    CFCDataTypeNode* const root = CFCDataTypeListReader::GetDataTypeRootNode();
    ASSERT_NE(nullptr, root);
    EXPECT_STREQ(L"All", root->GetNodeCaption());
    EXPECT_EQ("80:Int ", children(root));
    std::filesystem::remove(scratch / "DataTypes.xml");
    EXPECT_EQ(root, CFCDataTypeListReader::GetDataTypeRootNode());
    ASSERT_NE(nullptr, root->GetParentNode()) << "the node above stays";
    EXPECT_EQ(81, root->GetParentNode()->GetNodeType());
    EXPECT_EQ(root, root->GetParentNode()->GetChild());
}

TEST_F(DataTypes, TheLastTopLevelElementIsTheRootOfTheCatalog) {
    scratch.write("DataTypes.xml", "<DataTypes><GROUP Name='First'/><GROUP Name='Last'/></DataTypes>");
    CFCEnvironment::SetBasePath(scratch.text());
    ASSERT_NE(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    EXPECT_STREQ(L"Last", CFCDataTypeListReader::GetDataTypeRootNode()->GetNodeCaption());
}

TEST_F(DataTypes, WithoutAFileTheNextCallTriesAgain) {
    CFCEnvironment::SetBasePath(scratch.text());
    CFCNodeFactory probe;
    Tree<IFCNode> const before(probe.Create(71));
    EXPECT_EQ(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    EXPECT_EQ(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    Tree<IFCNode> const behind(probe.Create(71));
    EXPECT_EQ(before->GetNodeHandle() + 1, behind->GetNodeHandle()) << "no node is made for a missing file";
    scratch.write("DataTypes.xml", "<DataTypes>");
    EXPECT_EQ(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    scratch.write("DataTypes.xml", "<DataTypes/>");
    EXPECT_EQ(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    scratch.write("DataTypes.xml", "<DataTypes><GROUP Name='Now'/></DataTypes>");
    ASSERT_NE(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    EXPECT_STREQ(L"Now", CFCDataTypeListReader::GetDataTypeRootNode()->GetNodeCaption());
}

TEST_F(DataTypes, RefreshDropsTheCatalogAndLoadsAgain) {
    CFCEnvironment::SetBasePath(scratch.text());
    CFCDataTypeListReader::RefreshDataTypes();
    scratch.write("DataTypes.xml",
                  "<DataTypes><GROUP Name='Old'><DATATYPE Name='a'/><DATATYPE Name='b'/></GROUP></DataTypes>");
    ASSERT_NE(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    scratch.write("DataTypes.xml", "<DataTypes><GROUP Name='New'/></DataTypes>");
    EXPECT_STREQ(L"Old", CFCDataTypeListReader::GetDataTypeRootNode()->GetNodeCaption());
    CFCDataTypeListReader::RefreshDataTypes();
    ASSERT_NE(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
    EXPECT_STREQ(L"New", CFCDataTypeListReader::GetDataTypeRootNode()->GetNodeCaption());
    std::filesystem::remove(scratch / "DataTypes.xml");
    CFCDataTypeListReader::RefreshDataTypes();
    EXPECT_EQ(nullptr, CFCDataTypeListReader::GetDataTypeRootNode());
}

TEST_F(DataTypes, RefreshLeavesNothingOfTheFormerCatalog) {
    CFCEnvironment::SetBasePath(scratch.text());
    scratch.write("DataTypes.xml", "<D><GROUP Name='other'><DATATYPE/></GROUP><GROUP Name='root'>"
                                   "<SUB_GROUP Name='s'><DATATYPE/><DATATYPE/></SUB_GROUP><DATATYPE Name='last'/>"
                                   "<GROUP><DATATYPE/><DATATYPE/></GROUP></GROUP></D>");
    CFCDataTypeListReader::RefreshDataTypes();
    CFCDataTypeNode* const root = CFCDataTypeListReader::GetDataTypeRootNode();
    ASSERT_NE(nullptr, root);
    std::vector<int> handles;
    std::vector<IFCNode*> open{root->GetParentNode()};
    while (!open.empty()) {
        IFCNode* const node = open.back();
        open.pop_back();
        handles.push_back(node->GetNodeHandle());
        for (IFCNode* child = node->GetChild(); child; child = child->GetNext()) {
            open.push_back(child);
        }
    }
    ASSERT_EQ(11U, handles.size());
    std::filesystem::remove(scratch / "DataTypes.xml");
    CFCDataTypeListReader::RefreshDataTypes();
    for (int const handle : handles) {
        EXPECT_EQ(nullptr, CFCNodeManager::GetNode(handle)) << handle;
    }
}

TEST_F(DataTypes, RefreshAsksTheNodesToDeleteThemselves) {
    struct HostNode : CFCDataTypeNode {
        explicit HostNode(int& count) : deleted(count) {}
        void Delete() override {
            ++deleted;
            CFCDataTypeNode::Delete();
        }
        int& deleted;
    };
    CFCEnvironment::SetBasePath(scratch.text());
    scratch.write("DataTypes.xml", "<D><GROUP Name='root'><DATATYPE/></GROUP></D>");
    CFCDataTypeListReader::RefreshDataTypes();
    CFCDataTypeNode* const root = CFCDataTypeListReader::GetDataTypeRootNode();
    ASSERT_NE(nullptr, root);
    int deleted = 0;
    root->AppendChild(std::make_unique<HostNode>(deleted).release(), false);
    CFCDataTypeListReader::RefreshDataTypes();
    EXPECT_EQ(1, deleted) << "the first child of the root";
    EXPECT_EQ("80: ", children(CFCDataTypeListReader::GetDataTypeRootNode()));
}

TEST_F(DataTypes, RefreshLeavesTheCatalogOfTheBindingAlone) {
    CFCEnvironment::SetBasePath(scratch.text());
    scratch.write("DataTypes.xml", "<D><DATATYPE Name='i' Type='Int'/><DATATYPE Name='l' Type='Last'/></D>");
    // The catalog of the binding is read once in a process.
    EXPECT_EXIT(
        {
            IFCNode* const bound = CFCNodeHelper::GetDataTypeNode(L"Int");
            scratch.write("DataTypes.xml", "<D><DATATYPE Name='n' Type='New'/></D>");
            CFCDataTypeListReader::RefreshDataTypes();
            EXPECT_NE(nullptr, bound);
            EXPECT_EQ(bound, CFCNodeHelper::GetDataTypeNode(L"Int"));
            EXPECT_EQ(nullptr, CFCNodeHelper::GetDataTypeNode(L"New"));
            EXPECT_STREQ(L"n", CFCDataTypeListReader::GetDataTypeRootNode()->GetNodeCaption());
            std::_Exit(HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

// --- Writing ---

TEST_F(DataTypes, AWrittenCatalog) {
    auto const list = parse("<D><GROUP Name='G' Type='T' Scope='S'><DATATYPE Name='d' Type='Int' Scope='S'>"
                            "<LANGUAGE Type='Python'><SETCODE><![CDATA[s < 1]]></SETCODE></LANGUAGE></DATATYPE>"
                            "<SUB_GROUP/></GROUP></D>");
    list->SetNodeCaption(L"Types");
    EXPECT_EQ(std::string(kHead) + "<DataTypes Name=\"Types\"" + kXmlns +
                  ">\n"
                  "\n"
                  "  <GROUP Name=\"G\" Type=\"T\">\n"
                  "    <DATATYPE Name=\"d\" Type=\"Int\">\n"
                  "      <LANGUAGE Type=\"JS\"/>\n"
                  "      <SETCODE><![CDATA[]]></SETCODE>\n"
                  "      <GETCODE><![CDATA[]]></GETCODE>\n"
                  "      <LANGUAGE Type=\"Jython\"/>\n"
                  "      <SETCODE><![CDATA[]]></SETCODE>\n"
                  "      <GETCODE><![CDATA[]]></GETCODE>\n"
                  "      <LANGUAGE Type=\"Python\"/>\n"
                  "      <SETCODE><![CDATA[s < 1]]></SETCODE>\n"
                  "      <GETCODE><![CDATA[]]></GETCODE>\n"
                  "    </DATATYPE>\n"
                  "    <SUB_GROUP Name=\"Name\"/>\n"
                  "  </GROUP>\n"
                  "\n"
                  "</DataTypes>\n",
              write(list.get()));
}

TEST_F(DataTypes, TheDeepFlagChangesNothing) {
    auto const list = parse("<D><GROUP Name='G'><DATATYPE Name='d'/></GROUP></D>");
    std::string const deep = write(list.get(), true);
    EXPECT_EQ(deep, write(list.get(), false));
    EXPECT_NE(std::string::npos, deep.find("<DATATYPE Name=\"d\""));
}

TEST_F(DataTypes, ARoundTripKeepsNamesTypesOrderAndCode) {
    std::string const xml =
        "<D><GROUP Name='One'><DATATYPE Name='a' Type='A'>"
        "<LANGUAGE Type='JS'><SETCODE><![CDATA[1]]></SETCODE><GETCODE><![CDATA[2]]></GETCODE></LANGUAGE>"
        "<LANGUAGE Type='Jython'><SETCODE><![CDATA[3]]></SETCODE><GETCODE><![CDATA[4]]></GETCODE></LANGUAGE>"
        "<LANGUAGE Type='Python'><SETCODE><![CDATA[a]]]]><![CDATA[>b\n]]></SETCODE><GETCODE><![CDATA[6]]></GETCODE></LANGUAGE>"
        "</DATATYPE><DATATYPE Name='b'/><SUB_GROUP Name='s'><DATATYPE Name='c'/></SUB_GROUP></GROUP></D>";
    auto const list = parse(xml);
    std::string const once = write(list.get());
    auto const again = parse(once);
    EXPECT_EQ(children(list->GetChild()), children(again->GetChild()));
    EXPECT_EQ("80:a 80:b 82:s ", children(again->GetChild()));
    auto* const a = dynamic_cast<CFCDataTypeNode*>(CFCNodeHelper::FindNodeByCaption(L"a", again.get()));
    ASSERT_NE(nullptr, a);
    EXPECT_EQ("2|4|6|1|3|a]]>b\n", codes(a));
    EXPECT_STREQ(L"A", a->GetType());
    EXPECT_EQ(once, write(again.get()));
}

TEST_F(DataTypes, GroupsLoseTheirCodeAndEntriesTheirScope) {
    auto const list = parse("<D><GROUP Name='g' Scope='x'><SETCODE><![CDATA[lost]]></SETCODE>"
                            "<DATATYPE Name='d' Scope='x'/></GROUP></D>");
    std::string const text = write(list.get());
    EXPECT_EQ(std::string::npos, text.find("lost"));
    EXPECT_EQ(std::string::npos, text.find("Scope"));
}

TEST_F(DataTypes, AnEntryWithoutParentHasNoCode) {
    Tree<CFCDataTypeNode> const node(dynamic_cast<CFCDataTypeNode*>(factory.Create(80)));
    node->SetNodeCaption(L"d");
    node->SetType(L"T");
    EXPECT_EQ(std::string(kHead) + "<DataTypes Name=\"d\" Type=\"T\"" + kXmlns + "/>\n", write(node.get()));
}

TEST_F(DataTypes, AnEntryWithoutCodeRecordHasNoLanguages) {
    auto const list = parse("<D><DATATYPE Name='d'/></D>");
    first(list.get())->SetCodeNode(static_cast<NodeCode*>(nullptr));
    EXPECT_NE(std::string::npos, write(list.get()).find("<DATATYPE Name=\"d\"/>"));
}

TEST_F(DataTypes, ObjectTypes) {
    struct Row {
        int type;
        wchar_t const* name;
    };
    CFCDataTypeListWriter writer;
    Tree<CFCDataTypeNode> const node = newList();
    for (Row const& row : {Row{80, L"DATATYPE"}, Row{81, L"GROUP"}, Row{82, L"SUB_GROUP"}, Row{0, L"UnKnown"},
                           Row{83, nullptr}, Row{57, nullptr}, Row{-1, nullptr}}) {
        node->SetNodeType(row.type);
        TuString name(L"before");
        EXPECT_EQ(row.name != nullptr, writer.GetObjectType(node.get(), name)) << row.type;
        EXPECT_STREQ(row.name ? row.name : L"before", name) << row.type;
    }
    TuString name(L"before");
    EXPECT_FALSE(writer.GetObjectType(nullptr, name));
}

TEST_F(DataTypes, NodesOfOtherTypesWriteNothing) {
    auto const list = parse("<D><GROUP Name='keep'/><GROUP Name='drop'><DATATYPE Name='below'/></GROUP></D>");
    list->GetChild()->SetNodeType(57);
    std::string const text = write(list.get());
    EXPECT_NE(std::string::npos, text.find("keep"));
    EXPECT_EQ(std::string::npos, text.find("drop"));
    EXPECT_EQ(std::string::npos, text.find("below"));
    list->SetNodeType(57);
    EXPECT_EQ(std::string(kHead) + "<DataTypes" + kXmlns + "/>\n", write(list.get()));
}

TEST_F(DataTypes, AnUnknownEntryIsWrittenAsSuch) {
    auto const list = parse("<D><DATATYPE Name='d' Type='T'/></D>");
    list->GetChild()->SetNodeType(0);
    EXPECT_NE(std::string::npos, write(list.get()).find("<UnKnown Name=\"d\" Type=\"T\">"));
}

TEST_F(DataTypes, FileTypesOfAnExpandedGroupAreNotWritten) {
    scratch.write("base/FileTypes.xml", "<F><FILETYPE name='Mesh'/></F>");
    CFCEnvironment::SetBasePath(scratch.text("base"));
    auto const list = parse("<D><DATATYPE Name='File' Type='CAEFILE'/></D>");
    EXPECT_NE(std::string::npos, write(list.get()).find("<GROUP Name=\"File\" Type=\"CAEFILE\"/>"));
}

TEST_F(DataTypes, WriteFileNeedsAPathAndANode) {
    CFCDataTypeListWriter writer;
    auto const list = newList();
    EXPECT_FALSE(writer.WriteFile(L"", list.get(), true));
    EXPECT_FALSE(writer.WriteFile(nullptr, list.get(), true));
    EXPECT_FALSE(writer.WriteFile(scratch.text("out.xml"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.xml"));
    EXPECT_TRUE(writer.WriteFile(scratch.text("missing/out.xml"), list.get(), true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing"));
}

TEST_F(DataTypes, WriteFileKeepsItsArgumentsAlsoWhenItRefuses) {
    struct Open : CFCDataTypeListWriter {
        std::string kept() const {
            return narrow(m_strFilePath) + (m_bDeep ? " deep " : " flat ") + narrow(m_strRootName);
        }
    } writer;
    EXPECT_EQ(" flat DataTypes", writer.kept());
    EXPECT_FALSE(writer.WriteFile(L"somewhere.xml", nullptr, true));
    EXPECT_EQ("somewhere.xml deep DataTypes", writer.kept());
    EXPECT_FALSE(writer.WriteFile(L"", newList().get(), false));
    EXPECT_EQ(" flat DataTypes", writer.kept());
}

TEST_F(DataTypes, AnExceptionInAStepLeavesTheFileAlone) {
    struct Throwing : CFCDataTypeListWriter {
        void WriteProperties(CFCDataTypeNode* node, xercesc::DOMNode* element) override {
            if (fails && node->GetParentNode()) {
                throw std::runtime_error("no");
            }
            CFCDataTypeListWriter::WriteProperties(node, element);
        }
        bool fails = true;
    } writer;
    auto const list = parse("<D><GROUP Name='g'/></D>");
    scratch.write("out.xml", "former");
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), list.get(), true));
    EXPECT_EQ("former", scratch.read("out.xml"));
    writer.fails = false;
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), list.get(), true));
    EXPECT_EQ(write(list.get()), scratch.read("out.xml"));
}

TEST_F(DataTypes, OverridesTakeEffectAtEveryLevel) {
    struct Counting : CFCDataTypeListWriter {
        void WriteObject(CFCDataTypeNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) override {
            ++objects;
            CFCDataTypeListWriter::WriteObject(node, parent, self);
        }
        void WriteChildren(CFCDataTypeNode* node, xercesc::DOMNode* element) override {
            ++children;
            CFCDataTypeListWriter::WriteChildren(node, element);
        }
        void WriteProperties(CFCDataTypeNode* node, xercesc::DOMNode* element) override {
            ++properties;
            CFCDataTypeListWriter::WriteProperties(node, element);
        }
        int objects = 0;
        int children = 0;
        int properties = 0;
    };
    auto const list = parse("<D><GROUP><DATATYPE/><DATATYPE/></GROUP></D>");
    Counting writer;
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), list.get(), true));
    EXPECT_EQ(4, writer.objects);
    EXPECT_EQ(4, writer.children);
    EXPECT_EQ(4, writer.properties);
}

TEST_F(DataTypes, TheStepsOfTheWriterTakeNulls) {
    CFCDataTypeListWriter writer;
    auto const list = newList();
    writer.WriteObject(nullptr, nullptr, nullptr);
    writer.WriteObject(list.get(), nullptr, nullptr);
    writer.WriteChildren(nullptr, nullptr);
    writer.WriteProperties(nullptr, nullptr);
    writer.WriteProperties(list.get(), nullptr);
    writer.WritePropertiesRoot(nullptr, nullptr);
    writer.WriteLanguageTag(nullptr, nullptr);
    writer.WriteLanguageTag(list.get(), nullptr);
    writer.TrimCode(nullptr);
    CFCDataTypeListWriter const copy(writer);
    writer = copy;
    EXPECT_STREQ(L"", list->GetNodeCaption());
}

TEST_F(DataTypes, TrimCodeHasNoLastingEffect) {
    NodeCode code;
    code.getCodePython = L"  x  ";
    code.setCodeJS = L"\ty\n";
    CFCDataTypeListWriter writer;
    writer.TrimCode(&code);
    EXPECT_STREQ(L"  x  ", code.getCodePython);
    EXPECT_STREQ(L"\ty\n", code.setCodeJS);
}

TEST_F(DataTypes, AChainThatClosesOnItselfEnds) {
    auto const list = parse("<D><DATATYPE Name='a'/><DATATYPE Name='b'/><DATATYPE Name='c'/></D>");
    IFCNode* const c = list->GetChild();
    IFCNode* const a = c->GetNext()->GetNext();
    a->SetNext(c);
    std::string const text = write(list.get());
    a->SetNext(nullptr);
    EXPECT_LT(text.find("\"a\""), text.find("\"b\""));
    EXPECT_LT(text.find("\"b\""), text.find("\"c\""));
    EXPECT_EQ(text.find("\"a\""), text.rfind("\"a\""));
}

TEST_F(DataTypes, ATreeTooDeepForAFileIsCutOff) {
    auto const list = newList();
    IFCNode* parent = list.get();
    for (int i = 0; i < 3000; ++i) {
        IFCNode* const child = factory.Create(81);
        parent->AppendChild(child, false);
        parent = child;
    }
    write(list.get());
    auto const again = newList();
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_TRUE(reader.Parse(scratch.text("out.xml"), again.get()));
    int depth = 0;
    for (IFCNode* node = again->GetChild(); node; node = node->GetChild()) {
        ++depth;
    }
    EXPECT_EQ(1023, depth);
}
