// Conversions that the Win32 subset needs inside.
#pragma once

#include <windows.h>

#include <string>

std::string WideToUtf8(const std::wstring& strText);
// Bytes of a code page; what is no character of it becomes U+FFFD.
std::wstring ToWide(UINT nCodePage, const std::string& strBytes);

// A Windows path as the system takes it: UTF-8, '\' turned into '/'.
std::string NativePath(const std::wstring& strPath);

// For names that are compared without case.
std::wstring FoldCase(std::wstring strName);
