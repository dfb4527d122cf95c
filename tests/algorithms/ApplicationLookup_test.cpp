#include "flowmere/algorithms/FCNodeHelper.h"

#include "TreeBuilder.h"
#include "flowmere/model/FCApplicationNode.h"

using namespace flowmere::test;

namespace {

CFCApplicationNode* application(IFCNode* node) {
    return dynamic_cast<CFCApplicationNode*>(node);
}

CFCArgumentData* addArgument(IFCNode* node, int id) {
    CFCArgumentData* const argument = application(node)->CreateNewArgument();
    argument->SetArgumentID(id);
    return argument;
}

CFCPatternData* addPattern(IFCNode* node, int id) {
    CFCPatternData* const pattern = application(node)->CreateNewPattern();
    pattern->SetPatternID(id);
    return pattern;
}

} // namespace

TEST(ApplicationLookup, NothingIsFoundInNothing) {
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(nullptr, 0, 0), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(nullptr, 0), nullptr);
    Tree const node(167);
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(node, 0, 0), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(node, 0), nullptr);
}

TEST(ApplicationLookup, FirstOfTheListWithTheIdentifier) {
    Tree const node(167);
    addArgument(node, 1);
    CFCArgumentData* const argument = addArgument(node, 2);
    addArgument(node, 2);
    addPattern(node, 2);
    CFCPatternData* const pattern = addPattern(node, -3);
    addPattern(node, -3);
    for (int const extra : {0, 1, 2, -1})
        EXPECT_EQ(CFCNodeHelper::FindArgumentByID(node, 2, extra), argument) << extra;
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(node, -3), pattern);
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(node, -3, 0), nullptr);
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(node, 1), nullptr);
}

TEST(ApplicationLookup, DeeperNodesWin) {
    Tree const root(168);
    IFCNode* const middle = make(168);
    IFCNode* const later = make(167);
    adopt(root, {middle, later});
    IFCNode* const inner = addFirst(middle, 167);
    struct Row {
        IFCNode* place;
        CFCArgumentData* argument;
        CFCPatternData* pattern;
    };
    // From the one that is found last.
    Row rows[] = {
        {root, nullptr, nullptr}, {later, nullptr, nullptr}, {middle, nullptr, nullptr}, {inner, nullptr, nullptr}};
    for (Row& row : rows) {
        row.argument = addArgument(row.place, 7);
        row.pattern = addPattern(row.place, 7);
        EXPECT_EQ(CFCNodeHelper::FindArgumentByID(root, 7, 0), row.argument);
        EXPECT_EQ(CFCNodeHelper::FindPatternByID(root, 7), row.pattern);
    }
}

TEST(ApplicationLookup, NodesThatAreNoApplicationAreWalked) {
    Tree const root(160);
    IFCNode* const task = addFirst(addFirst(root, 161), 150);
    task->SetNodeType(167);
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(root, 4, 0), nullptr);
    IFCNode* const inner = addFirst(task, 167);
    CFCArgumentData* const argument = addArgument(inner, 4);
    CFCPatternData* const pattern = addPattern(inner, 4);
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(root, 4, 0), argument);
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(root, 4), pattern);
}

TEST(ApplicationLookup, StrangersInAListArePassedOver) {
    Tree const node(167);
    application(node)->GetArgumentList()->AddTail(new CFCPatternData);
    application(node)->GetPatternList()->AddTail(new CFCArgumentData);
    CFCArgumentData* const argument = addArgument(node, 0);
    CFCPatternData* const pattern = addPattern(node, 0);
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(node, 0, 0), argument);
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(node, 0), pattern);
}

TEST(ApplicationLookup, GoesAsDeepAsTheTree) {
    Tree const root(69);
    IFCNode* const last = addFirst(deepen(root, kGreatDepth), 167);
    CFCArgumentData* const argument = addArgument(last, 9);
    EXPECT_EQ(CFCNodeHelper::FindArgumentByID(root, 9, 0), argument);
    EXPECT_EQ(CFCNodeHelper::FindPatternByID(root, 9), nullptr);
}
