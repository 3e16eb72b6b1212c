#include "base/PrintableText.h"

#include <array>
#include <cstdio>

namespace {

std::string Escaped(std::string_view text, const char* pszFormat) {
    std::string strPrintable;
    unsigned char nPrevious = 0;
    for (const char c : text) {
        const auto nByte = static_cast<unsigned char>(c);
        // U+0080 to U+009F, two bytes in UTF-8, steer some terminals too.
        const bool bUpperControl = nPrevious == 0xC2 && nByte >= 0x80 && nByte < 0xA0;
        if (nByte < 0x20 || nByte == 0x7F || bUpperControl) {
            if (bUpperControl) {
                strPrintable.pop_back();
            }
            std::array<char, 7> escape{};
            std::snprintf(escape.data(), escape.size(), pszFormat, nByte);
            strPrintable += escape.data();
        } else {
            strPrintable += c;
        }
        nPrevious = nByte;
    }
    return strPrintable;
}

} // namespace

std::string PrintableText(std::string_view text) {
    return Escaped(text, "\\x%02X");
}

std::string PrintableJson(std::string_view line) {
    return Escaped(line, "\\u%04x");
}
