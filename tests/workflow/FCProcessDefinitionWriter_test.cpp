#include "flowmere/workflow/FCProcessDefinitionWriter.h"

#include "WorkflowTestSupport.h"

#include "flowmere/model/FCActionData.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/WorkflowFile.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <stdexcept>

using namespace flowmere::test;
using testing::HasSubstr;

namespace {

constexpr char kThreeFiles[] = "gpd.xml process.var processdefinition.xml";

// A writer as its subclasses see it.
class OpenWriter : public CFCProcessDefinitionWriter {
public:
    using CFCProcessDefinitionWriter::GetCompleteHierarchy;
    using CFCProcessDefinitionWriter::GetNodeTypeString;
    using CFCProcessDefinitionWriter::m_bRecursive;
    using CFCProcessDefinitionWriter::m_pRootNode;
    using CFCProcessDefinitionWriter::m_strBaseFolder;
    using CFCProcessDefinitionWriter::m_strFilePath;
    using CFCProcessDefinitionWriter::m_strHierarchyBase;
    using CFCProcessDefinitionWriter::m_strRootName;
    using CFCProcessDefinitionWriter::SetHierarchyPath;
    using CFCProcessDefinitionWriter::WritePoint;
};

class FCProcessDefinitionWriter : public WorkflowTest {
protected:
    bool write(IFCNode* node, bool recursive = true, std::string const& file = "processdefinition.xml") {
        return CFCProcessDefinitionWriter().WriteFile(path(file), node, recursive);
    }
    Element written(IFCNode* node, bool recursive = true) {
        EXPECT_TRUE(write(node, recursive));
        return read("processdefinition.xml");
    }
    // A process in a folder of workflows, whose hierarchy begins with "A/C".
    Element writtenInHierarchy(IFCNode* node) {
        makeFolder("BrindleExec/A/C");
        EXPECT_TRUE(write(node, true, "BrindleExec/A/C/processdefinition.xml"));
        return read("BrindleExec/A/C/processdefinition.xml");
    }
    // The element of one block of a kind, shaped before it is written.
    Element block(int kind, std::function<void(CFCBPMTaskNode&)> const& shape = {}) {
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const node = addTask(tree.get(), L"B", kind);
        if (shape)
            shape(*node);
        makeFolder("B");
        return written(tree.get()).with("name", "B");
    }
    Element task(std::function<void(CFCBPMTaskNode&)> const& shape = {}) { return block(150, shape).only("task"); }
    // What `fill` does to an element.
    Element filled(std::function<void(xercesc::DOMElement&)> const& fill) {
        EXPECT_TRUE(flowmere::writeWorkflowFile(path("filled.xml"), L"root", fill));
        return read("filled.xml");
    }
};

std::string kindName(int kind) {
    return "kind " + std::to_string(kind);
}

// --- Files and folders ---------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, RefusesAnEmptyPathAndANullNode) {
    Tree const tree = newWorkflow();
    CFCProcessDefinitionWriter writer;
    EXPECT_FALSE(writer.WriteFile(L"", tree.get(), true));
    EXPECT_FALSE(writer.WriteFile(nullptr, tree.get(), true));
    EXPECT_FALSE(writer.WriteFile(path("processdefinition.xml"), nullptr, true));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

TEST_F(FCProcessDefinitionWriter, WritesThreeFilesIntoTheFolder) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"T");
    EXPECT_TRUE(write(tree.get()));
    EXPECT_EQ(contentsOf(scratch.path()), kThreeFiles);
    EXPECT_EQ(read("processdefinition.xml").name, "process-definition");
    EXPECT_EQ(read("processdefinition.xml")["xmlns"], "http://www.w3.org/2001/XMLSchema-instance");
    EXPECT_EQ(read("gpd.xml").name, "root-container");
    EXPECT_EQ(read("process.var").name, "PROCESS");
}

TEST_F(FCProcessDefinitionWriter, TheCompanionsHaveTheirNamesWhateverTheFileIsCalled) {
    Tree const tree = newWorkflow();
    EXPECT_TRUE(write(tree.get(), true, "other.xml"));
    EXPECT_EQ(contentsOf(scratch.path()), "gpd.xml other.xml process.var");
}

TEST_F(FCProcessDefinitionWriter, OneSubProcessMakesSixFiles) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"T");
    IFCNode* const sub = addTask(tree.get(), L"S", 165);
    addTask(sub, L"Inner");
    makeFolder("S");
    Element const top = written(tree.get());
    EXPECT_EQ(contentsOf(scratch.path()),
              "S/gpd.xml S/process.var S/processdefinition.xml " + std::string(kThreeFiles));
    EXPECT_EQ(top.values("name"), "(absent) T S");
    EXPECT_TRUE(top.with("name", "S").all("task-node").empty()) << "its blocks have a file of their own";
    Element const nested = read("S/processdefinition.xml");
    EXPECT_EQ(nested["name"], "S");
    EXPECT_EQ(nested.only("task-node")["name"], "Inner");
    EXPECT_EQ(read("S/gpd.xml").only("node")["name"], "Inner");
    EXPECT_EQ(read("S/process.var").only("BLOCK_VARIABLES").only("BLOCK")["Name"], "Inner");
}

TEST_F(FCProcessDefinitionWriter, EachSubProcessKindHasItsOwnFolder) {
    Tree const tree = newWorkflow();
    for (int kind = 162; kind <= 165; ++kind) {
        TuString id;
        id.Format(L"S%d", kind);
        addTask(addTask(tree.get(), id, kind), L"Inner");
        makeFolder(narrow(id));
    }
    EXPECT_TRUE(write(tree.get()));
    for (int kind = 162; kind <= 165; ++kind)
        EXPECT_EQ(read("S" + std::to_string(kind) + "/processdefinition.xml").only("task-node")["name"], "Inner");
}

TEST_F(FCProcessDefinitionWriter, FoldersFollowTheNodePathBelowTheFirstFolderAtAllDepths) {
    Tree const tree = newWorkflow();
    tree->SetNodeId(L"P");
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    IFCNode* const outer = addTask(group, L"S", 165);
    IFCNode* const inner = addTask(outer, L"T", 162);
    addTask(inner, L"Deep");
    makeFolder("P/G/S/T");
    EXPECT_TRUE(write(tree.get()));
    EXPECT_EQ(contentsOf(scratch.path()),
              "P/G/S/T/gpd.xml P/G/S/T/process.var P/G/S/T/processdefinition.xml P/G/S/gpd.xml P/G/S/process.var "
              "P/G/S/processdefinition.xml gpd.xml process.var processdefinition.xml");
    EXPECT_EQ(read("P/G/S/T/processdefinition.xml").only("task-node")["name"], "Deep");
}

TEST_F(FCProcessDefinitionWriter, PathsWithSlashesWorkAsWell) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"S", 165), L"Inner");
    makeFolder("S");
    EXPECT_TRUE(CFCProcessDefinitionWriter().WriteFile(scratch.text("processdefinition.xml"), tree.get(), true));
    EXPECT_EQ(contentsOf(scratch.path()),
              "S/gpd.xml S/process.var S/processdefinition.xml " + std::string(kThreeFiles));
}

TEST_F(FCProcessDefinitionWriter, AMissingNestedFolderIsNotMade) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"S", 165), L"Inner");
    Element const top = written(tree.get());
    EXPECT_EQ(contentsOf(scratch.path()), kThreeFiles);
    EXPECT_FALSE(std::filesystem::exists(scratch / "S"));
    EXPECT_EQ(top.only("task-node")["nodeType"], "basicSubProcess");
}

TEST_F(FCProcessDefinitionWriter, AMissingFolderIsNoFailure) {
    Tree const tree = newWorkflow();
    EXPECT_TRUE(write(tree.get(), true, "missing/processdefinition.xml"));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

TEST_F(FCProcessDefinitionWriter, WithoutADefinitionTheOtherFilesStayAsTheyAre) {
    Tree const tree = newWorkflow();
    makeFolder("processdefinition.xml");
    EXPECT_TRUE(write(tree.get()));
    EXPECT_EQ(contentsOf(scratch.path()), "");
}

// Rights of an ordinary user, for as long as it lives: nothing is closed to a privileged one.
class OrdinaryUser {
public:
    OrdinaryUser() {
        if (m_former == 0 && ::seteuid(65534) != 0)
            throw std::runtime_error("no other user");
    }
    ~OrdinaryUser() {
        if (m_former == 0 && ::seteuid(0) != 0)
            std::abort();
    }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;

private:
    ::uid_t m_former = ::geteuid();
};

TEST_F(FCProcessDefinitionWriter, BesideAReadOnlyDefinitionTheOtherFilesStayAsTheyAre) {
    Tree const tree = newWorkflow();
    // Where everybody comes to, unlike the scratch folder.
    std::string name = (std::filesystem::temp_directory_path() / "flowmere-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    std::filesystem::path const folder = name;
    std::filesystem::permissions(folder, std::filesystem::perms::all);
    writeFile(folder / "processdefinition.xml", "former");
    std::filesystem::permissions(folder / "processdefinition.xml", std::filesystem::perms(0444));
    {
        OrdinaryUser const user;
        CFCProcessDefinitionWriter writer;
        EXPECT_TRUE(writer.WriteFile(wideWithBackslashes(folder / "processdefinition.xml"), tree.get(), true));
    }
    EXPECT_EQ(contentsOf(folder), "processdefinition.xml");
    EXPECT_EQ(readFile(folder / "processdefinition.xml"), "former");
    std::filesystem::remove_all(folder);
}

// A block whose host fails.
class FailingTask : public CFCBPMTaskNode {
public:
    void TransferToData() override { throw std::runtime_error("no drawing"); }
};

TEST_F(FCProcessDefinitionWriter, AnExceptionOnTheWayIsSwallowedAndEndsTheWrite) {
    Tree const tree = newWorkflow();
    auto failing = std::make_unique<FailingTask>();
    failing->SetNodeType(150);
    failing->SetNodeId(L"F");
    tree->AppendChild(failing.release(), false);
    EXPECT_TRUE(write(tree.get()));
    EXPECT_EQ(contentsOf(scratch.path()), "");
    for (char const* name : {"processdefinition.xml", "gpd.xml", "process.var"})
        scratch.write(name, "former");
    EXPECT_TRUE(write(tree.get()));
    for (char const* name : {"processdefinition.xml", "gpd.xml", "process.var"})
        EXPECT_EQ(scratch.read(name), "former") << name;
}

TEST_F(FCProcessDefinitionWriter, AFailureInAFolderBelowLeavesTheFileAboveWhole) {
    Tree const tree = newWorkflow();
    IFCNode* const sub = addTask(tree.get(), L"S", 165);
    addTask(tree.get(), L"T");
    auto failing = std::make_unique<FailingTask>();
    failing->SetNodeType(150);
    failing->SetNodeId(L"F");
    sub->AppendChild(failing.release(), false);
    makeFolder("S");
    EXPECT_EQ(written(tree.get()).values("name"), "(absent) S T");
    EXPECT_FALSE(std::filesystem::exists(scratch / "S/processdefinition.xml"));
}

// Makes the scratch folder the current one.
class CurrentFolder {
public:
    explicit CurrentFolder(std::filesystem::path const& folder) : m_former(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~CurrentFolder() {
        std::error_code ignored;
        std::filesystem::current_path(m_former, ignored);
    }
    CurrentFolder(CurrentFolder const&) = delete;
    CurrentFolder& operator=(CurrentFolder const&) = delete;

private:
    std::filesystem::path m_former;
};

TEST_F(FCProcessDefinitionWriter, APlainFileNameKeepsAllFilesInTheCurrentFolder) {
    Tree const tree = newWorkflow();
    IFCNode* const outer = addTask(tree.get(), L"S", 165);
    addTask(addTask(outer, L"T", 165), L"Inner");
    makeFolder("S/T");
    {
        CurrentFolder const here(scratch.path());
        EXPECT_TRUE(CFCProcessDefinitionWriter().WriteFile(L"processdefinition.xml", tree.get(), true));
    }
    EXPECT_EQ(contentsOf(scratch.path()),
              "S/T/gpd.xml S/T/process.var S/T/processdefinition.xml S/gpd.xml S/process.var "
              "S/processdefinition.xml gpd.xml process.var processdefinition.xml");
}

TEST_F(FCProcessDefinitionWriter, OfMixedSeparatorsTheLastSlashEndsTheFolder) {
    Tree const tree = newWorkflow();
    makeFolder("a/b");
    TuString const mixed = scratch.text("a") + L"\\b\\processdefinition.xml";
    EXPECT_TRUE(CFCProcessDefinitionWriter().WriteFile(mixed, tree.get(), true));
    EXPECT_EQ(contentsOf(scratch.path()), "a/b/processdefinition.xml gpd.xml process.var");
}

TEST_F(FCProcessDefinitionWriter, WithoutRecursionOnlyTheDefinitionIsShort) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"T");
    addTask(addTask(tree.get(), L"S", 165), L"Inner");
    makeFolder("S");
    Element const root = written(tree.get(), false);
    EXPECT_EQ(root.outline(), "type");
    EXPECT_EQ(contentsOf(scratch.path()), kThreeFiles);
    EXPECT_EQ(read("gpd.xml").outline(), "node node");
    EXPECT_EQ(read("process.var").only("BLOCK_VARIABLES").outline(), "BLOCK BLOCK");
}

TEST_F(FCProcessDefinitionWriter, ASecondWriteReplacesTheFirst) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"T");
    Element const first = written(tree.get());
    EXPECT_EQ(written(tree.get()), first);
    addTask(tree.get(), L"U");
    EXPECT_EQ(written(tree.get()).values("name"), "(absent) T U");
}

TEST_F(FCProcessDefinitionWriter, TheBaseFolderIsThatOfTheFirstFile) {
    Tree const tree = newWorkflow();
    makeFolder("a");
    OpenWriter writer;
    EXPECT_EQ(narrow(writer.m_strRootName), "process-definition");
    EXPECT_EQ(narrow(writer.m_strBaseFolder), "");
    EXPECT_FALSE(writer.m_bRecursive);
    EXPECT_EQ(writer.m_pRootNode, nullptr);
    EXPECT_TRUE(writer.WriteFile(path("processdefinition.xml"), tree.get(), true));
    EXPECT_EQ(writer.m_strBaseFolder, wideWithBackslashes(scratch.path()));
    EXPECT_EQ(writer.m_strFilePath, path("processdefinition.xml"));
    EXPECT_TRUE(writer.m_bRecursive);
    EXPECT_EQ(writer.m_pRootNode, tree.get());
    EXPECT_TRUE(writer.WriteFile(path("a/processdefinition.xml"), tree.get(), false));
    EXPECT_EQ(writer.m_strBaseFolder, wideWithBackslashes(scratch.path()));
    EXPECT_FALSE(writer.m_bRecursive);
}

TEST_F(FCProcessDefinitionWriter, CopiesTakeWhatTheWriterHolds) {
    Tree const tree = newWorkflow();
    makeFolder("BrindleExec/A");
    OpenWriter writer;
    EXPECT_TRUE(writer.WriteFile(path("BrindleExec/A/processdefinition.xml"), tree.get(), true));
    EXPECT_EQ(narrow(writer.m_strHierarchyBase), "A");
    OpenWriter const copy(writer);
    OpenWriter assigned;
    assigned = writer;
    for (OpenWriter const* each : {&copy, static_cast<OpenWriter const*>(&assigned)}) {
        EXPECT_EQ(each->m_strFilePath, writer.m_strFilePath);
        EXPECT_EQ(each->m_strBaseFolder, writer.m_strBaseFolder);
        EXPECT_EQ(each->m_strHierarchyBase, writer.m_strHierarchyBase);
        EXPECT_EQ(each->m_strRootName, writer.m_strRootName);
        EXPECT_EQ(each->m_pRootNode, tree.get());
        EXPECT_TRUE(each->m_bRecursive);
    }
}

TEST_F(FCProcessDefinitionWriter, FormattingPutsAnIndentedCopyBesideTheFile) {
    scratch.write("processdefinition.xml", "<process-definition><fork name=\"F\"/></process-definition>");
    CFCProcessDefinitionWriter::LoadAndFormatXML(path("processdefinition.xml"));
    EXPECT_EQ(read("processdefinition.for"), read("processdefinition.xml"));
    EXPECT_THAT(scratch.read("processdefinition.for"), HasSubstr("\n  <fork"));
}

// --- Hierarchies ---------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, TheHierarchyBaseFollowsTheFolderOfAllWorkflows) {
    struct Row {
        wchar_t const* folder;
        char const* base;
    };
    Row const rows[] = {
        {L"\\data\\BrindleExec\\A\\C", "A/C"},
        {L"\\data\\BrindleExec\\A\\C\\\\", "A/C"},
        {L"\\data\\BrindleExec", ""},
        {L"\\data\\BrindleExec\\", ""},
        {L"\\data\\Other\\A", ""},
        {L"\\data\\brindleexec\\A", ""},
        {L"", ""},
        {L"\\BrindleExec\\A\\BrindleExec\\B", "A/BrindleExec/B"},
        {L"\\data\\BrindleExecution\\A", "ution/A"},
        {L"/data/BrindleExec/A/C", "/A/C"},
    };
    for (Row const& row : rows) {
        OpenWriter writer;
        writer.m_strBaseFolder = row.folder;
        writer.m_strHierarchyBase = L"former";
        writer.SetHierarchyPath();
        EXPECT_EQ(narrow(writer.m_strHierarchyBase), row.base) << narrow(row.folder);
    }
}

TEST_F(FCProcessDefinitionWriter, ACompleteHierarchyIsBaseSlashPath) {
    OpenWriter writer;
    EXPECT_EQ(writer.GetCompleteHierarchy(L"G.T"), nullptr) << "no base, no hierarchy";
    EXPECT_EQ(writer.GetCompleteHierarchy(nullptr), nullptr);
    writer.m_strHierarchyBase = L"A/C";
    EXPECT_EQ(narrow(writer.GetCompleteHierarchy(L"G.T")), "A/C/G/T");
    EXPECT_EQ(narrow(writer.GetCompleteHierarchy(L"")), "A/C");
    EXPECT_EQ(narrow(writer.GetCompleteHierarchy(nullptr)), "A/C");
    EXPECT_EQ(narrow(writer.GetCompleteHierarchy(L"x\\y")), "A/C/x\\y");
}

TEST_F(FCProcessDefinitionWriter, AllWritersShareTheTextOfTheHierarchy) {
    OpenWriter first;
    OpenWriter second;
    first.m_strHierarchyBase = L"A";
    second.m_strHierarchyBase = L"B";
    wchar_t const* text = first.GetCompleteHierarchy(L"T");
    EXPECT_EQ(narrow(second.GetCompleteHierarchy(text)), "B/A/T") << "the shared text itself as the path";
    text = second.GetCompleteHierarchy(L"U");
    EXPECT_EQ(narrow(text), "B/U");
}

TEST_F(FCProcessDefinitionWriter, HierarchiesStandOnTheRootTheTaskAndTheSubProcess) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    addTask(group, L"T");
    IFCNode* const sub = addTask(tree.get(), L"S", 165);
    addTask(sub, L"Inner");
    makeFolder("BrindleExec/A/C/S");
    Element const root = writtenInHierarchy(tree.get());
    EXPECT_EQ(root["hierarchyPath"], "A/C");
    Element const superState = root.only("super-state");
    EXPECT_FALSE(superState.has("hierarchyPath"));
    EXPECT_EQ(superState.only("task")["hierarchyPath"], "A/C/G");
    EXPECT_EQ(superState.only("task-node").only("task")["hierarchyPath"], "A/C/G/T");
    EXPECT_EQ(root.with("name", "S").only("sub-process")["hierarchyPath"], "A/C/S");
    Element const nested = read("BrindleExec/A/C/S/processdefinition.xml");
    EXPECT_EQ(nested["hierarchyPath"], "A/C/S") << "the base is that of the first file";
    EXPECT_EQ(nested.only("task-node").only("task")["hierarchyPath"], "A/C/S/Inner");
}

TEST_F(FCProcessDefinitionWriter, OutsideTheFolderOfAllWorkflowsHierarchiesAreEmpty) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"T");
    Element const root = written(tree.get());
    EXPECT_EQ(root["hierarchyPath"], "");
    EXPECT_EQ(root.only("task-node").only("task")["hierarchyPath"], "");
}

TEST_F(FCProcessDefinitionWriter, ABlockWithoutAPathHasNoHierarchy) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"", 165);
    node->SetNodeCaption(L"Shown");
    node->SetTaskName(L"Work");
    Element const element = writtenInHierarchy(tree.get()).only("task-node");
    EXPECT_EQ(element["name"], "Shown");
    EXPECT_FALSE(element.only("task").has("hierarchyPath"));
    EXPECT_EQ(element.only("sub-process")["name"], "Shown");
    EXPECT_FALSE(element.only("sub-process").has("hierarchyPath"));
}

// --- The root ------------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, TheRootIsNamedByIdentifierCaptionOrAllBlocks) {
    Tree const tree = newWorkflow(L"Caption");
    EXPECT_EQ(written(tree.get())["name"], "Caption");
    tree->SetNodeId(L"Id");
    EXPECT_EQ(written(tree.get())["name"], "Id");
    tree->SetNodeId(L"");
    tree->SetNodeCaption(L"");
    Element const root = written(tree.get());
    EXPECT_EQ(root["name"], "allblocks");
    EXPECT_FALSE(root.has("label")) << "without a name there is nothing more";
}

TEST_F(FCProcessDefinitionWriter, TheVersionReadsAsOne) {
    Tree const tree = newWorkflow();
    EXPECT_EQ(std::stod(written(tree.get())["version"]), 1.0);
    EXPECT_EQ(std::stoi(written(tree.get())["version"]), 1);
}

TEST_F(FCProcessDefinitionWriter, TheTypeNamesTheProjectOfTheProcess) {
    struct Row {
        EProjectType type;
        char const* text;
    };
    Row const rows[] = {
        {EProjectType_BPT, "BPT"},
        {EProjectType_TASK, "TASK"},
        {EProjectType_MSP, "MSP"},
        {EProjectType_Report, "Report"},
        {EProjectType_Execute, "Execute"},
        {EProjectType_Debug, "Debug"},
        {EProjectType_APPLICATION, "APPLICATION"},
        {EProjectType_PROCESSLST, "PROCESSLST"},
        {EProjectType_None, ""},
    };
    for (Row const& row : rows) {
        Tree const tree = newWorkflow(L"Flow", row.type);
        EXPECT_EQ(written(tree.get()).only("type").text, row.text) << row.type;
    }
}

TEST_F(FCProcessDefinitionWriter, TheTypeBelowASubProcessIsAlwaysTask) {
    Tree const tree = newWorkflow(L"Flow", EProjectType_MSP);
    for (int kind = 162; kind <= 165; ++kind) {
        TuString id;
        id.Format(L"S%d", kind);
        addTask(tree.get(), id, kind);
        makeFolder(narrow(id));
    }
    EXPECT_EQ(written(tree.get()).only("type").text, "MSP");
    for (int kind = 162; kind <= 165; ++kind)
        EXPECT_EQ(read("S" + std::to_string(kind) + "/processdefinition.xml").only("type").text, "TASK") << kind;
}

TEST_F(FCProcessDefinitionWriter, AnApplicationTreeHasItsNameForAHierarchy) {
    Tree const tree = newWorkflow(L"Applications", EProjectType_APPLICATION);
    EXPECT_EQ(writtenInHierarchy(tree.get())["hierarchyPath"], "Applications");
}

TEST_F(FCProcessDefinitionWriter, AWorkflowRootHasLabelIconAndDescriptionBehindItsType) {
    Tree const tree = newWorkflow();
    tree->SetNodeDescription(L"What it is for");
    tree->GetBPMBlockData()->SetTaskCaption(L"Label");
    tree->GetBPMBlockData()->SetIconFilePath(L"icons\\flow.png");
    addTask(tree.get(), L"T");
    Element const root = written(tree.get());
    EXPECT_EQ(root["label"], "Label");
    EXPECT_EQ(root["icon"], "icons\\flow.png");
    EXPECT_FALSE(root.has("max-iterations"));
    EXPECT_FALSE(root.has("create-tasks"));
    EXPECT_EQ(root.outline(), "type description task-node");
    EXPECT_EQ(root.only("description").text, "What it is for");
}

TEST_F(FCProcessDefinitionWriter, APlainProcessAsARootHasTheRootAttributesAlone) {
    Tree const tree(CFCNodeFactory().Create(56));
    tree->SetNodeCaption(L"Plain");
    tree->SetNodeDescription(L"Not written");
    addChild(tree.get(), 57, L"Block");
    addTask(tree.get(), L"T");
    Element const root = written(tree.get());
    EXPECT_EQ(root["name"], "Plain");
    EXPECT_FALSE(root.has("label"));
    EXPECT_EQ(root.outline(), "type task-node") << "native blocks have no element";
}

TEST_F(FCProcessDefinitionWriter, ASubProcessAsARootHasItsBlocksAndNothingOfItsOwnTask) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const sub = addTask(tree.get(), L"S", 162);
    CFCBPMTaskNode* const next = addTask(tree.get(), L"N");
    sub->SetTaskCaption(L"Label");
    sub->SetMaxIterations(7);
    sub->SetIconFilePath(L"loop.png");
    sub->SetNodeDescription(L"Again and again");
    sub->SetModulePath(L"A.S.scripts.S");
    connect(tree.get(), sub, next);
    addTask(sub, L"Inner");
    makeFolder("S");
    Element const above = written(tree.get()).with("name", "S");
    EXPECT_EQ(above.outline(), "description sub-process task transition event");
    Element const root = read("S/processdefinition.xml");
    EXPECT_EQ(root.name, "process-definition");
    EXPECT_EQ(root["label"], "Label");
    EXPECT_EQ(root["max-iterations"], "7");
    EXPECT_EQ(root["icon"], "loop.png");
    EXPECT_FALSE(root.has("nodeType"));
    EXPECT_EQ(root.outline(), "type description task-node");
}

TEST_F(FCProcessDefinitionWriter, AProcessInsideIsWrittenAsOne) {
    Tree const tree = newWorkflow();
    IFCNode* const inner = addChild(tree.get(), 160, L"Inner");
    addTask(inner, L"T");
    Element const element = written(tree.get()).only("process-definition");
    EXPECT_EQ(element["name"], "Inner");
    EXPECT_EQ(element.outline(), "type task-node");
}

TEST_F(FCProcessDefinitionWriter, APlainProcessInsideHasTheRootAttributesToo) {
    Tree const tree = newWorkflow();
    addTask(addChild(tree.get(), 56, L"Inner"), L"T");
    Element const element = writtenInHierarchy(tree.get()).only("process-definition");
    EXPECT_EQ(element["name"], "Inner");
    EXPECT_EQ(element["hierarchyPath"], "A/C/Inner");
    EXPECT_FALSE(element.has("label"));
    EXPECT_EQ(element.outline(), "type task-node");
}

TEST_F(FCProcessDefinitionWriter, TheProjectIsThatOfTheTopmostProcess) {
    Tree const tree = newWorkflow(L"Flow", EProjectType_MSP);
    IFCNode* const inner = addChild(tree.get(), 160, L"Inner");
    inner->SetProjectType(EProjectType_BPT);
    EXPECT_EQ(written(tree.get()).only("process-definition").only("type").text, "MSP");
    tree->SetProjectType(EProjectType_APPLICATION);
    addTask(tree.get(), L"S", 165);
    makeFolder("BrindleExec/A/C/S");
    Element const root = writtenInHierarchy(tree.get());
    EXPECT_EQ(root.only("process-definition")["hierarchyPath"], "Inner");
    Element const nested = read("BrindleExec/A/C/S/processdefinition.xml");
    EXPECT_EQ(nested["hierarchyPath"], "S");
    EXPECT_EQ(nested.only("type").text, "TASK");
}

TEST_F(FCProcessDefinitionWriter, RootAttributesMayBeWrittenAlone) {
    Tree const tree = newWorkflow(L"Flow", EProjectType_MSP);
    IFCNode* const sub = addTask(tree.get(), L"S", 165);
    Element const element = filled([&](xercesc::DOMElement& own) { OpenWriter().WritePropertiesRoot(sub, &own); });
    EXPECT_EQ(element["name"], "S");
    EXPECT_EQ(element["version"], "1");
    EXPECT_EQ(element["hierarchyPath"], "");
    EXPECT_EQ(element.only("type").text, "MSP") << "no file, so none below a sub-process";
}

TEST_F(FCProcessDefinitionWriter, ARootOfAnotherKindGivesABareFile) {
    Tree const tree = newWorkflow();
    IFCNode* const odd = addTask(tree.get(), L"U", 151);
    Element const root = written(odd);
    EXPECT_EQ(root.name, "process-definition");
    EXPECT_EQ(root.attributes.size(), 1U);
    EXPECT_TRUE(root.children.empty());
}

// --- Elements ------------------------------------------------------------------------------------------------

std::map<int, std::string> const kElements = {
    {0, "UnKnown"},
    {56, "process-definition"},
    {150, "task-node"},
    {153, "task-node"},
    {154, "start-state"},
    {155, "end-state"},
    {156, "fork"},
    {157, "join"},
    {160, "process-definition"},
    {161, "super-state"},
    {162, "task-node"},
    {163, "task-node"},
    {164, "task-node"},
    {165, "task-node"},
    {167, "task-node"},
    {168, "super-state"},
};

TEST_F(FCProcessDefinitionWriter, EachKindHasItsElement) {
    OpenWriter writer;
    Tree const node(CFCNodeFactory().Create(150));
    for (int kind = -1; kind < 300; ++kind) {
        node->SetNodeType(kind);
        TuString name(L"former");
        auto const row = kElements.find(kind);
        EXPECT_EQ(writer.GetObjectType(node.get(), name), row != kElements.end()) << kind;
        EXPECT_EQ(narrow(name), row != kElements.end() ? row->second : "former") << kind;
    }
    TuString name(L"former");
    EXPECT_FALSE(writer.GetObjectType(nullptr, name));
    EXPECT_EQ(narrow(name), "former");
}

TEST_F(FCProcessDefinitionWriter, EachKindOfTaskHasItsName) {
    OpenWriter writer;
    Tree const node(CFCNodeFactory().Create(150));
    for (int kind = 0; kind < 300; ++kind) {
        node->SetNodeType(kind);
        TuString name(L"former");
        writer.GetNodeTypeString(node.get(), name);
        EXPECT_EQ(narrow(name), narrow(flowmere::workflowNodeTypeName(kind))) << kind;
    }
    TuString name(L"former");
    writer.GetNodeTypeString(nullptr, name);
    EXPECT_EQ(narrow(name), "");
}

TEST_F(FCProcessDefinitionWriter, KindsWithoutElementAreLeftOutWithAllBelow) {
    for (int const kind : {57, 58, 70, 151, 152, 158, 159, 166, 176, 178}) {
        Tree const tree = newWorkflow();
        IFCNode* const odd = addTask(tree.get(), L"Odd");
        odd->SetNodeType(kind);
        addTask(odd, L"Below");
        addTask(tree.get(), L"T");
        EXPECT_EQ(written(tree.get()).values("name"), "(absent) T") << kindName(kind);
    }
}

TEST_F(FCProcessDefinitionWriter, ChildrenComeOutFromTheLastSibling) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    for (wchar_t const* id : {L"A", L"B", L"C"})
        addTask(group, id);
    EXPECT_EQ(narrow(group->GetChild()->GetNodeId()), "C");
    Element const superState = written(tree.get()).only("super-state");
    EXPECT_EQ(superState.outline(), "task task-node task-node task-node");
    EXPECT_EQ(superState.values("name"), "G A B C");
}

TEST_F(FCProcessDefinitionWriter, TheAttributesFollowTheKind) {
    struct Row {
        int kind;
        bool isTask;
        bool hasIterations;
        char const* nodeType;
    };
    Row const rows[] = {
        {150, true, false, "task"},
        {153, true, false, "decisionTask"},
        {154, false, false, "(absent)"},
        {155, false, false, "(absent)"},
        {156, false, false, "(absent)"},
        {157, false, false, "(absent)"},
        {161, true, false, "(absent)"},
        {162, true, true, "iteratingLoopSubProcess"},
        {163, true, true, "decisionLoopSubProcess"},
        {164, true, false, "spawningSubProcess"},
        {165, true, false, "basicSubProcess"},
        {167, true, false, "(absent)"},
        {168, true, false, "(absent)"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(kindName(row.kind));
        Element const element = block(row.kind, [](CFCBPMTaskNode& node) {
            node.SetTaskCaption(L"Label");
            node.SetMaxIterations(3);
            node.SetIconFilePath(L"i.png");
            node.SetNodeDescription(L"Text");
        });
        EXPECT_EQ(element.name, kElements.at(row.kind));
        EXPECT_EQ(element["name"], "B");
        EXPECT_EQ(element["label"], "Label");
        EXPECT_EQ(element["max-iterations"], row.hasIterations ? "3" : "(absent)");
        EXPECT_EQ(element["icon"], "i.png");
        EXPECT_EQ(element.only("description").text, "Text");
        EXPECT_EQ(element["create-tasks"], row.isTask ? "false" : "(absent)");
        EXPECT_EQ(element["signal"], row.isTask ? "last-wait" : "(absent)");
        EXPECT_EQ(element["nodeType"], row.nodeType);
        EXPECT_EQ(element.all("task").size(), row.isTask ? 1U : 0U);
        EXPECT_EQ(element.all("sub-process").size(), flowmere::isSubProcessKind(row.kind) ? 1U : 0U);
    }
}

TEST_F(FCProcessDefinitionWriter, IconAndDescriptionAreThereOnlyWithContent) {
    Element const element = block(150);
    EXPECT_FALSE(element.has("icon"));
    EXPECT_EQ(element["label"], "");
    EXPECT_TRUE(element.all("description").empty());
}

TEST_F(FCProcessDefinitionWriter, ANodeOfNoKindIsUnKnown) {
    Element const element = block(150, [](CFCBPMTaskNode& node) { node.SetNodeType(0); });
    EXPECT_EQ(element.name, "UnKnown");
    EXPECT_EQ(element["label"], "");
    EXPECT_FALSE(element.has("signal"));
}

TEST_F(FCProcessDefinitionWriter, TheCaptionStandsInForAMissingIdentifier) {
    Tree const tree = newWorkflow();
    addChild(tree.get(), 150, L"", L"Shown");
    EXPECT_EQ(written(tree.get()).only("task-node")["name"], "Shown");
}

TEST_F(FCProcessDefinitionWriter, ANodeWithoutAnyNameStaysEmptyButForWhatIsBelow) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const group = addTask(tree.get(), L"", 161);
    group->SetTaskName(L"Work");
    group->SetTaskCaption(L"Label");
    addTask(group, L"T");
    Element const element = written(tree.get()).only("super-state");
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_EQ(element.outline(), "task-node");
}

TEST_F(FCProcessDefinitionWriter, ASubProcessWithoutAnyNameHasNoFiles) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"", 165), L"Inner");
    Element const root = written(tree.get());
    EXPECT_EQ(contentsOf(scratch.path()), kThreeFiles);
    EXPECT_TRUE(root.only("task-node").attributes.empty());
    EXPECT_TRUE(root.only("task-node").children.empty());
}

TEST_F(FCProcessDefinitionWriter, ASubProcessWithACaptionOnlyIsOverwrittenByTheFileAbove) {
    Tree const tree = newWorkflow();
    IFCNode* const sub = addChild(tree.get(), 165, L"", L"Shown");
    addTask(sub, L"Inner");
    Element const root = written(tree.get());
    EXPECT_EQ(contentsOf(scratch.path()), kThreeFiles);
    EXPECT_EQ(root.only("task-node")["name"], "Shown");
    EXPECT_EQ(root["name"], "Flow");
}

// A node without the records of a block.
class BareNode : public CFCNode {
public:
    void Create() override {}
    IFCNode* CloneNode() override { return nullptr; }
    wchar_t const* GetNodeId() override { return L"Bare"; }
};

TEST_F(FCProcessDefinitionWriter, ANodeWithoutTheRecordsStopsAfterTheRootAttributes) {
    Tree const tree = newWorkflow();
    auto bare = std::make_unique<BareNode>();
    bare->SetNodeType(150);
    bare->SetNodeDescription(L"Text");
    tree->AppendChild(bare.release(), false);
    Element const element = written(tree.get()).only("task-node");
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_TRUE(element.children.empty());
}

TEST_F(FCProcessDefinitionWriter, ABlockOfANativeProcessHasNoTaskUnderAWorkflowKind) {
    Tree const tree = newWorkflow();
    IFCNode* const native = addChild(tree.get(), 57, L"Native");
    native->SetNodeType(150);
    Element const element = written(tree.get()).only("task-node");
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_TRUE(element.children.empty());
}

// A task without the data of a block.
class HalfTask : public CFCBPMTaskNode {
public:
    CFCBlockData* GetFCBlockData() override { return nullptr; }
};

TEST_F(FCProcessDefinitionWriter, ATaskWithoutBlockDataHasAnEmptyElement) {
    Tree const tree = newWorkflow();
    auto half = std::make_unique<HalfTask>();
    half->SetNodeType(150);
    half->SetNodeId(L"H");
    tree->AppendChild(half.release(), false);
    Element const element = written(tree.get()).only("task-node");
    EXPECT_TRUE(element.attributes.empty());
    EXPECT_TRUE(element.children.empty());
}

// A block whose drawing knows its label.
class DrawnTask : public CFCBPMTaskNode {
public:
    void TransferToData() override { SetTaskCaption(L"From the drawing"); }
};

TEST_F(FCProcessDefinitionWriter, TheDrawingIsAskedForItsDataFirst) {
    Tree const tree = newWorkflow();
    auto drawn = std::make_unique<DrawnTask>();
    drawn->SetNodeType(150);
    drawn->SetNodeId(L"D");
    tree->AppendChild(drawn.release(), false);
    EXPECT_EQ(written(tree.get()).only("task-node")["label"], "From the drawing");
}

TEST_F(FCProcessDefinitionWriter, WriteObjectNeedsANodeAndAPlace) {
    Tree const tree = newWorkflow();
    IFCNode* const node = addTask(tree.get(), L"T");
    Element const root = filled([&](xercesc::DOMElement& element) {
        OpenWriter writer;
        writer.WriteObject(node, nullptr, nullptr);
        writer.WriteObject(nullptr, &element, nullptr);
        writer.WriteObject(node, &element, nullptr);
        writer.WriteChildren(nullptr, &element);
        writer.WriteProperties(nullptr, &element);
        writer.WriteProperties(node, nullptr);
        writer.WritePropertiesRoot(nullptr, &element);
        writer.WritePropertiesRoot(node, nullptr);
    });
    EXPECT_EQ(root.outline(), "task-node");
    EXPECT_EQ(root.attributes.size(), 1U);
}

// Kinds that have no element have properties all the same.
TEST_F(FCProcessDefinitionWriter, TasksOfTheKindsThatPassThroughHaveTheContentOfATask) {
    for (int const kind : {151, 152}) {
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const node = addTask(tree.get(), L"T", kind);
        node->SetModulePath(L"M");
        Element const element = filled([&](xercesc::DOMElement& own) { OpenWriter().WriteProperties(node, &own); });
        EXPECT_EQ(element["signal"], "last-wait") << kindName(kind);
        EXPECT_FALSE(element.has("nodeType")) << kindName(kind);
        EXPECT_EQ(element.outline(), "task event") << kindName(kind);
    }
}

TEST_F(FCProcessDefinitionWriter, AStartStateHasItsNameLabelAndTransitionsAndNoTask) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const start = addTask(tree.get(), L"Start", 154);
    CFCBPMTaskNode* const task = addTask(tree.get(), L"T");
    start->SetTaskCaption(L"Begin");
    start->SetModulePath(L"M");
    start->SetEventType(L"task-start");
    start->CreateNewEventAction();
    start->SetTimerName(L"Timer");
    start->SetExceptionClass(L"E");
    connect(tree.get(), start, task);
    Element const element = written(tree.get()).only("start-state");
    EXPECT_EQ(element["label"], "Begin");
    EXPECT_EQ(element.outline(), "transition");
    EXPECT_EQ(element.attributes.size(), 2U);
}

// --- Applications --------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, AnApplicationHasItsOwnAttributes) {
    Tree const tree = newWorkflow(L"Applications", EProjectType_APPLICATION);
    for (int const kind : {167, 168}) {
        CFCApplicationNode* const application = addApplication(tree.get(), kind == 167 ? L"App" : L"Group", kind);
        application->SetTaskCaption(L"Label");
        application->SetAppID(42);
        application->SetUseBindingScript(true);
        application->SetDeleted(true);
        application->SetDeleteAllVersions(true);
    }
    Element const root = writtenInHierarchy(tree.get());
    for (char const* name : {"App", "Group"}) {
        Element const element = root.with("name", name);
        SCOPED_TRACE(name);
        EXPECT_EQ(element["label"], "Label");
        EXPECT_EQ(element["hierarchyPath"], std::string("A/C/") + name);
        EXPECT_EQ(element["useBindingScript"], "true");
        EXPECT_EQ(element["isNewVersion"], "false");
        EXPECT_EQ(element["isUpdated"], "false");
        EXPECT_EQ(element["isDeleted"], "true");
        EXPECT_EQ(element["isDeletedAll"], "true");
        EXPECT_EQ(element["icon"], "") << "also when empty";
        EXPECT_EQ(element["id"], "42");
        EXPECT_EQ(element["signal"], "last-wait");
        EXPECT_EQ(element.only("task")["name"], name);
        EXPECT_TRUE(element.all("event").empty());
    }
}

TEST_F(FCProcessDefinitionWriter, AnApplicationStartsWithEverythingFalse) {
    Tree const tree = newWorkflow();
    addApplication(tree.get(), L"App")->SetIconFilePath(L"app.png");
    Element const element = written(tree.get()).only("task-node");
    for (char const* name : {"useBindingScript", "isNewVersion", "isUpdated", "isDeleted", "isDeletedAll"})
        EXPECT_EQ(element[name], "false") << name;
    EXPECT_EQ(element["icon"], "app.png");
    EXPECT_EQ(element["id"], "0");
    EXPECT_EQ(element["hierarchyPath"], "") << "there all the same";
}

TEST_F(FCProcessDefinitionWriter, EachFlagOfAnApplicationHasItsAttribute) {
    for (int flag = 0; flag < 3; ++flag) {
        Tree const tree = newWorkflow();
        CFCApplicationNode* const application = addApplication(tree.get(), L"App");
        application->SetUseBindingScript(flag == 0);
        application->SetDeleted(flag == 1);
        application->SetDeleteAllVersions(flag == 2);
        Element const element = written(tree.get()).only("task-node");
        EXPECT_EQ(element["useBindingScript"], flag == 0 ? "true" : "false");
        EXPECT_EQ(element["isDeleted"], flag == 1 ? "true" : "false");
        EXPECT_EQ(element["isDeletedAll"], flag == 2 ? "true" : "false");
    }
}

TEST_F(FCProcessDefinitionWriter, OnlyAnUpdatedNewVersionIsNewAndThenNotUpdated) {
    struct Row {
        int isNew;
        int isUpdated;
        char const* newText;
        char const* updatedText;
    };
    Row const rows[] = {
        {0, 0, "false", "false"}, {0, 1, "false", "true"}, {1, 0, "false", "false"}, {1, 1, "true", "false"}};
    for (Row const& row : rows) {
        Tree const tree = newWorkflow();
        CFCApplicationNode* const application = addApplication(tree.get(), L"App");
        application->SetAppID(1);
        application->SetNewVersion(row.isNew);
        application->SetUpdated(row.isUpdated);
        Element const element = written(tree.get()).only("task-node");
        EXPECT_EQ(element["isNewVersion"], row.newText) << row.isNew << row.isUpdated;
        EXPECT_EQ(element["isUpdated"], row.updatedText) << row.isNew << row.isUpdated;
    }
}

TEST_F(FCProcessDefinitionWriter, TheHierarchyOfAnApplicationLosesTheFolderOfTheWorkflows) {
    struct Row {
        char const* folder;
        char const* hierarchy;
    };
    Row const rows[] = {
        {"BrindleExec/BPM/Apps", "Apps/App"},
        {"BrindleExec/BPMX/Apps", "/Apps/App"},
        {"BrindleExec/bpm/Apps", "bpm/Apps/App"},
        {"BrindleExec/Apps/BPM", "Apps/BPM/App"},
        {"BrindleExec/BPM", "App"},
    };
    for (Row const& row : rows) {
        Tree const tree = newWorkflow();
        addApplication(tree.get(), L"App");
        makeFolder(row.folder);
        std::string const file = std::string(row.folder) + "/processdefinition.xml";
        EXPECT_TRUE(write(tree.get(), true, file));
        Element const element = read(file).only("task-node");
        EXPECT_EQ(element["hierarchyPath"], row.hierarchy) << row.folder;
        std::string const whole = std::string(row.folder).substr(std::string("BrindleExec/").size()) + "/App";
        EXPECT_EQ(element.only("task")["hierarchyPath"], whole) << "that of the task is whole";
    }
}

TEST_F(FCProcessDefinitionWriter, APlainTaskUnderTheKindOfAnApplicationHasNoneOfItsAttributes) {
    for (int const kind : {167, 168}) {
        Element const element = block(150, [kind](CFCBPMTaskNode& node) { node.SetNodeType(kind); });
        EXPECT_EQ(element.name, kElements.at(kind));
        for (char const* name : {"hierarchyPath", "useBindingScript", "isNewVersion", "id", "icon"})
            EXPECT_FALSE(element.has(name)) << name;
        EXPECT_EQ(element.outline(), "task");
    }
}

// --- Tasks ---------------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, EachAttributeOfATaskHasItsSource) {
    Element const element = task([](CFCBPMTaskNode& node) {
        node.SetGui(true);
        node.SetHTMLScriptFileName(L"A\\B\\B.html");
        node.SetTaskName(L"Work");
        node.SetPriority(L"high");
        node.SetSwimLane(L"clerks");
        node.SetLateIndicator(true);
        node.SetDataAvailability(true);
        node.SetMilestone(true);
        node.SetRunOnServer(true);
        node.SetEmailNotification(true);
        node.SetCatagory(L"kind");
        node.SetProjectName(L"project");
        node.SetEffort(1.5);
        node.SetDuration(2.25);
        node.SetCost(1000);
        node.SetStartDate(dateOf(2024, 3, 5));
        node.SetEndDate(dateOf(2024, 12, 31, 23, 59, 59));
        node.SetActStartDate(dateOf(2024, 3, 6));
        node.SetActEndDate(dateOf(2024, 3, 7));
        node.SetEstimatedReadyDate(dateOf(2024, 3, 8));
        node.SetEstimatedEndDate(dateOf(2024, 3, 9));
        node.SetProjectLate(0.5);
        node.SetEstimatedEffort(3.125);
        node.SetActEffort(4);
        node.SetApplication(L"App");
        node.SetRequirementDoc(L"docs\\r.doc");
        node.SetWorkInstructions(L"Do it");
        node.SetAppVersion(-3);
        node.SetProgress(99.5);
        node.SetUser(L"user");
        node.SetUserRole(L"role");
        node.SetUserCategory(L"users");
        node.SetUserDataOverriden(true);
        node.SetGUIRect(std::make_unique<TuRect>(TuRect{10, 20, 110, 70}).get());
    });
    std::map<std::string, std::string> const expected = {
        {"form", "A/B/B.html"},
        {"name", "Work"},
        {"priority", "high"},
        {"hierarchyPath", ""},
        {"swimlane", "clerks"},
        {"lateIndicator", "Yes"},
        {"criticalPathIndicator", "Yes"},
        {"dataAvailability", "Yes"},
        {"milestone", "Yes"},
        {"runOnServer", "Yes"},
        {"notify", "Yes"},
        {"taskCategory", "kind"},
        {"projectName", "project"},
        {"effort", "1.5"},
        {"duration", "2.25"},
        {"cost", "1000"},
        {"startDate", "5/3/2024"},
        {"endDate", "31/12/2024"},
        {"actualStartDate", "6/3/2024"},
        {"actualEndDate", "7/3/2024"},
        {"estimatedReady", "8/3/2024"},
        {"estimatedEndDate", "9/3/2024"},
        {"projectLate", "0.5"},
        {"estimatedEffort", "3.125"},
        {"actualEffort", "4"},
        {"application", "App"},
        {"requirementDocument", "docs\\r.doc"},
        {"workInstruction", "Do it"},
        {"applicationVersion", "-3"},
        {"progress", "99.5"},
        {"user", "user"},
        {"userRole", "role"},
        {"category", "users"},
        {"isDataOverrriden", "true"},
        {"form_size", "{width:100,height:50}"},
    };
    EXPECT_EQ(element.attributes, expected);
    EXPECT_TRUE(element.children.empty());
}

TEST_F(FCProcessDefinitionWriter, ANewTaskIsWrittenWithItsDefaults) {
    std::map<std::string, std::string> const expected = {
        {"form", ""},
        {"name", "B"},
        {"priority", "normal"},
        {"hierarchyPath", ""},
        {"swimlane", ""},
        {"lateIndicator", "No"},
        {"criticalPathIndicator", "No"},
        {"dataAvailability", "No"},
        {"milestone", "No"},
        {"runOnServer", "No"},
        {"notify", "No"},
        {"taskCategory", ""},
        {"projectName", ""},
        {"effort", "8"},
        {"duration", "1"},
        {"cost", "0"},
        {"startDate", ""},
        {"endDate", ""},
        {"actualStartDate", ""},
        {"actualEndDate", ""},
        {"estimatedReady", ""},
        {"estimatedEndDate", ""},
        {"projectLate", "0"},
        {"estimatedEffort", "8"},
        {"actualEffort", "0"},
        {"application", ""},
        {"requirementDocument", ""},
        {"workInstruction", ""},
        {"applicationVersion", "0"},
        {"progress", "0"},
        {"user", ""},
        {"userRole", ""},
        {"category", ""},
        {"isDataOverrriden", "false"},
    };
    EXPECT_EQ(task().attributes, expected);
}

TEST_F(FCProcessDefinitionWriter, TheCriticalPathFollowsLateness) {
    for (bool const late : {false, true}) {
        for (bool const critical : {false, true}) {
            Element const element = task([=](CFCBPMTaskNode& node) {
                node.SetLateIndicator(late);
                node.SetCriticalPathIndicator(critical);
            });
            EXPECT_EQ(element["lateIndicator"], late ? "Yes" : "No");
            EXPECT_EQ(element["criticalPathIndicator"], late ? "Yes" : "No") << late << critical;
        }
    }
}

TEST_F(FCProcessDefinitionWriter, NotifyIsTheMailFlag) {
    EXPECT_EQ(task([](CFCBPMTaskNode& node) { node.SetNotify(true); })["notify"], "No");
    EXPECT_EQ(task([](CFCBPMTaskNode& node) { node.SetEmailNotification(true); })["notify"], "Yes");
}

TEST_F(FCProcessDefinitionWriter, WithoutAFormThereIsNeitherPathNorSize) {
    Element const element = task([](CFCBPMTaskNode& node) {
        node.SetHTMLScriptFileName(L"A\\B.html");
        TuRect rect{0, 0, 5, 5};
        node.SetGUIRect(&rect);
    });
    EXPECT_EQ(element["form"], "");
    EXPECT_FALSE(element.has("form_size"));
    Element const unsized = task([](CFCBPMTaskNode& node) {
        node.SetGui(true);
        node.SetHTMLScriptFileName(L"A\\B.html");
    });
    EXPECT_EQ(unsized["form"], "A/B.html");
    EXPECT_FALSE(unsized.has("form_size"));
}

TEST_F(FCProcessDefinitionWriter, TheSizeOfAFormMayBeNegativeAndHuge) {
    auto const sizeOf = [this](TuRect rect) {
        return task([&rect](CFCBPMTaskNode& node) {
            node.SetGui(true);
            node.SetGUIRect(&rect);
        })["form_size"];
    };
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    EXPECT_EQ(sizeOf({10, 10, 4, 10}), "{width:-6,height:0}");
    EXPECT_EQ(sizeOf({kMin, kMin, kMax, kMax}), "{width:4294967295,height:4294967295}");
}

TEST_F(FCProcessDefinitionWriter, DueDateAndDescriptionAreNoAttributes) {
    Element const element = task([](CFCBPMTaskNode& node) {
        node.SetDueDate(dateOf(2024, 1, 1));
        node.SetTaskDescription(L"What to do");
    });
    EXPECT_FALSE(element.has("dueDate"));
    EXPECT_FALSE(element.has("taskDescription"));
    EXPECT_EQ(element.outline(), "description");
    EXPECT_EQ(element.only("description").text, "What to do");
}

TEST_F(FCProcessDefinitionWriter, WithoutATaskNameThereIsNoTaskButEventsAndFiles) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"B", 165);
    node->SetTaskName(L"");
    node->SetModulePath(L"M");
    node->SetReminder(true);
    node->SetReminderDate(dateOf(2024, 1, 1));
    node->CreateNewReminderData()->SetActionName(L"mail");
    makeFolder("B");
    Element const element = written(tree.get()).only("task-node");
    EXPECT_EQ(element["nodeType"], "basicSubProcess");
    EXPECT_EQ(element.outline(), "event");
    EXPECT_TRUE(std::filesystem::exists(scratch / "B/processdefinition.xml"));
}

TEST_F(FCProcessDefinitionWriter, AReminderNeedsItsFlagAndADate) {
    auto const reminders = [this](bool flag, TuDate date) {
        return task([=](CFCBPMTaskNode& node) {
                   node.SetReminder(flag);
                   node.SetReminderDate(date);
                   node.SetReminderRepeat(4);
               })
            .all("reminder");
    };
    EXPECT_TRUE(reminders(false, dateOf(2024, 2, 1)).empty());
    EXPECT_TRUE(reminders(true, TuDate()).empty());
    ASSERT_EQ(reminders(true, dateOf(2024, 2, 1)).size(), 1U);
    Element const reminder = reminders(true, dateOf(2024, 2, 1)).front();
    EXPECT_EQ(reminder["duedate"], "1/2/2024");
    EXPECT_EQ(reminder["repeat"], "4");
    EXPECT_TRUE(reminder.children.empty());
}

TEST_F(FCProcessDefinitionWriter, ActionsOfAReminderStandBelowTheNode) {
    Element const element = block(150, [](CFCBPMTaskNode& node) {
        node.SetTaskDescription(L"Text");
        node.SetReminder(true);
        node.SetReminderDate(dateOf(2024, 2, 1));
        CFCReminderData* const mail = node.CreateNewReminderData();
        mail->SetActionName(L"mail");
        mail->SetClassName(L"a.Mail");
        mail->SetActionExpression(L"not written");
        node.CreateNewReminderData()->SetClassName(L"a.Nameless");
    });
    EXPECT_EQ(element.outline(), "task action");
    EXPECT_EQ(element.only("task").outline(), "description reminder");
    std::map<std::string, std::string> const expected = {{"name", "mail"}, {"class", "a.Mail"}};
    EXPECT_EQ(element.only("action").attributes, expected);
    Element const unset =
        block(150, [](CFCBPMTaskNode& node) { node.CreateNewReminderData()->SetActionName(L"mail"); });
    EXPECT_EQ(unset.outline(), "task");
}

TEST_F(FCProcessDefinitionWriter, ChildrenOfANodeHaveOneOrder) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"B", 165);
    CFCBPMTaskNode* const next = addTask(tree.get(), L"N");
    node->SetNodeDescription(L"Text");
    node->SetReminder(true);
    node->SetReminderDate(dateOf(2024, 2, 1));
    node->CreateNewReminderData()->SetActionName(L"mail");
    node->SetModulePath(L"M");
    node->SetExceptionClass(L"E");
    node->SetTimerName(L"Timer");
    connect(tree.get(), node, next);
    makeFolder("B");
    EXPECT_EQ(written(tree.get()).with("name", "B").outline(),
              "description sub-process task action transition event exception-handler timer");
}

// --- Transitions ---------------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, ATransitionHasTheAttributesOfItsConnector) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
    CFCBPMTaskNode* const b = addTask(tree.get(), L"B");
    CFCConnector* const connector = connect(tree.get(), a, b, 6, 2);
    connector->SetCaption(L"if late");
    connector->SetNodeCaption(L"not written");
    connector->SetConnectorType(static_cast<EConnectorType>(1));
    Element const root = written(tree.get());
    Element const transition = root.with("name", "A").only("transition");
    std::map<std::string, std::string> const expected = {{"to", "B"},     {"name", "A.B"},  {"label", "if late"},
                                                         {"inport", "6"}, {"outport", "2"}, {"type", "1"}};
    EXPECT_EQ(transition.attributes, expected);
    EXPECT_TRUE(transition.children.empty());
    EXPECT_TRUE(root.with("name", "B").all("transition").empty());
}

TEST_F(FCProcessDefinitionWriter, EveryKindOfNodeHasTransitions) {
    for (auto const& [kind, name] : kElements) {
        if (kind == 0 || kind == 56 || kind == 160)
            continue;
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const node = addTask(tree.get(), L"B", kind);
        connect(tree.get(), node, addTask(tree.get(), L"N"));
        makeFolder("B");
        EXPECT_EQ(written(tree.get()).with("name", "B").all("transition").size(), 1U) << kindName(kind);
    }
}

TEST_F(FCProcessDefinitionWriter, TransitionsKeepTheOrderOfTheList) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const fork = addTask(tree.get(), L"F", 156);
    CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
    CFCBPMTaskNode* const b = addTask(tree.get(), L"B");
    CFCBPMTaskNode* const c = addTask(tree.get(), L"C");
    connect(tree.get(), fork, c);
    connect(tree.get(), a, b);
    connect(tree.get(), fork, a);
    connect(tree.get(), fork, b);
    EXPECT_EQ(written(tree.get()).only("fork").values("to"), "C A B");
}

TEST_F(FCProcessDefinitionWriter, DeletedConnectorsAndThoseWithoutAnEndGiveNoTransition) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
    CFCBPMTaskNode* const b = addTask(tree.get(), L"B");
    CFCBPMTaskNode* const nameless = addTask(tree.get(), L"");
    CFCConnector* const deleted = connect(tree.get(), a, b);
    connect(tree.get(), a, nameless);
    connect(tree.get(), a, nullptr);
    connect(tree.get(), nullptr, b);
    EXPECT_EQ(written(tree.get()).with("name", "A").values("to"), "(absent) B");
    deleted->DeleteConnecter(true);
    EXPECT_EQ(written(tree.get()).with("name", "A").outline(), "task");
}

TEST_F(FCProcessDefinitionWriter, TheFlagOfTheNodeDoesNotDeleteAConnector) {
    Tree const tree = newWorkflow();
    CFCConnector* const connector = connect(tree.get(), addTask(tree.get(), L"A"), addTask(tree.get(), L"B"));
    static_cast<IFCNode*>(connector)->SetDeleted(true);
    EXPECT_EQ(written(tree.get()).with("name", "A").all("transition").size(), 1U);
}

TEST_F(FCProcessDefinitionWriter, TransitionsBelongToANameInOneContainer) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const first = addTask(tree.get(), L"A");
    addTask(tree.get(), L"A");            // a namesake
    addChild(tree.get(), 150, L"", L"A"); // and one by its caption
    addTask(tree.get(), L"a");
    CFCBPMTaskNode* const group = addTask(tree.get(), L"G", 161);
    addTask(group, L"A");
    connect(tree.get(), first, group);
    Element const root = written(tree.get());
    std::vector<std::string> counts;
    for (Element const& element : root.all("task-node"))
        counts.push_back(element["name"] + std::to_string(element.all("transition").size()));
    EXPECT_THAT(counts, testing::ElementsAre("A1", "A1", "A1", "a0"));
    EXPECT_TRUE(root.only("super-state").only("task-node").all("transition").empty()) << "another container";
}

TEST_F(FCProcessDefinitionWriter, ANodeWithoutParentOrConnectorsAroundItHasNoTransition) {
    Tree const alone(CFCNodeFactory().Create(150));
    alone->SetNodeId(L"A");
    EXPECT_EQ(written(alone.get()).outline(), "type task");
    Tree const folder(CFCNodeFactory().Create(71));
    IFCNode* const inFolder = addTask(folder.get(), L"B");
    EXPECT_EQ(folder->GetConnectorList(), nullptr);
    EXPECT_EQ(written(inFolder).outline(), "type task");
}

TEST_F(FCProcessDefinitionWriter, PropertiesWrittenAloneHaveTransitionsToo) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
    connect(tree.get(), a, addTask(tree.get(), L"B"));
    Element const element = filled([&](xercesc::DOMElement& own) { OpenWriter().WriteProperties(a, &own); });
    EXPECT_EQ(element.only("transition")["to"], "B");
}

struct RouteRow {
    char const* what;
    std::function<void(RoutedConnector&)> shape;
    char const* points;
};

std::vector<_TgPointLStr> pointsOf(std::initializer_list<std::pair<int, int>> list) {
    std::vector<_TgPointLStr> points;
    for (auto const& [x, y] : list)
        points.push_back({x, y});
    return points;
}

TEST_F(FCProcessDefinitionWriter, ARouteIsItsStartPointAndItsPointsWithoutRepetitions) {
    auto const ends = [](RoutedConnector& connector) {
        connector.hasStart = connector.hasEnd = true;
        connector.start = {10, 20};
        connector.end = {90, 80};
    };
    RouteRow const rows[] = {
        {"no ends, no route",
         [](RoutedConnector& c) {
             c.points = pointsOf({{1, 2}});
         },
         ""},
        {"a start alone",
         [](RoutedConnector& c) {
             c.hasStart = true;
             c.points = pointsOf({{1, 2}});
         },
         ""},
        {"an end alone",
         [](RoutedConnector& c) {
             c.hasEnd = true;
             c.points = pointsOf({{1, 2}});
         },
         ""},
        {"the end is not written", [&](RoutedConnector& c) { ends(c); }, "10,20"},
        {"points in order",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{30, 20}, {30, 40}});
         },
         "10,20 30,20 30,40"},
        {"two equal points are one",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{30, 20}, {30, 20}, {5, 5}});
         },
         "10,20 30,20 5,5"},
        {"equal to the start",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{10, 20}, {10, 21}, {11, 21}});
         },
         "10,20 10,21 11,21"},
        {"a return is a point",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{30, 20}, {10, 20}});
         },
         "10,20 30,20 10,20"},
        {"negative numbers",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{-30, -2}});
         },
         "10,20 -30,-2"},
        {"only as many as are counted",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{1, 1}, {2, 2}});
             c.count = 1;
         },
         "10,20 1,1"},
        {"a count without points",
         [&](RoutedConnector& c) {
             ends(c);
             c.hidePoints = true;
             c.count = 3;
         },
         "10,20"},
        {"a negative count",
         [&](RoutedConnector& c) {
             ends(c);
             c.points = pointsOf({{1, 1}});
             c.count = -5;
         },
         "10,20"},
    };
    for (RouteRow const& row : rows) {
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const a = addTask(tree.get(), L"A");
        row.shape(*connect<RoutedConnector>(tree.get(), a, addTask(tree.get(), L"B")));
        Element const transition = written(tree.get()).with("name", "A").only("transition");
        std::string points;
        for (Element const& point : transition.all("POINT"))
            points += (points.empty() ? "" : " ") + point["Location_X"] + "," + point["Location_Y"];
        EXPECT_EQ(points, row.points) << row.what;
        EXPECT_EQ(transition.all("POINT").size(), transition.children.size());
    }
}

TEST_F(FCProcessDefinitionWriter, APointIsTwoNumbers) {
    OpenWriter writer;
    _TgPointLStr point{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
    Element const root = filled([&](xercesc::DOMElement& element) {
        EXPECT_FALSE(writer.WritePoint(nullptr, &element));
        EXPECT_TRUE(writer.WritePoint(&point, &element));
        EXPECT_TRUE(writer.WritePoint(&point, nullptr));
    });
    EXPECT_EQ(root.only("POINT")["Location_X"], "-2147483648");
    EXPECT_EQ(root.only("POINT")["Location_Y"], "2147483647");
}

// --- Events, exceptions, timers ------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, ABareBlockWithAScriptRunsItWhenItsTaskStarts) {
    for (int const kind : {150, 153, 162, 163, 164, 165}) {
        Element const element = block(kind, [](CFCBPMTaskNode& node) { node.SetModulePath(L"A.B.scripts.B"); });
        Element const event = element.only("event");
        SCOPED_TRACE(kindName(kind));
        EXPECT_EQ(event["type"], "task-start");
        EXPECT_EQ(event.outline(), "action");
        Element const action = event.only("action");
        EXPECT_EQ(action["name"], "action");
        EXPECT_EQ(action["class"], "com.Mossgate.jBPM.Extensions.JythonHandler");
        EXPECT_EQ(action.outline(), "modulePath");
        EXPECT_EQ(action.only("modulePath").text, "A.B.scripts.B");
    }
}

TEST_F(FCProcessDefinitionWriter, OtherKindsHaveNoEventsExceptionsAndTimers) {
    for (int const kind : {154, 155, 156, 157, 161, 167, 168}) {
        Element const element = block(kind, [](CFCBPMTaskNode& node) {
            node.SetModulePath(L"M");
            node.CreateNewEventAction();
            node.SetExceptionClass(L"E");
            node.SetTimerName(L"Timer");
        });
        for (char const* name : {"event", "exception-handler", "timer"})
            EXPECT_TRUE(element.all(name).empty()) << kindName(kind) << ' ' << name;
    }
}

TEST_F(FCProcessDefinitionWriter, TheScriptEventNeedsAModuleAndNoOtherEvent) {
    EXPECT_TRUE(block(150).all("event").empty());
    auto const typed = block(150, [](CFCBPMTaskNode& node) {
        node.SetModulePath(L"M");
        node.SetEventType(L"task-start");
    });
    EXPECT_TRUE(typed.all("event").empty()) << "a type without records gives nothing";
    auto const recorded = block(150, [](CFCBPMTaskNode& node) {
        node.SetModulePath(L"M");
        node.CreateNewEventAction()->SetActionType(L"node-enter");
    });
    EXPECT_EQ(recorded.only("event")["type"], "node-enter");
    EXPECT_TRUE(recorded.only("event").children.empty());
}

TEST_F(FCProcessDefinitionWriter, EachRecordIsAnEventWithItsType) {
    struct Row {
        wchar_t const* type;
        bool callsFunction;
    };
    Row const rows[] = {{L"task-start", true},  {L"task-end", true},    {L"custom", true}, {L"decide", true},
                        {L"node-enter", false}, {L"Task-Start", false}, {L"", false}};
    for (Row const& row : rows) {
        SCOPED_TRACE(narrow(row.type));
        Element const element = block(150, [&row](CFCBPMTaskNode& node) {
            node.SetModulePath(L"M.B");
            CFCEventActionData* const record = node.CreateNewEventAction();
            record->SetActionType(row.type);
            record->SetActionName(L"run");
            record->SetClassName(L"a.Handler");
            record->SetActionFunction(L"start");
            record->SetActionExpression(L"not written");
            record->SetActionValue(L"not written");
        });
        Element const event = element.only("event");
        EXPECT_EQ(event["type"], narrow(row.type));
        Element const action = event.only("action");
        std::map<std::string, std::string> const expected = {{"name", "run"}, {"class", "a.Handler"}};
        EXPECT_EQ(action.attributes, expected);
        EXPECT_EQ(action.text, "");
        ASSERT_EQ(action.outline(), row.callsFunction ? "modulePath function" : "");
        if (row.callsFunction) {
            EXPECT_EQ(action.only("modulePath").text, "M.B");
            EXPECT_EQ(action.only("function").text, "start");
        }
    }
}

TEST_F(FCProcessDefinitionWriter, ModuleAndFunctionStandInATypedEventEvenWhenEmpty) {
    Element const element = block(150, [](CFCBPMTaskNode& node) {
        CFCEventActionData* const record = node.CreateNewEventAction();
        record->SetActionType(L"custom");
        record->SetActionName(L"run");
    });
    Element const action = element.only("event").only("action");
    EXPECT_EQ(action.outline(), "modulePath function");
    EXPECT_EQ(action["class"], "");
    EXPECT_EQ(action.only("function").text, "");
}

TEST_F(FCProcessDefinitionWriter, ANamelessRecordIsAnEventWithoutAction) {
    Element const element = block(150, [](CFCBPMTaskNode& node) {
        node.CreateNewEventAction()->SetActionType(L"task-end");
        node.CreateNewEventAction()->SetActionType(L"custom");
    });
    ASSERT_EQ(element.all("event").size(), 2U);
    EXPECT_EQ(element.all("event")[0]["type"], "task-end");
    EXPECT_EQ(element.all("event")[1]["type"], "custom");
    EXPECT_TRUE(element.all("event")[0].children.empty());
}

TEST_F(FCProcessDefinitionWriter, ARecordOfAnotherClassLeavesAnEmptyEvent) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"B");
    auto stranger = std::make_unique<BareNode>();
    node->GetEventList()->AddTail(stranger.get());
    CFCEventActionData* const record = node->CreateNewEventAction();
    record->SetActionType(L"custom");
    auto strangeScript = std::make_unique<BareNode>();
    node->GetScriptEventList()->AddTail(strangeScript.get());
    Element const element = written(tree.get()).only("task-node");
    ASSERT_EQ(element.all("event").size(), 2U);
    EXPECT_TRUE(element.all("event")[0].attributes.empty());
    EXPECT_TRUE(element.all("event")[0].children.empty());
    EXPECT_EQ(element.all("event")[1]["type"], "custom");
    node->GetEventList()->DeleteNode(stranger.release());
    node->GetScriptEventList()->DeleteNode(strangeScript.release());
}

CFCEventActionData* addScript(CFCBPMTaskNode& node, wchar_t const* name) {
    auto record = std::make_unique<CFCEventActionData>();
    record->SetActionName(name);
    node.GetScriptEventList()->AddTail(record.get());
    return record.release();
}

TEST_F(FCProcessDefinitionWriter, AScriptIsAnEventWithoutType) {
    Element const element = block(150, [](CFCBPMTaskNode& node) {
        node.SetModulePath(L"M");
        node.SetEventType(L"task-start");
        CFCEventActionData* const record = addScript(node, L"script");
        record->SetClassName(L"a.Script");
        record->SetActionType(L"task-start");
        record->SetActionExpression(L"x > 1");
        record->SetActionValue(L"if x < 1 & y:\n    go()");
        record->SetActionFunction(L"not written");
        addScript(node, L"");
    });
    ASSERT_EQ(element.all("event").size(), 2U);
    Element const event = element.all("event")[0];
    EXPECT_TRUE(event.attributes.empty());
    Element const script = event.only("script");
    std::map<std::string, std::string> const expected = {
        {"name", "script"}, {"class", "a.Script"}, {"expression", "x > 1"}};
    EXPECT_EQ(script.attributes, expected);
    EXPECT_EQ(script.text, "if x < 1 & y:\n    go()");
    EXPECT_TRUE(script.children.empty());
    EXPECT_TRUE(element.all("event")[1].attributes.empty());
    EXPECT_TRUE(element.all("event")[1].children.empty());
}

TEST_F(FCProcessDefinitionWriter, ScriptsStandBehindTheOtherEvents) {
    Element const element = block(150, [](CFCBPMTaskNode& node) {
        node.SetModulePath(L"M");
        addScript(node, L"script");
    });
    ASSERT_EQ(element.all("event").size(), 2U) << "the list of scripts does not count for the script event";
    EXPECT_EQ(element.all("event")[0]["type"], "task-start");
    EXPECT_EQ(element.all("event")[1].outline(), "script");
}

TEST_F(FCProcessDefinitionWriter, AnExceptionHandlerNeedsAClassOrARecord) {
    EXPECT_TRUE(block(150).all("exception-handler").empty());
    Element const byClass = block(150, [](CFCBPMTaskNode& node) { node.SetExceptionClass(L"a.Failure"); });
    EXPECT_EQ(byClass.only("exception-handler")["exception-class"], "a.Failure");
    EXPECT_TRUE(byClass.only("exception-handler").children.empty());
    Element const byAction = block(150, [](CFCBPMTaskNode& node) { node.CreateNewActionException(); });
    EXPECT_EQ(byAction.only("exception-handler")["exception-class"], "");
    EXPECT_EQ(byAction.only("exception-handler").outline(), "action");
    Element const byScript = block(150, [](CFCBPMTaskNode& node) { node.CreateNewScriptException(); });
    EXPECT_EQ(byScript.only("exception-handler")["exception-class"], "");
    EXPECT_EQ(byScript.only("exception-handler").outline(), "script");
}

TEST_F(FCProcessDefinitionWriter, ANamelessHandlerIsAnEmptyElement) {
    Element const handler = block(150, [](CFCBPMTaskNode& node) {
                                for (CFCExceptionActionData* const record :
                                     {node.CreateNewActionException(), node.CreateNewScriptException()}) {
                                    record->SetClassName(L"not written");
                                    record->SetActionExpression(L"not written");
                                    record->SetActionValue(L"not written");
                                }
                                node.CreateNewActionException()->SetActionName(L"a");
                            }).only("exception-handler");
    ASSERT_EQ(handler.outline(), "action action script");
    EXPECT_EQ(handler.values("name"), "(absent) a (absent)");
    for (std::size_t const index : {0U, 2U}) {
        EXPECT_TRUE(handler.children[index].attributes.empty());
        EXPECT_EQ(handler.children[index].text, "");
    }
}

TEST_F(FCProcessDefinitionWriter, HandlersAreAsManyOnTheWayBack) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"B");
    node->CreateNewActionException();
    node->CreateNewActionException()->SetActionName(L"a");
    node->CreateNewScriptException();
    EXPECT_TRUE(write(tree.get()));
    CFCNodeFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* read = nullptr;
    EXPECT_TRUE(reader.Parse(path("processdefinition.xml"), &read, 0));
    Tree const copy(read);
    ASSERT_EQ(childrenOf(copy.get()).size(), 1U);
    CFCBPMBlockData* const data = childrenOf(copy.get()).front()->GetBPMBlockData();
    EXPECT_EQ(data->GetActionExceptionList()->GetCount(), 2);
    EXPECT_EQ(data->GetScriptExceptionList()->GetCount(), 1);
}

TEST_F(FCProcessDefinitionWriter, AHandlerOfAnotherClassHasNoElement) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const node = addTask(tree.get(), L"B");
    auto stranger = std::make_unique<BareNode>();
    node->GetActionExceptionList()->AddTail(stranger.get());
    auto strangeScript = std::make_unique<BareNode>();
    node->GetScriptExceptionList()->AddTail(strangeScript.get());
    EXPECT_EQ(written(tree.get()).only("task-node").only("exception-handler").outline(), "");
    node->GetActionExceptionList()->DeleteNode(stranger.release());
    node->GetScriptExceptionList()->DeleteNode(strangeScript.release());
}

TEST_F(FCProcessDefinitionWriter, AnExceptionHandlerHasItsActionsAndThenItsScripts) {
    Element const handler = block(150, [](CFCBPMTaskNode& node) {
                                for (bool const isScript : {true, false}) {
                                    CFCExceptionActionData* const record =
                                        isScript ? node.CreateNewScriptException() : node.CreateNewActionException();
                                    record->SetActionName(isScript ? L"s" : L"a");
                                    record->SetClassName(L"a.Class");
                                    record->SetActionExpression(L"x");
                                    record->SetActionValue(L"text");
                                }
                            }).only("exception-handler");
    EXPECT_EQ(handler.outline(), "action script");
    EXPECT_EQ(handler.values("name"), "a s");
    for (Element const& record : handler.children) {
        EXPECT_EQ(record["class"], "a.Class");
        EXPECT_EQ(record["expression"], "x");
        EXPECT_EQ(record.text, "text");
        EXPECT_EQ(record.attributes.size(), 3U);
    }
}

TEST_F(FCProcessDefinitionWriter, ATimerNeedsANameOrARecord) {
    EXPECT_TRUE(block(150, [](CFCBPMTaskNode& node) { node.SetTimerTransition(L"B.C"); }).all("timer").empty());
    Element const named = block(150, [](CFCBPMTaskNode& node) {
                              node.SetTimerName(L"Timer");
                              node.SetTimerTransition(L"B.C");
                              node.SetTimerDueDate(dateOf(2024, 1, 1, 12, 0, 0));
                              node.SetTimerRepeat(3);
                          }).only("timer");
    std::map<std::string, std::string> const expected = {{"due-date", ""}, {"name", "Timer"}, {"transition", "B.C"}};
    EXPECT_EQ(named.attributes, expected) << "the date stays without value";
    Element const recorded = block(150, [](CFCBPMTaskNode& node) {
                                 CFCTimerActionData* const record = node.CreateNewTimerAction();
                                 record->SetActionName(L"t");
                                 record->SetClassName(L"a.Timer");
                                 record->SetActionExpression(L"x");
                                 record->SetActionValue(L"not written");
                                 node.CreateNewTimerAction();
                             }).only("timer");
    EXPECT_EQ(recorded["name"], "");
    EXPECT_EQ(recorded.outline(), "action");
    std::map<std::string, std::string> const action = {{"name", "t"}, {"class", "a.Timer"}, {"expression", "x"}};
    EXPECT_EQ(recorded.only("action").attributes, action);
    EXPECT_EQ(recorded.only("action").text, "");
}

// --- Bad input and size --------------------------------------------------------------------------------------

TEST_F(FCProcessDefinitionWriter, WhatAFileCannotHoldDoesNotCutItShort) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"A")->SetTaskCaption(L"one\x01two\xFFFF");
    addTask(tree.get(), L"B");
    Element const root = written(tree.get());
    EXPECT_EQ(root.with("name", "A")["label"], "onetwo");
    EXPECT_EQ(root.values("name"), "(absent) A B");
}

TEST_F(FCProcessDefinitionWriter, TextsBeyondAsciiComeThrough) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"Gr\u00fc\u00dfe")->SetTaskCaption(L"\u4e2d \U0001F600 <&\">");
    EXPECT_EQ(written(tree.get()).only("task-node")["label"], "\u4e2d \U0001F600 <&\">");
    EXPECT_EQ(read("processdefinition.xml").only("task-node")["name"], "Gr\u00fc\u00dfe");
}

TEST_F(FCProcessDefinitionWriter, GroupsNestAsDeepAsAFileMay) {
    Tree const tree = newWorkflow();
    IFCNode* node = tree.get();
    for (int depth = 0; depth < 3000; ++depth)
        node = addTask(node, L"G", 161);
    Element const root = written(tree.get());
    int depth = 0;
    for (Element const* group = root.first("super-state"); group != nullptr; group = group->first("super-state"))
        ++depth;
    EXPECT_EQ(depth, 1020) << "with the root, and three levels left for what is in a node";
}

TEST_F(FCProcessDefinitionWriter, SubProcessesNestAsDeepAsFilesMayBeOpen) {
    Tree const tree = newWorkflow();
    IFCNode* node = tree.get();
    std::filesystem::path folder;
    for (int depth = 0; depth < 300; ++depth) {
        node = addTask(node, L"S", 165);
        folder /= "S";
    }
    makeFolder(folder);
    EXPECT_TRUE(write(tree.get()));
    std::filesystem::path place = scratch.path();
    int folders = 0;
    while (std::filesystem::exists(place / "S/processdefinition.xml")) {
        place /= "S";
        ++folders;
    }
    EXPECT_EQ(folders, 256);
    EXPECT_EQ(readElement(place / "processdefinition.xml").only("task-node")["name"], "S");
}

TEST_F(FCProcessDefinitionWriter, GroupsAndSubProcessesTogetherNestOnlySoDeep) {
    Tree const tree = newWorkflow();
    IFCNode* node = tree.get();
    std::filesystem::path folder;
    for (int level = 0; level < 12; ++level) {
        for (int depth = 0; depth < 500; ++depth)
            node = addTask(node, L"", 161);
        node = addTask(node, L"S", 165);
        folder /= "S";
    }
    makeFolder(folder);
    EXPECT_TRUE(write(tree.get()));
    EXPECT_TRUE(std::filesystem::exists(scratch / "S/S/S/processdefinition.xml"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "S/S/S/S/S/processdefinition.xml"));
}

TEST_F(FCProcessDefinitionWriter, ARingOfChildrenIsLeftOut) {
    Tree const tree = newWorkflow();
    IFCNode* const group = addTask(tree.get(), L"G", 161);
    addTask(group, L"A");
    IFCNode* const b = addTask(group, L"B");
    OpenWriter writer;
    writer.m_bRecursive = true;
    IFCNode* const last = b->GetNext();
    last->SetNext(b);
    Element const element = filled([&](xercesc::DOMElement& own) { writer.WriteObject(group, nullptr, &own); });
    last->SetNext(nullptr);
    EXPECT_EQ(element.outline(), "task");
}

// A process that counts how often its connectors are asked for.
class CountingProcess : public CFCBPMProcessNode {
public:
    CFCConnectorList* GetConnectorList() override {
        ++asked;
        return CFCBPMProcessNode::GetConnectorList();
    }
    int asked = 0;
};

TEST_F(FCProcessDefinitionWriter, ConnectorsOfAContainerAreWalkedOnceForAFile) {
    auto process = std::make_unique<CountingProcess>();
    CountingProcess& counter = *process;
    process->SetNodeType(160);
    process->SetNodeCaption(L"Flow");
    Tree const tree(process.release());
    CFCBPMTaskNode* former = addTask(tree.get(), L"T0");
    for (int number = 1; number < 200; ++number) {
        TuString id;
        id.Format(L"T%d", number);
        CFCBPMTaskNode* const node = addTask(tree.get(), id);
        connect(tree.get(), former, node);
        former = node;
    }
    counter.asked = 0;
    Element const root = filled([&](xercesc::DOMElement& own) {
        OpenWriter writer;
        writer.m_bRecursive = true;
        writer.WriteObject(tree.get(), nullptr, &own);
    });
    EXPECT_GT(counter.asked, 100) << "outside a file nothing is kept";
    counter.asked = 0;
    Element const file = written(tree.get());
    EXPECT_LT(counter.asked, 5);
    EXPECT_EQ(file.all("task-node"), root.all("task-node"));
    EXPECT_EQ(file.with("name", "T7").only("transition")["to"], "T8");
}

// A writer of a host, which marks what it writes.
class MarkingWriter : public CFCProcessDefinitionWriter {
public:
    void WriteProperties(IFCNode* node, xercesc::DOMNode* element) override {
        CFCProcessDefinitionWriter::WriteProperties(node, element);
        flowmere::setConstant(element, u"mark", u"1");
    }
    bool GetObjectType(IFCNode* node, TuString& out) override {
        if (node != nullptr && node->GetNodeType() == 151) {
            out = L"task-node";
            return true;
        }
        return CFCProcessDefinitionWriter::GetObjectType(node, out);
    }
};

TEST_F(FCProcessDefinitionWriter, OverridesTakeEffectAtEveryLevel) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"G", 161), L"U", 151);
    MarkingWriter writer;
    EXPECT_TRUE(writer.WriteFile(path("processdefinition.xml"), tree.get(), true));
    Element const root = read("processdefinition.xml");
    EXPECT_EQ(root["mark"], "1");
    EXPECT_EQ(root.only("super-state").only("task-node")["mark"], "1");
}

} // namespace
