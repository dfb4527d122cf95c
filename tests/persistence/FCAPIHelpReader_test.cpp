#include "CatalogTestSupport.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/persistence/FCAPIHelpReader.h"

#include <xercesc/dom/DOM.hpp>

#include <memory>
#include <string>
#include <type_traits>

using flowmere::test::CatalogTest;
using flowmere::test::EmptyFactory;
using flowmere::test::narrow;
using flowmere::test::printedBy;
using flowmere::test::treeOf;

namespace {

struct APIHelp : CatalogTest {
    CFCProcessList* const list = dynamic_cast<CFCProcessList*>(factory.Create(69));

    bool parse(std::string_view xml) {
        CFCAPIHelpReader reader;
        reader.SetNodeFactory(&factory);
        return reader.Parse(file(xml), list);
    }
    IFCNode* find(wchar_t const* caption) { return CFCNodeHelper::FindNodeByCaption(caption, list); }
};

// A reader that gives its root element to the test, and counts the virtual steps.
struct HostReader : CFCAPIHelpReader {
    xercesc::DOMElement* root() { return m_pDocument->getDocumentElement(); }
    void LoadPropertiesLite(xercesc::DOMElement* element, IFCNode* node) override {
        ++properties;
        CFCAPIHelpReader::LoadPropertiesLite(element, node);
    }
    void LoadCode(xercesc::DOMElement* element, IFCNode* node) override {
        ++codes;
        CFCAPIHelpReader::LoadCode(element, node);
    }
    int properties = 0;
    int codes = 0;
};

} // namespace

TEST_F(APIHelp, EachElementMakesItsNode) {
    struct Row {
        char const* tag;
        int type;
    };
    for (Row const& row : {Row{"PROCESS", 70}, Row{"MODULE", 170}, Row{"SUB_MODULE", 171}}) {
        std::string const tag = row.tag;
        ASSERT_TRUE(parse("<r><" + tag + " Name='the name' FILE='a/b.xml'/></r>"));
        IFCNode* const node = list->GetChild();
        ASSERT_NE(nullptr, node) << tag;
        EXPECT_EQ(row.type, node->GetNodeType());
        EXPECT_STREQ(L"the name", node->GetNodeCaption());
        EXPECT_STREQ(L"a/b.xml", node->GetItemFilePath());
        EXPECT_EQ(list, node->GetParentNode());
    }
    EXPECT_NE(nullptr, dynamic_cast<CFCAPIHelpNode*>(list->GetChild()));
}

TEST_F(APIHelp, ElementsNestToAnyDepth) {
    ASSERT_TRUE(parse("<Processes Name='Help'><MODULE Name='m'><SUB_MODULE Name='s'><SUB_MODULE Name='t'>"
                      "<PROCESS Name='p'><MODULE Name='n'/></PROCESS></SUB_MODULE></SUB_MODULE>"
                      "<SUB_MODULE Name='u'/></MODULE><PROCESS Name='q'/></Processes>"));
    EXPECT_EQ("170:Help(170:m(171:s(171:t(70:p(170:n))) 171:u) 70:q)", treeOf(list));
}

TEST_F(APIHelp, OnlySubModulesHaveAText) {
    ASSERT_TRUE(parse("<r><PROCESS Name='p'>text of p</PROCESS><MODULE Name='m'>text of m"
                      "<SUB_MODULE Name='s'>one <b>inner</b>two<![CDATA[ <three>]]>"
                      "<SUB_MODULE Name='t'>deep</SUB_MODULE></SUB_MODULE></MODULE></r>"));
    auto* const outer = dynamic_cast<CFCAPIHelpNode*>(find(L"s"));
    auto* const inner = dynamic_cast<CFCAPIHelpNode*>(find(L"t"));
    ASSERT_TRUE(outer != nullptr && inner != nullptr);
    EXPECT_STREQ(L"one two <three>", outer->GetNodeText());
    EXPECT_STREQ(L"one two <three>", outer->GetNodeCode());
    EXPECT_STREQ(L"deep", inner->GetNodeText());
    EXPECT_STREQ(L"", find(L"p")->GetNodeCode());
    EXPECT_STREQ(L"", find(L"m")->GetNodeCode());
}

TEST_F(APIHelp, AnEmptyTextIsNone) {
    ASSERT_TRUE(parse("<r><SUB_MODULE Name='s'></SUB_MODULE><SUB_MODULE Name='t'/></r>"));
    EXPECT_STREQ(L"", find(L"s")->GetNodeCode());
    EXPECT_STREQ(L"", find(L"t")->GetNodeCode());
}

TEST_F(APIHelp, OtherElementsAreSkippedWithAllBelowThem) {
    ASSERT_TRUE(parse("<r><module Name='a'/><GROUP><MODULE Name='b'/></GROUP><!-- c -->text<SUBMODULE Name='c'/>"
                      "<MODULE Name='d'/></r>"));
    EXPECT_EQ("170:Processes(170:d)", treeOf(list));
}

TEST_F(APIHelp, AListOfProcessesIsRetyped) {
    EXPECT_EQ(69, list->GetNodeType());
    list->SetNodeCaption(L"before");
    ASSERT_TRUE(parse("<PROCESS_LST/>"));
    EXPECT_EQ(170, list->GetNodeType());
    EXPECT_STREQ(L"Processes", list->GetNodeCaption());
}

TEST_F(APIHelp, TheRootNamesTheList) {
    struct Row {
        char const* xml;
        wchar_t const* caption;
    };
    for (Row const& row :
         {Row{"<PROCESS_LST Name='A'/>", L"A"}, Row{"<Processes Name='B'/>", L"B"}, Row{"<Other Name='C'/>", L"C"},
          Row{"<r Name=''/>", L"Processes"}, Row{"<r name='D'/>", L"Processes"}, Row{"<r Name=' '/>", L" "}}) {
        ASSERT_TRUE(parse(row.xml));
        EXPECT_STREQ(row.caption, list->GetNodeCaption()) << row.xml;
    }
}

TEST_F(APIHelp, AFileInsideAnotherRootIsReadFromItsRootAllTheSame) {
    ASSERT_TRUE(parse("<r><PROCESS_LST Name='inner'><MODULE Name='m'/></PROCESS_LST><MODULE Name='n'/></r>"));
    EXPECT_EQ("170:Processes(170:n)", treeOf(list));
}

TEST_F(APIHelp, ASecondFileAddsItsEntries) {
    ASSERT_TRUE(parse("<r Name='one'><MODULE Name='a'/></r>"));
    ASSERT_TRUE(parse("<r Name='two'><MODULE Name='b'/></r>"));
    EXPECT_EQ("170:two(170:a 170:b)", treeOf(list));
}

TEST_F(APIHelp, WhatCannotBeReadSaysSoAndLeavesTheListAlone) {
    struct Row {
        TuString path;
        char const* printed;
    };
    CFCAPIHelpReader reader;
    reader.SetNodeFactory(&factory);
    for (Row const& row : {Row{L"", ""}, Row{scratch.text("missing.xml"), "Init failed\n"},
                           Row{scratch.text(), "Init failed\n"}, Row{file("<r><MODULE"), "Init failed\n"}}) {
        EXPECT_EQ(row.printed, printedBy([&] { EXPECT_FALSE(reader.Parse(row.path, list)); }));
    }
    EXPECT_EQ("", printedBy([&] {
                  EXPECT_FALSE(reader.Parse(nullptr, list));
                  EXPECT_FALSE(reader.Parse(file("<r/>"), nullptr));
              }));
    EXPECT_EQ("69:", treeOf(list));
}

TEST_F(APIHelp, NodesThatTheFactoryDoesNotMakeAreLeftOut) {
    CFCAPIHelpReader reader;
    EXPECT_TRUE(reader.Parse(file("<r Name='n'><MODULE Name='a'><SUB_MODULE Name='b'/></MODULE></r>"), list));
    EXPECT_EQ("170:n", treeOf(list)) << "without a factory";
    EmptyFactory empty;
    reader.SetNodeFactory(&empty);
    EXPECT_TRUE(reader.Parse(file("<r Name='n'><MODULE Name='a'/></r>"), list));
    EXPECT_EQ("170:n", treeOf(list));
}

TEST_F(APIHelp, StepsOfADerivedReaderAreTaken) {
    HostReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(
        file("<r><PROCESS/><MODULE><SUB_MODULE>x</SUB_MODULE></MODULE><SUB_MODULE>y</SUB_MODULE></r>"), list));
    EXPECT_EQ(4, reader.properties);
    EXPECT_EQ(2, reader.codes);
}

TEST_F(APIHelp, PropertiesReplaceTheCaptionAndKeepAFilePath) {
    HostReader reader;
    ASSERT_TRUE(reader.Initialize(file("<MODULE BlockString='other' FILE=''/>")));
    auto const node = std::make_unique<CFCFileNode>();
    node->SetNodeCaption(L"before");
    node->SetItemFilePath(L"kept");
    reader.LoadPropertiesLite(reader.root(), node.get());
    EXPECT_STREQ(L"", node->GetNodeCaption());
    EXPECT_STREQ(L"kept", node->GetItemFilePath());
    reader.LoadPropertiesLite(nullptr, node.get());
    reader.LoadPropertiesLite(reader.root(), nullptr);
    EXPECT_STREQ(L"kept", node->GetItemFilePath());
}

TEST_F(APIHelp, LoadTakesAnyElementAndNode) {
    HostReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Initialize(file("<r Name='n'><MODULE Name='a'/></r>")));
    EXPECT_FALSE(reader.Load(nullptr, list));
    EXPECT_FALSE(reader.Load(reader.root(), nullptr));
    EXPECT_TRUE(reader.Load(reader.root(), list));
    EXPECT_EQ("69:(170:a)", treeOf(list)) << "only Parse makes a module of the list";
}

TEST_F(APIHelp, DeepFilesAreReadToTheLastLevel) {
    constexpr int kDepth = 1000;
    std::string xml;
    for (int level = 0; level < kDepth; ++level)
        xml += "<SUB_MODULE Name='s'>";
    for (int level = 0; level < kDepth; ++level)
        xml += "</SUB_MODULE>";
    ASSERT_TRUE(parse("<r>" + xml + "</r>"));
    EXPECT_EQ(kDepth, CFCNodeHelper::GetBlockCount(list));
}

TEST_F(APIHelp, ReadersDeriveAndCopy) {
    EXPECT_TRUE((std::is_base_of_v<CFCReader, CFCAPIHelpReader>));
    CFCAPIHelpReader reader;
    reader.SetNodeFactory(&factory);
    CFCAPIHelpReader const copy(reader);
    CFCAPIHelpReader assigned;
    assigned = copy;
    EXPECT_TRUE(assigned.Parse(file("<r><MODULE Name='a'/></r>"), list));
    EXPECT_EQ("170:Processes(170:a)", treeOf(list)) << "the factory goes along";
}

TEST_F(APIHelp, ThePathOfTheEnvironmentWillDo) {
    scratch.write("APIHelp.xml", "<r><MODULE Name='a'/></r>");
    CFCEnvironment::SetBasePath(scratch.text());
    CFCAPIHelpReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_TRUE(reader.Parse(CFCEnvironment::GetAPIHelpFilePath(), list));
    EXPECT_EQ("170:Processes(170:a)", treeOf(list));
}
