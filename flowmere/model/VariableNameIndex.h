#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "flowmere/foundation/Fold.h"

class CFCVariableData;
class IFCNode;

namespace flowmere {

// Finds the first variable of a name in a long list without walking it.
//
// The index answers as a walk along the list would. It takes in what AddTail added since the last
// question; variables tell it when they are renamed, relinked or destroyed, and the next question
// then builds it anew. Its keys are the names inside the variables.
class VariableNameIndex {
public:
    VariableNameIndex() = default;
    ~VariableNameIndex();
    VariableNameIndex(VariableNameIndex const&) = delete;
    VariableNameIndex& operator=(VariableNameIndex const&) = delete;

    // Brings the index up to date with the list that begins at `head`; `revision` is the list's own
    // count of changes. False when the list holds anything that is no variable: then it must be
    // walked.
    bool prepare(IFCNode* head, unsigned int revision);
    // First variable whose name is exactly, or but for case, this one; null when there is none.
    CFCVariableData* findExact(std::wstring_view name) const;
    CFCVariableData* findFolded(std::wstring_view name) const;

    // The variable with this index number changes its name or goes.
    static void nameChanges(std::uint32_t number);
    // The variable's successor in the list changes.
    static void successorChanges(std::uint32_t number, CFCVariableData* variable);

private:
    void clear();
    bool append(IFCNode* first);

    std::unordered_map<std::wstring_view, CFCVariableData*, ExactHash, ExactEqual> m_exact;
    std::unordered_map<std::wstring_view, CFCVariableData*, FoldedHash, FoldedEqual> m_folded;
    IFCNode* m_head = nullptr;
    CFCVariableData* m_last = nullptr;
    unsigned int m_revision = 0;
    // The number under which the variables know this index; a new one for each time it is built.
    std::uint32_t m_number = 0;
    bool m_stale = true;
};

} // namespace flowmere
