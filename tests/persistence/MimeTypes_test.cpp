#include "EnvironmentGuard.h"
#include "TestSupport.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCMimeTypeReader.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

using flowmere::test::narrow;

namespace {

struct TreeDeleter {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};

// "contentType:description" of the entries, in file order.
std::string entries(IFCNode* list) {
    std::string all;
    for (IFCNode* child = list->GetChild(); child; child = child->GetNext()) {
        auto* const entry = dynamic_cast<CFCMimeTypeNode*>(child);
        all = (entry ? narrow(entry->GetContentType()) + ":" + narrow(entry->GetNodeDescription()) : "?") + " " + all;
    }
    return all;
}

struct MimeTypes : flowmere::test::ScratchTest {
    flowmere::test::EnvironmentGuard environment;
    CFCNodeFactory factory;
    std::unique_ptr<CFCMimeTypeNode, TreeDeleter> list{dynamic_cast<CFCMimeTypeNode*>(factory.Create(86))};

    bool parse(std::string_view xml) {
        scratch.write("types.xml", xml);
        CFCMimeTypeReader reader;
        reader.SetNodeFactory(&factory);
        return reader.Parse(scratch.text("types.xml"), list.get());
    }
};

// The list of the process is made once, so each of its stories needs a process of its own.
#define IN_A_PROCESS_OF_ITS_OWN(story)                                                                                 \
    EXPECT_EXIT(                                                                                                       \
        {                                                                                                              \
            story();                                                                                                   \
            std::_Exit(testing::Test::HasFailure() ? 1 : 0);                                                           \
        },                                                                                                             \
        testing::ExitedWithCode(0), "")

} // namespace

TEST_F(MimeTypes, EntriesInFileOrder) {
    ASSERT_TRUE(parse("<Any><MIMETYPE contentType='text/plain' description='Text'/><OTHER/><!-- c -->"
                      "<MIMETYPE contentType='image/png'/><MIMETYPE/></Any>"));
    EXPECT_EQ("text/plain:Text image/png: : ", entries(list.get()));
    EXPECT_EQ(85, list->GetChild()->GetNodeType());
    EXPECT_EQ(list.get(), list->GetChild()->GetParentNode());
}

TEST_F(MimeTypes, FilesAddUpAndNothingIsMerged) {
    ASSERT_TRUE(parse("<A><MIMETYPE contentType='a'/></A>"));
    ASSERT_TRUE(parse("<A><MIMETYPE contentType='a' description='again'/></A>"));
    EXPECT_EQ("a: a:again ", entries(list.get()));
}

TEST_F(MimeTypes, EntriesBelowEntriesAreSkipped) {
    ASSERT_TRUE(parse("<A><MIMETYPE contentType='a'><MIMETYPE contentType='b'/></MIMETYPE></A>"));
    EXPECT_EQ("a: ", entries(list.get()));
    EXPECT_EQ(nullptr, list->GetChild()->GetChild());
}

TEST_F(MimeTypes, ANullPathIsTheCommonFile) {
    CFCMimeTypeReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_FALSE(reader.Parse(nullptr, list.get())) << "no base path";
    CFCEnvironment::SetBasePath(scratch.text());
    EXPECT_FALSE(reader.Parse(nullptr, list.get())) << "no file";
    scratch.write("MimeTypes.xml", "<A><MIMETYPE contentType='common'/></A>");
    EXPECT_TRUE(reader.Parse(nullptr, list.get()));
    EXPECT_EQ("common: ", entries(list.get()));
}

TEST_F(MimeTypes, ParseNeedsAPathAFileAListAndWellFormedXml) {
    scratch.write("good.xml", "<A/>");
    scratch.write("bad.xml", "<A>");
    CFCMimeTypeReader reader;
    reader.SetNodeFactory(&factory);
    EXPECT_FALSE(reader.Parse(L"", list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text("missing.xml"), list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text(), list.get()));
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), nullptr));
    EXPECT_FALSE(reader.Parse(scratch.text("bad.xml"), list.get()));
    EXPECT_TRUE(reader.Parse(scratch.text("good.xml"), list.get()));
    EXPECT_FALSE(reader.Load(nullptr, list.get()));
    reader.LoadPropertiesLite(nullptr, static_cast<CFCMimeTypeNode*>(nullptr));
    EXPECT_EQ(nullptr, list->GetChild());
}

TEST_F(MimeTypes, WithoutAFactoryNothingIsMade) {
    scratch.write("types.xml", "<A><MIMETYPE contentType='a'/></A>");
    CFCMimeTypeReader reader;
    EXPECT_TRUE(reader.Parse(scratch.text("types.xml"), list.get()));
    EXPECT_EQ(nullptr, list->GetChild());
}

TEST_F(MimeTypes, TheListOfTheProcessHoldsBothFiles) {
    scratch.write("base/MimeTypes.xml", "<A><MIMETYPE contentType='common'/></A>");
    scratch.write("user/MimeTypes.xml", "<A><MIMETYPE contentType='common'/><MIMETYPE contentType='mine'/></A>");
    IN_A_PROCESS_OF_ITS_OWN([&] {
        CFCEnvironment::SetBasePath(scratch.text("base"));
        CFCEnvironment::SetUserPath(scratch.text("user"));
        CFCMimeTypeNode* const root = CFCMimeTypeReader::GetMimeTypeRoot();
        ASSERT_NE(nullptr, root);
        EXPECT_EQ(81, root->GetNodeType());
        EXPECT_EQ("common: common: mine: ", entries(root));
        EXPECT_EQ(root, CFCMimeTypeReader::GetMimeTypeRoot());
        EXPECT_EQ("common: common: mine: ", entries(root));
    });
}

TEST_F(MimeTypes, WithoutAUsersPathTheCommonEntriesStandTwice) {
    scratch.write("base/MimeTypes.xml", "<A><MIMETYPE contentType='a'/><MIMETYPE contentType='b'/></A>");
    IN_A_PROCESS_OF_ITS_OWN([&] {
        CFCEnvironment::SetBasePath(scratch.text("base"));
        EXPECT_EQ("a: b: a: b: ", entries(CFCMimeTypeReader::GetMimeTypeRoot()));
    });
}

TEST_F(MimeTypes, AnEmptyListStaysAsItIs) {
    IN_A_PROCESS_OF_ITS_OWN([&] {
        CFCEnvironment::SetBasePath(scratch.text());
        CFCMimeTypeNode* const root = CFCMimeTypeReader::GetMimeTypeRoot();
        ASSERT_NE(nullptr, root);
        EXPECT_EQ("", entries(root));
        scratch.write("MimeTypes.xml", "<A><MIMETYPE contentType='late'/></A>");
        EXPECT_EQ(root, CFCMimeTypeReader::GetMimeTypeRoot());
        EXPECT_EQ("", entries(root));
    });
}

TEST_F(MimeTypes, ABrokenCommonFileLeavesTheUsersEntries) {
    scratch.write("base/MimeTypes.xml", "<A><MIMETYPE contentType='a'/>");
    scratch.write("user/MimeTypes.xml", "<A><MIMETYPE contentType='mine'/></A>");
    IN_A_PROCESS_OF_ITS_OWN([&] {
        CFCEnvironment::SetBasePath(scratch.text("base"));
        CFCEnvironment::SetUserPath(scratch.text("user"));
        EXPECT_EQ("mine: ", entries(CFCMimeTypeReader::GetMimeTypeRoot()));
    });
}
