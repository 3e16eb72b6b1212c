#include "base/SafeFile.h"

#include <algorithm>
#include <memory>

#include <afxwin.h>

namespace {

struct SHandleCloser {
    void operator()(HANDLE hFile) const { CloseHandle(hFile); }
};
using FileHandle = std::unique_ptr<void, SHandleCloser>;

FileHandle Open(const std::filesystem::path& file, DWORD nAccess, DWORD nDisposition, DWORD nFlags) {
    const HANDLE hFile = CreateFileW(file.c_str(), nAccess, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                     nullptr, nDisposition, nFlags, nullptr);
    return FileHandle(hFile != INVALID_HANDLE_VALUE ? hFile : nullptr);
}

/// What is there under the name, file or folder, links followed; null when there is nothing.
FileHandle OpenToLook(const std::filesystem::path& file) {
    return Open(file, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
}

bool IsRegular(HANDLE hFile) {
    BY_HANDLE_FILE_INFORMATION info = {};
    return GetFileType(hFile) == FILE_TYPE_DISK && GetFileInformationByHandle(hFile, &info) &&
           (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

FileHandle OpenBeside(const std::filesystem::path& file, std::filesystem::path& newFile) {
    constexpr int MOST_NAMES = 1000;
    for (int nName = 0; nName < MOST_NAMES; ++nName) {
        newFile = file;
        newFile += ".new" + (nName == 0 ? std::string() : std::to_string(nName));
        FileHandle pFile = Open(newFile, GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
        if (pFile != nullptr || GetLastError() != ERROR_FILE_EXISTS) {
            return pFile;
        }
    }
    return nullptr;
}

bool WriteAll(HANDLE hFile, std::string_view content) {
    constexpr size_t MOST_AT_ONCE = size_t{1} << 20;
    while (!content.empty()) {
        DWORD nWritten = 0;
        if (!WriteFile(hFile, content.data(), static_cast<DWORD>(std::min(content.size(), MOST_AT_ONCE)), &nWritten,
                       nullptr)) {
            return false;
        }
        content.remove_prefix(nWritten);
    }
    return FlushFileBuffers(hFile);
}

} // namespace

std::string WriteFileSafely(const std::filesystem::path& name, std::string_view content) {
    FileHandle pFormer = OpenToLook(name);
    const bool bReplaces = pFormer != nullptr;
    if (bReplaces && !IsRegular(pFormer.get())) {
        return NO_REGULAR_FILE;
    }
    pFormer.reset();
    const std::filesystem::path file = bReplaces ? RealPath(name) : name;
    std::filesystem::path newFile;
    FileHandle pFile = OpenBeside(file, newFile);
    if (pFile == nullptr) {
        return CANT_BE_WRITTEN;
    }
    bool bDone = WriteAll(pFile.get(), content);
    pFile.reset();
    // The first keeps what the older file has of attributes and rights.
    bDone = bDone && (bReplaces ? ReplaceFileW(file.c_str(), newFile.c_str(), nullptr, 0, nullptr, nullptr)
                                : MoveFileExW(newFile.c_str(), file.c_str(), MOVEFILE_WRITE_THROUGH));
    if (!bDone) {
        DeleteFileW(newFile.c_str());
        return CANT_BE_WRITTEN;
    }
    return {};
}

std::filesystem::path RealPath(const std::filesystem::path& file) {
    const FileHandle pFile = OpenToLook(file);
    wchar_t szPath[4096];
    const DWORD nLength =
        pFile != nullptr ? GetFinalPathNameByHandleW(pFile.get(), szPath, static_cast<DWORD>(std::size(szPath)), 0) : 0;
    return nLength < std::size(szPath) ? std::filesystem::path(std::wstring(szPath, nLength)) : std::filesystem::path();
}
