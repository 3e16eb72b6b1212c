// GUIDs as text: {8164BB40-6B6A-4707-88B7-386BCB0D1B03}
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <afxwin.h>

/// In braces, upper case.
std::string GuidText(const GUID& guid);

/// Reads that form, in either case; nothing for any other text.
std::optional<GUID> ParseGuid(std::string_view text);
