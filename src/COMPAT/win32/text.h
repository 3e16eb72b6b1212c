// Conversions that the Win32 subset needs inside.
#pragma once

#include <windows.h>

#include <string>

std::string WideToUtf8(const wchar_t* pszText);
std::wstring Utf8ToWide(const std::string& strText);

// A Windows path as the system takes it: UTF-8, '\' turned into '/'.
std::string NativePath(const wchar_t* pszPath);

// For names that are compared without case.
std::wstring FoldCase(const wchar_t* pszName);
