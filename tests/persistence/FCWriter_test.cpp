#include "DocumentTestSupport.h"

#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlFile.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <functional>
#include <map>
#include <stdexcept>

using namespace flowmere::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

Tree newProcess(wchar_t const* caption = L"Root") {
    Tree process(CFCNodeFactory().Create(56));
    process->SetNodeCaption(caption);
    return process;
}

CFCProcessNode* processOf(Tree const& tree) {
    return CFCPointerConverter::GetProcessNode(tree.get());
}

class OpenWriter : public CFCWriter {
public:
    using CFCWriter::m_bDeep;
    using CFCWriter::m_strFilePath;
    using CFCWriter::m_strRootName;
};

class FCWriter : public DocumentTest {
protected:
    // The connector line and its points, as "NumPoints: x,y x,y".
    std::string routeOf(std::function<void(RoutedConnector&)> const& shape) {
        Tree const tree = newProcess();
        CFCBlockNode* const a = addBlock(tree.get(), L"A");
        CFCBlockNode* const b = addBlock(tree.get(), L"B");
        shape(*connect<RoutedConnector>(tree.get(), a, b));
        std::string const file = textOf(tree.get());
        std::string route = attributeIn(lineOf(file, "CONNECTOR"), "NumPoints") + ":";
        for (std::string const& line : linesOf(file, "POINT"))
            route += " " + attributeIn(line, "Location_X") + "," + attributeIn(line, "Location_Y");
        return route;
    }
    // The variable line of a block with one variable.
    std::string variableLine(std::function<void(CFCVariableData&)> const& shape) {
        Tree const tree = newProcess();
        shape(*addVariable(tree.get(), L"v"));
        return lineOf(textOf(tree.get()), "VARIABLE");
    }
    std::string templateLine(std::function<void(CFCVariableData&)> const& shape) {
        Tree const tree = newProcess();
        CFCVariableData* const v = addVariable(tree.get(), L"v");
        v->SetTemplateVariable(1);
        shape(*v);
        return lineOf(textOf(tree.get()), "TEMPLATE_VARIABLE");
    }
};

// --- Whole files ------------------------------------------------------------------------------------------------

TEST_F(FCWriter, NewProcess) {
    Tree const tree(CFCNodeFactory().Create(56));
    expectGolden("new_process.bpt", textOf(tree.get()));
}

TEST_F(FCWriter, BlockByItself) {
    Tree const tree(CFCNodeFactory().Create(58));
    IFCNode* const node = tree.get();
    node->SetNodeId(L"Check");
    node->SetNodeCaption(L"Is it safe?");
    node->SetTuRect(100, 200, 250, 260);
    addVariable(node, L"limit", L"0.95");
    expectGolden("single_block.bpt", textOf(node, false));
}

// A process with one of everything.
Tree makePlant() {
    Tree tree = newProcess(L"Plant");
    CFCProcessNode* const process = processOf(tree);
    process->setProjectDirectory(L"C:\\projects\\plant");
    process->setSaveRestoreScript(L"Restore");
    process->setSaveRestoreScriptType(EScriptType_TCMD);
    process->SetProjectType(EProjectType_Execute);
    process->SetNodeProcessID(12);
    process->setProcessFlowType(L"Loop");
    process->setRandomExecutionStatus(true);
    process->setModelDependency(true);
    process->SerializeVariablesToTNB(true);
    process->SetCOMInteface(L"iface");
    process->SetCOMCommand(L"run");
    process->SetExecuteMethod(L"go");
    CFCVariableData* const pressure = addVariable(process, L"pressure", L"2.5");
    pressure->SetDataType(EDataType_Double);
    pressure->GetDataTypeNode()->SetType(L"Double");
    CFCVariableData* const fluid = addVariable(process, L"fluid", L"water");
    fluid->SetTemplateVariable(1);
    fluid->SetCaption(L"Working fluid");
    fluid->AddOption(L"water");
    fluid->AddOption(L"oil & air");

    CFCBlockNode* const pump = addBlock(process, L"Pump");
    pump->SetTuRect(100, 100, 200, 150);
    pump->SetScriptName(L"Plant.Pump");
    pump->SetToolTip(L"Moves the fluid");
    addVariable(pump, L"head", L"C:\\data\\head.txt")->SetLinkPath(L".pressure");
    CFCBlockNode* const valve = addBlock(process, L"Valve", 58);
    valve->SetTuRect(100, 300, 200, 350);
    valve->SetExecutionStateType(EExecutionStateType_Skipped);
    CFCBlockNode* const loop = addBlock(process, L"Loop", 61);
    CFCBlockNode* const inner = addBlock(loop, L"Inner", 59);
    CFCBlockNode* const last = addBlock(loop, L"Last", 55);
    connect(loop, inner, last);
    addChild(process, 71, L"", L"Notes");
    CFCBlockNode* const task = addBlock(process, L"Approve", 150);
    dynamic_cast<CFCBPMTaskNode*>(task)->SetFailedReason(L"not signed");
    task->GetBPMBlockData()->SetTaskDescription(L"Sign it");
    task->GetBPMBlockData()->SetApplication(L"Mailer");
    connect(process, pump, valve)->SetStarPortName(L"never written");
    RoutedConnector* const back = connect<RoutedConnector>(process, valve, pump, 4, 8);
    back->hasStart = back->hasEnd = true;
    back->start = {200, 325};
    back->points = {{200, 325}, {260, 325}, {260, 125}};
    back->end = {90, 125};
    return tree;
}

TEST_F(FCWriter, ProcessWithOneOfEverything) {
    Tree const tree = makePlant();
    expectGolden("plant.bpt", textOf(tree.get()));
}

TEST_F(FCWriter, ProcessWithoutItsDepths) {
    Tree const tree = makePlant();
    std::string const file = textOf(tree.get(), false);
    expectGolden("plant_flat.bpt", file);
    EXPECT_EQ(outlineOf(file),
              "0Process 1TEMPLATE_VARIABLES 2TEMPLATE_VARIABLE 3OPTION 3OPTION 1PROCESS_VARIABLES 2VARIABLE ");
}

TEST_F(FCWriter, OrderOfTheElementsOfAnObject) {
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A", 150);
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    connect(tree.get(), a, b);
    connect(tree.get(), b, a);
    addVariable(a, L"v");
    CFCBlockNode* const x = addBlock(a, L"X");
    CFCBlockNode* const y = addBlock(a, L"Y");
    connect(a, x, y);
    std::string const file = textOf(tree.get());
    std::string const block = "2DIMENSION 2FLAGS 2PORT ";
    std::string const inner = "3DIMENSION 3FLAGS 3PORT ";
    EXPECT_EQ(outlineOf(file),
              "0Process 1TEMPLATE_VARIABLES 1PROCESS_VARIABLES 1task-node " + block +
                  "2IN_PORT 2OUT_PORT 2HELP 2BPM 2APPLICATION 2SCRIPT 2BORDER 2FONT 2VARIABLE 2BLOCK " + inner +
                  "3OUT_PORT 3HELP 3SCRIPT 3BORDER 3FONT 2BLOCK " + inner +
                  "3IN_PORT 3HELP 3SCRIPT 3BORDER 3FONT 2CONNECTOR 1BLOCK " + block +
                  "2IN_PORT 2OUT_PORT 2HELP 2SCRIPT 2BORDER 2FONT 1CONNECTOR 1CONNECTOR ");
}

// --- Names ------------------------------------------------------------------------------------------------------

std::map<int, std::string> const kElements = {{0, "UnKnown"},        {55, "BLOCK"},
                                              {56, "PROCESS"},       {57, "BLOCK"},
                                              {58, "BLOCK"},         {59, "BLOCK"},
                                              {60, "SUB_PROCESS"},   {61, "SUB_PROCESS"},
                                              {69, "PROCESS"},       {70, "PROCESS"},
                                              {71, "SUB_GRP"},       {75, "PROCESS"},
                                              {80, "DATATYPE"},      {81, "GROUP"},
                                              {82, "SUB_GROUP"},     {150, "task-node"},
                                              {153, "task-node"},    {154, "start-state"},
                                              {155, "end-state"},    {156, "fork"},
                                              {157, "join"},         {160, "process-definition"},
                                              {161, "super-state"},  {162, "task-node"},
                                              {163, "task-node"},    {164, "task-node"},
                                              {165, "task-node"},    {167, "task-node"},
                                              {172, "PACKAGE"},      {176, "FAVOURITES"},
                                              {177, "DOCUMENT"},     {178, "HISTORY"},
                                              {179, "CUSTOM_FOLDER"}};

TEST_F(FCWriter, ElementNameOfEveryNodeType) {
    CFCWriter writer;
    Tree const tree(CFCNodeFactory().Create(57));
    for (int type = -1; type <= 300; ++type) {
        tree->SetNodeType(type);
        TuString name(L"untouched");
        auto const row = kElements.find(type);
        EXPECT_EQ(writer.GetObjectType(tree.get(), name), row != kElements.end()) << type;
        EXPECT_EQ(narrow(name), row != kElements.end() ? row->second : "untouched") << type;
    }
    TuString name;
    EXPECT_FALSE(writer.GetObjectType(nullptr, name));
}

TEST_F(FCWriter, NodesOfTypesWithoutANameVanishWithAllBelow) {
    for (int type = 1; type <= 200; ++type) {
        Tree const tree = newProcess();
        CFCBlockNode* const node = addBlock(tree.get(), L"N");
        addBlock(node, L"Below");
        node->SetNodeType(type);
        std::string const file = textOf(tree.get());
        auto const row = kElements.find(type);
        bool const isWritten = row != kElements.end() && type != 176 && type != 178;
        EXPECT_EQ(file.find("Below") != std::string::npos, isWritten) << type;
        if (isWritten) {
            EXPECT_THAT(linesOf(file, row->second), SizeIs(row->second == "BLOCK" ? 2 : 1)) << type;
        }
    }
}

TEST_F(FCWriter, ShapeNameOfEveryNodeType) {
    std::map<int, std::string> const shapes = {{55, "Oval"},
                                               {57, "Rectangle"},
                                               {58, "Decision"},
                                               {59, "RoundRect"},
                                               {60, "Rectangle"},
                                               {61, "Rectangle"},
                                               {150, "ApplicationTask"},
                                               {151, "UserTask"},
                                               {152, "AutomationTask"},
                                               {153, "DecisionTask"},
                                               {154, "StartState"},
                                               {155, "EndState"},
                                               {156, "Fork"},
                                               {157, "Join"},
                                               {158, "Mail"},
                                               {159, "ESB"},
                                               {160, "ProcessState"},
                                               {161, "SuperState"},
                                               {162, "SubProcessLoop"},
                                               {163, "DecisionLoop"},
                                               {164, "SpawningLoop"},
                                               {165, "BasicSubProcess"},
                                               {167, "ClientApplication"},
                                               {176, "Favourites"},
                                               {177, "Document"}};
    CFCWriter writer;
    Tree const tree(CFCNodeFactory().Create(57));
    for (int type = 0; type <= 200; ++type) {
        tree->SetNodeType(type);
        TuString name(L"untouched");
        auto const row = shapes.find(type);
        EXPECT_EQ(writer.GetShapeType(tree.get(), name), row != shapes.end()) << type;
        EXPECT_EQ(narrow(name), row != shapes.end() ? row->second : "untouched") << type;
    }
    TuString name;
    EXPECT_FALSE(writer.GetShapeType(nullptr, name));
}

TEST_F(FCWriter, ShapeIsEmptyForATypeWithoutOne) {
    Tree const tree = newProcess();
    addChild(tree.get(), 71, L"", L"Folder");
    EXPECT_EQ(lineOf(textOf(tree.get()), "DIMENSION"),
              "<DIMENSION Order=\"0\" ReferencePoint_X=\"0\" ReferencePoint_Y=\"0\" Shape=\"\" Version=\"1\"/>");
}

TEST_F(FCWriter, UserTaskIsLostAndItsConnectorIsNot) {
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const user = addBlock(tree.get(), L"User", 151);
    addBlock(user, L"Below");
    connect(tree.get(), a, user);
    std::string const file = textOf(tree.get());
    EXPECT_THAT(file, testing::Not(HasSubstr("Below")));
    EXPECT_EQ(attributeIn(lineOf(file, "CONNECTOR"), "EndBlock"), "User");
    EXPECT_THAT(linesOf(file, "OUT_PORT"), SizeIs(1));
    Tree const again = parse(file);
    EXPECT_EQ(captionsOf(again.get()), "A");
    EXPECT_THAT(connectorsOf(again.get()), IsEmpty());
    EXPECT_THAT(reader.GetReadFindings(), SizeIs(1));
}

// --- Objects ----------------------------------------------------------------------------------------------------

TEST_F(FCWriter, AttributesOfAnObject) {
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A", 150);
    block->SetNodeCaption(L"Text");
    block->SetExecutionStateType(EExecutionStateType_Executed);
    block->SetItemFilePath(L"C:\\a.bpt");
    block->SetImage(true);
    block->SetRelativeImagePath(L"pics\\deep\\a.png");
    block->SetNodeProcessID(4000000000U);
    block->SetShouldRun(true);
    dynamic_cast<CFCBPMTaskNode*>(block)->SetFailedReason(L"because");
    EXPECT_EQ(lineOf(textOf(tree.get()), "task-node"),
              "<task-node BlockString=\"Text\" DisplayStatus=\"False\" ExecutionStatus=\"Executed\" FILE=\"C:\\a.bpt\" "
              "FailedReason=\"because\" Image=\"pics/deep/a.png\" IsImage=\"true\" Name=\"A\" ProcessID=\"4000000000\" "
              "RelativeImage=\"pics/deep/a.png\" Run=\"true\">");
    EXPECT_STREQ(block->GetRelativeImagePath(), L"pics\\deep\\a.png");
}

TEST_F(FCWriter, AttributesThatABlockLacksAreLeftOut) {
    Tree const tree = newProcess();
    addBlock(tree.get(), L"A")->SetShouldRun(false);
    addChild(tree.get(), 71, L"", L"Folder");
    std::string const file = textOf(tree.get());
    EXPECT_EQ(
        lineOf(file, "BLOCK"),
        "<BLOCK BlockString=\"A\" DisplayStatus=\"False\" ExecutionStatus=\"ESNone\" Image=\"\" IsImage=\"false\" "
        "Name=\"A\" ProcessID=\"0\" RelativeImage=\"\" Run=\"false\">");
    EXPECT_EQ(lineOf(file, "SUB_GRP"),
              "<SUB_GRP BlockString=\"Folder\" DisplayStatus=\"False\" Name=\"\" ProcessID=\"0\">");
}

TEST_F(FCWriter, ElementsOfANodeWithoutBlockDataAreEmpty) {
    Tree const tree = newProcess();
    addChild(tree.get(), 71, L"", L"Folder");
    std::string const file = textOf(tree.get());
    for (char const* const tag : {"FLAGS", "PORT", "HELP", "SCRIPT", "BORDER", "FONT"})
        EXPECT_EQ(lineOf(file, tag), "<" + std::string(tag) + "/>");
    EXPECT_THAT(linesOf(file, "BPM"), IsEmpty());
}

TEST_F(FCWriter, WorkflowElementsStandForTheTypesOfTheFamilyOnly) {
    // The type decides whether they stand, the class whether there is something in them.
    for (int type : {57, 150, 153, 154, 165, 167, 168}) {
        Tree const tree = newProcess();
        CFCBlockNode* const plain = addBlock(tree.get(), L"A");
        plain->SetNodeType(type);
        std::string const file = textOf(tree.get());
        bool const stands = type >= 150 && type <= 167;
        EXPECT_EQ(linesOf(file, "BPM").size(), stands ? 1U : 0U) << type;
        if (stands) {
            EXPECT_EQ(lineOf(file, "BPM"), "<BPM/>") << type;
            EXPECT_EQ(lineOf(file, "APPLICATION"), "<APPLICATION/>") << type;
        }
    }
    Tree const tree = newProcess();
    CFCBPMBlockData* const task = addBlock(tree.get(), L"A", 150)->GetBPMBlockData();
    task->SetTaskDescription(L"d");
    task->SetApplication(L"n");
    task->SetDeployment(L"p");
    task->SetExecutable(L"e");
    std::string const file = textOf(tree.get());
    EXPECT_EQ(lineOf(file, "BPM"), "<BPM Description=\"d\"/>");
    EXPECT_EQ(lineOf(file, "APPLICATION"), "<APPLICATION Deployment=\"p\" Executable=\"e\" Name=\"n\"/>");
}

TEST_F(FCWriter, DimensionOfABlock) {
    struct Row {
        int left, top, right, bottom;
        char const* x;
        char const* y;
        char const* width;
        char const* height;
    };
    Row const rows[] = {
        {100, 700, 400, 1100, "1.000", "2.000", "3.000", "4.000"},
        {0, 0, 0, 0, "0.000", "13.000", "0.000", "0.000"},
        {29, 1271, 30, 1299, "0.290", "0.010", "0.010", "0.280"},
        {-29, -5, -30, 1405, "-0.290", "-1.050", "-0.010", "14.100"},
        {2147483647, -2147483647, -2147483647, 2147483647, "21474836.470", "-21474823.470", "-42949672.940",
         "42949672.940"},
    };
    for (Row const& row : rows) {
        Tree const tree = newProcess();
        addBlock(tree.get(), L"A")->SetTuRect(row.left, row.top, row.right, row.bottom);
        EXPECT_EQ(lineOf(textOf(tree.get()), "DIMENSION"),
                  "<DIMENSION Hight=\"" + std::string(row.height) + "\" Order=\"0\" Point_X=\"" + row.x +
                      "\" Point_Y=\"" + row.y +
                      "\" ReferencePoint_X=\"0\" ReferencePoint_Y=\"0\" Shape=\"Rectangle\" Version=\"1\" Width=\"" +
                      row.width + "\"/>");
    }
}

TEST_F(FCWriter, FlagsPortsHelpAndBorderOfABlock) {
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A");
    block->SetUndoFlag(true);
    block->SetStopFlag(true);
    block->SetReferenceBlock(ERefBlock_Other);
    block->GetPortList()->GetInPort()->SetPortName(L"i");
    block->GetPortList()->GetOutPort()->SetPortName(L"");
    block->SetToolTip(L"tip <1>");
    block->SetDescription(L"d");
    block->SetHelpFile(L"h\\x");
    block->LineThickness = 7;
    block->LinePenType = -3;
    block->DrawBorder = true;
    block->FillColor = false;
    block->ColorLine = 4294967295U;
    block->ColorFill = 0xFFDFC6U;
    block->Visible = block->BorderSet = true;
    std::string const file = textOf(tree.get());
    EXPECT_EQ(lineOf(file, "FLAGS"), "<FLAGS Break=\"true\" Reference=\"2\" Skip=\"false\" Undo=\"true\"/>");
    EXPECT_EQ(lineOf(file, "PORT"), "<PORT InPort=\"i\" NextPort=\"Bottom\" OutPort=\"\"/>");
    EXPECT_EQ(lineOf(file, "HELP"), "<HELP Description=\"d\" KnowledgeAdvisory=\"h\\x\" MicroHelp=\"tip &lt;1>\"/>");
    EXPECT_EQ(lineOf(file, "BORDER"), "<BORDER ColorFill=\"16768966\" ColorLine=\"4294967295\" DrawBorder=\"1\" "
                                      "FillColor=\"0\" LinePenType=\"-3\" LineThickness=\"7\" Version=\"1\"/>");
}

TEST_F(FCWriter, FontOfABlockAndTheNameThatASaveGivesIt) {
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A");
    block->Bold = false;
    block->Italics = true;
    block->FontSize = 14;
    block->Format = 37;
    block->FontColor = 255;
    block->StrikeOut = block->Underline = block->FontSet = true;
    EXPECT_EQ(lineOf(textOf(tree.get()), "FONT"),
              "<FONT Bold=\"0\" FontColor=\"255\" FontName=\"Arial\" FontSize=\"14\" "
              "Format=\"37\" Italics=\"1\" Version=\"1\"/>");
    EXPECT_STREQ(block->FontName, L"Arial");
    block->FontName = L"Courier New";
    EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "FONT"), "FontName"), "Courier New");
}

TEST_F(FCWriter, ScriptOfABlock) {
    struct Row {
        int type;
        char const* text;
    };
    // The command texts go with two of the types, each when there is one.
    Row const rows[] = {
        {0, "<SCRIPT Name=\"Sizing.Load\" ScriptType=\"PYTHON\"/>"},
        {1, "<SCRIPT Name=\"Sizing.Load\" ScriptType=\"PYTHON_CMD\"/>"},
        {2, "<SCRIPT Name=\"Sizing.Load\" ScriptCMD=\"c\" ScriptExecute=\"e\" ScriptType=\"TCMD\"/>"},
        {3, "<SCRIPT Name=\"Sizing.Load\" ScriptCMD=\"c\" ScriptExecute=\"e\" ScriptType=\"TCMD_V2\"/>"},
        {4, "<SCRIPT Name=\"Sizing.Load\" ScriptType=\"JAVA\"/>"},
        {9, "<SCRIPT Name=\"Sizing.Load\" ScriptType=\"\"/>"},
    };
    for (Row const& row : rows) {
        Tree const tree = newProcess();
        CFCBlockNode* const block = addBlock(tree.get(), L"A");
        block->SetScriptName(L"Sizing.Load");
        block->SetScriptType(row.type);
        block->SetCOMCommand(L"c");
        block->SetExecuteMethod(L"e");
        EXPECT_EQ(lineOf(textOf(tree.get()), "SCRIPT"), row.text) << row.type;
        block->SetCOMInteface(L"i");
        bool const isCommand = row.type == 2 || row.type == 3;
        EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "SCRIPT"), "ScriptCmdInterface"),
                  isCommand ? "i" : "(absent)");
    }
}

TEST_F(FCWriter, ScriptNameFollowsThePathOfTheScript) {
    CFCEnvironment::SetUserPath(scratch.text("user"));
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A");
    EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "SCRIPT"), "Name"), "");
    block->SetFullScriptFileName(scratch.text("user/Deep/er.py"));
    EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "SCRIPT"), "Name"), "Deep.er");
}

TEST_F(FCWriter, ChildrenAreWrittenFromTheOldestToTheNewest) {
    Tree const tree = newProcess();
    for (wchar_t const* const id : {L"one", L"two", L"three"})
        addBlock(tree.get(), id);
    std::vector<std::string> names;
    for (std::string const& line : linesOf(textOf(tree.get()), "BLOCK"))
        names.push_back(attributeIn(line, "Name"));
    EXPECT_THAT(names, ElementsAre("one", "two", "three"));
}

TEST_F(FCWriter, DeletedFavouritesAndHistoryAreNotWritten) {
    Tree const tree = newProcess();
    addBlock(tree.get(), L"kept");
    IFCNode* const deleted = addBlock(tree.get(), L"deleted");
    addBlock(deleted, L"below");
    deleted->SetDeleted(true);
    addBlock(tree.get(), L"favourite")->SetNodeType(176);
    addBlock(tree.get(), L"history")->SetNodeType(178);
    std::string const file = textOf(tree.get());
    EXPECT_THAT(linesOf(file, "BLOCK"), SizeIs(1));
    EXPECT_EQ(outlineOf(file).find("FAVOURITES"), std::string::npos);
    EXPECT_EQ(outlineOf(file).find("HISTORY"), std::string::npos);
}

TEST_F(FCWriter, RootThatStopsLeavesAnEmptyDocument) {
    Tree const tree(CFCNodeFactory().Create(57));
    std::string const empty = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n"
                              "<Process xmlns=\"http://www.w3.org/2001/XMLSchema-instance\"/>\n";
    for (int type : {151, 152, 158, 159, 68, 72, 79, 176, 178}) {
        tree->SetNodeType(type);
        std::string file = textOf(tree.get());
        std::erase(file, '\r');
        EXPECT_EQ(file, empty) << type;
    }
    tree->SetNodeType(57);
    tree->SetDeleted(true);
    EXPECT_EQ(textOf(tree.get()), empty);
}

TEST_F(FCWriter, BlockWithoutParentHasNoPorts) {
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    connect(tree.get(), a, b);
    Tree const alone(CFCNodeFactory().Create(57));
    std::string const file = textOf(alone.get());
    EXPECT_THAT(linesOf(file, "IN_PORT"), IsEmpty());
    EXPECT_THAT(linesOf(file, "OUT_PORT"), IsEmpty());
    // A block inside, saved alone, has its ports still.
    EXPECT_EQ(lineOf(textOf(a, false), "OUT_PORT"), "<OUT_PORT Dx=\"0\" Dy=\"0\" OutPort=\"Bottom\"/>");
    EXPECT_EQ(lineOf(textOf(b, false), "IN_PORT"), "<IN_PORT Dx=\"0\" Dy=\"0\" InPort=\"Top\"/>");
}

// --- Process elements -------------------------------------------------------------------------------------------

TEST_F(FCWriter, ProcessLikeNodesThatAreNoProcess) {
    for (int type : {56, 70, 160}) {
        Tree const tree(CFCNodeFactory().Create(57));
        tree->SetNodeType(type);
        tree->SetItemFilePath(L"f.bpt");
        std::string const file = textOf(tree.get());
        EXPECT_EQ(lineOf(file, "Process"),
                  "<Process FILE=\"f.bpt\" Name=\"Process\" ProjectDirectory=\"\" SaveRestore=\"SaveRestore\" "
                  "ScriptType=\"PYTHON\" Type=\"\" xmlns=\"http://www.w3.org/2001/XMLSchema-instance\">");
        EXPECT_EQ(outlineOf(file), "0Process 1TEMPLATE_VARIABLES 1PROCESS_VARIABLES ");
    }
}

TEST_F(FCWriter, VariablesOfAFileNodeStandTwice) {
    Tree const tree(CFCNodeFactory().Create(57));
    addVariable(tree.get(), L"plain");
    addVariable(tree.get(), L"template")->SetTemplateVariable(1);
    std::map<int, std::string> const outlines = {
        {70, "0Process 1TEMPLATE_VARIABLES 2TEMPLATE_VARIABLE 1PROCESS_VARIABLES 2VARIABLE 1VARIABLE 1VARIABLE "},
        {56, "0Process 1TEMPLATE_VARIABLES 2TEMPLATE_VARIABLE 1PROCESS_VARIABLES 2VARIABLE "},
        {160, "0Process 1TEMPLATE_VARIABLES 2TEMPLATE_VARIABLE 1PROCESS_VARIABLES 2VARIABLE "}};
    for (auto const& [type, outline] : outlines) {
        tree->SetNodeType(type);
        EXPECT_EQ(outlineOf(textOf(tree.get())), outline) << type;
    }
    // A real file node has no variables at all.
    Tree const file(CFCNodeFactory().Create(70));
    EXPECT_EQ(outlineOf(textOf(file.get())), "0Process 1TEMPLATE_VARIABLES 1PROCESS_VARIABLES ");
}

TEST_F(FCWriter, WordsOfAProcess) {
    Tree const tree = newProcess();
    CFCProcessNode* const process = processOf(tree);
    auto const words = [&] {
        std::string const line = lineOf(textOf(tree.get()), "Process");
        std::string all;
        for (char const* const name : {"RandomExecute", "RunOnLoad", "ModelDependency", "Diagram", "VariableSave"})
            all += attributeIn(line, name) + " ";
        return all;
    };
    EXPECT_EQ(words(), "false false false false (absent) ");
    process->setRandomExecutionStatus(true);
    EXPECT_EQ(words(), "true false false false (absent) ");
    process->setRunOnLoadStatus(true);
    EXPECT_EQ(words(), "true true false false (absent) ");
    process->setModelDependency(true);
    EXPECT_EQ(words(), "true true true false (absent) ");
    process->showDiagram(true);
    EXPECT_EQ(words(), "true true true true (absent) ");
    process->SerializeVariablesToTNB(true);
    EXPECT_EQ(words(), "true true true true true ");
}

TEST_F(FCWriter, CommandTextsOfAProcessGoWithOneTypeOnly) {
    for (int type = 0; type <= 5; ++type) {
        Tree const tree = newProcess();
        CFCProcessNode* const process = processOf(tree);
        process->setSaveRestoreScriptType(static_cast<EScriptType>(type));
        process->SetCOMInteface(L"i");
        process->SetExecuteMethod(L"e");
        std::string const line = lineOf(textOf(tree.get()), "Process");
        EXPECT_EQ(attributeIn(line, "ScriptCmdInterface"), type == 2 ? "i" : "(absent)") << type;
        EXPECT_EQ(attributeIn(line, "ScriptCMD"), "(absent)") << type;
        EXPECT_EQ(attributeIn(line, "ScriptExecute"), type == 2 ? "e" : "(absent)") << type;
    }
}

TEST_F(FCWriter, DeepWriteOfAProcessWithAFileHasItsChildrenInline) {
    Tree const tree = newProcess();
    IFCNode* const inner = addChild(tree.get(), 56, L"", L"Inner");
    inner->SetItemFilePath(L"inner.bpt");
    addBlock(inner, L"Inline");
    std::string const file = textOf(tree.get());
    EXPECT_EQ(attributeIn(lineOf(file, "PROCESS"), "FILE"), "inner.bpt");
    EXPECT_EQ(attributeIn(lineOf(file, "BLOCK"), "Name"), "Inline");
    Tree const again = parse(file, 0);
    EXPECT_THAT(childrenOf(onlyChild(again.get())), IsEmpty());
    EXPECT_STREQ(onlyChild(again.get())->GetFileLinkPath(), L"inner.bpt");
}

// --- Variables --------------------------------------------------------------------------------------------------

TEST_F(FCWriter, AttributesOfAVariable) {
    EXPECT_EQ(
        variableLine([](CFCVariableData& v) {
            v.SetCaption(L"Speed");
            v.SetDataType(EDataType_Double);
            v.GetDataTypeNode()->SetType(L"Double");
            v.SetArray(true);
            v.SetStatusType(EStatusType_InAndOutput);
            v.SetScopeType(EScopeType_Private);
            v.SetEntityType(L"Primitive");
            v.HideNode(true);
            v.SetDeployed(true);
            v.SetVisible(true);
            v.SetValue(L"C:\\a\\b");
        }),
        "<VARIABLE Array=\"Y\" DataType=\"Double\" Deployed=\"true\" DisplayName=\"Speed\" Displayable=\"true\" "
        "EntityType=\"Primitive\" Hidden=\"true\" IOType=\"In-and-Output\" LinkPath=\"\" Name=\"v\" Scope=\"Private\" "
        "TemplateVariable=\"false\" Type=\"Data\">C:/a/b</VARIABLE>");
    EXPECT_EQ(variableLine([](CFCVariableData&) {}),
              "<VARIABLE Array=\"N\" DataType=\"Int\" Deployed=\"false\" DisplayName=\"v\" Displayable=\"false\" "
              "EntityType=\"\" Hidden=\"false\" IOType=\"Input\" LinkPath=\"\" Name=\"v\" Scope=\"Local\" "
              "TemplateVariable=\"false\" Type=\"Data\"/>");
}

TEST_F(FCWriter, NamelessVariablesAreNotWritten) {
    EXPECT_EQ(variableLine([](CFCVariableData& v) { v.SetVariableName(L""); }), "0 lines of VARIABLE");
    EXPECT_EQ(templateLine([](CFCVariableData& v) { v.SetVariableName(L""); }), "0 lines of TEMPLATE_VARIABLE");
}

TEST_F(FCWriter, DataTypeAndTypeOfAVariable) {
    struct Row {
        char const* what;
        std::function<void(CFCVariableData&)> shape;
        char const* dataType;
        char const* type;
    };
    Row const rows[] = {
        {"type of the node", [](CFCVariableData& v) { v.GetDataTypeNode()->SetType(L"Odd"); }, "Odd", "Data"},
        {"name of the data type",
         [](CFCVariableData& v) {
             v.GetDataTypeNode()->SetType(L"");
             v.SetDataType(EDataType_Matrix);
         },
         "Matrix", "Data"},
        {"no name at all",
         [](CFCVariableData& v) {
             v.GetDataTypeNode()->SetType(L"");
             v.SetDataType(77);
         },
         "", "Data"},
        {"array type",
         [](CFCVariableData& v) {
             v.GetDataTypeNode()->SetType(L"");
             v.SetDataType(EDataType_StringArray);
         },
         "StringArray", "Data Array"},
        {"folder",
         [](CFCVariableData& v) {
             v.GetDataTypeNode()->SetType(L"");
             v.SetDataType(EDataType_Directory);
         },
         "Directory", "Directory"},
        {"caption without a node",
         [](CFCVariableData& v) {
             v.SetCaption(L"Shown");
             CFCDataTypeNode* const node = v.GetDataTypeNode();
             v.SetDataTypeNode(nullptr);
             delete node;
         },
         "Shown", "Data"},
        {"file",
         [](CFCVariableData& v) {
             v.SetFileType(true);
             v.GetFileTypeNode()->SetFileTypeName(L"Picture");
         },
         "File", "Picture"},
        {"file without a node",
         [](CFCVariableData& v) {
             v.SetFileType(true);
             CFCFileTypeNode* const node = v.GetFileTypeNode();
             v.SetFileTypeNode(nullptr);
             delete node;
         },
         "File", "(absent)"},
    };
    for (Row const& row : rows) {
        for (std::string const& line : {variableLine(row.shape), templateLine(row.shape)}) {
            EXPECT_EQ(attributeIn(line, "DataType"), row.dataType) << row.what;
            EXPECT_EQ(attributeIn(line, "Type"), row.type) << row.what;
        }
    }
}

TEST_F(FCWriter, TemplateVariablesOfAProcessStandApartAndOfABlockAmongTheOthers) {
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A");
    for (IFCNode* const owner : {static_cast<IFCNode*>(tree.get()), static_cast<IFCNode*>(block)}) {
        addVariable(owner, L"one");
        addVariable(owner, L"two")->SetTemplateVariable(1);
        addVariable(owner, L"three");
    }
    std::string const file = textOf(tree.get());
    EXPECT_EQ(attributeIn(lineOf(file, "TEMPLATE_VARIABLE"), "Name"), "two");
    std::string names;
    for (std::string const& line : linesOf(file, "VARIABLE"))
        names += attributeIn(line, "Name") + ":" + attributeIn(line, "TemplateVariable") + " ";
    EXPECT_EQ(names, "one:false three:false one:false two:true three:false ");
}

TEST_F(FCWriter, TemplateVariableWithItsOptions) {
    Tree const tree = newProcess();
    CFCVariableData* const v = addVariable(tree.get(), L"v", L"a\\b");
    v->SetTemplateVariable(1);
    v->SetCaption(L"Choice");
    v->SetStatusType(9);
    v->SetVisible(true);
    v->AddOption(L"a\\b");
    v->AddOption(L"c");
    std::string const file = textOf(tree.get());
    EXPECT_THAT(lineOf(file, "TEMPLATE_VARIABLE"),
                StartsWith("<TEMPLATE_VARIABLE Array=\"N\" Caption=\"Choice\" DataType=\"Int\" Displayable=\"true\" "
                           "IOType=\"Input\" Name=\"v\" NumOptions=\"2\" TemplateVariable=\"true\" Type=\"Data\" "
                           "UserName=\"Choice\" Value=\"a/b\">"));
    EXPECT_THAT(linesOf(file, "OPTION"),
                ElementsAre("<OPTION Value=\"a\\b\">a\\b</OPTION>", "<OPTION Value=\"c\">c</OPTION>"));
    EXPECT_THAT(templateLine([](CFCVariableData&) {}), HasSubstr("Value=\"\""));
}

TEST_F(FCWriter, DeadLinksAreReportedAndRemoved) {
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A");
    CFCVariableData* const one = addVariable(block, L"one");
    one->SetLinkPath(L"Gone.x");
    one->SetScopeType(EScopeType_Connected);
    CFCVariableData* const good = addVariable(block, L"good");
    good->SetLinkPath(L".target");
    addVariable(tree.get(), L"target");
    CFCVariableData* const two = addVariable(tree.get(), L"two");
    two->SetLinkPath(L"Gone.y");
    CFCVariableData* const untouched = addVariable(tree.get(), L"template");
    untouched->SetTemplateVariable(1);
    untouched->SetLinkPath(L"Gone.z");
    CFCWriter writer;
    std::string const file = textBy(writer, tree.get());
    EXPECT_EQ(narrow(writer.GetVariableErrors()), "Missing Variable .two To Variable  To Variable Gone.y\n"
                                                  "Missing Variable A.one To Variable  To Variable Gone.x\n");
    EXPECT_STREQ(one->GetLinkPath(), L"");
    EXPECT_EQ(one->GetScopeType(), EScopeType_Local);
    EXPECT_STREQ(good->GetLinkPath(), L".target");
    EXPECT_STREQ(untouched->GetLinkPath(), L"Gone.z");
    for (std::string const& line : linesOf(file, "VARIABLE")) {
        bool const isGood = attributeIn(line, "Name") == "good";
        EXPECT_EQ(attributeIn(line, "LinkPath"), isGood ? ".target" : "") << line;
        EXPECT_EQ(attributeIn(line, "Scope"), "Local") << line;
    }
    // Errors gather over all writes of a writer.
    two->SetLinkPath(L"Gone.y");
    textBy(writer, tree.get());
    EXPECT_THAT(narrow(writer.GetVariableErrors()),
                testing::EndsWith("Gone.x\nMissing Variable .two To Variable  To Variable Gone.y\n"));
}

TEST_F(FCWriter, LinkByHandleIsWrittenAsThePathOfItsTarget) {
    Tree const tree = newProcess();
    CFCBlockNode* const block = addBlock(tree.get(), L"A");
    CFCVariableData* const target = addVariable(block, L"target");
    CFCVariableData* const v = addVariable(tree.get(), L"v");
    v->SetLinkedVariableHandle(target->GetNodeHandle());
    v->SetLinkPath(L"Gone.x");
    auto const linkOf = [&] {
        return attributeIn(linesOf(textOf(tree.get()), "VARIABLE").front(), "LinkPath");
    };
    EXPECT_EQ(linkOf(), "A.target");
    v->SetLinkedVariableHandle(tree->GetNodeHandle());
    EXPECT_EQ(linkOf(), "");
    for (int handle : {2147483647, -5, 0}) {
        v->SetLinkedVariableHandle(handle);
        EXPECT_EQ(linkOf(), "") << handle;
    }
}

TEST_F(FCWriter, NullEntriesOfAVariableListAreSkipped) {
    Tree const tree = newProcess();
    addVariable(tree.get(), L"one");
    tree->GetVariableList()->AddTail(CFCNodeFactory().Create(71));
    addVariable(tree.get(), L"two");
    EXPECT_THAT(linesOf(textOf(tree.get()), "VARIABLE"), SizeIs(2));
}

// --- Connectors -------------------------------------------------------------------------------------------------

TEST_F(FCWriter, AttributesOfAConnector) {
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    CFCConnector* const connector = connect(tree.get(), a, b, 4, 8);
    connector->SetStarPortName(L"start port");
    connector->SetEndPortName(L"end port");
    EXPECT_EQ(
        lineOf(textOf(tree.get()), "CONNECTOR"),
        "<CONNECTOR AutoConnector=\"1\" DisplayState=\"false\" EndBlock=\"B\" EndHandle=\"8\" EndPortName=\"Left\" "
        "NumPoints=\"0\" Order=\"1\" StartBlock=\"A\" StartHandle=\"4\" StartPortName=\"Right\" Version=\"1\"/>");
    connector->SetStartHandle(9);
    EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "CONNECTOR"), "StartPortName"), "Top");
}

TEST_F(FCWriter, RouteOfAConnector) {
    using Points = std::vector<_TgPointLStr>;
    struct Row {
        Points start; // none or one
        Points inner;
        Points end; // none or one
        char const* route;
    };
    Row const rows[] = {
        {{}, {}, {}, "0:"},
        {{{10, 20}}, {}, {{30, 40}}, "2: 0.100,12.800 0.300,12.600"},
        // An end in line with the last point is left out, whichever way.
        {{{10, 20}}, {}, {{10, 40}}, "2: 0.100,12.800"},
        {{{10, 20}}, {}, {{30, 20}}, "2: 0.100,12.800"},
        {{{10, 20}}, {}, {{10, 20}}, "2: 0.100,12.800"},
        {{{10, 20}}, {{10, 90}, {50, 90}}, {{50, 99}}, "4: 0.100,12.800 0.100,12.100 0.500,12.100"},
        {{{10, 20}}, {{10, 90}, {50, 90}}, {{51, 91}}, "4: 0.100,12.800 0.100,12.100 0.500,12.100 0.510,12.090"},
        // Inner points go only when they repeat the one before.
        {{{10, 20}}, {{10, 20}, {10, 30}, {10, 30}, {10, 20}}, {}, "5: 0.100,12.800 0.100,12.700 0.100,12.800"},
        // Without a start the route counts as begun at the origin.
        {{}, {{0, 0}, {5, 5}}, {}, "2: 0.050,12.950"},
        {{}, {{0, 5}}, {}, "1: 0.000,12.950"},
        {{}, {}, {{0, 9}}, "1:"},
        {{}, {}, {{9, 0}}, "1:"},
        {{}, {}, {{7, 9}}, "1: 0.070,12.910"},
        {{{0, 0}}, {{0, 0}}, {}, "2: 0.000,13.000"},
        {{{-5, 1305}}, {}, {{-2147483647, 2147483647}}, "2: -0.050,-0.050 -21474836.470,-21474823.470"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(routeOf([&](RoutedConnector& connector) {
                      connector.hasStart = !row.start.empty();
                      connector.hasEnd = !row.end.empty();
                      if (connector.hasStart)
                          connector.start = row.start.front();
                      if (connector.hasEnd)
                          connector.end = row.end.front();
                      connector.points = row.inner;
                  }),
                  row.route);
    }
}

TEST_F(FCWriter, RouteWithoutPointsOrWithANegativeCount) {
    EXPECT_EQ(routeOf([](RoutedConnector& connector) {
                  connector.hidePoints = true;
                  connector.count = 3;
                  connector.hasStart = true;
              }),
              "4: 0.000,13.000");
    class Negative : public RoutedConnector {
    public:
        int GetPointCount() override { return -7; }
    };
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    connect<Negative>(tree.get(), a, b)->points = {{1, 1}};
    std::string const file = textOf(tree.get());
    EXPECT_EQ(attributeIn(lineOf(file, "CONNECTOR"), "NumPoints"), "0");
    EXPECT_THAT(linesOf(file, "POINT"), IsEmpty());
}

TEST_F(FCWriter, DeletedAndLooseConnectorsAreWrittenNowhere) {
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    CFCBlockNode* const c = addBlock(tree.get(), L"C");
    connect(tree.get(), a, b)->DeleteConnecter(true);
    connect(tree.get(), b, c)->SetEndNode(2, nullptr);
    connect(tree.get(), c, a)->SetStartNode(6, nullptr);
    CFCConnector* const marked = connect(tree.get(), a, c);
    std::string file = textOf(tree.get());
    EXPECT_THAT(linesOf(file, "CONNECTOR"), SizeIs(1));
    EXPECT_THAT(linesOf(file, "IN_PORT"), SizeIs(1));
    EXPECT_THAT(linesOf(file, "OUT_PORT"), SizeIs(1));
    // The node's own mark of deletion is another one.
    marked->SetDeleted(true);
    file = textOf(tree.get());
    EXPECT_THAT(linesOf(file, "CONNECTOR"), SizeIs(1));
}

TEST_F(FCWriter, PortsOfABlockStandInTheOrderOfTheConnectors) {
    Tree const tree = newProcess();
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    CFCBlockNode* const c = addBlock(tree.get(), L"C");
    connect(tree.get(), a, b, 6, 2);
    connect(tree.get(), a, c, 6, 4);
    connect(tree.get(), b, a, 8, 8);
    connect(tree.get(), a, a, 4, 6);
    std::string const file = textOf(tree.get());
    std::vector<std::string> outs;
    for (std::string const& line : linesOf(file, "OUT_PORT"))
        outs.push_back(attributeIn(line, "OutPort"));
    std::vector<std::string> ins;
    for (std::string const& line : linesOf(file, "IN_PORT"))
        ins.push_back(attributeIn(line, "InPort"));
    EXPECT_THAT(outs, ElementsAre("Bottom", "Bottom", "Right", "Left"));
    EXPECT_THAT(ins, ElementsAre("Left", "Bottom", "Top", "Right"));
    EXPECT_THAT(outlineOf(file), HasSubstr("2PORT 2IN_PORT 2IN_PORT 2OUT_PORT 2OUT_PORT 2OUT_PORT 2HELP "));
}

TEST_F(FCWriter, ElementNullArgumentsWriteNothing) {
    struct Probe : public CFCWriter {
        void WriteObject(IFCNode*, xercesc::DOMNode*, xercesc::DOMNode* self) override {
            CFCConnector loose;
            WriteObject2(nullptr, nullptr);
            CFCWriter::WriteObject(nullptr, self, nullptr);
            WriteChildren(nullptr, self);
            WriteVariable(nullptr, self);
            WriteVariables(nullptr, self);
            WriteTemplateVariables(nullptr, self);
            WriteTVariable(nullptr, self);
            WriteTVariables(nullptr, self);
            WritePVariables(nullptr, self);
            WriteProcessVariables(nullptr, self);
            WriteInPort(nullptr, self, nullptr);
            WriteOutPort(nullptr, self, nullptr);
            WriteInPort(&loose, self, nullptr);
            WriteOutPort(&loose, self, nullptr);
            WriteConnection(nullptr, self);
            WriteConnections(nullptr, self, nullptr, 0);
            WriteProperties(nullptr, self);
            WritePropertiesRoot(nullptr, self);
            EXPECT_FALSE(WritePoint(nullptr, self));
            _TgPointLStr point{1, 2};
            EXPECT_TRUE(WritePoint(&point, nullptr));
            for (int mode : {-1, 3, 7})
                WriteConnectionFunction(&loose, self, nullptr, mode);
        }
        // Neither a parent nor an element: nothing to write to.
        void WriteObject2(xercesc::DOMNode* parent, xercesc::DOMNode* self) {
            Tree const node(CFCNodeFactory().Create(57));
            CFCWriter::WriteObject(node.get(), parent, self);
        }
    } probe;
    Tree const tree = newProcess();
    EXPECT_EQ(outlineOf(textBy(probe, tree.get())), "0Process ");
}

// --- Hosts ------------------------------------------------------------------------------------------------------

// Notes each step of the walk.
class NotingWriter : public CFCWriter {
public:
    std::string notes;

    void WriteChildren(IFCNode* node, xercesc::DOMNode* element) override {
        notes += "children ";
        CFCWriter::WriteChildren(node, element);
    }
    void WriteVariable(CFCVariableData* variable, xercesc::DOMNode* element) override {
        notes += "variable:" + narrow(variable->GetVariableName()) + " ";
        CFCWriter::WriteVariable(variable, element);
    }
    void WriteVariables(IFCNode* node, xercesc::DOMNode* element) override {
        notes += "variables ";
        CFCWriter::WriteVariables(node, element);
    }
    void WriteTemplateVariables(IFCNode* node, xercesc::DOMNode* element) override {
        notes += "templates ";
        CFCWriter::WriteTemplateVariables(node, element);
    }
    void WriteTVariable(CFCVariableData* variable, xercesc::DOMNode* element) override {
        notes += "template:" + narrow(variable->GetVariableName()) + " ";
        CFCWriter::WriteTVariable(variable, element);
    }
    void WriteTVariables(IFCNode* node, xercesc::DOMNode* element) override {
        notes += "tvariables ";
        CFCWriter::WriteTVariables(node, element);
    }
    void WriteOutPort(CFCConnector* connector, xercesc::DOMNode* element, IFCNode* block) override {
        notes += "out:" + narrow(block->GetNodeId()) + " ";
        CFCWriter::WriteOutPort(connector, element, block);
    }
    void WriteInPort(CFCConnector* connector, xercesc::DOMNode* element, IFCNode* block) override {
        notes += "in:" + narrow(block->GetNodeId()) + " ";
        CFCWriter::WriteInPort(connector, element, block);
    }
    void WriteConnectionFunction(CFCConnector* connector, xercesc::DOMNode* element, IFCNode* block,
                                 int mode) override {
        notes += "function:" + std::to_string(mode) + " ";
        CFCWriter::WriteConnectionFunction(connector, element, block, mode);
    }
    void WriteConnection(CFCConnector* connector, xercesc::DOMNode* element) override {
        notes += "connection ";
        CFCWriter::WriteConnection(connector, element);
    }
    void WriteConnections(IFCNode* node, xercesc::DOMNode* element, IFCNode* block, int mode) override {
        notes += "connections:" + std::to_string(mode) + " ";
        CFCWriter::WriteConnections(node, element, block, mode);
    }
    void WriteProperties(IFCNode* node, xercesc::DOMNode* element) override {
        notes += "properties ";
        CFCWriter::WriteProperties(node, element);
    }
    void WriteObject(IFCNode* node, xercesc::DOMNode* parent, xercesc::DOMNode* self) override {
        notes += "object:" + narrow(node->GetNodeCaption()) + " ";
        CFCWriter::WriteObject(node, parent, self);
    }
    bool GetObjectType(IFCNode* node, TuString& out) override {
        notes += "name ";
        return CFCWriter::GetObjectType(node, out);
    }
    bool GetShapeType(IFCNode* node, TuString& out) override {
        notes += "shape ";
        return CFCWriter::GetShapeType(node, out);
    }
    bool WritePoint(_TgPointLStr* point, xercesc::DOMNode* element) override {
        notes += "point ";
        return CFCWriter::WritePoint(point, element);
    }
};

TEST_F(FCWriter, EveryStepGoesThroughItsSlotAtEveryLevel) {
    Tree const tree = newProcess();
    addVariable(tree.get(), L"p");
    addVariable(tree.get(), L"t")->SetTemplateVariable(1);
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    addVariable(a, L"v");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    connect(tree.get(), a, b);
    NotingWriter writer;
    std::string const file = textBy(writer, tree.get());
    EXPECT_EQ(writer.notes,
              "object:Root name properties templates tvariables template:t variable:p variables children "
              "object:Favourites object:Last Opened "
              "object:A name properties shape connections:2 function:2 in:A connections:1 function:1 out:A "
              "variables variable:v children connections:0 "
              "object:B name properties shape connections:2 function:2 in:B connections:1 function:1 out:B "
              "variables children connections:0 "
              "connections:0 function:0 connection point ");
    EXPECT_EQ(file, textOf(tree.get()));
}

TEST_F(FCWriter, OverriddenStepsChangeWhatIsWritten) {
    class Renaming : public CFCWriter {
    public:
        bool GetObjectType(IFCNode* node, TuString& out) override {
            if (node->GetNodeType() == 151) {
                out = L"BPM_USER_TASK";
                return true;
            }
            return CFCWriter::GetObjectType(node, out);
        }
        void WriteConnection(CFCConnector*, xercesc::DOMNode* element) override { CreateElement(element, L"LINE"); }
        void WriteInPort(CFCConnector*, xercesc::DOMNode* element, IFCNode*) override { CreateElement(element, L"IN"); }
    } writer;
    Tree const tree = newProcess();
    CFCBlockNode* const sub = addBlock(tree.get(), L"S", 61);
    CFCBlockNode* const a = addBlock(sub, L"A", 151);
    CFCBlockNode* const b = addBlock(sub, L"B");
    connect(sub, a, b);
    std::string const file = textBy(writer, tree.get());
    EXPECT_THAT(linesOf(file, "BPM_USER_TASK"), SizeIs(1));
    EXPECT_THAT(linesOf(file, "LINE"), SizeIs(1));
    // Each block is asked for each connector of its container.
    EXPECT_THAT(linesOf(file, "IN"), SizeIs(2));
    EXPECT_THAT(linesOf(file, "CONNECTOR"), IsEmpty());
}

TEST_F(FCWriter, RootNameOfASubclass) {
    class Named : public CFCWriter {
    public:
        Named() { m_strRootName = L"Manifest"; }
    } writer;
    Tree const tree = newProcess();
    EXPECT_THAT(textBy(writer, tree.get()), HasSubstr("<Manifest "));
}

TEST_F(FCWriter, DrawingHandsOverItsStateBeforeABlockIsWritten) {
    class Drawing : public CFCBlockNode {
    public:
        void TransferToData() override { SetTuRect(100, 700, 400, 1100); }
    };
    Tree const tree = newProcess();
    auto* const drawing = new Drawing;
    drawing->SetNodeType(57);
    tree->AppendChild(drawing, false);
    EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "DIMENSION"), "Width"), "3.000");
}

// --- Guards -----------------------------------------------------------------------------------------------------

TEST_F(FCWriter, ChildrenInARingAreNotWritten) {
    Tree const tree = newProcess();
    IFCNode* const a = addBlock(tree.get(), L"A");
    IFCNode* const b = addBlock(tree.get(), L"B");
    IFCNode* const c = addBlock(tree.get(), L"C");
    IFCNode* const after = a->GetNext();
    for (IFCNode* const target : {a, b, c}) {
        a->SetNext(target);
        EXPECT_THAT(linesOf(textOf(tree.get()), "BLOCK"), IsEmpty());
    }
    a->SetNext(after);
    EXPECT_THAT(linesOf(textOf(tree.get()), "BLOCK"), SizeIs(3));
    // A ring on the way back ends as well.
    IFCNode* const before = a->GetPrev();
    a->SetPrev(a);
    EXPECT_FALSE(textOf(tree.get()).empty());
    a->SetPrev(before);
}

TEST_F(FCWriter, StaleLinksInFrontOfTheFirstChildAreNotFollowed) {
    Tree const other = newProcess();
    IFCNode* const stale = addBlock(other.get(), L"stale");
    Tree const tree(CFCNodeFactory().Create(61));
    CFCBlockNode* const child = addBlock(tree.get(), L"only");
    child->SetPrev(stale);
    EXPECT_THAT(linesOf(textOf(tree.get()), "BLOCK"), SizeIs(1));
    child->SetPrev(nullptr);
}

TEST_F(FCWriter, TreeBeyondTheNestingOfFilesIsCutSoThatTheFileCanBeRead) {
    Tree const tree(CFCNodeFactory().Create(61));
    IFCNode* last = tree.get();
    for (int level = 1; level < 1500; ++level) {
        IFCNode* const next = CFCNodeFactory().Create(level % 2 == 0 ? 61 : 56);
        last->AppendChild(next, false);
        CFCVariableData* const v = addVariable(next, L"t");
        v->SetTemplateVariable(1);
        v->AddOption(L"o");
        last = next;
    }
    Tree const again = parse(textOf(tree.get()));
    ASSERT_NE(again, nullptr);
    int depth = 1;
    for (IFCNode* node = again.get(); !childrenOf(node).empty(); node = childrenOf(node).front())
        ++depth;
    EXPECT_EQ(depth, 1021);
}

TEST_F(FCWriter, CharactersThatNoFileMayHoldAreDropped) {
    std::wstring text = L"a\x01z\x1F\x7F \x09\x0A\x0D \xFFFE\xFFFF <&>\"'";
    text += static_cast<wchar_t>(0xD800);
    text += static_cast<wchar_t>(0x1F642);
    Tree const tree = newProcess();
    addBlock(tree.get(), text.c_str());
    addVariable(tree.get(), text.c_str(), text.c_str());
    Tree const again = reread(tree.get());
    ASSERT_NE(again, nullptr);
    std::wstring expected = L"az\x7F \x09\x0A\x0D  <&>\"'\xFFFD";
    expected += static_cast<wchar_t>(0x1F642);
    EXPECT_EQ(std::wstring(onlyChild(again.get())->GetNodeId()), expected);
    std::wstring value = expected;
    value[value.find(L'\n')] = L' ';
    EXPECT_EQ(std::wstring(variablesOf(again.get()).front()->GetValue()), value);
}

TEST_F(FCWriter, BytesThatAreNoUtf8BecomeReplacements) {
    Tree const tree = newProcess();
    tree->SetNodeCaption(TuString("caf\xE9"));
    EXPECT_EQ(attributeIn(lineOf(textOf(tree.get()), "Process"), "Name"), "caf\xEF\xBF\xBD");
}

TEST_F(FCWriter, LongTextsAreWrittenWhole) {
    std::wstring const text(3000000, L'x');
    Tree const tree = newProcess(text.c_str());
    addVariable(tree.get(), L"v", text.c_str());
    Tree const again = reread(tree.get());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(std::wstring(again->GetNodeCaption()), text);
    EXPECT_EQ(std::wstring(variablesOf(again.get()).front()->GetValue()), text);
}

// --- Files ------------------------------------------------------------------------------------------------------

TEST_F(FCWriter, ResultTellsOfArgumentsOnly) {
    Tree const tree = newProcess();
    OpenWriter writer;
    EXPECT_FALSE(writer.WriteFile(L"", tree.get(), true));
    EXPECT_TRUE(writer.m_bDeep);
    EXPECT_FALSE(writer.WriteFile(nullptr, tree.get(), false));
    EXPECT_FALSE(writer.m_bDeep);
    EXPECT_FALSE(writer.WriteFile(scratch.text("x.bpt"), nullptr, true));
    EXPECT_EQ(writer.m_strFilePath, scratch.text("x.bpt"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "x.bpt"));
    EXPECT_TRUE(writer.WriteFile(scratch.text("no/such/folder/x.bpt"), tree.get(), true));
    EXPECT_FALSE(std::filesystem::exists(scratch / "no"));
    std::filesystem::create_directory(scratch / "folder");
    EXPECT_TRUE(writer.WriteFile(scratch.text("folder"), tree.get(), true));
    EXPECT_TRUE(std::filesystem::is_directory(scratch / "folder"));
    EXPECT_EQ(narrow(writer.m_strRootName), "Process");
}

TEST_F(FCWriter, OldContentIsReplacedInPlace) {
    Tree const tree = newProcess();
    scratch.write("old.bpt", std::string(100000, 'x'));
    EXPECT_TRUE(CFCWriter().WriteFile(scratch.text("old.bpt"), tree.get(), true));
    EXPECT_EQ(scratch.read("old.bpt"), textOf(tree.get()));
    EXPECT_TRUE(CFCWriter().WriteFile(wideWithBackslashes(scratch / "old.bpt"), addBlock(tree.get(), L"A"), true));
    EXPECT_THAT(scratch.read("old.bpt"), HasSubstr("BlockString=\"A\""));
}

TEST_F(FCWriter, FileIsOpenedOnlyWhenTheDocumentStands) {
    class Failing : public CFCBlockNode {
    public:
        void TransferToData() override { throw std::runtime_error("drawing failed"); }
    };
    Tree const tree = newProcess();
    auto* const failing = new Failing;
    failing->SetNodeType(57);
    tree->AppendChild(failing, false);
    scratch.write("old.bpt", "old content");
    CFCWriter writer;
    EXPECT_TRUE(writer.WriteFile(scratch.text("old.bpt"), tree.get(), true));
    EXPECT_EQ(scratch.read("old.bpt"), "old content");
    // The writer is none the worse for it.
    Tree const good = newProcess();
    EXPECT_EQ(textBy(writer, good.get()), textOf(good.get()));
}

TEST_F(FCWriter, CopiesTakeTheErrorsAlong) {
    Tree const tree = newProcess();
    addVariable(tree.get(), L"v")->SetLinkPath(L"Gone.x");
    CFCWriter writer;
    textBy(writer, tree.get());
    CFCWriter const copy(writer);
    CFCWriter assigned;
    assigned = writer;
    EXPECT_EQ(copy.GetVariableErrors(), writer.GetVariableErrors());
    EXPECT_EQ(assigned.GetVariableErrors(), writer.GetVariableErrors());
    EXPECT_FALSE(writer.GetVariableErrors().IsEmpty());
}

TEST_F(FCWriter, ReformattedFileStandsBesideTheOldOne) {
    std::string const text = "<A b=\"1\"><C/><D>t</D></A>";
    scratch.write("plain.xml", text);
    CFCWriter::LoadAndFormatXML(scratch.text("plain.xml"));
    EXPECT_EQ(scratch.read("plain.xml"), text);
    EXPECT_THAT(scratch.read("plain.for"), HasSubstr("\n  <D>t</D>\n"));
    scratch.write("plain.bpt", text);
    CFCWriter::LoadAndFormatXML(scratch.text("plain.bpt"));
    EXPECT_EQ(scratch.read("plain.bpt"), scratch.read("plain.for"));
    scratch.write("broken.xml", "<A>");
    CFCWriter::LoadAndFormatXML(scratch.text("broken.xml"));
    CFCWriter::LoadAndFormatXML(scratch.text("missing.xml"));
    CFCWriter::LoadAndFormatXML(L"");
    CFCWriter::LoadAndFormatXML(nullptr);
    EXPECT_FALSE(std::filesystem::exists(scratch / "broken.for"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "missing.for"));
}

TEST_F(FCWriter, LargeContainersHaveTheSamePortsAsSmallOnes) {
    // The ports of each block are looked up at once; a host's writer asks block by block. Both must agree.
    Tree const tree = newProcess();
    std::vector<CFCBlockNode*> blocks;
    for (int i = 0; i < 120; ++i)
        blocks.push_back(addBlock(tree.get(), TuString(std::to_wstring(i)), 57));
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        for (std::size_t step : {1U, 7U, 50U})
            connect(tree.get(), blocks[i], blocks[(i + step) % blocks.size()], static_cast<int>(i % 8 + 1));
    }
    connectorsOf(tree.get())[17]->DeleteConnecter(true);
    NotingWriter slow;
    std::string const file = textOf(tree.get());
    EXPECT_EQ(file, textBy(slow, tree.get()));
    EXPECT_THAT(linesOf(file, "OUT_PORT"), SizeIs(359));
}

} // namespace
