#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCApplicationData.h"
#include "flowmere/model/FCBPMBlockData.h"

#include <map>

class CFCVariableData;
class IFCNode;

// A workflow task that launches an outside application. Beyond a task's content it holds the application's arguments,
// output patterns, command lines and deployments; its variables of nature "Deployment" stand, with values of their own,
// in each deployment, and the scripts and files that they name lie in the folder of each deployment on disk.
//
// Texts start empty where nothing else is told, setters copy them, and a null text is the empty text. A text result
// points into the node and holds until that member changes. The four lists are embedded: never null. Their elements
// stay allocated until the list's own DeleteNode and DeleteAll or CFCNodeHelper::DestroyTree delete them.
//
// GetExecutable and GetDeployment(name) answer from the variables and the deployments. The texts of the same names that
// documents carry are those of the workflow record, and are reached through CFCBPMBlockData.
class FLOWMERE_API CFCApplicationNode : public CFCBPMTaskNode {
public:
    // Of node type 167, with the caption "Application", without templates (see Initialize).
    CFCApplicationNode();
    // Copies are shallow: they share the elements of the lists.
    CFCApplicationNode(CFCApplicationNode const&) = default;
    CFCApplicationNode& operator=(CFCApplicationNode const&) = default;
    ~CFCApplicationNode() override;

    // Does nothing.
    void Create() override;
    // Nothing is stored here; the result is 0.
    virtual int Persist();

    // Identifier of the application in the host's store; 0 while it has none.
    int GetAppID() { return m_nAppID; }
    void SetAppID(int id) { m_nAppID = id; }
    // Position among the applications of a job.
    int GetAppIndex() { return m_nAppIndex; }
    void SetAppIndex(int index) { m_nAppIndex = index; }
    // Type text; "Application" at first.
    wchar_t const* GetAppType() { return m_strAppType; }
    void SetAppType(wchar_t const* type) { m_strAppType = type; }
    // Whether the application is a new version; not 0 is yes.
    int IsNewVersion() { return m_nNewVersion; }
    void SetNewVersion(int value) { m_nNewVersion = value; }
    // Whether the application was updated; not 0 is yes. Setting it has no effect before there is an identifier.
    int IsUpdated() { return m_nUpdated; }
    void SetUpdated(int value);
    // Whether the application is started by a binding script.
    bool IsUseBindingScript() { return m_bUseBindingScript; }
    void SetUseBindingScript(bool value) { m_bUseBindingScript = value; }

    CFCArgumentList* GetArgumentList() { return &m_ArgumentList; }
    CFCPatternList* GetPatternList() { return &m_PatternList; }
    CFCCmdLineList* GetCmdLineList() { return &m_CmdLineList; }
    CFCDeploymentList* GetDeploymentList() { return &m_DeploymentList; }

    // The deployment that the workflow record names.
    using CFCBPMBlockData::GetDeployment;
    // The first deployment with the caption, letter case aside; null when there is none.
    CFCDeploymentData* GetDeployment(wchar_t const* name);
    // Value of the first variable "EXECUTABLE", letter case aside; empty without one. Valid until the next call.
    wchar_t const* GetExecutable();
    // The application's own folder, which holds those of its deployments: the node path as folders below the folder of
    // the user's applications. Valid until the next call.
    wchar_t const* GetPath();

    // Each makes a record at the tail of its list, with this node as its parent; the list holds it. Arguments and
    // patterns have the same node type, 180; command lines have 181 and deployments 182.
    CFCArgumentData* CreateNewArgument();
    CFCPatternData* CreateNewPattern();
    CFCCmdLineData* CreateNewCmdLine();
    CFCDeploymentData* CreateNewDeployment();

    // Adds the five variables that every application has: its working directory, and the four by which a running task
    // reaches its server. They have no value; their data types are attached where the catalog holds them.
    // Defined in persistence/ApplicationVariables.cpp.
    void CreateDefaultVariables();

    // Deployments; defined in algorithms/ApplicationDeployments.cpp.

    // Makes the deployment "Windows" with a copy of each variable of nature "Deployment". Nothing when there is any
    // deployment.
    void CreateDefaultDeployments();
    // Takes those variables out of the deployments that the application does not have, or has with another nature, and
    // marks these deployments as modified.
    void ClearDeploymentVars();
    // Brings a variable of the application into every deployment: as a new copy, or as a value where the deployment has
    // an empty one. The deployment's own value wins; what changes is marked as modified, deployment and entry. For a
    // file or a binding script the file, that of the user, else the shared one, else the application's own, goes into
    // the folder of each deployment. Nothing for null and without deployments.
    void UpdateDeploymentVariable(CFCVariableData* variable);
    // Makes the folder of each deployment and copies the file there under its own name. Null does nothing, and what
    // cannot be copied is passed over in silence.
    void UpdateDeploymentFolder(wchar_t const* file);
    // All of the above, for each variable of nature "Deployment".
    void RefreshDeployments();

    // Copies; defined in algorithms/ApplicationCopies.cpp.

    // A new application with the caption, block data, variables, workflow record, arguments and deployments of the
    // source; without its patterns, command lines, identifier, templates and children. The lists of the workflow record
    // are shared with the source. The caller owns it. Null for null and for a node without workflow record.
    static CFCApplicationNode* Clone(IFCNode* source);
    // Clones the whole tree below the source; every node of it becomes an application. New children go in front, so
    // each clone reverses the order, and children that cannot be cloned are left out with all below them. The caller
    // owns it. Null where Clone gives null.
    static IFCNode* CloneNodeComplex(IFCNode* source);
    // Append clones of the arguments (deployments) of the source to those of the target. False, and nothing done, for
    // null, for one node given twice and for a node that is no application.
    static bool CopyArguments(IFCNode* source, IFCNode* target);
    static bool CopyDeployments(IFCNode* source, IFCNode* target);

    // Fills the nine templates below.
    void Initialize();

    // The templates as they are now; empty before Initialize.
    wchar_t const* GetJobTemplate() { return m_strJobTemplate; }
    wchar_t const* GetArgumentTemplate() { return m_strArgumentTemplate; }
    wchar_t const* GetPathTemplate() { return m_strPathTemplate; }
    wchar_t const* GetBindingScriptTemplate() { return m_strBindingScriptTemplate; }
    wchar_t const* GetVariableTemplate() { return m_strVariableTemplate; }
    wchar_t const* GetApplicationTemplate() { return m_strApplicationTemplate; }
    wchar_t const* GetExecutableTemplate() { return m_strExecutableTemplate; }
    wchar_t const* GetPatternTemplate() { return m_strPatternTemplate; }
    wchar_t const* GetAggregatorTemplate() { return m_strAggregatorTemplate; }

private:
    int m_nAppID = 0;
    int m_nAppIndex = 0;
    CFCArgumentList m_ArgumentList;
    CFCPatternList m_PatternList;
    CFCCmdLineList m_CmdLineList;
    CFCDeploymentList m_DeploymentList;
    std::map<int, TuString> m_ReservedMap; // no use yet; copied and destroyed with the node
    TuString m_strAppType = L"Application";
    int m_nNewVersion = 0;
    int m_nUpdated = 0;

public:
    // Texts of a job description, for the host to fill: each word behind a dollar sign is a placeholder, and '"' (a
    // double quote between single ones) stands for a double quote. Empty until Initialize; the spare ones stay so.
    TuString m_strJobTemplate;

private:
    TuString m_strSpareTemplate1;

public:
    TuString m_strArgumentTemplate;
    TuString m_strPathTemplate;
    TuString m_strBindingScriptTemplate;

private:
    TuString m_strSpareTemplate2;
    TuString m_strSpareTemplate3;

public:
    TuString m_strVariableTemplate;
    TuString m_strApplicationTemplate;
    TuString m_strExecutableTemplate;
    TuString m_strPatternTemplate;
    TuString m_strAggregatorTemplate;

private:
    TuString m_strExecutable; // result of GetExecutable
    TuString m_strAppPath;    // result of GetPath
    bool m_bUseBindingScript = false;
};
