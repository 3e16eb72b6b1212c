// Initialisation files.
//
// SimpleIni reads them. It was chosen over the other packaged INI libraries because what it accepts is what Windows
// accepts: '=' is the only separator, ';' comments stand on lines of their own, values keep a ';', lines and values
// have no length limit, a line does not continue the one before. Its text converter and its order of names are
// parameters, so code pages and case follow the Win32 functions. What it cannot tell is a section that occurs twice (it
// joins them, Windows only looks into the first), so it is given the lines of one section. One difference is left: it
// takes lines that start with '#' as comments.

#include "text.h"

#define SI_IMPLEMENTATION // the class template is instantiated here,
#define SI_NO_CONVERSION  // with the converter below
#include <SimpleIni.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace {

// The library's two customisation points: the order of names, and the text converter.
struct SNameLess {
    bool operator()(const wchar_t* pszLeft, const wchar_t* pszRight) const {
        return FoldCase(pszLeft) < FoldCase(pszRight);
    }
};

class CTextConverter {
public:
    explicit CTextConverter(bool) {}

    std::size_t SizeFromStore(const char* pBytes, std::size_t nBytes) {
        if (nBytes == 0)
            return 0;
        return static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, pBytes, static_cast<int>(nBytes), nullptr, 0));
    }
    bool ConvertFromStore(const char* pBytes, std::size_t nBytes, wchar_t* pText, std::size_t nText) {
        return nBytes == 0 ||
               MultiByteToWideChar(CP_UTF8, 0, pBytes, static_cast<int>(nBytes), pText, static_cast<int>(nText)) != 0;
    }
};

typedef CSimpleIniTempl<wchar_t, SNameLess, CTextConverter> IniFile;

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

std::optional<std::wstring> ReadText(const wchar_t* pszFileName) {
    std::ifstream file(NativePath(pszFileName), std::ios::binary);
    if (!file)
        return std::nullopt;
    const std::string strBytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (strBytes.starts_with("\xFF\xFE"))
        return Utf16ToWide(strBytes, false);
    if (strBytes.starts_with("\xFE\xFF"))
        return Utf16ToWide(strBytes, true);
    if (strBytes.starts_with("\xEF\xBB\xBF"))
        return ToWide(CP_UTF8, strBytes.substr(3));
    return ToWide(CP_ACP, strBytes);
}

std::wstring Trimmed(const std::wstring& strText) {
    constexpr const wchar_t* pszBlanks = L" \t\r\n\v\f\x1A";
    const std::size_t nFirst = strText.find_first_not_of(pszBlanks);
    if (nFirst == std::wstring::npos)
        return std::wstring();
    return strText.substr(nFirst, strText.find_last_not_of(pszBlanks) - nFirst + 1);
}

// The lines of the first section of that name, without the blanks around them; empty without one.
std::wstring SectionLines(const std::wstring& strText, const wchar_t* pszSection) {
    const std::wstring strWanted = FoldCase(Trimmed(pszSection));
    std::wstring strLines;
    bool bInside = false;
    for (std::size_t nStart = 0; nStart < strText.size();) {
        const std::size_t nEnd = std::min(strText.find_first_of(L"\r\n", nStart), strText.size());
        const std::wstring strLine = Trimmed(strText.substr(nStart, nEnd - nStart));
        nStart = nEnd + 1;
        const std::size_t nNameEnd = strLine.starts_with(L'[') ? strLine.find(L']') : std::wstring::npos;
        if (nNameEnd == std::wstring::npos) {
            if (bInside)
                strLines += strLine + L"\n";
        } else if (bInside)
            break;
        else
            bInside = FoldCase(Trimmed(strLine.substr(1, nNameEnd - 1))) == strWanted;
    }
    return strLines;
}

std::optional<std::wstring> ReadValue(const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszFileName) {
    const std::optional<std::wstring> strText = ReadText(pszFileName);
    if (!strText)
        return std::nullopt;
    const std::string strBytes = WideToUtf8(SectionLines(*strText, pszSection));
    IniFile section;
    section.SetMultiKey(true); // keeps all keys of one name, so that the first can be taken
    section.LoadData(strBytes.data(), strBytes.size());
    IniFile::TNamesDepend values;
    if (!section.GetAllValues(L"", Trimmed(pszKey).c_str(), values))
        return std::nullopt;
    values.sort(IniFile::Entry::LoadOrder());
    return values.front().pItem;
}

std::wstring WithoutQuotes(const std::wstring& strValue) {
    const bool bQuoted = strValue.size() >= 2 && strValue.front() == strValue.back() &&
                         (strValue.front() == L'"' || strValue.front() == L'\'');
    return bQuoted ? strValue.substr(1, strValue.size() - 2) : strValue;
}

} // namespace

UINT WINAPI GetPrivateProfileIntW(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName) {
    const std::optional<std::wstring> strStored = ReadValue(pszSection, pszKey, pszFileName);
    const std::wstring strValue = strStored ? WithoutQuotes(*strStored) : std::wstring();
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
