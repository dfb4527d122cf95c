#include "flowmere/algorithms/NodeNames.h"

#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/NodeKinds.h"

#include <climits>
#include <unordered_set>

namespace flowmere {

TuString nextName(TuString const& name) {
    int const underscore = name.ReverseFind(L'_');
    int const number = underscore < 0 ? 0 : name.Mid(underscore + 1).ToInt();
    // The largest number has no next one, so it counts as text.
    if (number == 0 || number == INT_MAX) {
        return name + L"_01";
    }
    TuString digits;
    digits.Format(L"%02d", number + 1);
    return name.Left(underscore + 1) + digits;
}

} // namespace flowmere

TuString CFCNodeHelper::GetUniqueNameForGivenType(IFCNode* parent, eShapeType type) {
    int const code = static_cast<int>(type);
    TuString stem;
    if (code == eShapeType_Task) {
        stem = L"Task";
    } else if (code == eShapeType_BasicSubProcess) {
        stem = L"SubProcess";
    }

    int count = 0;
    std::unordered_set<TuString> taken;
    for (IFCNode* child = parent != nullptr ? parent->GetChild() : nullptr; child != nullptr;
         child = child->GetNext()) {
        if (child->IsBPMNode() && child->GetNodeType() == code) {
            taken.insert(TuString(child->GetNodeId()));
            ++count;
        }
    }

    TuString name;
    name.Format(L"%s_%02d", static_cast<wchar_t const*>(stem), count + 1);
    while (taken.contains(name)) {
        name = flowmere::nextName(name);
    }
    return name;
}

int CFCNodeHelper::GetNodeTypeFromName(wchar_t const* name) {
    TuString text(name);
    text.TrimLeft();
    text.TrimRight();
    return flowmere::nodeTypeOfName(text.View());
}
