// Paths of the contract as the file system of this platform takes them.
#pragma once

#include <filesystem>
#include <string>

#include <afxwin.h>

/// A path of the contract, whose separator is the backslash.
inline std::filesystem::path NativePath(const CString& strPath) {
    std::wstring path(strPath.GetString());
    if constexpr (std::filesystem::path::preferred_separator != L'\\') {
        for (wchar_t& c : path) {
            if (c == L'\\') {
                c = L'/';
            }
        }
    }
    return path;
}
