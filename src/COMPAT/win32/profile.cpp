// Initialisation files.
//
// SimpleIni reads them, after two steps that make it answer as Windows does. Names are spelt so that no character in
// them has a meaning to the library and that names which differ in case only are one: Windows knows no '#' comments,
// takes a line without '=' as a key, and lets a section's name reach to the last bracket of its line. And a section
// that occurs again gets a name that nobody asks for: Windows looks into the first one only, the library would join
// them.

#include "text.h"

#define SI_IMPLEMENTATION // the class template is instantiated here,
#define SI_NO_CONVERSION  // for text as it is
#include <SimpleIni.h>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

namespace {

std::wstring Utf16ToWide(const std::string& strBytes, bool bBigEndian) {
    std::wstring strText;
    for (std::size_t nOffset = 2; nOffset + 1 < strBytes.size(); nOffset += 2) {
        const auto unitAt = [&](std::size_t nAt) {
            const unsigned nFirst = static_cast<BYTE>(strBytes[nAt]);
            const unsigned nSecond = static_cast<BYTE>(strBytes[nAt + 1]);
            return bBigEndian ? nFirst << 8 | nSecond : nSecond << 8 | nFirst;
        };
        unsigned nCharacter = unitAt(nOffset);
        if ((nCharacter & 0xFC00) == 0xD800 && nOffset + 3 < strBytes.size() &&
            (unitAt(nOffset + 2) & 0xFC00) == 0xDC00) {
            nCharacter = 0x10000 + ((nCharacter & 0x3FF) << 10) + (unitAt(nOffset + 2) & 0x3FF);
            nOffset += 2;
        }
        strText += static_cast<wchar_t>(nCharacter);
    }
    return strText;
}

// Empty for a file that is missing.
std::wstring ReadText(const wchar_t* pszFileName) {
    std::ifstream file(NativePath(pszFileName), std::ios::binary);
    const std::string strBytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (strBytes.starts_with("\xFF\xFE"))
        return Utf16ToWide(strBytes, false);
    if (strBytes.starts_with("\xFE\xFF"))
        return Utf16ToWide(strBytes, true);
    if (strBytes.starts_with("\xEF\xBB\xBF"))
        return ToWide(CP_UTF8, strBytes.substr(3));
    return ToWide(CP_ACP, strBytes);
}

std::wstring Trimmed(std::wstring_view text) {
    constexpr const wchar_t* pszBlanks = L" \t\r\n\v\f\x1A";
    const std::size_t nFirst = text.find_first_not_of(pszBlanks);
    if (nFirst == std::wstring_view::npos)
        return std::wstring();
    return std::wstring(text.substr(nFirst, text.find_last_not_of(pszBlanks) - nFirst + 1));
}

// A section's or key's name as the library gets it: ASCII letters, digits and '_' only.
std::string LibraryName(std::wstring_view name) {
    std::string strResult = "_";
    for (const wchar_t ch : FoldCase(Trimmed(name))) {
        if ((ch >= L'0' && ch <= L'9') || (ch >= L'a' && ch <= L'z') || (ch >= L'A' && ch <= L'Z'))
            strResult += static_cast<char>(ch);
        else
            strResult += '_' + std::to_string(static_cast<unsigned>(ch)) + '_';
    }
    return strResult;
}

// The file as the library gets it. A value ends at a zero.
std::string LibraryText(const std::wstring& strText) {
    std::string strResult;
    std::set<std::string> sections;
    for (std::size_t nStart = 0; nStart < strText.size();) {
        const std::size_t nEnd = std::min(strText.find_first_of(L"\r\n", nStart), strText.size());
        const std::wstring strLine = Trimmed(std::wstring_view(strText).substr(nStart, nEnd - nStart));
        nStart = nEnd + 1;
        const std::size_t nBracket = strLine.rfind(L']');
        const std::size_t nEquals = strLine.find(L'=');
        if (strLine.empty() || strLine.starts_with(L';'))
            continue;
        if (strLine.starts_with(L'[') && nBracket != std::wstring::npos) {
            const std::string strSection = LibraryName(strLine.substr(1, nBracket - 1));
            strResult += '[' + (sections.insert(strSection).second ? strSection : "again") + "]\n";
        } else {
            const std::wstring strValue = nEquals == std::wstring::npos ? L"" : strLine.substr(nEquals + 1);
            strResult += LibraryName(strLine.substr(0, nEquals)) + '=' +
                         WideToUtf8(strValue.substr(0, strValue.find(L'\0'))) + '\n';
        }
    }
    return strResult;
}

// Value of the first key of that name; empty without one.
std::wstring ReadValue(const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszFileName) {
    CSimpleIniA ini;
    ini.SetMultiKey(true); // keeps all keys of a name, so that the first can be taken
    CSimpleIniA::TNamesDepend values;
    if (ini.LoadData(LibraryText(ReadText(pszFileName))) < SI_OK ||
        !ini.GetAllValues(LibraryName(pszSection).c_str(), LibraryName(pszKey).c_str(), values))
        return std::wstring();
    values.sort(CSimpleIniA::Entry::LoadOrder());
    return Trimmed(ToWide(CP_UTF8, values.front().pItem));
}

std::wstring WithoutQuotes(const std::wstring& strValue) {
    const bool bQuoted = strValue.size() >= 2 && strValue.front() == strValue.back() &&
                         (strValue.front() == L'"' || strValue.front() == L'\'');
    return bQuoted ? strValue.substr(1, strValue.size() - 2) : strValue;
}

} // namespace

UINT WINAPI GetPrivateProfileIntW(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName) {
    const std::wstring strValue = WithoutQuotes(ReadValue(pszSection, pszKey, pszFileName));
    if (strValue.empty())
        return static_cast<UINT>(nDefault);

    const wchar_t* pch = strValue.c_str();
    while (*pch != 0 && *pch <= L' ')
        pch++;
    const bool bNegative = *pch == L'-';
    if (*pch == L'-' || *pch == L'+')
        pch++;
    unsigned nBase = 10;
    if (*pch == L'0' && (pch[1] == L'x' || pch[1] == L'o' || pch[1] == L'b')) {
        nBase = pch[1] == L'x' ? 16 : pch[1] == L'o' ? 8 : 2;
        pch += 2;
    }
    UINT nValue = 0;
    for (;; pch++) {
        unsigned nDigit = nBase;
        if (*pch >= L'0' && *pch <= L'9')
            nDigit = static_cast<unsigned>(*pch - L'0');
        else if (*pch >= L'a' && *pch <= L'f')
            nDigit = static_cast<unsigned>(*pch - L'a') + 10;
        else if (*pch >= L'A' && *pch <= L'F')
            nDigit = static_cast<unsigned>(*pch - L'A') + 10;
        if (nDigit >= nBase)
            break;
        nValue = nValue * nBase + nDigit;
    }
    return bNegative ? 0u - nValue : nValue;
}
