#pragma once

#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCNode.h"
#include "support/TestSupport.h"

#include <string>

namespace flowmere::test {

// The base with nothing added, so that it can be built; shows what it stores and does not read back.
class PlainNode : public CFCNode {
public:
    void Create() override {}

    EProjectType storedProjectType() const { return m_eProjectType; }
    bool storedDirty() const { return m_bDirty; }
    bool storedCheckedOut() const { return m_bCheckedOut; }
    bool storedUptoDate() const { return m_bUptoDate; }
    TuString const& storedUser() const { return m_strCheckedOutUser; }
};

// A node with an identifier of its own, as a host's class may have.
class NamedNode : public PlainNode {
public:
    explicit NamedNode(wchar_t const* id) : m_id(id) {}

    wchar_t const* GetNodeId() override { return m_id; }
    void SetNodeId(wchar_t const* id) override { m_id = id; }
    wchar_t const* GetOldNodeId() override { return m_oldId; }
    void SetOldNodeId(wchar_t const* id) override { m_oldId = id; }

private:
    TuString m_id;
    TuString m_oldId;
};

// The abstract node with what it leaves open filled in by nothing.
class BareNode : public CFCAbstractNode {
public:
    IFCNode* GetRootNode() override { return this; }
    IFCNode* GetNextL() override { return nullptr; }
    IFCNode* GetPrevL() override { return nullptr; }
    IFCNode* GetChildL() override { return nullptr; }
    void SetNextL(IFCNode*) override {}
    void SetPrevL(IFCNode*) override {}
    void SetChildL(IFCNode*) override {}
    int GetNodeHandle() override { return 0; }
    void SetNodeHandle(int) override {}
    void SetNodeDescription(wchar_t const*) override {}
    wchar_t const* GetNodeCode() override { return L""; }
    void SetNodeCode(wchar_t const*) override {}
    using CFCAbstractNode::GetHierarchy;
    void GetHierarchy(TuString&, TuString&) override {}
    wchar_t const* GetItemFileBaseDirectory() override { return L""; }
    void SetItemFileBaseDirectory(wchar_t const*) override {}
    void UnMark() override {}
    void ResolveVariables() override {}
    bool IsLoaded() override { return false; }
    void SetLoaded(bool) override {}
    void AutoLoad() override {}
    void UnLoad() override {}
    bool IsFileLink() override { return false; }
    void SetFileLink(bool) override {}
    void SetFileLinkPath(wchar_t const*) override {}
    wchar_t const* GetFileLinkPath() override { return L""; }
    bool CanLoad() override { return false; }
    bool CanUnLoad() override { return false; }
    void SetImageIndex(int) override {}
    EProjectType GetProjectType() override { return EProjectType_None; }
    void SetProjectType(EProjectType) override {}
    float GetVersionNo() override { return 0; }
    void SetVersionNo(float) override {}
    bool IsDirty() override { return false; }
    void SetDirty(bool) override {}
    bool IsCheckedOut() override { return false; }
    void SetCheckedOut(bool) override {}
    bool IsUptoDate() override { return false; }
    void SetUptoDate(bool) override {}
    void SetCheckedOutUser(wchar_t const*) override {}
    wchar_t const* GetCheckedOutUser() override { return nullptr; }
    bool IsNewPath() override { return false; }
    void SetNewPath(bool) override {}
    using CFCAbstractNode::SetModified;
    void SetModified(bool) override {}
    using CFCAbstractNode::SetDeleted;
    void SetDeleted(bool) override {}
    bool IsDeleteAllVersions() override { return false; }
    void SetDeleteAllVersions(bool) override {}
    int GetNodeCollectionIndex() override { return 0; }
    void SetNodeCollectionIndex(int) override {}
    bool IsBPMNode() override { return false; }
};

// Identifiers of the children from first to last, with a blank between.
inline std::string childNames(IFCNode& parent) {
    std::string names;
    for (IFCNode* child = parent.GetChild(); child != nullptr; child = child->GetNext()) {
        names += (names.empty() ? "" : " ") + narrow(child->GetNodeId());
    }
    return names;
}

} // namespace flowmere::test
