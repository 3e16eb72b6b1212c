// Paths of the contract as the file system of this platform takes them.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

#include <afxwin.h>

/// A path of the contract, whose separator is the backslash.
inline std::filesystem::path NativePath(const CString& strPath) {
    std::wstring path(strPath.GetString());
    if constexpr (std::filesystem::path::preferred_separator != L'\\') {
        std::ranges::replace(path, L'\\', L'/');
    }
    return path;
}
