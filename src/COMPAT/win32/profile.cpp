// Initialisation files.

#include "text.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

std::wstring Trimmed(std::wstring_view text) {
    constexpr const wchar_t* pszBlanks = L" \t\r\n\v\f\x1A";
    const std::size_t nFirst = text.find_first_not_of(pszBlanks);
    if (nFirst == std::wstring_view::npos)
        return std::wstring();
    return std::wstring(text.substr(nFirst, text.find_last_not_of(pszBlanks) - nFirst + 1));
}

struct SKey {
    std::wstring strName;
    std::optional<std::wstring> strValue; // nothing when the line has no '='
};

struct SSection {
    std::wstring strName;
    std::vector<SKey> keys;
};

// A file's sections and keys in its order, with all of one name.
class CProfile {
public:
    explicit CProfile(const wchar_t* pszFileName) {
        const std::wstring strText = ReadText(pszFileName).value_or(std::wstring());
        for (std::size_t nStart = 0; nStart < strText.size();) {
            const std::size_t nEnd = std::min(strText.find_first_of(L"\r\n", nStart), strText.size());
            TakeLine(Trimmed(std::wstring_view(strText).substr(nStart, nEnd - nStart)));
            nStart = nEnd + 1;
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
        if (const SSection* pSection = Find(m_sections, pszSection)) {
            for (const SKey& key : pSection->keys)
                names.push_back(key.strName);
        }
        return names;
    }

    std::optional<std::wstring> Value(const wchar_t* pszSection, const wchar_t* pszKey) const {
        const SSection* pSection = Find(m_sections, pszSection);
        const SKey* pKey = pSection == nullptr ? nullptr : Find(pSection->keys, pszKey);
        return pKey == nullptr ? std::nullopt : pKey->strValue;
    }

private:
    // A section's name reaches to the last bracket of its line. What stands before the first section is in none.
    void TakeLine(const std::wstring& strLine) {
        const std::size_t nBracket = strLine.rfind(L']');
        if (strLine.starts_with(L'[') && nBracket != std::wstring::npos) {
            m_sections.push_back({Trimmed(std::wstring_view(strLine).substr(1, nBracket - 1)), {}});
        } else if (!strLine.empty() && !strLine.starts_with(L';') && !m_sections.empty()) {
            const std::size_t nEquals = strLine.find(L'=');
            const std::wstring_view line = strLine;
            m_sections.back().keys.push_back(
                {Trimmed(line.substr(0, nEquals)),
                 nEquals == std::wstring::npos ? std::nullopt : std::optional(Trimmed(line.substr(nEquals + 1)))});
        }
    }

    // The first of that name, whatever its case.
    template <class NAMED>
    static const NAMED* Find(const std::vector<NAMED>& list, const wchar_t* pszName) {
        const std::wstring strWanted = Trimmed(pszName);
        const auto found = std::find_if(list.begin(), list.end(), [&](const NAMED& entry) {
            return _wcsicmp(entry.strName.c_str(), strWanted.c_str()) == 0;
        });
        return found == list.end() ? nullptr : &*found;
    }

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
