#include "base/Refusal.h"

#include "base/PrintableText.h"

void Refuse(std::string_view field, std::string_view problem) {
    throw CRefusal(std::string(field) + ": " + std::string(problem));
}

std::string Quoted(std::string_view text) {
    constexpr size_t MOST_QUOTED = 64; // bytes
    return '"' + ShortText(text, MOST_QUOTED) + '"';
}
