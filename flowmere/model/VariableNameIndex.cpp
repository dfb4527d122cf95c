#include "flowmere/model/VariableNameIndex.h"

#include "flowmere/foundation/Immortal.h"
#include "flowmere/model/FCVariableData.h"

namespace flowmere {

namespace {

using IndexTable = std::unordered_map<std::uint32_t, VariableNameIndex*>;

// Variables hold a number and no pointer, because a list may go before its variables do.
IndexTable& indexesByNumber() {
    static Immortal<IndexTable> table;
    return *table;
}

std::uint32_t nextNumber() {
    static std::uint32_t last = 0;
    do {
        ++last;
    } while (last == 0 || indexesByNumber().count(last) != 0);
    return last;
}

VariableNameIndex* indexOfNumber(std::uint32_t number) {
    auto const found = indexesByNumber().find(number);
    return found == indexesByNumber().end() ? nullptr : found->second;
}

} // namespace

VariableNameIndex::~VariableNameIndex() {
    clear();
}

void VariableNameIndex::clear() {
    m_exact.clear();
    m_folded.clear();
    m_head = nullptr;
    m_last = nullptr;
    if (m_number != 0) {
        indexesByNumber().erase(m_number);
        m_number = 0;
    }
}

bool VariableNameIndex::prepare(IFCNode* head, unsigned int revision) {
    if (m_stale || head != m_head || revision != m_revision) {
        clear();
        m_stale = true;
        m_number = nextNumber();
        indexesByNumber().emplace(m_number, this);
        m_head = head;
        m_revision = revision;
        if (!append(head)) {
            clear();
            return false;
        }
        m_stale = false;
        return true;
    }
    if (m_last != nullptr && !append(m_last->GetNext())) {
        clear();
        m_stale = true;
        return false;
    }
    return true;
}

bool VariableNameIndex::append(IFCNode* first) {
    for (IFCNode* node = first; node != nullptr; node = node->GetNext()) {
        CFCVariableData* const variable = node->GetVariableData();
        if (variable == nullptr || variable->GetNode() != node) {
            return false;
        }
        if (variable->m_nNameIndex == m_number) {
            // The chain has closed on itself.
            break;
        }
        if (VariableNameIndex* const other = indexOfNumber(variable->m_nNameIndex)) {
            // Lists that share their variables take them from one another: a variable reports to
            // one index only.
            other->m_stale = true;
        }
        variable->m_nNameIndex = m_number;
        std::wstring_view const name = variable->GetVariableName();
        m_exact.emplace(name, variable);
        if (!name.empty()) {
            m_folded.emplace(name, variable);
        }
        m_last = variable;
    }
    return true;
}

CFCVariableData* VariableNameIndex::findExact(std::wstring_view name) const {
    auto const found = m_exact.find(name);
    return found == m_exact.end() ? nullptr : found->second;
}

CFCVariableData* VariableNameIndex::findFolded(std::wstring_view name) const {
    auto const found = m_folded.find(name);
    return found == m_folded.end() ? nullptr : found->second;
}

void VariableNameIndex::nameChanges(std::uint32_t number) {
    if (VariableNameIndex* const index = indexOfNumber(number)) {
        index->m_stale = true;
    }
}

void VariableNameIndex::successorChanges(std::uint32_t number, CFCVariableData* variable) {
    VariableNameIndex* const index = indexOfNumber(number);
    if (index != nullptr && index->m_last != variable) {
        index->m_stale = true;
    }
}

} // namespace flowmere
