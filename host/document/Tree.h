#pragma once

// A document's tree laid out for the commands that look at it: nodes in the order of the file, variables with the ends
// of their links, connectors by the block they leave.

#include "flowmere/Flowmere.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace flowmere::host {

// How the link of a variable ends.
enum class LinkState {
    None, // no link
    Well, // at a variable without a link
    Dead, // at a path that names no variable
    Loop, // never: it comes back to a variable that it has passed
};

struct TreeVariable {
    CFCVariableData* data = nullptr;
    std::size_t owner = 0; // index of its node
    std::string name;
    std::string path;
    std::string linkPath; // empty for none
    // Index of the variable that the link path names; kNone for none.
    std::size_t target = 0;
    // The variable that the value comes from: the end of the links, or this one when they have no end.
    std::size_t source = 0;
    LinkState link = LinkState::None;
};

struct TreeNode {
    IFCNode* node = nullptr;
    CFCBlockNode* block = nullptr; // the same node; null for a folder and other nodes that are no blocks
    std::size_t parent = 0;        // index; kNone for the root
    int level = 0;
    bool isOfWorkflow = false; // the root is a workflow process, which an engine runs
    std::string id;
    std::string path; // empty for the root
    std::size_t firstVariable = 0;
    std::size_t variableCount = 0;
    std::size_t last = 0;              // index of the last node below this one; its own when there is none
    std::vector<std::size_t> children; // in the order of the file
    std::vector<CFCConnector*> ways;   // the connectors that leave this block, in the order of the container
};

class Tree {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // The tree below the root must outlive this object, and must not change.
    explicit Tree(IFCNode& root);

    // The root first, each container before what is in it.
    std::vector<TreeNode> const& nodes() const { return m_nodes; }
    // In the order of their owners, those of one owner in the order of its list. Variables without a name are left out:
    // nothing can reach them.
    std::vector<TreeVariable> const& variables() const { return m_variables; }
    std::size_t indexOf(IFCNode* node) const;
    std::size_t indexOf(CFCVariableData* variable) const;
    std::size_t blockCount() const { return m_blockCount; }
    std::size_t connectorCount() const { return m_connectorCount; }

    // The value that a reader of the variable gets, through its links.
    std::string valueOf(TreeVariable const& variable) const;
    // Whether a child has a way out and no way in, which makes it the first; without one the newest child is.
    bool hasClearStart(TreeNode const& container) const;
    // The block in which the inner flow of a container starts; null for an empty one and for what is no container. In a
    // workflow that is the start state, and the first block of a super-state.
    CFCBlockNode* firstBlock(TreeNode const& container) const;

private:
    CFCBlockNode* clearStart(TreeNode const& container) const;
    CFCBlockNode* engineStart(TreeNode const& container) const;
    void addNodes(IFCNode& root);
    void addVariables(std::size_t index);
    void addConnectors(std::size_t index);
    void followLinks(IFCNode& root);

    std::vector<TreeNode> m_nodes;
    std::vector<TreeVariable> m_variables;
    std::unordered_map<IFCNode*, std::size_t> m_nodeIndex;
    std::unordered_map<CFCVariableData*, std::size_t> m_variableIndex;
    std::size_t m_blockCount = 0;
    std::size_t m_connectorCount = 0;
};

// What the kind of a node is called: "block", "decision", "sub-process"; "kind 123" for a code without a name.
std::string kindName(int code);
// Kinds for which the three script files are generated.
bool isScriptedKind(int code);
// Kinds of the workflow engine, which follows all connectors and knows no grips.
bool isWorkflowKind(int code);
// Sub-processes of the workflow engine, each with a folder of its own.
bool isWorkflowSubProcess(int code);
// Kinds that choose one of their ways.
bool isDecisionKind(int code);

// "grip 6 (bottom)"; "grip 12" for a number that is no grip.
std::string gripName(int grip);

// Type of a variable as a document writes it, with " array" behind it for an array of another type.
std::string typeOf(CFCVariableData& variable);

} // namespace flowmere::host
