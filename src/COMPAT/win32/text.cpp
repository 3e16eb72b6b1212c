#include "text.h"

#include <algorithm>
#include <cwctype>

std::string WideToUtf8(const wchar_t* pszText) {
    if (pszText == nullptr || *pszText == 0)
        return std::string();
    const int nLength = static_cast<int>(std::wcslen(pszText));
    std::string strBytes(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, pszText, nLength, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, pszText, nLength, strBytes.data(), static_cast<int>(strBytes.size()), nullptr,
                        nullptr);
    return strBytes;
}

std::wstring Utf8ToWide(const std::string& strText) {
    if (strText.empty())
        return std::wstring();
    const int nBytes = static_cast<int>(strText.size());
    std::wstring strWide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, strText.data(), nBytes, nullptr, 0)),
                         L'\0');
    MultiByteToWideChar(CP_UTF8, 0, strText.data(), nBytes, strWide.data(), static_cast<int>(strWide.size()));
    return strWide;
}

std::string NativePath(const wchar_t* pszPath) {
    std::string strPath = WideToUtf8(pszPath);
    std::replace(strPath.begin(), strPath.end(), '\\', '/');
    return strPath;
}

std::wstring FoldCase(const wchar_t* pszName) {
    std::wstring strName(pszName);
    std::transform(strName.begin(), strName.end(), strName.begin(),
                   [](wchar_t ch) { return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(ch))); });
    return strName;
}
