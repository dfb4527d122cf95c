#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"

IFCNode* CFCNodeHelper::Clone(IFCNode* source) {
    if (source == nullptr) {
        return nullptr;
    }
    int const type = source->GetNodeType();
    // An application is more than a record: it takes its workflow content and its lists along.
    if (type == eShapeType_Application) {
        return CFCApplicationNode::Clone(source);
    }
    CFCNodeFactory factory;
    IFCNode* const clone = factory.Create(type);
    if (clone == nullptr) {
        return nullptr;
    }
    clone->SetNodeCaption(source->GetNodeCaption());
    clone->SetItemFilePath(source->GetItemFilePath());
    clone->SetProjectType(source->GetProjectType());
    clone->SetDirty(source->IsDirty());
    clone->SetCheckedOut(source->IsCheckedOut());
    clone->SetUptoDate(source->IsUptoDate());
    clone->SetCheckedOutUser(source->GetCheckedOutUser());
    clone->SetVersionNo(source->GetVersionNo());
    clone->SetNodeId(source->GetNodeId());
    clone->SetNewPath(source->IsNewPath());
    clone->SetItemFileBaseDirectory(source->GetItemFileBaseDirectory());
    clone->SetNodeLocationType(source->GetNodeLocationType());
    return clone;
}
