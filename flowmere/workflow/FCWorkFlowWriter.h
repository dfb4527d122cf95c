// CFCWorkFlowWriter: writes a summary of a workflow for other programs.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseWriter.h"

#include <memory>

class IFCNode;
class CFCApplicationNode;
class CFCArgumentData;
class CFCVariableData;

namespace flowmere {
class LeavingConnectors;
}

// Writes the applications that a workflow may use and its tasks with their variables and transitions as one file, in
// which sub-processes nest to any depth. Nothing in this system reads it.
//
// The walk goes through the virtual steps below at every level, so an override in a derived writer takes effect for the
// whole tree of tasks.
class FLOWMERE_API CFCWorkFlowWriter : public CTXMLBaseWriter {
public:
    CFCWorkFlowWriter();
    // Copies take path, root name and both roots.
    CFCWorkFlowWriter(CFCWorkFlowWriter const& other);
    CFCWorkFlowWriter& operator=(CFCWorkFlowWriter const& other);
    ~CFCWorkFlowWriter() override;

    // The children, oldest first.
    virtual void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Name, kind, application, variables and transitions of a task. Nothing for a node without block data or workflow
    // record; an empty element for one without identifier and caption.
    virtual void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The node and all below it; a null `own` creates the element below `parent`. Nothing for a kind that has no
    // element, or without either element. A workflow process has no properties of its own here.
    virtual void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent, XERCES_CPP_NAMESPACE::DOMNode* own);
    // Element name of the node's kind; false, with `out` untouched, for the kinds that have none and for a null node.
    virtual bool GetObjectType(IFCNode* node, TuString& out);

    // Writes the file, which is truncated and written in place. Without applications (null) that part stays empty.
    // False only for an empty path, null tasks or a parser library that does not come up: true does not tell that the
    // bytes reached the disk.
    bool WriteFile(wchar_t const* path, IFCNode* tasks, IFCNode* applications);
    // "name" (the identifier, the caption or "allblocks") and "version".
    void WritePropertiesRoot(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // One "application" below the element, with its variables and arguments.
    void WriteApplication(CFCApplicationNode* application, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The applications below the node, in list order, and the groups that have children, with what applications and
    // groups are among those.
    void WriteApplications(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);

protected:
    // One "variable"; nothing for a variable without a name.
    void WriteVariable(CFCVariableData* variable, XERCES_CPP_NAMESPACE::DOMNode* parent);
    // The variables of the node, all of them or all but "ActiveSetup".
    void WriteVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element, bool all);
    // One "argument".
    void WriteArgument(CFCArgumentData* argument, XERCES_CPP_NAMESPACE::DOMNode* parent);
    // The arguments of an application; nothing for any other node.
    void WriteArguments(XERCES_CPP_NAMESPACE::DOMNode* element, IFCNode* node);
    // Name of the kind of task; empty for kinds without one and for a null node.
    void GetNodeTypeString(IFCNode* node, TuString& out);

    TuString m_strFilePath;
    TuString m_strRootName;
    IFCNode* m_pTaskRoot = nullptr; // not owned, nor is the other one
    IFCNode* m_pApplicationRoot = nullptr;

private:
    void WriteApplicationNode(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent);

    // There while a file is written.
    std::unique_ptr<flowmere::LeavingConnectors> m_pConnectors;
    int m_nDepth = 0;
    int m_nGroupDepth = 0;
};
