#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"

#include <cstdio>

// The path of a file or folder, and what can be done with it. Paths may use backslashes and slashes alike; they are
// mapped to the system's form at the moment of use. All int results are non-zero for success.
class FLOWMERE_API TuFileUtl {
public:
    TuFileUtl() = default;
    // `flag` is 1 for the path of a folder and 0 for that of a file.
    TuFileUtl(wchar_t const* path, int flag);
    virtual ~TuFileUtl() = default;
    TuFileUtl(TuFileUtl const&) = default;
    TuFileUtl& operator=(TuFileUtl const&) = default;

    void SetPath(wchar_t const* path, int flag);
    // What follows the last backslash or slash of the path; valid until the path changes.
    wchar_t const* GetFileName() const noexcept;
    // Creates the folder of the path, missing parents included: the path itself when it is a folder's, the folder
    // that holds it when it is a file's. A folder that exists is a success, an empty path is a failure.
    int CreateDir() const;
    // Copies the file of the path to the file `targetPath`, overwriting it. Onto itself it does nothing, which
    // counts as success.
    int CopyIn(wchar_t const* targetPath) const;

    // Creates a folder with its missing parents.
    static int CreateADirectory(wchar_t const* path);
    // Non-zero when `path` names a regular file that can be opened for reading. A folder is no file.
    static int IsFileName(wchar_t const* path);

private:
    TuString m_strPath;
    int m_nFlag = 0;
};

// fopen on an 8-bit (UTF-8) path. Null for null arguments, for what cannot be opened, and for anything that exists
// and is no regular file. The last two arguments only label the call.
FLOWMERE_API std::FILE* TuFOpen(char const* path, char const* mode, char const* sourceFile = nullptr, int line = 0);
// fclose; 0 for success, EOF for a failure and for null.
FLOWMERE_API int TuFClose(std::FILE* file, char const* sourceFile = nullptr, int line = 0);
