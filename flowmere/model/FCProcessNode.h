#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCBlockNode.h"
#include "flowmere/model/FCEnumerations.h"

class CFCFavouriteNode;
class CFCSubGroupNode;

// A block that has blocks inside, and knows where its inner flow starts.
class FLOWMERE_API CFCSubProcessNode : public CFCBlockNode {
public:
    CFCSubProcessNode();
    explicit CFCSubProcessNode(int kind);
    CFCSubProcessNode(CFCSubProcessNode const& other);
    CFCSubProcessNode& operator=(CFCSubProcessNode const& other);
    ~CFCSubProcessNode() override;

    // The flow enters the sub-process: its first inner block. An empty one ends the flow, even when a connector leaves
    // it; the way out is found by the last inner block.
    CFCBlockNode* GetNextConnectedBlock() override;
    // The first child with a way out and no way in, or else the first child; children that are no blocks do not count.
    // Ways that an earlier search saw still count, whatever became of their connectors.
    CFCBlockNode* GetFirstConnectedBlock() override;
    CFCBlockNode* GetNextConnectedBlockSimple() override;
};

// The root of a process document: a sub-process with the settings of a project and the status of a run. A new process
// has two children, a favourites node and the "Last Opened" group; like all children they are not owned, and copies of
// the process point at the same two.
class FLOWMERE_API CFCProcessNode : public CFCSubProcessNode {
public:
    // How a run goes on.
    enum CFCProcessExecutionMode : int {
        ExecutionContinue = 0,
        ExecutionStep = 1,
        ExecutionUndo = 2,
        ExecutionUndoStep = 3,
    };
    // Who drives a run: the host's timer, or a loop inside the command.
    enum CFCProcessExecutionType : int { ExecutionByTimer = 0, ExecutionByLoop = 1 };
    enum CFCProcessExecutionStatus : int {
        ExecutionReady = 1,
        ExecutionRunning = 2, // a block was started
        ExecutionDone = 3,    // the current block has run
        ExecutionFailed = 6,  // the current block failed
    };
    // 1 once a block has run.
    enum CFCProcessSaveStatus : int { ProcessSaved = 0, ProcessUnsaved = 1 };

    CFCProcessNode();
    CFCProcessNode(CFCProcessNode const& other);
    CFCProcessNode& operator=(CFCProcessNode const& other);
    ~CFCProcessNode() override;

    // The kind of project; unlike other nodes a process gives back what was set. 0, "BPT", at first.
    EProjectType GetProjectType() override;
    void SetProjectType(EProjectType type) override;

    // Makes the favourites node and the "Last Opened" group and puts them in front of the other children, whether there
    // are such children already or not.
    void SetDefaults();
    // The extra children; a missing one is made, and the other with it.
    CFCFavouriteNode* GetFavouriteNode();
    CFCSubGroupNode* GetHistoryNode();

    // Texts are valid until they change; null is stored as the empty text.
    wchar_t const* getProjectDirectory() { return projectDirectory; }
    void setProjectDirectory(wchar_t const* path) { projectDirectory = path; }
    CFCProcessExecutionStatus getExecutionStatus() { return executionStatus; }
    void setExecutionStatus(CFCProcessExecutionStatus status) { executionStatus = status; }
    // The script that saves and restores the project, "SaveRestore" at first: another text than that of the block data.
    wchar_t const* getSaveRestoreScript() { return saveRestoreScript; }
    void setSaveRestoreScript(wchar_t const* name) { saveRestoreScript = name; }
    void setSaveRestoreScript(wchar_t const* name, EScriptType type);
    EScriptType getSaveRestoreScriptType() { return saveRestoreScriptType; }
    void setSaveRestoreScriptType(EScriptType type) { saveRestoreScriptType = type; }
    CFCProcessExecutionMode getExecutionMode() { return executionMode; }
    void setExecutionMode(CFCProcessExecutionMode mode) { executionMode = mode; }
    CFCProcessSaveStatus getProcessSaveStatus() { return processSaveStatus; }
    void setProcessSaveStatus(CFCProcessSaveStatus status) { processSaveStatus = status; }
    bool getRandomExecutionStatus() { return randomExecution; }
    void setRandomExecutionStatus(bool value) { randomExecution = value; }
    bool getRunOnLoadStatus() { return runOnLoad; }
    void setRunOnLoadStatus(bool value) { runOnLoad = value; }
    bool getModelDependency() { return modelDependency; }
    void setModelDependency(bool value) { modelDependency = value; }
    bool IsVariablesSerializableToTNB() { return serializeVariables; }
    void SerializeVariablesToTNB(bool value) { serializeVariables = value; }
    bool hasDiagram() { return diagramShown; }
    void showDiagram(bool value) { diagramShown = value; }
    wchar_t const* getProcessFlowType() { return processFlowType; }
    void setProcessFlowType(wchar_t const* text) { processFlowType = text; }

    // On the fields of the process's own block data.
    using CFCBlockData::GetCOMCommand;
    using CFCBlockData::GetCOMInteface;
    using CFCBlockData::GetExecuteMethod;
    using CFCBlockData::SetCOMCommand;
    using CFCBlockData::SetCOMInteface;
    using CFCBlockData::SetExecuteMethod;

    // For a host that gives them meaning: here they do nothing, and give 0 or null.
    void execute(wchar_t const* text);
    CFCBlockNode* getStartBlock();
    int importVariables(wchar_t const* path);
    int loadTeamplate(wchar_t const* path);
    int writeVariables(wchar_t const* path);
    void saveDataModels();

private:
    TuString spareTexts[2]; // copied with the object, no other use
    TuString projectDirectory;
    CFCProcessExecutionStatus executionStatus = ExecutionReady;
    TuString saveRestoreScript;
    EScriptType saveRestoreScriptType = static_cast<EScriptType>(0);
    CFCProcessExecutionMode executionMode = ExecutionContinue;
    CFCProcessSaveStatus processSaveStatus = ProcessSaved;
    bool randomExecution = false;
    bool runOnLoad = false;
    bool modelDependency = false;
    bool serializeVariables = false;
    bool diagramShown = false;
    TuString processFlowType;
    CFCFavouriteNode* favouriteNode = nullptr;
    CFCSubGroupNode* historyNode = nullptr;
};
