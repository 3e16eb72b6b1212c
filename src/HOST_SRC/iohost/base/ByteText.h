// Bytes as text, for people.
#pragma once

#include <span>
#include <string>

/// Bytes in hexadecimal.
std::string HexText(std::span<const unsigned char> bytes);

/// Bytes as text: what isn't printable ASCII becomes a dot.
std::string DottedText(std::span<const unsigned char> bytes);
