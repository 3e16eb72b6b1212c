// What the library's sources include first. The library's own header of this name includes all of it, HTTP too.
#pragma once

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <windows.h>
#include <winhttp.h>

#include <cpprest/asyncrt_utils.h>
#include <cpprest/json.h>

// The C run-time of this compiler writes three digits of an exponent where Microsoft's present one writes two, and
// lacks one function of the library's.

#include "number_text.h"

inline double NumberOfText(const wchar_t* pszText, wchar_t** /*ppszEnd*/, _locale_t locale) {
    return _strtod_l(std::string(pszText, pszText + std::wcslen(pszText)).c_str(), nullptr, locale);
}

#define _wcstod_l NumberOfText
