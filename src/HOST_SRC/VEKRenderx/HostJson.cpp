#include "host/HostJson.h"

#include <string>
#include <type_traits>

#include "HostSetup.h"

namespace {

CString FromJsonText(const utility::string_t& text) {
    if constexpr (std::is_same_v<utility::char_t, wchar_t>) {
        return CString(reinterpret_cast<const wchar_t*>(text.data()), static_cast<int>(text.size()));
    } else {
        return FromUtf8(std::string_view(reinterpret_cast<const char*>(text.data()), text.size()));
    }
}

} // namespace

void G_ParseDataFormJsObj(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) {
    if (!value.is_object()) {
        return;
    }
    for (const auto& [name, member] : value.as_object()) {
        arKey.Add(FromJsonText(name));
        arValue.Add(FromJsonText(member.is_string() ? member.as_string() : member.serialize()));
    }
}

int G_FindString(const CStringArray& arText, const CString& strText) {
    for (INT_PTR i = 0; i < arText.GetSize(); ++i) {
        if (arText.GetAt(i) == strText) {
            return static_cast<int>(i);
        }
    }
    return -1;
}
