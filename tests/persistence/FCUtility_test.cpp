#include "flowmere/persistence/FCUtility.h"

#include "CatalogTestSupport.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/persistence/FCHintsReader.h"
#include "flowmere/persistence/FCProcessListWriter.h"
#include "flowmere/workflow/ScheduleColumns.h"

#include <gmock/gmock.h>

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class CountingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override { captions.push_back(narrow(node->GetNodeCaption())); }

    std::vector<std::string> captions;
};

class ThrowingFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int) override { throw std::runtime_error("no node"); }
};

class FCUtilityCalls : public CatalogTest {
protected:
    FCUtilityCalls() { forget(); }
    ~FCUtilityCalls() override { forget(); }

    static void forget() {
        FCUtility::CFCHintsReader_BlockHints().clear();
        FCUtility::CFCHintsReader_ActionHints().clear();
        CFCEnvironment::SetBasePath(L"");
        FCUtility::CFCDataTypeListReader_RefreshDataTypes();
        flowmere::scheduleColumns() = flowmere::ScheduleColumns();
    }

    TuString write(std::filesystem::path const& name, std::string_view text) {
        scratch.write(name, text);
        return scratch.text(name);
    }
    // A native process with two blocks.
    TuString document() {
        Tree const tree(CFCNodeFactory().Create(56));
        tree->SetNodeCaption(L"Plant");
        addBlock(tree.get(), L"first");
        addBlock(tree.get(), L"second");
        EXPECT_TRUE(FCUtility::CFCWriter_WriteFile(scratch.text("plant.bpt"), tree.get(), true));
        return scratch.text("plant.bpt");
    }
    // A workflow folder with one task.
    TuString folder() {
        std::filesystem::create_directories(scratch / "flow");
        Tree const tree(CFCNodeFactory().Create(160));
        tree->SetNodeCaption(L"Flow");
        addChild(tree.get(), 150, L"step", L"Step");
        TuString const path = wideWithBackslashes(scratch / "flow" / "processdefinition.xml");
        EXPECT_TRUE(FCUtility::CFCProcessDefinitionWriter_WriteFile(path, tree.get(), true));
        return path;
    }
    TuString schedule() {
        return write("plan.xml", "<Project><Name>Plan</Name><Tasks><Task><UID>1</UID><Name>One</Name><Type>1</Type>"
                                 "<WBS>1</WBS></Task></Tasks></Project>");
    }

    template <typename Node>
    std::unique_ptr<Node, TreeEnd> make(int kind) {
        return std::unique_ptr<Node, TreeEnd>(dynamic_cast<Node*>(CFCNodeFactory().Create(kind)));
    }
};

// --- Each call does what its class does --------------------------------------------------------------------------

TEST_F(FCUtilityCalls, ReaderParse) {
    TuString const path = document();
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCReader_Parse(factory, path, &node, 16));
    Tree const tree(node);
    EXPECT_EQ("Plant", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("first second", captionsOf(tree.get()));
    EXPECT_FALSE(factory.asked.empty()) << "the caller's factory makes the nodes";
}

TEST_F(FCUtilityCalls, ReaderParseContainer) {
    TuString const path = document();
    CountingContainer container;
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCReader_ParseContainer(factory, &container, path, &node, 16));
    Tree const tree(node);
    EXPECT_THAT(container.captions, testing::IsSupersetOf({"first", "second"}));
    node = nullptr;
    ASSERT_TRUE(FCUtility::CFCReader_ParseContainer(factory, nullptr, path, &node, 16));
    Tree const other(node);
}

TEST_F(FCUtilityCalls, ReaderParseFollowsLinksToTheGivenDepth) {
    document();
    auto const linkTo = [&](char const* name) {
        return "<PROCESS Name='Outer'><PROCESS Name='Inner' FILE='" + (scratch / name).string() + "'/></PROCESS>";
    };
    write("middle.bpt", linkTo("plant.bpt"));
    TuString const outer = write("outer.bpt", linkTo("middle.bpt"));
    std::set<std::string> trees;
    for (int const depth : {-1, 0, 1, 2, 16}) {
        IFCNode* node = nullptr;
        ASSERT_TRUE(FCUtility::CFCReader_Parse(factory, outer, &node, depth));
        Tree const tree(node);
        CountingContainer container;
        node = nullptr;
        ASSERT_TRUE(FCUtility::CFCReader_ParseContainer(factory, &container, outer, &node, depth));
        Tree const toldTree(node);
        CFCReader reader;
        reader.SetNodeFactory(&factory);
        IFCNode* direct = nullptr;
        ASSERT_TRUE(reader.Parse(outer, &direct, depth));
        Tree const directTree(direct);
        EXPECT_EQ(treeOf(directTree.get()), treeOf(tree.get())) << depth;
        EXPECT_EQ(treeOf(directTree.get()), treeOf(toldTree.get())) << depth;
        trees.insert(treeOf(tree.get()));
    }
    EXPECT_THAT(trees, SizeIs(testing::Ge(3U))) << "the depth makes no difference";
}

TEST_F(FCUtilityCalls, ReaderLoadFileNode) {
    TuString const path = document();
    Tree const tree(CFCNodeFactory().Create(56));
    static_assert(std::is_void_v<decltype(FCUtility::CFCReader_LoadFileNode(factory, L"", nullptr, false))>);
    for (bool const flag : {false, true}) {
        Tree const block(CFCNodeFactory().Create(59));
        FCUtility::CFCReader_LoadFileNode(factory, path, block.get(), flag);
        CFCReader reader;
        reader.SetNodeFactory(&factory);
        Tree const direct(CFCNodeFactory().Create(59));
        reader.LoadFileNode(path, direct.get(), flag);
        EXPECT_EQ(treeOf(direct.get()), treeOf(block.get())) << flag;
        EXPECT_EQ(direct->IsLoaded(), block->IsLoaded()) << flag;
    }
}

TEST_F(FCUtilityCalls, WriterWriteFile) {
    Tree const tree(CFCNodeFactory().Create(56));
    tree->SetNodeCaption(L"Plant");
    addBlock(tree.get(), L"inner");
    ASSERT_TRUE(FCUtility::CFCWriter_WriteFile(scratch.text("flat.bpt"), tree.get(), false));
    ASSERT_TRUE(FCUtility::CFCWriter_WriteFile(scratch.text("deep.bpt"), tree.get(), true));
    EXPECT_THAT(scratch.read("flat.bpt"), Not(HasSubstr("inner")));
    EXPECT_THAT(scratch.read("deep.bpt"), HasSubstr("inner"));
}

TEST_F(FCUtilityCalls, WriterWriteFileGetVariableErrors) {
    Tree const tree(CFCNodeFactory().Create(56));
    addVariable(tree.get(), L"lost")->SetLinkPath(L"Gone.y");
    TuString errors(L"of before");
    EXPECT_TRUE(FCUtility::CFCWriter_WriteFileGetVariableErrors(scratch.text("a.bpt"), tree.get(), true, errors));
    EXPECT_EQ("Missing Variable .lost To Variable  To Variable Gone.y\n", narrow(errors));
    EXPECT_TRUE(FCUtility::CFCWriter_WriteFileGetVariableErrors(scratch.text("a.bpt"), tree.get(), true, errors));
    EXPECT_EQ(L"", errors) << "the link is gone now";
    errors = L"of before";
    EXPECT_FALSE(FCUtility::CFCWriter_WriteFileGetVariableErrors(L"", tree.get(), true, errors));
    EXPECT_EQ(L"", errors);
    errors = L"of before";
    EXPECT_FALSE(FCUtility::CFCWriter_WriteFileGetVariableErrors(scratch.text("b.bpt"), nullptr, true, errors));
    EXPECT_EQ(L"", errors);
}

TEST_F(FCUtilityCalls, WriterPathMayLieInTheTextForTheErrors) {
    Tree const tree(CFCNodeFactory().Create(56));
    TuString text = scratch.text("own.bpt");
    EXPECT_TRUE(FCUtility::CFCWriter_WriteFileGetVariableErrors(text, tree.get(), true, text));
    EXPECT_EQ(L"", text);
    EXPECT_TRUE(std::filesystem::exists(scratch / "own.bpt"));
}

TEST_F(FCUtilityCalls, WriterLoadAndFormatXML) {
    FCUtility::CFCWriter_LoadAndFormatXML(write("plain.xml", "<A><D>t</D></A>"));
    EXPECT_THAT(scratch.read("plain.for"), HasSubstr("\n  <D>t</D>\n"));
}

TEST_F(FCUtilityCalls, ProcessListReaderParse) {
    auto const list = make<CFCProcessList>(69);
    ASSERT_TRUE(FCUtility::CFCProcessListReader_Parse(
        factory, write("a.lst", "<P Name='Mine'><PROCESS Name='Beam' FILE='beam.bpt'/></P>"), list.get(), L"base"));
    EXPECT_EQ("Mine", narrow(list->GetNodeCaption()));
    EXPECT_EQ("Beam", captionsOf(list.get()));
    EXPECT_EQ("base", narrow(list->GetChild()->GetItemFileBaseDirectory()));
}

TEST_F(FCUtilityCalls, ProcessListWriterWriteFile) {
    auto const list = make<CFCProcessList>(69);
    IFCNode* const placed = addChild(list.get(), 70, L"p", L"Placed");
    placed->SetNewPath(true);
    placed->SetItemFilePath(L"placed.bpt");
    addChild(list.get(), 70, L"o", L"Other")->SetItemFilePath(L"other.bpt");
    auto const fileOf = [&](bool deep, bool writeAll, bool bpmList) {
        EXPECT_TRUE(
            FCUtility::CFCProcessListWriter_WriteFile(scratch.text("out.lst"), list.get(), deep, writeAll, bpmList));
        return scratch.read("out.lst");
    };
    for (bool const deep : {false, true}) {
        EXPECT_THAT(fileOf(deep, true, false), HasSubstr("Other"));
        EXPECT_THAT(fileOf(deep, false, false), Not(HasSubstr("Other")));
        EXPECT_EQ(fileOf(deep, true, false), fileOf(deep, true, true)) << "the kind of list is for other calls";
    }
}

TEST_F(FCUtilityCalls, DataTypeCatalog) {
    EXPECT_EQ(nullptr, FCUtility::CFCDataTypeListReader_GetDataTypeRootNode());
    write("DataTypes.xml", "<D><GROUP Name='All'><DATATYPE Name='Int' Type='Int'/></GROUP></D>");
    CFCEnvironment::SetBasePath(scratch.text());
    CFCDataTypeNode* const root = FCUtility::CFCDataTypeListReader_GetDataTypeRootNode();
    ASSERT_NE(nullptr, root);
    EXPECT_EQ("All", narrow(root->GetNodeCaption()));
    EXPECT_EQ(root, FCUtility::CFCDataTypeListReader_GetDataTypeRootNode());
    write("DataTypes.xml", "<D><GROUP Name='New'/></D>");
    FCUtility::CFCDataTypeListReader_RefreshDataTypes();
    ASSERT_NE(nullptr, FCUtility::CFCDataTypeListReader_GetDataTypeRootNode());
    EXPECT_EQ("New", narrow(FCUtility::CFCDataTypeListReader_GetDataTypeRootNode()->GetNodeCaption()));
}

TEST_F(FCUtilityCalls, FileTypeListWriterWriteFile) {
    Tree const group(CFCNodeFactory().Create(81));
    ASSERT_NE(nullptr, group);
    auto* const type = dynamic_cast<CFCFileTypeNode*>(addChild(group.get(), 83, L"mesh"));
    ASSERT_NE(nullptr, type);
    type->SetFileTypeName(L"Mesh");
    for (bool const deep : {false, true}) {
        ASSERT_TRUE(FCUtility::CFCFileTypeListWriter_WriteFile(scratch.text("types.xml"), group.get(), deep));
        EXPECT_THAT(scratch.read("types.xml"), HasSubstr("<FILETYPES"));
        EXPECT_THAT(scratch.read("types.xml"), HasSubstr("Mesh"));
    }
}

TEST_F(FCUtilityCalls, MimeTypeReaderParse) {
    auto const list = make<CFCMimeTypeNode>(86);
    ASSERT_TRUE(FCUtility::CFCMimeTypeReader_Parse(
        factory, write("mime.xml", "<M><MIMETYPE contentType='text/plain' description='Text'/></M>"), list.get()));
    EXPECT_THAT(childrenOf(list.get()), SizeIs(1));
}

TEST_F(FCUtilityCalls, HintsReader) {
    ASSERT_TRUE(FCUtility::CFCHintsReader_Parse(write("h.xml", "<H><FORK Block='b' Action='a'/></H>")));
    EXPECT_EQ(L"b", FCUtility::CFCHintsReader_BlockHints()[156]);
    EXPECT_EQ(L"a", FCUtility::CFCHintsReader_ActionHints()[156]);
    EXPECT_EQ(&CFCHintsReader::BlockHints(), &FCUtility::CFCHintsReader_BlockHints());
    EXPECT_EQ(&CFCHintsReader::ActionHints(), &FCUtility::CFCHintsReader_ActionHints());
}

TEST_F(FCUtilityCalls, APIHelpReaderParse) {
    auto const list = make<CFCProcessList>(69);
    ASSERT_TRUE(FCUtility::CFCAPIHelpReader_Parse(factory, write("help.xml", "<P Name='Help'><MODULE Name='m'/></P>"),
                                                  list.get()));
    EXPECT_EQ(170, list->GetNodeType());
    EXPECT_EQ("m", captionsOf(list.get()));
}

TEST_F(FCUtilityCalls, ManifestReaderAndWriter) {
    CFCPackageNode* package = nullptr;
    ASSERT_TRUE(FCUtility::CFCManifestReader_Parse(
        factory, write("in.mf", "<Manifest><MANIFEST_INFO Version='2.1' Build='7'/></Manifest>"), &package));
    ASSERT_NE(nullptr, package);
    EXPECT_EQ(L"2.1", package->version);
    for (bool const deep : {false, true}) {
        ASSERT_TRUE(FCUtility::CFCManifestWriter_WriteFile(scratch.text("out.mf"), package, deep));
        EXPECT_THAT(scratch.read("out.mf"), HasSubstr("MANIFEST_INFO"));
        EXPECT_THAT(scratch.read("out.mf"), HasSubstr("\"2.1\""));
    }
}

TEST_F(FCUtilityCalls, FavouriteReaderAndWriter) {
    Tree const process(CFCNodeFactory().Create(56));
    IFCNode* node = process.get();
    ASSERT_TRUE(FCUtility::CFCFavouriteReader_Parse(
        factory, write("in.xml", "<P><FAVOURITES Name='Mine'><CUSTOM_FOLDER Name='a'/></FAVOURITES></P>"), &node));
    EXPECT_EQ(process.get(), node);
    CFCFavouriteNode* const favourites = CFCPointerConverter::GetProcessNode(node)->GetFavouriteNode();
    EXPECT_EQ("Mine", narrow(favourites->GetNodeCaption()));
    EXPECT_EQ("a", captionsOf(favourites));
    for (bool const deep : {false, true}) {
        ASSERT_TRUE(FCUtility::CFCFavouriteWriter_WriteFile(scratch.text("out.xml"), node, deep));
        EXPECT_THAT(scratch.read("out.xml"), HasSubstr("<CUSTOM_FOLDER"));
    }
}

TEST_F(FCUtilityCalls, ProcessDefinitionReaderParse) {
    TuString const path = folder();
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCProcessDefinitionReader_Parse(factory, path, &node, 16));
    Tree const tree(node);
    EXPECT_EQ(160, tree->GetNodeType());
    EXPECT_NE(nullptr, tree->FindNodeSimple(L"step"));
}

TEST_F(FCUtilityCalls, ProcessDefinitionReaderParseContainer) {
    TuString const path = folder();
    CountingContainer container;
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCProcessDefinitionReader_ParseContainer(factory, &container, path, &node, 16));
    Tree const tree(node);
    EXPECT_THAT(container.captions, Not(IsEmpty()));
}

TEST_F(FCUtilityCalls, ProcessDefinitionReaderLoadFileNode) {
    TuString const path = folder();
    Tree const process(CFCNodeFactory().Create(160));
    IFCNode* const block = addChild(process.get(), 162, L"sub");
    ASSERT_TRUE(FCUtility::CFCProcessDefinitionReader_LoadFileNode(factory, path, block));
    EXPECT_NE(nullptr, block->FindNodeSimple(L"step"));
}

TEST_F(FCUtilityCalls, ProcessDefinitionWriterWriteFile) {
    folder();
    for (char const* const name : {"processdefinition.xml", "gpd.xml", "process.var"})
        EXPECT_TRUE(std::filesystem::exists(scratch / "flow" / name)) << name;
    EXPECT_THAT(scratch.read("flow/processdefinition.xml"), HasSubstr("step"));
    Tree const tree(CFCNodeFactory().Create(160));
    addChild(tree.get(), 150, L"step");
    ASSERT_TRUE(FCUtility::CFCProcessDefinitionWriter_WriteFile(
        wideWithBackslashes(scratch / "flow" / "processdefinition.xml"), tree.get(), false));
    EXPECT_THAT(scratch.read("flow/processdefinition.xml"), Not(HasSubstr("step")));
}

TEST_F(FCUtilityCalls, WorkFlowWriterWriteFile) {
    Tree const tasks(CFCNodeFactory().Create(160));
    addChild(tasks.get(), 150, L"step");
    Tree const applications(CFCNodeFactory().Create(168));
    addChild(applications.get(), 167, L"solver");
    ASSERT_TRUE(FCUtility::CFCWorkFlowWriter_WriteFile(scratch.text("w.xml"), tasks.get(), applications.get()));
    EXPECT_THAT(scratch.read("w.xml"), HasSubstr("solver"));
    EXPECT_THAT(scratch.read("w.xml"), HasSubstr("step"));
    ASSERT_TRUE(FCUtility::CFCWorkFlowWriter_WriteFile(scratch.text("w.xml"), tasks.get(), nullptr));
    EXPECT_THAT(scratch.read("w.xml"), Not(HasSubstr("solver")));
}

TEST_F(FCUtilityCalls, ScheduleReaderParseContainer) {
    CountingContainer container;
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCMSPReader_ParseContainer(factory, &container, schedule(), &node, 16));
    Tree const tree(node);
    EXPECT_EQ(EProjectType_MSP, tree->GetProjectType());
    EXPECT_THAT(container.captions, ElementsAre("One", "Plan", "Plan"));
    node = nullptr;
    ASSERT_TRUE(FCUtility::CFCMSPReader_ParseContainer(factory, nullptr, schedule(), &node, 16));
    Tree const other(node);
}

// --- Arguments that lead nowhere -----------------------------------------------------------------------------------

TEST_F(FCUtilityCalls, ReadersGiveFalseForPathsWithoutAFile) {
    write("broken.xml", "<A><B></A>");
    write("folder/broken/processdefinition.xml", "<A><B></A>");
    std::filesystem::create_directories(scratch / "folder" / "processdefinition.xml");
    IFCNode* const marker = reinterpret_cast<IFCNode*>(this);
    IFCNode* node = marker;
    auto* const packageMarker = reinterpret_cast<CFCPackageNode*>(this);
    CFCPackageNode* package = packageMarker;
    Tree const process(CFCNodeFactory().Create(160));
    IFCNode* favourites = process.get();
    auto const list = make<CFCProcessList>(69);
    auto const mimes = make<CFCMimeTypeNode>(86);
    CountingContainer container;
    using Call = std::function<bool(wchar_t const*)>;
    std::vector<std::pair<char const*, Call>> const calls = {
        {"CFCReader_Parse",
         [&](auto path) {
             return FCUtility::CFCReader_Parse(factory, path, &node, 16);
         }},
        {"CFCReader_ParseContainer",
         [&](auto path) {
             return FCUtility::CFCReader_ParseContainer(factory, &container, path, &node, 16);
         }},
        {"CFCProcessListReader_Parse",
         [&](auto path) {
             return FCUtility::CFCProcessListReader_Parse(factory, path, list.get(), L"base");
         }},
        {"CFCMimeTypeReader_Parse",
         [&](auto path) {
             return FCUtility::CFCMimeTypeReader_Parse(factory, path, mimes.get());
         }},
        {"CFCHintsReader_Parse",
         [&](auto path) {
             return FCUtility::CFCHintsReader_Parse(path);
         }},
        {"CFCAPIHelpReader_Parse",
         [&](auto path) {
             return FCUtility::CFCAPIHelpReader_Parse(factory, path, list.get());
         }},
        {"CFCManifestReader_Parse",
         [&](auto path) {
             return FCUtility::CFCManifestReader_Parse(factory, path, &package);
         }},
        {"CFCFavouriteReader_Parse",
         [&](auto path) {
             return FCUtility::CFCFavouriteReader_Parse(factory, path, &favourites);
         }},
        {"CFCProcessDefinitionReader_Parse",
         [&](auto path) {
             return FCUtility::CFCProcessDefinitionReader_Parse(factory, path, &node, 16);
         }},
        {"CFCProcessDefinitionReader_ParseContainer",
         [&](auto path) {
             return FCUtility::CFCProcessDefinitionReader_ParseContainer(factory, &container, path, &node, 16);
         }},
        {"CFCProcessDefinitionReader_LoadFileNode",
         [&](auto path) {
             return FCUtility::CFCProcessDefinitionReader_LoadFileNode(factory, path, process.get());
         }},
        {"CFCMSPReader_ParseContainer",
         [&](auto path) {
             return FCUtility::CFCMSPReader_ParseContainer(factory, &container, path, &node, 16);
         }},
    };
    TuString const paths[] = {TuString(),
                              scratch.text("missing.xml"),
                              scratch.text("missing/processdefinition.xml"),
                              scratch.text("folder"),
                              scratch.text("folder/processdefinition.xml"),
                              scratch.text("broken.xml"),
                              scratch.text("folder/broken/processdefinition.xml")};
    std::string const printed = printedBy([&] {
        for (auto const& [name, call] : calls) {
            EXPECT_FALSE(call(nullptr)) << name;
            for (TuString const& path : paths)
                EXPECT_FALSE(call(path)) << name << " " << narrow(path);
        }
    });
    EXPECT_THAT(printed, HasSubstr("Init failed"));
    EXPECT_EQ(marker, node);
    EXPECT_EQ(packageMarker, package);
    EXPECT_EQ(process.get(), favourites);
    EXPECT_THAT(childrenOf(list.get()), IsEmpty());
    EXPECT_THAT(childrenOf(mimes.get()), IsEmpty());
    EXPECT_THAT(container.captions, IsEmpty());
    EXPECT_THAT(FCUtility::CFCHintsReader_BlockHints(), IsEmpty());
}

TEST_F(FCUtilityCalls, ReadersGiveFalseWithoutAPlaceForTheResult) {
    TuString const native = document();
    TuString const flow = folder();
    TuString const plan = schedule();
    TuString const plain = write("plain.xml", "<A/>");
    IFCNode* none = nullptr;
    CountingContainer container;
    EXPECT_FALSE(FCUtility::CFCReader_Parse(factory, native, nullptr, 16));
    EXPECT_FALSE(FCUtility::CFCReader_ParseContainer(factory, &container, native, nullptr, 16));
    EXPECT_FALSE(FCUtility::CFCProcessListReader_Parse(factory, plain, nullptr, nullptr));
    EXPECT_FALSE(FCUtility::CFCMimeTypeReader_Parse(factory, plain, nullptr));
    EXPECT_FALSE(FCUtility::CFCAPIHelpReader_Parse(factory, plain, nullptr));
    EXPECT_FALSE(FCUtility::CFCManifestReader_Parse(factory, plain, nullptr));
    EXPECT_FALSE(FCUtility::CFCFavouriteReader_Parse(factory, plain, nullptr));
    EXPECT_FALSE(FCUtility::CFCFavouriteReader_Parse(factory, plain, &none));
    EXPECT_FALSE(FCUtility::CFCProcessDefinitionReader_Parse(factory, flow, nullptr, 16));
    EXPECT_FALSE(FCUtility::CFCProcessDefinitionReader_ParseContainer(factory, &container, flow, nullptr, 16));
    EXPECT_FALSE(FCUtility::CFCProcessDefinitionReader_LoadFileNode(factory, flow, nullptr));
    EXPECT_FALSE(FCUtility::CFCMSPReader_ParseContainer(factory, &container, plan, nullptr, 16));
    FCUtility::CFCReader_LoadFileNode(factory, native, nullptr, false);
    EXPECT_THAT(container.captions, IsEmpty());
}

TEST_F(FCUtilityCalls, LoadFileNodeLeavesTheNodeAloneForPathsWithoutAFile) {
    Tree const block(CFCNodeFactory().Create(59));
    std::string const before = treeOf(block.get());
    FCUtility::CFCReader_LoadFileNode(factory, nullptr, block.get(), false);
    for (TuString const& path :
         {TuString(), scratch.text("missing.bpt"), scratch.text(), write("broken.bpt", "<A><B></A>")})
        FCUtility::CFCReader_LoadFileNode(factory, path, block.get(), true);
    EXPECT_EQ(before, treeOf(block.get()));
}

TEST_F(FCUtilityCalls, WritersGiveFalseWithoutPathOrNode) {
    Tree const node(CFCNodeFactory().Create(160));
    TuString errors;
    using Call = std::function<bool(wchar_t const*, IFCNode*)>;
    std::vector<std::pair<char const*, Call>> const calls = {
        {"CFCWriter_WriteFile",
         [](auto path, auto* tree) {
             return FCUtility::CFCWriter_WriteFile(path, tree, true);
         }},
        {"CFCWriter_WriteFileGetVariableErrors",
         [&](auto path, auto* tree) {
             return FCUtility::CFCWriter_WriteFileGetVariableErrors(path, tree, true, errors);
         }},
        {"CFCFileTypeListWriter_WriteFile",
         [](auto path, auto* tree) {
             return FCUtility::CFCFileTypeListWriter_WriteFile(path, tree, true);
         }},
        {"CFCManifestWriter_WriteFile",
         [](auto path, auto* tree) {
             return FCUtility::CFCManifestWriter_WriteFile(path, tree, true);
         }},
        {"CFCFavouriteWriter_WriteFile",
         [](auto path, auto* tree) {
             return FCUtility::CFCFavouriteWriter_WriteFile(path, tree, true);
         }},
        {"CFCProcessDefinitionWriter_WriteFile",
         [](auto path, auto* tree) {
             return FCUtility::CFCProcessDefinitionWriter_WriteFile(path, tree, true);
         }},
        {"CFCWorkFlowWriter_WriteFile",
         [&](auto path, auto* tree) {
             return FCUtility::CFCWorkFlowWriter_WriteFile(path, tree, node.get());
         }},
    };
    for (auto const& [name, call] : calls) {
        EXPECT_FALSE(call(nullptr, node.get())) << name;
        EXPECT_FALSE(call(L"", node.get())) << name;
        EXPECT_FALSE(call(scratch.text("out.xml"), nullptr)) << name;
        EXPECT_FALSE(std::filesystem::exists(scratch / "out.xml")) << name;
    }
}

TEST_F(FCUtilityCalls, WritersGiveTrueForAFolderAsPath) {
    Tree const node(CFCNodeFactory().Create(160));
    auto const list = make<CFCProcessList>(69);
    TuString errors(L"of before");
    EXPECT_TRUE(FCUtility::CFCWriter_WriteFile(scratch.text(), node.get(), true));
    EXPECT_TRUE(FCUtility::CFCWriter_WriteFileGetVariableErrors(scratch.text(), node.get(), true, errors));
    EXPECT_TRUE(FCUtility::CFCProcessListWriter_WriteFile(scratch.text(), list.get(), true, true, true));
    EXPECT_TRUE(FCUtility::CFCFileTypeListWriter_WriteFile(scratch.text(), node.get(), true));
    EXPECT_TRUE(FCUtility::CFCManifestWriter_WriteFile(scratch.text(), node.get(), true));
    EXPECT_TRUE(FCUtility::CFCFavouriteWriter_WriteFile(scratch.text(), node.get(), true));
    EXPECT_TRUE(FCUtility::CFCWorkFlowWriter_WriteFile(scratch.text(), node.get(), nullptr));
    EXPECT_EQ(L"", errors);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST_F(FCUtilityCalls, ProcessListWriterGivesTheResultOfItsClass) {
    auto const list = make<CFCProcessList>(69);
    for (wchar_t const* const path : {static_cast<wchar_t const*>(nullptr), L""}) {
        CFCProcessListWriter writer;
        EXPECT_EQ(writer.WriteFile(path, list.get(), true, true),
                  FCUtility::CFCProcessListWriter_WriteFile(path, list.get(), true, true, false));
    }
    CFCProcessListWriter writer;
    EXPECT_EQ(writer.WriteFile(scratch.text("a.lst"), nullptr, true, true),
              FCUtility::CFCProcessListWriter_WriteFile(scratch.text("b.lst"), nullptr, true, true, false));
}

TEST_F(FCUtilityCalls, FormattingPassesOverWhatCannotBeRead) {
    FCUtility::CFCWriter_LoadAndFormatXML(nullptr);
    FCUtility::CFCWriter_LoadAndFormatXML(L"");
    FCUtility::CFCWriter_LoadAndFormatXML(scratch.text("missing.xml"));
    FCUtility::CFCWriter_LoadAndFormatXML(scratch.text());
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

// --- The class itself ----------------------------------------------------------------------------------------------

TEST_F(FCUtilityCalls, ExceptionsOfTheHostPassThrough) {
    TuString const path = document();
    ThrowingFactory throwing;
    IFCNode* node = nullptr;
    EXPECT_THROW(FCUtility::CFCReader_Parse(throwing, path, &node, 16), std::runtime_error);
    EXPECT_THROW(FCUtility::CFCMSPReader_ParseContainer(throwing, nullptr, schedule(), &node, 16), std::runtime_error);
    EXPECT_EQ(nullptr, node);
    ASSERT_TRUE(FCUtility::CFCReader_Parse(factory, path, &node, 16)) << "the next call works";
    Tree const tree(node);
}

TEST(FCUtility, HoldsNothing) {
    static_assert(std::is_empty_v<FCUtility>);
    static_assert(!std::is_polymorphic_v<FCUtility>);
    FCUtility one;
    FCUtility other(one);
    other = one;
    EXPECT_EQ(1U, sizeof(other));
}

} // namespace
