#include "flowmere/model/FCNode.h"

#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCNodeManager.h"
#include "model/PlainNodes.h"
#include "model/VirtualSlots.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

// A sanitized frame is several times as large as a plain one.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kDeepLevels = 20000;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int kDeepLevels = 20000;
#else
constexpr int kDeepLevels = 100000;
#endif
#else
constexpr int kDeepLevels = 100000;
#endif

using flowmere::test::BareNode;
using flowmere::test::childNames;
using flowmere::test::NamedNode;
using flowmere::test::narrow;
using flowmere::test::PlainNode;

// Parent, child and so on down: the links up only.
void chain(std::initializer_list<IFCNode*> nodes) {
    IFCNode* parent = nullptr;
    for (IFCNode* const node : nodes) {
        node->SetParentNode(parent);
        parent = node;
    }
}

// ---- the interface ------------------------------------------------------------------------------

static_assert(std::is_abstract_v<IFCNode>);
static_assert(std::is_abstract_v<CFCAbstractNode>);
static_assert(std::is_abstract_v<CFCNode>);
static_assert(std::has_virtual_destructor_v<IFCNode>);
static_assert(std::is_base_of_v<IFCNode, CFCAbstractNode>);
static_assert(std::is_base_of_v<CFCAbstractNode, CFCNode>);
static_assert(sizeof(IFCNode) == sizeof(void*), "the interface holds no data");
static_assert(std::is_same_v<decltype(std::declval<IFCNode&>().GetItemData()), std::int64_t>);
static_assert(std::is_same_v<decltype(std::declval<IFCNode&>().GetNodeProcessID()), unsigned int>);
static_assert(std::is_same_v<decltype(std::declval<IFCNode&>().GetVersionNo()), float>);
static_assert(std::is_same_v<decltype(std::declval<IFCNode&>().GetProjectType()), EProjectType>);
// A block of three variables and one connector is two dozen of these.
static_assert(sizeof(CFCNode) <= 176);

#if FLOWMERE_TEST_SLOTS
using flowmere::test::kDestructorSlots;
using flowmere::test::kFirstSlotBehindNode;
using flowmere::test::kInterfaceOperations;
using flowmere::test::slotOf;
using flowmere::test::slotsOf;

TEST(IFCNode, OperationsStandInTheDeclaredOrderBehindTheDestructor) {
    std::ptrdiff_t const slots[] = {
        slotOf(&IFCNode::FindNodeSimple),
        slotOf(&IFCNode::FindNodeWithOldId),
        slotOf(&IFCNode::FindNodeComplex),
        slotOf(&IFCNode::GetNodeType),
        slotOf(&IFCNode::SetNodeType),
        slotOf(&IFCNode::GetNodeLocationType),
        slotOf(&IFCNode::SetNodeLocationType),
        slotOf(&IFCNode::GetImage),
        slotOf(&IFCNode::GetShapeType),
        slotOf(&IFCNode::SetShapeType),
        slotOf(&IFCNode::GetParentNode),
        slotOf(&IFCNode::GetChild),
        slotOf(&IFCNode::GetNext),
        slotOf(&IFCNode::GetPrev),
        slotOf(&IFCNode::GetRootNode),
        slotOf(&IFCNode::GetNextL),
        slotOf(&IFCNode::GetPrevL),
        slotOf(&IFCNode::GetChildL),
        slotOf(&IFCNode::SetParentNode),
        slotOf(&IFCNode::SetChild),
        slotOf(&IFCNode::SetNext),
        slotOf(&IFCNode::SetPrev),
        slotOf(&IFCNode::SetNextL),
        slotOf(&IFCNode::SetPrevL),
        slotOf(&IFCNode::SetChildL),
        slotOf(&IFCNode::GetFCBlockData),
        slotOf(&IFCNode::GetBPMBlockData),
        slotOf(&IFCNode::GetVariableData),
        slotOf(&IFCNode::GetDrawingBlock),
        slotOf(&IFCNode::GetHead),
        slotOf(&IFCNode::GetTail),
        slotOf(&IFCNode::GetNextRun),
        slotOf(&IFCNode::GetItemData),
        slotOf(&IFCNode::SetItemData),
        slotOf(&IFCNode::GetNodeHandle),
        slotOf(&IFCNode::SetNodeHandle),
        slotOf(&IFCNode::GetNodeProcessID),
        slotOf(&IFCNode::SetNodeProcessID),
        slotOf(&IFCNode::GetNodeCaption),
        slotOf(&IFCNode::SetNodeCaption),
        slotOf(&IFCNode::GetNodeDescription),
        slotOf(&IFCNode::SetNodeDescription),
        slotOf(&IFCNode::GetNodeCode),
        slotOf(&IFCNode::SetNodeCode),
        slotOf(&IFCNode::GetNodeId),
        slotOf(&IFCNode::SetNodeId),
        slotOf(&IFCNode::GetNodePath),
        slotOf(&IFCNode::GetNodePathByCaption),
        slotOf(&IFCNode::GetHierarchy),
        slotOf(&IFCNode::GetItemFilePath),
        slotOf(&IFCNode::SetItemFilePath),
        slotOf(&IFCNode::GetItemFileBaseDirectory),
        slotOf(&IFCNode::SetItemFileBaseDirectory),
        slotOf(&IFCNode::CloneNode),
        slotOf(&IFCNode::SetMark),
        slotOf(&IFCNode::IsMarked),
        slotOf(&IFCNode::GetVariableList),
        slotOf(&IFCNode::GetConnectorList),
        slotOf(&IFCNode::AppendChild),
        slotOf(&IFCNode::RemoveLinks),
        slotOf(&IFCNode::IsExpanded),
        slotOf(&IFCNode::Expand),
        slotOf(&IFCNode::Delete),
        slotOf(&IFCNode::TransferToDraw),
        slotOf(&IFCNode::TransferToData),
        slotOf(&IFCNode::AddConnector),
        slotOf(&IFCNode::CreateNewVariable),
        slotOf(&IFCNode::SetTuRect),
        slotOf(&IFCNode::SetTuRectInInchReverse),
        slotOf(&IFCNode::SetTuRectInInch),
        slotOf(&IFCNode::SetTuRectInInchFlowmere),
        slotOf(&IFCNode::GetTuRect),
        slotOf(&IFCNode::UnMark),
        slotOf(&IFCNode::ResolveVariables),
        slotOf(&IFCNode::IsLoaded),
        slotOf(&IFCNode::SetLoaded),
        slotOf(&IFCNode::AutoLoad),
        slotOf(&IFCNode::UnLoad),
        slotOf(&IFCNode::IsFileLink),
        slotOf(&IFCNode::SetFileLink),
        slotOf(&IFCNode::SetFileLinkPath),
        slotOf(&IFCNode::GetFileLinkPath),
        slotOf(&IFCNode::CanLoad),
        slotOf(&IFCNode::CanUnLoad),
        slotOf(&IFCNode::SetFolderPath),
        slotOf(&IFCNode::GetFolderPath),
        slotOf(&IFCNode::Save),
        slotOf(&IFCNode::SetOldNodeId),
        slotOf(&IFCNode::GetOldNodeId),
        slotOf(&IFCNode::IsMacroNode),
        slotOf(&IFCNode::IsHidden),
        slotOf(&IFCNode::HideNode),
        slotOf(&IFCNode::GetImageIndex),
        slotOf(&IFCNode::SetImageIndex),
        slotOf(&IFCNode::GetProjectType),
        slotOf(&IFCNode::SetProjectType),
        slotOf(&IFCNode::GetVersionNo),
        slotOf(&IFCNode::SetVersionNo),
        slotOf(&IFCNode::IsDirty),
        slotOf(&IFCNode::SetDirty),
        slotOf(&IFCNode::IsCheckedOut),
        slotOf(&IFCNode::SetCheckedOut),
        slotOf(&IFCNode::IsUptoDate),
        slotOf(&IFCNode::SetUptoDate),
        slotOf(&IFCNode::SetCheckedOutUser),
        slotOf(&IFCNode::GetCheckedOutUser),
        slotOf(&IFCNode::IsNewPath),
        slotOf(&IFCNode::SetNewPath),
        slotOf(&IFCNode::IsModified),
        slotOf(&IFCNode::SetModified),
        slotOf(&IFCNode::IsDeleted),
        slotOf(&IFCNode::SetDeleted),
        slotOf(&IFCNode::IsDeleteAllVersions),
        slotOf(&IFCNode::SetDeleteAllVersions),
        slotOf(&IFCNode::GetNodeCollectionIndex),
        slotOf(&IFCNode::SetNodeCollectionIndex),
        slotOf(&IFCNode::IsBPMNode),
    };
    ASSERT_EQ(std::ssize(slots), kInterfaceOperations);
    for (std::ptrdiff_t i = 0; i < std::ssize(slots); ++i) {
        EXPECT_EQ(slots[i], i + kDestructorSlots) << "operation number " << i;
    }
    std::ptrdiff_t const added[] = {
        slotOf(&CFCAbstractNode::Create),
        slotOf(static_cast<void (CFCAbstractNode::*)(wchar_t const*)>(&CFCAbstractNode::GetNodeDescription)),
        slotOf(static_cast<void (CFCAbstractNode::*)(TuString&)>(&CFCAbstractNode::GetHierarchy)),
        slotOf(static_cast<void (CFCAbstractNode::*)()>(&CFCAbstractNode::SetModified)),
        slotOf(static_cast<void (CFCAbstractNode::*)()>(&CFCAbstractNode::SetDeleted)),
    };
    for (std::ptrdiff_t i = 0; i < std::ssize(added); ++i) {
        EXPECT_EQ(added[i], i + std::ssize(slots) + kDestructorSlots) << "added operation number " << i;
    }
}

TEST(CFCNode, AddsNoOperationToThoseOfTheBases) {
    EXPECT_EQ(slotsOf<CFCNode>(), kFirstSlotBehindNode);
    EXPECT_EQ(slotsOf<CFCProcessList>(), kFirstSlotBehindNode);
    EXPECT_EQ(slotsOf<CFCSubGroupNode>(), kFirstSlotBehindNode);
}
#endif

// ---- CFCAbstractNode ----------------------------------------------------------------------------

TEST(CFCAbstractNode, AnswersEveryQuestionWithAMiss) {
    BareNode node;
    EXPECT_EQ(node.FindNodeSimple(L"A"), nullptr);
    EXPECT_EQ(node.FindNodeWithOldId(L"A"), nullptr);
    EXPECT_EQ(node.FindNodeComplex(L"A"), nullptr);
    EXPECT_EQ(node.GetNodeType(), 0);
    EXPECT_EQ(node.GetNodeLocationType(), 0);
    EXPECT_EQ(node.GetImage(), 0);
    EXPECT_EQ(node.GetShapeType(), 0);
    EXPECT_EQ(node.GetParentNode(), nullptr);
    EXPECT_EQ(node.GetChild(), nullptr);
    EXPECT_EQ(node.GetNext(), nullptr);
    EXPECT_EQ(node.GetPrev(), nullptr);
    EXPECT_EQ(node.GetFCBlockData(), nullptr);
    EXPECT_EQ(node.GetBPMBlockData(), nullptr);
    EXPECT_EQ(node.GetVariableData(), nullptr);
    EXPECT_EQ(node.GetDrawingBlock(), nullptr);
    EXPECT_EQ(node.GetHead(), nullptr);
    EXPECT_EQ(node.GetTail(), nullptr);
    EXPECT_EQ(node.GetNextRun(), nullptr);
    EXPECT_EQ(node.GetItemData(), 0);
    EXPECT_EQ(node.GetNodeProcessID(), 0U);
    EXPECT_EQ(narrow(node.GetNodeCaption()), "");
    EXPECT_EQ(narrow(node.GetNodeDescription()), "");
    EXPECT_EQ(narrow(node.GetNodeId()), "");
    EXPECT_EQ(narrow(node.GetNodePath()), "");
    EXPECT_EQ(narrow(node.GetNodePathByCaption()), "");
    EXPECT_EQ(narrow(node.GetItemFilePath()), "");
    EXPECT_EQ(node.CloneNode(), nullptr);
    EXPECT_FALSE(node.IsMarked());
    EXPECT_EQ(node.GetVariableList(), nullptr);
    EXPECT_EQ(node.GetConnectorList(), nullptr);
    EXPECT_FALSE(node.IsExpanded());
    EXPECT_EQ(node.CreateNewVariable(), nullptr);
    EXPECT_EQ(node.GetTuRect(), nullptr);
    EXPECT_EQ(narrow(node.GetFolderPath()), "");
    EXPECT_FALSE(node.Save());
    EXPECT_EQ(narrow(node.GetOldNodeId()), "");
    EXPECT_FALSE(node.IsMacroNode());
    EXPECT_FALSE(node.IsHidden());
    EXPECT_EQ(node.GetImageIndex(), 0);
    EXPECT_FALSE(node.IsModified());
    EXPECT_FALSE(node.IsDeleted());
}

TEST(CFCAbstractNode, StoresNothing) {
    BareNode node;
    BareNode other;
    node.SetNodeType(57);
    EXPECT_EQ(node.GetNodeType(), 0);
    node.SetNodeLocationType(1);
    EXPECT_EQ(node.GetNodeLocationType(), 0);
    node.SetShapeType(2);
    EXPECT_EQ(node.GetShapeType(), 0);
    node.SetParentNode(&other);
    EXPECT_EQ(node.GetParentNode(), nullptr);
    node.SetChild(&other);
    EXPECT_EQ(node.GetChild(), nullptr);
    node.SetNext(&other);
    EXPECT_EQ(node.GetNext(), nullptr);
    node.SetPrev(&other);
    EXPECT_EQ(node.GetPrev(), nullptr);
    node.SetItemData(7);
    EXPECT_EQ(node.GetItemData(), 0);
    node.SetNodeProcessID(8);
    EXPECT_EQ(node.GetNodeProcessID(), 0U);
    node.SetNodeCaption(L"caption");
    EXPECT_EQ(narrow(node.GetNodeCaption()), "");
    node.SetNodeId(L"id");
    EXPECT_EQ(narrow(node.GetNodeId()), "");
    node.SetItemFilePath(L"a.xml");
    EXPECT_EQ(narrow(node.GetItemFilePath()), "");
    node.SetMark(true);
    EXPECT_FALSE(node.IsMarked());
    EXPECT_FALSE(node.AppendChild(&other, true));
    EXPECT_EQ(node.GetChild(), nullptr);
    node.RemoveLinks();
    node.Expand(true);
    EXPECT_FALSE(node.IsExpanded());
    node.Delete();
    node.TransferToDraw();
    node.TransferToData();
    node.AddConnector(nullptr);
    node.SetTuRect(1, 2, 3, 4);
    node.SetTuRectInInchReverse(1, 2, 3, 4);
    node.SetTuRectInInch(1, 2, 3, 4);
    node.SetTuRectInInchFlowmere(1, 2, 3, 4);
    EXPECT_EQ(node.GetTuRect(), nullptr);
    node.SetFolderPath(L"folder");
    EXPECT_EQ(narrow(node.GetFolderPath()), "");
    node.SetOldNodeId(L"old");
    EXPECT_EQ(narrow(node.GetOldNodeId()), "");
    node.HideNode(true);
    EXPECT_FALSE(node.IsHidden());
}

TEST(CFCAbstractNode, AddedOperationsHaveNoEffect) {
    BareNode node;
    node.Create();
    node.GetNodeDescription(L"text");
    EXPECT_EQ(narrow(node.GetNodeDescription()), "");
    TuString out(L"untouched");
    node.GetHierarchy(out);
    EXPECT_EQ(narrow(out), "untouched");
    node.SetModified();
    EXPECT_FALSE(node.IsModified());
    node.SetDeleted();
    EXPECT_FALSE(node.IsDeleted());
}

TEST(CFCAbstractNode, StateStartsWithoutAnyBit) {
    BareNode node;
    for (int bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(node.checkState(bit), 0U) << bit;
    }
}

TEST(CFCAbstractNode, CheckStateTakesABitNumberAndSetStateAMask) {
    BareNode node;
    node.setState(2);
    EXPECT_EQ(node.checkState(1), 2U);
    EXPECT_EQ(node.checkState(2), 0U);
    EXPECT_EQ(node.checkState(0), 0U);
    node.setState(4);
    EXPECT_EQ(node.checkState(1), 2U);
    EXPECT_EQ(node.checkState(2), 4U);
    node.clearState(2);
    EXPECT_EQ(node.checkState(1), 0U);
    EXPECT_EQ(node.checkState(2), 4U);
    node.clearState(6);
    EXPECT_EQ(node.checkState(2), 0U);
}

TEST(CFCAbstractNode, CheckStateCountsBitsModulo32) {
    BareNode node;
    node.setState(2);
    EXPECT_EQ(node.checkState(33), 2U);
    EXPECT_EQ(node.checkState(65), 2U);
    EXPECT_EQ(node.checkState(32), 0U);
    node.setState(std::numeric_limits<int>::min());
    EXPECT_EQ(node.checkState(31), 0x80000000U);
    EXPECT_EQ(node.checkState(-1), 0x80000000U);
}

// ---- CFCNode: what a new object is --------------------------------------------------------------

TEST(CFCNode, StartsWithItsDefaults) {
    PlainNode node;
    EXPECT_EQ(node.GetChild(), nullptr);
    EXPECT_EQ(node.GetParentNode(), nullptr);
    EXPECT_EQ(node.GetPrev(), nullptr);
    EXPECT_EQ(node.GetNext(), nullptr);
    EXPECT_EQ(node.GetPrevL(), nullptr);
    EXPECT_EQ(node.GetNextL(), nullptr);
    EXPECT_EQ(node.GetChildL(), nullptr);
    EXPECT_EQ(node.GetNodeType(), 0);
    EXPECT_EQ(node.GetItemData(), 0);
    EXPECT_EQ(narrow(node.GetNodeCaption()), "");
    EXPECT_EQ(node.GetNodeProcessID(), 0U);
    EXPECT_EQ(narrow(node.GetNodeDescription()), "");
    EXPECT_EQ(narrow(node.GetFileLinkPath()), "");
    EXPECT_FALSE(node.IsMarked());
    EXPECT_FALSE(node.IsFileLink());
    EXPECT_FALSE(node.IsLoaded());
    EXPECT_EQ(narrow(node.GetItemFilePath()), "");
    EXPECT_EQ(narrow(node.GetItemFileBaseDirectory()), "");
    EXPECT_EQ(node.GetImageIndex(), 0);
    EXPECT_EQ(static_cast<int>(node.GetProjectType()), 8);
    EXPECT_FALSE(node.IsDirty());
    EXPECT_FALSE(node.IsCheckedOut());
    EXPECT_FALSE(node.IsUptoDate());
    EXPECT_EQ(node.GetVersionNo(), 1.0F);
    EXPECT_FALSE(node.IsNewPath());
    EXPECT_FALSE(node.IsModified());
    EXPECT_FALSE(node.IsDeleted());
    EXPECT_FALSE(node.IsDeleteAllVersions());
    EXPECT_EQ(node.GetNodeCollectionIndex(), 0);
    EXPECT_FALSE(node.IsBPMNode());
    EXPECT_FALSE(node.CanLoad());
    EXPECT_FALSE(node.CanUnLoad());
}

TEST(CFCNode, StoresWhatItIsGiven) {
    PlainNode node;
    PlainNode other;
    node.SetNodeType(57);
    EXPECT_EQ(node.GetNodeType(), 57);
    node.SetParentNode(&other);
    EXPECT_EQ(node.GetParentNode(), &other);
    node.SetChild(&other);
    EXPECT_EQ(node.GetChild(), &other);
    node.SetNext(&other);
    EXPECT_EQ(node.GetNext(), &other);
    node.SetPrev(&other);
    EXPECT_EQ(node.GetPrev(), &other);
    node.SetNextL(&other);
    EXPECT_EQ(node.GetNextL(), &other);
    node.SetPrevL(&other);
    EXPECT_EQ(node.GetPrevL(), &other);
    node.SetChildL(&other);
    EXPECT_EQ(node.GetChildL(), &other);
    node.SetItemData(std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(node.GetItemData(), std::numeric_limits<std::int64_t>::min());
    node.SetNodeProcessID(4000000000U);
    EXPECT_EQ(node.GetNodeProcessID(), 4000000000U);
    node.SetNodeCaption(L"caption");
    EXPECT_EQ(narrow(node.GetNodeCaption()), "caption");
    node.SetNodeDescription(L"description");
    EXPECT_EQ(narrow(node.GetNodeDescription()), "description");
    node.SetItemFilePath(L"item");
    EXPECT_EQ(narrow(node.GetItemFilePath()), "item");
    node.SetItemFileBaseDirectory(L"base");
    EXPECT_EQ(narrow(node.GetItemFileBaseDirectory()), "base");
    node.SetMark(true);
    EXPECT_TRUE(node.IsMarked());
    node.SetFileLinkPath(L"link");
    EXPECT_EQ(narrow(node.GetFileLinkPath()), "link");
    node.SetImageIndex(3);
    EXPECT_EQ(node.GetImageIndex(), 3);
    node.SetVersionNo(2.5F);
    EXPECT_EQ(node.GetVersionNo(), 2.5F);
    node.SetNewPath(true);
    EXPECT_TRUE(node.IsNewPath());
    node.SetModified(true);
    EXPECT_TRUE(node.IsModified());
    node.SetDeleted(true);
    EXPECT_TRUE(node.IsDeleted());
    node.SetDeleteAllVersions(true);
    EXPECT_TRUE(node.IsDeleteAllVersions());
    node.SetNodeCollectionIndex(9);
    EXPECT_EQ(node.GetNodeCollectionIndex(), 9);
    // One flag does not touch another.
    node.SetDeleted(false);
    EXPECT_TRUE(node.IsModified());
    EXPECT_TRUE(node.IsDeleteAllVersions());
    EXPECT_TRUE(node.IsMarked());
}

TEST(CFCNode, SettingOneLinkTouchesNoOtherNode) {
    PlainNode node;
    PlainNode other;
    node.SetParentNode(&other);
    node.SetChild(&other);
    node.SetNext(&other);
    node.SetPrev(&other);
    EXPECT_EQ(other.GetParentNode(), nullptr);
    EXPECT_EQ(other.GetChild(), nullptr);
    EXPECT_EQ(other.GetNext(), nullptr);
    EXPECT_EQ(other.GetPrev(), nullptr);
}

TEST(CFCNode, KeepsWhatTheAbstractNodeAnswers) {
    PlainNode node;
    EXPECT_EQ(node.FindNodeComplex(L"A"), nullptr);
    node.SetNodeLocationType(2);
    EXPECT_EQ(node.GetNodeLocationType(), 0);
    node.SetShapeType(2);
    EXPECT_EQ(node.GetShapeType(), 0);
    EXPECT_EQ(node.GetFCBlockData(), nullptr);
    EXPECT_EQ(node.GetBPMBlockData(), nullptr);
    EXPECT_EQ(node.GetVariableData(), nullptr);
    EXPECT_EQ(node.GetDrawingBlock(), nullptr);
    EXPECT_EQ(node.GetHead(), nullptr);
    EXPECT_EQ(node.GetTail(), nullptr);
    EXPECT_EQ(node.GetNextRun(), nullptr);
    node.SetNodeCode(L"code");
    EXPECT_EQ(narrow(node.GetNodeCode()), "");
    node.SetNodeId(L"id");
    EXPECT_EQ(narrow(node.GetNodeId()), "");
    node.SetOldNodeId(L"old");
    EXPECT_EQ(narrow(node.GetOldNodeId()), "");
    EXPECT_EQ(node.CloneNode(), nullptr);
    EXPECT_EQ(node.GetVariableList(), nullptr);
    EXPECT_EQ(node.GetConnectorList(), nullptr);
    EXPECT_EQ(node.CreateNewVariable(), nullptr);
    EXPECT_EQ(node.GetTuRect(), nullptr);
    node.Expand(true);
    EXPECT_FALSE(node.IsExpanded());
    node.SetFolderPath(L"folder");
    EXPECT_EQ(narrow(node.GetFolderPath()), "");
    EXPECT_FALSE(node.Save());
    EXPECT_FALSE(node.IsMacroNode());
    node.HideNode(true);
    EXPECT_FALSE(node.IsHidden());
}

TEST(CFCNode, NullTextIsTheEmptyText) {
    PlainNode node;
    node.SetNodeCaption(L"x");
    node.SetNodeCaption(nullptr);
    EXPECT_EQ(narrow(node.GetNodeCaption()), "");
    node.SetNodeDescription(L"x");
    node.SetNodeDescription(nullptr);
    EXPECT_EQ(narrow(node.GetNodeDescription()), "");
    node.SetItemFilePath(L"x");
    node.SetItemFilePath(nullptr);
    EXPECT_EQ(narrow(node.GetItemFilePath()), "");
    node.SetItemFileBaseDirectory(L"x");
    node.SetItemFileBaseDirectory(nullptr);
    EXPECT_EQ(narrow(node.GetItemFileBaseDirectory()), "");
    node.SetFileLinkPath(L"x");
    node.SetFileLinkPath(nullptr);
    EXPECT_EQ(narrow(node.GetFileLinkPath()), "");
    node.SetCheckedOutUser(nullptr);
    EXPECT_EQ(node.GetCheckedOutUser(), nullptr);
}

TEST(CFCNode, TextMayPointIntoTheNodeItself) {
    PlainNode node;
    node.SetNodeCaption(L"caption");
    node.SetNodeCaption(node.GetNodeCaption());
    EXPECT_EQ(narrow(node.GetNodeCaption()), "caption");
    node.SetNodeCaption(node.GetNodeCaption() + 3);
    EXPECT_EQ(narrow(node.GetNodeCaption()), "tion");
    node.SetItemFilePath(L"one");
    node.SetItemFilePath(node.GetItemFilePath());
    EXPECT_EQ(narrow(node.GetItemFilePath()), "one");
}

TEST(CFCNode, FormsWithoutArgumentStoreNothing) {
    PlainNode node;
    node.SetModified();
    EXPECT_FALSE(node.IsModified());
    node.SetDeleted();
    EXPECT_FALSE(node.IsDeleted());
    node.SetNodeDescription(L"kept");
    node.GetNodeDescription(L"text");
    EXPECT_EQ(narrow(node.GetNodeDescription()), "kept");
    TuString out(L"untouched");
    node.GetHierarchy(out);
    EXPECT_EQ(narrow(out), "untouched");
}

TEST(CFCNode, LibraryStateReadsAsNothingWhateverWasSet) {
    PlainNode node;
    node.SetProjectType(EProjectType_TASK);
    EXPECT_EQ(static_cast<int>(node.GetProjectType()), 8);
    node.SetDirty(true);
    EXPECT_FALSE(node.IsDirty());
    node.SetCheckedOut(true);
    EXPECT_FALSE(node.IsCheckedOut());
    node.SetUptoDate(true);
    EXPECT_FALSE(node.IsUptoDate());
    node.SetCheckedOutUser(L"somebody");
    EXPECT_EQ(node.GetCheckedOutUser(), nullptr);
}

TEST(CFCNode, LinkCanBeLoadedWhenItIsNotAndUnloadedWhenItIs) {
    PlainNode node;
    for (bool const link : {false, true}) {
        for (bool const loaded : {false, true}) {
            node.SetFileLink(link);
            node.SetLoaded(loaded);
            EXPECT_EQ(node.IsFileLink(), link);
            EXPECT_EQ(node.IsLoaded(), loaded);
            EXPECT_EQ(node.CanLoad(), link && !loaded);
            EXPECT_EQ(node.CanUnLoad(), link && loaded);
        }
    }
    // The host does the work.
    node.SetLoaded(false);
    node.AutoLoad();
    EXPECT_FALSE(node.IsLoaded());
    node.SetLoaded(true);
    node.UnLoad();
    EXPECT_TRUE(node.IsLoaded());
}

TEST(CFCNode, IsAWorkflowNodeFrom150To168) {
    PlainNode node;
    for (int type = 140; type <= 180; ++type) {
        node.SetNodeType(type);
        EXPECT_EQ(node.IsBPMNode(), type >= 150 && type <= 168) << type;
    }
}

TEST(CFCNode, ImageGoesByTheNodeType) {
    struct Row {
        int type;
        int image;
    };
    Row const rows[] = {{55, 5}, {57, 3}, {59, 3}, {79, 3}, {169, 3}, {58, 4},  {60, 2},  {61, 2},   {71, 6},
                        {73, 6}, {74, 6}, {75, 6}, {76, 6}, {77, 6},  {170, 6}, {171, 6}, {173, 15}, {174, 14}};
    PlainNode node;
    std::vector<int> expected(400, 0);
    for (Row const& row : rows) {
        expected[static_cast<std::size_t>(row.type)] = row.image;
    }
    for (int type = 0; type < 400; ++type) {
        node.SetNodeType(type);
        EXPECT_EQ(node.GetImage(), expected[static_cast<std::size_t>(type)]) << type;
    }
    node.SetNodeType(-5);
    EXPECT_EQ(node.GetImage(), 0);
}

// ---- handles and copies -------------------------------------------------------------------------

TEST(CFCNode, DrawsTheNextHandleAndEntersItself) {
    PlainNode first;
    PlainNode second;
    EXPECT_GT(first.GetNodeHandle(), 0);
    EXPECT_EQ(second.GetNodeHandle(), first.GetNodeHandle() + 1);
    EXPECT_EQ(CFCNodeManager::GetNode(first.GetNodeHandle()), &first);
    EXPECT_EQ(CFCNodeManager::GetNode(second.GetNodeHandle()), &second);
}

TEST(CFCNode, HandlesAreNeverUsedAgain) {
    int handle = 0;
    {
        PlainNode node;
        handle = node.GetNodeHandle();
        EXPECT_EQ(CFCNodeManager::GetNode(handle), &node);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
    PlainNode later;
    EXPECT_EQ(later.GetNodeHandle(), handle + 1);
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}

TEST(CFCNode, FirstHandleOfAProcessIsOne) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            PlainNode node;
            std::exit(node.GetNodeHandle() == 1 && CFCNodeManager::GetNode(1) == &node ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(CFCNode, SettingTheHandleRegistersNothing) {
    PlainNode node;
    int const own = node.GetNodeHandle();
    node.SetNodeHandle(own + 100000);
    EXPECT_EQ(node.GetNodeHandle(), own + 100000);
    EXPECT_EQ(CFCNodeManager::GetNode(own), &node);
    EXPECT_EQ(CFCNodeManager::GetNode(own + 100000), nullptr);
}

TEST(CFCNode, EntryIsClearedAfterTheHandleWasSet) {
    int own = 0;
    int stranger = 0;
    PlainNode other;
    stranger = other.GetNodeHandle();
    {
        PlainNode node;
        own = node.GetNodeHandle();
        node.SetNodeHandle(stranger);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(own), nullptr);
    EXPECT_EQ(CFCNodeManager::GetNode(stranger), nullptr) << "the handle that a node carries at its end is emptied";
}

TEST(CFCNode, WildHandleDoesNoHarmAtTheEnd) {
    int own = 0;
    for (int const wild : {std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), -1, 0}) {
        {
            PlainNode node;
            own = node.GetNodeHandle();
            node.SetNodeHandle(wild);
        }
        EXPECT_EQ(CFCNodeManager::GetNode(own), nullptr);
    }
}

TEST(CFCNode, CopyLooksLikeItsSourceInTheTree) {
    PlainNode a;
    PlainNode b;
    PlainNode c;
    PlainNode d;
    PlainNode source;
    source.SetNodeType(57);
    source.SetChild(&a);
    source.SetParentNode(&b);
    source.SetPrev(&c);
    source.SetNext(&d);
    source.SetPrevL(&a);
    source.SetNextL(&b);
    source.SetChildL(&c);
    source.SetItemData(5);
    source.SetNodeCaption(L"caption");
    source.SetNodeProcessID(6);
    source.SetNodeDescription(L"description");
    source.SetFileLinkPath(L"link");
    source.SetMark(true);
    source.SetFileLink(true);
    source.SetLoaded(true);
    source.SetItemFilePath(L"item");
    source.SetItemFileBaseDirectory(L"base");
    source.SetImageIndex(7);
    source.SetVersionNo(3.0F);
    source.SetNewPath(true);
    source.SetModified(true);
    source.SetDeleted(true);
    source.SetDeleteAllVersions(true);
    source.SetNodeCollectionIndex(8);
    source.setState(12);
    source.SetProjectType(EProjectType_MSP);
    source.SetDirty(true);
    source.SetCheckedOut(true);
    source.SetUptoDate(true);
    source.SetCheckedOutUser(L"somebody");

    auto const expectLikeSource = [&](PlainNode& copy) {
        EXPECT_EQ(copy.GetNodeType(), 57);
        EXPECT_EQ(copy.GetChild(), &a);
        EXPECT_EQ(copy.GetParentNode(), &b);
        EXPECT_EQ(copy.GetPrev(), &c);
        EXPECT_EQ(copy.GetNext(), &d);
        EXPECT_EQ(copy.GetPrevL(), &a);
        EXPECT_EQ(copy.GetNextL(), &b);
        EXPECT_EQ(copy.GetChildL(), &c);
        EXPECT_EQ(copy.GetItemData(), 5);
        EXPECT_EQ(copy.GetNodeHandle(), source.GetNodeHandle());
        EXPECT_EQ(narrow(copy.GetNodeCaption()), "caption");
        EXPECT_EQ(copy.GetNodeProcessID(), 6U);
        EXPECT_EQ(narrow(copy.GetNodeDescription()), "description");
        EXPECT_EQ(narrow(copy.GetFileLinkPath()), "link");
        EXPECT_TRUE(copy.IsMarked());
        EXPECT_TRUE(copy.IsFileLink());
        EXPECT_TRUE(copy.IsLoaded());
        EXPECT_EQ(narrow(copy.GetItemFilePath()), "item");
        EXPECT_EQ(narrow(copy.GetItemFileBaseDirectory()), "base");
        EXPECT_EQ(copy.GetImageIndex(), 7);
        EXPECT_EQ(copy.GetVersionNo(), 3.0F);
        EXPECT_TRUE(copy.IsNewPath());
        EXPECT_TRUE(copy.IsModified());
        EXPECT_TRUE(copy.IsDeleted());
        EXPECT_TRUE(copy.IsDeleteAllVersions());
        EXPECT_EQ(copy.GetNodeCollectionIndex(), 8);
        EXPECT_EQ(copy.checkState(2), 4U);
        EXPECT_EQ(copy.checkState(3), 8U);
        EXPECT_EQ(static_cast<int>(copy.storedProjectType()), 2);
        EXPECT_TRUE(copy.storedDirty());
        EXPECT_TRUE(copy.storedCheckedOut());
        EXPECT_TRUE(copy.storedUptoDate());
        EXPECT_EQ(narrow(copy.storedUser()), "somebody");
    };
    PlainNode copy(source);
    expectLikeSource(copy);
    PlainNode assigned;
    assigned = source;
    expectLikeSource(assigned);
    // Neighbours know nothing of the copies.
    EXPECT_EQ(a.GetParentNode(), nullptr);
    EXPECT_EQ(CFCNodeManager::GetNode(source.GetNodeHandle()), &source);
}

TEST(CFCNode, EndOfACopyEmptiesTheEntryOfItsSource) {
    PlainNode source;
    int const handle = source.GetNodeHandle();
    {
        PlainNode const copy(source);
        EXPECT_EQ(CFCNodeManager::GetNode(handle), &source);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
}

TEST(CFCNode, AssignedNodeLeavesNoEntryBehind) {
    PlainNode source;
    int own = 0;
    {
        PlainNode target;
        own = target.GetNodeHandle();
        target = source;
        EXPECT_EQ(target.GetNodeHandle(), source.GetNodeHandle());
        EXPECT_EQ(CFCNodeManager::GetNode(own), &target);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(own), nullptr);
    EXPECT_EQ(CFCNodeManager::GetNode(source.GetNodeHandle()), nullptr);
}

TEST(CFCNode, AssignmentToItselfChangesNothing) {
    PlainNode node;
    node.SetNodeCaption(L"caption");
    PlainNode& same = node;
    node = same;
    EXPECT_EQ(narrow(node.GetNodeCaption()), "caption");
    EXPECT_EQ(CFCNodeManager::GetNode(node.GetNodeHandle()), &node);
}

TEST(CFCNode, DestructorLeavesChildrenAndSiblings) {
    PlainNode child;
    PlainNode sibling;
    {
        PlainNode node;
        node.AppendChild(&child, false);
        node.SetNext(&sibling);
        sibling.SetPrev(&node);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(child.GetNodeHandle()), &child);
    EXPECT_EQ(CFCNodeManager::GetNode(sibling.GetNodeHandle()), &sibling);
}

// ---- children -----------------------------------------------------------------------------------

TEST(CFCNode, AppendChildPutsTheNewChildInFront) {
    NamedNode parent(L"P");
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode c(L"C");
    EXPECT_TRUE(parent.AppendChild(&a, false));
    EXPECT_TRUE(parent.AppendChild(&b, true));
    EXPECT_TRUE(parent.AppendChild(&c, false));
    EXPECT_EQ(childNames(parent), "C B A");
    EXPECT_EQ(a.GetPrev(), &b);
    EXPECT_EQ(b.GetPrev(), &c);
    EXPECT_EQ(c.GetPrev(), nullptr);
    for (NamedNode* const child : {&a, &b, &c}) {
        EXPECT_EQ(child->GetParentNode(), &parent);
    }
}

TEST(CFCNode, FirstChildKeepsItsSiblingLinks) {
    NamedNode parent(L"P");
    NamedNode child(L"A");
    NamedNode before(L"before");
    NamedNode behind(L"behind");
    child.SetPrev(&before);
    child.SetNext(&behind);
    parent.AppendChild(&child, false);
    EXPECT_EQ(parent.GetChild(), &child);
    EXPECT_EQ(child.GetPrev(), &before);
    EXPECT_EQ(child.GetNext(), &behind);
    // A later child has its next link set and its previous one left.
    NamedNode second(L"B");
    second.SetPrev(&before);
    parent.AppendChild(&second, false);
    EXPECT_EQ(second.GetPrev(), &before);
    EXPECT_EQ(second.GetNext(), &child);
    EXPECT_EQ(child.GetPrev(), &second);
}

TEST(CFCNode, AppendChildGoesThroughTheNodesOwnSetters) {
    // Counts what the parent is asked to store.
    class Watcher : public PlainNode {
    public:
        void SetChild(IFCNode* node) override {
            ++stored;
            PlainNode::SetChild(node);
        }
        int stored = 0;
    };
    Watcher parent;
    PlainNode a;
    PlainNode b;
    parent.AppendChild(&a, false);
    EXPECT_EQ(parent.stored, 0) << "the first child goes into the field directly";
    parent.AppendChild(&b, false);
    EXPECT_EQ(parent.stored, 1);
    EXPECT_EQ(parent.GetChild(), &b);
}

TEST(CFCNode, AppendChildLeavesWhatWouldTieALoop) {
    NamedNode root(L"R");
    NamedNode middle(L"M");
    NamedNode leaf(L"L");
    root.AppendChild(&middle, false);
    middle.AppendChild(&leaf, false);
    EXPECT_TRUE(leaf.AppendChild(nullptr, false));
    EXPECT_TRUE(leaf.AppendChild(&leaf, false));
    EXPECT_TRUE(leaf.AppendChild(&root, false));
    EXPECT_TRUE(leaf.AppendChild(&middle, false));
    EXPECT_EQ(leaf.GetChild(), nullptr);
    EXPECT_EQ(root.GetParentNode(), nullptr);
    EXPECT_TRUE(root.AppendChild(&middle, false));
    EXPECT_EQ(root.GetChild(), &middle);
    EXPECT_EQ(middle.GetNext(), nullptr);
    EXPECT_EQ(middle.GetPrev(), nullptr);
}

TEST(CFCNode, RemoveLinksForgetsTheTreeAndKeepsTheSecondChain) {
    PlainNode node;
    PlainNode parent;
    PlainNode sibling;
    PlainNode before;
    PlainNode child;
    parent.SetChild(&node);
    node.SetParentNode(&parent);
    node.SetNext(&sibling);
    sibling.SetPrev(&node);
    node.SetPrev(&before);
    before.SetNext(&node);
    node.SetChild(&child);
    child.SetParentNode(&node);
    node.SetNextL(&sibling);
    node.SetPrevL(&before);
    node.SetChildL(&child);
    node.RemoveLinks();
    EXPECT_EQ(node.GetChild(), nullptr);
    EXPECT_EQ(node.GetParentNode(), nullptr);
    EXPECT_EQ(node.GetPrev(), nullptr);
    EXPECT_EQ(node.GetNext(), nullptr);
    EXPECT_EQ(node.GetNextL(), &sibling);
    EXPECT_EQ(node.GetPrevL(), &before);
    EXPECT_EQ(node.GetChildL(), &child);
    EXPECT_EQ(parent.GetChild(), &node);
    EXPECT_EQ(sibling.GetPrev(), &node);
    EXPECT_EQ(before.GetNext(), &node);
    EXPECT_EQ(child.GetParentNode(), &node);
}

TEST(CFCNode, FindNodeSimpleLooksAtTheDirectChildrenWithoutCase) {
    NamedNode parent(L"P");
    NamedNode a(L"Alpha");
    NamedNode b(L"Beta");
    NamedNode below(L"Gamma");
    NamedNode nameless(L"");
    parent.AppendChild(&a, false);
    parent.AppendChild(&b, false);
    parent.AppendChild(&nameless, false);
    a.AppendChild(&below, false);
    EXPECT_EQ(parent.FindNodeSimple(L"Alpha"), &a);
    EXPECT_EQ(parent.FindNodeSimple(L"aLPHA"), &a);
    EXPECT_EQ(parent.FindNodeSimple(L"beta"), &b);
    EXPECT_EQ(parent.FindNodeSimple(L"Gamma"), nullptr);
    EXPECT_EQ(parent.FindNodeSimple(L"P"), nullptr);
    EXPECT_EQ(parent.FindNodeSimple(L""), nullptr);
    EXPECT_EQ(parent.FindNodeSimple(nullptr), nullptr);
    EXPECT_EQ(below.FindNodeSimple(L"Alpha"), nullptr);
    EXPECT_EQ(below.FindNodeSimple(L""), nullptr);
}

TEST(CFCNode, FindNodeSimpleGivesTheFirstOfEqualIds) {
    NamedNode parent(L"P");
    NamedNode older(L"Same");
    NamedNode newer(L"SAME");
    parent.AppendChild(&older, false);
    parent.AppendChild(&newer, false);
    EXPECT_EQ(parent.FindNodeSimple(L"same"), &newer);
    EXPECT_EQ(parent.FindNodeSimple(L"Same"), &newer);
}

TEST(CFCNode, FindNodeSimpleFoldsBeyondAscii) {
    NamedNode parent(L"P");
    NamedNode a(L"Pr\u00FCfung");
    parent.AppendChild(&a, false);
    EXPECT_EQ(parent.FindNodeSimple(L"PR\u00DCFUNG"), &a);
}

TEST(CFCNode, FindNodeSimpleTakesATextOfTheChildItself) {
    NamedNode parent(L"P");
    NamedNode a(L"A");
    parent.AppendChild(&a, false);
    EXPECT_EQ(parent.FindNodeSimple(a.GetNodeId()), &a);
}

TEST(CFCNode, FindNodeWithOldIdGoesByTheFormerId) {
    NamedNode parent(L"P");
    NamedNode a(L"New");
    NamedNode b(L"Other");
    a.SetOldNodeId(L"Former");
    parent.AppendChild(&a, false);
    parent.AppendChild(&b, false);
    EXPECT_EQ(parent.FindNodeWithOldId(L"fORMER"), &a);
    EXPECT_EQ(parent.FindNodeWithOldId(L"New"), nullptr);
    EXPECT_EQ(parent.FindNodeWithOldId(L""), nullptr);
    EXPECT_EQ(parent.FindNodeWithOldId(nullptr), nullptr);
    EXPECT_EQ(parent.FindNodeSimple(L"Former"), nullptr);
    NamedNode nearer(L"Third");
    nearer.SetOldNodeId(L"FORMER");
    parent.AppendChild(&nearer, false);
    EXPECT_EQ(parent.FindNodeWithOldId(L"Former"), &nearer);
}

TEST(CFCNode, FindNodeComplexAlwaysMisses) {
    NamedNode parent(L"P");
    NamedNode a(L"A");
    parent.AppendChild(&a, false);
    EXPECT_EQ(parent.FindNodeComplex(L"A"), nullptr);
}

// ---- upwards ------------------------------------------------------------------------------------

TEST(CFCNode, RootIsTheTopmostAncestor) {
    NamedNode root(L"R");
    NamedNode middle(L"M");
    NamedNode leaf(L"L");
    chain({&root, &middle, &leaf});
    EXPECT_EQ(leaf.GetRootNode(), &root);
    EXPECT_EQ(middle.GetRootNode(), &root);
    EXPECT_EQ(root.GetRootNode(), &root);
}

TEST(CFCNode, RootIsAskedOfTheParent) {
    class OwnRoot : public PlainNode {
    public:
        IFCNode* GetRootNode() override { return elsewhere; }
        IFCNode* elsewhere = nullptr;
    };
    PlainNode elsewhere;
    PlainNode top;
    OwnRoot middle;
    PlainNode leaf;
    PlainNode leafBelow;
    middle.elsewhere = &elsewhere;
    chain({&top, &middle, &leaf, &leafBelow});
    EXPECT_EQ(leaf.GetRootNode(), &elsewhere);
    EXPECT_EQ(leafBelow.GetRootNode(), &elsewhere);
    // A second question is answered as the first.
    EXPECT_EQ(leafBelow.GetRootNode(), &elsewhere);
}

TEST(CFCNode, PathJoinsTheIdsFromTheRootDown) {
    NamedNode root(L"R");
    NamedNode middle(L"M");
    NamedNode leaf(L"L");
    chain({&root, &middle, &leaf});
    EXPECT_EQ(narrow(root.GetNodePath()), "R");
    EXPECT_EQ(narrow(middle.GetNodePath()), "R.M");
    EXPECT_EQ(narrow(leaf.GetNodePath()), "R.M.L");
}

TEST(CFCNode, AncestorWithoutIdLeavesNoSegment) {
    NamedNode root(L"");
    NamedNode a(L"A");
    NamedNode nameless(L"");
    NamedNode b(L"B");
    chain({&root, &a, &nameless, &b});
    EXPECT_EQ(narrow(b.GetNodePath()), "A.B");
    EXPECT_EQ(narrow(a.GetNodePath()), "A");
    EXPECT_EQ(narrow(root.GetNodePath()), "");
}

TEST(CFCNode, PathOfANodeWithoutIdEndsInAPoint) {
    NamedNode a(L"A");
    NamedNode nameless(L"");
    chain({&a, &nameless});
    EXPECT_EQ(narrow(nameless.GetNodePath()), "A.");
}

TEST(CFCNode, PathByCaptionLeavesTheTwoTopmostLevelsOut) {
    PlainNode root;
    PlainNode child;
    PlainNode grandchild;
    PlainNode third;
    PlainNode fourth;
    root.SetNodeCaption(L"Root");
    child.SetNodeCaption(L"Child");
    grandchild.SetNodeCaption(L"Grandchild");
    third.SetNodeCaption(L"Third");
    fourth.SetNodeCaption(L"Fourth");
    chain({&root, &child, &grandchild, &third, &fourth});
    EXPECT_EQ(narrow(root.GetNodePathByCaption()), "Root");
    EXPECT_EQ(narrow(child.GetNodePathByCaption()), "Child");
    EXPECT_EQ(narrow(grandchild.GetNodePathByCaption()), "Grandchild");
    EXPECT_EQ(narrow(third.GetNodePathByCaption()), "Grandchild.Third");
    EXPECT_EQ(narrow(fourth.GetNodePathByCaption()), "Grandchild.Third.Fourth");
    third.SetNodeCaption(L"");
    EXPECT_EQ(narrow(fourth.GetNodePathByCaption()), "Grandchild.Fourth");
    EXPECT_EQ(narrow(third.GetNodePathByCaption()), "Grandchild.");
}

TEST(CFCNode, BothPathsShareOneText) {
    NamedNode root(L"R");
    NamedNode leaf(L"L");
    leaf.SetNodeCaption(L"Leaf caption");
    chain({&root, &leaf});
    TuString const path(leaf.GetNodePath());
    EXPECT_EQ(narrow(leaf.GetNodePathByCaption()), "Leaf caption");
    EXPECT_EQ(narrow(leaf.GetNodePath()), "R.L");
    EXPECT_EQ(narrow(path), "R.L");
}

TEST(CFCNode, HierarchyBeginsWithTheRootsCaption) {
    PlainNode root;
    PlainNode middle;
    PlainNode leaf;
    root.SetNodeCaption(L"Root");
    middle.SetNodeCaption(L"Middle");
    leaf.SetNodeCaption(L"Leaf");
    chain({&root, &middle, &leaf});
    TuString separator(L" / ");
    TuString out(L"replaced");
    leaf.GetHierarchy(separator, out);
    EXPECT_EQ(narrow(out), "Root / Middle / Leaf");
    root.GetHierarchy(separator, out);
    EXPECT_EQ(narrow(out), "Root");
    // Empty captions keep their separators.
    middle.SetNodeCaption(L"");
    leaf.GetHierarchy(separator, out);
    EXPECT_EQ(narrow(out), "Root /  / Leaf");
    // One text for both.
    leaf.GetHierarchy(separator, separator);
    EXPECT_EQ(narrow(separator), "Root /  / Leaf");
}

TEST(CFCNode, ParentLoopEndsAsAtARoot) {
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode below(L"C");
    a.SetParentNode(&b);
    b.SetParentNode(&a);
    below.SetParentNode(&a);
    IFCNode* const root = below.GetRootNode();
    EXPECT_TRUE(root == &a || root == &b);
    EXPECT_EQ(a.GetRootNode(), &b);
    EXPECT_EQ(narrow(a.GetNodePath()), "B.A");
    EXPECT_EQ(narrow(a.GetNodePathByCaption()), "");
    TuString separator(L"/");
    TuString out;
    a.GetHierarchy(separator, out);
    EXPECT_EQ(narrow(out), "/");
    NamedNode self(L"S");
    self.SetParentNode(&self);
    EXPECT_EQ(self.GetRootNode(), &self);
    EXPECT_EQ(narrow(self.GetNodePath()), "S");
}

// ---- marks and variables ------------------------------------------------------------------------

TEST(CFCNode, UnMarkResetsTheWholeSubtree) {
    NamedNode root(L"R");
    NamedNode a(L"A");
    NamedNode b(L"B");
    NamedNode below(L"C");
    NamedNode beside(L"D");
    root.AppendChild(&a, false);
    root.AppendChild(&b, false);
    a.AppendChild(&below, false);
    root.SetNext(&beside);
    for (NamedNode* const node : {&root, &a, &b, &below, &beside}) {
        node->SetMark(true);
    }
    root.UnMark();
    for (NamedNode* const node : {&root, &a, &b, &below}) {
        EXPECT_FALSE(node->IsMarked()) << narrow(node->GetNodeId());
    }
    EXPECT_TRUE(beside.IsMarked());
}

TEST(CFCNode, ResolveVariablesGoesToEachNodeBelow) {
    class Resolving : public PlainNode {
    public:
        void ResolveVariables() override {
            ++calls;
            PlainNode::ResolveVariables();
        }
        int calls = 0;
    };
    Resolving root;
    Resolving a;
    Resolving b;
    Resolving below;
    root.AppendChild(&a, false);
    root.AppendChild(&b, false);
    a.AppendChild(&below, false);
    root.ResolveVariables();
    EXPECT_EQ(root.calls, 1);
    EXPECT_EQ(a.calls, 1);
    EXPECT_EQ(b.calls, 1);
    EXPECT_EQ(below.calls, 1);
}

// ---- Delete -------------------------------------------------------------------------------------

TEST(CFCNode, DeleteUnhooksAFirstChild) {
    NamedNode parent(L"P");
    auto* const a = new NamedNode(L"A");
    auto* const b = new NamedNode(L"B");
    parent.AppendChild(a, false);
    parent.AppendChild(b, false);
    int const handle = b->GetNodeHandle();
    b->Delete();
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
    EXPECT_EQ(parent.GetChild(), a);
    EXPECT_EQ(a->GetPrev(), nullptr);
    a->Delete();
    EXPECT_EQ(parent.GetChild(), nullptr);
}

TEST(CFCNode, DeleteJoinsTheNeighbours) {
    NamedNode parent(L"P");
    auto* const a = new NamedNode(L"A");
    auto* const b = new NamedNode(L"B");
    auto* const c = new NamedNode(L"C");
    parent.AppendChild(a, false);
    parent.AppendChild(b, false);
    parent.AppendChild(c, false);
    b->Delete();
    EXPECT_EQ(childNames(parent), "C A");
    EXPECT_EQ(a->GetPrev(), c);
    a->Delete();
    EXPECT_EQ(childNames(parent), "C");
    EXPECT_EQ(c->GetNext(), nullptr);
    c->Delete();
    EXPECT_EQ(parent.GetChild(), nullptr);
}

TEST(CFCNode, DeleteJoinsTheNeighboursWithoutAParent) {
    NamedNode a(L"A");
    auto* const b = new NamedNode(L"B");
    NamedNode c(L"C");
    a.SetNext(b);
    b->SetPrev(&a);
    b->SetNext(&c);
    c.SetPrev(b);
    b->Delete();
    EXPECT_EQ(a.GetNext(), &c);
    EXPECT_EQ(c.GetPrev(), &a);
}

TEST(CFCNode, DeleteTakesTheChainOfFirstChildrenAlone) {
    auto* const root = new NamedNode(L"R");
    auto* const stays = new NamedNode(L"stays");
    auto* const alsoStays = new NamedNode(L"also stays");
    auto* const first = new NamedNode(L"first");
    auto* const below = new NamedNode(L"below");
    root->AppendChild(stays, false);
    root->AppendChild(alsoStays, false);
    root->AppendChild(first, false);
    first->AppendChild(below, false);
    int const gone[] = {root->GetNodeHandle(), first->GetNodeHandle(), below->GetNodeHandle()};
    root->Delete();
    for (int const handle : gone) {
        EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
    }
    EXPECT_EQ(CFCNodeManager::GetNode(stays->GetNodeHandle()), stays);
    EXPECT_EQ(CFCNodeManager::GetNode(alsoStays->GetNodeHandle()), alsoStays);
    // What stays does not point at what is gone.
    EXPECT_EQ(stays->GetParentNode(), nullptr);
    EXPECT_EQ(alsoStays->GetParentNode(), nullptr);
    EXPECT_EQ(alsoStays->GetPrev(), nullptr);
    EXPECT_EQ(alsoStays->GetNext(), stays);
    EXPECT_EQ(stays->GetPrev(), alsoStays);
    delete stays;
    delete alsoStays;
}

TEST(CFCNode, DeleteComesToAnEndWhenAChildWasAppendedTwice) {
    for (bool const firstStandsOutside : {false, true}) {
        auto* const root = new NamedNode(L"R");
        auto* const a = new NamedNode(L"A");
        auto* const b = new NamedNode(L"B");
        for (NamedNode* const child : {a, b, a}) {
            root->AppendChild(child, false); // the chain goes round in the end
        }
        auto* const outside = firstStandsOutside ? new NamedNode(L"C") : nullptr;
        root->AppendChild(outside, false);
        IFCNode* const first = root->GetChild();
        int const goes = first->GetNodeHandle();
        root->Delete();
        EXPECT_EQ(CFCNodeManager::GetNode(goes), nullptr);
        EXPECT_EQ(b->GetParentNode(), nullptr);
        delete b;
        if (firstStandsOutside) {
            EXPECT_EQ(a->GetParentNode(), nullptr);
            delete a;
        }
    }
}

TEST(CFCNode, DeepTreesDoNotBreakTheStack) {
    constexpr int kLevels = kDeepLevels;
    auto* const root = new NamedNode(L"");
    IFCNode* node = root;
    for (int i = 0; i < kLevels; ++i) {
        auto* const child = new NamedNode(L"x");
        child->SetNodeCaption(L"c");
        node->AppendChild(child, false);
        child->SetMark(true);
        node = child;
    }
    EXPECT_EQ(node->GetRootNode(), root);
    EXPECT_EQ(TuString(node->GetNodePath()).GetLength(), 2 * kLevels - 1);
    TuString separator(L"/");
    TuString out;
    node->GetHierarchy(separator, out);
    EXPECT_EQ(out.GetLength(), 2 * kLevels);
    root->UnMark();
    EXPECT_FALSE(node->IsMarked());
    root->ResolveVariables();
    int const deepest = node->GetNodeHandle();
    root->Delete();
    EXPECT_EQ(CFCNodeManager::GetNode(deepest), nullptr);
}

// ---- the folder nodes ---------------------------------------------------------------------------

TEST(CFCProcessList, IsAPlainNodeWithAnImageOfItsOwn) {
    CFCProcessList list;
    EXPECT_EQ(list.GetImage(), 1);
    list.SetNodeType(170);
    EXPECT_EQ(list.GetImage(), 1);
    list.Create();
    EXPECT_EQ(list.GetChild(), nullptr);
    EXPECT_EQ(list.CloneNode(), nullptr);
    static_assert(sizeof(CFCProcessList) == sizeof(CFCNode), "it has no fields");
}

TEST(CFCProcessList, IgnoresTheCodeItIsBuiltWith) {
    CFCProcessList list(69);
    EXPECT_EQ(list.GetNodeType(), 0);
    EXPECT_EQ(list.GetImage(), 1);
}

TEST(CFCSubGroupNode, IsTheFolder) {
    CFCSubGroupNode folder;
    EXPECT_NE(dynamic_cast<CFCProcessList*>(static_cast<IFCNode*>(&folder)), nullptr);
    for (int const type : {71, 178, 179}) {
        folder.SetNodeType(type);
        EXPECT_EQ(folder.GetImage(), 6);
    }
    folder.SetNodeId(L"id");
    EXPECT_EQ(narrow(folder.GetNodeId()), "") << "a folder has no identifier";
}

} // namespace
