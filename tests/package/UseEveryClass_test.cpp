// An outside program: the installed header, the shared library, and nothing else. Each exported class has its test here
// under its own name, so that one whose symbols are not all exported does not link.
#include <flowmere/Flowmere.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

TuString wide(fs::path const& path) {
    return TuString(path.c_str());
}

// A folder of its own for each test, with the roots of all paths back where they were at the end.
class Folder {
public:
    Folder() {
        auto const* const test = testing::UnitTest::GetInstance()->current_test_info();
        m_path = fs::path(testing::TempDir()) / ("flowmere_package_" + std::string(test->name()));
        fs::remove_all(m_path);
        fs::create_directories(m_path);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;

    fs::path operator/(char const* name) const { return m_path / name; }
    TuString path(char const* name) const { return wide(m_path / name); }
    // The form in which hosts hand in the paths of workflow files.
    TuString backslashes(char const* name) const {
        TuString text = path(name);
        text.Replace(L'/', L'\\');
        return text;
    }
    TuString write(char const* name, char const* text) const {
        fs::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << text;
        return path(name);
    }
    std::string read(char const* name) const {
        std::ifstream in(m_path / name, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    bool holds(char const* name, char const* text) const { return read(name).find(text) != std::string::npos; }

private:
    fs::path m_path;
};

struct TreeEnd {
    void operator()(IFCNode* node) const { CFCNodeHelper::DestroyTree(node); }
};

template <typename Node = IFCNode>
using Tree = std::unique_ptr<Node, TreeEnd>;

template <typename Node = IFCNode>
Tree<Node> make(int kind) {
    CFCNodeFactory factory;
    IFCNode* const node = factory.Create(kind);
    auto* const made = dynamic_cast<Node*>(node);
    if (made == nullptr)
        CFCNodeHelper::DestroyTree(node);
    return Tree<Node>(made);
}

IFCNode* add(IFCNode* parent, int kind, wchar_t const* id) {
    IFCNode* const node = make(kind).release();
    node->SetNodeId(id);
    node->SetNodeCaption(id);
    parent->AppendChild(node, true);
    return node;
}

// A process with one block that has one variable.
Tree<CFCProcessNode> plant() {
    Tree<CFCProcessNode> process = make<CFCProcessNode>(56);
    process->SetNodeCaption(L"Plant");
    IFCNode* const pump = add(process.get(), 57, L"pump");
    CFCVariableData* const flow = pump->CreateNewVariable();
    flow->SetVariableName(L"flow");
    flow->SetValue(L"12");
    return process;
}

// The children of a node, by their captions, last one first.
std::wstring captions(IFCNode* node) {
    std::wstring text;
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext())
        text += std::wstring(text.empty() ? L"" : L" ") + child->GetNodeCaption();
    return text;
}

// A list takes an element and gives it back by its name.
template <typename List, typename Element>
void useList() {
    List list;
    EXPECT_EQ(0, list.GetCount());
    auto* const element = new Element;
    element->SetNodeCaption(L"first");
    list.AddTail(element);
    ASSERT_EQ(1, list.GetCount());
    EXPECT_EQ(element, list.GetAt(0));
    __FCPOSITION* position = list.GetHeadPosition();
    if constexpr (requires { list.GetNext(position); })
        EXPECT_EQ(element, list.GetNext(position));
    else
        EXPECT_EQ(element, list.GetNextNode(position));
    EXPECT_EQ(nullptr, position);
    list.DeleteAll();
    EXPECT_EQ(0, list.GetCount());
}

template <typename Action>
void useAction() {
    Action action;
    action.SetActionName(L"warn");
    action.SetClassName(L"Warner");
    action.SetActionExpression(L"a > b");
    Action const copy(action);
    Action other;
    other = copy;
    EXPECT_STREQ(L"warn", other.GetActionName());
    EXPECT_STREQ(L"Warner", other.GetClassNameStr());
    EXPECT_STREQ(L"a > b", other.GetActionExpression());
    EXPECT_STREQ(L"", other.GetActionType());
}

// --- Foundation and environment ------------------------------------------------------------------------------------

TEST(ExportedClass, TuString) {
    TuString text(L"pump");
    text += L" 7";
    EXPECT_EQ(6, text.GetLength());
    EXPECT_EQ(5, text.Find(L"7"));
    EXPECT_EQ(1, text.Replace(L"pump", L"valve"));
    EXPECT_STREQ(L"valve 7", text);
    EXPECT_STREQ("valve 7", text.GetAnsiBuffer());
    text.Format(L"%d of %d", 3, 4);
    EXPECT_TRUE(text == L"3 of 4");
    EXPECT_EQ(3, text.ToInt());
    EXPECT_TRUE(TuString(L"a") + L"b" == TuString(L"ab"));
    EXPECT_STREQ(L"\n", TuString::TuEndOfLine);
}

TEST(ExportedClass, TuDate) {
    TuDate date;
    EXPECT_TRUE(date.IsEmpty());
    date.setDate(2021, 3, 4, 5, 6, 7);
    EXPECT_EQ(20210304050607, date.toSerial());
    EXPECT_STREQ(L"4/3/2021", date.toText());
    EXPECT_TRUE(TuDate() < date);
}

TEST(ExportedClass, TuFileUtl) {
    Folder const folder;
    TuFileUtl const inner(folder.path("a/b"), 1);
    EXPECT_NE(0, inner.CreateDir());
    EXPECT_STREQ(L"b", inner.GetFileName());
    TuFileUtl file;
    file.SetPath(folder.write("a/from.txt", "text"), 0);
    EXPECT_NE(0, file.CopyIn(folder.path("a/b/to.txt")));
    EXPECT_EQ("text", folder.read("a/b/to.txt"));
    EXPECT_NE(0, TuFileUtl::IsFileName(folder.path("a/b/to.txt")));
    EXPECT_EQ(0, TuFileUtl::IsFileName(folder.path("a/b")));
}

TEST(ExportedClass, TuConversionAllocator) {
    TuConversionAllocator allocator;
    EXPECT_STREQ("Gr\xC3\xB6\xC3\x9F"
                 "e",
                 allocator.GCHARToAnsi(L"Gr\u00F6\u00DFe"));
}

TEST(ExportedClass, CFCEnvironment) {
    Folder const folder;
    TuString const former(CFCEnvironment::GetBasePath());
    CFCEnvironment::SetBasePath(folder.path("base"));
    EXPECT_STREQ(CFCEnvironment::m_strBasePath, CFCEnvironment::GetBasePath());
    EXPECT_NE(nullptr, std::wcsstr(CFCEnvironment::GetDataTypeFilePath(), folder.path("base")));
    CFCEnvironment::SetBasePath(former);
    TuString text;
    EXPECT_TRUE(CFCEnvironment::LoadFile(folder.write("a.txt", "inside"), text));
    EXPECT_STREQ(L"inside", text);
    EXPECT_FALSE(CFCEnvironment::IsFileExist(folder.path("b.txt")));
}

// --- Nodes ---------------------------------------------------------------------------------------------------------

class PlainNode : public CFCNode {
public:
    void Create() override { ++created; }

    int created = 0;
};

TEST(ExportedClass, IFCNode) {
    Tree<IFCNode> const tree = plant();
    IFCNode* const node = tree.get();
    EXPECT_STREQ(L"Plant", node->GetNodeCaption());
    EXPECT_EQ(56, node->GetNodeType());
    ASSERT_NE(nullptr, node->FindNodeSimple(L"PUMP"));
    EXPECT_EQ(node, node->FindNodeSimple(L"pump")->GetParentNode());
}

TEST(ExportedClass, CFCAbstractNode) {
    PlainNode plain;
    CFCAbstractNode& node = plain;
    node.setState(4);
    EXPECT_NE(0U, node.checkState(2));
    node.clearState(4);
    EXPECT_EQ(0U, node.checkState(2));
    node.Create();
    EXPECT_EQ(1, plain.created);
    EXPECT_EQ(nullptr, node.CFCAbstractNode::GetFCBlockData());
}

TEST(ExportedClass, CFCNode) {
    PlainNode parent;
    PlainNode child;
    CFCNode& node = child;
    node.SetNodeCaption(L"child");
    node.SetMark(true);
    EXPECT_TRUE(parent.AppendChild(&node, true));
    EXPECT_EQ(&node, parent.GetChild());
    EXPECT_EQ(&parent, node.GetRootNode());
    PlainNode const copy(child);
    PlainNode other;
    other = copy;
    EXPECT_STREQ(L"child", other.GetNodeCaption());
    node.RemoveLinks();
    EXPECT_EQ(nullptr, node.GetParentNode());
    parent.SetChild(nullptr);
}

TEST(ExportedClass, CFCNodeList) {
    useList<CFCNodeList, PlainNode>();
    CFCNodeList list;
    auto* const block = new CFCBlockNode;
    block->SetNodeId(L"pump");
    list.AddTail(block);
    EXPECT_EQ(block, list.Find(L"Pump"));
    list.DeleteNode(block);
    EXPECT_EQ(0, list.GetCount());
}

TEST(ExportedClass, CFCDLinkList) {
    PlainNode first;
    PlainNode second;
    CFCDLinkList list;
    list.AddTail(&first);
    list.AddTail(&second);
    __FCPOSITION* position = list.GetHeadPosition();
    EXPECT_EQ(&second, list.GetNextNode(position));
    EXPECT_EQ(&first, list.GetPrevNode(position));
    list.Clear();
    EXPECT_EQ(nullptr, list.GetHeadPosition());
}

class CountingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override {
        CFCBaseContainer::Attach(node);
        ++count;
    }

    int count = 0;
};

TEST(ExportedClass, CFCBaseContainer) {
    CFCBaseContainer().Attach(nullptr);
    Folder const folder;
    Tree<> const tree = plant();
    ASSERT_TRUE(FCUtility::CFCWriter_WriteFile(folder.path("a.bpt"), tree.get(), true));
    CountingContainer container;
    CFCNodeFactory factory;
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCReader_ParseContainer(factory, &container, folder.path("a.bpt"), &node, 16));
    Tree<> const read(node);
    EXPECT_EQ(2, container.count);
}

TEST(ExportedClass, CFCProcessList) {
    CFCProcessList list(69);
    list.SetNodeCaption(L"Mine");
    EXPECT_STREQ(L"Mine", CFCProcessList(list).GetNodeCaption());
    EXPECT_EQ(69, make<CFCProcessList>(69)->GetNodeType());
}

TEST(ExportedClass, CFCSubGroupNode) {
    CFCSubGroupNode group;
    group.SetNodeCaption(L"History");
    CFCSubGroupNode const copy(group);
    EXPECT_STREQ(L"History", CFCSubGroupNode(copy).GetNodeCaption());
    EXPECT_NE(nullptr, make<CFCSubGroupNode>(71));
}

class OwnFactory : public CFCNodeFactory {
public:
    IFCNode* Create(int typeCode) override {
        ++asked;
        return CFCNodeFactory::Create(typeCode);
    }

    int asked = 0;
};

TEST(ExportedClass, CFCNodeFactory) {
    EXPECT_NE(nullptr, Tree<>(CFCNodeFactory().Create(57)));
    OwnFactory factory;
    Tree<> const block(factory.Create(57));
    ASSERT_NE(nullptr, block);
    EXPECT_EQ(57, block->GetNodeType());
    EXPECT_EQ(nullptr, factory.Create(-5));
    EXPECT_EQ(2, factory.asked);
    Folder const folder;
    EXPECT_TRUE(factory.IsFileExists(folder.write("a.txt", "")));
    EXPECT_FALSE(factory.IsFileExists(folder.path("b.txt")));
}

TEST(ExportedClass, CFCNodeManager) {
    int handle = 0;
    {
        CFCBlockNode block;
        handle = block.GetNodeHandle();
        EXPECT_EQ(static_cast<IFCNode*>(&block), CFCNodeManager::GetNode(handle));
        CFCNodeManager::SetNode(handle, &block);
    }
    PlainNode const behind;
    EXPECT_EQ(nullptr, CFCNodeManager::GetNode(handle));
}

TEST(ExportedClass, CFCPointerConverter) {
    Tree<> const process = plant();
    EXPECT_EQ(process.get(), CFCPointerConverter::GetProcessNode(process.get()));
    CFCBlockNode* const pump = CFCPointerConverter::GetBlockNode(process->GetChild());
    ASSERT_NE(nullptr, pump);
    EXPECT_EQ(process->GetChild(), CFCPointerConverter::GetNodeFromBlockData(pump));
    EXPECT_EQ(nullptr, CFCPointerConverter::GetConnector(process.get()));
    EXPECT_EQ(nullptr, CFCPointerConverter::GetBPMProcessNode(nullptr));
}

TEST(ExportedClass, CFCStringMap) {
    TuTemplateArray<TuString> names;
    names.Add(L"zero");
    names.Add(L"one");
    CFCStringMap map;
    int at = -1;
    EXPECT_FALSE(map.Lookup(L"one", at));
    CFCEnumTranslator::CreateMap(map, names);
    EXPECT_TRUE(map.Lookup(L"one", at));
    EXPECT_EQ(1, at);
}

TEST(ExportedClass, CFCEnumTranslator) {
    CFCEnumTranslator::SetArrays();
    TuString const name(CFCEnumTranslator::EnumToString(EDataType_String));
    EXPECT_FALSE(name.IsEmpty());
    EDataType type = EDataType_Int;
    EXPECT_TRUE(CFCEnumTranslator::StringToEnum(name, type));
    EXPECT_EQ(EDataType_String, type);
    EXPECT_EQ(8, CFCEnumTranslator::FromIndex(CFCEnumTranslator::GetIndex(EPortHandle_LeftMiddle)));
    EXPECT_FALSE(CFCEnumTranslator::GetArrayDataType().IsEmpty());
}

TEST(ExportedClass, CFCMarkObjects) {
    Tree<> const process = plant();
    IFCNode* const pump = process->GetChild();
    IFCNode* const tank = add(process.get(), 57, L"tank");
    CFCVariableData* const level = tank->CreateNewVariable();
    level->SetVariableName(L"level");
    level->SetLinkPath(L"pump.flow");
    CFCMarkObjects marks;
    EXPECT_FALSE(marks.Mark(process.get(), pump->GetVariableList()->Find(L"flow")));
    EXPECT_TRUE(tank->IsMarked());
    EXPECT_FALSE(pump->IsMarked());
    process->UnMark();
    marks.MarkUpToRoot(pump);
    EXPECT_TRUE(process->IsMarked());
}

// --- Blocks, connectors, variables -----------------------------------------------------------------------------------

TEST(ExportedClass, CFCShape) {
    CFCShape shape;
    EXPECT_EQ(2, shape.GetLineThickness());
    shape.SetTuRect(1, 2, 3, 4);
    CFCShape const copy(shape);
    EXPECT_EQ(3, copy.rect.right);
    EXPECT_EQ(4, shape.GetTuRect()->bottom);
}

TEST(ExportedClass, CFCPort) {
    CFCPort port;
    port.SetPortName(L"in");
    port.SetEnabled(true);
    CFCPort copy(port);
    EXPECT_STREQ(L"in", copy.GetPortName());
    EXPECT_TRUE(copy.IsEnabled());
}

TEST(ExportedClass, CFCPortList) {
    CFCPortList ports;
    EXPECT_EQ(3, ports.GetSize());
    EXPECT_EQ(ports.GetOutPort(), ports.GetPort(1));
    EXPECT_EQ(ports.GetOutPort()->IsEnabled() ? ports.GetOutPort() : nullptr, ports.GetEnabledPort(1));
    ports.GetInPort()->SetEnabled(true);
    EXPECT_EQ(ports.GetInPort(), ports.GetEnabledPorts());
}

TEST(ExportedClass, CFCBlockData) {
    CFCBlockData data;
    data.SetBlockID(L"pump");
    data.SetScriptCode(L"pass");
    EXPECT_TRUE(data.HasScript());
    CFCBlockData other;
    CFCBlockData::Copy(&data, &other);
    EXPECT_STREQ(L"pump", other.GetBlockID());
    CFCVariableData* const flow = data.CreateNewVariable();
    ASSERT_NE(nullptr, flow);
    flow->SetVariableName(L"flow");
    EXPECT_EQ(flow, data.FindVariable(L"flow"));
    EXPECT_TRUE(data.DeleteVariables());
    EXPECT_EQ(0, data.GetVariableList()->GetCount());
}

TEST(ExportedClass, CFCBlockNode) {
    Tree<> const process = plant();
    auto* const pump = dynamic_cast<CFCBlockNode*>(process->GetChild());
    ASSERT_NE(nullptr, pump);
    EXPECT_STREQ(L"pump", pump->GetNodeId());
    EXPECT_NE(nullptr, pump->FindLocalVariable(L"flow"));
    pump->SetTuRect(0, 0, 10, 10);
    _TgPointLStr point;
    EXPECT_TRUE(pump->getHandlePoint(EPortHandle_LeftMiddle, point));
    EXPECT_EQ(0, point.x);
    EXPECT_EQ(nullptr, pump->GetNextConnectedBlock());
}

TEST(ExportedClass, CFCSubProcessNode) {
    Tree<CFCSubProcessNode> const group = make<CFCSubProcessNode>(61);
    ASSERT_NE(nullptr, group);
    EXPECT_EQ(nullptr, group->FindChildBlock(L"inner"));
    IFCNode* const inner = add(group.get(), 57, L"inner");
    EXPECT_EQ(inner, group->FindChildBlock(L"inner"));
    EXPECT_EQ(nullptr, CFCSubProcessNode(61).GetFirstConnectedBlock());
}

TEST(ExportedClass, CFCProcessNode) {
    Tree<CFCProcessNode> const process = make<CFCProcessNode>(56);
    process->setExecutionStatus(CFCProcessNode::ExecutionRunning);
    process->SetDefaults();
    EXPECT_NE(nullptr, process->GetFavouriteNode());
    EXPECT_NE(nullptr, process->GetHistoryNode());
    process->SetProjectType(EProjectType_TASK);
    EXPECT_EQ(EProjectType_TASK, process->GetProjectType());
    EXPECT_EQ(nullptr, process->getStartBlock());
}

TEST(ExportedClass, CFCConnectionNode) {
    CFCBlockNode block;
    block.SetNodeId(L"pump");
    CFCConnectionNode end;
    EXPECT_FALSE(end.IsValid());
    end.SetNode(4, &block, L"out");
    CFCConnectionNode other;
    end.GetConnectionNode(other);
    EXPECT_TRUE(other.IsValid());
    EXPECT_STREQ(L"pump", other.GetBlockName());
    EXPECT_STREQ(L"out", other.GetPortName());
}

TEST(ExportedClass, CFCConnector) {
    CFCBlockNode from;
    CFCBlockNode to;
    CFCConnector connector;
    connector.SetStartNode(4, &from);
    connector.SetEndNode(8, &to);
    EXPECT_TRUE(connector.IsValid());
    connector.ReverseConnector();
    EXPECT_EQ(&from, connector.GetEndObject());
    EXPECT_EQ(4, connector.GetEndHandle());
    EXPECT_EQ(0, connector.GetPointCount());
}

TEST(ExportedClass, CFCConnectorList) {
    useList<CFCConnectorList, CFCConnector>();
}

TEST(ExportedClass, CFCVariableData) {
    CFCVariableData variable("flow", EDataType_Double, EScopeType_Local, 0);
    EXPECT_STREQ(L"flow", variable.GetVariableName());
    variable.setValue(2.5);
    EXPECT_DOUBLE_EQ(2.5, variable.getDoubleValue());
    std::unique_ptr<CFCVariableData> const clone(variable.CloneVariable());
    EXPECT_TRUE(clone->IsEqual(&variable));
    EXPECT_TRUE(variable.AddOption(L"one"));
    EXPECT_EQ(1, variable.GetOptionCount());
}

TEST(ExportedClass, CFCVariableList) {
    useList<CFCVariableList, CFCVariableData>();
    CFCVariableList list;
    auto* const variable = new CFCVariableData;
    variable->SetVariableName(L"flow");
    list.AddTail(variable);
    EXPECT_EQ(variable, list.FindByExactName(L"flow"));
    EXPECT_EQ(nullptr, list.FindByExactName(L"FLOW"));
    list.DeleteAll();
}

// --- Workflow data ---------------------------------------------------------------------------------------------------

TEST(ExportedClass, CFCActionData) {
    useAction<CFCActionData>();
}
TEST(ExportedClass, CFCEventActionData) {
    useAction<CFCEventActionData>();
}
TEST(ExportedClass, CFCExceptionActionData) {
    useAction<CFCExceptionActionData>();
}
TEST(ExportedClass, CFCTimerActionData) {
    useAction<CFCTimerActionData>();
}
TEST(ExportedClass, CFCReminderData) {
    useAction<CFCReminderData>();
}

TEST(ExportedClass, CFCTransitionData) {
    useAction<CFCTransitionData>();
    CFCTransitionData transition;
    transition.SetTransitionTo(L"done");
    EXPECT_STREQ(L"done", transition.GetTransitionTo());
    EXPECT_EQ(8, transition.GetInport());
    transition.AddPoint(1, {3, 4});
    EXPECT_EQ(4, transition.GetPoints()[1].y);
}

TEST(ExportedClass, CFCEventList) {
    useList<CFCEventList, CFCEventActionData>();
}
TEST(ExportedClass, CFCExceptionList) {
    useList<CFCExceptionList, CFCExceptionActionData>();
}
TEST(ExportedClass, CFCTimerList) {
    useList<CFCTimerList, CFCTimerActionData>();
}
TEST(ExportedClass, CFCReminderList) {
    useList<CFCReminderList, CFCReminderData>();
}
TEST(ExportedClass, CFCTransitionList) {
    useList<CFCTransitionList, CFCTransitionData>();
}

TEST(ExportedClass, CFCBPMBlockData) {
    CFCBPMBlockData data;
    EXPECT_DOUBLE_EQ(8.0, data.GetEffort());
    data.SetWBS(L"1.2");
    CFCTransitionData* const transition = data.CreateNewTransition();
    ASSERT_NE(nullptr, transition);
    EXPECT_EQ(1, data.GetTransitionList()->GetCount());
    CFCBPMBlockData other;
    CFCBPMBlockData::Copy(&data, &other, 0);
    EXPECT_STREQ(L"1.2", other.GetWBS());
    data.RemoveTransitionList();
    EXPECT_EQ(0, data.GetTransitionList()->GetCount());
}

TEST(ExportedClass, CFCBPMTaskNode) {
    Tree<CFCBPMTaskNode> const task = make<CFCBPMTaskNode>(150);
    ASSERT_NE(nullptr, task);
    EXPECT_EQ(task.get(), task->GetBPMBlockData());
    EXPECT_TRUE(task->IsBPMNode());
}

TEST(ExportedClass, CFCBPMProcessNode) {
    Tree<CFCBPMProcessNode> const process = make<CFCBPMProcessNode>(160);
    ASSERT_NE(nullptr, process);
    EXPECT_EQ(process.get(), CFCPointerConverter::GetBPMProcessNode(process.get()));
    EXPECT_TRUE(process->IsBPMNode());
}

TEST(ExportedClass, CFCApplicationNode) {
    Tree<CFCApplicationNode> const application = make<CFCApplicationNode>(167);
    ASSERT_NE(nullptr, application);
    application->SetAppType(L"Solver");
    CFCArgumentData* const argument = application->CreateNewArgument();
    ASSERT_NE(nullptr, argument);
    argument->SetArgumentName(L"input");
    ASSERT_NE(nullptr, application->CreateNewDeployment());
    Tree<CFCApplicationNode> const clone(CFCApplicationNode::Clone(application.get()));
    ASSERT_NE(nullptr, clone);
    EXPECT_STREQ(L"Solver", application->GetAppType());
    EXPECT_EQ(1, application->GetArgumentList()->GetCount());
}

TEST(ExportedClass, CFCArgumentData) {
    CFCArgumentData argument;
    argument.SetArgumentName(L"input");
    std::unique_ptr<CFCArgumentData> const clone(argument.CloneArgument());
    EXPECT_STREQ(L"input", clone->GetArgumentName());
    argument.SetArgumentValue(L"mesh.dat");
    EXPECT_NE(nullptr, std::wcsstr(argument.GetJSONString(), L"mesh.dat"));
}

TEST(ExportedClass, CFCCmdLineData) {
    CFCCmdLineData line;
    line.SetCmdName(L"run");
    line.SetAppId(3);
    CFCCmdLineData copy(line);
    EXPECT_STREQ(L"run", copy.GetCmdName());
    EXPECT_EQ(3, copy.GetAppId());
}

TEST(ExportedClass, CFCPatternData) {
    CFCPatternData pattern;
    pattern.SetPatternName(L"mesh");
    CFCPatternData other;
    CFCPatternData::Copy(&pattern, &other);
    EXPECT_STREQ(L"mesh", other.GetPatternName());
    EXPECT_NE(nullptr, std::wcsstr(pattern.GetJSONString(), L"mesh"));
}

TEST(ExportedClass, CFCDeploymentData) {
    CFCDeploymentData deployment;
    CFCVariableData* const folder = deployment.CreateNewVariable();
    ASSERT_NE(nullptr, folder);
    folder->SetVariableName(L"Folder");
    folder->SetValue(L"bin");
    EXPECT_STREQ(L"bin", deployment.GetVariableValue(L"Folder"));
    Tree<CFCDeploymentData> const clone(CFCDeploymentData::CloneDeployment(&deployment));
    ASSERT_NE(nullptr, clone);
    EXPECT_STREQ(L"bin", clone->GetVariableValue(L"Folder"));
    deployment.GetVariableList()->DeleteAll();
    clone->GetVariableList()->DeleteAll();
}

TEST(ExportedClass, CFCResourceData) {
    CFCResourceData resource;
    resource.setNumberOfCores(8);
    resource.setRAM(32, TMemoryUnitDefault);
    unsigned int size = 0;
    _TMemoryUnitId unit{};
    CFCResourceData(resource).getRAM(size, unit);
    EXPECT_EQ(32U, size);
    EXPECT_EQ(TMemoryUnitDefault, unit);
}

TEST(ExportedClass, CFCArgumentList) {
    useList<CFCArgumentList, CFCArgumentData>();
}
TEST(ExportedClass, CFCCmdLineList) {
    useList<CFCCmdLineList, CFCCmdLineData>();
}
TEST(ExportedClass, CFCPatternList) {
    useList<CFCPatternList, CFCPatternData>();
}
TEST(ExportedClass, CFCDeploymentList) {
    useList<CFCDeploymentList, CFCDeploymentData>();
}

// --- Catalogs --------------------------------------------------------------------------------------------------------

TEST(ExportedClass, NodeCode) {
    NodeCode code;
    code.getCodePython = L"get";
    NodeCode const copy = code;
    EXPECT_STREQ(L"get", copy.getCodePython);
}

TEST(ExportedClass, CFCDataTypeNode) {
    CFCDataTypeNode node;
    node.SetType(L"Int");
    node.SetCodeNode(EScriptType_PYTHON, L"value", true);
    ASSERT_NE(nullptr, node.GetCodeNode());
    EXPECT_STREQ(L"value", node.GetCodeNode()->getCodePython);
    CFCDataTypeNode other;
    EXPECT_TRUE(CFCDataTypeNode::Copy(&node, &other));
    EXPECT_STREQ(L"Int", other.GetType());
}

TEST(ExportedClass, CFCDataTypeList) {
    CFCDataTypeList list;
    list.SetType(L"All");
    CFCDataTypeList const copy(list);
    EXPECT_STREQ(L"All", CFCDataTypeList(copy).GetType());
}

TEST(ExportedClass, CFCFileNode) {
    CFCFileNode node(70);
    node.SetNodeId(L"beam");
    node.SetItemFilePath(L"beam.bpt");
    EXPECT_EQ(70, make<CFCFileNode>(70)->GetNodeType());
    EXPECT_STREQ(L"beam.bpt", CFCFileNode(node).GetItemFilePath());
}

TEST(ExportedClass, CFCFileTypeNode) {
    CFCFileTypeNode node;
    node.SetFileTypeExtension(L"png");
    node.SetModified(true);
    EXPECT_TRUE(node.IsModified());
    CFCFileTypeNode other;
    EXPECT_TRUE(CFCFileTypeNode::Copy(&node, &other));
    EXPECT_STREQ(L"png", other.GetFileTypeExtension());
}

TEST(ExportedClass, CFCMimeTypeNode) {
    CFCMimeTypeNode node;
    node.SetContentType(L"text/plain");
    EXPECT_STREQ(L"text/plain", CFCMimeTypeNode(node).GetContentType());
}

TEST(ExportedClass, CFCCodeNode) {
    CFCCodeNode node;
    node.SetNodeCode(L"pass");
    EXPECT_STREQ(L"pass", CFCCodeNode(node).GetNodeCode());
}

TEST(ExportedClass, CFCDocumentNode) {
    CFCDocumentNode node;
    node.SetDocType(2);
    node.SetOpened(true);
    CFCDocumentNode copy(node);
    EXPECT_EQ(2, copy.GetDocType());
    EXPECT_TRUE(copy.IsOpened());
}

TEST(ExportedClass, CFCFavouriteNode) {
    Tree<CFCFavouriteNode> const favourites(new CFCFavouriteNode);
    EXPECT_EQ(nullptr, favourites->GetFolderNode(L"Mine"));
    IFCNode* const folder = add(favourites.get(), 179, L"Mine");
    EXPECT_EQ(folder, favourites->GetFolderNode(L"Mine"));
}

TEST(ExportedClass, CFCPackageNode) {
    CFCPackageNode package;
    package.SetVersion(L"2.1");
    EXPECT_STREQ(L"2.1", CFCPackageNode(package).GetVersion());
}

TEST(ExportedClass, CFCAPIHelpNode) {
    CFCAPIHelpNode node;
    node.SetNodeText(L"Opens a file.");
    EXPECT_STREQ(L"Opens a file.", CFCAPIHelpNode(node).GetNodeText());
}

// --- Algorithms ------------------------------------------------------------------------------------------------------

TEST(ExportedClass, CFCNodeHelper) {
    Tree<> const process = plant();
    IFCNode* const pump = process->GetChild();
    EXPECT_EQ(pump, CFCNodeHelper::FindNodeByCaption(L"pump", process.get()));
    EXPECT_TRUE(CFCNodeHelper::IsValidNode(process.get(), pump));
    Tree<> const clone(CFCNodeHelper::Clone(pump));
    ASSERT_NE(nullptr, clone);
    EXPECT_NE(pump, clone.get());
    EXPECT_STREQ(L"pump", clone->GetNodeCaption());
    EXPECT_EQ(57, CFCNodeHelper::GetNodeTypeFromName(L"BLOCK"));
}

// --- XML -------------------------------------------------------------------------------------------------------------

TEST(ExportedClass, CTXMLFilerUseful) {
    TuString text;
    CTXMLFilerUseful::TXMLDOMStringToCStringNew(u"Gr\u00F6\u00DFe", text);
    EXPECT_STREQ(L"Gr\u00F6\u00DFe", text);
}

TEST(ExportedClass, CTXMLBaseReader) {
    Folder const folder;
    CTXMLBaseReader reader;
    ASSERT_TRUE(reader.Initialize(folder.write("a.xml", "<A><B n='7' s='text'/></A>")));
    XERCES_CPP_NAMESPACE::DOMElement* root = nullptr;
    XERCES_CPP_NAMESPACE::DOMElement* element = nullptr;
    ASSERT_TRUE(reader.GetElement(L"A", nullptr, &root, -1));
    ASSERT_TRUE(reader.GetElement(L"B", root, &element, -1));
    int number = 0;
    TuString text;
    EXPECT_TRUE(reader.GetAttribute(element, L"n", number));
    EXPECT_TRUE(reader.GetAttribute(element, L"s", text));
    EXPECT_EQ(7, number);
    EXPECT_STREQ(L"text", text);
    EXPECT_FALSE(reader.Initialize(folder.write("b.xml", "<A>")));
    EXPECT_EQ(1, reader.GetErrorLine());
}

TEST(ExportedClass, CTXMLChildIterator) {
    Folder const folder;
    CTXMLBaseReader reader;
    ASSERT_TRUE(reader.Initialize(folder.write("a.xml", "<A><C/>text<D/></A>")));
    XERCES_CPP_NAMESPACE::DOMElement* parent = nullptr;
    ASSERT_TRUE(reader.GetElement(L"A", nullptr, &parent, -1));
    CTXMLChildIterator children(parent);
    int elements = 0;
    for (children.Head(); children.More(); children.Next())
        elements += children.GetNodeElement() != nullptr ? 1 : 0;
    EXPECT_EQ(2, elements);
}

// A host's own writer adds to what is written.
class AddingWriter : public CFCWriter {
public:
    void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override {
        CFCWriter::WriteProperties(node, element);
        isWritten = CTXMLBaseWriter::SetSimpleAttribute(element, L"added", L"by the host") &&
                    CTXMLBaseWriter::SetBoolAttribute(element, L"flag", true) &&
                    CTXMLBaseWriter::CreateElement(element, L"MORE") != nullptr;
    }

    bool isWritten = false;
};

TEST(ExportedClass, CTXMLBaseWriter) {
    Folder const folder;
    Tree<> const tree = plant();
    AddingWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.bpt"), tree.get(), true));
    EXPECT_TRUE(writer.isWritten);
    EXPECT_TRUE(folder.holds("a.bpt", "added=\"by the host\""));
    EXPECT_TRUE(folder.holds("a.bpt", "<MORE/>"));
    CTXMLBaseWriter const plain;
    EXPECT_EQ(nullptr, CTXMLBaseWriter(plain).CreateElement(nullptr, L"A"));
}

// --- Files -----------------------------------------------------------------------------------------------------------

// A host's own reader is told of every folder.
class CountingReader : public CFCReader {
public:
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node) override {
        CFCReader::LoadPropertiesLite(element, node);
        ++count;
    }

    int count = 0;
};

TEST(ExportedClass, CFCReader) {
    Folder const folder;
    TuString const file =
        folder.write("a.bpt", "<PROCESS Name='Plant'><BLOCK Name='pump' ID='pump'/><SUB_GRP Name='Group'/></PROCESS>");
    CFCNodeFactory factory;
    CountingReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    ASSERT_TRUE(reader.Parse(file, &node, 16));
    Tree<> const read(node);
    EXPECT_EQ(L"Group pump Last Opened Favourites", captions(read.get()));
    EXPECT_EQ(1, reader.count);
    EXPECT_TRUE(reader.GetReadFindings().empty());
    EXPECT_FALSE(CFCReader(reader).Parse(folder.path("b.bpt"), &node, 16));
}

TEST(ExportedClass, CFCWriter) {
    Folder const folder;
    Tree<> const tree = plant();
    tree->GetChild()->GetVariableList()->Find(L"flow")->SetLinkPath(L"Gone.y");
    CFCWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.xml"), tree.get(), true));
    EXPECT_TRUE(folder.holds("a.xml", "pump"));
    EXPECT_FALSE(writer.GetVariableErrors().IsEmpty());
    CFCWriter::LoadAndFormatXML(folder.path("a.xml"));
    EXPECT_TRUE(folder.holds("a.for", "pump"));
}

TEST(ExportedClass, CFCApplicationWriter) {
    Folder const folder;
    Tree<> const task = make(150);
    task->SetNodeCaption(L"Solve");
    CFCApplicationWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.xml"), task.get(), true));
    EXPECT_TRUE(folder.holds("a.xml", "label=\"Solve\""));
}

TEST(ExportedClass, CFCAPIHelpReader) {
    Folder const folder;
    CFCNodeFactory factory;
    Tree<CFCProcessList> const list = make<CFCProcessList>(69);
    CFCAPIHelpReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(folder.write("a.xml", "<P Name='Help'><MODULE Name='m'/></P>"), list.get()));
    EXPECT_EQ(L"m", captions(list.get()));
}

TEST(ExportedClass, CFCDataTypeListReader) {
    Folder const folder;
    CFCNodeFactory factory;
    Tree<CFCDataTypeNode> const list = make<CFCDataTypeNode>(81);
    CFCDataTypeListReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(folder.write("a.xml", "<D><DATATYPE Name='Whole' Type='Int'/></D>"), list.get()));
    EXPECT_EQ(L"Whole", captions(list.get()));
    CFCDataTypeListReader::RefreshDataTypes();
    EXPECT_EQ(nullptr, CFCDataTypeListReader::GetDataTypeRootNode()) << "there is no catalog";
}

TEST(ExportedClass, CFCDataTypeListWriter) {
    Folder const folder;
    Tree<CFCDataTypeNode> const list = make<CFCDataTypeNode>(81);
    list->SetNodeCaption(L"All");
    add(list.get(), 80, L"Whole");
    CFCDataTypeListWriter writer;
    TuString name;
    EXPECT_TRUE(writer.GetObjectType(list.get(), name));
    EXPECT_STREQ(L"GROUP", name);
    ASSERT_TRUE(writer.WriteFile(folder.path("a.xml"), list.get(), true));
    EXPECT_TRUE(folder.holds("a.xml", "Whole"));
}

TEST(ExportedClass, CFCFavouriteReader) {
    Folder const folder;
    CFCNodeFactory factory;
    Tree<CFCProcessNode> const process = make<CFCProcessNode>(56);
    IFCNode* node = process.get();
    CFCFavouriteReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(
        folder.write("a.xml", "<P><FAVOURITES Name='Mine'><CUSTOM_FOLDER Name='a'/></FAVOURITES></P>"), &node));
    EXPECT_EQ(L"a", captions(process->GetFavouriteNode()));
}

TEST(ExportedClass, CFCFavouriteWriter) {
    Folder const folder;
    Tree<CFCProcessNode> const process = make<CFCProcessNode>(56);
    add(process->GetFavouriteNode(), 179, L"Mine");
    CFCFavouriteWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.xml"), process.get(), true));
    EXPECT_TRUE(folder.holds("a.xml", "Mine"));
}

TEST(ExportedClass, CFCFileTypeListReader) {
    Folder const folder;
    CFCNodeFactory factory;
    Tree<CFCDataTypeNode> const list = make<CFCDataTypeNode>(81);
    CFCFileTypeListReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(folder.write("a.xml", "<F><FILETYPE name='Mesh' extension='msh'/></F>"), list.get()));
    auto* const type = dynamic_cast<CFCFileTypeNode*>(list->GetChild());
    ASSERT_NE(nullptr, type);
    EXPECT_STREQ(L"msh", type->GetFileTypeExtension());
}

TEST(ExportedClass, CFCFileTypeListWriter) {
    Folder const folder;
    Tree<> const list = make(81);
    dynamic_cast<CFCFileTypeNode*>(add(list.get(), 83, L"mesh"))->SetFileTypeName(L"Mesh");
    CFCFileTypeListWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.xml"), list.get(), true));
    EXPECT_TRUE(folder.holds("a.xml", "Mesh"));
}

TEST(ExportedClass, CFCHintsReader) {
    Folder const folder;
    CFCHintsReader reader;
    ASSERT_TRUE(reader.Parse(folder.write("a.xml", "<H><FORK Block='b' Action='a'/></H>")));
    EXPECT_STREQ(L"b", CFCHintsReader::BlockHints()[156]);
    EXPECT_STREQ(L"a", CFCHintsReader::ActionHints()[156]);
    CFCHintsReader::BlockHints().clear();
    CFCHintsReader::ActionHints().clear();
}

TEST(ExportedClass, CFCManifestReader) {
    Folder const folder;
    CFCNodeFactory factory;
    CFCManifestReader reader;
    reader.SetNodeFactory(&factory);
    CFCPackageNode* package = nullptr;
    ASSERT_TRUE(reader.Parse(folder.write("a.mf", "<M><MANIFEST_INFO Version='2.1'/></M>"), &package));
    Tree<CFCPackageNode> const end(package);
    ASSERT_NE(nullptr, package);
    EXPECT_STREQ(L"2.1", package->GetVersion());
}

TEST(ExportedClass, CFCManifestWriter) {
    Folder const folder;
    CFCPackageNode package;
    package.SetNodeType(172);
    package.SetVersion(L"2.1");
    CFCManifestWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.mf"), &package, true));
    EXPECT_TRUE(folder.holds("a.mf", "2.1"));
}

TEST(ExportedClass, CFCMimeTypeReader) {
    Folder const folder;
    CFCNodeFactory factory;
    Tree<CFCMimeTypeNode> const list = make<CFCMimeTypeNode>(86);
    CFCMimeTypeReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(folder.write("a.xml", "<M><MIMETYPE contentType='text/plain'/></M>"), list.get()));
    auto* const type = dynamic_cast<CFCMimeTypeNode*>(list->GetChild());
    ASSERT_NE(nullptr, type);
    EXPECT_STREQ(L"text/plain", type->GetContentType());
}

TEST(ExportedClass, CFCProcessListReader) {
    Folder const folder;
    CFCNodeFactory factory;
    Tree<CFCProcessList> const list = make<CFCProcessList>(69);
    CFCProcessListReader reader;
    reader.SetNodeFactory(&factory);
    ASSERT_TRUE(reader.Parse(folder.write("a.lst", "<P Name='Mine'><PROCESS Name='Beam' FILE='beam.bpt'/></P>"),
                             list.get(), L"base"));
    EXPECT_EQ(L"Beam", captions(list.get()));
}

TEST(ExportedClass, CFCProcessListWriter) {
    Folder const folder;
    Tree<> const list = make(69);
    add(list.get(), 70, L"Beam")->SetItemFilePath(L"beam.bpt");
    CFCProcessListWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.lst"), list.get(), true, true));
    EXPECT_TRUE(folder.holds("a.lst", "Beam"));
    EXPECT_FALSE(writer.WriteNewFile()) << "there is no list to add to";
}

TEST(ExportedClass, FCUtility) {
    Folder const folder;
    Tree<> const tree = plant();
    TuString errors(L"of before");
    ASSERT_TRUE(FCUtility::CFCWriter_WriteFileGetVariableErrors(folder.path("a.bpt"), tree.get(), true, errors));
    EXPECT_STREQ(L"", errors);
    CFCNodeFactory factory;
    IFCNode* node = nullptr;
    ASSERT_TRUE(FCUtility::CFCReader_Parse(factory, folder.path("a.bpt"), &node, 16));
    Tree<> const read(node);
    EXPECT_STREQ(L"Plant", read->GetNodeCaption());
}

// --- Workflow folders and schedules ----------------------------------------------------------------------------------

TEST(ExportedClass, CFCProcessDefinitionWriter) {
    Folder const folder;
    fs::create_directories(folder / "flow");
    Tree<> const tree = make(160);
    tree->SetNodeCaption(L"Flow");
    add(tree.get(), 150, L"step");
    CFCProcessDefinitionWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.backslashes("flow/processdefinition.xml"), tree.get(), true));
    EXPECT_TRUE(folder.holds("flow/processdefinition.xml", "name=\"step\""));
    TuString name;
    EXPECT_TRUE(writer.GetObjectType(make(156).get(), name));
    EXPECT_STREQ(L"fork", name);
}

TEST(ExportedClass, CFCProcessDefinitionReader) {
    Folder const folder;
    folder.write("flow/processdefinition.xml", "<process-definition name='Flow'><task-node name='step'>"
                                               "<transition to='done'/></task-node><end-state name='done'/>"
                                               "</process-definition>");
    folder.write("flow/process.var", "<P/>");
    CFCNodeFactory factory;
    CFCProcessDefinitionReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    ASSERT_TRUE(reader.Parse(folder.backslashes("flow/processdefinition.xml"), &node, 16));
    Tree<> const tree(node);
    EXPECT_STREQ(L"Flow", tree->GetNodeCaption());
    ASSERT_NE(nullptr, tree->FindNodeSimple(L"step"));
    EXPECT_EQ(1, tree->GetConnectorList()->GetCount());
    ASSERT_EQ(1U, reader.GetFindings().size());
    EXPECT_EQ(CFCWorkflowFinding::LayoutMissing, reader.GetFindings()[0].kind);
}

TEST(ExportedClass, CFCGPDWriter) {
    Folder const folder;
    Tree<> const tree = make(160);
    add(tree.get(), 150, L"step");
    CFCGPDWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("gpd.xml"), tree.get(), true));
    EXPECT_TRUE(folder.holds("gpd.xml", "step"));
}

TEST(ExportedClass, CFCGPDReader) {
    Folder const folder;
    Tree<> const tree = make(160);
    IFCNode* const step = add(tree.get(), 150, L"step");
    step->SetTuRect(10, 20, 30, 40);
    ASSERT_TRUE(CFCGPDWriter().WriteFile(folder.path("gpd.xml"), tree.get(), true));
    step->SetTuRect(0, 0, 0, 0);
    CFCGPDReader reader;
    ASSERT_TRUE(reader.Parse(folder.path("gpd.xml"), tree.get(), 16));
    EXPECT_EQ(10, step->GetTuRect()->left);
    EXPECT_TRUE(reader.GetLayoutFindings().empty());
}

TEST(ExportedClass, CFCProcessVarWriter) {
    Folder const folder;
    Tree<> const tree = make(160);
    IFCNode* const step = add(tree.get(), 150, L"step");
    step->CreateNewVariable()->SetVariableName(L"flow");
    CFCProcessVarWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("process.var"), tree.get(), true));
    EXPECT_TRUE(folder.holds("process.var", "flow"));
}

TEST(ExportedClass, CFCProcessVarReader) {
    Folder const folder;
    Tree<> const tree = make(160);
    IFCNode* const step = add(tree.get(), 150, L"step");
    step->CreateNewVariable()->SetVariableName(L"flow");
    ASSERT_TRUE(CFCProcessVarWriter().WriteFile(folder.path("process.var"), tree.get(), true));
    step->GetVariableList()->DeleteAll();
    CFCProcessVarReader reader;
    ASSERT_TRUE(reader.Parse(folder.path("process.var"), tree.get(), 16));
    EXPECT_NE(nullptr, step->GetVariableList()->Find(L"flow"));
}

TEST(ExportedClass, CFCWorkFlowWriter) {
    Folder const folder;
    Tree<> const tasks = make(160);
    add(tasks.get(), 150, L"step");
    Tree<> const applications = make(168);
    add(applications.get(), 167, L"solver");
    CFCWorkFlowWriter writer;
    ASSERT_TRUE(writer.WriteFile(folder.path("a.xml"), tasks.get(), applications.get()));
    EXPECT_TRUE(folder.holds("a.xml", "step"));
    EXPECT_TRUE(folder.holds("a.xml", "solver"));
}

TEST(ExportedClass, CFCMSPReader) {
    Folder const folder;
    CFCNodeFactory factory;
    CFCMSPReader reader;
    reader.SetNodeFactory(&factory);
    IFCNode* node = nullptr;
    ASSERT_TRUE(reader.Parse(folder.write("a.xml", "<Project><Name>Plan</Name><Tasks><Task><UID>1</UID><Name>One</Name>"
                                                   "<Type>1</Type><WBS>1</WBS></Task></Tasks></Project>"),
                             &node, 16));
    Tree<> const tree(node);
    EXPECT_EQ(EProjectType_MSP, tree->GetProjectType());
    EXPECT_EQ(1, reader.GetTaskCount());
}

// --- Execution -------------------------------------------------------------------------------------------------------

TEST(ExportedClass, TCommandGui) {
    TCommandGui gui("Command");
    EXPECT_EQ(0, gui.CreateWithoutGUI());
    EXPECT_EQ(0, gui.Activate(1, "a"));
    EXPECT_EQ(nullptr, gui.GetResourceInfoFromId(1));
    EXPECT_EQ(-1, gui.TCmdGetResourceId("a"));
}

TEST(ExportedClass, CFCCommand) {
    CFCCommand* const command = activateFlowmereCommand();
    ASSERT_NE(nullptr, command);
    EXPECT_EQ(command, activateFlowmereCommand());
    EXPECT_EQ(-1, command->ExecuteCommand("No such command", nullptr));
    EXPECT_EQ(-1, command->SetValues("No such resource", "int", nullptr, 0));
    EXPECT_EQ(nullptr, command->getResourceFromName("No such resource"));
    EXPECT_NE(nullptr, command->getResourceFromName("Executing Block"));
}

TEST(ExportedClass, CFCExecutive) {
    // The last one built answers for good, so it must not end before the program does.
    static CFCExecutive executive;
    EXPECT_EQ(&executive, getExecutive());
    Tree<CFCProcessNode> const process = plant();
    executive.setActiveProcess(process.get());
    EXPECT_EQ(process.get(), executive.getActiveProcess());
    CFCExecutive const copy(executive);
    EXPECT_EQ(process.get(), copy.getActiveProcess());
    executive.setActiveProcess(nullptr);
    EXPECT_EQ(nullptr, executive.getActiveProcess());
}

TEST(ExportedClass, FCExecutionMechanism) {
    FCExecutionMechanism mechanism;
    EXPECT_EQ(CFCProcessNode::ExecutionByLoop, mechanism.getExecutionMode());
    EXPECT_FALSE(mechanism.onBegin()) << "there is no process";
    CFCBlockNode block;
    mechanism.setExecutingBlock(&block);
    EXPECT_EQ(&block, mechanism.getExecutingBlock());
    mechanism.setExecutingBlock(nullptr);
    EXPECT_FALSE(mechanism.isRunning());
}

TEST(ExportedClass, CFCScriptWriter) {
    Folder const folder;
    Tree<> const process = plant();
    CFCScriptWriter writer;
    EXPECT_FALSE(writer.IsValid());
    writer.SetNode(process->GetChild());
    EXPECT_TRUE(writer.IsValid());
    writer.SetMainFileName(folder.path("pump.py"));
    writer.GenerateMainFile();
    EXPECT_TRUE(folder.holds("pump.py", "pump"));
    std::ostringstream line;
    writer.InsertLine(line, L"pass", true);
    EXPECT_EQ("pass\n", line.str());
}

TEST(ExportedClass, CFCPythonInterface) {
    Folder const folder;
    folder.write("Seven.py", "class Seven:\n"
                             "    def __init__(self, argument):\n"
                             "        pass\n"
                             "    def Check(self):\n"
                             "        return 7\n");
    // The interpreter comes up with the first object.
    ASSERT_EQ(0, ::setenv("PYTHONPATH", (folder / "").c_str(), 1));
    ASSERT_EQ(0, ::setenv("PYTHONDONTWRITEBYTECODE", "1", 1));
    CFCPythonInterface python;
    EXPECT_EQ(7, python.executeCheckInterface("Seven", "Check"));
    int status = 0;
    EXPECT_EQ(-1, python.executeBlockInterface("Seven", "Check", &status));
    EXPECT_EQ(1, status);
}

// --- What is no class ------------------------------------------------------------------------------------------------

TEST(ExportedFunction, Module) {
    EXPECT_STREQ("Dynamic linked library", Flowmere_get_module_info(0));
    EXPECT_EQ(0U, std::string(Flowmere_get_module_info(1)).find(flowmere::versionText()));
    _localFnToKeepFlowmereDllLoaded();
    EXPECT_STRNE("", flowmere::xercesVersionText());
    EXPECT_STRNE("", flowmere::pythonVersionText());
}

std::wstring told;

TEST(ExportedFunction, Console) {
    TuSetConsoleSink([](_TuMessageType, wchar_t const* text) { told = text; });
    TuWriteConsoleMessage(TuMessageOrdinary, L"%d blocks", 3);
    TuSetConsoleSink(nullptr);
    EXPECT_EQ(L"3 blocks", told);
    TuEnableDLLUnloadWarning(false);
    EXPECT_FALSE(TuIsDLLUnloadWarningEnabled());
    TuEnableDLLUnloadWarning(true);
    EXPECT_TRUE(TuIsDLLUnloadWarningEnabled());
    TuSetTranslator([](wchar_t const*, int) -> wchar_t const* { return L"translated"; });
    EXPECT_STREQ(L"translated", TuLocalizeStringExW(L"text", 0));
    TuSetTranslator(nullptr);
    EXPECT_STREQ(L"text", TuLocalizeStringExW(L"text", 0));
}

TEST(ExportedFunction, MemoryAndFiles) {
    void* const block = TuMalloc(16);
    EXPECT_NE(nullptr, block);
    TuFree(block);
    char* const copy = TuStrDup("text");
    EXPECT_STREQ("text", copy);
    TuFree(copy);
    Folder const folder;
    std::FILE* const file = TuFOpen((folder / "a.txt").c_str(), "w");
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(0, TuFClose(file));
}

TEST(ExportedFunction, Numbers) {
    EXPECT_EQ(-12, TuStrToIntW(L"-12"));
    EXPECT_EQ(5000000000, TuStrToInt64W(L"5000000000"));
    EXPECT_FLOAT_EQ(2.5F, TuStrToFloatW(L"2.5"));
}

TEST(ExportedFunction, Commands) {
    EXPECT_NE(nullptr, activateFlowmereCommand());
    EXPECT_NE(nullptr, getExecutive());
}

TEST(ExportedFunction, Templates) {
    for (wchar_t const* const text : {FCVariableJSONTemplate, FCArgumentJSONTemplate, FCPatternJSONTemplate})
        EXPECT_STRNE(L"", text);
}

} // namespace
