#include "flowmere/model/FCBlockData.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/environment/LocalFile.h"
#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/model/ChildIndex.h"
#include "flowmere/model/ConnectorIndex.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCPointerConverter.h"
#include "flowmere/model/FCVariableData.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr double kPageHeightInInch = 13.0;

int limited(std::int64_t value) {
    if (value < std::numeric_limits<int>::min()) {
        return std::numeric_limits<int>::min();
    }
    if (value > std::numeric_limits<int>::max()) {
        return std::numeric_limits<int>::max();
    }
    return static_cast<int>(value);
}

// Cuts the fraction off; what no 32-bit number holds becomes the nearest that does, and no number at all becomes 0.
int truncated(double value) {
    if (value != value) {
        return 0;
    }
    if (value <= std::numeric_limits<int>::min()) {
        return std::numeric_limits<int>::min();
    }
    if (value >= std::numeric_limits<int>::max()) {
        return std::numeric_limits<int>::max();
    }
    return static_cast<int>(value);
}

int sum(int left, int right) {
    return limited(static_cast<std::int64_t>(left) + right);
}

int difference(int left, int right) {
    return limited(static_cast<std::int64_t>(left) - right);
}

// The execution states that count in a composite, one bit for each.
unsigned int stateBit(int state) {
    return state >= 0 && state < 10 ? 1U << state : 0U;
}

// State of a composite whose descendants are in these states.
EExecutionStateType composedState(unsigned int states) {
    if ((states & stateBit(EExecutionStateType_Failed)) != 0) {
        return EExecutionStateType_Failed;
    }
    if ((states & stateBit(EExecutionStateType_WaitForResource)) != 0) {
        return EExecutionStateType_WaitForResource;
    }
    if ((states & stateBit(EExecutionStateType_Pending)) != 0) {
        return (states & stateBit(EExecutionStateType_Executed)) != 0 ? EExecutionStateType_Executing
                                                                      : EExecutionStateType_Pending;
    }
    return EExecutionStateType_Executed;
}

// Whether a walk along the list comes to a place.
bool reaches(CFCNodeList& list, __FCPOSITION* place) {
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        if (position == place) {
            return true;
        }
        list.GetNextNode(position);
    }
    return false;
}

bool isComposite(IFCNode* node) {
    if (node == nullptr) {
        return false;
    }
    int const type = node->GetNodeType();
    return type == eShapeType_BasicSubProcess || type == eShapeType_WorkflowProcess;
}

// State of a composite, from one walk that finishes every node after its children.
EExecutionStateType stateOfComposite(IFCNode* composite) {
    struct Level {
        IFCNode* next;       // child to look at
        bool composite;      // whether the node is a composite itself
        unsigned int states; // of what lies below the node
    };
    std::vector<Level> levels{{composite->GetChild(), true, 0}};
    for (;;) {
        if (IFCNode* const child = levels.back().next) {
            levels.back().next = child->GetNext();
            CFCBlockData* const data = child->GetFCBlockData();
            bool const inner = isComposite(child) && CFCPointerConverter::GetNodeFromBlockData(data) == child;
            if (data != nullptr && !inner) {
                levels.back().states |= stateBit(data->GetExecutionStateType());
            }
            levels.push_back({child->GetChild(), inner, 0});
            continue;
        }
        Level const done = levels.back();
        levels.pop_back();
        EExecutionStateType const state = done.composite ? composedState(done.states) : EExecutionStateType_ESNone;
        if (levels.empty()) {
            return state;
        }
        levels.back().states |= done.states | (done.composite ? stateBit(state) : 0U);
    }
}

} // namespace

// Shape

CFCShape::~CFCShape() = default;

void CFCShape::SetTuRect(int left, int top, int right, int bottom) {
    rect.left = left;
    rect.top = top;
    rect.right = right;
    rect.bottom = bottom;
}

void CFCShape::SetTuRectInInch(double x, double y, double width, double height) {
    int const left = truncated(x * 72);
    int const top = truncated(y * 72);
    SetTuRect(left, top, difference(left, truncated(width * -72)), difference(top, truncated(height * -72)));
}

void CFCShape::SetTuRectInInchFlowmere(double x, double y, double width, double height) {
    int const left = truncated(x);
    int const top = truncated(y);
    SetTuRect(left, top, sum(left, truncated(width)), sum(top, truncated(height)));
}

void CFCShape::SetTuRectInInchReverse(double x, double y, double width, double height) {
    int const left = truncated(x * 100);
    int const bottom = truncated((kPageHeightInInch - y) * 100);
    SetTuRect(left, difference(bottom, truncated(height * 100)), difference(left, truncated(width * -100)), bottom);
}

// Ports

CFCPort::~CFCPort() = default;

CFCPortList::CFCPortList() {
    ports[0].SetPortName(L"Left");
    ports[1].SetPortName(L"Right");
    ports[2].SetPortName(L"Bottom");
}

CFCPortList::~CFCPortList() = default;

CFCPort* CFCPortList::GetPort(int index) {
    return index < 0 || index >= 3 ? nullptr : &ports[index];
}

CFCPort* CFCPortList::collect(bool enabled, CFCPort* (&result)[4]) {
    int count = 0;
    for (CFCPort*& entry : result) {
        entry = nullptr;
    }
    for (CFCPort& port : ports) {
        if (port.IsEnabled() == enabled) {
            result[count++] = &port;
        }
    }
    return result[0];
}

CFCPort* CFCPortList::GetEnabledPorts() {
    return collect(true, enabledPorts);
}

CFCPort* CFCPortList::GetDisabledPorts() {
    return collect(false, disabledPorts);
}

CFCPort* CFCPortList::GetEnabledPort(int index) {
    return index < 0 || index >= 4 ? nullptr : enabledPorts[index];
}

CFCPort* CFCPortList::GetDisabledPort(int index) {
    return index < 0 || index >= 4 ? nullptr : disabledPorts[index];
}

// Variables that copies share

CFCBlockData::OwnedVariables::OwnedVariables(OwnedVariables const& other) : m_list(other.m_list) {
    share(other);
}

CFCBlockData::OwnedVariables& CFCBlockData::OwnedVariables::operator=(OwnedVariables const& other) {
    if (this != &other) {
        leave();
        m_list = other.m_list;
        share(other);
    }
    return *this;
}

CFCBlockData::OwnedVariables::~OwnedVariables() {
    deleteAll();
}

void CFCBlockData::OwnedVariables::share(OwnedVariables const& other) {
    // Of an empty list there is nothing to share: each side will own what it adds.
    if (m_list.GetHeadPosition() == nullptr) {
        return;
    }
    if (other.m_holders == nullptr) {
        other.m_holders = std::make_shared<Holders>(Holders{&other});
    }
    other.m_holders->push_back(this);
    m_holders = other.m_holders;
}

void CFCBlockData::OwnedVariables::leave() {
    if (m_holders != nullptr) {
        m_holders->erase(std::remove(m_holders->begin(), m_holders->end(), this), m_holders->end());
        m_holders.reset();
    }
}

bool CFCBlockData::OwnedVariables::contains(IFCNode* node) {
    IFCNode* const prev = node->GetPrev();
    IFCNode* const next = node->GetNext();
    bool const follows = prev != nullptr && prev->GetNext() == node;
    bool const leads = next != nullptr && next->GetPrev() == node;
    bool const isHead = m_list.GetHeadPosition() == reinterpret_cast<__FCPOSITION*>(node);
    bool const isTail = m_list.GetTailPosition() == reinterpret_cast<__FCPOSITION*>(node);
    return (isHead || follows) && (isTail || leads);
}

void CFCBlockData::OwnedVariables::forget() const {
    takeEnds(CFCVariableList());
    m_holders.reset();
}

void CFCBlockData::OwnedVariables::takeEnds(CFCVariableList const& list) const {
    // Assigning is the one way to change the ends without touching the elements; the list keeps its handle.
    int const handle = m_list.GetNodeHandle();
    m_list = list;
    m_list.SetNodeHandle(handle);
}

// Takes over what another holder added to the elements that both share.
void CFCBlockData::OwnedVariables::adopt(OwnedVariables const& holder) {
    __FCPOSITION* const last = holder.m_list.GetTailPosition();
    if (holder.m_list.GetHeadPosition() != m_list.GetHeadPosition()) {
        return;
    }
    for (__FCPOSITION* position = m_list.GetTailPosition(); position != nullptr; m_list.GetNextNode(position)) {
        if (position == last) {
            takeEnds(holder.m_list);
            return;
        }
    }
}

void CFCBlockData::OwnedVariables::deleteOne(IFCNode* variable) {
    if (variable == nullptr || !contains(variable)) {
        return;
    }
    auto const* const position = reinterpret_cast<__FCPOSITION*>(variable);
    __FCPOSITION* const head = m_list.GetHeadPosition();
    __FCPOSITION* const tail = m_list.GetTailPosition();
    // The lists of others that start or end here, or know the same elements, are to see what is left.
    Holders concerned;
    if (m_holders != nullptr) {
        for (OwnedVariables const* const holder : *m_holders) {
            __FCPOSITION* const first = holder->m_list.GetHeadPosition();
            __FCPOSITION* const last = holder->m_list.GetTailPosition();
            if (holder != this && (first == position || last == position || (first == head && last == tail))) {
                concerned.push_back(holder);
            }
        }
    }
    if (CFCVariableData* const data = variable->GetVariableData()) {
        data->ReleaseOwnedParts();
    }
    m_list.DeleteNode(variable);
    for (OwnedVariables const* const holder : concerned) {
        holder->takeEnds(m_list);
    }
}

void CFCBlockData::OwnedVariables::deleteAll() {
    if (m_holders != nullptr) {
        std::shared_ptr<Holders> const holders = std::move(m_holders);
        for (OwnedVariables const* const holder : *holders) {
            if (holder != this) {
                adopt(*holder);
                holder->forget();
            }
        }
    }
    for (__FCPOSITION* position = m_list.GetHeadPosition(); position != nullptr;) {
        if (CFCVariableData* const variable = m_list.GetNext(position)) {
            variable->ReleaseOwnedParts();
        }
    }
    m_list.DeleteAll();
}

// Block data

CFCBlockData::CFCBlockData() = default;

// Written out, because a container that looks its children up by identifier must hear of it before.
CFCBlockData& CFCBlockData::operator=(CFCBlockData const& other) {
    if (this != &other) {
        flowmere::childIdentityChanges(*this);
        CFCShape::operator=(other);
        portList = other.portList;
        activeHandle = other.activeHandle;
        connectorList = other.connectorList;
        spareConnectorList = other.spareConnectorList;
        variables = other.variables;
        relativeImagePath = other.relativeImagePath;
        location = other.location;
        scriptChanged = other.scriptChanged;
        blockId = other.blockId;
        oldBlockId = other.oldBlockId;
        blockName = other.blockName;
        scriptCode = other.scriptCode;
        cmdScriptCode = other.cmdScriptCode;
        fullBlockName = other.fullBlockName;
        scriptFileName = other.scriptFileName;
        scriptName = other.scriptName;
        scriptNameFinal = other.scriptNameFinal;
        scriptLocation = other.scriptLocation;
        fullScriptFileName = other.fullScriptFileName;
        toolTip = other.toolTip;
        description = other.description;
        helpFile = other.helpFile;
        comInterface = other.comInterface;
        comCommand = other.comCommand;
        executeMethod = other.executeMethod;
        saveRestoreScript = other.saveRestoreScript;
        scriptDir = other.scriptDir;
        scriptType = other.scriptType;
        executionState = other.executionState;
        folderPath = other.folderPath;
        hasImage = other.hasImage;
        undoFlag = other.undoFlag;
        skipFlag = other.skipFlag;
        stopFlag = other.stopFlag;
        executedFlag = other.executedFlag;
        executingFlag = other.executingFlag;
        breakPointFlag = other.breakPointFlag;
        referenceBlock = other.referenceBlock;
        scriptList = other.scriptList;
        shouldRun = other.shouldRun;
    }
    return *this;
}

CFCBlockData::~CFCBlockData() = default;

CFCVariableData* CFCBlockData::CreateNewVariable() {
    auto* const variable = new CFCVariableData;
    variable->SetNodeType(eShapeType_Variable);
    variable->SetGroup(false);
    variable->SetGroupHeader(false);
    if (IFCNode* const node = CFCPointerConverter::GetNodeFromBlockData(this)) {
        variable->SetParentNode(node);
    }
    GetVariableList()->AddTail(variable);
    return variable;
}

void CFCBlockData::SetBlockID(wchar_t const* id) {
    flowmere::childIdentityChanges(*this);
    blockId = id;
}

void CFCBlockData::SetOldBlockID(wchar_t const* id) {
    flowmere::childIdentityChanges(*this);
    oldBlockId = id;
}

wchar_t const* CFCBlockData::GetFolderPath() {
    if (folderPath.IsEmpty()) {
        IFCNode* const node = CFCPointerConverter::GetNodeFromBlockData(this);
        if (node == nullptr) {
            return L"";
        }
        TuString path(node->GetNodePath());
        path.Replace(L'.', L'\\');
        folderPath = CFCEnvironment::GetProjectPath() + (L"\\" + path);
        folderPath.TrimRight(L'\\');
    }
    return folderPath;
}

// Script

void CFCBlockData::ClearContent() {
    scriptCode.Empty();
    scriptChanged = true;
}

wchar_t const* CFCBlockData::GetScriptTypeS() {
    static flowmere::Immortal<TuString> name;
    *name = CFCEnumTranslator::EnumToString(scriptType);
    return *name;
}

void CFCBlockData::SetScriptType(wchar_t const* name) {
    if (name != nullptr) {
        TuString const copy(name);
        CFCEnumTranslator::SetArrays();
        CFCEnumTranslator::StringToEnum(copy, scriptType);
    }
}

void CFCBlockData::SetScriptName(wchar_t const* name) {
    scriptName = name;
    location = EScriptLocation_Default;
    LoadScript();
}

wchar_t const* CFCBlockData::GetScriptNameFinal() {
    SetRelativeName();
    return scriptNameFinal;
}

void CFCBlockData::ReSetFullScriptFileName(wchar_t const* path) {
    fullScriptFileName = path;
    SetRelativeName();
}

void CFCBlockData::loadScriptFile() {
    TuString text;
    if (CFCEnvironment::LoadFile(fullScriptFileName, text)) {
        scriptCode = text;
    }
}

void CFCBlockData::LoadScript() {
    TuString missing;
    if (scriptCode.IsEmpty() && location == EScriptLocation_Default && !scriptName.IsEmpty()) {
        flowmere::LocalFile const local = flowmere::findLocalFile(scriptName);
        if (local.isThere) {
            fullScriptFileName = local.path;
            loadScriptFile();
        } else {
            missing = local.path;
            if (CFCEnvironment::IsMacroFileExist(scriptName)) {
                fullScriptFileName = CFCEnvironment::GetMacroFilePath(scriptName);
                loadScriptFile();
            }
        }
    }
    if (scriptCode.IsEmpty() || scriptChanged) {
        loadGuiScript(missing);
    }
}

void CFCBlockData::LoadGuiScript() {
    loadGuiScript(TuString());
}

// `missing` is the local path of the script name when it is known that no file is there: each question costs a look at
// the disk, and a document asks for every block.
void CFCBlockData::loadGuiScript(TuString const& missing) {
    if (scriptName.IsEmpty()) {
        scriptName = blockId;
    }
    if (fullScriptFileName.IsEmpty()) {
        if (!missing.IsEmpty()) {
            fullScriptFileName = missing;
            return;
        }
        fullScriptFileName = CFCEnvironment::GetLocalFilePath(scriptName);
    }
    if (!fullScriptFileName.IsEmpty()) {
        loadScriptFile();
    }
}

void CFCBlockData::SetRelativeName() {
    if (fullScriptFileName.IsEmpty()) {
        return;
    }
    TuString path = fullScriptFileName;
    TuString root(CFCEnvironment::GetUserPath());
    int position = path.Find(root);
    if (position < 0) {
        path.Replace(L'/', L'\\');
        position = path.Find(root);
    }
    if (position < 0) {
        root = CFCEnvironment::GetBasePath();
        position = path.Find(root);
    }
    if (position < 0) {
        return;
    }
    scriptName = path.Mid(position + root.GetLength() + 1);
    scriptName.Replace(L'/', L'.');
    scriptName.Replace(L'\\', L'.');
    int const extension = scriptName.ReverseFind(L'.');
    if (extension >= 0) {
        scriptName = scriptName.Left(extension);
    }
}

wchar_t const* CFCBlockData::GetRelativeName() {
    SetRelativeName();
    scriptName.Replace(L'\\', L'.');
    scriptName.Replace(L'/', L'.');
    return scriptName;
}

void CFCBlockData::SaveScriptFile(bool command) {
    if (!fullScriptFileName.IsEmpty()) {
        SaveScript(fullScriptFileName, command);
    }
}

void CFCBlockData::SaveScript(wchar_t const* path, bool command) {
    TuString const& text = command ? cmdScriptCode : scriptCode;
    flowmere::writeFile(path, flowmere::toUtf8(text.View()));
}

CFCDocumentNode* CFCBlockData::CreateNewScript() {
    CFCNodeFactory factory;
    IFCNode* const made = factory.Create(eShapeType_Document);
    if (made == nullptr) {
        return nullptr;
    }
    if (IFCNode* const node = CFCPointerConverter::GetNodeFromBlockData(this)) {
        made->SetParentNode(node);
    }
    scriptList.AddTail(made);
    return dynamic_cast<CFCDocumentNode*>(made);
}

// Execution

EExecutionStateType CFCBlockData::GetExecutionStateType() {
    IFCNode* const node = CFCPointerConverter::GetNodeFromBlockData(this);
    return isComposite(node) ? stateOfComposite(node) : executionState;
}

// Variables

CFCVariableData* CFCBlockData::FindVariable(wchar_t const* name) {
    return GetVariableList()->FindByExactName(name);
}

bool CFCBlockData::DeleteVariable(IFCNode* variable) {
    variables.deleteOne(variable);
    return true;
}

bool CFCBlockData::DeleteVariables() {
    variables.deleteAll();
    return true;
}

namespace {

// Runs an operation on every variable of a list.
template <typename Operation>
void forEachVariable(CFCVariableList& list, Operation operation) {
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        if (CFCVariableData* const variable = list.GetNext(position)) {
            operation(*variable);
        }
    }
}

} // namespace

void CFCBlockData::UnMarkVariables() {
    forEachVariable(*GetVariableList(), [](CFCVariableData& variable) { variable.SetMark(false); });
}

void CFCBlockData::AddVariablePrefix(wchar_t const* prefix) {
    TuString const copy(prefix);
    forEachVariable(*GetVariableList(), [&copy](CFCVariableData& variable) { variable.AddVariablePrefix(copy); });
}

void CFCBlockData::ConvertToLinkedVariable() {
    forEachVariable(*GetVariableList(), [](CFCVariableData& variable) { variable.ConvertToLinkedVariable(); });
}

void CFCBlockData::ResolveVariables() {
    forEachVariable(*GetVariableList(), [](CFCVariableData& variable) { variable.Resolve(); });
}

bool CFCBlockData::CopyVariables(IFCNode* source, IFCNode* target) {
    if (source == nullptr || target == nullptr || source == target) {
        return false;
    }
    CFCVariableList* const from = source->GetVariableList();
    CFCVariableList* const to = target->GetVariableList();
    if (from == nullptr || to == nullptr) {
        return false;
    }
    // Taken down first: where the two lists share their elements, what is added to one comes up in the other.
    std::vector<CFCVariableData*> originals;
    forEachVariable(*from, [&originals](CFCVariableData& variable) { originals.push_back(&variable); });
    for (CFCVariableData* const variable : originals) {
        CFCVariableData* const clone = variable->CloneVariable();
        clone->SetParentNode(target);
        to->AddTail(clone);
        clone->Resolve();
    }
    return true;
}

// Connectors

void CFCBlockData::AddConnector(CFCConnector* connector) {
    if (connector != nullptr && !flowmere::holdsTwin(connectorList, *connector)) {
        connectorList.AddTail(connector);
    }
}

bool CFCBlockData::DeleteConnector(IFCNode* connector) {
    connectorList.DeleteNode(connector);
    return true;
}

bool CFCBlockData::DeleteConnectors() {
    connectorList.DeleteAll();
    return true;
}

void CFCBlockData::SetConnectorList(CFCConnectorList* list) {
    if (list == nullptr || list == &connectorList) {
        return;
    }
    // A list that shares its elements with this one would be chained into a ring.
    if (reaches(connectorList, list->GetHeadPosition()) || reaches(*list, connectorList.GetHeadPosition())) {
        return;
    }
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        connectorList.AddTail(list->GetNextNode(position));
    }
}

// Comparison and copy

bool CFCBlockData::IsEqual(CFCBlockData* other) {
    return other != nullptr && blockName == other->blockName && executionState == other->executionState &&
           toolTip == other->toolTip && description == other->description;
}

void CFCBlockData::Copy(CFCBlockData* source, CFCBlockData* target) {
    if (source == nullptr || target == nullptr) {
        return;
    }
    flowmere::childIdentityChanges(*target);
    target->scriptType = source->scriptType;
    target->description = source->description;
    target->toolTip = source->toolTip;
    target->blockName = source->blockName;
    target->blockId = source->blockId;
    target->scriptName = source->scriptName;
    target->fullScriptFileName = source->fullScriptFileName;
    target->portList = source->portList;
    target->oldBlockId = source->oldBlockId;
    target->hasImage = source->hasImage;
    target->relativeImagePath = source->relativeImagePath;
    target->shouldRun = source->shouldRun;
}

void CFCBlockData::CopyFrom(CFCBlockData* source) {
    Copy(source, this);
}
