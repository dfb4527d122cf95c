// The operations of CFCApplicationNode that keep its deployments in step with its variables.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/foundation/TuFileUtl.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/FCVariableList.h"

namespace {

constexpr wchar_t const* kDeployment = L"Deployment";

bool isOfDeployment(CFCVariableData& variable) {
    return TuString(variable.GetNature()).CompareNoCase(kDeployment) == 0;
}

bool isEmpty(wchar_t const* text) {
    return text == nullptr || *text == L'\0';
}

// Calls the action for each variable of nature "Deployment". The list of an application holds no variables that the
// actions make: those go to the lists of the deployments.
template <typename Action>
void forEachOfDeployment(CFCVariableList* variables, Action const& action) {
    if (variables == nullptr) {
        return;
    }
    for (__FCPOSITION* position = variables->GetHeadPosition(); position != nullptr;) {
        CFCVariableData* const variable = variables->GetNext(position);
        if (variable != nullptr && isOfDeployment(*variable)) {
            action(variable);
        }
    }
}

template <typename Action>
void forEachDeployment(CFCDeploymentList& list, Action const& action) {
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        if (CFCDeploymentData* const deployment = list.GetNext(position)) {
            action(deployment);
        }
    }
}

// Whether the value is the path of a file that goes along with every deployment.
bool namesAFile(CFCVariableData& variable) {
    CFCDataTypeNode* const dataType = variable.GetDataTypeNode();
    if (dataType == nullptr) {
        return false;
    }
    TuString const type(dataType->GetType());
    return type.CompareNoCase(L"ApplicationBindingScript") == 0 || type.CompareNoCase(L"File") == 0;
}

void markModified(CFCDeploymentData* deployment, CFCVariableData* variable) {
    deployment->SetModified(true);
    variable->SetModified(true);
}

} // namespace

void CFCApplicationNode::CreateDefaultDeployments() {
    if (m_DeploymentList.GetHeadPosition() != nullptr) {
        return;
    }
    CFCDeploymentData* const deployment = CreateNewDeployment();
    deployment->SetNodeCaption(L"Windows");
    forEachOfDeployment(GetVariableList(), [deployment](CFCVariableData* variable) {
        CFCVariableData::Copy(variable, deployment->CreateNewVariable());
    });
}

void CFCApplicationNode::ClearDeploymentVars() {
    for (__FCPOSITION* place = m_DeploymentList.GetHeadPosition(); place != nullptr;) {
        CFCDeploymentData* const deployment = m_DeploymentList.GetNext(place);
        if (deployment == nullptr) {
            continue;
        }
        CFCVariableList* const entries = deployment->GetVariableList();
        if (entries == nullptr) {
            return;
        }
        for (__FCPOSITION* position = entries->GetHeadPosition(); position != nullptr;) {
            CFCVariableData* const entry = entries->GetNext(position);
            if (entry == nullptr) {
                continue;
            }
            CFCVariableData* const variable = CFCNodeHelper::FindVariableByName(entry->GetVariableName(), this);
            if (variable != nullptr && isOfDeployment(*variable)) {
                continue;
            }
            entry->ReleaseOwnedParts();
            entries->DeleteNode(entry);
            deployment->SetModified(true);
        }
    }
}

void CFCApplicationNode::UpdateDeploymentVariable(CFCVariableData* variable) {
    if (variable == nullptr || m_DeploymentList.GetHeadPosition() == nullptr) {
        return;
    }
    forEachDeployment(m_DeploymentList, [variable](CFCDeploymentData* deployment) {
        CFCVariableData* entry = CFCNodeHelper::FindVariableByName(variable->GetVariableName(), deployment);
        if (entry != nullptr) {
            if (isEmpty(entry->GetValue())) {
                entry->SetValue(variable->GetValue());
                markModified(deployment, entry);
            }
            return;
        }
        entry = deployment->CreateNewVariable();
        if (entry != nullptr) {
            entry->SetVariableID(0);
            CFCVariableData::Copy(variable, entry);
            markModified(deployment, entry);
        }
    });
    if (!namesAFile(*variable)) {
        return;
    }
    // One walk for the file: it reaches every deployment.
    TuString file(CFCEnvironment::GetFullPath(variable->GetValue()));
    if (!TuFileUtl::IsFileName(file)) {
        file = GetPath();
        file += L"\\";
        file += variable->GetValue();
    }
    UpdateDeploymentFolder(file);
}

void CFCApplicationNode::UpdateDeploymentFolder(wchar_t const* file) {
    if (file == nullptr) {
        return;
    }
    TuFileUtl const original(file, 0); // keeps its own text: the given one may be the result of GetPath
    TuString const root(GetPath());
    forEachDeployment(m_DeploymentList, [&](CFCDeploymentData* deployment) {
        TuString folder = root + L"\\" + TuString(deployment->GetNodeCaption());
        TuFileUtl::CreateADirectory(folder);
        folder += L"\\";
        folder += original.GetFileName();
        original.CopyIn(folder);
    });
}

void CFCApplicationNode::RefreshDeployments() {
    CreateDefaultDeployments();
    ClearDeploymentVars();
    forEachOfDeployment(GetVariableList(), [this](CFCVariableData* variable) { UpdateDeploymentVariable(variable); });
}
