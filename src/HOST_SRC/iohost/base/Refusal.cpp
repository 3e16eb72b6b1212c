#include "base/Refusal.h"

namespace {

constexpr size_t QUOTED_BYTES = 64;

} // namespace

void Refuse(std::string_view field, std::string_view problem) {
    throw CRefusal(std::string(field) + ": " + std::string(problem));
}

std::string Quoted(std::string_view text) {
    if (text.size() <= QUOTED_BYTES) {
        return '"' + std::string(text) + '"';
    }
    size_t nCut = QUOTED_BYTES;
    while (nCut > 0 && (static_cast<unsigned char>(text[nCut]) & 0xC0) == 0x80) {
        --nCut; // not within a character
    }
    return '"' + std::string(text.substr(0, nCut)) + "...\"";
}
