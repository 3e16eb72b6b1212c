// Texts between the contract's strings and JSON's UTF-8.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "HostSetup.h"

/// UTF-8 of the whole string, zeros within it included.
inline std::string Utf8(const CString& strText) {
    return ToUtf8(strText.GetString(), strText.GetLength());
}

/// The text of well-formed UTF-8; nothing for other bytes.
inline std::optional<CString> WellFormedText(std::string_view utf8) {
    const auto nBytes = static_cast<int>(utf8.size());
    const int nLength =
        nBytes == 0 ? 0 : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), nBytes, nullptr, 0);
    if (nLength == 0 && nBytes != 0) {
        return std::nullopt;
    }
    return FromUtf8(utf8);
}

/// A path as UTF-8, and back.
inline std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

inline std::filesystem::path PathFromUtf8(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}
