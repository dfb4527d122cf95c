#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

namespace {

using flowmere::test::narrow;

// A nameless root with the blocks T and S, and Sub with Inner in it.
class VariableLinks : public testing::Test {
protected:
    VariableLinks() {
        root = new CFCBlockNode;
        t = addBlock(root, L"T");
        s = addBlock(root, L"S");
        sub = addBlock(root, L"Sub");
        inner = addBlock(sub, L"Inner");
        in = addVariable(t, L"In");
        out = addVariable(s, L"Out");
    }
    ~VariableLinks() override { CFCNodeHelper::DestroyTree(root); }

    static CFCBlockNode* addBlock(CFCBlockNode* parent, wchar_t const* id) {
        auto* const block = new CFCBlockNode;
        block->SetNodeId(id);
        parent->AppendChild(block, false);
        return block;
    }
    static CFCVariableData* addVariable(CFCBlockNode* block, wchar_t const* name) {
        CFCVariableData* const variable = block->CreateNewVariable();
        variable->SetVariableName(name);
        return variable;
    }
    static void scoped(CFCVariableData* variable, EScopeType scope, wchar_t const* value) {
        variable->SetScopeType(scope);
        variable->SetValue(value);
    }

    CFCBlockNode* root;
    CFCBlockNode* t;
    CFCBlockNode* s;
    CFCBlockNode* sub;
    CFCBlockNode* inner;
    CFCVariableData* in;
    CFCVariableData* out;
};

} // namespace

// --- Linked or not ----------------------------------------------------------------------------------

TEST_F(VariableLinks, VariableIsLinkedByPathOrByPointer) {
    EXPECT_FALSE(in->IsLinked());
    in->SetLinkPath(L"S.Out");
    EXPECT_TRUE(in->IsLinked());
    in->SetLinkPath(nullptr);
    EXPECT_FALSE(in->IsLinked());
    in->LinkVariable(out);
    EXPECT_TRUE(in->IsLinked());
    in->LinkVariable(nullptr);
    EXPECT_FALSE(in->IsLinked());
}

TEST_F(VariableLinks, LinkVariableStoresTheHandleAndNoPath) {
    in->LinkVariable(out);
    EXPECT_EQ(in->GetLinkedVariableHandle(), out->GetNodeHandle());
    EXPECT_STREQ(in->GetLinkPath(), L"");
    in->LinkVariable(nullptr);
    EXPECT_EQ(in->GetLinkedVariableHandle(), 0);
}

TEST_F(VariableLinks, VariableLinkedByPointerOnlyReadsAsItself) {
    in->LinkVariable(out);
    EXPECT_EQ(in->GetActualVariableData(), in);
    in->Resolve(); // and loses the pointer
    EXPECT_FALSE(in->IsLinked());
}

TEST_F(VariableLinks, EmptyPathWithConnectedScopeReportsNothing) {
    in->SetScopeType(EScopeType_Connected);
    in->Resolve();
    EXPECT_FALSE(in->IsLinked());
    EXPECT_STREQ(in->GetErrorString(), L"");
    EXPECT_EQ(in->GetActualVariableData(), in);
}

TEST_F(VariableLinks, PrefixGoesInFrontWhenBothTextsAreThere) {
    in->AddVariablePrefix(L"P.");
    EXPECT_STREQ(in->GetLinkPath(), L"");
    in->SetLinkPath(L"S.Out");
    in->AddVariablePrefix(L"");
    in->AddVariablePrefix(nullptr);
    EXPECT_STREQ(in->GetLinkPath(), L"S.Out");
    in->AddVariablePrefix(L"P");
    EXPECT_STREQ(in->GetLinkPath(), L"PS.Out");
    in->AddVariablePrefix(in->GetLinkPath());
    EXPECT_STREQ(in->GetLinkPath(), L"PS.OutPS.Out");
}

TEST_F(VariableLinks, RootIsTheTopOfTheTreeOrTheVariableItself) {
    EXPECT_EQ(in->GetRoot(), root);
    CFCVariableData* const deep = addVariable(inner, L"d");
    EXPECT_EQ(deep->GetRoot(), root);
    CFCVariableData alone("alone", 0, 0, 0);
    EXPECT_EQ(alone.GetRoot(), &alone);
}

TEST_F(VariableLinks, ParentLoopStillHasARoot) {
    CFCSubGroupNode one;
    CFCSubGroupNode two;
    one.SetParentNode(&two);
    two.SetParentNode(&one);
    CFCVariableData v("v", 0, 0, 0);
    v.SetParentNode(&one);
    v.SetLinkPath(L"a.b");
    IFCNode* const top = v.GetRoot();
    EXPECT_TRUE(top == &one || top == &two);
    v.Resolve();
    EXPECT_EQ(v.GetActualVariableData(), &v);
}

TEST_F(VariableLinks, ProcessVariableHasAnOwnerAtTheTop) {
    CFCVariableData* const top = addVariable(root, L"p");
    EXPECT_TRUE(top->IsProcessVariable());
    EXPECT_FALSE(in->IsProcessVariable());
    top->SetTemplateVariable(1);
    EXPECT_FALSE(top->IsProcessVariable());
    CFCVariableData alone("alone", 0, 0, 0);
    EXPECT_FALSE(alone.IsProcessVariable());
}

// --- Path grammar -----------------------------------------------------------------------------------

TEST_F(VariableLinks, PathsResolveFromTheRoot) {
    struct Row {
        wchar_t const* path;
        bool found;
        wchar_t const* name;
    };
    CFCVariableData* const atRoot = addVariable(root, L"R");
    CFCVariableData* const deep = addVariable(inner, L"D");
    addVariable(root, L"a.b");
    atRoot->SetNature(L"R");
    deep->SetNature(L"D");
    Row const rows[] = {
        {L"S.Out", true, L"Out"},
        {L"s.Out", false, L""},
        {L"S.out", false, L""},
        {L"Sub.Inner.D", true, L"D"},
        {L"Inner.D", false, L""},
        {L"R", true, L"R"},
        {L".R", true, L"R"},
        {L"Template.R", true, L"R"},
        {L"template.R", false, L""},
        {L".a.b", true, L"a.b"},
        {L"Template.a.b", true, L"a.b"},
        {L"a.b", false, L""},
        {L"S.", false, L""},
        {L".", false, L""},
        {L"Sub.Missing.D", false, L""},
        {L"Sub..D", false, L""},
    };
    for (Row const& row : rows) {
        in->SetLinkPath(row.path);
        in->Resolve();
        CFCVariableData* const actual = in->GetActualVariableData();
        EXPECT_EQ(actual != in, row.found) << narrow(row.path);
        if (row.found) {
            EXPECT_STREQ(actual->GetVariableName(), row.name) << narrow(row.path);
        }
        EXPECT_EQ(narrow(in->GetErrorString()).empty(), row.found) << narrow(row.path);
    }
}

TEST_F(VariableLinks, HeadThatIsTheCaptionOfTheNodeFindsNoChildVariable) {
    addVariable(t, L"x");
    root->SetNodeCaption(L"T");
    in->SetLinkPath(L"T.x");
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), in);
    CFCVariableData* const dotted = addVariable(root, L"T.x");
    EXPECT_EQ(in->GetActualVariableData(), dotted);
}

TEST_F(VariableLinks, LinksIntoANamedRootNeverResolve) {
    root->SetNodeId(L"Root");
    in->SetLinkPath(out->GetBlockVariablePath());
    EXPECT_STREQ(in->GetLinkPath(), L"Root.S.Out");
    EXPECT_EQ(in->GetActualVariableData(), in);
    in->RemoveInvalidLink();
    EXPECT_STREQ(in->GetLinkPath(), L"");
}

TEST_F(VariableLinks, RootThatIsNoBlockFindsNothing) {
    CFCSubGroupNode folder;
    folder.AppendChild(root, false);
    in->SetLinkPath(L"S.Out");
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), in);
    root->SetParentNode(nullptr);
    EXPECT_EQ(in->GetActualVariableData(), out);
}

// --- Reading through a link -------------------------------------------------------------------------

TEST_F(VariableLinks, ValueIsReadAtTheEndOfTheChain) {
    CFCVariableData* const end = addVariable(inner, L"End");
    in->SetLinkPath(L"S.Out");
    EXPECT_EQ(in->GetActualVariableData(), out);
    out->SetLinkPath(L"Sub.Inner.End");
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), end);
    EXPECT_EQ(out->GetActualVariableData(), end);
    EXPECT_EQ(end->GetActualVariableData(), end);
}

TEST_F(VariableLinks, DeadLinkReadsAsTheVariableItself) {
    in->SetLinkPath(L"S.Gone");
    in->SetValue(L"own");
    EXPECT_EQ(in->GetActualVariableData(), in);
    EXPECT_STREQ(in->GetActualVariableData()->GetValue(), L"own");
    out->SetLinkPath(L"S.Gone");
    in->SetLinkPath(L"S.Out");
    EXPECT_EQ(in->GetActualVariableData(), in);
}

TEST_F(VariableLinks, LoopsReadAsTheVariableItself) {
    in->SetLinkPath(L"T.In"); // to itself
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), in);
    in->SetLinkPath(L"S.Out"); // two steps
    out->SetLinkPath(L"T.In");
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), in);
    EXPECT_EQ(out->GetActualVariableData(), out);
    CFCVariableData* const third = addVariable(inner, L"x"); // three steps
    third->SetLinkPath(L"T.In");
    out->SetLinkPath(L"Sub.Inner.x");
    in->Resolve();
    out->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), in);
    EXPECT_EQ(third->GetActualVariableData(), third);
}

TEST_F(VariableLinks, LastResolvedTargetStaysUntilTheNextResolve) {
    CFCVariableData* const other = addVariable(s, L"Other");
    in->SetLinkPath(L"S.Out");
    EXPECT_EQ(in->GetActualVariableData(), out);
    in->SetLinkPath(L"S.Other");
    EXPECT_EQ(in->GetActualVariableData(), out);
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), other);
}

TEST_F(VariableLinks, DeletedTargetIsLookedUpAnew) {
    in->SetLinkPath(L"S.Out");
    in->Resolve();
    out->ReleaseOwnedParts();
    s->GetVariableList()->DeleteNode(out);
    EXPECT_EQ(in->GetActualVariableData(), in);
    CFCVariableData* const next = addVariable(s, L"Out");
    EXPECT_EQ(in->GetActualVariableData(), next);
}

TEST_F(VariableLinks, ParentScopeIsConvertedWhenReadAndGlobalIsNot) {
    CFCVariableData* const top = addVariable(root, L"P");
    scoped(in, EScopeType_Parent, L"P");
    EXPECT_EQ(in->GetActualVariableData(), top);
    EXPECT_EQ(in->GetScopeType(), EScopeType_Connected);
    scoped(out, EScopeType_Global, L"P");
    EXPECT_EQ(out->GetActualVariableData(), out);
    EXPECT_EQ(out->GetScopeType(), EScopeType_Global);
}

TEST_F(VariableLinks, ResolvedCopiesInTheTreeAreReached) {
    // A copied variable has its source's handle and is not known under it.
    auto* const copy = new CFCVariableData(*out);
    copy->SetVariableName(L"Copy");
    copy->RemoveLinks();
    copy->SetParentNode(s);
    s->GetVariableList()->AddTail(copy);
    in->SetLinkPath(L"S.Copy");
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), copy);
    EXPECT_EQ(in->GetActualVariableData(), copy);
    in->SetLinkedVariableHandle();
    EXPECT_EQ(in->GetLinkedVariableHandle(), out->GetNodeHandle());
    s->GetVariableList()->DeleteNode(copy);
    EXPECT_EQ(in->GetActualVariableData(), in);
}

// --- Scope to link ----------------------------------------------------------------------------------

TEST_F(VariableLinks, ScopedVariableLinksToTheEnclosingBlockByValueFirst) {
    CFCVariableData* const byValue = addVariable(sub, L"wanted");
    addVariable(sub, L"mine");
    CFCVariableData* const mine = addVariable(inner, L"mine");
    for (EScopeType scope : {EScopeType_Parent, EScopeType_Global}) {
        scoped(mine, scope, L"wanted");
        mine->SetLinkPath(L"");
        mine->ConvertToLinkedVariable();
        EXPECT_EQ(mine->GetScopeType(), EScopeType_Connected);
        EXPECT_STREQ(mine->GetLinkPath(), L"Sub.wanted");
        EXPECT_EQ(mine->GetLinkedVariableHandle(), byValue->GetNodeHandle());
        EXPECT_STREQ(mine->GetValue(), L"wanted");
        EXPECT_EQ(mine->GetActualVariableData(), byValue);
    }
}

TEST_F(VariableLinks, ScopedVariableFallsBackToItsOwnName) {
    CFCVariableData* const byName = addVariable(sub, L"mine");
    CFCVariableData* const mine = addVariable(inner, L"mine");
    for (wchar_t const* value : {L"nothing", L""}) {
        scoped(mine, EScopeType_Parent, value);
        mine->ConvertToLinkedVariable();
        EXPECT_EQ(mine->GetScopeType(), EScopeType_Connected) << narrow(value);
        EXPECT_EQ(mine->GetLinkedVariableHandle(), byName->GetNodeHandle());
    }
}

TEST_F(VariableLinks, EmptyValueMeetsANamelessGroupMemberBeforeTheOwnName) {
    addVariable(sub, L"mine");
    CFCVariableData* const member = addVariable(sub, L"member");
    member->SetGroup(true);
    CFCVariableData* const mine = addVariable(inner, L"mine");
    scoped(mine, EScopeType_Parent, L"");
    mine->ConvertToLinkedVariable();
    EXPECT_EQ(mine->GetLinkedVariableHandle(), member->GetNodeHandle());
    EXPECT_STREQ(mine->GetLinkPath(), L"Sub.");
}

TEST_F(VariableLinks, ScopedVariableWithoutTargetStaysAsItIs) {
    CFCVariableData* const mine = addVariable(inner, L"mine");
    scoped(mine, EScopeType_Global, L"nothing");
    mine->ConvertToLinkedVariable();
    EXPECT_EQ(mine->GetScopeType(), EScopeType_Global);
    EXPECT_STREQ(mine->GetValue(), L"nothing");
    EXPECT_FALSE(mine->IsLinked());
    EXPECT_EQ(mine->GetLinkedVariableHandle(), -1);
}

TEST_F(VariableLinks, OtherScopesAreNotConverted) {
    addVariable(root, L"P");
    for (int scope = 0; scope <= 8; ++scope) {
        if (scope == EScopeType_Parent || scope == EScopeType_Global) {
            continue;
        }
        in->SetScopeType(scope);
        in->SetValue(L"P");
        in->ConvertToLinkedVariable();
        in->ConvertProcessVariableToLinkedVariable();
        EXPECT_EQ(in->GetScopeType(), scope);
        EXPECT_FALSE(in->IsLinked()) << scope;
    }
}

TEST_F(VariableLinks, VariableWithoutOwnerOrEnclosingBlockIsNotConverted) {
    CFCVariableData alone("alone", 0, EScopeType_Parent, 0);
    alone.ConvertToLinkedVariable();
    alone.ConvertProcessVariableToLinkedVariable();
    EXPECT_EQ(alone.GetScopeType(), EScopeType_Parent);
    CFCSubGroupNode folder; // has no block data
    CFCSubGroupNode group;
    folder.AppendChild(&group, false);
    alone.SetParentNode(&group);
    alone.ConvertToLinkedVariable();
    EXPECT_EQ(alone.GetScopeType(), EScopeType_Parent);
    alone.ConvertProcessVariableToLinkedVariable();
    EXPECT_EQ(alone.GetScopeType(), EScopeType_Parent);
    alone.SetParentNode(nullptr);
}

TEST_F(VariableLinks, ProcessVariableLinksInsideItsOwnBlockByValueOnly) {
    CFCVariableData* const target = addVariable(root, L"target");
    CFCVariableData* const mine = addVariable(root, L"mine");
    scoped(mine, EScopeType_Global, L"nothing");
    mine->ConvertToLinkedVariable();
    EXPECT_EQ(mine->GetScopeType(), EScopeType_Global); // no fall-back to the own name
    scoped(mine, EScopeType_Global, L"target");
    mine->ConvertToLinkedVariable();
    EXPECT_EQ(mine->GetScopeType(), EScopeType_Connected);
    EXPECT_STREQ(mine->GetLinkPath(), L".target");
    EXPECT_EQ(mine->GetActualVariableData(), target);
}

TEST_F(VariableLinks, ProcessVariableMayFindItself) {
    CFCVariableData* const mine = addVariable(root, L"mine");
    scoped(mine, EScopeType_Parent, L"mine");
    EXPECT_EQ(mine->GetActualVariableData(), mine);
    EXPECT_STREQ(mine->GetLinkPath(), L".mine");
    EXPECT_EQ(mine->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(mine->GetActualVariableData(), mine);
}

TEST_F(VariableLinks, TemplateVariableAtTheTopIsNotAProcessVariable) {
    addVariable(root, L"target");
    CFCVariableData* const mine = addVariable(root, L"mine");
    mine->SetTemplateVariable(1);
    scoped(mine, EScopeType_Global, L"target");
    mine->ConvertToLinkedVariable(); // there is no enclosing block
    EXPECT_EQ(mine->GetScopeType(), EScopeType_Global);
    mine->ConvertProcessVariableToLinkedVariable();
    EXPECT_EQ(mine->GetScopeType(), EScopeType_Connected);
}

TEST_F(VariableLinks, TargetWithoutATypeTakesThatOfItsUser) {
    CFCVariableData* const target = addVariable(root, L"P");
    struct Row {
        int before;
        int after;
    };
    for (Row const& row : {Row{19, EDataType_Matrix}, Row{77, EDataType_Matrix}, Row{EDataType_File, EDataType_File},
                           Row{EDataType_Int, EDataType_Int}}) {
        target->SetDataType(row.before);
        in->SetDataType(EDataType_Matrix);
        scoped(in, EScopeType_Parent, L"P");
        in->ConvertToLinkedVariable();
        EXPECT_EQ(target->GetDataType(), row.after);
        EXPECT_EQ(in->GetDataType(), EDataType_Matrix);
    }
}

TEST_F(VariableLinks, BlockFormsRunOverAllVariables) {
    CFCVariableData* const target = addVariable(root, L"P");
    CFCVariableData* const second = addVariable(t, L"P");
    scoped(in, EScopeType_Parent, L"P");
    scoped(second, EScopeType_Global, L"");
    t->ConvertToLinkedVariable();
    EXPECT_EQ(in->GetActualVariableData(), target);
    EXPECT_EQ(second->GetActualVariableData(), target);
    t->AddVariablePrefix(L"X");
    EXPECT_STREQ(in->GetLinkPath(), L"X.P");
    EXPECT_STREQ(second->GetLinkPath(), L"X.P");
    root->ResolveVariables();
    EXPECT_EQ(in->GetActualVariableData(), in);
    EXPECT_EQ(second->GetActualVariableData(), second);
}

TEST_F(VariableLinks, CopiedVariablesAreResolvedAtTheirNewPlace) {
    in->SetLinkPath(L"S.Out");
    in->SetValue(L"v");
    EXPECT_TRUE(CFCBlockData::CopyVariables(t, inner));
    EXPECT_FALSE(CFCBlockData::CopyVariables(t, t));
    EXPECT_FALSE(CFCBlockData::CopyVariables(nullptr, t));
    EXPECT_FALSE(CFCBlockData::CopyVariables(t, nullptr));
    CFCSubGroupNode folder;
    EXPECT_FALSE(CFCBlockData::CopyVariables(t, &folder));
    CFCVariableData* const copy = inner->FindLocalVariable(L"In");
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, in);
    EXPECT_EQ(copy->GetParentNode(), inner);
    EXPECT_EQ(copy->GetActualVariableData(), out);
    EXPECT_TRUE(CFCBlockData::CopyVariables(root, inner)); // nothing to copy
    EXPECT_EQ(inner->GetVariableList()->GetCount(), 1);
}

// --- Writing links ----------------------------------------------------------------------------------

TEST_F(VariableLinks, PathToSaveFollowsALiveHandle) {
    in->SetLinkPath(L"Old.Path");
    EXPECT_STREQ(in->GetLinkPathFinal(), L"Old.Path"); // handle -1
    in->SetLinkedVariableHandle(0);
    EXPECT_STREQ(in->GetLinkPathFinal(), L"Old.Path");
    in->SetLinkedVariableHandle(out->GetNodeHandle());
    EXPECT_STREQ(in->GetLinkPathFinal(), L"S.Out");
    s->SetNodeId(L"Renamed");
    out->SetVariableName(L"Result");
    EXPECT_STREQ(in->GetLinkPathFinal(), L"Renamed.Result");
    EXPECT_STREQ(in->GetLinkPath(), L"Old.Path");
}

TEST_F(VariableLinks, PathToSaveIsEmptyWhenTheHandleNamesNoVariable) {
    in->SetLinkPath(L"S.Out");
    auto gone = std::make_unique<CFCVariableData>("gone", 0, 0, 0);
    int const handle = gone->GetNodeHandle();
    in->LinkVariable(gone.get());
    gone.reset();
    EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr);
    EXPECT_STREQ(in->GetLinkPathFinal(), L"");
    in->SetLinkedVariableHandle(t->GetNodeHandle()); // a block
    EXPECT_STREQ(in->GetLinkPathFinal(), L"");
    for (int wild : {INT_MAX, INT_MAX - 1}) {
        in->SetLinkedVariableHandle(wild);
        EXPECT_STREQ(in->GetLinkPathFinal(), L"");
    }
    // Just behind the last entry of the table, wherever that is.
    int const last = std::make_unique<CFCVariableData>("probe", 0, 0, 0)->GetNodeHandle();
    for (int next = last; next < last + 3; ++next) {
        in->SetLinkedVariableHandle(next);
        EXPECT_STREQ(in->GetLinkPathFinal(), L"");
    }
    in->SetLinkedVariableHandle(INT_MIN);
    EXPECT_STREQ(in->GetLinkPathFinal(), L"S.Out");
}

TEST_F(VariableLinks, ResolveAndSetLinkPathLeaveTheHandle) {
    in->SetLinkedVariableHandle(out->GetNodeHandle());
    CFCVariableData* const other = addVariable(s, L"Other");
    in->SetLinkPath(L"S.Other");
    in->Resolve();
    EXPECT_EQ(in->GetActualVariableData(), other);
    EXPECT_EQ(in->GetLinkedVariableHandle(), out->GetNodeHandle());
    EXPECT_STREQ(in->GetLinkPathFinal(), L"S.Out");
    in->SetLinkedVariableHandle();
    EXPECT_EQ(in->GetLinkedVariableHandle(), other->GetNodeHandle());
    EXPECT_STREQ(in->GetLinkPathFinal(), L"S.Other");
}

TEST_F(VariableLinks, HandleIsRefreshedFromALivingTargetOnly) {
    in->SetLinkedVariableHandle(5);
    in->SetLinkedVariableHandle();
    EXPECT_EQ(in->GetLinkedVariableHandle(), 5); // no pointer
    in->SetLinkPath(L"S.Out");
    in->Resolve();
    out->ReleaseOwnedParts();
    s->GetVariableList()->DeleteNode(out);
    in->SetLinkedVariableHandle();
    EXPECT_EQ(in->GetLinkedVariableHandle(), 5); // nobody there
    CFCVariableData* const next = addVariable(s, L"Out");
    in->SetLinkedVariableHandle();
    EXPECT_EQ(in->GetLinkedVariableHandle(), next->GetNodeHandle());
}

TEST_F(VariableLinks, InvalidLinkIsRemovedAndTheValueStays) {
    in->SetLinkPath(L"S.Gone");
    in->SetScopeType(EScopeType_Connected);
    in->SetConnectionType(EConnectionType_Connected);
    in->SetValue(L"v");
    in->RemoveInvalidLink();
    EXPECT_STREQ(in->GetLinkPath(), L"");
    EXPECT_EQ(in->GetScopeType(), EScopeType_Local);
    EXPECT_EQ(in->GetConnectionType(), EConnectionType_Local);
    EXPECT_STREQ(in->GetValue(), L"v");
    EXPECT_FALSE(in->IsLinked());
}

TEST_F(VariableLinks, ValidLinkIsKeptEvenWhenTheChainBehindItIsDead) {
    in->SetLinkPath(L"S.Out");
    in->SetScopeType(EScopeType_Connected);
    in->SetConnectionType(EConnectionType_Connected);
    out->SetLinkPath(L"No.Where");
    in->RemoveInvalidLink();
    EXPECT_STREQ(in->GetLinkPath(), L"S.Out");
    EXPECT_EQ(in->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(in->GetConnectionType(), EConnectionType_Connected);
}

TEST_F(VariableLinks, UnlinkedVariableKeepsScopeAndConnection) {
    in->SetScopeType(EScopeType_Global);
    in->SetConnectionType(EConnectionType_Parent);
    in->RemoveInvalidLink();
    EXPECT_EQ(in->GetScopeType(), EScopeType_Global);
    EXPECT_EQ(in->GetConnectionType(), EConnectionType_Parent);
}

// --- Error text -------------------------------------------------------------------------------------

TEST_F(VariableLinks, DeadLinkIsToldWithTheConnectingPhraseTwice) {
    in->SetLinkPath(L"S.Gone");
    EXPECT_STREQ(in->GetErrorString(), L"Missing Variable T.In To Variable  To Variable S.Gone\n");
    addVariable(s, L"Gone");
    EXPECT_STREQ(in->GetErrorString(), L"");
}

TEST_F(VariableLinks, CheckErrorResolves) {
    in->SetLinkPath(L"S.Out");
    in->CheckError();
    in->SetLinkPath(L"S.Gone");
    EXPECT_EQ(in->GetActualVariableData(), out); // the target that the check noted
    in->CheckError();
    EXPECT_EQ(in->GetActualVariableData(), in);
}

// --- Growth -----------------------------------------------------------------------------------------

TEST_F(VariableLinks, ManyLinksBetweenManyBlocksResolve) {
    int const count = 20000;
    for (int number = 0; number < count; ++number) {
        std::wstring const id = L"Task_" + std::to_wstring(number);
        CFCBlockNode* const block = addBlock(root, id.c_str());
        addVariable(block, L"Out");
        CFCVariableData* const user = addVariable(block, L"In");
        user->SetLinkPath((L"Task_" + std::to_wstring((number * 7919) % count) + L".Out").c_str());
    }
    root->ResolveVariables();
    int linked = 0;
    for (IFCNode* child = root->GetChild(); child != nullptr; child = child->GetNext()) {
        CFCVariableData* const user = CFCNodeHelper::FindVariableByName(L"In", child);
        if (user != nullptr && user->GetActualVariableData() != user) {
            ++linked;
        }
    }
    EXPECT_EQ(linked, count);
}
