#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCJSONTemplates.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCVariableList.h"

// The records below an application node: how its command line is built, what in its output
// means failure, under which names it is deployed, and what it needs to run.
//
// Texts start empty, setters copy them, and a null text is the empty text. A text result points
// into the record and holds until that member changes.

// One argument of an application.
class FLOWMERE_API CFCArgumentData : public CFCNode {
public:
    CFCArgumentData();
    CFCArgumentData(CFCArgumentData const&) = default;
    CFCArgumentData& operator=(CFCArgumentData const&) = default;
    ~CFCArgumentData() override;

    void Create() override;
    // Nothing is stored here; the result is 0.
    virtual int Persist();

    // Place of the argument in the command line.
    int GetArgumentIndex() { return m_argumentIndex; }
    void SetArgumentIndex(int number) { m_argumentIndex = number; }
    // Identifier of the argument.
    int GetArgumentID() { return m_argumentId; }
    void SetArgumentID(int number) { m_argumentId = number; }
    // Identifier of the command line that the argument belongs to.
    int GetCmdLineID() { return m_cmdLineId; }
    void SetCmdLineID(int number) { m_cmdLineId = number; }
    // Value of the argument.
    wchar_t const* GetArgumentValue() { return m_argumentValue; }
    void SetArgumentValue(wchar_t const* text) { m_argumentValue = text; }
    // Type of the argument.
    wchar_t const* GetArgumentType() { return m_argumentType; }
    void SetArgumentType(wchar_t const* text) { m_argumentType = text; }
    // Name of the argument.
    wchar_t const* GetArgumentName() { return m_argumentName; }
    void SetArgumentName(wchar_t const* text) { m_argumentName = text; }

    // The argument as JSON text with the quote tokens in place; the next call overwrites it.
    wchar_t const* GetJSONString();

    // A new argument with the fields of this one; it has no parent and no node type. The caller
    // owns it.
    CFCArgumentData* CloneArgument();
    // Copies all fields but the JSON text; nothing for a null.
    static void Copy(CFCArgumentData* source, CFCArgumentData* target);

private:
    int m_argumentIndex = 0;
    int m_argumentId = 0;
    int m_cmdLineId = 0;
    TuString m_argumentValue;
    TuString m_argumentType;
    TuString m_argumentName;
    TuString m_json;
};

// One command line of an application.
class FLOWMERE_API CFCCmdLineData : public CFCNode {
public:
    CFCCmdLineData();
    CFCCmdLineData(CFCCmdLineData const&) = default;
    CFCCmdLineData& operator=(CFCCmdLineData const&) = default;
    ~CFCCmdLineData() override;

    void Create() override;

    // Identifier of the command line.
    int GetCmdLineId() { return m_cmdLineId; }
    void SetCmdLine(int number) { m_cmdLineId = number; }
    // Identifier of the application.
    int GetAppId() { return m_appId; }
    void SetAppId(int number) { m_appId = number; }
    // Name of the command line.
    wchar_t const* GetCmdName() { return m_cmdName; }
    void SetCmdName(wchar_t const* text) { m_cmdName = text; }
    // Type of the command line.
    wchar_t const* GetCmdType() { return m_cmdType; }
    void SetCmdType(wchar_t const* text) { m_cmdType = text; }

private:
    int m_cmdLineId = 0;
    int m_appId = 0;
    TuString m_cmdName;
    TuString m_cmdType;
};

// A pattern in the output of an application that means failure.
class FLOWMERE_API CFCPatternData : public CFCNode {
public:
    CFCPatternData();
    CFCPatternData(CFCPatternData const&) = default;
    CFCPatternData& operator=(CFCPatternData const&) = default;
    ~CFCPatternData() override;

    void Create() override;

    // The pattern as JSON text with the quote tokens in place; the next call overwrites it.
    wchar_t const* GetJSONString();

    // Identifier of the pattern.
    int GetPatternID() { return m_patternId; }
    void SetPatternID(int number) { m_patternId = number; }
    // Name of the pattern.
    wchar_t const* GetPatternName() { return m_patternName; }
    void SetPatternName(wchar_t const* text) { m_patternName = text; }
    // Regular expression that is sought in the output.
    wchar_t const* GetPatternRegExp() { return m_patternRegExp; }
    void SetPatternRegExp(wchar_t const* text) { m_patternRegExp = text; }
    // What the user is told to do about a match.
    wchar_t const* GetPatternSuggestion() { return m_patternSuggestion; }
    void SetPatternSuggestion(wchar_t const* text) { m_patternSuggestion = text; }
    // Extension of the files that are searched.
    wchar_t const* GetPatternFileExt() { return m_patternFileExt; }
    void SetPatternFileExt(wchar_t const* text) { m_patternFileExt = text; }

    // Copies all fields, the JSON text too; nothing for a null.
    static void Copy(CFCPatternData* source, CFCPatternData* target);

private:
    TuString m_json;
    int m_patternId = 0;
    TuString m_patternName;
    TuString m_patternRegExp;
    TuString m_patternSuggestion;
    TuString m_patternFileExt;
};

// A named copy of those variables of an application that differ from one installation to the
// next. The name of the deployment is its node caption.
class FLOWMERE_API CFCDeploymentData : public CFCNode {
public:
    CFCDeploymentData();
    // Copies are shallow: the list of the copy shares the variables.
    CFCDeploymentData(CFCDeploymentData const&) = default;
    CFCDeploymentData& operator=(CFCDeploymentData const&) = default;
    // Leaves the variables allocated.
    ~CFCDeploymentData() override;

    void Create() override;

    // Identifier of the node.
    wchar_t const* GetNodeId() override;
    void SetNodeId(wchar_t const* text) override;
    // The deployment's own list, never null.
    CFCVariableList* GetVariableList() override;
    // A new variable at the tail of the list, with this node as parent; owned by the list.
    CFCVariableData* CreateNewVariable() override;

    // Identifier of the deployment.
    int GetDeploymentId() { return m_deploymentId; }
    void SetDeploymentId(int number) { m_deploymentId = number; }

    // Value of the first variable of that name, letter case aside; empty when there is none and for a null.
    TuString GetVariableValue(wchar_t const* name);

    // Sets the target's caption and appends copies of the source's variables to those that are
    // there; nothing for a null.
    static void Copy(CFCDeploymentData* source, CFCDeploymentData* target);
    // Appends a resolved clone of each variable of `source` to the list of `target`. False, and
    // nothing done, for a null, for one node given twice, and for a node without variable list.
    static bool CopyVariables(IFCNode* source, IFCNode* target);
    // A new deployment with the caption and the variables of `source`, blank for a null. The
    // caller owns it.
    static CFCDeploymentData* CloneDeployment(CFCDeploymentData* source);

private:
    CFCVariableList m_variableList;
    int m_deploymentId = 0;
    TuString m_nodeId;
};

// What a task needs to run.
class FLOWMERE_API CFCResourceData : public CFCNode {
public:
    CFCResourceData();
    CFCResourceData(CFCResourceData const&) = default;
    CFCResourceData& operator=(CFCResourceData const&) = default;
    ~CFCResourceData() override;

    void Create() override;

    // Number of processor cores.
    int getNumberOfCores() { return m_numberOfCores; }
    void setNumberOfCores(int number) { m_numberOfCores = number; }
    // Memory as a size and its unit.
    void getRAM(unsigned int& size, _TMemoryUnitId& unit);
    void setRAM(unsigned int size, _TMemoryUnitId unit);

private:
    int m_numberOfCores = 0;
    unsigned int m_ramSize = 0;
    _TMemoryUnitId m_ramUnit = static_cast<_TMemoryUnitId>(1);
};

// The typed lists. Their destructors delete no element; copies share the elements. GetNext gives
// the element at the position, which then moves on, and null for an element of another class.

class FLOWMERE_API CFCArgumentList : public CFCNodeList {
public:
    CFCArgumentList();
    CFCArgumentList(CFCArgumentList const&) = default;
    CFCArgumentList& operator=(CFCArgumentList const&) = default;
    ~CFCArgumentList() override;

    using CFCNodeList::GetNext;
    CFCArgumentData* GetNext(__FCPOSITION*& position);
};

class FLOWMERE_API CFCCmdLineList : public CFCNodeList {
public:
    CFCCmdLineList();
    CFCCmdLineList(CFCCmdLineList const&) = default;
    CFCCmdLineList& operator=(CFCCmdLineList const&) = default;
    ~CFCCmdLineList() override;

    using CFCNodeList::GetNext;
    CFCCmdLineData* GetNext(__FCPOSITION*& position);
};

class FLOWMERE_API CFCPatternList : public CFCNodeList {
public:
    CFCPatternList();
    CFCPatternList(CFCPatternList const&) = default;
    CFCPatternList& operator=(CFCPatternList const&) = default;
    ~CFCPatternList() override;

    using CFCNodeList::GetNext;
    CFCPatternData* GetNext(__FCPOSITION*& position);
};

class FLOWMERE_API CFCDeploymentList : public CFCNodeList {
public:
    CFCDeploymentList();
    CFCDeploymentList(CFCDeploymentList const&) = default;
    CFCDeploymentList& operator=(CFCDeploymentList const&) = default;
    ~CFCDeploymentList() override;

    // The first deployment; null when the list is empty.
    CFCDeploymentData* GetHead() override;
    using CFCNodeList::GetNext;
    CFCDeploymentData* GetNext(__FCPOSITION*& position);
};
