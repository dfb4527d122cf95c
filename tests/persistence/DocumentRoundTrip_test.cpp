// Every attribute of the process document: set in the model, found in the file, read back.
#include "DocumentTestSupport.h"

#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/xml/TXMLBaseReader.h"

#include <gmock/gmock.h>
#include <xercesc/dom/DOM.hpp>

#include <functional>
#include <set>

using namespace flowmere::test;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// A process with a block, a workflow task, a sub-process with two blocks, a folder, variables and connectors.
class Model {
public:
    Model() : root(CFCNodeFactory().Create(56)) {
        root->SetNodeCaption(L"Root");
        addBlock(root.get(), L"A")->SetTuRect(100, 100, 200, 200);
        addBlock(root.get(), L"T", 150)->SetTuRect(100, 300, 200, 400);
        CFCBlockNode* const container = addBlock(root.get(), L"S", 61);
        addBlock(container, L"X");
        addBlock(container, L"Y");
        addChild(root.get(), 71, L"", L"Folder");
        connect(root.get(), addressed(L"A"), addressed(L"T"));
        addVariable(root.get(), L"process");
        addVariable(root.get(), L"template")->SetTemplateVariable(1);
        addVariable(addressed(L"A"), L"own");
    }
    explicit Model(Tree tree) : root(std::move(tree)) {}

    CFCProcessNode* process() const { return CFCPointerConverter::GetProcessNode(root.get()); }
    CFCBlockNode* addressed(wchar_t const* id) const {
        return CFCPointerConverter::GetBlockNode(root->FindNodeSimple(id));
    }
    CFCBlockNode* block() const { return addressed(L"A"); }
    CFCBPMTaskNode* task() const { return dynamic_cast<CFCBPMTaskNode*>(root->FindNodeSimple(L"T")); }
    IFCNode* folder() const { return CFCNodeHelper::FindNodeByType(root.get(), eShapeType_Folder); }
    CFCConnector* connector() const { return connectorsOf(root.get()).front(); }
    RoutedConnector* routed() const { return dynamic_cast<RoutedConnector*>(connector()); }
    CFCVariableData* variable(wchar_t const* name) const { return process()->FindLocalVariable(name); }
    CFCVariableData* processVariable() const { return variable(L"process"); }
    CFCVariableData* templateVariable() const { return variable(L"template"); }
    CFCVariableData* ownVariable() const { return variablesOf(block()).front(); }

    Tree root;
};

std::string text(wchar_t const* value) {
    return narrow(value);
}

std::string text(bool value) {
    return value ? "true" : "false";
}

template <typename Number>
requires std::is_integral_v<Number> || std::is_enum_v<Number> std::string text(Number value) {
    return std::to_string(static_cast<long long>(value));
}

// One attribute: where it stands in the file, a value in the model, its form in the file, and what the model has after
// writing and reading.
struct Row {
    std::string element;
    std::string attribute;
    std::function<void(Model&)> set;
    std::string written;
    std::function<std::string(Model&)> get;
    std::string read;
};

// The text of an attribute whose element stands once in the file, or stands behind the element of the block A.
std::string writtenIn(std::string const& file, std::string const& element, std::string const& attribute) {
    std::size_t from = 0;
    if (element != "Process" && element.find(':') != std::string::npos)
        from = file.find("Name=\"" + element.substr(0, element.find(':')) + "\"");
    std::string const tag = element.substr(element.find(':') == std::string::npos ? 0 : element.find(':') + 1);
    std::size_t const begin = file.rfind('\n', from) == std::string::npos ? 0 : file.rfind('\n', from);
    std::vector<std::string> const lines = linesOf(file.substr(begin), tag);
    return lines.empty() ? "no " + tag : attributeIn(lines.front(), attribute);
}

#define FIELD(expression)                                                                                              \
    [](Model& m) {                                                                                                     \
        return text(expression);                                                                                       \
    }
#define DO(statement)                                                                                                  \
    [](Model& m) {                                                                                                     \
        statement;                                                                                                     \
    }

std::vector<Row> const& rows() {
    static std::vector<Row> const all = {
        // The process.
        {"Process", "Name", DO(m.root->SetNodeCaption(L"New \"name\" & more")), "New &quot;name&quot; &amp; more",
         FIELD(m.root->GetNodeCaption()), "New \"name\" & more"},
        {"Process", "Name", DO(m.root->SetNodeCaption(L"")), "Process", FIELD(m.root->GetNodeCaption()), "Process"},
        {"Process", "FILE", DO(m.root->SetItemFilePath(L"other.bpt")), "other.bpt", FIELD(m.root->GetItemFilePath()),
         ""},
        {"Process", "ProjectDirectory", DO(m.process()->setProjectDirectory(L"C:\\p q")), "C:\\p q",
         FIELD(m.process()->getProjectDirectory()), "C:\\p q"},
        {"Process", "SaveRestore", DO(m.process()->setSaveRestoreScript(L"Other")), "Other",
         FIELD(m.process()->getSaveRestoreScript()), "Other"},
        {"Process", "SaveRestore", DO(m.process()->setSaveRestoreScript(L"")), "",
         FIELD(m.process()->getSaveRestoreScript()), ""},
        {"Process", "ScriptType", DO(m.process()->setSaveRestoreScriptType(EScriptType_JAVA)), "JAVA",
         FIELD(m.process()->getSaveRestoreScriptType()), "4"},
        {"Process", "ScriptType", DO(m.process()->setSaveRestoreScriptType(static_cast<EScriptType>(9))), "",
         FIELD(m.process()->getSaveRestoreScriptType()), "1"},
        {"Process", "Type", DO(m.process()->SetProjectType(EProjectType_Debug)), "Debug",
         FIELD(m.root->GetProjectType()), "5"},
        {"Process", "Type", DO(m.process()->SetProjectType(EProjectType_None)), "", FIELD(m.root->GetProjectType()),
         "0"},
        {"Process", "ProcessID", DO(m.root->SetNodeProcessID(4294967295U)), "4294967295",
         FIELD(m.root->GetNodeProcessID()), "4294967295"},
        {"Process", "ProcessFlowType", DO(m.process()->setProcessFlowType(L"Flow")), "Flow",
         FIELD(m.process()->getProcessFlowType()), "Flow"},
        {"Process", "RandomExecute", DO(m.process()->setRandomExecutionStatus(true)), "true",
         FIELD(m.process()->getRandomExecutionStatus()), "true"},
        {"Process", "RunOnLoad", DO(m.process()->setRunOnLoadStatus(true)), "true",
         FIELD(m.process()->getRunOnLoadStatus()), "true"},
        {"Process", "ModelDependency", DO(m.process()->setModelDependency(true)), "true",
         FIELD(m.process()->getModelDependency()), "true"},
        {"Process", "Diagram", DO(m.process()->showDiagram(true)), "true", FIELD(m.process()->hasDiagram()), "true"},
        {"Process", "Diagram", DO(m.process()->showDiagram(false)), "false", FIELD(m.process()->hasDiagram()), "false"},
        {"Process", "VariableSave", DO(m.process()->SerializeVariablesToTNB(true)), "true",
         FIELD(m.process()->IsVariablesSerializableToTNB()), "true"},
        {"Process", "VariableSave", DO(m.process()->SerializeVariablesToTNB(false)), "(absent)",
         FIELD(m.process()->IsVariablesSerializableToTNB()), "false"},
        {"Process", "ScriptCmdInterface",
         DO(m.process()->setSaveRestoreScriptType(EScriptType_TCMD); m.process()->SetCOMInteface(L"i")), "i",
         FIELD(m.process()->GetCOMInteface()), "i"},
        {"Process", "ScriptCMD",
         DO(m.process()->setSaveRestoreScriptType(EScriptType_TCMD); m.process()->SetCOMCommand(L"c")), "c",
         FIELD(m.process()->GetCOMCommand()), "c"},
        {"Process", "ScriptExecute",
         DO(m.process()->setSaveRestoreScriptType(EScriptType_TCMD); m.process()->SetExecuteMethod(L"e")), "e",
         FIELD(m.process()->GetExecuteMethod()), "e"},
        // At this level one type alone carries them.
        {"Process", "ScriptCMD",
         DO(m.process()->setSaveRestoreScriptType(EScriptType_TCMD_V2); m.process()->SetCOMCommand(L"c")), "(absent)",
         FIELD(m.process()->GetCOMCommand()), ""},

        // An object.
        {"A:BLOCK", "Name", DO(m.block()->SetNodeId(L"A")), "A", FIELD(m.block()->GetNodeId()), "A"},
        {"A:BLOCK", "BlockString", DO(m.block()->SetNodeCaption(L"Two\nlines\tand a tab")),
         "Two&#xA;lines&#x9;and a tab", FIELD(m.block()->GetNodeCaption()), "Two\nlines\tand a tab"},
        {"A:BLOCK", "BlockString", DO(m.block()->SetNodeCaption(L"")), "", FIELD(m.block()->GetNodeCaption()), "A"},
        {"A:BLOCK", "ExecutionStatus", DO(m.block()->SetExecutionStateType(EExecutionStateType_WaitForResource)),
         "WaitForResource", FIELD(m.block()->GetExecutionStateType()), "8"},
        {"A:BLOCK", "ExecutionStatus", DO(m.block()->SetExecutionStateType(static_cast<EExecutionStateType>(55))), "",
         FIELD(m.block()->GetExecutionStateType()), "0"},
        {"T:task-node", "FailedReason", DO(m.task()->SetFailedReason(L"why")), "why",
         FIELD(m.task()->GetFailedReason()), "why"},
        {"A:BLOCK", "FILE", DO(m.block()->SetItemFilePath(L"C:\\x.bpt")), "C:\\x.bpt",
         FIELD(m.block()->GetItemFilePath()), ""},
        {"A:BLOCK", "IsImage", DO(m.block()->SetImage(true)), "true", FIELD(m.block()->HasImage()), "true"},
        {"A:BLOCK", "RelativeImage", DO(m.block()->SetRelativeImagePath(L"a\\b.png")), "a/b.png",
         FIELD(m.block()->GetRelativeImagePath()), "a/b.png"},
        {"A:BLOCK", "ProcessID", DO(m.block()->SetNodeProcessID(7)), "7", FIELD(m.block()->GetNodeProcessID()), "7"},
        {"A:BLOCK", "Run", DO(m.block()->SetShouldRun(false)), "false", FIELD(m.block()->GetShouldRun()), "false"},
        {"A:BLOCK", "Run", DO(m.block()->SetShouldRun(true)), "true", FIELD(m.block()->GetShouldRun()), "true"},
        // A folder goes out as an object and comes back by the lighter form.
        {"SUB_GRP", "BlockString", DO(m.folder()->SetNodeCaption(L"Other folder")), "Other folder",
         FIELD(m.folder()->GetNodeCaption()), "Other folder"},
        {"SUB_GRP", "FILE", DO(m.folder()->SetItemFilePath(L"f.bpt")), "f.bpt", FIELD(m.folder()->GetItemFilePath()),
         "f.bpt"},
        {"SUB_GRP", "ProcessID", DO(m.folder()->SetNodeProcessID(9)), "9", FIELD(m.folder()->GetNodeProcessID()), "0"},

        // The rectangle and the shape.
        {"A:DIMENSION", "Point_X", DO(m.block()->SetTuRect(150, 100, 250, 200)), "1.500",
         FIELD(m.block()->GetTuRect()->left), "150"},
        {"A:DIMENSION", "Point_Y", DO(m.block()->SetTuRect(100, 100, 200, 300)), "10.000",
         FIELD(m.block()->GetTuRect()->bottom), "300"},
        {"A:DIMENSION", "Width", DO(m.block()->SetTuRect(100, 100, 450, 200)), "3.500",
         FIELD(m.block()->GetTuRect()->right), "450"},
        {"A:DIMENSION", "Hight", DO(m.block()->SetTuRect(100, 50, 200, 200)), "1.500",
         FIELD(m.block()->GetTuRect()->top), "50"},
        {"A:DIMENSION", "Width", DO(m.block()->SetTuRect(100, 100, 100, 200)), "0.000",
         FIELD(m.block()->GetTuRect()->bottom), "0"},
        {"A:DIMENSION", "Shape", DO(m.block()->SetNodeType(58)), "Decision", FIELD(m.block()->GetNodeType()), "58"},

        // The elements of a block.
        {"A:FLAGS", "Undo", DO(m.block()->SetUndoFlag(true)), "true", FIELD(m.block()->GetUndoFlag()), "true"},
        {"A:FLAGS", "Skip", DO(m.block()->SetSkipFlag(true)), "true", FIELD(m.block()->GetSkipFlag()), "true"},
        {"A:FLAGS", "Break", DO(m.block()->SetStopFlag(true)), "true", FIELD(m.block()->GetStopFlag()), "true"},
        {"A:FLAGS", "Break", DO(m.block()->SetStopFlag(false)), "false", FIELD(m.block()->GetStopFlag()), "false"},
        {"A:FLAGS", "Reference", DO(m.block()->SetReferenceBlock(ERefBlock_None)), "0",
         FIELD(m.block()->GetReferenceBlock()), "0"},
        {"A:FLAGS", "Reference", DO(m.block()->SetReferenceBlock(ERefBlock_One)), "1",
         FIELD(m.block()->GetReferenceBlock()), "1"},
        {"A:FLAGS", "Reference", DO(m.block()->SetReferenceBlock(ERefBlock_Other)), "2",
         FIELD(m.block()->GetReferenceBlock()), "2"},
        {"A:FLAGS", "Reference", DO(m.block()->SetReferenceBlock(static_cast<ERefBlock>(7))), "7",
         FIELD(m.block()->GetReferenceBlock()), "2"},
        {"A:PORT", "InPort", DO(m.block()->GetPortList()->GetInPort()->SetPortName(L"p")), "p",
         FIELD(m.block()->GetPortList()->GetInPort()->GetPortName()), "p"},
        {"A:PORT", "OutPort", DO(m.block()->GetPortList()->GetOutPort()->SetPortName(L"p")), "p",
         FIELD(m.block()->GetPortList()->GetOutPort()->GetPortName()), "p"},
        {"A:PORT", "NextPort", DO(m.block()->GetPortList()->GetNextPort()->SetPortName(L"")), "",
         FIELD(m.block()->GetPortList()->GetNextPort()->GetPortName()), ""},
        {"A:HELP", "MicroHelp", DO(m.block()->SetToolTip(L"t")), "t", FIELD(m.block()->GetToolTip()), "t"},
        {"A:HELP", "Description", DO(m.block()->SetDescription(L"d")), "d", FIELD(m.block()->GetDescription()), "d"},
        {"A:HELP", "KnowledgeAdvisory", DO(m.block()->SetHelpFile(L"h")), "h", FIELD(m.block()->GetHelpFile()), "h"},
        {"BPM", "Description", DO(m.task()->SetTaskDescription(L"d")), "d", FIELD(m.task()->GetTaskDescription()), "d"},
        {"APPLICATION", "Name", DO(m.task()->SetApplication(L"n")), "n", FIELD(m.task()->GetApplication()), "n"},
        {"APPLICATION", "Deployment", DO(m.task()->SetDeployment(L"p")), "p", FIELD(m.task()->GetDeployment()), "p"},
        {"APPLICATION", "Executable", DO(m.task()->SetExecutable(L"e")), "e", FIELD(m.task()->GetExecutable()), "e"},
        {"A:SCRIPT", "Name", DO(m.block()->SetScriptName(L"Deep.er")), "Deep.er", FIELD(m.block()->GetScriptName()),
         "Deep.er"},
        // Without a name the script takes the identifier.
        {"A:SCRIPT", "Name", DO(m.block()->SetToolTip(L"")), "", FIELD(m.block()->GetScriptName()), "A"},
        {"A:SCRIPT", "ScriptType", DO(m.block()->SetScriptType(EScriptType_PYTHON_CMD)), "PYTHON_CMD",
         FIELD(m.block()->GetScriptType()), "1"},
        {"A:SCRIPT", "ScriptType", DO(m.block()->SetScriptType(9)), "", FIELD(m.block()->GetScriptType()), "0"},
        {"A:SCRIPT", "ScriptCmdInterface",
         DO(m.block()->SetScriptType(EScriptType_TCMD); m.block()->SetCOMInteface(L"i")), "i",
         FIELD(m.block()->GetCOMInteface()), "i"},
        {"A:SCRIPT", "ScriptCMD", DO(m.block()->SetScriptType(EScriptType_TCMD_V2); m.block()->SetCOMCommand(L"c")),
         "c", FIELD(m.block()->GetCOMCommand()), "c"},
        {"A:SCRIPT", "ScriptExecute", DO(m.block()->SetScriptType(EScriptType_TCMD); m.block()->SetExecuteMethod(L"e")),
         "e", FIELD(m.block()->GetExecuteMethod()), "e"},
        {"A:SCRIPT", "ScriptExecute", DO(m.block()->SetExecuteMethod(L"e")), "(absent)",
         FIELD(m.block()->GetExecuteMethod()), ""},
        {"A:BORDER", "LineThickness", DO(m.block()->LineThickness = 9), "9", FIELD(m.block()->LineThickness), "9"},
        {"A:BORDER", "LinePenType", DO(m.block()->LinePenType = -1), "-1", FIELD(m.block()->LinePenType), "-1"},
        {"A:BORDER", "DrawBorder", DO(m.block()->DrawBorder = true), "1", FIELD(m.block()->DrawBorder), "true"},
        {"A:BORDER", "FillColor", DO(m.block()->FillColor = false), "0", FIELD(m.block()->FillColor), "false"},
        {"A:BORDER", "ColorLine", DO(m.block()->ColorLine = 4294967295U), "4294967295", FIELD(m.block()->ColorLine),
         "4294967295"},
        {"A:BORDER", "ColorFill", DO(m.block()->ColorFill = 1), "1", FIELD(m.block()->ColorFill), "1"},
        {"A:BORDER", "Version", DO(m.block()->Visible = true), "1", FIELD(m.block()->Visible), "false"},
        {"A:BORDER", "Visible", DO(m.block()->Visible = true), "(absent)", FIELD(m.block()->BorderSet), "true"},
        {"A:FONT", "Bold", DO(m.block()->Bold = false), "0", FIELD(m.block()->Bold), "false"},
        {"A:FONT", "Italics", DO(m.block()->Italics = true), "1", FIELD(m.block()->Italics), "true"},
        {"A:FONT", "FontSize", DO(m.block()->FontSize = 12), "12", FIELD(m.block()->FontSize), "12"},
        {"A:FONT", "Format", DO(m.block()->Format = 4294967295U), "4294967295", FIELD(m.block()->Format), "4294967295"},
        {"A:FONT", "FontColor", DO(m.block()->FontColor = 255), "255", FIELD(m.block()->FontColor), "255"},
        {"A:FONT", "FontName", DO(m.block()->FontName = L"Mono"), "Mono", FIELD(m.block()->FontName), "Mono"},
        {"A:FONT", "FontName", DO(m.block()->FontName = L""), "Arial", FIELD(m.block()->FontName), "Arial"},
        {"A:FONT", "Version", DO(m.block()->FontVersion = 5), "1", FIELD(m.block()->FontVersion), "1"},
        {"A:FONT", "StrikeOut", DO(m.block()->StrikeOut = true), "(absent)", FIELD(m.block()->StrikeOut), "false"},
        {"A:FONT", "Underline", DO(m.block()->Underline = true), "(absent)", FIELD(m.block()->Underline), "false"},

        // A connector. The names of the grips stand in the place of the port names.
        {"CONNECTOR", "StartBlock", DO(m.connector()->SetStartNode(6, m.addressed(L"S"), L"")), "S",
         FIELD(m.connector()->GetStartNodeId()), "S"},
        {"CONNECTOR", "EndBlock", DO(m.connector()->SetEndNode(2, m.addressed(L"S"), L"")), "S",
         FIELD(m.connector()->GetEndNodeId()), "S"},
        {"CONNECTOR", "StartPortName", DO(m.connector()->SetStarPortName(L"port"); m.connector()->SetStartHandle(4)),
         "Right", FIELD(m.connector()->GetStartPortName()), "Right"},
        {"CONNECTOR", "EndPortName", DO(m.connector()->SetEndPortName(L"port"); m.connector()->SetEndHandle(8)), "Left",
         FIELD(m.connector()->GetEndPortName()), "Left"},
        {"CONNECTOR", "StartHandle", DO(m.connector()->SetStartHandle(5)), "5", FIELD(m.connector()->GetStartHandle()),
         "5"},
        {"CONNECTOR", "EndHandle", DO(m.connector()->SetEndHandle(-1)), "-1", FIELD(m.connector()->GetEndHandle()),
         "-1"},
        {"CONNECTOR", "NumPoints", DO(m.connector()->SetReversed(true)), "0", FIELD(m.connector()->GetReversed()),
         "false"},
        {"CONNECTOR", "Version", DO(m.connector()->SetSelected(true)), "1", FIELD(m.connector()->IsSelected()),
         "false"},
        {"CONNECTOR", "DisplayState", DO(m.connector()->SetCaption(L"c")), "false", FIELD(m.connector()->GetCaption()),
         ""},

        // A variable.
        {"own:VARIABLE", "Name", DO(m.ownVariable()->SetVariableName(L"own")), "own",
         FIELD(m.ownVariable()->GetVariableName()), "own"},
        {"process:VARIABLE", "DisplayName", DO(m.processVariable()->SetCaption(L"c")), "c",
         FIELD(m.processVariable()->GetCaption()), "c"},
        {"process:VARIABLE", "DisplayName", DO(m.processVariable()->SetCaption(L"")), "",
         FIELD(m.processVariable()->GetCaption()), "process"},
        {"process:VARIABLE", "DataType",
         DO(m.processVariable()->SetDataType(EDataType_Point3); m.processVariable()->GetDataTypeNode()->SetType(L"")),
         "Point3", FIELD(m.processVariable()->GetDataType()), "6"},
        {"process:VARIABLE", "DataType", DO(m.processVariable()->GetDataTypeNode()->SetType(L"Mesh")), "Mesh",
         FIELD(m.processVariable()->GetDataTypeNode()->GetType()), "Mesh"},
        {"process:VARIABLE", "Type",
         DO(m.processVariable()->SetDataType(EDataType_File); m.processVariable()->GetDataTypeNode()->SetType(L"")),
         "File", FIELD(m.processVariable()->GetType()), "File"},
        // A file variable comes back with the name of its file type as its type word, and with its data type unchanged
        // from that of a new variable.
        {"process:VARIABLE", "Type",
         DO(m.processVariable()->SetFileType(true); m.processVariable()->SetDataType(EDataType_File);
            m.processVariable()->GetFileTypeNode()->SetFileTypeName(L"Picture")),
         "Picture", FIELD(m.processVariable()->GetDataTypeNode()->GetType()), "Picture"},
        {"process:VARIABLE", "DataType",
         DO(m.processVariable()->SetFileType(true); m.processVariable()->SetDataType(EDataType_File);
            m.processVariable()->GetFileTypeNode()->SetFileTypeName(L"Picture")),
         "File", FIELD(m.processVariable()->GetDataType()), "0"},
        {"process:VARIABLE", "Array", DO(m.processVariable()->SetArray(true)), "Y",
         FIELD(m.processVariable()->getArrayFlag()), "1"},
        {"process:VARIABLE", "Array", DO(m.processVariable()->SetArray(false)), "N",
         FIELD(m.processVariable()->getArrayFlag()), "0"},
        {"process:VARIABLE", "Array", DO(m.processVariable()->GetDataTypeNode()->SetType(L"Array")), "N",
         FIELD(m.processVariable()->getArrayFlag()), "1"},
        {"process:VARIABLE", "IOType", DO(m.processVariable()->SetStatusType(EStatusType_InAndOutput)), "In-and-Output",
         FIELD(m.processVariable()->GetStatusType()), "2"},
        {"process:VARIABLE", "IOType", DO(m.processVariable()->SetStatusType(9)), "",
         FIELD(m.processVariable()->GetStatusType()), "0"},
        {"process:VARIABLE", "Scope", DO(m.processVariable()->SetScopeType(EScopeType_Public)), "Public",
         FIELD(m.processVariable()->GetScopeType()), "6"},
        {"process:VARIABLE", "Scope", DO(m.processVariable()->SetScopeType(99)), "",
         FIELD(m.processVariable()->GetScopeType()), "0"},
        {"own:VARIABLE", "TemplateVariable", DO(m.ownVariable()->SetTemplateVariable(1)), "true",
         FIELD(m.ownVariable()->IsTemplateVariable()), "true"},
        {"own:VARIABLE", "LinkPath", DO(m.ownVariable()->SetLinkPath(L".process")), ".process",
         FIELD(m.ownVariable()->GetLinkPath()), ".process"},
        {"own:VARIABLE", "LinkPath", DO(m.ownVariable()->SetLinkPath(L"Nowhere.x")), "",
         FIELD(m.ownVariable()->GetLinkPath()), ""},
        {"own:VARIABLE", "EntityType", DO(m.ownVariable()->SetEntityType(L"OrrinEntity")), "OrrinEntity",
         FIELD(m.ownVariable()->GetEntityType()), "OrrinEntity"},
        {"own:VARIABLE", "Hidden", DO(m.ownVariable()->HideNode(true)), "true", FIELD(m.ownVariable()->IsHidden()),
         "true"},
        {"own:VARIABLE", "Deployed", DO(m.ownVariable()->SetDeployed(true)), "true",
         FIELD(m.ownVariable()->IsDeployed()), "true"},
        {"own:VARIABLE", "Displayable", DO(m.ownVariable()->SetVisible(false)), "false",
         FIELD(m.ownVariable()->IsVisible()), "false"},
        {"own:VARIABLE", "Displayable", DO(m.ownVariable()->SetVisible(true)), "true",
         FIELD(m.ownVariable()->IsVisible()), "true"},

        // A template variable carries less.
        {"template:TEMPLATE_VARIABLE", "Name", DO(m.templateVariable()->SetVariableName(L"template")), "template",
         FIELD(m.templateVariable()->GetVariableName()), "template"},
        {"template:TEMPLATE_VARIABLE", "UserName", DO(m.templateVariable()->SetCaption(L"c")), "c",
         FIELD(m.templateVariable()->GetCaption()), "template"},
        {"template:TEMPLATE_VARIABLE", "Caption", DO(m.templateVariable()->SetCaption(L"c")), "c",
         FIELD(m.templateVariable()->GetCaption()), "template"},
        {"template:TEMPLATE_VARIABLE", "DataType", DO(m.templateVariable()->GetDataTypeNode()->SetType(L"Float")),
         "Float", FIELD(m.templateVariable()->GetDataType()), "1"},
        {"template:TEMPLATE_VARIABLE", "Type",
         DO(m.templateVariable()->SetDataType(EDataType_IntArray);
            m.templateVariable()->GetDataTypeNode()->SetType(L"")),
         "Data Array", FIELD(m.templateVariable()->GetDataType()), "10"},
        {"template:TEMPLATE_VARIABLE", "Array", DO(m.templateVariable()->SetArray(true)), "Y",
         FIELD(m.templateVariable()->getArrayFlag()), "1"},
        {"template:TEMPLATE_VARIABLE", "IOType", DO(m.templateVariable()->SetStatusType(EStatusType_Output)), "Output",
         FIELD(m.templateVariable()->GetStatusType()), "1"},
        {"template:TEMPLATE_VARIABLE", "IOType", DO(m.templateVariable()->SetStatusType(9)), "Input",
         FIELD(m.templateVariable()->GetStatusType()), "0"},
        {"template:TEMPLATE_VARIABLE", "TemplateVariable", DO(m.templateVariable()->SetTemplateVariable(3)), "true",
         FIELD(m.templateVariable()->IsTemplateVariable()), "true"},
        {"template:TEMPLATE_VARIABLE", "Value", DO(m.templateVariable()->SetValue(L"v\\w")), "v/w",
         FIELD(m.templateVariable()->GetValue()), "v/w"},
        {"template:TEMPLATE_VARIABLE", "Value", DO(m.templateVariable()->SetValue(L"")), "",
         FIELD(m.templateVariable()->GetValue()), ""},
        {"template:TEMPLATE_VARIABLE", "Displayable", DO(m.templateVariable()->SetVisible(false)), "false",
         FIELD(m.templateVariable()->IsVisible()), "false"},
        {"template:TEMPLATE_VARIABLE", "NumOptions", DO(m.templateVariable()->AddOption(L"o")), "1",
         FIELD(m.templateVariable()->GetOptionCount()), "1"},
        {"OPTION", "Value", DO(m.templateVariable()->AddOption(L" o\\p ")), " o\\p ",
         FIELD(m.templateVariable()->GetOption(0)), " o\\p "},
        {"OPTION", "Value", DO(m.templateVariable()->AddOption(L"")), "", FIELD(m.templateVariable()->GetOptionCount()),
         "0"},
        {"template:TEMPLATE_VARIABLE", "Hidden", DO(m.templateVariable()->HideNode(true)), "(absent)",
         FIELD(m.templateVariable()->IsHidden()), "false"},
        {"template:TEMPLATE_VARIABLE", "Deployed", DO(m.templateVariable()->SetDeployed(true)), "(absent)",
         FIELD(m.templateVariable()->IsDeployed()), "false"},
        {"template:TEMPLATE_VARIABLE", "LinkPath", DO(m.templateVariable()->SetLinkPath(L".process")), "(absent)",
         FIELD(m.templateVariable()->GetLinkPath()), ""},
        {"template:TEMPLATE_VARIABLE", "EntityType", DO(m.templateVariable()->SetEntityType(L"Primitive")), "(absent)",
         FIELD(m.templateVariable()->GetEntityType()), ""},
        {"template:TEMPLATE_VARIABLE", "Scope", DO(m.templateVariable()->SetScopeType(EScopeType_Public)), "(absent)",
         FIELD(m.templateVariable()->GetScopeType()), "0"},
    };
    return all;
}

#undef FIELD
#undef DO

class DocumentRoundTrip : public DocumentTest {
protected:
    DocumentRoundTrip() { factory = &routingFactory; }
};

TEST_F(DocumentRoundTrip, EveryAttributeIsWrittenAndReadAsTheTableSays) {
    for (Row const& row : rows()) {
        std::string const where = row.element + " " + row.attribute + " " + row.written;
        Model model;
        row.set(model);
        std::string const file = textOf(model.root.get());
        EXPECT_EQ(writtenIn(file, row.element, row.attribute), row.written) << where;
        Model again(parse(file));
        ASSERT_NE(again.root, nullptr) << where;
        EXPECT_EQ(row.get(again), row.read) << where;
    }
}

// Collects "element attribute" of all elements below one.
void collectAttributes(xercesc::DOMElement* element, std::set<std::string>& found) {
    auto const narrowed = [](XMLCh const* name) {
        std::string all;
        for (; *name != 0; ++name)
            all += static_cast<char>(*name);
        return all;
    };
    xercesc::DOMNamedNodeMap const* const attributes = element->getAttributes();
    for (XMLSize_t index = 0; index < attributes->getLength(); ++index)
        found.insert(narrowed(element->getTagName()) + " " + narrowed(attributes->item(index)->getNodeName()));
    for (xercesc::DOMElement* child = element->getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling())
        collectAttributes(child, found);
}

TEST_F(DocumentRoundTrip, TableKnowsEveryAttributeThatIsWritten) {
    // What is written for others and read by nobody, and what always has one value.
    std::set<std::string> known = {"Process xmlns",
                                   "BLOCK DisplayStatus",
                                   "BLOCK Image",
                                   "DIMENSION ReferencePoint_X",
                                   "DIMENSION ReferencePoint_Y",
                                   "DIMENSION Version",
                                   "DIMENSION Order",
                                   "IN_PORT InPort",
                                   "IN_PORT Dx",
                                   "IN_PORT Dy",
                                   "OUT_PORT OutPort",
                                   "OUT_PORT Dx",
                                   "OUT_PORT Dy",
                                   "CONNECTOR AutoConnector",
                                   "CONNECTOR Order",
                                   "POINT Location_X",
                                   "POINT Location_Y",
                                   "SUB_GRP Name",
                                   "SUB_GRP DisplayStatus"};
    for (Row const& row : rows()) {
        if (row.written != "(absent)")
            known.insert(
                row.element.substr(row.element.find(':') == std::string::npos ? 0 : row.element.find(':') + 1) + " " +
                row.attribute);
    }
    // The other objects have the attributes of a block.
    for (char const* const tag : {"task-node", "SUB_PROCESS"}) {
        for (char const* const name : {"Name", "BlockString", "DisplayStatus", "ExecutionStatus", "IsImage", "Image",
                                       "RelativeImage", "ProcessID", "Run"})
            known.insert(std::string(tag) + " " + name);
    }
    std::set<std::string> found;
    for (std::size_t index = 0; index < rows().size(); ++index) {
        Model model;
        rows()[index].set(model);
        scratch.write("written.xml", textOf(model.root.get()));
        xercesc::DOMDocument* document = nullptr;
        ASSERT_TRUE(reader.InitXML(scratch.text("written.xml"), &document));
        collectAttributes(document->getDocumentElement(), found);
        document->release();
    }
    std::vector<std::string> unknown;
    std::set_difference(found.begin(), found.end(), known.begin(), known.end(), std::back_inserter(unknown));
    EXPECT_THAT(unknown, IsEmpty());
    std::vector<std::string> unseen;
    std::set_difference(known.begin(), known.end(), found.begin(), found.end(), std::back_inserter(unseen));
    // No connector of these models has a route.
    EXPECT_THAT(unseen, testing::ElementsAre("POINT Location_X", "POINT Location_Y"));
}

// Trees agree when they are written alike.
TEST_F(DocumentRoundTrip, FileThatWasReadIsWrittenAgainAsItWas) {
    for (char const* const name : {"plant.bpt", "plant_flat.bpt", "new_process.bpt"}) {
        std::string const golden = readFile(dataFolder() / "persistence" / name);
        Tree const tree = parse(golden);
        ASSERT_NE(tree, nullptr) << name;
        // The routes are the host's; the start and the end of a route come back among its inner points.
        std::string const once = textOf(tree.get());
        Tree const again = parse(once);
        EXPECT_EQ(textOf(again.get()), once) << name;
    }
}

TEST_F(DocumentRoundTrip, NodesComeBackInTheirOrderWithTheirConnectors) {
    Tree const tree(CFCNodeFactory().Create(56));
    for (wchar_t const* const id : {L"one", L"two", L"three"})
        addBlock(tree.get(), id);
    std::vector<IFCNode*> const blocks = childrenOf(tree.get());
    connect(tree.get(), dynamic_cast<CFCBlockNode*>(blocks[2]), dynamic_cast<CFCBlockNode*>(blocks[0]));
    connect(tree.get(), dynamic_cast<CFCBlockNode*>(blocks[0]), dynamic_cast<CFCBlockNode*>(blocks[1]));
    Tree const again = reread(tree.get());
    EXPECT_EQ(captionsOf(again.get()), "one two three");
    ASSERT_THAT(connectorsOf(again.get()), SizeIs(2));
    EXPECT_STREQ(connectorsOf(again.get())[0]->GetStartNodeId(), L"three");
    EXPECT_STREQ(connectorsOf(again.get())[1]->GetStartNodeId(), L"one");
}

TEST_F(DocumentRoundTrip, RouteComesBackAsInnerPoints) {
    Tree const tree(CFCNodeFactory().Create(56));
    CFCBlockNode* const a = addBlock(tree.get(), L"A");
    CFCBlockNode* const b = addBlock(tree.get(), L"B");
    RoutedConnector* const route = connect<RoutedConnector>(tree.get(), a, b);
    route->hasStart = route->hasEnd = true;
    route->start = {100, 200};
    route->points = {{100, 300}, {100, 300}, {400, 300}};
    route->end = {500, 350};
    Tree const again = reread(tree.get());
    auto* const read = dynamic_cast<RoutedConnector*>(connectorsOf(again.get()).front());
    std::string points;
    for (_TgPointLStr const& point : read->points)
        points += std::to_string(point.x) + "," + std::to_string(point.y) + " ";
    EXPECT_EQ(points, "100,200 100,300 400,300 500,350 ");
}

TEST_F(DocumentRoundTrip, TypesOfTheNodesThatComeBackAndOfThoseThatDoNot) {
    struct TypeRow {
        int type;
        int readType; // 0: gone
        bool isTask;
    };
    TypeRow const typeRows[] = {
        {55, 55, false},   {57, 57, false},  {58, 58, false},  {59, 59, false},  {60, 61, false},  {61, 61, false},
        {56, 56, false},   {71, 71, false},  {150, 150, true}, {151, 0, false},  {152, 0, false},  {153, 153, true},
        {154, 154, true},  {155, 155, true}, {156, 156, true}, {157, 157, true}, {158, 0, false},  {159, 0, false},
        {160, 160, false}, {161, 161, true}, {162, 162, true}, {163, 163, true}, {164, 164, true}, {165, 165, true},
        {168, 0, false},   {79, 0, false}};
    for (TypeRow const& row : typeRows) {
        Tree const tree(CFCNodeFactory().Create(56));
        IFCNode* const node = addChild(tree.get(), row.type, L"N", L"N");
        if (node->GetFCBlockData() != nullptr)
            node->SetTuRect(0, 0, 100, 100);
        Tree const again = reread(tree.get());
        if (row.readType == 0) {
            EXPECT_THAT(childrenOf(again.get()), IsEmpty()) << row.type;
            continue;
        }
        IFCNode* const read = onlyChild(again.get());
        EXPECT_EQ(read->GetNodeType(), row.readType) << row.type;
        EXPECT_EQ(dynamic_cast<CFCBPMTaskNode*>(read) != nullptr, row.isTask) << row.type;
        EXPECT_EQ(typeid(*read) == typeid(*node), true) << row.type;
    }
}

TEST_F(DocumentRoundTrip, ApplicationComesBackAsATaskOfItsType) {
    Tree const tree(CFCNodeFactory().Create(56));
    auto* const application = dynamic_cast<CFCApplicationNode*>(addChild(tree.get(), 167, L"App"));
    CFCBPMBlockData* const record = application->GetBPMBlockData();
    record->SetTaskDescription(L"d");
    record->SetApplication(L"n");
    record->SetDeployment(L"p");
    record->SetExecutable(L"e");
    application->SetFailedReason(L"why");
    // What the application answers by these names is not what a document holds.
    addVariable(application, L"EXECUTABLE", L"other");
    application->CreateNewDeployment()->SetNodeCaption(L"Windows");
    std::string const file = textOf(tree.get());
    EXPECT_EQ(attributeIn(lineOf(file, "DIMENSION"), "Shape"), "ClientApplication");
    EXPECT_EQ(attributeIn(lineOf(file, "task-node"), "FailedReason"), "why");
    EXPECT_EQ(lineOf(file, "BPM"), "<BPM Description=\"d\"/>");
    EXPECT_EQ(lineOf(file, "APPLICATION"), "<APPLICATION Deployment=\"p\" Executable=\"e\" Name=\"n\"/>");
    Tree const again = parse(file);
    IFCNode& task = *onlyChild(again.get());
    EXPECT_EQ(task.GetNodeType(), 167);
    EXPECT_EQ(typeid(task), typeid(CFCBPMTaskNode));
    EXPECT_STREQ(dynamic_cast<CFCBPMTaskNode&>(task).GetFailedReason(), L"why");
    EXPECT_STREQ(task.GetBPMBlockData()->GetTaskDescription(), L"d");
    EXPECT_STREQ(task.GetBPMBlockData()->GetApplication(), L"n");
    EXPECT_STREQ(task.GetBPMBlockData()->GetDeployment(), L"p");
    EXPECT_STREQ(task.GetBPMBlockData()->GetExecutable(), L"e");
}

TEST_F(DocumentRoundTrip, SingleBlockComesBackAsAProcessOfItsType) {
    Tree const tree(CFCNodeFactory().Create(58));
    tree->SetNodeId(L"Check");
    tree->SetNodeCaption(L"Is it safe?");
    addVariable(tree.get(), L"v", L"1");
    Tree const again = parse(textOf(tree.get(), false));
    EXPECT_EQ(again->GetNodeType(), 58);
    EXPECT_NE(CFCPointerConverter::GetProcessNode(again.get()), nullptr);
    EXPECT_STREQ(again->GetNodeCaption(), L"Check");
    EXPECT_STREQ(again->GetNodeId(), L"");
    EXPECT_THAT(variablesOf(again.get()), SizeIs(1));
}

TEST_F(DocumentRoundTrip, ValuesOfVariables) {
    struct ValueRow {
        wchar_t const* value;
        wchar_t const* read;
    };
    ValueRow const valueRows[] = {{L"", L""},
                                  {L"plain", L"plain"},
                                  {L"a\\b", L"a/b"},
                                  {L"a\nb", L"a b"},
                                  {L" padded ", L"padded"},
                                  {L"a\r\nb", L"a\r b"},
                                  {L"<&>\"'", L"<&>\"'"},
                                  {L"]]>", L"]]>"},
                                  {L"\n", L""},
                                  {L"a\tb", L"a\tb"},
                                  {L"\x00E9\x4E2D", L"\x00E9\x4E2D"}};
    for (ValueRow const& row : valueRows) {
        for (bool const isTemplate : {false, true}) {
            Tree const tree(CFCNodeFactory().Create(56));
            CFCVariableData* const variable = addVariable(tree.get(), L"v", row.value);
            variable->SetTemplateVariable(isTemplate ? 1 : 0);
            if (isTemplate)
                variable->AddOption(L"o");
            Tree const again = reread(tree.get());
            EXPECT_STREQ(variablesOf(again.get()).front()->GetValue(), row.read) << narrow(row.value) << isTemplate;
        }
    }
}

TEST_F(DocumentRoundTrip, NestedProcessDefinitionLosesItsProjectSettings) {
    Tree const tree(CFCNodeFactory().Create(56));
    auto* const inner = CFCPointerConverter::GetProcessNode(addChild(tree.get(), 160, L"ignored", L"Inner"));
    inner->setProjectDirectory(L"d");
    inner->setRunOnLoadStatus(true);
    std::string const file = textOf(tree.get());
    EXPECT_EQ(attributeIn(lineOf(file, "process-definition"), "ProjectDirectory"), "d");
    Tree const again = parse(file);
    auto* const read = CFCPointerConverter::GetProcessNode(onlyChild(again.get()));
    EXPECT_STREQ(read->GetNodeId(), L"Inner");
    EXPECT_STREQ(read->getProjectDirectory(), L"");
    EXPECT_FALSE(read->getRunOnLoadStatus());
    EXPECT_FALSE(read->GetShouldRun());
}

TEST_F(DocumentRoundTrip, PositionsDriftByTruncationAndComeToRest) {
    Tree tree(CFCNodeFactory().Create(56));
    for (int position = 0; position <= 1300; ++position)
        addBlock(tree.get(), TuString(std::to_wstring(position)))
            ->SetTuRect(position, position - 50, position + 50, position);
    int movedLefts = 0;
    int movedBottoms = 0;
    int cycles = 0;
    for (bool moved = true; moved; ++cycles) {
        moved = false;
        Tree again = reread(tree.get());
        std::vector<IFCNode*> const before = childrenOf(tree.get());
        std::vector<IFCNode*> const after = childrenOf(again.get());
        ASSERT_EQ(before.size(), 1301U);
        ASSERT_EQ(after.size(), 1301U);
        for (std::size_t index = 0; index < before.size(); ++index) {
            TuRect const* const old = before[index]->GetTuRect();
            TuRect const* const now = after[index]->GetTuRect();
            ASSERT_TRUE(now->left == old->left || now->left == old->left - 1) << index;
            ASSERT_TRUE(now->bottom == old->bottom || now->bottom == old->bottom - 1) << index;
            ASSERT_EQ(now->right - now->left, 50);
            ASSERT_EQ(now->bottom - now->top, 50);
            moved = moved || now->left != old->left || now->bottom != old->bottom;
            if (cycles == 0) {
                movedLefts += now->left != old->left ? 1 : 0;
                movedBottoms += now->bottom != old->bottom ? 1 : 0;
            }
        }
        tree = std::move(again);
        ASSERT_LE(cycles, 5);
    }
    EXPECT_EQ(movedLefts, 73);
    EXPECT_EQ(movedBottoms, 231);
    // The last cycle only shows that nothing moves any more.
    EXPECT_LE(cycles - 1, 4);
}

} // namespace
