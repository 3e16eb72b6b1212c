#include "JsonCalls.h"

#include <utility>

#include "ModuleHost.h"
#include "ReplacedCalls.h"

// The library's functions that are replaced here must be seen by the other libraries.
#pragma GCC visibility push(default)
#include "host/HostJson.h"
#pragma GCC visibility pop

#define PARSE_OBJECT "_Z20G_ParseDataFormJsObjRKN3web4json5valueER12CStringArrayS5_"

namespace {

const wchar_t LIBRARY[] = L"VEKRenderx.dll";

bool s_bLoseLastValue = false;

} // namespace

void ParseObject(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) IN_PLACE_OF(PARSE_OBJECT);

void ParseObject(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) {
    static const auto s_pOriginal = Original<decltype(G_ParseDataFormJsObj)>(LIBRARY, PARSE_OBJECT);
    s_pOriginal(value, arKey, arValue);
    if (s_bLoseLastValue && !arValue.IsEmpty()) {
        arValue.RemoveAt(arValue.GetUpperBound());
    }
}

LostLastValue::LostLastValue() {
    ReplaceImport(GetModuleHandleW(ModuleHost::ModulePath().wstring().c_str()), LIBRARY, PARSE_OBJECT, ParseObject);
    s_bLoseLastValue = true;
}

LostLastValue::~LostLastValue() {
    s_bLoseLastValue = false;
}

#if !defined(_WIN32)

namespace {

size_t s_nParsedTexts = 0;

} // namespace

size_t TakeParsedTexts() {
    return std::exchange(s_nParsedTexts, 0);
}

// Hidden ones would be the program's alone.
#pragma GCC visibility push(default)

web::json::value web::json::value::parse(const utility::string_t& strText) {
    static const auto s_pOriginal = Original<decltype(web::json::value::parse(strText))(const utility::string_t&)>(
        LIBRARY, "_ZN3web4json5value5parseERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
    ++s_nParsedTexts;
    return s_pOriginal(strText);
}

#pragma GCC visibility pop

#endif
