#include "host/HostJson.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

#include "HostSetup.h"
#include "JsonSink.h"

namespace {

using JsonString = utility::string_t;

IJsonSink* s_pSink = nullptr;

/// The text of UTF-8 in which halves of surrogate pairs may stand alone, three bytes each: JSON has escapes for them.
CString FromJsonUtf8(std::string_view text) {
    CString strText;
    size_t nDone = 0;
    for (size_t i = text.find('\xED'); i != std::string_view::npos; i = text.find('\xED', i + 1)) {
        const std::string_view trail = text.substr(i + 1, 2);
        if (trail.size() == 2 && (trail[0] & 0xE0) == 0xA0 && (trail[1] & 0xC0) == 0x80) {
            strText += FromUtf8(text.substr(nDone, i - nDone));
            strText += static_cast<wchar_t>(0xD000 | (trail[0] & 0x3F) << 6 | (trail[1] & 0x3F));
            nDone = i + 3;
        }
    }
    return nDone == 0 ? FromUtf8(text) : strText + FromUtf8(text.substr(nDone));
}

CString FromJsonText(const JsonString& text) {
    if constexpr (std::is_same_v<utility::char_t, wchar_t>) {
        return CString(reinterpret_cast<const wchar_t*>(text.data()), static_cast<int>(text.size()));
    } else {
        return FromJsonUtf8(std::string_view(reinterpret_cast<const char*>(text.data()), text.size()));
    }
}

/// Append a number with no more digits than tell it from all others: the library itself writes 0.1 as
/// 0.10000000000000001. It reads 1e400 as infinity, for which JSON has no number.
void AppendNumber(JsonString& text, double fNumber) {
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
    text.append(static_cast<const char*>(szNumber), pEnd);
}

/// Append the JSON text of a value. The library reads 128 levels at most, so that one call a level is no danger.
void AppendValue(JsonString& text, const web::json::value& value) {
    bool bFirst = true;
    const auto separate = [&] {
        if (!bFirst) {
            text += ',';
        }
        bFirst = false;
    };
    if (value.is_array()) {
        text += '[';
        for (const web::json::value& element : value.as_array()) {
            separate();
            AppendValue(text, element);
        }
        text += ']';
    } else if (value.is_object()) {
        text += '{';
        for (const auto& [name, member] : value.as_object()) {
            separate();
            text += web::json::value::string(name).serialize();
            text += ':';
            AppendValue(text, member);
        }
        text += '}';
    } else if (value.is_double()) {
        AppendNumber(text, value.as_double());
    } else {
        text += value.serialize();
    }
}

CString ValueText(const web::json::value& value) {
    if (value.is_string()) {
        return FromJsonText(value.as_string());
    }
    JsonString text;
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
