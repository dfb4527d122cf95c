#include "flowmere/foundation/TuFileUtl.h"

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/Files.h"
#include "flowmere/foundation/Paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

TuFileUtl::TuFileUtl(wchar_t const* path, int flag) : m_strPath(path), m_nFlag(flag) {}

void TuFileUtl::SetPath(wchar_t const* path, int flag) {
    m_strPath = path;
    m_nFlag = flag;
}

wchar_t const* TuFileUtl::GetFileName() const noexcept {
    int const separator = std::max(m_strPath.ReverseFind(L'\\'), m_strPath.ReverseFind(L'/'));
    return static_cast<wchar_t const*>(m_strPath) + (separator + 1);
}

int TuFileUtl::CreateDir() const {
    if (m_nFlag != 0) {
        return CreateADirectory(m_strPath);
    }
    // A file's name alone lies in the current folder, which needs no making.
    TuString const folder = m_strPath.Left(static_cast<int>(GetFileName() - static_cast<wchar_t const*>(m_strPath)));
    return CreateADirectory(folder.IsEmpty() && !m_strPath.IsEmpty() ? L"." : static_cast<wchar_t const*>(folder));
}

int TuFileUtl::CopyIn(wchar_t const* targetPath) const {
    if (targetPath == nullptr || *targetPath == L'\0' || !IsFileName(m_strPath)) {
        return 0;
    }
    try {
        std::error_code failure;
        auto const source = flowmere::filesystemPath(m_strPath.View());
        auto const target = flowmere::filesystemPath(targetPath);
        if (std::filesystem::equivalent(source, target, failure)) {
            return 1;
        }
        failure.clear();
        std::filesystem::copy_file(source, target, std::filesystem::copy_options::overwrite_existing, failure);
        return failure ? 0 : 1;
    } catch (...) {
        return 0;
    }
}

int TuFileUtl::CreateADirectory(wchar_t const* path) {
    return flowmere::createFolder(path) ? 1 : 0;
}

int TuFileUtl::IsFileName(wchar_t const* path) {
    return flowmere::isReadableFile(path) ? 1 : 0;
}

std::FILE* TuFOpen(char const* path, char const* mode, char const*, int) {
    if (path == nullptr) {
        return nullptr;
    }
    return flowmere::openFile(flowmere::fromUtf8(path).c_str(), mode);
}

int TuFClose(std::FILE* file, char const*, int) {
    return file == nullptr ? EOF : std::fclose(file);
}
