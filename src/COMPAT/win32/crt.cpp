// C run-time functions that only the Windows run-time has.

#include <windows.h>

#include <cerrno>
#include <climits>
#include <cwctype>
#include <strings.h>

int __cdecl _wtoi(const wchar_t* pszText) {
    if (pszText == nullptr)
        return 0;
    while (std::iswspace(static_cast<std::wint_t>(*pszText)))
        pszText++;
    const bool bNegative = *pszText == L'-';
    if (*pszText == L'-' || *pszText == L'+')
        pszText++;

    const long long nLimit = bNegative ? -static_cast<long long>(INT_MIN) : INT_MAX;
    long long nValue = 0;
    for (; *pszText >= L'0' && *pszText <= L'9'; pszText++) {
        nValue = nValue * 10 + (*pszText - L'0');
        if (nValue >= nLimit) {
            nValue = nLimit;
            break;
        }
    }
    return static_cast<int>(bNegative ? -nValue : nValue);
}

double __cdecl _wtof(const wchar_t* pszText) {
    return pszText == nullptr ? 0.0 : std::wcstod(pszText, nullptr);
}

int __cdecl _wcsnicmp(const wchar_t* pszLeft, const wchar_t* pszRight, std::size_t nCount) {
    for (; nCount > 0; nCount--, pszLeft++, pszRight++) {
        const std::wint_t nLeft = std::towlower(static_cast<std::wint_t>(*pszLeft));
        const std::wint_t nRight = std::towlower(static_cast<std::wint_t>(*pszRight));
        if (nLeft != nRight)
            return nLeft < nRight ? -1 : 1;
        if (nLeft == 0)
            break;
    }
    return 0;
}

int __cdecl _wcsicmp(const wchar_t* pszLeft, const wchar_t* pszRight) {
    return _wcsnicmp(pszLeft, pszRight, static_cast<std::size_t>(-1));
}

int __cdecl _stricmp(const char* pszLeft, const char* pszRight) {
    return strcasecmp(pszLeft, pszRight);
}
