// The operations of CFCApplicationNode that copy applications and their lists.

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCApplicationNode.h"
#include "flowmere/model/FCNodeFactory.h"

#include <memory>
#include <vector>

namespace {

// The elements of a list now: what is added to one list comes up in each shallow copy of it.
template <typename Record, typename List>
std::vector<Record*> recordsOf(List& list) {
    std::vector<Record*> records;
    for (__FCPOSITION* position = list.GetHeadPosition(); position != nullptr;) {
        if (Record* const record = list.GetNext(position)) {
            records.push_back(record);
        }
    }
    return records;
}

} // namespace

CFCApplicationNode* CFCApplicationNode::Clone(IFCNode* source) {
    if (source == nullptr) {
        return nullptr;
    }
    CFCNodeFactory factory;
    std::unique_ptr<IFCNode> node(factory.Create(eShapeType_Application));
    auto* const clone = dynamic_cast<CFCApplicationNode*>(node.get());
    if (clone == nullptr) {
        return nullptr;
    }
    node.release();
    clone->SetNodeCaption(source->GetNodeCaption());
    CFCBlockData::Copy(source->GetFCBlockData(), clone->GetFCBlockData());
    CFCBlockData::CopyVariables(source, clone);
    CFCBPMBlockData* const record = source->GetBPMBlockData();
    if (record == nullptr) {
        CFCNodeHelper::DestroyTree(clone);
        return nullptr;
    }
    CFCBPMBlockData::Copy(record, clone->GetBPMBlockData(), 1);
    CopyArguments(source, clone);
    CopyDeployments(source, clone);
    return clone;
}

IFCNode* CFCApplicationNode::CloneNodeComplex(IFCNode* source) {
    CFCApplicationNode* const root = Clone(source);
    if (root == nullptr) {
        return nullptr;
    }
    // A child takes its place in front when all below it is there, as new children do.
    struct Level {
        IFCNode* clone;
        IFCNode* nextChild; // of the source, still to be cloned
    };
    std::vector<Level> open{{root, source->GetChild()}};
    while (true) {
        Level& level = open.back();
        if (IFCNode* const child = level.nextChild) {
            level.nextChild = child->GetNext();
            if (IFCNode* const clone = Clone(child)) {
                open.push_back({clone, child->GetChild()});
            }
            continue;
        }
        IFCNode* const done = level.clone;
        open.pop_back();
        if (open.empty()) {
            return done;
        }
        open.back().clone->AppendChild(done, false);
    }
}

bool CFCApplicationNode::CopyArguments(IFCNode* source, IFCNode* target) {
    auto* const from = dynamic_cast<CFCApplicationNode*>(source);
    auto* const to = dynamic_cast<CFCApplicationNode*>(target);
    if (from == nullptr || to == nullptr || from == to) {
        return false;
    }
    for (CFCArgumentData* const argument : recordsOf<CFCArgumentData>(from->m_ArgumentList)) {
        to->m_ArgumentList.AddTail(argument->CloneArgument());
    }
    return true;
}

bool CFCApplicationNode::CopyDeployments(IFCNode* source, IFCNode* target) {
    auto* const from = dynamic_cast<CFCApplicationNode*>(source);
    auto* const to = dynamic_cast<CFCApplicationNode*>(target);
    if (from == nullptr || to == nullptr || from == to) {
        return false;
    }
    for (CFCDeploymentData* const deployment : recordsOf<CFCDeploymentData>(from->m_DeploymentList)) {
        to->m_DeploymentList.AddTail(CFCDeploymentData::CloneDeployment(deployment));
    }
    return true;
}
