// CFCWriter: writes a node tree as a process document; base of the native writers of that family.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/xml/TXMLBaseWriter.h"

#include <memory>

class IFCNode;
class CFCBlockData;
class CFCConnector;
class CFCVariableData;

namespace flowmere {
struct ConnectorPorts;
}

// Writes one file with each WriteFile. The walk goes through the virtual steps below at every
// level, so an override in a derived writer takes effect for the whole tree.
class FLOWMERE_API CFCWriter : public CTXMLBaseWriter {
public:
    CFCWriter();
    // Copies take path, root name, depth and the errors gathered so far.
    CFCWriter(CFCWriter const& other);
    CFCWriter& operator=(CFCWriter const& other);
    ~CFCWriter() override;

    // The child objects, oldest first.
    virtual void WriteChildren(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // One "VARIABLE"; a dead link is reported in the errors and removed from the variable.
    virtual void WriteVariable(CFCVariableData* variable, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The variables of an ordinary object; nothing for a process (types 56 and 160).
    virtual void WriteVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The "TEMPLATE_VARIABLES" element of a process; nothing for a null node.
    virtual void WriteTemplateVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // One "TEMPLATE_VARIABLE" with its options.
    virtual void WriteTVariable(CFCVariableData* variable, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The variables that are template variables.
    virtual void WriteTVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // "OUT_PORT" when the block is the connector's start.
    virtual void WriteOutPort(CFCConnector* connector, XERCES_CPP_NAMESPACE::DOMNode* element, IFCNode* block);
    // "IN_PORT" when the block is the connector's end.
    virtual void WriteInPort(CFCConnector* connector, XERCES_CPP_NAMESPACE::DOMNode* element, IFCNode* block);
    // Mode 0 writes the connector, 1 an out port, 2 an in port, any other nothing.
    virtual void WriteConnectionFunction(CFCConnector* connector, XERCES_CPP_NAMESPACE::DOMNode* element,
                                         IFCNode* block, int mode);
    // One "CONNECTOR" with its points.
    virtual void WriteConnection(CFCConnector* connector, XERCES_CPP_NAMESPACE::DOMNode* element);
    // Each valid, undeleted connector of the node through WriteConnectionFunction.
    virtual void WriteConnections(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element, IFCNode* block, int mode);
    // Attributes and fixed child elements of the node.
    virtual void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The node and, in a deep write, all below it; a null self creates the element below parent.
    virtual void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent, XERCES_CPP_NAMESPACE::DOMNode* self);
    // Element name of the node's type; false where the type has none, and for a null node.
    virtual bool GetObjectType(IFCNode* node, TuString& out);
    // Shape name of the node's type; false, with out untouched, where the type has none.
    virtual bool GetShapeType(IFCNode* node, TuString& out);
    // One "POINT"; false for a null point.
    virtual bool WritePoint(_TgPointLStr* point, XERCES_CPP_NAMESPACE::DOMNode* element);

    // Writes the node to the path, with everything below it when deep is set. The file is truncated
    // and written in place. False only for an empty path, a null node or a parser library that does
    // not come up: true does not tell that the bytes reached the disk.
    bool WriteFile(wchar_t const* path, IFCNode* node, bool deep);
    // Pretty-prints a file into the path with each ".xml" turned into ".for"; a file that cannot be
    // read is left alone.
    static void LoadAndFormatXML(wchar_t const* path);
    // Attributes of a process element, with its variables.
    void WritePropertiesRoot(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // The variables that are no template variables.
    void WritePVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);
    // "PROCESS_VARIABLES" with them; nothing for a null node.
    void WriteProcessVariables(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element);

    // Texts of the dead links met by all writes so far, one after the other.
    TuString const& GetVariableErrors() const;

protected:
    TuString m_strFilePath;
    TuString m_strRootName;
    bool m_bDeep = false;
    TuString m_strVariableErrors;

private:
    // Exists while a file is written by this very class: a derived class may override any step, and then
    // every connector of the container goes through the steps for every block.
    std::shared_ptr<flowmere::ConnectorPorts> m_pPorts;
    int m_nDepth = 0;
};
