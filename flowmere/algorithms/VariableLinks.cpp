// The operations of CFCVariableData that look for its link target in the tree.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCBlockData.h"
#include "flowmere/model/FCVariableData.h"
#include "flowmere/model/LinkEpoch.h"
#include "flowmere/model/NodeTable.h"
#include "flowmere/model/ParentChain.h"

namespace {

// Whether the variable that had this handle when it was noted is still there. The pointer itself
// may be dead, and is compared only.
bool isAlive(CFCVariableData* variable, int handle) {
    return variable != nullptr && flowmere::livingNode(handle) == static_cast<IFCNode*>(variable);
}

} // namespace

IFCNode* CFCVariableData::GetRoot() {
    return flowmere::topOf(this);
}

void CFCVariableData::SetLinkedVariableHandle() {
    if (m_pLinkedVariable == nullptr) {
        return;
    }
    if (isAlive(m_pLinkedVariable, m_nLinkedTargetHandle)) {
        m_nLinkedVariableHandle = m_pLinkedVariable->GetNodeHandle();
        return;
    }
    if (CFCVariableData* const target = CFCNodeHelper::FindVariable(m_strLinkPath, GetRoot())) {
        LinkVariable(target);
    }
}

wchar_t const* CFCVariableData::GetLinkPathFinal() {
    if (m_nLinkedVariableHandle < 1) {
        return m_strLinkPath;
    }
    IFCNode* const node = flowmere::livingNode(m_nLinkedVariableHandle);
    CFCVariableData* const target = node == nullptr ? nullptr : node->GetVariableData();
    if (target == nullptr) {
        return L"";
    }
    target->SetPath();
    return target->m_strPath;
}

void CFCVariableData::Resolve() {
    if (IsLinked()) {
        ResolveFromRoot(GetRoot());
    }
}

void CFCVariableData::ResolveFromRoot(IFCNode* root) {
    if (!IsLinked()) {
        return;
    }
    TuString const path(m_strLinkPath);
    setLinked(CFCNodeHelper::FindVariable(path, root));
    setFinal(CFCNodeHelper::FindFinalVariable(path, root));
}

void CFCVariableData::RemoveInvalidLink() {
    if (m_strLinkPath.IsEmpty()) {
        return;
    }
    TuString const path(m_strLinkPath);
    setLinked(CFCNodeHelper::FindVariable(path, GetRoot()));
    if (m_pLinkedVariable == nullptr) {
        m_strLinkPath.Empty();
        ++flowmere::linkEpoch;
        m_eConnectionType = EConnectionType_Local;
        m_eScopeType = EScopeType_Local;
    }
}

void CFCVariableData::bindTo(CFCVariableData* target) {
    LinkVariable(target);
    target->SetPath();
    m_strLinkPath = target->m_strPath;
    ++flowmere::linkEpoch;
    m_eScopeType = EScopeType_Connected;
    if (*target->GetDataTypeS() == L'\0') {
        // A target without a type takes that of its user.
        target->m_eDataType = m_eDataType;
    }
}

void CFCVariableData::ConvertToLinkedVariable() {
    if (m_eScopeType != EScopeType_Parent && m_eScopeType != EScopeType_Global) {
        return;
    }
    if (IsProcessVariable()) {
        ConvertProcessVariableToLinkedVariable();
        return;
    }
    IFCNode* const owner = GetParentNode();
    IFCNode* const enclosing = owner == nullptr ? nullptr : owner->GetParentNode();
    CFCBlockData* const block = enclosing == nullptr ? nullptr : enclosing->GetFCBlockData();
    if (block == nullptr) {
        return;
    }
    TuString const named(m_strValue);
    CFCVariableData* target = block->FindVariable(named);
    if (target == nullptr) {
        TuString const own(GetVariableName());
        target = block->FindVariable(own);
    }
    if (target != nullptr) {
        bindTo(target);
    }
}

void CFCVariableData::ConvertProcessVariableToLinkedVariable() {
    if (m_eScopeType != EScopeType_Parent && m_eScopeType != EScopeType_Global) {
        return;
    }
    IFCNode* const owner = GetParentNode();
    CFCBlockData* const block = owner == nullptr ? nullptr : owner->GetFCBlockData();
    if (block == nullptr) {
        return;
    }
    TuString const named(m_strValue);
    if (CFCVariableData* const target = block->FindVariable(named)) {
        bindTo(target);
    }
}

CFCVariableData* CFCVariableData::GetActualVariableData() {
    // Global scope is left for a later conversion of the whole tree.
    if (m_eScopeType == EScopeType_Parent) {
        ConvertToLinkedVariable();
    }
    if (!IsLinked()) {
        return this;
    }
    if (isAlive(m_pFinalVariable, m_nFinalTargetHandle)) {
        return m_pFinalVariable;
    }
    TuString const path(m_strLinkPath);
    CFCVariableData* const end = CFCNodeHelper::FindFinalVariable(path, GetRoot());
    if (end == nullptr) {
        return this;
    }
    setFinal(end);
    return end;
}

void CFCVariableData::CheckError() {
    m_strError.Empty();
    Resolve();
    if (m_strLinkPath.IsEmpty() || m_pLinkedVariable != nullptr) {
        return;
    }
    SetPath();
    // The phrase in the middle stands twice, and reports are compared by this text.
    m_strError = L"Missing Variable " + m_strPath + L" To Variable " + L" To Variable " + m_strLinkPath + L"\n";
}

wchar_t const* CFCVariableData::GetErrorString() {
    CheckError();
    return m_strError;
}
