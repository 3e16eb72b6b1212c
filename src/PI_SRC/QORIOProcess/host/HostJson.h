// The host's JSON services. Host and module use the same build of the JSON library: its values cross between them.
#pragma once

#include <afxwin.h>

#include <cpprest/json.h>

#include "host/Export.h"

/// Split a JSON object into two parallel arrays: the members' names and the text of their values, in member order. A
/// string is its text, a number, boolean or null is as JSON writes it, a nested value is its JSON text. Anything else
/// than an object adds nothing. The arrays are appended to.
VEKRENDER_API void G_ParseDataFormJsObj(const web::json::value& value, CStringArray& arKey, CStringArray& arValue);

/// Index of the first element that equals the text, case-sensitively; negative when absent.
VEKRENDER_API int G_FindString(const CStringArray& arText, const CString& strText);
