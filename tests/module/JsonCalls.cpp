#include "JsonCalls.h"

#include "ModuleHost.h"
#include "ReplacedCalls.h"
#include "host/HostJson.h"

#define PARSE_OBJECT                                                                                                   \
    SYMBOL("?G_ParseDataFormJsObj@@YAXAEBVvalue@json@web@@AEAVCStringArray@@1@Z",                                      \
           "_Z20G_ParseDataFormJsObjRKN3web4json5valueER12CStringArrayS5_")

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
