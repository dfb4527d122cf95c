#include "flowmere/environment/FCEnvironment.h"

#include "flowmere/environment/LocalFile.h"
#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Immortal.h"
#include "flowmere/foundation/TuFileUtl.h"

#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

using flowmere::Immortal;

namespace {

constexpr wchar_t const* kExecutionFolder = L"BrindleExec";
constexpr int kExecutionFolderLength = 11;

constexpr wchar_t const* kProcessList = L"process.lst";
constexpr wchar_t const* kBPMProcessList = L"BPMProcess.lst";
constexpr wchar_t const* kFileTypes = L"FileTypes.xml";
constexpr wchar_t const* kMimeTypes = L"MimeTypes.xml";
constexpr wchar_t const* kProcessDefinition = L"processdefinition.xml";

constinit Immortal<TuString> s_basePath;
constinit Immortal<TuString> s_macroBasePath;
constinit Immortal<TuString> s_binPath;
constinit Immortal<TuString> s_resourcePath;
constinit Immortal<TuString> s_projectPath;
constinit Immortal<TuString> s_userPath;

TuString const& baseRoot() {
    return s_basePath.value.IsEmpty() ? s_resourcePath.value : s_basePath.value;
}

// The resource folder is no fall-back here: what a user adds goes beside the shared data or nowhere.
TuString const& userRoot() {
    return s_userPath.value.IsEmpty() ? s_basePath.value : s_userPath.value;
}

TuString below(TuString const& folder, wchar_t const* name) {
    return folder + L'\\' + name;
}

TuString applicationsBelow(TuString const& root) {
    return below(below(root, L"BPM"), L"ApplicationConfiguration");
}

TuString withBackslashesForDots(wchar_t const* name) {
    TuString path(name);
    path.Replace(L'.', L'\\');
    return path;
}

bool isPresent(TuString const& path) {
    return flowmere::isReadableFile(path);
}

// The compositions that several getters share. They return values, so that no getter disturbs the text that another
// one has given out.

TuString fullPath(wchar_t const* name) {
    TuString const ofUser = below(userRoot(), name);
    return isPresent(ofUser) ? ofUser : below(baseRoot(), name);
}

// The file of a script name in a folder. Each block of a document asks for two or three of them, so the path is put
// together in one piece.
TuString scriptFile(TuString const& folder, std::wstring_view name) {
    constexpr std::wstring_view kEnding = L".py";
    std::wstring path;
    path.reserve(folder.View().size() + 1 + name.size() + kEnding.size());
    path += folder.View();
    path += L'\\';
    for (wchar_t const character : name) {
        path += character == L'.' ? L'\\' : character;
    }
    path += kEnding;
    return TuString(std::wstring_view(path));
}

// The local file of a script name, and whether it is there; the last place is only asked when `isAsked`.
flowmere::LocalFile localFile(wchar_t const* text, bool isAsked) {
    std::wstring_view const name = text != nullptr ? std::wstring_view(text) : std::wstring_view();
    if (!name.empty() && flowmere::isReadableFile(text)) {
        return {TuString(name), true};
    }
    if (name.size() > 2 && name[1] == L':') {
        return {TuString(name), false};
    }
    TuString const ofUser = scriptFile(userRoot(), name);
    if (isPresent(ofUser)) {
        return {ofUser, true};
    }
    if (baseRoot() == userRoot()) {
        return {ofUser, false};
    }
    TuString const ofBase = scriptFile(baseRoot(), name);
    return {ofBase, isAsked && isPresent(ofBase)};
}

TuString localFilePath(wchar_t const* text) {
    return localFile(text, false).path;
}

TuString macroFilePath(wchar_t const* name) {
    return scriptFile(s_macroBasePath.value, name != nullptr ? std::wstring_view(name) : std::wstring_view());
}

TuString relativePath(wchar_t const* text) {
    TuString const path(text);
    int const word = path.Find(kExecutionFolder);
    if (word < 0) {
        return path;
    }
    // One character behind the word is dropped, whatever it is.
    TuString rest = path.Mid(word + kExecutionFolderLength + 1);
    rest.Replace(L'\\', L'/');
    return rest;
}

TuString scriptNameFromFileName(wchar_t const* file) {
    TuString name = relativePath(file);
    if (name.CompareNoCase(file) == 0) {
        return name;
    }
    name = name.Left(name.ReverseFind(L'.'));
    name.Replace(L'\\', L'.');
    name.Replace(L'/', L'.');
    return name;
}

// Puts a composed path into the place that its getter keeps.
wchar_t const* keep(Immortal<TuString>& place, TuString path) {
    place.value = std::move(path);
    return place.value;
}

} // namespace

flowmere::LocalFile flowmere::findLocalFile(wchar_t const* name) {
    return localFile(name, true);
}

TuString& CFCEnvironment::m_strBasePath = s_basePath.value;
TuString& CFCEnvironment::m_strMacroBasePath = s_macroBasePath.value;
TuString& CFCEnvironment::m_strBinPath = s_binPath.value;
TuString& CFCEnvironment::m_strResourcePath = s_resourcePath.value;
TuString& CFCEnvironment::m_strProjectPath = s_projectPath.value;
TuString& CFCEnvironment::m_strUserPath = s_userPath.value;

// Roots

void CFCEnvironment::SetBasePath(wchar_t const* path) {
    m_strBasePath = path;
}

void CFCEnvironment::SetMacroBasePath(wchar_t const* path) {
    m_strMacroBasePath = path;
}

void CFCEnvironment::SetBinPath(wchar_t const* path) {
    m_strBinPath = path;
}

void CFCEnvironment::SetResourcePath(wchar_t const* path) {
    m_strResourcePath = path;
}

void CFCEnvironment::SetProjectPath(wchar_t const* path) {
    m_strProjectPath = path;
}

void CFCEnvironment::SetUserPath(wchar_t const* path) {
    TuFileUtl folder;
    folder.SetPath(path, 1);
    folder.CreateDir();
    m_strUserPath = path;
}

void CFCEnvironment::SetDirectoryTreePath(wchar_t const*) {}

void CFCEnvironment::SetSDKBasePath(wchar_t const*) {}

wchar_t const* CFCEnvironment::GetBasePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, baseRoot());
}

wchar_t const* CFCEnvironment::GetSDKBasePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, baseRoot());
}

wchar_t const* CFCEnvironment::GetUserPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, userRoot());
}

wchar_t const* CFCEnvironment::GetBinPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, m_strBinPath);
}

wchar_t const* CFCEnvironment::GetResourcePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, m_strResourcePath);
}

wchar_t const* CFCEnvironment::GetMacroBasePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, m_strMacroBasePath);
}

wchar_t const* CFCEnvironment::GetMacroFolder() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, m_strMacroBasePath);
}

wchar_t const* CFCEnvironment::GetProjectPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, m_strProjectPath);
}

// Well-known files

wchar_t const* CFCEnvironment::GetProcessListFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), kProcessList));
}

wchar_t const* CFCEnvironment::GetProcessListFilePathTest() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"process_test.lst"));
}

wchar_t const* CFCEnvironment::GetBPMProcessListFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), kBPMProcessList));
}

wchar_t const* CFCEnvironment::GetDataTypeFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"DataTypes.xml"));
}

wchar_t const* CFCEnvironment::GetHintsFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"Hints.xml"));
}

wchar_t const* CFCEnvironment::GetCodeLibraryFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"CodeLibrary.xml"));
}

wchar_t const* CFCEnvironment::GetAPIHelpFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"APIHelp.xml"));
}

wchar_t const* CFCEnvironment::GetManifestFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"Manifest.mf"));
}

wchar_t const* CFCEnvironment::GetProcessLibFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"ProcessLib.xml"));
}

wchar_t const* CFCEnvironment::GetLibraryFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(baseRoot(), L"ListLibrary.xml"));
}

wchar_t const* CFCEnvironment::GetFileTypesPath() {
    static constinit Immortal<TuString> s_result;
    return m_strBasePath.IsEmpty() ? nullptr : keep(s_result, below(m_strBasePath, kFileTypes));
}

wchar_t const* CFCEnvironment::GetMimeTypesPath() {
    static constinit Immortal<TuString> s_result;
    return m_strBasePath.IsEmpty() ? nullptr : keep(s_result, below(m_strBasePath, kMimeTypes));
}

wchar_t const* CFCEnvironment::GetUserFileTypesPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(userRoot(), kFileTypes));
}

wchar_t const* CFCEnvironment::GetUserMimeTypesPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(userRoot(), kMimeTypes));
}

wchar_t const* CFCEnvironment::GetUserProcessListPath(bool bpm) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(userRoot(), bpm ? kBPMProcessList : kProcessList));
}

// Folders

wchar_t const* CFCEnvironment::GetBPMBasePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(m_strBasePath, L"BPM"));
}

wchar_t const* CFCEnvironment::GetApplicationsPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, applicationsBelow(baseRoot()));
}

wchar_t const* CFCEnvironment::GetApplicationsLibFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(applicationsBelow(baseRoot()), kProcessDefinition));
}

wchar_t const* CFCEnvironment::GetUserApplicationsPath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, applicationsBelow(userRoot()));
}

wchar_t const* CFCEnvironment::GetUserApplicationsLibFilePath() {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, below(applicationsBelow(userRoot()), kProcessDefinition));
}

wchar_t const* CFCEnvironment::GetIconPath() {
    static constinit Immortal<TuString> s_result;
    return m_strResourcePath.IsEmpty() ? nullptr
                                       : keep(s_result, below(below(m_strResourcePath, L"BrindleBuilder"), L"icons"));
}

wchar_t const* CFCEnvironment::GetDirectoryTreePath() {
    static constinit Immortal<TuString> s_result;
    // The wildcard stands between root and folder too: readers of this path expect it in both places.
    return keep(s_result, m_strResourcePath + L"\\*.*" + L"SCM_DIR_STRUCT" + L"\\*.*");
}

// Project paths

wchar_t const* CFCEnvironment::GetProjectPath(wchar_t const* folder, wchar_t const* name, bool) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, TuString(folder) + L"/" + name + L".bpt");
}

wchar_t const* CFCEnvironment::GetRelativeProjectPath(wchar_t const* folder, wchar_t const* name, bool) {
    static constinit Immortal<TuString> s_result;
    TuString path = relativePath(folder);
    if (!path.IsEmpty()) {
        path += L"\\";
    }
    return keep(s_result, path + name + L".bpt");
}

wchar_t const* CFCEnvironment::GetBPMProjectPath(wchar_t const* folder) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, TuString(folder) + L"/" + kProcessDefinition);
}

wchar_t const* CFCEnvironment::GetBPMRelativeProjectPath(wchar_t const* folder, wchar_t const*, bool) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, relativePath(folder) + L"/" + kProcessDefinition);
}

// Scripts

wchar_t const* CFCEnvironment::GetScriptPath(wchar_t const* folder, wchar_t const* name, EScriptType type) {
    static constinit Immortal<TuString> s_result;
    // Bare numbers: the 9 of this place is none of the named script types.
    int const kind = static_cast<int>(type);
    wchar_t const* const extension = kind == 0 ? L"py" : kind == 9 ? L"java" : L"script";
    return keep(s_result, below(below(TuString(folder), L"Script"), name) + L"." + extension);
}

wchar_t const* CFCEnvironment::GetBPMScriptPath(wchar_t const* package, wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    TuString const folder = below(m_strProjectPath, withBackslashesForDots(package));
    return keep(s_result, below(below(folder, L"scripts"), name) + L".py");
}

wchar_t const* CFCEnvironment::GetMacroFilePath(wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, macroFilePath(name));
}

wchar_t const* CFCEnvironment::GetFullPathPy(wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, fullPath(name) + L".py");
}

wchar_t const* CFCEnvironment::GetFullPathBlockPy(wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, fullPath(name) + L"Block.py");
}

// Search

wchar_t const* CFCEnvironment::GetFullPath(wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, fullPath(name));
}

wchar_t const* CFCEnvironment::GetImageFullPath(wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    TuString const image = fullPath(name) + L"." + L"jpg";
    return keep(s_result, isPresent(image) ? image : below(baseRoot(), name) + L"." + L"jpg");
}

wchar_t const* CFCEnvironment::GetLocalFilePath(wchar_t const* name) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, localFilePath(name));
}

bool CFCEnvironment::IsLocalFileExist(wchar_t const* name) {
    return localFile(name, true).isThere;
}

bool CFCEnvironment::IsMacroFileExist(wchar_t const* name) {
    return isPresent(macroFilePath(name));
}

bool CFCEnvironment::IsFileExist(wchar_t const* path) {
    return path != nullptr && *path != L'\0' && isPresent(TuString(path));
}

// Relative paths and script names

wchar_t const* CFCEnvironment::GetRelativePath(wchar_t const* path) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, relativePath(path));
}

wchar_t const* CFCEnvironment::GetScriptNameFromFileName(wchar_t const* file) {
    static constinit Immortal<TuString> s_result;
    return keep(s_result, scriptNameFromFileName(file));
}

wchar_t const* CFCEnvironment::GetBlockNameFromFileName(wchar_t const* file) {
    static constinit Immortal<TuString> s_result;
    TuString const name = scriptNameFromFileName(file);
    int const dot = name.ReverseFind(L'.');
    if (dot < 0) {
        return s_result.value; // the previous answer stands
    }
    return keep(s_result, name.Mid(dot + 1));
}

bool CFCEnvironment::LoadFile(wchar_t const* path, TuString& out) {
    TuString const name(path);
    if (name.IsEmpty()) {
        return false;
    }
    std::FILE* const file = TuFOpen(name.GetAnsiBuffer(), "rb", __FILE__, __LINE__);
    if (file == nullptr) {
        return false;
    }
    bool loaded = false;
    std::fseek(file, 0, SEEK_END);
    long const length = std::ftell(file);
    std::rewind(file);
    if (length >= 0) {
        try {
            auto const size = static_cast<std::size_t>(length);
            auto const block = std::make_unique<char[]>(size + 1);
            // A file that lost its end in the meantime ends where the reading ended.
            block[std::fread(block.get(), 1, size, file)] = '\0';
            out = block.get();
            loaded = true;
        } catch (std::bad_alloc const&) {
            loaded = false;
        }
    }
    TuFClose(file, __FILE__, __LINE__);
    return loaded;
}
