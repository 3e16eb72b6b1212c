// printf-like formatting of wide text, the same on every platform. Internal to the framework run-time.
#pragma once

#include <cstdarg>
#include <string>

// Formats with the rules that CString::Format documents.
std::wstring FormatWide(const wchar_t* pszFormat, va_list args);
