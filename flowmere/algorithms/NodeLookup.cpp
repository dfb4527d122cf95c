#include "flowmere/algorithms/FCNodeHelper.h"

#include "flowmere/algorithms/TreeWalk.h"
#include "flowmere/foundation/Fold.h"
#include "flowmere/model/FCBPMBlockData.h"
#include "flowmere/model/ParentChain.h"

using flowmere::Step;
using flowmere::viewOf;
using flowmere::walkDown;

namespace {

// The search of the four FindNode forms. The key is copied before the walk, as it may stand in a buffer that the
// getter refills for each node.
IFCNode* findByText(wchar_t const* text, IFCNode* start, wchar_t const* (IFCNode::*getter)()) {
    TuString const key(text);
    if (key.IsEmpty()) {
        return nullptr;
    }
    return walkDown(start, [&key, getter](IFCNode* node) {
        return viewOf((node->*getter)()) == key.View() ? Step::Found : Step::Descend;
    });
}

} // namespace

IFCNode* CFCNodeHelper::FindNode(wchar_t const* path, IFCNode* node) {
    return findByText(path, node, &IFCNode::GetNodePath);
}

IFCNode* CFCNodeHelper::FindNodeByCaption(wchar_t const* caption, IFCNode* node) {
    return findByText(caption, node, &IFCNode::GetNodeCaption);
}

IFCNode* CFCNodeHelper::FindNodeByFilePath(wchar_t const* path, IFCNode* node) {
    return findByText(path, node, &IFCNode::GetItemFilePath);
}

IFCNode* CFCNodeHelper::FindNodeByNodePathCaption(wchar_t const* path, IFCNode* node) {
    return findByText(path, node, &IFCNode::GetNodePathByCaption);
}

IFCNode* CFCNodeHelper::FindNodeComplete(wchar_t const* id, IFCNode* node) {
    TuString const key(id);
    return walkDown(node, [&key](IFCNode* candidate) {
        std::wstring_view const own = viewOf(candidate->GetNodeId());
        if (own.empty()) {
            return candidate->GetParentNode() != nullptr ? Step::Skip : Step::Descend;
        }
        return own == key.View() ? Step::Found : Step::Descend;
    });
}

IFCNode* CFCNodeHelper::FindNodeFromCurrentParent(IFCNode* node, wchar_t const* caption) {
    if (node == nullptr) {
        return nullptr;
    }
    TuString const key(caption);
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext()) {
        if (viewOf(child->GetNodeCaption()) == key.View()) {
            return child;
        }
    }
    return nullptr;
}

IFCNode* CFCNodeHelper::FindNodeFromRoot(wchar_t const* caption, IFCNode* node) {
    TuString const key(caption);
    for (IFCNode* top = node; top != nullptr; top = top->GetNext()) {
        IFCNode* const found = walkDown(top, [&key](IFCNode* candidate) {
            if (candidate->GetChild() != nullptr) {
                return Step::Descend;
            }
            return viewOf(candidate->GetNodeCaption()) == key.View() ? Step::Found : Step::Skip;
        });
        if (found != nullptr) {
            return found;
        }
    }
    return nullptr;
}

IFCNode* CFCNodeHelper::FindNodeWBS(wchar_t const* wbs, wchar_t const* uid, IFCNode* node) {
    TuString const wbsKey(wbs);
    TuString const uidKey(uid);
    for (; node != nullptr; node = node->GetNext()) {
        CFCBPMBlockData* const data = node->GetBPMBlockData();
        if (data == nullptr) {
            continue;
        }
        if (flowmere::equalNoCase(viewOf(data->GetWBS()), wbsKey.View()) ||
            flowmere::equalNoCase(viewOf(data->GetUID()), uidKey.View())) {
            return node;
        }
    }
    return nullptr;
}

IFCNode* CFCNodeHelper::FindNodeByType(IFCNode* node, eShapeType type) {
    if (node == nullptr) {
        return nullptr;
    }
    int const code = static_cast<int>(type);
    if (node->GetNodeType() == code) {
        return node;
    }
    for (IFCNode* child = node->GetChild(); child != nullptr; child = child->GetNext()) {
        if (child->GetNodeType() == code) {
            return child;
        }
    }
    return nullptr;
}

bool CFCNodeHelper::FindNodeType(IFCNode* node, eShapeType type) {
    return FindNodeByType(node, type) != nullptr;
}

IFCNode* CFCNodeHelper::GetProcessNode(IFCNode* node) {
    if (node == nullptr) {
        return nullptr;
    }
    // A process inside another one is looked up from outside, so that it is not its own answer.
    IFCNode* const parent = node->GetParentNode();
    for (flowmere::ParentChain way(parent != nullptr ? parent : node); way.node() != nullptr; way.climb()) {
        int const type = way.node()->GetNodeType();
        if (type == eShapeType_Process || type == eShapeType_WorkflowProcess) {
            return way.node();
        }
    }
    return nullptr;
}

int CFCNodeHelper::GetBlockCount(IFCNode* node) {
    if (node == nullptr) {
        return 0;
    }
    int count = -1; // the start is visited but does not count
    walkDown(node, [&count](IFCNode*) {
        ++count;
        return Step::Descend;
    });
    return count;
}

bool CFCNodeHelper::IsValidNode(IFCNode* root, IFCNode* node) {
    if (node == nullptr) {
        return false;
    }
    return walkDown(root, [node](IFCNode* place) { return place == node ? Step::Found : Step::Descend; }) != nullptr;
}
