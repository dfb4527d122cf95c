#include "flowmere/model/FCNodeFactory.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/NodeKinds.h"
#include "model/PlainNodes.h"
#include "model/VirtualSlots.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <typeindex>
#include <typeinfo>

namespace {

using flowmere::test::narrow;
using flowmere::test::PlainNode;

// The class of each code.
std::map<int, std::type_index> const& classes() {
    static std::map<int, std::type_index> const s_classes = {
        {55, typeid(CFCBlockNode)},        {56, typeid(CFCProcessNode)},     {57, typeid(CFCBlockNode)},
        {58, typeid(CFCBlockNode)},        {59, typeid(CFCBlockNode)},       {60, typeid(CFCSubProcessNode)},
        {61, typeid(CFCSubProcessNode)},   {68, typeid(CFCConnector)},       {69, typeid(CFCProcessList)},
        {70, typeid(CFCFileNode)},         {71, typeid(CFCSubGroupNode)},    {72, typeid(CFCVariableData)},
        {79, typeid(CFCCodeNode)},         {80, typeid(CFCDataTypeNode)},    {81, typeid(CFCDataTypeNode)},
        {82, typeid(CFCDataTypeNode)},     {83, typeid(CFCFileTypeNode)},    {85, typeid(CFCMimeTypeNode)},
        {86, typeid(CFCMimeTypeNode)},     {150, typeid(CFCBPMTaskNode)},    {151, typeid(CFCBPMTaskNode)},
        {152, typeid(CFCBPMTaskNode)},     {153, typeid(CFCBPMTaskNode)},    {154, typeid(CFCBPMTaskNode)},
        {155, typeid(CFCBPMTaskNode)},     {156, typeid(CFCBPMTaskNode)},    {157, typeid(CFCBPMTaskNode)},
        {158, typeid(CFCBPMTaskNode)},     {159, typeid(CFCBPMTaskNode)},    {160, typeid(CFCBPMProcessNode)},
        {161, typeid(CFCBPMTaskNode)},     {162, typeid(CFCBPMTaskNode)},    {163, typeid(CFCBPMTaskNode)},
        {164, typeid(CFCBPMTaskNode)},     {165, typeid(CFCBPMTaskNode)},    {167, typeid(CFCApplicationNode)},
        {168, typeid(CFCApplicationNode)}, {170, typeid(CFCFileNode)},       {171, typeid(CFCAPIHelpNode)},
        {172, typeid(CFCPackageNode)},     {176, typeid(CFCFavouriteNode)},  {177, typeid(CFCDocumentNode)},
        {179, typeid(CFCSubGroupNode)},    {182, typeid(CFCDeploymentData)}, {183, typeid(CFCResourceData)},
    };
    return s_classes;
}

TEST(CFCNodeFactory, BuildsTheClassOfEachCodeAndStoresTheCode) {
    CFCNodeFactory factory;
    for (int code = -10; code <= 300; ++code) {
        IFCNode* const node = factory.Create(code);
        auto const expected = classes().find(code);
        if (expected == classes().end()) {
            EXPECT_EQ(node, nullptr) << code;
            continue;
        }
        ASSERT_NE(node, nullptr) << code;
        IFCNode& object = *node;
        EXPECT_EQ(std::type_index(typeid(object)), expected->second) << code;
        EXPECT_EQ(node->GetNodeType(), code);
        EXPECT_EQ(node->GetParentNode(), nullptr);
        EXPECT_EQ(CFCNodeManager::GetNode(node->GetNodeHandle()), node) << code;
        CFCNodeHelper::DestroyTree(node);
    }
}

TEST(CFCNodeFactory, GivesNullOutsideTheTableAndDrawsNoHandle) {
    CFCNodeFactory factory;
    PlainNode before;
    for (int const code : {54,
                           184,
                           62,
                           73,
                           74,
                           75,
                           76,
                           77,
                           78,
                           84,
                           166,
                           169,
                           173,
                           174,
                           175,
                           178,
                           180,
                           181,
                           0,
                           -1,
                           std::numeric_limits<int>::max(),
                           std::numeric_limits<int>::min()}) {
        EXPECT_EQ(factory.Create(code), nullptr) << code;
    }
    PlainNode after;
    EXPECT_EQ(after.GetNodeHandle(), before.GetNodeHandle() + 1);
}

TEST(CFCNodeFactory, DrawsTheHandlesOfTheNodeAndItsMembers) {
    struct Row {
        int code;
        int handles;
        int first; // the node's own, counted from 0: it is drawn before those of its members
    };
    // A sub-process of code 60 is built twice, and the second one is given.
    Row const rows[] = {{57, 5, 0},   {55, 5, 0},   {61, 5, 0},   {60, 10, 5}, {56, 7, 0}, {150, 13, 0},
                        {160, 27, 0}, {167, 17, 0}, {168, 17, 0}, {68, 1, 0},  {72, 3, 0}, {71, 1, 0}};
    CFCNodeFactory factory;
    for (Row const& row : rows) {
        PlainNode before;
        IFCNode* const node = factory.Create(row.code);
        PlainNode after;
        ASSERT_NE(node, nullptr) << row.code;
        EXPECT_EQ(after.GetNodeHandle() - before.GetNodeHandle() - 1, row.handles) << row.code;
        EXPECT_EQ(node->GetNodeHandle(), before.GetNodeHandle() + 1 + row.first) << row.code;
        if (row.code == 60) {
            // The first object stays behind, known to the table alone.
            IFCNode* const leftBehind = CFCNodeManager::GetNode(before.GetNodeHandle() + 1);
            ASSERT_NE(leftBehind, nullptr);
            EXPECT_NE(leftBehind, node);
            EXPECT_NE(dynamic_cast<CFCSubProcessNode*>(leftBehind), nullptr);
            CFCNodeHelper::DestroyTree(leftBehind);
        }
        CFCNodeHelper::DestroyTree(node);
    }
}

TEST(CFCNodeFactory, HandsTheCodeToTheTaskNodesItBuilds) {
    CFCNodeFactory factory;
    for (auto const& [code, type] : classes()) {
        IFCNode* const node = factory.Create(code);
        if (CFCBlockNode* const block = dynamic_cast<CFCBlockNode*>(node)) {
            bool const takesTheCode = type == typeid(CFCBPMTaskNode);
            EXPECT_EQ(block->blockKind, takesTheCode ? code : 0) << code;
        }
        CFCNodeHelper::DestroyTree(node);
    }
}

#if FLOWMERE_TEST_SLOTS
TEST(CFCNodeFactory, OperationsStandInTheDeclaredOrderBehindTheDestructor) {
    using flowmere::test::kDestructorSlots;
    using flowmere::test::slotOf;
    EXPECT_EQ(slotOf(&CFCNodeFactory::Create), kDestructorSlots);
    EXPECT_EQ(slotOf(&CFCNodeFactory::IsFullPath), kDestructorSlots + 1);
    EXPECT_EQ(slotOf(&CFCNodeFactory::IsFileExists), kDestructorSlots + 2);
    EXPECT_EQ(slotOf(&CFCNodeFactory::GetMacroPath), kDestructorSlots + 3);
    EXPECT_EQ(flowmere::test::slotsOf<CFCNodeFactory>(), kDestructorSlots + 4);
}
#endif

TEST(CFCNodeFactory, MacroPathIsEmpty) {
    CFCNodeFactory factory;
    EXPECT_EQ(narrow(factory.GetMacroPath(L"macro")), "");
    EXPECT_EQ(narrow(factory.GetMacroPath(nullptr)), "");
}

class CFCNodeFactoryFiles : public flowmere::test::ScratchTest {};

TEST_F(CFCNodeFactoryFiles, FileExistsWhenItIsARegularFile) {
    scratch.write("there.xml", "<a/>");
    CFCNodeFactory factory;
    EXPECT_TRUE(factory.IsFileExists(scratch.text("there.xml")));
    EXPECT_FALSE(factory.IsFileExists(scratch.text("missing.xml")));
    EXPECT_FALSE(factory.IsFileExists(scratch.text())) << "a folder is no file";
    EXPECT_FALSE(factory.IsFileExists(L""));
    EXPECT_FALSE(factory.IsFileExists(nullptr));
}

TEST_F(CFCNodeFactoryFiles, PathIsFullExactlyWhenSuchAFileExists) {
    scratch.write("there.xml", "<a/>");
    CFCNodeFactory factory;
    EXPECT_TRUE(factory.IsFullPath(scratch.text("there.xml")));
    EXPECT_FALSE(factory.IsFullPath(scratch.text("missing.xml")));
    EXPECT_FALSE(factory.IsFullPath(nullptr));
}

TEST(CFCNodeFactory, IsFullPathAsksTheDerivedFactory) {
    class HostFactory : public CFCNodeFactory {
    public:
        bool IsFileExists(wchar_t const* path) override { return TuString(path) == L"known"; }
    };
    HostFactory host;
    CFCNodeFactory& factory = host;
    EXPECT_TRUE(factory.IsFullPath(L"known"));
    EXPECT_FALSE(factory.IsFullPath(L"unknown"));
}

TEST(CFCNodeFactory, HostMayMakeClassesOfItsOwn) {
    class HostBlock : public CFCBlockNode {};
    class HostFactory : public CFCNodeFactory {
    public:
        IFCNode* Create(int typeCode) override {
            if (typeCode != 57) {
                return CFCNodeFactory::Create(typeCode);
            }
            IFCNode* const node = new HostBlock;
            node->SetNodeType(typeCode);
            return node;
        }
    };
    HostFactory host;
    CFCNodeFactory& factory = host;
    IFCNode* const block = factory.Create(57);
    EXPECT_NE(dynamic_cast<HostBlock*>(block), nullptr);
    CFCNodeHelper::DestroyTree(block);
    IFCNode* const connector = factory.Create(68);
    EXPECT_NE(dynamic_cast<CFCConnector*>(connector), nullptr);
    CFCNodeHelper::DestroyTree(connector);
}

} // namespace
