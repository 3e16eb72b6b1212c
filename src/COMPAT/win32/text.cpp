#include "text.h"

#include <algorithm>
#include <cwctype>

std::string WideToUtf8(const std::wstring& strText) {
    const int nLength = static_cast<int>(strText.size());
    const int nBytes = WideCharToMultiByte(CP_UTF8, 0, strText.data(), nLength, nullptr, 0, nullptr, nullptr);
    std::string strBytes(static_cast<std::size_t>(nBytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, strText.data(), nLength, strBytes.data(), nBytes, nullptr, nullptr);
    return strBytes;
}

std::wstring ToWide(UINT nCodePage, const std::string& strBytes) {
    const int nBytes = static_cast<int>(strBytes.size());
    const int nLength = MultiByteToWideChar(nCodePage, 0, strBytes.data(), nBytes, nullptr, 0);
    std::wstring strText(static_cast<std::size_t>(nLength), L'\0');
    MultiByteToWideChar(nCodePage, 0, strBytes.data(), nBytes, strText.data(), nLength);
    return strText;
}

std::string NativePath(const std::wstring& strPath) {
    std::string strNative = WideToUtf8(strPath);
    std::replace(strNative.begin(), strNative.end(), '\\', '/');
    return strNative;
}

std::wstring FoldCase(std::wstring strName) {
    std::transform(strName.begin(), strName.end(), strName.begin(),
                   [](wchar_t ch) { return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(ch))); });
    return strName;
}
