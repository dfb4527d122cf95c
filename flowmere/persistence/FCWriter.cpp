#include "flowmere/persistence/FCWriter.h"

#include "flowmere/algorithms/LinkEnds.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCProcessNode.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"
#include "flowmere/model/NodeKinds.h"
#include "flowmere/model/ParentChain.h"
#include "flowmere/persistence/ShapeElements.h"
#include "flowmere/xml/XmlElements.h"
#include "flowmere/xml/XmlFile.h"
#include "flowmere/xml/XmlPlatform.h"

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <vector>

using XERCES_CPP_NAMESPACE::DOMElement;
using XERCES_CPP_NAMESPACE::DOMNode;

namespace {

constexpr int kProcess = 56;
constexpr int kFile = 70;
constexpr int kFirstWorkflow = 150;
constexpr int kWorkflowProcess = 160;
constexpr int kLastWorkflow = 167;
constexpr int kFavourites = 176;
constexpr int kHistory = 178;

constexpr int kConnectors = 0;
constexpr int kOutPorts = 1;
constexpr int kInPorts = 2;

constexpr std::int64_t kPageHeight = 1300;

bool isProcessLike(int type) {
    return type == kProcess || type == kFile || type == kWorkflowProcess;
}

std::wstring_view view(wchar_t const* text) {
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

void setText(DOMNode* element, flowmere::XmlName name, wchar_t const* text) {
    flowmere::setText(element, name, view(text));
}

// Files hold forward slashes.
TuString withSlashes(wchar_t const* text) {
    TuString result(text);
    result.Replace(L'\\', L'/');
    return result;
}

// Objects may not nest deeper than this, so that the file can be read again: below an object there are up to three
// further levels, of a template variable and its options.
constexpr int kMaxObjectDepth = flowmere::kMaxElementDepth - 3;

// The children from the first to the last. A chain whose links form a ring counts as empty.
struct ChildChain {
    IFCNode* last = nullptr;
    std::size_t length = 0;
};

ChildChain childrenOf(IFCNode* node) {
    ChildChain chain{node->GetChild(), 1};
    IFCNode* checkpoint = chain.last;
    std::size_t limit = 2;
    while (chain.last != nullptr) {
        IFCNode* const next = chain.last->GetNext();
        if (next == nullptr)
            return chain;
        if (next == checkpoint)
            break;
        chain.last = next;
        if (++chain.length == limit) {
            checkpoint = next;
            limit *= 2;
        }
    }
    return {};
}

void writeFlags(DOMNode* parent, CFCBlockData* block) {
    DOMElement* const element = flowmere::appendElement(parent, u"FLAGS");
    if (element == nullptr || block == nullptr)
        return;
    flowmere::setFlag(element, u"Undo", block->GetUndoFlag());
    flowmere::setFlag(element, u"Skip", block->GetSkipFlag());
    flowmere::setFlag(element, u"Break", block->GetStopFlag());
    flowmere::setInteger(element, u"Reference", block->GetReferenceBlock());
}

void writePortNames(DOMNode* parent, CFCBlockData* block) {
    DOMElement* const element = flowmere::appendElement(parent, u"PORT");
    if (element == nullptr || block == nullptr)
        return;
    CFCPortList* const ports = block->GetPortList();
    setText(element, u"InPort", ports->GetInPort()->GetPortName());
    setText(element, u"OutPort", ports->GetOutPort()->GetPortName());
    setText(element, u"NextPort", ports->GetNextPort()->GetPortName());
}

void writeHelp(DOMNode* parent, CFCBlockData* block) {
    DOMElement* const element = flowmere::appendElement(parent, u"HELP");
    if (element == nullptr || block == nullptr)
        return;
    setText(element, u"MicroHelp", block->GetToolTip());
    setText(element, u"Description", block->GetDescription());
    setText(element, u"KnowledgeAdvisory", block->GetHelpFile());
}

void writeTask(DOMNode* parent, CFCBPMBlockData* task) {
    DOMElement* const element = flowmere::appendElement(parent, u"BPM");
    if (element != nullptr && task != nullptr)
        setText(element, u"Description", task->GetTaskDescription());
}

void writeApplication(DOMNode* parent, CFCBPMBlockData* task) {
    DOMElement* const element = flowmere::appendElement(parent, u"APPLICATION");
    if (element == nullptr || task == nullptr)
        return;
    setText(element, u"Name", task->GetApplication());
    setText(element, u"Deployment", task->GetDeployment());
    setText(element, u"Executable", task->GetExecutable());
}

// The three texts of the command form, each only when there is one.
void writeCommandTexts(DOMNode* element, CFCBlockData* block) {
    struct Row {
        flowmere::XmlName name;
        wchar_t const* text;
    };
    Row const rows[] = {
        {u"ScriptCmdInterface", block->GetCOMInteface()},
        {u"ScriptCMD", block->GetCOMCommand()},
        {u"ScriptExecute", block->GetExecuteMethod()},
    };
    for (Row const& row : rows) {
        if (!view(row.text).empty())
            setText(element, row.name, row.text);
    }
}

void writeScript(DOMNode* parent, CFCBlockData* block) {
    DOMElement* const element = flowmere::appendElement(parent, u"SCRIPT");
    if (element == nullptr || block == nullptr)
        return;
    TuString name(block->GetRelativeName());
    if (name.IsEmpty())
        name = block->GetScriptName();
    setText(element, u"Name", name);
    TuString const type(block->GetScriptTypeS());
    setText(element, u"ScriptType", type);
    if (type == L"TCMD" || type == L"TCMD_V2")
        writeCommandTexts(element, block);
}

// "DataType" and "Type", as they stand in both variable forms.
void writeDataType(DOMNode* element, CFCVariableData* variable) {
    if (variable->IsFileType()) {
        flowmere::setConstant(element, u"DataType", u"File");
        if (CFCFileTypeNode* const fileType = variable->GetFileTypeNode())
            setText(element, u"Type", fileType->GetFileTypeName());
        return;
    }
    // Without a catalog node the caption stands in the place of the type: files look so, and the
    // reader takes such a type for an unknown one.
    TuString type(variable->GetCaption());
    if (CFCDataTypeNode* const node = variable->GetDataTypeNode()) {
        type = node->GetType();
        if (type.IsEmpty())
            type = variable->GetDataTypeS();
    }
    setText(element, u"DataType", type);
    setText(element, u"Type", variable->GetType());
}

// Calls `visit` for each variable of the node, in list order.
template <typename Visit>
void forEachVariable(IFCNode* node, Visit const& visit) {
    CFCVariableList* const list = node != nullptr ? node->GetVariableList() : nullptr;
    if (list == nullptr)
        return;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        if (CFCVariableData* const variable = list->GetNext(position))
            visit(variable);
    }
}

bool isWritten(CFCConnector* connector) {
    return connector != nullptr && connector->IsValid() && !connector->IsDeleted();
}

bool hasName(CFCVariableData* variable) {
    return !view(variable->GetVariableName()).empty();
}

} // namespace

namespace flowmere {

// The connectors of each container by the block at either end, in list order.
struct ConnectorPorts {
    struct Ends {
        std::vector<CFCConnector*> in;
        std::vector<CFCConnector*> out;
    };
    using Blocks = std::unordered_map<IFCNode*, Ends>;

    Blocks const& of(IFCNode* container) {
        auto const [entry, isNew] = containers.try_emplace(container);
        if (isNew)
            collect(container->GetConnectorList(), entry->second);
        return entry->second;
    }

private:
    static void collect(CFCConnectorList* list, Blocks& blocks) {
        if (list == nullptr)
            return;
        for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
            CFCConnector* const connector = list->GetNext(position);
            if (!isWritten(connector))
                continue;
            blocks[connector->GetEndObject()].in.push_back(connector);
            blocks[connector->GetStartObject()].out.push_back(connector);
        }
    }

    std::unordered_map<IFCNode*, Blocks> containers;
};

} // namespace flowmere

CFCWriter::CFCWriter() : m_strRootName(L"Process") {}

CFCWriter::CFCWriter(CFCWriter const& other)
    : CTXMLBaseWriter(other), m_strFilePath(other.m_strFilePath), m_strRootName(other.m_strRootName),
      m_bDeep(other.m_bDeep), m_strVariableErrors(other.m_strVariableErrors) {}

CFCWriter& CFCWriter::operator=(CFCWriter const& other) {
    CTXMLBaseWriter::operator=(other);
    m_strFilePath = other.m_strFilePath;
    m_strRootName = other.m_strRootName;
    m_bDeep = other.m_bDeep;
    m_strVariableErrors = other.m_strVariableErrors;
    return *this;
}

CFCWriter::~CFCWriter() = default;

TuString const& CFCWriter::GetVariableErrors() const {
    return m_strVariableErrors;
}

bool CFCWriter::WriteFile(wchar_t const* path, IFCNode* node, bool deep) {
    m_bDeep = deep;
    m_strFilePath = path;
    if (m_strFilePath.IsEmpty() || node == nullptr)
        return false;
    // A derived class may change ids, names and connectors on the way.
    std::optional<flowmere::LinkEnds> linkEnds;
    if (typeid(*this) == typeid(CFCWriter)) {
        m_pPorts = std::make_shared<flowmere::ConnectorPorts>();
        linkEnds.emplace(flowmere::topOf(node));
    }
    m_nDepth = 0;
    bool const result = flowmere::writeXmlFile(m_strFilePath, m_strRootName.View(),
                                               [&](DOMElement* root) { WriteObject(node, nullptr, root); });
    m_pPorts.reset();
    return result;
}

void CFCWriter::LoadAndFormatXML(wchar_t const* path) {
    flowmere::formatXmlFile(path);
}

bool CFCWriter::GetObjectType(IFCNode* node, TuString& out) {
    wchar_t const* const name = node != nullptr ? flowmere::elementOfNodeType(node->GetNodeType()) : nullptr;
    if (name == nullptr)
        return false;
    out = name;
    return true;
}

bool CFCWriter::GetShapeType(IFCNode* node, TuString& out) {
    wchar_t const* const name = node != nullptr ? flowmere::shapeOfNodeType(node->GetNodeType()) : nullptr;
    if (name == nullptr)
        return false;
    out = name;
    return true;
}

void CFCWriter::WriteObject(IFCNode* node, DOMNode* parent, DOMNode* self) {
    if (node == nullptr || m_nDepth >= kMaxObjectDepth)
        return;
    int const type = node->GetNodeType();
    if (type == kFavourites || type == kHistory || node->IsDeleted())
        return;
    TuString name;
    if (!GetObjectType(node, name))
        return;
    DOMNode* element = self;
    if (element == nullptr && parent != nullptr)
        element = CreateElement(parent, name);
    if (element == nullptr)
        return;
    ++m_nDepth;
    WriteProperties(node, element);
    WriteVariables(node, element);
    if (m_bDeep) {
        WriteChildren(node, element);
        WriteConnections(node, element, nullptr, kConnectors);
    }
    --m_nDepth;
}

// From the last child to the first: new children stand in front, so this is the order of the file.
void CFCWriter::WriteChildren(IFCNode* node, DOMNode* element) {
    if (node == nullptr)
        return;
    IFCNode* const first = node->GetChild();
    auto [child, left] = childrenOf(node);
    for (; child != nullptr && left > 0; --left) {
        WriteObject(child, element, nullptr);
        // What stands before the first child is stale.
        child = child != first ? child->GetPrev() : nullptr;
    }
}

void CFCWriter::WriteProperties(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    if (isProcessLike(node->GetNodeType())) {
        WritePropertiesRoot(node, element);
        return;
    }
    node->TransferToData();
    CFCBlockData* const block = node->GetFCBlockData();
    setText(element, u"Name", node->GetNodeId());
    setText(element, u"BlockString", node->GetNodeCaption());
    flowmere::setConstant(element, u"DisplayStatus", u"False");
    if (block != nullptr)
        setText(element, u"ExecutionStatus", CFCEnumTranslator::EnumToString(block->GetExecutionStateType()));
    if (auto* const task = dynamic_cast<CFCBPMTaskNode*>(node))
        setText(element, u"FailedReason", task->GetFailedReason());
    if (!view(node->GetItemFilePath()).empty())
        setText(element, u"FILE", node->GetItemFilePath());
    if (block != nullptr) {
        flowmere::setFlag(element, u"IsImage", block->HasImage());
        TuString const image = withSlashes(block->GetRelativeImagePath());
        setText(element, u"Image", image);
        setText(element, u"RelativeImage", image);
    }
    flowmere::setInteger(element, u"ProcessID", node->GetNodeProcessID());
    if (block != nullptr)
        flowmere::setFlag(element, u"Run", block->GetShouldRun());

    if (DOMElement* const dimension = flowmere::appendElement(element, u"DIMENSION")) {
        flowmere::setConstant(dimension, u"ReferencePoint_X", u"0");
        flowmere::setConstant(dimension, u"ReferencePoint_Y", u"0");
        flowmere::setConstant(dimension, u"Version", u"1");
        if (TuRect const* const rect = node->GetTuRect()) {
            std::int64_t const left = rect->left;
            std::int64_t const top = rect->top;
            std::int64_t const right = rect->right;
            std::int64_t const bottom = rect->bottom;
            flowmere::setMeasure(dimension, u"Point_X", left);
            flowmere::setMeasure(dimension, u"Point_Y", kPageHeight - bottom);
            flowmere::setMeasure(dimension, u"Width", right - left);
            flowmere::setMeasure(dimension, u"Hight", bottom - top);
        }
        TuString shape;
        GetShapeType(node, shape);
        setText(dimension, u"Shape", shape);
        flowmere::setConstant(dimension, u"Order", u"0");
    }
    writeFlags(element, block);
    writePortNames(element, block);
    if (IFCNode* const parent = node->GetParentNode()) {
        WriteConnections(parent, element, node, kInPorts);
        WriteConnections(parent, element, node, kOutPorts);
    }
    writeHelp(element, block);
    int const type = node->GetNodeType();
    if (type >= kFirstWorkflow && type <= kLastWorkflow) {
        CFCBPMBlockData* const task = block != nullptr ? node->GetBPMBlockData() : nullptr;
        writeTask(element, task);
        writeApplication(element, task);
    }
    writeScript(element, block);
    flowmere::writeBorder(element, block);
    flowmere::writeFont(element, block);
}

void CFCWriter::WritePropertiesRoot(IFCNode* node, DOMNode* element) {
    if (node == nullptr || element == nullptr)
        return;
    TuString name(node->GetNodeCaption());
    if (name.IsEmpty())
        name = L"Process";
    setText(element, u"Name", name);
    if (!view(node->GetItemFilePath()).empty())
        setText(element, u"FILE", node->GetItemFilePath());
    TuString directory;
    TuString saveRestore(L"SaveRestore");
    TuString scriptType(L"PYTHON");
    TuString projectType;
    if (CFCProcessNode* const process = CFCPointerConverter::GetProcessNode(node)) {
        auto const setWord = [element](flowmere::XmlName attribute, bool value) {
            if (value)
                flowmere::setConstant(element, attribute, u"true");
            else
                flowmere::setConstant(element, attribute, u"false");
        };
        directory = process->getProjectDirectory();
        saveRestore = process->getSaveRestoreScript();
        scriptType = CFCEnumTranslator::EnumToString(process->getSaveRestoreScriptType());
        setWord(u"RandomExecute", process->getRandomExecutionStatus());
        setWord(u"RunOnLoad", process->getRunOnLoadStatus());
        setWord(u"ModelDependency", process->getModelDependency());
        if (process->IsVariablesSerializableToTNB())
            setWord(u"VariableSave", true);
        setWord(u"Diagram", process->hasDiagram());
        setText(element, u"ProcessFlowType", process->getProcessFlowType());
        flowmere::setInteger(element, u"ProcessID", process->GetNodeProcessID());
        projectType = CFCEnumTranslator::EnumToString(process->GetProjectType());
        // At this level the command texts go with the one type alone.
        if (scriptType == L"TCMD")
            writeCommandTexts(element, process);
    }
    setText(element, u"ProjectDirectory", directory);
    setText(element, u"SaveRestore", saveRestore);
    setText(element, u"ScriptType", scriptType);
    setText(element, u"Type", projectType);
    WriteTemplateVariables(node, element);
    WriteProcessVariables(node, element);
}

void CFCWriter::WriteVariables(IFCNode* node, DOMNode* element) {
    if (node == nullptr || node->GetNodeType() == kProcess || node->GetNodeType() == kWorkflowProcess)
        return;
    forEachVariable(node, [&](CFCVariableData* variable) { WriteVariable(variable, element); });
}

void CFCWriter::WriteTemplateVariables(IFCNode* node, DOMNode* element) {
    if (node == nullptr)
        return;
    if (DOMElement* const list = flowmere::appendElement(element, u"TEMPLATE_VARIABLES"))
        WriteTVariables(node, list);
}

void CFCWriter::WriteTVariables(IFCNode* node, DOMNode* element) {
    forEachVariable(node, [&](CFCVariableData* variable) {
        if (variable->IsTemplateVariable())
            WriteTVariable(variable, element);
    });
}

void CFCWriter::WritePVariables(IFCNode* node, DOMNode* element) {
    forEachVariable(node, [&](CFCVariableData* variable) {
        if (!variable->IsTemplateVariable())
            WriteVariable(variable, element);
    });
}

void CFCWriter::WriteProcessVariables(IFCNode* node, DOMNode* element) {
    if (node == nullptr)
        return;
    if (DOMElement* const list = flowmere::appendElement(element, u"PROCESS_VARIABLES"))
        WritePVariables(node, list);
}

void CFCWriter::WriteVariable(CFCVariableData* variable, DOMNode* parent) {
    if (variable == nullptr || !hasName(variable))
        return;
    DOMElement* const element = flowmere::appendElement(parent, u"VARIABLE");
    if (element == nullptr)
        return;
    wchar_t const* const error = variable->GetErrorString();
    if (!view(error).empty())
        m_strVariableErrors += error;
    // The link is repaired in the model, and the repaired one is written.
    variable->RemoveInvalidLink();
    setText(element, u"Name", variable->GetVariableName());
    setText(element, u"DisplayName", variable->GetCaption());
    writeDataType(element, variable);
    flowmere::setFlagLetter(element, u"Array", variable->IsArray());
    setText(element, u"IOType", variable->GetStatusTypeS());
    setText(element, u"Scope", variable->GetScopeTypeS());
    flowmere::setFlag(element, u"TemplateVariable", variable->IsTemplateVariable());
    setText(element, u"LinkPath", variable->GetLinkPathFinal());
    setText(element, u"EntityType", variable->GetEntityType());
    flowmere::setFlag(element, u"Hidden", variable->IsHidden());
    flowmere::setFlag(element, u"Deployed", variable->IsDeployed());
    flowmere::setFlag(element, u"Displayable", variable->IsVisible());
    TuString const value = withSlashes(variable->GetValue());
    if (!value.IsEmpty())
        flowmere::appendText(element, value.View());
}

void CFCWriter::WriteTVariable(CFCVariableData* variable, DOMNode* parent) {
    if (variable == nullptr || !hasName(variable))
        return;
    DOMElement* const element = flowmere::appendElement(parent, u"TEMPLATE_VARIABLE");
    if (element == nullptr)
        return;
    setText(element, u"Name", variable->GetVariableName());
    setText(element, u"UserName", variable->GetCaption());
    setText(element, u"Caption", variable->GetCaption());
    writeDataType(element, variable);
    flowmere::setFlagLetter(element, u"Array", variable->IsArray());
    TuString status(variable->GetStatusTypeS());
    if (status.IsEmpty())
        status = L"Input";
    setText(element, u"IOType", status);
    flowmere::setFlag(element, u"TemplateVariable", true);
    TuString const value = withSlashes(variable->GetValue());
    setText(element, u"Value", value);
    flowmere::setFlag(element, u"Displayable", variable->IsVisible());
    flowmere::setInteger(element, u"NumOptions", variable->GetOptionCount());
    flowmere::appendText(element, value.View());
    for (int index = 0; index < variable->GetOptionCount(); ++index) {
        TuString const option(variable->GetOption(index));
        if (DOMElement* const child = flowmere::appendElement(element, u"OPTION")) {
            setText(child, u"Value", option);
            flowmere::appendText(child, option.View());
        }
    }
}

void CFCWriter::WriteConnections(IFCNode* node, DOMNode* element, IFCNode* block, int mode) {
    if (node == nullptr)
        return;
    if (m_pPorts != nullptr && block != nullptr && (mode == kInPorts || mode == kOutPorts)) {
        auto const& blocks = m_pPorts->of(node);
        auto const ends = blocks.find(block);
        if (ends == blocks.end())
            return;
        for (CFCConnector* const connector : mode == kInPorts ? ends->second.in : ends->second.out) {
            if (isWritten(connector))
                WriteConnectionFunction(connector, element, block, mode);
        }
        return;
    }
    CFCConnectorList* const list = node->GetConnectorList();
    if (list == nullptr)
        return;
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCConnector* const connector = list->GetNext(position);
        if (isWritten(connector))
            WriteConnectionFunction(connector, element, block, mode);
    }
}

void CFCWriter::WriteConnectionFunction(CFCConnector* connector, DOMNode* element, IFCNode* block, int mode) {
    switch (mode) {
    case kConnectors:
        WriteConnection(connector, element);
        break;
    case kOutPorts:
        WriteOutPort(connector, element, block);
        break;
    case kInPorts:
        WriteInPort(connector, element, block);
        break;
    default:
        break;
    }
}

void CFCWriter::WriteInPort(CFCConnector* connector, DOMNode* parent, IFCNode* block) {
    if (connector == nullptr || block == nullptr || connector->GetEndObject() != block)
        return;
    if (DOMElement* const element = flowmere::appendElement(parent, u"IN_PORT")) {
        setText(element, u"InPort", connector->GetEndHandleName());
        flowmere::setConstant(element, u"Dx", u"0");
        flowmere::setConstant(element, u"Dy", u"0");
    }
}

void CFCWriter::WriteOutPort(CFCConnector* connector, DOMNode* parent, IFCNode* block) {
    if (connector == nullptr || block == nullptr || connector->GetStartObject() != block)
        return;
    if (DOMElement* const element = flowmere::appendElement(parent, u"OUT_PORT")) {
        setText(element, u"OutPort", connector->GetStartHandleName());
        flowmere::setConstant(element, u"Dx", u"0");
        flowmere::setConstant(element, u"Dy", u"0");
    }
}

void CFCWriter::WriteConnection(CFCConnector* connector, DOMNode* parent) {
    if (connector == nullptr)
        return;
    DOMElement* const element = flowmere::appendElement(parent, u"CONNECTOR");
    if (element == nullptr)
        return;
    _TgPointLStr* const start = connector->GetStartPoint();
    _TgPointLStr* const end = connector->GetEndPoint();
    _TgPointLStr* const points = connector->GetPoints();
    int const pointCount = std::max(connector->GetPointCount(), 0);
    int const count = points != nullptr ? pointCount : 0;
    setText(element, u"StartBlock", connector->GetStartBlockName());
    setText(element, u"EndBlock", connector->GetEndBlockName());
    // The names of the grips stand where the reader looks for port names.
    setText(element, u"StartPortName", connector->GetStartHandleName());
    setText(element, u"EndPortName", connector->GetEndHandleName());
    flowmere::setInteger(element, u"StartHandle", connector->GetStartHandle());
    flowmere::setInteger(element, u"EndHandle", connector->GetEndHandle());
    flowmere::setInteger(element, u"NumPoints",
                         std::int64_t{pointCount} + (start != nullptr ? 1 : 0) + (end != nullptr ? 1 : 0));
    flowmere::setConstant(element, u"Version", u"1");
    flowmere::setConstant(element, u"DisplayState", u"false");
    flowmere::setConstant(element, u"AutoConnector", u"1");
    flowmere::setConstant(element, u"Order", u"1");

    WritePoint(start, element);
    _TgPointLStr last{};
    if (start != nullptr)
        last = *start;
    for (int index = 0; index < count; ++index) {
        _TgPointLStr& point = points[index];
        if (point.x != last.x || point.y != last.y)
            WritePoint(&point, element);
        last = point;
    }
    // An end in line with the last bend is left out, unlike an inner point.
    if (end != nullptr && end->x != last.x && end->y != last.y)
        WritePoint(end, element);
}

bool CFCWriter::WritePoint(_TgPointLStr* point, DOMNode* parent) {
    if (point == nullptr)
        return false;
    if (DOMElement* const element = flowmere::appendElement(parent, u"POINT")) {
        flowmere::setMeasure(element, u"Location_X", point->x);
        flowmere::setMeasure(element, u"Location_Y", kPageHeight - point->y);
    }
    return true;
}
