#include "flowmere/model/FCApplicationData.h"

#include <memory>

#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCVariableData.h"

CFCArgumentData::CFCArgumentData() = default;
CFCArgumentData::~CFCArgumentData() = default;

void CFCArgumentData::Create() {}

int CFCArgumentData::Persist() {
    return 0;
}

// The quote tokens stay: the host replaces them when it puts the job text together.
wchar_t const* CFCArgumentData::GetJSONString() {
    TuString index;
    index.Format(L"%d", m_argumentIndex);
    m_json = FCArgumentJSONTemplate;
    m_json.Replace(L"$Index", index);
    m_json.Replace(L"$Value", m_argumentValue);
    return m_json;
}

CFCArgumentData* CFCArgumentData::CloneArgument() {
    auto clone = std::make_unique<CFCArgumentData>();
    Copy(this, clone.get());
    return clone.release();
}

void CFCArgumentData::Copy(CFCArgumentData* source, CFCArgumentData* target) {
    if (source == nullptr || target == nullptr) {
        return;
    }
    target->m_argumentIndex = source->m_argumentIndex;
    target->m_argumentId = source->m_argumentId;
    target->m_cmdLineId = source->m_cmdLineId;
    target->m_argumentValue = source->m_argumentValue;
    target->m_argumentType = source->m_argumentType;
    target->m_argumentName = source->m_argumentName;
}

CFCCmdLineData::CFCCmdLineData() = default;
CFCCmdLineData::~CFCCmdLineData() = default;

void CFCCmdLineData::Create() {}

CFCPatternData::CFCPatternData() = default;
CFCPatternData::~CFCPatternData() = default;

void CFCPatternData::Create() {}

// As with arguments, the quote tokens stay for the host.
wchar_t const* CFCPatternData::GetJSONString() {
    m_json = FCPatternJSONTemplate;
    m_json.Replace(L"$Name", m_patternName);
    m_json.Replace(L"$RegEx", m_patternRegExp);
    m_json.Replace(L"$Suggestion", m_patternSuggestion);
    m_json.Replace(L"$File", m_patternFileExt);
    return m_json;
}

void CFCPatternData::Copy(CFCPatternData* source, CFCPatternData* target) {
    if (source == nullptr || target == nullptr) {
        return;
    }
    target->m_json = source->m_json;
    target->m_patternId = source->m_patternId;
    target->m_patternName = source->m_patternName;
    target->m_patternRegExp = source->m_patternRegExp;
    target->m_patternSuggestion = source->m_patternSuggestion;
    target->m_patternFileExt = source->m_patternFileExt;
}

CFCDeploymentData::CFCDeploymentData() = default;
CFCDeploymentData::~CFCDeploymentData() = default;

void CFCDeploymentData::Create() {}

wchar_t const* CFCDeploymentData::GetNodeId() {
    return m_nodeId;
}

void CFCDeploymentData::SetNodeId(wchar_t const* text) {
    m_nodeId = text;
}

CFCVariableList* CFCDeploymentData::GetVariableList() {
    return &m_variableList;
}

CFCVariableData* CFCDeploymentData::CreateNewVariable() {
    auto variable = std::make_unique<CFCVariableData>();
    variable->SetNodeType(eShapeType_Variable);
    variable->SetParentNode(this);
    m_variableList.AddTail(variable.get());
    return variable.release();
}

TuString CFCDeploymentData::GetVariableValue(wchar_t const* name) {
    if (name == nullptr) {
        return {};
    }
    TuString const wanted(name);
    __FCPOSITION* position = m_variableList.GetHeadPosition();
    while (position != nullptr) {
        CFCVariableData* variable = m_variableList.GetNext(position);
        if (variable != nullptr && wanted.CompareNoCase(variable->GetVariableName()) == 0) {
            return variable->GetValue();
        }
    }
    return {};
}

void CFCDeploymentData::Copy(CFCDeploymentData* source, CFCDeploymentData* target) {
    if (source == nullptr || target == nullptr) {
        return;
    }
    target->SetNodeCaption(source->GetNodeCaption());
    CopyVariables(source, target);
}

bool CFCDeploymentData::CopyVariables(IFCNode* source, IFCNode* target) {
    if (source == nullptr || target == nullptr || source == target) {
        return false;
    }
    CFCVariableList* from = source->GetVariableList();
    CFCVariableList* to = target->GetVariableList();
    if (from == nullptr || to == nullptr) {
        return false;
    }
    // A shallow copy of a deployment chains the same variables, and the walk would meet its own
    // clones: it ends at the variable that is the last one now.
    __FCPOSITION* const last = from->GetTailPosition();
    __FCPOSITION* position = from->GetHeadPosition();
    while (position != nullptr) {
        bool const isLast = position == last;
        if (CFCVariableData* variable = from->GetNext(position)) {
            CFCVariableData* clone = variable->CloneVariable();
            if (clone != nullptr) {
                clone->SetParentNode(target);
                to->AddTail(clone);
                clone->Resolve();
            }
        }
        if (isLast) {
            break;
        }
    }
    return true;
}

CFCDeploymentData* CFCDeploymentData::CloneDeployment(CFCDeploymentData* source) {
    auto clone = std::make_unique<CFCDeploymentData>();
    Copy(source, clone.get());
    return clone.release();
}

CFCResourceData::CFCResourceData() = default;
CFCResourceData::~CFCResourceData() = default;

void CFCResourceData::Create() {}

void CFCResourceData::getRAM(unsigned int& size, _TMemoryUnitId& unit) {
    size = m_ramSize;
    unit = m_ramUnit;
}

void CFCResourceData::setRAM(unsigned int size, _TMemoryUnitId unit) {
    m_ramSize = size;
    m_ramUnit = unit;
}

CFCArgumentList::CFCArgumentList() = default;
CFCArgumentList::~CFCArgumentList() = default;

CFCArgumentData* CFCArgumentList::GetNext(__FCPOSITION*& position) {
    return dynamic_cast<CFCArgumentData*>(GetNextNode(position));
}

CFCCmdLineList::CFCCmdLineList() = default;
CFCCmdLineList::~CFCCmdLineList() = default;

CFCCmdLineData* CFCCmdLineList::GetNext(__FCPOSITION*& position) {
    return dynamic_cast<CFCCmdLineData*>(GetNextNode(position));
}

CFCPatternList::CFCPatternList() = default;
CFCPatternList::~CFCPatternList() = default;

CFCPatternData* CFCPatternList::GetNext(__FCPOSITION*& position) {
    return dynamic_cast<CFCPatternData*>(GetNextNode(position));
}

CFCDeploymentList::CFCDeploymentList() = default;
CFCDeploymentList::~CFCDeploymentList() = default;

CFCDeploymentData* CFCDeploymentList::GetHead() {
    __FCPOSITION* position = GetHeadPosition();
    return GetNext(position);
}

CFCDeploymentData* CFCDeploymentList::GetNext(__FCPOSITION*& position) {
    return dynamic_cast<CFCDeploymentData*>(GetNextNode(position));
}
