#include "DocumentTestSupport.h"

#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCPointerConverter.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <cmath>
#include <limits>
#include <set>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

std::string nested(std::string const& tag, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "<" + tag + ">";
    for (int i = 0; i < count; ++i)
        text += "</" + tag + ">";
    return text;
}

CFCBlockData* blockIn(Tree const& tree) {
    return onlyChild(tree.get())->GetFCBlockData();
}

CFCBPMBlockData* taskIn(Tree const& tree) {
    return onlyChild(tree.get())->GetBPMBlockData();
}

CFCProcessNode* processOf(Tree const& tree) {
    return CFCPointerConverter::GetProcessNode(tree.get());
}

class FCReader : public DocumentTest {
protected:
    // The only variable of the root.
    CFCVariableData* variable(std::string const& attributes, std::string const& value = "") {
        tree =
            parseInside("<PROCESS_VARIABLES><VARIABLE " + attributes + ">" + value + "</VARIABLE></PROCESS_VARIABLES>");
        std::vector<CFCVariableData*> const variables = variablesOf(tree.get());
        return variables.size() == 1 ? variables.front() : nullptr;
    }
    CFCVariableData* templateVariable(std::string const& attributes, std::string const& inside = "") {
        tree = parseInside("<TEMPLATE_VARIABLES><TEMPLATE_VARIABLE " + attributes + ">" + inside +
                           "</TEMPLATE_VARIABLE></TEMPLATE_VARIABLES>");
        std::vector<CFCVariableData*> const variables = variablesOf(tree.get());
        return variables.size() == 1 ? variables.front() : nullptr;
    }
    // The only connector between the blocks A and B, whose dimensions are 1 by 1 inch.
    CFCConnector* connector(std::string const& attributes, std::string const& points = "") {
        tree = parseInside(kTwoBlocks + std::string("<CONNECTOR ") + attributes + ">" + points + "</CONNECTOR>");
        std::vector<CFCConnector*> const connectors = connectorsOf(tree.get());
        return connectors.size() == 1 ? connectors.front() : nullptr;
    }

    static constexpr char const* kTwoBlocks =
        "<BLOCK Name=\"A\"><DIMENSION Point_X=\"1.000\" Point_Y=\"10.000\" Width=\"1.000\" Hight=\"1.000\"/></BLOCK>"
        "<BLOCK Name=\"B\"><DIMENSION Point_X=\"4.000\" Point_Y=\"5.000\" Width=\"1.000\" Hight=\"1.000\"/></BLOCK>";
    Tree tree;
};

// --- The base of all readers ------------------------------------------------------------------------------------

class RecordingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override {
        nodes.push_back(node);
        names.push_back(node->GetNodeType() == 68 ? "connector" : narrow(node->GetNodeCaption()));
    }
    std::vector<IFCNode*> nodes;
    std::vector<std::string> names;
};

TEST_F(FCReader, CreateWithoutFactoryGivesNull) {
    EXPECT_EQ(OpenDocumentReader().Create(57), nullptr);
}

TEST_F(FCReader, CreateGoesThroughTheFactory) {
    OpenDocumentReader open;
    open.SetNodeFactory(&routingFactory);
    Tree const node(open.Create(68));
    EXPECT_NE(dynamic_cast<RoutedConnector*>(node.get()), nullptr);
}

TEST_F(FCReader, AttachWithoutContainerDoesNothing) {
    Tree const node(CFCNodeFactory().Create(57));
    OpenDocumentReader open;
    open.Attach(node.get());
    RecordingContainer container;
    open.SetContainer(&container);
    EXPECT_THAT(container.nodes, IsEmpty());
}

TEST_F(FCReader, AttachHandsTheNodeToTheContainerAndSkipsNull) {
    Tree const node(CFCNodeFactory().Create(57));
    RecordingContainer container;
    OpenDocumentReader open;
    open.SetContainer(&container);
    open.Attach(node.get());
    open.Attach(nullptr);
    EXPECT_THAT(container.nodes, ElementsAre(node.get()));
}

TEST_F(FCReader, CopiesShareFactoryContainerAndDocument) {
    RecordingContainer container;
    auto first = std::make_unique<OpenDocumentReader>();
    first->SetNodeFactory(factory);
    first->SetContainer(&container);
    scratch.write("a.bpt", "<A><BLOCK Name=\"x\"/></A>");
    ASSERT_TRUE(first->Initialize(scratch.text("a.bpt")));
    OpenDocumentReader second(*first);
    OpenDocumentReader third;
    third = *first;
    first.reset();
    Tree const made(second.Create(57));
    EXPECT_NE(made, nullptr);
    third.Attach(made.get());
    EXPECT_THAT(container.nodes, ElementsAre(made.get()));
    xercesc::DOMElement* block = nullptr;
    EXPECT_TRUE(third.GetElement(L"BLOCK", nullptr, &block, -1) || second.GetElement(L"A", nullptr, &block, -1));
}

// --- Opening ----------------------------------------------------------------------------------------------------

TEST_F(FCReader, RefusesWhatItCannotOpenAndLeavesTheResultAlone) {
    scratch.write("good.bpt", "<P/>");
    scratch.write("malformed.bpt", "<Process><BLOCK></Process>");
    scratch.write("truncated.bpt", "<Process><BLOCK Name=\"A");
    scratch.write("empty.bpt", "");
    scratch.write("text.bpt", "just words");
    scratch.write("zeros.bpt", std::string(64, '\0'));
    scratch.write("two-roots.bpt", "<A/><B/>");
    scratch.write("control.bpt", "<Process Name=\"a&#x1;b\"/>");
    scratch.write("latin.bpt", "<Process Name=\"\xE9\"/>");
    scratch.write("undeclared.bpt", "<Process Name=\"&nothing;\"/>");
    std::filesystem::create_directory(scratch / "folder");
    OpenDocumentReader open;
    open.SetNodeFactory(factory);
    Tree const marker(CFCNodeFactory().Create(57));
    IFCNode* out = marker.get();
    EXPECT_FALSE(open.Parse(L"", &out, 1));
    EXPECT_FALSE(open.Parse(nullptr, &out, 1));
    EXPECT_FALSE(open.Parse(scratch.text("good.bpt"), nullptr, 1));
    for (char const* const name :
         {"missing.bpt", "malformed.bpt", "truncated.bpt", "empty.bpt", "text.bpt", "zeros.bpt", "two-roots.bpt",
          "control.bpt", "latin.bpt", "undeclared.bpt", "folder"})
        EXPECT_FALSE(open.Parse(scratch.text(name), &out, 1)) << name;
    EXPECT_EQ(out, marker.get());
}

TEST_F(FCReader, WithoutFactoryNothingIsRead) {
    scratch.write("good.bpt", "<P/>");
    OpenDocumentReader open;
    IFCNode* out = nullptr;
    EXPECT_FALSE(open.Parse(scratch.text("good.bpt"), &out, 1));
    Tree const node(CFCNodeFactory().Create(57));
    EXPECT_FALSE(open.LoadFileNode(scratch.text("good.bpt"), node.get(), false));
    EXPECT_EQ(out, nullptr);
}

TEST_F(FCReader, FactoryThatMakesNothingFailsTheParse) {
    class EmptyFactory : public CFCNodeFactory {
    public:
        IFCNode* Create(int) override { return nullptr; }
    } empty;
    scratch.write("good.bpt", "<P/>");
    OpenDocumentReader open;
    open.SetNodeFactory(&empty);
    IFCNode* out = nullptr;
    EXPECT_FALSE(open.Parse(scratch.text("good.bpt"), &out, 1));
}

TEST_F(FCReader, ObjectsThatTheFactoryRefusesAreSkippedWithAllInside) {
    class NoBlocks : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override { return type == 57 || type == 68 ? nullptr : CFCNodeFactory::Create(type); }
    } noBlocks;
    factory = &noBlocks;
    tree = parseInside("<BLOCK Name=\"A\"><SUB_PROCESS Name=\"inner\"/></BLOCK><SUB_PROCESS Name=\"B\"/>"
                       "<CONNECTOR StartBlock=\"B\" EndBlock=\"B\" Version=\"1\"/>");
    EXPECT_EQ(captionsOf(tree.get()), "B");
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
}

TEST_F(FCReader, FileOfAnotherKindGivesAnEmptyProcess) {
    tree = parse("<html lang=\"en\"><body class=\"x\"><p>text</p></body></html>");
    ASSERT_NE(tree, nullptr);
    EXPECT_NE(processOf(tree), nullptr);
    EXPECT_THAT(childrenOf(tree.get()), IsEmpty());
}

TEST_F(FCReader, RootOfAnyNameIsRead) {
    for (char const* const root : {"Process", "PROCESS", "Processes", "Anything", "BLOCK"}) {
        tree = parse("<" + std::string(root) + " Name=\"R\"><BLOCK Name=\"A\"/></" + root + ">");
        ASSERT_NE(tree, nullptr) << root;
        EXPECT_EQ(tree->GetNodeType(), 56) << root;
        EXPECT_EQ(captionsOf(tree.get()), "A") << root;
    }
}

TEST_F(FCReader, ByteOrderMarksAndOtherEncodingsAreRead) {
    tree = parse("\xEF\xBB\xBF<Process Name=\"caf\xC3\xA9\"/>");
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "caf\xC3\xA9");
    tree = parse("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><Process Name=\"caf\xE9\"/>");
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "caf\xC3\xA9");
    tree = parse("<Process Name=\"\xF0\x9F\x99\x82\"/>");
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "\xF0\x9F\x99\x82");
}

TEST_F(FCReader, PathsWithBackslashesOpenToo) {
    scratch.write("sub/file.bpt", "<P Name=\"there\"/>");
    reader.SetNodeFactory(factory);
    IFCNode* node = nullptr;
    ASSERT_TRUE(reader.Parse(wideWithBackslashes(scratch / "sub/file.bpt"), &node, 1));
    tree.reset(node);
    EXPECT_EQ(narrow(node->GetNodeCaption()), "there");
}

// --- Bad input --------------------------------------------------------------------------------------------------

TEST_F(FCReader, NestingUpToTheLimitIsReadAndBeyondItTheFileIsUnreadable) {
    tree = parse(nested("BLOCK", 1024));
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(tree.get()), 1023 + 2);
    EXPECT_EQ(parse(nested("BLOCK", 1025)), nullptr);
    EXPECT_EQ(parse(nested("BLOCK", 200000)), nullptr);
    EXPECT_EQ(parse(nested("UNKNOWN", 200000)), nullptr);
}

TEST_F(FCReader, NestingOfEveryObjectElementUpToTheLimitIsRead) {
    for (char const* const tag : {"SUB_PROCESS", "PROCESS", "SUB_GRP", "CODE", "task-node", "process-definition"}) {
        tree = parse(nested(tag, 1024));
        ASSERT_NE(tree, nullptr) << tag;
        int depth = 0;
        for (IFCNode* node = onlyChild(tree.get()); node != nullptr; ++depth) {
            std::vector<IFCNode*> const children = childrenOf(node);
            node = children.empty() ? nullptr : children.front();
        }
        EXPECT_EQ(depth, 1023) << tag;
    }
}

TEST_F(FCReader, EntityBombIsUnreadable) {
    std::string text = "<!DOCTYPE P [<!ENTITY e0 \"lol\">";
    for (int i = 1; i < 10; ++i) {
        std::string const name = "e" + std::to_string(i);
        text += "<!ENTITY " + name + " \"";
        for (int k = 0; k < 10; ++k)
            text += "&e" + std::to_string(i - 1) + ";";
        text += "\">";
    }
    EXPECT_EQ(parse(text + "]><P><BLOCK Name=\"A\">&e9;</BLOCK></P>"), nullptr);
    EXPECT_EQ(parse(text + "]><P Name=\"&e9;\"/>"), nullptr);
}

TEST_F(FCReader, InternalEntitiesAreReplaced) {
    tree = parse("<!DOCTYPE P [<!ENTITY who \"World\">]><P Name=\"Hello &who;\"><CODE>x &who; y</CODE></P>");
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(narrow(tree->GetNodeCaption()), "Hello World");
    EXPECT_EQ(narrow(onlyChild(tree.get())->GetNodeCode()), "x World y");
}

TEST_F(FCReader, ExternalEntitiesAndDocumentTypesAreNotOpened) {
    scratch.write("secret.txt", "secret");
    scratch.write("types.dtd", "<!ATTLIST BLOCK Name CDATA \"fromOutside\">");
    std::string const secret = "file://" + (scratch / "secret.txt").string();
    tree = parse("<!DOCTYPE P [<!ENTITY e SYSTEM \"" + secret + "\">]><P Name=\"R\"><CODE>[&e;]</CODE></P>");
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(narrow(onlyChild(tree.get())->GetNodeCode()), "[]");
    tree = parse("<!DOCTYPE P SYSTEM \"types.dtd\"><P Name=\"R\"><BLOCK/></P>");
    ASSERT_NE(tree, nullptr);
    EXPECT_STREQ(onlyChild(tree.get())->GetNodeId(), L"");
    tree = parse("<!DOCTYPE P SYSTEM \"http://localhost:1/missing.dtd\"><P Name=\"R\"/>");
    EXPECT_NE(tree, nullptr);
}

TEST_F(FCReader, UnknownElementsAndAttributesAreSkippedWithAllInside) {
    tree = parseInside(
        "<!-- note --><?tool data?>text<NEW_THING a=\"1\"><BLOCK Name=\"hidden\"/></NEW_THING>"
        "<BLOCK Name=\"A\" Colour=\"red\" xsi:type=\"t\"><GLOW/><![CDATA[<BLOCK/>]]></BLOCK>"
        "<block Name=\"b\"/><Block Name=\"c\"/><BLOCKS Name=\"d\"/><IN_PORT/><OUT_PORT/><OPTION Value=\"1\"/>"
        "<DATATYPE/><GROUP/><PACKAGE/><FAVOURITES/><DOCUMENT/><HISTORY/><UnKnown/><TEMPLATE_VARIABLE Name=\"v\"/>");
    EXPECT_EQ(captionsOf(tree.get()), "A");
    EXPECT_THAT(variablesOf(tree.get()), IsEmpty());
}

TEST_F(FCReader, NumbersOutOfRangeEndAtTheLimits) {
    tree = parseInside(
        "<BLOCK Name=\"A\" ProcessID=\"99999999999999999999\">"
        "<BORDER LineThickness=\"99999999999\" LinePenType=\"-99999999999\" ColorLine=\"4294967295\" Version=\"1\"/>"
        "<FONT FontSize=\"twelve\" Format=\"4294967295\" Version=\"1\"/>"
        "<DIMENSION Point_X=\"1e300\" Point_Y=\"-1e300\" Width=\"1e300\" Hight=\"1e300\"/></BLOCK>");
    CFCBlockData* const block = blockIn(tree);
    EXPECT_EQ(onlyChild(tree.get())->GetNodeProcessID(), std::numeric_limits<unsigned int>::max());
    EXPECT_EQ(block->LineThickness, std::numeric_limits<int>::max());
    EXPECT_EQ(block->LinePenType, std::numeric_limits<int>::min());
    EXPECT_EQ(block->ColorLine, 4294967295U);
    EXPECT_EQ(block->FontSize, 0);
    EXPECT_EQ(block->Format, 4294967295U);
    EXPECT_EQ(rectOf(onlyChild(tree.get())), "2147483647 0 2147483647 2147483647");
    factory = &routingFactory;
    auto* const routed = dynamic_cast<RoutedConnector*>(connector(
        "StartBlock=\"A\" EndBlock=\"B\" Version=\"1\" StartHandle=\"99999999999\" EndHandle=\"x\"",
        "<POINT Location_X=\"1e300\" Location_Y=\"1e300\"/><POINT Location_X=\"-1e300\" Location_Y=\"-1e300\"/>"
        "<POINT Location_X=\"nan\" Location_Y=\"inf\"/>"));
    ASSERT_NE(routed, nullptr);
    EXPECT_EQ(routed->GetStartHandle(), std::numeric_limits<int>::max());
    EXPECT_EQ(routed->GetEndHandle(), 0);
    ASSERT_THAT(routed->points, SizeIs(3));
    EXPECT_EQ(routed->points[0].x, std::numeric_limits<int>::max());
    EXPECT_EQ(routed->points[0].y, 1300 - std::numeric_limits<int>::max());
    EXPECT_EQ(routed->points[1].x, std::numeric_limits<int>::min());
    EXPECT_EQ(routed->points[1].y, std::numeric_limits<int>::max());
}

// --- The root ---------------------------------------------------------------------------------------------------

TEST_F(FCReader, CaptionOfTheRoot) {
    struct Row {
        char const* text;
        char const* caption;
    };
    constexpr char const* kNone = "Block Library";
    Row const rows[] = {
        {"<X/>", kNone},
        {"<X></X>", kNone},
        {"<X xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"/>", kNone},
        {"<X>text<!-- note --></X>", kNone},
        {"<X Name=\"\"/>", kNone},
        {"<X Name=\"\" Type=\"BPT\"><BLOCK/></X>", kNone},
        {"<X Name=\"Mine\"/>", "Mine"},
        {"<X Type=\"BPT\"/>", "ProcessRoot"},
        {"<X unknown=\"\"/>", "ProcessRoot"},
        {"<X><BLOCK/></X>", "ProcessRoot"},
        {"<X><UNKNOWN/></X>", "ProcessRoot"},
        {"<X BlockString=\"Mine\"/>", "ProcessRoot"},
    };
    for (Row const& row : rows) {
        tree = parse(row.text);
        ASSERT_NE(tree, nullptr) << row.text;
        EXPECT_EQ(narrow(tree->GetNodeCaption()), row.caption) << row.text;
    }
}

TEST_F(FCReader, RootHasNoIdentifierAndFollowsNoFile) {
    scratch.write("other.bpt", "<P><BLOCK Name=\"fromOther\"/></P>");
    tree = parse("<Process Name=\"R\" FILE=\"" + (scratch / "other.bpt").string() + "\"/>", 5);
    EXPECT_STREQ(tree->GetNodeId(), L"");
    EXPECT_STREQ(tree->GetItemFilePath(), L"");
    EXPECT_THAT(childrenOf(tree.get()), IsEmpty());
}

TEST_F(FCReader, TaskRootIsAPlainProcessOfThatProjectType) {
    tree = parse("<Process Name=\"R\" Type=\"TASK\"/>");
    EXPECT_EQ(tree->GetNodeType(), 56);
    EXPECT_EQ(tree->GetBPMBlockData(), nullptr);
    EXPECT_EQ(tree->GetProjectType(), EProjectType_TASK);
}

TEST_F(FCReader, PropertiesOfTheRoot) {
    tree = parse(
        "<P Name=\"R\" ProjectDirectory=\"C:\\work\" SaveRestore=\"Keep\" ScriptType=\"TCMD\" Type=\"Report\""
        " ProcessID=\"4000000000\" ProcessFlowType=\"Loop\" RandomExecute=\"TRUE\" RunOnLoad=\"True\""
        " ModelDependency=\"true\" Diagram=\"tRUE\" VariableSave=\"true\" ScriptCmdInterface=\"i\" ScriptCMD=\"c\""
        " ScriptExecute=\"e\" DisplayBlock=\"x\" ExecutingStatus=\"x\" TemplateFile=\"t.bpt\" ExecutionMode=\"3\""
        " DisplayStatus=\"x\"/>");
    CFCProcessNode* const process = processOf(tree);
    EXPECT_STREQ(process->getProjectDirectory(), L"C:\\work");
    EXPECT_STREQ(process->getSaveRestoreScript(), L"Keep");
    EXPECT_EQ(process->getSaveRestoreScriptType(), EScriptType_TCMD);
    EXPECT_EQ(process->GetProjectType(), EProjectType_Report);
    EXPECT_EQ(process->GetNodeProcessID(), 4000000000U);
    EXPECT_STREQ(process->getProcessFlowType(), L"Loop");
    EXPECT_TRUE(process->getRandomExecutionStatus());
    EXPECT_TRUE(process->getRunOnLoadStatus());
    EXPECT_TRUE(process->getModelDependency());
    EXPECT_TRUE(process->hasDiagram());
    EXPECT_TRUE(process->IsVariablesSerializableToTNB());
    EXPECT_STREQ(process->GetCOMInteface(), L"i");
    EXPECT_STREQ(process->GetCOMCommand(), L"c");
    EXPECT_STREQ(process->GetExecuteMethod(), L"e");
    EXPECT_EQ(process->getExecutionMode(), CFCProcessNode::ExecutionContinue);
}

TEST_F(FCReader, DefaultsOfTheRoot) {
    tree = parse("<P/>");
    CFCProcessNode* const process = processOf(tree);
    EXPECT_STREQ(process->getProjectDirectory(), L"");
    EXPECT_STREQ(process->getSaveRestoreScript(), L"");
    EXPECT_EQ(process->getSaveRestoreScriptType(), EScriptType_PYTHON);
    EXPECT_EQ(process->GetProjectType(), EProjectType_BPT);
    EXPECT_EQ(process->GetNodeProcessID(), 0U);
    EXPECT_STREQ(process->getProcessFlowType(), L"");
    EXPECT_FALSE(process->getRandomExecutionStatus());
    EXPECT_FALSE(process->getRunOnLoadStatus());
    EXPECT_FALSE(process->getModelDependency());
    EXPECT_FALSE(process->hasDiagram());
    EXPECT_FALSE(process->IsVariablesSerializableToTNB());
    EXPECT_TRUE(process->GetShouldRun());
}

TEST_F(FCReader, ScriptTypeAndProjectTypeOfTheRootByName) {
    struct Row {
        char const* attributes;
        int scriptType;
        int projectType;
    };
    Row const rows[] = {
        {"", 0, 0},
        {"ScriptType=\"PYTHON\" Type=\"BPT\"", 0, 0},
        {"ScriptType=\"PYTHON_CMD\" Type=\"TASK\"", 1, 1},
        {"ScriptType=\"TCMD\" Type=\"MSP\"", 2, 2},
        {"ScriptType=\"TCMD_V2\" Type=\"Report\"", 3, 3},
        {"ScriptType=\"JAVA\" Type=\"Execute\"", 4, 4},
        {"Type=\"Debug\"", 0, 5},
        {"Type=\"APPLICATION\"", 0, 6},
        {"Type=\"PROCESSLST\"", 0, 7},
        {"ScriptType=\"python\" Type=\"report\"", 1, 0},
        {"ScriptType=\"\" Type=\"\"", 1, 0},
        {"ScriptType=\"RUBY\" Type=\"None\"", 1, 0},
    };
    for (Row const& row : rows) {
        tree = parse("<P " + std::string(row.attributes) + "/>");
        EXPECT_EQ(processOf(tree)->getSaveRestoreScriptType(), row.scriptType) << row.attributes;
        EXPECT_EQ(processOf(tree)->GetProjectType(), row.projectType) << row.attributes;
    }
}

TEST_F(FCReader, SwitchesOfTheRootAreOnlyEverTurnedOn) {
    class Eager : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override {
            IFCNode* const node = CFCNodeFactory::Create(type);
            if (CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(node)) {
                process->setRandomExecutionStatus(true);
                process->setRunOnLoadStatus(true);
                process->setModelDependency(true);
                process->showDiagram(true);
                process->SerializeVariablesToTNB(true);
            }
            return node;
        }
    } eager;
    factory = &eager;
    for (char const* const word : {"false", "0", "1", "yes", "", " true"}) {
        std::string const value = word;
        tree = parse("<P RandomExecute=\"" + value + "\" RunOnLoad=\"" + value + "\" ModelDependency=\"" + value +
                     "\" Diagram=\"" + value + "\" VariableSave=\"" + value + "\"/>");
        CFCProcessNode* const process = processOf(tree);
        EXPECT_TRUE(process->getRandomExecutionStatus() && process->getRunOnLoadStatus() &&
                    process->getModelDependency() && process->hasDiagram() && process->IsVariablesSerializableToTNB())
            << word;
        factory = &plainFactory;
        tree = parse("<P RandomExecute=\"" + value + "\" RunOnLoad=\"" + value + "\" ModelDependency=\"" + value +
                     "\" Diagram=\"" + value + "\" VariableSave=\"" + value + "\"/>");
        CFCProcessNode* const plain = processOf(tree);
        EXPECT_FALSE(plain->getRandomExecutionStatus() || plain->getRunOnLoadStatus() || plain->getModelDependency() ||
                     plain->hasDiagram() || plain->IsVariablesSerializableToTNB())
            << word;
        factory = &eager;
    }
}

TEST_F(FCReader, DimensionOfTheRootRetypesIt) {
    tree = parse(
        "<Process Name=\"one\"><DIMENSION Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\" Shape=\"Decision\"/>"
        "<FLAGS Break=\"true\" Reference=\"0\"/></Process>");
    EXPECT_EQ(tree->GetNodeType(), 58);
    EXPECT_NE(processOf(tree), nullptr);
    EXPECT_EQ(rectOf(tree.get()), "100 700 400 1100");
    EXPECT_TRUE(tree->GetFCBlockData()->GetStopFlag());
}

TEST_F(FCReader, EveryProcessReadHasItsTwoExtraChildren) {
    tree = parseInside("<BLOCK Name=\"A\"/>");
    auto* const process = processOf(tree);
    EXPECT_NE(process->GetFavouriteNode(), nullptr);
    EXPECT_NE(process->GetHistoryNode(), nullptr);
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(process), 3);
    EXPECT_EQ(process->GetChild()->GetNodeType(), 57);
}

// --- Object elements --------------------------------------------------------------------------------------------

TEST_F(FCReader, ElementsMakeNodesOfTheirTypeAndClass) {
    struct Row {
        char const* element;
        int type;
        bool (*isClass)(IFCNode*);
    };
    auto const isBlock = [](IFCNode* node) {
        return dynamic_cast<CFCBlockNode*>(node) != nullptr && dynamic_cast<CFCSubProcessNode*>(node) == nullptr &&
               node->GetBPMBlockData() == nullptr;
    };
    auto const isTask = [](IFCNode* node) {
        return dynamic_cast<CFCBPMTaskNode*>(node) != nullptr;
    };
    auto const isProcess = [](IFCNode* node) {
        return dynamic_cast<CFCProcessNode*>(node) != nullptr && node->GetBPMBlockData() == nullptr;
    };
    auto const isWorkflow = [](IFCNode* node) {
        return dynamic_cast<CFCBPMProcessNode*>(node) != nullptr;
    };
    auto const isSubProcess = [](IFCNode* node) {
        return dynamic_cast<CFCSubProcessNode*>(node) != nullptr && dynamic_cast<CFCProcessNode*>(node) == nullptr;
    };
    auto const isFolder = [](IFCNode* node) {
        return dynamic_cast<CFCSubGroupNode*>(node) != nullptr;
    };
    auto const isCode = [](IFCNode* node) {
        return dynamic_cast<CFCCodeNode*>(node) != nullptr;
    };
    Row const rows[] = {
        {"BLOCK", 57, isBlock},
        {"TERMINATOR", 55, isBlock},
        {"DECISION", 58, isBlock},
        {"task-node", 150, isTask},
        {"BPM_USER_TASK", 151, isTask},
        {"BPM_EXECUTION_TASK", 152, isTask},
        {"decision", 153, isTask},
        {"start-state", 154, isTask},
        {"end-state", 155, isTask},
        {"fork", 156, isTask},
        {"join", 157, isTask},
        {"BPM_MAIL", 158, isTask},
        {"BPM_ESB", 159, isTask},
        {"process-definition", 160, isWorkflow},
        {"super-state", 161, isTask},
        {"SUB_PROCESS", 61, isSubProcess},
        {"PROCESS", 56, isProcess},
        {"PROCESS Type=\"TASK\"", 160, isWorkflow},
        {"PROCESS Type=\"task\"", 160, isWorkflow},
        {"PROCESS Type=\"tAsK\"", 160, isWorkflow},
        {"PROCESS Type=\"TASKS\"", 56, isProcess},
        {"SUB_GRP", 71, isFolder},
        {"CODE", 79, isCode},
    };
    for (Row const& row : rows) {
        tree = parseInside("<" + std::string(row.element) + " Name=\"N\"/>");
        ASSERT_THAT(childrenOf(tree.get()), SizeIs(1)) << row.element;
        IFCNode* const node = onlyChild(tree.get());
        EXPECT_EQ(node->GetNodeType(), row.type) << row.element;
        EXPECT_TRUE(row.isClass(node)) << row.element;
        EXPECT_EQ(node->GetParentNode(), tree.get()) << row.element;
        EXPECT_EQ(narrow(node->GetNodeCaption()), "N") << row.element;
    }
}

TEST_F(FCReader, ApplicationElementMakesAnApplication) {
    tree = parseInside("<ClientApplication Name=\"N\" FailedReason=\"why\"><BPM Description=\"d\"/>"
                       "<APPLICATION Name=\"solver\" Deployment=\"p\" Executable=\"e\"/></ClientApplication>");
    auto* const node = dynamic_cast<CFCApplicationNode*>(onlyChild(tree.get()));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->GetNodeType(), 167);
    EXPECT_STREQ(node->GetNodeId(), L"N");
    EXPECT_STREQ(node->GetFailedReason(), L"why");
    // The texts of the document are those of the record; the application's own answers come from its lists.
    EXPECT_STREQ(taskIn(tree)->GetTaskDescription(), L"d");
    EXPECT_STREQ(taskIn(tree)->GetApplication(), L"solver");
    EXPECT_STREQ(taskIn(tree)->GetDeployment(), L"p");
    EXPECT_STREQ(taskIn(tree)->GetExecutable(), L"e");
    EXPECT_STREQ(node->GetExecutable(), L"");
    EXPECT_EQ(node->GetDeployment(L"p"), nullptr);
}

TEST_F(FCReader, ApplicationElementMakesWhatTheFactoryMakesOfItsType) {
    class Tasks : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override { return CFCNodeFactory::Create(type == 167 ? 150 : type); }
    } tasks;
    factory = &tasks;
    tree = parseInside("<ClientApplication Name=\"N\"><APPLICATION Name=\"solver\"/></ClientApplication>");
    EXPECT_STREQ(taskIn(tree)->GetApplication(), L"solver");
    EXPECT_EQ(dynamic_cast<CFCApplicationNode*>(onlyChild(tree.get())), nullptr);
}

TEST_F(FCReader, NewChildrenStandInFrontOfTheOlderOnes) {
    tree = parseInside("<BLOCK Name=\"A\"/><SUB_PROCESS Name=\"B\"/><BLOCK Name=\"C\"/>");
    EXPECT_STREQ(tree->GetChild()->GetNodeId(), L"C");
    EXPECT_STREQ(tree->GetChild()->GetNext()->GetNodeId(), L"B");
    EXPECT_STREQ(tree->GetChild()->GetNext()->GetNext()->GetNodeId(), L"A");
}

TEST_F(FCReader, ShapeOfADimensionSetsTheTypeOnly) {
    struct Row {
        char const* shape;
        int type;
    };
    Row const rows[] = {
        {"Rectangle", 57},
        {"Diamond", 58},
        {"Decision", 58},
        {"Terminator", 55},
        {"Oval", 55},
        {"RoundRect", 59},
        {"ApplicationTask", 150},
        {"UserTask", 151},
        {"AutomationTask", 57},
        {"DecisionTask", 153},
        {"StartState", 154},
        {"EndState", 155},
        {"Fork", 156},
        {"Join", 157},
        {"Mail", 158},
        {"ESB", 159},
        {"ProcessState", 160},
        {"SuperState", 161},
        {"SubProcessLoop", 162},
        {"DecisionLoop", 163},
        {"SpawningLoop", 164},
        {"BasicSubProcess", 165},
        {"ClientApplication", 167},
        {"Favourites", 57},
        {"Document", 57},
        {"decision", 57},
        {"DECISION", 57},
        {"oval", 57},
        {" Oval", 57},
        {"", 57},
        {"Circle", 57},
    };
    for (Row const& row : rows) {
        tree = parseInside("<BLOCK Name=\"A\"><DIMENSION Shape=\"" + std::string(row.shape) + "\"/></BLOCK>");
        IFCNode* const node = onlyChild(tree.get());
        EXPECT_EQ(node->GetNodeType(), row.type) << row.shape;
        EXPECT_NE(dynamic_cast<CFCBlockNode*>(node), nullptr) << row.shape;
        EXPECT_EQ(node->GetBPMBlockData(), nullptr) << row.shape;
    }
}

TEST_F(FCReader, CaptionAndIdentifierOfAnObject) {
    struct Row {
        char const* attributes;
        char const* id;
        char const* caption;
    };
    Row const rows[] = {
        {"Name=\"A\" BlockString=\"Text\"", "A", "Text"},
        {"Name=\"A\"", "A", "A"},
        {"Name=\"A\" BlockString=\"\"", "A", "A"},
        {"BlockString=\"Text\"", "", "Text"},
        {"", "", ""},
    };
    for (Row const& row : rows) {
        for (char const* const tag : {"BLOCK", "task-node", "SUB_PROCESS", "PROCESS", "process-definition"}) {
            tree = parseInside("<" + std::string(tag) + " " + row.attributes + "/>");
            IFCNode* const node = onlyChild(tree.get());
            EXPECT_EQ(narrow(node->GetNodeId()), row.id) << tag << row.attributes;
            EXPECT_EQ(narrow(node->GetNodeCaption()), row.caption) << tag << row.attributes;
        }
    }
}

TEST_F(FCReader, CaptionAndFileOfAFolder) {
    struct Row {
        char const* attributes;
        char const* caption;
        char const* file;
    };
    Row const rows[] = {
        {"Name=\"A\" BlockString=\"Text\"", "A", ""},
        {"BlockString=\"Text\" FILE=\"f.bpt\"", "Text", "f.bpt"},
        {"Name=\"\" BlockString=\"Text\" FILE=\"\"", "Text", ""},
        {"", "", ""},
    };
    for (Row const& row : rows) {
        for (char const* const tag : {"SUB_GRP", "CODE"}) {
            tree = parseInside("<" + std::string(tag) + " " + row.attributes + "/>");
            IFCNode* const node = onlyChild(tree.get());
            EXPECT_EQ(narrow(node->GetNodeCaption()), row.caption) << tag << row.attributes;
            EXPECT_EQ(narrow(node->GetItemFilePath()), row.file) << tag << row.attributes;
            EXPECT_STREQ(node->GetNodeId(), L"") << tag;
        }
    }
}

TEST_F(FCReader, TextOfACodeElement) {
    tree = parseInside("<CODE Name=\"C\">line 1\nline 2 <![CDATA[<b>]]> end</CODE>");
    EXPECT_EQ(narrow(onlyChild(tree.get())->GetNodeCode()), "line 1\nline 2 <b> end");
    tree = parseInside("<CODE Name=\"C\"/>");
    EXPECT_STREQ(onlyChild(tree.get())->GetNodeCode(), L"");
    tree = parseInside("<CODE Name=\"C\">outer<CODE Name=\"D\">inner</CODE></CODE>");
    EXPECT_STREQ(onlyChild(tree.get())->GetNodeCode(), L"outer");
    EXPECT_STREQ(onlyChild(onlyChild(tree.get()))->GetNodeCode(), L"inner");
}

TEST_F(FCReader, AttributesOfAnObject) {
    tree = parseInside(
        "<task-node Name=\"A\" ExecutionStatus=\"Failed\" FailedReason=\"out of memory\" IsImage=\"true\""
        " RelativeImage=\"pics/a.png\" Image=\"other.png\" ProcessID=\"17\" Run=\"true\" DisplayStatus=\"x\""
        " FILE=\"x.bpt\" DisplayState=\"true\"/>");
    IFCNode* const node = onlyChild(tree.get());
    CFCBlockData* const block = node->GetFCBlockData();
    EXPECT_EQ(block->GetExecutionStateType(), EExecutionStateType_Failed);
    EXPECT_STREQ(dynamic_cast<CFCBPMTaskNode*>(node)->GetFailedReason(), L"out of memory");
    EXPECT_TRUE(block->HasImage());
    EXPECT_STREQ(block->GetRelativeImagePath(), L"pics/a.png");
    EXPECT_EQ(node->GetNodeProcessID(), 17U);
    EXPECT_TRUE(block->GetShouldRun());
    EXPECT_STREQ(node->GetItemFilePath(), L"");
}

TEST_F(FCReader, DefaultsOfAnObject) {
    tree = parseInside("<BLOCK Name=\"A\"/>");
    IFCNode* const node = onlyChild(tree.get());
    CFCBlockData* const block = node->GetFCBlockData();
    EXPECT_EQ(block->GetExecutionStateType(), EExecutionStateType_ESNone);
    EXPECT_FALSE(block->HasImage());
    EXPECT_STREQ(block->GetRelativeImagePath(), L"");
    EXPECT_EQ(node->GetNodeProcessID(), 0U);
    EXPECT_FALSE(block->GetShouldRun());
    EXPECT_STREQ(block->GetScriptName(), L"");
    EXPECT_EQ(rectOf(node), "0 0 0 0");
}

TEST_F(FCReader, ExecutionStatusByName) {
    struct Row {
        char const* name;
        int state;
    };
    Row const rows[] = {{"Pending", 1}, {"Start", 2},  {"Executing", 3}, {"Executed", 4},
                        {"Skipped", 5}, {"Failed", 6}, {"Cancelled", 7}, {"WaitForResource", 8},
                        {"Stop", 9},    {"ESNone", 0}, {"failed", 0},    {"", 0},
                        {"Done", 0}};
    for (Row const& row : rows) {
        tree = parseInside("<BLOCK ExecutionStatus=\"" + std::string(row.name) + "\"/>");
        EXPECT_EQ(blockIn(tree)->GetExecutionStateType(), row.state) << row.name;
    }
}

TEST_F(FCReader, NestedProcessWithoutFileIsReadInBothWays) {
    tree = parseInside("<PROCESS Name=\"Inner\" Type=\"Report\" ProjectDirectory=\"d\" ProcessID=\"5\">"
                       "<PROCESS_VARIABLES><VARIABLE Name=\"v\"/></PROCESS_VARIABLES><BLOCK Name=\"A\"/></PROCESS>");
    IFCNode* const inner = onlyChild(tree.get());
    EXPECT_STREQ(inner->GetNodeId(), L"Inner");
    EXPECT_STREQ(inner->GetNodeCaption(), L"Inner");
    EXPECT_EQ(inner->GetProjectType(), EProjectType_Report);
    EXPECT_STREQ(CFCPointerConverter::GetProcessNode(inner)->getProjectDirectory(), L"d");
    EXPECT_FALSE(inner->GetFCBlockData()->GetShouldRun());
    EXPECT_EQ(inner->GetNodeProcessID(), 5U);
    EXPECT_THAT(variablesOf(inner), SizeIs(1));
    EXPECT_EQ(captionsOf(inner), "A");
}

TEST_F(FCReader, NestedProcessDefinitionLosesItsProjectSettings) {
    tree = parseInside("<process-definition Name=\"Inner\" Type=\"TASK\" ProjectDirectory=\"d\" FILE=\"x.bpt\"/>", 9);
    CFCProcessNode* const inner = CFCPointerConverter::GetProcessNode(onlyChild(tree.get()));
    EXPECT_STREQ(inner->GetNodeId(), L"Inner");
    EXPECT_STREQ(inner->getProjectDirectory(), L"");
    EXPECT_STREQ(inner->getSaveRestoreScript(), L"SaveRestore");
    EXPECT_EQ(inner->GetProjectType(), EProjectType_BPT);
    EXPECT_STREQ(inner->GetItemFilePath(), L"");
}

// --- Elements that fill a block ---------------------------------------------------------------------------------

TEST_F(FCReader, FlagsOfABlock) {
    struct Row {
        char const* element;
        bool undo;
        bool skip;
        bool stop;
        int reference;
    };
    Row const rows[] = {
        {"<FLAGS/>", false, false, false, 2},
        {"<FLAGS Undo=\"true\" Skip=\"true\" Break=\"true\" Reference=\"1\"/>", true, true, true, 1},
        {"<FLAGS Undo=\"1\" Skip=\"Y\" Break=\"Yes\" Reference=\"0\"/>", true, true, true, 0},
        {"<FLAGS Undo=\"0\" Skip=\"N\" Break=\"No\" Reference=\"2\"/>", false, false, false, 2},
        {"<FLAGS Reference=\"TRUE\"/>", false, false, false, 2},
        {"<FLAGS Reference=\"true\"/>", false, false, false, 2},
        {"<FLAGS Reference=\"false\"/>", false, false, false, 2},
        {"<FLAGS Reference=\"\"/>", false, false, false, 2},
        {"<FLAGS Reference=\"01\"/>", false, false, false, 2},
        {"<FLAGS Undo=\"maybe\" Reference=\"1\"/>", false, false, false, 1},
        {"<FLAGS Undo=\"true\" Break=\"true\"/><FLAGS Skip=\"true\" Reference=\"1\"/>", false, true, false, 1},
    };
    for (Row const& row : rows) {
        tree = parseInside("<BLOCK>" + std::string(row.element) + "</BLOCK>");
        CFCBlockData* const block = blockIn(tree);
        EXPECT_EQ(block->GetUndoFlag(), row.undo) << row.element;
        EXPECT_EQ(block->GetSkipFlag(), row.skip) << row.element;
        EXPECT_EQ(block->GetStopFlag(), row.stop) << row.element;
        EXPECT_EQ(block->GetReferenceBlock(), row.reference) << row.element;
    }
    tree = parseInside("<BLOCK/>");
    EXPECT_EQ(blockIn(tree)->GetReferenceBlock(), ERefBlock_None);
}

TEST_F(FCReader, PortNamesAreReplacedEvenByNothing) {
    tree = parseInside("<BLOCK><PORT InPort=\"a\" OutPort=\"b\" NextPort=\"c\"/></BLOCK>");
    CFCPortList* ports = blockIn(tree)->GetPortList();
    EXPECT_STREQ(ports->GetInPort()->GetPortName(), L"a");
    EXPECT_STREQ(ports->GetOutPort()->GetPortName(), L"b");
    EXPECT_STREQ(ports->GetNextPort()->GetPortName(), L"c");
    tree = parseInside("<BLOCK><PORT OutPort=\"b\"/></BLOCK>");
    ports = blockIn(tree)->GetPortList();
    EXPECT_STREQ(ports->GetInPort()->GetPortName(), L"");
    EXPECT_STREQ(ports->GetOutPort()->GetPortName(), L"b");
    EXPECT_STREQ(ports->GetNextPort()->GetPortName(), L"");
    tree = parseInside("<BLOCK><IN_PORT InPort=\"x\"/><OUT_PORT OutPort=\"x\"/></BLOCK>");
    ports = blockIn(tree)->GetPortList();
    EXPECT_STREQ(ports->GetInPort()->GetPortName(), L"Left");
    EXPECT_STREQ(ports->GetOutPort()->GetPortName(), L"Right");
    EXPECT_STREQ(ports->GetNextPort()->GetPortName(), L"Bottom");
}

TEST_F(FCReader, HelpOfABlock) {
    tree = parseInside("<BLOCK><HELP MicroHelp=\"m\" Description=\"d\" KnowledgeAdvisory=\"k\"/></BLOCK>");
    EXPECT_STREQ(blockIn(tree)->GetToolTip(), L"m");
    EXPECT_STREQ(blockIn(tree)->GetDescription(), L"d");
    EXPECT_STREQ(blockIn(tree)->GetHelpFile(), L"k");
    tree = parseInside("<BLOCK><HELP MicroHelp=\"m\" Description=\"d\" KnowledgeAdvisory=\"k\"/><HELP/></BLOCK>");
    EXPECT_STREQ(blockIn(tree)->GetToolTip(), L"");
    EXPECT_STREQ(blockIn(tree)->GetDescription(), L"");
    EXPECT_STREQ(blockIn(tree)->GetHelpFile(), L"");
}

TEST_F(FCReader, WorkflowElementsGoIntoTheWorkflowRecord) {
    char const* const kInside = "<BPM Description=\"d\"/><APPLICATION Name=\"n\" Deployment=\"p\" Executable=\"e\"/>";
    for (char const* const tag : {"task-node", "start-state", "process-definition", "super-state"}) {
        tree = parseInside("<" + std::string(tag) + ">" + kInside + "</" + tag + ">");
        EXPECT_STREQ(taskIn(tree)->GetTaskDescription(), L"d") << tag;
        EXPECT_STREQ(taskIn(tree)->GetApplication(), L"n") << tag;
        EXPECT_STREQ(taskIn(tree)->GetDeployment(), L"p") << tag;
        EXPECT_STREQ(taskIn(tree)->GetExecutable(), L"e") << tag;
    }
    tree = parseInside("<task-node>" + std::string(kInside) + "<BPM/><APPLICATION/></task-node>");
    EXPECT_STREQ(taskIn(tree)->GetTaskDescription(), L"");
    EXPECT_STREQ(taskIn(tree)->GetApplication(), L"");
    tree = parseInside("<BLOCK>" + std::string(kInside) + "</BLOCK>");
    EXPECT_EQ(taskIn(tree), nullptr);
}

TEST_F(FCReader, FailedReasonNeedsATask) {
    tree = parseInside("<process-definition Name=\"A\" FailedReason=\"why\"/>");
    EXPECT_NE(taskIn(tree), nullptr);
    tree = parseInside("<task-node Name=\"A\" FailedReason=\"why\"/>");
    EXPECT_STREQ(dynamic_cast<CFCBPMTaskNode*>(onlyChild(tree.get()))->GetFailedReason(), L"why");
}

TEST_F(FCReader, ScriptOfABlock) {
    tree = parseInside("<BLOCK Name=\"A\"><SCRIPT Name=\"Sizing.Load\" ScriptType=\"TCMD\" Version=\"3\""
                       " ScriptCmdInterface=\"i\" ScriptCMD=\"c\" ScriptExecute=\"e\"/></BLOCK>");
    CFCBlockData* block = blockIn(tree);
    EXPECT_STREQ(block->GetScriptName(), L"Sizing.Load");
    EXPECT_EQ(block->GetScriptType(), EScriptType_TCMD);
    EXPECT_STREQ(block->GetCOMInteface(), L"i");
    EXPECT_STREQ(block->GetCOMCommand(), L"c");
    EXPECT_STREQ(block->GetExecuteMethod(), L"e");
    tree = parseInside("<BLOCK Name=\"A\"><SCRIPT Name=\"S\" ScriptType=\"PYTHON\" ScriptCmdInterface=\"i\"/></BLOCK>");
    EXPECT_STREQ(blockIn(tree)->GetCOMInteface(), L"i");
}

TEST_F(FCReader, UnknownScriptTypeIsLeftAlone) {
    tree = parseInside("<BLOCK><SCRIPT ScriptType=\"JAVA\"/><SCRIPT ScriptType=\"java\"/><SCRIPT/></BLOCK>");
    EXPECT_EQ(blockIn(tree)->GetScriptType(), EScriptType_JAVA);
}

TEST_F(FCReader, EmptyScriptNameBecomesTheIdentifier) {
    tree = parseInside("<BLOCK Name=\"Task\"><SCRIPT Name=\"\"/></BLOCK>");
    EXPECT_STREQ(blockIn(tree)->GetScriptName(), L"Task");
}

TEST_F(FCReader, ScriptTextIsLoadedFromBelowTheUserPath) {
    scratch.write("user/Sizing/Load.py", "print('loaded')\n");
    CFCEnvironment::SetUserPath(scratch.text("user"));
    tree = parseInside("<BLOCK Name=\"A\"><SCRIPT Name=\"Sizing.Load\"/></BLOCK>");
    EXPECT_STREQ(blockIn(tree)->GetScriptCode(), L"print('loaded')\n");
}

TEST_F(FCReader, ScriptInANodeWithoutBlockDataIsIgnored) {
    tree = parseInside(
        "<SUB_GRP Name=\"G\"><SCRIPT Name=\"S\"/><FLAGS/><PORT/><HELP/><BORDER/><FONT/><BPM/><APPLICATION/>"
        "<PROCESS_VARIABLES><VARIABLE Name=\"v\"/></PROCESS_VARIABLES><VARIABLE Name=\"w\"/>"
        "<DIMENSION Point_X=\"1\" Point_Y=\"1\" Width=\"1\" Hight=\"1\"/><BLOCK Name=\"after\"/></SUB_GRP>");
    IFCNode* const folder = onlyChild(tree.get());
    EXPECT_EQ(captionsOf(folder), "after");
    EXPECT_EQ(rectOf(folder), "none");
}

TEST_F(FCReader, BorderOfABlock) {
    tree = parseInside("<BLOCK><BORDER LineThickness=\"7\" LinePenType=\"3\" Visible=\"true\" DrawBorder=\"1\""
                       " FillColor=\"0\" ColorLine=\"255\" ColorFill=\"65280\" Version=\"1\"/></BLOCK>");
    CFCBlockData* const block = blockIn(tree);
    EXPECT_EQ(block->LineThickness, 7);
    EXPECT_EQ(block->LinePenType, 3);
    EXPECT_TRUE(block->Visible);
    EXPECT_TRUE(block->DrawBorder);
    EXPECT_FALSE(block->FillColor);
    EXPECT_EQ(block->ColorLine, 255U);
    EXPECT_EQ(block->ColorFill, 65280U);
    EXPECT_TRUE(block->BorderSet);
}

TEST_F(FCReader, OldBorderHasNoBorderAndAFixedFill) {
    for (char const* const version : {"", "Version=\"0\"", "Version=\"\"", "Version=\"x\""}) {
        tree = parseInside("<BLOCK><BORDER LineThickness=\"7\" Visible=\"true\" DrawBorder=\"1\" ColorLine=\"9\""
                           " ColorFill=\"1\" " +
                           std::string(version) + "/></BLOCK>");
        CFCBlockData* const block = blockIn(tree);
        EXPECT_FALSE(block->Visible) << version;
        EXPECT_FALSE(block->DrawBorder) << version;
        EXPECT_EQ(block->ColorFill, 0xFFDFC6U) << version;
        EXPECT_EQ(block->LineThickness, 7) << version;
        EXPECT_EQ(block->ColorLine, 9U) << version;
        EXPECT_TRUE(block->BorderSet) << version;
    }
    tree = parseInside("<BLOCK><BORDER Visible=\"1\" DrawBorder=\"1\" Version=\"2\"/></BLOCK>");
    EXPECT_TRUE(blockIn(tree)->DrawBorder);
}

TEST_F(FCReader, BorderWithoutAttributesKeepsTheValuesOfTheBlock) {
    tree = parseInside("<BLOCK><BORDER Version=\"1\"/></BLOCK>");
    CFCBlockData* const block = blockIn(tree);
    EXPECT_EQ(block->LineThickness, 2);
    EXPECT_EQ(block->LinePenType, 0);
    EXPECT_TRUE(block->FillColor);
    EXPECT_EQ(block->ColorFill, 0xFFDFC6U);
    tree = parseInside("<BLOCK/>");
    EXPECT_FALSE(blockIn(tree)->BorderSet);
}

TEST_F(FCReader, FontOfABlock) {
    tree = parseInside("<BLOCK><FONT Bold=\"0\" Italics=\"1\" StrikeOut=\"true\" Underline=\"Y\" FontSize=\"14\""
                       " Format=\"37\" FontColor=\"255\" FontName=\"Courier\" Version=\"1\"/></BLOCK>");
    CFCBlockData* const block = blockIn(tree);
    EXPECT_FALSE(block->Bold);
    EXPECT_TRUE(block->Italics);
    EXPECT_TRUE(block->StrikeOut);
    EXPECT_TRUE(block->Underline);
    EXPECT_EQ(block->FontSize, 14);
    EXPECT_EQ(block->Format, 37U);
    EXPECT_EQ(block->FontColor, 255U);
    EXPECT_STREQ(block->FontName, L"Courier");
    EXPECT_EQ(block->FontVersion, 1);
    EXPECT_TRUE(block->FontSet);
}

TEST_F(FCReader, OldFontIsBlack) {
    for (char const* const version : {"", "Version=\"0\""}) {
        tree = parseInside("<BLOCK><FONT FontColor=\"255\" FontSize=\"9\" " + std::string(version) + "/></BLOCK>");
        EXPECT_EQ(blockIn(tree)->FontColor, 0U) << version;
        EXPECT_EQ(blockIn(tree)->FontSize, 9) << version;
        EXPECT_EQ(blockIn(tree)->FontVersion, 0) << version;
        EXPECT_TRUE(blockIn(tree)->FontSet) << version;
    }
}

TEST_F(FCReader, ColoursInEveryForm) {
    for (char const* const form : {"16768966", "0xFFDFC6", "#ffdfc6"}) {
        tree = parseInside("<BLOCK><BORDER ColorLine=\"" + std::string(form) + "\" Version=\"1\"/></BLOCK>");
        EXPECT_EQ(blockIn(tree)->ColorLine, 0xFFDFC6U) << form;
    }
}

// --- Dimensions -------------------------------------------------------------------------------------------------

TEST_F(FCReader, RectanglesOfBlocks) {
    struct Row {
        char const* attributes;
        char const* rect;
    };
    Row const rows[] = {
        {"Point_X=\"1.000\" Point_Y=\"2.000\" Width=\"3.000\" Hight=\"4.000\" Order=\"0\"", "100 700 400 1100"},
        {"Point_X=\"1.000\" Point_Y=\"2.000\" Width=\"3.000\" Hight=\"4.000\"", "100 700 400 1100"},
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\" Order=\"1\"", "72 144 288 432"},
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\" Order=\"-1\"", "72 144 288 432"},
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\" Order=\"x\"", "100 700 400 1100"},
        {"Width=\"1\" Hight=\"1\"", "0 1200 100 1300"},
        // A height that is next to nothing gives way to the spelling of older files.
        {"Point_Y=\"2\" Width=\"3\" Height=\"4\"", "0 700 300 1100"},
        {"Point_Y=\"2\" Width=\"3\" Hight=\"0.0005\" Height=\"4\"", "0 700 300 1100"},
        {"Point_Y=\"2\" Width=\"3\" Hight=\"-5\" Height=\"4\"", "0 700 300 1100"},
        {"Point_Y=\"2\" Width=\"3\" Hight=\"0.001\" Height=\"4\"", "0 1100 300 1100"},
        {"Point_Y=\"2\" Width=\"3\" Hight=\"2\" Height=\"4\"", "0 900 300 1100"},
        {"Point_Y=\"2\" Width=\"3\" Hight=\"0.0005\"", "0 1100 300 1100"},
        // Without extent the block keeps what it has.
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"0\" Hight=\"4\"", "0 0 0 0"},
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"3\"", "0 0 0 0"},
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"-3\" Hight=\"4\"", "0 0 0 0"},
        {"Point_X=\"1\" Point_Y=\"2\" Width=\"nan\" Hight=\"nan\"", "0 0 0 0"},
        {"", "0 0 0 0"},
        // Cut off, not rounded.
        {"Point_X=\"0.290\" Point_Y=\"2\" Width=\"0.999\" Hight=\"0.019\"", "28 1099 127 1100"},
        {"Point_X=\"-0.290\" Point_Y=\"2\" Width=\"1\" Hight=\"1\"", "-28 1000 72 1100"},
        {"Point_X=\"0,5\" Point_Y=\"2\" Width=\"1.5x\" Hight=\" 1\"", "0 1000 150 1100"},
    };
    for (Row const& row : rows) {
        tree = parseInside("<BLOCK><DIMENSION " + std::string(row.attributes) + "/></BLOCK>");
        EXPECT_EQ(rectOf(onlyChild(tree.get())), row.rect) << row.attributes;
    }
}

TEST_F(FCReader, ShapeCountsEvenWhereTheRectangleDoesNot) {
    tree = parseInside("<BLOCK><DIMENSION Width=\"0\" Hight=\"0\" Shape=\"Oval\"/></BLOCK>");
    EXPECT_EQ(onlyChild(tree.get())->GetNodeType(), 55);
}

TEST_F(FCReader, OldFilesHoldRawUnits) {
    struct Row {
        char const* name;
        bool isOld;
    };
    Row const rows[] = {{"plan.fmr", true}, {"xfmr", true},      {"plan.FMR", false}, {"plan.fmr.bpt", false},
                        {"planfmr", true},  {"plan.bpt", false}, {"fmr.xml", false}};
    for (Row const& row : rows) {
        std::string const inside =
            "<BLOCK><DIMENSION Point_X=\"11.9\" Point_Y=\"-22.9\" Width=\"33.9\" Hight=\"44\" Order=\"1\"/></BLOCK>";
        tree = parseInside(inside, 1, row.name);
        EXPECT_EQ(rectOf(onlyChild(tree.get())), row.isOld ? "11 -22 44 22" : "856 -1648 3296 1520") << row.name;
    }
}

TEST_F(FCReader, TheBareNameOfAnOldFileIsTooShort) {
    OpenDocumentReader open;
    open.SetNodeFactory(factory);
    scratch.write("doc.xml", "<P><BLOCK><DIMENSION Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\"/></BLOCK></P>");
    struct Row {
        wchar_t const* path;
        char const* rect;
    };
    // Load alone opens no file, so that the last one checked counts.
    Row const rows[] = {{L"fmr", "100 700 400 1100"},
                        {L"xfmr", "1 2 4 6"},
                        {L"", "100 700 400 1100"},
                        {L"a.fmr", "1 2 4 6"},
                        {nullptr, "100 700 400 1100"}};
    for (Row const& row : rows) {
        ASSERT_TRUE(open.Initialize(scratch.text("doc.xml")));
        xercesc::DOMDocument* document = nullptr;
        ASSERT_TRUE(open.InitXML(scratch.text("doc.xml"), &document));
        open.CheckDataFile(row.path);
        Tree const process(CFCNodeFactory().Create(56));
        EXPECT_TRUE(open.Load(document->getDocumentElement(), process.get(), nullptr));
        document->release();
        EXPECT_EQ(rectOf(onlyChild(process.get())), row.rect) << narrow(row.path);
    }
}

TEST_F(FCReader, PointsAndRectanglesTruncateDifferently) {
    // Both count from the page foot, and the two ways to do so differ for these many of all heights.
    std::string inside = kTwoBlocks;
    std::string points;
    for (int y = 0; y <= 1300; ++y) {
        char measure[16];
        std::snprintf(measure, sizeof measure, "%d.%02d0", y / 100, y % 100);
        inside +=
            "<BLOCK Name=\"Y\"><DIMENSION Point_Y=\"" + std::string(measure) + "\" Width=\"1\" Hight=\"1\"/></BLOCK>";
        points += "<POINT Location_X=\"" + std::string(measure) + "\" Location_Y=\"" + measure + "\"/>";
    }
    factory = &routingFactory;
    tree = parseInside(inside + "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\">" + points + "</CONNECTOR>");
    std::vector<IFCNode*> const blocks = childrenOf(tree.get());
    ASSERT_THAT(connectorsOf(tree.get()), SizeIs(1));
    auto* const routed = dynamic_cast<RoutedConnector*>(connectorsOf(tree.get()).front());
    ASSERT_THAT(routed->points, SizeIs(1301));
    int differences = 0;
    for (std::size_t y = 0; y <= 1300; ++y) {
        int const measured = static_cast<int>(static_cast<double>(y) / 100.0 * 100.0);
        EXPECT_EQ(routed->points[y].x, measured);
        EXPECT_EQ(routed->points[y].y, 1300 - measured);
        differences += blocks[y + 2]->GetTuRect()->bottom != routed->points[y].y ? 1 : 0;
    }
    EXPECT_EQ(differences, 304);
}

// --- Connectors -------------------------------------------------------------------------------------------------

TEST_F(FCReader, ConnectorJoinsBlocksByTheirNames) {
    factory = &routingFactory;
    auto* const routed = dynamic_cast<RoutedConnector*>(connector(
        "StartBlock=\"A\" EndBlock=\"B\" StartPortName=\"s\" EndPortName=\"e\" StartHandle=\"4\" EndHandle=\"8\""
        " NumPoints=\"9\" Version=\"1\" DisplayState=\"false\" AutoConnector=\"1\" Order=\"1\"",
        "<POINT Location_X=\"1.5\" Location_Y=\"12.250\"/><NOPOINT/><POINT Location_Y=\"13\"/><POINT/>"));
    ASSERT_NE(routed, nullptr);
    EXPECT_EQ(narrow(routed->GetStartBlockName()), "A");
    EXPECT_EQ(narrow(routed->GetEndBlockName()), "B");
    EXPECT_STREQ(routed->GetStartPortName(), L"s");
    EXPECT_STREQ(routed->GetEndPortName(), L"e");
    EXPECT_STREQ(routed->GetStartNodeId(), L"A");
    EXPECT_STREQ(routed->GetEndNodeId(), L"B");
    EXPECT_EQ(routed->GetStartHandle(), 4);
    EXPECT_EQ(routed->GetEndHandle(), 8);
    EXPECT_EQ(routed->GetNodeType(), 68);
    ASSERT_THAT(routed->points, SizeIs(3));
    EXPECT_EQ(routed->points[0].x, 150);
    EXPECT_EQ(routed->points[0].y, 75);
    EXPECT_EQ(routed->points[1].x, 0);
    EXPECT_EQ(routed->points[1].y, 0);
    EXPECT_EQ(routed->points[2].x, 0);
    EXPECT_EQ(routed->points[2].y, 1300);
    EXPECT_THAT(reader.GetReadFindings(), IsEmpty());
}

TEST_F(FCReader, ConnectionIsAnotherNameForConnector) {
    tree = parseInside(kTwoBlocks +
                       std::string("<CONNECTION StartBlock=\"A\" EndBlock=\"B\" StartHandle=\"3\" Version=\"1\"/>"));
    ASSERT_THAT(connectorsOf(tree.get()), SizeIs(1));
    EXPECT_EQ(connectorsOf(tree.get()).front()->GetStartHandle(), 3);
    EXPECT_EQ(connectorsOf(tree.get()).front()->GetEndHandle(), 0);
}

TEST_F(FCReader, ConnectorFindsBlocksInAnyLetterCase) {
    CFCConnector* const found = connector("StartBlock=\"a\" EndBlock=\"b\" Version=\"1\"");
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(found->GetStartNodeId(), L"A");
}

TEST_F(FCReader, ConnectorsWithoutTheirBlocksAreDroppedAndFound) {
    tree = parseInside(
        "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/>" + std::string(kTwoBlocks) +
        "<SUB_GRP Name=\"G\"/><BLOCK/>"
        "<CONNECTOR StartBlock=\"A\" EndBlock=\"C\" Version=\"1\"><POINT/></CONNECTOR>"
        "<CONNECTOR StartBlock=\"C\" EndBlock=\"B\"/><CONNECTOR StartBlock=\"\" EndBlock=\"B\" Version=\"1\"/>"
        "<CONNECTOR Version=\"1\"/><CONNECTOR StartBlock=\"A\" EndBlock=\"G\" Version=\"1\"/>");
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
    std::vector<std::pair<std::string, std::string>> ends;
    for (CFCReadFinding const& finding : reader.GetReadFindings()) {
        EXPECT_EQ(finding.kind, CFCReadFinding::ConnectorWithoutBlock);
        EXPECT_EQ(finding.node, tree.get());
        ends.emplace_back(narrow(finding.first), narrow(finding.second));
    }
    EXPECT_THAT(ends, ElementsAre(std::pair("A", "B"), std::pair("A", "C"), std::pair("C", "B"), std::pair("", "B"),
                                  std::pair("", ""), std::pair("A", "G")));
    tree = parseInside("");
    EXPECT_THAT(reader.GetReadFindings(), IsEmpty());
}

TEST_F(FCReader, ConnectorSeesOnlyTheChildrenOfItsOwner) {
    tree = parseInside("<SUB_PROCESS Name=\"S\">" + std::string(kTwoBlocks) +
                       "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/></SUB_PROCESS>"
                       "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/>");
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
    EXPECT_THAT(connectorsOf(onlyChild(tree.get())), SizeIs(1));
}

TEST_F(FCReader, LaterBlockOfTheSameNameHidesTheEarlierOne) {
    tree =
        parseInside("<BLOCK Name=\"A\" BlockString=\"old\"/><BLOCK Name=\"A\" BlockString=\"new\"/><BLOCK Name=\"B\"/>"
                    "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/>");
    ASSERT_THAT(connectorsOf(tree.get()), SizeIs(1));
    EXPECT_STREQ(connectorsOf(tree.get()).front()->GetStartBlockCaption(), L"new");
}

TEST_F(FCReader, SecondConnectorBetweenTheSameBlocksIsNotKept) {
    tree = parseInside(kTwoBlocks +
                       std::string("<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" StartHandle=\"6\" Version=\"1\"/>"
                                   "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" StartHandle=\"4\" Version=\"1\"/>"
                                   "<CONNECTOR StartBlock=\"B\" EndBlock=\"A\" Version=\"1\"/>"
                                   "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\"/>"));
    ASSERT_THAT(connectorsOf(tree.get()), SizeIs(2));
    EXPECT_EQ(connectorsOf(tree.get())[0]->GetStartHandle(), 6);
    EXPECT_STREQ(connectorsOf(tree.get())[1]->GetStartNodeId(), L"B");
}

TEST_F(FCReader, ContainerIsHandedTheSecondConnectorToo) {
    RecordingContainer container;
    reader.SetContainer(&container);
    tree = parseInside(kTwoBlocks + std::string("<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/>"
                                                "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/>"));
    EXPECT_THAT(container.names, ElementsAre("A", "B", "connector", "connector", "Root"));
    EXPECT_NE(container.nodes[2], container.nodes[3]);
    EXPECT_EQ(connectorsOf(tree.get()).size(), 1U);
    EXPECT_EQ(dynamic_cast<CFCConnector*>(container.nodes[3])->GetStartObject(), childrenOf(tree.get())[0]);
    delete container.nodes[3];
}

TEST_F(FCReader, ConnectorInAFolderIsNotKept) {
    RecordingContainer container;
    reader.SetContainer(&container);
    tree = parseInside(
        "<SUB_GRP Name=\"G\">" + std::string(kTwoBlocks) +
        "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/><CONNECTOR StartBlock=\"A\" EndBlock=\"B\"/></SUB_GRP>");
    EXPECT_THAT(container.names, ElementsAre("A", "B", "G", "Root"));
}

TEST_F(FCReader, ConnectorOfTheHostIsAddedThroughTheNode) {
    class Collecting : public CFCSubProcessNode {
    public:
        void AddConnector(CFCConnector* connector) override { taken.emplace_back(connector); }
        std::vector<std::unique_ptr<CFCConnector>> taken;
    };
    class Factory : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override {
            if (type != 61)
                return CFCNodeFactory::Create(type);
            auto node = std::make_unique<Collecting>();
            node->SetNodeType(type);
            return node.release();
        }
    } collectingFactory;
    factory = &collectingFactory;
    tree = parseInside(
        "<SUB_PROCESS Name=\"S\">" + std::string(kTwoBlocks) +
        "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/><CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/></SUB_PROCESS>");
    auto* const node = dynamic_cast<Collecting*>(onlyChild(tree.get()));
    ASSERT_THAT(node->taken, SizeIs(2));
    EXPECT_TRUE(node->taken[1]->IsValid());
}

TEST_F(FCReader, OldConnectorsHaveFixedGripsAndKeepNoPoints) {
    factory = &routingFactory;
    for (char const* const version : {"", "Version=\"0\"", "Version=\"-1\"", "Version=\"x\""}) {
        auto* const routed = dynamic_cast<RoutedConnector*>(connector(
            "StartBlock=\"A\" EndBlock=\"B\" StartHandle=\"4\" EndHandle=\"8\" StartPortName=\"s\" EndPortName=\"e\" " +
                std::string(version),
            "<POINT Location_X=\"50\" Location_Y=\"50\"/><POINT Location_X=\"60\" Location_Y=\"60\"/>"));
        ASSERT_NE(routed, nullptr) << version;
        EXPECT_EQ(routed->GetStartHandle(), 6) << version;
        EXPECT_EQ(routed->GetEndHandle(), 2) << version;
        EXPECT_STREQ(routed->GetStartPortName(), L"s") << version;
        EXPECT_STREQ(routed->GetEndPortName(), L"e") << version;
        EXPECT_THAT(routed->points, IsEmpty()) << version;
    }
}

TEST_F(FCReader, OldConnectorsFindTheirGripsByTheEndsOfTheRoute) {
    // A lies at 100, 200 to 200, 300; B at 400, 700 to 500, 800. On the old page y is 1200 - 100 Y.
    struct Row {
        char const* points;
        int start;
        int end;
    };
    Row const rows[] = {
        {"", 6, 2},
        // The right middle of A alone: one point says nothing of the end.
        {"<POINT Location_X=\"2.0\" Location_Y=\"9.5\"/>", 4, 2},
        {"<POINT Location_X=\"2.0\" Location_Y=\"9.5\"/><POINT Location_X=\"4.0\" Location_Y=\"4.5\"/>", 4, 8},
        {"<POINT Location_X=\"2.0\" Location_Y=\"9.5\"/><POINT Location_X=\"9\" Location_Y=\"9\"/>"
         "<POINT Location_X=\"4.0\" Location_Y=\"4.5\"/>",
         4, 8},
        {"<POINT Location_X=\"9\" Location_Y=\"9\"/><POINT Location_X=\"4.5\" Location_Y=\"5.0\"/>", 6, 2},
        {"<POINT Location_X=\"1.0\" Location_Y=\"10.0\"/><POINT Location_X=\"5.0\" Location_Y=\"4.0\"/>", 1, 5},
        {"<POINT Location_X=\"1.2\" Location_Y=\"10.0\"/><POINT Location_X=\"5.0\" Location_Y=\"3.7\"/>", 1, 2},
    };
    for (Row const& row : rows) {
        CFCConnector* const found = connector("StartBlock=\"A\" EndBlock=\"B\"", row.points);
        ASSERT_NE(found, nullptr) << row.points;
        EXPECT_EQ(found->GetStartHandle(), row.start) << row.points;
        EXPECT_EQ(found->GetEndHandle(), row.end) << row.points;
    }
}

TEST_F(FCReader, OldConnectorsAreAttachedBeforeTheirGripsAreFound) {
    class Watching : public CFCBaseContainer {
    public:
        void Attach(IFCNode* node) override {
            if (CFCConnector* const connector = CFCPointerConverter::GetConnector(node))
                handle = connector->GetStartHandle();
        }
        int handle = 0;
    } watching;
    reader.SetContainer(&watching);
    CFCConnector* const found =
        connector("StartBlock=\"A\" EndBlock=\"B\"", "<POINT Location_X=\"2.0\" Location_Y=\"9.5\"/>");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(watching.handle, 6);
    EXPECT_EQ(found->GetStartHandle(), 4);
}

TEST_F(FCReader, SetConnectorNodeHitTestsThePoint) {
    tree = parseInside(kTwoBlocks);
    auto* const a = CFCPointerConverter::GetBlockNode(tree->FindNodeSimple(L"A"));
    auto* const b = CFCPointerConverter::GetBlockNode(tree->FindNodeSimple(L"B"));
    CFCConnector line;
    line.SetStartNode(6, a);
    line.SetEndNode(2, b);
    _TgPointLStr point{200, 250};
    reader.SetConnectorNode(&line, &point, true);
    EXPECT_EQ(line.GetStartHandle(), 4);
    EXPECT_EQ(line.GetEndHandle(), 2);
    point = {400, 750};
    reader.SetConnectorNode(&line, &point, false);
    EXPECT_EQ(line.GetEndHandle(), 8);
    point = {9000, 9000};
    reader.SetConnectorNode(&line, &point, true);
    EXPECT_EQ(line.GetStartHandle(), -1);
    reader.SetConnectorNode(&line, nullptr, false);
    reader.SetConnectorNode(nullptr, &point, false);
    EXPECT_EQ(line.GetEndHandle(), 8);
    CFCConnector loose;
    reader.SetConnectorNode(&loose, &point, true);
    EXPECT_EQ(loose.GetStartHandle(), 9);
}

// --- Variables --------------------------------------------------------------------------------------------------

TEST_F(FCReader, AttributesOfAVariable) {
    CFCVariableData* const v = variable(
        "Name=\"speed\" DisplayName=\"Speed\" DataType=\"Double\" Type=\"Data\" Array=\"Y\" IOType=\"Output\" Scope=\"Private\""
        " TemplateVariable=\"false\" LinkPath=\"A.x\" EntityType=\"Primitive\" Hidden=\"true\" Deployed=\"true\""
        " Displayable=\"false\"",
        "3.5");
    ASSERT_NE(v, nullptr);
    EXPECT_STREQ(v->GetVariableName(), L"speed");
    EXPECT_STREQ(v->GetCaption(), L"Speed");
    EXPECT_EQ(v->GetDataType(), EDataType_Double);
    EXPECT_STREQ(v->GetDataTypeNode()->GetType(), L"Double");
    EXPECT_EQ(v->getArrayFlag(), 1);
    EXPECT_EQ(v->GetStatusType(), EStatusType_Output);
    EXPECT_EQ(v->GetScopeType(), EScopeType_Private);
    EXPECT_FALSE(v->IsTemplateVariable());
    EXPECT_STREQ(v->GetLinkPath(), L"A.x");
    EXPECT_STREQ(v->GetEntityType(), L"Primitive");
    EXPECT_TRUE(v->IsHidden());
    EXPECT_TRUE(v->IsDeployed());
    EXPECT_FALSE(v->IsVisible());
    EXPECT_STREQ(v->GetValue(), L"3.5");
    EXPECT_EQ(v->GetParentNode(), tree.get());
    EXPECT_EQ(v->GetNodeType(), 72);
}

TEST_F(FCReader, DefaultsOfAVariable) {
    CFCVariableData* const v = variable("Name=\"x\"");
    ASSERT_NE(v, nullptr);
    EXPECT_STREQ(v->GetCaption(), L"x");
    EXPECT_EQ(v->GetDataType(), EDataType_String);
    EXPECT_STREQ(v->GetDataTypeNode()->GetType(), L"String");
    EXPECT_EQ(v->getArrayFlag(), 0);
    EXPECT_EQ(v->GetStatusType(), EStatusType_Input);
    EXPECT_EQ(v->GetScopeType(), EScopeType_Local);
    EXPECT_FALSE(v->IsTemplateVariable());
    EXPECT_STREQ(v->GetLinkPath(), L"");
    EXPECT_STREQ(v->GetEntityType(), L"");
    EXPECT_FALSE(v->IsHidden());
    EXPECT_FALSE(v->IsDeployed());
    EXPECT_TRUE(v->IsVisible());
    EXPECT_STREQ(v->GetValue(), L"");
    EXPECT_NE(variable(""), nullptr);
}

TEST_F(FCReader, DataTypeAndTypeOfAVariable) {
    struct Row {
        char const* attributes;
        char const* type; // of the variable's own data type node
        int dataType;
    };
    Row const rows[] = {
        {"DataType=\"Int\" Type=\"Data\"", "Int", EDataType_Int},
        {"DataType=\"Double\" Type=\"Picture\"", "Double", EDataType_Double},
        {"DataType=\"File\" Type=\"Data\"", "File", EDataType_File},
        {"DataType=\"File\" Type=\"dATA\"", "File", EDataType_File},
        // File and file type change places; the name of a file type is no data type.
        {"DataType=\"File\" Type=\"Picture\"", "Picture", EDataType_Int},
        {"DataType=\"fILE\" Type=\"Picture\"", "Picture", EDataType_Int},
        {"DataType=\"File\" Type=\"Double\"", "Double", EDataType_Double},
        {"DataType=\"File\" Type=\"\"", "String", EDataType_String},
        {"DataType=\"File\"", "String", EDataType_String},
        {"DataType=\"\" Type=\"Data\"", "String", EDataType_String},
        {"Type=\"Picture\"", "String", EDataType_String},
        {"DataType=\"Mystery\" Type=\"Data\"", "Mystery", EDataType_Int},
        {"DataType=\"int\" Type=\"Data\"", "int", EDataType_Int},
        {"DataType=\"Files\" Type=\"Picture\"", "Files", EDataType_Int},
    };
    for (Row const& row : rows) {
        CFCVariableData* const v = variable("Name=\"x\" " + std::string(row.attributes));
        EXPECT_EQ(narrow(v->GetDataTypeNode()->GetType()), row.type) << row.attributes;
        EXPECT_EQ(v->GetDataType(), row.dataType) << row.attributes;
    }
}

TEST_F(FCReader, ArrayFlagOfAVariable) {
    struct Row {
        char const* attributes;
        int flag;
        bool isArray;
    };
    Row const rows[] = {
        {"DataType=\"Int\"", 0, false},
        {"DataType=\"Int\" Array=\"Y\"", 1, true},
        {"DataType=\"Int\" Array=\"N\"", 0, false},
        {"DataType=\"Int\" Array=\"Yes\"", 1, true},
        {"DataType=\"Int\" Array=\"true\"", 1, true},
        {"DataType=\"Int\" Array=\"1\"", 1, true},
        {"DataType=\"Int\" Array=\"\"", 0, false},
        {"DataType=\"Array\"", 1, true},
        {"DataType=\"Array\" Array=\"N\"", 1, true},
        {"DataType=\"array\"", 0, false},
        {"DataType=\"IntArray\"", 0, true},
        {"DataType=\"MyArray\"", 0, false},
    };
    for (Row const& row : rows) {
        CFCVariableData* const v = variable("Name=\"x\" Type=\"Data\" " + std::string(row.attributes));
        EXPECT_EQ(v->getArrayFlag(), row.flag) << row.attributes;
        EXPECT_EQ(v->IsArray(), row.isArray) << row.attributes;
    }
}

TEST_F(FCReader, ValueOfAVariable) {
    struct Row {
        char const* inside;
        char const* value;
    };
    Row const rows[] = {
        {"", ""},
        {"abc", "abc"},
        {"  abc \t", "abc"},
        {"a\nb\nc", "a b c"},
        {"\n  a\n\n  b  \n", "a    b"},
        {"   \n ", ""},
        {"a&#13;b", "a\rb"},
        {"&lt;a &amp; b&gt;", "<a & b>"},
        {"x<!-- note -->y", "xy"},
        {"x<![CDATA[<y>]]>z", "x<y>z"},
        {"x<OPTION Value=\"o\">o</OPTION>z", "xz"},
        {"C:\\temp", "C:\\temp"},
    };
    for (Row const& row : rows) {
        CFCVariableData* const v = variable("Name=\"x\" DataType=\"String\"", row.inside);
        EXPECT_EQ(narrow(v->GetValue()), row.value) << row.inside;
    }
    EXPECT_STREQ(variable("Name=\"x\" Value=\"attribute\"", "text")->GetValue(), L"text");
}

TEST_F(FCReader, ValueGoesIntoTheTypedStore) {
    EXPECT_EQ(variable("Name=\"x\" DataType=\"Int\"", "42")->getIntValue(), 42);
    EXPECT_EQ(variable("Name=\"x\" DataType=\"Float\"", "2.5")->getFloatValue(), 2.5F);
    EXPECT_EQ(variable("Name=\"x\" DataType=\"Double\"", "0.25")->getDoubleValue(), 0.25);
}

TEST_F(FCReader, EnumerationsOfAVariableByName) {
    struct Row {
        char const* attributes;
        int status;
        int scope;
    };
    Row const rows[] = {
        {"IOType=\"Input\" Scope=\"Local\"", 0, 0},
        {"IOType=\"Output\" Scope=\"Parent\"", 1, 1},
        {"IOType=\"In-and-Output\" Scope=\"Connected\"", 2, 2},
        {"IOType=\"\" Scope=\"Template\"", 0, 3},
        {"IOType=\"output\" Scope=\"Global\"", 0, 4},
        {"Scope=\"Private\"", 0, 5},
        {"Scope=\"Public\"", 0, 6},
        {"Scope=\"Resolve\"", 0, 7},
        {"Scope=\"global\"", 0, 0},
        {"Scope=\"\"", 0, 0},
    };
    for (Row const& row : rows) {
        CFCVariableData* const v = variable("Name=\"x\" " + std::string(row.attributes));
        EXPECT_EQ(v->GetStatusType(), row.status) << row.attributes;
        EXPECT_EQ(v->GetScopeType(), row.scope) << row.attributes;
    }
}

TEST_F(FCReader, VariablesKeepTheOrderOfTheFile) {
    tree = parseInside("<PROCESS_VARIABLES><VARIABLE Name=\"a\"/><OTHER/><VARIABLE Name=\"b\"/></PROCESS_VARIABLES>"
                       "<VARIABLE Name=\"c\"/><BLOCK Name=\"B\"><VARIABLE Name=\"d\"/></BLOCK>");
    std::string names;
    for (CFCVariableData* const v : variablesOf(tree.get()))
        names += narrow(v->GetVariableName());
    EXPECT_EQ(names, "abc");
    ASSERT_THAT(variablesOf(onlyChild(tree.get())), SizeIs(1));
    EXPECT_EQ(variablesOf(onlyChild(tree.get())).front()->GetParentNode(), onlyChild(tree.get()));
}

TEST_F(FCReader, VariableElementsOfBothKindsInBothLists) {
    struct Row {
        char const* list;
        char const* element;
        bool isTemplate;
        char const* value;
        int options;
    };
    Row const rows[] = {
        {"PROCESS_VARIABLES", "VARIABLE", false, "text", 0},
        {"PROCESS_VARIABLES", "TEMPLATE_VARIABLE", false, "text", 0},
        {"TEMPLATE_VARIABLES", "VARIABLE", false, "text", 0},
        {"TEMPLATE_VARIABLES", "TEMPLATE_VARIABLE", true, "attribute", 2},
        {"PROCESS_VARIABLES", "VARIABLE TemplateVariable=\"true\"", true, "text", 2},
        {"PROCESS_VARIABLES", "TEMPLATE_VARIABLE TemplateVariable=\"true\"", true, "text", 2},
        {"TEMPLATE_VARIABLES", "VARIABLE TemplateVariable=\"true\"", true, "text", 2},
        {"TEMPLATE_VARIABLES", "TEMPLATE_VARIABLE TemplateVariable=\"false\"", true, "attribute", 2},
    };
    for (Row const& row : rows) {
        std::string const name = std::string(row.element).substr(0, std::string(row.element).find(' '));
        tree = parseInside("<" + std::string(row.list) + "><" + row.element +
                           " Name=\"x\" Value=\"attribute\">text<OPTION Value=\"one\">1</OPTION><OPTION>2</OPTION>"
                           "<OPTION Value=\"\"/><OPTION Value=\"two\"/></" +
                           name + "></" + row.list + ">");
        ASSERT_THAT(variablesOf(tree.get()), SizeIs(1)) << row.list << row.element;
        CFCVariableData* const v = variablesOf(tree.get()).front();
        EXPECT_EQ(v->IsTemplateVariable(), row.isTemplate) << row.list << row.element;
        EXPECT_EQ(narrow(v->GetValue()), row.value) << row.list << row.element;
        EXPECT_EQ(v->GetOptionCount(), row.options) << row.list << row.element;
        if (row.options == 2) {
            EXPECT_STREQ(v->GetOption(0), L"one");
            EXPECT_STREQ(v->GetOption(1), L"two");
        }
    }
}

TEST_F(FCReader, ValueAttributeOfATemplateVariable) {
    struct Row {
        char const* attribute;
        char const* text;
        char const* value;
    };
    Row const rows[] = {
        {"Value=\"a\"", "t", "a"},        {"Value=\"\"", "t", "t"},  {"", "t", "t"}, {"Value=\" a \"", "", "a"},
        {"Value=\"a&#10;b\"", "", "a b"}, {"Value=\"  \"", "t", ""}, {"", "", ""}};
    for (Row const& row : rows) {
        CFCVariableData* const v = templateVariable("Name=\"x\" " + std::string(row.attribute), row.text);
        EXPECT_EQ(narrow(v->GetValue()), row.value) << row.attribute << row.text;
    }
}

TEST_F(FCReader, CaptionOfATemplateVariableIsItsDisplayNameOrName) {
    EXPECT_STREQ(templateVariable("Name=\"x\" UserName=\"U\" Caption=\"C\"")->GetCaption(), L"x");
    EXPECT_STREQ(templateVariable("Name=\"x\" DisplayName=\"D\"")->GetCaption(), L"D");
}

TEST_F(FCReader, TreeReadAsAWholeHasItsScopedVariablesLinked) {
    std::string const inside = "<PROCESS_VARIABLES><VARIABLE Name=\"limit\">7</VARIABLE></PROCESS_VARIABLES>"
                               "<BLOCK Name=\"A\"><VARIABLE Name=\"limit\" Scope=\"Parent\"/>"
                               "<VARIABLE Name=\"other\" Scope=\"Global\">limit</VARIABLE></BLOCK>";
    tree = parseInside(inside);
    std::vector<CFCVariableData*> const bound = variablesOf(onlyChild(tree.get()));
    ASSERT_THAT(bound, SizeIs(2));
    EXPECT_EQ(bound[0]->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(bound[0]->GetActualVariableData(), variablesOf(tree.get()).front());
    EXPECT_EQ(bound[1]->GetScopeType(), EScopeType_Connected);
    EXPECT_EQ(bound[1]->GetActualVariableData(), variablesOf(tree.get()).front());

    // A file that is brought in later is left to its caller.
    scratch.write("later.bpt", "<P>" + inside + "</P>");
    Tree const late(CFCNodeFactory().Create(56));
    ASSERT_TRUE(reader.LoadFileNode(scratch.text("later.bpt"), late.get(), false));
    EXPECT_EQ(variablesOf(onlyChild(late.get()))[0]->GetScopeType(), EScopeType_Parent);
}

TEST_F(FCReader, LinkPathIsStoredAndNotResolved) {
    CFCVariableData* const v = variable("Name=\"x\" LinkPath=\"No.Such.Thing\"");
    EXPECT_STREQ(v->GetLinkPath(), L"No.Such.Thing");
    EXPECT_TRUE(v->IsLinked());
    EXPECT_EQ(v->GetActualVariableData(), v);
}

TEST_F(FCReader, LinkLoopsOfAnyLengthAreReadAndEndNowhere) {
    for (int length : {1, 2, 3, 50}) {
        std::string inside = "<PROCESS_VARIABLES>";
        for (int i = 0; i < length; ++i)
            inside += "<VARIABLE Name=\"v" + std::to_string(i) + "\" LinkPath=\".v" + std::to_string((i + 1) % length) +
                      "\"/>";
        tree = parseInside(inside + "</PROCESS_VARIABLES>");
        ASSERT_NE(tree, nullptr);
        EXPECT_THAT(variablesOf(tree.get()), SizeIs(static_cast<std::size_t>(length)));
        EXPECT_FALSE(textOf(tree.get()).empty()) << length;
    }
}

// --- Links to other files ---------------------------------------------------------------------------------------

class FCReaderLinks : public FCReader {
protected:
    std::string link(std::string const& name) const {
        return "<FILE_LINK FileName=\"" + (scratch / name).string() + "\"/>";
    }
    void write(std::string const& name, std::string const& inside) {
        scratch.write(name, "<Linked Name=\"ignored\" Type=\"Report\">" + inside + "</Linked>");
    }
};

TEST_F(FCReaderLinks, LinksBeyondTheDepthStayMarked) {
    write("one.bpt", "<BLOCK Name=\"fromOne\"/><SUB_PROCESS Name=\"S\">" + link("two.bpt") + "</SUB_PROCESS>");
    write("two.bpt", "<BLOCK Name=\"fromTwo\"/>");
    std::string const inside = "<SUB_PROCESS Name=\"L\">" + link("one.bpt") + "</SUB_PROCESS>";

    tree = parseInside(inside, 1);
    IFCNode* linked = onlyChild(tree.get());
    EXPECT_TRUE(linked->IsFileLink());
    EXPECT_FALSE(linked->IsLoaded());
    EXPECT_EQ(narrow(linked->GetFileLinkPath()), (scratch / "one.bpt").string());
    EXPECT_TRUE(linked->CanLoad());
    EXPECT_THAT(childrenOf(linked), IsEmpty());

    tree = parseInside(inside, 2);
    linked = onlyChild(tree.get());
    EXPECT_FALSE(linked->IsFileLink());
    EXPECT_FALSE(linked->IsLoaded());
    EXPECT_EQ(captionsOf(linked), "fromOne S");
    IFCNode* const deeper = childrenOf(linked)[1];
    EXPECT_TRUE(deeper->IsFileLink());
    EXPECT_EQ(narrow(deeper->GetFileLinkPath()), (scratch / "two.bpt").string());
    EXPECT_THAT(childrenOf(deeper), IsEmpty());

    tree = parseInside(inside, 3);
    EXPECT_EQ(captionsOf(childrenOf(onlyChild(tree.get()))[1]), "fromTwo");

    tree = parseInside(inside, 0);
    EXPECT_TRUE(onlyChild(tree.get())->IsFileLink());
    EXPECT_THAT(reader.GetReadFindings(), IsEmpty());
}

TEST_F(FCReaderLinks, DepthCountsLinksAndNotLevels) {
    write("one.bpt", "<BLOCK Name=\"fromOne\"/>");
    tree = parseInside("<SUB_PROCESS Name=\"S\"><SUB_PROCESS Name=\"T\">" + link("one.bpt") + "</SUB_PROCESS>" +
                           "</SUB_PROCESS><SUB_PROCESS Name=\"U\">" + link("one.bpt") + "</SUB_PROCESS>",
                       2);
    EXPECT_EQ(captionsOf(onlyChild(childrenOf(tree.get())[0])), "fromOne");
    EXPECT_EQ(captionsOf(childrenOf(tree.get())[1]), "fromOne");
}

TEST_F(FCReaderLinks, LinkFillsTheNodeAroundItWithTheChildrenOfTheFile) {
    write("one.bpt", "<BLOCK Name=\"A\"/><PROCESS_VARIABLES><VARIABLE Name=\"v\"/></PROCESS_VARIABLES>"
                     "<FLAGS Undo=\"true\" Reference=\"0\"/>");
    tree =
        parseInside("<FILE_LINK Name=\"Renamed\" FILE=\"f\" FileName=\"" + (scratch / "one.bpt").string() + "\"/>", 2);
    EXPECT_EQ(captionsOf(tree.get()), "A");
    EXPECT_THAT(variablesOf(tree.get()), SizeIs(1));
    EXPECT_TRUE(tree->GetFCBlockData()->GetUndoFlag());
    EXPECT_STREQ(tree->GetNodeCaption(), L"Renamed");
    EXPECT_STREQ(tree->GetItemFilePath(), L"f");
    // The attributes of the linked root do not count.
    EXPECT_EQ(tree->GetProjectType(), EProjectType_BPT);
}

TEST_F(FCReaderLinks, LinkWithoutAFileNameIsSkipped) {
    tree = parseInside("<FILE_LINK Name=\"N\"/><FILE_LINK FileName=\"\"/><FILE_LINK_LIB/><BLOCK Name=\"A\"/>", 2);
    EXPECT_EQ(captionsOf(tree.get()), "A");
    EXPECT_EQ(tree->GetNodeType(), 73);
    EXPECT_STREQ(tree->GetNodeCaption(), L"N");
    EXPECT_FALSE(tree->IsFileLink());
}

TEST_F(FCReaderLinks, MissingAndBrokenFilesLeaveTheNodeEmptyAndAreFound) {
    scratch.write("broken.bpt", "<P><BLOCK Name=\"A\"/>");
    tree = parseInside("<SUB_PROCESS Name=\"S\">" + link("missing.bpt") + "</SUB_PROCESS><SUB_PROCESS Name=\"T\">" +
                           link("broken.bpt") + "</SUB_PROCESS><BLOCK Name=\"after\"/>",
                       2);
    ASSERT_THAT(childrenOf(tree.get()), SizeIs(3));
    IFCNode* const missing = childrenOf(tree.get())[0];
    IFCNode* const broken = childrenOf(tree.get())[1];
    EXPECT_THAT(childrenOf(missing), IsEmpty());
    EXPECT_THAT(childrenOf(broken), IsEmpty());
    EXPECT_FALSE(missing->IsFileLink());
    ASSERT_THAT(reader.GetReadFindings(), SizeIs(2));
    EXPECT_EQ(reader.GetReadFindings()[0].kind, CFCReadFinding::FileNotRead);
    EXPECT_EQ(reader.GetReadFindings()[0].node, missing);
    EXPECT_EQ(narrow(reader.GetReadFindings()[0].first), (scratch / "missing.bpt").string());
    EXPECT_EQ(reader.GetReadFindings()[1].kind, CFCReadFinding::FileNotRead);
    EXPECT_EQ(reader.GetReadFindings()[1].node, broken);
    EXPECT_TRUE(reader.GetReadFindings()[0].second.IsEmpty());
    EXPECT_THAT(narrow(reader.GetReadFindings()[1].second), StartsWith("line 1, column 21: "));
}

TEST_F(FCReaderLinks, NewReaderLoadsTheFirstFileAndMarksItsLinks) {
    write("one.bpt", "<BLOCK Name=\"A\"/><SUB_PROCESS Name=\"S\">" + link("two.bpt") + "</SUB_PROCESS>");
    write("two.bpt", "<BLOCK Name=\"B\"/>");
    OpenDocumentReader fresh;
    fresh.SetNodeFactory(factory);
    tree.reset(CFCNodeFactory().Create(61));
    EXPECT_TRUE(fresh.LoadFileNode(scratch.text("one.bpt"), tree.get(), true));
    EXPECT_EQ(captionsOf(tree.get()), "A S");
    EXPECT_TRUE(childrenOf(tree.get())[1]->IsFileLink());
    EXPECT_FALSE(fresh.LoadFileNode(scratch.text("missing.bpt"), tree.get(), true));
    EXPECT_FALSE(fresh.LoadFileNode(scratch.text("one.bpt"), nullptr, true));
    EXPECT_FALSE(fresh.LoadFileNode(nullptr, tree.get(), true));
}

TEST_F(FCReaderLinks, ReaderThatStaysMayFollowAnyNumberOfLinks) {
    write("one.bpt", "");
    OpenDocumentReader fresh;
    fresh.SetNodeFactory(factory);
    tree.reset(CFCNodeFactory().Create(61));
    for (int i = 0; i < 4100; ++i)
        fresh.LoadFileNode(scratch.text("one.bpt"), tree.get(), false);
    EXPECT_FALSE(tree->IsFileLink());
}

TEST_F(FCReaderLinks, ElementWithAFileIsReadFromThere) {
    write("one.bpt", "<BLOCK Name=\"fromFile\"/>");
    tree = parseInside("<PROCESS Name=\"P\" Type=\"TASK\" ProjectDirectory=\"d\" FILE=\"" +
                           (scratch / "one.bpt").string() +
                           "\"><BLOCK Name=\"inline\"/></PROCESS><BLOCK Name=\"B\"/>"
                           "<CONNECTOR StartBlock=\"P\" EndBlock=\"B\" Version=\"1\"/>",
                       2);
    IFCNode* const process = childrenOf(tree.get())[0];
    EXPECT_EQ(process->GetNodeType(), 160);
    EXPECT_EQ(captionsOf(process), "fromFile");
    EXPECT_STREQ(process->GetNodeCaption(), L"P");
    EXPECT_STREQ(process->GetNodeId(), L"");
    EXPECT_EQ(narrow(process->GetItemFilePath()), (scratch / "one.bpt").string());
    EXPECT_STREQ(CFCPointerConverter::GetProcessNode(process)->getProjectDirectory(), L"");
    EXPECT_THAT(connectorsOf(tree.get()), IsEmpty());
}

TEST_F(FCReaderLinks, ProcessWithAFileTakesOverThatTheNewestChildOfTheRootHasANewPath) {
    class NewPaths : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override {
            IFCNode* const node = CFCNodeFactory::Create(type);
            if (type == 71)
                node->SetNewPath(isNew);
            return node;
        }
        bool isNew = true;
    } newPaths;
    factory = &newPaths;
    write("one.bpt", "<BLOCK Name=\"A\"/>");
    std::string const inside =
        "<SUB_GRP Name=\"G\"><PROCESS FILE=\"" + (scratch / "one.bpt").string() + "\"/></SUB_GRP>";
    tree = parseInside(inside, 2);
    EXPECT_TRUE(onlyChild(onlyChild(tree.get()))->IsNewPath());
    newPaths.isNew = false;
    tree = parseInside(inside, 2);
    EXPECT_FALSE(onlyChild(onlyChild(tree.get()))->IsNewPath());
    // At the top the newest child is the process itself.
    tree = parseInside("<PROCESS FILE=\"" + (scratch / "one.bpt").string() + "\"/>", 2);
    EXPECT_FALSE(onlyChild(tree.get())->IsNewPath());
}

TEST_F(FCReaderLinks, OldCoordinatesStayBehindALinkInBothDirections) {
    std::string const block =
        "<BLOCK Name=\"X\"><DIMENSION Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\"/></BLOCK>";
    write("old.fmr", block);
    write("new.bpt", block);
    tree =
        parseInside(block + "<SUB_PROCESS Name=\"S\">" + link("old.fmr") + "</SUB_PROCESS>" + block, 2, "parent.bpt");
    EXPECT_EQ(rectOf(childrenOf(tree.get())[0]), "100 700 400 1100");
    EXPECT_EQ(rectOf(onlyChild(childrenOf(tree.get())[1])), "1 2 4 6");
    EXPECT_EQ(rectOf(childrenOf(tree.get())[2]), "1 2 4 6");
    tree =
        parseInside(block + "<SUB_PROCESS Name=\"S\">" + link("new.bpt") + "</SUB_PROCESS>" + block, 2, "parent.fmr");
    EXPECT_EQ(rectOf(childrenOf(tree.get())[0]), "1 2 4 6");
    EXPECT_EQ(rectOf(onlyChild(childrenOf(tree.get())[1])), "100 700 400 1100");
    EXPECT_EQ(rectOf(childrenOf(tree.get())[2]), "100 700 400 1100");
    // A link that is not followed changes nothing.
    tree = parseInside("<SUB_PROCESS Name=\"S\">" + link("old.fmr") + "</SUB_PROCESS>" + block, 1, "parent.bpt");
    EXPECT_EQ(rectOf(childrenOf(tree.get())[1]), "100 700 400 1100");
}

TEST_F(FCReaderLinks, FilesThatLinkToThemselvesEnd) {
    scratch.write("self.bpt", "<P><SUB_PROCESS Name=\"S\">" + link("self.bpt") + "</SUB_PROCESS></P>");
    tree = parseFile("self.bpt", 1000000);
    ASSERT_NE(tree, nullptr);
    int depth = 0;
    IFCNode* node = tree.get();
    for (std::vector<IFCNode*> children = childrenOf(node); !children.empty(); children = childrenOf(node)) {
        node = children.front();
        ++depth;
    }
    EXPECT_EQ(depth, 33);
    EXPECT_TRUE(node->IsFileLink());
    EXPECT_FALSE(node->IsLoaded());
}

TEST_F(FCReaderLinks, FilesThatLinkToThemselvesTwiceEndBelowTheBound) {
    std::string const twice = "<SUB_PROCESS Name=\"S\">" + link("twice.bpt") + "</SUB_PROCESS>";
    scratch.write("twice.bpt", "<P>" + twice + twice + "</P>");
    tree = parseFile("twice.bpt", 1000000);
    ASSERT_NE(tree, nullptr);
    // Each load brings two sub-processes: those of the document, and those of 4,096 loads.
    EXPECT_EQ(CFCNodeHelper::GetBlockCount(tree.get()), 2 + 2 * 4097);
}

TEST_F(FCReaderLinks, FilesThatLinkToEachOtherEnd) {
    write("ping.bpt", "<PROCESS Name=\"P\" FILE=\"" + (scratch / "pong.bpt").string() + "\"/>");
    write("pong.bpt", "<PROCESS Name=\"Q\" FILE=\"" + (scratch / "ping.bpt").string() + "\"/>");
    tree = parseInside(link("ping.bpt"), 1000000);
    ASSERT_NE(tree, nullptr);
    int depth = 0;
    IFCNode* node = tree.get();
    for (std::vector<IFCNode*> children = childrenOf(node); !children.empty(); children = childrenOf(node)) {
        node = children.front();
        ++depth;
    }
    EXPECT_EQ(depth, 32);
    EXPECT_TRUE(node->IsFileLink());
}

TEST_F(FCReaderLinks, NestingCountsAcrossLinks) {
    // 30 files of 100 levels each: what lies deeper than one file may be stays unread.
    std::string open;
    std::string close;
    for (int i = 0; i < 100; ++i) {
        open += "<SUB_GRP Name=\"G\">";
        close += "</SUB_GRP>";
    }
    scratch.write("deep.bpt", "<P>" + open + link("deep.bpt") + close + "</P>");
    tree = parseFile("deep.bpt", 30);
    ASSERT_NE(tree, nullptr);
    int depth = 0;
    IFCNode* node = tree.get();
    for (std::vector<IFCNode*> children = childrenOf(node); !children.empty(); children = childrenOf(node)) {
        node = children.front();
        ++depth;
    }
    EXPECT_GT(depth, 1000);
    EXPECT_LE(depth, 1025);
}

TEST_F(FCReaderLinks, CaptionOfALibraryFolderGivesItsType) {
    struct Row {
        char const* caption;
        int type;
        int location;
    };
    class Folders : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override { return CFCNodeFactory::Create(type == 71 ? 70 : type); }
    } folders;
    Row const rows[] = {{"Default Blocks", 74, 0},
                        {"Existing Process Blocks", 76, 2},
                        {"Existing BPM Blocks", 160, 2},
                        {"Library Blocks", 75, 0},
                        {"Macro Blocks", 77, 1},
                        {"default blocks", 73, 0},
                        {"Others", 73, 0}};
    for (Row const& row : rows) {
        // File nodes store a location, as a host's folders may.
        factory = &folders;
        tree = parseInside(
            "<SUB_GRP Name=\"" + std::string(row.caption) + "\"><FILE_LINK_LIB Name=\"Macro Blocks\"/></SUB_GRP>", 2);
        IFCNode* const folder = onlyChild(tree.get());
        EXPECT_EQ(folder->GetNodeType(), row.type) << row.caption;
        EXPECT_EQ(folder->GetNodeLocationType(), row.location) << row.caption;
        EXPECT_STREQ(folder->GetNodeCaption(), L"Macro Blocks") << row.caption;
        factory = &plainFactory;
        tree = parseInside("<SUB_GRP Name=\"" + std::string(row.caption) + "\"><FILE_LINK_LIB/></SUB_GRP>", 2);
        EXPECT_EQ(onlyChild(tree.get())->GetNodeLocationType(), 0) << row.caption;
    }
}

TEST_F(FCReaderLinks, ExistingBlocksComeFromTheCommonListAndThenFromTheUsers) {
    write("base/process.lst", "<SUB_GRP Name=\"common\"/>");
    write("user/process.lst", "<SUB_GRP Name=\"own\"/>");
    write("base/BPMProcess.lst", "<SUB_GRP Name=\"commonBPM\"/>");
    write("user/BPMProcess.lst", "<SUB_GRP Name=\"ownBPM\"/>");
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("user"));
    std::string const file = "<FILE_LINK_LIB FileName=\"Process.lst\"/>";
    tree = parseInside("<SUB_GRP Name=\"Existing Process Blocks\">" + file +
                           "</SUB_GRP>"
                           "<SUB_GRP Name=\"Existing BPM Blocks\">" +
                           file + "</SUB_GRP>",
                       2);
    EXPECT_EQ(captionsOf(childrenOf(tree.get())[0]), "common own");
    EXPECT_EQ(captionsOf(childrenOf(tree.get())[1]), "commonBPM ownBPM");
    EXPECT_FALSE(childrenOf(tree.get())[0]->IsNewPath());

    // A name that is found is read twice.
    write("here.lst", "<SUB_GRP Name=\"here\"/>");
    tree = parseInside("<SUB_GRP Name=\"Existing Process Blocks\"><FILE_LINK_LIB FileName=\"" +
                           (scratch / "here.lst").string() +
                           "\"/></SUB_GRP><SUB_GRP Name=\"Library Blocks\"><FILE_LINK_LIB FileName=\"" +
                           (scratch / "here.lst").string() + "\"/></SUB_GRP>",
                       2);
    EXPECT_EQ(captionsOf(childrenOf(tree.get())[0]), "here here");
    EXPECT_EQ(captionsOf(childrenOf(tree.get())[1]), "here");
}

TEST_F(FCReaderLinks, PlaceOfAFileThatIsNotWhereItsPathSays) {
    struct Row {
        int type;
        bool isNewPath;
        char const* found;
    };
    write("base/process.lst", "<SUB_GRP Name=\"common\"/>");
    write("user/process.lst", "<SUB_GRP Name=\"own\"/>");
    write("base/BPMProcess.lst", "<SUB_GRP Name=\"commonBPM\"/>");
    write("user/BPMProcess.lst", "<SUB_GRP Name=\"ownBPM\"/>");
    write("base/named.bpt", "<SUB_GRP Name=\"named\"/>");
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("user"));
    Row const rows[] = {{76, false, "common"},  {76, true, "own"},      {160, false, "commonBPM"},
                        {160, true, "ownBPM"},  {150, false, "ownBPM"}, {150, true, "ownBPM"},
                        {154, false, "ownBPM"}, {167, false, "ownBPM"}, {168, false, "named"},
                        {57, false, "named"},   {73, false, "named"},   {149, true, "named"}};
    for (Row const& row : rows) {
        OpenDocumentReader fresh;
        fresh.SetNodeFactory(factory);
        tree.reset(CFCNodeFactory().Create(61));
        tree->SetNodeType(row.type);
        tree->SetNewPath(row.isNewPath);
        EXPECT_TRUE(fresh.LoadFileNode(L"named.bpt", tree.get(), false)) << row.type;
        EXPECT_EQ(captionsOf(tree.get()), row.found) << row.type << row.isNewPath;
    }
    write("user/named.bpt", "<SUB_GRP Name=\"usersNamed\"/>");
    tree.reset(CFCNodeFactory().Create(61));
    EXPECT_TRUE(reader.CTXMLBaseReader::Initialize(scratch.text("user/named.bpt")));
    OpenDocumentReader fresh;
    fresh.SetNodeFactory(factory);
    EXPECT_TRUE(fresh.LoadFileNode(L"named.bpt", tree.get(), false));
    EXPECT_EQ(captionsOf(tree.get()), "usersNamed");
}

TEST_F(FCReaderLinks, MacroFilesAreFoundByTheHost) {
    class Macros : public CFCNodeFactory {
    public:
        wchar_t const* GetMacroPath(wchar_t const* name) override {
            asked.push_back(narrow(name));
            return path;
        }
        TuString path;
        std::vector<std::string> asked;
    } macros;
    write("macro.bpt", "<BLOCK Name=\"macro\"/>");
    macros.path = scratch.text("macro.bpt");
    OpenDocumentReader fresh;
    fresh.SetNodeFactory(&macros);
    tree.reset(CFCNodeFactory().Create(70));
    tree->SetNodeLocationType(1);
    EXPECT_TRUE(fresh.LoadFileNode(L"any.bpt", tree.get(), false));
    EXPECT_EQ(captionsOf(tree.get()), "macro");
    EXPECT_THAT(macros.asked, ElementsAre(""));
    // The base factory knows no macros.
    fresh.SetNodeFactory(&plainFactory);
    EXPECT_FALSE(fresh.LoadFileNode(L"any.bpt", tree.get(), false));
}

// --- Container, hooks and the early exit ------------------------------------------------------------------------

TEST_F(FCReaderLinks, ContainerSeesEveryNodeAfterItsDescendantsAndTheRootLast) {
    write("one.bpt", "<BLOCK Name=\"linked\"/>");
    RecordingContainer container;
    reader.SetContainer(&container);
    tree = parseInside("<SUB_PROCESS Name=\"S\"><BLOCK Name=\"A\"/><BLOCK Name=\"B\"/>"
                       "<CONNECTOR StartBlock=\"A\" EndBlock=\"B\" Version=\"1\"/></SUB_PROCESS><SUB_GRP Name=\"G\"/>"
                       "<SUB_PROCESS Name=\"T\">" +
                           link("one.bpt") + link("one.bpt") + "</SUB_PROCESS>",
                       2);
    EXPECT_THAT(container.names,
                ElementsAre("A", "B", "connector", "S", "G", "linked", "T", "linked", "T", "T", "Root"));
    EXPECT_EQ(container.nodes.back(), tree.get());
}

class Drawn : public CFCBlockNode {
public:
    void TransferToDraw() override { drawn += narrow(GetNodeCaption()); }
    static inline std::string drawn;
};

TEST_F(FCReader, NodesAreDrawnBeforeTheContainerSeesThem) {
    class Factory : public CFCNodeFactory {
    public:
        IFCNode* Create(int type) override {
            if (type != 57)
                return CFCNodeFactory::Create(type);
            auto node = std::make_unique<Drawn>();
            node->SetNodeType(type);
            return node.release();
        }
    } drawnFactory;
    class Container : public CFCBaseContainer {
    public:
        void Attach(IFCNode* node) override {
            if (node->GetNodeType() == 57)
                Drawn::drawn += "!";
        }
    } container;
    factory = &drawnFactory;
    reader.SetContainer(&container);
    Drawn::drawn.clear();
    tree = parseInside("<BLOCK Name=\"A\"><BLOCK Name=\"B\"/></BLOCK><BLOCK Name=\"C\"/>");
    EXPECT_EQ(Drawn::drawn, "B!A!C!");
}

// A folder with block data that belongs to no block.
class Loose : public CFCSubGroupNode {
public:
    CFCBlockData* GetFCBlockData() override { return &data; }
    void TransferToDraw() override { ++drawn; }
    CFCBlockData data;
    int drawn = 0;
};

class LooseFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int type) override {
        if (type != 71)
            return CFCNodeFactory::Create(type);
        auto node = std::make_unique<Loose>();
        node->SetNodeType(type);
        return node.release();
    }
};

TEST_F(FCReader, ScriptOfBlockDataOutsideANodeEndsTheReadingOfItsElement) {
    LooseFactory looseFactory;
    factory = &looseFactory;
    RecordingContainer container;
    reader.SetContainer(&container);
    tree = parseInside("<SUB_GRP Name=\"G\"><FLAGS Undo=\"true\"/><BLOCK Name=\"before\"/><SCRIPT Name=\"S\"/>"
                       "<FLAGS Undo=\"false\"/><BLOCK Name=\"after\"/></SUB_GRP><BLOCK Name=\"next\"/>");
    EXPECT_EQ(captionsOf(tree.get()), "G next");
    auto* const loose = dynamic_cast<Loose*>(childrenOf(tree.get())[0]);
    EXPECT_EQ(captionsOf(loose), "before");
    EXPECT_TRUE(loose->data.GetUndoFlag());
    EXPECT_EQ(loose->drawn, 0);
    EXPECT_STREQ(loose->data.GetScriptName(), L"");
    EXPECT_THAT(container.names, ElementsAre("before", "next", "Root"));
}

TEST_F(FCReader, LoadTellsOfTheEarlyExit) {
    scratch.write("script.xml", "<P><SCRIPT Name=\"S\"/></P>");
    scratch.write("plain.xml", "<P><FLAGS/></P>");
    reader.SetNodeFactory(factory);
    Loose loose;
    for (bool const hasScript : {false, true}) {
        xercesc::DOMDocument* document = nullptr;
        ASSERT_TRUE(reader.InitXML(scratch.text(hasScript ? "script.xml" : "plain.xml"), &document));
        EXPECT_EQ(reader.Load(document->getDocumentElement(), &loose, nullptr), !hasScript);
        document->release();
    }
    EXPECT_EQ(loose.drawn, 1);
    EXPECT_TRUE(reader.Load(nullptr, &loose, nullptr));
}

TEST_F(FCReader, HooksOfASubclassAreUsedAtEveryLevel) {
    class Hooked : public OpenDocumentReader {
    public:
        void LoadPropertiesLite(xercesc::DOMElement*, IFCNode* node) override { node->SetNodeCaption(L"lite"); }
        void LoadCode(xercesc::DOMElement*, IFCNode* node) override { node->SetNodeCode(L"code"); }
    } hooked;
    hooked.SetNodeFactory(factory);
    scratch.write("hooked.bpt", "<P><SUB_GRP Name=\"G\"><CODE Name=\"C\">text</CODE></SUB_GRP></P>");
    IFCNode* node = nullptr;
    ASSERT_TRUE(hooked.Parse(scratch.text("hooked.bpt"), &node, 1));
    tree.reset(node);
    EXPECT_EQ(captionsOf(node), "lite");
    EXPECT_STREQ(onlyChild(onlyChild(node))->GetNodeCode(), L"code");
}

TEST_F(FCReader, PublicStepsTakeNullArguments) {
    scratch.write("v.xml",
                  "<P FILE=\"\"><VARIABLE Name=\"v\"/><OPTION Value=\"o\"/><CONNECTOR><POINT/></CONNECTOR></P>");
    reader.SetNodeFactory(factory);
    xercesc::DOMDocument* document = nullptr;
    ASSERT_TRUE(reader.InitXML(scratch.text("v.xml"), &document));
    xercesc::DOMElement* const root = document->getDocumentElement();
    CFCSubGroupNode folder;
    CFCVariableData lone;
    reader.LoadProperties(root, nullptr);
    reader.LoadRootProperties(root, nullptr);
    reader.LoadRootProperties(root, &folder);
    reader.LoadPropertiesLite(root, nullptr);
    reader.LoadCode(root, nullptr);
    reader.LoadVariables(root, nullptr, true);
    reader.LoadVariable(root, &folder, true);
    reader.LoadVariableOptions(root, nullptr);
    reader.LoadVariableOption(root, &lone);
    reader.LoadVariableOptions(root, &lone);
    reader.LoadVariableOptions(nullptr, &lone);
    EXPECT_EQ(lone.GetOptionCount(), 1);
    Tree const block(CFCNodeFactory().Create(57));
    reader.LoadVariable(nullptr, block.get(), false);
    EXPECT_THAT(variablesOf(block.get()), IsEmpty());
    EXPECT_TRUE(reader.LoadPoints(root, nullptr, nullptr, 1));
    EXPECT_FALSE(reader.LoadPointsOld(root, nullptr, nullptr));
    CFCConnector loose;
    EXPECT_TRUE(reader.LoadPointsOld(root, nullptr, &loose));
    EXPECT_TRUE(reader.Load(root, nullptr, nullptr));
    EXPECT_STREQ(folder.GetNodeCaption(), L"");
    lone.ReleaseOwnedParts();
    document->release();
}

TEST_F(FCReader, IsFileAsksForAPathThatIsNotEmpty) {
    for (auto const& [text, isFile] : {std::pair("<P FILE=\"x\"/>", true), std::pair("<P FILE=\"\"/>", false),
                                       std::pair("<P/>", false), std::pair("<P File=\"x\"/>", false)}) {
        scratch.write("f.xml", text);
        xercesc::DOMDocument* document = nullptr;
        ASSERT_TRUE(reader.InitXML(scratch.text("f.xml"), &document));
        EXPECT_EQ(reader.IsFile(document->getDocumentElement()), isFile) << text;
        document->release();
    }
    EXPECT_FALSE(reader.IsFile(nullptr));
}

TEST_F(FCReader, OldObjectLookupsFindNothing) {
    int index = 5;
    TuString name(L"n");
    TuString type(L"t");
    auto* found = reinterpret_cast<CDoBaseObject*>(&index);
    EXPECT_FALSE(reader.FindObject(nullptr, name, type, index, &found));
    EXPECT_EQ(found, nullptr);
    found = reinterpret_cast<CDoBaseObject*>(&index);
    EXPECT_FALSE(reader.FindObject(nullptr, name, &found));
    EXPECT_EQ(found, nullptr);
    EXPECT_FALSE(reader.FindObject(nullptr, name, nullptr));
    reader.Format(nullptr);
    reader.ClearFormating();
    reader.ParseFileData();
    EXPECT_EQ(index, 5);
}

TEST_F(FCReader, ReaderCanBeUsedAgain) {
    tree = parseInside("<BLOCK Name=\"A\"/>", 2, "first.fmr");
    tree = parseInside("<BLOCK Name=\"B\"><DIMENSION Point_X=\"1\" Point_Y=\"2\" Width=\"3\" Hight=\"4\"/></BLOCK>");
    EXPECT_EQ(captionsOf(tree.get()), "B");
    EXPECT_EQ(rectOf(onlyChild(tree.get())), "100 700 400 1100");
}

TEST_F(FCReader, LargeContainersGiveTheSameConnectorsAsSmallOnes) {
    // Beyond a few dozen children the names are looked up in an index: the newest of equal ones still wins.
    std::string inside;
    for (int i = 0; i < 300; ++i)
        inside += "<BLOCK Name=\"n" + std::to_string(i % 200) + "\" BlockString=\"" + std::to_string(i) + "\"/>";
    for (int i = 0; i < 199; ++i)
        inside += "<CONNECTOR StartBlock=\"N" + std::to_string(i) + "\" EndBlock=\"n" + std::to_string(i + 1) +
                  "\" Version=\"1\"/>";
    inside += "<BLOCK Name=\"n5\" BlockString=\"late\"/><CONNECTOR StartBlock=\"n5\" EndBlock=\"n5\" Version=\"1\"/>";
    tree = parseInside(inside);
    std::vector<CFCConnector*> const connectors = connectorsOf(tree.get());
    ASSERT_THAT(connectors, SizeIs(200));
    for (int i = 0; i < 199; ++i) {
        std::size_t const at = static_cast<std::size_t>(i);
        EXPECT_EQ(narrow(connectors[at]->GetStartBlockCaption()), std::to_string(i < 100 ? i + 200 : i));
        EXPECT_EQ(narrow(connectors[at]->GetEndBlockCaption()), std::to_string(i + 1 < 100 ? i + 201 : i + 1));
    }
    EXPECT_STREQ(connectors.back()->GetStartBlockCaption(), L"late");
}

} // namespace
