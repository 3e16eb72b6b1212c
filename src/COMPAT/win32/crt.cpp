// C run-time functions that only the Windows run-time has.

#include <windows.h>

#include <climits>
#include <cwctype>

int _wtoi(const wchar_t* pszText) {
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
