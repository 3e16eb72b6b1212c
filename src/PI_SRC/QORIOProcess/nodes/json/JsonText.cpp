#include "nodes/json/JsonText.h"

#include <algorithm>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>

namespace {

// ---- UTF-8 that the library reads as its wide build reads the text --------------------------------------------------

/// What the wide build takes for white space and the UTF-8 build, which tests single bytes, doesn't.
bool IsWideSpace(wchar_t c) {
    return c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

/// Halves of surrogate pairs are written like other characters, since the wide build keeps them. U+FFFF is the end of
/// the text to the wide build, as the byte FF is to the other.
void AppendUtf8(std::string& utf8, unsigned nCharacter) {
    static_assert(std::is_signed_v<char>, "the byte FF would be no end to the library");
    const auto append = [&utf8](unsigned nByte) { utf8 += static_cast<char>(nByte); };
    if (nCharacter < 0x80) {
        append(nCharacter);
    } else if (nCharacter < 0x800) {
        append(0xC0 | nCharacter >> 6);
        append(0x80 | (nCharacter & 0x3F));
    } else if (nCharacter == 0xFFFF) {
        append(0xFF);
    } else if (nCharacter < 0x10000) {
        append(0xE0 | nCharacter >> 12);
        append(0x80 | (nCharacter >> 6 & 0x3F));
        append(0x80 | (nCharacter & 0x3F));
    } else if (nCharacter > 0x10FFFF) {
        AppendUtf8(utf8, 0xFFFD);
    } else {
        append(0xF0 | nCharacter >> 18);
        append(0x80 | (nCharacter >> 12 & 0x3F));
        append(0x80 | (nCharacter >> 6 & 0x3F));
        append(0x80 | (nCharacter & 0x3F));
    }
}

void AppendUtf8(std::string& utf8, std::wstring_view text) {
    for (const wchar_t c : text) {
        AppendUtf8(utf8, static_cast<unsigned>(c));
    }
}

constexpr size_t UNIT_ESCAPE_LENGTH = 6;

/// The code unit that the text begins with as an escape ("\u00e9"); -1 when it begins otherwise.
int EscapedUnit(std::wstring_view text) {
    if (text.size() < UNIT_ESCAPE_LENGTH || !text.starts_with(L"\\u")) {
        return -1;
    }
    int nUnit = 0;
    for (const wchar_t c : text.substr(2, 4)) {
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

bool IsFirstHalf(int nUnit) {
    return nUnit >= 0xD800 && nUnit <= 0xDBFF;
}

bool IsSecondHalf(int nUnit) {
    return nUnit >= 0xDC00 && nUnit <= 0xDFFF;
}

/// Append the escape that the text begins with; the number of characters that it takes. The wide build takes any code
/// unit behind the first half of a surrogate pair, which the other refuses: there the halves are written themselves.
size_t AppendEscape(std::string& utf8, std::wstring_view text) {
    const int nFirst = EscapedUnit(text);
    const int nSecond = IsFirstHalf(nFirst) ? EscapedUnit(text.substr(UNIT_ESCAPE_LENGTH)) : -1;
    if (nSecond < 0 || IsSecondHalf(nSecond)) {
        const std::wstring_view escape = text.substr(0, nSecond < 0 ? 2 : 2 * UNIT_ESCAPE_LENGTH);
        AppendUtf8(utf8, escape);
        return escape.size();
    }
    AppendUtf8(utf8, static_cast<unsigned>(nFirst));
    if (IsFirstHalf(nSecond)) {
        AppendUtf8(utf8, static_cast<unsigned>(nSecond));
    } else {
        AppendUtf8(utf8, text.substr(UNIT_ESCAPE_LENGTH, UNIT_ESCAPE_LENGTH));
    }
    return 2 * UNIT_ESCAPE_LENGTH;
}

/// The length of the comment that the text begins with; 0 when it begins otherwise.
size_t CommentLength(std::wstring_view text) {
    size_t nLast = 0;
    if (text.starts_with(L"//")) {
        nLast = text.find_first_of(L"\n\xFFFF");
    } else if (text.starts_with(L"/*")) {
        nLast = text.find(L"*/", 2);
        nLast += nLast == std::wstring_view::npos ? 0 : 1;
    } else {
        return 0;
    }
    return nLast == std::wstring_view::npos ? text.size() : nLast + 1;
}

std::string Utf8Text(std::wstring_view text) {
    if (std::ranges::all_of(text, [](wchar_t c) { return static_cast<unsigned>(c) < 0x80 && c != L'\\'; })) {
        return {text.begin(), text.end()};
    }
    std::string utf8;
    utf8.reserve(text.size() * 2);
    bool bInString = false;
    for (size_t i = 0; i < text.size();) {
        const wchar_t c = text[i];
        if (const size_t nComment = bInString ? 0 : CommentLength(text.substr(i))) {
            AppendUtf8(utf8, text.substr(i, nComment));
            i += nComment;
        } else if (c == L'\\') {
            i += AppendEscape(utf8, text.substr(i));
        } else {
            bInString ^= c == L'"';
            AppendUtf8(utf8, static_cast<unsigned>(!bInString && IsWideSpace(c) ? L' ' : c));
            ++i;
        }
    }
    return utf8;
}

// ---- The library's string -------------------------------------------------------------------------------------------

template <typename LibraryChar>
std::basic_string<LibraryChar> LibraryText(std::wstring_view text) {
    if constexpr (std::is_same_v<LibraryChar, wchar_t>) {
        return std::wstring(text);
    } else {
        return Utf8Text(text);
    }
}

} // namespace

web::json::value ParseJsonText(const CString& strText) {
    web::json::keep_object_element_order(true); // a setting of the process
    web::json::value value;
    try {
        const std::wstring_view text(strText.GetString(), static_cast<size_t>(strText.GetLength()));
        value = web::json::value::parse(LibraryText<utility::char_t>(text));
    } catch (const std::exception&) {
        return web::json::value();
    }
    return value;
}
