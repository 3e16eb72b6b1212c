// Texts and bytes from outside for people: in a terminal control characters would steer it.
#pragma once

#include <span>
#include <string>
#include <string_view>

/// The text with control characters as escapes: \x1B.
std::string PrintableText(std::string_view text);

/// The text; of a longer one what fits into so many bytes, cut at a character, and "...".
std::string ShortText(std::string_view text, size_t nMost);

/// A line of JSON; control characters that JSON allows unescaped become escapes: \u009b. It is the same JSON.
std::string PrintableJson(std::string_view line);

/// Bytes in hexadecimal.
std::string HexText(std::span<const unsigned char> bytes);

/// Bytes as text: what isn't printable ASCII becomes a dot.
std::string DottedText(std::span<const unsigned char> bytes);
