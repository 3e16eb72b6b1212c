// Prints what the system functions that the module and its host call answer to a table of inputs, and to random ones
// that are the same in each run. The native build's output and the Windows build's must be identical: see
// same_outputs.py.
//
//   system_outputs FOLDER      an empty folder, for initialisation files

#include <afxwin.h>

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#endif

namespace {

constexpr UINT CODE_PAGE_GBK = 936;
constexpr UINT CODE_PAGE_LATIN = 1252; // what CP_ACP is in these runs

/// One character per byte or UTF-16 unit; what is not plain ASCII as a number.
void PrintUnit(unsigned nUnit) {
    if (nUnit >= 0x20 && nUnit < 0x7F && nUnit != '\\' && nUnit != '"') {
        std::putchar(static_cast<int>(nUnit));
    } else {
        std::printf("\\x%02X.", nUnit);
    }
}

void Print(std::string_view bytes) {
    std::putchar('"');
    for (const char c : bytes) {
        PrintUnit(static_cast<unsigned char>(c));
    }
    std::putchar('"');
}

/// As UTF-16, whatever a wide character is.
void Print(std::wstring_view text) {
    std::putchar('"');
    for (const wchar_t c : text) {
        const auto nCharacter = static_cast<std::uint32_t>(c);
        if (nCharacter >= 0x10000) {
            PrintUnit(0xD800 + ((nCharacter - 0x10000) >> 10));
            PrintUnit(0xDC00 + (nCharacter & 0x3FF));
        } else {
            PrintUnit(nCharacter);
        }
    }
    std::putchar('"');
}

// ---- Initialisation files

struct SProfileLookup {
    const wchar_t* pszSection;
    const wchar_t* pszKey;
    int nDefault;
};

const SProfileLookup PROFILE_LOOKUPS[] = {
    {L"S", L"Key", 7},     {L"s", L"kEY", -1},    {L"T", L"Key", 0},
    {L" S ", L" Key ", 7}, {L"S", L"Other", 7},   {L"Two Words", L"A B", 7},
    {L"[S]", L"Key", 7},   {L"\xC4", L"\xE9", 7}, {L"\x4E2D", L"\x6587", 7},
};

/// What random pieces seldom make up, or never.
const std::string_view PROFILES[] = {
    // case, blanks, ends of lines
    "[s]\r\nkEY = 12 \r\n",
    "  [ S ]  \n\t Key\t=\t12\t\n",
    "[S]\rKey=12\rOther=1\r",
    "[Two Words]\nA B=3\nA  B=4\n",
    "[S]\nKey=1\x1A\nOther=2\n",
    // bases, overflow
    "[S]\nKey=0x1F\nOther=0X1F\n",
    "[S]\nKey=0b101\nOther=0B101\n",
    "[S]\nKey=-0x10\nOther=017\n",
    "[S]\nKey=4294967295\nOther=4294967296\n",
    "[S]\nKey=2147483648\nOther=-2147483649\n",
    "[S]\nKey=0xffffffff\nOther=0x1ffffffff\n",
    // quotation marks, comments, order, several of one name
    "[S]\nKey=\" 12 \"\nOther='12'\n",
    "; [S]\n#[S]\n[S]\n  ;Key=1\n#Key=2\nKey;=3\nKey=4\n",
    "[S]\nOther=1\n[T]\nKey=3\n[s]\nKey=2\n",
    "Key=1\n=2\n[]\nKey=3\n",
    // characters with a meaning elsewhere
    "[S]\nKey:1\n",
    "[S]\nKey=<<<END\n5\nEND\n",
    "[S]\nKey=a\\n\\\nOther=1\n",
    "[S]\nKey=%PATH%\nOther=@1\n",
    "[S\nKey=1\n",
    "[S] trailing\nKey=1\n",
    "[S]]\nKey=1\n[[S]\nKey=2\n",
    // bytes above ASCII, byte order marks
    "[\xC4]\n\xE9=1\n",
    "\xEF\xBB\xBF[S]\nKey=12\n",
    "\xEF\xBB\xBF[\xE4\xB8\xAD]\n\xE6\x96\x87=\xE4\xB8\xAD\n[S]\nKey=\xE4\xB8\xAD\n",
    "\xEF\xBB\xBF",
};

std::string Utf16(std::wstring_view text, bool bBigEndian) {
    std::string bytes = bBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const wchar_t c : text) {
        const char szUnit[] = {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8 & 0xFF)};
        bytes += szUnit[bBigEndian ? 1 : 0];
        bytes += szUnit[bBigEndian ? 0 : 1];
    }
    return bytes;
}

class CProfiles {
public:
    explicit CProfiles(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    void Look(std::string_view bytes) {
        // Each file has a name of its own: the system may know the last file's content.
        const std::filesystem::path file = m_folder / (std::to_string(m_nFile++) + ".ini");
        std::ofstream(file, std::ios::binary) << bytes;
        std::printf("profile ");
        Print(bytes);
        std::putchar('\n');
        LookInto(file);
        std::filesystem::remove(file);
    }

    void LookInto(std::filesystem::path file) {
        const std::wstring strFile = file.make_preferred().wstring();
        for (const SProfileLookup& lookup : PROFILE_LOOKUPS) {
            const UINT nValue =
                GetPrivateProfileIntW(lookup.pszSection, lookup.pszKey, lookup.nDefault, strFile.c_str());
            std::printf("  ");
            Print(lookup.pszSection);
            Print(lookup.pszKey);
            std::printf(" %u\n", nValue);
        }
    }

    /// Files put together out of what has a meaning in them.
    void LookAtRandomOnes(int nFiles) {
        static const std::string_view PIECES[] = {"[S]", "[T]", "[s", "]",  "[",  "S",        "Key",  "key", "Other",
                                                  "=",   "=",   "=",  "\n", "\n", "\n",       "\r\n", " ",   "\t",
                                                  "\v",  "\f",  ";",  "#",  ":",  "\"",       "'",    "-",   "+",
                                                  "0x",  "0b",  "0o", "12", "7",  "99999999", "F",    "a",   "\xE9"};
        std::mt19937 random(20240607);
        for (int i = 0; i < nFiles; ++i) {
            std::string bytes = "[S]\nKey=";
            for (unsigned nPieces = random() % 12; nPieces > 0; --nPieces) {
                bytes += PIECES[random() % std::size(PIECES)];
            }
            Look(bytes);
        }
    }

private:
    std::filesystem::path m_folder;
    int m_nFile = 0;
};

void PrintProfiles(const std::filesystem::path& folder) {
    CProfiles profiles(folder);
    for (const std::string_view bytes : PROFILES) {
        profiles.Look(bytes);
    }
    profiles.Look("[S]\nOther=" + std::string(5000, 'x') + "\nKey=5\n"); // lines may be long
    for (const bool bBigEndian : {false, true}) {
        profiles.Look(Utf16(L"[S]\r\nKey=34\r\nOther=\x4E2D\r\n[\x4E2D]\r\n\x6587=5\r\n", bBigEndian));
        profiles.Look(Utf16(L"", bBigEndian));
    }
    profiles.LookAtRandomOnes(1000);
    std::puts("profile missing");
    profiles.LookInto(folder / "missing.ini");
    profiles.LookInto(folder / "no folder" / "missing.ini");
}

// ---- Code pages

/// Windows alone takes characters for others in code page 936; what it has of its own there is left out.
DWORD WithoutGbkLookAlikes(UINT nCodePage, DWORD nFlags) {
#if defined(_WIN32)
    return nCodePage == CODE_PAGE_GBK ? nFlags | WC_NO_BEST_FIT_CHARS : nFlags;
#else
    static_cast<void>(nCodePage);
    return nFlags;
#endif
}

constexpr int ROOM = 64;

void PrintBytes(UINT nCodePage, DWORD nFlags, std::wstring_view text, int nRoom = ROOM) {
    char bytes[ROOM];
    std::memset(bytes, '#', sizeof(bytes));
    SetLastError(0);
    const int nBytes =
        WideCharToMultiByte(nCodePage, WithoutGbkLookAlikes(nCodePage, nFlags), text.data(),
                            static_cast<int>(text.size()), nRoom == 0 ? nullptr : bytes, nRoom, nullptr, nullptr);
    const DWORD nError = nBytes == 0 ? GetLastError() : 0;
    std::printf("bytes %u %X ", nCodePage, static_cast<unsigned>(nFlags));
    Print(text);
    std::printf(" in %d: %d, %u ", nRoom, nBytes, static_cast<unsigned>(nError));
    Print(std::string_view(bytes, nRoom == 0 ? 0 : static_cast<size_t>(nBytes)));
    std::putchar('\n');
}

const std::wstring_view TEXTS[] = {L"a", L"plain text", std::wstring_view(L"with\0zero", 9), L"\xE9\x20AC\x81",
                                   L"\x4E2D\x6587", L"\x4E2D a \xE9", L"\x0E01\x0100", L"\U0001F600", L"a\U0001F600z",
                                   // marks behind letters
                                   L"e\x0301", L"e\x0301\x0301", L"\x0301", L"a\x0308o\x0308u\x0308",
                                   L"n\x0303 c\x0327 A\x030A", L"x\x0301", L"q\x0302z", L"\xE9\x0301", L"u\x0308\x0304",
                                   L"\x4E2D\x0301"};

bool IsPrivate(wchar_t c) {
    return c >= 0xE000 && c <= 0xF8FF;
}

void PrintCodePages() {
    for (const UINT nCodePage : {UINT(CP_UTF8), UINT(CP_ACP), CODE_PAGE_LATIN, CODE_PAGE_GBK}) {
        for (const DWORD nFlags : {DWORD(0), DWORD(WC_COMPOSITECHECK)}) {
            if (nCodePage == CP_UTF8 && nFlags != 0) {
                continue;
            }
            for (const std::wstring_view text : TEXTS) {
                PrintBytes(nCodePage, nFlags, text);
                PrintBytes(nCodePage, nFlags, text, 0);
            }
            // Halves of pairs, alone and in the wrong order.
            constexpr wchar_t HIGH = 0xD83D;
            constexpr wchar_t LOW = 0xDE00;
            for (const std::vector<wchar_t>& units : std::vector<std::vector<wchar_t>>{
                     {HIGH}, {LOW}, {'a', HIGH, 'b'}, {LOW, HIGH}, {HIGH, HIGH, 'a'}, {'a', LOW, LOW}}) {
                PrintBytes(nCodePage, nFlags, {units.data(), units.size()});
            }
        }
        for (int nRoom = 0; nRoom < 12; ++nRoom) {
            PrintBytes(nCodePage, 0, std::wstring_view(L"ab\x4E2D\xE9", 5), nRoom);
        }
    }

    // Every character of the basic plane, one by one, but the private ones.
    for (const UINT nCodePage : {CODE_PAGE_LATIN, CODE_PAGE_GBK}) {
        for (unsigned nCharacter = 1; nCharacter < 0x10000; ++nCharacter) {
            const auto c = static_cast<wchar_t>(nCharacter);
            char bytes[8];
            const int nLength = WideCharToMultiByte(nCodePage, WithoutGbkLookAlikes(nCodePage, 0), &c, 1, bytes,
                                                    sizeof(bytes), nullptr, nullptr);
            if (!IsPrivate(c)) {
                std::printf("character %u %04X ", nCodePage, nCharacter);
                Print(std::string_view(bytes, static_cast<size_t>(nLength)));
                std::putchar('\n');
            }
        }
        // And back: every byte, every pair of bytes.
        for (unsigned nBytes = 0; nBytes < 0x10000; ++nBytes) {
            const char bytes[] = {static_cast<char>(nBytes >> 8), static_cast<char>(nBytes)};
            const size_t nCount = nBytes < 0x100 ? 1 : 2;
            wchar_t text[4];
            const int nLength = MultiByteToWideChar(nCodePage, MB_ERR_INVALID_CHARS, bytes + 2 - nCount,
                                                    static_cast<int>(nCount), text, 4);
            if (nLength != 0 && (nCount == 1 || nLength == 1) && !IsPrivate(text[0])) {
                std::printf("text %u ", nCodePage);
                Print(std::string_view(bytes + 2 - nCount, nCount));
                Print(std::wstring_view(text, static_cast<size_t>(nLength)));
                std::putchar('\n');
            }
        }
    }
}

// ---- C run-time

void PrintNumber(const std::wstring& strText) {
    std::printf("number ");
    Print(std::wstring_view(strText));
    std::printf(" %d\n", _wtoi(strText.c_str()));
}

/// Separated by bars.
const std::wstring_view NUMBERS =
    L"12| \t\n\v\f\r12|-12|+12|+-12|- 12|12abc|abc||-|+|0x10|1.9|007|2147483647|2147483648|-2147483648|-2147483649|"
    L"4294967295|4294967296|9223372036854775807|9223372036854775808|-9223372036854775809|99999999999999999999999|"
    L"\u00A012|\u200312|\u300012|\u0661\u0662|\uFF11\uFF12|1\u0661|1_000";

void PrintNumbers() {
    for (size_t nAt = 0, nEnd = 0; nEnd != NUMBERS.npos; nAt = nEnd + 1) {
        nEnd = NUMBERS.find(L'|', nAt);
        PrintNumber(std::wstring(NUMBERS.substr(nAt, nEnd - nAt)));
    }
    // Which characters count as blanks, which as digits.
    for (unsigned nCharacter = 1; nCharacter < 0x10000; ++nCharacter) {
        const wchar_t szBlank[] = {static_cast<wchar_t>(nCharacter), L'1', 0};
        const wchar_t szDigit[] = {L'1', static_cast<wchar_t>(nCharacter), 0};
        if (_wtoi(szBlank) != 0 || _wtoi(szDigit) != 1) {
            std::printf("number with %X %d %d\n", nCharacter, _wtoi(szBlank), _wtoi(szDigit));
        }
    }
    std::mt19937 random(20240608);
    for (int i = 0; i < 500; ++i) {
        std::wstring strText;
        for (unsigned nCharacters = random() % 14; nCharacters > 0; --nCharacters) {
            strText += L" -+0123456789012345678901234567890123456789x"[random() % 44];
        }
        PrintNumber(strText);
    }
}

// ---- Keyboard

void PrintKeys() {
    BYTE state[256];
    for (unsigned nKey = 0; nKey < 256; ++nKey) {
        state[nKey] = static_cast<BYTE>(nKey);
    }
    SetKeyboardState(state);
    for (int nKey = 0; nKey < 256; ++nKey) {
        const SHORT nState = GetKeyState(nKey);
        std::printf("key %d %s%s\n", nKey, nState < 0 ? "down " : "", (nState & 1) != 0 ? "toggled" : "");
    }
    std::memset(state, 0, sizeof(state));
    state[VK_SHIFT] = 0x80;
    state['A'] = 0x81;
    state[VK_CAPITAL] = 0x01;
    SetKeyboardState(state);
    for (const int nKey : {VK_SHIFT, int('A'), VK_CAPITAL, int('B'), -1, 256}) {
        std::printf("key state %d %04X\n", nKey, static_cast<unsigned>(GetKeyState(nKey)) & 0xFFFF);
    }
}

} // namespace

int main(int nArguments, char** ppszArguments) {
    if (nArguments != 2) {
        std::fputs("usage: system_outputs FOLDER\n", stderr);
        return 2;
    }
#if defined(_WIN32)
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    PrintProfiles(ppszArguments[1]);
    PrintCodePages();
    PrintNumbers();
    PrintKeys();
    return 0;
}
