#include "flowmere/workflow/FCGPDWriter.h"

#include "persistence/DocumentTestSupport.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <climits>
#include <functional>
#include <map>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr char kSchemaInstance[] = "http://www.w3.org/2001/XMLSchema-instance";

// A writer as its subclasses see it.
class OpenWriter : public CFCGPDWriter {
public:
    using CFCGPDWriter::GetNodeTypeString;
    using CFCGPDWriter::m_bRecursive;
    using CFCGPDWriter::m_pRootNode;
    using CFCGPDWriter::m_strFilePath;
    using CFCGPDWriter::m_strRootName;
};

// A task of any kind, which may not be one that the factory knows.
class AnyTask : public CFCBPMTaskNode {
public:
    void TransferToData() override { ++transfers; }
    int transfers = 0;
};

// A node that is no block.
class PlainNode : public CFCNode {
public:
    void Create() override {}
    wchar_t const* GetNodeId() override { return L"A"; }
};

class FCGPDWriter : public ScratchTest {
protected:
    static Tree newWorkflow(wchar_t const* caption = L"Flow") {
        Tree tree(CFCNodeFactory().Create(160));
        tree->SetNodeCaption(caption);
        return tree;
    }
    static CFCBPMTaskNode* addTask(IFCNode* parent, wchar_t const* id, int kind = 150) {
        return dynamic_cast<CFCBPMTaskNode*>(addChild(parent, kind, id, id));
    }
    static CFCVariableData* addVariable(IFCNode* node, wchar_t const* name, int status, bool isVisible = true) {
        CFCVariableData* const variable = node->CreateNewVariable();
        variable->SetVariableName(name);
        variable->SetStatusType(status);
        variable->SetVisible(isVisible);
        return variable;
    }
    std::string textOf(IFCNode* root, bool recursive = true) {
        CFCGPDWriter writer;
        return textBy(writer, root, recursive);
    }
    template <typename Writer>
    std::string textBy(Writer& writer, IFCNode* root, bool recursive = true) {
        EXPECT_TRUE(writer.WriteFile(scratch.text("gpd.xml"), root, recursive));
        return scratch.read("gpd.xml");
    }
    // The file of a flow with one task.
    std::string taskFile(std::function<void(CFCBPMTaskNode&)> const& shape, int kind = 150) {
        Tree const tree = newWorkflow();
        shape(*addTask(tree.get(), L"A", kind));
        return textOf(tree.get());
    }
    // x, y, width and height of a line.
    static std::string boxIn(std::string const& line) {
        return attributeIn(line, "x") + " " + attributeIn(line, "y") + " " + attributeIn(line, "width") + " " +
               attributeIn(line, "height");
    }
    // "type x y width height" of the lines of a tag, with what `more` names behind.
    static std::vector<std::string> boxesOf(std::string const& file, std::string const& tag,
                                            std::string const& more = {}) {
        std::vector<std::string> boxes;
        for (std::string const& line : linesOf(file, tag)) {
            boxes.push_back(attributeIn(line, "type") + " " + boxIn(line));
            if (!more.empty())
                boxes.back() += " " + attributeIn(line, more);
        }
        return boxes;
    }
    // Names of the nodes in the order of the file.
    static std::vector<std::string> namesIn(std::string const& file, std::string const& tag = "node") {
        std::vector<std::string> names;
        for (std::string const& line : linesOf(file, tag))
            names.push_back(attributeIn(line, "name"));
        return names;
    }
};

TEST_F(FCGPDWriter, ElementOfEachKind) {
    std::map<int, std::string> const elements{
        {0, "UnKnown"},          {56, "root-container"}, {150, "node"}, {153, "node"}, {154, "node"},
        {155, "node"},           {156, "node"},          {157, "node"}, {162, "node"}, {160, "root-container"},
        {161, "node-container"}, {163, "node"},          {164, "node"}, {165, "node"}, {167, "node"},
    };
    for (int kind = -1; kind < 256; ++kind) {
        CFCBPMTaskNode task;
        task.SetNodeType(kind);
        TuString name = L"untouched";
        CFCGPDWriter writer;
        auto const row = elements.find(kind);
        EXPECT_EQ(row != elements.end(), writer.GetObjectType(&task, name)) << kind;
        EXPECT_EQ(row != elements.end() ? row->second : "untouched", narrow(name)) << kind;
    }
    TuString name = L"untouched";
    EXPECT_FALSE(CFCGPDWriter().GetObjectType(nullptr, name));
    EXPECT_EQ("untouched", narrow(name));
}

TEST_F(FCGPDWriter, KindsWithoutAnElementAreLeftOutWithWhatLiesBelow) {
    Tree const tree = newWorkflow();
    for (int const kind : {151, 152, 158, 159, 168}) {
        CFCBPMTaskNode* const task = addTask(tree.get(), L"gone", kind);
        addTask(task, L"below");
    }
    addBlock(tree.get(), L"native");
    addTask(tree.get(), L"kept");
    EXPECT_THAT(namesIn(textOf(tree.get())), ElementsAre("kept"));
}

TEST_F(FCGPDWriter, NodeOfKindZeroIsWrittenAsUnknown) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"A")->SetNodeType(0);
    EXPECT_EQ("A", attributeIn(lineOf(textOf(tree.get()), "UnKnown"), "name"));
}

TEST_F(FCGPDWriter, RootHasNamespaceNameAndIcon) {
    Tree const tree = newWorkflow(L"Orders & more");
    tree->SetNodeId(L"id");
    tree->GetBPMBlockData()->SetIconFilePath(L"icons\\flow.png");
    std::string const root = lineOf(textOf(tree.get()), "root-container");
    EXPECT_EQ(kSchemaInstance, attributeIn(root, "xmlns"));
    EXPECT_EQ("Orders &amp; more", attributeIn(root, "name"));
    EXPECT_EQ("icons\\flow.png", attributeIn(root, "Icon"));
}

TEST_F(FCGPDWriter, RootWithoutCaptionIsCalledRootContainer) {
    Tree const tree = newWorkflow(L"");
    tree->SetNodeId(L"id");
    EXPECT_EQ("root-container", attributeIn(lineOf(textOf(tree.get()), "root-container"), "name"));
}

TEST_F(FCGPDWriter, RootWithoutWorkflowDataHasAnEmptyIcon) {
    Tree const tree(CFCNodeFactory().Create(56));
    tree->SetNodeCaption(L"Native");
    addTask(tree.get(), L"A");
    std::string const file = textOf(tree.get());
    EXPECT_EQ("", attributeIn(lineOf(file, "root-container"), "Icon"));
    EXPECT_EQ("Native", attributeIn(lineOf(file, "root-container"), "name"));
    EXPECT_THAT(namesIn(file), ElementsAre("A"));
}

TEST_F(FCGPDWriter, RootHasNothingOfANode) {
    Tree const tree = newWorkflow();
    tree->SetTuRect(1, 2, 30, 40);
    addVariable(tree.get(), L"v", 0);
    EXPECT_EQ("0root-container ", outlineOf(textOf(tree.get())));
    EXPECT_EQ("(absent)", attributeIn(lineOf(textOf(tree.get()), "root-container"), "width"));
}

TEST_F(FCGPDWriter, AttributesOfANode) {
    std::string const line = lineOf(taskFile([](CFCBPMTaskNode& task) {
                                        task.SetNodeCaption(L"Caption");
                                        task.SetIconFilePath(L"icons\\a.png");
                                        task.SetTaskCaption(L"Label");
                                        task.SetTuRect(10, 20, 110, 70);
                                        task.SetImage(true);
                                        task.SetRelativeImagePath(L"images\\a\\b.png");
                                    }),
                                    "node");
    struct Row {
        char const* name;
        char const* value;
    };
    for (Row const& row : std::initializer_list<Row>{{"name", "A"},
                                                     {"Icon", "icons\\a.png"},
                                                     {"label", "Label"},
                                                     {"x", "10"},
                                                     {"y", "20"},
                                                     {"width", "100"},
                                                     {"height", "50"},
                                                     {"IsImage", "true"},
                                                     {"Image", "images/a/b.png"},
                                                     {"nodeType", "task"}})
        EXPECT_EQ(row.value, attributeIn(line, row.name)) << row.name;
}

TEST_F(FCGPDWriter, AttributesOfANewNodeAreThereThoughEmpty) {
    std::string const line = lineOf(taskFile([](CFCBPMTaskNode&) {}), "node");
    struct Row {
        char const* name;
        char const* value;
    };
    for (Row const& row : std::initializer_list<Row>{{"name", "A"},
                                                     {"Icon", ""},
                                                     {"label", ""},
                                                     {"x", "0"},
                                                     {"y", "0"},
                                                     {"width", "0"},
                                                     {"height", "0"},
                                                     {"IsImage", "false"},
                                                     {"Image", ""}})
        EXPECT_EQ(row.value, attributeIn(line, row.name)) << row.name;
}

TEST_F(FCGPDWriter, NodeTypeOfEachKind) {
    std::map<int, std::string> const names{
        {150, "task"},
        {153, "decisionTask"},
        {162, "iteratingLoopSubProcess"},
        {163, "decisionLoopSubProcess"},
        {164, "spawningSubProcess"},
        {165, "basicSubProcess"},
    };
    for (int const kind : {150, 153, 154, 155, 156, 157, 162, 163, 164, 165, 167}) {
        auto const row = names.find(kind);
        EXPECT_EQ(row != names.end() ? row->second : "(absent)",
                  attributeIn(lineOf(taskFile([](CFCBPMTaskNode&) {}, kind), "node"), "nodeType"))
            << kind;
    }
    EXPECT_EQ("(absent)", attributeIn(lineOf(taskFile([](CFCBPMTaskNode&) {}, 161), "node-container"), "nodeType"));

    OpenWriter writer;
    for (int kind = -1; kind < 256; ++kind) {
        CFCBPMTaskNode task;
        task.SetNodeType(kind);
        TuString name = L"former";
        writer.GetNodeTypeString(&task, name);
        auto const row = names.find(kind);
        EXPECT_EQ(row != names.end() ? row->second : "", narrow(name)) << kind;
    }
    TuString name = L"former";
    writer.GetNodeTypeString(nullptr, name);
    EXPECT_TRUE(name.IsEmpty());
}

TEST_F(FCGPDWriter, NodeWithoutIdHasItsEmptyNameAndNothingElse) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"")->SetTuRect(1, 2, 3, 4);
    std::string const file = textOf(tree.get());
    EXPECT_EQ("0root-container 1node ", outlineOf(file));
    EXPECT_EQ("<node name=\"\"/>", lineOf(file, "node"));
}

TEST_F(FCGPDWriter, SuperStateWithoutIdStillHoldsItsChildren) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"", 161), L"inside");
    std::string const file = textOf(tree.get());
    EXPECT_EQ("<node-container name=\"\">", lineOf(file, "node-container"));
    EXPECT_THAT(namesIn(file), ElementsAre("inside"));
}

TEST_F(FCGPDWriter, OrderOfChildren) {
    EXPECT_EQ("0root-container 1node 2BORDER 2FONT 2edge 3label 2Status 3State 3State 3State 2VARIABLES 3VARIABLE ",
              outlineOf(taskFile([](CFCBPMTaskNode& task) { addVariable(&task, L"v", 0); })));
}

TEST_F(FCGPDWriter, ChildrenOfAContainerComeBehindItsOwnElements) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"group", 161), L"inside");
    EXPECT_EQ("0root-container 1node-container 2BORDER 2FONT 2edge 3label 2Status 3State 3State 3State "
              "2node 3BORDER 3FONT 3edge 4label 3Status 4State 4State 4State ",
              outlineOf(textOf(tree.get())));
}

TEST_F(FCGPDWriter, BorderOfANode) {
    EXPECT_EQ("<BORDER ColorFill=\"4294967295\" ColorLine=\"255\" DrawBorder=\"1\" FillColor=\"0\" LinePenType=\"-3\" "
              "LineThickness=\"4\" Version=\"1\"/>",
              lineOf(taskFile([](CFCBPMTaskNode& task) {
                         task.SetLineThickness(4);
                         task.SetLinePenType(-3);
                         task.SetDrawBorder(true);
                         task.CFCShape::SetFillColor(false);
                         task.SetColorLine(0xFF);
                         task.SetColorFill(0xFFFFFFFF);
                         task.CFCShape::SetVisible(true); // not written
                     }),
                     "BORDER"));
    EXPECT_EQ("<BORDER ColorFill=\"16768966\" ColorLine=\"0\" DrawBorder=\"0\" FillColor=\"1\" LinePenType=\"0\" "
              "LineThickness=\"2\" Version=\"1\"/>",
              lineOf(taskFile([](CFCBPMTaskNode&) {}), "BORDER"));
}

TEST_F(FCGPDWriter, FontOfANode) {
    EXPECT_EQ("<FONT Bold=\"0\" FontColor=\"4278190335\" FontName=\"Sans\" FontSize=\"12\" Format=\"4294967295\" "
              "Italics=\"1\" Version=\"1\"/>",
              lineOf(taskFile([](CFCBPMTaskNode& task) {
                         task.SetBold(false);
                         task.SetItalics(true);
                         task.SetFontColor(0xFF0000FF);
                         task.SetFontName(L"Sans");
                         task.SetFontSize(12);
                         task.SetFormat(0xFFFFFFFF);
                         task.SetStrikeOut(true); // not written
                         task.SetUnderline(true);
                         task.SetFontVersion(7);
                     }),
                     "FONT"));
}

TEST_F(FCGPDWriter, EmptyFontNameBecomesArialInTheModelToo) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const task = addTask(tree.get(), L"A");
    EXPECT_EQ("Arial", attributeIn(lineOf(textOf(tree.get()), "FONT"), "FontName"));
    EXPECT_EQ("Arial", narrow(task->GetFontName()));
    EXPECT_TRUE(tree->GetFCBlockData()->FontName.IsEmpty()) << "the root has no font in the file";
}

TEST_F(FCGPDWriter, EdgeHoldsALabelAtTheOrigin) {
    std::string const file = taskFile([](CFCBPMTaskNode&) {});
    EXPECT_EQ("<edge>", lineOf(file, "edge"));
    EXPECT_EQ("<label x=\"0\" y=\"0\"/>", lineOf(file, "label"));
}

TEST_F(FCGPDWriter, StatusBoxes) {
    struct Row {
        TuRect rect;
        std::vector<std::string> boxes;
    };
    std::vector<Row> const rows{
        {{100, 100, 200, 150}, {"Wait 125 140 14 14", "Ready 143 140 14 14", "Done 160 140 14 14"}},
        // A new node: the width is 40, the start -20.
        {{0, 0, 0, 0}, {"Wait 7 0 4 4", "Ready -2 0 4 4", "Done 3 0 4 4"}},
        // Left of and above the origin: only the first box is turned to the positive side, and the fraction is cut off
        // toward zero.
        {{-200, -100, -100, -50}, {"Wait 174 60 14 14", "Ready -157 -60 14 14", "Done -139 -60 14 14"}},
        {{-1, -7, 10, 0}, {"Wait 4 1 5 5", "Ready 1 -1 5 5", "Done 8 -1 5 5"}},
        // Turned round: a size is never negative.
        {{100, 50, 0, 0}, {"Wait 60 10 6 6", "Ready 53 10 6 6", "Done 45 10 6 6"}},
    };
    for (Row const& row : rows) {
        TuRect const& r = row.rect;
        EXPECT_EQ(
            row.boxes,
            boxesOf(taskFile([&](CFCBPMTaskNode& task) { task.SetTuRect(r.left, r.top, r.right, r.bottom); }), "State"))
            << r.left << ' ' << r.top << ' ' << r.right << ' ' << r.bottom;
    }
}

TEST_F(FCGPDWriter, TenInputsShareTheHeight) {
    std::string const file = taskFile([](CFCBPMTaskNode& task) {
        task.SetTuRect(30, 200, 130, 300);
        for (int number = 0; number < 10; ++number)
            addVariable(&task, (L"v" + std::to_wstring(number)).c_str(), 0);
    });
    std::vector<std::string> const boxes = boxesOf(file, "VARIABLE", "Lable");
    ASSERT_THAT(boxes, SizeIs(10));
    for (int number = 0; number < 10; ++number)
        EXPECT_EQ("Input 30 " + std::to_string(200 + 10 * number) + " 20 10 v" + std::to_string(number),
                  boxes[static_cast<std::size_t>(number)]);
}

TEST_F(FCGPDWriter, InputsStandAtTheLeftEdgeAndOutputsAtTheRightAndBothAtBoth) {
    std::string const file = taskFile([](CFCBPMTaskNode& task) {
        task.SetTuRect(100, 100, 200, 150);
        addVariable(&task, L"in", 0);
        addVariable(&task, L"out", 1);
        addVariable(&task, L"both", 2);
        addVariable(&task, L"out2", 1);
    });
    EXPECT_THAT(boxesOf(file, "VARIABLE", "Lable"),
                ElementsAre("Input 100 100 20 25 in", "Input 100 125 20 25 both", "Output 180 100 20 16 out",
                            "Output 180 116 20 16 both", "Output 180 132 20 16 out2"));
    EXPECT_THAT(linesOf(file, "VARIABLES"), SizeIs(1));
}

TEST_F(FCGPDWriter, HeightOfVariableBoxesIsDividedAsAnInteger) {
    struct Row {
        int height;
        int count;
        std::string last;
    };
    for (Row const& row : {Row{50, 3, "Input 0 32 20 16"}, Row{2, 3, "Input 0 0 20 0"},
                           Row{-50, 3, "Input 0 -32 20 -16"}, Row{0, 1, "Input 0 0 20 0"}}) {
        std::string const file = taskFile([&](CFCBPMTaskNode& task) {
            task.SetTuRect(0, 0, 100, row.height);
            for (int number = 0; number < row.count; ++number)
                addVariable(&task, L"v", 0);
        });
        EXPECT_EQ(row.last, boxesOf(file, "VARIABLE").back()) << row.height;
    }
}

TEST_F(FCGPDWriter, HiddenAndNamelessVariablesCountForNothing) {
    std::string const file = taskFile([](CFCBPMTaskNode& task) {
        task.SetTuRect(0, 0, 100, 60);
        addVariable(&task, L"hidden", 0, false);
        addVariable(&task, L"", 0);
        addVariable(&task, L"shown", 0);
    });
    EXPECT_THAT(boxesOf(file, "VARIABLE", "Lable"), ElementsAre("Input 0 0 20 60 shown"));
}

TEST_F(FCGPDWriter, WithoutInputAndOutputThereAreNoVariables) {
    EXPECT_THAT(linesOf(taskFile([](CFCBPMTaskNode&) {}), "VARIABLES"), IsEmpty());
    EXPECT_THAT(linesOf(taskFile([](CFCBPMTaskNode& task) {
                            addVariable(&task, L"hidden", 0, false);
                            addVariable(&task, L"", 1);
                            addVariable(&task, L"other", 3);
                        }),
                        "VARIABLES"),
                IsEmpty());
}

TEST_F(FCGPDWriter, VariableOfAnUnknownStatusHasABoxOnEitherSideAndIsCountedOnNone) {
    std::string const file = taskFile([](CFCBPMTaskNode& task) {
        task.SetTuRect(0, 0, 100, 60);
        addVariable(&task, L"other", 3);
        addVariable(&task, L"in", 0);
    });
    // No output is counted: the height there is 0 and not divided.
    EXPECT_THAT(boxesOf(file, "VARIABLE", "Lable"),
                ElementsAre("Input 0 0 20 60 other", "Input 0 60 20 60 in", "Output 80 0 20 0 other"));
}

TEST_F(FCGPDWriter, ChildrenFollowByKindAndNotByTheFlag) {
    struct Row {
        int kind;
        bool hasInside;
    };
    for (bool const recursive : {false, true}) {
        for (Row const& row : {Row{161, true}, Row{160, true}, Row{56, true}, Row{150, false}, Row{153, false},
                               Row{154, false}, Row{155, false}, Row{156, false}, Row{157, false}, Row{162, false},
                               Row{163, false}, Row{164, false}, Row{165, false}, Row{167, false}}) {
            Tree const tree = newWorkflow();
            addTask(addChild(tree.get(), row.kind, L"outer", L"outer"), L"inside");
            EXPECT_EQ(row.hasInside, textOf(tree.get(), recursive).find("\"inside\"") != std::string::npos)
                << row.kind << recursive;
        }
    }
}

TEST_F(FCGPDWriter, ChildrenComeFromTheLastOfTheChainToTheFirst) {
    Tree const tree = newWorkflow();
    for (wchar_t const* id : {L"first", L"second", L"third"})
        addTask(tree.get(), id); // each in front of the former
    EXPECT_EQ("third", narrow(tree->GetChild()->GetNodeId()));
    EXPECT_THAT(namesIn(textOf(tree.get())), ElementsAre("first", "second", "third"));
}

TEST_F(FCGPDWriter, SubProcessAsRootHasTheRootsAttributesAndItsChildren) {
    for (int const kind : {162, 163, 164, 165}) {
        Tree const tree = newWorkflow();
        CFCBPMTaskNode* const inner = addTask(tree.get(), L"inner", kind);
        inner->SetNodeCaption(L"Inner");
        inner->SetTuRect(1, 2, 30, 40);
        addTask(addTask(inner, L"deeper", 165), L"hidden");
        addTask(inner, L"a");
        std::string const file = textOf(inner);
        EXPECT_EQ("Inner", attributeIn(lineOf(file, "root-container"), "name")) << kind;
        EXPECT_EQ("(absent)", attributeIn(lineOf(file, "root-container"), "width")) << kind;
        EXPECT_EQ("(absent)", attributeIn(lineOf(file, "root-container"), "nodeType")) << kind;
        EXPECT_THAT(namesIn(file), ElementsAre("deeper", "a")) << kind;
    }
}

TEST_F(FCGPDWriter, RootOfAKindWithoutChildrenInTheDrawing) {
    Tree const tree = newWorkflow();
    CFCBPMTaskNode* const task = addTask(tree.get(), L"A");
    addTask(task, L"inside");
    EXPECT_EQ("0root-container ", outlineOf(textOf(task)));
    // A root without an element of its own leaves the file's root bare.
    task->SetNodeType(151);
    EXPECT_EQ("(absent)", attributeIn(lineOf(textOf(task), "root-container"), "name"));
}

TEST_F(FCGPDWriter, ProcessInsideTheTreeIsARootContainerWithItsChildren) {
    for (int const kind : {56, 160}) {
        Tree const tree = newWorkflow();
        IFCNode* const inner = addChild(tree.get(), kind, L"id", L"Inner");
        addTask(inner, L"a");
        std::string const file = textOf(tree.get());
        EXPECT_EQ("0root-container 1root-container 2node 3BORDER 3FONT 3edge 4label 3Status 4State 4State 4State ",
                  outlineOf(file))
            << kind;
        EXPECT_EQ("<root-container Icon=\"\" name=\"Inner\">", linesOf(file, "root-container").at(1)) << kind;
    }
}

TEST_F(FCGPDWriter, DeletedNodesAreDrawn) {
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"A")->SetDeleted(true);
    EXPECT_THAT(namesIn(textOf(tree.get())), ElementsAre("A"));
}

TEST_F(FCGPDWriter, NodesAreBroughtUpToDateFirstButNotTheRoot) {
    auto const make = [](int kind, wchar_t const* id) {
        auto task = std::make_unique<AnyTask>();
        task->SetNodeType(kind);
        task->SetNodeId(id);
        return task.release();
    };
    AnyTask* const root = make(161, L"root");
    Tree const tree(root);
    AnyTask* const task = make(150, L"A");
    AnyTask* const nameless = make(150, L"");
    root->AppendChild(task, false);
    root->AppendChild(nameless, false);
    textOf(root);
    EXPECT_EQ(0, root->transfers);
    EXPECT_EQ(1, task->transfers);
    EXPECT_EQ(1, nameless->transfers);
}

TEST_F(FCGPDWriter, EmptyPathAndNullNodeGiveFalse) {
    CFCGPDWriter writer;
    Tree const tree = newWorkflow();
    EXPECT_FALSE(writer.WriteFile(L"", tree.get(), true));
    EXPECT_FALSE(writer.WriteFile(nullptr, tree.get(), true));
    EXPECT_FALSE(writer.WriteFile(scratch.text("gpd.xml"), nullptr, true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "gpd.xml"));
}

TEST_F(FCGPDWriter, FolderThatIsNotThereGivesTrueAndNoFile) {
    Tree const tree = newWorkflow();
    EXPECT_TRUE(CFCGPDWriter().WriteFile(scratch.text("missing/gpd.xml"), tree.get(), true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing"));
}

TEST_F(FCGPDWriter, WritesNoOtherFile) {
    Tree const tree = newWorkflow();
    addTask(addTask(tree.get(), L"sub", 165), L"inside");
    textOf(tree.get());
    std::filesystem::directory_iterator const files(scratch.path());
    EXPECT_EQ(1, std::distance(begin(files), end(files)));
}

TEST_F(FCGPDWriter, PathMayHaveBackslashes) {
    Tree const tree = newWorkflow();
    EXPECT_TRUE(CFCGPDWriter().WriteFile(wideWithBackslashes(scratch / "gpd.xml"), tree.get(), true));
    EXPECT_THAT(scratch.read("gpd.xml"), HasSubstr("root-container"));
}

TEST_F(FCGPDWriter, KeepsPathFlagAndRoot) {
    OpenWriter writer;
    EXPECT_EQ("root-container", narrow(writer.m_strRootName));
    Tree const tree = newWorkflow();
    textBy(writer, tree.get(), true);
    EXPECT_TRUE(writer.m_bRecursive);
    EXPECT_EQ(tree.get(), writer.m_pRootNode);
    EXPECT_EQ(narrow(scratch.text("gpd.xml")), narrow(writer.m_strFilePath));
    OpenWriter const copy(writer);
    EXPECT_EQ(tree.get(), copy.m_pRootNode);
    OpenWriter assigned;
    assigned = writer;
    EXPECT_TRUE(assigned.m_bRecursive);
    EXPECT_EQ(narrow(writer.m_strFilePath), narrow(assigned.m_strFilePath));
    EXPECT_EQ("root-container", narrow(assigned.m_strRootName));
    EXPECT_EQ(tree.get(), assigned.m_pRootNode);
}

TEST_F(FCGPDWriter, StepsOfADerivedWriterTakeEffectAtEveryLevel) {
    class Stamped : public CFCGPDWriter {
    public:
        void WriteProperties(IFCNode* node, xercesc::DOMNode* element) override {
            CFCGPDWriter::WriteProperties(node, element);
            SetSimpleAttribute(element, L"stamp", L"s");
        }
        bool GetObjectType(IFCNode* node, TuString& name) override {
            return node->GetNodeType() != 154 && CFCGPDWriter::GetObjectType(node, name);
        }
        void WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* own) override {
            ++objects;
            CFCGPDWriter::WriteObject(node, parent, own);
        }
        void WriteChildren(IFCNode* node, xercesc::DOMNode* element) override {
            ++walks;
            CFCGPDWriter::WriteChildren(node, element);
        }
        int objects = 0;
        int walks = 0;
    };
    Stamped writer;
    Tree const tree = newWorkflow();
    addTask(tree.get(), L"start", 154);
    addTask(addTask(tree.get(), L"group", 161), L"a");
    addTask(tree.get(), L"sub", 165);
    std::string const file = textBy(writer, tree.get());
    EXPECT_EQ("s", attributeIn(lineOf(file, "root-container"), "stamp"));
    EXPECT_EQ("s", attributeIn(lineOf(file, "node-container"), "stamp"));
    EXPECT_THAT(namesIn(file), ElementsAre("a", "sub"));
    EXPECT_GE(writer.objects, 5); // the two lists of the process are asked about, too
    EXPECT_EQ(3, writer.walks);   // process, super state and sub-process
}

TEST_F(FCGPDWriter, StepsTakeNullWithoutHarm) {
    OpenWriter writer;
    Tree const tree = newWorkflow();
    writer.WriteObject(nullptr, nullptr, nullptr);
    writer.WriteObject(tree.get(), nullptr, nullptr);
    writer.WriteChildren(nullptr, nullptr);
    writer.WriteProperties(nullptr, nullptr);
    writer.WriteProperties(tree.get(), nullptr);
    writer.WritePropertiesRoot(nullptr, nullptr);
    writer.WritePropertiesRoot(tree.get(), nullptr);
    CFCGPDWriter::LoadAndFormatXML(nullptr);
    CFCGPDWriter::LoadAndFormatXML(L"");
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST_F(FCGPDWriter, FormattedFileStandsBesideItsSource) {
    std::string const source = "<root-container name=\"r\"><node name=\"a\"/></root-container>";
    scratch.write("gpd.xml", source);
    CFCGPDWriter::LoadAndFormatXML(scratch.text("gpd.xml"));
    EXPECT_EQ(source, scratch.read("gpd.xml"));
    EXPECT_THAT(scratch.read("gpd.for"), HasSubstr("\n  <node name=\"a\"/>\n"));
    CFCGPDWriter::LoadAndFormatXML(scratch.text("other.xml"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "other.for"));
}

TEST_F(FCGPDWriter, RectanglesAtTheLimitsOfTheirNumbers) {
    std::string const file = taskFile([](CFCBPMTaskNode& task) {
        task.SetTuRect(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
        addVariable(&task, L"v", 2);
        addVariable(&task, L"w", 2);
    });
    EXPECT_EQ("-2147483648 -2147483648 4294967295 4294967295", boxIn(lineOf(file, "node")));
    EXPECT_THAT(boxesOf(file, "VARIABLE"),
                ElementsAre("Input -2147483648 -2147483648 20 2147483647", "Input -2147483648 -1 20 2147483647",
                            "Output 2147483627 -2147483648 20 2147483647", "Output 2147483627 -1 20 2147483647"));
}

TEST_F(FCGPDWriter, NodeWithoutRectangleStandsAtTheOrigin) {
    class Bare : public CFCBPMTaskNode {
    public:
        TuRect* GetTuRect() override { return nullptr; }
    };
    Tree const tree = newWorkflow();
    auto bare = std::make_unique<Bare>();
    bare->SetNodeType(150);
    bare->SetNodeId(L"A");
    tree->AppendChild(bare.release(), false);
    std::string const file = textOf(tree.get());
    EXPECT_EQ("0 0 0 0", boxIn(lineOf(file, "node")));
    EXPECT_THAT(boxesOf(file, "State"), ElementsAre("Wait 7 0 4 4", "Ready -2 0 4 4", "Done 3 0 4 4"));
}

TEST_F(FCGPDWriter, NodeWithoutAListOfVariablesHasNoBoxes) {
    class Bare : public CFCBPMTaskNode {
    public:
        CFCVariableList* GetVariableList() override { return nullptr; }
    };
    Tree const tree = newWorkflow();
    auto bare = std::make_unique<Bare>();
    bare->SetNodeType(150);
    bare->SetNodeId(L"A");
    tree->AppendChild(bare.release(), false);
    EXPECT_EQ("0root-container 1node 2BORDER 2FONT 2edge 3label ", outlineOf(textOf(tree.get())));
}

TEST_F(FCGPDWriter, NodeWithoutBlockDataHasNoBoxes) {
    Tree const tree = newWorkflow();
    auto plain = std::make_unique<PlainNode>();
    plain->SetNodeType(150);
    tree->AppendChild(plain.release(), false);
    std::string const file = textOf(tree.get());
    EXPECT_EQ("0root-container 1node 2BORDER 2FONT 2edge 3label ", outlineOf(file));
    EXPECT_EQ("<BORDER/>", lineOf(file, "BORDER"));
    EXPECT_EQ("<FONT/>", lineOf(file, "FONT"));
    std::string const line = lineOf(file, "node");
    EXPECT_EQ("", attributeIn(line, "Icon"));
    EXPECT_EQ("", attributeIn(line, "label"));
    EXPECT_EQ("(absent)", attributeIn(line, "IsImage"));
    EXPECT_EQ("(absent)", attributeIn(line, "Image"));
    EXPECT_EQ("task", attributeIn(line, "nodeType"));
}

TEST_F(FCGPDWriter, ChainOfSiblingsInARingEnds) {
    Tree const tree = newWorkflow();
    IFCNode* const last = addTask(tree.get(), L"a");
    IFCNode* const first = addTask(tree.get(), L"b");
    IFCNode* const behind = last->GetNext(); // the lists that a process brings along
    last->SetNext(first);
    EXPECT_THAT(namesIn(textOf(tree.get())), IsEmpty());
    last->SetNext(behind);
}

TEST_F(FCGPDWriter, ContainersTooDeepToBeReadAgainAreLeftOut) {
    Tree const tree = newWorkflow();
    IFCNode* inner = tree.get();
    for (int level = 0; level < 1500; ++level)
        inner = addTask(inner, L"g", 161);
    std::string const file = textOf(tree.get());
    EXPECT_THAT(linesOf(file, "node-container"), SizeIs(1021));
    CTXMLBaseReader reader;
    EXPECT_TRUE(reader.Initialize(scratch.text("gpd.xml")));
}

TEST_F(FCGPDWriter, CharactersThatNoFileCanHoldAreDropped) {
    std::string const file = taskFile([](CFCBPMTaskNode& task) { task.SetTaskCaption(L"a\x01 \"b\" <c>"); });
    EXPECT_THAT(lineOf(file, "node"), HasSubstr("label=\"a &quot;b&quot; &lt;c"));
    EXPECT_THAT(file, HasSubstr("</root-container>"));
}

} // namespace
