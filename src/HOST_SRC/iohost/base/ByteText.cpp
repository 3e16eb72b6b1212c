#include "base/ByteText.h"

#include <boost/algorithm/hex.hpp>

#include <iterator>

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
