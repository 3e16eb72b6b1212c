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

bool IsHalf(unsigned nCharacter) {
    return (nCharacter & ~0x7FFU) == 0xD800;
}

/// Whether the builds differ about a character, or what a half of a surrogate pair is in UTF-8 is ours to say.
bool IsPeculiar(wchar_t c) {
    const auto nCharacter = static_cast<unsigned>(c);
    return nCharacter >= 0xA0 && (IsWideSpace(c) || IsHalf(nCharacter) || nCharacter == 0xFFFF);
}

/// Write a character; where it ends. Halves of surrogate pairs are written like other characters, since the wide build
/// keeps them. U+FFFF is the end of the text to the wide build, as the byte FF is to the other.
char* PutUtf8(char* pBytes, wchar_t c) {
    static_assert(std::is_signed_v<char>, "the byte FF would be no end to the library");
    const auto nCharacter = static_cast<unsigned>(c);
    const auto put = [&pBytes](unsigned nByte) { *pBytes++ = static_cast<char>(nByte); };
    const auto putTrail = [&put](unsigned nBits) { put(0x80 | (nBits & 0x3F)); };
    if (nCharacter < 0x80) {
        put(nCharacter);
    } else if (nCharacter < 0x800) {
        put(0xC0 | nCharacter >> 6);
        putTrail(nCharacter);
    } else if (nCharacter == 0xFFFF) {
        put(0xFF);
    } else if (nCharacter < 0x10000) {
        put(0xE0 | nCharacter >> 12);
        putTrail(nCharacter >> 6);
        putTrail(nCharacter);
    } else if (nCharacter > 0x10FFFF) {
        return PutUtf8(pBytes, L'\xFFFD');
    } else {
        put(0xF0 | nCharacter >> 18);
        putTrail(nCharacter >> 12);
        putTrail(nCharacter >> 6);
        putTrail(nCharacter);
    }
    return pBytes;
}

char* PutUtf8(char* pBytes, std::wstring_view text) {
    for (const wchar_t c : text) {
        pBytes = PutUtf8(pBytes, c);
    }
    return pBytes;
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

/// Write the escape that the text begins with; the number of characters that it takes. The wide build takes any code
/// unit behind the first half of a surrogate pair, which the other refuses: there the halves are written themselves.
size_t PutEscape(char*& pBytes, std::wstring_view text) {
    const int nFirst = EscapedUnit(text);
    const int nSecond = IsFirstHalf(nFirst) ? EscapedUnit(text.substr(UNIT_ESCAPE_LENGTH)) : -1;
    if (nSecond < 0 || IsSecondHalf(nSecond)) {
        const std::wstring_view escape = text.substr(0, nSecond < 0 ? 2 : 2 * UNIT_ESCAPE_LENGTH);
        pBytes = PutUtf8(pBytes, escape);
        return escape.size();
    }
    pBytes = PutUtf8(pBytes, static_cast<wchar_t>(nFirst));
    if (IsFirstHalf(nSecond)) {
        pBytes = PutUtf8(pBytes, static_cast<wchar_t>(nSecond));
    } else {
        pBytes = PutUtf8(pBytes, text.substr(UNIT_ESCAPE_LENGTH, UNIT_ESCAPE_LENGTH));
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

/// Write the text with the peculiar parts of it as the wide build would read them.
char* PutPeculiar(char* pBytes, std::wstring_view text) {
    bool bInString = false;
    for (size_t i = 0; i < text.size();) {
        const wchar_t c = text[i];
        if (const size_t nComment = bInString ? 0 : CommentLength(text.substr(i))) {
            pBytes = PutUtf8(pBytes, text.substr(i, nComment));
            i += nComment;
        } else if (c == L'\\') {
            i += PutEscape(pBytes, text.substr(i));
        } else {
            bInString ^= c == L'"';
            pBytes = PutUtf8(pBytes, !bInString && IsWideSpace(c) ? L' ' : c);
            ++i;
        }
    }
    return pBytes;
}

/// Write a text in which no character is peculiar; null when one is. Most of any text is ASCII, which whole blocks are
/// written of at once.
char* PutPlain(char* pBytes, std::wstring_view text) {
    constexpr size_t BLOCK_LENGTH = 32; // compilers make single steps of shorter ones
    while (!text.empty()) {
        const std::wstring_view block = text.substr(0, BLOCK_LENGTH);
        text.remove_prefix(block.size());
        if (block.size() == BLOCK_LENGTH) {
            unsigned nAll = 0; // bits of all its characters
            for (size_t i = 0; i < BLOCK_LENGTH; ++i) {
                nAll |= static_cast<unsigned>(block[i]);
            }
            if (nAll < 0x80) {
                pBytes = std::transform(block.data(), block.data() + BLOCK_LENGTH, pBytes,
                                        [](wchar_t c) { return static_cast<char>(c); });
                continue;
            }
        }
        for (const wchar_t c : block) {
            if (static_cast<unsigned>(c) < 0x80) {
                *pBytes++ = static_cast<char>(c);
            } else if (!IsPeculiar(c)) {
                pBytes = PutUtf8(pBytes, c);
            } else {
                return nullptr;
            }
        }
    }
    return pBytes;
}

[[maybe_unused]] void WriteUtf8(std::string& utf8, std::wstring_view text) {
    constexpr size_t MOST_BYTES = 4; // of a character
    utf8.resize(text.size() * MOST_BYTES);
    const bool bUnitEscapes = text.find(L"\\u") != std::wstring_view::npos;
    const char* pEnd = bUnitEscapes ? nullptr : PutPlain(utf8.data(), text);
    if (pEnd == nullptr) {
        pEnd = PutPeculiar(utf8.data(), text);
    }
    utf8.resize(static_cast<size_t>(pEnd - utf8.data()));
}

template <typename LibraryChar>
void WriteText(std::basic_string<LibraryChar>& libraryText, std::wstring_view text) {
    if constexpr (std::is_same_v<LibraryChar, wchar_t>) {
        libraryText = text;
    } else {
        WriteUtf8(libraryText, text);
    }
}

/// The value that the text says, which is written for the library first. Nothing is made beside the library's own
/// value: a short text is soon parsed.
web::json::value Parse(utility::string_t& libraryText, std::wstring_view text) {
    try {
        WriteText(libraryText, text);
        return web::json::value::parse(libraryText);
    } catch (const std::exception&) {
        return web::json::value();
    }
}

} // namespace

web::json::value ParseJsonText(const CString& strText) {
    // Kept from text to text, which one thread delivers: long pieces of memory that come and go slow the library down.
    static utility::string_t s_text;
    constexpr size_t MOST_KEPT = 262'144;

    web::json::keep_object_element_order(true); // a setting of the process
    web::json::value value = Parse(s_text, {strText.GetString(), static_cast<size_t>(strText.GetLength())});
    if (s_text.capacity() > MOST_KEPT) {
        utility::string_t().swap(s_text);
    }
    return value;
}
