#pragma once

#include "vek/Api.h"

#include <cpprest/json.h>

VEK_API BOOL G_ParseDataFormJsObj(web::json::value& jsObject, CStringArray& arKey, CStringArray& arValue);
VEK_API INT_PTR G_FindString(CStringArray& arText, CString strText);
