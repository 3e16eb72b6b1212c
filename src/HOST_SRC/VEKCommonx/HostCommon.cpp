#include "host/HostCommon.h"
#include "host/Codes.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <string_view>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "HostSetup.h"
#include "NativePath.h"

namespace {

/// Lets texts be found without making a std::wstring of the key.
struct STextHash : std::hash<std::wstring_view> {
    using is_transparent = void;
};

struct SHostSetup {
    CString strAppPath;
    bool bConfigurationHidden = false;
    std::unordered_map<std::wstring, CString, STextHash, std::equal_to<>> texts;
};

/// Made on first use: other static objects may look up texts while they are built.
SHostSetup& Setup() {
    static SHostSetup s_setup;
    return s_setup;
}

} // namespace

CString PXLoadString(const wchar_t* pszKey) {
    if (pszKey == nullptr) {
        return CString();
    }
    const auto& texts = Setup().texts;
    const auto text = texts.find(std::wstring_view(pszKey));
    return text != texts.end() ? text->second : CString(pszKey);
}

CString PXGetAppPath() {
    return Setup().strAppPath;
}

CString PXGetPath(int nKind) {
    if (nKind != PATH_CONFIG) {
        return CString();
    }
    if (Setup().bConfigurationHidden) {
        // The program's own file: nothing lies in a file. An empty answer would lead to the root folder.
        wchar_t szFile[4096];
        return CString(szFile,
                       static_cast<int>(GetModuleFileNameW(nullptr, szFile, static_cast<DWORD>(std::size(szFile)))));
    }
    return Setup().strAppPath + L"\\Config";
}

int SplitString(const CString& strText, const CString& strSeparator, CStringArray& arPiece, int nOption) {
    int nPieces = 0;
    int nBegin = 0;
    for (bool bLast = strText.IsEmpty(); !bLast;) {
        int nEnd = strSeparator.IsEmpty() ? -1 : strText.Find(strSeparator, nBegin);
        bLast = nEnd < 0;
        nEnd = bLast ? strText.GetLength() : nEnd;
        if (nEnd > nBegin || nOption == SPLIT_KEEP_EMPTY) {
            // Pieces of the call before are written over, so that splitting again and again allocates nothing.
            if (nPieces == arPiece.GetSize()) {
                arPiece.SetSize(nPieces + 1);
            }
            arPiece[nPieces++].SetString(strText.GetString() + nBegin, nEnd - nBegin);
        }
        nBegin = nEnd + strSeparator.GetLength();
    }
    arPiece.SetSize(nPieces);
    return nPieces;
}

void SetAppPath(const CString& strPath) {
    Setup().strAppPath = strPath;
    Setup().bConfigurationHidden = false;
}

void HideConfiguration() {
    Setup().bConfigurationHidden = true;
}

bool SetTextTable(ETextTable nTable) {
    if (nTable == ETextTable::Keys) {
        Setup().texts.clear();
        return true;
    }
    const wchar_t* pszFile = nTable == ETextTable::Chinese ? L"\\Texts\\zh.json" : L"\\Texts\\en.json";
    std::ifstream file(NativePath(PXGetPath(PATH_CONFIG) + pszFile), std::ios::binary);
    const auto document = nlohmann::json::parse(file, nullptr, false);
    if (!document.is_object()) {
        return false;
    }
    decltype(SHostSetup::texts) texts;
    for (const auto& [key, text] : document.items()) {
        if (!text.is_string()) {
            return false;
        }
        texts.emplace(FromUtf8(key).GetString(), FromUtf8(text.get_ref<const std::string&>()));
    }
    Setup().texts = std::move(texts);
    return true;
}

std::string ToUtf8(const wchar_t* pszText, int nLength) {
    if (nLength < 0) {
        nLength = static_cast<int>(std::wcslen(pszText));
    }
    if (nLength == 0) {
        return {};
    }
    std::string utf8(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, pszText, nLength, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, pszText, nLength, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    return utf8;
}

/// False, with the text emptied, when it can't be decoded.
static bool DecodeUtf8(CString& strText, std::string_view utf8, DWORD nFlags) {
    const int nBytes = static_cast<int>(utf8.size()); // characters at most
    if (nBytes == 0) {
        return true;
    }
    const int nLength =
        MultiByteToWideChar(CP_UTF8, nFlags, utf8.data(), nBytes, strText.GetBufferSetLength(nBytes), nBytes);
    strText.ReleaseBuffer(nLength);
    return nLength > 0;
}

CString FromUtf8(std::string_view text) {
    CString strText;
    DecodeUtf8(strText, text, 0);
    return strText;
}

std::optional<CString> WellFormedText(std::string_view utf8) {
    CString strText;
    return DecodeUtf8(strText, utf8, MB_ERR_INVALID_CHARS) ? std::optional(std::move(strText)) : std::nullopt;
}
