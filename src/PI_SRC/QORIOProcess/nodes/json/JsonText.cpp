#include "nodes/json/JsonText.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

namespace {

/// Characters that are white space, or the end of the text, to the library's wide build but not to its UTF-8 build.
constexpr struct {
    wchar_t cFirst;
    wchar_t cLast;
} BUILD_DEPENDENT[] = {{0x80, 0xA0},     {0x1680, 0x1680}, {0x180E, 0x180E}, {0x2000, 0x200F}, {0x2028, 0x202F},
                       {0x205F, 0x2060}, {0x3000, 0x3000}, {0xFEFF, 0xFEFF}, {0xFFFF, 0xFFFF}};

bool IsBuildDependent(wchar_t c) {
    return c >= BUILD_DEPENDENT[0].cFirst && std::ranges::any_of(BUILD_DEPENDENT, [c](const auto& range) {
               return c >= range.cFirst && c <= range.cLast;
           });
}

/// The code unit that an escape names, given what follows its backslash ("u00e9"); -1 for another escape.
int EscapedUnit(std::wstring_view escape) {
    if (escape.size() < 5 || escape.front() != L'u') {
        return -1;
    }
    int nUnit = 0;
    for (const wchar_t c : escape.substr(1, 4)) {
        const int nDigit = c >= L'0' && c <= L'9'   ? c - L'0'
                           : c >= L'a' && c <= L'f' ? c - L'a' + 10
                           : c >= L'A' && c <= L'F' ? c - L'A' + 10
                                                    : -1;
        if (nDigit < 0) {
            return -1;
        }
        nUnit = nUnit << 4 | nDigit;
    }
    return nUnit;
}

/// Whether the escape names the first half of a pair and another one behind it names no second half, which the UTF-8
/// build refuses and the wide build takes.
bool IsBrokenPair(std::wstring_view escape) {
    const int nFirst = EscapedUnit(escape);
    if (nFirst < 0xD800 || nFirst > 0xDBFF || escape.size() < 6 || escape[5] != L'\\') {
        return false;
    }
    const int nSecond = EscapedUnit(escape.substr(6));
    return nSecond >= 0 && (nSecond < 0xDC00 || nSecond > 0xDFFF);
}

/// Whether the builds of the library may judge the text differently.
bool NeedsRewriting(std::wstring_view text) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (IsBuildDependent(text[i]) || (text[i] == L'\\' && IsBrokenPair(text.substr(i + 1)))) {
            return true;
        }
    }
    return false;
}

/// The text with escapes in place of what the builds judge differently: in a string they mean the same, and elsewhere
/// every build refuses them.
std::wstring Rewritten(std::wstring_view text) {
    constexpr std::wstring_view DIGITS = L"0123456789ABCDEF";
    std::wstring rewritten;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'\\') {
            // What follows a backslash belongs to it. A zero behind it is an escape to no build.
            rewritten += L'\\';
            rewritten += IsBrokenPair(text.substr(++i)) || i == text.size() ? L'\0' : text[i];
        } else if (IsBuildDependent(text[i])) {
            const auto nUnit = static_cast<unsigned>(text[i]);
            rewritten += {
                L'\\', L'u', DIGITS[nUnit >> 12], DIGITS[nUnit >> 8 & 15], DIGITS[nUnit >> 4 & 15], DIGITS[nUnit & 15]};
        } else {
            rewritten += text[i];
        }
    }
    return rewritten;
}

utility::string_t ToLibraryString(std::wstring_view text) {
    utility::string_t string;
    if constexpr (std::is_same_v<utility::char_t, wchar_t>) {
        string.assign(text.begin(), text.end());
    } else if (!text.empty()) {
        constexpr size_t MOST_BYTES = 4; // of a character
        string.resize(text.size() * MOST_BYTES);
        const int nBytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                               reinterpret_cast<char*>(string.data()), static_cast<int>(string.size()),
                                               nullptr, nullptr);
        string.resize(static_cast<size_t>(nBytes));
    }
    return string;
}

} // namespace

web::json::value ParseJsonText(const CString& strText) {
    web::json::keep_object_element_order(true); // a setting of the process
    web::json::value value;
    try {
        const std::wstring_view text(strText.GetString(), static_cast<size_t>(strText.GetLength()));
        value =
            web::json::value::parse(NeedsRewriting(text) ? ToLibraryString(Rewritten(text)) : ToLibraryString(text));
    } catch (const std::exception&) {
        return web::json::value();
    }
    return value;
}
