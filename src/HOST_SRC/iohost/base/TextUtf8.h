// Texts between the contract's strings and JSON's UTF-8.
#pragma once

#include <filesystem>
#include <string>

#include "HostSetup.h"

/// UTF-8 of the whole string, zeros within it included.
inline std::string Utf8(const CString& strText) {
    return ToUtf8(strText.GetString(), strText.GetLength());
}

/// The standard library has the texts of paths in a type of its own.
inline std::string Utf8(const std::u8string& text) {
    return {text.begin(), text.end()};
}

/// A path as UTF-8, and back.
inline std::string Utf8(const std::filesystem::path& path) {
    return Utf8(path.u8string());
}

inline std::filesystem::path PathFromUtf8(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}
