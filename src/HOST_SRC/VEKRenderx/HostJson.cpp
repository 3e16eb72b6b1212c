#include "host/HostJson.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string>

#include "JsonSink.h"

namespace {

IJsonSink* s_pSink = nullptr;

/// A text of the library's. Its escapes are UTF-16: where wchar_t has room for any character, the two halves of one are
/// joined. A half alone stays as it is.
CString FromJsonText(const std::wstring& text) {
    CString strText;
    wchar_t* const pText = strText.GetBufferSetLength(static_cast<int>(text.size()));
    wchar_t* pEnd = pText;
    for (const wchar_t c : text) {
        if (sizeof(wchar_t) > sizeof(char16_t) && (c & ~0x3FF) == 0xDC00 && pEnd > pText &&
            (pEnd[-1] & ~0x3FF) == 0xD800) {
            pEnd[-1] = static_cast<wchar_t>(0x10000 + ((pEnd[-1] & 0x3FF) << 10) + (c & 0x3FF));
        } else {
            *pEnd++ = c;
        }
    }
    strText.ReleaseBuffer(static_cast<int>(pEnd - pText));
    return strText;
}

/// Append a number with no more digits than tell it from all others: the library itself writes 0.1 as
/// 0.10000000000000001. It reads 1e400 as infinity, for which JSON has no number.
void AppendNumber(std::wstring& text, double fNumber) {
    char szNumber[32] = "null";
    const char* pEnd = szNumber + 4;
    if (std::isfinite(fNumber)) {
        // Numbers of 15 digits come back from a double, and doubles come back from numbers of 17 digits.
        for (const int nDigits : {15, 16, 17}) {
            pEnd = std::to_chars(szNumber, std::end(szNumber), fNumber, std::chars_format::general, nDigits).ptr;
            double fRead = 0;
            std::from_chars(szNumber, pEnd, fRead);
            if (fRead == fNumber) {
                break;
            }
        }
    }
    std::copy(static_cast<const char*>(szNumber), pEnd, std::back_inserter(text));
}

/// Append the JSON text of a value. The library reads 128 levels at most, so that one call a level is no danger.
void AppendValue(std::wstring& text, const web::json::value& value) {
    bool bFirst = true;
    const auto separate = [&] {
        if (!bFirst) {
            text += ',';
        }
        bFirst = false;
    };
    switch (value.type()) {
    case web::json::value::Array:
        text += '[';
        for (const web::json::value& element : value.as_array()) {
            separate();
            AppendValue(text, element);
        }
        text += ']';
        break;
    case web::json::value::Object:
        text += '{';
        for (const auto& [name, member] : value.as_object()) {
            separate();
            web::json::details::format_string(name, text);
            text += ':';
            AppendValue(text, member);
        }
        text += '}';
        break;
    case web::json::value::String:
        web::json::details::format_string(value.as_string(), text);
        break;
    case web::json::value::Number:
        if (value.is_double()) {
            AppendNumber(text, value.as_double());
        } else {
            text += value.serialize();
        }
        break;
    case web::json::value::Boolean:
        text += value.as_bool() ? L"true" : L"false";
        break;
    case web::json::value::Null:
        text += L"null";
        break;
    }
}

CString ValueText(const web::json::value& value) {
    if (value.is_string()) {
        return FromJsonText(value.as_string());
    }
    std::wstring text;
    AppendValue(text, value);
    return FromJsonText(text);
}

} // namespace

void G_ParseDataFormJsObj(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) {
    if (!value.is_object()) {
        return;
    }
    const web::json::object& object = value.as_object();
    INT_PTR nKey = arKey.GetSize();
    INT_PTR nValue = arValue.GetSize();
    // Made as long as they will be at once: arrays grow by small steps.
    arKey.SetSize(nKey + static_cast<INT_PTR>(object.size()));
    arValue.SetSize(nValue + static_cast<INT_PTR>(object.size()));
    for (const auto& [name, member] : object) {
        arKey.SetAt(nKey++, FromJsonText(name));
        arValue.SetAt(nValue++, ValueText(member));
    }
    if (s_pSink != nullptr) {
        s_pSink->OnObjectSplit(arKey, arValue);
    }
}

int G_FindString(const CStringArray& arText, const CString& strText) {
    const auto nCount = static_cast<int>(arText.GetSize());
    int nIndex = 0;
    while (nIndex < nCount && arText.GetAt(nIndex) != strText) {
        ++nIndex;
    }
    if (nIndex == nCount) {
        nIndex = -1;
    }
    if (s_pSink != nullptr) {
        s_pSink->OnStringSought(strText, nIndex);
    }
    return nIndex;
}

void SetJsonSink(IJsonSink* pSink) {
    s_pSink = pSink;
}
