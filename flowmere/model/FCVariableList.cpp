#include "flowmere/model/FCVariableList.h"

#include <new>

#include "flowmere/foundation/Fold.h"
#include "flowmere/model/VariableNameIndex.h"

namespace {

// Most blocks have a handful of variables: these are compared one by one, and only a longer list
// gets an index.
constexpr int kWalked = 24;

bool hasName(CFCVariableData* variable, TuString const& name) {
    return (name == variable->GetVariableName()) != 0;
}

bool hasNameNoCase(CFCVariableData* variable, TuString const& name) {
    wchar_t const* const own = variable->GetVariableName();
    return *own != L'\0' && flowmere::equalNoCase(own, name.View());
}

} // namespace

CFCVariableList::CFCVariableList() = default;

CFCVariableList::CFCVariableList(CFCVariableList const& other) : CFCNodeList(other) {}

CFCVariableList& CFCVariableList::operator=(CFCVariableList const& other) {
    if (this != &other) {
        CFCNodeList::operator=(other);
        m_pNames.reset();
    }
    return *this;
}

CFCVariableList::~CFCVariableList() = default;

CFCVariableData* CFCVariableList::GetNext(__FCPOSITION*& position) {
    IFCNode* const node = GetNextNode(position);
    return node == nullptr ? nullptr : node->GetVariableData();
}

template <typename Matches>
CFCVariableData* CFCVariableList::walk(int limit, __FCPOSITION*& position, Matches matches) {
    for (int step = 0; position != nullptr && (limit < 0 || step < limit); ++step) {
        CFCVariableData* const variable = GetNext(position);
        if (variable != nullptr && matches(variable)) {
            position = nullptr;
            return variable;
        }
    }
    return nullptr;
}

flowmere::VariableNameIndex* CFCVariableList::names() {
    try {
        if (m_pNames == nullptr) {
            m_pNames = std::make_unique<flowmere::VariableNameIndex>();
        }
        IFCNode* const head = reinterpret_cast<IFCNode*>(GetHeadPosition());
        return m_pNames->prepare(head, revision()) ? m_pNames.get() : nullptr;
    } catch (std::bad_alloc const&) {
        // The walk needs no memory.
        m_pNames.reset();
        return nullptr;
    }
}

CFCVariableData* CFCVariableList::Find(wchar_t const* name) {
    TuString const wanted(name);
    auto const matches = [&wanted](CFCVariableData* variable) {
        return hasNameNoCase(variable, wanted);
    };
    __FCPOSITION* position = GetHeadPosition();
    CFCVariableData* const found = walk(kWalked, position, matches);
    if (position == nullptr) {
        return found;
    }
    if (flowmere::VariableNameIndex* const index = names()) {
        return index->findFolded(wanted.View());
    }
    return walk(-1, position, matches);
}

CFCVariableData* CFCVariableList::FindByExactName(wchar_t const* name) {
    TuString const wanted(name);
    auto const matches = [&wanted](CFCVariableData* variable) {
        return hasName(variable, wanted);
    };
    __FCPOSITION* position = GetHeadPosition();
    CFCVariableData* const found = walk(kWalked, position, matches);
    if (position == nullptr) {
        return found;
    }
    if (flowmere::VariableNameIndex* const index = names()) {
        return index->findExact(wanted.View());
    }
    return walk(-1, position, matches);
}
