// What the library's sources include first. The library's own header of this name includes all of it, HTTP too.
#pragma once

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <cpprest/asyncrt_utils.h>
#include <cpprest/json.h>

#if defined(CPPREST_AS_ON_WINDOWS)

// ---- What the JSON sources use of Microsoft's C run-time ------------------------------------------------------------

#include "number_text.h"

#define _i64toa_s(number, text, size, base) WriteNumber(text, number)
#define _i64tow_s _i64toa_s
#define _ui64toa_s _i64toa_s
#define _ui64tow_s _i64toa_s
#define _snprintf_s_l(text, size, count, format, locale, number) WriteNumber(text, number)
#define _snwprintf_s_l _snprintf_s_l
#define _strtod_l strtod_l
#define _wcstod_l wcstod_l
#define _isxdigit_l isxdigit_l
#define strnlen_s strnlen
#define wcsnlen_s wcsnlen

// ---- Where characters mean something else natively ------------------------------------------------------------------

/// White space as Windows has it; the native one depends on the locale.
inline bool IsSpace(wint_t c) {
    return c == 0x20 || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}
#define iswspace IsSpace

/// The end of a text: U+FFFF, as on Windows.
namespace web::json::details {
template <typename Character>
typename std::char_traits<Character>::int_type eof();
template <>
inline std::char_traits<wchar_t>::int_type eof<wchar_t>() {
    return 0xFFFF;
}
} // namespace web::json::details

#define _WIN32

#endif
