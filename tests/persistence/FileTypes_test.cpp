#include "EnvironmentGuard.h"
#include "TestSupport.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCFileTypeListWriter.h"

#include <filesystem>
#include <memory>
#include <string>

using flowmere::test::narrow;

namespace {

struct TreeDeleter {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};
template <typename Node>
using Tree = std::unique_ptr<Node, TreeDeleter>;

struct FileTypes : flowmere::test::ScratchTest {
    flowmere::test::EnvironmentGuard environment;
    CFCNodeFactory factory;
    Tree<CFCDataTypeNode> list{dynamic_cast<CFCDataTypeNode*>(factory.Create(81))};

    bool parse(std::string_view xml) {
        scratch.write("types.xml", xml);
        CFCFileTypeListReader reader;
        reader.SetNodeFactory(&factory);
        return reader.Parse(scratch.text("types.xml"), list.get());
    }
    // The captions in file order.
    std::string captions() const {
        std::string all;
        for (IFCNode* child = list->GetChild(); child; child = child->GetNext()) {
            all = narrow(child->GetNodeCaption()) + " " + all;
        }
        return all;
    }
    CFCFileTypeNode* find(wchar_t const* caption) const {
        return dynamic_cast<CFCFileTypeNode*>(CFCNodeHelper::FindNodeByCaption(caption, list.get()));
    }
    std::string write(IFCNode* node, bool deep = true) {
        CFCFileTypeListWriter writer;
        EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), node, deep));
        return scratch.read("out.xml");
    }
};

constexpr char kHead[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n";
constexpr char kXmlns[] = " xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"";

} // namespace

// --- Reading ---

TEST_F(FileTypes, EveryAttributeIsRead) {
    ASSERT_TRUE(parse("<FILETYPES><FILETYPE name='Mesh' id='12' mimeType='text/mesh' extension='msh' "
                      "description='A mesh' isModified='true' isDeleted='true'/></FILETYPES>"));
    CFCFileTypeNode* const node = find(L"Mesh");
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(83, node->GetNodeType());
    EXPECT_STREQ(L"Mesh", node->GetFileTypeName());
    EXPECT_EQ(12, node->GetFileTypeID());
    EXPECT_STREQ(L"text/mesh", node->GetMimeType());
    EXPECT_STREQ(L"msh", node->GetFileTypeExtension());
    EXPECT_STREQ(L"A mesh", node->GetFileTypeDescription());
    EXPECT_TRUE(node->IsModified());
    EXPECT_TRUE(node->IsDeleted());
    EXPECT_EQ(list.get(), node->GetParentNode());
}

TEST_F(FileTypes, DefaultsOfAbsentAttributes) {
    ASSERT_TRUE(parse("<F><FILETYPE name='Mesh'/></F>"));
    CFCFileTypeNode* const node = find(L"Mesh");
    ASSERT_NE(nullptr, node);
    EXPECT_EQ(0, node->GetFileTypeID());
    EXPECT_STREQ(L"", node->GetMimeType());
    EXPECT_STREQ(L"", node->GetFileTypeExtension());
    EXPECT_STREQ(L"", node->GetFileTypeDescription());
    EXPECT_FALSE(node->IsModified());
    EXPECT_FALSE(node->IsDeleted());
}

TEST_F(FileTypes, OtherElementsAreSkipped) {
    ASSERT_TRUE(parse("<F><OTHER name='x'/><!-- c --><FILETYPE name='a'><FILETYPE name='inner'/></FILETYPE>"
                      "<filetype name='y'/>text<FILETYPE name='b'/></F>"));
    EXPECT_EQ("a b ", captions());
    EXPECT_EQ(nullptr, find(L"inner"));
}

TEST_F(FileTypes, NewAndKnownNodesHaveTheIdOfTheList) {
    struct Named : CFCDataTypeNode {
        wchar_t const* GetNodeId() override { return id; }
        wchar_t const* id = L"list-id";
    };
    Tree<Named> const named(new Named);
    named->SetNodeType(81);
    scratch.write("types.xml", "<F><FILETYPE name='a'/></F>");
    CFCFileTypeListReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(scratch.text("types.xml"), named.get()));
    IFCNode* const node = named->GetChild();
    EXPECT_STREQ(L"list-id", node->GetNodeId());
    named->id = L"other-id";
    ASSERT_TRUE(reader.Parse(scratch.text("types.xml"), named.get()));
    EXPECT_EQ(node, named->GetChild());
    EXPECT_STREQ(L"other-id", node->GetNodeId());
}

TEST_F(FileTypes, ASecondFileOverridesByNameAndKeepsThePlace) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a' id='1' extension='x' description='old' isModified='true'/>"
                      "<FILETYPE name='b' id='2'/></F>"));
    CFCFileTypeNode* const a = find(L"a");
    ASSERT_TRUE(parse("<F><FILETYPE name='c' id='3'/><FILETYPE name='a' id='10' extension='y'/></F>"));
    EXPECT_EQ(a, find(L"a"));
    EXPECT_EQ("a b c ", captions());
    EXPECT_EQ(10, a->GetFileTypeID());
    EXPECT_STREQ(L"y", a->GetFileTypeExtension());
    EXPECT_STREQ(L"", a->GetFileTypeDescription()) << "an absent text clears";
    EXPECT_FALSE(a->IsModified());
}

TEST_F(FileTypes, NamesAreComparedWithTheirCase) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a'/><FILETYPE name='A'/><FILETYPE name='a' id='5'/></F>"));
    EXPECT_EQ("a A ", captions());
    EXPECT_EQ(5, find(L"a")->GetFileTypeID());
}

TEST_F(FileTypes, TypesWithoutNameAreMadeAndNeverMerge) {
    ASSERT_TRUE(parse("<F><FILETYPE id='1'/><FILETYPE name='' id='2'/></F>"));
    IFCNode* const newest = list->GetChild();
    ASSERT_NE(nullptr, newest);
    ASSERT_NE(nullptr, newest->GetNext());
    EXPECT_STREQ(L"", newest->GetNodeCaption());
    EXPECT_STREQ(L"", newest->GetNext()->GetNodeCaption());
    EXPECT_EQ(2, dynamic_cast<CFCFileTypeNode*>(newest)->GetFileTypeID());
    EXPECT_EQ(nullptr, newest->GetNext()->GetNext());
}

TEST_F(FileTypes, ATypeNamedLikeItsGroupMakesNothing) {
    list->SetNodeCaption(L"Group");
    ASSERT_TRUE(parse("<F><FILETYPE name='Group' id='1'/><FILETYPE name='b'/></F>"));
    EXPECT_STREQ(L"Group", list->GetNodeCaption());
    EXPECT_EQ("b ", captions());
}

TEST_F(FileTypes, FlagsTakeTheirUsualForms) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a' isModified='1' isDeleted='Yes'/>"
                      "<FILETYPE name='b' isModified='maybe' isDeleted=''/></F>"));
    EXPECT_TRUE(find(L"a")->IsModified());
    EXPECT_TRUE(find(L"a")->IsDeleted());
    EXPECT_FALSE(find(L"b")->IsModified());
    EXPECT_FALSE(find(L"b")->IsDeleted());
}

TEST_F(FileTypes, ANullPathIsTheCommonFile) {
    CFCFileTypeListReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_FALSE(reader.Parse(nullptr, list.get())) << "no base path";
    CFCEnvironment::SetBasePath(scratch.text());
    EXPECT_FALSE(reader.Parse(nullptr, list.get())) << "no file";
    scratch.write("FileTypes.xml", "<F><FILETYPE name='common'/></F>");
    EXPECT_TRUE(reader.Parse(nullptr, list.get()));
    EXPECT_EQ("common ", captions());
}

TEST_F(FileTypes, ParseNeedsAPathAFileAListAndWellFormedXml) {
    scratch.write("good.xml", "<F/>");
    scratch.write("bad.xml", "<F>");
    CFCFileTypeListReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_FALSE(reader.Parse(L"", list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text("missing.xml"), list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text(), list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), nullptr));
    EXPECT_FALSE(reader.Parse(scratch.text("bad.xml"), list.get()));
    EXPECT_TRUE(reader.Parse(scratch.text("good.xml"), list.get()));
    EXPECT_FALSE(reader.Load(nullptr, list.get()));
    reader.LoadPropertiesLite(nullptr, static_cast<CFCFileTypeNode*>(nullptr));
    EXPECT_EQ(nullptr, list->GetChild());
}

TEST_F(FileTypes, WithoutAFactoryOnlyKnownTypesAreFilled) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a' id='1'/></F>"));
    scratch.write("more.xml", "<F><FILETYPE name='b' id='2'/><FILETYPE name='a' id='3'/></F>");
    CFCFileTypeListReader reader;
    EXPECT_TRUE(reader.Parse(scratch.text("more.xml"), list.get()));
    EXPECT_EQ("a ", captions());
    EXPECT_EQ(3, find(L"a")->GetFileTypeID());
}

TEST_F(FileTypes, TheReaderKeepsTheListItFills) {
    struct Open : CFCFileTypeListReader {
        CFCDataTypeNode* filled() { return m_pList; }
    } reader;
    EXPECT_EQ(nullptr, reader.filled());
    scratch.write("good.xml", "<F/>");
    EXPECT_TRUE(reader.Parse(scratch.text("good.xml"), list.get()));
    EXPECT_EQ(list.get(), reader.filled());
    Open const copy(reader);
    EXPECT_EQ(list.get(), Open(copy).filled());
}

// --- Writing ---

TEST_F(FileTypes, AWrittenList) {
    ASSERT_TRUE(parse("<F><FILETYPE name='Mesh' id='-1' mimeType='m' extension='e' description='d' isModified='true'/>"
                      "<FILETYPE name='gone' isDeleted='true'/></F>"));
    list->SetNodeCaption(L"never written");
    EXPECT_EQ(std::string(kHead) + "<FILETYPES" + kXmlns +
                  ">\n"
                  "\n"
                  "  <FILETYPE description=\"d\" extension=\"e\" id=\"-1\" isDeleted=\"false\" isModified=\"true\" "
                  "mimeType=\"m\" name=\"Mesh\"/>\n"
                  "\n"
                  "  <FILETYPE description=\"\" extension=\"\" id=\"0\" isDeleted=\"true\" isModified=\"false\" "
                  "mimeType=\"\" name=\"gone\"/>\n"
                  "\n"
                  "</FILETYPES>\n",
              write(list.get()));
}

TEST_F(FileTypes, TheDeepFlagChangesNothing) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a'/></F>"));
    EXPECT_EQ(write(list.get(), true), write(list.get(), false));
}

TEST_F(FileTypes, ARoundTripKeepsEverything) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a' id='1' mimeType='m' extension='e' description='d' isModified='true'/>"
                      "<FILETYPE name='b' isDeleted='true'/></F>"));
    std::string const once = write(list.get());
    list.reset(dynamic_cast<CFCDataTypeNode*>(factory.Create(81)));
    ASSERT_TRUE(parse(once));
    EXPECT_EQ("a b ", captions());
    EXPECT_EQ(once, write(list.get()));
}

TEST_F(FileTypes, AFileTypeAsTheRootCarriesItsAttributes) {
    Tree<CFCFileTypeNode> const node(dynamic_cast<CFCFileTypeNode*>(factory.Create(83)));
    node->SetFileTypeName(L"Mesh");
    node->SetFileTypeID(7);
    EXPECT_EQ(std::string(kHead) +
                  "<FILETYPES description=\"\" extension=\"\" id=\"7\" isDeleted=\"false\" isModified=\"false\" "
                  "mimeType=\"\" name=\"Mesh\"" +
                  kXmlns + "/>\n",
              write(node.get()));
}

TEST_F(FileTypes, ObjectTypes) {
    struct Row {
        int type;
        wchar_t const* name;
    };
    CFCFileTypeListWriter writer;
    for (Row const& row : {Row{81, L"FILETYPES"}, Row{83, L"FILETYPE"}, Row{0, L"UnKnown"}, Row{80, nullptr},
                           Row{82, nullptr}, Row{57, nullptr}}) {
        list->SetNodeType(row.type);
        TuString name(L"before");
        EXPECT_EQ(row.name != nullptr, writer.GetObjectType(list.get(), name)) << row.type;
        EXPECT_STREQ(row.name ? row.name : L"before", name) << row.type;
    }
    TuString name(L"before");
    EXPECT_FALSE(writer.GetObjectType(nullptr, name));
}

TEST_F(FileTypes, OtherNodesWriteNothing) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a'/><FILETYPE name='b'/><FILETYPE name='c'/></F>"));
    list->GetChild()->SetNodeType(57);
    list->GetChild()->GetNext()->SetNodeType(0);
    std::string const text = write(list.get());
    EXPECT_NE(std::string::npos, text.find("name=\"a\""));
    EXPECT_NE(std::string::npos, text.find("<UnKnown/>"));
    EXPECT_EQ(std::string::npos, text.find("name=\"b\""));
    EXPECT_EQ(std::string::npos, text.find("name=\"c\""));
}

TEST_F(FileTypes, GroupsInsideGroupsAreLists) {
    ASSERT_TRUE(parse("<F><FILETYPE name='a'/></F>"));
    IFCNode* const inner = factory.Create(81);
    list->AppendChild(inner, false);
    EXPECT_NE(std::string::npos, write(list.get()).find("<FILETYPES/>"));
}

TEST_F(FileTypes, ATypeCodeOnANodeOfAnotherClassWritesAnEmptyElement) {
    IFCNode* const wrong = factory.Create(80);
    wrong->SetNodeType(83);
    list->AppendChild(wrong, false);
    EXPECT_NE(std::string::npos, write(list.get()).find("<FILETYPE/>"));
}

TEST_F(FileTypes, WriteFileNeedsAPathAndANode) {
    CFCFileTypeListWriter writer;
    EXPECT_FALSE(writer.WriteFile(L"", list.get(), true));
    EXPECT_FALSE(writer.WriteFile(nullptr, list.get(), true));
    EXPECT_FALSE(writer.WriteFile(scratch.text("out.xml"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.xml"));
    EXPECT_TRUE(writer.WriteFile(scratch.text("missing/out.xml"), list.get(), true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing"));
}

TEST_F(FileTypes, WriteFileKeepsItsArgumentsAlsoWhenItRefuses) {
    struct Open : CFCFileTypeListWriter {
        std::string kept() const {
            return narrow(m_strFilePath) + (m_bDeep ? " deep " : " flat ") + narrow(m_strRootName);
        }
    } writer;
    EXPECT_EQ(" flat FILETYPES", writer.kept());
    EXPECT_FALSE(writer.WriteFile(L"somewhere.xml", nullptr, true));
    EXPECT_EQ("somewhere.xml deep FILETYPES", writer.kept());
    EXPECT_FALSE(writer.WriteFile(L"", list.get(), false));
    EXPECT_EQ(" flat FILETYPES", writer.kept());
}

TEST_F(FileTypes, OverridesTakeEffectAtEveryLevel) {
    struct Counting : CFCFileTypeListWriter {
        void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override {
            ++children;
            CFCFileTypeListWriter::WriteChildren(node, element);
        }
        void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override {
            ++properties;
            CFCFileTypeListWriter::WriteProperties(node, element);
        }
        void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent,
                         XERCES_CPP_NAMESPACE::DOMNode* self) override {
            ++objects;
            CFCFileTypeListWriter::WriteObject(node, parent, self);
        }
        bool GetObjectType(IFCNode* node, TuString& out) override {
            ++types;
            return CFCFileTypeListWriter::GetObjectType(node, out);
        }
        int children = 0;
        int properties = 0;
        int objects = 0;
        int types = 0;
    } writer;
    ASSERT_TRUE(parse("<F><FILETYPE name='a'/><FILETYPE name='b'/></F>"));
    EXPECT_TRUE(writer.WriteFile(scratch.text("out.xml"), list.get(), true));
    EXPECT_EQ(1, writer.children);
    EXPECT_EQ(2, writer.properties);
    EXPECT_EQ(3, writer.objects);
    EXPECT_EQ(3, writer.types);
}

TEST_F(FileTypes, TheStepsOfTheWriterTakeNulls) {
    CFCFileTypeListWriter writer;
    writer.WriteObject(nullptr, nullptr, nullptr);
    writer.WriteObject(list.get(), nullptr, nullptr);
    writer.WriteChildren(nullptr, nullptr);
    writer.WriteProperties(nullptr, nullptr);
    writer.WriteProperties(list.get(), nullptr);
    writer.WritePropertiesRoot(nullptr, nullptr);
    writer.WritePropertiesRoot(list.get(), nullptr);
    CFCFileTypeListWriter const copy(writer);
    writer = copy;
    EXPECT_STREQ(L"", list->GetNodeCaption());
}
