#pragma once

// The enumerations shared by the whole model. All are unscoped with a fixed type, because numbers
// outside the listed values occur in files and in host code and must be representable.
// Values are stored by name in files (see CFCEnumTranslator) and by number in memory and in host
// code: never renumber them.

// Type of a variable's value.
enum EDataType : int {
    EDataType_Int = 0,
    EDataType_Float = 1,
    EDataType_Double = 2,
    EDataType_String = 3,
    EDataType_TarnObject = 4,
    EDataType_Point2 = 5,
    EDataType_Point3 = 6,
    EDataType_Matrix = 7,
    EDataType_File = 8,
    EDataType_Directory = 9,
    EDataType_IntArray = 10,
    EDataType_FloatArray = 11,
    EDataType_DoubleArray = 12,
    EDataType_StringArray = 13,
    EDataType_TarnObjectArray = 14,
    EDataType_Point2Array = 15,
    EDataType_Point3Array = 16,
    EDataType_FileArray = 17,
    EDataType_DirectoryArray = 18
};

// Where a variable is seen, or where its value comes from.
enum EScopeType : int {
    EScopeType_Local = 0,
    EScopeType_Parent = 1,
    EScopeType_Connected = 2,
    EScopeType_Template = 3,
    EScopeType_Global = 4,
    EScopeType_Private = 5,
    EScopeType_Public = 6,
    EScopeType_Resolve = 7
};

// What a variable is for.
enum ENatureType : int {
    ENatureType_Application = 0,
    ENatureType_Deployment = 1,
    ENatureType_Task = 2,
    ENatureType_Setup = 3,
    ENatureType_System = 4
};

// How far the execution of a block has come.
enum EExecutionStateType : int {
    EExecutionStateType_ESNone = 0,
    EExecutionStateType_Pending = 1,
    EExecutionStateType_Start = 2,
    EExecutionStateType_Executing = 3,
    EExecutionStateType_Executed = 4,
    EExecutionStateType_Skipped = 5,
    EExecutionStateType_Failed = 6,
    EExecutionStateType_Cancelled = 7,
    EExecutionStateType_WaitForResource = 8,
    EExecutionStateType_Stop = 9
};

// Kind of a project. The value 8 has no name and is what a plain node answers.
enum EProjectType : int {
    EProjectType_BPT = 0,
    EProjectType_TASK = 1,
    EProjectType_MSP = 2,
    EProjectType_Report = 3,
    EProjectType_Execute = 4,
    EProjectType_Debug = 5,
    EProjectType_APPLICATION = 6,
    EProjectType_PROCESSLST = 7,
    EProjectType_None = 8
};

// Direction of a variable.
enum EStatusType : int { EStatusType_Input = 0, EStatusType_Output = 1, EStatusType_InAndOutput = 2 };

// Kind of a variable's connection.
enum EConnectionType : int {
    EConnectionType_Local = 0,
    EConnectionType_Parent = 1,
    EConnectionType_Connected = 2,
    EConnectionType_Template = 3
};

// Language of a script, under the numbers that have a name in files. Code records, script paths and
// script files of a workflow block use further bare numbers of this type (up to 9), in part with
// another meaning for 3 and 4; each reading holds in its own place.
enum EScriptType : int {
    EScriptType_PYTHON = 0,
    EScriptType_PYTHON_CMD = 1,
    EScriptType_TCMD = 2,
    EScriptType_TCMD_V2 = 3,
    EScriptType_JAVA = 4
};

// Which tree of the host shows a node.
enum ETreeType : int {
    ETreeType_TreeGeneric = 0,
    ETreeType_ProcessList = 1,
    ETreeType_ProcessLibrary = 2,
    ETreeType_Process = 3
};

// Which variable grid of the host shows a variable.
enum EGridType : int {
    EGridType_None = 0,
    EGridType_BPR = 1,
    EGridType_Application = 2,
    EGridType_Task = 3,
    EGridType_Macro = 4,
    EGridType_Template = 5,
    EGridType_All = 6
};

// Kinds of tree rows of the host; not the node type codes (those are eShapeType).
enum EFCNodeType : int {
    EFCNodeType_SimpleNone = 0,
    EFCNodeType_RootNode = 1,
    EFCNodeType_ImageNode = 2,
    EFCNodeType_FileProcessNode = 3,
    EFCNodeType_FileSubProcessNode = 4,
    EFCNodeType_SubProcessNode = 5,
    EFCNodeType_BlockNode = 6,
    EFCNodeType_VariableNode = 7
};

// Tabs of the host's window that can be shown or hidden.
enum EFCTabType : int {
    EFCTabType_PythonConsole = 0,
    EFCTabType_Watch = 1,
    EFCTabType_TODO = 2,
    EFCTabType_CallStack = 3,
    EFCTabType_BreakPoint = 4,
    EFCTabType_FileSystem = 5,
    EFCTabType_CurrentProject = 6,
    EFCTabType_Library = 7,
    EFCTabType_ExternalLauncher = 8,
    EFCTabType_CodeLibrary = 9,
    EFCTabType_Application = 10,
    EFCTabType_ProcessList = 11
};

// Items of the release information.
enum EReleaseInfo : int {
    EReleaseInfo_Version = 0,
    EReleaseInfo_Build = 1,
    EReleaseInfo_ReleaseDate = 2,
    EReleaseInfo_ReleaseNumber = 3,
    EReleaseInfo_PatchFile = 4,
    EReleaseInfo_InstallationLocation = 5
};

// Whether a value is a plain value or an object of the application.
enum EEntityType : int { EEntityType_Primitive = 0, EEntityType_OrrinEntity = 1 };

// The eight grip points of a block's rectangle, clockwise from the top left corner. 6 is a block's
// default way out; 9 is what a connection end holds until a grip is set.
enum EPortHandle : int {
    EPortHandle_None = 0,
    EPortHandle_TopLeft = 1,
    EPortHandle_TopMiddle = 2,
    EPortHandle_TopRight = 3,
    EPortHandle_RightMiddle = 4,
    EPortHandle_BottomRight = 5,
    EPortHandle_BottomMiddle = 6,
    EPortHandle_BottomLeft = 7,
    EPortHandle_LeftMiddle = 8,
    EPortHandle_NotSet = 9
};

// Where a block's script lives. The script is looked for as a file only at the default.
enum EScriptLocation : int { EScriptLocation_Default = 0 };

// How a block refers to another block. Stored as a number.
enum ERefBlock : int { ERefBlock_None = 0, ERefBlock_One = 1, ERefBlock_Other = 2 };

// Kind of a connector. Stored as a number.
enum EConnectorType : int { EConnectorType_Default = 0, EConnectorType_Workflow = 1 };

// The node type codes: what IFCNode::GetNodeType answers and CFCNodeFactory::Create takes. The
// numbers go through files and host code.
enum eShapeType : int {
    eShapeType_None = 0,
    eShapeType_Terminator = 55,
    eShapeType_Process = 56,
    eShapeType_Block = 57,
    eShapeType_Decision = 58,
    eShapeType_RoundBlock = 59,
    eShapeType_SubProcessAlternate = 60,
    eShapeType_SubProcess = 61,
    eShapeType_Connector = 68,
    eShapeType_ProcessList = 69,
    eShapeType_FileNode = 70,
    eShapeType_Folder = 71,
    eShapeType_Variable = 72,
    eShapeType_LibraryFolder = 73,
    eShapeType_DefaultBlocks = 74,
    eShapeType_LibraryBlocks = 75,
    eShapeType_ExistingProcessBlocks = 76,
    eShapeType_MacroBlocks = 77,
    eShapeType_Code = 79,
    eShapeType_DataType = 80,
    eShapeType_DataTypeGroup = 81,
    eShapeType_DataTypeSubGroup = 82,
    eShapeType_FileType = 83,
    eShapeType_MimeType = 85,
    eShapeType_MimeTypeRoot = 86,
    eShapeType_Task = 150,
    eShapeType_UserTask = 151,
    eShapeType_AutomationTask = 152,
    eShapeType_DecisionTask = 153,
    eShapeType_StartState = 154,
    eShapeType_EndState = 155,
    eShapeType_Fork = 156,
    eShapeType_Join = 157,
    eShapeType_Mail = 158,
    eShapeType_ESB = 159,
    eShapeType_WorkflowProcess = 160,
    eShapeType_SuperState = 161,
    eShapeType_SubProcessLoop = 162,
    eShapeType_DecisionLoop = 163,
    eShapeType_SpawningLoop = 164,
    eShapeType_BasicSubProcess = 165,
    eShapeType_Application = 167,
    eShapeType_ApplicationGroup = 168,
    eShapeType_HelpModule = 170,
    eShapeType_APIHelp = 171,
    eShapeType_Package = 172,
    eShapeType_Favourites = 176,
    eShapeType_Document = 177,
    eShapeType_History = 178,
    eShapeType_CustomFolder = 179,
    eShapeType_Deployment = 182,
    eShapeType_Resource = 183
};
