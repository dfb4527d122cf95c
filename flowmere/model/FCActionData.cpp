#include "flowmere/model/FCActionData.h"

#include <algorithm>

CFCActionData::CFCActionData() = default;
CFCActionData::~CFCActionData() = default;

void CFCActionData::Create() {}

void CFCActionData::SetClassName(wchar_t const* text) {
    m_className = text;
}

wchar_t const* CFCActionData::GetClassNameStr() {
    return m_className;
}

void CFCActionData::SetActionName(wchar_t const* text) {
    m_actionName = text;
}

wchar_t const* CFCActionData::GetActionName() {
    return m_actionName;
}

void CFCActionData::SetActionExpression(wchar_t const* text) {
    m_actionExpression = text;
}

wchar_t const* CFCActionData::GetActionExpression() {
    return m_actionExpression;
}

void CFCActionData::SetActionValue(wchar_t const* text) {
    m_actionValue = text;
}

wchar_t const* CFCActionData::GetActionValue() {
    return m_actionValue;
}

void CFCActionData::SetActionType(wchar_t const* text) {
    m_actionType = text;
}

wchar_t const* CFCActionData::GetActionType() {
    return m_actionType;
}

void CFCActionData::SetActionFunction(wchar_t const* text) {
    m_actionFunction = text;
}

wchar_t const* CFCActionData::GetActionFunction() {
    return m_actionFunction;
}

CFCEventActionData::CFCEventActionData() = default;
CFCEventActionData::~CFCEventActionData() = default;

CFCExceptionActionData::CFCExceptionActionData() = default;
CFCExceptionActionData::~CFCExceptionActionData() = default;

CFCTimerActionData::CFCTimerActionData() = default;
CFCTimerActionData::~CFCTimerActionData() = default;

CFCReminderData::CFCReminderData() = default;
CFCReminderData::~CFCReminderData() = default;

CFCTransitionData::CFCTransitionData() = default;
CFCTransitionData::~CFCTransitionData() = default;

wchar_t const* CFCTransitionData::GetTransitionTo() {
    return m_transitionTo;
}

void CFCTransitionData::SetTransitionTo(wchar_t const* text) {
    m_transitionTo = text;
}

wchar_t const* CFCTransitionData::GetTransitionName() {
    return m_transitionName;
}

void CFCTransitionData::SetTransitionName(wchar_t const* text) {
    m_transitionName = text;
}

wchar_t const* CFCTransitionData::GetTransitionCaption() {
    return m_transitionCaption;
}

void CFCTransitionData::SetTransitionCaption(wchar_t const* text) {
    m_transitionCaption = text;
}

int CFCTransitionData::GetInport() {
    return m_inport;
}

void CFCTransitionData::SetInport(int handle) {
    m_inport = handle;
}

int CFCTransitionData::GetOutport() {
    return m_outport;
}

void CFCTransitionData::SetOutport(int handle) {
    m_outport = handle;
}

EConnectorType CFCTransitionData::GetType() {
    return m_type;
}

void CFCTransitionData::SetType(EConnectorType connectorType) {
    m_type = connectorType;
}

_TgPointLStr* CFCTransitionData::GetPoints() {
    return m_points;
}

void CFCTransitionData::AddPoint(int index, _TgPointLStr point) {
    if (index < 0 || index >= kPointCount) {
        return;
    }
    m_points[index] = point;
    std::fill(m_points + index + 1, m_points + kPointCount, _TgPointLStr{});
}

CFCEventList::CFCEventList() = default;
CFCEventList::~CFCEventList() = default;

CFCExceptionList::CFCExceptionList() = default;
CFCExceptionList::~CFCExceptionList() = default;

CFCTimerList::CFCTimerList() = default;
CFCTimerList::~CFCTimerList() = default;

CFCReminderList::CFCReminderList() = default;
CFCReminderList::~CFCReminderList() = default;

CFCTransitionList::CFCTransitionList() = default;
CFCTransitionList::~CFCTransitionList() = default;

CFCTransitionData* CFCTransitionList::GetNext(__FCPOSITION*& position) {
    return dynamic_cast<CFCTransitionData*>(GetNextNode(position));
}
