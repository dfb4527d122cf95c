#include "flowmere/workflow/WorkflowFile.h"

#include "WorkflowTestSupport.h"

#include <gmock/gmock.h>

#include <stdexcept>

using namespace flowmere::test;
using flowmere::folderOfFile;
using flowmere::formatWorkflowFile;
using flowmere::isSubProcessKind;
using flowmere::joinFolder;
using flowmere::nodeNameOf;
using flowmere::visitChildrenFromLast;
using flowmere::workflowNodeTypeFromName;
using flowmere::workflowNodeTypeName;
using flowmere::writeWorkflowFile;
using testing::HasSubstr;

namespace {

class WorkflowFile : public WorkflowTest {};

TEST_F(WorkflowFile, FourKindsInARowAreSubProcesses) {
    for (int kind = -1; kind < 300; ++kind)
        EXPECT_EQ(isSubProcessKind(kind), kind == 162 || kind == 163 || kind == 164 || kind == 165) << kind;
}

TEST_F(WorkflowFile, KindsOfTasksHaveNamesInBothDirections) {
    std::map<int, std::string> const names = {
        {150, "task"},
        {153, "decisionTask"},
        {162, "iteratingLoopSubProcess"},
        {163, "decisionLoopSubProcess"},
        {164, "spawningSubProcess"},
        {165, "basicSubProcess"},
    };
    for (int kind = -1; kind < 300; ++kind) {
        auto const row = names.find(kind);
        EXPECT_EQ(narrow(workflowNodeTypeName(kind)), row != names.end() ? row->second : "") << kind;
        if (row != names.end()) {
            EXPECT_EQ(workflowNodeTypeFromName(workflowNodeTypeName(kind)), kind);
        }
    }
}

TEST_F(WorkflowFile, AnyOtherNameIsThatOfAPlainBlock) {
    for (wchar_t const* name : {L"", L"Task", L"task ", L"superState", L"150"})
        EXPECT_EQ(workflowNodeTypeFromName(name), 57) << narrow(name);
    EXPECT_EQ(workflowNodeTypeFromName(nullptr), 57);
}

TEST_F(WorkflowFile, AFileHasItsRootWithTheSchemaInstanceNamespace) {
    EXPECT_TRUE(writeWorkflowFile(path("out.xml"), L"some-root", [](xercesc::DOMElement& root) {
        flowmere::setInteger(&root, u"a", 5);
        flowmere::appendElement(&root, u"inner");
    }));
    Element const root = read("out.xml");
    EXPECT_EQ(root.name, "some-root");
    EXPECT_EQ(root["xmlns"], "http://www.w3.org/2001/XMLSchema-instance");
    EXPECT_EQ(root["a"], "5");
    EXPECT_EQ(root.outline(), "inner");
    EXPECT_THAT(scratch.read("out.xml"), HasSubstr("\n  <inner/>")) << "indented";
}

TEST_F(WorkflowFile, WritingSucceedsWhateverBecomesOfTheBytes) {
    EXPECT_TRUE(writeWorkflowFile(path("missing/out.xml"), L"root", [](xercesc::DOMElement&) {}));
    EXPECT_TRUE(writeWorkflowFile(path("thrown.xml"), L"root",
                                  [](xercesc::DOMElement&) { throw std::runtime_error("a host's failure"); }));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

TEST_F(WorkflowFile, FormattingPutsAnIndentedCopyBesideTheFile) {
    std::string const text = "<root><a><b c=\"1\"/></a></root>";
    scratch.write("flow.xml", text);
    formatWorkflowFile(path("flow.xml"));
    EXPECT_EQ(scratch.read("flow.xml"), text);
    EXPECT_EQ(read("flow.for"), read("flow.xml"));
    EXPECT_THAT(scratch.read("flow.for"), HasSubstr("\n    <b c=\"1\"/>"));
}

TEST_F(WorkflowFile, FormattingRewritesAFileWithoutTheExtension) {
    scratch.write("process.var", "<root><a/></root>");
    formatWorkflowFile(path("process.var"));
    EXPECT_EQ(contentsOf(scratch.path()), "process.var");
    EXPECT_THAT(scratch.read("process.var"), HasSubstr("\n  <a/>"));
}

TEST_F(WorkflowFile, FormattingLeavesAnUnreadableFileAlone) {
    scratch.write("broken.xml", "<root>");
    formatWorkflowFile(path("broken.xml"));
    formatWorkflowFile(path("missing.xml"));
    formatWorkflowFile(nullptr);
    formatWorkflowFile(L"");
    EXPECT_EQ(contentsOf(scratch.path()), "broken.xml");
    EXPECT_EQ(scratch.read("broken.xml"), "<root>");
}

TEST_F(WorkflowFile, TheFolderEndsAtTheLastSlashOrElseAtTheLastBackslash) {
    struct Row {
        wchar_t const* path;
        wchar_t const* folder;
    };
    Row const rows[] = {
        {L"/a/b/f.xml", L"/a/b"},
        {L"\\a\\b\\f.xml", L"\\a\\b"},
        {L"a\\f.xml", L"a"},
        {L"a\\", L"a"},
        {L"C:/a\\b\\f.xml", L"C:"},
        {L"/home/u\\BPM\\f.xml", L"/home"},
        {L"f.xml", L""},
        {L"", L""},
        {L"\\f.xml", L"\\"},
        {L"/f.xml", L"/"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(narrow(folderOfFile(row.path)), narrow(row.folder)) << narrow(row.path);
}

TEST_F(WorkflowFile, ANameGoesBehindTheFolderAndABackslash) {
    EXPECT_EQ(narrow(joinFolder(L"\\a\\b", L"gpd.xml")), "\\a\\b\\gpd.xml");
    EXPECT_EQ(narrow(joinFolder(L"/a", L"gpd.xml")), "/a\\gpd.xml");
    EXPECT_EQ(narrow(joinFolder(L"", L"gpd.xml")), "gpd.xml") << "not in the topmost folder";
    EXPECT_EQ(narrow(joinFolder(L"\\", L"gpd.xml")), "\\gpd.xml");
    EXPECT_EQ(narrow(joinFolder(L"/", L"gpd.xml")), "/gpd.xml");
    EXPECT_EQ(narrow(joinFolder(L"a", nullptr)), "a\\");
}

TEST_F(WorkflowFile, ANodeIsNamedByItsIdentifierOrElseByItsCaption) {
    Tree const tree = newWorkflow(L"Caption");
    EXPECT_EQ(narrow(nodeNameOf(tree.get())), "Caption");
    tree->SetNodeId(L"Id");
    EXPECT_EQ(narrow(nodeNameOf(tree.get())), "Id");
    tree->SetNodeId(L"");
    tree->SetNodeCaption(L"");
    EXPECT_EQ(narrow(nodeNameOf(tree.get())), "");
}

std::string visited(IFCNode* node) {
    std::string names;
    visitChildrenFromLast(node, [&](IFCNode* child) { names += narrow(child->GetNodeId()) + " "; });
    return names;
}

TEST_F(WorkflowFile, ChildrenAreVisitedFromTheLastToTheFirst) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    EXPECT_EQ(visited(group), "");
    for (wchar_t const* id : {L"A", L"B", L"C"})
        addTask(group, id);
    EXPECT_EQ(visited(group), "A B C ");
    EXPECT_EQ(visited(nullptr), "");
}

TEST_F(WorkflowFile, WhatStandsBeforeTheFirstChildIsStale) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    IFCNode* const child = addTask(group, L"A");
    IFCNode* const stranger = addTask(tree.get(), L"S");
    child->SetPrev(stranger);
    EXPECT_EQ(visited(group), "A ");
    child->SetPrev(nullptr);
}

TEST_F(WorkflowFile, AWayBackInARingEnds) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    IFCNode* const oldest = addTask(group, L"A");
    IFCNode* const middle = addTask(group, L"B");
    IFCNode* const newest = addTask(group, L"C");
    middle->SetPrev(oldest);
    EXPECT_EQ(visited(group), "A B A ") << "no more steps than there are children";
    middle->SetPrev(newest);
    EXPECT_EQ(visited(group), "A B C ");
}

TEST_F(WorkflowFile, ARingOfChildrenCountsAsNone) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    for (wchar_t const* id : {L"A", L"B", L"C", L"D", L"E"})
        addTask(group, id);
    IFCNode* last = group->GetChild();
    while (last->GetNext() != nullptr)
        last = last->GetNext();
    last->SetNext(group->GetChild()->GetNext());
    EXPECT_EQ(visited(group), "");
    last->SetNext(group->GetChild());
    EXPECT_EQ(visited(group), "");
    last->SetNext(nullptr);
    EXPECT_EQ(visited(group), "A B C D E ");
}

} // namespace
