#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCEnumerations.h"

class CFCArgumentData;
class CFCDataTypeNode;
class CFCPatternData;
class CFCProcessList;
class CFCVariableData;
class IFCNode;

// Searches, copies, merges and tear-down of node trees.
//
// A null text is the empty text and a null start finds nothing. Texts are compared with their case unless an
// operation says otherwise. A miss is null, false or 0; nothing is reported and no exception leaves.
// Results point into the tree, which keeps them. Text arguments may point into the tree's own buffers.
class FLOWMERE_API CFCNodeHelper {
public:
    // --- Nodes by text -------------------------------------------------------------------------------------

    // First node whose GetNodePath is path: the start node, then its descendants depth first in list order.
    // An empty path finds nothing. Each comparison builds a path, so callers keep the result.
    static IFCNode* FindNode(wchar_t const* path, IFCNode* node);

    // As FindNode, by caption.
    static IFCNode* FindNodeByCaption(wchar_t const* caption, IFCNode* node);

    // As FindNode, by the path of the file that holds the item.
    static IFCNode* FindNodeByFilePath(wchar_t const* path, IFCNode* node);

    // As FindNode, by GetNodePathByCaption.
    static IFCNode* FindNodeByNodePathCaption(wchar_t const* path, IFCNode* node);

    // As FindNode, by identifier. A node with a parent and an empty identifier hides itself and its subtree,
    // the start node included; only a root may be nameless.
    static IFCNode* FindNodeComplete(wchar_t const* id, IFCNode* node);

    // First direct child of node with the caption, which may be empty. The node itself is not tested.
    static IFCNode* FindNodeFromCurrentParent(IFCNode* node, wchar_t const* caption);

    // First leaf with the caption, which may be empty, among node, its following siblings and all below them.
    // A node with children is searched but never found.
    static IFCNode* FindNodeFromRoot(wchar_t const* caption, IFCNode* node);

    // First node of the chain from node along GetNext whose workflow record has this work breakdown code or,
    // failing that, this unique id, both without regard to case. Children are not searched.
    static IFCNode* FindNodeWBS(wchar_t const* wbs, wchar_t const* uid, IFCNode* node);

    // --- Nodes by kind -------------------------------------------------------------------------------------

    // The node itself or its first direct child of the type; no deeper.
    static IFCNode* FindNodeByType(IFCNode* node, eShapeType type);

    // Whether FindNodeByType finds one.
    static bool FindNodeType(IFCNode* node, eShapeType type);

    // Nearest node above of type 56 or 160. The search starts at the parent, or at the node itself when it has
    // no parent. The node type decides, not the class.
    static IFCNode* GetProcessNode(IFCNode* node);

    // --- Variables, and records of applications ------------------------------------------------------------

    // CFCBlockNode::FindVariable of the node; null for a node that is no block.
    static CFCVariableData* FindVariable(wchar_t const* path, IFCNode* node);

    // First variable of the node's own list with the name. An empty name finds nothing.
    static CFCVariableData* FindVariableByName(TuString name, IFCNode* node);

    // First variable with the identifier. All children are searched before the node's own list, so a match on
    // a deeper node wins.
    static CFCVariableData* FindVariableByID(IFCNode* node, int id);

    // As FindVariableByID, by the deployment map id.
    static CFCVariableData* FindVariableByMapID(IFCNode* node, int id);

    // First argument (pattern) with the identifier. All children are searched before the node's own list, so a match
    // on a deeper node wins; nodes that are no application have no such list. The last number plays no part.
    static CFCArgumentData* FindArgumentByID(IFCNode* node, int id, int extra);
    static CFCPatternData* FindPatternByID(IFCNode* node, int id);

    // Follows link paths from the variable at path to the end of the chain, looking each up through node. Null
    // when a path leads nowhere and for a chain that closes on itself. Link pointers are not used.
    static CFCVariableData* FindFinalVariable(wchar_t const* path, IFCNode* node);

    // The same question with another answer for loops: a chain that comes back to its first variable gives
    // that variable. Null when a path leads nowhere and for a loop that the first variable is not part of.
    static CFCVariableData* FindVariableWithCheck(wchar_t const* path, IFCNode* node);

    // As above for a chain that began at origin; path is the next link to follow.
    static CFCVariableData* FindVariableWithCheck(wchar_t const* path, IFCNode* node, CFCVariableData* origin);

    // --- The data type catalog -----------------------------------------------------------------------------

    // Searches node and its following siblings, and what lies below those siblings, for a catalog entry with
    // the name, without regard to case. The children of the start node itself are never visited. With byType
    // the key is the type of a data type entry (node type 80, for the siblings 81 too), else the caption.
    // The find may be a data type or a file type.
    static IFCNode* FindDataTypeNode(wchar_t const* name, IFCNode* node, bool byType);

    // Catalog entry of the type name. The catalog file is read at first use and kept to the end of the
    // process; while there was nothing to read, each call tries again.
    // Defined in persistence/DataTypeLookup.cpp.
    static IFCNode* GetDataTypeNode(wchar_t const* name);

    // Copies the catalog entry of the type name into the variable's own data type node, or for a file type
    // into its data type and file type nodes. A name without entry is still stored, as type and caption.
    // Defined in persistence/DataTypeLookup.cpp.
    static void SetDataTypeNode(CFCVariableData* variable, wchar_t const* typeName);

    // --- Whole trees ---------------------------------------------------------------------------------------

    // Number of all descendants.
    static int GetBlockCount(IFCNode* node);

    // Whether node is root or lies below it. Only root is looked into: node may be a pointer to an object that
    // is gone.
    static bool IsValidNode(IFCNode* root, IFCNode* node);

    // A new node of the same type with the caption, identifier, file state and version of source, and without
    // its children, variables and connectors. For the type of an application the result is that of
    // CFCApplicationNode::Clone. The caller owns it. Null when the type cannot be made.
    static IFCNode* Clone(IFCNode* source);

    // Merges the sibling chain from source into the children of target, by caption. A file node that is there
    // takes state and identifier, and is out of date when the source has a higher version; a folder is merged
    // deeper; what is missing is cloned. The target owns the clones. Nothing when a part of the source chain is
    // the target or encloses it.
    static void Consolidate(IFCNode* target, IFCNode* source);

    // The merge between lists with file nodes at the top. Types must agree too; the level below is merged into
    // the first child of the match; a file node as target hands over to its parent; a source node without
    // parent is only merged, never added. A null target takes nothing.
    static void Consolidate2(IFCNode* target, IFCNode* source);

    // Turns the Parent and Global scoped variables of this one node into links.
    static void ConvertNode(IFCNode* node);

    // ConvertNode for the node, then for all below it.
    static void ConvertToLinkedVariable(IFCNode* node);

    // Next free id for a new workflow block of the type below parent: stem, "_" and a number of two digits or
    // more. The stem is "Task" for 150, "SubProcess" for 165 and empty for others.
    static TuString GetUniqueNameForGivenType(IFCNode* parent, eShapeType type);

    // Node type of a block kind as hint files name it, blanks around it ignored; 0 for any other text.
    static int GetNodeTypeFromName(wchar_t const* name);

    // Sets IsNewPath on the node, its following siblings and all below them.
    static void UpdateAllToNewPath(IFCNode* node);

    // --- Process lists and block templates; defined in persistence/LibraryLists.cpp ------------------------

    // Reads the file into the list, or into a new list of node type 69 when that is null, and gives the list, however
    // the reading ended. A new list is the caller's; base is the folder of its files.
    static CFCProcessList* LoadProcessList(wchar_t const* file, CFCProcessList* list, wchar_t const* base);

    // The user's own list, in which everything counts as newly placed; the caller owns it. Null when the user has no
    // folder apart from the common one, or one outside the folder "BrindleExec". A list that cannot be read is empty.
    static CFCProcessList* LoadUserProcessList(bool bpm);

    // Runs SaveSingleNode for the node and its following siblings, in order. Nothing for null.
    static void SaveNodes(IFCNode* node);

    // SaveNodes for the children of a list. Nothing for null.
    static void SaveRootNode(IFCNode* list);

    // Writes the node without its children as a template: the file of its id, with ".xml", in its script folder below
    // the resource path. Nothing for null, for a node without block data and for an empty script folder.
    static void SaveSingleNode(IFCNode* node);

    // --- Tear-down -----------------------------------------------------------------------------------------

    // Takes the node out of its tree and destroys it with everything it owns: children at any depth, connectors,
    // variables with their catalog nodes, scripts, workflow records, the extra nodes of a process, and the elements of
    // a list. Null is nothing. Connectors of the container that lead to a block are left in place, without ends and
    // marked as deleted. The node must not stand in a list: CFCNodeList::DeleteNode is for that. A shallow copy goes
    // alone and is taken out of nothing, since what it holds belongs to its source.
    static void DestroyTree(IFCNode* node);

private:
    // Whether the node holds what belongs to the node it was copied from.
    static bool isShallowCopy(IFCNode* node);
    // The task that a workflow process keeps to itself; null for other nodes.
    static IFCNode* innerTaskOf(IFCNode* node);

    static CFCDataTypeNode* m_pRootNode; // first entry of the catalog, null until read; kept by its list node
};
