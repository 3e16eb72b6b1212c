#include "fronts/page/ObjectAddress.h"

#include <charconv>

#include "base/TextUtf8.h"
#include "protocol/Fields.h"

namespace {

/// A name or value of a query: %XX is a byte, + a space. Nothing when that isn't well-formed UTF-8.
std::optional<std::string> DecodeQueryText(std::string_view encoded) {
    std::string strText;
    for (size_t i = 0; i < encoded.size(); ++i) {
        if (encoded[i] == '%') {
            const std::string_view digits = encoded.substr(i + 1, 2);
            unsigned char nByte = 0;
            const auto [pRead, nError] = std::from_chars(digits.data(), digits.data() + digits.size(), nByte, 16);
            if (digits.size() != 2 || pRead != digits.data() + 2 || nError != std::errc()) {
                return std::nullopt;
            }
            strText += static_cast<char>(nByte);
            i += 2;
        } else {
            strText += encoded[i] == '+' ? ' ' : encoded[i];
        }
    }
    return WellFormedText(strText) ? std::optional(strText) : std::nullopt;
}

} // namespace

std::optional<SObjectTextData> ParseObjectAddress(std::string_view target, std::string& strProblem) {
    std::optional<std::string> clip;
    std::optional<std::string> object;
    const size_t nQuery = target.find('?');
    std::string_view query = nQuery != std::string_view::npos ? target.substr(nQuery + 1) : std::string_view();
    while (!query.empty()) {
        const std::string_view pair = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(query.size(), pair.size() + 1));
        const size_t nEqual = pair.find('=');
        const std::string_view name = pair.substr(0, nEqual);
        if (name == "token") {
            continue; // was looked at before
        }
        auto* pValue = name == "clip" ? &clip : name == "object" ? &object : nullptr;
        if (pValue == nullptr || *pValue || nEqual == std::string_view::npos) {
            strProblem = pValue != nullptr && *pValue ? std::string(name) + ": stands there twice"
                                                      : Quoted(pair) + ": only clip=NAME and object=NAME are known";
            return std::nullopt;
        }
        *pValue = DecodeQueryText(pair.substr(nEqual + 1));
        if (!*pValue) {
            strProblem = std::string(name) + ": isn't UTF-8 in percent encoding";
            return std::nullopt;
        }
    }
    if (!clip || !object) {
        strProblem = std::string(!clip ? "clip" : "object") + ": is missing";
        return std::nullopt;
    }
    return SObjectTextData{nullptr, FromUtf8(*clip), FromUtf8(*object), {}};
}
