#include "flowmere/model/FCNodeFactory.h"

#include "flowmere/foundation/TuFileUtl.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/NodeKinds.h"

CFCNodeFactory::~CFCNodeFactory() = default;

IFCNode* CFCNodeFactory::Create(int typeCode) {
    flowmere::NodeKind const* const kind = flowmere::findNodeKind(typeCode);
    if (kind == nullptr || kind->make == nullptr) {
        return nullptr;
    }
    try {
        IFCNode* const node = kind->make(typeCode);
        node->SetNodeType(typeCode);
        return node;
    } catch (...) {
        return nullptr;
    }
}

bool CFCNodeFactory::IsFullPath(wchar_t const* path) {
    return IsFileExists(path);
}

bool CFCNodeFactory::IsFileExists(wchar_t const* path) {
    return TuFileUtl::IsFileName(path) != 0;
}

wchar_t const* CFCNodeFactory::GetMacroPath(wchar_t const*) {
    return L"";
}
