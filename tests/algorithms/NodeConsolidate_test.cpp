#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCNodeManager.h"

#include <random>
#include <string>
#include <vector>

using namespace flowmere::test;

namespace {

using Merge = void (*)(IFCNode*, IFCNode*);
using Names = std::vector<std::string>;

IFCNode* file(wchar_t const* caption, wchar_t const* id = L"", float version = 1.0F) {
    IFCNode* const node = make(70, id, caption);
    node->SetVersionNo(version);
    node->SetUptoDate(true);
    return node;
}

IFCNode* folder(wchar_t const* caption, std::vector<IFCNode*> const& children = {}) {
    IFCNode* const node = make(71, L"", caption);
    adopt(node, children);
    return node;
}

IFCNode* list(std::vector<IFCNode*> const& children) {
    IFCNode* const node = make(69);
    adopt(node, children);
    return node;
}

IFCNode* child(IFCNode* parent, wchar_t const* caption) {
    return CFCNodeHelper::FindNodeFromCurrentParent(parent, caption);
}

// The tree as text: "A(B C) D".
std::string shape(IFCNode* parent) {
    std::string text;
    for (IFCNode* node = parent->GetChild(); node != nullptr; node = node->GetNext()) {
        text += (text.empty() ? "" : " ") + narrow(node->GetNodeCaption());
        if (node->GetChild() != nullptr) {
            text += "(" + shape(node) + ")";
        }
    }
    return text;
}

// --- What both merges do with a file node that is there -----------------------------------------------------------

struct VersionCase {
    float target;
    float source;
    bool stays;
};

class FileNodeMerge : public testing::TestWithParam<Merge> {};

INSTANTIATE_TEST_SUITE_P(CFCNodeHelper, FileNodeMerge,
                         testing::Values(&CFCNodeHelper::Consolidate, &CFCNodeHelper::Consolidate2),
                         [](testing::TestParamInfo<Merge> const& instance) {
                             return std::string(instance.index == 0 ? "Consolidate" : "Consolidate2");
                         });

TEST_P(FileNodeMerge, OnlyAHigherVersionPutsTheTargetOutOfDate) {
    for (VersionCase const& versions : {VersionCase{1.0F, 2.0F, false}, VersionCase{1.0F, 1.5F, false},
                                        VersionCase{2.0F, 2.0F, true}, VersionCase{3.0F, 2.0F, true}}) {
        Tree target(list({file(L"F", L"old", versions.target)}));
        Tree source(list({file(L"F", L"new", versions.source)}));
        GetParam()(target, source->GetChild());
        IFCNode* const merged = target->GetChild();
        EXPECT_EQ(merged->IsUptoDate(), versions.stays) << versions.target << " and " << versions.source;
        EXPECT_STREQ(merged->GetNodeId(), L"new");
        EXPECT_TRUE(merged->IsNewPath());
        EXPECT_EQ(merged->GetVersionNo(), versions.target) << "the version itself stays";
        EXPECT_EQ(captions(target), Names{"F"});
    }
}

TEST_P(FileNodeMerge, TheTargetTakesTheCheckOutOfTheSource) {
    for (bool before : {false, true}) {
        for (bool now : {false, true}) {
            Tree target(list({file(L"F")}));
            Tree source(list({file(L"F")}));
            target->GetChild()->SetCheckedOut(before);
            source->GetChild()->SetCheckedOut(now);
            source->GetChild()->SetCheckedOutUser(L"eve");
            GetParam()(target, source->GetChild());
            EXPECT_EQ(target->GetChild()->IsCheckedOut(), now);
            EXPECT_STREQ(target->GetChild()->GetCheckedOutUser(), L"") << "the user does not travel";
        }
    }
}

TEST_P(FileNodeMerge, CaptionsAreComparedWithCase) {
    Tree target(list({file(L"beam", L"old")}));
    Tree source(list({file(L"Beam", L"new")}));
    GetParam()(target, source->GetChild());
    EXPECT_EQ(captions(target), (Names{"Beam", "beam"}));
    EXPECT_STREQ(child(target, L"beam")->GetNodeId(), L"old");
    EXPECT_FALSE(child(target, L"beam")->IsNewPath());
}

TEST_P(FileNodeMerge, OfSeveralEqualCaptionsTheFirstIsMeant) {
    Tree target(list({file(L"F", L"one"), file(L"F", L"two")}));
    Tree source(list({file(L"F", L"new")}));
    GetParam()(target, source->GetChild());
    EXPECT_STREQ(target->GetChild()->GetNodeId(), L"new");
    EXPECT_STREQ(target->GetChild()->GetNext()->GetNodeId(), L"two");
}

TEST_P(FileNodeMerge, WhatIsMissingIsClonedInFrontOneByOne) {
    Tree target(list({file(L"Old")}));
    Tree source(list({file(L"A", L"1", 4.0F), file(L"Old"), file(L"B", L"2"), file(L"A", L"3", 5.0F)}));
    GetParam()(target, source->GetChild());
    EXPECT_EQ(captions(target), (Names{"B", "A", "Old"}));
    IFCNode* const a = child(target, L"A");
    EXPECT_EQ(a->GetParentNode(), target.root());
    EXPECT_STREQ(a->GetNodeId(), L"3") << "the second A met the clone of the first";
    EXPECT_EQ(a->GetVersionNo(), 4.0F);
    EXPECT_FALSE(a->IsUptoDate());
    EXPECT_EQ(captions(source), (Names{"A", "Old", "B", "A"})) << "the source keeps its nodes";
}

TEST_P(FileNodeMerge, ATypeThatCannotBeMadeIsLeftOutAndTheRestGoesOn) {
    Tree target(list({}));
    IFCNode* const odd = folder(L"Odd", {file(L"Inner")});
    odd->SetNodeType(62);
    Tree source(list({odd, file(L"Next")}));
    GetParam()(target, source->GetChild());
    EXPECT_EQ(shape(target), "Next");
}

TEST_P(FileNodeMerge, NothingHappensWithoutASource) {
    Tree target(list({file(L"F")}));
    GetParam()(target, nullptr);
    GetParam()(nullptr, nullptr);
    EXPECT_EQ(captions(target), Names{"F"});
    EXPECT_FALSE(target->GetChild()->IsNewPath());
}

TEST_P(FileNodeMerge, AChainThatEnclosesTheTargetIsNotTakenIn) {
    Tree source(list({folder(L"A", {folder(L"B")})}));
    IFCNode* const a = source->GetChild();
    IFCNode* const b = a->GetChild();
    std::string const before = shape(source);
    GetParam()(b, a);
    GetParam()(a, a);
    GetParam()(source, source);
    EXPECT_EQ(shape(source), before);
}

TEST_P(FileNodeMerge, AThousandEntriesFindTheirTwins) {
    std::vector<IFCNode*> there;
    std::vector<IFCNode*> coming;
    for (int i = 0; i < 1000; ++i) {
        std::wstring const name = L"F" + std::to_wstring(i);
        there.push_back(file(name.c_str(), L"old"));
        coming.push_back(file((L"F" + std::to_wstring(999 - i + 500)).c_str(), L"new", 2.0F));
    }
    Tree target(list(there));
    Tree source(list(coming));
    GetParam()(target, source->GetChild());
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(target), 1500);
    EXPECT_STREQ(child(target, L"F499")->GetNodeId(), L"old");
    EXPECT_STREQ(child(target, L"F500")->GetNodeId(), L"new");
    EXPECT_FALSE(child(target, L"F999")->IsUptoDate());
    EXPECT_STREQ(child(target, L"F1499")->GetNodeId(), L"new");
    EXPECT_STREQ(target->GetChild()->GetNodeCaption(), L"F1000") << "the last that was missing";
}

// --- Consolidate -----------------------------------------------------------------------------------------------

TEST(Consolidate, NeedsATarget) {
    Tree source(list({file(L"F")}));
    CFCNodeHelper::Consolidate(nullptr, source->GetChild());
    EXPECT_EQ(shape(source), "F");
}

TEST(Consolidate, MergesFoldersOfTheSameCaptionDeeper) {
    Tree target(list({folder(L"G", {file(L"Old"), folder(L"H", {file(L"Deep", L"1")})})}));
    Tree source(list({folder(L"G", {file(L"New"), folder(L"H", {file(L"Deep", L"2"), file(L"More")})})}));
    CFCNodeHelper::Consolidate(target, source->GetChild());
    EXPECT_EQ(shape(target), "G(New Old H(More Deep))");
    IFCNode* const deep = CFCNodeHelper::FindNodeByCaption(L"Deep", target);
    EXPECT_STREQ(deep->GetNodeId(), L"2");
    EXPECT_TRUE(deep->IsNewPath());
    EXPECT_FALSE(child(target, L"G")->IsNewPath()) << "only file nodes are marked";
}

TEST(Consolidate, ClonesWholeSubtreesInReversedOrder) {
    Tree target(list({}));
    Tree source(list({folder(L"G", {file(L"A"), folder(L"H", {file(L"B"), file(L"C")})}), file(L"D")}));
    CFCNodeHelper::Consolidate(target, source->GetChild());
    EXPECT_EQ(shape(target), "D G(H(C B) A)") << "each new child stands in front";
    EXPECT_EQ(shape(source), "G(A H(B C)) D");
}

TEST(Consolidate, AFileNodeMeetsEverythingOfItsCaption) {
    // The type of the found node decides, not that of the source.
    Tree target(list({file(L"X", L"file")}));
    Tree source(list({folder(L"X", {file(L"Inner")})}));
    source->GetChild()->SetVersionNo(9.0F);
    CFCNodeHelper::Consolidate(target, source->GetChild());
    EXPECT_EQ(shape(target), "X");
    EXPECT_FALSE(target->GetChild()->IsUptoDate());
    EXPECT_STREQ(target->GetChild()->GetNodeId(), L"") << "the identifier that a folder has";
    EXPECT_TRUE(target->GetChild()->IsNewPath());
}

TEST(Consolidate, AFolderMeetsAFileNodeWithoutTakingItIn) {
    Tree target(list({folder(L"X", {file(L"Inner")})}));
    Tree source(list({file(L"X", L"file")}));
    CFCNodeHelper::Consolidate(target, source->GetChild());
    EXPECT_EQ(shape(target), "X(Inner)");
}

TEST(Consolidate, TakesInWhatFollowsTheStartOnly) {
    Tree target(list({}));
    Tree source(list({file(L"A"), file(L"B"), file(L"C")}));
    CFCNodeHelper::Consolidate(target, source->GetChild()->GetNext());
    EXPECT_EQ(shape(target), "C B");
}

TEST(Consolidate, AListMergedWithItselfStaysAsItIs) {
    Tree target(list({folder(L"G", {file(L"A", L"1")}), file(L"B", L"2")}));
    CFCNodeHelper::Consolidate(target, target->GetChild());
    EXPECT_EQ(shape(target), "G(A) B");
    EXPECT_TRUE(child(target, L"B")->IsUptoDate());
}

TEST(Consolidate, WorksOnEntriesWithoutParent) {
    Tree target(list({}));
    Tree source(folder(L"Lone", {file(L"A")}));
    CFCNodeHelper::Consolidate(target, source);
    EXPECT_EQ(shape(target), "Lone(A)");
}

TEST(Consolidate, VeryDeepListsNeedNoStack) {
    Tree target(list({}));
    Tree source(69, L"", L"List");
    IFCNode* last = source;
    for (int level = 0; level < kGreatDepth; ++level) {
        last = addFirst(last, 71, L"", L"L");
    }
    CFCNodeHelper::Consolidate(target, source->GetChild());
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(target), kGreatDepth);
    CFCNodeHelper::Consolidate(target, source->GetChild());
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(target), kGreatDepth);
}

// --- Consolidate2 ----------------------------------------------------------------------------------------------

TEST(Consolidate2, GoesDownIntoTheFirstChildOfAMatch) {
    // The level below G is compared with the children of G's first child, not with those of G.
    Tree target(list({folder(L"G", {folder(L"First", {file(L"A", L"old")}), file(L"A", L"untouched")})}));
    Tree source(list({folder(L"G", {file(L"A", L"new")})}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "G(First(A) A)");
    IFCNode* const g = target->GetChild();
    EXPECT_STREQ(g->GetChild()->GetChild()->GetNodeId(), L"new");
    EXPECT_STREQ(g->GetChild()->GetNext()->GetNodeId(), L"untouched");
}

TEST(Consolidate2, AddsToTheFirstChildOfAMatch) {
    Tree target(list({folder(L"G", {folder(L"First"), folder(L"Second")})}));
    Tree source(list({folder(L"G", {file(L"A")})}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "G(First(A) Second)");
}

TEST(Consolidate2, AFileNodeAsTargetHandsOverToItsParent) {
    Tree target(list({folder(L"G", {file(L"F", L"old")})}));
    Tree source(list({folder(L"G", {file(L"F", L"new"), file(L"A")})}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "G(A F F)") << "F itself is not compared, only what lies below it";
    EXPECT_STREQ(target->GetChild()->GetChild()->GetNext()->GetNodeId(), L"new");
}

TEST(Consolidate2, AFileNodeWithoutParentTakesNothing) {
    Tree target(file(L"F"));
    Tree source(list({file(L"A"), folder(L"G", {file(L"B")})}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(target->GetChild(), nullptr);
    EXPECT_EQ(target->GetParentNode(), nullptr);
    EXPECT_EQ(shape(source), "A G(B)");
}

TEST(Consolidate2, AMatchOfAnotherTypeIsNoMatch) {
    Tree target(list({file(L"X", L"old")}));
    Tree source(list({folder(L"X")}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "X X");
    EXPECT_EQ(target->GetChild()->GetNodeType(), 71);
    EXPECT_STREQ(target->GetChild()->GetNext()->GetNodeId(), L"old");
    EXPECT_FALSE(target->GetChild()->GetNext()->IsNewPath());
}

TEST(Consolidate2, OnlyTheFirstOfTheCaptionIsAskedForItsType) {
    Tree target(list({folder(L"X"), file(L"X", L"old")}));
    Tree source(list({file(L"X", L"new")}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "X X X");
    EXPECT_STREQ(target->GetChild()->GetNodeId(), L"new");
    EXPECT_STREQ(target->GetChild()->GetNext()->GetNext()->GetNodeId(), L"old");
}

TEST(Consolidate2, AnEntryWithoutParentIsMergedButNeverAdded) {
    Tree target(list({file(L"F", L"old")}));
    Tree stranger(file(L"Other"));
    CFCNodeHelper::Consolidate2(target, stranger);
    EXPECT_EQ(shape(target), "F");
    Tree known(file(L"F", L"new"));
    CFCNodeHelper::Consolidate2(target, known);
    EXPECT_STREQ(target->GetChild()->GetNodeId(), L"new");
}

TEST(Consolidate2, ANewFolderGetsItsFirstChildAndThatOneTheLevelBelow) {
    // The clone of the first child is attached, and the whole level below then goes into it.
    Tree target(list({}));
    Tree source(list({folder(L"G", {folder(L"A"), folder(L"B")})}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "G(A(B A))");
}

TEST(Consolidate2, ANewFolderOfFilesGetsItsFirstFileTwice) {
    // The first file is attached; as a target it hands the level over to the folder.
    Tree target(list({}));
    Tree source(list({folder(L"G", {file(L"A", L"1"), file(L"B", L"2")})}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "G(B A A)");
}

TEST(Consolidate2, WhatLiesBelowANewFileNodeIsDropped) {
    IFCNode* const parentFile = file(L"F");
    adopt(parentFile, {file(L"Inner")});
    Tree target(list({}));
    Tree source(list({parentFile, file(L"Next")}));
    Tree marker(71);
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "Next F");
    Tree end(71);
    int alive = 0;
    for (int handle = marker->GetNodeHandle() + 1; handle < end->GetNodeHandle(); ++handle) {
        alive += CFCNodeManager::GetNode(handle) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(alive, 2) << "no clone of it stays";
}

TEST(Consolidate2, WhatAFileNodeHandedToItsParentIsNoChildOfItsOwn) {
    Tree target(list({file(L"F")}));
    Tree source(list({file(L"A", L"1"), file(L"A", L"2")}));
    CFCNodeHelper::Consolidate2(target->GetChild(), source->GetChild());
    EXPECT_EQ(shape(target), "A A F") << "the second A does not meet the first";
    EXPECT_STREQ(target->GetChild()->GetNodeId(), L"2");
}

TEST(Consolidate2, AnEmptyMatchTakesNothing) {
    // The matched group has no first child to go down into.
    Tree target(list({folder(L"G")}));
    Tree source(list({folder(L"G", {file(L"A"), folder(L"H", {file(L"B")})}), file(L"C")}));
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_EQ(shape(target), "C G");
}

TEST(Consolidate2, ANullTargetTakesNothing) {
    Tree source(list({folder(L"G", {file(L"A")}), file(L"B")}));
    CFCNodeHelper::Consolidate2(nullptr, source->GetChild());
    EXPECT_EQ(shape(source), "G(A) B");
    Tree lone(file(L"L"));
    CFCNodeHelper::Consolidate2(nullptr, lone);
    EXPECT_EQ(lone->GetChild(), nullptr);
}

TEST(Consolidate2, LeavesNoCloneBehindThatFoundNoPlace) {
    Tree marker(71);
    int const before = marker->GetNodeHandle();
    Tree source(list({folder(L"G", {file(L"A"), folder(L"H", {file(L"B")})}), file(L"C")}));
    CFCNodeHelper::Consolidate2(nullptr, source->GetChild());
    Tree end(71);
    int alive = 0;
    for (int handle = before + 1; handle < end->GetNodeHandle(); ++handle) {
        alive += CFCNodeManager::GetNode(handle) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(alive, 6) << "the source alone";
}

TEST(Consolidate2, VeryDeepListsNeedNoStack) {
    Tree target(list({}));
    Tree source(69, L"", L"List");
    IFCNode* last = source;
    for (int level = 0; level < kGreatDepth; ++level) {
        last = addFirst(last, 71, L"", L"L");
    }
    CFCNodeHelper::Consolidate2(target, source->GetChild());
    EXPECT_GE(CFCNodeHelper::GetBlockCount(target), kGreatDepth);
}

// --- Both against a walk that scans the children anew for each entry -----------------------------------------------

IFCNode* firstOf(IFCNode* parent, IFCNode* entry) {
    return parent != nullptr ? child(parent, entry->GetNodeCaption()) : nullptr;
}

void takeState(IFCNode* target, IFCNode* source) {
    if (source->GetVersionNo() > target->GetVersionNo()) {
        target->SetUptoDate(false);
    }
    target->SetCheckedOut(source->IsCheckedOut());
    target->SetNodeId(source->GetNodeId());
    target->SetNewPath(true);
}

void scanAndMerge(IFCNode* target, IFCNode* source) {
    for (IFCNode* entry = source; target != nullptr && entry != nullptr; entry = entry->GetNext()) {
        IFCNode* into = firstOf(target, entry);
        if (into != nullptr && into->GetNodeType() == 70) {
            takeState(into, entry);
            continue;
        }
        if (into == nullptr) {
            into = CFCNodeHelper::Clone(entry);
            if (into == nullptr) {
                continue;
            }
            target->AppendChild(into, false);
        }
        scanAndMerge(into, entry->GetChild());
    }
}

// What finds no place is kept until the test ends.
void scanAndMerge2(IFCNode* target, IFCNode* source, std::vector<IFCNode*>& homeless) {
    for (IFCNode* entry = source; entry != nullptr; entry = entry->GetNext()) {
        IFCNode* const match = firstOf(target, entry);
        if (match != nullptr && match->GetNodeType() == entry->GetNodeType()) {
            if (match->GetNodeType() == 70) {
                takeState(match, entry);
            } else {
                scanAndMerge2(match->GetChild(), entry->GetChild(), homeless);
            }
            continue;
        }
        if (entry->GetParentNode() == nullptr) {
            continue;
        }
        IFCNode* const clone = CFCNodeHelper::Clone(entry);
        if (clone == nullptr) {
            continue;
        }
        IFCNode* const place = target != nullptr && target->GetNodeType() == 70 ? target->GetParentNode() : target;
        if (place != nullptr) {
            place->AppendChild(clone, false);
        } else {
            homeless.push_back(clone);
        }
        if (entry->GetChild() != nullptr) {
            IFCNode* const first = CFCNodeHelper::Clone(entry->GetChild());
            if (first == nullptr) {
                continue;
            }
            if (clone->GetNodeType() != 70) {
                clone->AppendChild(first, false);
            } else {
                homeless.push_back(first);
            }
            scanAndMerge2(first, entry->GetChild(), homeless);
        }
    }
}

// A tree of few captions, so that they meet often, with entries below file nodes too.
void grow(IFCNode* parent, int depth, std::mt19937& random) {
    static constexpr wchar_t const* kCaptions[] = {L"A", L"a", L""};
    // Files and groups most of all; no node of the last type can be made.
    static constexpr int kTypes[] = {70, 70, 70, 71, 71, 71, 69, 62};
    for (auto left = random() % 5; left > 0; --left) {
        int const type = kTypes[random() % 8];
        IFCNode* const node = make(type == 62 ? 71 : type, L"", kCaptions[random() % 3]);
        node->SetNodeType(type);
        node->SetNodeId(std::to_wstring(random() % 100).c_str());
        node->SetVersionNo(static_cast<float>(random() % 3));
        node->SetUptoDate(true);
        node->SetCheckedOut(random() % 2 == 0);
        parent->AppendChild(node, false);
        if (depth > 0) {
            grow(node, depth - 1, random);
        }
    }
}

std::string everything(IFCNode* parent) {
    std::string text;
    for (IFCNode* node = parent->GetChild(); node != nullptr; node = node->GetNext()) {
        EXPECT_EQ(node->GetParentNode(), parent);
        text += narrow(node->GetNodeCaption()) + std::to_string(node->GetNodeType()) + narrow(node->GetNodeId()) + "v" +
                std::to_string(node->GetVersionNo()) + (node->IsUptoDate() ? "u" : "") +
                (node->IsCheckedOut() ? "c" : "") + (node->IsNewPath() ? "n" : "") + "(" + everything(node) + ")";
    }
    return text;
}

TEST(ScannedMerge, GivesTheSameForAnyTrees) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        Tree targets[] = {Tree(69), Tree(69), Tree(69), Tree(69)};
        for (Tree& target : targets) {
            std::mt19937 random(seed);
            grow(target, 3, random);
        }
        Tree source(69);
        std::mt19937 random(seed + 100000);
        grow(source, 3, random);

        // Into the tree as a whole or into its first entry, which may be a file; entries of a list, or one that stands
        // alone.
        auto const into = [&](Tree& target) {
            return seed % 2 == 0 ? target.root() : target->GetChild();
        };
        IFCNode* const from = seed % 5 == 0 ? source.root() : source->GetChild();

        CFCNodeHelper::Consolidate(into(targets[0]), from);
        scanAndMerge(into(targets[1]), from);
        ASSERT_EQ(everything(targets[0]), everything(targets[1])) << seed;

        std::vector<IFCNode*> homeless;
        CFCNodeHelper::Consolidate2(into(targets[2]), from);
        scanAndMerge2(into(targets[3]), from, homeless);
        ASSERT_EQ(everything(targets[2]), everything(targets[3])) << seed;
        for (IFCNode* const node : homeless) {
            CFCNodeHelper::DestroyTree(node);
        }
    }
}

TEST_P(FileNodeMerge, ManyGroupsOfOneCaptionGoIntoALargeGroup) {
    constexpr int kGroups = 20000;
    std::vector<IFCNode*> there;
    std::vector<IFCNode*> coming;
    for (int number = 0; number < kGroups; ++number) {
        std::wstring const name = L"F" + std::to_wstring(number);
        there.push_back(file(name.c_str(), L"old"));
        coming.push_back(folder(L"G", {file(name.c_str(), L"new")}));
    }
    // The newer merge goes into the first child of the match.
    Tree target(list({folder(L"G", {folder(L"H", there)})}));
    bool const isNewer = GetParam() == &CFCNodeHelper::Consolidate2;
    if (!isNewer) {
        target->GetChild()->GetChild()->SetNodeCaption(L"G");
    }
    Tree source(list(coming));
    // A scan for each entry would take minutes.
    GetParam()(isNewer ? target.root() : target->GetChild(), source->GetChild());
    IFCNode* const inner = target->GetChild()->GetChild();
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(target), kGroups + 2);
    for (IFCNode* node = inner->GetChild(); node != nullptr; node = node->GetNext()) {
        ASSERT_STREQ(node->GetNodeId(), L"new");
    }
}

} // namespace
