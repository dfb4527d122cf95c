#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCCatalogNodes.h"

#include <vector>

using namespace flowmere::test;

namespace {

IFCNode* entry(int type, wchar_t const* caption, wchar_t const* typeName) {
    IFCNode* const node = make(type, L"", caption);
    dynamic_cast<CFCDataTypeNode*>(node)->SetType(typeName);
    return node;
}

// first, then a group with two types, then a sub-group, then a type; the first entry hides two types below it.
class FindDataTypeNode : public testing::Test {
protected:
    FindDataTypeNode() {
        adopt(root, {first, group, subGroup, last});
        adopt(first, {hidden});
        adopt(group, {inner, second});
        adopt(subGroup, {fileType});
    }

    IFCNode* byType(wchar_t const* name, IFCNode* from = nullptr) {
        return CFCNodeHelper::FindDataTypeNode(name, from != nullptr ? from : first, true);
    }
    IFCNode* byCaption(wchar_t const* name, IFCNode* from = nullptr) {
        return CFCNodeHelper::FindDataTypeNode(name, from != nullptr ? from : first, false);
    }

    Tree root{81};
    IFCNode* first = entry(80, L"First Caption", L"FirstType");
    IFCNode* hidden = entry(80, L"Hidden Caption", L"HiddenType");
    IFCNode* group = entry(81, L"Group Caption", L"GroupType");
    IFCNode* inner = entry(80, L"Inner Caption", L"InnerType");
    IFCNode* second = entry(80, L"Second Caption", L"SecondType");
    IFCNode* subGroup = entry(82, L"Sub Caption", L"SubType");
    IFCNode* fileType = make(83, L"", L"File Caption");
    IFCNode* last = entry(80, L"Last Caption", L"LastType");
};

TEST_F(FindDataTypeNode, FindsTypesByTheirTypeName) {
    EXPECT_EQ(byType(L"FirstType"), first);
    EXPECT_EQ(byType(L"InnerType"), inner);
    EXPECT_EQ(byType(L"SecondType"), second);
    EXPECT_EQ(byType(L"LastType"), last);
    EXPECT_EQ(byType(L"Last Caption"), nullptr);
    EXPECT_EQ(byType(L"Nothing"), nullptr);
}

TEST_F(FindDataTypeNode, FindsAllByCaption) {
    EXPECT_EQ(byCaption(L"First Caption"), first);
    EXPECT_EQ(byCaption(L"Group Caption"), group);
    EXPECT_EQ(byCaption(L"Inner Caption"), inner);
    EXPECT_EQ(byCaption(L"Sub Caption"), subGroup);
    EXPECT_EQ(byCaption(L"File Caption"), fileType);
    EXPECT_EQ(byCaption(L"LastType"), nullptr);
}

TEST_F(FindDataTypeNode, IgnoresCase) {
    EXPECT_EQ(byType(L"innerTYPE"), inner);
    EXPECT_EQ(byCaption(L"GROUP caption"), group);
}

TEST_F(FindDataTypeNode, NeverLooksBelowTheNodeItStartsWith) {
    EXPECT_EQ(byType(L"HiddenType"), nullptr);
    EXPECT_EQ(byCaption(L"Hidden Caption"), nullptr);
    EXPECT_EQ(byType(L"InnerType", group), nullptr);
    EXPECT_EQ(byType(L"LastType", group), last);
    // The same holds one level down, for the first entry of each chain.
    IFCNode* const deep = entry(80, L"Deep", L"DeepType");
    inner->AppendChild(deep, false);
    EXPECT_EQ(byType(L"DeepType"), nullptr);
    second->AppendChild(entry(80, L"Deeper", L"DeeperType"), false);
    EXPECT_NE(byType(L"DeeperType"), nullptr);
}

TEST_F(FindDataTypeNode, AGroupAnswersToItsTypeUnlessItComesFirst) {
    EXPECT_EQ(byType(L"GroupType"), group);
    EXPECT_EQ(byType(L"Group Caption"), nullptr);
    EXPECT_EQ(byType(L"GroupType", group), nullptr);
    EXPECT_EQ(byType(L"Group Caption", group), group);
}

TEST_F(FindDataTypeNode, ASubGroupAndAFileTypeAnswerToTheirCaption) {
    EXPECT_EQ(byType(L"SubType"), nullptr);
    EXPECT_EQ(byType(L"Sub Caption"), subGroup);
    EXPECT_EQ(byType(L"File Caption"), fileType);
}

TEST_F(FindDataTypeNode, WhatLiesBelowAnEntryComesBeforeIt) {
    inner->SetNodeCaption(L"Group Caption");
    EXPECT_EQ(byCaption(L"Group Caption"), inner);
    second->SetNodeCaption(L"Last Caption");
    EXPECT_EQ(byCaption(L"Last Caption"), second);
}

TEST_F(FindDataTypeNode, FindsNothingFromNull) {
    EXPECT_EQ(CFCNodeHelper::FindDataTypeNode(L"FirstType", nullptr, true), nullptr);
    EXPECT_EQ(byType(nullptr), nullptr);
    IFCNode* const nameless = entry(80, L"", L"");
    last->SetNext(nameless);
    nameless->SetPrev(last);
    nameless->SetParentNode(root);
    EXPECT_EQ(byType(L""), nameless) << "an empty name is a name";
}

TEST_F(FindDataTypeNode, ANodeThatIsNoDataTypeGoesByItsCaption) {
    last->SetNodeType(71);
    EXPECT_EQ(byType(L"LastType"), nullptr);
    IFCNode* const folder = make(71, L"", L"Folder");
    folder->SetNodeType(80);
    last->SetNext(folder);
    folder->SetPrev(last);
    folder->SetParentNode(root);
    EXPECT_EQ(byType(L"Folder"), folder);
}

TEST_F(FindDataTypeNode, TheNameMayBeThatOfAnEntry) {
    EXPECT_EQ(byCaption(last->GetNodeCaption()), last);
}

TEST_F(FindDataTypeNode, VeryDeepCatalogsNeedNoStack) {
    // Each level has a first entry, which hides what is below it, and a second, which goes on.
    IFCNode* place = last;
    for (int level = 0; level < 20000; ++level) {
        adopt(place, {entry(80, L"a", L"a"), entry(81, L"b", L"b")});
        place = place->GetChild()->GetNext();
    }
    adopt(place, {entry(80, L"Bottom", L"BottomType")});
    EXPECT_EQ(byType(L"BottomType"), place->GetChild());
    EXPECT_EQ(byType(L"Nothing"), nullptr);
}

TEST_F(FindDataTypeNode, AGroupThatLeadsALowerChainAnswersToItsCaptionOnly) {
    group->AppendChild(entry(81, L"Lead Caption", L"LeadType"), false);
    IFCNode* const lead = group->GetChild();
    EXPECT_EQ(byType(L"LeadType"), nullptr);
    EXPECT_EQ(byType(L"Lead Caption"), lead);
    group->AppendChild(entry(80, L"Before", L"BeforeType"), false);
    EXPECT_EQ(byType(L"LeadType"), lead) << "it is no longer the first";
}

TEST_F(FindDataTypeNode, AClassOfTheHostIsAnEntryLikeAnyOther) {
    class HostType : public CFCDataTypeNode {};
    auto* const node = new HostType;
    node->SetNodeType(80);
    node->SetNodeCaption(L"Host Caption");
    node->SetType(L"HostType");
    last->SetNext(node);
    node->SetPrev(last);
    node->SetParentNode(root);
    EXPECT_EQ(byType(L"hosttype"), node);
    EXPECT_EQ(byType(L"Host Caption"), nullptr);
    EXPECT_EQ(byCaption(L"Host Caption"), node);
}

TEST_F(FindDataTypeNode, NamesThatOnlyBeginAlikeDiffer) {
    EXPECT_EQ(byType(L"InnerTyp"), nullptr);
    EXPECT_EQ(byType(L"InnerTypeX"), nullptr);
    EXPECT_EQ(byCaption(L"Inner"), nullptr);
}

} // namespace
