#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCEnumerations.h"

#include <cstdint>
#include <memory>

class CFCBlockData;
class CFCBPMBlockData;
class CFCConnector;
class CFCConnectorList;
class CFCVariableData;
class CFCVariableList;
// Types of the host, known by name only.
class CFCDrawingBlock;
class CFCWindow;

namespace flowmere {
class ChildIndex;
}

// The one interface of every object of the model: blocks, processes, connectors, variables, folders,
// and the lists of them.
//
// Texts that come back point into the node or at a shared empty text; they hold until the node
// changes, and the caller copies what it keeps and never frees it. Setters copy; a null text stores
// the empty text. No operation reports a failure: a miss is null, false, 0 or the empty text. Links
// own nothing; whoever holds a tree tears it down.
class FLOWMERE_API IFCNode {
public:
    virtual ~IFCNode() = default;

    // First direct child with this id, without regard to case; children without id never match. Null
    // when there is none.
    virtual IFCNode* FindNodeSimple(wchar_t const* id) = 0;
    // The same by the id that a child had before it was renamed.
    virtual IFCNode* FindNodeWithOldId(wchar_t const* id) = 0;
    // Always null; CFCNodeHelper searches whole trees.
    virtual IFCNode* FindNodeComplex(wchar_t const* id) = 0;

    // The node type code (see eShapeType), 0 when none was set.
    virtual int GetNodeType() = 0;
    virtual void SetNodeType(int type) = 0;
    // Where a file node's file lies; 0 for all others.
    virtual int GetNodeLocationType() = 0;
    virtual void SetNodeLocationType(int type) = 0;
    // Number of the image that stands for the node in the host's trees.
    virtual int GetImage() = 0;
    // Kept for hosts; 0 in the library.
    virtual int GetShapeType() = 0;
    virtual void SetShapeType(int type) = 0;

    // The links. Not owned; null when absent. A variable's or document's parent is the block that owns
    // its list; elements of a CFCNodeList are chained by next and previous as children are.
    virtual IFCNode* GetParentNode() = 0;
    virtual IFCNode* GetChild() = 0;
    virtual IFCNode* GetNext() = 0;
    virtual IFCNode* GetPrev() = 0;
    // The topmost ancestor, the node itself when it has no parent.
    virtual IFCNode* GetRootNode() = 0;
    // The links of the second, independent chain (CFCDLinkList).
    virtual IFCNode* GetNextL() = 0;
    virtual IFCNode* GetPrevL() = 0;
    virtual IFCNode* GetChildL() = 0;
    // Each sets one link and touches no other node.
    virtual void SetParentNode(IFCNode* node) = 0;
    virtual void SetChild(IFCNode* node) = 0;
    virtual void SetNext(IFCNode* node) = 0;
    virtual void SetPrev(IFCNode* node) = 0;
    virtual void SetNextL(IFCNode* node) = 0;
    virtual void SetPrevL(IFCNode* node) = 0;
    virtual void SetChildL(IFCNode* node) = 0;

    // The record that the node carries, part of the node; null for a node without it.
    virtual CFCBlockData* GetFCBlockData() = 0;
    virtual CFCBPMBlockData* GetBPMBlockData() = 0;
    virtual CFCVariableData* GetVariableData() = 0;
    // Kept for hosts; null in the library.
    virtual CFCDrawingBlock* GetDrawingBlock() = 0;

    // Null in the library, but for the head of a deployment list.
    virtual IFCNode* GetHead() = 0;
    virtual IFCNode* GetTail() = 0;
    // Null in the library.
    virtual IFCNode* GetNextRun() = 0;

    // A value of the host's own, usually its tree-view item; 0 at first.
    virtual std::int64_t GetItemData() = 0;
    virtual void SetItemData(std::int64_t data) = 0;
    // Handle under which CFCNodeManager knows the node. Setting it stores the number and registers
    // nothing.
    virtual int GetNodeHandle() = 0;
    virtual void SetNodeHandle(int handle) = 0;
    // Identifier of the process in a process list.
    virtual unsigned int GetNodeProcessID() = 0;
    virtual void SetNodeProcessID(unsigned int id) = 0;

    // The text shown to the user.
    virtual wchar_t const* GetNodeCaption() = 0;
    virtual void SetNodeCaption(wchar_t const* caption) = 0;
    virtual wchar_t const* GetNodeDescription() = 0;
    virtual void SetNodeDescription(wchar_t const* description) = 0;
    // Code text of a code node; empty and not stored elsewhere.
    virtual wchar_t const* GetNodeCode() = 0;
    virtual void SetNodeCode(wchar_t const* code) = 0;
    // Identifier among the siblings. Empty and not stored in classes without one (folders, favourites,
    // documents, data types).
    virtual wchar_t const* GetNodeId() = 0;
    virtual void SetNodeId(wchar_t const* id) = 0;

    // Identifiers from the root down to this node, joined by "."; ancestors without id leave no segment.
    // Shares its storage with GetNodePathByCaption: each call overwrites the text of the one before.
    virtual wchar_t const* GetNodePath() = 0;
    // Captions down to this node, joined by ".", without those of the two topmost levels; the own caption
    // is always there.
    virtual wchar_t const* GetNodePathByCaption() = 0;
    // Captions from the root, which comes first, down to this node, joined by separator, into out.
    virtual void GetHierarchy(TuString& separator, TuString& out) = 0;

    // Path of the file that holds the item, and the directory it is relative to.
    virtual wchar_t const* GetItemFilePath() = 0;
    virtual void SetItemFilePath(wchar_t const* path) = 0;
    virtual wchar_t const* GetItemFileBaseDirectory() = 0;
    virtual void SetItemFileBaseDirectory(wchar_t const* path) = 0;

    // Always null: CFCNodeHelper copies trees.
    virtual IFCNode* CloneNode() = 0;

    // Mark for tree algorithms; UnMark resets it on the whole subtree.
    virtual void SetMark(bool mark) = 0;
    virtual bool IsMarked() = 0;

    // The lists of a block, part of the node; null for a node without them.
    virtual CFCVariableList* GetVariableList() = 0;
    virtual CFCConnectorList* GetConnectorList() = 0;

    // Puts a child in front of the other children and becomes its parent; the flag has no meaning.
    // Always true. A first child keeps the sibling links it came with. Null, the node itself, an ancestor
    // and the present first child are left as they are.
    virtual bool AppendChild(IFCNode* child, bool flag) = 0;
    // Forgets first child, parent and both siblings; their links to this node stay.
    virtual void RemoveLinks() = 0;

    // Kept for the host's trees; false and without effect in the library.
    virtual bool IsExpanded() = 0;
    virtual void Expand(bool expand) = 0;

    // Unhooks the node from its parent and siblings and destroys it, after doing the same with its first
    // child (and so on down). Further children are not destroyed: they lose their parent link.
    virtual void Delete() = 0;

    // Kept for hosts; without effect in the library.
    virtual void TransferToDraw() = 0;
    virtual void TransferToData() = 0;

    // Operations of blocks; without effect, or null, on other nodes.
    virtual void AddConnector(CFCConnector* connector) = 0;
    virtual CFCVariableData* CreateNewVariable() = 0;
    virtual void SetTuRect(int left, int top, int right, int bottom) = 0;
    virtual void SetTuRectInInchReverse(double left, double top, double right, double bottom) = 0;
    virtual void SetTuRectInInch(double left, double top, double right, double bottom) = 0;
    virtual void SetTuRectInInchFlowmere(double left, double top, double right, double bottom) = 0;
    virtual TuRect* GetTuRect() = 0;

    // Resets the mark on this node and on all nodes below it.
    virtual void UnMark() = 0;
    // Resolves the variables of all nodes below, and in blocks the block's own.
    virtual void ResolveVariables() = 0;

    // State of a node that links to another file. It can be loaded when it is a link that is not
    // loaded, and unloaded when it is one that is. AutoLoad and UnLoad do nothing in the library: a
    // host that loads linked files does its own work.
    virtual bool IsLoaded() = 0;
    virtual void SetLoaded(bool loaded) = 0;
    virtual void AutoLoad() = 0;
    virtual void UnLoad() = 0;
    virtual bool IsFileLink() = 0;
    virtual void SetFileLink(bool link) = 0;
    virtual void SetFileLinkPath(wchar_t const* path) = 0;
    virtual wchar_t const* GetFileLinkPath() = 0;
    virtual bool CanLoad() = 0;
    virtual bool CanUnLoad() = 0;

    // Empty, without effect and false through this interface; block data has a folder path of its own.
    virtual void SetFolderPath(wchar_t const* path) = 0;
    virtual wchar_t const* GetFolderPath() = 0;
    virtual bool Save() = 0;

    // The id before the last renaming; empty and not stored on nodes other than blocks.
    virtual void SetOldNodeId(wchar_t const* id) = 0;
    virtual wchar_t const* GetOldNodeId() = 0;
    // Whether a block is a macro; false on other nodes.
    virtual bool IsMacroNode() = 0;
    // Whether a variable is hidden; false and without effect on other nodes.
    virtual bool IsHidden() = 0;
    virtual void HideNode(bool hide) = 0;

    // An image chosen by the host; 0 at first.
    virtual int GetImageIndex() = 0;
    virtual void SetImageIndex(int index) = 0;
    // 8 whatever was set, but for processes and file nodes, which read back what they store.
    virtual EProjectType GetProjectType() = 0;
    virtual void SetProjectType(EProjectType type) = 0;
    // Version of the item, 1.0 at first.
    virtual float GetVersionNo() = 0;
    virtual void SetVersionNo(float version) = 0;
    // Library state: false (null for the user) whatever was set, but for file nodes.
    virtual bool IsDirty() = 0;
    virtual void SetDirty(bool dirty) = 0;
    virtual bool IsCheckedOut() = 0;
    virtual void SetCheckedOut(bool checkedOut) = 0;
    virtual bool IsUptoDate() = 0;
    virtual void SetUptoDate(bool uptoDate) = 0;
    virtual void SetCheckedOutUser(wchar_t const* user) = 0;
    virtual wchar_t const* GetCheckedOutUser() = 0;
    // Whether the item's path was changed since it was loaded.
    virtual bool IsNewPath() = 0;
    virtual void SetNewPath(bool newPath) = 0;
    // Whether the item has unsaved changes, is to be deleted, and with all its versions.
    virtual bool IsModified() = 0;
    virtual void SetModified(bool modified) = 0;
    virtual bool IsDeleted() = 0;
    virtual void SetDeleted(bool deleted) = 0;
    virtual bool IsDeleteAllVersions() = 0;
    virtual void SetDeleteAllVersions(bool deleteAll) = 0;
    // Place of the item in a collection of the host.
    virtual int GetNodeCollectionIndex() = 0;
    virtual void SetNodeCollectionIndex(int index) = 0;
    // Whether the node type belongs to the workflow family, 150 to 168.
    virtual bool IsBPMNode() = 0;
};

// The interface with nothing behind it: every answer is a miss, every order is without effect. Adds a
// word of bits for the transient marks of graph walks.
class FLOWMERE_API CFCAbstractNode : public IFCNode {
public:
    IFCNode* FindNodeSimple(wchar_t const* id) override;
    IFCNode* FindNodeWithOldId(wchar_t const* id) override;
    IFCNode* FindNodeComplex(wchar_t const* id) override;
    int GetNodeType() override;
    void SetNodeType(int type) override;
    int GetNodeLocationType() override;
    void SetNodeLocationType(int type) override;
    int GetImage() override;
    int GetShapeType() override;
    void SetShapeType(int type) override;
    IFCNode* GetParentNode() override;
    IFCNode* GetChild() override;
    IFCNode* GetNext() override;
    IFCNode* GetPrev() override;
    void SetParentNode(IFCNode* node) override;
    void SetChild(IFCNode* node) override;
    void SetNext(IFCNode* node) override;
    void SetPrev(IFCNode* node) override;
    CFCBlockData* GetFCBlockData() override;
    CFCBPMBlockData* GetBPMBlockData() override;
    CFCVariableData* GetVariableData() override;
    CFCDrawingBlock* GetDrawingBlock() override;
    IFCNode* GetHead() override;
    IFCNode* GetTail() override;
    IFCNode* GetNextRun() override;
    std::int64_t GetItemData() override;
    void SetItemData(std::int64_t data) override;
    unsigned int GetNodeProcessID() override;
    void SetNodeProcessID(unsigned int id) override;
    wchar_t const* GetNodeCaption() override;
    void SetNodeCaption(wchar_t const* caption) override;
    wchar_t const* GetNodeDescription() override;
    wchar_t const* GetNodeId() override;
    void SetNodeId(wchar_t const* id) override;
    wchar_t const* GetNodePath() override;
    wchar_t const* GetNodePathByCaption() override;
    wchar_t const* GetItemFilePath() override;
    void SetItemFilePath(wchar_t const* path) override;
    IFCNode* CloneNode() override;
    void SetMark(bool mark) override;
    bool IsMarked() override;
    CFCVariableList* GetVariableList() override;
    CFCConnectorList* GetConnectorList() override;
    bool AppendChild(IFCNode* child, bool flag) override;
    void RemoveLinks() override;
    bool IsExpanded() override;
    void Expand(bool expand) override;
    void Delete() override;
    void TransferToDraw() override;
    void TransferToData() override;
    void AddConnector(CFCConnector* connector) override;
    CFCVariableData* CreateNewVariable() override;
    void SetTuRect(int left, int top, int right, int bottom) override;
    void SetTuRectInInchReverse(double left, double top, double right, double bottom) override;
    void SetTuRectInInch(double left, double top, double right, double bottom) override;
    void SetTuRectInInchFlowmere(double left, double top, double right, double bottom) override;
    TuRect* GetTuRect() override;
    void SetFolderPath(wchar_t const* path) override;
    wchar_t const* GetFolderPath() override;
    bool Save() override;
    void SetOldNodeId(wchar_t const* id) override;
    wchar_t const* GetOldNodeId() override;
    bool IsMacroNode() override;
    bool IsHidden() override;
    void HideNode(bool hide) override;
    int GetImageIndex() override;
    bool IsModified() override;
    bool IsDeleted() override;

    using IFCNode::GetHierarchy;
    using IFCNode::SetDeleted;
    using IFCNode::SetModified;

    // Hook of a new node; does nothing here.
    virtual void Create();
    // Forms without effect: they neither answer nor store anything.
    virtual void GetNodeDescription(wchar_t const* text);
    virtual void GetHierarchy(TuString& out);
    virtual void SetModified();
    virtual void SetDeleted();

    // The word of marks. checkState takes a bit number (modulo 32) and returns the word masked with that
    // bit; the other two take a mask: what setState(2) sets is seen by checkState(1).
    unsigned int checkState(int bitIndex);
    void setState(int mask);
    void clearState(int mask);

private:
    std::uint32_t m_uState = 0;
};

// A node that stores its links, identity and file state: the base of the whole model.
//
// A new node draws the next handle of the process and enters itself in CFCNodeManager. Copies are
// shallow: they keep the source's links and handle and are not known to the manager, and the end of a
// copy empties the source's entry. The destructor destroys neither children nor siblings.
class FLOWMERE_API CFCNode : public CFCAbstractNode {
public:
    CFCNode();
    CFCNode(CFCNode const& other);
    CFCNode& operator=(CFCNode const& other);
    ~CFCNode() override;

    IFCNode* FindNodeSimple(wchar_t const* id) override;
    IFCNode* FindNodeWithOldId(wchar_t const* id) override;
    int GetNodeType() override;
    void SetNodeType(int type) override;
    int GetImage() override;
    IFCNode* GetParentNode() override;
    IFCNode* GetChild() override;
    IFCNode* GetNext() override;
    IFCNode* GetPrev() override;
    IFCNode* GetRootNode() override;
    IFCNode* GetNextL() override;
    IFCNode* GetPrevL() override;
    IFCNode* GetChildL() override;
    void SetParentNode(IFCNode* node) override;
    void SetChild(IFCNode* node) override;
    void SetNext(IFCNode* node) override;
    void SetPrev(IFCNode* node) override;
    void SetNextL(IFCNode* node) override;
    void SetPrevL(IFCNode* node) override;
    void SetChildL(IFCNode* node) override;
    IFCNode* GetNextRun() override;
    std::int64_t GetItemData() override;
    void SetItemData(std::int64_t data) override;
    int GetNodeHandle() override;
    void SetNodeHandle(int handle) override;
    unsigned int GetNodeProcessID() override;
    void SetNodeProcessID(unsigned int id) override;
    wchar_t const* GetNodeCaption() override;
    void SetNodeCaption(wchar_t const* caption) override;
    wchar_t const* GetNodeDescription() override;
    void SetNodeDescription(wchar_t const* description) override;
    wchar_t const* GetNodeCode() override;
    void SetNodeCode(wchar_t const* code) override;
    wchar_t const* GetNodePath() override;
    wchar_t const* GetNodePathByCaption() override;
    void GetHierarchy(TuString& separator, TuString& out) override;
    wchar_t const* GetItemFilePath() override;
    void SetItemFilePath(wchar_t const* path) override;
    wchar_t const* GetItemFileBaseDirectory() override;
    void SetItemFileBaseDirectory(wchar_t const* path) override;
    void SetMark(bool mark) override;
    bool IsMarked() override;
    bool AppendChild(IFCNode* child, bool flag) override;
    void RemoveLinks() override;
    void Delete() override;
    void UnMark() override;
    void ResolveVariables() override;
    bool IsLoaded() override;
    void SetLoaded(bool loaded) override;
    void AutoLoad() override;
    void UnLoad() override;
    bool IsFileLink() override;
    void SetFileLink(bool link) override;
    void SetFileLinkPath(wchar_t const* path) override;
    wchar_t const* GetFileLinkPath() override;
    bool CanLoad() override;
    bool CanUnLoad() override;
    int GetImageIndex() override;
    void SetImageIndex(int index) override;
    EProjectType GetProjectType() override;
    void SetProjectType(EProjectType type) override;
    float GetVersionNo() override;
    void SetVersionNo(float version) override;
    bool IsDirty() override;
    void SetDirty(bool dirty) override;
    bool IsCheckedOut() override;
    void SetCheckedOut(bool checkedOut) override;
    bool IsUptoDate() override;
    void SetUptoDate(bool uptoDate) override;
    void SetCheckedOutUser(wchar_t const* user) override;
    wchar_t const* GetCheckedOutUser() override;
    bool IsNewPath() override;
    void SetNewPath(bool newPath) override;
    bool IsModified() override;
    void SetModified(bool modified) override;
    bool IsDeleted() override;
    void SetDeleted(bool deleted) override;
    bool IsDeleteAllVersions() override;
    void SetDeleteAllVersions(bool deleteAll) override;
    int GetNodeCollectionIndex() override;
    void SetNodeCollectionIndex(int index) override;
    bool IsBPMNode() override;

    using CFCAbstractNode::GetHierarchy;
    using CFCAbstractNode::GetNodeDescription;
    using CFCAbstractNode::SetDeleted;
    using CFCAbstractNode::SetModified;

    void Create() override = 0;

private:
    friend class flowmere::ChildIndex;
    friend class CFCNodeHelper; // tears trees down and leaves to copies what is shared

    // Ordered by size, not by theme, with the flags at the end where a derived class can fill up what is left of the
    // last word: a block is made of a dozen and more of these.
    int m_nNodeType = 0;
    IFCNode* m_pChild = nullptr;
    IFCNode* m_pParent = nullptr;
    IFCNode* m_pPrev = nullptr;
    IFCNode* m_pNext = nullptr;
    IFCNode* m_pPrevL = nullptr;
    IFCNode* m_pNextL = nullptr;
    IFCNode* m_pChildL = nullptr;
    std::int64_t m_nItemData = 0;
    std::unique_ptr<flowmere::ChildIndex> m_pChildIndex; // only a large container has one; never copied
    int m_nNodeHandle = 0;
    int m_nRegisteredHandle = 0; // the entry that this very object made; 0 for a copy
    TuString m_strCaption;
    TuString m_strDescription;
    TuString m_strPathCache;
    TuString m_strFileLinkPath;
    TuString m_strItemFilePath;
    unsigned int m_uProcessId = 0;
    int m_nImageIndex = 0;

protected:
    // The stored state that file nodes and processes read back.
    TuString m_strItemFileBaseDirectory;
    TuString m_strCheckedOutUser;
    float m_fVersionNo = 1.0F;
    EProjectType m_eProjectType = EProjectType_None;

private:
    int m_nCollectionIndex = 0;
    std::uint8_t m_uIndexed = 0; // the parent's lookups that know this child

protected:
    bool m_bDirty : 1 = false;
    bool m_bCheckedOut : 1 = false;
    bool m_bUptoDate : 1 = false;

private:
    bool m_bMarked : 1 = false;
    bool m_bFileLink : 1 = false;
    bool m_bLoaded : 1 = false;
    bool m_bNewPath : 1 = false;
    bool m_bModified : 1 = false;
    bool m_bDeleted : 1 = false;
    bool m_bDeleteAllVersions : 1 = false;
};
