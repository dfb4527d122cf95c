#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/foundation/TuTypes.h"
#include "flowmere/model/FCConnector.h"
#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCNodeList.h"
#include "flowmere/model/FCVariableList.h"

#include <memory>
#include <vector>

class CFCBlockData;
class CFCDocumentNode;
class CFCVariableData;
class IFCNode;

// The look of a block: pens, fill, font and rectangle. The rectangle is in hundredths of an inch on a page 1300 units
// high, Y growing downwards. Colours are plain 32-bit values.
class FLOWMERE_API CFCShape {
public:
    CFCShape() = default;
    CFCShape(CFCShape const& other) = default;
    CFCShape& operator=(CFCShape const& other) = default;
    virtual ~CFCShape();

    int GetLinePenType() { return LinePenType; }
    void SetLinePenType(int value) { LinePenType = value; }
    int GetLineThickness() { return LineThickness; }
    void SetLineThickness(int value) { LineThickness = value; }
    unsigned int GetColorLine() { return ColorLine; }
    void SetColorLine(unsigned int value) { ColorLine = value; }
    unsigned int GetColorFill() { return ColorFill; }
    void SetColorFill(unsigned int value) { ColorFill = value; }
    bool GetDrawBorder() { return DrawBorder; }
    void SetDrawBorder(bool value) { DrawBorder = value; }
    // Whether the shape is filled; the colour of the filling is ColorFill.
    bool GetFillColor() { return FillColor; }
    void SetFillColor(bool value) { FillColor = value; }
    // Valid until the name changes; null is stored as the empty text.
    wchar_t const* GetFontName() { return FontName; }
    void SetFontName(wchar_t const* name) { FontName = name; }
    int GetFontSize() { return FontSize; }
    void SetFontSize(int value) { FontSize = value; }
    bool GetBold() { return Bold; }
    void SetBold(bool value) { Bold = value; }
    bool GetItalics() { return Italics; }
    void SetItalics(bool value) { Italics = value; }
    unsigned int GetFormat() { return Format; }
    void SetFormat(unsigned int value) { Format = value; }
    unsigned int GetFontColor() { return FontColor; }
    void SetFontColor(unsigned int value) { FontColor = value; }
    int GetBlockKind() { return blockKind; }
    void SetBlockKind(int value) { blockKind = value; }
    bool GetBorderSet() { return BorderSet; }
    void SetBorderSet(bool value) { BorderSet = value; }
    bool GetVisible() { return Visible; }
    void SetVisible(bool value) { Visible = value; }
    bool GetFontSet() { return FontSet; }
    void SetFontSet(bool value) { FontSet = value; }
    bool GetStrikeOut() { return StrikeOut; }
    void SetStrikeOut(bool value) { StrikeOut = value; }
    bool GetUnderline() { return Underline; }
    void SetUnderline(bool value) { Underline = value; }
    int GetFontVersion() { return FontVersion; }
    void SetFontVersion(int value) { FontVersion = value; }

    // The rectangle itself, never null.
    TuRect* GetTuRect() { return &rect; }
    void SetTuRect(int left, int top, int right, int bottom);
    // Position and size in other units; all of them truncate toward zero, and values out of range end at its limit.
    // 72 units an inch, y growing downwards, y the upper edge.
    void SetTuRectInInch(double x, double y, double width, double height);
    // Stored units as they are.
    void SetTuRectInInchFlowmere(double x, double y, double width, double height);
    // 100 units an inch on a page 13 inches high, y growing upwards, y the lower edge.
    void SetTuRectInInchReverse(double x, double y, double width, double height);

    int LinePenType = 0;
    int LineThickness = 2;
    unsigned int ColorLine = 0;
    unsigned int ColorFill = 0xFFDFC6;
    bool DrawBorder = false;
    bool FillColor = true;
    TuString FontName;
    int FontSize = 0;
    bool Bold = true;
    bool Italics = false;
    unsigned int Format = 5;
    unsigned int FontColor = 0;
    TuRect rect;
    int blockKind = 0; // set by the constructors of nodes that take a kind; nothing reads it

    // Known from files, written by nobody.
    bool BorderSet = false; // a file specified the border
    bool Visible = false;
    bool FontSet = false; // a file specified the font
    bool StrikeOut = false;
    bool Underline = false;
    int FontVersion = 0;
};

// A named place where connectors may dock.
class FLOWMERE_API CFCPort {
public:
    CFCPort() = default;
    CFCPort(CFCPort const& other) = default;
    CFCPort& operator=(CFCPort const& other) = default;
    virtual ~CFCPort();

    bool IsEnabled() { return enabled; }
    void SetEnabled(bool value) { enabled = value; }
    // Valid until the name changes; null is stored as the empty text.
    wchar_t const* GetPortName() { return portName; }
    void SetPortName(wchar_t const* name) { portName = name; }

private:
    bool enabled = false;
    TuString portName;
};

// The three ports of a block: in, out and next, named "Left", "Right" and "Bottom" at first. A copy holds results of
// its source: the pointers of the two result arrays are copied as they stand.
class FLOWMERE_API CFCPortList {
public:
    CFCPortList();
    CFCPortList(CFCPortList const& other) = default;
    CFCPortList& operator=(CFCPortList const& other) = default;
    virtual ~CFCPortList();

    // Always 3.
    int GetSize() { return 3; }
    // The port of number 0 to 2; null outside.
    CFCPort* GetPort(int index);
    CFCPort* GetInPort() { return &ports[0]; }
    CFCPort* GetOutPort() { return &ports[1]; }
    CFCPort* GetNextPort() { return &ports[2]; }

    // Collect the enabled (disabled) ports in order and give the first, or null when there is none.
    CFCPort* GetEnabledPorts();
    CFCPort* GetDisabledPorts();
    // Entry 0 to 3 of what the last collection found; null behind the last, and outside.
    CFCPort* GetEnabledPort(int index);
    CFCPort* GetDisabledPort(int index);

private:
    CFCPort* collect(bool enabled, CFCPort* (&result)[4]);

    CFCPort ports[3];
    CFCPort* enabledPorts[4] = {};
    CFCPort* disabledPorts[4] = {};
};

// The content of a block: its ports, connectors, variables, script, identity and execution flags. It is the second base
// of every block, sub-process and process; it can stand alone, without a node around it.
//
// Getters of text give the stored text, valid until that field changes; setters copy, and store null as the empty text.
// The variables belong to this object and go with it; connectors and documents do not. Copies share variables,
// connectors and documents with their source; of objects that share their variables the first to go takes them along,
// and what one of them deletes is gone for all.
class FLOWMERE_API CFCBlockData : public CFCShape {
public:
    CFCBlockData();
    CFCBlockData(CFCBlockData const& other) = default;
    CFCBlockData& operator=(CFCBlockData const& other);
    ~CFCBlockData() override;

    // Adds a new variable (type code 72) at the tail of the list, with the block's node as its parent, and gives it.
    virtual CFCVariableData* CreateNewVariable();

    // The embedded objects, never null.
    CFCPortList* GetPortList() { return &portList; }
    // For a container: the connectors between its children.
    CFCConnectorList* GetConnectorList() { return &connectorList; }
    CFCVariableList* GetVariableList() { return variables.list(); }
    // The CFCDocumentNodes of the block.
    CFCNodeList* GetScriptList() { return &scriptList; }

    // The grip (EPortHandle) whose outgoing connector the flow follows; it selects the branch of a decision.
    int GetActiveHandle() { return activeHandle; }
    void SetActiveHandle(int handle) { activeHandle = handle; }

    // Identity

    // The block's identifier, which is the identifier of its node.
    wchar_t const* GetBlockID() { return blockId; }
    void SetBlockID(wchar_t const* id);
    // Identifier before a rename.
    wchar_t const* GetOldBlockID() { return oldBlockId; }
    void SetOldBlockID(wchar_t const* id);
    wchar_t const* GetBlockName() { return blockName; }
    void SetBlockName(wchar_t const* text) { blockName = text; }
    wchar_t const* GetFullBlockName() { return fullBlockName; }
    void SetFullBlockName(wchar_t const* text) { fullBlockName = text; }
    wchar_t const* GetToolTip() { return toolTip; }
    void SetToolTip(wchar_t const* text) { toolTip = text; }
    wchar_t const* GetDescription() { return description; }
    void SetDescription(wchar_t const* text) { description = text; }
    wchar_t const* GetHelpFile() { return helpFile; }
    void SetHelpFile(wchar_t const* text) { helpFile = text; }
    wchar_t const* GetRelativeImagePath() { return relativeImagePath; }
    void SetRelativeImagePath(wchar_t const* text) { relativeImagePath = text; }
    bool HasImage() { return hasImage; }
    void SetImage(bool value) { hasImage = value; }
    ERefBlock GetReferenceBlock() { return referenceBlock; }
    void SetReferenceBlock(ERefBlock value) { referenceBlock = value; }
    // The folder of the block: what was set, else the project path with the node's path behind it as folders. That is
    // worked out once and kept, whatever the block is called later. The empty text for data outside a node.
    wchar_t const* GetFolderPath();
    void SetFolderPath(wchar_t const* path) { folderPath = path; }

    // Script

    // True when the script text is not empty.
    bool HasScript() { return !scriptCode.IsEmpty(); }
    wchar_t const* GetScriptCode() { return scriptCode; }
    void SetScriptCode(wchar_t const* text) { scriptCode = text; }
    // The command form of the script.
    wchar_t const* GetCmdScriptCode() { return cmdScriptCode; }
    void SetCmdScriptCode(wchar_t const* text) { cmdScriptCode = text; }
    // Empties the script text and marks it as changed.
    void ClearContent();
    bool IsScriptChanged() { return scriptChanged; }
    void SetScriptChanged(bool value) { scriptChanged = value; }
    EScriptType GetScriptType() { return scriptType; }
    // Name of the script type, in a static text; empty for a value without a name.
    wchar_t const* GetScriptTypeS();
    void SetScriptType(EScriptType type) { scriptType = type; }
    void SetScriptType(int type) { scriptType = static_cast<EScriptType>(type); }
    // By name; an unknown name, or null, changes nothing.
    void SetScriptType(wchar_t const* name);
    // Where the script lives; it is looked for in a file at 0 only.
    EScriptLocation GetLocation() { return location; }
    void SetLocation(EScriptLocation value) { location = value; }
    // Dotted module name of the script. Setting it puts the location back to 0 and loads the script.
    wchar_t const* GetScriptName() { return scriptName; }
    void SetScriptName(wchar_t const* name);
    // Brings the script name into line with the script's path, and gives the final name, which is a text of its own.
    wchar_t const* GetScriptNameFinal();
    void SetScriptNameFinal(wchar_t const* text) { scriptNameFinal = text; }
    wchar_t const* GetScriptFileName() { return scriptFileName; }
    void SetScriptFileName(wchar_t const* text) { scriptFileName = text; }
    wchar_t const* GetScriptLocation() { return scriptLocation; }
    void SetScriptLocation(wchar_t const* text) { scriptLocation = text; }
    // Absolute path of the script file.
    wchar_t const* GetFullScriptFileName() { return fullScriptFileName; }
    void SetFullScriptFileName(wchar_t const* path) { fullScriptFileName = path; }
    // The same, and brings the script name into line with it.
    void ReSetFullScriptFileName(wchar_t const* path);
    wchar_t const* GetScriptDir() { return scriptDir; }
    void SetScriptDir(wchar_t const* text) { scriptDir = text; }
    wchar_t const* GetCOMInteface() { return comInterface; }
    void SetCOMInteface(wchar_t const* text) { comInterface = text; }
    wchar_t const* GetCOMCommand() { return comCommand; }
    void SetCOMCommand(wchar_t const* text) { comCommand = text; }
    wchar_t const* GetExecuteMethod() { return executeMethod; }
    void SetExecuteMethod(wchar_t const* text) { executeMethod = text; }
    wchar_t const* GetSaveRestoreScript() { return saveRestoreScript; }
    void SetSaveRestoreScript(wchar_t const* text) { saveRestoreScript = text; }

    // Reads the script file when there is no text yet: by script name among the local, then among the macro files, at
    // location 0. Without a text after that, or with one that counts as changed, goes on to LoadGuiScript. A file that
    // cannot be read leaves the text as it was.
    void LoadScript();
    // Reads the script file whatever text there is; an empty script name becomes the identifier, and an empty path the
    // local path of the script name, whether such a file exists or not.
    void LoadGuiScript();
    // Derives the script name from the script's path: the part below the user path, or else below the base path, with
    // dots between folders and without the extension. A path below neither leaves the name as it is.
    void SetRelativeName();
    // SetRelativeName, then the script name with dots only.
    wchar_t const* GetRelativeName();
    // Writes the script, or its command form, to the script's path, if there is one.
    void SaveScriptFile(bool command);
    // The same to another path. A file that cannot be written is passed over in silence.
    void SaveScript(wchar_t const* path, bool command);

    // Adds a new document (type code 177) at the tail of the script list, with the block's node as its parent.
    CFCDocumentNode* CreateNewScript();

    // Execution

    void SetExecutionStateType(EExecutionStateType state) { executionState = state; }
    // The stored state. For a basic sub-process (165) and a workflow process (160) the state of all their descendants
    // instead: "Failed" when any failed, else "WaitForResource" when any waits, else, with any pending, "Executing" or
    // "Pending" by whether any is executed, else "Executed".
    EExecutionStateType GetExecutionStateType();

    bool GetUndoFlag() { return undoFlag; }
    void SetUndoFlag(bool value) { undoFlag = value; }
    bool GetSkipFlag() { return skipFlag; }
    void SetSkipFlag(bool value) { skipFlag = value; }
    // The flow stops at a block with this flag.
    bool GetStopFlag() { return stopFlag; }
    void SetStopFlag(bool value) { stopFlag = value; }
    bool GetExecutedFlag() { return executedFlag; }
    void SetExecutedFlag(bool value) { executedFlag = value; }
    bool GetExecutingFlag() { return executingFlag; }
    void SetExecutingFlag(bool value) { executingFlag = value; }
    // Debugging stop in the script.
    bool GetBreakPointFlag() { return breakPointFlag; }
    void SetBreakPointFlag(bool value) { breakPointFlag = value; }
    bool GetShouldRun() { return shouldRun; }
    void SetShouldRun(bool value) { shouldRun = value; }

    // Always false here.
    bool IsMacroBlock() { return false; }
    bool Save() { return false; }

    // Variables

    // The first variable of exactly this name, or null. The text is a plain name, never a path.
    CFCVariableData* FindVariable(wchar_t const* name);
    // Remove and destroy one variable, or all of them. Always true; a variable that is no element is left alone.
    bool DeleteVariable(IFCNode* variable);
    bool DeleteVariables();
    void UnMarkVariables();
    // Put a prefix in front of every link path that is not empty; make links of scoped variables; bind all links.
    void AddVariablePrefix(wchar_t const* prefix);
    void ConvertToLinkedVariable();
    void ResolveVariables();
    // Adds a clone of each variable of `source` to `target` and binds its link. False when either is null or has no
    // variables list, or when both are the same.
    static bool CopyVariables(IFCNode* source, IFCNode* target);

    // Connectors

    // Adds a connector at the tail, unless one between the same two blocks is there that is not deleted. The list then
    // holds it; a connector that was not added stays with the caller. Null is passed over.
    void AddConnector(CFCConnector* connector);
    // Remove and destroy one connector, which must be an element, or all of them. Always true.
    bool DeleteConnector(IFCNode* connector);
    bool DeleteConnectors();
    // Moves the connectors of another list to the end of this one. The other list keeps its end pointers: it must not
    // be used any more as a list of its own.
    void SetConnectorList(CFCConnectorList* list);

    // True when name, stored state, tool tip and description agree; false for null.
    bool IsEqual(CFCBlockData* other);
    // Copies what identifies a block: script type, description, tool tip, name, identifiers, script name and path,
    // ports, image and the run switch; neither lists nor script text. Nothing happens when either is null.
    static void Copy(CFCBlockData* source, CFCBlockData* target);
    void CopyFrom(CFCBlockData* source);

private:
    // The variables with their lifetime. Copies share the elements, and know of each other: what one deletes, the
    // others must not touch any more.
    class OwnedVariables {
    public:
        OwnedVariables() = default;
        OwnedVariables(OwnedVariables const& other);
        OwnedVariables& operator=(OwnedVariables const& other);
        ~OwnedVariables();

        CFCVariableList* list() { return &m_list; }
        void deleteOne(IFCNode* variable);
        void deleteAll();

    private:
        using Holders = std::vector<OwnedVariables const*>;

        void share(OwnedVariables const& other);
        void leave();
        void adopt(OwnedVariables const& holder);
        bool contains(IFCNode* node);
        void forget() const;
        void takeEnds(CFCVariableList const& list) const;

        mutable CFCVariableList m_list;
        mutable std::shared_ptr<Holders> m_holders; // only where a copy was made
    };

    void loadScriptFile();
    void loadGuiScript(TuString const& missing);

    CFCPortList portList;
    int activeHandle = 6;
    CFCConnectorList connectorList;
    CFCConnectorList spareConnectorList; // built, copied and destroyed, no other use
    OwnedVariables variables;
    TuString relativeImagePath;
    EScriptLocation location = static_cast<EScriptLocation>(0);
    bool scriptChanged = false;
    TuString blockId;
    TuString oldBlockId;
    TuString blockName;
    TuString scriptCode;
    TuString cmdScriptCode;
    TuString fullBlockName;
    TuString scriptFileName;
    TuString scriptName;
    TuString scriptNameFinal;
    TuString scriptLocation;
    TuString fullScriptFileName;
    TuString toolTip;
    TuString description;
    TuString helpFile;
    TuString comInterface;
    TuString comCommand;
    TuString executeMethod;
    TuString saveRestoreScript;
    TuString scriptDir;
    EScriptType scriptType = static_cast<EScriptType>(0);
    EExecutionStateType executionState = static_cast<EExecutionStateType>(0);
    TuString folderPath;
    bool hasImage = false;
    bool undoFlag = false;
    bool skipFlag = false;
    bool stopFlag = false;
    bool executedFlag = false;
    bool executingFlag = false;
    bool breakPointFlag = false;
    ERefBlock referenceBlock = static_cast<ERefBlock>(0);
    CFCNodeList scriptList;
    bool shouldRun = true;
};
