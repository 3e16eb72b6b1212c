// Numbers as text, for functions of Microsoft's C run-time that the library writes them with.
#pragma once

#include <algorithm>
#include <charconv>
#include <iterator>

/// Write a number, with a form as std::to_chars takes it, and a zero behind it; the length. The longest has 24
/// characters.
template <typename Character, typename Number, typename... Form>
int WriteNumber(Character* pText, Number number, Form... form) {
    char szNumber[32];
    const char* pEnd = std::to_chars(szNumber, std::end(szNumber), number, form...).ptr;
    *std::copy(static_cast<const char*>(szNumber), pEnd, pText) = 0;
    return static_cast<int>(pEnd - szNumber);
}

#define _sprintf_s_l(text, size, format, locale, digits, number)                                                       \
    WriteNumber(text, number, std::chars_format::general, digits)
#define _swprintf_s_l _sprintf_s_l
