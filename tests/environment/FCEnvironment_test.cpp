#include "flowmere/environment/FCEnvironment.h"

#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

#include <filesystem>
#include <string>
#include <type_traits>

namespace fs = std::filesystem;
using flowmere::test::narrow;
using flowmere::test::wideWithBackslashes;

namespace {

using Getter = wchar_t const* (*)();

class FCEnvironment : public testing::Test {
protected:
    static void setAllRoots() {
        CFCEnvironment::SetBasePath(L"B");
        CFCEnvironment::SetMacroBasePath(L"M");
        CFCEnvironment::SetBinPath(L"X");
        CFCEnvironment::SetResourcePath(L"R");
        CFCEnvironment::SetProjectPath(L"P");
        // Not by its setter, which would create the folder.
        CFCEnvironment::m_strUserPath = L"U";
    }

    // Base and user root as folders on disk, in the form in which hosts hand them in.
    void setFolders() {
        fs::create_directories(scratch / "base");
        CFCEnvironment::SetBasePath(wideWithBackslashes(scratch / "base"));
        CFCEnvironment::SetUserPath(wideWithBackslashes(scratch / "user"));
        base = narrow(wideWithBackslashes(scratch / "base"));
        user = narrow(wideWithBackslashes(scratch / "user"));
    }

    flowmere::test::EnvironmentGuard guard;
    flowmere::test::ScratchFolder scratch;
    std::string base;
    std::string user;
};

struct PathCase {
    char const* name;
    Getter getter;
    char const* allRoots;
    char const* onlyResource;
    char const* onlyBase;
    char const* noRoots;
};

PathCase const kPaths[] = {
    {"GetBasePath", CFCEnvironment::GetBasePath, "B", "R", "B", ""},
    {"GetSDKBasePath", CFCEnvironment::GetSDKBasePath, "B", "R", "B", ""},
    {"GetUserPath", CFCEnvironment::GetUserPath, "U", "", "B", ""},
    {"GetBinPath", CFCEnvironment::GetBinPath, "X", "", "", ""},
    {"GetResourcePath", CFCEnvironment::GetResourcePath, "R", "R", "", ""},
    {"GetMacroBasePath", CFCEnvironment::GetMacroBasePath, "M", "", "", ""},
    {"GetMacroFolder", CFCEnvironment::GetMacroFolder, "M", "", "", ""},
    {"GetProjectPath", CFCEnvironment::GetProjectPath, "P", "", "", ""},
    {"GetProcessListFilePath", CFCEnvironment::GetProcessListFilePath, "B\\process.lst", "R\\process.lst",
     "B\\process.lst", "\\process.lst"},
    {"GetProcessListFilePathTest", CFCEnvironment::GetProcessListFilePathTest, "B\\process_test.lst",
     "R\\process_test.lst", "B\\process_test.lst", "\\process_test.lst"},
    {"GetBPMProcessListFilePath", CFCEnvironment::GetBPMProcessListFilePath, "B\\BPMProcess.lst", "R\\BPMProcess.lst",
     "B\\BPMProcess.lst", "\\BPMProcess.lst"},
    {"GetDataTypeFilePath", CFCEnvironment::GetDataTypeFilePath, "B\\DataTypes.xml", "R\\DataTypes.xml",
     "B\\DataTypes.xml", "\\DataTypes.xml"},
    {"GetHintsFilePath", CFCEnvironment::GetHintsFilePath, "B\\Hints.xml", "R\\Hints.xml", "B\\Hints.xml",
     "\\Hints.xml"},
    {"GetCodeLibraryFilePath", CFCEnvironment::GetCodeLibraryFilePath, "B\\CodeLibrary.xml", "R\\CodeLibrary.xml",
     "B\\CodeLibrary.xml", "\\CodeLibrary.xml"},
    {"GetAPIHelpFilePath", CFCEnvironment::GetAPIHelpFilePath, "B\\APIHelp.xml", "R\\APIHelp.xml", "B\\APIHelp.xml",
     "\\APIHelp.xml"},
    {"GetManifestFilePath", CFCEnvironment::GetManifestFilePath, "B\\Manifest.mf", "R\\Manifest.mf", "B\\Manifest.mf",
     "\\Manifest.mf"},
    {"GetProcessLibFilePath", CFCEnvironment::GetProcessLibFilePath, "B\\ProcessLib.xml", "R\\ProcessLib.xml",
     "B\\ProcessLib.xml", "\\ProcessLib.xml"},
    {"GetLibraryFilePath", CFCEnvironment::GetLibraryFilePath, "B\\ListLibrary.xml", "R\\ListLibrary.xml",
     "B\\ListLibrary.xml", "\\ListLibrary.xml"},
    {"GetFileTypesPath", CFCEnvironment::GetFileTypesPath, "B\\FileTypes.xml", "(null)", "B\\FileTypes.xml", "(null)"},
    {"GetMimeTypesPath", CFCEnvironment::GetMimeTypesPath, "B\\MimeTypes.xml", "(null)", "B\\MimeTypes.xml", "(null)"},
    {"GetUserFileTypesPath", CFCEnvironment::GetUserFileTypesPath, "U\\FileTypes.xml", "\\FileTypes.xml",
     "B\\FileTypes.xml", "\\FileTypes.xml"},
    {"GetUserMimeTypesPath", CFCEnvironment::GetUserMimeTypesPath, "U\\MimeTypes.xml", "\\MimeTypes.xml",
     "B\\MimeTypes.xml", "\\MimeTypes.xml"},
    {"GetBPMBasePath", CFCEnvironment::GetBPMBasePath, "B\\BPM", "\\BPM", "B\\BPM", "\\BPM"},
    {"GetApplicationsPath", CFCEnvironment::GetApplicationsPath, "B\\BPM\\ApplicationConfiguration",
     "R\\BPM\\ApplicationConfiguration", "B\\BPM\\ApplicationConfiguration", "\\BPM\\ApplicationConfiguration"},
    {"GetApplicationsLibFilePath", CFCEnvironment::GetApplicationsLibFilePath,
     "B\\BPM\\ApplicationConfiguration\\processdefinition.xml",
     "R\\BPM\\ApplicationConfiguration\\processdefinition.xml",
     "B\\BPM\\ApplicationConfiguration\\processdefinition.xml",
     "\\BPM\\ApplicationConfiguration\\processdefinition.xml"},
    {"GetUserApplicationsPath", CFCEnvironment::GetUserApplicationsPath, "U\\BPM\\ApplicationConfiguration",
     "\\BPM\\ApplicationConfiguration", "B\\BPM\\ApplicationConfiguration", "\\BPM\\ApplicationConfiguration"},
    {"GetUserApplicationsLibFilePath", CFCEnvironment::GetUserApplicationsLibFilePath,
     "U\\BPM\\ApplicationConfiguration\\processdefinition.xml",
     "\\BPM\\ApplicationConfiguration\\processdefinition.xml",
     "B\\BPM\\ApplicationConfiguration\\processdefinition.xml",
     "\\BPM\\ApplicationConfiguration\\processdefinition.xml"},
    {"GetIconPath", CFCEnvironment::GetIconPath, "R\\BrindleBuilder\\icons", "R\\BrindleBuilder\\icons", "(null)",
     "(null)"},
    {"GetDirectoryTreePath", CFCEnvironment::GetDirectoryTreePath, "R\\*.*SCM_DIR_STRUCT\\*.*",
     "R\\*.*SCM_DIR_STRUCT\\*.*", "\\*.*SCM_DIR_STRUCT\\*.*", "\\*.*SCM_DIR_STRUCT\\*.*"},
};

} // namespace

// Tables

TEST_F(FCEnvironment, PathsWithAllRoots) {
    setAllRoots();
    for (PathCase const& one : kPaths) {
        EXPECT_EQ(narrow(one.getter()), one.allRoots) << one.name;
    }
}

TEST_F(FCEnvironment, PathsWithTheResourceFolderAlone) {
    CFCEnvironment::SetResourcePath(L"R");
    for (PathCase const& one : kPaths) {
        EXPECT_EQ(narrow(one.getter()), one.onlyResource) << one.name;
    }
}

TEST_F(FCEnvironment, PathsWithTheBaseFolderAlone) {
    CFCEnvironment::SetBasePath(L"B");
    for (PathCase const& one : kPaths) {
        EXPECT_EQ(narrow(one.getter()), one.onlyBase) << one.name;
    }
}

TEST_F(FCEnvironment, PathsWithoutAnyRoot) {
    for (PathCase const& one : kPaths) {
        EXPECT_EQ(narrow(one.getter()), one.noRoots) << one.name;
    }
}

TEST_F(FCEnvironment, UserProcessListFollowsTheKind) {
    setAllRoots();
    EXPECT_STREQ(CFCEnvironment::GetUserProcessListPath(false), L"U\\process.lst");
    EXPECT_STREQ(CFCEnvironment::GetUserProcessListPath(true), L"U\\BPMProcess.lst");
    CFCEnvironment::m_strUserPath.Empty();
    EXPECT_STREQ(CFCEnvironment::GetUserProcessListPath(false), L"B\\process.lst");
    EXPECT_STREQ(CFCEnvironment::GetUserProcessListPath(true), L"B\\BPMProcess.lst");
}

TEST_F(FCEnvironment, ProjectPathsUseTheirOwnSeparators) {
    struct Case {
        wchar_t const* folder;
        wchar_t const* name;
        wchar_t const* project;
        wchar_t const* relative;
        wchar_t const* bpm;
        wchar_t const* bpmRelative;
    };
    Case const cases[] = {
        {L"C:\\BrindleExec\\a\\b", L"n", L"C:\\BrindleExec\\a\\b/n.bpt", L"a/b\\n.bpt",
         L"C:\\BrindleExec\\a\\b/processdefinition.xml", L"a/b/processdefinition.xml"},
        {L"C:\\BrindleExec", L"n", L"C:\\BrindleExec/n.bpt", L"n.bpt", L"C:\\BrindleExec/processdefinition.xml",
         L"/processdefinition.xml"},
        {L"C:\\other", L"n", L"C:\\other/n.bpt", L"C:\\other\\n.bpt", L"C:\\other/processdefinition.xml",
         L"C:\\other/processdefinition.xml"},
        {L"", L"", L"/.bpt", L".bpt", L"/processdefinition.xml", L"/processdefinition.xml"},
        {nullptr, nullptr, L"/.bpt", L".bpt", L"/processdefinition.xml", L"/processdefinition.xml"},
    };
    for (Case const& one : cases) {
        for (bool const flag : {false, true}) {
            EXPECT_STREQ(CFCEnvironment::GetProjectPath(one.folder, one.name, flag), one.project);
            EXPECT_STREQ(CFCEnvironment::GetRelativeProjectPath(one.folder, one.name, flag), one.relative);
            EXPECT_STREQ(CFCEnvironment::GetBPMRelativeProjectPath(one.folder, L"ignored", flag), one.bpmRelative);
        }
        EXPECT_STREQ(CFCEnvironment::GetBPMProjectPath(one.folder), one.bpm);
    }
}

TEST_F(FCEnvironment, ScriptPathFollowsTheBareNumberOfTheType) {
    for (int type = -1; type <= 12; ++type) {
        char const* const extension = type == 0 ? "py" : type == 9 ? "java" : "script";
        EXPECT_EQ(narrow(CFCEnvironment::GetScriptPath(L"f", L"n", static_cast<EScriptType>(type))),
                  std::string("f\\Script\\n.") + extension);
    }
    static_assert(std::is_same_v<std::underlying_type_t<EScriptType>, int>);
}

TEST_F(FCEnvironment, ScriptPathsTurnDotsIntoBackslashes) {
    setAllRoots();
    EXPECT_STREQ(CFCEnvironment::GetBPMScriptPath(L"a.b.c", L"n.m"), L"P\\a\\b\\c\\scripts\\n.m.py");
    EXPECT_STREQ(CFCEnvironment::GetBPMScriptPath(nullptr, nullptr), L"P\\\\scripts\\.py");
    EXPECT_STREQ(CFCEnvironment::GetMacroFilePath(L"a.b"), L"M\\a\\b.py");
    EXPECT_STREQ(CFCEnvironment::GetMacroFilePath(nullptr), L"M\\.py");
}

// Roots

TEST_F(FCEnvironment, RootsAreEmptyUntilSet) {
    for (TuString const* const root :
         {&CFCEnvironment::m_strBasePath, &CFCEnvironment::m_strMacroBasePath, &CFCEnvironment::m_strBinPath,
          &CFCEnvironment::m_strResourcePath, &CFCEnvironment::m_strProjectPath, &CFCEnvironment::m_strUserPath}) {
        EXPECT_STREQ(*root, L"");
    }
}

TEST_F(FCEnvironment, SettersStoreTheirText) {
    setAllRoots();
    EXPECT_STREQ(CFCEnvironment::m_strBasePath, L"B");
    EXPECT_STREQ(CFCEnvironment::m_strMacroBasePath, L"M");
    EXPECT_STREQ(CFCEnvironment::m_strBinPath, L"X");
    EXPECT_STREQ(CFCEnvironment::m_strResourcePath, L"R");
    EXPECT_STREQ(CFCEnvironment::m_strProjectPath, L"P");
    CFCEnvironment::SetBasePath(nullptr);
    EXPECT_STREQ(CFCEnvironment::m_strBasePath, L"");
}

TEST_F(FCEnvironment, ARootSetToItsOwnGetterStays) {
    setAllRoots();
    CFCEnvironment::SetBasePath(CFCEnvironment::GetBasePath());
    CFCEnvironment::SetBinPath(CFCEnvironment::m_strBinPath);
    EXPECT_STREQ(CFCEnvironment::GetBasePath(), L"B");
    EXPECT_STREQ(CFCEnvironment::GetBinPath(), L"X");
}

TEST_F(FCEnvironment, SetUserPathCreatesTheFolder) {
    TuString const path = wideWithBackslashes(scratch / "users/me/data");
    CFCEnvironment::SetUserPath(path);
    EXPECT_TRUE(fs::is_directory(scratch / "users/me/data"));
    EXPECT_STREQ(CFCEnvironment::m_strUserPath, path);
}

TEST_F(FCEnvironment, SetUserPathStoresAPathThatCannotBeCreated) {
    scratch.write("taken", "");
    CFCEnvironment::SetUserPath(scratch.text("taken"));
    EXPECT_STREQ(CFCEnvironment::m_strUserPath, scratch.text("taken"));
    CFCEnvironment::SetUserPath(L"");
    EXPECT_STREQ(CFCEnvironment::m_strUserPath, L"");
    CFCEnvironment::SetUserPath(nullptr);
    EXPECT_STREQ(CFCEnvironment::m_strUserPath, L"");
}

TEST_F(FCEnvironment, SetSDKBasePathAndSetDirectoryTreePathDoNothing) {
    setAllRoots();
    CFCEnvironment::SetSDKBasePath(L"x");
    CFCEnvironment::SetDirectoryTreePath(L"y");
    EXPECT_STREQ(CFCEnvironment::GetSDKBasePath(), L"B");
    EXPECT_STREQ(CFCEnvironment::GetDirectoryTreePath(), L"R\\*.*SCM_DIR_STRUCT\\*.*");
    EXPECT_FALSE(fs::exists("y"));
}

TEST_F(FCEnvironment, APathHandedOutSurvivesOtherGettersAndChangesOfTheRoot) {
    setAllRoots();
    wchar_t const* const hints = CFCEnvironment::GetHintsFilePath();
    wchar_t const* const basePath = CFCEnvironment::GetBasePath();
    wchar_t const* const full = CFCEnvironment::GetFullPath(L"one");
    wchar_t const* const relative = CFCEnvironment::GetRelativePath(L"BrindleExec\\one");
    CFCEnvironment::SetBasePath(L"changed");
    CFCEnvironment::GetManifestFilePath();
    CFCEnvironment::GetFullPathPy(L"two");
    CFCEnvironment::GetImageFullPath(L"two");
    CFCEnvironment::GetScriptNameFromFileName(L"BrindleExec\\two.py");
    CFCEnvironment::GetRelativeProjectPath(L"BrindleExec\\two", L"n", false);
    EXPECT_STREQ(hints, L"B\\Hints.xml");
    EXPECT_STREQ(basePath, L"B");
    EXPECT_STREQ(full, L"B\\one");
    EXPECT_STREQ(relative, L"one");
    EXPECT_STREQ(CFCEnvironment::GetHintsFilePath(), L"changed\\Hints.xml");
}

TEST_F(FCEnvironment, GettersTakeTheirOwnResult) {
    setAllRoots();
    EXPECT_STREQ(CFCEnvironment::GetFullPathPy(CFCEnvironment::GetFullPathPy(L"a")), L"B\\B\\a.py.py");
    EXPECT_STREQ(CFCEnvironment::GetFullPath(CFCEnvironment::GetFullPath(L"a")), L"B\\B\\a");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(CFCEnvironment::GetLocalFilePath(L"a")), L"B\\B\\a\\py.py");
    EXPECT_STREQ(CFCEnvironment::GetRelativePath(CFCEnvironment::GetRelativePath(L"x\\BrindleExec\\a\\b")), L"a/b");
    EXPECT_STREQ(CFCEnvironment::GetProjectPath(L"f", CFCEnvironment::GetProjectPath(L"f", L"n", false), false),
                 L"f/f/n.bpt.bpt");
}

// Search

TEST_F(FCEnvironment, FullPathPrefersTheUsersFile) {
    setFolders();
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPath(L"macro")), base + "\\macro");
    scratch.write("user/macro", "");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPath(L"macro")), user + "\\macro");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPathPy(L"macro")), user + "\\macro.py");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPathBlockPy(L"macro")), user + "\\macroBlock.py");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPathPy(L"other")), base + "\\other.py");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPathBlockPy(L"other")), base + "\\otherBlock.py");
}

TEST_F(FCEnvironment, FullPathTakesNoFolderForAFile) {
    setFolders();
    fs::create_directories(scratch / "user/macro");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPath(L"macro")), base + "\\macro");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPath(L"")), base + "\\");
    EXPECT_EQ(narrow(CFCEnvironment::GetFullPath(nullptr)), base + "\\");
}

TEST_F(FCEnvironment, FullPathFallsBackToTheResources) {
    CFCEnvironment::SetResourcePath(L"R");
    EXPECT_STREQ(CFCEnvironment::GetFullPath(L"macro"), L"R\\macro");
}

TEST_F(FCEnvironment, UserImageNeedsAFileWithoutExtensionBesideIt) {
    setFolders();
    EXPECT_EQ(narrow(CFCEnvironment::GetImageFullPath(L"icon")), base + "\\icon.jpg");
    scratch.write("user/icon.jpg", "");
    EXPECT_EQ(narrow(CFCEnvironment::GetImageFullPath(L"icon")), base + "\\icon.jpg");
    scratch.write("user/icon", "");
    EXPECT_EQ(narrow(CFCEnvironment::GetImageFullPath(L"icon")), user + "\\icon.jpg");
    fs::remove(scratch / "user/icon.jpg");
    EXPECT_EQ(narrow(CFCEnvironment::GetImageFullPath(L"icon")), base + "\\icon.jpg");
    scratch.write("base/icon.jpg", "");
    EXPECT_EQ(narrow(CFCEnvironment::GetImageFullPath(L"icon")), base + "\\icon.jpg");
}

TEST_F(FCEnvironment, LocalFilePathLeavesAPresentFileAlone) {
    setFolders();
    scratch.write("a.b.txt", "");
    TuString const path = scratch.text("a.b.txt");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(path), path);
    TuString const withBackslashes = wideWithBackslashes(scratch / "a.b.txt");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(withBackslashes), withBackslashes);
}

TEST_F(FCEnvironment, LocalFilePathLeavesADrivePathAlone) {
    CFCEnvironment::SetBasePath(L"B");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(L"C:\\no\\such.file"), L"C:\\no\\such.file");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(L"C:x"), L"C:x");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(L"C:"), L"B\\C:.py");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(L":C:"), L"B\\:C:.py");
}

TEST_F(FCEnvironment, LocalFilePathTurnsAModuleNameIntoAFile) {
    setFolders();
    EXPECT_EQ(narrow(CFCEnvironment::GetLocalFilePath(L"a.b")), base + "\\a\\b.py");
    EXPECT_EQ(narrow(CFCEnvironment::GetLocalFilePath(L"lib.sub.mod")), base + "\\lib\\sub\\mod.py");
    scratch.write("user/lib/sub/mod.py", "");
    EXPECT_EQ(narrow(CFCEnvironment::GetLocalFilePath(L"lib.sub.mod")), user + "\\lib\\sub\\mod.py");
}

TEST_F(FCEnvironment, LocalFilePathConvertsAMissingAbsolutePathToo) {
    CFCEnvironment::SetBasePath(L"B");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(L"/no/such.py"), L"B\\/no/such\\py.py");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(L""), L"B\\.py");
    EXPECT_STREQ(CFCEnvironment::GetLocalFilePath(nullptr), L"B\\.py");
}

TEST_F(FCEnvironment, TellsWhetherFilesExist) {
    setFolders();
    CFCEnvironment::SetMacroBasePath(wideWithBackslashes(scratch / "macros"));
    EXPECT_FALSE(CFCEnvironment::IsLocalFileExist(L"lib.mod"));
    EXPECT_FALSE(CFCEnvironment::IsMacroFileExist(L"lib.mod"));
    scratch.write("base/lib/mod.py", "");
    EXPECT_TRUE(CFCEnvironment::IsLocalFileExist(L"lib.mod"));
    EXPECT_FALSE(CFCEnvironment::IsMacroFileExist(L"lib.mod"));
    scratch.write("macros/lib/mod.py", "");
    EXPECT_TRUE(CFCEnvironment::IsMacroFileExist(L"lib.mod"));
    EXPECT_FALSE(CFCEnvironment::IsLocalFileExist(L"C:\\missing.py"));
    EXPECT_FALSE(CFCEnvironment::IsLocalFileExist(nullptr));
    EXPECT_FALSE(CFCEnvironment::IsMacroFileExist(nullptr));

    EXPECT_TRUE(CFCEnvironment::IsFileExist(wideWithBackslashes(scratch / "base/lib/mod.py")));
    EXPECT_FALSE(CFCEnvironment::IsFileExist(scratch.text("base")));
    EXPECT_FALSE(CFCEnvironment::IsFileExist(scratch.text("missing")));
    EXPECT_FALSE(CFCEnvironment::IsFileExist(L""));
    EXPECT_FALSE(CFCEnvironment::IsFileExist(nullptr));
}

// Relative paths and script names

TEST_F(FCEnvironment, RelativePathStartsBehindTheFolderWord) {
    struct Case {
        wchar_t const* path;
        wchar_t const* relative;
    };
    Case const cases[] = {
        {L"C:\\data\\BrindleExec\\lib\\run.py", L"lib/run.py"},
        {L"/data/BrindleExec/lib/run.py", L"lib/run.py"},
        {L"C:\\data\\BrindleExec", L""},
        {L"C:\\data\\BrindleExec\\", L""},
        {L"C:\\data\\other\\run.py", L"C:\\data\\other\\run.py"},
        {L"C:\\data\\brindleexec\\run.py", L"C:\\data\\brindleexec\\run.py"},
        {L"C:\\BrindleExec\\BrindleExec\\x", L"BrindleExec/x"},
        {L"C:\\BrindleExec2\\x", L"/x"},
        {L"BrindleExecutive", L"tive"},
        {L"", L""},
        {nullptr, L""},
    };
    for (Case const& one : cases) {
        EXPECT_STREQ(CFCEnvironment::GetRelativePath(one.path), one.relative);
    }
}

TEST_F(FCEnvironment, RelativePathIgnoresTheRoots) {
    CFCEnvironment::SetBasePath(L"C:\\data");
    CFCEnvironment::SetProjectPath(L"C:\\data");
    EXPECT_STREQ(CFCEnvironment::GetRelativePath(L"C:\\data\\x"), L"C:\\data\\x");
}

TEST_F(FCEnvironment, ScriptNameIsTheDottedModuleName) {
    struct Case {
        wchar_t const* file;
        wchar_t const* name;
    };
    Case const cases[] = {
        {L"C:\\BrindleExec\\Lib\\Run.py", L"Lib.Run"},
        {L"/x/BrindleExec/Lib/Sub/Run.py", L"Lib.Sub.Run"},
        {L"C:\\BrindleExec\\Lib\\Run.v2.py", L"Lib.Run.v2"},
        {L"C:\\BrindleExec\\Lib\\Run", L""},
        {L"C:\\BrindleExec", L""},
        {L"C:\\other\\Run.py", L"C:\\other\\Run.py"},
        {L"", L""},
        {nullptr, L""},
    };
    for (Case const& one : cases) {
        EXPECT_STREQ(CFCEnvironment::GetScriptNameFromFileName(one.file), one.name);
    }
}

TEST_F(FCEnvironment, BlockNameIsTheLastPartOfTheScriptName) {
    EXPECT_STREQ(CFCEnvironment::GetBlockNameFromFileName(L"C:\\BrindleExec\\Lib\\Run.py"), L"Run");
    EXPECT_STREQ(CFCEnvironment::GetBlockNameFromFileName(L"C:\\other\\Run.py"), L"py");
}

TEST_F(FCEnvironment, BlockNameWithoutADotIsThePreviousAnswer) {
    CFCEnvironment::GetBlockNameFromFileName(L"C:\\BrindleExec\\Lib\\First.py");
    EXPECT_STREQ(CFCEnvironment::GetBlockNameFromFileName(L"C:\\BrindleExec\\Second.py"), L"First");
    EXPECT_STREQ(CFCEnvironment::GetBlockNameFromFileName(nullptr), L"First");
    EXPECT_STREQ(CFCEnvironment::GetBlockNameFromFileName(L"C:\\BrindleExec\\Lib\\Third.py"), L"Third");
}

// Reading a whole file

TEST_F(FCEnvironment, LoadFileReadsTheWholeText) {
    scratch.write("script.py", "first\r\nsecond\n");
    TuString text(L"old");
    EXPECT_TRUE(CFCEnvironment::LoadFile(wideWithBackslashes(scratch / "script.py"), text));
    EXPECT_STREQ(text, L"first\r\nsecond\n");
}

TEST_F(FCEnvironment, LoadFileOfAnEmptyFileGivesTheEmptyText) {
    scratch.write("empty", "");
    TuString text(L"old");
    EXPECT_TRUE(CFCEnvironment::LoadFile(scratch.text("empty"), text));
    EXPECT_STREQ(text, L"");
}

TEST_F(FCEnvironment, LoadFileEndsAtAZeroByte) {
    scratch.write("zero", std::string("ab\0cd", 5));
    TuString text;
    EXPECT_TRUE(CFCEnvironment::LoadFile(scratch.text("zero"), text));
    EXPECT_STREQ(text, L"ab");
}

TEST_F(FCEnvironment, LoadFileKeepsAByteOrderMarkAndEveryByte) {
    std::string const bytes = "\xEF\xBB\xBFgr\xC3\xB6\xC3\x9F"
                              "er \xE4\xFF";
    scratch.write("bytes", bytes);
    TuString text;
    EXPECT_TRUE(CFCEnvironment::LoadFile(scratch.text("bytes"), text));
    EXPECT_EQ(text.GetAt(0), L'\xFEFF');
    EXPECT_EQ(std::string(text.GetAnsiBuffer()), bytes);
}

TEST_F(FCEnvironment, LoadFileFailsWithoutTouchingTheText) {
    TuString text(L"old");
    EXPECT_FALSE(CFCEnvironment::LoadFile(nullptr, text));
    EXPECT_FALSE(CFCEnvironment::LoadFile(L"", text));
    EXPECT_FALSE(CFCEnvironment::LoadFile(scratch.text("missing"), text));
    EXPECT_FALSE(CFCEnvironment::LoadFile(scratch.text(), text));
    EXPECT_STREQ(text, L"old");
}

TEST_F(FCEnvironment, LoadFileTakesItsTargetAsPath) {
    scratch.write("file", "content");
    TuString text = scratch.text("file");
    EXPECT_TRUE(CFCEnvironment::LoadFile(text, text));
    EXPECT_STREQ(text, L"content");
}
