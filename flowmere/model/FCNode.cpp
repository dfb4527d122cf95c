#include "flowmere/model/FCNode.h"

#include "flowmere/model/ChildIndex.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/NodeKinds.h"
#include "flowmere/model/ParentChain.h"
#include "flowmere/model/TreeEpoch.h"

#include <cstddef>
#include <vector>

using flowmere::ChildIndex;
using flowmere::ChildLookup;
using flowmere::ParentChain;

namespace {

// The handle that was drawn last.
int s_lastHandle = 0;

// Set while a search for a root climbs, so that only its first step looks for a loop.
bool s_climbing = false;

struct Climb {
    Climb() { s_climbing = true; }
    ~Climb() { s_climbing = false; }
    Climb(Climb const&) = delete;
    Climb& operator=(Climb const&) = delete;
};

// A node and all its ancestors, from the node upward.
std::vector<IFCNode*> upward(IFCNode* node) {
    std::vector<IFCNode*> chain;
    for (ParentChain parents(node); parents.node() != nullptr; parents.climb()) {
        chain.push_back(parents.node());
    }
    return chain;
}

// The root by the nodes' own words, but for a chain of parents that closes on itself: that ends as at a root.
IFCNode* rootAbove(IFCNode* node, IFCNode* parent) {
    IFCNode* const top = flowmere::topOf(node);
    if (top->GetParentNode() != nullptr) {
        return top;
    }
    Climb const climb;
    return parent->GetRootNode();
}

// Takes the parent away from the siblings behind a first child. A child that was appended twice closes their chain to a
// ring, which is gone round once.
void loseParent(IFCNode* firstChild, IFCNode* parent) {
    IFCNode* landmark = nullptr;
    std::size_t steps = 0;
    std::size_t nextLandmark = 64;
    for (IFCNode* child = firstChild->GetNext(); child != nullptr && child != firstChild && child != landmark;
         child = child->GetNext()) {
        if (child->GetParentNode() == parent) {
            child->SetParentNode(nullptr);
        }
        if (++steps == nextLandmark) {
            landmark = child;
            nextLandmark *= 2;
        }
    }
}

bool isAbove(IFCNode* ancestor, IFCNode* node) {
    for (ParentChain parents(node); parents.node() != nullptr; parents.climb()) {
        if (parents.node() == ancestor) {
            return true;
        }
    }
    return false;
}

} // namespace

// CFCAbstractNode

IFCNode* CFCAbstractNode::FindNodeSimple(wchar_t const*) {
    return nullptr;
}

IFCNode* CFCAbstractNode::FindNodeWithOldId(wchar_t const*) {
    return nullptr;
}

IFCNode* CFCAbstractNode::FindNodeComplex(wchar_t const*) {
    return nullptr;
}

int CFCAbstractNode::GetNodeType() {
    return 0;
}

void CFCAbstractNode::SetNodeType(int) {}

int CFCAbstractNode::GetNodeLocationType() {
    return 0;
}

void CFCAbstractNode::SetNodeLocationType(int) {}

int CFCAbstractNode::GetImage() {
    return 0;
}

int CFCAbstractNode::GetShapeType() {
    return 0;
}

void CFCAbstractNode::SetShapeType(int) {}

IFCNode* CFCAbstractNode::GetParentNode() {
    return nullptr;
}

IFCNode* CFCAbstractNode::GetChild() {
    return nullptr;
}

IFCNode* CFCAbstractNode::GetNext() {
    return nullptr;
}

IFCNode* CFCAbstractNode::GetPrev() {
    return nullptr;
}

void CFCAbstractNode::SetParentNode(IFCNode*) {}

void CFCAbstractNode::SetChild(IFCNode*) {}

void CFCAbstractNode::SetNext(IFCNode*) {}

void CFCAbstractNode::SetPrev(IFCNode*) {}

CFCBlockData* CFCAbstractNode::GetFCBlockData() {
    return nullptr;
}

CFCBPMBlockData* CFCAbstractNode::GetBPMBlockData() {
    return nullptr;
}

CFCVariableData* CFCAbstractNode::GetVariableData() {
    return nullptr;
}

CFCDrawingBlock* CFCAbstractNode::GetDrawingBlock() {
    return nullptr;
}

IFCNode* CFCAbstractNode::GetHead() {
    return nullptr;
}

IFCNode* CFCAbstractNode::GetTail() {
    return nullptr;
}

IFCNode* CFCAbstractNode::GetNextRun() {
    return nullptr;
}

std::int64_t CFCAbstractNode::GetItemData() {
    return 0;
}

void CFCAbstractNode::SetItemData(std::int64_t) {}

unsigned int CFCAbstractNode::GetNodeProcessID() {
    return 0;
}

void CFCAbstractNode::SetNodeProcessID(unsigned int) {}

wchar_t const* CFCAbstractNode::GetNodeCaption() {
    return L"";
}

void CFCAbstractNode::SetNodeCaption(wchar_t const*) {}

wchar_t const* CFCAbstractNode::GetNodeDescription() {
    return L"";
}

wchar_t const* CFCAbstractNode::GetNodeId() {
    return L"";
}

void CFCAbstractNode::SetNodeId(wchar_t const*) {}

wchar_t const* CFCAbstractNode::GetNodePath() {
    return L"";
}

wchar_t const* CFCAbstractNode::GetNodePathByCaption() {
    return L"";
}

wchar_t const* CFCAbstractNode::GetItemFilePath() {
    return L"";
}

void CFCAbstractNode::SetItemFilePath(wchar_t const*) {}

IFCNode* CFCAbstractNode::CloneNode() {
    return nullptr;
}

void CFCAbstractNode::SetMark(bool) {}

bool CFCAbstractNode::IsMarked() {
    return false;
}

CFCVariableList* CFCAbstractNode::GetVariableList() {
    return nullptr;
}

CFCConnectorList* CFCAbstractNode::GetConnectorList() {
    return nullptr;
}

bool CFCAbstractNode::AppendChild(IFCNode*, bool) {
    return false;
}

void CFCAbstractNode::RemoveLinks() {}

bool CFCAbstractNode::IsExpanded() {
    return false;
}

void CFCAbstractNode::Expand(bool) {}

void CFCAbstractNode::Delete() {}

void CFCAbstractNode::TransferToDraw() {}

void CFCAbstractNode::TransferToData() {}

void CFCAbstractNode::AddConnector(CFCConnector*) {}

CFCVariableData* CFCAbstractNode::CreateNewVariable() {
    return nullptr;
}

void CFCAbstractNode::SetTuRect(int, int, int, int) {}

void CFCAbstractNode::SetTuRectInInchReverse(double, double, double, double) {}

void CFCAbstractNode::SetTuRectInInch(double, double, double, double) {}

void CFCAbstractNode::SetTuRectInInchFlowmere(double, double, double, double) {}

TuRect* CFCAbstractNode::GetTuRect() {
    return nullptr;
}

void CFCAbstractNode::SetFolderPath(wchar_t const*) {}

wchar_t const* CFCAbstractNode::GetFolderPath() {
    return L"";
}

bool CFCAbstractNode::Save() {
    return false;
}

void CFCAbstractNode::SetOldNodeId(wchar_t const*) {}

wchar_t const* CFCAbstractNode::GetOldNodeId() {
    return L"";
}

bool CFCAbstractNode::IsMacroNode() {
    return false;
}

bool CFCAbstractNode::IsHidden() {
    return false;
}

void CFCAbstractNode::HideNode(bool) {}

int CFCAbstractNode::GetImageIndex() {
    return 0;
}

bool CFCAbstractNode::IsModified() {
    return false;
}

bool CFCAbstractNode::IsDeleted() {
    return false;
}

void CFCAbstractNode::Create() {}

void CFCAbstractNode::GetNodeDescription(wchar_t const*) {}

void CFCAbstractNode::GetHierarchy(TuString&) {}

void CFCAbstractNode::SetModified() {}

void CFCAbstractNode::SetDeleted() {}

unsigned int CFCAbstractNode::checkState(int bitIndex) {
    return m_uState & (1U << (static_cast<unsigned int>(bitIndex) % 32U));
}

void CFCAbstractNode::setState(int mask) {
    m_uState |= static_cast<std::uint32_t>(mask);
}

void CFCAbstractNode::clearState(int mask) {
    m_uState &= ~static_cast<std::uint32_t>(mask);
}

// CFCNode

CFCNode::CFCNode() : m_nNodeHandle(++s_lastHandle), m_nRegisteredHandle(m_nNodeHandle) {
    CFCNodeManager::SetNode(m_nNodeHandle, this);
}

// Everything as it stands, but for what belongs to the object itself: its own entry in the manager and the index.
CFCNode::CFCNode(CFCNode const& other)
    : CFCAbstractNode(other), m_nNodeType(other.m_nNodeType), m_pChild(other.m_pChild), m_pParent(other.m_pParent),
      m_pPrev(other.m_pPrev), m_pNext(other.m_pNext), m_pPrevL(other.m_pPrevL), m_pNextL(other.m_pNextL),
      m_pChildL(other.m_pChildL), m_nItemData(other.m_nItemData), m_nNodeHandle(other.m_nNodeHandle),
      m_strCaption(other.m_strCaption), m_strDescription(other.m_strDescription), m_strPathCache(other.m_strPathCache),
      m_strFileLinkPath(other.m_strFileLinkPath), m_strItemFilePath(other.m_strItemFilePath),
      m_uProcessId(other.m_uProcessId), m_nImageIndex(other.m_nImageIndex),
      m_strItemFileBaseDirectory(other.m_strItemFileBaseDirectory), m_strCheckedOutUser(other.m_strCheckedOutUser),
      m_fVersionNo(other.m_fVersionNo), m_eProjectType(other.m_eProjectType),
      m_nCollectionIndex(other.m_nCollectionIndex), m_bDirty(other.m_bDirty), m_bCheckedOut(other.m_bCheckedOut),
      m_bUptoDate(other.m_bUptoDate), m_bMarked(other.m_bMarked), m_bFileLink(other.m_bFileLink),
      m_bLoaded(other.m_bLoaded), m_bNewPath(other.m_bNewPath), m_bModified(other.m_bModified),
      m_bDeleted(other.m_bDeleted), m_bDeleteAllVersions(other.m_bDeleteAllVersions) {}

CFCNode& CFCNode::operator=(CFCNode const& other) {
    ChildIndex::childChanges(*this);
    ++flowmere::treeEpoch;
    CFCAbstractNode::operator=(other);
    m_nNodeType = other.m_nNodeType;
    m_pChild = other.m_pChild;
    m_pParent = other.m_pParent;
    m_pPrev = other.m_pPrev;
    m_pNext = other.m_pNext;
    m_pPrevL = other.m_pPrevL;
    m_pNextL = other.m_pNextL;
    m_pChildL = other.m_pChildL;
    m_nItemData = other.m_nItemData;
    m_nNodeHandle = other.m_nNodeHandle;
    m_strCaption = other.m_strCaption;
    m_strDescription = other.m_strDescription;
    m_strPathCache = other.m_strPathCache;
    m_strFileLinkPath = other.m_strFileLinkPath;
    m_strItemFilePath = other.m_strItemFilePath;
    m_uProcessId = other.m_uProcessId;
    m_nImageIndex = other.m_nImageIndex;
    m_strItemFileBaseDirectory = other.m_strItemFileBaseDirectory;
    m_strCheckedOutUser = other.m_strCheckedOutUser;
    m_fVersionNo = other.m_fVersionNo;
    m_eProjectType = other.m_eProjectType;
    m_bDirty = other.m_bDirty;
    m_bCheckedOut = other.m_bCheckedOut;
    m_bUptoDate = other.m_bUptoDate;
    m_bMarked = other.m_bMarked;
    m_bFileLink = other.m_bFileLink;
    m_bLoaded = other.m_bLoaded;
    m_bNewPath = other.m_bNewPath;
    m_bModified = other.m_bModified;
    m_bDeleted = other.m_bDeleted;
    m_bDeleteAllVersions = other.m_bDeleteAllVersions;
    m_nCollectionIndex = other.m_nCollectionIndex;
    return *this;
}

CFCNode::~CFCNode() {
    ChildIndex::childChanges(*this);
    ChildIndex::drop(*this);
    ++flowmere::treeEpoch;
    CFCNodeManager::SetNode(m_nNodeHandle, nullptr);
    // An assignment or a new handle leaves the entry behind that this object made itself.
    if (m_nRegisteredHandle != m_nNodeHandle && m_nRegisteredHandle != 0 &&
        CFCNodeManager::GetNode(m_nRegisteredHandle) == this) {
        CFCNodeManager::SetNode(m_nRegisteredHandle, nullptr);
    }
}

IFCNode* CFCNode::FindNodeSimple(wchar_t const* id) {
    return flowmere::findChild(*this, id, ChildLookup::Id);
}

IFCNode* CFCNode::FindNodeWithOldId(wchar_t const* id) {
    return flowmere::findChild(*this, id, ChildLookup::OldId);
}

int CFCNode::GetNodeType() {
    return m_nNodeType;
}

void CFCNode::SetNodeType(int type) {
    m_nNodeType = type;
}

int CFCNode::GetImage() {
    flowmere::NodeKind const* const kind = flowmere::findNodeKind(m_nNodeType);
    return kind == nullptr ? 0 : kind->image;
}

IFCNode* CFCNode::GetParentNode() {
    return m_pParent;
}

IFCNode* CFCNode::GetChild() {
    return m_pChild;
}

IFCNode* CFCNode::GetNext() {
    return m_pNext;
}

IFCNode* CFCNode::GetPrev() {
    return m_pPrev;
}

// Climbs by virtual calls, for the sake of nodes with a root of their own; no local objects, for deep trees.
IFCNode* CFCNode::GetRootNode() {
    if (m_pParent == nullptr) {
        return this;
    }
    return s_climbing ? m_pParent->GetRootNode() : rootAbove(this, m_pParent);
}

IFCNode* CFCNode::GetNextL() {
    return m_pNextL;
}

IFCNode* CFCNode::GetPrevL() {
    return m_pPrevL;
}

IFCNode* CFCNode::GetChildL() {
    return m_pChildL;
}

void CFCNode::SetParentNode(IFCNode* node) {
    ChildIndex::childChanges(*this);
    flowmere::treeEpoch += m_pParent != nullptr ? 1 : 0;
    m_pParent = node;
}

void CFCNode::SetChild(IFCNode* node) {
    ++flowmere::treeEpoch;
    m_pChild = node;
}

void CFCNode::SetNext(IFCNode* node) {
    ChildIndex::childChanges(*this);
    flowmere::treeEpoch += m_pParent != nullptr ? 1 : 0;
    m_pNext = node;
}

void CFCNode::SetPrev(IFCNode* node) {
    m_pPrev = node;
}

void CFCNode::SetNextL(IFCNode* node) {
    m_pNextL = node;
}

void CFCNode::SetPrevL(IFCNode* node) {
    m_pPrevL = node;
}

void CFCNode::SetChildL(IFCNode* node) {
    m_pChildL = node;
}

IFCNode* CFCNode::GetNextRun() {
    return nullptr;
}

std::int64_t CFCNode::GetItemData() {
    return m_nItemData;
}

void CFCNode::SetItemData(std::int64_t data) {
    m_nItemData = data;
}

int CFCNode::GetNodeHandle() {
    return m_nNodeHandle;
}

void CFCNode::SetNodeHandle(int handle) {
    m_nNodeHandle = handle;
}

unsigned int CFCNode::GetNodeProcessID() {
    return m_uProcessId;
}

void CFCNode::SetNodeProcessID(unsigned int id) {
    m_uProcessId = id;
}

wchar_t const* CFCNode::GetNodeCaption() {
    return m_strCaption;
}

void CFCNode::SetNodeCaption(wchar_t const* caption) {
    flowmere::treeEpoch += m_pParent != nullptr || m_pChild != nullptr ? 1 : 0;
    m_strCaption = caption;
}

wchar_t const* CFCNode::GetNodeDescription() {
    return m_strDescription;
}

void CFCNode::SetNodeDescription(wchar_t const* description) {
    m_strDescription = description;
}

wchar_t const* CFCNode::GetNodeCode() {
    return L"";
}

void CFCNode::SetNodeCode(wchar_t const*) {}

wchar_t const* CFCNode::GetNodePath() {
    std::vector<IFCNode*> const chain = upward(this);
    TuString path;
    for (std::size_t i = chain.size(); i-- > 1;) {
        wchar_t const* const id = chain[i]->GetNodeId();
        if (id != nullptr && *id != L'\0') {
            path += id;
            path += L'.';
        }
    }
    // The own identifier stands at the end even when it is empty, behind its point.
    path += GetNodeId();
    m_strPathCache = path;
    return m_strPathCache;
}

wchar_t const* CFCNode::GetNodePathByCaption() {
    std::vector<IFCNode*> const chain = upward(this);
    TuString path;
    // The two topmost levels are the process and the list it hangs in.
    for (std::size_t i = chain.size() < 2 ? 0 : chain.size() - 2; i-- > 1;) {
        wchar_t const* const caption = chain[i]->GetNodeCaption();
        if (caption != nullptr && *caption != L'\0') {
            path += caption;
            path += L'.';
        }
    }
    path += GetNodeCaption();
    m_strPathCache = path;
    return m_strPathCache;
}

void CFCNode::GetHierarchy(TuString& separator, TuString& out) {
    TuString const between = separator;
    std::vector<IFCNode*> const chain = upward(this);
    TuString hierarchy = chain.back()->GetNodeCaption();
    for (std::size_t i = chain.size() - 1; i-- > 0;) {
        hierarchy += between;
        hierarchy += chain[i]->GetNodeCaption();
    }
    out = hierarchy;
}

wchar_t const* CFCNode::GetItemFilePath() {
    return m_strItemFilePath;
}

void CFCNode::SetItemFilePath(wchar_t const* path) {
    m_strItemFilePath = path;
}

wchar_t const* CFCNode::GetItemFileBaseDirectory() {
    return m_strItemFileBaseDirectory;
}

void CFCNode::SetItemFileBaseDirectory(wchar_t const* path) {
    m_strItemFileBaseDirectory = path;
}

void CFCNode::SetMark(bool mark) {
    m_bMarked = mark;
}

bool CFCNode::IsMarked() {
    return m_bMarked;
}

bool CFCNode::AppendChild(IFCNode* child, bool) {
    if (child == nullptr || child == this || child == m_pChild) {
        return true;
    }
    // Only a node with children can be above this one.
    if (child->GetChild() != nullptr && isAbove(child, this)) {
        return true;
    }
    if (m_pChild != nullptr) {
        m_pChild->SetPrev(child);
        child->SetNext(m_pChild);
        SetChild(child);
    } else {
        m_pChild = child;
        ++flowmere::treeEpoch;
    }
    child->SetParentNode(this);
    return true;
}

void CFCNode::RemoveLinks() {
    ChildIndex::childChanges(*this);
    ++flowmere::treeEpoch;
    m_pChild = nullptr;
    m_pParent = nullptr;
    m_pPrev = nullptr;
    m_pNext = nullptr;
}

// Goes down by virtual calls; no local objects, for deep trees.
void CFCNode::Delete() {
    if (m_pChild != nullptr) {
        // The children that stay must not point at a node that is gone.
        loseParent(m_pChild, this);
        m_pChild->Delete();
    }
    if (m_pParent != nullptr && m_pParent->GetChild() == this) {
        m_pParent->SetChild(m_pNext);
        if (m_pNext != nullptr) {
            m_pNext->SetPrev(nullptr);
        }
    } else {
        if (m_pPrev != nullptr) {
            m_pPrev->SetNext(m_pNext);
        }
        if (m_pNext != nullptr) {
            m_pNext->SetPrev(m_pPrev);
        }
    }
    delete this;
}

// Goes down by virtual calls; no local objects, for deep trees.
void CFCNode::UnMark() {
    SetMark(false);
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        child->UnMark();
    }
}

void CFCNode::ResolveVariables() {
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        child->ResolveVariables();
    }
}

bool CFCNode::IsLoaded() {
    return m_bLoaded;
}

void CFCNode::SetLoaded(bool loaded) {
    m_bLoaded = loaded;
}

void CFCNode::AutoLoad() {}

void CFCNode::UnLoad() {}

bool CFCNode::IsFileLink() {
    return m_bFileLink;
}

void CFCNode::SetFileLink(bool link) {
    m_bFileLink = link;
}

void CFCNode::SetFileLinkPath(wchar_t const* path) {
    m_strFileLinkPath = path;
}

wchar_t const* CFCNode::GetFileLinkPath() {
    return m_strFileLinkPath;
}

bool CFCNode::CanLoad() {
    return m_bFileLink && !m_bLoaded;
}

bool CFCNode::CanUnLoad() {
    return m_bFileLink && m_bLoaded;
}

int CFCNode::GetImageIndex() {
    return m_nImageIndex;
}

void CFCNode::SetImageIndex(int index) {
    m_nImageIndex = index;
}

// What is stored is read back by processes and file nodes only; so with the library state below.
EProjectType CFCNode::GetProjectType() {
    return EProjectType_None;
}

void CFCNode::SetProjectType(EProjectType type) {
    m_eProjectType = type;
}

float CFCNode::GetVersionNo() {
    return m_fVersionNo;
}

void CFCNode::SetVersionNo(float version) {
    m_fVersionNo = version;
}

bool CFCNode::IsDirty() {
    return false;
}

void CFCNode::SetDirty(bool dirty) {
    m_bDirty = dirty;
}

bool CFCNode::IsCheckedOut() {
    return false;
}

void CFCNode::SetCheckedOut(bool checkedOut) {
    m_bCheckedOut = checkedOut;
}

bool CFCNode::IsUptoDate() {
    return false;
}

void CFCNode::SetUptoDate(bool uptoDate) {
    m_bUptoDate = uptoDate;
}

void CFCNode::SetCheckedOutUser(wchar_t const* user) {
    m_strCheckedOutUser = user;
}

wchar_t const* CFCNode::GetCheckedOutUser() {
    return nullptr;
}

bool CFCNode::IsNewPath() {
    return m_bNewPath;
}

void CFCNode::SetNewPath(bool newPath) {
    m_bNewPath = newPath;
}

bool CFCNode::IsModified() {
    return m_bModified;
}

void CFCNode::SetModified(bool modified) {
    m_bModified = modified;
}

bool CFCNode::IsDeleted() {
    return m_bDeleted;
}

void CFCNode::SetDeleted(bool deleted) {
    m_bDeleted = deleted;
}

bool CFCNode::IsDeleteAllVersions() {
    return m_bDeleteAllVersions;
}

void CFCNode::SetDeleteAllVersions(bool deleteAll) {
    m_bDeleteAllVersions = deleteAll;
}

int CFCNode::GetNodeCollectionIndex() {
    return m_nCollectionIndex;
}

void CFCNode::SetNodeCollectionIndex(int index) {
    m_nCollectionIndex = index;
}

bool CFCNode::IsBPMNode() {
    return m_nNodeType >= eShapeType_Task && m_nNodeType <= eShapeType_ApplicationGroup;
}
