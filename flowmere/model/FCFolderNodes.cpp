#include "flowmere/model/FCFolderNodes.h"

CFCProcessList::CFCProcessList() = default;
CFCProcessList::CFCProcessList(int) {}
CFCProcessList::CFCProcessList(CFCProcessList const& other) = default;
CFCProcessList& CFCProcessList::operator=(CFCProcessList const& other) = default;
CFCProcessList::~CFCProcessList() = default;

int CFCProcessList::GetImage() {
    return 1;
}

void CFCProcessList::Create() {}

CFCSubGroupNode::CFCSubGroupNode() = default;
CFCSubGroupNode::CFCSubGroupNode(CFCSubGroupNode const& other) = default;
CFCSubGroupNode& CFCSubGroupNode::operator=(CFCSubGroupNode const& other) = default;
CFCSubGroupNode::~CFCSubGroupNode() = default;

int CFCSubGroupNode::GetImage() {
    return 6;
}
