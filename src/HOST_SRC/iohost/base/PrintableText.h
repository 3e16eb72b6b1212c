// Texts from outside as they may stand in a terminal, which control characters would steer.
#pragma once

#include <string>
#include <string_view>

/// The text with control characters as escapes: \x1B.
std::string PrintableText(std::string_view text);

/// A line of JSON with those control characters that JSON lets stand as escapes: \u009b. It is the same JSON.
std::string PrintableJson(std::string_view line);
