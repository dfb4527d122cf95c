#pragma once

#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCNode.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace flowmere {

// The connectors of each container by the name of the block they leave, in list order, for the length of one write: a
// file names the transitions of a node by names, and a walk along the whole list for each node would be quadratic.
class LeavingConnectors {
public:
    // Calls `visit` for each connector of the container that leaves a block of this name and becomes a transition: one
    // that is not deleted and leads to a block with a name. A null container has none.
    template <typename Visit>
    void visit(IFCNode* container, std::wstring_view start, Visit const& visit) {
        if (container == nullptr || start.empty()) {
            return;
        }
        Names const& names = of(container);
        auto const found = names.find(TuString(start));
        if (found == names.end()) {
            return;
        }
        for (CFCConnector* const connector : found->second) {
            if (!connector->IsDeleted() && *connector->GetEndBlockName() != L'\0') {
                visit(connector);
            }
        }
    }

private:
    using Names = std::unordered_map<TuString, std::vector<CFCConnector*>>;

    Names const& of(IFCNode* container) {
        auto const [entry, isNew] = m_containers.try_emplace(container);
        if (isNew) {
            if (CFCConnectorList* const list = container->GetConnectorList()) {
                for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
                    if (CFCConnector* const connector = list->GetNext(position)) {
                        entry->second[TuString(connector->GetStartBlockName())].push_back(connector);
                    }
                }
            }
        }
        return entry->second;
    }

    std::unordered_map<IFCNode*, Names> m_containers;
};

} // namespace flowmere
