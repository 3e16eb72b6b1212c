#include "base/GuidText.h"

#include <algorithm>
#include <cstdio>

#include <boost/algorithm/string/predicate.hpp>

std::string GuidText(const GUID& guid) {
    char szText[39];
    std::snprintf(szText, sizeof(szText), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return szText;
}

std::optional<GUID> ParseGuid(std::string_view text) {
    unsigned n[11] = {};
    std::sscanf(std::string(text).c_str(), "{%8x-%4x-%4x-%2x%2x-%2x%2x%2x%2x%2x%2x}", &n[0], &n[1], &n[2], &n[3], &n[4],
                &n[5], &n[6], &n[7], &n[8], &n[9], &n[10]);
    GUID guid = {n[0], static_cast<WORD>(n[1]), static_cast<WORD>(n[2]), {}};
    std::copy(n + 3, n + 11, guid.Data4);
    return boost::algorithm::iequals(GuidText(guid), text) ? std::optional(guid) : std::nullopt;
}
