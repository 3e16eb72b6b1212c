// JSON text on its way to the JSON library, which reads wide strings on Windows and UTF-8 elsewhere.
#pragma once

#include "host/HostJson.h"

/// The value that the text says as a whole; the null value, too, for text that isn't JSON. The wide build of the
/// library reads the text itself; the UTF-8 build reads it as the wide one does.
web::json::value ParseJsonText(const CString& strText);
