#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableList.h"

#include <memory>

using namespace flowmere::test;

namespace {

TEST(NodeClone, AFolderComesWithoutItsChildren) {
    Tree folder(71, L"id", L"Folder");
    addFirst(folder, 71, L"", L"Inner");
    Tree clone(CFCNodeHelper::Clone(folder));
    ASSERT_NE(clone.root(), nullptr);
    EXPECT_NE(clone.root(), folder.root());
    EXPECT_NE(dynamic_cast<CFCSubGroupNode*>(clone.root()), nullptr);
    EXPECT_EQ(clone->GetNodeType(), 71);
    EXPECT_STREQ(clone->GetNodeCaption(), L"Folder");
    EXPECT_STREQ(clone->GetNodeId(), folder->GetNodeId());
    EXPECT_EQ(clone->GetChild(), nullptr);
    EXPECT_NE(folder->GetChild(), nullptr);
}

TEST(NodeClone, HasNoLinksAndAHandleOfItsOwn) {
    Tree root(69);
    adopt(root, {make(71, L"", L"A"), make(71, L"", L"B"), make(71, L"", L"C")});
    IFCNode* const source = root->GetChild()->GetNext();
    Tree clone(CFCNodeHelper::Clone(source));
    EXPECT_EQ(clone->GetParentNode(), nullptr);
    EXPECT_EQ(clone->GetNext(), nullptr);
    EXPECT_EQ(clone->GetPrev(), nullptr);
    EXPECT_NE(clone->GetNodeHandle(), source->GetNodeHandle());
    EXPECT_EQ(captions(root), (std::vector<std::string>{"A", "B", "C"})) << "the source stays where it is";
}

TEST(NodeClone, AFileNodeKeepsItsWholeState) {
    Tree file(70);
    file->SetNodeCaption(L"Beam");
    file->SetItemFilePath(L"beam.xml");
    file->SetProjectType(static_cast<EProjectType>(1));
    file->SetDirty(true);
    file->SetCheckedOut(true);
    file->SetUptoDate(true);
    file->SetCheckedOutUser(L"ada");
    file->SetVersionNo(2.5F);
    file->SetNodeId(L"42");
    file->SetNewPath(true);
    file->SetItemFileBaseDirectory(L"lib");
    file->SetNodeLocationType(3);
    // These are no part of the record.
    file->SetNodeDescription(L"text");
    file->SetModified(true);
    file->SetFileLink(true);
    file->SetNodeProcessID(9);
    file->SetItemData(77);

    Tree clone(CFCNodeHelper::Clone(file));
    ASSERT_NE(dynamic_cast<CFCFileNode*>(clone.root()), nullptr);
    EXPECT_EQ(clone->GetNodeType(), 70);
    EXPECT_STREQ(clone->GetNodeCaption(), L"Beam");
    EXPECT_STREQ(clone->GetItemFilePath(), L"beam.xml");
    EXPECT_EQ(clone->GetProjectType(), 1);
    EXPECT_TRUE(clone->IsDirty());
    EXPECT_TRUE(clone->IsCheckedOut());
    EXPECT_TRUE(clone->IsUptoDate());
    EXPECT_STREQ(clone->GetCheckedOutUser(), L"ada");
    EXPECT_EQ(clone->GetVersionNo(), 2.5F);
    EXPECT_STREQ(clone->GetNodeId(), L"42");
    EXPECT_TRUE(clone->IsNewPath());
    EXPECT_STREQ(clone->GetItemFileBaseDirectory(), L"lib");
    EXPECT_EQ(clone->GetNodeLocationType(), 3);
    EXPECT_STREQ(clone->GetNodeDescription(), L"");
    EXPECT_FALSE(clone->IsModified());
    EXPECT_FALSE(clone->IsFileLink());
    EXPECT_EQ(clone->GetNodeProcessID(), 0U);
    EXPECT_EQ(clone->GetItemData(), 0);
}

TEST(NodeClone, AFreshFileNodeLooksLikeAFreshFileNode) {
    Tree file(70);
    Tree clone(CFCNodeHelper::Clone(file));
    EXPECT_EQ(clone->GetProjectType(), 8);
    EXPECT_FALSE(clone->IsDirty());
    EXPECT_FALSE(clone->IsCheckedOut());
    EXPECT_FALSE(clone->IsUptoDate());
    EXPECT_STREQ(clone->GetCheckedOutUser(), L"");
    EXPECT_EQ(clone->GetVersionNo(), 1.0F);
    EXPECT_FALSE(clone->IsNewPath());
}

TEST(NodeClone, ANodeWithoutLibraryStateHasNoUserToCopy) {
    Tree folder(71, L"", L"F");
    ASSERT_EQ(folder->GetCheckedOutUser(), nullptr);
    Tree clone(CFCNodeHelper::Clone(folder));
    ASSERT_NE(clone.root(), nullptr);
    EXPECT_EQ(clone->GetCheckedOutUser(), nullptr);
}

TEST(NodeClone, ABlockLosesVariablesConnectorsAndChildren) {
    Tree block(61, L"S", L"Sub");
    addVariable(block, L"x");
    IFCNode* const inner = addFirst(block, 57, L"B");
    IFCNode* const connector = make(68);
    block->AddConnector(dynamic_cast<CFCConnector*>(connector));
    block->GetFCBlockData()->SetBlockName(L"name");
    Tree clone(CFCNodeHelper::Clone(block));
    EXPECT_STREQ(clone->GetNodeId(), L"S");
    EXPECT_STREQ(clone->GetNodeCaption(), L"Sub");
    EXPECT_EQ(clone->GetVariableList()->GetCount(), 0);
    EXPECT_EQ(clone->GetFCBlockData()->GetConnectorList()->GetCount(), 0);
    EXPECT_EQ(clone->GetChild(), nullptr);
    EXPECT_STREQ(clone->GetFCBlockData()->GetBlockName(), L"");
    EXPECT_EQ(inner->GetParentNode(), block.root());
}

TEST(NodeClone, AProcessHasTheTwoChildrenOfANewProcess) {
    for (int type : {56, 160}) {
        Tree process(type, L"P", L"Process");
        process->SetProjectType(static_cast<EProjectType>(2));
        addFirst(process, 57, L"B");
        Tree clone(CFCNodeHelper::Clone(process));
        ASSERT_NE(clone.root(), nullptr) << type;
        EXPECT_EQ(captions(clone), (std::vector<std::string>{"Last Opened", "Favourites"})) << type;
        EXPECT_EQ(clone->GetProjectType(), 2) << type;
    }
}

TEST(NodeClone, ATypeWithoutClassHasNoClone) {
    for (int type : {0, 54, 62, 75, 178, 184}) {
        Tree node(71);
        node->SetNodeType(type);
        EXPECT_EQ(CFCNodeHelper::Clone(node), nullptr) << type;
    }
    EXPECT_EQ(CFCNodeHelper::Clone(nullptr), nullptr);
}

TEST(NodeClone, AnApplicationBringsItsContentAlong) {
    Tree source(167, L"App", L"Solve");
    auto* const application = dynamic_cast<CFCApplicationNode*>(source.root());
    addVariable(source, L"x");
    application->CreateNewArgument()->SetArgumentID(5);
    source->SetItemFilePath(L"not part of it");
    Tree clone(CFCNodeHelper::Clone(source));
    auto* const copy = dynamic_cast<CFCApplicationNode*>(clone.root());
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy->GetNodeCaption(), L"Solve");
    EXPECT_STREQ(copy->GetNodeId(), L"App");
    EXPECT_STREQ(copy->GetItemFilePath(), L"");
    EXPECT_EQ(copy->GetVariableList()->GetCount(), 1);
    EXPECT_EQ(copy->GetArgumentList()->GetCount(), 1);
}

TEST(NodeClone, ANodeOfTheTypeOfAnApplicationNeedsAWorkflowRecord) {
    Tree task(150, L"Task_01", L"T");
    task->SetNodeType(167);
    Tree clone(CFCNodeHelper::Clone(task));
    ASSERT_NE(dynamic_cast<CFCApplicationNode*>(clone.root()), nullptr);
    EXPECT_STREQ(clone->GetNodeId(), L"Task_01");
    Tree block(57, L"Block");
    block->SetNodeType(167);
    EXPECT_EQ(CFCNodeHelper::Clone(block), nullptr);
}

TEST(NodeClone, AGroupOfApplicationsIsClonedAsAnyOtherNode) {
    Tree source(168, L"Group", L"G");
    addVariable(source, L"x");
    dynamic_cast<CFCApplicationNode*>(source.root())->CreateNewArgument();
    source->SetItemFilePath(L"file");
    Tree clone(CFCNodeHelper::Clone(source));
    auto* const copy = dynamic_cast<CFCApplicationNode*>(clone.root());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetNodeType(), 168);
    EXPECT_STREQ(copy->GetNodeId(), L"Group");
    EXPECT_STREQ(copy->GetItemFilePath(), L"file");
    EXPECT_EQ(copy->GetVariableList()->GetCount(), 0);
    EXPECT_EQ(copy->GetArgumentList()->GetCount(), 0);
}

TEST(NodeClone, IsOfTheStoredTypeWhateverTheClassOfTheSource) {
    Tree node(71, L"", L"X");
    node->SetNodeType(70);
    Tree clone(CFCNodeHelper::Clone(node));
    EXPECT_NE(dynamic_cast<CFCFileNode*>(clone.root()), nullptr);
    EXPECT_STREQ(clone->GetNodeCaption(), L"X");
    EXPECT_EQ(clone->GetProjectType(), 8);
}

} // namespace
