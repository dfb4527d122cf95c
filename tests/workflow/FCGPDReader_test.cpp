#include "flowmere/workflow/FCGPDReader.h"

#include "flowmere/workflow/FCGPDWriter.h"
#include "flowmere/xml/XmlPlatform.h"
#include "persistence/DocumentTestSupport.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <climits>
#include <functional>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Takes down what happens to the nodes of a test, in order.
std::vector<std::string> events;

class Recorded : public CFCBPMTaskNode {
public:
    void TransferToDraw() override { events.push_back("draw " + narrow(GetNodeId())); }
};

class RecordingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override { events.push_back("attach " + narrow(node->GetNodeId())); }
};

class OpenReader : public CFCGPDReader {
public:
    using CFCGPDReader::m_pContainer;
    using CFCGPDReader::m_pDocument;
};

class FCGPDReader : public ScratchTest {
protected:
    void SetUp() override {
        events.clear();
        tree.reset(CFCNodeFactory().Create(160));
        tree->SetNodeCaption(L"Flow");
        tree->SetNodeId(L"flow");
    }

    CFCBPMTaskNode* addTask(IFCNode* parent, wchar_t const* id, int kind = 150) {
        auto task = std::make_unique<Recorded>();
        task->SetNodeType(kind);
        task->SetNodeId(id);
        parent->AppendChild(task.get(), false);
        return task.release();
    }
    CFCBPMTaskNode* addTask(wchar_t const* id, int kind = 150) { return addTask(tree.get(), id, kind); }

    // Reads a file with that root element into the tree.
    bool parse(std::string_view text) {
        scratch.write("gpd.xml", text);
        return reader.Parse(scratch.text("gpd.xml"), tree.get(), 16);
    }
    bool parseInside(std::string_view inside) {
        return parse("<root-container name=\"Flow\">" + std::string(inside) + "</root-container>");
    }
    // The rectangle of a task that stood at 1 2 3 4, read from a node element with these attributes.
    std::string rectRead(std::string const& attributes) {
        CFCBPMTaskNode* const task = addTask(L"A");
        task->SetTuRect(1, 2, 3, 4);
        EXPECT_TRUE(parseInside("<node name=\"A\" " + attributes + "/>"));
        std::string const rect = rectOf(task);
        CFCNodeHelper::DestroyTree(task);
        return rect;
    }

    // What the last read passed over: "tag below id" of elements, "?name below id" of nodes.
    std::vector<std::string> findings() {
        std::vector<std::string> texts;
        for (CFCLayoutFinding const& finding : reader.GetLayoutFindings())
            texts.push_back((finding.kind == CFCLayoutFinding::NodeUnknown ? "?" : "") + narrow(finding.name) +
                            " below " + narrow(finding.node->GetNodeId()));
        return texts;
    }

    Tree tree;
    OpenReader reader;
};

TEST_F(FCGPDReader, NameOfTheRootReplacesTheCaption) {
    EXPECT_TRUE(parse("<root-container name=\"Orders\"/>"));
    EXPECT_EQ("Orders", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("flow", narrow(tree->GetNodeId()));
    EXPECT_TRUE(parse("<root-container name=\"\"/>"));
    EXPECT_EQ("", narrow(tree->GetNodeCaption()));
}

TEST_F(FCGPDReader, FlowWithoutCaptionComesBackAsRootContainer) {
    tree->SetNodeCaption(L"");
    EXPECT_TRUE(CFCGPDWriter().WriteFile(scratch.text("gpd.xml"), tree.get(), true));
    EXPECT_TRUE(reader.Parse(scratch.text("gpd.xml"), tree.get(), 16));
    EXPECT_EQ("root-container", narrow(tree->GetNodeCaption()));
}

TEST_F(FCGPDReader, IconOfTheRootReplacesTheOneThatIsThere) {
    tree->GetBPMBlockData()->SetIconFilePath(L"old.png");
    EXPECT_TRUE(parse("<root-container name=\"Flow\" Icon=\"new.png\"/>"));
    EXPECT_EQ("new.png", narrow(tree->GetBPMBlockData()->GetIconFilePath()));
    EXPECT_TRUE(parse("<root-container name=\"Flow\" Icon=\"\"/>"));
    EXPECT_EQ("", narrow(tree->GetBPMBlockData()->GetIconFilePath()));
}

TEST_F(FCGPDReader, RootWithoutAttributesLeavesTheNodeAlone) {
    tree->GetBPMBlockData()->SetIconFilePath(L"old.png");
    EXPECT_TRUE(parse("<root-container/>"));
    EXPECT_EQ("Flow", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("old.png", narrow(tree->GetBPMBlockData()->GetIconFilePath()));
}

TEST_F(FCGPDReader, AnyRootElementIsRead) {
    CFCBPMTaskNode* const task = addTask(L"A");
    EXPECT_TRUE(parse("<whatever name=\"W\"><node name=\"A\" x=\"1\" y=\"2\" width=\"3\" height=\"4\"/></whatever>"));
    EXPECT_EQ("W", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("1 2 4 6", rectOf(task));
}

TEST_F(FCGPDReader, NativeProcessIsReadAsFarAsItHasSuchData) {
    Tree const process(CFCNodeFactory().Create(56));
    IFCNode* const block = addBlock(process.get(), L"A");
    scratch.write("gpd.xml", "<root-container name=\"N\" Icon=\"i\"><node name=\"A\" Icon=\"i\" x=\"1\" y=\"1\" "
                             "width=\"1\" height=\"1\"/></root-container>");
    EXPECT_TRUE(reader.Parse(scratch.text("gpd.xml"), process.get(), 16));
    EXPECT_EQ("N", narrow(process->GetNodeCaption()));
    EXPECT_EQ("1 1 2 2", rectOf(block));
}

TEST_F(FCGPDReader, AttributesOfANode) {
    CFCBPMTaskNode* const task = addTask(L"A");
    task->SetNodeCaption(L"Caption");
    task->SetTaskCaption(L"Label");
    EXPECT_TRUE(parseInside("<node name=\"A\" Icon=\"icons\\a.png\" label=\"other\" x=\"10\" y=\"20\" width=\"100\" "
                            "height=\"50\" IsImage=\"true\" Image=\"images/a.png\" nodeType=\"decisionTask\"/>"));
    EXPECT_EQ("A", narrow(task->GetNodeId()));
    EXPECT_EQ("icons\\a.png", narrow(task->GetIconFilePath()));
    EXPECT_EQ("10 20 110 70", rectOf(task));
    EXPECT_TRUE(task->HasImage());
    EXPECT_EQ("images/a.png", narrow(task->GetRelativeImagePath()));
    // "label" and "nodeType" are the definition's business.
    EXPECT_EQ("Caption", narrow(task->GetNodeCaption()));
    EXPECT_EQ("Label", narrow(task->GetTaskCaption()));
    EXPECT_EQ(150, task->GetNodeType());
}

TEST_F(FCGPDReader, AbsentAttributesLeaveTheNodeAlone) {
    CFCBPMTaskNode* const task = addTask(L"A");
    task->SetIconFilePath(L"icon");
    task->SetImage(true);
    task->SetRelativeImagePath(L"image");
    task->SetTuRect(1, 2, 3, 4);
    EXPECT_TRUE(parseInside("<node name=\"A\"/>"));
    EXPECT_EQ("icon", narrow(task->GetIconFilePath()));
    EXPECT_TRUE(task->HasImage());
    EXPECT_EQ("image", narrow(task->GetRelativeImagePath()));
    EXPECT_EQ("1 2 3 4", rectOf(task));
}

TEST_F(FCGPDReader, EmptyImageKeepsTheOneThatIsThereAndEmptyIconDoesNot) {
    CFCBPMTaskNode* const task = addTask(L"A");
    task->SetIconFilePath(L"icon");
    task->SetRelativeImagePath(L"image");
    EXPECT_TRUE(parseInside("<node name=\"A\" Icon=\"\" Image=\"\"/>"));
    EXPECT_EQ("", narrow(task->GetIconFilePath()));
    EXPECT_EQ("image", narrow(task->GetRelativeImagePath()));
}

TEST_F(FCGPDReader, FormsOfTheImageFlag) {
    struct Row {
        char const* text;
        bool before;
        bool after;
    };
    CFCBPMTaskNode* const task = addTask(L"A");
    for (Row const& row :
         {Row{"true", false, true}, Row{"false", true, false}, Row{"1", false, true}, Row{"0", true, false},
          Row{"Yes", false, true}, Row{"No", true, false}, Row{"", true, true}, Row{"perhaps", false, false}}) {
        task->SetImage(row.before);
        EXPECT_TRUE(parseInside("<node name=\"A\" IsImage=\"" + std::string(row.text) + "\"/>"));
        EXPECT_EQ(row.after, task->HasImage()) << row.text;
    }
}

TEST_F(FCGPDReader, Rectangles) {
    struct Row {
        char const* attributes;
        char const* rect;
    };
    for (Row const& row : std::initializer_list<Row>{
             {R"(x="10" y="20" width="30" height="40")", "10 20 40 60"},
             {R"(x="-10" y="-20" width="30" height="40")", "-10 -20 20 20"},
             {R"(width="30" height="40")", "0 0 30 40"},
             {R"(x="10" width="30" height="40")", "10 0 40 40"},
             {R"(y="20" width="30" height="40")", "0 20 30 60"},
             {R"(x="10" y="20" width="1" height="1")", "10 20 11 21"},
             {R"(x="10" y="20" width="0" height="40")", "1 2 3 4"},
             {R"(x="10" y="20" width="30" height="0")", "1 2 3 4"},
             {R"(x="10" y="20" width="-30" height="40")", "1 2 3 4"},
             {R"(x="10" y="20" width="30" height="-40")", "1 2 3 4"},
             {R"(x="10" y="20" height="40")", "1 2 3 4"},
             {R"(x="10" y="20" width="30")", "1 2 3 4"},
             {R"(x="10" y="20")", "1 2 3 4"},
             {R"(x="" y="" width="" height="")", "1 2 3 4"},
             {R"(x="ten" y="20px" width="30.9" height=" 40 ")", "0 20 30 60"},
             {R"(x="1e3" y="0x10" width="5" height="5")", "1 0 6 5"},
             {R"(x="10" y="20" width="wide" height="40")", "1 2 3 4"},
         })
        EXPECT_EQ(row.rect, rectRead(row.attributes)) << row.attributes;
}

TEST_F(FCGPDReader, RectanglesBeyondTheLimitsComeAround) {
    struct Row {
        char const* attributes;
        char const* rect;
    };
    for (Row const& row : std::initializer_list<Row>{
             {R"(x="2147483647" y="1" width="1" height="1")", "2147483647 1 -2147483648 2"},
             {R"(x="2147483647" y="2147483647" width="2147483647" height="2147483647")", "2147483647 2147483647 -2 -2"},
             {R"(x="-2147483648" y="-2147483648" width="2147483647" height="1")",
              "-2147483648 -2147483648 -1 -2147483647"},
             {R"(x="99999999999999999999" y="-99999999999999999999" width="99999999999999999999" height="7")",
              "2147483647 -2147483648 -2 -2147483641"},
         })
        EXPECT_EQ(row.rect, rectRead(row.attributes)) << row.attributes;
}

TEST_F(FCGPDReader, Borders) {
    struct Row {
        char const* attributes;
        int thickness;
        int penType;
        bool visible;
        bool drawBorder;
        bool fillColor;
        unsigned int colorLine;
        unsigned int colorFill;
    };
    // Of a block with 9, 8, visible, drawn, not filled, and the colours 7 and 6.
    for (Row const& row : std::initializer_list<Row>{
             {R"(Version="1")", 9, 8, true, true, false, 7, 6},
             {R"(LineThickness="4" LinePenType="3" Visible="0" DrawBorder="0" FillColor="1" ColorLine="255"
                 ColorFill="4294967295" Version="1")",
              4, 3, false, false, true, 255, 0xFFFFFFFF},
             {R"(Visible="1" DrawBorder="1" FillColor="0" Version="2")", 9, 8, true, true, false, 7, 6},
             {R"(Version="-1")", 9, 8, true, true, false, 7, 6},
             // Of the old form: two switches and the fill have no say.
             {"", 9, 8, false, false, false, 7, 0xFFDFC6},
             {R"(Version="0")", 9, 8, false, false, false, 7, 0xFFDFC6},
             {R"(Version="new")", 9, 8, false, false, false, 7, 0xFFDFC6},
             {R"(LineThickness="4" LinePenType="3" Visible="1" DrawBorder="1" FillColor="1" ColorLine="5"
                 ColorFill="5")",
              4, 3, false, false, true, 5, 0xFFDFC6},
         }) {
        CFCBPMTaskNode* const task = addTask(L"A");
        task->SetLineThickness(9);
        task->SetLinePenType(8);
        task->CFCShape::SetVisible(true);
        task->SetDrawBorder(true);
        task->SetFillColor(false);
        task->SetColorLine(7);
        task->SetColorFill(6);
        EXPECT_FALSE(task->GetBorderSet());
        EXPECT_TRUE(parseInside("<node name=\"A\"><BORDER " + std::string(row.attributes) + "/></node>"));
        EXPECT_TRUE(task->GetBorderSet()) << row.attributes;
        EXPECT_FALSE(task->GetFontSet()) << row.attributes;
        EXPECT_EQ(row.thickness, task->GetLineThickness()) << row.attributes;
        EXPECT_EQ(row.penType, task->GetLinePenType()) << row.attributes;
        EXPECT_EQ(row.visible, task->CFCShape::GetVisible()) << row.attributes;
        EXPECT_EQ(row.drawBorder, task->GetDrawBorder()) << row.attributes;
        EXPECT_EQ(row.fillColor, task->GetFillColor()) << row.attributes;
        EXPECT_EQ(row.colorLine, task->GetColorLine()) << row.attributes;
        EXPECT_EQ(row.colorFill, task->GetColorFill()) << row.attributes;
        CFCNodeHelper::DestroyTree(task);
    }
}

TEST_F(FCGPDReader, Fonts) {
    struct Row {
        char const* attributes;
        bool bold;
        bool italics;
        bool strikeOut;
        bool underline;
        int size;
        unsigned int format;
        unsigned int color;
        char const* name;
        int version;
    };
    // Of a block with bold, italics, 9, 8, the colour 7 and "Own".
    for (Row const& row : std::initializer_list<Row>{
             {R"(Version="1")", true, true, false, false, 9, 8, 7, "Own", 1},
             {R"(Bold="0" Italics="0" StrikeOut="1" Underline="1" FontSize="12" Format="4294967295"
                 FontColor="4278190335" FontName="Sans" Version="2")",
              false, false, true, true, 12, 0xFFFFFFFF, 0xFF0000FF, "Sans", 2},
             {R"(FontName="" Version="1")", true, true, false, false, 9, 8, 7, "", 1},
             // Of the old form: the colour has no say.
             {"", true, true, false, false, 9, 8, 0, "Own", 0},
             {R"(FontColor="5" Version="0")", true, true, false, false, 9, 8, 0, "Own", 0},
             {R"(FontColor="5" FontSize="11")", true, true, false, false, 11, 8, 0, "Own", 0},
         }) {
        CFCBPMTaskNode* const task = addTask(L"A");
        task->SetBold(true);
        task->SetItalics(true);
        task->SetFontSize(9);
        task->SetFormat(8);
        task->SetFontColor(7);
        task->SetFontName(L"Own");
        EXPECT_TRUE(parseInside("<node name=\"A\"><FONT " + std::string(row.attributes) + "/></node>"));
        EXPECT_TRUE(task->GetFontSet()) << row.attributes;
        EXPECT_FALSE(task->GetBorderSet()) << row.attributes;
        EXPECT_EQ(row.bold, task->GetBold()) << row.attributes;
        EXPECT_EQ(row.italics, task->GetItalics()) << row.attributes;
        EXPECT_EQ(row.strikeOut, task->GetStrikeOut()) << row.attributes;
        EXPECT_EQ(row.underline, task->GetUnderline()) << row.attributes;
        EXPECT_EQ(row.size, task->GetFontSize()) << row.attributes;
        EXPECT_EQ(row.format, task->GetFormat()) << row.attributes;
        EXPECT_EQ(row.color, task->GetFontColor()) << row.attributes;
        EXPECT_EQ(row.name, narrow(task->GetFontName())) << row.attributes;
        EXPECT_EQ(row.version, task->GetFontVersion()) << row.attributes;
        CFCNodeHelper::DestroyTree(task);
    }
}

TEST_F(FCGPDReader, UnknownNamesAreSkippedWithWhatLiesBelow) {
    CFCBPMTaskNode* const inside = addTask(addTask(L"group", 161), L"inside");
    CFCBPMTaskNode* const outside = addTask(L"outside");
    EXPECT_TRUE(parseInside(R"(
        <node-container name="unknown">
          <node name="outside" x="1" y="1" width="1" height="1"/>
          <node name="inside" x="1" y="1" width="1" height="1"/>
          <BORDER Version="1"/><FONT Version="1"/>
        </node-container>
        <node name="inside" x="2" y="2" width="2" height="2"/>
        <node x="3" y="3" width="3" height="3"/>
        <node name="" x="3" y="3" width="3" height="3"/>
        <node name="outside" x="4" y="4" width="4" height="4"/>)"));
    EXPECT_EQ("0 0 0 0", rectOf(inside));
    EXPECT_EQ("4 4 8 8", rectOf(outside));
    EXPECT_FALSE(tree->GetFCBlockData()->BorderSet);
    EXPECT_FALSE(tree->GetFCBlockData()->FontSet);
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(FCGPDReader, NodesAreFoundWithoutRegardToCaseBelowTheirParentOnly) {
    CFCBPMTaskNode* const group = addTask(L"Group", 161);
    CFCBPMTaskNode* const inner = addTask(group, L"Same");
    CFCBPMTaskNode* const outer = addTask(L"Same");
    EXPECT_TRUE(parseInside(R"(
        <node-container name="GROUP" x="1" y="1" width="9" height="9">
          <node name="same" x="2" y="2" width="2" height="2"/>
        </node-container>
        <node name="SAME" x="3" y="3" width="3" height="3"/>)"));
    EXPECT_EQ("1 1 10 10", rectOf(group));
    EXPECT_EQ("2 2 4 4", rectOf(inner));
    EXPECT_EQ("3 3 6 6", rectOf(outer));
}

TEST_F(FCGPDReader, TheElementNameDoesNotDecideAndANodeMayHoldNodes) {
    CFCBPMTaskNode* const group = addTask(L"group", 161);
    CFCBPMTaskNode* const inner = addTask(group, L"inner");
    EXPECT_TRUE(parseInside(R"(<node name="group" x="1" y="1" width="1" height="1">
        <node-container name="inner" x="2" y="2" width="2" height="2"/></node>)"));
    EXPECT_EQ("1 1 2 2", rectOf(group));
    EXPECT_EQ("2 2 4 4", rectOf(inner));
}

TEST_F(FCGPDReader, TheFirstOfTwoNodesOfANameIsMeantAndALaterElementWins) {
    CFCBPMTaskNode* const second = addTask(L"A");
    CFCBPMTaskNode* const first = addTask(L"A"); // in front of the other
    EXPECT_TRUE(parseInside(R"(<node name="A" x="1" y="1" width="1" height="1"/>
                               <node name="A" x="2" y="2" width="2" height="2"/>)"));
    EXPECT_EQ("2 2 4 4", rectOf(first));
    EXPECT_EQ("0 0 0 0", rectOf(second));
}

TEST_F(FCGPDReader, OtherElementsArePassedOver) {
    CFCBPMTaskNode* const task = addTask(L"A");
    EXPECT_TRUE(parseInside(R"(<!-- note --><node name="A" x="1" y="2" width="3" height="4">text
        <edge><label x="50" y="60"/><node name="A" x="9" y="9" width="9" height="9"/></edge>
        <Status><State x="5" y="5" width="5" height="5" type="Wait"/><FONT Version="1"/></Status>
        <VARIABLES><VARIABLE x="6" y="6" width="6" height="6" type="Input" Lable="v"/></VARIABLES>
        <border Version="1"/><font Version="1"/>
      </node>
      <deployment><node name="A" x="9" y="9" width="9" height="9"/></deployment>
      <Node name="A" x="9" y="9" width="9" height="9"/>
      <UnKnown name="A" x="9" y="9" width="9" height="9"/>
      <root-container name="A" x="9" y="9" width="9" height="9"/>)"));
    EXPECT_EQ("1 2 4 6", rectOf(task));
    EXPECT_FALSE(task->GetBorderSet());
    EXPECT_FALSE(task->GetFontSet());
    EXPECT_EQ(nullptr, task->GetVariableList()->GetHeadPosition());
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(FCGPDReader, DrawingOfTheEnginesOwnEditorGivesTheRectanglesAndNothingMore) {
    CFCBPMTaskNode* const group = addTask(L"order handling", 161);
    CFCBPMTaskNode* const inner = addTask(group, L"pack");
    CFCBPMTaskNode* const end = addTask(L"done", 155);
    EXPECT_TRUE(parse(R"(<?xml version="1.0" encoding="UTF-8"?>

<root-container name="orders" width="842" height="584">
  <node-container name="order handling" x="36" y="120" width="217" height="145">
    <node name="pack" x="33" y="15" width="132" height="36">
      <edge>
        <label x="5" y="-10"/>
        <bendpoint w1="321" h1="0" w2="176" h2="-921"/>
      </edge>
      <edge/>
    </node>
    <edge>
      <label x="5" y="-10"/>
    </edge>
  </node-container>
  <node name="done" x="84" y="312" width="121" height="37"/>
  <deployment serverName="" serverPort="" serverDeployer="">
    <classesAndResources/>
  </deployment>
</root-container>
)"));
    EXPECT_EQ("orders", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("0 0 0 0", rectOf(tree.get()));
    EXPECT_EQ("36 120 253 265", rectOf(group));
    EXPECT_EQ("33 15 165 51", rectOf(inner));
    EXPECT_EQ("84 312 205 349", rectOf(end));
    EXPECT_THAT(events, IsEmpty());
    EXPECT_THAT(findings(), ElementsAre("label below pack", "bendpoint below pack", "label below order handling",
                                        "deployment below flow"));
}

TEST_F(FCGPDReader, NodesAreDrawnAndAttachedOnlyBehindAFont) {
    RecordingContainer container;
    reader.SetContainer(&container);
    addTask(addTask(L"group", 161), L"inside");
    addTask(L"plain");
    addTask(L"last");
    EXPECT_TRUE(parseInside(R"(
        <node-container name="group"><BORDER Version="1"/><FONT Version="1"/>
          <node name="inside"><FONT/></node>
        </node-container>
        <node name="plain" x="1" y="1" width="1" height="1"><BORDER Version="1"/></node>
        <node name="last"><FONT Version="1"/><FONT Version="1"/></node>)"));
    EXPECT_THAT(events, ElementsAre("draw group", "attach group", "draw inside", "attach inside", "draw last",
                                    "attach last", "draw last", "attach last"));
}

TEST_F(FCGPDReader, WithoutContainerNodesAreStillDrawn) {
    addTask(L"A");
    EXPECT_TRUE(parseInside("<node name=\"A\"><FONT Version=\"1\"/></node>"));
    EXPECT_THAT(events, ElementsAre("draw A"));
}

TEST_F(FCGPDReader, BorderAndFontBelowTheRootAreThoseOfTheRoot) {
    RecordingContainer container;
    reader.SetContainer(&container);
    EXPECT_TRUE(parseInside("<BORDER LineThickness=\"5\" Version=\"1\"/><FONT FontSize=\"20\" Version=\"1\"/>"));
    EXPECT_EQ(5, tree->GetFCBlockData()->LineThickness);
    EXPECT_EQ(20, tree->GetFCBlockData()->FontSize);
    EXPECT_THAT(events, ElementsAre("attach flow"));
}

TEST_F(FCGPDReader, BorderAndFontOfANodeWithoutBlockDataAreSkipped) {
    class Plain : public CFCNode {
    public:
        void Create() override {}
        wchar_t const* GetNodeId() override { return L"A"; }
        void SetTuRect(int, int, int, int) override { events.push_back("rect"); }
        void TransferToDraw() override { events.push_back("draw"); }
    };
    RecordingContainer container;
    reader.SetContainer(&container);
    auto plain = std::make_unique<Plain>();
    plain->SetNodeType(150);
    tree->AppendChild(plain.release(), false);
    EXPECT_TRUE(parseInside("<node name=\"A\" Icon=\"i\" x=\"1\" y=\"1\" width=\"1\" height=\"1\" IsImage=\"true\" "
                            "Image=\"i\"><BORDER Version=\"1\"/><FONT Version=\"1\"/></node>"));
    EXPECT_THAT(events, ElementsAre("rect"));
}

TEST_F(FCGPDReader, FindingsTellOfUnknownNodesAndElements) {
    addTask(addTask(L"group", 161), L"inside");
    EXPECT_TRUE(parseInside(R"(
        <node name="nobody"><node name="inside"/><bendpoint/></node>
        <node/>
        <node-container name="group"><border/><node name="gone"/>
          <edge><label x="0" y="0"/></edge><edge><label/></edge><edge><label x="1"/></edge><edge><label y="-1"/></edge>
          <Status><State/><other/></Status><VARIABLES><VARIABLE/></VARIABLES><BORDER/><FONT/>
        </node-container>)"));
    for (CFCLayoutFinding const& finding : reader.GetLayoutFindings()) {
        if (finding.kind == CFCLayoutFinding::NodeUnknown)
            EXPECT_THAT(narrow(finding.element), testing::StartsWith("node"));
        else
            EXPECT_EQ(finding.element, finding.name);
    }
    EXPECT_THAT(findings(), ElementsAre("?nobody below flow", "? below flow", "border below group", "?gone below group",
                                        "label below group", "label below group"));
    OpenReader const copy(reader);
    EXPECT_EQ(6U, copy.GetLayoutFindings().size());
    EXPECT_FALSE(reader.Parse(L"", tree.get(), 16));
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCGPDReader, OwnDrawingsLeaveNoFindings) {
    CFCBPMTaskNode* const task = addTask(addTask(L"group", 161), L"inside");
    CFCVariableData* const variable = task->CreateNewVariable();
    variable->SetVariableName(L"v");
    variable->SetVisible(true);
    EXPECT_TRUE(CFCGPDWriter().WriteFile(scratch.text("gpd.xml"), tree.get(), true));
    EXPECT_EQ(1U, linesOf(scratch.read("gpd.xml"), "VARIABLE").size());
    EXPECT_TRUE(reader.Parse(scratch.text("gpd.xml"), tree.get(), 16));
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(FCGPDReader, AttachForwardsToTheContainer) {
    RecordingContainer container;
    reader.Attach(tree.get());
    EXPECT_THAT(events, IsEmpty());
    reader.SetContainer(&container);
    reader.Attach(nullptr);
    EXPECT_THAT(events, IsEmpty());
    reader.Attach(tree.get());
    EXPECT_THAT(events, ElementsAre("attach flow"));
    reader.SetContainer(nullptr);
    reader.Attach(tree.get());
    EXPECT_THAT(events, ElementsAre("attach flow"));
}

TEST_F(FCGPDReader, EmptyPathNullNodeAndWhatIsNoXmlGiveFalse) {
    scratch.write("good.xml", "<root-container name=\"Good\"/>");
    scratch.write("broken.xml", "<root-container name=\"Broken\">");
    scratch.write("empty.xml", "");
    EXPECT_FALSE(reader.Parse(L"", tree.get(), 16));
    EXPECT_FALSE(reader.Parse(nullptr, tree.get(), 16));
    EXPECT_FALSE(reader.Parse(scratch.text("good.xml"), nullptr, 16));
    EXPECT_FALSE(reader.Parse(scratch.text("missing.xml"), tree.get(), 16));
    EXPECT_FALSE(reader.Parse(scratch.text("broken.xml"), tree.get(), 16));
    EXPECT_FALSE(reader.Parse(scratch.text("empty.xml"), tree.get(), 16));
    EXPECT_EQ("Flow", narrow(tree->GetNodeCaption()));
    EXPECT_TRUE(reader.Parse(scratch.text("good.xml"), tree.get(), 16));
    EXPECT_EQ("Good", narrow(tree->GetNodeCaption()));
}

TEST_F(FCGPDReader, FlagsAreIgnored) {
    CFCBPMTaskNode* const task = addTask(L"A");
    for (int const flags : {0, 1, 16, -1, INT_MAX}) {
        scratch.write("gpd.xml", "<root-container><node name=\"A\" x=\"" + std::to_string(flags & 7) +
                                     "\" width=\"1\" height=\"1\"/></root-container>");
        EXPECT_TRUE(reader.Parse(scratch.text("gpd.xml"), tree.get(), flags));
        EXPECT_EQ(flags & 7, task->GetTuRect()->left);
    }
}

TEST_F(FCGPDReader, PathMayPointIntoTheNode) {
    scratch.write("gpd.xml", "<root-container name=\"Orders\"/>");
    tree->SetNodeCaption(scratch.text("gpd.xml"));
    EXPECT_TRUE(reader.Parse(tree->GetNodeCaption(), tree.get(), 16));
    EXPECT_EQ("Orders", narrow(tree->GetNodeCaption()));
}

TEST_F(FCGPDReader, LoadOfNothingIsFalse) {
    EXPECT_TRUE(parseInside(""));
    EXPECT_FALSE(reader.Load(nullptr, tree.get()));
    EXPECT_FALSE(reader.Load(reader.m_pDocument->getDocumentElement(), nullptr));
    EXPECT_TRUE(reader.Load(reader.m_pDocument->getDocumentElement(), tree.get()));
}

TEST_F(FCGPDReader, LoadLeavesCaptionAndIconOfTheNodeAlone) {
    CFCBPMTaskNode* const task = addTask(L"A");
    EXPECT_TRUE(parse("<root-container name=\"Other\" Icon=\"i\"><node name=\"A\" width=\"1\" height=\"1\"/>"
                      "</root-container>"));
    tree->SetNodeCaption(L"Flow");
    tree->GetBPMBlockData()->SetIconFilePath(L"own");
    task->SetTuRect(5, 5, 5, 5);
    EXPECT_TRUE(reader.Load(reader.m_pDocument->getDocumentElement(), tree.get()));
    EXPECT_EQ("Flow", narrow(tree->GetNodeCaption()));
    EXPECT_EQ("own", narrow(tree->GetBPMBlockData()->GetIconFilePath()));
    EXPECT_EQ("0 0 1 1", rectOf(task));
}

TEST_F(FCGPDReader, DocumentDeeperThanAnyFileIsRead) {
    constexpr int kLevels = 3000;
    IFCNode* innermost = tree.get();
    for (int level = 0; level < kLevels; ++level)
        innermost = addTask(innermost, L"g", 161);
    flowmere::XmlPlatform const platform;
    XMLCh const kFeature[] = {'L', 'S', 0};
    auto* const implementation = xercesc::DOMImplementationRegistry::getDOMImplementation(kFeature);
    XMLCh const kName[] = {'n', 'o', 'd', 'e', 0};
    flowmere::XmlDocumentPointer const document(implementation->createDocument(nullptr, kName, nullptr));
    xercesc::DOMNode* element = document->getDocumentElement();
    for (int level = 0; level < kLevels; ++level) {
        element = CTXMLBaseWriter::CreateElement(element, L"node");
        CTXMLBaseWriter::SetSimpleAttribute(element, L"name", L"g");
    }
    for (wchar_t const* name : {L"x", L"y", L"width", L"height"})
        CTXMLBaseWriter::SetAttribute(element, name, 7);
    EXPECT_TRUE(reader.Load(document->getDocumentElement(), tree.get()));
    EXPECT_EQ("7 7 14 14", rectOf(innermost));
}

TEST_F(FCGPDReader, CopiesShareContainerAndDocument) {
    RecordingContainer container;
    reader.SetContainer(&container);
    EXPECT_TRUE(parseInside(""));
    OpenReader const copy(reader);
    OpenReader assigned;
    assigned = reader;
    EXPECT_EQ(&container, copy.m_pContainer);
    EXPECT_EQ(&container, assigned.m_pContainer);
    EXPECT_EQ(reader.m_pDocument, copy.m_pDocument);
    EXPECT_EQ(reader.m_pDocument, assigned.m_pDocument);
}

TEST_F(FCGPDReader, DrawingComesBackAsItWasWritten) {
    auto const build = [this](bool withLook) {
        Tree flow(CFCNodeFactory().Create(160));
        flow->SetNodeCaption(L"Flow");
        int number = 0;
        for (wchar_t const* id : {L"start", L"Work", L"\u00E4 \u20AC \U0001F600", L"a \"b\" <c>"}) {
            CFCBPMTaskNode* const task = addTask(flow.get(), id);
            ++number;
            if (!withLook)
                continue;
            task->SetTuRect(-5 * number, 10 * number, 100, 200 + number);
            task->SetIconFilePath(L"i");
            task->SetImage(number % 2 == 0);
            task->SetRelativeImagePath(L"a\\b");
            task->SetLineThickness(number);
            task->SetLinePenType(number + 1);
            task->SetDrawBorder(true);
            task->SetFillColor(false);
            task->SetColorLine(0x80000000U + static_cast<unsigned int>(number));
            task->SetColorFill(0xFFFFFFFFU);
            task->SetBold(false);
            task->SetItalics(true);
            task->SetFontColor(0x12345678U);
            task->SetFontName(L"Sans");
            task->SetFontSize(8 + number);
            task->SetFormat(0x25U);
        }
        return flow;
    };
    Tree const source = build(true);
    tree = build(false);
    EXPECT_TRUE(CFCGPDWriter().WriteFile(scratch.text("gpd.xml"), source.get(), true));
    EXPECT_TRUE(reader.Parse(scratch.text("gpd.xml"), tree.get(), 16));
    std::vector<IFCNode*> const expected = childrenOf(source.get());
    std::vector<IFCNode*> const read = childrenOf(tree.get());
    ASSERT_EQ(4U, read.size());
    for (std::size_t index = 0; index < read.size(); ++index) {
        EXPECT_EQ(rectOf(expected[index]), rectOf(read[index]));
        EXPECT_STREQ(L"i", read[index]->GetBPMBlockData()->GetIconFilePath());
        CFCBlockData& from = *expected[index]->GetFCBlockData();
        CFCBlockData& to = *read[index]->GetFCBlockData();
        EXPECT_EQ(from.HasImage(), to.HasImage());
        EXPECT_STREQ(L"a/b", to.GetRelativeImagePath());
        EXPECT_EQ(from.LineThickness, to.LineThickness);
        EXPECT_EQ(from.LinePenType, to.LinePenType);
        EXPECT_EQ(from.DrawBorder, to.DrawBorder);
        EXPECT_EQ(from.FillColor, to.FillColor);
        EXPECT_EQ(from.ColorLine, to.ColorLine);
        EXPECT_EQ(from.ColorFill, to.ColorFill);
        EXPECT_EQ(from.Bold, to.Bold);
        EXPECT_EQ(from.Italics, to.Italics);
        EXPECT_EQ(from.FontColor, to.FontColor);
        EXPECT_EQ(from.FontName, to.FontName);
        EXPECT_EQ(from.FontSize, to.FontSize);
        EXPECT_EQ(from.Format, to.Format);
        EXPECT_EQ(1, to.FontVersion);
    }
}

} // namespace
