// Initialisation files.
//
// SimpleIni reads them. It was chosen over the other packaged INI libraries because what it accepts is what Windows
// accepts: '=' is the only separator, ';' comments stand on lines of their own, values keep a ';', lines and values
// have no length limit, a line does not continue the one before. Its text converter and its order of names are
// parameters, so code pages and case follow the Win32 functions. What it cannot tell is a section that occurs twice (it
// joins them, Windows only looks into the first), so the sections are numbered before it reads them. One difference is
// left: it takes lines that start with '#' as comments.

#include "text.h"

#define SI_IMPLEMENTATION // the class template is instantiated here,
#define SI_NO_CONVERSION  // with the converter below
#include <SimpleIni.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace {

// The library's two customisation points.
struct SNoCaseLess {
    bool operator()(const wchar_t* pszLeft, const wchar_t* pszRight) const { return _wcsicmp(pszLeft, pszRight) < 0; }
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

typedef CSimpleIniTempl<wchar_t, SNoCaseLess, CTextConverter> IniFile;

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
    const bool bUtf8 = strBytes.starts_with("\xEF\xBB\xBF");
    if (bUtf8)
        return Utf8ToWide(strBytes.substr(3));
    if (strBytes.empty())
        return std::wstring();
    const int nBytes = static_cast<int>(strBytes.size());
    std::wstring strText(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, strBytes.data(), nBytes, nullptr, 0)),
                         L'\0');
    MultiByteToWideChar(CP_ACP, 0, strBytes.data(), nBytes, strText.data(), static_cast<int>(strText.size()));
    return strText;
}

std::wstring Trimmed(const std::wstring& strText) {
    constexpr const wchar_t* pszBlanks = L" \t\r\n\v\f\x1A";
    const std::size_t nFirst = strText.find_first_not_of(pszBlanks);
    if (nFirst == std::wstring::npos)
        return std::wstring();
    return strText.substr(nFirst, strText.find_last_not_of(pszBlanks) - nFirst + 1);
}

// "[Name]" becomes "[1:Name]", the next section "[2:...]" and so on: each section gets a name of its own.
std::wstring NumberSections(const std::wstring& strText) {
    std::wstring strResult;
    int nSection = 0;
    for (std::size_t nStart = 0; nStart < strText.size();) {
        const std::size_t nEnd = std::min(strText.find_first_of(L"\r\n", nStart), strText.size());
        const std::wstring strLine = Trimmed(strText.substr(nStart, nEnd - nStart));
        if (strLine.starts_with(L'['))
            strResult += L"[" + std::to_wstring(++nSection) + L":" + strLine.substr(1) + L"\n";
        else
            strResult += strLine + L"\n";
        nStart = nEnd + 1;
    }
    return strResult;
}

// A loaded file: the library, and its sections in file order with the names they have in the file.
class CProfile {
public:
    explicit CProfile(const wchar_t* pszFileName) {
        m_ini.SetMultiKey(true); // keeps all keys of one name, so that the first can be taken
        const std::optional<std::wstring> strText = ReadText(pszFileName);
        if (!strText)
            return;
        const std::string strBytes = WideToUtf8(NumberSections(*strText).c_str());
        m_ini.LoadData(strBytes.data(), strBytes.size());

        IniFile::TNamesDepend sections;
        m_ini.GetAllSections(sections);
        sections.sort(IniFile::Entry::LoadOrder());
        for (const IniFile::Entry& section : sections) {
            const wchar_t* pszSeparator = std::wcschr(section.pItem, L':');
            if (pszSeparator != nullptr)
                m_sections.push_back({Trimmed(pszSeparator + 1), section.pItem});
        }
    }

    std::vector<std::wstring> SectionNames() const {
        std::vector<std::wstring> names;
        for (const SSection& section : m_sections)
            names.push_back(section.strName);
        return names;
    }

    std::vector<std::wstring> KeyNames(const wchar_t* pszSection) const {
        std::vector<std::wstring> names;
        const wchar_t* pszInternal = FindSection(pszSection);
        IniFile::TNamesDepend keys;
        if (pszInternal != nullptr && m_ini.GetAllKeys(pszInternal, keys)) {
            keys.sort(IniFile::Entry::LoadOrder());
            for (const IniFile::Entry& key : keys)
                names.emplace_back(key.pItem);
        }
        return names;
    }

    std::optional<std::wstring> Value(const wchar_t* pszSection, const wchar_t* pszKey) const {
        const wchar_t* pszInternal = FindSection(pszSection);
        IniFile::TNamesDepend values;
        if (pszInternal == nullptr || !m_ini.GetAllValues(pszInternal, Trimmed(pszKey).c_str(), values))
            return std::nullopt;
        values.sort(IniFile::Entry::LoadOrder());
        return values.front().pItem;
    }

private:
    struct SSection {
        std::wstring strName;
        const wchar_t* pszInternal; // the numbered name; belongs to the library
    };

    const wchar_t* FindSection(const wchar_t* pszSection) const {
        const std::wstring strWanted = Trimmed(pszSection);
        const auto found = std::find_if(m_sections.begin(), m_sections.end(), [&](const SSection& section) {
            return _wcsicmp(section.strName.c_str(), strWanted.c_str()) == 0;
        });
        return found == m_sections.end() ? nullptr : found->pszInternal;
    }

    IniFile m_ini;
    std::vector<SSection> m_sections;
};

std::wstring WithoutQuotes(const std::wstring& strValue) {
    const bool bQuoted = strValue.size() >= 2 && strValue.front() == strValue.back() &&
                         (strValue.front() == L'"' || strValue.front() == L'\'');
    return bQuoted ? strValue.substr(1, strValue.size() - 2) : strValue;
}

DWORD CopyText(const std::wstring& strText, LPWSTR pszReturned, DWORD nSize) {
    const std::size_t nLength = std::min<std::size_t>(strText.size(), nSize - 1);
    std::wmemcpy(pszReturned, strText.data(), nLength);
    pszReturned[nLength] = 0;
    return static_cast<DWORD>(nLength);
}

DWORD CopyNames(const std::vector<std::wstring>& names, LPWSTR pszReturned, DWORD nSize) {
    std::wstring strNames;
    for (const std::wstring& strName : names)
        strNames += strName + L'\0';
    if (strNames.size() < nSize) {
        std::wmemcpy(pszReturned, strNames.data(), strNames.size());
        pszReturned[strNames.size()] = 0;
        return static_cast<DWORD>(strNames.size());
    }
    // Cut: two zeros end the list, and the answer says so.
    const DWORD nCopied = nSize < 2 ? 0 : nSize - 2;
    std::wmemcpy(pszReturned, strNames.data(), nCopied);
    std::wmemset(pszReturned + nCopied, 0, nSize - nCopied);
    return nCopied;
}

} // namespace

DWORD WINAPI GetPrivateProfileStringW(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault, LPWSTR pszReturned,
                                      DWORD nSize, LPCWSTR pszFileName) {
    if (pszReturned == nullptr || nSize == 0 || pszFileName == nullptr)
        return 0;
    const CProfile profile(pszFileName);
    if (pszSection == nullptr)
        return CopyNames(profile.SectionNames(), pszReturned, nSize);
    if (pszKey == nullptr)
        return CopyNames(profile.KeyNames(pszSection), pszReturned, nSize);

    if (const auto strValue = profile.Value(pszSection, pszKey))
        return CopyText(WithoutQuotes(*strValue), pszReturned, nSize);
    std::wstring strDefault = pszDefault == nullptr ? L"" : pszDefault;
    strDefault.erase(strDefault.find_last_not_of(L' ') + 1);
    return CopyText(strDefault, pszReturned, nSize);
}

UINT WINAPI GetPrivateProfileIntW(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName) {
    if (pszSection == nullptr || pszKey == nullptr || pszFileName == nullptr)
        return static_cast<UINT>(nDefault);
    const std::optional<std::wstring> strStored = CProfile(pszFileName).Value(pszSection, pszKey);
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
