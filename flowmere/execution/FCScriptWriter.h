// CFCScriptWriter: generates the three Python files of a task block.
#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"

#include <iosfwd>

class CFCBlockData;
class CFCVariableList;
class IFCNode;

// Which IsValidState goes into the main file; any other value writes none, so that the class keeps
// the one of the companion.
enum eModalRequired : int { eModalPreModel = 1, eModalResultModel = 2 };

// Writes, for a block with the id `Name` in a folder: Name.py, the user's class; NameBlock.py, its
// base with variables and accessors, which is rewritten at every save; and an empty __init__.py.
// Order of calls: SetNode, SetFolderName, the optional setters, then a generator. The writer owns
// none of the objects it is given. Files that cannot be opened are skipped without a message.
class FLOWMERE_API CFCScriptWriter {
public:
    CFCScriptWriter() = default;
    CFCScriptWriter(CFCScriptWriter const&) = default;
    CFCScriptWriter& operator=(CFCScriptWriter const&) = default;
    virtual ~CFCScriptWriter();

    // Takes id, block data and variables of the node; null leaves what was taken before.
    void SetNode(IFCNode* node);
    // True when block data and variable list are there; without them the generators do nothing.
    bool IsValid() const;
    // Sets the three paths below the folder, from the class name known by then.
    void SetFolderName(wchar_t const* folder);
    void SetMainFileName(wchar_t const* path);
    void SetSubFileName(wchar_t const* path);
    // Text put behind the fixed methods of the main file, as it stands.
    void SetUserCode(wchar_t const* text);
    void SetModalType(eModalRequired value);
    void SetModalType(int value) { SetModalType(static_cast<eModalRequired>(value)); }

    // The main file, the companion and the package marker; the flag changes nothing. An existing
    // main file is overwritten: a caller that regenerates hands in what the user wrote.
    void GenerateAllFiles(bool flag);
    void GenerateMainFile();
    void GenerateSubFile(bool flag);
    void GenerateInitFile();

    // One line of a template with the four current values put in, with a newline when asked.
    void InsertLine(std::ostream& stream, wchar_t const* text, bool newLine);
    // A template, line by line.
    void InsertLines(std::ostream& stream, wchar_t const* text);
    // The text of that mode (1 initial values, 2 accessors, 3 pulls, 4 pushes) for each named
    // variable. False without a list.
    bool InsertVariableList(std::ostream& stream, int mode, bool flag);

private:
    void SetCurrentVariable(class CFCVariableData* variable);
    wchar_t const* ChooseText(int mode, int dataType) const;

    eModalRequired m_eModalType = eModalPreModel;
    CFCVariableList* m_pVariableList = nullptr;
    IFCNode* m_pNode = nullptr;
    CFCBlockData* m_pBlockData = nullptr;
    int m_bIsArray = 0;
    TuString m_strVarName;
    TuString m_strDataType;
    TuString m_strDefault;
    TuString m_strClassName;
    TuString m_strMainFile;
    TuString m_strSubFile;
    TuString m_strInitFile;
    TuString m_strFolder;
    TuString m_strUserCode;
};
