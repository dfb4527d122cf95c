#include "flowmere/model/FCApplicationNode.h"

#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

#include <memory>

namespace {

constexpr int kArgument = 180;
constexpr int kPattern = 180; // as arguments; hosts know patterns by this code
constexpr int kCommandLine = 181;

template <typename Record>
Record* appendRecord(CFCNodeList& list, IFCNode* owner, int type) {
    auto record = std::make_unique<Record>();
    record->SetNodeType(type);
    record->SetParentNode(owner);
    list.AddTail(record.get());
    return record.release();
}

} // namespace

CFCApplicationNode::CFCApplicationNode() {
    SetNodeType(eShapeType_Application);
    SetNodeCaption(L"Application");
}

CFCApplicationNode::~CFCApplicationNode() = default;

void CFCApplicationNode::Create() {}

int CFCApplicationNode::Persist() {
    return 0;
}

void CFCApplicationNode::SetUpdated(int value) {
    if (m_nAppID != 0) {
        m_nUpdated = value;
    }
}

CFCDeploymentData* CFCApplicationNode::GetDeployment(wchar_t const* name) {
    TuString const wanted(name);
    for (__FCPOSITION* position = m_DeploymentList.GetHeadPosition(); position != nullptr;) {
        CFCDeploymentData* const deployment = m_DeploymentList.GetNext(position);
        if (deployment != nullptr && wanted.CompareNoCase(deployment->GetNodeCaption()) == 0) {
            return deployment;
        }
    }
    return nullptr;
}

wchar_t const* CFCApplicationNode::GetExecutable() {
    m_strExecutable.Empty();
    CFCVariableList* const list = GetVariableList();
    CFCVariableData* const executable = list != nullptr ? list->Find(L"EXECUTABLE") : nullptr;
    if (executable != nullptr) {
        m_strExecutable = executable->GetValue();
    }
    return m_strExecutable;
}

wchar_t const* CFCApplicationNode::GetPath() {
    TuString path(GetNodePath());
    path.Replace(L'.', L'\\');
    m_strAppPath = CFCEnvironment::GetUserApplicationsPath();
    m_strAppPath += L"\\";
    m_strAppPath += path;
    return m_strAppPath;
}

CFCArgumentData* CFCApplicationNode::CreateNewArgument() {
    return appendRecord<CFCArgumentData>(m_ArgumentList, this, kArgument);
}

CFCPatternData* CFCApplicationNode::CreateNewPattern() {
    return appendRecord<CFCPatternData>(m_PatternList, this, kPattern);
}

CFCCmdLineData* CFCApplicationNode::CreateNewCmdLine() {
    return appendRecord<CFCCmdLineData>(m_CmdLineList, this, kCommandLine);
}

CFCDeploymentData* CFCApplicationNode::CreateNewDeployment() {
    return appendRecord<CFCDeploymentData>(m_DeploymentList, this, eShapeType_Deployment);
}

// The quote tokens stay, as in the texts of variables, arguments and patterns: the host replaces them last.
void CFCApplicationNode::Initialize() {
    m_strJobTemplate =
        LR"json({'"'job'"': {'"'name'"': '"'$JobName'"','"'id'"': '"'$JobID'"','"'dbPath'"': '"'$DBPath'"','"'jobType'"': '"'$jobType'"','"'polling'"': '"'$Polling'"'}$Aggregator,'"'applications'"': ['"'$Apps'"']})json";
    m_strArgumentTemplate = LR"json(   '"'$AppArg'"')json";
    m_strPathTemplate = LR"json('"'Path'"':'"'$Path'"')json";
    m_strBindingScriptTemplate =
        LR"json({'"'name'"':'"'$Name'"','"'file'"':'"'$File'"','"'fileType'"':'"'$Type'"','"'useAggregator'"':'"'$UseAggregator'"'})json";
    m_strVariableTemplate = LR"json({'"'name'"':'"'$Name'"','"'value'"':'"'$Value'"','"'path'"':'"'$Path'"'   })json";
    m_strApplicationTemplate =
        LR"json({'"'name'"': '"'$AppName'"','"'id'"': '"'$AppID'"','"'index'"': '"'$AppIndex'"','"'useBindingScript'"': '"'$useBindingScript'"','"'executables'"': [{$EXEs}],'"'bindingScripts'"':[$BS],'"'variables'"': [$AppVar],'"'commandLines'"':['"'$AppCmdline'"'],'"'errHandler'"':{'"'patternDetails'"': [$Pattern],'"'handler'"':'"'$Handler'"'}})json";
    m_strExecutableTemplate = LR"json('"'$TYPE.$NAME'"':'"'$EXE$'"')json";
    m_strPatternTemplate =
        LR"json({'"'pattern'"':'"'$pattern'"','"'suggestion'"':'"'$suggestion'"','"'file'"':'"'$filePattern'"'})json";
    m_strAggregatorTemplate =
        LR"json(,'"'aggregator'"' : {'"'name'"':'"'$AggName'"','"'id'"':'"'$AggID'"','"'bindingScripts'"':[$BS],'"'variables'"': [$AppVar],'"'executables'"': [{$EXEs}]})json";
}
