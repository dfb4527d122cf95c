#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCNode.h"

// Root of a process list: a plain node whose content is in its children.
class FLOWMERE_API CFCProcessList : public CFCNode {
public:
    CFCProcessList();
    // For the factory; the argument is ignored.
    explicit CFCProcessList(int typeCode);
    CFCProcessList(CFCProcessList const& other);
    CFCProcessList& operator=(CFCProcessList const& other);
    ~CFCProcessList() override;

    int GetImage() override; // 1
    void Create() override;  // does nothing
};

// The folder of the model: a group of a process list, the "Last Opened" group, a custom folder.
class FLOWMERE_API CFCSubGroupNode : public CFCProcessList {
public:
    CFCSubGroupNode();
    CFCSubGroupNode(CFCSubGroupNode const& other);
    CFCSubGroupNode& operator=(CFCSubGroupNode const& other);
    ~CFCSubGroupNode() override;

    int GetImage() override; // 6
};
