// What the library's sources include first. The library's own header of this name includes all of it, HTTP too.
#pragma once

#include <algorithm>
#include <array>
#include <cassert>
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

#include "cpprest/asyncrt_utils.h"
#include "cpprest/json.h"

// The C run-time of this compiler lacks one function of the library's, and writes three digits of an exponent where
// Microsoft's present one writes two.

inline double NumberOfText(const wchar_t* pszText, wchar_t** /*ppszEnd*/, _locale_t locale) {
    return _strtod_l(std::string(pszText, pszText + std::wcslen(pszText)).c_str(), nullptr, locale);
}

template <typename Character>
int TextOfNumber(Character* pszText, size_t nSize, const Character* /*pszFormat*/, _locale_t /*locale*/, int nDigits,
                 double fNumber) {
    char szNumber[64];
    const int nLength = std::snprintf(szNumber, sizeof(szNumber), "%.*g", nDigits, fNumber);
    assert(static_cast<size_t>(nLength) < nSize);
    std::copy_n(szNumber, std::min(static_cast<size_t>(nLength) + 1, nSize), pszText);
    return nLength;
}

#define _wcstod_l NumberOfText
#define _sprintf_s_l TextOfNumber
#define _swprintf_s_l TextOfNumber
