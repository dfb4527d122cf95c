#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeList.h"

// What the workflow engine does around a task: actions on events, exception handlers, timers,
// reminders and the transitions that leave the block. The records stand in the typed lists of
// CFCBPMBlockData.
//
// Texts start empty, setters copy them and accept any value, and a null text is the empty text.
// A text result points into the record and holds until that member changes.

// One action, and the base of all records.
class FLOWMERE_API CFCActionData : public CFCNode {
public:
    CFCActionData();
    CFCActionData(CFCActionData const&) = default;
    CFCActionData& operator=(CFCActionData const&) = default;
    ~CFCActionData() override;

    void Create() override;

    // Class of the handler.
    virtual void SetClassName(wchar_t const* text);
    virtual wchar_t const* GetClassNameStr();
    // Name of the action.
    virtual void SetActionName(wchar_t const* text);
    virtual wchar_t const* GetActionName();
    // Expression of the action.
    virtual void SetActionExpression(wchar_t const* text);
    virtual wchar_t const* GetActionExpression();
    // Script text.
    virtual void SetActionValue(wchar_t const* text);
    virtual wchar_t const* GetActionValue();
    // Event type, such as "task-start".
    virtual void SetActionType(wchar_t const* text);
    virtual wchar_t const* GetActionType();
    // Function in the module.
    virtual void SetActionFunction(wchar_t const* text);
    virtual wchar_t const* GetActionFunction();

private:
    TuString m_actionName;
    TuString m_className;
    TuString m_actionExpression;
    TuString m_actionValue;
    TuString m_actionType;
    TuString m_actionFunction;
};

// An action or a script that runs on an event.
class FLOWMERE_API CFCEventActionData : public CFCActionData {
public:
    CFCEventActionData();
    CFCEventActionData(CFCEventActionData const&) = default;
    CFCEventActionData& operator=(CFCEventActionData const&) = default;
    ~CFCEventActionData() override;
};

// An action or a script that handles an exception.
class FLOWMERE_API CFCExceptionActionData : public CFCActionData {
public:
    CFCExceptionActionData();
    CFCExceptionActionData(CFCExceptionActionData const&) = default;
    CFCExceptionActionData& operator=(CFCExceptionActionData const&) = default;
    ~CFCExceptionActionData() override;
};

// An action that a timer runs.
class FLOWMERE_API CFCTimerActionData : public CFCActionData {
public:
    CFCTimerActionData();
    CFCTimerActionData(CFCTimerActionData const&) = default;
    CFCTimerActionData& operator=(CFCTimerActionData const&) = default;
    ~CFCTimerActionData() override;
};

// An action that reminds the user.
class FLOWMERE_API CFCReminderData : public CFCActionData {
public:
    CFCReminderData();
    CFCReminderData(CFCReminderData const&) = default;
    CFCReminderData& operator=(CFCReminderData const&) = default;
    ~CFCReminderData() override;
};

// A transition that leaves the block, as stored in a file. The inherited texts stay unused.
class FLOWMERE_API CFCTransitionData : public CFCActionData {
public:
    // Room for points in the route.
    static constexpr int kPointCount = 25;

    CFCTransitionData();
    CFCTransitionData(CFCTransitionData const&) = default;
    CFCTransitionData& operator=(CFCTransitionData const&) = default;
    ~CFCTransitionData() override;

    // Name of the target node among the siblings of the block.
    wchar_t const* GetTransitionTo();
    void SetTransitionTo(wchar_t const* text);
    // Name of the transition: start block, a point, end block.
    wchar_t const* GetTransitionName();
    void SetTransitionName(wchar_t const* text);
    // Label of the transition.
    wchar_t const* GetTransitionCaption();
    void SetTransitionCaption(wchar_t const* text);
    // Grip used on the source block; 8 in a new transition.
    int GetInport();
    void SetInport(int handle);
    // Grip used on the target block; 4 in a new transition.
    int GetOutport();
    void SetOutport(int handle);
    // Connector type; 1 in a new transition.
    EConnectorType GetType();
    void SetType(EConnectorType connectorType);
    void SetType(int connectorType) { SetType(static_cast<EConnectorType>(connectorType)); }

    // The kPointCount points of the route. The route ends at the first point whose x is 0; a full
    // route has no such point, so a walk also stops at kPointCount.
    _TgPointLStr* GetPoints();
    // Stores `point` at `index` and clears all points behind it. An index outside the route is
    // ignored.
    void AddPoint(int index, _TgPointLStr point);

private:
    TuString m_transitionTo;
    TuString m_transitionName;
    TuString m_transitionCaption;
    int m_inport = 8;
    int m_outport = 4;
    EConnectorType m_type = static_cast<EConnectorType>(1);
    _TgPointLStr m_points[kPointCount] = {};
};

// The typed lists. Their destructors delete no record; copies share the records.

// List of CFCEventActionData, walked with GetNextNode.
class FLOWMERE_API CFCEventList : public CFCNodeList {
public:
    CFCEventList();
    CFCEventList(CFCEventList const&) = default;
    CFCEventList& operator=(CFCEventList const&) = default;
    ~CFCEventList() override;
};

// List of CFCExceptionActionData, walked with GetNextNode.
class FLOWMERE_API CFCExceptionList : public CFCNodeList {
public:
    CFCExceptionList();
    CFCExceptionList(CFCExceptionList const&) = default;
    CFCExceptionList& operator=(CFCExceptionList const&) = default;
    ~CFCExceptionList() override;
};

// List of CFCTimerActionData, walked with GetNextNode.
class FLOWMERE_API CFCTimerList : public CFCNodeList {
public:
    CFCTimerList();
    CFCTimerList(CFCTimerList const&) = default;
    CFCTimerList& operator=(CFCTimerList const&) = default;
    ~CFCTimerList() override;
};

// List of CFCReminderData, walked with GetNextNode.
class FLOWMERE_API CFCReminderList : public CFCNodeList {
public:
    CFCReminderList();
    CFCReminderList(CFCReminderList const&) = default;
    CFCReminderList& operator=(CFCReminderList const&) = default;
    ~CFCReminderList() override;
};

// List of CFCTransitionData.
class FLOWMERE_API CFCTransitionList : public CFCNodeList {
public:
    CFCTransitionList();
    CFCTransitionList(CFCTransitionList const&) = default;
    CFCTransitionList& operator=(CFCTransitionList const&) = default;
    ~CFCTransitionList() override;

    using CFCNodeList::GetNext;
    // The transition at the position, which then moves on; null for an element of another class.
    CFCTransitionData* GetNext(__FCPOSITION*& position);
};
