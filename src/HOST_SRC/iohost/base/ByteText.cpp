#include "base/ByteText.h"

std::string HexText(std::span<const unsigned char> bytes) {
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string strText;
    strText.reserve(2 * bytes.size());
    for (const unsigned char nByte : bytes) {
        strText += DIGITS[nByte >> 4];
        strText += DIGITS[nByte & 0x0F];
    }
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
