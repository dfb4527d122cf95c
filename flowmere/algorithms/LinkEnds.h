#pragma once

#include "flowmere/foundation/TuString.h"
#include "flowmere/model/LinkEpoch.h"

#include <unordered_map>

class CFCVariableData;
class IFCNode;

namespace flowmere {

// Remembers where link chains end while a tree is walked whose ids and names stay as they are: without it every
// variable of a chain follows the whole rest of the chain anew. CFCNodeHelper::FindFinalVariable asks the innermost
// one for its tree. Links may change; what was remembered is then forgotten.
class LinkEnds {
public:
    explicit LinkEnds(IFCNode* root);
    ~LinkEnds();
    LinkEnds(LinkEnds const&) = delete;
    LinkEnds& operator=(LinkEnds const&) = delete;

    // The one for that tree, or null.
    static LinkEnds* of(IFCNode* root) noexcept;
    // What FindFinalVariable gives for the path.
    CFCVariableData* find(wchar_t const* path);

private:
    IFCNode* m_root;
    LinkEnds* m_outer;
    unsigned long long m_epoch = linkEpoch;
    std::unordered_map<TuString, CFCVariableData*> m_ends;
};

} // namespace flowmere
