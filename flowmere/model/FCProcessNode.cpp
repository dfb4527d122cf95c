#include "flowmere/model/FCProcessNode.h"

#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/model/FCPointerConverter.h"

// Sub-process

CFCSubProcessNode::CFCSubProcessNode() = default;

CFCSubProcessNode::CFCSubProcessNode(int kind) : CFCBlockNode(kind) {}

CFCSubProcessNode::CFCSubProcessNode(CFCSubProcessNode const& other) = default;

CFCSubProcessNode& CFCSubProcessNode::operator=(CFCSubProcessNode const& other) = default;

CFCSubProcessNode::~CFCSubProcessNode() = default;

CFCBlockNode* CFCSubProcessNode::GetFirstConnectedBlock() {
    CFCConnectorList* const list = GetConnectorList();
    if (list == nullptr) {
        return nullptr;
    }
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCConnector* const connector = list->GetNext(position);
        if (connector != nullptr && connector->IsValid()) {
            connector->GetStartObject()->outConnector = connector;
            connector->GetEndObject()->inConnector = connector;
        }
    }
    CFCBlockNode* firstBlock = nullptr;
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(child);
        if (block == nullptr) {
            continue;
        }
        if (block->outConnector != nullptr && block->inConnector == nullptr) {
            return block;
        }
        if (firstBlock == nullptr) {
            firstBlock = block;
        }
    }
    return firstBlock;
}

CFCBlockNode* CFCSubProcessNode::GetNextConnectedBlock() {
    // Mask and number of the bit that marks a block as the successor of a sibling.
    constexpr int kSuccessorMask = 2;
    constexpr int kSuccessorBit = 1;

    if (CFCBlockNode* const inner = GetFirstConnectedBlock()) {
        return inner;
    }
    GetNextConnectedBlockSimple();
    // Reached only where a host's class names no first block although there are some: the first that follows none.
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        if (CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(child)) {
            block->clearState(kSuccessorMask);
        }
    }
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        if (CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(child)) {
            if (CFCBlockNode* const successor = block->GetNextConnectedBlock()) {
                successor->setState(kSuccessorMask);
            }
        }
    }
    for (IFCNode* child = GetChild(); child != nullptr; child = child->GetNext()) {
        CFCBlockNode* const block = CFCPointerConverter::GetBlockNode(child);
        if (block != nullptr && block->checkState(kSuccessorBit) == 0) {
            return block;
        }
    }
    return nullptr;
}

CFCBlockNode* CFCSubProcessNode::GetNextConnectedBlockSimple() {
    return CFCBlockNode::GetNextConnectedBlockSimple();
}

// Process

CFCProcessNode::CFCProcessNode() : saveRestoreScript(L"SaveRestore") {
    m_eProjectType = EProjectType_BPT;
    SetDefaults();
}

CFCProcessNode::CFCProcessNode(CFCProcessNode const& other) = default;

CFCProcessNode& CFCProcessNode::operator=(CFCProcessNode const& other) = default;

CFCProcessNode::~CFCProcessNode() = default;

EProjectType CFCProcessNode::GetProjectType() {
    return m_eProjectType;
}

void CFCProcessNode::SetProjectType(EProjectType type) {
    m_eProjectType = type;
}

void CFCProcessNode::SetDefaults() {
    CFCNodeFactory factory;
    favouriteNode = dynamic_cast<CFCFavouriteNode*>(factory.Create(eShapeType_Favourites));
    if (favouriteNode != nullptr) {
        AppendChild(favouriteNode, false);
        favouriteNode->SetNodeCaption(L"Favourites");
        favouriteNode->SetNodeId(L"Favourites");
    }
    historyNode = dynamic_cast<CFCSubGroupNode*>(factory.Create(eShapeType_Folder));
    if (historyNode != nullptr) {
        AppendChild(historyNode, false);
        historyNode->SetNodeType(eShapeType_History);
        historyNode->SetNodeCaption(L"Last Opened");
        historyNode->SetNodeId(L"Last Opened");
    }
}

CFCFavouriteNode* CFCProcessNode::GetFavouriteNode() {
    if (favouriteNode == nullptr) {
        SetDefaults();
    }
    return favouriteNode;
}

CFCSubGroupNode* CFCProcessNode::GetHistoryNode() {
    if (historyNode == nullptr) {
        SetDefaults();
    }
    return historyNode;
}

void CFCProcessNode::setSaveRestoreScript(wchar_t const* name, EScriptType type) {
    saveRestoreScript = name;
    saveRestoreScriptType = type;
}

void CFCProcessNode::execute(wchar_t const*) {}

CFCBlockNode* CFCProcessNode::getStartBlock() {
    return nullptr;
}

int CFCProcessNode::importVariables(wchar_t const*) {
    return 0;
}

int CFCProcessNode::loadTeamplate(wchar_t const*) {
    return 0;
}

int CFCProcessNode::writeVariables(wchar_t const*) {
    return 0;
}

void CFCProcessNode::saveDataModels() {}
