// Code pages, over iconv.

#include <windows.h>

#include "look_alikes.h"

#include <compat/testing.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <iconv.h>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utf8proc.h>

namespace {

constexpr wchar_t g_chReplacement = 0xFFFD;

constexpr std::uint32_t g_chFirstMark = 0x300; // of those that make one character with the letter before them

constexpr unsigned g_nGb18030 = 54936;

std::string IconvName(unsigned nCodePage) {
    return nCodePage == 936 ? "GBK" : nCodePage == g_nGb18030 ? "GB18030" : "CP" + std::to_string(nCodePage);
}

struct SIconvCloser {
    void operator()(void* pConversion) const { iconv_close(pConversion); }
};
typedef std::unique_ptr<void, SIconvCloser> IconvPointer;

IconvPointer OpenIconv(const std::string& strTo, const std::string& strFrom) {
    const iconv_t conversion = iconv_open(strTo.c_str(), strFrom.c_str());
    return IconvPointer(conversion == iconv_t(-1) ? nullptr : conversion);
}

// One code page other than UTF-8. Not for two threads at once: iconv keeps state.
class CCodePage {
public:
    explicit CCodePage(unsigned nCodePage)
        : m_toWide(OpenIconv("WCHAR_T", IconvName(nCodePage))), m_fromWide(OpenIconv(IconvName(nCodePage), "WCHAR_T")),
          m_bGbk(nCodePage == 936), m_bLatin(nCodePage == 1252),
          m_bKeepsControls(nCodePage >= 1250 && nCodePage <= 1258) {}

    bool IsKnown() const { return m_toWide != nullptr && m_fromWide != nullptr; }

    // Bytes of a character beyond ASCII or of its look-alike; nothing when the code page has neither.
    std::optional<std::string> FromWide(wchar_t ch) const {
        if (m_bGbk && ch == g_chEuro)
            return std::string(1, g_nGbkEuro);
        std::array<char, 8> bytes;
        char* pIn = reinterpret_cast<char*>(&ch);
        char* pOut = bytes.data();
        std::size_t nIn = sizeof(ch);
        std::size_t nOut = bytes.size();
        if (Run(m_fromWide, pIn, nIn, pOut, nOut) == 0 && pOut != bytes.data())
            return std::string(bytes.data(), pOut);
        // Windows maps the bytes that its code pages leave undefined to the control characters of the same value.
        if (m_bKeepsControls && ch >= 0x80 && ch < 0xA0 && !ToWide(std::string(1, static_cast<char>(ch)), false))
            return std::string(1, static_cast<char>(ch));
        return m_bLatin ? LookAlike(ch) : std::nullopt;
    }

    struct SCharacter {
        wchar_t ch;
        std::size_t nBytes;
    };
    // First character of the bytes, which must not be empty; nothing when they start with no character.
    std::optional<SCharacter> ToWide(std::string_view strBytes, bool bControls = true) const {
        const BYTE nFirst = static_cast<BYTE>(strBytes.front());
        if (nFirst < 0x80)
            return SCharacter{static_cast<wchar_t>(nFirst), 1};
        if (m_bGbk && nFirst == static_cast<BYTE>(g_nGbkEuro))
            return SCharacter{g_chEuro, 1};
        for (std::size_t nBytes = 1; nBytes <= 4 && nBytes <= strBytes.size(); nBytes++) {
            wchar_t ch = 0;
            char* pIn = const_cast<char*>(strBytes.data());
            char* pOut = reinterpret_cast<char*>(&ch);
            std::size_t nIn = nBytes;
            std::size_t nOut = sizeof(ch);
            if (Run(m_toWide, pIn, nIn, pOut, nOut) == 0 && nOut == 0)
                return SCharacter{ch, nBytes};
        }
        if (bControls && m_bKeepsControls && nFirst < 0xA0)
            return SCharacter{static_cast<wchar_t>(nFirst), 1};
        return std::nullopt;
    }

private:
    static std::optional<std::string> LookAlike(wchar_t ch) {
        if (ch >= 0xFF01 && ch <= 0xFF5E && ch != 0xFF1F)
            return std::string(1, static_cast<char>(ch - 0xFEE0));
        for (const SLookAlikes& row : g_lookAlikes) {
            if (std::wcschr(row.pszCharacters, ch) != nullptr)
                return std::string(1, row.ch);
        }
        return std::nullopt;
    }

    static constexpr wchar_t g_chEuro = 0x20AC;
    static constexpr char g_nGbkEuro = '\x80';

    static std::size_t Run(const IconvPointer& conversion, char*& pIn, std::size_t& nIn, char*& pOut,
                           std::size_t& nOut) {
        iconv(conversion.get(), nullptr, nullptr, nullptr, nullptr); // start anew
        return iconv(conversion.get(), &pIn, &nIn, &pOut, &nOut);
    }

    IconvPointer m_toWide;
    IconvPointer m_fromWide;
    bool m_bGbk;
    bool m_bLatin;
    bool m_bKeepsControls;
};

std::mutex g_codePageMutex; // held while a code page is used

// With the lock held. Null for an unknown one.
const CCodePage* FindCodePage(unsigned nCodePage) {
    static auto& codePages = *new std::map<unsigned, CCodePage>;
    const CCodePage& codePage = codePages.try_emplace(nCodePage, nCodePage).first->second;
    return codePage.IsKnown() ? &codePage : nullptr;
}

bool IsKnownCodePage(unsigned nCodePage) {
    const std::lock_guard lock(g_codePageMutex);
    return nCodePage == CP_UTF8 || FindCodePage(nCodePage) != nullptr;
}

std::atomic<unsigned>& AnsiCodePage() {
    static std::atomic<unsigned> nAnsiCodePage = [] {
        const char* pszSetting = std::getenv("COMPAT_ANSI_CODE_PAGE");
        const auto nSetting = pszSetting == nullptr ? 0 : static_cast<unsigned>(std::strtoul(pszSetting, nullptr, 10));
        return nSetting != CP_ACP && IsKnownCodePage(nSetting) ? nSetting : 1252u;
    }();
    return nAnsiCodePage;
}

unsigned ResolveCodePage(UINT nCodePage) {
    return nCodePage == CP_ACP ? GetACP() : nCodePage;
}

int FailConversion(DWORD nError) {
    SetLastError(nError);
    return 0;
}

bool IsSurrogate(wchar_t ch) {
    return ch >= 0xD800 && ch <= 0xDFFF;
}

// Takes a conversion's result piece by piece: writes what there is room for and counts all of it. Nothing is allocated.
template <class CHARACTER>
class COutput {
public:
    COutput(CHARACTER* pOut, int nRoom) : m_pOut(pOut), m_nRoom(static_cast<std::size_t>(nRoom)) {}

    void Append(CHARACTER ch) {
        if (m_nCount < m_nRoom)
            m_pOut[m_nCount] = ch;
        m_nCount++;
    }

    void Append(std::basic_string_view<CHARACTER> str) {
        for (const CHARACTER ch : str)
            Append(ch);
    }

    // Takes the ASCII characters that the text begins with, which are the same everywhere; tells how many those are.
    template <class OTHER>
    std::size_t AppendAscii(std::basic_string_view<OTHER> str) {
        const auto isOther = [](OTHER ch) { return static_cast<std::make_unsigned_t<OTHER>>(ch) >= 0x80; };
        const auto nLength = static_cast<std::size_t>(std::find_if(str.begin(), str.end(), isOther) - str.begin());
        if (m_nCount < m_nRoom)
            std::copy_n(str.begin(), std::min(nLength, m_nRoom - m_nCount), m_pOut + m_nCount);
        m_nCount += nLength;
        return nLength;
    }

    // What the function returns, under the rules for lengths.
    int Finish() const {
        if (m_nCount > static_cast<std::size_t>(std::numeric_limits<int>::max()))
            return FailConversion(ERROR_INVALID_PARAMETER);
        if (m_nRoom != 0 && m_nCount > m_nRoom)
            return FailConversion(ERROR_INSUFFICIENT_BUFFER);
        return static_cast<int>(m_nCount);
    }

private:
    CHARACTER* m_pOut;
    std::size_t m_nRoom; // 0: only counts
    std::size_t m_nCount = 0;
};

// The one character that a letter and the mark behind it make; nothing when there is none.
std::optional<wchar_t> Composed(wchar_t chLetter, wchar_t chMark) {
    utf8proc_int32_t pair[] = {chLetter, chMark};
    if (IsSurrogate(chLetter) || IsSurrogate(chMark) || utf8proc_normalize_utf32(pair, 2, UTF8PROC_COMPOSE) != 1)
        return std::nullopt;
    return static_cast<wchar_t>(pair[0]);
}

void AppendUtf8(COutput<char>& output, wchar_t ch) {
    char bytes[4];
    const auto nBytes = utf8proc_encode_char(ch, reinterpret_cast<utf8proc_uint8_t*>(bytes));
    output.Append(std::string_view(bytes, static_cast<std::size_t>(nBytes)));
}

// Reads one character; on an error (false) nPosition moves behind the longest start of a character, at least one byte.
bool ReadUtf8(std::string_view strBytes, std::size_t& nPosition, std::uint32_t& nCharacter) {
    const BYTE nFirst = static_cast<BYTE>(strBytes[nPosition++]);
    if (nFirst < 0x80) {
        nCharacter = nFirst;
        return true;
    }
    if (nFirst < 0xC2 || nFirst > 0xF4)
        return false;
    const int nTrailing = nFirst < 0xE0 ? 1 : nFirst < 0xF0 ? 2 : 3;
    nCharacter = nFirst & (0x3F >> nTrailing);
    for (int nIndex = 0; nIndex < nTrailing; nIndex++) {
        if (nPosition == strBytes.size())
            return false;
        const BYTE nByte = static_cast<BYTE>(strBytes[nPosition]);
        // The second byte rules out overlong forms, surrogates and values that are too large.
        const BYTE nLowest = nIndex > 0 ? 0x80 : nFirst == 0xE0 ? 0xA0 : nFirst == 0xF0 ? 0x90 : 0x80;
        const BYTE nHighest = nIndex > 0 ? 0xBF : nFirst == 0xED ? 0x9F : nFirst == 0xF4 ? 0x8F : 0xBF;
        if (nByte < nLowest || nByte > nHighest)
            return false;
        nCharacter = nCharacter << 6 | (nByte & 0x3F);
        nPosition++;
    }
    return true;
}

} // namespace

UINT WINAPI GetACP() {
    return AnsiCodePage();
}

bool CompatSetAnsiCodePage(unsigned nCodePage) {
    if (nCodePage == CP_ACP || !IsKnownCodePage(nCodePage))
        return false;
    AnsiCodePage() = nCodePage;
    return true;
}

int WINAPI WideCharToMultiByte(UINT nCodePage, DWORD nFlags, LPCWSTR pszWide, int nWideLength, LPSTR pszBytes,
                               int nBytes, LPCSTR, LPBOOL) {
    nCodePage = ResolveCodePage(nCodePage);
    if (nFlags != 0 && (nCodePage == CP_UTF8 || nCodePage == g_nGb18030))
        return FailConversion(ERROR_INVALID_FLAGS);
    const std::wstring_view strWide(pszWide,
                                    nWideLength < 0 ? std::wcslen(pszWide) + 1 : static_cast<std::size_t>(nWideLength));
    COutput<char> output(pszBytes, nBytes);
    if (nCodePage == CP_UTF8) {
        for (std::size_t nPosition = output.AppendAscii(strWide); nPosition < strWide.size();
             nPosition += output.AppendAscii(strWide.substr(nPosition))) {
            const wchar_t ch = strWide[nPosition++];
            AppendUtf8(output, IsSurrogate(ch) ? g_chReplacement : ch);
        }
    } else if (COutput<char> ascii = output; ascii.AppendAscii(strWide) == strWide.size()) {
        return ascii.Finish(); // the same in every code page
    } else {
        const std::lock_guard lock(g_codePageMutex);
        const CCodePage* pCodePage = FindCodePage(nCodePage);
        const auto append = [&](wchar_t ch) {
            if (static_cast<std::uint32_t>(ch) < 0x80)
                output.Append(static_cast<char>(ch)); // in every code page
            else if (const auto strBytes = pCodePage->FromWide(ch))
                output.Append(*strBytes);
            else
                output.Append(ch > 0xFFFF ? "??" : "?"); // beyond the basic plane, Windows has two units
        };
        for (std::size_t nPosition = 0; nPosition < strWide.size(); nPosition++) {
            const wchar_t ch = strWide[nPosition];
            const wchar_t chNext = nPosition + 1 < strWide.size() ? strWide[nPosition + 1] : 0;
            if ((nFlags & WC_COMPOSITECHECK) != 0 && static_cast<std::uint32_t>(chNext) >= g_chFirstMark) {
                const std::optional<wchar_t> chComposed = Composed(ch, chNext);
                if (chComposed && pCodePage->FromWide(*chComposed)) {
                    append(*chComposed);
                    nPosition++; // the mark is done with
                    continue;
                }
            }
            append(ch);
        }
    }
    return output.Finish();
}

int WINAPI MultiByteToWideChar(UINT nCodePage, DWORD nFlags, LPCSTR pszBytes, int nBytes, LPWSTR pszWide,
                               int nWideLength) {
    nCodePage = ResolveCodePage(nCodePage);
    const bool bStrict = (nFlags & MB_ERR_INVALID_CHARS) != 0;
    const std::string_view strBytes(pszBytes,
                                    nBytes < 0 ? std::strlen(pszBytes) + 1 : static_cast<std::size_t>(nBytes));
    COutput<wchar_t> output(pszWide, nWideLength);
    if (nCodePage == CP_UTF8) {
        for (std::size_t nPosition = output.AppendAscii(strBytes); nPosition < strBytes.size();
             nPosition += output.AppendAscii(strBytes.substr(nPosition))) {
            std::uint32_t nCharacter = 0;
            const bool bValid = ReadUtf8(strBytes, nPosition, nCharacter);
            if (!bValid && bStrict)
                return FailConversion(ERROR_NO_UNICODE_TRANSLATION);
            output.Append(bValid ? static_cast<wchar_t>(nCharacter) : g_chReplacement);
        }
    } else {
        const std::lock_guard lock(g_codePageMutex);
        const CCodePage* pCodePage = FindCodePage(nCodePage);
        for (std::size_t nPosition = output.AppendAscii(strBytes); nPosition < strBytes.size();
             nPosition += output.AppendAscii(strBytes.substr(nPosition))) {
            const auto character = pCodePage->ToWide(strBytes.substr(nPosition));
            if (!character && bStrict)
                return FailConversion(ERROR_NO_UNICODE_TRANSLATION);
            output.Append(character ? character->ch : g_chReplacement);
            nPosition += character ? character->nBytes : 1;
        }
    }
    return output.Finish();
}
