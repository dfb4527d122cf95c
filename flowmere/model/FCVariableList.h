#pragma once

#include <memory>

#include "flowmere/Export.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCVariableData.h"

namespace flowmere {
class VariableNameIndex;
}

// The variables of a block or a deployment. Like every list it owns its elements by convention
// only: DeleteAll destroys them, the destructor does not.
class FLOWMERE_API CFCVariableList : public CFCNodeList {
public:
    CFCVariableList();
    // A copy shares the elements and their links with its source.
    CFCVariableList(CFCVariableList const& other);
    CFCVariableList& operator=(CFCVariableList const& other);
    ~CFCVariableList() override;

    using CFCNodeList::GetNext;
    // The variable at the position, which moves on; null for a null position and for an element
    // that is no variable.
    CFCVariableData* GetNext(__FCPOSITION*& position);

    // The first variable whose GetVariableName is not empty and equals `name` without regard to
    // case; null when there is none.
    CFCVariableData* Find(wchar_t const* name) override;
    // The first variable whose GetVariableName is exactly `name`; null when there is none. The
    // empty text finds the first nameless member of a group.
    CFCVariableData* FindByExactName(wchar_t const* name);

private:
    template <typename Matches>
    CFCVariableData* walk(int limit, __FCPOSITION*& position, Matches matches);
    flowmere::VariableNameIndex* names();

    // Made once the list is long and searched; null till then.
    std::unique_ptr<flowmere::VariableNameIndex> m_pNames;
};
