#include "wide_format.h"

#include <cstdint>
#include <cstdio>
#include <cwchar>

namespace {

enum class ELength { Default, Char, Short, Long, LongLong, Pointer };

// One conversion: %[flags][width][.precision][length]type
struct SConversion {
    std::string strFlags;
    bool bLeft = false;
    int nWidth = 0;
    int nPrecision = -1; // -1: none given
    ELength eLength = ELength::Default;
    wchar_t chType = 0;
};

int ReadNumber(const wchar_t*& pch) {
    constexpr int nLargest = 1 << 20; // widths beyond this are mistakes
    int nNumber = 0;
    for (; *pch >= L'0' && *pch <= L'9'; pch++)
        nNumber = nNumber < nLargest ? nNumber * 10 + (*pch - L'0') : nLargest;
    return nNumber;
}

ELength ReadLength(const wchar_t*& pch) {
    static constexpr struct {
        const wchar_t* pszPrefix;
        ELength eLength;
    } prefixes[] = {
        {L"I64", ELength::LongLong}, {L"I32", ELength::Default}, {L"I", ELength::Pointer},  {L"hh", ELength::Char},
        {L"h", ELength::Short},      {L"ll", ELength::LongLong}, {L"l", ELength::Long},     {L"w", ELength::Long},
        {L"z", ELength::Pointer},    {L"t", ELength::Pointer},   {L"j", ELength::LongLong},
    };
    for (const auto& prefix : prefixes) {
        const std::size_t nLength = std::wcslen(prefix.pszPrefix);
        if (std::wcsncmp(pch, prefix.pszPrefix, nLength) == 0) {
            pch += nLength;
            return prefix.eLength;
        }
    }
    return ELength::Default;
}

void AppendPadded(std::wstring& strResult, const SConversion& conversion, const std::wstring& strText) {
    const std::size_t nWidth = static_cast<std::size_t>(conversion.nWidth);
    const std::size_t nPadding = nWidth > strText.size() ? nWidth - strText.size() : 0;
    if (!conversion.bLeft)
        strResult.append(nPadding, L' ');
    strResult += strText;
    if (conversion.bLeft)
        strResult.append(nPadding, L' ');
}

// Characters up to the zero or the precision, whichever comes first; nothing behind them is read.
template <class CHARACTER>
std::wstring TextArgument(const SConversion& conversion, const CHARACTER* pszText) {
    if (pszText == nullptr)
        return L"(null)";
    std::wstring strText;
    for (int nIndex = 0; nIndex != conversion.nPrecision && pszText[nIndex] != 0; nIndex++)
        strText += static_cast<wchar_t>(static_cast<std::make_unsigned_t<CHARACTER>>(pszText[nIndex]));
    return strText;
}

// Numbers consist of ASCII, so the narrow printf does the work.
template <class NUMBER>
void AppendNumber(std::wstring& strResult, const SConversion& conversion, const char* pszLengthAndType, NUMBER number) {
    std::string strFormat = "%" + conversion.strFlags;
    if (conversion.nWidth > 0)
        strFormat += std::to_string(conversion.nWidth);
    if (conversion.nPrecision >= 0)
        strFormat += "." + std::to_string(conversion.nPrecision);
    strFormat += pszLengthAndType;

    const int nLength = std::snprintf(nullptr, 0, strFormat.c_str(), number);
    if (nLength <= 0)
        return;
    std::string strNumber(static_cast<std::size_t>(nLength) + 1, '\0');
    std::snprintf(strNumber.data(), strNumber.size(), strFormat.c_str(), number);
    strResult.append(strNumber.begin(), strNumber.end() - 1);
}

} // namespace

std::wstring FormatWide(const wchar_t* pszFormat, va_list args) {
    std::wstring strResult;
    if (pszFormat == nullptr)
        return strResult;

    for (const wchar_t* pch = pszFormat; *pch != 0; pch++) {
        if (*pch != L'%') {
            strResult += *pch;
            continue;
        }
        pch++;

        SConversion conversion;
        for (; *pch != 0 && std::wcschr(L"-+ #0", *pch) != nullptr; pch++) {
            conversion.strFlags += static_cast<char>(*pch);
            conversion.bLeft = conversion.bLeft || *pch == L'-';
        }
        if (*pch == L'*') {
            pch++;
            conversion.nWidth = va_arg(args, int);
            if (conversion.nWidth < 0) {
                conversion.nWidth = conversion.nWidth == INT32_MIN ? INT32_MAX : -conversion.nWidth;
                conversion.strFlags += '-';
                conversion.bLeft = true;
            }
        } else
            conversion.nWidth = ReadNumber(pch);
        if (*pch == L'.') {
            pch++;
            if (*pch == L'*') {
                pch++;
                conversion.nPrecision = va_arg(args, int);
                if (conversion.nPrecision < 0)
                    conversion.nPrecision = -1;
            } else
                conversion.nPrecision = ReadNumber(pch);
        }
        conversion.eLength = ReadLength(pch);
        conversion.chType = *pch;

        const bool bWide64 = conversion.eLength == ELength::LongLong || conversion.eLength == ELength::Pointer;
        const bool bNarrowText = conversion.eLength == ELength::Short || conversion.eLength == ELength::Char;
        switch (conversion.chType) {
        case 0:
            return strResult;
        case L'd':
        case L'i': {
            long long nValue = bWide64 ? va_arg(args, long long) : va_arg(args, int);
            if (conversion.eLength == ELength::Short)
                nValue = static_cast<short>(nValue);
            else if (conversion.eLength == ELength::Char)
                nValue = static_cast<signed char>(nValue);
            AppendNumber(strResult, conversion, "lld", nValue);
            break;
        }
        case L'u':
        case L'o':
        case L'x':
        case L'X': {
            unsigned long long nValue = bWide64 ? va_arg(args, unsigned long long) : va_arg(args, unsigned);
            if (conversion.eLength == ELength::Short)
                nValue = static_cast<unsigned short>(nValue);
            else if (conversion.eLength == ELength::Char)
                nValue = static_cast<unsigned char>(nValue);
            const char szLengthAndType[] = {'l', 'l', static_cast<char>(conversion.chType), 0};
            AppendNumber(strResult, conversion, szLengthAndType, nValue);
            break;
        }
        case L'e':
        case L'E':
        case L'f':
        case L'F':
        case L'g':
        case L'G':
        case L'a':
        case L'A': {
            const char szType[] = {static_cast<char>(conversion.chType), 0};
            AppendNumber(strResult, conversion, szType, va_arg(args, double));
            break;
        }
        case L'p':
            conversion.nPrecision = 2 * sizeof(void*);
            AppendNumber(strResult, conversion, "llX",
                         static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(va_arg(args, void*))));
            break;
        case L'c':
        case L'C': {
            const bool bNarrow = conversion.eLength == ELength::Default ? conversion.chType == L'C' : bNarrowText;
            const int nCharacter = va_arg(args, int);
            AppendPadded(strResult, conversion,
                         std::wstring(1, static_cast<wchar_t>(bNarrow ? nCharacter & 0xFF : nCharacter)));
            break;
        }
        case L's':
        case L'S': {
            const bool bNarrow = conversion.eLength == ELength::Default ? conversion.chType == L'S' : bNarrowText;
            AppendPadded(strResult, conversion,
                         bNarrow ? TextArgument(conversion, va_arg(args, const char*))
                                 : TextArgument(conversion, va_arg(args, const wchar_t*)));
            break;
        }
        case L'n': // writing through a format is not supported
            static_cast<void>(va_arg(args, void*));
            break;
        default: // "%%", and what is no conversion
            strResult += conversion.chType;
            break;
        }
    }
    return strResult;
}
