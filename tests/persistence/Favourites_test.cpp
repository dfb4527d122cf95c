#include "CatalogTestSupport.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFavouriteWriter.h"

#include <xercesc/dom/DOM.hpp>

#include <string>
#include <type_traits>

using flowmere::test::addChild;
using flowmere::test::CatalogTest;
using flowmere::test::EmptyFactory;
using flowmere::test::expectGolden;
using flowmere::test::narrow;
using flowmere::test::printedBy;
using flowmere::test::treeOf;

namespace {

struct Favourites : CatalogTest {
    CFCProcessNode* const process = dynamic_cast<CFCProcessNode*>(factory.Create(56));

    bool parse(std::string_view xml, IFCNode* into) {
        CFCFavouriteReader reader;
        reader.SetNodeFactory(&factory);
        IFCNode* node = into;
        bool const result = reader.Parse(file(xml), &node);
        EXPECT_EQ(into, node);
        return result;
    }
    bool parse(std::string_view xml) { return parse(xml, process); }

    // All documents made so far, with their folders.
    std::string documents() {
        std::string all;
        for (IFCNode* const node : factory.alive()) {
            if (auto* const document = dynamic_cast<CFCDocumentNode*>(node)) {
                IFCNode* const folder = document->GetParentNode();
                all += narrow(document->GetNodeCaption()) + (document->IsOpened() ? "+" : "-") +
                       std::to_string(document->GetDocType()) + "@" +
                       (folder == nullptr ? "nowhere" : narrow(folder->GetNodeCaption())) + " ";
            }
        }
        return all;
    }

    std::string write(IFCNode* node, bool deep = true) {
        CFCFavouriteWriter writer;
        EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), node, deep));
        return scratch.read("out.xml");
    }
    // The part of a written file inside its root.
    std::string writtenInside(IFCNode* node) {
        std::string const text = write(node);
        std::size_t const start = text.find('>', text.find("<Process ")) + 1;
        return text.substr(start, text.rfind("</Process>") - start);
    }
    static CFCDocumentNode* addDocument(IFCNode* folder, wchar_t const* name, bool isOpened, int type = 0) {
        auto* const document = dynamic_cast<CFCDocumentNode*>(addChild(folder, 177, L"", name));
        document->SetOpened(isOpened);
        document->SetDocType(type);
        return document;
    }
};

struct OpenFavouriteReader : CFCFavouriteReader {
    xercesc::DOMElement* root() { return m_pDocument->getDocumentElement(); }
    xercesc::DOMElement* inner() { return root()->getFirstElementChild(); }
};

// A written file whose root has no children.
std::string emptyRoot(std::string const& attributes) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n<Process " + attributes +
           "xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"/>\n";
}

} // namespace

// --- Reading ---

TEST_F(Favourites, ANewProcessHasItsTwoFolders) {
    ASSERT_TRUE(parse("<Process/>"));
    EXPECT_EQ("56:(176:Favourites 178:Last Opened)", treeOf(process));
}

TEST_F(Favourites, TheFoldersOfTheProcessAreFilledAndNotMade) {
    CFCFavouriteNode* const favourites = process->GetFavouriteNode();
    CFCSubGroupNode* const history = process->GetHistoryNode();
    ASSERT_TRUE(parse("<Process><FAVOURITES Name='Mine'><CUSTOM_FOLDER Name='a'/></FAVOURITES>"
                      "<HISTORY Name='Recent'><CUSTOM_FOLDER Name='b'/></HISTORY></Process>"));
    EXPECT_EQ("56:(176:Mine(179:a) 178:Recent(179:b))", treeOf(process));
    EXPECT_EQ(favourites, process->GetFavouriteNode());
    EXPECT_EQ(history, process->GetHistoryNode());
    EXPECT_EQ((std::vector<int>{56, 71, 71}), factory.asked) << "a custom folder is a retyped folder";
}

TEST_F(Favourites, AnAbsentNameEmptiesTheCaption) {
    ASSERT_TRUE(parse("<Process><FAVOURITES/><HISTORY Name=''/></Process>"));
    EXPECT_EQ("56:(176: 178:)", treeOf(process));
}

TEST_F(Favourites, FoldersGoIntoTheNodeAtHand) {
    ASSERT_TRUE(parse("<Process><SUB_GRP Name='a'><SUB_GRP Name='b'><CUSTOM_FOLDER Name='c'/></SUB_GRP>"
                      "<CUSTOM_FOLDER Name='d'><SUB_GRP Name='e'/></CUSTOM_FOLDER></SUB_GRP></Process>"));
    EXPECT_EQ("56:(176:Favourites 178:Last Opened 71:a(71:b(179:c) 179:d(71:e)))", treeOf(process));
}

TEST_F(Favourites, BothFoldersOfTheProcessAreFoundFromAnyDepth) {
    ASSERT_TRUE(parse("<Process><SUB_GRP Name='a'><FAVOURITES Name='F'><HISTORY Name='H'><SUB_GRP Name='b'/>"
                      "</HISTORY></FAVOURITES></SUB_GRP></Process>"));
    EXPECT_EQ("56:(176:F 178:H(71:b) 71:a)", treeOf(process));
}

TEST_F(Favourites, DocumentsGoIntoTheFolderNamedByTheirElement) {
    ASSERT_TRUE(parse("<Process><FAVOURITES Name='Favourites'><DOCUMENT Name='x' Opened='true' Type='3'/>"
                      "<CUSTOM_FOLDER Name='c'><DOCUMENT Name='y' Opened='1'/></CUSTOM_FOLDER></FAVOURITES>"
                      "<HISTORY Name='Last Opened'><DOCUMENT Name='z' Opened='Yes' Type='-2'/></HISTORY></Process>"));
    EXPECT_EQ("x+3@Favourites y+0@c z+-2@Last Opened ", documents());
    EXPECT_EQ("56:(176:Favourites(177:x 179:c(177:y)) 178:Last Opened(177:z))", treeOf(process));
}

TEST_F(Favourites, DocumentsThatAreNotOpenedAreIgnored) {
    factory.asked.clear();
    ASSERT_TRUE(parse("<Process><FAVOURITES Name='Favourites'><DOCUMENT Name='a' Opened='false' Type='1'/>"
                      "<DOCUMENT Name='b' Type='1'/><DOCUMENT Name='c' Opened='what'/><DOCUMENT Name='d' Opened=''/>"
                      "<DOCUMENT Name='e' Opened='N'/></FAVOURITES></Process>"));
    EXPECT_EQ("56:(176:Favourites 178:Last Opened)", treeOf(process));
    EXPECT_TRUE(factory.asked.empty());
}

TEST_F(Favourites, TheSearchForTheFolderBeginsAboveTheNode) {
    // The first folder of the name in the order of the chain, newest first: a later one of the same name wins.
    ASSERT_TRUE(parse("<Process Name='P'><SUB_GRP Name='a'><SUB_GRP Name='same'><DOCUMENT Name='x' Opened='1'/>"
                      "</SUB_GRP></SUB_GRP><SUB_GRP Name='same'><DOCUMENT Name='y' Opened='1'/></SUB_GRP></Process>"));
    EXPECT_EQ("56:(176:Favourites 178:Last Opened 71:a(71:same(177:x)) 71:same(177:y))", treeOf(process));
    // One level up is not the whole tree, but the one that is named like its parent is found there.
    ASSERT_TRUE(parse("<Process><SUB_GRP Name='twin'><SUB_GRP Name='twin'><DOCUMENT Name='z' Opened='1'/></SUB_GRP>"
                      "</SUB_GRP></Process>"));
    EXPECT_EQ("x+0@same y+0@same z+0@twin ", documents());
    IFCNode* const outer = CFCNodeHelper::FindNodeByCaption(L"twin", process);
    EXPECT_STREQ(L"z", outer->GetChild()->GetNodeCaption()) << "in the outer one";
}

TEST_F(Favourites, ADocumentWithoutAFolderIsNobodys) {
    ASSERT_TRUE(parse("<Process Name='P'><DOCUMENT Name='at the root' Opened='true' Type='4'/>"
                      "<CUSTOM_FOLDER><DOCUMENT Name='nameless' Opened='true'/></CUSTOM_FOLDER></Process>"));
    EXPECT_EQ("at the root+4@nowhere nameless+0@nowhere ", documents());
    EXPECT_EQ("56:(176:Favourites 178:Last Opened 179:)", treeOf(process));
}

TEST_F(Favourites, WhatIsInsideADocumentIsNotRead) {
    ASSERT_TRUE(parse("<Process><FAVOURITES Name='F'><DOCUMENT Name='x' Opened='1'><SUB_GRP Name='g'/></DOCUMENT>"
                      "</FAVOURITES></Process>"));
    EXPECT_EQ("56:(176:F(177:x) 178:Last Opened)", treeOf(process));
}

TEST_F(Favourites, ProcessesAreWrittenAndNotRead) {
    factory.asked.clear();
    ASSERT_TRUE(parse("<Process><PROCESS Name='p'><SUB_GRP Name='in'/></PROCESS><process-definition Name='q'/>"
                      "<sub_grp Name='r'/><!-- c -->text<other><SUB_GRP Name='s'/></other></Process>"));
    EXPECT_TRUE(factory.asked.empty());
    EXPECT_EQ("56:(176:Favourites 178:Last Opened)", treeOf(process));
}

TEST_F(Favourites, ATreeWithoutAProcessHasNoFavourites) {
    IFCNode* const folder = factory.Create(71);
    folder->SetNodeCaption(L"top");
    ASSERT_TRUE(parse("<r><FAVOURITES Name='F'><SUB_GRP Name='a'/></FAVOURITES><HISTORY><SUB_GRP Name='b'/></HISTORY>"
                      "<SUB_GRP Name='c'/></r>",
                      folder));
    EXPECT_EQ("71:top(71:c)", treeOf(folder));
}

TEST_F(Favourites, TheFoldersOfAWorkflowProcessAreFilledToo) {
    IFCNode* const workflow = factory.Create(160);
    ASSERT_TRUE(parse("<Process><FAVOURITES Name='F'><SUB_GRP Name='a'/></FAVOURITES></Process>", workflow));
    EXPECT_EQ("160:(176:F(71:a) 178:Last Opened)", treeOf(workflow));
}

TEST_F(Favourites, ASecondFileAddsItsEntries) {
    ASSERT_TRUE(parse("<P><FAVOURITES Name='F'><SUB_GRP Name='a'/></FAVOURITES></P>"));
    ASSERT_TRUE(parse("<P><FAVOURITES Name='G'><SUB_GRP Name='a'/></FAVOURITES></P>"));
    EXPECT_EQ("56:(176:G(71:a 71:a) 178:Last Opened)", treeOf(process));
}

TEST_F(Favourites, WhatCannotBeReadSaysSo) {
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = process;
    for (TuString const& path : {scratch.text("missing.xml"), scratch.text(), file("<Process><SUB_GRP/>")})
        EXPECT_EQ("Init failed\n", printedBy([&] { EXPECT_FALSE(reader.Parse(path, &node)); }));
    IFCNode* none = nullptr;
    EXPECT_EQ("", printedBy([&] {
                  EXPECT_FALSE(reader.Parse(nullptr, &node));
                  EXPECT_FALSE(reader.Parse(L"", &node));
                  EXPECT_FALSE(reader.Parse(file("<P/>"), nullptr));
                  EXPECT_FALSE(reader.Parse(file("<P/>"), &none));
              }));
    EXPECT_EQ(process, node);
    EXPECT_EQ("56:(176:Favourites 178:Last Opened)", treeOf(process));
}

TEST_F(Favourites, NodesThatTheFactoryDoesNotMakeAreLeftOut) {
    EmptyFactory empty;
    CFCFavouriteReader reader;
    IFCNode* node = process;
    for (CFCNodeFactory* const made : std::initializer_list<CFCNodeFactory*>{nullptr, &empty}) {
        reader.SetNodeFactory(made);
        ASSERT_TRUE(reader.Parse(
            file("<P><SUB_GRP Name='a'/><CUSTOM_FOLDER Name='b'/><FAVOURITES Name='F'><DOCUMENT Name='x' Opened='1'/>"
                 "</FAVOURITES></P>"),
            &node));
        EXPECT_EQ("56:(176:F 178:Last Opened)", treeOf(process));
    }
}

TEST_F(Favourites, LoadAndPropertiesTakeAnyElementAndNode) {
    OpenFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Initialize(file("<r Name='root' Opened='true'><SUB_GRP Name='a'/></r>")));
    EXPECT_FALSE(reader.Load(nullptr, process));
    EXPECT_FALSE(reader.Load(reader.root(), nullptr));
    EXPECT_TRUE(reader.Load(reader.root(), process));
    EXPECT_EQ("56:(176:Favourites 178:Last Opened 71:a)", treeOf(process));
    IFCNode* const file = factory.Create(70);
    reader.LoadPropertiesLite(reader.root(), file);
    EXPECT_STREQ(L"root", file->GetNodeCaption());
    EXPECT_STREQ(L"root", file->GetNodeId());
    reader.LoadPropertiesLite(nullptr, file);
    reader.LoadPropertiesLite(reader.root(), nullptr);
    EXPECT_STREQ(L"root", file->GetNodeId());
}

TEST_F(Favourites, StepsOfADerivedReaderAreTaken) {
    struct HostReader : CFCFavouriteReader {
        void LoadPropertiesLite(xercesc::DOMElement*, IFCNode*) override { ++properties; }
        int properties = 0;
    };
    HostReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = process;
    ASSERT_TRUE(
        reader.Parse(file("<P><SUB_GRP/><CUSTOM_FOLDER/><FAVOURITES/><HISTORY/><DOCUMENT Opened='true'/></P>"), &node));
    EXPECT_EQ(4, reader.properties);
}

TEST_F(Favourites, ReadersDeriveAndCopy) {
    EXPECT_TRUE((std::is_base_of_v<CFCReader, CFCFavouriteReader>));
    EXPECT_EQ(sizeof(CFCReader), sizeof(CFCFavouriteReader));
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    CFCFavouriteReader const copy(reader);
    CFCFavouriteReader assigned;
    assigned = copy;
    IFCNode* node = process;
    EXPECT_TRUE(assigned.Parse(file("<P><SUB_GRP Name='a'/></P>"), &node));
    EXPECT_EQ("56:(176:Favourites 178:Last Opened 71:a)", treeOf(process)) << "the factory goes along";
}

// --- Writing ---

TEST_F(Favourites, EachKindHasItsElement) {
    struct Row {
        int type;
        char const* text;
    };
    for (Row const& row :
         {Row{176, "<FAVOURITES Name=\"n\"/>"}, Row{178, "<HISTORY Name=\"n\"/>"}, Row{71, "<SUB_GRP Name=\"n\"/>"},
          Row{177, "<DOCUMENT Name=\"n\" Opened=\"false\" Type=\"0\"/>"}, Row{179, "<CUSTOM_FOLDER Name=\"n\"/>"}}) {
        flowmere::test::Tree const folder(CFCNodeFactory().Create(179));
        IFCNode* const node = addChild(folder.get(), row.type == 178 ? 71 : row.type, L"", L"n");
        node->SetNodeType(row.type);
        EXPECT_EQ(std::string("\n\n  ") + row.text + "\n\n", writtenInside(folder.get())) << row.type;
    }
}

TEST_F(Favourites, ProcessesHaveTheirElementsAndFolders) {
    flowmere::test::Tree const folder(CFCNodeFactory().Create(179));
    addChild(folder.get(), 56, L"", L"p");
    addChild(folder.get(), 160, L"", L"q");
    EXPECT_EQ("\n\n  <PROCESS Name=\"p\">\n    <FAVOURITES Name=\"Favourites\"/>\n    <HISTORY Name=\"Last Opened\"/>\n"
              "  </PROCESS>\n\n  <process-definition Name=\"q\">\n    <FAVOURITES Name=\"Favourites\"/>\n"
              "    <HISTORY Name=\"Last Opened\"/>\n  </process-definition>\n\n",
              writtenInside(folder.get()));
}

TEST_F(Favourites, OtherKindsAreLeftOutWithAllBelowThem) {
    for (int const type : {55, 57, 58, 61, 69, 70, 72, 79, 80, 150, 161, 170, 171, 172, 182}) {
        flowmere::test::Tree const folder(CFCNodeFactory().Create(179));
        addChild(addChild(folder.get(), type, L"", L"n"), 179, L"", L"below");
        EXPECT_EQ(emptyRoot("Name=\"\" "), write(folder.get())) << type;
        flowmere::test::Tree const root(CFCNodeFactory().Create(type));
        EXPECT_EQ(emptyRoot(""), write(root.get())) << type;
    }
}

TEST_F(Favourites, WholeFavouritesAreWritten) {
    process->SetNodeCaption(L"Plates & Beams");
    CFCFavouriteNode* const favourites = process->GetFavouriteNode();
    addDocument(favourites, L"first.bpt", true, 2);
    addDocument(favourites, L"closed.bpt", false, 1);
    IFCNode* const custom = addChild(favourites, 179, L"", L"Beams");
    addDocument(custom, L"beam.bpt", true);
    addChild(custom, 179, L"", L"Inner");
    IFCNode* const plain = addChild(favourites, 71, L"", L"Plain");
    addDocument(plain, L"lost.bpt", true);
    addDocument(process->GetHistoryNode(), L"open.bpt", true, 3);
    addDocument(process->GetHistoryNode(), L"shut.bpt", false, 3);
    addChild(process, 57, L"Block", L"Block");
    expectGolden("favourites.xml", write(process));
    EXPECT_EQ(write(process, true), write(process, false)) << "whether the write is deep does not count";
}

TEST_F(Favourites, PlainFoldersGoWithoutTheirChildren) {
    IFCNode* const plain = factory.Create(71);
    plain->SetNodeCaption(L"a");
    addChild(plain, 179, L"", L"b");
    EXPECT_EQ(emptyRoot("Name=\"a\" "), write(plain));
    plain->SetNodeType(178);
    EXPECT_EQ("\n\n  <CUSTOM_FOLDER Name=\"b\"/>\n\n", writtenInside(plain));
}

TEST_F(Favourites, LastOpenedKeepsOpenDocumentsOnly) {
    struct Row {
        wchar_t const* folder;
        bool isOpened;
        bool isWritten;
    };
    for (Row const& row :
         {Row{L"Last Opened", true, true}, Row{L"Last Opened", false, false}, Row{L"last opened", false, true},
          Row{L"Last Opened ", false, true}, Row{L"", false, true}, Row{L"Favourites", false, true}}) {
        flowmere::test::Tree const folder(CFCNodeFactory().Create(179));
        folder->SetNodeCaption(row.folder);
        addDocument(folder.get(), L"d", row.isOpened);
        EXPECT_EQ(row.isWritten, write(folder.get()).find("<DOCUMENT") != std::string::npos)
            << narrow(row.folder) << row.isOpened;
    }
}

TEST_F(Favourites, AMarkForDeletionDoesNotCount) {
    flowmere::test::Tree const folder(CFCNodeFactory().Create(179));
    CFCDocumentNode* const document = addDocument(folder.get(), L"d", true);
    document->SetDeleted(true);
    ASSERT_TRUE(document->IsDeleted());
    EXPECT_EQ("\n\n  <DOCUMENT Name=\"d\" Opened=\"true\" Type=\"0\"/>\n\n", writtenInside(folder.get()));
}

TEST_F(Favourites, AHostMayRefuseAnElement) {
    struct HostWriter : CFCFavouriteWriter {
        bool GetObjectType(IFCNode* node, TuString& type) override {
            return node->GetNodeType() != 179 && CFCFavouriteWriter::GetObjectType(node, type);
        }
    };
    addDocument(addChild(process->GetFavouriteNode(), 179, L"", L"folder"), L"d", true);
    HostWriter writer;
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), process, true));
    std::string const text = scratch.read("out.xml");
    EXPECT_NE(std::string::npos, text.find("<FAVOURITES Name=\"Favourites\"/>")) << text;
    EXPECT_EQ(std::string::npos, text.find("<DOCUMENT"));
}

TEST_F(Favourites, ADocumentMayBeTheRoot) {
    CFCDocumentNode document;
    document.SetNodeCaption(L"d");
    EXPECT_EQ(emptyRoot("Name=\"d\" Opened=\"false\" Type=\"0\" "), write(&document));
}

TEST_F(Favourites, DocumentsOfAnotherClassHaveNoState) {
    flowmere::test::Tree const folder(CFCNodeFactory().Create(179));
    addChild(folder.get(), 71, L"", L"d")->SetNodeType(177);
    EXPECT_EQ("\n\n  <DOCUMENT Name=\"d\"/>\n\n", writtenInside(folder.get()));
}

TEST_F(Favourites, OpenDocumentsReadBackAndClosedOnesDoNot) {
    CFCFavouriteNode* const favourites = process->GetFavouriteNode();
    addDocument(favourites, L"open", true, 7);
    addDocument(favourites, L"closed", false, 8);
    addDocument(addChild(favourites, 179, L"", L"folder"), L"inner", true, 9);
    addDocument(process->GetHistoryNode(), L"last", true);
    std::string const text = write(process);
    EXPECT_NE(std::string::npos, text.find("closed"));
    IFCNode* const again = factory.Create(56);
    ASSERT_TRUE(parse(text, again));
    EXPECT_EQ("56:(176:Favourites(177:open 179:folder(177:inner)) 178:Last Opened(177:last))", treeOf(again));
    EXPECT_EQ("open+7@Favourites inner+9@folder last+0@Last Opened ", documents());
    IFCNode* const third = factory.Create(56);
    ASSERT_TRUE(parse(write(again), third));
    EXPECT_EQ(write(again), write(third));
}

TEST_F(Favourites, WritingNeedsAPathANodeAndAnElement) {
    CFCFavouriteWriter writer;
    EXPECT_FALSE(writer.WriteFile(nullptr, process, true));
    EXPECT_FALSE(writer.WriteFile(L"", process, true));
    EXPECT_FALSE(writer.WriteFile(scratch.text("out.xml"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.xml"));
    writer.WriteObject(nullptr, nullptr, nullptr);
    writer.WriteObject(process, nullptr, nullptr);
    writer.WriteProperties(nullptr, nullptr);
    writer.WriteProperties(process, nullptr);
}

TEST_F(Favourites, OverridesOfADerivedWriterAreTakenAtEveryLevel) {
    struct HostWriter : CFCFavouriteWriter {
        void WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) override {
            ++objects;
            CFCFavouriteWriter::WriteObject(node, parent, self);
        }
        int objects = 0;
    };
    addDocument(process->GetFavouriteNode(), L"d", true);
    HostWriter writer;
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), process, false));
    EXPECT_EQ(4, writer.objects);
    CFCFavouriteWriter const copy(writer);
    CFCFavouriteWriter assigned;
    assigned = copy;
    EXPECT_TRUE((std::is_base_of_v<CFCWriter, CFCFavouriteWriter>));
    EXPECT_TRUE(assigned.WriteFile(scratch.text("again.xml"), process, false));
    EXPECT_EQ(scratch.read("out.xml"), scratch.read("again.xml"));
}

TEST_F(Favourites, DeepTreesAreWrittenAsFarAsTheyCanBeRead) {
    IFCNode* inner = process->GetFavouriteNode();
    for (int level = 0; level < 3000; ++level)
        inner = addChild(inner, 179, L"", L"f");
    IFCNode* const again = factory.Create(56);
    ASSERT_TRUE(parse(write(process), again));
    EXPECT_GT(CFCNodeHelper::GetBlockCount(again), 1000);
}
