// CFCProcessDefinitionWriter: turns a tree of workflow nodes into the folder that the workflow engine deploys.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/xml/TXMLBaseWriter.h"

#include <memory>

class IFCNode;

namespace flowmere {
class LeavingConnectors;
}

// Writes processdefinition.xml, the graph of a workflow in the engine's own words, with gpd.xml (the drawing) and
// process.var (the variables) beside it, and the same three again for each sub-process block, in a folder of its own
// below the first one. It makes no folders and saves no scripts: those paths must be right in the data.
//
// A writer is good for one folder and whatever lies below it. Only workflow nodes are written in full: without block
// data or workflow record a node has its root attributes at most, and the kinds of native blocks have no element.
// The walk goes through the virtual steps below at every level of a file; what lies in the folder of a sub-process is
// written by a plain writer.
class FLOWMERE_API CFCProcessDefinitionWriter : public CTXMLBaseWriter {
public:
    CFCProcessDefinitionWriter();
    // Copies take the paths, the root name, the flag and the root node.
    CFCProcessDefinitionWriter(CFCProcessDefinitionWriter const& other);
    CFCProcessDefinitionWriter& operator=(CFCProcessDefinitionWriter const& other);
    ~CFCProcessDefinitionWriter() override;

    // The children, oldest first; none for a sub-process that is not the root of this file, for its blocks have a file
    // of their own.
    virtual void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Attributes and fixed children of a node: its task, transitions, events, exception handler and timer. A workflow
    // node is told to take over what its drawing knows (TransferToData) first. Of a sub-process the files of its own
    // folder are written here.
    virtual void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The node and, in a recursive write, all below it; a null `own` creates the element below `parent`. Nothing for a
    // kind that has no element, or without either element.
    virtual void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent, XERCES_CPP_NAMESPACE::DOMNode* own);
    // Element name of the node's kind; false, with `out` untouched, for a kind that has none and for a null node.
    virtual bool GetObjectType(IFCNode* node, TuString& out);

    // Writes the three files of the node and those of all sub-processes below it. `path` is that of
    // processdefinition.xml, with one sort of separator throughout; gpd.xml and process.var are put beside it. Each
    // file is truncated and written in place. Without `recursive` the definition holds the node's own properties alone,
    // the other two files are complete all the same. Where the definition cannot be written, they stay as they are.
    // False only for an empty path, a null node or a parser library that does not come up: true does not tell that the
    // bytes reached the disk. Not for two threads at once.
    bool WriteFile(wchar_t const* path, IFCNode* node, bool recursive);
    // "name" (the identifier, the caption or "allblocks"), "version", "hierarchyPath" and the project type.
    void WritePropertiesRoot(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Pretty-prints a file into the path with each ".xml" turned into ".for"; a file that cannot be read is left alone.
    static void LoadAndFormatXML(wchar_t const* path);

protected:
    // The path of a node in the tree of all workflows, with slashes: the hierarchy base and behind it the given path,
    // whose points become slashes. The base alone for an empty path, null without a base. The text is shared by all
    // writers: each call overwrites that of the one before.
    wchar_t const* GetCompleteHierarchy(wchar_t const* path);
    // Name of the kind of task; empty for kinds without one and for a null node.
    void GetNodeTypeString(IFCNode* node, TuString& out);
    // Takes the hierarchy base out of the base folder: what follows the folder of all workflows, with slashes. Empty
    // for a folder outside.
    void SetHierarchyPath();
    // Appends one "POINT"; false for a null point.
    bool WritePoint(_TgPointLStr* point, XERCES_CPP_NAMESPACE::DOMNode* parent);

    TuString m_strFilePath;
    TuString m_strBaseFolder;    // that of the first file; stays the same at all depths
    TuString m_strHierarchyBase; // the part of it that hierarchies begin with
    TuString m_strRootName;
    bool m_bRecursive = false;
    TuString m_strSpare; // copied with the object, no other use
    int m_nSpare = 0;
    IFCNode* m_pRootNode = nullptr; // root of this file; not owned

private:
    void WriteSubProcess(IFCNode* node);
    void WriteApplication(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element, TuString const& name);
    void WriteTask(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element, TuString const& name);
    void WriteTransitions(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element, TuString const& name);

    // There while a file is written.
    std::unique_ptr<flowmere::LeavingConnectors> m_pConnectors;
    int m_nDepth = 0;      // of the node that is written, in this file
    int m_nDepthAbove = 0; // of the block that this file belongs to, in the files above
    int m_nFolder = 0;     // how many folders above this one have a file still open
};
