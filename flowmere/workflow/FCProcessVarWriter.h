#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/xml/TXMLBaseWriter.h"

class IFCNode;
class CFCApplicationNode;
class CFCArgumentData;
class CFCDeploymentData;
class CFCVariableData;

// Writes "process.var", one for each level of a workflow: the typed variables of the blocks, the arguments and the
// deployments of applications.
//
// One writer writes one file with each WriteFile. The walk goes through the virtual steps, so an override in a derived
// writer takes effect at every level. Null nodes and elements are passed over.
class FLOWMERE_API CFCProcessVarWriter : public CTXMLBaseWriter {
public:
    CFCProcessVarWriter();
    // Copies take path, root name, root node and flags.
    CFCProcessVarWriter(CFCProcessVarWriter const& other);
    CFCProcessVarWriter& operator=(CFCProcessVarWriter const& other);
    ~CFCProcessVarWriter() override;

    // The children, oldest first; none for a sub-process that is not the root of the file, for its blocks have a file
    // of their own.
    virtual void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Name and variables, and for an application its deployments and arguments. A block without an identifier gets
    // nothing.
    virtual void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The node and what lies below it; a null `own` creates the element below `parent`. Nothing for a type that has no
    // element, or without either element.
    virtual void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent, XERCES_CPP_NAMESPACE::DOMNode* own);
    // Element name of the node's type; false, with `out` untouched, for a type that has none and for a null node.
    virtual bool GetObjectType(IFCNode* node, TuString& out);

    // Writes the variables of the node and of the level below it to the path. The file is truncated and written in
    // place. The level is always written in full: the flag is kept for derived writers. An application without
    // deployments gets its default ones, in the model too. False only for an empty path, a null node or a parser
    // library that does not come up: true does not tell that the bytes reached the disk.
    bool WriteFile(wchar_t const* path, IFCNode* node, bool recursive);
    // "name" of a root: the identifier, else the caption, else "root-container".
    void WritePropertiesRoot(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Pretty-prints a file into the path with each ".xml" turned into ".for", and so into itself where there is none; a
    // file that cannot be read is left alone.
    static void LoadAndFormatXML(wchar_t const* path);

protected:
    // One "VARIABLE"; nothing for a variable without a name. While the strip flag is set, it is written without link
    // and as a local one.
    void WriteVariable(CFCVariableData* variable, XERCES_CPP_NAMESPACE::DOMNode* parent);
    // The variables of the node, all of them or all but "ActiveSetup", and behind them the deployments of an
    // application.
    void WriteVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element, bool all);
    // "PROCESS_VARIABLES" with all variables of the node.
    void WriteProcessVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // One "ARGUMENT".
    void WriteArgument(CFCArgumentData* argument, XERCES_CPP_NAMESPACE::DOMNode* parent);
    // The arguments of an application; nothing for any other node.
    void WriteArguments(XERCES_CPP_NAMESPACE::DOMNode* element, IFCNode* node);
    // "DEPLOYMENTS" with the deployments of the application, and empty for null.
    void WriteDeployments(CFCApplicationNode* application, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The variables of one deployment.
    void WriteDeploymentVariables(CFCDeploymentData* deployment, XERCES_CPP_NAMESPACE::DOMNode* element);

    TuString m_strFilePath;
    TuString m_strRootName;
    bool m_bRecursive = false;
    IFCNode* m_pRootNode = nullptr; // of the file being written, not owned
    bool m_bStripLinks = false;

private:
    int m_nDepth = 0;
};
