#include "base/PrintableText.h"

#include <boost/algorithm/hex.hpp>

#include <array>
#include <cstdio>
#include <iterator>

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

std::string ShortText(std::string_view text, size_t nMost) {
    if (text.size() <= nMost) {
        return std::string(text);
    }
    while (nMost > 0 && (static_cast<unsigned char>(text[nMost]) & 0xC0) == 0x80) {
        --nMost; // not within a character
    }
    return std::string(text.substr(0, nMost)) + "...";
}

std::string PrintableJson(std::string_view line) {
    return Escaped(line, "\\u%04x");
}

std::string HexText(std::span<const unsigned char> bytes) {
    std::string strText;
    strText.reserve(2 * bytes.size());
    boost::algorithm::hex_lower(bytes.begin(), bytes.end(), std::back_inserter(strText));
    return strText;
}

std::string DottedText(std::span<const unsigned char> bytes) {
    std::string strText;
    strText.reserve(bytes.size());
    for (const unsigned char nByte : bytes) {
        strText += nByte >= 0x20 && nByte < 0x7F ? static_cast<char>(nByte) : '.';
    }
    return strText;
}
