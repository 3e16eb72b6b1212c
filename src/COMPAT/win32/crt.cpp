// C run-time functions that only the Windows run-time has.

#include <windows.h>

#include <algorithm>
#include <climits>
#include <optional>

namespace {

bool IsBlank(wchar_t ch) {
    return ch != 0 &&
           std::wcschr(L"\t\n\v\f\r \x85\xA0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007\x2008\x2009"
                       L"\x200A\x2028\x2029\x202F\x205F\x3000",
                       ch) != nullptr;
}

// Value of a decimal digit of any script that the run-time knows; nothing for what is no digit.
std::optional<int> DigitValue(wchar_t ch) {
    for (const wchar_t chZero : L"0\x0660\x06F0\x0966\x09E6\x0A66\x0AE6\x0B66\x0C66\x0CE6\x0D66\x0E50\x0ED0\x0F20\x1040"
                                L"\x17E0\x1810\xFF10") {
        if (chZero != 0 && ch >= chZero && ch <= chZero + 9)
            return ch - chZero;
    }
    return std::nullopt;
}

} // namespace

int _wtoi(const wchar_t* pszText) {
    while (IsBlank(*pszText))
        pszText++;
    const bool bNegative = *pszText == L'-';
    if (*pszText == L'-' || *pszText == L'+')
        pszText++;

    const long long nLimit = bNegative ? -static_cast<long long>(INT_MIN) : INT_MAX;
    long long nValue = 0;
    for (std::optional<int> nDigit; (nDigit = DigitValue(*pszText)) && nValue < nLimit; pszText++)
        nValue = std::min(nValue * 10 + *nDigit, nLimit);
    return static_cast<int>(bNegative ? -nValue : nValue);
}
