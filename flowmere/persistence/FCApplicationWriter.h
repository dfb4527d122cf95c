#pragma once

#include "flowmere/Export.h"
#include "flowmere/persistence/FCWriter.h"

// Writes a short description of one task: a process file whose root holds the one element "APP", with name, icon,
// label, identifier and description. The depth of WriteFile has no effect. Nothing reads such a file back.
class FLOWMERE_API CFCApplicationWriter : public CFCWriter {
public:
    CFCApplicationWriter();
    CFCApplicationWriter(CFCApplicationWriter const& other);
    CFCApplicationWriter& operator=(CFCApplicationWriter const& other);
    ~CFCApplicationWriter() override;

    // The node's properties into self, or into a new element below parent. Nothing for null, for a type without an
    // object name, and without an element. Deleted nodes are written as well.
    void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent,
                     XERCES_CPP_NAMESPACE::DOMNode* self) override;
    // The "APP"; without attributes for a node without workflow record.
    void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override;
};
