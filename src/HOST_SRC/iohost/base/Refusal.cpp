#include "base/Refusal.h"

void Refuse(std::string_view field, std::string_view problem) {
    throw CRefusal(std::string(field) + ": " + std::string(problem));
}

std::string Quoted(std::string_view text) {
    constexpr size_t MOST_QUOTED = 64; // bytes
    if (text.size() <= MOST_QUOTED) {
        return '"' + std::string(text) + '"';
    }
    size_t nCut = MOST_QUOTED;
    while (nCut > 0 && (static_cast<unsigned char>(text[nCut]) & 0xC0) == 0x80) {
        --nCut; // not within a character
    }
    return '"' + std::string(text.substr(0, nCut)) + "...\"";
}
