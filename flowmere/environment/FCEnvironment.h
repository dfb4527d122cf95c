#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"

// Kind of a script; the values are those of the model's enumeration of this name.
enum EScriptType : int;

// Where every file lies. The host sets the root folders once, in any order, before the first load; everybody else asks
// here and never builds a path. Paths are composed with the separators told below, whatever the system; they are
// mapped to the system's form when a file is opened.
//
// Every getter that gives a text keeps it in a place of its own: the pointer is valid until the same getter runs
// again. No getter fails. Null arguments read as the empty text. Three getters give null where told, no other does.
//
// "Base" below is the base path, or when that is empty the resource path, or when that is empty too the empty text.
// "User" is the user path, or when that is empty the base path alone.
class FLOWMERE_API CFCEnvironment {
public:
    // Roots

    static void SetBasePath(wchar_t const* path);
    static void SetMacroBasePath(wchar_t const* path);
    static void SetBinPath(wchar_t const* path);
    static void SetResourcePath(wchar_t const* path);
    static void SetProjectPath(wchar_t const* path);
    // Creates the folder with its missing parents, then stores the path, whether that succeeded or not.
    static void SetUserPath(wchar_t const* path);
    // Without effect, as is SetSDKBasePath.
    static void SetDirectoryTreePath(wchar_t const* path);
    static void SetSDKBasePath(wchar_t const* path);

    // Base.
    static wchar_t const* GetBasePath();
    // Base too.
    static wchar_t const* GetSDKBasePath();
    // User.
    static wchar_t const* GetUserPath();
    static wchar_t const* GetBinPath();
    static wchar_t const* GetResourcePath();
    // Both give the root folder of the macro scripts.
    static wchar_t const* GetMacroBasePath();
    static wchar_t const* GetMacroFolder();
    static wchar_t const* GetProjectPath();

    // Well-known files: root, backslash, name

    // Base and "process.lst".
    static wchar_t const* GetProcessListFilePath();
    // Base and "process_test.lst".
    static wchar_t const* GetProcessListFilePathTest();
    // Base and "BPMProcess.lst".
    static wchar_t const* GetBPMProcessListFilePath();
    // Base and "DataTypes.xml".
    static wchar_t const* GetDataTypeFilePath();
    // Base and "Hints.xml".
    static wchar_t const* GetHintsFilePath();
    // Base and "CodeLibrary.xml".
    static wchar_t const* GetCodeLibraryFilePath();
    // Base and "APIHelp.xml".
    static wchar_t const* GetAPIHelpFilePath();
    // Base and "Manifest.mf".
    static wchar_t const* GetManifestFilePath();
    // Base and "ProcessLib.xml".
    static wchar_t const* GetProcessLibFilePath();
    // Base and "ListLibrary.xml".
    static wchar_t const* GetLibraryFilePath();
    // The base path alone and "FileTypes.xml"; null when the base path is empty.
    static wchar_t const* GetFileTypesPath();
    // The base path alone and "MimeTypes.xml"; null when the base path is empty.
    static wchar_t const* GetMimeTypesPath();
    // User and "FileTypes.xml".
    static wchar_t const* GetUserFileTypesPath();
    // User and "MimeTypes.xml".
    static wchar_t const* GetUserMimeTypesPath();
    // User and "BPMProcess.lst" when `bpm` is true, else "process.lst".
    static wchar_t const* GetUserProcessListPath(bool bpm);

    // Folders

    // The base path alone and "BPM".
    static wchar_t const* GetBPMBasePath();
    // Base, "BPM", "ApplicationConfiguration".
    static wchar_t const* GetApplicationsPath();
    // The file "processdefinition.xml" there.
    static wchar_t const* GetApplicationsLibFilePath();
    // User, "BPM", "ApplicationConfiguration".
    static wchar_t const* GetUserApplicationsPath();
    // The file "processdefinition.xml" there.
    static wchar_t const* GetUserApplicationsLibFilePath();
    // Resource path, "BrindleBuilder", "icons"; null when the resource path is empty.
    static wchar_t const* GetIconPath();
    // Resource path, the wildcard "\*.*", "SCM_DIR_STRUCT" and the wildcard again.
    static wchar_t const* GetDirectoryTreePath();

    // Project paths

    // `folder`, "/", `name` and ".bpt"; the flag plays no part.
    static wchar_t const* GetProjectPath(wchar_t const* folder, wchar_t const* name, bool flag);
    // The relative path of `folder`, a backslash when that is not empty, `name` and ".bpt"; the flag plays no part.
    static wchar_t const* GetRelativeProjectPath(wchar_t const* folder, wchar_t const* name, bool flag);
    // `folder`, "/" and "processdefinition.xml".
    static wchar_t const* GetBPMProjectPath(wchar_t const* folder);
    // The relative path of `folder`, "/" and "processdefinition.xml"; name and flag play no part.
    static wchar_t const* GetBPMRelativeProjectPath(wchar_t const* folder, wchar_t const* name, bool flag);

    // Scripts

    // `folder`, "Script", `name` and the extension of the type: "py" for 0, "java" for 9, "script" for all others.
    static wchar_t const* GetScriptPath(wchar_t const* folder, wchar_t const* name, EScriptType type);
    // Project path, the package with backslashes for dots, "scripts", `name` and ".py".
    static wchar_t const* GetBPMScriptPath(wchar_t const* package, wchar_t const* name);
    // Macro path, `name` with backslashes for dots, and ".py".
    static wchar_t const* GetMacroFilePath(wchar_t const* name);
    // GetFullPath of `name`, followed by ".py" or "Block.py".
    static wchar_t const* GetFullPathPy(wchar_t const* name);
    static wchar_t const* GetFullPathBlockPy(wchar_t const* name);

    // Search, the user's folder first

    // The file `name` below User when it is there, else the path below Base, there or not.
    static wchar_t const* GetFullPath(wchar_t const* name);
    // GetFullPath of `name` followed by ".jpg" when that is there, else the path below Base, there or not. The search
    // of GetFullPath sees the name without extension.
    static wchar_t const* GetImageFullPath(wchar_t const* name);
    // File of a path or of a dotted module name. A file that is there and a drive path come back as they are; anything
    // else has its dots turned to backslashes and ".py" appended, and lies below User when it is there, else below
    // Base.
    static wchar_t const* GetLocalFilePath(wchar_t const* name);

    // True when the file of GetLocalFilePath, of GetMacroFilePath, or of the path itself is there.
    static bool IsLocalFileExist(wchar_t const* name);
    static bool IsMacroFileExist(wchar_t const* name);
    static bool IsFileExist(wchar_t const* path);

    // Relative paths and script names

    // What follows the folder word "BrindleExec" and one character, with slashes for backslashes; the empty text when
    // the word ends the path; the path unchanged when the word does not occur.
    static wchar_t const* GetRelativePath(wchar_t const* path);
    // Dotted module name of a script file: the relative path without its extension, dots for separators. The empty
    // text when there is no extension; a file outside the tree comes back as it is.
    static wchar_t const* GetScriptNameFromFileName(wchar_t const* file);
    // Last part of the dotted module name. Without a dot there the answer of the previous call comes back.
    static wchar_t const* GetBlockNameFromFileName(wchar_t const* file);

    // Reads a whole file as 8-bit text, up to the first zero byte. False, with `out` untouched, for null, the empty
    // path and a file that cannot be read.
    static bool LoadFile(wchar_t const* path, TuString& out);

    // The roots themselves, empty until the host sets them. They are never destroyed.
    static TuString& m_strBasePath;      // the installed, shared data folder
    static TuString& m_strMacroBasePath; // root folder of macro scripts
    static TuString& m_strBinPath;       // the folder of the executables
    static TuString& m_strResourcePath;  // the installed resources folder; second choice for Base
    static TuString& m_strProjectPath;   // the folder of the open project
    static TuString& m_strUserPath;      // the user's private folder, may stay empty
};
