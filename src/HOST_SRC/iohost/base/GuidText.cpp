#include "base/GuidText.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::string_view GUID_PATTERN = "{00000000-0000-0000-0000-000000000000}";

unsigned HexNumber(std::string_view digits) {
    return static_cast<unsigned>(std::strtoul(std::string(digits).c_str(), nullptr, 16));
}

} // namespace

std::string GuidText(const GUID& guid) {
    char szText[GUID_PATTERN.size() + 1];
    std::snprintf(szText, sizeof(szText), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return szText;
}

std::optional<GUID> ParseGuid(std::string_view text) {
    if (text.size() != GUID_PATTERN.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const bool bMatches = GUID_PATTERN[i] == '0' ? std::isxdigit(static_cast<unsigned char>(text[i])) != 0
                                                     : text[i] == GUID_PATTERN[i];
        if (!bMatches) {
            return std::nullopt;
        }
    }
    GUID guid = {};
    guid.Data1 = HexNumber(text.substr(1, 8));
    guid.Data2 = static_cast<WORD>(HexNumber(text.substr(10, 4)));
    guid.Data3 = static_cast<WORD>(HexNumber(text.substr(15, 4)));
    for (size_t i = 0; i < 8; ++i) {
        const size_t nFirst = i < 2 ? 20 + 2 * i : 25 + 2 * (i - 2);
        guid.Data4[i] = static_cast<BYTE>(HexNumber(text.substr(nFirst, 2)));
    }
    return guid;
}
